// win_internals_n: the one system call that the documented interface doesn't offer.
#pragma once

#include "platform/os.h"

namespace win_internals_n {

// Asks the system for the compression information of an open file into a 16-byte buffer, whose
// first 8 bytes are then the compressed size. On POSIX no such information exists: false.
bool query_info_file(os::HANDLE handle, void* buffer);

} // namespace win_internals_n
