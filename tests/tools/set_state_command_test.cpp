// stats_tool set-state: the engine's writes of a state file, read back by stats_tool state.
#include "configuration/scenario_documents.h"
#include "stats_tool_fixture.h"

#include <filesystem>
#include <string>
#include <vector>

using test_support::count_of;
using test_support::temp_dir_c;
using tool_test::run_result_s;
using tool_test::stats_tool;

TEST_F(stats_tool, set_state_moves_a_scenario_through_its_states_as_state_reads_them) {
    const std::string dir = scenario.str();
    auto set = [&](std::vector<std::string> event) {
        std::vector<std::string> args = {"set-state", dir, "--scenario-id",   "7",
                                         "--host",    "1", "--scenario-name", "finance"};
        args.insert(args.end(), event.begin(), event.end());
        return run(args);
    };
    auto state = [&] { return run({"state", dir}).output; };
    run_result_s result = set({"--run"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("run for host 1 in "), std::string::npos) << result.output;
    EXPECT_NE(state().find("state:           Running (0)"), std::string::npos) << state();
    EXPECT_EQ(set({"--sync-begin", "--time", "100"}).status, 0);
    EXPECT_NE(state().find("state:           Sync (2)"), std::string::npos) << state();
    EXPECT_NE(state().find("sync replicated: no"), std::string::npos) << state();
    EXPECT_EQ(set({"--run"}).status, 0);
    EXPECT_NE(state().find("state:           Sync (2)"), std::string::npos)
        << "a start during a synchronisation keeps Sync: " << state();
    EXPECT_EQ(set({"--sync-end", "--time", "200"}).status, 0);
    EXPECT_NE(state().find("state:           Running (0)"), std::string::npos) << state();
    EXPECT_NE(state().find("sync replicated: yes"), std::string::npos) << state();
    EXPECT_EQ(set({"--stop"}).status, 0);
    EXPECT_NE(state().find("state:           Stop (1)"), std::string::npos) << state();
    std::string text = test_support::read_file(dir + "/.mr_qv_prefix/stats.xml");
    EXPECT_NE(text.find("ScenarioID=\"7\" ScenarioName=\"finance\""), std::string::npos) << text;
    EXPECT_NE(text.find("IsSyncReplicatedTime=\"200\""), std::string::npos) << text;
}

TEST_F(stats_tool, set_state_under_each_root_directory_of_a_stored_scenario) {
    using namespace scenario_documents;
    temp_dir_c a, b, replica, replica_b;
    std::string file = scratch.join("scenario.xmc");
    test_support::write_file(
        file, stored(scenario_documents::scenario(
                  scenario_data("Ha", "FileServer", "Regular", "False", "31"),
                  host("1", root_dir(a.str()) + root_dir(b.str()),
                       host("2", root_dir(replica.str()) + root_dir(replica_b.str()))))));
    run_result_s result =
        run({"set-state", "--scenario", file, "--host", "1", "--sync-begin", "--time", "5"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("under 2 root directories"), std::string::npos) << result.output;
    for (const temp_dir_c* dir : {&a, &b}) {
        std::string state = run({"state", dir->str()}).output;
        EXPECT_NE(state.find("state:           Sync (2)"), std::string::npos) << state;
        std::string text = test_support::read_file(dir->join(".mr_qv_prefix/stats.xml"));
        EXPECT_NE(text.find("ScenarioID=\"31\" ScenarioName=\"finance\""), std::string::npos)
            << text;
    }
    EXPECT_NE(run({"state", replica.str()}).output.find("Unknown (3)"), std::string::npos)
        << "the replica's root directory is not the Master's";
    EXPECT_EQ(run({"set-state", "--scenario", file, "--host", "2", "--stop"}).status, 0);
    EXPECT_NE(run({"state", replica.str()}).output.find("Stop (1)"), std::string::npos);
    EXPECT_NE(run({"state", replica_b.str()}).output.find("Stop (1)"), std::string::npos);
}

// The writer walks as many root directories as the Master has: a host with fewer runs out of
// them, which ends the walk with a failure after the ones it has.
TEST_F(stats_tool, set_state_for_a_host_with_fewer_root_directories_than_the_master_fails) {
    using namespace scenario_documents;
    temp_dir_c a, b, replica;
    std::string file = scratch.join("scenario.xmc");
    test_support::write_file(
        file, stored(scenario_documents::scenario(scenario_data(),
                                                  host("1", root_dir(a.str()) + root_dir(b.str()),
                                                       host("2", root_dir(replica.str()))))));
    run_result_s result = run({"set-state", "--scenario", file, "--host", "2", "--stop"});
    EXPECT_EQ(result.status, 1) << result.output;
    EXPECT_NE(result.output.find("not written"), std::string::npos) << result.output;
    EXPECT_NE(run({"state", replica.str()}).output.find("Stop (1)"), std::string::npos);
}

TEST_F(stats_tool, set_state_usage_errors_exit_with_two_and_say_what_is_wrong) {
    const std::string dir = scenario.str();
    struct case_s {
        std::vector<std::string> args;
        const char* says;
    } cases[] = {
        {{"set-state", dir, "--scenario-id", "1", "--host", "1"}, "missing one of --run"},
        {{"set-state", dir, "--scenario-id", "1", "--host", "1", "--run", "--stop"},
         "more than one of --run"},
        {{"set-state", dir, "--scenario-id", "1", "--host", "1", "--sync-end"}, "need --time"},
        {{"set-state", dir, "--scenario-id", "1", "--host", "1", "--run", "--time", "4"},
         "--time goes with"},
        {{"set-state", dir, "--host", "1", "--run"}, "missing --scenario-id"},
        {{"set-state", dir, "--scenario-id", "1", "--run"}, "missing --host"},
        {{"set-state", "--scenario-id", "1", "--host", "1", "--run"},
         "missing DIR or --scenario FILE"},
        {{"set-state", dir, "--scenario", "x.xmc", "--host", "1", "--run"}, "exclude each other"},
        {{"set-state", dir, "--scenario-id", "-1", "--host", "1", "--run"}, "--scenario-id needs"},
    };
    for (const case_s& c : cases) {
        run_result_s result = run(c.args);
        EXPECT_EQ(result.status, 2) << result.output;
        EXPECT_NE(result.output.find(c.says), std::string::npos) << result.output;
    }
    std::string not_scenario = scratch.join("not_a_scenario.xml");
    test_support::write_file(not_scenario, "<?xml version=\"1.0\"?>\n<stats_saver/>\n");
    run_result_s unloaded = run({"set-state", "--scenario", not_scenario, "--host", "1", "--run"});
    EXPECT_EQ(unloaded.status, 2) << unloaded.output;
}

TEST_F(stats_tool, set_state_that_cannot_write_exits_with_one) {
    const std::string dir = scenario.str();
    std::filesystem::create_directories(test_support::from_utf8(dir + "/.mr_qv_prefix/stats.xml"));
    run_result_s result = run({"set-state", dir, "--scenario-id", "1", "--host", "1", "--stop"});
    EXPECT_EQ(result.status, 1) << result.output;
    EXPECT_NE(result.output.find("not written"), std::string::npos) << result.output;
}
