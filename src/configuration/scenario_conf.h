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
#include <string_view>
#include <vector>

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

// The positions of the enumerations' items that rules single out.
inline constexpr std::uint32_t product_ha = 1;
inline constexpr std::uint32_t application_file_server = 0;
inline constexpr std::uint32_t application_hyper_v = 7;
inline constexpr std::uint32_t application_full_system = 11;
inline constexpr std::uint32_t replication_scheduling = 1;

constexpr std::string_view item_of(std::uint32_t enumeration, std::uint32_t position) {
    return xmc_enums_n::enum_table[enumeration].items[position].name;
}
static_assert(item_of(xmc_enums_n::enum_config_mode, config_mode_regular) == "Regular");
static_assert(item_of(xmc_enums_n::enum_config_mode, config_mode_assessment) == "Assessment");
static_assert(item_of(xmc_enums_n::enum_product, product_ha) == "Ha");
static_assert(item_of(xmc_enums_n::enum_application, application_file_server) == "FileServer");
static_assert(item_of(xmc_enums_n::enum_application, application_hyper_v) == "HyperV");
static_assert(item_of(xmc_enums_n::enum_application, application_full_system) == "FullSystem");
static_assert(item_of(xmc_enums_n::enum_replication_mode, replication_scheduling) == "Scheduling");
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

    // ---- data access by table row and by dotted name (scenario_data.cpp) --------------------
    // A setting is a row of scenario_data_table, host_data_table, group_data_table,
    // group_scenario_data_table or group_host_data_table. Getters read under a reader lock and
    // tell a failure in the value (its error flag, lookup_failed and error_text) and return it;
    // setters write under the writer lock and answer false with a trace line. Scenario and host
    // data are guarded by scenario_lock, group data by group_lock, and no operation holds both.
    // A host is 1 for the Master, its `Index` for a replica, or MANAGER_INDEX for the Manager,
    // whose rows (the `manager` ones) are read from the scenario's own level.
    virtual xmc_value_c& get_scenario_data(std::uint32_t row, xmc_value_c& value);
    virtual xmc_value_c& get_host_data(std::uint32_t row, std::uint64_t host, xmc_value_c& value);
    // By the dotted path of the setting's item (compared without regard to case): the first
    // row whose item has that path is set by row. False, without a trace, when none has it.
    virtual bool set_scenario_data(const char* full_name, xmc_value_c& value, bool force);
    // A `fixed` row is refused unless `force` is given.
    virtual bool set_scenario_data(std::uint32_t row, xmc_value_c& value, bool force);
    // By the dotted path as the host's own item has it (from the root for a host that is not
    // indexed).
    virtual bool set_host_data(const char* full_name, std::uint64_t host, xmc_value_c& value);
    virtual bool set_host_data(std::uint32_t row, std::uint64_t host, xmc_value_c& value);
    // Every host the row applies to: all hosts for a row below `CommonHostProps`, the replicas
    // for the others. True at once when it applies to the replicas and there are none.
    virtual bool set_host_data(std::uint32_t row, xmc_value_c& value);
    virtual xmc_value_c& get_group_data(std::uint32_t row, xmc_value_c& value);
    virtual bool set_group_data(std::uint32_t row, xmc_value_c& value, bool force);
    // A row of group_scenario_data_table for the member scenario `scenario_id`.
    virtual xmc_value_c& get_scenario_in_group(std::uint32_t scenario_id, std::uint32_t row,
                                               xmc_value_c& value);
    virtual bool set_scenario_in_group(std::uint32_t scenario_id, std::uint32_t row,
                                       xmc_value_c& value, bool no_type_check);
    // A row of group_host_data_table for the Master (`is_master`) or the replica of a member.
    virtual xmc_value_c& get_host_in_group(std::uint32_t scenario_id, std::uint32_t row,
                                           bool is_master, xmc_value_c& value);

    // The forms without a lock, for code that holds the right one already (validation).
    xmc_value_c& _get_scenario_data(std::uint32_t row, xmc_value_c& value) const;
    xmc_value_c& _get_host_data(std::uint32_t row, std::uint64_t host, xmc_value_c& value) const;
    // The host row below `host_item`, the host's `ReplNode` (the root for the Manager); the
    // error names the host `host` when the row's item is not there. The value is reset first.
    xmc_value_c& _read_host_row(std::uint32_t row, std::uint64_t host, xml_item_c* host_item,
                                xmc_value_c& value) const;
    xmc_value_c& _get_group_data(std::uint32_t row, xmc_value_c& value) const;
    xmc_value_c& _get_scenario_in_group(std::uint32_t scenario_id, std::uint32_t row,
                                        xmc_value_c& value) const;
    xmc_value_c& _get_host_in_group(std::uint32_t scenario_id, std::uint32_t row, bool is_master,
                                    xmc_value_c& value) const;
    bool _set_scenario_data(std::uint32_t row, xmc_value_c& value);
    // The host whose `ReplNode` is `host_item` (the tree's root for the Manager).
    bool _set_host_data(std::uint32_t row, xml_item_c* host_item, xmc_value_c& value);
    bool _set_group_data(std::uint32_t row, xmc_value_c& value);
    bool _set_scenario_in_group(std::uint32_t scenario_id, std::uint32_t row, xmc_value_c& value,
                                bool no_type_check);

    // The first row of scenario_data_table (host_data_table) whose item, searched from the
    // root (the host's item), has the dotted path `full_name`, compared without regard to
    // case; not_found when none has. A row whose item is missing has the empty path. No lock.
    std::uint32_t find_scenario_row(const char* full_name) const;
    std::uint32_t find_host_row(const char* full_name, std::uint64_t host) const;
    static constexpr std::uint32_t not_found = 0xFFFFFFFFu;

    // The value of `attribute` of `item` into `value`, with the type's name; a MultiEntry
    // item's entries as the value's list.
    void fill_value(labeled_value_c* attribute, const xml_item_c* item, xmc_value_c& value) const;
    // The value's text into `attribute` of `item` when it fits the item's type (always with
    // `no_type_check`); a MultiEntry item takes the value's list as its new entries.
    bool store_value(labeled_value_c* attribute, xml_item_c* item, xmc_value_c& value,
                     bool no_type_check);
    // The `val` texts of the item's children as the value's list.
    void fill_string_array(const xml_item_c* item, xmc_value_c& value) const;
    // The value's list as the new entries of the MultiEntry item, each checked against the
    // element type the item's `val` names; on a refusal the old entries stay whole.
    bool _recive_array_chars(xml_item_c* item, xmc_value_c& value, bool no_type_check);
    // A new entry `data` with `label`, `val` the text and `type` the parent's `val`, appended
    // as the parent's last child.
    xml_item_c* add_entry_item(xml_item_c* parent, const char* text, const char* label);
    // The entry of the group list `list` (a row of group_list_table) whose key equals `key`'s
    // text, searched from `start` (the root when null); the list item itself for an empty key.
    xml_item_c* _find_group_list_info(std::uint32_t list, xmc_value_c key, xml_item_c* start) const;

    // Findings about a row: the scenario row's item (report_item); a host row by its
    // `object.property` name; a host row by the labels from its item up to the host's
    // `ReplNode`, or by name when the host has no such item.
    void report_scenario_data(xmc_validity_c& validity, std::uint32_t row,
                              std::uint32_t code) const;
    void report_host_data_row(xmc_validity_c& validity, std::uint32_t row, std::uint32_t code,
                              std::uint64_t host) const;
    void report_host_data(xmc_validity_c& validity, std::uint32_t row, std::uint64_t host,
                          std::uint32_t code) const;

    // The words of the last setter on this thread that answered false, as it traced them;
    // empty when it answered false without a line, or after one that succeeded.
    static const char* last_set_failure();

    // ---- root directory rules (root_dir_rules.cpp) ------------------------------------------
    // The root directories of all hosts: present on the Master and mirrored by each replica,
    // no network paths where the engine can't follow them, no nesting within a host and no
    // overlap between two hosts of one address. Every step runs; true when none found a fault.
    bool _check_array_root_dirs(xmc_validity_c& validity) const;

    // ---- validation (scenario_validation.cpp, feature_rules.cpp) -----------------------------
    // The checks of an external object's item stay callable beside the scenario's own.
    using conf_c::check_consistency;
    using conf_c::check_xmc_validity;
    // Whether the tree is well formed, item by item: every object and data item has the shape
    // the grammar asks and every external object exists and is consistent. Findings go to the
    // trace only.
    bool check_consistency();
    // Whether the scenario can run: every rule runs and appends its findings to `validity`, which
    // keeps what the caller put in it. True when no rule failed.
    bool check_xmc_validity(xmc_validity_c& validity);
    // The enumerated fields that are still not set: one finding each.
    bool _check_enum_fields(xmc_validity_c& validity) const;
    // The walk over `item` and all below it that the item's own settings let the walk reach:
    // shape, type, limits and presence of every value, and the external objects' own checks.
    bool _check_general_validity(xmc_validity_c& validity, xml_item_c* item);
    // At most one host suspends or runs the vetted failback, at most one takes shadow copies
    // (when the scenario integrates them), one CDP host only in a CDP scenario, one failover
    // host.
    bool _check_uniqueue_fields(xmc_validity_c& validity) const;
    // No host with compression off below a host with compression on.
    bool _check_compress_attributes(xmc_validity_c& validity) const;
    // Whether the condition `check_if` (`object.property`, compared with the item's `is_equal`)
    // holds, read on the scenario or the host that holds the item; true when it cannot be read.
    bool _check_if_condition(const xml_item_c* item, const char* check_if) const;
    // Whether the item's `val`, as a signed number, lies within its `minimum` and `maximum`.
    static bool _check_value_range(const xml_item_c* item);
    // Appends every host, from the Master on in pre-order, whose setting of host row `row` has
    // the text `text` (any text when null).
    void collect_hosts_with_value(std::uint32_t row, const char* text,
                                  std::vector<std::uint64_t>& list) const;
    // The same for several rows in one pass over the hosts: each host's rows are read one after
    // the other, while its items are at hand, and each row's hosts go to its own list.
    struct host_value_query_s {
        std::uint32_t row;
        const char* text;
        std::vector<std::uint64_t>* list;
    };
    void collect_hosts_with_values(const host_value_query_s* queries, std::size_t count) const;
    // The rules that only have meaning for some products, applications and modes.
    bool _check_specific_features(xmc_validity_c& validity);
    // The virtual network mappings of the scenario (host 0) or of a replica's switchover.
    bool _check_networkmapping(xmc_validity_c& validity, std::uint64_t host) const;

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
