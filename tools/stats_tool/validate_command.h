// The validate command of stats_tool: loads a stored scenario, checks it at both depths and
// lists what the checks found.
#pragma once

#include <string>
#include <vector>

// `args` are the command's own arguments: FILE [--json] [--messages FILE]. 0 when the scenario
// is valid, 1 when a check found it invalid, 2 when the file could not be read as a stored
// scenario (or for a usage error).
int run_validate(const std::vector<std::string>& args);
