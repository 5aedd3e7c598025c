// The get and set commands of stats_tool: one setting of a stored scenario, read through the
// scenario's data access or written through its setters by dotted name, the file then stored
// again in the writer's form.
#pragma once

#include <string>
#include <vector>

// `get FILE NAME [--host N|--manager] [--json]` and
// `set FILE NAME=VALUE [--host N|--manager] [--force] [--json]`; `args` starts with the
// command's name. Exit status: 0 read / stored, 1 no such setting, a setting that can't be read,
// or a value refused (the file stays as it was), 2 a usage error or a file that can't be read
// or written.
int run_setting_command(const std::vector<std::string>& args);
