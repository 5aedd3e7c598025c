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
    "  --library PATH  the library that 'state' loads (default: stats_mng.dll / "
    "libstats_mng.so beside this program, then ../lib, then the system's search)\n"
    "  --trace DIR     'state' sends the library's trace to DIR/stats_mng.dll.log\n"
    "  --help, -h      this overview; after a command, that command's usage\n"
    "\n"
    "exit status: 0 yes or done, 1 no or not done (each command's usage says what they mean "
    "for it), 2 an error: a usage error (told in one line on standard error), a path that does "
    "not exist, a file or library that can't be read.\n"
    "\n"
    "'stats_tool help COMMAND' or 'stats_tool COMMAND --help' shows a command's usage and its "
    "exit statuses.\n";

// The width the help is wrapped to.
constexpr std::size_t line_width = 79;

// Where the words of a wrapped line go on: under the text after the first gap of two blanks
// of an indented line ("  --json    one object ..."), else under the line's first word.
std::size_t hanging_indent(const std::string& line) {
    std::size_t indent = line.find_first_not_of(' ');
    if (indent == std::string::npos) return 0;
    if (indent == 0) return 0;
    std::size_t gap = line.find("  ", indent);
    if (gap == std::string::npos) return indent;
    std::size_t text = line.find_first_not_of(' ', gap);
    return text == std::string::npos || text >= line_width / 2 ? indent : text;
}

// Prints `text` with each line longer than the width broken at blanks; a synopsis line
// ("usage: ...") stays whole.
void print_wrapped(const std::string& text) {
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        std::string line = text.substr(start, end - start);
        start = end + 1;
        bool synopsis = line.rfind("usage: ", 0) == 0 || line.rfind("       ", 0) == 0;
        if (synopsis || line.size() <= line_width) {
            std::printf("%s\n", line.c_str());
            continue;
        }
        std::string margin(hanging_indent(line), ' ');
        while (line.size() > line_width) {
            std::size_t cut = line.rfind(' ', line_width);
            if (cut == std::string::npos || cut <= margin.size()) cut = line.find(' ', line_width);
            if (cut == std::string::npos) break;
            std::printf("%s\n", line.substr(0, cut).c_str());
            std::size_t next = line.find_first_not_of(' ', cut);
            line = margin + (next == std::string::npos ? std::string() : line.substr(next));
        }
        std::printf("%s\n", line.c_str());
    }
}

} // namespace

void print_overview() {
    std::string text = overview_head;
    std::size_t width = 0;
    for (const command_s& command : command_table())
        width = std::max(width, std::strlen(command.name));
    for (const command_s& command : command_table())
        text += "  " + std::string(command.name) +
                std::string(width - std::strlen(command.name) + 2, ' ') + command.summary + "\n";
    print_wrapped(text + overview_tail);
}

void print_command_help(const command_s& command) {
    std::string text = command.usage;
    text += "\nexit status:\n";
    for (const exit_status_s& exit : command.exit_statuses)
        text += "  " + std::to_string(exit.status) + "  " + exit.meaning + "\n";
    print_wrapped(text);
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
