// xml_tree_c: items from nodes and back, the declaration's values on the way to and from a
// document, loading (a failed load leaves the tree alone, a tree with a root keeps it), writing
// and saving, the size estimate, equality in preorder, and the searches: matches, find_all
// (a matching descendant twice when recursive), find_first and find_by_value.
#include "common/test_support.h"
#include "utl/container.h"
#include "utl/container_temp.h"
#include "utl/utl_stream.h"
#include "utl/value.h"
#include "xml/xml_doc.h"
#include "xml/xml_item.h"
#include "xml/xml_node.h"
#include "xml/xml_tree_templ.h"

#if !defined(_WIN32)
#include "platform/posix/syscalls.h"
#endif

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using test_support::read_file;
using test_support::temp_dir_c;
using test_support::trace_capture_c;
using test_support::trace_line;
using test_support::write_file;

const std::string decl = "<?xml version=\"1.0\"?>";

bool has_level(const std::string& line, unsigned level) {
    return line.find(" level=" + std::to_string(level) + " ") != std::string::npos;
}

std::string written(xml_tree_c& tree, bool with_header) {
    utl_stream_c stream;
    tree.write(stream, with_header);
    return stream.c_str();
}

// Labels of the subtree of `top` in preorder, with the depth of each as leading dots.
std::vector<std::string> shape_of(const xml_item_c* top) {
    std::vector<std::string> out;
    if (!top) return out;
    std::vector<std::pair<const xml_item_c*, int>> pending{{top, 0}};
    while (!pending.empty()) {
        auto [item, depth] = pending.back();
        pending.pop_back();
        out.push_back(std::string(static_cast<std::size_t>(depth), '.') +
                      (item->label ? item->label : "<null>"));
        std::vector<const xml_item_c*> children;
        for (const xml_item_c* c = item->first_child_item(); c; c = c->next_item())
            children.push_back(c);
        for (auto it = children.rbegin(); it != children.rend(); ++it)
            pending.emplace_back(*it, depth + 1);
    }
    return out;
}

std::vector<std::string> node_shape_of(const xml_node_c* top) {
    std::vector<std::string> out;
    if (!top) return out;
    std::vector<std::pair<const xml_node_c*, int>> pending{{top, 0}};
    while (!pending.empty()) {
        auto [node, depth] = pending.back();
        pending.pop_back();
        out.push_back(std::string(static_cast<std::size_t>(depth), '.') +
                      (node->name ? node->name : "<null>"));
        std::vector<const xml_node_c*> children;
        for (const xml_node_c* c = node->first_child_node(); c; c = c->next_node())
            children.push_back(c);
        for (auto it = children.rbegin(); it != children.rend(); ++it)
            pending.emplace_back(*it, depth + 1);
    }
    return out;
}

std::vector<std::string> labels_of(const array_ct<xml_item_c>& items) {
    std::vector<std::string> out;
    for (std::uint64_t i = 0; i < items.get_count(); ++i) out.emplace_back(items.at(i)->label);
    return out;
}

// A tree that does not own its root; the test deletes the root itself.
class borrowed_tree_c : public xml_tree_ct<xml_item_c> {
  public:
    borrowed_tree_c() { this->_owner = false; }
};

// r(n="1") { a { b }, c[text "hi"] } with version 1.0 and encoding UTF-8.
void build_sample(xml_tree_c& tree) {
    ASSERT_TRUE(tree.load_from_str(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><r n=\"1\"><a><b/></a><c/></r>"));
    xml_item_c* c = tree.get_root()->last_child
                        ? static_cast<xml_item_c*>(tree.get_root()->last_child)
                        : nullptr;
    ASSERT_NE(c, nullptr);
    c->set_text("hi");
}

string_array_c* strings(string_array_c& array, std::initializer_list<const char*> texts) {
    for (const char* text : texts) array.add(text);
    return &array;
}

} // namespace

// ---- from_node and to_node

TEST(xml_tree, from_node_of_null_is_null) {
    xml_tree_c tree;
    EXPECT_EQ(tree.from_node(nullptr), nullptr);
    EXPECT_EQ(tree.to_node(nullptr), nullptr);
}

TEST(xml_tree, from_node_copies_labels_attributes_text_and_shape) {
    xml_document_c doc;
    temp_dir_c dir;
    std::string path = dir.join("in.xml");
    write_file(path, decl + "<r x=\"1\" y=\"two\"><a><b>bt</b></a><c z=\"3\"/><d>dt</d></r>");
    ASSERT_TRUE(doc.load(path.c_str()));
    xml_tree_c tree;
    std::unique_ptr<xml_item_c> item(tree.from_node(doc.get_root()));
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(tree.get_root(), nullptr);
    EXPECT_EQ(item->parent, nullptr);
    EXPECT_EQ(shape_of(item.get()), (std::vector<std::string>{"r", ".a", "..b", ".c", ".d"}));
    ASSERT_EQ(item->get_attribute_count(), 2u);
    EXPECT_STREQ(item->get_attribute(0)->get_label(), "x");
    EXPECT_STREQ(item->get_attribute(0)->to_text(), "1");
    EXPECT_EQ(item->get_attribute(0)->get_type(), 1);
    EXPECT_STREQ(item->get_attribute(1)->to_text(), "two");
    EXPECT_EQ(item->text, nullptr);
    xml_item_c* b = item->first_child_item()->first_child_item();
    EXPECT_STREQ(b->text, "bt");
    EXPECT_STREQ(static_cast<xml_item_c*>(item->last_child)->text, "dt");
}

TEST(xml_tree, to_node_of_item_with_text_is_a_text_node) {
    xml_tree_c tree;
    xml_item_c item("a");
    item.set_text("hello");
    item.set_attribute("k", 5);
    std::unique_ptr<xml_node_c> node(tree.to_node(&item));
    ASSERT_NE(node, nullptr);
    EXPECT_STREQ(node->name, "a");
    EXPECT_EQ(node->type, xml_node_c::type_text);
    EXPECT_STREQ(node->text.c_str(), "hello");
    ASSERT_NE(node->attributes, nullptr);
    EXPECT_EQ(node->attributes->get_count(), 1u);
}

TEST(xml_tree, to_node_of_item_without_text_is_an_element) {
    xml_tree_c tree;
    xml_item_c item("a");
    std::unique_ptr<xml_node_c> node(tree.to_node(&item));
    EXPECT_EQ(node->type, xml_node_c::type_element);
    EXPECT_EQ(node->text.get_length(), 0u);
}

TEST(xml_tree, to_node_writes_attribute_texts_in_order) {
    xml_tree_c tree;
    xml_item_c item("a");
    item.set_attribute("s", "str");
    item.set_attribute("n", -5);
    item.set_attribute("b", true);
    item.set_attribute("u", 0x8000000000000000ull);
    std::unique_ptr<xml_node_c> node(tree.to_node(&item));
    std::vector<std::string> seen;
    for (xml_attr_c* a = node->attributes->first(); a; a = node->attributes->next(a))
        seen.push_back(std::string(a->name) + "=" + a->value);
    EXPECT_EQ(seen, (std::vector<std::string>{"s=str", "n=-5", "b=True", "u=9223372036854775808"}));
}

TEST(xml_tree, to_node_copies_the_shape) {
    xml_item_c root("r");
    xml_item_c* a = xml_item_c::create_child("a", &root);
    xml_item_c::create_child("a1", a);
    xml_item_c* a2 = xml_item_c::create_child("a2", a);
    xml_item_c::create_child("a21", a2);
    xml_item_c::create_child("b", &root);
    xml_tree_c tree;
    std::unique_ptr<xml_node_c> node(tree.to_node(&root));
    EXPECT_EQ(node_shape_of(node.get()),
              (std::vector<std::string>{"r", ".a", "..a1", "..a2", "...a21", ".b"}));
    EXPECT_EQ(node->first_child_node()->parent, node.get());
}

TEST(xml_tree, from_node_of_to_node_is_equal) {
    xml_tree_c tree;
    build_sample(tree);
    std::unique_ptr<xml_node_c> node(tree.to_node(tree.get_root()));
    std::unique_ptr<xml_item_c> back(tree.from_node(node.get()));
    EXPECT_EQ(shape_of(back.get()), shape_of(tree.get_root()));
    const xml_item_c* x = back.get();
    const xml_item_c* y = tree.get_root();
    while (x && y) {
        EXPECT_TRUE(x->is_equal(*y)) << x->label;
        x = xml_tree_n::next_in_preorder<const xml_item_c>(x, back.get());
        y = xml_tree_n::next_in_preorder<const xml_item_c>(y, tree.get_root());
    }
    EXPECT_EQ(x, nullptr);
    EXPECT_EQ(y, nullptr);
}

// ---- to_document

TEST(xml_tree, to_document_gives_the_tree_version) {
    xml_tree_c tree;
    tree.set_version("2.5");
    xml_document_c doc;
    tree.to_document(&doc);
    EXPECT_STREQ(doc.get_version(), "2.5");
}

TEST(xml_tree, to_document_without_tree_version_gives_1_0) {
    xml_tree_c tree;
    xml_document_c doc;
    tree.to_document(&doc);
    EXPECT_STREQ(doc.get_version(), "1.0");
    xml_tree_c empty_version;
    empty_version.set_version("");
    xml_document_c other;
    empty_version.to_document(&other);
    EXPECT_STREQ(other.get_version(), "1.0");
}

TEST(xml_tree, to_document_gives_the_tree_encoding_even_null) {
    xml_tree_c tree;
    tree.set_encoding("ISO-8859-1");
    xml_document_c doc;
    tree.to_document(&doc);
    EXPECT_STREQ(doc.get_encoding(), "ISO-8859-1");
    xml_tree_c no_encoding;
    xml_document_c other;
    no_encoding.to_document(&other);
    EXPECT_EQ(other.get_encoding(), nullptr);
}

TEST(xml_tree, to_document_keeps_the_document_values) {
    xml_tree_c tree;
    tree.set_version("2.0");
    tree.set_encoding("T");
    xml_document_c doc;
    doc.set_version("1.1");
    doc.set_encoding("D");
    tree.to_document(&doc);
    EXPECT_STREQ(doc.get_version(), "1.1");
    EXPECT_STREQ(doc.get_encoding(), "D");
}

TEST(xml_tree, to_document_gives_style_sheet_and_root) {
    xml_tree_c tree;
    build_sample(tree);
    tree.set_style_sheet("s.xsl");
    xml_document_c doc;
    tree.to_document(&doc);
    EXPECT_STREQ(doc.get_style_sheet(), "s.xsl");
    ASSERT_NE(doc.get_root(), nullptr);
    EXPECT_EQ(node_shape_of(doc.get_root()), (std::vector<std::string>{"r", ".a", "..b", ".c"}));
}

TEST(xml_tree, to_document_of_empty_tree_adds_no_root) {
    xml_tree_c tree;
    xml_document_c doc;
    tree.to_document(&doc);
    EXPECT_EQ(doc.get_root(), nullptr);
}

// ---- from_document

TEST(xml_tree, from_document_takes_root_and_values) {
    xml_document_c doc;
    ASSERT_TRUE(doc.load_from_str("<?xml version=\"1.0\" encoding=\"E\"?><r><a/></r>"));
    doc.set_style_sheet("s.xsl");
    xml_tree_c tree;
    tree.from_document(&doc);
    EXPECT_EQ(shape_of(tree.get_root()), (std::vector<std::string>{"r", ".a"}));
    EXPECT_STREQ(tree.get_version(), "1.0");
    EXPECT_STREQ(tree.get_encoding(), "E");
    EXPECT_STREQ(tree.get_style_sheet(), "s.xsl");
}

TEST(xml_tree, from_document_without_root_changes_nothing) {
    xml_document_c doc;
    doc.set_version("9.9");
    doc.set_encoding("E");
    xml_tree_c tree;
    tree.from_document(&doc);
    EXPECT_EQ(tree.get_root(), nullptr);
    EXPECT_EQ(tree.get_version(), nullptr);
    EXPECT_EQ(tree.get_encoding(), nullptr);
}

TEST(xml_tree, from_document_into_tree_with_root_keeps_the_root_and_takes_the_values) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<old/>").c_str()));
    xml_item_c* old_root = tree.get_root();
    xml_document_c doc;
    ASSERT_TRUE(doc.load_from_str("<?xml version=\"3.0\" encoding=\"E\"?><new/>"));
    doc.set_style_sheet("s.xsl");
    tree.from_document(&doc);
    EXPECT_EQ(tree.get_root(), old_root);
    EXPECT_STREQ(tree.get_root()->label, "old");
    EXPECT_EQ(tree.get_root()->first_child, nullptr);
    EXPECT_STREQ(tree.get_version(), "3.0");
    EXPECT_STREQ(tree.get_encoding(), "E");
    EXPECT_STREQ(tree.get_style_sheet(), "s.xsl");
}

TEST(xml_tree, from_document_null_values_do_not_clear_the_tree_values) {
    xml_tree_c tree;
    tree.set_encoding("keep");
    tree.set_style_sheet("keep.xsl");
    xml_document_c doc;
    ASSERT_TRUE(doc.load_from_str((decl + "<a/>").c_str()));
    tree.from_document(&doc);
    EXPECT_STREQ(tree.get_encoding(), "keep");
    EXPECT_STREQ(tree.get_style_sheet(), "keep.xsl");
}

// ---- load and load_from_str

TEST(xml_tree, load_from_str_builds_the_tree_without_text) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><r k=\"v\"><a>text</a><b/></r>"));
    EXPECT_EQ(shape_of(tree.get_root()), (std::vector<std::string>{"r", ".a", ".b"}));
    EXPECT_EQ(tree.get_root()->first_child_item()->text, nullptr);
    EXPECT_STREQ(tree.get_version(), "1.0");
    EXPECT_STREQ(tree.get_encoding(), "UTF-8");
    EXPECT_STREQ(tree.get_root()->find_attribute("k")->to_text(), "v");
}

TEST(xml_tree, load_from_file_keeps_text) {
    temp_dir_c dir;
    std::string path = dir.join("t.xml");
    write_file(path, decl + "\n<r>\n\t<a>text</a>\n</r>\n");
    xml_tree_c tree;
    ASSERT_TRUE(tree.load(path.c_str()));
    EXPECT_STREQ(tree.get_root()->first_child_item()->text, "text");
}

TEST(xml_tree, failed_load_from_str_leaves_the_tree_as_it_was) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str("<?xml version=\"1.0\" encoding=\"A\"?><r><a/></r>"));
    xml_item_c* root = tree.get_root();
    EXPECT_FALSE(tree.load_from_str("<?xml version=\"2.0\" encoding=\"B\"?><x><y></x>"));
    EXPECT_FALSE(tree.load_from_str(nullptr));
    EXPECT_FALSE(tree.load_from_str("<?xml version='3.0'?><z/>"));
    EXPECT_EQ(tree.get_root(), root);
    EXPECT_EQ(shape_of(tree.get_root()), (std::vector<std::string>{"r", ".a"}));
    EXPECT_STREQ(tree.get_version(), "1.0");
    EXPECT_STREQ(tree.get_encoding(), "A");
}

TEST(xml_tree, failed_load_from_file_leaves_the_tree_as_it_was) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<r/>").c_str()));
    temp_dir_c dir;
    std::string path = dir.join("bad.xml");
    write_file(path, "<?xml version=\"2.0\"?><x><y></x>");
    EXPECT_FALSE(tree.load(path.c_str()));
    EXPECT_FALSE(tree.load(dir.join("missing.xml").c_str()));
    EXPECT_EQ(shape_of(tree.get_root()), (std::vector<std::string>{"r"}));
    EXPECT_STREQ(tree.get_version(), "1.0");
}

TEST(xml_tree, failed_load_into_empty_tree_leaves_it_empty) {
    xml_tree_c tree;
    EXPECT_FALSE(tree.load_from_str((decl + "<a><b/>").c_str()));
    EXPECT_EQ(tree.get_root(), nullptr);
    EXPECT_EQ(tree.get_version(), nullptr);
}

TEST(xml_tree, load_into_tree_with_root_returns_true_and_changes_only_the_values) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str("<?xml version=\"1.0\" encoding=\"A\"?><r><a/></r>"));
    tree.set_style_sheet("old.xsl");
    xml_item_c* root = tree.get_root();
    EXPECT_TRUE(tree.load_from_str("<?xml version=\"2.0\" encoding=\"B\"?><other><x/></other>"));
    EXPECT_EQ(tree.get_root(), root);
    EXPECT_EQ(shape_of(tree.get_root()), (std::vector<std::string>{"r", ".a"}));
    EXPECT_STREQ(tree.get_version(), "2.0");
    EXPECT_STREQ(tree.get_encoding(), "B");
    EXPECT_STREQ(tree.get_style_sheet(), "old.xsl");
}

TEST(xml_tree, comment_only_document_loads_into_an_empty_tree) {
    xml_tree_c tree;
    EXPECT_TRUE(tree.load_from_str((decl + "<!-- only -->").c_str()));
    EXPECT_EQ(tree.get_root(), nullptr);
}

// ---- write

TEST(xml_tree, write_with_header) {
    xml_tree_c tree;
    build_sample(tree);
    EXPECT_EQ(written(tree, true), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                   "<r n=\"1\">\n"
                                   "\t<a>\n"
                                   "\t\t<b/>\n"
                                   "\t</a>\n"
                                   "\t<c>hi</c>\n"
                                   "</r>\n");
}

TEST(xml_tree, write_without_header) {
    xml_tree_c tree;
    build_sample(tree);
    EXPECT_EQ(written(tree, false), "<r n=\"1\">\n"
                                    "\t<a>\n"
                                    "\t\t<b/>\n"
                                    "\t</a>\n"
                                    "\t<c>hi</c>\n"
                                    "</r>\n");
}

TEST(xml_tree, write_appends_to_the_stream) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<a/>").c_str()));
    utl_stream_c stream("kept\n");
    tree.write(stream, true);
    tree.write(stream, false);
    EXPECT_STREQ(stream.c_str(), "kept\n<?xml version=\"1.0\"?>\n<a/>\n<a/>\n");
}

TEST(xml_tree, write_without_header_of_empty_tree_appends_nothing) {
    xml_tree_c tree;
    utl_stream_c stream("kept");
    tree.write(stream, false);
    EXPECT_STREQ(stream.c_str(), "kept");
}

TEST(xml_tree, write_of_tree_without_version_writes_1_0) {
    xml_tree_c tree;
    tree.load_from_str((decl + "<a/>").c_str());
    tree.set_version(nullptr);
    EXPECT_EQ(written(tree, true), "<?xml version=\"1.0\"?>\n<a/>\n");
}

TEST(xml_tree, write_with_style_sheet_writes_its_line) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<a/>").c_str()));
    tree.set_style_sheet("s.xsl");
    EXPECT_EQ(written(tree, true), "<?xml version=\"1.0\"?>\n"
                                   "<?xml-stylesheet type=\"text/xsl\" href=\"s.xsl\"?>\n"
                                   "<a/>\n");
}

TEST(xml_tree, written_text_loads_back_equal) {
    xml_tree_c tree;
    build_sample(tree);
    tree.get_root()->set_attribute("q", "a\"b<c>&d");
    std::string text = written(tree, true);
    temp_dir_c dir;
    std::string path = dir.join("back.xml");
    write_file(path, text);
    xml_tree_c back;
    ASSERT_TRUE(back.load(path.c_str()));
    EXPECT_TRUE(back.is_equal(tree)) << text;
}

// ---- save_to_file

TEST(xml_tree, save_to_file_writes_what_write_gives) {
    xml_tree_c tree;
    build_sample(tree);
    temp_dir_c dir;
    std::string path = dir.join("saved.xml");
    EXPECT_TRUE(tree.save_to_file(path.c_str()));
    EXPECT_EQ(read_file(path), written(tree, true));
}

TEST(xml_tree, save_to_file_of_tree_that_never_loaded_writes_the_default_header) {
    xml_tree_c tree;
    temp_dir_c dir;
    std::string path = dir.join("empty.xml");
    EXPECT_TRUE(tree.save_to_file(path.c_str()));
    EXPECT_EQ(read_file(path), "<?xml version=\"1.0\"?>\n");
}

TEST(xml_tree, save_to_file_in_missing_directory_is_false_with_message) {
    trace_capture_c capture;
    temp_dir_c dir;
    std::string path = dir.join("no_such_dir/out.xml");
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<a/>").c_str()));
    EXPECT_FALSE(tree.save_to_file(path.c_str()));
    std::string line = trace_line(capture.text(), "Unable to open file " + path + " ");
    ASSERT_FALSE(line.empty()) << capture.text();
    EXPECT_TRUE(has_level(line, 4)) << line;
    EXPECT_NE(line.find(" xml_tree_templ:"), std::string::npos) << line;
    EXPECT_NE(line.find(" xml_tree_ct<T>::save_to_file: "), std::string::npos) << line;
}

TEST(xml_tree, save_to_file_onto_a_directory_is_false_with_message) {
    trace_capture_c capture;
    temp_dir_c dir;
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<a/>").c_str()));
    EXPECT_FALSE(tree.save_to_file(dir.str().c_str()));
    EXPECT_FALSE(trace_line(capture.text(), "Unable to open file " + dir.str() + " ").empty())
        << capture.text();
}

#if !defined(_WIN32)
// A disk that takes no byte: every write of the POSIX layer fails with ENOSPC.
ssize_t write_to_full_disk(int, const void*, size_t) {
    errno = ENOSPC;
    return -1;
}
#endif

// The store's failed writes are traced, and save_to_file still says true: what it reports is
// the open. The text is larger than a stream's buffer, so the writes reach the disk at once.
TEST(xml_tree, save_to_file_on_a_full_disk_is_true_with_the_failed_writes_traced) {
#if defined(_WIN32)
    GTEST_SKIP() << "the Windows build cannot make the disk full under wine; the POSIX build "
                    "fills it through the system-call table";
#else
    xml_tree_c tree;
    std::string document = decl + "<a>";
    for (int i = 0; i < 2000; ++i) document += "<b c=\"" + std::to_string(i) + "\"/>";
    ASSERT_TRUE(tree.load_from_str((document + "</a>").c_str()));
    temp_dir_c dir;
    std::string path = dir.join("full.xml");
    trace_capture_c capture;
    {
        test_support::replaced_syscall_c full(os::posix::syscalls().write, &write_to_full_disk);
        EXPECT_TRUE(tree.save_to_file(path.c_str()));
    }
    // The first write that reaches the disk fails, and the store stops there.
    std::string text = capture.text();
    EXPECT_EQ(test_support::count_of(text, " to xml file\n"), 1u) << text;
    std::size_t at = text.find("Unable to write \t<b c=\"");
    ASSERT_NE(at, std::string::npos) << text;
    std::string line = text.substr(text.rfind('\n', at) + 1);
    line = line.substr(0, line.find('\n'));
    EXPECT_TRUE(has_level(line, 4)) << line;
    EXPECT_NE(line.find(" xml_document_c::_write_xml_buf_to_file: "), std::string::npos) << line;
    EXPECT_EQ(read_file(path), "");
#endif
}

TEST(xml_tree, saved_file_loads_back_equal) {
    xml_tree_c tree;
    build_sample(tree);
    tree.set_style_sheet(nullptr);
    temp_dir_c dir;
    std::string path = dir.join("saved.xml");
    ASSERT_TRUE(tree.save_to_file(path.c_str()));
    xml_tree_c back;
    ASSERT_TRUE(back.load(path.c_str()));
    EXPECT_TRUE(back.is_equal(tree));
}

// ---- get_xml_size

TEST(xml_tree, xml_size_of_empty_tree) {
    xml_tree_c tree;
    EXPECT_EQ(tree.get_xml_size(), 5u + 3);
    tree.set_version("1.0");
    EXPECT_EQ(tree.get_xml_size(), 3u + 16 + 3);
    tree.set_encoding("UTF-8");
    EXPECT_EQ(tree.get_xml_size(), 3u + 16 + 5 + 12 + 3);
}

TEST(xml_tree, xml_size_adds_depth_per_item_and_again_for_parents) {
    xml_tree_c tree;
    build_sample(tree);
    const std::uint64_t header = (3 + 16) + (5 + 12) + 3;
    const std::uint64_t r = (1 + 2 + (1 + 1 + 4) + (1 + 3)) + 1 + 1;
    const std::uint64_t a = (1 + 2 + (1 + 3)) + 2 + 2;
    const std::uint64_t b = (1 + 2 + 1) + 3;
    const std::uint64_t c = (1 + 2 + (2 + 1) + 1) + 2;
    EXPECT_EQ(tree.get_xml_size(), header + r + a + b + c);
}

TEST(xml_tree, xml_size_uses_each_item_size_without_children) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<r><a><b><c/></b></a></r>").c_str()));
    tree.set_version(nullptr);
    std::uint64_t expected = 5 + 3;
    std::uint64_t depth = 0;
    for (xml_item_c* item = tree.get_root(); item; item = item->first_child_item(), ++depth) {
        expected += item->get_xml_size(false) + depth + 1;
        if (item->first_child) expected += depth + 1;
    }
    EXPECT_EQ(tree.get_xml_size(), expected);
}

// ---- is_equal

TEST(xml_tree, is_equal_same_documents) {
    xml_tree_c a;
    xml_tree_c b;
    build_sample(a);
    build_sample(b);
    EXPECT_TRUE(a.is_equal(b));
    EXPECT_TRUE(b.is_equal(a));
}

TEST(xml_tree, is_equal_empty_trees) {
    xml_tree_c a;
    xml_tree_c b;
    EXPECT_TRUE(a.is_equal(b));
}

TEST(xml_tree, is_equal_null_values_equal_empty_values) {
    xml_tree_c a;
    xml_tree_c b;
    b.set_version("");
    b.set_encoding("");
    b.set_style_sheet("");
    EXPECT_TRUE(a.is_equal(b));
    EXPECT_TRUE(b.is_equal(a));
}

TEST(xml_tree, is_equal_compares_version_encoding_and_style_sheet) {
    xml_tree_c a;
    xml_tree_c b;
    build_sample(a);
    build_sample(b);
    b.set_version("1.1");
    EXPECT_FALSE(a.is_equal(b));
    b.set_version("1.0");
    b.set_encoding("other");
    EXPECT_FALSE(a.is_equal(b));
    b.set_encoding("UTF-8");
    b.set_style_sheet("s.xsl");
    EXPECT_FALSE(a.is_equal(b));
    b.set_style_sheet(nullptr);
    EXPECT_TRUE(a.is_equal(b));
}

TEST(xml_tree, is_equal_compares_items_in_preorder) {
    xml_tree_c a;
    xml_tree_c b;
    build_sample(a);
    build_sample(b);
    b.get_root()->first_child_item()->first_child_item()->set_attribute("x", 1);
    EXPECT_FALSE(a.is_equal(b));
}

TEST(xml_tree, is_equal_extra_item_is_unequal) {
    xml_tree_c a;
    xml_tree_c b;
    build_sample(a);
    build_sample(b);
    xml_item_c::create_child("extra", b.get_root());
    EXPECT_FALSE(a.is_equal(b));
    EXPECT_FALSE(b.is_equal(a));
}

TEST(xml_tree, is_equal_root_against_no_root_is_unequal) {
    xml_tree_c a;
    xml_tree_c b;
    ASSERT_TRUE(a.load_from_str((decl + "<r/>").c_str()));
    b.set_version("1.0");
    EXPECT_FALSE(a.is_equal(b));
    EXPECT_FALSE(b.is_equal(a));
}

TEST(xml_tree, is_equal_same_preorder_sequence_is_equal) {
    xml_tree_c a;
    xml_tree_c b;
    ASSERT_TRUE(a.load_from_str((decl + "<r><x><y/></x></r>").c_str()));
    ASSERT_TRUE(b.load_from_str((decl + "<r><x/><y/></r>").c_str()));
    EXPECT_TRUE(a.is_equal(b));
}

TEST(xml_tree, is_equal_ignores_the_owner_flag) {
    std::unique_ptr<xml_item_c> keep;
    xml_tree_c owner;
    build_sample(owner);
    borrowed_tree_c borrowed;
    ASSERT_FALSE(borrowed.is_owner());
    ASSERT_TRUE(owner.is_owner());
    ASSERT_TRUE(borrowed.load_from_str(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><r n=\"1\"><a><b/></a><c/></r>"));
    keep.reset(borrowed.get_root());
    static_cast<xml_item_c*>(borrowed.get_root()->last_child)->set_text("hi");
    EXPECT_TRUE(owner.is_equal(borrowed));
    EXPECT_TRUE(borrowed.is_equal(owner));
}

// ---- matches

TEST(xml_tree, matches_null_item_is_false) {
    xml_tree_c tree;
    string_array_c labels;
    EXPECT_FALSE(tree.matches(nullptr, nullptr, nullptr));
    EXPECT_FALSE(tree.matches(nullptr, strings(labels, {"a"}), nullptr));
}

TEST(xml_tree, matches_without_criteria_is_true) {
    xml_tree_c tree;
    xml_item_c item("a");
    EXPECT_TRUE(tree.matches(&item, nullptr, nullptr));
}

TEST(xml_tree, matches_labels_only) {
    xml_tree_c tree;
    xml_item_c item("b");
    string_array_c hit;
    string_array_c miss;
    EXPECT_TRUE(tree.matches(&item, strings(hit, {"a", "b"}), nullptr));
    EXPECT_FALSE(tree.matches(&item, strings(miss, {"a", "B", "bb"}), nullptr));
}

TEST(xml_tree, matches_attribute_labels_only) {
    xml_tree_c tree;
    xml_item_c with("x");
    with.set_attribute("id", 1);
    xml_item_c without("x");
    xml_item_c other("x");
    other.set_attribute("name", 1);
    string_array_c attrs;
    strings(attrs, {"key", "id"});
    EXPECT_TRUE(tree.matches(&with, nullptr, &attrs));
    EXPECT_FALSE(tree.matches(&without, nullptr, &attrs));
    EXPECT_FALSE(tree.matches(&other, nullptr, &attrs));
}

TEST(xml_tree, matches_labels_and_attribute_labels) {
    xml_tree_c tree;
    xml_item_c good("a");
    good.set_attribute("id", 1);
    xml_item_c wrong_label("b");
    wrong_label.set_attribute("id", 1);
    xml_item_c no_attribute("a");
    string_array_c labels;
    string_array_c attrs;
    strings(labels, {"a"});
    strings(attrs, {"id"});
    EXPECT_TRUE(tree.matches(&good, &labels, &attrs));
    EXPECT_FALSE(tree.matches(&wrong_label, &labels, &attrs));
    EXPECT_FALSE(tree.matches(&no_attribute, &labels, &attrs));
}

// ---- find_all

TEST(xml_tree, find_all_recursive_appends_a_matching_child_twice) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<r><x/><y/></r>").c_str()));
    string_array_c labels;
    strings(labels, {"x"});
    array_ct<xml_item_c> result;
    tree.find_all(nullptr, result, &labels, nullptr, true);
    ASSERT_EQ(result.get_count(), 2u);
    EXPECT_EQ(result.at(0), tree.get_root()->first_child_item());
    EXPECT_EQ(result.at(1), tree.get_root()->first_child_item());
}

TEST(xml_tree, find_all_recursive_appends_a_matching_root_once) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<x><x/><y/></x>").c_str()));
    string_array_c labels;
    strings(labels, {"x"});
    array_ct<xml_item_c> result;
    tree.find_all(tree.get_root(), result, &labels, nullptr, true);
    ASSERT_EQ(result.get_count(), 3u);
    EXPECT_EQ(result.at(0), tree.get_root());
    EXPECT_EQ(result.at(1), tree.get_root()->first_child_item());
    EXPECT_EQ(result.at(2), tree.get_root()->first_child_item());
}

TEST(xml_tree, find_all_recursive_every_descendant_twice_in_preorder) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<r><a><b/></a><c/></r>").c_str()));
    array_ct<xml_item_c> result;
    tree.find_all(nullptr, result, nullptr, nullptr, true);
    EXPECT_EQ(labels_of(result), (std::vector<std::string>{"r", "a", "a", "b", "b", "c", "c"}));
}

TEST(xml_tree, find_all_not_recursive_looks_at_start_and_children_once) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<x><x><x/></x><y/><x/></x>").c_str()));
    string_array_c labels;
    strings(labels, {"x"});
    array_ct<xml_item_c> result;
    tree.find_all(nullptr, result, &labels, nullptr, false);
    ASSERT_EQ(result.get_count(), 3u);
    EXPECT_EQ(result.at(0), tree.get_root());
    EXPECT_EQ(result.at(1), tree.get_root()->first_child_item());
    EXPECT_EQ(result.at(2), tree.get_root()->last_child);
}

TEST(xml_tree, find_all_appends_to_the_result) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<r/>").c_str()));
    xml_item_c outside("o");
    array_ct<xml_item_c> result;
    result.append(&outside);
    tree.find_all(nullptr, result, nullptr, nullptr, false);
    ASSERT_EQ(result.get_count(), 2u);
    EXPECT_EQ(result.at(0), &outside);
    EXPECT_EQ(result.at(1), tree.get_root());
}

TEST(xml_tree, find_all_on_empty_tree_finds_nothing) {
    xml_tree_c tree;
    array_ct<xml_item_c> result;
    tree.find_all(nullptr, result, nullptr, nullptr, true);
    EXPECT_EQ(result.get_count(), 0u);
}

TEST(xml_tree, find_all_by_attribute_label) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<r><a id=\"1\"/><b/><c id=\"2\"/></r>").c_str()));
    string_array_c attrs;
    strings(attrs, {"id"});
    array_ct<xml_item_c> result;
    tree.find_all(nullptr, result, nullptr, &attrs, false);
    EXPECT_EQ(labels_of(result), (std::vector<std::string>{"a", "c"}));
}

// ---- find_first

TEST(xml_tree, find_first_null_label_is_null) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<r/>").c_str()));
    EXPECT_EQ(tree.find_first(nullptr, static_cast<const char*>(nullptr), true), nullptr);
}

TEST(xml_tree, find_first_is_the_first_match_in_preorder) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<r><a><x n=\"1\"/></a><x n=\"2\"/></r>").c_str()));
    xml_item_c* found = tree.find_first(nullptr, "x", true);
    ASSERT_NE(found, nullptr);
    EXPECT_STREQ(found->find_attribute("n")->to_text(), "1");
}

TEST(xml_tree, find_first_not_recursive_looks_at_children_only) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<r><a><x n=\"1\"/></a><x n=\"2\"/></r>").c_str()));
    xml_item_c* found = tree.find_first(nullptr, "x", false);
    ASSERT_NE(found, nullptr);
    EXPECT_STREQ(found->find_attribute("n")->to_text(), "2");
    EXPECT_EQ(tree.find_first(tree.get_root()->first_child_item(), "r", false), nullptr);
}

TEST(xml_tree, find_first_start_itself_can_match) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<r><a/></r>").c_str()));
    EXPECT_EQ(tree.find_first(nullptr, "r", true), tree.get_root());
    xml_item_c* a = tree.get_root()->first_child_item();
    EXPECT_EQ(tree.find_first(a, "a", false), a);
}

TEST(xml_tree, find_first_stays_inside_the_start_subtree) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<r><a><b/></a><c/></r>").c_str()));
    xml_item_c* a = tree.get_root()->first_child_item();
    EXPECT_EQ(tree.find_first(a, "c", true), nullptr);
    EXPECT_NE(tree.find_first(a, "b", true), nullptr);
}

TEST(xml_tree, find_first_no_match_or_empty_tree_is_null) {
    xml_tree_c tree;
    EXPECT_EQ(tree.find_first(nullptr, "r", true), nullptr);
    ASSERT_TRUE(tree.load_from_str((decl + "<r><a/></r>").c_str()));
    EXPECT_EQ(tree.find_first(nullptr, "zz", true), nullptr);
}

TEST(xml_tree, find_first_with_labels_and_attribute_labels) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<r><x/><x id=\"1\"/><y id=\"2\"/></r>").c_str()));
    string_array_c labels;
    string_array_c attrs;
    strings(labels, {"x", "y"});
    strings(attrs, {"id"});
    xml_item_c* found = tree.find_first(nullptr, &labels, &attrs, true);
    ASSERT_NE(found, nullptr);
    EXPECT_STREQ(found->label, "x");
    EXPECT_STREQ(found->find_attribute("id")->to_text(), "1");
}

// ---- find_by_value

TEST(xml_tree, find_by_value_finds_the_first_item_holding_the_value) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str(
        (decl + "<r><a id=\"1\"/><b><c id=\"7\" n=\"x\"/></b><d id=\"7\"/></r>").c_str()));
    labeled_value_c value("id", 7);
    xml_item_c* found = tree.find_by_value(nullptr, nullptr, &value, true);
    ASSERT_NE(found, nullptr);
    EXPECT_STREQ(found->label, "c");
}

TEST(xml_tree, find_by_value_restricted_by_labels) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str(
        (decl + "<r><a id=\"1\"/><b><c id=\"7\"/></b><d id=\"7\"/></r>").c_str()));
    labeled_value_c value("id", "7");
    string_array_c labels;
    strings(labels, {"d"});
    xml_item_c* found = tree.find_by_value(nullptr, &labels, &value, true);
    ASSERT_NE(found, nullptr);
    EXPECT_STREQ(found->label, "d");
}

TEST(xml_tree, find_by_value_not_recursive_looks_at_children_only) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<r><b><c id=\"7\"/></b><d id=\"7\"/></r>").c_str()));
    labeled_value_c value("id", 7);
    xml_item_c* found = tree.find_by_value(nullptr, nullptr, &value, false);
    ASSERT_NE(found, nullptr);
    EXPECT_STREQ(found->label, "d");
}

TEST(xml_tree, find_by_value_no_match_is_null) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<r><a id=\"1\"/></r>").c_str()));
    labeled_value_c other_text("id", 2);
    labeled_value_c other_label("key", 1);
    EXPECT_EQ(tree.find_by_value(nullptr, nullptr, &other_text, true), nullptr);
    EXPECT_EQ(tree.find_by_value(nullptr, nullptr, &other_label, true), nullptr);
    EXPECT_EQ(tree.find_by_value(nullptr, nullptr, nullptr, true), nullptr);
}

// ---- the life of loaded items

namespace {

// A document with `count` children of the root in groups of a parent and two children each.
std::string grouped_document(int count) {
    std::string out = decl + "\n<root kind=\"grouped\">\n";
    for (int i = 0; i < count; ++i) {
        std::string n = std::to_string(i);
        out += "\t<g id=\"" + n + "\" note=\"a value long enough to need a block of its own " + n +
               "\" cond=\"x &gt; " + n + "\">\n\t\t<c id=\"" + n + ".1\"/>\n\t\t<c id=\"" + n +
               ".2\">text " + n + "</c>\n\t</g>\n";
    }
    return out + "</root>\n";
}

std::vector<xml_item_c*> items_of(xml_item_c* top) {
    std::vector<xml_item_c*> out;
    for (xml_item_c* item = top; item; item = xml_tree_n::next_in_preorder(item, top))
        out.push_back(item);
    return out;
}

std::string written_items(xml_tree_c& tree) { return written(tree, false); }

} // namespace

TEST(xml_tree_items, every_item_deleted_one_by_one_in_random_order) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str(grouped_document(400).c_str()));
    std::mt19937 random(20261123);
    std::vector<xml_item_c*> items = items_of(tree.get_root());
    ASSERT_EQ(items.size(), 1u + 400u * 3u);
    // Each step deletes a random item other than the root, with its subtree, or else one of its
    // attributes; the count of items left is checked against a walk every time.
    std::size_t left = items.size();
    while (left > 1) {
        std::vector<xml_item_c*> now = items_of(tree.get_root());
        ASSERT_EQ(now.size(), left);
        xml_item_c* victim = now[1 + random() % (now.size() - 1)];
        if (random() % 3 == 0 && victim->get_attribute_count() > 0) {
            std::uint64_t before = victim->get_attribute_count();
            std::uint64_t index = random() % before;
            ASSERT_TRUE(victim->attributes.remove_and_delete(index));
            EXPECT_EQ(victim->get_attribute_count(), before - 1);
            continue;
        }
        std::size_t gone = items_of(victim).size();
        if (random() % 2)
            tree.remove(victim);
        else {
            tree.detach(victim);
            delete victim;
        }
        left -= gone;
    }
    EXPECT_EQ(items_of(tree.get_root()).size(), 1u);
    EXPECT_EQ(written_items(tree), "<root kind=\"grouped\"/>\n");
}

TEST(xml_tree_items, items_moved_to_another_tree_outlive_the_source) {
    auto source = std::make_unique<xml_tree_c>();
    ASSERT_TRUE(source->load_from_str(grouped_document(50).c_str()));
    xml_tree_c target;
    ASSERT_TRUE(target.load_from_str((decl + "<target/>").c_str()));
    // Every other group moves, the last first, so that the target holds them in reverse.
    std::vector<xml_item_c*> groups;
    for (xml_item_c* g = source->get_root()->first_child_item(); g; g = g->next_item())
        groups.push_back(g);
    std::size_t moved = 0;
    for (std::size_t i = groups.size(); i-- > 0;) {
        if (i % 2) continue;
        source->detach(groups[i]);
        ASSERT_TRUE(target.attach(groups[i], target.get_root(), true));
        ++moved;
    }
    source.reset();
    std::vector<xml_item_c*> kept;
    for (xml_item_c* g = target.get_root()->first_child_item(); g; g = g->next_item())
        kept.push_back(g);
    ASSERT_EQ(kept.size(), moved);
    for (std::size_t k = 0; k < kept.size(); ++k) {
        std::string n = std::to_string(48 - 2 * k);
        EXPECT_STREQ(kept[k]->label, "g");
        EXPECT_STREQ(kept[k]->find_attribute("id")->to_text(), n.c_str());
        EXPECT_EQ(std::string(kept[k]->find_attribute("note")->to_text()),
                  "a value long enough to need a block of its own " + n);
        EXPECT_STREQ(kept[k]->find_attribute("cond")->to_text(), ("x > " + n).c_str());
        ASSERT_NE(kept[k]->first_child_item(), nullptr);
        EXPECT_STREQ(kept[k]->first_child_item()->find_attribute("id")->to_text(),
                     (n + ".1").c_str());
        // The moved items change as any item does.
        kept[k]->set_label("a_label_much_longer_than_the_inline_room");
        kept[k]->set_attribute("note", "short");
        kept[k]->set_attribute("added", static_cast<std::int64_t>(k));
    }
    std::string text = written_items(target);
    EXPECT_NE(text.find("<a_label_much_longer_than_the_inline_room id=\"48\" note=\"short\" "
                        "cond=\"x &gt; 48\" added=\"0\">"),
              std::string::npos);
    // The target is loaded again from its own text and compares equal.
    xml_tree_c again;
    ASSERT_TRUE(again.load_from_str(("<?xml version=\"1.0\"?>" + text).c_str()));
    EXPECT_EQ(written_items(again), text);
}

TEST(xml_tree_items, detached_item_and_its_copy_live_on_after_the_tree) {
    xml_item_c* detached = nullptr;
    xml_item_c* copy = nullptr;
    {
        xml_tree_c tree;
        ASSERT_TRUE(tree.load_from_str(grouped_document(20).c_str()));
        xml_item_c* g = tree.get_root()->first_child_item()->next_item();
        copy = new xml_item_c(*g, true);
        tree.detach(g);
        detached = g;
        // The rest of the tree is partly deleted before the tree itself goes.
        tree.remove(tree.get_root()->first_child_item());
    }
    ASSERT_NE(detached, nullptr);
    EXPECT_STREQ(detached->find_attribute("id")->to_text(), "1");
    EXPECT_EQ(get_children_count(detached, true), 2u);
    EXPECT_STREQ(detached->first_child_item()->next_item()->text, nullptr);
    EXPECT_TRUE(detached->is_equal(*copy));
    EXPECT_EQ(get_children_count(copy, true), 2u);
    // A new tree takes the item and deletes one child of it, then the item dies with the tree.
    {
        xml_tree_c holder;
        ASSERT_TRUE(holder.attach(detached, nullptr, true));
        holder.remove(detached->first_child_item());
        EXPECT_EQ(get_children_count(detached, true), 1u);
    }
    delete copy;
}

TEST(xml_tree_items, items_of_two_loads_mixed_in_one_tree_and_destroyed_in_any_order) {
    auto first = std::make_unique<xml_tree_c>();
    auto second = std::make_unique<xml_tree_c>();
    ASSERT_TRUE(first->load_from_str(grouped_document(30).c_str()));
    ASSERT_TRUE(second->load_from_str(grouped_document(30).c_str()));
    // The second tree's groups go into the first one's, one by one, and back some of them.
    while (xml_item_c* g = second->get_root()->first_child_item()) {
        second->detach(g);
        ASSERT_TRUE(first->attach(g, first->get_root()->first_child_item(), true));
    }
    EXPECT_EQ(get_children_count(first->get_root(), true), 30u * 3u + 30u * 3u);
    xml_item_c* back =
        first->get_root()->first_child_item()->last_child
            ? static_cast<xml_item_c*>(first->get_root()->first_child_item()->last_child)
            : nullptr;
    ASSERT_NE(back, nullptr);
    first->detach(back);
    ASSERT_TRUE(second->attach(back, second->get_root(), true));
    first.reset();
    EXPECT_STREQ(second->get_root()->first_child_item()->find_attribute("id")->to_text(), "29");
    EXPECT_EQ(get_children_count(second->get_root(), true), 3u);
}
