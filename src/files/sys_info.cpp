#include "files/sys_info.h"

#include "support/load_step.h"

namespace {
load_step_object_ct<sys_info_c> instance("the sys_info_c instance");
} // namespace

sys_info_c* the_sys_info() { return instance.get(); }

void start_sys_info() { instance.build(); }

void stop_sys_info() { instance.drop(); }
