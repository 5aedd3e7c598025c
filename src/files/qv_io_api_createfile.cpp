#include "files/qv_io_api_createfile.h"

#include "files/basic_file.h"
#include "files/file.h"
#include "files/fs_info.h"
#include "support/trc.h"
#include "support/txf_wrapper.h"
#include "utl/multi_lang.h"
#include "utl/utl.h"
#include "utl/utl_stream.h"
#include "utl/value.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

namespace {

constexpr const char* source = "qv_io_api_createfile";
constexpr std::size_t longest_temp_name = 12;

bool is_separator(os::wide_char c) { return c == u'\\' || c == u'/'; }

os::wide_char lower(os::wide_char c) {
    os::wide_char text[2] = {c, 0};
    os::CharLowerW(text);
    return text[0];
}

void copy_wide(os::wide_char* dst, const std::u16string& src, std::size_t room) {
    std::size_t n = std::min(src.size(), room - 1);
    std::copy_n(src.data(), n, dst);
    dst[n] = 0;
}

bool move_file(const os::wide_char* from, const os::wide_char* to, void* transaction) {
    if (transaction)
        return txf_wrapper_c::MoveFileTransacted(from, to, nullptr, nullptr,
                                                 os::MOVEFILE_WRITE_THROUGH, transaction) != 0;
    return os::MoveFileExW(from, to, os::MOVEFILE_WRITE_THROUGH) != 0;
}

} // namespace

void to_backslash_path(const char* src, utl_stream_c& out) {
    std::string text = src ? src : "";
    std::replace(text.begin(), text.end(), '/', '\\');
    out.append(utl_stream_c::clear_char).append(text.c_str());
}

bool names_qv_volume(const char* path) {
    return path && std::string_view(path).ends_with(path_n::volume_pseudo_file);
}

int strip_qv_volume_suffix(utl_stream_c& path) {
    if (!names_qv_volume(path.c_str())) return 0;
    to_backslash_path(std::string(path.c_str()).c_str(), path);

    char local[path_n::path_buffer_size] = {};
    std::strncpy(local, path.c_str(), path_n::longest_path);
    if (char* suffix = std::strstr(local, path_n::volume_pseudo_file)) *suffix = 0;
    for (std::size_t n = std::strlen(local); n && local[n - 1] == '\\'; --n) local[n - 1] = 0;

    std::string text = local;
    bool has_drive = local[1] == ':' || (std::strncmp(local, "\\\\?\\", 4) == 0 && local[5] == ':');
    if (has_drive) {
        if (text.size() == 2) {
            char device[8];
            std::snprintf(device, sizeof device, "\\\\.\\%c:", local[0]);
            text = device;
        } else if (text.size() != 6) {
            // A mount-point directory: the volume mounted there.
            char volume[path_n::path_buffer_size] = {};
            if (!file_system_info_n::get_volume_name_for_volume_mount_point(local, volume))
                return 0;
            text = volume;
        }
    }
    std::replace(text.begin(), text.end(), '/', '\\');
    if (!text.empty() && text.back() == '\\') text.pop_back();
    path.append(utl_stream_c::clear_char).append(text.c_str());
    return 1;
}

int strip_qv_volume_suffix_wide(os::wide_char* path) {
    // Every open asks, and nearly no path is a volume's: the ending is compared in place.
    constexpr std::u16string_view suffix = u"$$qv-volume";
    std::u16string_view wide(path);
    if (!wide.ends_with(suffix)) return 0;
    utl_stream_c narrow(multi_lang_str_n::to_utf8_string(path).c_str());
    int result = strip_qv_volume_suffix(narrow);
    int size = static_cast<int>(path_n::path_buffer_size);
    std::u16string back(path_n::path_buffer_size, u'\0');
    if (multi_lang_str_n::utf8_to_unicode_untraced(narrow.c_str(), back.data(), size))
        copy_wide(path, back.c_str(), path_n::path_buffer_size);
    return result;
}

reserve_short_path_name_s::reserve_short_path_name_s(const char* path, os::DWORD disposition,
                                                     void* transaction_handle)
    : transaction(transaction_handle) {
    QVTR_SCOPE(tr, "reserve_short_path_name_s::reserve_short_path_name_s", source);
    // An open of what exists must find it, whatever its name.
    if (!path || disposition == os::OPEN_EXISTING) return;
    const std::size_t room = path_n::path_buffer_size;
    os::wide_char given[path_n::path_buffer_size];
    path_n::path_to_wide_char_path(path, given, true);
    long_name = new os::wide_char[room]();
    os::DWORD n = transaction
                      ? txf_wrapper_c::GetLongPathNameTransacted(
                            given, long_name, static_cast<os::DWORD>(room), transaction)
                      : os::GetLongPathNameW(given, long_name, static_cast<os::DWORD>(room));
    if (n == 0 || n > room || utl_n::uni_stricmp(given, long_name) == 0) {
        delete[] long_name;
        long_name = nullptr;
        return;
    }

    // The colliding object is the long form up to the end of the element where the forms part.
    std::size_t at = 0;
    while (given[at] && long_name[at] &&
           (lower(given[at]) == lower(long_name[at]) ||
            (is_separator(given[at]) && is_separator(long_name[at]))))
        ++at;
    std::u16string long_form(long_name);
    std::size_t cut = long_form.find(u'\\', at);
    if (cut == std::u16string::npos) cut = long_form.find(u'/', at);
    if (cut != std::u16string::npos) long_name[cut] = 0;

    std::u16string directory(long_name);
    std::size_t last = directory.find_last_of(u"\\/");
    directory.resize(last == std::u16string::npos ? 0 : last + 1);
    temp_name = new os::wide_char[room]();
    for (unsigned number = 0;; ++number) {
        char name[32];
        std::snprintf(name, sizeof name, "%u.qvx", number);
        if (std::strlen(name) > longest_temp_name) {
            tr.print(QVTR_FAILURE, __LINE__, "no usable tmp name '%s'\n", name);
            return;
        }
        std::u16string candidate = directory;
        for (const char* c = name; *c; ++c) candidate += static_cast<char16_t>(*c);
        copy_wide(temp_name, candidate, room);
        if (move_file(long_name, temp_name, transaction)) {
            is_renamed = true;
            return;
        }
        os::DWORD error = os::GetLastError();
        if (error == os::ERROR_ALREADY_EXISTS) continue;
        utl_stream_c why;
        tr.print(QVTR_FAILURE, __LINE__, "unable rename '%s' to tmp name '%s', %s\n",
                 multi_lang_str_n::to_utf8_string(long_name).c_str(),
                 multi_lang_str_n::to_utf8_string(temp_name).c_str(),
                 utl_n::format_last_error(why, error));
        return;
    }
}

reserve_short_path_name_s::~reserve_short_path_name_s() {
    QVTR_SCOPE(tr, "reserve_short_path_name_s::~reserve_short_path_name_s", source);
    if (is_renamed && !move_file(temp_name, long_name, transaction)) {
        utl_stream_c why;
        tr.print(QVTR_FAILURE, __LINE__, "unable restore filename from '%s' to '%s', %s\n",
                 multi_lang_str_n::to_utf8_string(temp_name).c_str(),
                 multi_lang_str_n::to_utf8_string(long_name).c_str(),
                 utl_n::format_last_error(why, os::GetLastError()));
    }
    delete[] long_name;
    delete[] temp_name;
}

// ---- opening files

namespace {

struct mode_s {
    const char* mode;
    os::DWORD disposition;
    os::DWORD access;
    int stream_flag;
};

const mode_s modes[] = {
    {"r", os::OPEN_EXISTING, os::GENERIC_READ, os::O_RDONLY_FLAG},
    {"r+", os::OPEN_ALWAYS, os::GENERIC_READ | os::GENERIC_WRITE, os::O_RDWR_FLAG},
    {"w", os::CREATE_ALWAYS, os::GENERIC_WRITE, os::O_WRONLY_FLAG},
    {"w+", os::CREATE_ALWAYS, os::GENERIC_READ | os::GENERIC_WRITE, os::O_RDWR_FLAG},
    {"a", os::OPEN_ALWAYS, os::FILE_APPEND_DATA, os::O_WRONLY_FLAG},
    {"a+", os::OPEN_ALWAYS, os::GENERIC_READ | os::FILE_APPEND_DATA, os::O_RDWR_FLAG},
};

// Whether opens ask for the right to read security audit data. Nothing in the library turns
// this on.
bool system_security_access = false;

const char* error_text(utl_stream_c& out, os::DWORD error) {
    return utl_n::format_last_error(out, error);
}

os::HANDLE open_with(const os::wide_char* wide, os::DWORD access, os::DWORD share,
                     os::DWORD disposition, os::DWORD attributes, void* transaction) {
    if (transaction)
        return txf_wrapper_c::CreateFileTransacted(wide, access, share, nullptr, disposition,
                                                   attributes, nullptr, transaction, nullptr,
                                                   nullptr);
    return os::CreateFileW(wide, access, share, nullptr, disposition, attributes, nullptr);
}

} // namespace

os::HANDLE qv_create_file(const char* path, os::DWORD access, os::DWORD disposition,
                          void* transaction, bool share, unsigned flags) {
    QVTR_SCOPE(tr, "qv_create_file", source);
    os::DWORD attributes = os::FILE_ATTRIBUTE_NORMAL | os::FILE_FLAG_BACKUP_SEMANTICS;
    if (flags & open_flags_n::no_buffering) {
        attributes |= os::FILE_FLAG_NO_BUFFERING;
        tr.print(QVTR_SUCCESS, __LINE__, "NO BUFFERING file: %s\n", path);
    }
    if (flags & open_flags_n::sequential_scan) {
        attributes |= os::FILE_FLAG_SEQUENTIAL_SCAN;
        tr.print(QVTR_INFO, __LINE__, "SEQUENTIAL SCAN file: %s\n", path);
    }
    if (flags & open_flags_n::write_through) {
        attributes |= os::FILE_FLAG_WRITE_THROUGH;
        tr.print(QVTR_INFO, __LINE__, "WRITE THROUGH file: %s\n", path);
    }
    if (flags & open_flags_n::overlapped) {
        attributes |= os::FILE_FLAG_OVERLAPPED;
        tr.print(QVTR_INFO, __LINE__, "OVERLAPPED file: %s\n", path);
    }
    // Opening a link opens the link, not its target.
    attributes |= os::FILE_FLAG_OPEN_REPARSE_POINT;
    os::DWORD sharing = !share ? 0
                        : (flags & open_flags_n::share_reads_only)
                            ? os::FILE_SHARE_READ
                            : os::FILE_SHARE_READ | os::FILE_SHARE_WRITE | os::FILE_SHARE_DELETE;

    os::wide_char wide[path_n::path_buffer_size];
    path_n::path_to_wide_char_path(path, wide, true);
    reserve_short_path_name_s reservation(path, disposition, transaction);
    strip_qv_volume_suffix_wide(wide);

    os::HANDLE handle = open_with(wide, access, sharing, disposition, attributes, transaction);
    if (handle != os::INVALID_HANDLE_VALUE) return handle;

    os::DWORD error = os::GetLastError();
    utl_stream_c why;
    tr.print(QVTR_INFO, __LINE__, "Failed to open %s, %s\n", path, error_text(why, error));
    if (error == os::ERROR_ACCESS_DENIED && disposition == os::CREATE_ALWAYS) {
        // Replacing a hidden or system file succeeds only with the same bits asked for.
        os::DWORD present = 0;
        if (transaction) {
            struct {
                os::DWORD attributes;
                unsigned char rest[32];
            } data{};
            present = txf_wrapper_c::GetFileAttributesTransacted(wide, os::GetFileExInfoStandard,
                                                                 &data, transaction);
        } else {
            present = os::GetFileAttributesW(wide);
        }
        if (present == os::INVALID_FILE_ATTRIBUTES) {
            tr.print(QVTR_INFO, __LINE__, "Failed to get attr %s, %d\n", path,
                     static_cast<int>(os::GetLastError()));
            return os::INVALID_HANDLE_VALUE;
        }
        attributes |= present & (os::FILE_ATTRIBUTE_HIDDEN | os::FILE_ATTRIBUTE_SYSTEM);
        handle = open_with(wide, access, sharing, disposition, attributes, transaction);
        if (handle == os::INVALID_HANDLE_VALUE) {
            os::DWORD again = os::GetLastError();
            tr.print(QVTR_DETAIL, __LINE__, "Failed to open (2nd) %s, %d\n", path,
                     static_cast<int>(again));
            utl_n::set_last_error(again);
        }
        return handle;
    }
    utl_n::set_last_error(error);
    return os::INVALID_HANDLE_VALUE;
}

file_handle_s* qv_fopen(const char* path, const char* mode, void* transaction, unsigned flags) {
    QVTR_SCOPE(tr, "qv_fopen", source);
    if (!mode || !path) return nullptr;
    if (std::strcmp(path, "qv_stdout") == 0) {
        auto* record = new file_handle_s;
        record->stream = stdout;
        return record;
    }
    const mode_s* chosen = nullptr;
    for (const mode_s& candidate : modes)
        if (std::strcmp(candidate.mode, mode) == 0) chosen = &candidate;
    if (!chosen) return nullptr;

    os::DWORD access = chosen->access;
    if (flags & open_flags_n::write_dac_owner) access |= os::WRITE_DAC | os::WRITE_OWNER;
    bool without_security =
        settings_n::bool_or(settings_n::open_file_without_system_security,
                            settings_n::open_file_without_system_security_default);
    if (!without_security && system_security_access) access |= os::ACCESS_SYSTEM_SECURITY;
    os::DWORD disposition =
        (flags & open_flags_n::open_existing) ? os::OPEN_EXISTING : chosen->disposition;
    bool share = !(flags & open_flags_n::share_nothing);

    os::HANDLE handle = qv_create_file(path, access, disposition, transaction, share, flags);
    if (handle == os::INVALID_HANDLE_VALUE) {
        os::DWORD error = os::GetLastError();
        utl_stream_c why;
        tr.print(QVTR_INFO, __LINE__, "open with ACCESS_SYSTEM_SECURITY failed, err %d, %s\n",
                 static_cast<int>(error), error_text(why, error));
        if (!system_security_access ||
            (error != os::ERROR_PRIVILEGE_NOT_HELD && error != os::ERROR_ACCESS_DENIED))
            return nullptr;
        tr.print(QVTR_SUCCESS, __LINE__,
                 "unable to creat_file by enable ACCESS_SYSTEM_SECURITY%s\n", path);
        handle = qv_create_file(path, access & ~os::ACCESS_SYSTEM_SECURITY, disposition,
                                transaction, share, flags);
        if (handle == os::INVALID_HANDLE_VALUE) {
            os::DWORD again = os::GetLastError();
            tr.print(QVTR_DETAIL, __LINE__,
                     "unable to creat_file by disable ACCESS_SYSTEM_SECURITY %s,%d\n", path,
                     static_cast<int>(again));
            utl_n::set_last_error(again);
            return nullptr;
        }
    }

    std::FILE* stream = nullptr;
    if (!(flags & (open_flags_n::overlapped | open_flags_n::raw_handle))) {
        int fd = os::_open_osfhandle(reinterpret_cast<std::intptr_t>(handle), chosen->stream_flag);
        if (fd < 0) {
            os::CloseHandle(handle);
            return nullptr;
        }
        stream = os::_fdopen(fd, mode);
        if (!stream) {
            // The descriptor owns the handle now: closing it closes both.
            os::_close(fd);
            return nullptr;
        }
    }
    auto* record = new file_handle_s;
    record->flags = flags;
    record->handle = stream ? nullptr : handle;
    record->stream = stream;
    return record;
}
