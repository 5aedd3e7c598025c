// conf_c and xmc_conf_c: the kind of an object, the description of an item, the two lookups,
// the object and data shape checks with their findings and trace lines, and the fabric of
// creators.
#include "configuration/conf.h"

#include "common/test_support.h"
#include "configuration/xmc_enums.h"
#include "configuration/xmc_value.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using test_support::trace_capture_c;

// A scenario with a master host (ReplNode, Index 1) that holds a replica (ReplNode, Index 2),
// and an external object whose content is private XML.
const char* const scenario_document = R"(<?xml version="1.0"?>
<object label="Scenario" id="1" status="True">
  <data label="Name" val="finance" type="String"/>
  <object label="ReplNode" id="2" status="True">
    <title label="Host">
      <data label="Index" val="1" type="Number"/>
      <data label="HostName" val="master" type="String"/>
    </title>
    <object label="ReplNode" id="2" status="False">
      <data label="Index" val="2" type="Number"/>
      <data label="HostName" val="replica" type="String"/>
      <data label="Port" val="25000" type="Number"/>
    </object>
  </object>
  <object label="Cdp" id="6789" external="True">
    <data label="Hidden" val="x" type="String"/>
  </object>
</object>)";

class xmc_conf_test : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(conf.tree->load_from_str(scenario_document)); }

    xml_item_c* root() { return conf.tree->get_root(); }

    // An item made of `text`, a one-element document.
    xml_item_c* item_of(const std::string& text) {
        scratch.clear();
        EXPECT_TRUE(scratch.tree->load_from_str(("<?xml version=\"1.0\"?>" + text).c_str()));
        return scratch.tree->get_root();
    }

    std::vector<std::uint32_t> codes(const xmc_validity_c& validity) {
        std::vector<std::uint32_t> found;
        for (ch_data_s* f = validity.findings.first(); f; f = validity.findings.next(nullptr))
            found.push_back(f->code);
        return found;
    }

    std::string peer_of_first(const xmc_validity_c& validity) {
        ch_data_s* f = validity.findings.first();
        return f ? f->peer_name.c_str() : "";
    }

    xmc_conf_c conf;
    xmc_conf_c scratch;
};

std::string val_of(xml_item_c* item) {
    labeled_value_c* val = item ? item->find_attribute("val") : nullptr;
    return val ? val->to_text() : "";
}

} // namespace

// ---- kinds and descriptions

TEST(conf, the_base_operations_answer_nothing) {
    conf_c conf;
    xmc_validity_c validity;
    EXPECT_EQ(conf.to_item(), nullptr);
    EXPECT_FALSE(conf.check_xmc_validity(validity, nullptr));
    EXPECT_FALSE(conf.check_consistency(nullptr));
    EXPECT_EQ(conf.reserved_operation(), 0u);
}

TEST(conf, is_same_kind_compares_the_ids) {
    conf_c cdp_a, cdp_b, db;
    cdp_a.id = cdp_b.id = 6789;
    db.id = 6799;
    EXPECT_TRUE(cdp_a.is_same_kind(cdp_b));
    EXPECT_FALSE(cdp_a.is_same_kind(db));
}

TEST_F(xmc_conf_test, the_description_climbs_to_the_root) {
    xml_item_c* port = conf.find_tree_item("Port", false);
    ASSERT_NE(port, nullptr);
    utl_stream_c stream("junk");
    EXPECT_STREQ(conf.get_item_description(port, stream),
                 "data.Port => object.ReplNode => object.ReplNode => object.Scenario");
    EXPECT_STREQ(conf.get_item_description(nullptr, stream), "");
}

TEST_F(xmc_conf_test, a_missing_label_describes_as_an_empty_name_behind_the_dot) {
    xml_item_c* item = item_of("<data val=\"1\" type=\"Number\"/>");
    utl_stream_c stream;
    EXPECT_STREQ(conf.get_item_description(item, stream), "data.");
}

TEST_F(xmc_conf_test, clear_makes_a_new_empty_tree_and_is_equal_compares_ids_and_trees) {
    xmc_conf_c other;
    ASSERT_TRUE(other.tree->load_from_str(scenario_document));
    EXPECT_TRUE(conf.is_equal(other));
    other.id = 7;
    EXPECT_FALSE(conf.is_equal(other));
    other.id = 0;
    other.clear();
    EXPECT_EQ(other.tree->get_root(), nullptr);
    EXPECT_FALSE(conf.is_equal(other));
}

// ---- lookups

TEST_F(xmc_conf_test, find_tree_item_from_the_root_finds_the_first_in_pre_order) {
    EXPECT_EQ(val_of(conf.find_tree_item("HostName", false)), "master");
    xml_item_c* host = conf.find_tree_item("ReplNode", true);
    ASSERT_NE(host, nullptr);
    EXPECT_EQ(val_of(conf.find_data_below(host, "Index")), "1");
    EXPECT_EQ(conf.find_tree_item("Name", true), nullptr) << "a data item is no object";
    EXPECT_EQ(conf.find_tree_item("Nothing", false), nullptr);
}

TEST_F(xmc_conf_test, a_search_begun_at_a_host_stays_on_that_host) {
    xml_item_c* master = conf.find_tree_item("ReplNode", true);
    ASSERT_NE(master, nullptr);
    EXPECT_EQ(val_of(conf.find_tree_item("HostName", false, master)), "master");
    EXPECT_EQ(conf.find_tree_item("Port", false, master), nullptr)
        << "Port stands only on the nested replica";
}

TEST_F(xmc_conf_test, find_tree_item_does_not_enter_an_external_object) {
    EXPECT_EQ(conf.find_tree_item("Hidden", false), nullptr);
    EXPECT_NE(conf.find_tree_item("Cdp", true), nullptr);
}

TEST_F(xmc_conf_test, direct_only_looks_at_children_and_through_titles_not_into_objects) {
    xml_item_c* master = conf.find_tree_item("ReplNode", true);
    EXPECT_EQ(val_of(conf.find_tree_item("Index", false, master, true)), "1");
    EXPECT_EQ(conf.find_tree_item("Port", false, master, true), nullptr);
    xml_item_c* replica = conf.find_tree_item("ReplNode", true, master, true);
    ASSERT_NE(replica, nullptr);
    EXPECT_EQ(val_of(conf.find_tree_item("Port", false, replica, true)), "25000");
}

TEST_F(xmc_conf_test, find_property_reads_status_and_id_on_the_object_and_others_below_it) {
    xml_item_c* carrier = nullptr;
    labeled_value_c* status = conf.find_property("ReplNode", "status", nullptr, &carrier);
    ASSERT_NE(status, nullptr);
    EXPECT_STREQ(status->to_text(), "True");
    EXPECT_EQ(carrier, conf.find_tree_item("ReplNode", true));
    labeled_value_c* id = conf.find_property("Scenario", "id", nullptr, &carrier);
    ASSERT_NE(id, nullptr);
    EXPECT_STREQ(id->to_text(), "1");
    EXPECT_EQ(carrier, root());
    labeled_value_c* name = conf.find_property("ReplNode", "HostName", nullptr, &carrier);
    ASSERT_NE(name, nullptr);
    EXPECT_STREQ(name->to_text(), "master");
    EXPECT_EQ(carrier, conf.find_tree_item("HostName", false));
    EXPECT_EQ(conf.find_property("ReplNode", "Nothing", nullptr, &carrier), nullptr);
    EXPECT_EQ(carrier, nullptr);
    EXPECT_EQ(conf.find_property("Nothing", "status"), nullptr);
}

TEST_F(xmc_conf_test, find_property_at_a_start_that_is_the_object_reads_that_one) {
    xml_item_c* master = conf.find_tree_item("ReplNode", true);
    xml_item_c* replica = conf.find_tree_item("ReplNode", true, master, true);
    labeled_value_c* status = conf.find_property("ReplNode", "status", replica);
    ASSERT_NE(status, nullptr);
    EXPECT_STREQ(status->to_text(), "False");
}

// ---- the object check

TEST_F(xmc_conf_test, a_well_formed_object_gives_its_name_and_id) {
    xmc_validity_c validity;
    bool ok = false;
    std::uint32_t id = 0;
    const char* name = conf._check_object_content_get_name(
        item_of(
            "<object label=\"Host\" id=\"42\" status=\"True\" prompted=\"True\" to_keep=\"?\"/>"),
        ok, &validity, &id);
    EXPECT_STREQ(name, "Host");
    EXPECT_TRUE(ok);
    EXPECT_EQ(id, 42u);
    EXPECT_EQ(validity.findings.get_count(), 0u);
}

TEST_F(xmc_conf_test, an_object_without_attributes_is_code_0_and_ok_stays_untouched) {
    xmc_validity_c validity;
    bool ok = true;
    EXPECT_EQ(conf._check_object_content_get_name(item_of("<object/>"), ok, &validity), nullptr);
    EXPECT_TRUE(ok);
    EXPECT_EQ(codes(validity), (std::vector<std::uint32_t>{0}));
}

TEST_F(xmc_conf_test, an_object_with_an_empty_status_is_code_5_for_status) {
    xmc_validity_c validity;
    bool ok = true;
    conf._check_object_content_get_name(item_of("<object label=\"A\" id=\"1\" status=\"\"/>"), ok,
                                        &validity);
    EXPECT_FALSE(ok);
    EXPECT_EQ(codes(validity), (std::vector<std::uint32_t>{5}));
    EXPECT_EQ(peer_of_first(validity), "status");
}

TEST_F(xmc_conf_test, an_external_object_without_id_is_code_8) {
    xmc_validity_c validity;
    bool ok = true;
    EXPECT_STREQ(conf._check_object_content_get_name(
                     item_of("<object label=\"Cdp\" external=\"\"/>"), ok, &validity),
                 "Cdp");
    EXPECT_FALSE(ok);
    EXPECT_EQ(codes(validity), (std::vector<std::uint32_t>{8}));
}

// The object check finds no id, but the item is external all the same: no walk enters it.
TEST_F(xmc_conf_test,
       an_object_with_label_and_external_but_no_id_is_code_8_and_walked_as_external) {
    xml_item_c* top = item_of("<object label=\"Scenario\" id=\"1\">"
                              "<object label=\"Cdp\" external=\"True\">"
                              "<data label=\"Hidden\" val=\"x\" type=\"String\"/></object>"
                              "<data label=\"After\" val=\"y\" type=\"String\"/></object>");
    ASSERT_NE(top, nullptr);
    xml_item_c* cdp = top->first_child_item();
    ASSERT_NE(cdp, nullptr);
    xmc_validity_c validity;
    bool ok = true;
    EXPECT_STREQ(conf._check_object_content_get_name(cdp, ok, &validity), "Cdp");
    EXPECT_FALSE(ok);
    EXPECT_EQ(codes(validity), (std::vector<std::uint32_t>{8}));
    ASSERT_NE(xmc_item_c::as_xmc(cdp), nullptr);
    EXPECT_EQ(xmc_item_c::as_xmc(cdp)->kind, xmc_n::kind_external);
    EXPECT_EQ(scratch.find_tree_item("Hidden", false), nullptr);
    EXPECT_EQ(scratch.find_tree_item("Cdp", true), cdp);
    EXPECT_NE(scratch.find_tree_item("After", false), nullptr);
    EXPECT_EQ(xmc_tree_n::next_item(cdp, top), cdp->next_item())
        << "the walk steps over the external object's content";
}

TEST_F(xmc_conf_test, an_unknown_attribute_is_code_6_and_a_missing_label_code_7) {
    xmc_validity_c validity;
    bool ok = true;
    EXPECT_EQ(conf._check_object_content_get_name(item_of("<object id=\"1\" colour=\"red\"/>"), ok,
                                                  &validity),
              nullptr);
    EXPECT_FALSE(ok);
    EXPECT_EQ(codes(validity), (std::vector<std::uint32_t>{6, 7}));
    EXPECT_EQ(peer_of_first(validity), "colour");
}

// ---- the data check

TEST_F(xmc_conf_test, a_well_formed_data_item_gives_every_value) {
    const char *label, *val, *type, *mandatory, *kids, *check_if;
    bool limits = false;
    xmc_validity_c validity;
    EXPECT_TRUE(conf._check_data_content(
        &validity,
        item_of("<data label=\"Port\" val=\"1\" type=\"Number\" mandatory=\"True\" "
                "check_kids_if_val=\"1\" check_if=\"A.B\" minimum=\"0\" prompted=\"True\"/>"),
        true, &label, &val, &type, &mandatory, &kids, &check_if, &limits));
    EXPECT_STREQ(label, "Port");
    EXPECT_STREQ(val, "1");
    EXPECT_STREQ(type, "Number");
    EXPECT_STREQ(mandatory, "True");
    EXPECT_STREQ(kids, "1");
    EXPECT_STREQ(check_if, "A.B");
    EXPECT_TRUE(limits);
    EXPECT_EQ(validity.findings.get_count(), 0u);
}

TEST_F(xmc_conf_test, mandatory_true_in_lower_case_counts_as_no_mandatory) {
    const char* mandatory = "unset";
    EXPECT_TRUE(conf._check_data_content(
        nullptr, item_of("<data label=\"A\" val=\"1\" type=\"Number\" mandatory=\"true\"/>"), true,
        nullptr, nullptr, nullptr, &mandatory));
    EXPECT_EQ(mandatory, nullptr);
}

TEST_F(xmc_conf_test, an_empty_val_is_well_formed_and_an_empty_label_is_code_5_but_present) {
    xmc_validity_c validity;
    EXPECT_TRUE(conf._check_data_content(
        &validity, item_of("<data label=\"A\" val=\"\" type=\"String\"/>"), true));
    EXPECT_EQ(validity.findings.get_count(), 0u);
    const char* label = nullptr;
    EXPECT_FALSE(conf._check_data_content(
        &validity, item_of("<data label=\"\" val=\"1\" type=\"String\"/>"), true, &label));
    EXPECT_EQ(codes(validity), (std::vector<std::uint32_t>{5}));
    EXPECT_EQ(peer_of_first(validity), "label");
    ASSERT_NE(label, nullptr);
    EXPECT_STREQ(label, "");
}

// Of the attributes a data item must carry, `val` alone may be empty, whatever the type names;
// an empty `label` or `type`, and an empty `id` on an object, are faults of code 5.
TEST_F(xmc_conf_test,
       val_alone_may_be_empty_on_every_type_and_an_empty_label_id_or_type_is_code_5) {
    for (const char* type :
         {"Enum", "Number", "Bool", "String", "Text", "FullPath", "DefFullPath", "IPAddr",
          "IPAdrMask", "Date", "MultiEntry", "Any", "Product", "Bandwidth"}) {
        xmc_validity_c validity;
        const char* val = nullptr;
        EXPECT_TRUE(conf._check_data_content(
            &validity, item_of(std::string("<data label=\"A\" val=\"\" type=\"") + type + "\"/>"),
            true, nullptr, &val))
            << type;
        EXPECT_EQ(validity.findings.get_count(), 0u) << type;
        ASSERT_NE(val, nullptr) << type;
        EXPECT_STREQ(val, "") << type;
    }

    xmc_validity_c empty_type;
    EXPECT_FALSE(conf._check_data_content(
        &empty_type, item_of("<data label=\"A\" val=\"1\" type=\"\"/>"), true));
    EXPECT_EQ(codes(empty_type), (std::vector<std::uint32_t>{5}));
    EXPECT_EQ(peer_of_first(empty_type), "type");

    xmc_validity_c empty_label;
    EXPECT_FALSE(conf._check_data_content(
        &empty_label, item_of("<data label=\"\" val=\"\" type=\"Text\"/>"), false));
    EXPECT_EQ(codes(empty_label), (std::vector<std::uint32_t>{5}));
    EXPECT_EQ(peer_of_first(empty_label), "label");

    xmc_validity_c empty_id;
    bool ok = true;
    EXPECT_STREQ(conf._check_object_content_get_name(item_of("<object label=\"Report\" id=\"\"/>"),
                                                     ok, &empty_id),
                 "Report");
    EXPECT_FALSE(ok);
    EXPECT_EQ(codes(empty_id), (std::vector<std::uint32_t>{5, 8})) << "an empty id is no id either";
    EXPECT_EQ(peer_of_first(empty_id), "id");
}

// `true` and `false` in lower case stand in the template as Bool defaults: the shape check does
// not look at values, the boolean conversion takes them, the strict value check of Bool does not.
TEST_F(xmc_conf_test,
       true_and_false_in_lower_case_pass_the_shape_check_and_convert_but_fit_no_bool) {
    for (const char* word : {"true", "false"}) {
        xmc_validity_c validity;
        const char *val = nullptr, *type = nullptr;
        EXPECT_TRUE(conf._check_data_content(
            &validity,
            item_of(std::string("<data label=\"UseDHCP\" val=\"") + word + "\" type=\"Bool\"/>"),
            true, nullptr, &val, &type))
            << word;
        EXPECT_EQ(validity.findings.get_count(), 0u) << word;
        ASSERT_NE(val, nullptr);
        ASSERT_NE(type, nullptr);
        std::uint32_t enum_index = 0;
        std::uint32_t position = xmc_enum_c::find_type(type, enum_index);
        EXPECT_EQ(position, xmc_n::type_bool);
        EXPECT_FALSE(xmc_enum_c::data_fits_type(val, position, enum_index, nullptr)) << word;
        xmc_value_c value(val);
        EXPECT_EQ(value.to_bool(), std::string(word) == "true") << word;
        EXPECT_FALSE(value.get_error()) << word;
    }
}

TEST_F(xmc_conf_test, the_first_missing_of_label_val_and_type_is_the_finding) {
    xmc_validity_c validity;
    EXPECT_FALSE(conf._check_data_content(&validity, item_of("<data type=\"String\"/>"), true));
    EXPECT_FALSE(conf._check_data_content(&validity, item_of("<data label=\"A\"/>"), true));
    EXPECT_FALSE(
        conf._check_data_content(&validity, item_of("<data label=\"A\" val=\"1\"/>"), true));
    EXPECT_EQ(codes(validity), (std::vector<std::uint32_t>{9, 10, 11}));
}

TEST_F(xmc_conf_test, strict_mode_refuses_unknown_attributes_and_a_stored_scenario_passes_them) {
    const char* text = "<data label=\"A\" val=\"1\" type=\"Number\" colour=\"red\" to_keep=\"?\" "
                       "is_equal=\"1\"/>";
    xmc_validity_c validity;
    EXPECT_FALSE(conf._check_data_content(&validity, item_of(text), true));
    EXPECT_EQ(codes(validity), (std::vector<std::uint32_t>{6}));
    EXPECT_EQ(peer_of_first(validity), "colour");
    xmc_validity_c lenient;
    EXPECT_TRUE(conf._check_data_content(&lenient, item_of(text), false));
    EXPECT_EQ(lenient.findings.get_count(), 0u);
}

TEST_F(xmc_conf_test, without_a_validity_the_faults_are_trace_lines) {
    trace_capture_c capture;
    EXPECT_TRUE(conf._check_data_content(nullptr, item_of("<data/>"), true));
    EXPECT_FALSE(conf._check_data_content(
        nullptr, item_of("<data label=\"A\" val=\"1\" type=\"\" colour=\"red\"/>"), true));
    EXPECT_FALSE(conf._check_data_content(nullptr, item_of("<data val=\"1\" type=\"N\"/>"), true));
    std::string text = capture.text();
    EXPECT_FALSE(test_support::trace_line(text, "Empty data item \"data.\"").empty()) << text;
    EXPECT_FALSE(
        test_support::trace_line(text, "Empty attribute \"type\" of data item \"data.A\"").empty())
        << text;
    EXPECT_FALSE(test_support::trace_line(
                     text, "Superfluous attribute \"colour = red\" of data item \"data.A\"")
                     .empty())
        << text;
    EXPECT_FALSE(test_support::trace_line(text, "Unnamed data item \"data.\"").empty()) << text;
}

TEST_F(xmc_conf_test, a_thousand_items_without_attributes_or_labels_pass_every_check) {
    std::string text = "<object label=\"Scenario\" id=\"1\">";
    for (int i = 0; i < 1000; ++i)
        text += i % 2 ? "<data/>" : "<object label=\"\" id=\"\"><data label=\"\"/></object>";
    text += "</object>";
    xml_item_c* top = item_of(text);
    ASSERT_NE(top, nullptr);
    xmc_validity_c validity;
    for (xml_item_c* item = top; item; item = xmc_tree_n::next_item(item, top)) {
        bool ok = true;
        conf._check_object_content_get_name(item, ok, &validity);
        conf._check_data_content(&validity, item, true);
    }
    EXPECT_GT(validity.findings.get_count(), 1000u);
}

// ---- the fabric

namespace {

class made_c : public conf_c {
  public:
    explicit made_c(std::uint32_t kind, int maker) : made_by(maker) { id = kind; }
    int made_by;
};

class test_creator_c : public conf_object_creator_c {
  public:
    test_creator_c(std::uint32_t kind, int maker) : conf_object_creator_c(kind), _maker(maker) {}
    conf_c* create(xml_item_c*) override { return new made_c(id, _maker); }

  private:
    int _maker;
};

// Creators of a test register for its lifetime; the fabric itself lives from the library's
// start to its stop.
struct three_creators_s {
    test_creator_c first_of_kind{91001, 1};
    test_creator_c second_of_kind{91001, 2};
    test_creator_c other_kind{91002, 3};
};

} // namespace

TEST(conf_fabric, create_object_asks_the_first_creator_of_the_id) {
    three_creators_s creators;
    std::unique_ptr<conf_c> made(conf_fabric_n::create_object(91001, nullptr));
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->id, 91001u);
    EXPECT_EQ(static_cast<made_c*>(made.get())->made_by, 1) << "the second registration is ignored";
    std::unique_ptr<conf_c> other(conf_fabric_n::create_object(91002, nullptr));
    ASSERT_NE(other, nullptr);
    EXPECT_FALSE(made->is_same_kind(*other));
    EXPECT_EQ(conf_fabric_n::create_object(91003, nullptr), nullptr);
}

TEST(conf_fabric, the_fabric_is_one_list_with_one_creator_per_id) {
    three_creators_s creators;
    ptr_list_ct<conf_object_creator_c>* fabric = conf_fabric_n::get_fabric();
    ASSERT_EQ(fabric, conf_fabric_n::get_fabric());
    int of_kind = 0;
    for (conf_object_creator_c* c = fabric->first(); c; c = fabric->next(nullptr))
        of_kind += c->id == 91001;
    EXPECT_EQ(of_kind, 1);
}

TEST(conf_fabric, a_creator_leaves_the_fabric_with_its_end) {
    {
        three_creators_s creators;
        std::unique_ptr<conf_c> made(conf_fabric_n::create_object(91002, nullptr));
        EXPECT_NE(made, nullptr);
    }
    EXPECT_EQ(conf_fabric_n::create_object(91001, nullptr), nullptr);
    EXPECT_EQ(conf_fabric_n::create_object(91002, nullptr), nullptr);
}
