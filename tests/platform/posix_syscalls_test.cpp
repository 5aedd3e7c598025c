// The replaceable system calls of the POSIX OS layer: forced failures and their Win32 errors.
#include "platform/os.h"

#include "common/test_support.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#if !defined(_WIN32)
#include "platform/posix/syscalls.h"

#include <fcntl.h>
#include <unistd.h>
#endif

using test_support::read_file;
using test_support::temp_dir_c;
using test_support::write_file;

#define POSIX_ONLY_SKIP() GTEST_SKIP() << "the system-call table exists only in the POSIX build"

namespace {

std::u16string wide(const std::string& utf8_path) {
    return test_support::from_utf8(utf8_path).u16string();
}

#if !defined(_WIN32)

// What the replaced calls saw and what they are to answer; reset by the fixture.
struct forced_s {
    int error = 0;         // errno of the forced failure
    int failures_left = 0; // failures still to give before the real call runs; -1 for always
    int calls = 0;         // calls that reached the replacement
    int last_mode = -1;    // the mode argument of the last access call
    int last_flags = 0;    // the flags of the last open call
    int closed_fd = -1;    // the descriptor of the last close call
};
forced_s forced;

// Gives the forced failure while any is left, then the real call.
bool fail_now() {
    ++forced.calls;
    if (forced.failures_left == 0) return false;
    if (forced.failures_left > 0) --forced.failures_left;
    errno = forced.error;
    return true;
}

int forced_open(const char* path, int flags, mode_t mode) {
    forced.last_flags = flags;
    if (fail_now()) return -1;
    return os::posix::real_syscalls().open(path, flags, mode);
}

int forced_stat(const char* path, struct stat* result) {
    if (fail_now()) return -1;
    return os::posix::real_syscalls().stat(path, result);
}

int forced_access(const char* path, int mode) {
    forced.last_mode = mode;
    if (fail_now()) return -1;
    return os::posix::real_syscalls().access(path, mode);
}

// Closes for real and then reports the forced error, as Linux does for EINTR and EIO.
int forced_close(int fd) {
    forced.closed_fd = fd;
    int result = os::posix::real_syscalls().close(fd);
    if (fail_now()) return -1;
    return result;
}

// Makes every descriptor look like a directory.
int fstat_says_directory(int fd, struct stat* result) {
    int r = os::posix::real_syscalls().fstat(fd, result);
    if (r == 0) result->st_mode = (result->st_mode & ~S_IFMT) | S_IFDIR;
    return r;
}

int counting_close(int fd) {
    ++forced.calls;
    forced.closed_fd = fd;
    return os::posix::real_syscalls().close(fd);
}

bool fd_is_open(int fd) { return ::fcntl(fd, F_GETFD) != -1; }

#endif

// Keeps the table as it was found and puts it back after every test.
class posix_syscalls_test : public ::testing::Test {
  protected:
    void SetUp() override {
#if defined(_WIN32)
        POSIX_ONLY_SKIP();
#else
        saved = os::posix::syscalls();
        forced = forced_s{};
        file = dir.join("file.txt");
        write_file(file, "content");
#endif
    }

    void TearDown() override {
#if !defined(_WIN32)
        os::posix::syscalls() = saved;
#endif
    }

#if !defined(_WIN32)
    os::posix::syscall_table_s saved{};
#endif
    temp_dir_c dir;
    std::string file;

    os::HANDLE open(const std::string& path, os::DWORD access, os::DWORD disposition) {
        os::SetLastError(0xDEADu);
        return os::CreateFileW(wide(path).c_str(), access, os::FILE_SHARE_READ, nullptr,
                               disposition, os::FILE_ATTRIBUTE_NORMAL, nullptr);
    }
};

} // namespace

TEST_F(posix_syscalls_test, the_table_holds_the_real_calls_at_the_start_of_every_test) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    const auto& table = os::posix::syscalls();
    const auto& real = os::posix::real_syscalls();
    EXPECT_EQ(table.open, real.open);
    EXPECT_EQ(table.close, real.close);
    EXPECT_EQ(table.access, real.access);
    EXPECT_EQ(table.stat, real.stat);
    EXPECT_EQ(table.fstat, real.fstat);
    EXPECT_EQ(table.mkdir, real.mkdir);
#endif
}

TEST_F(posix_syscalls_test, eacces_on_open_is_access_denied) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::posix::syscalls().open = forced_open;
    forced.error = EACCES;
    forced.failures_left = -1;
    EXPECT_EQ(open(file, os::GENERIC_READ, os::OPEN_EXISTING), os::INVALID_HANDLE_VALUE);
    EXPECT_EQ(os::GetLastError(), os::ERROR_ACCESS_DENIED);
    EXPECT_EQ(forced.calls, 1);
#endif
}

TEST_F(posix_syscalls_test, eintr_on_open_is_retried_until_the_open_succeeds) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::posix::syscalls().open = forced_open;
    forced.error = EINTR;
    forced.failures_left = 3;
    os::HANDLE h = open(file, os::GENERIC_READ, os::OPEN_EXISTING);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE) << "error " << os::GetLastError();
    EXPECT_EQ(forced.calls, 4);
    EXPECT_EQ(os::GetLastError(), os::ERROR_SUCCESS);
    EXPECT_NE(os::CloseHandle(h), 0);
#endif
}

TEST_F(posix_syscalls_test, eintr_then_a_real_error_gives_that_error) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::posix::syscalls().open = forced_open;
    forced.error = EINTR;
    forced.failures_left = 2;
    EXPECT_EQ(open(dir.join("missing.txt"), os::GENERIC_READ, os::OPEN_EXISTING),
              os::INVALID_HANDLE_VALUE);
    EXPECT_EQ(os::GetLastError(), os::ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(forced.calls, 3);
#endif
}

TEST_F(posix_syscalls_test, enospc_on_create_is_disk_full_and_makes_no_file) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::posix::syscalls().open = forced_open;
    forced.error = ENOSPC;
    forced.failures_left = -1;
    std::string fresh = dir.join("fresh.txt");
    EXPECT_EQ(open(fresh, os::GENERIC_WRITE, os::CREATE_NEW), os::INVALID_HANDLE_VALUE);
    EXPECT_EQ(os::GetLastError(), os::ERROR_DISK_FULL);
    EXPECT_NE(forced.last_flags & O_CREAT, 0);
    EXPECT_NE(::access(fresh.c_str(), F_OK), 0);
#endif
}

TEST_F(posix_syscalls_test, other_open_errors_map_to_their_win32_numbers) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    struct case_s {
        int error;
        os::DWORD expected;
    };
    const case_s cases[] = {
        {EPERM, os::ERROR_ACCESS_DENIED},
        {EROFS, os::ERROR_WRITE_PROTECT},
        {EEXIST, os::ERROR_FILE_EXISTS},
        {EMFILE, os::ERROR_TOO_MANY_OPEN_FILES},
        {ENFILE, os::ERROR_TOO_MANY_OPEN_FILES},
        {ENAMETOOLONG, os::ERROR_FILENAME_EXCED_RANGE},
        {ELOOP, os::ERROR_CANT_RESOLVE_FILENAME},
        {ENOTDIR, os::ERROR_PATH_NOT_FOUND},
        {EDQUOT, os::ERROR_DISK_FULL},
        {EBUSY, os::ERROR_BUSY},
        {ENOMEM, os::ERROR_NOT_ENOUGH_MEMORY},
        {EINVAL, os::ERROR_INVALID_PARAMETER},
    };
    os::posix::syscalls().open = forced_open;
    for (const case_s& c : cases) {
        SCOPED_TRACE(c.error);
        forced.error = c.error;
        forced.failures_left = 1;
        EXPECT_EQ(open(file, os::GENERIC_READ, os::OPEN_EXISTING), os::INVALID_HANDLE_VALUE);
        EXPECT_EQ(os::GetLastError(), c.expected);
    }
    EXPECT_EQ(read_file(file), "content");
#endif
}

TEST_F(posix_syscalls_test, a_descriptor_found_to_be_a_directory_is_closed_again) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::posix::syscalls().fstat = fstat_says_directory;
    os::posix::syscalls().close = counting_close;
    EXPECT_EQ(open(file, os::GENERIC_READ, os::OPEN_EXISTING), os::INVALID_HANDLE_VALUE);
    EXPECT_EQ(os::GetLastError(), os::ERROR_ACCESS_DENIED);
    EXPECT_EQ(forced.calls, 1);
    ASSERT_GE(forced.closed_fd, 0);
    EXPECT_FALSE(fd_is_open(forced.closed_fd));
#endif
}

TEST_F(posix_syscalls_test, close_interrupted_by_a_signal_counts_as_closed_and_is_not_repeated) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::HANDLE h = open(file, os::GENERIC_READ, os::OPEN_EXISTING);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE);
    os::posix::syscalls().close = forced_close;
    forced.error = EINTR;
    forced.failures_left = -1;
    os::SetLastError(0);
    EXPECT_NE(os::CloseHandle(h), 0);
    // On Linux the descriptor is gone after EINTR; closing again could close someone else's.
    EXPECT_EQ(forced.calls, 1);
    EXPECT_FALSE(fd_is_open(forced.closed_fd));
#endif
}

TEST_F(posix_syscalls_test, close_failing_with_eio_reports_the_error) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::HANDLE h = open(file, os::GENERIC_READ, os::OPEN_EXISTING);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE);
    os::posix::syscalls().close = forced_close;
    forced.error = EIO;
    forced.failures_left = -1;
    EXPECT_EQ(os::CloseHandle(h), 0);
    EXPECT_EQ(os::GetLastError(), 1117u); // ERROR_IO_DEVICE
    EXPECT_EQ(forced.calls, 1);
#endif
}

TEST_F(posix_syscalls_test, access_gets_the_read_and_write_bits_and_its_errno_reaches_the_caller) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::posix::syscalls().access = forced_access;
    EXPECT_EQ(os::_waccess(wide(file).c_str(), 6), 0);
    EXPECT_EQ(forced.last_mode, R_OK | W_OK);
    EXPECT_EQ(os::_waccess(wide(file).c_str(), 0), 0);
    EXPECT_EQ(forced.last_mode, F_OK);

    forced.error = EACCES;
    forced.failures_left = -1;
    errno = 0;
    EXPECT_EQ(os::_waccess(wide(file).c_str(), 2), -1);
    EXPECT_EQ(forced.last_mode, W_OK);
    EXPECT_EQ(os::crt_errno(), EACCES);
#endif
}

TEST_F(posix_syscalls_test, stat_failing_in_get_long_path_name_gives_its_error) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::posix::syscalls().stat = forced_stat;
    forced.error = EACCES;
    forced.failures_left = -1;
    std::u16string path = wide(file);
    std::vector<os::wide_char> buffer(4096, 0);
    os::SetLastError(0);
    EXPECT_EQ(os::GetLongPathNameW(path.c_str(), buffer.data(), 4096), 0u);
    EXPECT_EQ(os::GetLastError(), os::ERROR_ACCESS_DENIED);
    EXPECT_GE(forced.calls, 1);
#endif
}

TEST_F(posix_syscalls_test, stat_failing_in_get_volume_path_name_gives_its_error) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::posix::syscalls().stat = forced_stat;
    forced.error = EIO;
    forced.failures_left = -1;
    std::u16string path = wide(file);
    std::vector<os::wide_char> buffer(4096, 0);
    os::SetLastError(0);
    EXPECT_EQ(os::GetVolumePathNameW(path.c_str(), buffer.data(), 4096), 0);
    EXPECT_EQ(os::GetLastError(), 1117u); // ERROR_IO_DEVICE
#endif
}

TEST_F(posix_syscalls_test, create_directory_goes_through_the_table) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    struct local {
        static int refuse(const char*, mode_t) {
            ++forced.calls;
            errno = EROFS;
            return -1;
        }
    };
    os::posix::syscalls().mkdir = local::refuse;
    std::string made = dir.join("made");
    EXPECT_FALSE(os::create_directory_utf8(made.c_str()));
    EXPECT_EQ(forced.calls, 1);
    EXPECT_NE(::access(made.c_str(), F_OK), 0);
    os::posix::syscalls() = saved;
    EXPECT_TRUE(os::create_directory_utf8(made.c_str()));
    EXPECT_EQ(::access(made.c_str(), F_OK), 0);
#endif
}
