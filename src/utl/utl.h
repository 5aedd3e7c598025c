// utl_n: small text helpers shared by every layer.
#pragma once

#include "platform/os.h"

namespace utl_n {

// 0 when `b` begins with `a`, without regard to case; also 0 when either is null.
int utf8_prefix_strnicmp(const char* a, const char* b);

// -1, 0 or 1: the order of the two texts after both are lower-cased.
int uni_stricmp(const os::wide_char* a, const os::wide_char* b);

} // namespace utl_n
