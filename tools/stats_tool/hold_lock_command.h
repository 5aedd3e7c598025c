// The hold-lock command of stats_tool: the engine's lock on a scenario, taken and held as the
// engine holds it.
#pragma once

#include "command.h"

// `hold-lock DIR [--release-file FILE]`: takes the writer lock on DIR's state.lock, prints
// "holding the engine's lock on DIR" and holds it until standard input ends (or a line "stop"
// comes), or until FILE exists. 0 held and released, 1 another process holds the lock, 2 a
// usage error or a DIR that does not exist.
int run_hold_lock_command(const invocation_s& call);
