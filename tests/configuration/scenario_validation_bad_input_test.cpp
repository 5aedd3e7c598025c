// Stored scenarios that are broken, huge or full of rubbish, through the loader and both checks.
// Whatever the input, a load fails with a status and a message, or the checks run to their end:
// a broken scenario shows as a false answer or as findings, each with a name and a known code,
// never as a crash. The inputs are made from the valid two-host scenario of tests/scenarios.
#include "configuration/scenario_conf.h"

#include "configuration/scenario_loader.h"
#include "configuration/validity_findings.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

using validity_findings::finding_s;
using validity_findings::findings_of;

// The codes that the message tables know.
constexpr std::uint32_t code_count = 37;

std::string valid_text() {
    std::ifstream in(STATS_MNG_SCENARIO_DIR "/valid_ha_file_server.xml", std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// `text` with the first `from` replaced by `to`; the test fails when there is none.
std::string replaced(std::string text, const std::string& from, const std::string& to) {
    std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    if (at != std::string::npos) text.replace(at, from.size(), to);
    return text;
}

// `text` with the `External` object `external` added to the scenario, before its replication
// tree.
std::string with_external(const std::string& text, const std::string& external) {
    return replaced(text, "<title label=\"ReplicationTree\">",
                    external + "\n<title label=\"ReplicationTree\">");
}

struct outcome_s {
    scenario_load_result_s load;
    bool consistent = false;
    bool valid = false;
    std::vector<finding_s> findings;
};

// Loads `text` and, when it loads, runs both checks. Every finding must have a name and a
// known code.
outcome_s run(const std::string& text) {
    outcome_s out;
    scenario_conf_c scenario;
    out.load = scenario_loader_n::load_text(scenario, text.data(), text.size(), "bad.xml");
    if (!out.load.ok()) return out;
    out.consistent = scenario.check_consistency();
    xmc_validity_c validity;
    out.valid = scenario.check_xmc_validity(validity);
    out.findings = findings_of(validity);
    for (const finding_s& f : out.findings) {
        EXPECT_LT(f.code, code_count) << f;
        EXPECT_FALSE(f.name.empty()) << f;
    }
    return out;
}

std::string message_of(const outcome_s& out) {
    return out.load.message.c_str() ? out.load.message.c_str() : "";
}

// Findings or a false answer.
bool judged_broken(const outcome_s& out) {
    return !out.consistent || !out.valid || !out.findings.empty();
}

} // namespace

TEST(scenario_validation_bad_input, the_valid_scenario_is_valid) {
    outcome_s out = run(valid_text());
    ASSERT_TRUE(out.load.ok()) << message_of(out);
    EXPECT_EQ(out.load.host_count, 2u);
    EXPECT_TRUE(out.consistent);
    EXPECT_TRUE(out.valid);
    EXPECT_TRUE(out.findings.empty());
}

// Every 97th prefix of the file: a prefix that ends before the root's close tag is no XML
// document and fails with not_xml and a message; the only prefixes that load are those that
// hold the whole root, and they validate as the file does.
TEST(scenario_validation_bad_input, every_prefix_fails_to_load_or_validates) {
    const std::string text = valid_text();
    const std::size_t root_end = text.rfind("</object>") + std::string("</object>").size();
    ASSERT_GT(text.size(), 20000u);
    std::size_t failed = 0;
    for (std::size_t length = 0; length <= text.size(); length += 97) {
        outcome_s out = run(text.substr(0, length));
        if (length < root_end) {
            ASSERT_FALSE(out.load.ok()) << length;
            EXPECT_EQ(out.load.status, scenario_load_status_t::not_xml) << length;
            EXPECT_NE(message_of(out).find("bad.xml"), std::string::npos) << length;
            ++failed;
        } else {
            ASSERT_TRUE(out.load.ok()) << length << ": " << message_of(out);
            EXPECT_TRUE(out.valid) << length;
        }
    }
    EXPECT_EQ(failed, (root_end + 96) / 97);
}

// A scenario of about 50 MB: the scenario's comment holds 50 MB of text, entities among it. It
// loads, keeps the whole value, and validates as the file does.
TEST(scenario_validation_bad_input, a_scenario_of_fifty_megabytes_loads_and_validates) {
    std::string block = "The finance share, mirrored &amp; kept &lt;daily&gt;. ";
    std::string comment;
    comment.reserve(50u << 20);
    while (comment.size() < (50u << 20)) comment += block;
    const std::string text =
        replaced(valid_text(), "<data label=\"ScenarioComment\" val=\"\" type=\"Text\"/>",
                 "<data label=\"ScenarioComment\" val=\"" + comment + "\" type=\"Text\"/>");
    ASSERT_GT(text.size(), 50u << 20);

    scenario_conf_c scenario;
    scenario_load_result_s load =
        scenario_loader_n::load_text(scenario, text.data(), text.size(), "big.xml");
    ASSERT_TRUE(load.ok()) << (load.message.c_str() ? load.message.c_str() : "");
    EXPECT_EQ(load.host_count, 2u);
    labeled_value_c* value = scenario.find_property("Scenario", "ScenarioComment");
    ASSERT_NE(value, nullptr);
    // Each block of 57 bytes reads as 46 characters once its three entities are translated.
    const std::string translated = "The finance share, mirrored & kept <daily>. ";
    EXPECT_EQ(std::string(value->to_text()).size(),
              comment.size() / block.size() * translated.size());
    EXPECT_TRUE(std::string(value->to_text()).starts_with(translated + translated));
    EXPECT_TRUE(scenario.check_consistency());
    xmc_validity_c validity;
    EXPECT_TRUE(scenario.check_xmc_validity(validity));
    EXPECT_EQ(validity.findings.get_count(), 0u);
}

TEST(scenario_validation_bad_input, an_application_named_banana_has_findings) {
    outcome_s out = run(replaced(valid_text(), "<data label=\"Application\" val=\"FileServer\"",
                                 "<data label=\"Application\" val=\"Banana\""));
    ASSERT_TRUE(out.load.ok()) << message_of(out);
    EXPECT_FALSE(out.valid);
    EXPECT_EQ(out.findings, (std::vector<finding_s>{
                                {3, 0, "Scenario.Application"},
                                {12, 0, "ConfigDataHolder.Scenario.Application", "Application"}}));
}

TEST(scenario_validation_bad_input, no_replication_tree_is_code_3_for_host_2) {
    std::string text = valid_text();
    std::size_t from = text.find("<title label=\"ReplicationTree\">");
    std::size_t to = text.rfind("</title>");
    ASSERT_NE(from, std::string::npos);
    ASSERT_NE(to, std::string::npos);
    text.erase(from, to + std::string("</title>").size() - from);
    ASSERT_EQ(text.find("ReplNode"), std::string::npos);

    outcome_s out = run(text);
    ASSERT_TRUE(out.load.ok()) << message_of(out);
    EXPECT_EQ(out.load.host_count, 0u);
    EXPECT_FALSE(out.valid);
    ASSERT_FALSE(out.findings.empty());
    EXPECT_EQ(out.findings.back(), (finding_s{3, 2, "Scenario.ReplNode"}));
}

// ---- an External object with rubbish inside ---------------------------------------------------

namespace {

const std::string external_open = "<object label=\"External\" id=\"6000\" external=\"True\">";

// `count` random bytes from 1 to 255, with the three that an attribute value cannot hold as
// they are written as entities.
std::string random_value(std::mt19937& random, std::size_t count) {
    std::uniform_int_distribution<int> byte(1, 255);
    std::string value;
    for (std::size_t i = 0; i < count; ++i) {
        char c = static_cast<char>(byte(random));
        if (c == '"')
            value += "&quot;";
        else if (c == '&')
            value += "&amp;";
        else if (c == '<')
            value += "&lt;";
        else
            value += c;
    }
    return value;
}

} // namespace

TEST(scenario_validation_bad_input, random_bytes_as_attribute_values_in_external_objects) {
    std::mt19937 random(20240611);
    const char* ids[] = {"6789", "6799", "424242"};
    for (int round = 0; round < 30; ++round) {
        std::string external = external_open;
        for (const char* id : ids) {
            external += "<object label=\"" + random_value(random, 12) + "\" id=\"" + id +
                        "\" status=\"" + random_value(random, 4) + "\">";
            for (const char* label : {"SqlInstanceName", "SqlDbName", "Path"})
                external += "<data label=\"" + std::string(label) + "\" val=\"" +
                            random_value(random, 40) + "\" type=\"" + random_value(random, 6) +
                            "\" " + "x" + std::to_string(round) + "=\"" + random_value(random, 20) +
                            "\"/>";
            external += "</object>";
        }
        external += "</object>";
        outcome_s out = run(with_external(valid_text(), external));
        // Invalid UTF-8 may keep the reader from taking the text; what loads is judged.
        if (!out.load.ok()) {
            EXPECT_FALSE(message_of(out).empty()) << round;
            continue;
        }
        EXPECT_TRUE(judged_broken(out)) << round;
    }
}

// Raw bytes, 0 and `<` among them: most are no XML, and a load that fails says so. Bytes that
// hold no `<` are the object's text, which no check reads; an element among them is judged.
TEST(scenario_validation_bad_input, raw_random_bytes_inside_an_external_object) {
    std::mt19937 random(7);
    std::uniform_int_distribution<int> byte(0, 255);
    int failed = 0;
    for (int round = 0; round < 30; ++round) {
        std::string rubbish;
        for (int i = 0; i < 300; ++i) rubbish += static_cast<char>(byte(random));
        outcome_s out = run(with_external(valid_text(), external_open + rubbish + "</object>"));
        if (!out.load.ok()) {
            EXPECT_EQ(out.load.status, scenario_load_status_t::not_xml) << round;
            EXPECT_FALSE(message_of(out).empty()) << round;
            ++failed;
        } else if (rubbish.find('<') != std::string::npos) {
            EXPECT_TRUE(judged_broken(out)) << round;
        }
    }
    EXPECT_GT(failed, 0);
}

TEST(scenario_validation_bad_input, unknown_elements_in_an_external_object) {
    outcome_s out = run(with_external(
        valid_text(), external_open +
                          "<banana ripe=\"yes\"><peel/><peel/></banana>"
                          "<object label=\"Mystery\"><data label=\"x\" val=\"1\" type=\"Number\"/>"
                          "</object><title label=\"t\"/><data label=\"d\" val=\"v\" type=\"Odd\"/>"
                          "</object>"));
    ASSERT_TRUE(out.load.ok()) << message_of(out);
    EXPECT_TRUE(judged_broken(out));
    EXPECT_FALSE(out.consistent);
}

TEST(scenario_validation_bad_input, ids_that_no_creator_makes) {
    for (const char* id : {"0", "1", "424242", "-1", "99999999999999999999999", "abc", ""}) {
        outcome_s out = run(with_external(
            valid_text(), external_open + "<object label=\"Cdp\" id=\"" + std::string(id) +
                              "\"><data label=\"SqlDbName\" val=\"x\" type=\"String\"/></object>"
                              "</object>"));
        ASSERT_TRUE(out.load.ok()) << id << ": " << message_of(out);
        EXPECT_FALSE(out.consistent) << id;
        EXPECT_FALSE(out.valid) << id;
    }
}

// 100,000 levels below an external object, under a maker's id (the CDP and the database
// objects) and under none: the load, both checks and the destruction are loops, never
// recursion. The database object takes any XML as its own and is valid; the others are not.
TEST(scenario_validation_bad_input, nesting_a_hundred_thousand_levels_deep) {
    constexpr int depth = 100000;
    std::string deep;
    deep.reserve(depth * 12);
    for (int i = 0; i < depth; ++i) deep += "<d n=\"1\">";
    for (int i = 0; i < depth; ++i) deep += "</d>";
    struct holder_s {
        std::string text;
        bool valid;
    };
    const holder_s holders[] = {
        {"<object id=\"6789\" label=\"cdp\">" + deep + "</object>", false},
        {"<db id=\"6799\">" + deep + "</db>", true},
        {"<object label=\"x\" id=\"424242\">" + deep + "</object>", false},
        {deep, false},
    };
    for (const holder_s& holder : holders) {
        const std::string name = holder.text.substr(0, 40);
        outcome_s out = run(with_external(valid_text(), external_open + holder.text + "</object>"));
        ASSERT_TRUE(out.load.ok()) << name << ": " << message_of(out);
        if (holder.valid) {
            EXPECT_TRUE(out.consistent) << name;
            EXPECT_TRUE(out.valid) << name;
            EXPECT_TRUE(out.findings.empty()) << name;
        } else {
            EXPECT_TRUE(judged_broken(out)) << name;
        }
    }
}
