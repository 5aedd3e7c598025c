// path_n and the volume and shadow-copy predicates: the spelling rules of paths inside the
// library and at the system's boundary.
#include "common/test_support.h"
#include "files/file.h"
#include "utl/utl.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

using test_support::long_names_resolve_with_prefix;
using test_support::short_form;

namespace {

namespace fs = std::filesystem;
using os::wide_char;
using test_support::temp_dir_c;
using test_support::trace_capture_c;

// A bare volume-GUID path: 48 characters.
const std::string guid_path = R"(\\?\Volume{cc59759e-d00a-11dc-b6ff-806e6f6e6963})";
const std::string guid_path_slashes = "//?/Volume{cc59759e-d00a-11dc-b6ff-806e6f6e6963}";
// The shadow-copy device prefix: 46 characters.
const std::string shadow_prefix = R"(\\?\GLOBALROOT\Device\HarddiskVolumeShadowCopy)";

std::string standard(const std::string& src, bool strip_long_prefix = true) {
    std::vector<char> dst(path_n::path_buffer_size, 0);
    path_n::standard_dir_path(src.c_str(), dst.data(), strip_long_prefix);
    return dst.data();
}

std::string normalized(const std::string& path) {
    std::vector<char> buffer(path_n::path_buffer_size, 0);
    std::memcpy(buffer.data(), path.c_str(), path.size() + 1);
    path_n::_normalize_path(buffer.data());
    return buffer.data();
}

std::u16string wide_path(const char* src, bool add_long_prefix) {
    std::vector<wide_char> dst(path_n::path_buffer_size, u'#');
    path_n::path_to_wide_char_path(src, dst.data(), add_long_prefix);
    return dst.data();
}

std::u16string wide_path(const std::string& src, bool add_long_prefix) {
    return wide_path(src.c_str(), add_long_prefix);
}

std::string drive_name(const char* src) {
    std::vector<char> dst(path_n::path_buffer_size, '#');
    dst.back() = 0;
    if (!path_n::drive_name_from_path(src, dst.data())) return "<false>";
    return dst.data();
}

std::string stream_file(const std::string& src) {
    std::vector<char> dst(path_n::path_buffer_size + 8, 0);
    std::strcpy(dst.data(), "<untouched>");
    if (!path_n::stream_path_to_file(src.c_str(), dst.data()))
        return "<false>:" + std::string(dst.data());
    return dst.data();
}

std::string shadow_root(const char* src) {
    std::vector<char> dst(path_n::path_buffer_size, 0);
    std::strcpy(dst.data(), "<untouched>");
    char* result = path_n::get_root_volumeshadowcopy(src, dst.data());
    if (!result) return "<null>:" + std::string(dst.data());
    EXPECT_EQ(result, dst.data());
    return result;
}

// ---- standard_dir_path

TEST(StandardDirPath, DriveWithRepeatedSeparatorsAndTrailingBackslash) {
    EXPECT_EQ(standard(R"(C:\\dir\\\sub\)"), "C:/dir/sub");
}

TEST(StandardDirPath, UncShareWithTrailingBackslash) {
    EXPECT_EQ(standard(R"(\\server\share\)"), R"(\\server/share)");
}

TEST(StandardDirPath, DriveRootKeepsItsSlash) {
    EXPECT_EQ(standard(R"(C:\)"), "C:/");
    EXPECT_EQ(standard("d:/"), "d:/");
}

TEST(StandardDirPath, DriveOnlyStaysAsItIs) { EXPECT_EQ(standard("C:"), "C:"); }

TEST(StandardDirPath, SingleBackslashBecomesSlash) { EXPECT_EQ(standard(R"(\)"), "/"); }

TEST(StandardDirPath, LongPrefixIsStrippedOnDemand) {
    EXPECT_EQ(standard(R"(\\?\C:\a\)", true), "C:/a");
}

TEST(StandardDirPath, KeptLongPrefixKeepsSixCharacters) {
    EXPECT_EQ(standard(R"(\\?\C:\a\)", false), R"(\\?\C:/a)");
    EXPECT_EQ(standard(R"(\\?\C:\\a)", false), R"(\\?\C:/a)");
    EXPECT_EQ(standard(R"(\\?\UNC\server\share\)", false), R"(\\?\UNC/server/share)");
}

TEST(StandardDirPath, ShadowCopyDeviceGetsTrailingSlash) {
    EXPECT_EQ(standard(shadow_prefix + "5", true), "GLOBALROOT/Device/HarddiskVolumeShadowCopy5/");
    EXPECT_EQ(standard(shadow_prefix + "5", false),
              R"(\\?\GLOBALROOT/Device/HarddiskVolumeShadowCopy5/)");
}

TEST(StandardDirPath, ShadowCopyDeviceWithTrailingSeparatorKeepsOne) {
    EXPECT_EQ(standard(shadow_prefix + "5\\\\", true),
              "GLOBALROOT/Device/HarddiskVolumeShadowCopy5/");
}

TEST(StandardDirPath, ShadowCopyPathBelowDeviceKeepsItsEndingAndDotSegments) {
    EXPECT_EQ(standard(shadow_prefix + R"(5\dir\.\sub\)", true),
              "GLOBALROOT/Device/HarddiskVolumeShadowCopy5/dir/./sub/");
    EXPECT_EQ(standard(shadow_prefix + R"(5\dir\..)", true),
              "GLOBALROOT/Device/HarddiskVolumeShadowCopy5/dir/..");
}

TEST(StandardDirPath, InternalShadowCopyFormGetsTrailingSlash) {
    EXPECT_EQ(standard("GLOBALROOT/Device/HarddiskVolumeShadowCopy3"),
              "GLOBALROOT/Device/HarddiskVolumeShadowCopy3/");
}

TEST(StandardDirPath, DotSegmentsAreResolved) { EXPECT_EQ(standard("a/./b/../c"), "a/c"); }

TEST(StandardDirPath, HiddenNameSetsNoDotFlag) {
    EXPECT_EQ(standard("a/.hidden"), "a/.hidden");
    EXPECT_EQ(standard(R"(a\.hidden\)"), "a/.hidden");
}

TEST(StandardDirPath, NameBeginningWithTwoDotsSurvivesNormalisation) {
    EXPECT_EQ(standard("a/..hidden"), "a/..hidden");
    EXPECT_EQ(normalized("a/..hidden"), "a/..hidden");
}

TEST(StandardDirPath, LeadingParentAbandonsNormalisation) { EXPECT_EQ(standard("../a/b"), ".."); }

TEST(StandardDirPath, ParentBeyondFirstSegmentAbandonsNormalisation) {
    EXPECT_EQ(standard("a/../../b"), "a");
}

TEST(StandardDirPath, ParentOfDirectoryOnDriveLeavesDriveRoot) {
    EXPECT_EQ(standard(R"(C:\a\..)"), "C:/");
}

TEST(StandardDirPath, DotAtStartIsResolved) {
    EXPECT_EQ(standard("./a/b"), "a/b");
    EXPECT_EQ(standard("."), ".");
}

TEST(StandardDirPath, RootedPathKeepsLeadingSlash) {
    EXPECT_EQ(standard("/usr/./lib/../bin/"), "/usr/bin");
}

TEST(StandardDirPath, ParentsResolveInOrder) { EXPECT_EQ(standard("a/b/c/../../d"), "a/d"); }

TEST(StandardDirPath, SeparatorsOfEitherKindCollapseToOne) {
    EXPECT_EQ(standard(R"(a\/\\//b)"), "a/b");
}

TEST(StandardDirPath, TwoCharactersWithoutColonAreCopied) { EXPECT_EQ(standard("ab"), "ab"); }

TEST(StandardDirPath, InputIsCutAt4095Characters) {
    EXPECT_EQ(standard(std::string(5000, 'a')), std::string(4095, 'a'));
    EXPECT_EQ(standard(std::string(4095, 'b')), std::string(4095, 'b'));
    // The character at source position 4095 is never read: here the last 'b', so that only the
    // separator before it remains, and that is then dropped as a trailing one.
    EXPECT_EQ(standard(std::string(4094, 'a') + "/b"), std::string(4094, 'a'));
}

TEST(StandardDirPath, VolumeGuidPathKeepsPrefixAndDropsTrailingBackslash) {
    EXPECT_EQ(standard(guid_path + "\\", true), guid_path);
    EXPECT_EQ(standard(guid_path + R"(\dir\sub\)", true), guid_path + "/dir/sub");
    EXPECT_EQ(standard(guid_path + R"(\dir\sub\)", false), guid_path + "/dir/sub");
}

// ---- _normalize_path

TEST(NormalizePath, LeadingParentLeavesDotDot) { EXPECT_EQ(normalized("../a"), ".."); }

TEST(NormalizePath, LeadingParentAbandonsTheRest) {
    EXPECT_EQ(normalized("../a/b"), "..");
    EXPECT_EQ(normalized("a/../../b"), "a");
}

TEST(NormalizePath, ParentOfOnlySegmentGivesDot) { EXPECT_EQ(normalized("a/.."), "."); }

TEST(NormalizePath, AbandonedPathIsLeftAsSplit) {
    std::vector<char> buffer(path_n::path_buffer_size, 0);
    std::strcpy(buffer.data(), "a/../../b");
    path_n::_normalize_path(buffer.data());
    EXPECT_EQ(std::string(buffer.data(), 10), std::string("a\0..\0..\0b\0", 10));
}

TEST(NormalizePath, DotSegmentsAreRemoved) {
    EXPECT_EQ(normalized("a/./b/."), "a/b");
    EXPECT_EQ(normalized("./."), ".");
}

TEST(NormalizePath, ParentRemovesSegmentBeforeIt) {
    EXPECT_EQ(normalized("a/b/../c"), "a/c");
    EXPECT_EQ(normalized("x/y/../../z"), "z");
}

TEST(NormalizePath, RootedPathKeepsLeadingSlash) { EXPECT_EQ(normalized("/a/../b"), "/b"); }

TEST(NormalizePath, DriveAloneGetsItsSlash) { EXPECT_EQ(normalized("C:/a/.."), "C:/"); }

TEST(NormalizePath, EmptySegmentsDisappear) { EXPECT_EQ(normalized("a//b/./"), "a/b"); }

TEST(NormalizePath, NamesWithDotsSurvive) {
    EXPECT_EQ(normalized("a/..hidden/.x/y."), "a/..hidden/.x/y.");
}

// ---- path_to_wide_char_path and wide_char_path_to_path

TEST(PathToWideCharPath, UncWithPrefixGetsLongUncForm) {
    EXPECT_EQ(wide_path(R"(\\server\share)", true), uR"(\\?\UNC\server\share)");
}

TEST(PathToWideCharPath, RelativePathWithPrefixGetsBackslashesAndNoPrefix) {
    EXPECT_EQ(wide_path("dir/sub/file.txt", true), uR"(dir\sub\file.txt)");
}

TEST(PathToWideCharPath, DrivePathWithPrefix) {
    EXPECT_EQ(wide_path("C:/dir/file", true), uR"(\\?\C:\dir\file)");
    EXPECT_EQ(wide_path("C:/", true), uR"(\\?\C:\)");
}

TEST(PathToWideCharPath, DrivePathWithoutPrefix) {
    EXPECT_EQ(wide_path("C:/dir//file/", false), uR"(C:\dir\file)");
}

TEST(PathToWideCharPath, LongPrefixInputIsNormalisedAndPrefixedAgain) {
    EXPECT_EQ(wide_path(R"(\\?\C:\a\.\b\)", true), uR"(\\?\C:\a\b)");
    EXPECT_EQ(wide_path(R"(\\?\C:\a\.\b\)", false), uR"(C:\a\b)");
}

TEST(PathToWideCharPath, UncWithoutPrefix) {
    EXPECT_EQ(wide_path(R"(\\server\share\dir\)", false), uR"(\\server\share\dir)");
}

TEST(PathToWideCharPath, ShadowCopyDeviceWithPrefix) {
    EXPECT_EQ(wide_path(shadow_prefix + "5", true),
              uR"(\\?\GLOBALROOT\Device\HarddiskVolumeShadowCopy5\)");
    EXPECT_EQ(wide_path(shadow_prefix + R"(5\dir\file)", true),
              uR"(\\?\GLOBALROOT\Device\HarddiskVolumeShadowCopy5\dir\file)");
}

TEST(PathToWideCharPath, VolumeGuidPathOnlyGetsBackslashes) {
    std::u16string expected = uR"(\\?\Volume{cc59759e-d00a-11dc-b6ff-806e6f6e6963}\dir\.\)";
    EXPECT_EQ(wide_path(guid_path_slashes + "/dir/./", true), expected);
    EXPECT_EQ(wide_path(guid_path_slashes + "/dir/./", false), expected);
}

TEST(PathToWideCharPath, AbsolutePosixPathGetsNoPrefix) {
    EXPECT_EQ(wide_path("/usr/lib/", true), uR"(\usr\lib)");
}

TEST(PathToWideCharPath, NullOrEmptySourceGivesEmpty) {
    EXPECT_EQ(wide_path(nullptr, true), u"");
    EXPECT_EQ(wide_path("", true), u"");
}

TEST(PathToWideCharPath, Utf8IsConverted) {
    // "C:/données/файл"
    EXPECT_EQ(wide_path("C:/donn\xC3\xA9"
                        "es/\xD1\x84\xD0\xB0\xD0\xB9\xD0\xBB",
                        true),
              u"\\\\?\\C:\\donn\u00E9es\\\u0444\u0430\u0439\u043B");
}

TEST(PathToWideCharPath, PrefixedFormIsCutAt4095Characters) {
    std::u16string wide = wide_path("C:/" + std::string(5000, 'a'), true);
    ASSERT_EQ(wide.size(), 4095u);
    EXPECT_EQ(wide.substr(0, 7), uR"(\\?\C:\)");
    EXPECT_EQ(wide.substr(7), std::u16string(4088, u'a'));
}

TEST(WideCharPathToPath, ConvertsAndKeepsSeparators) {
    std::vector<char> dst(path_n::path_buffer_size, '#');
    path_n::wide_char_path_to_path(u"\\\\?\\C:\\donn\u00E9es\\x", dst.data());
    EXPECT_EQ(std::string(dst.data()), "\\\\?\\C:\\donn\xC3\xA9"
                                       "es\\x");
}

TEST(WideCharPathToPath, NullGivesEmpty) {
    std::vector<char> dst(path_n::path_buffer_size, '#');
    path_n::wide_char_path_to_path(nullptr, dst.data());
    EXPECT_EQ(dst[0], 0);
}

TEST(WideCharPathToPath, LongestPathFillsBuffer) {
    std::u16string wide(4095, u'x');
    std::vector<char> dst(path_n::path_buffer_size, '#');
    path_n::wide_char_path_to_path(wide.c_str(), dst.data());
    EXPECT_EQ(std::string(dst.data()), std::string(4095, 'x'));
}

TEST(WideCharPathToPath, TooLongForBufferGivesEmptyWithTrace) {
    trace_capture_c capture;
    std::u16string wide(2100, u'\u00E9');
    std::vector<char> dst(path_n::path_buffer_size, '#');
    path_n::wide_char_path_to_path(wide.c_str(), dst.data());
    EXPECT_EQ(dst[0], 0);
    EXPECT_NE(
        capture.text().find("Fail to convert from UNICODE to UTF-8, short buffer 4096 < 4201"),
        std::string::npos)
        << capture.text();
}

// ---- is_short_name

TEST(IsShortName, NullIsFalse) { EXPECT_FALSE(path_n::is_short_name(nullptr)); }

TEST(IsShortName, MissingPathIsFalse) {
    temp_dir_c dir;
    EXPECT_FALSE(path_n::is_short_name(dir.join("missing").c_str()));
}

TEST(IsShortName, LongNameOfExistingDirectoryIsFalse) {
    temp_dir_c dir;
    std::string path = dir.join("a directory with a long name");
    fs::create_directory(test_support::from_utf8(path));
    EXPECT_FALSE(path_n::is_short_name(path.c_str()));
    EXPECT_FALSE(path_n::is_short_name(dir.str().c_str()));
}

TEST(IsShortName, NameThatLooksShortIsItsOwnName) {
    temp_dir_c dir;
    std::string path = dir.join("SHORTN~1");
    fs::create_directory(test_support::from_utf8(path));
    EXPECT_FALSE(path_n::is_short_name(path.c_str()));
}

TEST(IsShortName, PosixSystemGivesNameBackAsItsShortForm) {
    if (test_support::on_windows()) GTEST_SKIP() << "Windows has short names of its own";
    temp_dir_c dir;
    std::string path = dir.join("a directory with a long name");
    fs::create_directory(test_support::from_utf8(path));
    std::vector<wide_char> wide(path_n::path_buffer_size), short_wide(path_n::path_buffer_size);
    path_n::path_to_wide_char_path(path.c_str(), wide.data(), true);
    std::u16string given = wide.data();
    os::DWORD n = os::GetShortPathNameW(wide.data(), short_wide.data(),
                                        static_cast<os::DWORD>(path_n::path_buffer_size));
    EXPECT_EQ(n, given.size());
    EXPECT_EQ(std::u16string(short_wide.data()), given);
    // Too little room: the room needed, terminator included.
    EXPECT_EQ(os::GetShortPathNameW(wide.data(), short_wide.data(), 3), given.size() + 1);
    path_n::path_to_wide_char_path(dir.join("missing").c_str(), wide.data(), true);
    os::SetLastError(0);
    EXPECT_EQ(os::GetShortPathNameW(wide.data(), short_wide.data(), 4096), 0u);
    EXPECT_EQ(os::GetLastError(), os::ERROR_FILE_NOT_FOUND);
}

TEST(IsShortName, ShortNameOfLongNamedDirectoryIsTrue) {
    if (!test_support::on_windows()) GTEST_SKIP() << "short names exist only under Windows";
    temp_dir_c dir;
    std::string path = dir.join("a directory with a long name");
    fs::create_directory(test_support::from_utf8(path));
    std::string short_path = short_form(path);
    if (short_path.empty()) GTEST_SKIP() << "this volume makes no short names";
    if (test_support::on_wine() && !long_names_resolve_with_prefix(short_path))
        GTEST_SKIP() << "Wine's GetLongPathNameW gives a path with the long prefix back unchanged, "
                        "so no short name is told from its long name there";
    EXPECT_TRUE(path_n::is_short_name(short_path.c_str())) << short_path;
}

// ---- drive_name_from_path

TEST(DriveNameFromPath, NullArgumentsAreFalse) {
    char dst[8] = {};
    EXPECT_FALSE(path_n::drive_name_from_path(nullptr, dst));
    EXPECT_FALSE(path_n::drive_name_from_path("C:/x", nullptr));
}

TEST(DriveNameFromPath, VolumeGuidPathGivesVolumeWithBackslash) {
    EXPECT_EQ(drive_name((guid_path + R"(\dir\file)").c_str()), guid_path + "\\");
    EXPECT_EQ(drive_name((guid_path_slashes + "/dir").c_str()), guid_path + "\\");
    EXPECT_EQ(drive_name(guid_path.c_str()), guid_path + "\\");
}

TEST(DriveNameFromPath, ShadowCopyPathGivesDevice) {
    EXPECT_EQ(drive_name((shadow_prefix + R"(12\dir\file)").c_str()), shadow_prefix + "12");
}

TEST(DriveNameFromPath, ShorterThanTwoCharactersIsFalse) {
    EXPECT_EQ(drive_name("C"), "<false>");
    EXPECT_EQ(drive_name(""), "<false>");
}

TEST(DriveNameFromPath, DriveLetterGivesUpperCaseRoot) {
    EXPECT_EQ(drive_name("c:/dir/file"), R"(C:\)");
    EXPECT_EQ(drive_name("D:"), R"(D:\)");
    EXPECT_EQ(drive_name("e:relative"), R"(E:\)");
}

TEST(DriveNameFromPath, UncGivesServerAndShare) {
    EXPECT_EQ(drive_name(R"(\\server\share\dir\file)"), R"(\\server\share\)");
    EXPECT_EQ(drive_name(R"(\\server/share/dir)"), R"(\\server\share\)");
}

TEST(DriveNameFromPath, UncWithoutDirectoryGetsClosingBackslash) {
    EXPECT_EQ(drive_name(R"(\\server\share)"), R"(\\server\share\)");
    EXPECT_EQ(drive_name(R"(\\server)"), R"(\\server\)");
}

TEST(DriveNameFromPath, TwoBackslashesAloneGetAThird) { EXPECT_EQ(drive_name(R"(\\)"), R"(\\\)"); }

TEST(DriveNameFromPath, OtherFormsAreFalse) {
    EXPECT_EQ(drive_name("/usr/lib"), "<false>");
    EXPECT_EQ(drive_name("dir/file"), "<false>");
    EXPECT_EQ(drive_name("1:/x"), "<false>");
    EXPECT_EQ(drive_name("//server/share"), "<false>");
}

// ---- is_full_path_name

TEST(IsFullPathName, NullIsFalse) { EXPECT_FALSE(path_n::is_full_path_name(nullptr)); }

TEST(IsFullPathName, SlashOrTildeAtStartIsFull) {
    EXPECT_TRUE(path_n::is_full_path_name("/usr"));
    EXPECT_TRUE(path_n::is_full_path_name("/"));
    EXPECT_TRUE(path_n::is_full_path_name("~/x"));
}

TEST(IsFullPathName, DriveWithSeparatorIsFull) {
    EXPECT_TRUE(path_n::is_full_path_name("C:/x"));
    EXPECT_TRUE(path_n::is_full_path_name(R"(c:\x)"));
    EXPECT_TRUE(path_n::is_full_path_name("C:/"));
}

TEST(IsFullPathName, PlainDriveIsNotFull) {
    EXPECT_FALSE(path_n::is_full_path_name("C:"));
    EXPECT_FALSE(path_n::is_full_path_name("C:dir"));
}

TEST(IsFullPathName, UncNeedsAThirdCharacter) {
    EXPECT_TRUE(path_n::is_full_path_name(R"(\\s)"));
    EXPECT_TRUE(path_n::is_full_path_name(R"(\\server\share)"));
    EXPECT_FALSE(path_n::is_full_path_name(R"(\\)"));
}

TEST(IsFullPathName, RelativePathsAreNotFull) {
    EXPECT_FALSE(path_n::is_full_path_name("dir/x"));
    EXPECT_FALSE(path_n::is_full_path_name(""));
    EXPECT_FALSE(path_n::is_full_path_name(R"(.\x)"));
    EXPECT_FALSE(path_n::is_full_path_name("1:/x"));
    EXPECT_FALSE(path_n::is_full_path_name(R"(\x)"));
}

// ---- is_file_in_dir

TEST(IsFileInDir, SiblingWithSamePrefixIsNotInDirectory) {
    EXPECT_FALSE(path_n::is_file_in_dir("C:/ab", "C:/a", true));
    EXPECT_FALSE(path_n::is_file_in_dir("C:/ab", "C:/a", false));
}

TEST(IsFileInDir, FileBelowDirectoryIsInIt) {
    EXPECT_TRUE(path_n::is_file_in_dir("C:/a/b", "C:/a", true));
    EXPECT_TRUE(path_n::is_file_in_dir("C:/a/b", "C:/a", false));
}

TEST(IsFileInDir, DirectoryItselfIsInIt) {
    EXPECT_TRUE(path_n::is_file_in_dir("C:/a", "C:/a", true));
    EXPECT_TRUE(path_n::is_file_in_dir("C:/a", "C:/a", false));
}

TEST(IsFileInDir, BackslashAfterDirectoryCounts) {
    EXPECT_TRUE(path_n::is_file_in_dir(R"(C:/a\b)", "C:/a", true));
    EXPECT_TRUE(path_n::is_file_in_dir(R"(C:/a\b)", "C:/a", false));
}

TEST(IsFileInDir, CaseSensitiveIgnoresTrailingSeparatorOfDirectory) {
    EXPECT_TRUE(path_n::is_file_in_dir("C:/a", "C:/a/", true));
    EXPECT_TRUE(path_n::is_file_in_dir("C:/a/b", "C:/a/", true));
    EXPECT_TRUE(path_n::is_file_in_dir(R"(C:/a\b)", "C:/a/", true));
    EXPECT_TRUE(path_n::is_file_in_dir("C:/a/b", R"(C:/a\)", true));
}

TEST(IsFileInDir, CaseInsensitiveComparesTrailingSeparatorOfDirectory) {
    EXPECT_TRUE(path_n::is_file_in_dir("C:/a/b", "C:/a/", false));
    EXPECT_TRUE(path_n::is_file_in_dir("c:/A/b", "C:/a/", false));
    EXPECT_FALSE(path_n::is_file_in_dir(R"(C:/a\b)", "C:/a/", false));
    EXPECT_FALSE(path_n::is_file_in_dir("C:/a", "C:/a/", false));
}

TEST(IsFileInDir, CaseMattersOnlyWhenAskedFor) {
    EXPECT_FALSE(path_n::is_file_in_dir("c:/A/b", "C:/a", true));
    EXPECT_TRUE(path_n::is_file_in_dir("c:/A/b", "C:/a", false));
}

TEST(IsFileInDir, DirectoryLongerThanFileIsFalse) {
    EXPECT_FALSE(path_n::is_file_in_dir("C:/a", "C:/abc", true));
    EXPECT_FALSE(path_n::is_file_in_dir("C:/a", "C:/abc", false));
}

TEST(IsFileInDir, NonAsciiNamesCompareWithoutCase) {
    // "C:/Ärger/x" in "c:/ärger"
    EXPECT_TRUE(path_n::is_file_in_dir("C:/\xC3\x84rger/x", "c:/\xC3\xA4rger", false));
    EXPECT_FALSE(path_n::is_file_in_dir("C:/\xC3\x84rger/x", "c:/\xC3\xA4rger", true));
}

// ---- is_stream_in_path and stream_path_to_file

TEST(IsStreamInPath, NullOrShortFileIsFalse) {
    EXPECT_FALSE(path_n::is_stream_in_path(nullptr, R"(C:\f:s)"));
    EXPECT_FALSE(path_n::is_stream_in_path(R"(C:\f)", nullptr));
    EXPECT_FALSE(path_n::is_stream_in_path("f", "f:s"));
}

TEST(IsStreamInPath, FilePartOfStreamPathIsTrue) {
    EXPECT_TRUE(path_n::is_stream_in_path(R"(C:\dir\file)", R"(C:\dir\file:stream)"));
}

TEST(IsStreamInPath, StreamPathItselfIsTrue) {
    EXPECT_TRUE(path_n::is_stream_in_path(R"(C:\dir\file:stream)", R"(C:\dir\file:stream)"));
}

TEST(IsStreamInPath, CaseIsIgnored) {
    EXPECT_TRUE(path_n::is_stream_in_path(R"(c:\DIR\FILE)", R"(C:\dir\file:stream)"));
}

TEST(IsStreamInPath, PathWithoutStreamIsFalse) {
    EXPECT_FALSE(path_n::is_stream_in_path(R"(C:\dir\file)", R"(C:\dir\file)"));
    EXPECT_FALSE(path_n::is_stream_in_path("C:/dir", "C:/dir"));
}

TEST(IsStreamInPath, OtherFileIsFalse) {
    EXPECT_FALSE(path_n::is_stream_in_path(R"(C:\dir\fil)", R"(C:\dir\file:stream)"));
    EXPECT_FALSE(path_n::is_stream_in_path(R"(C:\dir\filex)", R"(C:\dir\file:stream)"));
    EXPECT_FALSE(path_n::is_stream_in_path(R"(C:\dir\fil2)", R"(C:\dir\file:s)"));
}

TEST(IsStreamInPath, RelativeStreamPath) {
    EXPECT_TRUE(path_n::is_stream_in_path("file", "file:stream"));
    EXPECT_TRUE(path_n::is_stream_in_path("dir/file:s", "dir/file:s:$DATA"));
    EXPECT_FALSE(path_n::is_stream_in_path("dir/file", "dir/file:s:$DATA"));
}

TEST(StreamPathToFile, CutsAtStreamName) {
    EXPECT_EQ(stream_file(R"(C:\dir\file:stream)"), R"(C:\dir\file)");
}

TEST(StreamPathToFile, CutsAtLastColon) {
    EXPECT_EQ(stream_file(R"(C:\dir\file:stream:$DATA)"), R"(C:\dir\file:stream)");
}

TEST(StreamPathToFile, PathWithoutStreamIsFalse) {
    EXPECT_EQ(stream_file(R"(C:\dir\file)"), "<false>:<untouched>");
}

TEST(StreamPathToFile, LengthMustBeTwoTo4095) {
    EXPECT_EQ(stream_file(":"), "<false>:<untouched>");
    EXPECT_EQ(stream_file("a:"), "a");
    std::string longest = "f:" + std::string(4093, 's');
    EXPECT_EQ(stream_file(longest), "f");
    EXPECT_EQ(stream_file(longest + "s"), "<false>:<untouched>");
}

TEST(StreamPathToFile, NullIsFalse) {
    char dst[8] = {};
    EXPECT_FALSE(path_n::stream_path_to_file(nullptr, dst));
}

// ---- shadow copies

TEST(GetRootVolumeShadowCopy, CutsEverythingBelowDevice) {
    EXPECT_EQ(shadow_root((shadow_prefix + R"(5\dir\file)").c_str()), shadow_prefix + "5");
}

TEST(GetRootVolumeShadowCopy, DeviceLosesTrailingSeparator) {
    EXPECT_EQ(shadow_root((shadow_prefix + "17\\").c_str()), shadow_prefix + "17");
    EXPECT_EQ(shadow_root((shadow_prefix + "17").c_str()), shadow_prefix + "17");
}

TEST(GetRootVolumeShadowCopy, SpellingOfSeparatorsIsKept) {
    EXPECT_EQ(shadow_root("//?/GLOBALROOT/Device/HarddiskVolumeShadowCopy5/dir"),
              "//?/GLOBALROOT/Device/HarddiskVolumeShadowCopy5");
}

TEST(GetRootVolumeShadowCopy, OtherPathIsNullAndTargetUntouched) {
    EXPECT_EQ(shadow_root("C:/dir"), "<null>:<untouched>");
    EXPECT_EQ(shadow_root("GLOBALROOT/Device/HarddiskVolumeShadowCopy5"), "<null>:<untouched>");
    EXPECT_EQ(shadow_root(nullptr), "<null>:<untouched>");
}

TEST(IsVolumeShadowCopyPath, BackslashFormIsTrue) {
    EXPECT_TRUE(is_volumeshadowcopy_path((shadow_prefix + "1").c_str()));
    EXPECT_TRUE(is_volumeshadowcopy_path((shadow_prefix + R"(1\dir)").c_str()));
    EXPECT_TRUE(is_volumeshadowcopy_path(shadow_prefix.c_str()));
}

TEST(IsVolumeShadowCopyPath, SlashesCountAsBackslashes) {
    EXPECT_TRUE(is_volumeshadowcopy_path("//?/GLOBALROOT/Device/HarddiskVolumeShadowCopy1"));
    EXPECT_TRUE(is_volumeshadowcopy_path(R"(\/?\GLOBALROOT/Device\HarddiskVolumeShadowCopy1)"));
}

TEST(IsVolumeShadowCopyPath, OtherPathsAreFalse) {
    EXPECT_FALSE(is_volumeshadowcopy_path(nullptr));
    EXPECT_FALSE(is_volumeshadowcopy_path("GLOBALROOT/Device/HarddiskVolumeShadowCopy1"));
    EXPECT_FALSE(is_volumeshadowcopy_path(R"(\\?\GLOBALROOT\Device\HarddiskVolume1)"));
    EXPECT_FALSE(is_volumeshadowcopy_path(R"(\\.\GLOBALROOT\Device\HarddiskVolumeShadowCopy1)"));
    EXPECT_FALSE(is_volumeshadowcopy_path(shadow_prefix.substr(0, 45).c_str()));
}

// ---- is_volume_guid_path

TEST(IsVolumeGuidPath, BarePathIsTrueEitherWay) {
    ASSERT_EQ(guid_path.size(), path_n::volume_guid_path_length);
    EXPECT_TRUE(is_volume_guid_path(guid_path.c_str(), false));
    EXPECT_TRUE(is_volume_guid_path(guid_path.c_str(), true));
}

TEST(IsVolumeGuidPath, BarePathMayEndInOneSeparator) {
    EXPECT_TRUE(is_volume_guid_path((guid_path + "\\").c_str(), false));
    EXPECT_TRUE(is_volume_guid_path((guid_path + "/").c_str(), false));
    EXPECT_FALSE(is_volume_guid_path((guid_path + "\\\\").c_str(), false));
}

TEST(IsVolumeGuidPath, FortyNineCharactersWithoutSeparatorNeedAllowRest) {
    EXPECT_FALSE(is_volume_guid_path((guid_path + "x").c_str(), false));
    EXPECT_TRUE(is_volume_guid_path((guid_path + "x").c_str(), true));
}

TEST(IsVolumeGuidPath, PathBelowVolumeNeedsAllowRest) {
    EXPECT_FALSE(is_volume_guid_path((guid_path + R"(\dir\file)").c_str(), false));
    EXPECT_TRUE(is_volume_guid_path((guid_path + R"(\dir\file)").c_str(), true));
}

TEST(IsVolumeGuidPath, ShorterThan48IsFalse) {
    std::string short_path = guid_path.substr(0, 47);
    EXPECT_FALSE(is_volume_guid_path(short_path.c_str(), false));
    EXPECT_FALSE(is_volume_guid_path(short_path.c_str(), true));
}

TEST(IsVolumeGuidPath, SeparatorsOfEitherKind) {
    EXPECT_TRUE(is_volume_guid_path(guid_path_slashes.c_str(), false));
    std::string mixed = guid_path;
    mixed[1] = '/';
    EXPECT_TRUE(is_volume_guid_path(mixed.c_str(), false));
}

TEST(IsVolumeGuidPath, DotInPlaceOfQuestionMark) {
    std::string dotted = guid_path;
    dotted[2] = '.';
    EXPECT_TRUE(is_volume_guid_path(dotted.c_str(), false));
}

TEST(IsVolumeGuidPath, OtherCharacterInFirstFourIsFalse) {
    for (std::size_t at : {0u, 1u, 2u, 3u}) {
        std::string other = guid_path;
        other[at] = 'x';
        EXPECT_FALSE(is_volume_guid_path(other.c_str(), true)) << other;
    }
}

TEST(IsVolumeGuidPath, WordVolumeInAnyCase) {
    std::string upper = guid_path, lower = guid_path, other = guid_path;
    upper.replace(4, 6, "VOLUME");
    lower.replace(4, 6, "volume");
    other.replace(4, 6, "Volumx");
    EXPECT_TRUE(is_volume_guid_path(upper.c_str(), false));
    EXPECT_TRUE(is_volume_guid_path(lower.c_str(), false));
    EXPECT_FALSE(is_volume_guid_path(other.c_str(), true));
}

TEST(IsVolumeGuidPath, OnlyLengthSeparatorsAndWordAreChecked) {
    std::string loose = R"(\\?\Volume)" + std::string(38, 'x');
    EXPECT_TRUE(is_volume_guid_path(loose.c_str(), false));
}

TEST(IsVolumeGuidPath, NullIsFalse) { EXPECT_FALSE(is_volume_guid_path(nullptr, true)); }

// ---- is_volume_mount_root

TEST(IsVolumeMountRoot, NullIsFalse) { EXPECT_FALSE(is_volume_mount_root(nullptr)); }

TEST(IsVolumeMountRoot, RootOfVolumeIsMountRoot) {
    temp_dir_c dir;
    std::string root = test_support::utf8(dir.path().root_path());
    ASSERT_FALSE(root.empty());
    EXPECT_TRUE(is_volume_mount_root(root.c_str())) << root;
}

TEST(IsVolumeMountRoot, DirectoryBelowRootIsNot) {
    temp_dir_c dir;
    EXPECT_FALSE(is_volume_mount_root(dir.str().c_str())) << dir.str();
}

TEST(IsVolumeMountRoot, MissingPathIsNot) {
    temp_dir_c dir;
    EXPECT_FALSE(is_volume_mount_root(dir.join("missing/deeper").c_str()));
}

} // namespace
