// The start-up table runs in order when the library starts and in reverse order when it stops.
#include "stats_mng/load_order.h"

#include "common/test_support.h"
#include "configuration/generic_conf.h"
#include "files/basic_file.h"
#include "files/fs_info.h"
#include "files/sys_info.h"
#include "stats_mng/stats_saver_ex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

std::vector<int> numbers_of_steps() {
    std::vector<int> numbers;
    for (const load_order_n::step_s& step : load_order_n::steps()) numbers.push_back(step.order);
    return numbers;
}

} // namespace

TEST(load_order, table_is_kept_in_the_order_of_its_numbers) {
    std::vector<int> numbers = numbers_of_steps();
    ASSERT_FALSE(numbers.empty());
    EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
    EXPECT_EQ(std::adjacent_find(numbers.begin(), numbers.end()), numbers.end());
}

TEST(load_order, steps_present_are_those_of_the_layers_built) {
    EXPECT_EQ(numbers_of_steps(), (std::vector<int>{1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11,
                                                    12, 13, 14, 15, 16, 17, 18, 20, 22, 26}));
}

TEST(load_order, loading_ran_every_step_in_order) {
    std::vector<int> journal = load_order_n::journal();
    std::vector<int> numbers = numbers_of_steps();
    ASSERT_GE(journal.size(), numbers.size());
    EXPECT_EQ(
        std::vector<int>(journal.begin(), journal.begin() + static_cast<long>(numbers.size())),
        numbers);
}

TEST(load_order, unloading_tears_down_in_reverse_order_and_loading_again_rebuilds) {
    std::size_t before = load_order_n::journal().size();
    load_order_n::stop_all();
    load_order_n::start_all();
    std::vector<int> journal = load_order_n::journal();
    std::vector<int> numbers = numbers_of_steps();
    std::vector<int> expected;
    for (auto it = numbers.rbegin(); it != numbers.rend(); ++it) expected.push_back(-*it);
    expected.insert(expected.end(), numbers.begin(), numbers.end());
    ASSERT_EQ(journal.size(), before + expected.size());
    EXPECT_EQ(std::vector<int>(journal.begin() + static_cast<long>(before), journal.end()),
              expected);
}

TEST(load_order, starting_twice_runs_nothing_again) {
    std::size_t before = load_order_n::journal().size();
    load_order_n::start_all();
    EXPECT_EQ(load_order_n::journal().size(), before);
}

// Each consumer of an object of a start-up step, used while the library is stopped: a debug
// build stops at an assertion, any other build writes the trace line and goes on with nothing.
TEST(load_order, every_consumer_of_an_unstarted_step_says_so) {
    struct consumer_s {
        const char* what;
        bool (*use)();
    };
    const consumer_s consumers[] = {
        {"the process-wide open-handle counter", [] { return open_handle_counter() != nullptr; }},
        {"the critical section around the drive list",
         [] { return file_system_info_n::common_fs_code() == file_system_info_n::fs_unknown; }},
        {"the sys_info_c instance", [] { return the_sys_info() != nullptr; }},
        {"the critical section serialising stats_saver_ex_c::_save",
         [] { return stats_saver_ex_n::save_section() != nullptr; }},
        {"the generic configurator", [] { return the_generic_conf() != nullptr; }},
    };
    for (const consumer_s& consumer : consumers) {
        SCOPED_TRACE(consumer.what);
        test_support::trace_capture_c trace;
        auto use_while_stopped = [&] {
            load_order_n::stop_all();
            consumer.use();
            load_order_n::start_all();
        };
        EXPECT_DEBUG_DEATH(use_while_stopped(), "before the library was started");
#if defined(NDEBUG)
        EXPECT_FALSE(
            test_support::trace_line(trace.text(), std::string(consumer.what) +
                                                       " is used before the library was started.")
                .empty())
            << trace.text();
        EXPECT_TRUE(load_order_n::started());
#endif
    }
}

TEST(load_order, started_is_true_between_start_and_stop) {
    EXPECT_TRUE(load_order_n::started());
    load_order_n::stop_all();
    EXPECT_FALSE(load_order_n::started());
    load_order_n::start_all();
    EXPECT_TRUE(load_order_n::started());
}

// Step 6 of a program of the static core: a start builds the configurator from the built-in
// template again and says so in the trace.
TEST(load_order, starting_builds_the_generic_configurator_and_traces_its_success) {
    test_support::trace_capture_c trace;
    load_order_n::stop_all();
    bool gone = !load_order_n::started();
    load_order_n::start_all();
    std::string line = test_support::trace_line(
        trace.text(), "O.K. Generic Coonfigurator is successfully built up");
    EXPECT_TRUE(gone);
    EXPECT_NE(line.find(" level=128 "), std::string::npos) << trace.text();
    EXPECT_NE(line.find("generic_conf_builder_c::generic_conf_builder_c: "), std::string::npos);
    EXPECT_EQ(test_support::count_of(trace.text(), " level=4 "), 0u) << trace.text();
    generic_conf_c* conf = the_generic_conf();
    ASSERT_NE(conf, nullptr);
    EXPECT_EQ(conf->xmc_version, 164u);
    EXPECT_EQ(conf->group_version, 3u);
}
