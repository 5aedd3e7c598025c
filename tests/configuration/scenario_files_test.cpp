// The scenario files of tests/scenarios, made with stats_tool new-scenario and edited (see
// tests/scenarios/make-scenarios): each is loaded from its file and validated, and its findings
// must be those of its .findings file, in order, by code, host, item, name and peer name. Each
// file that breaks a rule must show that rule's finding.
#include "configuration/scenario_conf.h"

#include "configuration/scenario_loader.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

namespace {

const std::string folder = STATS_MNG_SCENARIO_DIR;

std::string text_of(const utl_stream_c& s) { return s.c_str() ? s.c_str() : ""; }

// One finding as a line of a .findings file.
std::string line_of(const ch_data_s& f) {
    std::int64_t item = f.item == ch_data_s::no_item ? -1 : static_cast<std::int64_t>(f.item);
    return std::to_string(f.code) + "\t" + std::to_string(f.host) + "\t" + std::to_string(item) +
           "\t" + text_of(f.name) + "\t" + text_of(f.peer_name);
}

std::vector<std::string> expected_of(const std::string& name) {
    std::ifstream in(folder + "/" + name + ".findings", std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

struct validated_s {
    bool loaded = false;
    bool consistent = false;
    bool valid = false;
    std::vector<std::string> findings;
};

validated_s validate(const std::string& name) {
    validated_s out;
    scenario_conf_c scenario;
    scenario_load_result_s result =
        scenario_loader_n::load_file(scenario, (folder + "/" + name + ".xml").c_str());
    out.loaded = result.ok();
    if (!out.loaded) return out;
    out.consistent = scenario.check_consistency();
    xmc_validity_c validity;
    out.valid = scenario.check_xmc_validity(validity);
    for (ch_data_s* f = validity.findings.first(); f; f = validity.findings.next(f))
        out.findings.push_back(line_of(*f));
    return out;
}

// The file and the finding that shows the rule it breaks: "code<TAB>host<TAB>item" at the
// start of one of its lines; empty for a valid file.
struct case_s {
    const char* name;
    const char* shows;
};

const case_s cases[] = {
    {"valid_ha_file_server", ""},
    {"valid_dr_file_server", ""},
    {"new_dr_file_server", "5\t1\t0\t"},
    {"heartbeat_too_slow", "25\t0\t-1\t"},
    {"value_out_of_range", "24\t0\t-1\t"},
    {"trigger_without_script", "27\t1\t-1\t"},
    {"rewind_while_scheduled", "26\t2\t-1\t"},
    {"registry_without_keys", "32\t1\t-1\t"},
    {"suspend_and_vetted_failback", "21\t2\t-1\t"},
    {"compress_below_compress", "20\t2\t-1\t"},
    {"system_state_not_kept", "31\t0\t-1\t"},
    {"application_banana", "3\t0\t-1\tScenario.Application"},
    {"no_replication_tree", "3\t2\t-1\tScenario.ReplNode"},
    {"several_findings", "27\t1\t-1\t"},
};

class scenario_files_test : public ::testing::TestWithParam<case_s> {};

} // namespace

TEST_P(scenario_files_test, findings_are_those_of_the_findings_file) {
    const case_s& c = GetParam();
    validated_s v = validate(c.name);
    ASSERT_TRUE(v.loaded) << c.name;
    EXPECT_EQ(v.findings, expected_of(c.name)) << c.name;
    EXPECT_EQ(v.valid, v.findings.empty()) << c.name;
    EXPECT_TRUE(v.consistent) << c.name;
    if (!*c.shows) {
        EXPECT_TRUE(v.valid) << c.name;
        return;
    }
    bool shown = false;
    for (const std::string& line : v.findings) shown = shown || line.rfind(c.shows, 0) == 0;
    EXPECT_TRUE(shown) << c.name << " lacks " << c.shows;
}

INSTANTIATE_TEST_SUITE_P(scenarios, scenario_files_test, ::testing::ValuesIn(cases),
                         [](const ::testing::TestParamInfo<case_s>& param_info) {
                             return std::string(param_info.param.name);
                         });

TEST(scenario_files, every_file_of_the_folder_is_a_case) {
    std::set<std::string> named;
    for (const case_s& c : cases) named.insert(c.name);
    std::set<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".xml") found.insert(entry.path().stem().string());
    EXPECT_EQ(found, named);
}

TEST(scenario_files, the_several_findings_file_has_findings_of_five_rules) {
    validated_s v = validate("several_findings");
    std::set<std::string> codes;
    for (const std::string& line : v.findings) codes.insert(line.substr(0, line.find('\t')));
    EXPECT_EQ(codes, (std::set<std::string>{"20", "24", "25", "26", "27"}));
}
