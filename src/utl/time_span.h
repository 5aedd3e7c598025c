// date_time_c: conversions of time values.
#pragma once

#include <cstdint>

class date_time_c {
  public:
    // Seconds since 1970 of a file time (100-nanosecond steps since 1601), as unsigned numbers:
    // a time before 1970 gives a huge value, not a negative one.
    static std::uint64_t convert_filetime_to_time_t(const std::uint64_t* file_time);
};
