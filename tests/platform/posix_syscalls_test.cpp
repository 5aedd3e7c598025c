// The replaceable system calls of the POSIX OS layer: forced failures and their Win32 errors.
#include "platform/os.h"

#include "common/test_support.h"
#include "files/basic_file.h"
#include "files/file_modif.h"
#include "stats_mng/load_order.h"
#include "support/thl.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <type_traits>

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
    int pass_first = 0;    // real calls to let through before the failures begin
};
forced_s forced;

// Gives the forced failure while any is left, then the real call.
bool fail_now() {
    ++forced.calls;
    if (forced.pass_first > 0) {
        --forced.pass_first;
        return false;
    }
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

using table_s = os::posix::syscall_table_s;

// The replacement of one entry of the table: the forced failure while one is left (-1, or null
// for a call that returns a pointer), then the real call.
template <auto entry> struct forced_entry_s;
template <typename R, typename... A, R (*table_s::*entry)(A...)> struct forced_entry_s<entry> {
    static R call(A... args) {
        if (fail_now()) {
            if constexpr (std::is_pointer_v<R>)
                return nullptr;
            else
                return static_cast<R>(-1);
        }
        return (os::posix::real_syscalls().*entry)(args...);
    }
};

// Makes the entry fail with `error`: `failures` times (-1 for always) after `pass_first` real
// calls.
template <auto entry> void force(int error, int failures, int pass_first = 0) {
    os::posix::syscalls().*entry = forced_entry_s<entry>::call;
    forced.error = error;
    forced.failures_left = failures;
    forced.pass_first = pass_first;
}

// Writes at most three bytes a call, as a write to a nearly full disk or a pipe may.
ssize_t short_pwrite(int fd, const void* buffer, size_t count, off_t offset) {
    ++forced.calls;
    return os::posix::real_syscalls().pwrite(fd, buffer, count < 3 ? count : 3, offset);
}

// Writes three bytes at the first call and finds the disk full at the calls after it.
ssize_t short_pwrite_then_full_disk(int fd, const void* buffer, size_t count, off_t offset) {
    if (fail_now()) return -1;
    return os::posix::real_syscalls().pwrite(fd, buffer, count < 3 ? count : 3, offset);
}

// The counter of open handles, started by the library's load order.
int open_count() {
    if (!open_handle_counter()) load_order_n::start_all();
    return open_handle_counter()->value();
}

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
    EXPECT_EQ(std::memcmp(&table, &real, sizeof table), 0);
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
    EXPECT_EQ(os::GetLastError(), os::ERROR_IO_DEVICE);
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
    EXPECT_EQ(os::GetLastError(), os::ERROR_IO_DEVICE);
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

// ---- reading and writing

TEST_F(posix_syscalls_test, enospc_on_write_is_disk_full) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::HANDLE h = open(file, os::GENERIC_READ | os::GENERIC_WRITE, os::OPEN_EXISTING);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE);
    force<&table_s::write>(ENOSPC, -1);
    os::DWORD done = 99;
    EXPECT_EQ(os::WriteFile(h, "more", 4, &done, nullptr), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_DISK_FULL);
    EXPECT_EQ(done, 0u);
    EXPECT_EQ(forced.calls, 1);
    EXPECT_NE(os::CloseHandle(h), 0);
    EXPECT_EQ(read_file(file), "content");
#endif
}

TEST_F(posix_syscalls_test, enospc_on_a_positioned_write_is_disk_full_in_the_overlapped_record) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::HANDLE h = open(file, os::GENERIC_READ | os::GENERIC_WRITE, os::OPEN_EXISTING);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE);
    force<&table_s::pwrite>(EDQUOT, -1);
    os::OVERLAPPED overlapped{};
    overlapped.Offset = 7;
    os::DWORD done = 99;
    EXPECT_EQ(os::WriteFile(h, "more", 4, &done, &overlapped), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_DISK_FULL);
    EXPECT_EQ(overlapped.Internal, os::ERROR_DISK_FULL);
    EXPECT_EQ(done, 0u);
    EXPECT_EQ(os::GetOverlappedResult(h, &overlapped, &done, 1), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_DISK_FULL);
    EXPECT_NE(os::CloseHandle(h), 0);
#endif
}

TEST_F(posix_syscalls_test, a_short_positioned_write_is_completed_by_further_calls) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::HANDLE h = open(file, os::GENERIC_READ | os::GENERIC_WRITE, os::OPEN_EXISTING);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE);
    os::posix::syscalls().pwrite = short_pwrite;
    os::OVERLAPPED overlapped{};
    overlapped.Offset = 7;
    os::DWORD done = 0;
    EXPECT_NE(os::WriteFile(h, " and more", 9, &done, &overlapped), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_SUCCESS);
    EXPECT_EQ(done, 9u);
    EXPECT_EQ(forced.calls, 3);
    EXPECT_NE(os::CloseHandle(h), 0);
    EXPECT_EQ(read_file(file), "content and more");
#endif
}

TEST_F(posix_syscalls_test, a_full_disk_after_part_of_a_write_is_disk_full) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::HANDLE h = open(file, os::GENERIC_READ | os::GENERIC_WRITE, os::OPEN_EXISTING);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE);
    os::posix::syscalls().pwrite = short_pwrite_then_full_disk;
    forced.error = ENOSPC;
    forced.failures_left = -1;
    forced.pass_first = 1;
    os::OVERLAPPED overlapped{};
    overlapped.Offset = 7;
    EXPECT_EQ(os::WriteFile(h, " and more", 9, nullptr, &overlapped), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_DISK_FULL);
    EXPECT_EQ(forced.calls, 2);
    EXPECT_NE(os::CloseHandle(h), 0);
#endif
}

TEST_F(posix_syscalls_test, eintr_on_read_before_any_byte_is_retried) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::HANDLE h = open(file, os::GENERIC_READ, os::OPEN_EXISTING);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE);
    force<&table_s::read>(EINTR, 3);
    char buffer[16] = {};
    os::DWORD done = 0;
    EXPECT_NE(os::ReadFile(h, buffer, sizeof buffer, &done, nullptr), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_SUCCESS);
    EXPECT_EQ(std::string(buffer, done), "content");
    // Three interrupted calls, the read of the bytes, and the read that finds the end.
    EXPECT_EQ(forced.calls, 5);
    EXPECT_NE(os::CloseHandle(h), 0);
#endif
}

TEST_F(posix_syscalls_test, eintr_on_write_is_retried) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::HANDLE h = open(file, os::GENERIC_WRITE, os::TRUNCATE_EXISTING);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE);
    force<&table_s::write>(EINTR, 2);
    os::DWORD done = 0;
    EXPECT_NE(os::WriteFile(h, "fresh", 5, &done, nullptr), 0);
    EXPECT_EQ(done, 5u);
    EXPECT_EQ(forced.calls, 3);
    EXPECT_NE(os::CloseHandle(h), 0);
    EXPECT_EQ(read_file(file), "fresh");
#endif
}

TEST_F(posix_syscalls_test, other_read_errors_reach_the_caller_mapped) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::HANDLE h = open(file, os::GENERIC_READ, os::OPEN_EXISTING);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE);
    force<&table_s::read>(EIO, -1);
    char buffer[16] = {};
    os::DWORD done = 99;
    EXPECT_EQ(os::ReadFile(h, buffer, sizeof buffer, &done, nullptr), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_IO_DEVICE);
    EXPECT_EQ(done, 0u);
    EXPECT_EQ(forced.calls, 1);
    EXPECT_NE(os::CloseHandle(h), 0);
#endif
}

// ---- the file layer above: what its callers see is a Win32 error

TEST_F(posix_syscalls_test, eintr_on_a_positioned_read_of_a_basic_file_is_retried) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    open_count();
    basic_file_c f;
    ASSERT_TRUE(f.open(file.c_str(), "r", nullptr, open_flags_n::raw_handle));
    force<&table_s::pread>(EINTR, 2);
    char buffer[16] = {};
    EXPECT_EQ(f.read(buffer, sizeof buffer), 7);
    EXPECT_EQ(f.error, 0);
    EXPECT_EQ(std::string(buffer, 7), "content");
    EXPECT_EQ(forced.calls, 4);
    EXPECT_TRUE(f.close());
#endif
}

TEST_F(posix_syscalls_test, enospc_on_a_basic_file_write_is_disk_full) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    open_count();
    basic_file_c f;
    ASSERT_TRUE(f.open(file.c_str(), "r+", nullptr, open_flags_n::raw_handle));
    force<&table_s::pwrite>(ENOSPC, -1);
    EXPECT_EQ(f.write("more", 4), -1);
    EXPECT_EQ(f.error, static_cast<std::int64_t>(os::ERROR_DISK_FULL));
    EXPECT_EQ(f.file->last_error, 0u);
    EXPECT_EQ(f.tell(), 0);
    EXPECT_TRUE(f.close());
    EXPECT_EQ(read_file(file), "content");
#endif
}

TEST_F(posix_syscalls_test, enospc_on_a_file_c_write_is_disk_full_and_keeps_its_position) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    open_count();
    FILE_c f;
    ASSERT_TRUE(f.open(file.c_str(), "r+", nullptr, open_flags_n::raw_handle));
    ASSERT_TRUE(f.seek(7));
    force<&table_s::pwrite>(ENOSPC, -1);
    EXPECT_EQ(f.write(" and more", 9), -1);
    EXPECT_EQ(f.error, static_cast<std::int64_t>(os::ERROR_DISK_FULL));
    EXPECT_EQ(f.tell(), 7);
    os::posix::syscalls() = saved;
    EXPECT_EQ(f.write(" and more", 9), 9);
    EXPECT_EQ(f.error, static_cast<std::int64_t>(os::ERROR_DISK_FULL))
        << "a full transfer leaves the last error as it was";
    EXPECT_TRUE(f.close());
    EXPECT_EQ(read_file(file), "content and more");
#endif
}

TEST_F(posix_syscalls_test, a_full_disk_under_a_c_stream_gives_the_stream_error_flag) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    if (::access("/dev/full", W_OK) != 0) GTEST_SKIP() << "no /dev/full on this system";
    open_count();
    basic_file_c f;
    ASSERT_TRUE(f.open("/dev/full", "a", nullptr, 0)) << os::GetLastError();
    ASSERT_EQ(f.file->handle, nullptr) << "the open made a C stream";
    // More than the stream's buffer, so that the write reaches the system at once.
    std::string block(1 << 20, 'x');
    EXPECT_EQ(f.write(block.data(), static_cast<std::int64_t>(block.size())), -1);
    // The stream's own error flag, not the errno of the failed write.
    EXPECT_NE(f.error, 0);
    EXPECT_NE(f.error, ENOSPC);
    f.close();
#endif
}

TEST_F(posix_syscalls_test, eacces_on_the_open_of_a_basic_file_is_access_denied) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    open_count();
    int before = open_count();
    force<&table_s::open>(EACCES, -1);
    basic_file_c f;
    os::SetLastError(0);
    EXPECT_FALSE(f.open(file.c_str(), "r", nullptr, 0));
    EXPECT_EQ(os::GetLastError(), os::ERROR_ACCESS_DENIED);
    EXPECT_EQ(open_count(), before);
#endif
}

TEST_F(posix_syscalls_test, eio_on_the_close_of_a_basic_file_fails_and_keeps_the_count) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    int before = open_count();
    basic_file_c f;
    ASSERT_TRUE(f.open(file.c_str(), "r", nullptr, open_flags_n::raw_handle));
    EXPECT_EQ(open_count(), before + 1);
    os::posix::syscalls().close = forced_close;
    forced.error = EIO;
    forced.failures_left = -1;
    EXPECT_FALSE(f.close());
    EXPECT_EQ(os::GetLastError(), os::ERROR_IO_DEVICE);
    EXPECT_FALSE(f.is_open());
    EXPECT_FALSE(fd_is_open(forced.closed_fd));
    // The count stays as it was after a failed close; set it right for the tests that follow.
    EXPECT_EQ(open_count(), before + 1);
    open_handle_counter()->decrease(1);
#endif
}

TEST_F(posix_syscalls_test, eio_on_fsync_fails_flush_file_buffers_but_not_a_basic_file_flush) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    open_count();
    basic_file_c f;
    ASSERT_TRUE(f.open(file.c_str(), "r+", nullptr, open_flags_n::raw_handle));
    force<&table_s::fsync>(EIO, -1);
    os::SetLastError(0);
    EXPECT_EQ(os::FlushFileBuffers(f.file->handle), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_IO_DEVICE);
    EXPECT_TRUE(f.flush());
    EXPECT_EQ(forced.calls, 2);
    EXPECT_TRUE(f.close());
#endif
}

// ---- handles closed twice

TEST_F(posix_syscalls_test, a_handle_closed_twice_is_invalid_and_closes_no_descriptor_again) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::HANDLE h = open(file, os::GENERIC_READ, os::OPEN_EXISTING);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE);
    os::posix::syscalls().close = counting_close;
    EXPECT_NE(os::CloseHandle(h), 0);
    EXPECT_EQ(forced.calls, 1);
    os::SetLastError(0);
    EXPECT_EQ(os::CloseHandle(h), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_INVALID_HANDLE);
    EXPECT_EQ(forced.calls, 1) << "the second close reached no descriptor";
#endif
}

TEST_F(posix_syscalls_test, a_closed_handle_is_refused_by_every_call_without_a_system_call) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::HANDLE h = open(file, os::GENERIC_READ | os::GENERIC_WRITE, os::OPEN_EXISTING);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE);
    os::HANDLE event = os::CreateEventW(nullptr, 1, 0, nullptr);
    ASSERT_NE(event, nullptr);
    EXPECT_NE(os::CloseHandle(h), 0);
    EXPECT_NE(os::CloseHandle(event), 0);
    force<&table_s::read>(EIO, -1);
    force<&table_s::pwrite>(EIO, -1);
    char buffer[4] = {};
    os::DWORD done = 0;
    os::SetLastError(0);
    EXPECT_EQ(os::ReadFile(h, buffer, 4, &done, nullptr), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_INVALID_HANDLE);
    os::OVERLAPPED overlapped{};
    os::SetLastError(0);
    EXPECT_EQ(os::WriteFile(h, "data", 4, &done, &overlapped), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_INVALID_HANDLE);
    os::BY_HANDLE_FILE_INFORMATION information{};
    os::SetLastError(0);
    EXPECT_EQ(os::GetFileInformationByHandle(h, &information), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_INVALID_HANDLE);
    os::HANDLE copy = nullptr;
    os::SetLastError(0);
    EXPECT_EQ(os::DuplicateHandle(h, &copy), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_INVALID_HANDLE);
    os::SetLastError(0);
    EXPECT_EQ(os::CloseHandle(event), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_INVALID_HANDLE);
    EXPECT_EQ(forced.calls, 0);
#endif
}

TEST_F(posix_syscalls_test, a_failed_dup_is_too_many_open_files) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::HANDLE h = open(file, os::GENERIC_READ, os::OPEN_EXISTING);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE);
    force<&table_s::dup>(EMFILE, -1);
    os::HANDLE copy = nullptr;
    EXPECT_EQ(os::DuplicateHandle(h, &copy), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_TOO_MANY_OPEN_FILES);
    EXPECT_EQ(copy, nullptr);
    EXPECT_NE(os::CloseHandle(h), 0);
#endif
}

// ---- opens: share modes and truncation

TEST_F(posix_syscalls_test, a_refused_share_lock_is_a_sharing_violation_and_closes_the_descriptor) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    force<&table_s::fcntl>(EAGAIN, -1);
    os::posix::syscalls().close = [](int fd) {
        forced.closed_fd = fd;
        return os::posix::real_syscalls().close(fd);
    };
    EXPECT_EQ(open(file, os::GENERIC_READ, os::OPEN_EXISTING), os::INVALID_HANDLE_VALUE);
    EXPECT_EQ(os::GetLastError(), os::ERROR_SHARING_VIOLATION);
    EXPECT_GE(forced.calls, 1);
    ASSERT_GE(forced.closed_fd, 0);
    EXPECT_FALSE(fd_is_open(forced.closed_fd));
#endif
}

TEST_F(posix_syscalls_test, a_file_system_without_share_locks_lets_the_open_take_no_part) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    force<&table_s::fcntl>(ENOLCK, -1);
    os::HANDLE h = open(file, os::GENERIC_READ, os::OPEN_EXISTING);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE) << "error " << os::GetLastError();
    EXPECT_EQ(os::GetLastError(), os::ERROR_SUCCESS);
    EXPECT_NE(os::CloseHandle(h), 0);
#endif
}

TEST_F(posix_syscalls_test,
       a_failed_truncation_on_create_always_fails_the_open_and_keeps_the_data) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    force<&table_s::ftruncate>(EIO, -1);
    os::posix::syscalls().close = counting_close;
    EXPECT_EQ(open(file, os::GENERIC_WRITE, os::CREATE_ALWAYS), os::INVALID_HANDLE_VALUE);
    EXPECT_EQ(os::GetLastError(), os::ERROR_IO_DEVICE);
    ASSERT_GE(forced.closed_fd, 0);
    EXPECT_FALSE(fd_is_open(forced.closed_fd));
    EXPECT_EQ(read_file(file), "content");
#endif
}

TEST_F(posix_syscalls_test, a_failed_seek_gives_its_error) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    os::HANDLE h = open(file, os::GENERIC_READ, os::OPEN_EXISTING);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE);
    force<&table_s::lseek>(EINVAL, -1);
    EXPECT_EQ(os::SetFilePointer(h, 2, nullptr, os::FILE_BEGIN), os::INVALID_SET_FILE_POINTER);
    EXPECT_EQ(os::GetLastError(), os::ERROR_INVALID_PARAMETER);
    EXPECT_EQ(os::SetEndOfFile(h), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_INVALID_PARAMETER);
    EXPECT_NE(os::CloseHandle(h), 0);
#endif
}

// ---- attributes, deletion, directories and volumes

TEST_F(posix_syscalls_test, an_extended_attribute_that_cannot_be_read_reads_as_none) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    std::u16string path = wide(file);
    ASSERT_NE(os::SetFileAttributesW(path.c_str(), os::FILE_ATTRIBUTE_SYSTEM), 0)
        << os::GetLastError();
    ASSERT_EQ(os::GetFileAttributesW(path.c_str()), os::FILE_ATTRIBUTE_SYSTEM);
    // A file system without extended attributes keeps none.
    force<&table_s::getxattr>(ENOTSUP, -1);
    EXPECT_EQ(os::GetFileAttributesW(path.c_str()), os::FILE_ATTRIBUTE_ARCHIVE);
    EXPECT_GE(forced.calls, 1);
#endif
}

TEST_F(posix_syscalls_test, an_extended_attribute_that_cannot_be_written_fails_set_attributes) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    struct case_s {
        int error;
        os::DWORD expected;
    };
    const case_s cases[] = {
        {ENOTSUP, os::ERROR_NOT_SUPPORTED},
        {EACCES, os::ERROR_ACCESS_DENIED},
        {ENOSPC, os::ERROR_DISK_FULL},
        {EROFS, os::ERROR_WRITE_PROTECT},
    };
    std::u16string path = wide(file);
    for (const case_s& c : cases) {
        SCOPED_TRACE(c.error);
        force<&table_s::setxattr>(c.error, -1);
        os::SetLastError(0);
        EXPECT_EQ(os::SetFileAttributesW(path.c_str(), os::FILE_ATTRIBUTE_HIDDEN), 0);
        EXPECT_EQ(os::GetLastError(), c.expected);
    }
    os::posix::syscalls() = saved;
    EXPECT_EQ(os::GetFileAttributesW(path.c_str()), os::FILE_ATTRIBUTE_ARCHIVE);
#endif
}

TEST_F(posix_syscalls_test, a_failed_unlink_fails_delete_file_and_leaves_the_file) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    struct case_s {
        int error;
        os::DWORD expected;
    };
    const case_s cases[] = {
        {EACCES, os::ERROR_ACCESS_DENIED}, {EPERM, os::ERROR_ACCESS_DENIED},
        {EBUSY, os::ERROR_BUSY},           {EROFS, os::ERROR_WRITE_PROTECT},
        {EIO, os::ERROR_IO_DEVICE},
    };
    std::u16string path = wide(file);
    for (const case_s& c : cases) {
        SCOPED_TRACE(c.error);
        force<&table_s::unlink>(c.error, -1);
        os::SetLastError(0);
        EXPECT_EQ(os::DeleteFileW(path.c_str()), 0);
        EXPECT_EQ(os::GetLastError(), c.expected);
        EXPECT_EQ(forced.calls, 1);
        forced.calls = 0;
    }
    EXPECT_EQ(read_file(file), "content");
    os::posix::syscalls() = saved;
    EXPECT_NE(os::DeleteFileW(path.c_str()), 0);
#endif
}

TEST_F(posix_syscalls_test, a_failed_rmdir_fails_remove_directory) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    std::string sub = dir.join("sub");
    ASSERT_TRUE(os::create_directory_utf8(sub.c_str()));
    std::u16string path = wide(sub);
    force<&table_s::rmdir>(ENOTEMPTY, -1);
    EXPECT_EQ(os::RemoveDirectoryW(path.c_str()), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_DIR_NOT_EMPTY);
    force<&table_s::rmdir>(ENOTDIR, -1);
    EXPECT_EQ(os::RemoveDirectoryW(path.c_str()), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_DIRECTORY);
    os::posix::syscalls() = saved;
    EXPECT_NE(os::RemoveDirectoryW(path.c_str()), 0);
#endif
}

TEST_F(posix_syscalls_test, a_directory_that_cannot_be_opened_fails_the_search) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    force<&table_s::opendir>(EACCES, -1);
    os::WIN32_FIND_DATAW data{};
    std::u16string pattern = wide(dir.join("*"));
    EXPECT_EQ(os::FindFirstFileW(pattern.c_str(), &data), os::INVALID_HANDLE_VALUE);
    EXPECT_EQ(os::GetLastError(), os::ERROR_ACCESS_DENIED);
#endif
}

TEST_F(posix_syscalls_test, a_failing_directory_read_ends_the_search_with_its_error) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    force<&table_s::readdir>(EIO, -1, 1);
    os::WIN32_FIND_DATAW data{};
    std::u16string pattern = wide(dir.join("*"));
    os::HANDLE search = os::FindFirstFileW(pattern.c_str(), &data);
    ASSERT_NE(search, os::INVALID_HANDLE_VALUE) << os::GetLastError();
    EXPECT_EQ(os::FindNextFileW(search, &data), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_IO_DEVICE) << "not ERROR_NO_MORE_FILES";
    EXPECT_NE(os::FindClose(search), 0);
#endif
}

TEST_F(posix_syscalls_test, a_failing_statfs_fails_the_volume_calls) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    force<&table_s::statfs>(EIO, -1);
    std::u16string root = wide(file);
    EXPECT_EQ(os::GetDriveTypeW(root.c_str()), os::DRIVE_NO_ROOT_DIR);
    os::DWORD serial = 0;
    EXPECT_EQ(
        os::GetVolumeInformationW(root.c_str(), nullptr, 0, &serial, nullptr, nullptr, nullptr, 0),
        0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_IO_DEVICE);
    EXPECT_EQ(forced.calls, 2);
#endif
}

TEST_F(posix_syscalls_test, a_failed_fork_starts_no_process) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    force<&table_s::fork>(EAGAIN, -1);
    EXPECT_EQ(os::start_process({"/bin/true"}, dir.join("out.txt")), nullptr);
    EXPECT_EQ(os::run_process({"/bin/true"}, dir.join("out.txt")), -1);
    EXPECT_EQ(forced.calls, 2);
#endif
}

// A sparse mark in the stored DOS attributes, as a file server leaves it, reads as sparse, and
// a store of other attributes keeps it: it is not theirs to change.
TEST_F(posix_syscalls_test, a_stored_sparse_mark_reads_and_survives_a_store_of_other_attributes) {
#if defined(_WIN32)
    POSIX_ONLY_SKIP();
#else
    static std::string written;
    struct local {
        static ssize_t stored(const char*, const char*, void* value, std::size_t size) {
            const char mark[] = "0x200";
            if (size < sizeof mark - 1) return -1;
            std::memcpy(value, mark, sizeof mark - 1);
            return static_cast<ssize_t>(sizeof mark - 1);
        }
        static int store(const char*, const char* name, const void* value, std::size_t size, int) {
            ++forced.calls;
            written = std::string(name) + "=" + std::string(static_cast<const char*>(value), size);
            return 0;
        }
    };
    written.clear();
    os::posix::syscalls().getxattr = local::stored;
    os::posix::syscalls().setxattr = local::store;
    os::DWORD attributes = os::GetFileAttributesW(wide(file).c_str());
    EXPECT_EQ(attributes, os::FILE_ATTRIBUTE_SPARSE_FILE);
    EXPECT_TRUE(os::SetFileAttributesW(wide(file).c_str(), os::FILE_ATTRIBUTE_HIDDEN));
    EXPECT_EQ(forced.calls, 1);
    EXPECT_EQ(written, "user.DOSATTRIB=0x202");
#endif
}
