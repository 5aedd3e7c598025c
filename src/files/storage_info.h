// storage_info_n: the boot sector of a volume read and changed in memory, and the volume resized.
// A boot sector holds little-endian fields; only those named here are read or written.
#pragma once

#include "platform/os.h"

#include <cstdint>

// The disk that a boot sector is fitted to.
struct boot_sector_target_s {
    os::DISK_GEOMETRY geometry;
    os::wide_char file_system_name[16];
    bool consistent;
};

namespace storage_info_n {

inline constexpr std::uint32_t boot_sector_min_size = 512;
inline constexpr std::uint16_t boot_signature = 0xAA55;
// The engine's mark of a volume whose contents are not consistent, in place of the signature.
inline constexpr std::uint16_t inconsistency_marker = 0x5156;

// Offsets of the fields within the boot sector.
inline constexpr std::uint32_t bytes_per_sec_offset = 11;
inline constexpr std::uint32_t sectors_per_cluster_offset = 13;
inline constexpr std::uint32_t sectors_per_track_offset = 24;
inline constexpr std::uint32_t heads_offset = 26;
inline constexpr std::uint32_t hidden_sectors_offset = 28;
inline constexpr std::uint32_t total_sectors_32_offset = 32;
inline constexpr std::uint32_t total_sectors_64_offset = 40;
inline constexpr std::uint32_t signature_offset = 510;

// Fits `boot_sector` (of `size` bytes) to the target's geometry and the original's cluster size
// and hidden sectors, and sets its signature from `consistent`. 1 changed, 0 already right,
// -1 unsupported file system, -2 sector too small (or missing).
std::int32_t correct_boot_sector(std::uint8_t* boot_sector, std::uint32_t size,
                                 const boot_sector_target_s& target, const std::uint8_t* original);
std::int32_t _correct_boot_sector_ntfs(std::uint8_t* boot_sector, std::uint32_t size,
                                       const boot_sector_target_s& target,
                                       const std::uint8_t* original);
std::int32_t _correct_boot_sector_fat32(std::uint8_t* boot_sector, std::uint32_t size,
                                        const boot_sector_target_s& target,
                                        const std::uint8_t* original);
std::int32_t _correct_boot_sector_fat(std::uint8_t* boot_sector, std::uint32_t size,
                                      const boot_sector_target_s& target,
                                      const std::uint8_t* original);

// The total number of sectors that the boot sector states: 64 bits at 40 for NTFS, 32 bits at 32
// for FAT32 and FAT.
bool get_volume_total_sectors(const std::uint8_t* boot_sector, const os::wide_char* file_system,
                              std::uint64_t* total);

// Asks the volume at `path` to grow to `total` sectors.
bool extend_volume(const char* path, std::uint64_t total);

// `consistent` is false exactly when the signature word holds the inconsistency marker.
bool consistency_of_bs(const std::uint8_t* boot_sector, const os::wide_char* file_system,
                       bool* consistent);

} // namespace storage_info_n
