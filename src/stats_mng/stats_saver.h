// The engine's state under a scenario directory: the hidden state directory and the lock whose
// holder is the engine. Holding the lock means having "state.lock" open for writing with a
// sharing mode that refuses every other writer; the system drops it with its holder.
#pragma once

#include "utl/utl_stream.h"

#include <cstdint>
#include <memory>

class FILE_c;
class scenario_conf_c;

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
    // The open lock file, null when nothing is held; closed before it is deleted.
    std::unique_ptr<FILE_c> file;
};

// The base of the state files: where a scenario's state directory lies, the saving of a finished
// text there, and the per-host record of synchronisation results "<ScenarioID>_stats.xml". Its
// creator sets root_path and state_dir_name; an empty root_path makes every path fail.
class stats_saver_c {
  public:
    stats_saver_c() = default;
    stats_saver_c(const stats_saver_c&) = delete;
    stats_saver_c& operator=(const stats_saver_c&) = delete;
    virtual ~stats_saver_c() = default;

    // "<state directory>/<ScenarioID>_stats.xml" in `out`; null without a root path.
    virtual const char* _get_file_path(utl_stream_c& out);
    // Records whether the host's last synchronisation finished, and when.
    virtual bool set_sync_state(std::uint32_t host_index, bool is_sync_replicated,
                                std::int64_t sync_time);
    // Replaces the file by `text`, in a state directory that is made and hidden first.
    virtual bool _save(utl_stream_c& text);

    // "<root>/<state_dir_name>" in `out`; null without a root path.
    const char* _get_dir_path(utl_stream_c& out);

  protected:
    // Hides the state directory as the engine hides it; a failure is not looked at.
    void _hide_state_dir();
    // Replaces the file's content by `text`, written through; false on a failed open or a
    // short write.
    static bool _write_text(const char* file_path, utl_stream_c& text);

  public:
    scenario_conf_c* conf = nullptr;
    std::uint32_t scenario_id = 0;
    utl_stream_c root_path;
    utl_stream_c state_dir_name;
    utl_stream_c scenario_name;
};
