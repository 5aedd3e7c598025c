// Loads the input, NUL-terminated, as an XML string: through xml_document_c::load_from_str and
// through xml_tree_c::load_from_str. Beyond the sanitizers' findings it checks two properties:
// both loads agree (the tree's load is the document's load plus a conversion), and a tree that
// loaded writes a text that loads again and writes the same bytes once more. A string load drops
// element text, so nothing here meets the writer's form of text beside children.
#include "utl/utl_stream.h"
#include "xml/xml_doc.h"
#include "xml/xml_tree_templ.h"
#include "xml_walk.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

[[noreturn]] void fail(const char* what, const std::string& first, const std::string& second) {
    std::fprintf(stderr, "xml_load_str_fuzz: %s\n--- first:\n%s\n--- second:\n%s\n", what,
                 first.c_str(), second.c_str());
    std::abort();
}

std::string written(xml_tree_c& tree) {
    utl_stream_c out;
    tree.write(out, true);
    return std::string(out.c_str() ? out.c_str() : "", out.get_length());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);

    bool document_loaded;
    {
        xml_document_c document;
        document_loaded = document.load_from_str(text.c_str());
    }
    xml_tree_c tree;
    bool tree_loaded = tree.load_from_str(text.c_str());
    if (document_loaded != tree_loaded)
        fail("xml_document_c and xml_tree_c disagree on the load", text, "");
    // A document without a root (a comment first) writes nothing a load could take; a very deep
    // one would write hundreds of megabytes of indentation.
    if (!tree_loaded || !tree.get_root() ||
        xml_walk::indentation_bytes(tree.get_root()) > xml_walk::round_trip_indentation_limit)
        return 0;

    std::string first = written(tree);
    xml_tree_c again;
    if (!again.load_from_str(first.c_str())) fail("the written text does not load", first, text);
    std::string second = written(again);
    if (first != second) fail("writing the loaded text gives other bytes", first, second);
    return 0;
}
