// Root directories: the plain model with its filters, its relative paths and its text forms.
#include "configuration/root_dir.h"

#include "common/test_support.h"
#include "utl/utl.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using test_support::trace_capture_c;
using test_support::trace_line;

std::vector<std::string> strings_of(const root_dir_c::filter_c& filter) {
    std::vector<std::string> found;
    for (std::uint64_t i = 0; i < filter.get_count(); ++i) found.push_back(filter.at(i));
    return found;
}

std::string printed(root_dir_c& root_dir) {
    utl_stream_c stream;
    return root_dir.print(stream);
}

std::string printed(const root_dir_c::filter_c& filter) {
    utl_stream_c stream;
    return filter.print_filter(stream);
}

bool has_level(const std::string& line, unsigned level) {
    return line.find(" level=" + std::to_string(level) + " ") != std::string::npos;
}

// The trace line that ends with `message`, checked for level 4, the unit and the scope.
void expect_failure_line(const std::string& trace, const std::string& message,
                         const std::string& scope) {
    std::string line = trace_line(trace, message);
    ASSERT_FALSE(line.empty()) << "no line ending with \"" << message << "\" in\n" << trace;
    EXPECT_TRUE(has_level(line, 4)) << line;
    EXPECT_NE(line.find(" root_dir:"), std::string::npos) << line;
    EXPECT_NE(line.find(" " + scope + ": "), std::string::npos) << line;
}

// How many lines of the trace this unit printed at level 4.
std::size_t failure_count(const std::string& trace) {
    std::size_t count = 0;
    for (const std::string& line : test_support::lines_of(trace))
        if (has_level(line, 4) && line.find(" root_dir:") != std::string::npos) ++count;
    return count;
}

constexpr std::uint32_t file_type = root_dir_c::filter_c::type_file_reg_expr;
constexpr std::uint32_t dir_type = root_dir_c::filter_c::type_dir_reg_expr;
constexpr std::uint32_t path_type = root_dir_c::filter_c::type_dir_path;

} // namespace

// ---- a new root directory

TEST(root_dir, a_new_root_dir_has_no_path_matches_all_kids_excludes_and_prints_undefined) {
    root_dir_c root_dir;
    EXPECT_EQ(root_dir.path, nullptr);
    EXPECT_EQ(root_dir.path_length, 0u);
    EXPECT_TRUE(root_dir.match_all_kids_volume);
    EXPECT_FALSE(root_dir.case_sensitive);
    EXPECT_FALSE(root_dir.has_filters);
    EXPECT_FALSE(root_dir.db_dir);
    EXPECT_EQ(root_dir.id, 0u);
    EXPECT_EQ(root_dir.temporary_filter, nullptr);
    EXPECT_TRUE(root_dir.file_filter.exclude);
    EXPECT_TRUE(root_dir.dir_filter.exclude);
    EXPECT_TRUE(root_dir.path_filter.exclude);
    EXPECT_EQ(root_dir.file_filter.type, 0u);
    EXPECT_EQ(root_dir.dir_filter.type, 1u);
    EXPECT_EQ(root_dir.path_filter.type, 2u);
    EXPECT_EQ(printed(root_dir),
              "RootDirectory \"Undefined\", UserDefined\", MatchAllKidsVolume\", "
              "ID = 0\n"
              "\tExclude FileRegExpr Filter is Empty\n"
              "\tExclude DirRegExpr Filter is Empty\n"
              "\tExclude DirPath Filter is Empty\n");
}

// ---- text forms

TEST(root_dir, a_filter_prints_its_flag_its_type_and_its_entries_joined) {
    root_dir_c::filter_c filter(path_type);
    EXPECT_EQ(printed(filter), "Exclude DirPath Filter is Empty");
    filter.exclude = false;
    filter.add("logs");
    filter.add("cache/old");
    EXPECT_EQ(printed(filter), "Include DirPath Filter: {logs, cache/old}");
    root_dir_c::filter_c one(dir_type);
    one.add("tmp*");
    EXPECT_EQ(printed(one), "Exclude DirRegExpr Filter: {tmp*}");
}

TEST(root_dir, print_filter_appends_and_gives_the_whole_text) {
    root_dir_c::filter_c filter(file_type);
    utl_stream_c stream("before: ");
    EXPECT_STREQ(filter.print_filter(stream), "before: Exclude FileRegExpr Filter is Empty");
}

TEST(root_dir, print_gives_path_kind_match_id_filters_and_a_temporary_filter) {
    root_dir_c root_dir;
    root_dir.set_path("D:\\share\\");
    root_dir.set_db_dir(true);
    root_dir.set_match_all_kids_volume(false);
    root_dir.set_id(42);
    root_dir.set_exclude(file_type, false);
    ASSERT_TRUE(root_dir._add_expression(file_type, "*.doc"));
    ASSERT_TRUE(root_dir._add_expression(file_type, "*.xls"));
    ASSERT_TRUE(root_dir._add_expression(path_type, "D:/share/old"));
    root_dir.temporary_filter = new root_dir_c::filter_c(dir_type);
    root_dir.temporary_filter->add("cache");
    utl_stream_c stream("> ");
    EXPECT_STREQ(root_dir.print(stream),
                 "> RootDirectory \"D:/share\", AutoCreated\", NotMatchAllKidsVolume\", ID = 42\n"
                 "\tInclude FileRegExpr Filter: {*.doc, *.xls}\n"
                 "\tExclude DirRegExpr Filter is Empty\n"
                 "\tExclude DirPath Filter: {old}\n"
                 "Temporary \tExclude DirRegExpr Filter: {cache}\n");
}

TEST(root_dir, an_empty_path_prints_as_undefined) {
    root_dir_c root_dir;
    root_dir.path = utl_n::str_copy("", false);
    EXPECT_EQ(printed(root_dir).rfind("RootDirectory \"Undefined\", ", 0), 0u);
}

// ---- fields and their setters

TEST(root_dir, set_path_normalises_and_keeps_the_length_and_an_empty_text_clears_it) {
    root_dir_c root_dir;
    root_dir.set_path("C:\\data\\\\sub\\");
    ASSERT_NE(root_dir.path, nullptr);
    EXPECT_STREQ(root_dir.path, "C:/data/sub");
    EXPECT_EQ(root_dir.path_length, 11u);
    root_dir.set_path("");
    EXPECT_EQ(root_dir.path, nullptr);
    EXPECT_EQ(root_dir.path_length, 0u);
    root_dir.set_path("E:/x");
    root_dir.set_path(nullptr);
    EXPECT_EQ(root_dir.path, nullptr);
}

TEST(root_dir, set_path_keeps_the_long_prefix) {
    root_dir_c root_dir;
    root_dir.set_path("\\\\?\\C:\\data\\");
    EXPECT_STREQ(root_dir.path, "\\\\?\\C:/data");
}

TEST(root_dir, set_display_path_normalises_and_an_empty_text_leaves_it) {
    root_dir_c root_dir;
    root_dir.set_display_path("C:\\Data\\");
    EXPECT_STREQ(root_dir.display_path.c_str(), "C:/Data");
    root_dir.set_display_path("");
    root_dir.set_display_path(nullptr);
    EXPECT_STREQ(root_dir.display_path.c_str(), "C:/Data");
    root_dir.set_display_path("D:/other");
    EXPECT_STREQ(root_dir.display_path.c_str(), "D:/other");
    EXPECT_EQ(root_dir.path, nullptr) << "the display path is a field of its own";
}

TEST(root_dir, set_exclude_selects_the_filter_by_type_and_ignores_other_types) {
    root_dir_c root_dir;
    root_dir.set_exclude(dir_type, false);
    EXPECT_TRUE(root_dir.file_filter.exclude);
    EXPECT_FALSE(root_dir.dir_filter.exclude);
    EXPECT_TRUE(root_dir.path_filter.exclude);
    root_dir.set_exclude(3, false);
    root_dir.set_exclude(99, false);
    EXPECT_TRUE(root_dir.file_filter.exclude);
    EXPECT_TRUE(root_dir.path_filter.exclude);
}

TEST(root_dir, update_has_filters_counts_every_filter_and_the_temporary_one) {
    root_dir_c root_dir;
    root_dir.update_has_filters();
    EXPECT_FALSE(root_dir.has_filters);
    root_dir.temporary_filter = new root_dir_c::filter_c(file_type);
    root_dir.update_has_filters();
    EXPECT_FALSE(root_dir.has_filters) << "an empty temporary filter counts for nothing";
    root_dir.temporary_filter->add("x");
    root_dir.update_has_filters();
    EXPECT_TRUE(root_dir.has_filters);
    root_dir.temporary_filter->clear();
    root_dir.path_filter.add("logs");
    root_dir.update_has_filters();
    EXPECT_TRUE(root_dir.has_filters);
}

// ---- filters: equality and copies

TEST(root_dir, filters_are_equal_with_the_same_type_flag_and_strings_in_order) {
    root_dir_c::filter_c a(file_type), b(file_type);
    EXPECT_TRUE(a == b);
    a.add("x");
    a.add("y");
    b.add("y");
    b.add("x");
    EXPECT_FALSE(a == b) << "order counts";
    b.clear();
    b.add("x");
    EXPECT_FALSE(a == b) << "count counts";
    b.add("y");
    EXPECT_TRUE(a == b);
    b.exclude = false;
    EXPECT_FALSE(a == b);
    b.exclude = true;
    b.type = dir_type;
    EXPECT_FALSE(a == b);
}

TEST(root_dir, a_filter_assignment_empties_the_target_and_copies_type_flag_and_strings) {
    root_dir_c::filter_c source(dir_type), target(file_type);
    source.exclude = false;
    source.add("a");
    source.add("b");
    target.add("old");
    target = source;
    EXPECT_EQ(target.type, dir_type);
    EXPECT_FALSE(target.exclude);
    EXPECT_EQ(strings_of(target), (std::vector<std::string>{"a", "b"}));
    EXPECT_NE(target.at(0), source.at(0)) << "the strings are copies";
    target = target;
    EXPECT_EQ(strings_of(target), (std::vector<std::string>{"a", "b"}));
}

TEST(root_dir, copy_filter_copies_one_type_or_all_three_for_type_3) {
    root_dir_c source, target;
    source.file_filter.add("*.f");
    source.dir_filter.add("d*");
    source.dir_filter.exclude = false;
    source.path_filter.add("p");
    target.copy_filter(dir_type, source);
    EXPECT_TRUE(target.file_filter.is_empty());
    EXPECT_EQ(strings_of(target.dir_filter), (std::vector<std::string>{"d*"}));
    EXPECT_FALSE(target.dir_filter.exclude);
    EXPECT_TRUE(target.path_filter.is_empty());
    target.copy_filter(root_dir_c::all_filters, source);
    EXPECT_TRUE(target.file_filter == source.file_filter);
    EXPECT_TRUE(target.dir_filter == source.dir_filter);
    EXPECT_TRUE(target.path_filter == source.path_filter);
    target.copy_filter(7, root_dir_c());
    EXPECT_TRUE(target.file_filter == source.file_filter) << "no filter has type 7";
}

// ---- relative_to_root

TEST(root_dir, relative_to_root_of_a_null_argument_is_null) {
    root_dir_c root_dir;
    root_dir.set_path("C:/data");
    EXPECT_EQ(root_dir.relative_to_root(nullptr), nullptr);
}

TEST(root_dir, relative_to_root_without_a_path_is_null) {
    root_dir_c root_dir;
    EXPECT_EQ(root_dir.relative_to_root("C:/data/logs"), nullptr);
}

TEST(root_dir, relative_to_root_compares_without_case_unless_case_sensitive) {
    root_dir_c root_dir;
    root_dir.set_path("C:/Data");
    const char* full = "c:/DATA/Logs";
    EXPECT_STREQ(root_dir.relative_to_root(full), "Logs");
    EXPECT_EQ(root_dir.relative_to_root(full), full + 8) << "a pointer into the argument";
    EXPECT_EQ(root_dir.relative_to_root("D:/Data/Logs"), nullptr);
    root_dir.case_sensitive = true;
    EXPECT_EQ(root_dir.relative_to_root(full), nullptr);
    EXPECT_STREQ(root_dir.relative_to_root("C:/Data/Logs"), "Logs");
}

TEST(root_dir, relative_to_root_of_the_path_itself_is_empty) {
    root_dir_c root_dir;
    root_dir.set_path("C:/data");
    const char* rest = root_dir.relative_to_root("C:/data");
    ASSERT_NE(rest, nullptr);
    EXPECT_STREQ(rest, "");
}

TEST(root_dir, relative_to_root_skips_every_separator_after_the_prefix) {
    root_dir_c root_dir;
    root_dir.set_path("C:/data");
    EXPECT_STREQ(root_dir.relative_to_root("C:/data//\\/logs/old"), "logs/old");
    EXPECT_STREQ(root_dir.relative_to_root("C:/data/"), "");
}

TEST(root_dir, relative_to_root_without_a_separator_needs_a_path_that_ends_in_one) {
    root_dir_c root_dir;
    root_dir.set_path("C:/data");
    EXPECT_EQ(root_dir.relative_to_root("C:/database/x"), nullptr)
        << "a root directory data is no prefix of a path database";
    root_dir.set_path("C:\\");
    ASSERT_STREQ(root_dir.path, "C:/");
    EXPECT_STREQ(root_dir.relative_to_root("C:/database/x"), "database/x");
}

TEST(root_dir, relative_to_root_of_an_argument_shorter_than_the_path_is_null) {
    root_dir_c root_dir;
    root_dir.set_path("C:/data/deep/below");
    EXPECT_EQ(root_dir.relative_to_root("C:/data"), nullptr);
    EXPECT_EQ(root_dir.relative_to_root(""), nullptr);
}

// ---- _add_expression and _add_rel_path_filt

TEST(root_dir, add_expression_of_a_full_path_below_the_root_stores_the_relative_part) {
    root_dir_c root_dir;
    root_dir.set_path("C:\\data");
    EXPECT_TRUE(root_dir._add_expression(path_type, "C:\\data\\logs\\old\\"));
    EXPECT_EQ(strings_of(root_dir.path_filter), (std::vector<std::string>{"logs/old"}));
    EXPECT_TRUE(root_dir.has_filters);
}

TEST(root_dir, add_expression_of_the_root_path_itself_fails_with_the_empty_relative_message) {
    trace_capture_c capture;
    root_dir_c root_dir;
    root_dir.set_path("C:/data");
    EXPECT_FALSE(root_dir._add_expression(path_type, "C:\\data\\"));
    EXPECT_TRUE(root_dir.path_filter.is_empty());
    EXPECT_FALSE(root_dir.has_filters);
    expect_failure_line(capture.text(),
                        "Unable to add empty relative path as filter to root directory C:/data",
                        "root_dir_c::_add_rel_path_filt");
}

TEST(root_dir, add_expression_of_a_path_elsewhere_fails_with_doesnt_fit) {
    trace_capture_c capture;
    root_dir_c root_dir;
    root_dir.set_path("C:/data");
    EXPECT_FALSE(root_dir._add_expression(path_type, "D:\\other\\logs"));
    EXPECT_FALSE(root_dir._add_expression(path_type, "C:/database"));
    EXPECT_TRUE(root_dir.path_filter.is_empty());
    std::string text = capture.text();
    expect_failure_line(text,
                        "Unable to add filter \"D:/other/logs\", doesn't fit root directory path "
                        "C:/data",
                        "root_dir_c::_add_rel_path_filt");
    expect_failure_line(text,
                        "Unable to add filter \"C:/database\", doesn't fit root directory path "
                        "C:/data",
                        "root_dir_c::_add_rel_path_filt");
}

TEST(root_dir, add_expression_of_a_full_dir_path_before_set_path_says_root_path_is_not_set) {
    trace_capture_c capture;
    root_dir_c root_dir;
    EXPECT_FALSE(root_dir._add_expression(path_type, "C:\\data\\logs"));
    EXPECT_TRUE(root_dir.path_filter.is_empty());
    expect_failure_line(capture.text(),
                        "Unable to add DirPath filter \"C:/data/logs\", Root Path is not set",
                        "root_dir_c::_add_rel_path_filt");
}

TEST(root_dir, add_expression_of_a_relative_dir_path_before_set_path_is_accepted) {
    trace_capture_c capture;
    root_dir_c root_dir;
    EXPECT_TRUE(root_dir._add_expression(path_type, "logs\\old\\"));
    EXPECT_EQ(strings_of(root_dir.path_filter), (std::vector<std::string>{"logs/old"}));
    EXPECT_TRUE(root_dir.has_filters);
    EXPECT_EQ(failure_count(capture.text()), 0u) << capture.text();
}

TEST(root_dir, adding_the_same_text_twice_returns_true_and_stores_it_once) {
    root_dir_c root_dir;
    EXPECT_TRUE(root_dir._add_expression(file_type, "*.tmp"));
    EXPECT_TRUE(root_dir._add_expression(file_type, "*.tmp"));
    EXPECT_EQ(strings_of(root_dir.file_filter), (std::vector<std::string>{"*.tmp"}));
    root_dir.set_path("C:/data");
    EXPECT_TRUE(root_dir._add_expression(path_type, "logs"));
    EXPECT_TRUE(root_dir._add_expression(path_type, "C:/data/logs")) << "held in relative form";
    EXPECT_EQ(strings_of(root_dir.path_filter), (std::vector<std::string>{"logs"}));
}

TEST(root_dir, a_text_already_held_returns_before_has_filters_is_updated) {
    root_dir_c root_dir;
    ASSERT_TRUE(root_dir._add_expression(dir_type, "cache"));
    root_dir.has_filters = false;
    EXPECT_TRUE(root_dir._add_expression(dir_type, "cache"));
    EXPECT_FALSE(root_dir.has_filters);
    EXPECT_TRUE(root_dir._add_expression(dir_type, "temp"));
    EXPECT_TRUE(root_dir.has_filters);
}

TEST(root_dir, add_expression_of_a_null_or_empty_text_fails_with_a_trace_line) {
    trace_capture_c capture;
    root_dir_c root_dir;
    EXPECT_FALSE(root_dir._add_expression(file_type, nullptr));
    EXPECT_FALSE(root_dir._add_expression(dir_type, ""));
    EXPECT_TRUE(root_dir.file_filter.is_empty());
    EXPECT_TRUE(root_dir.dir_filter.is_empty());
    std::string text = capture.text();
    expect_failure_line(text, "Unable to add empty string as filter",
                        "root_dir_c::_add_expression");
    EXPECT_EQ(failure_count(text), 2u) << text;
}

TEST(root_dir, file_and_dir_expressions_are_stored_as_they_stand) {
    root_dir_c root_dir;
    EXPECT_TRUE(root_dir._add_expression(file_type, "sub\\*.tmp\\"));
    EXPECT_TRUE(root_dir._add_expression(dir_type, "C:\\x"));
    EXPECT_EQ(strings_of(root_dir.file_filter), (std::vector<std::string>{"sub\\*.tmp\\"}));
    EXPECT_EQ(strings_of(root_dir.dir_filter), (std::vector<std::string>{"C:\\x"}));
}

TEST(root_dir, add_expression_of_an_unknown_type_adds_nothing) {
    root_dir_c root_dir;
    EXPECT_FALSE(root_dir._add_expression(3, "x"));
    EXPECT_FALSE(root_dir.has_filters);
}

TEST(root_dir, add_rel_path_filt_takes_a_full_path_as_its_relative_part) {
    root_dir_c root_dir;
    root_dir.set_path("C:/data");
    root_dir_c::filter_c filter(path_type);
    EXPECT_TRUE(root_dir._add_rel_path_filt(filter, "c:\\DATA\\Logs"));
    EXPECT_EQ(strings_of(filter), (std::vector<std::string>{"Logs"}));
}

TEST(root_dir, add_rel_path_filt_drops_the_long_prefix_of_a_full_path) {
    root_dir_c root_dir;
    root_dir.set_path("C:/data");
    root_dir_c::filter_c filter(path_type);
    EXPECT_TRUE(root_dir._add_rel_path_filt(filter, "\\\\?\\C:\\data\\logs"));
    EXPECT_EQ(strings_of(filter), (std::vector<std::string>{"logs"}));
}

TEST(root_dir, add_rel_path_filt_takes_a_relative_text_in_its_normalised_form) {
    root_dir_c root_dir;
    root_dir_c::filter_c filter(path_type);
    EXPECT_TRUE(root_dir._add_rel_path_filt(filter, "a\\\\b\\c\\"));
    EXPECT_EQ(strings_of(filter), (std::vector<std::string>{"a/b/c"}));
}

TEST(root_dir, add_rel_path_filt_of_a_held_part_returns_true_without_a_second_copy) {
    root_dir_c root_dir;
    root_dir.set_path("C:/data");
    root_dir_c::filter_c filter(path_type);
    ASSERT_TRUE(root_dir._add_rel_path_filt(filter, "logs"));
    EXPECT_TRUE(root_dir._add_rel_path_filt(filter, "C:/data/logs/"));
    EXPECT_TRUE(root_dir._add_rel_path_filt(filter, "logs\\"));
    EXPECT_EQ(strings_of(filter), (std::vector<std::string>{"logs"}));
}

// ---- _rem_expression

TEST(root_dir, rem_expression_removes_the_normalised_text_and_updates_has_filters) {
    root_dir_c root_dir;
    ASSERT_TRUE(root_dir._add_expression(path_type, "logs/old"));
    EXPECT_TRUE(root_dir._rem_expression(path_type, "logs\\old\\"));
    EXPECT_TRUE(root_dir.path_filter.is_empty());
    EXPECT_FALSE(root_dir.has_filters);
    EXPECT_FALSE(root_dir._rem_expression(path_type, "logs/old")) << "nothing left to remove";
}

TEST(root_dir, rem_expression_of_a_backslash_expression_of_type_0_finds_nothing) {
    root_dir_c root_dir;
    ASSERT_TRUE(root_dir._add_expression(file_type, "sub\\*.tmp"));
    EXPECT_FALSE(root_dir._rem_expression(file_type, "sub\\*.tmp"));
    EXPECT_EQ(strings_of(root_dir.file_filter), (std::vector<std::string>{"sub\\*.tmp"}));
    ASSERT_TRUE(root_dir._add_expression(file_type, "*.bak"));
    EXPECT_TRUE(root_dir._rem_expression(file_type, "*.bak"));
}

TEST(root_dir, rem_expression_of_a_full_path_removes_its_relative_part) {
    root_dir_c root_dir;
    root_dir.set_path("C:/data");
    ASSERT_TRUE(root_dir._add_expression(path_type, "logs"));
    ASSERT_TRUE(root_dir._add_expression(path_type, "cache"));
    EXPECT_TRUE(root_dir._rem_expression(path_type, "C:\\data\\logs"));
    EXPECT_EQ(strings_of(root_dir.path_filter), (std::vector<std::string>{"cache"}));
    EXPECT_TRUE(root_dir.has_filters);
}

TEST(root_dir, rem_expression_of_a_full_path_elsewhere_or_without_a_path_does_not_fit) {
    trace_capture_c capture;
    root_dir_c root_dir;
    ASSERT_TRUE(root_dir._add_expression(path_type, "logs"));
    EXPECT_FALSE(root_dir._rem_expression(path_type, "C:\\data\\logs"));
    root_dir.set_path("C:/data");
    EXPECT_FALSE(root_dir._rem_expression(path_type, "D:/data/logs"));
    EXPECT_EQ(strings_of(root_dir.path_filter), (std::vector<std::string>{"logs"}));
    std::string text = capture.text();
    expect_failure_line(text,
                        "Unable to remove filter \"C:/data/logs\", doesn't fit root_dir_path ",
                        "root_dir_c::_rem_expression");
    expect_failure_line(text,
                        "Unable to remove filter \"D:/data/logs\", doesn't fit root_dir_path "
                        "C:/data",
                        "root_dir_c::_rem_expression");
}

TEST(root_dir, rem_expression_of_the_root_path_itself_is_the_empty_relative_message) {
    trace_capture_c capture;
    root_dir_c root_dir;
    root_dir.set_path("C:/data");
    EXPECT_FALSE(root_dir._rem_expression(path_type, "C:/data/"));
    expect_failure_line(capture.text(),
                        "Unable to remove empty relative path as filter for root_dir_path C:/data",
                        "root_dir_c::_rem_expression");
}

TEST(root_dir, rem_expression_of_a_null_text_or_an_unknown_type_removes_nothing) {
    root_dir_c root_dir;
    ASSERT_TRUE(root_dir._add_expression(file_type, "x"));
    EXPECT_FALSE(root_dir._rem_expression(file_type, nullptr));
    EXPECT_FALSE(root_dir._rem_expression(5, "x"));
    EXPECT_EQ(strings_of(root_dir.file_filter), (std::vector<std::string>{"x"}));
}
