// validation_one_run MODE HOSTS fan|chain: one validation of a generated scenario
// (bench/scenario_inputs.cpp), for scripts/validation-instructions, which counts the
// instructions of a run under callgrind. MODE is
//   none    the start-up and the generation of the scenario's text, nothing else (the baseline);
//   load    that, and scenario_loader_n::load_text of the text into a scenario_conf_c;
//   full    that, and check_consistency and check_xmc_validity of the loaded scenario.
// It prints the size of the text in bytes, and fails when the scenario does not load with all its
// hosts or, in mode full, when it has a finding.
#include "configuration/scenario_conf.h"
#include "configuration/scenario_loader.h"
#include "configuration/xmc_validity.h"
#include "scenario_inputs.h"
#include "stats_mng/load_order.h"

#include <cstdio>
#include <cstdlib>
#include <string>

int main(int argc, char** argv) {
    load_order_n::library_scope_c library;
    if (argc < 4) {
        std::fprintf(stderr, "usage: %s none|load|full HOSTS fan|chain\n", argv[0]);
        return 2;
    }
    const std::string mode = argv[1];
    int hosts = std::atoi(argv[2]);
    const std::string shape_name = argv[3];
    scenario_inputs::shape_t shape =
        shape_name == "chain" ? scenario_inputs::shape_t::chain : scenario_inputs::shape_t::fan;
    const std::string text =
        scenario_inputs::scenario(scenario_inputs::two_host_scenario(), hosts, shape);
    if (text.empty()) {
        std::fprintf(stderr, "the scenario could not be generated\n");
        return 1;
    }
    std::printf("%zu\n", text.size());
    if (mode == "none") return 0;
    scenario_conf_c conf;
    scenario_load_result_s loaded =
        scenario_loader_n::load_text(conf, text.data(), text.size(), "generated");
    if (!loaded.ok() || loaded.host_count != static_cast<std::uint64_t>(hosts)) {
        std::fprintf(stderr, "the scenario did not load with all its hosts\n");
        return 1;
    }
    if (mode == "load") return 0;
    if (mode == "full") {
        xmc_validity_c validity;
        bool consistent = conf.check_consistency();
        bool valid = conf.check_xmc_validity(validity);
        if (!consistent || !valid || validity.findings.get_count() != 0) {
            std::fprintf(stderr, "the scenario has findings\n");
            return 1;
        }
        return 0;
    }
    std::fprintf(stderr, "unknown mode %s\n", mode.c_str());
    return 2;
}
