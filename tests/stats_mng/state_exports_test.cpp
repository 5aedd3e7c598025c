// The state queries end to end, through the shared library loaded at run time as an engine
// process loads it: scenario directories prepared on disk, with the scenario's own state file,
// the one a directory up, both, and broken ones.
#include "common/loaded_library.h"
#include "common/test_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

using test_support::loaded_library_c;
using test_support::read_file;
using test_support::temp_dir_c;
using test_support::write_file;

namespace {

std::string record(const std::string& attributes) {
    return "<?xml version=\"1.0\"?>\n<stats_saver>\n\t<Scenario HostIndex=\"1\" ScenarioID=\"5\" "
           "ScenarioName=\"s\" " +
           attributes + "/>\n</stats_saver>\n";
}

std::string state(const std::string& word, bool sync, long long time) {
    return record("State=\"" + word + "\" IsSyncReplicated=\"" + (sync ? "True" : "False") +
                  "\" IsSyncReplicatedTime=\"" + std::to_string(time) + "\"");
}

class state_exports : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(library.loaded()) << library.error();
        scenario = top.join("parent") + "/scenario";
        std::filesystem::create_directories(test_support::from_utf8(scenario + "/.mr_qv_prefix"));
    }

    void write_own(const std::string& text) {
        write_file(scenario + "/.mr_qv_prefix/stats.xml", text);
    }
    void write_parent(const std::string& text) {
        std::filesystem::create_directories(
            test_support::from_utf8(top.join("parent") + "/.mr_qv_prefix"));
        write_file(top.join("parent") + "/.mr_qv_prefix/stats.xml", text);
    }

    // The three answers: state index (3 when false), the result of the index query, the flag.
    struct answers_s {
        bool read;
        unsigned index;
        bool sync;
    };
    answers_s ask() {
        answers_s a{};
        a.index = 77;
        a.read = library.get_scenario_state_index(scenario.c_str(), &a.index);
        a.sync = library.is_sync_replicated(scenario.c_str());
        return a;
    }

    loaded_library_c library;
    temp_dir_c top;
    std::string scenario;
};

} // namespace

TEST_F(state_exports, each_state_word_of_the_own_file) {
    const char* words[] = {"Running", "Stop", "Sync"};
    for (unsigned i = 0; i < 3; ++i) {
        write_own(state(words[i], i == 0, 10));
        answers_s a = ask();
        EXPECT_TRUE(a.read) << words[i];
        EXPECT_EQ(a.index, i) << words[i];
        EXPECT_EQ(a.sync, i == 0) << words[i];
    }
}

TEST_F(state_exports, unknown_words_read_as_index_three) {
    for (const char* word : {"Paused", "", "Unknown", "Running "}) {
        write_own(state(word, true, 10));
        answers_s a = ask();
        EXPECT_TRUE(a.read) << word;
        EXPECT_EQ(a.index, 3u) << word;
        EXPECT_TRUE(a.sync) << word;
    }
}

TEST_F(state_exports, no_state_file_is_false_and_unknown) {
    answers_s a = ask();
    EXPECT_FALSE(a.read);
    EXPECT_EQ(a.index, 3u);
    EXPECT_FALSE(a.sync);
}

TEST_F(state_exports, parent_file_alone_counts_with_a_later_time) {
    write_parent(state("Stop", true, 3));
    answers_s a = ask();
    EXPECT_TRUE(a.read);
    EXPECT_EQ(a.index, 1u);
    EXPECT_TRUE(a.sync);
}

TEST_F(state_exports, parent_file_alone_with_time_zero_is_true_and_unknown) {
    write_parent(state("Stop", true, 0));
    answers_s a = ask();
    EXPECT_TRUE(a.read);
    EXPECT_EQ(a.index, 3u);
    EXPECT_FALSE(a.sync);
}

TEST_F(state_exports, both_files_each_ordering_of_times) {
    write_own(state("Running", false, 100));
    write_parent(state("Sync", true, 200));
    answers_s a = ask();
    EXPECT_EQ(a.index, 2u);
    EXPECT_TRUE(a.sync);
    write_parent(state("Sync", true, 50));
    a = ask();
    EXPECT_EQ(a.index, 0u);
    EXPECT_FALSE(a.sync);
    write_parent(state("Sync", true, 100));
    a = ask();
    EXPECT_EQ(a.index, 0u) << "a tie goes to the scenario's own file";
    EXPECT_FALSE(a.sync);
}

TEST_F(state_exports, missing_attributes) {
    write_own(record("State=\"Stop\""));
    answers_s a = ask();
    EXPECT_TRUE(a.read);
    EXPECT_EQ(a.index, 1u);
    EXPECT_FALSE(a.sync);
    write_own(record("IsSyncReplicated=\"True\" IsSyncReplicatedTime=\"4\""));
    a = ask();
    EXPECT_FALSE(a.read) << "a record without State is not read";
    EXPECT_EQ(a.index, 3u);
    EXPECT_FALSE(a.sync);
}

TEST_F(state_exports, rubbish_empty_and_partial_files) {
    const std::string good = state("Stop", true, 5);
    for (const std::string& text :
         {std::string(), std::string("rubbish"), good.substr(0, good.size() / 2),
          std::string("<?xml version=\"1.0\"?>\n<stats_saver/>\n"), std::string("\xff\xfe<x/>"),
          std::string("<?xml version=\"1.0\"?>\n<stats_saver>\n\t<Scenario "
                      "State=\"Stop\xff\"/>\n</stats_saver>\n")}) {
        write_own(text);
        answers_s a = ask();
        EXPECT_FALSE(a.read) << text;
        EXPECT_EQ(a.index, 3u) << text;
        EXPECT_FALSE(a.sync) << text;
        EXPECT_EQ(read_file(scenario + "/.mr_qv_prefix/stats.xml"), text)
            << "a query changes no file";
    }
}

TEST_F(state_exports, a_held_lock_does_not_change_the_state_answers) {
    write_own(state("Sync", false, 9));
    // The lock is the engine's; the state files are read without it.
    write_file(scenario + "/.mr_qv_prefix/state.lock", "");
    answers_s a = ask();
    EXPECT_TRUE(a.read);
    EXPECT_EQ(a.index, 2u);
}

// ---- bad input

TEST_F(state_exports, state_file_that_is_a_directory) {
    std::filesystem::create_directories(
        test_support::from_utf8(scenario + "/.mr_qv_prefix/stats.xml"));
    answers_s a = ask();
    EXPECT_FALSE(a.read);
    EXPECT_EQ(a.index, 3u);
    EXPECT_TRUE(std::filesystem::is_directory(
        test_support::from_utf8(scenario + "/.mr_qv_prefix/stats.xml")));
}

TEST_F(state_exports, state_file_of_100_megabytes) {
    std::string big = "<?xml version=\"1.0\"?>\n<stats_saver>\n\t<Scenario State=\"Stop\" Pad=\"";
    big.append(100u << 20, 'x');
    big += "\"/>\n</stats_saver>\n";
    write_own(big);
    answers_s a = ask();
    EXPECT_TRUE(a.read);
    EXPECT_EQ(a.index, 1u);
    EXPECT_EQ(
        std::filesystem::file_size(test_support::from_utf8(scenario + "/.mr_qv_prefix/stats.xml")),
        big.size());
}

TEST_F(state_exports, one_megabyte_attribute_and_ten_kilobyte_state_word) {
    write_own(record("Note=\"" + std::string(1u << 20, 'n') + "\" State=\"Sync\""));
    answers_s a = ask();
    EXPECT_TRUE(a.read);
    EXPECT_EQ(a.index, 2u);
    write_own(state(std::string(10240, 'S'), true, 1));
    a = ask();
    EXPECT_TRUE(a.read);
    EXPECT_EQ(a.index, 3u);
}

TEST_F(state_exports, paths_of_4095_and_5000_bytes) {
    for (std::size_t length : {4095u, 5000u}) {
        std::string path = scenario + "/";
        while (path.size() < length) path += 'p';
        unsigned index = 0;
        EXPECT_FALSE(library.get_scenario_state_index(path.c_str(), &index)) << length;
        EXPECT_EQ(index, 3u) << length;
        EXPECT_FALSE(library.is_sync_replicated(path.c_str())) << length;
    }
}

// The spellings an engine may pass for one scenario directory: backslashes, a trailing
// separator and the long-path prefix all name the same state files, for every state word and
// flag those files can hold.
TEST_F(state_exports, every_spelling_of_the_path_gives_the_answers_of_its_state_file) {
    std::string plain = scenario;
    std::replace(plain.begin(), plain.end(), '\\', '/');
    std::string backslashed = plain;
    std::replace(backslashed.begin(), backslashed.end(), '/', '\\');
    const std::string spellings[] = {plain, backslashed, backslashed + "\\", plain + "/",
                                     "\\\\?\\" + backslashed};
    const char* words[] = {"Running", "Stop", "Sync", "Paused"};
    for (unsigned word = 0; word < 4; ++word) {
        for (bool sync : {true, false}) {
            write_own(state(words[word], sync, 10));
            for (const std::string& spelling : spellings) {
                SCOPED_TRACE(std::string(words[word]) + (sync ? " synchronised, " : " not, ") +
                             spelling);
                unsigned index = 77;
                EXPECT_TRUE(library.get_scenario_state_index(spelling.c_str(), &index));
                EXPECT_EQ(index, word);
                EXPECT_EQ(library.is_sync_replicated(spelling.c_str()), sync);
                EXPECT_FALSE(library.is_engine_active_for_scenario(spelling.c_str()));
            }
        }
    }
}
