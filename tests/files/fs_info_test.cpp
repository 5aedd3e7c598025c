// file_system_info_n::get_volume_name_for_volume_mount_point: the name of the volume mounted at
// a drive root or a mount-point directory, asked of the system with a wide name that ends in a
// backslash.
#include "files/fs_info.h"

#include "common/test_support.h"
#include "files/basic_file.h"
#include "files/file.h"
#include "platform/os.h"
#include "support/thl.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <fstream>
#include <iterator>
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

// ---- the drive list: drive_info_c, drive_file_system_code, drive_supports_compression

namespace {

using file_system_info_n::drive_info_c;
using file_system_info_n::fs_fat;
using file_system_info_n::fs_ntfs;
using file_system_info_n::fs_other;
using file_system_info_n::fs_unknown;
using test_support::trace_capture_c;
using test_support::trace_line;

// The family that the platform's own answers give for a drive root: the flags and the name of
// GetVolumeInformationW, the name compared without regard to case.
std::uint32_t platform_code_of(const std::string& root) {
    std::u16string wide(root.begin(), root.end());
    os::wide_char name[257] = {};
    os::DWORD flags = 0;
    if (!os::GetVolumeInformationW(wide.c_str(), nullptr, 0, nullptr, nullptr, &flags, name, 257))
        return fs_unknown;
    if (!(flags & os::FILE_UNICODE_ON_DISK)) return fs_other;
    std::string text;
    for (const os::wide_char* c = name; *c; ++c)
        text += static_cast<char>(std::tolower(static_cast<unsigned char>(*c)));
    if (text == "fat" || text == "fat32" || text == "exfat") return fs_fat;
    if (text == "ntfs") return fs_ntfs;
    if (text == "refs") return file_system_info_n::fs_refs;
    return fs_other;
}

os::DWORD platform_flags_of(const std::string& root) {
    std::u16string wide(root.begin(), root.end());
    os::DWORD flags = 0;
    os::GetVolumeInformationW(wide.c_str(), nullptr, 0, nullptr, nullptr, &flags, nullptr, 0);
    return flags;
}

std::size_t count_of_items(const ptr_list_c& list) {
    std::size_t n = 0;
    for (const void* item = list.first(); item; item = list.next(item)) ++n;
    return n;
}

[[maybe_unused]] bool has_level(const std::string& line, unsigned level) {
    return line.find(" level=" + std::to_string(level) + " ") != std::string::npos;
}

// A drive list made as its owner makes it, empty, installed for the lifetime of the fixture and
// taken away (with its items) after it.
class DriveList : public ::testing::Test {
  protected:
    void SetUp() override {
        file_system_info_n::set_drive_list(nullptr);
        list = new ptr_list_c(false);
    }
    void TearDown() override {
        file_system_info_n::set_drive_list(nullptr);
        for (const void* item = list->first(); item; item = list->next(item))
            delete static_cast<const drive_info_c*>(item);
        delete list;
        EXPECT_EQ(file_system_info_n::common_fs_code(), fs_unknown);
    }
    void install() { file_system_info_n::set_drive_list(list); }
    // A drive put into the list by hand, with a chosen code and flags.
    void add(const char* root, std::uint32_t code, std::uint32_t flags = 0) {
        auto* drive = new drive_info_c;
        drive->drive_name = new char[std::strlen(root) + 1];
        std::strcpy(drive->drive_name, root);
        drive->fs_code = code;
        drive->fs_flags = flags;
        drive->drive_type = os::DRIVE_FIXED;
        list->append(drive);
    }

    ptr_list_c* list = nullptr;
    temp_dir_c dir;
};

TEST_F(DriveList, WithoutListTheCodeIs45AndNoDriveCompresses) {
    std::string root = dir.str().substr(0, 3);
    for (const std::string& path :
         {dir.str(), root, std::string("C:/dir/file.txt"), std::string(R"(\\server\share\x)"),
          std::string("/"), std::string("")}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(file_system_info_n::drive_file_system_code(path.c_str()), fs_unknown);
        EXPECT_FALSE(file_system_info_n::drive_supports_compression(path.c_str()));
    }
    EXPECT_EQ(file_system_info_n::drive_file_system_code(nullptr), fs_unknown);
    EXPECT_FALSE(file_system_info_n::drive_supports_compression(nullptr));
    EXPECT_EQ(file_system_info_n::common_fs_code(), fs_unknown);
}

TEST_F(DriveList, EmptyListSharesNoCode) {
    install();
    EXPECT_EQ(file_system_info_n::common_fs_code(), fs_unknown);
}

TEST_F(DriveList, InstalledListLearnsTheDriveOfTheTemporaryDirectory) {
    install();
    std::uint32_t code = file_system_info_n::drive_file_system_code(dir.str().c_str());
    char root[path_n::path_buffer_size] = {};
    if (!path_n::drive_name_from_path(dir.str().c_str(), root)) {
        // On Linux an absolute path has no drive: nothing is learnt.
        EXPECT_EQ(code, fs_unknown);
        EXPECT_FALSE(file_system_info_n::drive_supports_compression(dir.str().c_str()));
        EXPECT_EQ(count_of_items(*list), 0u);
        EXPECT_EQ(file_system_info_n::common_fs_code(), fs_unknown);
        return;
    }
    EXPECT_EQ(code, platform_code_of(root));
    ASSERT_EQ(count_of_items(*list), 1u);
    const auto* drive = static_cast<const drive_info_c*>(list->first());
    EXPECT_STREQ(drive->drive_name, root);
    EXPECT_EQ(drive->fs_code, code);
    EXPECT_EQ(file_system_info_n::common_fs_code(), code);
    // Known now: a second question adds nothing, for this or another path on the drive.
    EXPECT_EQ(file_system_info_n::drive_file_system_code((dir.str() + "/f.txt").c_str()), code);
    EXPECT_EQ(file_system_info_n::drive_supports_compression(dir.str().c_str()),
              (platform_flags_of(root) & os::FILE_FILE_COMPRESSION) != 0);
    EXPECT_EQ(count_of_items(*list), 1u);
}

TEST_F(DriveList, WhenAllKnownDrivesAreNtfsAnUnseenFatDriveIsAnswered78) {
    add("X:\\", fs_ntfs);
    add("Y:\\", fs_ntfs);
    install();
    EXPECT_EQ(file_system_info_n::common_fs_code(), fs_ntfs);
    // Drive F: is a FAT drive nobody has looked at; it isn't looked at now either.
    EXPECT_EQ(file_system_info_n::drive_file_system_code("F:/dir/file.txt"), fs_ntfs);
    EXPECT_EQ(file_system_info_n::drive_file_system_code(dir.str().c_str()), fs_ntfs);
    EXPECT_EQ(file_system_info_n::drive_file_system_code(nullptr), fs_ntfs);
    EXPECT_EQ(count_of_items(*list), 2u);
}

TEST_F(DriveList, DrivesThatDifferShareNoCodeAndAreFoundByName) {
    add("X:\\", fs_ntfs);
    add("Y:\\", fs_fat);
    install();
    EXPECT_EQ(file_system_info_n::common_fs_code(), fs_unknown);
    EXPECT_EQ(file_system_info_n::drive_file_system_code("X:/a/b"), fs_ntfs);
    EXPECT_EQ(file_system_info_n::drive_file_system_code("x:\\a"), fs_ntfs);
    EXPECT_EQ(file_system_info_n::drive_file_system_code("y:/file.txt"), fs_fat);
    EXPECT_EQ(count_of_items(*list), 2u);
}

TEST_F(DriveList, CompressionIsLookedUpPerDriveEvenWhenAllAgree) {
    add("X:\\", fs_ntfs, os::FILE_FILE_COMPRESSION);
    add("Y:\\", fs_ntfs, 0);
    install();
    EXPECT_EQ(file_system_info_n::common_fs_code(), fs_ntfs);
    EXPECT_TRUE(file_system_info_n::drive_supports_compression("X:/a"));
    EXPECT_TRUE(file_system_info_n::drive_supports_compression("x:/b"));
    EXPECT_FALSE(file_system_info_n::drive_supports_compression("Y:/a"));
    EXPECT_FALSE(file_system_info_n::drive_supports_compression("Q:/a")) << "no such drive";
    EXPECT_FALSE(file_system_info_n::drive_supports_compression("relative/path"));
    EXPECT_EQ(count_of_items(*list), 2u);
}

TEST_F(DriveList, DriveWithoutRootIsAskedAgainEachTimeAndNotKept) {
    add("X:\\", fs_ntfs);
    add("Y:\\", fs_fat);
    install();
    // No drive Q: is mapped here, and on Linux "Q:\" names nothing: no root.
    for (int time = 0; time < 3; ++time) {
        EXPECT_EQ(file_system_info_n::drive_file_system_code("Q:/a"), fs_unknown);
        EXPECT_EQ(count_of_items(*list), 2u);
    }
    EXPECT_EQ(file_system_info_n::common_fs_code(), fs_unknown);
}

TEST_F(DriveList, BadPathsAreUnknownAndNotKept) {
    install();
    std::string long_path = "Q:/" + std::string(4092, 'd');
    for (const std::string& path : {std::string(""), std::string("x"), long_path,
                                    std::string("\\\\\xFF\\share\\x"), std::string("\xFF:/x")}) {
        SCOPED_TRACE(path.size());
        EXPECT_EQ(file_system_info_n::drive_file_system_code(path.c_str()), fs_unknown);
        EXPECT_FALSE(file_system_info_n::drive_supports_compression(path.c_str()));
    }
    EXPECT_EQ(count_of_items(*list), 0u);
    EXPECT_EQ(file_system_info_n::common_fs_code(), fs_unknown);
}

#if !defined(_WIN32)
// The drive types of POSIX come from the file system's magic number (statfs); a fake statfs
// gives every path the file system `faked_magic` and counts the calls.
long faked_magic = 0;
int statfs_calls = 0;
// Every name is a mounted file system here, drive letters included.
int fake_statfs(const char*, struct statfs* result) {
    ++statfs_calls;
    *result = {};
    result->f_type = faked_magic;
    result->f_bsize = 4096;
    result->f_namelen = 255;
    return 0;
}
#endif

TEST_F(DriveList, CdromDriveIsNotKept) {
#if defined(_WIN32)
    GTEST_SKIP() << "no CD-ROM drive exists on the systems that run these tests, and the Windows "
                    "build cannot make the system report one";
#else
    faked_magic = 0x9660; // ISO 9660
    statfs_calls = 0;
    test_support::replaced_syscall_c fake(os::posix::syscalls().statfs, &fake_statfs);
    install();
    const char* path = "D:/disc/file.txt";
    ASSERT_EQ(os::GetDriveTypeW(u"D:\\"), os::DRIVE_CDROM);
    statfs_calls = 0;
    EXPECT_EQ(file_system_info_n::drive_file_system_code(path), fs_unknown);
    EXPECT_EQ(count_of_items(*list), 0u);
    int first = statfs_calls;
    EXPECT_GE(first, 1);
    // Not kept, so asked again each time.
    EXPECT_EQ(file_system_info_n::drive_file_system_code(path), fs_unknown);
    EXPECT_FALSE(file_system_info_n::drive_supports_compression(path));
    EXPECT_EQ(count_of_items(*list), 0u);
    EXPECT_EQ(statfs_calls, 3 * first);
#endif
}

TEST_F(DriveList, NetworkDriveGetsACodeButNoVolumeOrDeviceName) {
#if defined(_WIN32)
    GTEST_SKIP() << "no network drive exists on the systems that run these tests, and the "
                    "Windows build cannot make the system report one";
#else
    faked_magic = 0x6969; // NFS
    test_support::replaced_syscall_c fake(os::posix::syscalls().statfs, &fake_statfs);
    install();
    const char* path = "N:/share/file.txt";
    ASSERT_EQ(os::GetDriveTypeW(u"N:\\"), os::DRIVE_REMOTE);
    std::uint32_t code = file_system_info_n::drive_file_system_code(path);
    ASSERT_EQ(count_of_items(*list), 1u);
    const auto* drive = static_cast<const drive_info_c*>(list->first());
    EXPECT_EQ(drive->drive_type, os::DRIVE_REMOTE);
    EXPECT_NE(drive->fs_code, fs_unknown);
    EXPECT_EQ(code, drive->fs_code);
    EXPECT_EQ(drive->volume_name, nullptr);
    EXPECT_EQ(drive->device_name, nullptr);
    // Kept: the next question is answered from the list.
    statfs_calls = 0;
    EXPECT_EQ(file_system_info_n::drive_file_system_code(path), code);
    EXPECT_EQ(statfs_calls, 0);
    EXPECT_EQ(count_of_items(*list), 1u);
#endif
}

TEST(DriveInfo, NewItemKnowsNothing) {
    drive_info_c drive;
    EXPECT_EQ(drive.drive_name, nullptr);
    EXPECT_EQ(drive.volume_name, nullptr);
    EXPECT_EQ(drive.device_name, nullptr);
    EXPECT_EQ(drive.fs_code, fs_unknown);
    EXPECT_EQ(drive.fs_flags, 0u);
    EXPECT_EQ(drive.bytes_per_sector, 0u);
    EXPECT_EQ(drive.drive_type, 0u);
}

TEST(DriveInfo, InitOfADriveWithoutRootIsFalse) {
    drive_info_c drive;
    EXPECT_FALSE(drive.init("Q:\\"));
    EXPECT_EQ(drive.drive_type, os::DRIVE_NO_ROOT_DIR);
    EXPECT_EQ(drive.drive_name, nullptr);
    EXPECT_EQ(drive.fs_code, fs_unknown);
    EXPECT_EQ(drive.bytes_per_sector, 0u);
}

TEST(DriveInfo, InitOfTheRootOfThisSystem) {
    temp_dir_c dir;
#if defined(_WIN32)
    std::string root = dir.str().substr(0, 3);
#else
    std::string root = "/";
#endif
    std::u16string wide(root.begin(), root.end());
    unsigned type = os::GetDriveTypeW(wide.c_str());
    ASSERT_GE(type, os::DRIVE_FIXED);
    ASSERT_NE(type, os::DRIVE_CDROM);
    trace_capture_c capture;
    drive_info_c drive;
    ASSERT_TRUE(drive.init(root.c_str()));
    EXPECT_STREQ(drive.drive_name, root.c_str());
    EXPECT_EQ(drive.drive_type, type);
    EXPECT_EQ(drive.fs_code, platform_code_of(root));
    EXPECT_EQ(drive.fs_flags, platform_flags_of(root));
    os::DWORD sectors_per_cluster = 0, sector = 0, free_clusters = 0, total = 0;
    ASSERT_TRUE(
        os::GetDiskFreeSpaceW(wide.c_str(), &sectors_per_cluster, &sector, &free_clusters, &total));
    EXPECT_EQ(drive.bytes_per_sector, sector);
    if (type != os::DRIVE_FIXED) {
        EXPECT_EQ(drive.volume_name, nullptr);
        EXPECT_EQ(drive.device_name, nullptr);
        return;
    }
    std::string text = capture.text();
#if defined(_WIN32)
    ASSERT_NE(drive.volume_name, nullptr) << text;
    EXPECT_EQ(std::string(drive.volume_name).rfind(R"(\\?\Volume{)", 0), 0u) << drive.volume_name;
    ASSERT_NE(drive.device_name, nullptr) << text;
    EXPECT_GT(std::strlen(drive.device_name), 0u);
#else
    // The mount point's name doesn't end in a backslash, and no DOS device names exist here.
    EXPECT_EQ(drive.volume_name, nullptr);
    EXPECT_EQ(drive.device_name, nullptr);
    std::string guid = trace_line(text, "Unable to get Volume GUID for / (123)");
    ASSERT_FALSE(guid.empty()) << text;
    EXPECT_TRUE(has_level(guid, 4)) << guid;
    std::string device = trace_line(text, "Unable to QueryDosDevice for drive /");
    ASSERT_FALSE(device.empty()) << text;
    EXPECT_TRUE(has_level(device, 4)) << device;
#endif
}

TEST(DriveInfo, ClearForgetsEverything) {
    temp_dir_c dir;
#if defined(_WIN32)
    std::string root = dir.str().substr(0, 3);
#else
    std::string root = "/";
#endif
    drive_info_c drive;
    ASSERT_TRUE(drive.init(root.c_str()));
    drive.clear();
    EXPECT_EQ(drive.drive_name, nullptr);
    EXPECT_EQ(drive.volume_name, nullptr);
    EXPECT_EQ(drive.device_name, nullptr);
    EXPECT_EQ(drive.fs_code, fs_unknown);
    EXPECT_EQ(drive.fs_flags, 0u);
    EXPECT_EQ(drive.bytes_per_sector, 0u);
    EXPECT_EQ(drive.drive_type, 0u);
    // A second init after a first one starts clean.
    ASSERT_TRUE(drive.init(root.c_str()));
    ASSERT_TRUE(drive.init(root.c_str()));
    EXPECT_STREQ(drive.drive_name, root.c_str());
}

TEST(SystemNameTables, FileAliases) {
    EXPECT_STREQ(file_system_info_n::system_file_aliases[0].alias, "Win32_Pagefile");
    EXPECT_STREQ(file_system_info_n::system_file_aliases[0].file, "pagefile.sys");
    EXPECT_STREQ(file_system_info_n::system_file_aliases[1].alias, "Win32_Hiberfil");
    EXPECT_STREQ(file_system_info_n::system_file_aliases[1].file, "hiberfil.sys");
}

TEST(SystemNameTables, DirectoriesByOperatingSystem) {
    struct row_s {
        std::uint32_t low, high;
        const char* first;
        const char* second;
        std::uint32_t number;
    };
    const row_s rows[] = {
        {1, 17, "System Volume Information", nullptr, 0},
        {1000, 1100, "System Volume Information", nullptr, 0},
        {1, 9, "RECYCLER", "RECYCLED", 10},
        {12, 17, "$RECYCLE.BIN", nullptr, 10},
        {18, 36, "dev", nullptr, 0},
        {18, 36, "sys", nullptr, 0},
        {18, 36, "tmp", nullptr, 0},
        {18, 36, "proc", nullptr, 0},
        {1, 17, "Temporary Internet Files", nullptr, 0},
        {1000, 1100, "Temporary Internet Files", nullptr, 0},
    };
    ASSERT_EQ(std::size(file_system_info_n::system_dir_table), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        SCOPED_TRACE(i);
        const auto& row = file_system_info_n::system_dir_table[i];
        EXPECT_EQ(row.low_os, rows[i].low);
        EXPECT_EQ(row.high_os, rows[i].high);
        EXPECT_STREQ(row.names[0], rows[i].first);
        if (rows[i].second) {
            EXPECT_STREQ(row.names[1], rows[i].second);
        } else {
            EXPECT_EQ(row.names[1], nullptr);
        }
        EXPECT_EQ(row.number, rows[i].number);
    }
}

} // namespace
