// stats_tool run as a separate process, as an operator or a script runs it.
#include "common/test_support.h"
#include "configuration/scenario_documents.h"
#include "platform/os.h"
#include "stats_mng/load_order.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

using test_support::count_of;
using test_support::temp_dir_c;

namespace {

struct run_result_s {
    int status;
    std::string output;
};

class stats_tool : public ::testing::Test {
  protected:
    run_result_s run(std::vector<std::string> args) {
#if defined(_WIN32)
        args.insert(args.begin(), test_support::bin_dir() + "/stats_tool.exe");
#else
        args.insert(args.begin(), test_support::bin_dir() + "/stats_tool");
#endif
        std::string output_file = scratch.join("output.txt");
        int status = os::run_process(args, output_file);
        return {status, test_support::read_file(output_file)};
    }

    temp_dir_c scratch;
    temp_dir_c scenario;
};

} // namespace

TEST_F(stats_tool, help_prints_usage_and_succeeds) {
    run_result_s result = run({"--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.output.find("usage: stats_tool"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("state DIR"), std::string::npos) << result.output;
}

TEST_F(stats_tool, state_of_a_directory_without_state_files_is_unknown_and_negative) {
    run_result_s result = run({"state", scenario.str()});
    EXPECT_EQ(result.status, 1) << result.output;
    EXPECT_NE(result.output.find("engine active:   no"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("sync replicated: no"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("state:           Unknown (3)"), std::string::npos)
        << result.output;
}

TEST_F(stats_tool, state_as_json) {
    run_result_s result = run({"state", scenario.join("missing"), "--json"});
    EXPECT_EQ(result.status, 1) << result.output;
    EXPECT_NE(result.output.find("\"engine_active\": false"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("\"state_read\": false"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("\"state_index\": 3, \"state\": \"Unknown\"}"), std::string::npos)
        << result.output;
}

TEST_F(stats_tool, trace_option_writes_the_library_trace) {
    run_result_s result = run({"--trace", scratch.str(), "state", scenario.join("missing")});
    EXPECT_EQ(result.status, 1) << result.output;
    std::string trace = test_support::read_file(scratch.join("stats_mng.dll.log"));
    EXPECT_EQ(count_of(trace, "Fail to find the path "), 3u) << trace;
}

TEST_F(stats_tool, usage_errors_exit_with_two) {
    EXPECT_EQ(run({}).status, 2);
    EXPECT_EQ(run({"state"}).status, 2);
    EXPECT_EQ(run({"frobnicate", scenario.str()}).status, 2);
    EXPECT_EQ(run({"state", scenario.str(), "extra"}).status, 2);
    run_result_s result = run({"--library"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.output.find("missing value after --library"), std::string::npos)
        << result.output;
}

TEST_F(stats_tool, a_library_that_cannot_be_loaded_is_an_error) {
    run_result_s result =
        run({"--library", scratch.join("no_such_library"), "state", scenario.str()});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.output.find("cannot load the library"), std::string::npos) << result.output;
}

TEST_F(stats_tool, state_prints_the_three_answers_with_the_state_word) {
    const std::string dir = scenario.join(".mr_qv_prefix");
    run({"record-sync", scenario.str(), "--scenario-id", "1", "--host", "1", "--done", "--time",
         "1"});
    test_support::write_file(dir + "/stats.xml",
                             "<?xml version=\"1.0\"?>\n<stats_saver>\n\t<Scenario State=\"Sync\" "
                             "IsSyncReplicated=\"True\" IsSyncReplicatedTime=\"4\"/>\n"
                             "</stats_saver>\n");
    run_result_s result = run({"state", scenario.str()});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("engine active:   no"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("sync replicated: yes"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("state:           Sync (2)"), std::string::npos) << result.output;
    result = run({"state", scenario.str(), "--json"});
    EXPECT_NE(result.output.find("\"state_read\": true"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("\"state_index\": 2, \"state\": \"Sync\"}"), std::string::npos)
        << result.output;
}

TEST_F(stats_tool, record_sync_writes_the_per_host_record) {
    run_result_s result = run({"record-sync", scenario.str(), "--scenario-id", "12", "--host", "3",
                               "--not-done", "--time", "-7"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("recorded host 3 not done at -7"), std::string::npos)
        << result.output;
    result = run({"record-sync", scenario.str(), "--scenario-id", "12", "--host", "4", "--done",
                  "--time", "9"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(test_support::read_file(scenario.join(".mr_qv_prefix/12_stats.xml")),
              "<?xml version=\"1.0\"?>\n<stats_saver ScenarioID=\"12\">\n"
              "\t<host HostIndex=\"3\" IsSyncReplicated=\"False\" IsSyncReplicatedTime=\"-7\"/>\n"
              "\t<host HostIndex=\"4\" IsSyncReplicated=\"True\" IsSyncReplicatedTime=\"9\"/>\n"
              "</stats_saver>\n");
}

TEST_F(stats_tool, record_sync_usage_errors_exit_with_two) {
    EXPECT_EQ(run({"record-sync", scenario.str(), "--host", "1", "--done", "--time", "1"}).status,
              2);
    EXPECT_EQ(run({"record-sync", scenario.str(), "--scenario-id", "x", "--host", "1", "--done",
                   "--time", "1"})
                  .status,
              2);
    EXPECT_EQ(
        run({"record-sync", scenario.str(), "--scenario-id", "1", "--host", "1", "--time", "1"})
            .status,
        2);
    EXPECT_EQ(
        run({"record-sync", "--scenario-id", "1", "--host", "1", "--done", "--time", "1"}).status,
        2);
}

TEST_F(stats_tool, its_own_process_ran_every_start_up_step_in_order) {
    run_result_s result = run({"load-steps"});
    EXPECT_EQ(result.status, 0) << result.output;
    std::string expected;
    for (const load_order_n::step_s& step : load_order_n::steps()) {
        char line[256];
        std::snprintf(line, sizeof line, "%3d ran     %s\n", step.order, step.what);
        expected += line;
    }
    // Text mode of the Windows build ends lines with CR LF.
    std::string output = result.output;
    std::erase(output, '\r');
    EXPECT_EQ(output, expected);
}

// The tool finds the catalogue of its source tree by default and prints each id's text.
TEST_F(stats_tool, message_prints_the_text_of_each_id) {
    run_result_s result = run({"message", "ig00221", "CV01350"});
    EXPECT_EQ(result.status, 0) << result.output;
    std::string output = result.output;
    std::erase(output, '\r');
    EXPECT_EQ(output.rfind("IG00221\tMaster\nCV01350\t", 0), 0u) << output;
}

TEST_F(stats_tool, message_of_an_id_without_a_text_gives_the_fallback_and_one) {
    run_result_s result = run({"message", "CV09999"});
    EXPECT_EQ(result.status, 1) << result.output;
    EXPECT_NE(result.output.find("CV09999\t"), std::string::npos) << result.output;
}

TEST_F(stats_tool, message_with_a_catalogue_that_cannot_be_read_is_an_error) {
    test_support::temp_dir_c dir;
    run_result_s result = run({"message", "IG00221", "--messages", dir.join("none.msg")});
    EXPECT_EQ(result.status, 2) << result.output;
}

TEST_F(stats_tool, message_with_a_given_catalogue_uses_it) {
    test_support::temp_dir_c dir;
    std::string file = dir.join("own.msg");
    test_support::write_file(file, "IG00221\tOwn master\n");
    run_result_s result = run({"message", "IG00221", "--messages", file});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("IG00221\tOwn master"), std::string::npos) << result.output;
}

// ---- get and set: one setting of a stored scenario

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
    run_result_s result = run({"get", scenario.join("missing.xml"), "ScenarioName"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.output.find("the file cannot be opened"), std::string::npos) << result.output;
    test_support::write_file(file, "<?xml version=\"1.0\"?>\n<stats_saver/>\n");
    EXPECT_EQ(run({"set", file, "ScenarioName=x"}).status, 2);
    EXPECT_EQ(contents(), "<?xml version=\"1.0\"?>\n<stats_saver/>\n");
}
