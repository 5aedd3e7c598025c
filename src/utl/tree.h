// Trees with their links in the nodes: tree_c over node_c, and generic_tree_ct<T> over any T
// derived from generic_node_c. A node owns its subtree and a tree owns its root. Nothing here
// recurses: destroying, clearing and sorting walk with loops, so a tree of any depth is safe.
#pragma once

#include <cstdint>

// Helpers shared by the two node families.
namespace tree_n {

// Destroys every descendant of `node` with `destroy`, children last to first and each one after
// its own subtree, and leaves `node` without children. No recursion: the children of the last
// child are spliced in behind it, so the walk stays inside one sibling chain.
template <class N, class D> void remove_descendants(N* node, D destroy) {
    while (N* child = node->last_child) {
        if (N* grandchild = child->first_child) {
            for (N* g = grandchild; g; g = g->next) g->parent = node;
            child->next = grandchild;
            grandchild->prev = child;
            node->last_child = child->last_child;
            child->first_child = child->last_child = nullptr;
            continue;
        }
        node->last_child = child->prev;
        if (child->prev) child->prev->next = nullptr;
        child->prev = nullptr;
        destroy(child);
    }
    node->first_child = nullptr;
}

// Takes `node` out of its sibling chain; its parent field stays. `root` is the tree's root field.
template <class N> void unlink(N* node, N*& root) {
    if (!node) return;
    if (N* parent = node->parent) {
        if (parent->first_child == node && parent->last_child == node) {
            parent->first_child = parent->last_child = nullptr;
        } else if (parent->first_child == node) {
            parent->first_child = node->next;
            if (node->next) node->next->prev = nullptr;
        } else if (parent->last_child == node) {
            parent->last_child = node->prev;
            if (node->prev) node->prev->next = nullptr;
        } else {
            if (node->prev) node->prev->next = node->next;
            if (node->next) node->next->prev = node->prev;
        }
    } else if (node == root) {
        root = nullptr;
    }
    node->next = node->prev = nullptr;
}

} // namespace tree_n

// ---------------------------------------------------------------------------------------------
// node_c: a named node with a user word. Deleting it deletes its subtree.
class node_c {
  public:
    explicit node_c(const char* node_name = nullptr, std::uint64_t user_data = 0);
    node_c(const node_c&) = delete;
    node_c& operator=(const node_c&) = delete;

    virtual ~node_c();
    // Ordering by name, byte-wise unsigned: -1, 0 or 1; a node without a name comes first.
    virtual int compare(const node_c* other) const;

    // Null or empty releases the name.
    void set_name(const char* node_name);

    char* name = nullptr;
    std::uint64_t data = 0;
    node_c* parent = nullptr;
    node_c* next = nullptr;
    node_c* prev = nullptr;
    node_c* first_child = nullptr;
    node_c* last_child = nullptr;
};

// tree_c: owns its root node_c.
class tree_c {
  public:
    explicit tree_c(node_c* root = nullptr) : _root(root) {}
    tree_c(const tree_c&) = delete;
    tree_c& operator=(const tree_c&) = delete;

    // Deletes one node, and with it its subtree; null is ignored.
    virtual void delete_node(node_c* node);
    // Orders the children of `node`: mode 2 by names (byte-wise, a null name first), mode 3 by
    // the nodes' compare, mode 4 by a selection through compare_nodes; other modes keep the
    // order. `scratch` has room for the largest family. A family of fewer than two is left
    // alone, and so is everything below it.
    virtual void sort(node_c* node, bool recursive, int mode, node_c** scratch);
    virtual ~tree_c();
    virtual node_c* create_node(std::uint64_t data, const char* name);
    virtual int compare_nodes(const node_c* a, const node_c* b);

    // Takes the node out of its sibling chain; a parentless root leaves the tree.
    void unlink(node_c* node) { tree_n::unlink(node, _root); }
    // Deletes every descendant of the node with delete_node, last to first, depth first.
    void clear_children(node_c* node);

    node_c* get_root() const { return _root; }
    // The tree takes the node as its root; the old root, returned, now belongs to the caller.
    node_c* set_root(node_c* root) {
        node_c* old = _root;
        _root = root;
        return old;
    }

  protected:
    node_c* _root;
};

// ---------------------------------------------------------------------------------------------
// generic_node_c: the five links of a node of a generic_tree_ct. Deleting it deletes its subtree.
class generic_node_c {
  public:
    generic_node_c() = default;
    generic_node_c(const generic_node_c&) = delete;
    generic_node_c& operator=(const generic_node_c&) = delete;

    virtual ~generic_node_c();

    generic_node_c* parent = nullptr;
    generic_node_c* next = nullptr;
    generic_node_c* prev = nullptr;
    generic_node_c* first_child = nullptr;
    generic_node_c* last_child = nullptr;
};

// generic_tree_ct<T>: a tree of T, derived from generic_node_c. An owner deletes its root with
// itself; every tree that the library builds is one.
template <class T> class generic_tree_ct {
  public:
    explicit generic_tree_ct(T* root = nullptr, bool owner = true) : _root(root), _owner(owner) {}
    generic_tree_ct(const generic_tree_ct&) = delete;
    generic_tree_ct& operator=(const generic_tree_ct&) = delete;

    // Deletes one node, and with it its subtree; null is ignored.
    virtual void delete_node(T* node) { delete node; }

    virtual ~generic_tree_ct() {
        if (_owner && _root) delete _root;
    }

    virtual void remove_root() { remove(_root); }

    virtual bool is_owner() const { return _owner; }

    // A node without siblings goes under `parent` (last or first child), or becomes the root of
    // an empty tree with a null parent. A node that already has a parent stays where it is; the
    // result says whether that parent is `parent`.
    virtual bool attach(T* node, T* parent, bool at_end) {
        if (!node || node->next || node->prev) return false;
        if (node->parent) return node->parent == parent;
        if (!parent) {
            if (_root) return false;
            _root = node;
            return true;
        }
        node->parent = parent;
        if (at_end) {
            node->prev = parent->last_child;
            (parent->last_child ? parent->last_child->next : parent->first_child) = node;
            parent->last_child = node;
        } else {
            node->next = parent->first_child;
            (parent->first_child ? parent->first_child->prev : parent->last_child) = node;
            parent->first_child = node;
        }
        return true;
    }

    // Links the node just after or just before `sibling`. A node that is already linked to
    // siblings is refused, and a node that is already a child of the same parent stays where it
    // is, as attach treats them, so that no chain is ever linked twice.
    virtual bool attach_sibling(T* node, T* sibling, bool after) {
        if (!node || !sibling || !sibling->parent) return false;
        T* parent = _typed(sibling->parent);
        if (node->parent && node->parent != parent) return false;
        if (parent->first_child == sibling && parent->last_child == sibling)
            return attach(node, parent, after);
        if (parent->first_child == sibling && !after) return attach(node, parent, false);
        if (parent->last_child == sibling && after) return attach(node, parent, true);
        if (node->next || node->prev) return false;
        if (node->parent) return true;
        node->parent = parent;
        if (after) {
            node->prev = sibling;
            node->next = sibling->next;
            sibling->next->prev = node;
            sibling->next = node;
        } else {
            node->next = sibling;
            node->prev = sibling->prev;
            sibling->prev->next = node;
            sibling->prev = node;
        }
        return true;
    }

    // The node leaves the tree with its subtree; the caller owns it.
    virtual void detach(T* node) {
        if (!node) return;
        _unlink(node);
        node->parent = nullptr;
    }

    virtual void remove(T* node) {
        if (!node) return;
        remove_children(node);
        _unlink(node);
        delete_node(node);
    }

    // Deletes the descendants with delete_node, last to first, each after its own subtree.
    virtual void remove_children(T* node) {
        if (!node) return;
        tree_n::remove_descendants<generic_node_c>(
            node, [this](generic_node_c* child) { delete_node(_typed(child)); });
    }

    // Exchanges two nodes with their subtrees. Refused for a null or parentless node, the same
    // node twice, an ancestor and its descendant, and nodes under different topmost ancestors.
    virtual bool swap(T* a, T* b) {
        if (!a || !b || !a->parent || !b->parent || a == b) return false;
        if (is_ancestor(a, b) || is_ancestor(b, a)) return false;
        if (_topmost(a) != _topmost(b)) return false;
        if (a->prev == b) {
            detach(b);
            attach_sibling(b, a, true);
            return true;
        }
        if (a->next == b) {
            detach(b);
            attach_sibling(b, a, false);
            return true;
        }
        T* a_prev = _typed(a->prev);
        T* b_prev = _typed(b->prev);
        T* a_parent = _typed(a->parent);
        T* b_parent = _typed(b->parent);
        detach(a);
        detach(b);
        if (a_prev)
            attach_sibling(b, a_prev, true);
        else
            attach(b, a_parent, false);
        if (b_prev)
            attach_sibling(a, b_prev, true);
        else
            attach(a, b_parent, false);
        return true;
    }

    // Puts `replacement`, which must be free, where `old` stood; `old` is deleted or detached.
    virtual void replace(T* old, T* replacement, bool destroy_old) {
        if (!old || !replacement || replacement->parent || replacement->next || replacement->prev)
            return;
        T* parent = _typed(old->parent);
        T* prev = _typed(old->prev);
        if (destroy_old)
            remove(old);
        else
            detach(old);
        if (prev)
            attach_sibling(replacement, prev, true);
        else
            attach(replacement, parent, false);
    }

    // Empties the tree; a tree that is not the owner leaves the root object to its owner.
    virtual void clear() {
        if (!_root) return;
        remove_children(_root);
        if (_owner) delete_node(_root);
        _root = nullptr;
    }

    // Whether `a` is among the ancestors of `b`.
    static bool is_ancestor(const T* a, const T* b) {
        if (!a || !b) return false;
        for (const generic_node_c* up = b->parent; up; up = up->parent)
            if (up == a) return true;
        return false;
    }

    T* get_root() const { return _root; }

  protected:
    static T* _typed(generic_node_c* node) { return static_cast<T*>(node); }

    static const generic_node_c* _topmost(const T* node) {
        const generic_node_c* top = node;
        while (top->parent) top = top->parent;
        return top;
    }

    void _unlink(T* node) {
        generic_node_c* root = _root;
        tree_n::unlink<generic_node_c>(node, root);
        _root = _typed(root);
    }

    T* _root;
    bool _owner;
};
