// Loading XML: ours against pugixml, tinyxml2 and libxml2, on the three generated inputs of
// xml_inputs.h (a 300-byte state file, a 70 KB template, a 5 MB scenario). Two ways in:
//   "<parser>/<input>"      from the file, as the library loads its state files: the file is
//                           opened and read in every iteration (ours: xml_tree_c::load, that is
//                           the document's parse and the conversion to items);
//   "<parser>/<input>_str"  from a string in memory (ours: xml_tree_c::load_from_str, which drops
//                           element text; pugixml load_buffer, tinyxml2 Parse, xmlReadMemory).
// Every iteration builds the whole tree and destroys it. Throughput is the input's bytes per
// second of CPU time; the ratio lines at the end put each parser over pugixml.
#include "stats_mng/load_order.h"
#include "xml/xml_tree_templ.h"

#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <pugixml.hpp>
#include <tinyxml2.h>

#include "ratio_reporter.h"
#include "xml_inputs.h"

#include <cstdint>
#include <string>
#include <vector>

namespace {

struct input_s {
    std::string name;
    std::string path;
    std::string text;
};

std::vector<input_s>& inputs() {
    static std::vector<input_s> all;
    return all;
}

using load_f = bool (*)(const input_s&);

bool ours_file(const input_s& in) {
    xml_tree_c tree;
    return tree.load(in.path.c_str()) && tree.get_root();
}

bool ours_str(const input_s& in) {
    xml_tree_c tree;
    return tree.load_from_str(in.text.c_str()) && tree.get_root();
}

bool pugixml_file(const input_s& in) {
    pugi::xml_document doc;
    return static_cast<bool>(doc.load_file(in.path.c_str()));
}

bool pugixml_str(const input_s& in) {
    pugi::xml_document doc;
    return static_cast<bool>(doc.load_buffer(in.text.data(), in.text.size()));
}

bool tinyxml2_file(const input_s& in) {
    tinyxml2::XMLDocument doc;
    return doc.LoadFile(in.path.c_str()) == tinyxml2::XML_SUCCESS;
}

bool tinyxml2_str(const input_s& in) {
    tinyxml2::XMLDocument doc;
    return doc.Parse(in.text.data(), in.text.size()) == tinyxml2::XML_SUCCESS;
}

bool libxml2_file(const input_s& in) {
    xmlDocPtr doc = xmlReadFile(in.path.c_str(), nullptr, XML_PARSE_NONET);
    if (!doc) return false;
    xmlFreeDoc(doc);
    return true;
}

bool libxml2_str(const input_s& in) {
    xmlDocPtr doc = xmlReadMemory(in.text.data(), static_cast<int>(in.text.size()), in.name.c_str(),
                                  nullptr, XML_PARSE_NONET);
    if (!doc) return false;
    xmlFreeDoc(doc);
    return true;
}

void run(benchmark::State& state, load_f load, const input_s* in) {
    if (!load(*in)) {
        state.SkipWithError("the input does not load");
        return;
    }
    for (auto _ : state) benchmark::DoNotOptimize(load(*in));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(in->text.size()));
}

} // namespace

int main(int argc, char** argv) {
    load_order_n::library_scope_c library;
    const std::string dir = STATS_MNG_XML_INPUTS;
    if (!xml_inputs::write_all(dir)) return 1;
    for (const std::string& name : xml_inputs::names())
        inputs().push_back({name, dir + "/" + name + ".xml", xml_inputs::document(name)});
    xmlInitParser();

    struct parser_s {
        const char* name;
        load_f file;
        load_f str;
    };
    const parser_s parsers[] = {{"ours", ours_file, ours_str},
                                {"pugixml", pugixml_file, pugixml_str},
                                {"tinyxml2", tinyxml2_file, tinyxml2_str},
                                {"libxml2", libxml2_file, libxml2_str}};
    std::vector<std::string> cases;
    for (const input_s& in : inputs()) cases.push_back(in.name);
    for (const input_s& in : inputs()) cases.push_back(in.name + "_str");
    for (const input_s& in : inputs()) {
        for (const parser_s& parser : parsers) {
            benchmark::RegisterBenchmark((std::string(parser.name) + "/" + in.name).c_str(), run,
                                         parser.file, &in)
                ->Unit(benchmark::kMicrosecond);
            benchmark::RegisterBenchmark(
                (std::string(parser.name) + "/" + in.name + "_str").c_str(), run, parser.str, &in)
                ->Unit(benchmark::kMicrosecond);
        }
    }

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    ratio_reporter_c reporter({"ours", "tinyxml2", "libxml2"}, "pugixml", cases, false);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    xmlCleanupParser();
    return 0;
}
