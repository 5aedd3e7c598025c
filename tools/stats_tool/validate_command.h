// The validate command of stats_tool: loads a stored scenario, checks it at both depths and
// lists what the checks found.
#pragma once

#include "command.h"

// `validate FILE [--json] [--messages FILE]`: 0 when the scenario is valid, 1 when a check found
// it invalid, 2 for a usage error or a file that does not exist or can't be read as a stored
// scenario.
int run_validate_command(const invocation_s& call);
