// The input of the XMC load measurements: about 5 MB shaped like a stored scenario (nested
// objects with titles and canonical data items of every type, hosts with their root
// directories, an external object with private XML, a few items in another attribute order),
// from a fixed-seed generator so that every run measures the same bytes.
#pragma once

#include <string>

namespace xmc_inputs {

std::string scenario_document();

} // namespace xmc_inputs
