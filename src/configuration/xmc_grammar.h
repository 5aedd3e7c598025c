// The grammar of XMC, the engine's configuration dialect of XML: element and attribute names,
// the kinds of items, the positions of the data types, which attributes each element may carry,
// and the small text rules that the template and the stored scenarios share. Everything here is
// constant data or a pure function, so that any thread may use it at any time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

class utl_stream_c;

namespace xmc_n {

// ---- elements ---------------------------------------------------------------------------------
// Names are compared byte for byte and case-sensitively.
inline constexpr const char* element_object = "object";
inline constexpr const char* element_data = "data";
inline constexpr const char* element_title = "title";
inline constexpr const char* element_definitions = "definitions";
inline constexpr const char* element_enums = "enums";
inline constexpr const char* element_enum = "enum";
inline constexpr const char* element_objects = "objects";
// Spelt with two n in every template ever shipped; the spelling is the name.
inline constexpr const char* element_commnent = "commnent";
inline constexpr const char* element_relevant = "relevant";
inline constexpr const char* element_irrelevant = "irrelevant";
inline constexpr const char* element_switch_to_set_default = "switch_to_set_default";

// ---- attributes -------------------------------------------------------------------------------
inline constexpr const char* attr_label = "label";
inline constexpr const char* attr_id = "id";
inline constexpr const char* attr_status = "status";
inline constexpr const char* attr_val = "val";
inline constexpr const char* attr_type = "type";
inline constexpr const char* attr_mandatory = "mandatory";
inline constexpr const char* attr_prompted = "prompted";
inline constexpr const char* attr_check_kids_if_val = "check_kids_if_val";
inline constexpr const char* attr_check_if = "check_if";
inline constexpr const char* attr_is_equal = "is_equal";
inline constexpr const char* attr_minimum = "minimum";
inline constexpr const char* attr_maximum = "maximum";
inline constexpr const char* attr_to_keep = "to_keep";
inline constexpr const char* attr_external = "external";
inline constexpr const char* attr_variable = "variable";
inline constexpr const char* attr_case = "case";

// ---- item kinds -------------------------------------------------------------------------------
enum item_kind_t : std::uint32_t {
    kind_title = 0,
    kind_object = 1,
    kind_data = 2,
    kind_external = 3, // an object with the attribute `external`: its content is plain XML
    kind_other = 4,    // definitions, enums, enum, objects, commnent, conditions, switches
};

// Whether `text` is exactly `word`: byte by byte, stopping at the first difference, as the names
// compared on every item of a load mostly differ in their first byte. Null is no word.
template <std::size_t N> inline bool is_word(const char* text, const char (&word)[N]) {
    if (!text) return false;
    for (std::size_t i = 0; i < N; ++i)
        if (text[i] != word[i]) return false;
    return true;
}

// The kind an element name gives an item before any attribute is set: `data` 2, `object` 1,
// `title` 0, anything else (null included) 4. Only `external` later turns 1 into 3.
item_kind_t kind_of_element(const char* name);
item_kind_t kind_of_element(std::string_view name);

// ---- data types -------------------------------------------------------------------------------
// Positions of the twelve types in the enumeration `Type`; 12 is a type name that names nothing.
enum value_type_t : std::uint32_t {
    type_enum = 0,
    type_number = 1,
    type_bool = 2,
    type_string = 3,
    type_text = 4,
    type_full_path = 5,
    type_def_full_path = 6,
    type_ip_addr = 7,
    type_ip_adr_mask = 8,
    type_date = 9,
    type_multi_entry = 10,
    type_any = 11,
    type_unknown = 12,
};

inline constexpr std::size_t type_count = 12;
inline constexpr std::array<const char*, type_count> type_names = {
    "Enum",        "Number", "Bool",      "String", "Text",       "FullPath",
    "DefFullPath", "IPAddr", "IPAdrMask", "Date",   "MultiEntry", "Any"};

// ---- which attributes an element may carry ----------------------------------------------------
inline constexpr std::array<const char*, 6> object_attributes = {
    attr_label, attr_id, attr_status, attr_prompted, attr_to_keep, attr_external};
inline constexpr std::array<const char*, 2> object_required_attributes = {attr_label, attr_id};
inline constexpr std::array<const char*, 11> data_attributes = {
    attr_label,     attr_val,      attr_type,
    attr_mandatory, attr_prompted, attr_check_kids_if_val,
    attr_check_if,  attr_is_equal, attr_minimum,
    attr_maximum,   attr_to_keep};
inline constexpr std::array<const char*, 3> data_required_attributes = {attr_label, attr_val,
                                                                        attr_type};

// Whether a well-formed `object` / `data` may carry an attribute of that name.
bool is_object_attribute(const char* name);
bool is_data_attribute(const char* name);
// Of the required attributes, only `val` of a `data` may be empty.
bool may_be_empty(const char* attribute_name);

// ---- words ------------------------------------------------------------------------------------
// The labels of the condition variables of `relevant`, `irrelevant` and `switch_to_set_default`.
inline constexpr const char* variable_application = "Application";
inline constexpr const char* variable_product = "Product";
inline constexpr const char* variable_vetted_failback = "VettedFailback";
// `val="variable"` on those three labels: a value supplied at instantiation.
inline constexpr const char* value_variable = "variable";
// The words of `status`, `mandatory` and `Bool`, case-sensitive; `mandatory` with any other text
// counts as absent.
inline constexpr const char* word_true = "True";
inline constexpr const char* word_false = "False";
// The wildcard of a date field.
inline constexpr const char* word_any = "ANY";
// The only bracketed start a `FullPath` may have.
inline constexpr const char* install_tmp_prefix = "[INSTALL_TMP]/";
// The one label under which an `IPAddr` may be 0.0.0.0.
inline constexpr const char* label_data_ip = "Data_IP";
// Between the levels of the full text of a path, innermost first: `data.Port => object.Host`.
inline constexpr const char* path_level_separator = " => ";

// ---- versions ---------------------------------------------------------------------------------
inline constexpr const char* label_version = "Version";
inline constexpr const char* label_xmc_version_number = "XMC_VersionNumber";
inline constexpr const char* label_group_version_number = "Group_VersionNumber";
inline constexpr std::uint32_t document_version = 5;
inline constexpr std::uint32_t xmc_version_number = 164;
inline constexpr std::uint32_t group_version_number = 3;

// ---- the template as lines --------------------------------------------------------------------
// The built-in template is an array of line pointers ended by an empty line: 1445 lines and the
// end mark, and the stream that joins them first grows by 8 bytes per entry.
inline constexpr std::size_t template_line_count = 1445;
inline constexpr std::size_t template_entry_count = template_line_count + 1;
inline constexpr std::size_t template_reserve_per_entry = 8;
inline constexpr std::size_t template_reserve = template_entry_count * template_reserve_per_entry;
static_assert(template_reserve == 11568);

// Appends each line and a line feed to `out` up to the first empty (or null) line; the array
// has no length of its own. `reserve` bytes are made room for first. Returns the lines joined.
std::size_t join_lines(const char* const* lines, utl_stream_c& out, std::size_t reserve);

// ---- small text rules -------------------------------------------------------------------------
// The item list of an `enum`: items separated by any run of comma, blank or tab. Calls
// `item(text, length)` for each item in order and returns the count; no allocation.
template <class F> std::size_t for_each_enum_item(std::string_view list, F item) {
    std::size_t count = 0, at = 0;
    auto separator = [](char c) { return c == ',' || c == ' ' || c == '\t'; };
    while (at < list.size()) {
        while (at < list.size() && separator(list[at])) ++at;
        std::size_t start = at;
        while (at < list.size() && !separator(list[at])) ++at;
        if (at > start) {
            item(list.substr(start, at - start));
            ++count;
        }
    }
    return count;
}

// `check_if`: an object label, a dot and a data label, cut at the first dot. False (and both
// parts empty) for a null text or one without a dot, which makes the check count as satisfied.
bool split_check_if(const char* text, std::string_view& object_label, std::string_view& data_label);

// The current values that conditions and switches are evaluated against.
struct instance_s {
    const char* application = ""; // the item name at the application's position
    const char* product = "";     // the item name at the product's position
    bool vetted_failback = false;
};

// Whether a `relevant` / `irrelevant` condition with this `label` and `val` holds: Application
// by substring of the whole `val` (so a list reads as one, and an empty name is in every `val`),
// Product and VettedFailback by equality; any other label never holds.
bool condition_holds(const char* label, const char* val, const instance_s& now);
// Whether the condition element removes its parent: `irrelevant` when it holds, `relevant` when
// it does not. `element` is the element's name; any other name removes nothing.
bool condition_removes_parent(const char* element, bool holds);
// Whether a `switch_to_set_default` applies: all three of `variable`, `case` and `val` are
// present and `case` equals the variable's current value exactly.
bool switch_applies(const char* variable, const char* case_value, const char* val,
                    const instance_s& now);

} // namespace xmc_n
