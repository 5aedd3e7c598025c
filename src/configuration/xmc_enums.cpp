#include "configuration/xmc_enums.h"

#include "files/file.h"
#include "platform/os.h"
#include "support/thl.h"
#include "support/trc.h"
#include "xml/xml_item.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <ctime>

using namespace xmc_enums_n;

namespace {

constexpr bool same(const char* a, const char* b) {
    return a && b && std::string_view(a) == std::string_view(b);
}

// ---- what the compiler proves about the tables ------------------------------------------------
// The interface addresses enumerations, objects and settings by these numbers, and the template
// is proven against the tables at load; a slip here would go unnoticed until a scenario is
// misread, so the shape of every table is checked while it is built.

constexpr std::uint64_t expected_item_counts[xmc_enum_c::enum_count] = {12, 4, 13, 8, 4, 16, 4,  2,
                                                                        3,  5, 2,  5, 4, 1,  14, 4};

constexpr bool enum_table_is_whole() {
    for (std::uint32_t e = 0; e < xmc_enum_c::enum_count; ++e) {
        const xmc_enum_c& record = enum_table[e];
        if (record.index != e || record.count != expected_item_counts[e]) return false;
        if (!record.name || !*record.name) return false;
        for (std::uint32_t other = 0; other < e; ++other)
            if (same(enum_table[other].name, record.name)) return false;
        for (std::uint32_t p = 0; p < record.count; ++p) {
            const xmc_enum_item_s& item = record.items[p];
            if (item.position != p || !item.name || !*item.name || !item.text_id) return false;
            for (std::uint32_t q = 0; q < p; ++q)
                if (same(record.items[q].name, item.name)) return false;
        }
        const xmc_enum_item_s& end = record.items[record.count];
        if (end.position != record.count || !end.name || *end.name) return false;
    }
    return true;
}
static_assert(enum_table_is_whole(), "enumerations: index, count, distinct names, end entries");
static_assert(enum_table[enum_bandwidth].count == 16 &&
                  enum_table[enum_bandwidth].items[16].position == 16,
              "Bandwidth has the most items and fills all 17 entries");

// The item list of `Type` is the grammar's list of type names, in the same order.
constexpr bool types_agree_with_grammar() {
    for (std::uint32_t p = 0; p < xmc_n::type_count; ++p)
        if (!same(enum_table[enum_type].items[p].name, xmc_n::type_names[p])) return false;
    return enum_table[enum_type].count == xmc_n::type_count;
}
static_assert(types_agree_with_grammar());

constexpr bool object_table_is_whole() {
    for (std::uint32_t row = 0; row < object_tag_count; ++row) {
        const object_tag_s& o = object_tag_table[row];
        if (o.index != row || !o.name || !*o.name) return false;
        // Hierarchy order: a papa stands before its rows; only the two roots are their own.
        bool root = row == 0 || row == 55;
        if (root ? o.papa != row : o.papa >= row) return false;
        // The scenario rows lie below Scenario, the group rows below Group.
        if ((row < 55) != (o.papa < 55) && !root) return false;
        for (std::uint32_t other = 0; other < row; ++other)
            if (same(object_tag_table[other].name, o.name)) return false;
    }
    return true;
}
static_assert(object_table_is_whole(), "objects: index, papa order, distinct names");
static_assert(row_of("Scenario") == 0 && row_of("Group") == 55 && row_of("HostProps") == 57);
static_assert(row_of(nullptr) == object_not_found && row_of("") == object_not_found &&
              row_of("scenario") == object_not_found);

// Rows are numbered by position, name a known object, and no object has a label twice.
template <class Row, std::size_t N> constexpr bool data_table_is_whole(const Row (&table)[N]) {
    for (std::uint32_t row = 0; row < N; ++row) {
        const Row& r = table[row];
        if (r.index != row || r.object >= object_tag_count || !r.label || !*r.label) return false;
        for (std::uint32_t other = 0; other < row; ++other)
            if (table[other].object == r.object && same(table[other].label, r.label)) return false;
    }
    return true;
}
template <std::size_t N> constexpr std::uint32_t flagged(const scenario_data_s (&table)[N]) {
    std::uint32_t count = 0;
    for (const scenario_data_s& r : table) count += r.fixed ? 1 : 0;
    return count;
}
constexpr std::uint32_t manager_rows() {
    std::uint32_t count = 0;
    for (const host_data_s& r : host_data_table) count += r.manager ? 1 : 0;
    return count;
}
static_assert(data_table_is_whole(scenario_data_table));
static_assert(data_table_is_whole(host_data_table));
static_assert(data_table_is_whole(group_data_table));
static_assert(data_table_is_whole(group_scenario_data_table));
static_assert(data_table_is_whole(group_list_table));
static_assert(flagged(scenario_data_table) == 13, "fixed settings of a scenario");
static_assert(flagged(group_data_table) == 25, "fixed settings of a group");
static_assert(flagged(group_scenario_data_table) == 0);
static_assert(manager_rows() == 34, "host settings that the manager's data has too");

// Group rows below Group, scenario and host rows below Scenario.
template <class Row, std::size_t N>
constexpr bool objects_between(const Row (&table)[N], std::uint32_t low, std::uint32_t high) {
    for (const Row& r : table)
        if (r.object < low || r.object > high) return false;
    return true;
}
static_assert(objects_between(scenario_data_table, 0, 54));
static_assert(objects_between(host_data_table, 0, 54));
static_assert(objects_between(group_data_table, 55, 68));
static_assert(objects_between(group_scenario_data_table, 55, 68));
static_assert(objects_between(group_list_table, 55, 68));

constexpr bool group_host_rows_are_hosts() {
    for (std::uint32_t row : group_host_rows)
        if (row >= host_data_count || host_data_table[row].object != row_of("CommonHostProps"))
            return false;
    return true;
}
static_assert(group_host_rows_are_hosts());

} // namespace

// ---- lookups ----------------------------------------------------------------------------------

std::uint32_t xmc_enum_c::find_enum(const char* enum_name_text) {
    if (!enum_name_text) return enum_none;
    for (const xmc_enum_c& record : enum_table)
        if (std::strcmp(record.name, enum_name_text) == 0) return record.index;
    return enum_none;
}

const char* xmc_enum_c::enum_name(std::uint32_t enum_index) {
    return enum_index < enum_count ? enum_table[enum_index].name : "";
}

// Positions run up to the end entry and the null entries behind it. An enumeration index out of
// range has no entries at all; the table is not read outside its bounds for any argument.
const char* xmc_enum_c::item_name(std::uint32_t enum_index, std::uint32_t position) {
    if (enum_index >= enum_count || position >= item_entries) return "";
    const char* name = enum_table[enum_index].items[position].name;
    return name ? name : "";
}

std::uint32_t xmc_enum_c::find_item(std::uint32_t enum_index, const char* item) {
    if (enum_index >= enum_count || !item) return not_found;
    const xmc_enum_c& record = enum_table[enum_index];
    for (std::uint32_t p = 0; p < record.count; ++p)
        if (std::strcmp(record.items[p].name, item) == 0) return p;
    return not_found;
}

// Every load of a tree asks this for each `data` item, so the 28 names it knows (16 enumerations,
// 12 types, all distinct) are one table sorted by the compiler, placed in slots below.
namespace {
struct type_key_s {
    std::string_view name;
    std::uint32_t type;
    std::uint32_t enum_index;
};
constexpr std::size_t type_key_count = xmc_enum_c::enum_count + xmc_n::type_count;
constexpr std::array<type_key_s, type_key_count> type_keys = [] {
    std::array<type_key_s, type_key_count> keys{};
    for (std::uint32_t e = 0; e < xmc_enum_c::enum_count; ++e)
        keys[e] = {enum_table[e].name, xmc_n::type_enum, e};
    for (std::uint32_t t = 0; t < xmc_n::type_count; ++t)
        keys[xmc_enum_c::enum_count + t] = {enum_table[enum_type].items[t].name, t, enum_none};
    std::sort(keys.begin(), keys.end(),
              [](const type_key_s& a, const type_key_s& b) { return a.name < b.name; });
    return keys;
}();
constexpr bool strictly_sorted() {
    for (std::size_t i = 1; i < type_keys.size(); ++i)
        if (!(type_keys[i - 1].name < type_keys[i].name)) return false;
    return true;
}
static_assert(strictly_sorted(), "type and enumeration names are sorted and distinct");
} // namespace

// The 28 names in a table of 64 slots, placed by their length and three of their bytes (the
// first, the middle and the last) with factors chosen so that no two names share a slot, which
// the compiler proves: a lookup is one mix of four numbers and at most one comparison, and a text
// that names nothing mostly meets an empty slot.
namespace {
constexpr std::size_t type_slot_count = 64;

struct type_slot_factors_s {
    std::uint32_t length, first, middle;
};
constexpr type_slot_factors_s type_factors{1, 12, 39};

constexpr std::size_t type_slot(std::string_view name) {
    auto byte = [&](std::size_t i) { return static_cast<unsigned char>(name[i]); };
    std::size_t n = name.size();
    return (n * type_factors.length + byte(0) * type_factors.first +
            byte(n / 2) * type_factors.middle + byte(n - 1)) %
           type_slot_count;
}

constexpr bool type_slots_distinct() {
    bool used[type_slot_count] = {};
    for (const type_key_s& key : type_keys) {
        std::size_t slot = type_slot(key.name);
        if (used[slot]) return false;
        used[slot] = true;
    }
    return true;
}
static_assert(type_slots_distinct(), "the type and enumeration names have slots of their own");

// Each slot holds the position of its name in type_keys plus one, 0 when empty.
constexpr std::array<std::uint8_t, type_slot_count> type_slots = [] {
    std::array<std::uint8_t, type_slot_count> slots{};
    for (std::size_t i = 0; i < type_keys.size(); ++i)
        slots[type_slot(type_keys[i].name)] = static_cast<std::uint8_t>(i + 1);
    return slots;
}();

constexpr std::size_t longest_type_key = 32;
static_assert(std::all_of(type_keys.begin(), type_keys.end(),
                          [](const type_key_s& key) { return key.name.size() < longest_type_key; }),
              "every name is shorter than 32");
} // namespace

std::uint32_t xmc_enum_c::find_type(const char* type_name, std::uint32_t& enum_index) {
    enum_index = enum_none;
    if (!type_name) return xmc_n::type_unknown;
    std::size_t length = 0;
    while (length <= longest_type_key && type_name[length]) ++length;
    return find_type(std::string_view(type_name, length), enum_index);
}

std::uint32_t xmc_enum_c::find_type(std::string_view name, std::uint32_t& enum_index) {
    enum_index = enum_none;
    if (name.empty() || name.size() > longest_type_key) return xmc_n::type_unknown;
    std::uint8_t slot = type_slots[type_slot(name)];
    if (slot == 0 || type_keys[slot - 1].name != name) return xmc_n::type_unknown;
    enum_index = type_keys[slot - 1].enum_index;
    return type_keys[slot - 1].type;
}

// ---- the type gate ----------------------------------------------------------------------------
// The rules below read texts of any length and any bytes. Numbers are read by hand where the C
// runtime's scanf would be asked for them: its behaviour on a number that overflows is undefined
// and differs between the two runtimes, so every field here saturates instead, and a field that
// overflows compares as the large number it says.

namespace {

// White space of the "C" locale, byte by byte on both platforms.
bool is_space(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}
bool is_digit(char c) { return c >= '0' && c <= '9'; }

// One "%u": blanks, a sign, digits. A minus reads as a huge number unless the digits are all
// zero. False, with `p` unmoved, when no digit follows.
bool scan_unsigned(const char*& p, std::uint64_t& value) {
    const char* q = p;
    while (is_space(*q)) ++q;
    bool negative = false;
    if (*q == '+' || *q == '-') negative = *q++ == '-';
    if (!is_digit(*q)) return false;
    std::uint64_t v = 0;
    bool over = false;
    for (; is_digit(*q); ++q) {
        auto digit = static_cast<std::uint64_t>(*q - '0');
        if (over || v > (UINT64_MAX - digit) / 10)
            over = true;
        else
            v = v * 10 + digit;
    }
    if (over || (negative && v != 0)) v = UINT64_MAX;
    value = v;
    p = q;
    return true;
}

// The fields of "%u<sep>%u<sep>..." in order, as far as they convert; `separators` holds the
// literal after each field but the last. Returns the number of fields converted and leaves `p`
// after the last of them.
int scan_fields(const char*& p, std::uint64_t* fields, int count, const char* separators) {
    int converted = 0;
    for (int i = 0; i < count; ++i) {
        if (i > 0) {
            if (*p != separators[i - 1]) break;
            ++p;
        }
        if (!scan_unsigned(p, fields[i])) break;
        ++converted;
    }
    return converted;
}

bool ip_address_fits(const char* text, const xml_item_c* item) {
    std::uint64_t field[4] = {0, 0, 0, 0};
    const char* p = text;
    int converted = scan_fields(p, field, 4, "...");
    // "%c" after the fourth field: any byte that follows is a fifth conversion.
    if (converted == 4 && *p) converted = 5;
    bool all_zero = !(field[0] | field[1] | field[2] | field[3]);
    bool fits = converted == 4 && field[0] < 256 && field[1] < 256 && field[2] < 256 &&
                field[3] < 256 && !all_zero;
    if (fits) return true;
    // The one label that may hold 0.0.0.0; as the fields start at 0, a text of which nothing
    // converts passes there too.
    if (all_zero && item) {
        labeled_value_c* label = item->find_attribute(xmc_n::attr_label);
        if (label && label->equals_text(xmc_n::label_data_ip)) return true;
    }
    return false;
}

// The 32 contiguous masks, longest first.
constexpr std::array<std::uint32_t, 32> contiguous_masks = [] {
    std::array<std::uint32_t, 32> masks{};
    for (int i = 0; i < 32; ++i) masks[static_cast<std::size_t>(i)] = 0xFFFFFFFFu << i;
    return masks;
}();
static_assert(contiguous_masks.front() == 0xFFFFFFFFu && contiguous_masks.back() == 0x80000000u);

bool ip_mask_fits(const char* text) {
    std::uint64_t field[8] = {};
    const char* p = text;
    // Whatever follows the mask is not looked at.
    if (scan_fields(p, field, 8, ".../...") != 8) return false;
    for (std::uint64_t f : field)
        if (f >= 256) return false;
    if (!(field[0] | field[1] | field[2] | field[3])) return false;
    std::uint32_t mask =
        static_cast<std::uint32_t>(field[4] << 24 | field[5] << 16 | field[6] << 8 | field[7]);
    for (std::uint32_t m : contiguous_masks)
        if (m == mask) return true;
    return false;
}

// A date field: the word ANY, stored as -1, or a whole "%d" with nothing after it. A number
// beyond int is no field. As the wildcard is stored as -1, a field that says -1 is one too.
bool date_field(const char* text, int& value) {
    if (std::strcmp(text, xmc_n::word_any) == 0) {
        value = -1;
        return true;
    }
    const char* p = text;
    while (is_space(*p)) ++p;
    bool negative = false;
    if (*p == '+' || *p == '-') negative = *p++ == '-';
    if (!is_digit(*p)) return false;
    std::int64_t v = 0;
    for (; is_digit(*p); ++p) {
        v = v * 10 + (*p - '0');
        if (v > 2147483648LL) return false;
    }
    if (*p) return false;
    v = negative ? -v : v;
    if (v > INT32_MAX || v < INT32_MIN) return false;
    value = static_cast<int>(v);
    return true;
}

// "%31s %31s %31s %c": three words of at most 31 bytes (a longer word is cut into two) and
// nothing but blanks behind them.
bool three_words(const char* text, char (&words)[3][32]) {
    const char* p = text;
    for (auto& word : words) {
        while (is_space(*p)) ++p;
        std::size_t n = 0;
        while (*p && !is_space(*p) && n < 31) word[n++] = *p++;
        word[n] = 0;
        if (n == 0) return false;
    }
    while (is_space(*p)) ++p;
    return *p == 0;
}

constexpr const char* month_names[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

bool date_fits(const char* text) {
    char copy[128];
    std::size_t length = 0;
    while (length < 127 && text[length]) {
        copy[length] = text[length];
        ++length;
    }
    copy[length] = 0;

    int day = 0, month = 0, year = 0;
    char* separator = std::strchr(copy, ':');
    if (!separator) separator = std::strchr(copy, '.');
    if (separator) {
        *separator = 0;
        char* month_text = separator + 1;
        char* second = std::strpbrk(month_text, ":.");
        if (!second) return false;
        *second = 0;
        if (!date_field(copy, day) || !date_field(month_text, month) ||
            !date_field(second + 1, year))
            return false;
    } else {
        char words[3][32];
        if (!three_words(copy, words)) return false;
        if (!date_field(words[0], day) || !date_field(words[2], year)) return false;
        month = 0;
        for (int m = 0; m < 12 && !month; ++m)
            if (std::strcmp(words[1], month_names[m]) == 0) month = m + 1;
        if (!month && !date_field(words[1], month)) return false;
    }

    if (month != -1 && (month < 1 || month > 12)) return false;
    if (day != -1 && (day < 1 || day > 31)) return false;
    if (year != -1 && year < 1901) return false;
    if (day == -1 && month == -1 && year == -1) return false;
    if (day == -1 || month == -1) return true;

    // The date must exist in local time: midnight of it, to time and back, keeps its fields.
    // February 29 of ANY year is taken in 2000, a leap year.
    std::tm wanted{};
    wanted.tm_mday = day;
    wanted.tm_mon = month - 1;
    wanted.tm_year = (year == -1 ? 2000 : year) - 1900;
    wanted.tm_isdst = -1;
    std::tm asked = wanted;
    std::int64_t time = os::mktime64(&asked);
    if (time < 1) time = os::time_now();
    std::tm back{};
    if (!mix_n::localtime_r(&time, &back)) return false;
    return back.tm_year == wanted.tm_year && back.tm_mon == wanted.tm_mon &&
           back.tm_mday == wanted.tm_mday;
}

bool bandwidth_fits(const char* text) {
    if (std::strcmp(text, "Unlimited") == 0) return true;
    std::size_t length = std::strlen(text);
    if (length >= 32) return false;
    char cut[32];
    std::memcpy(cut, text, length + 1);
    if (char* dot = std::strchr(cut, '.')) *dot = 0;
    std::int64_t number = 0;
    return mix_n::parse_formatted_integer_string(cut, number);
}

bool has_non_space(const char* text) {
    for (const char* p = text; *p; ++p)
        if (!is_space(*p)) return true;
    return false;
}

bool full_path_fits(const char* text) {
    if (text[0] == '[')
        return std::strncmp(text, xmc_n::install_tmp_prefix,
                            std::strlen(xmc_n::install_tmp_prefix)) == 0;
    return path_n::is_full_path_name(text);
}

} // namespace

// A null text is taken as empty, except by MultiEntry, where null is named on its own.
bool xmc_enum_c::data_fits_type(const char* text, std::uint32_t type_position,
                                std::uint32_t enum_index, const xml_item_c* item) {
    const char* t = text ? text : "";
    std::int64_t number = 0;
    switch (type_position) {
    case xmc_n::type_enum:
        if (enum_index == enum_bandwidth) return bandwidth_fits(t);
        return find_item(enum_index, t) != not_found;
    case xmc_n::type_number: return mix_n::parse_formatted_integer_string(t, number);
    case xmc_n::type_bool:
        return std::strcmp(t, mix_n::True) == 0 || std::strcmp(t, mix_n::False) == 0;
    case xmc_n::type_string: return has_non_space(t);
    case xmc_n::type_text: return true;
    case xmc_n::type_full_path: return *t && full_path_fits(t);
    case xmc_n::type_def_full_path: return !*t || path_n::is_full_path_name(t);
    case xmc_n::type_ip_addr: return !*t || ip_address_fits(t, item);
    case xmc_n::type_ip_adr_mask: return !*t || ip_mask_fits(t);
    case xmc_n::type_date: return date_fits(t);
    case xmc_n::type_multi_entry: {
        std::uint32_t entry_enum = enum_none;
        if (text && find_type(text, entry_enum) != xmc_n::type_unknown) return true;
        return text && mix_n::parse_formatted_integer_string(text, number);
    }
    default: {
        QVTR_SCOPE(tr, "xmc_enum_c::data_fits_type", "xmc_enums");
        tr.print(4, __LINE__, "Invalid type value \"%u\"\n", type_position);
        return false;
    }
    }
}

// ---- the table completed at start-up ----------------------------------------------------------

namespace xmc_enums_n {

constinit group_host_data_s group_host_data_table[group_host_data_count] = {
    {0, row_of("HostProps"), "Host", {}, 0},
};

namespace {
constexpr const char* group_host_labels[group_host_data_count] = {"Host", "IP", "Port", "Index",
                                                                  "Role"};
bool group_host_completed = false;
} // namespace

void complete_group_host_data_table() {
    for (std::uint32_t row = 0; row < group_host_data_count; ++row) {
        group_host_data_s& r = group_host_data_table[row];
        r.index = row;
        r.object = row_of("HostProps");
        r.label = group_host_labels[row];
        r.host = host_data_table[group_host_rows[row]];
        r.zero = 0;
    }
    group_host_completed = true;
}

bool group_host_data_table_complete() { return group_host_completed; }

} // namespace xmc_enums_n
