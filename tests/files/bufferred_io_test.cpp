// cache_base_c, pre_read_c and post_write_c over a file that records its asynchronous requests,
// and FILE_c with open flags 0x10 and 0x20: chunk sizes and the ring's size from the settings,
// sector merges, the ring's waits, the read-ahead requests and the flags FILE_c keeps.
#include "files/bufferred_io.h"

#include "common/test_support.h"
#include "files/file_modif.h"
#include "support/thl.h"
#include "utl/value.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using test_support::read_file;
using test_support::temp_dir_c;
using test_support::trace_capture_c;
using test_support::write_file;

constexpr unsigned overlapped = open_flags_n::overlapped;
constexpr unsigned read_ahead_flag = open_flags_n::read_ahead;

// Installs named settings for the lifetime of the object.
class settings_c {
  public:
    settings_c() : _groups(true) {
        _groups.append(&_group);
        set_settings_list(&_groups);
    }
    ~settings_c() { set_settings_list(nullptr); }
    settings_c(const settings_c&) = delete;
    settings_c& operator=(const settings_c&) = delete;

    settings_c& set(const char* name, const char* text) {
        _group.add(new setting_c(name, text));
        return *this;
    }

  private:
    ptr_list_c _groups;
    setting_group_c _group;
};

// One asynchronous call that reached the file: 'R' a read started, 'W' a write started, 'w' a
// wait, with the request's place in the ring where it has one.
struct call_s {
    char kind;
    std::uint64_t offset;
    std::uint32_t count;
    const aio_request_s* request;
};

// A raw overlapped file that records the asynchronous calls made on it.
class recording_file_c : public basic_file_c {
  public:
    bool aio_read(void* buffer, std::uint64_t offset, std::uint32_t count,
                  aio_request_s& request) override {
        calls.push_back({'R', offset, count, &request});
        return basic_file_c::aio_read(buffer, offset, count, request);
    }
    bool aio_write(const void* source, std::uint64_t offset, std::uint32_t count,
                   aio_request_s& request) override {
        calls.push_back({'W', offset, count, &request});
        return basic_file_c::aio_write(source, offset, count, request);
    }
    bool aio_wait(aio_request_s& request) override {
        calls.push_back({'w', request.offset, request.count, &request});
        return basic_file_c::aio_wait(request);
    }
    std::vector<call_s> of_kind(char kind) const {
        std::vector<call_s> found;
        for (const call_s& c : calls)
            if (c.kind == kind) found.push_back(c);
        return found;
    }

    std::vector<call_s> calls;
};

std::string pattern(std::size_t size, char seed) {
    std::string text(size, '\0');
    for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>(seed + i % 23);
    return text;
}

class BufferedIo : public ::testing::Test {
  protected:
    // A file of `content` opened raw and overlapped for the recording file.
    void open_with(const std::string& content) {
        file_path = dir.join("data.bin");
        write_file(file_path, content);
        ASSERT_TRUE(file.open(file_path.c_str(), "r+", nullptr, overlapped));
    }

    temp_dir_c dir;
    std::string file_path;
    recording_file_c file;
};

// ---- sizes from the settings

TEST(BufferedIoSettings, AioNumberIsClampedToOneToFive) {
    {
        settings_c settings;
        settings.set("AIONumber", "0");
        EXPECT_EQ(post_write_c().aio_number, 1);
    }
    {
        settings_c settings;
        settings.set("AIONumber", "9");
        EXPECT_EQ(post_write_c().aio_number, 5);
    }
    {
        settings_c settings;
        settings.set("AIONumber", "4");
        EXPECT_EQ(post_write_c().aio_number, 4);
    }
    EXPECT_EQ(post_write_c().aio_number, 3) << "a missing setting gives 3";
}

TEST(BufferedIoSettings, ChunkLengthIsRoundedUpToWholeSectors) {
    settings_c settings;
    settings.set("ChunkLength", "1000").set("IOReadLength", "1000");
    pre_read_c reader;
    EXPECT_EQ(reader.sector_size, 512u);
    EXPECT_EQ(reader.get_chunk_length(), 1024u);
}

TEST(BufferedIoSettings, ChunkLengthOfZeroIsOneSector) {
    settings_c settings;
    settings.set("ChunkLength", "0").set("IOReadLength", "0");
    pre_read_c reader;
    EXPECT_EQ(reader.get_chunk_length(), 512u);
}

TEST(BufferedIoSettings, ChunkLengthTakesTheGreaterSetting) {
    settings_c settings;
    settings.set("ChunkLength", "4096").set("IOReadLength", "10000");
    post_write_c writer;
    EXPECT_EQ(writer.get_chunk_length(), 10240u);
}

TEST(BufferedIoSettings, ChunkLengthDefaultsTo64KAndIsComputedOnce) {
    pre_read_c reader;
    EXPECT_EQ(reader.chunk_length, 0xFFFFFFFFu) << "all ones until the first use";
    EXPECT_EQ(reader.get_chunk_length(), 65536u);
    settings_c settings;
    settings.set("ChunkLength", "200000");
    EXPECT_EQ(reader.get_chunk_length(), 65536u) << "computed once";
}

// ---- post_write_c

TEST_F(BufferedIo, ShortWriteInsideASectorIsMergedIntoTheWholeSector) {
    open_with(std::string(4096, 'z'));
    settings_c settings;
    settings.set("ChunkLength", "4096").set("IOReadLength", "4096");
    post_write_c writer(&file);
    writer.use_aio = true;
    std::string data = pattern(100, 'a');
    ASSERT_EQ(writer.write(data.data(), 10, 100), 100u);
    EXPECT_EQ(writer.valid, 0u) << "nothing stays in the buffer";
    std::vector<call_s> writes = file.of_kind('W');
    ASSERT_EQ(writes.size(), 1u);
    EXPECT_EQ(writes[0].offset, 0u);
    EXPECT_EQ(writes[0].count, 512u);
    ASSERT_TRUE(writer.release());
    file.close();
    std::string expected(4096, 'z');
    expected.replace(10, 100, data);
    EXPECT_EQ(read_file(file_path), expected);
}

TEST_F(BufferedIo, WriteWithinAChunkStaysInTheBufferUntilFlush) {
    open_with(std::string(4096, 'z'));
    settings_c settings;
    settings.set("ChunkLength", "4096").set("IOReadLength", "4096");
    post_write_c writer(&file);
    writer.use_aio = true;
    std::string data = pattern(1000, 'a');
    ASSERT_EQ(writer.write(data.data(), 0, 1000), 1000u);
    EXPECT_TRUE(file.of_kind('W').empty()) << "the data wait in the buffer";
    EXPECT_EQ(writer.valid, 1000u);
    ASSERT_TRUE(writer.flush());
    std::vector<call_s> writes = file.of_kind('W');
    ASSERT_EQ(writes.size(), 2u);
    EXPECT_EQ(writes[0].offset, 0u);
    EXPECT_EQ(writes[0].count, 512u) << "the whole sector first";
    EXPECT_EQ(writes[1].offset, 512u);
    EXPECT_EQ(writes[1].count, 512u) << "then the sector at 512 with the 488 bytes merged";
    ASSERT_TRUE(writer.release());
    file.close();
    std::string expected(4096, 'z');
    expected.replace(0, 1000, data);
    EXPECT_EQ(read_file(file_path), expected) << "what follows the data in the sector is kept";
}

TEST_F(BufferedIo, FlushAtTheEndOfTheFileWritesOnlyTheData) {
    open_with("");
    settings_c settings;
    settings.set("ChunkLength", "4096").set("IOReadLength", "4096");
    post_write_c writer(&file);
    writer.use_aio = true;
    std::string data = pattern(700, 'a');
    ASSERT_EQ(writer.write(data.data(), 0, 700), 700u);
    ASSERT_TRUE(writer.flush());
    std::vector<call_s> writes = file.of_kind('W');
    ASSERT_EQ(writes.size(), 2u);
    EXPECT_EQ(writes[1].count, 188u) << "no sector to merge into at the end of the file";
    ASSERT_TRUE(writer.release());
    file.close();
    EXPECT_EQ(read_file(file_path), data);
}

TEST_F(BufferedIo, WriteThatContinuesTheBufferExtendsIt) {
    open_with("");
    settings_c settings;
    settings.set("ChunkLength", "4096").set("IOReadLength", "4096");
    post_write_c writer(&file);
    writer.use_aio = true;
    std::string a = pattern(300, 'a'), b = pattern(200, 'k');
    ASSERT_EQ(writer.write(a.data(), 0, 300), 300u);
    ASSERT_EQ(writer.write(b.data(), 300, 200), 200u);
    EXPECT_EQ(writer.valid, 500u);
    EXPECT_TRUE(file.of_kind('W').empty()) << "no flush";
    EXPECT_TRUE(writer.release());
}

TEST_F(BufferedIo, WriteBehindTheEndOfTheBufferForcesAFlush) {
    open_with("");
    settings_c settings;
    settings.set("ChunkLength", "4096").set("IOReadLength", "4096");
    post_write_c writer(&file);
    writer.use_aio = true;
    std::string a = pattern(300, 'a'), b = pattern(200, 'k');
    ASSERT_EQ(writer.write(a.data(), 0, 300), 300u);
    ASSERT_EQ(writer.write(b.data(), 301, 200), 200u);
    std::vector<call_s> writes = file.of_kind('W');
    ASSERT_EQ(writes.size(), 2u);
    EXPECT_EQ(writes[0].offset, 0u) << "the buffered 300 bytes went out first";
    EXPECT_EQ(writes[0].count, 300u);
    EXPECT_EQ(writes[1].offset, 301u) << "then the new data, with no whole sector to merge into";
    EXPECT_EQ(writes[1].count, 200u);
    EXPECT_EQ(writer.valid, 0u);
    ASSERT_TRUE(writer.flush());
    ASSERT_TRUE(writer.release());
    file.close();
    std::string expected = a + std::string(1, '\0') + b;
    EXPECT_EQ(read_file(file_path), expected);
}

TEST_F(BufferedIo, RingOfThreeTheThirdWriteWaitsForTheFirstAndTheFourthForTheSecond) {
    open_with("");
    settings_c settings;
    settings.set("ChunkLength", "4096").set("IOReadLength", "4096").set("AIONumber", "3");
    post_write_c writer(&file);
    writer.use_aio = true;
    std::string chunk = pattern(4096, 'a');
    auto waits_after = [&](std::size_t from) {
        std::vector<const aio_request_s*> waited;
        for (std::size_t i = from; i < file.calls.size(); ++i)
            if (file.calls[i].kind == 'w') waited.push_back(file.calls[i].request);
        return waited;
    };
    std::vector<const aio_request_s*> started;
    for (int i = 0; i < 4; ++i) {
        std::size_t before = file.calls.size();
        ASSERT_EQ(writer.write(chunk.data(), static_cast<std::uint64_t>(i) * 4096, 4096), 4096u);
        ASSERT_EQ(file.calls[before].kind, 'W');
        started.push_back(file.calls[before].request);
        std::vector<const aio_request_s*> waited = waits_after(before);
        if (i < 2) {
            EXPECT_TRUE(waited.empty()) << "write " << i + 1 << " waits for nothing";
        } else if (i == 2) {
            ASSERT_EQ(waited.size(), 1u);
            EXPECT_EQ(waited[0], started[0]) << "the third write already waits for the first";
        } else {
            EXPECT_EQ(started[3], started[0]) << "the fourth write uses the first's request";
            ASSERT_EQ(waited.size(), 1u);
            EXPECT_EQ(waited[0], started[1]);
        }
    }
    EXPECT_EQ(writer.next_request, 1);
    EXPECT_TRUE(writer.wrapped);
    ASSERT_TRUE(writer.release());
}

TEST_F(BufferedIo, WaitAllAfterAWrapWaitsFromTheNextRequestToTheEndOnly) {
    open_with("");
    settings_c settings;
    settings.set("ChunkLength", "4096").set("IOReadLength", "4096").set("AIONumber", "3");
    post_write_c writer(&file);
    writer.use_aio = true;
    std::string chunk = pattern(4096, 'a');
    for (int i = 0; i < 4; ++i)
        ASSERT_EQ(writer.write(chunk.data(), static_cast<std::uint64_t>(i) * 4096, 4096), 4096u);
    std::size_t before = file.calls.size();
    ASSERT_TRUE(writer._wait_all());
    std::vector<const aio_request_s*> waited;
    for (std::size_t i = before; i < file.calls.size(); ++i)
        waited.push_back(file.calls[i].request);
    ASSERT_EQ(waited.size(), 2u);
    EXPECT_EQ(waited[0], writer.requests[1]);
    EXPECT_EQ(waited[1], writer.requests[2]);
    EXPECT_EQ(writer.next_request, 0);
    EXPECT_FALSE(writer.wrapped);
    ASSERT_TRUE(writer.release()) << "the release waits for the latest write";
    file.close();
    EXPECT_EQ(read_file(file_path), chunk + chunk + chunk + chunk);
}

TEST_F(BufferedIo, WaitAllBeforeAWrapWaitsForEveryRequestStarted) {
    open_with("");
    settings_c settings;
    settings.set("ChunkLength", "4096").set("IOReadLength", "4096").set("AIONumber", "3");
    post_write_c writer(&file);
    writer.use_aio = true;
    std::string chunk = pattern(4096, 'a');
    for (int i = 0; i < 2; ++i)
        ASSERT_EQ(writer.write(chunk.data(), static_cast<std::uint64_t>(i) * 4096, 4096), 4096u);
    std::size_t before = file.calls.size();
    ASSERT_TRUE(writer._wait_all());
    ASSERT_EQ(file.calls.size() - before, 2u);
    EXPECT_EQ(file.calls[before].request, writer.requests[0]);
    EXPECT_EQ(file.calls[before + 1].request, writer.requests[1]);
    ASSERT_TRUE(writer.release());
}

TEST_F(BufferedIo, WriteWithoutAioWritesAtOnceAndMakesNoRing) {
    open_with(std::string(1024, 'z'));
    settings_c settings;
    settings.set("ChunkLength", "512").set("IOReadLength", "512");
    post_write_c writer(&file);
    std::string data = pattern(1536, 'a');
    ASSERT_EQ(writer.write(data.data(), 0, 1536), 1536u);
    EXPECT_TRUE(file.calls.empty()) << "no asynchronous call";
    EXPECT_EQ(writer.requests, nullptr) << "no ring without use_aio";
    EXPECT_TRUE(writer._wait_all());
    file.close();
    EXPECT_EQ(read_file(file_path), data);
}

TEST_F(BufferedIo, LargeWriteGoesStraightFromTheCallerInWholeChunks) {
    open_with("");
    settings_c settings;
    settings.set("ChunkLength", "4096").set("IOReadLength", "4096");
    post_write_c writer(&file);
    writer.use_aio = true;
    std::string data = pattern(3 * 4096 + 100, 'a');
    ASSERT_EQ(writer.write(data.data(), 0, data.size()), data.size());
    std::vector<call_s> writes = file.of_kind('W');
    ASSERT_EQ(writes.size(), 1u);
    EXPECT_EQ(writes[0].count, 3u * 4096);
    EXPECT_EQ(writer.valid, 100u) << "the rest waits in the buffer";
    EXPECT_EQ(writer.position, 3u * 4096);
    ASSERT_TRUE(writer.flush());
    ASSERT_TRUE(writer.release());
    file.close();
    EXPECT_EQ(read_file(file_path), data);
}

// ---- pre_read_c

TEST_F(BufferedIo, ReadAheadOfZeroBytesReturnsZeroAndStartsNothing) {
    open_with(pattern(8192, 'a'));
    pre_read_c reader(&file);
    char buffer[16];
    EXPECT_EQ(reader.read_ahead(buffer, 0, 0), 0u);
    EXPECT_TRUE(file.calls.empty());
    EXPECT_EQ(reader.front_request, nullptr);
    EXPECT_EQ(reader.back_request, nullptr);
}

TEST_F(BufferedIo, ReadOfAnOffsetOfAllOnesFails) {
    open_with(pattern(100, 'a'));
    pre_read_c reader(&file);
    char buffer[16];
    EXPECT_EQ(reader.read(buffer, ~std::uint64_t{0}, 4), cache_base_c::all_ones);
    EXPECT_EQ(reader.read(buffer, ~std::uint64_t{0} - 1, 4), cache_base_c::all_ones);
    EXPECT_EQ(reader.read_ahead(buffer, ~std::uint64_t{0} - 1, 4), cache_base_c::all_ones);
}

TEST_F(BufferedIo, SmallReadAheadStartsTheRestOfTheChunkAndTheNextChunk) {
    std::string content = pattern(20000, 'a');
    open_with(content);
    settings_c settings;
    settings.set("ChunkLength", "4096").set("IOReadLength", "4096");
    pre_read_c reader(&file);
    reader.mode = overlapped;
    std::string got(100, '\0');
    ASSERT_EQ(reader.read_ahead(got.data(), 0, 100), 100u);
    EXPECT_EQ(got, content.substr(0, 100));
    std::vector<call_s> reads = file.of_kind('R');
    ASSERT_EQ(reads.size(), 2u);
    EXPECT_EQ(reads[0].offset, 512u) << "the front read-ahead: the rest of this chunk";
    EXPECT_EQ(reads[0].count, 4096u - 512);
    EXPECT_EQ(reads[1].offset, 4096u) << "the back read-ahead: the whole next chunk";
    EXPECT_EQ(reads[1].count, 4096u);
    // Reading on is served by the two requests, and then starts the next pair.
    std::string more(8000, '\0');
    ASSERT_EQ(reader.read_ahead(more.data(), 100, 8000), 8000u);
    EXPECT_EQ(more, content.substr(100, 8000));
    reader.reset();
    EXPECT_EQ(reader.front_request, nullptr);
    EXPECT_EQ(reader.back_request, nullptr);
    EXPECT_EQ(reader.front_event, nullptr);
    EXPECT_EQ(reader.second_buffer, nullptr);
}

TEST_F(BufferedIo, ReadAheadAtTheEndOfTheFileDeliversWhatThereIs) {
    std::string content = pattern(5000, 'a');
    open_with(content);
    settings_c settings;
    settings.set("ChunkLength", "4096").set("IOReadLength", "4096");
    pre_read_c reader(&file);
    reader.mode = overlapped;
    std::string got(6000, '\0');
    std::uint64_t delivered = 0;
    for (int i = 0; i < 10 && delivered < 6000; ++i) {
        std::uint64_t n = reader.read_ahead(got.data() + delivered, delivered, 700);
        ASSERT_NE(n, cache_base_c::all_ones);
        if (n == 0) break;
        delivered += n;
    }
    EXPECT_EQ(delivered, 5000u);
    EXPECT_EQ(got.substr(0, 5000), content);
    char one;
    EXPECT_EQ(reader.read_ahead(&one, 5000, 1), 0u);
}

TEST_F(BufferedIo, ReadAheadOfAnUnalignedOffsetReadsItsSectorWhole) {
    std::string content = pattern(10000, 'a');
    open_with(content);
    settings_c settings;
    settings.set("ChunkLength", "4096").set("IOReadLength", "4096");
    pre_read_c reader(&file);
    reader.mode = overlapped;
    std::string got(50, '\0');
    ASSERT_EQ(reader.read_ahead(got.data(), 700, 50), 50u);
    EXPECT_EQ(got, content.substr(700, 50));
    EXPECT_TRUE(file.of_kind('R').empty()) << "the head ended the request: nothing to read ahead";
}

TEST_F(BufferedIo, PlainReadServesAgainBytesItConsumedAlready) {
    std::string content = pattern(3000, 'a');
    open_with(content);
    settings_c settings;
    settings.set("ChunkLength", "1024").set("IOReadLength", "1024");
    pre_read_c reader(&file);
    std::string got(100, '\0');
    ASSERT_EQ(reader.read(got.data(), 200, 100), 100u);
    EXPECT_EQ(reader.position, 300u);
    EXPECT_EQ(reader.cursor, 100u);
    EXPECT_EQ(reader.valid, 924u) << "a whole chunk was read at 200";
    ASSERT_EQ(reader.read(got.data(), 250, 100), 100u) << "back into the consumed bytes";
    EXPECT_EQ(got, content.substr(250, 100));
    EXPECT_EQ(reader.position, 350u);
    EXPECT_TRUE(file.calls.empty()) << "the plain form starts no read-ahead";
}

TEST_F(BufferedIo, PlainReadOfAtLeastAChunkGoesStraightToTheCaller) {
    std::string content = pattern(5000, 'a');
    open_with(content);
    settings_c settings;
    settings.set("ChunkLength", "1024").set("IOReadLength", "1024");
    pre_read_c reader(&file);
    std::string got(2048, '\0');
    ASSERT_EQ(reader.read(got.data(), 10, 2048), 2048u);
    EXPECT_EQ(got, content.substr(10, 2048));
    EXPECT_EQ(reader.valid, 0u) << "the buffer was passed by";
}

// ---- FILE_c with the buffered flags

TEST(FileBuffered, FlagsOverlappedAndReadAheadTogetherLoseReadAhead) {
    temp_dir_c dir;
    std::string path = dir.join("f.bin");
    FILE_c file;
    ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, overlapped | read_ahead_flag));
    EXPECT_EQ(file.open_flags & read_ahead_flag, 0u);
    EXPECT_NE(file.open_flags & overlapped, 0u);
    EXPECT_EQ(file.reader.mode, file.open_flags) << "the reader follows the flags";
    EXPECT_EQ(file.writer.mode, file.open_flags) << "the writer follows the flags";
    EXPECT_TRUE(file.close());
}

TEST(FileBuffered, ReadAheadFlagAloneIsKept) {
    temp_dir_c dir;
    std::string path = dir.join("f.bin");
    FILE_c file;
    ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, read_ahead_flag));
    EXPECT_EQ(file.open_flags, read_ahead_flag);
    EXPECT_FALSE(file.writer.use_aio);
    EXPECT_TRUE(file.close());
}

TEST(FileBuffered, EnableAioWriteFalseTurnsAsynchronousWritingOff) {
    temp_dir_c dir;
    std::string path = dir.join("f.bin");
    settings_c settings;
    settings.set("EnableAIOWrite", "False");
    FILE_c file;
    ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, overlapped));
    EXPECT_FALSE(file.writer.use_aio);
    std::string data = pattern(70000, 'a');
    ASSERT_EQ(file.write(data.data(), 70000), 70000);
    EXPECT_EQ(file.writer.requests, nullptr) << "no ring";
    EXPECT_TRUE(file.close());
    EXPECT_EQ(read_file(path), data);
}

TEST(FileBuffered, MissingEnableAioWriteLeavesAsynchronousWritingOn) {
    temp_dir_c dir;
    std::string path = dir.join("f.bin");
    FILE_c file;
    ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, overlapped));
    EXPECT_TRUE(file.writer.use_aio);
    std::string data = pattern(70000, 'a');
    ASSERT_EQ(file.write(data.data(), 70000), 70000);
    EXPECT_NE(file.writer.requests, nullptr) << "the ring was made";
    EXPECT_TRUE(file.close());
    EXPECT_EQ(read_file(path), data);
}

TEST(FileBuffered, SectorSizeOfTheDriveGoesToReaderAndWriter) {
    temp_dir_c dir;
    std::string path = dir.join("f.bin");
    FILE_c file;
    ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, overlapped));
    EXPECT_NE(file.reader.sector_size, 0u);
    EXPECT_EQ(file.reader.sector_size, file.writer.sector_size);
    EXPECT_TRUE(file.close());
}

TEST(FileBuffered, ReadSeesTheWritesBeforeIt) {
    temp_dir_c dir;
    std::string path = dir.join("f.bin");
    FILE_c file;
    ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, overlapped));
    std::string data = pattern(1000, 'a');
    ASSERT_EQ(file.write(data.data(), 1000), 1000);
    EXPECT_EQ(file.writer.valid, 1000u) << "buffered";
    ASSERT_TRUE(file.seek(0));
    std::string got(1000, '\0');
    ASSERT_EQ(file.read(got.data(), 1000), 1000);
    EXPECT_EQ(got, data);
    EXPECT_EQ(file.tell(), 1000);
    EXPECT_TRUE(file.close());
}

TEST(FileBuffered, WriteAfterAReadIsSeenByTheNextRead) {
    temp_dir_c dir;
    std::string path = dir.join("f.bin");
    write_file(path, pattern(20000, 'a'));
    for (unsigned flags : {read_ahead_flag, overlapped}) {
        FILE_c file;
        ASSERT_TRUE(file.open(path.c_str(), "r+", nullptr, flags));
        std::string got(100, '\0');
        ASSERT_EQ(file.read(got.data(), 100), 100) << flags;
        ASSERT_TRUE(file.seek(50));
        ASSERT_EQ(file.write("XYZ", 3), 3);
        ASSERT_TRUE(file.seek(40));
        ASSERT_EQ(file.read(got.data(), 20), 20);
        EXPECT_EQ(got.substr(10, 3), "XYZ") << "flags " << flags;
        EXPECT_TRUE(file.close());
    }
}

TEST(FileBuffered, FlushWritesTheBufferedData) {
    temp_dir_c dir;
    std::string path = dir.join("f.bin");
    FILE_c file;
    ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, overlapped));
    std::string data = pattern(3000, 'a');
    ASSERT_EQ(file.write(data.data(), 3000), 3000);
    ASSERT_TRUE(file.flush());
    EXPECT_EQ(file.writer.valid, 0u);
    EXPECT_EQ(read_file(path), data) << "on disk before close";
    EXPECT_TRUE(file.close());
}

TEST(FileBuffered, TruncateWritesTheBufferFirst) {
    temp_dir_c dir;
    std::string path = dir.join("f.bin");
    FILE_c file;
    ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, overlapped));
    std::string data = pattern(3000, 'a');
    ASSERT_EQ(file.write(data.data(), 3000), 3000);
    ASSERT_TRUE(file.truncate(2000));
    EXPECT_TRUE(file.close());
    EXPECT_EQ(read_file(path), data.substr(0, 2000)) << "the buffer did not land after the cut";
}

TEST(FileBuffered, ReadAndWriteOnAClosedFileGiveTheClosedError) {
    FILE_c file;
    char buffer[4];
    EXPECT_EQ(file.read(buffer, 4), -1);
    EXPECT_EQ(file.error, FILE_c::closed_file_error);
    file.error = 0;
    EXPECT_EQ(file.write(buffer, 4), -1);
    EXPECT_EQ(file.error, FILE_c::closed_file_error);
}

TEST(FileBuffered, CloseReleasesReaderAndWriter) {
    temp_dir_c dir;
    std::string path = dir.join("f.bin");
    int open_before = test_support::open_handle_count();
    FILE_c file;
    ASSERT_TRUE(file.open(path.c_str(), "w+", nullptr, overlapped));
    std::string data = pattern(200000, 'a');
    ASSERT_EQ(file.write(data.data(), 200000), 200000);
    ASSERT_TRUE(file.seek(0));
    ASSERT_EQ(file.read(data.data(), 100), 100);
    EXPECT_TRUE(file.close());
    EXPECT_EQ(file.writer.requests, nullptr);
    EXPECT_EQ(file.writer.buffer, nullptr);
    EXPECT_EQ(file.reader.buffer, nullptr);
    EXPECT_EQ(file.reader.front_request, nullptr);
    EXPECT_EQ(file.reader.back_request, nullptr);
    EXPECT_EQ(test_support::open_handle_count(), open_before) << "no handle left open";
}

} // namespace
