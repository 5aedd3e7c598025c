// stats_tool template: the built-in template and the reference of its settings.
#include "configuration/generic_conf.h"
#include "configuration/xmc_item.h"
#include "configuration/xmc_template.h"
#include "stats_tool_fixture.h"
#include "utl/utl_stream.h"

#include <string>

using test_support::count_of;
using test_support::temp_dir_c;
using tool_test::run_result_s;
using tool_test::stats_tool;

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
