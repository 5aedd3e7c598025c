#include "set_state_command.h"

#include "configuration/scenario_conf.h"
#include "configuration/scenario_loader.h"
#include "stats_mng/stats_saver.h"
#include "stats_mng/stats_saver_ex.h"

#include <climits>
#include <cstdio>

namespace {

const char* event_word(state_event_t event) {
    switch (event) {
    case state_event_t::run: return "run";
    case state_event_t::stop: return "stop";
    case state_event_t::sync_begin: return "sync-begin";
    case state_event_t::sync_end: return "sync-end";
    }
    return "?";
}

bool is_sync(state_event_t event) {
    return event == state_event_t::sync_begin || event == state_event_t::sync_end;
}

} // namespace

std::string parse_set_state(const std::vector<std::string>& args, set_state_request_s& request) {
    long long scenario_id = -1, host = -1, time = 0;
    int events = 0;
    bool have_time = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        bool takes_value = a == "--scenario-id" || a == "--host" || a == "--time" ||
                           a == "--scenario" || a == "--scenario-name";
        if (takes_value && i + 1 >= args.size()) return "missing value after " + a;
        if (a == "--run" || a == "--stop" || a == "--sync-begin" || a == "--sync-end") {
            ++events;
            request.event = a == "--run"          ? state_event_t::run
                            : a == "--stop"       ? state_event_t::stop
                            : a == "--sync-begin" ? state_event_t::sync_begin
                                                  : state_event_t::sync_end;
        } else if (a == "--scenario-id") {
            if (!parse_number(args[++i], 0, 0xFFFFFFFFll, scenario_id))
                return "--scenario-id needs a number from 0 to 4294967295";
        } else if (a == "--host") {
            if (!parse_number(args[++i], 0, 0xFFFFFFFFll, host))
                return "--host needs a number from 0 to 4294967295";
        } else if (a == "--time") {
            if (!parse_number(args[++i], LLONG_MIN, LLONG_MAX, time))
                return "--time needs a signed 64-bit number";
            have_time = true;
        } else if (a == "--scenario") {
            request.scenario_file = args[++i];
        } else if (a == "--scenario-name") {
            request.scenario_name = args[++i];
        } else if (is_option(a)) {
            return "unknown option '" + a + "'";
        } else if (request.directory.empty()) {
            request.directory = a;
        } else {
            return "unexpected argument '" + a + "'";
        }
    }
    if (request.directory.empty() && request.scenario_file.empty())
        return "missing DIR or --scenario FILE";
    if (!request.directory.empty() && !request.scenario_file.empty())
        return "DIR and --scenario FILE exclude each other";
    if (events == 0) return "missing one of --run, --stop, --sync-begin, --sync-end";
    if (events > 1) return "more than one of --run, --stop, --sync-begin, --sync-end";
    if (is_sync(request.event) != have_time)
        return is_sync(request.event) ? "--sync-begin and --sync-end need --time"
                                      : "--time goes with --sync-begin or --sync-end";
    if (host < 0) return "missing --host";
    if (request.scenario_file.empty() && scenario_id < 0) return "missing --scenario-id";
    if (!request.scenario_file.empty() && (scenario_id >= 0 || !request.scenario_name.empty()))
        return "--scenario-id and --scenario-name go with DIR: the stored scenario gives its own";
    request.host = static_cast<std::uint32_t>(host);
    request.scenario_id = static_cast<std::uint32_t>(scenario_id < 0 ? 0 : scenario_id);
    request.time = time;
    return {};
}

int run_set_state(const set_state_request_s& request) {
    stats_saver_ex_c saver;
    saver.state_dir_name.append(StateDirName);
    bool sync_done = request.event == state_event_t::sync_end;
    bool run = request.event == state_event_t::run;
    bool written = false;
    if (request.scenario_file.empty()) {
        saver.scenario_id = request.scenario_id;
        saver.scenario_name.append(request.scenario_name.c_str());
        saver.root_path.append(request.directory.c_str());
        utl_stream_c path;
        if (saver._get_file_path(path))
            written = is_sync(request.event)
                          ? saver._set_sync_state(path, request.host, sync_done, request.time)
                          : saver._set_state(path, request.host, run);
    } else {
        scenario_conf_c scenario;
        scenario_load_result_s loaded =
            scenario_loader_n::load_file(scenario, request.scenario_file.c_str());
        if (!loaded.ok()) {
            std::fprintf(stderr, "stats_tool: %s\n", loaded.message.c_str());
            return 2;
        }
        saver.conf = &scenario;
        saver.per_root_dir = true;
        saver.scenario_id = static_cast<std::uint32_t>(scenario.id);
        utl_stream_c name;
        saver.scenario_name.append(scenario._scenario_name(name));
        written = is_sync(request.event)
                      ? saver.set_sync_state(request.host, sync_done, request.time)
                      : saver.set_state(request.host, run);
        std::printf("%s for host %u under %llu root directories of %s: %s\n",
                    event_word(request.event), request.host,
                    static_cast<unsigned long long>(scenario.get_root_dir_count()),
                    request.scenario_file.c_str(), written ? "written" : "not written");
        return written ? 0 : 1;
    }
    utl_stream_c path;
    std::printf("%s for host %u in %s: %s\n", event_word(request.event), request.host,
                saver._get_file_path(path) ? path.c_str() : request.directory.c_str(),
                written ? "written" : "not written");
    return written ? 0 : 1;
}

int run_set_state_command(const invocation_s& call) {
    set_state_request_s request;
    std::string wrong = parse_set_state(call.args, request);
    if (!wrong.empty()) return usage_error(call, wrong);
    // The writes would make the whole path; the engine writes under a scenario that exists.
    const std::string& path =
        request.scenario_file.empty() ? request.directory : request.scenario_file;
    if (!path_exists(path)) return does_not_exist(call, path);
    return run_set_state(request);
}
