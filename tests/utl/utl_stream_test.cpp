// utl_stream_c: growth of the buffer, every form of append and its rendering, the character 1,
// equals, remove_suffix, compare, starts_with, ends_with, trim, find, replace_first, the wide
// forms, and basis_multi_lang_c.
#include "common/test_support.h"
#include "support/thl.h"
#include "utl/utl_stream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <malloc.h>
#include <string>

namespace {

using os::wide_char;
using test_support::trace_capture_c;
using test_support::trace_line;

std::string text_of(const utl_stream_c& s) {
    return std::string(s.c_str(), static_cast<std::size_t>(s.get_length()));
}

std::string rendered(double value) {
    utl_stream_c s;
    s.append(value);
    return text_of(s);
}

// The size of the block behind a stream's text. Exact from the Windows heap and from
// AddressSanitizer's allocator; glibc may round it up.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool exact_block_size = true;
#elif defined(_WIN32)
constexpr bool exact_block_size = true;
#else
constexpr bool exact_block_size = false;
#endif

std::size_t block_size(const char* text) {
#if defined(_WIN32)
    return _msize(const_cast<char*>(text));
#else
    return malloc_usable_size(const_cast<char*>(text));
#endif
}

void expect_block_holds_capacity_plus_one(const utl_stream_c& s) {
    std::size_t size = block_size(s.c_str());
    if (exact_block_size)
        EXPECT_EQ(size, s.get_capacity() + 1);
    else
        EXPECT_GE(size, s.get_capacity() + 1);
}

// A stream whose text is `length` characters and whose capacity is exactly length + 1.
utl_stream_c full_stream(std::size_t length) {
    utl_stream_c s;
    s.append(std::string(length, 'f').c_str());
    return s;
}

// The capacity that the growth rule gives for `extra` more characters.
std::uint64_t grown_capacity(std::uint64_t capacity, std::uint64_t length, std::uint64_t extra) {
    std::uint64_t wanted = length + extra + 1;
    if (capacity >= wanted) return capacity;
    std::uint64_t grown = length < 1025 ? 2 * length : length + 1024;
    return grown < wanted ? wanted : grown;
}

// ---- construction and the growth rule

TEST(UtlStreamGrowth, NewStreamHasCapacity31AndEmptyText) {
    utl_stream_c s;
    EXPECT_EQ(s.get_capacity(), 31u);
    EXPECT_EQ(s.get_length(), 0u);
    EXPECT_STREQ(s.c_str(), "");
    expect_block_holds_capacity_plus_one(s);
}

TEST(UtlStreamGrowth, NewStreamBlockIs32Bytes) {
    utl_stream_c s;
    if (exact_block_size)
        EXPECT_EQ(block_size(s.c_str()), 32u);
    else
        EXPECT_GE(block_size(s.c_str()), 32u);
}

TEST(UtlStreamGrowth, ConstructorFromTextKeepsFirstBlockWhenTextFits) {
    utl_stream_c s("abc");
    EXPECT_STREQ(s.c_str(), "abc");
    EXPECT_EQ(s.get_length(), 3u);
    EXPECT_EQ(s.get_capacity(), 31u);
}

TEST(UtlStreamGrowth, ConstructorFromNullTextIsEmpty) {
    utl_stream_c s(static_cast<const char*>(nullptr));
    EXPECT_STREQ(s.c_str(), "");
    EXPECT_EQ(s.get_capacity(), 31u);
}

TEST(UtlStreamGrowth, ThirtyCharactersFitTheFirstBlock) {
    utl_stream_c s;
    s.append(std::string(30, 'x').c_str());
    EXPECT_EQ(s.get_capacity(), 31u);
    EXPECT_EQ(s.get_length(), 30u);
}

TEST(UtlStreamGrowth, ThirtyFirstCharacterDoublesTheLength) {
    utl_stream_c s;
    s.append(std::string(30, 'x').c_str());
    s.append('y');
    EXPECT_EQ(s.get_capacity(), 60u);
    EXPECT_EQ(text_of(s), std::string(30, 'x') + "y");
    expect_block_holds_capacity_plus_one(s);
}

TEST(UtlStreamGrowth, WantedWinsWhenDoublingIsTooSmall) {
    utl_stream_c s("0123456789");
    s.append(std::string(100, 'z').c_str());
    // wanted = 10 + 100 + 1; twice the length is 20.
    EXPECT_EQ(s.get_capacity(), 111u);
    EXPECT_EQ(s.get_length(), 110u);
}

TEST(UtlStreamGrowth, EmptyStreamGrowsToExactlyWanted) {
    utl_stream_c s;
    s.append(std::string(40, 'a').c_str());
    EXPECT_EQ(s.get_capacity(), 41u);
    expect_block_holds_capacity_plus_one(s);
}

TEST(UtlStreamGrowth, GrowingFullStreamOfLength1024ByOneGoesTo2048) {
    utl_stream_c s = full_stream(1024);
    ASSERT_EQ(s.get_capacity(), 1025u);
    s.append('x');
    EXPECT_EQ(s.get_capacity(), 2048u);
    EXPECT_EQ(s.get_length(), 1025u);
    EXPECT_EQ(s.c_str()[1024], 'x');
    EXPECT_EQ(s.c_str()[1025], 0);
    expect_block_holds_capacity_plus_one(s);
}

TEST(UtlStreamGrowth, GrowingFullStreamOfLength1025ByOneGoesTo2049) {
    utl_stream_c s = full_stream(1025);
    ASSERT_EQ(s.get_capacity(), 1026u);
    s.append('x');
    EXPECT_EQ(s.get_capacity(), 2049u);
    EXPECT_EQ(s.get_length(), 1026u);
    expect_block_holds_capacity_plus_one(s);
}

TEST(UtlStreamGrowth, LongTextsGrowBy1024) {
    utl_stream_c s = full_stream(5000);
    ASSERT_EQ(s.get_capacity(), 5001u);
    s.append('x');
    EXPECT_EQ(s.get_capacity(), 6024u);
    s.append(std::string(1022, 'y').c_str()); // length 6023: still room
    EXPECT_EQ(s.get_capacity(), 6024u);
    s.append('z'); // length 6024 would leave no room for the terminator
    EXPECT_EQ(s.get_capacity(), 6023u + 1024u);
    EXPECT_EQ(s.get_length(), 6024u);
}

TEST(UtlStreamGrowth, LongTextTakesWantedWhenStepIsTooSmall) {
    utl_stream_c s = full_stream(5000);
    s.append(std::string(2000, 'y').c_str());
    EXPECT_EQ(s.get_capacity(), 7001u);
}

TEST(UtlStreamGrowth, AddMemoryDoesNothingWhileCapacityHoldsLengthExtraAndOne) {
    utl_stream_c s(std::string(20, 'a').c_str());
    s._add_memory(10); // wanted 31
    EXPECT_EQ(s.get_capacity(), 31u);
    s._add_memory(11); // wanted 32
    EXPECT_EQ(s.get_capacity(), 40u);
    EXPECT_EQ(text_of(s), std::string(20, 'a'));
}

TEST(UtlStreamGrowth, ReservedRoomIsUsedWithoutReallocation) {
    utl_stream_c s;
    s._add_memory(5000);
    EXPECT_EQ(s.get_capacity(), 5001u);
    expect_block_holds_capacity_plus_one(s);
    const char* block = s.c_str();
    for (int i = 0; i < 500; ++i) s.append("0123456789");
    EXPECT_EQ(s.c_str(), block);
    EXPECT_EQ(s.get_capacity(), 5001u);
    EXPECT_EQ(s.get_length(), 5000u);
}

TEST(UtlStreamGrowth, EveryAppendFollowsTheRule) {
    utl_stream_c s;
    std::string model;
    std::uint64_t capacity = 31;
    for (std::size_t step = 0; step < 400; ++step) {
        std::string piece(step * 7 % 97 + 1, static_cast<char>('a' + step % 26));
        capacity = grown_capacity(capacity, model.size(), piece.size());
        model += piece;
        s.append(piece.c_str());
        ASSERT_EQ(s.get_capacity(), capacity) << "step " << step;
    }
    EXPECT_EQ(text_of(s), model);
    expect_block_holds_capacity_plus_one(s);
}

TEST(UtlStreamGrowth, CopyHasTheSameTextInItsOwnBlock) {
    utl_stream_c a("original");
    utl_stream_c b(a);
    EXPECT_STREQ(b.c_str(), "original");
    EXPECT_NE(b.c_str(), a.c_str());
    b.append("!");
    EXPECT_STREQ(a.c_str(), "original");
}

TEST(UtlStreamGrowth, AssignmentReplacesTheText) {
    utl_stream_c a("first text");
    utl_stream_c b("second");
    a = b;
    EXPECT_STREQ(a.c_str(), "second");
    EXPECT_EQ(a.get_length(), 6u);
    utl_stream_c& same = a;
    a = same;
    EXPECT_STREQ(a.c_str(), "second");
}

TEST(UtlStreamGrowth, FailedReallocationTracesAndLeavesEmptyStream) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "AddressSanitizer's allocator aborts on a request of exabytes instead of "
                    "returning null";
#endif
    trace_capture_c capture;
    utl_stream_c s("abc");
    const std::uint64_t extra = 1ull << 62;
    s._add_memory(extra);
    EXPECT_EQ(s.get_length(), 0u);
    EXPECT_STREQ(s.c_str(), "");
    // The format has "%d": the size asked for, 3 + extra + 1 + 1 bytes, as an int.
    const int asked = static_cast<int>(3 + extra + 2);
    std::string line =
        trace_line(capture.text(), "Failed: Allocate memory failed. The length of memory to "
                                   "allocate is " +
                                       std::to_string(asked) + ".");
    ASSERT_FALSE(line.empty()) << capture.text();
    EXPECT_NE(line.find(" level=4 "), std::string::npos) << line;
    EXPECT_NE(line.find("utl_stream_c::_add_memory"), std::string::npos) << line;
    EXPECT_NE(line.find("utl_stream"), std::string::npos) << line;
}

// ---- append of numbers, words and characters

TEST(UtlStreamAppend, Unsigned64IsDecimal) {
    utl_stream_c s;
    s.append(0ull).append(',').append(std::numeric_limits<unsigned long long>::max());
    EXPECT_STREQ(s.c_str(), "0,18446744073709551615");
}

TEST(UtlStreamAppend, Signed64IsDecimalWithSign) {
    utl_stream_c s;
    s.append(std::numeric_limits<long long>::min())
        .append(',')
        .append(std::numeric_limits<long long>::max());
    EXPECT_STREQ(s.c_str(), "-9223372036854775808,9223372036854775807");
}

TEST(UtlStreamAppend, BoolWritesTrueAndFalse) {
    utl_stream_c s;
    s.append(true).append(false);
    EXPECT_STREQ(s.c_str(), "TrueFalse");
    EXPECT_STREQ(mix_n::True, "True");
    EXPECT_STREQ(mix_n::False, "False");
}

TEST(UtlStreamAppend, UnsignedLongIsDecimal) {
    utl_stream_c s;
    s.append(0ul).append(',').append(4294967295ul);
    EXPECT_STREQ(s.c_str(), "0,4294967295");
}

TEST(UtlStreamAppend, UnsignedIntIsDecimal) {
    utl_stream_c s;
    s.append(std::numeric_limits<unsigned int>::max());
    EXPECT_STREQ(s.c_str(), "4294967295");
}

TEST(UtlStreamAppend, UnsignedShortIsDecimal) {
    utl_stream_c s;
    s.append(static_cast<unsigned short>(65535)).append(static_cast<unsigned short>(0));
    EXPECT_STREQ(s.c_str(), "655350");
}

TEST(UtlStreamAppend, LongIsDecimalWithSign) {
    utl_stream_c s;
    s.append(-2147483647l - 1).append(',').append(2147483647l);
    EXPECT_STREQ(s.c_str(), "-2147483648,2147483647");
}

TEST(UtlStreamAppend, IntIsDecimalWithSign) {
    utl_stream_c s;
    s.append(INT_MIN).append(',').append(INT_MAX).append(',').append(0);
    EXPECT_STREQ(s.c_str(), "-2147483648,2147483647,0");
}

TEST(UtlStreamAppend, ShortIsDecimalWithSign) {
    utl_stream_c s;
    s.append(static_cast<short>(-32768)).append(',').append(static_cast<short>(32767));
    EXPECT_STREQ(s.c_str(), "-32768,32767");
}

TEST(UtlStreamAppend, CharAppendsOneByte) {
    utl_stream_c s("a");
    s.append('b').append('\xC3');
    EXPECT_EQ(text_of(s), "ab\xC3");
    EXPECT_EQ(s.get_length(), 3u);
}

TEST(UtlStreamAppend, CharZeroIsAppendedAsOneByte) {
    utl_stream_c s("a");
    s.append('\0').append('b');
    EXPECT_EQ(s.get_length(), 3u);
    EXPECT_EQ(std::memcmp(s.c_str(), "a\0b", 4), 0);
}

TEST(UtlStreamAppend, CharacterOneEmptiesStreamAndKeepsBuffer) {
    utl_stream_c s(std::string(100, 'q').c_str());
    const char* block = s.c_str();
    std::uint64_t capacity = s.get_capacity();
    s.append('\x01');
    EXPECT_EQ(s.get_length(), 0u);
    EXPECT_STREQ(s.c_str(), "");
    EXPECT_EQ(s.c_str(), block);
    EXPECT_EQ(s.get_capacity(), capacity);
    EXPECT_EQ(utl_stream_c::clear_char, '\x01');
}

TEST(UtlStreamAppend, StringMadeOfCharacterOneAppendsIt) {
    utl_stream_c s("ab");
    s.append("\x01");
    EXPECT_EQ(s.get_length(), 3u);
    EXPECT_EQ(text_of(s), "ab\x01");
}

TEST(UtlStreamAppend, ClearThenAppendIsOneExpression) {
    utl_stream_c s("old text");
    s.append(utl_stream_c::clear_char).append("new ").append(42);
    EXPECT_STREQ(s.c_str(), "new 42");
}

TEST(UtlStreamAppend, CharacterOneThroughTheBaseEmptiesToo) {
    utl_stream_c s("abc");
    qv_stream_c& base = s;
    base.append('\x01');
    base.append(7);
    EXPECT_STREQ(s.c_str(), "7");
}

TEST(UtlStreamAppend, NullOrEmptyStringLeavesStream) {
    utl_stream_c s("keep");
    std::uint64_t capacity = s.get_capacity();
    s.append(static_cast<const char*>(nullptr));
    s.append("");
    s.append(static_cast<const wide_char*>(nullptr));
    s.append(u"");
    s.append(utl_stream_c());
    EXPECT_STREQ(s.c_str(), "keep");
    EXPECT_EQ(s.get_length(), 4u);
    EXPECT_EQ(s.get_capacity(), capacity);
}

TEST(UtlStreamAppend, AnotherStreamAppendsItsText) {
    utl_stream_c a("left-");
    utl_stream_c b("right");
    a.append(b);
    EXPECT_STREQ(a.c_str(), "left-right");
    EXPECT_STREQ(b.c_str(), "right");
}

TEST(UtlStreamAppend, StreamAppendedToItselfDoublesIt) {
    utl_stream_c s(std::string(20, 's').c_str());
    s.append(s);
    EXPECT_EQ(text_of(s), std::string(40, 's'));
}

TEST(UtlStreamAppend, WideStringIsConvertedToUtf8) {
    utl_stream_c s("x=");
    s.append(u"a\u00E9\u20AC\U0001F600");
    EXPECT_EQ(text_of(s), "x=a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(s.get_length(), 12u);
}

TEST(UtlStreamAppend, CallsChainAcrossForms) {
    utl_stream_c s;
    s.append("<item n=\"").append(5).append("\" ok=\"").append(true).append("\" w=\"").append(0.25);
    s.append('"').append("/>");
    EXPECT_STREQ(s.c_str(), "<item n=\"5\" ok=\"True\" w=\"0.25\"/>");
}

TEST(UtlStreamAppend, EveryFormGoesThroughTheBase) {
    utl_stream_c s;
    qv_stream_c& q = s;
    q.append(1ull)
        .append(-2ll)
        .append(true)
        .append(3.5)
        .append(4ul)
        .append(5u)
        .append(static_cast<unsigned short>(6))
        .append(-7l)
        .append(8)
        .append(static_cast<short>(-9))
        .append('c')
        .append(utl_stream_c("S"))
        .append(u"W")
        .append("n");
    EXPECT_STREQ(s.c_str(), "1-2True3.5456-78-9cSWn");
}

// ---- rendering of a double

TEST(UtlStreamDouble, Append0Point1Gives0Point1) { EXPECT_EQ(rendered(0.1), "0.1"); }

TEST(UtlStreamDouble, Append100Gives100) { EXPECT_EQ(rendered(100.0), "100"); }

TEST(UtlStreamDouble, AppendMinus0Point00001GivesMinus0) { EXPECT_EQ(rendered(-0.00001), "-0"); }

TEST(UtlStreamDouble, Append3000000000GivesExponentForm) {
    EXPECT_EQ(rendered(3000000000.0), "3.000000000e+09");
}

TEST(UtlStreamDouble, TrailingZerosAndPointAreRemoved) {
    EXPECT_EQ(rendered(1.5), "1.5");
    EXPECT_EQ(rendered(2.0), "2");
    EXPECT_EQ(rendered(0.0), "0");
    EXPECT_EQ(rendered(-2.5), "-2.5");
    EXPECT_EQ(rendered(10.01), "10.01");
    EXPECT_EQ(rendered(1000.0), "1000");
}

TEST(UtlStreamDouble, FourDecimalsAreKeptAndRounded) {
    EXPECT_EQ(rendered(1.23456), "1.2346");
    EXPECT_EQ(rendered(3.14159265), "3.1416");
    EXPECT_EQ(rendered(0.00004), "0");
    EXPECT_EQ(rendered(-1.99999), "-2");
}

TEST(UtlStreamDouble, NegativeZeroKeepsItsSign) { EXPECT_EQ(rendered(-0.0), "-0"); }

TEST(UtlStreamDouble, LimitsOfTheShortFormAreExclusive) {
    EXPECT_EQ(rendered(2147483646.0), "2147483646");
    EXPECT_EQ(rendered(-2147483646.0), "-2147483646");
    EXPECT_EQ(rendered(2147483646.9999), "2147483646.9999");
    EXPECT_EQ(rendered(2147483647.0), "2.147483647e+09");
    EXPECT_EQ(rendered(-2147483647.0), "-2.147483647e+09");
}

TEST(UtlStreamDouble, ExponentFormHasNineDecimalsAndTwoExponentDigits) {
    EXPECT_EQ(rendered(-3000000000.0), "-3.000000000e+09");
    EXPECT_EQ(rendered(1e20), "1.000000000e+20");
    EXPECT_EQ(rendered(1234567890123.0), "1.234567890e+12");
    EXPECT_EQ(rendered(1e100), "1.000000000e+100");
    EXPECT_EQ(rendered(-std::numeric_limits<double>::max()), "-1.797693135e+308");
}

TEST(UtlStreamDouble, NotFiniteValuesArePaddedToFifteen) {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(rendered(inf), "            inf");
    EXPECT_EQ(rendered(-inf), "           -inf");
    EXPECT_EQ(rendered(nan), "            nan");
    EXPECT_EQ(rendered(-nan), "            nan");
}

TEST(UtlStreamDouble, TinyValuesGiveZero) {
    EXPECT_EQ(rendered(std::numeric_limits<double>::denorm_min()), "0");
    EXPECT_EQ(rendered(-std::numeric_limits<double>::denorm_min()), "-0");
}

// ---- equals

TEST(UtlStreamEquals, EmptyStringOnEmptyStreamIsTrue) {
    utl_stream_c s;
    EXPECT_TRUE(s.equals(""));
    EXPECT_TRUE(s.equals(static_cast<const char*>(nullptr)));
    EXPECT_TRUE(s.equals(u""));
    EXPECT_TRUE(s.equals(static_cast<const wide_char*>(nullptr)));
    EXPECT_TRUE(s.equals(utl_stream_c()));
}

TEST(UtlStreamEquals, EmptyArgumentOnNonEmptyStreamIsFalse) {
    utl_stream_c s("a");
    EXPECT_FALSE(s.equals(""));
    EXPECT_FALSE(s.equals(static_cast<const char*>(nullptr)));
    EXPECT_FALSE(s.equals(u""));
    EXPECT_FALSE(s.equals(static_cast<const wide_char*>(nullptr)));
    EXPECT_FALSE(s.equals(utl_stream_c()));
}

TEST(UtlStreamEquals, EmptyStreamEqualsNothingElse) {
    utl_stream_c s;
    EXPECT_FALSE(s.equals("a"));
    EXPECT_FALSE(s.equals(" "));
    EXPECT_FALSE(s.equals(u"a"));
    EXPECT_FALSE(s.equals(utl_stream_c("a")));
}

TEST(UtlStreamEquals, ComparisonIsExactBytes) {
    utl_stream_c s("Data.xml");
    EXPECT_TRUE(s.equals("Data.xml"));
    EXPECT_FALSE(s.equals("data.xml"));
    EXPECT_FALSE(s.equals("Data.xm"));
    EXPECT_FALSE(s.equals("Data.xml "));
    EXPECT_TRUE(s.equals(utl_stream_c("Data.xml")));
    EXPECT_FALSE(s.equals(utl_stream_c("DATA.XML")));
}

TEST(UtlStreamEquals, WideStringIsConvertedFirst) {
    utl_stream_c s("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_TRUE(s.equals(u"a\u00E9\u20AC\U0001F600"));
    EXPECT_FALSE(s.equals(u"a\u00C9\u20AC\U0001F600"));
    EXPECT_FALSE(s.equals(u"a\u00E9\u20AC"));
}

// ---- remove_suffix

TEST(UtlStreamRemoveSuffix, XmlOnAXmlLeavesA) {
    utl_stream_c s("a.xml");
    EXPECT_TRUE(s.remove_suffix(".xml"));
    EXPECT_STREQ(s.c_str(), "a");
    EXPECT_EQ(s.get_length(), 1u);
}

TEST(UtlStreamRemoveSuffix, XmlOnATxtReturnsFalse) {
    utl_stream_c s("a.txt");
    EXPECT_FALSE(s.remove_suffix(".xml"));
    EXPECT_STREQ(s.c_str(), "a.txt");
    EXPECT_EQ(s.get_length(), 5u);
}

TEST(UtlStreamRemoveSuffix, NullOrEmptyIsTrueAndChangesNothing) {
    utl_stream_c s("abc");
    EXPECT_TRUE(s.remove_suffix(static_cast<const char*>(nullptr)));
    EXPECT_TRUE(s.remove_suffix(""));
    EXPECT_TRUE(s.remove_suffix(static_cast<const wide_char*>(nullptr)));
    EXPECT_TRUE(s.remove_suffix(u""));
    EXPECT_TRUE(s.remove_suffix(utl_stream_c()));
    EXPECT_STREQ(s.c_str(), "abc");
    utl_stream_c empty;
    EXPECT_TRUE(empty.remove_suffix(""));
    EXPECT_TRUE(empty.remove_suffix(static_cast<const char*>(nullptr)));
}

TEST(UtlStreamRemoveSuffix, ComparisonIsExact) {
    utl_stream_c s("a.XML");
    EXPECT_FALSE(s.remove_suffix(".xml"));
    EXPECT_STREQ(s.c_str(), "a.XML");
}

TEST(UtlStreamRemoveSuffix, LongerArgumentIsFalse) {
    utl_stream_c s("ml");
    EXPECT_FALSE(s.remove_suffix(".xml"));
    EXPECT_STREQ(s.c_str(), "ml");
}

TEST(UtlStreamRemoveSuffix, WholeTextLeavesEmptyStream) {
    utl_stream_c s("abc");
    EXPECT_TRUE(s.remove_suffix("abc"));
    EXPECT_EQ(s.get_length(), 0u);
    EXPECT_STREQ(s.c_str(), "");
}

TEST(UtlStreamRemoveSuffix, NumbersAreRenderedAsAppendRendersThem) {
    utl_stream_c s("n=18446744073709551615");
    EXPECT_FALSE(s.remove_suffix(18446744073709551614ull));
    EXPECT_TRUE(s.remove_suffix(18446744073709551615ull));
    EXPECT_STREQ(s.c_str(), "n=");

    s.append(std::numeric_limits<long long>::min());
    EXPECT_TRUE(s.remove_suffix(std::numeric_limits<long long>::min()));
    s.append(4294967295ul);
    EXPECT_TRUE(s.remove_suffix(4294967295ul));
    s.append(4000000000u);
    EXPECT_TRUE(s.remove_suffix(4000000000u));
    s.append(static_cast<unsigned short>(65535));
    EXPECT_TRUE(s.remove_suffix(static_cast<unsigned short>(65535)));
    s.append(-2147483647l);
    EXPECT_TRUE(s.remove_suffix(-2147483647l));
    s.append(-12);
    EXPECT_FALSE(s.remove_suffix(-13));
    EXPECT_TRUE(s.remove_suffix(-12));
    s.append(static_cast<short>(-32768));
    EXPECT_TRUE(s.remove_suffix(static_cast<short>(-32768)));
    EXPECT_STREQ(s.c_str(), "n=");
    s.append(-12);
    EXPECT_TRUE(s.remove_suffix(12)); // the digits are a suffix of "-12"
    EXPECT_STREQ(s.c_str(), "n=-");
}

TEST(UtlStreamRemoveSuffix, BoolUsesTheWords) {
    utl_stream_c s("isTrue");
    EXPECT_FALSE(s.remove_suffix(false));
    EXPECT_TRUE(s.remove_suffix(true));
    EXPECT_STREQ(s.c_str(), "is");
    s.append("False");
    EXPECT_TRUE(s.remove_suffix(false));
    EXPECT_STREQ(s.c_str(), "is");
}

TEST(UtlStreamRemoveSuffix, DoubleUsesTheRenderingOfAppend) {
    utl_stream_c s("w=1.5");
    EXPECT_FALSE(s.remove_suffix(1.25));
    EXPECT_TRUE(utl_stream_c("1.5").remove_suffix(1.50001)); // rendered as "1.5"
    EXPECT_TRUE(s.remove_suffix(1.5));
    EXPECT_STREQ(s.c_str(), "w=");
    s.append(3000000000.0);
    EXPECT_TRUE(s.remove_suffix(3000000000.0));
    s.append(-0.00001);
    EXPECT_TRUE(s.remove_suffix(-0.0));
    EXPECT_STREQ(s.c_str(), "w=");
}

TEST(UtlStreamRemoveSuffix, CharIsOneCharacter) {
    utl_stream_c s("ab");
    EXPECT_FALSE(s.remove_suffix('a'));
    EXPECT_TRUE(s.remove_suffix('b'));
    EXPECT_STREQ(s.c_str(), "a");
    EXPECT_TRUE(s.remove_suffix('a'));
    EXPECT_FALSE(s.remove_suffix('a'));
    EXPECT_EQ(s.get_length(), 0u);
}

TEST(UtlStreamRemoveSuffix, CharZeroIsAnEmptyArgument) {
    // "%c" of zero formats an empty text.
    utl_stream_c s("ab");
    EXPECT_TRUE(s.remove_suffix('\0'));
    EXPECT_STREQ(s.c_str(), "ab");
    EXPECT_EQ(s.get_length(), 2u);
}

TEST(UtlStreamRemoveSuffix, StreamAndWideForms) {
    utl_stream_c s("name\xE2\x82\xAC.txt");
    EXPECT_TRUE(s.remove_suffix(utl_stream_c(".txt")));
    EXPECT_TRUE(s.remove_suffix(u"e\u20AC"));
    EXPECT_STREQ(s.c_str(), "nam");
    EXPECT_FALSE(s.remove_suffix(u"\u00E9"));
    EXPECT_TRUE(s.remove_suffix(s));
    EXPECT_EQ(s.get_length(), 0u);
}

// ---- compare, starts_with, ends_with

TEST(UtlStreamCompare, CaseSensitiveGivesMinusOneZeroOne) {
    utl_stream_c s("abc");
    EXPECT_EQ(s.compare("abd", true), -1);
    EXPECT_EQ(s.compare("abb", true), 1);
    EXPECT_EQ(s.compare("abc", true), 0);
    EXPECT_EQ(s.compare("ab", true), 1);
    EXPECT_EQ(s.compare("abcd", true), -1);
    EXPECT_EQ(s.compare("ABC", true), 1);
    EXPECT_EQ(s.compare("", true), 1);
}

TEST(UtlStreamCompare, BytesCompareAsUnsigned) {
    utl_stream_c s("\xC3\xA9");
    EXPECT_EQ(s.compare("z", true), 1);
    EXPECT_EQ(utl_stream_c("z").compare("\xC3\xA9", true), -1);
}

TEST(UtlStreamCompare, CaseInsensitiveIgnoresAsciiCase) {
    utl_stream_c s("File.XML");
    EXPECT_EQ(s.compare("file.xml", false), 0);
    EXPECT_LT(s.compare("FILE.XMM", false), 0);
    EXPECT_GT(s.compare("file.xmk", false), 0);
    EXPECT_GT(s.compare("file", false), 0);
    EXPECT_LT(s.compare("file.xml2", false), 0);
}

TEST(UtlStreamCompare, CaseInsensitiveComparesLowerCase) {
    // '_' lies between the upper and the lower case letters.
    EXPECT_LT(utl_stream_c("_").compare("A", false), 0);
    EXPECT_GT(utl_stream_c("_").compare("A", true), 0);
}

TEST(UtlStreamCompare, NullArgument) {
    utl_stream_c s("x");
    EXPECT_GT(s.compare(static_cast<const char*>(nullptr), true), 0);
    EXPECT_GT(s.compare(static_cast<const char*>(nullptr), false), 0);
    utl_stream_c empty;
    EXPECT_EQ(empty.compare(static_cast<const char*>(nullptr), true), 0);
    EXPECT_EQ(empty.compare(static_cast<const char*>(nullptr), false), 0);
}

TEST(UtlStreamCompare, EmptyStreamAgainstText) {
    utl_stream_c empty;
    EXPECT_EQ(empty.compare("", true), 0);
    EXPECT_EQ(empty.compare("a", true), -1);
    EXPECT_LT(empty.compare("a", false), 0);
}

TEST(UtlStreamCompare, AnotherStream) {
    utl_stream_c s("Alpha");
    EXPECT_EQ(s.compare(utl_stream_c("Alpha"), true), 0);
    EXPECT_EQ(s.compare(utl_stream_c("alpha"), true), -1);
    EXPECT_EQ(s.compare(utl_stream_c("alpha"), false), 0);
    EXPECT_EQ(s.compare(utl_stream_c(), true), 1);
    EXPECT_EQ(utl_stream_c().compare(utl_stream_c(), false), 0);
}

TEST(UtlStreamStartsWith, CaseInsensitiveTreatsABCAsStartingWithAb) {
    utl_stream_c s("ABC");
    EXPECT_TRUE(s.starts_with("ab", false));
    EXPECT_FALSE(s.starts_with("ab", true));
    EXPECT_TRUE(s.starts_with("AB", true));
}

TEST(UtlStreamStartsWith, NullArgumentIsFalse) {
    utl_stream_c s("abc");
    EXPECT_FALSE(s.starts_with(nullptr, true));
    EXPECT_FALSE(s.starts_with(nullptr, false));
    EXPECT_FALSE(utl_stream_c().starts_with(nullptr, true));
}

TEST(UtlStreamStartsWith, EmptyArgumentIsTrue) {
    EXPECT_TRUE(utl_stream_c("abc").starts_with("", true));
    EXPECT_TRUE(utl_stream_c().starts_with("", false));
}

TEST(UtlStreamStartsWith, LongerArgumentIsFalse) {
    EXPECT_FALSE(utl_stream_c("ab").starts_with("abc", true));
    EXPECT_FALSE(utl_stream_c("ab").starts_with("ABC", false));
    EXPECT_TRUE(utl_stream_c("abc").starts_with("abc", true));
}

TEST(UtlStreamEndsWith, NullArgumentIsFalse) {
    utl_stream_c s("abc");
    EXPECT_FALSE(s.ends_with(nullptr, true));
    EXPECT_FALSE(s.ends_with(nullptr, false));
    EXPECT_FALSE(utl_stream_c().ends_with(nullptr, false));
}

TEST(UtlStreamEndsWith, CaseRules) {
    utl_stream_c s("file.XML");
    EXPECT_TRUE(s.ends_with(".xml", false));
    EXPECT_FALSE(s.ends_with(".xml", true));
    EXPECT_TRUE(s.ends_with(".XML", true));
    EXPECT_FALSE(s.ends_with(".txt", false));
}

TEST(UtlStreamEndsWith, LongerArgumentIsFalse) {
    utl_stream_c s("ml");
    EXPECT_FALSE(s.ends_with("xml", true));
    EXPECT_FALSE(s.ends_with("XML", false));
    EXPECT_TRUE(s.ends_with("ml", true));
}

TEST(UtlStreamEndsWith, EmptyArgumentIsTrue) {
    EXPECT_TRUE(utl_stream_c("abc").ends_with("", true));
    EXPECT_TRUE(utl_stream_c().ends_with("", false));
}

// ---- trim, find, replace_first

TEST(UtlStreamTrim, RemovesWhiteSpaceAtBothEnds) {
    utl_stream_c s(" \t\r\n a b \v\f\n");
    s.trim();
    EXPECT_STREQ(s.c_str(), "a b");
    EXPECT_EQ(s.get_length(), 3u);
}

TEST(UtlStreamTrim, AllBlankStreamEndsEmpty) {
    utl_stream_c s(" \t \n ");
    s.trim();
    EXPECT_EQ(s.get_length(), 0u);
    EXPECT_STREQ(s.c_str(), "");
}

TEST(UtlStreamTrim, OneEndOnly) {
    utl_stream_c lead("  x");
    lead.trim();
    EXPECT_STREQ(lead.c_str(), "x");
    EXPECT_EQ(lead.get_length(), 1u);
    utl_stream_c tail("x  ");
    tail.trim();
    EXPECT_STREQ(tail.c_str(), "x");
    EXPECT_EQ(tail.get_length(), 1u);
}

TEST(UtlStreamTrim, NothingToTrimAndEmpty) {
    utl_stream_c s("a  b");
    s.trim();
    EXPECT_STREQ(s.c_str(), "a  b");
    utl_stream_c empty;
    empty.trim();
    EXPECT_EQ(empty.get_length(), 0u);
}

TEST(UtlStreamTrim, StreamStaysUsableAfterTrim) {
    utl_stream_c s("   abc   ");
    s.trim();
    s.append("def");
    EXPECT_STREQ(s.c_str(), "abcdef");
    EXPECT_EQ(s.get_length(), 6u);
}

TEST(UtlStreamFind, FirstOccurrence) {
    utl_stream_c s("abcabc");
    EXPECT_EQ(s.find("bc"), s.c_str() + 1);
    EXPECT_EQ(s.find("abc"), s.c_str());
    EXPECT_EQ(s.find("cab"), s.c_str() + 2);
}

TEST(UtlStreamFind, MissingPatternIsNull) {
    utl_stream_c s("abcabc");
    EXPECT_EQ(s.find("abd"), nullptr);
    EXPECT_EQ(s.find("ABC"), nullptr);
    EXPECT_EQ(s.find("abcabca"), nullptr);
    EXPECT_EQ(utl_stream_c().find("a"), nullptr);
}

TEST(UtlStreamFind, NullOrEmptyPattern) {
    utl_stream_c empty;
    EXPECT_EQ(empty.find(nullptr), empty.c_str());
    EXPECT_EQ(empty.find(""), empty.c_str());
    utl_stream_c s("x");
    EXPECT_EQ(s.find(nullptr), nullptr);
    EXPECT_EQ(s.find(""), nullptr);
}

TEST(UtlStreamReplaceFirst, ReplacesOnlyTheFirst) {
    utl_stream_c s("a-b-c");
    EXPECT_TRUE(s.replace_first("-", "+"));
    EXPECT_STREQ(s.c_str(), "a+b-c");
    EXPECT_EQ(s.get_length(), 5u);
}

TEST(UtlStreamReplaceFirst, MissingTextIsFalseAndChangesNothing) {
    utl_stream_c s("a-b-c");
    EXPECT_FALSE(s.replace_first("*", "+"));
    EXPECT_STREQ(s.c_str(), "a-b-c");
}

TEST(UtlStreamReplaceFirst, LongerShorterAndEmptyReplacement) {
    utl_stream_c s("<dir>/file");
    EXPECT_TRUE(s.replace_first("<dir>", "C:/some/long/directory"));
    EXPECT_STREQ(s.c_str(), "C:/some/long/directory/file");
    EXPECT_TRUE(s.replace_first("some/long/", "x"));
    EXPECT_STREQ(s.c_str(), "C:/xdirectory/file");
    EXPECT_TRUE(s.replace_first("x", ""));
    EXPECT_STREQ(s.c_str(), "C:/directory/file");
    EXPECT_TRUE(s.replace_first("/file", nullptr));
    EXPECT_STREQ(s.c_str(), "C:/directory");
    EXPECT_EQ(s.get_length(), 12u);
}

TEST(UtlStreamReplaceFirst, EmptyPattern) {
    utl_stream_c empty;
    EXPECT_TRUE(empty.replace_first("", "new"));
    EXPECT_STREQ(empty.c_str(), "new");
    utl_stream_c s("abc");
    EXPECT_FALSE(s.replace_first("", "new"));
    EXPECT_FALSE(s.replace_first(nullptr, "new"));
    EXPECT_STREQ(s.c_str(), "abc");
}

TEST(UtlStreamReplaceFirst, ReplacementTakenFromTheStreamItself) {
    utl_stream_c s("abc-");
    EXPECT_TRUE(s.replace_first("-", s.c_str()));
    EXPECT_STREQ(s.c_str(), "abcabc-");
}

// ---- basis_multi_lang_c

TEST(BasisMultiLang, ToUtf8Converts) {
    basis_multi_lang_c ml;
    const char* narrow = ml.to_utf8(u"a\u00E9\u20AC\U0001F600");
    ASSERT_NE(narrow, nullptr);
    EXPECT_STREQ(narrow, "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST(BasisMultiLang, ToUnicodeConverts) {
    basis_multi_lang_c ml;
    const wide_char* wide = ml.to_unicode("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    ASSERT_NE(wide, nullptr);
    EXPECT_EQ(std::u16string(wide), u"a\u00E9\u20AC\U0001F600");
}

TEST(BasisMultiLang, NullGivesNull) {
    basis_multi_lang_c ml;
    EXPECT_EQ(ml.to_utf8(nullptr), nullptr);
    EXPECT_EQ(ml.to_unicode(nullptr), nullptr);
}

TEST(BasisMultiLang, ResultLivesUntilNextCallOfTheSameKind) {
    basis_multi_lang_c ml;
    const char* narrow = ml.to_utf8(u"first");
    const wide_char* wide = ml.to_unicode("second");
    // A conversion of the other kind leaves the first result alone.
    EXPECT_STREQ(narrow, "first");
    EXPECT_EQ(std::u16string(wide), u"second");
    const char* again = ml.to_utf8(u"third");
    EXPECT_STREQ(again, "third");
    EXPECT_EQ(std::u16string(wide), u"second");
}

// ---- bad input

TEST(UtlStreamBadInput, StreamGrownToTensOfMegabytes) {
    // 40 MiB in pieces that do not divide it evenly, with no room reserved first.
    const std::size_t target = 40u << 20;
    std::string piece;
    for (int i = 0; i < 1000003; ++i) piece += static_cast<char>('A' + i % 23);
    utl_stream_c s;
    std::uint64_t capacity = s.get_capacity();
    std::size_t written = 0;
    while (written < target) {
        std::size_t n = std::min(piece.size(), target - written);
        capacity = grown_capacity(capacity, written, n);
        s.append(piece.substr(0, n).c_str());
        written += n;
        ASSERT_EQ(s.get_capacity(), capacity);
    }
    ASSERT_EQ(s.get_length(), target);
    EXPECT_EQ(std::strlen(s.c_str()), target);
    const char* text = s.c_str();
    std::size_t mismatches = 0;
    for (std::size_t at = 0; at < target; at += piece.size()) {
        std::size_t n = std::min(piece.size(), target - at);
        if (std::memcmp(text + at, piece.data(), n) != 0) ++mismatches;
    }
    EXPECT_EQ(mismatches, 0u);
    expect_block_holds_capacity_plus_one(s);
}

TEST(UtlStreamBadInput, ManySmallAppendsToMegabytes) {
    // Small pieces past the doubling limit: the text grows by 1024 at a time.
    utl_stream_c s;
    std::string model;
    for (int i = 0; i < 200000; ++i) {
        s.append(i).append(',');
        model += std::to_string(i) + ",";
    }
    ASSERT_EQ(s.get_length(), model.size());
    EXPECT_EQ(text_of(s), model);
    EXPECT_LE(s.get_capacity(), model.size() + 1024);
    EXPECT_GE(s.get_capacity(), model.size() + 1);
}

TEST(UtlStreamBadInput, SelfAppendOfOwnTextThroughPointer) {
    // The argument lives in the block that the append has to move.
    utl_stream_c s(std::string(30, 'p').c_str());
    s.append(s.c_str());
    EXPECT_EQ(text_of(s), std::string(60, 'p'));
    s.append(s.c_str() + 50);
    EXPECT_EQ(text_of(s), std::string(70, 'p'));
}

TEST(UtlStreamBadInput, LongestRenderingOfEveryForm) {
    utl_stream_c s;
    s.append(std::numeric_limits<long long>::min());
    s.append(std::numeric_limits<unsigned long long>::max());
    s.append(-std::numeric_limits<double>::max());
    s.append(-2147483646.9999);
    s.append(-2147483647l - 1);
    s.append(4294967295ul);
    s.append(std::numeric_limits<unsigned int>::max());
    s.append(static_cast<short>(-32768));
    EXPECT_EQ(text_of(s), "-922337203685477580818446744073709551615-1.797693135e+308-"
                          "2147483646.9999-214748364842949672954294967295-32768");
    EXPECT_TRUE(s.remove_suffix(static_cast<short>(-32768)));
    EXPECT_TRUE(s.remove_suffix(std::numeric_limits<unsigned int>::max()));
    EXPECT_TRUE(s.remove_suffix(4294967295ul));
    EXPECT_TRUE(s.remove_suffix(-2147483647l - 1));
    EXPECT_TRUE(s.remove_suffix(-2147483646.9999));
    EXPECT_TRUE(s.remove_suffix(-std::numeric_limits<double>::max()));
    EXPECT_TRUE(s.remove_suffix(std::numeric_limits<unsigned long long>::max()));
    EXPECT_TRUE(s.remove_suffix(std::numeric_limits<long long>::min()));
    EXPECT_EQ(s.get_length(), 0u);
}

TEST(UtlStreamBadInput, LoneSurrogatesBecomeReplacementCharacters) {
    const wide_char high[] = {u'a', 0xD800, u'b', 0};
    const wide_char low_at_end[] = {u'x', 0xDC00, 0};
    const wide_char reversed[] = {0xDC00, 0xD800, 0};
    utl_stream_c s;
    s.append(high).append(low_at_end).append(reversed);
    EXPECT_EQ(text_of(s), "a\xEF\xBF\xBD"
                          "bx\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
    utl_stream_c t("a\xEF\xBF\xBD"
                   "b");
    EXPECT_TRUE(t.equals(high));
    EXPECT_TRUE(t.remove_suffix(high));
    EXPECT_EQ(t.get_length(), 0u);
}

TEST(UtlStreamBadInput, LoneSurrogatesThroughBasisMultiLang) {
    basis_multi_lang_c ml;
    const wide_char text[] = {0xD83D, u'!', 0};
    const char* narrow = ml.to_utf8(text);
    ASSERT_NE(narrow, nullptr);
    EXPECT_STREQ(narrow, "\xEF\xBF\xBD!");
}

TEST(UtlStreamBadInput, InvalidUtf8BecomesReplacementCharacters) {
    basis_multi_lang_c ml;
    const wide_char* wide = ml.to_unicode("a\xFFz");
    ASSERT_NE(wide, nullptr);
    EXPECT_EQ(std::u16string(wide), u"a\uFFFDz");
    wide = ml.to_unicode("\xC3");
    ASSERT_NE(wide, nullptr);
    EXPECT_EQ(std::u16string(wide), u"\uFFFD");
    wide = ml.to_unicode("ok\x80");
    ASSERT_NE(wide, nullptr);
    EXPECT_EQ(std::u16string(wide), u"ok\uFFFD");
}

TEST(UtlStreamBadInput, InvalidUtf8TextStaysAsBytes) {
    // Narrow text goes in as it is: the stream does not check UTF-8.
    utl_stream_c s("a\xFF");
    s.append("\xC3").append('\x80');
    EXPECT_EQ(text_of(s), "a\xFF\xC3\x80");
    EXPECT_TRUE(s.ends_with("\xC3\x80", true));
    EXPECT_FALSE(s.equals(u"a\uFFFD\u00C0"));
}

TEST(UtlStreamBadInput, LongWideText) {
    std::u16string wide;
    std::string narrow;
    for (int i = 0; i < 100000; ++i) {
        wide += u"\u00E9\U0001F600";
        narrow += "\xC3\xA9\xF0\x9F\x98\x80";
    }
    utl_stream_c s;
    s.append(wide.c_str());
    EXPECT_EQ(s.get_length(), narrow.size());
    EXPECT_EQ(text_of(s), narrow);
    EXPECT_TRUE(s.equals(wide.c_str()));
}

} // namespace
