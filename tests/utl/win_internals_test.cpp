// win_internals_n::query_info_file: the compression information of an open file, asked of the
// system's native call.
#include "utl/win_internals.h"

#include "common/test_support.h"
#include "platform/os.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

using test_support::on_windows;
using test_support::on_wine;
using test_support::temp_dir_c;

namespace {

std::u16string wide(const std::string& utf8_path) {
    return test_support::from_utf8(utf8_path).u16string();
}

// A buffer of 16 bytes, filled with a pattern that shows whether anything was written.
struct buffer_s {
    unsigned char bytes[16];
    buffer_s() { std::memset(bytes, 0xAB, sizeof bytes); }
    bool untouched() const {
        for (unsigned char b : bytes)
            if (b != 0xAB) return false;
        return true;
    }
    std::uint64_t compressed_size() const {
        std::uint64_t size = 0;
        std::memcpy(&size, bytes, sizeof size);
        return size;
    }
};

// An open file of eleven bytes.
class QueryInfoFileOfOpenFile : public ::testing::Test {
  protected:
    void SetUp() override {
        path = dir.join("data.bin");
        test_support::write_file(path, "hello world");
        handle = os::CreateFileW(wide(path).c_str(), os::GENERIC_READ, os::FILE_SHARE_READ, nullptr,
                                 os::OPEN_EXISTING, os::FILE_ATTRIBUTE_NORMAL, nullptr);
        ASSERT_NE(handle, os::INVALID_HANDLE_VALUE) << "error " << os::GetLastError();
    }
    void TearDown() override {
        if (handle != os::INVALID_HANDLE_VALUE) os::CloseHandle(handle);
    }

    temp_dir_c dir;
    std::string path;
    os::HANDLE handle = os::INVALID_HANDLE_VALUE;
};

TEST(QueryInfoFile, NullHandleIsFalseAndLeavesTheBuffer) {
    buffer_s buffer;
    EXPECT_FALSE(win_internals_n::query_info_file(nullptr, buffer.bytes));
    EXPECT_TRUE(buffer.untouched());
}

TEST(QueryInfoFile, InvalidHandleValueIsFalseAndLeavesTheBuffer) {
    buffer_s buffer;
    EXPECT_FALSE(win_internals_n::query_info_file(os::INVALID_HANDLE_VALUE, buffer.bytes));
    EXPECT_TRUE(buffer.untouched());
}

TEST_F(QueryInfoFileOfOpenFile, OpenFileOnWindowsGivesItsCompressedSize) {
    if (!on_windows())
        GTEST_SKIP() << "the POSIX build has no compression information; the next test covers it";
    if (on_wine())
        GTEST_SKIP() << "Wine's NtQueryInformationFile answers STATUS_NOT_IMPLEMENTED for "
                        "FileCompressionInformation; the next test covers it";
    buffer_s buffer;
    ASSERT_TRUE(win_internals_n::query_info_file(handle, buffer.bytes));
    // An uncompressed file takes as much as it holds.
    EXPECT_EQ(buffer.compressed_size(), 11u);
}

TEST_F(QueryInfoFileOfOpenFile, OpenFileIsFalseWhereTheSystemHasNoSuchInformation) {
    if (on_windows() && !on_wine())
        GTEST_SKIP() << "Windows has the information; the previous test covers it";
    // On POSIX no file has compression information: the OS layer answers
    // STATUS_NOT_IMPLEMENTED. Wine 8 has ZwQueryInformationFile but answers the same for this
    // information class.
    buffer_s buffer;
    EXPECT_FALSE(win_internals_n::query_info_file(handle, buffer.bytes));
    EXPECT_TRUE(buffer.untouched());
}

TEST_F(QueryInfoFileOfOpenFile, NativeCallIsFoundOnWindows) {
    if (!on_windows()) GTEST_SKIP() << "ntdll exists only under Windows";
    // The OS layer finds the call in ntdll at run time: whatever the call answers for this class,
    // it is not the OS layer's STATUS_PROCEDURE_NOT_FOUND (0xC000007A) for a missing call.
    os::IO_STATUS_BLOCK status{};
    buffer_s buffer;
    long result = os::ZwQueryInformationFile(handle, &status, buffer.bytes, 16, 28);
    EXPECT_NE(static_cast<std::uint32_t>(result), 0xC000007Au);
}

} // namespace
