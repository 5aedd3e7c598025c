// file_system_info_n: what the system says about volumes and file systems.
#pragma once

#include <cstdint>

class ptr_list_c;
class thl_crit_section_c;

namespace file_system_info_n {

// File-system families, by the codes of the letters 'F', 'N', 'E', '?' and '-'.
inline constexpr std::uint32_t fs_fat = 70;
inline constexpr std::uint32_t fs_ntfs = 78;
inline constexpr std::uint32_t fs_refs = 69;
inline constexpr std::uint32_t fs_other = 63;
inline constexpr std::uint32_t fs_unknown = 45;

// What the system says about one drive.
class drive_info_c {
  public:
    drive_info_c() = default;
    virtual ~drive_info_c();
    drive_info_c(const drive_info_c&) = delete;
    drive_info_c& operator=(const drive_info_c&) = delete;

    void clear();
    // Asks the system about the drive whose root is `path`; false for removable, optical and
    // unknown drives.
    bool init(const char* path);

    char* drive_name = nullptr;
    char* volume_name = nullptr;
    std::uint32_t fs_code = fs_unknown;
    std::uint32_t fs_flags = 0;
    std::uint32_t bytes_per_sector = 0;
    std::uint32_t drive_type = 0;
    char* device_name = nullptr;
};

// The family of the file system under `path`; fs_unknown without a drive list.
std::uint32_t drive_file_system_code(const char* path);
// Whether the drive under `path` can compress files; false without a drive list.
bool drive_supports_compression(const char* path);

// The list of drives seen so far (a ptr_list_c of drive_info_c), which its owner makes empty at
// start; the library makes none, and without one the queries give their defaults.
void set_drive_list(ptr_list_c* list);
// The code shared by every known drive, or fs_unknown when they differ or none is known.
std::uint32_t common_fs_code();

// Start-up and tear-down of the critical section around the drive list.
void start_drive_list_lock();
void stop_drive_list_lock();

// Names that the engine treats as the system's own: file aliases, and directories by
// operating-system family.
struct system_file_alias_s {
    const char* alias;
    const char* file;
};
struct system_dir_s {
    std::uint32_t low_os;
    std::uint32_t high_os;
    const char* names[2];
    std::uint32_t number;
};
extern const system_file_alias_s system_file_aliases[2];
extern const system_dir_s system_dir_table[10];

// The name of the volume mounted at `path` (a drive root or a mount-point directory), in UTF-8;
// non-zero on success. `out` holds a path buffer. On POSIX the volume's name is the device that
// is mounted there, as the system's table of mounts names it.
std::uint32_t get_volume_name_for_volume_mount_point(const char* path, char* out);

} // namespace file_system_info_n
