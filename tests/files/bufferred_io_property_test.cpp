// Random sequences of reads, writes, seeks, flushes and cuts through FILE_c with each open flag
// give the bytes that plain I/O gives: a model of the file in memory answers every read, and
// the file equals it at the end. Sizes cross sectors, chunks and the ring of writes.
#include "files/file_modif.h"

#include "common/test_support.h"
#include "support/thl.h"
#include "utl/value.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

using test_support::read_file;
using test_support::temp_dir_c;

struct variant_s {
    const char* name;
    unsigned flags;
    bool aio_write;
};

const variant_s variants[] = {
    {"plain", 0, true},
    {"read_ahead", open_flags_n::read_ahead, true},
    {"raw_read_ahead", open_flags_n::read_ahead | open_flags_n::raw_handle, true},
    {"overlapped", open_flags_n::overlapped, true},
    {"overlapped_without_aio_write", open_flags_n::overlapped, false},
};

// Named settings for one sequence.
class sequence_settings_c {
  public:
    sequence_settings_c() : _groups(true) {
        _groups.append(&_group);
        set_settings_list(&_groups);
    }
    ~sequence_settings_c() { set_settings_list(nullptr); }
    void set(const char* name, const std::string& text) {
        _group.add(new setting_c(name, text.c_str()));
    }

  private:
    ptr_list_c _groups;
    setting_group_c _group;
};

// A size that lands on and beside the boundaries of sectors, chunks and the ring.
std::size_t next_size(std::mt19937_64& random, std::size_t chunk, std::size_t sector) {
    switch (random() % 8) {
    case 0: return 1 + random() % 16;
    case 1: return sector - 1 + random() % 3;
    case 2: return chunk - 1 + random() % 3;
    case 3: return 2 * chunk - sector + random() % (2 * sector);
    case 4: return random() % (4 * chunk + 700);
    case 5: return chunk * (1 + random() % 6);
    default: return random() % (chunk + 100);
    }
}

// Runs one sequence; empty when the file behaved as the model, else what went wrong.
std::string run_sequence(const variant_s& variant, std::uint64_t seed, const std::string& path) {
    std::mt19937_64 random(seed);
    std::ostringstream log;
    bool small = random() % 4 != 0;
    std::size_t sector = 512;
    std::size_t chunk = small ? 512 * (1 + random() % 4) : 65536;
    sequence_settings_c settings;
    settings.set("ChunkLength", std::to_string(chunk));
    settings.set("IOReadLength", "0");
    settings.set("AIONumber", std::to_string(1 + random() % 5));
    if (!variant.aio_write) settings.set("EnableAIOWrite", "False");

    std::string model(random() % 3 == 0 ? random() % (3 * chunk) : 0, '\0');
    for (char& c : model) c = static_cast<char>(random());
    test_support::write_file(path, model);

    FILE_c file;
    if (!file.open(path.c_str(), "r+", nullptr, variant.flags)) return "open failed";
    // Small sectors and chunks so that a short sequence crosses many of them.
    file.reader.sector_size = file.writer.sector_size = static_cast<std::uint32_t>(sector);
    std::uint64_t position = 0;
    int steps = 10 + static_cast<int>(random() % 30);
    for (int step = 0; step < steps; ++step) {
        unsigned what = random() % 20;
        if (what < 4) {
            position = random() % (model.size() + 2 * sector + 1);
            log << "seek " << position << "; ";
            if (!file.seek(static_cast<std::int64_t>(position))) return log.str() + "seek failed";
        } else if (what < 11) {
            std::size_t n = next_size(random, chunk, sector);
            std::string data(n, '\0');
            for (char& c : data) c = static_cast<char>(random());
            log << "write " << n << " at " << position << "; ";
            std::int64_t put = file.write(data.data(), static_cast<std::int64_t>(n));
            if (put != static_cast<std::int64_t>(n))
                return log.str() + "write gave " + std::to_string(put);
            if (n && model.size() < position + n) model.resize(position + n, '\0');
            if (n) model.replace(position, n, data);
            position += n;
        } else if (what < 18) {
            std::size_t n = next_size(random, chunk, sector);
            std::string got(n, '\0');
            log << "read " << n << " at " << position << "; ";
            std::int64_t moved = file.read(got.data(), static_cast<std::int64_t>(n));
            std::size_t expected =
                position >= model.size() ? 0 : std::min<std::size_t>(n, model.size() - position);
            if (moved != static_cast<std::int64_t>(expected))
                return log.str() + "read gave " + std::to_string(moved) + ", plain I/O " +
                       std::to_string(expected);
            if (expected && got.compare(0, expected, model, position, expected) != 0)
                return log.str() + "read gave other bytes";
            position += expected;
        } else if (what == 18) {
            log << "flush; ";
            if (!file.flush()) return log.str() + "flush failed";
        } else {
            std::size_t size = random() % (model.size() + sector + 1);
            log << "truncate " << size << "; ";
            if (!file.truncate(static_cast<std::int64_t>(size))) return log.str() + "cut failed";
            model.resize(size, '\0');
        }
        if (file.tell() != static_cast<std::int64_t>(position))
            return log.str() + "tell gave " + std::to_string(file.tell());
    }
    if (!file.close()) return log.str() + "close failed";
    if (read_file(path) != model) return log.str() + "the file differs from plain I/O";
    return {};
}

class BufferedIoProperty : public ::testing::TestWithParam<variant_s> {};

TEST_P(BufferedIoProperty, RandomSequencesGiveTheBytesOfPlainIo) {
    const int sequences = 800;
    temp_dir_c dir;
    std::string path = dir.join("sequence.bin");
    for (int i = 0; i < sequences; ++i) {
        std::uint64_t seed = 0x5eed0000u + static_cast<std::uint64_t>(i) * 7919u +
                             GetParam().flags + (GetParam().aio_write ? 0 : 1);
        std::string failure = run_sequence(GetParam(), seed, path);
        ASSERT_TRUE(failure.empty()) << GetParam().name << ", seed " << seed << ": " << failure;
    }
}

INSTANTIATE_TEST_SUITE_P(EachOpenFlag, BufferedIoProperty, ::testing::ValuesIn(variants),
                         [](const ::testing::TestParamInfo<variant_s>& param_info) {
                             return std::string(param_info.param.name);
                         });

} // namespace
