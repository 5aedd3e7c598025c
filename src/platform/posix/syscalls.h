// The system calls of the posix OS layer go through this table, so that a test can replace one
// and force a sharing violation, EINTR or a full disk. Each entry has the arguments and the
// result of the call it stands for; a failure returns what that call returns, with errno set.
#pragma once

#include <dirent.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/types.h>
#include <unistd.h>

struct io_uring_params;

namespace os::posix {

struct syscall_table_s {
    // ---- names
    int (*open)(const char* path, int flags, mode_t mode);
    int (*access)(const char* path, int mode);
    int (*stat)(const char* path, struct stat* result);
    int (*lstat)(const char* path, struct stat* result);
    int (*mkdir)(const char* path, mode_t mode);
    int (*rmdir)(const char* path);
    int (*unlink)(const char* path);
    // rename(2); with `no_replace` an existing target fails with EEXIST.
    int (*rename)(const char* from, const char* to, bool no_replace);
    int (*chmod)(const char* path, mode_t mode);
    int (*statvfs)(const char* path, struct statvfs* result);
    int (*statfs)(const char* path, struct statfs* result);
    // realpath(3): the name with every link and dot resolved, into `resolved` (PATH_MAX bytes).
    char* (*realpath)(const char* path, char* resolved);
    ssize_t (*readlink)(const char* path, char* target, size_t size);
    ssize_t (*readlinkat)(int directory, const char* path, char* target, size_t size);
    // Extended attributes, of the file a link points to (getxattr) or of the link (lgetxattr).
    ssize_t (*getxattr)(const char* path, const char* name, void* value, size_t size);
    ssize_t (*lgetxattr)(const char* path, const char* name, void* value, size_t size);
    int (*setxattr)(const char* path, const char* name, const void* value, size_t size, int flags);

    // ---- directories
    DIR* (*opendir)(const char* path);
    // readdir(3): null at the end, and null with errno set on a failure.
    struct dirent* (*readdir)(DIR* directory);
    int (*closedir)(DIR* directory);

    // ---- descriptors
    int (*close)(int fd);
    int (*fstat)(int fd, struct stat* result);
    ssize_t (*read)(int fd, void* buffer, size_t count);
    ssize_t (*write)(int fd, const void* buffer, size_t count);
    ssize_t (*pread)(int fd, void* buffer, size_t count, off_t offset);
    ssize_t (*pwrite)(int fd, const void* buffer, size_t count, off_t offset);
    off_t (*lseek)(int fd, off_t offset, int whence);
    int (*ftruncate)(int fd, off_t length);
    int (*fsync)(int fd);
    // fcntl(2) with a lock record: F_OFD_SETLK, F_OFD_GETLK and the like.
    int (*fcntl)(int fd, int command, struct flock* lock);
    // A second descriptor of the same open, closed on exec (fcntl F_DUPFD_CLOEXEC).
    int (*dup)(int fd);
    int (*dup2)(int fd, int target);
    int (*isatty)(int fd);

    // ---- the kernel's queue of asynchronous transfers (io_uring), by its raw system calls
    // io_uring_setup(2): a new ring of `entries` places, its layout in `params`.
    int (*io_uring_setup)(unsigned entries, struct io_uring_params* params);
    // io_uring_enter(2) without a signal mask: submits and waits for completions.
    int (*io_uring_enter)(int ring, unsigned to_submit, unsigned min_complete, unsigned flags);
    void* (*mmap)(void* address, size_t length, int protection, int flags, int fd, off_t offset);
    int (*munmap)(void* address, size_t length);

    // ---- processes
    pid_t (*getpid)();
    pid_t (*gettid)();
    pid_t (*fork)();
    int (*execv)(const char* path, char* const argv[]);
    void (*_exit)(int status);
    pid_t (*waitpid)(pid_t pid, int* status, int options);
    int (*kill)(pid_t pid, int signal);
    int (*usleep)(useconds_t microseconds);
};

// The table in force; tests may overwrite entries and must restore them.
syscall_table_s& syscalls();
// The real calls, for restoring.
const syscall_table_s& real_syscalls();

} // namespace os::posix
