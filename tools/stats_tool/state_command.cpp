#include "state_command.h"

#include "json_text.h"

#include "platform/os.h"
#include "stats_mng/stats_saver_ex.h"

#include <cstdio>
#include <iterator>
#include <string>
#include <vector>

namespace {

#if defined(_WIN32)
constexpr const char* library_file = "stats_mng.dll";
#else
constexpr const char* library_file = "libstats_mng.so";
#endif

using bool_query_t = bool (*)(const char*);
using state_query_t = bool (*)(const char*, unsigned int*);
using trace_setter_t = bool (*)(const char*, const char*);

struct library_s {
    os::HMODULE module = nullptr;
    bool_query_t is_engine_active_for_scenario = nullptr;
    bool_query_t is_sync_replicated = nullptr;
    state_query_t get_scenario_state_index = nullptr;
    trace_setter_t set_trc_file_log_path = nullptr;
};

template <typename Function> bool bind(os::HMODULE module, const char* name, Function& target) {
    target = reinterpret_cast<Function>(os::find_symbol(module, name));
    return target != nullptr;
}

bool load(const std::string& requested, library_s& library, std::string& why) {
    std::vector<std::string> candidates;
    if (!requested.empty()) {
        candidates.push_back(requested);
    } else {
        std::string here = directory_of(os::executable_path());
        candidates = {here + "/" + library_file, here + "/../lib/" + library_file, library_file};
    }
    for (const std::string& candidate : candidates) {
        library.module = os::load_library(candidate.c_str());
        if (library.module) break;
        why += "  " + candidate + ": " + os::last_library_error() + "\n";
    }
    if (!library.module) return false;
    bool complete =
        bind(library.module, "is_engine_active_for_scenario",
             library.is_engine_active_for_scenario) &&
        bind(library.module, "is_sync_replicated", library.is_sync_replicated) &&
        bind(library.module, "get_scenario_state_index", library.get_scenario_state_index) &&
        bind(library.module, "set_trc_file_log_path", library.set_trc_file_log_path);
    if (!complete) why += "  an export is missing: " + os::last_library_error() + "\n";
    return complete;
}

int print_state(const library_s& library, const std::string& directory, bool json) {
    bool active = library.is_engine_active_for_scenario(directory.c_str());
    bool replicated = library.is_sync_replicated(directory.c_str());
    unsigned int index = 3;
    bool read = library.get_scenario_state_index(directory.c_str(), &index);
    const char* word = index < std::size(stats_saver_ex_c::state_names)
                           ? stats_saver_ex_c::state_names[index]
                           : "?";
    if (json) {
        std::printf("{\"scenario\": %s, \"engine_active\": %s, \"sync_replicated\": %s, "
                    "\"state_read\": %s, \"state_index\": %u, \"state\": %s}\n",
                    json_string(directory).c_str(), active ? "true" : "false",
                    replicated ? "true" : "false", read ? "true" : "false", index,
                    json_string(word).c_str());
    } else {
        std::printf("scenario:        %s\n", directory.c_str());
        std::printf("engine active:   %s\n", active ? "yes" : "no");
        std::printf("sync replicated: %s\n", replicated ? "yes" : "no");
        std::printf("state:           %s (%u)%s\n", word, index,
                    read ? "" : ", no state file read");
    }
    return read ? exit_yes : exit_no;
}

} // namespace

int run_state_command(const invocation_s& call) {
    bool json = false;
    std::string directory;
    for (const std::string& arg : call.args) {
        if (arg == "--json")
            json = true;
        else if (is_option(arg))
            return usage_error(call, "unknown option '" + arg + "'");
        else if (directory.empty())
            directory = arg;
        else
            return usage_error(call, "unexpected argument '" + arg + "'");
    }
    if (directory.empty()) return usage_error(call, "missing DIR");

    library_s library;
    std::string why;
    if (!load(call.library_path, library, why)) {
        std::fprintf(stderr, "stats_tool: cannot load the library:\n%s", why.c_str());
        return exit_error;
    }
    if (!call.trace_directory.empty()) {
        std::string settings = call.trace_directory + "/stats_mng.trc";
        library.set_trc_file_log_path(settings.c_str(), call.trace_directory.c_str());
    }
    bool exists = path_exists(directory);
    int status = print_state(library, directory, json);
    os::free_library(library.module);
    if (!exists) {
        std::fflush(stdout);
        std::fprintf(stderr, "stats_tool: state: %s does not exist\n", directory.c_str());
    }
    return status;
}
