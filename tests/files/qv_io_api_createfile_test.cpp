// What happens to a path before the system's open call: a volume pseudo-file becomes a device
// path, and an object whose short name equals a new file's long name is moved aside for the
// time of the open.
#include "files/qv_io_api_createfile.h"

#include "common/test_support.h"
#include "files/file.h"
#include "platform/os.h"
#include "utl/utl.h"
#include "utl/utl_stream.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#if !defined(_WIN32)
#include "platform/posix/syscalls.h"

#include <sys/stat.h>
#endif

namespace {

namespace fs = std::filesystem;
using os::wide_char;
using test_support::long_names_resolve_with_prefix;
using test_support::on_windows;
using test_support::on_wine;
using test_support::read_file;
using test_support::short_form;
using test_support::temp_dir_c;
using test_support::trace_capture_c;
using test_support::write_file;

const std::string guid_volume = R"(\\?\Volume{cc59759e-d00a-11dc-b6ff-806e6f6e6963})";

// The result of strip_qv_volume_suffix and what it left in the stream.
struct stripped_s {
    int result;
    std::string path;
};

stripped_s strip(const std::string& text) {
    utl_stream_c path(text.c_str());
    int result = strip_qv_volume_suffix(path);
    return {result, path.c_str()};
}

struct stripped_wide_s {
    int result;
    std::u16string path;
};

stripped_wide_s strip_wide(const std::u16string& text) {
    std::vector<wide_char> buffer(path_n::path_buffer_size, u'#');
    std::copy(text.begin(), text.end(), buffer.begin());
    buffer[text.size()] = 0;
    int result = strip_qv_volume_suffix_wide(buffer.data());
    return {result, buffer.data()};
}

std::string backslashed(std::string text) {
    for (char& c : text)
        if (c == '/') c = '\\';
    return text;
}

std::string utf8_of(const wide_char* wide) {
    if (!wide) return "<null>";
    std::vector<char> narrow(path_n::path_buffer_size, 0);
    path_n::wide_char_path_to_path(wide, narrow.data());
    return narrow.data();
}

bool exists(const std::string& path) { return fs::exists(test_support::from_utf8(path)); }

// ---- to_backslash_path

TEST(ToBackslashPath, TurnsEverySlashIntoABackslash) {
    utl_stream_c out;
    to_backslash_path("C:/dir/sub/file.txt", out);
    EXPECT_STREQ(out.c_str(), R"(C:\dir\sub\file.txt)");
    to_backslash_path("//server/share/", out);
    EXPECT_STREQ(out.c_str(), R"(\\server\share\)");
}

TEST(ToBackslashPath, ReplacesWhatTheStreamHeld) {
    utl_stream_c out("old content");
    to_backslash_path("a/b", out);
    EXPECT_STREQ(out.c_str(), R"(a\b)");
}

TEST(ToBackslashPath, BackslashesAndOtherCharactersStay) {
    utl_stream_c out;
    to_backslash_path(R"(C:\mixed/sep\x)", out);
    EXPECT_STREQ(out.c_str(), R"(C:\mixed\sep\x)");
    to_backslash_path("caf\xC3\xA9/x", out);
    EXPECT_STREQ(out.c_str(), "caf\xC3\xA9\\x");
    to_backslash_path("", out);
    EXPECT_STREQ(out.c_str(), "");
}

// ---- strip_qv_volume_suffix

TEST(StripQvVolumeSuffix, DrivePseudoFileBecomesTheDevice) {
    stripped_s s = strip("C:/$$qv-volume");
    EXPECT_EQ(s.result, 1);
    EXPECT_EQ(s.path, R"(\\.\C:)");
}

TEST(StripQvVolumeSuffix, DriveWithAnySeparatorsBecomesTheDevice) {
    for (const char* text :
         {R"(C:\$$qv-volume)", "C:$$qv-volume", "C://$$qv-volume", R"(C:\\/$$qv-volume)"}) {
        SCOPED_TRACE(text);
        stripped_s s = strip(text);
        EXPECT_EQ(s.result, 1);
        EXPECT_EQ(s.path, R"(\\.\C:)");
    }
    // The drive letter is taken as it stands.
    EXPECT_EQ(strip("d:/$$qv-volume").path, R"(\\.\d:)");
}

TEST(StripQvVolumeSuffix, PlainFileIsLeftAlone) {
    stripped_s s = strip("plain.txt");
    EXPECT_EQ(s.result, 0);
    EXPECT_EQ(s.path, "plain.txt");
    // Not even its slashes change.
    s = strip("C:/dir/plain.txt");
    EXPECT_EQ(s.result, 0);
    EXPECT_EQ(s.path, "C:/dir/plain.txt");
}

TEST(StripQvVolumeSuffix, TextShorterThanTheSuffixIsLeftAlone) {
    stripped_s s = strip("$$qv-volum");
    EXPECT_EQ(s.result, 0);
    EXPECT_EQ(s.path, "$$qv-volum");
    s = strip("");
    EXPECT_EQ(s.result, 0);
    EXPECT_EQ(s.path, "");
}

TEST(StripQvVolumeSuffix, SuffixIsCaseSensitive) {
    stripped_s s = strip("C:/$$QV-VOLUME");
    EXPECT_EQ(s.result, 0);
    EXPECT_EQ(s.path, "C:/$$QV-VOLUME");
}

TEST(StripQvVolumeSuffix, SuffixMustEndThePath) {
    stripped_s s = strip("C:/$$qv-volume/file.txt");
    EXPECT_EQ(s.result, 0);
    EXPECT_EQ(s.path, "C:/$$qv-volume/file.txt");
}

TEST(StripQvVolumeSuffix, FirstOccurrenceOfTheSuffixCuts) {
    stripped_s s = strip("C:/$$qv-volume/dir/$$qv-volume");
    EXPECT_EQ(s.result, 1);
    EXPECT_EQ(s.path, R"(\\.\C:)");
}

TEST(StripQvVolumeSuffix, LongPrefixedDriveOfLengthSixStays) {
    for (const char* text :
         {R"(\\?\C:$$qv-volume)", R"(\\?\C:\$$qv-volume)", "//?/C:/$$qv-volume"}) {
        SCOPED_TRACE(text);
        stripped_s s = strip(text);
        EXPECT_EQ(s.result, 1);
        EXPECT_EQ(s.path, R"(\\?\C:)");
    }
}

TEST(StripQvVolumeSuffix, VolumeGuidPathIsUsedAsItStands) {
    stripped_s s = strip(guid_volume + R"(\$$qv-volume)");
    EXPECT_EQ(s.result, 1);
    EXPECT_EQ(s.path, guid_volume);
    s = strip(guid_volume + "$$qv-volume");
    EXPECT_EQ(s.result, 1);
    EXPECT_EQ(s.path, guid_volume);
    // Slashes become backslashes.
    s = strip("//?/Volume{cc59759e-d00a-11dc-b6ff-806e6f6e6963}/$$qv-volume");
    EXPECT_EQ(s.result, 1);
    EXPECT_EQ(s.path, guid_volume);
}

TEST(StripQvVolumeSuffix, BareSuffixGivesAnEmptyDevicePath) {
    // Nothing is left before the suffix: no drive letter, so the empty text is used as it stands.
    stripped_s s = strip("$$qv-volume");
    EXPECT_EQ(s.result, 1);
    EXPECT_EQ(s.path, "");
}

TEST(StripQvVolumeSuffix, MountPointThatIsNoVolumeGivesZeroAndKeepsBackslashes) {
    // "C:\mount" is asked of the system as a mount point; there is none (Wine knows no mounted
    // folders, and on POSIX the name is relative and missing), so the answer is 0.
    stripped_s s = strip("C:/mount/$$qv-volume");
    EXPECT_EQ(s.result, 0);
    EXPECT_EQ(s.path, R"(C:\mount\$$qv-volume)");
    s = strip(R"(\\?\C:\mount\$$qv-volume)");
    EXPECT_EQ(s.result, 0);
    EXPECT_EQ(s.path, R"(\\?\C:\mount\$$qv-volume)");
}

TEST(StripQvVolumeSuffix, TenKilobytePathEndingInTheSuffix) {
    // Only 4095 characters are looked at, so the suffix at the end is not among them.
    std::string with_drive = "C:/" + std::string(10000, 'a') + "/$$qv-volume";
    stripped_s s = strip(with_drive);
    EXPECT_EQ(s.result, 0);
    EXPECT_EQ(s.path, backslashed(with_drive));

    std::string without_drive = std::string(10000, 'x') + "$$qv-volume";
    s = strip(without_drive);
    EXPECT_EQ(s.result, 1);
    EXPECT_EQ(s.path, std::string(path_n::longest_path, 'x'));

    std::string separators = std::string(10000, '/') + "$$qv-volume";
    s = strip(separators);
    EXPECT_EQ(s.result, 1);
    EXPECT_EQ(s.path, "");
}

// ---- strip_qv_volume_suffix_wide

TEST(StripQvVolumeSuffixWide, DrivePseudoFileBecomesTheDevice) {
    stripped_wide_s s = strip_wide(u"C:/$$qv-volume");
    EXPECT_EQ(s.result, 1);
    EXPECT_EQ(s.path, u"\\\\.\\C:");
}

TEST(StripQvVolumeSuffixWide, PlainFileIsLeftAlone) {
    stripped_wide_s s = strip_wide(u"C:/dir/plain.txt");
    EXPECT_EQ(s.result, 0);
    EXPECT_EQ(s.path, u"C:/dir/plain.txt");
    s = strip_wide(u"$$qv-volum");
    EXPECT_EQ(s.result, 0);
    EXPECT_EQ(s.path, u"$$qv-volum");
    s = strip_wide(u"C:/$$QV-VOLUME");
    EXPECT_EQ(s.result, 0);
    EXPECT_EQ(s.path, u"C:/$$QV-VOLUME");
}

TEST(StripQvVolumeSuffixWide, LongPrefixedDriveAndVolumeGuidPath) {
    stripped_wide_s s = strip_wide(u"\\\\?\\C:\\$$qv-volume");
    EXPECT_EQ(s.result, 1);
    EXPECT_EQ(s.path, u"\\\\?\\C:");
    s = strip_wide(u"//?/Volume{cc59759e-d00a-11dc-b6ff-806e6f6e6963}/$$qv-volume");
    EXPECT_EQ(s.result, 1);
    EXPECT_EQ(s.path, u"\\\\?\\Volume{cc59759e-d00a-11dc-b6ff-806e6f6e6963}");
}

TEST(StripQvVolumeSuffixWide, WritesBackWhatTheNarrowOperationLeftEvenOnFailure) {
    stripped_wide_s s = strip_wide(u"C:/mount/$$qv-volume");
    EXPECT_EQ(s.result, 0);
    EXPECT_EQ(s.path, u"C:\\mount\\$$qv-volume");
    // Characters beyond ASCII come back as they went.
    s = strip_wide(u"D:/donn\u00E9es/\u0436/$$qv-volume");
    EXPECT_EQ(s.result, 0);
    EXPECT_EQ(s.path, u"D:\\donn\u00E9es\\\u0436\\$$qv-volume");
}

TEST(StripQvVolumeSuffixWide, PathFillingMostOfTheBuffer) {
    std::u16string text = std::u16string(4000, u'x') + u"$$qv-volume";
    stripped_wide_s s = strip_wide(text);
    EXPECT_EQ(s.result, 1);
    EXPECT_EQ(s.path, std::u16string(4000, u'x'));
}

// ---- reserve_short_path_name_s

#if !defined(_WIN32)
// Counts the stat calls of the POSIX OS layer, by which its GetLongPathNameW looks for the name.
int stat_calls = 0;
int counting_stat(const char* path, struct stat* result) {
    ++stat_calls;
    return os::posix::real_syscalls().stat(path, result);
}

class stat_counter_c {
  public:
    stat_counter_c() {
        stat_calls = 0;
        os::posix::syscalls().stat = counting_stat;
    }
    ~stat_counter_c() { os::posix::syscalls().stat = os::posix::real_syscalls().stat; }
    stat_counter_c(const stat_counter_c&) = delete;
    stat_counter_c& operator=(const stat_counter_c&) = delete;
};

std::vector<std::string> qvx_files_in(const temp_dir_c& dir) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir.path()))
        if (entry.path().extension() == ".qvx") names.push_back(test_support::utf8(entry.path()));
    return names;
}
#endif

void expect_nothing_reserved(const reserve_short_path_name_s& r) {
    EXPECT_EQ(r.long_name, nullptr) << utf8_of(r.long_name);
    EXPECT_EQ(r.temp_name, nullptr) << utf8_of(r.temp_name);
    EXPECT_FALSE(r.is_renamed);
}

TEST(ReserveShortPathName, NullPathDoesNothing) {
    void* transaction = reinterpret_cast<void*>(static_cast<std::intptr_t>(0x1234));
    reserve_short_path_name_s r(nullptr, os::CREATE_ALWAYS, transaction);
    expect_nothing_reserved(r);
    EXPECT_EQ(r.transaction, transaction);
}

TEST(ReserveShortPathName, TransactionIsKept) {
    temp_dir_c dir;
    void* transaction = reinterpret_cast<void*>(static_cast<std::intptr_t>(0x5678));
    reserve_short_path_name_s r(dir.join("file.txt").c_str(), os::OPEN_EXISTING, transaction);
    EXPECT_EQ(r.transaction, transaction);
    reserve_short_path_name_s plain(dir.join("file.txt").c_str(), os::OPEN_EXISTING, nullptr);
    EXPECT_EQ(plain.transaction, nullptr);
}

#if !defined(_WIN32)
TEST(ReserveShortPathName, OpenExistingDoesNotEvenLookForTheLongName) {
    temp_dir_c dir;
    std::string path = dir.join("A file with a long name.txt");
    write_file(path, "long");
    stat_counter_c counter;
    {
        reserve_short_path_name_s r(path.c_str(), os::OPEN_EXISTING, nullptr);
        expect_nothing_reserved(r);
    }
    EXPECT_EQ(stat_calls, 0);
    {
        reserve_short_path_name_s r(nullptr, os::CREATE_ALWAYS, nullptr);
        expect_nothing_reserved(r);
    }
    EXPECT_EQ(stat_calls, 0);
    // Any other disposition asks for the long name.
    {
        reserve_short_path_name_s r(path.c_str(), os::CREATE_ALWAYS, nullptr);
        expect_nothing_reserved(r);
    }
    EXPECT_GT(stat_calls, 0);
}

TEST(ReserveShortPathName, OnPosixNoCollisionIsEverFound) {
    // This system has no short names: its GetLongPathNameW gives every existing name back as it
    // was given and fails for a missing one, so the long form never differs from the name asked
    // for and nothing is ever moved.
    temp_dir_c dir;
    std::string long_path = dir.join("A file with a long name.txt");
    write_file(long_path, "long");
    std::string short_looking = dir.join("AFILEW~1.TXT");
    write_file(short_looking, "short");
    stat_counter_c counter;
    for (os::DWORD disposition :
         {os::CREATE_NEW, os::CREATE_ALWAYS, os::OPEN_ALWAYS, os::TRUNCATE_EXISTING}) {
        SCOPED_TRACE(disposition);
        for (const std::string& path : {long_path, short_looking, dir.join("AFILEW~2.TXT")}) {
            SCOPED_TRACE(path);
            int calls_before = stat_calls;
            reserve_short_path_name_s r(path.c_str(), disposition, nullptr);
            EXPECT_GT(stat_calls, calls_before) << "the long name was not asked for";
            expect_nothing_reserved(r);
            EXPECT_TRUE(qvx_files_in(dir).empty());
        }
    }
    EXPECT_EQ(read_file(long_path), "long");
    EXPECT_EQ(read_file(short_looking), "short");
}
#else
TEST(ReserveShortPathName, OpenExistingDoesNotEvenLookForTheLongName) {
    GTEST_SKIP() << "the count of lookups is seen through the POSIX system-call table; on Windows "
                    "OpenExistingLeavesTheCollidingFileInPlace covers the disposition";
}

TEST(ReserveShortPathName, OnPosixNoCollisionIsEverFound) {
    GTEST_SKIP() << "Windows has short names; the collision tests cover it";
}
#endif

// A file with a long name and a short alias in a fresh directory; skips where the collision of
// a new name with that alias can't be shown.
class ReserveShortPathNameCollision : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!on_windows())
            GTEST_SKIP() << "this system has no short names, so no long name can collide with "
                            "one (see OnPosixNoCollisionIsEverFound)";
        long_path = dir.join(long_leaf);
        write_file(long_path, "long");
        std::string alias = short_form(long_path);
        if (alias.empty()) GTEST_SKIP() << "this volume makes no short names";
        if (on_wine() && !long_names_resolve_with_prefix(alias))
            GTEST_SKIP() << "Wine's GetLongPathNameW gives a path with the long prefix back "
                            "unchanged, so the reservation, which asks with that prefix, never "
                            "sees a short name resolve to a long one there";
        if (!long_names_resolve_with_prefix(alias))
            GTEST_SKIP() << "GetLongPathNameW does not resolve the short name " << alias;
        if (long_names_resolve_with_prefix(dir.str()))
            GTEST_SKIP() << "the scratch directory's own path is not in its long form: "
                         << dir.str();
        std::size_t cut = alias.find_last_of("\\/");
        short_leaf = cut == std::string::npos ? alias : alias.substr(cut + 1);
        ASSERT_NE(short_leaf, long_leaf);
        short_path = dir.str() + "/" + short_leaf;
    }

    std::string in_dir(const std::string& leaf) const { return dir.join(leaf); }

    // The wide name ends with `leaf` after a separator.
    static bool names_leaf(const wide_char* wide, const std::string& leaf) {
        std::string text = utf8_of(wide);
        return text.size() > leaf.size() &&
               text.compare(text.size() - leaf.size(), leaf.size(), leaf) == 0 &&
               (text[text.size() - leaf.size() - 1] == '\\' ||
                text[text.size() - leaf.size() - 1] == '/');
    }

    const std::string long_leaf = "A file with a long name.txt";
    temp_dir_c dir;
    std::string long_path, short_leaf, short_path;
};

TEST_F(ReserveShortPathNameCollision, OpenExistingLeavesTheCollidingFileInPlace) {
    reserve_short_path_name_s r(short_path.c_str(), os::OPEN_EXISTING, nullptr);
    expect_nothing_reserved(r);
    EXPECT_EQ(read_file(long_path), "long");
    EXPECT_FALSE(exists(in_dir("0.qvx")));
}

TEST_F(ReserveShortPathNameCollision, CollidingFileMovesToZeroQvxAndBack) {
    {
        reserve_short_path_name_s r(short_path.c_str(), os::CREATE_ALWAYS, nullptr);
        ASSERT_TRUE(r.is_renamed) << utf8_of(r.long_name) << " -> " << utf8_of(r.temp_name);
        EXPECT_TRUE(names_leaf(r.long_name, long_leaf)) << utf8_of(r.long_name);
        EXPECT_TRUE(names_leaf(r.temp_name, "0.qvx")) << utf8_of(r.temp_name);
        EXPECT_FALSE(exists(long_path));
        EXPECT_EQ(read_file(in_dir("0.qvx")), "long");
        // The name is free now: a new file takes it as its long name.
        write_file(short_path, "new");
    }
    EXPECT_FALSE(exists(in_dir("0.qvx")));
    EXPECT_EQ(read_file(long_path), "long");
    EXPECT_EQ(read_file(short_path), "new");
}

TEST_F(ReserveShortPathNameCollision, WhenZeroQvxExistsOneQvxIsUsed) {
    write_file(in_dir("0.qvx"), "zero");
    {
        reserve_short_path_name_s r(short_path.c_str(), os::CREATE_ALWAYS, nullptr);
        ASSERT_TRUE(r.is_renamed);
        EXPECT_TRUE(names_leaf(r.temp_name, "1.qvx")) << utf8_of(r.temp_name);
        EXPECT_FALSE(exists(long_path));
        EXPECT_EQ(read_file(in_dir("1.qvx")), "long");
        EXPECT_EQ(read_file(in_dir("0.qvx")), "zero");
    }
    EXPECT_EQ(read_file(long_path), "long");
    EXPECT_FALSE(exists(in_dir("1.qvx")));
    EXPECT_EQ(read_file(in_dir("0.qvx")), "zero");
}

TEST_F(ReserveShortPathNameCollision, FailedRenameIsTracedAndLeavesTheFile) {
    // An open that doesn't share deletion keeps the file from being renamed.
    std::u16string wide = test_support::from_utf8(long_path).u16string();
    os::HANDLE holder =
        os::CreateFileW(wide.c_str(), os::GENERIC_READ, os::FILE_SHARE_READ | os::FILE_SHARE_WRITE,
                        nullptr, os::OPEN_EXISTING, os::FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(holder, os::INVALID_HANDLE_VALUE) << "error " << os::GetLastError();
    std::string expected_start;
    trace_capture_c capture;
    {
        reserve_short_path_name_s r(short_path.c_str(), os::CREATE_ALWAYS, nullptr);
        EXPECT_FALSE(r.is_renamed);
        expected_start = "unable rename '" + utf8_of(r.long_name) + "' to tmp name '" +
                         utf8_of(r.temp_name) + "', ";
        EXPECT_TRUE(names_leaf(r.temp_name, "0.qvx")) << utf8_of(r.temp_name);
    }
    os::CloseHandle(holder);
    std::string line;
    for (const std::string& candidate : test_support::lines_of(capture.text()))
        if (candidate.find(expected_start) != std::string::npos) line = candidate;
    ASSERT_FALSE(line.empty()) << capture.text();
    EXPECT_NE(line.find(" level=4 "), std::string::npos) << line;
    EXPECT_EQ(line.back(), ')') << line;
    EXPECT_EQ(read_file(long_path), "long");
    EXPECT_FALSE(exists(in_dir("0.qvx")));
}

TEST_F(ReserveShortPathNameCollision, FailedRestoreIsTracedAndLeavesTheTempName) {
    std::string expected;
    trace_capture_c capture;
    {
        reserve_short_path_name_s r(short_path.c_str(), os::CREATE_ALWAYS, nullptr);
        ASSERT_TRUE(r.is_renamed);
        // Another file takes the long name meanwhile: the way back is barred.
        write_file(long_path, "intruder");
        utl_stream_c why;
        expected = "unable restore filename from '" + utf8_of(r.temp_name) + "' to '" +
                   utf8_of(r.long_name) + "', " +
                   utl_n::format_last_error(why, os::ERROR_ALREADY_EXISTS);
    }
    std::string line = test_support::trace_line(capture.text(), expected);
    ASSERT_FALSE(line.empty()) << "no line ending in " << expected << "\n" << capture.text();
    EXPECT_NE(line.find(" level=4 "), std::string::npos) << line;
    EXPECT_EQ(read_file(long_path), "intruder");
    EXPECT_EQ(read_file(in_dir("0.qvx")), "long");
}

} // namespace
