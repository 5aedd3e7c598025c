// xmc_enum_c::data_fits_type: the gate through which a text becomes a value of a template type,
// one rule per type.
#include "configuration/xmc_enums.h"

#include "common/child_process.h"
#include "common/test_support.h"
#include "platform/os.h"
#include "xml/xml_item.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>

using namespace xmc_enums_n;

namespace {

bool fits(const char* text, std::uint32_t type, std::uint32_t enum_index = 16,
          const xml_item_c* item = nullptr) {
    return xmc_enum_c::data_fits_type(text, type, enum_index, item);
}

bool date(const char* text) { return fits(text, xmc_n::type_date); }

// Sets TZ for the life of the object and the runtime's idea of the zone with it.
class time_zone_c {
  public:
    explicit time_zone_c(const char* zone) {
        const char* old = std::getenv("TZ");
        _had = old != nullptr;
        if (old) _old = old;
        set(zone);
    }
    ~time_zone_c() {
        if (_had)
            set(_old.c_str());
        else
            unset();
    }
    time_zone_c(const time_zone_c&) = delete;
    time_zone_c& operator=(const time_zone_c&) = delete;

    static void set(const char* zone) {
#if defined(_WIN32)
        _putenv((std::string("TZ=") + zone).c_str());
        _tzset();
#else
        setenv("TZ", zone, 1);
        tzset();
#endif
    }
    static void unset() {
#if defined(_WIN32)
        _putenv("TZ=");
        _tzset();
#else
        unsetenv("TZ");
        tzset();
#endif
    }

  private:
    bool _had = false;
    std::string _old;
};

// Whether the runtime applies daylight saving time under the zone now set: a day in July in
// daylight time and one in January in standard time.
bool zone_has_daylight_saving() {
    std::tm july{};
    july.tm_year = 2013 - 1900;
    july.tm_mon = 6;
    july.tm_mday = 15;
    july.tm_hour = 12;
    july.tm_isdst = -1;
    std::tm january = july;
    january.tm_mon = 0;
    std::mktime(&july);
    std::mktime(&january);
    return july.tm_isdst > 0 && january.tm_isdst == 0;
}

// Seconds since 1970 of local midnight of that day, as the date rule computes it.
std::int64_t local_midnight(int day, int month, int year) {
    std::tm t{};
    t.tm_mday = day;
    t.tm_mon = month - 1;
    t.tm_year = year - 1900;
    t.tm_isdst = -1;
    return os::mktime64(&t);
}

// The dates whose answers are the same in every zone: a wildcard year is a leap year, a
// wildcard day needs no calendar, and days that no calendar has.
void expect_the_listed_dates() {
    EXPECT_TRUE(date("29 Feb ANY"));
    EXPECT_TRUE(date("ANY:ANY:2013"));
    EXPECT_FALSE(date("29 Feb 2013"));
    EXPECT_FALSE(date("ANY ANY ANY"));
    EXPECT_FALSE(date("31 4 2013"));
}

} // namespace

// ---- Enum -------------------------------------------------------------------------------------

TEST(DataFitsType, EnumFindsTheItem) {
    EXPECT_TRUE(fits("Ha", xmc_n::type_enum, enum_product));
    EXPECT_FALSE(fits("ha", xmc_n::type_enum, enum_product));
    EXPECT_FALSE(fits("", xmc_n::type_enum, enum_product));
    EXPECT_FALSE(fits("Ha", xmc_n::type_enum, enum_none));
}

TEST(DataFitsType, BandwidthAcceptsUnlimitedAndAnyWholeNumber) {
    EXPECT_TRUE(fits("Unlimited", xmc_n::type_enum, enum_bandwidth));
    EXPECT_TRUE(fits("56.0", xmc_n::type_enum, enum_bandwidth));
    EXPECT_TRUE(fits("77", xmc_n::type_enum, enum_bandwidth));
    EXPECT_TRUE(fits("77.anything", xmc_n::type_enum, enum_bandwidth));
    EXPECT_FALSE(fits("unlimited", xmc_n::type_enum, enum_bandwidth));
    EXPECT_FALSE(fits(".5", xmc_n::type_enum, enum_bandwidth));
    EXPECT_FALSE(fits("abc.0", xmc_n::type_enum, enum_bandwidth));
}

TEST(DataFitsType, BandwidthOfThirtyTwoCharactersOrMoreFails) {
    std::string thirty_one(31, '1');
    EXPECT_FALSE(fits(thirty_one.c_str(), xmc_n::type_enum, enum_bandwidth)); // beyond 64 bits
    std::string short_number = "1." + std::string(29, '0');
    EXPECT_EQ(short_number.size(), 31u);
    EXPECT_TRUE(fits(short_number.c_str(), xmc_n::type_enum, enum_bandwidth));
    std::string longer = "1." + std::string(30, '0');
    EXPECT_FALSE(fits(longer.c_str(), xmc_n::type_enum, enum_bandwidth));
}

// ---- Number, Bool, String, Text ---------------------------------------------------------------

TEST(DataFitsType, NumberIsWhatTheIntegerParseAccepts) {
    EXPECT_TRUE(fits("42", xmc_n::type_number));
    EXPECT_TRUE(fits("-42", xmc_n::type_number));
    EXPECT_TRUE(fits(" 7 ", xmc_n::type_number));
    EXPECT_TRUE(fits("0x1F", xmc_n::type_number));
    EXPECT_TRUE(fits("18446744073709551615", xmc_n::type_number));
    EXPECT_FALSE(fits("18446744073709551616", xmc_n::type_number));
    EXPECT_FALSE(fits("4.5", xmc_n::type_number));
    EXPECT_FALSE(fits("", xmc_n::type_number));
    EXPECT_FALSE(fits(nullptr, xmc_n::type_number));
}

TEST(DataFitsType, TrueInLowerCaseFitsNoBool) {
    EXPECT_TRUE(fits("True", xmc_n::type_bool));
    EXPECT_TRUE(fits("False", xmc_n::type_bool));
    EXPECT_FALSE(fits("true", xmc_n::type_bool));
    EXPECT_FALSE(fits("false", xmc_n::type_bool));
    EXPECT_FALSE(fits("True ", xmc_n::type_bool));
    EXPECT_FALSE(fits("", xmc_n::type_bool));
}

TEST(DataFitsType, StringNeedsOneCharacterThatIsNoWhiteSpace) {
    EXPECT_TRUE(fits("a", xmc_n::type_string));
    EXPECT_TRUE(fits(" \t x\n", xmc_n::type_string));
    EXPECT_FALSE(fits(" \t\n\r\v\f", xmc_n::type_string));
    EXPECT_FALSE(fits("", xmc_n::type_string));
}

TEST(DataFitsType, TextIsAlwaysAccepted) {
    EXPECT_TRUE(fits("", xmc_n::type_text));
    EXPECT_TRUE(fits(nullptr, xmc_n::type_text));
    EXPECT_TRUE(fits("anything at all", xmc_n::type_text));
}

// The value rules that take an empty text: Text, DefFullPath, IPAddr and IPAdrMask. Whether an
// empty `val` is in order in a stored scenario is the validation's business, which lets it pass
// only on Text and DefFullPath.
TEST(DataFitsType, AnEmptyTextFitsTextDefFullPathIpAddrAndIpAdrMaskOnly) {
    for (std::uint32_t type = xmc_n::type_enum; type <= xmc_n::type_multi_entry; ++type) {
        bool expected = type == xmc_n::type_text || type == xmc_n::type_def_full_path ||
                        type == xmc_n::type_ip_addr || type == xmc_n::type_ip_adr_mask;
        for (std::uint32_t e : {enum_product, enum_bandwidth, enum_none})
            EXPECT_EQ(fits("", type, e), expected) << xmc_n::type_names[type] << " " << e;
    }
}

// ---- paths ------------------------------------------------------------------------------------

TEST(DataFitsType, FullPathStartingWithInstallTmpPasses) {
    EXPECT_TRUE(fits("[INSTALL_TMP]/scripts/a.cmd", xmc_n::type_full_path));
    EXPECT_TRUE(fits("[INSTALL_TMP]/", xmc_n::type_full_path));
}

TEST(DataFitsType, FullPathWithAnyOtherBracketFails) {
    EXPECT_FALSE(fits("[INSTALL_TMP]\\a", xmc_n::type_full_path));
    EXPECT_FALSE(fits("[install_tmp]/a", xmc_n::type_full_path));
    EXPECT_FALSE(fits("[", xmc_n::type_full_path));
}

TEST(DataFitsType, FullPathMustBeFullAndNotEmpty) {
    EXPECT_TRUE(fits("C:/data", xmc_n::type_full_path));
    EXPECT_TRUE(fits("C:\\data", xmc_n::type_full_path));
    EXPECT_TRUE(fits("\\\\server\\share", xmc_n::type_full_path));
    EXPECT_TRUE(fits("/srv/data", xmc_n::type_full_path));
    EXPECT_FALSE(fits("data/file", xmc_n::type_full_path));
    EXPECT_FALSE(fits("C:data", xmc_n::type_full_path));
    EXPECT_FALSE(fits("", xmc_n::type_full_path));
}

TEST(DataFitsType, DefFullPathIsEmptyOrFull) {
    EXPECT_TRUE(fits("", xmc_n::type_def_full_path));
    EXPECT_TRUE(fits("D:/x", xmc_n::type_def_full_path));
    EXPECT_FALSE(fits("x", xmc_n::type_def_full_path));
    EXPECT_FALSE(fits("[INSTALL_TMP]/x", xmc_n::type_def_full_path));
}

// ---- addresses --------------------------------------------------------------------------------

TEST(DataFitsType, IpAddress) {
    EXPECT_TRUE(fits("", xmc_n::type_ip_addr));
    EXPECT_TRUE(fits("10.0.0.1", xmc_n::type_ip_addr));
    EXPECT_TRUE(fits("255.255.255.255", xmc_n::type_ip_addr));
    EXPECT_TRUE(fits(" 1. 2. 3. 4", xmc_n::type_ip_addr)); // "%u" skips blanks
    EXPECT_FALSE(fits("256.0.0.1", xmc_n::type_ip_addr));
    EXPECT_FALSE(fits("1.2.3", xmc_n::type_ip_addr));
    EXPECT_FALSE(fits("1.2.3.4 ", xmc_n::type_ip_addr)); // a trailing character
    EXPECT_FALSE(fits("1.2.3.4x", xmc_n::type_ip_addr));
    EXPECT_FALSE(fits("1 .2.3.4", xmc_n::type_ip_addr));
    EXPECT_FALSE(fits("-1.2.3.4", xmc_n::type_ip_addr));
}

TEST(DataFitsType, ZeroAddressFailsExceptUnderDataIp) {
    EXPECT_FALSE(fits("0.0.0.0", xmc_n::type_ip_addr));
    xml_item_c data_ip("data");
    data_ip.set_attribute("label", "Data_IP");
    EXPECT_TRUE(fits("0.0.0.0", xmc_n::type_ip_addr, 16, &data_ip));
    xml_item_c ip("data");
    ip.set_attribute("label", "IP");
    EXPECT_FALSE(fits("0.0.0.0", xmc_n::type_ip_addr, 16, &ip));
}

TEST(DataFitsType, TextAbcUnderDataIpPasses) {
    xml_item_c data_ip("data");
    data_ip.set_attribute("label", "Data_IP");
    EXPECT_TRUE(fits("abc", xmc_n::type_ip_addr, 16, &data_ip));
    EXPECT_FALSE(fits("abc", xmc_n::type_ip_addr));
    EXPECT_FALSE(fits("1.abc", xmc_n::type_ip_addr, 16, &data_ip));
}

TEST(DataFitsType, AddressAndMask) {
    EXPECT_TRUE(fits("", xmc_n::type_ip_adr_mask));
    EXPECT_TRUE(fits("10.0.0.1/255.255.0.0", xmc_n::type_ip_adr_mask));
    EXPECT_TRUE(fits("10.0.0.1/255.255.255.255", xmc_n::type_ip_adr_mask));
    EXPECT_TRUE(fits("10.0.0.1/128.0.0.0", xmc_n::type_ip_adr_mask));
    EXPECT_TRUE(fits("10.0.0.1/255.255.0.0 and more", xmc_n::type_ip_adr_mask));
    EXPECT_FALSE(fits("10.0.0.1/255.0.255.0", xmc_n::type_ip_adr_mask));
    EXPECT_FALSE(fits("0.0.0.0/255.0.0.0", xmc_n::type_ip_adr_mask));
    EXPECT_FALSE(fits("10.0.0.1/0.0.0.0", xmc_n::type_ip_adr_mask));
    EXPECT_FALSE(fits("10.0.0.1/256.0.0.0", xmc_n::type_ip_adr_mask));
    EXPECT_FALSE(fits("10.0.0.1", xmc_n::type_ip_adr_mask));
    EXPECT_FALSE(fits("10.0.0.1/255.255.0", xmc_n::type_ip_adr_mask));
}

// ---- dates ------------------------------------------------------------------------------------

TEST(DataFitsType, DatesWithWildcardsThatPass) {
    time_zone_c zone("UTC0");
    EXPECT_TRUE(date("29 Feb ANY"));
    EXPECT_TRUE(date("ANY:ANY:2013"));
    EXPECT_TRUE(date("ANY Jan ANY"));
    EXPECT_TRUE(date("15:ANY:2013"));
    EXPECT_TRUE(date("31 ANY 2013"));
}

TEST(DataFitsType, DatesThatFail) {
    time_zone_c zone("UTC0");
    EXPECT_FALSE(date("29 Feb 2013"));
    EXPECT_FALSE(date("ANY ANY ANY"));
    EXPECT_FALSE(date("31 4 2013"));
    EXPECT_FALSE(date("ANY:ANY:ANY"));
    EXPECT_FALSE(date(""));
}

TEST(DataFitsType, DateSeparatorsAndForms) {
    time_zone_c zone("UTC0");
    EXPECT_TRUE(date("1:2:2013"));
    EXPECT_TRUE(date("1.2.2013"));
    EXPECT_TRUE(date("1:2.2013"));
    EXPECT_TRUE(date("29.2.2012"));
    EXPECT_TRUE(date("1 Dec 2013"));
    EXPECT_TRUE(date("1 12 2013"));
    EXPECT_FALSE(date("1:2"));        // no second separator
    EXPECT_FALSE(date("1:Jan:2013")); // names only in the form with blanks
    EXPECT_FALSE(date("1 jan 2013")); // names are exact
    EXPECT_FALSE(date("1 2013"));     // two words
    EXPECT_FALSE(date("1 2 2013 x")); // four words
    EXPECT_FALSE(date("1 :2:2013"));  // "%d%c" converts two
    EXPECT_FALSE(date("0 Jan 2013"));
    EXPECT_FALSE(date("1 13 2013"));
    EXPECT_FALSE(date("1 Jan 1900"));
    EXPECT_FALSE(date("any Jan 2013"));
}

TEST(DataFitsType, DateYearOfANYIsTakenAsALeapYear) {
    time_zone_c zone("UTC0");
    EXPECT_TRUE(date("29:2:ANY"));
    EXPECT_FALSE(date("30:2:ANY"));
}

TEST(DataFitsType, DatesOutsideTheRuntimesRangeFail) {
    time_zone_c zone("UTC0");
    EXPECT_FALSE(date("1 Jan 1960")); // before 1970: no time, and today is another day
    EXPECT_FALSE(date("1 Jan 1970")); // time 0 counts as none
    EXPECT_TRUE(date("2 Jan 1970"));
    EXPECT_TRUE(date("31 Dec 3000"));
    EXPECT_FALSE(date("1 Jan 3001"));
    EXPECT_TRUE(date("ANY Jan 1950")); // nothing to check without a day
}

TEST(DataFitsType, DateRuleInAFixedZone) {
    time_zone_c zone("UTC0");
    // The runtime took the zone: local midnight is UTC midnight, winter and summer.
    ASSERT_EQ(local_midnight(1, 1, 2013), 1356998400);
    ASSERT_EQ(local_midnight(15, 7, 2013), 1373846400);
    expect_the_listed_dates();
    for (const char* d : {"28 Feb 2013", "29 Feb 2012", "30 Apr 2013", "31 Dec 2013", "31 Mar 2013",
                          "27 Oct 2013", "10 Mar 2013", "3 Nov 2013"})
        EXPECT_TRUE(date(d)) << d;
    for (const char* d : {"29 Feb 2100", "31 Jun 2013", "31 Sep 2013", "31 Nov 2013"})
        EXPECT_FALSE(date(d)) << d;
}

#if defined(_WIN32)
namespace {

constexpr const char* daylight_child_marker = "STATS_MNG_DAYLIGHT_CHILD";
constexpr const char* daylight_test_name = "DataFitsType.DateRuleInAZoneWithDaylightSaving";

// Runs the daylight saving test again in a child process that starts with TZ=EST5EDT (the
// parent's TZ at this moment) in its environment. Gives the child's output, empty when it could
// not be run.
std::string run_daylight_test_in_a_child(int& exit_code) {
    test_support::temp_dir_c dir;
    std::string output = dir.join("daylight.log");
    _putenv((std::string(daylight_child_marker) + "=1").c_str());
    std::string said;
    {
        test_support::child_process_c child(
            {os::executable_path(), std::string("--gtest_filter=") + daylight_test_name}, output);
        exit_code = child.started() ? child.wait(120000) : -1;
        if (child.started() && exit_code == -1) child.kill();
        said = child.started() ? child.output() : std::string();
    }
    _putenv((std::string(daylight_child_marker) + "=").c_str());
    return said;
}

} // namespace
#endif

// US rules switch at 2:00, so every midnight exists; the transition days themselves pass.
TEST(DataFitsType, DateRuleInAZoneWithDaylightSaving) {
    time_zone_c zone("EST5EDT");
    if (!zone_has_daylight_saving()) {
#if defined(_WIN32)
        // Wine's msvcrt keeps the daylight rules of the system zone once it has read them with
        // TZ unset (a time function before this test does), and a TZ set later brings its offset
        // but no daylight time. A process that starts with TZ set applies it: run there.
        if (!std::getenv(daylight_child_marker)) {
            int exit_code = -1;
            std::string said = run_daylight_test_in_a_child(exit_code);
            ASSERT_FALSE(said.empty()) << "the child process did not run";
            std::size_t skipped = said.find("Skipped\n");
            if (skipped != std::string::npos && exit_code == 0) {
                std::size_t end = said.find('\n', skipped + 8);
                GTEST_SKIP() << "also in a process started with TZ=EST5EDT: "
                             << said.substr(skipped + 8, end - skipped - 8);
            }
            EXPECT_EQ(exit_code, 0) << said;
            EXPECT_NE(said.find(std::string("[       OK ] ") + daylight_test_name),
                      std::string::npos)
                << said;
            return;
        }
#endif
        GTEST_SKIP() << "this C runtime applies no daylight saving time under TZ=EST5EDT";
    }
    // Five hours behind UTC in winter, four in summer.
    EXPECT_EQ(local_midnight(1, 1, 2013), 1356998400 + 5 * 3600);
    EXPECT_EQ(local_midnight(15, 7, 2013), 1373846400 + 4 * 3600);
    expect_the_listed_dates();
    for (const char* d : {"10 Mar 2013", "3 Nov 2013", "9 Mar 2014", "2 Nov 2014", "29 Feb 2012",
                          "15 Jul 2013", "31 Dec 2013", "1 Jan 2014"})
        EXPECT_TRUE(date(d)) << d;
    for (const char* d : {"29 Feb 2013", "31 Apr 2013", "1 Jan 1960"}) EXPECT_FALSE(date(d)) << d;
}

// ---- MultiEntry and the types that are no types -----------------------------------------------

TEST(DataFitsType, MultiEntryNamesATypeAnEnumerationOrAnId) {
    for (const char* t : {"String", "Date", "IPAddr", "IPAdrMask", "Text", "Number", "Any",
                          "Application", "3010", "8020", "4460", " 12 "})
        EXPECT_TRUE(fits(t, xmc_n::type_multi_entry)) << t;
    for (const char* t : {"string", "", "12a", "RootDir"})
        EXPECT_FALSE(fits(t, xmc_n::type_multi_entry)) << t;
    EXPECT_FALSE(fits(nullptr, xmc_n::type_multi_entry));
}

TEST(DataFitsType, AnyAndUnknownTypesAreRefusedWithATraceLine) {
    test_support::trace_capture_c trace;
    EXPECT_FALSE(fits("x", xmc_n::type_any));
    EXPECT_FALSE(fits("x", xmc_n::type_unknown));
    EXPECT_FALSE(fits("x", 0xFFFFFFFFu));
    std::string text = trace.text();
    EXPECT_NE(test_support::trace_line(text, "Invalid type value \"11\""), "");
    EXPECT_NE(test_support::trace_line(text, "Invalid type value \"12\""), "");
    EXPECT_NE(test_support::trace_line(text, "Invalid type value \"4294967295\""), "");
}
