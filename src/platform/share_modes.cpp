// Share modes exist natively on Windows; this system emulates them (posix/share_modes.inc).
#include "platform/os.h"

#if !defined(_WIN32)
#include "posix/share_modes.inc"
#endif
