// Findings: add_record keeps them in order, print_record writes the owner, the root directory,
// the names and the message of the code (or the finding's own text for code 36).
#include "configuration/xmc_validity.h"

#include "configuration/xmc_item.h"
#include "utl/message_store.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

// A catalogue of the words a printed finding uses, loaded for each test.
class xmc_validity_test : public ::testing::Test {
  protected:
    void SetUp() override {
        message_store_c::clear();
        auto report = message_store_c::load_text("IG01373\tScenario\n"
                                                 "IG00221\tMaster\n"
                                                 "IG00222\tReplica\n"
                                                 "IG01374\tRoot directory\n"
                                                 "CV01350\tThe list is empty.\n"
                                                 "CV01360\tThe value does not fit its type.\n");
        ASSERT_EQ(report.loaded, 6u);
    }
    void TearDown() override { message_store_c::clear(); }
};

std::string printed(const ch_data_s& finding) {
    utl_stream_c stream;
    print_record(finding, stream);
    return stream.c_str();
}

ch_data_s finding_of(std::uint64_t host, std::uint32_t code, const char* name) {
    ch_data_s finding;
    finding.host = host;
    finding.code = code;
    finding.name.append(name);
    return finding;
}

} // namespace

TEST_F(xmc_validity_test, a_finding_of_host_0_opens_with_the_scenario_word) {
    EXPECT_EQ(printed(finding_of(0, 2, "Scenario.Hosts")),
              "Scenario, Scenario.Hosts, The list is empty.\n");
}

TEST_F(xmc_validity_test, a_finding_of_host_1_opens_with_the_master_word) {
    EXPECT_EQ(printed(finding_of(1, 12, "ReplNode.IP")),
              "Master, ReplNode.IP, The value does not fit its type.\n");
}

TEST_F(xmc_validity_test, a_finding_of_host_3_opens_with_the_replica_word_and_its_number) {
    EXPECT_EQ(printed(finding_of(3, 12, "ReplNode.IP")),
              "Replica #3, ReplNode.IP, The value does not fit its type.\n");
}

TEST_F(xmc_validity_test, a_root_directory_position_and_a_peer_name_are_printed) {
    ch_data_s finding = finding_of(2, 12, "RootDir.Path");
    finding.item = 0;
    finding.peer_name.append("C:/data");
    EXPECT_EQ(printed(finding),
              "Replica #2, Root directory #0, RootDir.Path=>C:/data, The value does not fit its "
              "type.\n");
}

TEST_F(xmc_validity_test, code_36_prints_its_own_text_without_a_lookup) {
    ch_data_s finding = finding_of(0, 36, "Scenario");
    finding.text.append("A text of its own.");
    EXPECT_EQ(printed(finding), "Scenario, Scenario, A text of its own.\n");
}

TEST_F(xmc_validity_test, without_a_catalogue_every_word_is_the_missing_text) {
    message_store_c::clear();
    EXPECT_EQ(printed(finding_of(1, 2, "x")), "Message not found, x, Message not found\n");
}

TEST_F(xmc_validity_test, the_message_id_of_a_code_is_cv0_and_the_code_plus_1348) {
    utl_stream_c id;
    EXPECT_STREQ(message_id_of(0, id).c_str(), "CV01348");
    EXPECT_STREQ(message_id_of(12, id).c_str(), "CV01360");
    EXPECT_STREQ(message_id_of(34, id).c_str(), "CV01382");
}

TEST_F(xmc_validity_test, add_record_keeps_the_findings_in_order) {
    xmc_validity_c validity;
    add_record(validity, "first", 3);
    add_record(validity, "second", 13, 2, 1);
    add_record(validity, nullptr, 5);
    ASSERT_EQ(validity.findings.get_count(), 3u);
    std::vector<std::string> names;
    for (ch_data_s* f = validity.findings.first(); f; f = validity.findings.next(nullptr))
        names.push_back(f->name.c_str());
    EXPECT_EQ(names, (std::vector<std::string>{"first", "second", ""}));
    ch_data_s* second = validity.findings.next(validity.findings.first());
    EXPECT_EQ(second->host, 2u);
    EXPECT_EQ(second->item, 1u);
    EXPECT_EQ(second->code, 13u);
    EXPECT_EQ(validity.findings.first()->item, ch_data_s::no_item);
}

namespace {

// A scenario with a master (Index 1) and, below it, a replica (Index 3) with two root
// directories.
const char* const hosts_document = R"(<?xml version="1.0"?>
<object label="Scenario" id="1">
  <data label="Name" val="finance" type="String"/>
  <object label="ReplNode" id="2">
    <title label="Host">
      <data label="Index" val="1" type="Number"/>
    </title>
    <object label="ReplNode" id="2">
      <data label="Index" val="3" type="Number"/>
      <object label="RootDirs" id="5">
        <object label="RootDir" id="6"><data label="Path" val="a" type="String"/></object>
        <object label="RootDir" id="6"><data label="Path" val="b" type="String"/></object>
      </object>
    </object>
  </object>
</object>)";

// The first item, in pre-order, whose `label` attribute is `label` and whose `val` is `val`
// (any `val` when null).
xml_item_c* item_of(xml_item_c* root, const char* label, const char* val) {
    for (xml_item_c* item = root; item; item = xmc_tree_n::next_item(item, root)) {
        labeled_value_c* l = item->find_attribute("label");
        labeled_value_c* v = item->find_attribute("val");
        if (l && std::string(l->to_text()) == label &&
            (!val || (v && std::string(v->to_text()) == val)))
            return item;
    }
    return nullptr;
}

} // namespace

TEST_F(xmc_validity_test, report_item_below_a_root_directory_names_its_position_and_host) {
    mixed_xmc_xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str(hosts_document));
    xml_item_c* path_b = item_of(tree.get_root(), "Path", "b");
    ASSERT_NE(path_b, nullptr);
    xmc_validity_c validity;
    report_item(validity, path_b, 12, "b");
    ASSERT_EQ(validity.findings.get_count(), 1u);
    ch_data_s* finding = validity.findings.first();
    EXPECT_EQ(finding->host, 3u);
    EXPECT_EQ(finding->item, 1u);
    EXPECT_EQ(finding->code, 12u);
    utl_stream_c path;
    EXPECT_STREQ(finding->name.c_str(), path_b->get_path(path));
    EXPECT_STREQ(finding->peer_name.c_str(), "b");
}

TEST_F(xmc_validity_test, report_item_stops_at_the_nearest_host_and_reads_its_index_below_a_title) {
    mixed_xmc_xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str(hosts_document));
    xml_item_c* master_index = item_of(tree.get_root(), "Index", "1");
    ASSERT_NE(master_index, nullptr);
    xmc_validity_c validity;
    report_item(validity, master_index, 5);
    ch_data_s* finding = validity.findings.first();
    ASSERT_NE(finding, nullptr);
    EXPECT_EQ(finding->host, 1u);
    EXPECT_EQ(finding->item, ch_data_s::no_item);
    EXPECT_STREQ(finding->peer_name.c_str(), "");
}

TEST_F(xmc_validity_test, report_item_outside_every_host_is_about_the_scenario) {
    mixed_xmc_xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str(hosts_document));
    xmc_validity_c validity;
    report_item(validity, item_of(tree.get_root(), "Name", nullptr), 12, "");
    report_item(validity, tree.get_root(), 0);
    ASSERT_EQ(validity.findings.get_count(), 2u);
    EXPECT_EQ(validity.findings.first()->host, 0u);
    EXPECT_EQ(validity.findings.first()->item, ch_data_s::no_item);
    EXPECT_EQ(validity.findings.last()->host, 0u);
}

TEST_F(xmc_validity_test, report_item_of_no_item_adds_nothing) {
    xmc_validity_c validity;
    report_item(validity, nullptr, 3, "x");
    EXPECT_EQ(validity.findings.get_count(), 0u);
}
