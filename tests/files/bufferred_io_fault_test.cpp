// Faults of the asynchronous writes of FILE_c with open flag 0x20, forced through the POSIX
// system-call table: the kernel's queue sees its submissions changed before they go in (a write
// cut short, a write that fails, a full disk from some write on), its calls interrupted or
// refused, or no queue at all. Each time the caller gets the result the buffered writer gives,
// no byte is written twice and no lost byte goes unreported.
#include "files/file_modif.h"

#include "common/test_support.h"
#include "support/thl.h"
#include "utl/value.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#if !defined(_WIN32)
#include "platform/posix/syscalls.h"

#include <cerrno>
#include <fcntl.h>
#include <linux/io_uring.h>
#include <unistd.h>
#endif

namespace {

using test_support::read_file;
using test_support::temp_dir_c;

constexpr unsigned overlapped = open_flags_n::overlapped;
constexpr std::size_t chunk = 65536;

#define SKIP_WITHOUT_THE_TABLE()                                                                   \
    if (test_support::on_windows())                                                                \
    GTEST_SKIP() << "the system-call table is the POSIX side's; Windows' overlapped calls are "    \
                    "the system's own and no test can stand in for them"

class settings_c {
  public:
    settings_c() : _groups(true) {
        _groups.append(&_group);
        set_settings_list(&_groups);
    }
    ~settings_c() { set_settings_list(nullptr); }
    settings_c& set(const char* name, const char* text) {
        _group.add(new setting_c(name, text));
        return *this;
    }

  private:
    ptr_list_c _groups;
    setting_group_c _group;
};

[[maybe_unused]] std::string chunk_of(int number) {
    std::string text(chunk, '\0');
    for (std::size_t i = 0; i < chunk; ++i) text[i] = static_cast<char>('A' + number + i % 7);
    return text;
}

#if !defined(_WIN32)

namespace posix = os::posix;

// Watches the ring of the file under test through the table: it learns the ring's layout from
// io_uring_setup and mmap, and sees every submission before the kernel does.
struct ring_spy_s {
    int ring = -1;
    io_uring_params params{};
    char* sq = nullptr;
    io_uring_sqe* sqes = nullptr;
    // Changes a submission before it goes in.
    std::function<void(io_uring_sqe&)> on_submission;
    // Called first at each io_uring_enter; true to fail the call with `errno` as set.
    std::function<bool(unsigned to_submit, unsigned min_complete)> fail_enter;
    // The ranges of file the kernel was asked to write, as it was asked.
    std::vector<std::pair<std::uint64_t, std::uint32_t>> writes;
    int interrupted = 0;
};

ring_spy_s* spy = nullptr;

int spy_setup(unsigned entries, io_uring_params* params) {
    int fd = posix::real_syscalls().io_uring_setup(entries, params);
    if (fd >= 0 && spy) {
        spy->ring = fd;
        spy->params = *params;
        spy->sq = nullptr;
        spy->sqes = nullptr;
    }
    return fd;
}

void* spy_mmap(void* address, size_t length, int protection, int flags, int fd, off_t offset) {
    void* mapped = posix::real_syscalls().mmap(address, length, protection, flags, fd, offset);
    if (spy && fd == spy->ring && mapped != MAP_FAILED) {
        if (offset == static_cast<off_t>(IORING_OFF_SQ_RING)) spy->sq = static_cast<char*>(mapped);
        if (offset == static_cast<off_t>(IORING_OFF_SQES))
            spy->sqes = static_cast<io_uring_sqe*>(mapped);
    }
    return mapped;
}

int spy_enter(int ring, unsigned to_submit, unsigned min_complete, unsigned flags) {
    if (spy && ring == spy->ring) {
        if (spy->fail_enter && spy->fail_enter(to_submit, min_complete)) {
            if (errno == EINTR) ++spy->interrupted;
            return -1;
        }
        if (to_submit && spy->sq && spy->sqes) {
            const io_sqring_offsets& o = spy->params.sq_off;
            unsigned head =
                __atomic_load_n(reinterpret_cast<unsigned*>(spy->sq + o.head), __ATOMIC_ACQUIRE);
            unsigned tail = *reinterpret_cast<unsigned*>(spy->sq + o.tail);
            unsigned mask = *reinterpret_cast<unsigned*>(spy->sq + o.ring_mask);
            auto* array = reinterpret_cast<unsigned*>(spy->sq + o.array);
            for (unsigned i = head; i != tail; ++i) {
                io_uring_sqe& sqe = spy->sqes[array[i & mask]];
                if (spy->on_submission) spy->on_submission(sqe);
                if (sqe.opcode == IORING_OP_WRITE) spy->writes.emplace_back(sqe.off, sqe.len);
            }
        }
    }
    return posix::real_syscalls().io_uring_enter(ring, to_submit, min_complete, flags);
}

// Whether this kernel gives a process a ring at all (a sysctl or a seccomp filter may refuse it).
bool kernel_gives_rings() {
    io_uring_params params{};
    int fd = posix::real_syscalls().io_uring_setup(1, &params);
    if (fd < 0) return false;
    ::close(fd);
    return true;
}

#define SKIP_WITHOUT_RINGS()                                                                       \
    if (!kernel_gives_rings())                                                                     \
    GTEST_SKIP() << "this kernel refuses io_uring to the process; overlapped transfers end at "    \
                    "once here, as KernelWithoutTheQueueGivesTransfersThatEndAtOnce shows"

// Puts the spy in the table for the lifetime of the object.
class spied_ring_c {
  public:
    spied_ring_c()
        : _setup(posix::syscalls().io_uring_setup, spy_setup),
          _mmap(posix::syscalls().mmap, spy_mmap),
          _enter(posix::syscalls().io_uring_enter, spy_enter) {
        spy = &state;
    }
    ~spied_ring_c() { spy = nullptr; }

    // True when the writes asked of the kernel cover [0, size) once, without overlap.
    bool writes_tile(std::uint64_t size) const {
        auto sorted = state.writes;
        std::sort(sorted.begin(), sorted.end());
        std::uint64_t at = 0;
        for (const auto& [offset, length] : sorted) {
            if (offset != at) return false;
            at += length;
        }
        return at == size;
    }
    // True when no byte was asked of the kernel twice.
    bool no_byte_written_twice() const {
        auto sorted = state.writes;
        std::sort(sorted.begin(), sorted.end());
        for (std::size_t i = 1; i < sorted.size(); ++i)
            if (sorted[i - 1].first + sorted[i - 1].second > sorted[i].first) return false;
        return true;
    }

    ring_spy_s state;

  private:
    test_support::replaced_syscall_c<decltype(posix::syscall_table_s::io_uring_setup)> _setup;
    test_support::replaced_syscall_c<decltype(posix::syscall_table_s::mmap)> _mmap;
    test_support::replaced_syscall_c<decltype(posix::syscall_table_s::io_uring_enter)> _enter;
};

// A descriptor whose writes fail: read-only (EBADF) or the full device (ENOSPC).
class failing_target_c {
  public:
    explicit failing_target_c(const char* device, int flags) : fd(::open(device, flags)) {}
    ~failing_target_c() {
        if (fd >= 0) ::close(fd);
    }
    int fd;
};

#endif

TEST(BufferedIoFault, InterruptedCallsOfTheQueueAreMadeAgain) {
    SKIP_WITHOUT_THE_TABLE();
#if !defined(_WIN32)
    SKIP_WITHOUT_RINGS();
    spied_ring_c ring;
    int calls = 0;
    ring.state.fail_enter = [&](unsigned, unsigned) {
        if (++calls % 2) return false;
        errno = EINTR;
        return true;
    };
    temp_dir_c dir;
    std::string path = dir.join("f.bin");
    std::string expected;
    {
        FILE_c file;
        ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, overlapped));
        for (int i = 0; i < 12; ++i) {
            std::string data = chunk_of(i);
            ASSERT_EQ(file.write(data.data(), static_cast<std::int64_t>(chunk)),
                      static_cast<std::int64_t>(chunk));
            expected += data;
        }
        ASSERT_TRUE(file.seek(0));
        std::string got(expected.size(), '\0');
        ASSERT_EQ(file.read(got.data(), static_cast<std::int64_t>(got.size())),
                  static_cast<std::int64_t>(got.size()));
        EXPECT_EQ(got, expected);
        EXPECT_TRUE(file.close());
    }
    EXPECT_GT(ring.state.interrupted, 0) << "calls were interrupted";
    EXPECT_TRUE(ring.writes_tile(expected.size())) << "each byte asked for once";
    EXPECT_EQ(read_file(path), expected);
#endif
}

TEST(BufferedIoFault, ShortAsynchronousWriteIsContinuedAndNothingIsWrittenTwice) {
    SKIP_WITHOUT_THE_TABLE();
#if !defined(_WIN32)
    SKIP_WITHOUT_RINGS();
    spied_ring_c ring;
    int cut = 0;
    ring.state.on_submission = [&](io_uring_sqe& sqe) {
        // The kernel is asked for half of each new write: it writes that and says so.
        if (sqe.opcode == IORING_OP_WRITE && sqe.len >= 1024 && sqe.off % 4096 == 0) {
            sqe.len /= 2;
            ++cut;
        }
    };
    temp_dir_c dir;
    std::string path = dir.join("f.bin");
    std::string expected;
    {
        FILE_c file;
        ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, overlapped));
        for (int i = 0; i < 8; ++i) {
            std::string data = chunk_of(i);
            ASSERT_EQ(file.write(data.data(), static_cast<std::int64_t>(chunk)),
                      static_cast<std::int64_t>(chunk));
            expected += data;
        }
        EXPECT_TRUE(file.close());
    }
    EXPECT_GT(cut, 8) << "writes were cut short";
    EXPECT_TRUE(ring.writes_tile(expected.size()))
        << "the rest of each short write was asked for once";
    EXPECT_EQ(read_file(path), expected);
#endif
}

TEST(BufferedIoFault, FailedAsynchronousWriteFailsTheWriteThatWaitsForItOnce) {
    SKIP_WITHOUT_THE_TABLE();
#if !defined(_WIN32)
    SKIP_WITHOUT_RINGS();
    failing_target_c read_only("/dev/null", O_RDONLY);
    ASSERT_GE(read_only.fd, 0);
    spied_ring_c ring;
    int writes = 0;
    ring.state.on_submission = [&](io_uring_sqe& sqe) {
        if (sqe.opcode == IORING_OP_WRITE && ++writes == 3) sqe.fd = read_only.fd;
    };
    settings_c settings;
    settings.set("AIONumber", "3");
    test_support::trace_capture_c trace;
    temp_dir_c dir;
    std::string path = dir.join("f.bin");
    std::vector<std::int64_t> results;
    std::vector<std::int64_t> errors;
    {
        FILE_c file;
        ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, overlapped));
        for (int i = 0; i < 6; ++i) {
            std::string data = chunk_of(i);
            file.error = 0;
            ASSERT_TRUE(file.seek(static_cast<std::int64_t>(i * chunk)));
            results.push_back(file.write(data.data(), static_cast<std::int64_t>(chunk)));
            errors.push_back(file.error);
        }
        EXPECT_TRUE(file.close()) << "the failure was reported already";
    }
    // The third write fails in the kernel; the fifth write waits for its request and says so.
    std::vector<std::int64_t> expected_results(6, static_cast<std::int64_t>(chunk));
    expected_results[4] = -1;
    EXPECT_EQ(results, expected_results);
    EXPECT_EQ(errors[4], static_cast<std::int64_t>(os::ERROR_INVALID_HANDLE));
    EXPECT_NE(trace.text().find("Wait the write result failed,the file name is " + path +
                                ",the wrote number is 2."),
              std::string::npos)
        << trace.text();
    EXPECT_TRUE(ring.no_byte_written_twice());
    EXPECT_EQ(ring.state.writes.size(), 6u) << "the failed write was not made again";
    std::string on_disk = read_file(path);
    ASSERT_EQ(on_disk.size(), 6 * chunk);
    for (int i = 0; i < 6; ++i) {
        std::string want = i == 2 ? std::string(chunk, '\0') : chunk_of(i);
        EXPECT_EQ(on_disk.substr(static_cast<std::size_t>(i) * chunk, chunk), want) << i;
    }
#endif
}

TEST(BufferedIoFault, DiskFullMidRingIsReportedByTheWritesAndByClose) {
    SKIP_WITHOUT_THE_TABLE();
#if !defined(_WIN32)
    SKIP_WITHOUT_RINGS();
    failing_target_c full("/dev/full", O_WRONLY);
    ASSERT_GE(full.fd, 0);
    spied_ring_c ring;
    int writes = 0;
    ring.state.on_submission = [&](io_uring_sqe& sqe) {
        if (sqe.opcode == IORING_OP_WRITE && ++writes >= 4) sqe.fd = full.fd;
    };
    settings_c settings;
    settings.set("AIONumber", "3");
    temp_dir_c dir;
    std::string path = dir.join("f.bin");
    int failed_writes = 0;
    std::int64_t first_error = 0;
    bool closed = true;
    std::vector<std::int64_t> results;
    {
        FILE_c file;
        ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, overlapped));
        for (int i = 0; i < 8; ++i) {
            std::string data = chunk_of(i);
            file.error = 0;
            // Each write at a place of its own, whatever the one before answered.
            ASSERT_TRUE(file.seek(static_cast<std::int64_t>(i * chunk)));
            results.push_back(file.write(data.data(), static_cast<std::int64_t>(chunk)));
            if (results.back() == -1) {
                ++failed_writes;
                if (!first_error) first_error = file.error;
            }
        }
        closed = file.close();
    }
    // The fourth write on fail in the kernel; each is found by the write that reuses its place
    // in the ring, the last two by close.
    std::int64_t whole = static_cast<std::int64_t>(chunk);
    EXPECT_EQ(results, (std::vector<std::int64_t>{whole, whole, whole, whole, whole, -1, -1, -1}));
    EXPECT_EQ(failed_writes, 3);
    EXPECT_EQ(first_error, static_cast<std::int64_t>(os::ERROR_DISK_FULL));
    EXPECT_FALSE(closed) << "the writes still in flight at close failed too, and close says so";
    EXPECT_TRUE(ring.no_byte_written_twice());
    EXPECT_EQ(ring.state.writes.size(), 8u) << "no failed write was made again";
    std::string on_disk = read_file(path);
    ASSERT_GE(on_disk.size(), 3 * chunk);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(on_disk.substr(static_cast<std::size_t>(i) * chunk, chunk), chunk_of(i)) << i;
#endif
}

TEST(BufferedIoFault, ReadAfterAFailedWriteFailsWithThePendingWritesError) {
    SKIP_WITHOUT_THE_TABLE();
#if !defined(_WIN32)
    SKIP_WITHOUT_RINGS();
    failing_target_c full("/dev/full", O_WRONLY);
    ASSERT_GE(full.fd, 0);
    spied_ring_c ring;
    int writes = 0;
    ring.state.on_submission = [&](io_uring_sqe& sqe) {
        if (sqe.opcode == IORING_OP_WRITE && ++writes == 2) sqe.fd = full.fd;
    };
    settings_c settings;
    settings.set("AIONumber", "3");
    temp_dir_c dir;
    std::string path = dir.join("f.bin");
    FILE_c file;
    ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, overlapped));
    for (int i = 0; i < 2; ++i) {
        std::string data = chunk_of(i);
        ASSERT_EQ(file.write(data.data(), static_cast<std::int64_t>(chunk)),
                  static_cast<std::int64_t>(chunk));
    }
    ASSERT_TRUE(file.seek(0));
    char buffer[16];
    EXPECT_EQ(file.read(buffer, 16), -1);
    EXPECT_EQ(file.error, FILE_c::pending_writes_error);
    EXPECT_TRUE(file.close()) << "the failure was reported once, by the read";
#endif
}

TEST(BufferedIoFault, RefusedSubmissionFailsItsWriteAndIsNeverMadeLater) {
    SKIP_WITHOUT_THE_TABLE();
#if !defined(_WIN32)
    SKIP_WITHOUT_RINGS();
    spied_ring_c ring;
    int submissions = 0;
    ring.state.fail_enter = [&](unsigned to_submit, unsigned) {
        if (to_submit == 0 || ++submissions != 2) return false;
        errno = EBUSY;
        return true;
    };
    settings_c settings;
    settings.set("AIONumber", "3");
    temp_dir_c dir;
    std::string path = dir.join("f.bin");
    std::vector<std::int64_t> results;
    std::int64_t error = 0;
    {
        FILE_c file;
        ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, overlapped));
        for (int i = 0; i < 4; ++i) {
            std::string data = chunk_of(i);
            ASSERT_TRUE(file.seek(static_cast<std::int64_t>(i * chunk)));
            std::int64_t result = file.write(data.data(), static_cast<std::int64_t>(chunk));
            results.push_back(result);
            if (result == -1) error = file.error;
        }
        EXPECT_TRUE(file.close());
    }
    std::int64_t whole = static_cast<std::int64_t>(chunk);
    EXPECT_EQ(results, (std::vector<std::int64_t>{whole, -1, whole, whole}));
    EXPECT_EQ(error, static_cast<std::int64_t>(os::ERROR_BUSY));
    for (const auto& [offset, length] : ring.state.writes)
        EXPECT_NE(offset, chunk) << "the refused write went in after all";
    std::string on_disk = read_file(path);
    ASSERT_EQ(on_disk.size(), 4 * chunk);
    EXPECT_EQ(on_disk.substr(chunk, chunk), std::string(chunk, '\0'));
    EXPECT_EQ(on_disk.substr(3 * chunk, chunk), chunk_of(3));
#endif
}

TEST(BufferedIoFault, KernelWithoutTheQueueGivesTransfersThatEndAtOnce) {
    SKIP_WITHOUT_THE_TABLE();
#if !defined(_WIN32)
    int asked = 0;
    static int* asked_counter = nullptr;
    asked_counter = &asked;
    test_support::replaced_syscall_c<decltype(posix::syscall_table_s::io_uring_setup)> refused(
        posix::syscalls().io_uring_setup, [](unsigned, io_uring_params*) {
            ++*asked_counter;
            errno = ENOSYS;
            return -1;
        });
    temp_dir_c dir;
    std::string path = dir.join("f.bin");
    std::string expected;
    {
        FILE_c file;
        ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, overlapped));
        for (int i = 0; i < 5; ++i) {
            std::string data = chunk_of(i).substr(0, chunk - 100 * static_cast<std::size_t>(i));
            ASSERT_EQ(file.write(data.data(), static_cast<std::int64_t>(data.size())),
                      static_cast<std::int64_t>(data.size()));
            expected += data;
        }
        ASSERT_TRUE(file.seek(0));
        std::string got(expected.size(), '\0');
        ASSERT_EQ(file.read(got.data(), static_cast<std::int64_t>(got.size())),
                  static_cast<std::int64_t>(got.size()));
        EXPECT_EQ(got, expected);
        EXPECT_TRUE(file.close());
    }
    EXPECT_EQ(asked, 1) << "asked once for the handle, then never again";
    EXPECT_EQ(read_file(path), expected);
#endif
}

TEST(BufferedIoFault, DiskFullWithoutAsynchronousWritingFailsTheWrite) {
    SKIP_WITHOUT_THE_TABLE();
#if !defined(_WIN32)
    static int pwrites = 0;
    pwrites = 0;
    // Without the kernel's queue, transfers of the handle are positional writes at once.
    test_support::replaced_syscall_c<decltype(posix::syscall_table_s::io_uring_setup)> no_queue(
        posix::syscalls().io_uring_setup, [](unsigned, io_uring_params*) {
            errno = ENOSYS;
            return -1;
        });
    test_support::replaced_syscall_c<decltype(posix::syscall_table_s::pwrite)> full(
        posix::syscalls().pwrite, [](int fd, const void* buffer, size_t count, off_t offset) {
            // Interrupted once, then a full disk from the third write on.
            ++pwrites;
            if (pwrites == 1) {
                errno = EINTR;
                return static_cast<ssize_t>(-1);
            }
            if (pwrites >= 4) {
                errno = ENOSPC;
                return static_cast<ssize_t>(-1);
            }
            return posix::real_syscalls().pwrite(fd, buffer, count, offset);
        });
    settings_c settings;
    settings.set("EnableAIOWrite", "False");
    temp_dir_c dir;
    std::string path = dir.join("f.bin");
    std::vector<std::int64_t> results;
    std::int64_t error = 0;
    {
        FILE_c file;
        ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, overlapped));
        for (int i = 0; i < 3; ++i) {
            std::string data = chunk_of(i);
            std::int64_t result = file.write(data.data(), static_cast<std::int64_t>(chunk));
            results.push_back(result);
            if (result == -1 && !error) error = file.error;
        }
        file.close();
    }
    std::int64_t whole = static_cast<std::int64_t>(chunk);
    EXPECT_EQ(results, (std::vector<std::int64_t>{whole, whole, -1}));
    EXPECT_EQ(error, static_cast<std::int64_t>(os::ERROR_DISK_FULL));
    EXPECT_EQ(read_file(path), chunk_of(0) + chunk_of(1));
#endif
}

} // namespace
