// The state files: the per-host record of stats_saver_c, and the reading and writing sides of
// stats_saver_ex_c, on files prepared on disk; trace lines are read back from the trace file.
#include "common/test_support.h"
#include "configuration/scenario_conf.h"
#include "configuration/scenario_documents.h"
#include "configuration/scenario_loader.h"
#include "files/file.h"
#include "platform/os.h"
#include "stats_mng/stats_saver.h"
#include "stats_mng/stats_saver_ex.h"
#include "xml/xml_tree_templ.h"

#if !defined(_WIN32)
#include "platform/posix/syscalls.h"

#include <fcntl.h>
#endif

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

#include <filesystem>
#include <string>
#include <vector>

using test_support::count_of;
using test_support::read_file;
using test_support::temp_dir_c;
using test_support::trace_capture_c;
using test_support::trace_line;
using test_support::write_file;

using test_support::attributes_of;
using test_support::set_attributes;
using test_support::stored_hidden_bit;

namespace {

std::string state_file(const std::string& state, bool sync, long long time) {
    return "<?xml version=\"1.0\"?>\n<stats_saver>\n\t<Scenario HostIndex=\"1\" ScenarioID=\"9\" "
           "ScenarioName=\"s\" State=\"" +
           state + "\" IsSyncReplicated=\"" + (sync ? "True" : "False") +
           "\" IsSyncReplicatedTime=\"" + std::to_string(time) + "\"/>\n</stats_saver>\n";
}

class state_files : public ::testing::Test {
  protected:
    void SetUp() override {
        root = top.join("parent") + "/scenario";
        std::filesystem::create_directories(test_support::from_utf8(root + "/.mr_qv_prefix"));
        saver.root_path.append(root.c_str());
        saver.state_dir_name.append(".mr_qv_prefix");
    }

    std::string own_file() const { return root + "/.mr_qv_prefix/stats.xml"; }
    std::string parent_file() const { return top.join("parent") + "/.mr_qv_prefix/stats.xml"; }
    void write_parent(const std::string& text) {
        std::filesystem::create_directories(
            test_support::from_utf8(top.join("parent") + "/.mr_qv_prefix"));
        write_file(parent_file(), text);
    }

    temp_dir_c top;
    std::string root;
    stats_saver_ex_c saver;
};

} // namespace

// ---- stats_saver_c

TEST(stats_saver, file_path_of_a_drive_directory) {
    stats_saver_c saver;
    saver.root_path.append("C:/data");
    saver.state_dir_name.append(".mr_qv_prefix");
    saver.scenario_id = 7;
    utl_stream_c out;
    ASSERT_NE(saver._get_file_path(out), nullptr);
    EXPECT_STREQ(out.c_str(), "C:/data/.mr_qv_prefix/7_stats.xml");
}

TEST(stats_saver, empty_root_path_fails_every_path_and_the_save) {
    stats_saver_c saver;
    saver.state_dir_name.append(".mr_qv_prefix");
    utl_stream_c out;
    EXPECT_EQ(saver._get_file_path(out), nullptr);
    EXPECT_EQ(saver._get_dir_path(out), nullptr);
    utl_stream_c text("x");
    EXPECT_FALSE(saver._save(text));
    EXPECT_FALSE(saver.set_sync_state(1, true, 5));
}

TEST(stats_saver, two_hosts_make_two_records_and_a_repeat_changes_only_its_own) {
    temp_dir_c dir;
    stats_saver_c saver;
    saver.root_path.append(dir.str().c_str());
    saver.state_dir_name.append(".mr_qv_prefix");
    saver.scenario_id = 42;
    ASSERT_TRUE(saver.set_sync_state(1, true, 100));
    ASSERT_TRUE(saver.set_sync_state(2, false, -5));
    const std::string path = dir.join(".mr_qv_prefix/42_stats.xml");
    EXPECT_EQ(read_file(path),
              "<?xml version=\"1.0\"?>\n<stats_saver ScenarioID=\"42\">\n"
              "\t<host HostIndex=\"1\" IsSyncReplicated=\"True\" IsSyncReplicatedTime=\"100\"/>\n"
              "\t<host HostIndex=\"2\" IsSyncReplicated=\"False\" IsSyncReplicatedTime=\"-5\"/>\n"
              "</stats_saver>\n");
    ASSERT_TRUE(saver.set_sync_state(1, false, 200));
    EXPECT_EQ(read_file(path),
              "<?xml version=\"1.0\"?>\n<stats_saver ScenarioID=\"42\">\n"
              "\t<host HostIndex=\"1\" IsSyncReplicated=\"False\" IsSyncReplicatedTime=\"200\"/>\n"
              "\t<host HostIndex=\"2\" IsSyncReplicated=\"False\" IsSyncReplicatedTime=\"-5\"/>\n"
              "</stats_saver>\n");
}

TEST(stats_saver, a_broken_record_is_started_anew) {
    temp_dir_c dir;
    std::filesystem::create_directories(dir.path() / ".mr_qv_prefix");
    write_file(dir.join(".mr_qv_prefix/3_stats.xml"), "rubbish");
    stats_saver_c saver;
    saver.root_path.append(dir.str().c_str());
    saver.state_dir_name.append(".mr_qv_prefix");
    saver.scenario_id = 3;
    ASSERT_TRUE(saver.set_sync_state(0, true, 1));
    EXPECT_EQ(read_file(dir.join(".mr_qv_prefix/3_stats.xml")),
              "<?xml version=\"1.0\"?>\n<stats_saver ScenarioID=\"3\">\n"
              "\t<host HostIndex=\"0\" IsSyncReplicated=\"True\" IsSyncReplicatedTime=\"1\"/>\n"
              "</stats_saver>\n");
}

TEST(stats_saver, save_hides_a_state_directory_that_was_unhidden) {
    temp_dir_c dir;
    stats_saver_c saver;
    saver.root_path.append(dir.str().c_str());
    saver.state_dir_name.append("state_dir");
    saver.scenario_id = 1;
    utl_stream_c text("<x/>");
    ASSERT_TRUE(saver._save(text));
    const std::string state_dir = dir.join("state_dir");
    EXPECT_TRUE(attributes_of(state_dir) & os::FILE_ATTRIBUTE_HIDDEN);
    ASSERT_TRUE(set_attributes(state_dir, os::FILE_ATTRIBUTE_DIRECTORY));
    ASSERT_FALSE(attributes_of(state_dir) & os::FILE_ATTRIBUTE_HIDDEN);
    ASSERT_TRUE(saver._save(text));
    EXPECT_TRUE(attributes_of(state_dir) & os::FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(read_file(dir.join("state_dir/1_stats.xml")), "<x/>");
}

// ---- stats_saver_ex_c: paths and words

TEST(stats_saver_ex, file_path_is_stats_xml_in_the_state_directory) {
    stats_saver_ex_c saver;
    saver.root_path.append("C:/a/b");
    saver.state_dir_name.append(".mr_qv_prefix");
    utl_stream_c out;
    ASSERT_NE(saver._get_file_path(out), nullptr);
    EXPECT_STREQ(out.c_str(), "C:/a/b/.mr_qv_prefix/stats.xml");
}

TEST(stats_saver_ex, parent_file_path_goes_one_directory_up) {
    stats_saver_ex_c saver;
    saver.state_dir_name.append(".mr_qv_prefix");
    utl_stream_c out;
    saver.root_path.append("C:/a/b");
    ASSERT_TRUE(saver._get_parent_file_path(out));
    EXPECT_STREQ(out.c_str(), "C:/a/.mr_qv_prefix/stats.xml");
    saver.root_path.append(utl_stream_c::clear_char).append("C:/a");
    ASSERT_TRUE(saver._get_parent_file_path(out));
    EXPECT_STREQ(out.c_str(), "C:/.mr_qv_prefix/stats.xml");
    saver.root_path.append(utl_stream_c::clear_char).append("C:");
    ASSERT_TRUE(saver._get_parent_file_path(out));
    EXPECT_STREQ(out.c_str(), "C:/.mr_qv_prefix/stats.xml");
    utl_stream_c own;
    saver._get_file_path(own);
    EXPECT_STREQ(own.c_str(), out.c_str());
}

TEST(stats_saver_ex, parent_file_path_of_a_name_without_directory_fails) {
    stats_saver_ex_c saver;
    saver.state_dir_name.append(".mr_qv_prefix");
    saver.root_path.append("relative");
    utl_stream_c out;
    EXPECT_FALSE(saver._get_parent_file_path(out));
}

TEST(stats_saver_ex, state_words_in_any_case) {
    unsigned index = 9;
    stats_saver_ex_c::_state_name_to_index("sync", &index);
    EXPECT_EQ(index, 2u);
    stats_saver_ex_c::_state_name_to_index("STOP", &index);
    EXPECT_EQ(index, 1u);
    stats_saver_ex_c::_state_name_to_index("Running", &index);
    EXPECT_EQ(index, 0u);
    stats_saver_ex_c::_state_name_to_index("Paused", &index);
    EXPECT_EQ(index, 3u);
    index = 0;
    stats_saver_ex_c::_state_name_to_index("Unknown", &index);
    EXPECT_EQ(index, 3u);
    index = 0;
    stats_saver_ex_c::_state_name_to_index(std::string(10240, 'S').c_str(), &index);
    EXPECT_EQ(index, 3u);
}

// ---- _get_state_timestamp, one file

TEST_F(state_files, missing_file_does_not_exist) {
    trace_capture_c trace;
    utl_stream_c path(own_file().c_str());
    unsigned index = 7;
    std::int64_t time = 5;
    bool sync = true;
    EXPECT_FALSE(saver._get_state_timestamp(path, &index, &time, &sync));
    EXPECT_EQ(index, 7u);
    EXPECT_EQ(time, 0);
    EXPECT_FALSE(sync);
    EXPECT_NE(trace_line(trace.text(), "File " + own_file() + " does not exist."), "");
}

TEST_F(state_files, rubbish_and_empty_files_fail_to_load) {
    for (const std::string& content : {std::string("rubbish"), std::string(),
                                       std::string("<?xml version=\"1.0\"?>\n<!-- x -->\n")}) {
        trace_capture_c trace;
        write_file(own_file(), content);
        utl_stream_c path(own_file().c_str());
        unsigned index = 3;
        std::int64_t time = 0;
        bool sync = false;
        EXPECT_FALSE(saver._get_state_timestamp(path, &index, &time, &sync)) << content;
        EXPECT_NE(trace_line(trace.text(), "Fail to load file " + own_file() + "."), "")
            << trace.text();
    }
}

TEST_F(state_files, root_without_child_fails_to_parse) {
    trace_capture_c trace;
    write_file(own_file(), "<?xml version=\"1.0\"?>\n<stats_saver/>\n");
    utl_stream_c path(own_file().c_str());
    unsigned index = 3;
    std::int64_t time = 0;
    bool sync = false;
    EXPECT_FALSE(saver._get_state_timestamp(path, &index, &time, &sync));
    EXPECT_NE(trace_line(trace.text(), "Fail to parse file " + own_file() + "."), "");
}

TEST_F(state_files, missing_flag_reads_false_and_goes_on) {
    trace_capture_c trace;
    write_file(own_file(), "<?xml version=\"1.0\"?>\n<stats_saver>\n\t<Scenario State=\"Stop\" "
                           "IsSyncReplicatedTime=\"12\"/>\n</stats_saver>\n");
    utl_stream_c path(own_file().c_str());
    unsigned index = 3;
    std::int64_t time = 0;
    bool sync = true;
    EXPECT_TRUE(saver._get_state_timestamp(path, &index, &time, &sync));
    EXPECT_EQ(index, 1u);
    EXPECT_EQ(time, 12);
    EXPECT_FALSE(sync);
    EXPECT_NE(trace_line(trace.text(),
                         "Fail to get the label IsSyncReplicated in the file " + own_file() + "."),
              "");
}

TEST_F(state_files, missing_state_fails_and_keeps_the_flag) {
    trace_capture_c trace;
    write_file(own_file(), "<?xml version=\"1.0\"?>\n<stats_saver>\n\t<Scenario "
                           "IsSyncReplicated=\"True\"/>\n</stats_saver>\n");
    utl_stream_c path(own_file().c_str());
    unsigned index = 3;
    std::int64_t time = 0;
    bool sync = false;
    EXPECT_FALSE(saver._get_state_timestamp(path, &index, &time, &sync));
    EXPECT_TRUE(sync);
    EXPECT_NE(
        trace_line(trace.text(), "Fail to get the label State in the file " + own_file() + "."),
        "");
}

TEST_F(state_files, file_without_time_reads_time_zero) {
    write_file(own_file(), "<?xml version=\"1.0\"?>\n<stats_saver>\n\t<Scenario State=\"Sync\" "
                           "IsSyncReplicated=\"False\"/>\n</stats_saver>\n");
    utl_stream_c path(own_file().c_str());
    unsigned index = 3;
    std::int64_t time = 99;
    bool sync = true;
    EXPECT_TRUE(saver._get_state_timestamp(path, &index, &time, &sync));
    EXPECT_EQ(index, 2u);
    EXPECT_EQ(time, 0);
    EXPECT_FALSE(sync);
}

TEST_F(state_files, first_child_is_the_record_whatever_its_name) {
    write_file(own_file(), "<?xml version=\"1.0\"?>\n<stats_saver>\n\t<Other State=\"Stop\"/>\n"
                           "\t<Scenario State=\"Running\"/>\n</stats_saver>\n");
    utl_stream_c path(own_file().c_str());
    unsigned index = 3;
    std::int64_t time = 0;
    bool sync = false;
    EXPECT_TRUE(saver._get_state_timestamp(path, &index, &time, &sync));
    EXPECT_EQ(index, 1u);
}

// ---- get_sync_state, both files

TEST_F(state_files, only_the_parent_file_counts_when_its_time_is_later) {
    write_parent(state_file("Stop", true, 10));
    unsigned index = 9;
    bool sync = false;
    EXPECT_TRUE(saver.get_sync_state(&index, &sync));
    EXPECT_EQ(index, 1u);
    EXPECT_TRUE(sync);
}

TEST_F(state_files, only_the_parent_file_with_time_zero_loses_the_tie) {
    trace_capture_c trace;
    write_parent(state_file("Stop", true, 0));
    unsigned index = 9;
    bool sync = true;
    EXPECT_TRUE(saver.get_sync_state(&index, &sync));
    EXPECT_EQ(index, 3u);
    EXPECT_FALSE(sync);
    utl_stream_c formed;
    saver._get_file_path(formed);
    EXPECT_NE(trace_line(trace.text(), std::string("File ") + formed.c_str() + " does not exist."),
              "")
        << trace.text();
}

TEST_F(state_files, equal_times_take_the_own_file) {
    write_file(own_file(), state_file("Running", false, 50));
    write_parent(state_file("Sync", true, 50));
    unsigned index = 9;
    bool sync = true;
    EXPECT_TRUE(saver.get_sync_state(&index, &sync));
    EXPECT_EQ(index, 0u);
    EXPECT_FALSE(sync);
}

TEST_F(state_files, the_later_time_wins_either_way) {
    write_file(own_file(), state_file("Running", false, 50));
    write_parent(state_file("Sync", true, 51));
    unsigned index = 9;
    bool sync = false;
    EXPECT_TRUE(saver.get_sync_state(&index, &sync));
    EXPECT_EQ(index, 2u);
    EXPECT_TRUE(sync);
    write_parent(state_file("Sync", true, 49));
    EXPECT_TRUE(saver.get_sync_state(&index, &sync));
    EXPECT_EQ(index, 0u);
    EXPECT_FALSE(sync);
    // Times compare signed.
    write_parent(state_file("Stop", true, -1));
    EXPECT_TRUE(saver.get_sync_state(&index, &sync));
    EXPECT_EQ(index, 0u);
}

TEST_F(state_files, neither_file_read_is_false_with_index_three) {
    unsigned index = 9;
    bool sync = true;
    EXPECT_FALSE(saver.get_sync_state(&index, &sync));
    EXPECT_EQ(index, 3u);
    EXPECT_TRUE(sync) << "the flag is left untouched";
}

TEST_F(state_files, lower_case_sync_is_index_two) {
    write_file(own_file(), state_file("sync", false, 1));
    unsigned index = 9;
    bool sync = false;
    EXPECT_TRUE(saver.get_sync_state(&index, &sync));
    EXPECT_EQ(index, 2u);
}

TEST(stats_saver_ex_paths, empty_root_path_fails_to_get_the_path) {
    trace_capture_c trace;
    stats_saver_ex_c saver;
    saver.state_dir_name.append(".mr_qv_prefix");
    unsigned index = 9;
    bool sync = false;
    EXPECT_FALSE(saver.get_sync_state(&index, &sync));
    EXPECT_EQ(index, 9u) << "nothing is set before the path is formed";
    EXPECT_NE(trace_line(trace.text(), "Fail to get path ."), "") << trace.text();
}

TEST(stats_saver_ex_paths, relative_root_goes_on_without_a_parent) {
    trace_capture_c trace;
    stats_saver_ex_c saver;
    saver.state_dir_name.append(".mr_qv_prefix");
    saver.root_path.append("relative");
    unsigned index = 9;
    bool sync = false;
    EXPECT_FALSE(saver.get_sync_state(&index, &sync));
    EXPECT_EQ(index, 3u);
    EXPECT_NE(trace_line(trace.text(), "Fail to get ParentPath ."), "") << trace.text();
}

TEST_F(state_files, save_writes_the_state_file_under_the_section) {
    utl_stream_c text(state_file("Stop", false, 3).c_str());
    ASSERT_TRUE(saver._save(text));
    EXPECT_EQ(read_file(own_file()), state_file("Stop", false, 3));
    ASSERT_NE(stats_saver_ex_n::save_section(), nullptr);
}

TEST_F(state_files, a_query_changes_no_file) {
    write_file(own_file(), state_file("Stop", true, 3));
    auto before = std::filesystem::last_write_time(test_support::from_utf8(own_file()));
    unsigned index = 9;
    bool sync = false;
    EXPECT_TRUE(saver.get_sync_state(&index, &sync));
    EXPECT_EQ(read_file(own_file()), state_file("Stop", true, 3));
    EXPECT_EQ(std::filesystem::last_write_time(test_support::from_utf8(own_file())), before);
    EXPECT_FALSE(std::filesystem::exists(test_support::from_utf8(parent_file())));
}

// ---- the writing side of stats_saver_ex_c

namespace {

// The attributes of the state file's first record, or nothing when it does not load.
std::vector<std::pair<std::string, std::string>> record_of(const std::string& path) {
    std::vector<std::pair<std::string, std::string>> attributes;
    xml_tree_c tree;
    if (!tree.load(path.c_str()) || !tree.get_root()) return attributes;
    xml_item_c* record = tree.get_root()->first_child_item();
    for (std::uint64_t i = 0; record && i < record->attributes.get_count(); ++i) {
        labeled_value_c* a = record->attributes.at(i);
        attributes.emplace_back(a->get_label(), a->to_text());
    }
    return attributes;
}

std::string attribute(const std::string& path, const std::string& name) {
    for (const auto& [label, text] : record_of(path))
        if (label == name) return text;
    return "<none>";
}

class state_writer : public state_files {
  protected:
    void SetUp() override {
        state_files::SetUp();
        saver.scenario_id = 9;
        saver.scenario_name.append("finance");
    }
    // The state word, flag and time of the own file, as the queries read them.
    std::string state() { return attribute(own_file(), "State"); }
};

} // namespace

TEST_F(state_writer, a_first_start_makes_a_new_record_with_the_scenarios_identity) {
    std::filesystem::remove_all(test_support::from_utf8(root + "/.mr_qv_prefix"));
    ASSERT_TRUE(saver.set_state(3, true));
    EXPECT_EQ(record_of(own_file()),
              (std::vector<std::pair<std::string, std::string>>{{"HostIndex", "3"},
                                                                {"ScenarioID", "9"},
                                                                {"ScenarioName", "finance"},
                                                                {"State", "Running"}}));
    EXPECT_TRUE(stored_hidden_bit(root + "/.mr_qv_prefix")) << "a new state directory is hidden";
    std::string text = read_file(own_file());
    EXPECT_EQ(text.rfind("<?xml", 0), 0u) << text;
}

TEST_F(state_writer, a_stop_is_always_obeyed) {
    write_file(own_file(), state_file("Sync", false, 5));
    ASSERT_TRUE(saver.set_state(1, false));
    EXPECT_EQ(state(), "Stop");
    EXPECT_EQ(attribute(own_file(), "IsSyncReplicated"), "False") << "the flag stays";
    EXPECT_EQ(attribute(own_file(), "IsSyncReplicatedTime"), "5");
}

TEST_F(state_writer, a_start_during_a_synchronisation_keeps_sync_and_says_so) {
    write_file(own_file(), state_file("Sync", false, 5));
    trace_capture_c capture;
    ASSERT_TRUE(saver.set_state(1, true));
    EXPECT_EQ(state(), "Sync");
    std::string line = trace_line(
        capture.text(), "Not need to set the scenario state to run when in sync state sc_id(9).");
    EXPECT_FALSE(line.empty()) << capture.text();
    EXPECT_NE(line.find("level=128"), std::string::npos) << line;
    EXPECT_NE(line.find("stats_saver_ex_c::_set_state"), std::string::npos) << line;
}

TEST_F(state_writer, sync_in_lower_case_is_left_as_it_is_by_a_start) {
    write_file(own_file(), state_file("sync", false, 5));
    ASSERT_TRUE(saver.set_state(1, true));
    EXPECT_EQ(state(), "sync");
}

TEST_F(state_writer, a_start_over_any_other_word_is_running) {
    for (const char* word : {"Stop", "Running", "Paused", ""}) {
        write_file(own_file(), state_file(word, true, 7));
        ASSERT_TRUE(saver.set_state(1, true)) << word;
        EXPECT_EQ(state(), "Running") << word;
        EXPECT_EQ(attribute(own_file(), "IsSyncReplicated"), "True") << word;
    }
}

TEST_F(state_writer, the_file_is_written_even_when_nothing_changes) {
    write_file(own_file(), state_file("Sync", false, 5));
    // Written by hand with other spacing: the writer's form replaces it.
    std::string before = "<?xml version=\"1.0\"?><stats_saver><Scenario HostIndex=\"1\" "
                         "State=\"Sync\"/></stats_saver>";
    write_file(own_file(), before);
    ASSERT_TRUE(saver.set_state(1, true));
    EXPECT_NE(read_file(own_file()), before);
    EXPECT_EQ(state(), "Sync");
}

TEST_F(state_writer, rubbish_is_replaced_by_a_new_record) {
    write_file(own_file(), "rubbish \x01\xff not xml");
    utl_stream_c path(own_file().c_str());
    ASSERT_TRUE(saver._set_state(path, 2, false));
    EXPECT_EQ(attribute(own_file(), "State"), "Stop");
    EXPECT_EQ(attribute(own_file(), "HostIndex"), "2");
    EXPECT_EQ(attribute(own_file(), "ScenarioID"), "9");
}

TEST_F(state_writer, set_sync_state_of_one_file_writes_flag_time_and_the_word_that_follows) {
    utl_stream_c path(own_file().c_str());
    ASSERT_TRUE(saver._set_sync_state(path, 1, false, 100));
    EXPECT_EQ(state(), "Sync");
    EXPECT_EQ(attribute(own_file(), "IsSyncReplicated"), "False");
    EXPECT_EQ(attribute(own_file(), "IsSyncReplicatedTime"), "100");
    ASSERT_TRUE(saver._set_sync_state(path, 1, true, 200));
    EXPECT_EQ(state(), "Running");
    EXPECT_EQ(attribute(own_file(), "IsSyncReplicated"), "True");
    EXPECT_EQ(attribute(own_file(), "IsSyncReplicatedTime"), "200");
    EXPECT_STREQ(path.c_str(), own_file().c_str()) << "the caller's stream is not touched";
}

TEST_F(state_writer, under_the_root_path_a_synchronisation_only_starts_or_stops_the_scenario) {
    write_file(own_file(), state_file("Stop", false, 5));
    ASSERT_TRUE(saver.set_sync_state(1, true, 900));
    EXPECT_EQ(state(), "Running");
    EXPECT_EQ(attribute(own_file(), "IsSyncReplicated"), "False") << "no synchronisation recorded";
    EXPECT_EQ(attribute(own_file(), "IsSyncReplicatedTime"), "5");
    write_file(own_file(), state_file("Sync", false, 5));
    ASSERT_TRUE(saver.set_sync_state(1, true, 900));
    EXPECT_EQ(state(), "Sync") << "a start during a synchronisation";
    ASSERT_TRUE(saver.set_sync_state(1, false, 900));
    EXPECT_EQ(state(), "Stop");
    EXPECT_EQ(attribute(own_file(), "IsSyncReplicatedTime"), "5");
}

TEST_F(state_writer, without_a_root_path_nothing_is_written) {
    stats_saver_ex_c empty;
    empty.state_dir_name.append(".mr_qv_prefix");
    EXPECT_FALSE(empty.set_state(1, true));
    EXPECT_FALSE(empty.set_sync_state(1, true, 5));
}

TEST_F(state_writer, a_state_file_that_is_a_directory_is_not_written) {
    std::filesystem::create_directories(test_support::from_utf8(own_file()));
    EXPECT_FALSE(saver.set_state(1, true));
    EXPECT_TRUE(std::filesystem::is_directory(test_support::from_utf8(own_file())));
}

// ---- under each root directory of a scenario

namespace {

class root_dir_writer : public state_writer {
  protected:
    // A scenario whose Master has the given root directories, and a replica (host 2) with
    // its own; the saver writes under the host's root directories.
    void load(const std::vector<std::string>& master_dirs,
              const std::vector<std::string>& replica_dirs = {}) {
        using namespace scenario_documents;
        std::string master, replica;
        for (const std::string& dir : master_dirs) master += root_dir(dir);
        for (const std::string& dir : replica_dirs) replica += root_dir(dir);
        std::string text = stored(
            scenario_documents::scenario(scenario_data(), host("1", master, host("2", replica))));
        auto result = scenario_loader_n::load_text(scenario, text.c_str(), text.size(), "test");
        ASSERT_TRUE(result.ok()) << result.message.c_str();
        saver.conf = &scenario;
        saver.per_root_dir = true;
    }
    std::string dir(const std::string& name) {
        std::string path = top.join(name);
        std::filesystem::create_directories(test_support::from_utf8(path));
        return path;
    }
    static std::string file_in(const std::string& dir) { return dir + "/.mr_qv_prefix/stats.xml"; }

    scenario_conf_c scenario;
};

} // namespace

TEST_F(root_dir_writer, no_root_directories_is_true_and_writes_nothing) {
    load({});
    ASSERT_TRUE(saver.set_state(1, true));
    EXPECT_TRUE(saver.set_sync_state(1, true, 5));
    EXPECT_FALSE(std::filesystem::exists(test_support::from_utf8(own_file())));
}

TEST_F(root_dir_writer, without_a_scenario_there_is_nothing_to_write) {
    saver.per_root_dir = true;
    EXPECT_TRUE(saver.set_state(1, true));
    EXPECT_FALSE(std::filesystem::exists(test_support::from_utf8(own_file())));
}

TEST_F(root_dir_writer, each_root_directory_of_the_host_gets_its_state_file) {
    std::string a = dir("a"), b = dir("b"), r = dir("r");
    load({a, b}, {r, dir("r2")});
    ASSERT_TRUE(saver.set_state(1, true));
    EXPECT_EQ(attribute(file_in(a), "State"), "Running");
    EXPECT_EQ(attribute(file_in(b), "State"), "Running");
    EXPECT_FALSE(std::filesystem::exists(test_support::from_utf8(file_in(r))));
    ASSERT_TRUE(saver.set_state(2, false));
    EXPECT_EQ(attribute(file_in(r), "State"), "Stop");
    EXPECT_EQ(attribute(file_in(r), "HostIndex"), "2");
}

TEST_F(root_dir_writer, sync_false_then_a_start_then_sync_true_ends_running_with_the_flag) {
    std::string a = dir("a");
    load({a});
    ASSERT_TRUE(saver.set_sync_state(1, false, 100));
    EXPECT_EQ(attribute(file_in(a), "State"), "Sync");
    ASSERT_TRUE(saver.set_state(1, true));
    EXPECT_EQ(attribute(file_in(a), "State"), "Sync");
    ASSERT_TRUE(saver.set_sync_state(1, true, 200));
    EXPECT_EQ(attribute(file_in(a), "State"), "Running");
    EXPECT_EQ(attribute(file_in(a), "IsSyncReplicated"), "True");
    EXPECT_EQ(attribute(file_in(a), "IsSyncReplicatedTime"), "200");
}

// A root directory whose state file is a directory can't be written: set_state stops there,
// set_sync_state goes on with the others; both say false.
TEST_F(root_dir_writer, a_failed_write_stops_set_state_but_not_set_sync_state) {
    std::string a = dir("a"), bad = dir("bad"), c = dir("c");
    std::filesystem::create_directories(test_support::from_utf8(file_in(bad)));
    load({a, bad, c});
    EXPECT_FALSE(saver.set_state(1, true));
    EXPECT_EQ(attribute(file_in(a), "State"), "Running");
    EXPECT_FALSE(std::filesystem::exists(test_support::from_utf8(file_in(c))))
        << "no root directory after the failed one is written";
    EXPECT_FALSE(saver.set_sync_state(1, true, 50));
    EXPECT_EQ(attribute(file_in(c), "IsSyncReplicatedTime"), "50");
}

TEST_F(root_dir_writer, a_root_directory_without_a_path_ends_the_loop_with_false) {
    std::string a = dir("a"), c = dir("c");
    load({a, "", c});
    EXPECT_FALSE(saver.set_state(1, true));
    EXPECT_FALSE(saver.set_sync_state(1, true, 5));
    EXPECT_EQ(attribute(file_in(a), "IsSyncReplicatedTime"), "5");
    EXPECT_FALSE(std::filesystem::exists(test_support::from_utf8(file_in(c))));
}

TEST_F(root_dir_writer, root_directories_that_do_not_exist_are_made) {
    std::string missing = top.join("missing") + "/deeper";
    load({missing});
    ASSERT_TRUE(saver.set_state(1, false));
    EXPECT_EQ(attribute(file_in(missing), "State"), "Stop");
}

TEST_F(root_dir_writer, a_root_directory_that_is_a_file_is_not_written) {
    std::string file = top.join("plain");
    write_file(file, "x");
    load({file});
    EXPECT_FALSE(saver.set_state(1, true));
    EXPECT_EQ(read_file(file), "x");
}

TEST_F(root_dir_writer, a_root_directory_of_4000_characters_fails_cleanly) {
    std::string long_path = top.join(std::string(4000, 'd'));
    load({long_path});
    EXPECT_FALSE(saver.set_state(1, true));
    EXPECT_FALSE(saver.set_sync_state(1, true, 5));
}

#if !defined(_WIN32)
namespace {
// A file system that refuses every open for writing below a directory named "ro", as a
// read-only directory refuses it to anyone but root (and the tests run as root).
int (*plain_open)(const char*, int, mode_t) = nullptr;
int open_read_only_below_ro(const char* path, int flags, mode_t mode) {
    if ((flags & O_ACCMODE) != O_RDONLY && std::strstr(path, "/ro/")) {
        errno = EACCES;
        return -1;
    }
    return plain_open(path, flags, mode);
}
} // namespace
#endif

TEST_F(root_dir_writer, a_read_only_root_directory_keeps_its_old_state_file) {
#if defined(_WIN32)
    GTEST_SKIP() << "a read-only directory does not refuse new files on Windows, and wine runs "
                    "as root here; the POSIX build refuses the opens through the system-call "
                    "table";
#else
    std::string ro = dir("ro");
    std::filesystem::create_directories(test_support::from_utf8(ro + "/.mr_qv_prefix"));
    write_file(file_in(ro), state_file("Stop", true, 3));
    load({ro});
    plain_open = os::posix::syscalls().open;
    {
        test_support::replaced_syscall_c refuse(os::posix::syscalls().open,
                                                &open_read_only_below_ro);
        EXPECT_FALSE(saver.set_state(1, true));
        EXPECT_FALSE(saver.set_sync_state(1, false, 9));
    }
    EXPECT_EQ(attribute(file_in(ro), "State"), "Stop");
    EXPECT_EQ(attribute(file_in(ro), "IsSyncReplicatedTime"), "3");
#endif
}
