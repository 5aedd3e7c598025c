// multi_lang_str_n: UTF-8 and UTF-16 conversions with sizes in units of the target, terminator
// included, their trace lines on failure, the untraced twins and the buffer wrappers.
#include "common/test_support.h"
#include "utl/multi_lang.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

using test_support::trace_line;

namespace {

using multi_lang_str_n::wide_char;
using test_support::trace_capture_c;

// "aé€😀": 10 bytes of UTF-8, 5 units of UTF-16.
const std::string sample_utf8 = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";
const std::u16string sample_utf16 = u"a\u00E9\u20AC\U0001F600";
constexpr int sample_bytes_needed = 11;
constexpr int sample_units_needed = 6;

bool has_level(const std::string& line, unsigned level) {
    return line.find(" level=" + std::to_string(level) + " ") != std::string::npos;
}

// ---- utf8lenhelper

TEST(Utf8LenHelper, CountsBytesWithTerminator) {
    EXPECT_EQ(multi_lang_str_n::utf8lenhelper(sample_utf16.c_str()), sample_bytes_needed);
    EXPECT_EQ(multi_lang_str_n::utf8lenhelper(u""), 1);
}

TEST(Utf8LenHelper, NullTextNeedsNothing) {
    EXPECT_EQ(multi_lang_str_n::utf8lenhelper(nullptr), 0);
}

TEST(Utf8LenHelper, LoneSurrogateCountsAsReplacement) {
    std::u16string text = {u'a', 0xDC00};
    EXPECT_EQ(multi_lang_str_n::utf8lenhelper(text.c_str()), 5);
}

// ---- unicode_to_utf8

TEST(UnicodeToUtf8, NullTargetYieldsNeedInSize) {
    trace_capture_c capture;
    int size = 0;
    EXPECT_TRUE(multi_lang_str_n::unicode_to_utf8(sample_utf16.c_str(), nullptr, size));
    EXPECT_EQ(size, sample_bytes_needed);
    EXPECT_EQ(capture.text().find("Fail to convert"), std::string::npos) << capture.text();
}

TEST(UnicodeToUtf8, NullSourceEmptiesTargetAndSizeIsZero) {
    char narrow[4] = {'x', 'y', 'z', 0};
    int size = 4;
    EXPECT_TRUE(multi_lang_str_n::unicode_to_utf8(nullptr, narrow, size));
    EXPECT_EQ(narrow[0], 0);
    EXPECT_EQ(narrow[1], 'y');
    EXPECT_EQ(size, 0);
    size = 7;
    EXPECT_TRUE(multi_lang_str_n::unicode_to_utf8(nullptr, nullptr, size));
    EXPECT_EQ(size, 0);
}

TEST(UnicodeToUtf8, ExactTargetConverts) {
    std::vector<char> narrow(sample_bytes_needed, '#');
    int size = sample_bytes_needed;
    EXPECT_TRUE(multi_lang_str_n::unicode_to_utf8(sample_utf16.c_str(), narrow.data(), size));
    EXPECT_EQ(size, sample_bytes_needed);
    EXPECT_EQ(std::string(narrow.data()), sample_utf8);
}

TEST(UnicodeToUtf8, LargerTargetConvertsAndSizeBecomesNeed) {
    std::vector<char> narrow(64, '#');
    int size = 64;
    EXPECT_TRUE(multi_lang_str_n::unicode_to_utf8(sample_utf16.c_str(), narrow.data(), size));
    EXPECT_EQ(size, sample_bytes_needed);
    EXPECT_EQ(std::string(narrow.data()), sample_utf8);
    EXPECT_EQ(narrow[sample_bytes_needed], '#');
}

TEST(UnicodeToUtf8, ShortTargetFailsUntouchedWithTrace) {
    trace_capture_c capture;
    std::vector<char> narrow(sample_bytes_needed - 1, '#');
    int size = sample_bytes_needed - 1;
    EXPECT_FALSE(multi_lang_str_n::unicode_to_utf8(sample_utf16.c_str(), narrow.data(), size));
    EXPECT_EQ(size, sample_bytes_needed);
    EXPECT_EQ(std::string(narrow.begin(), narrow.end()), std::string(sample_bytes_needed - 1, '#'));
    std::string line =
        trace_line(capture.text(), "Fail to convert from UNICODE to UTF-8, short buffer 10 < 11");
    ASSERT_FALSE(line.empty()) << capture.text();
    EXPECT_TRUE(has_level(line, 4)) << line;
    EXPECT_NE(line.find("multi_lang_str_n::unicode_to_utf8"), std::string::npos) << line;
}

TEST(UnicodeToUtf8, EmptyTextNeedsOneByte) {
    char narrow[2] = {'#', '#'};
    int size = 2;
    EXPECT_TRUE(multi_lang_str_n::unicode_to_utf8(u"", narrow, size));
    EXPECT_EQ(size, 1);
    EXPECT_EQ(narrow[0], 0);
}

TEST(UnicodeToUtf8, LoneSurrogateBecomesReplacement) {
    std::u16string text = {u'a', 0xD800, u'b'};
    char narrow[16] = {};
    int size = 16;
    EXPECT_TRUE(multi_lang_str_n::unicode_to_utf8(text.c_str(), narrow, size));
    EXPECT_EQ(std::string(narrow), "a\xEF\xBF\xBD"
                                   "b");
    EXPECT_EQ(size, 6);
}

// ---- utf8_to_unicode

TEST(Utf8ToUnicode, NullTargetYieldsNeedInSize) {
    int size = 0;
    EXPECT_TRUE(multi_lang_str_n::utf8_to_unicode(sample_utf8.c_str(), nullptr, size));
    EXPECT_EQ(size, sample_units_needed);
}

TEST(Utf8ToUnicode, NullSourceEmptiesTargetAndSizeIsZero) {
    wide_char wide[3] = {u'x', u'y', 0};
    int size = 3;
    EXPECT_TRUE(multi_lang_str_n::utf8_to_unicode(nullptr, wide, size));
    EXPECT_EQ(wide[0], 0);
    EXPECT_EQ(wide[1], u'y');
    EXPECT_EQ(size, 0);
}

TEST(Utf8ToUnicode, ExactTargetConverts) {
    std::vector<wide_char> wide(sample_units_needed, u'#');
    int size = sample_units_needed;
    EXPECT_TRUE(multi_lang_str_n::utf8_to_unicode(sample_utf8.c_str(), wide.data(), size));
    EXPECT_EQ(size, sample_units_needed);
    EXPECT_EQ(std::u16string(wide.data()), sample_utf16);
}

TEST(Utf8ToUnicode, BufferOneUnitShortFailsWithNeedInSize) {
    trace_capture_c capture;
    std::vector<wide_char> wide(sample_units_needed - 1, u'#');
    int size = sample_units_needed - 1;
    EXPECT_FALSE(multi_lang_str_n::utf8_to_unicode(sample_utf8.c_str(), wide.data(), size));
    EXPECT_EQ(size, sample_units_needed);
    EXPECT_EQ(std::u16string(wide.begin(), wide.end()),
              std::u16string(sample_units_needed - 1, u'#'));
    std::string trace = capture.text();
    std::string first = trace_line(
        trace, "Fail to convert from UTF-8 to UNICODE, short buffer len 5 < required len 6");
    ASSERT_FALSE(first.empty()) << trace;
    EXPECT_TRUE(has_level(first, 4)) << first;
    std::string second = trace_line(trace, "UTF-8 buffer length=10, buffer=" + sample_utf8);
    ASSERT_FALSE(second.empty()) << trace;
    EXPECT_TRUE(has_level(second, 4)) << second;
    EXPECT_LT(trace.find(first), trace.find(second));
}

TEST(Utf8ToUnicode, IllFormedInputIsReplacedNotRefused) {
    wide_char wide[8] = {};
    int size = 8;
    EXPECT_TRUE(multi_lang_str_n::utf8_to_unicode("a\xFFz", wide, size));
    EXPECT_EQ(size, 4);
    EXPECT_EQ(std::u16string(wide), u"a\uFFFDz");
}

TEST(Utf8ToUnicode, EmptyTextNeedsOneUnit) {
    wide_char wide[2] = {u'#', u'#'};
    int size = 2;
    EXPECT_TRUE(multi_lang_str_n::utf8_to_unicode("", wide, size));
    EXPECT_EQ(size, 1);
    EXPECT_EQ(wide[0], 0);
}

// ---- untraced twins

TEST(UntracedConversions, GiveTheSameResultsWithoutTrace) {
    trace_capture_c capture;
    EXPECT_EQ(multi_lang_str_n::utf8lenhelper_untraced(sample_utf16.c_str()), sample_bytes_needed);
    EXPECT_EQ(multi_lang_str_n::utf8lenhelper_untraced(nullptr), 0);

    char narrow[32] = {};
    int size = 32;
    EXPECT_TRUE(multi_lang_str_n::unicode_to_utf8_untraced(sample_utf16.c_str(), narrow, size));
    EXPECT_EQ(size, sample_bytes_needed);
    EXPECT_EQ(std::string(narrow), sample_utf8);
    size = sample_bytes_needed - 1;
    EXPECT_FALSE(multi_lang_str_n::unicode_to_utf8_untraced(sample_utf16.c_str(), narrow, size));
    EXPECT_EQ(size, sample_bytes_needed);

    wide_char wide[8] = {};
    size = 8;
    EXPECT_TRUE(multi_lang_str_n::utf8_to_unicode_untraced(sample_utf8.c_str(), wide, size));
    EXPECT_EQ(size, sample_units_needed);
    EXPECT_EQ(std::u16string(wide), sample_utf16);
    size = sample_units_needed - 1;
    EXPECT_FALSE(multi_lang_str_n::utf8_to_unicode_untraced(sample_utf8.c_str(), wide, size));
    EXPECT_EQ(size, sample_units_needed);
    size = 0;
    EXPECT_TRUE(multi_lang_str_n::utf8_to_unicode_untraced(sample_utf8.c_str(), nullptr, size));
    EXPECT_EQ(size, sample_units_needed);

    EXPECT_EQ(capture.text().find("Fail to convert"), std::string::npos) << capture.text();
    EXPECT_EQ(capture.text().find("UTF-8 buffer length"), std::string::npos) << capture.text();
}

// ---- buffer wrappers

TEST(ConversionBuffers, UnicodeToUtf8BufferClearsAndReturnsTarget) {
    char narrow[16];
    std::fill(std::begin(narrow), std::end(narrow), '#');
    EXPECT_EQ(multi_lang_str_n::unicode_to_utf8_buffer(u"ab", narrow, 16), narrow);
    EXPECT_EQ(std::string(narrow), "ab");
    for (std::size_t i = 2; i < 16; ++i) EXPECT_EQ(narrow[i], 0) << i;
}

TEST(ConversionBuffers, UnicodeToUtf8BufferShortIsNullAndCleared) {
    char narrow[4];
    std::fill(std::begin(narrow), std::end(narrow), '#');
    EXPECT_EQ(multi_lang_str_n::unicode_to_utf8_buffer(sample_utf16.c_str(), narrow, 4), nullptr);
    for (char c : narrow) EXPECT_EQ(c, 0);
}

TEST(ConversionBuffers, Utf8ToUnicodeBufferClearsAndReturnsTarget) {
    wide_char wide[8];
    std::fill(std::begin(wide), std::end(wide), u'#');
    EXPECT_EQ(multi_lang_str_n::utf8_to_unicode_buffer(sample_utf8.c_str(), wide, 8), wide);
    EXPECT_EQ(std::u16string(wide), sample_utf16);
    EXPECT_EQ(wide[6], 0);
    EXPECT_EQ(wide[7], 0);
}

TEST(ConversionBuffers, Utf8ToUnicodeBufferShortIsNullAndCleared) {
    wide_char wide[3];
    std::fill(std::begin(wide), std::end(wide), u'#');
    EXPECT_EQ(multi_lang_str_n::utf8_to_unicode_buffer(sample_utf8.c_str(), wide, 3), nullptr);
    for (wide_char c : wide) EXPECT_EQ(c, 0);
}

TEST(ConversionBuffers, NoRoomIsNull) {
    char narrow[1] = {'#'};
    wide_char wide[1] = {u'#'};
    EXPECT_EQ(multi_lang_str_n::unicode_to_utf8_buffer(u"a", narrow, 0), nullptr);
    EXPECT_EQ(multi_lang_str_n::utf8_to_unicode_buffer("a", wide, 0), nullptr);
    EXPECT_EQ(multi_lang_str_n::unicode_to_utf8_buffer(u"a", nullptr, 4), nullptr);
    EXPECT_EQ(narrow[0], '#');
    EXPECT_EQ(wide[0], u'#');
}

} // namespace
