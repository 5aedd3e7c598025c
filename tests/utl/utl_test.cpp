// utl_n: the two comparisons without regard to case, through CharLowerW on UTF-16.
#include "utl/utl.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// ---- utf8_prefix_strnicmp

TEST(Utf8PrefixStrnicmp, ShortPrefixOfLongerTextIsZero) {
    EXPECT_EQ(utl_n::utf8_prefix_strnicmp("AB", "abc"), 0);
}

TEST(Utf8PrefixStrnicmp, LongerFirstTextIsNotAPrefix) {
    EXPECT_NE(utl_n::utf8_prefix_strnicmp("abc", "AB"), 0);
}

TEST(Utf8PrefixStrnicmp, EqualTextsWithoutCaseAreZero) {
    EXPECT_EQ(utl_n::utf8_prefix_strnicmp("C:/Data/File.TXT", "c:/data/file.txt"), 0);
}

TEST(Utf8PrefixStrnicmp, NullArgumentGivesZero) {
    EXPECT_EQ(utl_n::utf8_prefix_strnicmp(nullptr, "abc"), 0);
    EXPECT_EQ(utl_n::utf8_prefix_strnicmp("abc", nullptr), 0);
    EXPECT_EQ(utl_n::utf8_prefix_strnicmp(nullptr, nullptr), 0);
}

TEST(Utf8PrefixStrnicmp, EmptyPrefixMatchesAnyText) {
    EXPECT_EQ(utl_n::utf8_prefix_strnicmp("", "anything"), 0);
    EXPECT_EQ(utl_n::utf8_prefix_strnicmp("", ""), 0);
}

TEST(Utf8PrefixStrnicmp, DifferenceGivesSignOfFirstDifferentUnit) {
    EXPECT_GT(utl_n::utf8_prefix_strnicmp("abd", "ABC"), 0);
    EXPECT_LT(utl_n::utf8_prefix_strnicmp("ABC", "abd"), 0);
    EXPECT_GT(utl_n::utf8_prefix_strnicmp("abc", "ab"), 0);
}

TEST(Utf8PrefixStrnicmp, SeparatorsAreNotInterchangeable) {
    EXPECT_NE(utl_n::utf8_prefix_strnicmp("C:/a/", "C:/a\\b"), 0);
    EXPECT_EQ(utl_n::utf8_prefix_strnicmp("C:/a/", "C:/a/b"), 0);
}

TEST(Utf8PrefixStrnicmp, Latin1LettersCompareWithoutCase) {
    // "ÄÖÜ" and "äöüß/x"
    EXPECT_EQ(utl_n::utf8_prefix_strnicmp("\xC3\x84\xC3\x96\xC3\x9C",
                                          "\xC3\xA4\xC3\xB6\xC3\xBC\xC3\x9F/x"),
              0);
}

TEST(Utf8PrefixStrnicmp, CyrillicLettersCompareWithoutCase) {
    // "ЖУК" and "жук/dir"
    EXPECT_EQ(
        utl_n::utf8_prefix_strnicmp("\xD0\x96\xD0\xA3\xD0\x9A", "\xD0\xB6\xD1\x83\xD0\xBA/dir"), 0);
}

TEST(Utf8PrefixStrnicmp, GreekLettersCompareWithoutCase) {
    // "ΣΟΦΊ" and "σοφία"
    EXPECT_EQ(utl_n::utf8_prefix_strnicmp("\xCE\xA3\xCE\x9F\xCE\xA6\xCE\x8A",
                                          "\xCF\x83\xCE\xBF\xCF\x86\xCE\xAF\xCE\xB1"),
              0);
}

TEST(Utf8PrefixStrnicmp, SupplementaryCharactersCompareByUnits) {
    EXPECT_EQ(utl_n::utf8_prefix_strnicmp("\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80x"), 0);
    EXPECT_NE(utl_n::utf8_prefix_strnicmp("\xF0\x9F\x98\x80", "\xF0\x9F\x98\x81"), 0);
}

// ---- uni_stricmp

TEST(UniStricmp, EqualWithoutCaseIsZero) {
    EXPECT_EQ(utl_n::uni_stricmp(u"C:\\Dir\\File", u"c:\\DIR\\file"), 0);
    EXPECT_EQ(utl_n::uni_stricmp(u"", u""), 0);
}

TEST(UniStricmp, SmallerFirstTextIsMinusOne) {
    EXPECT_EQ(utl_n::uni_stricmp(u"abc", u"ABD"), -1);
    EXPECT_EQ(utl_n::uni_stricmp(u"a", u"z"), -1);
}

TEST(UniStricmp, GreaterFirstTextIsOne) {
    EXPECT_EQ(utl_n::uni_stricmp(u"ABD", u"abc"), 1);
    EXPECT_EQ(utl_n::uni_stricmp(u"z", u"A"), 1);
}

TEST(UniStricmp, PrefixIsSmallerThanLongerText) {
    EXPECT_EQ(utl_n::uni_stricmp(u"ab", u"ABC"), -1);
    EXPECT_EQ(utl_n::uni_stricmp(u"ABC", u"ab"), 1);
}

TEST(UniStricmp, OrderIsThatOfLowerCaseUnits) {
    // '_' (0x5F) lies between 'Z' (0x5A) and 'a' (0x61): the lower-case form decides.
    EXPECT_EQ(utl_n::uni_stricmp(u"_", u"A"), -1);
    EXPECT_EQ(utl_n::uni_stricmp(u"A", u"_"), 1);
}

TEST(UniStricmp, Latin1GreekAndCyrillicCompareWithoutCase) {
    EXPECT_EQ(utl_n::uni_stricmp(u"\u00C4rger\u00D8", u"\u00E4RGER\u00F8"), 0);
    EXPECT_EQ(
        utl_n::uni_stricmp(u"\u0391\u0398\u0389\u039D\u0391", u"\u03B1\u03B8\u03AE\u03BD\u03B1"),
        0);
    EXPECT_EQ(utl_n::uni_stricmp(u"\u041C\u041E\u0421\u041A\u0412\u0410",
                                 u"\u043C\u043E\u0441\u043A\u0432\u0430"),
              0);
}

TEST(UniStricmp, DifferentLettersAreNotEqual) {
    EXPECT_EQ(utl_n::uni_stricmp(u"\u0416", u"\u0417"), -1);
    EXPECT_EQ(utl_n::uni_stricmp(u"\u00E9", u"e"), 1);
}

TEST(UniStricmp, DoesNotChangeItsArguments) {
    std::u16string a = u"ABC", b = u"abc";
    EXPECT_EQ(utl_n::uni_stricmp(a.c_str(), b.c_str()), 0);
    EXPECT_EQ(a, u"ABC");
    EXPECT_EQ(b, u"abc");
}

} // namespace
