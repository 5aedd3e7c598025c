// What happens to a path before it reaches the system's open call: a volume pseudo-file name
// becomes a device path, and an object whose short name collides with a new file's long name is
// moved aside for the time of the open.
#pragma once

#include "platform/os.h"

class utl_stream_c;

// `out` becomes `src` with every '/' turned into '\'.
void to_backslash_path(const char* src, utl_stream_c& out);

// 1 when `path` named a volume pseudo-file ("...$$qv-volume") and now names the volume's device;
// 0, with `path` unchanged, otherwise.
int strip_qv_volume_suffix(utl_stream_c& path);
// Whether the path ends with the volume pseudo-file's name: the test that strip_qv_volume_suffix
// makes first, without a copy of the path.
bool names_qv_volume(const char* path);
// The same on a wide path buffer of 4096 units.
int strip_qv_volume_suffix_wide(os::wide_char* path);

// While it lives, an object whose short name equals the long name of a file about to be made
// is moved to "<n>.qvx" in its directory; the destructor moves it back, and the system gives it a
// new short name then. On POSIX there are no short names: GetLongPathNameW gives every name
// back unchanged, so no collision is ever found and nothing is moved.
struct reserve_short_path_name_s {
    reserve_short_path_name_s(const char* path, os::DWORD disposition, void* transaction);
    ~reserve_short_path_name_s();
    reserve_short_path_name_s(const reserve_short_path_name_s&) = delete;
    reserve_short_path_name_s& operator=(const reserve_short_path_name_s&) = delete;

    os::wide_char* long_name = nullptr;
    os::wide_char* temp_name = nullptr;
    bool is_renamed = false;
    void* transaction = nullptr;
};
