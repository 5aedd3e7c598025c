// xml_document_c: loading from a file (with element text) and from a string (without), the trace
// lines of a failed load, the declaration's values (standalone never changes), the header, the
// text a store writes line by line, short writes, and the rules of add_node by which the reader
// builds the tree.
#include "common/test_support.h"
#include "files/file_modif.h"
#include "utl/utl_stream.h"
#include "xml/xml_doc.h"
#include "xml/xml_node.h"

#include <gtest/gtest.h>

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

// The trace line that ends with `message`, checked for level 4, the unit xml_doc and the scope.
void expect_doc_line(const std::string& trace, const std::string& message,
                     const std::string& scope) {
    std::string line = trace_line(trace, message);
    ASSERT_FALSE(line.empty()) << "no line ending with \"" << message << "\" in\n" << trace;
    EXPECT_TRUE(has_level(line, 4)) << line;
    EXPECT_NE(line.find(" xml_doc:"), std::string::npos) << line;
    EXPECT_NE(line.find(" " + scope + ": "), std::string::npos) << line;
}

// Loads `content` through a file.
bool load_file(xml_document_c& doc, const std::string& content) {
    temp_dir_c dir;
    std::string path = dir.join("in.xml");
    write_file(path, content);
    return doc.load(path.c_str());
}

// What store writes into a fresh file, and its result.
struct stored_s {
    bool ok;
    std::string text;
};

stored_s store_of(xml_document_c& doc) {
    temp_dir_c dir;
    std::string path = dir.join("out.xml");
    FILE_c file;
    EXPECT_TRUE(file.open(path.c_str(), "w", nullptr, 0));
    bool ok = doc.store(&file);
    file.close();
    return {ok, read_file(path)};
}

std::string header_of(xml_document_c& doc) {
    utl_stream_c stream;
    doc._write_header(stream);
    return stream.c_str();
}

std::string printed(xml_document_c& doc, bool with_header) {
    utl_stream_c stream;
    doc.print(nullptr, stream, with_header);
    return stream.c_str();
}

std::vector<std::string> child_names(const xml_node_c* node) {
    std::vector<std::string> out;
    for (xml_node_c* c = node->first_child_node(); c; c = c->next_node())
        out.emplace_back(c->name ? c->name : "<null>");
    return out;
}

const char* example_expected = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                               "<a n=\"1&lt;2\">\n"
                               "\t<b>x</b>\n"
                               "</a>\n";

} // namespace

// ---- a new document

TEST(xml_doc, new_document_is_empty_and_standalone) {
    xml_document_c doc;
    EXPECT_EQ(doc.get_name(), nullptr);
    EXPECT_EQ(doc.get_version(), nullptr);
    EXPECT_EQ(doc.get_encoding(), nullptr);
    EXPECT_EQ(doc.get_style_sheet(), nullptr);
    EXPECT_TRUE(doc.get_standalone());
    EXPECT_EQ(doc.get_tree(), nullptr);
    EXPECT_EQ(doc.get_root(), nullptr);
    EXPECT_EQ(doc.get_entity_count(), 0u);
}

TEST(xml_doc, setters_copy_and_null_clears) {
    xml_document_c doc;
    std::string v = "1.1";
    doc.set_version(v.c_str());
    v[0] = 'X';
    EXPECT_STREQ(doc.get_version(), "1.1");
    doc.set_encoding("UTF-8");
    doc.set_style_sheet("s.xsl");
    doc.set_xml_file("f.xml");
    EXPECT_STREQ(doc.get_encoding(), "UTF-8");
    EXPECT_STREQ(doc.get_style_sheet(), "s.xsl");
    EXPECT_STREQ(doc.get_xml_file(), "f.xml");
    doc.set_version(nullptr);
    doc.set_encoding(nullptr);
    doc.set_style_sheet(nullptr);
    EXPECT_EQ(doc.get_version(), nullptr);
    EXPECT_EQ(doc.get_encoding(), nullptr);
    EXPECT_EQ(doc.get_style_sheet(), nullptr);
}

TEST(xml_doc, new_line_appends_a_line_feed) {
    xml_document_c doc;
    utl_stream_c stream("x");
    doc.new_line(stream);
    EXPECT_STREQ(stream.c_str(), "x\n");
}

// ---- loading and its trace

TEST(xml_doc, load_of_missing_file_is_false) {
    trace_capture_c capture;
    temp_dir_c dir;
    xml_document_c doc;
    EXPECT_FALSE(doc.load(dir.join("missing.xml").c_str()));
    EXPECT_EQ(doc.get_root(), nullptr);
    EXPECT_NE(capture.text().find("Can not open XML file"), std::string::npos) << capture.text();
}

TEST(xml_doc, load_with_bad_declaration_traces_the_file_header_error) {
    trace_capture_c capture;
    xml_document_c doc;
    EXPECT_FALSE(load_file(doc, "<?xml encoding=\"UTF-8\"?><a/>"));
    expect_doc_line(capture.text(), "Error in DECLARATION header of XML file",
                    "xml_document_c::load");
    EXPECT_EQ(capture.text().find("Can not parse"), std::string::npos);
}

TEST(xml_doc, load_with_broken_element_traces_the_file_parse_error) {
    trace_capture_c capture;
    xml_document_c doc;
    EXPECT_FALSE(load_file(doc, decl + "<a><b></a>"));
    expect_doc_line(capture.text(), "Can not parse XML file", "xml_document_c::load");
    EXPECT_EQ(capture.text().find("Error in DECLARATION"), std::string::npos);
}

TEST(xml_doc, load_from_str_null_or_empty_is_false_without_message) {
    trace_capture_c capture;
    xml_document_c doc;
    EXPECT_FALSE(doc.load_from_str(nullptr));
    EXPECT_FALSE(doc.load_from_str(""));
    std::string trace = capture.text();
    EXPECT_EQ(trace.find("Error in DECLARATION"), std::string::npos) << trace;
    EXPECT_EQ(trace.find("Can not parse"), std::string::npos) << trace;
}

TEST(xml_doc, load_from_str_with_bad_declaration_traces_the_string_header_error) {
    trace_capture_c capture;
    xml_document_c doc;
    EXPECT_FALSE(doc.load_from_str("<a/>"));
    expect_doc_line(capture.text(), "Error in DECLARATION header of XML string",
                    "xml_document_c::load_from_str");
}

TEST(xml_doc, load_from_str_with_broken_element_traces_the_whole_text) {
    trace_capture_c capture;
    xml_document_c doc;
    std::string text = decl + "\n<a>\n\t<b c='1'/>\n</a>";
    EXPECT_FALSE(doc.load_from_str(text.c_str()));
    std::string trace = capture.text();
    expect_doc_line(trace, "Can not parse XML string, ", "xml_document_c::load_from_str");
    EXPECT_NE(trace.find("Can not parse XML string, \n" + text + "\n"), std::string::npos) << trace;
}

TEST(xml_doc, load_keeps_element_text_and_load_from_str_drops_it) {
    std::string text = decl + "<a><b>x</b></a>";
    xml_document_c from_file;
    ASSERT_TRUE(load_file(from_file, text));
    EXPECT_STREQ(from_file.get_root()->first_child_node()->text.c_str(), "x");
    xml_document_c from_string;
    ASSERT_TRUE(from_string.load_from_str(text.c_str()));
    EXPECT_EQ(from_string.get_root()->first_child_node()->text.get_length(), 0u);
    EXPECT_EQ(from_string.get_root()->first_child_node()->type, xml_node_c::type_element);
}

TEST(xml_doc, loading_twice_replaces_the_root) {
    xml_document_c doc;
    ASSERT_TRUE(doc.load_from_str((decl + "<first><x/></first>").c_str()));
    ASSERT_TRUE(doc.load_from_str("<?xml version=\"2.0\"?><second/>"));
    ASSERT_NE(doc.get_root(), nullptr);
    EXPECT_STREQ(doc.get_root()->name, "second");
    EXPECT_EQ(doc.get_root()->first_child, nullptr);
    EXPECT_STREQ(doc.get_version(), "2.0");
    ASSERT_TRUE(load_file(doc, decl + "<third/>"));
    EXPECT_STREQ(doc.get_root()->name, "third");
}

TEST(xml_doc, failed_load_keeps_what_was_read) {
    xml_document_c doc;
    EXPECT_FALSE(doc.load_from_str((decl + "<a x=\"1\"><b/><c>").c_str()));
    EXPECT_STREQ(doc.get_version(), "1.0");
    ASSERT_NE(doc.get_root(), nullptr);
    EXPECT_STREQ(doc.get_root()->name, "a");
    EXPECT_EQ(child_names(doc.get_root()), (std::vector<std::string>{"b", "c"}));
}

TEST(xml_doc, failed_declaration_keeps_the_values_read) {
    xml_document_c doc;
    EXPECT_FALSE(doc.load_from_str("<?xml version=\"1.0\" encoding=\"E\" other=\"x\"?><a/>"));
    EXPECT_STREQ(doc.get_version(), "1.0");
    EXPECT_STREQ(doc.get_encoding(), "E");
    EXPECT_EQ(doc.get_root(), nullptr);
}

// ---- standalone

TEST(xml_doc, set_standalone_never_changes_the_flag) {
    xml_document_c doc;
    doc.set_standalone("no");
    EXPECT_TRUE(doc.get_standalone());
    doc.set_standalone("yes");
    EXPECT_TRUE(doc.get_standalone());
    doc.set_standalone(nullptr);
    EXPECT_TRUE(doc.get_standalone());
}

TEST(xml_doc, loading_standalone_no_leaves_the_flag_true) {
    xml_document_c doc;
    ASSERT_TRUE(doc.load_from_str("<?xml version=\"1.0\" standalone=\"no\"?><a/>"));
    EXPECT_TRUE(doc.get_standalone());
    stored_s out = store_of(doc);
    EXPECT_TRUE(out.ok);
    EXPECT_EQ(out.text, "<?xml version=\"1.0\"?>\n<a/>\n");
    EXPECT_EQ(out.text.find("standalone"), std::string::npos);
}

TEST(xml_doc, loading_standalone_yes_writes_no_standalone) {
    xml_document_c doc;
    ASSERT_TRUE(doc.load_from_str("<?xml version=\"1.0\" standalone=\"yes\"?><a/>"));
    EXPECT_TRUE(doc.get_standalone());
    EXPECT_EQ(store_of(doc).text.find("standalone"), std::string::npos);
}

// ---- the header

TEST(xml_doc, header_with_version_and_encoding) {
    xml_document_c doc;
    doc.set_version("1.0");
    doc.set_encoding("UTF-8");
    EXPECT_EQ(header_of(doc), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
}

TEST(xml_doc, header_writes_only_the_values_set) {
    xml_document_c doc;
    EXPECT_EQ(header_of(doc), "<?xml?>\n");
    doc.set_encoding("E");
    EXPECT_EQ(header_of(doc), "<?xml encoding=\"E\"?>\n");
    doc.set_encoding(nullptr);
    doc.set_version("1.0");
    EXPECT_EQ(header_of(doc), "<?xml version=\"1.0\"?>\n");
}

TEST(xml_doc, header_with_style_sheet_adds_a_second_line) {
    xml_document_c doc;
    doc.set_version("1.0");
    doc.set_style_sheet("look.xsl");
    EXPECT_EQ(header_of(doc), "<?xml version=\"1.0\"?>\n"
                              "<?xml-stylesheet type=\"text/xsl\" href=\"look.xsl\"?>\n");
}

TEST(xml_doc, header_values_are_written_raw) {
    xml_document_c doc;
    doc.set_version("1\"0");
    doc.set_encoding("a<b&c");
    doc.set_style_sheet("x\"y");
    EXPECT_EQ(header_of(doc), "<?xml version=\"1\"0\" encoding=\"a<b&c\"?>\n"
                              "<?xml-stylesheet type=\"text/xsl\" href=\"x\"y\"?>\n");
}

TEST(xml_doc, header_appends_to_the_stream) {
    xml_document_c doc;
    doc.set_version("1.0");
    utl_stream_c stream("before\n");
    doc._write_header(stream);
    EXPECT_STREQ(stream.c_str(), "before\n<?xml version=\"1.0\"?>\n");
}

// ---- storing

TEST(xml_doc, store_writes_the_example_exactly) {
    xml_document_c doc;
    ASSERT_TRUE(load_file(doc, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                               "<a n=\"1&lt;2\"><b>x</b></a>\n"));
    stored_s out = store_of(doc);
    EXPECT_TRUE(out.ok);
    EXPECT_EQ(out.text, example_expected);
}

TEST(xml_doc, store_of_document_built_by_hand_writes_the_example) {
    xml_document_c doc;
    doc.set_version("1.0");
    doc.set_encoding("UTF-8");
    auto* a = new xml_node_c("a");
    a->add_attribute("n", "1<2");
    ASSERT_TRUE(doc.add_node(a, nullptr));
    auto* b = new xml_node_c("b");
    b->type = xml_node_c::type_text;
    b->text.append("x");
    ASSERT_TRUE(doc.add_node(b, a));
    EXPECT_EQ(store_of(doc).text, example_expected);
    EXPECT_EQ(printed(doc, true), example_expected);
}

TEST(xml_doc, print_without_header) {
    xml_document_c doc;
    ASSERT_TRUE(load_file(doc, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                               "<a n=\"1&lt;2\"><b>x</b></a>\n"));
    EXPECT_EQ(printed(doc, false), "<a n=\"1&lt;2\">\n\t<b>x</b>\n</a>\n");
}

TEST(xml_doc, print_of_a_subtree_keeps_its_depth_and_has_no_header) {
    xml_document_c doc;
    ASSERT_TRUE(doc.load_from_str((decl + "<r><a><b/><c/></a><d/></r>").c_str()));
    utl_stream_c stream;
    doc.print(doc.get_root()->first_child_node(), stream, true);
    EXPECT_STREQ(stream.c_str(), "\t<a>\n\t\t<b/>\n\t\t<c/>\n\t</a>\n");
}

TEST(xml_doc, print_without_root_prints_nothing) {
    xml_document_c doc;
    doc.set_version("1.0");
    EXPECT_EQ(printed(doc, true), "");
}

TEST(xml_doc, stored_text_has_one_element_per_line_and_tabs_per_depth) {
    xml_document_c doc;
    ASSERT_TRUE(
        doc.load_from_str((decl + "<r   x=\"1\"  ><a><b  y=\"2\" /><c></c></a><d/></r>").c_str()));
    stored_s out = store_of(doc);
    EXPECT_TRUE(out.ok);
    EXPECT_EQ(out.text, "<?xml version=\"1.0\"?>\n"
                        "<r x=\"1\">\n"
                        "\t<a>\n"
                        "\t\t<b y=\"2\"/>\n"
                        "\t\t<c/>\n"
                        "\t</a>\n"
                        "\t<d/>\n"
                        "</r>\n");
}

TEST(xml_doc, empty_element_pair_is_written_self_closed) {
    xml_document_c doc;
    ASSERT_TRUE(load_file(doc, decl + "<a></a>"));
    EXPECT_EQ(store_of(doc).text, decl + "\n<a/>\n");
}

TEST(xml_doc, stored_attribute_values_are_encoded) {
    xml_document_c doc;
    ASSERT_TRUE(doc.load_from_str((decl + "<a q=\"&quot;&amp;&lt;&gt;\" e=\"\"/>").c_str()));
    EXPECT_EQ(store_of(doc).text, decl + "\n<a q=\"&quot;&amp;&lt;&gt;\" e=\"\"/>\n");
}

TEST(xml_doc, element_with_attributes_and_text_is_stored_without_attributes) {
    xml_document_c doc;
    ASSERT_TRUE(load_file(doc, decl + "<r><a x=\"1\">t</a></r>"));
    EXPECT_EQ(store_of(doc).text, decl + "\n<r>\n\t<a>t</a>\n</r>\n");
}

TEST(xml_doc, stored_document_loads_back_the_same) {
    xml_document_c doc;
    ASSERT_TRUE(load_file(doc, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                               "<a n=\"1&lt;2\"><b>x</b><c d=\"&quot;\"/></a>\n"));
    stored_s first = store_of(doc);
    xml_document_c again;
    ASSERT_TRUE(load_file(again, first.text));
    EXPECT_EQ(store_of(again).text, first.text);
}

TEST(xml_doc, style_sheet_line_written_by_store_is_refused_by_load) {
    xml_document_c doc;
    ASSERT_TRUE(doc.load_from_str((decl + "<a/>").c_str()));
    doc.set_style_sheet("look.xsl");
    stored_s out = store_of(doc);
    ASSERT_TRUE(out.ok);
    EXPECT_EQ(out.text, "<?xml version=\"1.0\"?>\n"
                        "<?xml-stylesheet type=\"text/xsl\" href=\"look.xsl\"?>\n"
                        "<a/>\n");
    trace_capture_c capture;
    xml_document_c again;
    EXPECT_FALSE(load_file(again, out.text));
    expect_doc_line(capture.text(), "Can not parse XML file", "xml_document_c::load");
}

TEST(xml_doc, store_without_tree_writes_the_header_only) {
    xml_document_c doc;
    doc.set_version("1.0");
    stored_s out = store_of(doc);
    EXPECT_TRUE(out.ok);
    EXPECT_EQ(out.text, "<?xml version=\"1.0\"?>\n");
    xml_document_c bare;
    stored_s bare_out = store_of(bare);
    EXPECT_TRUE(bare_out.ok);
    EXPECT_EQ(bare_out.text, "<?xml?>\n");
}

TEST(xml_doc, store_after_comment_only_document_writes_the_header_only) {
    xml_document_c doc;
    ASSERT_TRUE(doc.load_from_str((decl + "<!-- nothing -->").c_str()));
    stored_s out = store_of(doc);
    EXPECT_TRUE(out.ok);
    EXPECT_EQ(out.text, decl + "\n");
}

// ---- short writes

TEST(xml_doc, write_to_closed_file_is_false_with_message) {
    trace_capture_c capture;
    xml_document_c doc;
    FILE_c file;
    EXPECT_FALSE(doc._write_xml_buf_to_file("<a/>", 4, &file));
    expect_doc_line(capture.text(), "Unable to write <a/> to xml file",
                    "xml_document_c::_write_xml_buf_to_file");
}

TEST(xml_doc, write_to_read_only_file_is_false_with_message) {
    trace_capture_c capture;
    temp_dir_c dir;
    std::string path = dir.join("ro.xml");
    write_file(path, "old");
    FILE_c file;
    ASSERT_TRUE(file.open(path.c_str(), "r", nullptr, 0));
    xml_document_c doc;
    EXPECT_FALSE(doc._write_xml_buf_to_file("abc", 3, &file));
    file.close();
    expect_doc_line(capture.text(), "Unable to write abc to xml file",
                    "xml_document_c::_write_xml_buf_to_file");
    EXPECT_EQ(read_file(path), "old");
}

TEST(xml_doc, write_of_a_whole_piece_is_true) {
    temp_dir_c dir;
    std::string path = dir.join("w.xml");
    FILE_c file;
    ASSERT_TRUE(file.open(path.c_str(), "w", nullptr, 0));
    xml_document_c doc;
    EXPECT_TRUE(doc._write_xml_buf_to_file("abc", 3, &file));
    file.close();
    EXPECT_EQ(read_file(path), "abc");
}

TEST(xml_doc, store_to_closed_file_is_false) {
    trace_capture_c capture;
    xml_document_c doc;
    ASSERT_TRUE(doc.load_from_str((decl + "<a/>").c_str()));
    FILE_c file;
    EXPECT_FALSE(doc.store(&file));
    EXPECT_NE(capture.text().find(" to xml file"), std::string::npos) << capture.text();
}

TEST(xml_doc, store_to_read_only_file_is_false) {
    temp_dir_c dir;
    std::string path = dir.join("ro.xml");
    write_file(path, "");
    FILE_c file;
    ASSERT_TRUE(file.open(path.c_str(), "r", nullptr, 0));
    xml_document_c doc;
    ASSERT_TRUE(doc.load_from_str((decl + "<a><b/></a>").c_str()));
    EXPECT_FALSE(doc.store(&file));
    file.close();
}

// ---- add_node

TEST(xml_doc, add_node_first_node_becomes_the_root_whatever_the_parent) {
    xml_document_c doc;
    xml_node_c elsewhere("elsewhere");
    auto* node = new xml_node_c("a");
    EXPECT_TRUE(doc.add_node(node, &elsewhere));
    EXPECT_EQ(doc.get_root(), node);
    EXPECT_NE(doc.get_tree(), nullptr);
    EXPECT_EQ(elsewhere.first_child, nullptr);
}

TEST(xml_doc, add_node_links_children_after_the_last_child) {
    xml_document_c doc;
    auto* root = new xml_node_c("r");
    ASSERT_TRUE(doc.add_node(root, nullptr));
    auto* a = new xml_node_c("a");
    auto* b = new xml_node_c("b");
    ASSERT_TRUE(doc.add_node(a, root));
    ASSERT_TRUE(doc.add_node(b, root));
    EXPECT_EQ(child_names(root), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(a->parent, root);
    EXPECT_EQ(b->prev, a);
    EXPECT_EQ(root->last_child, b);
}

TEST(xml_doc, add_node_without_parent_replaces_the_whole_tree) {
    xml_document_c doc;
    auto* root = new xml_node_c("r");
    ASSERT_TRUE(doc.add_node(root, nullptr));
    ASSERT_TRUE(doc.add_node(new xml_node_c("a"), root));
    auto* replacement = new xml_node_c("new");
    EXPECT_TRUE(doc.add_node(replacement, nullptr));
    EXPECT_EQ(doc.get_root(), replacement);
    EXPECT_EQ(replacement->first_child, nullptr);
    EXPECT_EQ(printed(doc, false), "<new/>\n");
}

// The first call makes the document's tree whatever it is given: a null node makes a tree
// without a root, and the next parentless node becomes the root.
TEST(xml_doc, add_node_null_node_on_new_document_makes_an_empty_tree) {
    xml_document_c doc;
    EXPECT_TRUE(doc.add_node(nullptr, nullptr));
    EXPECT_NE(doc.get_tree(), nullptr);
    EXPECT_EQ(doc.get_root(), nullptr);
    auto* root = new xml_node_c("r");
    EXPECT_TRUE(doc.add_node(root, nullptr));
    EXPECT_EQ(doc.get_root(), root);
}

TEST(xml_doc, add_node_null_node_later_is_false) {
    xml_document_c doc;
    auto* root = new xml_node_c("r");
    ASSERT_TRUE(doc.add_node(root, nullptr));
    EXPECT_FALSE(doc.add_node(nullptr, nullptr));
    xml_document_c other;
    auto* other_root = new xml_node_c("r");
    ASSERT_TRUE(other.add_node(other_root, nullptr));
    EXPECT_FALSE(other.add_node(nullptr, other_root));
}

TEST(xml_doc, add_node_with_a_different_parent_is_false) {
    xml_document_c doc;
    auto* root = new xml_node_c("r");
    ASSERT_TRUE(doc.add_node(root, nullptr));
    auto* a = new xml_node_c("a");
    ASSERT_TRUE(doc.add_node(a, root));
    xml_node_c node("n");
    node.parent = a;
    EXPECT_FALSE(doc.add_node(&node, root));
    EXPECT_EQ(child_names(root), (std::vector<std::string>{"a"}));
    EXPECT_EQ(a->first_child, nullptr);
    node.parent = nullptr;
}
