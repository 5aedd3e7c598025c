#include "message_command.h"

#include "files/file_manipulation.h"
#include "platform/os.h"
#include "utl/message.h"
#include "utl/message_store.h"

#include <cstdio>

namespace {

std::string directory_of(const std::string& path) {
    std::size_t cut = path.find_last_of("/\\");
    return cut == std::string::npos ? std::string(".") : path.substr(0, cut);
}

} // namespace

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
        return 2;
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
    return all_found ? 0 : 1;
}
