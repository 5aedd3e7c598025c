// The template command of stats_tool: the built-in template as the library holds it.
#pragma once

#include "command.h"

// Prints the built-in template's text, each line followed by a line feed and nothing else, so
// that the output is the very document the library loads. 0 when all of it was written, 2 when
// standard output failed.
int run_template();

// `template [--reference]`: run_template, or with --reference run_settings_reference; 2 for a
// usage error.
int run_template_command(const invocation_s& call);
