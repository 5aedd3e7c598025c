// xmc_value_c and xmc_string_array_c: construction, the 28 operations, the failure words and
// the list form.
#include "configuration/xmc_value.h"

#include "utl/container_temp.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string words(const xmc_value_c& v) {
    return v.error_text.c_str() ? std::string(v.error_text.c_str()) : std::string();
}

xmc_string_array_c* list_of(std::initializer_list<const char*> entries) {
    auto* list = new xmc_string_array_c;
    for (const char* e : entries) list->add(e);
    return list;
}

} // namespace

// ---- construction -----------------------------------------------------------------------------

TEST(XmcValue, DefaultIsUndefinedWithTheErrorFlag) {
    xmc_value_c v;
    EXPECT_EQ(v.get_type(), value_c::type_undefined);
    EXPECT_TRUE(v.get_error());
    EXPECT_STREQ(v.to_text(), "");
    EXPECT_EQ(v.strings, nullptr);
    EXPECT_EQ(v.lookup_failed, 0);
    EXPECT_EQ(v.type_name, nullptr);
}

TEST(XmcValue, FromSignedNumber) {
    xmc_value_c v(-42);
    EXPECT_EQ(v.get_type(), value_c::type_signed);
    EXPECT_FALSE(v.get_error());
    EXPECT_STREQ(v.to_text(), "-42");
}

TEST(XmcValue, FromUnsignedNumberBelowAndAboveTwoToTheSixtyThird) {
    xmc_value_c small(9223372036854775807ull);
    EXPECT_EQ(small.get_type(), value_c::type_signed);
    EXPECT_STREQ(small.to_text(), "9223372036854775807");
    xmc_value_c big(9223372036854775808ull);
    EXPECT_EQ(big.get_type(), value_c::type_unsigned);
    EXPECT_STREQ(big.to_text(), "9223372036854775808");
    EXPECT_FALSE(big.get_error());
}

TEST(XmcValue, FromString) {
    xmc_value_c v("Ha");
    EXPECT_EQ(v.get_type(), value_c::type_string);
    EXPECT_FALSE(v.get_error());
    EXPECT_STREQ(v.to_text(), "Ha");
}

TEST(XmcValue, CopyTakesEverythingButTheFlagsAndTheWords) {
    xmc_value_c source("a");
    source.strings = list_of({"x", "y"});
    source.strings->valid = 0;
    source.type_name = "String";
    source.lookup_failed = 1;
    source.error_text.append("old words");
    xmc_value_c copy(source);
    EXPECT_TRUE(copy.get_error());
    EXPECT_EQ(copy.lookup_failed, 0);
    EXPECT_EQ(copy.error_text.get_length(), 0u);
    EXPECT_STREQ(copy.type_name, "String");
    ASSERT_NE(copy.strings, nullptr);
    EXPECT_NE(copy.strings, source.strings);
    EXPECT_EQ(copy.strings->get_count(), 2u);
    EXPECT_EQ(copy.strings->valid, 0);
    EXPECT_EQ(copy.get_type(), value_c::type_string);
}

TEST(XmcValue, ACopiedNumberReportsOnItsFirstConversionToIntAndStillReturnsIt) {
    xmc_value_c source(1234);
    ASSERT_FALSE(source.get_error());
    xmc_value_c copy(source);
    EXPECT_TRUE(copy.get_error()) << "the copy stands with the error flag set";
    EXPECT_EQ(copy.get_type(), value_c::type_signed);
    EXPECT_EQ(copy.to_int(), 1234);
    EXPECT_TRUE(copy.get_error());
    EXPECT_EQ(words(copy), "Unable to convert \"1234\" to int, input value is too big");
    // The source, whose flag is clear, converts without a word.
    EXPECT_EQ(source.to_int(), 1234);
    EXPECT_EQ(words(source), "");
}

TEST(XmcValue, ACopiedStringIsNotAffectedAsTheParseSetsTheFlagAnew) {
    xmc_value_c source("1234");
    xmc_value_c copy(source);
    EXPECT_EQ(copy.to_int(), 1234);
    EXPECT_FALSE(copy.get_error());
    EXPECT_EQ(words(copy), "");
}

// ---- numbers ----------------------------------------------------------------------------------

TEST(XmcValue, ThreeHundredThousandAsStringToShortFailsWithTheSizeClause) {
    xmc_value_c v("300000");
    EXPECT_EQ(v.to_short(), 0);
    EXPECT_TRUE(v.get_error());
    EXPECT_EQ(words(v), "Unable to convert \"300000\" to short, input value is too big");
}

TEST(XmcValue, DottedAddressToUnsignedIntReadsAsANumber) {
    xmc_value_c v("192.168.0.1");
    EXPECT_EQ(v.to_uint(), 3232235521u);
    EXPECT_FALSE(v.get_error());
    EXPECT_EQ(words(v), "");
    xmc_value_c w("192.168.0.1");
    EXPECT_EQ(w.to_ulong(), 3232235521u);
    EXPECT_FALSE(w.get_error());
}

TEST(XmcValue, DottedAddressToIntFails) {
    xmc_value_c v("192.168.0.1");
    EXPECT_EQ(v.to_int(), 0);
    EXPECT_TRUE(v.get_error());
    EXPECT_EQ(words(v), "Unable to convert \"192.168.0.1\" to int");
}

TEST(XmcValue, AddressOfZeroDoesNotRescueTheConversion) {
    xmc_value_c v("0.0.0.0");
    EXPECT_EQ(v.to_uint(), 0u);
    EXPECT_EQ(words(v), "Unable to convert \"0.0.0.0\" to unsigned int");
}

TEST(XmcValue, RangesOfTheConversions) {
    EXPECT_EQ(xmc_value_c("-128").to_char(), -128);
    EXPECT_EQ(xmc_value_c("127").to_char(), 127);
    EXPECT_EQ(xmc_value_c("-32768").to_short(), -32768);
    EXPECT_EQ(xmc_value_c("65535").to_ushort(), 65535);
    EXPECT_EQ(xmc_value_c("-2147483648").to_int(), INT32_MIN);
    EXPECT_EQ(xmc_value_c("4294967295").to_uint(), 4294967295u);
    EXPECT_EQ(xmc_value_c("2147483647").to_long(), INT32_MAX);
    EXPECT_EQ(xmc_value_c("4294967295").to_ulong(), 4294967295u);
    EXPECT_EQ(xmc_value_c("-9223372036854775808").to_int64(), INT64_MIN);
    EXPECT_EQ(xmc_value_c("18446744073709551615").to_uint64(), UINT64_MAX);
}

TEST(XmcValue, OutOfRangeWordsOfEachTarget) {
    struct case_s {
        const char* text;
        std::string (*convert)(xmc_value_c&);
        const char* expected;
    };
    const case_s cases[] = {
        {"128", [](xmc_value_c& v) { return std::to_string(v.to_char()); },
         "Unable to convert \"128\" to char, input value is too big"},
        {"-1", [](xmc_value_c& v) { return std::to_string(v.to_ushort()); },
         "Unable to convert \"-1\" to unsigned short, input value is too big"},
        {"2147483648", [](xmc_value_c& v) { return std::to_string(v.to_int()); },
         "Unable to convert \"2147483648\" to int, input value is too big"},
        {"4294967296", [](xmc_value_c& v) { return std::to_string(v.to_uint()); },
         "Unable to convert \"4294967296\" to unsigned int, input value is too big"},
        {"2147483648", [](xmc_value_c& v) { return std::to_string(v.to_long()); },
         "Unable to convert \"2147483648\" to long, input value is too big"},
        {"4294967296", [](xmc_value_c& v) { return std::to_string(v.to_ulong()); },
         "Unable to convert \"4294967296\" to unsigned long, input value is too big"},
        {"-1", [](xmc_value_c& v) { return std::to_string(v.to_uint64()); },
         "Unable to convert \"-1\" to __uint64"},
    };
    for (const case_s& c : cases) {
        xmc_value_c v(c.text);
        EXPECT_EQ(c.convert(v), "0") << c.expected;
        EXPECT_EQ(words(v), c.expected);
    }
}

TEST(XmcValue, UnsignedKindToInt64Fails) {
    xmc_value_c v(9223372036854775808ull);
    EXPECT_EQ(v.to_int64(), 0);
    EXPECT_EQ(words(v), "Unable to convert \"9223372036854775808\" to __int64");
}

TEST(XmcValue, UnsignedKindOutOfRangeHasNoSizeClause) {
    xmc_value_c v(9223372036854775808ull);
    EXPECT_EQ(v.to_int(), 0);
    EXPECT_EQ(words(v), "Unable to convert \"9223372036854775808\" to int");
}

TEST(XmcValue, LongAddsTheSizeClauseToEveryFailureButIntDoesNot) {
    xmc_value_c as_long("abc");
    EXPECT_EQ(as_long.to_long(), 0);
    EXPECT_EQ(words(as_long), "Unable to convert \"abc\" to long, input value is too big");
    xmc_value_c as_int("abc");
    EXPECT_EQ(as_int.to_int(), 0);
    EXPECT_EQ(words(as_int), "Unable to convert \"abc\" to int");
}

TEST(XmcValue, UndefinedValueConvertsToZeroWithWords) {
    xmc_value_c v;
    EXPECT_EQ(v.to_int(), 0);
    EXPECT_EQ(words(v), "Unable to convert \"\" to int");
}

TEST(XmcValue, SignedCharIsTheBaseConversionWithoutWords) {
    xmc_value_c v("300");
    EXPECT_EQ(v.to_schar(), 0);
    EXPECT_TRUE(v.get_error());
    EXPECT_EQ(words(v), "");
}

TEST(XmcValue, WordsAccumulateUntilASuccess) {
    xmc_value_c v("abc");
    v.to_int();
    v.to_short();
    EXPECT_EQ(words(v), "Unable to convert \"abc\" to intUnable to convert \"abc\" to short");
    v.set_string("7");
    EXPECT_EQ(v.to_int(), 7);
    EXPECT_EQ(words(v), "");
}

// ---- booleans ---------------------------------------------------------------------------------

TEST(XmcValue, TrueInLowerCaseReadsAsTrue) {
    xmc_value_c v("true");
    EXPECT_TRUE(v.to_bool());
    EXPECT_FALSE(v.get_error());
    xmc_value_c f("FALSE");
    EXPECT_FALSE(f.to_bool());
    EXPECT_FALSE(f.get_error());
}

TEST(XmcValue, BoolFromNumbersOneAndZero) {
    EXPECT_TRUE(xmc_value_c(1).to_bool());
    xmc_value_c two(2);
    EXPECT_FALSE(two.to_bool());
    EXPECT_EQ(words(two), "Unable to convert \"2\" to bool");
}

TEST(XmcValue, BoolFailureWords) {
    xmc_value_c v("yes");
    EXPECT_FALSE(v.to_bool());
    EXPECT_TRUE(v.get_error());
    EXPECT_EQ(words(v), "Unable to convert \"yes\" to bool");
}

// ---- enumeration positions --------------------------------------------------------------------

TEST(XmcValue, EnumerationPositions) {
    EXPECT_EQ(xmc_value_c("Rw").to_product(), 3u);
    EXPECT_EQ(xmc_value_c("FullSystem").to_application(), 11u);
    EXPECT_EQ(xmc_value_c("Rewind").to_config_mode(), 7u);
    EXPECT_EQ(xmc_value_c("Scheduled").to_replication_mode(), 3u);
    EXPECT_EQ(xmc_value_c("Unlimited").to_bandwidth(), 15u);
    EXPECT_EQ(xmc_value_c("Replica").to_host_task(), 3u);
    EXPECT_EQ(xmc_value_c("WeeklyActivity").to_schedule(), 1u);
    EXPECT_EQ(xmc_value_c("VolumeSynchronization").to_synchronization_type(), 2u);
    EXPECT_EQ(xmc_value_c("FixSize").to_virtual_hard_disk_type(), 1u);
    EXPECT_EQ(xmc_value_c("EC2").to_virtual_platform_type(), 4u);
    EXPECT_EQ(xmc_value_c("ec2_hi1_4xlarge").to_cloud_instance_type(), 13u);
    EXPECT_EQ(xmc_value_c("3").to_secure_communication_level(), 3u);
}

TEST(XmcValue, UnknownItemsGiveTheNotSetPositionAndTheEnumerationName) {
    struct case_s {
        std::uint32_t (xmc_value_c::*convert)();
        std::uint32_t not_set;
        const char* name;
    };
    const case_s cases[] = {
        {&xmc_value_c::to_product, 4, "Product"},
        {&xmc_value_c::to_application, 13, "Application"},
        {&xmc_value_c::to_config_mode, 8, "ConfigMode"},
        {&xmc_value_c::to_replication_mode, 4, "ReplicationMode"},
        {&xmc_value_c::to_bandwidth, 16, "Bandwidth"},
        {&xmc_value_c::to_host_task, 4, "HostTask"},
        {&xmc_value_c::to_schedule, 2, "Schedule"},
        {&xmc_value_c::to_synchronization_type, 3, "SynchronizationType"},
        {&xmc_value_c::to_virtual_hard_disk_type, 2, "VirtualHardDiskType"},
        {&xmc_value_c::to_virtual_platform_type, 5, "VirtualPlatformType"},
        {&xmc_value_c::to_cloud_instance_type, 14, "CloudInstanceType"},
        {&xmc_value_c::to_secure_communication_level, 4, "SecureCommunicationLevel"},
    };
    for (const case_s& c : cases) {
        xmc_value_c v("nothing");
        EXPECT_EQ((v.*c.convert)(), c.not_set) << c.name;
        EXPECT_EQ(words(v), std::string("Unable to convert \"nothing\" to ") + c.name);
    }
}

TEST(XmcValue, AnEnumerationMatchEmptiesTheWords) {
    xmc_value_c v("Ha");
    v.to_int();
    EXPECT_NE(words(v), "");
    EXPECT_EQ(v.to_product(), 1u);
    EXPECT_EQ(words(v), "");
}

// ---- lists ------------------------------------------------------------------------------------

TEST(XmcValue, ReadingAListAsAStringConsumesItsListForm) {
    xmc_value_c v;
    v.strings = list_of({"1.1.1.1", "2.2.2.2", "3.3.3.3"});
    EXPECT_STREQ(v.to_text(), "1.1.1.1, 2.2.2.2, 3.3.3.3");
    EXPECT_EQ(v.strings, nullptr);
    EXPECT_STREQ(v.to_text(), ""); // kind 0: the text is the caller's, as ever
}

TEST(XmcValue, AnInvalidListReadsAsEmptyAndStays) {
    xmc_value_c v("before");
    v.strings = list_of({"a"});
    v.strings->valid = 0;
    EXPECT_STREQ(v.to_text(), "");
    ASSERT_NE(v.strings, nullptr);
    EXPECT_EQ(v.strings->get_count(), 1u);
}

TEST(XmcValue, SetTextDropsTheList) {
    xmc_value_c v;
    v.strings = list_of({"a"});
    v.set_text("x");
    EXPECT_EQ(v.strings, nullptr);
}

TEST(XmcValue, ClearEmptiesEverythingAndKeepsAnEmptyList) {
    xmc_value_c v("abc");
    v.strings = list_of({"a", "b"});
    v.strings->valid = 0;
    v.type_name = "Text";
    v.lookup_failed = 1;
    v.error_text.append("words");
    v.clear();
    EXPECT_EQ(v.get_type(), value_c::type_undefined);
    EXPECT_TRUE(v.get_error());
    EXPECT_EQ(v.error_text.get_length(), 0u);
    EXPECT_EQ(v.lookup_failed, 0);
    EXPECT_EQ(v.type_name, nullptr);
    ASSERT_NE(v.strings, nullptr);
    EXPECT_EQ(v.strings->get_count(), 0u);
    EXPECT_EQ(v.strings->valid, 1);
}

TEST(XmcValue, StringArrayClearMakesItValidAgain) {
    xmc_string_array_c list;
    list.add("a");
    list.valid = 0;
    EXPECT_FALSE(list.is_valid());
    list.clear();
    EXPECT_TRUE(list.is_valid());
    EXPECT_TRUE(list.is_empty());
}

TEST(XmcValue, StringArrayCopyKeepsValid) {
    xmc_string_array_c list;
    list.add("a");
    list.add("b");
    list.valid = 0;
    xmc_string_array_c copy(list);
    EXPECT_EQ(copy.valid, 0);
    ASSERT_EQ(copy.get_count(), 2u);
    EXPECT_STREQ(copy.at(1), "b");
}

// ---- equality and the list of values ----------------------------------------------------------

TEST(XmcValue, EqualsComparesTheToStringTexts) {
    xmc_value_c a("12"), b(12), c("12 ");
    EXPECT_TRUE(a.equals(b));
    EXPECT_FALSE(a.equals(c));
    xmc_value_c empty, also_empty("");
    EXPECT_TRUE(empty.equals(also_empty));
}

TEST(XmcValue, ValueListSearchesByEquals) {
    value_list_ct<xmc_value_c> list;
    list.append(xmc_value_c("a"));
    list.append(xmc_value_c(7));
    EXPECT_EQ(list.get_count(), 2u);
    EXPECT_TRUE(list.find(xmc_value_c("7")));
    EXPECT_EQ(list.get_index(xmc_value_c("a")), 0u);
    EXPECT_FALSE(list.find(xmc_value_c("b")));
}

TEST(XmcValue, LookupFailureLeavesTheReasonAlone) {
    xmc_value_c v("x");
    v.to_int();
    v.report_lookup_failure("Unable to find property");
    EXPECT_EQ(v.lookup_failed, 1);
    EXPECT_EQ(words(v), "Unable to find property");
}
