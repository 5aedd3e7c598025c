#include "configuration/xmc_grammar.h"

#include "utl/utl_stream.h"

#include <cstring>

namespace {

bool same(const char* a, const char* b) { return a && b && std::strcmp(a, b) == 0; }

template <std::size_t N> bool among(const std::array<const char*, N>& names, const char* name) {
    for (const char* n : names)
        if (same(n, name)) return true;
    return false;
}

// The attribute tables are what validation of both the template and stored scenarios reads;
// a duplicate would hide a missing name, so they are proven distinct here.
template <std::size_t N> constexpr bool distinct(const std::array<const char*, N>& names) {
    for (std::size_t i = 0; i < N; ++i)
        for (std::size_t j = i + 1; j < N; ++j)
            if (std::string_view(names[i]) == std::string_view(names[j])) return false;
    return true;
}

template <std::size_t N, std::size_t M>
constexpr bool contained(const std::array<const char*, N>& part,
                         const std::array<const char*, M>& whole) {
    for (const char* p : part) {
        bool found = false;
        for (const char* w : whole) found = found || std::string_view(p) == std::string_view(w);
        if (!found) return false;
    }
    return true;
}

static_assert(distinct(xmc_n::object_attributes));
static_assert(distinct(xmc_n::data_attributes));
static_assert(distinct(xmc_n::type_names));
static_assert(contained(xmc_n::object_required_attributes, xmc_n::object_attributes));
static_assert(contained(xmc_n::data_required_attributes, xmc_n::data_attributes));
static_assert(xmc_n::type_names.size() == xmc_n::type_unknown);
static_assert(std::string_view(xmc_n::type_names[xmc_n::type_any]) == "Any");
static_assert(std::string_view(xmc_n::type_names[xmc_n::type_multi_entry]) == "MultiEntry");

} // namespace

namespace xmc_n {

item_kind_t kind_of_element(const char* name) {
    if (is_word(name, "data")) return kind_data;
    if (is_word(name, "object")) return kind_object;
    if (is_word(name, "title")) return kind_title;
    return kind_other;
}

item_kind_t kind_of_element(std::string_view name) {
    if (name == "data") return kind_data;
    if (name == "object") return kind_object;
    if (name == "title") return kind_title;
    return kind_other;
}

bool is_object_attribute(const char* name) { return among(object_attributes, name); }

bool is_data_attribute(const char* name) { return among(data_attributes, name); }

bool may_be_empty(const char* attribute_name) { return same(attribute_name, attr_val); }

std::size_t join_lines(const char* const* lines, utl_stream_c& out, std::size_t reserve) {
    out._add_memory(reserve);
    std::size_t joined = 0;
    if (!lines) return 0;
    for (const char* const* line = lines; *line && **line; ++line, ++joined) {
        out.append(*line);
        out.append('\n');
    }
    return joined;
}

bool split_check_if(const char* text, std::string_view& object_label,
                    std::string_view& data_label) {
    object_label = data_label = {};
    if (!text) return false;
    const char* dot = std::strchr(text, '.');
    if (!dot) return false;
    object_label = std::string_view(text, static_cast<std::size_t>(dot - text));
    data_label = std::string_view(dot + 1);
    return true;
}

bool condition_holds(const char* label, const char* val, const instance_s& now) {
    if (!label || !val) return false;
    if (same(label, variable_application))
        return now.application && std::strstr(val, now.application);
    if (same(label, variable_product)) return same(val, now.product);
    if (same(label, variable_vetted_failback))
        return same(val, now.vetted_failback ? word_true : word_false);
    return false;
}

bool condition_removes_parent(const char* element, bool holds) {
    if (same(element, element_irrelevant)) return holds;
    if (same(element, element_relevant)) return !holds;
    return false;
}

bool switch_applies(const char* variable, const char* case_value, const char* val,
                    const instance_s& now) {
    if (!variable || !case_value || !val) return false;
    if (same(variable, variable_application)) return same(case_value, now.application);
    if (same(variable, variable_product)) return same(case_value, now.product);
    if (same(variable, variable_vetted_failback))
        return same(case_value, now.vetted_failback ? word_true : word_false);
    return false;
}

} // namespace xmc_n
