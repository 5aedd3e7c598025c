// A stand-in for libFuzzer's driver: runs LLVMFuzzerTestOneInput once over every file of the
// directories and files named on the command line, in sorted order, so that the seed corpus and
// the regressions are replayed by builds without libFuzzer (g++, MinGW under wine, the
// sanitizer build). A failing input ends the process as it would under the fuzzer, and the line
// naming it is already out. Names that start with a dot (.gitkeep) are not inputs.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fs = std::filesystem;

namespace {

bool is_input(const fs::path& path) {
    std::string name = path.filename().string();
    return !name.empty() && name[0] != '.';
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s DIR_OR_FILE...\n", argv[0]);
        return 2;
    }
    std::vector<fs::path> inputs;
    int status = 0;
    for (int i = 1; i < argc; ++i) {
        fs::path arg(argv[i]);
        std::error_code error;
        if (fs::is_directory(arg, error)) {
            std::vector<fs::path> found;
            for (const fs::directory_entry& entry : fs::recursive_directory_iterator(arg, error)) {
                if (entry.is_regular_file(error) && is_input(entry.path()))
                    found.push_back(entry.path());
            }
            std::sort(found.begin(), found.end());
            inputs.insert(inputs.end(), found.begin(), found.end());
        } else if (fs::is_regular_file(arg, error)) {
            inputs.push_back(arg);
        } else {
            std::fprintf(stderr, "%s: no such file or directory\n", argv[i]);
            status = 2;
        }
    }
    for (const fs::path& input : inputs) {
        std::printf("Running: %s\n", input.string().c_str());
        std::fflush(stdout);
        std::ifstream file(input, std::ios::binary);
        std::vector<char> bytes((std::istreambuf_iterator<char>(file)),
                                std::istreambuf_iterator<char>());
        if (!file.eof() && file.fail()) {
            std::fprintf(stderr, "%s: cannot be read\n", input.string().c_str());
            status = 2;
            continue;
        }
        // A fresh copy of exactly the input's size, as libFuzzer hands it over, so that a read
        // past the end is caught by AddressSanitizer.
        std::vector<std::uint8_t> data(bytes.begin(), bytes.end());
        LLVMFuzzerTestOneInput(data.data(), data.size());
    }
    std::printf("replayed %llu input(s)\n", static_cast<unsigned long long>(inputs.size()));
    return status;
}
