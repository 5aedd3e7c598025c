#include "common/test_support.h"

#include "files/basic_file.h"
#include "files/file.h"
#include "platform/os.h"
#include "support/thl.h"
#include "support/trc.h"
#include "utl/utl.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <vector>

#if !defined(_WIN32)
#include <sys/xattr.h>
#endif

namespace fs = std::filesystem;

namespace test_support {

std::string utf8(const fs::path& path) {
    std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

fs::path from_utf8(const std::string& text) {
    return fs::path(std::u8string(text.begin(), text.end()));
}

temp_dir_c::temp_dir_c() {
    static std::atomic<unsigned> serial{0};
    std::random_device random;
    for (int attempt = 0; attempt < 100; ++attempt) {
        fs::path candidate = fs::temp_directory_path() /
                             ("stats_mng_test_" + std::to_string(os::current_process_id()) + "_" +
                              std::to_string(serial++) + "_" + std::to_string(random() % 100000));
        std::error_code error;
        if (fs::create_directory(candidate, error)) {
            _path = fs::canonical(candidate);
            return;
        }
    }
    throw std::runtime_error("cannot make a temporary directory");
}

temp_dir_c::~temp_dir_c() {
    std::error_code error;
    fs::permissions(_path, fs::perms::owner_all, fs::perm_options::add, error);
    fs::remove_all(_path, error);
}

std::string temp_dir_c::join(const std::string& name) const {
    return utf8(_path / from_utf8(name));
}

std::string read_file(const std::string& utf8_path) {
    std::ifstream in(from_utf8(utf8_path), std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

void write_file(const std::string& utf8_path, const std::string& content) {
    std::ofstream out(from_utf8(utf8_path), std::ios::binary | std::ios::trunc);
    out << content;
}

std::string bin_dir() { return utf8(from_utf8(os::executable_path()).parent_path()); }

bool on_wine() {
#if defined(_WIN32)
    os::HMODULE ntdll = os::load_library("ntdll.dll");
    bool wine = ntdll && os::find_symbol(ntdll, "wine_get_version") != nullptr;
    return wine;
#else
    return false;
#endif
}

trace_capture_c::trace_capture_c(const std::string& settings) {
    std::string settings_file = _dir.join("trace.trc");
    write_file(settings_file, settings);
    std::uint64_t size = 0;
    qvtr_set_log_directory(nullptr, size, _dir.str().c_str(), "capture", false);
    qvtr_reparse_file(nullptr, size, settings_file.c_str());
    _file = qvtr_current_log_file();
}

trace_capture_c::~trace_capture_c() {
    std::uint64_t size = 0;
    qvtr_set_log_directory(nullptr, size, nullptr, nullptr, false);
    std::string defaults = _dir.join("defaults.trc");
    write_file(defaults, "trace = on\nlevels = 0xffffffff\n");
    qvtr_reparse_file(nullptr, size, defaults.c_str());
}

std::string trace_capture_c::text() const {
    return _file.empty() ? std::string() : read_file(_file);
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        std::string line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
        start = end + 1;
    }
    return lines;
}

std::string trace_line(const std::string& trace, const std::string& message) {
    for (const std::string& line : lines_of(trace)) {
        if (line.size() >= message.size() &&
            line.compare(line.size() - message.size(), message.size(), message) == 0)
            return line;
    }
    return {};
}

std::string short_form(const std::string& path) {
    std::vector<os::wide_char> wide(path_n::path_buffer_size), short_wide(path_n::path_buffer_size);
    path_n::path_to_wide_char_path(path.c_str(), wide.data(), false);
    os::DWORD n = os::GetShortPathNameW(wide.data(), short_wide.data(),
                                        static_cast<os::DWORD>(path_n::path_buffer_size));
    if (n == 0 || n >= path_n::path_buffer_size) return {};
    if (utl_n::uni_stricmp(wide.data(), short_wide.data()) == 0) return {};
    std::vector<char> narrow(path_n::path_buffer_size, 0);
    path_n::wide_char_path_to_path(short_wide.data(), narrow.data());
    return narrow.data();
}

bool long_names_resolve_with_prefix(const std::string& short_path) {
    std::vector<os::wide_char> wide(path_n::path_buffer_size), long_wide(path_n::path_buffer_size);
    path_n::path_to_wide_char_path(short_path.c_str(), wide.data(), true);
    os::DWORD n = os::GetLongPathNameW(wide.data(), long_wide.data(),
                                       static_cast<os::DWORD>(path_n::path_buffer_size));
    return n > 0 && n < path_n::path_buffer_size &&
           utl_n::uni_stricmp(wide.data(), long_wide.data()) != 0;
}

std::size_t count_of(const std::string& haystack, const std::string& needle) {
    if (needle.empty()) return 0;
    std::size_t count = 0;
    for (std::size_t at = haystack.find(needle); at != std::string::npos;
         at = haystack.find(needle, at + 1))
        ++count;
    return count;
}

int open_handle_count() { return open_handle_counter()->value(); }

unsigned long attributes_of(const std::string& utf8_path) {
    std::vector<os::wide_char> wide(path_n::path_buffer_size);
    path_n::path_to_wide_char_path(utf8_path.c_str(), wide.data(), true);
    return os::GetFileAttributesW(wide.data());
}

bool set_attributes(const std::string& utf8_path, unsigned long attributes) {
    std::vector<os::wide_char> wide(path_n::path_buffer_size);
    path_n::path_to_wide_char_path(utf8_path.c_str(), wide.data(), true);
    return os::SetFileAttributesW(wide.data(), static_cast<os::DWORD>(attributes)) != 0;
}

int stored_hidden_bit(const std::string& utf8_path) {
#if defined(_WIN32)
    (void)utf8_path;
    return -1;
#else
    char value[64] = {};
    ssize_t n = getxattr(utf8_path.c_str(), "user.DOSATTRIB", value, sizeof value - 1);
    if (n <= 0) return 0;
    return (std::strtoul(value, nullptr, 0) & os::FILE_ATTRIBUTE_HIDDEN) ? 1 : 0;
#endif
}

} // namespace test_support
