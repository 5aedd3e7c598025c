// FILE_c on a plain file: its own position, free of system calls, the error of a closed object,
// the cluster size of its drive, and the volume pseudo-file that this build does not open.
#include "files/file_modif.h"

#include "common/test_support.h"
#include "files/file.h"
#include "files/file_manipulation.h"
#include "platform/os.h"
#include "support/thl.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using test_support::read_file;
using test_support::temp_dir_c;
using test_support::trace_capture_c;
using test_support::trace_line;
using test_support::write_file;

constexpr unsigned raw = open_flags_n::raw_handle;

std::string read_text(FILE_c& file, std::int64_t count) {
    std::string text(static_cast<std::size_t>(count), '\0');
    std::int64_t n = file.read(text.data(), count);
    text.resize(n < 0 ? 0 : static_cast<std::size_t>(n));
    return text;
}

std::vector<os::wide_char> wide_of(const std::string& path) {
    std::vector<os::wide_char> wide(path_n::path_buffer_size);
    path_n::path_to_wide_char_path(path.c_str(), wide.data(), true);
    return wide;
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

class FileC : public ::testing::Test {
  protected:
    void SetUp() override { before = test_support::open_handle_count(); }
    void TearDown() override {
        EXPECT_EQ(test_support::open_handle_count(), before) << "a handle was not given back";
    }

    temp_dir_c dir;
    int before = 0;
};

class FileCModes : public FileC, public ::testing::WithParamInterface<unsigned> {};

TEST_F(FileC, ReadOnClosedFileGivesMinusOneAndE0001) {
    FILE_c file;
    char buffer[4] = {};
    EXPECT_EQ(file.read(buffer, 4), -1);
    EXPECT_EQ(file.error, 0xE0001);
    file.error = 0;
    EXPECT_EQ(file.write(buffer, 4), -1);
    EXPECT_EQ(file.error, 0xE0001);
    EXPECT_EQ(FILE_c::closed_file_error, 0xE0001);
}

TEST_F(FileC, ReadAfterCloseGivesMinusOneAndE0001) {
    write_file(dir.join("f.txt"), "data");
    FILE_c file;
    ASSERT_TRUE(file.open(dir.join("f.txt").c_str(), "r", nullptr, 0));
    EXPECT_TRUE(file.close());
    char buffer[4] = {};
    EXPECT_EQ(file.read(buffer, 4), -1);
    EXPECT_EQ(file.error, 0xE0001);
}

TEST_P(FileCModes, SeekToAnyValueThenTellGivesIt) {
    write_file(dir.join("f.txt"), "data");
    FILE_c file;
    ASSERT_TRUE(file.open(dir.join("f.txt").c_str(), "r", nullptr, GetParam()));
    for (std::int64_t value :
         {std::int64_t{0}, std::int64_t{3}, std::int64_t{12345}, std::int64_t{-5},
          std::numeric_limits<std::int64_t>::max(), std::int64_t{0x100000000}}) {
        SCOPED_TRACE(value);
        EXPECT_TRUE(file.seek(value));
        EXPECT_EQ(file.tell(), value);
        EXPECT_EQ(file.position, static_cast<std::uint64_t>(value));
    }
    // The system's position was never asked to move.
    EXPECT_EQ(file.basic_file_c::tell(), 0);
    EXPECT_TRUE(file.close());
    EXPECT_FALSE(file.seek(7));
    EXPECT_EQ(file.tell(), -1);
}

TEST_F(FileC, SecondCloseIsFalse) {
    write_file(dir.join("f.txt"), "data");
    FILE_c file;
    ASSERT_TRUE(file.open(dir.join("f.txt").c_str(), "r", nullptr, 0));
    EXPECT_EQ(test_support::open_handle_count(), before + 1);
    EXPECT_TRUE(file.close());
    EXPECT_EQ(test_support::open_handle_count(), before);
    EXPECT_FALSE(file.close());
    EXPECT_EQ(test_support::open_handle_count(), before);
    FILE_c never_opened;
    EXPECT_FALSE(never_opened.close());
}

TEST_F(FileC, DestructorCloses) {
    write_file(dir.join("f.txt"), "data");
    {
        FILE_c file;
        ASSERT_TRUE(file.open(dir.join("f.txt").c_str(), "r", nullptr, 0x80 | raw));
        EXPECT_EQ(test_support::open_handle_count(), before + 1);
    }
    EXPECT_EQ(test_support::open_handle_count(), before);
    FILE_c again;
    EXPECT_TRUE(again.open(dir.join("f.txt").c_str(), "r", nullptr, 0x80 | raw));
}

TEST_F(FileC, SectorSizeThatCannotBeFoundGives512) {
    // A relative path names no drive, on every system.
    current_directory_c here(dir.path());
    write_file(dir.join("f.txt"), "data");
    unsigned cluster = 1;
    ASSERT_EQ(file_manipulation_n::bytes_per_sector("f.txt", &cluster), 0u);
    FILE_c file;
    file.cluster_size = 1;
    ASSERT_TRUE(file.open("f.txt", "r", nullptr, 0));
    EXPECT_EQ(file.cluster_size, 512u);
    EXPECT_EQ(read_text(file, 10), "data");
    EXPECT_TRUE(file.close());
}

TEST_F(FileC, ClusterSizeOfTheDriveUnderTheFile) {
    write_file(dir.join("f.txt"), "data");
    unsigned cluster = 0;
    unsigned sector = file_manipulation_n::bytes_per_sector(dir.join("f.txt").c_str(), &cluster);
    FILE_c file;
    ASSERT_TRUE(file.open(dir.join("f.txt").c_str(), "r", nullptr, 0));
    if (sector == 0) {
        // On Linux an absolute path names no drive ("/..."): the size can't be found.
        EXPECT_EQ(file.cluster_size, 512u);
    } else {
        EXPECT_GT(cluster, 0u);
        EXPECT_EQ(file.cluster_size, cluster);
    }
    EXPECT_TRUE(file.close());
}

TEST_P(FileCModes, ReadsAndWritesAtItsOwnPosition) {
    FILE_c file;
    ASSERT_TRUE(file.open(dir.join("f.txt").c_str(), "w+", nullptr, GetParam()));
    EXPECT_EQ(file.open_flags, GetParam());
    EXPECT_EQ(file.tell(), 0);
    EXPECT_EQ(file.write("hello world", 11), 11);
    EXPECT_EQ(file.tell(), 11);
    EXPECT_TRUE(file.seek(6));
    EXPECT_EQ(read_text(file, 5), "world");
    EXPECT_EQ(file.tell(), 11);
    EXPECT_TRUE(file.seek(0));
    EXPECT_EQ(file.write("HELLO", 5), 5);
    EXPECT_EQ(file.tell(), 5);
    EXPECT_EQ(read_text(file, 100), " world");
    EXPECT_EQ(file.tell(), 11);
    EXPECT_EQ(read_text(file, 100), "") << "at the end";
    EXPECT_EQ(file.tell(), 11);
    EXPECT_TRUE(file.flush());
    EXPECT_EQ(file.size(), 11);
    EXPECT_TRUE(file.close());
    EXPECT_EQ(read_file(dir.join("f.txt")), "HELLO world");
}

TEST_P(FileCModes, TwoObjectsOnOneFileKeepTheirOwnPositions) {
    write_file(dir.join("f.txt"), "0123456789");
    FILE_c first, second;
    ASSERT_TRUE(first.open(dir.join("f.txt").c_str(), "r", nullptr, GetParam()));
    ASSERT_TRUE(second.open(dir.join("f.txt").c_str(), "r", nullptr, GetParam()));
    EXPECT_TRUE(first.seek(2));
    EXPECT_TRUE(second.seek(7));
    EXPECT_EQ(read_text(first, 2), "23");
    EXPECT_EQ(read_text(second, 2), "78");
    EXPECT_EQ(read_text(first, 2), "45");
    EXPECT_EQ(first.tell(), 6);
    EXPECT_EQ(second.tell(), 9);
    EXPECT_TRUE(first.close());
    EXPECT_TRUE(second.close());
}

TEST_P(FileCModes, SeekPastTheEndThenReadGivesZero) {
    write_file(dir.join("f.txt"), "0123");
    FILE_c file;
    ASSERT_TRUE(file.open(dir.join("f.txt").c_str(), "r", nullptr, GetParam()));
    EXPECT_TRUE(file.seek(100));
    file.error = 77;
    char buffer[4] = {};
    EXPECT_EQ(file.read(buffer, 4), 0);
    EXPECT_EQ(file.error, 0);
    EXPECT_EQ(file.tell(), 100);
    EXPECT_TRUE(file.close());
}

TEST_P(FileCModes, ReadOfTenWithFourLeftGivesFour) {
    write_file(dir.join("f.txt"), "0123456789");
    FILE_c file;
    ASSERT_TRUE(file.open(dir.join("f.txt").c_str(), "r", nullptr, GetParam()));
    EXPECT_TRUE(file.seek(6));
    file.error = 77;
    EXPECT_EQ(read_text(file, 10), "6789");
    EXPECT_EQ(file.error, 0);
    EXPECT_EQ(file.tell(), 10);
    EXPECT_TRUE(file.close());
}

INSTANTIATE_TEST_SUITE_P(RawHandleAndCStream, FileCModes, ::testing::Values(raw, 0u),
                         [](const ::testing::TestParamInfo<unsigned>& flags) {
                             return flags.param == raw ? std::string("raw_handle")
                                                       : std::string("c_stream");
                         });

TEST_F(FileC, OpenStartsAtZeroAndKeepsTheFlags) {
    write_file(dir.join("f.txt"), "data");
    FILE_c file;
    ASSERT_TRUE(file.open(dir.join("f.txt").c_str(), "r", nullptr, 0x2 | raw));
    EXPECT_EQ(file.open_flags, 0x2u | raw);
    EXPECT_TRUE(file.seek(3));
    EXPECT_TRUE(file.close());
    ASSERT_TRUE(file.open(dir.join("f.txt").c_str(), "r", nullptr, 0));
    EXPECT_EQ(file.open_flags, 0u);
    EXPECT_EQ(file.tell(), 0);
    EXPECT_EQ(read_text(file, 4), "data");
    EXPECT_TRUE(file.close());
}

TEST_F(FileC, TruncateOpenAndClosed) {
    write_file(dir.join("f.txt"), "0123456789");
    FILE_c file;
    ASSERT_TRUE(file.open(dir.join("f.txt").c_str(), "r+", nullptr, raw));
    EXPECT_TRUE(file.seek(8));
    EXPECT_TRUE(file.truncate(6));
    EXPECT_EQ(file.tell(), 8);
    EXPECT_EQ(file.size(), 6);
    EXPECT_TRUE(file.close());
    EXPECT_EQ(file.size(), -1);
    // Closed, the file is cut by its path.
    EXPECT_TRUE(file.truncate(2));
    EXPECT_EQ(read_file(dir.join("f.txt")), "01");
    FILE_c never_opened;
    EXPECT_FALSE(never_opened.truncate(0));
}

TEST_F(FileC, FlushAndMknodAreTrue) {
    FILE_c file;
    EXPECT_TRUE(file.flush());
    EXPECT_TRUE(file.mknod());
    ASSERT_TRUE(file.open(dir.join("f.txt").c_str(), "w", nullptr, 0));
    EXPECT_EQ(file.write("abc", 3), 3);
    EXPECT_TRUE(file.flush());
    EXPECT_EQ(read_file(dir.join("f.txt")), "abc");
    EXPECT_TRUE(file.mknod());
    EXPECT_TRUE(file.close());
}

// A directory is no volume: its first sector can't be read, and the open fails with the trace
// and leaves nothing open. (Image files as volumes: volume_path_test.)
TEST_F(FileC, DirectoryAsVolumeFailsToReadItsBootSector) {
#if defined(_WIN32)
    GTEST_SKIP() << "a drive's device under wine is a fake; the volume paths are tested on image "
                    "files in the POSIX build";
#else
    std::string volume = dir.str() + "/$$qv-volume";
    trace_capture_c capture;
    FILE_c file;
    EXPECT_FALSE(file.open(volume.c_str(), "r", nullptr, 0));
    EXPECT_FALSE(file.is_open());
    EXPECT_FALSE(file.volume_locked);
    EXPECT_EQ(test_support::open_handle_count(), before);
    std::string text = capture.text();
    std::size_t at = text.find("failed to read boot sector " + volume + " (");
    ASSERT_NE(at, std::string::npos) << text;
    std::size_t line_start = text.rfind('\n', at);
    EXPECT_NE(text.substr(line_start + 1, at - line_start).find(" level=4 "), std::string::npos);
#endif
}

// ---- bad input

TEST_F(FileC, MissingFileLeavesTheObjectClosed) {
    FILE_c file;
    EXPECT_FALSE(file.open(dir.join("missing.txt").c_str(), "r", nullptr, 0));
    EXPECT_FALSE(file.open(dir.join("missing/f.txt").c_str(), "w", nullptr, raw));
    EXPECT_FALSE(file.is_open());
    char buffer[4] = {};
    EXPECT_EQ(file.read(buffer, 4), -1);
    EXPECT_EQ(file.error, 0xE0001);
    EXPECT_TRUE(fs::is_empty(dir.path()));
}

TEST_F(FileC, DirectoryGivesNoData) {
    fs::create_directory(dir.path() / "sub");
    FILE_c file;
    EXPECT_FALSE(file.open(dir.join("sub").c_str(), "w", nullptr, 0));
    ASSERT_TRUE(file.open(dir.join("sub").c_str(), "r", nullptr, raw));
    char buffer[4] = {};
    EXPECT_EQ(file.read(buffer, 4), -1);
    EXPECT_NE(file.error, 0);
    EXPECT_EQ(file.tell(), 0) << "a failed read doesn't move the position";
    EXPECT_TRUE(file.close());
    EXPECT_TRUE(fs::is_directory(dir.path() / "sub"));
}

TEST_F(FileC, ReadOnlyFileReads) {
    std::string path = dir.join("ro.txt");
    write_file(path, "content");
    ASSERT_TRUE(os::SetFileAttributesW(wide_of(path).data(), os::FILE_ATTRIBUTE_READONLY));
    FILE_c file;
    ASSERT_TRUE(file.open(path.c_str(), "r", nullptr, 0));
    EXPECT_EQ(read_text(file, 20), "content");
    EXPECT_EQ(file.write("x", 1), -1) << "opened for reading";
    EXPECT_TRUE(file.close());
    EXPECT_EQ(read_file(path), "content");
    os::SetFileAttributesW(wide_of(path).data(), os::FILE_ATTRIBUTE_NORMAL);
}

TEST_F(FileC, PathOf4095CharactersFails) {
    std::string path = dir.str() + "/missing";
    while (path.size() < 4095) path += "/" + std::string(200, 'd');
    path.resize(4095);
    FILE_c file;
    EXPECT_FALSE(file.open(path.c_str(), "w", nullptr, 0));
    EXPECT_FALSE(file.open(path.c_str(), "r", nullptr, raw));
    EXPECT_FALSE(file.truncate(0));
    EXPECT_TRUE(fs::is_empty(dir.path()));
}

TEST_F(FileC, NameWithInvalidUtf8UsesTheReplacementName) {
    std::string bad = dir.str() + "/bad\xFF.txt";
    FILE_c file;
    EXPECT_FALSE(file.open(bad.c_str(), "r", nullptr, 0));
    ASSERT_TRUE(file.open(bad.c_str(), "w", nullptr, 0));
    EXPECT_EQ(file.write("abc", 3), 3);
    EXPECT_TRUE(file.close());
    EXPECT_EQ(read_file(dir.join("bad\xEF\xBF\xBD.txt")), "abc");
}

TEST_F(FileC, FileDeletedWhileOpenKeepsItsData) {
    std::string path = dir.join("f.txt");
    FILE_c file;
    ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, raw));
    EXPECT_EQ(file.write("abc", 3), 3);
    ASSERT_TRUE(os::DeleteFileW(wide_of(path).data()));
    EXPECT_EQ(file.write("def", 3), 3);
    EXPECT_TRUE(file.seek(0));
    EXPECT_EQ(read_text(file, 10), "abcdef");
    EXPECT_EQ(file.size(), 6);
    EXPECT_TRUE(file.close());
    EXPECT_FALSE(file_manipulation_n::if_exists(path.c_str(), nullptr));
    EXPECT_FALSE(file.truncate(0)) << "the path names nothing any more";
    EXPECT_FALSE(file_manipulation_n::if_exists(path.c_str(), nullptr));
}

} // namespace
