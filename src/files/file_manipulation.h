// file_manipulation_n: questions and changes about files and directories by path, and
// dir_content_c, which enumerates a directory. A transaction handle, where given, sends the
// calls to their transacted forms.
#pragma once

#include "files/file_properties.h"
#include "platform/os.h"
#include "support/thl.h"
#include "utl/utl_stream.h"

#include <cstdint>

namespace file_manipulation_n {

// Takes a path about to be removed; true when it has removed the object itself.
using remove_callback_t = bool (*)(const char* path);

// Removes a file, or a directory with everything in it, lifting read-only first. What isn't
// there, or can't be looked at, counts as removed. What lies behind a link is left alone.
bool remove_path(const char* path, void* transaction, remove_callback_t callback);

// Makes the directory `path`, or with `is_file_name` the directory that would hold that file,
// with every missing directory above it. False when a plain file stands in the way.
bool create_directory(const char* path, bool is_file_name);

// Bytes per sector of the drive under `path`, 0 when not known; the cluster size into
// `cluster_size` if given.
unsigned bytes_per_sector(const char* path, unsigned* cluster_size);

// Whether the path names an object of its own: not merely the short name of another.
// On POSIX: access(2), an open on EACCES, and no short names to refuse.
bool if_exists(const char* path, void* transaction);

} // namespace file_manipulation_n

// Text defined beside the layer's other constants; nothing here reads it.
inline constexpr const char* backup_prefix = "QVBACKUP.";

// The entries of one directory, without "." and "..".
class dir_content_c {
  public:
    explicit dir_content_c(void* transaction_handle = nullptr);
    virtual ~dir_content_c();
    dir_content_c(const dir_content_c&) = delete;
    dir_content_c& operator=(const dir_content_c&) = delete;

    bool init(const char* path);
    // The next entry, its name relative to the directory; false at the end or on an error.
    bool get_next_file(file_name_and_prop_data_s& entry);
    void reset();
    static bool _if_dots_dirs(const os::wide_char* name);
    void _fill_new_entry(const os::WIN32_FIND_DATAW& found, file_name_and_prop_data_s& entry,
                         bool relative);

    os::HANDLE find_handle = os::INVALID_HANDLE_VALUE;
    void* transaction;
    utl_stream_c dir_path;
    std::uint64_t count = 0;
    ptr_list_c pending{false};
    bool had_error = false;
};

// Whether a bare volume-GUID path names a volume. On POSIX no volume-GUID names exist, so the
// device open and the access test both fail and the answer is false.
bool volume_guid_path_exists(const char* path);
