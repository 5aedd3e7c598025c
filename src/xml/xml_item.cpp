#include "xml/xml_item.h"

#include "utl/cell_pool.h"
#include "utl/utl.h"

#include <cstring>

namespace {

const char* or_empty(const char* text) { return text ? text : ""; }

// Labels equal, and then text forms equal when both are defined, tags equal otherwise.
bool same_attribute(labeled_value_c& a, labeled_value_c& b) { return a.is_equal(b); }

} // namespace

xml_item_c::xml_item_c(const char* item_label) { set_label(item_label); }

xml_item_c::xml_item_c(std::string_view item_label) { set_label(item_label); }

void xml_item_c::set_label(const char* item_label) {
    if (!item_label) {
        char* old = label != _inline_label ? label : nullptr;
        label = nullptr;
        cell_pool_n::release(old);
        return;
    }
    set_label(std::string_view(item_label));
}

// The old label is let go only after the copy, since the new one may be a part of it.
void xml_item_c::set_label(std::string_view item_label) {
    char* old = label != _inline_label ? label : nullptr;
    std::size_t n = item_label.size();
    char* block =
        n < sizeof _inline_label ? _inline_label : static_cast<char*>(cell_pool_n::allocate(n + 1));
    std::memmove(block, item_label.data(), n);
    block[n] = 0;
    label = block;
    cell_pool_n::release(old);
}

// Children are copied without recursion: a walk over the source's subtree in preorder, with the
// copy of each item's parent found beside it.
xml_item_c::xml_item_c(const xml_item_c& source, bool deep) {
    set_label(or_empty(source.label));
    for (std::uint64_t i = 0; i < source.attributes.get_count(); ++i)
        set_attribute(source.attributes.at(i));
    if (!deep) return;
    copy_children_of(
        source, [](const xml_item_c& from, xml_item_c*) { return new xml_item_c(from, false); });
}

// The attributes go first, last to first; the subtree follows in generic_node_c's destructor.
xml_item_c::~xml_item_c() {
    for (std::uint64_t i = attributes.get_count(); i > 0; --i) delete attributes.at(i - 1);
    delete[] text;
    if (label != _inline_label) cell_pool_n::release(label);
    attributes.free_memory();
}

void* xml_item_c::operator new(std::size_t size) { return cell_pool_n::allocate(size); }

void xml_item_c::operator delete(void* cell) { cell_pool_n::release(cell); }

std::uint64_t xml_item_c::get_label_length() const { return std::strlen(label); }

std::uint64_t xml_item_c::get_xml_size(bool recursive) const {
    std::uint64_t size = get_label_length() + 2;
    if (text && *text) size += std::strlen(text) + 1;
    for (std::uint64_t i = 0; i < attributes.get_count(); ++i) {
        labeled_value_c* a = attributes.at(i);
        size += std::strlen(a->get_label()) + a->get_text_length() + 4;
    }
    size += first_child ? get_label_length() + 3 : 1;
    if (recursive)
        for (const xml_item_c* c = first_child_item(); c; c = c->next_item())
            size += c->get_xml_size(true);
    return size;
}

bool xml_item_c::is_equal(const xml_item_c& other) const {
    if (std::strcmp(or_empty(label), or_empty(other.label)) != 0) return false;
    if (std::strcmp(or_empty(text), or_empty(other.text)) != 0) return false;
    std::uint64_t count = attributes.get_count();
    if (count != other.attributes.get_count()) return false;
    for (std::uint64_t i = 0; i < count; ++i)
        if (!same_attribute(*attributes.at(i), *other.attributes.at(i))) return false;
    return true;
}

labeled_value_c* xml_item_c::_attribute_for(const char* attr_label, bool& made) {
    labeled_value_c* found = find_attribute(attr_label);
    made = !found;
    if (found) return found;
    return attributes.append(new labeled_value_c(attr_label));
}

labeled_value_c* xml_item_c::set_attribute(const char* attr_label, const char* value) {
    bool made;
    labeled_value_c* a = _attribute_for(attr_label, made);
    a->set_string(value);
    return a;
}

labeled_value_c* xml_item_c::set_attribute(const char* attr_label, unsigned long long value) {
    bool made;
    labeled_value_c* a = _attribute_for(attr_label, made);
    a->set_unsigned(value);
    return a;
}

labeled_value_c* xml_item_c::set_attribute(const char* attr_label, long long value) {
    bool made;
    labeled_value_c* a = _attribute_for(attr_label, made);
    a->set_signed(value);
    return a;
}

labeled_value_c* xml_item_c::set_attribute(const char* attr_label, unsigned int value) {
    return xml_item_c::set_attribute(attr_label, static_cast<unsigned long long>(value));
}

labeled_value_c* xml_item_c::set_attribute(const char* attr_label, int value) {
    return xml_item_c::set_attribute(attr_label, static_cast<long long>(value));
}

labeled_value_c* xml_item_c::set_attribute(const char* attr_label, unsigned long value) {
    return xml_item_c::set_attribute(attr_label, static_cast<unsigned long long>(value));
}

labeled_value_c* xml_item_c::set_attribute(const char* attr_label, long value) {
    return xml_item_c::set_attribute(attr_label, static_cast<long long>(value));
}

labeled_value_c* xml_item_c::set_attribute(const char* attr_label, unsigned short value) {
    return xml_item_c::set_attribute(attr_label, static_cast<unsigned long long>(value));
}

labeled_value_c* xml_item_c::set_attribute(const char* attr_label, short value) {
    return xml_item_c::set_attribute(attr_label, static_cast<long long>(value));
}

labeled_value_c* xml_item_c::set_attribute(const char* attr_label, char value) {
    return xml_item_c::set_attribute(attr_label, static_cast<long long>(value));
}

labeled_value_c* xml_item_c::set_attribute(const char* attr_label, bool value) {
    bool made;
    labeled_value_c* a = _attribute_for(attr_label, made);
    a->set_bool(value);
    return a;
}

labeled_value_c* xml_item_c::set_attribute(const labeled_value_c* source) {
    if (!source) return nullptr;
    if (labeled_value_c* found = find_attribute(source->get_label())) {
        *found = *source;
        return found;
    }
    return attributes.append(new labeled_value_c(*source));
}

labeled_value_c* xml_item_c::get_attribute(std::uint64_t index) const {
    return index < attributes.get_count() ? attributes.at(index) : nullptr;
}

labeled_value_c* xml_item_c::find_attribute(const char* attr_label) const {
    if (!attr_label) return nullptr;
    for (std::uint64_t i = 0; i < attributes.get_count(); ++i) {
        labeled_value_c* a = attributes.at(i);
        const char* name = or_empty(a->get_label());
        // The first bytes first: most names that differ cost no call.
        if (*name == *attr_label && std::strcmp(name, attr_label) == 0) return a;
    }
    return nullptr;
}

bool xml_item_c::has_attribute(labeled_value_c* value) const {
    if (!value) return false;
    for (std::uint64_t i = 0; i < attributes.get_count(); ++i) {
        labeled_value_c* a = attributes.at(i);
        if (a == value || same_attribute(*a, *value)) return true;
    }
    return false;
}

const char* xml_item_c::print_tag(utl_stream_c& stream) const {
    stream.append('<');
    stream.append(or_empty(label));
    stream.append(' ');
    for (std::uint64_t i = 0; i < attributes.get_count(); ++i) {
        labeled_value_c* a = attributes.at(i);
        stream.append(a->get_label());
        stream.append("=\"");
        stream.append(a->to_text());
        stream.append("\" ");
    }
    if (!first_child) stream.append('/');
    stream.append('>');
    return stream.c_str();
}

const char* xml_item_c::get_path(utl_stream_c& stream) const {
    ptr_list_ct<xml_item_c> chain(false);
    for (const xml_item_c* up = this; up; up = up->parent_item())
        chain.insert(const_cast<xml_item_c*>(up));
    for (xml_item_c* item = chain.first(); item; item = chain.next(item)) {
        if (item->attributes.get_count())
            stream.append(item->attributes.at(0)->to_text());
        else
            stream.append(or_empty(item->label));
        stream.append('.');
    }
    if (stream.ends_with(".", true)) stream.remove_suffix('.');
    return stream.c_str();
}

void xml_item_c::set_text(const char* new_text) {
    delete[] text;
    text = new_text && *new_text ? utl_n::str_copy(new_text, false) : nullptr;
}

xml_item_c* xml_item_c::create_child(const char* item_label, xml_item_c* parent_item) {
    auto* item = new xml_item_c(item_label);
    if (parent_item) parent_item->append_child(item);
    return item;
}

void xml_item_c::append_child(xml_item_c* child) {
    child->parent = this;
    child->next = nullptr;
    child->prev = last_child;
    (last_child ? last_child->next : first_child) = child;
    last_child = child;
}

std::uint64_t get_children_count(const generic_node_c* node, bool recursive) {
    if (!node) return 0;
    std::uint64_t count = 0;
    if (!recursive) {
        for (const generic_node_c* c = node->first_child; c; c = c->next) ++count;
        return count;
    }
    // Every descendant once, in preorder, without recursion.
    const generic_node_c* at = node->first_child;
    while (at) {
        ++count;
        if (at->first_child) {
            at = at->first_child;
            continue;
        }
        while (at && at != node && !at->next) at = at->parent;
        if (!at || at == node) break;
        at = at->next;
    }
    return count;
}
