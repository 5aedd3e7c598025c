// The feature rules of scenario_conf_c: the combinations of settings that only have meaning for
// some products, applications and modes, each with its trace words and finding.
#include "configuration/scenario_conf.h"

#include "common/test_support.h"
#include "configuration/scenario_documents.h"
#include "configuration/scenario_loader.h"
#include "configuration/validity_findings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace sd = scenario_documents;
using namespace validity_findings;
using test_support::trace_capture_c;

namespace {

std::string number(const std::string& label, const std::string& value) {
    return sd::data(label, value, "Number");
}

std::string host(const std::string& index, const std::string& content = "",
                 const std::string& replicas = "") {
    return sd::object("ReplNode", "5000", sd::host_props(index) + content + replicas);
}

struct scenario_s {
    std::string master;
    std::string extra = "";
    std::string product = "Ha";
    std::string application = "FileServer";
    std::string config_mode = "Regular";
};

std::string stored(const scenario_s& s) {
    return sd::stored(sd::scenario(sd::scenario_data(s.product, s.application, s.config_mode),
                                   s.master, s.extra));
}

// A registry list of the host with `count` keys.
std::string registry(const std::string& bits, int count) {
    std::string list = "<data label=\"RegistryPaths\" val=\"Text\" type=\"MultiEntry\">";
    for (int i = 0; i < count; ++i)
        list += sd::data("RegistryPaths", "HKLM\\Software\\Key" + std::to_string(i), "Text");
    return sd::object("ListRegistryPaths_" + bits, "250", list + "</data>");
}

std::string registry_lists(int keys_32, int keys_64) {
    return registry("32", keys_32) + registry("64", keys_64);
}

std::string mapping(const std::string& replica_name, const std::string& replica_uuid) {
    return sd::object("VirtualNetworkMapping", "4450",
                      sd::data("VirtualMachineUUID", "vm-1") +
                          sd::data("ReplicaVirtualNetworkName", replica_name) +
                          sd::data("ReplicaVirtualNetworkUUID", replica_uuid));
}

std::string scenario_mappings(const std::string& mappings) {
    return object("Switchover",
                  "<data label=\"ListVirtualNetworkMappings\" val=\"4450\" type=\"MultiEntry\">" +
                      mappings + "</data>");
}

std::string replica_mappings(const std::string& mappings) {
    return sd::object("SpecificReplicaProps", "150",
                      "<title label=\"VirtualMachine\"><data "
                      "label=\"ListVirtualNetworkMappingsSwitchover\" val=\"4460\" "
                      "type=\"MultiEntry\">" +
                          mappings + "</data></title>");
}

std::string trigger(bool file_on, bool script_on) {
    return object("TriggerFile", object("TrigFileScript", "", script_on ? "True" : "False"),
                  file_on ? "True" : "False");
}

class feature_rules_test : public ::testing::Test {
  protected:
    void load(const scenario_s& s) {
        std::string text = stored(s);
        scenario_load_result_s result =
            scenario_loader_n::load_text(conf, text.data(), text.size(), "test.xml");
        ASSERT_TRUE(result.ok()) << text_of(result.message);
    }
    bool rules() { return conf._check_specific_features(validity); }
    std::vector<finding_s> findings() { return findings_of(validity); }
    std::vector<finding_s> with_code(std::uint32_t code) {
        std::vector<finding_s> some;
        for (const finding_s& f : findings())
            if (f.code == code) some.push_back(f);
        return some;
    }

    scenario_conf_c conf;
    xmc_validity_c validity;
};

} // namespace

// ---- 1: CDP ----------------------------------------------------------------------------------

TEST_F(feature_rules_test, a_cdp_scenario_without_its_database_object_is_code_3_on_external) {
    load({host("1", "", host("2")), flag("IsCDPScenario", true)});
    trace_capture_c capture;
    EXPECT_FALSE(rules());
    EXPECT_EQ(findings(), (std::vector<finding_s>{{3, 0, "External"}}));
    EXPECT_NE(line_with(capture.text(), "Cdp scenario is missing corresponding DB object"), "")
        << capture.text();
}

TEST_F(feature_rules_test, a_scenario_that_is_not_cdp_needs_no_database_object) {
    load({host("1", "", host("2")), flag("IsCDPScenario", false)});
    EXPECT_TRUE(rules());
    EXPECT_TRUE(findings().empty());
}

// ---- 2: share management -------------------------------------------------------------------

TEST_F(feature_rules_test, the_share_management_rule_never_fires) {
    for (bool automatic : {false, true}) {
        for (bool shares : {false, true}) {
            scenario_conf_c one;
            std::string text = stored(
                {host("1", "", host("2")),
                 object("Switchover", flag("Automatic", automatic)) + flag("BuildShares", shares)});
            ASSERT_TRUE(scenario_loader_n::load_text(one, text.data(), text.size(), "t").ok());
            xmc_validity_c found;
            EXPECT_TRUE(one._check_specific_features(found)) << automatic << shares;
            EXPECT_EQ(found.findings.get_count(), 0u) << automatic << shares;
        }
    }
}

// ---- 3: heartbeat ----------------------------------------------------------------------------

TEST_F(feature_rules_test, heartbeat_10_with_alive_30_passes) {
    load({host("1", "", host("2")),
          object("Switchover", number("IsAliveTimeout", "30") + number("HeartbeatTimeout", "10"))});
    EXPECT_TRUE(rules());
    EXPECT_TRUE(findings().empty());
}

TEST_F(feature_rules_test, heartbeat_10_with_alive_29_fails_with_code_25) {
    load({host("1", "", host("2")),
          object("Switchover", number("IsAliveTimeout", "29") + number("HeartbeatTimeout", "10"))});
    trace_capture_c capture;
    EXPECT_FALSE(rules());
    EXPECT_EQ(findings(), (std::vector<finding_s>{
                              {25, 0, "ConfigDataHolder.Scenario.Switchover.HeartbeatTimeout"}}));
    EXPECT_NE(line_with(capture.text(),
                        "Value of HeartbeatTimeout surpasses permitted limit 1/3 * IsAliveTimeout"),
              "");
}

TEST_F(feature_rules_test, the_heartbeat_product_wraps_around_in_32_bits) {
    // 1431655766 * 3 = 2^32 + 2: read in 32 bits it is 2, below 10.
    load({host("1", "", host("2")),
          object("Switchover",
                 number("IsAliveTimeout", "10") + number("HeartbeatTimeout", "1431655766"))});
    EXPECT_TRUE(rules());
}

TEST_F(feature_rules_test, the_heartbeat_rule_is_for_high_availability_only) {
    load({host("1", "", host("2")),
          object("Switchover", number("IsAliveTimeout", "1") + number("HeartbeatTimeout", "10")),
          "Dr"});
    EXPECT_TRUE(rules());
}

TEST_F(feature_rules_test, missing_timeouts_read_0_and_pass) {
    load({host("1", "", host("2"))});
    EXPECT_TRUE(rules());
}

// ---- 4: registry -----------------------------------------------------------------------------

TEST_F(feature_rules_test, registry_synchronisation_without_keys_on_the_master_is_code_32) {
    load({host("1", registry_lists(0, 0), host("2", registry_lists(3, 3))),
          flag("RegistrySynchronization", true)});
    trace_capture_c capture;
    EXPECT_FALSE(rules());
    // The replicas are not looked at.
    EXPECT_EQ(findings(),
              (std::vector<finding_s>{{32, 1, "RegistryPaths.ListRegistryPaths_32.ReplNode"}}));
    EXPECT_NE(line_with(capture.text(), "The list of Registry Keys is empty, while "
                                        "RegistrySynchronization parameter is True"),
              "");
}

TEST_F(feature_rules_test, keys_in_the_64_bit_list_only_pass_the_emptiness_test) {
    load({host("1", registry_lists(0, 2), host("2", registry_lists(0, 2))),
          flag("RegistrySynchronization", true)});
    EXPECT_TRUE(rules());
    EXPECT_TRUE(findings().empty());
}

TEST_F(feature_rules_test, a_replica_must_then_have_an_empty_32_bit_list) {
    load({host("1", registry_lists(0, 2), host("2", registry_lists(1, 2))),
          flag("RegistrySynchronization", true)});
    trace_capture_c capture;
    EXPECT_FALSE(rules());
    EXPECT_EQ(findings(),
              (std::vector<finding_s>{{29, 2, "RegistryPaths.ListRegistryPaths_32.ReplNode"}}));
    EXPECT_NE(
        line_with(capture.text(), "Host #2, Number of Registry Keys on Master and Replica differ"),
        "");
}

TEST_F(feature_rules_test, a_replica_must_then_have_as_many_64_bit_keys) {
    load({host("1", registry_lists(0, 2),
               host("2", registry_lists(0, 1)) + host("3", registry_lists(0, 2))),
          flag("RegistrySynchronization", true)});
    EXPECT_FALSE(rules());
    EXPECT_EQ(findings(),
              (std::vector<finding_s>{{29, 2, "RegistryPaths.ListRegistryPaths_64.ReplNode"}}));
}

TEST_F(feature_rules_test, registry_lists_are_compared_by_length_only) {
    // The replica's one key is another key than the Master's: only the counts are compared.
    std::string other_key =
        sd::object("ListRegistryPaths_32", "250",
                   "<data label=\"RegistryPaths\" val=\"Text\" type=\"MultiEntry\">" +
                       sd::data("RegistryPaths", "HKCU\\Elsewhere", "Text") + "</data>");
    load({host("1", registry_lists(1, 0),
               host("2", other_key + registry("64", 0)) + host("3", registry_lists(2, 0))),
          flag("RegistrySynchronization", true)});
    EXPECT_FALSE(rules());
    EXPECT_EQ(findings(),
              (std::vector<finding_s>{{29, 3, "RegistryPaths.ListRegistryPaths_32.ReplNode"}}));
}

TEST_F(feature_rules_test, registry_synchronisation_off_asks_nothing) {
    load({host("1", registry_lists(0, 0), host("2", registry_lists(4, 4))),
          flag("RegistrySynchronization", false)});
    EXPECT_TRUE(rules());
}

// ---- 5: scheduled replication ----------------------------------------------------------------

std::string scheduling() { return sd::data("ReplicationMode", "Scheduling", "ReplicationMode"); }

TEST_F(feature_rules_test, a_master_with_data_rewind_on_is_not_reported) {
    std::string rewind = object("SpecificReplicaProps", flag("DataRewind", true));
    load({host("1", rewind, host("2")), scheduling()});
    EXPECT_TRUE(rules());
    EXPECT_TRUE(findings().empty());
}

TEST_F(feature_rules_test, a_replica_with_data_rewind_under_scheduling_is_code_26) {
    std::string rewind = object("SpecificReplicaProps", flag("DataRewind", true));
    load({host("1", "", host("2", rewind)), scheduling()});
    trace_capture_c capture;
    EXPECT_FALSE(rules());
    EXPECT_EQ(findings(), (std::vector<finding_s>{{26, 2, "SpecificReplicaProps.DataRewind"}}));
    EXPECT_NE(line_with(capture.text(), "Host #2, property DataRewind must be set Off if "
                                        "ReplicationMode is set as Scheduling"),
              "")
        << capture.text();
}

TEST_F(feature_rules_test, suspend_and_vetted_failback_schedulers_under_scheduling_are_code_28) {
    load({host("1", "",
               host("2", object("SuspendScheduler", "", "True")) +
                   host("3", object("SchedulerVF", "", "True"))),
          scheduling()});
    EXPECT_FALSE(rules());
    EXPECT_EQ(findings(), (std::vector<finding_s>{{28, 2, "SuspendScheduler.status"},
                                                  {28, 3, "SchedulerVF.status"}}));
}

TEST_F(feature_rules_test, without_scheduling_the_schedulers_may_run) {
    load({host("1", "",
               host("2", object("SpecificReplicaProps", flag("DataRewind", true)) +
                             object("SuspendScheduler", "", "True"))),
          sd::data("ReplicationMode", "Online", "ReplicationMode")});
    EXPECT_TRUE(rules());
}

// ---- 6: trigger files ------------------------------------------------------------------------

TEST_F(feature_rules_test, a_trigger_file_without_its_script_is_code_27_on_any_host) {
    load({host("1", trigger(true, false),
               host("2", trigger(true, true)) + host("3", trigger(true, false)))});
    trace_capture_c capture;
    EXPECT_FALSE(rules());
    EXPECT_EQ(findings(), (std::vector<finding_s>{{27, 1, "TrigFileScript.status"},
                                                  {27, 3, "TrigFileScript.status"}}));
    EXPECT_NE(line_with(capture.text(),
                        "Host #1, use of Trigger File requires corresponding Script to be set On"),
              "");
}

TEST_F(feature_rules_test, a_trigger_file_off_needs_no_script) {
    load({host("1", trigger(false, false), host("2"))});
    EXPECT_TRUE(rules());
}

// ---- 7: virtual network mappings -------------------------------------------------------------

TEST_F(feature_rules_test, a_hyper_v_scenario_without_the_list_passes) {
    load({host("1", "", host("2")), "", "Ha", "HyperV"});
    EXPECT_TRUE(rules());
    EXPECT_TRUE(findings().empty());
}

TEST_F(feature_rules_test, a_hyper_v_mapping_without_its_whole_target_is_code_30) {
    load({host("1", "", host("2")), scenario_mappings(mapping("net", "uuid") + mapping("net", "")),
          "Ha", "HyperV"});
    trace_capture_c capture;
    EXPECT_FALSE(rules());
    EXPECT_EQ(findings(),
              (std::vector<finding_s>{{30, 0, "Switchover.VirtualNetworkMappingsEdit"}}));
    EXPECT_NE(
        line_with(capture.text(), "Hyper-V HA scenario has unassigned virtual network mapping"),
        "");
}

TEST_F(feature_rules_test, hyper_v_good_mappings_wipe_out_an_earlier_failure_but_not_its_finding) {
    load({host("1", trigger(true, false), host("2")), scenario_mappings(mapping("net", "uuid")),
          "Ha", "HyperV"});
    EXPECT_TRUE(rules());
    EXPECT_EQ(findings(), (std::vector<finding_s>{{27, 1, "TrigFileScript.status"}}));
}

TEST_F(feature_rules_test, the_mapping_rule_is_for_high_availability_only) {
    load({host("1", "", host("2")), scenario_mappings(mapping("", "")), "Dr", "HyperV"});
    EXPECT_TRUE(rules());
}

TEST_F(feature_rules_test, a_full_system_replica_with_an_empty_list_is_code_34) {
    load({host("1", "", host("2", replica_mappings(""))), "", "Ha", "FullSystem"});
    trace_capture_c capture;
    EXPECT_FALSE(rules());
    EXPECT_EQ(
        findings(),
        (std::vector<finding_s>{
            {34, 2, "SpecificReplicaProps.VirtualMachine.VirtualNetworkMappingsEditSwitchover"}}));
    EXPECT_NE(line_with(capture.text(), "P2V HA scenario has unassigned virtual network mapping"),
              "");
}

TEST_F(feature_rules_test, a_full_system_replica_needs_one_mapping_with_any_part_of_its_target) {
    load({host("1", "",
               host("2", replica_mappings(mapping("", "") + mapping("net", ""))) +
                   host("3", replica_mappings(mapping("", "")))),
          "", "Ha", "FullSystem"});
    EXPECT_FALSE(rules());
    EXPECT_EQ(
        findings(),
        (std::vector<finding_s>{
            {34, 3, "SpecificReplicaProps.VirtualMachine.VirtualNetworkMappingsEditSwitchover"}}));
}

TEST_F(feature_rules_test, a_full_system_replica_without_the_list_passes) {
    load({host("1", "", host("2")), "", "Ha", "FullSystem"});
    EXPECT_TRUE(rules());
}

// ---- 8: system state -------------------------------------------------------------------------

std::string retain(bool on) {
    return object("SpecificReplicaProps", flag("RetainSystemState", on));
}

TEST_F(feature_rules_test, system_state_kept_only_by_a_replica_of_a_replica_fails_with_code_31) {
    load({host("1", "", host("2", retain(false), host("3", retain(true)))),
          flag("SystemStateProtection", true)});
    trace_capture_c capture;
    EXPECT_FALSE(rules());
    EXPECT_EQ(findings(), (std::vector<finding_s>{{31, 0, "SystemStateProtection"}}));
    EXPECT_NE(line_with(capture.text(), "System state snapshot is created, but there are no "
                                        "replicas retain system state snapshots"),
              "");
}

TEST_F(feature_rules_test, system_state_kept_by_a_direct_replica_passes) {
    load({host("1", "", host("2", retain(false)) + host("4", retain(true))),
          flag("SystemStateProtection", true)});
    EXPECT_TRUE(rules());
}

TEST_F(feature_rules_test, in_assessment_mode_rule_8_does_not_run_and_the_others_do) {
    load({host("1", trigger(true, false), host("2", retain(false))),
          flag("SystemStateProtection", true) + flag("IsCDPScenario", true), "Ha", "FileServer",
          "Assessment"});
    EXPECT_FALSE(rules());
    EXPECT_EQ(findings(),
              (std::vector<finding_s>{{3, 0, "External"}, {27, 1, "TrigFileScript.status"}}));
}

// ---- through check_xmc_validity --------------------------------------------------------------

TEST_F(feature_rules_test, the_rules_run_last_in_the_validity_check) {
    load({host("1", trigger(true, false), host("2"))});
    EXPECT_FALSE(conf.check_xmc_validity(validity));
    ASSERT_FALSE(findings().empty());
    EXPECT_EQ(findings().back(), (finding_s{27, 1, "TrigFileScript.status"}));
}
