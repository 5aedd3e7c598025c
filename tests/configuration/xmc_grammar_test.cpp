// The grammar of XMC: names, kinds, type positions, the attributes each element may carry, and
// the text rules of enum lists, check_if, conditions and switches.
#include "configuration/xmc_grammar.h"
#include "utl/utl_stream.h"
#include "xml/xml_tree_templ.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::vector<std::string> enum_items(const char* list) {
    std::vector<std::string> items;
    xmc_n::for_each_enum_item(list, [&](std::string_view item) { items.emplace_back(item); });
    return items;
}

} // namespace

TEST(XmcGrammar, ElementNamesGiveTheirKinds) {
    EXPECT_EQ(xmc_n::kind_of_element("data"), xmc_n::kind_data);
    EXPECT_EQ(xmc_n::kind_of_element("object"), xmc_n::kind_object);
    EXPECT_EQ(xmc_n::kind_of_element("title"), xmc_n::kind_title);
    for (const char* other : {"definitions", "enums", "enum", "objects", "commnent", "relevant",
                              "irrelevant", "switch_to_set_default", "Data", "OBJECT", "", "x"})
        EXPECT_EQ(xmc_n::kind_of_element(other), xmc_n::kind_other) << other;
    EXPECT_EQ(xmc_n::kind_of_element(nullptr), xmc_n::kind_other);
}

TEST(XmcGrammar, KindNumbers) {
    EXPECT_EQ(xmc_n::kind_title, 0u);
    EXPECT_EQ(xmc_n::kind_object, 1u);
    EXPECT_EQ(xmc_n::kind_data, 2u);
    EXPECT_EQ(xmc_n::kind_external, 3u);
    EXPECT_EQ(xmc_n::kind_other, 4u);
}

TEST(XmcGrammar, CommentElementIsSpeltWithTwoN) {
    EXPECT_STREQ(xmc_n::element_commnent, "commnent");
}

TEST(XmcGrammar, TypePositionsAreFixed) {
    const char* expected[] = {"Enum",      "Number",   "Bool",        "String",
                              "Text",      "FullPath", "DefFullPath", "IPAddr",
                              "IPAdrMask", "Date",     "MultiEntry",  "Any"};
    ASSERT_EQ(xmc_n::type_names.size(), 12u);
    for (std::size_t i = 0; i < 12; ++i) EXPECT_STREQ(xmc_n::type_names[i], expected[i]) << i;
    EXPECT_EQ(xmc_n::type_any, 11u);
    EXPECT_EQ(xmc_n::type_unknown, 12u);
}

TEST(XmcGrammar, ObjectAttributes) {
    for (const char* name : {"label", "id", "status", "prompted", "to_keep", "external"})
        EXPECT_TRUE(xmc_n::is_object_attribute(name)) << name;
    for (const char* name : {"val", "type", "mandatory", "Label", "", "check_if"})
        EXPECT_FALSE(xmc_n::is_object_attribute(name)) << name;
    EXPECT_FALSE(xmc_n::is_object_attribute(nullptr));
    ASSERT_EQ(xmc_n::object_required_attributes.size(), 2u);
    EXPECT_STREQ(xmc_n::object_required_attributes[0], "label");
    EXPECT_STREQ(xmc_n::object_required_attributes[1], "id");
}

TEST(XmcGrammar, DataAttributes) {
    for (const char* name : {"label", "val", "type", "mandatory", "prompted", "check_kids_if_val",
                             "check_if", "is_equal", "minimum", "maximum", "to_keep"})
        EXPECT_TRUE(xmc_n::is_data_attribute(name)) << name;
    for (const char* name : {"id", "status", "external", "variable", "case", "Val", ""})
        EXPECT_FALSE(xmc_n::is_data_attribute(name)) << name;
    ASSERT_EQ(xmc_n::data_required_attributes.size(), 3u);
    EXPECT_STREQ(xmc_n::data_required_attributes[0], "label");
    EXPECT_STREQ(xmc_n::data_required_attributes[1], "val");
    EXPECT_STREQ(xmc_n::data_required_attributes[2], "type");
}

TEST(XmcGrammar, OnlyValMayBeEmpty) {
    EXPECT_TRUE(xmc_n::may_be_empty("val"));
    for (const char* name : {"label", "id", "type", "status"})
        EXPECT_FALSE(xmc_n::may_be_empty(name)) << name;
    EXPECT_FALSE(xmc_n::may_be_empty(nullptr));
}

TEST(XmcGrammar, VersionLabelsAndNumbers) {
    EXPECT_STREQ(xmc_n::label_version, "Version");
    EXPECT_STREQ(xmc_n::label_xmc_version_number, "XMC_VersionNumber");
    EXPECT_STREQ(xmc_n::label_group_version_number, "Group_VersionNumber");
    EXPECT_EQ(xmc_n::document_version, 5u);
    EXPECT_EQ(xmc_n::xmc_version_number, 164u);
    EXPECT_EQ(xmc_n::group_version_number, 3u);
}

TEST(XmcGrammar, TemplateLineCounts) {
    EXPECT_EQ(xmc_n::template_entry_count, 1446u);
    EXPECT_EQ(xmc_n::template_reserve, 11568u);
}

TEST(XmcGrammar, JoinLinesStopsAtTheFirstEmptyLine) {
    const char* lines[] = {
        "<?xml version=\"1.0\"?>", "<a>", "\t<b x=\"1\"/>", "</a>", "", "<after/>"};
    utl_stream_c out;
    EXPECT_EQ(xmc_n::join_lines(lines, out, 64), 4u);
    EXPECT_STREQ(out.c_str(), "<?xml version=\"1.0\"?>\n<a>\n\t<b x=\"1\"/>\n</a>\n");
    EXPECT_GE(out.get_capacity(), 64u);
}

TEST(XmcGrammar, LineArrayThatBeginsWithAnEmptyStringGivesAnEmptyDocumentThatFailsToLoad) {
    const char* lines[] = {"", "<?xml version=\"1.0\"?>", "<a/>"};
    utl_stream_c out;
    EXPECT_EQ(xmc_n::join_lines(lines, out, xmc_n::template_reserve), 0u);
    EXPECT_EQ(out.get_length(), 0u);
    xml_tree_c tree;
    EXPECT_FALSE(tree.load_from_str(out.c_str() ? out.c_str() : ""));
    EXPECT_EQ(tree.get_root(), nullptr);
}

TEST(XmcGrammar, JoinLinesOfNullIsNothing) {
    utl_stream_c out;
    EXPECT_EQ(xmc_n::join_lines(nullptr, out, 0), 0u);
}

TEST(XmcGrammar, EnumItemsAreSeparatedByAnyRunOfCommaBlankOrTab) {
    EXPECT_EQ(enum_items("Dr, Ha,\tCd ,,  Rw"), (std::vector<std::string>{"Dr", "Ha", "Cd", "Rw"}));
    EXPECT_EQ(enum_items(" , \t"), std::vector<std::string>{});
    EXPECT_EQ(enum_items(""), std::vector<std::string>{});
    EXPECT_EQ(enum_items("56.0 64.0"), (std::vector<std::string>{"56.0", "64.0"}));
    // Line feeds are no separators.
    EXPECT_EQ(enum_items("a\nb"), (std::vector<std::string>{"a\nb"}));
}

TEST(XmcGrammar, CheckIfIsCutAtTheFirstDot) {
    std::string_view object_label, data_label;
    ASSERT_TRUE(xmc_n::split_check_if("TraficRedirection.MoveIP", object_label, data_label));
    EXPECT_EQ(object_label, "TraficRedirection");
    EXPECT_EQ(data_label, "MoveIP");
    ASSERT_TRUE(xmc_n::split_check_if("a.b.c", object_label, data_label));
    EXPECT_EQ(object_label, "a");
    EXPECT_EQ(data_label, "b.c");
}

TEST(XmcGrammar, CheckIfWithoutDotCountsAsSatisfied) {
    std::string_view object_label, data_label;
    EXPECT_FALSE(xmc_n::split_check_if("MoveIP", object_label, data_label));
    EXPECT_FALSE(xmc_n::split_check_if(nullptr, object_label, data_label));
    EXPECT_TRUE(object_label.empty());
    EXPECT_TRUE(data_label.empty());
}

TEST(XmcGrammar, ApplicationConditionIsASubstringMatchOnTheWholeVal) {
    xmc_n::instance_s now{"FullSystem", "Ha", false};
    EXPECT_TRUE(xmc_n::condition_holds("Application", "HyperV, FullSystem", now));
    EXPECT_TRUE(xmc_n::condition_holds("Application", "FullSystemX", now));
    EXPECT_FALSE(xmc_n::condition_holds("Application", "HyperV", now));
    // So a `relevant` with that list keeps its parent for FullSystem.
    EXPECT_FALSE(xmc_n::condition_removes_parent(
        "relevant", xmc_n::condition_holds("Application", "HyperV, FullSystem", now)));
    EXPECT_TRUE(xmc_n::condition_removes_parent(
        "irrelevant", xmc_n::condition_holds("Application", "HyperV, FullSystem", now)));
    now.application = "SQL";
    EXPECT_TRUE(xmc_n::condition_holds("Application", "Exchange,SQL", now));
}

TEST(XmcGrammar, ProductConditionHasNoListForm) {
    xmc_n::instance_s now{"FileServer", "Ha", false};
    EXPECT_TRUE(xmc_n::condition_holds("Product", "Ha", now));
    EXPECT_FALSE(xmc_n::condition_holds("Product", "Dr, Ha", now));
    EXPECT_FALSE(xmc_n::condition_holds("Product", "ha", now));
}

TEST(XmcGrammar, VettedFailbackCondition) {
    xmc_n::instance_s now{"FileServer", "Ha", true};
    EXPECT_TRUE(xmc_n::condition_holds("VettedFailback", "True", now));
    EXPECT_FALSE(xmc_n::condition_holds("VettedFailback", "False", now));
    now.vetted_failback = false;
    EXPECT_TRUE(xmc_n::condition_holds("VettedFailback", "False", now));
    EXPECT_FALSE(xmc_n::condition_holds("VettedFailback", "true", now));
}

TEST(XmcGrammar, AnyOtherConditionLabelIsFalse) {
    xmc_n::instance_s now{"FileServer", "Ha", true};
    EXPECT_FALSE(xmc_n::condition_holds("ConfigMode", "FileServer", now));
    EXPECT_FALSE(xmc_n::condition_holds(nullptr, "Ha", now));
    EXPECT_FALSE(xmc_n::condition_holds("Product", nullptr, now));
}

TEST(XmcGrammar, RelevantRemovesOnFalseIrrelevantOnTrue) {
    EXPECT_TRUE(xmc_n::condition_removes_parent("relevant", false));
    EXPECT_FALSE(xmc_n::condition_removes_parent("relevant", true));
    EXPECT_TRUE(xmc_n::condition_removes_parent("irrelevant", true));
    EXPECT_FALSE(xmc_n::condition_removes_parent("irrelevant", false));
    EXPECT_FALSE(xmc_n::condition_removes_parent("data", true));
    EXPECT_FALSE(xmc_n::condition_removes_parent(nullptr, false));
}

TEST(XmcGrammar, SwitchNeedsAllThreeAttributesAndAnExactCase) {
    xmc_n::instance_s now{"HyperV", "Ha", false};
    EXPECT_TRUE(xmc_n::switch_applies("Application", "HyperV", "x", now));
    EXPECT_FALSE(xmc_n::switch_applies("Application", "HyperV, FullSystem", "x", now));
    EXPECT_FALSE(xmc_n::switch_applies("Application", "HyperV", nullptr, now));
    EXPECT_FALSE(xmc_n::switch_applies(nullptr, "HyperV", "x", now));
    EXPECT_FALSE(xmc_n::switch_applies("Application", nullptr, "x", now));
    EXPECT_TRUE(xmc_n::switch_applies("Product", "Ha", "x", now));
    EXPECT_TRUE(xmc_n::switch_applies("VettedFailback", "False", "", now));
    EXPECT_FALSE(xmc_n::switch_applies("Other", "Ha", "x", now));
}
