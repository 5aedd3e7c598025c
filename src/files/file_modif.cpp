#include "files/file_modif.h"

#include "files/file_manipulation.h"
#include "files/qv_io_api_createfile.h"
#include "support/trc.h"

namespace {
constexpr const char* source = "file_modif";
constexpr std::uint32_t default_sector = 512;
} // namespace

FILE_c::~FILE_c() { FILE_c::close(); }

bool FILE_c::open(const char* new_path, const char* mode, void* transaction, unsigned flags) {
    QVTR_SCOPE(tr, "FILE_c::open", source);
    position = 0;
    open_flags = flags;
    utl_stream_c device(new_path);
    if (strip_qv_volume_suffix(device)) {
        // A whole volume is opened by the volume paths of this class, which this build lacks.
        tr.print(QVTR_FAILURE, __LINE__, "Volume files are not supported in this build: %s\n",
                 new_path);
        return false;
    }
    if (!basic_file_c::open(new_path, mode, transaction, open_flags)) return false;
    // The cluster size of the drive, or 512 where its sector size can't be found.
    unsigned cluster = 0;
    unsigned sector = file_manipulation_n::bytes_per_sector(new_path, &cluster);
    cluster_size = sector ? cluster : default_sector;
    return true;
}

bool FILE_c::mknod() { return true; }

bool FILE_c::_place() {
    std::int64_t at = basic_file_c::tell();
    if (at == -1) {
        position = static_cast<std::uint64_t>(-1);
        return true;
    }
    return basic_file_c::seek(static_cast<std::int64_t>(position));
}

std::int64_t FILE_c::read(void* buffer, std::int64_t count) {
    if (!is_open()) {
        error = closed_file_error;
        return -1;
    }
    if (!_place()) return -1;
    std::int64_t moved = basic_file_c::read(buffer, count);
    if (moved != -1) position += static_cast<std::uint64_t>(moved);
    return moved;
}

std::int64_t FILE_c::write(const void* buffer, std::int64_t count) {
    if (!is_open()) {
        error = closed_file_error;
        return -1;
    }
    if (!_place()) return -1;
    std::int64_t moved = basic_file_c::write(buffer, count);
    if (moved != -1) position += static_cast<std::uint64_t>(moved);
    return moved;
}

bool FILE_c::flush() { return basic_file_c::flush(); }

std::int64_t FILE_c::tell() { return is_open() ? static_cast<std::int64_t>(position) : -1; }

bool FILE_c::seek(std::int64_t new_position) {
    if (!is_open()) return false;
    position = static_cast<std::uint64_t>(new_position);
    return true;
}

bool FILE_c::close() {
    if (!is_open()) return false;
    return basic_file_c::close();
}

bool FILE_c::truncate(std::int64_t size) {
    if (!is_open()) return basic_file_c::truncate(path.c_str(), size);
    return basic_file_c::truncate(size);
}

std::int64_t FILE_c::size() { return basic_file_c::size(); }
