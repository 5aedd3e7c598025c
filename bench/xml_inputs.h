// The inputs of the XML benchmarks, made by a fixed-seed generator so that every run and every
// machine measures the same bytes. Three sizes of the engine's XML, in the writer's style (one
// element per line, tab indentation, <a x="1"/> for an empty element):
//   state     about 300 bytes, a scenario state file, read at every query;
//   template  about 70 KB, nested objects with 3 to 6 attributes at depth 3 to 6, some entities;
//   scenario  about 5 MB, hosts, root directories and many file records at depth 4 to 8, some
//             elements with text;
//   attributes  about 1.5 MB, one element with 100,000 attributes: what keeps a load from
//             growing faster than its input where attributes pile up.
#pragma once

#include <string>
#include <vector>

namespace xml_inputs {

std::string state_document();
std::string template_document();
std::string scenario_document();
std::string attributes_document();

// The names of the inputs, in order of size, without the ".xml".
const std::vector<std::string>& names();
// The document named so; empty for an unknown name.
std::string document(const std::string& name);
// Writes <dir>/<name>.xml for each of them, making the directory; false on a failure,
// with a message on stderr.
bool write_all(const std::string& dir);

} // namespace xml_inputs
