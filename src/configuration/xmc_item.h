// xmc_item_c: an XML item that knows what it is in XMC. While its attributes are set it works
// out its kind, its type and whether it has the short canonical shape; the canonical shape lets
// a lookup by label read attributes by position. mixed_xmc_xml_tree_c holds a tree of them, and
// is "mixed" because below an external object everything stays plain xml_item_c: that content
// is the private XML of another configuration object, not XMC.
#pragma once

#include "configuration/xmc_grammar.h"
#include "utl/utl_stream.h"
#include "utl/value.h"
#include "xml/xml_doc.h"
#include "xml/xml_item.h"
#include "xml/xml_tree_templ.h"

#include <cstdint>
#include <memory>
#include <string_view>

// Final: as_xmc tells an XMC item by its exact type, which a derived class would escape.
class xmc_item_c final : public xml_item_c {
  public:
    // An item with the kind of its element name: `data` 2, `object` 1, `title` 0, any other 4.
    explicit xmc_item_c(const char* item_label);
    explicit xmc_item_c(std::string_view item_label);
    // Label, attributes and the four fields as they are, without running the attribute hook;
    // with `deep` the subtree too, plain below an external object and XMC elsewhere.
    xmc_item_c(const xmc_item_c& source, bool deep);
    ~xmc_item_c() override;

    // The lengths of `title`, `object` and `data` without a scan; other kinds count.
    std::uint64_t get_label_length() const override;

    // Each form sets the attribute as the base does, then lets the item learn from it.
    labeled_value_c* set_attribute(const char* attr_label, const char* value) override;
    labeled_value_c* set_attribute(const char* attr_label, unsigned long long value) override;
    labeled_value_c* set_attribute(const char* attr_label, long long value) override;
    labeled_value_c* set_attribute(const char* attr_label, unsigned int value) override;
    labeled_value_c* set_attribute(const char* attr_label, int value) override;
    labeled_value_c* set_attribute(const char* attr_label, unsigned long value) override;
    labeled_value_c* set_attribute(const char* attr_label, long value) override;
    labeled_value_c* set_attribute(const char* attr_label, unsigned short value) override;
    labeled_value_c* set_attribute(const char* attr_label, short value) override;
    labeled_value_c* set_attribute(const char* attr_label, char value) override;
    labeled_value_c* set_attribute(const char* attr_label, bool value) override;
    labeled_value_c* set_attribute(const labeled_value_c* source) override;

    // For a loader that knows `name` is not yet among the attributes: appends it without the
    // search of set_attribute, and lets the item learn from it as set_attribute does.
    labeled_value_c* add_new_attribute(std::string_view name, std::string_view value);

    // The `val` attribute of this `data` item when its `label` is `data_label`; null otherwise,
    // for a null argument, and for any other kind.
    labeled_value_c* find_data_attribute(const char* data_label) const;

    // Whether a node of the tree is an XMC item; below an external object none is.
    static xmc_item_c* as_xmc(generic_node_c* node);
    static const xmc_item_c* as_xmc(const generic_node_c* node);

    std::uint32_t kind;
    std::uint32_t value_type = xmc_n::type_unknown;
    std::uint32_t enum_index = 16;
    bool canonical = false;

  private:
    // Runs after every attribute that is set (see the definition).
    labeled_value_c* _attribute_hook(labeled_value_c* attribute);
    // What the attribute `name` tells the item; its text is read only where it counts, from
    // `value_text` when the caller has it, else from the attribute.
    void _learn(std::string_view name, labeled_value_c* attribute,
                const std::string_view* value_text);
};

// Walks of a mixed tree: pre-order, never into an external object. `top` bounds the walk.
namespace xmc_tree_n {
// The next item after `item` in pre-order, not entering the children of kind 3 items.
xml_item_c* next_item(xml_item_c* item, const xml_item_c* top);
// The text of the item's `label` attribute, or null.
const char* label_of(const xml_item_c* item);
// Whether the item is an object, kind 1 or 3; below an external object no item is one.
bool is_object(const xml_item_c* item);
// Whether the item is an object labelled `label`, byte for byte.
bool is_object_labelled(const xml_item_c* item, const char* label);
} // namespace xmc_tree_n

class mixed_xmc_xml_tree_c : public xml_tree_ct<xmc_item_c> {
  public:
    mixed_xmc_xml_tree_c() = default;
    ~mixed_xmc_xml_tree_c() override = default;

    // The document from the tree: each item a node with its name, its attributes' texts and
    // its text.
    void to_document(xml_document_c* doc) override;
    // The tree from the document: XMC items, plain ones below an external object. A tree that
    // has a root keeps it.
    void from_document(xml_document_c* doc) override;

    // Straight from the reader into the same items from_document would make.
    bool load_from_str(const char* text) override;
    bool load(const char* path) override;

    // For a loader that drives a reader of its own: a builder that makes the same items as
    // load_from_str from the reader's elements, and the step that then makes its root this
    // tree's, with the document's declaration values (a tree that has a root keeps it, and the
    // built items are dropped). `builder` must come from make_builder.
    static std::unique_ptr<xml_builder_i> make_builder();
    void adopt_built(xml_builder_i& builder, xml_document_c& doc);

    // The base forms of these read every item as an xmc_item_c; the content of an external
    // object is not one, so they are walked here as plain items.
    std::uint64_t get_xml_size() override;
    bool is_equal(xml_tree_ct<xmc_item_c>& other) override;
    void remove_children(xmc_item_c* node) override;
    void clear() override;

  protected:
    bool _builds_items_directly() const override { return false; }

  private:
    class builder_c;
    template <class Read> bool _load_mixed(Read read);
};
