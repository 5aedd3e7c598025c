// Stored-scenario texts for the tests of the scenario object, its loader and its network
// mappings: the shapes of the template's `ConfigDataHolder`, `Scenario`, `ReplNode`,
// `CommonHostProps` and `RootDir`, with only the items a test needs.
#pragma once

#include <string>

namespace scenario_documents {

inline const std::string declaration = "<?xml version=\"1.0\"?>\n";

inline std::string data(const std::string& label, const std::string& val,
                        const std::string& type = "String") {
    return "<data label=\"" + label + "\" val=\"" + val + "\" type=\"" + type + "\"/>";
}

inline std::string object(const std::string& label, const std::string& id,
                          const std::string& content) {
    return "<object label=\"" + label + "\" id=\"" + id + "\">" + content + "</object>";
}

// A `RootDir` with its path and id, and empty filters.
inline std::string root_dir(const std::string& path, const std::string& id = "0") {
    std::string filters;
    for (const char* filter : {"FileRegExpr", "DirRegExpr", "DirPath"})
        filters += "<object label=\"" + std::string(filter) + "\" id=\"500\" status=\"False\">" +
                   data("ExcludeFilter", "True", "Bool") +
                   "<data label=\"ListFilters\" val=\"String\" type=\"MultiEntry\"/></object>";
    return object("RootDir", "3010",
                  data("Path", path, "FullPath") + data("ID", id, "Number") +
                      data("MatchAllKidsVolume", "True", "Bool") + data("DBdir", "False", "Bool") +
                      filters);
}

// `ListRootDirs` with the root directories given.
inline std::string root_dirs(const std::string& entries) {
    return "<data label=\"ListRootDirs\" val=\"3010\" type=\"MultiEntry\" mandatory=\"True\">" +
           entries + "</data>";
}

// The `CommonHostProps` of a host with its `Index` and what else it holds.
inline std::string host_props(const std::string& index, const std::string& content = "") {
    return object("CommonHostProps", "100",
                  data("Host", "host" + index) + data("Index", index, "Number") + content);
}

// A `ReplNode`: its `CommonHostProps` with `Index` and root directories, then the nested
// replicas it feeds.
inline std::string host(const std::string& index, const std::string& dirs = "",
                        const std::string& replicas = "") {
    return object("ReplNode", "5000",
                  host_props(index, dirs.empty() ? "" : root_dirs(dirs)) + replicas);
}

// The `Scenario` object: its own data, then `extra`, then the title `ReplicationTree` with
// the Master's node.
inline std::string scenario(const std::string& own_data, const std::string& master,
                            const std::string& extra = "") {
    return object("Scenario", "1000",
                  own_data + extra + "<title label=\"ReplicationTree\">" + master + "</title>");
}

inline std::string scenario_data(const std::string& product = "Ha",
                                 const std::string& application = "FileServer",
                                 const std::string& config_mode = "Regular",
                                 const std::string& vetted = "False",
                                 const std::string& id = "42") {
    return data("Application", application, "Application") + data("Product", product, "Product") +
           data("VettedFailback", vetted, "Bool") + data("ConfigMode", config_mode, "ConfigMode") +
           data("ScenarioID", id, "Number") + data("ScenarioName", "finance");
}

// A whole stored scenario: the holder with its version and the scenario.
inline std::string stored(const std::string& scenario_object) {
    return declaration + "<object label=\"ConfigDataHolder\" id=\"1\">\n" +
           data("Version", "5", "Number") + "\n" + scenario_object + "\n</object>\n";
}

} // namespace scenario_documents
