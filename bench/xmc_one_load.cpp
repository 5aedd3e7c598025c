// xmc_one_load MODE [PATH]: one load of the XMC input, for scripts/xmc-instructions, which
// counts the instructions of a run under callgrind. MODE is
//   none    the start-up, the generation of the input, and nothing else (the baseline);
//   plain   xml_tree_c::load_from_str of the input;
//   mixed   mixed_xmc_xml_tree_c::load_from_str of the same bytes.
// With PATH the input is also written there, so that the script can tell its size.
#include "configuration/xmc_item.h"
#include "stats_mng/load_order.h"
#include "xmc_inputs.h"
#include "xml/xml_tree_templ.h"

#include <cstdio>
#include <fstream>
#include <string>

int main(int argc, char** argv) {
    load_order_n::library_scope_c library;
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s none|plain|mixed [PATH]\n", argv[0]);
        return 2;
    }
    const std::string mode = argv[1];
    const std::string text = xmc_inputs::scenario_document();
    if (argc > 2) std::ofstream(argv[2], std::ios::binary) << text;
    if (mode == "none") return 0;
    if (mode == "plain") {
        xml_tree_c tree;
        return tree.load_from_str(text.c_str()) && tree.get_root() ? 0 : 1;
    }
    if (mode == "mixed") {
        mixed_xmc_xml_tree_c tree;
        return tree.load_from_str(text.c_str()) && tree.get_root() ? 0 : 1;
    }
    std::fprintf(stderr, "unknown mode %s\n", mode.c_str());
    return 2;
}
