// A second process for the tests: takes the engine's lock on a scenario and drops it again,
// many times over, as an engine that starts and stops would.
//
//   lock_cycler DIR COUNT
//
// Prints "done N" with the number of times it held the lock.
#include "stats_mng/load_order.h"
#include "stats_mng/stats_saver.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    load_order_n::library_scope_c library;
    if (argc != 3) {
        std::fprintf(stderr, "usage: lock_cycler DIR COUNT\n");
        return 2;
    }
    long count = std::strtol(argv[2], nullptr, 10), held = 0;
    for (long i = 0; i < count; ++i) {
        stats_saver_lock_c locker(argv[1]);
        locker.init();
        if (locker.lock(true)) ++held;
    }
    std::printf("done %ld\n", held);
    return 0;
}
