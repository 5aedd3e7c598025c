#include "configuration/root_dir.h"

#include "files/file.h"
#include "support/trc.h"
#include "utl/utl.h"

#include <cstring>

namespace {

constexpr const char* source = "root_dir";

// The names of the filter types, by type.
constexpr const char* filter_names[] = {"FileRegExpr", "DirRegExpr", "DirPath"};
constexpr std::uint32_t filter_type_count = 3;

bool is_separator(char c) { return c == '/' || c == '\\'; }

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
