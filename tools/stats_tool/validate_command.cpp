#include "validate_command.h"

#include "json_text.h"
#include "message_command.h"

#include "configuration/scenario_conf.h"
#include "configuration/scenario_loader.h"
#include "configuration/xmc_validity.h"
#include "utl/message.h"
#include "utl/message_store.h"

#include <cstdint>
#include <cstdio>
#include <string>

namespace {

constexpr int exit_valid = exit_yes;
constexpr int exit_invalid = exit_no;

std::string text_of(const utl_stream_c& stream) { return stream.c_str() ? stream.c_str() : ""; }

// One finding as a JSON object: `text` is what the finding says (its message's text, or its
// own words for code 36) and `line` that of the finding's item in the file, where the finding
// names an item the load made.
std::string finding_json(const ch_data_s& finding, const scenario_item_lines_c& lines) {
    utl_stream_c id;
    message_id_of(finding.code, id);
    std::string text = finding.code == ch_data_s::code_of_own_text
                           ? text_of(finding.text)
                           : text_of(message_c(text_of(id).c_str()).text);
    std::uint64_t line = lines.line_of(finding.tree_item);
    std::string json = "{\"host\": " + std::to_string(finding.host) + ", \"item\": ";
    json += finding.item == ch_data_s::no_item ? "-1" : std::to_string(finding.item);
    json += ", \"code\": " + std::to_string(finding.code);
    json += ", \"message_id\": " + json_string(text_of(id));
    json += ", \"name\": " + json_string(text_of(finding.name));
    json += ", \"peer_name\": " + json_string(text_of(finding.peer_name));
    json += ", \"text\": " + json_string(text);
    json += ", \"line\": " + (line ? std::to_string(line) : std::string("null")) + "}";
    return json;
}

} // namespace

int run_validate_command(const invocation_s& call) {
    const std::vector<std::string>& args = call.args;
    std::string file, messages;
    bool json = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--json") {
            json = true;
        } else if (args[i] == "--messages") {
            if (i + 1 >= args.size()) return usage_error(call, "missing value after " + args[i]);
            messages = args[++i];
        } else if (is_option(args[i])) {
            return usage_error(call, "unknown option '" + args[i] + "'");
        } else if (file.empty()) {
            file = args[i];
        } else {
            return usage_error(call, "unexpected argument '" + args[i] + "'");
        }
    }
    if (file.empty()) return usage_error(call, "missing FILE");
    if (!path_exists(file)) return does_not_exist(call, file);
    if (!messages.empty() && !path_exists(messages)) return does_not_exist(call, messages);

    // The texts of the findings come from the catalogue; without one each reads as the
    // library's fallback text, which is said once.
    std::string catalogue = find_message_file(messages);
    message_store_c::load_report_s report;
    if (!catalogue.empty()) report = message_store_c::load_file(catalogue.c_str());
    if (!report.read) {
        if (!messages.empty()) {
            std::fprintf(stderr, "stats_tool: validate: the message catalogue %s cannot be read\n",
                         messages.c_str());
            return exit_error;
        }
        std::fprintf(stderr, "stats_tool: validate: no message catalogue found; the findings "
                             "have no texts\n");
    }

    scenario_conf_c scenario;
    scenario_item_lines_c lines;
    scenario_load_result_s loaded = scenario_loader_n::load_file(scenario, file.c_str(), &lines);
    if (!loaded.ok()) {
        std::fprintf(stderr, "stats_tool: validate: %s\n", text_of(loaded.message).c_str());
        return exit_error;
    }

    bool consistent = scenario.check_consistency();
    xmc_validity_c validity;
    bool valid = scenario.check_xmc_validity(validity);

    std::uint64_t count = validity.findings.get_count();
    if (json) {
        std::string out = "[";
        for (ch_data_s* finding = validity.findings.first(); finding;
             finding = validity.findings.next(finding))
            out += (out.size() > 1 ? ",\n " : "") + finding_json(*finding, lines);
        out += "]\n";
        std::fputs(out.c_str(), stdout);
    } else {
        for (ch_data_s* finding = validity.findings.first(); finding;
             finding = validity.findings.next(finding)) {
            utl_stream_c printed;
            print_record(*finding, printed);
            std::fputs(text_of(printed).c_str(), stdout);
        }
        if (valid && consistent)
            std::printf("%s: valid\n", file.c_str());
        else
            std::printf("%s: invalid, %llu finding%s\n", file.c_str(),
                        static_cast<unsigned long long>(count), count == 1 ? "" : "s");
    }
    // The shape check tells its faults in the library's trace only.
    if (!consistent)
        std::fprintf(stderr,
                     "stats_tool: validate: %s is not well formed; the trace (--trace "
                     "DIR) names the items\n",
                     file.c_str());
    return valid && consistent ? exit_valid : exit_invalid;
}
