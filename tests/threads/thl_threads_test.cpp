// thl under contention: the list with its lock, the locks and the counter.
#include "support/thl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int thread_count = 4;

// Reads the fields of a list; used only after the threads are joined or under the list's lock.
class probe_list_c : public ptr_list_c {
  public:
    explicit probe_list_c(bool with_lock) : ptr_list_c(with_lock) {}
    std::uint64_t count() const { return _count; }
    // Walks the chain both ways; true when the links agree with each other and with the count.
    bool chain_is_whole() const {
        std::uint64_t forward = 0, backward = 0;
        ptr_list_element_c* before = nullptr;
        for (ptr_list_element_c* e = _first; e; before = e, e = e->next, ++forward)
            if (e->prev != before || forward > _count) return false;
        if (before != _last) return false;
        for (ptr_list_element_c* e = _last; e; e = e->prev, ++backward)
            if (backward > _count) return false;
        return forward == _count && backward == _count;
    }
};

// Distinct data pointers for each thread: the addresses of the cells of one array.
struct cells_s {
    explicit cells_s(int per_thread) : per(per_thread), cells(thread_count * per_thread) {}
    const void* at(int thread, int i) const {
        return &cells[static_cast<std::size_t>(thread * per + i)];
    }
    int per;
    std::vector<int> cells;
};

template <typename Body> void run_threads(int n, Body body) {
    std::vector<std::thread> threads;
    for (int t = 0; t < n; ++t) threads.emplace_back(body, t);
    for (std::thread& t : threads) t.join();
}

} // namespace

TEST(thl_threads, concurrent_appends_lose_no_element) {
    constexpr int per_thread = 2000;
    cells_s cells(per_thread);
    probe_list_c list(true);
    run_threads(thread_count, [&](int t) {
        for (int i = 0; i < per_thread; ++i) list.append(cells.at(t, i));
    });
    EXPECT_EQ(list.count(), static_cast<std::uint64_t>(thread_count * per_thread));
    EXPECT_TRUE(list.chain_is_whole());
    std::set<const void*> seen;
    // The elements of each thread stand in the order that thread appended them.
    std::vector<int> next_of(thread_count, 0);
    bool ordered = true;
    for (const void* d = list.first(); d; d = list.next(nullptr)) {
        seen.insert(d);
        std::size_t index =
            static_cast<std::size_t>(static_cast<const int*>(d) - cells.cells.data());
        int t = static_cast<int>(index) / per_thread, i = static_cast<int>(index) % per_thread;
        if (i != next_of[static_cast<std::size_t>(t)]++) ordered = false;
    }
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(thread_count * per_thread));
    EXPECT_TRUE(ordered);
}

TEST(thl_threads, concurrent_appends_and_removals_by_data_leave_the_list_consistent) {
    constexpr int per_thread = 1500;
    cells_s cells(per_thread);
    probe_list_c list(true);
    run_threads(thread_count, [&](int t) {
        for (int i = 0; i < per_thread; ++i) {
            list.append(cells.at(t, i));
            list.insert(cells.at(t, i));
            // Remove every other element again, by its data, while the others work.
            if (i % 2) {
                list.remove_current(cells.at(t, i));
                list.remove_current(cells.at(t, i));
            }
        }
    });
    // Each even index stands twice (appended and inserted), each odd one not at all.
    EXPECT_EQ(list.count(), static_cast<std::uint64_t>(thread_count * per_thread));
    EXPECT_TRUE(list.chain_is_whole());
    std::vector<int> times_seen(cells.cells.size(), 0);
    for (const void* d = list.first(); d; d = list.next(nullptr))
        ++times_seen[static_cast<std::size_t>(static_cast<const int*>(d) - cells.cells.data())];
    for (std::size_t k = 0; k < times_seen.size(); ++k)
        EXPECT_EQ(times_seen[k], (k % per_thread) % 2 ? 0 : 2) << k;
}

TEST(thl_threads, producers_and_consumers_under_lock_and_unlock) {
    constexpr int per_producer = 3000;
    cells_s cells(per_producer);
    probe_list_c list(true);
    std::atomic<int> producers_left{2};
    std::atomic<int> taken{0};
    std::vector<int> taken_by_cell(cells.cells.size(), 0);
    run_threads(4, [&](int t) {
        if (t < 2) {
            for (int i = 0; i < per_producer; ++i) list.append(cells.at(t, i));
            --producers_left;
            return;
        }
        // Consumers take the first element under the lock: a sequence of two calls.
        for (;;) {
            list.lock();
            const void* d = list.first();
            if (d) {
                list.remove_current(d);
                ++taken_by_cell[static_cast<std::size_t>(static_cast<const int*>(d) -
                                                         cells.cells.data())];
            }
            list.unlock();
            if (d)
                ++taken;
            else if (producers_left.load() == 0)
                break;
            else
                std::this_thread::yield();
        }
    });
    // A consumer can stop on an empty list just before a producer's last append; take the rest.
    for (const void* d = list.first(); d; d = list.first()) {
        list.remove_current(d);
        ++taken_by_cell[static_cast<std::size_t>(static_cast<const int*>(d) - cells.cells.data())];
        ++taken;
    }
    EXPECT_EQ(taken.load(), 2 * per_producer);
    EXPECT_EQ(list.count(), 0u);
    for (int t = 0; t < 2; ++t)
        for (int i = 0; i < per_producer; ++i)
            EXPECT_EQ(taken_by_cell[static_cast<std::size_t>(t * per_producer + i)], 1);
}

TEST(thl_threads, a_walk_under_lock_sees_a_steady_list_while_others_change_it) {
    constexpr int per_thread = 600;
    cells_s cells(per_thread);
    probe_list_c list(true);
    std::atomic<bool> stop{false};
    std::atomic<int> bad_walks{0}, walks{0};
    std::thread walker([&] {
        while (!stop.load()) {
            list.lock();
            std::uint64_t n = 0;
            for (const void* d = list.first(); d; d = list.next(nullptr)) ++n;
            if (n != list.count() || !list.chain_is_whole()) ++bad_walks;
            list.unlock();
            ++walks;
            std::this_thread::yield();
        }
    });
    run_threads(2, [&](int t) {
        // Start changing once the walker is at work.
        while (walks.load() == 0) std::this_thread::yield();
        for (int i = 0; i < per_thread; ++i) {
            list.append(cells.at(t, i));
            if (i % 3 == 0) list.remove_current(cells.at(t, i));
        }
    });
    stop = true;
    walker.join();
    EXPECT_EQ(bad_walks.load(), 0);
    EXPECT_GT(walks.load(), 0);
    EXPECT_TRUE(list.chain_is_whole());
}

TEST(thl_threads, a_critical_section_serialises_its_holders) {
    constexpr int rounds = 20000;
    thl_crit_section_c section(false);
    long long unguarded_total = 0; // written only under the section
    run_threads(thread_count, [&](int) {
        for (int i = 0; i < rounds; ++i) {
            thl_lock_c hold(&section);
            ++unguarded_total;
        }
    });
    EXPECT_EQ(unguarded_total, static_cast<long long>(thread_count) * rounds);
}

TEST(thl_threads, writers_exclude_everyone_and_readers_see_whole_updates) {
    single_writer_multi_reader_c rw;
    long long a = 0, b = 0; // kept equal by every writer
    std::atomic<int> torn{0};
    run_threads(6, [&](int t) {
        for (int i = 0; i < 3000; ++i) {
            if (t < 2) {
                single_writer_lock_c hold(rw);
                ++a;
                ++b;
            } else {
                multi_reader_lock_c hold(rw);
                if (a != b) ++torn;
            }
        }
    });
    EXPECT_EQ(torn.load(), 0);
    EXPECT_EQ(a, 6000);
    EXPECT_EQ(b, 6000);
}

TEST(thl_threads, the_counter_counts_every_step_and_hands_out_each_value_once) {
    constexpr int steps = 20000;
    thl_ref_counter_c counter;
    std::vector<std::vector<int>> results(thread_count);
    run_threads(thread_count, [&](int t) {
        std::vector<int>& mine = results[static_cast<std::size_t>(t)];
        mine.reserve(steps);
        for (int i = 0; i < steps; ++i) mine.push_back(counter.increase(1));
    });
    EXPECT_EQ(counter.value(), thread_count * steps);
    std::vector<int> all;
    for (const auto& r : results) all.insert(all.end(), r.begin(), r.end());
    std::sort(all.begin(), all.end());
    ASSERT_EQ(all.size(), static_cast<std::size_t>(thread_count * steps));
    for (std::size_t i = 0; i < all.size(); ++i) ASSERT_EQ(all[i], static_cast<int>(i) + 1);

    run_threads(thread_count, [&](int) {
        for (int i = 0; i < steps; ++i) {
            counter.increase(1);
            counter.decrease(1);
            counter.decrease(1);
        }
    });
    EXPECT_EQ(counter.value(), 0);
}

TEST(thl_threads, localtime_r_from_many_threads_gives_each_its_own_answer) {
    const std::int64_t times[thread_count] = {0, 951782400, 1700000000, 4102444800};
    std::tm expected[thread_count];
    for (int t = 0; t < thread_count; ++t) ASSERT_TRUE(mix_n::localtime_r(&times[t], &expected[t]));
    std::atomic<int> wrong{0};
    run_threads(thread_count, [&](int t) {
        for (int i = 0; i < 2000; ++i) {
            std::tm mine{};
            if (!mix_n::localtime_r(&times[t], &mine) || mine.tm_year != expected[t].tm_year ||
                mine.tm_yday != expected[t].tm_yday || mine.tm_hour != expected[t].tm_hour ||
                mine.tm_min != expected[t].tm_min || mine.tm_sec != expected[t].tm_sec)
                ++wrong;
        }
    });
    EXPECT_EQ(wrong.load(), 0);
}

TEST(thl_threads, parsing_numbers_from_many_threads) {
    std::atomic<int> wrong{0};
    run_threads(thread_count, [&](int t) {
        for (int i = 0; i < 5000; ++i) {
            std::int64_t value = 0;
            std::int64_t want = static_cast<std::int64_t>(t) * 1000000 + i;
            std::string text = " " + std::to_string(want) + " ";
            if (!mix_n::parse_formatted_integer_string(text.c_str(), value) || value != want)
                ++wrong;
        }
    });
    EXPECT_EQ(wrong.load(), 0);
}

TEST(thl_threads, a_reader_reads_again_while_a_writer_waits) {
    // The second read of the same thread must not queue behind the writer that waits for the
    // first: that would hold both for ever.
    single_writer_multi_reader_c lock;
    std::atomic<bool> writer_waiting{false}, written{false};
    std::thread writer;
    {
        multi_reader_lock_c first(lock);
        writer = std::thread([&] {
            writer_waiting = true;
            single_writer_lock_c write(lock);
            written = true;
        });
        while (!writer_waiting) std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        {
            multi_reader_lock_c second(lock);
            EXPECT_FALSE(written.load());
        }
        EXPECT_FALSE(written.load()) << "the first hold still stands";
    }
    writer.join();
    EXPECT_TRUE(written.load());
}

TEST(thl_threads, holds_of_many_locks_at_once_are_each_let_go) {
    std::vector<single_writer_multi_reader_c> locks(20);
    {
        std::vector<std::unique_ptr<multi_reader_lock_c>> holds;
        for (auto& lock : locks) holds.push_back(std::make_unique<multi_reader_lock_c>(lock));
        for (auto& lock : locks) holds.push_back(std::make_unique<multi_reader_lock_c>(lock));
    }
    // Every lock is free again: a writer takes each at once.
    for (auto& lock : locks) {
        std::thread writer([&] { single_writer_lock_c write(lock); });
        writer.join();
    }
}
