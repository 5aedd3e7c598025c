// sys_info_c: a description of the local system, made when the library loads. Nothing in the
// library fills or reads its fields after construction.
#pragma once

#include "utl/utl_stream.h"

#include <cstdint>

class sys_info_data_c {
  public:
    virtual ~sys_info_data_c() = default;

    std::uint32_t os_code = 36;
    std::uint32_t number = 1;
    utl_stream_c first_text;
    std::uint32_t word = 0;
    std::uint16_t half1 = 0;
    std::uint16_t half2 = 0;
    utl_stream_c second_text;
};

class sys_info_c : public sys_info_data_c {
  public:
    std::uint32_t extra = 0;
    utl_stream_c third_text;
    std::uint64_t numbers[5] = {};
};

// The one instance; null, and said loudly, before the library has started.
sys_info_c* the_sys_info();
// Start-up step: makes the instance, which lives as long as the library; tear-down frees it, so
// that a process that loads and unloads the library many times loses nothing.
void start_sys_info();
void stop_sys_info();
