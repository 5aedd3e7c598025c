#include "configuration/xmc_validity.h"

#include "utl/message.h"

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

} // namespace

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
