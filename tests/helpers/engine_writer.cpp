// A second process for the tests: the engine's writing side at work on one scenario directory,
// to be killed at any point. It says "writing" once it has started, then goes round the engine's
// events COUNT times: a start, a synchronisation that begins, a start during it, its end, a
// stop. Prints "done N" at the end, N the writes that succeeded.
//
//   engine_writer DIR COUNT
#include "stats_mng/load_order.h"
#include "stats_mng/stats_saver.h"
#include "stats_mng/stats_saver_ex.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    load_order_n::library_scope_c library;
    if (argc != 3) {
        std::fprintf(stderr, "usage: engine_writer DIR COUNT\n");
        return 2;
    }
    long count = std::strtol(argv[2], nullptr, 10);
    stats_saver_ex_c saver;
    saver.root_path.append(argv[1]);
    saver.state_dir_name.append(StateDirName);
    saver.scenario_id = 5;
    saver.scenario_name.append("crash");
    utl_stream_c path;
    if (!saver._get_file_path(path)) return 2;
    std::printf("writing\n");
    std::fflush(stdout);
    long written = 0;
    for (long i = 0; i < count; ++i) {
        bool ok = false;
        switch (i % 5) {
        case 0: ok = saver._set_state(path, 1, true); break;
        case 1: ok = saver._set_sync_state(path, 1, false, i); break;
        case 2: ok = saver._set_state(path, 1, true); break;
        case 3: ok = saver._set_sync_state(path, 1, true, i); break;
        default: ok = saver._set_state(path, 1, false); break;
        }
        written += ok;
    }
    std::printf("done %ld\n", written);
    return 0;
}
