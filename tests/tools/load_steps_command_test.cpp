// stats_tool load-steps: the start-up steps of the tool's own process.
#include "stats_mng/load_order.h"
#include "stats_tool_fixture.h"

#include <cstdio>
#include <string>

using test_support::count_of;
using test_support::temp_dir_c;
using tool_test::run_result_s;
using tool_test::stats_tool;

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
