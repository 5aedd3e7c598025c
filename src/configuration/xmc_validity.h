// Findings of a configuration check: a check does not stop at the first fault, each fault
// becomes a ch_data_s in an xmc_validity_c, in the order found, which a user interface lists and
// a trace line prints. The finding's code names its message: "CV0<code + 1348>" in the message
// store; code 36 carries its own text.
#pragma once

#include "utl/container_temp.h"
#include "utl/utl_stream.h"
#include "xml/xml_item.h"

#include <cstdint>

class qvtr_entry_c;

struct ch_data_s {
    static constexpr std::uint64_t no_item = ~std::uint64_t{0};
    static constexpr std::uint32_t code_of_own_text = 36;
    static constexpr std::uint32_t first_message_number = 1348;

    std::uint64_t host = 0;       // host index; 0 for the scenario as a whole
    std::uint64_t item = no_item; // position of the root directory concerned
    std::uint32_t code = 0;
    utl_stream_c name;      // what is concerned: a dotted name or a label
    utl_stream_c peer_name; // a second name or extra text, may be empty
    utl_stream_c text;      // free text, with code 36 only
    // The item of the scenario's tree the finding is about, where the rule had one; it lives
    // as long as that tree. Tools use it to point into the file the tree was read from.
    const xml_item_c* tree_item = nullptr;
};

class xmc_validity_c {
  public:
    xmc_validity_c() : findings(false) {}
    virtual ~xmc_validity_c() { findings.clear_and_delete(); }
    xmc_validity_c(const xmc_validity_c&) = delete;
    xmc_validity_c& operator=(const xmc_validity_c&) = delete;

    ptr_list_ct<ch_data_s> findings; // owned, in the order of finding
};

// Appends a finding of `code` about `name`.
void add_record(xmc_validity_c& validity, const char* name, std::uint32_t code,
                std::uint64_t host = 0, std::uint64_t item = ch_data_s::no_item);

// Appends a finding about a tree item: its dotted path as the name, as host the `Index` of the
// host object (`ReplNode`) it stands under (0 for none), as item the position of the root
// directory (`RootDir`) it stands under among that one's siblings, and `extra`, when not empty,
// as the peer name. A null item adds nothing.
void report_item(xmc_validity_c& validity, const xml_item_c* tree_item, std::uint32_t code,
                 const char* extra = nullptr);

// Appends the finding's line: who (scenario, master or replica #n), the root directory if any,
// the name (and its peer), and the text of the finding, then a line feed.
void print_record(const ch_data_s& finding, utl_stream_c& stream);

// The message id of a code: "CV0" and the code plus 1348.
utl_stream_c& message_id_of(std::uint32_t code, utl_stream_c& id);

// The findings, each printed and followed by an empty line, as one trace line of the failure
// level; nothing when there are none.
void trace_findings(qvtr_entry_c& tr, int line, xmc_validity_c& validity);
