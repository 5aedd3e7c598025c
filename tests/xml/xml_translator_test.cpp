// xml_special_characters_c: the four references of the format in both directions. Decoding looks
// for the `;` among the six bytes behind a `&`, names the reference in any case and never makes
// the text longer; encoding starts in a 1024-byte inline buffer and grows in steps of 64.
#include "xml/xml_translator.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

namespace {

std::string from_xml(const std::string& text) {
    xml_special_characters_c translator;
    const char* out = translator.translate_from_xml(text.c_str());
    return out ? std::string(out) : std::string("<null>");
}

std::string to_xml(const std::string& text) {
    xml_special_characters_c translator;
    const char* out = translator.translate_to_xml(text.c_str());
    return out ? std::string(out) : std::string("<null>");
}

} // namespace

// ---- decoding

TEST(xml_translator, from_xml_of_null_is_null) {
    xml_special_characters_c translator;
    EXPECT_EQ(translator.translate_from_xml(nullptr), nullptr);
    EXPECT_EQ(translator.translate_from_xml(nullptr, 5), nullptr);
}

TEST(xml_translator, from_xml_of_empty_is_empty) {
    xml_special_characters_c translator;
    const char* out = translator.translate_from_xml("");
    ASSERT_NE(out, nullptr);
    EXPECT_STREQ(out, "");
}

TEST(xml_translator, from_xml_decodes_the_four_references) {
    EXPECT_EQ(from_xml("&quot;&amp;&lt;&gt;"), "\"&<>");
    EXPECT_EQ(from_xml("a &lt; b &amp;&amp; c &gt; d"), "a < b && c > d");
}

TEST(xml_translator, from_xml_names_compare_without_case) {
    EXPECT_EQ(from_xml("&QUOT;&Amp;"), "\"&");
    EXPECT_EQ(from_xml("&LT;&gT;&qUoT;&AMP;"), "<>\"&");
}

TEST(xml_translator, from_xml_apos_stays) { EXPECT_EQ(from_xml("it&apos;s"), "it&apos;s"); }

TEST(xml_translator, from_xml_semicolon_beyond_six_bytes_leaves_the_text) {
    EXPECT_EQ(from_xml("&abcdef;"), "&abcdef;");
    EXPECT_EQ(from_xml("&quot    ;"), "&quot    ;");
}

TEST(xml_translator, from_xml_unknown_name_of_five_bytes_stays) {
    EXPECT_EQ(from_xml("&abcde;"), "&abcde;");
    EXPECT_EQ(from_xml("&quotx;"), "&quotx;");
}

TEST(xml_translator, from_xml_empty_name_stays) { EXPECT_EQ(from_xml("&;x"), "&;x"); }

TEST(xml_translator, from_xml_without_semicolon_stays) {
    EXPECT_EQ(from_xml("&amp"), "&amp");
    EXPECT_EQ(from_xml("a & b"), "a & b");
    EXPECT_EQ(from_xml("&"), "&");
}

TEST(xml_translator, from_xml_decoded_text_is_not_examined_again) {
    EXPECT_EQ(from_xml("&amp;lt;"), "&lt;");
    EXPECT_EQ(from_xml("&amp;amp;"), "&amp;");
}

TEST(xml_translator, from_xml_ampersand_before_reference_stays_and_the_reference_decodes) {
    EXPECT_EQ(from_xml("&&lt;"), "&<");
    EXPECT_EQ(from_xml("&x&gt;"), "&x>");
}

TEST(xml_translator, from_xml_search_stops_at_terminator) {
    xml_special_characters_c translator;
    const char text[] = {'&', 'l', '\0', 't', ';', 'x'};
    const char* out = translator.translate_from_xml(text, sizeof text);
    ASSERT_NE(out, nullptr);
    EXPECT_STREQ(out, "&l");
}

TEST(xml_translator, from_xml_with_length_reads_only_that_many_bytes) {
    xml_special_characters_c translator;
    const char* out = translator.translate_from_xml("&lt;&gt;tail", 4);
    ASSERT_NE(out, nullptr);
    EXPECT_STREQ(out, "<");
}

TEST(xml_translator, from_xml_result_is_never_longer_than_input) {
    const char* samples[] = {"&quot;", "&&&&", "&amp;amp;", "&lt", "plain", "&gt;&gt;&gt;", "&;"};
    for (const char* sample : samples) {
        std::string out = from_xml(sample);
        EXPECT_LE(out.size(), std::strlen(sample)) << sample;
    }
}

TEST(xml_translator, from_xml_long_text_grows_the_buffer) {
    xml_special_characters_c translator;
    std::string text(2047, 'x');
    const char* out = translator.translate_from_xml(text.c_str());
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(std::string(out), text);
    // A request of 2048 bytes, a multiple of 64, becomes 2048 + 64.
    EXPECT_EQ(translator.get_capacity(), 2112u);
    EXPECT_TRUE(translator.is_on_heap());
}

TEST(xml_translator, from_xml_result_lives_in_the_object_buffer_until_next_call) {
    xml_special_characters_c translator;
    const char* first = translator.translate_from_xml("&lt;");
    EXPECT_STREQ(first, "<");
    const char* second = translator.translate_from_xml("&gt;");
    EXPECT_EQ(first, second);
    EXPECT_STREQ(second, ">");
}

// ---- encoding

TEST(xml_translator, to_xml_of_null_is_null) {
    xml_special_characters_c translator;
    EXPECT_EQ(translator.translate_to_xml(nullptr), nullptr);
}

TEST(xml_translator, to_xml_of_empty_is_null) {
    xml_special_characters_c translator;
    EXPECT_EQ(translator.translate_to_xml(""), nullptr);
}

TEST(xml_translator, to_xml_encodes_the_four_characters) {
    EXPECT_EQ(to_xml("\"&<>"), "&quot;&amp;&lt;&gt;");
    EXPECT_EQ(to_xml("a<b"), "a&lt;b");
}

TEST(xml_translator, to_xml_apostrophe_and_other_bytes_stay) {
    EXPECT_EQ(to_xml("it's \t\n\xC3\xA9"), "it's \t\n\xC3\xA9");
}

TEST(xml_translator, capacity_starts_at_1024_inline) {
    xml_special_characters_c translator;
    EXPECT_EQ(translator.get_capacity(), 1024u);
    EXPECT_FALSE(translator.is_on_heap());
    std::string text(512, 'x');
    const char* out = translator.translate_to_xml(text.c_str());
    EXPECT_EQ(std::string(out), text);
    EXPECT_EQ(translator.get_capacity(), 1024u);
    EXPECT_FALSE(translator.is_on_heap());
}

TEST(xml_translator, to_xml_600_byte_text_grows_to_1216) {
    xml_special_characters_c translator;
    std::string text(600, 'y');
    const char* out = translator.translate_to_xml(text.c_str());
    EXPECT_EQ(std::string(out), text);
    EXPECT_EQ(translator.get_capacity(), 1216u);
    EXPECT_TRUE(translator.is_on_heap());
}

TEST(xml_translator, to_xml_513_byte_text_grows_to_1088) {
    xml_special_characters_c translator;
    std::string text(513, 'y');
    translator.translate_to_xml(text.c_str());
    EXPECT_EQ(translator.get_capacity(), 1088u);
}

TEST(xml_translator, to_xml_request_that_is_a_multiple_of_64_gets_64_more) {
    xml_special_characters_c translator;
    std::string text(640, 'y'); // a request of 1280
    translator.translate_to_xml(text.c_str());
    EXPECT_EQ(translator.get_capacity(), 1344u);
}

TEST(xml_translator, to_xml_growth_inside_text_adds_64_each_time) {
    xml_special_characters_c translator;
    // 512 ampersands fit the first check (1024) and then need 2560 bytes plus the terminator:
    // each step adds 64 to the old capacity, so the buffer ends at the first step above that.
    std::string text(512, '&');
    const char* out = translator.translate_to_xml(text.c_str());
    std::string expected;
    for (int i = 0; i < 512; ++i) expected += "&amp;";
    EXPECT_EQ(std::string(out), expected);
    EXPECT_EQ(translator.get_capacity(), 2624u);
    EXPECT_EQ(translator.get_capacity() % 64, 0u);
}

TEST(xml_translator, to_xml_then_from_xml_gives_the_text_back) {
    xml_special_characters_c a;
    xml_special_characters_c b;
    std::string text = "x=\"1\" & y<2 > z";
    const char* encoded = a.translate_to_xml(text.c_str());
    const char* decoded = b.translate_from_xml(encoded);
    EXPECT_EQ(std::string(decoded), text);
}

TEST(xml_translator, long_encoded_text_keeps_every_byte) {
    xml_special_characters_c translator;
    std::string text;
    for (int i = 0; i < 3000; ++i) text += (i % 7 == 0) ? '<' : static_cast<char>('a' + i % 26);
    const char* out = translator.translate_to_xml(text.c_str());
    std::string expected;
    for (char c : text) expected += c == '<' ? std::string("&lt;") : std::string(1, c);
    EXPECT_EQ(std::string(out), expected);
    EXPECT_GE(translator.get_capacity(), expected.size() + 1);
    EXPECT_EQ(translator.get_capacity() % 64, 0u);
}
