// The latency of one get_scenario_state_index call, with both state files present (the
// scenario's own and the one a directory up), beside the floor of the system calls such a query
// must make: a stat of the scenario directory, then open, read and close of each of the two
// files. The ratio ours / floor is printed at the end, from the medians, and beside it the ratio
// of the bare system calls that the file layer's rules make (rules / floor).
#include "ratio_reporter.h"
#include "stats_mng.h"
#include "stats_mng/load_order.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

struct scenario_s {
    fs::path top;
    std::string scenario;
    std::string own_file;
    std::string parent_file;

    scenario_s() {
        char pattern[] = "/tmp/state_query_bench.XXXXXX";
        top = mkdtemp(pattern);
        fs::path dir = top / "parent" / "scenario";
        fs::create_directories(dir / ".mr_qv_prefix");
        fs::create_directories(top / "parent" / ".mr_qv_prefix");
        scenario = dir.string();
        own_file = (dir / ".mr_qv_prefix" / "stats.xml").string();
        parent_file = (top / "parent" / ".mr_qv_prefix" / "stats.xml").string();
        write(own_file, "Running", 200);
        write(parent_file, "Sync", 100);
    }
    ~scenario_s() {
        std::error_code ignored;
        fs::remove_all(top, ignored);
    }

    static void write(const std::string& path, const char* state, long time) {
        FILE* out = std::fopen(path.c_str(), "wb");
        std::fprintf(out,
                     "<?xml version=\"1.0\"?>\n<stats_saver>\n\t<Scenario HostIndex=\"1\" "
                     "ScenarioID=\"1001\" ScenarioName=\"finance\" State=\"%s\" "
                     "IsSyncReplicated=\"True\" IsSyncReplicatedTime=\"%ld\"/>\n</stats_saver>\n",
                     state, time);
        std::fclose(out);
    }
};

scenario_s& sample() {
    static scenario_s instance;
    return instance;
}

void ours(benchmark::State& state) {
    const std::string& path = sample().scenario;
    for (auto _ : state) {
        unsigned int index = 9;
        bool read = get_scenario_state_index(path.c_str(), &index);
        if (!read || index != 0) state.SkipWithError("the query did not read the state");
        benchmark::DoNotOptimize(index);
    }
}

// What any reader of the two files must do at least.
void floor(benchmark::State& state) {
    const scenario_s& s = sample();
    char buffer[4096];
    for (auto _ : state) {
        struct stat info;
        benchmark::DoNotOptimize(::stat(s.scenario.c_str(), &info));
        for (const std::string* file : {&s.own_file, &s.parent_file}) {
            int fd = ::open(file->c_str(), O_RDONLY);
            benchmark::DoNotOptimize(::read(fd, buffer, sizeof buffer));
            ::close(fd);
        }
        benchmark::ClobberMemory();
    }
}

// The system calls the query makes under the file layer's rules, without anything between
// them: a look at the directory, then for each file a look, the open, the two share-mode locks
// of a reader that shares everything (its mark, then the probe for an open that refuses
// readers), the read, the read that finds the end, and the close. Ours against this is the cost
// of everything the library does in user space.
void rules(benchmark::State& state) {
    const scenario_s& s = sample();
    char buffer[8192];
    constexpr off_t markers = static_cast<off_t>(1) << 62;
    for (auto _ : state) {
        benchmark::DoNotOptimize(::access(s.scenario.c_str(), F_OK));
        for (const std::string* file : {&s.own_file, &s.parent_file}) {
            benchmark::DoNotOptimize(::access(file->c_str(), F_OK));
            int fd = ::open(file->c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
            struct flock mark {};
            mark.l_type = F_RDLCK;
            mark.l_start = markers;
            mark.l_len = 1;
            ::fcntl(fd, F_OFD_SETLK, &mark);
            struct flock probe {};
            probe.l_type = F_WRLCK;
            probe.l_start = markers + 3;
            probe.l_len = 1;
            ::fcntl(fd, F_OFD_GETLK, &probe);
            benchmark::DoNotOptimize(::read(fd, buffer, sizeof buffer));
            benchmark::DoNotOptimize(::read(fd, buffer, sizeof buffer));
            ::close(fd);
        }
        benchmark::ClobberMemory();
    }
}

} // namespace

BENCHMARK(rules)->Name("rules/get_scenario_state_index");
BENCHMARK(ours)->Name("ours/get_scenario_state_index");
BENCHMARK(floor)->Name("floor/get_scenario_state_index");

int main(int argc, char** argv) {
    load_order_n::library_scope_c library;
    benchmark::Initialize(&argc, argv);
    ratio_reporter_c reporter({"ours", "rules"}, "floor", {"get_scenario_state_index"}, true);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
