// trc: trace lines in the file, the settings file, the directory switch.
#include "support/trc.h"

#include "common/test_support.h"
#include "platform/os.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <ctime>
#include <regex>
#include <string>
#include <vector>

using test_support::count_of;
using test_support::read_file;
using test_support::temp_dir_c;
using test_support::trace_capture_c;
using test_support::write_file;

using test_support::lines_of;

namespace {

// Re-reads the settings from a file with the given content.
bool apply_settings(const temp_dir_c& dir, const std::string& content) {
    std::string file = dir.join("settings.trc");
    write_file(file, content);
    std::uint64_t size = 0;
    return qvtr_reparse_file(nullptr, size, file.c_str());
}

// Prints one line at each level the system uses, the level in the text.
void print_every_level() {
    QVTR_SCOPE(trace, "trc_test_n::print_every_level", "trc_test");
    for (unsigned int level : {1u, 4u, 8u, 32u, 64u, 128u})
        trace.print(level, __LINE__, "at %u\n", level);
}

bool has_level_line(const std::string& text, unsigned int level) {
    return text.find("at " + std::to_string(level) + "\n") != std::string::npos ||
           text.find("at " + std::to_string(level) + "\r\n") != std::string::npos;
}

} // namespace

TEST(trc_file, a_line_carries_time_thread_level_source_line_and_function) {
    trace_capture_c capture;
    ASSERT_FALSE(capture.file().empty());
    auto before = std::chrono::system_clock::now();
    {
        QVTR_SCOPE(trace, "xml_doc_c::load", "xml_doc");
        trace.print(128, 4242, "Loaded %s with %d items\n", "stats.xml", 17);
    }
    auto after = std::chrono::system_clock::now();
    std::vector<std::string> lines = lines_of(capture.text());
    ASSERT_EQ(lines.size(), 1u) << capture.text();
    std::smatch m;
    std::regex shape(R"(^(\d{4})-(\d{2})-(\d{2}) (\d{2}):(\d{2}):(\d{2})\.\d{3} tid=(\d+) )"
                     R"(level=128 xml_doc:4242 xml_doc_c::load: Loaded stats\.xml with 17 items$)");
    ASSERT_TRUE(std::regex_match(lines[0], m, shape)) << lines[0];
    EXPECT_EQ(std::stoull(m[7].str()), os::current_thread_id());

    // The time is the local time of the print.
    std::tm stamp{};
    stamp.tm_year = std::stoi(m[1].str()) - 1900;
    stamp.tm_mon = std::stoi(m[2].str()) - 1;
    stamp.tm_mday = std::stoi(m[3].str());
    stamp.tm_hour = std::stoi(m[4].str());
    stamp.tm_min = std::stoi(m[5].str());
    stamp.tm_sec = std::stoi(m[6].str());
    stamp.tm_isdst = -1;
    std::time_t printed = std::mktime(&stamp);
    std::time_t low = std::chrono::system_clock::to_time_t(before) - 2;
    std::time_t high = std::chrono::system_clock::to_time_t(after) + 2;
    EXPECT_GE(printed, low);
    EXPECT_LE(printed, high);
}

TEST(trc_file, the_file_is_named_after_the_module_in_the_directory_given) {
    temp_dir_c dir;
    std::uint64_t size = 0;
    ASSERT_TRUE(qvtr_set_log_directory(nullptr, size, dir.str().c_str(), "stats_mng.dll", false));
    std::string file = qvtr_current_log_file();
    EXPECT_EQ(test_support::from_utf8(file), dir.path() / "stats_mng.dll.log");
    {
        QVTR_SCOPE(trace, "stats_saver_ex_c::_save", "stats_saver");
        trace.print_nl(4, 10, "failed to write %s", "stats.xml");
    }
    std::string text = read_file(dir.join("stats_mng.dll.log"));
    EXPECT_NE(text.find("stats_saver:10 stats_saver_ex_c::_save: failed to write stats.xml"),
              std::string::npos)
        << text;
    ASSERT_FALSE(qvtr_set_log_directory(nullptr, size, nullptr, nullptr, false));
}

TEST(trc_file, every_print_comes_from_its_own_call_site_and_line) {
    trace_capture_c capture;
    {
        QVTR_SCOPE(outer, "file_c::open", "file");
        outer.print(128, 100, "open\n");
        {
            QVTR_SCOPE(inner, "basic_file_c::_create", "basic_file");
            inner.print(64, 200, "create\n");
        }
        outer.print(4, 101, "close\n");
    }
    std::vector<std::string> lines = lines_of(capture.text());
    ASSERT_EQ(lines.size(), 3u) << capture.text();
    EXPECT_NE(lines[0].find("level=128 file:100 file_c::open: open"), std::string::npos)
        << lines[0];
    EXPECT_NE(lines[1].find("level=64 basic_file:200 basic_file_c::_create: create"),
              std::string::npos)
        << lines[1];
    EXPECT_NE(lines[2].find("level=4 file:101 file_c::open: close"), std::string::npos) << lines[2];
}

TEST(trc_file, print_and_print_nl_both_end_each_line_once) {
    trace_capture_c capture;
    {
        QVTR_SCOPE(trace, "trc_test::ends", "trc_test");
        trace.print(128, 1, "first %d\n", 1);
        trace.print_nl(128, 2, "second %d", 2);
        trace.print(128, 3, "third\n");
        trace.print_nl(128, 4, "fourth");
    }
    std::string text = capture.text();
    std::vector<std::string> lines = lines_of(text);
    ASSERT_EQ(lines.size(), 4u) << text;
    const char* ends[] = {"first 1", "second 2", "third", "fourth"};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_FALSE(lines[i].empty());
        std::string end = std::string(": ") + ends[i];
        ASSERT_GE(lines[i].size(), end.size());
        EXPECT_EQ(lines[i].substr(lines[i].size() - end.size()), end) << lines[i];
    }
    // Four line ends, no blank line, and the file ends with a line end.
    EXPECT_EQ(count_of(text, "\n"), 4u);
    EXPECT_EQ(text.back(), '\n');
}

TEST(trc_settings, the_level_mask_of_the_settings_file_filters_lines) {
    trace_capture_c capture("trace = on\nlevels = 4\n");
    print_every_level();
    std::string text = capture.text();
    EXPECT_TRUE(has_level_line(text, 4)) << text;
    for (unsigned int level : {1u, 8u, 32u, 64u, 128u})
        EXPECT_FALSE(has_level_line(text, level)) << level;
}

TEST(trc_settings, a_mask_in_hexadecimal_lets_several_levels_through) {
    trace_capture_c capture("levels = 0x84\n");
    print_every_level();
    std::string text = capture.text();
    EXPECT_TRUE(has_level_line(text, 4));
    EXPECT_TRUE(has_level_line(text, 128));
    for (unsigned int level : {1u, 8u, 32u, 64u})
        EXPECT_FALSE(has_level_line(text, level)) << level;
}

TEST(trc_settings, a_decimal_mask_with_leading_zeros_is_decimal) {
    trace_capture_c capture("levels = 0128\n");
    print_every_level();
    std::string text = capture.text();
    EXPECT_TRUE(has_level_line(text, 128)) << text;
    for (unsigned int level : {1u, 4u, 8u, 32u, 64u})
        EXPECT_FALSE(has_level_line(text, level)) << level;
}

TEST(trc_settings, comments_blank_lines_and_unknown_keys_are_passed_over) {
    trace_capture_c capture("# trace settings\n\n   \ncolour = blue\nlevels = 32 # notes only\n");
    print_every_level();
    std::string text = capture.text();
    EXPECT_TRUE(has_level_line(text, 32)) << text;
    EXPECT_FALSE(has_level_line(text, 4));
    EXPECT_FALSE(has_level_line(text, 128));
}

TEST(trc_settings, trace_off_writes_nothing_and_on_again_writes) {
    trace_capture_c capture("trace = off\n");
    print_every_level();
    EXPECT_EQ(capture.text(), "");
    ASSERT_TRUE(apply_settings(capture.dir(), "trace = on\n"));
    print_every_level();
    std::string text = capture.text();
    for (unsigned int level : {1u, 4u, 8u, 32u, 64u, 128u})
        EXPECT_TRUE(has_level_line(text, level)) << level;
}

TEST(trc_settings, a_missing_settings_file_keeps_the_settings_and_returns_false) {
    trace_capture_c capture("trace = on\nlevels = 4\n");
    std::uint64_t size = 0;
    std::string missing = capture.dir().join("no_such_settings.trc");
    EXPECT_FALSE(qvtr_reparse_file(nullptr, size, missing.c_str()));
    EXPECT_FALSE(qvtr_reparse_file(nullptr, size, nullptr));
    EXPECT_FALSE(qvtr_reparse_file(nullptr, size, ""));
    print_every_level();
    std::string text = capture.text();
    EXPECT_TRUE(has_level_line(text, 4)) << text;
    EXPECT_FALSE(has_level_line(text, 128)) << text;

    // The same holds when the trace was off.
    ASSERT_TRUE(apply_settings(capture.dir(), "trace = off\n"));
    EXPECT_FALSE(qvtr_reparse_file(nullptr, size, missing.c_str()));
    std::string length_before = capture.text();
    print_every_level();
    EXPECT_EQ(capture.text(), length_before);
}

TEST(trc_settings, a_value_that_is_not_understood_leaves_that_setting_alone) {
    trace_capture_c capture("trace = on\nlevels = 4\n");
    apply_settings(capture.dir(), "levels = lots\n");
    apply_settings(capture.dir(), "trace = maybe\n");
    apply_settings(capture.dir(), "levels = -\n");
    print_every_level();
    std::string text = capture.text();
    EXPECT_TRUE(has_level_line(text, 4)) << text;
    EXPECT_FALSE(has_level_line(text, 128)) << text;
}

TEST(trc_directory, a_null_or_empty_directory_stops_the_file) {
    for (const char* stop : {static_cast<const char*>(nullptr), ""}) {
        SCOPED_TRACE(stop ? "empty directory" : "null directory");
        temp_dir_c dir;
        std::uint64_t size = 0;
        ASSERT_TRUE(qvtr_set_log_directory(nullptr, size, dir.str().c_str(), "stop", false));
        std::string file = dir.join("stop.log");
        print_every_level();
        std::string written = read_file(file);
        ASSERT_TRUE(has_level_line(written, 128));

        EXPECT_FALSE(qvtr_set_log_directory(nullptr, size, stop, "stop", false));
        EXPECT_EQ(qvtr_current_log_file(), "");
        print_every_level();
        EXPECT_EQ(read_file(file), written);
    }
}

TEST(trc_directory, a_directory_that_does_not_exist_gives_false_and_no_file) {
    temp_dir_c dir;
    std::uint64_t size = 0;
    std::string missing = dir.join("missing/deeper");
    EXPECT_FALSE(qvtr_set_log_directory(nullptr, size, missing.c_str(), "gone", false));
    EXPECT_EQ(qvtr_current_log_file(), "");
    print_every_level();
    EXPECT_FALSE(std::filesystem::exists(test_support::from_utf8(missing)));
}

TEST(trc_directory, switching_directories_sends_later_lines_to_the_new_file) {
    temp_dir_c first, second;
    std::uint64_t size = 0;
    ASSERT_TRUE(qvtr_set_log_directory(nullptr, size, first.str().c_str(), "m", false));
    {
        QVTR_SCOPE(trace, "trc_test::switch", "trc_test");
        trace.print_nl(128, 1, "to the first");
        ASSERT_TRUE(qvtr_set_log_directory(nullptr, size, second.str().c_str(), "m", false));
        trace.print_nl(128, 2, "to the second");
    }
    qvtr_set_log_directory(nullptr, size, nullptr, nullptr, false);
    std::string a = read_file(first.join("m.log")), b = read_file(second.join("m.log"));
    EXPECT_NE(a.find("to the first"), std::string::npos);
    EXPECT_EQ(a.find("to the second"), std::string::npos);
    EXPECT_NE(b.find("to the second"), std::string::npos);
    EXPECT_EQ(b.find("to the first"), std::string::npos);
}

TEST(trc_directory, lines_are_appended_to_a_file_that_exists) {
    temp_dir_c dir;
    write_file(dir.join("old.log"), "earlier line\n");
    std::uint64_t size = 0;
    ASSERT_TRUE(qvtr_set_log_directory(nullptr, size, dir.str().c_str(), "old", false));
    {
        QVTR_SCOPE(trace, "trc_test::append", "trc_test");
        trace.print_nl(128, 1, "later line");
    }
    qvtr_set_log_directory(nullptr, size, nullptr, nullptr, false);
    std::vector<std::string> lines = lines_of(read_file(dir.join("old.log")));
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], "earlier line");
    EXPECT_NE(lines[1].find("later line"), std::string::npos);
}

TEST(trc_file, a_message_of_one_megabyte_is_written_whole) {
    trace_capture_c capture;
    std::string big;
    big.reserve(1 << 20);
    for (std::size_t i = 0; big.size() < (1u << 20); ++i) big += static_cast<char>('a' + i % 26);
    {
        QVTR_SCOPE(trace, "trc_test::big", "trc_test");
        trace.print(4, 7, "<%s>\n", big.c_str());
        trace.print_nl(4, 8, "after");
    }
    std::vector<std::string> lines = lines_of(capture.text());
    ASSERT_EQ(lines.size(), 2u);
    std::size_t open = lines[0].find('<');
    ASSERT_NE(open, std::string::npos);
    EXPECT_EQ(lines[0].substr(open), "<" + big + ">");
    EXPECT_NE(lines[1].find("after"), std::string::npos);
}

TEST(trc_file, printing_without_a_file_does_nothing_harmful) {
    std::uint64_t size = 0;
    qvtr_set_log_directory(nullptr, size, nullptr, nullptr, false);
    QVTR_SCOPE(trace, "trc_test::nowhere", "trc_test");
    trace.print(4, 1, "nowhere %s\n", "at all");
    trace.print_nl(128, 2, "nowhere");
    EXPECT_EQ(qvtr_current_log_file(), "");
}

TEST(trc_settings, a_comment_line_longer_than_any_buffer_is_still_a_comment) {
    trace_capture_c capture;
    std::string long_comment = "# " + std::string(5000, 'x') + " trace = off\n";
    EXPECT_TRUE(apply_settings(capture.dir(), long_comment + "levels = 4\n"));
    print_every_level();
    std::string text = capture.text();
    EXPECT_TRUE(has_level_line(text, 4)) << text;
    EXPECT_FALSE(has_level_line(text, 128)) << text;
}

TEST(trc_settings, a_negative_or_too_wide_mask_is_refused_and_the_mask_kept) {
    trace_capture_c capture;
    ASSERT_TRUE(apply_settings(capture.dir(), "levels = 4\n"));
    EXPECT_FALSE(apply_settings(capture.dir(), "levels = -4\n"));
    EXPECT_FALSE(apply_settings(capture.dir(), "levels = 0x1ffffffff\n"));
    EXPECT_FALSE(apply_settings(capture.dir(), "levels = 99999999999999999999999\n"));
    print_every_level();
    std::string text = capture.text();
    EXPECT_TRUE(has_level_line(text, 4)) << text;
    EXPECT_FALSE(has_level_line(text, 1)) << text;
    EXPECT_FALSE(has_level_line(text, 128)) << text;
}
