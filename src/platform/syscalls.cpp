// The table of system calls exists only on this system (posix/syscalls.inc); Windows has none.
#include "platform/os.h"

#if !defined(_WIN32)
#include "posix/syscalls.inc"
#endif
