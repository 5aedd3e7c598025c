#include "configuration/xmc_enums.h"

#include <cstring>

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

std::uint32_t xmc_enum_c::find_type(const char* type_name, std::uint32_t& enum_index) {
    enum_index = find_enum(type_name);
    if (enum_index != enum_none) return xmc_n::type_enum;
    std::uint32_t position = find_item(enum_type, type_name);
    return position == not_found ? static_cast<std::uint32_t>(xmc_n::type_unknown) : position;
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
