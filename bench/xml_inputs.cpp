// Generator of the XML benchmark inputs; see xml_inputs.h. A splitmix64 sequence of a fixed seed
// drives every choice (the distributions of <random> differ between standard libraries).
#include "xml_inputs.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

namespace xml_inputs {

namespace {

const char* const declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

class random_c {
  public:
    explicit random_c(std::uint64_t seed) : _state(seed) {}
    std::uint64_t next() {
        std::uint64_t z = (_state += 0x9e3779b97f4a7c15ull);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ull;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebull;
        return z ^ (z >> 31);
    }
    // A number in [low, high].
    int between(int low, int high) {
        return low + static_cast<int>(next() % static_cast<std::uint64_t>(high - low + 1));
    }
    bool chance(int percent) { return between(1, 100) <= percent; }
    template <class T, std::size_t N> const T& pick(const T (&items)[N]) {
        return items[next() % N];
    }

  private:
    std::uint64_t _state;
};

// One element per line at one tab per level; `open` keeps the element open for children.
class writer_c {
  public:
    std::string text = declaration;

    void start(int depth, const std::string& name) {
        text.append(static_cast<std::size_t>(depth), '\t');
        text += '<';
        text += name;
    }
    void attribute(const std::string& name, const std::string& value) {
        text += ' ';
        text += name;
        text += "=\"";
        text += value;
        text += '"';
    }
    void end_empty() { text += "/>\n"; }
    void end_open() { text += ">\n"; }
    void close(int depth, const std::string& name) {
        text.append(static_cast<std::size_t>(depth), '\t');
        text += "</" + name + ">\n";
    }
    void text_element(int depth, const std::string& name, const std::string& content) {
        start(depth, name);
        text += '>';
        text += content;
        text += "</" + name + ">\n";
    }
};

std::string number(std::uint64_t value) { return std::to_string(value); }

std::string hex(std::uint64_t value) {
    char buffer[24];
    std::snprintf(buffer, sizeof buffer, "0x%08llx", static_cast<unsigned long long>(value));
    return buffer;
}

// --- template ---------------------------------------------------------------------------------

const char* const template_words[] = {
    "Scenario", "Replication", "Master",   "Replica",   "RootDir",  "Filter", "Spool", "Schedule",
    "Report",   "Network",     "Failover", "Bandwidth", "Snapshot", "Script", "Alert", "Database"};
const char* const template_types[] = {"str", "int", "bool", "enum", "path", "time", "list"};
const char* const template_conditions[] = {
    "Mode &lt; 3",          "Size &gt; 0 &amp;&amp; Mode = 1",
    "Name != &quot;&quot;", "Type = &quot;DB&quot;",
    "Replica &amp; Master", "Level &gt;= 2"};

void template_element(writer_c& out, random_c& rnd, int depth, int max_depth, int& serial) {
    bool children = depth < max_depth && (depth < 2 || rnd.chance(55));
    const char* word = rnd.pick(template_words);
    std::string name = children ? "object" : "data";
    out.start(depth, name);
    out.attribute("label", std::string(word) + "_" + number(static_cast<std::uint64_t>(++serial)));
    int count = rnd.between(3, 6);
    out.attribute("type", rnd.pick(template_types));
    out.attribute("id", number(static_cast<std::uint64_t>(rnd.between(1, 99999))));
    const char* extra[] = {"val", "min", "max", "cond", "help"};
    int first = rnd.between(0, 4);
    for (int i = 0; i < count - 3; ++i) {
        std::string label = extra[(first + i) % 5];
        std::string value;
        if (label == "val")
            value = rnd.chance(50) ? number(rnd.next() % 100000) : word;
        else if (label == "min")
            value = "0";
        else if (label == "max")
            value = number(rnd.next() % 65536);
        else if (label == "cond")
            value = rnd.pick(template_conditions);
        else
            value = std::string("Sets the ") + word + " of the scenario";
        out.attribute(label, value);
    }
    if (!children) {
        out.end_empty();
        return;
    }
    out.end_open();
    int child_count = rnd.between(1, 5);
    for (int i = 0; i < child_count; ++i) template_element(out, rnd, depth + 1, max_depth, serial);
    out.close(depth, name);
}

// --- scenario ---------------------------------------------------------------------------------

const char* const extensions[] = {"dat", "log", "mdf", "ldf", "txt", "bak", "edb", "pst"};
const char* const owners[] = {"CORP\\backup", "CORP\\sql_service", "BUILTIN\\Administrators",
                              "CORP\\j.doe &amp; team"};

void scenario_dir(writer_c& out, random_c& rnd, int depth, int max_depth, int& serial) {
    std::string name = "dir_" + number(static_cast<std::uint64_t>(++serial));
    out.start(depth, "Dir");
    out.attribute("name", name);
    out.attribute("attr", number(16 + (rnd.chance(20) ? 2 : 0)));
    out.attribute("mtime", number(1700000000 + rnd.next() % 60000000));
    out.end_open();
    int files = rnd.between(2, 12);
    for (int i = 0; i < files; ++i) {
        out.start(depth + 1, "File");
        out.attribute("name", "file_" + number(rnd.next() % 1000000) + "." + rnd.pick(extensions));
        out.attribute("size", number(rnd.next() % 50000000));
        out.attribute("mtime", number(1700000000 + rnd.next() % 60000000));
        out.attribute("attr", number(rnd.chance(80) ? 32 : 33));
        out.attribute("crc", hex(rnd.next() & 0xffffffffu));
        if (rnd.chance(10)) out.attribute("state", rnd.chance(50) ? "&lt;pending&gt;" : "synced");
        out.end_empty();
    }
    if (rnd.chance(30)) out.text_element(depth + 1, "Owner", rnd.pick(owners));
    if (rnd.chance(15))
        out.text_element(depth + 1, "Comment",
                         "Checked by replica " + number(rnd.next() % 64) +
                             " &amp; verified &lt;ok&gt;");
    if (depth < max_depth) {
        int subdirs = rnd.between(0, 3);
        for (int i = 0; i < subdirs; ++i) scenario_dir(out, rnd, depth + 1, max_depth, serial);
    }
    out.close(depth, "Dir");
}

} // namespace

std::string state_document() {
    writer_c out;
    out.start(0, "stats");
    out.end_open();
    out.start(1, "state");
    out.attribute("name", "Running");
    out.attribute("time", "1763778601");
    out.attribute("sync_time", "1763778540");
    out.attribute("sync_result", "1");
    out.attribute("index", "2");
    out.attribute("host", "replica-01.corp.example");
    out.attribute("id", "3141592653");
    out.attribute("start_time", "1763771200");
    out.attribute("stop_time", "0");
    out.attribute("sync_count", "1842");
    out.attribute("scenario", "File server");
    out.attribute("version", "12.0.3187");
    out.end_empty();
    out.close(0, "stats");
    return out.text;
}

std::string template_document() {
    random_c rnd(20261122);
    writer_c out;
    out.start(0, "XMC");
    out.attribute("version", "5.2");
    out.attribute("label", "template");
    out.attribute("product", "4");
    out.end_open();
    int serial = 0;
    while (out.text.size() < 64 * 1024 - 1024)
        template_element(out, rnd, 1, rnd.between(3, 6), serial);
    out.close(0, "XMC");
    return out.text;
}

std::string scenario_document() {
    random_c rnd(5000000);
    writer_c out;
    out.start(0, "Scenario");
    out.attribute("id", "1234567");
    out.attribute("name", "FileServer &amp; SQL");
    out.attribute("version", "5.2");
    out.attribute("type", "FileServer");
    out.end_open();
    out.text_element(1, "Description",
                     "Replication of the file server &lt;fs01&gt; to two replicas");
    out.start(1, "Hosts");
    out.end_open();
    int serial = 0;
    for (int host = 0; out.text.size() < 5 * 1024 * 1024 - 64 * 1024; ++host) {
        out.start(2, "Host");
        out.attribute("name", "replica-" + number(static_cast<std::uint64_t>(host)));
        out.attribute("ip", "10.0." + number(static_cast<std::uint64_t>(host / 250)) + "." +
                                number(static_cast<std::uint64_t>(host % 250 + 1)));
        out.attribute("role", host == 0 ? "master" : "replica");
        out.attribute("port", "25000");
        out.end_open();
        out.text_element(3, "Comment",
                         "Host " + number(static_cast<std::uint64_t>(host)) + " of the scenario");
        out.start(3, "RootDirs");
        out.end_open();
        int roots = rnd.between(2, 5);
        for (int r = 0; r < roots; ++r) {
            out.start(4, "RootDir");
            out.attribute("path", "D:\\data\\share_" + number(static_cast<std::uint64_t>(r)));
            out.attribute("replica_path",
                          "E:\\replica\\share_" + number(static_cast<std::uint64_t>(r)));
            out.attribute("filter", rnd.chance(50) ? "*.*" : "*.tmp;*.bak");
            out.end_open();
            int dirs = rnd.between(1, 4);
            for (int d = 0; d < dirs; ++d) scenario_dir(out, rnd, 5, rnd.between(5, 7), serial);
            out.close(4, "RootDir");
        }
        out.close(3, "RootDirs");
        out.close(2, "Host");
    }
    out.close(1, "Hosts");
    out.close(0, "Scenario");
    return out.text;
}

std::string attributes_document() {
    std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a";
    for (int i = 0; i < 100000; ++i)
        out += " k" + std::to_string(i) + "=\"" + std::to_string(i) + "\"";
    return out + "/>\n";
}

const std::vector<std::string>& names() {
    static const std::vector<std::string> all = {"state", "template", "scenario", "attributes"};
    return all;
}

std::string document(const std::string& name) {
    if (name == "state") return state_document();
    if (name == "template") return template_document();
    if (name == "scenario") return scenario_document();
    if (name == "attributes") return attributes_document();
    return std::string();
}

bool write_all(const std::string& dir) {
    std::error_code error;
    std::filesystem::create_directories(dir, error);
    for (const std::string& name : names()) {
        std::string path = dir + "/" + name + ".xml";
        std::string text = document(name);
        std::ofstream file(path, std::ios::binary | std::ios::trunc);
        file.write(text.data(), static_cast<std::streamsize>(text.size()));
        file.close();
        if (!file) {
            std::fprintf(stderr, "cannot write %s\n", path.c_str());
            return false;
        }
    }
    return true;
}

} // namespace xml_inputs
