// Loads the input, NUL-terminated, into a mixed_xmc_xml_tree_c and judges the value of every
// data item against its type with data_fits_type. Beyond the sanitizers' findings it checks
// what the tree promises: the direct load and the load through a document's nodes agree; every
// item above an external object is an XMC item with the kind of its element, every item below
// one is plain; a data item's value lookup gives the same attribute by position (canonical) and
// by a scan.
#include "configuration/xmc_enums.h"
#include "configuration/xmc_item.h"
#include "xml/xml_doc.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

[[noreturn]] void fail(const char* what, const std::string& text) {
    std::fprintf(stderr, "xmc_tree_fuzz: %s\n--- input:\n%s\n", what, text.c_str());
    std::abort();
}

// The `val` of a data item found by a plain scan of its attributes, as a reader without the
// canonical shortcut would find it.
labeled_value_c* scanned_val(xml_item_c* item, const char* label) {
    labeled_value_c* own_label = item->find_attribute("label");
    if (!own_label || std::strcmp(own_label->to_text(), label) != 0) return nullptr;
    return item->find_attribute("val");
}

void judge(mixed_xmc_xml_tree_c& tree, const std::string& text) {
    xml_item_c* root = tree.get_root();
    for (xml_item_c* at = root; at; at = xmc_tree_n::next_item(at, root)) {
        xmc_item_c* item = xmc_item_c::as_xmc(at);
        if (!item) fail("a plain item outside an external object", text);
        std::uint32_t kind = xmc_n::kind_of_element(item->label);
        if (kind == xmc_n::kind_object && item->find_attribute("external"))
            kind = xmc_n::kind_external;
        if (item->kind != kind) fail("an item's kind is not that of its element", text);
        if (item->kind == xmc_n::kind_external) {
            for (xml_item_c* child = at->first_child_item(); child; child = child->next_item())
                if (xmc_item_c::as_xmc(child)) fail("an XMC item below an external object", text);
        }
        if (item->kind != xmc_n::kind_data) continue;
        labeled_value_c* label = item->find_attribute("label");
        if (!label) continue;
        std::string name = label->to_text();
        labeled_value_c* val = item->find_data_attribute(name.c_str());
        // Labels of attributes never repeat on an item, so the canonical positions hold the
        // same attributes that a scan finds.
        if (val != scanned_val(at, name.c_str()))
            fail("the value lookup and the scan disagree", text);
        if (!val) continue;
        std::string value = val->to_text();
        xmc_enum_c::data_fits_type(value.c_str(), item->value_type, item->enum_index, item);
        // The same text under every type the gate knows, and a few it does not.
        for (std::uint32_t type = 0; type <= 12; ++type)
            xmc_enum_c::data_fits_type(value.c_str(), type, item->enum_index, item);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);

    mixed_xmc_xml_tree_c tree;
    bool loaded = tree.load_from_str(text.c_str());

    xml_document_c document;
    bool document_loaded = document.load_from_str(text.c_str());
    if (loaded != document_loaded) fail("the tree and the document disagree on the load", text);
    if (!loaded || !tree.get_root()) return 0;

    mixed_xmc_xml_tree_c through_nodes;
    through_nodes.from_document(&document);
    if (!through_nodes.is_equal(tree)) fail("the direct load and from_document differ", text);

    judge(tree, text);
    return 0;
}
