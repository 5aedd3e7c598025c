#include "files/basic_file.h"

#include "files/file.h"
#include "files/file_properties.h"
#include "files/qv_io_api_createfile.h"
#include "support/load_step.h"
#include "support/thl.h"
#include "support/trc.h"

#include <cstring>

namespace {

constexpr const char* source = "basic_file";
constexpr std::uint32_t finished = 0x1;
// Transfers go to the system in pieces it can count.
constexpr std::int64_t largest_piece = 0x40000000;

load_step_object_ct<thl_ref_counter_c> open_handles("the process-wide open-handle counter");

void count_open() {
    if (thl_ref_counter_c* counter = open_handles.get()) counter->increase(1);
}
void count_closed() {
    if (thl_ref_counter_c* counter = open_handles.get()) counter->decrease(1);
}

bool is_standard_output(const file_handle_s& record) { return record.stream == stdout; }

void set_offset(os::OVERLAPPED& overlapped, std::uint64_t offset) {
    overlapped.Offset = static_cast<os::DWORD>(offset);
    overlapped.OffsetHigh = static_cast<os::DWORD>(offset >> 32);
}

// Reads or writes on a raw handle at the record's position, waiting for the transfer.
std::int64_t raw_transfer(file_handle_s& record, void* buffer, std::int64_t count, bool writing) {
    os::HANDLE& event = writing ? record.write_event : record.read_event;
    if (!event) event = os::CreateEventW(nullptr, 1, 0, nullptr);
    std::int64_t moved = 0;
    record.last_error = 0;
    while (moved < count) {
        auto piece =
            static_cast<os::DWORD>(count - moved < largest_piece ? count - moved : largest_piece);
        os::OVERLAPPED overlapped{};
        set_offset(overlapped, record.position);
        overlapped.hEvent = event;
        os::DWORD done = 0;
        char* at = static_cast<char*>(buffer) + moved;
        os::BOOL ok = writing ? os::WriteFile(record.handle, at, piece, &done, &overlapped)
                              : os::ReadFile(record.handle, at, piece, &done, &overlapped);
        os::DWORD error = ok ? 0 : os::GetLastError();
        if (error == os::ERROR_IO_PENDING) {
            ok = os::GetOverlappedResult(record.handle, &overlapped, &done, 1);
            error = ok ? 0 : os::GetLastError();
        }
        if (!writing && error == os::ERROR_HANDLE_EOF) error = 0;
        record.last_error = error;
        record.position += done;
        moved += done;
        if (error || done < piece) break;
    }
    return moved;
}

std::int64_t stream_transfer(file_handle_s& record, void* buffer, std::int64_t count,
                             bool writing) {
    std::size_t n = static_cast<std::size_t>(count);
    std::size_t moved = writing ? std::fwrite(buffer, 1, n, record.stream)
                                : std::fread(buffer, 1, n, record.stream);
    if (moved < n && std::ferror(record.stream)) {
        // The stream's error flag, not errno: last_error never holds an errno value.
        record.last_error = static_cast<std::uint32_t>(std::ferror(record.stream));
        std::clearerr(record.stream);
        return 0;
    }
    return static_cast<std::int64_t>(moved);
}

std::int64_t low_level_transfer(file_handle_s& record, void* buffer, std::int64_t count,
                                bool writing) {
    if (record.handle) return raw_transfer(record, buffer, count, writing);
    if (record.stream) return stream_transfer(record, buffer, count, writing);
    record.last_error = basic_file_c::no_file_error;
    return 0;
}

// The system handle under a record: its own, or that of its C stream.
os::HANDLE system_handle(const file_handle_s& record) {
    if (record.handle) return record.handle;
    if (!record.stream) return os::INVALID_HANDLE_VALUE;
    std::intptr_t handle = os::_get_osfhandle(os::_fileno(record.stream));
    return handle == -1 ? os::INVALID_HANDLE_VALUE : reinterpret_cast<os::HANDLE>(handle);
}

bool cut_at(os::HANDLE handle, std::int64_t size) {
    long high = static_cast<long>(static_cast<std::uint64_t>(size) >> 32);
    os::DWORD low =
        os::SetFilePointer(handle, static_cast<long>(size & 0xFFFFFFFF), &high, os::FILE_BEGIN);
    if (low == os::INVALID_SET_FILE_POINTER && os::GetLastError() != os::ERROR_SUCCESS)
        return false;
    return os::SetEndOfFile(handle) != 0;
}

} // namespace

thl_ref_counter_c* open_handle_counter() { return open_handles.get(); }
void start_open_handle_counter() { open_handles.build(); }
void stop_open_handle_counter() { open_handles.drop(); }

basic_file_c::auto_release_file_handle_c::auto_release_file_handle_c(os::HANDLE kept)
    : handle(kept) {
    if (handle != nullptr && handle != os::INVALID_HANDLE_VALUE) count_open();
}

basic_file_c::auto_release_file_handle_c::~auto_release_file_handle_c() {
    if (handle != nullptr && handle != os::INVALID_HANDLE_VALUE)
        basic_file_c::_close_handle(handle);
}

basic_file_c::~basic_file_c() {
    if (file) basic_file_c::close();
}

bool basic_file_c::open(const char* new_path, const char* mode, void* transaction, unsigned flags) {
    QVTR_SCOPE(tr, "basic_file_c::open", source);
    path.append(utl_stream_c::clear_char).append(new_path);
    if (new_path && is_volume_guid_path(new_path, true)) to_backslash_path(new_path, path);
    if (!mode || !new_path) return false;
    file = qv_fopen(new_path, mode, transaction, flags);
    if (file) count_open();
    return file != nullptr;
}

bool basic_file_c::mknod() { return true; }

// A short transfer hands the record's error to the object; an error makes the result -1.
std::int64_t basic_file_c::_transfer(void* buffer, std::int64_t count, bool writing) {
    if (!file) return -1;
    std::int64_t moved = low_level_transfer(*file, buffer, count, writing);
    if (moved < count) {
        error = file->last_error;
        if (error) {
            file->last_error = 0;
            return -1;
        }
    }
    return moved;
}

std::int64_t basic_file_c::read(void* buffer, std::int64_t count) {
    return _transfer(buffer, count, false);
}

std::int64_t basic_file_c::write(const void* buffer, std::int64_t count) {
    return _transfer(const_cast<void*>(buffer), count, true);
}

namespace {

// Starts a transfer of a request that has been filled in; 0 or the error.
os::DWORD start_request(aio_request_s& request, bool writing) {
    file_handle_s& record = *request.file;
    request.state |= finished;
    if (record.handle) {
        request.overlapped = os::OVERLAPPED{};
        set_offset(request.overlapped, request.offset);
        request.overlapped.hEvent = request.event;
        os::DWORD done = 0;
        os::BOOL ok = writing ? os::WriteFile(record.handle, request.buffer, request.count, &done,
                                              &request.overlapped)
                              : os::ReadFile(record.handle, request.buffer, request.count, &done,
                                             &request.overlapped);
        if (ok) {
            request.count = done;
            return 0;
        }
        os::DWORD error = os::GetLastError();
        if (!writing && error == os::ERROR_HANDLE_EOF) {
            request.count = 0;
            return 0;
        }
        if (error == os::ERROR_IO_PENDING) {
            request.state &= ~finished;
            return 0;
        }
        request.count = 0;
        return error;
    }
    // A C stream: seek, transfer, seek back, all at once.
    std::int64_t back = os::ftell64(record.stream);
    os::fseek64(record.stream, static_cast<std::int64_t>(request.offset));
    std::size_t n = writing ? std::fwrite(request.buffer, 1, request.count, record.stream)
                            : std::fread(request.buffer, 1, request.count, record.stream);
    os::fseek64(record.stream, back);
    request.count = static_cast<std::uint32_t>(n);
    return n == 0 ? static_cast<os::DWORD>(std::ferror(record.stream)) : 0;
}

} // namespace

bool basic_file_c::aio_read(void* buffer, std::uint64_t offset, std::uint32_t count,
                            aio_request_s& request) {
    QVTR_SCOPE(tr, "basic_file_c::aio_read", source);
    if (!file) return true;
    os::HANDLE event = request.event;
    request = aio_request_s{};
    request.event = event;
    request.buffer = buffer;
    request.offset = offset;
    request.count = count;
    request.file = file;
    error = start_request(request, false);
    file->last_error = 0;
    return error == 0;
}

bool basic_file_c::aio_write(const void* source_data, std::uint64_t offset, std::uint32_t count,
                             aio_request_s& request) {
    if (!file) return true;
    // The request carries its own copy, so that the caller's data may change meanwhile.
    if (request.buffer && source_data != request.buffer)
        std::memcpy(request.buffer, source_data, count);
    request.offset = offset;
    request.count = count;
    request.file = file;
    request.state = 0;
    error = start_request(request, true);
    file->last_error = 0;
    return error == 0;
}

bool basic_file_c::aio_wait(aio_request_s& request) {
    QVTR_SCOPE(tr, "basic_file_c::aio_wait", source);
    if (request.state & finished) {
        error = 0;
        return true;
    }
    os::DWORD done = 0;
    os::HANDLE handle = request.file ? request.file->handle : nullptr;
    os::DWORD result = 0;
    if (os::GetOverlappedResult(handle, &request.overlapped, &done, 1)) {
        request.count = done;
    } else {
        result = os::GetLastError();
        if (result == os::ERROR_HANDLE_EOF) {
            result = 0;
            request.count = 0;
        }
    }
    request.state |= finished;
    error = result;
    return result == 0;
}

// True in all cases, deliberately: what the system says of the flush is not passed on.
bool basic_file_c::flush() {
    if (file && file->handle) os::FlushFileBuffers(file->handle);
    if (file && file->stream) std::fflush(file->stream);
    return true;
}

std::int64_t basic_file_c::tell() {
    if (!file) return -1;
    if (file->handle) return static_cast<std::int64_t>(file->position);
    if (file->stream) return os::ftell64(file->stream);
    file->last_error = no_file_error;
    return -1;
}

bool basic_file_c::seek(std::int64_t position) {
    if (!file) return false;
    if (file->stream && is_standard_output(*file)) return true;
    if (file->handle) {
        file->position = static_cast<std::uint64_t>(position);
        return true;
    }
    if (!file->stream) return false;
    if (os::fseek64(file->stream, position) != 0) {
        file->last_error = static_cast<std::uint32_t>(std::ferror(file->stream));
        std::clearerr(file->stream);
        return false;
    }
    return true;
}

bool basic_file_c::close() {
    QVTR_SCOPE(tr, "basic_file_c::close", source);
    if (!file) return false;
    file_handle_s* record = file;
    file = nullptr;
    int result = 0;
    if (record->handle && !os::CloseHandle(record->handle)) result = 1;
    if (record->read_event) os::CloseHandle(record->read_event);
    if (record->write_event) os::CloseHandle(record->write_event);
    if (record->stream && !is_standard_output(*record) && std::fclose(record->stream) != 0)
        result = 1;
    delete record;
    // A failed close leaves the count of open handles as it was, on purpose.
    if (result != 0) return false;
    count_closed();
    return true;
}

bool basic_file_c::is_open() { return file != nullptr; }

bool basic_file_c::truncate(std::int64_t size) {
    QVTR_SCOPE(tr, "basic_file_c::truncate", source);
    if (!file) return path.get_length() ? truncate(path.c_str(), size) : false;
    if (file->stream) std::fflush(file->stream);
    os::HANDLE handle = system_handle(*file);
    if (handle == os::INVALID_HANDLE_VALUE) return false;
    return cut_at(handle, size);
}

bool basic_file_c::truncate(const char* by_path, std::int64_t size) {
    auto_release_file_handle_c kept(
        qv_create_file(by_path, os::GENERIC_WRITE, os::OPEN_EXISTING, nullptr, true, 0));
    if (kept.handle == os::INVALID_HANDLE_VALUE) return false;
    return cut_at(kept.handle, size);
}

std::int64_t basic_file_c::size() {
    file_prop_access_c properties;
    if (!properties.load_file_properties_from_disk(*this)) return -1;
    return static_cast<std::int64_t>(properties.prop.size);
}

os::HANDLE basic_file_c::get_file_handle() { return _get_file_handle(); }

os::HANDLE basic_file_c::_get_file_handle() {
    if (!file) return os::INVALID_HANDLE_VALUE;
    return system_handle(*file);
}

os::HANDLE basic_file_c::_duplicate_handle(os::HANDLE handle) {
    os::HANDLE copy = nullptr;
    if (!os::DuplicateHandle(handle, &copy)) return nullptr;
    count_open();
    return copy;
}

bool basic_file_c::_close_handle(os::HANDLE handle) {
    if (handle == nullptr || handle == os::INVALID_HANDLE_VALUE) return false;
    if (!os::CloseHandle(handle)) return false;
    count_closed();
    return true;
}
