// The main() of every test executable: the library is started once for the whole run, as a
// program that links the static core must do, and stopped at the end.
#include "stats_mng/load_order.h"

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    load_order_n::library_scope_c library;
    return RUN_ALL_TESTS();
}
