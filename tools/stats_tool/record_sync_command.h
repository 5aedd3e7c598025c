// The record-sync command of stats_tool: the per-host record of synchronisation results,
// written as the engine writes it.
#pragma once

#include "command.h"

// `record-sync DIR --scenario-id N --host H --done|--not-done --time T`: sets host H's element
// of DIR/.mr_qv_prefix/<N>_stats.xml (stats_saver_c::set_sync_state). 0 written, 1 not
// written, 2 a usage error or a DIR that does not exist.
int run_record_sync_command(const invocation_s& call);
