// Validation of generated stored scenarios of 10, 100 and 1,000 hosts, one root directory each
// (bench/scenario_inputs.cpp), in two shapes of the replication tree: every replica below the
// Master (fan) and each replica below the one before it (chain). Three measures per scenario:
//   load      scenario_loader_n::load_text into a new scenario_conf_c (its destruction is left
//             out of the time)
//   checks    check_consistency and check_xmc_validity of a loaded scenario
//   full      a new scenario_conf_c, the load, both checks and the destruction: one validation
// The set-up proves that each generated scenario loads with all its hosts and validates with no
// finding, so that the times are those of the real work. After the table a line per measure and
// shape gives the growth from each size to the next, and the exponent it implies (1 linear).
#include "configuration/scenario_conf.h"
#include "configuration/scenario_loader.h"
#include "configuration/xmc_validity.h"
#include "scenario_inputs.h"
#include "stats_mng/load_order.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using scenario_inputs::shape_t;

const std::string& two_hosts() {
    static const std::string text = scenario_inputs::two_host_scenario();
    return text;
}

struct input_s {
    std::string text;
    std::string error; // why the input is unfit; empty when it is fit
};

// The generated text of `hosts` hosts, proven to load and to validate with no finding.
const input_s& input(int hosts, shape_t shape) {
    static std::map<std::pair<int, shape_t>, input_s> inputs;
    auto [at, made] = inputs.try_emplace({hosts, shape});
    input_s& in = at->second;
    if (!made) return in;
    in.text = scenario_inputs::scenario(two_hosts(), hosts, shape);
    if (in.text.empty()) {
        in.error = "the scenario could not be generated";
        return in;
    }
    scenario_conf_c conf;
    scenario_load_result_s loaded =
        scenario_loader_n::load_text(conf, in.text.data(), in.text.size(), "generated");
    if (!loaded.ok() || loaded.host_count != static_cast<std::uint64_t>(hosts)) {
        in.error = "the generated scenario did not load with all its hosts";
        return in;
    }
    xmc_validity_c validity;
    bool consistent = conf.check_consistency();
    bool valid = conf.check_xmc_validity(validity);
    if (!consistent || !valid || validity.findings.get_count() != 0)
        in.error = "the generated scenario has findings";
    return in;
}

void count_hosts(benchmark::State& state, int hosts) {
    state.counters["hosts"] = hosts;
    state.counters["per_host"] = benchmark::Counter(static_cast<double>(hosts),
                                                    benchmark::Counter::kIsIterationInvariantRate |
                                                        benchmark::Counter::kInvert);
}

void load(benchmark::State& state, shape_t shape) {
    int hosts = static_cast<int>(state.range(0));
    const input_s& in = input(hosts, shape);
    if (!in.error.empty()) return state.SkipWithError(in.error.c_str());
    for (auto _ : state) {
        auto conf = std::make_unique<scenario_conf_c>();
        scenario_load_result_s loaded =
            scenario_loader_n::load_text(*conf, in.text.data(), in.text.size(), "generated");
        benchmark::DoNotOptimize(loaded.host_count);
        state.PauseTiming();
        conf.reset();
        state.ResumeTiming();
    }
    count_hosts(state, hosts);
}

void checks(benchmark::State& state, shape_t shape) {
    int hosts = static_cast<int>(state.range(0));
    const input_s& in = input(hosts, shape);
    if (!in.error.empty()) return state.SkipWithError(in.error.c_str());
    scenario_conf_c conf;
    scenario_loader_n::load_text(conf, in.text.data(), in.text.size(), "generated");
    std::uint64_t findings = 0;
    for (auto _ : state) {
        xmc_validity_c validity;
        benchmark::DoNotOptimize(conf.check_consistency());
        benchmark::DoNotOptimize(conf.check_xmc_validity(validity));
        findings += validity.findings.get_count();
    }
    if (findings) state.SkipWithError("a repeated check had findings");
    count_hosts(state, hosts);
}

void full(benchmark::State& state, shape_t shape) {
    int hosts = static_cast<int>(state.range(0));
    const input_s& in = input(hosts, shape);
    if (!in.error.empty()) return state.SkipWithError(in.error.c_str());
    std::uint64_t findings = 0;
    for (auto _ : state) {
        scenario_conf_c conf;
        scenario_loader_n::load_text(conf, in.text.data(), in.text.size(), "generated");
        xmc_validity_c validity;
        benchmark::DoNotOptimize(conf.check_consistency());
        benchmark::DoNotOptimize(conf.check_xmc_validity(validity));
        findings += validity.findings.get_count();
    }
    if (findings) state.SkipWithError("a validation had findings");
    count_hosts(state, hosts);
}

void load_fan(benchmark::State& state) { load(state, shape_t::fan); }
void load_chain(benchmark::State& state) { load(state, shape_t::chain); }
void checks_fan(benchmark::State& state) { checks(state, shape_t::fan); }
void checks_chain(benchmark::State& state) { checks(state, shape_t::chain); }
void full_fan(benchmark::State& state) { full(state, shape_t::fan); }
void full_chain(benchmark::State& state) { full(state, shape_t::chain); }

#define SIZES Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond)
BENCHMARK(load_fan)->SIZES;
BENCHMARK(load_chain)->SIZES;
BENCHMARK(checks_fan)->SIZES;
BENCHMARK(checks_chain)->SIZES;
BENCHMARK(full_fan)->SIZES;
BENCHMARK(full_chain)->SIZES;

// The table, then how the time grows from each size to the next.
class growth_reporter_c : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        benchmark::ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.error_occurred) continue;
            // With repetitions only the median stands for the size.
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name != "median") continue;
            std::string name = run.run_name.function_name;
            int hosts = std::stoi(run.run_name.args);
            _times[name][hosts] = run.GetAdjustedCPUTime();
        }
    }
    void Finalize() override {
        benchmark::ConsoleReporter::Finalize();
        for (const auto& [name, by_hosts] : _times) {
            std::printf("growth %s:", name.c_str());
            const std::pair<const int, double>* last = nullptr;
            for (const auto& point : by_hosts) {
                if (last) {
                    double ratio = point.second / last->second;
                    double exponent =
                        std::log(ratio) / std::log(static_cast<double>(point.first) / last->first);
                    std::printf("  %d->%d hosts x%.2f (exponent %.2f)", last->first, point.first,
                                ratio, exponent);
                }
                last = &point;
            }
            std::printf("\n");
        }
    }

  private:
    std::map<std::string, std::map<int, double>> _times;
};

} // namespace

int main(int argc, char** argv) {
    load_order_n::library_scope_c library;
    benchmark::Initialize(&argc, argv);
    growth_reporter_c reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
