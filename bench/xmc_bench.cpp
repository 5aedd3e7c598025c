// The type gate per call, one benchmark per type with a passing and a failing text, and the
// load of the 5 MB scenario-shaped XMC input into a mixed_xmc_xml_tree_c beside the plain
// xml_tree_c load of the same bytes.
#include "configuration/xmc_enums.h"
#include "configuration/xmc_item.h"
#include "ratio_reporter.h"
#include "stats_mng/load_order.h"
#include "xmc_inputs.h"
#include "xml/xml_tree_templ.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

namespace {

struct case_s {
    const char* name;
    std::uint32_t type;
    std::uint32_t enum_index;
    const char* text;
};

const case_s cases[] = {
    {"Enum/ok", 0, 2, "FullSystem"},
    {"Enum/bad", 0, 2, "NoSuchApplication"},
    {"Bandwidth/ok", 0, 5, "1024.0"},
    {"Number/ok", 1, 16, "25000"},
    {"Number/bad", 1, 16, "18446744073709551616"},
    {"Bool/ok", 2, 16, "False"},
    {"String/ok", 3, 16, "   File server"},
    {"Text/ok", 4, 16, "anything"},
    {"FullPath/ok", 5, 16, "C:/Program Files/engine"},
    {"FullPath/install", 5, 16, "[INSTALL_TMP]/run.cmd"},
    {"DefFullPath/ok", 6, 16, ""},
    {"IPAddr/ok", 7, 16, "192.168.17.4"},
    {"IPAddr/bad", 7, 16, "192.168.17.256"},
    {"IPAdrMask/ok", 8, 16, "10.0.0.1/255.255.0.0"},
    {"IPAdrMask/bad", 8, 16, "10.0.0.1/255.0.255.0"},
    {"Date/wildcard", 9, 16, "ANY:ANY:2013"},
    {"Date/checked", 9, 16, "29 Feb 2012"},
    {"Date/bad", 9, 16, "31 4 2013"},
    {"MultiEntry/ok", 10, 16, "3010"},
    {"Any/refused", 11, 16, "x"},
};

void fits(benchmark::State& state, const case_s* c) {
    for (auto _ : state)
        benchmark::DoNotOptimize(
            xmc_enum_c::data_fits_type(c->text, c->type, c->enum_index, nullptr));
}

const std::string& scenario() {
    static const std::string text = xmc_inputs::scenario_document();
    return text;
}

void load_plain(benchmark::State& state) {
    for (auto _ : state) {
        xml_tree_c tree;
        benchmark::DoNotOptimize(tree.load_from_str(scenario().c_str()));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * scenario().size()));
}

void load_mixed(benchmark::State& state) {
    for (auto _ : state) {
        mixed_xmc_xml_tree_c tree;
        benchmark::DoNotOptimize(tree.load_from_str(scenario().c_str()));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * scenario().size()));
}

} // namespace

int main(int argc, char** argv) {
    load_order_n::library_scope_c library;
    for (const case_s& c : cases)
        benchmark::RegisterBenchmark((std::string("data_fits_type/") + c.name).c_str(), fits, &c);
    benchmark::RegisterBenchmark("xml_tree_c/scenario", load_plain)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("mixed_xmc_xml_tree_c/scenario", load_mixed)
        ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    // The hook and the kinds of the XMC items against the plain load of the same bytes.
    ratio_reporter_c reporter({"mixed_xmc_xml_tree_c"}, "xml_tree_c", {"scenario"}, false);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
