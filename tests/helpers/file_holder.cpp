// A second process for the tests: opens a file the way the library opens it, says whether it
// holds it, and keeps it open until a release file appears (or until it is killed).
//
//   file_holder PATH MODE FLAGS RELEASE_FILE
//
// Prints "held" or "failed <error>"; exits 0 when it held the file, 1 when the open failed.
#include "files/file_manipulation.h"
#include "files/file_modif.h"
#include "stats_mng/load_order.h"
#include "support/thl.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    load_order_n::library_scope_c library;
    if (argc != 5) {
        std::fprintf(stderr, "usage: file_holder PATH MODE FLAGS RELEASE_FILE\n");
        return 2;
    }
    FILE_c file;
    unsigned flags = static_cast<unsigned>(std::strtoul(argv[3], nullptr, 0));
    if (!file.open(argv[1], argv[2], nullptr, flags)) {
        std::printf("failed %lld\n", static_cast<long long>(file.error));
        std::fflush(stdout);
        return 1;
    }
    std::printf("held\n");
    std::fflush(stdout);
    // Bounded: a holder that nobody releases ends by itself after a minute.
    for (int waited = 0; waited < 60000 && !file_manipulation_n::if_exists(argv[4], nullptr);
         waited += 10)
        mix_n::sleep(10);
    file.close();
    return 0;
}
