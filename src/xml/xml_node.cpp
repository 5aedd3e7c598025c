#include "xml/xml_node.h"

#include "utl/cell_pool.h"
#include "utl/utl.h"
#include "xml/xml_translator.h"

#include <cstring>

namespace {

// Replaces `*field` by a copy of `text`, reusing the old block when the new text fits it.
void replace_text(char*& field, const char* text) {
    if (field && std::strlen(text) <= std::strlen(field)) {
        std::strcpy(field, text);
        return;
    }
    cell_pool_n::release(field);
    field = cell_pool_n::copy_text(text);
}

void append_tabs(utl_stream_c& stream, std::uint64_t count) {
    static const char tabs[] = "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";
    constexpr std::uint64_t chunk = sizeof tabs - 1;
    while (count >= chunk) {
        stream.append(tabs);
        count -= chunk;
    }
    stream.append(tabs + (chunk - count));
}

} // namespace

// ---- xml_attr_c

xml_attr_c::xml_attr_c(const char* attr_name, const char* attr_value)
    : name(cell_pool_n::copy_text(attr_name)), value(cell_pool_n::copy_text(attr_value)) {}

xml_attr_c::~xml_attr_c() {
    cell_pool_n::release(name);
    cell_pool_n::release(value);
}

void* xml_attr_c::operator new(std::size_t size) { return cell_pool_n::allocate(size); }

void xml_attr_c::operator delete(void* cell) { cell_pool_n::release(cell); }

void xml_attr_c::set_name(const char* attr_name) {
    if (!attr_name) {
        cell_pool_n::release(name);
        cell_pool_n::release(value);
        name = value = nullptr;
        return;
    }
    replace_text(name, attr_name);
}

void xml_attr_c::set_value(const char* attr_value) {
    if (!attr_value) {
        cell_pool_n::release(value);
        value = nullptr;
        return;
    }
    replace_text(value, attr_value);
}

// ---- xml_attr_list_c

void xml_attr_list_c::clear() {
    _list->lock();
    clear_and_delete();
    _list->unlock();
}

// ---- xml_node_c

xml_node_c::xml_node_c(const char* node_name) : node_c(node_name) {}

xml_node_c::~xml_node_c() { delete attributes; }

void* xml_node_c::operator new(std::size_t size) { return cell_pool_n::allocate(size); }

void xml_node_c::operator delete(void* cell) { cell_pool_n::release(cell); }

void xml_node_c::assign(const xml_node_c& source) {
    text.append(utl_stream_c::clear_char);
    set_name(source.name);
    closed = source.closed;
    type = source.type;
    if (type == type_text) text.append(source.text);
    delete attributes;
    attributes = nullptr;
    if (!source.attributes) return;
    attributes = new xml_attr_list_c;
    for (xml_attr_c* a = source.attributes->first(); a; a = source.attributes->next(a))
        attributes->append(new xml_attr_c(a->name, a->value));
}

void xml_node_c::new_line(utl_stream_c& stream) { stream.append('\n'); }

void xml_node_c::add_attribute(const char* attr_name, const char* attr_value) {
    if (!attributes) attributes = new xml_attr_list_c;
    if (!attr_name) return;
    auto* record = new xml_attr_c(attr_name, attr_value);
    attributes->get_list()->lock();
    attributes->append(record);
    attributes->get_list()->unlock();
}

std::uint64_t xml_node_c::get_depth() const {
    std::uint64_t depth = 0;
    for (const node_c* up = parent; up; up = up->parent) ++depth;
    return depth;
}

void xml_node_c::print_open_tag(utl_stream_c& stream) { print_open_tag(stream, get_depth()); }

void xml_node_c::print_close_tag(utl_stream_c& stream) { print_close_tag(stream, get_depth()); }

void xml_node_c::print_open_tag(utl_stream_c& stream, std::uint64_t depth) {
    xml_special_characters_c translator;
    append_tabs(stream, depth);
    stream.append('<');
    if (name) stream.append(name);
    if (type == type_text) {
        // An element with text is written without its attributes.
        stream.append('>');
        if (const char* translated = translator.translate_to_xml(text.c_str()))
            stream.append(translated);
        stream.append("</");
        if (name) stream.append(name);
        stream.append('>');
        new_line(stream);
        return;
    }
    if (attributes) {
        for (xml_attr_c* a = attributes->first(); a; a = attributes->next(a)) {
            stream.append(' ');
            if (a->name) stream.append(a->name);
            stream.append("=\"");
            if (const char* translated = translator.translate_to_xml(a->value))
                stream.append(translated);
            stream.append('"');
        }
    }
    if (!first_child) stream.append('/');
    stream.append('>');
    new_line(stream);
}

void xml_node_c::print_close_tag(utl_stream_c& stream, std::uint64_t depth) {
    if (type == type_text) return;
    append_tabs(stream, depth);
    stream.append("</");
    if (name) stream.append(name);
    stream.append('>');
    new_line(stream);
}
