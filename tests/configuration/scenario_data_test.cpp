// The data access of scenario_conf_c: scenario, host, Manager and group settings by table row
// and by dotted name, their type check and fixed-property rule, lists, the failure words of
// getters and setters, the findings about rows, and which lock each operation takes.
#include "configuration/scenario_conf.h"

#include "common/test_support.h"
#include "configuration/scenario_documents.h"
#include "configuration/scenario_loader.h"

#include <gtest/gtest.h>

#include <cctype>
#include <chrono>
#include <future>
#include <string>
#include <vector>

namespace sd = scenario_documents;
using test_support::trace_capture_c;
using test_support::trace_line;

namespace {

// Rows of the tables that the tests address.
constexpr std::uint32_t row_scenario_id = 0;
constexpr std::uint32_t row_group_id = 1;
constexpr std::uint32_t row_scenario_name = 3;
constexpr std::uint32_t row_switchover_status = 29;
constexpr std::uint32_t row_replication_mode = 104;
constexpr std::uint32_t host_row_host = 0;
constexpr std::uint32_t host_row_ip = 1;
constexpr std::uint32_t host_row_index = 4;
constexpr std::uint32_t host_row_spool_directory = 8;
constexpr std::uint32_t host_row_registry_paths = 24;
constexpr std::uint32_t host_row_bandwidth = 34;
constexpr std::uint32_t host_row_cdp_report_detailed = 41;
constexpr std::uint32_t host_row_report_status = 63;
constexpr std::uint32_t host_row_synch_report_status = 64;
constexpr std::uint32_t group_row_group_id = 0;
constexpr std::uint32_t group_row_group_name = 2;
constexpr std::uint32_t group_row_exec_failover = 7;
constexpr std::uint32_t group_scenario_row_descendant = 1;
constexpr std::uint32_t group_scenario_row_is_primary = 2;
constexpr std::uint32_t group_host_row_host = 0;
constexpr std::uint32_t group_host_row_index = 3;

std::string object_with_status(const std::string& label, const std::string& id,
                               const std::string& status, const std::string& content) {
    return "<object label=\"" + label + "\" id=\"" + id + "\" status=\"" + status + "\">" +
           content + "</object>";
}

std::string list(const std::string& label, const std::string& element_type,
                 const std::vector<std::string>& entries) {
    std::string text =
        "<data label=\"" + label + "\" val=\"" + element_type + "\" type=\"MultiEntry\">";
    for (const std::string& entry : entries) text += sd::data(label, entry, element_type);
    return text + "</data>";
}

// What every host holds beside its index: its address, spool directory and registry paths.
std::string host_content(const std::string& index) {
    return sd::data("IP", "10.0.0." + index, "IPAddr") +
           sd::data("SpoolDirectory", "C:/spool" + index, "DefFullPath") +
           sd::object("ListRegistryPaths_32", "250",
                      list("RegistryPaths", "String", {"HKLM/a" + index, "HKLM/b" + index})) +
           object_with_status("Report", "3500", "False",
                              sd::data("SynchReportStatus", "False", "Bool"));
}

std::string replica_content(const std::string& bandwidth) {
    return sd::object("SpecificReplicaProps", "150", sd::data("BandWidth", bandwidth, "Number"));
}

std::string host_node(const std::string& index, const std::string& replicas = "",
                      const std::string& specific = "") {
    return sd::object("ReplNode", "5000",
                      sd::host_props(index, host_content(index)) + specific + replicas);
}

// The Scenario: its own data, a switchover, the Manager's data, and the hosts given.
std::string scenario_with(const std::string& master) {
    std::string own =
        sd::scenario_data() + sd::data("ReplicationMode", "Online", "ReplicationMode");
    std::string extra =
        object_with_status("Switchover", "4500", "False", sd::data("HostName", "sw")) +
        "<title label=\"ManagerData\">" +
        object_with_status("Report", "3500", "True",
                           sd::data("SynchReportStatus", "True", "Bool")) +
        "</title>";
    return sd::stored(sd::scenario(own, master, extra));
}

// Master 1 feeding 2, which feeds 3.
std::string three_hosts() {
    return scenario_with(host_node(
        "1", host_node("2", host_node("3", "", replica_content("300")), replica_content("200"))));
}

std::string master_only() { return scenario_with(host_node("1")); }

// A group of two member scenarios, 43 first (its host list knows the Master only), then 42
// with its Master and one replica; 42 is the primary one of the failover list.
std::string host_props_entry(const std::string& index, const std::string& host) {
    return sd::object("HostProps", "8020",
                      sd::data("Host", host) + sd::data("IP", "10.1.0." + index, "IPAddr") +
                          sd::data("Port", "25000", "Number") + sd::data("Index", index, "Number") +
                          sd::data("Role", index == "1" ? "Master" : "Replica", "HostTask"));
}

std::string scenario_info(const std::string& id, const std::string& descendant,
                          const std::string& hosts) {
    return sd::object(
        "ScenarioInfo", "8010",
        sd::data("ScenarioID", id, "Number") + sd::data("DescendantID", descendant, "Number") +
            "<data label=\"HostList\" val=\"8020\" type=\"MultiEntry\">" + hosts + "</data>");
}

std::string group_document() {
    std::string members =
        "<data label=\"ScenarioList\" val=\"8010\" type=\"MultiEntry\">" +
        scenario_info("43", "5", host_props_entry("1", "m43")) +
        scenario_info("42", "6", host_props_entry("1", "m42") + host_props_entry("2", "r42")) +
        "</data>";
    std::string failover = object_with_status(
        "GroupFailover", "8030", "True",
        object_with_status(
            "Failover_together", "8040", "True",
            sd::data("ExecScenFailoverConfig", "True", "Bool") +
                "<data label=\"FailoverScenarioList\" val=\"8050\" type=\"MultiEntry\">" +
                sd::object("ScenarioFailoverInfo", "8050",
                           sd::data("ScenarioID", "42", "Number") +
                               sd::data("IsPrimary", "True", "Bool")) +
                "</data>"));
    return sd::declaration + "<object label=\"ConfigDataHolder\" id=\"1\">" +
           sd::object("Group", "8000",
                      sd::data("GroupID", "7", "Number") + sd::data("GroupName", "payroll") +
                          members + failover) +
           "</object>";
}

bool has_level(const std::string& line, unsigned level) {
    return line.find(" level=" + std::to_string(level) + " ") != std::string::npos;
}

std::vector<std::string> entries_of(const xmc_value_c& value) {
    std::vector<std::string> entries;
    for (std::uint64_t i = 0; value.strings && i < value.strings->get_count(); ++i)
        entries.push_back(value.strings->at(i));
    return entries;
}

xmc_value_c list_value(const std::vector<std::string>& entries) {
    xmc_value_c value;
    value.strings = new xmc_string_array_c;
    for (const std::string& entry : entries) value.strings->add(entry.c_str());
    return value;
}

class scenario_data_test : public ::testing::Test {
  protected:
    void load(const std::string& text) {
        scenario_load_result_s result =
            scenario_loader_n::load_text(conf, text.data(), text.size(), "test");
        ASSERT_TRUE(result.ok()) << result.message.c_str();
    }
    void load_group() {
        std::string text = group_document();
        ASSERT_TRUE(conf.tree->load_from_str(text.c_str()));
        conf.is_group = true;
    }
    std::string scenario(std::uint32_t row) {
        xmc_value_c value;
        return conf.get_scenario_data(row, value).to_text();
    }
    std::string host(std::uint32_t row, std::uint64_t index) {
        xmc_value_c value;
        return conf.get_host_data(row, index, value).to_text();
    }
    std::vector<std::string> host_list(std::uint32_t row, std::uint64_t index) {
        xmc_value_c value;
        return entries_of(conf.get_host_data(row, index, value));
    }
    // The dotted path of a host row's item, as the tree has it for that host.
    std::string host_path(std::uint32_t row, std::uint64_t index) {
        const xmc_enums_n::host_data_s& r = xmc_enums_n::host_data_table[row];
        xml_item_c* out = nullptr;
        conf.find_property(xmc_enums_n::object_tag_table[r.object].name, r.label,
                           conf.host_tree->find_host_node(index)->host_item, &out);
        utl_stream_c path;
        return out ? out->get_path(path) : "";
    }
    std::string saved() {
        utl_stream_c text;
        conf.tree->write(text, false);
        return text.c_str() ? text.c_str() : "";
    }

    scenario_conf_c conf;
};

} // namespace

// ---- getters

TEST_F(scenario_data_test, get_scenario_data_reads_the_text_and_the_type_name) {
    load(three_hosts());
    xmc_value_c value;
    conf.get_scenario_data(row_scenario_id, value);
    EXPECT_FALSE(value.get_error());
    EXPECT_EQ(value.lookup_failed, 0);
    EXPECT_EQ(value.get_type(), value_c::type_string);
    EXPECT_STREQ(value.to_text(), "42");
    EXPECT_STREQ(value.type_name, "Number");
    conf.get_scenario_data(row_replication_mode, value);
    EXPECT_STREQ(value.type_name, "ReplicationMode");
    EXPECT_EQ(value.to_replication_mode(), 0u);
}

TEST_F(scenario_data_test, an_object_status_reads_as_bool) {
    load(three_hosts());
    xmc_value_c value;
    conf.get_scenario_data(row_switchover_status, value);
    EXPECT_STREQ(value.to_text(), "False");
    EXPECT_STREQ(value.type_name, "Bool");
}

TEST_F(scenario_data_test, a_missing_property_is_an_error_in_the_value) {
    load(three_hosts());
    xmc_value_c value("left over");
    conf.get_scenario_data(row_group_id, value);
    EXPECT_TRUE(value.get_error());
    EXPECT_EQ(value.lookup_failed, 1);
    EXPECT_STREQ(value.error_text.c_str(), "Unable to find node with property GroupID");
    EXPECT_STREQ(value.to_text(), "");
}

TEST_F(scenario_data_test, a_row_past_the_table_is_an_error_in_the_value) {
    load(three_hosts());
    xmc_value_c value;
    conf.get_scenario_data(xmc_enums_n::scenario_data_count, value);
    EXPECT_EQ(value.lookup_failed, 1);
    EXPECT_STREQ(value.error_text.c_str(), "No scenario data row 142");
    conf.get_host_data(xmc_enums_n::host_data_count, 1, value);
    EXPECT_STREQ(value.error_text.c_str(), "No host data row 179");
    xmc_value_c text("x");
    EXPECT_FALSE(conf.set_scenario_data(xmc_enums_n::scenario_data_count, text, true));
    EXPECT_FALSE(conf.set_host_data(xmc_enums_n::host_data_count, text));
}

TEST_F(scenario_data_test, getters_on_a_missing_tree_report_it_in_the_value) {
    delete conf.tree;
    conf.tree = nullptr;
    trace_capture_c capture;
    xmc_value_c value("kept");
    conf.get_scenario_data(row_scenario_id, value);
    EXPECT_TRUE(value.get_error());
    EXPECT_STREQ(value.error_text.c_str(), "XMC tree is missing");
    EXPECT_STREQ(value.to_text(), "kept");
    xmc_value_c group;
    conf.get_group_data(group_row_group_id, group);
    EXPECT_STREQ(group.error_text.c_str(), "XMC tree is missing");
    xmc_value_c text("x");
    EXPECT_FALSE(conf.set_scenario_data(row_scenario_name, text, false));
    EXPECT_STREQ(scenario_conf_c::last_set_failure(), "XMC tree is missing\n");
    EXPECT_FALSE(conf.set_host_data(host_row_host, 1, text));
    EXPECT_FALSE(conf.set_host_data(host_row_host, text));
    EXPECT_FALSE(conf.set_group_data(group_row_group_name, text, false));
    EXPECT_FALSE(conf.set_scenario_in_group(42, 0, text, false));
    EXPECT_GE(test_support::count_of(capture.text(), "XMC tree is missing"), 7u);
}

TEST_F(scenario_data_test, get_host_data_reads_each_host_below_its_own_node) {
    load(three_hosts());
    EXPECT_EQ(host(host_row_host, 1), "host1");
    EXPECT_EQ(host(host_row_host, 2), "host2");
    EXPECT_EQ(host(host_row_host, 3), "host3");
    EXPECT_EQ(host(host_row_bandwidth, 3), "300");
    xmc_value_c value;
    conf.get_host_data(host_row_ip, 2, value);
    EXPECT_STREQ(value.type_name, "IPAddr");
}

TEST_F(scenario_data_test, get_host_data_with_index_0_names_the_index) {
    load(three_hosts());
    xmc_value_c value;
    conf.get_host_data(host_row_host, 0, value);
    EXPECT_TRUE(value.get_error());
    EXPECT_EQ(value.lookup_failed, 1);
    EXPECT_STREQ(value.error_text.c_str(), "Unable to find host node with index 0");
}

TEST_F(scenario_data_test, get_host_data_for_the_manager_reads_report_at_the_scenario_level) {
    load(three_hosts());
    xmc_value_c value;
    conf.get_host_data(host_row_report_status, MANAGER_INDEX, value);
    EXPECT_FALSE(value.get_error());
    EXPECT_STREQ(value.to_text(), "True") << "the Master's Report has status False";
    conf.get_host_data(host_row_synch_report_status, MANAGER_INDEX, value);
    EXPECT_STREQ(value.to_text(), "True");
    EXPECT_EQ(host(host_row_synch_report_status, 1), "False");
}

TEST_F(scenario_data_test, get_host_data_for_the_manager_on_index_is_irrelevant_for_manager_data) {
    load(three_hosts());
    xmc_value_c value;
    conf.get_host_data(host_row_index, MANAGER_INDEX, value);
    EXPECT_TRUE(value.get_error());
    EXPECT_STREQ(value.error_text.c_str(), "Node \"CommonHostProps\" with property \"Index\" is "
                                           "irrelevant for Manager Data");
}

TEST_F(scenario_data_test, a_host_without_the_property_names_the_host) {
    load(three_hosts());
    xmc_value_c value;
    conf.get_host_data(host_row_bandwidth, 1, value);
    EXPECT_STREQ(value.error_text.c_str(), "Unable to find node \"SpecificReplicaProps\" with "
                                           "property \"BandWidth\", host Master");
    conf.get_host_data(host_row_cdp_report_detailed, 2, value);
    EXPECT_STREQ(value.error_text.c_str(), "Unable to find node \"SpecificReplicaProps\" with "
                                           "property \"CDPReportDetailed\", host Replica #2");
}

TEST_F(scenario_data_test, a_list_reads_as_its_entries) {
    load(three_hosts());
    xmc_value_c value;
    conf.get_host_data(host_row_registry_paths, 2, value);
    EXPECT_FALSE(value.get_error());
    EXPECT_STREQ(value.type_name, "MultiEntry");
    EXPECT_EQ(entries_of(value), (std::vector<std::string>{"HKLM/a2", "HKLM/b2"}));
    EXPECT_STREQ(value.to_text(), "HKLM/a2, HKLM/b2");
}

TEST_F(scenario_data_test, a_list_is_copied_into_the_value_own_array) {
    load(three_hosts());
    xmc_value_c value = list_value({"old", "older", "oldest"});
    xmc_string_array_c* own = value.strings;
    conf.get_host_data(host_row_registry_paths, 1, value);
    EXPECT_EQ(value.strings, own);
    EXPECT_EQ(entries_of(value), (std::vector<std::string>{"HKLM/a1", "HKLM/b1"}));
}

// ---- scenario setters

TEST_F(scenario_data_test, set_scenario_data_stores_a_fitting_text) {
    load(three_hosts());
    xmc_value_c value("payroll");
    EXPECT_TRUE(conf.set_scenario_data(row_scenario_name, value, false));
    EXPECT_EQ(scenario(row_scenario_name), "payroll");
    EXPECT_STREQ(scenario_conf_c::last_set_failure(), "");
    EXPECT_NE(saved().find("val=\"payroll\""), std::string::npos);
}

TEST_F(scenario_data_test, set_scenario_data_refuses_a_text_that_does_not_fit) {
    load(three_hosts());
    trace_capture_c capture;
    xmc_value_c value("Sometimes");
    EXPECT_FALSE(conf.set_scenario_data(row_replication_mode, value, false));
    EXPECT_EQ(scenario(row_replication_mode), "Online");
    std::string words =
        "Unable to set \"Scenario.ReplicationMode\" = \"Sometimes\", type doesn't fit";
    std::string line = trace_line(capture.text(), words);
    EXPECT_TRUE(has_level(line, 4)) << capture.text();
    EXPECT_NE(line.find("scenario_conf_c::_set_scenario_data"), std::string::npos) << line;
    EXPECT_EQ(std::string(scenario_conf_c::last_set_failure()), words + "\n");
    xmc_value_c status("true");
    EXPECT_FALSE(conf.set_scenario_data(row_switchover_status, status, false))
        << "a status is Bool, and Bool tells case";
    xmc_value_c word("True");
    EXPECT_TRUE(conf.set_scenario_data(row_switchover_status, word, false));
    EXPECT_EQ(scenario(row_switchover_status), "True");
}

TEST_F(scenario_data_test, set_scenario_data_on_a_missing_property_traces_its_names) {
    load(three_hosts());
    trace_capture_c capture;
    xmc_value_c value("9");
    EXPECT_FALSE(conf.set_scenario_data(row_group_id, value, false));
    EXPECT_TRUE(has_level(
        trace_line(capture.text(), "Unable to find node \"Scenario\" with property \"GroupID\""),
        4))
        << capture.text();
}

TEST_F(scenario_data_test,
       set_scenario_data_on_scenario_id_without_force_traces_and_leaves_the_value) {
    load(three_hosts());
    trace_capture_c capture;
    xmc_value_c value("77");
    EXPECT_FALSE(conf.set_scenario_data(row_scenario_id, value, false));
    EXPECT_EQ(scenario(row_scenario_id), "42");
    std::string line =
        trace_line(capture.text(), "Unable to reset fixed property \"Scenario.ScenarioID\"");
    EXPECT_TRUE(has_level(line, 4)) << capture.text();
    EXPECT_TRUE(conf.set_scenario_data(row_scenario_id, value, true));
    EXPECT_EQ(scenario(row_scenario_id), "77");
}

TEST_F(scenario_data_test, set_scenario_data_by_name_compares_the_path_without_regard_to_case) {
    load(three_hosts());
    xmc_value_c value("payroll");
    EXPECT_TRUE(conf.set_scenario_data("configdataholder.SCENARIO.scenarioname", value, false));
    EXPECT_EQ(scenario(row_scenario_name), "payroll");
    xmc_value_c id("5");
    EXPECT_FALSE(conf.set_scenario_data("ConfigDataHolder.Scenario.ScenarioID", id, false))
        << "by name as by row, a fixed row needs force";
    EXPECT_TRUE(conf.set_scenario_data("ConfigDataHolder.Scenario.ScenarioID", id, true));
    EXPECT_EQ(scenario(row_scenario_id), "5");
}

TEST_F(scenario_data_test, set_scenario_data_by_a_name_no_row_has_is_false_without_a_trace) {
    load(three_hosts());
    trace_capture_c capture;
    xmc_value_c value("x");
    EXPECT_FALSE(conf.set_scenario_data("ConfigDataHolder.Scenario.NoSuchThing", value, false));
    EXPECT_EQ(capture.text().find("level=4"), std::string::npos) << capture.text();
    EXPECT_STREQ(scenario_conf_c::last_set_failure(), "");
}

TEST_F(scenario_data_test, an_empty_name_matches_the_first_row_missing_from_the_tree) {
    load(three_hosts());
    trace_capture_c capture;
    xmc_value_c value("9");
    // Row 1, GroupID, is the first row whose item the scenario lacks: its path is empty.
    EXPECT_FALSE(conf.set_scenario_data("", value, false));
    EXPECT_NE(
        trace_line(capture.text(), "Unable to find node \"Scenario\" with property \"GroupID\""),
        "")
        << capture.text();
    EXPECT_EQ(conf.find_scenario_row(nullptr), row_group_id);
}

// ---- host setters

TEST_F(scenario_data_test, set_host_data_stores_below_the_host_node_only) {
    load(three_hosts());
    xmc_value_c value("10.9.9.9");
    EXPECT_TRUE(conf.set_host_data(host_row_ip, 2, value));
    EXPECT_EQ(host(host_row_ip, 2), "10.9.9.9");
    EXPECT_EQ(host(host_row_ip, 1), "10.0.0.1");
    EXPECT_EQ(host(host_row_ip, 3), "10.0.0.3");
}

TEST_F(scenario_data_test, set_host_data_on_an_unknown_host_names_its_index) {
    load(three_hosts());
    trace_capture_c capture;
    xmc_value_c value("x");
    EXPECT_FALSE(conf.set_host_data(host_row_host, 9, value));
    EXPECT_TRUE(has_level(trace_line(capture.text(), "Unable to find host node with index 9"), 4))
        << capture.text();
}

TEST_F(scenario_data_test, set_host_data_for_the_manager_on_a_host_row_is_irrelevant) {
    load(three_hosts());
    trace_capture_c capture;
    xmc_value_c value("x");
    EXPECT_FALSE(conf.set_host_data(host_row_host, MANAGER_INDEX, value));
    EXPECT_TRUE(has_level(trace_line(capture.text(), "Node \"CommonHostProps\"  with property "
                                                     "\"Host\"  is irrelevant for Manager Data"),
                          4))
        << capture.text();
    xmc_value_c on("False");
    EXPECT_TRUE(conf.set_host_data(host_row_synch_report_status, MANAGER_INDEX, on));
    xmc_value_c read;
    EXPECT_STREQ(conf.get_host_data(host_row_synch_report_status, MANAGER_INDEX, read).to_text(),
                 "False");
}

TEST_F(scenario_data_test, set_host_data_without_the_property_names_the_host) {
    load(three_hosts());
    trace_capture_c capture;
    xmc_value_c value("64");
    EXPECT_FALSE(conf.set_host_data(host_row_bandwidth, 1, value));
    EXPECT_TRUE(has_level(trace_line(capture.text(), "Unable to find node \"SpecificReplicaProps\" "
                                                     "with property \"BandWidth\", host Master"),
                          4))
        << capture.text();
    xmc_value_c port("1");
    EXPECT_FALSE(conf.set_host_data(3, 2, port)); // Port: no host here has one
    EXPECT_TRUE(has_level(trace_line(capture.text(), "Unable to find node \"CommonHostProps\" "
                                                     "with property \"Port\", Replica #2"),
                          4))
        << capture.text();
    EXPECT_NE(trace_line(capture.text(), "Replica #2").find("scenario_conf_c::_set_host_data"),
              std::string::npos);
}

TEST_F(scenario_data_test, set_host_data_for_every_host_on_spool_directory_sets_all_hosts) {
    load(three_hosts());
    xmc_value_c value("D:/spool");
    EXPECT_TRUE(conf.set_host_data(host_row_spool_directory, value));
    for (std::uint64_t index : {1, 2, 3})
        EXPECT_EQ(host(host_row_spool_directory, index), "D:/spool");
}

TEST_F(scenario_data_test, set_host_data_for_every_host_on_bandwidth_sets_the_replicas_only) {
    load(three_hosts());
    xmc_value_c value("1024");
    // The Master has no SpecificReplicaProps: were it asked, the answer would be false.
    EXPECT_TRUE(conf.set_host_data(host_row_bandwidth, value));
    EXPECT_EQ(host(host_row_bandwidth, 2), "1024");
    EXPECT_EQ(host(host_row_bandwidth, 3), "1024");
}

TEST_F(
    scenario_data_test,
    set_host_data_for_every_host_on_bandwidth_without_replicas_answers_true_and_leaves_the_tree) {
    load(master_only());
    std::string before = saved();
    trace_capture_c capture;
    xmc_value_c value("1024");
    EXPECT_TRUE(conf.set_host_data(host_row_bandwidth, value));
    EXPECT_EQ(saved(), before);
    EXPECT_EQ(capture.text().find("level=4"), std::string::npos) << capture.text();
}

TEST_F(scenario_data_test, set_host_data_for_every_host_goes_on_past_a_failure) {
    load(scenario_with(
        host_node("1", host_node("2") + host_node("4", "", replica_content("1")), "")));
    xmc_value_c value("64");
    EXPECT_FALSE(conf.set_host_data(host_row_bandwidth, value)) << "host 2 has no BandWidth";
    EXPECT_EQ(host(host_row_bandwidth, 4), "64");
}

TEST_F(scenario_data_test,
       set_host_data_by_name_compares_without_regard_to_case_and_only_with_the_host_own_path) {
    load(three_hosts());
    std::string master_path = host_path(host_row_host, 1);
    std::string replica_path = host_path(host_row_host, 2);
    ASSERT_NE(master_path, replica_path);
    EXPECT_EQ(replica_path, "ConfigDataHolder.Scenario.ReplicationTree.ReplNode.ReplNode."
                            "CommonHostProps.Host");
    xmc_value_c value("renamed");
    EXPECT_FALSE(conf.set_host_data(master_path.c_str(), 2, value))
        << "the Master's path is not host 2's";
    EXPECT_EQ(host(host_row_host, 2), "host2");
    std::string upper = replica_path;
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    EXPECT_TRUE(conf.set_host_data(upper.c_str(), 2, value));
    EXPECT_EQ(host(host_row_host, 2), "renamed");
    EXPECT_EQ(host(host_row_host, 1), "host1");
    EXPECT_EQ(host(host_row_host, 3), "host3");
}

TEST_F(scenario_data_test, set_host_data_by_name_for_an_unknown_host_searches_from_the_root) {
    load(three_hosts());
    // From the root the first `Host` found is the Master's.
    EXPECT_EQ(conf.find_host_row(host_path(host_row_host, 1).c_str(), 9), host_row_host);
    EXPECT_EQ(conf.find_host_row(host_path(host_row_host, 2).c_str(), 9),
              scenario_conf_c::not_found);
}

// ---- lists

TEST_F(scenario_data_test, storing_a_list_replaces_the_entries) {
    load(three_hosts());
    xmc_value_c value = list_value({"HKCU/x", "HKCU/y", "HKCU/z"});
    EXPECT_TRUE(conf.set_host_data(host_row_registry_paths, 2, value));
    EXPECT_EQ(host_list(host_row_registry_paths, 2),
              (std::vector<std::string>{"HKCU/x", "HKCU/y", "HKCU/z"}));
    EXPECT_EQ(host_list(host_row_registry_paths, 1),
              (std::vector<std::string>{"HKLM/a1", "HKLM/b1"}));
    // Each entry as the list's own entries stand: label of the list, the text, its type.
    std::string text = saved();
    EXPECT_NE(text.find("<data label=\"RegistryPaths\" val=\"HKCU/y\" type=\"String\"/>"),
              std::string::npos)
        << text;
}

TEST_F(scenario_data_test,
       storing_a_list_with_an_entry_that_does_not_fit_leaves_the_old_entries_whole) {
    load(three_hosts());
    trace_capture_c capture;
    xmc_value_c value = list_value({"HKCU/x", "   ", "HKCU/z"});
    EXPECT_FALSE(conf.set_host_data(host_row_registry_paths, 2, value));
    EXPECT_EQ(host_list(host_row_registry_paths, 2),
              (std::vector<std::string>{"HKLM/a2", "HKLM/b2"}));
    std::string line =
        trace_line(capture.text(), "Unable to set list strings, value \"   \" doesn't fit type");
    EXPECT_TRUE(has_level(line, 4)) << capture.text();
    EXPECT_NE(line.find("scenario_conf_c::_recive_array_chars"), std::string::npos);
    EXPECT_EQ(std::string(scenario_conf_c::last_set_failure()),
              "Unable to set list strings, value \"   \" doesn't fit type\n"
              "Unable to set \"ListRegistryPaths_32.RegistryPaths\" = \"HKCU/x,    , HKCU/z\", "
              "type doesn't fit\n");
    EXPECT_EQ(entries_of(value).size(), 3u) << "the caller's list keeps its form";
}

TEST_F(scenario_data_test, storing_an_empty_list_removes_every_entry_and_succeeds) {
    load(three_hosts());
    xmc_value_c value = list_value({});
    EXPECT_TRUE(conf.set_host_data(host_row_registry_paths, 1, value));
    EXPECT_TRUE(host_list(host_row_registry_paths, 1).empty());
    xmc_value_c read;
    conf.get_host_data(host_row_registry_paths, 1, read);
    EXPECT_FALSE(read.get_error()) << "an empty list is a list";
    EXPECT_EQ(host_list(host_row_registry_paths, 2).size(), 2u);
}

TEST_F(scenario_data_test, storing_a_text_into_a_list_is_refused_as_invalid_input) {
    load(three_hosts());
    trace_capture_c capture;
    xmc_value_c value("HKCU/x");
    EXPECT_FALSE(conf.set_host_data(host_row_registry_paths, 1, value));
    EXPECT_TRUE(
        has_level(trace_line(capture.text(), "Unable to set list strings, input is invalid"), 4))
        << capture.text();
    EXPECT_EQ(host_list(host_row_registry_paths, 1).size(), 2u);
}

TEST_F(scenario_data_test, a_list_without_its_element_type_fits_nothing_unless_unchecked) {
    load(three_hosts());
    xml_item_c* list_item = nullptr;
    labeled_value_c* val =
        conf.find_property("ListRegistryPaths_32", "RegistryPaths",
                           conf.host_tree->find_host_node(1)->host_item, &list_item);
    ASSERT_NE(val, nullptr);
    list_item->attributes.remove_and_delete(1); // `val`, second after `label`
    ASSERT_EQ(list_item->find_attribute("val"), nullptr);
    xmc_value_c value = list_value({"HKCU/x"});
    EXPECT_FALSE(conf._recive_array_chars(list_item, value, false)) << "no type is Any";
    EXPECT_TRUE(conf._recive_array_chars(list_item, value, true));
    ASSERT_NE(list_item->first_child_item(), nullptr);
    EXPECT_STREQ(list_item->first_child_item()->find_attribute("val")->to_text(), "HKCU/x");
    EXPECT_FALSE(conf._recive_array_chars(nullptr, value, true));
}

// ---- group data

TEST_F(scenario_data_test, group_data_reads_and_the_fixed_group_id_needs_force) {
    load_group();
    xmc_value_c value;
    EXPECT_STREQ(conf.get_group_data(group_row_group_name, value).to_text(), "payroll");
    EXPECT_STREQ(conf.get_group_data(group_row_exec_failover, value).to_text(), "True");
    EXPECT_STREQ(value.type_name, "Bool");
    trace_capture_c capture;
    xmc_value_c id("8");
    EXPECT_FALSE(conf.set_group_data(group_row_group_id, id, false));
    EXPECT_TRUE(has_level(
        trace_line(capture.text(), "Unable to reset fixed property \"Group.GroupID\""), 4));
    EXPECT_STREQ(conf.get_group_data(group_row_group_id, value).to_text(), "7");
    EXPECT_TRUE(conf.set_group_data(group_row_group_id, id, true));
    EXPECT_STREQ(conf.get_group_data(group_row_group_id, value).to_text(), "8");
    xmc_value_c bad("abc");
    EXPECT_FALSE(conf.set_group_data(group_row_group_id, bad, true));
    EXPECT_TRUE(has_level(
        trace_line(capture.text(), "Unable to set \"Group.GroupID\" = \"abc\", type doesn't fit"),
        4));
}

TEST_F(scenario_data_test, get_scenario_in_group_reads_the_member_entry) {
    load_group();
    xmc_value_c value;
    EXPECT_STREQ(conf.get_scenario_in_group(42, group_scenario_row_descendant, value).to_text(),
                 "6");
    EXPECT_STREQ(conf.get_scenario_in_group(43, group_scenario_row_descendant, value).to_text(),
                 "5");
    EXPECT_STREQ(conf.get_scenario_in_group(42, group_scenario_row_is_primary, value).to_text(),
                 "True")
        << "IsPrimary is read through the failover list";
}

TEST_F(scenario_data_test,
       get_scenario_in_group_for_an_unknown_scenario_id_leaves_the_value_reset_without_an_error) {
    load_group();
    trace_capture_c capture;
    xmc_value_c value("left over");
    conf.get_scenario_in_group(99, group_scenario_row_descendant, value);
    EXPECT_EQ(value.lookup_failed, 0);
    EXPECT_STREQ(value.error_text.c_str(), "");
    EXPECT_EQ(value.get_type(), value_c::type_undefined);
    EXPECT_EQ(value.type_name, nullptr);
    EXPECT_STREQ(value.to_text(), "");
    EXPECT_TRUE(has_level(trace_line(capture.text(), "Unable to find scenario 99"), 4))
        << capture.text();
}

TEST_F(scenario_data_test, get_host_in_group_reads_the_master_and_the_replica_of_a_member) {
    load_group();
    xmc_value_c value;
    EXPECT_STREQ(conf.get_host_in_group(42, group_host_row_host, true, value).to_text(), "m42");
    EXPECT_STREQ(conf.get_host_in_group(42, group_host_row_host, false, value).to_text(), "r42");
    EXPECT_STREQ(conf.get_host_in_group(42, group_host_row_index, false, value).to_text(), "2");
    trace_capture_c capture;
    xmc_value_c none("x");
    conf.get_host_in_group(99, group_host_row_host, true, none);
    EXPECT_EQ(none.lookup_failed, 0);
    EXPECT_TRUE(has_level(trace_line(capture.text(), "Unable to find scenario 99"), 4));
}

TEST_F(scenario_data_test, a_group_list_search_runs_on_past_the_end_of_its_list) {
    load_group();
    // Member 43 knows only its Master; the search for its replica goes on into member 42's
    // list, which stands after it, and finds that one's.
    xmc_value_c value;
    EXPECT_STREQ(conf.get_host_in_group(43, group_host_row_host, false, value).to_text(), "r42");
    // Member 42 is the last: past its replica nothing is left for an index 3.
    xml_item_c* member = conf._find_group_list_info(0, xmc_value_c(42ull), nullptr);
    ASSERT_NE(member, nullptr);
    EXPECT_EQ(conf._find_group_list_info(1, xmc_value_c(3ull), member), nullptr);
}

TEST_F(scenario_data_test, a_group_key_equal_to_the_empty_value_returns_the_list_item_itself) {
    load_group();
    xml_item_c* list_item = conf._find_group_list_info(0, xmc_value_c(), nullptr);
    ASSERT_NE(list_item, nullptr);
    EXPECT_STREQ(xmc_tree_n::label_of(list_item), "ScenarioList");
    EXPECT_EQ(conf._find_group_list_info(0, xmc_value_c(""), nullptr), list_item);
    xml_item_c* entry = conf._find_group_list_info(0, xmc_value_c(42ull), nullptr);
    ASSERT_NE(entry, nullptr);
    EXPECT_STREQ(xmc_tree_n::label_of(entry), "ScenarioInfo");
    EXPECT_EQ(conf._find_group_list_info(5, xmc_value_c(42ull), nullptr), nullptr)
        << "no list has row 5";
}

TEST_F(scenario_data_test, set_scenario_in_group_checks_the_type_unless_told_not_to) {
    load_group();
    xmc_value_c bad("six");
    EXPECT_FALSE(conf.set_scenario_in_group(42, group_scenario_row_descendant, bad, false));
    xmc_value_c value;
    EXPECT_STREQ(conf.get_scenario_in_group(42, group_scenario_row_descendant, value).to_text(),
                 "6");
    EXPECT_TRUE(conf.set_scenario_in_group(42, group_scenario_row_descendant, bad, true));
    EXPECT_STREQ(conf.get_scenario_in_group(42, group_scenario_row_descendant, value).to_text(),
                 "six");
    trace_capture_c capture;
    xmc_value_c primary("False");
    EXPECT_FALSE(conf.set_scenario_in_group(42, group_scenario_row_is_primary, primary, false))
        << "a setter finds the member through the member list, whose entry has no IsPrimary";
    EXPECT_TRUE(has_level(trace_line(capture.text(), "Unable to find node \"ScenarioFailoverInfo\" "
                                                     "with property \"IsPrimary\""),
                          4));
    EXPECT_FALSE(conf.set_scenario_in_group(99, group_scenario_row_descendant, primary, true));
    EXPECT_TRUE(has_level(trace_line(capture.text(), "Unable to find scenario 99"), 4));
}

// ---- findings about rows

TEST_F(scenario_data_test, report_helpers_name_the_row) {
    load(three_hosts());
    xmc_validity_c validity;
    conf.report_scenario_data(validity, row_scenario_name, 12);
    conf.report_scenario_data(validity, row_group_id, 12); // not in the tree: nothing
    conf.report_host_data(validity, host_row_host, 2, 5);
    conf.report_host_data(validity, host_row_bandwidth, 1, 3); // not below the Master
    conf.report_host_data_row(validity, host_row_ip, 24, 3);   // code 24, host 3
    ASSERT_EQ(validity.findings.get_count(), 4u);
    ch_data_s* finding = validity.findings.first();
    EXPECT_STREQ(finding->name.c_str(), "ConfigDataHolder.Scenario.ScenarioName");
    EXPECT_EQ(finding->host, 0u);
    finding = validity.findings.next(finding);
    EXPECT_STREQ(finding->name.c_str(), "Host.CommonHostProps.ReplNode");
    EXPECT_EQ(finding->host, 2u);
    EXPECT_EQ(finding->item, ch_data_s::no_item);
    EXPECT_EQ(finding->code, 5u);
    finding = validity.findings.next(finding);
    EXPECT_STREQ(finding->name.c_str(), "SpecificReplicaProps.BandWidth");
    EXPECT_EQ(finding->host, 1u);
    finding = validity.findings.next(finding);
    EXPECT_STREQ(finding->name.c_str(), "CommonHostProps.IP");
    EXPECT_EQ(finding->host, 3u);
    EXPECT_EQ(finding->code, 24u);
}

// ---- which lock each operation takes

namespace {

// Runs `work` on another thread and says whether it ended while the caller holds a lock.
// The wait is a bound against a hang, not a measure: work that does not wait ends at once.
template <class F> bool ends_while_held(F work) {
    std::future<void> done = std::async(std::launch::async, work);
    return done.wait_for(std::chrono::seconds(60)) == std::future_status::ready;
}

} // namespace

TEST_F(scenario_data_test, scenario_and_host_access_never_take_the_group_lock) {
    load(three_hosts());
    single_writer_lock_c writing(conf.group_lock);
    EXPECT_TRUE(ends_while_held([&] {
        xmc_value_c value("x");
        conf.get_scenario_data(row_scenario_name, value);
        conf.get_host_data(host_row_host, 2, value);
        conf.set_scenario_data(row_scenario_name, value, false);
        conf.set_host_data(host_row_host, 2, value);
        conf.set_host_data(host_row_host, value);
    }));
}

TEST_F(scenario_data_test, group_access_never_takes_the_scenario_lock) {
    load_group();
    single_writer_lock_c writing(conf.scenario_lock);
    EXPECT_TRUE(ends_while_held([&] {
        xmc_value_c value("x");
        conf.get_group_data(group_row_group_name, value);
        conf.get_scenario_in_group(42, group_scenario_row_descendant, value);
        conf.get_host_in_group(42, group_host_row_host, true, value);
        conf.set_group_data(group_row_group_name, value, false);
        conf.set_scenario_in_group(42, group_scenario_row_descendant, value, true);
    }));
}

TEST_F(scenario_data_test, getters_read_beside_another_reader) {
    load(three_hosts());
    multi_reader_lock_c reading(conf.scenario_lock);
    multi_reader_lock_c reading_group(conf.group_lock);
    EXPECT_TRUE(ends_while_held([&] {
        xmc_value_c value;
        conf.get_scenario_data(row_scenario_name, value);
        conf.get_host_data(host_row_host, 1, value);
        conf.get_group_data(group_row_group_name, value);
        conf.get_scenario_in_group(42, group_scenario_row_descendant, value);
        conf.get_host_in_group(42, group_host_row_host, true, value);
    }));
}
