// The engine's state under a scenario directory: the hidden state directory and the lock whose
// holder is the engine. Holding the lock means having "state.lock" open for writing with a
// sharing mode that refuses every other writer; the system drops it with its holder.
#pragma once

#include "utl/utl_stream.h"

class FILE_c;

// The hidden state directory under every scenario path. A name, never a prefix.
inline constexpr const char* StateDirName = ".mr_qv_prefix";

class stats_saver_lock_c {
  public:
    explicit stats_saver_lock_c(const char* scenario_path);
    ~stats_saver_lock_c();
    stats_saver_lock_c(const stats_saver_lock_c&) = delete;
    stats_saver_lock_c& operator=(const stats_saver_lock_c&) = delete;

    // Makes the state directory if it is missing (hidden) and forms the lock file's path. Once.
    void init();
    // The state directory's path in `out`, or null for an empty scenario path.
    const char* _get_dir_path(utl_stream_c& out);
    // Drops what is held, then opens the lock file as writer (creating it) or as reader.
    bool lock(bool writer);

    utl_stream_c path;
    utl_stream_c dir_path;
    utl_stream_c lock_file_path;
    bool is_writer = true;
    FILE_c* file = nullptr;
};
