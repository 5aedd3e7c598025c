// The loader of stored scenarios: a file becomes the scenario's tree, its enumerated fields, its
// id and its host index; a file that can't be read or isn't a stored scenario is an error that
// names the line at fault and leaves the scenario as it was.
#include "configuration/scenario_loader.h"

#include "common/stack_thread.h"
#include "common/test_support.h"
#include "configuration/scenario_conf.h"
#include "configuration/scenario_documents.h"

#include <gtest/gtest.h>

#include <string>

namespace sd = scenario_documents;
using test_support::temp_dir_c;
using test_support::trace_capture_c;
using test_support::trace_line;

namespace {

// Master 1 with two root directories, feeding 2 (feeding 3) and 4.
std::string four_hosts(const std::string& own_data = sd::scenario_data()) {
    return sd::stored(
        sd::scenario(own_data, sd::host("1", sd::root_dir("C:/m1") + sd::root_dir("C:/m2"),
                                        sd::host("2", "", sd::host("3")) + sd::host("4"))));
}

class scenario_loader_test : public ::testing::Test {
  protected:
    // Writes `text` to a file of the scratch directory and loads it.
    scenario_load_result_s load(const std::string& text, const std::string& name = "s.xmc") {
        path = dir.join(name);
        test_support::write_file(path, text);
        return scenario_loader_n::load_file(conf, path.c_str());
    }
    std::string message(const scenario_load_result_s& result) {
        return result.message.c_str() ? result.message.c_str() : "";
    }
    // That the load of `path` failed with `status` at `line` (0: none), saying `what`.
    void expect_failure(const scenario_load_result_s& result, scenario_load_status_t status,
                        std::uint64_t line, const std::string& what) {
        EXPECT_FALSE(result.ok());
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.line, line);
        std::string where = line ? ", line " + std::to_string(line) : "";
        EXPECT_EQ(message(result), "Scenario file \"" + path + "\"" + where + ": " + what);
    }
    // The fields of the scenario as one text, to see that a failed load changed none.
    std::string fields() {
        return std::to_string(conf.id) + "/" + std::to_string(conf.config_mode) + "/" +
               std::to_string(conf.product) + "/" + std::to_string(conf.application) + "/" +
               std::to_string(conf.vetted_failback) + "/" +
               std::to_string(conf.host_tree->get_host_count());
    }

    temp_dir_c dir;
    std::string path;
    scenario_conf_c conf;
};

} // namespace

// ---- loads

TEST_F(scenario_loader_test, a_stored_scenario_loads_its_tree_fields_id_and_host_index) {
    trace_capture_c capture;
    scenario_load_result_s result = load(four_hosts());
    ASSERT_TRUE(result.ok()) << message(result);
    EXPECT_EQ(result.status, scenario_load_status_t::loaded);
    EXPECT_EQ(message(result), "");
    EXPECT_EQ(result.line, 0u);
    EXPECT_EQ(result.host_count, 4u);
    EXPECT_EQ(conf.product, 1u) << "Ha";
    EXPECT_EQ(conf.application, 0u) << "FileServer";
    EXPECT_EQ(conf.config_mode, 1u) << "Regular";
    EXPECT_FALSE(conf.vetted_failback);
    EXPECT_EQ(conf.id, 42u);
    ASSERT_NE(conf.tree->get_root(), nullptr);
    EXPECT_STREQ(conf.tree->get_root()->find_attribute("label")->to_text(), "ConfigDataHolder");
    EXPECT_EQ(conf.host_tree->get_host_count(), 3u);
    EXPECT_EQ(conf.get_root_dir_count(), 2u);
    std::string line =
        trace_line(capture.text(), "Scenario 42 loaded from \"" + path + "\" with 4 hosts");
    EXPECT_NE(line.find(" level=128 "), std::string::npos) << capture.text();
}

TEST_F(scenario_loader_test, each_enumerated_field_takes_the_position_of_its_item) {
    ASSERT_TRUE(
        load(four_hosts(sd::scenario_data("Rw", "CustomApp", "Rewind", "True", "4294967295")))
            .ok());
    EXPECT_EQ(conf.product, 3u);
    EXPECT_EQ(conf.application, 12u);
    EXPECT_EQ(conf.config_mode, 7u);
    EXPECT_TRUE(conf.vetted_failback);
    EXPECT_EQ(conf.id, 4294967295u);
    ASSERT_TRUE(
        load(four_hosts(sd::scenario_data("Dr", "HyperV", "Assessment", "true", "7"))).ok());
    EXPECT_EQ(conf.product, 0u);
    EXPECT_EQ(conf.application, 7u);
    EXPECT_EQ(conf.config_mode, 4u);
    EXPECT_TRUE(conf.vetted_failback) << "the boolean reading takes any case";
}

TEST_F(scenario_loader_test, a_value_that_names_no_item_leaves_the_not_set_position) {
    ASSERT_TRUE(
        load(four_hosts(sd::scenario_data("ha", "Word", "variable", "variable", "x"))).ok());
    EXPECT_EQ(conf.product, 4u);
    EXPECT_EQ(conf.application, 13u);
    EXPECT_EQ(conf.config_mode, 8u);
    EXPECT_FALSE(conf.vetted_failback);
    EXPECT_EQ(conf.id, 0u);
}

TEST_F(scenario_loader_test, fields_that_are_missing_are_not_set) {
    ASSERT_TRUE(load(four_hosts(sd::data("ScenarioName", "bare"))).ok());
    EXPECT_EQ(conf.config_mode, 8u) << "not the start value 1: validation must see it is missing";
    EXPECT_EQ(conf.product, 4u);
    EXPECT_EQ(conf.application, 13u);
    EXPECT_FALSE(conf.vetted_failback);
    EXPECT_EQ(conf.id, 0u);
}

TEST_F(scenario_loader_test, the_fields_are_the_scenarios_own_data_not_those_of_nested_objects) {
    std::string own = sd::object("Switchover", "4500", sd::data("Product", "Dr", "Product")) +
                      "<title label=\"General\">" + sd::data("Product", "Cd", "Product") +
                      "</title>" + sd::data("ConfigMode", "Synchron", "ConfigMode");
    ASSERT_TRUE(load(four_hosts(own)).ok());
    EXPECT_EQ(conf.product, 2u) << "through a title, past the nested object";
    EXPECT_EQ(conf.config_mode, 2u);
}

TEST_F(scenario_loader_test, loading_again_replaces_the_tree_fields_and_host_index) {
    ASSERT_TRUE(load(four_hosts()).ok());
    scenario_load_result_s again =
        load(sd::stored(sd::scenario(sd::scenario_data("Cd", "SQL", "Verific", "True", "9"),
                                     sd::host("1"))),
             "other.xmc");
    ASSERT_TRUE(again.ok()) << message(again);
    EXPECT_EQ(again.host_count, 1u);
    EXPECT_EQ(fields(), "9/3/2/4/1/0");
    EXPECT_EQ(conf.get_root_dir_count(), 0u);
}

TEST_F(scenario_loader_test, windows_line_ends_load_and_count_as_lines) {
    std::string text = four_hosts();
    std::string crlf;
    for (char c : text) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    ASSERT_TRUE(load(crlf).ok());
    scenario_load_result_s result =
        load(sd::declaration + "\r\n\r\n<object label=\"Other\" id=\"1\">\r\n</object>\r\n");
    EXPECT_EQ(result.status, scenario_load_status_t::wrong_root);
    EXPECT_EQ(result.line, 4u);
}

TEST_F(scenario_loader_test, a_text_loads_as_its_first_length_bytes) {
    std::string text = four_hosts();
    scenario_load_result_s whole =
        scenario_loader_n::load_text(conf, text.data(), text.size(), "memory");
    ASSERT_TRUE(whole.ok()) << message(whole);
    scenario_load_result_s cut =
        scenario_loader_n::load_text(conf, text.data(), text.size() / 2, "memory");
    EXPECT_EQ(cut.status, scenario_load_status_t::not_xml);
    EXPECT_NE(message(cut).find("Scenario file \"memory\""), std::string::npos) << message(cut);
    scenario_load_result_s none = scenario_loader_n::load_text(conf, nullptr, 10, "nothing");
    EXPECT_EQ(none.status, scenario_load_status_t::not_xml);
    EXPECT_EQ(none.line, 0u);
}

TEST_F(scenario_loader_test, replnode_items_nested_ten_thousand_deep_load_without_recursion) {
    const int n = 10000;
    std::string hosts;
    for (int i = 1; i <= n; ++i)
        hosts +=
            "<object label=\"ReplNode\" id=\"5000\">\n" + sd::host_props(std::to_string(i)) + "\n";
    for (int i = 1; i <= n; ++i) hosts += "</object>\n";
    path = dir.join("deep.xmc");
    test_support::write_file(path, sd::stored(sd::scenario(sd::scenario_data(), hosts)));
    scenario_load_result_s result;
    bool ran = test_support::run_with_stack(256 * 1024, [&] {
        result = scenario_loader_n::load_file(conf, path.c_str());
        conf.clear();
    });
    ASSERT_TRUE(ran);
    ASSERT_TRUE(result.ok()) << message(result);
    EXPECT_EQ(result.host_count, static_cast<std::uint64_t>(n));
}

// ---- errors

TEST_F(scenario_loader_test, a_file_that_cannot_be_opened_is_unreadable_without_a_line) {
    trace_capture_c capture;
    path = dir.join("missing.xmc");
    scenario_load_result_s result = scenario_loader_n::load_file(conf, path.c_str());
    expect_failure(result, scenario_load_status_t::unreadable, 0, "the file cannot be opened");
    EXPECT_EQ(conf.tree->get_root(), nullptr);
    std::string line = trace_line(capture.text(), message(result));
    EXPECT_NE(line.find(" level=4 "), std::string::npos) << capture.text();
}

TEST_F(scenario_loader_test, no_path_is_unreadable) {
    EXPECT_EQ(scenario_loader_n::load_file(conf, nullptr).status,
              scenario_load_status_t::unreadable);
    path = "";
    expect_failure(scenario_loader_n::load_file(conf, ""), scenario_load_status_t::unreadable, 0,
                   "no file is named");
}

TEST_F(scenario_loader_test, a_directory_is_unreadable) {
    scenario_load_result_s result = scenario_loader_n::load_file(conf, dir.str().c_str());
    EXPECT_EQ(result.status, scenario_load_status_t::unreadable) << message(result);
    EXPECT_EQ(result.line, 0u);
}

TEST_F(scenario_loader_test, an_empty_file_is_no_xml) {
    scenario_load_result_s result = load("");
    expect_failure(result, scenario_load_status_t::not_xml, 0, "the file is empty");
}

TEST_F(scenario_loader_test, a_file_without_a_declaration_is_no_xml_at_line_1) {
    scenario_load_result_s result = load("<object label=\"ConfigDataHolder\" id=\"1\"/>\n");
    expect_failure(result, scenario_load_status_t::not_xml, 1, "no XML declaration at the start");
}

TEST_F(scenario_loader_test, a_mismatched_tag_names_the_line_where_reading_stopped) {
    scenario_load_result_s result =
        load(sd::declaration + "<object label=\"ConfigDataHolder\" id=\"1\">\n"
                               "  <object label=\"Scenario\" id=\"1000\">\n"
                               "  </title>\n"
                               "</object>\n");
    expect_failure(result, scenario_load_status_t::not_xml, 4, "not well-formed XML");
}

TEST_F(scenario_loader_test, an_unclosed_root_names_the_last_line) {
    scenario_load_result_s result =
        load(sd::declaration + "<object label=\"ConfigDataHolder\" id=\"1\">\n"
                               "  <object label=\"Scenario\" id=\"1000\"/>\n");
    EXPECT_EQ(result.status, scenario_load_status_t::not_xml);
    EXPECT_EQ(result.line, 3u);
}

TEST_F(scenario_loader_test, a_file_with_another_root_names_the_roots_line) {
    scenario_load_result_s result =
        load(sd::declaration + "\n<object label=\"Scenario\" id=\"1000\">\n</object>\n");
    expect_failure(result, scenario_load_status_t::wrong_root, 3,
                   "the root is not the object ConfigDataHolder with id 1: "
                   "<object label=\"Scenario\" id=\"1000\" />");
}

TEST_F(scenario_loader_test, a_holder_of_another_id_kind_or_element_is_another_root) {
    for (const char* root :
         {"<object label=\"ConfigDataHolder\" id=\"2\">", "<object label=\"ConfigDataHolder\">",
          "<object label=\"ConfigDataHolder\" id=\"one\">",
          "<object label=\"ConfigDataHolder\" id=\"1\" external=\"True\">",
          "<data label=\"ConfigDataHolder\" id=\"1\">",
          "<object label=\"configdataholder\" id=\"1\">"}) {
        std::string element = std::string(root).substr(1, std::string(root).find(' ') - 1);
        scenario_load_result_s result = load(
            sd::declaration + root + sd::object("Scenario", "1000", "") + "</" + element + ">");
        EXPECT_EQ(result.status, scenario_load_status_t::wrong_root) << root;
        EXPECT_EQ(result.line, 2u) << root;
    }
}

TEST_F(scenario_loader_test, a_holder_without_a_scenario_names_the_holders_line) {
    scenario_load_result_s result =
        load(sd::declaration + "\n" + "<object label=\"ConfigDataHolder\" id=\"1\">\n" +
             sd::data("Version", "5", "Number") + "\n</object>\n");
    expect_failure(result, scenario_load_status_t::no_scenario, 3,
                   "the object ConfigDataHolder holds no Scenario object");
}

TEST_F(scenario_loader_test, a_scenario_below_another_item_of_the_holder_is_not_the_stored_one) {
    scenario_load_result_s result = load(
        sd::declaration + "<object label=\"ConfigDataHolder\" id=\"1\"><title label=\"T\">" +
        sd::object("Scenario", "1000", "") + "</title>" + sd::data("Scenario", "x") + "</object>");
    EXPECT_EQ(result.status, scenario_load_status_t::no_scenario);
}

TEST_F(scenario_loader_test, a_second_scenario_names_its_line) {
    scenario_load_result_s result =
        load(sd::declaration + "<object label=\"ConfigDataHolder\" id=\"1\">\n" +
             sd::object("Scenario", "1000", "") + "\n" + sd::data("Version", "5", "Number") + "\n" +
             sd::object("Scenario", "1000", "") + "\n</object>\n");
    expect_failure(result, scenario_load_status_t::several_scenarios, 5,
                   "a second Scenario object, where a stored scenario holds one");
}

TEST_F(scenario_loader_test, a_failed_load_leaves_the_scenario_as_it_was) {
    ASSERT_TRUE(load(four_hosts()).ok());
    mixed_xmc_xml_tree_c* tree = conf.tree;
    xml_item_c* root = tree->get_root();
    std::string before = fields();
    for (const std::string& bad :
         {std::string(""), std::string("junk"), sd::declaration + "<a><b></a>",
          sd::declaration + "<object label=\"Scenario\" id=\"1000\"/>",
          sd::declaration + "<object label=\"ConfigDataHolder\" id=\"1\"/>"}) {
        EXPECT_FALSE(load(bad, "bad.xmc").ok()) << bad;
        EXPECT_EQ(conf.tree, tree);
        EXPECT_EQ(conf.tree->get_root(), root);
        EXPECT_EQ(fields(), before);
    }
    EXPECT_FALSE(scenario_loader_n::load_file(conf, dir.join("none.xmc").c_str()).ok());
    EXPECT_EQ(fields(), before);
}
