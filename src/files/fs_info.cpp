#include "files/fs_info.h"

#include "files/file.h"
#include "platform/os.h"
#include "support/load_step.h"
#include "support/thl.h"
#include "support/trc.h"
#include "utl/multi_lang.h"

#include <cstring>
#include <string>

namespace {
constexpr const char* source = "fs_info";
constexpr int volume_name_room = 64;
} // namespace

std::uint32_t file_system_info_n::get_volume_name_for_volume_mount_point(const char* path,
                                                                         char* out) {
    QVTR_SCOPE(tr, "file_system_info_n::get_volume_name_for_volume_mount_point", source);
    if (!path || !out || !*path) return 0;
    // The backslash that the platform call wants at the end is added unless the path as given
    // ends with one: a path that ends with '/' gets it after its converted slash.
    std::string mount_point = path;
    bool ends_with_backslash = mount_point.back() == '\\';
    for (char& c : mount_point)
        if (c == '/') c = '\\';
    if (!ends_with_backslash) mount_point += '\\';

    int size = 0;
    if (!multi_lang_str_n::utf8_to_unicode(mount_point.c_str(), nullptr, size) || size <= 0)
        return 0;
    std::u16string wide(static_cast<std::size_t>(size), u'\0');
    if (!multi_lang_str_n::utf8_to_unicode(mount_point.c_str(), wide.data(), size)) return 0;

    os::wide_char volume[volume_name_room] = {};
    os::BOOL found = os::GetVolumeNameForVolumeMountPointW(wide.c_str(), volume, volume_name_room);
    if (found) {
        char narrow[path_n::path_buffer_size] = {};
        int room = static_cast<int>(sizeof narrow);
        if (multi_lang_str_n::unicode_to_utf8(volume, narrow, room)) std::strcpy(out, narrow);
    }
    return static_cast<std::uint32_t>(found);
}

// ---- drives

namespace file_system_info_n {

namespace {

ptr_list_c* drive_list = nullptr;
std::uint32_t shared_fs_code = fs_unknown;
load_step_object_ct<thl_crit_section_c>
    drive_list_section("the critical section around the drive list");

char* copy_text(const char* text) {
    if (!text) return nullptr;
    std::size_t n = std::strlen(text);
    char* copy = new char[n + 1];
    std::memcpy(copy, text, n + 1);
    return copy;
}

std::uint32_t code_of_name(const os::wide_char* name) {
    struct family_s {
        const char16_t* name;
        std::uint32_t code;
    };
    static const family_s families[] = {{u"FAT", fs_fat},
                                        {u"FAT32", fs_fat},
                                        {u"exFAT", fs_fat},
                                        {u"NTFS", fs_ntfs},
                                        {u"ReFS", fs_refs}};
    for (const family_s& family : families)
        if (os::_wcsicmp(name, family.name) == 0) return family.code;
    return fs_other;
}

void recompute_common_code() {
    const void* first = drive_list ? drive_list->first() : nullptr;
    if (!first) {
        shared_fs_code = fs_unknown;
        return;
    }
    std::uint32_t code = static_cast<const drive_info_c*>(first)->fs_code;
    for (const void* item = first; item; item = drive_list->next(item))
        if (static_cast<const drive_info_c*>(item)->fs_code != code) code = fs_unknown;
    shared_fs_code = code;
}

// The known or newly made item of the drive under `path`, or null. Under the list's lock.
const drive_info_c* find_or_add_drive(const char* path) {
    if (!drive_list || !path) return nullptr;
    char root[path_n::path_buffer_size] = {};
    if (!path_n::drive_name_from_path(path, root)) return nullptr;
    for (const void* item = drive_list->first(); item; item = drive_list->next(item)) {
        const auto* drive = static_cast<const drive_info_c*>(item);
        if (drive->drive_name && os::_stricmp(drive->drive_name, root) == 0) return drive;
    }
    auto* drive = new drive_info_c;
    const drive_info_c* result = nullptr;
    if (drive->init(root)) {
        drive_list->append(drive);
        result = drive;
    } else {
        delete drive;
    }
    recompute_common_code();
    return result;
}

} // namespace

drive_info_c::~drive_info_c() { clear(); }

void drive_info_c::clear() {
    delete[] drive_name;
    delete[] volume_name;
    delete[] device_name;
    drive_name = volume_name = device_name = nullptr;
    fs_code = fs_unknown;
    fs_flags = bytes_per_sector = drive_type = 0;
}

bool drive_info_c::init(const char* path) {
    QVTR_SCOPE(tr, "file_system_info_n::drive_info_c::init", source);
    clear();
    std::u16string wide = multi_lang_str_n::to_utf16_string(path);
    drive_type = os::GetDriveTypeW(wide.c_str());
    if (drive_type < os::DRIVE_FIXED || drive_type == os::DRIVE_CDROM) return false;
    drive_name = copy_text(path);
    fs_code = fs_unknown;
    bytes_per_sector = 0;

    os::wide_char file_system[257] = {};
    os::DWORD flags = 0;
    if (!os::GetVolumeInformationW(wide.c_str(), nullptr, 0, nullptr, nullptr, &flags, file_system,
                                   257)) {
        tr.print(QVTR_FAILURE, __LINE__, "Unable to get volume %s information (%d)\n", path,
                 static_cast<int>(os::GetLastError()));
    } else {
        fs_flags = flags;
        fs_code = (flags & os::FILE_UNICODE_ON_DISK) ? code_of_name(file_system) : fs_other;
    }
    os::DWORD sectors_per_cluster = 0, sector = 0, free_clusters = 0, total_clusters = 0;
    if (os::GetDiskFreeSpaceW(wide.c_str(), &sectors_per_cluster, &sector, &free_clusters,
                              &total_clusters))
        bytes_per_sector = sector;
    else
        tr.print(QVTR_FAILURE, __LINE__, "Unable to get volume %s size (%d)\n", path,
                 static_cast<int>(os::GetLastError()));

    if (drive_type == os::DRIVE_FIXED) {
        os::wide_char volume[257] = {};
        if (os::GetVolumeNameForVolumeMountPointW(wide.c_str(), volume, 257))
            volume_name = copy_text(multi_lang_str_n::to_utf8_string(volume).c_str());
        else
            tr.print(QVTR_FAILURE, __LINE__, "Unable to get Volume GUID for %s (%d)\n", path,
                     static_cast<int>(os::GetLastError()));
        os::wide_char device[3] = {wide.empty() ? u'\0' : wide[0], u':', u'\0'};
        std::u16string target(path_n::path_buffer_size, u'\0');
        os::DWORD n =
            os::QueryDosDeviceW(device, target.data(), static_cast<os::DWORD>(target.size()));
        if (n == 0 || target[0] == 0)
            tr.print(QVTR_FAILURE, __LINE__, "Unable to QueryDosDevice for drive %s\n", path);
        else
            device_name = copy_text(multi_lang_str_n::to_utf8_string(target.c_str()).c_str());
    }
    return true;
}

std::uint32_t drive_file_system_code(const char* path) {
    thl_lock_c hold(drive_list_section.get());
    // While every known drive agrees, the path is not looked at.
    if (shared_fs_code != fs_unknown) return shared_fs_code;
    const drive_info_c* drive = find_or_add_drive(path);
    return drive ? drive->fs_code : fs_unknown;
}

bool drive_supports_compression(const char* path) {
    thl_lock_c hold(drive_list_section.get());
    const drive_info_c* drive = find_or_add_drive(path);
    return drive && (drive->fs_flags & os::FILE_FILE_COMPRESSION);
}

void set_drive_list(ptr_list_c* list) {
    thl_lock_c hold(drive_list_section.get());
    drive_list = list;
    recompute_common_code();
}

std::uint32_t common_fs_code() {
    thl_lock_c hold(drive_list_section.get());
    return shared_fs_code;
}

void start_drive_list_lock() { drive_list_section.build(false); }
void stop_drive_list_lock() { drive_list_section.drop(); }

const system_file_alias_s system_file_aliases[2] = {{"Win32_Pagefile", "pagefile.sys"},
                                                    {"Win32_Hiberfil", "hiberfil.sys"}};

const system_dir_s system_dir_table[10] = {
    {1, 17, {"System Volume Information", nullptr}, 0},
    {1000, 1100, {"System Volume Information", nullptr}, 0},
    {1, 9, {"RECYCLER", "RECYCLED"}, 10},
    {12, 17, {"$RECYCLE.BIN", nullptr}, 10},
    {18, 36, {"dev", nullptr}, 0},
    {18, 36, {"sys", nullptr}, 0},
    {18, 36, {"tmp", nullptr}, 0},
    {18, 36, {"proc", nullptr}, 0},
    {1, 17, {"Temporary Internet Files", nullptr}, 0},
    {1000, 1100, {"Temporary Internet Files", nullptr}, 0},
};

} // namespace file_system_info_n
