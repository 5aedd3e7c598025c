#include "utl/tree.h"

#include "utl/cell_pool.h"

#include <cstdlib>
#include <cstring>
#include <vector>

// ---- node_c

node_c::node_c(const char* node_name, std::uint64_t user_data) : data(user_data) {
    set_name(node_name);
}

node_c::~node_c() {
    tree_n::remove_descendants(this, [](node_c* child) { delete child; });
    cell_pool_n::release(name);
}

int node_c::compare(const node_c* other) const {
    const char* theirs = other ? other->name : nullptr;
    if (!name) return theirs ? -1 : 0;
    if (!theirs) return 1;
    int r = std::strcmp(name, theirs);
    return r < 0 ? -1 : r > 0 ? 1 : 0;
}

// The buffer is reused while the new name fits it; a size of 0 releases it.
void node_c::set_name(const char* node_name) {
    std::size_t size = node_name ? std::strlen(node_name) : 0;
    if (size == 0) {
        cell_pool_n::release(name);
        name = nullptr;
        return;
    }
    std::size_t held = name ? std::strlen(name) + 1 : 0;
    if (held < size + 1) {
        cell_pool_n::release(name);
        name = static_cast<char*>(cell_pool_n::allocate(size + 1));
    }
    std::memcpy(name, node_name, size + 1);
}

// ---- tree_c

void tree_c::delete_node(node_c* node) { delete node; }

namespace {

// The order of mode 2: names byte-wise, a null name before any text.
int compare_names(const void* a, const void* b) {
    const char* x = (*static_cast<node_c* const*>(a))->name;
    const char* y = (*static_cast<node_c* const*>(b))->name;
    if (!x || !y) return x ? 1 : y ? -1 : 0;
    return std::strcmp(x, y);
}

// The order of mode 3: the nodes' own compare.
int compare_by_nodes(const void* a, const void* b) {
    return (*static_cast<node_c* const*>(a))->compare(*static_cast<node_c* const*>(b));
}

} // namespace

void tree_c::sort(node_c* node, bool recursive, int mode, node_c** scratch) {
    if (!node || !scratch) return;
    // The families wait on a stack of their own, first child on top, so they are sorted in the
    // order a depth-first walk meets them.
    std::vector<node_c*> pending{node};
    while (!pending.empty()) {
        node_c* family = pending.back();
        pending.pop_back();
        if (!family->first_child || family->first_child == family->last_child) continue;
        std::size_t count = 0;
        if (mode != 4) {
            for (node_c* c = family->first_child; c; c = c->next) scratch[count++] = c;
            if (mode == 2) std::qsort(scratch, count, sizeof(node_c*), compare_names);
            if (mode == 3) std::qsort(scratch, count, sizeof(node_c*), compare_by_nodes);
        } else {
            while (family->first_child != family->last_child) {
                node_c* smallest = family->first_child;
                for (node_c* c = smallest->next; c; c = c->next)
                    if (compare_nodes(c, smallest) < 0) smallest = c;
                scratch[count++] = smallest;
                unlink(smallest);
            }
            scratch[count++] = family->first_child;
        }
        family->first_child = scratch[0];
        family->last_child = scratch[count - 1];
        for (std::size_t i = 0; i < count; ++i) {
            scratch[i]->prev = i ? scratch[i - 1] : nullptr;
            scratch[i]->next = i + 1 < count ? scratch[i + 1] : nullptr;
        }
        if (recursive)
            for (node_c* c = family->last_child; c; c = c->prev) pending.push_back(c);
    }
}

tree_c::~tree_c() { delete _root; }

node_c* tree_c::create_node(std::uint64_t data, const char* name) { return new node_c(name, data); }

int tree_c::compare_nodes(const node_c* a, const node_c* b) {
    if (!a || !b) return a ? 1 : b ? -1 : 0;
    return a->node_c::compare(b);
}

void tree_c::clear_children(node_c* node) {
    if (!node) return;
    tree_n::remove_descendants(node, [this](node_c* child) { delete_node(child); });
}

// ---- generic_node_c

generic_node_c::~generic_node_c() {
    tree_n::remove_descendants(this, [](generic_node_c* child) { delete child; });
}
