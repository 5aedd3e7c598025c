// template_lines_writer OUT: writes the built-in template's lines as C string literals, one per
// line, for the pugixml peer of load_time_bench, which thus holds the very text the library
// holds, in the same form (an array of line pointers).
#include "configuration/xmc_template.h"

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s OUT\n", argv[0]);
        return 2;
    }
    std::FILE* out = std::fopen(argv[1], "wb");
    if (!out) return 1;
    for (const char* const* line = xmc_template_n::lines(); **line; ++line) {
        std::fputc('"', out);
        for (const char* c = *line; *c; ++c) {
            if (*c == '"' || *c == '\\') std::fputc('\\', out);
            std::fputc(*c, out);
        }
        std::fputs("\",\n", out);
    }
    return std::fclose(out) == 0 ? 0 : 1;
}
