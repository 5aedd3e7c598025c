#include "files/volume_file.h"

#include "files/storage_info.h"
#include "support/thl.h"
#include "support/trc.h"

#include <cstring>

namespace {
constexpr const char* source = "volume_file";
} // namespace

volume_file_c::volume_file_c(FILE_c* worked_on) : file(worked_on) {
    buffer = static_cast<std::uint8_t*>(
        os::VirtualAlloc(nullptr, buffer_size, os::MEM_COMMIT, os::PAGE_READWRITE));
}

volume_file_c::~volume_file_c() {
    if (buffer) os::VirtualFree(buffer, 0, os::MEM_RELEASE);
}

bool volume_file_c::_read_boot_sector(qvtr_entry_c& tr, os::DISK_GEOMETRY& geometry,
                                      std::uint8_t*& sector, std::uint32_t& sector_size,
                                      std::int64_t& position, bool& moved) {
    const char* name = file->path.c_str();
    os::DWORD returned = 0;
    if (!os::DeviceIoControl(file->get_file_handle(), os::IOCTL_DISK_GET_DRIVE_GEOMETRY, nullptr, 0,
                             &geometry, sizeof geometry, &returned, nullptr)) {
        tr.print(QVTR_FAILURE, __LINE__, "failed to retrieve disk geometry %s (%d).\n", name,
                 static_cast<int>(os::GetLastError()));
        return false;
    }
    if (!file->refresh_file_system_info() || !file->file_system_name[0]) {
        tr.print(QVTR_FAILURE, __LINE__, "failed to get file system of %s.\n", name);
        return false;
    }
    position = file->tell();
    if (!file->seek(0)) {
        tr.print(QVTR_FAILURE, __LINE__, "failed to seek to boot sector %s (%d).\n", name,
                 static_cast<int>(file->error));
        moved = true;
        return false;
    }
    moved = true;
    sector_size = file->reader.sector_size ? file->reader.sector_size : 512;
    sector = new std::uint8_t[sector_size];
    std::int64_t got = file->read(sector, sector_size);
    if (got != static_cast<std::int64_t>(sector_size)) {
        tr.print(QVTR_FAILURE, __LINE__, "failed to read boot sector %s (%d).\n", name,
                 static_cast<int>(file->error));
        return false;
    }
    return true;
}

void volume_file_c::_finish(qvtr_entry_c& tr, std::uint8_t* sector, std::int64_t position,
                            bool moved) {
    delete[] sector;
    if (!moved) return;
    if (!file->seek(position))
        tr.print(QVTR_FAILURE, __LINE__, "failed to seek back %s to (0x%p) (%d).\n",
                 file->path.c_str(), reinterpret_cast<void*>(static_cast<std::intptr_t>(position)),
                 static_cast<int>(file->error));
}

bool volume_file_c::correct_boot_sector(const std::uint8_t* original, bool consistent) {
    QVTR_SCOPE(tr, "volume_file_c::correct_boot_sector", source);
    const char* name = file ? file->path.c_str() : "";
    tr.print(QVTR_SUCCESS, __LINE__, "begin to check boot sector of %s.\n", name);
    if (!file) return false;
    os::DISK_GEOMETRY geometry{};
    std::uint8_t* sector = nullptr;
    std::uint32_t sector_size = 0;
    std::int64_t position = 0;
    bool moved = false;
    bool done = false;
    if (_read_boot_sector(tr, geometry, sector, sector_size, position, moved)) {
        boot_sector_target_s target{};
        target.geometry = geometry;
        std::memcpy(target.file_system_name, file->file_system_name,
                    sizeof target.file_system_name);
        target.consistent = consistent;
        std::int32_t answer =
            storage_info_n::correct_boot_sector(sector, sector_size, target, original);
        if (answer < 0) {
            tr.print(QVTR_FAILURE, __LINE__, "failed to correct boot sector %s (%d).\n", name,
                     answer);
        } else if (answer == 0) {
            tr.print(QVTR_SUCCESS, __LINE__, "boot sector is up to date %s.\n", name);
            done = true;
        } else {
            file->error = 0;
            if (file->seek(0) &&
                file->write(sector, sector_size) == static_cast<std::int64_t>(sector_size)) {
                file->flush();
                tr.print(QVTR_SUCCESS, __LINE__, "successfully update boot sector %s.\n", name);
                done = true;
            } else {
                tr.print(QVTR_FAILURE, __LINE__,
                         "failed to write back boot sector %s (0x%p) (0x%x).\n", name,
                         reinterpret_cast<void*>(static_cast<std::intptr_t>(position)),
                         static_cast<unsigned>(file->error));
            }
        }
    }
    _finish(tr, sector, position, moved);
    return done;
}

bool volume_file_c::get_total_sectors(std::uint64_t* total) {
    QVTR_SCOPE(tr, "volume_file_c::get_total_sectors", source);
    if (!file) return false;
    const char* name = file->path.c_str();
    os::DISK_GEOMETRY geometry{};
    std::uint8_t* sector = nullptr;
    std::uint32_t sector_size = 0;
    std::int64_t position = 0;
    bool moved = false;
    bool done = false;
    if (_read_boot_sector(tr, geometry, sector, sector_size, position, moved)) {
        done = storage_info_n::get_volume_total_sectors(sector, file->file_system_name, total);
        if (!done)
            tr.print(QVTR_FAILURE, __LINE__, "failed to get total sectors %s (0x%p) (0x%x).\n",
                     name, reinterpret_cast<void*>(static_cast<std::intptr_t>(position)),
                     static_cast<unsigned>(file->error));
    }
    _finish(tr, sector, position, moved);
    return done;
}

bool volume_file_c::_lock_volume(os::HANDLE handle, const char* path, bool* locked) {
    QVTR_SCOPE(tr, "volume_file_c::_lock_volume", source);
    if (locked && *locked) return true;
    if (!handle || handle == os::INVALID_HANDLE_VALUE || !locked) return false;
    if (!path) path = "";
    os::DWORD returned = 0;
    for (int attempt = 0; attempt < lock_attempts; ++attempt) {
        if (os::DeviceIoControl(handle, os::FSCTL_LOCK_VOLUME, nullptr, 0, nullptr, 0, &returned,
                                nullptr)) {
            tr.print(QVTR_SUCCESS, __LINE__, "Successfully to lock volume %s.\n", path);
            *locked = true;
            return true;
        }
        tr.print(QVTR_FAILURE, __LINE__, "Unable to lock volume %s, %d.\n", path,
                 static_cast<int>(os::GetLastError()));
        mix_n::sleep(lock_retry_ms);
    }
    tr.print(QVTR_FAILURE, __LINE__, "Unable to lock volume %s, dismount it and try again.\n",
             path);
    if (!os::DeviceIoControl(handle, os::FSCTL_DISMOUNT_VOLUME, nullptr, 0, nullptr, 0, &returned,
                             nullptr))
        tr.print(QVTR_DETAIL, __LINE__, "Try to dismount volume %s failed, the error is %d.\n",
                 path, static_cast<int>(os::GetLastError()));
    return false;
}

bool volume_file_c::unlock_volume(os::HANDLE handle, const char* path, bool* locked) {
    QVTR_SCOPE(tr, "volume_file_c::unlock_volume", source);
    if (!locked || !*locked) return false;
    if (!handle || handle == os::INVALID_HANDLE_VALUE) return false;
    if (!path) path = "";
    os::DWORD returned = 0;
    for (int attempt = 0; attempt < lock_attempts; ++attempt) {
        if (!os::DeviceIoControl(handle, os::FSCTL_DISMOUNT_VOLUME, nullptr, 0, nullptr, 0,
                                 &returned, nullptr))
            tr.print(QVTR_FAILURE, __LINE__, "Dismount volume %s failed, the error is %d.\n", path,
                     static_cast<int>(os::GetLastError()));
        if (os::DeviceIoControl(handle, os::FSCTL_UNLOCK_VOLUME, nullptr, 0, nullptr, 0, &returned,
                                nullptr)) {
            tr.print(QVTR_SUCCESS, __LINE__, "Successfully to unlock volume %s.\n", path);
            *locked = false;
            return true;
        }
        if (attempt + 1 < lock_attempts) mix_n::sleep(unlock_retry_ms);
    }
    tr.print(QVTR_FAILURE, __LINE__, "Unlock volume %s failed, the error is %d.\n", path,
             static_cast<int>(os::GetLastError()));
    return false;
}
