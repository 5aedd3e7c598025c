// utl_hash_base_ct<ptr_string_list_c, const char*>: the key of a name, the extra bucket of null
// names, the fixed size, the range of used buckets and the cursor through find, the walks and
// remove_current, and travel_by.
#include "utl/container.h"
#include "utl/container_temp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace {

using hash_t = utl_hash_base_ct<ptr_string_list_c, const char*>;
constexpr std::uint64_t all_bits = ~std::uint64_t{0};

// Data words that are texts, as in the message store.
const char* const one = "one";
const char* const two = "two";
const char* const three = "three";
const char* const four = "four";

std::vector<std::string> walk_forward(hash_t& hash) {
    std::vector<std::string> seen;
    for (const char* data = hash.first(); data; data = hash.next(nullptr)) seen.push_back(data);
    return seen;
}

std::vector<std::string> walk_backward(hash_t& hash) {
    std::vector<std::string> seen;
    for (const char* data = hash.last(); data; data = hash.prev(nullptr)) seen.push_back(data);
    return seen;
}

// A bucket that counts the questions the hash asks it, so that a test can tell which buckets a
// look-up visits.
class counting_bucket_c : public ptr_string_list_c {
  public:
    explicit counting_bucket_c(bool with_lock) : ptr_string_list_c(with_lock) {}

    const char* check_names_uniqueness() const override {
        ++uniqueness_asked;
        entries_of_asked.push_back(container_n::ptr_list_count_reader_c::count(*this));
        return ptr_string_list_c::check_names_uniqueness();
    }
    const void* find(const char* name, bool case_sensitive) const override {
        ++finds_asked;
        return ptr_string_list_c::find(name, case_sensitive);
    }
    using ptr_string_list_c::find;

    static inline int uniqueness_asked = 0;
    static inline std::vector<std::uint64_t> entries_of_asked; // of each bucket asked, in order
    static inline int finds_asked = 0;
};

using counting_hash_t = utl_hash_base_ct<counting_bucket_c, const char*>;

} // namespace

TEST(utl_hash_base, a_size_below_ten_becomes_ten) {
    hash_t small(5, true);
    EXPECT_EQ(small.get_size(), 10u);
    hash_t store(101, true);
    EXPECT_EQ(store.get_size(), 101u);
}

TEST(utl_hash_base, the_key_is_the_byte_sum_plus_the_length_modulo_the_size) {
    hash_t hash(101, true);
    EXPECT_EQ(hash.key_of("ab"), 96u); // 97 + 98 + 2 = 197, 197 mod 101
    EXPECT_EQ(hash.key_of(""), 0u);
}

TEST(utl_hash_base, a_null_name_lives_in_the_extra_bucket) {
    hash_t hash(101, true);
    EXPECT_EQ(hash.key_of(nullptr), 101u);
    hash.append(nullptr, one);
    EXPECT_EQ(hash.first_used(), 101u);
    EXPECT_EQ(hash.last_used(), 101u);
    EXPECT_STREQ(hash.first(), one);
    EXPECT_EQ(hash.get_current_name(nullptr), nullptr);
    EXPECT_EQ(hash.check_names_uniqueness(), nullptr);
}

// The uniqueness check asks the used buckets below `size`: the extra bucket of null names is
// never asked, even when it holds the only entries.
TEST(utl_hash_base, check_names_uniqueness_does_not_visit_the_extra_bucket) {
    counting_hash_t hash(101, true);
    hash.append(nullptr, one);
    hash.append(nullptr, two);
    ASSERT_EQ(hash.first_used(), 101u);
    counting_bucket_c::uniqueness_asked = 0;
    counting_bucket_c::entries_of_asked.clear();
    EXPECT_EQ(hash.check_names_uniqueness(), nullptr);
    EXPECT_EQ(counting_bucket_c::uniqueness_asked, 0);

    hash.append("ab", three); // bucket 96, now the first used
    ASSERT_EQ(hash.first_used(), 96u);
    ASSERT_EQ(hash.last_used(), 101u);
    counting_bucket_c::entries_of_asked.clear();
    EXPECT_EQ(hash.check_names_uniqueness(), nullptr);
    // Bucket 96 with its one entry is asked; the extra bucket, the only one with two, is not.
    const std::vector<std::uint64_t>& asked = counting_bucket_c::entries_of_asked;
    ASSERT_FALSE(asked.empty());
    EXPECT_EQ(asked.front(), 1u);
    EXPECT_EQ(std::count(asked.begin(), asked.end(), 2u), 0);
    EXPECT_LE(asked.size(), 5u) << "buckets 96 to 100 at most";
}

TEST(utl_hash_base, bytes_of_0x80_and_above_subtract) {
    hash_t hash(101, true);
    // 0xE9 as a signed char is -23: 97 - 23 + 2 = 76.
    EXPECT_EQ(hash.key_of("a\xE9"), 76u);
}

TEST(utl_hash_base, upper_and_lower_case_share_a_bucket_only_when_case_is_ignored) {
    hash_t ignoring(101, false);
    EXPECT_EQ(ignoring.key_of("AB"), ignoring.key_of("ab"));
    hash_t sensitive(101, true);
    EXPECT_NE(sensitive.key_of("AB"), sensitive.key_of("ab"));

    ignoring.append("ab", one);
    EXPECT_STREQ(ignoring.find("AB"), one);
    sensitive.append("ab", one);
    EXPECT_EQ(sensitive.find("AB"), nullptr);
}

TEST(utl_hash_base, anagrams_share_a_bucket_either_way) {
    for (bool case_sensitive : {true, false}) {
        hash_t hash(101, case_sensitive);
        EXPECT_EQ(hash.key_of("ab"), hash.key_of("ba"));
        hash.append("ab", one);
        hash.append("ba", two);
        EXPECT_STREQ(hash.find("ab"), one);
        EXPECT_STREQ(hash.find("ba"), two);
    }
}

TEST(utl_hash_base, append_widens_the_used_range_and_counts) {
    hash_t hash(101, true);
    EXPECT_EQ(hash.first_used(), all_bits);
    EXPECT_EQ(hash.last_used(), all_bits);
    EXPECT_EQ(hash.current_bucket(), all_bits);
    hash.append("ab", one); // 96
    EXPECT_EQ(hash.first_used(), 96u);
    EXPECT_EQ(hash.last_used(), 96u);
    EXPECT_EQ(hash.current_bucket(), 96u);
    hash.append("a", two);  // 98
    hash.insert("", three); // 0
    EXPECT_EQ(hash.first_used(), 0u);
    EXPECT_EQ(hash.last_used(), 98u);
    EXPECT_EQ(hash.current_bucket(), 0u);
    EXPECT_EQ(hash.get_count(), 3u);
}

// A bucket's find asks its cursor's entry first: the one appended last, until a walk moves it.
TEST(utl_hash_base, duplicates_are_kept_and_find_asks_the_bucket_cursor_first) {
    hash_t hash(101, true);
    hash.append("id", one);
    hash.append("id", two);
    EXPECT_EQ(hash.get_count(), 2u);
    EXPECT_STREQ(hash.find("id"), two);
    EXPECT_STREQ(hash.first(), one);
    EXPECT_STREQ(hash.find("id"), one);
}

TEST(utl_hash_base, find_of_a_bucket_outside_the_used_range_gives_null_without_a_search) {
    hash_t hash(101, true);
    hash.append("ab", one); // bucket 96
    ASSERT_STREQ(hash.find("ab"), one);
    EXPECT_EQ(hash.current_bucket(), 96u);
    EXPECT_EQ(hash.find(""), nullptr); // bucket 0, below the range
    EXPECT_EQ(hash.current_bucket(), all_bits);
}

TEST(utl_hash_base, find_outside_the_used_range_asks_no_bucket) {
    counting_hash_t hash(101, true);
    hash.append("", one);     // bucket 0
    hash.append("a", two);    // bucket 98
    hash.append("ab", three); // bucket 96
    counting_bucket_c::finds_asked = 0;
    EXPECT_EQ(hash.find("b"), nullptr); // 98 + 1 = 99, above the range
    EXPECT_EQ(hash.current_bucket(), all_bits);
    EXPECT_EQ(counting_bucket_c::finds_asked, 0);
    // Within the range the name's own bucket is asked, once, hit or miss.
    EXPECT_STREQ(hash.find("ab"), three);
    EXPECT_EQ(counting_bucket_c::finds_asked, 1);
    EXPECT_EQ(hash.find("ba"), nullptr); // bucket 96 as well
    EXPECT_EQ(counting_bucket_c::finds_asked, 2);
}

TEST(utl_hash_base, find_in_the_range_that_misses_clears_the_cursor) {
    hash_t hash(101, true);
    hash.append("", one);   // 0
    hash.append("ab", two); // 96
    EXPECT_EQ(hash.find("zz"), nullptr);
    EXPECT_EQ(hash.current_bucket(), all_bits);
    EXPECT_EQ(hash.find(nullptr), nullptr);
}

TEST(utl_hash_base, an_empty_hash_gives_null_everywhere) {
    hash_t hash(101, true);
    EXPECT_EQ(hash.find("ab"), nullptr);
    EXPECT_EQ(hash.find_data(one), nullptr);
    EXPECT_EQ(hash.first(), nullptr);
    EXPECT_EQ(hash.last(), nullptr);
    EXPECT_EQ(hash.next(nullptr), nullptr);
    EXPECT_EQ(hash.prev(nullptr), nullptr);
    EXPECT_EQ(hash.current(), nullptr);
    EXPECT_EQ(hash.remove_current(nullptr), nullptr);
    EXPECT_EQ(hash.get_current_name(nullptr), nullptr);
    EXPECT_EQ(hash.travel_by(
                  "ab", [](const char*, void*) { return true; }, nullptr),
              nullptr);
}

TEST(utl_hash_base, walks_go_bucket_by_bucket_in_both_directions) {
    hash_t hash(101, true);
    hash.append("ab", one);  // 96
    hash.append("", two);    // 0
    hash.append("a", three); // 98
    hash.append("ba", four); // 96, behind "ab"
    EXPECT_EQ(walk_forward(hash), (std::vector<std::string>{"two", "one", "four", "three"}));
    EXPECT_EQ(hash.current_bucket(), all_bits);
    EXPECT_EQ(walk_backward(hash), (std::vector<std::string>{"three", "four", "one", "two"}));
}

TEST(utl_hash_base, next_and_prev_with_data_start_from_that_entry) {
    hash_t hash(101, true);
    hash.append("ab", one);
    hash.append("", two);
    hash.append("a", three);
    EXPECT_STREQ(hash.next(two), one);
    EXPECT_STREQ(hash.get_current_name(nullptr), "ab");
    EXPECT_STREQ(hash.prev(three), one);
    EXPECT_STREQ(hash.current(), one);
    EXPECT_STREQ(hash.get_current_name(two), "");
}

TEST(utl_hash_base, find_data_asks_the_cursor_bucket_first_then_every_used_one) {
    hash_t hash(101, true);
    hash.append("ab", one);
    hash.append("", two);
    EXPECT_STREQ(hash.find_data(one), one);
    EXPECT_EQ(hash.current_bucket(), 96u);
    const char* stranger = "stranger";
    EXPECT_EQ(hash.find_data(stranger), nullptr);
    EXPECT_EQ(hash.current_bucket(), all_bits);
    EXPECT_EQ(hash.find_data(nullptr), nullptr);
}

TEST(utl_hash_base, remove_current_of_the_only_entry_leaves_all_bits_set) {
    hash_t hash(101, true);
    hash.append("ab", one);
    EXPECT_EQ(hash.remove_current(one), nullptr);
    EXPECT_EQ(hash.get_count(), 0u);
    EXPECT_EQ(hash.first_used(), all_bits);
    EXPECT_EQ(hash.last_used(), all_bits);
    EXPECT_EQ(hash.current_bucket(), all_bits);
}

TEST(utl_hash_base, remove_current_in_a_middle_bucket_steps_to_the_next_used_bucket) {
    hash_t hash(101, true);
    hash.append("", one);    // 0
    hash.append("ab", two);  // 96
    hash.append("a", three); // 98
    EXPECT_STREQ(hash.remove_current(two), three);
    EXPECT_EQ(hash.current_bucket(), 98u);
    EXPECT_EQ(hash.first_used(), 0u);
    EXPECT_EQ(hash.last_used(), 98u);
}

TEST(utl_hash_base, remove_current_of_the_first_used_bucket_moves_the_range_up) {
    hash_t hash(101, true);
    hash.append("", one);   // 0
    hash.append("ab", two); // 96
    EXPECT_STREQ(hash.remove_current(one), two);
    EXPECT_EQ(hash.first_used(), 96u);
    EXPECT_EQ(hash.current_bucket(), 96u);
}

TEST(utl_hash_base, remove_current_of_the_last_used_bucket_moves_the_range_down) {
    hash_t hash(101, true);
    hash.append("", one);   // 0
    hash.append("ab", two); // 96
    EXPECT_EQ(hash.remove_current(two), nullptr);
    EXPECT_EQ(hash.last_used(), 0u);
    EXPECT_EQ(hash.current_bucket(), all_bits);
    EXPECT_EQ(walk_forward(hash), (std::vector<std::string>{"one"}));
}

TEST(utl_hash_base, remove_current_within_a_bucket_gives_the_next_entry_of_it) {
    hash_t hash(101, true);
    hash.append("ab", one);
    hash.append("ba", two);
    EXPECT_STREQ(hash.remove_current(one), two);
    EXPECT_EQ(hash.get_count(), 1u);
}

TEST(utl_hash_base, removing_everything_one_by_one_empties_the_hash) {
    hash_t hash(10, true);
    std::vector<std::string> names;
    for (int i = 0; i < 200; ++i) names.push_back("N" + std::to_string(i));
    for (const std::string& name : names) hash.append(name.c_str(), name.c_str());
    EXPECT_EQ(hash.get_count(), 200u);
    std::set<std::string> seen;
    // Removal walks on from each entry; where it ends (the last used bucket emptied) a fresh
    // walk takes what is left.
    for (const char* data = hash.first(); data; data = hash.remove_current(nullptr))
        EXPECT_TRUE(seen.insert(data).second) << data;
    while (hash.get_count() > 0) {
        const char* data = hash.first();
        ASSERT_NE(data, nullptr);
        seen.insert(data);
        hash.remove_current(nullptr);
    }
    EXPECT_EQ(seen.size(), 200u);
    EXPECT_EQ(hash.first_used(), all_bits);
}

TEST(utl_hash_base, clear_empties_every_bucket_and_the_range) {
    hash_t hash(101, true);
    hash.append("ab", one);
    hash.append(nullptr, two);
    hash.clear();
    EXPECT_EQ(hash.get_count(), 0u);
    EXPECT_EQ(hash.first_used(), all_bits);
    EXPECT_EQ(hash.find("ab"), nullptr);
    hash.append("ab", three);
    EXPECT_EQ(walk_forward(hash), (std::vector<std::string>{"three"}));
}

TEST(utl_hash_base, check_names_uniqueness_always_gives_null) {
    hash_t hash(101, true);
    hash.append("ab", one);
    hash.append("ab", two);
    EXPECT_EQ(hash.check_names_uniqueness(), nullptr);
}

TEST(utl_hash_base, travel_by_calls_back_for_each_entry_of_the_name_up_to_the_first_true) {
    hash_t hash(101, true);
    hash.append("ab", one);
    hash.append("ba", two); // same bucket, other name
    hash.append("ab", three);
    std::vector<std::string> called;
    auto record = [](const char* data, void* context) {
        auto* seen = static_cast<std::vector<std::string>*>(context);
        seen->push_back(data);
        return std::string(data) == "three";
    };
    EXPECT_STREQ(hash.travel_by("ab", record, &called), three);
    EXPECT_EQ(called, (std::vector<std::string>{"one", "three"}));
    called.clear();
    EXPECT_EQ(hash.travel_by(
                  "ba", [](const char*, void*) { return false; }, nullptr),
              nullptr);
    EXPECT_EQ(hash.travel_by("", record, &called), nullptr); // bucket 0 is unused
}
