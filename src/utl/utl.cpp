#include "utl/utl.h"

#include "support/trc.h"
#include "utl/multi_lang.h"
#include "utl/utl_stream.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>

namespace utl_n {

namespace {

constexpr std::size_t longest_text = 0x40000000;

// The lower-cased wide form of `text`; false for a text too long to convert.
bool lower_wide(const char* text, std::u16string& wide) {
    if (std::strlen(text) >= longest_text) return false;
    int size = 0;
    if (!multi_lang_str_n::utf8_to_unicode_untraced(text, nullptr, size) || size <= 0) return false;
    wide.assign(static_cast<std::size_t>(size), u'\0');
    if (!multi_lang_str_n::utf8_to_unicode_untraced(text, wide.data(), size)) return false;
    os::CharLowerW(wide.data());
    wide.resize(static_cast<std::size_t>(size - 1));
    return true;
}

} // namespace

int utf8_prefix_strnicmp(const char* a, const char* b) {
    if (!a || !b) return 0;
    std::u16string wide_a, wide_b;
    if (!lower_wide(a, wide_a) || !lower_wide(b, wide_b)) return 1;
    // wcsncmp over the length of `a`: `b`'s terminator ends a shorter `b`.
    for (std::size_t i = 0; i < wide_a.size(); ++i) {
        int ca = wide_a[i];
        int cb = i < wide_b.size() ? wide_b[i] : 0;
        if (ca != cb) return ca - cb;
    }
    return 0;
}

int uni_stricmp(const os::wide_char* a, const os::wide_char* b) {
    if (!a || !b) return a == b ? 0 : (a ? 1 : -1);
    std::u16string lower_a(a), lower_b(b);
    os::CharLowerW(lower_a.data());
    os::CharLowerW(lower_b.data());
    std::size_t i = 0;
    while (i < lower_a.size() && i < lower_b.size() && lower_a[i] == lower_b[i]) ++i;
    int ca = i < lower_a.size() ? lower_a[i] : 0;
    int cb = i < lower_b.size() ? lower_b[i] : 0;
    return ca < cb ? -1 : (ca > cb ? 1 : 0);
}

namespace {

constexpr const char* source = "utl";
constexpr std::size_t size_classes[] = {16, 32, 64, 256, 1024};

// The wide form of a narrow path with backslashes, for the volume calls.
std::u16string wide_backslash_path(const char* path) {
    std::u16string wide = multi_lang_str_n::to_utf16_string(path);
    std::replace(wide.begin(), wide.end(), u'/', u'\\');
    return wide;
}

} // namespace

std::size_t str_block_size(std::size_t length, bool round_size) {
    std::size_t need = length + 1;
    if (round_size) {
        for (std::size_t size : size_classes)
            if (size >= need) return size;
    }
    return need;
}

char* str_strncopy(const char* text, std::size_t length, bool round_size) {
    if (!text) return nullptr;
    char* block = new char[str_block_size(length, round_size)];
    // Copies what the text has up to `length`; a shorter text leaves zeros behind it.
    std::size_t available = strnlen(text, length);
    std::memcpy(block, text, available);
    std::memset(block + available, 0, length - available);
    block[length] = 0;
    return block;
}

char* str_copy(const char* text, bool round_size) {
    return text ? str_strncopy(text, std::strlen(text), round_size) : nullptr;
}

void str_replace_copy(char*& field, const char* text) {
    delete[] field;
    field = str_copy(text, false);
}

void set_last_error(unsigned int code) { os::SetLastError(code); }

const char* format_last_error(utl_stream_c& out, unsigned int code) {
    QVTR_SCOPE(tr, "utl_n::format_last_error", source);
    if (code < 1) code = os::GetLastError();
    os::wide_char* message = nullptr;
    os::DWORD flags = os::FORMAT_MESSAGE_ALLOCATE_BUFFER | os::FORMAT_MESSAGE_IGNORE_INSERTS |
                      os::FORMAT_MESSAGE_FROM_SYSTEM;
    os::DWORD n = os::FormatMessageW(flags, nullptr, code, 0,
                                     reinterpret_cast<os::wide_char*>(&message), 0, nullptr);
    if (n > 0 && message) {
        int room = static_cast<int>(6 * n + 1);
        char* narrow = new char[static_cast<std::size_t>(room)];
        if (multi_lang_str_n::unicode_to_utf8_untraced(message, narrow, room)) out.append(narrow);
        delete[] narrow;
    }
    if (message) os::LocalFree(message);
    for (int k = 0; k < 2; ++k) {
        if (out.ends_with("\n", true))
            out.remove_suffix('\n');
        else if (out.ends_with("\r", true))
            out.remove_suffix('\r');
    }
    out.append("(").append(code).append(")");
    return out.c_str();
}

std::uint64_t i32x32to64(std::uint32_t low, std::uint32_t high) {
    return (static_cast<std::uint64_t>(high) << 32) | low;
}

void i64to32x32(std::uint64_t value, std::uint32_t& low, std::uint32_t& high) {
    low = static_cast<std::uint32_t>(value);
    high = static_cast<std::uint32_t>(value >> 32);
}

bool get_total_bytes_of_path(const char* path, std::int64_t* total) {
    QVTR_SCOPE(tr, "utl_n::get_total_bytes_of_path", source);
    if (total) *total = 0;
    if (!path) return false;
    std::u16string wide = wide_backslash_path(path);
    std::uint64_t free_to_caller = 0, total_bytes = 0;
    if (!os::GetDiskFreeSpaceExW(wide.c_str(), &free_to_caller, &total_bytes, nullptr))
        return false;
    if (total) *total = static_cast<std::int64_t>(total_bytes);
    return true;
}

bool get_cluster_and_sector_size(const char* path, unsigned int* cluster_size,
                                 unsigned int* sector_size) {
    QVTR_SCOPE(tr, "utl_n::get_cluster_and_sector_size", source);
    if (cluster_size) *cluster_size = 0;
    if (sector_size) *sector_size = 0;
    if (!path) return false;
    std::u16string wide = wide_backslash_path(path);
    os::DWORD sectors_per_cluster = 0, bytes_per_sector = 0, free_clusters = 0, total_clusters = 0;
    if (!os::GetDiskFreeSpaceW(wide.c_str(), &sectors_per_cluster, &bytes_per_sector,
                               &free_clusters, &total_clusters))
        return false;
    if (cluster_size)
        *cluster_size = static_cast<unsigned int>(sectors_per_cluster * bytes_per_sector);
    if (sector_size) *sector_size = static_cast<unsigned int>(bytes_per_sector);
    return true;
}

std::uint32_t string_to_ip(const char* text) {
    if (!text) return 0;
    unsigned int field[4] = {};
    char after = 0;
    int count =
        std::sscanf(text, "%u.%u.%u.%u%c", &field[0], &field[1], &field[2], &field[3], &after);
    if (count != 4 && !(count == 5 && std::isspace(static_cast<unsigned char>(after)))) return 0;
    std::uint32_t address = 0;
    for (unsigned int part : field) {
        if (part >= 256) return 0;
        address = (address << 8) | part;
    }
    return address;
}

} // namespace utl_n
