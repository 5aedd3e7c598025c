#include "files/file_modif.h"

#include "files/file.h"
#include "files/file_manipulation.h"
#include "files/qv_io_api_createfile.h"
#include "files/storage_info.h"
#include "files/volume_file.h"
#include "platform/os.h"
#include "support/trc.h"
#include "utl/multi_lang.h"
#include "utl/value.h"

#include <cstring>
#include <string>
#include <vector>

namespace {
constexpr const char* source = "file_modif";
constexpr std::uint32_t default_sector = 512;
} // namespace

FILE_c::FILE_c() : reader(this), writer(this) {}

FILE_c::~FILE_c() { FILE_c::close(); }

void FILE_c::_set_open_flags(std::uint32_t flags) {
    open_flags = flags;
    reader.mode = flags;
    writer.mode = flags;
}

bool FILE_c::_drain_writer() {
    bool flushed = writer.flush();
    bool waited = writer._wait_all();
    _forget_system_position();
    return flushed && waited;
}

bool FILE_c::_release_buffers() {
    reader.reset();
    bool ok = writer.release();
    _forget_system_position();
    return ok;
}

bool FILE_c::open(const char* new_path, const char* mode, void* transaction, unsigned flags) {
    QVTR_SCOPE(tr, "FILE_c::open", source);
    position = 0;
    bool volume = false;
    utl_stream_c device;
    if (names_qv_volume(new_path)) {
        device.append(new_path);
        volume = strip_qv_volume_suffix(device) == 1;
    }
    if (volume) {
        // A volume is opened for reading, or for reading and writing unbuffered, written
        // through and unshared; it always exists, and is never read through a C stream.
        if (!mode || (std::strcmp(mode, "r") != 0 && std::strcmp(mode, "r+") != 0)) {
            tr.print(QVTR_SUCCESS, __LINE__,
                     "change mode from '%s' to 'r+' if it is volume: %s (%s)\n", mode ? mode : "",
                     new_path, device.c_str());
            mode = "r+";
            flags |= open_flags_n::no_buffering | open_flags_n::write_through |
                     open_flags_n::share_nothing;
        }
        flags |= open_flags_n::overlapped | open_flags_n::open_existing;
    }
    _set_open_flags(flags);
    if (open_flags & open_flags_n::overlapped) {
        // The two read paths exclude each other; the writer writes asynchronously unless the
        // settings say otherwise.
        _set_open_flags(open_flags & ~open_flags_n::read_ahead);
        writer.use_aio =
            settings_n::bool_or(settings_n::enable_aio_write, settings_n::enable_aio_write_default);
    } else {
        writer.use_aio = false;
    }
    _forget_system_position();
    _last_transfer = transfer_t::none;
    if (!basic_file_c::open(new_path, mode, transaction, open_flags)) return false;
    // Every open starts at 0 but one for appending, which the system may place at the end.
    if (mode && !std::strchr(mode, 'a')) {
        _system_position = 0;
        _system_position_known = true;
    }
    if (volume) {
        std::string root = device.c_str();
        if (root.empty() || root.back() != '\\') root += '\\';
        std::vector<os::wide_char> wide(path_n::path_buffer_size, 0);
        int room = static_cast<int>(wide.size());
        std::uint32_t sector_size = 0;
        volume_size = 0;
        if (multi_lang_str_n::utf8_to_unicode(root.c_str(), wide.data(), room)) {
            std::uint64_t total = 0;
            if (os::GetDiskFreeSpaceExW(wide.data(), nullptr, &total, nullptr)) volume_size = total;
            os::DWORD per_cluster = 0, bytes = 0, free_clusters = 0, clusters = 0;
            if (os::GetDiskFreeSpaceW(wide.data(), &per_cluster, &bytes, &free_clusters,
                                      &clusters)) {
                sector_size = bytes;
                cluster_size = per_cluster * bytes;
            }
        }
        refresh_file_system_info();
        if (std::strcmp(mode, "r+") == 0 &&
            !volume_file_c::_lock_volume(get_file_handle(), path.c_str(), &volume_locked)) {
            tr.print(QVTR_FAILURE, __LINE__, "Unable to lock volume %s for write\n", path.c_str());
            close();
            return false;
        }
        std::uint32_t length = sector_size ? sector_size : default_sector;
        if (!boot_sector) boot_sector = new std::uint8_t[length]();
        if (basic_file_c::read(boot_sector, length) != static_cast<std::int64_t>(length)) {
            tr.print(QVTR_FAILURE, __LINE__, "failed to read boot sector %s (%d).\n", path.c_str(),
                     static_cast<int>(os::GetLastError()));
            close();
            return false;
        }
        _forget_system_position();
        std::int64_t at = basic_file_c::tell();
        if (at != -1) {
            if (!basic_file_c::seek(0)) {
                tr.print(QVTR_FAILURE, __LINE__, "failed to seek back to position 0. %s (%d).\n",
                         path.c_str(), static_cast<int>(os::GetLastError()));
                close();
                return false;
            }
        } else {
            position = static_cast<std::uint64_t>(-1);
        }
        storage_info_n::consistency_of_bs(boot_sector, file_system_name, &consistent);
        if (sector_size) reader.sector_size = writer.sector_size = sector_size;
        return true;
    }
    volume_size = 0;
    file_system_name[0] = 0;
    // The cluster size of the drive, or 512 where its sector size can't be found.
    unsigned cluster = 0;
    unsigned sector = file_manipulation_n::bytes_per_sector(new_path, &cluster);
    cluster_size = sector ? cluster : default_sector;
    reader.sector_size = writer.sector_size = sector ? sector : default_sector;
    return true;
}

bool FILE_c::mknod() { return true; }

bool FILE_c::refresh_file_system_info() {
    file_system_name[0] = 0;
    utl_stream_c root(path.c_str());
    strip_qv_volume_suffix(root);
    std::string text = root.c_str();
    if (text.empty()) return false;
    for (char& c : text)
        if (c == '/') c = '\\';
    if (text.back() != '\\') text += '\\';
    int size = 0;
    if (!multi_lang_str_n::utf8_to_unicode(text.c_str(), nullptr, size) || size <= 0) return false;
    std::u16string wide(static_cast<std::size_t>(size), u'\0');
    if (!multi_lang_str_n::utf8_to_unicode(text.c_str(), wide.data(), size)) return false;
    os::wide_char name[16] = {};
    if (!os::GetVolumeInformationW(wide.c_str(), nullptr, 0, nullptr, nullptr, nullptr, name, 16))
        return false;
    std::memcpy(file_system_name, name, sizeof name);
    file_system_name[15] = 0;
    return file_system_name[0] != 0;
}

// The tell and seek of the system are skipped where the system's position is known to be this
// object's already and the transfer goes the same way as the last one: the answer and the
// transfer are the same, without two calls.
bool FILE_c::_place(bool for_reading) {
    transfer_t kind = for_reading ? transfer_t::read : transfer_t::write;
    bool same_way = _last_transfer == transfer_t::none || _last_transfer == kind;
    _last_transfer = kind;
    if (same_way && _system_position_known && _system_position == position) return true;
    _forget_system_position();
    std::int64_t at = basic_file_c::tell();
    if (at == -1) {
        position = static_cast<std::uint64_t>(-1);
        return true;
    }
    if (!basic_file_c::seek(static_cast<std::int64_t>(position))) return false;
    _system_position = position;
    _system_position_known = true;
    return true;
}

std::int64_t FILE_c::read(void* buffer, std::int64_t count) {
    if (!is_open()) {
        error = closed_file_error;
        return -1;
    }
    if (open_flags & (open_flags_n::read_ahead | open_flags_n::overlapped)) {
        // Reads never overtake the writes of this object.
        if ((open_flags & open_flags_n::overlapped) && !_drain_writer()) {
            error = pending_writes_error;
            return -1;
        }
        auto wanted = static_cast<std::uint64_t>(count);
        std::uint64_t got = (open_flags & open_flags_n::overlapped)
                                ? reader.read_ahead(buffer, position, wanted)
                                : reader.read(buffer, position, wanted);
        _forget_system_position();
        if (got == cache_base_c::all_ones) return -1;
        position += got;
        return static_cast<std::int64_t>(got);
    }
    if (!_place(true)) return -1;
    std::int64_t moved = basic_file_c::read(buffer, count);
    _note_transfer(moved);
    return moved;
}

std::int64_t FILE_c::write(const void* buffer, std::int64_t count) {
    if (!is_open()) {
        error = closed_file_error;
        return -1;
    }
    // What the reader holds of the file is old once the file is written.
    if (open_flags & (open_flags_n::read_ahead | open_flags_n::overlapped)) reader.discard();
    if (open_flags & open_flags_n::overlapped) {
        std::uint64_t put = writer.write(buffer, position, static_cast<std::uint64_t>(count));
        _forget_system_position();
        if (put == cache_base_c::all_ones) return -1;
        position += put;
        return static_cast<std::int64_t>(put);
    }
    if (!_place(false)) return -1;
    std::int64_t moved = basic_file_c::write(buffer, count);
    _note_transfer(moved);
    return moved;
}

bool FILE_c::flush() {
    // A C stream's flush may drop what it read ahead and leave the system elsewhere (the Windows
    // runtime does): the next transfer asks where the system stands.
    _forget_system_position();
    if ((open_flags & open_flags_n::overlapped) && is_open() && !_drain_writer()) return false;
    return basic_file_c::flush();
}

std::int64_t FILE_c::tell() { return is_open() ? static_cast<std::int64_t>(position) : -1; }

bool FILE_c::seek(std::int64_t new_position) {
    if (!is_open()) return false;
    position = static_cast<std::uint64_t>(new_position);
    return true;
}

void FILE_c::_note_transfer(std::int64_t moved) {
    if (moved == -1) {
        _forget_system_position();
        return;
    }
    position += static_cast<std::uint64_t>(moved);
    // Known before the transfer (placed or kept), so known after it.
    if (_system_position_known) _system_position = position;
}

bool FILE_c::close() {
    QVTR_SCOPE(tr, "FILE_c::close", source);
    _forget_system_position();
    if (!is_open()) return false;
    bool result = true;
    if ((open_flags & open_flags_n::overlapped) && !_drain_writer()) result = false;
    if (_is_volume()) {
        // Each step is tried whatever the one before did: the boot sector written, the handle
        // closed, the lock released through a duplicate that outlasts it, the size restored.
        if (volume_locked && !_fix_volume())
            tr.print(QVTR_FAILURE, __LINE__, "failed to fix volume %s.\n", path.c_str());
        if (!_release_buffers()) result = false;
        os::HANDLE duplicate = basic_file_c::_duplicate_handle(get_file_handle());
        utl_stream_c kept(path.c_str());
        if (!basic_file_c::close()) result = false;
        volume_file_c::unlock_volume(duplicate, kept.c_str(), &volume_locked);
        if (duplicate) basic_file_c::_close_handle(duplicate);
        _update_volume_total_sectors();
        delete[] boot_sector;
        boot_sector = nullptr;
        return result;
    }
    if (!_release_buffers()) result = false;
    if (!basic_file_c::close()) result = false;
    return result;
}

bool FILE_c::_is_volume() const { return names_qv_volume(path.c_str()); }

bool FILE_c::_fix_volume() {
    QVTR_SCOPE(tr, "FILE_c::_fix_volume", source);
    tr.print(QVTR_SUCCESS, __LINE__, "checking and fixing boot sector of volume %s.\n",
             path.c_str());
    volume_file_c volume(this);
    volume.get_total_sectors(&total_sectors);
    bool done = volume.correct_boot_sector(boot_sector, consistent);
    if (!done)
        tr.print(QVTR_FAILURE, __LINE__, "Failed to fix boot sector of volume %s.\n", path.c_str());
    return done;
}

bool FILE_c::_update_volume_total_sectors() {
    QVTR_SCOPE(tr, "FILE_c::_update_volume_total_sectors", source);
    if (!boot_sector || total_sectors == 0) return false;
    tr.print(QVTR_SUCCESS, __LINE__, "checking and fixing total sectors of volume %s.\n",
             path.c_str());
    std::uint64_t original = 0;
    storage_info_n::get_volume_total_sectors(boot_sector, file_system_name, &original);
    tr.print_nl(
        QVTR_SUCCESS, __LINE__, "Original total sectors[%llu], current total sectors[%llu].",
        static_cast<unsigned long long>(original), static_cast<unsigned long long>(total_sectors));
    utl_stream_c device(path.c_str());
    strip_qv_volume_suffix(device);
    if (!storage_info_n::extend_volume(device.c_str(), original)) {
        tr.print(QVTR_FAILURE, __LINE__, "Failed to extend total sectors of volume %s.\n",
                 path.c_str());
        return false;
    }
    return true;
}

bool FILE_c::mark_consistent(bool new_state) {
    if (!is_open()) return false;
    if (_is_volume()) {
        if (!volume_locked) return false;
        consistent = new_state;
    }
    return true;
}

bool FILE_c::is_consistent() { return is_open() && _is_volume() ? consistent : true; }

bool FILE_c::truncate(std::int64_t size) {
    _forget_system_position();
    if (!is_open()) return basic_file_c::truncate(path.c_str(), size);
    if ((open_flags & open_flags_n::overlapped) && !_drain_writer()) return false;
    if (_is_volume()) return true;
    if (open_flags & (open_flags_n::read_ahead | open_flags_n::overlapped)) reader.discard();
    return basic_file_c::truncate(size);
}

std::int64_t FILE_c::size() {
    _forget_system_position();
    if (_is_volume()) return static_cast<std::int64_t>(volume_size);
    return basic_file_c::size();
}
