// The settings reference of stats_tool: every setting of the built-in template as the generic
// configurator holds it, in Markdown.
#pragma once

#include <string>

// The reference text: for each data item and object of the configurator's tree, in document
// order, its dotted name, type, default with the defaults that switches give it, limits,
// whether it is mandatory or prompted, the products, applications and VettedFailback values
// for which it exists, and the settings whose checks it switches. Empty when the configurator
// was not built.
std::string settings_reference();

// Prints settings_reference(), each line ended by one line feed. 0 when printed, 2 when the
// configurator was not built or standard output failed.
int run_settings_reference();
