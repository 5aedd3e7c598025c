// The reader: tags cut at the first `>` with line ends dropped, a token buffer that grows by 512,
// words cut in place, the declaration, comments, closing tags, elements, attributes and element
// text, the two sources of bytes (file and string), and input that is broken on purpose:
// truncated documents, 0xFF bytes, a 10 MB tag, 100,000 attributes, bad names, open quotes and
// open comments.
#include "common/test_support.h"
#include "xml/xml_doc.h"
#include "xml/xml_node.h"
#include "xml/xml_reader.h"
#include "xml/xml_tree_templ.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using test_support::temp_dir_c;
using test_support::trace_capture_c;
using test_support::trace_line;
using test_support::write_file;

using pairs_t = std::vector<std::pair<std::string, std::string>>;

const std::string decl = "<?xml version=\"1.0\"?>";

// The tag text that one _read_tag leaves in the buffer, and whether it read one.
struct tag_s {
    bool read;
    std::string text;
};

tag_s read_tag(const std::string& input) {
    xml_stream_reader_c reader(input.data(), input.size());
    bool read = reader._read_tag();
    return {read, reader.get_buffer()};
}

bool load_str(xml_document_c& doc, const std::string& text) {
    return doc.load_from_str(text.c_str());
}

// Loads through a file, which keeps element text.
bool load_file(xml_document_c& doc, const std::string& content) {
    temp_dir_c dir;
    std::string path = dir.join("in.xml");
    write_file(path, content);
    return doc.load(path.c_str());
}

// Both sources agree on whether the body behind the declaration loads.
bool loads_both_ways(const std::string& body) {
    xml_document_c from_string;
    xml_document_c from_file;
    bool a = load_str(from_string, decl + body);
    bool b = load_file(from_file, decl + body);
    EXPECT_EQ(a, b) << body;
    return a && b;
}

bool refused_both_ways(const std::string& body) {
    xml_document_c from_string;
    xml_document_c from_file;
    bool a = load_str(from_string, decl + body);
    bool b = load_file(from_file, decl + body);
    EXPECT_EQ(a, b) << body;
    return !a && !b;
}

std::vector<xml_node_c*> children_of(const xml_node_c* node) {
    std::vector<xml_node_c*> out;
    for (xml_node_c* c = node->first_child_node(); c; c = c->next_node()) out.push_back(c);
    return out;
}

pairs_t attributes_of(const xml_node_c* node) {
    pairs_t out;
    if (!node || !node->attributes) return out;
    for (xml_attr_c* a = node->attributes->first(); a; a = node->attributes->next(a))
        out.emplace_back(a->name ? a->name : "<null>", a->value ? a->value : "<null>");
    return out;
}

std::string name_of(const xml_node_c* node) { return node && node->name ? node->name : "<none>"; }

bool has_level(const std::string& line, unsigned level) {
    return line.find(" level=" + std::to_string(level) + " ") != std::string::npos;
}

// The smallest multiple of 512 that holds `length` bytes of tag text and a terminator.
std::uint64_t buffer_for(std::uint64_t length) { return (length + 1 + 511) / 512 * 512; }

} // namespace

// ---- _read_tag

TEST(xml_reader, tag_text_is_between_lt_and_gt) {
    tag_s tag = read_tag("<abc def=\"1\">");
    EXPECT_TRUE(tag.read);
    EXPECT_EQ(tag.text, "abc def=\"1\"");
}

TEST(xml_reader, bytes_before_lt_are_discarded) {
    tag_s tag = read_tag("some text > and more<a>");
    EXPECT_TRUE(tag.read);
    EXPECT_EQ(tag.text, "a");
}

TEST(xml_reader, line_feed_and_carriage_return_inside_tag_vanish) {
    tag_s tag = read_tag("<a\r\n b=\"1\"\n\r>");
    EXPECT_TRUE(tag.read);
    EXPECT_EQ(tag.text, "a b=\"1\"");
}

TEST(xml_reader, line_end_inside_tag_does_not_separate_words) {
    tag_s tag = read_tag("<x\na=\"1\">");
    EXPECT_EQ(tag.text, "xa=\"1\"");
}

TEST(xml_reader, tabs_and_spaces_inside_tag_stay) {
    tag_s tag = read_tag("<a \t b\t>");
    EXPECT_EQ(tag.text, "a \t b\t");
}

TEST(xml_reader, tag_ends_at_first_gt_inside_quotes) {
    tag_s tag = read_tag("<a b=\"x>y\">");
    EXPECT_TRUE(tag.read);
    EXPECT_EQ(tag.text, "a b=\"x");
}

TEST(xml_reader, end_of_input_inside_tag_is_false) {
    EXPECT_FALSE(read_tag("<abc").read);
    EXPECT_FALSE(read_tag("<").read);
}

TEST(xml_reader, end_of_input_before_any_lt_is_false) {
    EXPECT_FALSE(read_tag("no tag here >").read);
    EXPECT_FALSE(read_tag("").read);
}

TEST(xml_reader, successive_tags_are_read_in_turn) {
    std::string input = "<a> text <b c=\"d\"/>";
    xml_stream_reader_c reader(input.data(), input.size());
    ASSERT_TRUE(reader._read_tag());
    EXPECT_STREQ(reader.get_buffer(), "a");
    ASSERT_TRUE(reader._read_tag());
    EXPECT_STREQ(reader.get_buffer(), "b c=\"d\"/");
    EXPECT_FALSE(reader._read_tag());
}

TEST(xml_reader, empty_tag_is_read_as_empty_text) {
    tag_s tag = read_tag("<>");
    EXPECT_TRUE(tag.read);
    EXPECT_EQ(tag.text, "");
}

// ---- the token buffer

TEST(xml_reader, token_buffer_starts_at_512) {
    xml_stream_reader_c reader;
    EXPECT_EQ(reader.get_buffer_size(), 512u);
    EXPECT_EQ(xml_base_reader_c::buffer_step, 512u);
}

TEST(xml_reader, tag_of_511_bytes_fits_the_first_buffer) {
    std::string input = "<" + std::string(511, 'a') + ">";
    xml_stream_reader_c reader(input.data(), input.size());
    ASSERT_TRUE(reader._read_tag());
    EXPECT_EQ(std::strlen(reader.get_buffer()), 511u);
    EXPECT_EQ(reader.get_buffer_size(), 512u);
}

TEST(xml_reader, tag_of_512_bytes_grows_the_buffer_to_1024) {
    std::string input = "<" + std::string(512, 'a') + ">";
    xml_stream_reader_c reader(input.data(), input.size());
    ASSERT_TRUE(reader._read_tag());
    EXPECT_EQ(std::string(reader.get_buffer()), std::string(512, 'a'));
    EXPECT_EQ(reader.get_buffer_size(), 1024u);
}

TEST(xml_reader, token_buffer_grows_by_512_not_by_doubling) {
    std::string input = "<" + std::string(1024, 'a') + ">";
    xml_stream_reader_c reader(input.data(), input.size());
    ASSERT_TRUE(reader._read_tag());
    EXPECT_EQ(std::string(reader.get_buffer()), std::string(1024, 'a'));
    EXPECT_EQ(reader.get_buffer_size(), 1536u);
}

TEST(xml_reader, tag_longer_than_511_bytes_is_read_whole) {
    std::string body = "a v=\"" + std::string(5000, 'z') + "\"";
    tag_s tag = read_tag("<" + body + ">");
    EXPECT_TRUE(tag.read);
    EXPECT_EQ(tag.text, body);
}

TEST(xml_reader, buffer_after_long_tag_is_a_multiple_of_512_big_enough) {
    for (std::uint64_t length : {600u, 1023u, 1500u, 4096u, 70000u}) {
        std::string input = "<" + std::string(length, 'q') + ">";
        xml_stream_reader_c reader(input.data(), input.size());
        ASSERT_TRUE(reader._read_tag());
        EXPECT_EQ(std::strlen(reader.get_buffer()), length);
        EXPECT_EQ(reader.get_buffer_size() % 512, 0u) << length;
        EXPECT_EQ(reader.get_buffer_size(), buffer_for(length)) << length;
    }
}

TEST(xml_reader, long_tag_from_file_grows_buffer_in_512_steps) {
    temp_dir_c dir;
    std::string path = dir.join("long.xml");
    // Longer than one window of the file reader.
    std::uint64_t length = 200000;
    write_file(path, "<" + std::string(length, 'q') + ">");
    xml_file_reader_c reader;
    ASSERT_TRUE(reader.open_xml(path.c_str()));
    ASSERT_TRUE(reader._read_tag());
    EXPECT_EQ(std::strlen(reader.get_buffer()), length);
    EXPECT_EQ(reader.get_buffer_size(), buffer_for(length));
}

TEST(xml_reader, enlarge_buffer_adds_512_and_keeps_the_content) {
    std::string input = "<abc>";
    xml_stream_reader_c reader(input.data(), input.size());
    ASSERT_TRUE(reader._read_tag());
    reader._enlarge_buffer();
    EXPECT_EQ(reader.get_buffer_size(), 1024u);
    EXPECT_STREQ(reader.get_buffer(), "abc");
    reader._enlarge_buffer();
    EXPECT_EQ(reader.get_buffer_size(), 1536u);
    EXPECT_STREQ(reader.get_buffer(), "abc");
}

// ---- _get_word and _is_tag_end

TEST(xml_reader, get_word_cuts_words_in_place) {
    std::string input = "<ab cd>";
    xml_stream_reader_c reader(input.data(), input.size());
    ASSERT_TRUE(reader._read_tag());
    char* first = reader._get_word(' ', true, false);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first, reader.get_buffer());
    EXPECT_STREQ(first, "ab");
    char* second = reader._get_word(0, true, false);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second, reader.get_buffer() + 3);
    EXPECT_STREQ(second, "cd");
    EXPECT_EQ(reader._get_word(0, true, false), nullptr);
}

TEST(xml_reader, get_word_skips_leading_spaces_when_asked) {
    std::string input = "<   name=x>";
    xml_stream_reader_c reader(input.data(), input.size());
    ASSERT_TRUE(reader._read_tag());
    char* word = reader._get_word('=', true, false);
    ASSERT_NE(word, nullptr);
    EXPECT_STREQ(word, "name");
    EXPECT_STREQ(reader.get_buffer() + reader.get_cursor(), "x");
}

TEST(xml_reader, get_word_unquoted_fails_at_a_space_before_the_delimiter) {
    std::string input = "<a b=1>";
    xml_stream_reader_c reader(input.data(), input.size());
    ASSERT_TRUE(reader._read_tag());
    EXPECT_EQ(reader._get_word('=', true, false), nullptr);
}

TEST(xml_reader, get_word_without_delimiter_fails) {
    std::string input = "<abc>";
    xml_stream_reader_c reader(input.data(), input.size());
    ASSERT_TRUE(reader._read_tag());
    EXPECT_EQ(reader._get_word('=', true, false), nullptr);
}

TEST(xml_reader, get_word_quoted_takes_spaces_inside_quotes) {
    std::string input = "< \"x y\" rest>";
    xml_stream_reader_c reader(input.data(), input.size());
    ASSERT_TRUE(reader._read_tag());
    char* word = reader._get_word('"', true, true);
    ASSERT_NE(word, nullptr);
    EXPECT_STREQ(word, "x y");
}

TEST(xml_reader, get_word_quoted_needs_the_opening_quote) {
    std::string input = "<'x'>";
    xml_stream_reader_c reader(input.data(), input.size());
    ASSERT_TRUE(reader._read_tag());
    EXPECT_EQ(reader._get_word('"', true, true), nullptr);
}

TEST(xml_reader, get_word_quoted_needs_the_closing_quote) {
    std::string input = "<\"open>";
    xml_stream_reader_c reader(input.data(), input.size());
    ASSERT_TRUE(reader._read_tag());
    EXPECT_EQ(reader._get_word('"', true, true), nullptr);
}

TEST(xml_reader, is_tag_end_after_spaces_only) {
    std::string input = "<a   \t>";
    xml_stream_reader_c reader(input.data(), input.size());
    ASSERT_TRUE(reader._read_tag());
    EXPECT_FALSE(reader._is_tag_end());
    ASSERT_NE(reader._get_word(' ', true, false), nullptr);
    EXPECT_TRUE(reader._is_tag_end());
}

TEST(xml_reader, is_tag_end_at_caret_M) {
    std::string input = "< ^M b=\"1\">";
    xml_stream_reader_c reader(input.data(), input.size());
    ASSERT_TRUE(reader._read_tag());
    EXPECT_TRUE(reader._is_tag_end());
}

// ---- the byte sources

TEST(xml_reader, base_reader_next_char_returns_255) {
    xml_base_reader_c reader;
    EXPECT_EQ(reader.next_char(), 255);
    EXPECT_EQ(reader.next_char(), 255);
}

TEST(xml_reader, stream_reader_next_char_returns_bytes_then_255) {
    xml_stream_reader_c reader("ab", 2);
    EXPECT_EQ(reader.next_char(), 'a');
    EXPECT_EQ(reader.next_char(), 'b');
    EXPECT_EQ(reader.next_char(), 255);
    EXPECT_EQ(reader.next_char(), 255);
}

TEST(xml_reader, stream_reader_of_nothing_returns_255) {
    xml_stream_reader_c empty("", 0);
    EXPECT_EQ(empty.next_char(), 255);
    xml_stream_reader_c unset;
    EXPECT_EQ(unset.next_char(), 255);
}

TEST(xml_reader, stream_reader_step_back_at_position_0_does_nothing) {
    xml_stream_reader_c reader("xy", 2);
    reader.step_back();
    EXPECT_EQ(reader.get_position(), 0u);
    EXPECT_EQ(reader.next_char(), 'x');
    EXPECT_EQ(reader.next_char(), 'y');
}

TEST(xml_reader, stream_reader_step_back_rereads_the_last_byte) {
    xml_stream_reader_c reader("xy", 2);
    EXPECT_EQ(reader.next_char(), 'x');
    EXPECT_EQ(reader.get_position(), 1u);
    reader.step_back();
    EXPECT_EQ(reader.get_position(), 0u);
    EXPECT_EQ(reader.next_char(), 'x');
    EXPECT_EQ(reader.next_char(), 'y');
    reader.step_back();
    EXPECT_EQ(reader.next_char(), 'y');
    EXPECT_EQ(reader.next_char(), 255);
}

TEST(xml_reader, stream_reader_keeps_a_private_copy) {
    std::string text = "abc";
    xml_stream_reader_c reader(text.data(), text.size());
    text[0] = 'z';
    EXPECT_EQ(reader.get_length(), 3u);
    EXPECT_EQ(reader.next_char(), 'a');
}

TEST(xml_reader, stream_reader_set_text_starts_again_at_0) {
    xml_stream_reader_c reader("abc", 3);
    reader.next_char();
    reader.set_text("xy", 2);
    EXPECT_EQ(reader.get_position(), 0u);
    EXPECT_EQ(reader.get_length(), 2u);
    EXPECT_EQ(reader.next_char(), 'x');
}

TEST(xml_reader, stream_reader_input_ends_at_0xFF) {
    xml_stream_reader_c reader("a\xFF"
                               "b",
                               3);
    EXPECT_EQ(reader.next_char(), 'a');
    EXPECT_EQ(reader.next_char(), 255);
    EXPECT_EQ(reader.next_char(), 255);
}

TEST(xml_reader, file_reader_next_char_returns_bytes_then_255) {
    temp_dir_c dir;
    std::string path = dir.join("bytes.xml");
    write_file(path, "ab");
    xml_file_reader_c reader;
    ASSERT_TRUE(reader.open_xml(path.c_str()));
    reader.step_back();
    EXPECT_EQ(reader.next_char(), 'a');
    EXPECT_EQ(reader.next_char(), 'b');
    reader.step_back();
    EXPECT_EQ(reader.next_char(), 'b');
    EXPECT_EQ(reader.next_char(), 255);
    EXPECT_EQ(reader.next_char(), 255);
}

TEST(xml_reader, file_reader_step_back_across_a_window) {
    temp_dir_c dir;
    std::string path = dir.join("window.xml");
    std::string content(xml_file_reader_c::window_size + 10, 'w');
    content[xml_file_reader_c::window_size - 1] = 'L';
    content[xml_file_reader_c::window_size] = 'F';
    write_file(path, content);
    xml_file_reader_c reader;
    ASSERT_TRUE(reader.open_xml(path.c_str()));
    unsigned char last = 0;
    for (std::uint64_t i = 0; i < xml_file_reader_c::window_size; ++i) last = reader.next_char();
    EXPECT_EQ(last, 'L');
    EXPECT_EQ(reader.next_char(), 'F');
    reader.step_back();
    EXPECT_EQ(reader.next_char(), 'F');
    // The last byte of the previous window is kept in front of the new one.
    reader.step_back();
    reader.step_back();
    EXPECT_EQ(reader.next_char(), 'L');
    EXPECT_EQ(reader.next_char(), 'F');
}

// A tag is read where it stands in the input, and the input stays as it was: the bytes of a
// parsed tag read back unchanged.
TEST(xml_reader, parsed_tag_reads_back_unchanged) {
    std::string input = decl + "<a b=\"1\" c=\"&amp;\"/>";
    xml_document_c doc;
    xml_stream_reader_c reader(input.data(), input.size());
    reader.set_document(&doc);
    ASSERT_TRUE(reader.read_declaration());
    ASSERT_TRUE(reader.read_node(nullptr, true));
    for (int i = 0; i < 9; ++i) reader.step_back();
    std::string tail;
    for (int i = 0; i < 9; ++i) tail += static_cast<char>(reader.next_char());
    EXPECT_EQ(tail, "\"&amp;\"/>");
}

// A tag whose attributes leave the common form half way is finished by the general steps, which
// keep the attributes read so far and read the rest as they always do.
TEST(xml_reader, attributes_after_a_blank_behind_equals_are_read_on) {
    std::string body = "<a b=\"1\" c= \"2\"\td=\"3\"e=\"4\"/>";
    for (bool from_file : {false, true}) {
        xml_document_c doc;
        ASSERT_TRUE(from_file ? load_file(doc, decl + body) : load_str(doc, decl + body));
        ASSERT_NE(doc.get_root(), nullptr);
        ASSERT_NE(doc.get_root()->attributes, nullptr);
        pairs_t got;
        xml_attr_list_c* list = doc.get_root()->attributes;
        for (xml_attr_c* a = list->first(); a; a = list->next(a))
            got.emplace_back(a->name, a->value);
        EXPECT_EQ(got, (pairs_t{{"b", "1"}, {"c", "2"}, {"d", "3"}, {"e", "4"}})) << from_file;
    }
}

// Tags that cross from one window of the file reader into the next are copied whole; the tree
// is the same as from the string, which is one window.
TEST(xml_reader, tags_across_file_windows_give_the_same_tree) {
    std::string body = "<r>";
    for (int i = 0; body.size() < 3 * xml_file_reader_c::window_size; ++i)
        body +=
            "<e n=\"" + std::to_string(i) + "\" v=\"x&lt;" + std::string(i % 37, 'y') + "\"/>\n";
    body += "</r>";
    temp_dir_c dir;
    std::string path = dir.join("windows.xml");
    write_file(path, decl + body);
    xml_tree_c from_file;
    xml_tree_c from_string;
    ASSERT_TRUE(from_file.load(path.c_str()));
    ASSERT_TRUE(from_string.load_from_str((decl + body).c_str()));
    EXPECT_TRUE(from_file.is_equal(from_string));
    EXPECT_GT(get_children_count(from_file.get_root(), false), 1000u);
}

// Tags of the common form are read in one pass; each form below leaves it at some point, and
// the element must come out as the general steps read it: the same attributes in the same order,
// or the same refusal, from a string and from a file.
namespace {

// The attributes of the root of `body`, or nothing when it does not load; both sources agree.
std::optional<pairs_t> root_attributes(const std::string& body) {
    std::optional<pairs_t> result[2];
    for (bool from_file : {false, true}) {
        xml_document_c doc;
        if (!(from_file ? load_file(doc, decl + body) : load_str(doc, decl + body))) continue;
        pairs_t got;
        if (xml_attr_list_c* list = doc.get_root() ? doc.get_root()->attributes : nullptr)
            for (xml_attr_c* a = list->first(); a; a = list->next(a))
                got.emplace_back(a->name, a->value);
        result[from_file] = got;
    }
    EXPECT_EQ(result[0], result[1]) << body;
    return result[0];
}

} // namespace

TEST(xml_reader, common_tags_and_the_forms_that_leave_them_half_way) {
    EXPECT_EQ(root_attributes("<a b=\"1\" c=\"2\"/>"), (pairs_t{{"b", "1"}, {"c", "2"}}));
    EXPECT_EQ(root_attributes("<a\tb=\"1\"c=\"2\" ></a>"), (pairs_t{{"b", "1"}, {"c", "2"}}));
    // A tab, a vertical tab and a form feed stay in a value; a line end vanishes from it.
    EXPECT_EQ(root_attributes("<a b=\"x\ty\vz\f\"/>"), (pairs_t{{"b", "x\ty\vz\f"}}));
    EXPECT_EQ(root_attributes("<a b=\"x\ny\" c=\"3\"/>"), (pairs_t{{"b", "xy"}, {"c", "3"}}));
    EXPECT_EQ(root_attributes("<a b=\"1\"/\n>"), (pairs_t{{"b", "1"}}));
    EXPECT_EQ(root_attributes("<a b=\"&lt;&amp;\"/>"), (pairs_t{{"b", "<&"}}));
    EXPECT_EQ(root_attributes("< a b=\"1\"/>"), (pairs_t{{"b", "1"}}));
    // The tag ends at the first `>`, inside a value too.
    EXPECT_EQ(root_attributes("<a b=\"x>y\"/>"), std::nullopt);
    EXPECT_EQ(root_attributes("<a b=\"1\"/ >"), std::nullopt);
    EXPECT_EQ(root_attributes("<a/ >"), std::nullopt);
    EXPECT_EQ(root_attributes("<a b=\"1\" ^M junk/>"), (pairs_t{{"b", "1"}}));
    EXPECT_EQ(root_attributes("<a b=\"1"), std::nullopt);
}

TEST(xml_reader, more_attributes_than_one_pass_holds_are_read_the_general_way) {
    pairs_t expected;
    std::string body = "<a";
    for (int i = 0; i < 40; ++i) {
        body += " n" + std::to_string(i) + "=\"" + std::to_string(i * 7) + "\"";
        expected.emplace_back("n" + std::to_string(i), std::to_string(i * 7));
    }
    EXPECT_EQ(root_attributes(body + "/>"), expected);
}

TEST(xml_reader, open_xml_null_or_empty_is_false_without_message) {
    trace_capture_c capture;
    xml_file_reader_c reader;
    EXPECT_FALSE(reader.open_xml(nullptr));
    EXPECT_FALSE(reader.open_xml(""));
    EXPECT_EQ(capture.text().find("Can not open XML file"), std::string::npos) << capture.text();
}

TEST(xml_reader, open_xml_of_missing_file_is_false_with_message) {
    trace_capture_c capture;
    temp_dir_c dir;
    std::string path = dir.join("missing.xml");
    xml_file_reader_c reader;
    EXPECT_FALSE(reader.open_xml(path.c_str()));
    std::string text = capture.text();
    std::string wanted = "Can not open XML file " + path + " (";
    std::string line;
    for (const std::string& candidate : test_support::lines_of(text))
        if (candidate.find(wanted) != std::string::npos) line = candidate;
    ASSERT_FALSE(line.empty()) << text;
    EXPECT_TRUE(has_level(line, 4)) << line;
    EXPECT_NE(line.find(" xml_reader:"), std::string::npos) << line;
    EXPECT_NE(line.find("xml_file_reader_c::open_xml: "), std::string::npos) << line;
    EXPECT_EQ(line.back(), ')') << line;
}

// ---- the declaration

TEST(xml_reader, declaration_needs_a_document) {
    std::string input = decl;
    xml_stream_reader_c reader(input.data(), input.size());
    EXPECT_FALSE(reader.read_declaration());
}

TEST(xml_reader, declaration_with_version_is_read) {
    xml_document_c doc;
    std::string input = "<?xml version=\"1.0\"?>";
    xml_stream_reader_c reader(input.data(), input.size());
    reader.set_document(&doc);
    EXPECT_TRUE(reader.read_declaration());
    EXPECT_STREQ(doc.get_version(), "1.0");
    EXPECT_EQ(doc.get_encoding(), nullptr);
}

TEST(xml_reader, declaration_space_before_question_mark_accepted) {
    xml_document_c doc;
    EXPECT_TRUE(load_str(doc, "<?xml version=\"1.0\" ?><a/>"));
}

TEST(xml_reader, declaration_space_after_question_mark_refused) {
    xml_document_c doc;
    EXPECT_FALSE(load_str(doc, "<?xml version=\"1.0\"? ><a/>"));
}

TEST(xml_reader, declaration_unknown_pseudo_attribute_refused) {
    xml_document_c doc;
    EXPECT_FALSE(load_str(doc, "<?xml version=\"1.0\" foo=\"x\"?><a/>"));
}

TEST(xml_reader, declaration_single_quotes_refused) {
    xml_document_c doc;
    EXPECT_FALSE(load_str(doc, "<?xml version='1.0'?><a/>"));
}

TEST(xml_reader, declaration_without_version_refused) {
    xml_document_c doc;
    EXPECT_FALSE(load_str(doc, "<?xml encoding=\"UTF-8\"?><a/>"));
    xml_document_c bare;
    EXPECT_FALSE(load_str(bare, "<?xml ?><a/>"));
}

TEST(xml_reader, declaration_pseudo_attributes_in_any_order) {
    xml_document_c doc;
    EXPECT_TRUE(load_str(doc, "<?xml standalone=\"yes\" encoding=\"UTF-8\" version=\"1.0\"?><a/>"));
    EXPECT_STREQ(doc.get_version(), "1.0");
    EXPECT_STREQ(doc.get_encoding(), "UTF-8");
}

TEST(xml_reader, declaration_repeated_pseudo_attribute_last_wins) {
    xml_document_c doc;
    EXPECT_TRUE(
        load_str(doc, "<?xml version=\"1.0\" encoding=\"A\" version=\"2.0\" encoding=\"B\"?><a/>"));
    EXPECT_STREQ(doc.get_version(), "2.0");
    EXPECT_STREQ(doc.get_encoding(), "B");
}

TEST(xml_reader, declaration_malformed_value_clears_a_previous_one) {
    xml_document_c doc;
    EXPECT_FALSE(load_str(doc, "<?xml version=\"1.0\" encoding=\"A\" encoding='B'?><a/>"));
    EXPECT_STREQ(doc.get_version(), "1.0");
    EXPECT_EQ(doc.get_encoding(), nullptr);
    xml_document_c again;
    EXPECT_FALSE(load_str(again, "<?xml version=\"1.0\" version='2'?><a/>"));
    EXPECT_EQ(again.get_version(), nullptr);
}

TEST(xml_reader, declaration_needs_exactly_xml_and_one_space) {
    const char* refused[] = {
        "<?XML version=\"1.0\"?><a/>",
        "<?xml\tversion=\"1.0\"?><a/>",
        "<?xmlx version=\"1.0\"?><a/>",
        "<? xml version=\"1.0\"?><a/>",
        "<xml version=\"1.0\"?><a/>",
        "<?xml?><a/>",
        "<a/>",
    };
    for (const char* text : refused) {
        xml_document_c doc;
        EXPECT_FALSE(load_str(doc, text)) << text;
    }
}

TEST(xml_reader, declaration_blank_before_equals_refused) {
    xml_document_c doc;
    EXPECT_FALSE(load_str(doc, "<?xml version =\"1.0\"?><a/>"));
}

TEST(xml_reader, declaration_blank_after_equals_accepted) {
    xml_document_c doc;
    EXPECT_TRUE(load_str(doc, "<?xml version= \"1.0\"?><a/>"));
    EXPECT_STREQ(doc.get_version(), "1.0");
}

TEST(xml_reader, declaration_line_ends_inside_vanish) {
    xml_document_c doc;
    EXPECT_TRUE(load_str(doc, "<?xml version=\"1.0\"\r\n encoding=\"UTF-8\"\n?><a/>"));
    EXPECT_STREQ(doc.get_encoding(), "UTF-8");
}

TEST(xml_reader, byte_order_mark_before_declaration_skipped) {
    xml_document_c doc;
    EXPECT_TRUE(load_str(doc, "\xEF\xBB\xBF" + decl + "<a/>"));
    EXPECT_EQ(name_of(doc.get_root()), "a");
    xml_document_c from_file;
    EXPECT_TRUE(load_file(from_file, "\xEF\xBB\xBF" + decl + "\n<a/>\n"));
    EXPECT_EQ(name_of(from_file.get_root()), "a");
}

// ---- comments

TEST(xml_reader, comment_makes_no_node) {
    xml_document_c doc;
    ASSERT_TRUE(load_str(doc, decl + "<a><!-- note --><b/><!-- another --></a>"));
    std::vector<xml_node_c*> children = children_of(doc.get_root());
    ASSERT_EQ(children.size(), 1u);
    EXPECT_EQ(name_of(children[0]), "b");
}

TEST(xml_reader, shortest_comment_is_accepted) {
    EXPECT_TRUE(loads_both_ways("<a><!--></a>"));
    EXPECT_TRUE(loads_both_ways("<a><!----></a>"));
}

TEST(xml_reader, comment_with_gt_inside_refused) {
    EXPECT_TRUE(refused_both_ways("<a><!-- a > b --></a>"));
}

TEST(xml_reader, comment_must_end_with_two_dashes) {
    EXPECT_TRUE(refused_both_ways("<a><!-- x -></a>"));
    EXPECT_TRUE(refused_both_ways("<a><!-- x ></a>"));
}

TEST(xml_reader, comment_line_ends_vanish) {
    EXPECT_TRUE(loads_both_ways("<a><!-- one\n two -\n-></a>"));
}

TEST(xml_reader, comment_as_first_tag_gives_no_root_and_rest_unread) {
    xml_document_c doc;
    EXPECT_TRUE(load_str(doc, decl + "<!-- first --><a><b/></a>"));
    EXPECT_EQ(doc.get_root(), nullptr);
    xml_document_c garbage;
    EXPECT_TRUE(load_str(garbage, decl + "<!-- first --><<<< not xml at all"));
    EXPECT_EQ(garbage.get_root(), nullptr);
    xml_document_c from_file;
    EXPECT_TRUE(load_file(from_file, decl + "\n<!-- first -->\n<a/>\n"));
    EXPECT_EQ(from_file.get_root(), nullptr);
}

TEST(xml_reader, unclosed_comment_refused) {
    EXPECT_TRUE(refused_both_ways("<a><!-- never closed"));
    EXPECT_TRUE(refused_both_ways("<a><!-- never closed </a>"));
}

// ---- closing tags

TEST(xml_reader, closing_tag_with_space_before_gt_refused) {
    EXPECT_TRUE(refused_both_ways("<a></a >"));
}

TEST(xml_reader, closing_tag_with_space_after_slash_accepted) {
    EXPECT_TRUE(loads_both_ways("<a></ a>"));
}

TEST(xml_reader, closing_tag_names_compare_case_sensitively) {
    EXPECT_TRUE(refused_both_ways("<A></a>"));
    EXPECT_TRUE(loads_both_ways("<A></A>"));
}

TEST(xml_reader, closing_tag_of_another_element_refused) {
    EXPECT_TRUE(refused_both_ways("<a><b></a></b>"));
    EXPECT_TRUE(refused_both_ways("<a></b>"));
}

TEST(xml_reader, closing_tag_first_after_declaration_refused) {
    EXPECT_TRUE(refused_both_ways("</a>"));
}

TEST(xml_reader, closing_tag_with_attribute_refused) {
    EXPECT_TRUE(refused_both_ways("<a></a b=\"1\">"));
}

// ---- elements

TEST(xml_reader, empty_element_pair_has_no_text_and_no_children) {
    xml_document_c doc;
    ASSERT_TRUE(load_file(doc, decl + "<a></a>"));
    xml_node_c* root = doc.get_root();
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->first_child, nullptr);
    EXPECT_EQ(root->text.get_length(), 0u);
    EXPECT_EQ(root->type, xml_node_c::type_element);
    EXPECT_TRUE(root->closed);
}

TEST(xml_reader, self_closed_element_is_closed) {
    xml_document_c doc;
    ASSERT_TRUE(load_str(doc, decl + "<a x=\"1\"/>"));
    ASSERT_NE(doc.get_root(), nullptr);
    EXPECT_TRUE(doc.get_root()->closed);
    EXPECT_EQ(attributes_of(doc.get_root()), (pairs_t{{"x", "1"}}));
}

TEST(xml_reader, nested_elements_build_the_tree_in_order) {
    xml_document_c doc;
    ASSERT_TRUE(load_str(doc, decl + "\n<r>\n\t<a x=\"1\">\n\t\t<b/>\n\t</a>\n\t<c/>\n</r>\n"));
    xml_node_c* root = doc.get_root();
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(name_of(root), "r");
    std::vector<xml_node_c*> children = children_of(root);
    ASSERT_EQ(children.size(), 2u);
    EXPECT_EQ(name_of(children[0]), "a");
    EXPECT_EQ(name_of(children[1]), "c");
    std::vector<xml_node_c*> grandchildren = children_of(children[0]);
    ASSERT_EQ(grandchildren.size(), 1u);
    EXPECT_EQ(name_of(grandchildren[0]), "b");
    EXPECT_EQ(grandchildren[0]->parent, children[0]);
}

TEST(xml_reader, slash_then_space_refused) { EXPECT_TRUE(refused_both_ways("<a/ >")); }

TEST(xml_reader, attribute_then_slash_with_spaces_refused) {
    EXPECT_TRUE(refused_both_ways("<a b=\"1\" / >"));
}

TEST(xml_reader, attribute_then_space_slash_accepted) {
    xml_document_c doc;
    ASSERT_TRUE(load_str(doc, decl + "<a b=\"1\" />"));
    EXPECT_EQ(attributes_of(doc.get_root()), (pairs_t{{"b", "1"}}));
}

TEST(xml_reader, space_before_name_accepted) {
    xml_document_c doc;
    ASSERT_TRUE(load_str(doc, decl + "< a></a>"));
    EXPECT_EQ(name_of(doc.get_root()), "a");
}

TEST(xml_reader, empty_tags_refused) {
    EXPECT_TRUE(refused_both_ways("<>"));
    EXPECT_TRUE(refused_both_ways("</>"));
    EXPECT_TRUE(refused_both_ways("<a><></a>"));
}

TEST(xml_reader, tab_after_name_separates_it) {
    xml_document_c doc;
    ASSERT_TRUE(load_str(doc, decl + "<a\tb=\"1\"/>"));
    EXPECT_EQ(name_of(doc.get_root()), "a");
    EXPECT_EQ(attributes_of(doc.get_root()), (pairs_t{{"b", "1"}}));
}

TEST(xml_reader, vertical_tab_and_form_feed_separate_attributes) {
    xml_document_c doc;
    ASSERT_TRUE(load_str(doc, decl + "<a \v\f x=\"1\"\v\fy=\"2\" \f/>"));
    EXPECT_EQ(name_of(doc.get_root()), "a");
    EXPECT_EQ(attributes_of(doc.get_root()), (pairs_t{{"x", "1"}, {"y", "2"}}));
}

TEST(xml_reader, caret_M_glued_to_name_refused) {
    EXPECT_TRUE(refused_both_ways("<a^M b=\"1\"/>"));
}

TEST(xml_reader, caret_M_after_space_ends_the_tag) {
    xml_document_c doc;
    ASSERT_TRUE(load_str(doc, decl + "<a ^M b=\"1\"/>"));
    ASSERT_NE(doc.get_root(), nullptr);
    EXPECT_EQ(name_of(doc.get_root()), "a");
    EXPECT_EQ(attributes_of(doc.get_root()), pairs_t{});
}

TEST(xml_reader, line_feed_between_name_and_attribute_refused) {
    EXPECT_TRUE(refused_both_ways("<x\na=\"1\"/>"));
}

TEST(xml_reader, line_feed_between_attributes_accepted) {
    xml_document_c doc;
    ASSERT_TRUE(load_str(doc, decl + "<x a=\"1\"\nb=\"2\"/>"));
    EXPECT_EQ(attributes_of(doc.get_root()), (pairs_t{{"a", "1"}, {"b", "2"}}));
    xml_document_c from_file;
    ASSERT_TRUE(load_file(from_file, decl + "<x a=\"1\"\r\nb=\"2\"/>"));
    EXPECT_EQ(attributes_of(from_file.get_root()), (pairs_t{{"a", "1"}, {"b", "2"}}));
}

TEST(xml_reader, processing_instruction_doctype_and_cdata_refused) {
    EXPECT_TRUE(refused_both_ways("<?xml-stylesheet type=\"text/xsl\" href=\"s.xsl\"?><a/>"));
    EXPECT_TRUE(refused_both_ways("<!DOCTYPE><a/>"));
    EXPECT_TRUE(refused_both_ways("<!DOCTYPE a><a/>"));
    EXPECT_TRUE(refused_both_ways("<a><![CDATA[x]]></a>"));
}

TEST(xml_reader, declaration_and_open_element_then_end_refused) {
    EXPECT_TRUE(refused_both_ways("<a>"));
    EXPECT_TRUE(refused_both_ways("<a><b>"));
}

TEST(xml_reader, whatever_follows_the_root_is_not_read) {
    xml_document_c doc;
    ASSERT_TRUE(load_str(doc, decl + "<a></a><b/> garbage <<< > </c> \xFF"));
    EXPECT_EQ(name_of(doc.get_root()), "a");
    EXPECT_EQ(doc.get_root()->first_child, nullptr);
    xml_document_c self_closed;
    ASSERT_TRUE(load_str(self_closed, decl + "<a/></a></wrong><"));
    EXPECT_EQ(name_of(self_closed.get_root()), "a");
    xml_document_c from_file;
    ASSERT_TRUE(load_file(from_file, decl + "<a/>\n<!-- a > b -->\n<\n"));
}

// ---- names

TEST(xml_reader, validate_name_rules) {
    const char* good[] = {"a", "_", "_a", "A1", "a-b", "a.b", "a:b", "a_b-c.d:e9", "Z"};
    const char* bad[] = {"1a", "-a",  ".a",       ":a",        "a b", "a/",
                         "a=", "a\"", "\xC3\xA9", "a\xC3\xA9", "a^M", "a\t"};
    for (const char* name : good) EXPECT_TRUE(xml_document_c::validate_xml_name(name)) << name;
    for (const char* name : bad) EXPECT_FALSE(xml_document_c::validate_xml_name(name)) << name;
}

TEST(xml_reader, validate_name_null_or_empty_is_false_without_message) {
    trace_capture_c capture;
    EXPECT_FALSE(xml_document_c::validate_xml_name(nullptr));
    EXPECT_FALSE(xml_document_c::validate_xml_name(""));
    EXPECT_EQ(capture.text().find("Invalid XML name"), std::string::npos) << capture.text();
}

TEST(xml_reader, invalid_name_prints_a_trace_line) {
    trace_capture_c capture;
    EXPECT_FALSE(xml_document_c::validate_xml_name("1abc"));
    std::string line = trace_line(capture.text(), "Invalid XML name 1abc");
    ASSERT_FALSE(line.empty()) << capture.text();
    EXPECT_TRUE(has_level(line, 4)) << line;
    EXPECT_NE(line.find(" xml_doc:"), std::string::npos) << line;
    EXPECT_NE(line.find(" xml_document_c::validate_xml_name: "), std::string::npos) << line;
}

TEST(xml_reader, invalid_element_name_refused_with_message) {
    trace_capture_c capture;
    EXPECT_TRUE(refused_both_ways("<1a/>"));
    EXPECT_FALSE(trace_line(capture.text(), "Invalid XML name 1a").empty()) << capture.text();
}

TEST(xml_reader, invalid_element_names_refused) {
    const char* bodies[] = {"<-a/>",        "<.a/>",  "<:a/>",      "<\xC3\xA9/>",
                            "<a\xC3\xA9/>", "<a&b/>", "<a><9/></a>"};
    for (const char* body : bodies) EXPECT_TRUE(refused_both_ways(body)) << body;
}

TEST(xml_reader, valid_unusual_names_accepted) {
    xml_document_c doc;
    ASSERT_TRUE(load_str(doc, decl + "<_a:b-c.d9 x:y=\"1\" _z=\"2\"/>"));
    EXPECT_EQ(name_of(doc.get_root()), "_a:b-c.d9");
    EXPECT_EQ(attributes_of(doc.get_root()), (pairs_t{{"x:y", "1"}, {"_z", "2"}}));
}

TEST(xml_reader, invalid_attribute_name_refused) {
    EXPECT_TRUE(refused_both_ways("<a 1b=\"x\"/>"));
    EXPECT_TRUE(refused_both_ways("<a b-=\"1\" -c=\"2\"/>"));
}

// ---- attributes

TEST(xml_reader, attribute_blank_before_equals_refused) {
    EXPECT_TRUE(refused_both_ways("<a b =\"1\"/>"));
}

TEST(xml_reader, attribute_blank_after_equals_accepted) {
    xml_document_c doc;
    ASSERT_TRUE(load_str(doc, decl + "<a b= \"1\" c=\t\"2\"/>"));
    EXPECT_EQ(attributes_of(doc.get_root()), (pairs_t{{"b", "1"}, {"c", "2"}}));
}

TEST(xml_reader, attribute_single_quotes_refused) { EXPECT_TRUE(refused_both_ways("<a b='1'/>")); }

TEST(xml_reader, attribute_missing_value_refused) {
    EXPECT_TRUE(refused_both_ways("<a b=/>"));
    EXPECT_TRUE(refused_both_ways("<a b/>"));
    EXPECT_TRUE(refused_both_ways("<a b=1/>"));
}

TEST(xml_reader, attribute_unclosed_quote_refused) {
    EXPECT_TRUE(refused_both_ways("<a b=\"1/></a>"));
    EXPECT_TRUE(refused_both_ways("<a b=\"1 c=\"2/>"));
}

TEST(xml_reader, attribute_value_with_gt_refused) {
    EXPECT_TRUE(refused_both_ways("<a b=\"x>y\"/>"));
    EXPECT_TRUE(refused_both_ways("<a b=\"x>y\"></a>"));
}

TEST(xml_reader, attribute_values_are_entity_decoded) {
    xml_document_c doc;
    ASSERT_TRUE(load_str(doc, decl + "<a v=\"&QUOT;&Amp;\" w=\"1 &lt; 2 &gt; 0\" x=\"it&apos;s\" "
                                     "y=\"&abcdef;\"/>"));
    EXPECT_EQ(attributes_of(doc.get_root()),
              (pairs_t{{"v", "\"&"}, {"w", "1 < 2 > 0"}, {"x", "it&apos;s"}, {"y", "&abcdef;"}}));
}

TEST(xml_reader, attribute_duplicates_kept_in_order) {
    xml_document_c doc;
    ASSERT_TRUE(load_str(doc, decl + "<a x=\"1\" y=\"2\" x=\"3\"/>"));
    EXPECT_EQ(attributes_of(doc.get_root()), (pairs_t{{"x", "1"}, {"y", "2"}, {"x", "3"}}));
}

TEST(xml_reader, attributes_need_no_whitespace_between_them) {
    xml_document_c doc;
    ASSERT_TRUE(load_str(doc, decl + "<a x=\"1\"y=\"2\"z=\"\"/>"));
    EXPECT_EQ(attributes_of(doc.get_root()), (pairs_t{{"x", "1"}, {"y", "2"}, {"z", ""}}));
}

TEST(xml_reader, attribute_value_keeps_spaces_and_tabs) {
    xml_document_c doc;
    ASSERT_TRUE(load_str(doc, decl + "<a v=\" a\tb \"/>"));
    EXPECT_EQ(attributes_of(doc.get_root()), (pairs_t{{"v", " a\tb "}}));
}

TEST(xml_reader, attribute_value_loses_line_ends) {
    xml_document_c doc;
    ASSERT_TRUE(load_str(doc, decl + "<a v=\"one\r\ntwo\"/>"));
    EXPECT_EQ(attributes_of(doc.get_root()), (pairs_t{{"v", "onetwo"}}));
}

TEST(xml_reader, long_attribute_value_read_whole) {
    std::string value(3000, 'v');
    value[1000] = '&';
    xml_document_c doc;
    ASSERT_TRUE(load_file(doc, decl + "<a v=\"" + value + "\"/>"));
    EXPECT_EQ(attributes_of(doc.get_root()), (pairs_t{{"v", value}}));
}

// ---- element text

TEST(xml_reader, file_load_keeps_element_text) {
    xml_document_c doc;
    ASSERT_TRUE(load_file(doc, decl + "<a>hello</a>"));
    xml_node_c* root = doc.get_root();
    ASSERT_NE(root, nullptr);
    EXPECT_STREQ(root->text.c_str(), "hello");
    EXPECT_EQ(root->type, xml_node_c::type_text);
    EXPECT_TRUE(root->closed);
}

TEST(xml_reader, string_load_drops_element_text) {
    xml_document_c doc;
    ASSERT_TRUE(load_str(doc, decl + "<a>hello</a>"));
    xml_node_c* root = doc.get_root();
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->text.get_length(), 0u);
    EXPECT_EQ(root->type, xml_node_c::type_element);
}

TEST(xml_reader, text_loses_line_feed_carriage_return_and_tab) {
    xml_document_c doc;
    ASSERT_TRUE(load_file(doc, decl + "<a>  x\ty\r\n z  </a>"));
    EXPECT_STREQ(doc.get_root()->text.c_str(), "xy z");
}

TEST(xml_reader, text_is_trimmed_of_all_c_whitespace) {
    xml_document_c doc;
    ASSERT_TRUE(load_file(doc, decl + "<a>\v\f x  y \f\v</a>"));
    EXPECT_STREQ(doc.get_root()->text.c_str(), "x  y");
}

TEST(xml_reader, whitespace_only_text_makes_no_text) {
    xml_document_c doc;
    ASSERT_TRUE(load_file(doc, decl + "<a>\n\t \v\r\n</a>"));
    EXPECT_EQ(doc.get_root()->type, xml_node_c::type_element);
    EXPECT_EQ(doc.get_root()->text.get_length(), 0u);
}

TEST(xml_reader, byte_1_discards_the_text_collected_so_far) {
    xml_document_c doc;
    ASSERT_TRUE(load_file(doc, decl + "<a>abc\x01 def</a>"));
    EXPECT_STREQ(doc.get_root()->text.c_str(), "def");
    xml_document_c only;
    ASSERT_TRUE(load_file(only, decl + "<a>abc\x01</a>"));
    EXPECT_EQ(only.get_root()->type, xml_node_c::type_element);
}

TEST(xml_reader, text_is_entity_decoded) {
    xml_document_c doc;
    ASSERT_TRUE(load_file(doc, decl + "<a>1 &lt; 2 &AMP; &quot;q&quot; &apos;</a>"));
    EXPECT_STREQ(doc.get_root()->text.c_str(), "1 < 2 & \"q\" &apos;");
}

TEST(xml_reader, text_after_self_closed_element_becomes_its_text) {
    xml_document_c doc;
    ASSERT_TRUE(load_file(doc, decl + "<r><a/>after</r>"));
    std::vector<xml_node_c*> children = children_of(doc.get_root());
    ASSERT_EQ(children.size(), 1u);
    EXPECT_STREQ(children[0]->text.c_str(), "after");
    EXPECT_EQ(children[0]->type, xml_node_c::type_text);
    EXPECT_EQ(doc.get_root()->text.get_length(), 0u);
}

TEST(xml_reader, text_then_child_below_the_root_refused) {
    xml_document_c doc;
    EXPECT_FALSE(load_file(doc, decl + "<r><a>t<b/></a></r>"));
}

TEST(xml_reader, text_then_child_at_the_root_ends_the_parse_after_the_child) {
    xml_document_c doc;
    ASSERT_TRUE(load_file(doc, decl + "<a>t<b/></a>"));
    xml_node_c* root = doc.get_root();
    EXPECT_STREQ(root->text.c_str(), "t");
    std::vector<xml_node_c*> children = children_of(root);
    ASSERT_EQ(children.size(), 1u);
    EXPECT_EQ(name_of(children[0]), "b");
    xml_document_c garbage;
    EXPECT_TRUE(load_file(garbage, decl + "<a>t<b/><<< garbage"));
}

TEST(xml_reader, text_of_nested_elements) {
    xml_document_c doc;
    ASSERT_TRUE(load_file(doc, decl + "\n<r>\n\t<a>one</a>\n\t<b>two</b>\n</r>\n"));
    std::vector<xml_node_c*> children = children_of(doc.get_root());
    ASSERT_EQ(children.size(), 2u);
    EXPECT_STREQ(children[0]->text.c_str(), "one");
    EXPECT_STREQ(children[1]->text.c_str(), "two");
    EXPECT_EQ(doc.get_root()->type, xml_node_c::type_element);
}

TEST(xml_reader, read_node_on_string_reader_keeps_text_when_asked) {
    xml_document_c doc;
    std::string input = decl + "<a> some text </a>";
    xml_stream_reader_c reader(input.data(), input.size());
    reader.set_document(&doc);
    ASSERT_TRUE(reader.read_declaration());
    ASSERT_TRUE(reader.read_node(nullptr, false));
    EXPECT_STREQ(doc.get_root()->text.c_str(), "some text");
}

TEST(xml_reader, read_node_needs_a_document) {
    std::string input = "<a/>";
    xml_stream_reader_c reader(input.data(), input.size());
    EXPECT_FALSE(reader.read_node(nullptr, true));
}

// ---- bad input

namespace {

const std::string sample = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                           "<root a=\"1\" b=\"x &amp; y\">\n"
                           "\t<child>text</child>\n"
                           "\t<!-- note -->\n"
                           "\t<empty/>\n"
                           "\t<n c=\"2\"><m/></n>\n"
                           "</root>\n";

} // namespace

TEST(xml_reader_bad_input, sample_document_loads) {
    xml_document_c doc;
    ASSERT_TRUE(load_file(doc, sample));
    EXPECT_EQ(children_of(doc.get_root()).size(), 3u);
    xml_document_c from_string;
    ASSERT_TRUE(load_str(from_string, sample));
}

TEST(xml_reader_bad_input, every_prefix_from_a_string_loads_only_with_the_whole_root) {
    const std::size_t root_end = sample.find("</root>") + 7;
    for (std::size_t n = 0; n <= sample.size(); ++n) {
        xml_document_c doc;
        bool loaded = load_str(doc, sample.substr(0, n));
        EXPECT_EQ(loaded, n >= root_end) << "prefix of " << n << " bytes";
    }
}

TEST(xml_reader_bad_input, every_prefix_from_a_file_loads_only_with_the_whole_root) {
    const std::size_t root_end = sample.find("</root>") + 7;
    temp_dir_c dir;
    for (std::size_t n = 0; n <= sample.size(); ++n) {
        std::string path = dir.join("prefix" + std::to_string(n) + ".xml");
        write_file(path, sample.substr(0, n));
        xml_document_c doc;
        bool loaded = doc.load(path.c_str());
        EXPECT_EQ(loaded, n >= root_end) << "prefix of " << n << " bytes";
    }
}

TEST(xml_reader_bad_input, every_prefix_into_a_tree_keeps_the_tree_unchanged_when_refused) {
    const std::size_t root_end = sample.find("</root>") + 7;
    for (std::size_t n = 0; n < root_end; ++n) {
        xml_tree_c tree;
        EXPECT_FALSE(tree.load_from_str(sample.substr(0, n).c_str())) << n;
        EXPECT_EQ(tree.get_root(), nullptr) << n;
    }
}

namespace {

// A document of a few kilobytes with every construct the reader knows: nesting, attributes with
// and without references, comments, element text, self-closed and empty elements, line ends
// inside tags.
std::string kilobytes_document() {
    std::string out =
        "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<scenario id=\"7\">\n";
    for (int i = 0; i < 40; ++i) {
        std::string n = std::to_string(i);
        out += "\t<host name=\"h" + n + "\" cond=\"a &lt; " + n + " &amp;&amp; b\"\n\t\tport=\"" +
               n + "\">\n\t\t<!-- host " + n + " -->\n\t\t<dir path=\"/srv/" + n +
               "\">text &quot;" + n + "&quot;</dir>\n\t\t<empty></empty>\n\t\t<flag on=\"" +
               (i % 2 ? "True" : "False") + "\"/>\n\t</host>\n";
    }
    return out + "</scenario>\n";
}

} // namespace

TEST(xml_reader_bad_input, every_prefix_of_a_document_of_kilobytes) {
    const std::string whole = kilobytes_document();
    ASSERT_GT(whole.size(), 4000u);
    const std::size_t root_end = whole.rfind("</scenario>") + 11;
    xml_tree_c full_tree;
    ASSERT_TRUE(full_tree.load_from_str(whole.c_str()));
    utl_stream_c full_text;
    full_tree.write(full_text, true);
    std::size_t loaded_count = 0;
    for (std::size_t n = 0; n <= whole.size(); ++n) {
        std::string prefix = whole.substr(0, n);
        xml_document_c doc;
        bool doc_loaded = load_str(doc, prefix);
        xml_tree_c tree;
        bool tree_loaded = tree.load_from_str(prefix.c_str());
        ASSERT_EQ(doc_loaded, n >= root_end) << "prefix of " << n << " bytes";
        ASSERT_EQ(tree_loaded, doc_loaded) << "prefix of " << n << " bytes";
        if (!tree_loaded) {
            ASSERT_EQ(tree.get_root(), nullptr) << n;
            continue;
        }
        ++loaded_count;
        ASSERT_TRUE(tree.is_equal(full_tree)) << n;
        utl_stream_c text;
        tree.write(text, true);
        ASSERT_STREQ(text.c_str(), full_text.c_str()) << n;
    }
    EXPECT_EQ(loaded_count, whole.size() - root_end + 1);
}

TEST(xml_reader_bad_input, every_prefix_of_a_document_of_kilobytes_from_a_file) {
    const std::string whole = kilobytes_document();
    const std::size_t root_end = whole.rfind("</scenario>") + 11;
    temp_dir_c dir;
    std::string path = dir.join("prefix.xml");
    xml_tree_c full_tree;
    write_file(path, whole);
    ASSERT_TRUE(full_tree.load(path.c_str()));
    ASSERT_STREQ(full_tree.get_root()->first_child_item()->first_child_item()->text, "text \"0\"");
    for (std::size_t n = 0; n <= whole.size(); ++n) {
        write_file(path, whole.substr(0, n));
        xml_tree_c tree;
        bool loaded = tree.load(path.c_str());
        ASSERT_EQ(loaded, n >= root_end) << "prefix of " << n << " bytes";
        if (loaded)
            ASSERT_TRUE(tree.is_equal(full_tree)) << n;
        else
            ASSERT_EQ(tree.get_root(), nullptr) << n;
    }
}

TEST(xml_reader_bad_input, attribute_value_of_10_mb_in_a_tree) {
    const std::size_t size = 10u * 1024 * 1024;
    std::string value(size, 'v');
    value[size / 2] = '&';
    std::string input = decl + "<a small=\"1\" big=\"" + value + "&amp;\" after=\"2\"/>";
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str(input.c_str()));
    xml_item_c* root = tree.get_root();
    ASSERT_NE(root, nullptr);
    ASSERT_EQ(root->get_attribute_count(), 3u);
    const char* big = root->find_attribute("big")->to_text();
    ASSERT_EQ(std::strlen(big), size + 1);
    EXPECT_EQ(std::string(big, size), value);
    EXPECT_EQ(big[size], '&');
    EXPECT_STREQ(root->find_attribute("after")->to_text(), "2");
    // The big value goes on its own; the others stay.
    ASSERT_TRUE(root->attributes.remove_and_delete(1));
    EXPECT_STREQ(root->get_attribute(1)->get_label(), "after");
    root->set_attribute("big", value.c_str());
    EXPECT_EQ(std::strlen(root->find_attribute("big")->to_text()), size);
}

TEST(xml_reader_bad_input, byte_ff_cuts_the_input_inside_an_element) {
    EXPECT_TRUE(refused_both_ways("<a>\xFF</a>"));
    EXPECT_TRUE(refused_both_ways("<a><b/>\xFF<c/></a>"));
}

TEST(xml_reader_bad_input, byte_ff_after_the_root_changes_nothing) {
    EXPECT_TRUE(loads_both_ways("<a/>\xFF garbage"));
    EXPECT_TRUE(loads_both_ways("<a></a>\xFF"));
}

TEST(xml_reader_bad_input, byte_ff_in_element_text_fails_the_file_load) {
    xml_document_c doc;
    EXPECT_FALSE(load_file(doc, decl + "<a>te\xFFxt</a>"));
    xml_document_c from_string;
    EXPECT_FALSE(load_str(from_string, decl + "<a>te\xFFxt</a>"));
}

TEST(xml_reader_bad_input, byte_ff_inside_a_tag_fails) {
    EXPECT_TRUE(refused_both_ways("<a b=\"1\xFF\"/>"));
    EXPECT_TRUE(refused_both_ways("<a\xFF/>"));
    EXPECT_TRUE(refused_both_ways("<a></a\xFF>"));
}

TEST(xml_reader_bad_input, byte_ff_in_or_before_the_declaration_fails) {
    xml_document_c doc;
    EXPECT_FALSE(load_str(doc, "\xFF" + decl + "<a/>"));
    xml_document_c inside;
    EXPECT_FALSE(load_str(inside, "<?xml version=\"1.0\"\xFF?><a/>"));
    xml_document_c from_file;
    EXPECT_FALSE(load_file(from_file, "\xFF" + decl + "<a/>"));
}

TEST(xml_reader_bad_input, byte_ff_behaves_as_the_end_of_input) {
    // The document cut at the 0xFF and the document with the 0xFF agree on every position.
    for (std::size_t n = 0; n <= sample.size(); ++n) {
        std::string with_ff = sample.substr(0, n) + "\xFF" + sample.substr(n);
        xml_document_c cut;
        xml_document_c marked;
        bool a = load_str(cut, sample.substr(0, n));
        bool b = load_str(marked, with_ff);
        EXPECT_EQ(a, b) << "0xFF at " << n;
    }
}

TEST(xml_reader_bad_input, byte_ff_in_a_file_behaves_as_the_end_of_input) {
    temp_dir_c dir;
    for (std::size_t n = 0; n <= sample.size(); n += 3) {
        std::string path = dir.join("ff" + std::to_string(n) + ".xml");
        write_file(path, sample.substr(0, n) + "\xFF" + sample.substr(n));
        std::string cut_path = dir.join("cut" + std::to_string(n) + ".xml");
        write_file(cut_path, sample.substr(0, n));
        xml_document_c cut;
        xml_document_c marked;
        EXPECT_EQ(cut.load(cut_path.c_str()), marked.load(path.c_str())) << "0xFF at " << n;
    }
}

TEST(xml_reader_bad_input, tag_of_10_mb_from_a_string_is_accepted) {
    const std::uint64_t size = 10u * 1024 * 1024;
    std::string value(size, 'x');
    std::string tag = "a v=\"" + value + "\"/";
    std::string input = decl + "<" + tag + ">";
    xml_document_c doc;
    xml_stream_reader_c reader(input.data(), input.size());
    reader.set_document(&doc);
    ASSERT_TRUE(reader.read_declaration());
    ASSERT_TRUE(reader.read_node(nullptr, true));
    ASSERT_NE(doc.get_root(), nullptr);
    ASSERT_NE(doc.get_root()->attributes, nullptr);
    xml_attr_c* attr = doc.get_root()->attributes->first();
    ASSERT_NE(attr, nullptr);
    EXPECT_EQ(std::strlen(attr->value), size);
    EXPECT_EQ(reader.get_buffer_size() % 512, 0u);
    EXPECT_GE(reader.get_buffer_size(), tag.size() + 1);
    EXPECT_LT(reader.get_buffer_size(), tag.size() + 1 + 512);
}

TEST(xml_reader_bad_input, tag_of_10_mb_from_a_file_is_accepted) {
    const std::uint64_t size = 10u * 1024 * 1024;
    std::string tag = "a v=\"" + std::string(size, 'x') + "\"";
    temp_dir_c dir;
    std::string path = dir.join("big.xml");
    write_file(path, decl + "\n<" + tag + ">text</a>\n");
    xml_document_c doc;
    xml_file_reader_c reader;
    ASSERT_TRUE(reader.open_xml(path.c_str()));
    reader.set_document(&doc);
    ASSERT_TRUE(reader.read_declaration());
    ASSERT_TRUE(reader.read_node(nullptr, false));
    ASSERT_NE(doc.get_root(), nullptr);
    EXPECT_STREQ(doc.get_root()->text.c_str(), "text");
    EXPECT_EQ(std::strlen(doc.get_root()->attributes->first()->value), size);
    EXPECT_EQ(reader.get_buffer_size() % 512, 0u);
    EXPECT_GE(reader.get_buffer_size(), tag.size() + 1);
    EXPECT_LT(reader.get_buffer_size(), tag.size() + 1 + 512);
    xml_document_c plain;
    EXPECT_TRUE(plain.load(path.c_str()));
}

TEST(xml_reader_bad_input, tag_of_10_mb_without_gt_is_refused) {
    std::string input = decl + "<a v=\"" + std::string(10u * 1024 * 1024, 'x') + "\"";
    xml_document_c doc;
    EXPECT_FALSE(load_str(doc, input));
}

namespace {

std::string many_attributes(std::size_t count, std::size_t distinct) {
    std::string out = decl + "<a";
    out.reserve(count * 20);
    for (std::size_t i = 0; i < count; ++i) {
        out += " k" + std::to_string(i % distinct) + "=\"" + std::to_string(i) + "\"";
    }
    out += "/>";
    return out;
}

} // namespace

TEST(xml_reader_bad_input, hundred_thousand_attributes_kept_in_order_on_the_node) {
    const std::size_t count = 100000;
    std::string input = many_attributes(count, count / 2);
    xml_document_c doc;
    ASSERT_TRUE(load_str(doc, input));
    xml_node_c* root = doc.get_root();
    ASSERT_NE(root, nullptr);
    ASSERT_NE(root->attributes, nullptr);
    EXPECT_EQ(root->attributes->get_count(), count);
    std::size_t i = 0;
    bool in_order = true;
    for (xml_attr_c* a = root->attributes->first(); a; a = root->attributes->next(a), ++i) {
        if (std::string(a->name) != "k" + std::to_string(i % (count / 2)) ||
            std::string(a->value) != std::to_string(i)) {
            in_order = false;
            break;
        }
    }
    EXPECT_TRUE(in_order) << "first difference at " << i;
}

TEST(xml_reader_bad_input, hundred_thousand_attributes_from_a_file) {
    const std::size_t count = 100000;
    xml_document_c doc;
    ASSERT_TRUE(load_file(doc, many_attributes(count, count)));
    ASSERT_NE(doc.get_root(), nullptr);
    EXPECT_EQ(doc.get_root()->attributes->get_count(), count);
}

TEST(xml_reader_bad_input, hundred_thousand_attributes_collapse_by_label_in_the_tree) {
    const std::size_t count = 100000;
    const std::size_t distinct = count / 2;
    std::string input = many_attributes(count, distinct);
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str(input.c_str()));
    xml_item_c* root = tree.get_root();
    ASSERT_NE(root, nullptr);
    ASSERT_EQ(root->get_attribute_count(), distinct);
    bool as_set_attribute = true;
    std::size_t i = 0;
    for (; i < distinct; ++i) {
        labeled_value_c* a = root->get_attribute(i);
        if (std::string(a->get_label()) != "k" + std::to_string(i) ||
            std::string(a->to_text()) != std::to_string(i + distinct) || a->get_type() != 1) {
            as_set_attribute = false;
            break;
        }
    }
    EXPECT_TRUE(as_set_attribute) << "first difference at " << i;
}

TEST(xml_reader_bad_input, hundred_thousand_distinct_attributes_in_the_tree) {
    const std::size_t count = 100000;
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str(many_attributes(count, count).c_str()));
    ASSERT_NE(tree.get_root(), nullptr);
    EXPECT_EQ(tree.get_root()->get_attribute_count(), count);
    EXPECT_STREQ(tree.get_root()->get_attribute(count - 1)->get_label(), "k99999");
}

TEST(xml_reader_bad_input, few_duplicate_attributes_collapse_like_many) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str((decl + "<a x=\"1\" y=\"2\" x=\"3\"/>").c_str()));
    xml_item_c* root = tree.get_root();
    ASSERT_EQ(root->get_attribute_count(), 2u);
    EXPECT_STREQ(root->get_attribute(0)->get_label(), "x");
    EXPECT_STREQ(root->get_attribute(0)->to_text(), "3");
    EXPECT_STREQ(root->get_attribute(1)->to_text(), "2");
}

TEST(xml_reader_bad_input, unclosed_quote_at_the_end_of_input) {
    EXPECT_TRUE(refused_both_ways("<a b=\"never closed"));
    EXPECT_TRUE(refused_both_ways("<a b=\"never closed>"));
    EXPECT_TRUE(refused_both_ways("<a><b c=\"x/></a>"));
}

TEST(xml_reader_bad_input, unclosed_comment_at_the_end_of_input) {
    EXPECT_TRUE(refused_both_ways("<a><!--"));
    EXPECT_TRUE(refused_both_ways("<a><!-- open -- > </a>"));
    EXPECT_TRUE(refused_both_ways("<a><!-"));
}

TEST(xml_reader_bad_input, invalid_names_anywhere_are_refused) {
    EXPECT_TRUE(refused_both_ways("<a><b><\x80/></b></a>"));
    EXPECT_TRUE(refused_both_ways("<a><b \xFE=\"1\"/></a>"));
    EXPECT_TRUE(refused_both_ways("<a><b c\x01=\"1\"/></a>"));
}

TEST(xml_reader_bad_input, control_bytes_in_tags_do_not_crash) {
    for (int c = 1; c < 256; ++c) {
        if (c == '>' || c == '<') continue;
        std::string body = "<a x=\"";
        body += static_cast<char>(c);
        body += "\"><b";
        body += static_cast<char>(c);
        body += "/></a>";
        xml_document_c doc;
        load_str(doc, decl + body);
        xml_document_c from_file;
        load_file(from_file, decl + body);
    }
    SUCCEED();
}
