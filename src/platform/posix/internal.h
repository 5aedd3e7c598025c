// Shared by the posix parts of the OS layer; never included above it.
#pragma once

#include "platform/os.h"

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

} // namespace os::posix
