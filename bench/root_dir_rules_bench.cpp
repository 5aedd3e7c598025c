// The root directory rules of a scenario (scenario_conf_c::_check_array_root_dirs) on generated
// scenarios of 100 to 1,000 hosts with 10 root directories each: a Master and its replicas, all
// mirroring the Master's directories. Two cases bound what a scenario can cost:
//   separate_machines  every host on an address of its own: the overlap rule compares only the
//                      addresses of each pair of hosts
//   one_machine        every host on one address: the overlap rule compares every directory of
//                      every pair of hosts, n (n - 1) / 2 * 100 path pairs
// The rule looks at every pair of hosts by nature, so both grow with the square of the hosts;
// what differs is the weight of one pair. After the table a line per case gives the growth
// from each size to the next, and the exponent it implies (1 linear, 2 quadratic).
#include "configuration/scenario_conf.h"
#include "configuration/scenario_loader.h"
#include "stats_mng/load_order.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace {

constexpr int dirs_per_host = 10;
const std::vector<int> host_counts = {100, 200, 500, 1000};

std::string data(const std::string& label, const std::string& val, const std::string& type) {
    return "<data label=\"" + label + "\" val=\"" + val + "\" type=\"" + type + "\"/>";
}

std::string root_dir(int host, int position) {
    std::string path = "C:/data/h" + std::to_string(host) + "/d" + std::to_string(position);
    return "<object label=\"RootDir\" id=\"3010\">" + data("Path", path, "FullPath") +
           data("ID", std::to_string(position + 1), "Number") + data("DBdir", "False", "Bool") +
           "</object>";
}

std::string host_props(int index, bool one_machine) {
    std::string ip = one_machine ? "10.0.0.1"
                                 : "10." + std::to_string(index / 65536) + "." +
                                       std::to_string(index / 256 % 256) + "." +
                                       std::to_string(index % 256);
    std::string dirs = "<data label=\"ListRootDirs\" val=\"3010\" type=\"MultiEntry\">";
    for (int d = 0; d < dirs_per_host; ++d) dirs += root_dir(index, d);
    dirs += "</data>";
    return "<object label=\"CommonHostProps\" id=\"100\">" +
           data("Host", "host" + std::to_string(index), "String") + data("IP", ip, "IPAddr") +
           data("Index", std::to_string(index), "Number") + dirs + "</object>";
}

// A Master feeding `hosts - 1` replicas.
std::string scenario_text(int hosts, bool one_machine) {
    std::string replicas;
    for (int index = 2; index <= hosts; ++index)
        replicas += "<object label=\"ReplNode\" id=\"5000\">" + host_props(index, one_machine) +
                    "</object>";
    return "<?xml version=\"1.0\"?>\n<object label=\"ConfigDataHolder\" id=\"1\">" +
           data("Version", "5", "Number") + "<object label=\"Scenario\" id=\"1000\">" +
           data("ScenarioID", "1", "Number") +
           data("ReplicationMode", "Online", "ReplicationMode") +
           "<title label=\"ReplicationTree\"><object label=\"ReplNode\" id=\"5000\">" +
           host_props(1, one_machine) + replicas + "</object></title></object></object>\n";
}

void rules(benchmark::State& state, bool one_machine) {
    int hosts = static_cast<int>(state.range(0));
    scenario_conf_c conf;
    std::string text = scenario_text(hosts, one_machine);
    scenario_load_result_s loaded =
        scenario_loader_n::load_text(conf, text.data(), text.size(), "generated");
    if (!loaded.ok() || loaded.host_count != static_cast<std::uint64_t>(hosts)) {
        state.SkipWithError("the generated scenario did not load");
        return;
    }
    std::size_t findings = 0;
    for (auto _ : state) {
        xmc_validity_c validity;
        benchmark::DoNotOptimize(conf._check_array_root_dirs(validity));
        findings = validity.findings.get_count();
    }
    if (findings) state.SkipWithError("a generated scenario has findings");
    state.counters["hosts"] = hosts;
    state.counters["per_host"] = benchmark::Counter(static_cast<double>(hosts),
                                                    benchmark::Counter::kIsIterationInvariantRate |
                                                        benchmark::Counter::kInvert);
}

void separate_machines(benchmark::State& state) { rules(state, false); }
void one_machine(benchmark::State& state) { rules(state, true); }

BENCHMARK(separate_machines)
    ->Arg(100)
    ->Arg(200)
    ->Arg(500)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(one_machine)->Arg(100)->Arg(200)->Arg(500)->Arg(1000)->Unit(benchmark::kMillisecond);

// The table, then how the time grows from each size to the next.
class growth_reporter_c : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        benchmark::ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.error_occurred) continue;
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
