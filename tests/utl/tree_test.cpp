// generic_tree_ct and generic_node_c: attach, attach_sibling, detach, remove, swap, replace,
// clear, ownership and the order in which nodes die. tree_c and node_c: names and compare,
// unlink, clear_children and the sort modes. Trees a million deep are built and destroyed.
#include "utl/tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

// A node that records its deletion.
struct item_s : generic_node_c {
    explicit item_s(int node_id, std::vector<int>* node_log = nullptr)
        : id(node_id), log(node_log) {}
    ~item_s() override {
        if (log) log->push_back(id);
    }
    int id;
    std::vector<int>* log;
};

using tree_t = generic_tree_ct<item_s>;

std::vector<int> children_of(const item_s* node) {
    std::vector<int> out;
    for (const generic_node_c* c = node->first_child; c; c = c->next)
        out.push_back(static_cast<const item_s*>(c)->id);
    // The chain read backwards must agree.
    std::vector<int> back;
    for (const generic_node_c* c = node->last_child; c; c = c->prev)
        back.insert(back.begin(), static_cast<const item_s*>(c)->id);
    EXPECT_EQ(out, back);
    return out;
}

// A root with children 1..n, attached at the end.
struct family_s {
    explicit family_s(int n, std::vector<int>* log = nullptr) : tree(new item_s(0, log)) {
        for (int i = 1; i <= n; ++i) {
            kids.push_back(new item_s(i, log));
            tree.attach(kids.back(), tree.get_root(), true);
        }
    }
    tree_t tree;
    std::vector<item_s*> kids;
    item_s* kid(int i) { return kids[static_cast<std::size_t>(i - 1)]; }
};

// ---- generic_tree_ct: the edge cases

TEST(GenericTree, AttachOfAChildToItsOwnParentReturnsTrueAndKeepsItsPlace) {
    family_s f(3);
    item_s* middle = f.kid(2);
    middle->next->prev = middle->prev; // take it out of the chain by hand, keeping its parent
    middle->prev->next = middle->next;
    middle->next = middle->prev = nullptr;
    EXPECT_TRUE(f.tree.attach(middle, f.tree.get_root(), true));
    EXPECT_EQ(children_of(f.tree.get_root()), (std::vector<int>{1, 3}));
    delete middle;
    family_s g(3);
    // A child with siblings is refused, even under its own parent.
    EXPECT_FALSE(g.tree.attach(g.kid(2), g.tree.get_root(), true));
    EXPECT_EQ(children_of(g.tree.get_root()), (std::vector<int>{1, 2, 3}));
    family_s h(1);
    EXPECT_TRUE(h.tree.attach(h.kid(1), h.tree.get_root(), false));
    EXPECT_EQ(children_of(h.tree.get_root()), (std::vector<int>{1}));
}

TEST(GenericTree, AttachWithNullParentOnATreeWithARootReturnsFalse) {
    tree_t tree(new item_s(0));
    item_s* other = new item_s(1);
    EXPECT_FALSE(tree.attach(other, nullptr, true));
    EXPECT_EQ(tree.get_root()->id, 0);
    delete other;
}

TEST(GenericTree, SwapOfTwoAdjacentSiblingsExchangesThem) {
    family_s f(4);
    EXPECT_TRUE(f.tree.swap(f.kid(2), f.kid(3)));
    EXPECT_EQ(children_of(f.tree.get_root()), (std::vector<int>{1, 3, 2, 4}));
    EXPECT_TRUE(f.tree.swap(f.kid(2), f.kid(3)));
    EXPECT_EQ(children_of(f.tree.get_root()), (std::vector<int>{1, 2, 3, 4}));
    EXPECT_TRUE(f.tree.swap(f.kid(1), f.kid(2)));
    EXPECT_EQ(children_of(f.tree.get_root()), (std::vector<int>{2, 1, 3, 4}));
    EXPECT_TRUE(f.tree.swap(f.kid(4), f.kid(3)));
    EXPECT_EQ(children_of(f.tree.get_root()), (std::vector<int>{2, 1, 4, 3}));
}

TEST(GenericTree, SwapOfANodeAndItsOwnChildReturnsFalse) {
    family_s f(2);
    item_s* grandchild = new item_s(9);
    f.tree.attach(grandchild, f.kid(1), true);
    EXPECT_FALSE(f.tree.swap(f.kid(1), grandchild));
    EXPECT_FALSE(f.tree.swap(grandchild, f.kid(1)));
    EXPECT_EQ(grandchild->parent, f.kid(1));
    EXPECT_EQ(children_of(f.tree.get_root()), (std::vector<int>{1, 2}));
}

TEST(GenericTree, ClearOnATreeThatIsNotTheOwnerLeavesTheRootAliveAndTheTreeEmpty) {
    std::vector<int> log;
    item_s root(0, &log);
    {
        tree_t tree(&root, false);
        tree.attach(new item_s(1, &log), &root, true);
        EXPECT_FALSE(tree.is_owner());
        tree.clear();
        EXPECT_EQ(tree.get_root(), nullptr);
    }
    EXPECT_EQ(log, (std::vector<int>{1}));
    EXPECT_EQ(root.first_child, nullptr);
    EXPECT_EQ(root.last_child, nullptr);
    root.log = nullptr;
}

// ---- generic_tree_ct: the rules

TEST(GenericTree, AttachBuildsTheRootAndBothEnds) {
    tree_t tree;
    EXPECT_TRUE(tree.is_owner());
    EXPECT_FALSE(tree.attach(nullptr, nullptr, true));
    item_s* root = new item_s(0);
    EXPECT_TRUE(tree.attach(root, nullptr, true));
    EXPECT_EQ(tree.get_root(), root);
    item_s* b = new item_s(2);
    item_s* a = new item_s(1);
    item_s* c = new item_s(3);
    EXPECT_TRUE(tree.attach(b, root, true));
    EXPECT_TRUE(tree.attach(a, root, false));
    EXPECT_TRUE(tree.attach(c, root, true));
    EXPECT_EQ(children_of(root), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(a->parent, root);
    // A node under another parent: false, and it stays.
    item_s* d = new item_s(4);
    tree.attach(d, a, true);
    EXPECT_FALSE(tree.attach(d, b, true));
    EXPECT_EQ(d->parent, a);
}

TEST(GenericTree, AttachSiblingCoversEveryPlace) {
    family_s f(3);
    item_s* root = f.tree.get_root();
    EXPECT_TRUE(f.tree.attach_sibling(new item_s(10), f.kid(1), false)); // before the first
    EXPECT_TRUE(f.tree.attach_sibling(new item_s(30), f.kid(3), true));  // after the last
    EXPECT_TRUE(f.tree.attach_sibling(new item_s(15), f.kid(1), true));  // between
    EXPECT_TRUE(f.tree.attach_sibling(new item_s(25), f.kid(3), false)); // between
    EXPECT_EQ(children_of(root), (std::vector<int>{10, 1, 15, 2, 25, 3, 30}));
    for (generic_node_c* c = root->first_child; c; c = c->next) EXPECT_EQ(c->parent, root);
    family_s only(1);
    EXPECT_TRUE(only.tree.attach_sibling(new item_s(5), only.kid(1), true));
    EXPECT_TRUE(only.tree.attach_sibling(new item_s(6), only.kid(1), false));
    EXPECT_EQ(children_of(only.tree.get_root()), (std::vector<int>{6, 1, 5}));
}

TEST(GenericTree, AttachSiblingRefusals) {
    family_s f(2);
    item_s loose(7);
    EXPECT_FALSE(f.tree.attach_sibling(nullptr, f.kid(1), true));
    EXPECT_FALSE(f.tree.attach_sibling(&loose, nullptr, true));
    EXPECT_FALSE(f.tree.attach_sibling(&loose, f.tree.get_root(), true)); // no parent
    item_s* elsewhere = new item_s(8);
    f.tree.attach(elsewhere, f.kid(1), true);
    EXPECT_FALSE(f.tree.attach_sibling(elsewhere, f.kid(2), true));
    EXPECT_EQ(elsewhere->parent, f.kid(1));
    EXPECT_EQ(children_of(f.tree.get_root()), (std::vector<int>{1, 2}));
}

// A node already among the sibling's family is left where it is, so no chain is linked twice.
TEST(GenericTree, AttachSiblingOfAMemberOfTheSameFamilyChangesNothing) {
    family_s f(4);
    EXPECT_FALSE(f.tree.attach_sibling(f.kid(2), f.kid(3), true));
    EXPECT_FALSE(f.tree.attach_sibling(f.kid(1), f.kid(3), false));
    EXPECT_EQ(children_of(f.tree.get_root()), (std::vector<int>{1, 2, 3, 4}));
}

TEST(GenericTree, DetachHandsTheSubtreeOver) {
    std::vector<int> log;
    family_s f(3, &log);
    item_s* grandchild = new item_s(9, &log);
    f.tree.attach(grandchild, f.kid(2), true);
    f.tree.detach(f.kid(2));
    EXPECT_EQ(children_of(f.tree.get_root()), (std::vector<int>{1, 3}));
    EXPECT_EQ(f.kid(2)->parent, nullptr);
    EXPECT_EQ(f.kid(2)->next, nullptr);
    EXPECT_EQ(f.kid(2)->prev, nullptr);
    EXPECT_EQ(grandchild->parent, f.kid(2));
    EXPECT_TRUE(log.empty());
    f.tree.detach(nullptr);
    delete f.kid(2);
    EXPECT_EQ(log, (std::vector<int>{2, 9}));
}

TEST(GenericTree, DetachOfTheRootEmptiesTheTree) {
    tree_t tree(new item_s(0));
    item_s* root = tree.get_root();
    tree.detach(root);
    EXPECT_EQ(tree.get_root(), nullptr);
    delete root;
}

TEST(GenericTree, RemoveChildrenDiesLastToFirstDepthFirst) {
    std::vector<int> log;
    family_s f(2, &log);
    auto* twelve = new item_s(12, &log);
    f.tree.attach(new item_s(11, &log), f.kid(1), true);
    f.tree.attach(twelve, f.kid(1), true);
    f.tree.attach(new item_s(121, &log), twelve, true);
    f.tree.remove_children(f.tree.get_root());
    EXPECT_EQ(log, (std::vector<int>{2, 121, 12, 11, 1}));
    EXPECT_EQ(f.tree.get_root()->first_child, nullptr);
    EXPECT_EQ(f.tree.get_root()->last_child, nullptr);
    f.tree.remove_children(nullptr);
}

// delete_node is the one way nodes go, so a derived tree sees every one.
struct counting_tree_c : tree_t {
    using tree_t::tree_t;
    void delete_node(item_s* node) override {
        ++deleted;
        tree_t::delete_node(node);
    }
    int deleted = 0;
};

TEST(GenericTree, RemoveGoesThroughDeleteNodeForEveryNode) {
    counting_tree_c tree(new item_s(0));
    item_s* a = new item_s(1);
    tree.attach(a, tree.get_root(), true);
    tree.attach(new item_s(2), a, true);
    tree.attach(new item_s(3), a, true);
    tree.attach(new item_s(4), tree.get_root(), true);
    tree.remove(a);
    EXPECT_EQ(tree.deleted, 3);
    EXPECT_EQ(children_of(tree.get_root()), (std::vector<int>{4}));
    tree.remove(nullptr);
    tree.remove_root();
    EXPECT_EQ(tree.deleted, 5);
    EXPECT_EQ(tree.get_root(), nullptr);
}

TEST(GenericTree, ClearOfAnOwnerDeletesTheRoot) {
    std::vector<int> log;
    family_s f(2, &log);
    f.tree.clear();
    EXPECT_EQ(log, (std::vector<int>{2, 1, 0}));
    EXPECT_EQ(f.tree.get_root(), nullptr);
    f.tree.clear();
}

TEST(GenericTree, DestructorOfAnOwnerDeletesEveryNode) {
    std::vector<int> log;
    {
        family_s f(3, &log);
        f.tree.attach(new item_s(21, &log), f.kid(2), true);
        f.tree.attach(new item_s(22, &log), f.kid(2), true);
    }
    ASSERT_EQ(log.size(), 6u);
    EXPECT_EQ(log.front(), 0);
    // Children die from last to first: 3 before 2 before 1, and 22 before 21.
    auto at = [&](int id) { return std::find(log.begin(), log.end(), id) - log.begin(); };
    EXPECT_LT(at(3), at(2));
    EXPECT_LT(at(2), at(1));
    EXPECT_LT(at(22), at(21));
    EXPECT_LT(at(21), at(1));
}

TEST(GenericTree, DestructorOfANonOwnerLeavesTheRoot) {
    std::vector<int> log;
    item_s root(0, &log);
    { tree_t tree(&root, false); }
    EXPECT_TRUE(log.empty());
    root.log = nullptr;
}

TEST(GenericTree, SwapAcrossFamiliesTakesEachOthersPlace) {
    family_s f(2);
    item_s* a1 = new item_s(11);
    item_s* a2 = new item_s(12);
    item_s* b1 = new item_s(21);
    item_s* b2 = new item_s(22);
    f.tree.attach(a1, f.kid(1), true);
    f.tree.attach(a2, f.kid(1), true);
    f.tree.attach(b1, f.kid(2), true);
    f.tree.attach(b2, f.kid(2), true);
    EXPECT_TRUE(f.tree.swap(a2, b1));
    EXPECT_EQ(children_of(f.kid(1)), (std::vector<int>{11, 21}));
    EXPECT_EQ(children_of(f.kid(2)), (std::vector<int>{12, 22}));
    EXPECT_EQ(b1->parent, f.kid(1));
    EXPECT_EQ(a2->parent, f.kid(2));
    // Two first children.
    EXPECT_TRUE(f.tree.swap(a1, a2));
    EXPECT_EQ(children_of(f.kid(1)), (std::vector<int>{12, 21}));
    EXPECT_EQ(children_of(f.kid(2)), (std::vector<int>{11, 22}));
}

TEST(GenericTree, SwapOfDistantSiblingsInOneFamily) {
    family_s f(4);
    EXPECT_TRUE(f.tree.swap(f.kid(1), f.kid(4)));
    EXPECT_EQ(children_of(f.tree.get_root()), (std::vector<int>{4, 2, 3, 1}));
    EXPECT_TRUE(f.tree.swap(f.kid(2), f.kid(1)));
    EXPECT_EQ(children_of(f.tree.get_root()), (std::vector<int>{4, 1, 3, 2}));
}

TEST(GenericTree, SwapRefusals) {
    family_s f(2);
    family_s other(1);
    EXPECT_FALSE(f.tree.swap(nullptr, f.kid(1)));
    EXPECT_FALSE(f.tree.swap(f.kid(1), f.kid(1)));
    EXPECT_FALSE(f.tree.swap(f.tree.get_root(), f.kid(1))); // a root has no parent
    EXPECT_FALSE(f.tree.swap(f.kid(1), other.kid(1)));      // different topmost ancestors
    EXPECT_EQ(children_of(f.tree.get_root()), (std::vector<int>{1, 2}));
    EXPECT_EQ(children_of(other.tree.get_root()), (std::vector<int>{1}));
}

TEST(GenericTree, ReplaceDestroysOrDetachesTheOldNode) {
    std::vector<int> log;
    family_s f(3, &log);
    f.tree.attach(new item_s(21, &log), f.kid(2), true);
    f.tree.replace(f.kid(2), new item_s(5, &log), true);
    EXPECT_EQ(children_of(f.tree.get_root()), (std::vector<int>{1, 5, 3}));
    EXPECT_EQ(log, (std::vector<int>{21, 2}));
    item_s* first = f.kid(1);
    f.tree.replace(first, new item_s(6, &log), false);
    EXPECT_EQ(children_of(f.tree.get_root()), (std::vector<int>{6, 5, 3}));
    EXPECT_EQ(first->parent, nullptr);
    delete first;
    // A replacement that already has a parent, and null arguments, change nothing.
    item_s* taken = static_cast<item_s*>(f.tree.get_root()->last_child);
    f.tree.replace(static_cast<item_s*>(f.tree.get_root()->first_child), taken, true);
    item_s spare(7);
    f.tree.replace(nullptr, &spare, true);
    f.tree.replace(taken, nullptr, true);
    EXPECT_EQ(children_of(f.tree.get_root()), (std::vector<int>{6, 5, 3}));
}

TEST(GenericTree, ReplaceOfTheRoot) {
    tree_t tree(new item_s(0));
    tree.replace(tree.get_root(), new item_s(1), true);
    ASSERT_NE(tree.get_root(), nullptr);
    EXPECT_EQ(tree.get_root()->id, 1);
}

TEST(GenericTree, IsAncestorWalksUpwards) {
    family_s f(1);
    item_s* grandchild = new item_s(9);
    f.tree.attach(grandchild, f.kid(1), true);
    EXPECT_TRUE(tree_t::is_ancestor(f.tree.get_root(), grandchild));
    EXPECT_TRUE(tree_t::is_ancestor(f.kid(1), grandchild));
    EXPECT_FALSE(tree_t::is_ancestor(grandchild, f.kid(1)));
    EXPECT_FALSE(tree_t::is_ancestor(grandchild, grandchild));
    EXPECT_FALSE(tree_t::is_ancestor(nullptr, grandchild));
    EXPECT_FALSE(tree_t::is_ancestor(grandchild, nullptr));
}

TEST(GenericTree, MillionDeepTreeBuiltAndDestroyed) {
    auto* tree = new tree_t(new item_s(0));
    item_s* tip = tree->get_root();
    for (int i = 1; i < 1000000; ++i) {
        item_s* child = new item_s(i);
        ASSERT_TRUE(tree->attach(child, tip, true));
        tip = child;
    }
    EXPECT_TRUE(tree_t::is_ancestor(tree->get_root(), tip));
    delete tree;
}

TEST(GenericTree, MillionDeepChildrenRemoved) {
    counting_tree_c tree(new item_s(0));
    item_s* tip = tree.get_root();
    for (int i = 1; i < 1000000; ++i) {
        item_s* child = new item_s(i);
        tree.attach(child, tip, true);
        tip = child;
    }
    tree.remove_children(tree.get_root());
    EXPECT_EQ(tree.deleted, 999999);
    EXPECT_EQ(tree.get_root()->first_child, nullptr);
}

TEST(GenericTree, MillionDeepNodeDeletedOnItsOwn) {
    auto* top = new item_s(0);
    generic_node_c* tip = top;
    for (int i = 1; i < 1000000; ++i) {
        auto* child = new item_s(i);
        child->parent = tip;
        tip->first_child = tip->last_child = child;
        tip = child;
    }
    delete top;
    SUCCEED();
}

// ---- node_c and tree_c

std::vector<std::string> child_names(const node_c* node) {
    std::vector<std::string> out;
    for (const node_c* c = node->first_child; c; c = c->next) {
        out.push_back(c->name ? c->name : "-");
        EXPECT_EQ(c->parent, node);
    }
    std::vector<std::string> back;
    for (const node_c* c = node->last_child; c; c = c->prev)
        back.insert(back.begin(), c->name ? c->name : "-");
    EXPECT_EQ(out, back);
    return out;
}

void add_child(node_c* parent, node_c* child) {
    child->parent = parent;
    child->prev = parent->last_child;
    (parent->last_child ? parent->last_child->next : parent->first_child) = child;
    parent->last_child = child;
}

node_c* family(tree_c& tree, const std::vector<const char*>& names) {
    node_c* root = tree.create_node(0, "root");
    tree.set_root(root);
    for (const char* n : names) add_child(root, tree.create_node(0, n));
    return root;
}

TEST(NodeC, CreateNodeHasNameDataAndNoLinks) {
    tree_c tree;
    node_c* node = tree.create_node(42, "n");
    EXPECT_STREQ(node->name, "n");
    EXPECT_EQ(node->data, 42u);
    EXPECT_EQ(node->parent, nullptr);
    EXPECT_EQ(node->next, nullptr);
    EXPECT_EQ(node->prev, nullptr);
    EXPECT_EQ(node->first_child, nullptr);
    EXPECT_EQ(node->last_child, nullptr);
    tree.delete_node(node);
    tree.delete_node(nullptr);
}

TEST(NodeC, CompareOrdersByNameWithNamelessFirst) {
    node_c a("a"), b("b"), none1, none2, high("\xC3");
    EXPECT_EQ(a.compare(&b), -1);
    EXPECT_EQ(b.compare(&a), 1);
    EXPECT_EQ(a.compare(&a), 0);
    EXPECT_EQ(none1.compare(&a), -1);
    EXPECT_EQ(a.compare(&none1), 1);
    EXPECT_EQ(none1.compare(&none2), 0);
    EXPECT_EQ(a.compare(&high), -1); // bytes compare unsigned
    tree_c tree;
    EXPECT_EQ(tree.compare_nodes(&b, &a), 1);
    EXPECT_EQ(tree.compare_nodes(&none1, &a), -1);
}

TEST(NodeC, SetNameReusesTheBufferWhileItFits) {
    node_c node("abcdef");
    char* buffer = node.name;
    node.set_name("abc");
    EXPECT_EQ(node.name, buffer);
    EXPECT_STREQ(node.name, "abc");
    node.set_name("abcdefgh");
    EXPECT_STREQ(node.name, "abcdefgh");
    node.set_name(nullptr);
    EXPECT_EQ(node.name, nullptr);
    node.set_name("x");
    node.set_name("");
    EXPECT_EQ(node.name, nullptr);
}

TEST(TreeC, UnlinkTakesANodeOutOfEveryPlace) {
    tree_c tree;
    node_c* root = family(tree, {"a", "b", "c", "d"});
    node_c* b = root->first_child->next;
    tree.unlink(b);
    EXPECT_EQ(child_names(root), (std::vector<std::string>{"a", "c", "d"}));
    EXPECT_EQ(b->parent, root); // the parent field stays
    EXPECT_EQ(b->next, nullptr);
    node_c* a = root->first_child;
    tree.unlink(a);
    node_c* d = root->last_child;
    tree.unlink(d);
    EXPECT_EQ(child_names(root), (std::vector<std::string>{"c"}));
    EXPECT_EQ(root->first_child->prev, nullptr);
    node_c* c = root->first_child;
    tree.unlink(c);
    EXPECT_EQ(root->first_child, nullptr);
    EXPECT_EQ(root->last_child, nullptr);
    for (node_c* n : {a, b, c, d}) tree.delete_node(n);
    tree.unlink(root);
    EXPECT_EQ(tree.get_root(), nullptr);
    tree.delete_node(root);
}

struct logging_node_c : node_c {
    logging_node_c(const char* n, std::vector<std::string>* node_log) : node_c(n), log(node_log) {}
    ~logging_node_c() override { log->push_back(name ? name : "-"); }
    std::vector<std::string>* log;
};

TEST(TreeC, ClearChildrenDeletesLastToFirstAndKeepsTheNode) {
    std::vector<std::string> log;
    tree_c tree(new logging_node_c("root", &log));
    node_c* root = tree.get_root();
    auto* a = new logging_node_c("a", &log);
    add_child(root, a);
    add_child(a, new logging_node_c("a1", &log));
    add_child(a, new logging_node_c("a2", &log));
    add_child(root, new logging_node_c("b", &log));
    tree.clear_children(root);
    EXPECT_EQ(log, (std::vector<std::string>{"b", "a2", "a1", "a"}));
    EXPECT_EQ(root->first_child, nullptr);
    EXPECT_EQ(root->last_child, nullptr);
    tree.clear_children(nullptr);
}

TEST(TreeC, SortModeTwoByNamesWithNullFirst) {
    tree_c tree;
    node_c* root = family(tree, {"c", nullptr, "B", "a"});
    node_c* scratch[8];
    tree.sort(root, false, 2, scratch);
    EXPECT_EQ(child_names(root), (std::vector<std::string>{"-", "B", "a", "c"}));
}

// The nodes' own compare, which a derived node may turn round.
struct reversed_node_c : node_c {
    using node_c::node_c;
    int compare(const node_c* other) const override { return -node_c::compare(other); }
};

TEST(TreeC, SortModeThreeUsesTheNodesCompare) {
    tree_c tree(new node_c("root"));
    node_c* root = tree.get_root();
    for (const char* n : {"b", "c", "a"}) add_child(root, new reversed_node_c(n));
    node_c* scratch[8];
    tree.sort(root, false, 3, scratch);
    EXPECT_EQ(child_names(root), (std::vector<std::string>{"c", "b", "a"}));
    // Mode 4 goes through the tree's compare_nodes, the plain name order.
    tree.sort(root, false, 4, scratch);
    EXPECT_EQ(child_names(root), (std::vector<std::string>{"a", "b", "c"}));
}

struct counting_sort_tree_c : tree_c {
    int compare_nodes(const node_c* a, const node_c* b) override {
        ++calls;
        // Order by the first letter only, so "b1" and "b2" tie.
        return a->name[0] < b->name[0] ? -1 : a->name[0] > b->name[0] ? 1 : 0;
    }
    int calls = 0;
};

TEST(TreeC, SortModeFourSelectsAndKeepsTheEarlierOnATie) {
    counting_sort_tree_c tree;
    node_c* root = family(tree, {"c", "b1", "a", "b2"});
    node_c* scratch[8];
    tree.sort(root, false, 4, scratch);
    EXPECT_EQ(child_names(root), (std::vector<std::string>{"a", "b1", "b2", "c"}));
    EXPECT_EQ(tree.calls, 3 + 2 + 1);
}

TEST(TreeC, SortOtherModesKeepTheOrder) {
    tree_c tree;
    node_c* root = family(tree, {"c", "a", "b"});
    node_c* scratch[8];
    tree.sort(root, false, 0, scratch);
    tree.sort(root, false, 7, scratch);
    EXPECT_EQ(child_names(root), (std::vector<std::string>{"c", "a", "b"}));
}

TEST(TreeC, SortRecursiveOrdersEveryFamily) {
    tree_c tree;
    node_c* root = family(tree, {"y", "x"});
    for (const char* n : {"2", "1"}) add_child(root->first_child, tree.create_node(0, n));
    for (const char* n : {"4", "3"}) add_child(root->last_child, tree.create_node(0, n));
    node_c* scratch[8];
    tree.sort(root, false, 2, scratch);
    EXPECT_EQ(child_names(root), (std::vector<std::string>{"x", "y"}));
    EXPECT_EQ(child_names(root->first_child), (std::vector<std::string>{"4", "3"}));
    tree.sort(root, true, 2, scratch);
    EXPECT_EQ(child_names(root->first_child), (std::vector<std::string>{"3", "4"}));
    EXPECT_EQ(child_names(root->last_child), (std::vector<std::string>{"1", "2"}));
}

TEST(TreeC, SortOfAFamilyOfOneDoesNothingAlsoWithRecursive) {
    tree_c tree;
    node_c* root = family(tree, {"only"});
    node_c* only = root->first_child;
    for (const char* n : {"b", "a"}) add_child(only, tree.create_node(0, n));
    node_c* scratch[8];
    tree.sort(root, true, 2, scratch);
    EXPECT_EQ(child_names(root), (std::vector<std::string>{"only"}));
    EXPECT_EQ(child_names(only), (std::vector<std::string>{"b", "a"}));
}

TEST(TreeC, MillionDeepTreeBuiltAndDestroyed) {
    auto* tree = new tree_c(new node_c("root"));
    node_c* tip = tree->get_root();
    for (int i = 1; i < 1000000; ++i) {
        node_c* child = tree->create_node(static_cast<std::uint64_t>(i), nullptr);
        add_child(tip, child);
        tip = child;
    }
    node_c* scratch[2];
    tree->sort(tree->get_root(), true, 2, scratch);
    delete tree;
    SUCCEED();
}

TEST(TreeC, MillionDeepChildrenCleared) {
    tree_c tree(new node_c("root"));
    node_c* tip = tree.get_root();
    for (int i = 1; i < 1000000; ++i) {
        node_c* child = new node_c(nullptr, static_cast<std::uint64_t>(i));
        add_child(tip, child);
        tip = child;
    }
    tree.clear_children(tree.get_root());
    EXPECT_EQ(tree.get_root()->first_child, nullptr);
}

TEST(TreeC, DeepCombSortedRecursively) {
    tree_c tree(new node_c("root"));
    node_c* tip = tree.get_root();
    for (int i = 0; i < 300000; ++i) {
        add_child(tip, new node_c("z"));
        add_child(tip, new node_c("a"));
        tip = tip->first_child;
    }
    node_c* scratch[2];
    tree.sort(tree.get_root(), true, 2, scratch);
    // Each family now starts with its leaf "a"; the "z" branch holds the next level.
    EXPECT_STREQ(tree.get_root()->first_child->name, "a");
    EXPECT_STREQ(tree.get_root()->last_child->first_child->name, "a");
}

} // namespace
