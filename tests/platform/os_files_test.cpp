// The file calls of the OS layer: the same results and Win32 errors on Linux and on Windows.
#include "platform/os.h"

#include "common/test_support.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#if !defined(_WIN32)
#include <unistd.h>
#endif

namespace fs = std::filesystem;
using test_support::on_windows;
using test_support::on_wine;
using test_support::read_file;
using test_support::temp_dir_c;
using test_support::write_file;

namespace {

std::u16string wide(const std::string& utf8_path) {
    return test_support::from_utf8(utf8_path).u16string();
}

os::HANDLE open(const std::string& path, os::DWORD access, os::DWORD disposition,
                os::DWORD flags = os::FILE_ATTRIBUTE_NORMAL) {
    return os::CreateFileW(wide(path).c_str(), access,
                           os::FILE_SHARE_READ | os::FILE_SHARE_WRITE | os::FILE_SHARE_DELETE,
                           nullptr, disposition, flags, nullptr);
}

// Opens, and on failure gives the error; the handle, when valid, is closed at once.
struct open_result_s {
    bool valid;
    os::DWORD error;
};

open_result_s open_and_close(const std::string& path, os::DWORD access, os::DWORD disposition,
                             os::DWORD flags = os::FILE_ATTRIBUTE_NORMAL) {
    os::SetLastError(0xDEADu);
    os::HANDLE h = open(path, access, disposition, flags);
    open_result_s result{h != os::INVALID_HANDLE_VALUE && h != nullptr, os::GetLastError()};
    if (result.valid) {
        EXPECT_NE(os::CloseHandle(h), 0);
    }
    return result;
}

std::u16string with_backslashes(std::u16string text) {
    for (char16_t& c : text)
        if (c == u'/') c = u'\\';
    return text;
}

std::u16string folded(std::u16string text) {
    for (char16_t& c : text)
        if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c + 0x20);
    return text;
}

std::string narrow(const std::u16string& text) { return test_support::utf8(fs::path(text)); }

class os_files_test : public ::testing::Test {
  protected:
    void SetUp() override {
        file = dir.join("file.txt");
        write_file(file, "twelve bytes");
        sub = dir.join("sub");
        fs::create_directory(test_support::from_utf8(sub));
    }

    temp_dir_c dir;
    std::string file, sub;
};

} // namespace

// ---- CreateFileW and CloseHandle

TEST_F(os_files_test, opening_a_missing_file_gives_file_not_found) {
    open_result_s r = open_and_close(dir.join("missing.txt"), os::GENERIC_READ, os::OPEN_EXISTING);
    EXPECT_FALSE(r.valid);
    EXPECT_EQ(r.error, os::ERROR_FILE_NOT_FOUND);
    r = open_and_close(dir.join("missing.txt"), os::GENERIC_WRITE, os::TRUNCATE_EXISTING);
    EXPECT_FALSE(r.valid);
    EXPECT_EQ(r.error, os::ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(fs::exists(test_support::from_utf8(dir.join("missing.txt"))));
}

TEST_F(os_files_test, opening_in_a_missing_directory_gives_path_not_found) {
    for (os::DWORD disposition :
         {os::OPEN_EXISTING, os::CREATE_NEW, os::CREATE_ALWAYS, os::OPEN_ALWAYS}) {
        SCOPED_TRACE(disposition);
        open_result_s r = open_and_close(dir.join("no_dir/file.txt"),
                                         os::GENERIC_READ | os::GENERIC_WRITE, disposition);
        EXPECT_FALSE(r.valid);
        EXPECT_EQ(r.error, os::ERROR_PATH_NOT_FOUND);
    }
    // A file standing where a directory should be.
    open_result_s r = open_and_close(file + "/inner.txt", os::GENERIC_READ, os::OPEN_EXISTING);
    EXPECT_FALSE(r.valid);
    EXPECT_EQ(r.error, os::ERROR_PATH_NOT_FOUND);
}

TEST_F(os_files_test, a_directory_without_backup_semantics_is_access_denied) {
    open_result_s r = open_and_close(sub, os::GENERIC_READ, os::OPEN_EXISTING);
    EXPECT_FALSE(r.valid);
    EXPECT_EQ(r.error, os::ERROR_ACCESS_DENIED);
    r = open_and_close(sub, os::GENERIC_READ | os::GENERIC_WRITE, os::OPEN_EXISTING);
    EXPECT_FALSE(r.valid);
    EXPECT_EQ(r.error, os::ERROR_ACCESS_DENIED);
}

TEST_F(os_files_test, a_directory_with_backup_semantics_opens) {
    os::HANDLE h = open(sub, os::GENERIC_READ, os::OPEN_EXISTING, os::FILE_FLAG_BACKUP_SEMANTICS);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE) << "error " << os::GetLastError();
    EXPECT_NE(h, nullptr);
    EXPECT_NE(os::CloseHandle(h), 0);
    // A plain file opens with the flag as well.
    h = open(file, os::GENERIC_READ, os::OPEN_EXISTING, os::FILE_FLAG_BACKUP_SEMANTICS);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE) << "error " << os::GetLastError();
    EXPECT_NE(os::CloseHandle(h), 0);
}

TEST_F(os_files_test, create_new_on_an_existing_file_gives_file_exists_and_leaves_it) {
    open_result_s r = open_and_close(file, os::GENERIC_WRITE, os::CREATE_NEW);
    EXPECT_FALSE(r.valid);
    EXPECT_EQ(r.error, os::ERROR_FILE_EXISTS);
    EXPECT_EQ(read_file(file), "twelve bytes");
}

TEST_F(os_files_test, create_new_makes_an_empty_file) {
    std::string fresh = dir.join("fresh.txt");
    open_result_s r = open_and_close(fresh, os::GENERIC_READ | os::GENERIC_WRITE, os::CREATE_NEW);
    EXPECT_TRUE(r.valid) << "error " << r.error;
    EXPECT_EQ(r.error, os::ERROR_SUCCESS);
    ASSERT_TRUE(fs::is_regular_file(test_support::from_utf8(fresh)));
    EXPECT_EQ(fs::file_size(test_support::from_utf8(fresh)), 0u);
}

TEST_F(os_files_test, create_always_truncates_an_existing_file_and_says_it_existed) {
    open_result_s r = open_and_close(file, os::GENERIC_WRITE, os::CREATE_ALWAYS);
    EXPECT_TRUE(r.valid) << "error " << r.error;
    EXPECT_EQ(r.error, os::ERROR_ALREADY_EXISTS);
    EXPECT_EQ(fs::file_size(test_support::from_utf8(file)), 0u);

    std::string fresh = dir.join("fresh.txt");
    r = open_and_close(fresh, os::GENERIC_WRITE, os::CREATE_ALWAYS);
    EXPECT_TRUE(r.valid) << "error " << r.error;
    EXPECT_EQ(r.error, os::ERROR_SUCCESS);
    EXPECT_TRUE(fs::exists(test_support::from_utf8(fresh)));
}

TEST_F(os_files_test, open_always_keeps_an_existing_file_and_says_it_existed) {
    open_result_s r = open_and_close(file, os::GENERIC_READ | os::GENERIC_WRITE, os::OPEN_ALWAYS);
    EXPECT_TRUE(r.valid) << "error " << r.error;
    EXPECT_EQ(r.error, os::ERROR_ALREADY_EXISTS);
    EXPECT_EQ(read_file(file), "twelve bytes");

    std::string fresh = dir.join("fresh.txt");
    r = open_and_close(fresh, os::GENERIC_READ | os::GENERIC_WRITE, os::OPEN_ALWAYS);
    EXPECT_TRUE(r.valid) << "error " << r.error;
    EXPECT_EQ(r.error, os::ERROR_SUCCESS);
    EXPECT_TRUE(fs::exists(test_support::from_utf8(fresh)));
}

TEST_F(os_files_test, truncate_existing_empties_the_file) {
    open_result_s r = open_and_close(file, os::GENERIC_WRITE, os::TRUNCATE_EXISTING);
    EXPECT_TRUE(r.valid) << "error " << r.error;
    EXPECT_EQ(fs::file_size(test_support::from_utf8(file)), 0u);
}

TEST_F(os_files_test, create_always_on_a_directory_is_access_denied) {
    open_result_s r = open_and_close(sub, os::GENERIC_WRITE, os::CREATE_ALWAYS);
    EXPECT_FALSE(r.valid);
    EXPECT_EQ(r.error, os::ERROR_ACCESS_DENIED);
    EXPECT_TRUE(fs::is_directory(test_support::from_utf8(sub)));
}

TEST_F(os_files_test, a_path_with_either_separator_opens) {
    std::string mixed = dir.str() + "\\sub\\..\\file.txt";
    open_result_s r = open_and_close(mixed, os::GENERIC_READ, os::OPEN_EXISTING);
    EXPECT_TRUE(r.valid) << "error " << r.error;
}

TEST_F(os_files_test, closing_a_null_handle_fails_with_invalid_handle) {
    os::SetLastError(0);
    EXPECT_EQ(os::CloseHandle(nullptr), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_INVALID_HANDLE);
}

TEST_F(os_files_test, closing_a_handle_twice_fails_the_second_time_with_invalid_handle) {
    os::HANDLE h = open(file, os::GENERIC_READ, os::OPEN_EXISTING);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE) << "error " << os::GetLastError();
    EXPECT_NE(os::CloseHandle(h), 0);
    os::SetLastError(0);
    EXPECT_EQ(os::CloseHandle(h), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_INVALID_HANDLE);
}

TEST_F(os_files_test, reading_through_a_closed_handle_fails_with_invalid_handle) {
    os::HANDLE h = open(file, os::GENERIC_READ, os::OPEN_EXISTING);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE) << "error " << os::GetLastError();
    EXPECT_NE(os::CloseHandle(h), 0);
    char buffer[4] = {};
    os::DWORD done = 99;
    os::SetLastError(0);
    EXPECT_EQ(os::ReadFile(h, buffer, sizeof buffer, &done, nullptr), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_INVALID_HANDLE);
}

// ---- GetLongPathNameW

TEST_F(os_files_test, long_path_name_reports_the_size_it_needs_and_then_fills_the_buffer) {
    std::u16string path = wide(file);
    const os::DWORD n = static_cast<os::DWORD>(path.size());

    // Without a buffer: the size with the terminator.
    EXPECT_EQ(os::GetLongPathNameW(path.c_str(), nullptr, 0), n + 1);
    // One unit short: the same answer.
    std::vector<os::wide_char> small(n, u'#');
    EXPECT_EQ(os::GetLongPathNameW(path.c_str(), small.data(), n), n + 1);
    // Exactly enough: the length without the terminator, and the name.
    std::vector<os::wide_char> exact(n + 1, u'#');
    ASSERT_EQ(os::GetLongPathNameW(path.c_str(), exact.data(), n + 1), n);
    EXPECT_EQ(exact[n], 0);
    std::u16string got(exact.data(), n);
    EXPECT_EQ(folded(with_backslashes(got)), folded(with_backslashes(path))) << narrow(got);
    // Plenty of room.
    std::vector<os::wide_char> large(4096, u'#');
    EXPECT_EQ(os::GetLongPathNameW(path.c_str(), large.data(), 4096), n);
    EXPECT_EQ(std::u16string(large.data()), got);
}

TEST_F(os_files_test, long_path_name_works_in_place) {
    std::u16string path = wide(sub);
    std::vector<os::wide_char> buffer(path.begin(), path.end());
    buffer.resize(4096, 0);
    ASSERT_EQ(os::GetLongPathNameW(buffer.data(), buffer.data(), 4096), path.size());
    EXPECT_EQ(folded(with_backslashes(buffer.data())), folded(with_backslashes(path)));
}

TEST_F(os_files_test, long_path_name_of_a_missing_file_is_zero_with_file_not_found) {
    std::u16string path = wide(dir.join("missing.txt"));
    std::vector<os::wide_char> buffer(4096, 0);
    os::SetLastError(0);
    EXPECT_EQ(os::GetLongPathNameW(path.c_str(), buffer.data(), 4096), 0u);
    EXPECT_EQ(os::GetLastError(), os::ERROR_FILE_NOT_FOUND);
}

// ---- GetVolumePathNameW

TEST_F(os_files_test, volume_path_of_a_temp_path_is_a_root_with_a_trailing_backslash) {
    for (const std::string& inside : {file, sub, dir.join("not/yet/there.txt")}) {
        SCOPED_TRACE(inside);
        std::u16string path = wide(inside);
        std::vector<os::wide_char> root(4096, u'#');
        os::SetLastError(0);
        ASSERT_NE(os::GetVolumePathNameW(path.c_str(), root.data(), 4096), 0)
            << "error " << os::GetLastError();
        std::u16string volume(root.data());
        ASSERT_FALSE(volume.empty());
        EXPECT_EQ(volume.back(), u'\\') << narrow(volume);
        // The root begins the path, whatever the case of its letters and the separators of the
        // path given.
        std::u16string given = folded(with_backslashes(path));
        EXPECT_EQ(given.compare(0, volume.size(), folded(volume)), 0)
            << narrow(volume) << " is not a prefix of " << narrow(path);
    }
}

TEST_F(os_files_test, volume_path_does_not_fit_a_buffer_of_one_unit) {
    // Every root takes at least two units with its terminator. (A buffer one unit short of the
    // root is not tested: Wine then gives "C:" without the backslash and succeeds.)
    std::u16string path = wide(file);
    os::wide_char small[1] = {u'#'};
    os::SetLastError(0);
    EXPECT_EQ(os::GetVolumePathNameW(path.c_str(), small, 1), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_FILENAME_EXCED_RANGE);
}

// ---- _waccess

TEST_F(os_files_test, waccess_of_an_existing_file_and_directory) {
    for (int mode : {0, 2, 4, 6}) {
        SCOPED_TRACE(mode);
        EXPECT_EQ(os::_waccess(wide(file).c_str(), mode), 0);
        EXPECT_EQ(os::_waccess(wide(sub).c_str(), mode), 0);
    }
}

TEST_F(os_files_test, waccess_of_a_missing_path_is_minus_one_with_enoent) {
    errno = 0;
    EXPECT_EQ(os::_waccess(wide(dir.join("missing.txt")).c_str(), 0), -1);
    EXPECT_EQ(os::crt_errno(), ENOENT);
    errno = 0;
    EXPECT_EQ(os::_waccess(wide(dir.join("missing/deeper.txt")).c_str(), 4), -1);
    EXPECT_EQ(os::crt_errno(), ENOENT);
}

TEST_F(os_files_test, waccess_for_writing_a_read_only_file_is_minus_one_with_eacces) {
#if !defined(_WIN32)
    if (::geteuid() == 0) GTEST_SKIP() << "root may write every file on this system";
#endif
    fs::permissions(test_support::from_utf8(file),
                    fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    errno = 0;
    EXPECT_EQ(os::_waccess(wide(file).c_str(), 2), -1);
    EXPECT_EQ(os::crt_errno(), EACCES);
    EXPECT_EQ(os::_waccess(wide(file).c_str(), 4), 0);
    EXPECT_EQ(os::_waccess(wide(file).c_str(), 0), 0);
    fs::permissions(test_support::from_utf8(file), fs::perms::owner_write, fs::perm_options::add);
}

// ---- MoveFileExW

TEST_F(os_files_test, move_file_ex_renames_a_file) {
    std::string target = dir.join("moved.txt");
    ASSERT_NE(os::MoveFileExW(wide(file).c_str(), wide(target).c_str(), 0), 0)
        << "error " << os::GetLastError();
    EXPECT_FALSE(fs::exists(test_support::from_utf8(file)));
    EXPECT_EQ(read_file(target), "twelve bytes");
}

TEST_F(os_files_test, move_file_ex_with_write_through_renames_a_file) {
    std::string target = dir.join("moved.txt");
    ASSERT_NE(os::MoveFileExW(wide(file).c_str(), wide(target).c_str(), os::MOVEFILE_WRITE_THROUGH),
              0)
        << "error " << os::GetLastError();
    EXPECT_FALSE(fs::exists(test_support::from_utf8(file)));
    EXPECT_EQ(read_file(target), "twelve bytes");
}

TEST_F(os_files_test, move_file_ex_renames_a_directory) {
    write_file(sub + "/inner.txt", "inner");
    std::string target = dir.join("renamed");
    ASSERT_NE(os::MoveFileExW(wide(sub).c_str(), wide(target).c_str(), 0), 0)
        << "error " << os::GetLastError();
    EXPECT_FALSE(fs::exists(test_support::from_utf8(sub)));
    EXPECT_EQ(read_file(target + "/inner.txt"), "inner");
}

TEST_F(os_files_test, move_file_ex_onto_an_existing_file_without_replace_is_already_exists) {
    std::string target = dir.join("target.txt");
    write_file(target, "target");
    for (os::DWORD flags : {os::DWORD{0}, os::MOVEFILE_WRITE_THROUGH}) {
        SCOPED_TRACE(flags);
        os::SetLastError(0);
        EXPECT_EQ(os::MoveFileExW(wide(file).c_str(), wide(target).c_str(), flags), 0);
        EXPECT_EQ(os::GetLastError(), os::ERROR_ALREADY_EXISTS);
        EXPECT_EQ(read_file(file), "twelve bytes");
        EXPECT_EQ(read_file(target), "target");
    }
}

TEST_F(os_files_test, move_file_ex_with_replace_existing_replaces_the_target) {
    std::string target = dir.join("target.txt");
    write_file(target, "target");
    ASSERT_NE(os::MoveFileExW(wide(file).c_str(), wide(target).c_str(),
                              os::MOVEFILE_REPLACE_EXISTING | os::MOVEFILE_WRITE_THROUGH),
              0)
        << "error " << os::GetLastError();
    EXPECT_FALSE(fs::exists(test_support::from_utf8(file)));
    EXPECT_EQ(read_file(target), "twelve bytes");
}

TEST_F(os_files_test, move_file_ex_of_a_missing_file_is_file_not_found) {
    std::string target = dir.join("target.txt");
    os::SetLastError(0);
    EXPECT_EQ(os::MoveFileExW(wide(dir.join("missing.txt")).c_str(), wide(target).c_str(), 0), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(fs::exists(test_support::from_utf8(target)));
}

// ---- GetDiskFreeSpaceExW and GetDiskFreeSpaceW

TEST_F(os_files_test, disk_free_space_ex_of_a_directory_gives_consistent_sizes) {
    std::uint64_t free_to_caller = 0, total = 0, total_free = 0;
    ASSERT_NE(os::GetDiskFreeSpaceExW(wide(sub).c_str(), &free_to_caller, &total, &total_free), 0)
        << "error " << os::GetLastError();
    EXPECT_GT(total, 0u);
    EXPECT_LE(total_free, total);
    EXPECT_LE(free_to_caller, total_free);
    // Every output may be left out, and a trailing separator changes nothing.
    std::uint64_t total_again = 0;
    EXPECT_NE(os::GetDiskFreeSpaceExW(wide(sub + "/").c_str(), nullptr, &total_again, nullptr), 0);
    EXPECT_EQ(total_again, total);
    EXPECT_NE(os::GetDiskFreeSpaceExW(wide(sub).c_str(), nullptr, nullptr, nullptr), 0);
}

TEST_F(os_files_test, disk_free_space_ex_of_a_missing_path_fails_as_windows_tells_it) {
    std::uint64_t total = 0;
    os::SetLastError(0);
    EXPECT_EQ(os::GetDiskFreeSpaceExW(wide(dir.join("missing")).c_str(), nullptr, &total, nullptr),
              0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_FILE_NOT_FOUND);
    os::SetLastError(0);
    EXPECT_EQ(
        os::GetDiskFreeSpaceExW(wide(dir.join("missing/deeper")).c_str(), nullptr, &total, nullptr),
        0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_PATH_NOT_FOUND);
}

TEST_F(os_files_test, disk_free_space_ex_of_a_file_is_error_directory) {
    std::uint64_t total = 0;
    os::SetLastError(0);
    EXPECT_EQ(os::GetDiskFreeSpaceExW(wide(file).c_str(), nullptr, &total, nullptr), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_DIRECTORY);
}

TEST_F(os_files_test, disk_free_space_of_a_directory_gives_plausible_geometry) {
    os::DWORD sectors_per_cluster = 0, bytes_per_sector = 0, free_clusters = 0, total_clusters = 0;
    ASSERT_NE(os::GetDiskFreeSpaceW(wide(sub).c_str(), &sectors_per_cluster, &bytes_per_sector,
                                    &free_clusters, &total_clusters),
              0)
        << "error " << os::GetLastError();
    EXPECT_GE(sectors_per_cluster, 1u);
    EXPECT_GE(bytes_per_sector, 512u);
    EXPECT_EQ(bytes_per_sector & (bytes_per_sector - 1), 0u) << bytes_per_sector;
    EXPECT_GT(total_clusters, 0u);
    EXPECT_LE(free_clusters, total_clusters);
    os::DWORD sectors_again = 0;
    EXPECT_NE(os::GetDiskFreeSpaceW(wide(sub).c_str(), &sectors_again, nullptr, nullptr, nullptr),
              0);
    EXPECT_EQ(sectors_again, sectors_per_cluster);
}

TEST_F(os_files_test, disk_free_space_of_a_missing_path_fails_as_windows_tells_it) {
    os::DWORD sectors_per_cluster = 0, bytes_per_sector = 0, free_clusters = 0, total_clusters = 0;
    os::SetLastError(0);
    EXPECT_EQ(os::GetDiskFreeSpaceW(wide(dir.join("missing")).c_str(), &sectors_per_cluster,
                                    &bytes_per_sector, &free_clusters, &total_clusters),
              0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_FILE_NOT_FOUND);
    os::SetLastError(0);
    EXPECT_EQ(os::GetDiskFreeSpaceW(wide(dir.join("missing/deeper")).c_str(), &sectors_per_cluster,
                                    &bytes_per_sector, &free_clusters, &total_clusters),
              0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_PATH_NOT_FOUND);
    os::SetLastError(0);
    EXPECT_EQ(os::GetDiskFreeSpaceW(wide(file).c_str(), &sectors_per_cluster, &bytes_per_sector,
                                    &free_clusters, &total_clusters),
              0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_DIRECTORY);
}

TEST_F(os_files_test, disk_free_space_of_an_empty_name_is_path_not_found) {
    std::uint64_t total = 0;
    os::SetLastError(0);
    EXPECT_EQ(os::GetDiskFreeSpaceExW(u"", nullptr, &total, nullptr), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_PATH_NOT_FOUND);
    os::DWORD sectors_per_cluster = 0;
    os::SetLastError(0);
    EXPECT_EQ(os::GetDiskFreeSpaceW(u"", &sectors_per_cluster, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_PATH_NOT_FOUND);
}

// ---- GetVolumeNameForVolumeMountPointW

TEST_F(os_files_test, volume_name_needs_a_trailing_backslash) {
    std::vector<os::wide_char> volume(64, u'#');
    for (const std::string& name : {sub, sub + "/", std::string("C:")}) {
        SCOPED_TRACE(name);
        // The name as given, with '/' kept where it stands.
        std::u16string mount_point(name.begin(), name.end());
        os::SetLastError(0);
        EXPECT_EQ(os::GetVolumeNameForVolumeMountPointW(mount_point.c_str(), volume.data(), 64), 0);
        EXPECT_EQ(os::GetLastError(), os::ERROR_INVALID_NAME);
    }
}

TEST_F(os_files_test, volume_name_of_a_directory_that_is_no_mount_point_fails) {
    std::vector<os::wide_char> volume(64, u'#');
    std::u16string mount_point = with_backslashes(wide(sub)) + u"\\";
    os::SetLastError(0);
    EXPECT_EQ(os::GetVolumeNameForVolumeMountPointW(mount_point.c_str(), volume.data(), 64), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_NOT_A_REPARSE_POINT);
    EXPECT_EQ(volume[0], u'#');
}

TEST_F(os_files_test, volume_name_of_the_root_does_not_fit_a_small_buffer) {
    std::u16string root = on_windows() ? u"C:\\" : u"\\";
    std::vector<os::wide_char> volume(64, u'#');
    ASSERT_NE(os::GetVolumeNameForVolumeMountPointW(root.c_str(), volume.data(), 64), 0)
        << "error " << os::GetLastError();
    std::size_t length = std::u16string(volume.data()).size();
    ASSERT_GT(length, 1u);
    std::vector<os::wide_char> small(64, u'#');
    os::SetLastError(0);
    EXPECT_EQ(os::GetVolumeNameForVolumeMountPointW(root.c_str(), small.data(), 1), 0);
    EXPECT_EQ(os::GetLastError(), os::ERROR_FILENAME_EXCED_RANGE);
}

// ---- ZwQueryInformationFile

TEST_F(os_files_test, zw_query_information_file_without_compression_information_is_negative) {
    if (on_windows() && !on_wine())
        GTEST_SKIP() << "Windows has the compression information of a file";
    // The POSIX build has no such information, and Wine 8 answers the same: a negative status,
    // STATUS_NOT_IMPLEMENTED, whatever the width of long.
    os::HANDLE h = open(file, os::GENERIC_READ, os::OPEN_EXISTING);
    ASSERT_NE(h, os::INVALID_HANDLE_VALUE) << "error " << os::GetLastError();
    unsigned char buffer[16] = {};
    os::IO_STATUS_BLOCK status{};
    long result = os::ZwQueryInformationFile(h, &status, buffer, sizeof buffer, 28);
    EXPECT_LT(result, 0);
    EXPECT_EQ(static_cast<std::uint32_t>(result), 0xC0000002u);
    EXPECT_NE(os::CloseHandle(h), 0);
}
