// file_mode_c, file_prop_data_s and file_prop_access_c: a file's attributes in the host's word and
// in the engine's mode word, its properties loaded from disk, and a changed mode written back.
#include "files/file_properties.h"

#include "common/test_support.h"
#include "files/basic_file.h"
#include "files/file.h"
#include "files/fs_info.h"
#include "files/qv_io_api_createfile.h"
#include "platform/os.h"
#include "support/thl.h"

#if !defined(_WIN32)
#include "platform/posix/syscalls.h"
#endif

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using test_support::on_windows;
using test_support::read_file;
using test_support::temp_dir_c;
using test_support::trace_capture_c;
using test_support::trace_line;
using test_support::write_file;

constexpr std::uint32_t hidden_host = 0x2;
constexpr std::uint32_t readonly_host = 0x1;
constexpr std::uint32_t sparse_host = 0x200;
constexpr std::uint32_t compressed_host = 0x800;

bool has_level(const std::string& line, unsigned level) {
    return line.find(" level=" + std::to_string(level) + " ") != std::string::npos;
}

std::string line_holding(const std::string& trace, const std::string& needle) {
    for (const std::string& line : test_support::lines_of(trace))
        if (line.find(needle) != std::string::npos) return line;
    return {};
}

std::vector<os::wide_char> wide_of(const std::string& path) {
    std::vector<os::wide_char> wide(path_n::path_buffer_size);
    path_n::path_to_wide_char_path(path.c_str(), wide.data(), true);
    return wide;
}

os::DWORD attributes_of(const std::string& path) {
    return os::GetFileAttributesW(wide_of(path).data());
}

bool set_attributes(const std::string& path, os::DWORD attributes) {
    return os::SetFileAttributesW(wide_of(path).data(), attributes) != 0;
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
    // 0x2: without the privilege, where developer mode allows it.
    create(from.c_str(), to.c_str(), (to_directory ? 0x1 : 0x0) | 0x2);
    // Wine 8 answers success and makes nothing: only what can be seen counts.
    os::DWORD attributes = attributes_of(link);
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

const char* const no_symlinks =
    "no symbolic link can be made here (Wine 8's CreateSymbolicLinkW makes nothing)";

// Installs a drive list for the lifetime of the object; the items given are owned.
class drive_list_c {
  public:
    drive_list_c() : _list(new ptr_list_c(false)) { file_system_info_n::set_drive_list(_list); }
    ~drive_list_c() {
        file_system_info_n::set_drive_list(nullptr);
        for (const void* item = _list->first(); item; item = _list->next(item))
            delete static_cast<const file_system_info_n::drive_info_c*>(item);
        delete _list;
    }
    drive_list_c(const drive_list_c&) = delete;
    drive_list_c& operator=(const drive_list_c&) = delete;

    // Adds a drive with a chosen code and flags, and has the shared code recomputed.
    void add(const char* root, std::uint32_t code, std::uint32_t flags = 0) {
        auto* drive = new file_system_info_n::drive_info_c;
        drive->drive_name = new char[std::strlen(root) + 1];
        std::strcpy(drive->drive_name, root);
        drive->fs_code = code;
        drive->fs_flags = flags;
        drive->drive_type = os::DRIVE_FIXED;
        _list->append(drive);
        file_system_info_n::set_drive_list(_list);
    }

  private:
    ptr_list_c* _list;
};

// ---- file_mode_c

TEST(FileMode, NewModeIs0x3802And128) {
    file_mode_c mode;
    EXPECT_EQ(mode.qv_mode, 0x3802u);
    EXPECT_EQ(mode.host_mode, 128u);
}

TEST(FileMode, ResetGivesTheNewModesBack) {
    file_mode_c mode;
    mode.set_hostmode(0x17);
    mode.reset();
    EXPECT_EQ(mode.qv_mode, 0x3802u);
    EXPECT_EQ(mode.host_mode, 128u);
}

TEST(FileMode, CopyTakesBothWords) {
    file_mode_c mode, other;
    other.qv_mode = 0x12345678;
    other.host_mode = 0x9ABC;
    mode.copy(other);
    EXPECT_EQ(mode.qv_mode, 0x12345678u);
    EXPECT_EQ(mode.host_mode, 0x9ABCu);
}

TEST(FileMode, SetHostmode0x10Gives0xB7801) {
    file_mode_c mode;
    EXPECT_TRUE(mode.set_hostmode(0x10));
    EXPECT_EQ(mode.qv_mode, 0xB7801u);
    EXPECT_EQ(mode.host_mode, 0x10u);
}

TEST(FileMode, SetHostmode0x21GivesArchiveWithoutWritable) {
    file_mode_c mode;
    EXPECT_TRUE(mode.set_hostmode(0x21));
    EXPECT_EQ(mode.qv_mode, 0xB6802u | 0x8u);
    EXPECT_EQ(mode.host_mode, 0x21u);
}

TEST(FileMode, SetHostmode0x80Gives0xB7802) {
    file_mode_c mode;
    EXPECT_TRUE(mode.set_hostmode(0x80));
    EXPECT_EQ(mode.qv_mode, 0xB7802u);
    EXPECT_EQ(mode.host_mode, 0x80u);
}

// Every row of the table, from the host's word to the mode word.
struct row_s {
    std::uint32_t host;
    std::uint32_t qv;
    bool given_back;
};
const row_s table_rows[] = {
    {0x20, 0x8, true},        // archive
    {0x800, 0x10, true},      // compressed
    {0x4000, 0x20, true},     // encrypted
    {0x2, 0x40, true},        // hidden
    {0x1000, 0x80, true},     // offline
    {0x4, 0x100, true},       // system
    {0x400, 0x200000, false}, // reparse point
    {0x200, 0x2000000, true}, // sparse
    {0x40, 0x4000000, true},  // device
};

TEST(FileMode, SetHostmodeSetsEveryBitOfTheTable) {
    for (const row_s& row : table_rows) {
        SCOPED_TRACE(row.host);
        file_mode_c mode;
        EXPECT_TRUE(mode.set_hostmode(row.host));
        EXPECT_EQ(mode.qv_mode, 0xB7802u | row.qv);
        EXPECT_EQ(mode.host_mode, row.host);
        // On a directory as well.
        EXPECT_TRUE(mode.set_hostmode(0x10 | row.host));
        EXPECT_EQ(mode.qv_mode, 0xB7801u | row.qv);
    }
    file_mode_c mode;
    std::uint32_t all_host = 0x10, all_qv = 0xB7801;
    for (const row_s& row : table_rows) {
        all_host |= row.host;
        all_qv |= row.qv;
    }
    EXPECT_TRUE(mode.set_hostmode(all_host));
    EXPECT_EQ(mode.qv_mode, all_qv);
    EXPECT_TRUE(mode.set_hostmode(all_host | readonly_host));
    EXPECT_EQ(mode.qv_mode, all_qv & ~0x1000u);
}

TEST(FileMode, ReadOnlyBitTakesTheWritableBitAway) {
    file_mode_c mode;
    EXPECT_TRUE(mode.set_hostmode(0x1));
    EXPECT_EQ(mode.qv_mode, 0xB6802u);
    EXPECT_TRUE(mode.set_hostmode(0x11));
    EXPECT_EQ(mode.qv_mode, 0xB6801u);
}

TEST(FileMode, NormalBitDropsEveryOtherBitOfTheTable) {
    file_mode_c mode;
    // As the engine hides its state directory: the word keeps the bit, the mode doesn't.
    EXPECT_TRUE(mode.set_hostmode(130));
    EXPECT_EQ(mode.qv_mode, 0xB7802u);
    EXPECT_EQ(mode.host_mode, 130u);
    for (const row_s& row : table_rows) {
        SCOPED_TRACE(row.host);
        EXPECT_TRUE(mode.set_hostmode(0x80 | row.host));
        EXPECT_EQ(mode.qv_mode, 0xB7802u);
    }
    // The directory and read-only facts stay.
    EXPECT_TRUE(mode.set_hostmode(0x90 | hidden_host));
    EXPECT_EQ(mode.qv_mode, 0xB7801u);
    EXPECT_TRUE(mode.set_hostmode(0x81 | hidden_host));
    EXPECT_EQ(mode.qv_mode, 0xB6802u);
}

TEST(FileMode, SetQvmodeGivesBackEveryBitOfTheTable) {
    for (const row_s& row : table_rows) {
        SCOPED_TRACE(row.qv);
        file_mode_c mode;
        mode.set_qvmode(0x1000 | 0x2 | row.qv);
        EXPECT_EQ(mode.qv_mode, 0x1002u | row.qv);
        EXPECT_EQ(mode.host_mode, row.given_back ? row.host : 0x80u);
        mode.set_qvmode(0x1000 | 0x1 | row.qv);
        // With nothing but the directory bit left, the normal bit comes with it.
        EXPECT_EQ(mode.host_mode, 0x10u | (row.given_back ? row.host : 0x80u));
    }
}

TEST(FileMode, SetQvmodeGivesNothingBackForRegularLinkReparseAndManyLinks) {
    file_mode_c mode;
    for (std::uint32_t bit : {0x2u, 0x4u, 0x200000u, 0x1000000u, 0xB6800u}) {
        SCOPED_TRACE(bit);
        mode.set_qvmode(0x1000 | bit);
        EXPECT_EQ(mode.host_mode, 0x80u);
    }
}

TEST(FileMode, SetQvmodeExamples) {
    file_mode_c mode;
    mode.set_qvmode(0x1001);
    EXPECT_EQ(mode.host_mode, 0x90u);
    EXPECT_EQ(mode.qv_mode, 0x1001u);
    mode.set_qvmode(0x1002);
    EXPECT_EQ(mode.host_mode, 0x80u);
    mode.set_qvmode(2);
    EXPECT_EQ(mode.host_mode, 0x1u);
    mode.set_qvmode(1);
    EXPECT_EQ(mode.host_mode, 0x11u);
    mode.set_qvmode(0x1040);
    EXPECT_EQ(mode.host_mode, 0x2u) << "the normal bit only when nothing else is left";
}

TEST(FileMode, BothDirectionsAgreeForTheBitsGivenBack) {
    for (const row_s& row : table_rows) {
        if (!row.given_back) continue;
        SCOPED_TRACE(row.host);
        file_mode_c there, back;
        there.set_hostmode(row.host);
        back.set_qvmode(there.qv_mode);
        EXPECT_EQ(back.host_mode, row.host);
        back.set_hostmode(back.host_mode);
        EXPECT_EQ(back.qv_mode, there.qv_mode);
    }
}

TEST(FileMode, ToggleReadonlyFlipsWritable) {
    file_mode_c mode;
    mode.toggle_readonly();
    EXPECT_EQ(mode.qv_mode, 0x2802u);
    EXPECT_EQ(mode.host_mode, 0x1u);
    mode.toggle_readonly();
    EXPECT_EQ(mode.qv_mode, 0x3802u);
    EXPECT_EQ(mode.host_mode, 0x80u);
    mode.set_hostmode(0x12);
    mode.toggle_readonly();
    EXPECT_EQ(mode.host_mode, 0x13u);
}

// ---- file_prop_data_s

void fill(file_name_and_prop_data_s& data) {
    static int transaction_marker = 0;
    data.transaction = &transaction_marker;
    data.mode.set_hostmode(0x12);
    data.modify_time = 1234567;
    data.size = 99;
    data.stored_size = 77;
    data.is_valid = 1;
    data.link_count = 3;
    data.file_index = 0xABCDEF;
    data.volume_serial = 42;
    data.reserved1 = 5;
    data.reserved2 = 6;
    data.reserved3 = 7;
    data.reparse_target.append("C:/target");
    data.reparse_target_is_file = true;
    data.reparse_kind = reparse_junction;
    data.name.append("name.txt");
}

void expect_reset(const file_prop_data_s& data) {
    EXPECT_EQ(data.transaction, nullptr);
    EXPECT_EQ(data.mode.qv_mode, 0x3802u);
    EXPECT_EQ(data.mode.host_mode, 128u);
    EXPECT_EQ(data.modify_time, 0);
    EXPECT_EQ(data.size, 0u);
    EXPECT_EQ(data.stored_size, 0u);
    EXPECT_EQ(data.is_valid, 0u);
    EXPECT_EQ(data.link_count, 0u);
    EXPECT_EQ(data.file_index, 0u);
    EXPECT_EQ(data.volume_serial, 0);
    EXPECT_EQ(data.reserved1, 0xFFFFFFFFu);
    EXPECT_EQ(data.reserved2, 0xFFFFFFFFu);
    EXPECT_EQ(data.reserved3, 0);
    EXPECT_STREQ(data.reparse_target.c_str(), "");
    EXPECT_FALSE(data.reparse_target_is_file);
    EXPECT_EQ(data.reparse_kind, 0u);
}

TEST(FilePropData, NewRecordIsReset) {
    file_name_and_prop_data_s data;
    expect_reset(data);
    EXPECT_STREQ(data.name.c_str(), "");
}

TEST(FilePropData, ResetGivesTheNewValuesBack) {
    file_name_and_prop_data_s data;
    fill(data);
    data.reset();
    expect_reset(data);
}

TEST(FilePropData, CopyTakesEveryField) {
    file_name_and_prop_data_s data, copy;
    fill(data);
    copy.copy(data);
    EXPECT_EQ(copy.transaction, data.transaction);
    EXPECT_EQ(copy.mode.qv_mode, data.mode.qv_mode);
    EXPECT_EQ(copy.mode.host_mode, 0x12u);
    EXPECT_EQ(copy.modify_time, 1234567);
    EXPECT_EQ(copy.size, 99u);
    EXPECT_EQ(copy.stored_size, 77u);
    EXPECT_EQ(copy.is_valid, 1u);
    EXPECT_EQ(copy.link_count, 3u);
    EXPECT_EQ(copy.file_index, 0xABCDEFu);
    EXPECT_EQ(copy.volume_serial, 42);
    EXPECT_EQ(copy.reserved1, 5u);
    EXPECT_EQ(copy.reserved2, 6u);
    EXPECT_EQ(copy.reserved3, 7);
    EXPECT_STREQ(copy.reparse_target.c_str(), "C:/target");
    EXPECT_TRUE(copy.reparse_target_is_file);
    EXPECT_EQ(copy.reparse_kind, static_cast<std::uint32_t>(reparse_junction));
    EXPECT_STREQ(copy.name.c_str(), "name.txt");
    // The base's copy leaves the name alone.
    file_name_and_prop_data_s base_only;
    base_only.name.append("kept");
    static_cast<file_prop_data_s&>(base_only).copy(data);
    EXPECT_STREQ(base_only.name.c_str(), "kept");
    EXPECT_EQ(base_only.size, 99u);
    // Copying onto itself changes nothing.
    copy.copy(copy);
    EXPECT_STREQ(copy.name.c_str(), "name.txt");
    EXPECT_EQ(copy.size, 99u);
}

// ---- file_prop_access_c

class FilePropAccess : public ::testing::Test {
  protected:
    void SetUp() override { before = test_support::open_handle_count(); }
    void TearDown() override {
        EXPECT_EQ(test_support::open_handle_count(), before) << "a handle was not given back";
    }

    temp_dir_c dir;
    int before = 0;
};

TEST_F(FilePropAccess, LoadsAFile) {
    std::string path = dir.join("f.txt");
    write_file(path, "0123456789");
    std::time_t now = std::time(nullptr);
    file_prop_access_c access;
    ASSERT_TRUE(access.load_file_properties_from_disk(path.c_str(), nullptr, nullptr));
    const file_name_and_prop_data_s& prop = access.prop;
    EXPECT_EQ(prop.size, 10u);
    EXPECT_EQ(prop.stored_size, 10u);
    EXPECT_EQ(prop.is_valid, 1u);
    EXPECT_EQ(prop.link_count, 1u);
    EXPECT_EQ(prop.mode.qv_mode & file_mode_n::many_links, 0u);
    EXPECT_EQ(prop.mode.qv_mode & file_mode_n::dir, 0u);
    EXPECT_NE(prop.mode.qv_mode & file_mode_n::reg, 0u);
    EXPECT_NE(prop.mode.qv_mode & file_mode_n::writable, 0u);
    EXPECT_EQ(prop.mode.host_mode, attributes_of(path));
    EXPECT_LE(std::abs(static_cast<long long>(prop.modify_time - now)), 120) << prop.modify_time;
    EXPECT_EQ(prop.transaction, nullptr);
    EXPECT_EQ(prop.reparse_kind, 0u);
    EXPECT_NE(prop.file_index, 0u);
    EXPECT_STREQ(prop.name.c_str(), path.c_str());
}

TEST_F(FilePropAccess, FileIndexIsTheHighHalfShiftedByFourOrTheLowHalf) {
    std::string path = dir.join("f.txt");
    write_file(path, "data");
    file_prop_access_c access;
    ASSERT_TRUE(access.load_file_properties_from_disk(path.c_str(), nullptr, nullptr));
    basic_file_c::auto_release_file_handle_c kept(
        qv_create_file(path.c_str(), 0, os::OPEN_EXISTING, nullptr, true, 0));
    ASSERT_NE(kept.handle, os::INVALID_HANDLE_VALUE);
    os::BY_HANDLE_FILE_INFORMATION information{};
    ASSERT_TRUE(os::GetFileInformationByHandle(kept.handle, &information));
    EXPECT_EQ(access.prop.file_index,
              (static_cast<std::uint64_t>(information.nFileIndexHigh) << 4) |
                  information.nFileIndexLow);
    EXPECT_EQ(access.prop.volume_serial,
              static_cast<std::int64_t>(information.dwVolumeSerialNumber));
}

TEST_F(FilePropAccess, LoadCopiesTheRecordToOut) {
    std::string path = dir.join("f.txt");
    write_file(path, "0123");
    file_prop_access_c access;
    file_name_and_prop_data_s out;
    out.name.append("untouched");
    ASSERT_TRUE(access.load_file_properties_from_disk(path.c_str(), &out, nullptr));
    EXPECT_EQ(out.size, 4u);
    EXPECT_EQ(out.is_valid, 1u);
    EXPECT_EQ(out.mode.qv_mode, access.prop.mode.qv_mode);
    EXPECT_EQ(out.file_index, access.prop.file_index);
    EXPECT_STREQ(out.name.c_str(), "untouched") << "only the base record is copied";
}

TEST_F(FilePropAccess, LoadsADirectory) {
    std::string path = dir.join("sub");
    fs::create_directory(test_support::from_utf8(path));
    file_prop_access_c access;
    ASSERT_TRUE(access.load_file_properties_from_disk(path.c_str(), nullptr, nullptr));
    EXPECT_NE(access.prop.mode.qv_mode & file_mode_n::dir, 0u);
    EXPECT_EQ(access.prop.mode.qv_mode & file_mode_n::reg, 0u);
    EXPECT_NE(access.prop.mode.host_mode & 0x10, 0u);
    EXPECT_EQ(access.prop.size, 0u) << "a directory has no size";
    EXPECT_EQ(access.prop.is_valid, 1u);
    EXPECT_EQ(access.prop.reparse_kind, 0u);
}

TEST_F(FilePropAccess, CompressedSizeThatCannotBeHadIsTheSizeWithTrace) {
    std::string path = dir.join("f.txt");
    write_file(path, "0123456789");
    trace_capture_c capture;
    file_prop_access_c access;
    ASSERT_TRUE(access.load_file_properties_from_disk(path.c_str(), nullptr, nullptr));
    EXPECT_EQ(access.prop.stored_size, 10u);
    // Neither Linux nor Wine knows the compressed size of a file.
    std::string line = trace_line(capture.text(), "failed to get compressed size of " + path +
                                                      ", using normal size");
    ASSERT_FALSE(line.empty()) << capture.text();
    EXPECT_TRUE(has_level(line, 32)) << line;
}

TEST_F(FilePropAccess, HardLinkCountsAndSharesTheFileIndex) {
    std::string first = dir.join("first.txt"), second = dir.join("second.txt"),
                other = dir.join("other.txt");
    write_file(first, "shared");
    write_file(other, "shared");
    std::error_code error;
    fs::create_hard_link(test_support::from_utf8(first), test_support::from_utf8(second), error);
    ASSERT_FALSE(error) << error.message();
    file_prop_access_c a, b, c;
    ASSERT_TRUE(a.load_file_properties_from_disk(first.c_str(), nullptr, nullptr));
    ASSERT_TRUE(b.load_file_properties_from_disk(second.c_str(), nullptr, nullptr));
    ASSERT_TRUE(c.load_file_properties_from_disk(other.c_str(), nullptr, nullptr));
    EXPECT_EQ(a.prop.link_count, 2u);
    EXPECT_EQ(b.prop.link_count, 2u);
    EXPECT_NE(a.prop.mode.qv_mode & file_mode_n::many_links, 0u);
    EXPECT_NE(b.prop.mode.qv_mode & file_mode_n::many_links, 0u);
    EXPECT_EQ(a.prop.file_index, b.prop.file_index);
    EXPECT_EQ(a.prop.volume_serial, b.prop.volume_serial);
    EXPECT_NE(a.prop.file_index, c.prop.file_index);
    EXPECT_EQ(c.prop.link_count, 1u);
    EXPECT_EQ(c.prop.mode.qv_mode & file_mode_n::many_links, 0u);
}

TEST_F(FilePropAccess, LoadsFromAnOpenFile) {
    std::string path = dir.join("f.txt");
    write_file(path, "0123456789");
    for (unsigned flags : {0x200u, 0u}) {
        SCOPED_TRACE(flags);
        basic_file_c file;
        ASSERT_TRUE(file.open(path.c_str(), "r+", nullptr, flags));
        EXPECT_EQ(file.write("abc", 3), 3);
        EXPECT_TRUE(file.flush());
        file_prop_access_c access;
        ASSERT_TRUE(access.load_file_properties_from_disk(file));
        EXPECT_EQ(access.prop.size, 10u);
        EXPECT_EQ(access.prop.is_valid, 1u);
        EXPECT_STREQ(access.prop.name.c_str(), path.c_str());
        EXPECT_EQ(access.prop.mode.qv_mode & file_mode_n::device, 0u);
        EXPECT_EQ(test_support::open_handle_count(), before + 1);
        EXPECT_TRUE(file.close());
        access.prop.name.append("junk");
        EXPECT_FALSE(access.load_file_properties_from_disk(file));
        expect_reset(access.prop);
        EXPECT_STREQ(access.prop.name.c_str(), "");
    }
}

TEST_F(FilePropAccess, VolumePathLoadsWithDeviceBitAndTotalBytes) {
#if defined(_WIN32)
    std::string root = test_support::utf8(dir.path().root_path());
    std::string volume = dir.str().substr(0, 2) + "/$$qv-volume";
#else
    // Here the volume of a directory is the file system that holds it.
    std::string root = dir.str();
    std::string volume = dir.str() + "/$$qv-volume";
#endif
    std::uint64_t capacity = fs::space(test_support::from_utf8(root)).capacity;
    ASSERT_GT(capacity, 0u);
    file_prop_access_c access;
    file_name_and_prop_data_s out;
    ASSERT_TRUE(access.load_file_properties_from_disk(volume.c_str(), &out, nullptr)) << volume;
    EXPECT_NE(access.prop.mode.qv_mode & file_mode_n::device, 0u);
    EXPECT_EQ(access.prop.mode.qv_mode, 0x3802u | file_mode_n::device);
    EXPECT_EQ(access.prop.size, capacity);
    EXPECT_EQ(access.prop.stored_size, capacity);
    EXPECT_EQ(access.prop.is_valid, 1u);
    EXPECT_EQ(out.size, capacity);
    EXPECT_STREQ(access.prop.name.c_str(), volume.c_str());
}

#if !defined(_WIN32)
// The stored DOS attributes of every object say sparse, as a file server writes them.
ssize_t sparse_mark(const char*, const char* name, void* value, std::size_t size) {
    const char mark[] = "0x200";
    if (std::strcmp(name, "user.DOSATTRIB") != 0 || size < sizeof mark - 1) {
        errno = ENODATA;
        return -1;
    }
    std::memcpy(value, mark, sizeof mark - 1);
    return static_cast<ssize_t>(sizeof mark - 1);
}
#endif

// A plain file with the stored sparse mark loads sparse: the mark is seen at all.
TEST_F(FilePropAccess, FileWithTheSparseAttributeLoadsSparse) {
#if defined(_WIN32)
    GTEST_SKIP() << "wine keeps no sparse attribute; the POSIX build fakes it through the "
                    "system-call table";
#else
    std::string path = dir.join("sparse.bin");
    write_file(path, "0123456789");
    test_support::replaced_syscall_c mark(os::posix::syscalls().getxattr, &sparse_mark);
    file_prop_access_c access;
    ASSERT_TRUE(access.load_file_properties_from_disk(path.c_str(), nullptr, nullptr));
    EXPECT_NE(access.prop.mode.host_mode & os::FILE_ATTRIBUTE_SPARSE_FILE, 0u);
    EXPECT_NE(access.prop.mode.qv_mode & file_mode_n::sparse, 0u);
#endif
}

// A reparse point that is also sparse is taken for a plain file.
TEST_F(FilePropAccess, FileWithSparseAndReparseAttributesLoadsWithNeither) {
#if defined(_WIN32)
    GTEST_SKIP() << "wine keeps no sparse attribute and makes no sparse reparse point; the POSIX "
                    "build fakes the mark on a link through the system-call table";
#else
    std::string target = dir.join("target.txt"), link = dir.join("link");
    write_file(target, "0123456789");
    if (!make_symlink(target, link, false)) GTEST_SKIP() << no_symlinks;
    test_support::replaced_syscall_c mark(os::posix::syscalls().lgetxattr, &sparse_mark);
    file_prop_access_c access;
    ASSERT_TRUE(access.load_file_properties_from_disk(link.c_str(), nullptr, nullptr));
    constexpr std::uint32_t both =
        os::FILE_ATTRIBUTE_SPARSE_FILE | os::FILE_ATTRIBUTE_REPARSE_POINT;
    EXPECT_EQ(access.prop.mode.host_mode & both, 0u) << access.prop.mode.host_mode;
    EXPECT_EQ(access.prop.mode.qv_mode & (file_mode_n::sparse | file_mode_n::reparse), 0u);
    EXPECT_EQ(access.prop.reparse_kind, 0u);
#endif
}

TEST_F(FilePropAccess, HiddenDirectoryAsTheEngineHidesItsState) {
    for (const char* name : {"state", ".mr_qv_prefix"}) {
        SCOPED_TRACE(name);
        std::string path = dir.join(name);
        fs::create_directory(test_support::from_utf8(path));
        file_mode_c mode;
        ASSERT_TRUE(mode.set_hostmode(130));
        file_prop_access_c access;
        ASSERT_TRUE(access.set_mode_to_disk(path.c_str(), mode));
        // The loaded mode follows the word written, which carries the normal bit.
        EXPECT_EQ(access.prop.mode.host_mode, 130u);
        EXPECT_EQ(access.prop.mode.qv_mode, 0xB7802u);

        file_prop_access_c reloaded;
        ASSERT_TRUE(reloaded.load_file_properties_from_disk(path.c_str(), nullptr, nullptr));
        EXPECT_NE(reloaded.prop.mode.host_mode & hidden_host, 0u) << reloaded.prop.mode.host_mode;
        EXPECT_NE(reloaded.prop.mode.host_mode & 0x10, 0u);
        EXPECT_NE(reloaded.prop.mode.qv_mode & file_mode_n::hidden, 0u);
        EXPECT_NE(reloaded.prop.mode.qv_mode & file_mode_n::dir, 0u);
        EXPECT_TRUE(attributes_of(path) & os::FILE_ATTRIBUTE_HIDDEN);
    }
}

TEST_F(FilePropAccess, SetModeToDiskHidesAndShowsAFile) {
    std::string path = dir.join("f.txt");
    write_file(path, "data");
    file_prop_access_c access;
    file_mode_c hidden;
    hidden.set_qvmode(0x1000 | file_mode_n::reg | file_mode_n::hidden | file_mode_n::archive);
    ASSERT_TRUE(access.set_mode_to_disk(path.c_str(), hidden));
    EXPECT_TRUE(attributes_of(path) & os::FILE_ATTRIBUTE_HIDDEN);
    EXPECT_NE(access.prop.mode.qv_mode & file_mode_n::hidden, 0u);
    file_mode_c shown;
    shown.set_qvmode(0x1000 | file_mode_n::reg | file_mode_n::archive);
    ASSERT_TRUE(access.set_mode_to_disk(path.c_str(), shown));
    EXPECT_FALSE(attributes_of(path) & os::FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(read_file(path), "data");
}

TEST_F(FilePropAccess, SetModeToDiskOnMissingPathFails) {
    file_mode_c mode;
    file_prop_access_c access;
    EXPECT_FALSE(access.set_mode_to_disk(dir.join("missing.txt").c_str(), mode));
    EXPECT_FALSE(fs::exists(dir.path() / "missing.txt"));
}

TEST_F(FilePropAccess, AddWriteAttribLiftsReadOnly) {
    std::string path = dir.join("ro.txt");
    write_file(path, "data");
    ASSERT_TRUE(set_attributes(path, os::FILE_ATTRIBUTE_READONLY));
    file_prop_access_c access;
    EXPECT_TRUE(access.add_write_attrib(path.c_str(), nullptr));
    EXPECT_FALSE(attributes_of(path) & os::FILE_ATTRIBUTE_READONLY);
    EXPECT_NE(access.prop.mode.qv_mode & file_mode_n::writable, 0u);
    file_prop_access_c reloaded;
    ASSERT_TRUE(reloaded.load_file_properties_from_disk(path.c_str(), nullptr, nullptr));
    EXPECT_NE(reloaded.prop.mode.qv_mode & file_mode_n::writable, 0u);
    EXPECT_EQ(read_file(path), "data");
}

TEST_F(FilePropAccess, AddWriteAttribOnWritableFileDoesNothing) {
    std::string path = dir.join("f.txt");
    write_file(path, "data");
    file_prop_access_c access;
    EXPECT_FALSE(access.add_write_attrib(path.c_str(), nullptr));
    EXPECT_FALSE(attributes_of(path) & os::FILE_ATTRIBUTE_READONLY);
}

TEST_F(FilePropAccess, AddWriteAttribOnMissingPathIsFalse) {
    file_prop_access_c access;
    EXPECT_FALSE(access.add_write_attrib(dir.join("missing.txt").c_str(), nullptr));
    EXPECT_FALSE(access.add_write_attrib(nullptr, nullptr));
}

TEST_F(FilePropAccess, RemoveWriteAttribIsTheMirror) {
    std::string path = dir.join("f.txt");
    write_file(path, "data");
    file_prop_access_c access;
    ASSERT_TRUE(access.load_file_properties_from_disk(path.c_str(), nullptr, nullptr));
    EXPECT_TRUE(access._remove_write_attrib());
    EXPECT_TRUE(attributes_of(path) & os::FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(access.prop.mode.qv_mode & file_mode_n::writable, 0u);
    EXPECT_FALSE(access._remove_write_attrib()) << "already read-only";
    EXPECT_TRUE(access._add_write_attrib());
    EXPECT_FALSE(attributes_of(path) & os::FILE_ATTRIBUTE_READONLY);
    EXPECT_FALSE(access._add_write_attrib()) << "already writable";
}

TEST_F(FilePropAccess, RemovingSparseIsTracedAtLevel8AndKept) {
    std::string path = dir.join("f.txt");
    write_file(path, "data");
    file_prop_access_c access;
    ASSERT_TRUE(access.load_file_properties_from_disk(path.c_str(), nullptr, nullptr));
    file_mode_c without_sparse;
    without_sparse.copy(access.prop.mode);
    // The loaded file is sparse (no file system here makes one, so the record says it).
    access.prop.mode.set_hostmode(access.prop.mode.host_mode | sparse_host);
    std::uint32_t on_disk = attributes_of(path);
    trace_capture_c capture;
    EXPECT_TRUE(access._set_mode_to_disk(without_sparse, true, nullptr));
    std::string line =
        trace_line(capture.text(), "Sparse attribute can NOT be removed for " + path);
    ASSERT_FALSE(line.empty()) << capture.text();
    EXPECT_TRUE(has_level(line, 8)) << line;
    EXPECT_NE(access.prop.mode.host_mode & sparse_host, 0u);
    EXPECT_NE(access.prop.mode.qv_mode & file_mode_n::sparse, 0u);
    EXPECT_EQ(attributes_of(path), on_disk);
    EXPECT_EQ(capture.text().find("Unable to set sparse"), std::string::npos) << capture.text();
}

TEST_F(FilePropAccess, SetSparseOfNoHandleIsFalse) {
    EXPECT_FALSE(sparse_file_c::set_sparse(nullptr));
    EXPECT_FALSE(sparse_file_c::set_sparse(os::INVALID_HANDLE_VALUE));
}

TEST_F(FilePropAccess, SparseAskedOfAFileSystemWithoutItFailsWithTrace) {
    std::string path = dir.join("f.txt");
    write_file(path, "data");
    {
        basic_file_c::auto_release_file_handle_c probe(
            qv_create_file(path.c_str(), os::GENERIC_READ | os::GENERIC_WRITE, os::OPEN_EXISTING,
                           nullptr, true, 0));
        ASSERT_NE(probe.handle, os::INVALID_HANDLE_VALUE);
        if (sparse_file_c::set_sparse(probe.handle))
            GTEST_SKIP() << "this file system makes files sparse";
    }
    file_prop_access_c access;
    ASSERT_TRUE(access.load_file_properties_from_disk(path.c_str(), nullptr, nullptr));
    file_mode_c sparse;
    sparse.set_hostmode(access.prop.mode.host_mode | sparse_host);
    trace_capture_c capture;
    EXPECT_FALSE(access._set_mode_to_disk(sparse, true, nullptr));
    std::string line = line_holding(capture.text(), "Unable to set sparse for " + path + "[");
    ASSERT_FALSE(line.empty()) << capture.text();
    EXPECT_TRUE(has_level(line, 4)) << line;
    EXPECT_EQ(access.prop.mode.host_mode & sparse_host, 0u);
}

// Whether the file system under `path` compresses a file when asked.
bool compresses(const std::string& path) {
    basic_file_c::auto_release_file_handle_c probe(qv_create_file(
        path.c_str(), os::GENERIC_READ | os::GENERIC_WRITE, os::OPEN_EXISTING, nullptr, true, 0));
    std::uint32_t state = 0;
    os::DWORD returned = 0;
    return probe.handle != os::INVALID_HANDLE_VALUE &&
           os::DeviceIoControl(probe.handle, os::FSCTL_SET_COMPRESSION, &state, sizeof state,
                               nullptr, 0, &returned, nullptr);
}

TEST_F(FilePropAccess, CompressionOnDriveThatCannotCompressLeavesOkAndClearsTheBit) {
    std::string path = dir.join("f.txt");
    write_file(path, "data");
    if (compresses(path)) GTEST_SKIP() << "this drive compresses files";
    file_prop_access_c access;
    ASSERT_TRUE(access.load_file_properties_from_disk(path.c_str(), nullptr, nullptr));
    std::uint32_t on_disk = attributes_of(path);
    file_mode_c compressed;
    compressed.set_hostmode(access.prop.mode.host_mode | compressed_host);
    trace_capture_c capture;
    // Without a drive list no drive is known to compress.
    EXPECT_TRUE(access._set_mode_to_disk(compressed, true, nullptr));
    std::string line = trace_line(capture.text(), "Unable to set compression for " + path);
    ASSERT_FALSE(line.empty()) << capture.text();
    EXPECT_TRUE(has_level(line, 128)) << line;
    EXPECT_EQ(access.prop.mode.host_mode & compressed_host, 0u);
    EXPECT_EQ(access.prop.mode.qv_mode & file_mode_n::compressed, 0u);
    EXPECT_EQ(attributes_of(path), on_disk);
}

TEST_F(FilePropAccess, CompressionIsNotAskedWhenChangeCompressionIsFalse) {
    std::string path = dir.join("f.txt");
    write_file(path, "data");
    file_prop_access_c access;
    ASSERT_TRUE(access.load_file_properties_from_disk(path.c_str(), nullptr, nullptr));
    file_mode_c compressed;
    compressed.set_hostmode(access.prop.mode.host_mode | compressed_host);
    trace_capture_c capture;
    access._set_mode_to_disk(compressed, false, nullptr);
    EXPECT_EQ(capture.text().find("Unable to set compression"), std::string::npos)
        << capture.text();
}

TEST_F(FilePropAccess, CompressionOfReadOnlyFileLiftsAndRestoresReadOnly) {
    std::string path = dir.join("ro.txt");
    write_file(path, "data");
    if (compresses(path)) GTEST_SKIP() << "this drive compresses files";
    ASSERT_TRUE(set_attributes(path, os::FILE_ATTRIBUTE_READONLY));
    file_prop_access_c access;
    ASSERT_TRUE(access.load_file_properties_from_disk(path.c_str(), nullptr, nullptr));
    ASSERT_EQ(access.prop.mode.qv_mode & file_mode_n::writable, 0u);
    file_mode_c compressed;
    compressed.set_hostmode(access.prop.mode.host_mode | compressed_host);
    trace_capture_c capture;
    EXPECT_TRUE(access._set_mode_to_disk(compressed, true, nullptr));
    EXPECT_FALSE(trace_line(capture.text(), "Unable to set compression for " + path).empty())
        << capture.text();
    EXPECT_TRUE(attributes_of(path) & os::FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(access.prop.mode.qv_mode & file_mode_n::writable, 0u);
    set_attributes(path, os::FILE_ATTRIBUTE_NORMAL);
}

TEST_F(FilePropAccess, CompressionFailingOnDriveThatCanCompressFails) {
    std::string path = dir.join("f.txt");
    write_file(path, "data");
    char root[path_n::path_buffer_size] = {};
    if (!path_n::drive_name_from_path(path.c_str(), root))
        GTEST_SKIP() << "paths here have no drive, so no drive can say that it compresses";
    if (compresses(path)) GTEST_SKIP() << "this drive compresses files";
    drive_list_c drives;
    drives.add(root, file_system_info_n::fs_ntfs, os::FILE_FILE_COMPRESSION);
    file_prop_access_c access;
    ASSERT_TRUE(access.load_file_properties_from_disk(path.c_str(), nullptr, nullptr));
    file_mode_c compressed;
    compressed.set_hostmode(access.prop.mode.host_mode | compressed_host);
    trace_capture_c capture;
    EXPECT_FALSE(access._set_mode_to_disk(compressed, true, nullptr));
    std::string line = line_holding(capture.text(), "Unable to set compression for " + path + "[");
    ASSERT_FALSE(line.empty()) << capture.text();
    EXPECT_TRUE(has_level(line, 4)) << line;
    EXPECT_EQ(access.prop.mode.host_mode & compressed_host, 0u);
}

TEST_F(FilePropAccess, AttributesOnRootOfFatVolumeAreLeftAlone) {
#if defined(_WIN32)
    std::string root = dir.str().substr(0, 2) + "/";
#else
    std::string root = "/";
#endif
    ASSERT_TRUE(is_volume_mount_root(root.c_str())) << root;
    drive_list_c drives;
    // Every known drive is of the FAT family, so the root's drive is taken to be one too.
    drives.add("F:\\", file_system_info_n::fs_fat);
    drives.add("G:\\", file_system_info_n::fs_fat);
    ASSERT_EQ(file_system_info_n::common_fs_code(), file_system_info_n::fs_fat);
    std::uint32_t before_attributes = attributes_of(root);
    file_prop_access_c access;
    ASSERT_TRUE(access.load_file_properties_from_disk(root.c_str(), nullptr, nullptr));
    std::uint32_t loaded = access.prop.mode.host_mode;
    file_mode_c hidden;
    hidden.set_hostmode(loaded | hidden_host | 0x4);
    EXPECT_TRUE(access.set_mode_to_disk(root.c_str(), hidden));
    EXPECT_EQ(attributes_of(root), before_attributes);
    EXPECT_EQ(access.prop.mode.host_mode, loaded);
}

TEST_F(FilePropAccess, ReparseDataOfAPlainFileCannotBeRead) {
    std::string path = dir.join("f.txt");
    write_file(path, "data");
    basic_file_c::auto_release_file_handle_c kept(
        qv_create_file(path.c_str(), 0, os::OPEN_EXISTING, nullptr, true, 0));
    ASSERT_NE(kept.handle, os::INVALID_HANDLE_VALUE);
    file_prop_access_c access;
    access.prop.reparse_kind = reparse_junction;
    trace_capture_c capture;
    EXPECT_FALSE(access._get_reparse_point_prop(kept.handle, path.c_str()));
    EXPECT_EQ(access.prop.reparse_kind, 0u);
    std::string line =
        line_holding(capture.text(), "Unable to read reparse point data for " + path + ", err=");
    ASSERT_FALSE(line.empty()) << capture.text();
    EXPECT_TRUE(has_level(line, 4)) << line;
}

TEST_F(FilePropAccess, SymbolicLinkToAFileLoadsAsLink) {
    std::string target = dir.join("target.txt"), link = dir.join("link");
    write_file(target, "0123456789");
    if (!make_symlink(target, link, false)) GTEST_SKIP() << no_symlinks;
    file_prop_access_c access;
    ASSERT_TRUE(access.load_file_properties_from_disk(link.c_str(), nullptr, nullptr));
    EXPECT_NE(access.prop.mode.qv_mode & file_mode_n::reparse, 0u);
    EXPECT_NE(access.prop.mode.qv_mode & file_mode_n::link, 0u);
    EXPECT_EQ(access.prop.mode.qv_mode & file_mode_n::dir, 0u);
    EXPECT_EQ(access.prop.reparse_kind, static_cast<std::uint32_t>(reparse_symbolic_link));
    EXPECT_TRUE(access.prop.reparse_target_is_file);
    std::string expected = target;
    for (char& c : expected)
        if (c == '\\') c = '/';
    EXPECT_STREQ(access.prop.reparse_target.c_str(), expected.c_str());
    EXPECT_EQ(access.prop.size, 0u) << "the link, not its target";
}

TEST_F(FilePropAccess, SymbolicLinkToADirectoryLoadsAsLink) {
    std::string target = dir.join("target"), link = dir.join("link");
    fs::create_directory(test_support::from_utf8(target));
    if (!make_symlink(target, link, true)) GTEST_SKIP() << no_symlinks;
    file_prop_access_c access;
    ASSERT_TRUE(access.load_file_properties_from_disk(link.c_str(), nullptr, nullptr));
    EXPECT_NE(access.prop.mode.qv_mode & file_mode_n::reparse, 0u);
    EXPECT_NE(access.prop.mode.qv_mode & file_mode_n::link, 0u);
    EXPECT_NE(access.prop.mode.qv_mode & file_mode_n::dir, 0u);
    EXPECT_EQ(access.prop.reparse_kind, static_cast<std::uint32_t>(reparse_symbolic_link));
    EXPECT_FALSE(access.prop.reparse_target_is_file);
    std::string expected = target;
    for (char& c : expected)
        if (c == '\\') c = '/';
    EXPECT_STREQ(access.prop.reparse_target.c_str(), expected.c_str());
}

// ---- bad input

TEST_F(FilePropAccess, MissingPathFailsAndLeavesTheRecordsReset) {
    file_prop_access_c access;
    file_name_and_prop_data_s out;
    fill(out);
    access.prop.size = 5;
    access.prop.name.append("junk");
    EXPECT_FALSE(
        access.load_file_properties_from_disk(dir.join("missing.txt").c_str(), &out, nullptr));
    expect_reset(access.prop);
    EXPECT_STREQ(access.prop.name.c_str(), "");
    expect_reset(out);
    EXPECT_FALSE(access.load_file_properties_from_disk(nullptr, nullptr, nullptr));
    EXPECT_FALSE(
        access.load_file_properties_from_disk(dir.join("missing/f.txt").c_str(), nullptr, nullptr));
}

TEST_F(FilePropAccess, ReadOnlyFileLoadsAsReadOnly) {
    std::string path = dir.join("ro.txt");
    write_file(path, "data");
    ASSERT_TRUE(set_attributes(path, os::FILE_ATTRIBUTE_READONLY));
    file_prop_access_c access;
    ASSERT_TRUE(access.load_file_properties_from_disk(path.c_str(), nullptr, nullptr));
    EXPECT_EQ(access.prop.mode.qv_mode & file_mode_n::writable, 0u);
    EXPECT_NE(access.prop.mode.host_mode & readonly_host, 0u);
    EXPECT_EQ(access.prop.size, 4u);
    set_attributes(path, os::FILE_ATTRIBUTE_NORMAL);
}

TEST_F(FilePropAccess, PathOf4095CharactersFails) {
    std::string path = dir.str() + "/missing";
    while (path.size() < 4095) path += "/" + std::string(200, 'd');
    path.resize(4095);
    file_prop_access_c access;
    EXPECT_FALSE(access.load_file_properties_from_disk(path.c_str(), nullptr, nullptr));
    EXPECT_FALSE(access.add_write_attrib(path.c_str(), nullptr));
    file_mode_c mode;
    EXPECT_FALSE(access.set_mode_to_disk(path.c_str(), mode));
    EXPECT_TRUE(fs::is_empty(dir.path()));
}

TEST_F(FilePropAccess, NameWithInvalidUtf8IsLookedForUnderTheReplacementCharacter) {
    std::string bad = dir.str() + "/bad\xFF.txt";
    file_prop_access_c access;
    EXPECT_FALSE(access.load_file_properties_from_disk(bad.c_str(), nullptr, nullptr));
    write_file(dir.join("bad\xEF\xBF\xBD.txt"), "0123");
    ASSERT_TRUE(access.load_file_properties_from_disk(bad.c_str(), nullptr, nullptr));
    EXPECT_EQ(access.prop.size, 4u);
}

TEST_F(FilePropAccess, FileDeletedWhileOpenStillLoadsFromItsHandle) {
    std::string path = dir.join("f.txt");
    basic_file_c file;
    ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, 0x200));
    EXPECT_EQ(file.write("0123456", 7), 7);
    ASSERT_TRUE(os::DeleteFileW(wide_of(path).data()));
    file_prop_access_c access;
    ASSERT_TRUE(access.load_file_properties_from_disk(file));
    EXPECT_EQ(access.prop.size, 7u);
    EXPECT_TRUE(file.close());
    file_prop_access_c by_path;
    EXPECT_FALSE(by_path.load_file_properties_from_disk(path.c_str(), nullptr, nullptr));
}

} // namespace
