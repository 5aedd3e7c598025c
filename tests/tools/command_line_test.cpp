// stats_tool's command line as a whole: the help, usage errors in one line, and paths that do
// not exist.
#include "stats_tool_fixture.h"

#include <filesystem>
#include <string>
#include <vector>

using test_support::count_of;
using tool_test::apart_result_s;
using tool_test::stats_tool;

namespace {

// Every command, in the order the overview lists them.
const std::vector<std::string> command_names = {
    "state",    "hold-lock",    "record-sync", "set-state", "load-steps", "message",
    "template", "new-scenario", "get",         "set",       "help"};

// The exit statuses a command's usage lists, as "N  meaning" lines (a meaning wrapped over
// several lines joined again).
std::vector<std::string> exit_status_lines(const std::string& usage) {
    std::vector<std::string> lines;
    std::size_t at = usage.find("\nexit status:\n");
    if (at == std::string::npos) return lines;
    for (const std::string& line : test_support::lines_of(usage.substr(at + 14))) {
        if (line.rfind("     ", 0) == 0 && !lines.empty())
            lines.back() += " " + line.substr(line.find_first_not_of(' '));
        else if (line.rfind("  ", 0) == 0)
            lines.push_back(line.substr(2));
    }
    return lines;
}

} // namespace

TEST_F(stats_tool, help_lists_every_command_with_its_summary_the_options_and_the_exit_statuses) {
    apart_result_s result = run_apart({"help"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out.rfind("usage: stats_tool [--library PATH] [--trace DIR] COMMAND", 0), 0u)
        << result.out;
    std::size_t last = 0;
    for (const std::string& name : command_names) {
        std::size_t at = result.out.find("\n  " + name + " ");
        ASSERT_NE(at, std::string::npos) << name << "\n" << result.out;
        EXPECT_GT(at, last) << name << " is out of order";
        last = at;
    }
    for (const char* part : {"--library PATH", "--trace DIR", "--help, -h", "exit status: 0",
                             "'stats_tool help COMMAND'"})
        EXPECT_NE(result.out.find(part), std::string::npos) << part << "\n" << result.out;
    for (const std::string& line : test_support::lines_of(result.out))
        EXPECT_TRUE(line.size() <= 79 || line.rfind("usage: ", 0) == 0) << line;
    for (const char* line : {"--help", "-h"}) {
        apart_result_s same = run_apart({line});
        EXPECT_EQ(same.status, 0) << line;
        EXPECT_EQ(same.out, result.out) << line;
    }
}

TEST_F(stats_tool, help_of_each_command_is_its_usage_with_its_exit_statuses) {
    for (const std::string& name : command_names) {
        apart_result_s help = run_apart({"help", name});
        EXPECT_EQ(help.status, 0) << name << ": " << help.err;
        EXPECT_EQ(help.err, "") << name;
        EXPECT_NE(help.out.find("usage: stats_tool "), std::string::npos) << help.out;
        std::string synopsis = help.out.substr(0, help.out.find('\n') + 1);
        EXPECT_TRUE(synopsis.find(" " + name + " ") != std::string::npos ||
                    synopsis.find(" " + name + "\n") != std::string::npos)
            << synopsis;
        // Wrapped to a terminal's width, but for the synopsis.
        for (const std::string& line : test_support::lines_of(help.out))
            EXPECT_TRUE(line.size() <= 79 || line.rfind("usage: ", 0) == 0 ||
                        line.rfind("       ", 0) == 0)
                << name << ": " << line;
        std::vector<std::string> statuses = exit_status_lines(help.out);
        ASSERT_GE(statuses.size(), 2u) << name << "\n" << help.out;
        EXPECT_EQ(statuses.front().rfind("0  ", 0), 0u) << name << "\n" << help.out;
        EXPECT_EQ(statuses.back().rfind("2  ", 0), 0u) << name << "\n" << help.out;

        apart_result_s option = run_apart({name, "--help"});
        EXPECT_EQ(option.status, 0) << name << ": " << option.err;
        EXPECT_EQ(option.out, help.out) << name;
        apart_result_s short_option = run_apart({name, "-h"});
        EXPECT_EQ(short_option.out, help.out) << name;
    }
    // --help wins over what else stands there, and no command runs.
    apart_result_s help = run_apart({"set-state", "--run", scenario.str(), "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.err, "");
    EXPECT_EQ(help.out, run_apart({"help", "set-state"}).out);
}

TEST_F(stats_tool, help_of_an_unknown_command_is_a_usage_error) {
    apart_result_s result = run_apart({"help", "frobnicate"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "stats_tool: help: unknown command 'frobnicate'; see 'stats_tool help'\n");
    result = run_apart({"help", "state", "get"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "stats_tool: help: unexpected argument 'get'; see 'stats_tool help'\n");
}

// Each kind of usage error: one line on standard error that says what is wrong and where the
// help is, nothing on standard output, exit status 2.
TEST_F(stats_tool, a_usage_error_is_one_line_on_standard_error_and_two) {
    const std::string dir = scenario.str();
    struct case_s {
        std::vector<std::string> args;
        std::string says;
    } cases[] = {
        // no command, an unknown command, an unknown or incomplete global option
        {{}, "stats_tool: no command given; see 'stats_tool help'"},
        {{"frobnicate", dir}, "stats_tool: unknown command 'frobnicate'; see 'stats_tool help'"},
        {{"--frobnicate", "state", dir},
         "stats_tool: unknown option '--frobnicate'; see 'stats_tool help'"},
        {{"--library"}, "stats_tool: missing value after --library; see 'stats_tool help'"},
        {{"state", dir, "--trace"},
         "stats_tool: missing value after --trace; see 'stats_tool help'"},
        // a missing argument
        {{"state"}, "stats_tool: state: missing DIR; see 'stats_tool help state'"},
        {{"hold-lock"}, "stats_tool: hold-lock: missing DIR; see 'stats_tool help hold-lock'"},
        {{"record-sync", dir, "--scenario-id", "1", "--host", "1", "--done"},
         "stats_tool: record-sync: missing --time; see 'stats_tool help record-sync'"},
        {{"set-state", dir, "--scenario-id", "1", "--run"},
         "stats_tool: set-state: missing --host; see 'stats_tool help set-state'"},
        {{"message"}, "stats_tool: message: missing ID; see 'stats_tool help message'"},
        {{"new-scenario", "--application", "SQL"},
         "stats_tool: new-scenario: missing --product; see 'stats_tool help new-scenario'"},
        {{"get", dir}, "stats_tool: get: missing NAME; see 'stats_tool help get'"},
        {{"set", dir, "ScenarioName"},
         "stats_tool: set: missing =VALUE after ScenarioName; see 'stats_tool help set'"},
        {{"hold-lock", dir, "--release-file"},
         "stats_tool: hold-lock: missing value after --release-file; see 'stats_tool help "
         "hold-lock'"},
        {{"message", "IG00221", "--messages"},
         "stats_tool: message: missing value after --messages; see 'stats_tool help message'"},
        // an extra argument
        {{"state", dir, "extra"},
         "stats_tool: state: unexpected argument 'extra'; see 'stats_tool help state'"},
        {{"load-steps", "extra"},
         "stats_tool: load-steps: unexpected argument 'extra'; see 'stats_tool help "
         "load-steps'"},
        {{"template", "--reference", "extra"},
         "stats_tool: template: unexpected argument 'extra'; see 'stats_tool help template'"},
        {{"get", dir, "ScenarioName", "extra"},
         "stats_tool: get: unexpected argument 'extra'; see 'stats_tool help get'"},
        // an unknown option
        {{"state", dir, "--frob"},
         "stats_tool: state: unknown option '--frob'; see 'stats_tool help state'"},
        {{"hold-lock", dir, "--frob"},
         "stats_tool: hold-lock: unknown option '--frob'; see 'stats_tool help hold-lock'"},
        {{"set-state", dir, "--scenario-id", "1", "--host", "1", "--run", "--frob"},
         "stats_tool: set-state: unknown option '--frob'; see 'stats_tool help set-state'"},
        {{"load-steps", "--frob"},
         "stats_tool: load-steps: unknown option '--frob'; see 'stats_tool help load-steps'"},
        {{"template", "--frob"},
         "stats_tool: template: unknown option '--frob'; see 'stats_tool help template'"},
        {{"new-scenario", "--product", "Ha", "--application", "SQL", "--frob"},
         "stats_tool: new-scenario: unknown option '--frob'; see 'stats_tool help "
         "new-scenario'"},
        {{"message", "IG00221", "--frob"},
         "stats_tool: message: unknown option '--frob'; see 'stats_tool help message'"},
        {{"set", dir, "ScenarioName=x", "--frob"},
         "stats_tool: set: unknown option '--frob'; see 'stats_tool help set'"},
        // a bad number
        {{"record-sync", dir, "--scenario-id", "x", "--host", "1", "--done", "--time", "1"},
         "stats_tool: record-sync: --scenario-id needs a number from 0 to 4294967295; see "
         "'stats_tool help record-sync'"},
        {{"record-sync", dir, "--scenario-id", "1", "--host", "1", "--done", "--time", "1.5"},
         "stats_tool: record-sync: --time needs a signed 64-bit number; see 'stats_tool help "
         "record-sync'"},
        {{"set-state", dir, "--scenario-id", "1", "--host", "-1", "--run"},
         "stats_tool: set-state: --host needs a number from 0 to 4294967295; see 'stats_tool "
         "help set-state'"},
        {{"get", dir, "Host", "--host", "one"},
         "stats_tool: get: --host needs a number from 0 to 4294967295; see 'stats_tool help "
         "get'"},
    };
    for (const case_s& c : cases) {
        apart_result_s result = run_apart(c.args);
        std::string line = c.args.empty() ? std::string("(none)") : c.args[0];
        EXPECT_EQ(result.status, 2) << line;
        EXPECT_EQ(result.out, "") << line;
        EXPECT_EQ(result.err, c.says + "\n") << line;
    }
}

// A path that must exist and does not is said to not exist, and nothing is made in its place.
TEST_F(stats_tool, a_path_that_does_not_exist_is_said_to_not_exist) {
    const std::string missing = scenario.join("missing");
    const std::string file = scenario.join("missing.xml");
    struct case_s {
        std::vector<std::string> args;
        std::string command;
        std::string path;
    } cases[] = {
        {{"hold-lock", missing}, "hold-lock", missing},
        {{"record-sync", missing, "--scenario-id", "1", "--host", "1", "--done", "--time", "1"},
         "record-sync",
         missing},
        {{"set-state", missing, "--scenario-id", "1", "--host", "1", "--run"},
         "set-state",
         missing},
        {{"set-state", "--scenario", file, "--host", "1", "--run"}, "set-state", file},
        {{"get", file, "ScenarioName"}, "get", file},
        {{"set", file, "ScenarioName=x"}, "set", file},
        {{"message", "IG00221", "--messages", file}, "message", file},
    };
    for (const case_s& c : cases) {
        apart_result_s result = run_apart(c.args);
        EXPECT_EQ(result.status, 2) << c.command;
        EXPECT_EQ(result.out, "") << c.command;
        EXPECT_EQ(result.err, "stats_tool: " + c.command + ": " + c.path + " does not exist\n");
        EXPECT_FALSE(std::filesystem::exists(test_support::from_utf8(c.path))) << c.command;
    }
}

// state asks the library about a missing directory all the same: its answers are the library's
// for a missing path. A line on standard error says the directory does not exist, and the exit
// status is that of a scenario whose state can't be read.
TEST_F(stats_tool, state_of_a_directory_that_does_not_exist_gives_the_answers_and_says_so) {
    const std::string missing = scenario.join("missing");
    apart_result_s result = run_apart({"state", missing});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "scenario:        " + missing +
                              "\nengine active:   no\nsync replicated: no\n"
                              "state:           Unknown (3), no state file read\n");
    EXPECT_EQ(result.err, "stats_tool: state: " + missing + " does not exist\n");
    EXPECT_FALSE(std::filesystem::exists(test_support::from_utf8(missing)));
}

// The README's table of each command's exit statuses says what the command's help says.
TEST_F(stats_tool, readme_has_the_exit_statuses_of_each_command) {
    std::string readme = test_support::read_file(STATS_MNG_README);
    std::erase(readme, '\r');
    ASSERT_FALSE(readme.empty()) << STATS_MNG_README;
    for (const std::string& name : command_names) {
        std::size_t start = readme.find("\n### `" + name + "`\n");
        ASSERT_NE(start, std::string::npos) << "no section for " << name;
        std::size_t end = readme.find("\n#", start + 1);
        std::string section = readme.substr(start, end == std::string::npos ? end : end - start);
        std::vector<std::string> statuses = exit_status_lines(run_apart({"help", name}).out);
        ASSERT_FALSE(statuses.empty()) << name;
        for (const std::string& status : statuses) {
            std::size_t gap = status.find("  ");
            std::string row = "| " + status.substr(0, gap) + " | " + status.substr(gap + 2) + " |";
            EXPECT_NE(section.find(row), std::string::npos) << name << ": " << row;
        }
        EXPECT_EQ(count_of(section, "\n| "), statuses.size() + 1) << name << ": " << section;
    }
}
