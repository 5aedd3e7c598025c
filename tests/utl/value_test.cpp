// value_c and labeled_value_c: constructors, set_text, clear, parsing and the type tags, every
// numeric conversion at and beyond its limits with the sticky error flag, to_bool, to_text,
// get_text_length, is_equal and equals_text; the named settings: find_setting, the process-wide
// list, get_setting_bool, get_setting_int and the defaults of the five settings.
#include "support/thl.h"
#include "utl/value.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace std::chrono_literals;

namespace {

// Reads the fields of a value as derived classes do.
class value_probe_c : public value_c {
  public:
    using value_c::value_c;
    using value_c::operator=;
    const char* raw_text() const { return _text; }
    std::uint64_t capacity() const { return _capacity; }
    std::int64_t number() const { return _number; }
};

constexpr auto tag_undefined = value_c::type_undefined;
constexpr auto tag_string = value_c::type_string;
constexpr auto tag_signed = value_c::type_signed;
constexpr auto tag_unsigned = value_c::type_unsigned;
constexpr auto tag_bool = value_c::type_bool;

void expect_fields(const value_probe_c& v, const char* text, std::int64_t number,
                   value_c::type_t type, bool error) {
    if (text)
        EXPECT_STREQ(v.raw_text(), text);
    else
        EXPECT_EQ(v.raw_text(), nullptr);
    EXPECT_EQ(v.number(), number);
    EXPECT_EQ(v.get_type(), type);
    EXPECT_EQ(v.get_error(), error);
}

// ---- constructors and assignment

TEST(ValueConstruct, NoArgumentIsUndefinedWithError) {
    value_probe_c v;
    expect_fields(v, nullptr, 0, tag_undefined, true);
    EXPECT_EQ(v.capacity(), 0u);
}

TEST(ValueConstruct, TextIsCopiedWithTagString) {
    std::string source = "hello";
    value_probe_c v(source.c_str());
    source[0] = 'j';
    expect_fields(v, "hello", 0, tag_string, false);
    EXPECT_EQ(v.capacity(), 6u);
}

TEST(ValueConstruct, NullTextHasNoBuffer) {
    value_probe_c v(static_cast<const char*>(nullptr));
    expect_fields(v, nullptr, 0, tag_string, false);
    EXPECT_STREQ(v.to_text(), "");
    EXPECT_FALSE(v.get_error());
}

TEST(ValueConstruct, BoolHasWordNumberAndTagFour) {
    value_probe_c t(true);
    expect_fields(t, "True", 1, tag_bool, false);
    value_probe_c f(false);
    expect_fields(f, "False", 0, tag_bool, false);
}

TEST(ValueConstruct, SignedFormsAreWidenedWithSign) {
    expect_fields(value_probe_c('A'), "65", 65, tag_signed, false);
    expect_fields(value_probe_c(static_cast<char>(-1)), "-1", -1, tag_signed, false);
    expect_fields(value_probe_c(static_cast<short>(-32768)), "-32768", -32768, tag_signed, false);
    expect_fields(value_probe_c(-2147483647 - 1), "-2147483648", -2147483648ll, tag_signed, false);
    expect_fields(value_probe_c(-5l), "-5", -5, tag_signed, false);
    expect_fields(value_probe_c(std::numeric_limits<long long>::min()), "-9223372036854775808",
                  std::numeric_limits<long long>::min(), tag_signed, false);
    expect_fields(value_probe_c(std::numeric_limits<long long>::max()), "9223372036854775807",
                  std::numeric_limits<long long>::max(), tag_signed, false);
}

TEST(ValueConstruct, UnsignedFormsBelowTheSignBitHaveTagTwo) {
    expect_fields(value_probe_c(static_cast<unsigned short>(65535)), "65535", 65535, tag_signed,
                  false);
    expect_fields(value_probe_c(4294967295u), "4294967295", 4294967295ll, tag_signed, false);
    expect_fields(value_probe_c(4294967295ul), "4294967295", 4294967295ll, tag_signed, false);
    expect_fields(value_probe_c(0x7FFFFFFFFFFFFFFFull), "9223372036854775807",
                  std::numeric_limits<long long>::max(), tag_signed, false);
}

TEST(ValueConstruct, UnsignedFromTheSignBitHaveTagThree) {
    expect_fields(value_probe_c(0x8000000000000000ull), "9223372036854775808",
                  std::numeric_limits<long long>::min(), tag_unsigned, false);
    expect_fields(value_probe_c(0xFFFFFFFFFFFFFFFFull), "18446744073709551615", -1, tag_unsigned,
                  false);
}

TEST(ValueConstruct, AssignmentFromBoolKeepsTheBuffer) {
    value_probe_c v("a text longer than the words");
    const char* buffer = v.raw_text();
    std::uint64_t capacity = v.capacity();
    v = false;
    expect_fields(v, "False", 0, tag_bool, false);
    EXPECT_EQ(v.raw_text(), buffer);
    EXPECT_EQ(v.capacity(), capacity);
}

TEST(ValueConstruct, AssignmentFromUnsigned64KeepsTheBuffer) {
    value_probe_c v("a text longer than any number is");
    v.to_int(); // fails: the error is set
    ASSERT_TRUE(v.get_error());
    const char* buffer = v.raw_text();
    v = 0x8000000000000000ull;
    expect_fields(v, "9223372036854775808", std::numeric_limits<long long>::min(), tag_unsigned,
                  false);
    EXPECT_EQ(v.raw_text(), buffer);
    v = 12ull;
    expect_fields(v, "12", 12, tag_signed, false);
    EXPECT_EQ(v.raw_text(), buffer);
}

TEST(ValueConstruct, CopyAndAssignmentCopyEverything) {
    value_probe_c a("77");
    a.to_int();
    value_probe_c b(a);
    expect_fields(b, "77", 77, tag_signed, false);
    EXPECT_NE(b.raw_text(), a.raw_text());
    value_probe_c c("something else");
    c = a;
    expect_fields(c, "77", 77, tag_signed, false);
    value_probe_c undefined;
    c = undefined;
    EXPECT_EQ(c.get_type(), tag_undefined);
    EXPECT_TRUE(c.get_error());
    EXPECT_STREQ(c.to_text(), "");
}

// ---- set_text and clear

TEST(ValueSetText, NullEmptiesTheBufferAndChangesNothingElse) {
    value_probe_c v(42);
    const char* buffer = v.raw_text();
    v.set_text(nullptr);
    EXPECT_EQ(v.raw_text(), buffer);
    EXPECT_STREQ(v.raw_text(), "");
    EXPECT_EQ(v.get_type(), tag_signed);
    EXPECT_EQ(v.number(), 42);
    EXPECT_FALSE(v.get_error());
}

TEST(ValueSetText, NullWithoutBufferStaysWithoutBuffer) {
    value_probe_c v;
    v.set_text(nullptr);
    EXPECT_EQ(v.raw_text(), nullptr);
    EXPECT_EQ(v.capacity(), 0u);
}

TEST(ValueSetText, BufferIsReplacedOnlyWhenTooSmallAndThenExact) {
    value_probe_c v("abc");
    EXPECT_EQ(v.capacity(), 4u);
    const char* buffer = v.raw_text();
    v.set_text("xyz");
    EXPECT_EQ(v.raw_text(), buffer);
    EXPECT_EQ(v.capacity(), 4u);
    v.set_text("a");
    EXPECT_EQ(v.raw_text(), buffer);
    EXPECT_EQ(v.capacity(), 4u);
    EXPECT_STREQ(v.raw_text(), "a");
    v.set_text("abcdefgh");
    EXPECT_EQ(v.capacity(), 9u);
    EXPECT_STREQ(v.raw_text(), "abcdefgh");
}

TEST(ValueSetText, TagAndNumberAreUntouched) {
    value_probe_c v(5);
    v.set_text("abc");
    EXPECT_EQ(v.get_type(), tag_signed);
    EXPECT_EQ(v.number(), 5);
    EXPECT_EQ(v.to_int(), 5);
    EXPECT_STREQ(v.to_text(), "5");
    value_probe_c b(true);
    b.set_text("False");
    EXPECT_TRUE(b.to_bool());
}

TEST(ValueClear, UndefinedWithErrorAndEmptyBuffer) {
    value_probe_c v("some text");
    const char* buffer = v.raw_text();
    v.clear();
    expect_fields(v, "", 0, tag_undefined, true);
    EXPECT_EQ(v.raw_text(), buffer);
    value_probe_c n(-9);
    n.clear();
    expect_fields(n, "", 0, tag_undefined, true);
}

// ---- parsing and the tags it gives

TEST(ValueParse, TwelveToIntGivesTwelveTagTwoAndTextTwelve) {
    value_probe_c v("12");
    EXPECT_EQ(v.to_int(), 12);
    EXPECT_EQ(v.get_type(), tag_signed);
    EXPECT_FALSE(v.get_error());
    EXPECT_STREQ(v.to_text(), "12");
}

TEST(ValueParse, AcceptedFormsGiveTheDecimalTextAfterwards) {
    value_probe_c hex("0x10");
    EXPECT_EQ(hex.to_int(), 16);
    EXPECT_EQ(hex.get_type(), tag_signed);
    EXPECT_STREQ(hex.to_text(), "16");
    value_probe_c blanks(" \t+42 ");
    EXPECT_EQ(blanks.to_int(), 42);
    EXPECT_STREQ(blanks.to_text(), "42");
    value_probe_c upper("0XfF");
    EXPECT_EQ(upper.to_int(), 255);
    EXPECT_STREQ(upper.to_text(), "255");
    value_probe_c negative_hex("-0x10");
    EXPECT_EQ(negative_hex.to_int(), -16);
    EXPECT_STREQ(negative_hex.to_text(), "-16");
    value_probe_c zeros("007");
    EXPECT_EQ(zeros.to_short(), 7);
    EXPECT_STREQ(zeros.to_text(), "7");
}

TEST(ValueParse, MaxUnsignedTextParsesToTagThreeAndToInt64Fails) {
    value_probe_c v("18446744073709551615");
    EXPECT_EQ(v.to_int64(), 0);
    EXPECT_EQ(v.get_type(), tag_unsigned);
    EXPECT_TRUE(v.get_error());
    EXPECT_STREQ(v.to_text(), "18446744073709551615");
    EXPECT_EQ(v.to_uint64(), 18446744073709551615ull);
}

TEST(ValueParse, SignBitWithoutMinusIsTagThree) {
    value_probe_c dec("9223372036854775808");
    EXPECT_EQ(dec.to_uint64(), 0x8000000000000000ull);
    EXPECT_EQ(dec.get_type(), tag_unsigned);
    EXPECT_FALSE(dec.get_error());
    value_probe_c hex("0x8000000000000000");
    EXPECT_EQ(hex.to_uint64(), 0x8000000000000000ull);
    EXPECT_EQ(hex.get_type(), tag_unsigned);
    EXPECT_STREQ(hex.to_text(), "9223372036854775808");
}

TEST(ValueParse, NegativeWithMinusIsTagTwo) {
    value_probe_c v("-9223372036854775808");
    EXPECT_EQ(v.to_int64(), std::numeric_limits<long long>::min());
    EXPECT_EQ(v.get_type(), tag_signed);
    EXPECT_FALSE(v.get_error());
    value_probe_c minus_zero("-0");
    EXPECT_EQ(minus_zero.to_int(), 0);
    EXPECT_EQ(minus_zero.get_type(), tag_signed);
    EXPECT_STREQ(minus_zero.to_text(), "0");
}

TEST(ValueParse, LargestSignedIsTagTwo) {
    value_probe_c v("9223372036854775807");
    EXPECT_EQ(v.to_int64(), std::numeric_limits<long long>::max());
    EXPECT_EQ(v.get_type(), tag_signed);
}

TEST(ValueParse, FailureKeepsTheTextAndTagAndSetsTheError) {
    for (const char* text : {"abc", "", " ", "12abc", "0x", "1 2", "--1", "1.5", "0x1G"}) {
        value_probe_c v(text);
        EXPECT_EQ(v.to_int(), 0) << text;
        EXPECT_TRUE(v.get_error()) << text;
        EXPECT_EQ(v.get_type(), tag_string) << text;
        EXPECT_STREQ(v.to_text(), text);
    }
}

TEST(ValueParse, NullTextFails) {
    value_probe_c v(static_cast<const char*>(nullptr));
    EXPECT_EQ(v.to_int(), 0);
    EXPECT_TRUE(v.get_error());
    EXPECT_EQ(v.get_type(), tag_string);
}

TEST(ValueParse, SuccessClearsTheError) {
    value_probe_c v("300");
    v.to_char();
    ASSERT_TRUE(v.get_error());
    // Parsing happened once; the tag is now 2 and no further parse clears the error.
    EXPECT_EQ(v.to_int(), 300);
    EXPECT_TRUE(v.get_error());
    value_probe_c w("five");
    EXPECT_EQ(w.to_int(), 0);
    ASSERT_TRUE(w.get_error());
    w.set_text("5"); // still a string value
    EXPECT_EQ(w.to_int(), 5);
    EXPECT_FALSE(w.get_error());
}

// ---- numeric conversions at and one beyond every limit

struct limit_case_s {
    const char* name;
    std::int64_t (*convert)(value_c&);
    std::int64_t low;
    std::int64_t high;
};

const std::vector<limit_case_s>& limit_cases() {
    static const std::vector<limit_case_s> cases = {
        {"to_char", [](value_c& v) -> std::int64_t { return v.to_char(); }, -128, 127},
        {"to_schar", [](value_c& v) -> std::int64_t { return v.to_schar(); }, -128, 127},
        {"to_short", [](value_c& v) -> std::int64_t { return v.to_short(); }, -32768, 32767},
        {"to_ushort", [](value_c& v) -> std::int64_t { return v.to_ushort(); }, 0, 65535},
        {"to_int", [](value_c& v) -> std::int64_t { return v.to_int(); }, -2147483648ll,
         2147483647ll},
        {"to_uint", [](value_c& v) -> std::int64_t { return v.to_uint(); }, 0, 4294967295ll},
        {"to_long", [](value_c& v) -> std::int64_t { return v.to_long(); }, -2147483648ll,
         2147483647ll},
        {"to_ulong", [](value_c& v) -> std::int64_t { return v.to_ulong(); }, 0, 4294967295ll},
    };
    return cases;
}

TEST(ValueConversion, TextsAtTheLimitsConvert) {
    for (const auto& c : limit_cases()) {
        for (std::int64_t limit : {c.low, c.high}) {
            std::string text = std::to_string(limit);
            value_probe_c v(text.c_str());
            EXPECT_EQ(c.convert(v), limit) << c.name << " " << text;
            EXPECT_FALSE(v.get_error()) << c.name << " " << text;
            EXPECT_EQ(v.get_type(), tag_signed) << c.name << " " << text;
        }
    }
}

TEST(ValueConversion, TextsOneBeyondTheLimitsFail) {
    for (const auto& c : limit_cases()) {
        for (std::int64_t beyond : {c.low - 1, c.high + 1}) {
            std::string text = std::to_string(beyond);
            value_probe_c v(text.c_str());
            EXPECT_EQ(c.convert(v), 0) << c.name << " " << text;
            EXPECT_TRUE(v.get_error()) << c.name << " " << text;
            // The parse itself succeeded: the value is a number now.
            EXPECT_EQ(v.get_type(), tag_signed) << c.name << " " << text;
            EXPECT_EQ(v.number(), beyond) << c.name << " " << text;
        }
    }
}

TEST(ValueConversion, NumbersAtAndBeyondTheLimits) {
    for (const auto& c : limit_cases()) {
        for (std::int64_t limit : {c.low, c.high}) {
            value_probe_c v(static_cast<long long>(limit));
            EXPECT_EQ(c.convert(v), limit) << c.name << " " << limit;
            EXPECT_FALSE(v.get_error()) << c.name << " " << limit;
        }
        for (std::int64_t beyond : {c.low - 1, c.high + 1}) {
            value_probe_c v(static_cast<long long>(beyond));
            EXPECT_EQ(c.convert(v), 0) << c.name << " " << beyond;
            EXPECT_TRUE(v.get_error()) << c.name << " " << beyond;
        }
    }
}

TEST(ValueConversion, ResultsHaveTheLowBitsOfTheNumber) {
    value_probe_c v("-1");
    EXPECT_EQ(v.to_char(), static_cast<char>(-1));
    EXPECT_EQ(v.to_schar(), static_cast<signed char>(-1));
    EXPECT_EQ(v.to_short(), -1);
    EXPECT_EQ(v.to_int(), -1);
    EXPECT_EQ(v.to_long(), -1);
    EXPECT_FALSE(v.get_error());
    value_probe_c big("4294967295");
    EXPECT_EQ(big.to_uint(), 4294967295u);
    EXPECT_EQ(big.to_ulong(), 4294967295u);
}

TEST(ValueConversion, ToChar200SetsTheErrorAndGivesZero) {
    value_probe_c v(200);
    EXPECT_EQ(v.to_char(), 0);
    EXPECT_TRUE(v.get_error());
    value_probe_c t("200");
    EXPECT_EQ(t.to_char(), 0);
    EXPECT_TRUE(t.get_error());
    EXPECT_EQ(t.get_type(), tag_signed);
}

TEST(ValueConversion, TagThreeFromTheSignBitFailsEveryRangedConversion) {
    for (const auto& c : limit_cases()) {
        value_probe_c v(0x8000000000000000ull);
        EXPECT_EQ(c.convert(v), 0) << c.name;
        EXPECT_TRUE(v.get_error()) << c.name;
    }
}

TEST(ValueConversion, TagThreeIsComparedAsSigned) {
    // 0xFFFFFFFFFFFFFFFF is -1 as signed 64 bits: inside the signed ranges, outside the others.
    for (const auto& c : limit_cases()) {
        value_probe_c v("18446744073709551615");
        std::int64_t result = c.convert(v);
        EXPECT_EQ(v.get_type(), tag_unsigned) << c.name;
        if (c.low < 0) {
            EXPECT_EQ(result, -1) << c.name;
            EXPECT_FALSE(v.get_error()) << c.name;
        } else {
            EXPECT_EQ(result, 0) << c.name;
            EXPECT_TRUE(v.get_error()) << c.name;
        }
    }
}

TEST(ValueConversion, BooleanConvertsAsZeroOrOne) {
    for (const auto& c : limit_cases()) {
        value_probe_c t(true);
        EXPECT_EQ(c.convert(t), 1) << c.name;
        EXPECT_FALSE(t.get_error()) << c.name;
        value_probe_c f(false);
        EXPECT_EQ(c.convert(f), 0) << c.name;
        EXPECT_FALSE(f.get_error()) << c.name;
    }
}

TEST(ValueConversion, UndefinedGivesZeroAndLeavesTheFlag) {
    for (const auto& c : limit_cases()) {
        value_probe_c v;
        EXPECT_EQ(c.convert(v), 0) << c.name;
        EXPECT_TRUE(v.get_error()) << c.name;
        v.clear_error();
        EXPECT_EQ(c.convert(v), 0) << c.name;
        EXPECT_FALSE(v.get_error()) << c.name;
    }
    value_probe_c v;
    v.clear_error();
    EXPECT_EQ(v.to_int64(), 0);
    EXPECT_EQ(v.to_uint64(), 0u);
    EXPECT_FALSE(v.get_error());
}

TEST(ValueConversion, ErrorFlagIsStickyUntilToBool) {
    value_probe_c v(-1);
    EXPECT_EQ(v.to_uint(), 0u);
    EXPECT_TRUE(v.get_error());
    // Successful conversions leave the flag: it tells that some conversion failed.
    EXPECT_EQ(v.to_int(), -1);
    EXPECT_TRUE(v.get_error());
    EXPECT_EQ(v.to_int64(), -1);
    EXPECT_TRUE(v.get_error());
    EXPECT_STREQ(v.to_text(), "-1");
    EXPECT_TRUE(v.get_error());

    value_probe_c w("TRUE");
    EXPECT_EQ(w.to_int(), 0);
    EXPECT_TRUE(w.get_error());
    EXPECT_TRUE(w.to_bool()); // clears first
    EXPECT_FALSE(w.get_error());
    EXPECT_EQ(w.to_int(), 1);
    EXPECT_FALSE(w.get_error());
}

TEST(ValueConversion, ToInt64AtAndBeyondItsLimits) {
    value_probe_c max("9223372036854775807");
    EXPECT_EQ(max.to_int64(), std::numeric_limits<long long>::max());
    EXPECT_FALSE(max.get_error());
    value_probe_c min("-9223372036854775808");
    EXPECT_EQ(min.to_int64(), std::numeric_limits<long long>::min());
    EXPECT_FALSE(min.get_error());
    value_probe_c above("9223372036854775808");
    EXPECT_EQ(above.to_int64(), 0);
    EXPECT_TRUE(above.get_error());
    EXPECT_EQ(above.get_type(), tag_unsigned);
    value_probe_c below("-9223372036854775809");
    EXPECT_EQ(below.to_int64(), 0);
    EXPECT_TRUE(below.get_error());
    EXPECT_EQ(below.get_type(), tag_string);
    value_probe_c number(0x8000000000000000ull);
    EXPECT_EQ(number.to_int64(), 0);
    EXPECT_TRUE(number.get_error());
    value_probe_c b(true);
    EXPECT_EQ(b.to_int64(), 1);
    EXPECT_FALSE(b.get_error());
}

TEST(ValueConversion, ToUint64AtAndBeyondItsLimits) {
    value_probe_c max("18446744073709551615");
    EXPECT_EQ(max.to_uint64(), 18446744073709551615ull);
    EXPECT_FALSE(max.get_error());
    value_probe_c zero("0");
    EXPECT_EQ(zero.to_uint64(), 0u);
    EXPECT_FALSE(zero.get_error());
    value_probe_c above("18446744073709551616");
    EXPECT_EQ(above.to_uint64(), 0u);
    EXPECT_TRUE(above.get_error());
    EXPECT_EQ(above.get_type(), tag_string);
    value_probe_c minus_one("-1");
    EXPECT_EQ(minus_one.to_uint64(), 0u);
    EXPECT_TRUE(minus_one.get_error());
    value_probe_c min(std::numeric_limits<long long>::min());
    EXPECT_EQ(min.to_uint64(), 0u);
    EXPECT_TRUE(min.get_error());
    value_probe_c signed_max(std::numeric_limits<long long>::max());
    EXPECT_EQ(signed_max.to_uint64(), 0x7FFFFFFFFFFFFFFFull);
    EXPECT_FALSE(signed_max.get_error());
}

TEST(ValueConversion, HexTextsAtTheTopOfSixtyFourBits) {
    value_probe_c top("0xFFFFFFFFFFFFFFFF");
    EXPECT_EQ(top.to_uint64(), 0xFFFFFFFFFFFFFFFFull);
    EXPECT_EQ(top.get_type(), tag_unsigned);
    value_probe_c over("0x10000000000000000");
    EXPECT_EQ(over.to_uint64(), 0u);
    EXPECT_TRUE(over.get_error());
    EXPECT_EQ(over.get_type(), tag_string);
    value_probe_c below_sign("0x7FFFFFFFFFFFFFFF");
    EXPECT_EQ(below_sign.to_int64(), std::numeric_limits<long long>::max());
    EXPECT_EQ(below_sign.get_type(), tag_signed);
}

// ---- to_bool

TEST(ValueToBool, UpperTrueGivesTrueTagFourAndTextOfTrue) {
    value_probe_c v("TRUE");
    EXPECT_TRUE(v.to_bool());
    EXPECT_EQ(v.get_type(), tag_bool);
    EXPECT_EQ(v.number(), 1);
    EXPECT_FALSE(v.get_error());
    EXPECT_STREQ(v.to_text(), mix_n::True);
    EXPECT_EQ(v.to_text(), mix_n::True);
}

TEST(ValueToBool, FalseWordsIgnoringCase) {
    for (const char* text : {"false", "FALSE", "False", "fAlSe"}) {
        value_probe_c v(text);
        v.to_int(); // sets the error
        EXPECT_FALSE(v.to_bool()) << text;
        EXPECT_FALSE(v.get_error()) << text;
        EXPECT_EQ(v.get_type(), tag_bool) << text;
        EXPECT_EQ(v.number(), 0) << text;
        EXPECT_STREQ(v.to_text(), "False");
    }
}

TEST(ValueToBool, OtherTextsFail) {
    for (const char* text : {"yes", "1", "0", "", " true", "truex", "T"}) {
        value_probe_c v(text);
        EXPECT_FALSE(v.to_bool()) << text;
        EXPECT_TRUE(v.get_error()) << text;
        EXPECT_EQ(v.get_type(), tag_string) << text;
    }
    value_probe_c null_text(static_cast<const char*>(nullptr));
    EXPECT_FALSE(null_text.to_bool());
    EXPECT_TRUE(null_text.get_error());
}

TEST(ValueToBool, NumberTwoFails) {
    value_probe_c v(2);
    EXPECT_FALSE(v.to_bool());
    EXPECT_TRUE(v.get_error());
    EXPECT_EQ(v.get_type(), tag_signed);
    value_probe_c minus(-1);
    EXPECT_FALSE(minus.to_bool());
    EXPECT_TRUE(minus.get_error());
}

TEST(ValueToBool, NumbersOneAndZero) {
    value_probe_c one(1);
    EXPECT_TRUE(one.to_bool());
    EXPECT_FALSE(one.get_error());
    EXPECT_EQ(one.get_type(), tag_signed);
    value_probe_c zero(0);
    EXPECT_FALSE(zero.to_bool());
    EXPECT_FALSE(zero.get_error());
}

TEST(ValueToBool, BooleanTagReadsTheNumber) {
    value_probe_c t(true);
    EXPECT_TRUE(t.to_bool());
    EXPECT_FALSE(t.get_error());
    value_probe_c f(false);
    EXPECT_FALSE(f.to_bool());
    EXPECT_FALSE(f.get_error());
}

TEST(ValueToBool, UndefinedAndTagThreeFail) {
    value_probe_c undefined;
    undefined.clear_error();
    EXPECT_FALSE(undefined.to_bool());
    EXPECT_TRUE(undefined.get_error());
    value_probe_c big(0x8000000000000001ull);
    EXPECT_FALSE(big.to_bool());
    EXPECT_TRUE(big.get_error());
}

// ---- to_text and get_text_length

TEST(ValueToText, ByTag) {
    value_probe_c text("as given");
    EXPECT_STREQ(text.to_text(), "as given");
    EXPECT_EQ(text.to_text(), text.raw_text());
    value_probe_c signed_number(-123);
    EXPECT_STREQ(signed_number.to_text(), "-123");
    EXPECT_EQ(signed_number.to_text(), signed_number.raw_text());
    value_probe_c unsigned_number(0xFFFFFFFFFFFFFFFEull);
    EXPECT_STREQ(unsigned_number.to_text(), "18446744073709551614");
    value_probe_c t(true);
    EXPECT_EQ(t.to_text(), mix_n::True);
    value_probe_c f(false);
    EXPECT_EQ(f.to_text(), mix_n::False);
}

TEST(ValueToText, UndefinedSetsTheErrorAndGivesEmpty) {
    value_probe_c v;
    v.clear_error();
    EXPECT_STREQ(v.to_text(), "");
    EXPECT_TRUE(v.get_error());
}

TEST(ValueToText, NumberIsPrintedAgainAfterSetText) {
    value_probe_c v(77);
    v.set_text("not the number");
    EXPECT_STREQ(v.to_text(), "77");
    EXPECT_STREQ(v.raw_text(), "77");
}

TEST(ValueTextLength, BooleanFalseIsFive) {
    value_probe_c f(false);
    EXPECT_EQ(f.get_text_length(), 5u);
    value_probe_c t(true);
    EXPECT_EQ(t.get_text_length(), 4u);
}

TEST(ValueTextLength, ByTagWithoutChangingTheValue) {
    value_probe_c text("0x10");
    EXPECT_EQ(text.get_text_length(), 4u);
    EXPECT_EQ(text.get_type(), tag_string);
    EXPECT_STREQ(text.raw_text(), "0x10");
    value_probe_c null_text(static_cast<const char*>(nullptr));
    EXPECT_EQ(null_text.get_text_length(), 0u);
    value_probe_c negative(-123);
    negative.set_text("x");
    EXPECT_EQ(negative.get_text_length(), 4u);
    EXPECT_STREQ(negative.raw_text(), "x");
    value_probe_c max_unsigned(0xFFFFFFFFFFFFFFFFull);
    EXPECT_EQ(max_unsigned.get_text_length(), 20u);
    value_probe_c min_signed(std::numeric_limits<long long>::min());
    EXPECT_EQ(min_signed.get_text_length(), 20u);
    value_probe_c undefined;
    EXPECT_EQ(undefined.get_text_length(), 0u);
    EXPECT_TRUE(undefined.get_error());
    EXPECT_EQ(undefined.get_type(), tag_undefined);
}

// ---- labeled_value_c

TEST(LabeledValue, NullLabelIsStoredEmpty) {
    labeled_value_c v(static_cast<const char*>(nullptr));
    ASSERT_NE(v.get_label(), nullptr);
    EXPECT_STREQ(v.get_label(), "");
    EXPECT_EQ(v.get_type(), tag_undefined);
    EXPECT_TRUE(v.get_error());
}

TEST(LabeledValue, EveryFormHasTheLabelFirst) {
    labeled_value_c text("a", "x");
    EXPECT_STREQ(text.get_label(), "a");
    EXPECT_STREQ(text.to_text(), "x");
    EXPECT_EQ(text.get_type(), tag_string);
    labeled_value_c b("b", true);
    EXPECT_EQ(b.get_type(), tag_bool);
    EXPECT_STREQ(b.to_text(), "True");
    labeled_value_c c("c", 'A');
    EXPECT_EQ(c.get_type(), tag_signed);
    EXPECT_STREQ(c.to_text(), "65");
    labeled_value_c s("s", static_cast<short>(-7));
    EXPECT_STREQ(s.to_text(), "-7");
    labeled_value_c i("i", -8);
    EXPECT_STREQ(i.to_text(), "-8");
    labeled_value_c l("l", -9l);
    EXPECT_STREQ(l.to_text(), "-9");
    labeled_value_c ll("ll", std::numeric_limits<long long>::min());
    EXPECT_STREQ(ll.to_text(), "-9223372036854775808");
    labeled_value_c us("us", static_cast<unsigned short>(65535));
    EXPECT_STREQ(us.to_text(), "65535");
    EXPECT_EQ(us.get_type(), tag_signed);
    labeled_value_c u("u", 4294967295u);
    EXPECT_STREQ(u.to_text(), "4294967295");
    labeled_value_c ul("ul", 4294967295ul);
    EXPECT_STREQ(ul.to_text(), "4294967295");
    labeled_value_c ull("ull", 0xFFFFFFFFFFFFFFFFull);
    EXPECT_STREQ(ull.to_text(), "18446744073709551615");
    EXPECT_EQ(ull.get_type(), tag_unsigned);
    EXPECT_STREQ(ull.get_label(), "ull");
}

TEST(LabeledValue, ForwardsThroughTheBase) {
    labeled_value_c v("flag", "false");
    value_c& base = v;
    EXPECT_FALSE(base.to_bool());
    EXPECT_FALSE(base.get_error());
    EXPECT_STREQ(base.to_text(), "False");
}

TEST(LabeledValue, CopyAndAssignment) {
    labeled_value_c a("name", 5);
    labeled_value_c b(a);
    EXPECT_STREQ(b.get_label(), "name");
    EXPECT_NE(b.get_label(), a.get_label());
    EXPECT_STREQ(b.to_text(), "5");
    labeled_value_c c("other", "text");
    c = a;
    EXPECT_STREQ(c.get_label(), "name");
    EXPECT_EQ(c.to_int(), 5);
    EXPECT_TRUE(c.is_equal(a));
}

TEST(LabeledValueIsEqual, SameObjectIsEqual) {
    labeled_value_c v("x");
    EXPECT_TRUE(v.is_equal(v));
}

TEST(LabeledValueIsEqual, NumberFiveEqualsTextFive) {
    labeled_value_c number("n", 5);
    labeled_value_c text("n", "5");
    EXPECT_TRUE(number.is_equal(text));
    EXPECT_TRUE(text.is_equal(number));
}

TEST(LabeledValueIsEqual, LabelsMustBeEqualByteForByte) {
    labeled_value_c a("Name", 5);
    labeled_value_c b("name", 5);
    EXPECT_FALSE(a.is_equal(b));
    labeled_value_c null_label(static_cast<const char*>(nullptr), "v");
    labeled_value_c empty_label("", "v");
    EXPECT_TRUE(null_label.is_equal(empty_label));
}

TEST(LabeledValueIsEqual, TextFormsCompareCaseSensitively) {
    labeled_value_c word("b", "TRUE");
    labeled_value_c b("b", true);
    EXPECT_FALSE(word.is_equal(b));
    labeled_value_c exact("b", "True");
    EXPECT_TRUE(exact.is_equal(b));
    labeled_value_c padded("n", "05");
    labeled_value_c five("n", 5);
    EXPECT_FALSE(padded.is_equal(five));
    padded.to_int();
    EXPECT_TRUE(padded.is_equal(five));
}

TEST(LabeledValueIsEqual, UndefinedEqualsOnlyUndefinedOfSameLabel) {
    labeled_value_c a("x");
    labeled_value_c b("x");
    labeled_value_c other_label("y");
    labeled_value_c empty_text("x", "");
    labeled_value_c zero("x", 0);
    EXPECT_TRUE(a.is_equal(b));
    EXPECT_FALSE(a.is_equal(other_label));
    EXPECT_FALSE(a.is_equal(empty_text));
    EXPECT_FALSE(empty_text.is_equal(a));
    EXPECT_FALSE(a.is_equal(zero));
    labeled_value_c cleared("x", "was set");
    cleared.clear();
    EXPECT_TRUE(cleared.is_equal(a));
}

TEST(ValueEqualsText, ComparesTheTextFormByteForByte) {
    value_probe_c number(42);
    EXPECT_TRUE(number.equals_text("42"));
    EXPECT_FALSE(number.equals_text("042"));
    value_probe_c b(true);
    EXPECT_TRUE(b.equals_text("True"));
    EXPECT_FALSE(b.equals_text("true"));
    value_probe_c text("Abc");
    EXPECT_TRUE(text.equals_text("Abc"));
    EXPECT_FALSE(text.equals_text("abc"));
}

TEST(ValueEqualsText, NullCountsAsEmpty) {
    value_probe_c empty("");
    EXPECT_TRUE(empty.equals_text(nullptr));
    EXPECT_TRUE(empty.equals_text(""));
    value_probe_c undefined;
    EXPECT_TRUE(undefined.equals_text(nullptr));
    value_probe_c text("a");
    EXPECT_FALSE(text.equals_text(nullptr));
    labeled_value_c labeled("l", "x");
    EXPECT_TRUE(labeled.equals_text("x"));
}

// ---- bad input

TEST(ValueBadInput, TextsBeyondSixtyFourBitsFailWithoutChange) {
    for (const char* text : {"18446744073709551616", "99999999999999999999999",
                             "-9223372036854775809", "0x1FFFFFFFFFFFFFFFF"}) {
        value_probe_c v(text);
        EXPECT_EQ(v.to_uint64(), 0u) << text;
        EXPECT_TRUE(v.get_error()) << text;
        EXPECT_EQ(v.to_int64(), 0) << text;
        EXPECT_EQ(v.get_type(), tag_string) << text;
        EXPECT_STREQ(v.to_text(), text);
    }
}

TEST(ValueBadInput, LongTextsAndSetTextFromItself) {
    std::string long_text(1 << 20, '7');
    value_probe_c v(long_text.c_str());
    EXPECT_EQ(v.get_text_length(), long_text.size());
    EXPECT_EQ(v.to_int(), 0);
    EXPECT_TRUE(v.get_error());
    // A text taken from the value's own buffer.
    v.set_text(v.raw_text() + 10);
    EXPECT_EQ(std::string(v.raw_text()), long_text.substr(10));
    v.set_text(v.raw_text());
    EXPECT_EQ(v.get_text_length(), long_text.size() - 10);
}

TEST(ValueBadInput, ManyReassignmentsReuseTheBuffer) {
    value_probe_c v("12345678901234567890");
    const char* buffer = v.raw_text();
    for (unsigned long long i = 0; i < 100000; ++i) {
        v = i * 7919ull;
        ASSERT_EQ(v.raw_text(), buffer);
        ASSERT_EQ(v.to_uint64(), i * 7919ull);
    }
}

// ---- named settings

// Installs a list of setting groups for the lifetime of the object.
class installed_settings_c {
  public:
    installed_settings_c() : _groups(true) { set_settings_list(&_groups); }
    ~installed_settings_c() {
        set_settings_list(nullptr);
        for (setting_group_c* g : _owned) delete g;
    }
    installed_settings_c(const installed_settings_c&) = delete;
    installed_settings_c& operator=(const installed_settings_c&) = delete;

    setting_group_c& add_group() {
        _owned.push_back(new setting_group_c());
        _groups.append(_owned.back());
        return *_owned.back();
    }
    ptr_list_c& groups() { return _groups; }

  private:
    ptr_list_c _groups;
    std::vector<setting_group_c*> _owned;
};

TEST(FindSetting, NoListGivesNull) {
    set_settings_list(nullptr);
    EXPECT_EQ(find_setting("ChunkLength"), nullptr);
    EXPECT_EQ(find_setting("anything"), nullptr);
    EXPECT_EQ(find_setting(nullptr), nullptr);
}

TEST(FindSetting, InstalledListIsSearchedIgnoringCase) {
    installed_settings_c list;
    auto* chunk = new setting_c("ChunkLength", "4096");
    list.add_group().add(chunk);
    EXPECT_EQ(find_setting("ChunkLength"), chunk);
    EXPECT_EQ(find_setting("chunklength"), chunk);
    EXPECT_EQ(find_setting("CHUNKLENGTH"), chunk);
    EXPECT_EQ(find_setting("ChunkLengt"), nullptr);
    EXPECT_EQ(find_setting("ChunkLength "), nullptr);
    EXPECT_EQ(find_setting(""), nullptr);
}

TEST(FindSetting, FirstMatchWins) {
    installed_settings_c list;
    setting_group_c& first = list.add_group();
    setting_group_c& second = list.add_group();
    auto* other = new setting_c("IOReadLength", "1");
    auto* early = new setting_c("aionumber", "5");
    auto* same_group_later = new setting_c("AIONumber", "6");
    auto* later_group = new setting_c("AIONUMBER", "7");
    auto* only_second = new setting_c("EnableAIOWrite", "False");
    first.add(other);
    first.add(early);
    first.add(same_group_later);
    second.add(later_group);
    second.add(only_second);
    EXPECT_EQ(find_setting("AIONumber"), early);
    EXPECT_EQ(find_setting("EnableAIOWrite"), only_second);
    EXPECT_EQ(find_setting("IOReadLength"), other);
}

TEST(FindSetting, EmptyGroupsAndEmptyListFindNothing) {
    installed_settings_c list;
    EXPECT_EQ(find_setting("ChunkLength"), nullptr);
    list.add_group();
    EXPECT_EQ(find_setting("ChunkLength"), nullptr);
}

TEST(FindSetting, SearchWaitsForTheListLock) {
    installed_settings_c list;
    auto* chunk = new setting_c("ChunkLength", "1");
    list.add_group().add(chunk);
    std::atomic<bool> done{false};
    std::atomic<setting_c*> found{nullptr};
    list.groups().lock();
    std::thread searcher([&] {
        found = find_setting("chunklength");
        done = true;
    });
    std::this_thread::sleep_for(300ms);
    EXPECT_FALSE(done.load());
    list.groups().unlock();
    searcher.join();
    EXPECT_TRUE(done.load());
    EXPECT_EQ(found.load(), chunk);
}

TEST(FindSetting, LockIsReleasedAfterTheSearch) {
    installed_settings_c list;
    list.add_group().add(new setting_c("ChunkLength", "1"));
    ASSERT_NE(find_setting("ChunkLength"), nullptr);
    ASSERT_EQ(find_setting("Missing"), nullptr);
    // Another thread takes the lock at once; it would wait for ever if a search still held it.
    auto taken = std::make_shared<std::atomic<bool>>(false);
    ptr_list_c* groups = &list.groups();
    std::thread([taken, groups] {
        groups->lock();
        groups->unlock();
        *taken = true;
    }).detach();
    for (int i = 0; i < 500 && !*taken; ++i) std::this_thread::sleep_for(10ms);
    ASSERT_TRUE(taken->load());
}

TEST(GetSettingBool, WordsIgnoringCase) {
    setting_c yes("EnableAIOWrite", "True");
    setting_c lower("EnableAIOWrite", "true");
    setting_c upper("EnableAIOWrite", "TRUE");
    setting_c no("EnableAIOWrite", "fAlSe");
    EXPECT_TRUE(get_setting_bool(yes));
    EXPECT_TRUE(get_setting_bool(lower));
    EXPECT_TRUE(get_setting_bool(upper));
    EXPECT_FALSE(get_setting_bool(no));
    EXPECT_STREQ(yes.errors().c_str(), "");
    EXPECT_STREQ(no.errors().c_str(), "");
}

TEST(GetSettingBool, ClearsTheErrorStreamFirst) {
    setting_c s("EnableAIOWrite", "true");
    s.errors().append("old complaint");
    EXPECT_TRUE(get_setting_bool(s));
    EXPECT_EQ(s.errors().get_length(), 0u);
}

TEST(GetSettingBool, OtherTextIsReported) {
    setting_c s("EnableAIOWrite", "yes");
    s.errors().append("old complaint");
    EXPECT_FALSE(get_setting_bool(s));
    EXPECT_STREQ(s.errors().c_str(), "Unable to convert to bool \"yes\"");
    setting_c one("EnableAIOWrite", "1");
    EXPECT_FALSE(get_setting_bool(one));
    EXPECT_STREQ(one.errors().c_str(), "Unable to convert to bool \"1\"");
}

TEST(GetSettingBool, MissingTextIsUndefinedValue) {
    setting_c s("EnableAIOWrite", nullptr);
    EXPECT_FALSE(get_setting_bool(s));
    EXPECT_STREQ(s.errors().c_str(), "Unable to convert to bool \"Undefined Value\"");
}

TEST(GetSettingInt, ValuesWithinThirtyTwoBits) {
    setting_c s("ChunkLength", "4096");
    s.errors().append("old complaint");
    EXPECT_EQ(get_setting_int(s), 4096);
    EXPECT_EQ(s.errors().get_length(), 0u);
    setting_c max("ChunkLength", "2147483647");
    EXPECT_EQ(get_setting_int(max), 2147483647);
    EXPECT_STREQ(max.errors().c_str(), "");
    setting_c min("ChunkLength", "-2147483648");
    EXPECT_EQ(get_setting_int(min), -2147483647 - 1);
    EXPECT_STREQ(min.errors().c_str(), "");
    setting_c hex("ChunkLength", "0x10000");
    EXPECT_EQ(get_setting_int(hex), 65536);
}

TEST(GetSettingInt, BeyondThirtyTwoBitsIsTooBig) {
    setting_c above("ChunkLength", "2147483648");
    EXPECT_EQ(get_setting_int(above), 0);
    EXPECT_STREQ(above.errors().c_str(),
                 "Unable to convert \"2147483648\" to int, input value is too big");
    setting_c below("ChunkLength", "-2147483649");
    EXPECT_EQ(get_setting_int(below), 0);
    EXPECT_STREQ(below.errors().c_str(),
                 "Unable to convert \"-2147483649\" to int, input value is too big");
}

TEST(GetSettingInt, TextThatFailsToParse) {
    setting_c s("ChunkLength", "64k");
    EXPECT_EQ(get_setting_int(s), 0);
    EXPECT_STREQ(s.errors().c_str(), "Unable to convert \"64k\" to int");
    setting_c huge("ChunkLength", "99999999999999999999");
    EXPECT_EQ(get_setting_int(huge), 0);
    EXPECT_STREQ(huge.errors().c_str(), "Unable to convert \"99999999999999999999\" to int");
    setting_c none("ChunkLength", nullptr);
    EXPECT_EQ(get_setting_int(none), 0);
    EXPECT_STREQ(none.errors().c_str(), "Unable to convert \"\" to int");
}

TEST(GetSettingInt, ErrorStreamHoldsOnlyTheLastComplaint) {
    setting_c s("ChunkLength", "abc");
    get_setting_int(s);
    get_setting_int(s);
    EXPECT_STREQ(s.errors().c_str(), "Unable to convert \"abc\" to int");
}

TEST(NamedSettings, ChunkLengthDefaultsTo65536) {
    set_settings_list(nullptr);
    EXPECT_STREQ(settings_n::chunk_length, "ChunkLength");
    EXPECT_EQ(find_setting(settings_n::chunk_length), nullptr);
    EXPECT_EQ(settings_n::chunk_length_default, 65536);
    EXPECT_EQ(settings_n::int_or(settings_n::chunk_length, settings_n::chunk_length_default),
              65536);
}

TEST(NamedSettings, IOReadLengthDefaultsTo65536) {
    set_settings_list(nullptr);
    EXPECT_STREQ(settings_n::io_read_length, "IOReadLength");
    EXPECT_EQ(find_setting(settings_n::io_read_length), nullptr);
    EXPECT_EQ(settings_n::io_read_length_default, 65536);
    EXPECT_EQ(settings_n::int_or(settings_n::io_read_length, settings_n::io_read_length_default),
              65536);
}

TEST(NamedSettings, AIONumberDefaultsTo3) {
    set_settings_list(nullptr);
    EXPECT_STREQ(settings_n::aio_number, "AIONumber");
    EXPECT_EQ(find_setting(settings_n::aio_number), nullptr);
    EXPECT_EQ(settings_n::aio_number_default, 3);
    EXPECT_EQ(settings_n::int_or(settings_n::aio_number, settings_n::aio_number_default), 3);
}

TEST(NamedSettings, EnableAIOWriteDefaultsToTrue) {
    set_settings_list(nullptr);
    EXPECT_STREQ(settings_n::enable_aio_write, "EnableAIOWrite");
    EXPECT_EQ(find_setting(settings_n::enable_aio_write), nullptr);
    EXPECT_TRUE(settings_n::enable_aio_write_default);
    EXPECT_TRUE(
        settings_n::bool_or(settings_n::enable_aio_write, settings_n::enable_aio_write_default));
}

TEST(NamedSettings, OpenFileWithoutSystemSecurityDefaultsToFalse) {
    set_settings_list(nullptr);
    EXPECT_STREQ(settings_n::open_file_without_system_security, "OpenFileWithoutSystemSecurity");
    EXPECT_EQ(find_setting(settings_n::open_file_without_system_security), nullptr);
    EXPECT_FALSE(settings_n::open_file_without_system_security_default);
    EXPECT_FALSE(settings_n::bool_or(settings_n::open_file_without_system_security,
                                     settings_n::open_file_without_system_security_default));
}

TEST(NamedSettings, InstalledSettingsReplaceTheDefaults) {
    installed_settings_c list;
    setting_group_c& group = list.add_group();
    group.add(new setting_c("chunklength", "4096"));
    group.add(new setting_c("IOREADLENGTH", "0x2000"));
    group.add(new setting_c("AIONumber", "5"));
    group.add(new setting_c("EnableAIOWrite", "false"));
    group.add(new setting_c("OpenFileWithoutSystemSecurity", "TRUE"));
    EXPECT_EQ(settings_n::int_or(settings_n::chunk_length, settings_n::chunk_length_default), 4096);
    EXPECT_EQ(settings_n::int_or(settings_n::io_read_length, settings_n::io_read_length_default),
              8192);
    EXPECT_EQ(settings_n::int_or(settings_n::aio_number, settings_n::aio_number_default), 5);
    EXPECT_FALSE(
        settings_n::bool_or(settings_n::enable_aio_write, settings_n::enable_aio_write_default));
    EXPECT_TRUE(settings_n::bool_or(settings_n::open_file_without_system_security,
                                    settings_n::open_file_without_system_security_default));
}

TEST(NamedSettings, FoundSettingThatFailsGivesTheConversionResultNotTheDefault) {
    installed_settings_c list;
    auto* aio = new setting_c("EnableAIOWrite", "maybe");
    auto* chunk = new setting_c("ChunkLength", "big");
    list.add_group().add(aio);
    list.add_group().add(chunk);
    EXPECT_FALSE(settings_n::bool_or(settings_n::enable_aio_write, true));
    EXPECT_STREQ(aio->errors().c_str(), "Unable to convert to bool \"maybe\"");
    EXPECT_EQ(settings_n::int_or(settings_n::chunk_length, 65536), 0);
    EXPECT_STREQ(chunk->errors().c_str(), "Unable to convert \"big\" to int");
    // Other names still fall back.
    EXPECT_EQ(settings_n::int_or(settings_n::aio_number, settings_n::aio_number_default), 3);
}

} // namespace
