// xmc_item_c: kinds, the attribute hook, the canonical shape, the lookup of a data item's value
// and copies.
#include "configuration/xmc_item.h"

#include "common/test_support.h"
#include "configuration/xmc_enums.h"

#include <gtest/gtest.h>

#include <string>

namespace {

xmc_item_c* data_item(const char* label, const char* val, const char* type) {
    auto* item = new xmc_item_c("data");
    item->set_attribute("label", label);
    item->set_attribute("val", val);
    item->set_attribute("type", type);
    return item;
}

} // namespace

TEST(XmcItem, KindOfTheElementName) {
    EXPECT_EQ(xmc_item_c("data").kind, 2u);
    EXPECT_EQ(xmc_item_c("object").kind, 1u);
    EXPECT_EQ(xmc_item_c("title").kind, 0u);
    EXPECT_EQ(xmc_item_c("enum").kind, 4u);
    EXPECT_EQ(xmc_item_c("").kind, 4u);
}

TEST(XmcItem, FieldsStartWithoutTypeAndNotCanonical) {
    xmc_item_c item("data");
    EXPECT_EQ(item.value_type, 12u);
    EXPECT_EQ(item.enum_index, 16u);
    EXPECT_FALSE(item.canonical);
}

TEST(XmcItem, LabelLengthWithoutAScan) {
    EXPECT_EQ(xmc_item_c("title").get_label_length(), 5u);
    EXPECT_EQ(xmc_item_c("object").get_label_length(), 6u);
    EXPECT_EQ(xmc_item_c("data").get_label_length(), 4u);
    EXPECT_EQ(xmc_item_c("definitions").get_label_length(), 11u);
    xmc_item_c external("object");
    external.set_attribute("external", "True");
    EXPECT_EQ(external.get_label_length(), 6u); // kind 3 scans and finds the same
}

TEST(XmcItem, CanonicalData) {
    std::unique_ptr<xmc_item_c> item(data_item("Port", "25000", "Number"));
    EXPECT_TRUE(item->canonical);
    EXPECT_EQ(item->value_type, 1u);
    EXPECT_EQ(item->enum_index, 16u);
}

TEST(XmcItem, DataWithValBeforeLabelIsNotCanonicalAndFindsTheSameByScanning) {
    xmc_item_c item("data");
    item.set_attribute("val", "25000");
    item.set_attribute("label", "Port");
    item.set_attribute("type", "Number");
    EXPECT_FALSE(item.canonical);
    EXPECT_EQ(item.value_type, 1u);
    std::unique_ptr<xmc_item_c> canonical(data_item("Port", "25000", "Number"));
    labeled_value_c* scanned = item.find_data_attribute("Port");
    labeled_value_c* by_position = canonical->find_data_attribute("Port");
    ASSERT_NE(scanned, nullptr);
    ASSERT_NE(by_position, nullptr);
    EXPECT_STREQ(scanned->to_text(), by_position->to_text());
    EXPECT_EQ(item.find_data_attribute("Other"), nullptr);
    EXPECT_EQ(canonical->find_data_attribute("Other"), nullptr);
}

TEST(XmcItem, DataWithAFourthAttributeBeforeTypeIsNotCanonical) {
    xmc_item_c item("data");
    item.set_attribute("label", "L");
    item.set_attribute("val", "1");
    item.set_attribute("minimum", "0");
    item.set_attribute("type", "Number");
    EXPECT_FALSE(item.canonical);
    ASSERT_NE(item.find_data_attribute("L"), nullptr);
    EXPECT_STREQ(item.find_data_attribute("L")->to_text(), "1");
}

TEST(XmcItem, ALaterAttributeDoesNotClearCanonical) {
    std::unique_ptr<xmc_item_c> item(data_item("L", "1", "Number"));
    item->set_attribute("maximum", "10");
    EXPECT_TRUE(item->canonical);
}

TEST(XmcItem, TypeNamingAnEnumeration) {
    std::unique_ptr<xmc_item_c> item(data_item("Application", "variable", "Application"));
    EXPECT_EQ(item->value_type, 0u);
    EXPECT_EQ(item->enum_index, 2u);
}

TEST(XmcItem, ADataWhoseTypeNamesNothingHasValueTypeTwelve) {
    std::unique_ptr<xmc_item_c> item(data_item("L", "v", "Nothing"));
    EXPECT_EQ(item->value_type, 12u);
    EXPECT_EQ(item->enum_index, 16u);
    std::unique_ptr<xmc_item_c> empty(data_item("L", "v", ""));
    EXPECT_EQ(empty->value_type, 12u);
}

TEST(XmcItem, ChangingTheTypeChangesTheValueType) {
    std::unique_ptr<xmc_item_c> item(data_item("L", "v", "Number"));
    item->set_attribute("type", "Date");
    EXPECT_EQ(item->value_type, 9u);
}

TEST(XmcItem, ObjectWithLabelIdStatusIsCanonical) {
    xmc_item_c item("object");
    item.set_attribute("label", "Report");
    item.set_attribute("id", "3500");
    item.set_attribute("status", "True");
    EXPECT_TRUE(item.canonical);
    EXPECT_EQ(item.kind, 1u);
}

TEST(XmcItem, ObjectWithStatusBeforeIdIsNotCanonical) {
    xmc_item_c item("object");
    item.set_attribute("label", "Report");
    item.set_attribute("status", "True");
    item.set_attribute("id", "3500");
    EXPECT_FALSE(item.canonical);
}

TEST(XmcItem, NumericIdCountsToo) {
    xmc_item_c item("object");
    item.set_attribute("label", "Report");
    item.set_attribute("id", 3500u);
    EXPECT_TRUE(item.canonical);
}

TEST(XmcItem, ExternalWithTheValueFalseMakesAnExternalItemToo) {
    xmc_item_c item("object");
    item.set_attribute("label", "External");
    item.set_attribute("id", "0");
    item.set_attribute("external", "False");
    EXPECT_EQ(item.kind, 3u);
    xmc_item_c numeric("object");
    numeric.set_attribute("external", false);
    EXPECT_EQ(numeric.kind, 3u);
}

TEST(XmcItem, ExternalOnADataOrTitleChangesNothing) {
    xmc_item_c data("data");
    data.set_attribute("external", "True");
    EXPECT_EQ(data.kind, 2u);
    xmc_item_c title("title");
    title.set_attribute("external", "True");
    title.set_attribute("label", "x");
    title.set_attribute("id", "1");
    EXPECT_EQ(title.kind, 0u);
    EXPECT_FALSE(title.canonical);
}

TEST(XmcItem, TypeOnAnObjectIsNoType) {
    xmc_item_c item("object");
    item.set_attribute("type", "Number");
    EXPECT_EQ(item.value_type, 12u);
}

TEST(XmcItem, EveryFormOfSetAttributeRunsTheHook) {
    auto object_with = [](auto value) {
        xmc_item_c item("object");
        item.set_attribute("external", value);
        return item.kind;
    };
    EXPECT_EQ(object_with("x"), 3u);
    EXPECT_EQ(object_with(1ull), 3u);
    EXPECT_EQ(object_with(1ll), 3u);
    EXPECT_EQ(object_with(1u), 3u);
    EXPECT_EQ(object_with(1), 3u);
    EXPECT_EQ(object_with(1ul), 3u);
    EXPECT_EQ(object_with(1l), 3u);
    EXPECT_EQ(object_with(static_cast<unsigned short>(1)), 3u);
    EXPECT_EQ(object_with(static_cast<short>(1)), 3u);
    EXPECT_EQ(object_with('1'), 3u);
    EXPECT_EQ(object_with(true), 3u);
    labeled_value_c source("external", "yes");
    xmc_item_c item("object");
    EXPECT_NE(item.set_attribute(&source), nullptr);
    EXPECT_EQ(item.kind, 3u);
    EXPECT_EQ(item.set_attribute(static_cast<const labeled_value_c*>(nullptr)), nullptr);
}

TEST(XmcItem, FindDataAttributeOnlyOnDataAndNotForNull) {
    std::unique_ptr<xmc_item_c> item(data_item("L", "v", "Text"));
    EXPECT_EQ(item->find_data_attribute(nullptr), nullptr);
    xmc_item_c object("object");
    object.set_attribute("label", "L");
    object.set_attribute("val", "v");
    EXPECT_EQ(object.find_data_attribute("L"), nullptr);
}

TEST(XmcItem, FindDataAttributeWithoutValIsNull) {
    xmc_item_c item("data");
    item.set_attribute("label", "L");
    item.set_attribute("type", "Text");
    EXPECT_EQ(item.find_data_attribute("L"), nullptr);
}

TEST(XmcItem, ACanonicalItemThatLostItsAttributesTracesTheBounds) {
    std::unique_ptr<xmc_item_c> item(data_item("L", "v", "Text"));
    for (std::uint64_t i = item->attributes.get_count(); i > 0; --i)
        delete item->attributes.remove(i - 1);
    test_support::trace_capture_c trace;
    EXPECT_EQ(item->find_data_attribute("L"), nullptr);
    EXPECT_NE(test_support::trace_line(trace.text(), "array_ct(last = -1), received index 0"), "");
}

TEST(XmcItem, CopyKeepsTheFourFieldsAndRunsNoHook) {
    xmc_item_c item("object");
    item.set_attribute("label", "X");
    item.set_attribute("id", "5");
    item.set_attribute("external", "True");
    item.canonical = false; // a hook that ran again would set it
    xmc_item_c copy(item, false);
    EXPECT_EQ(copy.kind, 3u);
    EXPECT_FALSE(copy.canonical);
    EXPECT_EQ(copy.attributes.get_count(), 3u);
    std::unique_ptr<xmc_item_c> data(data_item("L", "v", "Date"));
    data->value_type = 4;
    xmc_item_c data_copy(*data, false);
    EXPECT_EQ(data_copy.value_type, 4u);
    EXPECT_TRUE(data_copy.canonical);
}

TEST(XmcItem, DeepCopyOfAnExternalMakesPlainChildren) {
    xmc_item_c root("object");
    root.set_attribute("label", "Scenario");
    auto* external = new xmc_item_c("object");
    external->set_attribute("external", "True");
    root.append_child(external);
    auto* inner = new xml_item_c("data");
    external->append_child(inner);
    inner->append_child(new xml_item_c("deeper"));
    auto* data = data_item("L", "v", "Text");
    root.append_child(data);

    xmc_item_c copy(root, true);
    auto* copied_external = xmc_item_c::as_xmc(copy.first_child);
    ASSERT_NE(copied_external, nullptr);
    EXPECT_EQ(copied_external->kind, 3u);
    ASSERT_NE(copied_external->first_child, nullptr);
    EXPECT_EQ(xmc_item_c::as_xmc(copied_external->first_child), nullptr);
    ASSERT_NE(copied_external->first_child->first_child, nullptr);
    EXPECT_EQ(xmc_item_c::as_xmc(copied_external->first_child->first_child), nullptr);
    auto* copied_data = xmc_item_c::as_xmc(copied_external->next);
    ASSERT_NE(copied_data, nullptr);
    EXPECT_TRUE(copied_data->canonical);
    EXPECT_EQ(copied_data->value_type, 4u);
}

TEST(XmcItem, DeepCopyOfAChildlessItemIsChildless) {
    xmc_item_c item("title");
    item.set_attribute("label", "T");
    xmc_item_c copy(item, true);
    EXPECT_EQ(copy.first_child, nullptr);
    EXPECT_EQ(copy.kind, 0u);
}

TEST(XmcItem, ADataWhoseTypeNamesNothingTracesTheInvalidTypeWhenChecked) {
    xmc_item_c item("data");
    item.set_attribute("label", "L");
    item.set_attribute("val", "v");
    item.set_attribute("type", "NoSuchType");
    EXPECT_EQ(item.value_type, 12u);
    test_support::trace_capture_c trace;
    EXPECT_FALSE(xmc_enum_c::data_fits_type("v", item.value_type, item.enum_index, &item));
    EXPECT_NE(test_support::trace_line(trace.text(), "Invalid type value \"12\""), "");
}
