// xml_make_inputs DIR: writes the inputs of the XML benchmarks, DIR/state.xml, template.xml and
// scenario.xml (see xml_inputs.h), and prints their sizes. The same bytes on every run.
#include "xml_inputs.h"

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s DIR\n", argv[0]);
        return 2;
    }
    if (!xml_inputs::write_all(argv[1])) return 1;
    for (const std::string& name : xml_inputs::names())
        std::printf("%s/%s.xml %llu bytes\n", argv[1], name.c_str(),
                    static_cast<unsigned long long>(xml_inputs::document(name).size()));
    return 0;
}
