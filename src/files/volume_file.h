// volume_file_c: the jobs done on an open, locked volume: its boot sector fitted to the disk at
// close, its total read, and the lock taken and given back.
#pragma once

#include "files/file_modif.h"
#include "platform/os.h"

#include <cstdint>

class qvtr_entry_c;

class volume_file_c {
  public:
    static constexpr std::uint32_t default_buffer_size = 65552;
    static constexpr int lock_attempts = 5;
    static constexpr int lock_retry_ms = 30000;
    static constexpr int unlock_retry_ms = 1000;

    explicit volume_file_c(FILE_c* file);
    virtual ~volume_file_c();
    volume_file_c(const volume_file_c&) = delete;
    volume_file_c& operator=(const volume_file_c&) = delete;

    // Fits the volume's boot sector to its disk and to `original`, with the signature that
    // `consistent` asks for; writes it back only when it changed.
    bool correct_boot_sector(const std::uint8_t* original, bool consistent);
    // The total number of sectors that the volume's boot sector states.
    bool get_total_sectors(std::uint64_t* total);

    // Locks the volume, up to five tries 30 seconds apart, then dismounts it; `locked` follows.
    static bool _lock_volume(os::HANDLE handle, const char* path, bool* locked);
    // Dismounts and unlocks the volume, up to five tries a second apart; `locked` follows.
    static bool unlock_volume(os::HANDLE handle, const char* path, bool* locked);

    FILE_c* file = nullptr;
    std::uint8_t* buffer = nullptr;
    std::uint32_t buffer_size = default_buffer_size;
    std::uint64_t counter1 = 0;
    std::uint64_t counter2 = 0;

  private:
    // Steps shared by the two jobs: the geometry, the file system's name, the position kept and
    // the boot sector read. Fills `sector` (to be freed by _finish) and `position`.
    bool _read_boot_sector(qvtr_entry_c& tr, os::DISK_GEOMETRY& geometry, std::uint8_t*& sector,
                           std::uint32_t& sector_size, std::int64_t& position, bool& moved);
    // Frees the sector and seeks back to `position` when the file was moved.
    void _finish(qvtr_entry_c& tr, std::uint8_t* sector, std::int64_t position, bool moved);
};
