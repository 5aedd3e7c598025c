// The four exports, called through the shared library loaded at run time as an engine process
// does; trace lines are read back from the library's trace file.
#include "common/child_process.h"
#include "common/loaded_library.h"
#include "common/test_support.h"
#include "platform/os.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>

using test_support::count_of;
using test_support::loaded_library_c;
using test_support::read_file;
using test_support::temp_dir_c;

namespace {

// The form the library gives a path inside: forward slashes, no trailing one.
std::string inside_form(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

class exports : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(library.loaded()) << library.error(); }

    loaded_library_c library;
    temp_dir_c scenarios;
    temp_dir_c trace_dir;
};

} // namespace

TEST_F(exports, state_index_of_a_missing_path_is_false_and_unknown) {
    unsigned int index = 7;
    EXPECT_FALSE(library.get_scenario_state_index(scenarios.join("missing").c_str(), &index));
    EXPECT_EQ(index, 3u);
}

TEST_F(exports, missing_path_gives_false_and_the_same_trace_line_from_each_query) {
    std::string trace_file = library.trace_into(trace_dir.str());
    std::string missing = scenarios.join("missing");
    unsigned int index = 0;
    EXPECT_FALSE(library.is_sync_replicated(missing.c_str()));
    EXPECT_FALSE(library.is_engine_active_for_scenario(missing.c_str()));
    EXPECT_FALSE(library.get_scenario_state_index(missing.c_str(), &index));
    library.stop_trace();

    std::string trace = read_file(trace_file);
    std::string line = "Fail to find the path " + inside_form(missing) + ".\n";
    EXPECT_EQ(count_of(trace, line), 3u) << trace;
    EXPECT_EQ(count_of(trace, "level=4 stats_mng.dll:"), 3u) << trace;
    EXPECT_EQ(count_of(trace, " is_engine_active_for_scenario: Fail to find"), 1u) << trace;
    // get_scenario_state_index traces under the name of is_sync_replicated.
    EXPECT_EQ(count_of(trace, " is_sync_replicated: Fail to find"), 2u) << trace;
    EXPECT_EQ(count_of(trace, "get_scenario_state_index"), 0u) << trace;
}

TEST_F(exports, state_index_and_sync_replicated_trace_lines_differ_only_by_line_number) {
    std::string trace_file = library.trace_into(trace_dir.str());
    std::string missing = scenarios.join("missing");
    unsigned int index = 0;
    library.is_sync_replicated(missing.c_str());
    library.get_scenario_state_index(missing.c_str(), &index);
    library.stop_trace();
    std::string trace = read_file(trace_file);
    std::size_t first = trace.find("stats_mng.dll:"),
                second = trace.find("stats_mng.dll:", first + 1);
    ASSERT_NE(second, std::string::npos) << trace;
    std::string first_line = trace.substr(first, trace.find('\n', first) - first);
    std::string second_line = trace.substr(second, trace.find('\n', second) - second);
    EXPECT_NE(first_line, second_line);
    EXPECT_EQ(first_line.substr(first_line.find(' ')), second_line.substr(second_line.find(' ')));
}

TEST_F(exports, set_trc_file_log_path_is_true_for_paths_that_do_not_exist) {
    EXPECT_TRUE(library.set_trc_file_log_path(scenarios.join("no/such/settings.trc").c_str(),
                                              scenarios.join("no/such/dir").c_str()));
    EXPECT_TRUE(library.set_trc_file_log_path("", ""));
}

TEST_F(exports, set_trc_file_log_path_settings_file_switches_the_trace_off) {
    std::string settings = trace_dir.join("off.trc");
    test_support::write_file(settings, "trace = off\n");
    ASSERT_TRUE(library.set_trc_file_log_path(settings.c_str(), trace_dir.str().c_str()));
    library.is_sync_replicated(scenarios.join("missing").c_str());
    std::string trace = read_file(trace_dir.join("stats_mng.dll.log"));
    library.trace_into(trace_dir.str());
    EXPECT_EQ(count_of(trace, "Fail to find the path"), 0u) << trace;
}

TEST_F(exports, existing_path_answers_false_until_state_files_are_read) {
    std::string trace_file = library.trace_into(trace_dir.str());
    unsigned int index = 0;
    EXPECT_FALSE(library.is_engine_active_for_scenario(scenarios.str().c_str()));
    EXPECT_FALSE(library.is_sync_replicated(scenarios.str().c_str()));
    EXPECT_FALSE(library.get_scenario_state_index(scenarios.str().c_str(), &index));
    EXPECT_EQ(index, 3u);
    library.stop_trace();
    EXPECT_EQ(count_of(read_file(trace_file), "Fail to find the path"), 0u);
}

// The answers of each spelling on scenarios with state files are in state_exports_test.cpp.
TEST_F(exports, a_missing_path_is_reported_in_its_plain_form_whatever_the_spelling) {
    std::string plain = inside_form(scenarios.str());
    std::string backslashed = plain;
    std::replace(backslashed.begin(), backslashed.end(), '/', '\\');
    std::string missing = plain + "/missing";
    std::string missing_long = "\\\\?\\" + backslashed + "\\missing\\";
    std::string trace_file = library.trace_into(trace_dir.str());
    EXPECT_FALSE(library.is_sync_replicated(missing_long.c_str()));
    EXPECT_FALSE(library.is_sync_replicated((missing + "//").c_str()));
    library.stop_trace();
    EXPECT_EQ(count_of(read_file(trace_file), "Fail to find the path " + missing + ".\n"), 2u);
}

TEST_F(exports, trace_lines_carry_time_thread_level_unit_and_function) {
    std::string trace_file = library.trace_into(trace_dir.str());
    library.is_engine_active_for_scenario(scenarios.join("missing").c_str());
    library.stop_trace();
    std::string trace = read_file(trace_file);
    ASSERT_FALSE(trace.empty());
    // "YYYY-MM-DD hh:mm:ss.mmm tid=N level=4 stats_mng.dll:LINE is_engine_active_for_scenario: ..."
    EXPECT_EQ(trace[4], '-');
    EXPECT_EQ(trace[13], ':');
    EXPECT_EQ(trace[19], '.');
    EXPECT_NE(trace.find(" tid="), std::string::npos);
    EXPECT_NE(trace.find(" level=4 stats_mng.dll:"), std::string::npos);
    EXPECT_NE(trace.find(" is_engine_active_for_scenario: Fail to find the path "),
              std::string::npos);
}

// Null arguments are a caller's slip: each export gives its failure result and one trace line,
// and the engine process goes on.
TEST_F(exports, a_null_scenario_path_gives_false_and_one_trace_line_from_each_query) {
    std::string trace_file = library.trace_into(trace_dir.str());
    unsigned int index = 7;
    EXPECT_FALSE(library.is_engine_active_for_scenario(nullptr));
    EXPECT_FALSE(library.is_sync_replicated(nullptr));
    EXPECT_FALSE(library.get_scenario_state_index(nullptr, &index));
    EXPECT_EQ(index, 3u);
    library.stop_trace();
    std::string trace = read_file(trace_file);
    EXPECT_EQ(count_of(trace, "The scenario path is null.\n"), 3u) << trace;
    EXPECT_EQ(count_of(trace, "is_engine_active_for_scenario: The scenario path is null."), 1u);
    EXPECT_EQ(count_of(trace, "is_sync_replicated: The scenario path is null."), 2u);
}

TEST_F(exports, a_null_state_index_gives_false_and_one_trace_line) {
    std::string trace_file = library.trace_into(trace_dir.str());
    EXPECT_FALSE(library.get_scenario_state_index(scenarios.str().c_str(), nullptr));
    EXPECT_FALSE(library.get_scenario_state_index(nullptr, nullptr));
    library.stop_trace();
    std::string trace = read_file(trace_file);
    EXPECT_EQ(count_of(trace, "A null state index has no room for the answer.\n"), 2u) << trace;
    EXPECT_EQ(count_of(trace, "The scenario path is null."), 0u) << trace;
}

TEST_F(exports, null_trace_paths_give_true_and_leave_the_trace_as_it_is) {
    std::string trace_file = library.trace_into(trace_dir.str());
    const std::string line =
        "A null trace settings file or log directory; the trace is left as it is.";
    std::string settings = trace_dir.join("settings.trc");
    EXPECT_TRUE(library.set_trc_file_log_path(nullptr, trace_dir.str().c_str()));
    EXPECT_TRUE(library.set_trc_file_log_path(settings.c_str(), nullptr));
    EXPECT_TRUE(library.set_trc_file_log_path(nullptr, nullptr));
    // Still the same file, still on: the next line lands in it.
    EXPECT_FALSE(library.is_sync_replicated(nullptr));
    library.stop_trace();
    std::string trace = read_file(trace_file);
    EXPECT_EQ(count_of(trace, line + "\n"), 3u) << trace;
    EXPECT_EQ(count_of(trace, "is_sync_replicated: The scenario path is null.\n"), 1u) << trace;
}

namespace {

void set_environment(const char* name, const std::string& value) {
#if defined(_WIN32)
    _putenv_s(name, value.c_str());
#else
    if (value.empty())
        unsetenv(name);
    else
        setenv(name, value.c_str(), 1);
#endif
}

} // namespace

// A process that names a trace directory before it loads the library gets the lines of the
// start-up steps there, the generic configurator's build among them. A library that has served
// a thread may stay mapped until that thread ends (a thread-local object with a destructor pins
// it under MinGW), so an earlier test of this process may have left it loaded: the load is made
// in a fresh process, this executable started again for this test alone, which loads the
// library as the tests above do.
TEST(library_load, loading_builds_the_generic_configurator_and_traces_its_success) {
    const char* const marker = "STATS_MNG_FRESH_PROCESS";
    const std::string name =
        "library_load.loading_builds_the_generic_configurator_and_traces_its_success";
    if (std::getenv(marker)) {
        loaded_library_c library;
        ASSERT_TRUE(library.loaded()) << library.error();
        return; // the parent reads the trace
    }
    temp_dir_c trace_dir, scratch;
    set_environment("STATS_MNG_TRACE_DIR", trace_dir.str());
    set_environment(marker, "1");
    std::string said;
    int exit_code = -1;
    {
        test_support::child_process_c child({os::executable_path(), "--gtest_filter=" + name},
                                            scratch.join("child.log"));
        exit_code = child.started() ? child.wait(120000) : -1;
        if (child.started() && exit_code == -1) child.kill();
        said = child.started() ? child.output() : std::string();
    }
    set_environment(marker, "");
    set_environment("STATS_MNG_TRACE_DIR", "");
    ASSERT_EQ(exit_code, 0) << said;
    EXPECT_NE(said.find("[       OK ] " + name), std::string::npos) << said;
    std::string trace = read_file(trace_dir.join("stats_mng.dll.log"));
    std::string line =
        test_support::trace_line(trace, "O.K. Generic Coonfigurator is successfully built up");
    EXPECT_NE(line.find(" level=128 "), std::string::npos) << trace;
    EXPECT_NE(line.find("generic_conf_builder_c::generic_conf_builder_c: "), std::string::npos);
    EXPECT_EQ(count_of(trace, " level=4 "), 0u) << trace;
}
