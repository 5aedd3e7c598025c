// The load-steps command of stats_tool: the start-up steps its own process ran.
#pragma once

#include "command.h"

// `load-steps`: lists every step of the start-up table, ran or MISSING, in the table's order.
// 0 every step ran, 1 a step is missing, 2 a usage error.
int run_load_steps_command(const invocation_s& call);
