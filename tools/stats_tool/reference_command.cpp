#include "reference_command.h"

#include "configuration/generic_conf.h"
#include "configuration/xmc_enums.h"
#include "configuration/xmc_grammar.h"
#include "configuration/xmc_item.h"
#include "utl/utl_stream.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#endif

namespace {

using xmc_enums_n::enum_application;
using xmc_enums_n::enum_product;

std::string text_of(const char* text) { return text ? text : ""; }

const char* attribute(const xml_item_c* item, const char* name) {
    labeled_value_c* value = item ? item->find_attribute(name) : nullptr;
    return value ? value->to_text() : nullptr;
}

bool is_element(const xml_item_c* item, const char* name) {
    return item && item->label && std::strcmp(item->label, name) == 0;
}

std::uint32_t kind_of(const xml_item_c* item) {
    const xmc_item_c* typed = xmc_item_c::as_xmc(item);
    return typed ? typed->kind : static_cast<std::uint32_t>(xmc_n::kind_other);
}

bool is_condition(const xml_item_c* item) {
    return is_element(item, xmc_n::element_relevant) || is_element(item, xmc_n::element_irrelevant);
}

// A text in a table cell: in backticks, a bar escaped; "empty" for the empty text.
std::string code(const std::string& text) {
    if (text.empty()) return "empty";
    std::string cell = "`";
    for (char c : text) cell += c == '|' ? std::string("\\|") : std::string(1, c);
    return cell + "`";
}

std::string joined(const std::vector<std::string>& parts, const char* separator) {
    std::string out;
    for (const std::string& part : parts) out += (out.empty() ? "" : separator) + part;
    return out;
}

std::string item_name(std::uint32_t enum_index, std::uint32_t position) {
    return xmc_enum_c::item_name(enum_index, position);
}

// ---- for which instances an item exists ---------------------------------------------------------

// The products, applications and flag values (False, True) for which an item survives the
// conditions of an instance: each condition tests one variable, so the item exists exactly for
// the combinations of the three sets.
struct relevance_s {
    std::vector<bool> products =
        std::vector<bool>(xmc_enums_n::enum_table[enum_product].count, true);
    std::vector<bool> applications =
        std::vector<bool>(xmc_enums_n::enum_table[enum_application].count, true);
    std::array<bool, 2> flags{true, true};

    void apply(const xml_item_c* condition) {
        const char* label = attribute(condition, xmc_n::attr_label);
        const char* val = attribute(condition, xmc_n::attr_val);
        auto removes = [&](const xmc_n::instance_s& now) {
            return xmc_n::condition_removes_parent(condition->label,
                                                   xmc_n::condition_holds(label, val, now));
        };
        xmc_n::instance_s now;
        if (text_of(label) == xmc_n::variable_product) {
            for (std::uint32_t p = 0; p < products.size(); ++p) {
                now.product = xmc_enum_c::item_name(enum_product, p);
                if (removes(now)) products[p] = false;
            }
        } else if (text_of(label) == xmc_n::variable_application) {
            for (std::uint32_t a = 0; a < applications.size(); ++a) {
                now.application = xmc_enum_c::item_name(enum_application, a);
                if (removes(now)) applications[a] = false;
            }
        } else if (text_of(label) == xmc_n::variable_vetted_failback) {
            for (int f = 0; f < 2; ++f) {
                now.vetted_failback = f == 1;
                if (removes(now)) flags[static_cast<std::size_t>(f)] = false;
            }
        } else if (removes(now)) {
            // A condition on any other variable never holds, whatever the instance.
            products.assign(products.size(), false);
        }
    }

    static std::string listed(const std::vector<bool>& set, std::uint32_t enum_index) {
        std::vector<std::string> in, out;
        for (std::uint32_t i = 0; i < set.size(); ++i)
            (set[i] ? in : out).push_back(item_name(enum_index, i));
        if (in.empty()) return "none";
        if (in.size() > out.size()) return "all but " + joined(out, ", ");
        return joined(in, ", ");
    }

    std::string text() const {
        std::vector<std::string> parts;
        auto all = [](const auto& set) {
            for (bool b : set)
                if (!b) return false;
            return true;
        };
        if (!all(products)) parts.push_back("Product: " + listed(products, enum_product));
        if (!all(applications))
            parts.push_back("Application: " + listed(applications, enum_application));
        if (!all(flags))
            parts.push_back(std::string("VettedFailback: ") + (flags[0]
                                                                   ? (flags[1] ? "all" : "False")
                                                                   : (flags[1] ? "True" : "none")));
        return parts.empty() ? "all" : joined(parts, "; ");
    }
};

// The conditions of the item and of all its ancestors.
relevance_s relevance_of(const xml_item_c* item) {
    relevance_s relevance;
    for (const xml_item_c* at = item; at; at = at->parent_item())
        for (const xml_item_c* child = at->first_child_item(); child; child = child->next_item())
            if (is_condition(child)) relevance.apply(child);
    return relevance;
}

// ---- the columns --------------------------------------------------------------------------------

// The shared definition of an id, for the entry type of a list.
const xml_item_c* definition_of(const generic_conf_c& conf, const std::string& id) {
    for (const xml_item_c* child = conf.objects_item ? conf.objects_item->first_child_item()
                                                     : nullptr;
         child; child = child->next_item())
        if (text_of(attribute(child, xmc_n::attr_id)) == id) return child;
    return nullptr;
}

std::string type_of(const generic_conf_c& conf, const xml_item_c* item) {
    if (kind_of(item) != xmc_n::kind_data) {
        std::string type = "object, id " + text_of(attribute(item, xmc_n::attr_id));
        return kind_of(item) == xmc_n::kind_external ? type + ", external" : type;
    }
    std::string type = text_of(attribute(item, xmc_n::attr_type));
    std::string val = text_of(attribute(item, xmc_n::attr_val));
    std::uint32_t enum_index = xmc_enum_c::enum_count;
    std::uint32_t position = xmc_enum_c::find_type(type.c_str(), enum_index);
    if (position == xmc_n::type_multi_entry) {
        std::uint32_t entry_enum = xmc_enum_c::enum_count;
        if (xmc_enum_c::find_type(val.c_str(), entry_enum) != xmc_n::type_unknown)
            return "list of " + code(val);
        const xml_item_c* definition = definition_of(conf, val);
        return "list of objects, id " + val +
               (definition ? " (" + code(text_of(attribute(definition, xmc_n::attr_label))) + ")"
                           : std::string(" (no definition)"));
    }
    if (position == xmc_n::type_enum && enum_index < xmc_enum_c::enum_count)
        return "enumeration " + code(type);
    return code(type);
}

// The defaults that the item's switches give it, grouped by variable and value in their order.
std::string switched_defaults(const xml_item_c* item) {
    std::vector<std::pair<std::string, std::vector<std::string>>> groups;
    for (const xml_item_c* child = item->first_child_item(); child; child = child->next_item()) {
        if (!is_element(child, xmc_n::element_switch_to_set_default)) continue;
        std::string variable = text_of(attribute(child, xmc_n::attr_variable));
        std::string key = code(text_of(attribute(child, xmc_n::attr_val))) + " for " + variable;
        std::string value = text_of(attribute(child, xmc_n::attr_case));
        auto group = groups.begin();
        while (group != groups.end() && group->first != key) ++group;
        if (group == groups.end())
            groups.emplace_back(key, std::vector<std::string>{value});
        else
            group->second.push_back(value);
    }
    std::vector<std::string> parts;
    for (const auto& [key, cases] : groups) parts.push_back(key + " " + joined(cases, ", "));
    return joined(parts, "; ");
}

std::string default_of(const xml_item_c* item) {
    std::string base;
    if (kind_of(item) == xmc_n::kind_data) {
        std::string val = text_of(attribute(item, xmc_n::attr_val));
        if (text_of(attribute(item, xmc_n::attr_type)) ==
            xmc_n::type_names[xmc_n::type_multi_entry]) {
            std::size_t entries = 0;
            for (const xml_item_c* child = item->first_child_item(); child;
                 child = child->next_item())
                if (!is_condition(child) &&
                    !is_element(child, xmc_n::element_switch_to_set_default))
                    ++entries;
            base = entries == 0   ? "no entries"
                   : entries == 1 ? "1 entry"
                                  : std::to_string(entries) + " entries";
        } else if (val == xmc_n::value_variable) {
            std::string label = text_of(attribute(item, xmc_n::attr_label));
            bool instance_value = label == xmc_n::variable_application ||
                                  label == xmc_n::variable_product ||
                                  label == xmc_n::variable_vetted_failback;
            base = instance_value ? "set at instantiation" : code(val);
        } else {
            base = code(val);
        }
    } else if (const char* status = attribute(item, xmc_n::attr_status)) {
        base = "status " + code(status);
    }
    std::string switched = switched_defaults(item);
    if (switched.empty()) return base;
    return (base.empty() ? "" : base + "; ") + switched;
}

std::string limits_of(const xml_item_c* item) {
    std::vector<std::string> parts;
    if (const char* minimum = attribute(item, xmc_n::attr_minimum))
        parts.push_back("minimum " + std::string(minimum));
    if (const char* maximum = attribute(item, xmc_n::attr_maximum))
        parts.push_back("maximum " + std::string(maximum));
    return joined(parts, ", ");
}

std::string yes_if_true(const xml_item_c* item, const char* name) {
    return text_of(attribute(item, name)) == xmc_n::word_true ? "yes" : "";
}

// The last level of an item's dotted name, for the lists of switched settings.
std::string short_name(const xml_item_c* item) {
    return code(text_of(attribute(item, xmc_n::attr_label)));
}

// ---- the settings switched by another -----------------------------------------------------------

// For each item named by a `check_if`, the items whose value is checked only when it has the
// value of their `is_equal`, found as validation finds them: the object and data labels below
// the nearest `Scenario` or `ReplNode` above the item that asks.
using check_if_map_t =
    std::map<const xml_item_c*, std::vector<std::pair<const xml_item_c*, std::string>>>;

check_if_map_t check_if_targets(const generic_conf_c& conf) {
    check_if_map_t targets;
    xml_item_c* root = conf.tree->get_root();
    for (xml_item_c* item = root; item; item = xmc_tree_n::next_item(item, root)) {
        const char* check_if = attribute(item, xmc_n::attr_check_if);
        const char* is_equal = attribute(item, xmc_n::attr_is_equal);
        std::string_view object_label, data_label;
        if (!is_equal || !xmc_n::split_check_if(check_if, object_label, data_label)) continue;
        xml_item_c* anchor = item->parent_item();
        while (anchor && !xmc_tree_n::is_object_labelled(anchor, "Scenario") &&
               !xmc_tree_n::is_object_labelled(anchor, "ReplNode"))
            anchor = anchor->parent_item();
        if (!anchor) continue;
        std::string object_text(object_label), data_text(data_label);
        xml_item_c* object = conf.find_tree_item(object_text.c_str(), true, anchor, false);
        xml_item_c* data =
            object ? xmc_conf_c::find_data_below(object, data_text.c_str()) : nullptr;
        if (data) targets[data].emplace_back(item, is_equal);
    }
    return targets;
}

// What the variables `Application`, `Product` and `VettedFailback` of `Scenario` or `Group`
// decide in their object at instantiation: how many defaults they switch and how many items
// exist only for some of their values.
std::string decided_by(const xml_item_c* variable_item) {
    std::string variable = text_of(attribute(variable_item, xmc_n::attr_label));
    xml_item_c* top = variable_item->parent_item();
    std::size_t defaults = 0, presence = 0;
    for (xml_item_c* item = top; item; item = xmc_tree_n::next_item(item, top)) {
        bool switched = false, conditioned = false;
        for (const xml_item_c* child = item->first_child_item(); child;
             child = child->next_item()) {
            std::string on = text_of(
                attribute(child, is_condition(child) ? xmc_n::attr_label : xmc_n::attr_variable));
            if (is_element(child, xmc_n::element_switch_to_set_default) && on == variable)
                switched = true;
            if (is_condition(child) && on == variable) conditioned = true;
        }
        defaults += switched;
        presence += conditioned;
    }
    std::vector<std::string> parts;
    if (defaults) parts.push_back("the default of " + std::to_string(defaults) + " settings");
    if (presence) parts.push_back("whether " + std::to_string(presence) + " settings exist");
    return parts.empty() ? "" : "at instantiation, " + joined(parts, " and ");
}

std::string switches_of(const xml_item_c* item, const check_if_map_t& targets) {
    std::vector<std::string> parts;
    if (const char* kids_if = attribute(item, xmc_n::attr_check_kids_if_val)) {
        std::vector<std::string> kids;
        for (const xml_item_c* child = item->first_child_item(); child; child = child->next_item())
            if (kind_of(child) == xmc_n::kind_data || xmc_tree_n::is_object(child))
                kids.push_back(short_name(child));
        if (!kids.empty())
            parts.push_back("checks of " + joined(kids, ", ") + " when " + code(kids_if));
    }
    if (auto found = targets.find(item); found != targets.end())
        for (const auto& [switched, value] : found->second)
            parts.push_back("check of " + short_name(switched) + " when " + code(value));
    if (xmc_tree_n::is_object(item) && attribute(item, xmc_n::attr_status))
        parts.push_back("checks of its content unless " + code(xmc_n::word_false));
    if (text_of(attribute(item, xmc_n::attr_val)) == xmc_n::value_variable) {
        std::string decided = decided_by(item);
        if (!decided.empty()) parts.push_back(decided);
    }
    return joined(parts, "; ");
}

// ---- the document -------------------------------------------------------------------------------

const char* const table_head =
    "| Setting | Type | Default | Limits | Mandatory | Prompted | Relevant for | Switches |\n"
    "|---|---|---|---|---|---|---|---|\n";

void add_row(std::string& out, const generic_conf_c& conf, const xml_item_c* item,
             const check_if_map_t& targets) {
    utl_stream_c path;
    item->get_path(path);
    std::vector<std::string> cells = {code(text_of(path.c_str())),
                                      type_of(conf, item),
                                      default_of(item),
                                      limits_of(item),
                                      yes_if_true(item, xmc_n::attr_mandatory),
                                      yes_if_true(item, xmc_n::attr_prompted),
                                      relevance_of(item).text(),
                                      switches_of(item, targets)};
    out += "| " + joined(cells, " | ") + " |\n";
}

// The rows of every data item and object below `top` (and `top` itself), in document order.
void add_rows(std::string& out, const generic_conf_c& conf, xml_item_c* top,
              const check_if_map_t& targets) {
    out += table_head;
    for (xml_item_c* item = top; item; item = xmc_tree_n::next_item(item, top))
        if (kind_of(item) == xmc_n::kind_data || xmc_tree_n::is_object(item))
            add_row(out, conf, item, targets);
}

} // namespace

std::string settings_reference() {
    generic_conf_c* conf = the_generic_conf();
    xml_item_c* root = conf ? conf->tree->get_root() : nullptr;
    if (!root) return {};
    check_if_map_t targets = check_if_targets(*conf);
    std::string out;
    out += "# Settings of the built-in template\n\n";
    out += "Generated by `stats_tool template --reference` from the generic configurator that "
           "the library\nbuilds from its built-in template at load (`XMC_VersionNumber` " +
           std::to_string(conf->xmc_version) + ", `Group_VersionNumber` " +
           std::to_string(conf->group_version) +
           ").\nDo not edit it by hand: a test compares it with the tool's output.\n\n";
    out += "Every data item and every object is a row, in the template's order. The columns:\n\n"
           "- Setting: the dotted name of the item, the labels from the root down (titles "
           "included).\n"
           "- Type: the data type, an enumeration (its items are listed at the end), a list "
           "with the type\n  of its entries, or an object with its id.\n"
           "- Default: the value in the template, an object's `status`, or the entries a list "
           "starts with;\n  then the defaults that `switch_to_set_default` gives it for some "
           "values of `Application`,\n  `Product` or `VettedFailback`. \"set at instantiation\" "
           "is the current value of that variable.\n"
           "- Limits: `minimum` and `maximum` of a `Number`.\n"
           "- Mandatory: a list that must have an entry, a value that must not be empty.\n"
           "- Prompted: a setting on which a user is to be asked.\n"
           "- Relevant for: the products, applications and `VettedFailback` values for which "
           "the item\n  exists in an instance, after the `relevant` and `irrelevant` conditions "
           "of the item and\n  of everything above it; \"all\" when none removes it.\n"
           "- Switches: the settings whose checks depend on this one's value: the children "
           "checked only\n  for one value (`check_kids_if_val`), the settings that name it in "
           "`check_if`, an object's\n  content, which is not checked with `status` `False`; "
           "and for the three variables, what they\n  decide at instantiation.\n";
    struct section_s {
        const char* title;
        xml_item_c* top;
    };
    std::vector<section_s> sections;
    std::vector<xml_item_c*> document_data;
    for (xml_item_c* child = root->first_child_item(); child; child = child->next_item())
        if (kind_of(child) == xmc_n::kind_data) document_data.push_back(child);
    out += "\n## Document\n\n";
    out += table_head;
    add_row(out, *conf, root, targets);
    for (xml_item_c* item : document_data) add_row(out, *conf, item, targets);
    sections = {{"Scenario", conf->scenario_item},
                {"Group", conf->group_item},
                {"Shared definitions", conf->objects_item}};
    for (const section_s& section : sections) {
        if (!section.top) continue;
        out += "\n## " + std::string(section.title) + "\n\n";
        add_rows(out, *conf, section.top, targets);
    }
    out += "\n## Enumerations\n\n| Enumeration | Items, by position from 0 |\n|---|---|\n";
    for (const xml_item_c* item = conf->enums_item ? conf->enums_item->first_child_item() : nullptr;
         item; item = item->next_item()) {
        std::vector<std::string> items;
        xmc_n::for_each_enum_item(text_of(attribute(item, xmc_n::attr_val)),
                                  [&](std::string_view piece) { items.emplace_back(piece); });
        for (std::string& entry : items) entry = code(entry);
        out += "| " + code(text_of(attribute(item, xmc_n::attr_label))) + " | " +
               joined(items, ", ") + " |\n";
    }
    return out;
}

int run_settings_reference() {
    std::string text = settings_reference();
    if (text.empty()) {
        std::fprintf(stderr, "stats_tool: the generic configurator was not built (its trace "
                             "tells why)\n");
        return 2;
    }
#if defined(_WIN32)
    // A text-mode stream would write each line feed as two bytes.
    _setmode(_fileno(stdout), _O_BINARY);
#endif
    bool written =
        std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    if (!written) std::fprintf(stderr, "stats_tool: the reference could not be written\n");
    return written ? 0 : 2;
}
