// The built-in template: the one XMC document compiled into the library. It states every
// setting a scenario or a group can have, with its default, its type, its limits and the
// conditions under which it exists. It is held the way the generic configurator reads it: an
// array of constant lines without line ends, ended by an entry that is the empty string, and
// joined into one text with a line feed after each line. The two pointers behind the end mark
// are not text of the template; they name the two version settings the configurator keeps.
#pragma once

#include <cstddef>

class utl_stream_c;

namespace xmc_template_n {

// The lines of text, and the entries of the array: the lines and the end mark. Written one item
// per line (a childless item on one line, any other on its opening and its closing line), the
// contents come to 1436 lines, not the 1445 of xmc_n::template_line_count; nothing reads the
// count, as joining stops at the end mark, and the room made for the text follows this array.
inline constexpr std::size_t text_line_count = 1436;
inline constexpr std::size_t entry_count = text_line_count + 1;

// The array as it lies in static data, and the two label pointers that directly follow it.
struct line_array_s {
    const char* lines[entry_count];
    const char* xmc_version_label;   // "XMC_VersionNumber"
    const char* group_version_label; // "Group_VersionNumber"
};

// The whole array, end mark and labels included.
const line_array_s& line_array();
// The lines, ended by the empty entry; the array has no length of its own.
const char* const* lines();
// Appends the document text to `out`: each line and a line feed, up to the end mark, after
// making room for 8 bytes per entry. Returns the number of lines joined.
std::size_t join(utl_stream_c& out);

} // namespace xmc_template_n
