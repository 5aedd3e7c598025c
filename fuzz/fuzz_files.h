// Scratch files of the fuzz targets that go through the file side of the XML layer. One name per
// process and purpose in the system's temporary folder, so that parallel fuzzer jobs and the
// Windows build under wine (whose temporary folder is a Windows path) each use their own.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

#if defined(_WIN32)
#include <process.h>
#else
#include <unistd.h>
#endif

namespace fuzz_files {

inline long process_id() {
#if defined(_WIN32)
    return static_cast<long>(_getpid());
#else
    return static_cast<long>(getpid());
#endif
}

// <temp>/stats_mng_fuzz_<pid>_<purpose>.xml, chosen once per process and purpose.
inline std::filesystem::path scratch_path(const char* purpose) {
    std::error_code error;
    std::filesystem::path dir = std::filesystem::temp_directory_path(error);
    if (error) dir = ".";
    return dir / ("stats_mng_fuzz_" + std::to_string(process_id()) + "_" + purpose + ".xml");
}

// The path as the library takes it: UTF-8.
inline std::string utf8(const std::filesystem::path& path) {
    std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

// Writes the bytes, replacing the file; a scratch file that cannot be written is a broken
// machine, not a finding, and ends the run with a message.
inline void write_bytes(const std::filesystem::path& path, const void* data, std::size_t size) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(static_cast<const char*>(data), static_cast<std::streamsize>(size));
    file.close();
    if (!file) {
        std::fprintf(stderr, "cannot write the scratch file %s\n", utf8(path).c_str());
        std::exit(2);
    }
}

inline std::string read_bytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
}

inline void remove(const std::filesystem::path& path) {
    std::error_code error;
    std::filesystem::remove(path, error);
}

} // namespace fuzz_files
