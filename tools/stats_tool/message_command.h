// The message command of stats_tool, and where the tool finds the message catalogue.
#pragma once

#include "command.h"

#include <string>
#include <vector>

// The catalogue to load: `given` when not empty; otherwise the installed one
// (<prefix>/share/stats_mng/stats_mng.msg beside <prefix>/bin/stats_tool), then the one of the
// source tree the tool was built from. Empty when none exists.
std::string find_message_file(const std::string& given);

// Loads the catalogue and prints "ID<tab>text" for each id; the lines the catalogue skips go to
// standard error. 0 when every id has a text of its own, 1 when one has none, 2 when there is
// no catalogue to read.
int run_message(const std::vector<std::string>& ids, const std::string& given_file);

// `message ID... [--messages FILE]`: run_message after the arguments are read and a given FILE
// is found to exist; 2 for a usage error or a FILE that does not exist.
int run_message_command(const invocation_s& call);
