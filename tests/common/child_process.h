// A second process for tests: started beside the test, watched through its output file, let go
// through a release file, or killed as a crash would end it.
#pragma once

#include "platform/os.h"

#include <string>
#include <vector>

namespace test_support {

// The path of a program built beside the tests ("stats_tool", "file_holder", ...).
std::string program_path(const std::string& name);

class child_process_c {
  public:
    // `output` receives the child's standard output and error.
    child_process_c(const std::vector<std::string>& argv, std::string output);
    ~child_process_c();
    child_process_c(const child_process_c&) = delete;
    child_process_c& operator=(const child_process_c&) = delete;

    bool started() const { return _child != nullptr; }
    // Waits until the output begins with `word` (true), or the child ends or says `failure`.
    bool says(const std::string& word, const std::string& failure = "\x01",
              int milliseconds = 30000);
    std::string output() const;
    // The exit code once it ends within `milliseconds`, -1 otherwise.
    int wait(int milliseconds);
    void kill();

  private:
    std::string _output;
    os::child_process_s* _child = nullptr;
};

} // namespace test_support
