// The configuration a scenario keeps as private XML: cdp_conf_c and db_conf_c, their creators in
// the fabric, their checks and their XML forms.
#include "configuration/xmc_cdp.h"

#include "common/test_support.h"
#include "configuration/xmc_validity.h"
#include "xml/xml_tree_templ.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

using test_support::trace_capture_c;
using test_support::trace_line;

namespace {

const std::string decl = "<?xml version=\"1.0\"?>\n";

// An item tree of private XML, as the children of `External` are loaded.
class private_xml_c {
  public:
    explicit private_xml_c(const std::string& body) {
        loaded = tree.load_from_str((decl + body).c_str());
    }
    xml_item_c* root() { return tree.get_root(); }
    xml_tree_c tree;
    bool loaded = false;
};

std::string data(const std::string& label, const std::string& val,
                 const std::string& type = "String") {
    return "<data label=\"" + label + "\" val=\"" + val + "\" type=\"" + type + "\"/>";
}

std::string cdp_object(const std::string& content) {
    return "<object id=\"6789\" label=\"cdp\">" + content + "</object>";
}

std::string attribute(const xml_item_c* item, const char* name) {
    labeled_value_c* a = item ? item->find_attribute(name) : nullptr;
    return a ? a->to_text() : "<none>";
}

// The children of `item` labelled by their `label` attribute, in order.
std::vector<const xml_item_c*> children_of(const xml_item_c* item) {
    std::vector<const xml_item_c*> out;
    for (const xml_item_c* c = item->first_child_item(); c; c = c->next_item()) out.push_back(c);
    return out;
}

std::unique_ptr<cdp_conf_c> make_cdp(xml_item_c* item) {
    cdp_conf_creator_c creator;
    return std::unique_ptr<cdp_conf_c>(static_cast<cdp_conf_c*>(creator.create(item)));
}

} // namespace

// ---- cdp_conf_c

TEST(cdp_conf, a_fresh_object_has_the_defaults_and_five_undefined_values) {
    cdp_conf_c cdp;
    EXPECT_EQ(cdp.id, 6789u);
    EXPECT_EQ(cdp.db_connect_timeout.to_int(), 1200);
    EXPECT_EQ(cdp.ad_page_size.to_int(), 1000);
    EXPECT_EQ(cdp.batch_size.to_int(), 10);
    EXPECT_EQ(cdp.max_attach_size.to_int(), 1024);
    EXPECT_EQ(cdp.batch_to_daily.to_int(), 10);
    for (xmc_value_c* undefined :
         {&cdp.sql_instance_name, &cdp.sql_db_name, &cdp.spool_space_threshold,
          &cdp.free_space_threshold, &cdp.spool_dir})
        EXPECT_EQ(undefined->get_type(), value_c::type_undefined);
    EXPECT_EQ(cdp.msg_types.get_count(), 0u);
    EXPECT_EQ(cdp.attach_file_types.get_count(), 0u);
}

TEST(cdp_conf, to_item_of_a_fresh_object_writes_defaults_nineteen_classes_and_empty_vals) {
    cdp_conf_c cdp;
    std::unique_ptr<xml_item_c> top(cdp.to_item());
    ASSERT_NE(top, nullptr);
    EXPECT_STREQ(top->label, "object");
    ASSERT_EQ(top->get_attribute_count(), 2u);
    EXPECT_STREQ(top->get_attribute(0)->get_label(), "id");
    EXPECT_EQ(attribute(top.get(), "id"), "6789");
    EXPECT_EQ(attribute(top.get(), "label"), "cdp");
    auto items = children_of(top.get());
    ASSERT_EQ(items.size(), 9u);
    const char* const expected[][3] = {
        {"SqlInstanceName", "", "String"},
        {"SqlDbName", "", "String"},
        {"SpoolSpaceThreshold", "", "Number"},
        {"FreeSpaceThreshold", "", "Number"},
        {"SpoolDir", "", "String"},
        {"DbConTimeOutInSec", "1200", "Number"},
        {"AdPageSize", "1000", "Number"},
        {"BatchSizeInMb", "10", "Number"},
    };
    for (std::size_t i = 0; i < 8; ++i) {
        SCOPED_TRACE(expected[i][0]);
        EXPECT_STREQ(items[i]->label, "data");
        EXPECT_EQ(attribute(items[i], "label"), expected[i][0]);
        EXPECT_EQ(attribute(items[i], "val"), expected[i][1]);
        EXPECT_EQ(attribute(items[i], "type"), expected[i][2]);
        EXPECT_STREQ(items[i]->get_attribute(0)->get_label(), "label");
    }
    const xml_item_c* filters = items[8];
    EXPECT_STREQ(filters->label, "object");
    EXPECT_EQ(attribute(filters, "label"), "Filters");
    EXPECT_EQ(attribute(filters, "id"), "6788");
    EXPECT_EQ(attribute(filters, "status"), "False");
    auto inner = children_of(filters);
    ASSERT_EQ(inner.size(), 4u);
    EXPECT_EQ(attribute(inner[0], "label"), "MaxAttachSizeInKb");
    EXPECT_EQ(attribute(inner[0], "val"), "1024");
    EXPECT_EQ(attribute(inner[1], "label"), "Batch2DailyInMb");
    EXPECT_EQ(attribute(inner[1], "val"), "10");
    EXPECT_EQ(attribute(inner[2], "label"), "MsgTypes");
    EXPECT_EQ(attribute(inner[2], "val"), "String");
    EXPECT_EQ(attribute(inner[2], "type"), "MultiEntry");
    auto classes = children_of(inner[2]);
    ASSERT_EQ(classes.size(), 19u);
    EXPECT_EQ(attribute(classes.front(), "val"), "IPM.Activity");
    EXPECT_EQ(attribute(classes.back(), "val"), "IPM.Note.SMIME");
    for (const xml_item_c* c : classes) EXPECT_EQ(attribute(c, "label"), "MsgTypes");
    EXPECT_EQ(attribute(inner[3], "label"), "AttachFileTypes");
    EXPECT_TRUE(children_of(inner[3]).empty());
}

TEST(cdp_conf, the_creator_reads_every_setting_as_a_string_value) {
    private_xml_c xml(
        cdp_object(data("SqlInstanceName", "inst") + data("SqlDbName", "db") +
                   data("SpoolSpaceThreshold", "77", "Number") + data("FreeSpaceThreshold", "x") +
                   data("SpoolDir", "C:/spool") + data("DbConTimeOutInSec", "5", "Number") +
                   data("AdPageSize", "6") + data("BatchSizeInMb", "7") +
                   "<object label=\"Filters\" id=\"6788\" status=\"False\">" +
                   data("MaxAttachSizeInKb", "8") + data("Batch2DailyInMb", "9") +
                   "<data label=\"MsgTypes\" val=\"String\" type=\"MultiEntry\">" +
                   data("MsgTypes", "IPM.Own") + data("MsgTypes", "IPM.Note") + "</data>" +
                   "<data label=\"AttachFileTypes\" val=\"String\" type=\"MultiEntry\">" +
                   data("AttachFileTypes", ".exe") + "<entry/></data></object>"));
    ASSERT_TRUE(xml.loaded);
    auto cdp = make_cdp(xml.root());
    ASSERT_NE(cdp, nullptr);
    for (auto [field, text] :
         {std::pair{&cdp->sql_instance_name, "inst"}, std::pair{&cdp->sql_db_name, "db"},
          std::pair{&cdp->spool_space_threshold, "77"}, std::pair{&cdp->free_space_threshold, "x"},
          std::pair{&cdp->spool_dir, "C:/spool"}, std::pair{&cdp->db_connect_timeout, "5"},
          std::pair{&cdp->ad_page_size, "6"}, std::pair{&cdp->batch_size, "7"},
          std::pair{&cdp->max_attach_size, "8"}, std::pair{&cdp->batch_to_daily, "9"}}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(field->get_type(), value_c::type_string);
        EXPECT_FALSE(field->get_error());
        EXPECT_STREQ(field->to_text(), text);
    }
    // The list item's own `val` ("String") is not an entry: the walk is over its descendants.
    ASSERT_EQ(cdp->msg_types.get_count(), 2u);
    EXPECT_EQ(cdp->attach_file_types.get_count(), 1u) << "an entry without val is passed over";
    // What was read does not come back: the classes written are the defaults.
    std::unique_ptr<xml_item_c> top(cdp->to_item());
    const xml_item_c* filters = children_of(top.get())[8];
    auto classes = children_of(children_of(filters)[2]);
    EXPECT_EQ(classes.size(), 19u);
    for (const xml_item_c* c : classes) EXPECT_NE(attribute(c, "val"), "IPM.Own");
    EXPECT_TRUE(children_of(children_of(filters)[3]).empty());
    EXPECT_EQ(attribute(children_of(top.get())[0], "val"), "inst");
}

TEST(cdp_conf, the_creator_of_no_item_gives_the_defaults) {
    auto cdp = make_cdp(nullptr);
    ASSERT_NE(cdp, nullptr);
    EXPECT_EQ(cdp->db_connect_timeout.to_int(), 1200);
    EXPECT_EQ(cdp->sql_db_name.get_type(), value_c::type_undefined);
}

TEST(cdp_conf, items_without_a_label_or_a_val_change_nothing) {
    private_xml_c xml(
        cdp_object("<data val=\"x\"/><data label=\"SqlDbName\"/>" + data("AdPageSize", "4")));
    auto cdp = make_cdp(xml.root());
    EXPECT_EQ(cdp->sql_db_name.get_type(), value_c::type_undefined);
    EXPECT_STREQ(cdp->ad_page_size.to_text(), "4");
}

TEST(cdp_conf, an_empty_instance_name_fails_both_checks_with_one_finding) {
    private_xml_c xml(cdp_object(data("SqlInstanceName", "") + data("SqlDbName", "db")));
    auto cdp = make_cdp(xml.root());
    trace_capture_c capture;
    EXPECT_FALSE(cdp->check_consistency(xml.root()));
    std::string line = trace_line(capture.text(), "cdp xmc - check consistency [False]");
    EXPECT_FALSE(line.empty()) << capture.text();
    EXPECT_NE(line.find("level=128"), std::string::npos) << line;
    EXPECT_NE(line.find("cdp_conf_c::check_consistency"), std::string::npos) << line;

    xmc_validity_c validity;
    EXPECT_FALSE(cdp->check_xmc_validity(validity, xml.root()));
    ASSERT_EQ(validity.findings.get_count(), 1u);
    ch_data_s* finding = validity.findings.first();
    EXPECT_EQ(finding->code, 3u);
    EXPECT_STREQ(finding->name.c_str(), "SqlInstanceName");
    EXPECT_EQ(finding->host, 0u);
    EXPECT_EQ(finding->item, ch_data_s::no_item);
    std::string text = capture.text();
    EXPECT_FALSE(trace_line(text, "cdp xmc - check validity missing [SqlInstanceName]").empty())
        << text;
    EXPECT_FALSE(trace_line(text, "cdp xmc - check validity [False]").empty()) << text;
    EXPECT_TRUE(trace_line(text, "cdp xmc - check validity missing [SqlDbName]").empty()) << text;
}

TEST(cdp_conf, a_db_name_hidden_in_a_child_object_is_found) {
    private_xml_c xml(cdp_object(data("SqlInstanceName", "inst") +
                                 "<object label=\"Deep\" id=\"1\"><object label=\"Deeper\" "
                                 "id=\"2\">" +
                                 data("SqlDbName", "db") + "</object></object>"));
    auto cdp = make_cdp(xml.root());
    trace_capture_c capture;
    EXPECT_TRUE(cdp->check_consistency(xml.root()));
    EXPECT_FALSE(trace_line(capture.text(), "cdp xmc - check consistency [OK]").empty())
        << capture.text();
    xmc_validity_c validity;
    EXPECT_TRUE(cdp->check_xmc_validity(validity, xml.root()));
    EXPECT_EQ(validity.findings.get_count(), 0u);
    EXPECT_FALSE(trace_line(capture.text(), "cdp xmc - check validity [OK]").empty())
        << capture.text();
}

TEST(cdp_conf, the_checks_read_the_item_not_the_fields) {
    cdp_conf_c cdp;
    cdp.sql_instance_name.set_string("inst");
    cdp.sql_db_name.set_string("db");
    private_xml_c xml(cdp_object(""));
    EXPECT_FALSE(cdp.check_consistency(xml.root()));
    xmc_validity_c validity;
    EXPECT_FALSE(cdp.check_xmc_validity(validity, xml.root()));
    EXPECT_EQ(validity.findings.get_count(), 2u);
    EXPECT_FALSE(cdp.check_consistency(nullptr));
    xmc_validity_c none;
    EXPECT_FALSE(cdp.check_xmc_validity(none, nullptr));
    EXPECT_EQ(none.findings.get_count(), 2u);
}

// ---- db_conf_c

TEST(db_conf, load_of_a_wrapper_without_a_child_is_false_and_the_tree_empty) {
    db_conf_c db;
    private_xml_c first("<rows><row n=\"1\"/></rows>");
    ASSERT_TRUE(db.load(first.root()));
    ASSERT_NE(db.tree.get_root(), nullptr);
    private_xml_c empty("<object id=\"6799\" label=\"db\"/>");
    EXPECT_FALSE(db.load(empty.root()));
    EXPECT_EQ(db.tree.get_root(), nullptr);
    EXPECT_FALSE(db.load(nullptr));
}

TEST(db_conf, load_copies_the_item_or_the_wrappers_first_child_as_database_items) {
    private_xml_c xml("<object id=\"6799\" label=\"db\"><tables><table name=\"a\"><col "
                      "type=\"int\"/></table><table name=\"b\"/></tables><ignored/></object>");
    db_conf_c db;
    ASSERT_TRUE(db.load(xml.root()));
    db_obj_c* root = db.tree.get_root();
    ASSERT_NE(root, nullptr);
    EXPECT_STREQ(root->label, "tables");
    ASSERT_NE(root->first_child_item(), nullptr);
    EXPECT_EQ(attribute(root->first_child_item(), "name"), "a");
    EXPECT_NE(dynamic_cast<db_obj_c*>(root->first_child_item()), nullptr);
    // Not a wrapper: the item itself is copied, and the source stays where it is.
    private_xml_c other("<object id=\"5\" label=\"x\"><y/></object>");
    ASSERT_TRUE(db.load(other.root()));
    EXPECT_STREQ(db.tree.get_root()->label, "object");
    EXPECT_NE(other.root()->first_child_item(), nullptr);
}

TEST(db_conf, load_of_to_item_restores_the_same_tree) {
    private_xml_c xml("<tables><table name=\"a\" rows=\"3\"><col type=\"int\"/><col/></table>"
                      "<table name=\"b &amp; c\"/></tables>");
    db_conf_c db;
    ASSERT_TRUE(db.load(xml.root()));
    std::unique_ptr<xml_item_c> wrapper(db.to_item());
    ASSERT_NE(wrapper, nullptr);
    EXPECT_STREQ(wrapper->label, "object");
    EXPECT_EQ(attribute(wrapper.get(), "id"), "6799");
    EXPECT_EQ(attribute(wrapper.get(), "label"), "db");
    EXPECT_EQ(wrapper->parent, nullptr);
    db_conf_c again;
    ASSERT_TRUE(again.load(wrapper.get()));
    EXPECT_TRUE(again.tree.is_equal(db.tree));
    utl_stream_c a, b;
    db.tree.write(a, true);
    again.tree.write(b, true);
    EXPECT_STREQ(a.c_str(), b.c_str());
}

TEST(db_conf, to_item_of_an_empty_object_is_the_wrapper_alone) {
    db_conf_c db;
    std::unique_ptr<xml_item_c> wrapper(db.to_item());
    ASSERT_NE(wrapper, nullptr);
    EXPECT_EQ(wrapper->first_child_item(), nullptr);
    EXPECT_EQ(attribute(wrapper.get(), "label"), "db");
}

TEST(db_conf, a_database_object_is_always_valid) {
    db_conf_c db;
    xmc_validity_c validity;
    private_xml_c xml("<anything/>");
    EXPECT_TRUE(db.check_xmc_validity(validity, xml.root()));
    EXPECT_TRUE(db.check_xmc_validity(validity, nullptr));
    EXPECT_TRUE(db.check_consistency(nullptr));
    EXPECT_EQ(validity.findings.get_count(), 0u);
}

// ---- the creators in the fabric

TEST(external_objects, the_start_up_registers_the_cdp_creator_before_the_db_creator) {
    ptr_list_ct<conf_object_creator_c>* fabric = conf_fabric_n::get_fabric();
    std::vector<std::uint32_t> ids;
    for (conf_object_creator_c* c = fabric->first(); c; c = fabric->next(nullptr))
        ids.push_back(c->id);
    auto cdp = std::find(ids.begin(), ids.end(), 6789u);
    auto db = std::find(ids.begin(), ids.end(), 6799u);
    ASSERT_NE(cdp, ids.end());
    ASSERT_NE(db, ids.end());
    EXPECT_LT(cdp, db);
}

TEST(external_objects, the_fabric_makes_each_kind_from_its_item) {
    private_xml_c cdp_xml(cdp_object(data("SqlDbName", "db")));
    std::unique_ptr<conf_c> cdp(conf_fabric_n::create_object(6789, cdp_xml.root()));
    ASSERT_NE(dynamic_cast<cdp_conf_c*>(cdp.get()), nullptr);
    EXPECT_STREQ(static_cast<cdp_conf_c*>(cdp.get())->sql_db_name.to_text(), "db");
    private_xml_c db_xml("<object id=\"6799\" label=\"db\"><t/></object>");
    std::unique_ptr<conf_c> db(conf_fabric_n::create_object(6799, db_xml.root()));
    ASSERT_NE(dynamic_cast<db_conf_c*>(db.get()), nullptr);
    EXPECT_STREQ(static_cast<db_conf_c*>(db.get())->tree.get_root()->label, "t");
    EXPECT_TRUE(cdp->is_same_kind(*cdp));
    EXPECT_FALSE(cdp->is_same_kind(*db));
}
