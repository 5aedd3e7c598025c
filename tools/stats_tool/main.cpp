// stats_tool: the command line of the library. It loads the library the way an engine process
// does and asks its exports.
//
// Exit status: 0 yes / success, 1 a negative answer, 2 an error (usage, library not loadable).
#include "json_text.h"
#include "message_command.h"
#include "new_scenario_command.h"
#include "reference_command.h"
#include "set_state_command.h"
#include "setting_command.h"
#include "template_command.h"
#include "validate_command.h"

#include "files/file_manipulation.h"
#include "platform/os.h"
#include "stats_mng/load_order.h"
#include "stats_mng/stats_saver.h"
#include "stats_mng/stats_saver_ex.h"
#include "support/thl.h"

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr int exit_yes = 0;
constexpr int exit_no = 1;
constexpr int exit_error = 2;

const char* const usage_text =
    "usage: stats_tool [--library PATH] [--trace DIR] <command> ...\n"
    "\n"
    "commands:\n"
    "  state DIR [--json]   ask the three scenario queries about the scenario directory DIR\n"
    "  hold-lock DIR [--release-file FILE]\n"
    "                       take the engine's lock on the scenario DIR as the engine does and\n"
    "                       hold it until standard input closes (or a line \"stop\" comes), or\n"
    "                       until FILE exists\n"
    "  record-sync DIR --scenario-id N --host H --done|--not-done --time T\n"
    "                       record in DIR's state directory, in the per-host file\n"
    "                       <N>_stats.xml, whether host H's last synchronisation finished,\n"
    "                       and its time T, as the engine does\n"
    "  set-state DIR --scenario-id N --host H [--scenario-name NAME]\n"
    "            (--run | --stop | --sync-begin --time T | --sync-end --time T)\n"
    "                       write DIR's state file as the engine does when the scenario starts\n"
    "                       or stops, or a synchronisation begins or ends\n"
    "  set-state --scenario FILE --host H (--run | --stop | --sync-begin --time T |\n"
    "            --sync-end --time T)\n"
    "                       the same under each root directory of host H of a stored scenario\n"
    "  load-steps           list the start-up steps this program ran for its own commands\n"
    "  get FILE NAME [--host N|--manager] [--json]\n"
    "                       print one setting of the stored scenario FILE: NAME is a row of\n"
    "                       the scenario's (or, with --host or --manager, the hosts') table,\n"
    "                       as Object.label or a label of one row, or a dotted path\n"
    "  set FILE NAME=VALUE [--host N|--manager] [--force] [--json]\n"
    "                       write one setting and store FILE again; --force resets a fixed\n"
    "                       scenario setting; with --json a VALUE [\"a\", \"b\"] is a list\n"
    "  message ID... [--messages FILE]\n"
    "                       print the text of each message id from the message catalogue\n"
    "                       (default: ../share/stats_mng/stats_mng.msg beside this program,\n"
    "                       then the catalogue of the source tree it was built from)\n"
    "  template [--reference]\n"
    "                       print the built-in template, the XMC document the library loads;\n"
    "                       with --reference, a Markdown reference of its settings\n"
    "  new-scenario --product P --application A [--vetted-failback]\n"
    "                       print a stored scenario: the template's default Scenario for\n"
    "                       product P and application A (items of the enumerations Product\n"
    "                       and Application), ready to be stored, edited and validated\n"
    "  validate FILE [--json] [--messages FILE]\n"
    "                       check the stored scenario FILE and print every finding; --json\n"
    "                       prints them as a JSON array\n"
    "  --help               show this text\n"
    "\n"
    "options:\n"
    "  --library PATH       the library to load (default: stats_mng.dll / libstats_mng.so\n"
    "                       beside this program, then ../lib, then the system's search)\n"
    "  --trace DIR          write the library's trace to DIR/stats_mng.dll.log\n"
    "\n"
    "exit status: state: 0 a state was read, 1 no state could be read; hold-lock: 0 held and\n"
    "released, 1 the lock is held by another; record-sync: 0 written, 1 not written;\n"
    "set-state: 0 written, 1 a write failed (2 also when the scenario file can't be loaded);\n"
    "load-steps: 0 every step ran, 1 a step is missing; message: 0 every id has a text, 1 one\n"
    "has none; template, new-scenario: 0 printed; get: 0 read, 1 no such setting or it can't\n"
    "be read; set: 0 stored, 1 refused (the file stays as it was); 2 error (usage, a file that\n"
    "can't be read or written)\n";

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

std::string directory_of(const std::string& path) {
    std::size_t cut = path.find_last_of("/\\");
    return cut == std::string::npos ? std::string(".") : path.substr(0, cut);
}

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

int run_state(const library_s& library, const std::string& directory, bool json) {
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

// Takes the writer lock as the engine does and keeps it until told to let go.
int run_hold_lock(const std::string& directory, const std::string& release_file) {
    stats_saver_lock_c locker(directory.c_str());
    locker.init();
    if (!locker.lock(true)) {
        std::printf("cannot take the engine's lock on %s: another process holds it\n",
                    directory.c_str());
        return exit_no;
    }
    std::printf("holding the engine's lock on %s\n", directory.c_str());
    std::fflush(stdout);
    if (!release_file.empty()) {
        while (!file_manipulation_n::if_exists(release_file.c_str(), nullptr)) mix_n::sleep(10);
    } else {
        char line[64];
        while (std::fgets(line, sizeof line, stdin) && std::strncmp(line, "stop", 4) != 0) {
        }
    }
    return exit_yes;
}

// A whole decimal number in `text`, within [low, high].
bool parse_number(const std::string& text, long long low, long long high, long long& out) {
    if (text.empty()) return false;
    char* end = nullptr;
    errno = 0;
    long long value = std::strtoll(text.c_str(), &end, 10);
    if (errno || *end || value < low || value > high) return false;
    out = value;
    return true;
}

int run_record_sync(const std::string& directory, std::uint32_t scenario_id, std::uint32_t host,
                    bool done, std::int64_t time) {
    stats_saver_c saver;
    saver.scenario_id = scenario_id;
    saver.root_path.append(directory.c_str());
    saver.state_dir_name.append(StateDirName);
    if (!saver.set_sync_state(host, done, time)) {
        std::fprintf(stderr, "stats_tool: could not write the per-host record under %s\n",
                     directory.c_str());
        return exit_no;
    }
    utl_stream_c path;
    std::printf("recorded host %u %s at %lld in %s\n", host, done ? "done" : "not done",
                static_cast<long long>(time), saver._get_file_path(path));
    return exit_yes;
}

// The start-up steps this process ran, in the order they ran; the state command asks the loaded
// shared library instead, which starts itself.
int run_load_steps() {
    std::vector<int> journal = load_order_n::journal();
    std::size_t ran = 0;
    for (const load_order_n::step_s& step : load_order_n::steps()) {
        bool found = ran < journal.size() && journal[ran] == step.order;
        if (found) ++ran;
        std::printf("%3d %s %s\n", step.order, found ? "ran    " : "MISSING", step.what);
    }
    return ran == load_order_n::steps().size() ? exit_yes : exit_no;
}

int usage_error(const char* message) {
    std::fprintf(stderr, "stats_tool: %s\n\n%s", message, usage_text);
    return exit_error;
}

} // namespace

int main(int argc, char** argv) {
    // The tool's own commands use the library's classes, linked in: start them as the shared
    // library starts itself when it is loaded.
    load_order_n::library_scope_c library_core;
    std::vector<std::string> args(argv + 1, argv + argc);
    std::string library_path, trace_directory;
    std::vector<std::string> rest;
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--help" || args[i] == "-h") {
            std::fputs(usage_text, stdout);
            return exit_yes;
        }
        if ((args[i] == "--library" || args[i] == "--trace") && i + 1 < args.size()) {
            (args[i] == "--library" ? library_path : trace_directory) = args[i + 1];
            ++i;
        } else if (args[i] == "--library" || args[i] == "--trace") {
            return usage_error(("missing value after " + args[i]).c_str());
        } else {
            rest.push_back(args[i]);
        }
    }
    if (rest.empty()) return usage_error("no command given");

    const std::string& command = rest[0];
    if (command == "load-steps") {
        if (rest.size() > 1) return usage_error(("unexpected argument '" + rest[1] + "'").c_str());
        return run_load_steps();
    }
    if (command == "template") {
        bool reference = rest.size() > 1 && rest[1] == "--reference";
        std::size_t extra = reference ? 2 : 1;
        if (rest.size() > extra)
            return usage_error(("unexpected argument '" + rest[extra] + "'").c_str());
        return reference ? run_settings_reference() : run_template();
    }
    if (command == "new-scenario")
        return run_new_scenario(std::vector<std::string>(rest.begin() + 1, rest.end()));
    if (command == "message") {
        std::vector<std::string> ids;
        std::string file;
        for (std::size_t i = 1; i < rest.size(); ++i) {
            if (rest[i] == "--messages" && i + 1 < rest.size())
                file = rest[++i];
            else if (rest[i].rfind("--", 0) != 0)
                ids.push_back(rest[i]);
            else
                return usage_error(("unexpected argument '" + rest[i] + "'").c_str());
        }
        if (ids.empty()) return usage_error("message needs at least one id");
        return run_message(ids, file);
    }
    if (command == "get" || command == "set") return run_setting_command(rest);
    if (command == "validate")
        return run_validate(std::vector<std::string>(rest.begin() + 1, rest.end()));
    if (command == "hold-lock") {
        std::string directory, release_file;
        for (std::size_t i = 1; i < rest.size(); ++i) {
            if (rest[i] == "--release-file" && i + 1 < rest.size())
                release_file = rest[++i];
            else if (directory.empty())
                directory = rest[i];
            else
                return usage_error(("unexpected argument '" + rest[i] + "'").c_str());
        }
        if (directory.empty()) return usage_error("hold-lock needs a scenario directory");
        return run_hold_lock(directory, release_file);
    }
    if (command == "record-sync") {
        std::string directory;
        long long scenario_id = -1, host = -1, time = 0;
        int done = -1;
        bool have_time = false;
        for (std::size_t i = 1; i < rest.size(); ++i) {
            const std::string& a = rest[i];
            bool has_value = i + 1 < rest.size();
            if (a == "--done" || a == "--not-done") {
                done = a == "--done";
            } else if (a == "--scenario-id" && has_value) {
                if (!parse_number(rest[++i], 0, 0xFFFFFFFFll, scenario_id))
                    return usage_error("--scenario-id needs a number from 0 to 4294967295");
            } else if (a == "--host" && has_value) {
                if (!parse_number(rest[++i], 0, 0xFFFFFFFFll, host))
                    return usage_error("--host needs a number from 0 to 4294967295");
            } else if (a == "--time" && has_value) {
                if (!parse_number(rest[++i], LLONG_MIN, LLONG_MAX, time))
                    return usage_error("--time needs a signed 64-bit number");
                have_time = true;
            } else if (directory.empty() && a.rfind("--", 0) != 0) {
                directory = a;
            } else {
                return usage_error(("unexpected argument '" + a + "'").c_str());
            }
        }
        if (directory.empty()) return usage_error("record-sync needs a scenario directory");
        if (scenario_id < 0 || host < 0 || done < 0 || !have_time)
            return usage_error("record-sync needs --scenario-id, --host, --done or --not-done "
                               "and --time");
        return run_record_sync(directory, static_cast<std::uint32_t>(scenario_id),
                               static_cast<std::uint32_t>(host), done == 1, time);
    }
    if (command == "set-state") {
        set_state_request_s request;
        std::string wrong =
            parse_set_state(std::vector<std::string>(rest.begin() + 1, rest.end()), request);
        if (!wrong.empty()) return usage_error(wrong.c_str());
        return run_set_state(request);
    }
    if (command != "state") return usage_error(("unknown command '" + command + "'").c_str());
    bool json = false;
    std::string directory;
    for (std::size_t i = 1; i < rest.size(); ++i) {
        if (rest[i] == "--json")
            json = true;
        else if (directory.empty())
            directory = rest[i];
        else
            return usage_error(("unexpected argument '" + rest[i] + "'").c_str());
    }
    if (directory.empty()) return usage_error("state needs a scenario directory");

    library_s library;
    std::string why;
    if (!load(library_path, library, why)) {
        std::fprintf(stderr, "stats_tool: cannot load the library:\n%s", why.c_str());
        return exit_error;
    }
    if (!trace_directory.empty()) {
        std::string settings = trace_directory + "/stats_mng.trc";
        library.set_trc_file_log_path(settings.c_str(), trace_directory.c_str());
    }
    int status = run_state(library, directory, json);
    os::free_library(library.module);
    return status;
}
