// What the commands of stats_tool share: the exit statuses, the record of one command in the
// command table, what main hands a command, and the way a command reports a usage error or a
// path that does not exist.
#pragma once

#include <span>
#include <string>
#include <vector>

// The convention of every command: 0 yes or done, 1 no or not done, 2 an error (a usage error,
// a path that does not exist, a file or library that can't be read). What 0 and 1 mean is the
// command's own, told in its usage.
constexpr int exit_yes = 0;
constexpr int exit_no = 1;
constexpr int exit_error = 2;

// One command as typed: its name, the arguments after the name, and the global options.
struct invocation_s {
    std::string command;
    std::vector<std::string> args;
    std::string library_path;
    std::string trace_directory;
};

struct exit_status_s {
    int status;
    const char* meaning;
};

// One row of the command table.
struct command_s {
    const char* name;
    // One line for the overview.
    const char* summary;
    // The full usage: the synopsis lines ("usage: stats_tool ..."), a blank line, what the
    // command does and its options. Each paragraph is one line ending with a line feed, and an
    // option is a line "  --name ARG  what it does"; the help wraps them to the width of a
    // terminal, an option's words under its description.
    const char* usage;
    std::vector<exit_status_s> exit_statuses;
    int (*run)(const invocation_s& call);
};

// The command table, in the order the overview lists it; main.cpp holds it.
std::span<const command_s> command_table();

// The row of `name`, or null.
const command_s* find_command(const std::string& name);

// Prints "stats_tool: COMMAND: WHAT; see 'stats_tool help COMMAND'" as one line on standard
// error (without the command when `call.command` is empty) and gives exit_error.
int usage_error(const invocation_s& call, const std::string& what);

// Prints "stats_tool: COMMAND: PATH does not exist" as one line on standard error and gives
// exit_error.
int does_not_exist(const invocation_s& call, const std::string& path);

// Whether a file or directory is at `path`, as the library's file layer sees it.
bool path_exists(const std::string& path);

// Whether `arg` is written as an option ("--name").
bool is_option(const std::string& arg);

// A whole decimal number in `text`, within [low, high].
bool parse_number(const std::string& text, long long low, long long high, long long& out);

// The directory part of a path ("." when it has none).
std::string directory_of(const std::string& path);
