// A console reporter that, after Google Benchmark's usual table, prints one ratio line per pair
// of benchmarks named "<ours>/<case>" and "<theirs>/<case>" (for each of several "ours"), from the
// medians of repetitions (or the single run without repetitions).
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <ostream>
#include <string>
#include <vector>

class ratio_reporter_c : public benchmark::ConsoleReporter {
  public:
    // `real_time` compares wall-clock time (for work that waits on the system), CPU time otherwise.
    ratio_reporter_c(std::vector<std::string> ours, std::string theirs,
                     std::vector<std::string> cases, bool real_time)
        : benchmark::ConsoleReporter(OO_Tabular), _ours(std::move(ours)),
          _theirs(std::move(theirs)), _cases(std::move(cases)), _real_time(real_time) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        benchmark::ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.error_occurred) continue;
            bool single = run.run_type == Run::RT_Iteration && run.repetitions <= 1;
            bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
            if (single || median)
                _time[run.run_name.function_name] =
                    _real_time ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
        }
    }

    void Finalize() override {
        benchmark::ConsoleReporter::Finalize();
        std::ostream& out = GetOutputStream();
        for (const std::string& mine : _ours) {
            out << "\nratio " << mine << " / " << _theirs << " (" << (_real_time ? "real" : "CPU")
                << " time; below 1 means " << mine << " is faster)\n";
            for (const std::string& name : _cases) {
                auto ours = _time.find(mine + "/" + name);
                auto theirs = _time.find(_theirs + "/" + name);
                if (ours == _time.end() || theirs == _time.end() || theirs->second <= 0) continue;
                char line[200];
                std::snprintf(line, sizeof line, "ratio %-18s %12.1f / %12.1f = %.2f\n",
                              name.c_str(), ours->second, theirs->second,
                              ours->second / theirs->second);
                out << line;
            }
        }
    }

  private:
    std::vector<std::string> _ours;
    std::string _theirs;
    std::vector<std::string> _cases;
    bool _real_time;
    std::map<std::string, double> _time;
};
