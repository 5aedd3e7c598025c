// stats_tool record-sync: the per-host record of synchronisation results.
#include "stats_tool_fixture.h"

#include <string>

using test_support::count_of;
using test_support::temp_dir_c;
using tool_test::run_result_s;
using tool_test::stats_tool;

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
