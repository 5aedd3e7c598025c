// stats_tool validate: a stored scenario checked at both depths, its findings as text or JSON,
// and the exit statuses.
#include "stats_tool_fixture.h"

#include <string>

using test_support::count_of;
using tool_test::apart_result_s;
using tool_test::stats_tool;

namespace {

const std::string scenarios = STATS_MNG_SCENARIO_DIR;

std::string scenario_file(const std::string& name) { return scenarios + "/" + name + ".xml"; }

// The line, from 1, of the first line of `text` that holds `what`; 0 when none does.
std::size_t line_holding(const std::string& text, const std::string& what) {
    std::size_t at = text.find(what);
    if (at == std::string::npos) return 0;
    return 1 + static_cast<std::size_t>(std::count(text.begin(), text.begin() + at, '\n'));
}

} // namespace

TEST_F(stats_tool, validate_a_valid_scenario_says_so_and_gives_0) {
    apart_result_s result = run_apart({"validate", scenario_file("valid_ha_file_server")});
    EXPECT_EQ(result.status, 0) << result.out << result.err;
    EXPECT_EQ(result.out, scenario_file("valid_ha_file_server") + ": valid\n");
    EXPECT_EQ(result.err, "");
}

TEST_F(stats_tool, validate_prints_each_finding_with_its_text_and_gives_1) {
    apart_result_s result = run_apart({"validate", scenario_file("several_findings")});
    EXPECT_EQ(result.status, 1) << result.out << result.err;
    EXPECT_EQ(count_of(result.out, "\n"), 6u) << result.out;
    EXPECT_NE(result.out.find("Master, TrigFileScript.status, The trigger file is switched on"),
              std::string::npos)
        << result.out;
    EXPECT_NE(result.out.find("Replica #2, SpecificReplicaProps.DataRewind, "), std::string::npos)
        << result.out;
    EXPECT_NE(result.out.find(scenario_file("several_findings") + ": invalid, 5 findings\n"),
              std::string::npos)
        << result.out;
}

TEST_F(stats_tool, validate_json_lists_the_findings_with_their_fields_and_lines) {
    std::string file = scenario_file("several_findings");
    apart_result_s result = run_apart({"validate", file, "--json"});
    EXPECT_EQ(result.status, 1) << result.out << result.err;
    ASSERT_EQ(result.out.rfind("[{", 0), 0u) << result.out;
    EXPECT_EQ(result.out.substr(result.out.size() - 3), "}]\n") << result.out;
    EXPECT_EQ(count_of(result.out, "{\"host\": "), 5u) << result.out;
    // The range finding names its item: its line is where the item stands in the file.
    std::string text = test_support::read_file(file);
    std::size_t line = line_holding(text, "label=\"IsAliveTimeout\"");
    ASSERT_NE(line, 0u);
    EXPECT_NE(result.out.find(
                  "{\"host\": 0, \"item\": -1, \"code\": 24, \"message_id\": "
                  "\"CV01372\", \"name\": "
                  "\"ConfigDataHolder.Scenario.Switchover.is_alive.IsAliveTimeout\", "
                  "\"peer_name\": \"5\", \"text\": \"The value lies outside the permitted range "),
              std::string::npos)
        << result.out;
    EXPECT_NE(result.out.find("\"line\": " + std::to_string(line) + "}"), std::string::npos)
        << result.out;
    // A finding by a row's name has no item in the file.
    EXPECT_NE(result.out.find("\"name\": \"TrigFileScript.status\", \"peer_name\": \"\", "),
              std::string::npos);
    EXPECT_NE(result.out.find("\"line\": null}"), std::string::npos) << result.out;
}

TEST_F(stats_tool, validate_json_of_a_valid_scenario_is_an_empty_array) {
    apart_result_s result =
        run_apart({"validate", "--json", scenario_file("valid_dr_file_server")});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "[]\n");
}

TEST_F(stats_tool, validate_a_file_that_does_not_exist_says_so_and_gives_2) {
    std::string missing = scratch.join("no-such.xml");
    apart_result_s result = run_apart({"validate", missing});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "stats_tool: validate: " + missing + " does not exist\n");
    EXPECT_EQ(result.out, "");
}

TEST_F(stats_tool, validate_a_truncated_scenario_is_an_error_of_one_line) {
    std::string text = test_support::read_file(scenario_file("valid_ha_file_server"));
    std::string cut = scratch.join("cut.xml");
    test_support::write_file(cut, text.substr(0, text.size() / 2));
    apart_result_s result = run_apart({"validate", cut});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(count_of(result.err, "\n"), 1u) << result.err;
    EXPECT_NE(result.err.find("line "), std::string::npos) << result.err;
}

TEST_F(stats_tool, validate_a_document_that_is_no_stored_scenario_is_an_error) {
    std::string other = scratch.join("other.xml");
    test_support::write_file(other,
                             "<?xml version=\"1.0\"?>\n<object label=\"Other\" id=\"2\"/>\n");
    apart_result_s result = run_apart({"validate", other});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("ConfigDataHolder"), std::string::npos) << result.err;
}

TEST_F(stats_tool, validate_usage_errors_are_one_line) {
    for (const std::vector<std::string>& args :
         {std::vector<std::string>{"validate"},
          std::vector<std::string>{"validate", scenario_file("valid_ha_file_server"), "--colour"},
          std::vector<std::string>{"validate", "a.xml", "b.xml"},
          std::vector<std::string>{"validate", "a.xml", "--messages"}}) {
        apart_result_s result = run_apart(args);
        EXPECT_EQ(result.status, 2) << args.back();
        EXPECT_EQ(count_of(result.err, "\n"), 1u) << result.err;
        EXPECT_NE(result.err.find("see 'stats_tool help validate'"), std::string::npos)
            << result.err;
    }
}

TEST_F(stats_tool, validate_with_a_catalogue_that_does_not_exist_is_an_error) {
    apart_result_s result = run_apart({"validate", scenario_file("valid_ha_file_server"),
                                       "--messages", scratch.join("none.msg")});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("does not exist"), std::string::npos) << result.err;
}

TEST_F(stats_tool, validate_with_its_own_catalogue_prints_its_texts) {
    std::string catalogue = scratch.join("own.msg");
    test_support::write_file(catalogue,
                             "IG00221\tPrimary\nCV01375\tOwn words for the trigger file\n");
    apart_result_s result =
        run_apart({"validate", scenario_file("trigger_without_script"), "--messages", catalogue});
    EXPECT_EQ(result.status, 1) << result.err;
    EXPECT_NE(result.out.find("Primary, TrigFileScript.status, Own words for the trigger file\n"),
              std::string::npos)
        << result.out;
}
