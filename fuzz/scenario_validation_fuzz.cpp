// Loads the input as a stored scenario (scenario_loader_n::load_text, which takes the bytes by
// length: no terminating 0 byte is added) and, when it loads, runs both checks: the shape check
// and the validity check with its findings. Beyond the sanitizers' findings it checks what the
// checks promise their callers: every finding names what it is about and has a code that the
// message tables know (below 37).
#include "configuration/scenario_conf.h"
#include "configuration/scenario_loader.h"
#include "configuration/xmc_validity.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr std::uint32_t code_count = 37;

[[noreturn]] void fail(const char* what, const ch_data_s& finding) {
    std::fprintf(stderr, "scenario_validation_fuzz: %s: code %u, host %llu, name \"%s\"\n", what,
                 finding.code, static_cast<unsigned long long>(finding.host),
                 finding.name.c_str() ? finding.name.c_str() : "");
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    scenario_conf_c scenario;
    scenario_load_result_s loaded = scenario_loader_n::load_text(
        scenario, reinterpret_cast<const char*>(data), size, "fuzz input");
    if (!loaded.ok()) return 0;
    scenario.check_consistency();
    xmc_validity_c validity;
    scenario.check_xmc_validity(validity);
    for (ch_data_s* finding = validity.findings.first(); finding;
         finding = validity.findings.next(finding)) {
        if (finding->code >= code_count) fail("a finding with an unknown code", *finding);
        if (finding->name.get_length() == 0) fail("a finding without a name", *finding);
    }
    return 0;
}
