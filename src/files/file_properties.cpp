#include "files/file_properties.h"

#include "files/basic_file.h"
#include "files/file.h"
#include "files/file_manipulation.h"
#include "files/fs_info.h"
#include "files/qv_io_api_createfile.h"
#include "support/trc.h"
#include "support/txf_wrapper.h"
#include "utl/multi_lang.h"
#include "utl/time_span.h"
#include "utl/utl.h"
#include "utl/win_internals.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace {

constexpr const char* source = "file_properties";
constexpr std::uint32_t host_readonly = os::FILE_ATTRIBUTE_READONLY;
constexpr std::uint32_t host_directory = os::FILE_ATTRIBUTE_DIRECTORY;
constexpr std::uint32_t host_normal = os::FILE_ATTRIBUTE_NORMAL;
constexpr std::uint32_t host_sparse = os::FILE_ATTRIBUTE_SPARSE_FILE;
constexpr std::uint32_t host_compressed = os::FILE_ATTRIBUTE_COMPRESSED;
constexpr std::uint32_t fat_family = 70;
constexpr std::size_t reparse_buffer_size = 16408;

// Mode bits and the host attributes they stand for; the flag says whether set_qvmode gives the
// attribute back.
struct mode_bit_s {
    std::uint32_t mode;
    std::uint32_t host;
    bool given_back;
};

constexpr mode_bit_s mode_bits[] = {
    {file_mode_n::archive, os::FILE_ATTRIBUTE_ARCHIVE, true},
    {file_mode_n::compressed, os::FILE_ATTRIBUTE_COMPRESSED, true},
    {file_mode_n::encrypted, os::FILE_ATTRIBUTE_ENCRYPTED, true},
    {file_mode_n::hidden, os::FILE_ATTRIBUTE_HIDDEN, true},
    {file_mode_n::offline, os::FILE_ATTRIBUTE_OFFLINE, true},
    {file_mode_n::system, os::FILE_ATTRIBUTE_SYSTEM, true},
    {file_mode_n::reparse, os::FILE_ATTRIBUTE_REPARSE_POINT, false},
    {file_mode_n::sparse, os::FILE_ATTRIBUTE_SPARSE_FILE, true},
    {file_mode_n::device, os::FILE_ATTRIBUTE_DEVICE, true},
};

std::uint64_t join_halves(os::DWORD high, os::DWORD low) {
    return (static_cast<std::uint64_t>(high) << 32) | low;
}

// A link's target in UTF-8 with forward slashes, cut at the longest path.
std::string utf8_of(const std::u16string& wide) {
    std::string text = multi_lang_str_n::to_utf8_string(wide.c_str());
    if (text.size() > path_n::longest_path) text.resize(path_n::longest_path);
    std::replace(text.begin(), text.end(), '\\', '/');
    return text;
}

std::uint32_t read16(const unsigned char* bytes) { return bytes[0] | (bytes[1] << 8); }
std::uint32_t read32(const unsigned char* bytes) {
    return read16(bytes) | (read16(bytes + 2) << 16);
}

} // namespace

void file_mode_c::reset() {
    qv_mode = 0x3802;
    host_mode = host_normal;
}

void file_mode_c::copy(const file_mode_c& other) {
    qv_mode = other.qv_mode;
    host_mode = other.host_mode;
}

void file_mode_c::set_qvmode(std::uint32_t word) {
    qv_mode = word;
    std::uint32_t host = (word & file_mode_n::dir) ? host_directory : 0;
    for (const mode_bit_s& bit : mode_bits)
        if (bit.given_back && (word & bit.mode)) host |= bit.host;
    if (!(word & file_mode_n::writable)) host |= host_readonly;
    if ((host & ~host_directory) == 0) host |= host_normal;
    host_mode = host;
}

bool file_mode_c::set_hostmode(std::uint32_t word) {
    host_mode = word;
    std::uint32_t mode = ((word & host_directory) ? file_mode_n::dir : file_mode_n::reg) |
                         file_mode_n::fixed_permissions;
    if (!(word & host_readonly)) mode |= file_mode_n::writable;
    if (!(word & host_normal)) {
        for (const mode_bit_s& bit : mode_bits)
            if (word & bit.host) mode |= bit.mode;
    }
    qv_mode = mode;
    return true;
}

void file_mode_c::toggle_readonly() { set_qvmode(qv_mode ^ file_mode_n::writable); }

void file_prop_data_s::reset() {
    transaction = nullptr;
    mode.reset();
    modify_time = 0;
    size = stored_size = 0;
    is_valid = link_count = 0;
    file_index = 0;
    volume_serial = 0;
    reserved1 = reserved2 = 0xFFFFFFFF;
    reserved3 = 0;
    reparse_target.append(utl_stream_c::clear_char);
    reparse_target_is_file = false;
    reparse_kind = reparse_none;
}

void file_prop_data_s::copy(const file_prop_data_s& other) {
    if (this == &other) return;
    transaction = other.transaction;
    mode.copy(other.mode);
    modify_time = other.modify_time;
    size = other.size;
    stored_size = other.stored_size;
    is_valid = other.is_valid;
    link_count = other.link_count;
    file_index = other.file_index;
    volume_serial = other.volume_serial;
    reserved1 = other.reserved1;
    reserved2 = other.reserved2;
    reserved3 = other.reserved3;
    reparse_target = other.reparse_target;
    reparse_target_is_file = other.reparse_target_is_file;
    reparse_kind = other.reparse_kind;
}

void file_name_and_prop_data_s::copy(const file_name_and_prop_data_s& other) {
    file_prop_data_s::copy(other);
    if (this != &other) name = other.name;
}

void file_prop_access_c::reset() {
    prop.reset();
    prop.name.append(utl_stream_c::clear_char);
}

bool file_prop_access_c::_load_common(os::HANDLE handle, const char* path) {
    QVTR_SCOPE(tr, "file_prop_access_c::load_file_properties_from_disk", source);
    os::BY_HANDLE_FILE_INFORMATION information{};
    if (!os::GetFileInformationByHandle(handle, &information)) return false;
    os::DWORD attributes = information.dwFileAttributes;
    // A sparse reparse point is treated as a plain file.
    constexpr os::DWORD sparse_reparse =
        os::FILE_ATTRIBUTE_SPARSE_FILE | os::FILE_ATTRIBUTE_REPARSE_POINT;
    if ((attributes & sparse_reparse) == sparse_reparse) attributes &= ~sparse_reparse;
    prop.mode.set_hostmode(attributes);
    prop.size = join_halves(information.nFileSizeHigh, information.nFileSizeLow);
    std::uint64_t write_time = join_halves(information.ftLastWriteTime.dwHighDateTime,
                                           information.ftLastWriteTime.dwLowDateTime);
    prop.modify_time =
        static_cast<std::int64_t>(date_time_c::convert_filetime_to_time_t(&write_time));
    prop.is_valid = 1;
    prop.link_count = 1;
    if (information.nNumberOfLinks > 1) {
        prop.mode.qv_mode |= file_mode_n::many_links;
        prop.link_count = information.nNumberOfLinks;
    }
    // Only ever compared with values formed the same way.
    prop.file_index =
        (static_cast<std::uint64_t>(information.nFileIndexHigh) << 4) | information.nFileIndexLow;
    prop.volume_serial = information.dwVolumeSerialNumber;
    unsigned char compression[16] = {};
    if (win_internals_n::query_info_file(handle, compression)) {
        std::memcpy(&prop.stored_size, compression, sizeof prop.stored_size);
    } else {
        tr.print(QVTR_INFO, __LINE__, "failed to get compressed size of %s, using normal size\n",
                 path);
        prop.stored_size = prop.size;
    }
    return true;
}

namespace {
// The volume file whose size this thread is asking for. basic_file_c::size asks this loader, which
// asks the file's size: a second request for the same file fails instead of going round forever.
thread_local const basic_file_c* volume_being_sized = nullptr;
} // namespace

bool file_prop_access_c::load_file_properties_from_disk(basic_file_c& file) {
    reset();
    os::HANDLE handle = file._get_file_handle();
    if (handle == nullptr || handle == os::INVALID_HANDLE_VALUE) return false;
    if (file.path.ends_with(path_n::volume_pseudo_file, true)) {
        if (volume_being_sized == &file) return false;
        const basic_file_c* outer = volume_being_sized;
        volume_being_sized = &file;
        std::int64_t size = file.size();
        volume_being_sized = outer;
        prop.mode.qv_mode |= file_mode_n::device;
        prop.size = prop.stored_size = static_cast<std::uint64_t>(size < 0 ? 0 : size);
        prop.is_valid = 1;
    } else if (!_load_common(handle, file.path.c_str())) {
        reset();
        return false;
    }
    prop.name = file.path;
    return true;
}

bool file_prop_access_c::load_file_properties_from_disk(const char* path, file_prop_data_s* out,
                                                        void* transaction) {
    reset();
    if (out) out->reset();
    if (!path) return false;
    utl_stream_c stripped(path);
    if (strip_qv_volume_suffix(stripped)) {
        prop.mode.qv_mode |= file_mode_n::device;
        stripped.append("\\");
        std::int64_t total = 0;
        utl_n::get_total_bytes_of_path(stripped.c_str(), &total);
        prop.size = prop.stored_size = static_cast<std::uint64_t>(total);
        prop.is_valid = 1;
    } else {
        basic_file_c::auto_release_file_handle_c kept(
            qv_create_file(path, 0, os::OPEN_EXISTING, transaction, true, 0));
        if (kept.handle == os::INVALID_HANDLE_VALUE || !_load_common(kept.handle, path)) {
            reset();
            return false;
        }
        prop.transaction = transaction;
        if (prop.mode.qv_mode & file_mode_n::reparse) _get_reparse_point_prop(kept.handle, path);
    }
    if (out) out->copy(prop);
    prop.name.append(utl_stream_c::clear_char).append(path);
    return true;
}

bool file_prop_access_c::set_mode_to_disk(const char* path, const file_mode_c& mode) {
    bool loaded = prop.name.get_length() && prop.name.compare(path, true) == 0;
    if (!loaded && !load_file_properties_from_disk(path, nullptr, nullptr)) return false;
    return _set_mode_to_disk(mode, true, nullptr);
}

bool file_prop_access_c::_set_mode_to_disk(const file_mode_c& mode, bool change_compression,
                                           basic_file_c* file) {
    QVTR_SCOPE(tr, "file_prop_access_c::_set_mode_to_disk", source);
    std::uint32_t target = mode.host_mode;
    std::uint32_t current = prop.mode.host_mode;
    const char* name = prop.name.c_str();
    // Sparseness can't be taken back.
    if (current & host_sparse) {
        if (!(target & host_sparse))
            tr.print(QVTR_DETAIL, __LINE__, "Sparse attribute can NOT be removed for %s\n", name);
        target |= host_sparse;
    }
    bool do_compress = change_compression && ((target ^ current) & host_compressed);
    bool do_sparse = (target ^ current) & host_sparse;
    if (do_compress || do_sparse) {
        bool ok = true;
        bool made_writable = false;
        if (!(prop.mode.qv_mode & file_mode_n::writable)) made_writable = _add_write_attrib();
        // Without a handle the device calls are skipped, and that is no failure.
        std::optional<basic_file_c::auto_release_file_handle_c> opened_here;
        os::HANDLE handle = file ? file->_get_file_handle() : os::INVALID_HANDLE_VALUE;
        if (!file) {
            opened_here.emplace(qv_create_file(name, os::GENERIC_READ | os::GENERIC_WRITE,
                                               os::OPEN_EXISTING, prop.transaction, true, 0));
            handle = opened_here->handle;
        }
        if (handle != os::INVALID_HANDLE_VALUE && handle != nullptr) {
            if (do_compress) {
                std::uint32_t state = (target & host_compressed) ? 1 : 0;
                os::DWORD returned = 0;
                if (os::DeviceIoControl(handle, os::FSCTL_SET_COMPRESSION, &state, sizeof state,
                                        nullptr, 0, &returned, nullptr)) {
                    prop.mode.set_hostmode((prop.mode.host_mode & ~host_compressed) |
                                           (target & host_compressed));
                } else if (file_system_info_n::drive_supports_compression(name)) {
                    utl_stream_c why;
                    tr.print(QVTR_FAILURE, __LINE__, "Unable to set compression for %s[%s]\n", name,
                             utl_n::format_last_error(why, os::GetLastError()));
                    ok = false;
                } else {
                    tr.print(QVTR_SUCCESS, __LINE__, "Unable to set compression for %s\n", name);
                    prop.mode.set_hostmode(prop.mode.host_mode & ~host_compressed);
                    target &= ~host_compressed;
                }
            }
            if (do_sparse) {
                if (sparse_file_c::set_sparse(handle)) {
                    prop.mode.set_hostmode(prop.mode.host_mode | host_sparse);
                } else {
                    utl_stream_c why;
                    tr.print(QVTR_FAILURE, __LINE__, "Unable to set sparse for %s[%s]\n", name,
                             utl_n::format_last_error(why, os::GetLastError()));
                    ok = false;
                }
            }
        }
        if (made_writable) _remove_write_attrib();
        if (!ok) return false;
    }
    if (target != prop.mode.host_mode) {
        // Attributes can't be set on the root of a volume of the FAT family.
        if (is_volume_mount_root(name) &&
            file_system_info_n::drive_file_system_code(name) == fat_family)
            return true;
        os::wide_char wide[path_n::path_buffer_size];
        path_n::path_to_wide_char_path(name, wide, true);
        bool set =
            prop.transaction
                ? txf_wrapper_c::SetFileAttributesTransacted(wide, target, prop.transaction) != 0
                : os::SetFileAttributesW(wide, target) != 0;
        if (!set) return false;
        prop.mode.set_hostmode(target);
    }
    return true;
}

bool file_prop_access_c::add_write_attrib(const char* path, void* transaction) {
    if (!path) return false;
    char file_part[path_n::path_buffer_size] = {};
    const char* file = path;
    if (path_n::is_stream_in_path(path, path) && path_n::stream_path_to_file(path, file_part))
        file = file_part;
    if (!file_manipulation_n::if_exists(file, transaction)) return false;
    if (prop.name.compare(file, true) != 0 &&
        !load_file_properties_from_disk(file, nullptr, transaction))
        return false;
    return _add_write_attrib();
}

bool file_prop_access_c::_add_write_attrib() {
    if (prop.mode.qv_mode & file_mode_n::writable) return false;
    file_mode_c writable;
    writable.copy(prop.mode);
    writable.toggle_readonly();
    return _set_mode_to_disk(writable, true, nullptr);
}

bool file_prop_access_c::_remove_write_attrib() {
    if (!(prop.mode.qv_mode & file_mode_n::writable)) return false;
    file_mode_c read_only;
    read_only.copy(prop.mode);
    read_only.toggle_readonly();
    return _set_mode_to_disk(read_only, true, nullptr);
}

bool file_prop_access_c::_get_reparse_point_prop(os::HANDLE handle, const char* path) {
    QVTR_SCOPE(tr, "file_prop_access_c::_get_reparse_point_prop", source);
    prop.reparse_kind = reparse_none;
    std::vector<unsigned char> buffer(reparse_buffer_size, 0);
    os::DWORD returned = 0;
    if (!os::DeviceIoControl(handle, os::FSCTL_GET_REPARSE_POINT, nullptr, 0, buffer.data(),
                             static_cast<os::DWORD>(buffer.size()), &returned, nullptr)) {
        utl_stream_c why;
        tr.print(QVTR_FAILURE, __LINE__, "Unable to read reparse point data for %s, err=%s\n", path,
                 utl_n::format_last_error(why, os::GetLastError()));
        return false;
    }
    std::uint32_t tag = read32(buffer.data());
    auto wide_at = [&](std::size_t byte_offset, std::size_t units) {
        std::u16string name;
        for (std::size_t i = 0; i < units && byte_offset + 2 * i + 1 < buffer.size(); ++i) {
            char16_t unit = static_cast<char16_t>(read16(buffer.data() + byte_offset + 2 * i));
            if (unit == 0) break;
            name += unit;
        }
        return name;
    };
    if (!(tag & 0x80000000u)) {
        prop.reparse_kind = reparse_third_party;
    } else if (tag == os::IO_REPARSE_TAG_SYMLINK) {
        prop.reparse_kind = reparse_symbolic_link;
        prop.mode.qv_mode |= file_mode_n::link;
        prop.reparse_target_is_file = !(prop.mode.qv_mode & file_mode_n::dir);
        std::u16string name =
            wide_at(20 + read16(buffer.data() + 8), read16(buffer.data() + 10) / 2);
        if (name.rfind(u"\\??\\", 0) == 0) name.erase(0, 4);
        prop.reparse_target.append(utl_stream_c::clear_char).append(utf8_of(name).c_str());
    } else if (tag == os::IO_REPARSE_TAG_MOUNT_POINT) {
        std::size_t units =
            std::min<std::size_t>(read16(buffer.data() + 10), path_n::path_buffer_size);
        std::u16string name =
            wide_at(16 + 2 * static_cast<std::size_t>(read16(buffer.data() + 8)), units);
        std::string shown = utf8_of(name);
        if (name.find(u':') != std::u16string::npos &&
            name.find(u"\\??\\Volume") == std::u16string::npos) {
            prop.reparse_kind = reparse_junction;
            tr.print(QVTR_INFO, __LINE__, "the directory at %s is junction point to %s\n", path,
                     shown.c_str());
            prop.reparse_target_is_file = false;
            prop.mode.qv_mode |= file_mode_n::link;
            prop.reparse_target.append(utl_stream_c::clear_char)
                .append(utf8_of(name.substr(name.size() > 4 ? 4 : name.size())).c_str());
        } else {
            prop.reparse_kind = reparse_mount_point;
            tr.print(QVTR_INFO, __LINE__, "the directory at %s is mount point to %s\n", path,
                     shown.c_str());
        }
    } else {
        switch (tag) {
        case 0xC0000004: prop.reparse_kind = reparse_hierarchical_storage; break;
        case 0x8000000B: prop.reparse_kind = reparse_filter_manager; break;
        case 0x80000007: prop.reparse_kind = reparse_single_instance; break;
        case 0x8000000A: prop.reparse_kind = reparse_distributed; break;
        default: prop.reparse_kind = reparse_other_platform; break;
        }
    }
    return true;
}

bool sparse_file_c::set_sparse(os::HANDLE handle) {
    if (handle == nullptr || handle == os::INVALID_HANDLE_VALUE) return false;
    os::DWORD returned = 0;
    os::DeviceIoControl(handle, os::FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &returned, nullptr);
    os::BY_HANDLE_FILE_INFORMATION information{};
    if (!os::GetFileInformationByHandle(handle, &information)) return false;
    return (information.dwFileAttributes & os::FILE_ATTRIBUTE_SPARSE_FILE) != 0;
}
