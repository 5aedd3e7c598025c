// Eight threads ask whether the engine is active while a second process takes and drops the
// engine's lock a thousand times: every answer is an answer, and once the other process has
// ended the answer is no.
#include "stats_mng.h"

#include "common/child_process.h"
#include "common/test_support.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

TEST(lock_stress, eight_threads_ask_while_another_process_cycles_the_lock) {
    test_support::temp_dir_c scenario, scratch;
    std::string path = scenario.str();
    test_support::child_process_c cycler({test_support::program_path("lock_cycler"), path, "1000"},
                                         scratch.join("cycler.out"));
    ASSERT_TRUE(cycler.started());

    std::atomic<bool> stop{false};
    std::atomic<long> answers{0}, active{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&] {
            while (!stop.load()) {
                bool yes = is_engine_active_for_scenario(path.c_str());
                ++answers;
                if (yes) ++active;
            }
        });
    }
    // Bounded: the cycler ends on its own; two minutes is far beyond what it needs.
    int status = cycler.wait(120000);
    stop = true;
    for (std::thread& thread : threads) thread.join();

    EXPECT_EQ(status, 0) << cycler.output();
    EXPECT_EQ(cycler.output().rfind("done ", 0), 0u) << cycler.output();
    EXPECT_GT(answers.load(), 0);
    EXPECT_FALSE(is_engine_active_for_scenario(path.c_str()));
    std::printf("answers %ld, active %ld, cycler: %s", answers.load(), active.load(),
                cycler.output().c_str());
}
