// Configuration that a scenario holds as private XML rather than XMC: the children of its
// `External` object, each made into a conf_c by the creator registered for its `id`.
// cdp_conf_c (6789) holds the settings of a CDP scenario: a SQL database, a spool, and the
// filters on mail message classes and attachments. db_conf_c (6799) keeps a tree of database
// items as it finds it and never judges it.
#pragma once

#include "configuration/conf.h"
#include "configuration/xmc_value.h"
#include "support/thl.h"
#include "utl/container_temp.h"
#include "xml/xml_tree_templ.h"

#include <cstdint>

inline constexpr std::uint32_t CDP_OBJECT_ID = 6789;
inline constexpr std::uint32_t CDP_FILTERS_ID = 6788;
inline constexpr std::uint32_t DB_OBJECT_ID = 6799;

class cdp_conf_c : public conf_c {
  public:
    // The message classes a CDP scenario starts with, ended by an empty string.
    static const char* const default_msg_types[64];

    cdp_conf_c();
    ~cdp_conf_c() override;

    // The object in its XML form: the scalar values by their text, the default message
    // classes (not those read), no attachment types, and `Filters` with `status` False.
    xml_item_c* to_item() override;
    // Both database names must be given in the item; a missing one is a finding of code 3.
    bool check_xmc_validity(xmc_validity_c& validity, xml_item_c* item) override;
    bool check_consistency(xml_item_c* item) override;

    // Whether the item holds a non-empty `SqlInstanceName` and `SqlDbName` anywhere below it;
    // the caller holds the read side of `lock`.
    void _find_db_names(xml_item_c* item, bool& has_instance, bool& has_db);

    xmc_value_c sql_instance_name;
    xmc_value_c sql_db_name;
    xmc_value_c spool_space_threshold;
    xmc_value_c free_space_threshold;
    xmc_value_c spool_dir;
    xmc_value_c db_connect_timeout{1200};
    xmc_value_c ad_page_size{1000};
    xmc_value_c batch_size{10};
    xmc_value_c max_attach_size{1024};
    xmc_value_c batch_to_daily{10};
    value_list_ct<xmc_value_c> msg_types;
    value_list_ct<xmc_value_c> attach_file_types;
    mutable single_writer_multi_reader_c lock;
};

// A database item; nothing of its own but the destructor.
class db_obj_c : public xml_item_c {
  public:
    using xml_item_c::xml_item_c;
    ~db_obj_c() override;
};

class db_conf_c : public conf_c {
  public:
    db_conf_c();
    ~db_conf_c() override;

    // The wrapper object (id 6799, label `db`) around a copy of the tree.
    xml_item_c* to_item() override;
    // A database object is always valid.
    bool check_xmc_validity(xmc_validity_c& validity, xml_item_c* item) override;
    bool check_consistency(xml_item_c* item) override;

    // The tree becomes a copy of the item (of its first child, for the wrapper object), made
    // by writing it as XML text and reading that back; false for no item or an empty wrapper.
    bool load(xml_item_c* item);

    xml_tree_ct<db_obj_c> tree;
};

class cdp_conf_creator_c : public conf_object_creator_c {
  public:
    cdp_conf_creator_c() : conf_object_creator_c(CDP_OBJECT_ID) {}
    // The defaults, with every setting the item's descendants give as a string value.
    conf_c* create(xml_item_c* item) override;
};

class db_conf_creator_c : public conf_object_creator_c {
  public:
    db_conf_creator_c() : conf_object_creator_c(DB_OBJECT_ID) {}
    conf_c* create(xml_item_c* item) override;
};

namespace external_objects_n {
// Start-up steps 8 and 10: the two creators join the fabric, the CDP one first.
void start_cdp_creator();
void stop_cdp_creator();
void start_db_creator();
void stop_db_creator();
} // namespace external_objects_n
