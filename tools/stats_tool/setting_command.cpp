#include "setting_command.h"

#include "json_text.h"

#include "configuration/scenario_conf.h"
#include "configuration/scenario_loader.h"
#include "configuration/xmc_item.h"
#include "platform/os.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace xmc_enums_n;

namespace {

constexpr int exit_done = exit_yes;
constexpr int exit_refused = exit_no;

// Where a setting lives: the scenario's own level, a host, or the Manager.
struct target_s {
    bool host_data = false;
    std::uint64_t host = 0;
};

const char* object_of(std::uint32_t object) {
    return object < object_tag_count ? object_tag_table[object].name : "";
}

std::uint32_t row_count(const target_s& target) {
    return target.host_data ? host_data_count : scenario_data_count;
}
std::uint32_t row_object(const target_s& target, std::uint32_t row) {
    return target.host_data ? host_data_table[row].object : scenario_data_table[row].object;
}
const char* row_label(const target_s& target, std::uint32_t row) {
    return target.host_data ? host_data_table[row].label : scenario_data_table[row].label;
}

std::string row_name(const target_s& target, std::uint32_t row) {
    return std::string(object_of(row_object(target, row))) + "." + row_label(target, row);
}

// A row named `Object.label` (the case of the letters aside), or by its label alone when only
// one row has that label. `ambiguous` lists the rows a bare label fits when several do.
std::uint32_t find_row_by_name(const target_s& target, const std::string& name,
                               std::string& ambiguous) {
    std::uint32_t by_label = scenario_conf_c::not_found;
    int label_matches = 0;
    for (std::uint32_t row = 0; row < row_count(target); ++row) {
        if (os::_stricmp(row_name(target, row).c_str(), name.c_str()) == 0) return row;
        if (os::_stricmp(row_label(target, row), name.c_str()) == 0) {
            if (label_matches++ == 0) by_label = row;
            ambiguous += (ambiguous.empty() ? "" : ", ") + row_name(target, row);
        }
    }
    if (label_matches == 1) {
        ambiguous.clear();
        return by_label;
    }
    return scenario_conf_c::not_found;
}

// The item of the row for the target, or null when the scenario lacks it.
xml_item_c* item_of_row(scenario_conf_c& conf, const target_s& target, std::uint32_t row) {
    xml_item_c* start = nullptr;
    if (target.host_data && target.host != MANAGER_INDEX) {
        host_index_node_s* node = conf.host_tree->find_host_node(target.host);
        start = node ? node->host_item : nullptr;
        if (!start) return nullptr;
    }
    xml_item_c* out = nullptr;
    conf.find_property(object_of(row_object(target, row)), row_label(target, row), start, &out);
    return out;
}

// What xmc_value_c says when the text is read as the setting's type, for the types that have
// a conversion; empty when it reads, or when the type has none.
std::string conversion_words(const char* text, const xml_item_c* item, bool status_attribute) {
    const xmc_item_c* typed = xmc_item_c::as_xmc(item);
    std::uint32_t type = xmc_n::type_text, enumeration = enum_none;
    if (typed && typed->kind == xmc_n::kind_data) {
        type = typed->value_type;
        enumeration = typed->enum_index;
    } else if (status_attribute) {
        type = xmc_n::type_bool;
    }
    xmc_value_c value(text);
    switch (type) {
    case xmc_n::type_number: value.to_int64(); break;
    case xmc_n::type_bool: value.to_bool(); break;
    case xmc_n::type_enum:
        switch (enumeration) {
        case enum_product: value.to_product(); break;
        case enum_application: value.to_application(); break;
        case enum_config_mode: value.to_config_mode(); break;
        case enum_replication_mode: value.to_replication_mode(); break;
        case enum_bandwidth: value.to_bandwidth(); break;
        case enum_host_task: value.to_host_task(); break;
        case enum_schedule: value.to_schedule(); break;
        case enum_synchronization_type: value.to_synchronization_type(); break;
        case enum_virtual_hard_disk_type: value.to_virtual_hard_disk_type(); break;
        case enum_virtual_platform_type: value.to_virtual_platform_type(); break;
        case enum_cloud_instance_type: value.to_cloud_instance_type(); break;
        case enum_secure_communication_level: value.to_secure_communication_level(); break;
        default: break;
        }
        break;
    default: break;
    }
    return value.error_text.c_str() ? value.error_text.c_str() : "";
}

std::vector<std::string> entries_of(const xmc_value_c& value) {
    std::vector<std::string> entries;
    for (std::uint64_t i = 0; value.strings && i < value.strings->get_count(); ++i)
        entries.push_back(value.strings->at(i) ? value.strings->at(i) : "");
    return entries;
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        if (end > start) lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

struct options_s {
    std::string file;
    std::string name;
    std::string value; // set only
    bool has_value = false;
    target_s target;
    bool force = false;
    bool json = false;
};

// The options after the command's name; an empty result is fine, a message a usage error.
std::string parse(const std::vector<std::string>& args, bool is_set, options_s& options) {
    std::vector<std::string> positional;
    bool host_given = false, manager_given = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--json") {
            options.json = true;
        } else if (a == "--manager") {
            manager_given = true;
        } else if (a == "--force" && is_set) {
            options.force = true;
        } else if (a == "--host") {
            if (i + 1 >= args.size()) return "missing value after --host";
            const std::string& number = args[++i];
            char* end = nullptr;
            errno = 0;
            unsigned long long index = std::strtoull(number.c_str(), &end, 10);
            if (number.empty() || number[0] == '-' || errno || *end || index > 0xFFFFFFFFull)
                return "--host needs a number from 0 to 4294967295";
            options.target.host = index;
            host_given = true;
        } else if (is_option(a)) {
            return "unknown option '" + a + "'";
        } else {
            positional.push_back(a);
        }
    }
    if (host_given && manager_given) return "--host and --manager exclude each other";
    if (positional.empty()) return "missing FILE";
    if (positional.size() == 1) return is_set ? "missing NAME=VALUE" : "missing NAME";
    if (positional.size() > 2) return "unexpected argument '" + positional[2] + "'";
    options.file = positional[0];
    options.name = positional[1];
    if (is_set) {
        std::size_t equals = options.name.find('=');
        if (equals == std::string::npos) return "missing =VALUE after " + options.name;
        options.value = options.name.substr(equals + 1);
        options.name.resize(equals);
        options.has_value = true;
    }
    if (options.name.empty()) return "the setting's NAME is empty";
    options.target.host_data = host_given || manager_given;
    if (manager_given) options.target.host = MANAGER_INDEX;
    if (options.force && options.target.host_data)
        return "--force goes with the scenario's own settings: host settings have no fixed rows";
    return {};
}

// The row a NAME gives: a row name, else the dotted path of the row's item.
std::uint32_t resolve(scenario_conf_c& conf, const options_s& options, std::string& ambiguous) {
    std::uint32_t row = find_row_by_name(options.target, options.name, ambiguous);
    if (row != scenario_conf_c::not_found || !ambiguous.empty()) return row;
    return options.target.host_data ? conf.find_host_row(options.name.c_str(), options.target.host)
                                    : conf.find_scenario_row(options.name.c_str());
}

int run_get(const invocation_s& call, scenario_conf_c& conf, const options_s& options) {
    std::string ambiguous;
    std::uint32_t row = resolve(conf, options, ambiguous);
    if (!ambiguous.empty())
        return usage_error(call, "'" + options.name + "' names several settings: " + ambiguous);
    if (row == scenario_conf_c::not_found) {
        std::fprintf(stderr, "stats_tool: no setting is named %s\n", options.name.c_str());
        return exit_refused;
    }
    xmc_value_c value;
    if (options.target.host_data)
        conf.get_host_data(row, options.target.host, value);
    else
        conf.get_scenario_data(row, value);
    std::string name = row_name(options.target, row);
    if (value.lookup_failed) {
        const char* words = value.error_text.c_str() ? value.error_text.c_str() : "";
        if (options.json)
            std::printf("{\"name\": %s, \"row\": %u, \"error\": %s}\n", json_string(name).c_str(),
                        row, json_string(words).c_str());
        else
            std::fprintf(stderr, "stats_tool: %s\n", words);
        return exit_refused;
    }
    const char* type = value.type_name ? value.type_name : "";
    if (options.json) {
        std::string shown =
            value.strings ? json_array(entries_of(value)) : json_string(value.to_text());
        std::printf("{\"name\": %s, \"row\": %u, \"type\": %s, \"value\": %s}\n",
                    json_string(name).c_str(), row, json_string(type).c_str(), shown.c_str());
    } else {
        std::printf("%s\n", value.to_text());
    }
    return exit_done;
}

int run_set(const invocation_s& call, scenario_conf_c& conf, const options_s& options) {
    std::string ambiguous;
    std::uint32_t row = find_row_by_name(options.target, options.name, ambiguous);
    if (!ambiguous.empty())
        return usage_error(call, "'" + options.name + "' names several settings: " + ambiguous);
    // A row name stands for the dotted path its item has in this scenario.
    std::string full_name = options.name;
    xml_item_c* item = nullptr;
    if (row != scenario_conf_c::not_found) {
        item = item_of_row(conf, options.target, row);
        utl_stream_c path;
        if (item) full_name = item->get_path(path);
    } else {
        row = options.target.host_data ? conf.find_host_row(full_name.c_str(), options.target.host)
                                       : conf.find_scenario_row(full_name.c_str());
        if (row != scenario_conf_c::not_found) item = item_of_row(conf, options.target, row);
    }

    xmc_value_c value(options.value.c_str());
    if (options.json && !options.value.empty() && options.value[0] == '[') {
        std::vector<std::string> entries;
        std::string why;
        if (!parse_json_string_array(options.value, entries, why))
            return usage_error(call, "the list of " + options.name +
                                         " is no JSON array of strings: " + why);
        value.strings = new xmc_string_array_c;
        for (const std::string& entry : entries) value.strings->add(entry.c_str());
    }

    bool stored;
    if (row != scenario_conf_c::not_found && !item) {
        // The scenario lacks the row's item: the setter by row says so in its own words.
        stored = options.target.host_data ? conf.set_host_data(row, options.target.host, value)
                                          : conf.set_scenario_data(row, value, options.force);
    } else {
        stored = options.target.host_data
                     ? conf.set_host_data(full_name.c_str(), options.target.host, value)
                     : conf.set_scenario_data(full_name.c_str(), value, options.force);
    }

    std::string shown_name =
        row != scenario_conf_c::not_found ? row_name(options.target, row) : options.name;
    if (!stored) {
        std::vector<std::string> words = lines_of(scenario_conf_c::last_set_failure());
        if (row == scenario_conf_c::not_found)
            words.push_back("no setting is named " + options.name);
        // A refusal of the type check: the value's own words for its reading as that type.
        bool type_refused = std::strstr(scenario_conf_c::last_set_failure(), "type doesn't fit");
        if (item && !value.strings && type_refused) {
            std::string converted =
                conversion_words(options.value.c_str(), item,
                                 std::strcmp(row_label(options.target, row), "status") == 0);
            if (!converted.empty()) words.push_back(converted);
        }
        if (options.json) {
            std::printf("{\"name\": %s, \"stored\": false, \"words\": %s}\n",
                        json_string(shown_name).c_str(), json_array(words).c_str());
        } else {
            for (const std::string& line : words)
                std::fprintf(stderr, "stats_tool: %s\n", line.c_str());
        }
        return exit_refused;
    }
    if (!conf.tree->save_to_file(options.file.c_str())) {
        std::fprintf(stderr, "stats_tool: %s could not be written\n", options.file.c_str());
        return exit_error;
    }
    if (options.json)
        std::printf("{\"name\": %s, \"stored\": true}\n", json_string(shown_name).c_str());
    else
        std::printf("stored %s in %s\n", shown_name.c_str(), options.file.c_str());
    return exit_done;
}

// Reads the arguments, checks that FILE exists and loads it, then gets or sets.
int run_setting_command(const invocation_s& call, bool is_set) {
    options_s options;
    std::string problem = parse(call.args, is_set, options);
    if (!problem.empty()) return usage_error(call, problem);
    if (!path_exists(options.file)) return does_not_exist(call, options.file);
    scenario_conf_c conf;
    scenario_load_result_s loaded = scenario_loader_n::load_file(conf, options.file.c_str());
    if (!loaded.ok()) {
        std::fprintf(stderr, "stats_tool: %s\n", loaded.message.c_str());
        return exit_error;
    }
    return is_set ? run_set(call, conf, options) : run_get(call, conf, options);
}

} // namespace

int run_get_command(const invocation_s& call) { return run_setting_command(call, false); }

int run_set_command(const invocation_s& call) { return run_setting_command(call, true); }
