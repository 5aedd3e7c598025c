// The root directory rules of scenario_conf_c: the Master's directories and their mirrors on the
// replicas, network paths, nesting within a host and overlap between hosts of one address.
#include "configuration/scenario_conf.h"

#include "common/test_support.h"
#include "configuration/scenario_documents.h"
#include "configuration/scenario_loader.h"
#include "utl/utl.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace sd = scenario_documents;
using test_support::trace_capture_c;
using test_support::trace_line;

namespace {

// A volume named by its GUID: 48 characters without the closing backslash.
const std::string volume = "\\\\?\\Volume{0a1b2c3d-0000-1111-2222-333344445555}\\";

// A root directory with its path, id and DBdir.
std::string dir(const std::string& path, const std::string& id, bool db_dir = false) {
    std::string text = sd::root_dir(path, id);
    if (db_dir) {
        std::string from = sd::data("DBdir", "False", "Bool");
        text.replace(text.find(from), from.size(), sd::data("DBdir", "True", "Bool"));
    }
    return text;
}

struct host_s {
    host_s(std::string host_index, std::string host_ip, std::string host_dirs,
           bool host_vetted = false, std::vector<host_s> host_replicas = {})
        : index(std::move(host_index)), ip(std::move(host_ip)), dirs(std::move(host_dirs)),
          vetted(host_vetted), replicas(std::move(host_replicas)) {}

    std::string index;
    std::string ip;
    std::string dirs; // root directories, or empty for none
    bool vetted = false;
    std::vector<host_s> replicas;
};

std::string host_node(const host_s& host) {
    std::string props = sd::data("IP", host.ip, "IPAddr");
    if (!host.dirs.empty()) props += sd::root_dirs(host.dirs);
    std::string content = sd::host_props(host.index, props);
    if (host.vetted) content += "<object label=\"VettedFailbackObj\" id=\"4310\" status=\"True\"/>";
    for (const host_s& replica : host.replicas) content += host_node(replica);
    return sd::object("ReplNode", "5000", content);
}

std::string scenario(const host_s& master, const std::string& mode = "Online") {
    return sd::stored(
        sd::scenario(sd::scenario_data() + sd::data("ReplicationMode", mode, "ReplicationMode"),
                     host_node(master)));
}

using finding_t = std::tuple<std::uint32_t, std::uint64_t, std::uint64_t, std::string>;

// Code, host, item, name of each finding in order.
std::vector<finding_t> findings_of(const xmc_validity_c& validity) {
    std::vector<finding_t> all;
    for (ch_data_s* f = validity.findings.first(); f; f = validity.findings.next(f))
        all.emplace_back(f->code, f->host, f->item, f->name.c_str());
    return all;
}

finding_t root_dir_finding(std::uint32_t code, std::uint64_t host, std::uint64_t item) {
    return {code, host, item, "RootDir"};
}

class root_dir_rules_test : public ::testing::Test {
  protected:
    void load(const std::string& text) {
        scenario_load_result_s result =
            scenario_loader_n::load_text(conf, text.data(), text.size(), "test");
        ASSERT_TRUE(result.ok()) << result.message.c_str();
    }
    std::vector<finding_t> check(bool expected_result) {
        xmc_validity_c validity;
        EXPECT_EQ(conf._check_array_root_dirs(validity), expected_result);
        return findings_of(validity);
    }
    root_dir_c* dir_of(std::uint64_t host, std::uint64_t position) {
        return conf.host_tree->find_host_node(host)->root_dirs->at(position);
    }
    // Puts a path in place as it stands, without the normalisation of set_path.
    void raw_path(std::uint64_t host, std::uint64_t position, const char* text) {
        root_dir_c* d = dir_of(host, position);
        utl_n::str_replace_copy(d->path, text);
        d->path_length = text ? std::strlen(text) : 0;
    }

    scenario_conf_c conf;
};

} // namespace

TEST_F(root_dir_rules_test, agreeing_hosts_with_separate_directories_pass) {
    load(scenario({"1",
                   "10.0.0.1",
                   dir("C:/a", "1") + dir("D:/b", "2"),
                   false,
                   {{"2", "10.0.0.2", dir("C:/a", "1") + dir("D:/b", "2")}}}));
    EXPECT_TRUE(check(true).empty());
}

TEST_F(root_dir_rules_test,
       a_master_without_root_directories_gives_one_code_3_for_host_1_and_none_for_the_replicas) {
    load(scenario(
        {"1",
         "10.0.0.1",
         "",
         false,
         {{"2", "10.0.0.2", ""}, {"3", "10.0.0.3", dir("C:/a", "1") + dir("C:/b", "1")}}}));
    // Host 3's two directories share an id, which the nesting rule still sees.
    EXPECT_EQ(check(false),
              (std::vector<finding_t>{root_dir_finding(3, 1, 0), root_dir_finding(16, 3, 1)}));
}

TEST_F(root_dir_rules_test, each_replica_mirrors_the_master) {
    load(scenario({"1",
                   "10.0.0.1",
                   dir("C:/a", "1") + dir("C:/b", "2"),
                   false,
                   {{"2", "10.0.0.2", ""},
                    {"3", "10.0.0.3", dir("C:/a", "1")},
                    {"4", "10.0.0.4", dir("C:/a", "9") + dir("C:/b", "2", true)},
                    {"5", "10.0.0.5", dir("C:/x", "1") + dir("C:/y", "2", true)}}}));
    EXPECT_EQ(check(false), (std::vector<finding_t>{root_dir_finding(3, 2, 0),
                                                    {14, 3, 0, "ReplNode"},
                                                    root_dir_finding(15, 4, 0),
                                                    root_dir_finding(17, 4, 1),
                                                    root_dir_finding(17, 5, 1)}));
}

TEST_F(root_dir_rules_test,
       an_online_master_may_not_replicate_a_network_path_and_only_the_first_is_told) {
    load(scenario(
        {"1", "10.0.0.1",
         dir("C:/a", "1") + dir("\\\\server\\share", "2") + dir("\\\\server\\other", "3")}));
    EXPECT_EQ(check(false), (std::vector<finding_t>{root_dir_finding(33, 1, 1)}));
}

TEST_F(root_dir_rules_test, a_scheduled_master_may_replicate_a_network_path) {
    load(scenario({"1", "10.0.0.1", dir("C:/a", "1") + dir("\\\\server\\share", "2")},
                  "Scheduling"));
    EXPECT_TRUE(check(true).empty());
}

TEST_F(root_dir_rules_test, a_vetted_failback_host_may_not_have_a_network_path_whatever_the_mode) {
    load(scenario({"1",
                   "10.0.0.1",
                   dir("\\\\server\\share", "1"),
                   true,
                   {{"2", "10.0.0.2", dir("\\\\server\\share", "1"), true},
                    {"3", "10.0.0.3", dir("\\\\server\\share", "1"), false}}},
                  "Scheduling"));
    EXPECT_EQ(check(false),
              (std::vector<finding_t>{root_dir_finding(33, 1, 0), root_dir_finding(33, 2, 0)}));
}

TEST_F(root_dir_rules_test, a_master_failing_both_network_rules_has_two_findings) {
    load(scenario({"1", "10.0.0.1", dir("C:/a", "1") + dir("\\\\server\\share", "2"), true}));
    EXPECT_EQ(check(false),
              (std::vector<finding_t>{root_dir_finding(33, 1, 1), root_dir_finding(33, 1, 1)}));
}

TEST_F(root_dir_rules_test, volume_paths_of_48_characters_or_more_pass_the_network_rules) {
    load(scenario({"1", "10.0.0.1", dir(volume, "1"), true}));
    ASSERT_EQ(std::strlen(dir_of(1, 0)->path), 48u) << dir_of(1, 0)->path;
    EXPECT_TRUE(check(true).empty());
    raw_path(1, 0, "//./VOLUME{0a1b2c3d-0000-1111-2222-333344445555}/x");
    EXPECT_TRUE(check(true).empty()) << "either slash, a dot, and Volume in any case";
}

TEST_F(root_dir_rules_test, a_shorter_text_of_the_volume_form_counts_as_a_network_path) {
    load(scenario({"1", "10.0.0.1", dir("C:/a", "1"), true}));
    raw_path(1, 0, "\\\\?\\Volume{0a1b2c3d-0000-1111-2222-3333444455}");
    ASSERT_EQ(std::strlen(dir_of(1, 0)->path), 46u);
    EXPECT_EQ(check(false),
              (std::vector<finding_t>{root_dir_finding(33, 1, 0), root_dir_finding(33, 1, 0)}));
}

TEST_F(root_dir_rules_test,
       drive_paths_that_differ_in_case_nest_on_one_host_as_code_18_on_the_later) {
    load(scenario({"1", "10.0.0.1", dir("C:\\a", "1") + dir("C:\\A\\b", "2")}));
    EXPECT_EQ(check(false), (std::vector<finding_t>{root_dir_finding(18, 1, 1)}));
}

TEST_F(root_dir_rules_test, paths_without_a_drive_tell_case_and_a_note_says_so) {
    load(scenario({"1", "10.0.0.1", dir("/a", "1") + dir("/A/b", "2")}));
    trace_capture_c capture;
    EXPECT_TRUE(check(true).empty()) << "/a and /A/b do not nest";
    std::string line = trace_line(capture.text(), "root dir /a is case sensitive ");
    EXPECT_NE(line.find(" level=1 "), std::string::npos) << capture.text();
    EXPECT_NE(line.find("scenario_conf_c::_check_array_root_dirs"), std::string::npos);
}

TEST_F(root_dir_rules_test, paths_without_a_drive_nest_when_the_case_agrees) {
    load(scenario({"1", "10.0.0.1", dir("/a", "1") + dir("/a/b", "2")}));
    EXPECT_EQ(check(false), (std::vector<finding_t>{root_dir_finding(18, 1, 1)}));
    load(scenario({"1", "10.0.0.1", dir("/a/b", "1") + dir("/a", "2")}));
    EXPECT_EQ(check(false), (std::vector<finding_t>{root_dir_finding(18, 1, 1)}))
        << "the inner path first nests all the same";
}

TEST_F(root_dir_rules_test, a_trailing_slash_on_the_outer_path_changes_nothing) {
    load(scenario({"1", "10.0.0.1", dir("C:/a", "1") + dir("C:/a/b", "2") + dir("C:/ab", "3")}));
    // As a path may stand in a root directory that was set without normalisation.
    raw_path(1, 0, "C:\\a\\");
    raw_path(1, 1, "C:\\a\\b");
    raw_path(1, 2, "C:\\ab");
    EXPECT_EQ(check(false), (std::vector<finding_t>{root_dir_finding(18, 1, 1)}))
        << "C:\\a\\ holds C:\\a\\b and not C:\\ab";
}

TEST_F(root_dir_rules_test, letters_beyond_ascii_are_compared_without_regard_to_case) {
    // \u00c9 and \u00e9 are one letter in two cases; \u00e8 is another letter.
    load(scenario({"1",
                   "10.0.0.1",
                   dir("C:/\u00c9t\u00e9", "1") + dir("C:/\u00e9T\u00c9/x", "2"),
                   false,
                   {{"2", "10.0.0.1", dir("D:/\u00e9", "1") + dir("D:/\u00e8/x", "2")}}}));
    EXPECT_EQ(check(false), (std::vector<finding_t>{root_dir_finding(18, 1, 1)}));
    raw_path(2, 0, "c:/\u00e9t\u00e9/y");
    EXPECT_EQ(check(false),
              (std::vector<finding_t>{root_dir_finding(18, 1, 1), root_dir_finding(13, 2, 0)}));
}

TEST_F(root_dir_rules_test,
       two_root_directories_with_the_same_id_that_also_nest_give_only_code_18) {
    load(scenario({"1", "10.0.0.1", dir("C:/a", "1") + dir("C:/a/b", "1") + dir("D:/c", "1")}));
    EXPECT_EQ(check(false),
              (std::vector<finding_t>{root_dir_finding(18, 1, 1), root_dir_finding(16, 1, 2),
                                      root_dir_finding(16, 1, 2)}));
}

TEST_F(root_dir_rules_test, an_empty_path_is_exempt_from_nesting_and_overlap) {
    load(scenario({"1",
                   "10.0.0.1",
                   dir("C:/a", "1") + dir("C:/b", "2"),
                   false,
                   {{"2", "10.0.0.1", dir("D:/a", "1") + dir("D:/b", "2")}}}));
    raw_path(1, 0, "");
    raw_path(1, 1, nullptr);
    raw_path(2, 0, "");
    EXPECT_TRUE(check(true).empty());
}

TEST_F(root_dir_rules_test,
       two_hosts_with_the_same_ip_and_equal_paths_give_code_13_on_the_later_host_for_each_pair) {
    load(scenario({"1",
                   "10.0.0.1",
                   dir("C:/a", "1") + dir("C:/b", "2"),
                   false,
                   {{"2", "10.0.0.1", dir("c:/A", "1") + dir("C:/b/x", "2")},
                    {"3", "10.0.0.9", dir("C:/a", "1") + dir("C:/b", "2")}}}));
    // p = C:/a meets q = c:/A; p = C:/b meets q = C:/b/x. Host 3 is elsewhere.
    EXPECT_EQ(check(false),
              (std::vector<finding_t>{root_dir_finding(13, 2, 0), root_dir_finding(13, 2, 1)}));
}

TEST_F(root_dir_rules_test, three_hosts_on_one_ip_are_compared_pairwise) {
    load(scenario(
        {"1",
         "10.0.0.1",
         dir("C:/a", "1"),
         false,
         {{"2", "10.0.0.1", dir("C:/a", "1"), false, {{"3", "10.0.0.1", dir("C:/a", "1")}}}}}));
    EXPECT_EQ(check(false),
              (std::vector<finding_t>{root_dir_finding(13, 2, 0), root_dir_finding(13, 3, 0),
                                      root_dir_finding(13, 3, 0)}));
}

TEST_F(root_dir_rules_test, hosts_without_an_address_share_the_address_0) {
    load(scenario({"1", "", dir("C:/a", "1"), false, {{"2", "not an address", dir("C:/a", "1")}}}));
    EXPECT_EQ(check(false), (std::vector<finding_t>{root_dir_finding(13, 2, 0)}));
}

TEST_F(root_dir_rules_test, a_scenario_without_hosts_is_told_once) {
    load(sd::stored(sd::scenario(sd::scenario_data(), "")));
    EXPECT_EQ(check(false), (std::vector<finding_t>{root_dir_finding(3, 1, 0)}));
    delete conf.host_tree;
    conf.host_tree = nullptr;
    EXPECT_EQ(check(false), (std::vector<finding_t>{root_dir_finding(3, 1, 0)}));
}
