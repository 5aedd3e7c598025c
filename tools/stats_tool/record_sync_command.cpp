#include "record_sync_command.h"

#include "stats_mng/stats_saver.h"
#include "utl/utl_stream.h"

#include <climits>
#include <cstdint>
#include <cstdio>
#include <string>

namespace {

int record_sync(const std::string& directory, std::uint32_t scenario_id, std::uint32_t host,
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

} // namespace

int run_record_sync_command(const invocation_s& call) {
    std::string directory;
    long long scenario_id = -1, host = -1, time = 0;
    int done = -1;
    bool have_time = false;
    const std::vector<std::string>& args = call.args;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        bool takes_value = a == "--scenario-id" || a == "--host" || a == "--time";
        if (takes_value && i + 1 >= args.size())
            return usage_error(call, "missing value after " + a);
        if (a == "--done" || a == "--not-done") {
            done = a == "--done";
        } else if (a == "--scenario-id") {
            if (!parse_number(args[++i], 0, 0xFFFFFFFFll, scenario_id))
                return usage_error(call, "--scenario-id needs a number from 0 to 4294967295");
        } else if (a == "--host") {
            if (!parse_number(args[++i], 0, 0xFFFFFFFFll, host))
                return usage_error(call, "--host needs a number from 0 to 4294967295");
        } else if (a == "--time") {
            if (!parse_number(args[++i], LLONG_MIN, LLONG_MAX, time))
                return usage_error(call, "--time needs a signed 64-bit number");
            have_time = true;
        } else if (is_option(a)) {
            return usage_error(call, "unknown option '" + a + "'");
        } else if (directory.empty()) {
            directory = a;
        } else {
            return usage_error(call, "unexpected argument '" + a + "'");
        }
    }
    if (directory.empty()) return usage_error(call, "missing DIR");
    if (scenario_id < 0) return usage_error(call, "missing --scenario-id");
    if (host < 0) return usage_error(call, "missing --host");
    if (done < 0) return usage_error(call, "missing --done or --not-done");
    if (!have_time) return usage_error(call, "missing --time");
    // The record would make the whole path; the engine writes under a scenario that exists.
    if (!path_exists(directory)) return does_not_exist(call, directory);
    return record_sync(directory, static_cast<std::uint32_t>(scenario_id),
                       static_cast<std::uint32_t>(host), done == 1, time);
}
