// Shared by the win32 parts of the OS layer; never included above it. Includes <windows.h>
// after the portable header, so that its macros never meet the portable declarations.
#pragma once

#include "platform/os.h"

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <string>

namespace os::win32 {

inline const wchar_t* wide(const wide_char* text) { return reinterpret_cast<const wchar_t*>(text); }
inline wchar_t* wide(wide_char* text) { return reinterpret_cast<wchar_t*>(text); }

// UTF-8 to UTF-16 and back through the system's code-page calls; empty on failure.
std::wstring to_wide(const char* text);
std::string to_utf8(const wchar_t* text);

} // namespace os::win32
