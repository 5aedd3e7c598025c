#include "help_command.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

const char* const overview_head =
    "usage: stats_tool [--library PATH] [--trace DIR] COMMAND [ARGUMENT...]\n"
    "       stats_tool help [COMMAND]\n"
    "\n"
    "commands:\n";

const char* const overview_tail =
    "\n"
    "options (before or after the command):\n"
    "  --library PATH  the library that 'state' loads (default: stats_mng.dll /\n"
    "                  libstats_mng.so beside this program, then ../lib, then the system's\n"
    "                  search)\n"
    "  --trace DIR     'state' sends the library's trace to DIR/stats_mng.dll.log\n"
    "  --help, -h      this overview; after a command, that command's usage\n"
    "\n"
    "exit status: 0 yes or done, 1 no or not done (each command's usage says what they mean\n"
    "for it), 2 an error: a usage error (told in one line on standard error), a path that does\n"
    "not exist, a file or library that can't be read.\n"
    "\n"
    "'stats_tool help COMMAND' or 'stats_tool COMMAND --help' shows a command's usage and its\n"
    "exit statuses.\n";

} // namespace

void print_overview() {
    std::fputs(overview_head, stdout);
    std::size_t width = 0;
    for (const command_s& command : command_table())
        width = std::max(width, std::strlen(command.name));
    for (const command_s& command : command_table())
        std::printf("  %-*s  %s\n", static_cast<int>(width), command.name, command.summary);
    std::fputs(overview_tail, stdout);
}

void print_command_help(const command_s& command) {
    std::fputs(command.usage, stdout);
    std::fputs("\nexit status:\n", stdout);
    for (const exit_status_s& exit : command.exit_statuses)
        std::printf("  %d  %s\n", exit.status, exit.meaning);
}

namespace {

// Help's own usage errors point to the overview, which lists the commands.
int help_error(const std::string& what) {
    std::fprintf(stderr, "stats_tool: help: %s; see 'stats_tool help'\n", what.c_str());
    return exit_error;
}

} // namespace

int run_help_command(const invocation_s& call) {
    if (call.args.empty()) {
        print_overview();
        return exit_yes;
    }
    const std::string& name = call.args[0];
    if (is_option(name)) return help_error("unknown option '" + name + "'");
    if (call.args.size() > 1) return help_error("unexpected argument '" + call.args[1] + "'");
    const command_s* command = find_command(name);
    if (!command) return help_error("unknown command '" + name + "'");
    print_command_help(*command);
    return exit_yes;
}
