// stats_tool run as a separate process, as an operator or a script runs it: the fixture of the
// tool's tests.
#pragma once

#include "common/test_support.h"
#include "platform/os.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace tool_test {

struct run_result_s {
    int status;
    std::string output;
};

// A run with its two streams apart, each with the line ends of its platform read as line feeds.
struct apart_result_s {
    int status;
    std::string out;
    std::string err;
};

class stats_tool : public ::testing::Test {
  protected:
    // The output file of the last run.
    std::string output_file() const { return scratch.join("output.txt"); }

    static std::vector<std::string> command_line(std::vector<std::string> args) {
#if defined(_WIN32)
        args.insert(args.begin(), test_support::bin_dir() + "/stats_tool.exe");
#else
        args.insert(args.begin(), test_support::bin_dir() + "/stats_tool");
#endif
        return args;
    }

    // Standard output and error in one file, in the order they came.
    run_result_s run(std::vector<std::string> args) {
        int status = os::run_process(command_line(std::move(args)), output_file());
        return {status, test_support::read_file(output_file())};
    }

    apart_result_s run_apart(std::vector<std::string> args) {
        std::string error_file = scratch.join("error.txt");
        int status = os::run_process(command_line(std::move(args)), output_file(), error_file);
        apart_result_s result{status, test_support::read_file(output_file()),
                              test_support::read_file(error_file)};
        std::erase(result.out, '\r');
        std::erase(result.err, '\r');
        return result;
    }

    test_support::temp_dir_c scratch;
    test_support::temp_dir_c scenario;
};

} // namespace tool_test
