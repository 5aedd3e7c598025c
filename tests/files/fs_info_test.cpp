// file_system_info_n::get_volume_name_for_volume_mount_point: the name of the volume mounted at
// a drive root or a mount-point directory, asked of the system with a wide name that ends in a
// backslash.
#include "files/fs_info.h"

#include "common/test_support.h"
#include "files/file.h"
#include "platform/os.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#if !defined(_WIN32)
#include "platform/posix/syscalls.h"

#include <sys/stat.h>
#endif

namespace {

using os::wide_char;
using test_support::on_windows;
using test_support::on_wine;
using test_support::temp_dir_c;

const char untouched[] = "<untouched>";

// What a call answered: its result, what it wrote, and the last error after a failure.
struct answer_s {
    bool found = false;
    std::string out;
    os::DWORD error = 0;
};

answer_s library(const char* path) {
    std::vector<char> out(path_n::path_buffer_size, 0);
    std::strcpy(out.data(), untouched);
    os::SetLastError(0xDEADu);
    answer_s answer;
    answer.found =
        file_system_info_n::get_volume_name_for_volume_mount_point(path, out.data()) != 0;
    answer.error = answer.found ? 0 : os::GetLastError();
    answer.out = out.data();
    return answer;
}

// The platform's own answer for exactly this wide name, with the library's buffer of 64 units.
answer_s platform(const std::u16string& mount_point) {
    std::vector<wide_char> volume(64, 0);
    os::SetLastError(0xDEADu);
    answer_s answer;
    answer.found =
        os::GetVolumeNameForVolumeMountPointW(mount_point.c_str(), volume.data(), 64) != 0;
    answer.error = answer.found ? 0 : os::GetLastError();
    if (answer.found) {
        std::vector<char> narrow(path_n::path_buffer_size, 0);
        path_n::wide_char_path_to_path(volume.data(), narrow.data());
        answer.out = narrow.data();
    } else {
        answer.out = untouched;
    }
    return answer;
}

void expect_same(const answer_s& got, const answer_s& expected) {
    EXPECT_EQ(got.found, expected.found);
    EXPECT_EQ(got.out, expected.out);
    EXPECT_EQ(got.error, expected.error);
}

#if !defined(_WIN32)
// The paths that the POSIX OS layer looked up by stat, the first step of its
// GetVolumeNameForVolumeMountPointW once the name is well-formed.
std::vector<std::string> stat_paths;
int recording_stat(const char* path, struct stat* result) {
    stat_paths.push_back(path);
    return os::posix::real_syscalls().stat(path, result);
}

class stat_recorder_c {
  public:
    stat_recorder_c() {
        stat_paths.clear();
        os::posix::syscalls().stat = recording_stat;
    }
    ~stat_recorder_c() { os::posix::syscalls().stat = os::posix::real_syscalls().stat; }
    stat_recorder_c(const stat_recorder_c&) = delete;
    stat_recorder_c& operator=(const stat_recorder_c&) = delete;
};

// Decodes the octal escapes (\040 for a blank) of /proc/mounts.
std::string unescaped(const std::string& field) {
    std::string out;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size()) {
            out += static_cast<char>(std::stoi(field.substr(i + 1, 3), nullptr, 8));
            i += 3;
        } else {
            out += field[i];
        }
    }
    return out;
}

// The device mounted last at `mount_point`, as /proc/mounts lists it; empty when none.
std::string device_mounted_at(const std::string& mount_point) {
    std::ifstream mounts("/proc/mounts");
    std::string line, device;
    while (std::getline(mounts, line)) {
        std::istringstream fields(line);
        std::string source, target;
        if (fields >> source >> target && unescaped(target) == mount_point)
            device = unescaped(source);
    }
    return device;
}
#endif

TEST(GetVolumeNameForVolumeMountPoint, NullOrEmptyArgumentsGiveZero) {
    answer_s answer = library(nullptr);
    EXPECT_FALSE(answer.found);
    EXPECT_EQ(answer.out, untouched);
    answer = library("");
    EXPECT_FALSE(answer.found);
    EXPECT_EQ(answer.out, untouched);
    EXPECT_EQ(file_system_info_n::get_volume_name_for_volume_mount_point("C:/", nullptr), 0u);
    EXPECT_EQ(file_system_info_n::get_volume_name_for_volume_mount_point("/", nullptr), 0u);
}

TEST(GetVolumeNameForVolumeMountPoint, MountPathReachesThePlatformAsBackslashedWithTrailingOne) {
    // c:/mount is asked as c:\mount\ : the library's answer is the platform's answer for exactly
    // that name, and differs from its answers for the name without the trailing backslash or
    // with slashes (both refused as ERROR_INVALID_NAME).
    answer_s got = library("c:/mount");
    EXPECT_FALSE(got.found);
    expect_same(got, platform(u"c:\\mount\\"));
    answer_s without_trailing = platform(u"c:\\mount");
    EXPECT_EQ(without_trailing.error, os::ERROR_INVALID_NAME);
    EXPECT_NE(got.error, without_trailing.error);
    if (!on_windows() || on_wine()) {
        answer_s with_slashes = platform(u"c:/mount/");
        EXPECT_EQ(with_slashes.error, os::ERROR_INVALID_NAME);
        EXPECT_NE(got.error, with_slashes.error);
    }
    // Wine knows no mounted folders: a name longer than a drive root is no reparse point there.
    if (on_wine()) {
        EXPECT_EQ(got.error, os::ERROR_NOT_A_REPARSE_POINT);
    }
#if !defined(_WIN32)
    // Here the name is relative and missing; the OS layer looked for c:/mount/ (on this system
    // both separators are one).
    EXPECT_EQ(got.error, os::ERROR_FILE_NOT_FOUND);
    stat_recorder_c recorder;
    library("c:/mount");
    EXPECT_EQ(stat_paths, std::vector<std::string>{"c:/mount/"});
#endif
}

TEST(GetVolumeNameForVolumeMountPoint, PathEndingInABackslashGetsNoSecondOne) {
#if defined(_WIN32)
    answer_s got = library("C:\\");
    expect_same(got, platform(u"C:\\"));
    EXPECT_TRUE(got.found) << "error " << got.error;
#else
    temp_dir_c dir;
    stat_recorder_c recorder;
    answer_s got = library((dir.str() + "\\").c_str());
    EXPECT_EQ(stat_paths, std::vector<std::string>{dir.str() + "/"});
    EXPECT_FALSE(got.found);
    EXPECT_EQ(got.error, os::ERROR_NOT_A_REPARSE_POINT);
#endif
}

TEST(GetVolumeNameForVolumeMountPoint, PathEndingInASlashGetsABackslashAfterIt) {
    // Only a backslash at the end of the path as given counts: "C:/" is asked as "C:\\".
#if defined(_WIN32)
    answer_s got = library("C:/");
    expect_same(got, platform(u"C:\\\\"));
    if (on_wine()) {
        EXPECT_FALSE(got.found);
        EXPECT_EQ(got.error, os::ERROR_NOT_A_REPARSE_POINT);
    }
#else
    temp_dir_c dir;
    stat_recorder_c recorder;
    answer_s got = library((dir.str() + "/").c_str());
    EXPECT_EQ(stat_paths, std::vector<std::string>{dir.str() + "//"});
    EXPECT_FALSE(got.found);
#endif
}

TEST(GetVolumeNameForVolumeMountPoint, DriveRootGivesTheVolumeGuidPath) {
    if (!on_windows()) GTEST_SKIP() << "drive letters name nothing on POSIX";
    for (const char* root : {"C:", "c:", "C:\\"}) {
        SCOPED_TRACE(root);
        answer_s got = library(root);
        ASSERT_TRUE(got.found) << "error " << got.error;
        expect_same(got, platform(u"C:\\"));
        // "\\?\Volume{" 36 characters "}\"
        EXPECT_EQ(got.out.size(), 49u) << got.out;
        EXPECT_EQ(got.out.rfind(R"(\\?\Volume{)", 0), 0u) << got.out;
        EXPECT_EQ(got.out.substr(got.out.size() - 2), "}\\") << got.out;
    }
}

TEST(GetVolumeNameForVolumeMountPoint, RootIsTheDeviceMountedThere) {
#if defined(_WIN32)
    GTEST_SKIP() << "on Windows a volume's name is its GUID path (DriveRootGivesTheVolumeGuidPath)";
#else
    std::string device = device_mounted_at("/");
    ASSERT_FALSE(device.empty()) << "/proc/mounts lists nothing at /";
    std::string expected = device;
    for (char& c : expected)
        if (c == '/') c = '\\';
    if (expected.size() >= 64) GTEST_SKIP() << "the device's name exceeds 63 units: " << device;
    answer_s got = library("/");
    ASSERT_TRUE(got.found) << "error " << got.error;
    EXPECT_EQ(got.out, expected);
    // The same volume through a name with backslashes.
    got = library("\\");
    ASSERT_TRUE(got.found) << "error " << got.error;
    EXPECT_EQ(got.out, expected);
#endif
}

TEST(GetVolumeNameForVolumeMountPoint, DirectoryThatIsNoMountPointGivesZeroAndLeavesOut) {
    temp_dir_c dir;
    answer_s got = library(dir.str().c_str());
    EXPECT_FALSE(got.found);
    EXPECT_EQ(got.out, untouched);
    // On POSIX the directory is none; Wine knows no mounted folders at all.
    if (!on_windows() || on_wine()) {
        EXPECT_EQ(got.error, os::ERROR_NOT_A_REPARSE_POINT);
    }
}

TEST(GetVolumeNameForVolumeMountPoint, MissingDirectoryGivesZeroAndLeavesOut) {
    temp_dir_c dir;
    std::string missing = dir.join("missing");
    answer_s got = library(missing.c_str());
    EXPECT_FALSE(got.found);
    EXPECT_EQ(got.out, untouched);
    if (!on_windows()) {
        EXPECT_EQ(got.error, os::ERROR_FILE_NOT_FOUND);
    }
}

} // namespace
