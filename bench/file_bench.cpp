// Sequential write and read of a 256 MB file through FILE_c (on a C stream, and on a raw handle)
// against plain read(2)/write(2) with the same 1 MB buffer. Reports MB/s and, last, the ratio of
// each FILE_c case to the plain calls (real time: the work waits on the system).
#include "files/file_modif.h"
#include "stats_mng/load_order.h"

#include <benchmark/benchmark.h>

#include "ratio_reporter.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::int64_t file_size = 256ll << 20;
constexpr std::int64_t chunk = 1 << 20;

std::string scratch_file() {
    const char* dir = std::getenv("TMPDIR");
    return std::string(dir && *dir ? dir : "/tmp") + "/stats_mng_file_bench.bin";
}

std::vector<char>& buffer() {
    static std::vector<char> data(static_cast<std::size_t>(chunk), 'x');
    return data;
}

void ensure_file() {
    static bool made = false;
    if (made) return;
    int fd = ::open(scratch_file().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    for (std::int64_t done = 0; fd >= 0 && done < file_size; done += chunk)
        if (::write(fd, buffer().data(), chunk) != chunk) break;
    if (fd >= 0) ::close(fd);
    made = true;
}

void file_c_write(benchmark::State& state, unsigned flags) {
    for (auto _ : state) {
        FILE_c file;
        if (!file.open(scratch_file().c_str(), "w", nullptr, flags)) {
            state.SkipWithError("open failed");
            return;
        }
        for (std::int64_t done = 0; done < file_size; done += chunk)
            file.write(buffer().data(), chunk);
        file.close();
    }
    state.SetBytesProcessed(state.iterations() * file_size);
}

void file_c_read(benchmark::State& state, unsigned flags) {
    ensure_file();
    for (auto _ : state) {
        FILE_c file;
        if (!file.open(scratch_file().c_str(), "r", nullptr, flags)) {
            state.SkipWithError("open failed");
            return;
        }
        std::int64_t total = 0;
        for (std::int64_t n; (n = file.read(buffer().data(), chunk)) > 0;) total += n;
        benchmark::DoNotOptimize(total);
        file.close();
    }
    state.SetBytesProcessed(state.iterations() * file_size);
}

void plain_write(benchmark::State& state) {
    for (auto _ : state) {
        int fd = ::open(scratch_file().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        for (std::int64_t done = 0; done < file_size; done += chunk)
            if (::write(fd, buffer().data(), chunk) != chunk) state.SkipWithError("write failed");
        ::close(fd);
    }
    state.SetBytesProcessed(state.iterations() * file_size);
}

void plain_read(benchmark::State& state) {
    ensure_file();
    for (auto _ : state) {
        int fd = ::open(scratch_file().c_str(), O_RDONLY);
        std::int64_t total = 0;
        for (ssize_t n; (n = ::read(fd, buffer().data(), chunk)) > 0;) total += n;
        benchmark::DoNotOptimize(total);
        ::close(fd);
    }
    state.SetBytesProcessed(state.iterations() * file_size);
}

} // namespace

int main(int argc, char** argv) {
    load_order_n::library_scope_c library;
    constexpr unsigned stream = 0, raw = 0x200;
    auto reg = [](const char* name, auto function) {
        benchmark::RegisterBenchmark(name, function)
            ->Iterations(3)
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
    };
    reg("FILE_c_stream/write", [](benchmark::State& s) { file_c_write(s, stream); });
    reg("FILE_c_raw/write", [](benchmark::State& s) { file_c_write(s, raw); });
    reg("plain/write", plain_write);
    reg("FILE_c_stream/read", [](benchmark::State& s) { file_c_read(s, stream); });
    reg("FILE_c_raw/read", [](benchmark::State& s) { file_c_read(s, raw); });
    reg("plain/read", plain_read);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    ratio_reporter_c reporter({"FILE_c_stream", "FILE_c_raw"}, "plain", {"write", "read"}, true);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    std::remove(scratch_file().c_str());
    return 0;
}
