#include "hold_lock_command.h"

#include "files/file_manipulation.h"
#include "stats_mng/stats_saver.h"
#include "support/thl.h"

#include <cstdio>
#include <cstring>
#include <string>

namespace {

// Takes the writer lock as the engine does and keeps it until told to let go.
int hold_lock(const std::string& directory, const std::string& release_file) {
    stats_saver_lock_c locker(directory.c_str());
    locker.init();
    if (!locker.lock(true)) {
        std::printf("cannot take the engine's lock on %s: another process holds it\n",
                    directory.c_str());
        return exit_no;
    }
    std::printf("holding the engine's lock on %s\n", directory.c_str());
    std::fflush(stdout);
    if (!release_file.empty()) {
        while (!file_manipulation_n::if_exists(release_file.c_str(), nullptr)) mix_n::sleep(10);
    } else {
        char line[64];
        while (std::fgets(line, sizeof line, stdin) && std::strncmp(line, "stop", 4) != 0) {
        }
    }
    return exit_yes;
}

} // namespace

int run_hold_lock_command(const invocation_s& call) {
    std::string directory, release_file;
    const std::vector<std::string>& args = call.args;
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--release-file") {
            if (i + 1 >= args.size()) return usage_error(call, "missing value after " + args[i]);
            release_file = args[++i];
        } else if (is_option(args[i])) {
            return usage_error(call, "unknown option '" + args[i] + "'");
        } else if (directory.empty()) {
            directory = args[i];
        } else {
            return usage_error(call, "unexpected argument '" + args[i] + "'");
        }
    }
    if (directory.empty()) return usage_error(call, "missing DIR");
    // The lock would make the whole path; a scenario the engine works on exists.
    if (!path_exists(directory)) return does_not_exist(call, directory);
    return hold_lock(directory, release_file);
}
