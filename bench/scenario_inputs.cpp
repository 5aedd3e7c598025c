#include "scenario_inputs.h"

#include <fstream>
#include <sstream>

namespace scenario_inputs {

namespace {

// Replaces the first `from` in `text` at or after `at`; false when there is none.
bool replace_first(std::string& text, const std::string& from, const std::string& to) {
    std::size_t at = text.find(from);
    if (at == std::string::npos) return false;
    text.replace(at, from.size(), to);
    return true;
}

// The replica's ReplNode of the two-host text with the values of host `index`.
std::string replica(const std::string& model, int index) {
    std::string node = model;
    std::string ip = "10." + std::to_string(index >> 16) + "." +
                     std::to_string((index >> 8) & 255) + "." + std::to_string(index & 255);
    bool ok = replace_first(node, "val=\"fs2\"", "val=\"fs" + std::to_string(index) + "\"") &&
              replace_first(node, "val=\"10.0.0.2\"", "val=\"" + ip + "\"") &&
              replace_first(node, "<data label=\"Index\" val=\"2\"",
                            "<data label=\"Index\" val=\"" + std::to_string(index) + "\"") &&
              replace_first(node, "D:\\replica\\data", "D:\\replica\\data" + std::to_string(index));
    return ok ? node : std::string();
}

} // namespace

const char* name_of(shape_t shape) { return shape == shape_t::fan ? "fan" : "chain"; }

std::string two_host_scenario() {
    std::ifstream in(STATS_MNG_SCENARIOS_DIR "/valid_ha_file_server.xml", std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return in ? text.str() : std::string();
}

std::string scenario(const std::string& two_hosts, int hosts, shape_t shape) {
    // The replica's ReplNode is the second one, nested in the Master's: from the start of its
    // line to the end of its matching close tag.
    const std::string open = "<object label=\"ReplNode\"";
    std::size_t master = two_hosts.find(open);
    std::size_t first = master == std::string::npos ? master : two_hosts.find(open, master + 1);
    if (first == std::string::npos || hosts < 2) return {};
    std::size_t begin = two_hosts.rfind('\n', first) + 1;
    std::size_t at = first + 1;
    int depth = 1;
    while (depth > 0) {
        std::size_t next_open = two_hosts.find("<object ", at);
        std::size_t next_close = two_hosts.find("</object>", at);
        if (next_close == std::string::npos) return {};
        if (next_open < next_close) {
            ++depth;
            at = next_open + 1;
        } else {
            --depth;
            at = next_close + 1;
        }
    }
    std::size_t close = at - 1; // the replica's own "</object>"
    std::size_t end = close + std::string("</object>").size();
    const std::string model = two_hosts.substr(begin, end - begin);

    std::string nodes;
    if (shape == shape_t::fan) {
        for (int index = 2; index <= hosts; ++index) {
            std::string node = replica(model, index);
            if (node.empty()) return {};
            nodes += (index > 2 ? "\n" : "") + node;
        }
    } else {
        // Built from the innermost: each replica goes in before the close tag of the one above.
        for (int index = hosts; index >= 2; --index) {
            std::string node = replica(model, index);
            if (node.empty()) return {};
            if (!nodes.empty()) node.insert(node.size() - 9, nodes + "\n");
            nodes = std::move(node);
        }
    }
    return two_hosts.substr(0, begin) + nodes + two_hosts.substr(end);
}

} // namespace scenario_inputs
