// The new-scenario command of stats_tool: a stored scenario made from the built-in template.
#pragma once

#include "command.h"

// `new-scenario --product P --application A [--vetted-failback]`: prints a stored-scenario
// document, the template's root object `ConfigDataHolder` with its version and the default
// `Scenario` for product P and application A, in the writer's form. 0 when printed, 2 for a
// usage error, an unknown name or a configurator that was not built, each told in one line on
// standard error.
int run_new_scenario_command(const invocation_s& call);
