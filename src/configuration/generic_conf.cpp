#include "configuration/generic_conf.h"

#include "configuration/xmc_grammar.h"
#include "configuration/xmc_template.h"
#include "configuration/xmc_validity.h"
#include "support/load_step.h"
#include "support/thl.h"
#include "support/trc.h"
#include "utl/utl_stream.h"
#include "utl/value.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

using namespace xmc_enums_n;

constexpr const char* source = "xmc_conf";
// Every line of the build stands under one of these two names, whichever check prints it.
constexpr const char* builder_scope = "generic_conf_builder_c::generic_conf_builder_c";
constexpr const char* build_scope = "generic_conf_c::generic_conf_c";

constexpr const char* object_table_name = "object_tag_table";
constexpr const char* scenario_table_name = "scenario_data_table";
constexpr const char* host_table_name = "host_data_table";

// Landmarks of the template.
constexpr const char* scenario_label = "Scenario";
constexpr const char* group_label = "Group";
constexpr const char* scenario_info_label = "ScenarioInfo";
constexpr const char* holder_label = "ConfigDataHolder";
constexpr const char* host_label = "ReplNode";
constexpr const char* index_label = "Index";
constexpr const char* root_dir_label = "RootDir";
constexpr const char* bool_type = "Bool";

// Object rows with a meaning of their own here.
constexpr std::uint32_t row_scenario = 0;
constexpr std::uint32_t row_host = 17;
constexpr std::uint32_t row_root_dir = 25;
constexpr std::uint32_t row_report = 32;
constexpr std::uint32_t row_event_notification = 35;
constexpr std::uint32_t row_group = 55;
constexpr std::uint32_t row_host_props = 57;

constexpr std::uint32_t enum_total = xmc_enum_c::enum_count;

generic_conf_c* global_conf = nullptr;
load_step_object_ct<generic_conf_builder_c> builder("the generic configurator");

bool same(const char* a, const char* b) { return a && b && std::strcmp(a, b) == 0; }

const char* attribute_text(const xml_item_c* item, const char* name) {
    labeled_value_c* attribute = item ? item->find_attribute(name) : nullptr;
    return attribute ? attribute->to_text() : nullptr;
}

// A reading taken from a copy: reading a text as a number turns the attribute into a number,
// and the configurator's tree stays as it was loaded.
std::uint32_t uint_of(const labeled_value_c* attribute) { return value_c(*attribute).to_uint(); }

std::uint32_t kind_of(const xml_item_c* item) {
    const xmc_item_c* typed = xmc_item_c::as_xmc(item);
    return typed ? typed->kind : static_cast<std::uint32_t>(xmc_n::kind_other);
}

// The nearest object above `item`, not `item` itself.
xml_item_c* papa_of(const xml_item_c* item) {
    for (xml_item_c* up = item->parent_item(); up; up = up->parent_item())
        if (xmc_tree_n::is_object(up)) return up;
    return nullptr;
}

// Pre-order over all of `top`'s subtree, the content of external objects included.
// The item after `item` and its subtree, within `top`.
xml_item_c* past_subtree(xml_item_c* item, const xml_item_c* top) {
    for (xml_item_c* at = item; at && at != top; at = at->parent_item())
        if (at->next) return at->next_item();
    return nullptr;
}

xml_item_c* next_in_subtree(xml_item_c* item, const xml_item_c* top) {
    return item->first_child ? item->first_child_item() : past_subtree(item, top);
}

// Takes `item` out of its parent's chain and deletes it with its subtree.
void unlink_and_delete(xml_item_c* item) {
    generic_node_c* no_root = nullptr;
    tree_n::unlink<generic_node_c>(item, no_root);
    item->parent = nullptr;
    delete item;
}

// The row of `name` among `rows`; the row count when it is null, empty or not there.
std::uint32_t row_among(std::span<const object_tag_s> rows, const char* name) {
    auto count = static_cast<std::uint32_t>(rows.size());
    if (!name || !*name) return count;
    for (std::uint32_t i = 0; i < count; ++i)
        if (same(rows[i].name, name)) return i;
    return count;
}

xmc_n::instance_s instance_of(std::uint32_t product, std::uint32_t application,
                              bool vetted_failback) {
    xmc_n::instance_s now;
    now.application = xmc_enum_c::item_name(xmc_enums_n::enum_application, application);
    now.product = xmc_enum_c::item_name(xmc_enums_n::enum_product, product);
    now.vetted_failback = vetted_failback;
    return now;
}

// The builder's last word on a configurator: kept, or deleted and null.
void conclude(qvtr_entry_c& tr, generic_conf_c*& conf, bool filled) {
    if (filled) {
        tr.print(QVTR_SUCCESS, __LINE__, "O.K. Generic Coonfigurator is successfully built up\n");
        return;
    }
    tr.print(QVTR_FAILURE, __LINE__,
             "Fatal error, unable to create instance of Generic Coonfigurator\n");
    delete conf;
    conf = nullptr;
}

} // namespace

// ---- the builder and the global instance --------------------------------------------------------

generic_conf_builder_c::generic_conf_builder_c() {
    QVTR_SCOPE(tr, builder_scope, source);
    global_conf = new generic_conf_c;
    conclude(tr, global_conf, generic_conf_c::_fill_content());
}

generic_conf_builder_c::~generic_conf_builder_c() {
    delete global_conf;
    global_conf = nullptr;
}

generic_conf_c* the_generic_conf() {
    builder.get(); // says so when step 6 never ran
    return global_conf;
}

generic_conf_c* generic_conf_n::build(const char* const* lines) {
    QVTR_SCOPE(tr, builder_scope, source);
    auto* conf = new generic_conf_c;
    bool filled = conf->_fill_content(lines);
    conclude(tr, conf, filled);
    return conf;
}

void generic_conf_n::start_generic_conf() { builder.build(); }

void generic_conf_n::stop_generic_conf() { builder.drop(); }

// ---- the build ----------------------------------------------------------------------------------

generic_conf_c::generic_conf_c() = default;

generic_conf_c::~generic_conf_c() = default;

bool generic_conf_c::_fill_content() {
    return global_conf && global_conf->_fill_content(xmc_template_n::lines());
}

bool generic_conf_c::_fill_content(const char* const* lines) {
    QVTR_SCOPE(tr, build_scope, source);
    utl_stream_c text;
    xmc_n::join_lines(lines, text, xmc_n::template_reserve);
    xml_item_c* root = nullptr;
    if (tree && tree->load_from_str(text.c_str() ? text.c_str() : "")) root = tree->get_root();
    if (!root) {
        tr.print(QVTR_FAILURE, __LINE__, "Unable to load generic xml file\n");
        return false;
    }

    // The labels behind the template's end mark name the two versions.
    const xmc_template_n::line_array_s& builtin = xmc_template_n::line_array();
    auto landmark = [&](xml_item_c*& field, xml_item_c* item, const char* name) {
        if (field)
            tr.print(QVTR_FAILURE, __LINE__, "Found superfluous XMC entry for %s\n", name);
        else
            field = item;
    };
    auto version = [&](std::uint32_t& field, xml_item_c* item, const char* label) {
        if (field) {
            tr.print(QVTR_FAILURE, __LINE__, "Found superfluous XMC entry for %s\n", label);
            return;
        }
        labeled_value_c* val = item->find_attribute(xmc_n::attr_val);
        if (!val)
            tr.print(QVTR_FAILURE, __LINE__, "Found invalid XMC entry for %s\n", label);
        else
            field = uint_of(val);
    };
    for (xml_item_c* item = xmc_tree_n::next_item(root, root); item;
         item = xmc_tree_n::next_item(item, root)) {
        const char* element = item->label;
        const char* label = xmc_tree_n::label_of(item);
        if (same(element, xmc_n::element_definitions) || same(element, xmc_n::element_commnent))
            continue;
        if (same(element, xmc_n::element_objects)) {
            landmark(objects_item, item, xmc_n::element_objects);
        } else if (same(element, xmc_n::element_enums)) {
            landmark(enums_item, item, xmc_n::element_enums);
        } else if (same(label, scenario_label)) {
            landmark(scenario_item, item, label);
        } else if (same(label, group_label)) {
            landmark(group_item, item, label);
        } else if (same(label, builtin.xmc_version_label)) {
            version(xmc_version, item, label);
        } else if (same(label, builtin.group_version_label)) {
            version(group_version, item, label);
        } else if (same(label, scenario_info_label)) {
            landmark(scenario_info_item, item, label);
        } else if (item->get_attribute_count() == 0) {
            tr.print(QVTR_FAILURE, __LINE__, "Found empty XMC entry %s\n", element ? element : "");
        }
    }

    constexpr const char* missing = "\nSource file doesn't include \"%s\" entry\n";
    if (!objects_item)
        tr.print(QVTR_FAILURE, __LINE__, "\nSource file doesn't include \"objects\" entry\n");
    if (!enums_item)
        tr.print(QVTR_FAILURE, __LINE__, "\nSource file doesn't include \"enums\" entry\n");
    if (!scenario_item) tr.print(QVTR_FAILURE, __LINE__, missing, scenario_label);
    if (!group_item) tr.print(QVTR_FAILURE, __LINE__, missing, group_label);
    if (!scenario_info_item) tr.print(QVTR_FAILURE, __LINE__, missing, scenario_info_label);
    if (!xmc_version) tr.print(QVTR_FAILURE, __LINE__, missing, builtin.xmc_version_label);

    if (!enums_item) return false;
    if (!_check_array_enums()) return false;
    if (!_check_tables_consistentcy()) return false;

    if (_build_host_tree(scenario_item) < 2) {
        tr.print(QVTR_FAILURE, __LINE__,
                 "\nUnable to find nodes \"%s\" in generic xml file having prop. \"%s\"\n\n",
                 host_label, index_label);
    } else {
        // The findings count, not the result: the template must give none.
        xmc_validity_c validity;
        _check_array_root_dirs(validity);
        if (validity.findings.get_count() == 0) return true;
        trace_findings(tr, __LINE__, validity);
    }
    tr.print(QVTR_FAILURE, __LINE__,
             "\nContent of generic xml file is found to be inconsistent\n\n");
    return false;
}

bool generic_conf_c::_check_array_enums() {
    QVTR_SCOPE(tr, build_scope, source);
    bool result = true;
    std::uint32_t number = 0;
    for (xml_item_c* child = enums_item ? enums_item->first_child_item() : nullptr; child;
         child = child->next_item(), ++number) {
        const char* label = attribute_text(child, xmc_n::attr_label);
        const char* val = attribute_text(child, xmc_n::attr_val);
        std::vector<std::string> pieces;
        if (val)
            xmc_n::for_each_enum_item(val,
                                      [&](std::string_view piece) { pieces.emplace_back(piece); });
        if (!label || !*label) {
            tr.print(QVTR_FAILURE, __LINE__, "Found unnamed enumerator #%u\n", number);
            result = false;
            continue;
        }
        if (!val || !*val) {
            tr.print(QVTR_FAILURE, __LINE__, "Enumerator #%u \"%s\" misses list items\n", number,
                     label);
            result = false;
            continue;
        }
        std::uint32_t enum_index = xmc_enum_c::find_enum(label);
        if (enum_index >= enum_total) {
            tr.print(QVTR_FAILURE, __LINE__, "Enumerator #%u \"%s\" is undefined in the code\n",
                     number, label);
            result = false;
            continue;
        }
        const xmc_enum_c& code = xmc_enums_n::enum_table[enum_index];
        if (pieces.size() != code.count) {
            tr.print(QVTR_FAILURE, __LINE__,
                     "Enumerator #%u \"%s\" has different number items (%u) from the code (%u)\n",
                     number, label, static_cast<unsigned>(pieces.size()),
                     static_cast<unsigned>(code.count));
            result = false;
        }
        for (std::uint32_t place = 0; place < pieces.size(); ++place) {
            const char* piece = pieces[place].c_str();
            std::uint32_t position = xmc_enum_c::find_item(enum_index, piece);
            if (position == xmc_enum_c::not_found) {
                tr.print(QVTR_FAILURE, __LINE__,
                         "Item %s of enumerator #%u \"%s\" is undefined in the code\n", piece,
                         number, label);
                result = false;
            } else if (position != place) {
                // The code's position comes first, so the words read the other way round.
                tr.print(QVTR_FAILURE, __LINE__,
                         "Item %s of enumerator #%u \"%s\" has wrong position %u, in the code "
                         "is %u\n",
                         piece, number, label, position, place);
                result = false;
            }
        }
    }
    // Too few enumerations pass: the line is a note, not a failure.
    if (number != enum_total)
        tr.print(QVTR_FAILURE, __LINE__,
                 "Set of enumerator has different number items (%u) from those in the code "
                 "(%u)\n",
                 number, enum_total);
    return result;
}

bool generic_conf_c::_check_tables_consistentcy() {
    QVTR_SCOPE(tr, build_scope, source);
    bool objects_ok = _check_object_tag_table();
    bool rows_ok = _check_scen_data_tables();
    bool data_ok = true;
    xml_item_c* root = tree ? tree->get_root() : nullptr;
    for (xml_item_c* item = root ? xmc_tree_n::next_item(root, root) : nullptr; item;
         item = xmc_tree_n::next_item(item, root)) {
        if (kind_of(item) != xmc_n::kind_data) continue;
        const char* label = nullptr;
        if (!_check_data_content(nullptr, item, true, &label) || !label || !*label) data_ok = false;
    }
    return objects_ok && rows_ok && data_ok;
}

bool generic_conf_c::_check_object_tag_table() { return _check_object_tag_table(object_tag_table); }

bool generic_conf_c::_check_object_tag_table(std::span<const object_tag_s> rows) {
    QVTR_SCOPE(tr, build_scope, source);
    auto count = static_cast<std::uint32_t>(rows.size());
    bool result = true;

    bool same_names = false;
    for (std::uint32_t i = 0; i < count; ++i) {
        for (std::uint32_t j = i + 1; j < count; ++j) {
            if (!same(rows[i].name, rows[j].name)) continue;
            tr.print(QVTR_FAILURE, __LINE__,
                     "Error, Same name \"%s\" entries #%d and #%d found in \"%s\"\n", rows[i].name,
                     static_cast<int>(i), static_cast<int>(j), object_table_name);
            same_names = true;
            break;
        }
    }
    if (same_names) {
        result = false;
    } else {
        for (std::uint32_t i = 0; i < count; ++i) {
            if (rows[i].index != i) {
                tr.print(QVTR_FAILURE, __LINE__, "Invalid first element in \"%s\", entry #%d\n",
                         object_table_name, static_cast<int>(i));
                return false;
            }
            // The two roots, `Scenario` and `Group`, are their own papa.
            if (i != row_scenario && i != row_group && rows[i].papa >= i) {
                tr.print(QVTR_FAILURE, __LINE__, "Invalid Papa element in \"%s\", entry #%d\n",
                         object_table_name, static_cast<int>(i));
                return false;
            }
        }
    }

    xml_item_c* root = tree ? tree->get_root() : nullptr;
    for (xml_item_c* item = root ? xmc_tree_n::next_item(root, root) : nullptr; item;
         item = xmc_tree_n::next_item(item, root)) {
        if (!xmc_tree_n::is_object(item)) continue;
        xmc_validity_c validity;
        bool ok = false;
        std::uint32_t item_id = 0;
        const char* name = _check_object_content_get_name(item, ok, &validity, &item_id);
        trace_findings(tr, __LINE__, validity);
        if (!name || !*name || !ok) {
            result = false;
            continue;
        }
        xml_item_c* papa = papa_of(item);
        if (!papa) {
            tr.print(QVTR_FAILURE, __LINE__, "No Papa object of \"%s\" is found in \"%s\"\n", name,
                     object_table_name);
            result = false;
            continue;
        }
        xmc_validity_c papa_validity;
        bool papa_ok = false;
        const char* papa_name = _check_object_content_get_name(papa, papa_ok, &papa_validity);
        if (!papa_name || !*papa_name || !papa_ok) {
            result = false;
            continue;
        }
        // The shared definitions, `Scenario` and `Group` stand directly in the root.
        if (same(papa_name, holder_label)) continue;
        std::uint32_t row = row_among(rows, name);
        if (row == count) {
            tr.print(QVTR_FAILURE, __LINE__, "Invalid object item \"%s\", not found in \"%s\"\n",
                     name, object_table_name);
            result = false;
            continue;
        }
        if (item_id == 0) {
            tr.print(QVTR_FAILURE, __LINE__, "Invalid ID string of \"%s\" \n", name);
            result = false;
            continue;
        }
        if (rows[row].id != 0 && rows[row].id != item_id) {
            tr.print(QVTR_FAILURE, __LINE__,
                     "Invalid ID %u  of object item \"%s\", not found in \"%s\"\n", item_id, name,
                     object_table_name);
            result = false;
            continue;
        }
        std::uint32_t papa_row = row_among(rows, papa_name);
        if (papa_row == count) {
            tr.print(QVTR_FAILURE, __LINE__,
                     "Invalid Papa object \"%s\" of \"%s\", not found in \"%s\"\n", papa_name, name,
                     object_table_name);
            result = false;
            continue;
        }
        // A host in a host and a HostProps in a HostProps nest; a title is no papa, so the
        // `Report` and `EventNotification` of `ManagerData` have `Scenario` above them.
        bool nested_same = row == papa_row && (row == row_host || row == row_host_props);
        bool manager_data =
            (row == row_report || row == row_event_notification) && papa_row == row_scenario;
        if (papa_row != rows[row].papa && !nested_same && !manager_data) {
            tr.print(QVTR_FAILURE, __LINE__,
                     "Inconsistent Papa object \"%s\" of \"%s\", found in \"%s\"\n", papa_name,
                     name, object_table_name);
            result = false;
        }
    }
    return result;
}

bool generic_conf_c::_check_scen_data_tables() {
    return _check_scen_data_tables(scenario_data_table, host_data_table);
}

bool generic_conf_c::_check_scen_data_tables(std::span<const scenario_data_s> scenario_rows,
                                             std::span<const host_data_s> host_rows) {
    QVTR_SCOPE(tr, build_scope, source);
    constexpr const char* format = "Invalid first element in \"%s\", entry #%d\n";
    for (std::size_t i = 0; i < scenario_rows.size(); ++i) {
        if (scenario_rows[i].index == i) continue;
        tr.print(QVTR_FAILURE, __LINE__, format, scenario_table_name, static_cast<int>(i));
        return false;
    }
    for (std::size_t i = 0; i < host_rows.size(); ++i) {
        if (host_rows[i].index == i) continue;
        tr.print(QVTR_FAILURE, __LINE__, format, host_table_name, static_cast<int>(i));
        return false;
    }
    return true;
}

// ---- default objects ----------------------------------------------------------------------------

xmc_item_c* generic_conf_c::get_default_object(std::uint32_t row, std::uint32_t product,
                                               std::uint32_t application, bool vetted_failback) {
    generic_conf_c* conf = the_generic_conf();
    if (!conf || row >= object_tag_count) return nullptr;
    xml_item_c* found = nullptr;
    host_index_tree_c* hosts = conf->host_tree;
    if (row == row_scenario) {
        found = conf->scenario_item;
    } else if (row == row_host) {
        host_index_node_s* node = hosts ? hosts->find_host_node(hosts->first_replica()) : nullptr;
        found = node ? node->host_item : nullptr;
    } else if (row == row_root_dir) {
        host_index_node_s* node =
            hosts ? hosts->find_host_node(hosts->next_host(MASTER_INDEX)) : nullptr;
        if (node && node->host_item)
            found = conf->find_tree_item(root_dir_label, true, node->host_item, false);
    } else if (std::uint32_t wanted = object_tag_table[row].id; wanted && conf->objects_item) {
        // By id alone: a definition stands for every object that shares its id.
        for (xml_item_c* child = conf->objects_item->first_child_item(); child && !found;
             child = child->next_item()) {
            labeled_value_c* id_attribute = child->find_attribute(xmc_n::attr_id);
            if (id_attribute && uint_of(id_attribute) == wanted) found = child;
        }
    }
    const xmc_item_c* typed = xmc_item_c::as_xmc(found);
    if (!typed) return nullptr;
    auto* copy = new xmc_item_c(*typed, true);
    conf->_set_appl_prod_defaults(copy, product, application, vetted_failback);
    _remove_irrelevant_items(copy, product, application, vetted_failback);
    return copy;
}

void generic_conf_c::_set_appl_prod_defaults(xml_item_c* item, std::uint32_t product_at,
                                             std::uint32_t application_at, bool flag) {
    QVTR_SCOPE(tr, "generic_conf_c::_set_appl_prod_defaults", source);
    if (!item) return;
    xmc_n::instance_s now = instance_of(product_at, application_at, flag);
    std::vector<xml_item_c*> switches;
    utl_stream_c description;
    for (xml_item_c* at = xmc_tree_n::next_item(item, item); at;
         at = xmc_tree_n::next_item(at, item)) {
        if (kind_of(at) == xmc_n::kind_data) {
            const char* label = xmc_tree_n::label_of(at);
            if (!label || !same(attribute_text(at, xmc_n::attr_val), xmc_n::value_variable))
                continue;
            if (same(label, xmc_n::variable_application))
                at->set_attribute(xmc_n::attr_val, now.application);
            else if (same(label, xmc_n::variable_product))
                at->set_attribute(xmc_n::attr_val, now.product);
            else if (same(label, xmc_n::variable_vetted_failback))
                at->set_attribute(xmc_n::attr_val, flag ? mix_n::True : mix_n::False);
            continue;
        }
        if (!same(at->label, xmc_n::element_switch_to_set_default)) continue;
        switches.push_back(at);
        const char* variable = attribute_text(at, xmc_n::attr_variable);
        const char* case_value = attribute_text(at, xmc_n::attr_case);
        const char* val = attribute_text(at, xmc_n::attr_val);
        if (!xmc_n::switch_applies(variable, case_value, val, now)) continue;
        xml_item_c* parent = at->parent_item();
        std::uint32_t parent_kind = kind_of(parent);
        bool on_object = parent_kind == xmc_n::kind_object || parent_kind == xmc_n::kind_external;
        if (parent_kind == xmc_n::kind_data) {
            parent->set_attribute(xmc_n::attr_val, val);
        } else if (on_object && same(attribute_text(at, xmc_n::attr_type), bool_type) &&
                   parent->find_attribute(xmc_n::attr_status)) {
            bool status = value_c(val).to_bool();
            parent->set_attribute(xmc_n::attr_status, status ? mix_n::True : mix_n::False);
        } else {
            tr.print(QVTR_FAILURE, __LINE__, "Unable to apply \"%s\" to %s\n",
                     xmc_n::element_switch_to_set_default,
                     get_item_description(parent, description));
        }
    }
    // Removed only now, so that every switch of a parent saw the parent whole.
    for (xml_item_c* done : switches) {
        if (xmc_item_c* typed = xmc_item_c::as_xmc(done))
            tree->remove(typed);
        else
            unlink_and_delete(done);
    }
}

void generic_conf_c::_remove_irrelevant_items(xml_item_c* item, std::uint32_t product,
                                              std::uint32_t application, bool vetted_failback) {
    QVTR_SCOPE(tr, "generic_conf_c::_remove_irrelevant_items", source);
    if (!item) return;
    xmc_n::instance_s now = instance_of(product, application, vetted_failback);
    std::vector<xml_item_c*> targets;
    for (xml_item_c* at = item->first_child_item(); at;) {
        bool condition =
            same(at->label, xmc_n::element_relevant) || same(at->label, xmc_n::element_irrelevant);
        if (!condition) {
            at = next_in_subtree(at, item);
            continue;
        }
        bool holds = xmc_n::condition_holds(attribute_text(at, xmc_n::attr_label),
                                            attribute_text(at, xmc_n::attr_val), now);
        xml_item_c* target =
            xmc_n::condition_removes_parent(at->label, holds) ? at->parent_item() : at;
        // A target listed before may lie inside this one, whose content goes now.
        std::erase_if(targets, [&](xml_item_c* listed) {
            return generic_tree_ct<xml_item_c>::is_ancestor(target, listed);
        });
        tree_n::remove_descendants<generic_node_c>(target,
                                                   [](generic_node_c* child) { delete child; });
        targets.push_back(target);
        at = target == item ? nullptr : past_subtree(target, item);
    }
    for (xml_item_c* target : targets) {
        if (target != item) unlink_and_delete(target);
    }
}

// ---- reloading one object of a scenario ---------------------------------------------------------

bool scenario_conf_c::reload_object(std::uint32_t object_row, std::uint64_t host) {
    QVTR_SCOPE(tr, "scenario_conf_c::reload_object", source);
    single_writer_lock_c write(scenario_lock);
    if (!_check_mixed_tree(nullptr)) return false;
    const char* name = object_row < object_tag_count ? object_tag_table[object_row].name : "";
    int shown_host = static_cast<int>(host);
    if (object_row >= object_tag_count) {
        tr.print(QVTR_FAILURE, __LINE__, "Unable to find object %s with index %d\n", name,
                 shown_host);
        return false;
    }
    if (object_row == row_scenario || object_row == row_host || object_row == row_root_dir) {
        tr.print(QVTR_FAILURE, __LINE__, "Unable to reload Basic object %s with index %d\n", name,
                 shown_host);
        return false;
    }
    xml_item_c* start = nullptr;
    if (object_row < row_host) {
        if (host != NO_HOST_INDEX) {
            tr.print(QVTR_FAILURE, __LINE__, "Unable to reload Scenario object %s with index %d\n",
                     name, shown_host);
            return false;
        }
    } else {
        if (host == NO_HOST_INDEX) {
            tr.print(QVTR_FAILURE, __LINE__,
                     "Unable to reload Host object %s, host index must be set\n", name);
            return false;
        }
        host_index_node_s* node = host_tree ? host_tree->find_host_node(host) : nullptr;
        start = node ? node->host_item : nullptr;
        if (!start) {
            tr.print(QVTR_FAILURE, __LINE__, "Unable to find host node with index %d\n",
                     shown_host);
            return false;
        }
    }
    xmc_item_c* found = xmc_item_c::as_xmc(find_tree_item(name, true, start, false));
    if (!found) {
        tr.print(QVTR_FAILURE, __LINE__, "Unable to find object %s with index %d\n", name,
                 shown_host);
        return false;
    }
    xmc_item_c* fresh =
        generic_conf_c::get_default_object(object_row, product, application, vetted_failback);
    if (!fresh) {
        tr.print(QVTR_FAILURE, __LINE__, "Unable to find default object %s with index %d\n", name,
                 shown_host);
        return false;
    }
    tree->replace(found, fresh, true);
    return true;
}
