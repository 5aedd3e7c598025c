// The rules on combinations of settings that only have meaning for some products, applications
// and modes: the last step of a scenario's validation. Each rule is an authors' decision and
// stands here with the words it traces and the finding it adds. They read the settings without
// a lock, as check_xmc_validity holds the scenario's read lock already.
#include "configuration/scenario_conf.h"

#include "support/trc.h"

namespace {

constexpr const char* source = "xmc_conf";

using scenario_conf_n::application_file_server;
using scenario_conf_n::application_full_system;
using scenario_conf_n::application_hyper_v;
using scenario_conf_n::product_ha;
using scenario_conf_n::replication_scheduling;

// Rows of scenario_data_table.
constexpr std::uint32_t row_is_cdp_scenario = 8;
constexpr std::uint32_t row_registry_synchronization = 12;
constexpr std::uint32_t row_is_alive_timeout = 69;
constexpr std::uint32_t row_heartbeat_timeout = 70;
constexpr std::uint32_t row_automatic = 84;
constexpr std::uint32_t row_replication_mode = 104;
constexpr std::uint32_t row_build_shares = 117;
constexpr std::uint32_t row_system_state_protection = 126;
// Rows of host_data_table.
constexpr std::uint32_t host_row_registry_32 = 24;
constexpr std::uint32_t host_row_registry_64 = 25;
constexpr std::uint32_t host_row_data_rewind = 29;
constexpr std::uint32_t host_row_trigger_file = 57;
constexpr std::uint32_t host_row_trigger_script = 59;
constexpr std::uint32_t host_row_scheduler_vf = 98;
constexpr std::uint32_t host_row_suspend_scheduler = 136;
constexpr std::uint32_t host_row_retain_system_state = 145;

constexpr std::uint32_t code_missing = 3;
constexpr std::uint32_t code_build_shares = 23;
constexpr std::uint32_t code_heartbeat = 25;
constexpr std::uint32_t code_data_rewind = 26;
constexpr std::uint32_t code_trigger_script = 27;
constexpr std::uint32_t code_scheduled = 28;
constexpr std::uint32_t code_registry_count = 29;
constexpr std::uint32_t code_hyper_v_mapping = 30;
constexpr std::uint32_t code_system_state = 31;
constexpr std::uint32_t code_registry_empty = 32;
constexpr std::uint32_t code_full_system_mapping = 34;

std::uint64_t entries_of(const xmc_value_c& value) {
    return value.strings ? value.strings->get_count() : 0;
}

unsigned host_number(std::uint64_t host) { return static_cast<unsigned>(host); }

} // namespace

bool scenario_conf_c::_check_specific_features(xmc_validity_c& validity) {
    QVTR_SCOPE(tr, "scenario_conf_c::_check_specific_features", source);
    bool result = true;
    auto scenario_bool = [&](std::uint32_t row) {
        xmc_value_c value;
        return _get_scenario_data(row, value).to_bool();
    };
    auto host_bool = [&](std::uint32_t row, std::uint64_t host) {
        xmc_value_c value;
        return _get_host_data(row, host, value).to_bool();
    };
    auto each_replica = [&](auto visit) {
        if (!host_tree) return;
        for (std::uint64_t host = host_tree->first_replica(); host;
             host = host_tree->next_host(host))
            visit(host);
    };

    // 1: a CDP scenario needs its database object.
    if (scenario_bool(row_is_cdp_scenario) && !get_generic_object()) {
        tr.print(QVTR_FAILURE, __LINE__, "Cdp scenario is missing corresponding DB object\n");
        add_record(validity, "External", code_missing, 0, ch_data_s::no_item);
        result = false;
    }

    // 2: share management. The first pair is a precondition that the second cannot then meet,
    // so the rule never fires; it is kept in this shape as the authors left it.
    if (application == application_file_server && scenario_bool(row_automatic) &&
        scenario_bool(row_build_shares)) {
        if (scenario_bool(row_automatic) == true && !scenario_bool(row_build_shares)) {
            tr.print(QVTR_FAILURE, __LINE__, "%s\n",
                     "Field Share Management tobe On requires Synchronize Windows Shares field "
                     "tobe On as well");
            report_scenario_data(validity, row_build_shares, code_build_shares);
            result = false;
        }
    }

    // 3: the heartbeat comes at least three times within the liveness timeout.
    if (product == product_ha) {
        xmc_value_c alive;
        xmc_value_c heartbeat;
        std::uint32_t is_alive = _get_scenario_data(row_is_alive_timeout, alive).to_uint();
        std::uint32_t beat = _get_scenario_data(row_heartbeat_timeout, heartbeat).to_uint();
        if (static_cast<std::uint32_t>(beat * 3u) > is_alive) {
            tr.print(QVTR_FAILURE, __LINE__, "%s\n",
                     "Value of HeartbeatTimeout surpasses permitted limit 1/3 * IsAliveTimeout");
            report_scenario_data(validity, row_heartbeat_timeout, code_heartbeat);
            result = false;
        }
    }

    // 4: registry keys to synchronise, as many on each replica as on the Master.
    if (scenario_bool(row_registry_synchronization)) {
        xmc_value_c master_32;
        xmc_value_c master_64;
        std::uint64_t keys_32 =
            entries_of(_get_host_data(host_row_registry_32, MASTER_INDEX, master_32));
        std::uint64_t keys_64 =
            entries_of(_get_host_data(host_row_registry_64, MASTER_INDEX, master_64));
        if (keys_32 == 0 && keys_64 == 0) {
            tr.print(QVTR_FAILURE, __LINE__,
                     "The list of Registry Keys is empty, while RegistrySynchronization "
                     "parameter is True");
            report_host_data(validity, host_row_registry_32, MASTER_INDEX, code_registry_empty);
            result = false;
        } else {
            each_replica([&](std::uint64_t host) {
                xmc_value_c list_32;
                xmc_value_c list_64;
                std::uint32_t culprit = 0;
                if (entries_of(_get_host_data(host_row_registry_32, host, list_32)) != keys_32)
                    culprit = host_row_registry_32;
                else if (entries_of(_get_host_data(host_row_registry_64, host, list_64)) != keys_64)
                    culprit = host_row_registry_64;
                if (!culprit) return;
                tr.print(QVTR_FAILURE, __LINE__, "Host #%u, %s\n", host_number(host),
                         "Number of Registry Keys on Master and Replica differ");
                report_host_data(validity, culprit, host, code_registry_count);
                result = false;
            });
        }
    }

    // 5: scheduled replication leaves no room for rewinding or suspending on a schedule.
    xmc_value_c mode;
    if (_get_scenario_data(row_replication_mode, mode).to_replication_mode() ==
        replication_scheduling) {
        struct off_s {
            std::uint32_t row;
            const char* name;
            std::uint32_t code;
        };
        constexpr off_s must_be_off[] = {
            {host_row_data_rewind, "DataRewind", code_data_rewind},
            {host_row_suspend_scheduler, "SuspendScheduler", code_scheduled},
            {host_row_scheduler_vf, "SchedulerVF", code_scheduled},
        };
        each_replica([&](std::uint64_t host) {
            for (const off_s& off : must_be_off) {
                if (!host_bool(off.row, host)) continue;
                tr.print(QVTR_FAILURE, __LINE__,
                         "Host #%u, property %s must be set Off if %s is set as %s\n",
                         host_number(host), off.name, "ReplicationMode", "Scheduling");
                report_host_data_row(validity, off.row, off.code, host);
                result = false;
            }
        });
    }

    // 6: a trigger file runs its script, on every host.
    if (host_tree) {
        for (std::uint64_t host = MASTER_INDEX; host; host = host_tree->next_host(host)) {
            if (!host_bool(host_row_trigger_file, host) || host_bool(host_row_trigger_script, host))
                continue;
            tr.print(QVTR_FAILURE, __LINE__,
                     "Host #%u, use of Trigger File requires corresponding Script to be set On\n",
                     host_number(host));
            report_host_data_row(validity, host_row_trigger_script, code_trigger_script, host);
            result = false;
        }
    }

    // 7: virtual network mappings. For Hyper-V the answer of the mappings stands for every
    // rule so far; the findings of those rules stay.
    if (product == product_ha) {
        if (application == application_full_system) {
            each_replica([&](std::uint64_t host) {
                if (!_check_networkmapping(validity, host)) result = false;
            });
        } else if (application == application_hyper_v) {
            result = _check_networkmapping(validity, 0);
        }
    }

    // 8: a system state snapshot is only worth taking when a replica keeps it. Read with the
    // locking getter, as the rule always has.
    xmc_value_c protection;
    if (config_mode != scenario_conf_n::config_mode_assessment &&
        get_scenario_data(row_system_state_protection, protection).to_bool()) {
        bool kept = false;
        host_index_node_s* master = host_tree ? host_tree->find_host_node(MASTER_INDEX) : nullptr;
        for (host_index_node_s* child = master ? master->first_child_node() : nullptr;
             child && !kept; child = static_cast<host_index_node_s*>(child->next))
            kept = host_bool(host_row_retain_system_state, child->host_index);
        if (!kept) {
            tr.print(QVTR_FAILURE, __LINE__,
                     "System state snapshot is created, but there are no replicas retain system "
                     "state snapshots\n");
            add_record(validity, "SystemStateProtection", code_system_state, 0, ch_data_s::no_item);
            result = false;
        }
    }
    return result;
}

bool scenario_conf_c::_check_networkmapping(xmc_validity_c& validity, std::uint64_t host) const {
    QVTR_SCOPE(tr, "scenario_conf_c::_check_networkmapping", source);
    ptr_list_ct<vm_network_mapping_s> list{false};
    struct free_s {
        ptr_list_ct<vm_network_mapping_s>& list;
        ~free_s() { list.clear_and_delete(); }
    } free_list{list};
    // A scenario without a list of mappings is not judged on them.
    if (!get_hyper_v_vm_network_mapping_list(list, host)) return true;

    auto empty = [](const utl_stream_c& text) { return text.get_length() == 0; };
    if (application == application_hyper_v) {
        // Every mapping needs the whole of its target.
        for (vm_network_mapping_s* m = list.first(); m; m = list.next(m)) {
            if (!empty(m->ReplicaVirtualNetworkUUID) && !empty(m->ReplicaVirtualNetworkName))
                continue;
            tr.print(QVTR_FAILURE, __LINE__,
                     "Hyper-V HA scenario has unassigned virtual network mapping\n");
            add_record(validity, "Switchover.VirtualNetworkMappingsEdit", code_hyper_v_mapping, 0,
                       ch_data_s::no_item);
            return false;
        }
        return true;
    }
    // One mapping with any part of its target is enough.
    for (vm_network_mapping_s* m = list.first(); m; m = list.next(m))
        if (!empty(m->ReplicaVirtualNetworkUUID) || !empty(m->ReplicaVirtualNetworkName))
            return true;
    tr.print(QVTR_FAILURE, __LINE__, "P2V HA scenario has unassigned virtual network mapping\n");
    add_record(validity, "SpecificReplicaProps.VirtualMachine.VirtualNetworkMappingsEditSwitchover",
               code_full_system_mapping, host, ch_data_s::no_item);
    return false;
}
