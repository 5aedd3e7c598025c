// utl_stream_c against std::string doing the same work: appends of strings, integers, doubles
// and characters, the mixes with which the library builds XML, and the formatting of single
// numbers. Each case runs as a pair, "utl_stream/<case>" and "std_string/<case>"; after the
// usual table the program prints one ratio line per case, ours over std::string, from the
// medians when the run has repetitions and from the single run otherwise.
#include "stats_mng/load_order.h"
#include "utl/utl_stream.h"

#include <benchmark/benchmark.h>

#include "ratio_reporter.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <map>
#include <string>
#include <vector>

namespace {

// ---- inputs, made once

struct inputs_s {
    std::vector<std::string> names;
    std::vector<std::string> paths;
    std::vector<int> ints;
    std::vector<unsigned long long> big;
    std::vector<double> doubles;
    std::string text;
};

const inputs_s& inputs() {
    static const inputs_s in = [] {
        inputs_s out;
        std::uint64_t seed = 0x9E3779B97F4A7C15ull;
        auto next = [&seed] {
            seed ^= seed << 13;
            seed ^= seed >> 7;
            seed ^= seed << 17;
            return seed;
        };
        for (int i = 0; i < 200; ++i) {
            out.names.push_back("scenario_" + std::to_string(i));
            out.paths.push_back("C:/data/replica/" + std::to_string(next() % 100000) +
                                "/folder/file_" + std::to_string(i) + ".dat");
        }
        for (int i = 0; i < 1000; ++i) {
            // Magnitudes from one digit to ten, both signs.
            int digits = static_cast<int>(next() % 10);
            long long v = static_cast<long long>(next() % 10);
            for (int d = 0; d < digits; ++d) v = v * 10 + static_cast<long long>(next() % 10);
            if (v > 2147483647ll) v %= 2147483647ll;
            out.ints.push_back(static_cast<int>(next() % 4 == 0 ? -v : v));
            out.big.push_back(next() >> (next() % 60));
            // Mostly short values, one in ten in the exponent form.
            double d = static_cast<double>(next() % 1000000) / 997.0;
            if (i % 10 == 9) d *= 1e9;
            out.doubles.push_back(next() % 3 == 0 ? -d : d);
        }
        for (int i = 0; i < 4096; ++i) out.text += static_cast<char>(' ' + next() % 95);
        return out;
    }();
    return in;
}

// The double as the stream renders it, done with snprintf for std::string.
void std_append_double(std::string& s, double value) {
    char buffer[32];
    if (value > -2147483647.0 && value < 2147483647.0) {
        std::snprintf(buffer, sizeof buffer, "%.4lf", value);
        std::size_t n = std::strlen(buffer);
        if (std::memchr(buffer, '.', n)) {
            while (n && buffer[n - 1] == '0') --n;
            if (n && buffer[n - 1] == '.') --n;
        }
        s.append(buffer, n);
    } else {
        std::snprintf(buffer, sizeof buffer, "%15.9le", value);
        s += buffer;
    }
}

// Keeps the built text alive for the optimiser and counts its bytes.
void keep(const char* data, std::size_t length, std::size_t& bytes) {
    benchmark::DoNotOptimize(data);
    benchmark::ClobberMemory();
    bytes += length;
}

// ---- strings: <file name="..." path="..."/>

void utl_strings(benchmark::State& state) {
    const auto& in = inputs();
    std::size_t bytes = 0;
    for (auto _ : state) {
        utl_stream_c s;
        for (std::size_t i = 0; i < in.names.size(); ++i)
            s.append("<file name=\"")
                .append(in.names[i].c_str())
                .append("\" path=\"")
                .append(in.paths[i].c_str())
                .append("\"/>\n");
        keep(s.c_str(), s.get_length(), bytes);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

void std_strings(benchmark::State& state) {
    const auto& in = inputs();
    std::size_t bytes = 0;
    for (auto _ : state) {
        std::string s;
        for (std::size_t i = 0; i < in.names.size(); ++i) {
            s += "<file name=\"";
            s += in.names[i].c_str();
            s += "\" path=\"";
            s += in.paths[i].c_str();
            s += "\"/>\n";
        }
        keep(s.data(), s.size(), bytes);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

// ---- integers: int and unsigned 64-bit numbers with separators

void utl_ints(benchmark::State& state) {
    const auto& in = inputs();
    std::size_t bytes = 0;
    for (auto _ : state) {
        utl_stream_c s;
        for (std::size_t i = 0; i < in.ints.size(); ++i)
            s.append(in.ints[i]).append(',').append(in.big[i]).append(';');
        keep(s.c_str(), s.get_length(), bytes);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

void std_ints(benchmark::State& state) {
    const auto& in = inputs();
    std::size_t bytes = 0;
    for (auto _ : state) {
        std::string s;
        for (std::size_t i = 0; i < in.ints.size(); ++i) {
            s += std::to_string(in.ints[i]);
            s += ',';
            s += std::to_string(in.big[i]);
            s += ';';
        }
        keep(s.data(), s.size(), bytes);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

// ---- doubles

void utl_doubles(benchmark::State& state) {
    const auto& in = inputs();
    std::size_t bytes = 0;
    for (auto _ : state) {
        utl_stream_c s;
        for (double d : in.doubles) s.append(d).append(' ');
        keep(s.c_str(), s.get_length(), bytes);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

void std_doubles(benchmark::State& state) {
    const auto& in = inputs();
    std::size_t bytes = 0;
    for (auto _ : state) {
        std::string s;
        for (double d : in.doubles) {
            std_append_double(s, d);
            s += ' ';
        }
        keep(s.data(), s.size(), bytes);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

// ---- characters one at a time, as an escaping writer copies text

void utl_chars(benchmark::State& state) {
    const std::string& text = inputs().text;
    std::size_t bytes = 0;
    for (auto _ : state) {
        utl_stream_c s;
        for (char c : text) {
            if (c == '<')
                s.append("&lt;");
            else if (c == '&')
                s.append("&amp;");
            else
                s.append(c);
        }
        keep(s.c_str(), s.get_length(), bytes);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

void std_chars(benchmark::State& state) {
    const std::string& text = inputs().text;
    std::size_t bytes = 0;
    for (auto _ : state) {
        std::string s;
        for (char c : text) {
            if (c == '<')
                s += "&lt;";
            else if (c == '&')
                s += "&amp;";
            else
                s += c;
        }
        keep(s.data(), s.size(), bytes);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

// ---- a state file's elements: strings, numbers, words and characters mixed

void utl_xml_mix(benchmark::State& state) {
    const auto& in = inputs();
    std::size_t bytes = 0;
    for (auto _ : state) {
        utl_stream_c s;
        s.append("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Stats>\n");
        for (std::size_t i = 0; i < in.names.size(); ++i) {
            s.append("  <Scenario ID=\"")
                .append(in.ints[i])
                .append("\" Name=\"")
                .append(in.names[i].c_str())
                .append("\" State=\"Running\" IsSyncReplicated=\"")
                .append(i % 2 == 0)
                .append("\" IsSyncReplicatedTime=\"")
                .append(in.big[i])
                .append("\" Ratio=\"")
                .append(in.doubles[i])
                .append('"')
                .append("/>\n");
        }
        s.append("</Stats>\n");
        keep(s.c_str(), s.get_length(), bytes);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

void std_xml_mix(benchmark::State& state) {
    const auto& in = inputs();
    std::size_t bytes = 0;
    for (auto _ : state) {
        std::string s;
        s += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Stats>\n";
        for (std::size_t i = 0; i < in.names.size(); ++i) {
            s += "  <Scenario ID=\"";
            s += std::to_string(in.ints[i]);
            s += "\" Name=\"";
            s += in.names[i].c_str();
            s += "\" State=\"Running\" IsSyncReplicated=\"";
            s += i % 2 == 0 ? "True" : "False";
            s += "\" IsSyncReplicatedTime=\"";
            s += std::to_string(in.big[i]);
            s += "\" Ratio=\"";
            std_append_double(s, in.doubles[i]);
            s += '"';
            s += "/>\n";
        }
        s += "</Stats>\n";
        keep(s.data(), s.size(), bytes);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

// ---- one number into a reused text: the cost of the formatting itself

void utl_format_int(benchmark::State& state) {
    const auto& in = inputs();
    utl_stream_c s;
    std::size_t bytes = 0;
    for (auto _ : state) {
        for (int v : in.ints) {
            s.append(utl_stream_c::clear_char).append(v);
            bytes += s.get_length();
            benchmark::DoNotOptimize(s.c_str());
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

void std_format_int(benchmark::State& state) {
    const auto& in = inputs();
    std::string s;
    std::size_t bytes = 0;
    for (auto _ : state) {
        for (int v : in.ints) {
            s.clear();
            s += std::to_string(v);
            bytes += s.size();
            benchmark::DoNotOptimize(s.data());
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

void utl_format_double(benchmark::State& state) {
    const auto& in = inputs();
    utl_stream_c s;
    std::size_t bytes = 0;
    for (auto _ : state) {
        for (double v : in.doubles) {
            s.append(utl_stream_c::clear_char).append(v);
            bytes += s.get_length();
            benchmark::DoNotOptimize(s.c_str());
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

void std_format_double(benchmark::State& state) {
    const auto& in = inputs();
    std::string s;
    std::size_t bytes = 0;
    for (auto _ : state) {
        for (double v : in.doubles) {
            s.clear();
            std_append_double(s, v);
            bytes += s.size();
            benchmark::DoNotOptimize(s.data());
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

// ---- the pairs

struct case_s {
    const char* name;
    void (*ours)(benchmark::State&);
    void (*theirs)(benchmark::State&);
};

const case_s cases[] = {
    {"strings", utl_strings, std_strings},
    {"ints", utl_ints, std_ints},
    {"doubles", utl_doubles, std_doubles},
    {"chars", utl_chars, std_chars},
    {"xml_mix", utl_xml_mix, std_xml_mix},
    {"format_int", utl_format_int, std_format_int},
    {"format_double", utl_format_double, std_format_double},
};

} // namespace

int main(int argc, char** argv) {
    load_order_n::library_scope_c library;
    std::vector<std::string> names;
    for (const case_s& c : cases) {
        benchmark::RegisterBenchmark((std::string("utl_stream/") + c.name).c_str(), c.ours);
        benchmark::RegisterBenchmark((std::string("std_string/") + c.name).c_str(), c.theirs);
        names.push_back(c.name);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    ratio_reporter_c reporter({"utl_stream"}, "std_string", names, false);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
