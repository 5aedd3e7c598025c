// The generic configurator: its build from the built-in template and from faulty copies of the
// line array, every check of the build with its trace lines, the default objects it gives for a
// product, an application and the VettedFailback flag, and reload_object, which renews one
// object of a scenario from them.
#include "configuration/generic_conf.h"

#include "common/test_support.h"
#include "configuration/scenario_documents.h"
#include "configuration/xmc_template.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace sd = scenario_documents;
using test_support::count_of;
using test_support::trace_capture_c;
using test_support::trace_line;

namespace {

constexpr std::uint32_t dr = 0, ha = 1, rw = 3;
constexpr std::uint32_t file_server = 0, exchange = 1, iis = 5, control_service = 6, hyper_v = 7,
                        sql = 4, full_system = 11;
constexpr std::uint32_t application_count = 13, product_count = 4;

const std::string ok_line = "O.K. Generic Coonfigurator is successfully built up";
const std::string fatal_line = "Fatal error, unable to create instance of Generic Coonfigurator";
const std::string inconsistent = "Content of generic xml file is found to be inconsistent";

std::string text_of(const char* text) { return text ? text : ""; }

std::string attribute(const xml_item_c* item, const char* name) {
    labeled_value_c* value = item ? item->find_attribute(name) : nullptr;
    return value ? text_of(value->to_text()) : "";
}
bool has_attribute(const xml_item_c* item, const char* name) {
    return item && item->find_attribute(name);
}

// The next item of a whole subtree in pre-order, external content included.
xml_item_c* next_of(xml_item_c* item, const xml_item_c* top) {
    if (item->first_child) return item->first_child_item();
    for (xml_item_c* at = item; at && at != top; at = at->parent_item())
        if (at->next) return at->next_item();
    return nullptr;
}

// The first item below `top` whose element is `element` and, when given, whose label is `label`.
xml_item_c* find(xml_item_c* top, const std::string& element, const std::string& label = "") {
    if (!top) return nullptr;
    for (xml_item_c* at = next_of(top, top); at; at = next_of(at, top))
        if (text_of(at->label) == element && (label.empty() || attribute(at, "label") == label))
            return at;
    return nullptr;
}

// The number of items below `top` whose element is `element`.
std::size_t count_elements(xml_item_c* top, const std::string& element) {
    std::size_t n = 0;
    for (xml_item_c* at = next_of(top, top); at; at = next_of(at, top))
        if (text_of(at->label) == element) ++n;
    return n;
}

// A default object, deleted with the holder.
struct default_object_s {
    default_object_s(std::uint32_t row, std::uint32_t product, std::uint32_t application, bool flag)
        : item(generic_conf_c::get_default_object(row, product, application, flag)) {}
    xmc_item_c* get() const { return item.get(); }
    std::unique_ptr<xmc_item_c> item;
};

// A copy of the template's line array that a test may change, and the configurator built from
// it. Each line holds one item: an opening tag, a closing tag or a whole childless item.
class template_copy_c {
  public:
    template_copy_c() {
        for (const char* const* line = xmc_template_n::lines(); *line && **line; ++line)
            lines.emplace_back(*line);
    }

    // The place of the `nth` line (from 0) that contains `text`; fails the test when none does.
    std::size_t find(const std::string& text, int nth = 0) const {
        for (std::size_t i = 0; i < lines.size(); ++i)
            if (lines[i].find(text) != std::string::npos && nth-- == 0) return i;
        ADD_FAILURE() << "no line holds " << text;
        return lines.size();
    }
    // The place of the line that closes the item opened at `open`.
    std::size_t close_of(std::size_t open) const {
        int depth = 0;
        for (std::size_t i = open; i < lines.size(); ++i) {
            std::string trimmed = lines[i].substr(lines[i].find_first_not_of(' '));
            bool closes = trimmed.rfind("</", 0) == 0;
            bool whole = trimmed.find("</") != std::string::npos ||
                         (trimmed.size() >= 2 && trimmed.compare(trimmed.size() - 2, 2, "/>") == 0);
            if (closes)
                --depth;
            else if (!whole)
                ++depth;
            if (depth == 0) return i;
        }
        ADD_FAILURE() << "line " << open << " is never closed";
        return lines.size() - 1;
    }
    // Takes out the item opened at `open` with everything in it.
    void erase_item(std::size_t open) {
        std::size_t close = close_of(open);
        lines.erase(lines.begin() + static_cast<long>(open),
                    lines.begin() + static_cast<long>(close) + 1);
    }
    void replace(std::size_t at, const std::string& from, const std::string& to) {
        std::size_t where = lines[at].find(from);
        ASSERT_NE(where, std::string::npos) << lines[at];
        lines[at].replace(where, from.size(), to);
    }

    // The builder's work on these lines; null when the build failed.
    std::unique_ptr<generic_conf_c> build() {
        std::vector<const char*> array;
        for (const std::string& line : lines) array.push_back(line.c_str());
        array.push_back("");
        return std::unique_ptr<generic_conf_c>(generic_conf_n::build(array.data()));
    }

    std::vector<std::string> lines;
};

// A build of a template copy with its trace.
struct built_s {
    explicit built_s(template_copy_c& copy) {
        trace_capture_c capture;
        conf = copy.build();
        trace = capture.text();
    }
    // Whether the trace has a line that ends with `message`.
    bool has_line(const std::string& message) const { return !trace_line(trace, message).empty(); }
    // The build failed, with a line that ends with `message` among its trace.
    void expect_failure_line(const std::string& message) const {
        EXPECT_EQ(conf, nullptr);
        EXPECT_TRUE(has_line(message)) << trace;
    }

    std::unique_ptr<generic_conf_c> conf;
    std::string trace;
};

} // namespace

// ---- the build of the built-in template ---------------------------------------------------------

TEST(generic_conf_build, built_in_template_builds_with_versions_164_and_3) {
    generic_conf_c* conf = the_generic_conf();
    ASSERT_NE(conf, nullptr);
    EXPECT_EQ(conf->xmc_version, 164u);
    EXPECT_EQ(conf->group_version, 3u);
    EXPECT_EQ(attribute(conf->scenario_item, "label"), "Scenario");
    EXPECT_EQ(attribute(conf->group_item, "label"), "Group");
    EXPECT_EQ(attribute(conf->scenario_info_item, "id"), "8010");
    EXPECT_EQ(text_of(conf->objects_item->label), "objects");
    EXPECT_EQ(text_of(conf->enums_item->label), "enums");
    EXPECT_EQ(conf->host_tree->get_host_count(), 1u);
    EXPECT_EQ(conf->host_tree->first_replica(), 2u);
}

TEST(generic_conf_build, an_unchanged_copy_builds_and_traces_only_the_success_line) {
    template_copy_c copy;
    built_s built(copy);
    ASSERT_NE(built.conf, nullptr) << built.trace;
    EXPECT_EQ(built.conf->xmc_version, 164u);
    EXPECT_EQ(built.conf->group_version, 3u);
    std::string line = trace_line(built.trace, ok_line);
    EXPECT_NE(line.find(" level=128 "), std::string::npos) << built.trace;
    EXPECT_NE(line.find("generic_conf_builder_c::generic_conf_builder_c: "), std::string::npos);
    EXPECT_EQ(count_of(built.trace, " level=4 "), 0u) << built.trace;
}

TEST(generic_conf_build, empty_line_array_fails_to_load) {
    template_copy_c copy;
    copy.lines.insert(copy.lines.begin(), "");
    built_s built(copy);
    EXPECT_EQ(built.conf, nullptr);
    std::string line = trace_line(built.trace, "Unable to load generic xml file");
    EXPECT_NE(line.find("generic_conf_c::generic_conf_c: "), std::string::npos) << built.trace;
    EXPECT_NE(line.find(" level=4 "), std::string::npos);
    std::string fatal = trace_line(built.trace, fatal_line);
    EXPECT_NE(fatal.find("generic_conf_builder_c::generic_conf_builder_c: "), std::string::npos);
    EXPECT_NE(fatal.find(" level=4 "), std::string::npos);
}

TEST(generic_conf_build, text_that_is_no_xml_fails_to_load) {
    template_copy_c copy;
    copy.lines.pop_back(); // the root's closing tag
    built_s built(copy);
    built.expect_failure_line("Unable to load generic xml file");
    EXPECT_FALSE(trace_line(built.trace, fatal_line).empty());
}

// ---- edge cases of the build --------------------------------------------------------------------

TEST(generic_conf_build, replica_repl_node_taken_away_fails_below_two_hosts) {
    template_copy_c copy;
    copy.erase_item(copy.find("label=\"ReplNode\"", 1));
    built_s built(copy);
    EXPECT_EQ(built.conf, nullptr);
    EXPECT_EQ(count_of(built.trace, "\nUnable to find nodes \"ReplNode\" in generic xml file "
                                    "having prop. \"Index\"\n"),
              1u)
        << built.trace;
    EXPECT_EQ(count_of(built.trace, "\n" + inconsistent + "\n"), 1u);
    EXPECT_FALSE(trace_line(built.trace, fatal_line).empty());
}

TEST(generic_conf_build, item_order_changed_in_one_enum_gives_two_wrong_position_lines) {
    template_copy_c copy;
    copy.replace(copy.find("<enum label=\"Product\""), "Dr, Ha,", "Ha, Dr,");
    built_s built(copy);
    EXPECT_EQ(built.conf, nullptr);
    EXPECT_EQ(count_of(built.trace, "has wrong position"), 2u) << built.trace;
    // The code's position is printed first, then the place in the template.
    EXPECT_TRUE(built.has_line("Item Ha of enumerator #1 \"Product\" has wrong position "
                               "1, in the code is 0"))
        << built.trace;
    EXPECT_TRUE(built.has_line("Item Dr of enumerator #1 \"Product\" has wrong position "
                               "0, in the code is 1"))
        << built.trace;
    EXPECT_FALSE(trace_line(built.trace, fatal_line).empty());
    // The enumerations fail the build before the tables and the hosts are looked at.
    EXPECT_EQ(count_of(built.trace, inconsistent), 0u);
}

TEST(generic_conf_build, sixteenth_enum_removed_gives_one_set_of_enumerator_line) {
    template_copy_c copy;
    copy.erase_item(copy.find("<enum label=\"SecureCommunicationLevel\""));
    built_s built(copy);
    EXPECT_EQ(count_of(built.trace, "Set of enumerator has different number items (15) from "
                                    "those in the code (16)"),
              1u)
        << built.trace;
    // Too few enumerations pass: the build goes on and succeeds.
    EXPECT_NE(built.conf, nullptr);
    EXPECT_FALSE(trace_line(built.trace, ok_line).empty());
}

TEST(generic_conf_build, report_under_a_title_of_scenario_and_directly_under_it_are_accepted) {
    // Under the title `ManagerData`, as the template has it: a title is no papa, so the papa is
    // `Scenario`, which the exception for rows 32 and 35 accepts.
    {
        template_copy_c copy;
        built_s built(copy);
        EXPECT_NE(built.conf, nullptr);
        EXPECT_EQ(count_of(built.trace, "Inconsistent Papa object"), 0u) << built.trace;
    }
    // Directly under `Scenario`: the check cannot tell the two apart.
    {
        template_copy_c copy;
        std::size_t title = copy.find("<title label=\"ManagerData\">");
        std::size_t close = copy.close_of(title);
        copy.lines.erase(copy.lines.begin() + static_cast<long>(close));
        copy.lines.erase(copy.lines.begin() + static_cast<long>(title));
        built_s built(copy);
        EXPECT_NE(built.conf, nullptr) << built.trace;
        EXPECT_EQ(count_of(built.trace, "Inconsistent Papa object"), 0u) << built.trace;
    }
    // Anywhere else the papa must be the row's: a `Report` in `Switchover` is refused.
    {
        template_copy_c copy;
        std::size_t report = copy.find("<object label=\"Report\"", 1);
        std::vector<std::string> moved(copy.lines.begin() + static_cast<long>(report),
                                       copy.lines.begin() +
                                           static_cast<long>(copy.close_of(report)) + 1);
        copy.erase_item(report);
        std::size_t switchover = copy.find("<object label=\"Switchover\"", 1);
        copy.lines.insert(copy.lines.begin() + static_cast<long>(switchover) + 1, moved.begin(),
                          moved.end());
        built_s built(copy);
        built.expect_failure_line("Inconsistent Papa object \"Switchover\" of "
                                  "\"Report\", found in \"object_tag_table\"");
    }
}

// ---- the landmarks ------------------------------------------------------------------------------

TEST(generic_conf_build, missing_landmarks_are_each_reported) {
    template_copy_c copy;
    copy.erase_item(copy.find("<object label=\"ScenarioInfo\""));
    copy.replace(copy.find("label=\"XMC_VersionNumber\""), "XMC_VersionNumber", "XMC_Version");
    built_s built(copy);
    EXPECT_EQ(count_of(built.trace, "\nSource file doesn't include \"ScenarioInfo\" entry\n"), 1u)
        << built.trace;
    EXPECT_EQ(count_of(built.trace, "\nSource file doesn't include \"XMC_VersionNumber\" entry\n"),
              1u);
    EXPECT_EQ(count_of(built.trace, "Source file doesn't include"), 2u);
    // Reported, not fatal by themselves.
    ASSERT_NE(built.conf, nullptr);
    EXPECT_EQ(built.conf->xmc_version, 0u);
    EXPECT_EQ(built.conf->scenario_info_item, nullptr);
}

TEST(generic_conf_build, without_enums_the_build_ends_after_the_missing_lines) {
    template_copy_c copy;
    copy.erase_item(copy.find("<enums>"));
    copy.erase_item(copy.find("<objects>"));
    built_s built(copy);
    EXPECT_EQ(built.conf, nullptr);
    EXPECT_EQ(count_of(built.trace, "\nSource file doesn't include \"objects\" entry\n"), 1u)
        << built.trace;
    EXPECT_EQ(count_of(built.trace, "\nSource file doesn't include \"enums\" entry\n"), 1u);
    EXPECT_EQ(count_of(built.trace, "Set of enumerator"), 0u);
    EXPECT_EQ(count_of(built.trace, inconsistent), 0u);
    EXPECT_FALSE(trace_line(built.trace, fatal_line).empty());
}

TEST(generic_conf_build, a_second_landmark_is_superfluous_and_the_first_stays) {
    template_copy_c copy;
    std::size_t definitions = copy.find("<definitions>");
    copy.lines.insert(copy.lines.begin() + static_cast<long>(definitions) + 1, "<enums/>");
    std::size_t group_version = copy.find("label=\"Group_VersionNumber\"");
    copy.lines.insert(copy.lines.begin() + static_cast<long>(group_version) + 1,
                      R"(<data label="Group_VersionNumber" val="9" type="Number"/>)");
    built_s built(copy);
    EXPECT_TRUE(built.has_line("Found superfluous XMC entry for enums")) << built.trace;
    EXPECT_TRUE(built.has_line("Found superfluous XMC entry for Group_VersionNumber"))
        << built.trace;
    // The first `enums` is the empty one: no enumerator is left to compare.
    EXPECT_TRUE(built.has_line("Set of enumerator has different number items (0) from "
                               "those in the code (16)"))
        << built.trace;
}

TEST(generic_conf_build, a_version_without_val_is_invalid) {
    template_copy_c copy;
    copy.replace(copy.find("label=\"Group_VersionNumber\""), " val=\"3\"", "");
    built_s built(copy);
    EXPECT_TRUE(built.has_line("Found invalid XMC entry for Group_VersionNumber")) << built.trace;
    // The data item without `val` fails the shape check of the tables' step.
    built.expect_failure_line("Data item missing value \"data.Group_VersionNumber from "
                              "Scenario, object Group\"");
}

TEST(generic_conf_build, an_item_without_attributes_is_an_empty_entry) {
    template_copy_c copy;
    std::size_t version = copy.find("<data label=\"Version\" val=\"5\"");
    copy.lines.insert(copy.lines.begin() + static_cast<long>(version) + 1, "<title/>");
    built_s built(copy);
    EXPECT_TRUE(built.has_line("Found empty XMC entry title")) << built.trace;
    // Found, not fatal: the title has no label to check.
    EXPECT_NE(built.conf, nullptr);
}

// ---- the enumerations ---------------------------------------------------------------------------

TEST(generic_conf_build, enumerator_faults_are_each_reported_with_their_number) {
    template_copy_c copy;
    copy.replace(copy.find("<enum label=\"Schedule\""), "label=\"Schedule\"", "label=\"\"");
    copy.replace(copy.find("<enum label=\"GroupType\""),
                 R"(val="default_scenarios, default_templates, regular, distributed, customized")",
                 R"(val="")");
    copy.replace(copy.find("<enum label=\"CloudProviderType\""), "CloudProviderType", "CloudKind");
    copy.replace(copy.find("<enum label=\"HostTask\""), "Replica", "Replica, Witness");
    copy.replace(copy.find("<enum label=\"ConfigMode\""), "Rewind", "Rewound");
    built_s built(copy);
    built.expect_failure_line("Found unnamed enumerator #7");
    EXPECT_TRUE(built.has_line("Enumerator #9 \"GroupType\" misses list items")) << built.trace;
    EXPECT_TRUE(built.has_line("Enumerator #13 \"CloudKind\" is undefined in the code"))
        << built.trace;
    EXPECT_TRUE(built.has_line("Enumerator #6 \"HostTask\" has different number items "
                               "(5) from the code (4)"))
        << built.trace;
    EXPECT_TRUE(built.has_line("Item Witness of enumerator #6 \"HostTask\" is undefined "
                               "in the code"))
        << built.trace;
    EXPECT_TRUE(built.has_line("Item Rewound of enumerator #3 \"ConfigMode\" is "
                               "undefined in the code"))
        << built.trace;
    EXPECT_EQ(count_of(built.trace, "Set of enumerator"), 0u);
}

// ---- the object table ---------------------------------------------------------------------------

TEST(generic_conf_objects, an_object_that_is_not_in_the_table_fails) {
    template_copy_c copy;
    copy.replace(copy.find("label=\"TriggerFile\"", 1), "TriggerFile", "TriggerFolder");
    built_s built(copy);
    built.expect_failure_line("Invalid object item \"TriggerFolder\", not found in "
                              "\"object_tag_table\"");
}

TEST(generic_conf_objects, an_id_of_zero_fails) {
    template_copy_c copy;
    copy.replace(copy.find("<object label=\"SpecificReplicaProps\""), "id=\"150\"", "id=\"0\"");
    built_s built(copy);
    built.expect_failure_line("Invalid ID string of \"SpecificReplicaProps\" ");
}

TEST(generic_conf_objects, an_id_other_than_the_rows_fails) {
    template_copy_c copy;
    copy.replace(copy.find("<object label=\"OnActive\"", 1), "id=\"300\"", "id=\"301\"");
    built_s built(copy);
    built.expect_failure_line("Invalid ID 301  of object item \"OnActive\", not found "
                              "in \"object_tag_table\"");
}

TEST(generic_conf_objects, a_table_that_fixes_no_id_takes_any) {
    template_copy_c copy;
    copy.replace(copy.find("<object label=\"FileRegExpr\"", 1), "id=\"500\"", "id=\"501\"");
    built_s built(copy);
    EXPECT_NE(built.conf, nullptr) << built.trace;
}

TEST(generic_conf_objects, a_papa_that_is_not_in_the_table_fails) {
    template_copy_c copy;
    std::size_t switchover = copy.find("<object label=\"Switchover\"", 1);
    copy.replace(switchover, "label=\"Switchover\"", "label=\"Changeover\"");
    built_s built(copy);
    built.expect_failure_line("Invalid object item \"Changeover\", not found in "
                              "\"object_tag_table\"");
    EXPECT_TRUE(built.has_line("Invalid Papa object \"Changeover\" of \"OnActive\", not "
                               "found in \"object_tag_table\""))
        << built.trace;
}

TEST(generic_conf_objects, an_object_without_papa_fails) {
    template_copy_c copy;
    copy.lines[copy.find("<object label=\"ConfigDataHolder\"")] = "<holder>";
    copy.lines.back() = "</holder>";
    built_s built(copy);
    built.expect_failure_line("No Papa object of \"Scenario\" is found in "
                              "\"object_tag_table\"");
    EXPECT_TRUE(built.has_line("No Papa object of \"Group\" is found in \"object_tag_table\""))
        << built.trace;
}

TEST(generic_conf_objects, an_object_shape_fault_is_printed_as_findings) {
    template_copy_c copy;
    copy.replace(copy.find("<object label=\"TriggerFile\"", 1), "status=\"False\"",
                 "status=\"False\" colour=\"red\"");
    built_s built(copy);
    EXPECT_EQ(built.conf, nullptr);
    // The finding's line: who, the name and its extra text, and the message of code 6 (no
    // catalogue is loaded, so its text is the fallback).
    EXPECT_EQ(count_of(built.trace, "TriggerFile=>colour, "), 1u) << built.trace;
}

TEST(generic_conf_objects, same_names_in_the_table_are_reported_and_fail) {
    std::vector<xmc_enums_n::object_tag_s> rows(std::begin(xmc_enums_n::object_tag_table),
                                                std::end(xmc_enums_n::object_tag_table));
    rows[40].name = "IOThrottler";
    trace_capture_c capture;
    EXPECT_FALSE(the_generic_conf()->_check_object_tag_table(rows));
    EXPECT_FALSE(trace_line(capture.text(), "Error, Same name \"IOThrottler\" entries #31 and #40 "
                                            "found in \"object_tag_table\"")
                     .empty())
        << capture.text();
}

TEST(generic_conf_objects, a_row_out_of_place_ends_the_table_check) {
    std::vector<xmc_enums_n::object_tag_s> rows(std::begin(xmc_enums_n::object_tag_table),
                                                std::end(xmc_enums_n::object_tag_table));
    rows[12].index = 13;
    rows[20].index = 21;
    trace_capture_c capture;
    EXPECT_FALSE(the_generic_conf()->_check_object_tag_table(rows));
    EXPECT_FALSE(trace_line(capture.text(), "Invalid first element in \"object_tag_table\", entry "
                                            "#12")
                     .empty())
        << capture.text();
    EXPECT_EQ(count_of(capture.text(), "Invalid first element"), 1u);
}

TEST(generic_conf_objects, a_papa_row_after_its_child_ends_the_table_check) {
    std::vector<xmc_enums_n::object_tag_s> rows(std::begin(xmc_enums_n::object_tag_table),
                                                std::end(xmc_enums_n::object_tag_table));
    rows[18].papa = 18;
    trace_capture_c capture;
    EXPECT_FALSE(the_generic_conf()->_check_object_tag_table(rows));
    EXPECT_FALSE(
        trace_line(capture.text(), "Invalid Papa element in \"object_tag_table\", entry #18")
            .empty())
        << capture.text();
    // Rows 0 and 55 are their own papa.
    trace_capture_c again;
    EXPECT_TRUE(the_generic_conf()->_check_object_tag_table(xmc_enums_n::object_tag_table));
    EXPECT_EQ(count_of(again.text(), " level=4 "), 0u) << again.text();
}

TEST(generic_conf_objects, the_setting_tables_must_be_numbered_by_position) {
    EXPECT_TRUE(generic_conf_c::_check_scen_data_tables());
    std::vector<xmc_enums_n::scenario_data_s> scenario(std::begin(xmc_enums_n::scenario_data_table),
                                                       std::end(xmc_enums_n::scenario_data_table));
    std::vector<xmc_enums_n::host_data_s> host(std::begin(xmc_enums_n::host_data_table),
                                               std::end(xmc_enums_n::host_data_table));
    host[7].index = 8;
    {
        trace_capture_c capture;
        EXPECT_FALSE(generic_conf_c::_check_scen_data_tables(scenario, host));
        EXPECT_FALSE(trace_line(capture.text(), "Invalid first element in \"host_data_table\", "
                                                "entry #7")
                         .empty())
            << capture.text();
    }
    scenario[100].index = 7;
    {
        trace_capture_c capture;
        EXPECT_FALSE(generic_conf_c::_check_scen_data_tables(scenario, host));
        // The first fault ends the check: the host table is not reached.
        EXPECT_FALSE(trace_line(capture.text(), "Invalid first element in "
                                                "\"scenario_data_table\", entry #100")
                         .empty());
        EXPECT_EQ(count_of(capture.text(), "host_data_table"), 0u);
    }
}

TEST(generic_conf_objects, a_data_item_with_an_unknown_attribute_fails_the_strict_check) {
    template_copy_c copy;
    copy.replace(copy.find("<data label=\"StopScenario\""), "type=\"Bool\"",
                 "type=\"Bool\" hint=\"x\"");
    built_s built(copy);
    built.expect_failure_line("Superfluous attribute \"hint = x\" of data item "
                              "\"data.StopScenario from Scenario, object Scenario\"");
}

// ---- the root directories -----------------------------------------------------------------------

TEST(generic_conf_build, a_replica_whose_root_directory_differs_is_inconsistent) {
    template_copy_c copy;
    // The third `ID` of the document is the replica's root directory's.
    copy.replace(copy.find("<data label=\"ID\" val=\"0\"", 2), "val=\"0\"", "val=\"7\"");
    built_s built(copy);
    EXPECT_EQ(built.conf, nullptr);
    EXPECT_EQ(count_of(built.trace, "\n" + inconsistent + "\n"), 1u) << built.trace;
    // The finding names the replica and the root directory's position.
    EXPECT_EQ(count_of(built.trace, " #2, "), 1u) << built.trace;
    EXPECT_EQ(count_of(built.trace, " #0, RootDir, "), 1u) << built.trace;
}

// ---- default objects ----------------------------------------------------------------------------

TEST(generic_conf_defaults, active_to_standby_is_a_copy_of_the_script_definition) {
    default_object_s made(6, ha, sql, false); // ActiveToStandBy, id 300
    ASSERT_NE(made.get(), nullptr);
    EXPECT_EQ(attribute(made.get(), "label"), "Script");
    EXPECT_EQ(attribute(made.get(), "status"), "True");
    // The template's own ActiveToStandBy is off.
    generic_conf_c* conf = the_generic_conf();
    xml_item_c* own = conf->find_tree_item("ActiveToStandBy", true, conf->scenario_item);
    EXPECT_EQ(attribute(own, "status"), "False");
}

TEST(generic_conf_defaults, redirect_dns_for_hyper_v) {
    default_object_s made(4, ha, hyper_v, false); // RedirectDNS, id 4700
    ASSERT_NE(made.get(), nullptr);
    EXPECT_EQ(attribute(made.get(), "status"), "False");
    EXPECT_EQ(find(made.get(), "data", "MasterIPinDNS"), nullptr);
    EXPECT_NE(find(made.get(), "data", "VirtualMachineIPOnMasterinDNS"), nullptr);
    EXPECT_EQ(count_elements(made.get(), "relevant"), 0u);
    EXPECT_EQ(count_elements(made.get(), "irrelevant"), 0u);
    EXPECT_EQ(count_elements(made.get(), "switch_to_set_default"), 0u);
}

TEST(generic_conf_defaults, an_application_list_holds_by_substring) {
    // `relevant`/`irrelevant` with "HyperV, FullSystem" hold for FullSystem.
    default_object_s made(4, ha, full_system, false);
    ASSERT_NE(made.get(), nullptr);
    EXPECT_NE(find(made.get(), "data", "VirtualMachineIPOnReplicainDNS"), nullptr);
    EXPECT_EQ(find(made.get(), "data", "ReplicaIPinDNS"), nullptr);
    EXPECT_NE(find(made.get(), "data", "MasterIPinDNS"), nullptr);
    EXPECT_NE(find(made.get(), "data", "DomainAdminName"), nullptr);
    default_object_s for_sql(4, ha, sql, false);
    EXPECT_EQ(find(for_sql.get(), "data", "VirtualMachineIPOnReplicainDNS"), nullptr);
    EXPECT_EQ(find(for_sql.get(), "data", "DomainAdminName"), nullptr);
    EXPECT_EQ(attribute(for_sql.get(), "status"), "True");
}

TEST(generic_conf_defaults, redirect_dns_is_off_for_hyper_v_and_full_system) {
    for (std::uint32_t application = 0; application < application_count; ++application) {
        default_object_s made(4, ha, application, false);
        ASSERT_NE(made.get(), nullptr);
        bool off = application == hyper_v || application == full_system;
        EXPECT_EQ(attribute(made.get(), "status"), off ? "False" : "True") << application;
    }
}

TEST(generic_conf_defaults, switch_comp_name_is_on_for_file_server_only) {
    for (std::uint32_t application = 0; application < application_count; ++application) {
        default_object_s made(5, ha, application, false); // SwitchCompName, id 4770
        ASSERT_NE(made.get(), nullptr);
        bool on = application == file_server;
        EXPECT_EQ(attribute(made.get(), "status"), on ? "True" : "False") << application;
        // The switch on its data `WithReboot` goes the other way.
        EXPECT_EQ(attribute(find(made.get(), "data", "WithReboot"), "val"), on ? "False" : "True");
    }
}

TEST(generic_conf_defaults, scenario_for_product_dr_has_no_switchover_descendant_id_or_is_forward) {
    default_object_s dr_scenario(0, dr, sql, false);
    ASSERT_NE(dr_scenario.get(), nullptr);
    EXPECT_EQ(find(dr_scenario.get(), "object", "Switchover"), nullptr);
    EXPECT_EQ(find(dr_scenario.get(), "data", "DescendantID"), nullptr);
    EXPECT_EQ(find(dr_scenario.get(), "data", "IsForward"), nullptr);
    default_object_s ha_scenario(0, ha, sql, false);
    EXPECT_NE(find(ha_scenario.get(), "object", "Switchover"), nullptr);
    EXPECT_NE(find(ha_scenario.get(), "data", "DescendantID"), nullptr);
    EXPECT_NE(find(ha_scenario.get(), "data", "IsForward"), nullptr);
}

TEST(generic_conf_defaults, scenario_for_file_server_has_no_external_object) {
    default_object_s file(0, ha, file_server, false);
    ASSERT_NE(file.get(), nullptr);
    EXPECT_EQ(find(file.get(), "object", "External"), nullptr);
    default_object_s other(0, ha, exchange, false);
    xml_item_c* external = find(other.get(), "object", "External");
    ASSERT_NE(external, nullptr);
    // The condition inside the external object was evaluated and removed all the same.
    EXPECT_EQ(external->first_child, nullptr);
}

TEST(generic_conf_defaults, scenario_takes_the_instance_values_and_its_switched_defaults) {
    default_object_s made(0, rw, iis, true);
    ASSERT_NE(made.get(), nullptr);
    EXPECT_EQ(attribute(find(made.get(), "data", "Application"), "val"), "IIS");
    EXPECT_EQ(attribute(find(made.get(), "data", "Product"), "val"), "Rw");
    EXPECT_EQ(attribute(find(made.get(), "data", "VettedFailback"), "val"), "True");
    EXPECT_EQ(attribute(find(made.get(), "data", "SynchType"), "val"), "FileSynchronization");
    EXPECT_EQ(attribute(find(made.get(), "data", "ExcludeSameSizeFiles"), "val"), "True");
    EXPECT_EQ(attribute(find(made.get(), "data", "BuildShares"), "val"), "False");
    // Rw leaves out the hosts' reports and the Master's synchronisation scripts; the replica
    // keeps its scripts, which have no condition.
    xml_item_c* master = find(made.get(), "object", "ReplNode");
    xml_item_c* master_props = find(master, "object", "CommonHostProps");
    xml_item_c* replica_props =
        find(find(master, "object", "ReplNode"), "object", "CommonHostProps");
    ASSERT_NE(replica_props, nullptr);
    EXPECT_EQ(find(master_props, "object", "SyncScriptBefore"), nullptr);
    EXPECT_EQ(find(master_props, "object", "Report"), nullptr);
    EXPECT_NE(find(master_props, "object", "IOThrottler"), nullptr);
    EXPECT_NE(find(replica_props, "object", "SyncScriptBefore"), nullptr);
    EXPECT_EQ(find(replica_props, "object", "Report"), nullptr);
    // The flag keeps the vetted failback objects of the replica.
    EXPECT_NE(find(made.get(), "object", "VettedFailbackObj"), nullptr);
    default_object_s without(0, rw, iis, false);
    EXPECT_EQ(find(without.get(), "object", "VettedFailbackObj"), nullptr);
    EXPECT_EQ(attribute(find(without.get(), "data", "VettedFailback"), "val"), "False");
    // The group's `GroupName` is not an instance variable; `Scenario` has none.
    EXPECT_EQ(count_elements(made.get(), "switch_to_set_default"), 0u);
}

TEST(generic_conf_defaults, full_system_synchronises_volumes_and_control_service_switches_over) {
    default_object_s full(0, ha, full_system, false);
    EXPECT_EQ(attribute(find(full.get(), "data", "SynchType"), "val"), "VolumeSynchronization");
    EXPECT_EQ(find(full.get(), "data", "RegistrySynchronization"), nullptr);
    default_object_s control(0, ha, control_service, false);
    EXPECT_EQ(attribute(find(control.get(), "data", "SynchType"), "val"), "BlockSynchronization");
    EXPECT_EQ(attribute(find(control.get(), "data", "PerformAutomatically"), "val"), "True");
    EXPECT_EQ(attribute(find(control.get(), "data", "RunReverse"), "val"), "True");
}

TEST(generic_conf_defaults, a_part_whose_root_fails_its_condition_keeps_the_emptied_root) {
    // VettedFailbackObj (row 46, id 4310) is relevant only with the flag set.
    default_object_s without(46, ha, sql, false);
    ASSERT_NE(without.get(), nullptr);
    EXPECT_EQ(attribute(without.get(), "label"), "VettedFailbackObj");
    EXPECT_EQ(without.get()->first_child, nullptr);
    default_object_s with(46, ha, sql, true);
    ASSERT_NE(with.get(), nullptr);
    EXPECT_NE(find(with.get(), "object", "SchedulerVF"), nullptr);
    EXPECT_EQ(count_elements(with.get(), "relevant"), 0u);
}

TEST(generic_conf_defaults, the_search_by_id_takes_the_first_definition_of_the_id) {
    default_object_s bandwidth(40, ha, sql, false); // BandwidthThrottler, id 350
    ASSERT_NE(bandwidth.get(), nullptr);
    EXPECT_EQ(attribute(bandwidth.get(), "label"), "IOThrottler");
    EXPECT_NE(find(bandwidth.get(), "data", "23"), nullptr);
    default_object_s scheduler(47, ha, sql, false); // SchedulerVF, id 400
    EXPECT_EQ(attribute(scheduler.get(), "label"), "Scheduler");
    EXPECT_EQ(attribute(scheduler.get(), "status"), "True");
}

TEST(generic_conf_defaults, a_row_without_id_finds_nothing) {
    EXPECT_EQ(default_object_s(26, ha, sql, false).get(), nullptr); // FileRegExpr
    EXPECT_EQ(default_object_s(30, ha, sql, false).get(), nullptr); // External
    EXPECT_EQ(default_object_s(69, ha, sql, false).get(), nullptr); // past the table
}

TEST(generic_conf_defaults, switchover_of_the_definitions_has_a_sample_mapping_the_scenarios_none) {
    default_object_s definition(1, ha, sql, false); // Switchover, id 4500
    ASSERT_NE(definition.get(), nullptr);
    xml_item_c* list = find(definition.get(), "data", "ListVirtualNetworkMappings");
    ASSERT_NE(list, nullptr);
    EXPECT_NE(find(list, "object", "VirtualNetworkMapping"), nullptr);
    default_object_s scenario(0, ha, sql, false);
    xml_item_c* switchover = find(scenario.get(), "object", "Switchover");
    xml_item_c* own_list = find(switchover, "data", "ListVirtualNetworkMappings");
    ASSERT_NE(own_list, nullptr);
    EXPECT_EQ(own_list->first_child, nullptr);
}

TEST(generic_conf_defaults, basic_rows_copy_the_scenario_the_replica_and_its_root_directory) {
    generic_conf_c* conf = the_generic_conf();
    std::size_t switches = count_elements(conf->scenario_item, "switch_to_set_default");
    default_object_s replica(17, ha, sql, false);
    ASSERT_NE(replica.get(), nullptr);
    EXPECT_EQ(attribute(replica.get(), "label"), "ReplNode");
    EXPECT_EQ(attribute(find(replica.get(), "data", "Index"), "val"), "2");
    EXPECT_EQ(attribute(find(replica.get(), "data", "Role"), "val"), "Replica");
    default_object_s root_dir(25, ha, sql, false);
    ASSERT_NE(root_dir.get(), nullptr);
    EXPECT_EQ(attribute(root_dir.get(), "label"), "RootDir");
    EXPECT_EQ(attribute(find(root_dir.get(), "data", "DBdir"), "val"), "True");
    default_object_s file_server_dir(25, ha, file_server, false);
    EXPECT_EQ(attribute(find(file_server_dir.get(), "data", "DBdir"), "val"), "False");
    default_object_s scenario(0, ha, sql, false);
    EXPECT_EQ(attribute(scenario.get(), "label"), "Scenario");
    // The configurator's own tree is left as it was.
    EXPECT_EQ(attribute(conf->find_tree_item("Application", false, conf->scenario_item), "val"),
              "variable");
    EXPECT_GT(switches, 0u);
    EXPECT_EQ(count_elements(conf->scenario_item, "switch_to_set_default"), switches);
}

// ---- the two passes on their own ----------------------------------------------------------------

class generic_conf_passes : public ::testing::Test {
  protected:
    xml_item_c* load(const std::string& text) {
        std::string document = sd::declaration + text;
        EXPECT_TRUE(tree.load_from_str(document.c_str())) << text;
        return tree.get_root();
    }
    mixed_xmc_xml_tree_c tree;
};

TEST_F(generic_conf_passes, switch_on_a_title_traces_unable_to_apply) {
    xml_item_c* root = load(
        R"(<object label="Holder" id="1"><title label="Heading">)"
        R"(<switch_to_set_default variable="Application" case="FileServer" val="True" type="Bool"/>)"
        R"(</title></object>)");
    trace_capture_c capture;
    the_generic_conf()->_set_appl_prod_defaults(root, ha, file_server, false);
    std::string line = trace_line(
        capture.text(),
        "Unable to apply \"switch_to_set_default\" to title.Heading from Scenario, object Holder");
    EXPECT_NE(line.find("generic_conf_c::_set_appl_prod_defaults: "), std::string::npos)
        << capture.text();
    EXPECT_NE(line.find(" level=4 "), std::string::npos);
    // Applied or not, the switch is gone.
    EXPECT_EQ(count_elements(root, "switch_to_set_default"), 0u);
}

TEST_F(generic_conf_passes, a_switch_that_does_not_apply_is_only_removed) {
    xml_item_c* root = load(
        R"(<object label="Holder" id="1"><title label="Heading">)"
        R"(<switch_to_set_default variable="Application" case="Exchange" val="True" type="Bool"/>)"
        R"(<switch_to_set_default variable="Application" val="True" type="Bool"/>)"
        R"(</title></object>)");
    trace_capture_c capture;
    the_generic_conf()->_set_appl_prod_defaults(root, ha, file_server, false);
    EXPECT_EQ(count_of(capture.text(), "Unable to apply"), 0u) << capture.text();
    EXPECT_EQ(count_elements(root, "switch_to_set_default"), 0u);
}

TEST_F(generic_conf_passes, a_switch_on_an_object_needs_type_bool_and_a_status) {
    xml_item_c* root = load(
        R"(<object label="Holder" id="1">)"
        R"(<object label="A" id="2" status="False">)"
        R"(<switch_to_set_default variable="Product" case="Ha" val="True" type="Bool"/></object>)"
        R"(<object label="B" id="3" status="False">)"
        R"(<switch_to_set_default variable="Product" case="Ha" val="True" type="Product"/></object>)"
        R"(<object label="C" id="4">)"
        R"(<switch_to_set_default variable="Product" case="Ha" val="True" type="Bool"/></object>)"
        R"(</object>)");
    trace_capture_c capture;
    the_generic_conf()->_set_appl_prod_defaults(root, ha, sql, false);
    EXPECT_EQ(attribute(find(root, "object", "A"), "status"), "True");
    EXPECT_EQ(attribute(find(root, "object", "B"), "status"), "False");
    EXPECT_FALSE(has_attribute(find(root, "object", "C"), "status"));
    EXPECT_EQ(count_of(capture.text(), "Unable to apply"), 2u) << capture.text();
    EXPECT_FALSE(trace_line(capture.text(), "Unable to apply \"switch_to_set_default\" to "
                                            "object.B from Scenario, object Holder")
                     .empty());
}

TEST_F(generic_conf_passes, of_two_switches_that_apply_the_later_wins) {
    xml_item_c* root = load(
        R"(<object label="Holder" id="1"><data label="D" val="x" type="Text">)"
        R"(<switch_to_set_default variable="VettedFailback" case="True" val="first" type="Bool"/>)"
        R"(<switch_to_set_default variable="Product" case="Cd" val="second" type="Bool"/>)"
        R"(</data></object>)");
    the_generic_conf()->_set_appl_prod_defaults(root, 2, sql, true);
    EXPECT_EQ(attribute(find(root, "data", "D"), "val"), "second");
}

TEST_F(generic_conf_passes, only_the_three_variables_take_the_instance_values) {
    xml_item_c* root = load(R"(<object label="Holder" id="1">)"
                            R"(<data label="Application" val="variable" type="Application"/>)"
                            R"(<data label="Product" val="variable" type="Product"/>)"
                            R"(<data label="VettedFailback" val="variable" type="Bool"/>)"
                            R"(<data label="GroupName" val="variable" type="String"/>)"
                            R"(<data label="Product" val="Dr" type="Product"/>)"
                            R"(</object>)");
    the_generic_conf()->_set_appl_prod_defaults(root, 2, hyper_v, false);
    xml_item_c* product = find(root, "data", "Product");
    EXPECT_EQ(attribute(find(root, "data", "Application"), "val"), "HyperV");
    EXPECT_EQ(attribute(product, "val"), "Cd");
    EXPECT_EQ(attribute(product->next_item(), "val"), "False");
    EXPECT_EQ(attribute(find(root, "data", "GroupName"), "val"), "variable");
    EXPECT_EQ(attribute(find(root, "data", "GroupName")->next_item(), "val"), "Dr");
}

TEST_F(generic_conf_passes, a_product_condition_holds_only_on_an_exact_name) {
    xml_item_c* root = load(
        R"(<object label="Holder" id="1">)"
        R"(<data label="A" val="" type="Text"><relevant label="Product" val="Ha, Dr" type="Product"/></data>)"
        R"(<data label="B" val="" type="Text"><relevant label="Product" val="Ha" type="Product"/></data>)"
        R"(<data label="C" val="" type="Text"><irrelevant label="Colour" val="Ha" type="Product"/></data>)"
        R"(</object>)");
    generic_conf_c::_remove_irrelevant_items(root, ha, sql, false);
    EXPECT_EQ(find(root, "data", "A"), nullptr);
    ASSERT_NE(find(root, "data", "B"), nullptr);
    EXPECT_EQ(find(root, "data", "B")->first_child, nullptr);
    // A condition on any other label never holds: `irrelevant` keeps its parent.
    EXPECT_NE(find(root, "data", "C"), nullptr);
    EXPECT_EQ(count_elements(root, "relevant") + count_elements(root, "irrelevant"), 0u);
}

TEST_F(generic_conf_passes, a_removed_parent_takes_its_other_conditions_with_it) {
    xml_item_c* root = load(R"(<object label="Holder" id="1">)"
                            R"(<data label="A" val="" type="Text">)"
                            R"(<relevant label="Product" val="Ha" type="Product"/>)"
                            R"(<irrelevant label="Application" val="SQL" type="Application"/>)"
                            R"(<data label="A1" val="" type="Text"/></data>)"
                            R"(<data label="B" val="" type="Text"/>)"
                            R"(</object>)");
    generic_conf_c::_remove_irrelevant_items(root, ha, sql, false);
    EXPECT_EQ(find(root, "data", "A"), nullptr);
    EXPECT_EQ(find(root, "data", "A1"), nullptr);
    EXPECT_NE(find(root, "data", "B"), nullptr);
}

// ---- reload_object ------------------------------------------------------------------------------

class reload_object_test : public ::testing::Test {
  protected:
    void SetUp() override {
        auto trigger = [](const std::string& target) {
            return sd::object("TriggerFile", "4200", sd::data("TargetFile", target));
        };
        std::string replica = sd::object(
            "ReplNode", "5000",
            sd::host_props("2", sd::root_dirs(sd::root_dir("D:/r")) + trigger("replica")));
        std::string master_node = sd::object(
            "ReplNode", "5000",
            sd::host_props("1", sd::root_dirs(sd::root_dir("C:/m")) + trigger("master")) + replica);
        std::string text = sd::stored(sd::scenario(
            sd::scenario_data("Ha", "HyperV"), master_node,
            sd::object("Switchover", "4500",
                       sd::object("TraficRedirection", "4600",
                                  sd::object("RedirectDNS", "4700", sd::data("Old", "1")))) +
                sd::object("External", "6000", "")));
        ASSERT_TRUE(conf.tree->load_from_str(text.c_str()));
        conf.product = ha;
        conf.application = hyper_v;
        ASSERT_EQ(conf._build_host_tree(nullptr), 2u);
        master = conf.host_tree->find_host_node(1)->host_item;
    }
    std::string text() {
        utl_stream_c out;
        conf.tree->write(out, false);
        return out.c_str() ? out.c_str() : "";
    }
    // reload_object refuses the row for the host with `message`, a failure line under its own
    // name, and leaves the tree as it was.
    void expect_refused(std::uint32_t row, std::uint64_t host, const std::string& message) {
        std::string before = text();
        trace_capture_c capture;
        EXPECT_FALSE(conf.reload_object(row, host));
        std::string line = trace_line(capture.text(), message);
        EXPECT_NE(line.find(" level=4 "), std::string::npos) << capture.text();
        EXPECT_NE(line.find("scenario_conf_c::reload_object: "), std::string::npos);
        EXPECT_EQ(text(), before);
    }

    scenario_conf_c conf;
    xml_item_c* master = nullptr;
};

TEST_F(reload_object_test, rows_of_basic_objects_never_change_the_tree) {
    for (std::uint32_t row : {0u, 17u, 25u})
        for (std::uint64_t host : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{2},
                                   std::uint64_t{9}, MANAGER_INDEX})
            expect_refused(row, host,
                           "Unable to reload Basic object " +
                               std::string(xmc_enums_n::object_tag_table[row].name) +
                               " with index " + std::to_string(static_cast<int>(host)));
}

TEST_F(reload_object_test, replaces_an_object_but_keeps_the_host_index_and_external_objects) {
    auto* external = new conf_c;
    external->id = 77;
    conf.generic_objects.insert(external);
    host_index_node_s* replica = conf.host_tree->find_host_node(2);
    xml_item_c* replica_item = replica->host_item;
    std::uint64_t hosts = conf.host_tree->get_host_count();
    std::uint64_t externals = conf.generic_objects.get_count();

    ASSERT_TRUE(conf.reload_object(4, 0)); // RedirectDNS
    xml_item_c* fresh = conf.find_tree_item("RedirectDNS", true);
    ASSERT_NE(fresh, nullptr);
    EXPECT_EQ(conf.find_tree_item("Old", false, fresh), nullptr);
    EXPECT_EQ(attribute(fresh, "status"), "False"); // HyperV switches it off
    EXPECT_EQ(attribute(fresh->parent_item(), "label"), "TraficRedirection");

    EXPECT_EQ(conf.host_tree->get_host_count(), hosts);
    EXPECT_EQ(conf.host_tree->find_host_node(2), replica);
    EXPECT_EQ(replica->host_item, replica_item);
    EXPECT_EQ(conf.generic_objects.get_count(), externals);
    EXPECT_EQ(conf._find_generic_object(77), external);
}

TEST_F(reload_object_test, a_host_object_is_replaced_below_its_host_only) {
    xml_item_c* replica = conf.host_tree->find_host_node(2)->host_item;
    ASSERT_TRUE(conf.reload_object(38, 2)); // TriggerFile
    xml_item_c* fresh = conf.find_tree_item("TriggerFile", true, replica);
    ASSERT_NE(fresh, nullptr);
    EXPECT_EQ(attribute(find(fresh, "data", "TargetFile"), "val"), "");
    EXPECT_NE(find(fresh, "object", "TrigFileScript"), nullptr);
    xml_item_c* kept = conf.find_tree_item("TriggerFile", true, master);
    EXPECT_EQ(attribute(find(kept, "data", "TargetFile"), "val"), "master");
    EXPECT_EQ(conf.host_tree->find_host_node(2)->host_item, replica);
}

TEST_F(reload_object_test, a_scenario_object_with_a_host_is_refused) {
    expect_refused(4, 2, "Unable to reload Scenario object RedirectDNS with index 2");
}

TEST_F(reload_object_test, a_host_object_without_a_host_is_refused) {
    expect_refused(38, 0, "Unable to reload Host object TriggerFile, host index must be set");
}

TEST_F(reload_object_test, a_host_that_is_not_indexed_is_not_found) {
    expect_refused(38, 5, "Unable to find host node with index 5");
}

TEST_F(reload_object_test, an_object_missing_from_the_tree_is_not_found) {
    expect_refused(41, 1, "Unable to find object ReplicaScheduledTask with index 1");
}

TEST_F(reload_object_test, an_object_without_a_default_is_reported) {
    // The replica has `CommonHostProps`, but no definition has its id, 100.
    expect_refused(18, 2, "Unable to find default object CommonHostProps with index 2");
}

TEST(reload_object, a_scenario_without_a_tree_is_refused) {
    scenario_conf_c conf;
    trace_capture_c capture;
    EXPECT_FALSE(conf.reload_object(4, 0));
    EXPECT_FALSE(trace_line(capture.text(), "XMC tree is missing").empty()) << capture.text();
}
