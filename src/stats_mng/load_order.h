// The library's start-up order: one table, run in order when the library loads and undone in
// reverse order when it unloads. No other file relies on the order in which the compiler
// happens to run static constructors.
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

// Runs every step not yet run, in order; tears down in reverse order.
void start_all();
void stop_all();

// What has run since the library loaded: +N for a start of step N, -N for its tear-down.
std::vector<int> journal();

} // namespace load_order_n
