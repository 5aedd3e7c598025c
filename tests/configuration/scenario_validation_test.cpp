// The two depths of a scenario's check: check_consistency (the tree's shape, told by the trace)
// and check_xmc_validity (the general walk, the uniqueness and compression rules and the order
// of the steps, told by findings).
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

// A host: its `CommonHostProps` with `Index` (and `props`), then `content`, then its replicas.
std::string host(const std::string& index, const std::string& content = "",
                 const std::string& replicas = "", const std::string& props = "") {
    return sd::object("ReplNode", "5000", sd::host_props(index, props) + content + replicas);
}

std::string stored(const std::string& master, const std::string& extra = "",
                   const std::string& config_mode = "Regular",
                   const std::string& application = "FileServer",
                   const std::string& product = "Ha") {
    return sd::stored(
        sd::scenario(sd::scenario_data(product, application, config_mode), master, extra));
}

// The Master with one replica, each as given.
std::string two_hosts(const std::string& master_content, const std::string& replica_content) {
    return host("1", master_content, host("2", replica_content));
}

class scenario_validation_test : public ::testing::Test {
  protected:
    void load(const std::string& text) {
        scenario_load_result_s result =
            scenario_loader_n::load_text(conf, text.data(), text.size(), "test.xml");
        ASSERT_TRUE(result.ok()) << text_of(result.message);
    }
    bool validate() { return conf.check_xmc_validity(validity); }
    std::vector<finding_s> with_code(std::uint32_t code) {
        std::vector<finding_s> some;
        for (const finding_s& f : findings_of(validity))
            if (f.code == code) some.push_back(f);
        return some;
    }
    std::vector<finding_s> named(const std::string& suffix) {
        std::vector<finding_s> some;
        for (const finding_s& f : findings_of(validity))
            if (f.name.size() >= suffix.size() &&
                f.name.compare(f.name.size() - suffix.size(), suffix.size(), suffix) == 0)
                some.push_back(f);
        return some;
    }

    scenario_conf_c conf;
    xmc_validity_c validity;
};

} // namespace

// ---- check_xmc_validity: the order of its steps ------------------------------------------

TEST_F(scenario_validation_test, a_root_without_children_gives_exactly_one_finding_code_0) {
    conf.config_mode = 1;
    conf.product = 1;
    conf.application = 0;
    ASSERT_TRUE(conf.tree->load_from_str(
        "<?xml version=\"1.0\"?><object label=\"ConfigDataHolder\" id=\"1\"/>"));
    EXPECT_FALSE(validate());
    EXPECT_EQ(findings_of(validity), (std::vector<finding_s>{{0, 0, "Scenario"}}));
}

TEST_F(scenario_validation_test, a_tree_without_root_gives_the_same_finding) {
    conf.config_mode = 1;
    conf.product = 1;
    conf.application = 0;
    EXPECT_FALSE(validate());
    EXPECT_EQ(findings_of(validity), (std::vector<finding_s>{{0, 0, "Scenario"}}));
}

TEST_F(scenario_validation_test, fields_not_set_are_each_a_finding_in_order) {
    conf.config_mode = scenario_conf_n::config_mode_not_set;
    ASSERT_TRUE(conf.tree->load_from_str(
        "<?xml version=\"1.0\"?><object label=\"ConfigDataHolder\" id=\"1\"/>"));
    EXPECT_FALSE(validate());
    EXPECT_EQ(findings_of(validity), (std::vector<finding_s>{{3, 0, "Scenario.ConfigMode"},
                                                             {3, 0, "Scenario.Product"},
                                                             {3, 0, "Scenario.Application"},
                                                             {0, 0, "Scenario"}}));
}

TEST_F(scenario_validation_test, an_application_that_is_no_item_is_a_finding) {
    load(stored(two_hosts("", ""), "", "Regular", "Banana"));
    EXPECT_FALSE(validate());
    // The field is not set, and the value does not fit its type.
    EXPECT_EQ(
        named("Scenario.Application"),
        (std::vector<finding_s>{{3, 0, "Scenario.Application"},
                                {12, 0, "ConfigDataHolder.Scenario.Application", "Application"}}));
}

TEST_F(scenario_validation_test, findings_already_in_the_list_stay_first) {
    add_record(validity, "caller's own", 36);
    load(stored(host("1")));
    validate();
    ASSERT_GE(findings_of(validity).size(), 2u);
    EXPECT_EQ(findings_of(validity)[0].name, "caller's own");
}

TEST_F(scenario_validation_test, a_regular_scenario_without_replica_runs_none_of_the_host_rules) {
    load(stored(host("1")));
    EXPECT_FALSE(validate());
    // The Master has no root directories, but the root directory rule does not run.
    EXPECT_EQ(findings_of(validity), (std::vector<finding_s>{{3, 2, "Scenario.ReplNode"}}));
}

TEST_F(scenario_validation_test, assessment_mode_without_replica_runs_all_host_rules) {
    load(stored(host("1"), "", "Assessment"));
    EXPECT_FALSE(validate());
    EXPECT_TRUE(named("Scenario.ReplNode").empty());
    // The root directory rule ran: the Master has none.
    EXPECT_EQ(named("RootDir"), (std::vector<finding_s>{{3, 1, "RootDir", "", 0}}));
}

TEST_F(scenario_validation_test, a_well_formed_scenario_with_a_replica_is_valid) {
    load(stored(host("1", "", host("2", "", "", sd::root_dirs(sd::root_dir("D:\\mirror"))),
                     sd::root_dirs(sd::root_dir("C:\\data")))));
    EXPECT_TRUE(validate()) << ::testing::PrintToString(findings_of(validity));
    EXPECT_TRUE(findings_of(validity).empty());
    EXPECT_TRUE(conf.check_consistency());
}

// ---- the general walk ----------------------------------------------------------------------

TEST_F(scenario_validation_test, an_item_without_attributes_is_reported_but_keeps_consistency) {
    load(stored(two_hosts("", ""), "<object/>"));
    trace_capture_c capture;
    EXPECT_TRUE(conf.check_consistency());
    std::string line = line_with(capture.text(), "ConfigDataHolder.Scenario.object");
    EXPECT_NE(line, "") << capture.text();
    EXPECT_NE(line.find("scenario_conf_c::check_consistency"), std::string::npos) << line;
    // The deeper check passes it on to its children without a finding of its own.
    validate();
    EXPECT_TRUE(named("Scenario.object").empty());
}

TEST_F(scenario_validation_test, a_switched_off_object_is_not_checked_inside_by_the_validity) {
    std::string bad = sd::data("Retries", "many", "Number");
    load(stored(two_hosts("", ""), object("Notify", bad, "False")));
    validate();
    EXPECT_TRUE(named("Retries").empty()) << ::testing::PrintToString(findings_of(validity));
}

TEST_F(scenario_validation_test, a_switched_on_object_is_checked_inside) {
    std::string bad = sd::data("Retries", "many", "Number");
    load(stored(two_hosts("", ""), object("Notify", bad, "True")));
    EXPECT_FALSE(validate());
    EXPECT_EQ(
        named("Retries"),
        (std::vector<finding_s>{{12, 0, "ConfigDataHolder.Scenario.Notify.Retries", "Number"}}));
}

TEST_F(scenario_validation_test, check_consistency_walks_into_a_switched_off_object) {
    // A data item without a type inside an object that is off.
    load(stored(two_hosts("", ""),
                object("Notify", "<data label=\"Retries\" val=\"1\"/>", "False")));
    trace_capture_c capture;
    EXPECT_FALSE(conf.check_consistency());
    EXPECT_NE(line_with(capture.text(), "Notify.Retries"), "") << capture.text();
}

TEST_F(scenario_validation_test, check_consistency_takes_unknown_attributes_as_faults) {
    load(stored(two_hosts("", ""), "<data label=\"X\" val=\"1\" type=\"Number\" colour=\"red\"/>"));
    EXPECT_FALSE(conf.check_consistency());
    // The deeper check is not strict about them.
    validate();
    EXPECT_TRUE(named("Scenario.X").empty()) << ::testing::PrintToString(findings_of(validity));
}

TEST_F(scenario_validation_test, check_consistency_answers_false_for_an_item_of_no_kind) {
    load(stored(two_hosts("", ""), "<commnent label=\"note\"/>"));
    EXPECT_FALSE(conf.check_consistency());
}

TEST_F(scenario_validation_test, check_consistency_without_tree_is_false) {
    delete conf.tree;
    conf.tree = nullptr;
    EXPECT_FALSE(conf.check_consistency());
    conf.tree = new mixed_xmc_xml_tree_c;
}

TEST_F(scenario_validation_test, a_value_of_the_wrong_type_gets_code_12_and_then_the_empty_test) {
    load(stored(two_hosts("", ""), sd::data("Retries", "many", "Number") +
                                       "<data label=\"Targets\" val=\"\" type=\"Number\" "
                                       "mandatory=\"True\"/>"));
    EXPECT_FALSE(validate());
    EXPECT_EQ(named("Scenario.Retries"),
              (std::vector<finding_s>{{12, 0, "ConfigDataHolder.Scenario.Retries", "Number"}}));
    EXPECT_EQ(named("Scenario.Targets"),
              (std::vector<finding_s>{{12, 0, "ConfigDataHolder.Scenario.Targets", "Number"},
                                      {5, 0, "ConfigDataHolder.Scenario.Targets", "val"}}));
}

TEST_F(scenario_validation_test, an_empty_mandatory_list_gets_code_12_and_then_code_5) {
    // An empty list whose element type is empty does not fit MultiEntry, then is empty.
    load(stored(two_hosts("", ""),
                "<data label=\"Servers\" val=\"\" type=\"MultiEntry\" mandatory=\"True\"/>"));
    validate();
    EXPECT_EQ(named("Scenario.Servers"),
              (std::vector<finding_s>{{12, 0, "ConfigDataHolder.Scenario.Servers", "MultiEntry"},
                                      {5, 0, "ConfigDataHolder.Scenario.Servers", "val"}}));
}

TEST_F(scenario_validation_test, a_mandatory_list_without_entries_gets_code_2) {
    load(stored(two_hosts("", ""),
                "<data label=\"Servers\" val=\"IPAddr\" type=\"MultiEntry\" mandatory=\"True\"/>"));
    EXPECT_FALSE(validate());
    EXPECT_EQ(named("Scenario.Servers"),
              (std::vector<finding_s>{{2, 0, "ConfigDataHolder.Scenario.Servers"}}));
}

TEST_F(scenario_validation_test, a_list_with_entries_or_not_mandatory_passes) {
    load(stored(two_hosts("", ""),
                "<data label=\"Servers\" val=\"IPAddr\" type=\"MultiEntry\" mandatory=\"True\">" +
                    sd::data("Servers", "10.0.0.1", "IPAddr") + "</data>" +
                    "<data label=\"Optional\" val=\"IPAddr\" type=\"MultiEntry\"/>"));
    validate();
    EXPECT_TRUE(named("Servers").empty()) << ::testing::PrintToString(findings_of(validity));
    EXPECT_TRUE(named("Optional").empty());
}

TEST_F(scenario_validation_test, empty_text_passes_only_when_not_mandatory_and_of_text_kinds) {
    load(stored(two_hosts("", ""),
                sd::data("Note", "", "Text") + sd::data("Dir", "", "DefFullPath") +
                    "<data label=\"MustNote\" val=\"\" type=\"Text\" mandatory=\"True\"/>"));
    validate();
    EXPECT_TRUE(named("Scenario.Note").empty());
    EXPECT_TRUE(named("Scenario.Dir").empty());
    EXPECT_EQ(named("Scenario.MustNote"),
              (std::vector<finding_s>{{5, 0, "ConfigDataHolder.Scenario.MustNote", "val"}}));
}

TEST_F(scenario_validation_test, a_number_outside_its_limits_gets_code_24_with_the_value) {
    load(stored(two_hosts("", ""),
                "<data label=\"Low\" val=\"2\" type=\"Number\" minimum=\"3\"/>"
                "<data label=\"High\" val=\"9\" type=\"Number\" maximum=\"8\"/>"
                "<data label=\"Edge\" val=\"3\" type=\"Number\" minimum=\"3\" maximum=\"3\"/>"));
    EXPECT_FALSE(validate());
    EXPECT_EQ(named("Scenario.Low"),
              (std::vector<finding_s>{{24, 0, "ConfigDataHolder.Scenario.Low", "2"}}));
    EXPECT_EQ(named("Scenario.High"),
              (std::vector<finding_s>{{24, 0, "ConfigDataHolder.Scenario.High", "9"}}));
    EXPECT_TRUE(named("Scenario.Edge").empty());
}

TEST_F(scenario_validation_test, a_kids_value_that_does_not_fit_the_type_gets_code_12) {
    load(stored(two_hosts("", ""),
                "<data label=\"Mode\" val=\"1\" type=\"Number\" check_kids_if_val=\"on\"/>"));
    validate();
    EXPECT_EQ(named("Scenario.Mode"),
              (std::vector<finding_s>{{12, 0, "ConfigDataHolder.Scenario.Mode", "Number"}}));
}

TEST_F(scenario_validation_test, children_of_a_data_item_apply_only_when_its_value_is_theirs) {
    std::string child = sd::data("Depth", "deep", "Number");
    load(stored(two_hosts("", ""),
                "<data label=\"Off\" val=\"False\" type=\"Bool\" check_kids_if_val=\"True\">" +
                    child + "</data>" +
                    "<data label=\"On\" val=\"True\" type=\"Bool\" check_kids_if_val=\"True\">" +
                    child + "</data>"));
    validate();
    EXPECT_EQ(named("Depth"),
              (std::vector<finding_s>{{12, 0, "ConfigDataHolder.Scenario.On.Depth", "Number"}}));
}

TEST_F(scenario_validation_test, a_condition_that_does_not_hold_spares_the_value_not_the_children) {
    std::string conditional = "<data label=\"Alias\" val=\"\" type=\"Number\" mandatory=\"True\" "
                              "check_if=\"TraficRedirection.MoveIP\" is_equal=\"True\">" +
                              sd::data("Inner", "x", "Number") + "</data>";
    std::string redirection = object("TraficRedirection", flag("MoveIP", false));
    load(stored(two_hosts("", ""), redirection + conditional));
    validate();
    EXPECT_TRUE(named("Scenario.Alias").empty()) << ::testing::PrintToString(findings_of(validity));
    EXPECT_EQ(named("Inner"),
              (std::vector<finding_s>{{12, 0, "ConfigDataHolder.Scenario.Alias.Inner", "Number"}}));
}

TEST_F(scenario_validation_test, a_condition_that_holds_has_the_value_checked) {
    std::string conditional = "<data label=\"Alias\" val=\"\" type=\"Number\" mandatory=\"True\" "
                              "check_if=\"TraficRedirection.MoveIP\" is_equal=\"True\"/>";
    load(
        stored(two_hosts("", ""), object("TraficRedirection", flag("MoveIP", true)) + conditional));
    EXPECT_FALSE(validate());
    EXPECT_EQ(named("Scenario.Alias"),
              (std::vector<finding_s>{{12, 0, "ConfigDataHolder.Scenario.Alias", "Number"},
                                      {5, 0, "ConfigDataHolder.Scenario.Alias", "val"}}));
}

TEST_F(scenario_validation_test, a_condition_on_a_host_is_read_on_the_host_that_holds_the_item) {
    std::string conditional = "<data label=\"Alias\" val=\"\" type=\"Number\" mandatory=\"True\" "
                              "check_if=\"TraficRedirection.MoveIP\" is_equal=\"True\"/>";
    // The Master moves its address, the replica does not; each holds the conditional item.
    load(stored(two_hosts(object("TraficRedirection", flag("MoveIP", true)) + conditional,
                          object("TraficRedirection", flag("MoveIP", false)) + conditional)));
    validate();
    std::vector<finding_s> found = named(".Alias");
    ASSERT_EQ(found.size(), 2u) << ::testing::PrintToString(findings_of(validity));
    EXPECT_EQ(found[0].host, 1u);
    EXPECT_EQ(found[1].host, 1u);
}

TEST_F(scenario_validation_test, the_condition_is_true_when_it_cannot_be_read) {
    load(stored(two_hosts("", ""), "<data label=\"A\" val=\"1\" type=\"Number\"/>"));
    xml_item_c* a = conf.find_tree_item("A", false);
    ASSERT_NE(a, nullptr);
    EXPECT_TRUE(conf._check_if_condition(a, "TraficRedirection.MoveIP")); // no is_equal
    a->set_attribute("is_equal", "True");
    EXPECT_TRUE(conf._check_if_condition(a, nullptr));
    EXPECT_TRUE(conf._check_if_condition(a, "NoPoint"));
    EXPECT_TRUE(conf._check_if_condition(a, "Nowhere.Nothing")); // no such property
    EXPECT_TRUE(conf._check_if_condition(a, "Scenario.status")); // the object has no `val`
}

TEST_F(scenario_validation_test, the_value_range_reads_signed_64_bit_numbers) {
    load(stored(two_hosts("", ""),
                "<data label=\"R\" val=\"-9000000000\" type=\"Number\" minimum=\"-9000000001\" "
                "maximum=\"-8999999999\"/><data label=\"NoVal\" type=\"Number\" minimum=\"1\"/>"));
    EXPECT_TRUE(scenario_conf_c::_check_value_range(conf.find_tree_item("R", false)));
    EXPECT_FALSE(scenario_conf_c::_check_value_range(conf.find_tree_item("NoVal", false)));
}

TEST_F(scenario_validation_test, a_full_system_ip_list_in_dns_gets_no_code_2_but_code_5) {
    std::string list =
        "<data label=\"VirtualMachineIPOnReplicainDNS\" val=\"\" type=\"MultiEntry\" "
        "mandatory=\"True\"/>";
    load(stored(two_hosts("", ""), list, "Regular", "FullSystem"));
    validate();
    std::vector<finding_s> found = named("VirtualMachineIPOnReplicainDNS");
    for (const finding_s& f : found) EXPECT_NE(f.code, 2u) << f;
    ASSERT_FALSE(found.empty());
    EXPECT_EQ(found.back().code, 5u);
}

TEST_F(scenario_validation_test, outside_full_system_the_empty_ip_list_gets_code_2) {
    std::string list = "<data label=\"VirtualMachineIPOnReplicainDNS\" val=\"IPAddr\" "
                       "type=\"MultiEntry\" mandatory=\"True\"/>";
    load(stored(two_hosts("", ""), list, "Regular", "FileServer"));
    validate();
    EXPECT_EQ(with_code(2).size(), 1u);
    conf.application = 11;
    xmc_validity_c again;
    conf.check_xmc_validity(again);
    for (const finding_s& f : findings_of(again)) EXPECT_NE(f.code, 2u) << f;
}

TEST_F(scenario_validation_test, mappings_of_a_virtual_machine_are_not_walked_for_hyper_v) {
    std::string mapping =
        sd::object("VirtualNetworkMapping", "4450", sd::data("UseDHCP", "perhaps", "Bool"));
    load(stored(two_hosts("", ""), mapping, "Regular", "FileServer"));
    validate();
    EXPECT_EQ(named("UseDHCP").size(), 1u);
    for (const char* application : {"HyperV", "FullSystem"}) {
        scenario_conf_c other;
        std::string text = stored(two_hosts("", ""), mapping, "Regular", application);
        ASSERT_TRUE(scenario_loader_n::load_text(other, text.data(), text.size(), "t").ok());
        xmc_validity_c found;
        other.check_xmc_validity(found);
        for (const finding_s& f : findings_of(found))
            EXPECT_EQ(f.name.find("UseDHCP"), std::string::npos) << application << " " << f;
    }
}

// ---- external objects ------------------------------------------------------------------------

TEST_F(scenario_validation_test, an_external_child_without_a_maker_fails_both_checks) {
    std::string external = "<object label=\"External\" id=\"6000\" external=\"True\">"
                           "<thing id=\"424242\"/></object>";
    load(stored(two_hosts("", ""), external));
    trace_capture_c capture;
    EXPECT_FALSE(conf.check_consistency());
    EXPECT_NE(line_with(capture.text(), "Unable to create external object for node"), "")
        << capture.text();
    EXPECT_FALSE(validate());
    // No finding tells it: the trace does.
    EXPECT_TRUE(named("thing").empty());
}

TEST_F(scenario_validation_test, a_hyper_v_machine_chosen_without_full_name_is_code_12) {
    std::string machines = "<object label=\"External\" id=\"6000\" external=\"True\">"
                           "<a><b><list><vm checked=\"True\" fqn_name=\"vm1.example\"/>"
                           "<vm checked=\"True\" fqn_name=\"\"/></list></b></a></object>";
    std::string name_item = object("hosts", sd::data("VirtualMachineFQName", "vm", "String"));
    load(
        stored(two_hosts("", ""), object("Switchover", name_item) + machines, "Regular", "HyperV"));
    EXPECT_FALSE(validate());
    EXPECT_EQ(named("VirtualMachineFQName"),
              (std::vector<finding_s>{
                  {12, 0, "ConfigDataHolder.Scenario.Switchover.hosts.VirtualMachineFQName",
                   "fqn_name"}}));
}

TEST_F(scenario_validation_test, a_hyper_v_machine_list_that_is_not_there_is_in_order) {
    std::string shallow = "<object label=\"External\" id=\"6000\" external=\"True\">"
                          "<a><b/></a></object>";
    load(stored(two_hosts("", ""), shallow, "Regular", "HyperV"));
    validate();
    EXPECT_TRUE(named("VirtualMachineFQName").empty());
}

// ---- uniqueness ------------------------------------------------------------------------------

TEST_F(scenario_validation_test, vetted_failback_on_one_host_and_suspend_on_another_are_two_21s) {
    load(stored(two_hosts(object("VettedFailbackObj", "", "True"), object("Suspend", "", "True"))));
    EXPECT_FALSE(validate());
    EXPECT_EQ(with_code(21), (std::vector<finding_s>{{21, 1, "VettedFailbackObj.ReplNode"},
                                                     {21, 2, "Suspend.ReplNode"}}));
}

TEST_F(scenario_validation_test, one_host_that_suspends_alone_is_in_order) {
    load(stored(two_hosts("", object("Suspend", "", "True"))));
    validate();
    EXPECT_TRUE(with_code(21).empty());
}

TEST_F(scenario_validation_test, shadow_copies_of_two_kinds_all_stand_on_the_suspend_row) {
    std::string both = object("VettedFailbackObj", flag("ShadowCopy", true), "False") +
                       object("Suspend", flag("OffLineShadowCopy", true), "False");
    std::string integrated = flag("QuillonIntegrated", true);
    load(stored(two_hosts(both, ""), integrated));
    EXPECT_FALSE(validate());
    // The same host twice, both times on the suspend row.
    EXPECT_EQ(with_code(21),
              (std::vector<finding_s>{{21, 1, "OffLineShadowCopy.Suspend.ReplNode"},
                                      {21, 1, "OffLineShadowCopy.Suspend.ReplNode"}}));
}

TEST_F(scenario_validation_test, shadow_copies_count_only_when_integrated) {
    std::string both = object("VettedFailbackObj", flag("ShadowCopy", true), "False") +
                       object("Suspend", flag("OffLineShadowCopy", true), "False");
    load(stored(two_hosts(both, ""), flag("QuillonIntegrated", false)));
    validate();
    EXPECT_TRUE(with_code(21).empty());
}

TEST_F(scenario_validation_test, a_cdp_host_outside_a_cdp_scenario_is_code_4) {
    std::string cdp = object("SpecificReplicaProps", flag("CDPHost", true));
    load(stored(two_hosts("", cdp), flag("IsCDPScenario", false)));
    EXPECT_FALSE(validate());
    EXPECT_EQ(with_code(4),
              (std::vector<finding_s>{{4, 2, "CDPHost.SpecificReplicaProps.ReplNode"}}));
}

TEST_F(scenario_validation_test, one_cdp_host_in_a_cdp_scenario_is_in_order_two_are_code_22) {
    std::string cdp = object("SpecificReplicaProps", flag("CDPHost", true));
    load(stored(host("1", "", host("2", cdp) + host("3", cdp)), flag("IsCDPScenario", true)));
    validate();
    EXPECT_EQ(with_code(22),
              (std::vector<finding_s>{{22, 2, "CDPHost.SpecificReplicaProps.ReplNode"},
                                      {22, 3, "CDPHost.SpecificReplicaProps.ReplNode"}}));
    scenario_conf_c one;
    std::string text = stored(two_hosts("", cdp), flag("IsCDPScenario", true));
    ASSERT_TRUE(scenario_loader_n::load_text(one, text.data(), text.size(), "t").ok());
    xmc_validity_c found;
    one.check_xmc_validity(found);
    for (const finding_s& f : findings_of(found)) {
        EXPECT_NE(f.code, 22u) << f;
        EXPECT_NE(f.code, 4u) << f;
    }
}

TEST_F(scenario_validation_test, two_cdp_hosts_outside_a_cdp_scenario_are_code_4_each) {
    std::string cdp = object("SpecificReplicaProps", flag("CDPHost", true));
    load(stored(host("1", "", host("2", cdp) + host("3", cdp))));
    validate();
    EXPECT_EQ(with_code(4).size(), 2u);
}

TEST_F(scenario_validation_test, two_failover_hosts_are_code_22) {
    std::string failover = object("SpecificReplicaProps", flag("FailoverHost", true));
    load(stored(host("1", "", host("2", failover) + host("3", failover))));
    EXPECT_FALSE(validate());
    EXPECT_EQ(with_code(22),
              (std::vector<finding_s>{{22, 2, "FailoverHost.SpecificReplicaProps.ReplNode"},
                                      {22, 3, "FailoverHost.SpecificReplicaProps.ReplNode"}}));
}

TEST_F(scenario_validation_test, hosts_are_collected_in_pre_order_with_the_exact_text) {
    std::string on = object("SpecificReplicaProps", flag("FailoverHost", true));
    std::string odd = object("SpecificReplicaProps", sd::data("FailoverHost", "true", "Bool"));
    load(stored(host("1", "", host("2", on, host("4", on)) + host("3", odd))));
    std::vector<std::uint64_t> list;
    conf.collect_hosts_with_value(38, "True", list);
    EXPECT_EQ(list, (std::vector<std::uint64_t>{2, 4}));
    list.clear();
    conf.collect_hosts_with_value(38, nullptr, list);
    EXPECT_EQ(list, (std::vector<std::uint64_t>{2, 4, 3}));
}

// ---- compression -----------------------------------------------------------------------------

TEST_F(scenario_validation_test, a_host_without_compression_below_one_with_it_is_code_20) {
    std::string on = sd::data("Compress", "True", "Bool");
    std::string off = sd::data("Compress", "False", "Bool");
    // 1 compresses; 2 does not, nor 3 below it: both lie below 1.
    load(stored(host("1", "", host("2", "", host("3", "", "", off), off), on)));
    EXPECT_FALSE(validate());
    EXPECT_EQ(with_code(20),
              (std::vector<finding_s>{{20, 2,
                                       "ConfigDataHolder.Scenario.ReplicationTree.ReplNode."
                                       "ReplNode.CommonHostProps.Compress"},
                                      {20, 3,
                                       "ConfigDataHolder.Scenario.ReplicationTree.ReplNode."
                                       "ReplNode.ReplNode.CommonHostProps.Compress"}}));
}

TEST_F(scenario_validation_test, compression_off_beside_compression_on_is_in_order) {
    std::string on = sd::data("Compress", "True", "Bool");
    std::string off = sd::data("Compress", "False", "Bool");
    load(stored(host("1", "", host("2", "", "", on) + host("3", "", "", off), off)));
    validate();
    EXPECT_TRUE(with_code(20).empty());
}

namespace {

// The `External` object with a CDP object that names its database or not.
std::string external_cdp(bool names_database) {
    std::string names = names_database
                            ? sd::data("SqlInstanceName", "sql1") + sd::data("SqlDbName", "finance")
                            : sd::data("SqlInstanceName", "sql1");
    return "<object label=\"External\" id=\"6000\" external=\"True\">"
           "<object id=\"6789\" label=\"cdp\">" +
           names + "</object></object>";
}

} // namespace

TEST_F(scenario_validation_test, an_external_object_that_is_not_consistent_fails_the_shape_check) {
    load(stored(two_hosts("", ""), external_cdp(false)));
    trace_capture_c capture;
    EXPECT_FALSE(conf.check_consistency());
    EXPECT_NE(line_with(capture.text(), "Found inconsistent external object of node"), "")
        << capture.text();
}

TEST_F(scenario_validation_test, an_external_object_that_is_consistent_passes_the_shape_check) {
    load(stored(two_hosts("", ""), external_cdp(true)));
    EXPECT_TRUE(conf.check_consistency());
}

TEST_F(scenario_validation_test, an_invalid_external_object_adds_its_findings_and_a_trace_line) {
    load(stored(two_hosts("", ""), external_cdp(false)));
    trace_capture_c capture;
    EXPECT_FALSE(validate());
    EXPECT_EQ(named("SqlDbName"), (std::vector<finding_s>{{3, 0, "SqlDbName"}}));
    EXPECT_NE(line_with(capture.text(), "Found invalid external object of node"), "")
        << capture.text();
}

TEST_F(scenario_validation_test, the_walk_goes_on_below_an_external_object) {
    // The CDP object's own content is plain XML: walked, and judged by nobody but the object.
    load(stored(two_hosts("", ""), external_cdp(true)));
    EXPECT_FALSE(validate()) << "no root directories";
    EXPECT_TRUE(named("Sql").empty()) << ::testing::PrintToString(findings_of(validity));
}

TEST_F(scenario_validation_test, a_tree_ten_thousand_hosts_deep_is_checked_without_recursion) {
    std::string open, close;
    for (int i = 0; i < 10000; ++i) {
        open += "<object label=\"ReplNode\" id=\"5000\">" + sd::host_props(std::to_string(i + 1));
        close += "</object>";
    }
    load(stored(open + close));
    EXPECT_TRUE(conf.check_consistency());
    validate();
    // The Master has no root directories: told once, and the replicas are not compared.
    EXPECT_EQ(with_code(3), (std::vector<finding_s>{{3, 1, "RootDir", "", 0}}));
}
