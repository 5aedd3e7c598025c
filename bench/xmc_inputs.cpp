// Generator of the XMC input; see xmc_inputs.h. A splitmix64 sequence of a fixed seed drives
// every choice.
#include "xmc_inputs.h"

#include <cstdint>
#include <string>

namespace xmc_inputs {

namespace {

class random_c {
  public:
    explicit random_c(std::uint64_t seed) : _state(seed) {}
    std::uint64_t next() {
        std::uint64_t z = (_state += 0x9e3779b97f4a7c15ull);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ull;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebull;
        return z ^ (z >> 31);
    }
    int between(int low, int high) {
        return low + static_cast<int>(next() % static_cast<std::uint64_t>(high - low + 1));
    }
    template <class T, std::size_t N> const T& pick(const T (&items)[N]) {
        return items[next() % N];
    }

  private:
    std::uint64_t _state;
};

struct setting_s {
    const char* label;
    const char* type;
    const char* values[3];
};

const setting_s settings[] = {
    {"Port", "Number", {"25000", "1", "86400"}},
    {"IsForward", "Bool", {"True", "False", "True"}},
    {"ScenarioName", "String", {"File server", "Exchange on host 2", "db"}},
    {"ScenarioComment", "Text", {"", "moved from the old hall", "see ticket 4411"}},
    {"Path", "FullPath", {"C:/Program Files/engine/run.cmd", "[INSTALL_TMP]/a.cmd", "D:/x"}},
    {"SpoolDirectory", "DefFullPath", {"", "E:/spool", "C:/spool/replica"}},
    {"PingIP", "IPAddr", {"10.0.0.1", "192.168.17.4", ""}},
    {"IPMask", "IPAdrMask", {"10.0.0.1/255.255.0.0", "172.16.0.9/255.255.255.0", ""}},
    {"Start", "Date", {"29 Feb ANY", "1:4:2013", "ANY Jan 2014"}},
    {"Product", "Product", {"Ha", "Dr", "Rw"}},
    {"BandWidth", "Bandwidth", {"Unlimited", "1024.0", "56.0"}},
    {"ReplicationMode", "ReplicationMode", {"Online", "Scheduling", "OnFileClose"}},
};

class writer_c {
  public:
    std::string text = "<?xml version=\"1.0\"?>\n";

    void indent(int depth) { text.append(static_cast<std::size_t>(depth), '\t'); }
    void open_object(int depth, const std::string& label, int id, bool external = false) {
        indent(depth);
        text += "<object label=\"" + label + "\" id=\"" + std::to_string(id) + "\"";
        if (external) text += " external=\"True\"";
        text += ">\n";
    }
    void close(int depth, const char* name) {
        indent(depth);
        text += "</";
        text += name;
        text += ">\n";
    }
    void data(int depth, const setting_s& s, const char* value, bool reordered) {
        indent(depth);
        if (reordered)
            text += "<data val=\"" + std::string(value) + "\" label=\"" + s.label + "\" type=\"" +
                    s.type + "\"/>\n";
        else
            text += "<data label=\"" + std::string(s.label) + "\" val=\"" + value + "\" type=\"" +
                    s.type + "\"/>\n";
    }
};

void settings_block(writer_c& out, random_c& rnd, int depth, int count) {
    for (int i = 0; i < count; ++i) {
        const setting_s& s = rnd.pick(settings);
        out.data(depth, s, s.values[rnd.between(0, 2)], rnd.between(1, 20) == 1);
    }
}

} // namespace

std::string scenario_document() {
    random_c rnd(0x5eed0013);
    writer_c out;
    out.open_object(0, "Scenario", 1);
    settings_block(out, rnd, 1, 30);
    out.open_object(1, "External", 1000, true);
    for (int i = 0; i < 200; ++i) {
        out.indent(2);
        out.text += "<record name=\"cdp" + std::to_string(i) + "\" size=\"" +
                    std::to_string(rnd.between(1, 1 << 20)) + "\"/>\n";
    }
    out.close(1, "object");
    int host = 0;
    while (out.text.size() < 5 * 1000 * 1000) {
        ++host;
        out.open_object(1, "ReplNode", 0);
        out.indent(2);
        out.text += "<title label=\"Host " + std::to_string(host) + "\">\n";
        settings_block(out, rnd, 3, 12);
        out.close(2, "title");
        out.open_object(2, "CommonHostProps", 100);
        settings_block(out, rnd, 3, 20);
        out.indent(3);
        out.text += "<data label=\"ListRootDirs\" val=\"3010\" type=\"MultiEntry\">\n";
        int dirs = rnd.between(5, 20);
        for (int d = 0; d < dirs; ++d) {
            out.open_object(4, "RootDir", 3010);
            settings_block(out, rnd, 5, rnd.between(4, 10));
            out.open_object(5, "DirPath", 0);
            settings_block(out, rnd, 6, 3);
            out.close(5, "object");
            out.close(4, "object");
        }
        out.close(3, "data");
        out.close(2, "object");
        out.close(1, "object");
    }
    out.close(0, "object");
    return out.text;
}

} // namespace xmc_inputs
