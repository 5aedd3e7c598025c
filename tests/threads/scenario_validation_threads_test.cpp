// Validation from several threads at once while another thread writes settings: each check
// holds the scenario's read lock to its end, the external objects are made once, and the
// rules that read again under the lock they hold (the database object, the system state rule)
// never wait behind the writer.
#include "configuration/scenario_conf.h"
#include "configuration/scenario_documents.h"
#include "configuration/scenario_loader.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace sd = scenario_documents;

namespace {

constexpr std::uint32_t row_scenario_name = 3;
constexpr int validator_count = 4;
constexpr int checks_per_thread = 150;
constexpr int writes = 300;

std::string host(const std::string& index, const std::string& path, const std::string& replicas) {
    return sd::object("ReplNode", "5000",
                      sd::host_props(index, sd::data("IP", "10.0.0." + index, "IPAddr") +
                                                sd::root_dirs(sd::root_dir(path, "1"))) +
                          replicas);
}

} // namespace

TEST(scenario_validation_threads, validators_see_the_same_findings_while_one_thread_writes) {
    scenario_conf_c conf;
    // A CDP scenario whose database object is made on first use, with the system state rule on
    // and nobody keeping the state: findings that every check must give alike.
    std::string external = "<object label=\"External\" id=\"6000\" external=\"True\">"
                           "<object id=\"6789\" label=\"cdp\">" +
                           sd::data("SqlInstanceName", "sql1") + sd::data("SqlDbName", "db") +
                           "</object></object>";
    std::string own = sd::data("IsCDPScenario", "True", "Bool") +
                      sd::data("SystemStateProtection", "True", "Bool") + external;
    std::string text = sd::stored(
        sd::scenario(sd::scenario_data(), host("1", "C:/data", host("2", "D:/data", "")), own));
    ASSERT_TRUE(scenario_loader_n::load_text(conf, text.data(), text.size(), "threads").ok());
    xmc_validity_c once;
    conf.check_xmc_validity(once);
    const std::uint64_t expected = once.findings.get_count();
    ASSERT_GT(expected, 0u);

    std::atomic<int> differing{0}, consistent{0};
    std::vector<std::thread> validators;
    for (int t = 0; t < validator_count; ++t) {
        validators.emplace_back([&] {
            for (int i = 0; i < checks_per_thread; ++i) {
                xmc_validity_c validity;
                conf.check_xmc_validity(validity);
                if (validity.findings.get_count() != expected) ++differing;
                if (conf.check_consistency()) ++consistent;
            }
        });
    }
    std::thread writer([&] {
        for (int w = 1; w <= writes; ++w) {
            xmc_value_c name(("name-" + std::to_string(w)).c_str());
            conf.set_scenario_data(row_scenario_name, name, false);
        }
    });
    writer.join();
    for (std::thread& validator : validators) validator.join();

    EXPECT_EQ(differing.load(), 0);
    EXPECT_EQ(consistent.load(), validator_count * checks_per_thread);
    EXPECT_EQ(conf.generic_objects.get_count(), 2u) << "the CDP and the database object, once each";
}
