// Virtual network mappings: the records that get_hyper_v_vm_network_mapping_list reads out of a
// scenario's list or a host's switchover list, and how it treats bad children.
#include "configuration/vnet_mapping.h"

#include "common/test_support.h"
#include "configuration/scenario_conf.h"
#include "configuration/scenario_documents.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace sd = scenario_documents;
using test_support::trace_capture_c;
using test_support::trace_line;

namespace {

std::string text_of(const utl_stream_c& stream) { return stream.c_str() ? stream.c_str() : ""; }

std::vector<std::string> texts_of(const string_array_c& array) {
    std::vector<std::string> texts;
    for (std::uint64_t i = 0; i < array.get_count(); ++i) texts.emplace_back(array.at(i));
    return texts;
}

bool has_level(const std::string& line, unsigned level) {
    return line.find(" level=" + std::to_string(level) + " ") != std::string::npos;
}

// A list item of entries labelled `label`.
std::string entries(const std::string& label, const std::vector<std::string>& values,
                    const std::string& entry_label = "") {
    std::string text =
        "<data label=\"" + label + "\" val=\"IPAddr\" type=\"MultiEntry\" mandatory=\"True\">";
    for (const std::string& value : values)
        text += sd::data(entry_label.empty() ? label : entry_label, value, "IPAddr");
    return text + "</data>";
}

std::string mapping(const std::string& children, const std::string& id = "4450") {
    return sd::object("VirtualNetworkMapping", id, children);
}

std::string full_mapping(const std::string& vm) {
    return mapping(
        sd::data("VirtualMachineUUID", vm) + sd::data("MasterVirtualNetworkName", "master-net") +
        sd::data("MasterVirtualNetworkUUID", "master-uuid") +
        sd::data("ReplicaVirtualNetworkName", "replica-net") +
        sd::data("ReplicaVirtualNetworkUUID", "replica-uuid") +
        sd::data("ApplySourceAdapterSetting", "True", "Bool") +
        sd::data("UseDHCP", "False", "Bool") + sd::data("MacAddress", "00:0C:29:CE:59:04") +
        sd::data("WinsPrimary", "192.0.2.9", "Text") +
        sd::data("WinsSecondary", "192.0.2.10", "Text") + entries("IPs", {"10.0.0.5", "10.0.0.6"}) +
        entries("Subnets", {"255.255.255.0"}) + entries("Gateways", {"10.0.0.1"}) +
        entries("DNS", {"10.0.0.2", "10.0.0.3"}));
}

std::string scenario_list(const std::string& mappings) {
    return "<data label=\"ListVirtualNetworkMappings\" val=\"4450\" type=\"MultiEntry\">" +
           mappings + "</data>";
}

std::string host_list(const std::string& mappings) {
    return "<data label=\"ListVirtualNetworkMappingsSwitchover\" val=\"4460\" "
           "type=\"MultiEntry\">" +
           mappings + "</data>";
}

// A scenario with a scenario-level list in its `Switchover`, and the Master feeding replica 2,
// whose `SpecificReplicaProps` hold the switchover list `replica_list`.
std::string scenario_with(const std::string& mappings, const std::string& replica_list = "") {
    std::string replica =
        sd::object("ReplNode", "5000",
                   sd::host_props("2") +
                       sd::object("SpecificReplicaProps", "150",
                                  "<title label=\"VirtualMachine\">" + replica_list + "</title>"));
    return sd::stored(sd::scenario(sd::scenario_data(), sd::host("1", "", replica),
                                   sd::object("Switchover", "4500", scenario_list(mappings))));
}

class vnet_mapping_test : public ::testing::Test {
  protected:
    void load(const std::string& text) {
        ASSERT_TRUE(conf.tree->load_from_str(text.c_str()));
        conf._build_host_tree(nullptr);
    }
    // The records read for `host`, and whether the call succeeded.
    bool read(std::uint64_t host = 0) {
        return conf.get_hyper_v_vm_network_mapping_list(list, host);
    }
    vm_network_mapping_s* first() { return list.first(); }

    scenario_conf_c conf;
    ptr_list_ct<vm_network_mapping_s> list{false};

    void TearDown() override { list.clear_and_delete(); }
};

} // namespace

TEST_F(vnet_mapping_test, a_full_mapping_becomes_one_record) {
    load(scenario_with(full_mapping("vm-1")));
    ASSERT_TRUE(read());
    ASSERT_EQ(list.get_count(), 1u);
    vm_network_mapping_s* r = first();
    EXPECT_EQ(text_of(r->VirtualMachineUUID), "vm-1");
    EXPECT_EQ(text_of(r->MasterVirtualNetworkName), "master-net");
    EXPECT_EQ(text_of(r->MasterVirtualNetworkUUID), "master-uuid");
    EXPECT_EQ(text_of(r->Reserved), "");
    EXPECT_EQ(text_of(r->ReplicaVirtualNetworkName), "replica-net");
    EXPECT_EQ(text_of(r->ReplicaVirtualNetworkUUID), "replica-uuid");
    EXPECT_EQ(text_of(r->MacAddress), "00:0C:29:CE:59:04");
    EXPECT_TRUE(r->ApplySourceAdapterSetting);
    EXPECT_FALSE(r->UseDHCP);
    EXPECT_EQ(text_of(r->WinsPrimary), "192.0.2.9");
    EXPECT_EQ(text_of(r->WinsSecondary), "192.0.2.10");
    EXPECT_EQ(texts_of(r->IPs), (std::vector<std::string>{"10.0.0.5", "10.0.0.6"}));
    EXPECT_EQ(texts_of(r->Subnets), (std::vector<std::string>{"255.255.255.0"}));
    EXPECT_EQ(texts_of(r->Gateways), (std::vector<std::string>{"10.0.0.1"}));
    EXPECT_EQ(texts_of(r->DNS), (std::vector<std::string>{"10.0.0.2", "10.0.0.3"}));
}

TEST_F(vnet_mapping_test, mappings_come_in_the_order_of_the_list) {
    load(scenario_with(full_mapping("vm-1") + full_mapping("vm-2") + full_mapping("vm-3")));
    ASSERT_TRUE(read());
    std::vector<std::string> machines;
    for (vm_network_mapping_s* r = list.first(); r; r = list.next(nullptr))
        machines.push_back(text_of(r->VirtualMachineUUID));
    EXPECT_EQ(machines, (std::vector<std::string>{"vm-1", "vm-2", "vm-3"}));
}

TEST_F(vnet_mapping_test, a_record_copy_carries_every_field) {
    vm_network_mapping_s record;
    record.VirtualMachineUUID.append("vm");
    record.Reserved.append("kept");
    record.UseDHCP = true;
    record.DNS.add("10.0.0.2");
    vm_network_mapping_s copy(record);
    EXPECT_EQ(text_of(copy.VirtualMachineUUID), "vm");
    EXPECT_EQ(text_of(copy.Reserved), "kept");
    EXPECT_TRUE(copy.UseDHCP);
    EXPECT_EQ(texts_of(copy.DNS), (std::vector<std::string>{"10.0.0.2"}));
    EXPECT_NE(copy.DNS.at(0), record.DNS.at(0)) << "the texts are copies";
}

TEST_F(vnet_mapping_test, host_0_reads_the_scenario_list_and_a_host_its_switchover_list) {
    load(scenario_with(full_mapping("scenario-vm"), host_list(full_mapping("replica-vm"))));
    ASSERT_TRUE(read(0));
    ASSERT_EQ(list.get_count(), 1u);
    EXPECT_EQ(text_of(first()->VirtualMachineUUID), "scenario-vm");
    ASSERT_TRUE(read(2));
    ASSERT_EQ(list.get_count(), 1u);
    EXPECT_EQ(text_of(first()->VirtualMachineUUID), "replica-vm");
}

TEST_F(vnet_mapping_test, a_host_that_does_not_exist_searches_from_the_root) {
    load(scenario_with("", host_list(full_mapping("replica-vm"))));
    ASSERT_TRUE(read(9));
    ASSERT_EQ(list.get_count(), 1u);
    EXPECT_EQ(text_of(first()->VirtualMachineUUID), "replica-vm");
}

TEST_F(vnet_mapping_test, the_search_of_a_host_stays_on_that_host) {
    load(scenario_with("", host_list(full_mapping("replica-vm"))));
    trace_capture_c capture;
    EXPECT_FALSE(read(1)) << "the Master has no switchover list; its replica's is not its own";
    EXPECT_TRUE(has_level(
        trace_line(capture.text(), "Failed to find Network Mapping list in scernario"), 4))
        << capture.text();
}

TEST_F(vnet_mapping_test, a_missing_list_answers_false_and_empties_the_list) {
    load(sd::stored(sd::scenario(sd::scenario_data(), sd::host("1"))));
    list.append(new vm_network_mapping_s);
    trace_capture_c capture;
    EXPECT_FALSE(read());
    EXPECT_EQ(list.get_count(), 0u);
    std::string line =
        trace_line(capture.text(), "Failed to find Network Mapping list in scernario");
    EXPECT_NE(line.find("scenario_conf_c::get_hyper_v_vm_network_mapping_list"), std::string::npos)
        << capture.text();
}

TEST_F(vnet_mapping_test, without_a_tree_the_list_is_not_read) {
    list.append(new vm_network_mapping_s);
    trace_capture_c capture;
    EXPECT_FALSE(read());
    EXPECT_EQ(list.get_count(), 0u);
    EXPECT_NE(trace_line(capture.text(), "XMC tree is missing"), "");
}

TEST_F(vnet_mapping_test, an_empty_list_item_gives_true_and_an_empty_list) {
    load(scenario_with(""));
    list.append(new vm_network_mapping_s);
    list.append(new vm_network_mapping_s);
    EXPECT_TRUE(read());
    EXPECT_EQ(list.get_count(), 0u);
}

TEST_F(vnet_mapping_test, a_label_in_any_case_is_accepted) {
    load(scenario_with(
        mapping(sd::data("macaddress", "00:11:22:33:44:55") + sd::data("USEDHCP", "true", "Bool") +
                sd::data("virtualmachineuuid", "vm-x") + entries("ips", {"10.1.1.1"}, "IPS"))));
    ASSERT_TRUE(read());
    ASSERT_EQ(list.get_count(), 1u);
    EXPECT_EQ(text_of(first()->MacAddress), "00:11:22:33:44:55");
    EXPECT_TRUE(first()->UseDHCP);
    EXPECT_EQ(text_of(first()->VirtualMachineUUID), "vm-x");
    EXPECT_EQ(texts_of(first()->IPs), (std::vector<std::string>{"10.1.1.1"}));
}

TEST_F(vnet_mapping_test, repeated_labels_overwrite_text_fields_and_add_to_sequences) {
    load(scenario_with(mapping(sd::data("WinsPrimary", "192.0.2.1") +
                               sd::data("WinsPrimary", "192.0.2.2") + entries("DNS", {"10.0.0.2"}) +
                               entries("DNS", {"10.0.0.3"}) + sd::data("UseDHCP", "True", "Bool") +
                               sd::data("UseDHCP", "False", "Bool"))));
    ASSERT_TRUE(read());
    EXPECT_EQ(text_of(first()->WinsPrimary), "192.0.2.2");
    EXPECT_EQ(texts_of(first()->DNS), (std::vector<std::string>{"10.0.0.2", "10.0.0.3"}));
    EXPECT_FALSE(first()->UseDHCP);
}

TEST_F(vnet_mapping_test, a_child_labelled_ips_without_val_is_rejected_and_its_entries_are_lost) {
    load(scenario_with(mapping("<data label=\"IPs\" type=\"MultiEntry\">" +
                               sd::data("IPs", "10.0.0.5", "IPAddr") + "</data>" +
                               entries("Gateways", {"10.0.0.1"}))));
    trace_capture_c capture;
    ASSERT_TRUE(read());
    ASSERT_EQ(list.get_count(), 1u);
    EXPECT_TRUE(texts_of(first()->IPs).empty());
    EXPECT_EQ(texts_of(first()->Gateways), (std::vector<std::string>{"10.0.0.1"}));
    EXPECT_TRUE(has_level(trace_line(capture.text(), "Invalid lable or value for item"), 4))
        << capture.text();
}

TEST_F(vnet_mapping_test, use_dhcp_with_a_val_other_than_true_or_false_reads_false) {
    for (const char* word : {"yes", "1", "", "Truely"}) {
        load(scenario_with(mapping(sd::data("UseDHCP", "True", "Bool") +
                                   sd::data("UseDHCP", word, "Bool") +
                                   sd::data("ApplySourceAdapterSetting", word, "Bool"))));
        ASSERT_TRUE(read());
        ASSERT_EQ(list.get_count(), 1u);
        EXPECT_FALSE(first()->UseDHCP) << word;
        EXPECT_FALSE(first()->ApplySourceAdapterSetting) << word;
        conf.clear();
    }
}

TEST_F(vnet_mapping_test, a_mapping_without_id_or_of_another_id_is_dropped_whole) {
    load(scenario_with("<object label=\"VirtualNetworkMapping\">" +
                       sd::data("VirtualMachineUUID", "no-id") + "</object>" +
                       mapping(sd::data("VirtualMachineUUID", "other-id"), "4460") +
                       full_mapping("kept")));
    trace_capture_c capture;
    ASSERT_TRUE(read());
    ASSERT_EQ(list.get_count(), 1u);
    EXPECT_EQ(text_of(first()->VirtualMachineUUID), "kept");
    std::string text = capture.text();
    EXPECT_TRUE(has_level(trace_line(text, "Mapping has invalid ID"), 4)) << text;
    EXPECT_TRUE(has_level(trace_line(text, "Unexpected ID 4460"), 4)) << text;
}

TEST_F(vnet_mapping_test, an_entry_picks_its_sequence_by_its_own_label) {
    load(scenario_with(mapping(
        "<data label=\"IPs\" val=\"IPAddr\" type=\"MultiEntry\">" +
        sd::data("IPs", "10.0.0.5", "IPAddr") + sd::data("DNS", "10.0.0.53", "IPAddr") +
        sd::data("Gateways", "10.0.0.1", "IPAddr") + sd::data("WinsPrimary", "10.0.0.9", "IPAddr") +
        "<data label=\"IPs\" type=\"IPAddr\"/>" + "</data>")));
    trace_capture_c capture;
    ASSERT_TRUE(read());
    EXPECT_EQ(texts_of(first()->IPs), (std::vector<std::string>{"10.0.0.5"}));
    EXPECT_EQ(texts_of(first()->DNS), (std::vector<std::string>{"10.0.0.53"}));
    EXPECT_EQ(texts_of(first()->Gateways), (std::vector<std::string>{"10.0.0.1"}));
    EXPECT_EQ(text_of(first()->WinsPrimary), "") << "an entry is no text field";
    std::string text = capture.text();
    EXPECT_TRUE(has_level(trace_line(text, "Invalid label [WinsPrimary]. Ignored"), 8)) << text;
    EXPECT_TRUE(has_level(trace_line(text, "Invalid lable or value for item"), 4)) << text;
}

TEST_F(vnet_mapping_test, a_label_that_names_no_field_is_ignored_at_level_8) {
    load(scenario_with(mapping(sd::data("Colour", "blue") + sd::data("MacAddress", "aa"))));
    trace_capture_c capture;
    ASSERT_TRUE(read());
    EXPECT_EQ(text_of(first()->MacAddress), "aa");
    EXPECT_TRUE(has_level(trace_line(capture.text(), "Invalid Lable [Colour]. Ignored"), 8))
        << capture.text();
}

TEST_F(vnet_mapping_test, a_mapping_whose_children_are_all_bad_still_gives_an_empty_record) {
    load(scenario_with(
        mapping("<data label=\"MacAddress\"/><data val=\"x\"/>" + sd::data("Nothing", "x"))));
    ASSERT_TRUE(read());
    ASSERT_EQ(list.get_count(), 1u);
    EXPECT_EQ(text_of(first()->MacAddress), "");
    EXPECT_EQ(text_of(first()->VirtualMachineUUID), "");
    EXPECT_FALSE(first()->UseDHCP);
    EXPECT_EQ(first()->IPs.get_count(), 0u);
}
