// utl_n: small text helpers shared by every layer.
#pragma once

#include "platform/os.h"

#include <cstddef>
#include <cstdint>

class utl_stream_c;

namespace utl_n {

// 0 when `b` begins with `a`, without regard to case; also 0 when either is null.
int utf8_prefix_strnicmp(const char* a, const char* b);

// -1, 0 or 1: the order of the two texts after both are lower-cased.
int uni_stricmp(const os::wide_char* a, const os::wide_char* b);

// A new block (global new[]) with a copy of `text`, or null for a null text. With `round_size`
// the block is the first of 16, 32, 64, 256 or 1024 bytes that holds the copy; beyond 1024 it
// is exact. The caller deletes it.
char* str_copy(const char* text, bool round_size);
// The same with `length` bytes of `text` and a terminator after them.
char* str_strncopy(const char* text, std::size_t length, bool round_size);
// Replaces the block of `field` by an exact copy of `text` (null for a null text).
void str_replace_copy(char*& field, const char* text);
// The size of the block that str_strncopy makes for `length` bytes.
std::size_t str_block_size(std::size_t length, bool round_size);

void set_last_error(unsigned int code);
// Appends the system's text of `code` (the last error for a code below 1) and "(code)" to `out`;
// returns the text of `out`.
const char* format_last_error(utl_stream_c& out, unsigned int code);

std::uint64_t i32x32to64(std::uint32_t low, std::uint32_t high);
void i64to32x32(std::uint64_t value, std::uint32_t& low, std::uint32_t& high);

// The total bytes of the volume that holds `path`, for this user.
bool get_total_bytes_of_path(const char* path, std::int64_t* total);
// Cluster and sector size in bytes of the volume that holds `path`.
bool get_cluster_and_sector_size(const char* path, unsigned int* cluster_size,
                                 unsigned int* sector_size);

// "a.b.c.d" as a number with a in the top byte; 0 for anything else.
std::uint32_t string_to_ip(const char* text);

} // namespace utl_n
