// Eight threads read settings of one scenario while a ninth writes them: every read sees a
// whole value as one write left it, and the lock of the scenario's data is what makes it so
// (the ThreadSanitizer build runs this test and reports any access outside it).
#include "configuration/scenario_conf.h"
#include "configuration/scenario_documents.h"
#include "configuration/scenario_loader.h"
#include "utl/utl.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace sd = scenario_documents;

namespace {

constexpr std::uint32_t row_scenario_name = 3;
constexpr std::uint32_t host_row_ip = 1;
constexpr std::uint32_t host_row_spool_directory = 8;
constexpr std::uint32_t host_row_registry_paths = 24;

constexpr int reader_count = 8;
constexpr int reads_per_thread = 1500;
constexpr int writes = 300;
constexpr int list_length = 3;

std::string host(const std::string& index, const std::string& replicas) {
    std::string list = "<data label=\"RegistryPaths\" val=\"String\" type=\"MultiEntry\">";
    for (int i = 0; i < list_length; ++i) list += sd::data("RegistryPaths", "start");
    list += "</data>";
    return sd::object("ReplNode", "5000",
                      sd::host_props(index, sd::data("IP", "10.0.0." + index, "IPAddr") +
                                                sd::data("SpoolDirectory", "C:/s", "DefFullPath") +
                                                sd::object("ListRegistryPaths_32", "250", list) +
                                                sd::root_dirs(sd::root_dir("C:/data", "1"))) +
                          replicas);
}

// The number a written text carries after its prefix, or -1 when it is not whole.
int number_after(const std::string& text, const std::string& prefix) {
    if (text.rfind(prefix, 0) != 0) return -1;
    std::string rest = text.substr(prefix.size());
    if (rest.empty() || rest.find_first_not_of("0123456789") != std::string::npos) return -1;
    return std::stoi(rest);
}

} // namespace

TEST(scenario_data_threads, eight_readers_see_whole_values_while_one_thread_writes) {
    scenario_conf_c conf;
    std::string text =
        sd::stored(sd::scenario(sd::scenario_data(), host("1", host("2", "") + host("3", ""))));
    ASSERT_TRUE(scenario_loader_n::load_text(conf, text.data(), text.size(), "threads").ok());
    xmc_value_c first("name-0");
    ASSERT_TRUE(conf.set_scenario_data(row_scenario_name, first, false));
    std::string host2_ip_path;
    {
        xml_item_c* out = nullptr;
        conf.find_property("CommonHostProps", "IP", conf.host_tree->find_host_node(2)->host_item,
                           &out);
        ASSERT_NE(out, nullptr);
        utl_stream_c path;
        host2_ip_path = out->get_path(path);
    }

    std::atomic<int> torn{0}, failed{0}, reads{0};
    std::vector<std::thread> readers;
    for (int t = 0; t < reader_count; ++t) {
        readers.emplace_back([&, t] {
            for (int i = 0; i < reads_per_thread; ++i) {
                xmc_value_c value;
                conf.get_scenario_data(row_scenario_name, value);
                if (value.lookup_failed || number_after(value.to_text(), "name-") < 0) ++torn;
                conf.get_host_data(host_row_registry_paths, 1 + (i + t) % 3, value);
                if (value.lookup_failed || !value.strings ||
                    value.strings->get_count() != list_length) {
                    ++torn;
                } else {
                    // One write gives every entry of a list the same text.
                    for (int e = 1; e < list_length; ++e)
                        if (std::string(value.strings->at(e)) != value.strings->at(0)) ++torn;
                }
                conf.get_host_data(host_row_ip, 2, value);
                if (utl_n::string_to_ip(value.to_text()) == 0) ++torn;
                if (conf.get_root_dir_count() != 1) ++failed;
                ++reads;
            }
        });
    }
    std::thread writer([&] {
        for (int w = 1; w <= writes; ++w) {
            std::string n = std::to_string(w);
            xmc_value_c name(("name-" + n).c_str());
            if (!conf.set_scenario_data(row_scenario_name, name, false)) ++failed;
            xmc_value_c list;
            list.strings = new xmc_string_array_c;
            for (int e = 0; e < list_length; ++e) list.strings->add(("k" + n).c_str());
            if (!conf.set_host_data(host_row_registry_paths, 1 + w % 3, list)) ++failed;
            xmc_value_c ip(("10.0." + std::to_string(w % 250) + ".2").c_str());
            if (!conf.set_host_data(host2_ip_path.c_str(), 2, ip)) ++failed;
            xmc_value_c spool(("C:/spool" + n).c_str());
            if (!conf.set_host_data(host_row_spool_directory, spool)) ++failed;
        }
    });
    writer.join();
    for (std::thread& reader : readers) reader.join();

    EXPECT_EQ(torn.load(), 0);
    EXPECT_EQ(failed.load(), 0);
    EXPECT_EQ(reads.load(), reader_count * reads_per_thread);
    xmc_value_c last;
    EXPECT_STREQ(conf.get_scenario_data(row_scenario_name, last).to_text(), "name-300");
    EXPECT_STREQ(conf.get_host_data(host_row_spool_directory, 3, last).to_text(), "C:/spool300");
}
