#include "common/loaded_library.h"

#include "common/test_support.h"

namespace test_support {

const char* shared_library_name() {
#if defined(_WIN32)
    return "stats_mng.dll";
#else
    return "libstats_mng.so";
#endif
}

namespace {
template <typename Function> void bind(os::HMODULE module, const char* name, Function& target) {
    target = reinterpret_cast<Function>(os::find_symbol(module, name));
}
} // namespace

loaded_library_c::loaded_library_c() {
    std::string path = bin_dir() + "/" + shared_library_name();
    _module = os::load_library(path.c_str());
    if (!_module) {
        _error = path + ": " + os::last_library_error();
        return;
    }
    bind(_module, "is_engine_active_for_scenario", is_engine_active_for_scenario);
    bind(_module, "is_sync_replicated", is_sync_replicated);
    bind(_module, "get_scenario_state_index", get_scenario_state_index);
    bind(_module, "set_trc_file_log_path", set_trc_file_log_path);
    if (!loaded()) _error = "an export is missing: " + os::last_library_error();
}

loaded_library_c::~loaded_library_c() {
    if (_module) {
        stop_trace();
        os::free_library(_module);
    }
}

std::string loaded_library_c::trace_into(const std::string& directory) {
    std::string settings = directory + "/settings.trc";
    write_file(settings, "trace = on\nlevels = 0xffffffff\n");
    set_trc_file_log_path(settings.c_str(), directory.c_str());
    return directory + "/stats_mng.dll.log";
}

void loaded_library_c::stop_trace() {
    if (set_trc_file_log_path) set_trc_file_log_path("", "");
}

} // namespace test_support
