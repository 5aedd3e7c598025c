// scenario_conf_c: its start values and clear, the host index built from the tree, the root
// directories of each host, the description of an item, the external objects made through the
// fabric, the missing-tree test and is_same_object.
#include "configuration/scenario_conf.h"

#include "common/stack_thread.h"
#include "common/test_support.h"
#include "configuration/scenario_documents.h"
#include "configuration/xmc_cdp.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <vector>

namespace sd = scenario_documents;
using test_support::trace_capture_c;
using test_support::trace_line;

namespace {

const char* const build_scope = "scenario_conf_c::_build_host_tree";

// Master 1 with two root directories, feeding 2 (one root directory, feeding 3) and 4.
std::string four_hosts() {
    return sd::stored(sd::scenario(
        sd::scenario_data(),
        sd::host("1", sd::root_dir("C:/m1") + sd::root_dir("C:/m2"),
                 sd::host("2", sd::root_dir("D:/r2"), sd::host("3")) + sd::host("4"))));
}

std::string val_of(const xml_item_c* item) {
    labeled_value_c* val = item ? item->find_attribute("val") : nullptr;
    return val ? val->to_text() : "";
}

std::string path_of(const root_dir_c* dir) { return dir && dir->path ? dir->path : ""; }

bool has_level(const std::string& line, unsigned level) {
    return line.find(" level=" + std::to_string(level) + " ") != std::string::npos;
}

class scenario_conf_test : public ::testing::Test {
  protected:
    void load(const std::string& text) { ASSERT_TRUE(conf.tree->load_from_str(text.c_str())); }
    xml_item_c* scenario_item() { return conf.find_tree_item("Scenario", true); }
    std::uint64_t build() { return conf._build_host_tree(scenario_item()); }
    xml_item_c* host_item(std::uint64_t index) {
        host_index_node_s* node = conf.host_tree->find_host_node(index);
        return node ? node->host_item : nullptr;
    }
    // The `Index` value of the `CommonHostProps` that a host's item holds first.
    std::string index_in(const xml_item_c* host) {
        xml_item_c* props =
            host ? conf.find_tree_item("CommonHostProps", true, const_cast<xml_item_c*>(host), true)
                 : nullptr;
        return val_of(props ? conf.find_tree_item("Index", false, props, true) : nullptr);
    }
    std::vector<std::uint64_t> order() {
        std::vector<std::uint64_t> hosts;
        for (std::uint64_t at = 1; at; at = conf.host_tree->next_host(at)) hosts.push_back(at);
        return hosts;
    }

    scenario_conf_c conf;
};

} // namespace

// ---- start values and clear

TEST_F(scenario_conf_test, a_new_scenario_holds_the_start_values) {
    EXPECT_EQ(conf.id, 0u);
    EXPECT_EQ(conf.config_mode, 1u);
    EXPECT_EQ(conf.product, 4u);
    EXPECT_EQ(conf.application, 13u);
    EXPECT_FALSE(conf.vetted_failback);
    ASSERT_NE(conf.host_tree, nullptr);
    EXPECT_EQ(conf.host_tree->get_host_count(), 0u);
    EXPECT_EQ(conf.generic_objects.get_count(), 0u);
    EXPECT_FALSE(conf.is_group);
    EXPECT_EQ(conf.services.get_count(), 0u);
    ASSERT_NE(conf.tree, nullptr);
    EXPECT_EQ(conf.tree->get_root(), nullptr);
    EXPECT_EQ(scenario_conf_n::config_mode_not_set, 8u);
    EXPECT_EQ(scenario_conf_n::product_not_set, 4u);
    EXPECT_EQ(scenario_conf_n::application_not_set, 13u);
}

TEST_F(scenario_conf_test, clear_restores_the_start_values_empties_the_index_and_makes_a_new_tree) {
    load(four_hosts());
    ASSERT_EQ(build(), 4u);
    conf.config_mode = 5;
    conf.product = 1;
    conf.application = 7;
    conf.vetted_failback = true;
    conf.id = 42;
    conf.clear();
    EXPECT_EQ(conf.config_mode, 1u);
    EXPECT_EQ(conf.product, 4u);
    EXPECT_EQ(conf.application, 13u);
    EXPECT_FALSE(conf.vetted_failback);
    EXPECT_EQ(conf.id, 42u) << "clear leaves the id";
    EXPECT_EQ(conf.host_tree->get_host_count(), 0u);
    EXPECT_EQ(conf.host_tree->get_root()->host_item, nullptr);
    EXPECT_EQ(conf.host_tree->get_root()->root_dirs, nullptr);
    ASSERT_NE(conf.tree, nullptr);
    EXPECT_EQ(conf.tree->get_root(), nullptr);
}

// ---- the host index

TEST_F(scenario_conf_test, the_build_indexes_the_master_and_its_nested_replicas_in_pre_order) {
    load(four_hosts());
    EXPECT_EQ(build(), 4u);
    EXPECT_EQ(conf.host_tree->get_host_count(), 3u);
    EXPECT_EQ(order(), (std::vector<std::uint64_t>{1, 2, 3, 4}));
    EXPECT_EQ(conf.host_tree->find_host_node(3)->parent_node()->host_index, 2u);
    EXPECT_EQ(conf.host_tree->find_host_node(4)->parent_node()->host_index, 1u);
    for (std::uint64_t host : {1, 2, 3, 4}) {
        xml_item_c* item = host_item(host);
        ASSERT_NE(item, nullptr);
        EXPECT_STREQ(item->find_attribute("label")->to_text(), "ReplNode");
        EXPECT_EQ(index_in(item), std::to_string(host));
    }
    EXPECT_EQ(conf.host_tree->last_index, 4u);
}

TEST_F(scenario_conf_test, the_build_without_a_start_walks_from_the_trees_root) {
    load(four_hosts());
    EXPECT_EQ(conf._build_host_tree(nullptr), 4u);
    scenario_conf_c empty;
    EXPECT_EQ(empty._build_host_tree(nullptr), 0u) << "no start and no root";
}

TEST_F(scenario_conf_test, a_common_host_props_without_index_is_passed_over_silently) {
    load(sd::stored(sd::scenario(
        sd::scenario_data(),
        sd::host("1", "",
                 sd::object("ReplNode", "5000",
                            sd::object("CommonHostProps", "100", sd::data("Host", "x")))))));
    trace_capture_c capture;
    EXPECT_EQ(build(), 1u);
    EXPECT_EQ(conf.host_tree->get_host_count(), 0u);
    EXPECT_EQ(capture.text().find(build_scope + std::string(": Unable")), std::string::npos)
        << capture.text();
}

TEST_F(scenario_conf_test, an_index_without_val_is_traced_and_its_host_passed_over) {
    load(sd::stored(
        sd::scenario(sd::scenario_data(),
                     sd::host("1", "",
                              sd::object("ReplNode", "5000",
                                         sd::object("CommonHostProps", "100",
                                                    "<data label=\"Index\" type=\"Number\"/>")) +
                                  sd::host("4")))));
    trace_capture_c capture;
    EXPECT_EQ(build(), 2u);
    EXPECT_EQ(order(), (std::vector<std::uint64_t>{1, 4}));
    std::string line =
        trace_line(capture.text(), "Unable to find property \"Index\" for node ReplNode");
    EXPECT_TRUE(has_level(line, 4)) << capture.text();
    EXPECT_NE(line.find(build_scope), std::string::npos) << line;
}

TEST_F(scenario_conf_test, a_common_host_props_outside_every_replnode_has_no_papa) {
    load(sd::stored(sd::scenario(sd::scenario_data(), sd::host("1"), sd::host_props("7"))));
    trace_capture_c capture;
    EXPECT_EQ(build(), 1u);
    EXPECT_EQ(conf.host_tree->find_host_node(7), nullptr);
    std::string line =
        trace_line(capture.text(), "Unable to find Papa for \"Index\", node ReplNode");
    EXPECT_TRUE(has_level(line, 4)) << capture.text();
}

TEST_F(scenario_conf_test, a_replica_whose_parent_index_does_not_exist_has_no_next_papa) {
    // The Master's node has no `Index`, so nothing above the replica is indexed.
    load(sd::stored(sd::scenario(
        sd::scenario_data(),
        sd::object("ReplNode", "5000",
                   sd::object("CommonHostProps", "100", sd::data("Host", "m")) + sd::host("2")))));
    trace_capture_c capture;
    EXPECT_EQ(build(), 0u);
    EXPECT_EQ(conf.host_tree->get_host_count(), 0u);
    std::string line =
        trace_line(capture.text(), "Unable to find next Papa for \"Index\", node ReplNode");
    EXPECT_TRUE(has_level(line, 4)) << capture.text();
}

TEST_F(scenario_conf_test,
       a_replica_below_an_unindexed_replnode_goes_below_the_nearest_known_host) {
    load(sd::stored(sd::scenario(
        sd::scenario_data(),
        sd::host("1", "",
                 sd::object("ReplNode", "5000",
                            sd::object("CommonHostProps", "100", sd::data("Host", "gap")) +
                                sd::host("3"))))));
    EXPECT_EQ(build(), 2u);
    ASSERT_NE(conf.host_tree->find_host_node(3), nullptr);
    EXPECT_EQ(conf.host_tree->find_host_node(3)->parent_node()->host_index, 1u);
}

TEST_F(scenario_conf_test,
       a_common_host_props_with_index_1_nested_in_a_replica_overwrites_the_master_item) {
    load(sd::stored(sd::scenario(
        sd::scenario_data(), sd::host("1", sd::root_dir("C:/m"),
                                      sd::host("2", "", sd::host("1", sd::root_dir("E:/x")))))));
    xml_item_c* master = conf.find_tree_item("ReplNode", true);
    EXPECT_EQ(build(), 3u);
    EXPECT_NE(host_item(1), master);
    EXPECT_EQ(host_item(1)->parent_item()->parent_item(), master)
        << "the innermost ReplNode, below host 2, is the Master's item now";
    EXPECT_EQ(conf.host_tree->get_host_count(), 1u);
    EXPECT_EQ(path_of(conf.get_root_dir(0, 1)), "E:/x");
}

TEST_F(scenario_conf_test, a_replica_whose_index_already_stands_under_another_parent_is_ignored) {
    load(sd::stored(
        sd::scenario(sd::scenario_data(),
                     sd::host("1", "",
                              sd::host("2", sd::root_dir("D:/first")) +
                                  sd::host("3", "", sd::host("2", sd::root_dir("D:/second")))))));
    xml_item_c* first_two =
        conf.find_tree_item("ReplNode", true, conf.find_tree_item("ReplNode", true), true);
    EXPECT_EQ(build(), 3u) << "the second host 2 is not entered";
    EXPECT_EQ(host_item(2), first_two);
    EXPECT_EQ(conf.host_tree->find_host_node(2)->parent_node()->host_index, 1u);
    EXPECT_EQ(conf.host_tree->get_host_count(), 2u);
    EXPECT_EQ(path_of(conf.get_root_dir(0, 2)), "D:/first");
}

TEST_F(scenario_conf_test, hosts_with_a_duplicate_index_below_one_parent_leave_the_later_in_place) {
    load(sd::stored(sd::scenario(
        sd::scenario_data(),
        sd::host("1", "",
                 sd::host("2", sd::root_dir("D:/a")) + sd::host("2", sd::root_dir("D:/b"))))));
    EXPECT_EQ(build(), 3u) << "the second host 2 takes the node of the first";
    EXPECT_EQ(conf.host_tree->get_host_count(), 1u);
    EXPECT_EQ(path_of(conf.get_root_dir(0, 2)), "D:/b");
    EXPECT_EQ(conf.get_root_dir(1, 2), nullptr);
}

TEST_F(scenario_conf_test, an_index_that_is_no_number_reads_as_0_and_enters_no_host) {
    load(sd::stored(
        sd::scenario(sd::scenario_data(), sd::host("1", "", sd::host("two") + sd::host("-5")))));
    EXPECT_EQ(build(), 1u);
    EXPECT_EQ(conf.host_tree->get_host_count(), 0u);
}

TEST_F(scenario_conf_test, the_manager_index_written_in_a_replnode_is_indexed_as_any_other) {
    load(sd::stored(sd::scenario(sd::scenario_data(), sd::host("1", "", sd::host("4294967294")))));
    EXPECT_EQ(build(), 2u);
    ASSERT_NE(conf.host_tree->find_host_node(MANAGER_INDEX), nullptr);
    EXPECT_EQ(conf.host_tree->first_replica(), MANAGER_INDEX);
    EXPECT_EQ(conf.host_tree->last_index, MANAGER_INDEX);
}

TEST_F(scenario_conf_test, the_manager_has_no_node_without_a_replnode_of_its_own) {
    load(four_hosts());
    build();
    EXPECT_EQ(conf.host_tree->find_host_node(MANAGER_INDEX), nullptr);
    EXPECT_EQ(conf.get_root_dir(0, MANAGER_INDEX), nullptr);
}

TEST_F(scenario_conf_test, the_build_does_not_enter_external_objects) {
    load(sd::stored(sd::scenario(sd::scenario_data(), sd::host("1"),
                                 "<object label=\"External\" id=\"6000\" external=\"True\">" +
                                     sd::host("9") + "</object>")));
    EXPECT_EQ(build(), 1u);
    EXPECT_EQ(conf.host_tree->find_host_node(9), nullptr);
}

TEST_F(scenario_conf_test, replnode_items_nested_ten_thousand_deep_are_indexed_without_recursion) {
    const int n = 10000;
    std::string hosts;
    for (int i = 1; i <= n; ++i)
        hosts += "<object label=\"ReplNode\" id=\"5000\">" + sd::host_props(std::to_string(i));
    for (int i = 1; i <= n; ++i) hosts += "</object>";
    load(sd::stored(sd::scenario(sd::scenario_data(), hosts)));
    std::uint64_t built = 0;
    std::string deepest;
    bool ran = test_support::run_with_stack(256 * 1024, [&] {
        built = build();
        utl_stream_c stream;
        xml_item_c* host_data = conf.find_tree_item("Host", false, host_item(n), false);
        const char* description = conf.get_item_description(host_data, stream);
        deepest = description ? description : "(none)";
        conf.clear();
    });
    ASSERT_TRUE(ran);
    EXPECT_EQ(built, static_cast<std::uint64_t>(n));
    EXPECT_EQ(deepest, "data.Host from Replica #10000, object CommonHostProps");
    EXPECT_EQ(conf.host_tree->get_host_count(), 0u);
}

// ---- root directories

TEST_F(scenario_conf_test,
       a_hosts_root_directories_are_its_first_root_dir_and_each_sibling_after_it) {
    load(four_hosts());
    build();
    EXPECT_EQ(conf.get_root_dir_count(), 2u);
    EXPECT_EQ(path_of(conf.get_root_dir(0, 1)), "C:/m1");
    EXPECT_EQ(path_of(conf.get_root_dir(1, 1)), "C:/m2");
    EXPECT_EQ(conf.get_root_dir(2, 1), nullptr);
    EXPECT_EQ(path_of(conf.get_root_dir(0, 2)), "D:/r2");
    EXPECT_EQ(conf.get_root_dir(0, 3), nullptr) << "host 3 has none";
    EXPECT_EQ(conf.get_root_dir(0, 9), nullptr) << "no host 9";
    // Each is bound to its item of the tree.
    auto* bound = dynamic_cast<xmc_root_dir_c*>(conf.get_root_dir(1, 1));
    ASSERT_NE(bound, nullptr);
    EXPECT_EQ(val_of(bound->path_item), "C:/m2");
}

TEST_F(scenario_conf_test, the_root_directory_search_stays_on_its_host) {
    load(sd::stored(
        sd::scenario(sd::scenario_data(), sd::host("1", "", sd::host("2", sd::root_dir("D:/r"))))));
    std::unique_ptr<array_ct<root_dir_c>> master_dirs(
        conf._make_root_dir_list(conf.find_tree_item("ReplNode", true)));
    EXPECT_EQ(master_dirs->get_count(), 0u) << "the replica's directory is not the Master's";
    build();
    EXPECT_EQ(conf.get_root_dir_count(), 0u);
    EXPECT_EQ(path_of(conf.get_root_dir(0, 2)), "D:/r");
}

TEST_F(scenario_conf_test, the_siblings_of_the_first_root_dir_are_taken_whatever_their_label) {
    load(sd::stored(sd::scenario(
        sd::scenario_data(),
        sd::host("1", sd::root_dir("C:/a") + sd::data("Stray", "x") + sd::root_dir("C:/b")))));
    build();
    EXPECT_EQ(conf.get_root_dir_count(), 3u);
    EXPECT_EQ(path_of(conf.get_root_dir(0, 1)), "C:/a");
    EXPECT_EQ(conf.get_root_dir(1, 1)->path, nullptr) << "the stray item reads as no path";
    EXPECT_EQ(path_of(conf.get_root_dir(2, 1)), "C:/b");
}

TEST_F(scenario_conf_test, a_null_host_item_gives_an_empty_root_directory_list) {
    load(four_hosts());
    array_ct<root_dir_c>* dirs = conf._make_root_dir_list(nullptr);
    ASSERT_NE(dirs, nullptr);
    EXPECT_EQ(dirs->get_count(), 0u);
    delete dirs;
}

// ---- the missing tree

TEST_F(scenario_conf_test, a_missing_tree_is_traced_and_marks_the_value) {
    trace_capture_c capture;
    xmc_value_c value("kept");
    EXPECT_FALSE(conf._check_mixed_tree(&value));
    EXPECT_STREQ(value.to_text(), "kept");
    EXPECT_TRUE(value.get_error());
    EXPECT_STREQ(value.error_text.c_str(), "XMC tree is missing");
    EXPECT_EQ(value.lookup_failed, 1u);
    EXPECT_FALSE(conf._check_mixed_tree(nullptr));
    EXPECT_EQ(conf.get_root_dir_count(), 0u);
    EXPECT_EQ(conf.get_root_dir(0, 1), nullptr);
    std::string line =
        trace_line(capture.text(), "scenario_conf_c::_check_mixed_tree: XMC tree is missing");
    EXPECT_TRUE(has_level(line, 4)) << capture.text();
    EXPECT_EQ(test_support::count_of(capture.text(), "XMC tree is missing"), 4u);
}

TEST_F(scenario_conf_test, a_tree_with_a_root_passes_the_check_and_leaves_the_value) {
    load(four_hosts());
    xmc_value_c value("kept");
    value.to_text();
    bool error_before = value.get_error();
    EXPECT_TRUE(conf._check_mixed_tree(&value));
    EXPECT_EQ(value.get_error(), error_before);
    EXPECT_EQ(value.lookup_failed, 0u);
    delete conf.tree;
    conf.tree = nullptr;
    EXPECT_FALSE(conf._check_mixed_tree(nullptr)) << "no tree at all";
}

// ---- descriptions

TEST_F(scenario_conf_test, an_item_is_described_by_its_owner_and_its_nearest_object) {
    load(four_hosts());
    build();
    utl_stream_c stream("old");
    EXPECT_STREQ(
        conf.get_item_description(conf.find_tree_item("Index", false, host_item(1)), stream),
        "data.Index from Master, object CommonHostProps");
    EXPECT_STREQ(
        conf.get_item_description(conf.find_tree_item("Path", false, host_item(2)), stream),
        "data.Path from Replica #2, object RootDir");
    EXPECT_STREQ(conf.get_item_description(host_item(3), stream),
                 "object.ReplNode from Replica #3, object ReplNode");
    EXPECT_STREQ(conf.get_item_description(host_item(1), stream),
                 "object.ReplNode from Master, object Scenario");
    EXPECT_STREQ(conf.get_item_description(conf.find_tree_item("ScenarioName", false), stream),
                 "data.ScenarioName from Scenario, object Scenario");
    EXPECT_STREQ(conf.get_item_description(conf.tree->get_root(), stream),
                 "object.ConfigDataHolder from Scenario");
    xml_item_c* title = conf.find_tree_item("ReplNode", true)->parent_item();
    EXPECT_STREQ(conf.get_item_description(title, stream),
                 "title.ReplicationTree from Scenario, object Scenario");
}

TEST_F(scenario_conf_test, a_null_item_is_described_by_null_and_an_empty_stream) {
    utl_stream_c stream("old");
    EXPECT_EQ(conf.get_item_description(nullptr, stream), nullptr);
    EXPECT_EQ(stream.get_length(), 0u);
}

TEST_F(scenario_conf_test, an_item_of_a_host_that_is_not_indexed_is_of_replica_0) {
    load(four_hosts());
    utl_stream_c stream;
    // Before the build nothing is indexed.
    EXPECT_STREQ(conf.get_item_description(conf.find_tree_item("Index", false), stream),
                 "data.Index from Replica #0, object CommonHostProps");
}

TEST_F(scenario_conf_test, items_without_a_label_and_inside_external_objects_are_described) {
    load(sd::stored(sd::scenario(
        sd::scenario_data(), sd::host("1"),
        "<object label=\"External\" id=\"6000\" external=\"True\"><db id=\"6799\"/></object>"
        "<data val=\"1\" type=\"Number\"/>")));
    build();
    utl_stream_c stream;
    xml_item_c* external = conf.find_tree_item("External", true);
    EXPECT_STREQ(conf.get_item_description(external->first_child_item(), stream),
                 "db. from Scenario, object External");
    xml_item_c* unnamed = external->next_item();
    EXPECT_STREQ(conf.get_item_description(unnamed, stream),
                 "data. from Scenario, object Scenario");
}

// ---- is_same_object

TEST_F(scenario_conf_test, is_same_object_compares_the_ids) {
    scenario_conf_c other;
    conf.id = other.id = 42;
    EXPECT_TRUE(conf.is_same_object(other));
    other.id = 43;
    EXPECT_FALSE(conf.is_same_object(other));
    conf_c plain;
    plain.id = 42;
    EXPECT_TRUE(conf.is_same_object(plain));
}

TEST_F(scenario_conf_test, is_same_object_reads_under_the_lock_of_its_kind_of_data) {
    scenario_conf_c other;
    std::future<bool> answer;
    {
        single_writer_lock_c writing(conf.scenario_lock);
        conf.is_group = true;
        answer = std::async(std::launch::async, [&] { return conf.is_same_object(other); });
        ASSERT_EQ(answer.wait_for(std::chrono::seconds(30)), std::future_status::ready)
            << "a group object does not wait for the scenario lock";
        EXPECT_TRUE(answer.get());
    }
    {
        single_writer_lock_c writing(conf.group_lock);
        conf.is_group = false;
        answer = std::async(std::launch::async, [&] { return conf.is_same_object(other); });
        ASSERT_EQ(answer.wait_for(std::chrono::seconds(30)), std::future_status::ready)
            << "a scenario object does not wait for the group lock";
        EXPECT_TRUE(answer.get());
    }
    {
        std::unique_ptr<single_writer_lock_c> writing(new single_writer_lock_c(conf.scenario_lock));
        answer = std::async(std::launch::async, [&] { return conf.is_same_object(other); });
        EXPECT_EQ(answer.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout)
            << "a scenario object waits while its data are written";
        writing.reset();
        EXPECT_TRUE(answer.get());
    }
}

// ---- external objects

namespace {

// An external object that counts its ends and remembers the item it was made from.
class made_c : public conf_c {
  public:
    made_c(std::uint32_t kind, xml_item_c* from_item, std::atomic<int>& ends)
        : from(from_item), _ends(ends) {
        id = kind;
    }
    ~made_c() override { ++_ends; }
    xml_item_c* from;

  private:
    std::atomic<int>& _ends;
};

// The start-up step's creator of database objects stands aside while a test's creator of that
// id lives: the fabric asks the first creator of an id, and the test's must be the one asked.
struct db_creator_aside_s {
    explicit db_creator_aside_s(std::uint32_t kind) : active(kind == DB_OBJECT_ID) {
        if (active) external_objects_n::stop_db_creator();
    }
    ~db_creator_aside_s() {
        if (active) external_objects_n::start_db_creator();
    }
    db_creator_aside_s(const db_creator_aside_s&) = delete;
    db_creator_aside_s& operator=(const db_creator_aside_s&) = delete;
    bool active;
};

// A creator of one id for a test's lifetime, which records what it is asked.
class recording_creator_c : private db_creator_aside_s, public conf_object_creator_c {
  public:
    explicit recording_creator_c(std::uint32_t kind, bool makes = true)
        : db_creator_aside_s(kind), conf_object_creator_c(kind), _makes(makes) {}
    conf_c* create(xml_item_c* item) override {
        ++calls;
        asked.push_back(item);
        if (slow) std::this_thread::sleep_for(std::chrono::milliseconds(20));
        return _makes ? new made_c(id, item, ends) : nullptr;
    }
    std::atomic<int> calls{0};
    std::atomic<int> ends{0};
    std::vector<xml_item_c*> asked;
    bool slow = false;

  private:
    bool _makes;
};

std::string external_of(const std::string& children) {
    return "<object label=\"External\" id=\"6000\" external=\"True\">" + children + "</object>";
}

} // namespace

TEST_F(scenario_conf_test,
       get_generic_object_on_a_scenario_without_external_returns_null_and_traces_at_level_32) {
    recording_creator_c creator(GENERIC_OBJECT_ID);
    load(four_hosts());
    trace_capture_c capture;
    EXPECT_EQ(conf.get_generic_object(), nullptr);
    EXPECT_EQ(creator.calls, 0);
    std::string line =
        trace_line(capture.text(), "Unable to find object External with ID=6799 in \"finance\"");
    EXPECT_TRUE(has_level(line, 32)) << capture.text();
    EXPECT_FALSE(has_level(line, 4));
}

TEST_F(scenario_conf_test, the_scenario_is_named_unknown_without_a_scenario_name) {
    load(sd::stored(sd::object("Scenario", "1000", sd::data("ScenarioName", ""))));
    trace_capture_c capture;
    EXPECT_EQ(conf.get_generic_object(), nullptr);
    EXPECT_NE(
        trace_line(capture.text(), "Unable to find object External with ID=6799 in \"UnKnown\""),
        "")
        << capture.text();
}

TEST_F(scenario_conf_test,
       without_any_external_child_of_id_6799_the_creator_is_called_with_a_null_item) {
    recording_creator_c creator(GENERIC_OBJECT_ID);
    load(sd::stored(sd::scenario(sd::scenario_data(), sd::host("1"),
                                 external_of("<cdp id=\"6789\"/><db id=\"67990\"/>"))));
    conf_c* made = conf.get_generic_object();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(creator.calls, 1);
    ASSERT_EQ(creator.asked.size(), 1u);
    EXPECT_EQ(creator.asked[0], nullptr);
}

TEST_F(scenario_conf_test, get_generic_object_makes_the_object_once_from_the_child_of_id_6799) {
    recording_creator_c creator(GENERIC_OBJECT_ID);
    load(sd::stored(
        sd::scenario(sd::scenario_data(), sd::host("1"),
                     external_of("<cdp id=\"6789\"/><db id=\"6799\"/><db id=\"6799\"/>"))));
    xml_item_c* db = conf.find_tree_item("External", true)->first_child_item()->next_item();
    conf_c* made = conf.get_generic_object();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->id, GENERIC_OBJECT_ID);
    EXPECT_EQ(static_cast<made_c*>(made)->from, db) << "the first child of that id";
    EXPECT_EQ(conf.get_generic_object(), made);
    EXPECT_EQ(creator.calls, 1);
    EXPECT_EQ(conf.generic_objects.get_count(), 1u);
    EXPECT_EQ(conf._find_generic_object(GENERIC_OBJECT_ID), made);
}

TEST_F(scenario_conf_test, a_fabric_without_a_result_is_traced_at_level_4) {
    recording_creator_c creator(GENERIC_OBJECT_ID, false);
    load(sd::stored(
        sd::scenario(sd::scenario_data(), sd::host("1"), external_of("<db id=\"6799\"/>"))));
    trace_capture_c capture;
    EXPECT_EQ(conf.get_generic_object(), nullptr);
    EXPECT_EQ(conf.generic_objects.get_count(), 0u);
    std::string line = trace_line(
        capture.text(),
        "Fabric returned zero for object with id=6799 in \"External\", Scenario name finance");
    EXPECT_TRUE(has_level(line, 4)) << capture.text();
    EXPECT_EQ(conf.get_generic_object(), nullptr);
    EXPECT_EQ(creator.calls, 2) << "nothing was kept, so the fabric is asked again";
}

TEST_F(scenario_conf_test, get_generic_object_without_a_tree_answers_null) {
    recording_creator_c creator(GENERIC_OBJECT_ID);
    trace_capture_c capture;
    EXPECT_EQ(conf.get_generic_object(), nullptr);
    EXPECT_EQ(creator.calls, 0);
    EXPECT_NE(trace_line(capture.text(), "XMC tree is missing"), "");
}

TEST_F(scenario_conf_test, an_item_without_an_id_or_with_id_0_has_no_external_object) {
    recording_creator_c creator(91010);
    load(sd::stored(
        sd::scenario(sd::scenario_data(), sd::host("1"),
                     external_of("<a/><b id=\"0\"/><c id=\"many\"/><d id=\"91011\"/>"))));
    xml_item_c* child = conf.find_tree_item("External", true)->first_child_item();
    EXPECT_EQ(conf._get_generic_object(nullptr), nullptr);
    for (; child; child = child->next_item()) EXPECT_EQ(conf._get_generic_object(child), nullptr);
    EXPECT_EQ(creator.calls, 0) << "no item asked for 91010";
    EXPECT_EQ(conf.generic_objects.get_count(), 0u);
}

TEST_F(scenario_conf_test, each_id_makes_one_object_and_a_new_one_goes_to_the_head_of_the_list) {
    recording_creator_c first(91020);
    recording_creator_c second(91021);
    load(sd::stored(
        sd::scenario(sd::scenario_data(), sd::host("1"),
                     external_of("<a id=\"91020\"/><b id=\"91021\"/><c id=\"91020\"/>"))));
    xml_item_c* a = conf.find_tree_item("External", true)->first_child_item();
    xml_item_c* b = a->next_item();
    xml_item_c* c = b->next_item();
    conf_c* made_a = conf._get_generic_object(a);
    conf_c* made_b = conf._get_generic_object(b);
    ASSERT_NE(made_a, nullptr);
    ASSERT_NE(made_b, nullptr);
    EXPECT_EQ(conf._get_generic_object(c), made_a) << "the object of an id is made once";
    EXPECT_EQ(first.calls, 1);
    EXPECT_EQ(second.calls, 1);
    EXPECT_EQ(conf.generic_objects.first(), made_b);
    EXPECT_EQ(conf.generic_objects.last(), made_a);
    EXPECT_EQ(conf._find_generic_object(91021), made_b);
    EXPECT_EQ(conf._find_generic_object(91022), nullptr);
}

TEST_F(scenario_conf_test, external_objects_stay_through_clear_and_go_with_the_scenario) {
    recording_creator_c creator(GENERIC_OBJECT_ID);
    {
        scenario_conf_c scenario;
        ASSERT_TRUE(
            scenario.tree->load_from_str(sd::stored(sd::scenario(sd::scenario_data(), sd::host("1"),
                                                                 external_of("<db id=\"6799\"/>")))
                                             .c_str()));
        conf_c* made = scenario.get_generic_object();
        ASSERT_NE(made, nullptr);
        scenario.clear();
        EXPECT_EQ(scenario._find_generic_object(GENERIC_OBJECT_ID), made);
        EXPECT_EQ(creator.ends, 0);
        scenario.services.append(new service_entry_s);
    }
    EXPECT_EQ(creator.ends, 1);
}

TEST_F(scenario_conf_test, an_external_object_with_a_thousand_children) {
    recording_creator_c db_creator(GENERIC_OBJECT_ID);
    recording_creator_c other(91030);
    std::string children;
    for (int i = 0; i < 999; ++i)
        children +=
            i % 2 ? "<entry id=\"91030\"/>" : "<entry id=\"" + std::to_string(92000 + i) + "\"/>";
    children += "<db id=\"6799\"/>";
    load(sd::stored(sd::scenario(sd::scenario_data(), sd::host("1"), external_of(children))));
    xml_item_c* external = conf.find_tree_item("External", true);
    int with_object = 0;
    int count = 0;
    for (xml_item_c* child = external->first_child_item(); child; child = child->next_item()) {
        ++count;
        with_object += conf._get_generic_object(child) != nullptr;
    }
    EXPECT_EQ(count, 1000);
    EXPECT_EQ(with_object, 499 + 1) << "the ids that have a creator";
    EXPECT_EQ(other.calls, 1);
    EXPECT_EQ(conf.generic_objects.get_count(), 2u);
    conf_c* generic = conf.get_generic_object();
    ASSERT_NE(generic, nullptr);
    EXPECT_EQ(static_cast<made_c*>(generic)->from, external->last_child);
    EXPECT_EQ(db_creator.calls, 1) << "the object made for the child is the one served";
}

TEST_F(scenario_conf_test, readers_asking_at_once_share_one_external_object) {
    recording_creator_c creator(GENERIC_OBJECT_ID);
    creator.slow = true;
    load(sd::stored(
        sd::scenario(sd::scenario_data(), sd::host("1"), external_of("<db id=\"6799\"/>"))));
    std::vector<std::thread> readers;
    std::vector<conf_c*> answers(4, nullptr);
    for (std::size_t i = 0; i < answers.size(); ++i)
        readers.emplace_back([&, i] { answers[i] = conf.get_generic_object(); });
    for (std::thread& reader : readers) reader.join();
    EXPECT_EQ(creator.calls, 1);
    for (conf_c* answer : answers) EXPECT_EQ(answer, answers[0]);
    EXPECT_NE(answers[0], nullptr);
    EXPECT_EQ(conf.generic_objects.get_count(), 1u);
}
