#include "files/file_manipulation.h"

#include "files/file.h"
#include "files/qv_io_api_createfile.h"
#include "support/trc.h"
#include "support/txf_wrapper.h"
#include "utl/multi_lang.h"
#include "utl/time_span.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

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

// ---- making and removing paths

namespace {

std::vector<os::wide_char> wide_of(const char* path) {
    std::vector<os::wide_char> wide(path_n::path_buffer_size);
    path_n::path_to_wide_char_path(path, wide.data(), true);
    return wide;
}

std::string utf8_name(const os::wide_char* wide) {
    char narrow[path_n::path_buffer_size] = {};
    int room = static_cast<int>(sizeof narrow);
    if (!multi_lang_str_n::unicode_to_utf8(wide, narrow, room)) return {};
    return narrow;
}

} // namespace

bool file_manipulation_n::create_directory(const char* path, bool is_file_name) {
    QVTR_SCOPE(tr, "file_manipulation_n::create_directory", source);
    tr.print(QVTR_VERBOSE, __LINE__, "Create directory %s, is_file_name %s, full_access %s\n", path,
             is_file_name ? "true" : "false", "false");
    // One byte beyond a path buffer, so that the closing '/' fits even after the longest path:
    // without it the last element of such a path would not be made, and the answer be true.
    char buffer[path_n::path_buffer_size + 1] = {};
    path_n::standard_dir_path(path, buffer, true);
    std::size_t length = std::strlen(buffer);
    if (is_file_name) {
        char* last = std::strrchr(buffer, '/');
        if (!last) return true; // a bare file name needs no directory
        last[1] = 0;
    } else if (length && buffer[length - 1] != '/') {
        buffer[length] = '/';
        buffer[length + 1] = 0;
    }
    if (if_exists(buffer, nullptr)) {
        file_prop_access_c properties;
        if (properties.load_file_properties_from_disk(buffer, nullptr, nullptr))
            return (properties.prop.mode.qv_mode & file_mode_n::dir) != 0;
    }
    // On a UNC path the server is passed over: the first element to make is the share.
    char* scan = buffer + 1;
    if (std::strncmp(buffer, "\\\\", 2) == 0) {
        char* first = std::strchr(buffer, '/');
        if (!first) return false;
        scan = first + 1;
    }
    for (char* separator = std::strchr(scan, '/'); separator;
         separator = std::strchr(separator + 1, '/')) {
        char kept = separator[1];
        separator[1] = 0;
        bool made = true;
        {
            reserve_short_path_name_s reservation(buffer, 0, nullptr);
            if (!if_exists(buffer, nullptr) &&
                !os::CreateDirectoryW(wide_of(buffer).data(), nullptr) &&
                os::GetLastError() != os::ERROR_ALREADY_EXISTS)
                made = false;
        }
        separator[1] = kept;
        if (!made) return false;
    }
    return true;
}

bool file_manipulation_n::remove_path(const char* path, void* transaction,
                                      remove_callback_t callback) {
    QVTR_SCOPE(tr, "file_manipulation_n::remove_path", source);
    tr.print(QVTR_VERBOSE, __LINE__, "Remove path %s\n", path);
    if (!if_exists(path, transaction)) return true;
    file_prop_access_c properties;
    if (!properties.load_file_properties_from_disk(path, nullptr, transaction)) return true;
    file_mode_c mode;
    mode.copy(properties.prop.mode);
    std::uint32_t kind = properties.prop.reparse_kind;
    properties.add_write_attrib(path, transaction);

    if (!(mode.qv_mode & file_mode_n::dir)) {
        if (callback && callback(path)) return true;
        std::vector<os::wide_char> wide = wide_of(path);
        return transaction ? txf_wrapper_c::DeleteFileTransacted(wide.data(), transaction) != 0
                           : os::DeleteFileW(wide.data()) != 0;
    }
    dir_content_c content(transaction);
    bool is_link =
        (mode.qv_mode & file_mode_n::reparse) &&
        (kind == reparse_symbolic_link || kind == reparse_mount_point || kind == reparse_junction);
    if (!is_link && content.init(path)) {
        file_name_and_prop_data_s entry;
        std::vector<char> child(path_n::path_buffer_size);
        while (content.get_next_file(entry)) {
            int length =
                std::snprintf(child.data(), child.size(), "%s/%s", path, entry.name.c_str());
            // A name that makes the path too long can't be named, so it can't be removed; a cut
            // path would name something else, even the directory itself.
            if (length < 0 || static_cast<std::size_t>(length) >= child.size()) return false;
            if (!remove_path(child.data(), transaction, callback)) return false;
        }
        if (content.had_error) return false;
    }
    if (callback && callback(path)) return true;
    std::vector<os::wide_char> wide = wide_of(path);
    return transaction ? txf_wrapper_c::RemoveDirectoryTransacted(wide.data(), transaction) != 0
                       : os::RemoveDirectoryW(wide.data()) != 0;
}

unsigned file_manipulation_n::bytes_per_sector(const char* path, unsigned* cluster_size) {
    QVTR_SCOPE(tr, "file_manipulation_n::bytes_per_sector", source);
    if (cluster_size) *cluster_size = 0;
    char drive[path_n::path_buffer_size] = {};
    if (!path_n::drive_name_from_path(path, drive)) {
        tr.print(QVTR_INFO, __LINE__, "error getting drive name from path %s", path);
        return 0;
    }
    std::vector<os::wide_char> wide = wide_of(drive);
    strip_qv_volume_suffix_wide(wide.data());
    unsigned type = os::GetDriveTypeW(wide.data());
    if (type < os::DRIVE_FIXED || type == os::DRIVE_CDROM) return 0;
    os::DWORD sectors_per_cluster = 0, sector = 0, free_clusters = 0, total_clusters = 0;
    if (!os::GetDiskFreeSpaceW(wide.data(), &sectors_per_cluster, &sector, &free_clusters,
                               &total_clusters))
        tr.print(QVTR_FAILURE, __LINE__, "Unable to get volume %s size (%d)\n", drive,
                 static_cast<int>(os::GetLastError()));
    if (cluster_size) *cluster_size = static_cast<unsigned>(sectors_per_cluster * sector);
    return static_cast<unsigned>(sector);
}

// ---- enumerating directories

dir_content_c::dir_content_c(void* transaction_handle) : transaction(transaction_handle) {}

dir_content_c::~dir_content_c() { reset(); }

void dir_content_c::reset() {
    dir_path.append(utl_stream_c::clear_char);
    for (const void* item = pending.first(); item; item = pending.first()) {
        pending.remove_current(item);
        delete static_cast<const file_name_and_prop_data_s*>(item);
    }
    had_error = false;
    count = 0;
    if (find_handle != os::INVALID_HANDLE_VALUE) os::FindClose(find_handle);
    find_handle = os::INVALID_HANDLE_VALUE;
}

bool dir_content_c::_if_dots_dirs(const os::wide_char* name) {
    return name && name[0] == u'.' && (name[1] == 0 || (name[1] == u'.' && name[2] == 0));
}

bool dir_content_c::init(const char* path) {
    QVTR_SCOPE(tr, "dir_content_c::init", source);
    reset();
    if (!path) return false;
    std::vector<os::wide_char> pattern = wide_of(path);
    // Room for the separator and the star after the longest path: without it the pattern of such
    // a directory would be its own name with a star, and find the directory itself.
    pattern.resize(path_n::path_buffer_size + 2, 0);
    std::size_t n = 0;
    while (pattern[n]) ++n;
    bool had_backslash = n && pattern[n - 1] == u'\\';
    // The conversion drops a trailing separator of anything but a root; the caller's own ending
    // decides whether the directory path needs one.
    std::size_t given = std::strlen(path);
    bool caller_ended_in_separator = given && (path[given - 1] == '/' || path[given - 1] == '\\');
    if (!had_backslash) pattern[n++] = u'\\';
    pattern[n++] = u'*';
    pattern[n] = 0;
    os::WIN32_FIND_DATAW found{};
    if (transaction) {
        find_handle = txf_wrapper_c::FindFirstFileTransacted(
            pattern.data(), os::FindExInfoStandard, &found, os::FindExSearchNameMatch, nullptr,
            os::FIND_FIRST_EX_CASE_SENSITIVE, transaction);
    } else {
        find_handle =
            os::FindFirstFileExW(pattern.data(), os::FindExInfoBasic, &found,
                                 os::FindExSearchNameMatch, nullptr, os::FIND_FIRST_EX_LARGE_FETCH);
        // Systems without those options take the plain call.
        if (find_handle == os::INVALID_HANDLE_VALUE)
            find_handle = os::FindFirstFileW(pattern.data(), &found);
    }
    if (find_handle == os::INVALID_HANDLE_VALUE) {
        find_handle = os::INVALID_HANDLE_VALUE;
        return os::GetLastError() == os::ERROR_NO_MORE_FILES;
    }
    dir_path.append(path);
    if (!had_backslash && !caller_ended_in_separator) dir_path.append("/");
    if (!_if_dots_dirs(found.cFileName)) {
        auto* entry = new file_name_and_prop_data_s;
        _fill_new_entry(found, *entry, true);
        pending.append(entry);
    }
    return true;
}

bool dir_content_c::get_next_file(file_name_and_prop_data_s& entry) {
    if (const void* item = pending.first()) {
        pending.remove_current(item);
        auto* ahead = const_cast<file_name_and_prop_data_s*>(
            static_cast<const file_name_and_prop_data_s*>(item));
        entry.copy(*ahead);
        delete ahead;
        return true;
    }
    if (find_handle == os::INVALID_HANDLE_VALUE) return false;
    os::WIN32_FIND_DATAW found{};
    do {
        if (!os::FindNextFileW(find_handle, &found)) {
            os::DWORD error = os::GetLastError();
            os::FindClose(find_handle);
            find_handle = os::INVALID_HANDLE_VALUE;
            had_error = error != os::ERROR_NO_MORE_FILES;
            return false;
        }
    } while (_if_dots_dirs(found.cFileName));
    _fill_new_entry(found, entry, true);
    return true;
}

void dir_content_c::_fill_new_entry(const os::WIN32_FIND_DATAW& found,
                                    file_name_and_prop_data_s& entry, bool relative) {
    QVTR_SCOPE(tr, "dir_content_c::_fill_new_entry", source);
    entry.reset();
    entry.mode.set_hostmode(found.dwFileAttributes);
    std::uint64_t write_time =
        (static_cast<std::uint64_t>(found.ftLastWriteTime.dwHighDateTime) << 32) |
        found.ftLastWriteTime.dwLowDateTime;
    entry.modify_time =
        static_cast<std::int64_t>(date_time_c::convert_filetime_to_time_t(&write_time));
    entry.size = (static_cast<std::uint64_t>(found.nFileSizeHigh) << 32) | found.nFileSizeLow;
    std::string name = utf8_name(found.cFileName);
    entry.name.append(utl_stream_c::clear_char);
    if (!relative) entry.name.append(dir_path);
    entry.name.append(name.c_str());

    std::string full = std::string(dir_path.c_str()) + name;
    bool reparse = entry.mode.qv_mode & file_mode_n::reparse,
         sparse = entry.mode.qv_mode & file_mode_n::sparse;
    if (!reparse && !sparse) {
        if (entry.mode.qv_mode & file_mode_n::dir) {
            entry.reparse_kind = reparse_none;
            return;
        }
        // Each plain file is opened once, for its links and its number.
        file_prop_access_c loaded;
        if (loaded.load_file_properties_from_disk(full.c_str(), nullptr, transaction)) {
            if (loaded.prop.link_count > 1) entry.mode.qv_mode |= file_mode_n::many_links;
            entry.link_count = loaded.prop.link_count;
            entry.file_index = loaded.prop.file_index;
            entry.volume_serial = loaded.prop.volume_serial;
        }
        return;
    }
    file_prop_access_c loaded;
    if (!loaded.load_file_properties_from_disk(full.c_str(), nullptr, transaction)) return;
    if (sparse && !(loaded.prop.mode.qv_mode & file_mode_n::sparse)) {
        tr.print(QVTR_DETAIL, __LINE__,
                 "Inconsistent sparse bit, taking precedence from GetInformationByHandle, %s.\n",
                 full.c_str());
        entry.mode.set_qvmode(loaded.prop.mode.qv_mode);
    }
    if (reparse) {
        entry.reparse_kind = loaded.prop.reparse_kind;
        if (entry.reparse_kind == reparse_symbolic_link || entry.reparse_kind == reparse_junction) {
            entry.reparse_target = loaded.prop.reparse_target;
            entry.reparse_target_is_file = loaded.prop.reparse_target_is_file;
            entry.mode.set_qvmode(loaded.prop.mode.qv_mode);
        }
    }
}
