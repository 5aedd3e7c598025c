// The system calls of the posix OS layer go through this table, so that a test can replace one
// and force a sharing violation, EINTR or a full disk.
#pragma once

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/types.h>

namespace os::posix {

struct syscall_table_s {
    int (*open)(const char* path, int flags, mode_t mode);
    int (*close)(int fd);
    int (*access)(const char* path, int mode);
    int (*stat)(const char* path, struct stat* result);
    int (*fstat)(int fd, struct stat* result);
    int (*mkdir)(const char* path, mode_t mode);
    // rename(2); with `no_replace` an existing target fails with EEXIST.
    int (*rename)(const char* from, const char* to, bool no_replace);
    int (*statvfs)(const char* path, struct statvfs* result);
};

// The table in force; tests may overwrite entries and must restore them.
syscall_table_s& syscalls();
// The real calls, for restoring.
const syscall_table_s& real_syscalls();

} // namespace os::posix
