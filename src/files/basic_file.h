// basic_file_c: the file object. One low-level record holds either a raw handle, read and
// written at the record's own position with positional calls, or a C stream. qv_create_file is
// the one place where files are really opened; qv_fopen turns a C-style mode into its arguments.
#pragma once

#include "platform/os.h"
#include "utl/utl_stream.h"

#include <cstdint>
#include <cstdio>

class thl_ref_counter_c;

// Open flags of basic_file_c::open, qv_fopen and qv_create_file.
namespace open_flags_n {
inline constexpr unsigned no_buffering = 0x1;
inline constexpr unsigned sequential_scan = 0x2;
inline constexpr unsigned write_dac_owner = 0x4;
inline constexpr unsigned write_through = 0x8;
inline constexpr unsigned read_ahead = 0x10;
inline constexpr unsigned overlapped = 0x20;
inline constexpr unsigned open_existing = 0x40;
inline constexpr unsigned share_nothing = 0x80;
inline constexpr unsigned share_reads_only = 0x100;
inline constexpr unsigned raw_handle = 0x200;
} // namespace open_flags_n

// The low-level record of an open file.
struct file_handle_s {
    std::uint32_t flags = 0;
    std::uint64_t position = 0;
    // A Win32 error; on a C stream the stream's error flag (ferror) instead, the C runtime's own.
    std::uint32_t last_error = 0;
    os::HANDLE handle = nullptr; // null when a C stream holds the file
    os::HANDLE read_event = nullptr;
    os::HANDLE write_event = nullptr;
    std::FILE* stream = nullptr;
};

// One transfer at a position; `event` survives the clearing of the request.
struct aio_request_s {
    file_handle_s* file = nullptr;
    std::uint64_t offset = 0;
    void* buffer = nullptr;
    std::int64_t capacity = 0;
    std::uint32_t count = 0;
    std::uint32_t state = 0; // bit 0: finished, nothing to wait for
    os::HANDLE event = nullptr;
    os::OVERLAPPED overlapped{};
};

// Opens `path` for the system: long prefix, backup semantics, transaction, short-name
// reservation and the volume pseudo-file. A handle, or INVALID_HANDLE_VALUE with the thread's
// last error set.
os::HANDLE qv_create_file(const char* path, os::DWORD access, os::DWORD disposition,
                          void* transaction, bool share, unsigned flags);

// A new record for `path` opened by `mode` ("r", "r+", "w", "w+", "a", "a+"), or null.
file_handle_s* qv_fopen(const char* path, const char* mode, void* transaction, unsigned flags);

// The process-wide counter of open handles; null, and said loudly, before the library has started.
thl_ref_counter_c* open_handle_counter();
// Start-up and tear-down of that counter, steps of the library's load order.
void start_open_handle_counter();
void stop_open_handle_counter();

class basic_file_c {
  public:
    // Keeps a handle from qv_create_file, counted among the open handles, and closes it when it
    // goes.
    class auto_release_file_handle_c {
      public:
        auto_release_file_handle_c() = default;
        explicit auto_release_file_handle_c(os::HANDLE kept);
        virtual ~auto_release_file_handle_c();
        auto_release_file_handle_c(const auto_release_file_handle_c&) = delete;
        auto_release_file_handle_c& operator=(const auto_release_file_handle_c&) = delete;

        os::HANDLE handle = os::INVALID_HANDLE_VALUE;
    };

    // An error of this class: a record with neither a handle nor a stream.
    static constexpr std::uint32_t no_file_error = os::ERROR_INVALID_BLOCK;

    basic_file_c() = default;
    virtual ~basic_file_c();
    basic_file_c(const basic_file_c&) = delete;
    basic_file_c& operator=(const basic_file_c&) = delete;

    virtual bool open(const char* path, const char* mode, void* transaction, unsigned flags);
    virtual bool mknod();
    virtual std::int64_t read(void* buffer, std::int64_t count);
    virtual std::int64_t write(const void* buffer, std::int64_t count);
    virtual bool aio_read(void* buffer, std::uint64_t offset, std::uint32_t count,
                          aio_request_s& request);
    virtual bool aio_write(const void* source, std::uint64_t offset, std::uint32_t count,
                           aio_request_s& request);
    virtual bool aio_wait(aio_request_s& request);
    virtual bool flush();
    virtual std::int64_t tell();
    virtual bool seek(std::int64_t position);
    virtual bool close();
    virtual bool is_open();
    virtual bool truncate(std::int64_t size);
    virtual std::int64_t size();
    virtual os::HANDLE get_file_handle();
    virtual os::HANDLE _get_file_handle();

    // Cuts the file at `path` to `size` bytes.
    static bool truncate(const char* path, std::int64_t size);
    // A second handle to the same open, counted; null on failure.
    static os::HANDLE _duplicate_handle(os::HANDLE handle);
    // Closes a counted handle.
    static bool _close_handle(os::HANDLE handle);

    // The last error of an operation, for the caller to look at.
    std::int64_t error = 0;
    // The path the file was opened under.
    utl_stream_c path;
    // The open record; null while closed.
    file_handle_s* file = nullptr;

  private:
    std::int64_t _transfer(void* buffer, std::int64_t count, bool writing);
};
