// The little JSON that stats_tool speaks: strings written with their escapes, and arrays of
// strings read from the command line.
#pragma once

#include <string>
#include <vector>

// `text` as a JSON string, quotes included.
std::string json_string(const std::string& text);

// The strings as a JSON array: ["a", "b"].
std::string json_array(const std::vector<std::string>& items);

// Reads a JSON array whose elements are all strings, with blanks between the tokens. False,
// with `why` said, for anything else.
bool parse_json_string_array(const std::string& text, std::vector<std::string>& items,
                             std::string& why);
