// The code-page calls of the OS layer, code page 65001 only, and the two case operations. The
// same expectations hold for the posix codec and for the system's calls, so this file is the
// proof that both builds convert alike.
#include "common/test_support.h"
#include "platform/os.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

using os::wide_char;

constexpr os::DWORD mb_err_invalid_chars = 0x8;
constexpr os::DWORD wc_err_invalid_chars = 0x80;

// "aé€😀": one, two, three and four bytes of UTF-8; one, one, one and two units of UTF-16.
const std::string sample_utf8 = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";
const std::u16string sample_utf16 = u"a\u00E9\u20AC\U0001F600";

// The whole conversion of `bytes` (explicit length, or -1 with the terminator), or the failure.
struct wide_result_s {
    int returned = 0;
    os::DWORD error = 0;
    std::u16string text;
};

wide_result_s to_wide(const std::string& bytes, bool with_terminator, os::DWORD flags = 0) {
    int length = with_terminator ? -1 : static_cast<int>(bytes.size());
    std::vector<wide_char> buffer(bytes.size() * 2 + 8, u'#');
    wide_result_s result;
    os::SetLastError(0);
    result.returned = os::MultiByteToWideChar(os::CP_UTF8, flags, bytes.c_str(), length,
                                              buffer.data(), static_cast<int>(buffer.size()));
    result.error = os::GetLastError();
    if (result.returned > 0)
        result.text.assign(buffer.data(), static_cast<std::size_t>(result.returned));
    return result;
}

struct narrow_result_s {
    int returned = 0;
    os::DWORD error = 0;
    std::string text;
};

narrow_result_s to_narrow(const std::u16string& units, bool with_terminator, os::DWORD flags = 0) {
    int length = with_terminator ? -1 : static_cast<int>(units.size());
    std::vector<char> buffer(units.size() * 4 + 8, '#');
    narrow_result_s result;
    os::SetLastError(0);
    result.returned = os::WideCharToMultiByte(os::CP_UTF8, flags, units.c_str(), length,
                                              buffer.data(), static_cast<int>(buffer.size()));
    result.error = os::GetLastError();
    if (result.returned > 0)
        result.text.assign(buffer.data(), static_cast<std::size_t>(result.returned));
    return result;
}

// The text as it stands in a terminated result.
std::u16string terminated(const std::u16string& text) { return text + std::u16string(1, u'\0'); }
std::string terminated(const std::string& text) { return text + std::string(1, '\0'); }

std::u16string lowered(std::u16string text) {
    os::CharLowerW(text.data());
    return text;
}

// ---- MultiByteToWideChar

TEST(MultiByteToWideChar, MeasureWithTargetLengthZeroCountsTerminator) {
    os::SetLastError(0);
    EXPECT_EQ(os::MultiByteToWideChar(os::CP_UTF8, 0, sample_utf8.c_str(), -1, nullptr, 0), 6);
    wide_char unused[1] = {u'#'};
    EXPECT_EQ(os::MultiByteToWideChar(os::CP_UTF8, 0, sample_utf8.c_str(), -1, unused, 0), 6);
    EXPECT_EQ(unused[0], u'#');
}

TEST(MultiByteToWideChar, MeasureWithExplicitSourceLengthHasNoTerminator) {
    EXPECT_EQ(os::MultiByteToWideChar(os::CP_UTF8, 0, sample_utf8.c_str(),
                                      static_cast<int>(sample_utf8.size()), nullptr, 0),
              5);
}

TEST(MultiByteToWideChar, SourceLengthMinusOneConvertsTheTerminator) {
    wide_result_s result = to_wide(sample_utf8, true);
    EXPECT_EQ(result.returned, 6);
    EXPECT_EQ(result.text, terminated(sample_utf16));
}

TEST(MultiByteToWideChar, ExplicitSourceLengthWritesNoTerminator) {
    std::vector<wide_char> buffer(8, u'#');
    int n = os::MultiByteToWideChar(os::CP_UTF8, 0, sample_utf8.c_str(),
                                    static_cast<int>(sample_utf8.size()), buffer.data(), 8);
    ASSERT_EQ(n, 5);
    EXPECT_EQ(std::u16string(buffer.data(), 5), sample_utf16);
    EXPECT_EQ(buffer[5], u'#');
}

TEST(MultiByteToWideChar, ExactTargetIsEnough) {
    std::vector<wide_char> buffer(6, u'#');
    EXPECT_EQ(os::MultiByteToWideChar(os::CP_UTF8, 0, sample_utf8.c_str(), -1, buffer.data(), 6),
              6);
    EXPECT_EQ(std::u16string(buffer.data(), 6), terminated(sample_utf16));
}

TEST(MultiByteToWideChar, ShortTargetFailsWithInsufficientBuffer) {
    std::vector<wide_char> buffer(5, u'#');
    os::SetLastError(0);
    EXPECT_EQ(os::MultiByteToWideChar(os::CP_UTF8, 0, sample_utf8.c_str(), -1, buffer.data(), 5),
              0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_INSUFFICIENT_BUFFER);
}

// A path-like ASCII run, longer than the target, before text of more than one byte.
TEST(MultiByteToWideChar, AsciiRunLongerThanTheTargetFailsAndMeasuresTheWhole) {
    std::string text = "C:\\data\\" + sample_utf8;
    std::vector<wide_char> buffer(4, u'#');
    os::SetLastError(0);
    EXPECT_EQ(os::MultiByteToWideChar(os::CP_UTF8, 0, text.c_str(), -1, buffer.data(), 4), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(os::MultiByteToWideChar(os::CP_UTF8, 0, text.c_str(), -1, nullptr, 0), 8 + 6);
}

TEST(MultiByteToWideChar, AsciiRunThenOtherTextConvertsWhole) {
    std::string text = "C:\\data\\" + sample_utf8;
    std::vector<wide_char> buffer(14, u'#');
    EXPECT_EQ(os::MultiByteToWideChar(os::CP_UTF8, 0, text.c_str(), -1, buffer.data(), 14), 14);
    EXPECT_EQ(std::u16string(buffer.data(), 14), terminated(u"C:\\data\\" + sample_utf16));
}

TEST(MultiByteToWideChar, ShortTargetForHalfASurrogatePairFails) {
    if (test_support::on_wine())
        GTEST_SKIP() << "Wine 8 writes the high surrogate alone into the last unit and reports "
                        "success; a target too short for the whole result fails with "
                        "ERROR_INSUFFICIENT_BUFFER";
    // Room for "a" and the high surrogate only.
    std::string bytes = "a\xF0\x9F\x98\x80";
    wide_char buffer[2] = {u'#', u'#'};
    os::SetLastError(0);
    EXPECT_EQ(os::MultiByteToWideChar(os::CP_UTF8, 0, bytes.c_str(), 5, buffer, 2), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_INSUFFICIENT_BUFFER);
}

TEST(MultiByteToWideChar, SourceLengthZeroIsInvalidParameter) {
    os::SetLastError(0);
    EXPECT_EQ(os::MultiByteToWideChar(os::CP_UTF8, 0, "abc", 0, nullptr, 0), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_INVALID_PARAMETER);
}

TEST(MultiByteToWideChar, EmptyTextWithTerminatorIsOneUnit) {
    wide_result_s result = to_wide("", true);
    EXPECT_EQ(result.returned, 1);
    EXPECT_EQ(result.text, std::u16string(1, u'\0'));
}

TEST(MultiByteToWideChar, FourByteSequenceBecomesSurrogatePair) {
    wide_result_s result = to_wide("\xF0\x9F\x98\x80", false);
    EXPECT_EQ(result.text, (std::u16string{0xD83D, 0xDE00}));
    result = to_wide("\xF4\x8F\xBF\xBF", false);
    EXPECT_EQ(result.text, (std::u16string{0xDBFF, 0xDFFF}));
}

TEST(MultiByteToWideChar, BoundaryCodePointsDecode) {
    std::string bytes = "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"
                        "\xF0\x90\x80\x80";
    std::u16string expected = {0x7F, 0x80, 0x7FF, 0x800, 0xD7FF, 0xE000, 0xFFFF, 0xD800, 0xDC00};
    EXPECT_EQ(to_wide(bytes, false).text, expected);
}

TEST(MultiByteToWideChar, ZeroByteInsideExplicitLengthIsConverted) {
    std::string bytes("a\0b", 3);
    EXPECT_EQ(to_wide(bytes, false).text, (std::u16string{u'a', 0, u'b'}));
}

TEST(MultiByteToWideChar, LoneContinuationByteBecomesOneReplacement) {
    EXPECT_EQ(to_wide("a\x80z", false).text, u"a\uFFFDz");
    EXPECT_EQ(to_wide("a\x80\xBF\x80z", false).text, u"a\uFFFD\uFFFD\uFFFDz");
}

TEST(MultiByteToWideChar, ByteThatNeverLeadsBecomesOneReplacement) {
    for (const char* bytes : {"a\xC0z", "a\xC1z", "a\xF5z", "a\xF8z", "a\xFEz", "a\xFFz"})
        EXPECT_EQ(to_wide(bytes, false).text, u"a\uFFFDz") << "lead byte " << bytes + 1;
    // C0 and C1 would only spell overlong forms: they and their continuation are two parts.
    EXPECT_EQ(to_wide("a\xC0\x80z", false).text, u"a\uFFFD\uFFFDz");
    EXPECT_EQ(to_wide("a\xC1\xBFz", false).text, u"a\uFFFD\uFFFDz");
    EXPECT_EQ(to_wide("a\xF5\x80\x80\x80z", false).text, u"a\uFFFD\uFFFD\uFFFD\uFFFDz");
}

TEST(MultiByteToWideChar, SequenceInterruptedByAnotherCharacterBecomesOneReplacement) {
    EXPECT_EQ(to_wide("a\xE2\x82z", false).text, u"a\uFFFDz");
    EXPECT_EQ(to_wide("a\xF0\x9F\x98z", false).text, u"a\uFFFDz");
    EXPECT_EQ(to_wide("a\xE2"
                      "Az",
                      false)
                  .text,
              u"a\uFFFDAz");
    EXPECT_EQ(to_wide("a\xC2\xC2\x80z", false).text, u"a\uFFFD\u0080z");
    EXPECT_EQ(to_wide("a\xE1\x80\xC2\x80z", false).text, u"a\uFFFD\u0080z");
}

// The lead byte and the first continuation byte that shows the sequence to be overlong, a
// surrogate or beyond U+10FFFF are one ill-formed part; the bytes after it are strays.
TEST(MultiByteToWideChar, OverlongThreeByteSequenceReplacesLeadWithFirstContinuation) {
    EXPECT_EQ(to_wide("a\xE0\x80\x80z", false).text, u"a\uFFFD\uFFFDz");
    EXPECT_EQ(to_wide("a\xE0\x9F\xBFz", false).text, u"a\uFFFD\uFFFDz");
}

TEST(MultiByteToWideChar, OverlongFourByteSequenceReplacesLeadWithFirstContinuation) {
    EXPECT_EQ(to_wide("a\xF0\x80\x80\x80z", false).text, u"a\uFFFD\uFFFD\uFFFDz");
    EXPECT_EQ(to_wide("a\xF0\x8F\xBF\xBFz", false).text, u"a\uFFFD\uFFFD\uFFFDz");
}

TEST(MultiByteToWideChar, EncodedSurrogateReplacesLeadWithFirstContinuation) {
    EXPECT_EQ(to_wide("a\xED\xA0\x80z", false).text, u"a\uFFFD\uFFFDz");
    EXPECT_EQ(to_wide("a\xED\xBF\xBFz", false).text, u"a\uFFFD\uFFFDz");
    // A pair of encoded surrogates is two ill-formed sequences, never a pair.
    EXPECT_EQ(to_wide("\xED\xA0\xBD\xED\xB8\x80", false).text, u"\uFFFD\uFFFD\uFFFD\uFFFD");
}

TEST(MultiByteToWideChar, CodePointBeyondU10FFFFReplacesLeadWithFirstContinuation) {
    EXPECT_EQ(to_wide("a\xF4\x90\x80\x80z", false).text, u"a\uFFFD\uFFFD\uFFFDz");
    EXPECT_EQ(to_wide("a\xF4\x90zzz", false).text, u"a\uFFFDzzz");
}

TEST(MultiByteToWideChar, ReplacementCountsTheSameWithTerminator) {
    wide_result_s result = to_wide("a\xE0\x80\x80\xFFz", true);
    EXPECT_EQ(result.returned, 6);
    EXPECT_EQ(result.text, terminated(u"a\uFFFD\uFFFD\uFFFDz"));
}

TEST(MultiByteToWideChar, MeasureAgreesWithConversionForIllFormedInput) {
    for (const char* bytes : {"\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xC0\x80",
                              "a\xE2\x82z", "\x80\x80"}) {
        int measured = os::MultiByteToWideChar(os::CP_UTF8, 0, bytes, -1, nullptr, 0);
        EXPECT_EQ(measured, to_wide(bytes, true).returned) << bytes;
    }
}

TEST(MultiByteToWideChar, SequenceCutByEndOfInputBecomesOneReplacement) {
    EXPECT_EQ(to_wide("a\xE2\x82", false).text, u"a\uFFFD");
    EXPECT_EQ(to_wide("a\xF0\x9F\x98", false).text, u"a\uFFFD");
    EXPECT_EQ(to_wide("a\xC2", false).text, u"a\uFFFD");
}

TEST(MultiByteToWideChar, SequenceCutByTerminatorKeepsTerminator) {
    EXPECT_EQ(to_wide("a\xE2\x82", true).text, terminated(u"a\uFFFD"));
    EXPECT_EQ(to_wide("a\xF0\x9F\x98", true).text, terminated(u"a\uFFFD"));
    EXPECT_EQ(to_wide("a\xC2", true).text, terminated(u"a\uFFFD"));
}

// Wine loses the terminator here; the Windows side of the OS layer adds it back itself.
TEST(MultiByteToWideChar, LeadByteJustBeforeTerminatorKeepsTerminator) {
    EXPECT_EQ(to_wide("a\xE2", true).text, terminated(u"a\uFFFD"));
    EXPECT_EQ(to_wide("a\xF0", true).text, terminated(u"a\uFFFD"));
    EXPECT_EQ(to_wide("a\xF0\x9F", true).text, terminated(u"a\uFFFD"));
}

TEST(MultiByteToWideChar, LeadByteNearEndOfInputKeepsFollowingCharacters) {
    if (test_support::on_wine())
        GTEST_SKIP() << "Wine 8 drops the well-formed characters after a lead byte when fewer "
                        "bytes than the sequence needs are left (a\\xF0zz gives a, U+FFFD); only "
                        "ill-formed sequences are replaced, nothing is dropped";
    EXPECT_EQ(to_wide("a\xF0zz", false).text, u"a\uFFFDzz");
    EXPECT_EQ(to_wide("a\xE2z", false).text, u"a\uFFFDz");
    EXPECT_EQ(to_wide("a\xF0\x9Fz", false).text, u"a\uFFFDz");
}

TEST(MultiByteToWideChar, InvalidCharsFlagFailsOnIllFormedInput) {
    wide_result_s result = to_wide("a\xFFz", true, mb_err_invalid_chars);
    EXPECT_EQ(result.returned, 0);
    EXPECT_EQ(result.error, os::ERROR_NO_UNICODE_TRANSLATION);
    result = to_wide(sample_utf8, true, mb_err_invalid_chars);
    EXPECT_EQ(result.text, terminated(sample_utf16));
}

// ---- WideCharToMultiByte

TEST(WideCharToMultiByte, MeasureWithTargetLengthZeroCountsTerminator) {
    EXPECT_EQ(os::WideCharToMultiByte(os::CP_UTF8, 0, sample_utf16.c_str(), -1, nullptr, 0), 11);
    char unused[1] = {'#'};
    EXPECT_EQ(os::WideCharToMultiByte(os::CP_UTF8, 0, sample_utf16.c_str(), -1, unused, 0), 11);
    EXPECT_EQ(unused[0], '#');
}

TEST(WideCharToMultiByte, MeasureWithExplicitSourceLengthHasNoTerminator) {
    EXPECT_EQ(os::WideCharToMultiByte(os::CP_UTF8, 0, sample_utf16.c_str(),
                                      static_cast<int>(sample_utf16.size()), nullptr, 0),
              10);
}

TEST(WideCharToMultiByte, SourceLengthMinusOneConvertsTheTerminator) {
    narrow_result_s result = to_narrow(sample_utf16, true);
    EXPECT_EQ(result.returned, 11);
    EXPECT_EQ(result.text, terminated(sample_utf8));
}

TEST(WideCharToMultiByte, ExactTargetIsEnough) {
    std::vector<char> buffer(11, '#');
    EXPECT_EQ(os::WideCharToMultiByte(os::CP_UTF8, 0, sample_utf16.c_str(), -1, buffer.data(), 11),
              11);
    EXPECT_EQ(std::string(buffer.data(), 11), terminated(sample_utf8));
}

TEST(WideCharToMultiByte, ShortTargetFailsWithInsufficientBuffer) {
    std::vector<char> buffer(10, '#');
    os::SetLastError(0);
    EXPECT_EQ(os::WideCharToMultiByte(os::CP_UTF8, 0, sample_utf16.c_str(), -1, buffer.data(), 10),
              0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_INSUFFICIENT_BUFFER);
}

TEST(WideCharToMultiByte, AsciiRunLongerThanTheTargetFailsAndMeasuresTheWhole) {
    std::u16string text = u"C:\\data\\" + sample_utf16;
    std::vector<char> buffer(4, '#');
    os::SetLastError(0);
    EXPECT_EQ(os::WideCharToMultiByte(os::CP_UTF8, 0, text.c_str(), -1, buffer.data(), 4), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(os::WideCharToMultiByte(os::CP_UTF8, 0, text.c_str(), -1, nullptr, 0), 8 + 11);
}

TEST(WideCharToMultiByte, AsciiRunThenOtherTextConvertsWhole) {
    std::u16string text = u"C:\\data\\" + sample_utf16;
    std::vector<char> buffer(19, '#');
    EXPECT_EQ(os::WideCharToMultiByte(os::CP_UTF8, 0, text.c_str(), -1, buffer.data(), 19), 19);
    EXPECT_EQ(std::string(buffer.data(), 19), terminated("C:\\data\\" + sample_utf8));
}

TEST(WideCharToMultiByte, ShortTargetInsideAFourByteSequenceFails) {
    char buffer[3] = {'#', '#', '#'};
    os::SetLastError(0);
    EXPECT_EQ(os::WideCharToMultiByte(os::CP_UTF8, 0, u"\U0001F600", 2, buffer, 3), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_INSUFFICIENT_BUFFER);
}

TEST(WideCharToMultiByte, SourceLengthZeroIsInvalidParameter) {
    os::SetLastError(0);
    EXPECT_EQ(os::WideCharToMultiByte(os::CP_UTF8, 0, u"abc", 0, nullptr, 0), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_INVALID_PARAMETER);
}

TEST(WideCharToMultiByte, SurrogatePairBecomesFourBytes) {
    EXPECT_EQ(to_narrow(u"\U0001F600", false).text, "\xF0\x9F\x98\x80");
    EXPECT_EQ(to_narrow(u"\U00010000\U0010FFFF", false).text, "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

TEST(WideCharToMultiByte, LoneHighSurrogateBecomesReplacement) {
    EXPECT_EQ(to_narrow(std::u16string{u'a', 0xD800, u'z'}, false).text, "a\xEF\xBF\xBDz");
}

TEST(WideCharToMultiByte, LoneLowSurrogateBecomesReplacement) {
    EXPECT_EQ(to_narrow(std::u16string{u'a', 0xDC00, u'z'}, false).text, "a\xEF\xBF\xBDz");
}

TEST(WideCharToMultiByte, ReversedPairBecomesTwoReplacements) {
    EXPECT_EQ(to_narrow(std::u16string{u'a', 0xDC00, 0xD800, u'z'}, false).text,
              "a\xEF\xBF\xBD\xEF\xBF\xBDz");
}

TEST(WideCharToMultiByte, HighSurrogateBeforeAPairIsAloneAndThePairStays) {
    EXPECT_EQ(to_narrow(std::u16string{u'a', 0xD800, 0xD800, 0xDC00, u'z'}, false).text,
              "a\xEF\xBF\xBD\xF0\x90\x80\x80z");
}

TEST(WideCharToMultiByte, HighSurrogateAtEndOfInputBecomesReplacement) {
    EXPECT_EQ(to_narrow(std::u16string{u'a', 0xD800}, false).text, "a\xEF\xBF\xBD");
    EXPECT_EQ(to_narrow(std::u16string{u'a', 0xD800}, true).text, terminated("a\xEF\xBF\xBD"));
}

TEST(WideCharToMultiByte, InvalidCharsFlagFailsOnLoneSurrogate) {
    narrow_result_s result =
        to_narrow(std::u16string{u'a', 0xD800, u'z'}, true, wc_err_invalid_chars);
    EXPECT_EQ(result.returned, 0);
    EXPECT_EQ(result.error, os::ERROR_NO_UNICODE_TRANSLATION);
}

TEST(CodePageConversion, EveryBmpUnitAndSomePairsRoundTrip) {
    std::u16string all;
    for (unsigned unit = 1; unit < 0x10000; ++unit)
        if (unit < 0xD800 || unit > 0xDFFF) all.push_back(static_cast<wide_char>(unit));
    all += u"\U00010000\U0001F600\U0010FFFF";
    narrow_result_s narrow = to_narrow(all, true);
    ASSERT_GT(narrow.returned, 0);
    wide_result_s back = to_wide(narrow.text.substr(0, narrow.text.size() - 1), true);
    EXPECT_EQ(back.text, terminated(all));
}

// ---- the same results on every build, over many inputs

// FNV-1a over what the calls give, so that one number stands for a whole corpus of results.
struct digest_s {
    std::uint64_t value = 14695981039346656037ull;
    void add(std::uint32_t word) {
        for (int i = 0; i < 4; ++i) {
            value ^= (word >> (8 * i)) & 0xFF;
            value *= 1099511628211ull;
        }
    }
};

// A fixed sequence of numbers, the same on every build.
struct sequence_s {
    std::uint64_t state = 12345;
    unsigned next() {
        state = state * 6364136223846793005ull + 1442695040888963407ull;
        return static_cast<unsigned>(state >> 33);
    }
};

// Lead bytes, continuation bytes of every sub-range, bytes that never lead, and ASCII. Each input
// ends in plain characters, so that no sequence is cut by its end.
TEST(CodePageConversion, IllFormedUtf8CorpusConvertsAlikeOnEveryBuild) {
    const unsigned char bytes[] = {0x41, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xC1, 0xC2,
                                   0xDF, 0xE0, 0xE1, 0xED, 0xEF, 0xF0, 0xF1, 0xF4, 0xF5, 0xFF};
    sequence_s sequence;
    digest_s digest;
    for (int round = 0; round < 20000; ++round) {
        std::string input;
        for (unsigned n = 1 + sequence.next() % 7; n > 0; --n)
            input += static_cast<char>(bytes[sequence.next() % sizeof bytes]);
        input += "ZZZZ";
        wide_result_s result = to_wide(input, true);
        ASSERT_GT(result.returned, 0);
        ASSERT_EQ(os::MultiByteToWideChar(os::CP_UTF8, 0, input.c_str(), -1, nullptr, 0),
                  result.returned);
        digest.add(static_cast<std::uint32_t>(result.returned));
        for (wide_char unit : result.text) digest.add(unit);
    }
    EXPECT_EQ(digest.value, 12971858678111195622ull);
}

TEST(CodePageConversion, IllFormedUtf16CorpusConvertsAlikeOnEveryBuild) {
    const wide_char units[] = {u'a',   0x7F,   0x80,   0x7FF,  0x800,  0xD7FF, 0xD800,
                               0xDBFF, 0xDC00, 0xDFFF, 0xE000, 0xFFFD, 0xFFFF};
    sequence_s sequence;
    digest_s digest;
    for (int round = 0; round < 20000; ++round) {
        std::u16string input;
        for (unsigned n = 1 + sequence.next() % 7; n > 0; --n)
            input += units[sequence.next() % (sizeof units / sizeof units[0])];
        narrow_result_s result = to_narrow(input, true);
        ASSERT_GT(result.returned, 0);
        digest.add(static_cast<std::uint32_t>(result.returned));
        for (char byte : result.text) digest.add(static_cast<unsigned char>(byte));
    }
    EXPECT_EQ(digest.value, 10194108415608649869ull);
}

// ---- CharLowerW

TEST(CharLowerW, AsciiCapitalsOnlyAreLowered) {
    EXPECT_EQ(lowered(u"ABCXYZ abcxyz 0189 @[`{~_\\/:"), u"abcxyz abcxyz 0189 @[`{~_\\/:");
}

TEST(CharLowerW, Latin1CapitalsAreLowered) {
    EXPECT_EQ(lowered(u"\u00C0\u00C9\u00D1\u00D6\u00D8\u00DE"),
              u"\u00E0\u00E9\u00F1\u00F6\u00F8\u00FE");
}

TEST(CharLowerW, Latin1NonCapitalsStay) {
    // Multiplication sign, sharp s, y with diaeresis, micro sign, inverted question mark.
    std::u16string text = u"\u00D7\u00DF\u00FF\u00B5\u00BF\u00E0";
    EXPECT_EQ(lowered(text), text);
}

TEST(CharLowerW, LatinExtendedACapitalsAreLowered) {
    EXPECT_EQ(lowered(u"\u0100\u0141\u0152\u0160\u0178\u017D\u0139"),
              u"\u0101\u0142\u0153\u0161\u00FF\u017E\u013A");
}

TEST(CharLowerW, CapitalIWithDotAboveStays) {
    std::u16string text = u"\u0130";
    EXPECT_EQ(lowered(text), text);
}

TEST(CharLowerW, GreekCapitalsAreLowered) {
    EXPECT_EQ(lowered(u"\u0391\u0392\u0393\u03A3\u03A9\u03AA\u03AB"),
              u"\u03B1\u03B2\u03B3\u03C3\u03C9\u03CA\u03CB");
}

TEST(CharLowerW, GreekCapitalsWithTonosAreLowered) {
    EXPECT_EQ(lowered(u"\u0386\u0388\u0389\u038A\u038C\u038E\u038F"),
              u"\u03AC\u03AD\u03AE\u03AF\u03CC\u03CD\u03CE");
}

TEST(CharLowerW, GreekSmallAndFinalSigmaStay) {
    std::u16string text = u"\u03C2\u03C3\u03B1\u03C9\u0390";
    EXPECT_EQ(lowered(text), text);
}

TEST(CharLowerW, CyrillicCapitalsAreLowered) {
    EXPECT_EQ(lowered(u"\u0410\u0416\u042F\u0400\u0401\u040F"),
              u"\u0430\u0436\u044F\u0450\u0451\u045F");
}

TEST(CharLowerW, CyrillicExtendedCapitalsAreLowered) {
    EXPECT_EQ(lowered(u"\u0460\u048A\u04BE\u04C0\u04C1\u04CD\u04D0\u0526"),
              u"\u0461\u048B\u04BF\u04CF\u04C2\u04CE\u04D1\u0527");
}

TEST(CharLowerW, CyrillicSignsAndMarksStay) {
    // Thousands sign and combining marks sit between the letter pairs.
    std::u16string text = u"\u0482\u0483\u0484\u0486\u0488\u0430";
    EXPECT_EQ(lowered(text), text);
}

TEST(CharLowerW, OtherUnitsStay) {
    std::u16string text = u"\u4E2D\u6587 \U0001F600 \u2013";
    EXPECT_EQ(lowered(text), text);
}

TEST(CharLowerW, LatinGreekAndCyrillicBlocksLowerAlikeOnEveryBuild) {
    // Basic Latin to Latin Extended-A, U+0001 to U+017F, and Greek and Coptic to Cyrillic
    // Supplement, U+0370 to U+052F.
    digest_s digest;
    for (unsigned unit = 1; unit < 0x530; ++unit) {
        if (unit == 0x180) unit = 0x370;
        wide_char text[2] = {static_cast<wide_char>(unit), 0};
        os::CharLowerW(text);
        digest.add(text[0]);
    }
    EXPECT_EQ(digest.value, 14140403534827900367ull);
}

TEST(CharLowerW, StopsAtTerminator) {
    std::u16string text = std::u16string(u"AB") + u'\0' + u"CD";
    os::CharLowerW(text.data());
    EXPECT_EQ(text, std::u16string(u"ab") + u'\0' + u"CD");
}

TEST(CharLowerW, ReturnsItsArgument) {
    wide_char text[] = u"X";
    EXPECT_EQ(os::CharLowerW(text), text);
}

// ---- _wcsicmp

TEST(WcsIcmp, AsciiLettersCompareWithoutCase) {
    EXPECT_EQ(os::_wcsicmp(u"\\\\?\\Volume{AB}\\", u"\\\\?\\VOLUME{ab}\\"), 0);
    EXPECT_EQ(os::_wcsicmp(u"C:\\Dir", u"c:\\dIR"), 0);
    EXPECT_EQ(os::_wcsicmp(u"", u""), 0);
}

TEST(WcsIcmp, OrderIsThatOfLowerCase) {
    EXPECT_LT(os::_wcsicmp(u"a", u"B"), 0);
    EXPECT_GT(os::_wcsicmp(u"B", u"a"), 0);
    // '_' lies between the capitals and the small letters: the small ones decide.
    EXPECT_LT(os::_wcsicmp(u"_", u"A"), 0);
    EXPECT_GT(os::_wcsicmp(u"A", u"_"), 0);
}

TEST(WcsIcmp, ShorterPrefixIsSmaller) {
    EXPECT_LT(os::_wcsicmp(u"abc", u"ABCD"), 0);
    EXPECT_GT(os::_wcsicmp(u"ABCD", u"abc"), 0);
}

TEST(WcsIcmp, NonAsciiLettersAreNotFolded) {
    // The C runtime folds only A-Z in the "C" locale, which the library never changes.
    EXPECT_NE(os::_wcsicmp(u"\u00C4", u"\u00E4"), 0);
    EXPECT_NE(os::_wcsicmp(u"\u0416", u"\u0436"), 0);
    EXPECT_NE(os::_wcsicmp(u"\u03A3", u"\u03C3"), 0);
    EXPECT_EQ(os::_wcsicmp(u"\u0416", u"\u0416"), 0);
}

// ---- FormatMessageW and LocalFree (the texts differ between systems: only their form is tested)

constexpr os::DWORD system_message_flags = os::FORMAT_MESSAGE_ALLOCATE_BUFFER |
                                           os::FORMAT_MESSAGE_IGNORE_INSERTS |
                                           os::FORMAT_MESSAGE_FROM_SYSTEM;

std::u16string allocated_message(os::DWORD code, os::DWORD* returned = nullptr) {
    wide_char* block = nullptr;
    os::DWORD n = os::FormatMessageW(system_message_flags, nullptr, code, 0,
                                     reinterpret_cast<wide_char*>(&block), 0, nullptr);
    if (returned) *returned = n;
    std::u16string text = block ? std::u16string(block) : std::u16string();
    if (block) {
        EXPECT_EQ(os::LocalFree(block), nullptr);
    }
    return text;
}

TEST(FormatMessageW, FileNotFoundHasATextInAnAllocatedBlock) {
    os::DWORD n = 0;
    std::u16string text = allocated_message(os::ERROR_FILE_NOT_FOUND, &n);
    EXPECT_GT(n, 0u);
    EXPECT_FALSE(text.empty());
    // The length counts the units before the terminator.
    EXPECT_EQ(text.size(), n);
}

TEST(FormatMessageW, DifferentCodesHaveDifferentTexts) {
    std::u16string not_found = allocated_message(os::ERROR_FILE_NOT_FOUND);
    std::u16string denied = allocated_message(os::ERROR_ACCESS_DENIED);
    ASSERT_FALSE(not_found.empty());
    ASSERT_FALSE(denied.empty());
    EXPECT_NE(not_found, denied);
}

TEST(FormatMessageW, CallersBufferGetsTheSameText) {
    std::u16string allocated = allocated_message(os::ERROR_FILE_NOT_FOUND);
    std::vector<wide_char> buffer(512, u'#');
    os::DWORD n =
        os::FormatMessageW(os::FORMAT_MESSAGE_IGNORE_INSERTS | os::FORMAT_MESSAGE_FROM_SYSTEM,
                           nullptr, os::ERROR_FILE_NOT_FOUND, 0, buffer.data(), 512, nullptr);
    ASSERT_GT(n, 0u);
    EXPECT_EQ(buffer[n], 0);
    EXPECT_EQ(std::u16string(buffer.data(), n), allocated);
}

TEST(FormatMessageW, UnknownCodeHasNoTextAndSaysSo) {
    wide_char* block = nullptr;
    os::SetLastError(0);
    EXPECT_EQ(os::FormatMessageW(system_message_flags, nullptr, 0x2000ABCDu, 0,
                                 reinterpret_cast<wide_char*>(&block), 0, nullptr),
              0u);
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(os::GetLastError(), os::ERROR_MR_MID_NOT_FOUND);
}

TEST(LocalFree, NullIsAccepted) { EXPECT_EQ(os::LocalFree(nullptr), nullptr); }

// ---- _stricmp and _strnicmp

TEST(Stricmp, AsciiLettersCompareWithoutCase) {
    EXPECT_EQ(os::_stricmp("True", "TRUE"), 0);
    EXPECT_EQ(os::_stricmp("abcxyz", "ABCXYZ"), 0);
    EXPECT_EQ(os::_stricmp("", ""), 0);
}

TEST(Stricmp, OrderIsThatOfLowerCase) {
    EXPECT_LT(os::_stricmp("abc", "ABD"), 0);
    EXPECT_GT(os::_stricmp("ABD", "abc"), 0);
    // '_' (0x5F) lies between 'Z' and 'a': the lower-case form decides.
    EXPECT_LT(os::_stricmp("_", "A"), 0);
    EXPECT_GT(os::_stricmp("A", "_"), 0);
    EXPECT_LT(os::_stricmp("ab", "AB_"), 0);
}

TEST(Stricmp, OnlyAsciiLettersAreFolded) {
    // '[' and '{' are 0x20 apart, as 'A' and 'a' are, but are no letters.
    EXPECT_NE(os::_stricmp("[", "{"), 0);
    EXPECT_NE(os::_stricmp("@", "`"), 0);
    // Latin-1 and UTF-8 capitals stay what they are.
    EXPECT_LT(os::_stricmp("\xC4", "\xE4"), 0);
    EXPECT_NE(os::_stricmp("\xC3\x84", "\xC3\xA4"), 0);
}

TEST(Strnicmp, ComparesAtMostCountCharacters) {
    EXPECT_EQ(os::_strnicmp("abcX", "ABCy", 3), 0);
    EXPECT_NE(os::_strnicmp("abcX", "ABCy", 4), 0);
    EXPECT_EQ(os::_strnicmp("anything", "different", 0), 0);
    EXPECT_EQ(os::_strnicmp("Short", "SHORT", 100), 0);
}

TEST(Strnicmp, ShorterTextIsSmallerWithinTheCount) {
    EXPECT_LT(os::_strnicmp("ab", "ABC", 3), 0);
    EXPECT_GT(os::_strnicmp("ABC", "ab", 3), 0);
    EXPECT_EQ(os::_strnicmp("ab", "ABC", 2), 0);
}

TEST(Strnicmp, OnlyAsciiLettersAreFolded) {
    EXPECT_NE(os::_strnicmp("x[", "X{", 2), 0);
    EXPECT_NE(os::_strnicmp("\xC4x", "\xE4x", 2), 0);
    EXPECT_LT(os::_strnicmp("_", "a", 1), 0);
}

} // namespace
