// stats_saver_ex_c: the scenario's state in "stats.xml" in the hidden state directory under a
// root directory: whether the scenario runs, is stopped or is being synchronised, and whether
// and when the last synchronisation finished. The reading side lives here; every writer of one
// process is serialised by one critical section, built at load.
#pragma once

#include "stats_mng.h"
#include "stats_mng/stats_saver.h"

#include <cstdint>
#include <iterator>

class thl_crit_section_c;

class stats_saver_ex_c : public stats_saver_c {
  public:
    // The state words, by state index. "Unknown" is never written to a file.
    static constexpr const char* state_names[] = {"Running", "Stop", "Sync", "Unknown"};
    static constexpr unsigned state_unknown = STATS_MNG_STATE_UNKNOWN;
    static_assert(std::size(state_names) == STATS_MNG_STATE_UNKNOWN + 1);

    // "<state directory>/stats.xml" in `out`; null without a root path.
    const char* _get_file_path(utl_stream_c& out) override;
    // Writes `text` over the state file, under the process-wide section of the state writers.
    bool _save(utl_stream_c& text) override;

    // The state of the scenario from its own file and the one a directory up, whichever has
    // the later time. False when neither could be read; `*state_index` is then 3.
    bool get_sync_state(unsigned* state_index, bool* is_sync_replicated);
    // Reads one state file.
    bool _get_state_timestamp(utl_stream_c& file_path, unsigned* state_index,
                              std::int64_t* sync_time, bool* is_sync_replicated);
    // The state file of the directory above the root, in `out`.
    bool _get_parent_file_path(utl_stream_c& out);
    // "Sync", "Stop" or "Running" in any case of letters; any other word gives 3.
    static void _state_name_to_index(const char* word, unsigned* state_index);

    bool per_root_dir = false;
};

namespace stats_saver_ex_n {
// The process-wide section of the state writers (load step 4).
void start_save_section();
void stop_save_section();
thl_crit_section_c* save_section();
} // namespace stats_saver_ex_n
