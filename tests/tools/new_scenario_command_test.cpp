// stats_tool new-scenario: a stored scenario made from the built-in template.
#include "configuration/scenario_conf.h"
#include "configuration/scenario_loader.h"
#include "configuration/xmc_item.h"
#include "stats_tool_fixture.h"

#include <string>
#include <vector>

using test_support::count_of;
using test_support::temp_dir_c;
using tool_test::run_result_s;
using tool_test::stats_tool;

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

// Loads the scenario that a run printed into `file`, as a stored scenario, and checks the
// fields the loader reads from it and the hosts it indexes.
void expect_instance(const std::string& file, scenario_conf_c& conf, std::uint32_t product,
                     std::uint32_t application, bool vetted_failback) {
    scenario_load_result_s loaded = scenario_loader_n::load_file(conf, file.c_str());
    ASSERT_TRUE(loaded.ok()) << loaded.message.c_str();
    EXPECT_EQ(conf.product, product);
    EXPECT_EQ(conf.application, application);
    EXPECT_EQ(conf.vetted_failback, vetted_failback);
    EXPECT_EQ(conf.config_mode, 1u);
    EXPECT_EQ(loaded.host_count, 2u);
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
    expect_instance(output_file(), conf, 1, 4, false);
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
    expect_instance(output_file(), conf, 0, 0, true);
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
