// FILE_c: the file class the rest of the library uses. It keeps its own position, so that tell
// and seek cost no system call; each read and write goes to the system at that position.
#pragma once

#include "files/basic_file.h"

#include <cstdint>

class FILE_c : public basic_file_c {
  public:
    // The error FILE_c puts in `error` for a read or write on a closed file.
    static constexpr std::int64_t closed_file_error = 0xE0001;

    FILE_c() = default;
    ~FILE_c() override;

    bool open(const char* path, const char* mode, void* transaction, unsigned flags) override;
    bool mknod() override;
    std::int64_t read(void* buffer, std::int64_t count) override;
    std::int64_t write(const void* buffer, std::int64_t count) override;
    bool flush() override;
    std::int64_t tell() override;
    bool seek(std::int64_t new_position) override;
    bool close() override;
    bool truncate(std::int64_t size) override;
    std::int64_t size() override;

    std::uint32_t open_flags = 0;
    std::uint64_t position = 0;
    std::uint32_t cluster_size = 0;

  private:
    // Puts the system's position where this object's is; false when that fails.
    bool _place();
};
