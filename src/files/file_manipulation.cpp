#include "files/file_manipulation.h"

#include "files/file.h"
#include "support/trc.h"
#include "support/txf_wrapper.h"

namespace {

constexpr const char* source = "file_manipulation";
constexpr int eacces = 13;
// Only its length counts: a volume-GUID path with its trailing backslash.
constexpr const os::wide_char* volume_guid_ruler =
    u"\\\\?\\Volume{cc59759e-d00a-11dc-b6ff-806e6f6e6963}\\";

std::size_t wide_length(const os::wide_char* text) {
    std::size_t n = 0;
    while (text[n]) ++n;
    return n;
}

// Opens nothing but the name: no access, all sharing, backup semantics so directories open too.
bool opens_by_name(const os::wide_char* wide, void* transaction) {
    const os::DWORD all_sharing =
        os::FILE_SHARE_READ | os::FILE_SHARE_WRITE | os::FILE_SHARE_DELETE;
    os::HANDLE handle =
        transaction
            ? txf_wrapper_c::CreateFileTransacted(wide, 0, all_sharing, nullptr, os::OPEN_EXISTING,
                                                  os::FILE_FLAG_BACKUP_SEMANTICS, nullptr,
                                                  transaction, nullptr, nullptr)
            : os::CreateFileW(wide, 0, all_sharing, nullptr, os::OPEN_EXISTING,
                              os::FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == os::INVALID_HANDLE_VALUE) return false;
    os::CloseHandle(handle);
    return true;
}

} // namespace

bool file_manipulation_n::if_exists(const char* path, void* transaction) {
    QVTR_SCOPE(tr, "file_manipulation_n::if_exists", source);
    if (is_volume_guid_path(path, false)) return volume_guid_path_exists(path);
    os::wide_char wide[path_n::path_buffer_size];
    path_n::path_to_wide_char_path(path, wide, true);
    if (transaction) {
        if (!opens_by_name(wide, transaction)) return false;
    } else if (os::_waccess(wide, 0) != 0) {
        // Without the right to look, a plain access test can't tell: an open by name decides.
        if (os::crt_errno() != eacces || !opens_by_name(wide, nullptr)) return false;
    }
    if (path_n::is_short_name(path)) {
        tr.print(QVTR_DETAIL, __LINE__, "if_exists - another file/dir owned this short name %s\n",
                 path);
        return false;
    }
    return true;
}

bool volume_guid_path_exists(const char* path) {
    if (!is_volume_guid_path(path, false)) return false;
    os::wide_char wide[path_n::path_buffer_size];
    path_n::path_to_wide_char_path(path, wide, true);
    std::size_t n = wide_length(wide);
    if (n <= wide_length(volume_guid_ruler)) {
        if (n && wide[n - 1] == u'\\') wide[n - 1] = 0;
        const os::DWORD all_sharing =
            os::FILE_SHARE_READ | os::FILE_SHARE_WRITE | os::FILE_SHARE_DELETE;
        os::HANDLE handle = os::CreateFileW(wide, 0, all_sharing, nullptr, os::OPEN_EXISTING,
                                            os::FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle == os::INVALID_HANDLE_VALUE) return false;
        os::CloseHandle(handle);
        return true;
    }
    return os::_waccess(wide, 0) == 0;
}
