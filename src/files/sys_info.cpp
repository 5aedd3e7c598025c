#include "files/sys_info.h"

#include <new>

namespace {
sys_info_c* instance = nullptr;
} // namespace

sys_info_c* the_sys_info() { return instance; }

void start_sys_info() {
    if (!instance) instance = new (std::nothrow) sys_info_c;
}

void stop_sys_info() {
    delete instance;
    instance = nullptr;
}
