#include "load_steps_command.h"

#include "stats_mng/load_order.h"

#include <cstdio>
#include <vector>

// The start-up steps this process ran, in the order they ran; the state command asks the loaded
// shared library instead, which starts itself.
int run_load_steps_command(const invocation_s& call) {
    if (!call.args.empty()) {
        const std::string& arg = call.args[0];
        return usage_error(call, (is_option(arg) ? "unknown option '" : "unexpected argument '") +
                                     arg + "'");
    }
    std::vector<int> journal = load_order_n::journal();
    std::size_t ran = 0;
    for (const load_order_n::step_s& step : load_order_n::steps()) {
        bool found = ran < journal.size() && journal[ran] == step.order;
        if (found) ++ran;
        std::printf("%3d %s %s\n", step.order, found ? "ran    " : "MISSING", step.what);
    }
    return ran == load_order_n::steps().size() ? exit_yes : exit_no;
}
