// The start and stop of the shared library: built into stats_mng.dll / libstats_mng.so only,
// never into the static core, whose programs start it themselves (load_order.h). The load entry
// itself does nothing; this object's constructor runs when the library is loaded and its
// destructor when it is unloaded.
#include "stats_mng/load_order.h"
#include "support/trc.h"

#include <cstdlib>

namespace {

struct library_lifetime_s {
    library_lifetime_s() {
        // The start-up steps trace before any caller can point the trace anywhere: a process
        // that wants those lines names the directory in STATS_MNG_TRACE_DIR.
        const char* directory = std::getenv("STATS_MNG_TRACE_DIR");
        if (directory && *directory) {
            std::uint64_t size = 0;
            qvtr_set_log_directory(nullptr, size, directory, "stats_mng.dll", false);
        }
        load_order_n::start_all();
    }
    ~library_lifetime_s() { load_order_n::stop_all(); }
} library_lifetime;

} // namespace
