#include "files/storage_info.h"

#include "support/trc.h"
#include "utl/multi_lang.h"

#include <cstring>
#include <string>

namespace {

constexpr const char* source = "storage_info";

std::uint16_t get16(const std::uint8_t* b, std::uint32_t at) {
    return static_cast<std::uint16_t>(b[at] | (b[at + 1] << 8));
}
std::uint32_t get32(const std::uint8_t* b, std::uint32_t at) {
    return static_cast<std::uint32_t>(get16(b, at)) |
           (static_cast<std::uint32_t>(get16(b, at + 2)) << 16);
}
std::uint64_t get64(const std::uint8_t* b, std::uint32_t at) {
    return static_cast<std::uint64_t>(get32(b, at)) |
           (static_cast<std::uint64_t>(get32(b, at + 4)) << 32);
}
void put16(std::uint8_t* b, std::uint32_t at, std::uint16_t v) {
    b[at] = static_cast<std::uint8_t>(v);
    b[at + 1] = static_cast<std::uint8_t>(v >> 8);
}
void put32(std::uint8_t* b, std::uint32_t at, std::uint32_t v) {
    put16(b, at, static_cast<std::uint16_t>(v));
    put16(b, at + 2, static_cast<std::uint16_t>(v >> 16));
}
void put64(std::uint8_t* b, std::uint32_t at, std::uint64_t v) {
    put32(b, at, static_cast<std::uint32_t>(v));
    put32(b, at + 4, static_cast<std::uint32_t>(v >> 32));
}

// Equal as wide text, terminators included; the name has room for 16 characters.
bool same_name(const os::wide_char* name, const char16_t* wanted) {
    if (!name) return false;
    for (int i = 0; i < 16; ++i) {
        if (name[i] != wanted[i]) return false;
        if (!wanted[i]) return true;
    }
    return false;
}

std::string narrow(const os::wide_char* name) {
    if (!name) return std::string();
    os::wide_char copy[17] = {};
    for (int i = 0; i < 16 && name[i]; ++i) copy[i] = name[i];
    char text[64] = {};
    int room = static_cast<int>(sizeof text);
    if (!multi_lang_str_n::unicode_to_utf8_untraced(copy, text, room)) return std::string();
    return text;
}

enum class total_field { bits64, bits32 };

// The three file systems differ only in the total-sector field.
std::int32_t correct(qvtr_entry_c& tr, total_field field, std::uint8_t* b, std::uint32_t size,
                     const boot_sector_target_s& target, const std::uint8_t* o) {
    if (!b || !o || size < storage_info_n::boot_sector_min_size) return -2;
    using namespace storage_info_n;
    const os::DISK_GEOMETRY& g = target.geometry;
    put16(b, signature_offset, target.consistent ? boot_signature : inconsistency_marker);

    if (field == total_field::bits64) {
        tr.print_nl(QVTR_SUCCESS, __LINE__,
                    "Current boot code, SectorsPerTrack[%d], SectorsPerCluster[%d], Number of "
                    "Headers[%d], BytesPerSec[%d], HiddenSectors[%d], TotalSectors[%lld], "
                    "Marker[%d].",
                    get16(b, sectors_per_track_offset), b[sectors_per_cluster_offset],
                    get16(b, heads_offset), get16(b, bytes_per_sec_offset),
                    static_cast<int>(get32(b, hidden_sectors_offset)),
                    static_cast<long long>(get64(b, total_sectors_64_offset)),
                    get16(b, signature_offset));
        tr.print_nl(QVTR_SUCCESS, __LINE__,
                    "Original boot code, SectorsPerTrack[%d], SectorsPerCluster[%d], Number of "
                    "Headers[%d], BytesPerSec[%d], HiddenSectors[%d], TotalSectors[%lld], "
                    "Marker[%d].",
                    static_cast<int>(g.SectorsPerTrack), o[sectors_per_cluster_offset],
                    static_cast<int>(g.TracksPerCylinder), static_cast<int>(g.BytesPerSector),
                    static_cast<int>(get32(o, hidden_sectors_offset)),
                    static_cast<long long>(get64(o, total_sectors_64_offset)),
                    get16(o, signature_offset));
    } else {
        tr.print_nl(QVTR_SUCCESS, __LINE__,
                    "Current boot code, SectorsPerTrack[%d], SectorsPerCluster[%d], Number of "
                    "Headers[%d], BytesPerSec[%d], HiddenSectors[%d], TotalSectors[%d], "
                    "Marker[%d].",
                    get16(b, sectors_per_track_offset), b[sectors_per_cluster_offset],
                    get16(b, heads_offset), get16(b, bytes_per_sec_offset),
                    static_cast<int>(get32(b, hidden_sectors_offset)),
                    static_cast<int>(get32(b, total_sectors_32_offset)),
                    get16(b, signature_offset));
        tr.print_nl(QVTR_SUCCESS, __LINE__,
                    "Original boot code, SectorsPerTrack[%d], SectorsPerCluster[%d], Number of "
                    "Headers[%d], BytesPerSec[%d], HiddenSectors[%d], TotalSectors[%d], "
                    "Marker[%d].",
                    static_cast<int>(g.SectorsPerTrack), o[sectors_per_cluster_offset],
                    static_cast<int>(g.TracksPerCylinder), static_cast<int>(g.BytesPerSector),
                    static_cast<int>(get32(o, hidden_sectors_offset)),
                    static_cast<int>(get32(o, total_sectors_32_offset)),
                    get16(o, signature_offset));
    }

    std::uint16_t bytes_per_sec = get16(b, bytes_per_sec_offset);
    if (bytes_per_sec == g.BytesPerSector &&
        get16(b, sectors_per_track_offset) == g.SectorsPerTrack &&
        get16(b, heads_offset) == g.TracksPerCylinder &&
        b[sectors_per_cluster_offset] == o[sectors_per_cluster_offset] &&
        get32(b, hidden_sectors_offset) == get32(o, hidden_sectors_offset) &&
        get16(b, signature_offset) == get16(o, signature_offset))
        return 0;

    // The size of the volume in bytes is kept. A geometry that names no sector size gives
    // nothing to divide by; the total then stays.
    if (bytes_per_sec != g.BytesPerSector && g.BytesPerSector != 0) {
        if (field == total_field::bits64) {
            std::uint64_t total = get64(b, total_sectors_64_offset) * bytes_per_sec /
                                  static_cast<std::uint64_t>(g.BytesPerSector);
            put64(b, total_sectors_64_offset, total);
            tr.print_nl(QVTR_SUCCESS, __LINE__, "Adjust the total sector to %lld.",
                        static_cast<long long>(total));
        } else {
            std::uint32_t product = get32(b, total_sectors_32_offset) * bytes_per_sec;
            std::uint32_t total = product / g.BytesPerSector;
            put32(b, total_sectors_32_offset, total);
            tr.print_nl(QVTR_SUCCESS, __LINE__, "Adjust the total sector to %lld.",
                        static_cast<long long>(total));
        }
    }
    put16(b, bytes_per_sec_offset, static_cast<std::uint16_t>(g.BytesPerSector));
    put16(b, sectors_per_track_offset, static_cast<std::uint16_t>(g.SectorsPerTrack));
    put16(b, heads_offset, static_cast<std::uint16_t>(g.TracksPerCylinder));
    b[sectors_per_cluster_offset] = o[sectors_per_cluster_offset];
    put32(b, hidden_sectors_offset, get32(o, hidden_sectors_offset));
    return 1;
}

} // namespace

std::int32_t storage_info_n::correct_boot_sector(std::uint8_t* boot_sector, std::uint32_t size,
                                                 const boot_sector_target_s& target,
                                                 const std::uint8_t* original) {
    QVTR_SCOPE(tr, "storage_info_n::correct_boot_sector", source);
    if (same_name(target.file_system_name, u"NTFS"))
        return _correct_boot_sector_ntfs(boot_sector, size, target, original);
    if (same_name(target.file_system_name, u"FAT32"))
        return _correct_boot_sector_fat32(boot_sector, size, target, original);
    if (same_name(target.file_system_name, u"FAT"))
        return _correct_boot_sector_fat(boot_sector, size, target, original);
    tr.print(QVTR_FAILURE, __LINE__, "unsupported file system %s.\n",
             narrow(target.file_system_name).c_str());
    return -1;
}

std::int32_t storage_info_n::_correct_boot_sector_ntfs(std::uint8_t* boot_sector,
                                                       std::uint32_t size,
                                                       const boot_sector_target_s& target,
                                                       const std::uint8_t* original) {
    QVTR_SCOPE(tr, "storage_info_n::_correct_boot_sector_ntfs", source);
    return correct(tr, total_field::bits64, boot_sector, size, target, original);
}

std::int32_t storage_info_n::_correct_boot_sector_fat32(std::uint8_t* boot_sector,
                                                        std::uint32_t size,
                                                        const boot_sector_target_s& target,
                                                        const std::uint8_t* original) {
    QVTR_SCOPE(tr, "storage_info_n::_correct_boot_sector_fat32", source);
    return correct(tr, total_field::bits32, boot_sector, size, target, original);
}

std::int32_t storage_info_n::_correct_boot_sector_fat(std::uint8_t* boot_sector, std::uint32_t size,
                                                      const boot_sector_target_s& target,
                                                      const std::uint8_t* original) {
    QVTR_SCOPE(tr, "storage_info_n::_correct_boot_sector_fat", source);
    return correct(tr, total_field::bits32, boot_sector, size, target, original);
}

bool storage_info_n::get_volume_total_sectors(const std::uint8_t* boot_sector,
                                              const os::wide_char* file_system,
                                              std::uint64_t* total) {
    QVTR_SCOPE(tr, "storage_info_n::get_volume_total_sectors", source);
    if (same_name(file_system, u"NTFS")) {
        if (!boot_sector || !total) return false;
        *total = get64(boot_sector, total_sectors_64_offset);
        return true;
    }
    if (same_name(file_system, u"FAT32") || same_name(file_system, u"FAT")) {
        if (!boot_sector || !total) return false;
        *total = get32(boot_sector, total_sectors_32_offset);
        return true;
    }
    tr.print(QVTR_FAILURE, __LINE__, "unsupported file system %s.\n", narrow(file_system).c_str());
    return false;
}

bool storage_info_n::consistency_of_bs(const std::uint8_t* boot_sector,
                                       const os::wide_char* file_system, bool* consistent) {
    QVTR_SCOPE(tr, "storage_info_n::consistency_of_bs", source);
    if (consistent) *consistent = true;
    if (!file_system || !file_system[0]) {
        tr.print(QVTR_SUCCESS, __LINE__, "FS type unknown, assume as NTFS.\n");
        file_system = u"NTFS";
    }
    if (same_name(file_system, u"NTFS") || same_name(file_system, u"FAT32") ||
        same_name(file_system, u"FAT")) {
        if (!boot_sector || !consistent) return false;
        *consistent = get16(boot_sector, signature_offset) != inconsistency_marker;
        return true;
    }
    tr.print(QVTR_FAILURE, __LINE__,
             "Failed to check consistency_of_bs, unsupported file system %s.\n",
             narrow(file_system).c_str());
    return false;
}

bool storage_info_n::extend_volume(const char* path, std::uint64_t total) {
    QVTR_SCOPE(tr, "storage_info_n::extend_volume", source);
    if (!path) {
        tr.print(QVTR_FAILURE, __LINE__, "Invalid parameter.\n");
        return false;
    }
    tr.print(QVTR_SUCCESS, __LINE__, "Try to extend volume [%s].\n", path);
    int size = 0;
    std::u16string wide;
    if (multi_lang_str_n::utf8_to_unicode(path, nullptr, size) && size > 0) {
        wide.assign(static_cast<std::size_t>(size), u'\0');
        if (!multi_lang_str_n::utf8_to_unicode(path, wide.data(), size)) wide.clear();
    }
    os::HANDLE volume = os::INVALID_HANDLE_VALUE;
    if (!wide.empty())
        volume =
            os::CreateFileW(wide.c_str(), os::GENERIC_READ | os::GENERIC_WRITE,
                            os::FILE_SHARE_READ | os::FILE_SHARE_WRITE, nullptr, os::OPEN_EXISTING,
                            os::FILE_FLAG_WRITE_THROUGH | os::FILE_FLAG_NO_BUFFERING, nullptr);
    else
        os::SetLastError(os::ERROR_INVALID_PARAMETER);
    if (volume == os::INVALID_HANDLE_VALUE) {
        tr.print(QVTR_FAILURE, __LINE__, "Cannot open handle for volume[%s]. Error Code %d.\n",
                 path, static_cast<int>(os::GetLastError()));
        return false;
    }
    std::uint64_t new_total = total;
    os::DWORD returned = 0;
    bool done = os::DeviceIoControl(volume, os::FSCTL_EXTEND_VOLUME, &new_total, sizeof new_total,
                                    nullptr, 0, &returned, nullptr) != 0;
    if (!done)
        tr.print(QVTR_FAILURE, __LINE__,
                 "Fail to resize volume[%s], New total sectors[%lld]. Error Code %d.\n", path,
                 static_cast<long long>(total), static_cast<int>(os::GetLastError()));
    else
        tr.print(QVTR_SUCCESS, __LINE__, "Succeed to resize volume[%s], total sectors[%lld].\n",
                 path, static_cast<long long>(total));
    os::CloseHandle(volume);
    return done;
}
