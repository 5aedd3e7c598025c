// xml_one_load MODE PATH: one load of the XML file PATH, for scripts/xml-instructions, which
// counts the instructions of a run under callgrind. MODE is
//   none          the start-up below and nothing else: the baseline that is subtracted;
//   ours          xml_tree_c::load(PATH)              ours_str  xml_tree_c::load_from_str;
//   pugixml       xml_document::load_file(PATH)       pugixml_str  load_buffer;
//   tinyxml2      XMLDocument::LoadFile(PATH)         tinyxml2_str Parse;
//   libxml2       xmlReadFile(PATH) and xmlFreeDoc    libxml2_str  xmlReadMemory.
// Every mode, the baseline included, starts the same way: the file is read into memory (the
// string modes parse that copy) and libxml2's global tables are set up, so that the difference
// to the baseline is the load alone, the file modes' own opening and reading of the file
// included, and the tree's destruction.
#include "stats_mng/load_order.h"
#include "xml/xml_tree_templ.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <pugixml.hpp>
#include <tinyxml2.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

namespace {

bool load(const std::string& mode, const char* path, const std::string& text) {
    if (mode == "none") return true;
    if (mode == "ours") {
        xml_tree_c tree;
        return tree.load(path) && tree.get_root();
    }
    if (mode == "ours_str") {
        xml_tree_c tree;
        return tree.load_from_str(text.c_str()) && tree.get_root();
    }
    if (mode == "pugixml") {
        pugi::xml_document doc;
        return static_cast<bool>(doc.load_file(path));
    }
    if (mode == "pugixml_str") {
        pugi::xml_document doc;
        return static_cast<bool>(doc.load_buffer(text.data(), text.size()));
    }
    if (mode == "tinyxml2") {
        tinyxml2::XMLDocument doc;
        return doc.LoadFile(path) == tinyxml2::XML_SUCCESS;
    }
    if (mode == "tinyxml2_str") {
        tinyxml2::XMLDocument doc;
        return doc.Parse(text.data(), text.size()) == tinyxml2::XML_SUCCESS;
    }
    if (mode == "libxml2" || mode == "libxml2_str") {
        xmlDocPtr doc = mode == "libxml2"
                            ? xmlReadFile(path, nullptr, XML_PARSE_NONET)
                            : xmlReadMemory(text.data(), static_cast<int>(text.size()), path,
                                            nullptr, XML_PARSE_NONET);
        if (!doc) return false;
        xmlFreeDoc(doc);
        return true;
    }
    std::fprintf(stderr, "unknown mode %s\n", mode.c_str());
    return false;
}

} // namespace

int main(int argc, char** argv) {
    load_order_n::library_scope_c library;
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s none|ours|pugixml|tinyxml2|libxml2[_str] PATH\n", argv[0]);
        return 2;
    }
    std::ifstream file(argv[2], std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "cannot read %s\n", argv[2]);
        return 2;
    }
    std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    xmlInitParser();
    if (!load(argv[1], argv[2], text)) {
        std::fprintf(stderr, "%s: the load of %s failed\n", argv[1], argv[2]);
        return 1;
    }
    std::printf("%s %llu bytes\n", argv[1], static_cast<unsigned long long>(text.size()));
    return 0;
}
