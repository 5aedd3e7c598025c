#include "configuration/vnet_mapping.h"

#include "configuration/scenario_conf.h"
#include "configuration/xmc_grammar.h"
#include "platform/os.h"
#include "support/trc.h"

namespace {

constexpr const char* source = "xmc_conf";

constexpr const char* scenario_list_label = "ListVirtualNetworkMappings";
constexpr const char* host_list_label = "ListVirtualNetworkMappingsSwitchover";

// The fields of a record by the label they are read from, in the order a label is tested.
enum field_kind_t { field_text, field_bool, field_list };
struct field_s {
    const char* label;
    field_kind_t kind;
    utl_stream_c vm_network_mapping_s::*text;
    bool vm_network_mapping_s::*flag;
    string_array_c vm_network_mapping_s::*list;
};

using record_t = vm_network_mapping_s;
const field_s fields[] = {
    {"VirtualMachineUUID", field_text, &record_t::VirtualMachineUUID, nullptr, nullptr},
    {"MasterVirtualNetworkName", field_text, &record_t::MasterVirtualNetworkName, nullptr, nullptr},
    {"MasterVirtualNetworkUUID", field_text, &record_t::MasterVirtualNetworkUUID, nullptr, nullptr},
    {"ReplicaVirtualNetworkName", field_text, &record_t::ReplicaVirtualNetworkName, nullptr,
     nullptr},
    {"ReplicaVirtualNetworkUUID", field_text, &record_t::ReplicaVirtualNetworkUUID, nullptr,
     nullptr},
    {"ApplySourceAdapterSetting", field_bool, nullptr, &record_t::ApplySourceAdapterSetting,
     nullptr},
    {"UseDHCP", field_bool, nullptr, &record_t::UseDHCP, nullptr},
    {"WinsPrimary", field_text, &record_t::WinsPrimary, nullptr, nullptr},
    {"WinsSecondary", field_text, &record_t::WinsSecondary, nullptr, nullptr},
    {"IPs", field_list, nullptr, nullptr, &record_t::IPs},
    {"Subnets", field_list, nullptr, nullptr, &record_t::Subnets},
    {"Gateways", field_list, nullptr, nullptr, &record_t::Gateways},
    {"DNS", field_list, nullptr, nullptr, &record_t::DNS},
    {"MacAddress", field_text, &record_t::MacAddress, nullptr, nullptr},
};

// The field whose label is `label` without regard to case, or null.
const field_s* field_of(const char* label) {
    for (const field_s& field : fields)
        if (os::_stricmp(field.label, label) == 0) return &field;
    return nullptr;
}

// The field that the label of `item` names, and in `val` the item's `val`: the first of each
// attribute. Null, with its trace line, for an item that lacks either attribute and for a label
// that names no field; an entry of a list item (`entry`) must name a list.
const field_s* field_of_item(const xml_item_c* item, bool entry, labeled_value_c*& val,
                             qvtr_entry_c& tr) {
    labeled_value_c* label = item->find_attribute(xmc_n::attr_label);
    val = item->find_attribute(xmc_n::attr_val);
    if (!label || !val) {
        tr.print(QVTR_FAILURE, __LINE__, "Invalid lable or value for item\n");
        return nullptr;
    }
    const field_s* field = field_of(label->to_text());
    if (entry && (!field || field->kind != field_list)) {
        tr.print(QVTR_DETAIL, __LINE__, "Invalid label [%s]. Ignored\n", label->to_text());
        return nullptr;
    }
    if (!field) tr.print(QVTR_DETAIL, __LINE__, "Invalid Lable [%s]. Ignored\n", label->to_text());
    return field;
}

// The entries of a list item: each child's own label picks the list it joins, and the list
// item's `val`, which must be there, is not used.
void read_entries(const xml_item_c* list_item, vm_network_mapping_s& record, qvtr_entry_c& tr) {
    for (const xml_item_c* entry = list_item->first_child_item(); entry;
         entry = entry->next_item()) {
        labeled_value_c* val = nullptr;
        if (const field_s* field = field_of_item(entry, true, val, tr))
            (record.*(field->list)).add(val->to_text());
    }
}

} // namespace

bool scenario_conf_c::get_hyper_v_vm_network_mapping_list(ptr_list_ct<vm_network_mapping_s>& list,
                                                          std::uint64_t host) const {
    QVTR_SCOPE(tr, "scenario_conf_c::get_hyper_v_vm_network_mapping_list", source);
    multi_reader_lock_c read(scenario_lock);
    list.clear_and_delete();
    if (!_check_mixed_tree(nullptr)) return false;
    const char* list_label = scenario_list_label;
    xml_item_c* start = nullptr;
    if (host != NO_HOST_INDEX) {
        list_label = host_list_label;
        // A host that is not indexed leaves the search at the root.
        host_index_node_s* node = host_tree ? host_tree->find_host_node(host) : nullptr;
        start = node ? node->host_item : nullptr;
    }
    xml_item_c* list_item = find_tree_item(list_label, false, start, false);
    if (!list_item) {
        tr.print(QVTR_FAILURE, __LINE__, "Failed to find Network Mapping list in scernario\n");
        return false;
    }
    for (const xml_item_c* mapping = list_item->first_child_item(); mapping;
         mapping = mapping->next_item()) {
        labeled_value_c* id_attribute = mapping->find_attribute(xmc_n::attr_id);
        if (!id_attribute) {
            tr.print(QVTR_FAILURE, __LINE__, "Mapping has invalid ID\n");
            continue;
        }
        // Read from a copy: a reading would turn the shared attribute into a number.
        std::uint32_t mapping_id = value_c(*id_attribute).to_uint();
        if (mapping_id != VM_NETWORK_MAPPING_ID) {
            tr.print(QVTR_FAILURE, __LINE__, "Unexpected ID %d\n", static_cast<int>(mapping_id));
            continue;
        }
        vm_network_mapping_s record;
        for (const xml_item_c* child = mapping->first_child_item(); child;
             child = child->next_item()) {
            labeled_value_c* val = nullptr;
            const field_s* field = field_of_item(child, false, val, tr);
            if (!field) continue;
            switch (field->kind) {
            case field_text:
                (record.*(field->text)).append(utl_stream_c::clear_char).append(val->to_text());
                break;
            case field_bool: record.*(field->flag) = value_c(*val).to_bool(); break;
            case field_list: read_entries(child, record, tr); break;
            }
        }
        list.append(new vm_network_mapping_s(record));
    }
    return true;
}
