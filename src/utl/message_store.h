// The process-wide store of message texts: ids ("CV01350", "IG00221") to texts, in a hash of 101
// buckets with case-sensitive names, built by start-up step 14 and torn down at unload. The
// library fills nothing itself: without a message file every look-up misses, traces it and
// gives "Message not found". A program that wants the texts loads a message file into the store
// with load_file before its first message_c.
//
// The message file: UTF-8 text, one message a line, the id, one tab, then the text as it stands
// up to the end of the line (no escapes; a CR before the LF is dropped). Lines that begin with
// '#' and empty lines are skipped. An id is two letters and digits; its letters are kept in
// upper case, as message_c asks in upper case. A line that breaks these rules, or repeats an id
// already loaded, is skipped and reported with its number; the rest of the file still loads.
#pragma once

#include "utl/container.h"
#include "utl/container_temp.h"
#include "utl/utl_stream.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class message_store_c {
  public:
    using hash_t = utl_hash_base_ct<ptr_string_list_c, const char*>;

    // Fills `stream` with the text of `id`; false, after a trace line, when there is none.
    static bool message(const char* id, utl_stream_c& stream);
    // The look-up behind message: the id, else the fallback id EG00347, else "Message not found".
    static bool _find_message(const char* id, utl_stream_c& stream);

    struct skipped_line_s {
        std::uint64_t line; // counted from 1
        std::string reason;
    };
    struct load_report_s {
        bool read = false;        // the file could be read at all
        std::uint64_t loaded = 0; // messages added to the store
        std::vector<skipped_line_s> skipped;
    };
    // Adds the messages of a message file to the store; each skipped line is traced as well.
    static load_report_s load_file(const char* path);
    // The same for the text of a message file in memory.
    static load_report_s load_text(std::string_view text);

    // Empties the store and frees its texts.
    static void clear();

    // The store's hash; null before start-up and after unload (and then traced).
    static hash_t* hash();

    // Start-up step 14 and its tear-down.
    static void start();
    static void stop();
};

// The three word tables of the message ids, start-up steps 16 to 18: names to codes, the code
// being the data word of each entry. Nothing reads the first two after start-up.
namespace message_tables_n {

struct word_code_s {
    const char* word;
    std::uint32_t code;
};

// The severity letters of the id form.
inline constexpr word_code_s severity_words[] = {
    {"Critical", 'C'}, {"Error", 'E'}, {"Info", 'I'}, {"SignificantInfo", 'S'}, {"Warning", 'W'},
};
// The source letters of the id form.
inline constexpr word_code_s source_words[] = {
    {"Cdp", 'C'},
    {"Drivers", 'D'},
    {"Manager", 'M'},
    {"Replicator", 'R'},
    {"System", 'S'},
    {"QvNet", 'X'},
    {"ScenarioValidation", 'V'},
    {"ServiceFailreason", 'F'},
    {"VssRequestor", 'Q'},
    {"ScenarioGroup", 'P'},
    {"General", 'G'},
    {"NATUtilityUI", 'I'},
};
// What a scenario is doing, with plain codes.
inline constexpr word_code_s activity_words[] = {
    {"Assessment Mode", 1}, {"Replication", 2},     {"Synchronization", 3},
    {"Verification", 4},    {"Vetted Failback", 5}, {"CDP", 6},
};

static_assert(std::size(severity_words) == 5 && std::size(source_words) == 12 &&
              std::size(activity_words) == 6);

ptr_string_list_c* severity_table();
ptr_string_list_c* source_table();
ptr_string_list_c* activity_table();

void start_severity_table();
void stop_severity_table();
void start_activity_table();
void stop_activity_table();
void start_source_table();
void stop_source_table();

} // namespace message_tables_n
