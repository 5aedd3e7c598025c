// cell_pool_c and cell_pool_n: cells from the current pool or from the heap, freed in any order,
// before or after their pool is gone; a large cell on a page of its own; pools inside pools; the
// objects that live in cells (attributes, arrays) made in one pool and freed outside it.
#include "utl/cell_pool.h"
#include "utl/container_temp.h"
#include "utl/value.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

// Fills a cell with a pattern of its own, so that two cells that overlap are seen.
void fill(void* cell, std::size_t size, unsigned char mark) { std::memset(cell, mark, size); }

bool holds(const void* cell, std::size_t size, unsigned char mark) {
    const auto* bytes = static_cast<const unsigned char*>(cell);
    return std::all_of(bytes, bytes + size, [mark](unsigned char b) { return b == mark; });
}

struct cell_s {
    void* cell;
    std::size_t size;
    unsigned char mark;
};

} // namespace

TEST(cell_pool, cells_without_a_pool_come_from_the_heap) {
    void* a = cell_pool_n::allocate(10);
    void* b = cell_pool_n::allocate(0);
    ASSERT_NE(a, nullptr);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(a) % 8, 0u);
    fill(a, 10, 1);
    cell_pool_n::release(b);
    cell_pool_n::release(a);
    cell_pool_n::release(nullptr);
}

TEST(cell_pool, copy_text_copies_and_null_stays_null) {
    char* copy = cell_pool_n::copy_text("abc");
    EXPECT_STREQ(copy, "abc");
    cell_pool_n::release(copy);
    EXPECT_EQ(cell_pool_n::copy_text(nullptr), nullptr);
}

TEST(cell_pool, cells_of_a_pool_are_apart_and_freed_in_random_order_before_and_after_it) {
    std::vector<cell_s> cells;
    std::mt19937 random(7);
    {
        cell_pool_c pool;
        for (int i = 0; i < 20000; ++i) {
            std::size_t size = random() % 300;
            // Now and then a cell too large to share a page.
            if (i % 997 == 0) size = 20000 + random() % 100000;
            void* cell = cell_pool_n::allocate(size);
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(cell) % 8, 0u);
            auto mark = static_cast<unsigned char>(i);
            fill(cell, size, mark);
            cells.push_back({cell, size, mark});
        }
        std::shuffle(cells.begin(), cells.end(), random);
        // Half die while the pool lives.
        for (std::size_t i = cells.size() / 2; i < cells.size(); ++i) {
            ASSERT_TRUE(holds(cells[i].cell, cells[i].size, cells[i].mark)) << i;
            cell_pool_n::release(cells[i].cell);
        }
        cells.resize(cells.size() / 2);
    }
    // The other half after it.
    for (const cell_s& c : cells) {
        ASSERT_TRUE(holds(c.cell, c.size, c.mark));
        cell_pool_n::release(c.cell);
    }
}

TEST(cell_pool, a_pool_whose_cells_all_died_leaves_nothing) {
    cell_pool_c pool;
    for (int i = 0; i < 1000; ++i) cell_pool_n::release(cell_pool_n::allocate(100));
    void* last = pool.allocate(16);
    fill(last, 16, 9);
    cell_pool_n::release(last);
}

TEST(cell_pool, an_inner_pool_serves_until_it_dies_then_the_outer_one_again) {
    std::vector<void*> cells;
    {
        cell_pool_c outer;
        cells.push_back(cell_pool_n::allocate(32));
        {
            cell_pool_c inner;
            cells.push_back(cell_pool_n::allocate(32));
        }
        cells.push_back(cell_pool_n::allocate(32));
    }
    cells.push_back(cell_pool_n::allocate(32));
    for (std::size_t i = 0; i < cells.size(); ++i)
        fill(cells[i], 32, static_cast<unsigned char>(i));
    for (std::size_t i = 0; i < cells.size(); ++i)
        EXPECT_TRUE(holds(cells[i], 32, static_cast<unsigned char>(i)));
    for (void* c : cells) cell_pool_n::release(c);
}

TEST(cell_pool, attributes_and_arrays_made_in_a_pool_die_outside_it) {
    array_ct<labeled_value_c> attributes;
    {
        cell_pool_c pool;
        for (int i = 0; i < 100; ++i) {
            std::string label = "a_label_longer_than_sixteen_" + std::to_string(i);
            attributes.append(new labeled_value_c(
                label.c_str(),
                ("a text longer than the inline room " + std::to_string(i)).c_str()));
        }
    }
    EXPECT_STREQ(attributes.at(42)->get_label(), "a_label_longer_than_sixteen_42");
    EXPECT_STREQ(attributes.at(42)->to_text(), "a text longer than the inline room 42");
    // A copy and a change after the pool are heap cells; both kinds die together.
    attributes.append(new labeled_value_c(*attributes.at(1)));
    attributes.at(2)->set_string("changed to another text that is long enough");
    EXPECT_STREQ(attributes.at(100)->get_label(), "a_label_longer_than_sixteen_1");
    EXPECT_TRUE(attributes.remove_and_delete(0));
    attributes.clear();
    EXPECT_EQ(attributes.get_count(), 0u);
}
