// file_manipulation_n::if_exists and volume_guid_path_exists: the question asked of every path.
#include "common/test_support.h"
#include "files/file.h"
#include "files/file_manipulation.h"
#include "utl/utl.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#if !defined(_WIN32)
#include "platform/posix/syscalls.h"

#include <cerrno>
#endif

using test_support::long_names_resolve_with_prefix;
using test_support::short_form;
using test_support::trace_line;

namespace {

namespace fs = std::filesystem;
using file_manipulation_n::if_exists;
using os::wide_char;
using test_support::temp_dir_c;
using test_support::trace_capture_c;

const std::string unknown_guid_path = R"(\\?\Volume{cc59759e-d00a-11dc-b6ff-806e6f6e6963})";

void make_file(const std::string& path) { test_support::write_file(path, "content"); }
void make_dir(const std::string& path) { fs::create_directories(test_support::from_utf8(path)); }

// Whether the system opens a file through a path below a volume-GUID name.
bool opens_below_volume_guid(const std::string& path) {
    std::vector<wide_char> wide(path_n::path_buffer_size);
    path_n::path_to_wide_char_path(path.c_str(), wide.data(), true);
    os::HANDLE handle =
        os::CreateFileW(wide.data(), 0, os::FILE_SHARE_READ | os::FILE_SHARE_WRITE, nullptr,
                        os::OPEN_EXISTING, os::FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == os::INVALID_HANDLE_VALUE) return false;
    os::CloseHandle(handle);
    return true;
}

// The bare volume-GUID path ("\\?\Volume{...}\") of the volume that holds `path`; empty where
// the system names no volume so.
std::string volume_guid_path_of(const std::string& path) {
#if defined(_WIN32)
    using get_name_t = int (*)(const wchar_t*, wchar_t*, unsigned long);
    os::HMODULE kernel = os::load_library("kernel32.dll");
    auto get_name =
        reinterpret_cast<get_name_t>(os::find_symbol(kernel, "GetVolumeNameForVolumeMountPointW"));
    if (!get_name) return {};
    std::vector<wide_char> wide(path_n::path_buffer_size), root(path_n::path_buffer_size),
        name(path_n::path_buffer_size);
    path_n::path_to_wide_char_path(path.c_str(), wide.data(), false);
    if (!os::GetVolumePathNameW(wide.data(), root.data(),
                                static_cast<os::DWORD>(path_n::path_buffer_size)))
        return {};
    if (!get_name(reinterpret_cast<const wchar_t*>(root.data()),
                  reinterpret_cast<wchar_t*>(name.data()),
                  static_cast<unsigned long>(path_n::path_buffer_size)))
        return {};
    std::vector<char> narrow(path_n::path_buffer_size, 0);
    path_n::wide_char_path_to_path(name.data(), narrow.data());
    return narrow.data();
#else
    (void)path;
    return {};
#endif
}

#if !defined(_WIN32)
// Replaces the access(2) of the posix layer for the lifetime of the object.
class access_override_c {
  public:
    explicit access_override_c(int (*access)(const char*, int)) : _saved(os::posix::syscalls()) {
        os::posix::syscalls().access = access;
    }
    ~access_override_c() { os::posix::syscalls() = _saved; }
    access_override_c(const access_override_c&) = delete;
    access_override_c& operator=(const access_override_c&) = delete;

  private:
    os::posix::syscall_table_s _saved;
};

int access_denied(const char*, int) {
    errno = EACCES;
    return -1;
}

int access_io_error(const char*, int) {
    errno = EIO;
    return -1;
}
#endif

// ---- if_exists

TEST(IfExists, ExistingFileIsTrue) {
    temp_dir_c dir;
    make_file(dir.join("file.txt"));
    EXPECT_TRUE(if_exists(dir.join("file.txt").c_str(), nullptr));
}

TEST(IfExists, ExistingDirectoryIsTrueInEverySpelling) {
    temp_dir_c dir;
    make_dir(dir.join("sub"));
    std::string path = dir.join("sub");
    EXPECT_TRUE(if_exists(path.c_str(), nullptr));
    EXPECT_TRUE(if_exists((path + "/").c_str(), nullptr));
    EXPECT_TRUE(if_exists((path + "\\\\").c_str(), nullptr));
    EXPECT_TRUE(if_exists((dir.str() + "\\sub").c_str(), nullptr));
}

TEST(IfExists, MissingFileIsFalse) {
    temp_dir_c dir;
    EXPECT_FALSE(if_exists(dir.join("missing.txt").c_str(), nullptr));
}

TEST(IfExists, MissingParentIsFalse) {
    temp_dir_c dir;
    EXPECT_FALSE(if_exists(dir.join("missing/file.txt").c_str(), nullptr));
}

TEST(IfExists, EmptyOrNullPathIsFalse) {
    EXPECT_FALSE(if_exists("", nullptr));
    EXPECT_FALSE(if_exists(nullptr, nullptr));
}

TEST(IfExists, NonAsciiNameIsFound) {
    temp_dir_c dir;
    // "données_файл_😀.txt"
    std::string name = "donn\xC3\xA9"
                       "es_\xD1\x84\xD0\xB0\xD0\xB9\xD0\xBB_\xF0\x9F\x98\x80.txt";
    make_file(dir.join(name));
    EXPECT_TRUE(if_exists(dir.join(name).c_str(), nullptr));
    EXPECT_FALSE(if_exists(dir.join("donnees.txt").c_str(), nullptr));
}

TEST(IfExists, ParentSegmentsAreResolvedBeforeTheTest) {
    temp_dir_c dir;
    make_file(dir.join("file.txt"));
    // "missing/.." names nothing on the disk; the spelling is resolved first.
    EXPECT_TRUE(if_exists((dir.str() + "/missing/../file.txt").c_str(), nullptr));
    EXPECT_TRUE(if_exists((dir.str() + "/./file.txt").c_str(), nullptr));
}

TEST(IfExists, ShortNameOfLongNamedObjectIsFalseWithTrace) {
    if (!test_support::on_windows()) GTEST_SKIP() << "short names exist only under Windows";
    temp_dir_c dir;
    std::string path = dir.join("a directory with a long name");
    make_dir(path);
    std::string short_path = short_form(path);
    if (short_path.empty()) GTEST_SKIP() << "this volume makes no short names";
    if (test_support::on_wine() && !long_names_resolve_with_prefix(short_path))
        GTEST_SKIP() << "Wine's GetLongPathNameW gives a path with the long prefix back unchanged, "
                        "so no short name is told from its long name there";
    trace_capture_c capture;
    EXPECT_TRUE(if_exists(path.c_str(), nullptr));
    EXPECT_FALSE(if_exists(short_path.c_str(), nullptr)) << short_path;
    std::string line = trace_line(
        capture.text(), "if_exists - another file/dir owned this short name " + short_path);
    ASSERT_FALSE(line.empty()) << capture.text();
    EXPECT_NE(line.find(" level=8 "), std::string::npos) << line;
}

TEST(IfExists, NameThatLooksShortIsItsOwnName) {
    temp_dir_c dir;
    std::string path = dir.join("PROGRA~1");
    make_dir(path);
    trace_capture_c capture;
    EXPECT_TRUE(if_exists(path.c_str(), nullptr));
    EXPECT_EQ(capture.text().find("owned this short name"), std::string::npos) << capture.text();
}

TEST(IfExists, UnknownBareVolumeGuidPathIsFalse) {
    EXPECT_FALSE(if_exists(unknown_guid_path.c_str(), nullptr));
    EXPECT_FALSE(if_exists((unknown_guid_path + "\\").c_str(), nullptr));
}

TEST(IfExists, BareVolumeGuidPathUsesDeviceOpen) {
    if (!test_support::on_windows()) GTEST_SKIP() << "volumes have GUID names only under Windows";
    temp_dir_c dir;
    std::string volume = volume_guid_path_of(dir.str());
    if (volume.empty()) GTEST_SKIP() << "the system names no volume of " << dir.str() << " by GUID";
    ASSERT_TRUE(is_volume_guid_path(volume.c_str(), false)) << volume;
    std::string bare = volume.substr(0, path_n::volume_guid_path_length);
    // The volume device itself, without its root directory.
    EXPECT_TRUE(if_exists(bare.c_str(), nullptr)) << bare;
    if (test_support::on_wine()) {
        // Wine's access test sees no volume-GUID path at all: the answer came from the open.
        std::vector<wide_char> wide(path_n::path_buffer_size);
        path_n::path_to_wide_char_path(bare.c_str(), wide.data(), true);
        EXPECT_NE(os::_waccess(wide.data(), 0), 0);
    }
    EXPECT_TRUE(if_exists(volume.c_str(), nullptr)) << volume;
    std::string slashes = bare;
    for (char& c : slashes)
        if (c == '\\') c = '/';
    EXPECT_TRUE(if_exists(slashes.c_str(), nullptr)) << slashes;
}

TEST(IfExists, PathBelowVolumeGuidUsesOrdinaryTest) {
    if (!test_support::on_windows()) GTEST_SKIP() << "volumes have GUID names only under Windows";
    temp_dir_c dir;
    std::string volume = volume_guid_path_of(dir.str());
    if (volume.empty()) GTEST_SKIP() << "the system names no volume of " << dir.str() << " by GUID";
    make_file(dir.join("file.txt"));
    // The temporary directory without its drive root, below the volume's GUID name.
    std::string below = test_support::utf8(dir.path().relative_path());
    if (test_support::on_wine() && !opens_below_volume_guid(volume + below + "\\file.txt"))
        GTEST_SKIP() << "Wine opens no file through a volume-GUID path";
    EXPECT_TRUE(if_exists((volume + below + "\\file.txt").c_str(), nullptr)) << volume + below;
    EXPECT_FALSE(if_exists((volume + below + "\\missing.txt").c_str(), nullptr));
}

TEST(IfExists, WithTransactionAnswersByTransactedOpen) {
    temp_dir_c dir;
    make_file(dir.join("file.txt"));
    // No transacted open succeeds here: the system has none, or the handle is no transaction.
    int not_a_transaction = 0;
    EXPECT_FALSE(if_exists(dir.join("file.txt").c_str(), &not_a_transaction));
    EXPECT_TRUE(if_exists(dir.join("file.txt").c_str(), nullptr));
}

TEST(IfExists, AccessDeniedLetsOpenDecide) {
#if defined(_WIN32)
    GTEST_SKIP() << "the C runtime's access test can't be made to fail with EACCES here";
#else
    temp_dir_c dir;
    make_file(dir.join("file.txt"));
    make_dir(dir.join("sub"));
    access_override_c denied(access_denied);
    EXPECT_TRUE(if_exists(dir.join("file.txt").c_str(), nullptr));
    EXPECT_TRUE(if_exists(dir.join("sub").c_str(), nullptr));
    EXPECT_FALSE(if_exists(dir.join("missing.txt").c_str(), nullptr));
#endif
}

TEST(IfExists, AccessFailureOtherThanDeniedIsFalse) {
#if defined(_WIN32)
    GTEST_SKIP() << "the C runtime's access test can't be made to fail with EIO here";
#else
    temp_dir_c dir;
    make_file(dir.join("file.txt"));
    access_override_c failing(access_io_error);
    EXPECT_FALSE(if_exists(dir.join("file.txt").c_str(), nullptr));
#endif
}

// ---- volume_guid_path_exists

TEST(VolumeGuidPathExists, PathNotOfBareFormIsFalse) {
    temp_dir_c dir;
    EXPECT_FALSE(volume_guid_path_exists(dir.str().c_str()));
    EXPECT_FALSE(volume_guid_path_exists((unknown_guid_path + R"(\dir)").c_str()));
    EXPECT_FALSE(volume_guid_path_exists(nullptr));
}

TEST(VolumeGuidPathExists, UnknownVolumeIsFalse) {
    EXPECT_FALSE(volume_guid_path_exists(unknown_guid_path.c_str()));
    EXPECT_FALSE(volume_guid_path_exists((unknown_guid_path + "\\").c_str()));
}

TEST(VolumeGuidPathExists, KnownVolumeIsTrue) {
    if (!test_support::on_windows()) GTEST_SKIP() << "volumes have GUID names only under Windows";
    temp_dir_c dir;
    std::string volume = volume_guid_path_of(dir.str());
    if (volume.empty()) GTEST_SKIP() << "the system names no volume of " << dir.str() << " by GUID";
    std::string bare = volume.substr(0, path_n::volume_guid_path_length);
    EXPECT_TRUE(volume_guid_path_exists(volume.c_str())) << volume;
    EXPECT_TRUE(volume_guid_path_exists(bare.c_str())) << bare;
    std::string slashes = volume;
    for (char& c : slashes)
        if (c == '\\') c = '/';
    EXPECT_TRUE(volume_guid_path_exists(slashes.c_str())) << slashes;
}

} // namespace
