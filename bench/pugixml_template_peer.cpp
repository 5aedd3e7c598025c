// The peer of the library's load in load_time_bench: a shared library whose initialiser joins
// the built-in template's lines (held as the library holds them, an array of line pointers ended
// by an empty line) and parses the text into a pugixml DOM, which it keeps until it is
// unloaded. It does nothing else: no checks, no tables, no host tree.
#include <pugixml.hpp>

#include <iterator>
#include <string>

namespace {

const char* const template_lines[] = {
#include "template_lines.inc"
    ""};

struct peer_s {
    peer_s() {
        std::string text;
        text.reserve(8 * std::size(template_lines));
        for (const char* const* line = template_lines; **line; ++line) {
            text += *line;
            text += '\n';
        }
        parsed = static_cast<bool>(document.load_string(text.c_str()));
    }

    pugi::xml_document document;
    bool parsed = false;
} peer;

} // namespace

// Whether the initialiser parsed the text: the benchmark asks once, to know what it measures.
extern "C" __attribute__((visibility("default"))) bool pugixml_template_peer_parsed() {
    return peer.parsed && peer.document.first_child();
}
