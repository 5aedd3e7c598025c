// The help of stats_tool: the overview of its commands, and the usage of one command, both
// made from the command table.
#pragma once

#include "command.h"

// The overview on standard output: the synopsis, each command with its summary, the global
// options and the convention of the exit statuses.
void print_overview();

// A command's usage on standard output, ending with the table of its exit statuses.
void print_command_help(const command_s& command);

// `help [COMMAND]`: the overview, or the usage of COMMAND. 0 printed, 2 a usage error (a
// command that does not exist, or more than one).
int run_help_command(const invocation_s& call);
