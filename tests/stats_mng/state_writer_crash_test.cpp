// The engine's writer killed at any point while it rewrites a scenario's state file: after each
// kill the queries give one of the answers the rules allow (a torn file reads as nothing read,
// never as a state it does not hold), and the next write succeeds and is read back.
#include "stats_mng.h"

#include "common/child_process.h"
#include "common/test_support.h"
#include "stats_mng/stats_saver.h"
#include "stats_mng/stats_saver_ex.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <thread>

TEST(state_writer_crash,
     a_writer_killed_at_random_points_leaves_a_legal_answer_and_a_writable_file) {
    const int rounds = 1000;
    test_support::temp_dir_c scenario, scratch;
    const std::string path = scenario.str();
    std::filesystem::create_directories(scenario.path() / StateDirName);
    stats_saver_ex_c saver;
    saver.root_path.append(path.c_str());
    saver.state_dir_name.append(StateDirName);
    saver.scenario_id = 5;
    std::mt19937 random(20261124);
    int read_states = 0, unread = 0;
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        // Under wine a process start now and then fails after hundreds have come and gone; such
        // a start is tried again, as what is tested is the writer's run, not its start.
        std::unique_ptr<test_support::child_process_c> writer;
        for (int attempt = 0; attempt < 3 && !(writer && writer->started()); ++attempt)
            writer = std::make_unique<test_support::child_process_c>(
                std::vector<std::string>{test_support::program_path("engine_writer"), path, "1000"},
                scratch.join("writer" + std::to_string(round) + "-" + std::to_string(attempt) +
                             ".out"));
        ASSERT_TRUE(writer->started());
        ASSERT_TRUE(writer->says("writing")) << writer->output();
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 20000));
        writer->kill();
        EXPECT_NE(writer->wait(30000), -1) << "the killed writer has ended";

        unsigned int index = 77;
        bool read = get_scenario_state_index(path.c_str(), &index);
        if (read) {
            EXPECT_LT(index, 3u) << "the writer writes no other word";
            ++read_states;
        } else {
            EXPECT_EQ(index, 3u);
            ++unread;
        }
        is_sync_replicated(path.c_str());
        EXPECT_FALSE(is_engine_active_for_scenario(path.c_str()))
            << "the lock is not taken by the writer";

        // Whatever the kill left, the next write replaces it and reads back.
        ASSERT_TRUE(saver.set_state(1, false));
        index = 77;
        EXPECT_TRUE(get_scenario_state_index(path.c_str(), &index));
        EXPECT_EQ(index, 1u);
    }
    std::printf("%d kills: a state read %d times, nothing read %d times\n", rounds, read_states,
                unread);
}

// Two engines writing one scenario at once: nothing but the opens' sharing rules stands between
// them, and a writer's open shares with other writers, so the two may mix their bytes. Both
// go on to the end, the queries answer what the rules allow, and the next write repairs the
// file.
TEST(state_writer_crash, two_writers_of_one_scenario_in_two_processes) {
    test_support::temp_dir_c scenario, scratch;
    const std::string path = scenario.str();
    std::filesystem::create_directories(scenario.path() / StateDirName);
    test_support::child_process_c first({test_support::program_path("engine_writer"), path, "300"},
                                        scratch.join("first.out"));
    test_support::child_process_c second({test_support::program_path("engine_writer"), path, "300"},
                                         scratch.join("second.out"));
    ASSERT_TRUE(first.started() && second.started());
    int legal = 0;
    for (int i = 0; i < 200; ++i) {
        unsigned int index = 77;
        bool read = get_scenario_state_index(path.c_str(), &index);
        legal += (read && index < 3) || (!read && index == 3);
    }
    EXPECT_EQ(legal, 200);
    ASSERT_EQ(first.wait(120000), 0) << first.output();
    ASSERT_EQ(second.wait(120000), 0) << second.output();
    long written_first = 0, written_second = 0;
    EXPECT_EQ(std::sscanf(first.output().c_str(), "writing\ndone %ld", &written_first), 1)
        << first.output();
    EXPECT_EQ(std::sscanf(second.output().c_str(), "writing\ndone %ld", &written_second), 1)
        << second.output();
    unsigned int index = 77;
    bool read = get_scenario_state_index(path.c_str(), &index);
    EXPECT_TRUE((read && index < 3) || (!read && index == 3)) << read << " " << index;

    stats_saver_ex_c saver;
    saver.root_path.append(path.c_str());
    saver.state_dir_name.append(StateDirName);
    ASSERT_TRUE(saver.set_state(1, true));
    EXPECT_TRUE(get_scenario_state_index(path.c_str(), &index));
    EXPECT_EQ(index, 0u);
    std::printf("writes that succeeded: %ld and %ld of 300 each\n", written_first, written_second);
}
