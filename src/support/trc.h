// trc: the trace. Every traced function opens a qvtr_entry_c scope and prints through it; lines
// go to "<module>.log" in the directory that qvtr_set_log_directory chose, filtered by the
// on/off switch and the level mask of the settings file. Safe from any thread.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <string>

// Levels are bit values.
enum qvtr_level_t : unsigned int {
    QVTR_NOTE = 1,
    QVTR_FAILURE = 4,
    QVTR_DETAIL = 8,
    QVTR_INFO = 32,
    QVTR_VERBOSE = 64,
    QVTR_SUCCESS = 128,
};

#if defined(__GNUC__)
#define QVTR_PRINTF(fmt, args) __attribute__((format(printf, fmt, args)))
#else
#define QVTR_PRINTF(fmt, args)
#endif

class qvtr_entry_c {
  public:
    qvtr_entry_c(const char* function, const char* source, unsigned int* state1,
                 unsigned int* state2, int line, bool enabled);
    virtual ~qvtr_entry_c() = default;
    qvtr_entry_c(const qvtr_entry_c&) = delete;
    qvtr_entry_c& operator=(const qvtr_entry_c&) = delete;

    // The format brings its own line end.
    void print(unsigned int level, int line, const char* format, ...) QVTR_PRINTF(4, 5);
    // The library adds the line end.
    void print_nl(unsigned int level, int line, const char* format, ...) QVTR_PRINTF(4, 5);

  private:
    void _print(unsigned int level, int line, const char* format, std::va_list args);

    const char* _function;
    const char* _source;
    bool _enabled;
};

// Opens the scope `name` of the calling function, with a pair of state words of its own.
#define QVTR_SCOPE(name, function, source)                                                         \
    static unsigned int qvtr_state1_##name = 0, qvtr_state2_##name = 0;                            \
    qvtr_entry_c name(function, source, &qvtr_state1_##name, &qvtr_state2_##name, __LINE__, true)

// Chooses the directory of the trace file and the module name that names it. A null or empty
// directory stops the file trace. False when the file cannot be opened there.
bool qvtr_set_log_directory(char* buffer, std::uint64_t& size, const char* directory,
                            const char* module, bool unused);

// Reads the settings file again: lines "key = value", '#' starts a comment.
//   trace  = on | off        whether anything is written (default on)
//   levels = <number>        mask of the levels written, decimal or 0x hex (default all)
// Unknown keys are ignored. False, with the settings unchanged, when the file can't be read.
bool qvtr_reparse_file(char* buffer, std::uint64_t& size, const char* file);

// True when the process has a console to write to.
bool qvtr_is_console_application();

// The path of the trace file now in use, empty when none; for tests and tools.
std::string qvtr_current_log_file();
