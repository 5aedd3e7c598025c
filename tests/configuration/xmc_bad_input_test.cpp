// Bad input to the schema layer: each gives its rule's result and nothing breaks. Texts of a
// megabyte, numbers beyond 64 bits, dates of 200 characters, masks with fields above 255, type
// names that name nothing, invalid UTF-8.
#include "configuration/xmc_enums.h"
#include "configuration/xmc_item.h"
#include "configuration/xmc_value.h"

#include <gtest/gtest.h>

#include <string>

using namespace xmc_enums_n;

namespace {

const std::string megabyte_of_digits(1 << 20, '7');
const std::string megabyte_of_letters(1 << 20, 'a');

bool fits(const std::string& text, std::uint32_t type, std::uint32_t enum_index = 16) {
    return xmc_enum_c::data_fits_type(text.c_str(), type, enum_index, nullptr);
}

} // namespace

TEST(XmcBadInput, MegabyteTextsGetTheirRulesResult) {
    EXPECT_FALSE(fits(megabyte_of_digits, xmc_n::type_number));
    EXPECT_TRUE(fits(megabyte_of_letters, xmc_n::type_string));
    EXPECT_TRUE(fits(megabyte_of_letters, xmc_n::type_text));
    EXPECT_FALSE(fits(megabyte_of_letters, xmc_n::type_bool));
    EXPECT_FALSE(fits(megabyte_of_letters, xmc_n::type_full_path));
    EXPECT_TRUE(fits("C:/" + megabyte_of_letters, xmc_n::type_full_path));
    EXPECT_FALSE(fits(megabyte_of_digits, xmc_n::type_ip_addr));
    EXPECT_FALSE(fits(megabyte_of_digits, xmc_n::type_ip_adr_mask));
    EXPECT_FALSE(fits(megabyte_of_digits, xmc_n::type_date));
    EXPECT_FALSE(fits(megabyte_of_letters, xmc_n::type_multi_entry));
    EXPECT_FALSE(fits(megabyte_of_letters, xmc_n::type_enum, enum_application));
    EXPECT_FALSE(fits(megabyte_of_digits, xmc_n::type_enum, enum_bandwidth));
    EXPECT_FALSE(fits("1." + megabyte_of_digits, xmc_n::type_enum, enum_bandwidth));
}

TEST(XmcBadInput, AMegabyteOfBlanksIsNoString) {
    EXPECT_FALSE(fits(std::string(1 << 20, ' '), xmc_n::type_string));
}

TEST(XmcBadInput, NumbersBeyondSixtyFourBits) {
    const std::string beyond = "18446744073709551616";
    const std::string far_beyond = "340282366920938463463374607431768211457";
    EXPECT_FALSE(fits(beyond, xmc_n::type_number));
    EXPECT_FALSE(fits("-9223372036854775809", xmc_n::type_number));
    EXPECT_FALSE(fits(far_beyond, xmc_n::type_multi_entry));
    // A field of an address that says more than 64 bits is no field below 256.
    EXPECT_FALSE(fits(beyond + ".1.1.1", xmc_n::type_ip_addr));
    EXPECT_FALSE(fits("1.1.1." + far_beyond, xmc_n::type_ip_addr));
    EXPECT_FALSE(fits("4294967296.0.0.1", xmc_n::type_ip_addr));
    EXPECT_FALSE(fits("10.0.0.1/" + beyond + ".0.0.0", xmc_n::type_ip_adr_mask));
    EXPECT_FALSE(fits(far_beyond + ":1:2013", xmc_n::type_date));
    EXPECT_FALSE(fits("1 Jan " + far_beyond, xmc_n::type_date));
    EXPECT_FALSE(fits("1 Jan 2147483648", xmc_n::type_date));

    xmc_value_c big(beyond.c_str());
    EXPECT_EQ(big.to_int64(), 0);
    EXPECT_TRUE(big.get_error());
    EXPECT_EQ(std::string(big.error_text.c_str()),
              "Unable to convert \"" + beyond + "\" to __int64");
    xmc_value_c as_uint(beyond.c_str());
    EXPECT_EQ(as_uint.to_uint(), 0u);
    EXPECT_TRUE(as_uint.get_error());
}

TEST(XmcBadInput, DatesOfTwoHundredCharacters) {
    std::string padded = "1 Jan 2013" + std::string(190, ' ');
    EXPECT_EQ(padded.size(), 200u);
    EXPECT_TRUE(fits(padded, xmc_n::type_date)); // only 127 characters are looked at
    std::string long_word = "1 Jan 2013" + std::string(190, 'x');
    EXPECT_FALSE(fits(long_word, xmc_n::type_date));
    std::string long_year = "1:1:" + std::string(196, '2');
    EXPECT_FALSE(fits(long_year, xmc_n::type_date));
    std::string cut_after_127 = std::string(120, ' ') + "1 Jan 2013"; // cut inside the year
    EXPECT_EQ(cut_after_127.size(), 130u);
    EXPECT_FALSE(fits(cut_after_127, xmc_n::type_date));
    std::string words(200, 'A');
    EXPECT_FALSE(fits(words, xmc_n::type_date));
    std::string separators(200, ':');
    EXPECT_FALSE(fits(separators, xmc_n::type_date));
}

TEST(XmcBadInput, MasksWithFieldsAbove255) {
    EXPECT_FALSE(fits("10.0.0.1/255.255.256.0", xmc_n::type_ip_adr_mask));
    EXPECT_FALSE(fits("10.0.0.1/511.0.0.0", xmc_n::type_ip_adr_mask));
    EXPECT_FALSE(fits("10.0.0.256/255.0.0.0", xmc_n::type_ip_adr_mask));
    EXPECT_FALSE(fits("10.0.0.1/-1.0.0.0", xmc_n::type_ip_adr_mask));
    EXPECT_FALSE(fits("1000.0.0.1", xmc_n::type_ip_addr));
}

TEST(XmcBadInput, TypeNamesThatNameNothing) {
    std::uint32_t e = 0;
    EXPECT_EQ(xmc_enum_c::find_type(megabyte_of_letters.c_str(), e), 12u);
    EXPECT_EQ(e, 16u);
    EXPECT_EQ(xmc_enum_c::find_type("\xff\xfe", e), 12u);
    EXPECT_FALSE(fits("x", 12));
    EXPECT_FALSE(fits("x", 1000));
    xmc_item_c item("data");
    item.set_attribute("label", "L");
    item.set_attribute("val", "v");
    item.set_attribute("type", megabyte_of_letters.c_str());
    EXPECT_EQ(item.value_type, 12u);
    EXPECT_EQ(item.enum_index, 16u);
}

TEST(XmcBadInput, InvalidUtf8InValues) {
    const char* bad = "\xc3\x28\xa0\xa1\xe2\x28\xa1\xf0\x90\x28\xbc\xff";
    EXPECT_TRUE(fits(bad, xmc_n::type_string));
    EXPECT_TRUE(fits(bad, xmc_n::type_text));
    EXPECT_FALSE(fits(bad, xmc_n::type_number));
    EXPECT_FALSE(fits(bad, xmc_n::type_bool));
    EXPECT_FALSE(fits(bad, xmc_n::type_full_path));
    EXPECT_FALSE(fits(bad, xmc_n::type_ip_addr));
    EXPECT_FALSE(fits(bad, xmc_n::type_ip_adr_mask));
    EXPECT_FALSE(fits(bad, xmc_n::type_date));
    EXPECT_FALSE(fits(bad, xmc_n::type_multi_entry));
    EXPECT_FALSE(fits(bad, xmc_n::type_enum, enum_product));
    EXPECT_FALSE(fits(bad, xmc_n::type_enum, enum_bandwidth));
    EXPECT_FALSE(fits(std::string("\xa0 Jan 2013"), xmc_n::type_date));
    EXPECT_TRUE(fits(std::string("C:/\xc3\x28"), xmc_n::type_def_full_path));

    xmc_value_c value(bad);
    EXPECT_EQ(value.to_int(), 0);
    EXPECT_EQ(std::string(value.error_text.c_str()),
              std::string("Unable to convert \"") + bad + "\" to int");
    EXPECT_EQ(value.to_product(), 4u);
}

TEST(XmcBadInput, BadBytesInATreeLoadNeverBreakIt) {
    mixed_xmc_xml_tree_c tree;
    std::string text = "<?xml version=\"1.0\"?>\n<object label=\"\xc3\x28\" id=\"\xff\">"
                       "<data label=\"\xa0\" val=\"\xe2\x28\" type=\"\xf0\x90\"/></object>\n";
    tree.load_from_str(text.c_str());
    if (xmc_item_c* root = tree.get_root()) {
        EXPECT_EQ(root->kind, 1u);
        EXPECT_TRUE(root->canonical);
    }
    mixed_xmc_xml_tree_c huge;
    std::string big = "<?xml version=\"1.0\"?>\n<data label=\"L\" val=\"" + megabyte_of_digits +
                      "\" type=\"" + megabyte_of_letters + "\"/>\n";
    ASSERT_TRUE(huge.load_from_str(big.c_str()));
    EXPECT_EQ(huge.get_root()->value_type, 12u);
    EXPECT_TRUE(huge.get_root()->canonical);
}

TEST(XmcBadInput, NullTexts) {
    EXPECT_FALSE(xmc_enum_c::data_fits_type(nullptr, xmc_n::type_number, 16, nullptr));
    EXPECT_TRUE(xmc_enum_c::data_fits_type(nullptr, xmc_n::type_ip_addr, 16, nullptr));
    EXPECT_FALSE(xmc_enum_c::data_fits_type(nullptr, xmc_n::type_date, 16, nullptr));
    EXPECT_FALSE(xmc_enum_c::data_fits_type(nullptr, xmc_n::type_enum, 1, nullptr));
    xmc_value_c value(static_cast<const char*>(nullptr));
    EXPECT_STREQ(value.to_text(), "");
}
