// Generated stored scenarios of many hosts, made from the text of the valid two-host scenario of
// the tests (tests/scenarios/valid_ha_file_server.xml: Master Index 1, replica Index 2 below it,
// one root directory each). The replica's ReplNode is repeated with its own Index, host name,
// address and root directory path, so that every generated scenario stays valid.
#pragma once

#include <string>

namespace scenario_inputs {

enum class shape_t {
    fan,   // every replica directly below the Master
    chain, // each replica below the one before it, the first below the Master
};

const char* name_of(shape_t shape);

// The text of the two-host scenario, read from the source tree; empty when it can't be read.
std::string two_host_scenario();

// A scenario of `hosts` hosts (at least 2) of the given shape, made from `two_hosts`, the text
// that two_host_scenario() returns. Empty when that text is not of the expected form.
std::string scenario(const std::string& two_hosts, int hosts, shape_t shape);

} // namespace scenario_inputs
