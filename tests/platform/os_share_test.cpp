// Share modes between opens of one process, as the system enforces them (natively on Windows,
// with open file description locks elsewhere), and transfers at explicit positions.
#include "common/test_support.h"
#include "files/file.h"
#include "platform/os.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

using test_support::temp_dir_c;

namespace {

constexpr os::DWORD share_all = os::FILE_SHARE_READ | os::FILE_SHARE_WRITE | os::FILE_SHARE_DELETE;
constexpr os::DWORD read_write = os::GENERIC_READ | os::GENERIC_WRITE;

std::vector<os::wide_char> wide_path(const std::string& path) {
    std::vector<os::wide_char> wide(path_n::path_buffer_size);
    path_n::path_to_wide_char_path(path.c_str(), wide.data(), true);
    return wide;
}

// An open handle that closes itself; `error` is the last error of the open.
struct opened_s {
    os::HANDLE handle = os::INVALID_HANDLE_VALUE;
    os::DWORD error = 0;
    opened_s(const std::string& path, os::DWORD access, os::DWORD share, os::DWORD disposition) {
        handle = os::CreateFileW(wide_path(path).data(), access, share, nullptr, disposition,
                                 os::FILE_ATTRIBUTE_NORMAL, nullptr);
        error = os::GetLastError();
    }
    ~opened_s() {
        if (ok()) os::CloseHandle(handle);
    }
    opened_s(const opened_s&) = delete;
    opened_s& operator=(const opened_s&) = delete;
    bool ok() const { return handle != os::INVALID_HANDLE_VALUE; }
};

class share_modes : public ::testing::Test {
  protected:
    void SetUp() override { test_support::write_file(file, "0123456789"); }
    temp_dir_c dir;
    std::string file = dir.join("state.lock");
};

} // namespace

TEST_F(share_modes, reader_sharing_all_then_writer_sharing_reads_both_succeed) {
    opened_s reader(file, os::GENERIC_READ, share_all, os::OPEN_EXISTING);
    ASSERT_TRUE(reader.ok());
    opened_s writer(file, read_write, os::FILE_SHARE_READ, os::CREATE_ALWAYS);
    EXPECT_TRUE(writer.ok()) << writer.error;
}

TEST_F(share_modes, writer_sharing_reads_then_reader_succeeds) {
    opened_s writer(file, read_write, os::FILE_SHARE_READ, os::CREATE_ALWAYS);
    ASSERT_TRUE(writer.ok());
    opened_s reader(file, os::GENERIC_READ, share_all, os::OPEN_EXISTING);
    EXPECT_TRUE(reader.ok()) << reader.error;
}

TEST_F(share_modes, second_writer_fails_with_a_sharing_violation) {
    opened_s writer(file, read_write, os::FILE_SHARE_READ, os::CREATE_ALWAYS);
    ASSERT_TRUE(writer.ok());
    opened_s second(file, read_write, os::FILE_SHARE_READ, os::CREATE_ALWAYS);
    EXPECT_FALSE(second.ok());
    EXPECT_EQ(second.error, os::ERROR_SHARING_VIOLATION);
}

TEST_F(share_modes, a_refused_create_always_leaves_the_content_alone) {
    if (test_support::on_wine())
        GTEST_SKIP() << "Wine 8 truncates the file before it refuses the open for its share mode; "
                        "Windows refuses first and leaves the content";
    opened_s writer(file, os::GENERIC_READ, 0, os::OPEN_EXISTING);
    ASSERT_TRUE(writer.ok());
    opened_s second(file, read_write, share_all, os::CREATE_ALWAYS);
    EXPECT_FALSE(second.ok());
    EXPECT_EQ(test_support::read_file(file), "0123456789");
}

TEST_F(share_modes, no_sharing_refuses_even_a_reader) {
    opened_s only(file, os::GENERIC_READ, 0, os::OPEN_EXISTING);
    ASSERT_TRUE(only.ok());
    opened_s reader(file, os::GENERIC_READ, share_all, os::OPEN_EXISTING);
    EXPECT_FALSE(reader.ok());
    EXPECT_EQ(reader.error, os::ERROR_SHARING_VIOLATION);
}

TEST_F(share_modes, an_open_without_data_access_takes_no_part) {
    opened_s only(file, os::GENERIC_READ, 0, os::OPEN_EXISTING);
    ASSERT_TRUE(only.ok());
    opened_s attributes(file, 0, share_all, os::OPEN_EXISTING);
    EXPECT_TRUE(attributes.ok()) << attributes.error;
}

TEST_F(share_modes, closing_the_holder_frees_the_file) {
    {
        opened_s writer(file, read_write, os::FILE_SHARE_READ, os::OPEN_EXISTING);
        ASSERT_TRUE(writer.ok());
    }
    opened_s second(file, read_write, os::FILE_SHARE_READ, os::OPEN_EXISTING);
    EXPECT_TRUE(second.ok()) << second.error;
}

TEST_F(share_modes, a_duplicate_keeps_the_share_mode_after_the_original_closes) {
    os::HANDLE copy = nullptr;
    {
        opened_s writer(file, read_write, os::FILE_SHARE_READ, os::OPEN_EXISTING);
        ASSERT_TRUE(writer.ok());
        ASSERT_TRUE(os::DuplicateHandle(writer.handle, &copy));
    }
    opened_s second(file, read_write, os::FILE_SHARE_READ, os::OPEN_EXISTING);
    EXPECT_FALSE(second.ok());
    EXPECT_EQ(second.error, os::ERROR_SHARING_VIOLATION);
    ASSERT_TRUE(os::CloseHandle(copy));
    opened_s third(file, read_write, os::FILE_SHARE_READ, os::OPEN_EXISTING);
    EXPECT_TRUE(third.ok()) << third.error;
}

TEST_F(share_modes, create_always_over_an_existing_file_says_it_existed) {
    opened_s writer(file, read_write, share_all, os::CREATE_ALWAYS);
    ASSERT_TRUE(writer.ok());
    EXPECT_EQ(writer.error, os::ERROR_ALREADY_EXISTS);
    EXPECT_EQ(test_support::read_file(file), "");
}

TEST(positional_io, reads_and_writes_at_explicit_offsets) {
    temp_dir_c dir;
    std::string file = dir.join("data.bin");
    opened_s handle(file, read_write, share_all, os::CREATE_ALWAYS);
    ASSERT_TRUE(handle.ok());
    os::OVERLAPPED at{};
    at.Offset = 4;
    os::DWORD done = 0;
    ASSERT_TRUE(os::WriteFile(handle.handle, "abcd", 4, &done, &at));
    ASSERT_TRUE(os::GetOverlappedResult(handle.handle, &at, &done, 1));
    EXPECT_EQ(done, 4u);
    char back[8] = {};
    os::OVERLAPPED from{};
    from.Offset = 4;
    ASSERT_TRUE(os::ReadFile(handle.handle, back, 8, &done, &from));
    ASSERT_TRUE(os::GetOverlappedResult(handle.handle, &from, &done, 1));
    EXPECT_EQ(done, 4u);
    EXPECT_EQ(std::string(back, 4), "abcd");
}

TEST(positional_io, a_read_at_the_end_fails_with_end_of_file) {
    temp_dir_c dir;
    std::string file = dir.join("data.bin");
    test_support::write_file(file, "xy");
    opened_s handle(file, os::GENERIC_READ, share_all, os::OPEN_EXISTING);
    ASSERT_TRUE(handle.ok());
    char back[4];
    os::OVERLAPPED at{};
    at.Offset = 2;
    os::DWORD done = 7;
    EXPECT_FALSE(os::ReadFile(handle.handle, back, 4, &done, &at));
    EXPECT_EQ(os::GetLastError(), os::ERROR_HANDLE_EOF);
}

TEST(positional_io, a_handle_without_write_access_cannot_write) {
    temp_dir_c dir;
    std::string file = dir.join("data.bin");
    test_support::write_file(file, "xy");
    opened_s handle(file, os::GENERIC_READ, share_all, os::OPEN_EXISTING);
    ASSERT_TRUE(handle.ok());
    os::DWORD done = 0;
    EXPECT_FALSE(os::WriteFile(handle.handle, "z", 1, &done, nullptr));
    EXPECT_EQ(os::GetLastError(), os::ERROR_ACCESS_DENIED);
    EXPECT_EQ(test_support::read_file(file), "xy");
}

TEST(positional_io, set_end_of_file_cuts_at_the_pointer) {
    temp_dir_c dir;
    std::string file = dir.join("data.bin");
    test_support::write_file(file, "0123456789");
    {
        opened_s handle(file, read_write, share_all, os::OPEN_EXISTING);
        ASSERT_TRUE(handle.ok());
        EXPECT_EQ(os::SetFilePointer(handle.handle, 3, nullptr, os::FILE_BEGIN), 3u);
        EXPECT_TRUE(os::SetEndOfFile(handle.handle));
        EXPECT_TRUE(os::FlushFileBuffers(handle.handle));
        os::BY_HANDLE_FILE_INFORMATION information{};
        ASSERT_TRUE(os::GetFileInformationByHandle(handle.handle, &information));
        EXPECT_EQ(information.nFileSizeLow, 3u);
        EXPECT_EQ(information.nFileSizeHigh, 0u);
    }
    EXPECT_EQ(test_support::read_file(file), "012");
}

TEST(positional_io, a_negative_seek_is_refused) {
    temp_dir_c dir;
    std::string file = dir.join("data.bin");
    test_support::write_file(file, "0123");
    opened_s handle(file, os::GENERIC_READ, share_all, os::OPEN_EXISTING);
    ASSERT_TRUE(handle.ok());
    EXPECT_EQ(os::SetFilePointer(handle.handle, -10, nullptr, os::FILE_BEGIN),
              os::INVALID_SET_FILE_POINTER);
    EXPECT_EQ(os::GetLastError(), os::ERROR_NEGATIVE_SEEK);
}

TEST(positional_io, a_c_stream_over_a_handle_writes_the_file) {
    temp_dir_c dir;
    std::string file = dir.join("stream.txt");
    os::HANDLE handle = os::CreateFileW(wide_path(file).data(), read_write, share_all, nullptr,
                                        os::CREATE_ALWAYS, os::FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(handle, os::INVALID_HANDLE_VALUE);
    int fd = os::_open_osfhandle(reinterpret_cast<std::intptr_t>(handle), 0);
    ASSERT_GE(fd, 0);
    std::FILE* stream = os::_fdopen(fd, "w+");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(os::_fileno(stream), fd);
    EXPECT_EQ(os::_get_osfhandle(fd), reinterpret_cast<std::intptr_t>(handle));
    std::fputs("through the stream", stream);
    std::fclose(stream);
    EXPECT_EQ(test_support::read_file(file), "through the stream");
}
