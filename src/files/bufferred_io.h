// Buffered I/O of files and volumes that the engine streams: reads and writes go to the system in
// whole sectors and chunk-sized transfers, also when callers pass small or unaligned pieces.
// cache_base_c holds one chunk buffer; pre_read_c reads with up to two asynchronous reads running
// ahead of the caller; post_write_c writes through a bounded ring of asynchronous writes. FILE_c
// owns one of each and chooses by its open flags which serves a call.
#pragma once

#include "files/basic_file.h"
#include "platform/os.h"

#include <cstdint>

class cache_base_c {
  public:
    // The answer of a transfer that failed.
    static constexpr std::uint64_t all_ones = ~std::uint64_t{0};

    explicit cache_base_c(basic_file_c* served = nullptr) : file(served) {}
    cache_base_c(const cache_base_c&) = delete;
    cache_base_c& operator=(const cache_base_c&) = delete;

    // Frees the buffer and zeroes the state; the sizes are computed anew at the next use.
    virtual void reset();
    virtual ~cache_base_c();

    // The size of a chunk: the greater of the settings ChunkLength and IOReadLength, in whole
    // sectors, at least one sector. Computed once.
    std::uint32_t get_chunk_length();

    std::uint64_t position = 0; // file offset of the byte at `cursor`
    std::uint8_t* buffer = nullptr;
    std::uint32_t buffer_size = 0; // 0 until the first use
    std::uint32_t cursor = 0;
    std::uint32_t valid = 0; // valid bytes from `cursor` on
    std::uint32_t chunk_length = 0xFFFFFFFF;
    std::uint32_t sector_size = 512;
    std::uint32_t mode = 0; // the file's open flags
    basic_file_c* file = nullptr;

  protected:
    // Sector-aligned memory of this layer's buffers, so that a file opened without the system's
    // buffering can be served from them.
    static std::uint8_t* _allocate(std::size_t size);
    static void _free(std::uint8_t* block);

    // Makes the chunk buffer if there is none yet; its window is then empty.
    void _ensure_buffer();
    void _empty() { position = cursor = valid = 0; }
    // True when the window holds the byte at `offset`, counting the bytes already consumed.
    bool _covers(std::uint64_t offset) const;
    // Copies from the window, first moving it to `offset`; the bytes copied.
    std::uint32_t _copy_out(void* dst, std::uint64_t count, std::uint64_t offset);
    // Reads and writes of the file itself at an offset, past FILE_c; -1 on failure.
    std::int64_t _read_at(std::uint64_t offset, void* dst, std::uint64_t count);
    std::int64_t _write_at(std::uint64_t offset, const void* src, std::uint64_t count);
    // The whole sector at `offset` into `block`; false when it isn't all there.
    bool _read_sector(std::uint64_t offset, std::uint8_t* block);
};

class pre_read_c : public cache_base_c {
  public:
    using cache_base_c::cache_base_c;
    ~pre_read_c() override;

    // Waits for both read-aheads, frees both buffers and closes both events.
    void reset() override;

    // The plain form: whole chunks through the buffer, no read-ahead. The bytes delivered, or
    // all ones.
    std::uint64_t read(void* dst, std::uint64_t offset, std::uint64_t count);
    // Reads with the rest of the current chunk and the whole of the next one read ahead.
    std::uint64_t read_ahead(void* dst, std::uint64_t offset, std::uint64_t count);
    // Forgets what the window and the read-aheads hold, keeping the buffers: the file has been
    // written meanwhile.
    void discard();

    aio_request_s* front_request = nullptr;
    aio_request_s* back_request = nullptr;
    std::uint8_t* second_buffer = nullptr;
    os::HANDLE front_event = nullptr;
    os::HANDLE back_event = nullptr;

  private:
    // Moves a finished read-ahead into the window, when the window is empty; false when its
    // wait failed. The request is gone afterwards.
    bool _complete(aio_request_s*& request, bool front);
    // Waits for a read-ahead and deletes it, whatever it brought.
    void _drop(aio_request_s*& request);
    // Starts a read-ahead of `count` bytes at `offset` into `into`; false when it can't start.
    bool _start(aio_request_s*& request, os::HANDLE& event, std::uint8_t* into,
                std::uint64_t offset, std::uint32_t count);
    // An unaligned head of a read: the sector around `offset` read whole, the part asked for
    // copied out. The bytes copied, 0 when the sector couldn't be read.
    std::uint64_t _unaligned_head(std::uint8_t* dst, std::uint64_t offset, std::uint64_t count,
                                  bool& sector_read);
};

class post_write_c : public cache_base_c {
  public:
    explicit post_write_c(basic_file_c* served = nullptr);
    ~post_write_c() override;

    // Takes `count` bytes for `offset`; `count`, or all ones.
    std::uint64_t write(const void* data, std::uint64_t offset, std::uint64_t count);
    // Writes out what the buffer holds: whole sectors, then the last part merged into its sector.
    bool flush();
    // Waits for the writes of the ring as they stand since the last wrap.
    bool _wait_all();
    // Waits for the request that the next write will use.
    bool _wait();
    // Ends the writer's use of the file: every write still in flight is waited for, then the
    // buffer and the ring are freed. False when one of those writes failed.
    bool release();

    aio_request_s** requests = nullptr;
    std::int32_t aio_number = 3;
    std::int32_t next_request = 0;
    bool wrapped = false;
    bool use_aio = false;

  private:
    void _make_ring();
    void _free_ring();
    // Waits for every request still in flight; false when one failed.
    bool _wait_in_flight();
    bool _write_block(const std::uint8_t* data, std::uint64_t offset, std::uint64_t length);
    bool _write_one(const std::uint8_t* data, std::uint64_t offset, std::uint32_t length);
    bool _aligned_write(const std::uint8_t* data, std::uint64_t offset, std::uint64_t count);
    void _trace_failed_wait(const char* function, int number);
};
