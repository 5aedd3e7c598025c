#include "configuration/root_dir.h"

#include "configuration/xmc_grammar.h"
#include "configuration/xmc_item.h"
#include "files/file.h"
#include "support/thl.h"
#include "support/trc.h"
#include "utl/utl.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr const char* source = "root_dir";

// The labels of a `RootDir` object and of its filter objects.
constexpr const char* root_dir_label = "RootDir";
constexpr const char* path_label = "Path";
constexpr const char* id_label = "ID";
constexpr const char* db_dir_label = "DBdir";
constexpr const char* match_all_label = "MatchAllKidsVolume";
constexpr const char* exclude_filter_label = "ExcludeFilter";
constexpr const char* list_filters_label = "ListFilters";

// The names of the filter types, by type; they are also the labels of the filter objects.
constexpr const char* filter_names[] = {"FileRegExpr", "DirRegExpr", "DirPath"};
constexpr std::uint32_t filter_type_count = 3;

bool same(const char* a, const char* b) { return a && b && std::strcmp(a, b) == 0; }

bool is_separator(char c) { return c == '/' || c == '\\'; }

const char* label_of(const xml_item_c* item) {
    labeled_value_c* label = item ? item->find_attribute(xmc_n::attr_label) : nullptr;
    return label ? label->to_text() : nullptr;
}

const char* word_of(bool value) { return value ? mix_n::True : mix_n::False; }

// The boolean reading of an attribute, taken from a copy: a reading turns the value into a
// boolean one, and the tree must not change by being read.
bool bool_of(const labeled_value_c* attribute) { return value_c(*attribute).to_bool(); }
std::uint32_t uint_of(const labeled_value_c* attribute) { return value_c(*attribute).to_uint(); }

// A new text of the `val` attribute: a string value with no error.
void write_val(xml_item_c* item, const char* text) {
    if (item) item->set_attribute(xmc_n::attr_val, text);
}

// The list object of a filter object: its second child, after `ExcludeFilter`.
xml_item_c* list_of(const xml_item_c* filter_item) {
    xml_item_c* first = filter_item ? filter_item->first_child_item() : nullptr;
    return first ? first->next_item() : nullptr;
}

} // namespace

// ---- root_dir_c::filter_c

root_dir_c::filter_c::filter_c(std::uint32_t filter_type) : type(filter_type) {}

root_dir_c::filter_c::filter_c(const filter_c& other)
    : string_array_c(other), type(other.type), exclude(other.exclude) {}

root_dir_c::filter_c& root_dir_c::filter_c::operator=(const filter_c& other) {
    if (this == &other) return *this;
    clear();
    type = other.type;
    exclude = other.exclude;
    for (std::uint64_t i = 0; i < other.get_count(); ++i) add(other.at(i));
    return *this;
}

bool root_dir_c::filter_c::operator==(const filter_c& other) const {
    if (type != other.type || exclude != other.exclude) return false;
    if (get_count() != other.get_count()) return false;
    for (std::uint64_t i = 0; i < get_count(); ++i) {
        const char* mine = at(i);
        const char* theirs = other.at(i);
        if (mine == theirs) continue;
        if (!mine || !theirs || std::strcmp(mine, theirs) != 0) return false;
    }
    return true;
}

const char* root_dir_c::filter_c::print_filter(utl_stream_c& stream) const {
    stream.append(exclude ? "Exclude " : "Include ");
    if (type < filter_type_count) stream.append(filter_names[type]);
    if (is_empty()) {
        stream.append(" Filter is Empty");
        return stream.c_str();
    }
    stream.append(" Filter: {");
    for (std::uint64_t i = 0; i < get_count(); ++i) {
        if (i) stream.append(", ");
        stream.append(at(i));
    }
    stream.append("}");
    return stream.c_str();
}

// ---- root_dir_c

root_dir_c::root_dir_c() = default;

root_dir_c::~root_dir_c() {
    delete temporary_filter;
    delete[] path;
}

root_dir_c::filter_c* root_dir_c::filter_of(std::uint32_t type) {
    switch (type) {
    case filter_c::type_file_reg_expr: return &file_filter;
    case filter_c::type_dir_reg_expr: return &dir_filter;
    case filter_c::type_dir_path: return &path_filter;
    default: return nullptr;
    }
}

const root_dir_c::filter_c* root_dir_c::filter_of(std::uint32_t type) const {
    return const_cast<root_dir_c*>(this)->filter_of(type);
}

void root_dir_c::update_has_filters() {
    has_filters = !file_filter.is_empty() || !dir_filter.is_empty() || !path_filter.is_empty() ||
                  (temporary_filter && !temporary_filter->is_empty());
}

void root_dir_c::copy_filter(std::uint32_t type, const root_dir_c& other) {
    if (type == all_filters) {
        file_filter = other.file_filter;
        dir_filter = other.dir_filter;
        path_filter = other.path_filter;
        return;
    }
    filter_c* mine = filter_of(type);
    const filter_c* theirs = other.filter_of(type);
    if (mine && theirs) *mine = *theirs;
}

void root_dir_c::set_path(const char* text) {
    delete[] path;
    path = nullptr;
    path_length = 0;
    if (!text || !*text) return;
    char normal[path_n::path_buffer_size];
    path_n::standard_dir_path(text, normal, false);
    path = utl_n::str_copy(normal, false);
    path_length = std::strlen(path);
}

void root_dir_c::set_display_path(const char* text) {
    if (!text || !*text) return;
    char normal[path_n::path_buffer_size];
    path_n::standard_dir_path(text, normal, false);
    display_path.append(utl_stream_c::clear_char);
    display_path.append(normal);
}

void root_dir_c::set_db_dir(bool value) { db_dir = value; }

void root_dir_c::set_match_all_kids_volume(bool value) { match_all_kids_volume = value; }

void root_dir_c::set_id(std::uint32_t value) { id = value; }

void root_dir_c::set_exclude(std::uint32_t type, bool value) {
    if (filter_c* filter = filter_of(type)) filter->exclude = value;
}

const char* root_dir_c::relative_to_root(const char* full_path) const {
    if (!full_path || !path) return nullptr;
    // The prefix must lie whole in the argument: a match that ignores case may pair letters of
    // different byte lengths, and the rest would then start beyond the argument's end.
    std::uint64_t present = 0;
    while (present < path_length && full_path[present]) ++present;
    if (present < path_length) return nullptr;
    bool differs = case_sensitive ? std::strncmp(full_path, path, path_length) != 0
                                  : utl_n::utf8_prefix_strnicmp(path, full_path) != 0;
    if (differs) return nullptr;
    const char* rest = full_path + path_length;
    if (!*rest) return rest;
    if (is_separator(*rest)) {
        while (is_separator(*rest)) ++rest;
        return rest;
    }
    // The root `D:/data` is no prefix of `D:/database`; the root `D:/` is one of `D:/data`.
    if (path_length && is_separator(path[path_length - 1])) return rest;
    return nullptr;
}

bool root_dir_c::_add_rel_path_filt(filter_c& filter, const char* text) {
    QVTR_SCOPE(tr, "root_dir_c::_add_rel_path_filt", source);
    if (!text) return false;
    char normal[path_n::path_buffer_size];
    path_n::standard_dir_path(text, normal, true);
    const char* relative = normal;
    if (path_n::is_full_path_name(normal)) {
        if (!path || !*path) {
            tr.print(QVTR_FAILURE, __LINE__,
                     "Unable to add DirPath filter \"%s\", Root Path is not set\n", normal);
            return false;
        }
        relative = relative_to_root(normal);
        if (!relative) {
            tr.print(QVTR_FAILURE, __LINE__,
                     "Unable to add filter \"%s\", doesn't fit root directory path %s\n", normal,
                     path);
            return false;
        }
        if (!*relative) {
            tr.print(QVTR_FAILURE, __LINE__,
                     "Unable to add empty relative path as filter to root directory %s\n", path);
            return false;
        }
    }
    if (filter.find(relative)) return true;
    return filter.add(relative) != nullptr;
}

bool root_dir_c::_add_expression(std::uint32_t type, const char* text) {
    QVTR_SCOPE(tr, "root_dir_c::_add_expression", source);
    if (!text || !*text) {
        tr.print(QVTR_FAILURE, __LINE__, "Unable to add empty string as filter\n");
        return false;
    }
    filter_c* filter = filter_of(type);
    if (!filter) return false;
    if (filter->find(text)) return true;
    bool added = type == filter_c::type_dir_path ? _add_rel_path_filt(*filter, text)
                                                 : filter->add(text) != nullptr;
    update_has_filters();
    return added;
}

bool root_dir_c::_rem_expression(std::uint32_t type, const char* text) {
    QVTR_SCOPE(tr, "root_dir_c::_rem_expression", source);
    filter_c* filter = filter_of(type);
    if (!filter || !text) return false;
    // Every type is normalised, so an expression that holds a backslash is not found again.
    char normal[path_n::path_buffer_size];
    path_n::standard_dir_path(text, normal, true);
    bool removed = filter->remove_and_delete(normal);
    if (!removed && type == filter_c::type_dir_path && path_n::is_full_path_name(normal)) {
        const char* relative = relative_to_root(normal);
        if (!relative) {
            tr.print(QVTR_FAILURE, __LINE__,
                     "Unable to remove filter \"%s\", doesn't fit root_dir_path %s\n", normal,
                     path ? path : "");
        } else if (!*relative) {
            tr.print(QVTR_FAILURE, __LINE__,
                     "Unable to remove empty relative path as filter for root_dir_path %s\n", path);
        } else {
            removed = filter->remove_and_delete(relative);
        }
    }
    update_has_filters();
    return removed;
}

const char* root_dir_c::print(utl_stream_c& stream) {
    stream.append("RootDirectory \"");
    stream.append(path && *path ? path : "Undefined");
    stream.append("\", ");
    stream.append(db_dir ? "AutoCreated" : "UserDefined");
    stream.append("\", ");
    stream.append(match_all_kids_volume ? "MatchAllKidsVolume" : "NotMatchAllKidsVolume");
    stream.append("\", ID = ");
    stream.append(id);
    stream.append("\n\t");
    file_filter.print_filter(stream);
    stream.append("\n\t");
    dir_filter.print_filter(stream);
    stream.append("\n\t");
    path_filter.print_filter(stream);
    stream.append("\n");
    if (temporary_filter) {
        stream.append("Temporary \t");
        temporary_filter->print_filter(stream);
        stream.append("\n");
    }
    return stream.c_str();
}

// ---- xmc_root_dir_c

xmc_root_dir_c::xmc_root_dir_c(xml_item_c* item) {
    QVTR_SCOPE(tr, "xmc_root_dir_c::xmc_root_dir_c", source);
    for (xml_item_c* child = item ? item->first_child_item() : nullptr; child;
         child = child->next_item()) {
        if (same(child->label, xmc_n::element_relevant) ||
            same(child->label, xmc_n::element_irrelevant))
            continue;
        const char* label = label_of(child);
        if (!label) {
            tr.print(QVTR_FAILURE, __LINE__, "Unnamed entry is found under %s node \n",
                     root_dir_label);
            continue;
        }
        // Each field is read from the first item that fits it; the model is filled without
        // writing back, so that reading changes nothing but the filters' status.
        labeled_value_c* val = child->find_attribute(xmc_n::attr_val);
        if (!path_item && val && same(label, path_label)) {
            path_item = child;
            root_dir_c::set_path(val->to_text());
            root_dir_c::set_display_path(val->to_text());
        } else if (!id_item && val && same(label, id_label)) {
            id_item = child;
            id = uint_of(val);
        } else if (!db_dir_item && val && same(label, db_dir_label)) {
            db_dir_item = child;
            db_dir = bool_of(val);
        } else if (!match_all_item && val && same(label, match_all_label)) {
            match_all_item = child;
            match_all_kids_volume = bool_of(val);
        } else if (!file_filter_item && same(label, filter_names[filter_c::type_file_reg_expr])) {
            file_filter_item = child;
            _set_filter_content(child, file_filter);
        } else if (!dir_filter_item && same(label, filter_names[filter_c::type_dir_reg_expr])) {
            dir_filter_item = child;
            _set_filter_content(child, dir_filter);
        } else if (!path_filter_item && same(label, filter_names[filter_c::type_dir_path])) {
            path_filter_item = child;
            _set_filter_content(child, path_filter);
        } else {
            tr.print(QVTR_FAILURE, __LINE__, "Inconsistent field %s is found under %s node\n",
                     label, root_dir_label);
        }
    }
    update_has_filters();
}

xmc_root_dir_c::~xmc_root_dir_c() = default;

xml_item_c* xmc_root_dir_c::filter_item_of(std::uint32_t type) const {
    switch (type) {
    case filter_c::type_file_reg_expr: return file_filter_item;
    case filter_c::type_dir_reg_expr: return dir_filter_item;
    case filter_c::type_dir_path: return path_filter_item;
    default: return nullptr;
    }
}

void xmc_root_dir_c::_set_filter_content(xml_item_c* item, filter_c& filter) {
    QVTR_SCOPE(tr, "xmc_root_dir_c::_set_filter_content", source);
    xml_item_c* exclude_item = item ? item->first_child_item() : nullptr;
    if (!exclude_item) {
        tr.print(QVTR_FAILURE, __LINE__, "Empty Filter content xml node is found\n");
        return;
    }
    const char* label = nullptr;
    const char* val = nullptr;
    _check_data_content(nullptr, exclude_item, false, &label, &val);
    if (same(label, exclude_filter_label) && val)
        filter.exclude = same(val, mix_n::True);
    else
        tr.print(QVTR_FAILURE, __LINE__, "Inconsistent %s xml node is found\n",
                 exclude_filter_label);
    xml_item_c* list = exclude_item->next_item();
    if (!list || !same(label_of(list), list_filters_label)) {
        tr.print(QVTR_FAILURE, __LINE__, "Inconsistent %s xml node is found\n", list_filters_label);
        return;
    }
    // As stored: neither normalised nor tested for a second occurrence.
    for (xml_item_c* entry = list->first_child_item(); entry; entry = entry->next_item()) {
        if (labeled_value_c* entry_val = entry->find_attribute(xmc_n::attr_val))
            filter.add(entry_val->to_text());
        else
            tr.print(QVTR_FAILURE, __LINE__, "Inconsistent element of %s xml node is found\n",
                     list_filters_label);
    }
}

void xmc_root_dir_c::update_has_filters() {
    root_dir_c::update_has_filters();
    for (std::uint32_t type = 0; type < filter_type_count; ++type) {
        xml_item_c* item = filter_item_of(type);
        labeled_value_c* status = item ? item->find_attribute(xmc_n::attr_status) : nullptr;
        if (!status) continue;
        bool on = bool_of(status);
        bool empty = filter_of(type)->is_empty();
        if (on && empty)
            item->set_attribute(xmc_n::attr_status, mix_n::False);
        else if (!on && !empty)
            item->set_attribute(xmc_n::attr_status, mix_n::True);
    }
}

void xmc_root_dir_c::_append_entry(xml_item_c* list, const char* text) {
    xmc_item_c* parent = xmc_item_c::as_xmc(list);
    if (!parent || !tree) return;
    labeled_value_c* entry_type = list->find_attribute(xmc_n::attr_val);
    auto* entry = new xmc_item_c(xmc_n::element_data);
    entry->set_attribute(xmc_n::attr_label, list_filters_label);
    entry->set_attribute(xmc_n::attr_val, text);
    entry->set_attribute(xmc_n::attr_type, entry_type ? entry_type->to_text() : "");
    if (!tree->attach(entry, parent, true)) delete entry;
}

void xmc_root_dir_c::copy_filter(std::uint32_t type, const root_dir_c& other) {
    if (type == all_filters) {
        for (std::uint32_t each = 0; each < filter_type_count; ++each) copy_filter(each, other);
        return;
    }
    const filter_c* mine = filter_of(type);
    const filter_c* theirs = other.filter_of(type);
    if (!mine || !theirs || *mine == *theirs) return;
    root_dir_c::copy_filter(type, other);
    xml_item_c* object = filter_item_of(type);
    xml_item_c* exclude_item = object ? object->first_child_item() : nullptr;
    if (!exclude_item) return;
    write_val(exclude_item, word_of(mine->exclude));
    xml_item_c* list = exclude_item->next_item();
    if (!list) return;
    if (tree) tree->remove_children(xmc_item_c::as_xmc(list));
    for (std::uint64_t i = 0; i < mine->get_count(); ++i) _append_entry(list, mine->at(i));
}

void xmc_root_dir_c::set_path(const char* text) {
    bool text_empty = !text || !*text;
    bool path_empty = !path || !*path;
    if ((text_empty && path_empty) || same(text, path)) return;
    root_dir_c::set_path(text);
    write_val(path_item, path ? path : "");
}

void xmc_root_dir_c::set_db_dir(bool value) {
    if (value == db_dir) return;
    root_dir_c::set_db_dir(value);
    write_val(db_dir_item, word_of(value));
}

void xmc_root_dir_c::set_match_all_kids_volume(bool value) {
    if (value == match_all_kids_volume) return;
    root_dir_c::set_match_all_kids_volume(value);
    write_val(match_all_item, word_of(value));
}

void xmc_root_dir_c::set_id(std::uint32_t value) {
    if (value == id) return;
    root_dir_c::set_id(value);
    char digits[16];
    std::snprintf(digits, sizeof digits, "%u", static_cast<unsigned>(value));
    write_val(id_item, digits);
}

void xmc_root_dir_c::set_exclude(std::uint32_t type, bool value) {
    root_dir_c::set_exclude(type, value);
    xml_item_c* object = filter_item_of(type);
    write_val(object ? object->first_child_item() : nullptr, word_of(value));
}

bool xmc_root_dir_c::_add_expression(std::uint32_t type, const char* text) {
    if (!text) return false;
    if (!root_dir_c::_add_expression(type, text)) return false;
    // The caller's text goes to the tree even where the model keeps another form of it.
    if (xml_item_c* list = list_of(filter_item_of(type))) _append_entry(list, text);
    return true;
}

bool xmc_root_dir_c::_rem_expression(std::uint32_t type, const char* text) {
    if (!text) return false;
    if (!root_dir_c::_rem_expression(type, text)) return false;
    xml_item_c* list = list_of(filter_item_of(type));
    for (xml_item_c* entry = list ? list->first_child_item() : nullptr; entry;
         entry = entry->next_item()) {
        labeled_value_c* val = entry->find_attribute(xmc_n::attr_val);
        if (!val || !same(val->to_text(), text)) continue;
        if (tree) tree->remove(xmc_item_c::as_xmc(entry));
        break;
    }
    return true;
}
