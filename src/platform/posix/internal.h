// Shared by the posix parts of the OS layer; never included above it.
#pragma once

#include "platform/os.h"

#include <memory>
#include <string>

namespace os::posix {

// The one mapping of errno values to Win32 error numbers.
DWORD map_errno(int error);

// Sets the thread's last error from errno and returns it.
DWORD set_last_error_from_errno();

// The one funnel from a wide system path to a file name of this system: UTF-16 to UTF-8 and '\'
// to '/' (here, as on Windows, a backslash is a separator); "\\?\UNC\" becomes "//". Other
// long-path forms (drive letters, volume GUIDs) name nothing on this system and stay unresolvable.
std::string native_path(const wide_char* path);

// UTF-8 to UTF-16 and back with the replacement rules of the Win32 code-page calls.
std::u16string utf8_to_utf16(const char* text);

// The Win32 attribute word of a file as this system keeps it: the directory bit, read-only for a
// file that nobody may write, the bits kept in the extended attribute "user.DOSATTRIB" (as Wine
// writes it, "0x2" for hidden), hidden for a name that starts with a dot, the reparse bit for a
// symbolic link (when links are not followed), archive for a plain file otherwise unmarked.
// INVALID_FILE_ATTRIBUTES with the thread's last error set when the file can't be looked at.
DWORD attributes_of(const std::string& path, bool follow_links);
// Keeps the bits of `attributes` that this system can keep: read-only in the permission bits,
// hidden, system, archive and offline in "user.DOSATTRIB". False with the last error set.
bool store_attributes(const std::string& path, DWORD attributes);

// The kernel's queue of asynchronous transfers of an overlapped handle (io.inc).
struct async_ring_s;

// What a HANDLE points to on this system: a descriptor with what it was opened for, or an event.
struct handle_s {
    int fd = -1;
    std::string path;     // the name it was opened under
    bool is_link = false; // opened on a symbolic link itself (O_PATH)
    DWORD access = 0;
    bool overlapped = false;
    // Made at the first overlapped transfer of an overlapped handle; shared by its duplicates.
    std::shared_ptr<async_ring_s> ring;
    // The kernel refused a ring to this handle: its transfers complete at once.
    bool ring_refused = false;
    bool is_event = false;
    bool event_signalled = false;
};

// A new record, known as a live handle until free_handle (or CloseHandle) forgets and frees it.
handle_s* new_handle();
void free_handle(handle_s* record);
// The record behind a live handle, or null for a handle that is not (or no longer) one; the
// memory of a closed handle is never read.
handle_s* find_handle(HANDLE handle);
// As find_handle, and ERROR_INVALID_HANDLE for an invalid one.
handle_s* handle_of(HANDLE handle);

// Waits for every transfer the handle's ring holds (before its descriptor closes).
void drain_ring(handle_s& h);

// The kinds of access that take part in sharing.
struct share_access_s {
    bool read = false;
    bool write = false;
    bool remove = false;
};
share_access_s sharing_access_of(DWORD access);

enum class share_claim_t { granted, refused, not_taking_part };
// Claims the share mode of an open of `access` that shares `share` on the descriptor.
share_claim_t claim_share_mode(int fd, DWORD access, DWORD share);
// Whether another open of the file takes part in sharing (reads, writes or deletes it).
bool opened_elsewhere(int fd);
// The lock of an image file as a volume, a share marker of its own held for writing; false with
// ERROR_LOCK_VIOLATION when another open holds it.
bool take_volume_lock(int fd);
// False with ERROR_NOT_LOCKED when this open doesn't hold it.
bool drop_volume_lock(int fd);
void release_share_mode(int fd);
// True when another open of the file refuses to share deletion.
bool delete_refused_elsewhere(int fd);

} // namespace os::posix
