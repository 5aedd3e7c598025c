/* A C caller of the installed library: the header, the link and the answers for a missing path. */
#include <stats_mng.h>

#include <stdio.h>

int main(void) {
    const char* missing = "stats_mng consumer: no such scenario directory";
    unsigned int index = 0;
    if (sizeof(bool) != 1) return 10;
    if (!set_trc_file_log_path("", "")) return 1;
    if (is_engine_active_for_scenario(missing)) return 2;
    if (is_sync_replicated(missing)) return 3;
    if (get_scenario_state_index(missing, &index)) return 4;
    if (index != STATS_MNG_STATE_UNKNOWN) return 5;
    puts("consumer: ok");
    return 0;
}
