// stats_tool message: the texts of message ids from the message catalogue.
#include "stats_tool_fixture.h"

#include <string>

using test_support::count_of;
using test_support::temp_dir_c;
using tool_test::run_result_s;
using tool_test::stats_tool;

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
