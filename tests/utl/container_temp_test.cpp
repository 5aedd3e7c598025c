// array_ct: growth and capacities, the zero cells behind the last index, reserve, insert,
// insert_array, remove, remove_range, clear and the bounds message of at. value_list_ct and
// value_ptr_list_ct: the cursor after every operation. ptr_list_ct: the typed forwards. Lists of
// a million elements are built and destroyed.
#include "common/test_support.h"
#include "utl/container_temp.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

using test_support::trace_capture_c;
using test_support::trace_line;

constexpr std::uint64_t all_bits = ~std::uint64_t{0};

// Reads the fields of an array as derived classes do.
template <class T> class array_probe_ct : public array_ct<T> {
  public:
    std::uint64_t capacity() const { return this->_capacity; }
    std::uint64_t last() const { return this->_last; }
    T* cell(std::uint64_t i) const { return this->_data[i]; }
    T** cells() const { return this->_data; }
};

// An element that records the order in which elements are deleted.
struct tracked_s {
    tracked_s(int v, std::vector<int>* log) : value(v), deleted(log) {}
    virtual ~tracked_s() {
        if (deleted) deleted->push_back(value);
    }
    int value;
    std::vector<int>* deleted;
};

bool has_level(const std::string& line, unsigned level) {
    return line.find(" level=" + std::to_string(level) + " ") != std::string::npos;
}

std::vector<int> contents(const array_ct<int>& a) {
    std::vector<int> out;
    for (std::uint64_t i = 0; i < a.get_count(); ++i) out.push_back(*a.at(i));
    return out;
}

// Every cell behind the last index is zero.
template <class T> bool zero_behind_last(const array_probe_ct<T>& a) {
    std::uint64_t from = a.is_empty() ? 0 : a.last() + 1;
    for (std::uint64_t i = from; i < a.capacity(); ++i)
        if (a.cell(i)) return false;
    return true;
}

// ---- array_ct: the edge cases

TEST(ArrayCt, NewArrayHasNoCapacityAndFirstAppendGivesFive) {
    array_probe_ct<int> a;
    EXPECT_EQ(a.capacity(), 0u);
    EXPECT_EQ(a.last(), all_bits);
    EXPECT_EQ(a.get_count(), 0u);
    EXPECT_TRUE(a.is_empty());
    int x = 1;
    EXPECT_EQ(a.append(&x), &x);
    EXPECT_EQ(a.capacity(), 5u);
    EXPECT_EQ(a.last(), 0u);
    EXPECT_EQ(a.get_count(), 1u);
    EXPECT_TRUE(zero_behind_last(a));
}

TEST(ArrayCt, ArrayOfFiftyGrowsToFiftyFiveThenSixtyThenSixtySix) {
    array_probe_ct<int> a;
    std::vector<int> values(70);
    for (int i = 0; i < 50; ++i) a.append(&values[static_cast<std::size_t>(i)]);
    EXPECT_EQ(a.capacity(), 50u);
    a.append(&values[50]);
    EXPECT_EQ(a.capacity(), 55u);
    for (int i = 51; i < 55; ++i) a.append(&values[static_cast<std::size_t>(i)]);
    EXPECT_EQ(a.capacity(), 55u);
    a.append(&values[55]);
    EXPECT_EQ(a.capacity(), 60u);
    for (int i = 56; i < 60; ++i) a.append(&values[static_cast<std::size_t>(i)]);
    a.append(&values[60]);
    EXPECT_EQ(a.capacity(), 66u);
    EXPECT_TRUE(zero_behind_last(a));
}

TEST(ArrayCt, AtPastTheEndOfTwoPrintsLastOneReceivedFiveAndGivesNull) {
    trace_capture_c capture;
    array_ct<int> a;
    int x = 1, y = 2;
    a.append(&x);
    a.append(&y);
    EXPECT_EQ(a.at(5), nullptr);
    std::string line = trace_line(capture.text(), "array_ct(last = 1), received index 5");
    ASSERT_FALSE(line.empty()) << capture.text();
    EXPECT_TRUE(has_level(line, 4)) << line;
    EXPECT_NE(line.find(" container_temp:"), std::string::npos) << line;
    EXPECT_NE(line.find("\"array_ct<TP>::at\""), std::string::npos) << line;
}

TEST(ArrayCt, AtZeroOnEmptyArrayPrintsLastMinusOne) {
    trace_capture_c capture;
    array_ct<int> a;
    EXPECT_EQ(a.at(0), nullptr);
    EXPECT_FALSE(trace_line(capture.text(), "array_ct(last = -1), received index 0").empty())
        << capture.text();
}

TEST(ArrayCt, AtInsideTheArrayPrintsNothing) {
    trace_capture_c capture;
    array_ct<int> a;
    int x = 1;
    a.append(&x);
    EXPECT_EQ(a.at(0), &x);
    EXPECT_EQ(capture.text().find("array_ct(last"), std::string::npos) << capture.text();
    EXPECT_EQ(a.at(all_bits), nullptr);
    EXPECT_FALSE(trace_line(capture.text(), "array_ct(last = 0), received index -1").empty());
}

TEST(ArrayCt, InsertAtHundredOnShortArrayAppends) {
    array_ct<int> a;
    int v[3] = {0, 1, 2};
    a.append(&v[0]);
    a.append(&v[1]);
    EXPECT_EQ(a.insert(&v[2], 100), &v[2]);
    EXPECT_EQ(contents(a), (std::vector<int>{0, 1, 2}));
}

TEST(ArrayCt, RemoveLastOfOneElementLeavesItEmpty) {
    array_probe_ct<int> a;
    int x = 7;
    a.append(&x);
    EXPECT_EQ(a.remove(0), &x);
    EXPECT_TRUE(a.is_empty());
    EXPECT_EQ(a.last(), all_bits);
    EXPECT_EQ(a.get_count(), 0u);
    EXPECT_EQ(a.capacity(), 5u);
    EXPECT_TRUE(zero_behind_last(a));
}

TEST(ArrayCt, RemoveRangeOneToOneRemovesOneElement) {
    array_probe_ct<int> a;
    int v[4] = {0, 1, 2, 3};
    for (int& x : v) a.append(&x);
    EXPECT_EQ(a.remove_range(1, 1), &v[1]);
    EXPECT_EQ(contents(a), (std::vector<int>{0, 2, 3}));
    EXPECT_TRUE(zero_behind_last(a));
}

// ---- array_ct: the rules

TEST(ArrayCt, GrowthRunsByFiveUpToFiftyThenByATenth) {
    array_probe_ct<int> a;
    int x = 0;
    std::vector<std::uint64_t> seen;
    for (int i = 0; i < 200; ++i) {
        std::uint64_t before = a.capacity();
        a.append(&x);
        if (a.capacity() != before) seen.push_back(a.capacity());
    }
    std::vector<std::uint64_t> expected = {5,   10,  15,  20,  25,  30,  35,  40, 45,
                                           50,  55,  60,  66,  72,  79,  86,  94, 103,
                                           113, 124, 136, 149, 163, 179, 196, 215};
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(a.get_count(), 200u);
}

TEST(ArrayCt, ReserveWithoutKeepEmptiesAndZeroes) {
    array_probe_ct<int> a;
    int v[3] = {0, 1, 2};
    for (int& x : v) a.append(&x);
    a.reserve(3, false);
    EXPECT_TRUE(a.is_empty());
    EXPECT_EQ(a.capacity(), 5u);
    EXPECT_TRUE(zero_behind_last(a));
    a.reserve(12, false);
    EXPECT_EQ(a.capacity(), 12u);
    EXPECT_TRUE(zero_behind_last(a));
    // An empty array with room for five or more keeps its storage on the first append.
    a.append(&v[0]);
    EXPECT_EQ(a.capacity(), 12u);
}

TEST(ArrayCt, ReserveWithKeepPreservesContents) {
    array_probe_ct<int> a;
    int v[3] = {0, 1, 2};
    for (int& x : v) a.append(&x);
    a.reserve(2, true);
    EXPECT_EQ(a.capacity(), 5u);
    a.reserve(20, true);
    EXPECT_EQ(a.capacity(), 20u);
    EXPECT_EQ(contents(a), (std::vector<int>{0, 1, 2}));
    EXPECT_TRUE(zero_behind_last(a));
    // From a capacity below 50 growth adds five.
    for (int i = 0; i < 17; ++i) a.append(&v[0]);
    EXPECT_EQ(a.capacity(), 20u);
    a.append(&v[0]);
    EXPECT_EQ(a.capacity(), 25u);
}

TEST(ArrayCt, InsertMovesTheTailUp) {
    array_ct<int> a;
    int v[4] = {0, 1, 2, 3};
    a.append(&v[0]);
    a.append(&v[1]);
    a.append(&v[2]);
    EXPECT_EQ(a.insert(&v[3], 1), &v[3]);
    EXPECT_EQ(contents(a), (std::vector<int>{0, 3, 1, 2}));
    EXPECT_EQ(a.insert(&v[3], 0), &v[3]);
    EXPECT_EQ(contents(a), (std::vector<int>{3, 0, 3, 1, 2}));
}

TEST(ArrayCt, InsertAtNoIndexIsRefused) {
    array_ct<int> a;
    int x = 1;
    EXPECT_EQ(a.insert(&x, all_bits), nullptr);
    EXPECT_TRUE(a.is_empty());
}

TEST(ArrayCt, InsertIntoEmptyArrayAppends) {
    array_ct<int> a;
    int x = 1;
    EXPECT_EQ(a.insert(&x, 0), &x);
    EXPECT_EQ(contents(a), (std::vector<int>{1}));
}

TEST(ArrayCt, InsertArrayIntoTheMiddleSharesPointers) {
    array_probe_ct<int> a;
    array_ct<int> b;
    int v[5] = {0, 1, 2, 3, 4};
    a.append(&v[0]);
    a.append(&v[1]);
    a.append(&v[2]);
    b.append(&v[3]);
    b.append(&v[4]);
    EXPECT_EQ(a.insert_array(&b, 1), &v[3]);
    EXPECT_EQ(contents(a), (std::vector<int>{0, 3, 4, 1, 2}));
    EXPECT_EQ(a.at(1), b.at(0));
    EXPECT_EQ(b.get_count(), 2u);
    EXPECT_EQ(a.capacity(), 5u);
    EXPECT_TRUE(zero_behind_last(a));
}

TEST(ArrayCt, InsertArrayPastTheEndAppends) {
    array_probe_ct<int> a;
    array_ct<int> b;
    int v[3] = {0, 1, 2};
    a.append(&v[0]);
    b.append(&v[1]);
    b.append(&v[2]);
    EXPECT_EQ(a.insert_array(&b, 9), &v[1]);
    EXPECT_EQ(contents(a), (std::vector<int>{0, 1, 2}));
    array_probe_ct<int> empty;
    EXPECT_EQ(empty.insert_array(&b, 0), &v[1]);
    EXPECT_EQ(contents(empty), (std::vector<int>{1, 2}));
    EXPECT_EQ(empty.capacity(), 5u);
}

TEST(ArrayCt, InsertArrayRefusesItselfNoIndexAndAnEmptyOther) {
    array_ct<int> a, empty;
    int x = 0;
    a.append(&x);
    EXPECT_EQ(a.insert_array(&a, 0), nullptr);
    EXPECT_EQ(a.insert_array(&empty, 0), nullptr);
    array_ct<int> b;
    b.append(&x);
    EXPECT_EQ(a.insert_array(&b, all_bits), nullptr);
    EXPECT_EQ(a.get_count(), 1u);
}

TEST(ArrayCt, InsertArrayReservesOwnPlusOtherCount) {
    array_probe_ct<int> a;
    array_ct<int> b;
    std::vector<int> v(12);
    for (int i = 0; i < 5; ++i) a.append(&v[static_cast<std::size_t>(i)]);
    for (int i = 5; i < 12; ++i) b.append(&v[static_cast<std::size_t>(i)]);
    a.insert_array(&b, 0);
    EXPECT_EQ(a.capacity(), 12u);
    EXPECT_EQ(a.get_count(), 12u);
    EXPECT_EQ(a.at(0), &v[5]);
    EXPECT_EQ(a.at(7), &v[0]);
}

TEST(ArrayCt, RemoveInTheMiddleMovesTheTailDown) {
    array_probe_ct<int> a;
    int v[4] = {0, 1, 2, 3};
    for (int& x : v) a.append(&x);
    EXPECT_EQ(a.remove(1), &v[1]);
    EXPECT_EQ(contents(a), (std::vector<int>{0, 2, 3}));
    EXPECT_EQ(a.last(), 2u);
    EXPECT_TRUE(zero_behind_last(a));
    EXPECT_EQ(a.remove(3), nullptr);
    EXPECT_EQ(a.remove(all_bits), nullptr);
    array_ct<int> empty;
    EXPECT_EQ(empty.remove(0), nullptr);
}

TEST(ArrayCt, RemoveRangeToTheLastCutsTheTail) {
    array_probe_ct<int> a;
    int v[5] = {0, 1, 2, 3, 4};
    for (int& x : v) a.append(&x);
    EXPECT_EQ(a.remove_range(2, 4), &v[2]);
    EXPECT_EQ(contents(a), (std::vector<int>{0, 1}));
    EXPECT_TRUE(zero_behind_last(a));
    EXPECT_EQ(a.remove_range(0, 1), &v[0]);
    EXPECT_TRUE(a.is_empty());
    EXPECT_EQ(a.last(), all_bits);
}

TEST(ArrayCt, RemoveRangeInTheMiddleMovesTheTailDown) {
    array_probe_ct<int> a;
    int v[6] = {0, 1, 2, 3, 4, 5};
    for (int& x : v) a.append(&x);
    EXPECT_EQ(a.remove_range(1, 3), &v[1]);
    EXPECT_EQ(contents(a), (std::vector<int>{0, 4, 5}));
    EXPECT_EQ(a.last(), 2u);
    EXPECT_TRUE(zero_behind_last(a));
}

TEST(ArrayCt, RemoveRangeRefusesBadBounds) {
    array_ct<int> a;
    int v[3] = {0, 1, 2};
    EXPECT_EQ(a.remove_range(0, 0), nullptr);
    for (int& x : v) a.append(&x);
    EXPECT_EQ(a.remove_range(2, 1), nullptr);
    EXPECT_EQ(a.remove_range(0, 3), nullptr);
    EXPECT_EQ(a.remove_range(all_bits, 1), nullptr);
    EXPECT_EQ(a.remove_range(0, all_bits), nullptr);
    EXPECT_EQ(a.get_count(), 3u);
}

TEST(ArrayCt, ClearDeletesFromLastToFirstAndReleasesStorage) {
    std::vector<int> deleted;
    array_probe_ct<tracked_s> a;
    for (int i = 0; i < 4; ++i) a.append(new tracked_s(i, &deleted));
    a.clear();
    EXPECT_EQ(deleted, (std::vector<int>{3, 2, 1, 0}));
    EXPECT_EQ(a.capacity(), 0u);
    EXPECT_EQ(a.cells(), nullptr);
    EXPECT_TRUE(a.is_empty());
}

TEST(ArrayCt, ClearOnEmptyArrayKeepsStorage) {
    array_probe_ct<int> a;
    a.reserve(8, false);
    a.clear();
    EXPECT_EQ(a.capacity(), 8u);
    EXPECT_NE(a.cells(), nullptr);
}

TEST(ArrayCt, FreeMemoryReleasesCellsButNotElements) {
    std::vector<int> deleted;
    tracked_s element(1, &deleted);
    array_probe_ct<tracked_s> a;
    a.append(&element);
    a.free_memory();
    EXPECT_TRUE(deleted.empty());
    EXPECT_EQ(a.capacity(), 0u);
    EXPECT_EQ(a.last(), all_bits);
    EXPECT_EQ(a.cells(), nullptr);
}

// The array keeps pointers; its destructor releases the cells and leaves the elements to
// their owner, who deletes them with clear or by itself.
TEST(ArrayCt, DestructorLeavesTheElements) {
    std::vector<int> deleted;
    tracked_s element(1, &deleted);
    {
        array_ct<tracked_s> a;
        a.append(&element);
    }
    EXPECT_TRUE(deleted.empty());
}

TEST(ArrayCt, RemoveAndDeleteDeletesOneElement) {
    std::vector<int> deleted;
    array_ct<tracked_s> a;
    for (int i = 0; i < 3; ++i) a.append(new tracked_s(i, &deleted));
    EXPECT_TRUE(a.remove_and_delete(1));
    EXPECT_EQ(deleted, (std::vector<int>{1}));
    EXPECT_FALSE(a.remove_and_delete(2));
    EXPECT_EQ(a.get_count(), 2u);
    EXPECT_EQ(a.at(1)->value, 2);
    a.clear();
}

TEST(ArrayCt, CharArrayClearFreesTexts) {
    array_ct<char> a;
    for (const char* text : {"one", "two"}) {
        char* copy = new char[4];
        std::memcpy(copy, text, 4);
        a.append(copy);
    }
    EXPECT_TRUE(a.remove_and_delete(0));
    a.clear();
    EXPECT_TRUE(a.is_empty());
}

TEST(ArrayCt, FindFindIndexAndCountOfComparePointers) {
    array_ct<int> a;
    int v[3] = {5, 5, 6};
    a.append(&v[0]);
    a.append(&v[1]);
    a.append(&v[0]);
    EXPECT_EQ(a.find(&v[1]), &v[1]);
    EXPECT_EQ(a.find(&v[2]), nullptr);
    EXPECT_EQ(a.find_index(&v[0]), 0u);
    EXPECT_EQ(a.find_index(&v[1]), 1u);
    EXPECT_EQ(a.find_index(&v[2]), all_bits);
    EXPECT_EQ(a.count_of(&v[0]), 2u);
    EXPECT_EQ(a.count_of(&v[2]), 0u);
    EXPECT_EQ(a.remove_value(&v[0]), &v[0]);
    EXPECT_EQ(a.find_index(&v[0]), 1u);
    EXPECT_EQ(a.remove_value(&v[2]), nullptr);
    array_ct<int> empty;
    EXPECT_EQ(empty.find_index(&v[0]), all_bits);
    EXPECT_EQ(empty.count_of(nullptr), 0u);
}

TEST(ArrayCt, SwapAndReplaceRefuseBadIndexes) {
    array_ct<int> a;
    int v[3] = {0, 1, 2};
    EXPECT_FALSE(a.swap(0, 0));
    EXPECT_EQ(a.replace(0, &v[0]), nullptr);
    a.append(&v[0]);
    a.append(&v[1]);
    EXPECT_TRUE(a.swap(0, 1));
    EXPECT_EQ(contents(a), (std::vector<int>{1, 0}));
    EXPECT_FALSE(a.swap(0, 2));
    EXPECT_FALSE(a.swap(all_bits, 0));
    EXPECT_EQ(a.replace(1, &v[2]), &v[0]);
    EXPECT_EQ(contents(a), (std::vector<int>{1, 2}));
    EXPECT_EQ(a.replace(2, &v[0]), nullptr);
    EXPECT_EQ(a.replace(all_bits, &v[0]), nullptr);
}

TEST(ArrayCt, MillionElementsBuiltAndCleared) {
    array_ct<tracked_s> a;
    for (int i = 0; i < 1000000; ++i) a.append(new tracked_s(i, nullptr));
    EXPECT_EQ(a.get_count(), 1000000u);
    a.clear();
    EXPECT_TRUE(a.is_empty());
}

// ---- value_list_ct

using int_list_t = value_list_ct<int>;

std::vector<int> walk(int_list_t& list) {
    std::vector<int> out;
    int v = 0;
    for (bool more = list.first(v); more; more = list.next(v, false)) out.push_back(v);
    return out;
}

int current_of(int_list_t& list) {
    int v = -1;
    return list.current(v) ? v : -1;
}

TEST(ValueListCt, NextAtTheEndReturnsFalseAndLeavesCursorNull) {
    int_list_t list;
    list.append(1);
    list.append(2);
    int v = 0;
    EXPECT_TRUE(list.last(v));
    EXPECT_EQ(v, 2);
    EXPECT_FALSE(list.next(v, false));
    EXPECT_FALSE(list.current(v));
    EXPECT_FALSE(list.next(v, false));
}

TEST(ValueListCt, CheckUniquenessOnEmptyListIsTrue) {
    int_list_t list;
    int v = 42;
    EXPECT_TRUE(list.check_uniqueness(v));
    EXPECT_EQ(v, 42);
}

TEST(ValueListCt, AppendAndInsertMakeTheNewItemCurrent) {
    int_list_t list;
    list.append(2);
    EXPECT_EQ(current_of(list), 2);
    list.append(3);
    EXPECT_EQ(current_of(list), 3);
    list.insert(1);
    EXPECT_EQ(current_of(list), 1);
    EXPECT_EQ(walk(list), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(list.get_count(), 3u);
}

TEST(ValueListCt, FirstLastPrevMoveTheCursor) {
    int_list_t list;
    int v = 0;
    EXPECT_FALSE(list.first(v));
    EXPECT_FALSE(list.last(v));
    for (int i = 1; i <= 3; ++i) list.append(i);
    EXPECT_TRUE(list.first(v));
    EXPECT_EQ(v, 1);
    EXPECT_FALSE(list.prev(v, false));
    EXPECT_FALSE(list.current(v));
    EXPECT_TRUE(list.last(v));
    EXPECT_TRUE(list.prev(v, false));
    EXPECT_EQ(v, 2);
    EXPECT_EQ(current_of(list), 2);
}

TEST(ValueListCt, FindKeepsACursorOnTheValueOtherwiseScans) {
    int_list_t list;
    for (int i : {1, 2, 3}) list.append(i);
    EXPECT_TRUE(list.find(3));
    EXPECT_EQ(current_of(list), 3);
    EXPECT_TRUE(list.find(1));
    EXPECT_EQ(current_of(list), 1);
    EXPECT_FALSE(list.find(9));
    EXPECT_EQ(current_of(list), -1);
}

TEST(ValueListCt, FindWithTheCursorOnTheValueStaysThere) {
    int_list_t list;
    list.append(7);
    list.append(7);
    // The cursor is on the second 7; a scan would stop on the first.
    EXPECT_TRUE(list.find(7));
    int v = 0;
    EXPECT_TRUE(list.prev(v, false));
    EXPECT_EQ(v, 7);
}

TEST(ValueListCt, GetIndexMovesTheCursorOnAMatch) {
    int_list_t list;
    for (int i : {10, 20, 30}) list.append(i);
    EXPECT_EQ(list.get_index(20), 1u);
    EXPECT_EQ(current_of(list), 20);
    EXPECT_EQ(list.get_index(99), all_bits);
    EXPECT_EQ(current_of(list), 20);
}

TEST(ValueListCt, NextFromValueStepsFromThatValue) {
    int_list_t list;
    for (int i : {1, 2, 3, 4}) list.append(i);
    int v = 2;
    EXPECT_TRUE(list.next(v, true));
    EXPECT_EQ(v, 3);
    EXPECT_EQ(current_of(list), 3);
    // The cursor on the value: steps from there.
    v = 3;
    EXPECT_TRUE(list.next(v, true));
    EXPECT_EQ(v, 4);
    v = 9;
    EXPECT_FALSE(list.next(v, true));
    EXPECT_EQ(current_of(list), -1);
    v = 3;
    EXPECT_TRUE(list.prev(v, true));
    EXPECT_EQ(v, 2);
    v = 1;
    EXPECT_FALSE(list.prev(v, true));
    EXPECT_EQ(current_of(list), -1);
}

TEST(ValueListCt, CheckUniquenessPointsAtTheEarlierRepetition) {
    int_list_t list;
    for (int i : {1, 2, 3, 2, 1}) list.append(i);
    int v = 0;
    EXPECT_FALSE(list.check_uniqueness(v));
    EXPECT_EQ(v, 1);
    int before = 0;
    EXPECT_FALSE(list.prev(before, false)); // the cursor stood on the first item
    int_list_t unique;
    for (int i : {1, 2, 3}) unique.append(i);
    EXPECT_TRUE(unique.check_uniqueness(v));
}

TEST(ValueListCt, CheckUniquenessCursorIsOnTheFirstItemOfThePair) {
    int_list_t list;
    for (int i : {5, 7, 8, 7}) list.append(i);
    int v = 0;
    EXPECT_FALSE(list.check_uniqueness(v));
    EXPECT_EQ(v, 7);
    int next = 0;
    EXPECT_TRUE(list.next(next, false));
    EXPECT_EQ(next, 8);
}

TEST(ValueListCt, RemoveCurrentWithoutCursorTouchesNothing) {
    int_list_t list;
    list.append(1);
    int v = 0;
    list.next(v, false);
    bool more = true;
    v = 77;
    EXPECT_FALSE(list.remove_current(more, v));
    EXPECT_TRUE(more);
    EXPECT_EQ(v, 77);
    EXPECT_EQ(list.get_count(), 1u);
}

TEST(ValueListCt, RemoveCurrentMovesToTheSuccessor) {
    int_list_t list;
    for (int i : {1, 2, 3}) list.append(i);
    list.find(2);
    bool more = false;
    int v = 0;
    EXPECT_TRUE(list.remove_current(more, v));
    EXPECT_TRUE(more);
    EXPECT_EQ(v, 3);
    EXPECT_EQ(current_of(list), 3);
    v = 55;
    EXPECT_TRUE(list.remove_current(more, v));
    EXPECT_FALSE(more);
    EXPECT_EQ(v, 55);
    EXPECT_EQ(current_of(list), -1);
    EXPECT_EQ(walk(list), (std::vector<int>{1}));
    EXPECT_TRUE(list.remove(1));
    EXPECT_FALSE(list.remove(1));
    EXPECT_EQ(list.get_count(), 0u);
}

TEST(ValueListCt, MoveCurrentToFrontAndEnd) {
    int_list_t list;
    for (int i : {1, 2, 3}) list.append(i);
    list.find(2);
    list.move_current(true);
    EXPECT_EQ(walk(list), (std::vector<int>{2, 1, 3}));
    list.find(1);
    list.move_current(false);
    EXPECT_EQ(current_of(list), 1);
    EXPECT_EQ(walk(list), (std::vector<int>{2, 3, 1}));
    list.find(2);
    list.move_current(true);
    EXPECT_EQ(current_of(list), 2);
    EXPECT_EQ(walk(list), (std::vector<int>{2, 3, 1}));
    int v = 0;
    list.last(v);
    list.next(v, false);
    list.move_current(true);
    EXPECT_EQ(walk(list), (std::vector<int>{2, 3, 1}));
}

TEST(ValueListCt, MoveBeforeAndAfterCurrent) {
    int_list_t list;
    for (int i : {1, 2, 3, 4}) list.append(i);
    list.find(2);
    list.move_before_current(4);
    EXPECT_EQ(current_of(list), 4);
    EXPECT_EQ(walk(list), (std::vector<int>{1, 4, 2, 3}));
    list.find(1);
    list.move_after_current(3);
    EXPECT_EQ(current_of(list), 3);
    EXPECT_EQ(walk(list), (std::vector<int>{1, 3, 4, 2}));
}

TEST(ValueListCt, MoveBesideCurrentNoMoveCases) {
    int_list_t list;
    for (int i : {1, 2, 3}) list.append(i);
    list.find(2);
    list.move_before_current(1); // already the neighbour before
    EXPECT_EQ(current_of(list), 2);
    list.move_after_current(3); // already the neighbour after
    EXPECT_EQ(current_of(list), 2);
    list.move_before_current(2); // the cursor's own value
    EXPECT_EQ(current_of(list), 2);
    EXPECT_EQ(walk(list), (std::vector<int>{1, 2, 3}));
    // Without a cursor nothing happens.
    list.move_before_current(3);
    EXPECT_EQ(walk(list), (std::vector<int>{1, 2, 3}));
    // A value that is not in the list: the search leaves the cursor null.
    list.find(2);
    list.move_after_current(9);
    EXPECT_EQ(current_of(list), -1);
    EXPECT_EQ(walk(list), (std::vector<int>{1, 2, 3}));
}

TEST(ValueListCt, InsertBesideCurrentNeedsACursor) {
    int_list_t list;
    list.insert_before_current(1);
    list.insert_after_current(1);
    EXPECT_EQ(list.get_count(), 0u);
    list.append(2);
    list.insert_before_current(1);
    EXPECT_EQ(current_of(list), 1);
    list.find(2);
    list.insert_after_current(3);
    EXPECT_EQ(current_of(list), 3);
    EXPECT_EQ(walk(list), (std::vector<int>{1, 2, 3}));
}

TEST(ValueListCt, SetCurrentOverwritesTheValue) {
    int_list_t list;
    EXPECT_FALSE(list.set_current(5));
    list.append(1);
    EXPECT_TRUE(list.set_current(5));
    EXPECT_EQ(walk(list), (std::vector<int>{5}));
}

TEST(ValueListCt, ClearKeepsTheLock) {
    auto* lock = new thl_crit_section_c(false);
    int_list_t list(lock);
    list.append(1);
    list.clear();
    EXPECT_EQ(list.get_count(), 0u);
    EXPECT_EQ(current_of(list), -1);
    EXPECT_EQ(list.get_lock(), lock);
    list.append(2);
    EXPECT_EQ(walk(list), (std::vector<int>{2}));
    thl_lock_c hold(list.get_lock());
}

struct host_ip_s {
    std::uint32_t address;
    std::uint16_t port;
    bool operator==(const host_ip_s& other) const {
        return address == other.address && port == other.port;
    }
};

TEST(ValueListCt, RecordValuesCompareByEveryField) {
    value_list_ct<host_ip_s> list;
    list.append({0x7F000001u, 80});
    list.append({0x7F000001u, 443});
    EXPECT_EQ(list.get_index({0x7F000001u, 443}), 1u);
    EXPECT_FALSE(list.find({0x7F000002u, 80}));
    host_ip_s out{};
    EXPECT_TRUE(list.check_uniqueness(out));
}

TEST(ValueListCt, MillionItemsBuiltAndDestroyed) {
    auto* list = new value_list_ct<std::uint64_t>;
    for (std::uint64_t i = 0; i < 1000000; ++i) list->append(i);
    EXPECT_EQ(list->get_count(), 1000000u);
    delete list;
}

// ---- value_ptr_list_ct

using pair_list_t = value_ptr_list_ct<std::uint64_t, tracked_s>;

TEST(ValuePtrListCt, GetIndexOfPtrReadsOnlyTheCursorItem) {
    pair_list_t list;
    tracked_s a(1, nullptr), b(2, nullptr), c(3, nullptr);
    list.append_pair(1, &a);
    list.append_pair(2, &b);
    list.append_pair(3, &c);
    // The cursor is on c after the last append.
    EXPECT_EQ(list.get_index_of_ptr(&c), 0u);
    EXPECT_EQ(list.current_ptr(), &a);
    // Another item holds b, but the cursor's item decides.
    EXPECT_EQ(list.get_index_of_ptr(&b), all_bits);
    EXPECT_EQ(list.current_ptr(), &a);
    list.last_ptr();
    list.next_ptr();
    EXPECT_EQ(list.get_index_of_ptr(&a), all_bits);
}

TEST(ValuePtrListCt, PairsWalkByPointer) {
    pair_list_t list;
    tracked_s a(1, nullptr), b(2, nullptr), c(3, nullptr);
    EXPECT_EQ(list.first_ptr(), nullptr);
    EXPECT_EQ(list.next_ptr(), nullptr);
    auto* item = list.append_pair(2, &b);
    EXPECT_EQ(item->pointer, &b);
    EXPECT_EQ(item->value, 2u);
    list.insert_pair(1, &a);
    list.append_pair(3, &c);
    EXPECT_EQ(list.first_ptr(), &a);
    EXPECT_EQ(list.next_ptr(), &b);
    EXPECT_EQ(list.next_ptr(), &c);
    EXPECT_EQ(list.next_ptr(), nullptr);
    EXPECT_EQ(list.current_ptr(), nullptr);
    EXPECT_EQ(list.prev_ptr(), nullptr);
    EXPECT_EQ(list.last_ptr(), &c);
    EXPECT_EQ(list.prev_ptr(), &b);
    std::uint64_t key = 0;
    EXPECT_TRUE(list.first(key));
    EXPECT_EQ(key, 1u);
}

TEST(ValuePtrListCt, FindKeyAndFindPtr) {
    pair_list_t list;
    tracked_s a(1, nullptr), b(2, nullptr), other(9, nullptr);
    list.append_pair(10, &a);
    list.append_pair(20, &b);
    EXPECT_EQ(list.find_key(10), &a);
    EXPECT_EQ(list.current_ptr(), &a);
    EXPECT_EQ(list.find_key(30), nullptr);
    EXPECT_EQ(list.find_ptr(&b), &b);
    EXPECT_EQ(list.current_ptr(), &b);
    EXPECT_EQ(list.find_ptr(&other), nullptr);
    EXPECT_EQ(list.current_ptr(), nullptr);
    std::uint64_t key = 0;
    EXPECT_TRUE(list.find_key_of_ptr(&b, key));
    EXPECT_EQ(key, 20u);
    EXPECT_FALSE(list.find_key_of_ptr(&other, key));
}

TEST(ValuePtrListCt, RemovePtrGivesThePointerOfTheNewCurrentItem) {
    pair_list_t list;
    tracked_s a(1, nullptr), b(2, nullptr), c(3, nullptr), other(9, nullptr);
    list.append_pair(1, &a);
    list.append_pair(2, &b);
    list.append_pair(3, &c);
    EXPECT_EQ(list.remove_ptr(&other), nullptr);
    EXPECT_EQ(list.get_count(), 3u);
    EXPECT_EQ(list.remove_ptr(&a), &b);
    EXPECT_EQ(list.current_ptr(), &b);
    list.last_ptr();
    EXPECT_EQ(list.remove_ptr(nullptr), nullptr);
    EXPECT_EQ(list.get_count(), 1u);
    // With a null pointer and no current item nothing goes.
    EXPECT_EQ(list.remove_ptr(nullptr), nullptr);
    EXPECT_EQ(list.get_count(), 1u);
}

TEST(ValuePtrListCt, ClearAndDeleteDeletesEveryPointer) {
    std::vector<int> deleted;
    pair_list_t list;
    for (int i = 0; i < 3; ++i)
        list.append_pair(static_cast<std::uint64_t>(i), new tracked_s(i, &deleted));
    list.clear_and_delete();
    EXPECT_EQ(deleted, (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(list.get_count(), 0u);
}

TEST(ValuePtrListCt, RemoveAndDeleteByKey) {
    std::vector<int> deleted;
    pair_list_t list;
    list.append_pair(1, new tracked_s(1, &deleted));
    list.append_pair(2, new tracked_s(2, &deleted));
    EXPECT_TRUE(list.remove_and_delete(1));
    EXPECT_EQ(deleted, (std::vector<int>{1}));
    EXPECT_FALSE(list.remove_and_delete(7));
    EXPECT_EQ(list.get_count(), 1u);
    list.clear_and_delete();
}

TEST(ValuePtrListCt, SetCurrentPtrAndPair) {
    pair_list_t list;
    tracked_s a(1, nullptr), b(2, nullptr);
    EXPECT_EQ(list.set_current_ptr(&a), nullptr);
    EXPECT_EQ(list.set_current_pair(1, &a), nullptr);
    list.append_pair(1, &a);
    EXPECT_EQ(list.set_current_ptr(&b), &a);
    EXPECT_EQ(list.find_key(1), &b);
    EXPECT_EQ(list.set_current_pair(5, &a), &b);
    EXPECT_EQ(list.find_key(5), &a);
    EXPECT_EQ(list.find_key(1), nullptr);
}

TEST(ValuePtrListCt, FindDuplicatePtr) {
    pair_list_t list;
    tracked_s a(1, nullptr), b(2, nullptr);
    list.append_pair(1, &a);
    list.append_pair(2, &b);
    EXPECT_EQ(list.find_duplicate_ptr(), nullptr);
    list.append_pair(3, &b);
    EXPECT_EQ(list.find_duplicate_ptr(), &b);
}

TEST(ValuePtrListCt, InsertPairBesideCurrent) {
    pair_list_t list;
    tracked_s a(1, nullptr), b(2, nullptr), c(3, nullptr);
    list.insert_pair_before_current(1, &a);
    EXPECT_EQ(list.get_count(), 0u);
    list.append_pair(2, &b);
    list.insert_pair_before_current(1, &a);
    EXPECT_EQ(list.current_ptr(), &a);
    list.find_ptr(&b);
    list.insert_pair_after_current(3, &c);
    EXPECT_EQ(list.current_ptr(), &c);
    EXPECT_EQ(list.first_ptr(), &a);
    EXPECT_EQ(list.next_ptr(), &b);
    EXPECT_EQ(list.next_ptr(), &c);
}

TEST(ValuePtrListCt, MoveBeforePtrMovesBesideTheCursor) {
    pair_list_t list;
    tracked_s a(1, nullptr), b(2, nullptr), c(3, nullptr);
    list.append_pair(1, &a);
    list.append_pair(2, &b);
    list.append_pair(3, &c);
    list.find_ptr(&a);
    list.move_before_ptr(&c);
    EXPECT_EQ(list.current_ptr(), &c);
    EXPECT_EQ(list.first_ptr(), &c);
    EXPECT_EQ(list.next_ptr(), &a);
    EXPECT_EQ(list.next_ptr(), &b);
}

TEST(ValuePtrListCt, MoveAfterPtrTestsThePreviousNeighbour) {
    pair_list_t list;
    tracked_s a(1, nullptr), b(2, nullptr), c(3, nullptr);
    list.append_pair(1, &a);
    list.append_pair(2, &b);
    list.append_pair(3, &c);
    // The pointer before the cursor is not moved behind it.
    list.find_ptr(&b);
    list.move_after_ptr(&a);
    EXPECT_EQ(list.current_ptr(), &b);
    EXPECT_EQ(list.first_ptr(), &a);
    EXPECT_EQ(list.next_ptr(), &b);
    // A pointer elsewhere moves just after the cursor.
    list.first_ptr();
    list.move_after_ptr(&c);
    EXPECT_EQ(list.current_ptr(), &c);
    EXPECT_EQ(list.first_ptr(), &a);
    EXPECT_EQ(list.next_ptr(), &c);
    EXPECT_EQ(list.next_ptr(), &b);
}

// ---- ptr_list_ct

TEST(PtrListCt, ForwardsKeepTheListMeaning) {
    ptr_list_ct<int> list(false);
    int v[3] = {1, 2, 3};
    list.append(&v[1]);
    list.insert(&v[0]);
    list.append(&v[2]);
    EXPECT_EQ(list.get_count(), 3u);
    EXPECT_EQ(list.get_list()->first(), &v[0]);
    EXPECT_EQ(list.first(), &v[0]);
    EXPECT_EQ(list.next(nullptr), &v[1]);
    EXPECT_EQ(list.current(), &v[1]);
    EXPECT_EQ(list.last(), &v[2]);
    EXPECT_EQ(list.prev(nullptr), &v[1]);
    EXPECT_EQ(list.get_index(&v[2]), 2u);
    EXPECT_EQ(list.find_data(&v[0]), &v[0]);
    EXPECT_EQ(list.remove_current(&v[1]), &v[2]);
    EXPECT_EQ(list.get_count(), 2u);
    list.clear();
    EXPECT_EQ(list.get_count(), 0u);
    EXPECT_EQ(list.first(), nullptr);
}

int compare_ints_down(const void* a, const void* b) {
    int x = *static_cast<const int*>((*static_cast<ptr_list_element_c* const*>(a))->data);
    int y = *static_cast<const int*>((*static_cast<ptr_list_element_c* const*>(b))->data);
    return y - x;
}

TEST(PtrListCt, SortSeesElementAddresses) {
    ptr_list_ct<int> list(true);
    int v[4] = {3, 1, 4, 2};
    for (int& x : v) list.append(&x);
    list.sort(compare_ints_down);
    std::vector<int> order;
    for (int* p = list.first(); p; p = list.next(nullptr)) order.push_back(*p);
    EXPECT_EQ(order, (std::vector<int>{4, 3, 2, 1}));
}

TEST(PtrListCt, ClearAndDeleteDeletesTheRecords) {
    std::vector<int> deleted;
    ptr_list_ct<tracked_s> list(true);
    for (int i = 0; i < 3; ++i) list.append(new tracked_s(i, &deleted));
    list.clear_and_delete();
    EXPECT_EQ(deleted, (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(list.get_count(), 0u);
}

TEST(PtrListCt, ClearLeavesTheRecords) {
    std::vector<int> deleted;
    tracked_s a(1, &deleted);
    ptr_list_ct<tracked_s> list(false);
    list.append(&a);
    list.clear();
    EXPECT_TRUE(deleted.empty());
    EXPECT_EQ(list.get_count(), 0u);
}

TEST(PtrListCt, MillionElementsBuiltAndDestroyed) {
    static int word = 0;
    auto* list = new ptr_list_ct<int>(false);
    for (int i = 0; i < 1000000; ++i) list->append(&word);
    EXPECT_EQ(list->get_count(), 1000000u);
    delete list;
}

} // namespace
