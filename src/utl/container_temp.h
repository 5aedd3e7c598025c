// The library's own containers: array_ct<T>, a growable array of pointers that counts by its last
// index; value_list_ct<T> and value_ptr_list_ct<K,T>, double chains with a built-in cursor;
// ptr_list_ct<T>, the typed front of a ptr_list_c; and utl_hash_base_ct<T,K>, names to data in
// fixed buckets. None of them locks; the lock that a value_list_ct or a hash may hold is there
// for its user.
#pragma once

#include "platform/os.h"
#include "support/thl.h"
#include "support/trc.h"
#include "utl/cell_pool.h"

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace container_n {

// All bits set: the last index of an empty array, and "no index".
constexpr std::uint64_t no_index = ~std::uint64_t{0};

// How an array deletes an element. Classes go through their virtual destructor; a char element
// is a text made by utl_n::str_copy, which allocates with new[], so it is released with delete[].
template <class T> struct element_deleter_s {
    static void destroy(T* element) { delete element; }
};
template <> struct element_deleter_s<char> {
    static void destroy(char* element) { delete[] element; }
};

} // namespace container_n

// ---------------------------------------------------------------------------------------------
// array_ct<T>: pointers in contiguous cells. `_last` is the index of the last element, all bits
// set when the array is empty; the cells behind it are kept zero. The array owns its elements
// only where a call says so: remove hands the pointer back, remove_and_delete and clear delete
// it. The destructor releases the cells and leaves the elements to their owner.
template <class T> class array_ct {
  public:
    array_ct() = default;
    array_ct(const array_ct&) = delete;
    array_ct& operator=(const array_ct&) = delete;

    virtual ~array_ct() { free_memory(); }

    // Releases the cells without deleting the elements; the array is empty with capacity 0.
    virtual void free_memory() {
        cell_pool_n::release(_data);
        _data = nullptr;
        _last = container_n::no_index;
        _capacity = 0;
    }

    // Deletes every element, last to first, then releases the cells.
    virtual void clear() {
        if (is_empty()) return;
        for (std::uint64_t i = _last + 1; i-- > 0;) {
            T* element = _data[i];
            _data[i] = nullptr;
            container_n::element_deleter_s<T>::destroy(element);
        }
        free_memory();
    }

    virtual std::uint64_t get_count() const { return is_empty() ? 0 : _last + 1; }

    virtual T* find(T* element) const {
        return find_index(element) == container_n::no_index ? nullptr : element;
    }

    virtual std::uint64_t find_index(T* element) const {
        if (is_empty()) return container_n::no_index;
        for (std::uint64_t i = 0; i <= _last; ++i)
            if (_data[i] == element) return i;
        return container_n::no_index;
    }

    virtual T* append(T* element) {
        if (is_empty()) {
            if (_capacity < 5) {
                free_memory();
                _capacity = 5;
                _data = _allocate(_capacity);
            }
            _zero(0, _capacity);
            _last = 0;
            _data[0] = element;
            return element;
        }
        if (_capacity <= _last + 1) {
            std::uint64_t grown = _capacity < 50 ? _capacity + 5 : _capacity + _capacity / 10;
            _grow(grown);
        }
        _data[++_last] = element;
        return element;
    }

    // Appends, then moves the element to `index` when that lies inside the array; an index at
    // or past the end leaves it appended.
    virtual T* insert(T* element, std::uint64_t index) {
        if (index == container_n::no_index) return nullptr;
        append(element);
        if (index < _last) {
            std::memmove(_data + index + 1, _data + index,
                         static_cast<std::size_t>(_last - index) * sizeof(T*));
            _data[index] = element;
        }
        return element;
    }

    // Shares the other array's pointers; the result is its first element.
    virtual T* insert_array(array_ct<T>* other, std::uint64_t index) {
        if (!other || other == this || index == container_n::no_index) return nullptr;
        if (other->is_empty()) return nullptr;
        std::uint64_t added = other->get_count();
        reserve(get_count() + added, true);
        if (!is_empty() && index <= _last) {
            std::memmove(_data + index + added, _data + index,
                         static_cast<std::size_t>(_last - index + 1) * sizeof(T*));
            std::memcpy(_data + index, other->_data, static_cast<std::size_t>(added) * sizeof(T*));
            _last += added;
        } else {
            for (std::uint64_t i = 0; i < added; ++i) append(other->at(i));
        }
        return other->_data[0];
    }

    virtual bool is_empty() const { return _last == container_n::no_index; }

    virtual std::uint64_t count_of(T* element) const {
        std::uint64_t count = 0;
        if (is_empty()) return 0;
        for (std::uint64_t i = 0; i <= _last; ++i)
            if (_data[i] == element) ++count;
        return count;
    }

    virtual bool remove_and_delete(std::uint64_t index) {
        T* element = remove(index);
        if (!element) return false;
        container_n::element_deleter_s<T>::destroy(element);
        return true;
    }

    // Takes out the elements from `from` to `to` without deleting them; the result is the one
    // that stood at `from`.
    virtual T* remove_range(std::uint64_t from, std::uint64_t to) {
        if (is_empty() || from == container_n::no_index || to == container_n::no_index ||
            from > to || to > _last)
            return nullptr;
        T* result = _data[from];
        if (to == _last) {
            _zero(from, _last + 1);
            _last = from == 0 ? container_n::no_index : from - 1;
            return result;
        }
        std::uint64_t removed = to - from + 1;
        std::memmove(_data + from, _data + to + 1,
                     static_cast<std::size_t>(_last - to) * sizeof(T*));
        _zero(_last + 1 - removed, _last + 1);
        _last -= removed;
        return result;
    }

    virtual T* remove_value(T* element) {
        std::uint64_t index = find_index(element);
        return index == container_n::no_index ? nullptr : remove(index);
    }

    // Hands the element back; the caller owns it.
    virtual T* remove(std::uint64_t index) {
        if (is_empty() || index == container_n::no_index || index > _last) return nullptr;
        T* element = _data[index];
        if (index < _last)
            std::memmove(_data + index, _data + index + 1,
                         static_cast<std::size_t>(_last - index) * sizeof(T*));
        _data[_last] = nullptr;
        _last = _last == 0 ? container_n::no_index : _last - 1;
        return element;
    }

    virtual bool swap(std::uint64_t a, std::uint64_t b) {
        if (!_valid(a) || !_valid(b)) return false;
        T* held = _data[a];
        _data[a] = _data[b];
        _data[b] = held;
        return true;
    }

    virtual T* replace(std::uint64_t index, T* element) {
        if (!_valid(index)) return nullptr;
        T* old = _data[index];
        _data[index] = element;
        return old;
    }

    T* at(std::uint64_t index) const {
        if (!_valid(index)) {
            QVTR_SCOPE(tr, "\"array_ct<TP>::at\"", "container_temp");
            tr.print(4, __LINE__, "array_ct(last = %d), received index %d\n",
                     static_cast<int>(_last), static_cast<int>(index));
            return nullptr;
        }
        return _data[index];
    }

    // keep false: at least `count` cells, all zero, and the array empty. keep true: at least
    // `count` cells with the contents kept; a smaller count changes nothing.
    void reserve(std::uint64_t count, bool keep) {
        if (!keep) {
            if (count > _capacity) {
                cell_pool_n::release(_data);
                _data = _allocate(count);
                _capacity = count;
            }
            _zero(0, _capacity);
            _last = container_n::no_index;
            return;
        }
        if (count > _capacity) _grow(count);
    }

  protected:
    bool _valid(std::uint64_t index) const {
        return !is_empty() && index != container_n::no_index && index <= _last;
    }

    // The cells are taken from the current pool while a document loads (utl/cell_pool.h).
    static T** _allocate(std::uint64_t count) {
        if (!count) return nullptr;
        return static_cast<T**>(
            cell_pool_n::allocate(static_cast<std::size_t>(count) * sizeof(T*)));
    }

    void _zero(std::uint64_t from, std::uint64_t to) {
        for (std::uint64_t i = from; i < to; ++i) _data[i] = nullptr;
    }

    // A new block of `count` cells with the old contents and zero behind them.
    void _grow(std::uint64_t count) {
        T** cells = _allocate(count);
        std::uint64_t kept = _data ? _capacity : 0;
        for (std::uint64_t i = 0; i < count; ++i) cells[i] = i < kept ? _data[i] : nullptr;
        cell_pool_n::release(_data);
        _data = cells;
        _capacity = count;
    }

    std::uint64_t _capacity = 0;
    std::uint64_t _last = container_n::no_index;
    T** _data = nullptr;
};

// ---------------------------------------------------------------------------------------------
// value_list_item_ct<T>: one link of a value_list_ct, made only by the list's create_item.
template <class T> class value_list_ct;
template <class K, class T> class value_ptr_list_ct;

template <class T> class value_list_item_ct {
    friend class value_list_ct<T>;

  public:
    virtual ~value_list_item_ct() = default;
    value_list_item_ct(const value_list_item_ct&) = delete;
    value_list_item_ct& operator=(const value_list_item_ct&) = delete;

    T value;
    value_list_item_ct* next = nullptr;
    value_list_item_ct* prev = nullptr;

  protected:
    explicit value_list_item_ct(const T& item_value) : value(item_value) {}
};

template <class K, class T> class value_ptr_list_item_ct : public value_list_item_ct<K> {
    friend class value_ptr_list_ct<K, T>;

  public:
    T* pointer = nullptr;

  protected:
    value_ptr_list_item_ct(const K& key, T* item_pointer)
        : value_list_item_ct<K>(key), pointer(item_pointer) {}
};

// value_list_ct<T>: values by copy in a double chain, with a cursor that the walking operations
// move. Values compare with ==. The lock, when the creator gives one, is owned and held for the
// user of the list; no operation of the list takes it.
template <class T> class value_list_ct {
  public:
    using item_t = value_list_item_ct<T>;

    explicit value_list_ct(thl_crit_section_c* lock = nullptr) : _lock(lock) {}
    value_list_ct(const value_list_ct&) = delete;
    value_list_ct& operator=(const value_list_ct&) = delete;

    virtual item_t* create_item(const T& value) { return new item_t(value); }

    virtual ~value_list_ct() {
        _destroy_items();
        delete _lock;
    }

    // Destroys the items and keeps the lock.
    virtual void clear() {
        _destroy_items();
        _first = _last = _current = nullptr;
        _count = 0;
    }

    virtual std::uint64_t get_count() const { return _count; }

    // The position of the first item holding the value, which becomes current; all bits set
    // (cursor unchanged) when there is none.
    virtual std::uint64_t get_index(const T& value) {
        std::uint64_t index = 0;
        for (item_t* item = _first; item; item = item->next, ++index) {
            if (item->value == value) {
                _current = item;
                return index;
            }
        }
        return container_n::no_index;
    }

    // A cursor on the value stays; otherwise the cursor ends on the first match, or null.
    virtual bool find(const T& value) {
        if (_current && _current->value == value) return true;
        _current = _first;
        while (_current && !(_current->value == value)) _current = _current->next;
        return _current != nullptr;
    }

    virtual bool current(T& out) { return _give(_current, out); }
    virtual bool first(T& out) { return _give(_current = _first, out); }
    virtual bool last(T& out) { return _give(_current = _last, out); }

    // With from_value, `out` names the item to step from.
    virtual bool next(T& out, bool from_value) {
        if (!_step_origin(out, from_value)) return false;
        return _give(_current = _current->next, out);
    }

    virtual bool prev(T& out, bool from_value) {
        if (!_step_origin(out, from_value)) return false;
        return _give(_current = _current->prev, out);
    }

    // False at the first value that stands twice: the cursor is on its earlier item and `out`
    // holds it.
    virtual bool check_uniqueness(T& out) {
        for (item_t* a = _first; a; a = a->next) {
            for (item_t* b = a->next; b; b = b->next) {
                if (a->value == b->value) {
                    _current = a;
                    out = a->value;
                    return false;
                }
            }
        }
        return true;
    }

    // Destroys the current item; the cursor moves to its successor, which `more` and `out`
    // report.
    virtual bool remove_current(bool& more, T& out) {
        if (!_current) return false;
        item_t* following = _current->next;
        item_t* gone = _current;
        _unlink(gone);
        delete gone;
        _current = following;
        more = following != nullptr;
        if (following) out = following->value;
        return true;
    }

    virtual bool remove(const T& value) {
        if (!find(value)) return false;
        bool more = false;
        T out = value;
        return remove_current(more, out);
    }

    virtual void append(const T& value) { _append_item(create_item(value)); }
    virtual void insert(const T& value) { _insert_item(create_item(value)); }

    // The current item goes to the front or the end and stays current.
    virtual void move_current(bool to_front) {
        if (!_current) return;
        if (to_front ? _current == _first : _current == _last) return;
        item_t* moved = _current;
        _unlink(moved);
        if (to_front)
            _link_before(moved, _first);
        else
            _link_after(moved, _last);
        _current = moved;
    }

    // The item holding the value moves just before the cursor and becomes current. When the
    // value is not in the list the search leaves the cursor null, as find does.
    virtual void move_before_current(const T& value) {
        if (!_current || _current->value == value ||
            (_current->prev && _current->prev->value == value))
            return;
        item_t* anchor = _current;
        if (!find(value)) return;
        item_t* moved = _current;
        _unlink(moved);
        _link_before(moved, anchor);
        _current = moved;
    }

    virtual void move_after_current(const T& value) {
        if (!_current || _current->value == value ||
            (_current->next && _current->next->value == value))
            return;
        item_t* anchor = _current;
        if (!find(value)) return;
        item_t* moved = _current;
        _unlink(moved);
        _link_after(moved, anchor);
        _current = moved;
    }

    virtual void insert_before_current(const T& value) {
        if (_current) _insert_item_before_current(create_item(value));
    }

    virtual void insert_after_current(const T& value) {
        if (_current) _insert_item_after_current(create_item(value));
    }

    virtual bool set_current(const T& value) {
        if (!_current) return false;
        _current->value = value;
        return true;
    }

    // The lock given at construction, or null.
    thl_crit_section_c* get_lock() const { return _lock; }

  protected:
    static bool _give(item_t* item, T& out) {
        if (!item) return false;
        out = item->value;
        return true;
    }

    // Puts the cursor on the item to step from; false (cursor null) when there is none.
    bool _step_origin(const T& out, bool from_value) {
        if (!from_value) return _current != nullptr;
        if (_current && _current->value == out) return true;
        return find(out);
    }

    void _append_item(item_t* item) {
        _link_after(item, _last);
        _current = item;
    }

    void _insert_item(item_t* item) {
        _link_before(item, _first);
        _current = item;
    }

    void _insert_item_before_current(item_t* item) {
        _link_before(item, _current);
        _current = item;
    }

    void _insert_item_after_current(item_t* item) {
        _link_after(item, _current);
        _current = item;
    }

    // Links before `position`; a null position means the end of the list.
    void _link_before(item_t* item, item_t* position) {
        if (!position) {
            _link_after(item, _last);
            return;
        }
        item->next = position;
        item->prev = position->prev;
        (position->prev ? position->prev->next : _first) = item;
        position->prev = item;
        ++_count;
    }

    // Links after `position`; a null position is only given for an empty list.
    void _link_after(item_t* item, item_t* position) {
        item->prev = position;
        item->next = position ? position->next : nullptr;
        if (position) {
            (position->next ? position->next->prev : _last) = item;
            position->next = item;
        } else {
            item->next = _first;
            (_first ? _first->prev : _last) = item;
            _first = item;
        }
        ++_count;
    }

    void _unlink(item_t* item) {
        (item->prev ? item->prev->next : _first) = item->next;
        (item->next ? item->next->prev : _last) = item->prev;
        item->next = item->prev = nullptr;
        if (_current == item) _current = nullptr;
        --_count;
    }

    void _destroy_items() {
        for (item_t* item = _first; item;) {
            item_t* following = item->next;
            delete item;
            item = following;
        }
    }

    item_t* _first = nullptr;
    item_t* _last = nullptr;
    item_t* _current = nullptr;
    std::uint64_t _count = 0;
    thl_crit_section_c* _lock = nullptr;
};

// ---------------------------------------------------------------------------------------------
// value_ptr_list_ct<K,T>: a value list of keys, each with a pointer. The key operations of the
// base work as they are; the pointers are deleted only by clear_and_delete and remove_and_delete.
template <class K, class T> class value_ptr_list_ct : public value_list_ct<K> {
    using base_t = value_list_ct<K>;

  public:
    using item_t = value_list_item_ct<K>;
    using pair_t = value_ptr_list_item_ct<K, T>;

    explicit value_ptr_list_ct(thl_crit_section_c* lock = nullptr) : base_t(lock) {}

    item_t* create_item(const K& key) override { return new pair_t(key, nullptr); }

    // Takes the first item until the list is empty, deleting each pointer.
    virtual void clear_and_delete() {
        K key{};
        while (base_t::first(key)) {
            T* pointer = current_ptr();
            bool more = false;
            base_t::remove_current(more, key);
            delete pointer;
        }
    }

    virtual bool remove_and_delete(const K& key) {
        if (!base_t::find(key)) return false;
        delete _pair(this->_current)->pointer;
        _pair(this->_current)->pointer = nullptr;
        bool more = false;
        K out = key;
        return base_t::remove_current(more, out);
    }

    // Looks at the cursor's item only: equal to `pointer`, the cursor goes to the first item and
    // the result is 0; otherwise all bits set.
    virtual std::uint64_t get_index_of_ptr(T* pointer) {
        if (!this->_current || _pair(this->_current)->pointer != pointer)
            return container_n::no_index;
        this->_current = this->_first;
        return 0;
    }

    virtual T* current_ptr() { return _pointer_of(this->_current); }
    virtual T* first_ptr() { return _pointer_of(this->_current = this->_first); }
    virtual T* last_ptr() { return _pointer_of(this->_current = this->_last); }

    virtual T* next_ptr() {
        if (!this->_current) return nullptr;
        return _pointer_of(this->_current = this->_current->next);
    }

    virtual T* prev_ptr() {
        if (!this->_current) return nullptr;
        return _pointer_of(this->_current = this->_current->prev);
    }

    // The cursor's item first, then a scan that leaves the cursor on the match, or null.
    virtual T* find_ptr(T* pointer) {
        if (this->_current && _pair(this->_current)->pointer == pointer) return pointer;
        this->_current = this->_first;
        while (this->_current && _pair(this->_current)->pointer != pointer)
            this->_current = this->_current->next;
        return this->_current ? pointer : nullptr;
    }

    virtual T* set_current_ptr(T* pointer) {
        if (!this->_current) return nullptr;
        T* old = _pair(this->_current)->pointer;
        _pair(this->_current)->pointer = pointer;
        return old;
    }

    // Removes the item holding `pointer`, or with null the current item; the result is the
    // pointer of the new current item.
    virtual T* remove_ptr(T* pointer) {
        if (pointer && !find_ptr(pointer)) return nullptr;
        K key{};
        bool more = false;
        if (!base_t::remove_current(more, key)) return nullptr;
        return current_ptr();
    }

    virtual void move_before_ptr(T* pointer) { _move_beside(pointer, false); }

    // Tests the previous neighbour for the no-move case, as move_before_ptr does.
    virtual void move_after_ptr(T* pointer) { _move_beside(pointer, true); }

    virtual T* find_duplicate_ptr() {
        for (item_t* a = this->_first; a; a = a->next)
            for (item_t* b = a->next; b; b = b->next)
                if (_pair(a)->pointer == _pair(b)->pointer) return _pair(a)->pointer;
        return nullptr;
    }

    virtual pair_t* append_pair(const K& key, T* pointer) {
        pair_t* pair = _make(key, pointer);
        this->_append_item(pair);
        return pair;
    }

    virtual pair_t* insert_pair(const K& key, T* pointer) {
        pair_t* pair = _make(key, pointer);
        this->_insert_item(pair);
        return pair;
    }

    virtual void insert_pair_before_current(const K& key, T* pointer) {
        if (this->_current) this->_insert_item_before_current(_make(key, pointer));
    }

    virtual void insert_pair_after_current(const K& key, T* pointer) {
        if (this->_current) this->_insert_item_after_current(_make(key, pointer));
    }

    virtual T* find_key(const K& key) {
        return base_t::find(key) ? _pair(this->_current)->pointer : nullptr;
    }

    virtual bool find_key_of_ptr(T* pointer, K& key) {
        if (!find_ptr(pointer)) return false;
        key = this->_current->value;
        return true;
    }

    // Overwrites key and pointer of the current item; the result is the old pointer.
    virtual T* set_current_pair(const K& key, T* pointer) {
        if (!this->_current) return nullptr;
        T* old = _pair(this->_current)->pointer;
        this->_current->value = key;
        _pair(this->_current)->pointer = pointer;
        return old;
    }

  protected:
    static pair_t* _pair(item_t* item) { return static_cast<pair_t*>(item); }
    static T* _pointer_of(item_t* item) { return item ? _pair(item)->pointer : nullptr; }

    pair_t* _make(const K& key, T* pointer) {
        pair_t* pair = _pair(create_item(key));
        pair->pointer = pointer;
        return pair;
    }

    void _move_beside(T* pointer, bool after) {
        item_t* anchor = this->_current;
        if (!anchor || _pair(anchor)->pointer == pointer ||
            (anchor->prev && _pair(anchor->prev)->pointer == pointer))
            return;
        if (!find_ptr(pointer)) return;
        item_t* moved = this->_current;
        this->_unlink(moved);
        if (after)
            this->_link_after(moved, anchor);
        else
            this->_link_before(moved, anchor);
        this->_current = moved;
    }
};

// ---------------------------------------------------------------------------------------------
namespace container_n {

// Reads the element count of any ptr_list_c without a call, as the typed front needs it.
class ptr_list_count_reader_c : private ptr_list_c {
  public:
    ptr_list_count_reader_c() = delete;
    static std::uint64_t count(const ptr_list_c& list) {
        return list.*(&ptr_list_count_reader_c::_count);
    }
};

} // namespace container_n

// ptr_list_ct<T>: a typed front of a ptr_list_c made on the heap. It adds nothing to the list's
// meaning; remove_current_move_back, lock, unlock and replace_positions are reached on the list
// itself through get_list().
template <class T> class ptr_list_ct {
  public:
    using compare_t = int (*)(const void*, const void*);

    explicit ptr_list_ct(bool with_lock) : _list(new ptr_list_c(with_lock)) {}
    ptr_list_ct(const ptr_list_ct&) = delete;
    ptr_list_ct& operator=(const ptr_list_ct&) = delete;

    virtual ~ptr_list_ct() { delete _list; }

    // Removes the elements and leaves the records alone.
    virtual void clear() { _list->clear(); }

    // Removes every element and deletes its record.
    virtual void clear_and_delete() {
        while (T* record = first()) {
            _list->remove_current(record);
            delete record;
        }
    }

    virtual std::uint64_t get_count() const {
        return container_n::ptr_list_count_reader_c::count(*_list);
    }

    virtual std::size_t get_index(T* record) const { return _list->get_index(record); }
    virtual T* first() const { return _typed(_list->first()); }
    virtual T* last() const { return _typed(_list->last()); }
    virtual T* next(T* record) const { return _typed(_list->next(record)); }
    virtual T* prev(T* record) const { return _typed(_list->prev(record)); }
    virtual T* current() const { return _typed(_list->current()); }
    virtual void set_data(T* old_record, T* new_record) { _list->set_data(old_record, new_record); }
    virtual void sort(compare_t compare) { _list->sort(compare); }
    virtual T* remove_current(T* record) { return _typed(_list->remove_current(record)); }
    virtual T* find_data(T* record) const { return _typed(_list->find_data(record)); }
    virtual T* find_data(compare_t compare, void* context, search_direction_t direction) const {
        return _typed(_list->find_data(compare, context, direction));
    }
    virtual void append(T* record) { _list->append(record); }
    virtual void insert(T* record) { _list->insert(record); }
    virtual void move_current(bool to_front, T* record) { _list->move_current(to_front, record); }
    virtual void move_before_current(T* record) { _list->move_before_current(record); }
    virtual void move_after_current(T* record) { _list->move_after_current(record); }
    virtual void insert_before_current(T* record) { _list->insert_before_current(record); }
    virtual void insert_after_current(T* record) { _list->insert_after_current(record); }

    ptr_list_c* get_list() const { return _list; }

  protected:
    static T* _typed(const void* data) { return static_cast<T*>(const_cast<void*>(data)); }

    ptr_list_c* _list;
};

// ---------------------------------------------------------------------------------------------
// utl_hash_base_ct<T,K>: names to data in `size` + 1 buckets, each a list T of named data (a
// ptr_string_list_c), the last bucket for null names. The key of a name is the additive sum of
// its bytes plus its length, modulo the size: cheap for the short ids it serves. The table never
// grows or rehashes; long chains are the price of a full table. The range of used buckets and a
// cursor bucket make the walks of first, next, prev and last. K is the data type handed out.
// Nothing is locked here; the lock, when there is one, is for the hash's user.
template <class T, class K> class utl_hash_base_ct {
  public:
    static constexpr std::uint64_t none = container_n::no_index;

    // A size below 10 is raised to 10.
    utl_hash_base_ct(std::uint64_t size, bool case_sensitive)
        : _case_sensitive(case_sensitive), _size(size < 10 ? 10 : size) {
        _table = new T*[_size + 1];
        for (std::uint64_t i = 0; i <= _size; ++i) _table[i] = new T(false);
    }
    utl_hash_base_ct(const utl_hash_base_ct&) = delete;
    utl_hash_base_ct& operator=(const utl_hash_base_ct&) = delete;

    virtual ~utl_hash_base_ct() {
        for (std::uint64_t i = 0; i <= _size; ++i) delete _table[i];
        delete[] _table;
        delete lock;
    }

    virtual void clear() {
        for (std::uint64_t i = 0; i <= _size; ++i) _table[i]->clear();
        _count = 0;
        _first_used = _last_used = _current = none;
    }

    virtual const char* get_current_name(K data) {
        if (data) _update_current(data);
        if (_count == 0 || _current == none) return nullptr;
        return _table[_current]->get_current_name(nullptr);
    }

    virtual K current() const {
        if (_count == 0 || _current == none) return nullptr;
        return _typed(_table[_current]->current());
    }

    virtual K first() {
        if (_count == 0) return nullptr;
        _current = _first_used;
        return _typed(_table[_current]->first());
    }

    virtual K last() {
        if (_count == 0) return nullptr;
        _current = _last_used;
        return _typed(_table[_current]->last());
    }

    virtual K next(K data) {
        if (_count == 0) return nullptr;
        if (data) _update_current(data);
        if (_current == none) return nullptr;
        if (const void* found = _table[_current]->next(nullptr)) return _typed(found);
        for (std::uint64_t bucket = _current + 1; bucket <= _last_used; ++bucket) {
            if (const void* found = _table[bucket]->first()) {
                _current = bucket;
                return _typed(found);
            }
        }
        _current = none;
        return nullptr;
    }

    virtual K prev(K data) {
        if (_count == 0) return nullptr;
        if (data) _update_current(data);
        if (_current == none) return nullptr;
        if (const void* found = _table[_current]->prev(nullptr)) return _typed(found);
        for (std::uint64_t bucket = _current; bucket-- > _first_used;) {
            if (const void* found = _table[bucket]->last()) {
                _current = bucket;
                return _typed(found);
            }
        }
        _current = none;
        return nullptr;
    }

    // Removes the entry at the cursor (or `data`'s); gives the entry that follows it in the walk
    // of next, or null. The range of used buckets shrinks at its ends as they empty.
    virtual K remove_current(K data) {
        if (data) _update_current(data);
        if (_current == none) return nullptr;
        const void* following = _table[_current]->remove_current(data);
        --_count;
        if (following) return _typed(following);
        if (_count == 0) {
            _first_used = _last_used = _current = none;
            return nullptr;
        }
        if (_current > _first_used && _current < _last_used) {
            for (++_current; _current <= _last_used; ++_current)
                if (_bucket_count(_current) > 0) return _typed(_table[_current]->first());
            _current = none;
            return nullptr;
        }
        if (_current == _first_used) {
            while (_first_used < _last_used && _bucket_count(_first_used) == 0) ++_first_used;
            _current = _first_used;
            return _typed(_table[_current]->first());
        }
        _current = none;
        while (_last_used > _first_used && _bucket_count(_last_used) == 0) --_last_used;
        return nullptr;
    }

    // The data itself when the hash holds it; the cursor's bucket is asked first.
    virtual K find_data(K data) {
        if (_count == 0 || !data) return nullptr;
        if (_current != none && _table[_current]->current() == data) return data;
        for (std::uint64_t bucket = _first_used; bucket <= _last_used; ++bucket) {
            if (const void* found = _table[bucket]->find(static_cast<const void*>(data))) {
                _current = bucket;
                return _typed(found);
            }
        }
        _current = none;
        return nullptr;
    }

    // A bucket outside the used range gives null without a search.
    virtual K find(const char* name) {
        if (_count == 0) return nullptr;
        std::uint64_t bucket = _get_key(name);
        if (bucket < _first_used || bucket > _last_used) {
            _current = none;
            return nullptr;
        }
        const void* found = _table[bucket]->find(name, _case_sensitive);
        _current = found ? bucket : none;
        return _typed(found);
    }

    // Asks every used bucket below the null names' one, up to the first with a name twice, but
    // tells nobody: the result is null in all cases.
    virtual const char* check_names_uniqueness() {
        if (_count == 0) return nullptr;
        for (std::uint64_t bucket = _first_used; bucket <= _last_used && bucket < _size; ++bucket)
            if (_table[bucket]->check_names_uniqueness()) break;
        return nullptr;
    }

    // Calls `callback(data, context)` for each entry named `name`, up to the first true; gives
    // that entry's data, or null.
    virtual K travel_by(const char* name, bool (*callback)(K data, void* context), void* context) {
        if (_count == 0) return nullptr;
        std::uint64_t bucket = _get_key(name);
        if (bucket < _first_used || bucket > _last_used) return nullptr;
        T& list = *_table[bucket];
        for (const void* data = list.first(); data; data = list.next(nullptr)) {
            if (_same_name(list.get_current_name(nullptr), name) && callback(_typed(data), context))
                return _typed(data);
        }
        return nullptr;
    }

    // Duplicates are not looked for.
    virtual void append(const char* name, K data) {
        std::uint64_t bucket = _get_key(name);
        _table[bucket]->append(name, data);
        _update_encrease(bucket);
    }

    virtual void insert(const char* name, K data) {
        std::uint64_t bucket = _get_key(name);
        _table[bucket]->insert(name, data);
        _update_encrease(bucket);
    }

    std::uint64_t get_count() const { return _count; }
    std::uint64_t get_size() const { return _size; }
    std::uint64_t first_used() const { return _first_used; }
    std::uint64_t last_used() const { return _last_used; }
    std::uint64_t current_bucket() const { return _current; }
    // The bucket of a name: null names live in the extra one, index `size`.
    std::uint64_t key_of(const char* name) const { return _get_key(name); }

    thl_crit_section_c* lock = nullptr; // owned; null in the message store

  protected:
    std::uint64_t _get_key(const char* name) const {
        if (!name) return _size;
        return (_calculate_convolution(name) + std::strlen(name)) % _size;
    }

    // The sum of the bytes taken as signed chars, so that bytes of 0x80 and above subtract;
    // folded to lower case first when case is ignored.
    std::uint64_t _calculate_convolution(const char* name) const {
        if (!name) return 0;
        std::uint64_t sum = 0;
        for (const char* p = name; *p; ++p) {
            auto byte = static_cast<unsigned char>(*p);
            if (!_case_sensitive) byte = static_cast<unsigned char>(std::tolower(byte));
            sum += static_cast<std::uint64_t>(
                static_cast<std::int64_t>(static_cast<signed char>(byte)));
        }
        return sum;
    }

    // The new entry's bucket becomes current and widens the range of used buckets.
    void _update_encrease(std::uint64_t bucket) {
        _current = bucket;
        if (_count == 0) {
            _first_used = _last_used = bucket;
        } else {
            if (bucket < _first_used) _first_used = bucket;
            if (bucket > _last_used) _last_used = bucket;
        }
        ++_count;
    }

    void _update_current(K data) {
        if (data && (_current == none || _table[_current]->current() != data)) find_data(data);
    }

  private:
    static K _typed(const void* data) { return static_cast<K>(data); }
    std::uint64_t _bucket_count(std::uint64_t bucket) const {
        return container_n::ptr_list_count_reader_c::count(*_table[bucket]);
    }
    bool _same_name(const char* a, const char* b) const {
        if (!a || !b) return a == b;
        return _case_sensitive ? std::strcmp(a, b) == 0 : os::_stricmp(a, b) == 0;
    }

    bool _case_sensitive;
    std::uint64_t _count = 0;
    std::uint64_t _size;
    T** _table;
    std::uint64_t _first_used = none;
    std::uint64_t _last_used = none;
    std::uint64_t _current = none;
};
