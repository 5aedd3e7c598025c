// Asks get_scenario_state_index COUNT times about DIR, for counting the system calls of one
// query: scripts/state-query-syscalls runs it under strace with COUNT 0 and 1 and subtracts.
//
//   state_query_once DIR COUNT
#include "stats_mng.h"
#include "stats_mng/load_order.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    load_order_n::library_scope_c library;
    if (argc != 3) {
        std::fprintf(stderr, "usage: state_query_once DIR COUNT\n");
        return 2;
    }
    long count = std::strtol(argv[2], nullptr, 10);
    unsigned int index = 3;
    bool read = false;
    for (long i = 0; i < count; ++i) read = get_scenario_state_index(argv[1], &index);
    std::printf("read %d index %u\n", read ? 1 : 0, index);
    return 0;
}
