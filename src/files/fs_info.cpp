#include "files/fs_info.h"

#include "files/file.h"
#include "platform/os.h"
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
    std::string mount_point = path;
    for (char& c : mount_point)
        if (c == '/') c = '\\';
    if (mount_point.back() != '\\') mount_point += '\\';

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
