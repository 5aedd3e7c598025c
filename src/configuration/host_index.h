// The index of a scenario's hosts: a tree whose root is the Master and in which a node's children
// are the hosts it feeds, each node with the host's `ReplNode` item and the host's root
// directories. It mirrors the nesting of the `ReplNode` items of the scenario's tree, so that a
// host is found by its number without a walk of the whole tree.
#pragma once

#include "configuration/root_dir.h"
#include "utl/container_temp.h"
#include "utl/tree.h"

#include <cstdint>
#include <unordered_map>

class xml_item_c;

// Host numbers: 0 is no host, 1 the Master, and MANAGER_INDEX the Manager, which has no
// `ReplNode` and whose data lie at the scenario's own level.
inline constexpr std::uint64_t NO_HOST_INDEX = 0;
inline constexpr std::uint64_t MASTER_INDEX = 1;
inline constexpr std::uint64_t MANAGER_INDEX = 4294967294u; // 0xFFFFFFFE

// One host of the index.
struct host_index_node_s : public generic_node_c {
    explicit host_index_node_s(std::uint64_t index = NO_HOST_INDEX) : host_index(index) {}
    // Deletes the root directories; the subtree goes with the node.
    ~host_index_node_s() override;

    // Forgets the host's item, and empties and deletes its root directories.
    virtual void reset();

    host_index_node_s* parent_node() const { return static_cast<host_index_node_s*>(parent); }
    host_index_node_s* first_child_node() const {
        return static_cast<host_index_node_s*>(first_child);
    }

    std::uint64_t host_index;
    xml_item_c* host_item = nullptr;           // the host's `ReplNode`, owned by the tree
    array_ct<root_dir_c>* root_dirs = nullptr; // owned; its elements are xmc_root_dir_c
};

class host_index_tree_c : public generic_tree_ct<host_index_node_s> {
  public:
    // The tree with its root, the Master, and nothing else.
    host_index_tree_c();
    ~host_index_tree_c() override;

    // The number of hosts below the Master.
    std::uint64_t get_host_count() const;
    // The node of a host: the root for 1 without a search, else the first in pre-order; null
    // when there is none.
    host_index_node_s* find_host_node(std::uint64_t index) const;
    // The number of the host that follows `index` in pre-order, or 0 (also for an index that
    // names no node).
    std::uint64_t next_host(std::uint64_t index) const;
    // The number of the Master's first replica, or 0.
    std::uint64_t first_replica() const;
    // Enters a host with its item and root directories below the host `parent_index`; 1 is the
    // Master, whatever the parent. A number already in the index is only taken again below the
    // same parent; anything else that cannot be placed (no such parent, the number 0) changes
    // nothing and leaves `dirs` with the caller. True when a node took the item and `dirs`.
    bool add_host(xml_item_c* item, array_ct<root_dir_c>* dirs, std::uint64_t index,
                  std::uint64_t parent_index);
    // Removes every host but the Master, and resets the Master.
    void clear_hosts();

    // The first node in pre-order whose item is `item`, from the Master or, with
    // `replicas_only`, from its first replica on; null when none has it.
    host_index_node_s* find_host_by_item(const xml_item_c* item, bool replicas_only = false) const;

    // The highest number entered, 1 while only the Master is known.
    std::uint64_t last_index = MASTER_INDEX;

  private:
    // The replicas by number, so that a walk over the hosts by number is linear. Hosts come in
    // only through add_host and leave only through clear_hosts, which keep it.
    std::unordered_map<std::uint64_t, host_index_node_s*> _replicas;
};
