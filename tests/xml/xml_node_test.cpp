// xml_node_c and xml_attr_c: the raw parse nodes. A new node is an element without attributes or
// text; assign copies everything but the children; a node prints its own line (tabs, tag,
// attributes with encoded values or its text) and the closing line of an element with children.
#include "utl/tree.h"
#include "utl/utl_stream.h"
#include "xml/xml_node.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

// Links `child` after the last child of `parent`.
void link(xml_node_c* child, xml_node_c* parent) {
    child->parent = parent;
    child->prev = parent->last_child;
    child->next = nullptr;
    (parent->last_child ? parent->last_child->next : parent->first_child) = child;
    parent->last_child = child;
}

std::vector<std::pair<std::string, std::string>> attributes_of(const xml_node_c& node) {
    std::vector<std::pair<std::string, std::string>> out;
    if (!node.attributes) return out;
    for (xml_attr_c* a = node.attributes->first(); a; a = node.attributes->next(a))
        out.emplace_back(a->name ? a->name : "<null>", a->value ? a->value : "<null>");
    return out;
}

std::string open_tag(xml_node_c& node) {
    utl_stream_c stream;
    node.print_open_tag(stream);
    return stream.c_str();
}

std::string close_tag(xml_node_c& node) {
    utl_stream_c stream;
    node.print_close_tag(stream);
    return stream.c_str();
}

using pairs_t = std::vector<std::pair<std::string, std::string>>;

} // namespace

// ---- xml_attr_c

TEST(xml_attr, keeps_copies_of_name_and_value) {
    std::string n = "key";
    std::string v = "value";
    xml_attr_c attr(n.c_str(), v.c_str());
    n[0] = 'X';
    v[0] = 'X';
    EXPECT_STREQ(attr.name, "key");
    EXPECT_STREQ(attr.value, "value");
}

TEST(xml_attr, null_texts_stay_null) {
    xml_attr_c attr(nullptr, nullptr);
    EXPECT_EQ(attr.name, nullptr);
    EXPECT_EQ(attr.value, nullptr);
}

TEST(xml_attr, set_name_null_releases_name_and_value) {
    xml_attr_c attr("key", "value");
    attr.set_name(nullptr);
    EXPECT_EQ(attr.name, nullptr);
    EXPECT_EQ(attr.value, nullptr);
}

TEST(xml_attr, set_value_null_releases_only_the_value) {
    xml_attr_c attr("key", "value");
    attr.set_value(nullptr);
    EXPECT_STREQ(attr.name, "key");
    EXPECT_EQ(attr.value, nullptr);
}

TEST(xml_attr, set_name_and_value_replace_shorter_and_longer_texts) {
    xml_attr_c attr("key", "value");
    attr.set_name("k");
    attr.set_value("a much longer value than before");
    EXPECT_STREQ(attr.name, "k");
    EXPECT_STREQ(attr.value, "a much longer value than before");
    attr.set_name("a longer name");
    attr.set_value("v");
    EXPECT_STREQ(attr.name, "a longer name");
    EXPECT_STREQ(attr.value, "v");
}

TEST(xml_attr, set_value_after_release_makes_a_new_value) {
    xml_attr_c attr("key", nullptr);
    attr.set_value("v");
    EXPECT_STREQ(attr.value, "v");
}

TEST(xml_attr_list, clear_deletes_every_record) {
    xml_attr_list_c list;
    list.append(new xml_attr_c("a", "1"));
    list.append(new xml_attr_c("b", "2"));
    EXPECT_EQ(list.get_count(), 2u);
    list.clear();
    EXPECT_EQ(list.get_count(), 0u);
    EXPECT_EQ(list.first(), nullptr);
}

// ---- a new node

TEST(xml_node, new_node_is_an_open_element_without_attributes_or_text) {
    xml_node_c node("a");
    EXPECT_STREQ(node.name, "a");
    EXPECT_EQ(node.type, 1);
    EXPECT_EQ(node.type, xml_node_c::type_element);
    EXPECT_FALSE(node.closed);
    EXPECT_EQ(node.attributes, nullptr);
    EXPECT_EQ(node.text.get_length(), 0u);
    EXPECT_EQ(node.parent, nullptr);
    EXPECT_EQ(node.first_child, nullptr);
}

TEST(xml_node, text_type_is_3) { EXPECT_EQ(xml_node_c::type_text, 3); }

// ---- add_attribute

TEST(xml_node, add_attribute_null_name_makes_an_empty_list) {
    xml_node_c node("a");
    node.add_attribute(nullptr, "v");
    ASSERT_NE(node.attributes, nullptr);
    EXPECT_EQ(node.attributes->get_count(), 0u);
}

TEST(xml_node, add_attribute_keeps_duplicates_in_order) {
    xml_node_c node("a");
    node.add_attribute("x", "1");
    node.add_attribute("y", "2");
    node.add_attribute("x", "3");
    EXPECT_EQ(attributes_of(node), (pairs_t{{"x", "1"}, {"y", "2"}, {"x", "3"}}));
}

TEST(xml_node, add_attribute_null_value_keeps_a_null_value) {
    xml_node_c node("a");
    node.add_attribute("x", nullptr);
    EXPECT_EQ(attributes_of(node), (pairs_t{{"x", "<null>"}}));
}

// ---- assign

TEST(xml_node, assign_copies_name_closed_type_and_attributes) {
    xml_node_c source("src");
    source.closed = true;
    source.add_attribute("a", "1");
    source.add_attribute("b", "2");
    xml_node_c target("t");
    target.assign(source);
    EXPECT_STREQ(target.name, "src");
    EXPECT_TRUE(target.closed);
    EXPECT_EQ(target.type, xml_node_c::type_element);
    EXPECT_EQ(attributes_of(target), (pairs_t{{"a", "1"}, {"b", "2"}}));
}

TEST(xml_node, assign_copies_attribute_records_deeply) {
    xml_node_c source("src");
    source.add_attribute("a", "1");
    xml_node_c target("t");
    target.assign(source);
    ASSERT_NE(target.attributes, source.attributes);
    xml_attr_c* from = source.attributes->first();
    xml_attr_c* to = target.attributes->first();
    ASSERT_NE(from, to);
    EXPECT_NE(from->name, to->name);
    from->set_value("changed");
    EXPECT_STREQ(to->value, "1");
}

TEST(xml_node, assign_copies_text_of_a_text_element) {
    xml_node_c source("src");
    source.type = xml_node_c::type_text;
    source.text.append("hello");
    xml_node_c target("t");
    target.assign(source);
    EXPECT_EQ(target.type, xml_node_c::type_text);
    EXPECT_STREQ(target.text.c_str(), "hello");
}

TEST(xml_node, assign_does_not_copy_text_of_an_element) {
    xml_node_c source("src");
    source.text.append("hello");
    xml_node_c target("t");
    target.assign(source);
    EXPECT_EQ(target.type, xml_node_c::type_element);
    EXPECT_STRNE(target.text.c_str(), "hello");
}

TEST(xml_node, assign_does_not_copy_children) {
    auto* source = new xml_node_c("src");
    link(new xml_node_c("child"), source);
    xml_node_c target("t");
    target.assign(*source);
    EXPECT_EQ(target.first_child, nullptr);
    EXPECT_EQ(target.last_child, nullptr);
    delete source;
}

TEST(xml_node, assign_from_node_without_list_leaves_no_list) {
    xml_node_c source("src");
    xml_node_c target("t");
    target.add_attribute("old", "1");
    target.assign(source);
    EXPECT_EQ(target.attributes, nullptr);
}

TEST(xml_node, assign_replaces_previous_attributes) {
    xml_node_c source("src");
    source.add_attribute("new", "2");
    xml_node_c target("t");
    target.add_attribute("old", "1");
    target.assign(source);
    EXPECT_EQ(attributes_of(target), (pairs_t{{"new", "2"}}));
}

// ---- printing

TEST(xml_node, print_open_tag_of_leaf_self_closes_without_space) {
    xml_node_c node("a");
    EXPECT_EQ(open_tag(node), "<a/>\n");
}

TEST(xml_node, print_open_tag_with_children_has_no_slash) {
    auto* node = new xml_node_c("a");
    link(new xml_node_c("b"), node);
    EXPECT_EQ(open_tag(*node), "<a>\n");
    delete node;
}

TEST(xml_node, print_open_tag_writes_attributes_in_order_with_encoded_values) {
    xml_node_c node("a");
    node.add_attribute("n", "1<2");
    node.add_attribute("q", "say \"hi\" & go>");
    node.add_attribute("n", "dup");
    EXPECT_EQ(open_tag(node),
              "<a n=\"1&lt;2\" q=\"say &quot;hi&quot; &amp; go&gt;\" n=\"dup\"/>\n");
}

TEST(xml_node, print_open_tag_null_and_empty_values_print_empty_quotes) {
    xml_node_c node("a");
    node.add_attribute("x", nullptr);
    node.add_attribute("y", "");
    EXPECT_EQ(open_tag(node), "<a x=\"\" y=\"\"/>\n");
}

TEST(xml_node, print_open_tag_empty_attribute_list_prints_plain_tag) {
    xml_node_c node("a");
    node.add_attribute(nullptr, nullptr);
    EXPECT_EQ(open_tag(node), "<a/>\n");
}

TEST(xml_node, print_open_tag_of_text_element_writes_text_and_no_attributes) {
    xml_node_c node("b");
    node.add_attribute("n", "1");
    node.type = xml_node_c::type_text;
    node.text.append("x");
    EXPECT_EQ(open_tag(node), "<b>x</b>\n");
}

TEST(xml_node, print_open_tag_indents_one_tab_per_depth) {
    auto* root = new xml_node_c("r");
    auto* mid = new xml_node_c("m");
    auto* leaf = new xml_node_c("l");
    link(mid, root);
    link(leaf, mid);
    EXPECT_EQ(leaf->get_depth(), 2u);
    EXPECT_EQ(open_tag(*leaf), "\t\t<l/>\n");
    EXPECT_EQ(open_tag(*mid), "\t<m>\n");
    EXPECT_EQ(close_tag(*mid), "\t</m>\n");
    delete root;
}

TEST(xml_node, print_open_tag_with_given_depth) {
    xml_node_c node("a");
    for (std::uint64_t depth : {0u, 1u, 31u, 32u, 33u, 40u, 100u}) {
        utl_stream_c stream;
        node.print_open_tag(stream, depth);
        EXPECT_EQ(std::string(stream.c_str()), std::string(depth, '\t') + "<a/>\n") << depth;
        utl_stream_c close;
        node.print_close_tag(close, depth);
        EXPECT_EQ(std::string(close.c_str()), std::string(depth, '\t') + "</a>\n") << depth;
    }
}

TEST(xml_node, print_close_tag_writes_tabs_and_closing_tag) {
    xml_node_c node("abc");
    EXPECT_EQ(close_tag(node), "</abc>\n");
}

TEST(xml_node, print_close_tag_of_text_element_writes_nothing) {
    xml_node_c node("b");
    node.type = xml_node_c::type_text;
    node.text.append("x");
    EXPECT_EQ(close_tag(node), "");
}

TEST(xml_node, printing_appends_to_the_stream) {
    xml_node_c node("a");
    utl_stream_c stream("before;");
    node.print_open_tag(stream);
    node.print_close_tag(stream);
    EXPECT_STREQ(stream.c_str(), "before;<a/>\n</a>\n");
}

TEST(xml_node, new_line_appends_a_line_feed) {
    xml_node_c node("a");
    utl_stream_c stream("x");
    node.new_line(stream);
    EXPECT_STREQ(stream.c_str(), "x\n");
}

TEST(xml_node, depth_of_root_is_zero) {
    xml_node_c node("a");
    EXPECT_EQ(node.get_depth(), 0u);
}

TEST(xml_node, typed_links_follow_the_tree) {
    auto* root = new xml_node_c("r");
    auto* a = new xml_node_c("a");
    auto* b = new xml_node_c("b");
    link(a, root);
    link(b, root);
    EXPECT_EQ(root->first_child_node(), a);
    EXPECT_EQ(a->next_node(), b);
    EXPECT_EQ(b->parent_node(), root);
    delete root;
}

// ---- compare

TEST(xml_node, compare_orders_by_name) {
    xml_node_c a("a");
    xml_node_c b("b");
    xml_node_c a2("a");
    EXPECT_EQ(a.compare(&b), -1);
    EXPECT_EQ(b.compare(&a), 1);
    EXPECT_EQ(a.compare(&a2), 0);
}

TEST(xml_node, compare_puts_null_name_first) {
    xml_node_c unnamed(nullptr);
    xml_node_c other_unnamed(nullptr);
    xml_node_c a("a");
    EXPECT_EQ(unnamed.compare(&a), -1);
    EXPECT_EQ(a.compare(&unnamed), 1);
    EXPECT_EQ(unnamed.compare(&other_unnamed), 0);
}

TEST(xml_node, compare_results_are_minus_one_zero_one_only) {
    xml_node_c a("aaaa");
    xml_node_c z("zzzz");
    EXPECT_EQ(a.compare(&z), -1);
    EXPECT_EQ(z.compare(&a), 1);
}
