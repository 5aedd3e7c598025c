// host_index_tree_c: the Master at the root, replicas below the hosts that feed them, hosts found
// by number and by item, placing and replacing a host, and clearing the index.
#include "configuration/host_index.h"

#include "common/stack_thread.h"
#include "common/test_support.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

// Items that stand for the hosts' `ReplNode` items; the index does not own them.
struct items_s {
    xml_item_c* operator[](std::size_t at) {
        while (owned.size() <= at) owned.emplace_back(new xml_item_c("object"));
        return owned[at].get();
    }
    std::vector<std::unique_ptr<xml_item_c>> owned;
};

// An array of `count` plain root directories with the paths C:/0, C:/1, ...
array_ct<root_dir_c>* dirs_of(int count) {
    auto* dirs = new array_ct<root_dir_c>;
    for (int i = 0; i < count; ++i) {
        auto* dir = new root_dir_c;
        dir->set_path(("C:/" + std::to_string(i)).c_str());
        dirs->append(dir);
    }
    return dirs;
}

void delete_dirs(array_ct<root_dir_c>* dirs) {
    dirs->clear();
    delete dirs;
}

// The host numbers in pre-order from the Master, through next_host.
std::vector<std::uint64_t> order_of(const host_index_tree_c& index) {
    std::vector<std::uint64_t> order;
    for (std::uint64_t at = MASTER_INDEX; at; at = index.next_host(at)) order.push_back(at);
    return order;
}

// Master 1 feeding 2 (which feeds 3) and 4.
struct small_index_s {
    small_index_s() {
        EXPECT_TRUE(index.add_host(items[1], dirs_of(2), 1, 0));
        EXPECT_TRUE(index.add_host(items[2], dirs_of(1), 2, 1));
        EXPECT_TRUE(index.add_host(items[3], nullptr, 3, 2));
        EXPECT_TRUE(index.add_host(items[4], dirs_of(3), 4, 1));
    }
    items_s items;
    host_index_tree_c index;
};

} // namespace

TEST(host_index_tree, a_new_index_holds_the_master_alone) {
    host_index_tree_c index;
    host_index_node_s* master = index.find_host_node(MASTER_INDEX);
    ASSERT_NE(master, nullptr);
    EXPECT_EQ(master, index.get_root());
    EXPECT_EQ(master->host_index, 1u);
    EXPECT_EQ(master->host_item, nullptr);
    EXPECT_EQ(master->root_dirs, nullptr);
    EXPECT_EQ(index.get_host_count(), 0u);
    EXPECT_EQ(index.first_replica(), 0u);
    EXPECT_EQ(index.next_host(MASTER_INDEX), 0u);
    EXPECT_EQ(index.last_index, 1u);
    EXPECT_TRUE(index.is_owner());
}

TEST(host_index_tree, hosts_are_found_by_number_in_pre_order) {
    small_index_s s;
    EXPECT_EQ(s.index.get_host_count(), 3u);
    EXPECT_EQ(s.index.first_replica(), 2u);
    EXPECT_EQ(order_of(s.index), (std::vector<std::uint64_t>{1, 2, 3, 4}));
    host_index_node_s* third = s.index.find_host_node(3);
    ASSERT_NE(third, nullptr);
    EXPECT_EQ(third->host_item, s.items[3]);
    EXPECT_EQ(third->parent_node(), s.index.find_host_node(2));
    EXPECT_EQ(s.index.find_host_node(4)->parent_node(), s.index.get_root());
    EXPECT_EQ(s.index.find_host_node(5), nullptr);
    EXPECT_EQ(s.index.find_host_node(0), nullptr);
    EXPECT_EQ(s.index.next_host(4), 0u) << "the last host has no follower";
    EXPECT_EQ(s.index.next_host(9), 0u) << "a number that names no host has none either";
    EXPECT_EQ(s.index.find_host_node(1)->root_dirs->get_count(), 2u);
}

TEST(host_index_tree, hosts_are_found_by_item_from_the_master_or_its_first_replica) {
    small_index_s s;
    EXPECT_EQ(s.index.find_host_by_item(s.items[1]), s.index.get_root());
    EXPECT_EQ(s.index.find_host_by_item(s.items[1], true), nullptr);
    EXPECT_EQ(s.index.find_host_by_item(s.items[4], true), s.index.find_host_node(4));
    EXPECT_EQ(s.index.find_host_by_item(s.items[7]), nullptr);
}

TEST(host_index_tree, a_new_host_is_the_last_child_of_its_parent_and_raises_last_index) {
    items_s items;
    host_index_tree_c index;
    EXPECT_TRUE(index.add_host(items[5], nullptr, 5, 1));
    EXPECT_EQ(index.last_index, 5u);
    EXPECT_TRUE(index.add_host(items[3], nullptr, 3, 1));
    EXPECT_EQ(index.last_index, 5u) << "a lower number leaves it";
    EXPECT_EQ(order_of(index), (std::vector<std::uint64_t>{1, 5, 3}));
    EXPECT_EQ(index.first_replica(), 5u);
}

TEST(host_index_tree, add_host_with_a_parent_index_that_does_not_exist_leaves_the_tree_alone) {
    small_index_s s;
    array_ct<root_dir_c>* dirs = dirs_of(1);
    EXPECT_FALSE(s.index.add_host(s.items[8], dirs, 8, 77));
    EXPECT_EQ(s.index.get_host_count(), 3u);
    EXPECT_EQ(s.index.find_host_node(8), nullptr);
    EXPECT_EQ(s.index.last_index, 4u);
    EXPECT_EQ(order_of(s.index), (std::vector<std::uint64_t>{1, 2, 3, 4}));
    // The array stayed with the caller.
    EXPECT_EQ(dirs->get_count(), 1u);
    delete_dirs(dirs);
}

TEST(host_index_tree, the_master_needs_no_parent_and_takes_the_new_item_and_directories) {
    small_index_s s;
    EXPECT_TRUE(s.index.add_host(s.items[9], dirs_of(4), 1, 77));
    host_index_node_s* master = s.index.find_host_node(1);
    EXPECT_EQ(master->host_item, s.items[9]);
    ASSERT_NE(master->root_dirs, nullptr);
    EXPECT_EQ(master->root_dirs->get_count(), 4u) << "the old array of two was deleted";
    EXPECT_EQ(s.index.get_host_count(), 3u);
}

TEST(host_index_tree, a_known_number_is_taken_again_only_below_the_same_parent) {
    small_index_s s;
    // Below the same parent: the node takes the new item and array, the old array goes.
    EXPECT_TRUE(s.index.add_host(s.items[6], dirs_of(5), 4, 1));
    EXPECT_EQ(s.index.find_host_node(4)->host_item, s.items[6]);
    EXPECT_EQ(s.index.find_host_node(4)->root_dirs->get_count(), 5u);
    // Below another parent: nothing changes, the host keeps its first place.
    array_ct<root_dir_c>* dirs = dirs_of(1);
    EXPECT_FALSE(s.index.add_host(s.items[7], dirs, 3, 1));
    EXPECT_EQ(s.index.find_host_node(3)->host_item, s.items[3]);
    EXPECT_EQ(s.index.find_host_node(3)->parent_node(), s.index.find_host_node(2));
    EXPECT_EQ(s.index.get_host_count(), 3u);
    delete_dirs(dirs);
}

TEST(host_index_tree, the_number_0_is_no_host_and_is_never_entered) {
    small_index_s s;
    array_ct<root_dir_c>* dirs = dirs_of(1);
    EXPECT_FALSE(s.index.add_host(s.items[8], dirs, NO_HOST_INDEX, 1));
    EXPECT_EQ(s.index.get_host_count(), 3u);
    EXPECT_EQ(s.index.find_host_node(0), nullptr);
    delete_dirs(dirs);
}

TEST(host_index_tree, the_manager_index_names_no_node) {
    small_index_s s;
    EXPECT_EQ(MANAGER_INDEX, 0xFFFFFFFEu);
    EXPECT_EQ(s.index.find_host_node(MANAGER_INDEX), nullptr);
    EXPECT_EQ(s.index.next_host(MANAGER_INDEX), 0u);
}

TEST(host_index_tree, reset_forgets_the_item_and_deletes_the_root_directories) {
    small_index_s s;
    host_index_node_s* node = s.index.find_host_node(4);
    node->reset();
    EXPECT_EQ(node->host_item, nullptr);
    EXPECT_EQ(node->root_dirs, nullptr);
    EXPECT_EQ(node->host_index, 4u) << "the number stays";
    node->reset();
    EXPECT_EQ(node->root_dirs, nullptr);
}

TEST(host_index_tree, clear_hosts_removes_every_replica_and_resets_the_master) {
    small_index_s s;
    s.index.clear_hosts();
    EXPECT_EQ(s.index.get_host_count(), 0u);
    EXPECT_EQ(s.index.first_replica(), 0u);
    host_index_node_s* master = s.index.find_host_node(1);
    ASSERT_NE(master, nullptr);
    EXPECT_EQ(master->host_item, nullptr);
    EXPECT_EQ(master->root_dirs, nullptr);
    EXPECT_EQ(s.index.last_index, 1u);
    // The index is as new: hosts can be entered again.
    EXPECT_TRUE(s.index.add_host(s.items[2], nullptr, 2, 1));
    EXPECT_EQ(s.index.get_host_count(), 1u);
}

TEST(host_index_tree, an_index_without_its_root_answers_nothing) {
    items_s items;
    host_index_tree_c index;
    index.clear();
    EXPECT_EQ(index.get_root(), nullptr);
    EXPECT_EQ(index.find_host_node(1), nullptr);
    EXPECT_EQ(index.get_host_count(), 0u);
    EXPECT_EQ(index.first_replica(), 0u);
    EXPECT_EQ(index.find_host_by_item(items[1]), nullptr);
    array_ct<root_dir_c>* dirs = dirs_of(1);
    EXPECT_FALSE(index.add_host(items[1], dirs, 1, 0));
    delete_dirs(dirs);
    index.clear_hosts();
}

TEST(host_index_tree,
     a_chain_of_ten_thousand_hosts_is_indexed_walked_and_cleared_on_a_small_stack) {
    const std::uint64_t n = 10000;
    items_s items;
    items[n];
    auto index = std::make_unique<host_index_tree_c>();
    bool ran = test_support::run_with_stack(256 * 1024, [&] {
        for (std::uint64_t i = 2; i <= n; ++i) index->add_host(items[i], dirs_of(1), i, i - 1);
        EXPECT_EQ(index->get_host_count(), n - 1);
        EXPECT_EQ(index->next_host(n - 1), n);
        EXPECT_EQ(index->find_host_node(n)->host_item, items[n]);
        index->clear_hosts();
        EXPECT_EQ(index->get_host_count(), 0u);
        for (std::uint64_t i = 2; i <= n; ++i) index->add_host(items[i], dirs_of(1), i, i - 1);
        index.reset(); // the destructor takes the chain down as well
    });
    EXPECT_TRUE(ran);
}
