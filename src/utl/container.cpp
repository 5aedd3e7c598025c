#include "utl/container.h"

#include "platform/os.h"
#include "support/trc.h"
#include "utl/utl.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

constexpr const char* source_name = "container";

// The data word of every element of a string_list_c.
const void* const name_only_data = reinterpret_cast<const void*>(std::uintptr_t{1});

const ptr_string_list_element_c* element_at(const void* address) {
    return static_cast<const ptr_string_list_element_c*>(
        *static_cast<ptr_list_element_c* const*>(address));
}

int bytes(const char* a, const char* b) {
    int r = std::strcmp(a, b);
    return r < 0 ? -1 : r > 0 ? 1 : 0;
}

int folded(const char* a, const char* b) {
    int r = os::_stricmp(a, b);
    return r < 0 ? -1 : r > 0 ? 1 : 0;
}

int folded_then_bytes(const char* a, const char* b) {
    int r = folded(a, b);
    return r ? r : bytes(a, b);
}

// Ascending order of two elements by `order`, a nameless element after every name.
int ascending(const ptr_string_list_element_c* a, const ptr_string_list_element_c* b,
              int (*order)(const char*, const char*)) {
    const char* x = a->get_name();
    const char* y = b->get_name();
    if (!x || !y) return x ? -1 : y ? 1 : 0;
    return order(x, y);
}

// The comparators of sort_by_names receive the addresses of element pointers, as the list's
// sort hands them. The descending ones are the ascending ones turned round, so a nameless
// element comes first.
int compare_bytes_up(const void* a, const void* b) {
    return ascending(element_at(a), element_at(b), bytes);
}
int compare_folded_up(const void* a, const void* b) {
    return ascending(element_at(a), element_at(b), folded);
}
int compare_folded_bytes_up(const void* a, const void* b) {
    return ascending(element_at(a), element_at(b), folded_then_bytes);
}
int compare_bytes_down(const void* a, const void* b) { return compare_bytes_up(b, a); }
int compare_folded_down(const void* a, const void* b) { return compare_folded_up(b, a); }
int compare_folded_bytes_down(const void* a, const void* b) {
    return compare_folded_bytes_up(b, a);
}

using compare_t = int (*)(const void*, const void*);
const compare_t name_comparators[6] = {compare_bytes_up,        compare_folded_up,
                                       compare_folded_bytes_up, compare_bytes_down,
                                       compare_folded_down,     compare_folded_bytes_down};

bool same_name(const ptr_string_list_element_c* a, const ptr_string_list_element_c* b) {
    return a->get_name_length() == b->get_name_length() &&
           std::memcmp(a->get_name(), b->get_name(),
                       static_cast<std::size_t>(a->get_name_length())) == 0;
}

} // namespace

// ---- ptr_string_list_element_c

ptr_string_list_element_c::~ptr_string_list_element_c() { delete[] _name; }

void ptr_string_list_element_c::_set_name(const char* name, bool round) {
    if (!name) {
        delete[] _name;
        _name = nullptr;
        _name_length = 0;
        return;
    }
    std::size_t length = std::strlen(name);
    if (_name && length <= _name_length) {
        std::memmove(_name, name, length + 1);
    } else {
        delete[] _name;
        _name = utl_n::str_copy(name, round);
    }
    _name_length = length;
}

// ---- ptr_string_list_c

ptr_string_list_c::ptr_string_list_c(bool with_lock, bool round_names)
    : ptr_list_c(with_lock), _round_names(round_names) {}

ptr_string_list_c::~ptr_string_list_c() = default;

ptr_list_c* ptr_string_list_c::copy() const {
    QVTR_SCOPE(tr, "ptr_string_list_c::copy", source_name);
    auto* other = new ptr_string_list_c(_lock != nullptr, false);
    other->set_list_name(_list_name);
    first();
    for (ptr_string_list_element_c* e = _current_element(); e; e = _current_element()) {
        other->append(e->get_name(), e->data);
        next(nullptr);
    }
    return other;
}

ptr_string_list_element_c* ptr_string_list_c::_make(const char* name, const void* data) const {
    auto* element = new ptr_string_list_element_c(data);
    if (name) element->_set_name(name, _round_names);
    return element;
}

void ptr_string_list_c::append(const void* data) { _append(_make(nullptr, data)); }
void ptr_string_list_c::insert(const void* data) { _insert(_make(nullptr, data)); }

void ptr_string_list_c::move_before_current(const void* data) {
    ptr_list_c::move_before_current(data);
}

void ptr_string_list_c::move_after_current(const void* data) {
    ptr_list_c::move_after_current(data);
}

void ptr_string_list_c::insert_before_current(const void* data) {
    if (_current) _insert_before_current(_make(nullptr, data));
}

void ptr_string_list_c::insert_after_current(const void* data) {
    if (_current) _insert_after_current(_make(nullptr, data));
}

const char* ptr_string_list_c::get_current_name(const void* data) {
    if (data) _update_current(data);
    ptr_string_list_element_c* e = _current_element();
    return e ? e->get_name() : nullptr;
}

void ptr_string_list_c::set_name(const char* name, const void* data) {
    QVTR_SCOPE(tr, "ptr_string_list_c::set_name", source_name);
    if (data) _update_current(data);
    if (ptr_string_list_element_c* e = _current_element()) e->_set_name(name, _round_names);
}

bool ptr_string_list_c::check_all_names_presence() const {
    QVTR_SCOPE(tr, "ptr_string_list_c::check_all_names_presence", source_name);
    for (ptr_list_element_c* e = _first; e; e = e->next)
        if (!static_cast<ptr_string_list_element_c*>(e)->get_name()) return false;
    return true;
}

const char* ptr_string_list_c::check_names_uniqueness() const {
    QVTR_SCOPE(tr, "ptr_string_list_c::check_names_uniqueness", source_name);
    for (ptr_list_element_c* a = _first; a; a = a->next) {
        auto* named = static_cast<ptr_string_list_element_c*>(a);
        if (!named->get_name()) continue;
        for (ptr_list_element_c* b = a->next; b; b = b->next) {
            auto* other = static_cast<ptr_string_list_element_c*>(b);
            if (other->get_name() && same_name(named, other)) return named->get_name();
        }
    }
    return nullptr;
}

std::size_t ptr_string_list_c::get_index(const char* name) {
    QVTR_SCOPE(tr, "ptr_string_list_c::get_index", source_name);
    std::size_t length = name ? std::strlen(name) : 0;
    std::size_t index = 0;
    for (ptr_list_element_c* e = _first; e; e = e->next, ++index) {
        auto* named = static_cast<ptr_string_list_element_c*>(e);
        bool match = name ? named->get_name() && named->get_name_length() == length &&
                                std::memcmp(named->get_name(), name, length) == 0
                          : named->get_name() == nullptr;
        if (match) {
            _current = e;
            return index;
        }
    }
    return static_cast<std::size_t>(-1);
}

void ptr_string_list_c::sort_by_names(int mode) {
    QVTR_SCOPE(tr, "ptr_string_list_c::sort_by_names", source_name);
    if (mode < 0 || mode >= 6) return;
    sort(name_comparators[mode]);
}

bool ptr_string_list_c::is_sorted_by_names(int mode) {
    QVTR_SCOPE(tr, "ptr_string_list_c::is_sorted_by_names", source_name);
    if (mode < 0 || mode >= 6 || _count < 2) return true;
    compare_t compare = name_comparators[mode];
    first();
    ptr_list_element_c* before = _current;
    for (next(nullptr); _current; next(nullptr)) {
        ptr_list_element_c* now = _current;
        if (compare(&before, &now) > 0) return false;
        before = now;
    }
    return true;
}

ptr_string_list_element_c* ptr_string_list_c::_find_element_by_name(const char* name,
                                                                    bool case_sensitive) const {
    if (!name) return nullptr;
    int (*equal)(const char*, const char*) = case_sensitive ? std::strcmp : os::_stricmp;
    ptr_string_list_element_c* at = _current_element();
    if (at && at->get_name() && equal(at->get_name(), name) == 0) return at;
    std::size_t length = std::strlen(name);
    for (ptr_list_element_c* e = _first; e; e = e->next) {
        auto* named = static_cast<ptr_string_list_element_c*>(e);
        if (named->get_name() && named->get_name_length() == length &&
            equal(named->get_name(), name) == 0) {
            _current = e;
            return named;
        }
    }
    return nullptr;
}

const void* ptr_string_list_c::find(const char* name, bool case_sensitive) const {
    QVTR_SCOPE(tr, "ptr_string_list_c::find", source_name);
    ptr_string_list_element_c* e = _find_element_by_name(name, case_sensitive);
    return e ? e->data : nullptr;
}

const void* ptr_string_list_c::find(const void* data) const { return find_data(data); }

void ptr_string_list_c::append(const char* name, const void* data) { _append(_make(name, data)); }
void ptr_string_list_c::insert(const char* name, const void* data) { _insert(_make(name, data)); }

void ptr_string_list_c::_move_beside_current(const char* name, bool after) {
    ptr_list_element_c* remembered = _current;
    if (!remembered) return;
    ptr_list_element_c* found = _find_element_by_name(name, true);
    _current = remembered;
    if (!found || found == remembered || found == (after ? remembered->next : remembered->prev))
        return;
    if (after)
        ptr_list_c::move_after_current(found->data);
    else
        ptr_list_c::move_before_current(found->data);
}

void ptr_string_list_c::move_before_current(const char* name) {
    QVTR_SCOPE(tr, "ptr_string_list_c::move_before_current", source_name);
    _move_beside_current(name, false);
}

void ptr_string_list_c::move_after_current(const char* name) {
    QVTR_SCOPE(tr, "ptr_string_list_c::move_after_current", source_name);
    _move_beside_current(name, true);
}

void ptr_string_list_c::insert_before_current(const char* name, const void* data) {
    if (_current) _insert_before_current(_make(name, data));
}

void ptr_string_list_c::insert_after_current(const char* name, const void* data) {
    if (_current) _insert_after_current(_make(name, data));
}

std::uint64_t ptr_string_list_c::_write_names(std::FILE* out) const {
    std::uint64_t counted = 0;
    for (ptr_list_element_c* e = _first; e; e = e->next) {
        const char* name = static_cast<ptr_string_list_element_c*>(e)->get_name();
        ++counted;
        std::fprintf(out, "\t%3d:  %s\n", static_cast<int>(counted), name ? name : "No Name Found");
    }
    if (counted != _count)
        std::fprintf(out, "\tList Error: num %d != %d\n", static_cast<int>(_count),
                     static_cast<int>(counted));
    std::fflush(out);
    return _count;
}

std::uint64_t ptr_string_list_c::print_names() {
    QVTR_SCOPE(tr, "ptr_string_list_c::print_names", source_name);
    return _write_names(stderr);
}

void ptr_string_list_c::_write_curr_name(std::FILE* out) const {
    ptr_string_list_element_c* e = _current_element();
    if (!e)
        std::fprintf(out, "\tNo Current Elemnt\n");
    else if (!e->get_name())
        std::fprintf(out, "\tNo Current Name Found\n");
    else
        std::fprintf(out, "\tCurrent Name: \"%s\"\n", e->get_name());
    std::fflush(out);
}

void ptr_string_list_c::_write_next_name(std::FILE* out) const {
    ptr_string_list_element_c* e = _current_element();
    auto* neighbour = e ? static_cast<ptr_string_list_element_c*>(e->next) : nullptr;
    if (!e)
        std::fprintf(out, "\tNo Current Elemnt\n");
    else if (!neighbour)
        std::fprintf(out, "\tNo Next Elemnt\n");
    else if (!neighbour->get_name())
        std::fprintf(out, "\tNo Next Name Found\n");
    else
        std::fprintf(out, "\tNext Name: \"%s\"\n", neighbour->get_name());
    std::fflush(out);
}

void ptr_string_list_c::_write_prev_name(std::FILE* out) const {
    ptr_string_list_element_c* e = _current_element();
    auto* neighbour = e ? static_cast<ptr_string_list_element_c*>(e->prev) : nullptr;
    if (!e)
        std::fprintf(out, "\tNo Current Elemnt\n");
    else if (!neighbour)
        std::fprintf(out, "\tNo Prev Elemnt\n");
    else if (!neighbour->get_name())
        std::fprintf(out, "\tNo Prev Name Found\n");
    else
        std::fprintf(out, "\tPrev Name: \"%s\"\n", neighbour->get_name());
    std::fflush(out);
}

void ptr_string_list_c::print_curr_name(const void* data) {
    QVTR_SCOPE(tr, "ptr_string_list_c::print_curr_name", source_name);
    if (data) _update_current(data);
    if (qvtr_is_console_application()) _write_curr_name(stderr);
}

void ptr_string_list_c::print_next_name(const void* data) {
    QVTR_SCOPE(tr, "ptr_string_list_c::print_next_name", source_name);
    if (data) _update_current(data);
    if (qvtr_is_console_application()) _write_next_name(stderr);
}

void ptr_string_list_c::print_prev_name(const void* data) {
    QVTR_SCOPE(tr, "ptr_string_list_c::print_prev_name", source_name);
    if (data) _update_current(data);
    if (qvtr_is_console_application()) _write_prev_name(stderr);
}

// ---- string_list_c

string_list_c::string_list_c(bool with_lock) : ptr_string_list_c(with_lock, false) {}

const char* string_list_c::_current_name() const {
    ptr_string_list_element_c* e = _current_element();
    return e ? e->get_name() : nullptr;
}

std::uint64_t string_list_c::get_count() { return _count; }

const char* string_list_c::find(const char* name, bool case_sensitive) {
    if (!ptr_string_list_c::find(name, case_sensitive)) return nullptr;
    return _current_name();
}

const char* string_list_c::first() { return ptr_list_c::first() ? _current_name() : nullptr; }
const char* string_list_c::last() { return ptr_list_c::last() ? _current_name() : nullptr; }
const char* string_list_c::next() { return ptr_list_c::next(nullptr) ? _current_name() : nullptr; }
const char* string_list_c::prev() { return ptr_list_c::prev(nullptr) ? _current_name() : nullptr; }

const char* string_list_c::remove(const char* name) {
    if (name) {
        ptr_string_list_element_c* at = _current_element();
        if (at && at->get_name()) {
            if (std::strcmp(at->get_name(), name) != 0) return nullptr;
        } else {
            ptr_list_c::first();
            while (_current) {
                const char* candidate = _current_name();
                if (candidate && std::strcmp(candidate, name) == 0) break;
                ptr_list_c::next(nullptr);
            }
            if (!_current) return nullptr;
        }
    }
    if (!remove_current(nullptr)) return nullptr;
    return _current_name();
}

void string_list_c::insert(const char* name) { ptr_string_list_c::insert(name, name_only_data); }
void string_list_c::append(const char* name) { ptr_string_list_c::append(name, name_only_data); }

// ---- string_array_c

string_array_c::string_array_c() : _array(new array_ct<char>) {}

string_array_c::string_array_c(const string_array_c& other) : _array(new array_ct<char>) {
    std::uint64_t count = other._array->get_count();
    _array->reserve(count, false);
    for (std::uint64_t i = 0; i < count; ++i)
        if (const char* text = other._array->at(i)) add(text);
}

string_array_c::~string_array_c() {
    string_array_c::clear();
    delete _array;
}

void string_array_c::clear() {
    while (!_array->is_empty()) delete[] _array->remove(_array->get_count() - 1);
}

const char* string_array_c::find(const char* text) const {
    std::uint64_t index = find_index(text);
    return index == container_n::no_index ? nullptr : _array->at(index);
}

std::uint64_t string_array_c::find_index(const char* text) const {
    if (!text) return container_n::no_index;
    std::uint64_t count = _array->get_count();
    for (std::uint64_t i = 0; i < count; ++i) {
        const char* held = _array->at(i);
        if (held && std::strcmp(held, text) == 0) return i;
    }
    return container_n::no_index;
}

const char* string_array_c::add(const char* text) {
    if (!text) return nullptr;
    return _array->append(utl_n::str_copy(text, false));
}

char* string_array_c::add_no_copy(char* text) { return _array->append(text); }

char* string_array_c::remove(std::uint64_t index) {
    if (index == container_n::no_index || index >= _array->get_count()) return nullptr;
    return _array->remove(index);
}

char* string_array_c::remove(const char* text) {
    std::uint64_t index = find_index(text);
    return index == container_n::no_index ? nullptr : _array->remove(index);
}

bool string_array_c::remove_and_delete(std::uint64_t index) {
    char* text = remove(index);
    delete[] text;
    return text != nullptr;
}

bool string_array_c::remove_and_delete(const char* text) {
    char* held = remove(text);
    delete[] held;
    return held != nullptr;
}

bool string_array_c::is_empty() const { return _array->is_empty(); }

std::uint64_t string_array_c::count_of(const char* text) const {
    if (!text) return 0;
    std::uint64_t count = 0, total = _array->get_count();
    for (std::uint64_t i = 0; i < total; ++i) {
        const char* held = _array->at(i);
        if (held && std::strcmp(held, text) == 0) ++count;
    }
    return count;
}
