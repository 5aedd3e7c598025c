#include "utl/time_span.h"

namespace {
constexpr std::uint64_t steps_from_1601_to_1970 = 116444736000000000ull;
constexpr std::uint64_t steps_per_second = 10000000ull;
} // namespace

std::uint64_t date_time_c::convert_filetime_to_time_t(const std::uint64_t* file_time) {
    return (*file_time - steps_from_1601_to_1970) / steps_per_second;
}
