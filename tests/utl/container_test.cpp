// ptr_string_list_c: names beside data, the name buffer, the cursor of find, get_index and the
// moves, the six sort modes and the sort check, copy and the printed texts. string_list_c: the
// walk by names and remove. string_array_c: owned strings, searches and removal.
#include "common/test_support.h"
#include "support/trc.h"
#include "utl/container.h"
#include "utl/utl.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

using test_support::trace_capture_c;
using test_support::trace_line;

constexpr std::size_t no_position = static_cast<std::size_t>(-1);
constexpr std::uint64_t all_bits = ~std::uint64_t{0};

// Reads the fields of the list and calls the writers of the print_ operations.
class list_probe_c : public ptr_string_list_c {
  public:
    using ptr_string_list_c::ptr_string_list_c;
    std::uint64_t count() const { return _count; }
    bool has_lock() const { return _lock != nullptr; }
    const char* list_name() const { return _list_name; }
    const ptr_list_element_c* cursor() const { return _current; }
    const ptr_string_list_element_c* cursor_element() const { return _current_element(); }
    void break_count() { ++_count; }
    // The same fields of any list, such as a copy.
    static bool lock_of(const ptr_list_c& list) { return list.*(&list_probe_c::_lock) != nullptr; }
    static const char* name_of(const ptr_list_c& list) { return list.*(&list_probe_c::_list_name); }

    std::string written(void (ptr_string_list_c::*writer)(std::FILE*) const) const {
        test_support::temp_dir_c dir;
        std::string path = dir.join("out.txt");
        std::FILE* out = std::fopen(path.c_str(), "wb");
        (this->*writer)(out);
        std::fclose(out);
        return test_support::read_file(path);
    }
    std::string curr() const { return written(&list_probe_c::_write_curr_name); }
    std::string next_name() const { return written(&list_probe_c::_write_next_name); }
    std::string prev_name() const { return written(&list_probe_c::_write_prev_name); }
};

const void* word(std::uintptr_t n) { return reinterpret_cast<const void*>(n); }

// The names in list order, "-" for a nameless element.
std::vector<std::string> names(const ptr_string_list_c& list) {
    std::vector<std::string> out;
    ptr_string_list_c& walkable = const_cast<ptr_string_list_c&>(list);
    list.first();
    while (list.current() || walkable.get_current_name(nullptr)) {
        const char* name = walkable.get_current_name(nullptr);
        out.push_back(name ? name : "-");
        list.next(nullptr);
    }
    return out;
}

void fill(ptr_string_list_c& list, const std::vector<const char*>& entries) {
    std::uintptr_t n = 1;
    for (const char* name : entries) list.append(name, word(n++));
}

// ---- ptr_string_list_c: the edge cases

TEST(PtrStringList, FindWithTheCursorOnAMatchDoesNotWalk) {
    ptr_string_list_c list(false);
    list.append("a", word(1));
    list.append("a", word(2));
    // The cursor is on the second "a"; a walk from the first would give word 1.
    EXPECT_EQ(list.find("a", true), word(2));
    EXPECT_EQ(list.current(), word(2));
    list.first();
    EXPECT_EQ(list.find("a", true), word(1));
}

TEST(PtrStringList, FindAbcWithoutCaseFindsAbcOnlyOnTheSameLength) {
    list_probe_c list(false);
    list.append("ABCD", word(1));
    list.append("ABC", word(2));
    list.append("x", word(3));
    EXPECT_EQ(list.find("abc", true), nullptr);
    EXPECT_EQ(list.current(), word(3)); // a failed search leaves the cursor
    EXPECT_EQ(list.find("abc", false), word(2));
    EXPECT_EQ(list.current(), word(2));
    EXPECT_EQ(list.find("abcd", false), word(1));
    EXPECT_EQ(list.find(nullptr, false), nullptr);
}

TEST(PtrStringList, GetIndexNullFindsANamelessElement) {
    ptr_string_list_c list(false);
    list.append("a", word(1));
    list.append(word(2));
    list.append("b", word(3));
    list.first();
    EXPECT_EQ(list.get_index(nullptr), 1u);
    EXPECT_EQ(list.current(), word(2));
    ptr_string_list_c named(false);
    named.append("a", word(1));
    EXPECT_EQ(named.get_index(nullptr), no_position);
}

TEST(PtrStringList, InsertBeforeCurrentWithNoCurrentElementLeavesListUnchanged) {
    list_probe_c list(false);
    fill(list, {"a", "b"});
    list.last();
    list.next(nullptr);
    list.insert_before_current("x", word(9));
    list.insert_after_current("x", word(9));
    list.insert_before_current(word(9));
    list.insert_after_current(word(9));
    EXPECT_EQ(list.count(), 2u);
    EXPECT_EQ(names(list), (std::vector<std::string>{"a", "b"}));
}

TEST(PtrStringList, SortByNamesSixDoesNothing) {
    ptr_string_list_c list(false);
    fill(list, {"c", "a", "b"});
    list.sort_by_names(6);
    list.sort_by_names(-1);
    EXPECT_EQ(names(list), (std::vector<std::string>{"c", "a", "b"}));
}

TEST(PtrStringList, PrintNamesOnEmptyListPrintsNothingAndReturnsZero) {
    ptr_string_list_c list(false);
    testing::internal::CaptureStderr();
    std::uint64_t count = list.print_names();
    std::string printed = testing::internal::GetCapturedStderr();
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(printed, "");
}

// ---- ptr_string_list_c: the rules

TEST(PtrStringList, AddingMakesTheNewElementCurrent) {
    list_probe_c list(false);
    list.append("b", word(2));
    list.insert("a", word(1));
    EXPECT_EQ(list.current(), word(1));
    list.append(word(4));
    EXPECT_EQ(list.get_current_name(nullptr), nullptr);
    list.insert_before_current("c", word(3));
    EXPECT_EQ(list.current(), word(3));
    list.insert_after_current("d", word(5));
    EXPECT_EQ(list.current(), word(5));
    list.insert(word(6));
    EXPECT_EQ(names(list), (std::vector<std::string>{"-", "a", "b", "c", "d", "-"}));
    EXPECT_EQ(list.count(), 6u);
}

TEST(PtrStringList, SetNameReusesTheBufferAndForgetsTheRoom) {
    list_probe_c list(false);
    list.append("abcdef", word(1));
    const ptr_string_list_element_c* e = list.cursor_element();
    const char* buffer = e->get_name();
    list.set_name("abc", nullptr);
    EXPECT_EQ(e->get_name(), buffer);
    EXPECT_STREQ(e->get_name(), "abc");
    EXPECT_EQ(e->get_name_length(), 3u);
    // The room of the longer name is not remembered: a name of four takes a new copy.
    list.set_name("abcd", nullptr);
    EXPECT_STREQ(e->get_name(), "abcd");
    EXPECT_EQ(e->get_name_length(), 4u);
    list.set_name(nullptr, nullptr);
    EXPECT_EQ(e->get_name(), nullptr);
    EXPECT_EQ(e->get_name_length(), 0u);
    list.set_name("z", nullptr);
    EXPECT_STREQ(list.get_current_name(nullptr), "z");
}

TEST(PtrStringList, SetNameAndGetCurrentNameWithData) {
    list_probe_c list(false);
    fill(list, {"a", "b", "c"});
    EXPECT_STREQ(list.get_current_name(word(2)), "b");
    EXPECT_EQ(list.current(), word(2));
    list.set_name("B", word(1));
    EXPECT_EQ(names(list), (std::vector<std::string>{"B", "b", "c"}));
    // Without a current element nothing is named.
    list.last();
    list.next(nullptr);
    list.set_name("q", nullptr);
    EXPECT_EQ(list.get_current_name(nullptr), nullptr);
    EXPECT_EQ(names(list), (std::vector<std::string>{"B", "b", "c"}));
}

TEST(PtrStringList, CheckAllNamesPresence) {
    ptr_string_list_c list(false);
    EXPECT_TRUE(list.check_all_names_presence());
    fill(list, {"a", "b"});
    EXPECT_TRUE(list.check_all_names_presence());
    list.append(word(7));
    EXPECT_FALSE(list.check_all_names_presence());
}

TEST(PtrStringList, CheckNamesUniquenessGivesTheFirstRepeatedName) {
    ptr_string_list_c list(false);
    EXPECT_EQ(list.check_names_uniqueness(), nullptr);
    list.append(word(1));
    list.append(word(2));
    fill(list, {"ab", "abc", "b", "ABC"});
    EXPECT_EQ(list.check_names_uniqueness(), nullptr);
    list.append("b", word(9));
    list.append("abc", word(9));
    const char* repeated = list.check_names_uniqueness();
    ASSERT_NE(repeated, nullptr);
    EXPECT_STREQ(repeated, "abc");
}

TEST(PtrStringList, GetIndexByNameMovesTheCursor) {
    ptr_string_list_c list(false);
    fill(list, {"a", "bb", "b"});
    EXPECT_EQ(list.get_index("b"), 2u);
    EXPECT_EQ(list.current(), word(3));
    EXPECT_EQ(list.get_index("B"), no_position);
    EXPECT_EQ(list.current(), word(3));
    EXPECT_EQ(list.get_index("a"), 0u);
}

TEST(PtrStringList, FindByDataForwards) {
    ptr_string_list_c list(false);
    fill(list, {"a", "b"});
    EXPECT_EQ(list.find(word(1)), word(1));
    EXPECT_EQ(list.current(), word(1));
    EXPECT_EQ(list.find(word(8)), nullptr);
}

TEST(PtrStringList, MoveBeforeCurrentByName) {
    list_probe_c list(false);
    fill(list, {"a", "b", "c", "d"});
    list.get_index("b");
    list.move_before_current("d");
    EXPECT_EQ(list.current(), word(4)); // the moved element is current, as the list makes it
    EXPECT_EQ(names(list), (std::vector<std::string>{"a", "d", "b", "c"}));
    list.get_index("b");
    list.move_after_current("a");
    EXPECT_EQ(names(list), (std::vector<std::string>{"d", "b", "a", "c"}));
}

TEST(PtrStringList, MoveByNameKeepsTheCursorWhenNothingMoves) {
    list_probe_c list(false);
    fill(list, {"a", "b", "c"});
    list.get_index("b");
    list.move_before_current("a");
    EXPECT_EQ(list.current(), word(2));
    list.move_after_current("c");
    EXPECT_EQ(list.current(), word(2));
    list.move_after_current("b");
    list.move_after_current("zz");
    EXPECT_EQ(list.current(), word(2));
    EXPECT_EQ(names(list), (std::vector<std::string>{"a", "b", "c"}));
    // Without a current element nothing moves.
    list.move_before_current("c");
    EXPECT_EQ(names(list), (std::vector<std::string>{"a", "b", "c"}));
}

TEST(PtrStringList, SortModesOrderNamesAndPlaceNameless) {
    const std::vector<const char*> entries = {"b", "B", nullptr, "a", "C", "A"};
    struct case_s {
        int mode;
        std::vector<std::string> expected;
    };
    const std::vector<case_s> cases = {
        {0, {"A", "B", "C", "a", "b", "-"}},
        {2, {"A", "a", "B", "b", "C", "-"}},
        {3, {"-", "b", "a", "C", "B", "A"}},
        {5, {"-", "C", "b", "B", "a", "A"}},
    };
    for (const case_s& c : cases) {
        ptr_string_list_c list(false);
        fill(list, entries);
        list.sort_by_names(c.mode);
        EXPECT_EQ(names(list), c.expected) << "mode " << c.mode;
        EXPECT_TRUE(list.is_sorted_by_names(c.mode)) << "mode " << c.mode;
    }
}

TEST(PtrStringList, SortModesWithoutCaseKeepEqualNamesTogether) {
    for (int mode : {1, 4}) {
        ptr_string_list_c list(false);
        fill(list, {"b", nullptr, "A", "c", "B", "a"});
        list.sort_by_names(mode);
        std::vector<std::string> got = names(list);
        ASSERT_EQ(got.size(), 6u);
        std::vector<std::string> folded;
        for (const std::string& n : got)
            folded.push_back(n == "-" ? "-" : std::string(1, static_cast<char>(n[0] | 0x20)));
        if (mode == 1)
            EXPECT_EQ(folded, (std::vector<std::string>{"a", "a", "b", "b", "c", "-"}));
        else
            EXPECT_EQ(folded, (std::vector<std::string>{"-", "c", "b", "b", "a", "a"}));
        EXPECT_TRUE(list.is_sorted_by_names(mode));
    }
}

TEST(PtrStringList, IsSortedByNamesFindsAPairOutOfOrder) {
    ptr_string_list_c empty(false);
    EXPECT_TRUE(empty.is_sorted_by_names(0));
    ptr_string_list_c one(false);
    one.append("z", word(1));
    EXPECT_TRUE(one.is_sorted_by_names(3));
    ptr_string_list_c list(false);
    fill(list, {"a", "c", "b"});
    EXPECT_FALSE(list.is_sorted_by_names(0));
    EXPECT_FALSE(list.is_sorted_by_names(3));
    EXPECT_TRUE(list.is_sorted_by_names(6));
    ptr_string_list_c same(false);
    fill(same, {"a", "A"});
    EXPECT_FALSE(same.is_sorted_by_names(0)); // "a" > "A" by bytes
    EXPECT_TRUE(same.is_sorted_by_names(1));  // equal without case
    EXPECT_FALSE(same.is_sorted_by_names(2)); // equal without case, then bytes
}

TEST(PtrStringList, IsSortedByNamesTreatsNamelessElementsAsTheComparatorsDo) {
    ptr_string_list_c name_after_nameless(false);
    name_after_nameless.append(word(1));
    name_after_nameless.append("a", word(2));
    EXPECT_FALSE(name_after_nameless.is_sorted_by_names(0));
    EXPECT_TRUE(name_after_nameless.is_sorted_by_names(3));
    ptr_string_list_c nameless_after_name(false);
    nameless_after_name.append("a", word(1));
    nameless_after_name.append(word(2));
    EXPECT_TRUE(nameless_after_name.is_sorted_by_names(1));
    EXPECT_FALSE(nameless_after_name.is_sorted_by_names(4));
    ptr_string_list_c two_nameless(false);
    two_nameless.append(word(1));
    two_nameless.append(word(2));
    for (int mode = 0; mode < 6; ++mode) EXPECT_TRUE(two_nameless.is_sorted_by_names(mode));
}

TEST(PtrStringList, CopyKeepsNamesDataListNameAndLock) {
    list_probe_c list(true);
    list.set_list_name("names");
    fill(list, {"a", nullptr, "c"});
    ptr_list_c* copied = list.copy();
    auto* other = static_cast<ptr_string_list_c*>(copied);
    EXPECT_EQ(names(*other), (std::vector<std::string>{"a", "-", "c"}));
    EXPECT_EQ(other->first(), word(1));
    EXPECT_EQ(other->next(nullptr), word(2));
    EXPECT_TRUE(list_probe_c::lock_of(*other));
    EXPECT_STREQ(list_probe_c::name_of(*other), "names");
    // The walk leaves this list's cursor off the end.
    list.get_index("a");
    delete list.copy();
    EXPECT_EQ(list.cursor(), nullptr);
    delete copied;
    list_probe_c plain(false);
    ptr_list_c* plain_copy = plain.copy();
    EXPECT_FALSE(list_probe_c::lock_of(*plain_copy));
    delete plain_copy;
}

TEST(PtrStringList, PrintNamesWritesEveryNameAndReturnsTheCount) {
    list_probe_c list(false);
    list.append("alpha", word(1));
    list.append(word(2));
    testing::internal::CaptureStderr();
    std::uint64_t count = list.print_names();
    std::string printed = testing::internal::GetCapturedStderr();
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(printed, "\t  1:  alpha\n\t  2:  No Name Found\n");
}

TEST(PtrStringList, PrintNamesReportsACountThatDisagrees) {
    list_probe_c list(false);
    list.append("a", word(1));
    list.break_count();
    testing::internal::CaptureStderr();
    std::uint64_t count = list.print_names();
    std::string printed = testing::internal::GetCapturedStderr();
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(printed, "\t  1:  a\n\tList Error: num 2 != 1\n");
}

TEST(PtrStringList, CurrentNextAndPrevNameTexts) {
    list_probe_c list(false);
    EXPECT_EQ(list.curr(), "\tNo Current Elemnt\n");
    EXPECT_EQ(list.next_name(), "\tNo Current Elemnt\n");
    EXPECT_EQ(list.prev_name(), "\tNo Current Elemnt\n");
    list.append("a", word(1));
    list.append(word(2));
    list.append("c", word(3));
    list.first();
    EXPECT_EQ(list.curr(), "\tCurrent Name: \"a\"\n");
    EXPECT_EQ(list.next_name(), "\tNo Next Name Found\n");
    EXPECT_EQ(list.prev_name(), "\tNo Prev Elemnt\n");
    list.next(nullptr);
    EXPECT_EQ(list.curr(), "\tNo Current Name Found\n");
    EXPECT_EQ(list.next_name(), "\tNext Name: \"c\"\n");
    EXPECT_EQ(list.prev_name(), "\tPrev Name: \"a\"\n");
    list.last();
    EXPECT_EQ(list.next_name(), "\tNo Next Elemnt\n");
    EXPECT_EQ(list.prev_name(), "\tNo Prev Name Found\n");
}

TEST(PtrStringList, PrintCurrNameWritesNothingWithoutAConsole) {
    list_probe_c list(false);
    fill(list, {"a", "b"});
    testing::internal::CaptureStderr();
    bool console = qvtr_is_console_application();
    list.print_curr_name(word(1));
    list.print_next_name(nullptr);
    list.print_prev_name(word(2));
    std::string printed = testing::internal::GetCapturedStderr();
    // With data the element becomes current even when nothing is written.
    EXPECT_EQ(list.current(), word(2));
    if (console) GTEST_SKIP() << "standard error is a console here";
    EXPECT_EQ(printed, "");
}

TEST(PtrStringList, ElementsOfAMillionAreDestroyed) {
    auto* list = new ptr_string_list_c(false);
    for (std::uintptr_t i = 1; i <= 1000000; ++i) list->append(i % 2 ? "name" : nullptr, word(i));
    EXPECT_EQ(list->get_index("name"), 0u);
    delete list;
}

// ---- string_list_c

TEST(StringList, StringListRemoveXWithTheCursorOnYReturnsNull) {
    string_list_c list(false);
    list.append("x");
    list.append("y");
    EXPECT_STREQ(list.last(), "y");
    EXPECT_EQ(list.remove("x"), nullptr);
    EXPECT_EQ(list.get_count(), 2u);
}

TEST(StringList, WalksByNames) {
    string_list_c list(true);
    EXPECT_EQ(list.first(), nullptr);
    list.append("b");
    list.insert("a");
    list.append("c");
    EXPECT_EQ(list.get_count(), 3u);
    EXPECT_STREQ(list.first(), "a");
    EXPECT_STREQ(list.next(), "b");
    EXPECT_STREQ(list.next(), "c");
    EXPECT_EQ(list.next(), nullptr);
    EXPECT_STREQ(list.last(), "c");
    EXPECT_STREQ(list.prev(), "b");
    const char* found = list.find("A", false);
    ASSERT_NE(found, nullptr);
    EXPECT_STREQ(found, "a");
    EXPECT_EQ(list.find("q", true), nullptr);
    list.lock();
    list.unlock();
    EXPECT_EQ(list.check_names_uniqueness(), nullptr);
    list.append("b");
    EXPECT_STREQ(list.check_names_uniqueness(), "b");
    list.clear();
    EXPECT_EQ(list.get_count(), 0u);
}

TEST(StringList, RemoveGivesTheNameThatFollows) {
    string_list_c list(false);
    for (const char* n : {"a", "b", "c"}) list.append(n);
    // The cursor on the name.
    list.find("b", true);
    EXPECT_STREQ(list.remove("b"), "c");
    // No cursor: a walk finds it.
    EXPECT_EQ(list.next(), nullptr);
    EXPECT_STREQ(list.remove("a"), "c");
    EXPECT_EQ(list.remove("zz"), nullptr);
    // Null removes the current one; the last leaves nothing to name.
    EXPECT_STREQ(list.first(), "c");
    EXPECT_EQ(list.remove(nullptr), nullptr);
    EXPECT_EQ(list.get_count(), 0u);
    EXPECT_EQ(list.remove(nullptr), nullptr);
}

TEST(StringList, RemoveComparesBytes) {
    string_list_c list(false);
    list.append("Name");
    list.append("tail");
    list.last();
    list.next();
    EXPECT_EQ(list.remove("name"), nullptr);
    EXPECT_STREQ(list.remove("Name"), "tail");
}

// ---- string_array_c

TEST(StringArray, StringArrayAddTheSameTextTwiceKeepsBothAndCountOfIsTwo) {
    string_array_c array;
    const char* first = array.add("same");
    const char* second = array.add("same");
    EXPECT_NE(first, second);
    EXPECT_EQ(array.get_count(), 2u);
    EXPECT_EQ(array.count_of("same"), 2u);
}

TEST(StringArray, AddCopiesAndNullIsRefused) {
    string_array_c array;
    char text[] = "abc";
    const char* stored = array.add(text);
    ASSERT_NE(stored, nullptr);
    EXPECT_NE(stored, text);
    text[0] = 'X';
    EXPECT_STREQ(array.at(0), "abc");
    EXPECT_EQ(array.add(nullptr), nullptr);
    EXPECT_EQ(array.get_count(), 1u);
}

TEST(StringArray, SearchesCompareBytes) {
    string_array_c array;
    EXPECT_EQ(array.find("a"), nullptr);
    EXPECT_EQ(array.find_index("a"), all_bits);
    EXPECT_EQ(array.count_of("a"), 0u);
    array.add("a");
    array.add("B");
    EXPECT_STREQ(array.find("B"), "B");
    EXPECT_EQ(array.find("b"), nullptr);
    EXPECT_EQ(array.find_index("B"), 1u);
    EXPECT_EQ(array.find(nullptr), nullptr);
    EXPECT_EQ(array.find_index(nullptr), all_bits);
    EXPECT_EQ(array.count_of(nullptr), 0u);
}

TEST(StringArray, RemoveHandsTheTextOver) {
    string_array_c array;
    array.add("a");
    array.add("b");
    array.add("c");
    char* taken = array.remove(std::uint64_t{1});
    ASSERT_NE(taken, nullptr);
    EXPECT_STREQ(taken, "b");
    delete[] taken;
    EXPECT_EQ(array.remove(std::uint64_t{2}), nullptr);
    EXPECT_EQ(array.remove(all_bits), nullptr);
    taken = array.remove("c");
    ASSERT_NE(taken, nullptr);
    delete[] taken;
    EXPECT_EQ(array.remove("c"), nullptr);
    EXPECT_EQ(array.get_count(), 1u);
}

TEST(StringArray, RemoveAndDeleteSaysWhetherThereWasOne) {
    string_array_c array;
    array.add("a");
    array.add("b");
    EXPECT_TRUE(array.remove_and_delete("a"));
    EXPECT_FALSE(array.remove_and_delete("a"));
    EXPECT_TRUE(array.remove_and_delete(std::uint64_t{0}));
    EXPECT_FALSE(array.remove_and_delete(std::uint64_t{0}));
    EXPECT_TRUE(array.is_empty());
}

TEST(StringArray, ClearFreesEveryString) {
    string_array_c array;
    array.add("a");
    array.add_no_copy(utl_n::str_copy("b", false));
    EXPECT_FALSE(array.is_empty());
    array.clear();
    EXPECT_TRUE(array.is_empty());
    EXPECT_EQ(array.get_count(), 0u);
    array.add("c");
    EXPECT_STREQ(array.at(0), "c");
}

TEST(StringArray, AddNoCopyTakesThePointer) {
    string_array_c array;
    char* mine = utl_n::str_copy("own", false);
    EXPECT_EQ(array.add_no_copy(mine), mine);
    EXPECT_EQ(array.find("own"), mine);
}

TEST(StringArray, CopyConstructorCopiesNonNullEntries) {
    string_array_c array;
    array.add("a");
    array.add_no_copy(nullptr);
    array.add("c");
    string_array_c copy(array);
    EXPECT_EQ(copy.get_count(), 2u);
    EXPECT_STREQ(copy.at(0), "a");
    EXPECT_STREQ(copy.at(1), "c");
    EXPECT_NE(copy.at(0), array.at(0));
}

TEST(StringArray, AtOutOfBoundsPrintsTheArrayMessage) {
    trace_capture_c capture;
    string_array_c array;
    array.add("a");
    EXPECT_EQ(array.at(3), nullptr);
    EXPECT_FALSE(trace_line(capture.text(), "array_ct(last = 0), received index 3").empty())
        << capture.text();
}

} // namespace
