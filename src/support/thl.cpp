#include "support/thl.h"

#include "platform/os.h"

#include <chrono>
#include <cstdlib>
#include <thread>
#include <vector>

// Takes the list's own lock, if it has one, for the length of one operation.
class ptr_list_c::guard_c {
  public:
    explicit guard_c(const ptr_list_c& list) : _lock(list._lock) {
        if (_lock) _lock->lock();
    }
    ~guard_c() {
        if (_lock) _lock->unlock();
    }
    guard_c(const guard_c&) = delete;
    guard_c& operator=(const guard_c&) = delete;

  private:
    std::recursive_mutex* _lock;
};

ptr_list_c::ptr_list_c(bool with_lock) : _lock(with_lock ? new std::recursive_mutex : nullptr) {}

// A copy has the same data pointers in new elements, and a lock of its own if the source has one.
// (Tables that are filled once are built with the ordinary constructor and then filled; a list
// is never constructed from itself.)
ptr_list_c::ptr_list_c(const ptr_list_c& other)
    : _list_name(other._list_name), _lock(other._lock ? new std::recursive_mutex : nullptr) {
    guard_c hold(other);
    for (ptr_list_element_c* e = other._first; e; e = e->next)
        _append(new ptr_list_element_c(e->data));
}

ptr_list_c::~ptr_list_c() {
    for (ptr_list_element_c* e = _first; e;) {
        ptr_list_element_c* following = e->next;
        _destroy(e);
        e = following;
    }
    delete _lock;
}

void ptr_list_c::_sort_protection_enter() {}
void ptr_list_c::_sort_protection_leave() {}

ptr_list_c* ptr_list_c::copy() const { return new ptr_list_c(*this); }

const void* ptr_list_c::first() const {
    guard_c hold(*this);
    _current = _first;
    return _current ? _current->data : nullptr;
}

const void* ptr_list_c::last() const {
    guard_c hold(*this);
    _current = _last;
    return _current ? _current->data : nullptr;
}

const void* ptr_list_c::next(const void* data) const {
    guard_c hold(*this);
    ptr_list_element_c* from = _element_or_current(data);
    _current = from ? from->next : nullptr;
    return _current ? _current->data : nullptr;
}

const void* ptr_list_c::prev(const void* data) const {
    guard_c hold(*this);
    ptr_list_element_c* from = _element_or_current(data);
    _current = from ? from->prev : nullptr;
    return _current ? _current->data : nullptr;
}

const void* ptr_list_c::current() const {
    guard_c hold(*this);
    return _current ? _current->data : nullptr;
}

void ptr_list_c::set_data(const void* old_data, const void* new_data) {
    guard_c hold(*this);
    if (ptr_list_element_c* e = _element_or_current(old_data)) e->data = new_data;
}

void ptr_list_c::sort(int (*compare)(const void*, const void*)) {
    guard_c hold(*this);
    _sort_protection_enter();
    if (_count > 1) {
        // The comparator sees the addresses of element pointers, as qsort gives them.
        std::vector<ptr_list_element_c*> elements;
        elements.reserve(static_cast<std::size_t>(_count));
        for (ptr_list_element_c* e = _first; e; e = e->next) elements.push_back(e);
        std::qsort(elements.data(), elements.size(), sizeof(ptr_list_element_c*), compare);
        _first = elements.front();
        _last = elements.back();
        for (std::size_t i = 0; i < elements.size(); ++i) {
            elements[i]->prev = i ? elements[i - 1] : nullptr;
            elements[i]->next = i + 1 < elements.size() ? elements[i + 1] : nullptr;
        }
    }
    _sort_protection_leave();
}

const void* ptr_list_c::remove_current(const void* data) {
    guard_c hold(*this);
    ptr_list_element_c* e = _element_or_current(data);
    if (!e) return nullptr;
    ptr_list_element_c* following = e->next;
    _unlink(e);
    _destroy(e);
    _current = following;
    return following ? following->data : nullptr;
}

const void* ptr_list_c::remove_current_move_back(const void* data) {
    guard_c hold(*this);
    ptr_list_element_c* e = _element_or_current(data);
    if (!e) return nullptr;
    ptr_list_element_c* before = e->prev;
    _unlink(e);
    _destroy(e);
    _current = before;
    return before ? before->data : nullptr;
}

const void* ptr_list_c::find_data(const void* data) const {
    guard_c hold(*this);
    ptr_list_element_c* e = _find_element(data);
    if (e) _current = e;
    return e ? e->data : nullptr;
}

const void* ptr_list_c::find_data(int (*compare)(const void*, const void*), void* context,
                                  search_direction_t direction) const {
    guard_c hold(*this);
    bool forward = direction == search_forward;
    for (ptr_list_element_c* e = forward ? _first : _last; e; e = forward ? e->next : e->prev) {
        if (compare(e->data, context) == 0) {
            _current = e;
            return e->data;
        }
    }
    return nullptr;
}

void ptr_list_c::append(const void* data) { _append(new ptr_list_element_c(data)); }
void ptr_list_c::insert(const void* data) { _insert(new ptr_list_element_c(data)); }

void ptr_list_c::move_current(bool to_front, const void* data) {
    guard_c hold(*this);
    ptr_list_element_c* e = _element_or_current(data);
    if (!e) return;
    if ((to_front && e == _first) || (!to_front && e == _last)) {
        _current = e;
        return;
    }
    _unlink(e);
    if (to_front)
        _link_before(e, _first);
    else
        _link_after(e, _last);
    _current = e;
}

void ptr_list_c::move_before_current(const void* data) {
    guard_c hold(*this);
    ptr_list_element_c* anchor = _current;
    if (!anchor || anchor->data == data || (anchor->prev && anchor->prev->data == data)) return;
    ptr_list_element_c* e = _find_element(data);
    if (!e) return;
    _unlink(e);
    _link_before(e, anchor);
    _current = e;
}

void ptr_list_c::move_after_current(const void* data) {
    guard_c hold(*this);
    ptr_list_element_c* anchor = _current;
    if (!anchor || anchor->data == data || (anchor->next && anchor->next->data == data)) return;
    ptr_list_element_c* e = _find_element(data);
    if (!e) return;
    _unlink(e);
    _link_after(e, anchor);
    _current = e;
}

void ptr_list_c::insert_before_current(const void* data) {
    guard_c hold(*this);
    if (_current) _insert_before_current(new ptr_list_element_c(data));
}

void ptr_list_c::insert_after_current(const void* data) {
    guard_c hold(*this);
    if (_current) _insert_after_current(new ptr_list_element_c(data));
}

void ptr_list_c::clear() {
    guard_c hold(*this);
    for (ptr_list_element_c* e = _first; e;) {
        ptr_list_element_c* following = e->next;
        _destroy(e);
        e = following;
    }
    _first = _last = _current = nullptr;
    _count = 0;
}

// A list made without a lock has nothing to take.
void ptr_list_c::lock() const {
    if (_lock) _lock->lock();
}

void ptr_list_c::unlock() const {
    if (_lock) _lock->unlock();
}

bool ptr_list_c::replace_positions(ptr_list_c* other, const void* data,
                                   thl_list_add_element_t where) {
    if (!other || other == this) return false;
    // Both lists are taken in address order, so that two opposite moves cannot deadlock.
    const ptr_list_c* low = this < other ? this : other;
    const ptr_list_c* high = this < other ? other : this;
    guard_c hold_low(*low);
    guard_c hold_high(*high);
    ptr_list_element_c* e = _find_element(data);
    if (!e) return false;
    if (_current == e) _current = e->next;
    _unlink(e);
    if (!other->_current) {
        if (where == thl_add_before_current)
            other->_insert(e);
        else
            other->_append(e);
    } else if (where == thl_add_before_current) {
        other->_insert_before_current(e);
    } else {
        other->_insert_after_current(e);
    }
    return true;
}

std::size_t ptr_list_c::get_index(const void* data) const {
    guard_c hold(*this);
    std::size_t index = 0;
    // As the other lists with a cursor: a match becomes current.
    for (ptr_list_element_c* e = _first; e; e = e->next, ++index) {
        if (e->data == data) {
            _current = e;
            return index;
        }
    }
    return static_cast<std::size_t>(-1);
}

void ptr_list_c::set_list_name(const char* name) {
    guard_c hold(*this);
    _list_name = name;
}

void ptr_list_c::_append(ptr_list_element_c* element) {
    guard_c hold(*this);
    _link_after(element, _last);
    _current = element;
}

void ptr_list_c::_insert(ptr_list_element_c* element) {
    guard_c hold(*this);
    _link_before(element, _first);
    _current = element;
}

void ptr_list_c::_insert_before_current(ptr_list_element_c* element) {
    guard_c hold(*this);
    _link_before(element, _current);
    _current = element;
}

void ptr_list_c::_insert_after_current(ptr_list_element_c* element) {
    guard_c hold(*this);
    _link_after(element, _current);
    _current = element;
}

// Data that is not in the list leaves the cursor where it is.
void ptr_list_c::_update_current(const void* data) const {
    guard_c hold(*this);
    if (_current && _current->data == data) return;
    if (ptr_list_element_c* e = _find_element(data)) _current = e;
}

ptr_list_element_c* ptr_list_c::_find_element(const void* data) const {
    for (ptr_list_element_c* e = _first; e; e = e->next)
        if (e->data == data) return e;
    return nullptr;
}

ptr_list_element_c* ptr_list_c::_element_or_current(const void* data) const {
    if (!data) return _current;
    if (_current && _current->data == data) return _current;
    return _find_element(data);
}

void ptr_list_c::_unlink(ptr_list_element_c* element) {
    (element->prev ? element->prev->next : _first) = element->next;
    (element->next ? element->next->prev : _last) = element->prev;
    element->next = element->prev = nullptr;
    if (_current == element) _current = nullptr;
    --_count;
}

// Links before `position`; a null position on an empty list makes the element the only one.
void ptr_list_c::_link_before(ptr_list_element_c* element, ptr_list_element_c* position) {
    if (!position) {
        _link_after(element, _last);
        return;
    }
    element->next = position;
    element->prev = position->prev;
    (position->prev ? position->prev->next : _first) = element;
    position->prev = element;
    ++_count;
}

// Links after `position`; null stands for the end of an empty list.
void ptr_list_c::_link_after(ptr_list_element_c* element, ptr_list_element_c* position) {
    element->prev = position;
    element->next = position ? position->next : nullptr;
    if (position) {
        (position->next ? position->next->prev : _last) = element;
        position->next = element;
    } else {
        _first = _last = element;
    }
    ++_count;
}

thl_crit_section_c::thl_crit_section_c(bool) {}

namespace mix_n {

const char* const True = "True";
const char* const False = "False";

void sleep(int milliseconds) {
    if (milliseconds > 0) std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

bool localtime_r(const std::int64_t* time, std::tm* result) {
    return time && result && os::local_time(*time, result);
}

bool parse_formatted_integer_string(const char* text, std::int64_t& result) {
    if (!text) return false;
    const char* p = text;
    while (*p == ' ' || *p == '\t') ++p;
    bool negative = false;
    if (*p == '+' || *p == '-') negative = *p++ == '-';
    unsigned base = 10;
    if (p[0] == '0' && (p[1] == 'x' || p[1] == 'X')) {
        base = 16;
        p += 2;
    }
    std::uint64_t value = 0;
    const char* digits = p;
    for (;; ++p) {
        unsigned digit;
        if (*p >= '0' && *p <= '9')
            digit = static_cast<unsigned>(*p - '0');
        else if (base == 16 && *p >= 'a' && *p <= 'f')
            digit = static_cast<unsigned>(*p - 'a' + 10);
        else if (base == 16 && *p >= 'A' && *p <= 'F')
            digit = static_cast<unsigned>(*p - 'A' + 10);
        else
            break;
        if (value > (UINT64_MAX - digit) / base) return false;
        value = value * base + digit;
    }
    if (p == digits) return false;
    while (*p == ' ' || *p == '\t') ++p;
    if (*p != 0) return false;
    if (negative) {
        if (value > static_cast<std::uint64_t>(INT64_MAX) + 1) return false;
        result = static_cast<std::int64_t>(0 - value);
    } else {
        result = static_cast<std::int64_t>(value);
    }
    return true;
}

} // namespace mix_n

// ---- multi_reader_lock_c

namespace {

// The read locks this thread holds, each with the number of its holds. A thread holds very few
// at once; one beyond these places is taken and let go without being counted.
struct read_hold_s {
    const single_writer_multi_reader_c* lock;
    unsigned depth;
};
constexpr std::size_t read_hold_places = 16;
thread_local read_hold_s read_holds[read_hold_places];

} // namespace

bool multi_reader_lock_c::_enter(const single_writer_multi_reader_c* lock) {
    read_hold_s* free_place = nullptr;
    for (read_hold_s& hold : read_holds) {
        if (hold.lock == lock) {
            ++hold.depth;
            return false;
        }
        if (!hold.lock && !free_place) free_place = &hold;
    }
    if (free_place) *free_place = {lock, 1};
    return true;
}

bool multi_reader_lock_c::_leave(const single_writer_multi_reader_c* lock) {
    for (read_hold_s& hold : read_holds) {
        if (hold.lock != lock) continue;
        if (--hold.depth > 0) return false;
        hold.lock = nullptr;
        return true;
    }
    return true;
}
