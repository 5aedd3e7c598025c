// The round trip of the file side: a document that loads from a file is stored, the stored text
// loads again, and storing that gives the same bytes; once through xml_document_c::store on a
// FILE_c and once through xml_tree_c::save_to_file. A difference aborts. The first store may
// change the text (the writer's indentation, entities, attributes that an element with text
// loses); from then on the text must be a fixed point.
//
// Some documents are left out, because the writer's form cannot carry them and that is the
// format, not a fault: a document without a root (a comment as the first tag) stores only the
// declaration, which does not load; an element with both text and children is written as
// <a>text</a> followed by the children, which then read as siblings or fail to close; and element
// text cut by a NUL byte (see below). Very deep documents are left out as well: their indentation
// alone would be hundreds of megabytes (xml_walk.h).
#include "files/file_modif.h"
#include "fuzz_files.h"
#include "xml/xml_doc.h"
#include "xml/xml_item.h"
#include "xml/xml_tree_templ.h"
#include "xml_walk.h"

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(const char* what, const std::string& first, const std::string& second) {
    std::fprintf(stderr, "xml_store_fuzz: %s\n--- first:\n%s\n--- second:\n%s\n", what,
                 first.c_str(), second.c_str());
    std::abort();
}

// Whether the tree holds something that the writer cannot carry: an item with both text and
// children (a text element is written without them), or a text that begins or ends with white
// space. A load trims text, but a NUL byte inside element text cuts it after the trimming, so
// such a text can keep a blank at its cut end; written out, it is trimmed by the next load.
// (Preorder walk without recursion: documents may nest deeper than a frame per level allows.)
bool holds_what_the_writer_cannot_carry(xml_item_c* root) {
    auto blank = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    for (xml_item_c* item = root; item;) {
        if (item->text && *item->text) {
            if (item->first_child) return true;
            std::size_t n = std::strlen(item->text);
            if (blank(item->text[0]) || blank(item->text[n - 1])) return true;
        }
        if (item->first_child) {
            item = item->first_child_item();
            continue;
        }
        while (item && item != root && !item->next) item = item->parent_item();
        if (!item || item == root) break;
        item = item->next_item();
    }
    return false;
}

// Whether a text element of the document had a NUL byte in its text: the text is cut there
// after the trimming, so it may keep a blank at the cut, or be empty and still mark the element
// as one with text (written `<a></a>`, read back as `<a/>`).
bool has_nul_in_text(xml_node_c* root) {
    for (xml_node_c* node = root; node;) {
        if (node->type == xml_node_c::type_text) {
            const char* text = node->text.c_str();
            std::size_t n = std::strlen(text);
            if (n == 0 || std::isspace(static_cast<unsigned char>(text[0])) ||
                std::isspace(static_cast<unsigned char>(text[n - 1])))
                return true;
        }
        if (node->first_child) {
            node = node->first_child_node();
            continue;
        }
        while (node && node != root && !node->next) node = node->parent_node();
        if (!node || node == root) break;
        node = node->next_node();
    }
    return false;
}

// Stores the document into `path` with FILE_c and gives back the bytes.
std::string stored(xml_document_c& document, const fs::path& path) {
    FILE_c file;
    if (!file.open(fuzz_files::utf8(path).c_str(), "w", nullptr, 0)) {
        std::fprintf(stderr, "xml_store_fuzz: cannot open %s\n", fuzz_files::utf8(path).c_str());
        std::exit(2);
    }
    bool ok = document.store(&file);
    file.close();
    if (!ok) fail("store failed", fuzz_files::read_bytes(path), "");
    return fuzz_files::read_bytes(path);
}

std::string saved(xml_tree_c& tree, const fs::path& path) {
    if (!tree.save_to_file(fuzz_files::utf8(path).c_str())) {
        std::fprintf(stderr, "xml_store_fuzz: cannot save %s\n", fuzz_files::utf8(path).c_str());
        std::exit(2);
    }
    return fuzz_files::read_bytes(path);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fs::path input = fuzz_files::scratch_path("input");
    static const fs::path output = fuzz_files::scratch_path("output");
    static const std::string input_utf8 = fuzz_files::utf8(input);
    static const std::string output_utf8 = fuzz_files::utf8(output);
    fuzz_files::write_bytes(input, data, size);

    xml_tree_c tree;
    if (!tree.load(input_utf8.c_str()) || !tree.get_root() ||
        holds_what_the_writer_cannot_carry(tree.get_root()) ||
        xml_walk::indentation_bytes(tree.get_root()) > xml_walk::round_trip_indentation_limit) {
        fuzz_files::remove(input);
        return 0;
    }

    // The document's own store.
    xml_document_c document;
    if (!document.load(input_utf8.c_str()))
        fail("xml_tree_c loads, xml_document_c does not", "", "");
    if (has_nul_in_text(document.get_root())) {
        fuzz_files::remove(input);
        return 0;
    }
    std::string first = stored(document, output);
    xml_document_c reloaded;
    if (!reloaded.load(output_utf8.c_str())) fail("the stored text does not load", first, "");
    std::string second = stored(reloaded, input);
    if (first != second) fail("storing the stored text again gives other bytes", first, second);

    // The tree's save.
    first = saved(tree, output);
    xml_tree_c tree_reloaded;
    if (!tree_reloaded.load(output_utf8.c_str())) fail("the saved text does not load", first, "");
    second = saved(tree_reloaded, input);
    if (first != second) fail("saving the saved text again gives other bytes", first, second);

    fuzz_files::remove(input);
    fuzz_files::remove(output);
    return 0;
}
