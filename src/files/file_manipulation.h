// file_manipulation_n: questions and changes about files and directories by path.
#pragma once

namespace file_manipulation_n {

// Whether the path names an object of its own: not merely the short name of another.
// On POSIX: access(2), an open on EACCES, and no short names to refuse.
bool if_exists(const char* path, void* transaction);

} // namespace file_manipulation_n

// Whether a bare volume-GUID path names a volume. On POSIX no volume-GUID names exist, so the
// device open and the access test both fail and the answer is false.
bool volume_guid_path_exists(const char* path);
