// stats_tool: the command line of the library. It loads the library the way an engine process
// does and asks its exports, writes state as the engine does, and prints, makes and edits
// scenario configurations.
//
// This file reads the global options and dispatches through the command table; each command
// lives in its own <name>_command.cpp. A new command is one row of the table below.
#include "command.h"
#include "help_command.h"
#include "hold_lock_command.h"
#include "load_steps_command.h"
#include "message_command.h"
#include "new_scenario_command.h"
#include "record_sync_command.h"
#include "set_state_command.h"
#include "setting_command.h"
#include "state_command.h"
#include "template_command.h"
#include "validate_command.h"

#include "stats_mng/load_order.h"

#include <string>
#include <vector>

namespace {

// The commands in the order the overview lists them: name, summary, usage, exit statuses, run.
const std::vector<command_s> commands = {
    {"state",
     "ask the library's three queries about a scenario directory",
     "usage: stats_tool [--library PATH] [--trace DIR] state DIR [--json]\n"
     "\n"
     "Loads the library as an engine process does (--library PATH, or stats_mng.dll / "
     "libstats_mng.so beside this program, then ../lib, then the system's search), asks whether "
     "the engine works on the scenario DIR now, whether its last synchronisation finished and what "
     "state it was left in, and prints the answers. --trace DIR sends the library's trace to "
     "DIR/stats_mng.dll.log.\n"
     "\n"
     "A DIR that does not exist is asked about all the same: the library's answers for a missing "
     "path (no, no, Unknown (3), each query with its trace line \"Fail to find the path\") are "
     "what an engine would get. A line on standard error says that DIR does not exist, and the "
     "exit status is 1, as for any scenario whose state can't be read.\n"
     "\n"
     "  --json    one JSON object: scenario, engine_active, sync_replicated, state_read, "
     "state_index, state\n",
     {{0, "a state was read"},
      {1, "no state could be read (also when DIR does not exist)"},
      {2, "a usage error, or a library that cannot be loaded"}},
     run_state_command},
    {"hold-lock",
     "take the engine's lock on a scenario and hold it",
     "usage: stats_tool hold-lock DIR [--release-file FILE]\n"
     "\n"
     "Takes the engine's lock on the scenario DIR exactly as the engine does (the writer open of "
     ".mr_qv_prefix/state.lock, sharing reads only), prints \"holding the engine's lock on DIR\" "
     "and holds it until standard input ends or a line \"stop\" comes. While it holds, 'stats_tool "
     "state DIR' in another process says \"engine active: yes\".\n"
     "\n"
     "  --release-file FILE  hold until FILE exists instead\n",
     {{0, "the lock was held, then released"},
      {1, "another process holds the lock"},
      {2, "a usage error, or DIR does not exist"}},
     run_hold_lock_command},
    {"record-sync",
     "write a host's synchronisation result in the per-host record",
     "usage: stats_tool record-sync DIR --scenario-id N --host H --done|--not-done --time T\n"
     "\n"
     "Writes the per-host record of synchronisation results, DIR/.mr_qv_prefix/<N>_stats.xml, as "
     "the engine does: host H's element gets IsSyncReplicated (True with --done, False with "
     "--not-done) and IsSyncReplicatedTime T; the other hosts' elements stay.\n"
     "\n"
     "  --scenario-id N  the scenario's id, 0 to 4294967295\n"
     "  --host H         the host's index, 0 to 4294967295\n"
     "  --time T         the time of the synchronisation, a signed 64-bit number\n",
     {{0, "written"}, {1, "not written"}, {2, "a usage error, or DIR does not exist"}},
     run_record_sync_command},
    {"set-state",
     "write a scenario's state file as the engine does",
     "usage: stats_tool set-state DIR --scenario-id N --host H [--scenario-name NAME] EVENT\n"
     "       stats_tool set-state --scenario FILE --host H EVENT\n"
     "EVENT: --run | --stop | --sync-begin --time T | --sync-end --time T\n"
     "\n"
     "Writes a scenario's state file as the engine does when the scenario starts (--run) or stops "
     "(--stop), or a synchronisation begins or ends at time T. With DIR it writes "
     "DIR/.mr_qv_prefix/stats.xml; with --scenario FILE it loads the stored scenario and writes "
     "under each root directory of host H. A start while the file says \"Sync\" leaves it so: only "
     "the end of the synchronisation turns it into \"Running\".\n"
     "\n"
     "  --scenario-id N       the scenario's id, 0 to 4294967295 (with DIR)\n"
     "  --scenario-name NAME  the scenario's name (with DIR)\n"
     "  --host H              the host's index, 0 to 4294967295\n"
     "  --time T              the synchronisation's time, a signed 64-bit number\n",
     {{0, "written"},
      {1, "a write failed"},
      {2, "a usage error, DIR or FILE does not exist, or FILE can't be loaded"}},
     run_set_state_command},
    {"load-steps",
     "list the start-up steps this program ran",
     "usage: stats_tool load-steps\n"
     "\n"
     "Lists the library's start-up steps, each \"ran\" or \"MISSING\" for this program's own "
     "process (its commands other than state use the library's classes linked in, and start them "
     "as the shared library starts itself).\n",
     {{0, "every step ran"}, {1, "a step is missing"}, {2, "a usage error"}},
     run_load_steps_command},
    {"message",
     "print the text of message ids from the message catalogue",
     "usage: stats_tool message ID... [--messages FILE]\n"
     "\n"
     "Prints \"ID<tab>text\" for each message id from the message catalogue: FILE, or else "
     "../share/stats_mng/stats_mng.msg beside this program, or else the catalogue of the source "
     "tree it was built from. Lines of the catalogue that break its format are skipped and "
     "reported on standard error.\n"
     "\n"
     "  --messages FILE  the catalogue to read\n",
     {{0, "every id has a text of its own"},
      {1, "an id has none (it gets the fallback text of EG00347)"},
      {2, "a usage error, FILE does not exist, or no catalogue could be read"}},
     run_message_command},
    {"template",
     "print the built-in template, or a reference of its settings",
     "usage: stats_tool template [--reference]\n"
     "\n"
     "Prints the built-in template, the XMC document the library proves against its code tables at "
     "load, byte for byte.\n"
     "\n"
     "  --reference  print a Markdown reference of every setting of the template instead (the "
     "contents of docs/settings.md)\n",
     {{0, "printed"},
      {2, "a usage error, or the reference's configurator was not built, or the output "
          "failed"}},
     run_template_command},
    {"new-scenario",
     "print a new stored scenario for a product and an application",
     "usage: stats_tool new-scenario --product P --application A [--vetted-failback]\n"
     "\n"
     "Prints a stored scenario made from the built-in template: its root object ConfigDataHolder "
     "with the document's Version, holding the default Scenario for product P and application A "
     "(items of the enumerations Product and Application, compared exactly), ready to be stored, "
     "edited and validated.\n"
     "\n"
     "  --product P         the product\n"
     "  --application A     the application\n"
     "  --vetted-failback   the scenario with VettedFailback set\n",
     {{0, "printed"},
      {2, "a usage error or an unknown name (one line on standard error), or the "
          "configurator was not built"}},
     run_new_scenario_command},
    {"get",
     "print one setting of a stored scenario",
     "usage: stats_tool get FILE NAME [--host N|--manager] [--json]\n"
     "\n"
     "Prints one setting of the stored scenario FILE; a list's entries are joined by \", \". NAME "
     "is a row of the scenario's table, or with --host or --manager of the hosts' table, as "
     "Object.label (Switchover.status) or as a label only one row has (ScenarioName), or the "
     "dotted path of the setting's item (ConfigDataHolder.Scenario.ScenarioName), compared without "
     "regard to case.\n"
     "\n"
     "  --host N   a setting of host N\n"
     "  --manager  a setting of the Manager\n"
     "  --json     one object with the row, the type and the value (a list as an array)\n",
     {{0, "read"},
      {1, "no such setting, or it can't be read"},
      {2, "a usage error (a label several rows share is one), or FILE does not exist or "
          "can't be loaded"}},
     run_get_command},
    {"set",
     "change one setting of a stored scenario",
     "usage: stats_tool set FILE NAME=VALUE [--host N|--manager] [--force] [--json]\n"
     "\n"
     "Writes one setting through the scenario's setters, with their type check, and stores FILE "
     "again in the writer's form. NAME is as for get. A refused value leaves the file as it was "
     "and prints the setter's words.\n"
     "\n"
     "  --host N   a setting of host N\n"
     "  --manager  a setting of the Manager\n"
     "  --force    reset a fixed scenario setting (ScenarioID, Version, ...)\n"
     "  --json     a VALUE that starts with [ is a JSON array of strings, the entries of a list; "
     "the answer is one JSON object\n",
     {{0, "stored"},
      {1, "refused (the file stays as it was)"},
      {2, "a usage error, or FILE does not exist, can't be loaded or can't be written"}},
     run_set_command},
    {"validate",
     "check a stored scenario and list every finding",
     "usage: stats_tool validate FILE [--json] [--messages FILE]\n"
     "\n"
     "Loads the stored scenario FILE, checks that its tree is well formed and that it can run "
     "(every rule runs, whatever the one before it found), and prints each finding on one line: "
     "who (Scenario, Master or Replica #N), the root directory if any, the name, and the text of "
     "the finding from the message catalogue (found as for message). A last line says whether "
     "FILE is valid. Faults of the tree's shape are told in the library's trace (--trace DIR).\n"
     "\n"
     "  --json           a JSON array of the findings instead, each an object with host, item "
     "(-1 where no root directory is concerned), code, message_id, name, peer_name, text (what "
     "the finding says) and "
     "line (the line of the finding's item in FILE, or null)\n"
     "  --messages FILE  the message catalogue to read\n",
     {{0, "the scenario is valid"},
      {1, "the scenario is invalid (findings, or a tree that is not well formed)"},
      {2, "a usage error, FILE does not exist or can't be read as a stored scenario, or the "
          "catalogue given can't be read"}},
     run_validate_command},
    {"help",
     "show this overview, or one command's usage",
     "usage: stats_tool help [COMMAND]\n"
     "       stats_tool COMMAND --help\n"
     "\n"
     "Prints the overview of the commands, or COMMAND's usage and exit statuses.\n",
     {{0, "printed"}, {2, "a usage error (a command that does not exist)"}},
     run_help_command},
};

bool is_help_option(const std::string& arg) { return arg == "--help" || arg == "-h"; }

} // namespace

std::span<const command_s> command_table() { return commands; }

int main(int argc, char** argv) {
    // The tool's own commands use the library's classes, linked in: start them as the shared
    // library starts itself when it is loaded.
    load_order_n::library_scope_c library_core;
    invocation_s call;
    std::vector<std::string> args(argv + 1, argv + argc);
    std::vector<std::string> rest;
    // The global options may stand anywhere; what remains is the command and its arguments.
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--library" || args[i] == "--trace") {
            if (i + 1 >= args.size()) return usage_error(call, "missing value after " + args[i]);
            (args[i] == "--library" ? call.library_path : call.trace_directory) = args[i + 1];
            ++i;
        } else {
            rest.push_back(args[i]);
        }
    }
    if (rest.empty()) return usage_error(call, "no command given");
    // "--help" alone, or before a command, is "help".
    call.command = is_help_option(rest[0]) ? std::string("help") : rest[0];
    call.args.assign(rest.begin() + 1, rest.end());
    const command_s* command = find_command(call.command);
    if (!command) {
        std::string what = is_option(rest[0]) ? "unknown option '" : "unknown command '";
        call.command.clear();
        return usage_error(call, what + rest[0] + "'");
    }
    for (const std::string& arg : call.args) {
        if (is_help_option(arg)) {
            print_command_help(*command);
            return exit_yes;
        }
    }
    return command->run(call);
}
