#include "files/bufferred_io.h"

#include "support/trc.h"
#include "utl/value.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr const char* source = "bufferred_io";
constexpr std::uint32_t finished = 0x1;
constexpr std::size_t buffer_alignment = 4096;
// The largest piece that one asynchronous write copies and hands to the system, so that a large
// write from the caller doesn't grow a request's buffer without bound.
constexpr std::uint64_t largest_write_piece = 1u << 20;

bool is_finished(const aio_request_s& request) { return (request.state & finished) != 0; }

os::HANDLE new_event() { return os::CreateEventW(nullptr, 1, 0, nullptr); }

void close_event(os::HANDLE& event) {
    if (event) os::CloseHandle(event);
    event = nullptr;
}

} // namespace

// ---- cache_base_c

std::uint8_t* cache_base_c::_allocate(std::size_t size) {
    return static_cast<std::uint8_t*>(::operator new (size, std::align_val_t{buffer_alignment}));
}

void cache_base_c::_free(std::uint8_t* block) {
    if (block) ::operator delete (block, std::align_val_t{buffer_alignment});
}

cache_base_c::~cache_base_c() { _free(buffer); }

void cache_base_c::reset() {
    _free(buffer);
    buffer = nullptr;
    buffer_size = 0;
    _empty();
    chunk_length = 0xFFFFFFFF;
}

std::uint32_t cache_base_c::get_chunk_length() {
    if (chunk_length != 0xFFFFFFFF) return chunk_length;
    int chunk = settings_n::int_or(settings_n::chunk_length, settings_n::chunk_length_default);
    int io_read =
        settings_n::int_or(settings_n::io_read_length, settings_n::io_read_length_default);
    std::uint64_t length = static_cast<std::uint64_t>(std::max({chunk, io_read, 0}));
    std::uint64_t sector = sector_size ? sector_size : 512;
    length = (length + sector - 1) / sector * sector;
    if (length == 0) length = sector;
    chunk_length = static_cast<std::uint32_t>(std::min<std::uint64_t>(length, 0x40000000));
    return chunk_length;
}

void cache_base_c::_ensure_buffer() {
    if (buffer_size != 0) return;
    buffer_size = get_chunk_length();
    buffer = _allocate(buffer_size);
    _empty();
}

bool cache_base_c::_covers(std::uint64_t offset) const {
    return valid != 0 && offset >= position - cursor && offset < position + valid;
}

std::uint32_t cache_base_c::_copy_out(void* dst, std::uint64_t count, std::uint64_t offset) {
    if (!dst || count == 0) return 0;
    if (valid != 0 && offset != position) {
        // Forward past bytes not yet consumed, or back over bytes consumed already.
        auto delta = static_cast<std::int64_t>(offset - position);
        cursor = static_cast<std::uint32_t>(cursor + delta);
        valid = static_cast<std::uint32_t>(valid - delta);
        position = offset;
    }
    auto n = static_cast<std::uint32_t>(std::min<std::uint64_t>(count, valid));
    std::memcpy(dst, buffer + cursor, n);
    cursor += n;
    position += n;
    valid -= n;
    return n;
}

std::int64_t cache_base_c::_read_at(std::uint64_t offset, void* dst, std::uint64_t count) {
    if (!file) return -1;
    if (file->basic_file_c::tell() != -1 &&
        !file->basic_file_c::seek(static_cast<std::int64_t>(offset)))
        return -1;
    return file->basic_file_c::read(dst, static_cast<std::int64_t>(count));
}

std::int64_t cache_base_c::_write_at(std::uint64_t offset, const void* src, std::uint64_t count) {
    if (!file) return -1;
    if (file->basic_file_c::tell() != -1 &&
        !file->basic_file_c::seek(static_cast<std::int64_t>(offset)))
        return -1;
    return file->basic_file_c::write(src, static_cast<std::int64_t>(count));
}

bool cache_base_c::_read_sector(std::uint64_t offset, std::uint8_t* block) {
    return _read_at(offset, block, sector_size) == static_cast<std::int64_t>(sector_size);
}

// ---- pre_read_c

pre_read_c::~pre_read_c() { pre_read_c::reset(); }

void pre_read_c::reset() {
    _drop(front_request);
    _drop(back_request);
    _free(second_buffer);
    second_buffer = nullptr;
    close_event(front_event);
    close_event(back_event);
    cache_base_c::reset();
}

void pre_read_c::discard() {
    _drop(front_request);
    _drop(back_request);
    _empty();
}

void pre_read_c::_drop(aio_request_s*& request) {
    if (!request) return;
    if (!is_finished(*request) && file) file->aio_wait(*request);
    delete request;
    request = nullptr;
}

bool pre_read_c::_start(aio_request_s*& request, os::HANDLE& event, std::uint8_t* into,
                        std::uint64_t offset, std::uint32_t count) {
    request = new aio_request_s;
    if (!event) event = new_event();
    request->event = event;
    if (file->aio_read(into, offset, count, *request)) return true;
    delete request;
    request = nullptr;
    return false;
}

bool pre_read_c::_complete(aio_request_s*& request, bool front) {
    if (valid != 0) return true;
    if (!is_finished(*request) && !file->aio_wait(*request)) {
        delete request;
        request = nullptr;
        return false;
    }
    if (front) {
        // The rest of a chunk was read straight into the buffer, behind the data before it.
        cursor = static_cast<std::uint32_t>(static_cast<std::uint8_t*>(request->buffer) - buffer);
    } else {
        // The next chunk becomes the window. The two buffers are of one size and no read runs
        // into either now, so they trade places instead of copying the chunk across.
        cursor = 0;
        std::swap(buffer, second_buffer);
    }
    position = request->offset;
    valid = request->count;
    delete request;
    request = nullptr;
    return true;
}

std::uint64_t pre_read_c::_unaligned_head(std::uint8_t* dst, std::uint64_t offset,
                                          std::uint64_t count, bool& sector_read) {
    std::uint64_t start = offset - offset % sector_size;
    std::uint8_t* block = _allocate(sector_size);
    sector_read = _read_sector(start, block);
    std::uint64_t n = 0;
    if (sector_read) {
        n = std::min<std::uint64_t>(start + sector_size - offset, count);
        std::memcpy(dst, block + (offset - start), n);
    }
    _free(block);
    return n;
}

std::uint64_t pre_read_c::read(void* dst, std::uint64_t offset, std::uint64_t count) {
    if (offset >= all_ones - 1) return all_ones;
    auto* out = static_cast<std::uint8_t*>(dst);
    std::uint64_t delivered = 0;
    if (_covers(offset)) {
        // The window holds it, including bytes consumed already, which can be read again.
        std::uint32_t n = _copy_out(out, count, offset);
        delivered += n;
        offset += n;
        count -= n;
    } else {
        _ensure_buffer();
        _empty();
        if ((mode & open_flags_n::overlapped) && offset % sector_size && count) {
            bool sector_read = false;
            std::uint64_t n = _unaligned_head(out, offset, count, sector_read);
            if (!sector_read) {
                std::int64_t got = _read_at(offset, out, count);
                return got < 0 ? all_ones : static_cast<std::uint64_t>(got);
            }
            delivered += n;
            offset += n;
            count -= n;
        }
    }
    if (count == 0) return delivered;
    if (count < get_chunk_length()) {
        _ensure_buffer();
        std::int64_t got = _read_at(offset, buffer, chunk_length);
        if (got < 0) return all_ones;
        cursor = 0;
        valid = static_cast<std::uint32_t>(got);
        position = offset;
        delivered += _copy_out(out + delivered, count, offset);
        return delivered;
    }
    std::int64_t got = _read_at(offset, out + delivered, count);
    if (got < 0) return all_ones;
    return delivered + static_cast<std::uint64_t>(got);
}

std::uint64_t pre_read_c::read_ahead(void* dst, std::uint64_t offset, std::uint64_t count) {
    if (count == 0) return 0;
    if (offset >= all_ones - 1) return all_ones;
    const std::uint64_t first_offset = offset;
    const std::uint64_t first_count = count;
    auto* out = static_cast<std::uint8_t*>(dst);
    std::uint64_t delivered = 0;

    if (front_request && valid == 0 && !_complete(front_request, true)) return all_ones;
    if (back_request && valid == 0 && !_complete(back_request, false)) return all_ones;

    for (;;) {
        if (_covers(offset)) {
            std::uint32_t n = _copy_out(out + delivered, count, offset);
            delivered += n;
            offset += n;
            count -= n;
        } else {
            _ensure_buffer();
            _empty();
            if ((mode & open_flags_n::overlapped) && offset % sector_size && count) {
                bool sector_read = false;
                std::uint64_t n = _unaligned_head(out + delivered, offset, count, sector_read);
                if (!sector_read) {
                    std::int64_t got = _read_at(offset, out + delivered, count);
                    return got < 0 ? all_ones : delivered + static_cast<std::uint64_t>(got);
                }
                delivered += n;
                offset += n;
                count -= n;
            }
        }
        if ((!front_request && !back_request) || count == 0) break;
        if (front_request) {
            if (valid != 0 || !_complete(front_request, true)) return all_ones;
        } else {
            if (valid != 0 || !_complete(back_request, false)) return all_ones;
        }
    }

    if (count >= get_chunk_length()) {
        std::int64_t got = _read_at(offset, out + delivered, count);
        if (got < 0) return all_ones;
        return delivered + static_cast<std::uint64_t>(got);
    }

    if (count != 0) {
        std::uint64_t aligned = (count + sector_size - 1) / sector_size * sector_size;
        std::int64_t got = _read_at(offset, buffer, aligned);
        if (got < 0) return all_ones;
        valid = static_cast<std::uint32_t>(got);
        cursor = 0;
        position = offset;
        // The rest of this chunk, read ahead straight into the buffer behind these data.
        if (static_cast<std::uint64_t>(got) == aligned && chunk_length != aligned &&
            !_start(front_request, front_event, buffer + aligned, offset + aligned,
                    static_cast<std::uint32_t>(chunk_length - aligned)))
            return all_ones;
        std::uint32_t n = _copy_out(out + delivered, count, offset);
        delivered += n;
        offset += n;
        count -= n;
    }
    if (back_request || count != 0) return delivered;

    // The whole of the next chunk, into the second buffer.
    std::uint64_t next = first_offset + first_count;
    if (front_request)
        next = front_request->offset + front_request->count;
    else if (valid != 0)
        next = position + valid;
    if (next % sector_size) return delivered;
    if (!second_buffer) second_buffer = _allocate(chunk_length);
    if (!_start(back_request, back_event, second_buffer, next, chunk_length)) return all_ones;
    return delivered;
}

// ---- post_write_c

post_write_c::post_write_c(basic_file_c* served) : cache_base_c(served) {
    int number = settings_n::int_or(settings_n::aio_number, settings_n::aio_number_default);
    aio_number = std::clamp(number, 1, 5);
}

post_write_c::~post_write_c() {
    if (use_aio) _wait_in_flight();
    _free_ring();
}

void post_write_c::_make_ring() {
    std::uint32_t length = get_chunk_length();
    requests = new aio_request_s*[aio_number];
    for (int i = 0; i < aio_number; ++i) {
        auto* request = new aio_request_s;
        request->buffer = _allocate(length);
        request->capacity = length;
        request->event = new_event();
        // Never started, so nothing to wait for.
        request->state = finished;
        requests[i] = request;
    }
    next_request = 0;
    wrapped = false;
}

void post_write_c::_free_ring() {
    if (!requests) return;
    for (int i = 0; i < aio_number; ++i) {
        close_event(requests[i]->event);
        _free(static_cast<std::uint8_t*>(requests[i]->buffer));
        delete requests[i];
    }
    delete[] requests;
    requests = nullptr;
    next_request = 0;
    wrapped = false;
}

void post_write_c::_trace_failed_wait(const char* function, int number) {
    QVTR_SCOPE(tr, function, source);
    tr.print(QVTR_FAILURE, __LINE__,
             "Wait the write result failed,the file name is %s,the wrote number is %d.",
             file ? file->path.c_str() : "", number);
}

bool post_write_c::_wait() {
    if (!wrapped) return true;
    if (file->aio_wait(*requests[next_request])) return true;
    _trace_failed_wait("post_write_c::_wait", next_request);
    return false;
}

bool post_write_c::_wait_all() {
    if (!use_aio) return true;
    bool ok = true;
    if (requests) {
        // Since the last wrap: the requests from the next one to the end. The latest ones, below
        // the next, are left to run.
        int from = wrapped ? next_request : 0;
        int to = wrapped ? aio_number : next_request;
        for (int i = from; i < to; ++i) {
            if (file->aio_wait(*requests[i])) continue;
            _trace_failed_wait("post_write_c::_wait_all", i);
            ok = false;
        }
    }
    next_request = 0;
    wrapped = false;
    return ok;
}

bool post_write_c::_wait_in_flight() {
    if (!requests || !file) return true;
    bool ok = true;
    for (int i = 0; i < aio_number; ++i) {
        if (is_finished(*requests[i]) || file->aio_wait(*requests[i])) continue;
        _trace_failed_wait("post_write_c::release", i);
        ok = false;
    }
    return ok;
}

bool post_write_c::release() {
    bool ok = _wait_in_flight();
    _free_ring();
    reset();
    return ok;
}

bool post_write_c::_write_one(const std::uint8_t* data, std::uint64_t offset,
                              std::uint32_t length) {
    if (!requests) _make_ring();
    aio_request_s& request = *requests[next_request];
    bool started = true;
    // A request that runs still (the latest ones are left running by _wait_all) ends before
    // its buffer takes new data.
    if (!is_finished(request) && !file->aio_wait(request)) {
        _trace_failed_wait("post_write_c::_wait", next_request);
        started = false;
    }
    if (length > request.capacity) {
        _free(static_cast<std::uint8_t*>(request.buffer));
        request.buffer = _allocate(length);
        request.capacity = length;
    }
    started = file->aio_write(data, offset, length, request) && started;
    if (++next_request == aio_number) {
        next_request = 0;
        wrapped = true;
    }
    bool waited = _wait();
    return started && waited;
}

bool post_write_c::_write_block(const std::uint8_t* data, std::uint64_t offset,
                                std::uint64_t length) {
    if (!use_aio) return _write_at(offset, data, length) == static_cast<std::int64_t>(length);
    while (length > 0) {
        auto piece = static_cast<std::uint32_t>(std::min(length, largest_write_piece));
        if (!_write_one(data, offset, piece)) return false;
        data += piece;
        offset += piece;
        length -= piece;
    }
    return true;
}

bool post_write_c::flush() {
    std::uint32_t whole = valid - valid % sector_size;
    bool ok = true;
    if (whole != 0) {
        ok = _write_block(buffer + cursor, position + cursor, whole);
        if (ok) {
            cursor += whole;
            valid -= whole;
        }
    }
    if (ok && valid != 0) {
        // The last part of a sector, merged into what the sector holds, so that what follows
        // the data on the volume is kept; at the end of the file only the data are written.
        std::uint64_t at = position + cursor;
        std::uint8_t* block = _allocate(sector_size);
        std::uint32_t length = _read_sector(at, block) ? sector_size : valid;
        std::memcpy(block, buffer + cursor, valid);
        ok = _write_block(block, at, length);
        _free(block);
    }
    // Data that could not be written are not kept: the failure went to the caller.
    _ensure_buffer();
    _empty();
    return ok;
}

bool post_write_c::_aligned_write(const std::uint8_t* data, std::uint64_t offset,
                                  std::uint64_t count) {
    if (valid != 0) return false;
    if (offset % sector_size) {
        std::uint64_t start = offset - offset % sector_size;
        std::uint8_t* block = _allocate(sector_size);
        if (!_read_sector(start, block)) {
            _free(block);
            return _write_block(data, offset, count);
        }
        std::uint64_t n = std::min<std::uint64_t>(start + sector_size - offset, count);
        std::memcpy(block + (offset - start), data, n);
        bool ok = _write_block(block, start, sector_size);
        _free(block);
        if (!ok) return false;
        data += n;
        offset += n;
        count -= n;
    }
    _ensure_buffer();
    if (count >= buffer_size) {
        std::uint64_t direct = count - count % buffer_size;
        if (!_write_block(data, offset, direct)) return false;
        data += direct;
        offset += direct;
        count -= direct;
    }
    std::memcpy(buffer, data, count);
    cursor = 0;
    position = offset;
    valid = static_cast<std::uint32_t>(count);
    return true;
}

std::uint64_t post_write_c::write(const void* data, std::uint64_t offset, std::uint64_t count) {
    if (count == 0) return 0;
    const auto* in = static_cast<const std::uint8_t*>(data);
    if (valid == 0) return _aligned_write(in, offset, count) ? count : all_ones;
    if (valid < buffer_size && offset >= position && offset < position + buffer_size &&
        offset <= position + valid) {
        // The data extend the buffer, or overwrite part of it.
        std::uint64_t at = offset - position;
        std::uint64_t n = std::min<std::uint64_t>(count, buffer_size - at);
        std::memcpy(buffer + at, in, n);
        std::uint64_t end = std::max<std::uint64_t>(position + valid, offset + n);
        valid = static_cast<std::uint32_t>(end - position);
        if (n < count && (!flush() || !_aligned_write(in + n, offset + n, count - n)))
            return all_ones;
        return count;
    }
    if (!flush() || !_aligned_write(in, offset, count)) return all_ones;
    return count;
}
