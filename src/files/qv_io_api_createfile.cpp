#include "files/qv_io_api_createfile.h"

#include "files/file.h"
#include "files/fs_info.h"
#include "support/trc.h"
#include "support/txf_wrapper.h"
#include "utl/multi_lang.h"
#include "utl/utl.h"
#include "utl/utl_stream.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

constexpr const char* source = "qv_io_api_createfile";
constexpr std::size_t longest_temp_name = 12;
constexpr os::DWORD movefile_write_through = 0x8;

bool is_separator(os::wide_char c) { return c == u'\\' || c == u'/'; }

os::wide_char lower(os::wide_char c) {
    os::wide_char text[2] = {c, 0};
    os::CharLowerW(text);
    return text[0];
}

std::string utf8_of(const os::wide_char* wide) {
    int size = 0;
    if (!wide || !multi_lang_str_n::unicode_to_utf8_untraced(wide, nullptr, size) || size <= 0)
        return {};
    std::string text(static_cast<std::size_t>(size), '\0');
    if (!multi_lang_str_n::unicode_to_utf8_untraced(wide, text.data(), size)) return {};
    text.resize(static_cast<std::size_t>(size - 1));
    return text;
}

void copy_wide(os::wide_char* dst, const std::u16string& src, std::size_t room) {
    std::size_t n = std::min(src.size(), room - 1);
    std::copy_n(src.data(), n, dst);
    dst[n] = 0;
}

bool move_file(const os::wide_char* from, const os::wide_char* to, void* transaction) {
    if (transaction)
        return txf_wrapper_c::MoveFileTransacted(from, to, nullptr, nullptr, movefile_write_through,
                                                 transaction) != 0;
    return os::MoveFileExW(from, to, movefile_write_through) != 0;
}

} // namespace

void to_backslash_path(const char* src, utl_stream_c& out) {
    std::string text = src ? src : "";
    std::replace(text.begin(), text.end(), '/', '\\');
    out.append(utl_stream_c::clear_char).append(text.c_str());
}

int strip_qv_volume_suffix(utl_stream_c& path) {
    const std::size_t suffix_length = path_n::volume_pseudo_file_length;
    if (path.get_length() < suffix_length || !path.ends_with(path_n::volume_pseudo_file, true))
        return 0;
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
    const std::u16string suffix = u"$$qv-volume";
    std::u16string wide(path);
    if (wide.size() < suffix.size() ||
        wide.compare(wide.size() - suffix.size(), suffix.size(), suffix) != 0)
        return 0;
    utl_stream_c narrow(utf8_of(path).c_str());
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
                 utf8_of(long_name).c_str(), utf8_of(temp_name).c_str(),
                 utl_n::format_last_error(why, error));
        return;
    }
}

reserve_short_path_name_s::~reserve_short_path_name_s() {
    QVTR_SCOPE(tr, "reserve_short_path_name_s::~reserve_short_path_name_s", source);
    if (is_renamed && !move_file(temp_name, long_name, transaction)) {
        utl_stream_c why;
        tr.print(QVTR_FAILURE, __LINE__, "unable restore filename from '%s' to '%s', %s\n",
                 utf8_of(temp_name).c_str(), utf8_of(long_name).c_str(),
                 utl_n::format_last_error(why, os::GetLastError()));
    }
    delete[] long_name;
    delete[] temp_name;
}
