// The library's start-up order: one table, run in order when the library starts and undone in
// reverse order when it stops. No other file relies on the order in which the compiler happens
// to run static constructors.
//
// The shared library starts itself when it is loaded and stops when it is unloaded. A program
// that links the static core instead (stats_tool, the tests, the benchmarks) must start it
// itself, once, before it uses anything of the library: either with start_all() and stop_all(),
// or with a library_scope_c that lives as long as main(). The linker keeps nothing of the core
// that the program does not reach, so no static constructor could do it for such a program.
#pragma once

#include <span>
#include <vector>

namespace load_order_n {

struct step_s {
    int order;        // the step's number in the start-up order
    const char* what; // what the step builds
    void (*start)();
    void (*stop)(); // null for what lives until the process ends
};

std::span<const step_s> steps();

// Runs every step not yet run, in order; tears down in reverse order. Both are for the loading
// thread alone, as the library's own load and unload are.
void start_all();
void stop_all();

// True while every step has run and none has been torn down.
bool started();

// What has run since the process began: +N for a start of step N, -N for its tear-down.
std::vector<int> journal();

// Starts the library for the scope of a program's main().
class library_scope_c {
  public:
    library_scope_c() { start_all(); }
    ~library_scope_c() { stop_all(); }
    library_scope_c(const library_scope_c&) = delete;
    library_scope_c& operator=(const library_scope_c&) = delete;
};

} // namespace load_order_n
