#include "files/file.h"

#include "support/thl.h"
#include "support/trc.h"
#include "utl/multi_lang.h"
#include "utl/utl.h"

#include <cctype>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace {

constexpr const char* source = "file";

bool is_separator(char c) { return c == '/' || c == '\\'; }

bool begins_with(const char* text, const char* prefix) {
    return std::strncmp(text, prefix, std::strlen(prefix)) == 0;
}

// strlen that stops after `limit` characters, for inputs that may be very long.
std::size_t bounded_length(const char* text, std::size_t limit) {
    const void* end = std::memchr(text, 0, limit);
    return end ? static_cast<std::size_t>(static_cast<const char*>(end) - text) : limit;
}

void copy_bounded(char* dst, const char* src, std::size_t limit) {
    std::size_t n = bounded_length(src, limit);
    std::memcpy(dst, src, n);
    dst[n] = 0;
}

// `prefix` then `rest` into a path buffer, cut at the longest path.
void join_bounded(char* dst, const char* prefix, const char* rest) {
    std::size_t n = std::strlen(prefix);
    std::memcpy(dst, prefix, n);
    copy_bounded(dst + n, rest, path_n::longest_path - n);
}

} // namespace

void path_n::standard_dir_path(const char* src, char* dst, bool strip_long_prefix) {
    QVTR_SCOPE(tr, "path_n::standard_dir_path", source);
    std::size_t len = std::strlen(src);
    // A volume-GUID path is read from a copy without its trailing backslash, and its long
    // prefix always stays: it is the only name such a volume has.
    char guid_copy[path_buffer_size];
    if (is_volume_guid_path(src, true)) {
        copy_bounded(guid_copy, src, longest_path);
        std::size_t n = std::strlen(guid_copy);
        if (n && guid_copy[n - 1] == '\\') guid_copy[n - 1] = 0;
        src = guid_copy;
        strip_long_prefix = false;
    }
    const char* read = src;
    std::size_t keep = 0;
    if (len > 4 && begins_with(src, "\\\\?\\")) {
        if (strip_long_prefix)
            read += 4;
        else
            keep = 4;
    }
    // Both tests use the length of the whole source, even when reading has moved on.
    if (len > 2 && begins_with(read, "\\\\")) keep += 2;
    if (len == 2 && read[1] == ':') {
        std::strcpy(dst, read);
        return;
    }

    keep = bounded_length(read, keep);
    std::memcpy(dst, read, keep);
    std::size_t w = keep;
    bool has_dots = false;
    for (std::size_t i = keep; read[i] != 0 && i < longest_path; ++i) {
        char c = read[i];
        if (is_separator(c)) {
            if (w == 0 || dst[w - 1] != '/') dst[w++] = '/';
            continue;
        }
        if (c == '.') {
            char after = read[i + 1];
            bool follows_separator = w > 0 && dst[w - 1] == '/';
            if (w == 0 ||
                (follows_separator && (after == 0 || after == '.' || is_separator(after))))
                has_dots = true;
        }
        dst[w++] = c;
    }
    dst[w] = 0;
    if (w <= 1) return;
    if (w == 3 && dst[1] == ':') return;

    // A device root keeps a trailing '/', a path below a device stays as it is.
    constexpr std::string_view device_prefix = "GLOBALROOT/Device/";
    if (w > device_prefix.size() && dst[1] != ':') {
        const char* device = strip_long_prefix ? dst : dst + 4;
        if (begins_with(device, device_prefix.data())) {
            if (std::strchr(device + device_prefix.size(), '/') == nullptr && w < longest_path) {
                dst[w++] = '/';
                dst[w] = 0;
            }
            return;
        }
    }
    if (dst[w - 1] == '/') dst[--w] = 0;
    if (has_dots) _normalize_path(dst);
}

void path_n::_normalize_path(char* path) {
    bool rooted = path[0] == '/';
    ptr_list_c segments(false);
    std::size_t n = bounded_length(path, longest_path);
    for (std::size_t i = 0; i < n; ++i) {
        if (path[i] == '/') path[i] = 0;
    }
    for (std::size_t i = 0; i < n; ++i) {
        if (path[i] != 0 && (i == 0 || path[i - 1] == 0)) segments.append(path + i);
    }

    const void* segment = segments.first();
    while (segment) {
        const char* text = static_cast<const char*>(segment);
        if (std::strcmp(text, ".") == 0) {
            segment = segments.remove_current(segment);
        } else if (std::strcmp(text, "..") == 0) {
            const void* before = segments.prev(segment);
            // Nothing to climb out of: the path is left as the split made it.
            if (!before) return;
            segments.remove_current(before);
            segment = segments.remove_current(segment);
        } else {
            segment = segments.next(segment);
        }
    }

    char result[path_buffer_size];
    std::size_t w = 0;
    if (rooted) result[w++] = '/';
    bool first = true;
    for (const void* s = segments.first(); s; s = segments.next(nullptr)) {
        const char* text = static_cast<const char*>(s);
        if (!first && w < longest_path) result[w++] = '/';
        first = false;
        for (; *text && w < longest_path; ++text) result[w++] = *text;
    }
    result[w] = 0;
    if (w == 0) std::strcpy(result, ".");
    copy_bounded(path, result, longest_path);
    if (std::strlen(path) == 2 && path[1] == ':') std::strcpy(path + 2, "/");
    path[longest_path] = 0;
}

void path_n::path_to_wide_char_path(const char* src, wide_char* dst, bool add_long_prefix) {
    dst[0] = 0;
    if (!src || !*src) return;
    // Two terminators are enough: the tests below read no further than local[1].
    char local[path_buffer_size];
    local[0] = local[1] = 0;
    if (is_volume_guid_path(src, true)) {
        copy_bounded(local, src, longest_path);
        for (char* p = local; *p; ++p)
            if (*p == '/') *p = '\\';
    } else {
        standard_dir_path(src, local, true);
    }

    char prefixed[path_buffer_size];
    const char* text = local;
    if (add_long_prefix) {
        std::size_t n = std::strlen(local);
        if (local[1] == ':') {
            join_bounded(prefixed, "\\\\?\\", local);
            text = prefixed;
        } else if (begins_with(local, "\\\\") && n > 2 && local[2] != '?') {
            join_bounded(prefixed, "\\\\?\\UNC", local + 1);
            text = prefixed;
        } else if (n > 10 && begins_with(local, "GLOBALROOT")) {
            join_bounded(prefixed, "\\\\?\\", local);
            text = prefixed;
        }
    }
    char final_form[path_buffer_size];
    copy_bounded(final_form, text, longest_path);
    for (char* p = final_form; *p; ++p)
        if (*p == '/') *p = '\\';

    int size = static_cast<int>(path_buffer_size);
    if (!multi_lang_str_n::utf8_to_unicode(final_form, dst, size)) dst[0] = 0;
}

void path_n::wide_char_path_to_path(const wide_char* src, char* dst) {
    int size = static_cast<int>(path_buffer_size);
    if (!multi_lang_str_n::unicode_to_utf8(src, dst, size)) dst[0] = 0;
}

// On POSIX there are no short names: GetLongPathNameW gives the name back and this is false.
bool path_n::is_short_name(const char* path) {
    if (!path || !os::has_short_names) return false;
    wide_char given[path_buffer_size];
    wide_char long_form[path_buffer_size];
    path_to_wide_char_path(path, given, true);
    os::DWORD n = os::GetLongPathNameW(given, long_form, static_cast<os::DWORD>(path_buffer_size));
    if (n == 0 || n > path_buffer_size) return false;
    return utl_n::uni_stricmp(given, long_form) != 0;
}

bool path_n::drive_name_from_path(const char* src, char* dst) {
    if (!src || !dst) return false;
    if (is_volume_guid_path(src, true)) {
        std::memcpy(dst, src, volume_guid_path_length);
        dst[volume_guid_path_length] = '\\';
        dst[volume_guid_path_length + 1] = 0;
        for (char* p = dst; *p; ++p)
            if (*p == '/') *p = '\\';
        return true;
    }
    if (is_volumeshadowcopy_path(src)) {
        get_root_volumeshadowcopy(src, dst);
        return true;
    }
    if (bounded_length(src, 2) < 2) return false;
    if (std::isalpha(static_cast<unsigned char>(src[0])) && src[1] == ':') {
        dst[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(src[0])));
        std::strcpy(dst + 1, ":\\");
        return true;
    }
    if (begins_with(src, "\\\\")) {
        copy_bounded(dst, src, longest_path);
        if (dst[2] == 0) {
            std::strcpy(dst + 2, "\\");
            return true;
        }
        int separators = 0;
        for (std::size_t i = 2;; ++i) {
            if (dst[i] == 0) {
                if (i < longest_path) {
                    dst[i] = '\\';
                    dst[i + 1] = 0;
                }
                return true;
            }
            if (is_separator(dst[i])) {
                dst[i] = '\\';
                if (++separators == 2) {
                    dst[i + 1] = 0;
                    return true;
                }
            }
        }
    }
    return false;
}

bool path_n::is_full_path_name(const char* path) {
    if (!path) return false;
    if (path[0] == '/' || path[0] == '~') return true;
    if (std::isalpha(static_cast<unsigned char>(path[0])) && path[1] == ':' &&
        is_separator(path[2]))
        return true;
    return begins_with(path, "\\\\") && path[2] != 0;
}

bool path_n::is_file_in_dir(const char* file, const char* dir, bool case_sensitive) {
    if (!file || !dir) return false;
    std::size_t n = std::strlen(dir);
    if (n && is_separator(dir[n - 1])) --n;
    if (n > std::strlen(file)) return false;
    if (case_sensitive) {
        if (std::strncmp(file, dir, n) != 0) return false;
    } else if (utl_n::utf8_prefix_strnicmp(dir, file) != 0) {
        return false;
    }
    return file[n] == '/' || file[n] == '\\' || file[n] == 0;
}

bool path_n::is_stream_in_path(const char* file, const char* stream_path) {
    if (!file || !stream_path || bounded_length(file, 2) < 2) return false;
    const char* rest = stream_path;
    if (std::isalpha(static_cast<unsigned char>(rest[0])) && rest[1] == ':' &&
        is_separator(rest[2]))
        rest += 3;
    const char* colon = std::strrchr(rest, ':');
    if (!colon) return false;
    std::size_t file_length = std::strlen(file);
    std::size_t colon_position = static_cast<std::size_t>(colon - stream_path);
    bool file_is_prefix = utl_n::utf8_prefix_strnicmp(file, stream_path) == 0;
    if (file_length == std::strlen(stream_path) && file_is_prefix) return true;
    return file_length == colon_position && file_is_prefix;
}

bool path_n::stream_path_to_file(const char* src, char* dst) {
    if (!src || !dst) return false;
    std::size_t n = bounded_length(src, path_buffer_size);
    if (n < 2 || n > longest_path || !is_stream_in_path(src, src)) return false;
    std::memcpy(dst, src, n + 1);
    *std::strrchr(dst, ':') = 0;
    return true;
}

char* path_n::get_root_volumeshadowcopy(const char* src, char* dst) {
    if (!src || !dst || !is_volumeshadowcopy_path(src)) return nullptr;
    char copy[path_buffer_size];
    copy_bounded(copy, src, longest_path);
    for (char* p = copy + shadow_copy_prefix_length; *p; ++p) {
        if (is_separator(*p)) {
            *p = 0;
            break;
        }
    }
    std::strcpy(dst, copy);
    return dst;
}

bool is_volume_guid_path(const char* path, bool allow_rest) {
    if (!path) return false;
    std::size_t n = bounded_length(path, path_n::volume_guid_path_length + 2);
    if (n < path_n::volume_guid_path_length) return false;
    if (!is_separator(path[0]) || !is_separator(path[1]) || (path[2] != '?' && path[2] != '.') ||
        !is_separator(path[3]))
        return false;
    for (std::size_t i = 0; i < 6; ++i) {
        if (std::tolower(static_cast<unsigned char>(path[4 + i])) != "volume"[i]) return false;
    }
    if (allow_rest) return true;
    return n == path_n::volume_guid_path_length ||
           (n == path_n::volume_guid_path_length + 1 && is_separator(path[n - 1]));
}

bool is_volumeshadowcopy_path(const char* path) {
    if (!path) return false;
    for (std::size_t i = 0; i < path_n::shadow_copy_prefix_length; ++i) {
        char c = path[i] == '/' ? '\\' : path[i];
        if (c != path_n::shadow_copy_prefix[i]) return false;
    }
    return true;
}

bool is_volume_mount_root(const char* path) {
    os::wide_char wide[path_n::path_buffer_size];
    os::wide_char volume[path_n::path_buffer_size];
    path_n::path_to_wide_char_path(path, wide, true);
    if (!os::GetVolumePathNameW(wide, volume, static_cast<os::DWORD>(path_n::path_buffer_size)))
        return false;
    return os::_wcsicmp(volume, wide) == 0;
}
