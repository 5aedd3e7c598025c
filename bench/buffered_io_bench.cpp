// Sequential and random reads and writes of a 1 GB file through FILE_c with open flags 0, 0x10
// (the chunked reader) and 0x20 (read-ahead and the ring of asynchronous writes), against plain
// read(2)/write(2) (pread/pwrite at the random places) with the same chunk of the caller, 16 KB,
// a quarter of the library's chunk. Reads run once with the file in the page cache ("cached")
// and once after posix_fadvise(DONTNEED) has dropped it ("cold"). Random work moves 128 MB at
// 4 KB-aligned places of the whole file, the same places for every contender. MB/s, then the
// ratio of each FILE_c case to the plain calls (real time).
#include "files/file_modif.h"
#include "stats_mng/load_order.h"

#include <benchmark/benchmark.h>

#include "ratio_reporter.h"

#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::int64_t file_size = 1ll << 30;
constexpr std::int64_t chunk = 16 << 10;
constexpr std::int64_t random_bytes = 128ll << 20;

std::string scratch_file() {
    const char* dir = std::getenv("TMPDIR");
    return std::string(dir && *dir ? dir : "/tmp") + "/stats_mng_buffered_io_bench.bin";
}

std::vector<char>& buffer() {
    static std::vector<char> data(static_cast<std::size_t>(chunk), 'x');
    return data;
}

// The same random places for every contender.
const std::vector<std::int64_t>& random_places() {
    static std::vector<std::int64_t> places = [] {
        std::mt19937_64 random(20261124);
        std::vector<std::int64_t> made;
        for (std::int64_t done = 0; done < random_bytes; done += chunk)
            made.push_back(static_cast<std::int64_t>(random() % ((file_size - chunk) / 4096)) *
                           4096);
        return made;
    }();
    return places;
}

void ensure_file() {
    int fd = ::open(scratch_file().c_str(), O_WRONLY | O_CREAT, 0644);
    if (fd < 0) return;
    if (::lseek(fd, 0, SEEK_END) != file_size) {
        ::ftruncate(fd, 0);
        std::vector<char> big(1 << 20, 'y');
        for (std::int64_t done = 0; done < file_size; done += 1 << 20)
            if (::write(fd, big.data(), big.size()) != static_cast<ssize_t>(big.size())) break;
    }
    ::close(fd);
}

// Writes what the cache holds of the file and drops it, so that the next read goes to the disk.
void drop_from_cache() {
    int fd = ::open(scratch_file().c_str(), O_RDONLY);
    if (fd < 0) return;
    ::fdatasync(fd);
    ::posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED);
    ::close(fd);
}

void warm_cache() {
    int fd = ::open(scratch_file().c_str(), O_RDONLY);
    std::vector<char> big(1 << 20);
    while (fd >= 0 && ::read(fd, big.data(), big.size()) > 0) {
    }
    if (fd >= 0) ::close(fd);
}

enum class work_t {
    seq_write,
    seq_read_cached,
    seq_read_cold,
    rand_write,
    rand_read_cached,
    rand_read_cold
};

bool cold(work_t work) { return work == work_t::seq_read_cold || work == work_t::rand_read_cold; }
bool writes(work_t work) { return work == work_t::seq_write || work == work_t::rand_write; }
bool random_work(work_t work) {
    return work == work_t::rand_write || work == work_t::rand_read_cached ||
           work == work_t::rand_read_cold;
}
std::int64_t bytes_of(work_t work) { return random_work(work) ? random_bytes : file_size; }

void prepare(benchmark::State& state, work_t work) {
    state.PauseTiming();
    ensure_file();
    if (cold(work)) drop_from_cache();
    if (work == work_t::seq_read_cached || work == work_t::rand_read_cached) warm_cache();
    state.ResumeTiming();
}

void file_c_case(benchmark::State& state, unsigned flags, work_t work) {
    for (auto _ : state) {
        prepare(state, work);
        FILE_c file;
        // Random writes go into the existing file; a sequential write makes it anew.
        const char* mode = work == work_t::seq_write ? "w" : writes(work) ? "r+" : "r";
        if (!file.open(scratch_file().c_str(), mode, nullptr, flags)) {
            state.SkipWithError("open failed");
            return;
        }
        std::int64_t total = 0;
        if (random_work(work)) {
            for (std::int64_t place : random_places()) {
                file.seek(place);
                total += writes(work) ? file.write(buffer().data(), chunk)
                                      : file.read(buffer().data(), chunk);
            }
        } else if (writes(work)) {
            for (std::int64_t done = 0; done < file_size; done += chunk)
                total += file.write(buffer().data(), chunk);
        } else {
            for (std::int64_t n; (n = file.read(buffer().data(), chunk)) > 0;) total += n;
        }
        if (!file.close() || total != bytes_of(work)) state.SkipWithError("transfer failed");
        benchmark::DoNotOptimize(total);
    }
    state.SetBytesProcessed(state.iterations() * bytes_of(work));
}

void plain_case(benchmark::State& state, work_t work) {
    for (auto _ : state) {
        prepare(state, work);
        int flags = work == work_t::seq_write ? O_WRONLY | O_CREAT | O_TRUNC
                    : writes(work)            ? O_WRONLY
                                              : O_RDONLY;
        int fd = ::open(scratch_file().c_str(), flags, 0644);
        if (fd < 0) {
            state.SkipWithError("open failed");
            return;
        }
        std::int64_t total = 0;
        if (random_work(work)) {
            for (std::int64_t place : random_places())
                total += writes(work) ? ::pwrite(fd, buffer().data(), chunk, place)
                                      : ::pread(fd, buffer().data(), chunk, place);
        } else if (writes(work)) {
            for (std::int64_t done = 0; done < file_size; done += chunk)
                total += ::write(fd, buffer().data(), chunk);
        } else {
            for (ssize_t n; (n = ::read(fd, buffer().data(), chunk)) > 0;) total += n;
        }
        ::close(fd);
        if (total != bytes_of(work)) state.SkipWithError("transfer failed");
        benchmark::DoNotOptimize(total);
    }
    state.SetBytesProcessed(state.iterations() * bytes_of(work));
}

struct case_s {
    const char* name;
    work_t work;
};

const case_s cases[] = {
    {"seq_write", work_t::seq_write},
    {"seq_read_cached", work_t::seq_read_cached},
    {"seq_read_cold", work_t::seq_read_cold},
    {"rand_write", work_t::rand_write},
    {"rand_read_cached", work_t::rand_read_cached},
    {"rand_read_cold", work_t::rand_read_cold},
};

struct contender_s {
    const char* name;
    unsigned flags;
};

const contender_s contenders[] = {
    {"FILE_c_0", 0},
    {"FILE_c_0x10", open_flags_n::read_ahead},
    {"FILE_c_0x20", open_flags_n::overlapped},
};

} // namespace

int main(int argc, char** argv) {
    load_order_n::library_scope_c library;
    std::vector<std::string> case_names;
    for (const case_s& c : cases) {
        case_names.push_back(c.name);
        benchmark::RegisterBenchmark(
            (std::string("plain/") + c.name).c_str(),
            [work = c.work](benchmark::State& state) { plain_case(state, work); })
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond)
            ->Iterations(1);
        for (const contender_s& who : contenders)
            benchmark::RegisterBenchmark(
                (std::string(who.name) + "/" + c.name).c_str(),
                [flags = who.flags, work = c.work](benchmark::State& state) {
                    file_c_case(state, flags, work);
                })
                ->UseRealTime()
                ->Unit(benchmark::kMillisecond)
                ->Iterations(1);
    }
    benchmark::Initialize(&argc, argv);
    std::vector<std::string> ours;
    for (const contender_s& who : contenders) ours.push_back(who.name);
    ratio_reporter_c reporter(ours, "plain", case_names, true);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    ::unlink(scratch_file().c_str());
    return 0;
}
