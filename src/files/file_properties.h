// A file's attributes in two vocabularies: the host's attribute word and the engine's portable
// mode word, which travels between hosts. file_prop_access_c loads a file's properties from disk
// and writes a changed mode back, with compression and sparseness through device calls.
#pragma once

#include "platform/os.h"
#include "utl/utl_stream.h"

#include <cstdint>

class basic_file_c;

// Bits of the portable mode word.
namespace file_mode_n {
inline constexpr std::uint32_t dir = 0x1;
inline constexpr std::uint32_t reg = 0x2;
inline constexpr std::uint32_t link = 0x4;
inline constexpr std::uint32_t archive = 0x8;
inline constexpr std::uint32_t compressed = 0x10;
inline constexpr std::uint32_t encrypted = 0x20;
inline constexpr std::uint32_t hidden = 0x40;
inline constexpr std::uint32_t offline = 0x80;
inline constexpr std::uint32_t system = 0x100;
inline constexpr std::uint32_t writable = 0x1000;
inline constexpr std::uint32_t reparse = 0x200000;
inline constexpr std::uint32_t many_links = 0x1000000;
inline constexpr std::uint32_t sparse = 0x2000000;
inline constexpr std::uint32_t device = 0x4000000;
// Permission bits every mode carries; nothing reads them one by one.
inline constexpr std::uint32_t fixed_permissions = 0xB6800;
} // namespace file_mode_n

class file_mode_c {
  public:
    file_mode_c() { reset(); }
    void reset();
    void copy(const file_mode_c& other);
    // The mode word, and the host word computed from it.
    void set_qvmode(std::uint32_t word);
    // The host word, and the mode word computed from it. A word with the normal bit keeps only
    // the directory and writable facts.
    bool set_hostmode(std::uint32_t word);
    void toggle_readonly();

    std::uint32_t qv_mode = 0;
    std::uint32_t host_mode = 0;
};

// How a reparse point reads.
enum reparse_kind_t : std::uint32_t {
    reparse_none = 0,
    reparse_symbolic_link = 1,
    reparse_mount_point = 2,
    reparse_junction = 3,
    reparse_hierarchical_storage = 4,
    reparse_filter_manager = 5,
    reparse_single_instance = 6,
    reparse_distributed = 7,
    reparse_other_platform = 8,
    reparse_third_party = 9,
};

struct file_prop_data_s {
    file_prop_data_s() = default;
    file_prop_data_s(const file_prop_data_s& other) { copy(other); }
    file_prop_data_s& operator=(const file_prop_data_s& other) {
        copy(other);
        return *this;
    }
    virtual ~file_prop_data_s() = default;
    void reset();
    void copy(const file_prop_data_s& other);

    void* transaction = nullptr;
    file_mode_c mode;
    std::int64_t modify_time = 0;
    std::uint64_t size = 0;
    std::uint64_t stored_size = 0;
    std::uint32_t is_valid = 0;
    std::uint32_t link_count = 0;
    std::uint64_t file_index = 0;
    std::int64_t volume_serial = 0;
    std::uint32_t reserved1 = 0xFFFFFFFF;
    std::uint32_t reserved2 = 0xFFFFFFFF;
    std::int64_t reserved3 = 0;
    utl_stream_c reparse_target;
    bool reparse_target_is_file = false;
    std::uint32_t reparse_kind = reparse_none;
};

struct file_name_and_prop_data_s : file_prop_data_s {
    void copy(const file_name_and_prop_data_s& other);
    utl_stream_c name;
};

class file_prop_access_c {
  public:
    file_prop_access_c() = default;
    virtual ~file_prop_access_c() = default;
    file_prop_access_c(const file_prop_access_c&) = delete;
    file_prop_access_c& operator=(const file_prop_access_c&) = delete;

    bool load_file_properties_from_disk(basic_file_c& file);
    bool load_file_properties_from_disk(const char* path, file_prop_data_s* out, void* transaction);
    void reset();
    bool set_mode_to_disk(const char* path, const file_mode_c& mode);
    bool _set_mode_to_disk(const file_mode_c& mode, bool change_compression, basic_file_c* file);
    bool add_write_attrib(const char* path, void* transaction);
    bool _add_write_attrib();
    bool _remove_write_attrib();
    bool _get_reparse_point_prop(os::HANDLE handle, const char* path);

    file_name_and_prop_data_s prop;

  private:
    bool _load_common(os::HANDLE handle, const char* path);
};

class sparse_file_c {
  public:
    // Marks the file sparse; true when the system then says it is.
    static bool set_sparse(os::HANDLE handle);
};
