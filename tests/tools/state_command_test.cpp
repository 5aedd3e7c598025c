// stats_tool state: the library loaded as an engine process loads it, and its answers.
#include "stats_tool_fixture.h"

#include <string>

using test_support::count_of;
using test_support::temp_dir_c;
using tool_test::run_result_s;
using tool_test::stats_tool;

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
