#include "common/child_process.h"

#include "common/test_support.h"

#include <chrono>
#include <thread>

namespace test_support {

std::string program_path(const std::string& name) {
#if defined(_WIN32)
    return bin_dir() + "/" + name + ".exe";
#else
    return bin_dir() + "/" + name;
#endif
}

child_process_c::child_process_c(const std::vector<std::string>& argv, std::string output)
    : _output(std::move(output)), _child(os::start_process(argv, _output)) {}

child_process_c::~child_process_c() { os::release_process(_child); }

bool child_process_c::says(const std::string& word, const std::string& failure, int milliseconds) {
    for (int waited = 0; waited <= milliseconds; waited += 10) {
        std::string said = output();
        if (said.rfind(word, 0) == 0) return true;
        if (said.rfind(failure, 0) == 0 || os::wait_process(_child, 0) != -1)
            return output().rfind(word, 0) == 0;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

std::string child_process_c::output() const { return read_file(_output); }

int child_process_c::wait(int milliseconds) { return os::wait_process(_child, milliseconds); }

void child_process_c::kill() { os::kill_process(_child); }

} // namespace test_support
