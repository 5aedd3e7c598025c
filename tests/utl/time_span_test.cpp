// date_time_c::convert_filetime_to_time_t: file times (100-nanosecond steps since 1601) as
// seconds since 1970, computed with unsigned numbers.
#include "utl/time_span.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

// 1970-01-01 as a file time.
constexpr std::uint64_t epoch_1970 = 116444736000000000ull;
constexpr std::uint64_t steps_per_second = 10000000ull;

std::uint64_t seconds_of(std::uint64_t file_time) {
    return date_time_c::convert_filetime_to_time_t(&file_time);
}

TEST(ConvertFiletimeToTimeT, StartOf1970IsZero) { EXPECT_EQ(seconds_of(epoch_1970), 0u); }

TEST(ConvertFiletimeToTimeT, OneSecondAfter1970IsOne) {
    EXPECT_EQ(seconds_of(epoch_1970 + steps_per_second), 1u);
}

TEST(ConvertFiletimeToTimeT, KnownDates) {
    // 2000-01-01 00:00:00 UTC and 2100-01-01 00:00:00 UTC, the latter beyond 32 bits of seconds.
    EXPECT_EQ(seconds_of(125911584000000000ull), 946684800u);
    EXPECT_EQ(seconds_of(157469184000000000ull), 4102444800u);
}

TEST(ConvertFiletimeToTimeT, FractionsOfASecondAreCutOff) {
    EXPECT_EQ(seconds_of(epoch_1970 + steps_per_second - 1), 0u);
    EXPECT_EQ(seconds_of(epoch_1970 + 2 * steps_per_second - 1), 1u);
    EXPECT_EQ(seconds_of(133444736009999999ull), 1700000000u);
}

TEST(ConvertFiletimeToTimeT, TimeBefore1970GivesAHugeValueNotANegativeOne) {
    // The subtraction wraps around: (2^64 - steps) / 10^7.
    EXPECT_EQ(seconds_of(epoch_1970 - 1), 1844674407370u);
    EXPECT_EQ(seconds_of(epoch_1970 - steps_per_second), 1844674407369u);
    EXPECT_EQ(seconds_of(0), 1833029933770u);
    // No signed -1 in disguise either.
    EXPECT_NE(static_cast<std::int64_t>(seconds_of(epoch_1970 - steps_per_second)), -1);
}

TEST(ConvertFiletimeToTimeT, LargestFileTime) {
    EXPECT_EQ(seconds_of(0xFFFFFFFFFFFFFFFFull), 1833029933770u);
}

TEST(ConvertFiletimeToTimeT, LeavesItsArgumentAlone) {
    const std::uint64_t file_time = epoch_1970 + 42 * steps_per_second;
    EXPECT_EQ(date_time_c::convert_filetime_to_time_t(&file_time), 42u);
    EXPECT_EQ(file_time, epoch_1970 + 42 * steps_per_second);
}

} // namespace
