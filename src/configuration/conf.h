// The base of everything that is configured: conf_c, an interface with a numeric id (the kind of
// object); xmc_conf_c, which holds an XMC item tree and the two shape checks every XMC item must
// pass; and the fabric of creators that make the configuration objects that are not XMC but
// private XML of their own.
#pragma once

#include "configuration/xmc_item.h"
#include "configuration/xmc_validity.h"
#include "utl/container_temp.h"
#include "utl/utl_stream.h"

#include <cstdint>

class conf_c {
  public:
    conf_c() = default;
    virtual ~conf_c();
    conf_c(const conf_c&) = delete;
    conf_c& operator=(const conf_c&) = delete;

    // A new item tree of the object, the caller's; null here.
    virtual xml_item_c* to_item();
    // False here: a kind of object that can be checked says so itself.
    virtual bool check_xmc_validity(xmc_validity_c& validity, xml_item_c* item);
    virtual bool check_consistency(xml_item_c* item);
    // Kept for the order of the operations; nothing overrides it.
    virtual std::uint32_t reserved_operation();
    // Whether the two are the same kind of object: the same id.
    virtual bool is_same_kind(const conf_c& other) const;

    std::uint32_t id = 0;
};

class xmc_conf_c : public conf_c {
  public:
    xmc_conf_c();
    ~xmc_conf_c() override;

    // `element.label => element.label => ...` from the item up to the root, in the stream,
    // which is emptied first; empty for a null item.
    virtual const char* get_item_description(const xml_item_c* item, utl_stream_c& stream) const;
    // A new, empty tree in the place of the old one.
    virtual void clear();
    // The same id and equal trees.
    virtual bool is_equal(xmc_conf_c& other);

    // The first object (`want_object`) or data item labelled `label` below `start` (the root
    // when null). With `direct_only` among `start`'s children and, below them, the children of
    // those that are not objects; otherwise in pre-order under `start`, not into external
    // objects, giving up at an object labelled as `start` is (a search begun at a host stays on
    // that host).
    xml_item_c* find_tree_item(const char* label, bool want_object, xml_item_c* start = nullptr,
                               bool direct_only = false) const;
    // The attribute that holds the value of `property_label` of the object `object_label` (at
    // or below `start`), and in `out_item` the item that carries it: `status` and `id` are the
    // object's own attributes, any other is the `val` of a data item below the object.
    labeled_value_c* find_property(const char* object_label, const char* property_label,
                                   xml_item_c* start = nullptr,
                                   xml_item_c** out_item = nullptr) const;
    // The data item `label` among the object's children and, below them, the children of those
    // that are not objects.
    static xml_item_c* find_data_below(const xml_item_c* object, const char* label);

    // The shape of an object: its label, or null; `ok` false when a finding was made.
    const char* _check_object_content_get_name(const xml_item_c* item, bool& ok,
                                               xmc_validity_c* validity,
                                               std::uint32_t* out_id = nullptr) const;
    // The shape of a data item, told by findings when `validity` is given and by trace lines
    // otherwise; `strict` for the template, which allows no attribute it does not know.
    bool _check_data_content(xmc_validity_c* validity, const xml_item_c* item, bool strict,
                             const char** out_label = nullptr, const char** out_val = nullptr,
                             const char** out_type = nullptr, const char** out_mandatory = nullptr,
                             const char** out_check_kids_if_val = nullptr,
                             const char** out_check_if = nullptr,
                             bool* out_has_limits = nullptr) const;

    mixed_xmc_xml_tree_c* tree = nullptr; // owned
};

// A maker of one kind of configuration object; each is a static object that registers itself.
class conf_object_creator_c {
  public:
    // Sets the id and joins the fabric, unless a creator of that id is there already.
    explicit conf_object_creator_c(std::uint32_t creator_id);
    virtual ~conf_object_creator_c();
    conf_object_creator_c(const conf_object_creator_c&) = delete;
    conf_object_creator_c& operator=(const conf_object_creator_c&) = delete;

    virtual conf_c* create(xml_item_c* item) = 0;

    std::uint32_t id;
};

namespace conf_fabric_n {

// The list of creators, made on first use (start-up step 9) and kept until the library unloads.
ptr_list_ct<conf_object_creator_c>* get_fabric();
// A new object of kind `id` from the first creator of that id; null when there is none.
conf_c* create_object(std::uint32_t id, xml_item_c* item);
// Start-up step 9, and its undoing at unload.
void start_fabric();
void stop_fabric();

} // namespace conf_fabric_n
