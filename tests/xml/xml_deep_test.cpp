// Depth: documents nested a million levels deep load from a string and from a file and are
// destroyed, as nodes and as items; with the last closing tag missing they are refused. Items
// of that depth copy, count, compare, search and convert without recursion. The writer's output
// grows with the square of the depth, so it is stored at depth 20,000, on a thread whose stack
// could not hold one frame per level.
#include "common/stack_thread.h"
#include "common/test_support.h"
#include "files/file_modif.h"
#include "utl/container.h"
#include "utl/container_temp.h"
#include "utl/utl_stream.h"
#include "utl/value.h"
#include "xml/xml_doc.h"
#include "xml/xml_item.h"
#include "xml/xml_node.h"
#include "xml/xml_tree_templ.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace {

using test_support::temp_dir_c;
using test_support::write_file;

constexpr std::uint64_t million = 1000000;
const std::string decl = "<?xml version=\"1.0\"?>";

// `depth` elements, each inside the one before: `a` elements around one `b`. Without
// `close_last` the outermost closing tag is missing.
std::string nested(std::uint64_t depth, bool close_last) {
    std::string text = decl;
    text.reserve(static_cast<std::size_t>(depth * 7 + 64));
    for (std::uint64_t i = 0; i + 1 < depth; ++i) text += "<a>";
    text += "<b/>";
    std::uint64_t closing = depth - 1 - (close_last ? 0 : 1);
    for (std::uint64_t i = 0; i < closing; ++i) text += "</a>";
    return text;
}

// Number of nodes on the first-child chain from `top`, and the last one.
template <class N> std::uint64_t chain_length(const N* top, const N** last) {
    std::uint64_t count = 0;
    const N* at = top;
    while (at) {
        ++count;
        *last = at;
        if (at->next) return 0; // not a chain
        at = static_cast<const N*>(at->first_child);
    }
    return count;
}

void expect_deep_document(const xml_document_c& doc, std::uint64_t depth) {
    const node_c* last = nullptr;
    ASSERT_NE(doc.get_root(), nullptr);
    EXPECT_STREQ(doc.get_root()->name, "a");
    EXPECT_EQ(chain_length<node_c>(doc.get_root(), &last), depth);
    ASSERT_NE(last, nullptr);
    EXPECT_STREQ(last->name, "b");
}

void expect_deep_tree(const xml_tree_c& tree, std::uint64_t depth) {
    const generic_node_c* last = nullptr;
    ASSERT_NE(tree.get_root(), nullptr);
    EXPECT_STREQ(tree.get_root()->label, "a");
    EXPECT_EQ(chain_length<generic_node_c>(tree.get_root(), &last), depth);
    ASSERT_NE(last, nullptr);
    EXPECT_STREQ(static_cast<const xml_item_c*>(last)->label, "b");
}

// A chain of `depth` items labelled `a`, the last one `b`.
xml_item_c* item_chain(std::uint64_t depth) {
    auto* root = new xml_item_c("a");
    xml_item_c* at = root;
    for (std::uint64_t i = 1; i < depth; ++i)
        at = xml_item_c::create_child(i + 1 < depth ? "a" : "b", at);
    return root;
}

// The deepest item of a chain.
xml_item_c* deepest(xml_item_c* top) {
    while (top->first_child) top = top->first_child_item();
    return top;
}

} // namespace

// ---- loading a million levels

TEST(xml_deep, million_levels_from_a_string_load_as_a_document) {
    std::string text = nested(million, true);
    {
        xml_document_c doc;
        ASSERT_TRUE(doc.load_from_str(text.c_str()));
        expect_deep_document(doc, million);
    }
    SUCCEED() << "destroyed";
}

TEST(xml_deep, million_levels_from_a_file_load_as_a_document) {
    temp_dir_c dir;
    std::string path = dir.join("deep.xml");
    write_file(path, nested(million, true));
    {
        xml_document_c doc;
        ASSERT_TRUE(doc.load(path.c_str()));
        expect_deep_document(doc, million);
    }
    SUCCEED() << "destroyed";
}

TEST(xml_deep, million_levels_from_a_string_load_as_a_tree) {
    std::string text = nested(million, true);
    {
        xml_tree_c tree;
        ASSERT_TRUE(tree.load_from_str(text.c_str()));
        expect_deep_tree(tree, million);
    }
    SUCCEED() << "destroyed";
}

TEST(xml_deep, million_levels_from_a_file_load_as_a_tree) {
    temp_dir_c dir;
    std::string path = dir.join("deep.xml");
    write_file(path, nested(million, true));
    {
        xml_tree_c tree;
        ASSERT_TRUE(tree.load(path.c_str()));
        expect_deep_tree(tree, million);
    }
    SUCCEED() << "destroyed";
}

TEST(xml_deep, million_levels_without_the_last_closing_tag_refused_from_a_string) {
    std::string text = nested(million, false);
    xml_document_c doc;
    EXPECT_FALSE(doc.load_from_str(text.c_str()));
    xml_tree_c tree;
    EXPECT_FALSE(tree.load_from_str(text.c_str()));
    EXPECT_EQ(tree.get_root(), nullptr);
}

TEST(xml_deep, million_levels_without_the_last_closing_tag_refused_from_a_file) {
    temp_dir_c dir;
    std::string path = dir.join("deep.xml");
    write_file(path, nested(million, false));
    xml_document_c doc;
    EXPECT_FALSE(doc.load(path.c_str()));
    xml_tree_c tree;
    EXPECT_FALSE(tree.load(path.c_str()));
    EXPECT_EQ(tree.get_root(), nullptr);
}

TEST(xml_deep, million_levels_built_by_add_node_are_destroyed) {
    {
        xml_document_c doc;
        auto* parent = new xml_node_c("a");
        ASSERT_TRUE(doc.add_node(parent, nullptr));
        for (std::uint64_t i = 1; i < million; ++i) {
            auto* child = new xml_node_c(i + 1 < million ? "a" : "b");
            ASSERT_TRUE(doc.add_node(child, parent));
            parent = child;
        }
        expect_deep_document(doc, million);
        EXPECT_EQ(parent->get_depth(), million - 1);
    }
    SUCCEED() << "destroyed";
}

// ---- items a million levels deep

TEST(xml_deep, million_levels_item_deep_copy) {
    std::unique_ptr<xml_item_c> root(item_chain(million));
    deepest(root.get())->set_attribute("k", 7);
    deepest(root.get())->set_text("dropped");
    {
        xml_item_c copy(*root, true);
        EXPECT_EQ(get_children_count(&copy, true), million - 1);
        xml_item_c* last = deepest(&copy);
        EXPECT_STREQ(last->label, "b");
        ASSERT_NE(last->find_attribute("k"), nullptr);
        EXPECT_STREQ(last->find_attribute("k")->to_text(), "7");
        EXPECT_EQ(last->text, nullptr);
        EXPECT_TRUE(copy.is_equal(*root));
    }
    SUCCEED() << "copy destroyed";
}

TEST(xml_deep, million_levels_item_children_count) {
    std::unique_ptr<xml_item_c> root(item_chain(million));
    EXPECT_EQ(get_children_count(root.get(), true), million - 1);
    EXPECT_EQ(get_children_count(root.get(), false), 1u);
    EXPECT_EQ(get_children_count(root->first_child_item(), true), million - 2);
}

TEST(xml_deep, million_levels_trees_compare_equal_and_unequal) {
    std::string text = nested(million, true);
    xml_tree_c a;
    xml_tree_c b;
    ASSERT_TRUE(a.load_from_str(text.c_str()));
    ASSERT_TRUE(b.load_from_str(text.c_str()));
    EXPECT_TRUE(a.is_equal(b));
    deepest(b.get_root())->set_attribute("x", 1);
    EXPECT_FALSE(a.is_equal(b));
    EXPECT_FALSE(b.is_equal(a));
}

TEST(xml_deep, million_levels_find_first_reaches_the_bottom) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str(nested(million, true).c_str()));
    xml_item_c* found = tree.find_first(nullptr, "b", true);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found, deepest(tree.get_root()));
    EXPECT_EQ(tree.find_first(nullptr, "zz", true), nullptr);
    EXPECT_EQ(tree.find_first(nullptr, "b", false), nullptr);
    labeled_value_c value("k", "v");
    found->set_attribute(&value);
    EXPECT_EQ(tree.find_by_value(nullptr, nullptr, &value, true), found);
}

TEST(xml_deep, million_levels_find_all_recursive) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str(nested(million, true).c_str()));
    string_array_c labels;
    labels.add("b");
    array_ct<xml_item_c> result;
    tree.find_all(nullptr, result, &labels, nullptr, true);
    ASSERT_EQ(result.get_count(), 2u);
    EXPECT_EQ(result.at(0), deepest(tree.get_root()));
    EXPECT_EQ(result.at(1), deepest(tree.get_root()));
}

TEST(xml_deep, million_levels_xml_size) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str(nested(million, true).c_str()));
    // Each `a` at depth d: its own 7 bytes and d + 1 twice; the `b` at the bottom 4 + depth.
    const std::uint64_t n = million;
    std::uint64_t expected = (3 + 16) + 3 + 9 * (n - 1) + (n - 1) * (n - 2) + 4 + n;
    EXPECT_EQ(tree.get_xml_size(), expected);
}

TEST(xml_deep, million_levels_tree_to_document_and_back) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str(nested(million, true).c_str()));
    {
        xml_document_c doc;
        tree.to_document(&doc);
        expect_deep_document(doc, million);
        xml_tree_c back;
        back.from_document(&doc);
        expect_deep_tree(back, million);
        EXPECT_TRUE(back.is_equal(tree));
    }
    SUCCEED() << "destroyed";
}

// ---- storing deep documents

namespace {

std::string read_range(const std::string& path, std::uint64_t offset, std::uint64_t length) {
    std::ifstream in(test_support::from_utf8(path), std::ios::binary);
    in.seekg(static_cast<std::streamoff>(offset));
    std::string out(static_cast<std::size_t>(length), '\0');
    in.read(out.data(), static_cast<std::streamsize>(length));
    out.resize(static_cast<std::size_t>(in.gcount()));
    return out;
}

// The largest stack a thread asked for with a smaller one may get. Wine gives every thread at
// least 1 MB; 20,000 frames still need more than that at 53 bytes a frame.
std::size_t smallest_stack(std::size_t wanted) {
    return test_support::on_wine() ? std::size_t{1024 * 1024} : wanted;
}

} // namespace

TEST(xml_deep, store_at_depth_20000_on_a_small_stack) {
    const std::uint64_t n = 20000;
    xml_document_c doc;
    doc.set_version("1.0");
    auto* parent = new xml_node_c("a");
    ASSERT_TRUE(doc.add_node(parent, nullptr));
    for (std::uint64_t i = 1; i < n; ++i) {
        auto* child = new xml_node_c("a");
        ASSERT_TRUE(doc.add_node(child, parent));
        parent = child;
    }
    temp_dir_c dir;
    std::string path = dir.join("deep_out.xml");
    bool stored = false;
    {
        FILE_c file;
        ASSERT_TRUE(file.open(path.c_str(), "w", nullptr, 0));
        // One frame per level would need at least 20,000 return addresses: more than 256 KB.
        std::size_t stack = 0;
        bool ran = test_support::run_with_stack(256 * 1024, [&] {
            stack = test_support::current_stack_size();
            stored = doc.store(&file);
        });
        ASSERT_TRUE(ran);
        EXPECT_GT(stack, 0u);
        EXPECT_LE(stack, smallest_stack(320u * 1024));
        file.close();
    }
    EXPECT_TRUE(stored);

    // Tabs: depth d on the open and the close line of each `a` above the bottom, and n - 1 on
    // the bottom line; tags: `<a>` and `</a>` with line feeds above, `<a/>` at the bottom.
    const std::uint64_t header = decl.size() + 1;
    const std::uint64_t tabs = (n - 1) * (n - 1);
    const std::uint64_t tags = (n - 1) * (4 + 5) + 5;
    EXPECT_EQ(std::filesystem::file_size(test_support::from_utf8(path)), header + tabs + tags);

    EXPECT_EQ(read_range(path, 0, header + 4 + 5 + 6), decl + "\n<a>\n\t<a>\n\t\t<a>\n");
    const std::uint64_t bottom = header + (n - 1) * (n - 2) / 2 + 4 * (n - 1);
    EXPECT_EQ(read_range(path, bottom, n - 1 + 5 + n - 2 + 5),
              std::string(n - 1, '\t') + "<a/>\n" + std::string(n - 2, '\t') + "</a>\n");
    const std::string tail = "\t\t</a>\n\t</a>\n</a>\n";
    EXPECT_EQ(read_range(path, header + tabs + tags - tail.size(), tail.size()), tail);
}

TEST(xml_deep, print_of_deep_document_on_a_small_stack) {
    const std::uint64_t n = 6000;
    xml_document_c doc;
    auto* parent = new xml_node_c("a");
    ASSERT_TRUE(doc.add_node(parent, nullptr));
    for (std::uint64_t i = 1; i < n; ++i) {
        auto* child = new xml_node_c("a");
        ASSERT_TRUE(doc.add_node(child, parent));
        parent = child;
    }
    const std::uint64_t expected = (n - 1) * (n - 1) + (n - 1) * 9 + 5;
    utl_stream_c stream;
    stream._add_memory(expected + 1);
    std::size_t stack = 0;
    // 48 KB: too small for a reused cached stack of the test before, and for 6,000 frames.
    bool ran = test_support::run_with_stack(48 * 1024, [&] {
        stack = test_support::current_stack_size();
        doc.print(nullptr, stream, false);
    });
    ASSERT_TRUE(ran);
    EXPECT_GT(stack, 0u);
    EXPECT_LE(stack, smallest_stack(128u * 1024));
    EXPECT_EQ(stream.get_length(), expected);
    EXPECT_EQ(std::string(stream.c_str()).substr(0, 9), "<a>\n\t<a>\n");
}
