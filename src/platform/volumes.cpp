// Portable front of the operating-system service; the system's own part follows.
#include "platform/os.h"

#if defined(_WIN32)
#include "win32/volumes.inc"
#else
#include "posix/volumes.inc"
#endif
