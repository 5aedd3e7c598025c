// stats_saver_ex_c: the scenario's state in "stats.xml" in the hidden state directory under a
// root directory: whether the scenario runs, is stopped or is being synchronised, and whether
// and when the last synchronisation finished. The engine writes it when a scenario starts or
// stops and when a synchronisation begins or ends, under one root path or under each root
// directory of the scenario; the queries read it. Every writer of one process is serialised by
// one critical section, built at load; the read-change-write cycle around it is not.
#pragma once

#include "stats_mng.h"
#include "stats_mng/stats_saver.h"

#include <cstdint>
#include <iterator>

class thl_crit_section_c;
class xml_item_c;
class xml_tree_c;

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

    // The scenario starts (`run`) or stops: under the root path, or with `per_root_dir` under
    // each root directory of host `host_index`, until one write fails.
    bool set_state(std::uint32_t host_index, bool run);
    // A synchronisation begins (false) or ends (true). Only the form for each root directory
    // records it; under the root path the flag starts or stops the scenario, as set_state.
    bool set_sync_state(std::uint32_t host_index, bool is_sync_replicated,
                        std::int64_t sync_time) override;
    // Writes the state word of one file; a start while it says "Sync" leaves it so.
    bool _set_state(utl_stream_c& file_path, std::uint32_t host_index, bool run);
    // Writes the flag, its time and the state word that follows from it into one file.
    bool _set_sync_state(utl_stream_c file_path, std::uint32_t host_index, bool is_sync_replicated,
                         std::int64_t sync_time);

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

  private:
    // The record of one file as a writer finds it: the file's tree, or a new "stats_saver"
    // root, with a first child that carries the scenario's identity when it had none.
    xml_item_c* _record_to_write(utl_stream_c& file_path, std::uint32_t host_index,
                                 xml_tree_c& tree);
    // The tree's text in the writer's form, handed to _save.
    bool _save_tree(xml_tree_c& tree);
    // Points the root path at root directory `position` of host `host_index` and forms the
    // state file's path there; false when it can't be formed.
    bool _file_path_of_root_dir(std::uint64_t position, std::uint32_t host_index,
                                utl_stream_c& file_path);
};

namespace stats_saver_ex_n {
// The process-wide section of the state writers (load step 4).
void start_save_section();
void stop_save_section();
thl_crit_section_c* save_section();
} // namespace stats_saver_ex_n
