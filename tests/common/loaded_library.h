// The shared library loaded at run time, as an engine process loads it, with its four exports.
#pragma once

#include "platform/os.h"

#include <string>

namespace test_support {

class loaded_library_c {
  public:
    loaded_library_c();
    ~loaded_library_c();
    loaded_library_c(const loaded_library_c&) = delete;
    loaded_library_c& operator=(const loaded_library_c&) = delete;

    bool loaded() const {
        return _module && is_engine_active_for_scenario && is_sync_replicated &&
               get_scenario_state_index && set_trc_file_log_path;
    }
    const std::string& error() const { return _error; }

    bool (*is_engine_active_for_scenario)(const char*) = nullptr;
    bool (*is_sync_replicated)(const char*) = nullptr;
    bool (*get_scenario_state_index)(const char*, unsigned int*) = nullptr;
    bool (*set_trc_file_log_path)(const char*, const char*) = nullptr;

    // Points the library's trace at `directory` with everything on; returns the trace file.
    std::string trace_into(const std::string& directory);
    // Stops the library's file trace.
    void stop_trace();

  private:
    os::HMODULE _module = nullptr;
    std::string _error;
};

// The file name of the shared library on this platform.
const char* shared_library_name();

} // namespace test_support
