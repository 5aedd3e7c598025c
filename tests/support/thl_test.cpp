// thl: the list with a cursor, the locks, the counter and the mixed helpers.
#include "support/thl.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <climits>
#include <cstdint>
#include <ctime>
#include <iterator>
#include <new>
#include <set>
#include <thread>
#include <type_traits>
#include <vector>

using namespace std::chrono_literals;

namespace {

// Reads the fields of the list as derived lists do, and reaches the protected operations.
class probe_list_c : public ptr_list_c {
  public:
    explicit probe_list_c(bool with_lock = false) : ptr_list_c(with_lock) {}
    probe_list_c(const probe_list_c& other) = default;

    ptr_list_element_c* first_element() const { return _first; }
    ptr_list_element_c* last_element() const { return _last; }
    ptr_list_element_c* current_element() const { return _current; }
    std::uint64_t count() const { return _count; }
    const char* list_name() const { return _list_name; }
    bool has_lock() const { return _lock != nullptr; }

    using ptr_list_c::_append;
    using ptr_list_c::_insert;
    using ptr_list_c::_insert_after_current;
    using ptr_list_c::_insert_before_current;
    using ptr_list_c::_update_current;

    // The fields in the order in which derived lists find them.
    bool fields_in_order() const {
        static_assert(std::is_same_v<decltype(_first), ptr_list_element_c*>);
        static_assert(std::is_same_v<decltype(_last), ptr_list_element_c*>);
        static_assert(std::is_same_v<std::remove_cv_t<decltype(_current)>, ptr_list_element_c*>);
        static_assert(std::is_same_v<decltype(_count), std::uint64_t>);
        static_assert(std::is_same_v<decltype(_list_name), const char*>);
        static_assert(std::is_pointer_v<decltype(_lock)>);
        const void* order[] = {&_first, &_last, &_current, &_count, &_list_name, &_lock};
        for (std::size_t i = 1; i < std::size(order); ++i)
            if (!(static_cast<const char*>(order[i - 1]) < static_cast<const char*>(order[i])))
                return false;
        return true;
    }

    // The data pointers from first to last, without touching the cursor.
    std::vector<const void*> contents() const {
        std::vector<const void*> items;
        for (ptr_list_element_c* e = _first; e; e = e->next) items.push_back(e->data);
        return items;
    }

    // The chain is whole: links agree both ways, the ends and the count are right, and the
    // cursor, when set, is one of the elements.
    ::testing::AssertionResult chain_is_whole() const {
        std::uint64_t n = 0;
        bool cursor_found = _current == nullptr;
        ptr_list_element_c* before = nullptr;
        for (ptr_list_element_c* e = _first; e; before = e, e = e->next, ++n) {
            if (e->prev != before)
                return ::testing::AssertionFailure() << "prev link broken at " << n;
            if (e == _current) cursor_found = true;
            if (n > _count + 1) return ::testing::AssertionFailure() << "chain longer than count";
        }
        if (before != _last)
            return ::testing::AssertionFailure() << "last is not the end of the chain";
        if (n != _count)
            return ::testing::AssertionFailure()
                   << "count " << _count << " but " << n << " elements";
        if (!cursor_found) return ::testing::AssertionFailure() << "cursor outside the chain";
        return ::testing::AssertionSuccess();
    }
};

// An element made by a derived list; it counts its destructions.
class counted_element_c : public ptr_list_element_c {
  public:
    counted_element_c(const void* element_data, int* destroyed)
        : ptr_list_element_c(element_data), _destroyed(destroyed) {}

  protected:
    ~counted_element_c() override { ++*_destroyed; }

  private:
    int* _destroyed;
};

// Ten distinct data pointers; the value of each is its index.
struct values_s {
    int v[10] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    const void* operator[](int i) const { return &v[i]; }
};

std::vector<const void*> items(std::initializer_list<const void*> list) { return list; }

void fill(ptr_list_c& list, const values_s& values, int n) {
    for (int i = 0; i < n; ++i) list.append(values[i]);
}

int value_of(const void* data) { return *static_cast<const int*>(data); }

// Waits until `flag` is set, for up to two seconds.
bool wait_for(const std::atomic<bool>& flag) {
    for (int i = 0; i < 2000 && !flag.load(); ++i) std::this_thread::sleep_for(1ms);
    return flag.load();
}

} // namespace

// ---- layout

TEST(ptr_list_layout, list_fields_stand_in_the_order_derived_lists_read_them) {
    probe_list_c list;
    EXPECT_TRUE(list.fields_in_order());
}

TEST(ptr_list_layout, element_fields_are_next_prev_data_in_that_order) {
    int x = 0;
    probe_list_c probe;
    probe.append(&x);
    ptr_list_element_c* e = probe.first_element();
    ASSERT_NE(e, nullptr);
    const char* next_at = reinterpret_cast<const char*>(&e->next);
    const char* prev_at = reinterpret_cast<const char*>(&e->prev);
    const char* data_at = reinterpret_cast<const char*>(&e->data);
    EXPECT_LT(next_at, prev_at);
    EXPECT_LT(prev_at, data_at);
    // The virtual table comes first, so the fields do not start the object.
    EXPECT_GT(next_at, reinterpret_cast<const char*>(e));
    EXPECT_EQ(e->data, &x);
    EXPECT_EQ(e->next, nullptr);
    EXPECT_EQ(e->prev, nullptr);
}

TEST(ptr_list_layout, lock_is_set_exactly_when_made_with_true) {
    probe_list_c with(true), without(false);
    EXPECT_TRUE(with.has_lock());
    EXPECT_FALSE(without.has_lock());
}

TEST(ptr_list_layout, new_list_is_empty) {
    probe_list_c list;
    EXPECT_EQ(list.first_element(), nullptr);
    EXPECT_EQ(list.last_element(), nullptr);
    EXPECT_EQ(list.current_element(), nullptr);
    EXPECT_EQ(list.count(), 0u);
    EXPECT_EQ(list.list_name(), nullptr);
}

// ---- cursor

TEST(ptr_list_cursor, empty_list_gives_null_everywhere) {
    const probe_list_c list;
    EXPECT_EQ(list.first(), nullptr);
    EXPECT_EQ(list.last(), nullptr);
    EXPECT_EQ(list.current(), nullptr);
    EXPECT_EQ(list.next(nullptr), nullptr);
    EXPECT_EQ(list.prev(nullptr), nullptr);
    int x = 0;
    EXPECT_EQ(list.next(&x), nullptr);
    EXPECT_EQ(list.prev(&x), nullptr);
    EXPECT_EQ(list.current_element(), nullptr);
}

TEST(ptr_list_cursor, first_and_last_move_the_cursor_of_a_const_list) {
    values_s v;
    probe_list_c list;
    fill(list, v, 3);
    const ptr_list_c& view = list;
    EXPECT_EQ(view.first(), v[0]);
    EXPECT_EQ(list.current_element(), list.first_element());
    EXPECT_EQ(view.current(), v[0]);
    EXPECT_EQ(view.last(), v[2]);
    EXPECT_EQ(list.current_element(), list.last_element());
    EXPECT_EQ(view.current(), v[2]);
}

TEST(ptr_list_cursor, next_with_null_walks_from_the_cursor_to_past_the_end) {
    values_s v;
    probe_list_c list;
    fill(list, v, 3);
    ASSERT_EQ(list.first(), v[0]);
    EXPECT_EQ(list.next(nullptr), v[1]);
    EXPECT_EQ(list.current(), v[1]);
    EXPECT_EQ(list.next(nullptr), v[2]);
    EXPECT_EQ(list.next(nullptr), nullptr);
    EXPECT_EQ(list.current(), nullptr);
    EXPECT_EQ(list.current_element(), nullptr);
    // Past the end the cursor stays off the list.
    EXPECT_EQ(list.next(nullptr), nullptr);
    EXPECT_EQ(list.prev(nullptr), nullptr);
    EXPECT_EQ(list.current(), nullptr);
}

TEST(ptr_list_cursor, prev_with_null_walks_backwards_to_past_the_start) {
    values_s v;
    probe_list_c list;
    fill(list, v, 3);
    ASSERT_EQ(list.last(), v[2]);
    EXPECT_EQ(list.prev(nullptr), v[1]);
    EXPECT_EQ(list.prev(nullptr), v[0]);
    EXPECT_EQ(list.current(), v[0]);
    EXPECT_EQ(list.prev(nullptr), nullptr);
    EXPECT_EQ(list.current(), nullptr);
    EXPECT_EQ(list.prev(nullptr), nullptr);
}

TEST(ptr_list_cursor, walk_loop_with_next_null_visits_every_element_once) {
    values_s v;
    probe_list_c list;
    fill(list, v, 10);
    std::vector<const void*> seen;
    for (const void* d = list.first(); d; d = list.next(nullptr)) seen.push_back(d);
    EXPECT_EQ(seen, list.contents());
    std::vector<const void*> back;
    for (const void* d = list.last(); d; d = list.prev(nullptr)) back.push_back(d);
    ASSERT_EQ(back.size(), 10u);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(back[static_cast<std::size_t>(i)], v[9 - i]);
}

TEST(ptr_list_cursor, next_with_data_steps_from_that_element_wherever_the_cursor_is) {
    values_s v;
    probe_list_c list;
    fill(list, v, 4);
    ASSERT_EQ(list.last(), v[3]);
    EXPECT_EQ(list.next(v[0]), v[1]);
    EXPECT_EQ(list.current(), v[1]);
    EXPECT_EQ(list.next(v[2]), v[3]);
    EXPECT_EQ(list.current(), v[3]);
    // With the cursor moved by someone else meanwhile.
    list.first();
    EXPECT_EQ(list.next(v[2]), v[3]);
}

TEST(ptr_list_cursor, prev_with_data_steps_from_that_element_wherever_the_cursor_is) {
    values_s v;
    probe_list_c list;
    fill(list, v, 4);
    ASSERT_EQ(list.first(), v[0]);
    EXPECT_EQ(list.prev(v[3]), v[2]);
    EXPECT_EQ(list.current(), v[2]);
    EXPECT_EQ(list.prev(v[1]), v[0]);
    EXPECT_EQ(list.current(), v[0]);
}

TEST(ptr_list_cursor, next_and_prev_with_data_past_the_ends_give_null_and_clear_the_cursor) {
    values_s v;
    probe_list_c list;
    fill(list, v, 3);
    list.first();
    EXPECT_EQ(list.next(v[2]), nullptr);
    EXPECT_EQ(list.current(), nullptr);
    list.last();
    EXPECT_EQ(list.prev(v[0]), nullptr);
    EXPECT_EQ(list.current(), nullptr);
}

TEST(ptr_list_cursor, next_and_prev_with_data_not_in_the_list_give_null_and_clear_the_cursor) {
    values_s v;
    int stranger = 99;
    probe_list_c list;
    fill(list, v, 3);
    list.first();
    EXPECT_EQ(list.next(&stranger), nullptr);
    EXPECT_EQ(list.current(), nullptr);
    list.last();
    EXPECT_EQ(list.prev(&stranger), nullptr);
    EXPECT_EQ(list.current(), nullptr);
    EXPECT_TRUE(list.chain_is_whole());
    EXPECT_EQ(list.count(), 3u);
}

TEST(ptr_list_cursor, repeated_data_steps_from_the_cursor_when_it_stands_on_it) {
    values_s v;
    probe_list_c list;
    // a b a c
    list.append(v[0]);
    list.append(v[1]);
    list.append(v[0]);
    list.append(v[2]);
    // Cursor on the second a: next steps from there.
    list.last();
    ASSERT_EQ(list.prev(nullptr), v[0]);
    EXPECT_EQ(list.next(v[0]), v[2]);
    // Cursor elsewhere: the first a is taken.
    list.first();
    list.next(nullptr);
    EXPECT_EQ(list.next(v[0]), v[1]);
}

TEST(ptr_list_cursor, update_current_puts_the_cursor_on_the_element_with_the_data) {
    values_s v;
    probe_list_c list;
    fill(list, v, 4);
    list.first();
    list._update_current(v[2]);
    EXPECT_EQ(list.current(), v[2]);
    EXPECT_EQ(list.current_element()->data, v[2]);
    EXPECT_EQ(list.next(nullptr), v[3]);
    list._update_current(v[0]);
    EXPECT_EQ(list.current_element(), list.first_element());
}

TEST(ptr_list_cursor, set_data_replaces_the_data_of_the_element_and_keeps_its_place) {
    values_s v;
    probe_list_c list;
    fill(list, v, 3);
    list.set_data(v[1], v[7]);
    EXPECT_EQ(list.contents(), items({v[0], v[7], v[2]}));
    EXPECT_EQ(list.count(), 3u);
}

TEST(ptr_list_cursor, find_data_finds_and_makes_current) {
    values_s v;
    int stranger = 99;
    probe_list_c list;
    fill(list, v, 4);
    list.first();
    EXPECT_EQ(list.find_data(v[2]), v[2]);
    EXPECT_EQ(list.current(), v[2]);
    EXPECT_EQ(list.find_data(&stranger), nullptr);
    EXPECT_EQ(list.contents(), items({v[0], v[1], v[2], v[3]}));
}

TEST(ptr_list_cursor, find_data_with_comparator_searches_in_the_direction_given) {
    values_s v;
    probe_list_c list;
    fill(list, v, 6);
    // Matches the even values; the context is the remainder wanted.
    auto even = [](const void* data, const void* context) {
        return value_of(data) % 2 == *static_cast<const int*>(context) ? 0 : 1;
    };
    int zero = 0, seven = 7;
    EXPECT_EQ(list.find_data(even, &zero, search_forward), v[0]);
    EXPECT_EQ(list.current(), v[0]);
    EXPECT_EQ(list.find_data(even, &zero, search_backward), v[4]);
    EXPECT_EQ(list.current(), v[4]);
    EXPECT_EQ(list.find_data(even, &seven, search_forward), nullptr);
}

// ---- removal

TEST(ptr_list_remove,
     remove_current_with_null_removes_the_cursor_element_and_returns_the_follower) {
    values_s v;
    probe_list_c list;
    fill(list, v, 3);
    list.first();
    list.next(nullptr);
    EXPECT_EQ(list.remove_current(nullptr), v[2]);
    EXPECT_EQ(list.current(), v[2]);
    EXPECT_EQ(list.contents(), items({v[0], v[2]}));
    EXPECT_EQ(list.count(), 2u);
    EXPECT_TRUE(list.chain_is_whole());
}

TEST(ptr_list_remove,
     remove_current_with_data_removes_that_element_and_its_follower_becomes_current) {
    values_s v;
    probe_list_c list;
    fill(list, v, 4);
    list.last();
    EXPECT_EQ(list.remove_current(v[0]), v[1]);
    EXPECT_EQ(list.current(), v[1]);
    EXPECT_EQ(list.first_element()->data, v[1]);
    EXPECT_EQ(list.first_element()->prev, nullptr);
    EXPECT_EQ(list.contents(), items({v[1], v[2], v[3]}));
    EXPECT_TRUE(list.chain_is_whole());
}

TEST(ptr_list_remove, removing_the_last_element_returns_null_and_clears_the_cursor) {
    values_s v;
    probe_list_c list;
    fill(list, v, 3);
    list.last();
    EXPECT_EQ(list.remove_current(nullptr), nullptr);
    EXPECT_EQ(list.current(), nullptr);
    EXPECT_EQ(list.last_element()->data, v[1]);
    EXPECT_EQ(list.last_element()->next, nullptr);
    EXPECT_TRUE(list.chain_is_whole());
}

TEST(ptr_list_remove, remove_current_with_null_cursor_changes_nothing) {
    values_s v;
    probe_list_c list;
    fill(list, v, 3);
    list.last();
    list.next(nullptr);
    ASSERT_EQ(list.current(), nullptr);
    EXPECT_EQ(list.remove_current(nullptr), nullptr);
    EXPECT_EQ(list.count(), 3u);
    EXPECT_EQ(list.contents(), items({v[0], v[1], v[2]}));
}

TEST(ptr_list_remove, remove_current_with_data_not_in_the_list_changes_nothing) {
    values_s v;
    int stranger = 99;
    probe_list_c list;
    fill(list, v, 3);
    EXPECT_EQ(list.remove_current(&stranger), nullptr);
    EXPECT_EQ(list.count(), 3u);
    EXPECT_EQ(list.contents(), items({v[0], v[1], v[2]}));
}

TEST(ptr_list_remove, the_loop_of_the_typed_fronts_empties_the_list) {
    values_s v;
    probe_list_c list;
    fill(list, v, 10);
    int rounds = 0;
    while (const void* d = list.first()) {
        list.remove_current(d);
        ++rounds;
        ASSERT_LE(rounds, 10);
    }
    EXPECT_EQ(rounds, 10);
    EXPECT_EQ(list.count(), 0u);
    EXPECT_EQ(list.first_element(), nullptr);
    EXPECT_EQ(list.last_element(), nullptr);
    EXPECT_EQ(list.current_element(), nullptr);
}

TEST(ptr_list_remove, removal_destroys_the_element_and_not_the_data) {
    int destroyed = 0;
    probe_list_c list;
    int* data = new int(42);
    list._append(new counted_element_c(data, &destroyed));
    list._append(new counted_element_c(&destroyed, &destroyed));
    EXPECT_EQ(list.remove_current(data), &destroyed);
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(*data, 42);
    delete data;
    list.clear();
    EXPECT_EQ(destroyed, 2);
}

TEST(ptr_list_remove, remove_current_move_back_returns_the_predecessor_which_becomes_current) {
    values_s v;
    probe_list_c list;
    fill(list, v, 4);
    list.last();
    EXPECT_EQ(list.remove_current_move_back(nullptr), v[2]);
    EXPECT_EQ(list.current(), v[2]);
    EXPECT_EQ(list.remove_current_move_back(v[1]), v[0]);
    EXPECT_EQ(list.current(), v[0]);
    EXPECT_EQ(list.contents(), items({v[0], v[2]}));
    EXPECT_EQ(list.remove_current_move_back(v[0]), nullptr);
    EXPECT_EQ(list.current(), nullptr);
    EXPECT_EQ(list.contents(), items({v[2]}));
    EXPECT_TRUE(list.chain_is_whole());
}

// ---- adding

TEST(ptr_list_add, append_adds_at_the_end_and_makes_it_current) {
    values_s v;
    probe_list_c list;
    list.append(v[0]);
    EXPECT_EQ(list.current(), v[0]);
    list.first();
    list.append(v[1]);
    EXPECT_EQ(list.current(), v[1]);
    EXPECT_EQ(list.last_element()->data, v[1]);
    EXPECT_EQ(list.contents(), items({v[0], v[1]}));
    EXPECT_EQ(list.count(), 2u);
    EXPECT_TRUE(list.chain_is_whole());
}

TEST(ptr_list_add, insert_adds_at_the_front_and_makes_it_current) {
    values_s v;
    probe_list_c list;
    list.insert(v[0]);
    list.insert(v[1]);
    EXPECT_EQ(list.current(), v[1]);
    EXPECT_EQ(list.first_element()->data, v[1]);
    EXPECT_EQ(list.contents(), items({v[1], v[0]}));
    EXPECT_TRUE(list.chain_is_whole());
}

TEST(ptr_list_add, insert_before_and_after_current_make_nothing_with_a_null_cursor) {
    values_s v;
    probe_list_c empty;
    empty.insert_before_current(v[0]);
    empty.insert_after_current(v[0]);
    EXPECT_EQ(empty.count(), 0u);
    EXPECT_EQ(empty.first_element(), nullptr);

    probe_list_c list;
    fill(list, v, 2);
    list.last();
    list.next(nullptr);
    ASSERT_EQ(list.current(), nullptr);
    list.insert_before_current(v[5]);
    list.insert_after_current(v[6]);
    EXPECT_EQ(list.contents(), items({v[0], v[1]}));
    EXPECT_EQ(list.count(), 2u);
}

TEST(ptr_list_add, insert_before_current_links_before_the_cursor_and_is_current) {
    values_s v;
    probe_list_c list;
    fill(list, v, 2);
    list.last();
    list.insert_before_current(v[5]);
    EXPECT_EQ(list.current(), v[5]);
    EXPECT_EQ(list.contents(), items({v[0], v[5], v[1]}));
    list.first();
    list.insert_before_current(v[6]);
    EXPECT_EQ(list.first_element()->data, v[6]);
    EXPECT_EQ(list.current(), v[6]);
    EXPECT_EQ(list.contents(), items({v[6], v[0], v[5], v[1]}));
    EXPECT_TRUE(list.chain_is_whole());
}

TEST(ptr_list_add, insert_after_current_links_after_the_cursor_and_is_current) {
    values_s v;
    probe_list_c list;
    fill(list, v, 2);
    list.first();
    list.insert_after_current(v[5]);
    EXPECT_EQ(list.current(), v[5]);
    EXPECT_EQ(list.contents(), items({v[0], v[5], v[1]}));
    list.last();
    list.insert_after_current(v[6]);
    EXPECT_EQ(list.last_element()->data, v[6]);
    EXPECT_EQ(list.current(), v[6]);
    EXPECT_EQ(list.contents(), items({v[0], v[5], v[1], v[6]}));
    EXPECT_TRUE(list.chain_is_whole());
}

TEST(ptr_list_add, derived_elements_join_through_the_protected_forms) {
    values_s v;
    int destroyed = 0;
    probe_list_c list;
    list._append(new counted_element_c(v[1], &destroyed));
    EXPECT_EQ(list.current(), v[1]);
    list._insert(new counted_element_c(v[0], &destroyed));
    EXPECT_EQ(list.current(), v[0]);
    list.last();
    list._insert_before_current(new counted_element_c(v[2], &destroyed));
    EXPECT_EQ(list.current(), v[2]);
    list._insert_after_current(new counted_element_c(v[3], &destroyed));
    EXPECT_EQ(list.current(), v[3]);
    EXPECT_EQ(list.contents(), items({v[0], v[2], v[3], v[1]}));
    EXPECT_EQ(list.count(), 4u);
    EXPECT_TRUE(list.chain_is_whole());
    EXPECT_EQ(destroyed, 0);
}

// ---- moving

TEST(ptr_list_move, move_before_current_moves_the_element_beside_the_cursor_and_makes_it_current) {
    values_s v;
    probe_list_c list;
    fill(list, v, 5);
    list.find_data(v[1]);
    list.move_before_current(v[4]);
    EXPECT_EQ(list.contents(), items({v[0], v[4], v[1], v[2], v[3]}));
    EXPECT_EQ(list.current(), v[4]);
    EXPECT_EQ(list.last_element()->data, v[3]);
    // To the very front.
    list.first();
    list.move_before_current(v[2]);
    EXPECT_EQ(list.contents(), items({v[2], v[0], v[4], v[1], v[3]}));
    EXPECT_EQ(list.first_element()->data, v[2]);
    EXPECT_EQ(list.current(), v[2]);
    EXPECT_TRUE(list.chain_is_whole());
}

TEST(ptr_list_move, move_before_current_leaves_the_list_alone_when_there_is_nothing_to_do) {
    values_s v;
    int stranger = 99;
    probe_list_c list;
    fill(list, v, 4);
    const auto before = list.contents();
    // Null cursor.
    list.last();
    list.next(nullptr);
    list.move_before_current(v[0]);
    EXPECT_EQ(list.contents(), before);
    EXPECT_EQ(list.current(), nullptr);
    // Cursor on the data itself.
    list.find_data(v[2]);
    list.move_before_current(v[2]);
    EXPECT_EQ(list.contents(), before);
    EXPECT_EQ(list.current(), v[2]);
    // The neighbour before already holds it.
    list.move_before_current(v[1]);
    EXPECT_EQ(list.contents(), before);
    EXPECT_EQ(list.current(), v[2]);
    // Not in the list.
    list.move_before_current(&stranger);
    EXPECT_EQ(list.contents(), before);
    EXPECT_EQ(list.count(), 4u);
}

TEST(ptr_list_move, move_after_current_moves_the_element_beside_the_cursor_and_makes_it_current) {
    values_s v;
    probe_list_c list;
    fill(list, v, 5);
    list.find_data(v[3]);
    list.move_after_current(v[0]);
    EXPECT_EQ(list.contents(), items({v[1], v[2], v[3], v[0], v[4]}));
    EXPECT_EQ(list.current(), v[0]);
    EXPECT_EQ(list.first_element()->data, v[1]);
    // To the very end.
    list.last();
    list.move_after_current(v[2]);
    EXPECT_EQ(list.contents(), items({v[1], v[3], v[0], v[4], v[2]}));
    EXPECT_EQ(list.last_element()->data, v[2]);
    EXPECT_EQ(list.current(), v[2]);
    EXPECT_TRUE(list.chain_is_whole());
}

TEST(ptr_list_move, move_after_current_leaves_the_list_alone_when_there_is_nothing_to_do) {
    values_s v;
    int stranger = 99;
    probe_list_c list;
    fill(list, v, 4);
    const auto before = list.contents();
    list.last();
    list.next(nullptr);
    list.move_after_current(v[0]);
    EXPECT_EQ(list.contents(), before);
    list.find_data(v[1]);
    list.move_after_current(v[1]);
    EXPECT_EQ(list.contents(), before);
    // The neighbour after already holds it.
    list.move_after_current(v[2]);
    EXPECT_EQ(list.contents(), before);
    EXPECT_EQ(list.current(), v[1]);
    list.move_after_current(&stranger);
    EXPECT_EQ(list.contents(), before);
}

TEST(ptr_list_move, move_current_takes_the_element_to_the_front_or_the_end_and_keeps_it_current) {
    values_s v;
    probe_list_c list;
    fill(list, v, 4);
    list.find_data(v[2]);
    list.move_current(true, nullptr);
    EXPECT_EQ(list.contents(), items({v[2], v[0], v[1], v[3]}));
    EXPECT_EQ(list.current(), v[2]);
    list.move_current(false, nullptr);
    EXPECT_EQ(list.contents(), items({v[0], v[1], v[3], v[2]}));
    EXPECT_EQ(list.current(), v[2]);
    // Already at the end: it stays.
    list.move_current(false, nullptr);
    EXPECT_EQ(list.contents(), items({v[0], v[1], v[3], v[2]}));
    // By data, with the cursor elsewhere.
    list.first();
    list.move_current(true, v[3]);
    EXPECT_EQ(list.contents(), items({v[3], v[0], v[1], v[2]}));
    EXPECT_EQ(list.current(), v[3]);
    EXPECT_TRUE(list.chain_is_whole());
    // A null cursor does nothing.
    list.last();
    list.next(nullptr);
    list.move_current(true, nullptr);
    EXPECT_EQ(list.contents(), items({v[3], v[0], v[1], v[2]}));
    EXPECT_EQ(list.current(), nullptr);
}

TEST(ptr_list_move, replace_positions_moves_the_element_into_the_other_list_beside_its_cursor) {
    values_s v;
    probe_list_c from, to;
    fill(from, v, 3);
    to.append(v[7]);
    to.append(v[8]);
    to.first();
    EXPECT_TRUE(from.replace_positions(&to, v[1], thl_add_after_current));
    EXPECT_EQ(from.contents(), items({v[0], v[2]}));
    EXPECT_EQ(to.contents(), items({v[7], v[1], v[8]}));
    EXPECT_EQ(from.count(), 2u);
    EXPECT_EQ(to.count(), 3u);
    to.last();
    EXPECT_TRUE(from.replace_positions(&to, v[0], thl_add_before_current));
    EXPECT_EQ(to.contents(), items({v[7], v[1], v[0], v[8]}));
    EXPECT_EQ(from.contents(), items({v[2]}));
    EXPECT_TRUE(from.chain_is_whole());
    EXPECT_TRUE(to.chain_is_whole());
}

TEST(ptr_list_move, replace_positions_refuses_missing_data_and_a_null_list) {
    values_s v;
    int stranger = 99;
    probe_list_c from, to;
    fill(from, v, 2);
    EXPECT_FALSE(from.replace_positions(&to, &stranger, thl_add_after_current));
    EXPECT_FALSE(from.replace_positions(nullptr, v[0], thl_add_after_current));
    EXPECT_EQ(from.count(), 2u);
    EXPECT_EQ(to.count(), 0u);
}

// ---- clear and destruction

TEST(ptr_list_clear, clear_destroys_every_element_through_the_virtual_destructor) {
    values_s v;
    int destroyed = 0;
    probe_list_c list(true);
    for (int i = 0; i < 5; ++i) list._append(new counted_element_c(v[i], &destroyed));
    list.clear();
    EXPECT_EQ(destroyed, 5);
    EXPECT_EQ(list.count(), 0u);
    EXPECT_EQ(list.first_element(), nullptr);
    EXPECT_EQ(list.last_element(), nullptr);
    EXPECT_EQ(list.current_element(), nullptr);
    EXPECT_EQ(list.first(), nullptr);
    // The data is the user's and stays as it was; the list keeps its lock and can be filled again.
    for (int i = 0; i < 5; ++i) EXPECT_EQ(v.v[i], i);
    EXPECT_TRUE(list.has_lock());
    list.append(v[1]);
    EXPECT_EQ(list.contents(), items({v[1]}));
}

TEST(ptr_list_clear, destroying_the_list_destroys_its_elements) {
    values_s v;
    int destroyed = 0;
    {
        probe_list_c list(true);
        for (int i = 0; i < 3; ++i) list._append(new counted_element_c(v[i], &destroyed));
    }
    EXPECT_EQ(destroyed, 3);
    {
        ptr_list_c* list = new probe_list_c(false);
        static_cast<probe_list_c*>(list)->_append(new counted_element_c(v[0], &destroyed));
        delete list;
    }
    EXPECT_EQ(destroyed, 4);
}

// ---- sort

namespace {

std::set<const ptr_list_element_c*> known_elements;
int bad_arguments = 0;
int comparisons = 0;

int compare_by_value(const void* a, const void* b) {
    ++comparisons;
    const ptr_list_element_c* ea = *static_cast<const ptr_list_element_c* const*>(a);
    const ptr_list_element_c* eb = *static_cast<const ptr_list_element_c* const*>(b);
    if (!known_elements.count(ea) || !known_elements.count(eb)) {
        ++bad_arguments;
        return 0;
    }
    return value_of(ea->data) - value_of(eb->data);
}

int compare_descending(const void* a, const void* b) { return compare_by_value(b, a); }

} // namespace

TEST(ptr_list_sort, comparator_receives_the_addresses_of_element_pointers) {
    values_s v;
    probe_list_c list;
    for (int i : {5, 2, 8, 0, 9, 1, 7, 3, 6, 4}) list.append(v[i]);
    known_elements.clear();
    for (ptr_list_element_c* e = list.first_element(); e; e = e->next) known_elements.insert(e);
    bad_arguments = comparisons = 0;
    list.sort(compare_by_value);
    EXPECT_GT(comparisons, 0);
    EXPECT_EQ(bad_arguments, 0);
    // The same elements, relinked.
    std::set<const ptr_list_element_c*> after;
    for (ptr_list_element_c* e = list.first_element(); e; e = e->next) after.insert(e);
    EXPECT_EQ(after, known_elements);
}

TEST(ptr_list_sort, sort_orders_the_chain_both_ways) {
    values_s v;
    probe_list_c list;
    for (int i : {5, 2, 8, 0, 9, 1, 7, 3, 6, 4}) list.append(v[i]);
    known_elements.clear();
    for (ptr_list_element_c* e = list.first_element(); e; e = e->next) known_elements.insert(e);
    list.sort(compare_by_value);
    std::vector<const void*> expected;
    for (int i = 0; i < 10; ++i) expected.push_back(v[i]);
    EXPECT_EQ(list.contents(), expected);
    EXPECT_TRUE(list.chain_is_whole());
    EXPECT_EQ(list.first(), v[0]);
    EXPECT_EQ(list.last(), v[9]);
    std::vector<const void*> backwards;
    for (const void* d = list.last(); d; d = list.prev(nullptr)) backwards.push_back(d);
    EXPECT_EQ(backwards, std::vector<const void*>(expected.rbegin(), expected.rend()));

    list.sort(compare_descending);
    EXPECT_EQ(list.contents(), std::vector<const void*>(expected.rbegin(), expected.rend()));
    EXPECT_TRUE(list.chain_is_whole());
}

TEST(ptr_list_sort, empty_and_single_lists_stay_as_they_are) {
    values_s v;
    probe_list_c empty;
    empty.sort(compare_by_value);
    EXPECT_EQ(empty.count(), 0u);
    EXPECT_EQ(empty.first_element(), nullptr);
    probe_list_c one;
    one.append(v[3]);
    known_elements = {one.first_element()};
    one.sort(compare_by_value);
    EXPECT_EQ(one.contents(), items({v[3]}));
    EXPECT_TRUE(one.chain_is_whole());
}

namespace {

// Records whether every comparison ran inside the sort protection bracket.
class bracketed_list_c : public probe_list_c {
  public:
    static bracketed_list_c* active;
    int entered = 0, left = 0, outside = 0;
    bool inside = false;

  protected:
    void _sort_protection_enter() override {
        ++entered;
        inside = true;
    }
    void _sort_protection_leave() override {
        ++left;
        inside = false;
    }
};
bracketed_list_c* bracketed_list_c::active = nullptr;

int compare_in_bracket(const void* a, const void* b) {
    if (!bracketed_list_c::active->inside) ++bracketed_list_c::active->outside;
    return compare_by_value(a, b);
}

} // namespace

TEST(ptr_list_sort, sort_protection_brackets_the_work) {
    values_s v;
    bracketed_list_c list;
    for (int i : {3, 1, 2}) list.append(v[i]);
    known_elements.clear();
    for (ptr_list_element_c* e = list.first_element(); e; e = e->next) known_elements.insert(e);
    bracketed_list_c::active = &list;
    list.sort(compare_in_bracket);
    bracketed_list_c::active = nullptr;
    EXPECT_EQ(list.entered, 1);
    EXPECT_EQ(list.left, 1);
    EXPECT_EQ(list.outside, 0);
    EXPECT_EQ(list.contents(), items({v[1], v[2], v[3]}));
}

// ---- index, name, copies

TEST(ptr_list_misc, get_index_counts_from_zero) {
    values_s v;
    probe_list_c list;
    fill(list, v, 4);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(list.get_index(v[i]), static_cast<std::size_t>(i));
}

TEST(ptr_list_misc, get_index_of_data_not_in_the_list_is_all_bits_set) {
    values_s v;
    int stranger = 99;
    probe_list_c list;
    EXPECT_EQ(list.get_index(&stranger), static_cast<std::size_t>(-1));
    fill(list, v, 3);
    list.first();
    EXPECT_EQ(list.get_index(&stranger), static_cast<std::size_t>(-1));
}

TEST(ptr_list_misc, get_index_puts_the_cursor_on_the_match) {
    values_s v;
    probe_list_c list;
    fill(list, v, 4);
    list.first();
    EXPECT_EQ(list.get_index(v[2]), 2u);
    EXPECT_EQ(list.current(), v[2]);
    EXPECT_EQ(list.next(nullptr), v[3]);
}

TEST(ptr_list_misc, set_list_name_stores_the_name) {
    static const char name[] = "settings";
    probe_list_c list;
    list.set_list_name(name);
    EXPECT_EQ(list.list_name(), name);
    list.set_list_name(nullptr);
    EXPECT_EQ(list.list_name(), nullptr);
}

TEST(ptr_list_misc, copy_makes_an_independent_list_with_the_same_data_pointers) {
    values_s v;
    int destroyed = 0;
    probe_list_c list;
    fill(list, v, 3);
    list._append(new counted_element_c(v[3], &destroyed));
    ptr_list_c* copied = list.copy();
    ASSERT_NE(copied, nullptr);
    std::vector<const void*> seen;
    for (const void* d = copied->first(); d; d = copied->next(nullptr)) seen.push_back(d);
    EXPECT_EQ(seen, items({v[0], v[1], v[2], v[3]}));
    // Changes to one leave the other alone.
    copied->remove_current(v[0]);
    copied->append(v[9]);
    EXPECT_EQ(list.contents(), items({v[0], v[1], v[2], v[3]}));
    list.remove_current(v[1]);
    EXPECT_EQ(copied->get_index(v[1]), 0u);
    delete copied;
    // The copy has elements of its own: the original's derived element was not destroyed.
    EXPECT_EQ(destroyed, 0);
    EXPECT_TRUE(list.chain_is_whole());
}

TEST(ptr_list_misc, copy_constructor_copies_the_contents) {
    values_s v;
    probe_list_c list(true);
    fill(list, v, 5);
    probe_list_c other(list);
    EXPECT_EQ(other.contents(), list.contents());
    EXPECT_EQ(other.count(), 5u);
    EXPECT_TRUE(other.chain_is_whole());
    EXPECT_NE(other.first_element(), list.first_element());
    other.clear();
    EXPECT_EQ(list.count(), 5u);
}

// ---- the list's lock

TEST(ptr_list_lock, lock_nests_with_the_lists_own_operations_on_the_same_thread) {
    values_s v;
    probe_list_c list(true);
    list.lock();
    list.append(v[0]);
    list.lock();
    list.append(v[1]);
    EXPECT_EQ(list.first(), v[0]);
    EXPECT_EQ(list.remove_current(nullptr), v[1]);
    list.unlock();
    list.clear();
    list.unlock();
    EXPECT_EQ(list.count(), 0u);
}

TEST(ptr_list_lock, lock_keeps_other_threads_out_until_unlock) {
    values_s v;
    probe_list_c list(true);
    list.lock();
    std::atomic<bool> started{false}, appended{false};
    std::thread other([&] {
        started = true;
        list.append(v[1]);
        appended = true;
    });
    EXPECT_TRUE(wait_for(started));
    std::this_thread::sleep_for(100ms);
    EXPECT_FALSE(appended.load());
    list.append(v[0]);
    list.unlock();
    other.join();
    EXPECT_TRUE(appended.load());
    EXPECT_EQ(list.contents(), items({v[0], v[1]}));
}

// ---- lock classes

TEST(thl_locks, lock_with_a_null_section_holds_nothing) {
    {
        thl_lock_c outer(nullptr);
        thl_lock_c inner(nullptr);
    }
    // Another thread may hold a null lock at the same time.
    thl_lock_c held(nullptr);
    std::atomic<bool> done{false};
    std::thread other([&] {
        thl_lock_c also(nullptr);
        done = true;
    });
    other.join();
    EXPECT_TRUE(done.load());
}

TEST(thl_locks, lock_holds_the_section_against_other_threads_for_its_lifetime) {
    thl_crit_section_c section(false);
    std::atomic<bool> started{false}, entered{false};
    std::thread other;
    {
        thl_lock_c hold(&section);
        other = std::thread([&] {
            started = true;
            thl_lock_c mine(&section);
            entered = true;
        });
        EXPECT_TRUE(wait_for(started));
        std::this_thread::sleep_for(100ms);
        EXPECT_FALSE(entered.load());
    }
    other.join();
    EXPECT_TRUE(entered.load());
}

TEST(thl_locks, the_holder_may_enter_the_section_again) {
    thl_crit_section_c section(false);
    std::atomic<bool> entered{false};
    {
        thl_lock_c outer(&section);
        thl_lock_c inner(&section);
    }
    // Both levels were released: another thread gets in.
    std::thread other([&] {
        thl_lock_c mine(&section);
        entered = true;
    });
    other.join();
    EXPECT_TRUE(entered.load());
}

TEST(thl_locks, writer_lock_keeps_readers_and_writers_out) {
    single_writer_multi_reader_c rw;
    std::atomic<bool> started{false}, reader_in{false}, writer_in{false};
    std::thread reader, writer;
    {
        single_writer_lock_c hold(rw);
        reader = std::thread([&] {
            multi_reader_lock_c r(rw);
            reader_in = true;
        });
        writer = std::thread([&] {
            started = true;
            single_writer_lock_c w(rw);
            writer_in = true;
        });
        EXPECT_TRUE(wait_for(started));
        std::this_thread::sleep_for(100ms);
        EXPECT_FALSE(reader_in.load());
        EXPECT_FALSE(writer_in.load());
    }
    reader.join();
    writer.join();
    EXPECT_TRUE(reader_in.load());
    EXPECT_TRUE(writer_in.load());
}

TEST(thl_locks, reader_locks_share_and_keep_a_writer_out) {
    single_writer_multi_reader_c rw;
    std::atomic<bool> second_reader_in{false}, started{false}, writer_in{false};
    std::thread writer;
    {
        multi_reader_lock_c hold(rw);
        // A second reader gets in while the first holds it.
        std::thread reader([&] {
            multi_reader_lock_c r(rw);
            second_reader_in = true;
        });
        reader.join();
        EXPECT_TRUE(second_reader_in.load());
        writer = std::thread([&] {
            started = true;
            single_writer_lock_c w(rw);
            writer_in = true;
        });
        EXPECT_TRUE(wait_for(started));
        std::this_thread::sleep_for(100ms);
        EXPECT_FALSE(writer_in.load());
    }
    writer.join();
    EXPECT_TRUE(writer_in.load());
}

TEST(thl_locks, ref_counter_steps_up_and_down_and_reports_the_new_value) {
    thl_ref_counter_c counter;
    EXPECT_EQ(counter.value(), 0);
    EXPECT_EQ(counter.increase(1), 1);
    EXPECT_EQ(counter.increase(1), 2);
    EXPECT_EQ(counter.increase(5), 7);
    EXPECT_EQ(counter.decrease(1), 6);
    EXPECT_EQ(counter.value(), 6);
    EXPECT_EQ(counter.decrease(6), 0);
    EXPECT_EQ(counter.decrease(1), -1);
    EXPECT_EQ(counter.value(), -1);
}

// ---- mix_n

TEST(mix_n_words, true_and_false_are_the_words_of_the_template) {
    EXPECT_STREQ(mix_n::True, "True");
    EXPECT_STREQ(mix_n::False, "False");
}

TEST(mix_n_sleep, sleep_suspends_for_at_least_the_time_given) {
    auto start = std::chrono::steady_clock::now();
    mix_n::sleep(120);
    auto took = std::chrono::steady_clock::now() - start;
    // A coarse system timer may wake a few milliseconds early by the steady clock. The upper
    // bound only catches a time taken in the wrong unit (seconds for milliseconds), however
    // loaded the machine is.
    EXPECT_GE(took, 105ms);
    EXPECT_LT(took, 100s);
}

TEST(mix_n_sleep, sleep_of_zero_or_less_returns_at_once) {
    auto start = std::chrono::steady_clock::now();
    mix_n::sleep(0);
    mix_n::sleep(-5);
    // -5 taken as an unsigned count would sleep for weeks; this bound tells that apart on any
    // machine.
    EXPECT_LT(std::chrono::steady_clock::now() - start, 100s);
}

namespace {

void expect_same_time(const std::tm& a, const std::tm& b) {
    EXPECT_EQ(a.tm_year, b.tm_year);
    EXPECT_EQ(a.tm_mon, b.tm_mon);
    EXPECT_EQ(a.tm_mday, b.tm_mday);
    EXPECT_EQ(a.tm_hour, b.tm_hour);
    EXPECT_EQ(a.tm_min, b.tm_min);
    EXPECT_EQ(a.tm_sec, b.tm_sec);
    EXPECT_EQ(a.tm_wday, b.tm_wday);
    EXPECT_EQ(a.tm_yday, b.tm_yday);
    EXPECT_EQ(a.tm_isdst, b.tm_isdst);
}

} // namespace

TEST(mix_n_time, localtime_r_gives_the_local_time_of_the_value) {
    static_assert(sizeof(std::time_t) == 8);
    for (std::int64_t t : {std::int64_t{0}, std::int64_t{1700000000}, std::int64_t{951782400},
                           std::int64_t{4102444800}}) {
        SCOPED_TRACE(t);
        std::tm mine{};
        ASSERT_TRUE(mix_n::localtime_r(&t, &mine));
        std::time_t plain = static_cast<std::time_t>(t);
        const std::tm* reference = std::localtime(&plain);
        ASSERT_NE(reference, nullptr);
        expect_same_time(mine, *reference);
    }
    // 2100-01-01 00:00 UTC is still 2099 or already 2100 wherever the machine stands.
    std::int64_t t2100 = 4102444800;
    std::tm local{};
    ASSERT_TRUE(mix_n::localtime_r(&t2100, &local));
    EXPECT_TRUE(local.tm_year == 199 || local.tm_year == 200) << local.tm_year;
}

TEST(mix_n_time, localtime_r_refuses_null_arguments) {
    std::int64_t t = 0;
    std::tm result{};
    EXPECT_FALSE(mix_n::localtime_r(nullptr, &result));
    EXPECT_FALSE(mix_n::localtime_r(&t, nullptr));
}

namespace {

::testing::AssertionResult parses_to(const char* text, std::int64_t expected) {
    std::int64_t result = 0x5A5A5A5A;
    if (!mix_n::parse_formatted_integer_string(text, result))
        return ::testing::AssertionFailure() << '"' << text << "\" was refused";
    if (result != expected)
        return ::testing::AssertionFailure()
               << '"' << text << "\" gave " << result << " instead of " << expected;
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult refused(const char* text) {
    std::int64_t result = 0;
    if (mix_n::parse_formatted_integer_string(text, result))
        return ::testing::AssertionFailure()
               << '"' << (text ? text : "(null)") << "\" was taken as " << result;
    return ::testing::AssertionSuccess();
}

} // namespace

TEST(mix_n_parse, plain_decimal_numbers) {
    EXPECT_TRUE(parses_to("0", 0));
    EXPECT_TRUE(parses_to("7", 7));
    EXPECT_TRUE(parses_to("123456789", 123456789));
    EXPECT_TRUE(parses_to("007", 7));
    EXPECT_TRUE(parses_to("4294967296", 4294967296LL));
}

TEST(mix_n_parse, signs) {
    EXPECT_TRUE(parses_to("-1", -1));
    EXPECT_TRUE(parses_to("-123", -123));
    EXPECT_TRUE(parses_to("+123", 123));
    EXPECT_TRUE(parses_to("-0", 0));
    EXPECT_TRUE(parses_to("+0", 0));
}

TEST(mix_n_parse, signed_64_bit_limits) {
    EXPECT_TRUE(parses_to("9223372036854775807", INT64_MAX));
    EXPECT_TRUE(parses_to("-9223372036854775807", -INT64_MAX));
    EXPECT_TRUE(parses_to("-9223372036854775808", INT64_MIN));
    EXPECT_TRUE(refused("-9223372036854775809"));
    EXPECT_TRUE(refused("-18446744073709551615"));
    EXPECT_TRUE(refused("-99999999999999999999"));
}

TEST(mix_n_parse, unsigned_values_above_the_signed_range_come_back_with_the_sign_bit_set) {
    EXPECT_TRUE(parses_to("9223372036854775808", INT64_MIN));
    EXPECT_TRUE(parses_to("9223372036854775809", INT64_MIN + 1));
    EXPECT_TRUE(parses_to("18446744073709551615", -1));
    EXPECT_TRUE(parses_to("+18446744073709551615", -1));
    std::int64_t result = 0;
    ASSERT_TRUE(mix_n::parse_formatted_integer_string("12345678901234567890", result));
    EXPECT_EQ(static_cast<std::uint64_t>(result), 12345678901234567890ULL);
}

TEST(mix_n_parse, beyond_the_unsigned_range_is_refused) {
    EXPECT_TRUE(refused("18446744073709551616"));
    EXPECT_TRUE(refused("18446744073709551620"));
    EXPECT_TRUE(refused("99999999999999999999"));
    EXPECT_TRUE(refused("184467440737095516150"));
    EXPECT_TRUE(refused("0x10000000000000000"));
}

TEST(mix_n_parse, hexadecimal_after_0x) {
    EXPECT_TRUE(parses_to("0x0", 0));
    EXPECT_TRUE(parses_to("0x10", 16));
    EXPECT_TRUE(parses_to("0XfF", 255));
    EXPECT_TRUE(parses_to("0xDeadBeef", 0xDEADBEEFLL));
    EXPECT_TRUE(parses_to("0x7FFFFFFFFFFFFFFF", INT64_MAX));
    EXPECT_TRUE(parses_to("0x8000000000000000", INT64_MIN));
    EXPECT_TRUE(parses_to("0xFFFFFFFFFFFFFFFF", -1));
    EXPECT_TRUE(refused("0x"));
    EXPECT_TRUE(refused("0xG"));
    EXPECT_TRUE(refused("0x1g"));
    EXPECT_TRUE(refused("ff"));
}

TEST(mix_n_parse, blanks_around_the_number) {
    EXPECT_TRUE(parses_to("  42", 42));
    EXPECT_TRUE(parses_to("42  ", 42));
    EXPECT_TRUE(parses_to("\t-42\t", -42));
    EXPECT_TRUE(parses_to(" 0x1F ", 31));
    EXPECT_TRUE(parses_to(" 18446744073709551615 ", -1));
}

TEST(mix_n_parse, rubbish_is_refused) {
    for (const char* text :
         {"",    " ",   "\t",  "-",   "+",   "abc",   "12abc", "abc12", "1 2",  "--1",
          "+-1", "-+1", "- 5", "1.5", "1e3", "1,000", "0x 1",  "12-",   "(12)", "\n"}) {
        EXPECT_TRUE(refused(text));
    }
    EXPECT_TRUE(refused(nullptr));
}
