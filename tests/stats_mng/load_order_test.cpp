// The start-up table runs in order when the library loads and in reverse order when it unloads.
#include "stats_mng/load_order.h"

#include <gtest/gtest.h>

#include <algorithm>
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
    EXPECT_EQ(numbers_of_steps(), (std::vector<int>{1, 2, 3, 4, 5, 12, 13, 20, 22, 26}));
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
