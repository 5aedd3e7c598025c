// txf_wrapper: the transacted file calls. Neither Linux nor Wine has transactions, so every call
// must fail cleanly, touch nothing on disk and leave the reason in GetLastError: on Linux
// ERROR_NOT_SUPPORTED; under Wine ERROR_PROC_NOT_FOUND for the calls its KERNEL32 lacks. Wine does
// export one of them, MoveFileTransactedW, as a stub that fails with ERROR_CALL_NOT_IMPLEMENTED;
// the test of that call says so and checks that the file stays where it was.
#include "support/txf_wrapper.h"

#include "common/test_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using test_support::on_windows;
using test_support::on_wine;
using test_support::read_file;
using test_support::temp_dir_c;
using test_support::write_file;

namespace {

// A transaction handle that no system knows.
void* const transaction = reinterpret_cast<void*>(static_cast<std::intptr_t>(0x4321));

// MOVEFILE_WRITE_THROUGH, the flags the system passes.
constexpr os::DWORD move_flags = 8;

std::u16string wide(const std::string& utf8_path) {
    return test_support::from_utf8(utf8_path).u16string();
}

// The error a failed transacted call must leave on this platform. `wine_stub` marks the call that
// Wine exports as a stub.
::testing::AssertionResult failed_cleanly(os::DWORD error, bool wine_stub = false) {
    std::vector<os::DWORD> allowed;
    if (!on_windows())
        allowed = {os::ERROR_NOT_SUPPORTED};
    else if (on_wine())
        allowed = {wine_stub ? os::ERROR_CALL_NOT_IMPLEMENTED : os::ERROR_PROC_NOT_FOUND};
    else // A Windows that has the calls refuses the made-up transaction handle.
        allowed = {os::ERROR_PROC_NOT_FOUND, os::ERROR_CALL_NOT_IMPLEMENTED,
                   os::ERROR_INVALID_HANDLE};
    if (std::find(allowed.begin(), allowed.end(), error) != allowed.end())
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "error " << error;
}

// Arms GetLastError with a value that no call sets, so a call that forgets to set it shows.
void arm_last_error() { os::SetLastError(0xDEADu); }

class txf_wrapper_test : public ::testing::Test {
  protected:
    void SetUp() override {
        file = dir.join("file.txt");
        write_file(file, "content");
        sub = dir.join("sub");
        fs::create_directory(test_support::from_utf8(sub));
    }

    temp_dir_c dir;
    std::string file, sub;
};

} // namespace

TEST_F(txf_wrapper_test, create_file_transacted_fails_and_creates_nothing) {
    std::string fresh = dir.join("fresh.txt");
    arm_last_error();
    void* handle = txf_wrapper_c::CreateFileTransacted(
        wide(fresh).c_str(), os::GENERIC_READ | os::GENERIC_WRITE, 0, nullptr, os::CREATE_NEW,
        os::FILE_ATTRIBUTE_NORMAL, nullptr, transaction, nullptr, nullptr);
    EXPECT_EQ(handle, os::INVALID_HANDLE_VALUE);
    EXPECT_TRUE(failed_cleanly(os::GetLastError()));
    EXPECT_FALSE(fs::exists(test_support::from_utf8(fresh)));
    // Nor does it open or truncate a file that exists.
    arm_last_error();
    handle = txf_wrapper_c::CreateFileTransacted(wide(file).c_str(), os::GENERIC_WRITE, 0, nullptr,
                                                 os::CREATE_ALWAYS, os::FILE_ATTRIBUTE_NORMAL,
                                                 nullptr, transaction, nullptr, nullptr);
    EXPECT_EQ(handle, os::INVALID_HANDLE_VALUE);
    EXPECT_TRUE(failed_cleanly(os::GetLastError()));
    EXPECT_EQ(read_file(file), "content");
}

TEST_F(txf_wrapper_test, delete_file_transacted_fails_and_the_file_stays) {
    arm_last_error();
    EXPECT_EQ(txf_wrapper_c::DeleteFileTransacted(wide(file).c_str(), transaction), 0);
    EXPECT_TRUE(failed_cleanly(os::GetLastError()));
    EXPECT_EQ(read_file(file), "content");
}

TEST_F(txf_wrapper_test, move_file_transacted_fails_and_the_file_stays) {
    std::string target = dir.join("moved.txt");
    arm_last_error();
    int moved = txf_wrapper_c::MoveFileTransacted(wide(file).c_str(), wide(target).c_str(), nullptr,
                                                  nullptr, move_flags, transaction);
    EXPECT_EQ(moved, 0);
    // Wine's KERNEL32 exports this one call, as a stub.
    EXPECT_TRUE(failed_cleanly(os::GetLastError(), true));
    EXPECT_EQ(read_file(file), "content");
    EXPECT_FALSE(fs::exists(test_support::from_utf8(target)));
}

TEST_F(txf_wrapper_test, remove_directory_transacted_fails_and_the_directory_stays) {
    arm_last_error();
    EXPECT_EQ(txf_wrapper_c::RemoveDirectoryTransacted(wide(sub).c_str(), transaction), 0);
    EXPECT_TRUE(failed_cleanly(os::GetLastError()));
    EXPECT_TRUE(fs::is_directory(test_support::from_utf8(sub)));
}

TEST_F(txf_wrapper_test, set_file_attributes_transacted_fails_and_the_attributes_stay) {
    fs::perms before = fs::status(test_support::from_utf8(file)).permissions();
    arm_last_error();
    EXPECT_EQ(txf_wrapper_c::SetFileAttributesTransacted(wide(file).c_str(),
                                                         os::FILE_ATTRIBUTE_READONLY, transaction),
              0);
    EXPECT_TRUE(failed_cleanly(os::GetLastError()));
    EXPECT_EQ(fs::status(test_support::from_utf8(file)).permissions(), before);
}

TEST_F(txf_wrapper_test, get_file_attributes_transacted_gives_invalid_attributes) {
    unsigned char info[64] = {};
    arm_last_error();
    EXPECT_EQ(txf_wrapper_c::GetFileAttributesTransacted(
                  wide(file).c_str(), os::GetFileExInfoStandard, info, transaction),
              os::INVALID_FILE_ATTRIBUTES);
    EXPECT_TRUE(failed_cleanly(os::GetLastError()));
}

TEST_F(txf_wrapper_test, get_long_path_name_transacted_gives_zero) {
    std::u16string path = wide(file);
    std::vector<os::wide_char> buffer(4096, u'#');
    arm_last_error();
    EXPECT_EQ(txf_wrapper_c::GetLongPathNameTransacted(
                  path.c_str(), buffer.data(), static_cast<os::DWORD>(buffer.size()), transaction),
              0u);
    EXPECT_TRUE(failed_cleanly(os::GetLastError()));
}

TEST_F(txf_wrapper_test, find_first_file_transacted_gives_an_invalid_handle) {
    std::u16string pattern = wide(dir.join("*"));
    unsigned char data[1024] = {};
    arm_last_error();
    EXPECT_EQ(txf_wrapper_c::FindFirstFileTransacted(pattern.c_str(), os::FindExInfoStandard, data,
                                                     os::FindExSearchNameMatch, nullptr, 0,
                                                     transaction),
              os::INVALID_HANDLE_VALUE);
    EXPECT_TRUE(failed_cleanly(os::GetLastError()));
}

TEST_F(txf_wrapper_test, calls_fail_the_same_way_every_time) {
    // The calls are looked up once where they are looked up at all; the second failure must
    // look like the first.
    for (int round = 0; round < 3; ++round) {
        arm_last_error();
        EXPECT_EQ(txf_wrapper_c::DeleteFileTransacted(wide(file).c_str(), transaction), 0);
        EXPECT_TRUE(failed_cleanly(os::GetLastError()));
        arm_last_error();
        EXPECT_EQ(txf_wrapper_c::RemoveDirectoryTransacted(wide(sub).c_str(), transaction), 0);
        EXPECT_TRUE(failed_cleanly(os::GetLastError()));
    }
    EXPECT_EQ(read_file(file), "content");
}
