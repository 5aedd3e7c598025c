#include "support/load_step.h"

#include "support/trc.h"

#include <cassert>

void report_unstarted_load_step(const char* what) {
    QVTR_SCOPE(tr, "report_unstarted_load_step", "load_step");
    tr.print_nl(QVTR_FAILURE, __LINE__, "%s is used before the library was started.", what);
    assert(!"an object of a start-up step is used before the library was started");
}
