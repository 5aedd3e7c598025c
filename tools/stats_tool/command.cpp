#include "command.h"

#include "files/file_manipulation.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

const command_s* find_command(const std::string& name) {
    for (const command_s& command : command_table())
        if (name == command.name) return &command;
    return nullptr;
}

int usage_error(const invocation_s& call, const std::string& what) {
    if (call.command.empty())
        std::fprintf(stderr, "stats_tool: %s; see 'stats_tool help'\n", what.c_str());
    else
        std::fprintf(stderr, "stats_tool: %s: %s; see 'stats_tool help %s'\n", call.command.c_str(),
                     what.c_str(), call.command.c_str());
    return exit_error;
}

int does_not_exist(const invocation_s& call, const std::string& path) {
    std::fprintf(stderr, "stats_tool: %s: %s does not exist\n", call.command.c_str(), path.c_str());
    return exit_error;
}

bool path_exists(const std::string& path) {
    return !path.empty() && file_manipulation_n::if_exists(path.c_str(), nullptr);
}

bool is_option(const std::string& arg) { return arg.rfind("--", 0) == 0; }

bool parse_number(const std::string& text, long long low, long long high, long long& out) {
    if (text.empty()) return false;
    char* end = nullptr;
    errno = 0;
    long long value = std::strtoll(text.c_str(), &end, 10);
    if (errno || *end || value < low || value > high) return false;
    out = value;
    return true;
}

std::string directory_of(const std::string& path) {
    std::size_t cut = path.find_last_of("/\\");
    return cut == std::string::npos ? std::string(".") : path.substr(0, cut);
}
