#include "configuration/xmc_validity.h"

#include "configuration/xmc_grammar.h"
#include "configuration/xmc_item.h"
#include "support/trc.h"
#include "utl/message.h"

#include <cstring>
#include <vector>

#include <cstdio>

namespace {

// The owner words of a printed finding.
constexpr const char* scenario_word = "IG01373";
constexpr const char* master_word = "IG00221";
constexpr const char* replica_word = "IG00222";
constexpr const char* root_directory_word = "IG01374";

void append_number(utl_stream_c& stream, std::uint64_t number) {
    char digits[24];
    std::snprintf(digits, sizeof digits, "%llu", static_cast<unsigned long long>(number));
    stream.append(digits);
}

constexpr const char* host_object_label = "ReplNode";
constexpr const char* root_directory_label = "RootDir";
constexpr const char* host_props_label = "CommonHostProps";
constexpr const char* host_index_label = "Index";

bool labelled(const xml_item_c* item, const char* label) {
    const labeled_value_c* attribute = item->find_attribute(xmc_n::attr_label);
    return attribute && std::strcmp(const_cast<labeled_value_c*>(attribute)->to_text(), label) == 0;
}

bool is_object(const xml_item_c* item) {
    const xmc_item_c* typed = xmc_item_c::as_xmc(item);
    return typed && (typed->kind == xmc_n::kind_object || typed->kind == xmc_n::kind_external);
}

// The `val` of the data item `label` among the object's children and, below them, the children
// of those that are not objects; null when there is none.
labeled_value_c* data_below(const xml_item_c* object, const char* label) {
    std::vector<const xml_item_c*> pending;
    for (const xml_item_c* child = object->first_child_item(); child; child = child->next_item())
        pending.push_back(child);
    std::size_t at = 0;
    while (at < pending.size()) {
        const xml_item_c* item = pending[at++];
        const xmc_item_c* typed = xmc_item_c::as_xmc(item);
        if (typed) {
            if (labeled_value_c* val = typed->find_data_attribute(label)) return val;
        }
        if (is_object(item)) continue;
        for (const xml_item_c* child = item->first_child_item(); child; child = child->next_item())
            pending.push_back(child);
    }
    return nullptr;
}

std::uint64_t position_among_siblings(const xml_item_c* item) {
    std::uint64_t position = 0;
    const xml_item_c* parent = item->parent_item();
    for (const xml_item_c* sibling = parent ? parent->first_child_item() : item;
         sibling && sibling != item; sibling = sibling->next_item())
        ++position;
    return position;
}

} // namespace

void report_item(xmc_validity_c& validity, const xml_item_c* tree_item, std::uint32_t code,
                 const char* extra) {
    if (!tree_item) return;
    const xml_item_c* host_object = nullptr;
    const xml_item_c* root_directory = nullptr;
    for (const xml_item_c* up = tree_item->parent_item(); up; up = up->parent_item()) {
        if (!root_directory && labelled(up, root_directory_label)) root_directory = up;
        if (is_object(up) && labelled(up, host_object_label)) {
            host_object = up;
            break;
        }
    }
    utl_stream_c path;
    tree_item->get_path(path);
    std::uint64_t host = 0;
    if (host_object) {
        // A stored host keeps its number in its `CommonHostProps`.
        labeled_value_c* index = data_below(host_object, host_index_label);
        for (const xml_item_c* child = host_object->first_child_item(); child && !index;
             child = child->next_item())
            if (is_object(child) && labelled(child, host_props_label))
                index = data_below(child, host_index_label);
        if (index) host = index->to_uint64();
    }
    std::uint64_t item =
        root_directory ? position_among_siblings(root_directory) : ch_data_s::no_item;
    add_record(validity, path.c_str(), code, host, item);
    ch_data_s* finding = validity.findings.last();
    finding->tree_item = tree_item;
    if (extra && *extra) finding->peer_name.append(extra);
}

utl_stream_c& message_id_of(std::uint32_t code, utl_stream_c& id) {
    char text[24];
    std::snprintf(text, sizeof text, "CV0%d",
                  static_cast<int>(code + ch_data_s::first_message_number));
    id.append(utl_stream_c::clear_char);
    id.append(text);
    return id;
}

void add_record(xmc_validity_c& validity, const char* name, std::uint32_t code, std::uint64_t host,
                std::uint64_t item) {
    auto* finding = new ch_data_s;
    finding->host = host;
    finding->item = item;
    finding->code = code;
    if (name) finding->name.append(name);
    validity.findings.append(finding);
}

void print_record(const ch_data_s& finding, utl_stream_c& stream) {
    if (finding.host == 0) {
        stream.append(message_c(scenario_word).text.c_str());
    } else if (finding.host == 1) {
        stream.append(message_c(master_word).text.c_str());
    } else {
        stream.append(message_c(replica_word).text.c_str());
        stream.append(" #");
        append_number(stream, finding.host);
    }
    stream.append(", ");
    if (finding.item != ch_data_s::no_item) {
        stream.append(message_c(root_directory_word).text.c_str());
        stream.append(" #");
        append_number(stream, finding.item);
        stream.append(", ");
    }
    stream.append(finding.name.c_str());
    if (finding.peer_name.get_length() > 0) {
        stream.append("=>");
        stream.append(finding.peer_name.c_str());
    }
    stream.append(", ");
    if (finding.code == ch_data_s::code_of_own_text) {
        stream.append(finding.text.c_str());
    } else {
        utl_stream_c id;
        stream.append(message_c(message_id_of(finding.code, id).c_str()).text.c_str());
    }
    stream.append("\n");
}

void trace_findings(qvtr_entry_c& tr, int line, xmc_validity_c& validity) {
    if (validity.findings.get_count() == 0) return;
    utl_stream_c text;
    for (ch_data_s* finding = validity.findings.first(); finding;
         finding = validity.findings.next(finding)) {
        print_record(*finding, text);
        text.append("\n");
    }
    tr.print(QVTR_FAILURE, line, "%s\n", text.c_str() ? text.c_str() : "");
}
