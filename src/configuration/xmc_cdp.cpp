#include "configuration/xmc_cdp.h"

#include "configuration/xmc_validity.h"
#include "support/load_step.h"
#include "support/trc.h"
#include "xml/xml_tree_templ.h"

#include <cstring>
#include <exception>

namespace {

constexpr const char* source = "xmc_cdp";

const char* label_of(const xml_item_c* item) {
    labeled_value_c* label = item->find_attribute("label");
    const char* text = label ? label->to_text() : nullptr;
    return text ? text : "";
}

const char* val_of(const xml_item_c* item) {
    labeled_value_c* val = item->find_attribute("val");
    return val ? val->to_text() : nullptr;
}

// The descendants of `top` in pre-order, `top` itself not among them.
template <class Visit> void for_each_descendant(xml_item_c* top, Visit visit) {
    for (xml_item_c* at = top->first_child_item(); at;
         at = xml_tree_n::next_in_preorder<xml_item_c>(at, top))
        visit(at);
}

// Stores the text of the item's `val`, when there is one, as a string value.
void store(xmc_value_c& field, const xml_item_c* item) {
    if (const char* val = val_of(item)) field.set_string(val);
}

// Every non-null `val` below `list` as a string value, appended to `values`.
void collect(value_list_ct<xmc_value_c>& values, xml_item_c* list) {
    for_each_descendant(list, [&](xml_item_c* entry) {
        if (const char* val = val_of(entry)) values.append(xmc_value_c(val));
    });
}

xml_item_c* data_item(xml_item_c* parent, const char* label, const char* val, const char* type) {
    xml_item_c* item = xml_item_c::create_child("data", parent);
    item->set_attribute("label", label);
    item->set_attribute("val", val ? val : "");
    item->set_attribute("type", type);
    return item;
}

xml_item_c* object_item(xml_item_c* parent, std::uint32_t id, const char* label) {
    xml_item_c* item =
        parent ? xml_item_c::create_child("object", parent) : new xml_item_c("object");
    item->set_attribute("id", static_cast<unsigned int>(id));
    item->set_attribute("label", label);
    return item;
}

// `item`'s subtree as the text of a document in the writer's form, read back into `into`. The
// text goes without indentation, which the reading drops anyway: a subtree nested 100,000 deep
// would otherwise make 10 GB of tabs.
template <class T> bool copy_by_text(xml_item_c* item, xml_tree_ct<T>& into) {
    xml_tree_c writer;
    utl_stream_c text;
    writer.write_item(item, text, true, false);
    return into.load_from_str(text.c_str());
}

} // namespace

// ---- cdp_conf_c

const char* const cdp_conf_c::default_msg_types[64] = {
    "IPM.Activity",
    "IPM.Appointment",
    "IPM.Contact",
    "IPM.Note",
    "IPM.StickyNote",
    "IPM.Schedule.Meeting.Canceled",
    "IPM.Schedule.Meeting.Request",
    "IPM.Schedule.Meeting.Resp.Neg",
    "IPM.Schedule.Meeting.Resp.Pos",
    "IPM.Schedule.Meeting.Resp.Tent",
    "IPM.Note.Secure",
    "IPM.Note.Secure.Sign",
    "IPM.Task",
    "IPM.TaskRequest.Accept",
    "IPM.TaskRequest.Decline",
    "IPM.TaskRequest",
    "IPM.TaskRequest.Update",
    "IPM.Note.SMIME.MultipartSigned",
    "IPM.Note.SMIME",
    "",
};

cdp_conf_c::cdp_conf_c() { id = CDP_OBJECT_ID; }

cdp_conf_c::~cdp_conf_c() = default;

xml_item_c* cdp_conf_c::to_item() {
    xml_item_c* top = object_item(nullptr, CDP_OBJECT_ID, "cdp");
    data_item(top, "SqlInstanceName", sql_instance_name.to_text(), "String");
    data_item(top, "SqlDbName", sql_db_name.to_text(), "String");
    data_item(top, "SpoolSpaceThreshold", spool_space_threshold.to_text(), "Number");
    data_item(top, "FreeSpaceThreshold", free_space_threshold.to_text(), "Number");
    data_item(top, "SpoolDir", spool_dir.to_text(), "String");
    data_item(top, "DbConTimeOutInSec", db_connect_timeout.to_text(), "Number");
    data_item(top, "AdPageSize", ad_page_size.to_text(), "Number");
    data_item(top, "BatchSizeInMb", batch_size.to_text(), "Number");
    xml_item_c* filters = object_item(top, CDP_FILTERS_ID, "Filters");
    filters->set_attribute("status", mix_n::False);
    data_item(filters, "MaxAttachSizeInKb", max_attach_size.to_text(), "Number");
    data_item(filters, "Batch2DailyInMb", batch_to_daily.to_text(), "Number");
    // The classes written are the defaults: a class that was read and is not among them does
    // not come back, and the attachment types come out empty.
    xml_item_c* msg_list = data_item(filters, "MsgTypes", "String", "MultiEntry");
    for (const char* const* type = default_msg_types; **type; ++type)
        data_item(msg_list, "MsgTypes", *type, "String");
    data_item(filters, "AttachFileTypes", "String", "MultiEntry");
    return top;
}

// The caller holds the read side of the lock: a second read lock on the same thread would wait
// behind a writer that waits for the first.
void cdp_conf_c::_find_db_names(xml_item_c* item, bool& has_instance, bool& has_db) {
    has_instance = has_db = false;
    if (!item) return;
    for_each_descendant(item, [&](xml_item_c* at) {
        const char* val = val_of(at);
        if (!val || !*val) return;
        const char* label = label_of(at);
        if (std::strcmp(label, "SqlInstanceName") == 0) has_instance = true;
        if (std::strcmp(label, "SqlDbName") == 0) has_db = true;
    });
}

bool cdp_conf_c::check_consistency(xml_item_c* item) {
    QVTR_SCOPE(tr, "cdp_conf_c::check_consistency", source);
    try {
        multi_reader_lock_c read(lock);
        bool has_instance = false, has_db = false;
        _find_db_names(item, has_instance, has_db);
        bool found = has_instance && has_db;
        tr.print(QVTR_SUCCESS, __LINE__, "cdp xmc - check consistency [%s]\n",
                 found ? "OK" : mix_n::False);
        return found;
    } catch (...) {
        tr.print(QVTR_SUCCESS, __LINE__, "cdp xmc - check consistency [false]\n");
        return false;
    }
}

bool cdp_conf_c::check_xmc_validity(xmc_validity_c& validity, xml_item_c* item) {
    QVTR_SCOPE(tr, "cdp_conf_c::check_xmc_validity", source);
    try {
        multi_reader_lock_c read(lock);
        bool has_instance = false, has_db = false;
        _find_db_names(item, has_instance, has_db);
        for (auto [found, label] :
             {std::pair{has_instance, "SqlInstanceName"}, std::pair{has_db, "SqlDbName"}}) {
            if (found) continue;
            tr.print(QVTR_SUCCESS, __LINE__, "cdp xmc - check validity missing [%s]\n", label);
            add_record(validity, label, 3, 0, ch_data_s::no_item);
        }
        bool found = has_instance && has_db;
        tr.print(QVTR_SUCCESS, __LINE__, "cdp xmc - check validity [%s]\n",
                 found ? "OK" : mix_n::False);
        return found;
    } catch (...) {
        return false;
    }
}

conf_c* cdp_conf_creator_c::create(xml_item_c* item) {
    auto* made = new cdp_conf_c;
    if (!item) return made;
    for_each_descendant(item, [&](xml_item_c* at) {
        const char* label = label_of(at);
        struct field_s {
            const char* label;
            xmc_value_c* field;
        } const fields[] = {
            {"SqlInstanceName", &made->sql_instance_name},
            {"SqlDbName", &made->sql_db_name},
            {"SpoolSpaceThreshold", &made->spool_space_threshold},
            {"FreeSpaceThreshold", &made->free_space_threshold},
            {"SpoolDir", &made->spool_dir},
            {"DbConTimeOutInSec", &made->db_connect_timeout},
            {"AdPageSize", &made->ad_page_size},
            {"BatchSizeInMb", &made->batch_size},
        };
        for (const field_s& f : fields) {
            if (std::strcmp(label, f.label) != 0) continue;
            store(*f.field, at);
            return;
        }
        if (std::strcmp(label, "Filters") != 0) return;
        for_each_descendant(at, [&](xml_item_c* inner) {
            const char* inner_label = label_of(inner);
            if (std::strcmp(inner_label, "MaxAttachSizeInKb") == 0)
                store(made->max_attach_size, inner);
            else if (std::strcmp(inner_label, "Batch2DailyInMb") == 0)
                store(made->batch_to_daily, inner);
            else if (std::strcmp(inner_label, "MsgTypes") == 0)
                collect(made->msg_types, inner);
            else if (std::strcmp(inner_label, "AttachFileTypes") == 0)
                collect(made->attach_file_types, inner);
        });
    });
    return made;
}

// ---- db_conf_c

db_obj_c::~db_obj_c() = default;

db_conf_c::db_conf_c() { id = DB_OBJECT_ID; }

db_conf_c::~db_conf_c() = default;

bool db_conf_c::check_xmc_validity(xmc_validity_c&, xml_item_c*) { return true; }

bool db_conf_c::check_consistency(xml_item_c*) { return true; }

bool db_conf_c::load(xml_item_c* item) {
    tree.remove_root();
    if (!item) return false;
    if (std::strcmp(item->label ? item->label : "", "object") == 0) {
        labeled_value_c* object_id = item->find_attribute("id");
        if (object_id && object_id->to_uint() == DB_OBJECT_ID) {
            item = item->first_child_item();
            if (!item) return false;
        }
    }
    copy_by_text(item, tree);
    return true;
}

xml_item_c* db_conf_c::to_item() {
    utl_stream_c text;
    tree.write(text, true);
    xml_tree_c plain;
    plain.load_from_str(text.c_str());
    xml_item_c* root = plain.get_root();
    plain.detach(root);
    xml_item_c* wrapper = object_item(nullptr, DB_OBJECT_ID, "db");
    xml_tree_c holder;
    holder.attach(wrapper, nullptr, true);
    if (root) holder.attach(root, wrapper, true);
    xml_tree_c result;
    copy_by_text(wrapper, result);
    xml_item_c* made = result.get_root();
    result.detach(made);
    return made;
}

conf_c* db_conf_creator_c::create(xml_item_c* item) {
    auto* made = new db_conf_c;
    made->load(item);
    return made;
}

// ---- the creators at start-up

namespace {
load_step_object_ct<cdp_conf_creator_c> cdp_creator("the cdp_conf_creator_c instance");
load_step_object_ct<db_conf_creator_c> db_creator("the db_conf_creator_c instance");
} // namespace

void external_objects_n::start_cdp_creator() { cdp_creator.build(); }
void external_objects_n::stop_cdp_creator() { cdp_creator.drop(); }
void external_objects_n::start_db_creator() { db_creator.build(); }
void external_objects_n::stop_db_creator() { db_creator.drop(); }
