#include "utl/message_store.h"

#include "support/load_step.h"
#include "support/thl.h"
#include "support/trc.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <memory>

namespace {

constexpr const char* source = "message_store";
constexpr const char* fallback_id = "EG00347";

// The hash and the texts it points to, which the store owns.
struct store_s {
    message_store_c::hash_t hash{101, true};
    std::vector<std::unique_ptr<char[]>> texts;
};

load_step_object_ct<store_s> store("the message store");

// An id is two letters and digits.
bool is_id(std::string_view id) {
    if (id.size() < 3) return false;
    auto letter = [](char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; };
    auto digit = [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; };
    return letter(id[0]) && letter(id[1]) &&
           std::all_of(id.begin() + 2, id.end(), [&](char c) { return digit(c); });
}

// Whether `text` is well-formed UTF-8 (no overlong forms, surrogates or values past U+10FFFF).
bool is_utf8(std::string_view text) {
    auto bytes = reinterpret_cast<const unsigned char*>(text.data());
    std::size_t n = text.size();
    for (std::size_t i = 0; i < n;) {
        unsigned char b = bytes[i];
        std::size_t need;
        unsigned char lo = 0x80, hi = 0xBF;
        if (b < 0x80) {
            ++i;
            continue;
        } else if (b >= 0xC2 && b <= 0xDF) {
            need = 1;
        } else if (b >= 0xE0 && b <= 0xEF) {
            need = 2;
            if (b == 0xE0) lo = 0xA0;
            if (b == 0xED) hi = 0x9F;
        } else if (b >= 0xF0 && b <= 0xF4) {
            need = 3;
            if (b == 0xF0) lo = 0x90;
            if (b == 0xF4) hi = 0x8F;
        } else {
            return false;
        }
        if (n - i <= need) return false;
        for (std::size_t k = 1; k <= need; ++k) {
            unsigned char c = bytes[i + k];
            if (c < lo || c > hi) return false;
            lo = 0x80;
            hi = 0xBF;
        }
        i += need + 1;
    }
    return true;
}

// One line of a message file into the store, or the reason it is skipped (empty when loaded
// or when the line is a comment or empty).
std::string load_line(std::string_view line, store_s& into, bool& added) {
    added = false;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (line.empty() || line.front() == '#') return {};
    std::size_t tab = line.find('\t');
    if (tab == std::string_view::npos) return "no tab between the id and the text";
    std::string id(line.substr(0, tab));
    std::string_view text = line.substr(tab + 1);
    if (!is_id(id)) return "\"" + id.substr(0, 40) + "\" is not an id (two letters and digits)";
    for (char& c : id) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    if (!is_utf8(text)) return "the text of " + id + " is not UTF-8";
    if (text.find('\0') != std::string_view::npos) return "the text of " + id + " holds a NUL";
    if (into.hash.find(id.c_str())) return "a second text for " + id;
    auto copy = std::make_unique<char[]>(text.size() + 1);
    std::copy(text.begin(), text.end(), copy.get());
    copy[text.size()] = 0;
    into.hash.append(id.c_str(), copy.get());
    into.texts.push_back(std::move(copy));
    added = true;
    return {};
}

} // namespace

void message_store_c::start() { store.build(); }
void message_store_c::stop() { store.drop(); }

void message_store_c::clear() {
    if (store_s* s = store.get()) {
        thl_lock_c hold(s->hash.lock);
        s->hash.clear();
        s->texts.clear();
    }
}

message_store_c::hash_t* message_store_c::hash() {
    store_s* s = store.get();
    return s ? &s->hash : nullptr;
}

bool message_store_c::_find_message(const char* id, utl_stream_c& stream) {
    QVTR_SCOPE(tr, "message_store_c::_find_message", source);
    stream.append(utl_stream_c::clear_char);
    const char* text = nullptr;
    if (hash_t* h = hash()) {
        thl_lock_c hold(h->lock);
        if (h->get_count() == 0)
            tr.print(QVTR_FAILURE, __LINE__,
                     "Message hash count is zero, message file is not loaded\n");
        text = h->find(id);
        if (!text) text = h->find(fallback_id);
    }
    if (text) {
        stream.append(text);
        return true;
    }
    tr.print(QVTR_FAILURE, __LINE__, "Message not found for id %s\n", id ? id : "(null)");
    stream.append("Message not found");
    return false;
}

bool message_store_c::message(const char* id, utl_stream_c& stream) {
    QVTR_SCOPE(tr, "message_store_c::message", source);
    bool found = _find_message(id, stream);
    if (!found)
        tr.print(QVTR_FAILURE, __LINE__, "Not found message with id %s\n", id ? id : "(null)");
    return found;
}

message_store_c::load_report_s message_store_c::load_text(std::string_view text) {
    QVTR_SCOPE(tr, "message_store_c::load_text", source);
    load_report_s report;
    report.read = true;
    store_s* s = store.get();
    if (!s) {
        report.read = false;
        return report;
    }
    thl_lock_c hold(s->hash.lock);
    std::uint64_t number = 0;
    while (!text.empty()) {
        ++number;
        std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        bool added = false;
        std::string reason = load_line(line, *s, added);
        if (added) ++report.loaded;
        if (reason.empty()) continue;
        tr.print(QVTR_FAILURE, __LINE__, "Message file line %llu skipped: %s\n",
                 static_cast<unsigned long long>(number), reason.c_str());
        report.skipped.push_back({number, std::move(reason)});
    }
    return report;
}

message_store_c::load_report_s message_store_c::load_file(const char* path) {
    QVTR_SCOPE(tr, "message_store_c::load_file", source);
    std::ifstream in(path ? path : "", std::ios::binary);
    if (!path || !in) {
        tr.print(QVTR_FAILURE, __LINE__, "Can not read the message file %s\n",
                 path ? path : "(null)");
        return {};
    }
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    return load_text(text);
}

// ---- the word tables

namespace {

load_step_object_ct<ptr_string_list_c> severity("the severity table");
load_step_object_ct<ptr_string_list_c> activity("the scenario activity table");
load_step_object_ct<ptr_string_list_c> sources("the source table");

template <std::size_t n>
void fill(load_step_object_ct<ptr_string_list_c>& table,
          const message_tables_n::word_code_s (&words)[n]) {
    table.build(false);
    for (const auto& entry : words)
        table.get()->append(entry.word, reinterpret_cast<const void*>(std::uintptr_t{entry.code}));
}

} // namespace

ptr_string_list_c* message_tables_n::severity_table() { return severity.get(); }
ptr_string_list_c* message_tables_n::source_table() { return sources.get(); }
ptr_string_list_c* message_tables_n::activity_table() { return activity.get(); }

void message_tables_n::start_severity_table() { fill(severity, severity_words); }
void message_tables_n::stop_severity_table() { severity.drop(); }
void message_tables_n::start_activity_table() { fill(activity, activity_words); }
void message_tables_n::stop_activity_table() { activity.drop(); }
void message_tables_n::start_source_table() { fill(sources, source_words); }
void message_tables_n::stop_source_table() { sources.drop(); }
