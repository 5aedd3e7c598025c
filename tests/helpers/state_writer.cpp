// A second process for the tests: rewrites a scenario's state file many times over, as the
// engine does while it runs, and takes and drops the engine's lock now and then.
//
//   state_writer DIR COUNT
//
// Turn by turn the file is replaced whole (a new file renamed over the old one) or rewritten in
// place (opened with truncation, then written), with the states Running, Stop and Sync in turn
// and a growing time. Prints "done N last I", I being the state index written last.
#include "stats_mng/load_order.h"
#include "stats_mng/stats_saver.h"
#include "stats_mng/stats_saver_ex.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace {

std::string state_text(unsigned index, long time) {
    return std::string("<?xml version=\"1.0\"?>\n<stats_saver>\n\t<Scenario HostIndex=\"1\" "
                       "ScenarioID=\"5\" ScenarioName=\"stress\" State=\"") +
           stats_saver_ex_c::state_names[index] + "\" IsSyncReplicated=\"" +
           (index == 0 ? "True" : "False") + "\" IsSyncReplicatedTime=\"" + std::to_string(time) +
           "\"/>\n</stats_saver>\n";
}

} // namespace

int main(int argc, char** argv) {
    load_order_n::library_scope_c library;
    if (argc != 3) {
        std::fprintf(stderr, "usage: state_writer DIR COUNT\n");
        return 2;
    }
    long count = std::strtol(argv[2], nullptr, 10);
    stats_saver_ex_c saver;
    saver.root_path.append(argv[1]);
    saver.state_dir_name.append(StateDirName);
    utl_stream_c path;
    saver._get_file_path(path);
    const std::filesystem::path file = std::filesystem::u8path(path.c_str());
    const std::filesystem::path fresh = std::filesystem::u8path(std::string(path.c_str()) + ".new");
    long written = 0;
    unsigned last = 3;
    for (long i = 0; i < count; ++i) {
        unsigned index = static_cast<unsigned>(i % 3);
        std::string text = state_text(index, i + 1);
        bool ok = false;
        if (i % 2 == 0) {
            utl_stream_c stream(text.c_str());
            ok = saver._save(stream);
        } else {
            // A reader that has the file open may make the rename fail on Windows; the turn is
            // then lost, as the engine's would be.
            FILE* out = std::fopen(fresh.string().c_str(), "wb");
            if (out) {
                ok = std::fwrite(text.data(), 1, text.size(), out) == text.size();
                ok = std::fclose(out) == 0 && ok;
                std::error_code error;
                std::filesystem::rename(fresh, file, error);
                ok = ok && !error;
            }
        }
        if (ok) {
            ++written;
            last = index;
        }
        if (i % 10 == 0) {
            stats_saver_lock_c locker(argv[1]);
            locker.init();
            locker.lock(true);
        }
    }
    std::printf("done %ld last %u\n", written, last);
    return 0;
}
