// The two depths at which a scenario is checked. check_consistency asks whether the tree is well
// formed and only traces; check_xmc_validity asks whether the scenario can run and hands every
// finding to the caller. No rule stops the next: each records what it finds, and any rule's
// false answer makes the scenario invalid. The walks are loops over the tree, never recursion,
// so that a tree of any depth is checked on any stack.
#include "configuration/scenario_conf.h"

#include "configuration/xmc_grammar.h"
#include "configuration/xmc_item.h"
#include "platform/os.h"
#include "support/trc.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

using namespace xmc_enums_n;

namespace {

constexpr const char* source = "xmc_conf";

using scenario_conf_n::application_full_system;
using scenario_conf_n::application_hyper_v;

// The values that mean "not set" are the enumerations' item counts.
static_assert(scenario_conf_n::config_mode_not_set == 8);
static_assert(scenario_conf_n::product_not_set == 4);
static_assert(scenario_conf_n::application_not_set == 13);

// Host rows (host_data_table) read by the uniqueness and compression rules.
constexpr std::uint32_t host_row_compress = 6;
constexpr std::uint32_t host_row_failover_host = 38;
constexpr std::uint32_t host_row_cdp_host = 39;
constexpr std::uint32_t host_row_vetted_failback = 97;
constexpr std::uint32_t host_row_vetted_failback_shadow_copy = 123;
constexpr std::uint32_t host_row_suspend = 131;
constexpr std::uint32_t host_row_suspend_shadow_copy = 132;
// Scenario rows (scenario_data_table).
constexpr std::uint32_t row_is_cdp_scenario = 8;
constexpr std::uint32_t row_quillon_integrated = 10;

constexpr std::uint32_t code_empty_item = 0;
constexpr std::uint32_t code_unknown_kind = 1;
constexpr std::uint32_t code_empty_list = 2;
constexpr std::uint32_t code_missing = 3;
constexpr std::uint32_t code_not_allowed = 4;
constexpr std::uint32_t code_empty_value = 5;
constexpr std::uint32_t code_bad_type = 12;
constexpr std::uint32_t code_compress = 20;
constexpr std::uint32_t code_one_host_only = 21;
constexpr std::uint32_t code_more_than_one = 22;
constexpr std::uint32_t code_out_of_range = 24;

bool same(const char* a, const char* b) { return a && b && std::strcmp(a, b) == 0; }

std::uint32_t kind_of(const xml_item_c* item) {
    const xmc_item_c* typed = xmc_item_c::as_xmc(item);
    return typed ? typed->kind : static_cast<std::uint32_t>(xmc_n::kind_other);
}

const char* text_of(const xml_item_c* item, const char* attribute_name) {
    labeled_value_c* attribute = item ? item->find_attribute(attribute_name) : nullptr;
    return attribute ? attribute->to_text() : nullptr;
}

bool is_empty(const char* text) { return !text || !*text; }

const char* object_name(std::uint32_t object) {
    return object < object_tag_count ? object_tag_table[object].name : "";
}

// The item after `item` in pre-order below `top`, skipping the children of `item` unless
// `enter` is set; null at the end.
xml_item_c* next_below(xml_item_c* item, const xml_item_c* top, bool enter) {
    if (enter && item->first_child) return item->first_child_item();
    while (item && item != top && !item->next) item = item->parent_item();
    return item && item != top ? item->next_item() : nullptr;
}

bool text_fits_type(const char* text, const char* type_name, const xml_item_c* item) {
    std::uint32_t enum_index = 0;
    std::uint32_t type = xmc_enum_c::find_type(type_name, enum_index);
    return xmc_enum_c::data_fits_type(text, type, enum_index, item);
}

bool read_int64(const char* text, std::int64_t& out) {
    if (is_empty(text)) return false;
    char* end = nullptr;
    errno = 0;
    long long value = std::strtoll(text, &end, 10);
    if (errno != 0 || end == text || *end != 0) return false;
    out = value;
    return true;
}

} // namespace

bool scenario_conf_c::check_consistency() {
    QVTR_SCOPE(tr, "scenario_conf_c::check_consistency", source);
    multi_reader_lock_c read(scenario_lock);
    if (!_check_mixed_tree(nullptr)) return false;
    xmc_validity_c local;
    bool result = true;
    xml_item_c* root = tree->get_root();
    utl_stream_c tag;
    for (xml_item_c* item = root->first_child_item(); item;
         item = xmc_tree_n::next_item(item, root)) {
        switch (kind_of(item)) {
        case xmc_n::kind_title: break;
        case xmc_n::kind_object: {
            bool ok = true;
            _check_object_content_get_name(item, ok, &local);
            if (!ok) result = false;
            break;
        }
        case xmc_n::kind_data:
            if (!_check_data_content(&local, item, true)) result = false;
            break;
        case xmc_n::kind_external:
            for (xml_item_c* child = item->first_child_item(); child; child = child->next_item()) {
                conf_c* object = _get_generic_object(child);
                if (!object) {
                    result = false;
                    tr.print(QVTR_FAILURE, __LINE__,
                             "Unable to create external object for node %s\n",
                             child->print_tag(tag));
                } else if (!object->check_consistency(child)) {
                    result = false;
                    tr.print(QVTR_FAILURE, __LINE__,
                             "Found inconsistent external object of node %s\n",
                             child->print_tag(tag));
                }
            }
            break;
        default:
            report_item(local, item, code_unknown_kind);
            result = false;
            break;
        }
    }
    trace_findings(tr, __LINE__, local);
    return result;
}

bool scenario_conf_c::check_xmc_validity(xmc_validity_c& validity) {
    QVTR_SCOPE(tr, "scenario_conf_c::check_xmc_validity", source);
    multi_reader_lock_c read(scenario_lock);
    bool result = _check_enum_fields(validity);
    xml_item_c* root = tree ? tree->get_root() : nullptr;
    if (!root || !root->first_child) {
        add_record(validity, "Scenario", code_empty_item, 0, ch_data_s::no_item);
        return false;
    }
    if (!_check_general_validity(validity, root)) result = false;
    bool has_hosts = host_tree && (host_tree->get_host_count() != 0 ||
                                   config_mode == scenario_conf_n::config_mode_assessment);
    if (!has_hosts) {
        add_record(validity, "Scenario.ReplNode", code_missing, 2, ch_data_s::no_item);
        return false;
    }
    // Every rule runs, whatever the one before it found.
    bool rules = _check_array_root_dirs(validity);
    rules = _check_compress_attributes(validity) && rules;
    rules = _check_uniqueue_fields(validity) && rules;
    rules = _check_specific_features(validity) && rules;
    return result && rules;
}

bool scenario_conf_c::_check_enum_fields(xmc_validity_c& validity) const {
    bool result = true;
    auto not_set = [&](bool unset, const char* name) {
        if (!unset) return;
        add_record(validity, name, code_missing, 0, ch_data_s::no_item);
        result = false;
    };
    not_set(config_mode == scenario_conf_n::config_mode_not_set, "Scenario.ConfigMode");
    not_set(product == scenario_conf_n::product_not_set, "Scenario.Product");
    not_set(application == scenario_conf_n::application_not_set, "Scenario.Application");
    return result;
}

bool scenario_conf_c::_check_general_validity(xmc_validity_c& validity, xml_item_c* item) {
    QVTR_SCOPE(tr, "scenario_conf_c::_check_general_validity", source);
    if (!item) return false;
    bool result = true;
    utl_stream_c tag;

    // Each step answers whether the walk goes on into the item's children.
    auto check_object = [&](xml_item_c* object) {
        bool ok = true;
        const char* label = _check_object_content_get_name(object, ok, &validity);
        if (!ok) result = false;
        // The mappings of a virtual machine are judged by the feature rules, as a whole.
        if ((application == application_hyper_v || application == application_full_system) &&
            label && os::_stricmp(label, "VirtualNetworkMapping") == 0)
            return false;
        // A switched-off object may hold anything: it does not run.
        return !same(text_of(object, xmc_n::attr_status), "False");
    };

    auto check_data = [&](xml_item_c* data) {
        const char* label = nullptr;
        const char* val = nullptr;
        const char* type = nullptr;
        const char* mandatory = nullptr;
        const char* check_kids_if_val = nullptr;
        const char* check_if = nullptr;
        bool has_limits = false;
        const bool skip_mandatory =
            application == application_full_system && text_of(data, xmc_n::attr_label) &&
            os::_stricmp(text_of(data, xmc_n::attr_label), "VirtualMachineIPOnReplicainDNS") == 0;
        auto value_steps = [&] {
            if (!_check_data_content(&validity, data, false, &label, &val, &type, &mandatory,
                                     &check_kids_if_val, &check_if, &has_limits))
                return false;
            // A value whose condition does not hold is not looked at.
            if (check_if && !_check_if_condition(data, check_if)) return true;
            std::uint32_t enum_index = 0;
            std::uint32_t type_position = xmc_enum_c::find_type(type, enum_index);
            if (!xmc_enum_c::data_fits_type(val, type_position, enum_index, data)) {
                report_item(validity, data, code_bad_type, type);
                result = false;
                // A value of the wrong type may still be missing as well.
            } else if (check_kids_if_val && !text_fits_type(check_kids_if_val, type, data)) {
                report_item(validity, data, code_bad_type, type);
                return false;
            } else if (type_position == xmc_n::type_number && has_limits &&
                       !_check_value_range(data)) {
                report_item(validity, data, code_out_of_range, val);
                return false;
            } else if (type_position == xmc_n::type_multi_entry && mandatory && !skip_mandatory &&
                       !data->first_child) {
                report_item(validity, data, code_empty_list);
                return false;
            }
            bool may_be_empty = !mandatory && (type_position == xmc_n::type_text ||
                                               type_position == xmc_n::type_def_full_path);
            if (is_empty(val) && !may_be_empty) {
                report_item(validity, data, code_empty_value, "val");
                return false;
            }
            return true;
        };
        if (!value_steps()) result = false;
        // The children of a data item only apply when its value is the one they are for.
        return !(check_kids_if_val && std::strcmp(check_kids_if_val, val ? val : "") != 0);
    };

    auto check_external = [&](xml_item_c* external) {
        if (application != application_hyper_v) {
            for (xml_item_c* child = external->first_child_item(); child;
                 child = child->next_item()) {
                conf_c* object = _get_generic_object(child);
                if (!object) {
                    tr.print(QVTR_FAILURE, __LINE__,
                             "Unable to create external object for node %s\n",
                             child->print_tag(tag));
                    result = false;
                } else if (!object->check_xmc_validity(validity, child)) {
                    tr.print(QVTR_FAILURE, __LINE__, "Found invalid external object of node %s\n",
                             child->print_tag(tag));
                    result = false;
                }
            }
            return true;
        }
        // Hyper-V: the virtual machines three levels down; each one chosen needs its full name.
        xml_item_c* level = external->first_child_item();
        if (level) level = level->first_child_item();
        xml_item_c* machines = level ? level->first_child_item() : nullptr;
        if (!machines) return false;
        for (xml_item_c* machine = machines->first_child_item(); machine;
             machine = machine->next_item()) {
            if (same(text_of(machine, "checked"), "True") &&
                is_empty(text_of(machine, "fqn_name"))) {
                xml_item_c* name_item =
                    find_tree_item("VirtualMachineFQName", false, tree->get_root(), false);
                report_item(validity, name_item, code_bad_type, "fqn_name");
                result = false;
                return false;
            }
        }
        return true;
    };

    for (xml_item_c* at = item; at;) {
        bool enter = true;
        if (at->get_attribute_count() != 0) {
            switch (kind_of(at)) {
            case xmc_n::kind_object: enter = check_object(at); break;
            case xmc_n::kind_data: enter = check_data(at); break;
            case xmc_n::kind_external: enter = check_external(at); break;
            default: break;
            }
        }
        at = next_below(at, item, enter);
    }
    return result;
}

bool scenario_conf_c::_check_if_condition(const xml_item_c* item, const char* check_if) const {
    const char* is_equal = text_of(item, xmc_n::attr_is_equal);
    if (!is_equal || !check_if) return true;
    const char* point = std::strchr(check_if, '.');
    if (!point) return true;
    // Read on the scenario or on the host that holds the item.
    xml_item_c* scope = item->parent_item();
    while (scope && !(xmc_tree_n::is_object_labelled(scope, "Scenario") ||
                      xmc_tree_n::is_object_labelled(scope, "ReplNode")))
        scope = scope->parent_item();
    if (!scope) return true;
    std::string object(check_if, point);
    xml_item_c* carrier = nullptr;
    if (!find_property(object.c_str(), point + 1, scope, &carrier) || !carrier) return true;
    const char* val = text_of(carrier, xmc_n::attr_val);
    if (!val) return true;
    return std::strcmp(val, is_equal) == 0;
}

bool scenario_conf_c::_check_value_range(const xml_item_c* item) {
    const char* val = text_of(item, xmc_n::attr_val);
    if (!val) return false;
    std::int64_t value = 0;
    read_int64(val, value);
    std::int64_t limit = 0;
    const char* minimum = text_of(item, xmc_n::attr_minimum);
    if (minimum) {
        read_int64(minimum, limit);
        if (value < limit) return false;
    }
    const char* maximum = text_of(item, xmc_n::attr_maximum);
    if (maximum) {
        limit = 0;
        read_int64(maximum, limit);
        if (value > limit) return false;
    }
    return true;
}

void scenario_conf_c::collect_hosts_with_value(std::uint32_t row, const char* text,
                                               std::vector<std::uint64_t>& list) const {
    host_value_query_s query{row, text, &list};
    collect_hosts_with_values(&query, 1);
}

void scenario_conf_c::collect_hosts_with_values(const host_value_query_s* queries,
                                                std::size_t count) const {
    if (!host_tree) return;
    for (std::uint64_t host = MASTER_INDEX; host; host = host_tree->next_host(host)) {
        host_index_node_s* node = host_tree->find_host_node(host);
        if (!node || !node->host_item) continue;
        for (std::size_t q = 0; q < count; ++q) {
            if (queries[q].row >= host_data_count) continue;
            const host_data_s& r = host_data_table[queries[q].row];
            labeled_value_c* value = find_property(object_name(r.object), r.label, node->host_item);
            if (!value) continue;
            if (!queries[q].text || same(value->to_text(), queries[q].text))
                queries[q].list->push_back(host);
        }
    }
}

bool scenario_conf_c::_check_uniqueue_fields(xmc_validity_c& validity) const {
    QVTR_SCOPE(tr, "scenario_conf_c::_check_uniqueue_fields", source);
    bool result = true;
    auto report_all = [&](const std::vector<std::uint64_t>& hosts, std::uint32_t row,
                          std::uint32_t code) {
        for (std::uint64_t host : hosts) report_host_data(validity, row, host, code);
    };

    // The hosts of every row that the rules below read, in one pass over the hosts.
    std::vector<std::uint64_t> vetted, suspend, cdp, failover, shadow, suspend_shadow;
    xmc_value_c value;
    bool integrated = _get_scenario_data(row_quillon_integrated, value).to_bool();
    const host_value_query_s queries[] = {
        {host_row_vetted_failback, "True", &vetted},
        {host_row_suspend, "True", &suspend},
        {host_row_cdp_host, "True", &cdp},
        {host_row_failover_host, "True", &failover},
        {host_row_vetted_failback_shadow_copy, "True", &shadow},
        {host_row_suspend_shadow_copy, "True", &suspend_shadow},
    };
    collect_hosts_with_values(queries, integrated ? 6 : 4);

    // 1: one host at most may run the vetted failback or suspend.
    if (vetted.size() + suspend.size() >= 2) {
        report_all(vetted, host_row_vetted_failback, code_one_host_only);
        report_all(suspend, host_row_suspend, code_one_host_only);
        result = false;
    }

    // 2: with integrated shadow copies, one host at most takes them, whichever way. A host
    // that takes them both ways stands twice in the list and is reported twice.
    if (integrated) {
        shadow.insert(shadow.end(), suspend_shadow.begin(), suspend_shadow.end());
        if (shadow.size() >= 2) {
            report_all(shadow, host_row_suspend_shadow_copy, code_one_host_only);
            result = false;
        }
    }

    // 3: a CDP host belongs to a CDP scenario, and there is only one.
    xmc_value_c cdp_value;
    bool is_cdp = _get_scenario_data(row_is_cdp_scenario, cdp_value).to_bool();
    if (cdp.size() > 1) {
        report_all(cdp, host_row_cdp_host, is_cdp ? code_more_than_one : code_not_allowed);
        result = false;
    } else if (cdp.size() == 1 && !is_cdp) {
        report_all(cdp, host_row_cdp_host, code_not_allowed);
        result = false;
    }

    // 4: one failover host at most.
    if (failover.size() > 1) {
        report_all(failover, host_row_failover_host, code_more_than_one);
        result = false;
    }
    return result;
}

bool scenario_conf_c::_check_compress_attributes(xmc_validity_c& validity) const {
    QVTR_SCOPE(tr, "scenario_conf_c::_check_compress_attributes", source);
    if (!host_tree) return true;
    bool result = true;
    const host_data_s& r = host_data_table[host_row_compress];
    std::vector<const xml_item_c*> compressing;
    for (std::uint64_t host = MASTER_INDEX; host; host = host_tree->next_host(host)) {
        host_index_node_s* node = host_tree->find_host_node(host);
        if (!node || !node->host_item) continue;
        xml_item_c* compress_item = nullptr;
        labeled_value_c* compress =
            find_property(object_name(r.object), r.label, node->host_item, &compress_item);
        xmc_value_c value(compress ? compress->to_text() : "");
        if (value.to_bool()) {
            compressing.push_back(node->host_item);
            continue;
        }
        if (compressing.empty()) continue;
        for (const xml_item_c* above = node->host_item->parent_item(); above;
             above = above->parent_item()) {
            if (std::find(compressing.begin(), compressing.end(), above) == compressing.end())
                continue;
            report_item(validity, compress_item, code_compress);
            result = false;
            break;
        }
    }
    return result;
}
