// xml_item_c: the application's XML element. Its attributes are typed labeled_value_c objects in
// order of first setting; a tree of items (xml_tree_ct) is what the rest of the system reads,
// searches and writes.
#pragma once

#include "utl/container_temp.h"
#include "utl/tree.h"
#include "utl/utl_stream.h"
#include "utl/value.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

class xml_item_c : public generic_node_c {
  public:
    explicit xml_item_c(const char* item_label);
    // An item with the label `item_label`, a text that need not end with a 0 byte.
    explicit xml_item_c(std::string_view item_label);
    // A copy of label and attributes, and with `deep` of the children; never of any text.
    xml_item_c(const xml_item_c& source, bool deep);
    xml_item_c(const xml_item_c&) = delete;
    xml_item_c& operator=(const xml_item_c&) = delete;
    ~xml_item_c() override;

    // Items are cells of the current pool (utl/cell_pool.h) while a document loads.
    static void* operator new(std::size_t size);
    static void operator delete(void* cell);

    virtual std::uint64_t get_label_length() const;
    // Bytes needed to print the item, and with `recursive` its subtree.
    virtual std::uint64_t get_xml_size(bool recursive) const;
    // Same label, text and attributes in the same order; children are not compared.
    virtual bool is_equal(const xml_item_c& other) const;

    virtual labeled_value_c* set_attribute(const char* attr_label, const char* value);
    virtual labeled_value_c* set_attribute(const char* attr_label, unsigned long long value);
    virtual labeled_value_c* set_attribute(const char* attr_label, long long value);
    virtual labeled_value_c* set_attribute(const char* attr_label, unsigned int value);
    virtual labeled_value_c* set_attribute(const char* attr_label, int value);
    virtual labeled_value_c* set_attribute(const char* attr_label, unsigned long value);
    virtual labeled_value_c* set_attribute(const char* attr_label, long value);
    virtual labeled_value_c* set_attribute(const char* attr_label, unsigned short value);
    virtual labeled_value_c* set_attribute(const char* attr_label, short value);
    virtual labeled_value_c* set_attribute(const char* attr_label, char value);
    virtual labeled_value_c* set_attribute(const char* attr_label, bool value);
    virtual labeled_value_c* set_attribute(const labeled_value_c* source);

    // Null when the index is at or past the count.
    labeled_value_c* get_attribute(std::uint64_t index) const;
    std::uint64_t get_attribute_count() const { return attributes.get_count(); }
    // The first attribute with that label, byte for byte; null for a null label.
    labeled_value_c* find_attribute(const char* attr_label) const;
    // The very object, or one with the same label and text form (or tag, for an undefined one).
    bool has_attribute(labeled_value_c* value) const;
    // `<label a="1" b="2" />`-like description for messages, appended to the stream.
    const char* print_tag(utl_stream_c& stream) const;
    // Dotted path from the root: each item's first attribute's text, or its label.
    const char* get_path(utl_stream_c& stream) const;
    // Replaces the text; null or empty removes it.
    void set_text(const char* new_text);

    // A new item with the label, linked after the parent's last child.
    static xml_item_c* create_child(const char* item_label, xml_item_c* parent_item);
    // Links `child`, which must be free, after the last child of this item.
    void append_child(xml_item_c* child);
    // Copies the subtree below `source` under this item without recursion, in preorder; each
    // copy is `make(item, copy_of_its_parent)`, a new item without children.
    template <class Make> void copy_children_of(const xml_item_c& source, Make make) {
        const xml_item_c* from = source.first_child_item();
        xml_item_c* to_parent = this;
        while (from) {
            xml_item_c* copy = make(*from, to_parent);
            to_parent->append_child(copy);
            if (from->first_child) {
                from = from->first_child_item();
                to_parent = copy;
                continue;
            }
            while (from && from != &source && !from->next) {
                from = from->parent_item();
                to_parent = to_parent->parent_item();
            }
            if (!from || from == &source) break;
            from = from->next_item();
        }
    }

    xml_item_c* parent_item() const { return static_cast<xml_item_c*>(parent); }
    xml_item_c* first_child_item() const { return static_cast<xml_item_c*>(first_child); }
    xml_item_c* next_item() const { return static_cast<xml_item_c*>(next); }

    // The label of a short name points into the item itself (see _inline_label); set it
    // through set_label, never by assignment.
    char* label = nullptr;
    char* text = nullptr;
    array_ct<labeled_value_c> attributes;

    // Replaces the label; null leaves the item without one.
    void set_label(const char* item_label);
    void set_label(std::string_view item_label);

  protected:
    // Room for the labels of most elements, so that an item costs one allocation.
    char _inline_label[24];

    // The attribute with the label, made empty at the end of the array when it is missing.
    labeled_value_c* _attribute_for(const char* attr_label, bool& made);
};

// The number of children of `node`, and with `recursive` of all its descendants.
std::uint64_t get_children_count(const generic_node_c* node, bool recursive);
