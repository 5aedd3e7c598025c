// scenario_conf_c: one replication scenario in memory. Everything the scenario says lives in its
// XMC tree; this class adds what the tree alone cannot give quickly or safely: the index of the
// hosts with their root directories, the external objects made so far, and the two
// reader/writer locks that guard scenario and group data.
//
// Whoever owns the object fills the tree (scenario_loader_n for a stored scenario), sets the
// enumerated fields and `id`, and builds the host index, all before the object is shared.
#pragma once

#include "configuration/conf.h"
#include "configuration/host_index.h"
#include "configuration/root_dir.h"
#include "configuration/vnet_mapping.h"
#include "configuration/xmc_enums.h"
#include "configuration/xmc_value.h"
#include "support/thl.h"
#include "utl/container_temp.h"
#include "utl/utl_stream.h"

#include <cstdint>

// The id of the external object that get_generic_object serves: the database object's.
inline constexpr std::uint32_t GENERIC_OBJECT_ID = 6799;

// One service that a scenario watches, an entry of its `ListMonitorServices` (objects of id
// 5500, each with a `ServiceName`). The list is the engine's to fill.
struct service_entry_s {
    utl_stream_c service_name;
};

// The start values of the enumerated fields, and what "not set" is for each: the enumeration's
// item count.
namespace scenario_conf_n {
inline constexpr std::uint32_t config_mode_regular = 1;
inline constexpr std::uint32_t config_mode_assessment = 4;
inline constexpr std::uint32_t config_mode_not_set =
    static_cast<std::uint32_t>(xmc_enums_n::enum_table[xmc_enums_n::enum_config_mode].count);
inline constexpr std::uint32_t product_not_set =
    static_cast<std::uint32_t>(xmc_enums_n::enum_table[xmc_enums_n::enum_product].count);
inline constexpr std::uint32_t application_not_set =
    static_cast<std::uint32_t>(xmc_enums_n::enum_table[xmc_enums_n::enum_application].count);
} // namespace scenario_conf_n

class scenario_conf_c : public xmc_conf_c {
  public:
    scenario_conf_c();
    // The external objects, the host index, the services, the locks, and last the tree.
    ~scenario_conf_c() override;

    // `tag.label from <owner>[, object <label>]`: the owner is the host whose `ReplNode` holds
    // the item ("Master", "Replica #<index>") or, outside every host, "Scenario"; the object is
    // the nearest one above the item. Null for a null item.
    const char* get_item_description(const xml_item_c* item, utl_stream_c& stream) const override;
    // The start values of the enumerated fields, an empty host index and a new, empty tree.
    // The external objects made so far stay: pointers to them stay valid until the end.
    void clear() override;
    // The same `id`, read under the lock of the kind of data the object holds.
    virtual bool is_same_object(const conf_c& other) const;

    // Indexes every host found below `root` (the tree's root when null): each `CommonHostProps`
    // with an `Index` whose `ReplNode` can be placed below a host already known. The number
    // of hosts entered; a host that cannot be placed is traced and skipped. Takes no lock: the
    // owner builds the index before the object is shared.
    std::uint64_t _build_host_tree(xml_item_c* root);
    // A new array, the caller's, with one xmc_root_dir_c per `RootDir` of the host: the first
    // one below the host's item and each sibling after it, in tree order.
    array_ct<root_dir_c>* _make_root_dir_list(xml_item_c* host_item) const;

    // The database object of the scenario's `External` object, made on first use.
    conf_c* get_generic_object();
    // The external object of that id made so far, or null.
    conf_c* _find_generic_object(std::uint32_t object_id) const;
    // The external object of the item, made by the fabric from the item on first use; null
    // for a null item, one without an `id` or with the id 0, and when no creator makes one.
    conf_c* _get_generic_object(xml_item_c* item);
    // A new object of GENERIC_OBJECT_ID from the `External` object's child of that id (null
    // when there is none: the creator is asked all the same); null without `External`.
    conf_c* _new_generic_object();

    // True when the tree and its root exist; otherwise a trace line and, for a given value,
    // its error flag and the words "XMC tree is missing".
    bool _check_mixed_tree(xmc_value_c* value) const;

    // The number of the Master's root directories.
    std::uint64_t get_root_dir_count() const;
    // The root directory at `position` of the host `host`; null past the end or for a host
    // that is not indexed.
    root_dir_c* get_root_dir(std::uint64_t position, std::uint64_t host) const;

    // The virtual network mappings of the scenario (host 0) or of a host's switchover, read
    // into `list`, which is emptied first and owns the records. False only when the list item
    // is not there.
    bool get_hyper_v_vm_network_mapping_list(ptr_list_ct<vm_network_mapping_s>& list,
                                             std::uint64_t host) const;

    // The name of the scenario for messages: its `ScenarioName`, or "UnKnown".
    const char* _scenario_name(utl_stream_c& stream) const;

    // Replaces the object of row `object_row` of object_tag_table (below the host `host` for a
    // host's object) by a fresh default from the generic configurator, for this scenario's
    // product, application and flag (generic_conf.cpp). The host index and the external objects
    // stay as they are. `Scenario`, `ReplNode` and `RootDir` are refused.
    virtual bool reload_object(std::uint32_t object_row, std::uint64_t host);

    // ---- root directory rules (root_dir_rules.cpp) ------------------------------------------
    // The root directories of all hosts: present on the Master and mirrored by each replica.
    // The rules that read settings (network paths, nesting, overlap between hosts of one
    // address) come with the data access. Every step runs; true when none found a fault.
    bool _check_array_root_dirs(xmc_validity_c& validity) const;

    std::uint32_t config_mode = scenario_conf_n::config_mode_regular;
    std::uint32_t product = scenario_conf_n::product_not_set;
    std::uint32_t application = scenario_conf_n::application_not_set;
    bool vetted_failback = false;
    host_index_tree_c* host_tree;              // owned
    ptr_list_ct<conf_c> generic_objects{true}; // owned objects; the list has its own lock
    mutable single_writer_multi_reader_c scenario_lock;
    // Set by the owner of an object that holds a group: is_same_object then reads under
    // group_lock.
    bool is_group = false;
    mutable single_writer_multi_reader_c group_lock;
    ptr_list_ct<service_entry_s> services{false}; // owned records
};
