// The set-state command of stats_tool: the engine's writes of a scenario's state file.
#pragma once

#include "command.h"

#include <cstdint>
#include <string>
#include <vector>

// What the engine reports: the scenario starts or stops, a synchronisation begins or ends.
enum class state_event_t { run, stop, sync_begin, sync_end };

struct set_state_request_s {
    // The one directory written under, or the stored scenario whose root directories are.
    std::string directory;
    std::string scenario_file;
    std::uint32_t scenario_id = 0;
    std::string scenario_name;
    std::uint32_t host = 1;
    state_event_t event = state_event_t::run;
    std::int64_t time = 0;
};

// Parses the command's arguments (those after "set-state"); an empty result on success, else
// what is wrong, in words for a usage error.
std::string parse_set_state(const std::vector<std::string>& args, set_state_request_s& request);

// Writes as the engine does: under one directory, a start or stop by _set_state and a
// synchronisation by _set_sync_state on that directory's state file; for a stored scenario,
// set_state or set_sync_state under each root directory of the host. 0 written, 1 a write
// failed, 2 the scenario file could not be loaded.
int run_set_state(const set_state_request_s& request);

// `set-state DIR --scenario-id N --host H [--scenario-name NAME] EVENT` or
// `set-state --scenario FILE --host H EVENT`: parses, checks that DIR or FILE exists and
// writes. 0 written, 1 a write failed, 2 a usage error, a DIR or FILE that does not exist or a
// scenario file that can't be loaded.
int run_set_state_command(const invocation_s& call);
