// Starts the library for the whole run of a fuzz target: libFuzzer owns main(), so the start is
// this object, linked into every target as an object of its own, never from an archive.
#include "stats_mng/load_order.h"

namespace {
load_order_n::library_scope_c library;
} // namespace
