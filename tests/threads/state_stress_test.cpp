// Eight threads ask the three scenario queries while a second process rewrites the state file,
// whole and in place, and takes and drops the engine's lock: every answer is one that the
// states written allow (a read that meets a partial file answers that nothing was read), and
// once the writer has ended the answer is the last state it wrote.
#include "stats_mng.h"

#include "common/child_process.h"
#include "common/test_support.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <thread>
#include <vector>

TEST(state_stress, eight_threads_ask_while_another_process_rewrites_the_state) {
    test_support::temp_dir_c scenario, scratch;
    std::string path = scenario.str();
    std::filesystem::create_directories(scenario.path() / ".mr_qv_prefix");
    test_support::child_process_c writer({test_support::program_path("state_writer"), path, "1500"},
                                         scratch.join("writer.out"));
    ASSERT_TRUE(writer.started());

    std::atomic<bool> stop{false};
    std::atomic<long> answers{0}, unread{0}, illegal{0};
    std::atomic<long> by_state[3] = {};
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&] {
            while (!stop.load()) {
                unsigned int index = 77;
                bool read = get_scenario_state_index(path.c_str(), &index);
                is_sync_replicated(path.c_str());
                is_engine_active_for_scenario(path.c_str());
                ++answers;
                if (!read && index == 3)
                    ++unread;
                else if (read && index < 3)
                    ++by_state[index];
                else
                    ++illegal;
            }
        });
    }
    // Bounded: the writer ends on its own; two minutes is far beyond what it needs.
    int status = writer.wait(120000);
    stop = true;
    for (std::thread& thread : threads) thread.join();

    ASSERT_EQ(status, 0) << writer.output();
    long written = 0;
    unsigned last = 9;
    ASSERT_EQ(std::sscanf(writer.output().c_str(), "done %ld last %u", &written, &last), 2)
        << writer.output();
    EXPECT_GT(written, 0);
    EXPECT_EQ(illegal.load(), 0);
    EXPECT_GT(answers.load(), 0);
    unsigned int index = 77;
    EXPECT_TRUE(get_scenario_state_index(path.c_str(), &index));
    EXPECT_EQ(index, last);
    std::printf("answers %ld: Running %ld, Stop %ld, Sync %ld, nothing read %ld; writer: %s",
                answers.load(), by_state[0].load(), by_state[1].load(), by_state[2].load(),
                unread.load(), writer.output().c_str());
}
