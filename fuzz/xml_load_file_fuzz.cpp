// Loads the input as an XML file: it is written to a scratch file, which xml_document_c::load and
// xml_tree_c::load read, so that the file reader's windows, its step back over a window's edge and
// the element text (kept by file loads only) are exercised. Both loads must agree: the tree's load
// is the document's load plus a conversion.
#include "fuzz_files.h"
#include "xml/xml_doc.h"
#include "xml/xml_tree_templ.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::filesystem::path input = fuzz_files::scratch_path("load");
    static const std::string input_utf8 = fuzz_files::utf8(input);
    fuzz_files::write_bytes(input, data, size);

    bool document_loaded;
    {
        xml_document_c document;
        document_loaded = document.load(input_utf8.c_str());
    }
    bool tree_loaded;
    {
        xml_tree_c tree;
        tree_loaded = tree.load(input_utf8.c_str());
    }
    fuzz_files::remove(input);
    if (document_loaded != tree_loaded) {
        std::fprintf(stderr, "xml_load_file_fuzz: xml_document_c %s, xml_tree_c %s\n",
                     document_loaded ? "loads" : "refuses", tree_loaded ? "loads" : "refuses");
        std::abort();
    }
    return 0;
}
