// String collections: ptr_string_list_c, a ptr_list_c whose elements carry an owned name beside
// their data; string_list_c, the same list with the names as its whole content; and
// string_array_c, owned strings in an array_ct<char>.
#pragma once

#include "support/thl.h"
#include "utl/container_temp.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>

// An element with an owned name, which may be null. Made only by ptr_string_list_c; the list
// destroys it through the virtual destructor, which frees the name.
class ptr_string_list_element_c : public ptr_list_element_c {
    friend class ptr_string_list_c;

  public:
    const char* get_name() const { return _name; }
    std::uint64_t get_name_length() const { return _name_length; }

  protected:
    ~ptr_string_list_element_c() override;

  private:
    explicit ptr_string_list_element_c(const void* element_data)
        : ptr_list_element_c(element_data) {}

    // A null name frees the old one. A name that fits the stored length is copied into the old
    // buffer; otherwise a new copy is made. The stored length is always the new one.
    void _set_name(const char* name, bool round);

    char* _name = nullptr;
    std::uint64_t _name_length = 0;
};

class ptr_string_list_c : public ptr_list_c {
  public:
    explicit ptr_string_list_c(bool with_lock, bool round_names = false);
    ptr_string_list_c(const ptr_string_list_c&) = delete;
    ptr_string_list_c& operator=(const ptr_string_list_c&) = delete;

    ~ptr_string_list_c() override;
    // A new list with the same names and data, the same list name, and a lock if this one has
    // one. The walk leaves this list's cursor off the end.
    ptr_list_c* copy() const override;
    // The data-only forms add nameless elements.
    void append(const void* data) override;
    void insert(const void* data) override;
    void move_before_current(const void* data) override;
    void move_after_current(const void* data) override;
    void insert_before_current(const void* data) override;
    void insert_after_current(const void* data) override;

    // With data, the element holding it becomes current first.
    virtual const char* get_current_name(const void* data);
    virtual void set_name(const char* name, const void* data);
    virtual bool check_all_names_presence() const;
    // The first name that stands twice, or null; nameless elements are skipped.
    virtual const char* check_names_uniqueness() const;
    // With a name, the first element of that name; with null, the first nameless one. The match
    // becomes current. All bits set when there is none.
    virtual std::size_t get_index(const char* name);
    // Modes 0-2 ascending by bytes, by _stricmp, by _stricmp then bytes, nameless last; 3-5 the
    // same descending, nameless first. Other modes do nothing.
    virtual void sort_by_names(int mode);
    virtual bool is_sorted_by_names(int mode);
    // The cursor's element first, then a walk over the names of the same length.
    virtual const void* find(const char* name, bool case_sensitive) const;
    virtual const void* find(const void* data) const;
    virtual void append(const char* name, const void* data);
    virtual void insert(const char* name, const void* data);
    // The element of that name moves beside the cursor and becomes current; when nothing
    // moves the cursor stays where it was.
    virtual void move_before_current(const char* name);
    virtual void move_after_current(const char* name);
    // Nothing is made when there is no current element.
    virtual void insert_before_current(const char* name, const void* data);
    virtual void insert_after_current(const char* name, const void* data);
    // Writes every name to standard error; returns the count field.
    virtual std::uint64_t print_names();
    // These write to standard error only in a console application.
    virtual void print_curr_name(const void* data);
    virtual void print_next_name(const void* data);
    virtual void print_prev_name(const void* data);

  protected:
    ptr_string_list_element_c* _current_element() const {
        return static_cast<ptr_string_list_element_c*>(_current);
    }
    ptr_string_list_element_c* _make(const char* name, const void* data) const;
    // The walk of find: sets the cursor on a match and returns the element, or null.
    ptr_string_list_element_c* _find_element_by_name(const char* name, bool case_sensitive) const;
    void _move_beside_current(const char* name, bool after);

    // The texts of the print_ operations, written to `out`.
    std::uint64_t _write_names(std::FILE* out) const;
    void _write_curr_name(std::FILE* out) const;
    void _write_next_name(std::FILE* out) const;
    void _write_prev_name(std::FILE* out) const;

    bool _round_names;
};

// Names only: every element has the data word 1. Walking operations give the current name.
class string_list_c : private ptr_string_list_c {
  public:
    explicit string_list_c(bool with_lock);

    using ptr_string_list_c::check_names_uniqueness;
    using ptr_string_list_c::clear;
    using ptr_string_list_c::lock;
    using ptr_string_list_c::unlock;

    virtual std::uint64_t get_count();
    // The stored name, which becomes current, or null.
    virtual const char* find(const char* name, bool case_sensitive);
    virtual const char* first();
    virtual const char* last();
    virtual const char* next();
    virtual const char* prev();
    // Removes the element of that name (null: the current one) and gives the name of the
    // element that follows it. A cursor on a different name refuses at once.
    virtual const char* remove(const char* name);
    virtual void insert(const char* name);
    virtual void append(const char* name);

  private:
    // The base's forms stay reachable to this class only.
    using ptr_string_list_c::append;
    using ptr_string_list_c::find;
    using ptr_string_list_c::first;
    using ptr_string_list_c::insert;
    using ptr_string_list_c::last;
    using ptr_string_list_c::next;
    using ptr_string_list_c::prev;

    const char* _current_name() const;
};

// Owned strings in an array_ct<char>: texts added are copies made by utl_n::str_copy, or
// pointers handed over with add_no_copy.
class string_array_c {
  public:
    string_array_c();
    // A copy of every non-null entry of `other`.
    string_array_c(const string_array_c& other);
    string_array_c& operator=(const string_array_c&) = delete;

    virtual ~string_array_c();
    // Frees every string, last to first; the cells stay allocated.
    virtual void clear();
    virtual const char* find(const char* text) const;
    virtual std::uint64_t find_index(const char* text) const;
    virtual const char* add(const char* text);
    virtual char* add_no_copy(char* text);
    // The text leaves the array; the caller owns it.
    virtual char* remove(std::uint64_t index);
    virtual char* remove(const char* text);
    virtual bool remove_and_delete(std::uint64_t index);
    virtual bool remove_and_delete(const char* text);
    virtual bool is_empty() const;
    virtual std::uint64_t count_of(const char* text) const;

    // With the array's bounds message for a bad index.
    const char* at(std::uint64_t index) const { return _array->at(index); }
    // The number of strings; callers walk with it and at().
    std::uint64_t get_count() const { return _array->get_count(); }

  protected:
    array_ct<char>* _array;
};
