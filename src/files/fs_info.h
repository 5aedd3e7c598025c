// file_system_info_n: what the system says about volumes and file systems.
#pragma once

#include <cstdint>

namespace file_system_info_n {

// The name of the volume mounted at `path` (a drive root or a mount-point directory), in UTF-8;
// non-zero on success. `out` holds a path buffer. On POSIX the volume's name is the device that
// is mounted there, as the system's table of mounts names it.
std::uint32_t get_volume_name_for_volume_mount_point(const char* path, char* out);

} // namespace file_system_info_n
