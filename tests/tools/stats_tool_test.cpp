// stats_tool run as a separate process, as an operator or a script runs it.
#include "common/test_support.h"
#include "configuration/generic_conf.h"
#include "configuration/scenario_conf.h"
#include "configuration/scenario_documents.h"
#include "configuration/scenario_loader.h"
#include "configuration/xmc_item.h"
#include "configuration/xmc_template.h"
#include "platform/os.h"
#include "stats_mng/load_order.h"
#include "utl/utl_stream.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

using test_support::count_of;
using test_support::temp_dir_c;

namespace {

struct run_result_s {
    int status;
    std::string output;
};

class stats_tool : public ::testing::Test {
  protected:
    // The output file of the last run.
    std::string output_file() const { return scratch.join("output.txt"); }

    // Loads the scenario that the last run printed, as a stored scenario, and checks the fields
    // the loader reads from it and the hosts it indexes.
    void expect_instance(scenario_conf_c& conf, std::uint32_t product, std::uint32_t application,
                         bool vetted_failback) {
        scenario_load_result_s loaded = scenario_loader_n::load_file(conf, output_file().c_str());
        ASSERT_TRUE(loaded.ok()) << loaded.message.c_str();
        EXPECT_EQ(conf.product, product);
        EXPECT_EQ(conf.application, application);
        EXPECT_EQ(conf.vetted_failback, vetted_failback);
        EXPECT_EQ(conf.config_mode, 1u);
        EXPECT_EQ(loaded.host_count, 2u);
    }

    run_result_s run(std::vector<std::string> args) {
#if defined(_WIN32)
        args.insert(args.begin(), test_support::bin_dir() + "/stats_tool.exe");
#else
        args.insert(args.begin(), test_support::bin_dir() + "/stats_tool");
#endif
        std::string output_file = scratch.join("output.txt");
        int status = os::run_process(args, output_file);
        return {status, test_support::read_file(output_file)};
    }

    temp_dir_c scratch;
    temp_dir_c scenario;
};

} // namespace

TEST_F(stats_tool, help_prints_usage_and_succeeds) {
    run_result_s result = run({"--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.output.find("usage: stats_tool"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("state DIR"), std::string::npos) << result.output;
}

TEST_F(stats_tool, state_of_a_directory_without_state_files_is_unknown_and_negative) {
    run_result_s result = run({"state", scenario.str()});
    EXPECT_EQ(result.status, 1) << result.output;
    EXPECT_NE(result.output.find("engine active:   no"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("sync replicated: no"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("state:           Unknown (3)"), std::string::npos)
        << result.output;
}

TEST_F(stats_tool, state_as_json) {
    run_result_s result = run({"state", scenario.join("missing"), "--json"});
    EXPECT_EQ(result.status, 1) << result.output;
    EXPECT_NE(result.output.find("\"engine_active\": false"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("\"state_read\": false"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("\"state_index\": 3, \"state\": \"Unknown\"}"), std::string::npos)
        << result.output;
}

TEST_F(stats_tool, trace_option_writes_the_library_trace) {
    run_result_s result = run({"--trace", scratch.str(), "state", scenario.join("missing")});
    EXPECT_EQ(result.status, 1) << result.output;
    std::string trace = test_support::read_file(scratch.join("stats_mng.dll.log"));
    EXPECT_EQ(count_of(trace, "Fail to find the path "), 3u) << trace;
}

TEST_F(stats_tool, usage_errors_exit_with_two) {
    EXPECT_EQ(run({}).status, 2);
    EXPECT_EQ(run({"state"}).status, 2);
    EXPECT_EQ(run({"frobnicate", scenario.str()}).status, 2);
    EXPECT_EQ(run({"state", scenario.str(), "extra"}).status, 2);
    run_result_s result = run({"--library"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.output.find("missing value after --library"), std::string::npos)
        << result.output;
}

TEST_F(stats_tool, a_library_that_cannot_be_loaded_is_an_error) {
    run_result_s result =
        run({"--library", scratch.join("no_such_library"), "state", scenario.str()});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.output.find("cannot load the library"), std::string::npos) << result.output;
}

TEST_F(stats_tool, state_prints_the_three_answers_with_the_state_word) {
    const std::string dir = scenario.join(".mr_qv_prefix");
    run({"record-sync", scenario.str(), "--scenario-id", "1", "--host", "1", "--done", "--time",
         "1"});
    test_support::write_file(dir + "/stats.xml",
                             "<?xml version=\"1.0\"?>\n<stats_saver>\n\t<Scenario State=\"Sync\" "
                             "IsSyncReplicated=\"True\" IsSyncReplicatedTime=\"4\"/>\n"
                             "</stats_saver>\n");
    run_result_s result = run({"state", scenario.str()});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("engine active:   no"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("sync replicated: yes"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("state:           Sync (2)"), std::string::npos) << result.output;
    result = run({"state", scenario.str(), "--json"});
    EXPECT_NE(result.output.find("\"state_read\": true"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("\"state_index\": 2, \"state\": \"Sync\"}"), std::string::npos)
        << result.output;
}

TEST_F(stats_tool, record_sync_writes_the_per_host_record) {
    run_result_s result = run({"record-sync", scenario.str(), "--scenario-id", "12", "--host", "3",
                               "--not-done", "--time", "-7"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("recorded host 3 not done at -7"), std::string::npos)
        << result.output;
    result = run({"record-sync", scenario.str(), "--scenario-id", "12", "--host", "4", "--done",
                  "--time", "9"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(test_support::read_file(scenario.join(".mr_qv_prefix/12_stats.xml")),
              "<?xml version=\"1.0\"?>\n<stats_saver ScenarioID=\"12\">\n"
              "\t<host HostIndex=\"3\" IsSyncReplicated=\"False\" IsSyncReplicatedTime=\"-7\"/>\n"
              "\t<host HostIndex=\"4\" IsSyncReplicated=\"True\" IsSyncReplicatedTime=\"9\"/>\n"
              "</stats_saver>\n");
}

TEST_F(stats_tool, record_sync_usage_errors_exit_with_two) {
    EXPECT_EQ(run({"record-sync", scenario.str(), "--host", "1", "--done", "--time", "1"}).status,
              2);
    EXPECT_EQ(run({"record-sync", scenario.str(), "--scenario-id", "x", "--host", "1", "--done",
                   "--time", "1"})
                  .status,
              2);
    EXPECT_EQ(
        run({"record-sync", scenario.str(), "--scenario-id", "1", "--host", "1", "--time", "1"})
            .status,
        2);
    EXPECT_EQ(
        run({"record-sync", "--scenario-id", "1", "--host", "1", "--done", "--time", "1"}).status,
        2);
}

TEST_F(stats_tool, its_own_process_ran_every_start_up_step_in_order) {
    run_result_s result = run({"load-steps"});
    EXPECT_EQ(result.status, 0) << result.output;
    std::string expected;
    for (const load_order_n::step_s& step : load_order_n::steps()) {
        char line[256];
        std::snprintf(line, sizeof line, "%3d ran     %s\n", step.order, step.what);
        expected += line;
    }
    // Text mode of the Windows build ends lines with CR LF.
    std::string output = result.output;
    std::erase(output, '\r');
    EXPECT_EQ(output, expected);
}

// The tool finds the catalogue of its source tree by default and prints each id's text.
TEST_F(stats_tool, message_prints_the_text_of_each_id) {
    run_result_s result = run({"message", "ig00221", "CV01350"});
    EXPECT_EQ(result.status, 0) << result.output;
    std::string output = result.output;
    std::erase(output, '\r');
    EXPECT_EQ(output.rfind("IG00221\tMaster\nCV01350\t", 0), 0u) << output;
}

TEST_F(stats_tool, message_of_an_id_without_a_text_gives_the_fallback_and_one) {
    run_result_s result = run({"message", "CV09999"});
    EXPECT_EQ(result.status, 1) << result.output;
    EXPECT_NE(result.output.find("CV09999\t"), std::string::npos) << result.output;
}

TEST_F(stats_tool, message_with_a_catalogue_that_cannot_be_read_is_an_error) {
    test_support::temp_dir_c dir;
    run_result_s result = run({"message", "IG00221", "--messages", dir.join("none.msg")});
    EXPECT_EQ(result.status, 2) << result.output;
}

TEST_F(stats_tool, message_with_a_given_catalogue_uses_it) {
    test_support::temp_dir_c dir;
    std::string file = dir.join("own.msg");
    test_support::write_file(file, "IG00221\tOwn master\n");
    run_result_s result = run({"message", "IG00221", "--messages", file});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("IG00221\tOwn master"), std::string::npos) << result.output;
}

// The printed template is the library's own text, byte for byte, and loads as it does.
TEST_F(stats_tool, template_prints_the_built_in_template) {
    run_result_s result = run({"template"});
    EXPECT_EQ(result.status, 0) << result.output;
    utl_stream_c joined;
    std::size_t lines = xmc_template_n::join(joined);
    EXPECT_EQ(lines, xmc_template_n::text_line_count);
    ASSERT_NE(joined.c_str(), nullptr);
    EXPECT_EQ(result.output, std::string(joined.c_str()));
    EXPECT_EQ(count_of(result.output, "\n"), xmc_template_n::text_line_count);

    mixed_xmc_xml_tree_c printed, built_in;
    ASSERT_TRUE(printed.load_from_str(result.output.c_str()));
    ASSERT_TRUE(built_in.load_from_str(joined.c_str()));
    ASSERT_NE(printed.get_root(), nullptr);
    EXPECT_STREQ(printed.get_root()->find_attribute("label")->to_text(), "ConfigDataHolder");
    EXPECT_TRUE(printed.is_equal(built_in));
}

TEST_F(stats_tool, template_takes_no_argument) {
    run_result_s result = run({"template", "extra"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.output.find("unexpected argument 'extra'"), std::string::npos)
        << result.output;
    run_result_s after_reference = run({"template", "--reference", "extra"});
    EXPECT_EQ(after_reference.status, 2);
    EXPECT_NE(after_reference.output.find("unexpected argument 'extra'"), std::string::npos)
        << after_reference.output;
}

// The reference has one row for each data item and object of the configurator's tree, named by
// its dotted path, and lines that end with one line feed.
TEST_F(stats_tool, template_reference_has_a_row_for_every_setting) {
    run_result_s result = run({"template", "--reference"});
    ASSERT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(count_of(result.output, "\r"), 0u);
    generic_conf_c* conf = the_generic_conf();
    ASSERT_NE(conf, nullptr);
    xml_item_c* root = conf->tree->get_root();
    std::size_t settings = 0;
    for (xml_item_c* item = root; item; item = xmc_tree_n::next_item(item, root)) {
        const xmc_item_c* typed = xmc_item_c::as_xmc(item);
        if (!typed || typed->kind == xmc_n::kind_title || typed->kind == xmc_n::kind_other)
            continue;
        ++settings;
        utl_stream_c path;
        std::string row = "\n| `" + std::string(item->get_path(path)) + "` | ";
        EXPECT_NE(result.output.find(row), std::string::npos) << row;
    }
    ASSERT_GT(settings, 0u);
    EXPECT_EQ(count_of(result.output, "\n| `ConfigDataHolder"), settings);
    EXPECT_NE(result.output.find("| `ConfigDataHolder.Scenario.Switchover.TraficRedirection."
                                 "RedirectDNS` | object, id 4700 | status `True`; `False` for "
                                 "Application HyperV, FullSystem |  |  |  | Product: Ha | "),
              std::string::npos);
    EXPECT_NE(result.output.find("| `ConfigDataHolder.Scenario.Switchover.is_alive.HeartbeatTimeout"
                                 "` | `Number` | `30` | minimum 3, maximum 86400 |"),
              std::string::npos);
}

// docs/settings.md is the reference of this build's template; regenerate it with
// `stats_tool template --reference > docs/settings.md` after a change of the template.
TEST_F(stats_tool, docs_settings_md_is_the_current_reference) {
    run_result_s result = run({"template", "--reference"});
    ASSERT_EQ(result.status, 0) << result.output;
    std::string committed = test_support::read_file(STATS_MNG_SETTINGS_REFERENCE);
    ASSERT_FALSE(committed.empty()) << STATS_MNG_SETTINGS_REFERENCE;
    EXPECT_TRUE(result.output == committed)
        << "docs/settings.md is out of date: run stats_tool template --reference > "
           "docs/settings.md";
}

// ---- new-scenario

namespace {

// The first object labelled `label` in the loaded scenario, in pre-order.
xml_item_c* object_in(scenario_conf_c& conf, const char* label) {
    return conf.find_tree_item(label, true);
}

std::string val_in(scenario_conf_c& conf, const char* label) {
    xml_item_c* item = conf.find_tree_item(label, false);
    labeled_value_c* val = item ? item->find_attribute("val") : nullptr;
    return val ? val->to_text() : "";
}

} // namespace

TEST_F(stats_tool, new_scenario_prints_a_stored_scenario_that_the_loader_loads) {
    run_result_s result = run({"new-scenario", "--product", "Ha", "--application", "SQL"});
    ASSERT_EQ(result.status, 0) << result.output;
    // The writer's form, one line feed a line on every platform.
    EXPECT_EQ(result.output.rfind("<?xml version=\"1.0\"?>\n<object label=\"ConfigDataHolder\" "
                                  "id=\"1\">\n",
                                  0),
              0u)
        << result.output.substr(0, 200);
    EXPECT_EQ(count_of(result.output, "\r"), 0u);
    // Nothing of the template's machinery is left: no definitions, variables, switches or
    // conditions.
    for (const char* word : {"<definitions", "\"variable\"", "<switch_to_set_default", "<relevant",
                             "<irrelevant", "label=\"Group\""})
        EXPECT_EQ(count_of(result.output, word), 0u) << word;

    scenario_conf_c conf;
    expect_instance(conf, 1, 4, false);
    EXPECT_EQ(val_in(conf, "Version"), "5");
    EXPECT_EQ(val_in(conf, "XMC_VersionNumber"), "164");
    EXPECT_NE(object_in(conf, "Switchover"), nullptr);
    EXPECT_NE(object_in(conf, "External"), nullptr);
    EXPECT_EQ(object_in(conf, "VettedFailbackObj"), nullptr);
}

TEST_F(stats_tool, new_scenario_takes_the_product_the_application_and_the_flag) {
    run_result_s result = run(
        {"new-scenario", "--application", "FileServer", "--vetted-failback", "--product", "Dr"});
    ASSERT_EQ(result.status, 0) << result.output;
    scenario_conf_c conf;
    expect_instance(conf, 0, 0, true);
    EXPECT_EQ(object_in(conf, "Switchover"), nullptr);
    EXPECT_EQ(object_in(conf, "External"), nullptr);
    EXPECT_NE(object_in(conf, "VettedFailbackObj"), nullptr);
    EXPECT_EQ(val_in(conf, "SynchType"), "FileSynchronization");
}

TEST_F(stats_tool, new_scenario_with_an_unknown_name_exits_with_two_and_one_line) {
    run_result_s product = run({"new-scenario", "--product", "Hb", "--application", "SQL"});
    EXPECT_EQ(product.status, 2);
    std::erase(product.output, '\r');
    EXPECT_EQ(product.output,
              "stats_tool: unknown product 'Hb'; the products are Dr, Ha, Cd, Rw\n");
    // Names are items of the enumerations, compared exactly.
    run_result_s application = run({"new-scenario", "--product", "Ha", "--application", "sql"});
    EXPECT_EQ(application.status, 2);
    EXPECT_EQ(count_of(application.output, "\n"), 1u) << application.output;
    EXPECT_EQ(application.output.rfind("stats_tool: unknown application 'sql'; the applications "
                                       "are FileServer, Exchange, ",
                                       0),
              0u)
        << application.output;
}

TEST_F(stats_tool, new_scenario_usage_errors_exit_with_two_and_one_line) {
    for (const std::vector<std::string>& args :
         {std::vector<std::string>{"new-scenario"},
          std::vector<std::string>{"new-scenario", "--product", "Ha"},
          std::vector<std::string>{"new-scenario", "--application", "SQL"},
          std::vector<std::string>{"new-scenario", "--product", "Ha", "--application"},
          std::vector<std::string>{"new-scenario", "--product", "Ha", "--application", "SQL",
                                   "extra"}}) {
        run_result_s result = run(args);
        EXPECT_EQ(result.status, 2) << args.size();
        EXPECT_EQ(count_of(result.output, "\n"), 1u) << result.output;
        EXPECT_EQ(result.output.rfind("stats_tool: ", 0), 0u) << result.output;
    }
}

// ---- set-state: the engine's writes, read back by the queries

TEST_F(stats_tool, set_state_moves_a_scenario_through_its_states_as_state_reads_them) {
    const std::string dir = scenario.str();
    auto set = [&](std::vector<std::string> event) {
        std::vector<std::string> args = {"set-state", dir, "--scenario-id",   "7",
                                         "--host",    "1", "--scenario-name", "finance"};
        args.insert(args.end(), event.begin(), event.end());
        return run(args);
    };
    auto state = [&] { return run({"state", dir}).output; };
    run_result_s result = set({"--run"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("run for host 1 in "), std::string::npos) << result.output;
    EXPECT_NE(state().find("state:           Running (0)"), std::string::npos) << state();
    EXPECT_EQ(set({"--sync-begin", "--time", "100"}).status, 0);
    EXPECT_NE(state().find("state:           Sync (2)"), std::string::npos) << state();
    EXPECT_NE(state().find("sync replicated: no"), std::string::npos) << state();
    EXPECT_EQ(set({"--run"}).status, 0);
    EXPECT_NE(state().find("state:           Sync (2)"), std::string::npos)
        << "a start during a synchronisation keeps Sync: " << state();
    EXPECT_EQ(set({"--sync-end", "--time", "200"}).status, 0);
    EXPECT_NE(state().find("state:           Running (0)"), std::string::npos) << state();
    EXPECT_NE(state().find("sync replicated: yes"), std::string::npos) << state();
    EXPECT_EQ(set({"--stop"}).status, 0);
    EXPECT_NE(state().find("state:           Stop (1)"), std::string::npos) << state();
    std::string text = test_support::read_file(dir + "/.mr_qv_prefix/stats.xml");
    EXPECT_NE(text.find("ScenarioID=\"7\" ScenarioName=\"finance\""), std::string::npos) << text;
    EXPECT_NE(text.find("IsSyncReplicatedTime=\"200\""), std::string::npos) << text;
}

TEST_F(stats_tool, set_state_under_each_root_directory_of_a_stored_scenario) {
    using namespace scenario_documents;
    temp_dir_c a, b, replica, replica_b;
    std::string file = scratch.join("scenario.xmc");
    test_support::write_file(
        file, stored(scenario_documents::scenario(
                  scenario_data("Ha", "FileServer", "Regular", "False", "31"),
                  host("1", root_dir(a.str()) + root_dir(b.str()),
                       host("2", root_dir(replica.str()) + root_dir(replica_b.str()))))));
    run_result_s result =
        run({"set-state", "--scenario", file, "--host", "1", "--sync-begin", "--time", "5"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("under 2 root directories"), std::string::npos) << result.output;
    for (const temp_dir_c* dir : {&a, &b}) {
        std::string state = run({"state", dir->str()}).output;
        EXPECT_NE(state.find("state:           Sync (2)"), std::string::npos) << state;
        std::string text = test_support::read_file(dir->join(".mr_qv_prefix/stats.xml"));
        EXPECT_NE(text.find("ScenarioID=\"31\" ScenarioName=\"finance\""), std::string::npos)
            << text;
    }
    EXPECT_NE(run({"state", replica.str()}).output.find("Unknown (3)"), std::string::npos)
        << "the replica's root directory is not the Master's";
    EXPECT_EQ(run({"set-state", "--scenario", file, "--host", "2", "--stop"}).status, 0);
    EXPECT_NE(run({"state", replica.str()}).output.find("Stop (1)"), std::string::npos);
    EXPECT_NE(run({"state", replica_b.str()}).output.find("Stop (1)"), std::string::npos);
}

// The writer walks as many root directories as the Master has: a host with fewer runs out of
// them, which ends the walk with a failure after the ones it has.
TEST_F(stats_tool, set_state_for_a_host_with_fewer_root_directories_than_the_master_fails) {
    using namespace scenario_documents;
    temp_dir_c a, b, replica;
    std::string file = scratch.join("scenario.xmc");
    test_support::write_file(
        file, stored(scenario_documents::scenario(scenario_data(),
                                                  host("1", root_dir(a.str()) + root_dir(b.str()),
                                                       host("2", root_dir(replica.str()))))));
    run_result_s result = run({"set-state", "--scenario", file, "--host", "2", "--stop"});
    EXPECT_EQ(result.status, 1) << result.output;
    EXPECT_NE(result.output.find("not written"), std::string::npos) << result.output;
    EXPECT_NE(run({"state", replica.str()}).output.find("Stop (1)"), std::string::npos);
}

TEST_F(stats_tool, set_state_usage_errors_exit_with_two_and_say_what_is_wrong) {
    const std::string dir = scenario.str();
    struct case_s {
        std::vector<std::string> args;
        const char* says;
    } cases[] = {
        {{"set-state", dir, "--scenario-id", "1", "--host", "1"}, "needs one of --run"},
        {{"set-state", dir, "--scenario-id", "1", "--host", "1", "--run", "--stop"},
         "needs one of --run"},
        {{"set-state", dir, "--scenario-id", "1", "--host", "1", "--sync-end"}, "need --time"},
        {{"set-state", dir, "--scenario-id", "1", "--host", "1", "--run", "--time", "4"},
         "--time goes with"},
        {{"set-state", dir, "--host", "1", "--run"}, "needs --scenario-id"},
        {{"set-state", dir, "--scenario-id", "1", "--run"}, "needs --host"},
        {{"set-state", "--scenario-id", "1", "--host", "1", "--run"}, "needs a scenario directory"},
        {{"set-state", dir, "--scenario", "x.xmc", "--host", "1", "--run"}, "not both"},
        {{"set-state", dir, "--scenario-id", "-1", "--host", "1", "--run"}, "--scenario-id needs"},
    };
    for (const case_s& c : cases) {
        run_result_s result = run(c.args);
        EXPECT_EQ(result.status, 2) << result.output;
        EXPECT_NE(result.output.find(c.says), std::string::npos) << result.output;
    }
    run_result_s missing =
        run({"set-state", "--scenario", scratch.join("none.xmc"), "--host", "1", "--run"});
    EXPECT_EQ(missing.status, 2) << missing.output;
}

TEST_F(stats_tool, set_state_that_cannot_write_exits_with_one) {
    const std::string dir = scenario.str();
    std::filesystem::create_directories(test_support::from_utf8(dir + "/.mr_qv_prefix/stats.xml"));
    run_result_s result = run({"set-state", dir, "--scenario-id", "1", "--host", "1", "--stop"});
    EXPECT_EQ(result.status, 1) << result.output;
    EXPECT_NE(result.output.find("not written"), std::string::npos) << result.output;
}

// ---- get and set: one setting of a stored scenario

namespace {

namespace sd = scenario_documents;

// A stored scenario with a Manager's report, a Master and one replica, each host with a list.
std::string stored_scenario() {
    auto host = [](const std::string& index, const std::string& replicas) {
        std::string list = "<data label=\"RegistryPaths\" val=\"String\" type=\"MultiEntry\">" +
                           sd::data("RegistryPaths", "HKLM/a" + index) + "</data>";
        return sd::object(
            "ReplNode", "5000",
            sd::host_props(index, sd::data("IP", "10.0.0." + index, "IPAddr") +
                                      sd::object("ListRegistryPaths_32", "250", list)) +
                replicas);
    };
    std::string manager = "<title label=\"ManagerData\"><object label=\"Report\" id=\"3500\" "
                          "status=\"True\">" +
                          sd::data("SynchReportStatus", "False", "Bool") + "</object></title>";
    return sd::stored(
        sd::scenario(sd::scenario_data() + sd::data("ReplicationMode", "Online", "ReplicationMode"),
                     host("1", host("2", "")), manager));
}

class stats_tool_settings : public stats_tool {
  protected:
    void SetUp() override { test_support::write_file(file, stored_scenario()); }
    // The tool's output with the line ends of its platform read as line feeds.
    run_result_s run(std::vector<std::string> args) {
        run_result_s result = stats_tool::run(std::move(args));
        std::erase(result.output, '\r');
        return result;
    }
    std::string contents() { return test_support::read_file(file); }

    std::string file = scenario.join("scenario.xml");
};

} // namespace

TEST_F(stats_tool_settings, get_prints_a_scenario_setting_by_row_name_and_by_dotted_path) {
    run_result_s result = run({"get", file, "ScenarioName"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(result.output, "finance\n");
    result = run({"get", file, "scenario.scenarioname"});
    EXPECT_EQ(result.output, "finance\n");
    result = run({"get", file, "ConfigDataHolder.Scenario.ScenarioID"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(result.output, "42\n");
}

TEST_F(stats_tool_settings, get_json_prints_the_row_the_type_and_the_value) {
    run_result_s result = run({"get", file, "ReplicationMode", "--json"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(result.output, "{\"name\": \"Scenario.ReplicationMode\", \"row\": 104, \"type\": "
                             "\"ReplicationMode\", \"value\": \"Online\"}\n");
}

TEST_F(stats_tool_settings, get_prints_host_and_manager_settings) {
    EXPECT_EQ(run({"get", file, "Host", "--host", "2"}).output, "host2\n");
    EXPECT_EQ(run({"get", file, "IP", "--host", "1"}).output, "10.0.0.1\n");
    run_result_s result = run({"get", file, "Report.status", "--manager"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(result.output, "True\n");
    result = run({"get", file, "Index", "--manager"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.output.find("\"CommonHostProps\" with property \"Index\" is irrelevant for "
                                 "Manager Data"),
              std::string::npos)
        << result.output;
}

TEST_F(stats_tool_settings, get_prints_a_list_as_a_json_array_with_json) {
    run_result_s result =
        run({"get", file, "ListRegistryPaths_32.RegistryPaths", "--host", "2", "--json"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("\"type\": \"MultiEntry\", \"value\": [\"HKLM/a2\"]}"),
              std::string::npos)
        << result.output;
}

TEST_F(stats_tool_settings, get_of_a_setting_the_scenario_lacks_exits_one_with_the_words) {
    run_result_s result = run({"get", file, "GroupID"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "stats_tool: Unable to find node with property GroupID\n");
    result = run({"get", file, "Host", "--host", "7"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.output.find("Unable to find host node with index 7"), std::string::npos);
    result = run({"get", file, "ConfigDataHolder.Scenario.NoSuchThing"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.output.find("no setting is named"), std::string::npos) << result.output;
}

TEST_F(stats_tool_settings, set_stores_the_file_in_the_writer_form) {
    run_result_s result = run({"set", file, "ScenarioName=payroll"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("stored Scenario.ScenarioName"), std::string::npos);
    std::string text = contents();
    EXPECT_NE(text.find("\t\t<data label=\"ScenarioName\" val=\"payroll\" type=\"String\"/>\n"),
              std::string::npos)
        << text;
    EXPECT_EQ(text.find("finance"), std::string::npos);
    EXPECT_EQ(run({"get", file, "ScenarioName"}).output, "payroll\n");
}

TEST_F(stats_tool_settings, set_by_dotted_path_on_a_host_writes_that_host_only) {
    std::string path = "configdataholder.scenario.replicationtree.replnode.replnode."
                       "commonhostprops.ip";
    EXPECT_EQ(run({"set", file, path + "=10.0.0.99", "--host", "1"}).status, 1)
        << "that is host 2's path, not the Master's";
    run_result_s result = run({"set", file, path + "=10.0.0.99", "--host", "2"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(run({"get", file, "IP", "--host", "2"}).output, "10.0.0.99\n");
    EXPECT_EQ(run({"get", file, "IP", "--host", "1"}).output, "10.0.0.1\n");
}

TEST_F(stats_tool_settings, set_refuses_a_value_that_does_not_fit_and_leaves_the_file_untouched) {
    std::string before = contents();
    run_result_s result = run({"set", file, "ReplicationMode=Sometimes"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output,
              "stats_tool: Unable to set \"Scenario.ReplicationMode\" = \"Sometimes\", type "
              "doesn't fit\nstats_tool: Unable to convert \"Sometimes\" to ReplicationMode\n");
    EXPECT_EQ(contents(), before);
    result = run({"set", file, "IP=10.0.0", "--host", "1", "--json"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "{\"name\": \"CommonHostProps.IP\", \"stored\": false, \"words\": "
                             "[\"Unable to set \\\"CommonHostProps.IP\\\" = \\\"10.0.0\\\", type "
                             "doesn't fit\"]}\n");
    EXPECT_EQ(contents(), before);
}

TEST_F(stats_tool_settings, set_of_a_fixed_setting_needs_force) {
    std::string before = contents();
    run_result_s result = run({"set", file, "ScenarioID=77"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output,
              "stats_tool: Unable to reset fixed property \"Scenario.ScenarioID\"\n");
    EXPECT_EQ(contents(), before);
    result = run({"set", file, "ScenarioID=77", "--force"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(run({"get", file, "ScenarioID"}).output, "77\n");
}

TEST_F(stats_tool_settings, set_takes_a_list_as_a_json_array_with_json) {
    run_result_s result =
        run({"set", file, "ListRegistryPaths_32.RegistryPaths=[\"x\", \"y \\\"z\\\"\"]", "--host",
             "1", "--json"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(result.output,
              "{\"name\": \"ListRegistryPaths_32.RegistryPaths\", \"stored\": true}\n");
    result = run({"get", file, "ListRegistryPaths_32.RegistryPaths", "--host", "1", "--json"});
    EXPECT_NE(result.output.find("\"value\": [\"x\", \"y \\\"z\\\"\"]}"), std::string::npos)
        << result.output;
    EXPECT_EQ(run({"get", file, "ListRegistryPaths_32.RegistryPaths", "--host", "2"}).output,
              "HKLM/a2\n");
    // Without --json the text is no list, which a list refuses.
    result = run({"set", file, "ListRegistryPaths_32.RegistryPaths=x", "--host", "1"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.output.find("Unable to set list strings, input is invalid"), std::string::npos)
        << result.output;
}

TEST_F(stats_tool_settings, get_and_set_usage_errors_exit_with_two) {
    std::string before = contents();
    EXPECT_EQ(run({"get", file}).status, 2);
    EXPECT_EQ(run({"set", file, "ScenarioName"}).status, 2);
    EXPECT_EQ(run({"set", file, "=x"}).status, 2);
    EXPECT_EQ(run({"set", file, "Host=x", "--host", "1", "--force"}).status, 2);
    EXPECT_EQ(run({"get", file, "Host", "--host", "1", "--manager"}).status, 2);
    EXPECT_EQ(run({"get", file, "Host", "--host", "one"}).status, 2);
    EXPECT_EQ(run({"get", file, "ScenarioName", "--force"}).status, 2);
    run_result_s result = run({"get", file, "status"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.output.find("names several settings"), std::string::npos) << result.output;
    result = run(
        {"set", file, "ListRegistryPaths_32.RegistryPaths=[\"x\", 3]", "--host", "1", "--json"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.output.find("no JSON array of strings"), std::string::npos) << result.output;
    EXPECT_EQ(contents(), before);
}

TEST_F(stats_tool_settings, get_and_set_of_a_file_that_cannot_be_read_exit_with_two) {
    run_result_s result = run({"get", scenario.join("missing.xml"), "ScenarioName"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.output.find("the file cannot be opened"), std::string::npos) << result.output;
    test_support::write_file(file, "<?xml version=\"1.0\"?>\n<stats_saver/>\n");
    EXPECT_EQ(run({"set", file, "ScenarioName=x"}).status, 2);
    EXPECT_EQ(contents(), "<?xml version=\"1.0\"?>\n<stats_saver/>\n");
}
