// The get and set commands of stats_tool: one setting of a stored scenario, read through the
// scenario's data access or written through its setters by dotted name, the file then stored
// again in the writer's form.
#pragma once

#include "command.h"

// `get FILE NAME [--host N|--manager] [--json]`. 0 read, 1 no such setting or a setting that
// can't be read, 2 a usage error (a label several rows share is one), a FILE that does not
// exist or can't be loaded.
int run_get_command(const invocation_s& call);

// `set FILE NAME=VALUE [--host N|--manager] [--force] [--json]`. 0 stored, 1 a value refused
// (the file stays as it was), 2 a usage error, a FILE that does not exist, can't be loaded or
// can't be written.
int run_set_command(const invocation_s& call);
