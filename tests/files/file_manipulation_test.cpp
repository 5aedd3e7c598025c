// file_manipulation_n: if_exists and volume_guid_path_exists, the question asked of every path;
// remove_path, create_directory and bytes_per_sector; and dir_content_c, which enumerates a
// directory.
#include "common/test_support.h"
#include "files/basic_file.h"
#include "files/file.h"
#include "files/file_manipulation.h"
#include "files/qv_io_api_createfile.h"
#include "support/thl.h"
#include "utl/utl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <set>
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

// ---- helpers of the tests below

bool has_level(const std::string& line, unsigned level) {
    return line.find(" level=" + std::to_string(level) + " ") != std::string::npos;
}

std::vector<wide_char> wide_path(const std::string& path) {
    std::vector<wide_char> wide(path_n::path_buffer_size);
    path_n::path_to_wide_char_path(path.c_str(), wide.data(), true);
    return wide;
}

bool set_attributes(const std::string& path, os::DWORD attributes) {
    return os::SetFileAttributesW(wide_path(path).data(), attributes) != 0;
}

bool on_disk(const std::string& path) {
    std::error_code error;
    return fs::symlink_status(test_support::from_utf8(path), error).type() !=
           fs::file_type::not_found;
}

std::set<std::string> names_in(const std::string& path) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(test_support::from_utf8(path)))
        names.insert(test_support::utf8(entry.path().filename()));
    return names;
}

// A symbolic link at `link` to `target`; false where the system makes none.
bool make_symlink(const std::string& target, const std::string& link, bool to_directory) {
#if defined(_WIN32)
    using create_t = unsigned char (*)(const wchar_t*, const wchar_t*, unsigned long);
    auto create = reinterpret_cast<create_t>(
        os::find_symbol(os::load_library("kernel32.dll"), "CreateSymbolicLinkW"));
    if (!create) return false;
    std::wstring from = test_support::from_utf8(link).wstring();
    std::wstring to = test_support::from_utf8(target).wstring();
    create(from.c_str(), to.c_str(), (to_directory ? 0x1 : 0x0) | 0x2);
    // Wine 8 answers success and makes nothing: only what can be seen counts.
    os::DWORD attributes = os::GetFileAttributesW(wide_path(link).data());
    return attributes != os::INVALID_FILE_ATTRIBUTES &&
           (attributes & os::FILE_ATTRIBUTE_REPARSE_POINT);
#else
    std::error_code error;
    if (to_directory)
        fs::create_directory_symlink(target, link, error);
    else
        fs::create_symlink(target, link, error);
    return !error;
#endif
}

// Makes the empty directory `junction` a junction to the directory `target` by the system's own
// reparse call; false where the system has none.
bool make_junction(const std::string& target, const std::string& junction) {
    basic_file_c::auto_release_file_handle_c kept(
        qv_create_file(junction.c_str(), os::GENERIC_WRITE, os::OPEN_EXISTING, nullptr, true, 0));
    if (kept.handle == os::INVALID_HANDLE_VALUE) return false;
    std::u16string print = test_support::from_utf8(target).u16string();
    for (char16_t& c : print)
        if (c == u'/') c = u'\\';
    std::u16string substitute = u"\\??\\" + print;
    std::vector<unsigned char> data(16 + (substitute.size() + print.size() + 2) * 2, 0);
    auto put16 = [&](std::size_t at, std::size_t value) {
        data[at] = static_cast<unsigned char>(value);
        data[at + 1] = static_cast<unsigned char>(value >> 8);
    };
    std::uint32_t tag = os::IO_REPARSE_TAG_MOUNT_POINT;
    std::memcpy(data.data(), &tag, 4);
    put16(4, data.size() - 8);
    put16(8, 0);
    put16(10, substitute.size() * 2);
    put16(12, substitute.size() * 2 + 2);
    put16(14, print.size() * 2);
    std::memcpy(data.data() + 16, substitute.data(), substitute.size() * 2);
    std::memcpy(data.data() + 16 + substitute.size() * 2 + 2, print.data(), print.size() * 2);
    constexpr os::DWORD set_reparse_point = 0x000900A4;
    os::DWORD returned = 0;
    return os::DeviceIoControl(kept.handle, set_reparse_point, data.data(),
                               static_cast<os::DWORD>(data.size()), nullptr, 0, &returned,
                               nullptr) != 0;
}

// A path of exactly 4095 characters below `dir`, of directories that don't exist.
std::string path_of_4095(const temp_dir_c& dir) {
    std::string path = dir.str() + "/missing";
    while (path.size() < 4095) path += "/" + std::string(200, 'd');
    path.resize(4095);
    return path;
}

// Runs the test in `dir` as the current directory.
class current_directory_c {
  public:
    explicit current_directory_c(const fs::path& dir) : _saved(fs::current_path()) {
        fs::current_path(dir);
    }
    ~current_directory_c() { fs::current_path(_saved); }
    current_directory_c(const current_directory_c&) = delete;
    current_directory_c& operator=(const current_directory_c&) = delete;

  private:
    fs::path _saved;
};

class FileManipulation : public ::testing::Test {
  protected:
    void SetUp() override { before = test_support::open_handle_count(); }
    void TearDown() override {
        EXPECT_EQ(test_support::open_handle_count(), before) << "a handle was not given back";
    }

    temp_dir_c dir;
    int before = 0;
};

// ---- remove_path

using RemovePath = FileManipulation;
using file_manipulation_n::remove_path;

TEST_F(RemovePath, MissingPathIsTrue) {
    trace_capture_c capture;
    EXPECT_TRUE(remove_path(dir.join("missing.txt").c_str(), nullptr, nullptr));
    EXPECT_TRUE(remove_path(dir.join("missing/deeper").c_str(), nullptr, nullptr));
    std::string line = trace_line(capture.text(), "Remove path " + dir.join("missing.txt"));
    ASSERT_FALSE(line.empty()) << capture.text();
    EXPECT_TRUE(has_level(line, 64)) << line;
}

TEST_F(RemovePath, FileIsRemoved) {
    make_file(dir.join("f.txt"));
    EXPECT_TRUE(remove_path(dir.join("f.txt").c_str(), nullptr, nullptr));
    EXPECT_FALSE(on_disk(dir.join("f.txt")));
}

TEST_F(RemovePath, ReadOnlyFileIsRemoved) {
    std::string path = dir.join("ro.txt");
    make_file(path);
    ASSERT_TRUE(set_attributes(path, os::FILE_ATTRIBUTE_READONLY));
    // The system itself refuses to delete it.
    EXPECT_FALSE(os::DeleteFileW(wide_path(path).data()));
    EXPECT_TRUE(remove_path(path.c_str(), nullptr, nullptr));
    EXPECT_FALSE(on_disk(path));
}

TEST_F(RemovePath, HiddenAndSystemFileIsRemoved) {
    std::string path = dir.join("hidden.txt");
    make_file(path);
    ASSERT_TRUE(set_attributes(path, os::FILE_ATTRIBUTE_HIDDEN | os::FILE_ATTRIBUTE_SYSTEM));
    EXPECT_TRUE(remove_path(path.c_str(), nullptr, nullptr));
    EXPECT_FALSE(on_disk(path));
}

TEST_F(RemovePath, NestedTreeIsRemoved) {
    std::string root = dir.join("tree");
    make_dir(root + "/a/b/c");
    make_dir(root + "/empty");
    make_file(root + "/top.txt");
    make_file(root + "/a/one.txt");
    make_file(root + "/a/b/two.txt");
    make_file(root + "/a/b/c/three.txt");
    make_file(root + "/a/.hidden");
    ASSERT_TRUE(set_attributes(root + "/a/b/two.txt", os::FILE_ATTRIBUTE_READONLY));
    EXPECT_TRUE(remove_path(root.c_str(), nullptr, nullptr));
    EXPECT_FALSE(on_disk(root));
    EXPECT_TRUE(fs::is_empty(dir.path()));
}

TEST_F(RemovePath, SymbolicLinkToDirectoryGoesAndTheTargetStays) {
    std::string target = dir.join("target"), link = dir.join("link");
    make_dir(target + "/inner");
    make_file(target + "/kept.txt");
    if (!make_symlink(target, link, true))
        GTEST_SKIP() << "no symbolic link can be made here (Wine 8's CreateSymbolicLinkW makes "
                        "nothing)";
    EXPECT_TRUE(remove_path(link.c_str(), nullptr, nullptr));
    EXPECT_FALSE(on_disk(link));
    EXPECT_TRUE(on_disk(target + "/kept.txt"));
    EXPECT_TRUE(on_disk(target + "/inner"));
}

TEST_F(RemovePath, SymbolicLinkToFileGoesAndTheTargetStays) {
    std::string target = dir.join("target.txt"), link = dir.join("link");
    make_file(target);
    if (!make_symlink(target, link, false))
        GTEST_SKIP() << "no symbolic link can be made here (Wine 8's CreateSymbolicLinkW makes "
                        "nothing)";
    EXPECT_TRUE(remove_path(link.c_str(), nullptr, nullptr));
    EXPECT_FALSE(on_disk(link));
    EXPECT_EQ(test_support::read_file(target), "content");
}

TEST_F(RemovePath, JunctionGoesAndTheTargetsContentsStay) {
    if (!test_support::on_windows()) GTEST_SKIP() << "junctions exist only on Windows drives";
    std::string target = dir.join("target"), junction = dir.join("junction");
    make_dir(target + "/inner");
    make_file(target + "/kept.txt");
    make_dir(junction);
    if (!make_junction(target, junction))
        GTEST_SKIP() << "this system sets no reparse points (Wine answers ERROR_NOT_SUPPORTED)";
    EXPECT_TRUE(on_disk(junction + "/kept.txt"));
    EXPECT_TRUE(remove_path(junction.c_str(), nullptr, nullptr));
    EXPECT_FALSE(on_disk(junction));
    EXPECT_TRUE(on_disk(target + "/kept.txt"));
    EXPECT_TRUE(on_disk(target + "/inner"));
}

std::vector<std::string> offered;
bool take_over(const char* path) {
    offered.push_back(path);
    return true;
}
bool decline(const char* path) {
    offered.push_back(path);
    return false;
}

TEST_F(RemovePath, CallbackThatRemovesTakesEachObjectOver) {
    std::string root = dir.join("tree");
    make_dir(root + "/sub");
    make_file(root + "/sub/f.txt");
    make_file(root + "/g.txt");
    offered.clear();
    EXPECT_TRUE(remove_path(root.c_str(), nullptr, take_over));
    // Nothing was removed by the library: the callback said it had done so.
    EXPECT_TRUE(on_disk(root + "/sub/f.txt"));
    EXPECT_TRUE(on_disk(root + "/g.txt"));
    std::vector<std::string> expected = {root + "/sub/f.txt", root + "/sub", root + "/g.txt", root};
    std::vector<std::string> got = offered;
    ASSERT_EQ(got.size(), 4u);
    EXPECT_EQ(got.back(), root) << "the directory is offered after its contents";
    std::sort(got.begin(), got.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(got, expected);
}

TEST_F(RemovePath, CallbackThatDeclinesLeavesTheRemovalToTheLibrary) {
    std::string root = dir.join("tree");
    make_dir(root + "/sub");
    make_file(root + "/sub/f.txt");
    offered.clear();
    EXPECT_TRUE(remove_path(root.c_str(), nullptr, decline));
    EXPECT_FALSE(on_disk(root));
    EXPECT_EQ(offered.size(), 3u);
    offered.clear();
    EXPECT_TRUE(remove_path(root.c_str(), nullptr, decline));
    EXPECT_TRUE(offered.empty()) << "what isn't there is offered to nobody";
}

TEST_F(RemovePath, FileHeldWithoutDeleteSharingStaysAndTheAnswerIsFalse) {
    std::string root = dir.join("tree");
    make_dir(root);
    make_file(root + "/held.txt");
    basic_file_c holder;
    ASSERT_TRUE(holder.open((root + "/held.txt").c_str(), "r", nullptr, 0x80 | 0x200));
    EXPECT_FALSE(remove_path((root + "/held.txt").c_str(), nullptr, nullptr));
    EXPECT_FALSE(remove_path(root.c_str(), nullptr, nullptr));
    EXPECT_TRUE(on_disk(root + "/held.txt"));
    EXPECT_TRUE(holder.close());
    EXPECT_TRUE(remove_path(root.c_str(), nullptr, nullptr));
    EXPECT_FALSE(on_disk(root));
}

TEST_F(RemovePath, FileOpenWithDeleteSharingIsRemoved) {
    std::string path = dir.join("open.txt");
    basic_file_c file;
    ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, 0x200));
    EXPECT_EQ(file.write("data", 4), 4);
    EXPECT_TRUE(remove_path(path.c_str(), nullptr, nullptr));
    // Nothing of what was written is lost while the file is open.
    EXPECT_TRUE(file.seek(0));
    char text[4] = {};
    EXPECT_EQ(file.read(text, 4), 4);
    EXPECT_EQ(std::string(text, 4), "data");
    EXPECT_TRUE(file.close());
    EXPECT_FALSE(on_disk(path));
}

TEST_F(RemovePath, PathOf4095CharactersThatIsMissingIsTrue) {
    EXPECT_TRUE(remove_path(path_of_4095(dir).c_str(), nullptr, nullptr));
    EXPECT_TRUE(fs::is_empty(dir.path()));
}

TEST_F(RemovePath, NameWithInvalidUtf8ActsOnTheReplacementName) {
    std::string bad = dir.str() + "/bad\xFF.txt";
    make_file(dir.join("other.txt"));
    EXPECT_TRUE(remove_path(bad.c_str(), nullptr, nullptr));
    EXPECT_EQ(names_in(dir.str()), std::set<std::string>{"other.txt"});
    // The name reaches the system with U+FFFD in place of the byte.
    make_file(dir.join("bad\xEF\xBF\xBD.txt"));
    EXPECT_TRUE(remove_path(bad.c_str(), nullptr, nullptr));
    EXPECT_EQ(names_in(dir.str()), std::set<std::string>{"other.txt"});
}

// ---- create_directory

using CreateDirectory = FileManipulation;
using file_manipulation_n::create_directory;

TEST_F(CreateDirectory, ThreeLevelsAreMade) {
    std::string path = dir.join("a/b/c");
    trace_capture_c capture;
    EXPECT_TRUE(create_directory(path.c_str(), false));
    EXPECT_TRUE(fs::is_directory(test_support::from_utf8(dir.join("a"))));
    EXPECT_TRUE(fs::is_directory(test_support::from_utf8(dir.join("a/b"))));
    EXPECT_TRUE(fs::is_directory(test_support::from_utf8(path)));
    EXPECT_TRUE(fs::is_empty(test_support::from_utf8(path)));
    std::string line = trace_line(capture.text(), "Create directory " + path +
                                                      ", is_file_name false, full_access false");
    ASSERT_FALSE(line.empty()) << capture.text();
    EXPECT_TRUE(has_level(line, 64)) << line;
}

TEST_F(CreateDirectory, BackslashesAndTrailingSeparatorsAreAccepted) {
    std::string path = dir.str() + "\\p\\q\\\\";
    EXPECT_TRUE(create_directory(path.c_str(), false));
    EXPECT_TRUE(fs::is_directory(dir.path() / "p" / "q"));
    EXPECT_TRUE(create_directory((dir.str() + "/r/s/").c_str(), false));
    EXPECT_TRUE(fs::is_directory(dir.path() / "r" / "s"));
}

TEST_F(CreateDirectory, ExistingDirectoryIsTrue) {
    make_dir(dir.join("a/b"));
    EXPECT_TRUE(create_directory(dir.join("a/b").c_str(), false));
    EXPECT_TRUE(create_directory(dir.str().c_str(), false));
}

TEST_F(CreateDirectory, FileNameOnABareNameIsTrueAndMakesNothing) {
    current_directory_c here(dir.path());
    trace_capture_c capture;
    EXPECT_TRUE(create_directory("a.txt", true));
    EXPECT_TRUE(fs::is_empty(dir.path()));
    EXPECT_FALSE(
        trace_line(capture.text(), "Create directory a.txt, is_file_name true, full_access false")
            .empty())
        << capture.text();
}

TEST_F(CreateDirectory, FileNameMakesTheDirectoriesAboveIt) {
    std::string file = dir.join("x/y/file.txt");
    EXPECT_TRUE(create_directory(file.c_str(), true));
    EXPECT_TRUE(fs::is_directory(dir.path() / "x" / "y"));
    EXPECT_FALSE(on_disk(file));
    EXPECT_TRUE(fs::is_empty(dir.path() / "x" / "y"));
}

TEST_F(CreateDirectory, ExistingPlainFileIsFalse) {
    make_file(dir.join("plain"));
    EXPECT_FALSE(create_directory(dir.join("plain").c_str(), false));
    EXPECT_TRUE(fs::is_regular_file(test_support::from_utf8(dir.join("plain"))));
    EXPECT_EQ(test_support::read_file(dir.join("plain")), "content");
}

TEST_F(CreateDirectory, PlainFileOnTheWayIsFalse) {
    make_file(dir.join("plain"));
    EXPECT_FALSE(create_directory(dir.join("plain/sub/deeper").c_str(), false));
    EXPECT_TRUE(fs::is_regular_file(test_support::from_utf8(dir.join("plain"))));
    EXPECT_EQ(names_in(dir.str()), std::set<std::string>{"plain"});
}

TEST_F(CreateDirectory, NameWithInvalidUtf8IsMadeUnderTheReplacementName) {
    std::string bad = dir.str() + "/bad\xFF/sub";
    EXPECT_TRUE(create_directory(bad.c_str(), false));
    EXPECT_TRUE(fs::is_directory(test_support::from_utf8(dir.join("bad\xEF\xBF\xBD/sub"))));
}

TEST_F(CreateDirectory, PathOf4095Characters) {
    std::string path = path_of_4095(dir);
    bool made = create_directory(path.c_str(), false);
#if defined(_WIN32)
    // With the long prefix the wide form is cut at 4095 characters: what could be made is shorter;
    // under Wine the Unix path of such a directory is too long, and the making fails on the way.
    if (test_support::on_wine()) {
        EXPECT_FALSE(made);
    }
    EXPECT_FALSE(on_disk(path));
#else
    EXPECT_TRUE(made);
    EXPECT_TRUE(fs::is_directory(test_support::from_utf8(path)));
#endif
    // The library removes what it made, however deep.
    EXPECT_TRUE(remove_path((dir.str() + "/missing").c_str(), nullptr, nullptr));
    EXPECT_TRUE(fs::is_empty(dir.path()));
}

// ---- bytes_per_sector

using BytesPerSector = FileManipulation;
using file_manipulation_n::bytes_per_sector;

TEST_F(BytesPerSector, OfTheTemporaryDirectory) {
    unsigned cluster = 12345;
    trace_capture_c capture;
    unsigned sector = bytes_per_sector(dir.str().c_str(), &cluster);
    char root[path_n::path_buffer_size] = {};
    if (!path_n::drive_name_from_path(dir.str().c_str(), root)) {
        // A path without a drive: nothing to ask.
        EXPECT_EQ(sector, 0u);
        EXPECT_EQ(cluster, 0u);
        std::string line =
            trace_line(capture.text(), "error getting drive name from path " + dir.str());
        ASSERT_FALSE(line.empty()) << capture.text();
        EXPECT_TRUE(has_level(line, 32)) << line;
        return;
    }
    os::DWORD sectors_per_cluster = 0, bytes = 0, free_clusters = 0, total = 0;
    std::vector<wide_char> wide(path_n::path_buffer_size);
    path_n::path_to_wide_char_path(root, wide.data(), true);
    ASSERT_TRUE(
        os::GetDiskFreeSpaceW(wide.data(), &sectors_per_cluster, &bytes, &free_clusters, &total));
    EXPECT_EQ(sector, bytes);
    EXPECT_GT(sector, 0u);
    EXPECT_EQ(cluster, sectors_per_cluster * bytes);
    EXPECT_EQ(bytes_per_sector(dir.str().c_str(), nullptr), bytes);
}

TEST_F(BytesPerSector, DriveThatDoesNotExistGivesZero) {
    unsigned cluster = 12345;
    // No drive Q: is mapped here; on Linux "Q:\" names nothing.
    EXPECT_EQ(bytes_per_sector("Q:/dir/file.txt", &cluster), 0u);
    EXPECT_EQ(cluster, 0u);
}

TEST_F(BytesPerSector, BadPathsGiveZero) {
    unsigned cluster = 12345;
    EXPECT_EQ(bytes_per_sector("", &cluster), 0u);
    EXPECT_EQ(cluster, 0u);
    EXPECT_EQ(bytes_per_sector("x", &cluster), 0u);
    // Only the drive of a path counts, however long the rest.
    EXPECT_EQ(bytes_per_sector(path_of_4095(dir).c_str(), &cluster),
              bytes_per_sector(dir.str().c_str(), nullptr));
    EXPECT_EQ(bytes_per_sector("\xFF\xFE", &cluster), 0u);
}

// ---- dir_content_c

using DirContent = FileManipulation;

std::vector<file_name_and_prop_data_s> entries_of(dir_content_c& content) {
    std::vector<file_name_and_prop_data_s> entries;
    file_name_and_prop_data_s entry;
    while (content.get_next_file(entry)) entries.push_back(entry);
    return entries;
}

TEST_F(DirContent, EmptyDirectoryHasNoEntryAndNoError) {
    dir_content_c content;
    ASSERT_TRUE(content.init(dir.str().c_str()));
    file_name_and_prop_data_s entry;
    EXPECT_FALSE(content.get_next_file(entry));
    EXPECT_FALSE(content.had_error);
    EXPECT_FALSE(content.get_next_file(entry));
    EXPECT_FALSE(content.had_error);
}

TEST_F(DirContent, EveryNameOnceAndNoDots) {
    // "données"
    const std::string accented = "donn\xC3\xA9"
                                 "es.txt";
    make_file(dir.join("a.txt"));
    make_file(dir.join("b.txt"));
    make_file(dir.join(".hidden"));
    make_file(dir.join(accented));
    make_dir(dir.join("sub"));
    make_file(dir.join("sub/inner.txt"));
    dir_content_c content;
    ASSERT_TRUE(content.init(dir.str().c_str()));
    EXPECT_STREQ(content.dir_path.c_str(), (dir.str() + "/").c_str());
    std::vector<file_name_and_prop_data_s> entries = entries_of(content);
    EXPECT_FALSE(content.had_error);
    std::multiset<std::string> names;
    for (const auto& entry : entries) names.insert(entry.name.c_str());
    EXPECT_EQ(names, (std::multiset<std::string>{"a.txt", "b.txt", ".hidden", accented, "sub"}));
    for (const auto& entry : entries) {
        SCOPED_TRACE(entry.name.c_str());
        if (std::string(entry.name.c_str()) == "sub") {
            EXPECT_NE(entry.mode.qv_mode & file_mode_n::dir, 0u);
            EXPECT_EQ(entry.reparse_kind, 0u);
            continue;
        }
        EXPECT_EQ(entry.mode.qv_mode & file_mode_n::dir, 0u);
        EXPECT_EQ(entry.size, 7u);
        EXPECT_EQ(entry.link_count, 1u);
        EXPECT_NE(entry.file_index, 0u);
        file_prop_access_c loaded;
        ASSERT_TRUE(loaded.load_file_properties_from_disk(dir.join(entry.name.c_str()).c_str(),
                                                          nullptr, nullptr));
        EXPECT_EQ(entry.file_index, loaded.prop.file_index);
        EXPECT_EQ(entry.volume_serial, loaded.prop.volume_serial);
        EXPECT_EQ(entry.modify_time, loaded.prop.modify_time);
    }
}

TEST_F(DirContent, TrailingSeparatorGivesOneSlashInTheDirectoryPath) {
    make_file(dir.join("a.txt"));
    for (const std::string& path : {dir.str() + "/", dir.str() + "\\"}) {
        SCOPED_TRACE(path);
        dir_content_c content;
        ASSERT_TRUE(content.init(path.c_str()));
        EXPECT_STREQ(content.dir_path.c_str(), path.c_str());
        std::vector<file_name_and_prop_data_s> entries = entries_of(content);
        ASSERT_EQ(entries.size(), 1u);
        EXPECT_STREQ(entries[0].name.c_str(), "a.txt");
        EXPECT_EQ(entries[0].size, 7u);
        EXPECT_EQ(entries[0].link_count, 1u) << "the entry's own properties were loaded";
    }
}

TEST_F(DirContent, HardLinkedFileHasManyLinks) {
    make_file(dir.join("first.txt"));
    std::error_code error;
    fs::create_hard_link(dir.path() / "first.txt", dir.path() / "second.txt", error);
    ASSERT_FALSE(error) << error.message();
    dir_content_c content;
    ASSERT_TRUE(content.init(dir.str().c_str()));
    std::vector<file_name_and_prop_data_s> entries = entries_of(content);
    ASSERT_EQ(entries.size(), 2u);
    for (const auto& entry : entries) {
        EXPECT_EQ(entry.link_count, 2u);
        EXPECT_NE(entry.mode.qv_mode & file_mode_n::many_links, 0u);
    }
    EXPECT_EQ(entries[0].file_index, entries[1].file_index);
}

TEST_F(DirContent, SymbolicLinkEntryCarriesItsTarget) {
    make_dir(dir.join("target"));
    if (!make_symlink(dir.join("target"), dir.join("link"), true))
        GTEST_SKIP() << "no symbolic link can be made here (Wine 8's CreateSymbolicLinkW makes "
                        "nothing)";
    dir_content_c content;
    ASSERT_TRUE(content.init(dir.str().c_str()));
    std::vector<file_name_and_prop_data_s> entries = entries_of(content);
    ASSERT_EQ(entries.size(), 2u);
    const auto& link = std::string(entries[0].name.c_str()) == "link" ? entries[0] : entries[1];
    ASSERT_STREQ(link.name.c_str(), "link");
    EXPECT_EQ(link.reparse_kind, static_cast<std::uint32_t>(reparse_symbolic_link));
    EXPECT_NE(link.mode.qv_mode & file_mode_n::link, 0u);
    EXPECT_NE(link.mode.qv_mode & file_mode_n::reparse, 0u);
    EXPECT_FALSE(link.reparse_target_is_file);
    std::string expected = dir.join("target");
    for (char& c : expected)
        if (c == '\\') c = '/';
    EXPECT_STREQ(link.reparse_target.c_str(), expected.c_str());
}

TEST_F(DirContent, MissingNullOrFileIsFalse) {
    make_file(dir.join("plain.txt"));
    dir_content_c content;
    EXPECT_FALSE(content.init(dir.join("missing").c_str()));
    EXPECT_FALSE(content.init(nullptr));
    EXPECT_FALSE(content.init(dir.join("plain.txt").c_str()));
    EXPECT_FALSE(content.init(path_of_4095(dir).c_str()));
    EXPECT_FALSE(content.init((dir.str() + "/bad\xFF").c_str()));
    file_name_and_prop_data_s entry;
    EXPECT_FALSE(content.get_next_file(entry));
    EXPECT_FALSE(content.had_error);
    EXPECT_EQ(content.find_handle, os::INVALID_HANDLE_VALUE);
}

TEST_F(DirContent, ResetEndsTheSearchAndInitStartsAgain) {
    make_file(dir.join("a.txt"));
    make_file(dir.join("b.txt"));
    dir_content_c content;
    ASSERT_TRUE(content.init(dir.str().c_str()));
    content.reset();
    EXPECT_EQ(content.find_handle, os::INVALID_HANDLE_VALUE);
    EXPECT_STREQ(content.dir_path.c_str(), "");
    EXPECT_EQ(content.pending.first(), nullptr);
    file_name_and_prop_data_s entry;
    EXPECT_FALSE(content.get_next_file(entry));
    ASSERT_TRUE(content.init(dir.str().c_str()));
    EXPECT_EQ(entries_of(content).size(), 2u);
    // A second init without reset starts over as well.
    ASSERT_TRUE(content.init(dir.str().c_str()));
    EXPECT_EQ(entries_of(content).size(), 2u);
}

TEST_F(DirContent, FileDeletedDuringTheEnumerationEndsItCleanly) {
    for (const char* name : {"a.txt", "b.txt", "c.txt"}) make_file(dir.join(name));
    dir_content_c content;
    ASSERT_TRUE(content.init(dir.str().c_str()));
    ASSERT_TRUE(fs::remove(dir.path() / "b.txt"));
    std::vector<file_name_and_prop_data_s> entries = entries_of(content);
    EXPECT_FALSE(content.had_error);
    std::set<std::string> names;
    for (const auto& entry : entries) names.insert(entry.name.c_str());
    EXPECT_TRUE(names.count("a.txt") && names.count("c.txt"));
    EXPECT_LE(entries.size(), 3u);
}

TEST_F(DirContent, DirectoryWithPathOf4095CharactersNeverListsItself) {
    if (test_support::on_windows())
        GTEST_SKIP() << "a directory of a 4095-character path can't be made here (the long prefix "
                        "cuts the wide form; Wine's Unix path grows too long)";
    std::string path = path_of_4095(dir);
    ASSERT_TRUE(create_directory(path.c_str(), false));
    dir_content_c content;
    // The paths of its entries, "." and ".." among them, are too long for this system to look
    // at, so the search finds nothing to start with; it must not find the directory itself.
    EXPECT_FALSE(content.init(path.c_str()));
    file_name_and_prop_data_s entry;
    EXPECT_FALSE(content.get_next_file(entry)) << "found " << entry.name.c_str();
    EXPECT_TRUE(remove_path((dir.str() + "/missing").c_str(), nullptr, nullptr));
    EXPECT_TRUE(fs::is_empty(dir.path()));
}

TEST_F(RemovePath, NameThatMakesThePathTooLongIsNotRemovedAndTheAnswerIsFalse) {
    if (test_support::on_windows())
        GTEST_SKIP() << "a directory of a 4095-character path can't be made here (the long prefix "
                        "cuts the wide form; Wine's Unix path grows too long)";
    std::string path = path_of_4095(dir);
    ASSERT_TRUE(create_directory(path.c_str(), false));
    {
        // Made by a name relative to the directory: its full path is longer than any path here.
        current_directory_c here(test_support::from_utf8(path));
        test_support::write_file("inner.txt", "kept");
    }
    EXPECT_FALSE(remove_path((dir.str() + "/missing").c_str(), nullptr, nullptr));
    {
        current_directory_c here(test_support::from_utf8(path));
        EXPECT_EQ(test_support::read_file("inner.txt"), "kept");
        fs::remove("inner.txt");
    }
    EXPECT_TRUE(remove_path((dir.str() + "/missing").c_str(), nullptr, nullptr));
    EXPECT_TRUE(fs::is_empty(dir.path()));
}

TEST(DirContentDots, OnlyDotAndDotDotAreDots) {
    EXPECT_TRUE(dir_content_c::_if_dots_dirs(u"."));
    EXPECT_TRUE(dir_content_c::_if_dots_dirs(u".."));
    EXPECT_FALSE(dir_content_c::_if_dots_dirs(u"..."));
    EXPECT_FALSE(dir_content_c::_if_dots_dirs(u".hidden"));
    EXPECT_FALSE(dir_content_c::_if_dots_dirs(u""));
    EXPECT_FALSE(dir_content_c::_if_dots_dirs(nullptr));
}

TEST(DirContentDots, BackupPrefixIsDefined) { EXPECT_STREQ(backup_prefix, "QVBACKUP."); }

} // namespace
