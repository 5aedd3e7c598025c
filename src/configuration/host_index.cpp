#include "configuration/host_index.h"

namespace {

// The node after `node` in pre-order over the whole tree of `top`, or null at the end. A loop:
// a chain of ten thousand replicas is walked without growing the stack.
host_index_node_s* next_in_tree(host_index_node_s* node, const host_index_node_s* top) {
    if (node->first_child) return node->first_child_node();
    while (node && node != top) {
        if (node->next) return static_cast<host_index_node_s*>(node->next);
        node = node->parent_node();
    }
    return nullptr;
}

void delete_root_dirs(array_ct<root_dir_c>*& dirs) {
    if (!dirs) return;
    dirs->clear();
    delete dirs;
    dirs = nullptr;
}

} // namespace

// ---- host_index_node_s

host_index_node_s::~host_index_node_s() { delete_root_dirs(root_dirs); }

void host_index_node_s::reset() {
    host_item = nullptr;
    delete_root_dirs(root_dirs);
}

// ---- host_index_tree_c

host_index_tree_c::host_index_tree_c()
    : generic_tree_ct<host_index_node_s>(new host_index_node_s(MASTER_INDEX), true) {}

host_index_tree_c::~host_index_tree_c() = default;

std::uint64_t host_index_tree_c::get_host_count() const {
    if (!_root) return 0;
    std::uint64_t count = 0;
    for (host_index_node_s* node = next_in_tree(_root, _root); node;
         node = next_in_tree(node, _root))
        ++count;
    return count;
}

host_index_node_s* host_index_tree_c::find_host_node(std::uint64_t index) const {
    if (index == MASTER_INDEX) return _root;
    if (!_root) return nullptr;
    auto found = _replicas.find(index);
    return found == _replicas.end() ? nullptr : found->second;
}

std::uint64_t host_index_tree_c::next_host(std::uint64_t index) const {
    host_index_node_s* node = find_host_node(index);
    host_index_node_s* following = node ? next_in_tree(node, _root) : nullptr;
    return following ? following->host_index : NO_HOST_INDEX;
}

std::uint64_t host_index_tree_c::first_replica() const {
    host_index_node_s* first = _root ? _root->first_child_node() : nullptr;
    return first ? first->host_index : NO_HOST_INDEX;
}

host_index_node_s* host_index_tree_c::find_host_by_item(const xml_item_c* item,
                                                        bool replicas_only) const {
    if (!_root) return nullptr;
    host_index_node_s* node = replicas_only ? next_in_tree(_root, _root) : _root;
    for (; node; node = next_in_tree(node, _root))
        if (node->host_item == item) return node;
    return nullptr;
}

bool host_index_tree_c::add_host(xml_item_c* item, array_ct<root_dir_c>* dirs, std::uint64_t index,
                                 std::uint64_t parent_index) {
    // Host 0 is no host: a node of that number could never be told from "none" by next_host.
    if (index == NO_HOST_INDEX) return false;
    host_index_node_s* node = find_host_node(index);
    if (node && index != MASTER_INDEX) {
        // A host keeps the first place it was given.
        host_index_node_s* parent = node->parent_node();
        if (!parent || parent->host_index != parent_index) return false;
    }
    if (!node) {
        host_index_node_s* parent = find_host_node(parent_index);
        if (!parent) return false;
        node = new host_index_node_s(index);
        attach(node, parent, true);
        _replicas.emplace(index, node);
        if (last_index < index) last_index = index;
    }
    delete_root_dirs(node->root_dirs);
    node->root_dirs = dirs;
    node->host_item = item;
    return true;
}

void host_index_tree_c::clear_hosts() {
    if (!_root) return;
    // Each replica goes with its subtree, which the node's own destructor takes down by loops.
    while (host_index_node_s* replica = _root->first_child_node()) remove(replica);
    _replicas.clear();
    _root->reset();
    last_index = MASTER_INDEX;
}
