// mixed_xmc_xml_tree_c: loads and converts XMC into typed items, keeps the content of external
// objects plain, and writes it back.
#include "configuration/xmc_item.h"

#include "common/test_support.h"
#include "xml/xml_doc.h"

#include <gtest/gtest.h>

#include <string>

namespace {

const char* const scenario_text = "<?xml version=\"1.0\"?>\n"
                                  "<object label=\"Scenario\" id=\"1\">\n"
                                  "\t<data label=\"ScenarioID\" val=\"17\" type=\"Number\"/>\n"
                                  "\t<title label=\"Properties\">\n"
                                  "\t\t<data label=\"Product\" val=\"Ha\" type=\"Product\"/>\n"
                                  "\t\t<data val=\"x\" label=\"Name\" type=\"String\"/>\n"
                                  "\t</title>\n"
                                  "\t<object label=\"External\" id=\"1000\" external=\"True\">\n"
                                  "\t\t<object label=\"Inside\" id=\"2\">\n"
                                  "\t\t\t<data label=\"Deep\" val=\"1\" type=\"Number\"/>\n"
                                  "\t\t</object>\n"
                                  "\t</object>\n"
                                  "\t<object label=\"Report\" id=\"3500\" status=\"True\"/>\n"
                                  "</object>\n";

std::string written(mixed_xmc_xml_tree_c& tree) {
    utl_stream_c out;
    tree.write(out, true);
    return out.c_str() ? out.c_str() : "";
}

// Every item of the tree in pre-order, external content included, with whether it is XMC.
std::string shape(xml_item_c* root) {
    std::string out;
    for (xml_item_c* at = root; at;) {
        out += at->label;
        out += xmc_item_c::as_xmc(at) ? "+" : "-";
        out += " ";
        if (at->first_child) {
            at = at->first_child_item();
            continue;
        }
        while (at && at != root && !at->next) at = at->parent_item();
        if (!at || at == root) break;
        at = at->next_item();
    }
    return out;
}

void check_scenario(mixed_xmc_xml_tree_c& tree) {
    xmc_item_c* root = tree.get_root();
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->kind, 1u);
    EXPECT_TRUE(root->canonical);
    EXPECT_EQ(shape(root), "object+ data+ title+ data+ data+ object+ object- data- object+ ");
    auto* id = xmc_item_c::as_xmc(root->first_child);
    ASSERT_NE(id, nullptr);
    EXPECT_TRUE(id->canonical);
    EXPECT_EQ(id->value_type, 1u);
    auto* title = xmc_item_c::as_xmc(id->next);
    ASSERT_NE(title, nullptr);
    EXPECT_EQ(title->kind, 0u);
    auto* product = xmc_item_c::as_xmc(title->first_child);
    ASSERT_NE(product, nullptr);
    EXPECT_EQ(product->value_type, 0u);
    EXPECT_EQ(product->enum_index, 1u);
    auto* name = xmc_item_c::as_xmc(product->next);
    ASSERT_NE(name, nullptr);
    EXPECT_FALSE(name->canonical);
    ASSERT_NE(name->find_data_attribute("Name"), nullptr);
    EXPECT_STREQ(name->find_data_attribute("Name")->to_text(), "x");
    auto* external = xmc_item_c::as_xmc(title->next);
    ASSERT_NE(external, nullptr);
    EXPECT_EQ(external->kind, 3u);
    auto* report = xmc_item_c::as_xmc(external->next);
    ASSERT_NE(report, nullptr);
    EXPECT_TRUE(report->canonical);
}

} // namespace

TEST(MixedXmcXmlTree, LoadFromStringMakesTypedItems) {
    mixed_xmc_xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str(scenario_text));
    check_scenario(tree);
    EXPECT_STREQ(tree.get_version(), "1.0");
}

TEST(MixedXmcXmlTree, LoadFromAFileMakesTheSameItems) {
    test_support::temp_dir_c dir;
    std::string path = dir.join("scenario.xmc");
    test_support::write_file(path, scenario_text);
    mixed_xmc_xml_tree_c tree;
    ASSERT_TRUE(tree.load(path.c_str()));
    check_scenario(tree);
}

TEST(MixedXmcXmlTree, FromDocumentMakesTheSameItemsAsTheDirectLoad) {
    xml_document_c doc;
    ASSERT_TRUE(doc.load_from_str(scenario_text));
    mixed_xmc_xml_tree_c tree;
    tree.from_document(&doc);
    check_scenario(tree);
    mixed_xmc_xml_tree_c direct;
    ASSERT_TRUE(direct.load_from_str(scenario_text));
    EXPECT_TRUE(tree.is_equal(direct));
}

namespace {

// The external object among the root's children, or null.
xml_item_c* external_of(mixed_xmc_xml_tree_c& tree) {
    for (xml_item_c* at = tree.get_root()->first_child_item(); at; at = at->next_item())
        if (auto* x = xmc_item_c::as_xmc(at); x && x->kind == 3) return at;
    return nullptr;
}

// Whether any item of the subtree below `top` (not `top` itself) is an xmc_item_c.
bool has_xmc_below(xml_item_c* top) {
    for (xml_item_c* at = top->first_child_item(); at;) {
        if (xmc_item_c::as_xmc(at)) return true;
        if (at->first_child) {
            at = at->first_child_item();
            continue;
        }
        while (at != top && !at->next) at = at->parent_item();
        if (at == top) break;
        at = at->next_item();
    }
    return false;
}

} // namespace

TEST(MixedXmcXmlTree, ChildrenOfExternalAreNotXmcItems) {
    xml_document_c doc;
    ASSERT_TRUE(doc.load_from_str(scenario_text));
    mixed_xmc_xml_tree_c converted;
    converted.from_document(&doc);
    mixed_xmc_xml_tree_c loaded;
    ASSERT_TRUE(loaded.load_from_str(scenario_text));
    for (mixed_xmc_xml_tree_c* tree : {&converted, &loaded}) {
        SCOPED_TRACE(tree == &converted ? "from_document" : "load_from_str");
        ASSERT_NE(tree->get_root(), nullptr);
        xml_item_c* external = external_of(*tree);
        ASSERT_NE(external, nullptr);
        ASSERT_NE(external->first_child, nullptr);
        // An object element with label and id below an external object is plain XML all the
        // same, and so is everything below it.
        EXPECT_EQ(xmc_item_c::as_xmc(external->first_child), nullptr);
        EXPECT_STREQ(external->first_child_item()->label, "object");
        ASSERT_NE(external->first_child_item()->first_child, nullptr);
        EXPECT_STREQ(external->first_child_item()->first_child_item()->label, "data");
        EXPECT_FALSE(has_xmc_below(external));
    }
}

TEST(MixedXmcXmlTree, WalkDoesNotEnterExternalObjects) {
    mixed_xmc_xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str(scenario_text));
    std::string labels;
    for (xml_item_c* at = tree.get_root(); at; at = xmc_tree_n::next_item(at, tree.get_root())) {
        ASSERT_NE(xmc_item_c::as_xmc(at), nullptr);
        labeled_value_c* label = at->find_attribute("label");
        labels += label ? label->to_text() : "?";
        labels += " ";
    }
    EXPECT_EQ(labels, "Scenario ScenarioID Properties Product Name External Report ");
}

TEST(MixedXmcXmlTree, WritesWhatItLoaded) {
    mixed_xmc_xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str(scenario_text));
    std::string first = written(tree);
    mixed_xmc_xml_tree_c again;
    ASSERT_TRUE(again.load_from_str(first.c_str()));
    EXPECT_EQ(written(again), first);
    EXPECT_TRUE(again.is_equal(tree));
    EXPECT_NE(first.find("external=\"True\""), std::string::npos);
    EXPECT_NE(first.find("<data label=\"Deep\" val=\"1\" type=\"Number\""), std::string::npos);
}

TEST(MixedXmcXmlTree, ToDocumentGivesTheTreesVersionToADocumentWithout) {
    mixed_xmc_xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str("<?xml version=\"1.1\"?>\n<object label=\"a\" id=\"1\"/>\n"));
    xml_document_c doc;
    tree.to_document(&doc);
    EXPECT_STREQ(doc.get_version(), "1.1");
    ASSERT_NE(doc.get_root(), nullptr);
    EXPECT_STREQ(doc.get_root()->name, "object");
    xml_document_c versioned;
    versioned.set_version("2.0");
    tree.to_document(&versioned);
    EXPECT_STREQ(versioned.get_version(), "2.0");
}

TEST(MixedXmcXmlTree, TextOfAnItemBecomesATextNode) {
    mixed_xmc_xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str("<?xml version=\"1.0\"?>\n<object label=\"a\" id=\"1\"/>\n"));
    tree.get_root()->set_text("hello");
    xml_document_c doc;
    tree.to_document(&doc);
    ASSERT_NE(doc.get_root(), nullptr);
    EXPECT_EQ(doc.get_root()->type, xml_node_c::type_text);
    EXPECT_STREQ(doc.get_root()->text.c_str(), "hello");
}

TEST(MixedXmcXmlTree, ATreeWithARootKeepsIt) {
    mixed_xmc_xml_tree_c tree;
    ASSERT_TRUE(
        tree.load_from_str("<?xml version=\"1.0\"?>\n<object label=\"first\" id=\"1\"/>\n"));
    xml_document_c doc;
    ASSERT_TRUE(doc.load_from_str("<?xml version=\"1.0\"?>\n<data label=\"second\"/>\n"));
    tree.from_document(&doc);
    EXPECT_STREQ(tree.get_root()->find_attribute("label")->to_text(), "first");
}

TEST(MixedXmcXmlTree, ADocumentWithoutRootBuildsNothing) {
    mixed_xmc_xml_tree_c tree;
    xml_document_c doc;
    tree.from_document(&doc);
    tree.from_document(nullptr);
    EXPECT_EQ(tree.get_root(), nullptr);
}

TEST(MixedXmcXmlTree, ClearAndRemoveChildrenDeleteExternalContent) {
    mixed_xmc_xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str(scenario_text));
    tree.remove_children(tree.get_root());
    EXPECT_EQ(tree.get_root()->first_child, nullptr);
    ASSERT_TRUE(tree.get_root());
    tree.clear();
    EXPECT_EQ(tree.get_root(), nullptr);
    ASSERT_TRUE(tree.load_from_str(scenario_text));
    check_scenario(tree);
}

TEST(MixedXmcXmlTree, NestedExternalObjectsAndDeepDocuments) {
    std::string text = "<?xml version=\"1.0\"?>\n<object label=\"r\" id=\"1\">";
    const int depth = 100000;
    for (int i = 0; i < depth; ++i) text += "<title label=\"t\">";
    text += "<object external=\"\"><object external=\"\"><data label=\"x\"/></object></object>";
    for (int i = 0; i < depth; ++i) text += "</title>";
    text += "</object>\n";
    mixed_xmc_xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str(text.c_str()));
    xml_item_c* at = tree.get_root();
    for (int i = 0; i <= depth; ++i) at = at->first_child_item();
    auto* outer = xmc_item_c::as_xmc(at);
    ASSERT_NE(outer, nullptr);
    EXPECT_EQ(outer->kind, 3u);
    // Below an external object even an object with `external` is plain XML.
    EXPECT_EQ(xmc_item_c::as_xmc(at->first_child), nullptr);
    mixed_xmc_xml_tree_c copy;
    xml_document_c doc;
    tree.to_document(&doc);
    copy.from_document(&doc);
    EXPECT_TRUE(copy.is_equal(tree));
    EXPECT_GT(tree.get_xml_size(), text.size() / 2);
}
