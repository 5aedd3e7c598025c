// The four exports of the library (source unit "stats_mng.dll").
#include "stats_mng.h"

#include "files/file.h"
#include "files/file_manipulation.h"
#include "stats_mng/stats_saver.h"
#include "stats_mng/stats_saver_ex.h"
#include "support/trc.h"

#include <cstdint>

namespace {

constexpr const char* source = "stats_mng.dll";
constexpr const char* log_name = "stats_mng.dll";

// The state of the scenario at `path`, as the engine left it in the state files.
bool read_state(const char* path, unsigned int* state_index, bool* is_sync) {
    stats_saver_ex_c saver;
    saver.scenario_id = 0;
    saver.root_path.append(path);
    saver.state_dir_name.append(StateDirName);
    saver.per_root_dir = true;
    return saver.get_sync_state(state_index, is_sync);
}

// The start every query shares: the normalised path in `path` when it exists; otherwise false
// and one trace line, written with the caller's line so that each export's line stays its own.
// A null path is a caller's slip that must not take the engine process down.
bool find_scenario(qvtr_entry_c& tr, int line, const char* scenario_path,
                   char (&path)[path_n::path_buffer_size]) {
    if (!scenario_path) {
        tr.print_nl(QVTR_FAILURE, line, "The scenario path is null.");
        return false;
    }
    path_n::standard_dir_path(scenario_path, path, true);
    if (file_manipulation_n::if_exists(path, nullptr)) return true;
    tr.print_nl(QVTR_FAILURE, line, "Fail to find the path %s.", path);
    return false;
}

} // namespace

extern "C" bool is_engine_active_for_scenario(const char* scenario_path) {
    QVTR_SCOPE(tr, "is_engine_active_for_scenario", source);
    char path[path_n::path_buffer_size] = {};
    if (!find_scenario(tr, __LINE__, scenario_path, path)) return false;
    // The state directory is made even by this query. The reader open alone tells an unusable
    // lock file from a held one; then a writer open fails exactly when the engine holds the lock.
    stats_saver_lock_c locker(path);
    locker.init();
    if (!file_manipulation_n::if_exists(locker.lock_file_path.c_str(), nullptr)) {
        tr.print_nl(QVTR_FAILURE, __LINE__, "Locker does not exist now.");
        return false;
    }
    if (!locker.lock(false)) {
        tr.print_nl(QVTR_FAILURE, __LINE__, "Locker can't acquire the read lock.");
        return false;
    }
    return !locker.lock(true);
}

extern "C" bool is_sync_replicated(const char* scenario_path) {
    QVTR_SCOPE(tr, "is_sync_replicated", source);
    char path[path_n::path_buffer_size] = {};
    if (!find_scenario(tr, __LINE__, scenario_path, path)) return false;
    unsigned int state_index = STATS_MNG_STATE_UNKNOWN;
    bool is_sync = false;
    // Nothing read and "not synchronised" give the same answer.
    if (!read_state(path, &state_index, &is_sync)) return false;
    return is_sync;
}

extern "C" bool get_scenario_state_index(const char* scenario_path, unsigned int* state_index) {
    // Opened under the name of is_sync_replicated on purpose; the line number tells them apart.
    QVTR_SCOPE(tr, "is_sync_replicated", source);
    if (!state_index) {
        tr.print_nl(QVTR_FAILURE, __LINE__, "A null state index has no room for the answer.");
        return false;
    }
    *state_index = STATS_MNG_STATE_UNKNOWN;
    char path[path_n::path_buffer_size] = {};
    if (!find_scenario(tr, __LINE__, scenario_path, path)) return false;
    unsigned int index = STATS_MNG_STATE_UNKNOWN;
    bool is_sync = false;
    if (!read_state(path, &index, &is_sync)) return false;
    *state_index = index;
    return true;
}

extern "C" bool set_trc_file_log_path(const char* trc_file, const char* log_directory) {
    QVTR_SCOPE(tr, "set_trc_file_log_path", source);
    // True in all cases; null paths leave the trace as it is.
    if (!trc_file || !log_directory) {
        tr.print_nl(QVTR_FAILURE, __LINE__,
                    "A null trace settings file or log directory; the trace is left as it is.");
        return true;
    }
    char trace_file[path_n::path_buffer_size] = {};
    char directory[path_n::path_buffer_size] = {};
    path_n::standard_dir_path(trc_file, trace_file, true);
    path_n::standard_dir_path(log_directory, directory, true);
    std::uint64_t size = 0;
    qvtr_set_log_directory(nullptr, size, directory, log_name, false);
    qvtr_reparse_file(nullptr, size, trace_file);
    return true;
}
