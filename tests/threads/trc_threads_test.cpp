// The trace from many threads at once: every line whole, none lost.
#include "support/trc.h"

#include "common/test_support.h"
#include "platform/os.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using test_support::read_file;
using test_support::temp_dir_c;
using test_support::trace_capture_c;
using test_support::write_file;

using test_support::lines_of;

namespace {

constexpr int thread_count = 8;
constexpr int lines_per_thread = 300;

// A payload long enough that two writers interleaving inside a line would show.
const std::string payload(200, '=');

// One traced function, run by one thread; it prints `count` numbered lines at level 128, or with
// `mixed_levels` the even ones at 4 and the odd ones at 128. Lines end by either form of print.
void traced_worker(int thread, int count, std::uint64_t* thread_id, bool mixed_levels) {
    QVTR_SCOPE(trace, "trc_threads_test::traced_worker", "trc_threads_test");
    *thread_id = os::current_thread_id();
    for (int n = 0; n < count; ++n) {
        unsigned int level = mixed_levels && n % 2 == 0 ? 4 : 128;
        if ((n / 2) % 2)
            trace.print(level, 10, "thread %d line %d %s\n", thread, n, payload.c_str());
        else
            trace.print_nl(level, 11, "thread %d line %d %s", thread, n, payload.c_str());
    }
}

// Checks that every line of `text` is whole and counts the lines of each thread and number.
struct tally_s {
    std::map<std::pair<int, int>, int> seen;
    std::map<int, std::uint64_t> tids;
    std::vector<std::string> broken;

    void add(const std::string& text) {
        static const std::regex shape(
            R"(^\d{4}-\d{2}-\d{2} \d{2}:\d{2}:\d{2}\.\d{3} tid=(\d+) level=(?:4|128) )"
            R"(trc_threads_test:1[01] trc_threads_test::traced_worker: thread (\d+) line (\d+) (=+)$)");
        for (const std::string& line : lines_of(text)) {
            std::smatch m;
            if (!std::regex_match(line, m, shape) || m[4].length() != 200) {
                broken.push_back(line.substr(0, 120));
                continue;
            }
            int thread = std::stoi(m[2].str()), n = std::stoi(m[3].str());
            ++seen[{thread, n}];
            std::uint64_t tid = std::stoull(m[1].str());
            auto known = tids.find(thread);
            if (known == tids.end())
                tids[thread] = tid;
            else if (known->second != tid)
                broken.push_back("thread " + std::to_string(thread) + " changed its id");
        }
    }

    // Every (thread, line) exactly once.
    ::testing::AssertionResult complete(int threads, int lines) const {
        if (!broken.empty())
            return ::testing::AssertionFailure()
                   << broken.size() << " broken lines, the first: " << broken.front();
        for (int t = 0; t < threads; ++t)
            for (int n = 0; n < lines; ++n) {
                auto it = seen.find({t, n});
                if (it == seen.end())
                    return ::testing::AssertionFailure()
                           << "thread " << t << " line " << n << " is missing";
                if (it->second != 1)
                    return ::testing::AssertionFailure() << "thread " << t << " line " << n
                                                         << " stands " << it->second << " times";
            }
        if (seen.size() != static_cast<std::size_t>(threads * lines))
            return ::testing::AssertionFailure() << seen.size() << " distinct lines";
        return ::testing::AssertionSuccess();
    }
};

} // namespace

TEST(trc_threads, many_threads_tracing_at_once_lose_no_line_and_break_none) {
    trace_capture_c capture;
    std::vector<std::uint64_t> ids(thread_count);
    std::vector<std::thread> threads;
    for (int t = 0; t < thread_count; ++t)
        threads.emplace_back(traced_worker, t, lines_per_thread, &ids[static_cast<std::size_t>(t)],
                             false);
    for (std::thread& t : threads) t.join();

    std::string text = capture.text();
    tally_s tally;
    tally.add(text);
    EXPECT_TRUE(tally.complete(thread_count, lines_per_thread));
    EXPECT_EQ(lines_of(text).size(), static_cast<std::size_t>(thread_count * lines_per_thread));
    // Each line names the thread that printed it, and the threads are told apart.
    std::set<std::uint64_t> distinct;
    for (int t = 0; t < thread_count; ++t) {
        EXPECT_EQ(tally.tids[t], ids[static_cast<std::size_t>(t)]) << "thread " << t;
        distinct.insert(ids[static_cast<std::size_t>(t)]);
    }
    EXPECT_EQ(distinct.size(), static_cast<std::size_t>(thread_count));
}

TEST(trc_threads, re_reading_the_settings_while_threads_print_keeps_every_line_whole) {
    trace_capture_c capture;
    // Both settings let level 4 through; level 128 only the first.
    std::string on = capture.dir().join("on.trc"), narrow = capture.dir().join("narrow.trc");
    write_file(on, "trace = on\nlevels = 0xffffffff\n");
    write_file(narrow, "levels = 4\n");
    std::atomic<bool> stop{false};
    std::thread settings([&] {
        std::uint64_t size = 0;
        for (int i = 0; !stop.load(); ++i)
            qvtr_reparse_file(nullptr, size, (i % 2 ? narrow : on).c_str());
    });
    std::vector<std::uint64_t> ids(4);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back(traced_worker, t, 200, &ids[static_cast<std::size_t>(t)], true);
    for (std::thread& t : threads) t.join();
    stop = true;
    settings.join();

    tally_s tally;
    tally.add(capture.text());
    EXPECT_TRUE(tally.broken.empty())
        << tally.broken.size()
        << " broken, the first: " << (tally.broken.empty() ? "" : tally.broken.front());
    // Every level 4 line is there once; a level 128 line at most once.
    for (int t = 0; t < 4; ++t)
        for (int n = 0; n < 200; ++n) {
            auto it = tally.seen.find({t, n});
            int times = it == tally.seen.end() ? 0 : it->second;
            if (n % 2 == 0)
                EXPECT_EQ(times, 1) << "thread " << t << " line " << n;
            else
                EXPECT_LE(times, 1) << "thread " << t << " line " << n;
        }
}

TEST(trc_threads, switching_the_directory_while_threads_print_loses_no_line) {
    temp_dir_c first, second;
    std::uint64_t size = 0;
    ASSERT_TRUE(qvtr_set_log_directory(nullptr, size, first.str().c_str(), "switch", false));
    std::atomic<bool> stop{false};
    std::atomic<int> switches{0};
    std::thread switcher([&] {
        std::uint64_t mine = 0;
        for (int i = 1; !stop.load(); ++i) {
            qvtr_set_log_directory(nullptr, mine, (i % 2 ? second : first).str().c_str(), "switch",
                                   false);
            ++switches;
            std::this_thread::yield();
        }
    });
    std::vector<std::uint64_t> ids(4);
    std::vector<std::thread> threads;
    // The printers start once the switching has begun.
    while (switches.load() == 0) std::this_thread::yield();
    for (int t = 0; t < 4; ++t)
        threads.emplace_back(traced_worker, t, 200, &ids[static_cast<std::size_t>(t)], false);
    for (std::thread& t : threads) t.join();
    stop = true;
    switcher.join();
    qvtr_set_log_directory(nullptr, size, nullptr, nullptr, false);

    tally_s tally;
    tally.add(read_file(first.join("switch.log")));
    tally.add(read_file(second.join("switch.log")));
    EXPECT_TRUE(tally.complete(4, 200));
}
