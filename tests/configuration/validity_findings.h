// What the validation tests compare: findings as plain records, trace lines by a piece of their
// text, and the small items that rules read.
#pragma once

#include "common/test_support.h"
#include "configuration/scenario_documents.h"
#include "configuration/xmc_validity.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace validity_findings {

struct finding_s {
    std::uint32_t code;
    std::uint64_t host;
    std::string name;
    std::string peer = "";
    std::uint64_t item = ch_data_s::no_item;

    bool operator==(const finding_s& o) const {
        return code == o.code && host == o.host && name == o.name && peer == o.peer &&
               item == o.item;
    }
};

inline std::ostream& operator<<(std::ostream& out, const finding_s& f) {
    return out << "{code " << f.code << ", host " << f.host << ", " << f.name << " => " << f.peer
               << ", item " << static_cast<std::int64_t>(f.item) << "}";
}

inline std::string text_of(const utl_stream_c& s) { return s.c_str() ? s.c_str() : ""; }

inline std::vector<finding_s> findings_of(xmc_validity_c& validity) {
    std::vector<finding_s> all;
    for (ch_data_s* f = validity.findings.first(); f; f = validity.findings.next(f))
        all.push_back({f->code, f->host, text_of(f->name), text_of(f->peer_name), f->item});
    return all;
}

// The first line of the trace that holds `text`; empty when none does.
inline std::string line_with(const std::string& trace, const std::string& text) {
    for (const std::string& line : test_support::lines_of(trace))
        if (line.find(text) != std::string::npos) return line;
    return {};
}

// An object of any id, with `status` when one is given.
inline std::string object(const std::string& label, const std::string& content,
                          const std::string& status = "") {
    std::string attributes = "label=\"" + label + "\" id=\"77\"";
    if (!status.empty()) attributes += " status=\"" + status + "\"";
    return "<object " + attributes + ">" + content + "</object>";
}

inline std::string flag(const std::string& label, bool on) {
    return scenario_documents::data(label, on ? "True" : "False", "Bool");
}

} // namespace validity_findings
