#include "configuration/xmc_item.h"

#include "configuration/xmc_enums.h"
#include "utl/tree.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>

namespace {

// The first bytes decide most comparisons of attribute names without a call.
bool same(const char* a, const char* b) { return a && b && *a == *b && std::strcmp(a, b) == 0; }

const char* or_empty(const char* text) { return text ? text : ""; }

} // namespace

// ---- xmc_item_c -------------------------------------------------------------------------------

xmc_item_c::xmc_item_c(const char* item_label)
    : xml_item_c(item_label), kind(xmc_n::kind_of_element(item_label)) {}

xmc_item_c::xmc_item_c(std::string_view item_label)
    : xml_item_c(item_label), kind(xmc_n::kind_of_element(item_label)) {}

xmc_item_c::xmc_item_c(const xmc_item_c& source, bool deep)
    : xml_item_c(source, false), kind(source.kind), value_type(source.value_type),
      enum_index(source.enum_index), canonical(source.canonical) {
    if (!deep) return;
    // Below an external object, and below any plain item, copies are plain.
    copy_children_of(source, [](const xml_item_c& from, xml_item_c* to_parent) -> xml_item_c* {
        const xmc_item_c* parent_copy = as_xmc(to_parent);
        const xmc_item_c* typed = as_xmc(&from);
        if (typed && parent_copy && parent_copy->kind != xmc_n::kind_external)
            return new xmc_item_c(*typed, false);
        return new xml_item_c(from, false);
    });
}

xmc_item_c::~xmc_item_c() = default;

// Every walk of a mixed tree asks this of each item it passes, so it compares the exact type
// (the class is final) instead of paying for a dynamic_cast's search of the class hierarchy.
xmc_item_c* xmc_item_c::as_xmc(generic_node_c* node) {
    return node && typeid(*node) == typeid(xmc_item_c) ? static_cast<xmc_item_c*>(node) : nullptr;
}

const xmc_item_c* xmc_item_c::as_xmc(const generic_node_c* node) {
    return node && typeid(*node) == typeid(xmc_item_c) ? static_cast<const xmc_item_c*>(node)
                                                       : nullptr;
}

std::uint64_t xmc_item_c::get_label_length() const {
    switch (kind) {
    case xmc_n::kind_title: return 5;
    case xmc_n::kind_object: return 6;
    case xmc_n::kind_data: return 4;
    default: return label ? std::strlen(label) : 0;
    }
}

// What an attribute tells the item. On an object, `external` (whatever its value) makes it
// external, and `id` arriving as the second attribute after `label` makes it canonical. On a
// data item only `type` counts: arriving third after `label` and `val` it makes the item
// canonical, and its text gives the value type. A later attribute never clears `canonical`.
labeled_value_c* xmc_item_c::_attribute_hook(labeled_value_c* attribute) {
    if (attribute) _learn(or_empty(attribute->get_label()), attribute, nullptr);
    return attribute;
}

void xmc_item_c::_learn(std::string_view name, labeled_value_c* attribute,
                        const std::string_view* value_text) {
    if (kind == xmc_n::kind_object || kind == xmc_n::kind_external) {
        if (name == xmc_n::attr_external) {
            kind = xmc_n::kind_external;
        } else if (name == xmc_n::attr_id) {
            if (attributes.get_count() == 2 &&
                same(attributes.at(0)->get_label(), xmc_n::attr_label))
                canonical = true;
        }
    } else if (kind == xmc_n::kind_data && name == xmc_n::attr_type) {
        if (attributes.get_count() == 3 && same(attributes.at(0)->get_label(), xmc_n::attr_label) &&
            same(attributes.at(1)->get_label(), xmc_n::attr_val))
            canonical = true;
        std::string_view type_text =
            value_text ? *value_text : std::string_view(attribute->to_text());
        std::uint32_t found_enum = xmc_enums_n::enum_none;
        value_type = xmc_enum_c::find_type(type_text, found_enum);
        enum_index = found_enum;
    }
}

labeled_value_c* xmc_item_c::set_attribute(const char* attr_label, const char* value) {
    return _attribute_hook(xml_item_c::set_attribute(attr_label, value));
}
labeled_value_c* xmc_item_c::set_attribute(const char* attr_label, unsigned long long value) {
    return _attribute_hook(xml_item_c::set_attribute(attr_label, value));
}
labeled_value_c* xmc_item_c::set_attribute(const char* attr_label, long long value) {
    return _attribute_hook(xml_item_c::set_attribute(attr_label, value));
}
labeled_value_c* xmc_item_c::set_attribute(const char* attr_label, unsigned int value) {
    return _attribute_hook(xml_item_c::set_attribute(attr_label, value));
}
labeled_value_c* xmc_item_c::set_attribute(const char* attr_label, int value) {
    return _attribute_hook(xml_item_c::set_attribute(attr_label, value));
}
labeled_value_c* xmc_item_c::set_attribute(const char* attr_label, unsigned long value) {
    return _attribute_hook(xml_item_c::set_attribute(attr_label, value));
}
labeled_value_c* xmc_item_c::set_attribute(const char* attr_label, long value) {
    return _attribute_hook(xml_item_c::set_attribute(attr_label, value));
}
labeled_value_c* xmc_item_c::set_attribute(const char* attr_label, unsigned short value) {
    return _attribute_hook(xml_item_c::set_attribute(attr_label, value));
}
labeled_value_c* xmc_item_c::set_attribute(const char* attr_label, short value) {
    return _attribute_hook(xml_item_c::set_attribute(attr_label, value));
}
labeled_value_c* xmc_item_c::set_attribute(const char* attr_label, char value) {
    return _attribute_hook(xml_item_c::set_attribute(attr_label, value));
}
labeled_value_c* xmc_item_c::set_attribute(const char* attr_label, bool value) {
    return _attribute_hook(xml_item_c::set_attribute(attr_label, value));
}
labeled_value_c* xmc_item_c::set_attribute(const labeled_value_c* source) {
    return _attribute_hook(xml_item_c::set_attribute(source));
}

labeled_value_c* xmc_item_c::add_new_attribute(std::string_view name, std::string_view value) {
    labeled_value_c* attribute = attributes.append(new labeled_value_c(name, value));
    _learn(name, attribute, &value);
    return attribute;
}

// A canonical item is read by position; array_ct::at traces the bounds of an item that lost
// its attributes since, and the lookup then finds nothing.
labeled_value_c* xmc_item_c::find_data_attribute(const char* data_label) const {
    if (!data_label || kind != xmc_n::kind_data) return nullptr;
    if (canonical) {
        labeled_value_c* first = attributes.at(0);
        if (!first || !first->equals_text(data_label)) return nullptr;
        return attributes.at(1);
    }
    bool label_matches = false, label_seen = false;
    labeled_value_c* val = nullptr;
    for (std::uint64_t i = 0; i < attributes.get_count() && !(label_seen && val); ++i) {
        labeled_value_c* a = attributes.at(i);
        const char* name = a->get_label();
        if (!label_seen && same(name, xmc_n::attr_label)) {
            label_seen = true;
            label_matches = a->equals_text(data_label);
            if (!label_matches) return nullptr;
        } else if (!val && same(name, xmc_n::attr_val)) {
            val = a;
        }
    }
    return label_matches ? val : nullptr;
}

// ---- walks ------------------------------------------------------------------------------------

xml_item_c* xmc_tree_n::next_item(xml_item_c* item, const xml_item_c* top) {
    const xmc_item_c* typed = xmc_item_c::as_xmc(item);
    bool enter = item->first_child && !(typed && typed->kind == xmc_n::kind_external);
    if (enter) return item->first_child_item();
    while (item && item != top) {
        if (item->next) return item->next_item();
        item = item->parent_item();
    }
    return nullptr;
}

const char* xmc_tree_n::label_of(const xml_item_c* item) {
    labeled_value_c* label = item ? item->find_attribute(xmc_n::attr_label) : nullptr;
    return label ? label->to_text() : nullptr;
}

bool xmc_tree_n::is_object(const xml_item_c* item) {
    const xmc_item_c* typed = xmc_item_c::as_xmc(item);
    return typed && (typed->kind == xmc_n::kind_object || typed->kind == xmc_n::kind_external);
}

bool xmc_tree_n::is_object_labelled(const xml_item_c* item, const char* label) {
    const char* own = is_object(item) ? label_of(item) : nullptr;
    return own && label && std::strcmp(own, label) == 0;
}

// ---- mixed_xmc_xml_tree_c ---------------------------------------------------------------------

namespace {

// Pre-order over a whole subtree, external content included.
template <class N> N* next_in_subtree(N* node, const N* top) {
    if (node->first_child) return static_cast<N*>(node->first_child);
    while (node && node != top) {
        if (node->next) return static_cast<N*>(node->next);
        node = static_cast<N*>(node->parent);
    }
    return nullptr;
}

// The item of one node, without its children: XMC unless `plain`. Attributes go through the
// string form of set_attribute, so that the hook of an XMC item sees each of them.
xml_item_c* item_of(xml_node_c* node, bool plain) {
    const char* name = node->name ? node->name : "";
    xml_item_c* item = plain ? new xml_item_c(name) : new xmc_item_c(name);
    if (xml_attr_list_c* list = node->attributes)
        for (xml_attr_c* a = list->first(); a; a = list->next(a))
            item->set_attribute(a->name, a->value);
    if (node->text.get_length()) item->set_text(node->text.c_str());
    return item;
}

// Whether the children of `item` are plain: those of an external object and of a plain item.
bool children_plain(const xml_item_c* item) {
    const xmc_item_c* typed = xmc_item_c::as_xmc(item);
    return !typed || typed->kind == xmc_n::kind_external;
}

xml_node_c* node_of(xml_item_c* item) {
    auto* node = new xml_node_c(or_empty(item->label));
    for (std::uint64_t i = 0; i < item->attributes.get_count(); ++i) {
        labeled_value_c* a = item->attributes.at(i);
        node->add_attribute(or_empty(a->get_label()), a->to_text());
    }
    if (item->text && *item->text) {
        node->type = xml_node_c::type_text;
        node->text.append(item->text);
    }
    return node;
}

void link_node(xml_node_c* node, xml_node_c* parent) {
    node->parent = parent;
    node->prev = parent->last_child;
    (parent->last_child ? parent->last_child->next : parent->first_child) = node;
    parent->last_child = node;
}

} // namespace

void mixed_xmc_xml_tree_c::from_document(xml_document_c* doc) {
    xml_node_c* root_node = doc ? doc->get_root() : nullptr;
    if (!root_node) return;
    // Pre-order over the nodes; each item is made once its parent's attributes are all set, so
    // an external parent is known to be one before its children are made.
    auto* top = static_cast<xmc_item_c*>(item_of(root_node, false));
    xml_item_c* parent_item = top;
    xml_node_c* at = root_node;
    for (;;) {
        if (at->first_child) {
            at = at->first_child_node();
            xml_item_c* item = item_of(at, children_plain(parent_item));
            parent_item->append_child(item);
            parent_item = item;
            continue;
        }
        while (at != root_node && !at->next) {
            at = at->parent_node();
            parent_item = parent_item->parent_item();
        }
        if (at == root_node) break;
        at = at->next_node();
        xml_item_c* up = parent_item->parent_item();
        xml_item_c* item = item_of(at, children_plain(up));
        up->append_child(item);
        parent_item = item;
    }
    _adopt_root(top, *doc);
}

void mixed_xmc_xml_tree_c::to_document(xml_document_c* doc) {
    if (!doc) return;
    // A tree that never loaded has no version, and a document is written with one.
    if (!doc->get_version()) doc->set_version(_version && *_version ? _version : "1.0");
    if (!_root) return;
    xml_node_c* top = node_of(_root);
    xml_node_c* parent_node = top;
    xml_item_c* at = _root;
    for (;;) {
        if (at->first_child) {
            at = at->first_child_item();
            xml_node_c* node = node_of(at);
            link_node(node, parent_node);
            parent_node = node;
            continue;
        }
        while (at != _root && !at->next) {
            at = at->parent_item();
            parent_node = parent_node->parent_node();
        }
        if (at == _root) break;
        at = at->next_item();
        xml_node_c* node = node_of(at);
        link_node(node, parent_node->parent_node());
        parent_node = node;
    }
    doc->add_node(top, nullptr);
}

// The reader's elements become items as from_document would make them of the nodes. An
// element handle is the item's address with the low bit set for a plain item, whose children
// are plain as well: items are 8-aligned cells, and the bit saves a type test per element.
class mixed_xmc_xml_tree_c::builder_c : public xml_builder_i {
  public:
    ~builder_c() override { delete root; }

    // The reader's names and values are views that need not end with a 0 byte: the items' own
    // constructors and set_attribute get copies that do.
    void* open_element(std::string_view name, void* parent) override {
        if (!parent) {
            if (root) return nullptr;
            root = new xmc_item_c(name);
            return root;
        }
        auto bits = reinterpret_cast<std::uintptr_t>(parent);
        auto* parent_item = reinterpret_cast<xml_item_c*>(bits & ~std::uintptr_t{1});
        bool plain =
            (bits & 1) != 0 || static_cast<xmc_item_c*>(parent_item)->kind == xmc_n::kind_external;
        xml_item_c* item = plain ? new xml_item_c(name) : new xmc_item_c(name);
        parent_item->append_child(item);
        return reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(item) | (plain ? 1 : 0));
    }

    // A name whose bit is not yet set among this element's names is new, and is appended
    // without set_attribute's search; the others take the search, as a repeated name must.
    void add_attribute(void* element, std::string_view name, std::string_view value) override {
        xml_item_c* target = item(element);
        if (target != _seen_owner) {
            _seen_owner = target;
            _seen = 0;
        }
        std::uint64_t bit = std::uint64_t{1} << xml_tree_n::name_bit(name);
        bool surely_new = !(_seen & bit);
        _seen |= bit;
        bool plain = (reinterpret_cast<std::uintptr_t>(element) & 1) != 0;
        if (!surely_new)
            target->set_attribute(terminated(_name_copy, name), terminated(_value_copy, value));
        else if (plain)
            target->attributes.append(new labeled_value_c(name, value));
        else
            static_cast<xmc_item_c*>(target)->add_new_attribute(name, value);
    }

    void set_text(void* element, const char* text) override {
        if (*text) item(element)->set_text(text);
    }

    void set_closed(void*) override {}

    const char* name_of(void* element) override { return item(element)->label; }

    xmc_item_c* root = nullptr;

  private:
    static const char* terminated(std::string& copy, std::string_view text) {
        copy.assign(text.data(), text.size());
        return copy.c_str();
    }

    std::string _name_copy;
    std::string _value_copy;
    xml_item_c* _seen_owner = nullptr;
    std::uint64_t _seen = 0;

    static xml_item_c* item(void* element) {
        return reinterpret_cast<xml_item_c*>(reinterpret_cast<std::uintptr_t>(element) &
                                             ~std::uintptr_t{1});
    }
};

template <class Read> bool mixed_xmc_xml_tree_c::_load_mixed(Read read) {
    xml_document_c doc;
    builder_c builder;
    bool loaded = read(doc, &builder);
    if (loaded && builder.root) _adopt_root(std::exchange(builder.root, nullptr), doc);
    return loaded;
}

std::unique_ptr<xml_builder_i> mixed_xmc_xml_tree_c::make_builder() {
    return std::make_unique<builder_c>();
}

void mixed_xmc_xml_tree_c::adopt_built(xml_builder_i& builder, xml_document_c& doc) {
    auto& built = static_cast<builder_c&>(builder);
    if (built.root) _adopt_root(std::exchange(built.root, nullptr), doc);
}

bool mixed_xmc_xml_tree_c::load_from_str(const char* text) {
    return _load_mixed([text](xml_document_c& doc, xml_builder_i* builder) {
        return doc.load_from_str(text, builder);
    });
}

bool mixed_xmc_xml_tree_c::load(const char* path) {
    return _load_mixed(
        [path](xml_document_c& doc, xml_builder_i* builder) { return doc.load(path, builder); });
}

std::uint64_t mixed_xmc_xml_tree_c::get_xml_size() {
    std::uint64_t size = _version ? std::strlen(_version) + 16 : 5;
    if (_encoding) size += std::strlen(_encoding) + 12;
    size += 3;
    std::uint64_t depth = 0;
    for (xml_item_c* item = _root; item;) {
        size += item->get_xml_size(false) + depth + 1;
        if (item->first_child) {
            size += depth + 1;
            item = item->first_child_item();
            ++depth;
            continue;
        }
        while (item && item != _root && !item->next) {
            item = item->parent_item();
            --depth;
        }
        if (!item || item == _root) break;
        item = item->next_item();
    }
    return size;
}

bool mixed_xmc_xml_tree_c::is_equal(xml_tree_ct<xmc_item_c>& other) {
    if (!xml_tree_n::same_text(_version, other.get_version()) ||
        !xml_tree_n::same_text(_encoding, other.get_encoding()) ||
        !xml_tree_n::same_text(_style_sheet, other.get_style_sheet()))
        return false;
    xml_item_c* a = _root;
    xml_item_c* b = other.get_root();
    xml_item_c* b_top = b;
    while (a && b) {
        if (!a->is_equal(*b)) return false;
        a = next_in_subtree<xml_item_c>(a, _root);
        b = next_in_subtree<xml_item_c>(b, b_top);
    }
    return !a && !b;
}

void mixed_xmc_xml_tree_c::remove_children(xmc_item_c* node) {
    if (!node) return;
    tree_n::remove_descendants<generic_node_c>(node, [](generic_node_c* child) { delete child; });
}

void mixed_xmc_xml_tree_c::clear() {
    if (!_root) return;
    remove_children(_root);
    if (_owner) delete_node(_root);
    _root = nullptr;
}
