// The state command of stats_tool: the library loaded as an engine process loads it, and its
// three answers about one scenario directory.
#pragma once

#include "command.h"

// `state DIR [--json]`: loads the library (the global --library and --trace apply), asks
// is_engine_active_for_scenario, is_sync_replicated and get_scenario_state_index about DIR
// and prints the answers. 0 a state was read, 1 none could be read, 2 a usage error or a
// library that cannot be loaded. A DIR that does not exist is asked about all the same (the
// library's answers for a missing path are what an engine would get), with a line on standard
// error that says it does not exist, and gives 1.
int run_state_command(const invocation_s& call);
