// xml_item_c: the application's element. Typed attributes in order of first setting (a label set
// again changes in place), equality over label, text and attributes in order, the size estimate,
// the message form of a tag, the dotted path, the copy that never takes text, and children.
#include "common/test_support.h"
#include "utl/utl_stream.h"
#include "utl/value.h"
#include "xml/xml_item.h"
#include "xml/xml_tree_templ.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace {

using test_support::temp_dir_c;
using test_support::write_file;

// The number half of a value, which has no public reader.
struct value_probe_c : value_c {
    static std::int64_t number_of(const value_c& v) { return v.*(&value_probe_c::_number); }
};

std::string text_of(labeled_value_c* v) { return v ? std::string(v->to_text()) : "<null>"; }

std::vector<std::string> labels_of(const xml_item_c& item) {
    std::vector<std::string> out;
    for (std::uint64_t i = 0; i < item.get_attribute_count(); ++i)
        out.emplace_back(item.get_attribute(i)->get_label());
    return out;
}

std::string tag_of(const xml_item_c& item) {
    utl_stream_c stream;
    return item.print_tag(stream);
}

std::string path_of(const xml_item_c& item) {
    utl_stream_c stream;
    return item.get_path(stream);
}

// The text of a tree written without its header.
std::string written(xml_tree_c& tree) {
    utl_stream_c stream;
    tree.write(stream, false);
    return stream.c_str();
}

} // namespace

// ---- construction and text

TEST(xml_item, new_item_has_label_and_nothing_else) {
    xml_item_c item("a");
    EXPECT_STREQ(item.label, "a");
    EXPECT_EQ(item.text, nullptr);
    EXPECT_EQ(item.get_attribute_count(), 0u);
    EXPECT_EQ(item.first_child, nullptr);
    EXPECT_EQ(item.get_label_length(), 1u);
}

TEST(xml_item, set_text_null_or_empty_removes_text) {
    xml_item_c item("a");
    item.set_text("x");
    EXPECT_STREQ(item.text, "x");
    item.set_text("");
    EXPECT_EQ(item.text, nullptr);
    item.set_text("y");
    item.set_text(nullptr);
    EXPECT_EQ(item.text, nullptr);
}

// ---- set_attribute: the forms

TEST(xml_item, set_attribute_text_is_string_tag_1_number_0) {
    xml_item_c item("a");
    labeled_value_c* a = item.set_attribute("x", "12");
    ASSERT_NE(a, nullptr);
    EXPECT_STREQ(a->get_label(), "x");
    EXPECT_EQ(a->get_type(), 1);
    EXPECT_EQ(value_probe_c::number_of(*a), 0);
    EXPECT_EQ(text_of(a), "12");
}

TEST(xml_item, set_attribute_null_text_is_empty_string) {
    xml_item_c item("a");
    labeled_value_c* a = item.set_attribute("x", static_cast<const char*>(nullptr));
    EXPECT_EQ(a->get_type(), 1);
    EXPECT_EQ(text_of(a), "");
}

TEST(xml_item, set_attribute_unsigned_64_below_top_bit_is_tag_2) {
    xml_item_c item("a");
    labeled_value_c* a = item.set_attribute("x", 5ull);
    EXPECT_EQ(a->get_type(), 2);
    EXPECT_EQ(text_of(a), "5");
    labeled_value_c* b = item.set_attribute("y", 0x7FFFFFFFFFFFFFFFull);
    EXPECT_EQ(b->get_type(), 2);
    EXPECT_EQ(text_of(b), "9223372036854775807");
}

TEST(xml_item, set_attribute_unsigned_64_from_top_bit_is_tag_3) {
    xml_item_c item("a");
    labeled_value_c* a = item.set_attribute("x", 0x8000000000000000ull);
    EXPECT_EQ(a->get_type(), 3);
    EXPECT_EQ(text_of(a), "9223372036854775808");
    labeled_value_c* b = item.set_attribute("y", ULLONG_MAX);
    EXPECT_EQ(b->get_type(), 3);
    EXPECT_EQ(text_of(b), "18446744073709551615");
}

TEST(xml_item, set_attribute_signed_64_is_tag_2) {
    xml_item_c item("a");
    labeled_value_c* a = item.set_attribute("x", -5ll);
    EXPECT_EQ(a->get_type(), 2);
    EXPECT_EQ(text_of(a), "-5");
    EXPECT_EQ(value_probe_c::number_of(*a), -5);
    labeled_value_c* b = item.set_attribute("y", LLONG_MIN);
    EXPECT_EQ(b->get_type(), 2);
    EXPECT_EQ(text_of(b), "-9223372036854775808");
}

TEST(xml_item, set_attribute_int_long_short_char_are_tag_2) {
    xml_item_c item("a");
    labeled_value_c* i = item.set_attribute("i", -7);
    labeled_value_c* l = item.set_attribute("l", -70000L);
    labeled_value_c* s = item.set_attribute("s", static_cast<short>(-3));
    labeled_value_c* c = item.set_attribute("c", 'A');
    for (labeled_value_c* v : {i, l, s, c}) EXPECT_EQ(v->get_type(), 2) << v->get_label();
    EXPECT_EQ(text_of(i), "-7");
    EXPECT_EQ(text_of(l), "-70000");
    EXPECT_EQ(text_of(s), "-3");
    EXPECT_EQ(text_of(c), "65");
}

TEST(xml_item, set_attribute_unsigned_int_long_short_are_tag_2) {
    xml_item_c item("a");
    labeled_value_c* i = item.set_attribute("i", 4000000000u);
    labeled_value_c* l = item.set_attribute("l", 7ul);
    labeled_value_c* s = item.set_attribute("s", static_cast<unsigned short>(65535));
    for (labeled_value_c* v : {i, l, s}) EXPECT_EQ(v->get_type(), 2) << v->get_label();
    EXPECT_EQ(text_of(i), "4000000000");
    EXPECT_EQ(text_of(l), "7");
    EXPECT_EQ(text_of(s), "65535");
}

TEST(xml_item, set_attribute_bool_is_True_or_False_tag_4) {
    xml_item_c item("a");
    labeled_value_c* t = item.set_attribute("t", true);
    labeled_value_c* f = item.set_attribute("f", false);
    EXPECT_EQ(t->get_type(), 4);
    EXPECT_EQ(f->get_type(), 4);
    EXPECT_EQ(text_of(t), "True");
    EXPECT_EQ(text_of(f), "False");
}

TEST(xml_item, set_attribute_new_labels_go_to_the_end) {
    xml_item_c item("a");
    item.set_attribute("z", 1);
    item.set_attribute("a", 2);
    item.set_attribute("m", 3);
    EXPECT_EQ(labels_of(item), (std::vector<std::string>{"z", "a", "m"}));
}

TEST(xml_item, set_attribute_existing_label_changes_in_place) {
    xml_item_c item("a");
    labeled_value_c* first = item.set_attribute("a", 1);
    item.set_attribute("b", "x");
    labeled_value_c* again = item.set_attribute("a", "text");
    EXPECT_EQ(first, again);
    EXPECT_EQ(item.get_attribute_count(), 2u);
    EXPECT_EQ(item.get_attribute(0), first);
    EXPECT_EQ(first->get_type(), 1);
    EXPECT_EQ(text_of(first), "text");
}

TEST(xml_item, setting_twice_with_different_types_keeps_one_attribute_of_the_second_type) {
    xml_item_c item("a");
    item.set_attribute("x", "hello");
    item.set_attribute("y", 2);
    item.set_attribute("x", true);
    ASSERT_EQ(item.get_attribute_count(), 2u);
    EXPECT_STREQ(item.get_attribute(0)->get_label(), "x");
    EXPECT_EQ(item.get_attribute(0)->get_type(), 4);
    EXPECT_EQ(text_of(item.get_attribute(0)), "True");
    item.set_attribute("x", 0x8000000000000001ull);
    ASSERT_EQ(item.get_attribute_count(), 2u);
    EXPECT_EQ(item.get_attribute(0)->get_type(), 3);
    EXPECT_EQ(text_of(item.get_attribute(0)), "9223372036854775809");
}

TEST(xml_item, set_attribute_labels_are_case_sensitive) {
    xml_item_c item("a");
    item.set_attribute("x", 1);
    item.set_attribute("X", 2);
    EXPECT_EQ(item.get_attribute_count(), 2u);
}

TEST(xml_item, set_attribute_from_labeled_value_copies_by_label) {
    xml_item_c item("a");
    labeled_value_c source("x", 5);
    labeled_value_c* added = item.set_attribute(&source);
    ASSERT_NE(added, nullptr);
    EXPECT_NE(added, &source);
    EXPECT_EQ(added->get_type(), 2);
    EXPECT_EQ(text_of(added), "5");
    labeled_value_c other("x", "five");
    labeled_value_c* replaced = item.set_attribute(&other);
    EXPECT_EQ(replaced, added);
    EXPECT_EQ(item.get_attribute_count(), 1u);
    EXPECT_EQ(replaced->get_type(), 1);
    EXPECT_EQ(text_of(replaced), "five");
}

TEST(xml_item, set_attribute_from_null_labeled_value_is_null) {
    xml_item_c item("a");
    EXPECT_EQ(item.set_attribute(static_cast<const labeled_value_c*>(nullptr)), nullptr);
    EXPECT_EQ(item.get_attribute_count(), 0u);
}

// ---- reading attributes

TEST(xml_item, get_attribute_past_the_count_is_null) {
    xml_item_c item("a");
    EXPECT_EQ(item.get_attribute(0), nullptr);
    item.set_attribute("x", 1);
    EXPECT_NE(item.get_attribute(0), nullptr);
    EXPECT_EQ(item.get_attribute(1), nullptr);
    EXPECT_EQ(item.get_attribute(~std::uint64_t{0}), nullptr);
}

TEST(xml_item, find_attribute_null_label_is_null) {
    xml_item_c item("a");
    item.set_attribute("x", 1);
    EXPECT_EQ(item.find_attribute(nullptr), nullptr);
}

TEST(xml_item, find_attribute_is_case_sensitive) {
    xml_item_c item("a");
    labeled_value_c* x = item.set_attribute("name", 1);
    EXPECT_EQ(item.find_attribute("name"), x);
    EXPECT_EQ(item.find_attribute("Name"), nullptr);
    EXPECT_EQ(item.find_attribute("nam"), nullptr);
}

TEST(xml_item, has_attribute_same_object) {
    xml_item_c item("a");
    labeled_value_c* x = item.set_attribute("x", 1);
    EXPECT_TRUE(item.has_attribute(x));
}

TEST(xml_item, has_attribute_equal_label_and_text_form) {
    xml_item_c item("a");
    item.set_attribute("x", 5);
    labeled_value_c as_text("x", "5");
    labeled_value_c as_number("x", 5);
    EXPECT_TRUE(item.has_attribute(&as_text));
    EXPECT_TRUE(item.has_attribute(&as_number));
    labeled_value_c other_text("x", "6");
    labeled_value_c other_label("y", "5");
    EXPECT_FALSE(item.has_attribute(&other_text));
    EXPECT_FALSE(item.has_attribute(&other_label));
}

TEST(xml_item, has_attribute_undefined_values_compare_by_tag) {
    xml_item_c item("a");
    labeled_value_c undefined("u");
    item.set_attribute(&undefined);
    labeled_value_c another_undefined("u");
    labeled_value_c defined("u", "");
    EXPECT_TRUE(item.has_attribute(&another_undefined));
    EXPECT_FALSE(item.has_attribute(&defined));
}

TEST(xml_item, has_attribute_null_is_false) {
    xml_item_c item("a");
    item.set_attribute("x", 1);
    EXPECT_FALSE(item.has_attribute(nullptr));
}

// ---- is_equal

TEST(xml_item, is_equal_same_label_text_and_attributes) {
    xml_item_c a("e");
    xml_item_c b("e");
    a.set_attribute("x", 1);
    b.set_attribute("x", "1");
    a.set_text("t");
    b.set_text("t");
    EXPECT_TRUE(a.is_equal(b));
    EXPECT_TRUE(b.is_equal(a));
}

TEST(xml_item, is_equal_different_labels) {
    xml_item_c a("e");
    xml_item_c b("f");
    EXPECT_FALSE(a.is_equal(b));
}

TEST(xml_item, is_equal_different_texts) {
    xml_item_c a("e");
    xml_item_c b("e");
    a.set_text("t");
    EXPECT_FALSE(a.is_equal(b));
    b.set_text("u");
    EXPECT_FALSE(a.is_equal(b));
}

TEST(xml_item, is_equal_null_text_equals_empty_text) {
    xml_item_c a("e");
    xml_item_c b("e");
    b.text = new char[1]{0};
    EXPECT_TRUE(a.is_equal(b));
    EXPECT_TRUE(b.is_equal(a));
}

TEST(xml_item, is_equal_different_attribute_count) {
    xml_item_c a("e");
    xml_item_c b("e");
    a.set_attribute("x", 1);
    EXPECT_FALSE(a.is_equal(b));
}

TEST(xml_item, is_equal_false_for_same_attributes_in_different_order) {
    xml_item_c a("e");
    xml_item_c b("e");
    a.set_attribute("x", 1);
    a.set_attribute("y", 2);
    b.set_attribute("y", 2);
    b.set_attribute("x", 1);
    EXPECT_FALSE(a.is_equal(b));
}

TEST(xml_item, is_equal_different_attribute_values) {
    xml_item_c a("e");
    xml_item_c b("e");
    a.set_attribute("x", 1);
    b.set_attribute("x", 2);
    EXPECT_FALSE(a.is_equal(b));
}

TEST(xml_item, is_equal_ignores_children) {
    xml_item_c a("e");
    xml_item_c b("e");
    xml_item_c::create_child("c", &a);
    xml_item_c::create_child("d", &b);
    xml_item_c::create_child("d", &b);
    EXPECT_TRUE(a.is_equal(b));
}

// ---- get_xml_size

TEST(xml_item, xml_size_of_bare_leaf_is_label_plus_3) {
    xml_item_c item("abc");
    EXPECT_EQ(item.get_xml_size(false), 3u + 2 + 1);
    EXPECT_EQ(item.get_xml_size(true), 3u + 2 + 1);
}

TEST(xml_item, xml_size_counts_text_plus_one) {
    xml_item_c item("abc");
    item.set_text("hello");
    EXPECT_EQ(item.get_xml_size(false), 3u + 2 + 5 + 1 + 1);
}

TEST(xml_item, xml_size_counts_each_attribute_label_text_form_and_4) {
    xml_item_c item("a");
    item.set_attribute("s", "1<2");       // 1 + 3 + 4
    item.set_attribute("t", true);        // 1 + 4 + 4
    item.set_attribute("f", false);       // 1 + 5 + 4
    item.set_attribute("n", -12);         // 1 + 3 + 4
    item.set_attribute("uu", ULLONG_MAX); // 2 + 20 + 4
    labeled_value_c undefined("und");     // 3 + 0 + 4
    item.set_attribute(&undefined);
    std::uint64_t attributes = 8 + 9 + 10 + 8 + 26 + 7;
    EXPECT_EQ(item.get_xml_size(false), 1u + 2 + attributes + 1);
}

TEST(xml_item, xml_size_with_children_counts_closing_tag) {
    xml_item_c item("abc");
    xml_item_c::create_child("de", &item);
    EXPECT_EQ(item.get_xml_size(false), 3u + 2 + 3 + 3);
}

TEST(xml_item, xml_size_recursive_adds_the_children) {
    xml_item_c item("abc");
    xml_item_c* child = xml_item_c::create_child("de", &item);
    child->set_attribute("k", "vv");
    xml_item_c* grandchild = xml_item_c::create_child("f", child);
    grandchild->set_text("tt");
    std::uint64_t own = 3 + 2 + 3 + 3;
    std::uint64_t child_size = 2 + 2 + (1 + 2 + 4) + 2 + 3;
    std::uint64_t grandchild_size = 1 + 2 + (2 + 1) + 1;
    EXPECT_EQ(grandchild->get_xml_size(true), grandchild_size);
    EXPECT_EQ(child->get_xml_size(true), child_size + grandchild_size);
    EXPECT_EQ(item.get_xml_size(true), own + child_size + grandchild_size);
    EXPECT_EQ(item.get_xml_size(false), own);
}

// ---- print_tag

TEST(xml_item, print_tag_of_bare_leaf) {
    xml_item_c item("a");
    EXPECT_EQ(tag_of(item), "<a />");
}

TEST(xml_item, print_tag_lists_attributes_with_trailing_space) {
    xml_item_c item("a");
    item.set_attribute("x", 1);
    item.set_attribute("y", true);
    item.set_attribute("z", "w");
    EXPECT_EQ(tag_of(item), "<a x=\"1\" y=\"True\" z=\"w\" />");
}

TEST(xml_item, print_tag_with_child_has_no_slash) {
    xml_item_c item("a");
    item.set_attribute("x", 1);
    xml_item_c::create_child("c", &item);
    EXPECT_EQ(tag_of(item), "<a x=\"1\" >");
}

TEST(xml_item, print_tag_appends_to_the_stream) {
    xml_item_c item("a");
    utl_stream_c stream("at ");
    const char* out = item.print_tag(stream);
    EXPECT_STREQ(out, "at <a />");
    EXPECT_EQ(out, stream.c_str());
}

TEST(xml_item, print_tag_does_not_escape_values) {
    xml_item_c item("a");
    item.set_attribute("q", "say \"hi\" & <go>");
    EXPECT_EQ(tag_of(item), "<a q=\"say \"hi\" & <go>\" />");
}

// ---- get_path

TEST(xml_item, get_path_of_root_without_attributes_is_its_label) {
    xml_item_c root("root");
    EXPECT_EQ(path_of(root), "root");
}

TEST(xml_item, get_path_of_root_with_attribute_is_the_attribute_text) {
    xml_item_c root("root");
    root.set_attribute("name", "top");
    root.set_attribute("other", "x");
    EXPECT_EQ(path_of(root), "top");
}

TEST(xml_item, get_path_joins_segments_from_the_root) {
    xml_item_c root("r");
    xml_item_c* child = xml_item_c::create_child("c", &root);
    child->set_attribute("name", "n1");
    child->set_attribute("id", 9);
    xml_item_c* grandchild = xml_item_c::create_child("g", child);
    xml_item_c* numbered = xml_item_c::create_child("h", grandchild);
    numbered->set_attribute("id", 42);
    EXPECT_EQ(path_of(*child), "r.n1");
    EXPECT_EQ(path_of(*grandchild), "r.n1.g");
    EXPECT_EQ(path_of(*numbered), "r.n1.g.42");
}

TEST(xml_item, get_path_bool_first_attribute_prints_its_text) {
    xml_item_c root("r");
    xml_item_c* child = xml_item_c::create_child("c", &root);
    child->set_attribute("on", false);
    EXPECT_EQ(path_of(*child), "r.False");
}

// ---- copying

TEST(xml_item, copy_takes_label_and_attributes_not_text) {
    xml_item_c source("s");
    source.set_attribute("x", 1);
    source.set_attribute("y", "two");
    source.set_text("text");
    xml_item_c copy(source, false);
    EXPECT_STREQ(copy.label, "s");
    EXPECT_NE(copy.label, source.label);
    EXPECT_EQ(copy.text, nullptr);
    ASSERT_EQ(copy.get_attribute_count(), 2u);
    EXPECT_NE(copy.get_attribute(0), source.get_attribute(0));
    EXPECT_EQ(labels_of(copy), (std::vector<std::string>{"x", "y"}));
    EXPECT_EQ(copy.get_attribute(0)->get_type(), 2);
    EXPECT_EQ(text_of(copy.get_attribute(1)), "two");
}

TEST(xml_item, shallow_copy_has_no_children) {
    xml_item_c source("s");
    xml_item_c::create_child("c", &source);
    xml_item_c copy(source, false);
    EXPECT_EQ(copy.first_child, nullptr);
}

TEST(xml_item, deep_copy_copies_children_without_their_text) {
    xml_item_c source("s");
    xml_item_c* a = xml_item_c::create_child("a", &source);
    a->set_attribute("k", "v");
    a->set_text("a-text");
    xml_item_c* a1 = xml_item_c::create_child("a1", a);
    a1->set_text("deep");
    xml_item_c::create_child("a2", a);
    xml_item_c* b = xml_item_c::create_child("b", &source);
    xml_item_c::create_child("b1", b);

    xml_item_c copy(source, true);
    std::vector<std::string> labels;
    const xml_item_c* top = &copy;
    for (const xml_item_c* item = copy.first_child_item(); item;) {
        labels.emplace_back(item->label);
        EXPECT_EQ(item->text, nullptr) << item->label;
        if (item->first_child) {
            item = item->first_child_item();
            continue;
        }
        while (item != top && !item->next) item = item->parent_item();
        if (item == top) break;
        item = item->next_item();
    }
    EXPECT_EQ(labels, (std::vector<std::string>{"a", "a1", "a2", "b", "b1"}));
    ASSERT_NE(copy.first_child_item(), nullptr);
    EXPECT_NE(copy.first_child_item(), a);
    EXPECT_EQ(copy.first_child_item()->parent, &copy);
    EXPECT_EQ(text_of(copy.first_child_item()->find_attribute("k")), "v");
    EXPECT_EQ(get_children_count(&copy, true), 5u);
    ASSERT_NE(copy.last_child, nullptr);
    EXPECT_STREQ(static_cast<xml_item_c*>(copy.last_child)->label, "b");
}

TEST(xml_item, deep_copy_of_copied_child_has_own_attributes) {
    xml_item_c source("s");
    xml_item_c* a = xml_item_c::create_child("a", &source);
    a->set_attribute("k", "v");
    xml_item_c copy(source, true);
    a->set_attribute("k", "changed");
    EXPECT_EQ(text_of(copy.first_child_item()->find_attribute("k")), "v");
}

// ---- children

TEST(xml_item, create_child_links_after_the_last_child) {
    xml_item_c parent("p");
    xml_item_c* a = xml_item_c::create_child("a", &parent);
    xml_item_c* b = xml_item_c::create_child("b", &parent);
    xml_item_c* c = xml_item_c::create_child("c", &parent);
    EXPECT_EQ(parent.first_child, a);
    EXPECT_EQ(parent.last_child, c);
    EXPECT_EQ(a->next, b);
    EXPECT_EQ(b->next, c);
    EXPECT_EQ(c->prev, b);
    EXPECT_EQ(b->prev, a);
    EXPECT_EQ(a->prev, nullptr);
    EXPECT_EQ(c->next, nullptr);
    EXPECT_EQ(b->parent_item(), &parent);
    EXPECT_STREQ(b->label, "b");
}

TEST(xml_item, create_child_without_parent_is_unattached) {
    xml_item_c* item = xml_item_c::create_child("a", nullptr);
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->parent, nullptr);
    EXPECT_EQ(item->next, nullptr);
    EXPECT_EQ(item->prev, nullptr);
    EXPECT_STREQ(item->label, "a");
    delete item;
}

TEST(xml_item, append_child_links_a_free_item_last) {
    xml_item_c parent("p");
    xml_item_c::create_child("a", &parent);
    auto* free_item = new xml_item_c("z");
    parent.append_child(free_item);
    EXPECT_EQ(parent.last_child, free_item);
    EXPECT_EQ(free_item->parent, &parent);
    EXPECT_STREQ(static_cast<xml_item_c*>(free_item->prev)->label, "a");
}

TEST(xml_item, children_count_direct_and_recursive) {
    xml_item_c root("r");
    xml_item_c* a = xml_item_c::create_child("a", &root);
    xml_item_c::create_child("a1", a);
    xml_item_c::create_child("a2", a);
    xml_item_c::create_child("b", &root);
    EXPECT_EQ(get_children_count(&root, false), 2u);
    EXPECT_EQ(get_children_count(&root, true), 4u);
    EXPECT_EQ(get_children_count(a, true), 2u);
    EXPECT_EQ(get_children_count(nullptr, true), 0u);
}

// ---- items written as XML

TEST(xml_item, parsed_element_with_attributes_and_text_prints_text_without_attributes) {
    temp_dir_c dir;
    std::string path = dir.join("in.xml");
    write_file(path, "<?xml version=\"1.0\"?>\n<a x=\"1\" y=\"2\">the text</a>\n");
    xml_tree_c tree;
    ASSERT_TRUE(tree.load(path.c_str()));
    xml_item_c* root = tree.get_root();
    ASSERT_NE(root, nullptr);
    EXPECT_STREQ(root->text, "the text");
    EXPECT_EQ(root->get_attribute_count(), 2u);
    EXPECT_EQ(written(tree), "<a>the text</a>\n");
}

TEST(xml_item, bool_attribute_set_on_parsed_leaf_prints_True) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str("<?xml version=\"1.0\"?><a/>"));
    ASSERT_NE(tree.get_root(), nullptr);
    tree.get_root()->set_attribute("b", true);
    EXPECT_EQ(written(tree), "<a b=\"True\"/>\n");
}

TEST(xml_item, quote_in_value_is_encoded_through_node_but_raw_in_print_tag) {
    xml_tree_c tree;
    ASSERT_TRUE(tree.load_from_str("<?xml version=\"1.0\"?><a/>"));
    xml_item_c* root = tree.get_root();
    ASSERT_NE(root, nullptr);
    root->set_attribute("v", "x\"y");
    EXPECT_EQ(written(tree), "<a v=\"x&quot;y\"/>\n");
    EXPECT_EQ(tag_of(*root), "<a v=\"x\"y\" />");
}
