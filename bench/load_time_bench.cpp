// The load time of the shared library: one dlopen and dlclose of
//   with_generic_conf     the library as built, whose start-up builds the generic configurator
//                         (step 6: parse the built-in template, prove it against the code
//                         tables, index its hosts);
//   without_generic_conf  the same objects with a start-up table that leaves step 6 out;
//   pugixml_peer          a small library whose initialiser only parses the template's text into
//                         a pugixml DOM (pugixml linked into it, as ours is self-contained).
// Every cycle loads and unloads the library for real: the benchmark checks first that each one
// is gone after its dlclose, and that the library with the configurator traced its success and
// the one without did not. The ratio lines are ours over the peer, real time.
#include "ratio_reporter.h"

#include <benchmark/benchmark.h>

#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

namespace {

const char* const with_library = STATS_MNG_LIBRARY_WITH;
const char* const without_library = STATS_MNG_LIBRARY_WITHOUT;
const char* const peer_library = STATS_MNG_LIBRARY_PEER;

const std::string ok_line = "O.K. Generic Coonfigurator is successfully built up";

// One load and unload; false when either fails or the library stays mapped.
bool cycle(const char* path) {
    void* module = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!module) return false;
    dlclose(module);
    void* still = dlopen(path, RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
    if (still) dlclose(still);
    return still == nullptr;
}

// The trace the library writes while it loads, through STATS_MNG_TRACE_DIR.
std::string load_trace(const char* path) {
    char pattern[] = "/tmp/load_time_bench.XXXXXX";
    std::filesystem::path dir = mkdtemp(pattern);
    setenv("STATS_MNG_TRACE_DIR", dir.c_str(), 1);
    bool loaded = cycle(path);
    unsetenv("STATS_MNG_TRACE_DIR");
    std::stringstream text;
    text << std::ifstream(dir / "stats_mng.dll.log").rdbuf();
    std::filesystem::remove_all(dir);
    return loaded ? text.str() : "";
}

std::string check_libraries() {
    if (load_trace(with_library).find(ok_line) == std::string::npos)
        return std::string(with_library) + " did not build the configurator";
    if (!cycle(without_library) || load_trace(without_library).find(ok_line) != std::string::npos)
        return std::string(without_library) + " built the configurator or stayed loaded";
    void* peer = dlopen(peer_library, RTLD_NOW | RTLD_LOCAL);
    auto parsed =
        peer ? reinterpret_cast<bool (*)()>(dlsym(peer, "pugixml_template_peer_parsed")) : nullptr;
    bool peer_ok = parsed && parsed();
    if (peer) dlclose(peer);
    if (!peer_ok || !cycle(peer_library))
        return std::string(peer_library) + " did not parse the template or stayed loaded";
    return {};
}

void load_cycle(benchmark::State& state, const char* path) {
    static const std::string fault = check_libraries();
    if (!fault.empty()) {
        state.SkipWithError(fault.c_str());
        return;
    }
    for (auto _ : state) {
        void* module = dlopen(path, RTLD_NOW | RTLD_LOCAL);
        benchmark::DoNotOptimize(module);
        dlclose(module);
    }
}

void with_generic_conf(benchmark::State& state) { load_cycle(state, with_library); }
void without_generic_conf(benchmark::State& state) { load_cycle(state, without_library); }
void pugixml_peer(benchmark::State& state) { load_cycle(state, peer_library); }

BENCHMARK(with_generic_conf)
    ->Name("with_generic_conf/dlopen_dlclose")
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();
BENCHMARK(without_generic_conf)
    ->Name("without_generic_conf/dlopen_dlclose")
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();
BENCHMARK(pugixml_peer)
    ->Name("pugixml_peer/dlopen_dlclose")
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    ratio_reporter_c reporter({"with_generic_conf", "without_generic_conf"}, "pugixml_peer",
                              {"dlopen_dlclose"}, true);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
