// utl_n: the two comparisons without regard to case, through CharLowerW on UTF-16; copies of
// strings in size classes, the rendering of system errors, 64-bit halves, drive sizes and IPv4
// addresses.
#include "utl/utl.h"

#include "common/test_support.h"
#include "platform/os.h"
#include "utl/utl_stream.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#if !defined(_WIN32)
#include <sys/statvfs.h>
#endif

// The global array forms of new and delete of this test program, so that the tests see the size
// of the block that str_copy and str_strncopy really allocate: the size of the last array made
// on the calling thread. Blocks come from malloc, so a sanitizer still checks every access.
namespace {
thread_local std::size_t last_array_size = 0;
} // namespace

void* operator new[](std::size_t size) {
    last_array_size = size;
    if (void* block = std::malloc(size ? size : 1)) return block;
    throw std::bad_alloc();
}
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }

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

// ---- str_copy and str_strncopy

// The block and the size it was allocated with.
struct copy_s {
    std::unique_ptr<char[]> block;
    std::size_t size = 0;
};

copy_s copy_of(const char* text, bool round_size) {
    last_array_size = 0;
    copy_s copy;
    copy.block.reset(utl_n::str_copy(text, round_size));
    copy.size = last_array_size;
    return copy;
}

copy_s ncopy_of(const char* text, std::size_t length, bool round_size) {
    last_array_size = 0;
    copy_s copy;
    copy.block.reset(utl_n::str_strncopy(text, length, round_size));
    copy.size = last_array_size;
    return copy;
}

TEST(StrCopy, ShortTextWithRoundingTakesSixteenBytes) {
    copy_s copy = copy_of("abc", true);
    ASSERT_NE(copy.block, nullptr);
    EXPECT_EQ(copy.size, 16u);
    EXPECT_STREQ(copy.block.get(), "abc");
}

TEST(StrCopy, SixteenCharactersWithRoundingTakeThirtyTwoBytes) {
    std::string text(16, 'x');
    copy_s copy = copy_of(text.c_str(), true);
    ASSERT_NE(copy.block, nullptr);
    EXPECT_EQ(copy.size, 32u);
    EXPECT_EQ(std::string(copy.block.get()), text);
}

TEST(StrCopy, ThousandTwentyFourCharactersTakeExactlyOneMoreByte) {
    std::string text(1024, 'y');
    copy_s copy = copy_of(text.c_str(), true);
    ASSERT_NE(copy.block, nullptr);
    EXPECT_EQ(copy.size, 1025u);
    EXPECT_EQ(std::string(copy.block.get()), text);
}

TEST(StrCopy, EachSizeClassHoldsTextAndTerminator) {
    // Length of the text and the block that rounding gives: the first class that holds
    // length + 1, and length + 1 above 1024.
    const std::pair<std::size_t, std::size_t> cases[] = {
        {0, 16},   {15, 16},   {16, 32},    {31, 32},     {32, 64},     {63, 64},
        {64, 256}, {255, 256}, {256, 1024}, {1023, 1024}, {1024, 1025}, {5000, 5001}};
    for (auto [length, size] : cases) {
        SCOPED_TRACE(length);
        std::string text(length, 'k');
        copy_s copy = copy_of(text.c_str(), true);
        ASSERT_NE(copy.block, nullptr);
        EXPECT_EQ(copy.size, size);
        EXPECT_EQ(utl_n::str_block_size(length, true), size);
        EXPECT_EQ(copy.block[length], 0);
        EXPECT_EQ(std::string(copy.block.get()), text);
    }
}

TEST(StrCopy, WithoutRoundingTheBlockIsExact) {
    for (std::size_t length : {0u, 3u, 15u, 16u, 100u, 1024u, 3000u}) {
        SCOPED_TRACE(length);
        std::string text(length, 'e');
        copy_s copy = copy_of(text.c_str(), false);
        ASSERT_NE(copy.block, nullptr);
        EXPECT_EQ(copy.size, length + 1);
        EXPECT_EQ(utl_n::str_block_size(length, false), length + 1);
        EXPECT_EQ(std::string(copy.block.get()), text);
    }
}

TEST(StrCopy, NullTextGivesNullAndAllocatesNothing) {
    copy_s copy = copy_of(nullptr, true);
    EXPECT_EQ(copy.block, nullptr);
    EXPECT_EQ(copy.size, 0u);
    copy = copy_of(nullptr, false);
    EXPECT_EQ(copy.block, nullptr);
}

TEST(StrCopy, CopyIsANewBlock) {
    char text[] = "original";
    copy_s copy = copy_of(text, false);
    ASSERT_NE(copy.block, nullptr);
    EXPECT_NE(copy.block.get(), text);
    text[0] = 'X';
    EXPECT_STREQ(copy.block.get(), "original");
}

TEST(StrStrncopy, CopiesLengthBytesAndATerminator) {
    copy_s copy = ncopy_of("abcdef", 3, false);
    ASSERT_NE(copy.block, nullptr);
    EXPECT_EQ(copy.size, 4u);
    EXPECT_STREQ(copy.block.get(), "abc");
}

TEST(StrStrncopy, RoundsByTheLengthNotByTheText) {
    std::string text(300, 'q');
    copy_s copy = ncopy_of(text.c_str(), 20, true);
    ASSERT_NE(copy.block, nullptr);
    EXPECT_EQ(copy.size, 32u);
    EXPECT_EQ(std::string(copy.block.get()), std::string(20, 'q'));
}

TEST(StrStrncopy, LengthZeroGivesAnEmptyText) {
    copy_s copy = ncopy_of("abc", 0, false);
    ASSERT_NE(copy.block, nullptr);
    EXPECT_EQ(copy.size, 1u);
    EXPECT_EQ(copy.block[0], 0);
    copy = ncopy_of("abc", 0, true);
    ASSERT_NE(copy.block, nullptr);
    EXPECT_EQ(copy.size, 16u);
    EXPECT_EQ(copy.block[0], 0);
}

TEST(StrStrncopy, NullTextGivesNull) {
    copy_s copy = ncopy_of(nullptr, 10, true);
    EXPECT_EQ(copy.block, nullptr);
    EXPECT_EQ(copy.size, 0u);
}

TEST(StrStrncopy, TextShorterThanLengthIsNotReadBeyondItsEnd) {
    // The text lies in a block of exactly its own size, so that a sanitizer sees any read past
    // its terminator; what the text lacks up to `length` is zeros.
    std::unique_ptr<char[]> text(new char[3]{'a', 'b', 0});
    copy_s copy = ncopy_of(text.get(), 10, false);
    ASSERT_NE(copy.block, nullptr);
    EXPECT_EQ(copy.size, 11u);
    EXPECT_STREQ(copy.block.get(), "ab");
    for (std::size_t i = 2; i <= 10; ++i) EXPECT_EQ(copy.block[i], 0) << i;

    copy = ncopy_of(text.get(), 1000, true);
    ASSERT_NE(copy.block, nullptr);
    EXPECT_EQ(copy.size, 1024u);
    EXPECT_STREQ(copy.block.get(), "ab");
    EXPECT_EQ(copy.block[1000], 0);
}

// ---- set_last_error and format_last_error

// A code for which no system has a message: customer codes have bit 29 set.
constexpr unsigned int unknown_code = 0x2000ABCDu;

// The system's own text of `code`, as FormatMessageW gives it on this platform, or empty.
std::string system_text(unsigned int code) {
    os::wide_char* message = nullptr;
    os::DWORD flags = os::FORMAT_MESSAGE_ALLOCATE_BUFFER | os::FORMAT_MESSAGE_IGNORE_INSERTS |
                      os::FORMAT_MESSAGE_FROM_SYSTEM;
    os::DWORD n = os::FormatMessageW(flags, nullptr, code, 0,
                                     reinterpret_cast<os::wide_char*>(&message), 0, nullptr);
    std::string text;
    if (n > 0 && message) {
        for (os::DWORD i = 0; i < n; ++i) {
            // Only the structure matters here: non-ASCII units stand as '?'.
            os::wide_char c = message[i];
            text += c < 0x80 ? static_cast<char>(c) : '?';
        }
    }
    if (message) os::LocalFree(message);
    return text;
}

std::string ascii_only(const std::string& text) {
    std::string out;
    for (unsigned char c : text) {
        if (c < 0x80)
            out += static_cast<char>(c);
        else if ((c & 0xC0) != 0x80)
            out += '?';
    }
    return out;
}

bool ends_with(const std::string& text, const std::string& tail) {
    return text.size() >= tail.size() &&
           text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

TEST(SetLastError, SetsTheThreadsLastError) {
    utl_n::set_last_error(1234);
    EXPECT_EQ(os::GetLastError(), 1234u);
    utl_n::set_last_error(0);
    EXPECT_EQ(os::GetLastError(), 0u);
}

TEST(FormatLastError, CodeTwoGivesSystemTextThenCodeInBrackets) {
    utl_stream_c out;
    std::string result = utl_n::format_last_error(out, 2);
    ASSERT_TRUE(ends_with(result, "(2)")) << result;
    std::string text = result.substr(0, result.size() - 3);
    EXPECT_FALSE(text.empty()) << "the system has a text for code 2";
    EXPECT_NE(text.back(), '\n') << result;
    EXPECT_NE(text.back(), '\r') << result;
    // The text is this system's own message without its line ends.
    std::string expected = system_text(2);
    while (!expected.empty() && (expected.back() == '\n' || expected.back() == '\r'))
        expected.pop_back();
    EXPECT_EQ(ascii_only(text), expected);
}

TEST(FormatLastError, UnknownCodeGivesTheBracketsAlone) {
    ASSERT_TRUE(system_text(unknown_code).empty());
    utl_stream_c out;
    EXPECT_STREQ(utl_n::format_last_error(out, unknown_code), "(536914893)");
}

TEST(FormatLastError, CodeZeroUsesTheLastError) {
    utl_stream_c by_code, by_last_error;
    std::string expected = utl_n::format_last_error(by_code, 2);
    utl_n::set_last_error(2);
    EXPECT_EQ(std::string(utl_n::format_last_error(by_last_error, 0)), expected);

    utl_stream_c unknown;
    utl_n::set_last_error(unknown_code);
    EXPECT_STREQ(utl_n::format_last_error(unknown, 0), "(536914893)");
}

TEST(FormatLastError, CodeZeroWithoutALastErrorRendersZero) {
    utl_stream_c out;
    utl_n::set_last_error(0);
    std::string result = utl_n::format_last_error(out, 0);
    EXPECT_TRUE(ends_with(result, "(0)")) << result;
    std::string text = result.substr(0, result.size() - 3);
    EXPECT_TRUE(text.empty() || (text.back() != '\n' && text.back() != '\r')) << result;
}

TEST(FormatLastError, AppendsToTheStreamAndReturnsItsText) {
    utl_stream_c out("open failed: ");
    const char* result = utl_n::format_last_error(out, unknown_code);
    EXPECT_EQ(result, out.c_str());
    EXPECT_STREQ(result, "open failed: (536914893)");

    utl_stream_c with_text("why: ");
    std::string full = utl_n::format_last_error(with_text, 2);
    EXPECT_EQ(full.rfind("why: ", 0), 0u) << full;
    EXPECT_GT(full.size(), std::string("why: (2)").size()) << full;
}

TEST(FormatLastError, RemovesAtMostTwoLineEndsFromTheEnd) {
    utl_stream_c two("abc\r\n");
    EXPECT_STREQ(utl_n::format_last_error(two, unknown_code), "abc(536914893)");
    utl_stream_c three("abc\r\n\n");
    EXPECT_STREQ(utl_n::format_last_error(three, unknown_code), "abc\r(536914893)");
    utl_stream_c inside("a\nb");
    EXPECT_STREQ(utl_n::format_last_error(inside, unknown_code), "a\nb(536914893)");
}

TEST(FormatLastError, HugeCodesAreRenderedAsUnsignedDecimals) {
    const std::pair<unsigned int, const char*> cases[] = {
        {0xFFFFFFFFu, "(4294967295)"},
        {0x80000000u, "(2147483648)"},
        {0x80070002u, "(2147942402)"},
        {0x7FFFFFFFu, "(2147483647)"},
    };
    for (auto [code, tail] : cases) {
        SCOPED_TRACE(code);
        utl_stream_c out;
        std::string result = utl_n::format_last_error(out, code);
        ASSERT_TRUE(ends_with(result, tail)) << result;
        std::string text = result.substr(0, result.size() - std::strlen(tail));
        EXPECT_TRUE(text.empty() || (text.back() != '\n' && text.back() != '\r')) << result;
        // A system text, where one exists, is the whole of what comes before the brackets.
        EXPECT_EQ(text.empty(), system_text(code).empty()) << result;
    }
}

// ---- i32x32to64 and i64to32x32

TEST(I32x32To64, HighHalfGoesToTheTop) {
    EXPECT_EQ(utl_n::i32x32to64(0x89ABCDEFu, 0x01234567u), 0x0123456789ABCDEFull);
    EXPECT_EQ(utl_n::i32x32to64(0, 1), 0x100000000ull);
    EXPECT_EQ(utl_n::i32x32to64(1, 0), 1ull);
    EXPECT_EQ(utl_n::i32x32to64(0xFFFFFFFFu, 0xFFFFFFFFu), 0xFFFFFFFFFFFFFFFFull);
}

TEST(I64To32x32, SplitsIntoLowAndHigh) {
    std::uint32_t low = 1, high = 1;
    utl_n::i64to32x32(0x0123456789ABCDEFull, low, high);
    EXPECT_EQ(low, 0x89ABCDEFu);
    EXPECT_EQ(high, 0x01234567u);
    utl_n::i64to32x32(0, low, high);
    EXPECT_EQ(low, 0u);
    EXPECT_EQ(high, 0u);
}

TEST(I64To32x32, RoundTripsThroughI32x32To64) {
    for (std::uint64_t value : {0ull, 1ull, 0xFFFFFFFFull, 0x100000000ull, 0xFEDCBA9876543210ull,
                                0xFFFFFFFFFFFFFFFFull}) {
        std::uint32_t low = 0, high = 0;
        utl_n::i64to32x32(value, low, high);
        EXPECT_EQ(utl_n::i32x32to64(low, high), value);
    }
}

// ---- get_total_bytes_of_path and get_cluster_and_sector_size

TEST(GetTotalBytesOfPath, TempDirectoryGivesTheVolumesSize) {
    test_support::temp_dir_c dir;
    std::int64_t total = -1;
    ASSERT_TRUE(utl_n::get_total_bytes_of_path(dir.str().c_str(), &total))
        << "error " << os::GetLastError();
    EXPECT_GT(total, 0);
    // The same number that the standard library reads from the system.
    std::filesystem::space_info space = std::filesystem::space(dir.path());
    EXPECT_EQ(static_cast<std::uintmax_t>(total), space.capacity);
    EXPECT_GE(static_cast<std::uintmax_t>(total), space.free);
}

TEST(GetTotalBytesOfPath, ForwardSlashesAreAccepted) {
    test_support::temp_dir_c dir;
    std::string path = dir.str();
    for (char& c : path)
        if (c == '\\') c = '/';
    std::int64_t with_slashes = 0, as_given = 0;
    ASSERT_TRUE(utl_n::get_total_bytes_of_path(path.c_str(), &with_slashes));
    ASSERT_TRUE(utl_n::get_total_bytes_of_path(dir.str().c_str(), &as_given));
    EXPECT_EQ(with_slashes, as_given);
    EXPECT_GT(with_slashes, 0);
}

TEST(GetTotalBytesOfPath, WithoutAnOutputTheAnswerStillCounts) {
    test_support::temp_dir_c dir;
    EXPECT_TRUE(utl_n::get_total_bytes_of_path(dir.str().c_str(), nullptr));
    EXPECT_FALSE(utl_n::get_total_bytes_of_path(dir.join("missing").c_str(), nullptr));
}

TEST(GetTotalBytesOfPath, MissingPathIsFalseAndZeroesTheTotal) {
    test_support::temp_dir_c dir;
    std::int64_t total = 12345;
    EXPECT_FALSE(utl_n::get_total_bytes_of_path(dir.join("missing").c_str(), &total));
    EXPECT_EQ(total, 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_FILE_NOT_FOUND);
    total = 12345;
    EXPECT_FALSE(utl_n::get_total_bytes_of_path(dir.join("missing/deeper").c_str(), &total));
    EXPECT_EQ(total, 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_PATH_NOT_FOUND);
}

TEST(GetTotalBytesOfPath, NullPathIsFalseAndZeroesTheTotal) {
    std::int64_t total = 12345;
    EXPECT_FALSE(utl_n::get_total_bytes_of_path(nullptr, &total));
    EXPECT_EQ(total, 0);
}

TEST(GetClusterAndSectorSize, TempDirectoryGivesPlausibleSizes) {
    test_support::temp_dir_c dir;
    unsigned int cluster = 0, sector = 0;
    ASSERT_TRUE(utl_n::get_cluster_and_sector_size(dir.str().c_str(), &cluster, &sector))
        << "error " << os::GetLastError();
    EXPECT_GE(sector, 512u);
    EXPECT_EQ(sector & (sector - 1), 0u) << sector << " is no power of two";
    EXPECT_GE(cluster, sector);
    EXPECT_EQ(cluster % sector, 0u) << cluster << " / " << sector;
#if !defined(_WIN32)
    // Here a cluster is the file system's fragment and a sector 512 bytes.
    struct statvfs info {};
    ASSERT_EQ(::statvfs(dir.str().c_str(), &info), 0);
    std::uint64_t fragment = info.f_frsize ? info.f_frsize : info.f_bsize;
    EXPECT_EQ(sector, 512u);
    EXPECT_EQ(cluster, fragment < 512 ? 512u : static_cast<unsigned int>(fragment / 512 * 512));
#endif
}

TEST(GetClusterAndSectorSize, SectorSizeMayBeLeftOut) {
    test_support::temp_dir_c dir;
    unsigned int cluster = 0, sector = 0;
    ASSERT_TRUE(utl_n::get_cluster_and_sector_size(dir.str().c_str(), &cluster, &sector));
    unsigned int cluster_alone = 0;
    EXPECT_TRUE(utl_n::get_cluster_and_sector_size(dir.str().c_str(), &cluster_alone, nullptr));
    EXPECT_EQ(cluster_alone, cluster);
}

TEST(GetClusterAndSectorSize, MissingPathIsFalseAndZeroesBoth) {
    test_support::temp_dir_c dir;
    unsigned int cluster = 77, sector = 77;
    EXPECT_FALSE(
        utl_n::get_cluster_and_sector_size(dir.join("missing").c_str(), &cluster, &sector));
    EXPECT_EQ(cluster, 0u);
    EXPECT_EQ(sector, 0u);
    EXPECT_EQ(os::GetLastError(), os::ERROR_FILE_NOT_FOUND);
}

TEST(GetClusterAndSectorSize, NullPathIsFalseAndZeroesBoth) {
    unsigned int cluster = 77, sector = 77;
    EXPECT_FALSE(utl_n::get_cluster_and_sector_size(nullptr, &cluster, &sector));
    EXPECT_EQ(cluster, 0u);
    EXPECT_EQ(sector, 0u);
}

// ---- string_to_ip

TEST(StringToIp, FourFieldsWithTheFirstOnTop) {
    EXPECT_EQ(utl_n::string_to_ip("1.2.3.4"), 0x01020304u);
    EXPECT_EQ(utl_n::string_to_ip("192.168.0.1"), 0xC0A80001u);
    EXPECT_EQ(utl_n::string_to_ip("255.255.255.255"), 0xFFFFFFFFu);
    EXPECT_EQ(utl_n::string_to_ip("0.0.0.0"), 0u);
}

TEST(StringToIp, TrailingWhiteSpaceIsAccepted) {
    EXPECT_EQ(utl_n::string_to_ip("1.2.3.4 "), 0x01020304u);
    EXPECT_EQ(utl_n::string_to_ip("1.2.3.4\t"), 0x01020304u);
    EXPECT_EQ(utl_n::string_to_ip("1.2.3.4\n"), 0x01020304u);
    // The scan stops at the white space; what follows it is not looked at.
    EXPECT_EQ(utl_n::string_to_ip("1.2.3.4 trailing words"), 0x01020304u);
}

TEST(StringToIp, OtherTrailingCharacterGivesZero) {
    EXPECT_EQ(utl_n::string_to_ip("1.2.3.4x"), 0u);
    EXPECT_EQ(utl_n::string_to_ip("1.2.3.4."), 0u);
    EXPECT_EQ(utl_n::string_to_ip("1.2.3.4.5"), 0u);
    EXPECT_EQ(utl_n::string_to_ip("1.2.3.4:80"), 0u);
}

TEST(StringToIp, FieldOf256OrMoreGivesZero) {
    EXPECT_EQ(utl_n::string_to_ip("1.2.3.256"), 0u);
    EXPECT_EQ(utl_n::string_to_ip("256.1.1.1"), 0u);
    EXPECT_EQ(utl_n::string_to_ip("1.1000.1.1"), 0u);
}

TEST(StringToIp, FewerThanFourFieldsGiveZero) {
    EXPECT_EQ(utl_n::string_to_ip("1.2.3"), 0u);
    EXPECT_EQ(utl_n::string_to_ip("1.2.3."), 0u);
    EXPECT_EQ(utl_n::string_to_ip("1"), 0u);
    EXPECT_EQ(utl_n::string_to_ip("a.b.c.d"), 0u);
    EXPECT_EQ(utl_n::string_to_ip(""), 0u);
}

TEST(StringToIp, NullGivesZero) { EXPECT_EQ(utl_n::string_to_ip(nullptr), 0u); }

TEST(StringToIp, NegativeFieldGivesZero) {
    // "%u" reads "-1" as the largest unsigned number, which is no byte.
    EXPECT_EQ(utl_n::string_to_ip("-1.2.3.4"), 0u);
    EXPECT_EQ(utl_n::string_to_ip("1.2.3.-4"), 0u);
}

TEST(StringToIp, RubbishGivesZero) {
    const std::string long_dots(10000, '.');
    std::string long_text;
    for (int i = 0; i < 2000; ++i) long_text += "1.2.";
    std::string binary;
    for (int i = 1; i < 256; ++i) binary += static_cast<char>(i);
    const std::string cases[] = {long_dots,
                                 long_text,
                                 binary,
                                 "%s%s%n%u",
                                 "\xFF\xFE\xFD\xFC",
                                 "1..2.3.4",
                                 ".1.2.3.4",
                                 "1,2,3,4",
                                 "0x1.0x2.0x3.0x4",
                                 "1.2.3.4\xC3\xA9",
                                 std::string(10000, 'x')};
    for (const std::string& text : cases) {
        SCOPED_TRACE(text.substr(0, 40));
        EXPECT_EQ(utl_n::string_to_ip(text.c_str()), 0u);
    }
}

} // namespace
