#include "message_command.h"

#include "files/file_manipulation.h"
#include "platform/os.h"
#include "utl/message.h"
#include "utl/message_store.h"

#include <cstdio>

std::string find_message_file(const std::string& given) {
    if (!given.empty()) return given;
    std::vector<std::string> candidates = {
        directory_of(os::executable_path()) + "/../share/stats_mng/stats_mng.msg",
        STATS_MNG_SOURCE_MESSAGE_FILE,
    };
    for (const std::string& candidate : candidates)
        if (file_manipulation_n::if_exists(candidate.c_str(), nullptr)) return candidate;
    return {};
}

int run_message(const std::vector<std::string>& ids, const std::string& given_file) {
    std::string file = find_message_file(given_file);
    message_store_c::load_report_s report;
    if (!file.empty()) report = message_store_c::load_file(file.c_str());
    if (!report.read) {
        std::fprintf(stderr, "stats_tool: no message catalogue could be read%s%s\n",
                     file.empty() ? "" : " at ", file.c_str());
        return exit_error;
    }
    for (const auto& skipped : report.skipped)
        std::fprintf(stderr, "stats_tool: %s line %llu skipped: %s\n", file.c_str(),
                     static_cast<unsigned long long>(skipped.line), skipped.reason.c_str());
    bool all_found = true;
    for (const std::string& id : ids) {
        message_c message(id.c_str());
        // The fallback text stands for an id without a text of its own.
        bool own = message.found && message_store_c::hash()->find(message.id.c_str());
        all_found = all_found && own;
        std::printf("%s\t%s\n", message.id.c_str(), message.text.c_str());
    }
    return all_found ? exit_yes : exit_no;
}

int run_message_command(const invocation_s& call) {
    std::vector<std::string> ids;
    std::string file;
    const std::vector<std::string>& args = call.args;
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--messages") {
            if (i + 1 >= args.size()) return usage_error(call, "missing value after " + args[i]);
            file = args[++i];
        } else if (is_option(args[i])) {
            return usage_error(call, "unknown option '" + args[i] + "'");
        } else {
            ids.push_back(args[i]);
        }
    }
    if (ids.empty()) return usage_error(call, "missing ID");
    if (!file.empty() && !path_exists(file)) return does_not_exist(call, file);
    return run_message(ids, file);
}
