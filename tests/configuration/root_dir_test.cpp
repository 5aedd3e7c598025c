// Root directories: the plain model with its filters, its relative paths and its text forms,
// and xmc_root_dir_c, read from its `RootDir` item and writing every change back to the items.
#include "configuration/root_dir.h"

#include "common/test_support.h"
#include "support/thl.h"
#include "utl/utl.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using test_support::trace_capture_c;
using test_support::trace_line;

// A root directory as a scenario stores it: every field, a file filter that includes two
// expressions, an empty directory filter and a path filter whose status lags behind its entry.
const char* const root_dir_text = R"(<?xml version="1.0"?>
<object label="RootDir" id="3010">
  <data label="Path" val="C:\data\" type="FullPath"/>
  <data label="ID" val="7" type="Number"/>
  <data label="MatchAllKidsVolume" val="False" type="Bool"/>
  <data label="DBdir" val="True" type="Bool"/>
  <object label="FileRegExpr" id="500" status="True">
    <data label="ExcludeFilter" val="False" type="Bool"/>
    <data label="ListFilters" val="String" type="MultiEntry">
      <data label="ListFilters" val="*.tmp" type="String"/>
      <data label="ListFilters" val="*.bak" type="String"/>
    </data>
  </object>
  <object label="DirRegExpr" id="500" status="False">
    <data label="ExcludeFilter" val="True" type="Bool"/>
    <data label="ListFilters" val="String" type="MultiEntry"/>
  </object>
  <object label="DirPath" id="500" status="False">
    <data label="ExcludeFilter" val="True" type="Bool"/>
    <data label="ListFilters" val="String" type="MultiEntry">
      <data label="ListFilters" val="logs" type="String"/>
    </data>
  </object>
</object>)";

// A `RootDir` object of the text `children`.
std::string root_dir_of(const std::string& children) {
    return "<?xml version=\"1.0\"?><object label=\"RootDir\" id=\"3010\">" + children + "</object>";
}

// A filter object `label` with the exclude word `exclude` and the entries `entries`.
std::string filter_object(const std::string& label, const std::string& status,
                          const std::string& exclude, const std::vector<std::string>& entries) {
    std::string text = "<object label=\"" + label + "\" id=\"500\" status=\"" + status + "\">" +
                       "<data label=\"ExcludeFilter\" val=\"" + exclude + "\" type=\"Bool\"/>" +
                       "<data label=\"ListFilters\" val=\"String\" type=\"MultiEntry\">";
    for (const std::string& entry : entries)
        text += "<data label=\"ListFilters\" val=\"" + entry + "\" type=\"String\"/>";
    return text + "</data></object>";
}

std::string text_of(labeled_value_c* attribute) {
    const char* text = attribute ? attribute->to_text() : nullptr;
    return text ? text : "(none)";
}

std::string attribute_of(xml_item_c* item, const char* name) {
    return item ? text_of(item->find_attribute(name)) : "(no item)";
}

// The first child of `item` whose `label` attribute is `label`.
xml_item_c* child_labelled(xml_item_c* item, const std::string& label) {
    for (xml_item_c* child = item ? item->first_child_item() : nullptr; child;
         child = child->next_item()) {
        labeled_value_c* attribute = child->find_attribute("label");
        if (attribute && label == attribute->to_text()) return child;
    }
    return nullptr;
}

// The `ListFilters` list object of a filter object.
xml_item_c* list_of(xml_item_c* filter_item) { return child_labelled(filter_item, "ListFilters"); }

// The `val` texts of the entries of a filter object's list.
std::vector<std::string> tree_entries(xml_item_c* filter_item) {
    std::vector<std::string> found;
    xml_item_c* list = list_of(filter_item);
    for (xml_item_c* entry = list ? list->first_child_item() : nullptr; entry;
         entry = entry->next_item())
        found.push_back(attribute_of(entry, "val"));
    return found;
}

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

// A scenario's tree holding one `RootDir` object.
class root_dir_tree_test : public ::testing::Test {
  protected:
    xml_item_c* load(const std::string& text) {
        tree.clear();
        EXPECT_TRUE(tree.load_from_str(text.c_str()));
        return tree.get_root();
    }

    xml_item_c* item(const char* label) { return child_labelled(tree.get_root(), label); }

    mixed_xmc_xml_tree_c tree;
};

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

// ---- reading a RootDir item

TEST_F(root_dir_tree_test, construction_reads_every_field_and_every_filter) {
    trace_capture_c capture;
    xmc_root_dir_c root_dir(load(root_dir_text));
    ASSERT_NE(root_dir.path, nullptr);
    EXPECT_STREQ(root_dir.path, "C:/data");
    EXPECT_EQ(root_dir.path_length, 7u);
    EXPECT_STREQ(root_dir.display_path.c_str(), "C:/data");
    EXPECT_EQ(root_dir.id, 7u);
    EXPECT_TRUE(root_dir.db_dir);
    EXPECT_FALSE(root_dir.match_all_kids_volume);
    EXPECT_FALSE(root_dir.file_filter.exclude);
    EXPECT_EQ(strings_of(root_dir.file_filter), (std::vector<std::string>{"*.tmp", "*.bak"}));
    EXPECT_TRUE(root_dir.dir_filter.exclude);
    EXPECT_TRUE(root_dir.dir_filter.is_empty());
    EXPECT_EQ(strings_of(root_dir.path_filter), (std::vector<std::string>{"logs"}));
    EXPECT_TRUE(root_dir.has_filters);
    EXPECT_EQ(root_dir.path_item, item("Path"));
    EXPECT_EQ(root_dir.id_item, item("ID"));
    EXPECT_EQ(root_dir.db_dir_item, item("DBdir"));
    EXPECT_EQ(root_dir.match_all_item, item("MatchAllKidsVolume"));
    EXPECT_EQ(root_dir.file_filter_item, item("FileRegExpr"));
    EXPECT_EQ(root_dir.dir_filter_item, item("DirRegExpr"));
    EXPECT_EQ(root_dir.path_filter_item, item("DirPath"));
    EXPECT_EQ(root_dir.tree->get_root(), nullptr) << "the own tree stays empty";
    EXPECT_EQ(failure_count(capture.text()), 0u) << capture.text();
    EXPECT_EQ(printed(root_dir),
              "RootDirectory \"C:/data\", AutoCreated\", NotMatchAllKidsVolume\", ID = 7\n"
              "\tInclude FileRegExpr Filter: {*.tmp, *.bak}\n"
              "\tExclude DirRegExpr Filter is Empty\n"
              "\tExclude DirPath Filter: {logs}\n");
}

TEST_F(root_dir_tree_test, reading_leaves_the_items_texts_as_they_are) {
    xmc_root_dir_c root_dir(load(root_dir_text));
    EXPECT_EQ(attribute_of(item("Path"), "val"), "C:\\data\\") << "the model is normalised";
    EXPECT_EQ(attribute_of(item("ID"), "val"), "7");
    EXPECT_EQ(attribute_of(item("DBdir"), "val"), "True");
    EXPECT_EQ(item("ID")->find_attribute("val")->get_type(), value_c::type_string);
    EXPECT_EQ(item("DBdir")->find_attribute("val")->get_type(), value_c::type_string);
}

TEST_F(root_dir_tree_test, a_null_item_gives_a_root_dir_bound_to_nothing) {
    trace_capture_c capture;
    xmc_root_dir_c root_dir(nullptr);
    EXPECT_EQ(root_dir.path, nullptr);
    EXPECT_EQ(root_dir.path_item, nullptr);
    EXPECT_EQ(root_dir.file_filter_item, nullptr);
    EXPECT_TRUE(root_dir.match_all_kids_volume);
    EXPECT_FALSE(root_dir.has_filters);
    EXPECT_EQ(failure_count(capture.text()), 0u) << capture.text();
    root_dir.set_path("C:/x");
    root_dir.set_id(3);
    EXPECT_TRUE(root_dir._add_expression(file_type, "*.x"));
    EXPECT_TRUE(root_dir._rem_expression(file_type, "*.x"));
    EXPECT_STREQ(root_dir.path, "C:/x");
    EXPECT_EQ(root_dir.id, 3u);
}

TEST_F(root_dir_tree_test, a_filter_object_with_status_true_and_no_entries_comes_out_false) {
    xml_item_c* top = load(root_dir_of(filter_object("FileRegExpr", "True", "True", {})));
    labeled_value_c* status = child_labelled(top, "FileRegExpr")->find_attribute("status");
    ASSERT_EQ(text_of(status), "True");
    xmc_root_dir_c root_dir(top);
    EXPECT_EQ(attribute_of(root_dir.file_filter_item, "status"), "False")
        << "the tree is changed by merely reading it";
    labeled_value_c* written = root_dir.file_filter_item->find_attribute("status");
    EXPECT_EQ(written->get_type(), value_c::type_string);
    EXPECT_FALSE(written->get_error());
}

TEST_F(root_dir_tree_test, a_filter_object_with_status_false_and_entries_comes_out_true) {
    xmc_root_dir_c root_dir(load(root_dir_text));
    EXPECT_EQ(attribute_of(item("DirPath"), "status"), "True");
    EXPECT_EQ(attribute_of(item("FileRegExpr"), "status"), "True");
    EXPECT_EQ(attribute_of(item("DirRegExpr"), "status"), "False");
}

TEST_F(root_dir_tree_test, a_filter_object_without_status_is_left_alone) {
    xml_item_c* top = load(
        root_dir_of("<object label=\"DirRegExpr\" id=\"500\">"
                    "<data label=\"ExcludeFilter\" val=\"True\" type=\"Bool\"/>"
                    "<data label=\"ListFilters\" val=\"String\" type=\"MultiEntry\">"
                    "<data label=\"ListFilters\" val=\"tmp\" type=\"String\"/></data></object>"));
    xmc_root_dir_c root_dir(top);
    EXPECT_EQ(root_dir.dir_filter_item->find_attribute("status"), nullptr);
    EXPECT_EQ(strings_of(root_dir.dir_filter), (std::vector<std::string>{"tmp"}));
}

TEST_F(root_dir_tree_test, entries_without_a_label_are_traced_and_passed_over) {
    trace_capture_c capture;
    xml_item_c* top = load(root_dir_of("<data val=\"C:/a\" type=\"FullPath\"/>"
                                       "<data label=\"Path\" val=\"C:/b\" type=\"FullPath\"/>"));
    xmc_root_dir_c root_dir(top);
    EXPECT_STREQ(root_dir.path, "C:/b");
    EXPECT_EQ(root_dir.path_item, top->first_child_item()->next_item());
    std::string text = capture.text();
    expect_failure_line(text, "Unnamed entry is found under RootDir node ",
                        "xmc_root_dir_c::xmc_root_dir_c");
    EXPECT_EQ(failure_count(text), 1u) << text;
}

TEST_F(root_dir_tree_test, relevant_and_irrelevant_children_are_passed_over_in_silence) {
    trace_capture_c capture;
    xml_item_c* top = load(root_dir_of("<relevant label=\"Application\" val=\"FileServer\"/>"
                                       "<irrelevant val=\"x\"/>"
                                       "<data label=\"ID\" val=\"12\" type=\"Number\"/>"));
    xmc_root_dir_c root_dir(top);
    EXPECT_EQ(root_dir.id, 12u);
    EXPECT_EQ(failure_count(capture.text()), 0u) << capture.text();
}

TEST_F(root_dir_tree_test, an_unknown_label_is_an_inconsistent_field) {
    trace_capture_c capture;
    xmc_root_dir_c root_dir(
        load(root_dir_of("<data label=\"Colour\" val=\"red\" type=\"String\"/>")));
    expect_failure_line(capture.text(), "Inconsistent field Colour is found under RootDir node",
                        "xmc_root_dir_c::xmc_root_dir_c");
}

TEST_F(root_dir_tree_test, a_data_field_without_val_is_an_inconsistent_field) {
    trace_capture_c capture;
    xml_item_c* top = load(root_dir_of("<data label=\"Path\" type=\"FullPath\"/>"
                                       "<data label=\"ID\" type=\"Number\"/>"
                                       "<data label=\"DBdir\" type=\"Bool\"/>"
                                       "<data label=\"MatchAllKidsVolume\" type=\"Bool\"/>"));
    xmc_root_dir_c root_dir(top);
    EXPECT_EQ(root_dir.path_item, nullptr);
    EXPECT_EQ(root_dir.id_item, nullptr);
    EXPECT_EQ(root_dir.db_dir_item, nullptr);
    EXPECT_EQ(root_dir.match_all_item, nullptr);
    EXPECT_TRUE(root_dir.match_all_kids_volume);
    std::string text = capture.text();
    for (const char* label : {"Path", "ID", "DBdir", "MatchAllKidsVolume"})
        expect_failure_line(
            text, std::string("Inconsistent field ") + label + " is found under RootDir node",
            "xmc_root_dir_c::xmc_root_dir_c");
}

TEST_F(root_dir_tree_test, a_second_occurrence_is_an_inconsistent_field_and_the_first_stays) {
    trace_capture_c capture;
    xml_item_c* top = load(root_dir_of("<data label=\"ID\" val=\"1\" type=\"Number\"/>"
                                       "<data label=\"ID\" val=\"2\" type=\"Number\"/>" +
                                       filter_object("DirPath", "False", "True", {"first"}) +
                                       filter_object("DirPath", "False", "True", {"second"})));
    xmc_root_dir_c root_dir(top);
    EXPECT_EQ(root_dir.id, 1u);
    EXPECT_EQ(root_dir.id_item, top->first_child_item());
    EXPECT_EQ(strings_of(root_dir.path_filter), (std::vector<std::string>{"first"}));
    EXPECT_EQ(root_dir.path_filter_item, child_labelled(top, "DirPath"));
    std::string text = capture.text();
    expect_failure_line(text, "Inconsistent field ID is found under RootDir node",
                        "xmc_root_dir_c::xmc_root_dir_c");
    expect_failure_line(text, "Inconsistent field DirPath is found under RootDir node",
                        "xmc_root_dir_c::xmc_root_dir_c");
    EXPECT_EQ(failure_count(text), 2u) << text;
}

TEST_F(root_dir_tree_test, an_empty_filter_object_is_traced_and_its_filter_stays_empty) {
    trace_capture_c capture;
    xmc_root_dir_c root_dir(
        load(root_dir_of("<object label=\"FileRegExpr\" id=\"500\" status=\"False\"/>")));
    EXPECT_EQ(root_dir.file_filter_item, item("FileRegExpr"));
    EXPECT_TRUE(root_dir.file_filter.is_empty());
    EXPECT_TRUE(root_dir.file_filter.exclude);
    expect_failure_line(capture.text(), "Empty Filter content xml node is found",
                        "xmc_root_dir_c::_set_filter_content");
}

TEST_F(root_dir_tree_test, set_filter_content_of_a_null_item_is_an_empty_filter_content) {
    trace_capture_c capture;
    xmc_root_dir_c root_dir(nullptr);
    root_dir._set_filter_content(nullptr, root_dir.dir_filter);
    EXPECT_TRUE(root_dir.dir_filter.is_empty());
    expect_failure_line(capture.text(), "Empty Filter content xml node is found",
                        "xmc_root_dir_c::_set_filter_content");
}

TEST_F(root_dir_tree_test, a_filter_without_exclude_filter_keeps_its_flag_and_reads_its_list) {
    trace_capture_c capture;
    xml_item_c* top = load(root_dir_of(
        "<object label=\"DirRegExpr\" id=\"500\" status=\"True\">"
        "<data label=\"Other\" val=\"False\" type=\"Bool\"/>"
        "<data label=\"ListFilters\" val=\"String\" type=\"MultiEntry\">"
        "<data label=\"ListFilters\" val=\"cache*\" type=\"String\"/></data></object>"));
    xmc_root_dir_c root_dir(top);
    EXPECT_TRUE(root_dir.dir_filter.exclude);
    EXPECT_EQ(strings_of(root_dir.dir_filter), (std::vector<std::string>{"cache*"}));
    expect_failure_line(capture.text(), "Inconsistent ExcludeFilter xml node is found",
                        "xmc_root_dir_c::_set_filter_content");
}

TEST_F(root_dir_tree_test, an_exclude_filter_without_val_keeps_the_flag) {
    trace_capture_c capture;
    xml_item_c* top = load(
        root_dir_of("<object label=\"DirRegExpr\" id=\"500\" status=\"False\">"
                    "<data label=\"ExcludeFilter\" type=\"Bool\"/>"
                    "<data label=\"ListFilters\" val=\"String\" type=\"MultiEntry\"/></object>"));
    xmc_root_dir_c root_dir(top);
    EXPECT_TRUE(root_dir.dir_filter.exclude);
    std::string text = capture.text();
    expect_failure_line(text, "Inconsistent ExcludeFilter xml node is found",
                        "xmc_root_dir_c::_set_filter_content");
    EXPECT_FALSE(trace_line(text, "Data item missing value \"data.ExcludeFilter => "
                                  "object.DirRegExpr => object.RootDir\"")
                     .empty())
        << "the shape check speaks too\n"
        << text;
}

TEST_F(root_dir_tree_test, exclude_is_true_only_for_the_exact_word) {
    xml_item_c* top = load(root_dir_of(filter_object("FileRegExpr", "False", "true", {}) +
                                       filter_object("DirRegExpr", "False", "False", {}) +
                                       filter_object("DirPath", "False", "True", {})));
    xmc_root_dir_c root_dir(top);
    EXPECT_FALSE(root_dir.file_filter.exclude) << "true in lower case is no True";
    EXPECT_FALSE(root_dir.dir_filter.exclude);
    EXPECT_TRUE(root_dir.path_filter.exclude);
}

TEST_F(root_dir_tree_test, a_filter_without_list_filters_is_traced_and_stays_empty) {
    trace_capture_c capture;
    xml_item_c* top = load(
        root_dir_of("<object label=\"DirPath\" id=\"500\" status=\"False\">"
                    "<data label=\"ExcludeFilter\" val=\"False\" type=\"Bool\"/></object>"
                    "<object label=\"DirRegExpr\" id=\"500\" status=\"False\">"
                    "<data label=\"ExcludeFilter\" val=\"True\" type=\"Bool\"/>"
                    "<data label=\"Lists\" val=\"String\" type=\"MultiEntry\">"
                    "<data label=\"ListFilters\" val=\"x\" type=\"String\"/></data></object>"));
    xmc_root_dir_c root_dir(top);
    EXPECT_FALSE(root_dir.path_filter.exclude) << "the flag is read before the list";
    EXPECT_TRUE(root_dir.path_filter.is_empty());
    EXPECT_TRUE(root_dir.dir_filter.is_empty());
    std::string text = capture.text();
    expect_failure_line(text, "Inconsistent ListFilters xml node is found",
                        "xmc_root_dir_c::_set_filter_content");
    EXPECT_EQ(failure_count(text), 2u) << text;
}

TEST_F(root_dir_tree_test, list_filters_elements_without_val_are_traced_and_skipped) {
    trace_capture_c capture;
    xml_item_c* top = load(
        root_dir_of("<object label=\"FileRegExpr\" id=\"500\" status=\"True\">"
                    "<data label=\"ExcludeFilter\" val=\"True\" type=\"Bool\"/>"
                    "<data label=\"ListFilters\" val=\"String\" type=\"MultiEntry\">"
                    "<data label=\"ListFilters\" val=\"a\" type=\"String\"/>"
                    "<data label=\"ListFilters\" type=\"String\"/>"
                    "<data label=\"ListFilters\" val=\"b\" type=\"String\"/></data></object>"));
    xmc_root_dir_c root_dir(top);
    EXPECT_EQ(strings_of(root_dir.file_filter), (std::vector<std::string>{"a", "b"}));
    std::string text = capture.text();
    expect_failure_line(text, "Inconsistent element of ListFilters xml node is found",
                        "xmc_root_dir_c::_set_filter_content");
    EXPECT_EQ(failure_count(text), 1u) << text;
}

TEST_F(root_dir_tree_test, set_filter_content_stores_a_text_twice_and_as_it_stands) {
    xml_item_c* top =
        load(root_dir_of(filter_object("DirPath", "True", "True", {"C:\\data\\logs", "x", "x"})));
    xmc_root_dir_c root_dir(top);
    EXPECT_EQ(strings_of(root_dir.path_filter),
              (std::vector<std::string>{"C:\\data\\logs", "x", "x"}));
}

// ---- writing through

TEST_F(root_dir_tree_test, set_path_writes_the_normalised_path_as_a_string_value) {
    xmc_root_dir_c root_dir(load(root_dir_text));
    root_dir.set_path("E:\\new\\place\\");
    EXPECT_STREQ(root_dir.path, "E:/new/place");
    labeled_value_c* val = item("Path")->find_attribute("val");
    EXPECT_EQ(text_of(val), "E:/new/place");
    EXPECT_EQ(val->get_type(), value_c::type_string);
    EXPECT_FALSE(val->get_error());
    EXPECT_STREQ(root_dir.display_path.c_str(), "C:/data") << "the display path is not written";
    root_dir.set_path("");
    EXPECT_EQ(root_dir.path, nullptr);
    EXPECT_EQ(text_of(val), "");
}

TEST_F(root_dir_tree_test, set_path_with_the_current_path_changes_nothing_and_writes_nothing) {
    xmc_root_dir_c root_dir(load(root_dir_text));
    labeled_value_c* val = item("Path")->find_attribute("val");
    val->set_string("marker");
    root_dir.set_path("C:/data");
    EXPECT_EQ(text_of(val), "marker") << "no write to the tree";
    EXPECT_STREQ(root_dir.path, "C:/data");
    root_dir.set_path("C:\\data\\");
    EXPECT_EQ(text_of(val), "C:/data") << "another spelling of the same path is written";
}

TEST_F(root_dir_tree_test, set_path_of_an_empty_text_without_a_path_writes_nothing) {
    xml_item_c* top = load(root_dir_of("<data label=\"Path\" val=\"\" type=\"FullPath\"/>"));
    xmc_root_dir_c root_dir(top);
    ASSERT_EQ(root_dir.path_item, top->first_child_item());
    root_dir.path_item->find_attribute("val")->set_string("marker");
    root_dir.set_path("");
    root_dir.set_path(nullptr);
    EXPECT_EQ(attribute_of(root_dir.path_item, "val"), "marker");
}

TEST_F(root_dir_tree_test, set_db_dir_writes_the_word_when_the_value_changes) {
    xmc_root_dir_c root_dir(load(root_dir_text));
    labeled_value_c* val = item("DBdir")->find_attribute("val");
    val->set_string("marker");
    root_dir.set_db_dir(true);
    EXPECT_EQ(text_of(val), "marker") << "unchanged: no write";
    root_dir.set_db_dir(false);
    EXPECT_FALSE(root_dir.db_dir);
    EXPECT_EQ(text_of(val), "False");
    EXPECT_EQ(val->get_type(), value_c::type_string);
    root_dir.set_db_dir(true);
    EXPECT_EQ(text_of(val), "True");
}

TEST_F(root_dir_tree_test, set_match_all_kids_volume_writes_the_word_when_the_value_changes) {
    xmc_root_dir_c root_dir(load(root_dir_text));
    labeled_value_c* val = item("MatchAllKidsVolume")->find_attribute("val");
    val->set_string("marker");
    root_dir.set_match_all_kids_volume(false);
    EXPECT_EQ(text_of(val), "marker") << "unchanged: no write";
    root_dir.set_match_all_kids_volume(true);
    EXPECT_TRUE(root_dir.match_all_kids_volume);
    EXPECT_EQ(text_of(val), "True");
    EXPECT_EQ(val->get_type(), value_c::type_string);
}

TEST_F(root_dir_tree_test, set_id_writes_the_number_as_a_string_value) {
    xmc_root_dir_c root_dir(load(root_dir_text));
    labeled_value_c* val = item("ID")->find_attribute("val");
    val->set_string("marker");
    root_dir.set_id(7);
    EXPECT_EQ(text_of(val), "marker") << "unchanged: no write";
    root_dir.set_id(4294967295u);
    EXPECT_EQ(root_dir.id, 4294967295u);
    EXPECT_EQ(text_of(val), "4294967295");
    EXPECT_EQ(val->get_type(), value_c::type_string);
    EXPECT_FALSE(val->get_error());
}

TEST_F(root_dir_tree_test, set_exclude_writes_the_flag_to_exclude_filter_every_time) {
    xmc_root_dir_c root_dir(load(root_dir_text));
    xml_item_c* exclude_item = child_labelled(item("DirRegExpr"), "ExcludeFilter");
    root_dir.set_exclude(dir_type, false);
    EXPECT_FALSE(root_dir.dir_filter.exclude);
    EXPECT_EQ(attribute_of(exclude_item, "val"), "False");
    exclude_item->find_attribute("val")->set_string("marker");
    root_dir.set_exclude(dir_type, false);
    EXPECT_EQ(attribute_of(exclude_item, "val"), "False") << "written even when unchanged";
    root_dir.set_exclude(3, true);
    EXPECT_EQ(attribute_of(exclude_item, "val"), "False") << "type 3 selects no filter";
}

TEST_F(root_dir_tree_test, add_expression_appends_a_list_filters_entry_and_status_follows) {
    xmc_root_dir_c root_dir(load(root_dir_text));
    ASSERT_EQ(attribute_of(item("DirRegExpr"), "status"), "False");
    EXPECT_TRUE(root_dir._add_expression(dir_type, "cache*"));
    EXPECT_EQ(strings_of(root_dir.dir_filter), (std::vector<std::string>{"cache*"}));
    EXPECT_EQ(tree_entries(item("DirRegExpr")), (std::vector<std::string>{"cache*"}));
    xml_item_c* entry = list_of(item("DirRegExpr"))->first_child_item();
    EXPECT_STREQ(entry->label, "data");
    EXPECT_EQ(attribute_of(entry, "label"), "ListFilters");
    EXPECT_EQ(attribute_of(entry, "type"), "String") << "the list's val";
    const xmc_item_c* typed = xmc_item_c::as_xmc(entry);
    ASSERT_NE(typed, nullptr);
    EXPECT_EQ(typed->kind, 2u);
    EXPECT_EQ(attribute_of(item("DirRegExpr"), "status"), "True");
    EXPECT_EQ(root_dir.tree->get_root(), nullptr);
}

TEST_F(root_dir_tree_test, add_expression_of_a_null_text_returns_false_without_a_trace) {
    trace_capture_c capture;
    xmc_root_dir_c root_dir(load(root_dir_text));
    EXPECT_FALSE(root_dir._add_expression(file_type, nullptr));
    EXPECT_FALSE(root_dir._rem_expression(file_type, nullptr));
    EXPECT_EQ(failure_count(capture.text()), 0u) << capture.text();
    EXPECT_FALSE(root_dir._add_expression(file_type, ""));
    expect_failure_line(capture.text(), "Unable to add empty string as filter",
                        "root_dir_c::_add_expression");
    EXPECT_EQ(tree_entries(item("FileRegExpr")), (std::vector<std::string>{"*.tmp", "*.bak"}));
}

TEST_F(root_dir_tree_test, a_failed_add_writes_nothing_to_the_tree) {
    xmc_root_dir_c root_dir(load(root_dir_text));
    EXPECT_FALSE(root_dir._add_expression(path_type, "D:/elsewhere"));
    EXPECT_EQ(tree_entries(item("DirPath")), (std::vector<std::string>{"logs"}));
}

TEST_F(root_dir_tree_test, a_held_text_added_again_is_written_again_through_the_item) {
    xmc_root_dir_c root_dir(load(root_dir_text));
    EXPECT_TRUE(root_dir._add_expression(file_type, "*.tmp"));
    EXPECT_EQ(strings_of(root_dir.file_filter), (std::vector<std::string>{"*.tmp", "*.bak"}));
    EXPECT_EQ(tree_entries(item("FileRegExpr")),
              (std::vector<std::string>{"*.tmp", "*.bak", "*.tmp"}))
        << "every true result of the model writes the caller's text";
}

TEST_F(root_dir_tree_test, a_full_dir_path_goes_to_the_tree_as_given_and_to_the_model_relative) {
    xmc_root_dir_c root_dir(load(root_dir_text));
    EXPECT_TRUE(root_dir._add_expression(path_type, "C:\\data\\cache"));
    EXPECT_EQ(strings_of(root_dir.path_filter), (std::vector<std::string>{"logs", "cache"}));
    EXPECT_EQ(tree_entries(item("DirPath")), (std::vector<std::string>{"logs", "C:\\data\\cache"}));
    // Removed by its relative form, the model lets it go; the tree has no entry of that text.
    EXPECT_TRUE(root_dir._rem_expression(path_type, "cache"));
    EXPECT_EQ(strings_of(root_dir.path_filter), (std::vector<std::string>{"logs"}));
    EXPECT_EQ(tree_entries(item("DirPath")), (std::vector<std::string>{"logs", "C:\\data\\cache"}));
}

TEST_F(root_dir_tree_test, rem_expression_removes_the_first_entry_of_the_callers_text) {
    xmc_root_dir_c root_dir(load(root_dir_text));
    EXPECT_TRUE(root_dir._rem_expression(file_type, "*.tmp"));
    EXPECT_EQ(strings_of(root_dir.file_filter), (std::vector<std::string>{"*.bak"}));
    EXPECT_EQ(tree_entries(item("FileRegExpr")), (std::vector<std::string>{"*.bak"}));
    EXPECT_FALSE(root_dir._rem_expression(file_type, "*.tmp"));
    EXPECT_EQ(tree_entries(item("FileRegExpr")), (std::vector<std::string>{"*.bak"}));
}

TEST_F(root_dir_tree_test, removing_the_last_entry_turns_the_status_false) {
    xmc_root_dir_c root_dir(load(root_dir_text));
    ASSERT_EQ(attribute_of(item("DirPath"), "status"), "True");
    EXPECT_TRUE(root_dir._rem_expression(path_type, "C:/data/logs"));
    EXPECT_TRUE(root_dir.path_filter.is_empty());
    EXPECT_EQ(tree_entries(item("DirPath")), (std::vector<std::string>{"logs"}))
        << "the tree entry is found by the caller's text only";
    EXPECT_EQ(attribute_of(item("DirPath"), "status"), "False");
    EXPECT_TRUE(root_dir.has_filters) << "the file filter still has entries";
}

TEST_F(root_dir_tree_test, copy_filter_writes_exclude_and_replaces_the_entries) {
    xmc_root_dir_c root_dir(load(root_dir_text));
    root_dir_c source;
    source.file_filter.exclude = true;
    source.file_filter.add("*.log");
    root_dir.copy_filter(file_type, source);
    EXPECT_TRUE(root_dir.file_filter == source.file_filter);
    xml_item_c* object = item("FileRegExpr");
    EXPECT_EQ(attribute_of(child_labelled(object, "ExcludeFilter"), "val"), "True");
    EXPECT_EQ(tree_entries(object), (std::vector<std::string>{"*.log"}));
    xml_item_c* entry = list_of(object)->first_child_item();
    EXPECT_EQ(attribute_of(entry, "label"), "ListFilters");
    EXPECT_EQ(attribute_of(entry, "type"), "String");
}

TEST_F(root_dir_tree_test, copy_filter_into_an_object_without_a_list_writes_only_exclude) {
    xml_item_c* top = load(root_dir_of("<object label=\"DirRegExpr\" id=\"500\">"
                                       "<data label=\"ExcludeFilter\" val=\"True\" "
                                       "type=\"Bool\"/></object>"));
    xmc_root_dir_c root_dir(top);
    root_dir_c source;
    source.dir_filter.exclude = false;
    source.dir_filter.add("d*");
    root_dir.copy_filter(dir_type, source);
    EXPECT_EQ(strings_of(root_dir.dir_filter), (std::vector<std::string>{"d*"}));
    xml_item_c* object = child_labelled(top, "DirRegExpr");
    EXPECT_EQ(attribute_of(object->first_child_item(), "val"), "False");
    EXPECT_EQ(object->first_child_item()->next_item(), nullptr);
}

TEST_F(root_dir_tree_test, copy_filter_with_type_3_does_not_write_a_filter_that_already_equals) {
    xmc_root_dir_c root_dir(load(root_dir_text));
    root_dir_c source;
    source.copy_filter(file_type, root_dir);
    source.dir_filter.add("other*");
    source.path_filter.add("logs");
    ASSERT_TRUE(source.file_filter == root_dir.file_filter);
    ASSERT_TRUE(source.path_filter == root_dir.path_filter);
    // Markers in the items of the equal filters show whether anything is written there.
    child_labelled(item("FileRegExpr"), "ExcludeFilter")->find_attribute("val")->set_string("m");
    list_of(item("FileRegExpr"))->first_child_item()->find_attribute("val")->set_string("m1");
    list_of(item("DirPath"))->first_child_item()->find_attribute("val")->set_string("m2");
    root_dir.copy_filter(root_dir_c::all_filters, source);
    EXPECT_EQ(attribute_of(child_labelled(item("FileRegExpr"), "ExcludeFilter"), "val"), "m");
    EXPECT_EQ(tree_entries(item("FileRegExpr")), (std::vector<std::string>{"m1", "*.bak"}));
    EXPECT_EQ(tree_entries(item("DirPath")), (std::vector<std::string>{"m2"}));
    EXPECT_EQ(tree_entries(item("DirRegExpr")), (std::vector<std::string>{"other*"}));
    EXPECT_EQ(attribute_of(child_labelled(item("DirRegExpr"), "ExcludeFilter"), "val"), "True");
    EXPECT_TRUE(root_dir.dir_filter == source.dir_filter);
}

TEST_F(root_dir_tree_test, copy_filter_with_type_3_writes_every_filter_that_differs) {
    xmc_root_dir_c root_dir(load(root_dir_text));
    root_dir_c source;
    source.set_exclude(path_type, false);
    root_dir.copy_filter(root_dir_c::all_filters, source);
    EXPECT_TRUE(root_dir.file_filter.is_empty());
    EXPECT_TRUE(root_dir.path_filter.is_empty());
    EXPECT_FALSE(root_dir.path_filter.exclude);
    EXPECT_TRUE(tree_entries(item("FileRegExpr")).empty());
    EXPECT_TRUE(tree_entries(item("DirPath")).empty());
    EXPECT_EQ(attribute_of(child_labelled(item("FileRegExpr"), "ExcludeFilter"), "val"), "True");
    EXPECT_EQ(attribute_of(child_labelled(item("DirPath"), "ExcludeFilter"), "val"), "False");
}

TEST_F(root_dir_tree_test, the_overrides_run_through_a_reference_to_the_plain_model) {
    auto* bound = new xmc_root_dir_c(load(root_dir_text));
    std::unique_ptr<root_dir_c> owner(bound);
    root_dir_c& plain = *owner;
    plain.set_id(99);
    plain.set_db_dir(false);
    plain.set_match_all_kids_volume(true);
    plain.set_path("F:/moved");
    plain.set_exclude(path_type, false);
    EXPECT_TRUE(plain._add_expression(dir_type, "x*"));
    EXPECT_EQ(attribute_of(item("ID"), "val"), "99");
    EXPECT_EQ(attribute_of(item("DBdir"), "val"), "False");
    EXPECT_EQ(attribute_of(item("MatchAllKidsVolume"), "val"), "True");
    EXPECT_EQ(attribute_of(item("Path"), "val"), "F:/moved");
    EXPECT_EQ(attribute_of(child_labelled(item("DirPath"), "ExcludeFilter"), "val"), "False");
    EXPECT_EQ(tree_entries(item("DirRegExpr")), (std::vector<std::string>{"x*"}));
    plain.set_display_path("G:/shown");
    EXPECT_STREQ(plain.display_path.c_str(), "G:/shown");
    EXPECT_EQ(attribute_of(item("Path"), "val"), "F:/moved") << "the display path is not bound";
}

TEST_F(root_dir_tree_test, the_object_dies_through_either_base) {
    xml_item_c* top = load(root_dir_text);
    xmc_conf_c* as_conf = new xmc_root_dir_c(top);
    EXPECT_EQ(as_conf->tree->get_root(), nullptr);
    delete as_conf;
    conf_c* as_base = new xmc_root_dir_c(top);
    delete as_base;
    EXPECT_EQ(attribute_of(item("Path"), "val"), "C:\\data\\") << "the items are not its own";
}

// ---- bad input

TEST_F(root_dir_tree_test, a_root_dir_item_without_attributes_and_children_without_any) {
    trace_capture_c capture;
    xml_item_c* top = load("<?xml version=\"1.0\"?><object><data/><object><data/></object>"
                           "<title/></object>");
    xmc_root_dir_c root_dir(top);
    EXPECT_EQ(root_dir.path, nullptr);
    EXPECT_FALSE(root_dir.has_filters);
    std::string text = capture.text();
    expect_failure_line(text, "Unnamed entry is found under RootDir node ",
                        "xmc_root_dir_c::xmc_root_dir_c");
    EXPECT_EQ(failure_count(text), 3u) << text;
    EXPECT_NE(printed(root_dir).find("Undefined"), std::string::npos);
}

TEST_F(root_dir_tree_test, items_with_empty_labels_are_inconsistent_fields) {
    trace_capture_c capture;
    xml_item_c* top = load(root_dir_of(
        "<data label=\"\" val=\"\" type=\"\"/>"
        "<object label=\"\" id=\"\" status=\"\"><data label=\"\"/></object>"
        "<object label=\"FileRegExpr\" id=\"500\" status=\"\">"
        "<data label=\"\" val=\"\" type=\"\"/>"
        "<data label=\"ListFilters\" val=\"\" type=\"\"><data label=\"\" val=\"\"/></data>"
        "</object>"));
    xmc_root_dir_c root_dir(top);
    std::string text = capture.text();
    expect_failure_line(text, "Inconsistent field  is found under RootDir node",
                        "xmc_root_dir_c::xmc_root_dir_c");
    expect_failure_line(text, "Inconsistent ExcludeFilter xml node is found",
                        "xmc_root_dir_c::_set_filter_content");
    EXPECT_EQ(strings_of(root_dir.file_filter), (std::vector<std::string>{""}))
        << "an entry with an empty val is an entry";
    EXPECT_EQ(attribute_of(root_dir.file_filter_item, "status"), "True")
        << "an empty status reads as false and the filter has an entry";
}

TEST_F(root_dir_tree_test, a_host_with_a_thousand_root_directories_constructs_and_prints) {
    std::string text = "<?xml version=\"1.0\"?><object label=\"ReplNode\" id=\"2\">"
                       "<data label=\"ListRootDirs\" val=\"3010\" type=\"MultiEntry\">";
    for (int i = 0; i < 1000; ++i) {
        std::string n = std::to_string(i);
        text += "<object label=\"RootDir\" id=\"3010\">";
        switch (i % 4) {
        case 0:
            text += "<data label=\"Path\" val=\"C:/data/" + n + "\" type=\"FullPath\"/>" +
                    "<data label=\"ID\" val=\"" + n + "\" type=\"Number\"/>" +
                    filter_object("DirPath", "False", "True", {"logs", n});
            break;
        case 1: text += "<data/><object><data/></object>"; break;
        case 2:
            text += "<data label=\"ID\" val=\"99999999999999999999\" type=\"Number\"/>"
                    "<data label=\"DBdir\" val=\"maybe\" type=\"Bool\"/>" +
                    filter_object("FileRegExpr", "", "", {"", "*"});
            break;
        default: break;
        }
        text += "</object>";
    }
    text += "</data></object>";
    xml_item_c* host = load(text);
    ASSERT_NE(host, nullptr);
    xml_item_c* first = host->first_child_item()->first_child_item();
    std::vector<std::unique_ptr<xmc_root_dir_c>> root_dirs;
    utl_stream_c all;
    for (xml_item_c* at = first; at; at = at->next_item()) {
        root_dirs.push_back(std::make_unique<xmc_root_dir_c>(at));
        root_dirs.back()->print(all);
    }
    ASSERT_EQ(root_dirs.size(), 1000u);
    EXPECT_STREQ(root_dirs[996]->path, "C:/data/996");
    EXPECT_EQ(root_dirs[996]->id, 996u);
    EXPECT_EQ(strings_of(root_dirs[996]->path_filter), (std::vector<std::string>{"logs", "996"}));
    EXPECT_EQ(root_dirs[2]->id, 0u) << "a number beyond 32 bits reads as 0";
    EXPECT_FALSE(root_dirs[2]->db_dir);
    std::string printed_all = all.c_str();
    std::size_t count = 0;
    for (std::size_t at = printed_all.find("RootDirectory \""); at != std::string::npos;
         at = printed_all.find("RootDirectory \"", at + 1))
        ++count;
    EXPECT_EQ(count, 1000u);
    EXPECT_NE(printed_all.find("RootDirectory \"C:/data/996\", UserDefined\""), std::string::npos);
}
