// FILE_c: the file class the rest of the library uses. It keeps its own position, so that tell
// and seek cost no system call; each read and write goes to the system at that position, or,
// with open flag 0x10, through the chunked reader, and with 0x20 through the reader with its
// read-ahead and the ring of asynchronous writes.
#pragma once

#include "files/basic_file.h"
#include "files/bufferred_io.h"

#include <cstdint>

class FILE_c : public basic_file_c {
  public:
    // The error FILE_c puts in `error` for a read or write on a closed file.
    static constexpr std::int64_t closed_file_error = 0xE0001;
    // The error of a read that found the asynchronous writes before it failed.
    static constexpr std::int64_t pending_writes_error = 0xE0003;

    FILE_c();
    ~FILE_c() override;

    bool open(const char* path, const char* mode, void* transaction, unsigned flags) override;
    bool mknod() override;
    std::int64_t read(void* buffer, std::int64_t count) override;
    std::int64_t write(const void* buffer, std::int64_t count) override;
    bool flush() override;
    std::int64_t tell() override;
    bool seek(std::int64_t new_position) override;
    bool close() override;
    bool truncate(std::int64_t size) override;
    std::int64_t size() override;
    // Reads the file system's name again into file_system_name from the root that the path
    // names: the volume's device for a volume pseudo-file, the path itself otherwise. False, with
    // the name empty, when the system names none.
    bool refresh_file_system_info();
    // On a volume open for writing, the state to put in its boot sector at close.
    virtual bool mark_consistent(bool consistent);
    virtual bool is_consistent();

    std::uint32_t open_flags = 0;
    std::uint64_t position = 0;
    std::uint32_t cluster_size = 0;
    // The volume is locked by this object.
    bool volume_locked = false;
    // Total bytes of the volume, found at open.
    std::uint64_t volume_size = 0;
    // The volume's total sectors before its boot sector is fitted at close.
    std::uint64_t total_sectors = 0;
    // The file system of the volume this file stands for; empty for plain files.
    os::wide_char file_system_name[16] = {};
    // The volume's first sector as it was at open; owned.
    std::uint8_t* boot_sector = nullptr;
    // The volume's state to put in its boot sector at close.
    bool consistent = true;
    pre_read_c reader;
    post_write_c writer;

  private:
    // Whether the path names a volume pseudo-file.
    bool _is_volume() const;
    // At close of a locked volume: the boot sector fitted to the disk and to `boot_sector`.
    bool _fix_volume();
    // After close: the volume resized to the total that `boot_sector` states.
    bool _update_volume_total_sectors();
    // Stores the open flags here and in the reader and the writer.
    void _set_open_flags(std::uint32_t flags);
    // Writes out the writer's block and waits for its writes; false when either failed.
    bool _drain_writer();
    // Releases the reader and the writer; false when a write still in flight failed.
    bool _release_buffers();

    // Puts the system's position where this object's is; false when that fails.
    bool _place(bool for_reading);
    // The system's position when this object knows it: after an open that starts at 0 and after
    // each transfer of its own. Another kind of call forgets it, and the next transfer asks.
    void _forget_system_position() { _system_position_known = false; }
    // Moves this object's position by a transfer's result and notes where the system stands.
    void _note_transfer(std::int64_t moved);

    std::uint64_t _system_position = 0;
    bool _system_position_known = false;
    // A C stream must be placed between a write and a read, whatever it knows.
    enum class transfer_t { none, read, write } _last_transfer = transfer_t::none;
};
