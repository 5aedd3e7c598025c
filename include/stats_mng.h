/* stats_mng: scenario state queries of the replication engine.
 *
 * An engine process loads the library and asks, for one scenario directory, whether the
 * engine works on it now, whether its last synchronisation finished and what state it was
 * left in. Paths are zero-terminated UTF-8; any separator, a trailing slash and the long-path
 * prefix are accepted. Every function returns a one-byte boolean and may be called from any
 * thread.
 */
#ifndef STATS_MNG_H
#define STATS_MNG_H

#if !defined(__cplusplus)
#include <stdbool.h>
#endif

#if defined(STATS_MNG_STATIC)
#define STATS_MNG_API
#elif defined(_WIN32)
#if defined(STATS_MNG_BUILDING)
#define STATS_MNG_API __declspec(dllexport)
#else
#define STATS_MNG_API __declspec(dllimport)
#endif
#else
#define STATS_MNG_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* State indexes written by get_scenario_state_index. */
enum {
    STATS_MNG_STATE_RUNNING = 0, /* "Running": the scenario is replicating */
    STATS_MNG_STATE_STOP = 1,    /* "Stop": the scenario was stopped */
    STATS_MNG_STATE_SYNC = 2,    /* "Sync": a synchronisation has not finished */
    STATS_MNG_STATE_UNKNOWN = 3  /* "Unknown": no state could be read */
};

/* True when the engine holds the scenario's lock file. */
STATS_MNG_API bool is_engine_active_for_scenario(const char* scenario_path);

/* True when the newer state file says the last synchronisation finished. */
STATS_MNG_API bool is_sync_replicated(const char* scenario_path);

/* True when a state file was read. *state_index is always written: 3 unless a state was read. */
STATS_MNG_API bool get_scenario_state_index(const char* scenario_path, unsigned int* state_index);

/* Points the trace at a settings file and a directory for the trace file. Always true. */
STATS_MNG_API bool set_trc_file_log_path(const char* trc_file, const char* log_directory);

#ifdef __cplusplus
}
#endif

#endif /* STATS_MNG_H */
