// stats_tool get and set: one setting of a stored scenario.
#include "configuration/scenario_documents.h"
#include "stats_tool_fixture.h"

#include <string>
#include <utility>
#include <vector>

using test_support::count_of;
using test_support::temp_dir_c;
using tool_test::run_result_s;
using tool_test::stats_tool;

namespace {

namespace sd = scenario_documents;

// A stored scenario with a Manager's report, a Master and one replica, each host with a list.
std::string stored_scenario() {
    auto host = [](const std::string& index, const std::string& replicas) {
        std::string list = "<data label=\"RegistryPaths\" val=\"String\" type=\"MultiEntry\">" +
                           sd::data("RegistryPaths", "HKLM/a" + index) + "</data>";
        return sd::object(
            "ReplNode", "5000",
            sd::host_props(index, sd::data("IP", "10.0.0." + index, "IPAddr") +
                                      sd::object("ListRegistryPaths_32", "250", list)) +
                replicas);
    };
    std::string manager = "<title label=\"ManagerData\"><object label=\"Report\" id=\"3500\" "
                          "status=\"True\">" +
                          sd::data("SynchReportStatus", "False", "Bool") + "</object></title>";
    return sd::stored(
        sd::scenario(sd::scenario_data() + sd::data("ReplicationMode", "Online", "ReplicationMode"),
                     host("1", host("2", "")), manager));
}

class stats_tool_settings : public stats_tool {
  protected:
    void SetUp() override { test_support::write_file(file, stored_scenario()); }
    // The tool's output with the line ends of its platform read as line feeds.
    run_result_s run(std::vector<std::string> args) {
        run_result_s result = stats_tool::run(std::move(args));
        std::erase(result.output, '\r');
        return result;
    }
    std::string contents() { return test_support::read_file(file); }

    std::string file = scenario.join("scenario.xml");
};

} // namespace

TEST_F(stats_tool_settings, get_prints_a_scenario_setting_by_row_name_and_by_dotted_path) {
    run_result_s result = run({"get", file, "ScenarioName"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(result.output, "finance\n");
    result = run({"get", file, "scenario.scenarioname"});
    EXPECT_EQ(result.output, "finance\n");
    result = run({"get", file, "ConfigDataHolder.Scenario.ScenarioID"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(result.output, "42\n");
}

TEST_F(stats_tool_settings, get_json_prints_the_row_the_type_and_the_value) {
    run_result_s result = run({"get", file, "ReplicationMode", "--json"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(result.output, "{\"name\": \"Scenario.ReplicationMode\", \"row\": 104, \"type\": "
                             "\"ReplicationMode\", \"value\": \"Online\"}\n");
}

TEST_F(stats_tool_settings, get_prints_host_and_manager_settings) {
    EXPECT_EQ(run({"get", file, "Host", "--host", "2"}).output, "host2\n");
    EXPECT_EQ(run({"get", file, "IP", "--host", "1"}).output, "10.0.0.1\n");
    run_result_s result = run({"get", file, "Report.status", "--manager"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(result.output, "True\n");
    result = run({"get", file, "Index", "--manager"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.output.find("\"CommonHostProps\" with property \"Index\" is irrelevant for "
                                 "Manager Data"),
              std::string::npos)
        << result.output;
}

TEST_F(stats_tool_settings, get_prints_a_list_as_a_json_array_with_json) {
    run_result_s result =
        run({"get", file, "ListRegistryPaths_32.RegistryPaths", "--host", "2", "--json"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("\"type\": \"MultiEntry\", \"value\": [\"HKLM/a2\"]}"),
              std::string::npos)
        << result.output;
}

TEST_F(stats_tool_settings, get_of_a_setting_the_scenario_lacks_exits_one_with_the_words) {
    run_result_s result = run({"get", file, "GroupID"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "stats_tool: Unable to find node with property GroupID\n");
    result = run({"get", file, "Host", "--host", "7"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.output.find("Unable to find host node with index 7"), std::string::npos);
    result = run({"get", file, "ConfigDataHolder.Scenario.NoSuchThing"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.output.find("no setting is named"), std::string::npos) << result.output;
}

TEST_F(stats_tool_settings, set_stores_the_file_in_the_writer_form) {
    run_result_s result = run({"set", file, "ScenarioName=payroll"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("stored Scenario.ScenarioName"), std::string::npos);
    std::string text = contents();
    EXPECT_NE(text.find("\t\t<data label=\"ScenarioName\" val=\"payroll\" type=\"String\"/>\n"),
              std::string::npos)
        << text;
    EXPECT_EQ(text.find("finance"), std::string::npos);
    EXPECT_EQ(run({"get", file, "ScenarioName"}).output, "payroll\n");
}

TEST_F(stats_tool_settings, set_by_dotted_path_on_a_host_writes_that_host_only) {
    std::string path = "configdataholder.scenario.replicationtree.replnode.replnode."
                       "commonhostprops.ip";
    EXPECT_EQ(run({"set", file, path + "=10.0.0.99", "--host", "1"}).status, 1)
        << "that is host 2's path, not the Master's";
    run_result_s result = run({"set", file, path + "=10.0.0.99", "--host", "2"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(run({"get", file, "IP", "--host", "2"}).output, "10.0.0.99\n");
    EXPECT_EQ(run({"get", file, "IP", "--host", "1"}).output, "10.0.0.1\n");
}

TEST_F(stats_tool_settings, set_refuses_a_value_that_does_not_fit_and_leaves_the_file_untouched) {
    std::string before = contents();
    run_result_s result = run({"set", file, "ReplicationMode=Sometimes"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output,
              "stats_tool: Unable to set \"Scenario.ReplicationMode\" = \"Sometimes\", type "
              "doesn't fit\nstats_tool: Unable to convert \"Sometimes\" to ReplicationMode\n");
    EXPECT_EQ(contents(), before);
    result = run({"set", file, "IP=10.0.0", "--host", "1", "--json"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "{\"name\": \"CommonHostProps.IP\", \"stored\": false, \"words\": "
                             "[\"Unable to set \\\"CommonHostProps.IP\\\" = \\\"10.0.0\\\", type "
                             "doesn't fit\"]}\n");
    EXPECT_EQ(contents(), before);
}

TEST_F(stats_tool_settings, set_of_a_fixed_setting_needs_force) {
    std::string before = contents();
    run_result_s result = run({"set", file, "ScenarioID=77"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output,
              "stats_tool: Unable to reset fixed property \"Scenario.ScenarioID\"\n");
    EXPECT_EQ(contents(), before);
    result = run({"set", file, "ScenarioID=77", "--force"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(run({"get", file, "ScenarioID"}).output, "77\n");
}

TEST_F(stats_tool_settings, set_takes_a_list_as_a_json_array_with_json) {
    run_result_s result =
        run({"set", file, "ListRegistryPaths_32.RegistryPaths=[\"x\", \"y \\\"z\\\"\"]", "--host",
             "1", "--json"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(result.output,
              "{\"name\": \"ListRegistryPaths_32.RegistryPaths\", \"stored\": true}\n");
    result = run({"get", file, "ListRegistryPaths_32.RegistryPaths", "--host", "1", "--json"});
    EXPECT_NE(result.output.find("\"value\": [\"x\", \"y \\\"z\\\"\"]}"), std::string::npos)
        << result.output;
    EXPECT_EQ(run({"get", file, "ListRegistryPaths_32.RegistryPaths", "--host", "2"}).output,
              "HKLM/a2\n");
    // Without --json the text is no list, which a list refuses.
    result = run({"set", file, "ListRegistryPaths_32.RegistryPaths=x", "--host", "1"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.output.find("Unable to set list strings, input is invalid"), std::string::npos)
        << result.output;
}

TEST_F(stats_tool_settings, get_and_set_usage_errors_exit_with_two) {
    std::string before = contents();
    EXPECT_EQ(run({"get", file}).status, 2);
    EXPECT_EQ(run({"set", file, "ScenarioName"}).status, 2);
    EXPECT_EQ(run({"set", file, "=x"}).status, 2);
    EXPECT_EQ(run({"set", file, "Host=x", "--host", "1", "--force"}).status, 2);
    EXPECT_EQ(run({"get", file, "Host", "--host", "1", "--manager"}).status, 2);
    EXPECT_EQ(run({"get", file, "Host", "--host", "one"}).status, 2);
    EXPECT_EQ(run({"get", file, "ScenarioName", "--force"}).status, 2);
    run_result_s result = run({"get", file, "status"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.output.find("names several settings"), std::string::npos) << result.output;
    result = run(
        {"set", file, "ListRegistryPaths_32.RegistryPaths=[\"x\", 3]", "--host", "1", "--json"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.output.find("no JSON array of strings"), std::string::npos) << result.output;
    EXPECT_EQ(contents(), before);
}

TEST_F(stats_tool_settings, get_and_set_of_a_file_that_cannot_be_read_exit_with_two) {
    // A directory is there, but is no file to read (opened or not, by platform).
    run_result_s result = run({"get", scenario.str(), "ScenarioName"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.output.find("the file cannot be "), std::string::npos) << result.output;
    test_support::write_file(file, "<?xml version=\"1.0\"?>\n<stats_saver/>\n");
    EXPECT_EQ(run({"set", file, "ScenarioName=x"}).status, 2);
    EXPECT_EQ(contents(), "<?xml version=\"1.0\"?>\n<stats_saver/>\n");
}
