// The built-in template: its line array and text, the tree it loads into, every item of it
// compared with the contents restated apart from it (xmc_template_contents.cpp), and the code
// tables that repeat its facts.
#include "configuration/xmc_template.h"

#include "common/test_support.h"
#include "configuration/conf.h"
#include "configuration/xmc_enums.h"
#include "configuration/xmc_grammar.h"
#include "configuration/xmc_item.h"
#include "configuration/xmc_template_contents.h"
#include "configuration/xmc_validity.h"
#include "utl/utl_stream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using template_contents_n::row_s;
using template_contents_n::table_s;

std::string joined_text() {
    utl_stream_c out;
    xmc_template_n::join(out);
    return out.c_str() ? out.c_str() : "";
}

std::string text_of(const char* text) { return text ? text : ""; }

std::string attribute_text(const xml_item_c* item, const char* name) {
    labeled_value_c* attribute = item ? item->find_attribute(name) : nullptr;
    return attribute ? text_of(attribute->to_text()) : "";
}

std::string element_of(const xml_item_c* item) { return text_of(item->label); }

// Every item below `top` (not `top` itself) in pre-order; with `into_external` the content of
// external objects too.
void for_each_item(xml_item_c* top, bool into_external,
                   const std::function<void(xml_item_c*)>& visit) {
    for (xml_item_c* item = top->first_child_item(); item;) {
        visit(item);
        const xmc_item_c* typed = xmc_item_c::as_xmc(item);
        bool enter =
            item->first_child && (into_external || !(typed && typed->kind == xmc_n::kind_external));
        if (enter) {
            item = item->first_child_item();
            continue;
        }
        while (item && item != top && !item->next) item = item->parent_item();
        item = item && item != top ? item->next_item() : nullptr;
    }
}

bool is_object(const xml_item_c* item) {
    const xmc_item_c* typed = xmc_item_c::as_xmc(item);
    return typed && (typed->kind == xmc_n::kind_object || typed->kind == xmc_n::kind_external);
}

// The first object labelled `label` below `top`, in pre-order.
xml_item_c* find_object(xml_item_c* top, const std::string& label) {
    xml_item_c* found = nullptr;
    for_each_item(top, false, [&](xml_item_c* item) {
        if (!found && is_object(item) && attribute_text(item, "label") == label) found = item;
    });
    return found;
}

// The template loaded as the configurator loads it.
class loaded_template_c {
  public:
    loaded_template_c() : loaded(conf.tree->load_from_str(joined_text().c_str())) {}

    xml_item_c* root() const { return conf.tree->get_root(); }
    xml_item_c* child(const char* element, const char* label = nullptr) const {
        for (xml_item_c* item = root() ? root()->first_child_item() : nullptr; item;
             item = item->next_item())
            if (element_of(item) == element && (!label || attribute_text(item, "label") == label))
                return item;
        return nullptr;
    }
    xml_item_c* scenario() const { return child("object", "Scenario"); }
    xml_item_c* group() const { return child("object", "Group"); }
    xml_item_c* definitions() const { return child("definitions"); }
    xml_item_c* section(const char* element) const {
        for (xml_item_c* item = definitions() ? definitions()->first_child_item() : nullptr; item;
             item = item->next_item())
            if (element_of(item) == element) return item;
        return nullptr;
    }

    xmc_conf_c conf;
    bool loaded;
};

// ---- the expected document, expanded from the restated rows ----------------------------------

struct node_s {
    std::string element;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<node_s> children;
    bool contents_checked_apart = false; // the enumerations have a test of their own

    std::string label() const {
        for (const auto& [name, value] : attributes)
            if (name == "label") return value;
        return "";
    }
};

std::vector<std::string> split(const std::string& text, const std::string& separator) {
    std::vector<std::string> parts;
    std::size_t at = 0;
    for (;;) {
        std::size_t next = text.find(separator, at);
        parts.push_back(text.substr(at, next == std::string::npos ? std::string::npos : next - at));
        if (next == std::string::npos) return parts;
        at = next + separator.size();
    }
}

bool starts_with(const std::string& text, const std::string& prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

std::string replace_all(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

// The template writes each element's attributes in the order the grammar lists them.
std::size_t attribute_rank(const std::string& element, const std::string& name) {
    static const std::map<std::string, std::vector<std::string>> orders = {
        {"object", {xmc_n::object_attributes.begin(), xmc_n::object_attributes.end()}},
        {"data", {xmc_n::data_attributes.begin(), xmc_n::data_attributes.end()}},
        {"relevant", {"label", "val", "type"}},
        {"irrelevant", {"label", "val", "type"}},
        {"switch_to_set_default", {"variable", "case", "val", "type"}},
    };
    auto order = orders.find(element);
    if (order == orders.end()) return 0;
    auto at = std::find(order->second.begin(), order->second.end(), name);
    EXPECT_NE(at, order->second.end()) << name << " is no attribute of " << element;
    return static_cast<std::size_t>(at - order->second.begin());
}

void set_attribute(node_s& node, const std::string& name, const std::string& value) {
    for (auto& attribute : node.attributes)
        if (attribute.first == name) {
            attribute.second = value;
            return;
        }
    std::size_t rank = attribute_rank(node.element, name);
    auto at = node.attributes.begin();
    while (at != node.attributes.end() && attribute_rank(node.element, at->first) < rank) ++at;
    node.attributes.insert(at, {name, value});
}

// The descendants of `nodes` labelled `label`, at any depth.
void collect(std::vector<node_s>& nodes, const std::string& label, std::vector<node_s*>& found) {
    for (node_s& node : nodes) {
        if (node.label() == label) found.push_back(&node);
        collect(node.children, label, found);
    }
}

node_s* the_one(std::vector<node_s>& nodes, const std::string& label, const std::string& context) {
    std::vector<node_s*> found;
    collect(nodes, label, found);
    EXPECT_EQ(found.size(), 1u) << "\"" << label << "\" in " << context;
    return found.size() == 1 ? found[0] : nullptr;
}

bool remove_one(std::vector<node_s>& nodes, const std::string& label) {
    for (auto at = nodes.begin(); at != nodes.end(); ++at) {
        if (at->label() == label) {
            nodes.erase(at);
            return true;
        }
        if (remove_one(at->children, label)) return true;
    }
    return false;
}

class expander_c {
  public:
    expander_c() {
        for (std::size_t i = 0; i < template_contents_n::table_count; ++i)
            _tables.push_back(&template_contents_n::tables[i]);
    }

    // The whole document as the restated contents describe it.
    node_s document() const {
        node_s root = object("ConfigDataHolder", "1", "");
        root.children.push_back(data("Version", "5", "Number"));
        node_s definitions{"definitions", {}, {}};
        node_s enums{"enums", {}, {}};
        enums.contents_checked_apart = true;
        definitions.children.push_back(enums);
        node_s objects{"objects", {}, {}};
        for (const table_s* table : _tables)
            if (!starts_with(table->heading, "The object "))
                objects.children.push_back(heading(*table));
        definitions.children.push_back(objects);
        root.children.push_back(definitions);
        for (const table_s* table : _tables)
            if (starts_with(table->heading, "The object "))
                root.children.push_back(heading(*table));
        return root;
    }

  private:
    static node_s object(const std::string& label, const std::string& id,
                         const std::string& status) {
        node_s node{"object", {{"label", label}, {"id", id}}, {}};
        if (!status.empty()) set_attribute(node, "status", status);
        return node;
    }
    static node_s data(const std::string& label, const std::string& val, const std::string& type) {
        return node_s{"data", {{"label", label}, {"val", val}, {"type", type}}, {}};
    }

    // "relevant L=V", "irrelevant L=V", "switch A=C to V"; `owner` is the label of the parent.
    static node_s condition(const std::string& clause, const std::string& owner) {
        if (starts_with(clause, "switch ")) {
            std::string rest = clause.substr(7);
            std::size_t equals = rest.find('='), to = rest.find(" to ");
            std::string type = owner == "SynchType" ? "Application" : "Bool";
            return node_s{"switch_to_set_default",
                          {{"variable", rest.substr(0, equals)},
                           {"case", rest.substr(equals + 1, to - equals - 1)},
                           {"val", rest.substr(to + 4)},
                           {"type", type}},
                          {}};
        }
        std::size_t blank = clause.find(' ');
        std::string element = clause.substr(0, blank);
        std::string rest = clause.substr(blank + 1);
        std::size_t equals = rest.find('=');
        std::string variable = rest.substr(0, equals);
        std::string type = variable == "VettedFailback" ? "Bool" : variable;
        return node_s{element,
                      {{"label", variable},
                       {"val", replace_all(rest.substr(equals + 1), " or ", ", ")},
                       {"type", type}},
                      {}};
    }

    static bool is_condition(const std::string& clause) {
        return starts_with(clause, "relevant ") || starts_with(clause, "irrelevant ") ||
               starts_with(clause, "switch ");
    }

    const table_s* definition(const std::string& label) const {
        for (const table_s* table : _tables)
            if (split(table->heading, ", ")[0] == label) return table;
        ADD_FAILURE() << "no definition " << label;
        return nullptr;
    }

    // "body of X" or "body of X, but D, D, ...": the children of definition X with the
    // differences applied.
    std::vector<node_s> body(const std::string& clause) const {
        std::string rest = clause.substr(std::strlen("body of "));
        std::size_t but = rest.find(", but ");
        const table_s* source = definition(rest.substr(0, but));
        std::vector<node_s> children = source ? rows(*source) : std::vector<node_s>{};
        if (but == std::string::npos) return children;
        std::string differences = rest.substr(but + std::strlen(", but "));
        if (starts_with(differences, "plus ")) {
            // "plus X (T, default V)": one more data item at the end.
            std::string added = differences.substr(5);
            std::size_t open = added.find(" ("), comma = added.find(", default ");
            children.push_back(data(added.substr(0, open),
                                    added.substr(comma + 10, added.size() - comma - 11),
                                    added.substr(open + 2, comma - open - 2)));
            return children;
        }
        for (const std::string& difference : split(differences, ", ")) {
            std::size_t of_type = difference.find(" of type ");
            std::size_t with_default = difference.find(" default ");
            std::size_t with = difference.find(" with ");
            if (starts_with(difference, "without ")) {
                EXPECT_TRUE(remove_one(children, difference.substr(8))) << clause;
            } else if (starts_with(difference, "each of Sun to Sat has the default ")) {
                for (const char* day : {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"})
                    if (node_s* node = the_one(children, day, clause))
                        set_attribute(*node, "val", difference.substr(35));
            } else if (of_type != std::string::npos) {
                if (node_s* node = the_one(children, difference.substr(0, of_type), clause))
                    set_attribute(*node, "type", difference.substr(of_type + 9));
            } else if (with_default != std::string::npos) {
                if (node_s* node = the_one(children, difference.substr(0, with_default), clause))
                    set_attribute(*node, "val", difference.substr(with_default + 9));
            } else if (with != std::string::npos) {
                std::string attribute = difference.substr(with + 6);
                std::size_t equals = attribute.find('=');
                if (node_s* node = the_one(children, difference.substr(0, with), clause))
                    set_attribute(*node, attribute.substr(0, equals), attribute.substr(equals + 1));
            } else {
                ADD_FAILURE() << "unread difference \"" << difference << "\" in " << clause;
            }
        }
        return children;
    }

    // The node of one row, its conditions and body from the notes, then the rows below it.
    node_s row(const row_s* rows, std::size_t count, std::size_t& at) const {
        const row_s& r = rows[at++];
        std::string type = r.type, value = r.value;
        node_s node;
        if (type == "title") {
            node = node_s{"title", {{"label", r.item}}, {}};
        } else if (starts_with(type, "object ")) {
            node = object(r.item, type.substr(7), value);
        } else if (starts_with(type, "list of ")) {
            node = data(r.item, type.substr(8), "MultiEntry");
        } else {
            node = data(r.item, value == "empty" ? "" : value, type);
        }
        std::vector<node_s> conditions, content;
        std::string notes = r.notes;
        for (const std::string& clause :
             notes.empty() ? std::vector<std::string>{} : split(notes, "; ")) {
            if (is_condition(clause)) {
                conditions.push_back(condition(clause, r.item));
            } else if (starts_with(clause, "body of ")) {
                content = body(clause);
            } else if (starts_with(clause, "kids if ")) {
                set_attribute(node, "check_kids_if_val", clause.substr(8));
            } else if (starts_with(clause, "minimum ") || starts_with(clause, "maximum ")) {
                set_attribute(node, clause.substr(0, 7), clause.substr(8));
            } else if (starts_with(clause, "check_if ")) {
                std::size_t is_equal = clause.find(" is_equal ");
                set_attribute(node, "check_if", clause.substr(9, is_equal - 9));
                set_attribute(node, "is_equal", clause.substr(is_equal + 10));
            } else if (std::size_t equals = clause.find('='); equals != std::string::npos) {
                set_attribute(node, clause.substr(0, equals), clause.substr(equals + 1));
            } else {
                ADD_FAILURE() << "unread note \"" << clause << "\" of " << r.item;
            }
        }
        node.children = conditions;
        node.children.insert(node.children.end(), content.begin(), content.end());
        while (at < count && rows[at].depth > r.depth)
            node.children.push_back(row(rows, count, at));
        return node;
    }

    std::vector<node_s> rows(const table_s& table) const {
        std::vector<node_s> nodes;
        for (std::size_t at = 0; at < table.row_count;) {
            EXPECT_EQ(table.rows[at].depth, 0) << table.heading;
            nodes.push_back(row(table.rows, table.row_count, at));
        }
        return nodes;
    }

    // "X, id N[, status S][, conditions]", "title X" or "The object X, id N".
    node_s heading(const table_s& table) const {
        std::string text = table.heading;
        node_s node;
        if (starts_with(text, "title ")) {
            node = node_s{"title", {{"label", text.substr(6)}}, {}};
        } else {
            if (starts_with(text, "The object ")) text = text.substr(11);
            std::vector<std::string> parts = split(text, ", ");
            node = object(parts[0], parts[1].substr(3), "");
            for (std::size_t i = 2; i < parts.size(); ++i) {
                if (starts_with(parts[i], "status ")) {
                    set_attribute(node, "status", parts[i].substr(7));
                    continue;
                }
                for (const std::string& clause : split(parts[i], "; "))
                    node.children.push_back(condition(clause, parts[0]));
            }
        }
        std::vector<node_s> children = rows(table);
        node.children.insert(node.children.end(), children.begin(), children.end());
        return node;
    }

    std::vector<const table_s*> _tables;
};

// ---- comparing a loaded tree with the expected one -------------------------------------------

std::string describe(const std::vector<std::pair<std::string, std::string>>& attributes) {
    std::string out;
    for (const auto& [name, value] : attributes) out += " " + name + "=\"" + value + "\"";
    return out;
}

std::string name_of(const node_s& node) {
    std::string label = node.label();
    return node.element + (label.empty() ? "" : "[" + label + "]");
}

std::string name_of(const xml_item_c* item) {
    std::string label = attribute_text(item, "label");
    return element_of(item) + (label.empty() ? "" : "[" + label + "]");
}

void compare(const node_s& want, const xml_item_c* have, const std::string& path,
             std::vector<std::string>& differences) {
    std::string here = path + "/" + name_of(want);
    if (element_of(have) != want.element) {
        differences.push_back(here + ": the template has " + name_of(have));
        return;
    }
    std::vector<std::pair<std::string, std::string>> attributes;
    for (std::uint64_t i = 0; i < have->get_attribute_count(); ++i) {
        labeled_value_c* attribute = have->get_attribute(i);
        attributes.emplace_back(text_of(attribute->get_label()), text_of(attribute->to_text()));
    }
    if (attributes != want.attributes)
        differences.push_back(here + ": the template has" + describe(attributes) + " for" +
                              describe(want.attributes));
    if (want.contents_checked_apart) return;
    const xml_item_c* child = have->first_child_item();
    for (const node_s& wanted : want.children) {
        if (!child) {
            differences.push_back(here + ": missing " + name_of(wanted));
            continue;
        }
        compare(wanted, child, here, differences);
        child = child->next_item();
    }
    for (; child; child = child->next_item())
        differences.push_back(here + ": one more child " + name_of(child));
}

std::vector<std::string> differences_from_contents(const xml_item_c* root) {
    std::vector<std::string> differences;
    compare(expander_c().document(), root, "", differences);
    return differences;
}

std::string first_of(const std::vector<std::string>& lines, std::size_t most = 20) {
    std::string out;
    for (std::size_t i = 0; i < lines.size() && i < most; ++i) out += lines[i] + "\n";
    return out;
}

// A copy of the template's text with the first `from` replaced by `to`.
std::string text_with(const std::string& from, const std::string& to) {
    std::string text = joined_text();
    std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    if (at != std::string::npos) text.replace(at, from.size(), to);
    return text;
}

std::vector<std::string> differences_in(const std::string& text) {
    mixed_xmc_xml_tree_c tree;
    EXPECT_TRUE(tree.load_from_str(text.c_str()));
    return tree.get_root() ? differences_from_contents(tree.get_root())
                           : std::vector<std::string>{"no root"};
}

} // namespace

// ---- the line array and its text -------------------------------------------------------------

TEST(xmc_template, the_lines_end_with_an_empty_mark_and_the_two_labels_lie_behind_it) {
    const xmc_template_n::line_array_s& array = xmc_template_n::line_array();
    const char* const* lines = xmc_template_n::lines();
    EXPECT_EQ(lines, array.lines);
    for (std::size_t i = 0; i < xmc_template_n::text_line_count; ++i) {
        ASSERT_NE(lines[i], nullptr) << i;
        EXPECT_NE(lines[i][0], '\0') << "line " << i + 1 << " would end the text early";
        EXPECT_EQ(std::strchr(lines[i], '\n'), nullptr) << i;
    }
    ASSERT_NE(lines[xmc_template_n::text_line_count], nullptr);
    EXPECT_STREQ(lines[xmc_template_n::text_line_count], "");
    EXPECT_STREQ(lines[0], "<?xml version=\"1.0\"?>");
    EXPECT_STREQ(lines[xmc_template_n::text_line_count - 1], "</object>");
    // The two labels are the pointers that directly follow the end mark.
    const char* const* behind = array.lines + xmc_template_n::entry_count;
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(behind),
              reinterpret_cast<std::uintptr_t>(&array.xmc_version_label));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(behind + 1),
              reinterpret_cast<std::uintptr_t>(&array.group_version_label));
    EXPECT_STREQ(array.xmc_version_label, "XMC_VersionNumber");
    EXPECT_STREQ(array.group_version_label, "Group_VersionNumber");
}

TEST(xmc_template, the_text_is_every_line_followed_by_a_line_feed) {
    std::string expected;
    for (const char* const* line = xmc_template_n::lines(); **line; ++line)
        expected += std::string(*line) + "\n";
    utl_stream_c out("kept ");
    EXPECT_EQ(xmc_template_n::join(out), xmc_template_n::text_line_count);
    EXPECT_EQ(std::string(out.c_str()), "kept " + expected);
    EXPECT_EQ(joined_text(), expected);
    EXPECT_EQ(std::count(expected.begin(), expected.end(), '\n'),
              static_cast<std::ptrdiff_t>(xmc_template_n::text_line_count));
}

TEST(xmc_template, the_text_loads_into_a_mixed_tree_with_one_item_per_opening_line) {
    loaded_template_c loaded;
    ASSERT_TRUE(loaded.loaded);
    xml_item_c* root = loaded.root();
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(element_of(root), "object");
    EXPECT_EQ(attribute_text(root, "label"), "ConfigDataHolder");
    ASSERT_NE(xmc_item_c::as_xmc(root), nullptr);
    EXPECT_EQ(xmc_item_c::as_xmc(root)->kind, xmc_n::kind_object);

    // Every line but the declaration and the closing tags opens one item.
    std::size_t opening = 0;
    for (std::size_t i = 1; i < xmc_template_n::text_line_count; ++i) {
        std::string line = xmc_template_n::lines()[i];
        line.erase(0, line.find_first_not_of(" \t"));
        if (!starts_with(line, "</")) ++opening;
    }
    std::size_t items = 1;
    for_each_item(root, true, [&](xml_item_c*) { ++items; });
    EXPECT_EQ(items, opening);

    // The one external object's content stays plain XML.
    std::vector<xml_item_c*> external;
    for_each_item(root, true, [&](xml_item_c* item) {
        const xmc_item_c* typed = xmc_item_c::as_xmc(item);
        if (typed && typed->kind == xmc_n::kind_external) external.push_back(item);
    });
    ASSERT_EQ(external.size(), 1u);
    EXPECT_EQ(attribute_text(external[0], "label"), "External");
    ASSERT_NE(external[0]->first_child_item(), nullptr);
    EXPECT_EQ(xmc_item_c::as_xmc(external[0]->first_child_item()), nullptr);
}

// ---- the contents ----------------------------------------------------------------------------

TEST(xmc_template, every_item_is_the_one_the_contents_tables_state) {
    loaded_template_c loaded;
    ASSERT_TRUE(loaded.loaded);
    std::vector<std::string> differences = differences_from_contents(loaded.root());
    EXPECT_TRUE(differences.empty()) << differences.size() << " differences, the first:\n"
                                     << first_of(differences);
}

TEST(xmc_template, the_comparison_finds_a_changed_value_a_missing_item_and_an_extra_one) {
    // One copy's default changed: the other copies of the same definition stay as they are.
    std::vector<std::string> changed =
        differences_in(text_with(R"(<data label="MailServerPort" val="25" type="Text"/>)",
                                 R"(<data label="MailServerPort" val="26" type="Text"/>)"));
    ASSERT_EQ(changed.size(), 1u) << first_of(changed);
    EXPECT_NE(changed[0].find("data[MailServerPort]"), std::string::npos) << changed[0];
    EXPECT_NE(changed[0].find("title[ManagerData]"), std::string::npos) << changed[0];

    std::vector<std::string> missing =
        differences_in(text_with("<data label=\"HavCluster\" val=\"False\" type=\"Bool\"/>\n", ""));
    ASSERT_FALSE(missing.empty());
    EXPECT_NE(first_of(missing).find("HavCluster"), std::string::npos) << first_of(missing);

    std::vector<std::string> extra = differences_in(text_with(
        "<data label=\"UseAlias\" val=\"False\" type=\"Bool\"/>\n",
        "<data label=\"UseAlias\" val=\"False\" type=\"Bool\"/>\n<data label=\"UseAlias2\" "
        "val=\"False\" type=\"Bool\"/>\n"));
    ASSERT_FALSE(extra.empty());
    EXPECT_NE(first_of(extra).find("UseAlias2"), std::string::npos) << first_of(extra);

    std::vector<std::string> condition = differences_in(
        text_with(R"(<relevant label="Application" val="HyperV, FullSystem" type="Application"/>)",
                  R"(<relevant label="Application" val="HyperV,FullSystem" type="Application"/>)"));
    ASSERT_EQ(condition.size(), 1u) << first_of(condition);
    EXPECT_NE(condition[0].find("VirtualMachineIPOnReplicainDNS"), std::string::npos)
        << condition[0];
}

TEST(xmc_template, the_enumerations_are_those_of_the_code_table_in_its_order) {
    loaded_template_c loaded;
    ASSERT_TRUE(loaded.loaded);
    xml_item_c* enums = loaded.section("enums");
    ASSERT_NE(enums, nullptr);
    std::uint32_t index = 0;
    for (xml_item_c* item = enums->first_child_item(); item; item = item->next_item(), ++index) {
        ASSERT_LT(index, xmc_enum_c::enum_count);
        const xmc_enum_c& record = xmc_enums_n::enum_table[index];
        EXPECT_EQ(element_of(item), "enum");
        EXPECT_EQ(attribute_text(item, "label"), record.name);
        std::vector<std::string> items;
        xmc_n::for_each_enum_item(attribute_text(item, "val"),
                                  [&](std::string_view text) { items.emplace_back(text); });
        std::vector<std::string> code_items;
        for (std::uint64_t p = 0; p < record.count; ++p)
            code_items.emplace_back(record.items[p].name);
        EXPECT_EQ(items, code_items) << record.name;
        // Only `Type` explains itself, in a comment element that nothing reads.
        xml_item_c* comment = item->first_child_item();
        if (index == xmc_enums_n::enum_type) {
            ASSERT_NE(comment, nullptr);
            EXPECT_EQ(element_of(comment), "commnent");
            EXPECT_EQ(comment->next_item(), nullptr);
            EXPECT_EQ(comment->first_child, nullptr);
        } else {
            EXPECT_EQ(comment, nullptr) << record.name;
        }
    }
    EXPECT_EQ(index, xmc_enum_c::enum_count);
    // The lists' spacing is the template's own.
    auto val_of = [&](const char* label) {
        for (xml_item_c* item = enums->first_child_item(); item; item = item->next_item())
            if (attribute_text(item, "label") == label) return attribute_text(item, "val");
        return std::string("(none)");
    };
    EXPECT_EQ(val_of("Product"), "Dr, Ha, Cd,Rw");
    EXPECT_EQ(val_of("ReplicationMode"), "Online, Scheduling,OnFileClose,Scheduled");
    EXPECT_EQ(val_of("NumberOfSocketsType"), "Default, 1,5,10");

    // A load from a string drops element text; the comment's words are in its line.
    std::string comment;
    for (const char* const* line = xmc_template_n::lines(); **line; ++line)
        if (std::strstr(*line, "<commnent>")) comment += *line;
    EXPECT_NE(comment.find("Enum"), std::string::npos) << comment;
    EXPECT_NE(comment.find("MultiEntry"), std::string::npos) << comment;
    EXPECT_NE(comment.find("mandatory"), std::string::npos) << comment;
}

TEST(xmc_template, the_version_settings_are_found_where_the_configurator_reads_them) {
    loaded_template_c loaded;
    ASSERT_TRUE(loaded.loaded);
    xmc_conf_c& conf = loaded.conf;
    labeled_value_c* version = conf.find_property("Scenario", "XMC_VersionNumber");
    ASSERT_NE(version, nullptr);
    EXPECT_STREQ(version->to_text(), "164");
    labeled_value_c* group_version = conf.find_property("Group", "Group_VersionNumber");
    ASSERT_NE(group_version, nullptr);
    EXPECT_STREQ(group_version->to_text(), "3");
    // The document's own version stands directly under the root; inside `Scenario` the name
    // finds the scenario's own `Version`, another item.
    xml_item_c* document_version = loaded.child("data", "Version");
    ASSERT_NE(document_version, nullptr);
    EXPECT_EQ(attribute_text(document_version, "val"), "5");
    EXPECT_EQ(attribute_text(document_version, "type"), "Number");
    labeled_value_c* scenario_version = conf.find_property("Scenario", "Version");
    ASSERT_NE(scenario_version, nullptr);
    EXPECT_STREQ(scenario_version->to_text(), "5.0");

    std::size_t xmc_versions = 0, group_versions = 0;
    for_each_item(loaded.root(), true, [&](xml_item_c* item) {
        std::string label = attribute_text(item, "label");
        xmc_versions += label == "XMC_VersionNumber";
        group_versions += label == "Group_VersionNumber";
    });
    EXPECT_EQ(xmc_versions, 1u);
    EXPECT_EQ(group_versions, 1u);
}

TEST(xmc_template, every_item_passes_the_strict_shape_checks_of_the_template) {
    loaded_template_c loaded;
    ASSERT_TRUE(loaded.loaded);
    test_support::trace_capture_c trace;
    std::size_t objects = 0, data = 0;
    std::vector<std::string> refused;
    for_each_item(loaded.root(), false, [&](xml_item_c* item) {
        const xmc_item_c* typed = xmc_item_c::as_xmc(item);
        ASSERT_NE(typed, nullptr) << name_of(item);
        if (typed->kind == xmc_n::kind_data) {
            ++data;
            if (!loaded.conf._check_data_content(nullptr, item, true))
                refused.push_back(name_of(item));
        } else if (is_object(item)) {
            ++objects;
            bool ok = false;
            xmc_validity_c validity;
            std::uint32_t id = 0;
            const char* name = loaded.conf._check_object_content_get_name(item, ok, &validity, &id);
            if (!ok || !name || id == 0 || validity.findings.get_count() != 0)
                refused.push_back(name_of(item));
        }
    });
    EXPECT_TRUE(refused.empty()) << first_of(refused) << trace.text();
    // The walk met every object and data item that the contents state.
    std::size_t want_objects = 0, want_data = 0;
    std::function<void(const node_s&)> count = [&](const node_s& node) {
        want_objects += node.element == "object";
        want_data += node.element == "data";
        for (const node_s& child : node.children) count(child);
    };
    node_s document = expander_c().document();
    for (const node_s& child : document.children) count(child);
    EXPECT_EQ(objects, want_objects);
    EXPECT_EQ(data, want_data);
}

TEST(xmc_template, every_type_names_a_type_and_every_default_fits_its_kind) {
    loaded_template_c loaded;
    ASSERT_TRUE(loaded.loaded);
    std::set<std::string> definition_ids;
    for (xml_item_c* item = loaded.section("objects")->first_child_item(); item;
         item = item->next_item())
        if (is_object(item)) definition_ids.insert(attribute_text(item, "id"));
    std::vector<std::string> faults;
    std::set<std::string> lower_case_bools, ids_without_definition, lists_with_entries;
    for_each_item(loaded.root(), false, [&](xml_item_c* item) {
        const xmc_item_c* typed = xmc_item_c::as_xmc(item);
        if (!typed || typed->kind != xmc_n::kind_data) return;
        std::string label = attribute_text(item, "label"), val = attribute_text(item, "val");
        if (typed->value_type == xmc_n::type_unknown) faults.push_back(label + ": unknown type");
        if (typed->value_type == xmc_n::type_multi_entry) {
            // An entry type is a type or enumeration name, or an object id; the entries are the
            // list's `data` and `object` children, the other children are its conditions.
            std::uint32_t enum_index = 16;
            bool named = xmc_enum_c::find_type(val.c_str(), enum_index) != xmc_n::type_unknown;
            bool is_id = !val.empty() && val.find_first_not_of("0123456789") == std::string::npos;
            if (!named && !is_id) faults.push_back(label + ": list of " + val);
            if (is_id && !definition_ids.count(val)) ids_without_definition.insert(val);
            std::size_t entries = 0;
            for (xml_item_c* entry = item->first_child_item(); entry; entry = entry->next_item()) {
                std::string element = element_of(entry);
                if (element != "data" && element != "object") continue;
                ++entries;
                if (element != "object" || attribute_text(entry, "id") != val)
                    faults.push_back(label + ": an entry that is no " + val);
            }
            if (entries) lists_with_entries.insert(label + " " + std::to_string(entries));
            return;
        }
        if (val == "variable") {
            if (label != "Application" && label != "Product" && label != "VettedFailback" &&
                label != "GroupName")
                faults.push_back(label + ": variable");
            return;
        }
        switch (typed->value_type) {
        case xmc_n::type_enum:
            if (xmc_enum_c::find_item(typed->enum_index, val.c_str()) == xmc_enum_c::not_found)
                faults.push_back(label + ": " + val + " is no item");
            break;
        case xmc_n::type_number:
            if (val.empty() || val.find_first_not_of("0123456789") != std::string::npos)
                faults.push_back(label + ": " + val + " is no number");
            break;
        case xmc_n::type_bool:
            if (val == "true" || val == "false")
                lower_case_bools.insert(label);
            else if (val != "True" && val != "False")
                faults.push_back(label + ": " + val + " is no Bool");
            break;
        default: break;
        }
    });
    EXPECT_TRUE(faults.empty()) << first_of(faults);
    // The two lower-case words stand in the template as shipped.
    EXPECT_EQ(lower_case_bools, (std::set<std::string>{"ApplySourceAdapterSetting", "UseDHCP"}));
    // Two lists name an id that no definition has: 4460, whose list starts empty, and 8020,
    // the host entries of `ScenarioInfo`, whose shape is that of its two initial entries.
    EXPECT_EQ(ids_without_definition, (std::set<std::string>{"4460", "8020"}));
    // The lists that hold entries in the template itself: one sample mapping in the definition
    // of `Switchover`, the master's and the replica's host, and each node's root directory.
    EXPECT_EQ(lists_with_entries, (std::set<std::string>{"HostList 2", "ListRootDirs 1",
                                                         "ListVirtualNetworkMappings 1"}));
}

// ---- the code tables that repeat the template --------------------------------------------------

TEST(xmc_template, objects_agree_with_object_tag_table_in_name_id_and_papa) {
    loaded_template_c loaded;
    ASSERT_TRUE(loaded.loaded);
    using xmc_enums_n::object_tag_table;
    auto row_of = [](const std::string& name) {
        for (std::uint32_t row = 0; row < xmc_enums_n::object_tag_count; ++row)
            if (name == object_tag_table[row].name) return row;
        return xmc_enums_n::object_not_found;
    };
    std::vector<std::string> faults;
    std::set<std::uint32_t> rows_met;
    std::size_t compared = 0;
    for_each_item(loaded.root(), false, [&](xml_item_c* item) {
        if (!is_object(item)) return;
        xml_item_c* papa = item->parent_item();
        while (papa && !is_object(papa)) papa = papa->parent_item();
        ASSERT_NE(papa, nullptr);
        std::string name = attribute_text(item, "label"), papa_name = attribute_text(papa, "label");
        if (papa_name == "ConfigDataHolder") return; // the definitions, `Scenario` and `Group`
        ++compared;
        std::uint32_t row = row_of(name), papa_row = row_of(papa_name);
        if (row == xmc_enums_n::object_not_found || papa_row == xmc_enums_n::object_not_found) {
            faults.push_back(name + " in " + papa_name + ": no row");
            return;
        }
        rows_met.insert(row);
        std::uint32_t id = object_tag_table[row].id;
        if (id != 0 && attribute_text(item, "id") != std::to_string(id))
            faults.push_back(name + ": id " + attribute_text(item, "id"));
        bool papa_right = object_tag_table[row].papa == papa_row ||
                          (row == papa_row && (row == 17 || row == 57)) ||
                          ((row == 32 || row == 35) && papa_row == 0);
        if (!papa_right) faults.push_back(name + " in " + papa_name);
    });
    EXPECT_TRUE(faults.empty()) << first_of(faults);
    EXPECT_GT(compared, 0u);
    // Every row names an object that stands below some object, but the roots of the scenario
    // and group rows (0, 55), `MatchAllKidsVolume` (29), which is a data item, and the entry
    // shapes of lists that start empty, which stand only among the definitions:
    // `MonitorService` and `MonitorBackupVM` (11, 12), `ScenarioInfo` (56),
    // `ScenarioDependencySet` (58), `ScenarioFailoverInfo` (61), `ScenarioRedundancySet` (62).
    std::set<std::uint32_t> rows_not_met;
    for (std::uint32_t row = 0; row < xmc_enums_n::object_tag_count; ++row)
        if (!rows_met.count(row)) rows_not_met.insert(row);
    EXPECT_EQ(rows_not_met, (std::set<std::uint32_t>{0, 11, 12, 29, 55, 56, 58, 61, 62}));
}

namespace {

// The rows of a data table whose setting `find_property` does not find from any of `starts`.
template <class Row>
std::set<std::uint32_t> rows_not_found(const xmc_conf_c& conf, const Row* rows, std::uint32_t count,
                                       const std::vector<xml_item_c*>& starts) {
    std::set<std::uint32_t> missing;
    for (std::uint32_t i = 0; i < count; ++i) {
        EXPECT_EQ(rows[i].index, i);
        const char* object = xmc_enums_n::object_tag_table[rows[i].object].name;
        bool found = false;
        for (xml_item_c* start : starts) {
            xml_item_c* carrier = nullptr;
            labeled_value_c* value = conf.find_property(object, rows[i].label, start, &carrier);
            if (!value) continue;
            found = true;
            EXPECT_NE(carrier, nullptr);
            // `status` is the object's own attribute; any other label a data item's `val`.
            if (std::strcmp(rows[i].label, "status") == 0) {
                EXPECT_EQ(attribute_text(carrier, "label"), object);
            } else {
                EXPECT_EQ(attribute_text(carrier, "label"), rows[i].label);
                EXPECT_EQ(element_of(carrier), "data");
            }
        }
        if (!found) missing.insert(i);
    }
    return missing;
}

} // namespace

TEST(xmc_template, scenario_data_rows_find_their_settings_in_the_scenario) {
    loaded_template_c loaded;
    ASSERT_TRUE(loaded.loaded);
    std::set<std::uint32_t> missing =
        rows_not_found(loaded.conf, xmc_enums_n::scenario_data_table,
                       xmc_enums_n::scenario_data_count, {loaded.scenario()});
    // 85 `MonitorServiceListEdit` has no item at all. 19 `VMInstanceUUID` and 87
    // `ServiceName` belong to entries of lists that start empty, so only the definitions
    // `MonitorBackupVM` and `MonitorService` hold them. The others stand elsewhere than the row
    // says: 86 `ListMonitorServices` directly in `Scenario` rather than in `Switchover`, and 131
    // `CPUInfo`, 132 `MemoryInfo` and 134 `VirtualMachineName` in the replica's
    // `SpecificReplicaProps` rather than in `Switchover`.
    EXPECT_EQ(missing, (std::set<std::uint32_t>{19, 85, 86, 87, 131, 132, 134}));
}

TEST(xmc_template, host_data_rows_find_their_settings_on_the_hosts_or_for_the_manager) {
    loaded_template_c loaded;
    ASSERT_TRUE(loaded.loaded);
    xml_item_c* master = find_object(loaded.scenario(), "ReplNode");
    ASSERT_NE(master, nullptr);
    xml_item_c* replica = nullptr;
    for (xml_item_c* item = master->first_child_item(); item; item = item->next_item())
        if (attribute_text(item, "label") == "ReplNode") replica = item;
    ASSERT_NE(replica, nullptr);
    ASSERT_NE(loaded.conf.find_property("CommonHostProps", "Index", master), nullptr);
    EXPECT_STREQ(loaded.conf.find_property("CommonHostProps", "Index", master)->to_text(), "1");
    EXPECT_STREQ(loaded.conf.find_property("CommonHostProps", "Index", replica)->to_text(), "2");

    std::set<std::uint32_t> missing = rows_not_found(
        loaded.conf, xmc_enums_n::host_data_table, xmc_enums_n::host_data_count, {master, replica});
    // 34 `BandWidth` has no item at all. 7 `IOThrottler` is an object, not a data item, and 47
    // `VSM` a title; 177 and 178 stand in `Switchover`, which no host holds.
    EXPECT_EQ(missing, (std::set<std::uint32_t>{7, 34, 47, 177, 178}));

    // The manager's rows are read from the scenario's level, the `ManagerData` title.
    std::vector<std::string> manager_faults;
    for (std::uint32_t i = 0; i < xmc_enums_n::host_data_count; ++i) {
        const auto& row = xmc_enums_n::host_data_table[i];
        if (!row.manager) continue;
        xml_item_c* carrier = nullptr;
        const char* object = xmc_enums_n::object_tag_table[row.object].name;
        if (!loaded.conf.find_property(object, row.label, loaded.scenario(), &carrier)) {
            manager_faults.push_back(std::string(object) + "." + row.label);
            continue;
        }
        xml_item_c* title = carrier;
        while (title &&
               !(element_of(title) == "title" && attribute_text(title, "label") == "ManagerData"))
            title = title->parent_item();
        if (!title)
            manager_faults.push_back(std::string(object) + "." + row.label +
                                     " outside ManagerData");
    }
    EXPECT_TRUE(manager_faults.empty()) << first_of(manager_faults);
}

TEST(xmc_template, group_rows_find_their_settings_in_the_group_and_its_entry_shapes) {
    loaded_template_c loaded;
    ASSERT_TRUE(loaded.loaded);
    EXPECT_TRUE(rows_not_found(loaded.conf, xmc_enums_n::group_data_table,
                               xmc_enums_n::group_data_count, {loaded.group()})
                    .empty());
    // The group's lists start empty; their entries take the shape of the definitions.
    xml_item_c* objects = loaded.section("objects");
    ASSERT_NE(objects, nullptr);
    EXPECT_TRUE(rows_not_found(loaded.conf, xmc_enums_n::group_scenario_data_table,
                               xmc_enums_n::group_scenario_data_count, {objects})
                    .empty());
    ASSERT_TRUE(xmc_enums_n::group_host_data_table_complete());
    std::vector<std::string> faults;
    for (const auto& row : xmc_enums_n::group_host_data_table) {
        const char* object = xmc_enums_n::object_tag_table[row.object].name;
        if (!loaded.conf.find_property(object, row.label, objects))
            faults.push_back(std::string(object) + "." + row.label);
    }
    // Each list names its entries' definition by id, and stands where the group finds it.
    for (const auto& row : xmc_enums_n::group_list_table) {
        const auto& entry = xmc_enums_n::object_tag_table[row.object];
        xml_item_c* list = loaded.conf.find_tree_item(row.label, false, loaded.group());
        if (!list) list = loaded.conf.find_tree_item(row.label, false, objects);
        if (!list) {
            faults.push_back(std::string(row.label) + " not found");
            continue;
        }
        if (attribute_text(list, "type") != "MultiEntry" ||
            attribute_text(list, "val") != std::to_string(entry.id))
            faults.push_back(std::string(row.label) + " is no list of " + entry.name);
        xml_item_c* shape = find_object(objects, entry.name);
        if (!shape || attribute_text(shape, "id") != std::to_string(entry.id))
            faults.push_back(std::string(entry.name) + " has no definition");
    }
    EXPECT_TRUE(faults.empty()) << first_of(faults);
}
