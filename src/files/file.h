// path_n: every rule about the spelling of a path. Inside the library a path is UTF-8 with
// forward slashes; at the system's boundary it is UTF-16 with backslashes and a long-path
// prefix. Narrow path buffers hold 4096 bytes, wide ones 4096 units.
#pragma once

#include "platform/os.h"

#include <cstddef>

namespace path_n {

using wide_char = os::wide_char;

inline constexpr std::size_t path_buffer_size = 4096;
inline constexpr std::size_t longest_path = path_buffer_size - 1;
inline constexpr const char* volume_pseudo_file = "$$qv-volume";
inline constexpr std::size_t volume_pseudo_file_length = 11;
inline constexpr std::size_t volume_guid_path_length = 48;
inline constexpr std::size_t shadow_copy_prefix_length = 46;
inline constexpr const char* shadow_copy_prefix =
    "\\\\?\\GLOBALROOT\\Device\\HarddiskVolumeShadowCopy";

// Forward slashes, one separator at a time, no trailing separator (but for a drive root),
// the long prefix dropped on demand, "." and ".." resolved. `dst` holds 4096 bytes.
void standard_dir_path(const char* src, char* dst, bool strip_long_prefix);
// Resolves "." and ".." segments in place; a ".." with nothing before it abandons the work.
void _normalize_path(char* path);

// The wide form for a system call, with the long-path prefix on demand; empty on failure.
void path_to_wide_char_path(const char* src, wide_char* dst, bool add_long_prefix);
void wide_char_path_to_path(const wide_char* src, char* dst);

// True when this spelling is only the short name of an object with another long name.
// On a system without short names it is always false.
bool is_short_name(const char* path);
bool drive_name_from_path(const char* src, char* dst);
bool is_full_path_name(const char* path);
bool is_file_in_dir(const char* file, const char* dir, bool case_sensitive);
bool is_stream_in_path(const char* file, const char* stream_path);
bool stream_path_to_file(const char* src, char* dst);
// `dst`, holding the shadow-copy device without what lies below it, or null.
char* get_root_volumeshadowcopy(const char* src, char* dst);

} // namespace path_n

bool is_volume_guid_path(const char* path, bool allow_rest);
bool is_volumeshadowcopy_path(const char* path);
// True when the system names this path as the root of its volume. On POSIX: the mount point that
// holds the path, in the form that GetVolumePathNameW gives, equals the path (so "/" is a root).
bool is_volume_mount_root(const char* path);
