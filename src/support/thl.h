// thl: the list with a built-in cursor, the locks, the shared counter and the mixed helpers that
// every layer of the library stands on.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <mutex>
#include <shared_mutex>

enum search_direction_t { search_forward = 0, search_backward = 1 };
enum thl_list_add_element_t { thl_add_before_current = 0, thl_add_after_current = 1 };

// One link of a ptr_list_c. Derived elements add their own fields after these three; the list
// destroys an element through the virtual destructor, which must stay the first virtual.
class ptr_list_element_c {
    friend class ptr_list_c;

  protected:
    virtual ~ptr_list_element_c() = default;

  public:
    explicit ptr_list_element_c(const void* element_data) : data(element_data) {}
    ptr_list_element_c(const ptr_list_element_c&) = delete;
    ptr_list_element_c& operator=(const ptr_list_element_c&) = delete;

    ptr_list_element_c* next = nullptr;
    ptr_list_element_c* prev = nullptr;
    const void* data;
};

// A double chain of user pointers with a cursor. The fields are read by derived lists, and the
// order of the virtual operations is relied on by the typed fronts: keep both as they stand.
// With a lock, every single operation is atomic; a sequence needs lock() and unlock(), which
// nest with the list's own operations on the same thread.
class ptr_list_c {
  protected:
    virtual void _sort_protection_enter();
    virtual void _sort_protection_leave();

  public:
    explicit ptr_list_c(bool with_lock);
    ptr_list_c(const ptr_list_c& other);
    ptr_list_c& operator=(const ptr_list_c&) = delete;
    virtual ~ptr_list_c();

    virtual ptr_list_c* copy() const;
    virtual const void* first() const;
    virtual const void* last() const;
    virtual const void* next(const void* data) const;
    virtual const void* prev(const void* data) const;
    virtual const void* current() const;
    virtual void set_data(const void* old_data, const void* new_data);
    virtual void sort(int (*compare)(const void*, const void*));
    virtual const void* remove_current(const void* data);
    virtual const void* remove_current_move_back(const void* data);
    virtual const void* find_data(const void* data) const;
    virtual const void* find_data(int (*compare)(const void*, const void*), void* context,
                                  search_direction_t direction) const;
    virtual void append(const void* data);
    virtual void insert(const void* data);
    virtual void move_current(bool to_front, const void* data);
    virtual void move_before_current(const void* data);
    virtual void move_after_current(const void* data);
    virtual void insert_before_current(const void* data);
    virtual void insert_after_current(const void* data);
    virtual void clear();
    virtual void lock() const;
    virtual void unlock() const;
    virtual bool replace_positions(ptr_list_c* other, const void* data,
                                   thl_list_add_element_t where);

    std::size_t get_index(const void* data) const;
    void set_list_name(const char* name);

  protected:
    void _append(ptr_list_element_c* element);
    void _insert(ptr_list_element_c* element);
    void _insert_before_current(ptr_list_element_c* element);
    void _insert_after_current(ptr_list_element_c* element);
    void _update_current(const void* data) const;

    ptr_list_element_c* _first = nullptr;
    ptr_list_element_c* _last = nullptr;
    mutable ptr_list_element_c* _current = nullptr;
    std::uint64_t _count = 0;
    const char* _list_name = nullptr;
    std::recursive_mutex* _lock;

  private:
    class guard_c;
    ptr_list_element_c* _find_element(const void* data) const;
    ptr_list_element_c* _element_or_current(const void* data) const;
    void _unlink(ptr_list_element_c* element);
    void _link_before(ptr_list_element_c* element, ptr_list_element_c* position);
    void _link_after(ptr_list_element_c* element, ptr_list_element_c* position);
    static void _destroy(ptr_list_element_c* element) { delete element; }
};

// A mutual exclusion object; a thread may enter it again while it holds it.
class thl_crit_section_c {
  public:
    explicit thl_crit_section_c(bool unused = false);
    virtual ~thl_crit_section_c() = default;
    thl_crit_section_c(const thl_crit_section_c&) = delete;
    thl_crit_section_c& operator=(const thl_crit_section_c&) = delete;

    void enter() { _mutex.lock(); }
    void leave() { _mutex.unlock(); }

  private:
    std::recursive_mutex _mutex;
};

// Holds a critical section for its lifetime; a null section holds nothing.
class thl_lock_c {
  public:
    explicit thl_lock_c(thl_crit_section_c* section) : _section(section) {
        if (_section) _section->enter();
    }
    ~thl_lock_c() {
        if (_section) _section->leave();
    }
    thl_lock_c(const thl_lock_c&) = delete;
    thl_lock_c& operator=(const thl_lock_c&) = delete;

  private:
    thl_crit_section_c* _section;
};

// A readers-writer lock.
class single_writer_multi_reader_c {
    friend class single_writer_lock_c;
    friend class multi_reader_lock_c;

  public:
    single_writer_multi_reader_c() = default;
    virtual ~single_writer_multi_reader_c() = default;
    single_writer_multi_reader_c(const single_writer_multi_reader_c&) = delete;
    single_writer_multi_reader_c& operator=(const single_writer_multi_reader_c&) = delete;

  private:
    std::shared_mutex _mutex;
};

class single_writer_lock_c {
  public:
    explicit single_writer_lock_c(single_writer_multi_reader_c& lock) : _lock(lock) {
        _lock._mutex.lock();
    }
    ~single_writer_lock_c() { _lock._mutex.unlock(); }
    single_writer_lock_c(const single_writer_lock_c&) = delete;
    single_writer_lock_c& operator=(const single_writer_lock_c&) = delete;

  private:
    single_writer_multi_reader_c& _lock;
};

// The read side. A thread that already reads under the lock reads on without asking again:
// a second request of the same thread could otherwise wait behind a writer that waits for the
// first, whichever way the system's lock orders them. The locks a thread reads under are kept
// per thread.
class multi_reader_lock_c {
  public:
    explicit multi_reader_lock_c(single_writer_multi_reader_c& lock) : _lock(lock) {
        if (_enter(&lock)) _lock._mutex.lock_shared();
    }
    ~multi_reader_lock_c() {
        if (_leave(&_lock)) _lock._mutex.unlock_shared();
    }
    multi_reader_lock_c(const multi_reader_lock_c&) = delete;
    multi_reader_lock_c& operator=(const multi_reader_lock_c&) = delete;

  private:
    // Whether this is the thread's first hold of `lock`, which then takes the system's lock;
    // whether the last hold ends, which then lets it go.
    static bool _enter(const single_writer_multi_reader_c* lock);
    static bool _leave(const single_writer_multi_reader_c* lock);

    single_writer_multi_reader_c& _lock;
};

// A counter that is safe across threads; both steps return the new value.
class thl_ref_counter_c {
  public:
    thl_ref_counter_c() = default;
    ~thl_ref_counter_c() = default;
    thl_ref_counter_c(const thl_ref_counter_c&) = delete;
    thl_ref_counter_c& operator=(const thl_ref_counter_c&) = delete;

    int increase(int step) { return _value.fetch_add(step) + step; }
    int decrease(int step) { return _value.fetch_sub(step) - step; }
    int value() const { return _value.load(); }

  private:
    std::atomic<int> _value{0};
};

namespace mix_n {
extern const char* const True;
extern const char* const False;

void sleep(int milliseconds);
bool localtime_r(const std::int64_t* time, std::tm* result);
// Accepts an optional sign and decimal digits, or "0x" and hexadecimal digits, with blanks
// around. Without '-' the value may reach 0xFFFFFFFFFFFFFFFF, stored with the sign bit set.
bool parse_formatted_integer_string(const char* text, std::int64_t& result);
} // namespace mix_n
