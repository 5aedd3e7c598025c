// Data access of scenario_conf_c: single settings of the scenario, its hosts, the Manager and
// the group, addressed by a row of the code tables (or by the dotted path of the setting's
// item) and carried in an xmc_value_c. The row gives an object label and a property label; the
// tree's find_property turns them into the attribute that holds the value.
#include "configuration/scenario_conf.h"

#include "configuration/xmc_grammar.h"
#include "configuration/xmc_item.h"
#include "platform/os.h"
#include "support/trc.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

using namespace xmc_enums_n;

namespace {

constexpr const char* source = "xmc_conf";
constexpr const char* tree_missing = "XMC tree is missing";
constexpr const char* lookup_error = "Lookup Error";

// What the last failed setter of this thread said. Plain bytes: a thread-local with a
// destructor would have to be torn down with every thread of an engine process.
thread_local char last_failure[2048];

void forget_failure() { last_failure[0] = 0; }

void remember_failure(const char* text) {
    std::size_t used = std::strlen(last_failure);
    std::snprintf(last_failure + used, sizeof last_failure - used, "%s", text);
}

// A setter's words when the tree is missing: those that _check_mixed_tree traced.
void remember_missing_tree() {
    remember_failure(tree_missing);
    remember_failure("\n");
}

// A failure line of a setter: traced at level 4 and kept as the thread's last failure.
void fail(qvtr_entry_c& tr, int line, const char* format, ...) QVTR_PRINTF(3, 4);
void fail(qvtr_entry_c& tr, int line, const char* format, ...) {
    std::va_list args;
    va_start(args, format);
    std::va_list again;
    va_copy(again, args);
    int length = std::vsnprintf(nullptr, 0, format, args);
    va_end(args);
    std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    if (length > 0) std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    remember_failure(text.c_str());
    tr.print(QVTR_FAILURE, line, "%s", text.c_str());
}

const char* object_name(std::uint32_t object) {
    return object < object_tag_count ? object_tag_table[object].name : "";
}

const char* or_empty(const char* text) { return text ? text : ""; }

// The text of an attribute without changing it: a number formats itself into its own text
// buffer when read, and readers share the tree.
template <class F> void with_text(const labeled_value_c* attribute, F use) {
    value_c::type_t type = attribute->get_type();
    if (type == value_c::type_string || type == value_c::type_bool) {
        use(const_cast<labeled_value_c*>(attribute)->to_text());
        return;
    }
    value_c copy(*attribute);
    use(copy.to_text());
}

// The error of a value: the flags set and the words alone in error_text.
void set_value_error(xmc_value_c& value, const std::string& text) {
    value.set_error();
    value.report_lookup_failure(text.empty() ? lookup_error : text.c_str());
}

std::string number_text(unsigned long long number) { return std::to_string(number); }

struct value_type_s {
    std::uint32_t type;
    std::uint32_t enum_index;
};

// The type of `attribute` on `item`: an object's `status` is Bool and its `id` Number, any
// other of its attributes Text; a data item has the type its `type` attribute gave it.
value_type_s type_of(const labeled_value_c* attribute, const xml_item_c* item) {
    const xmc_item_c* typed = xmc_item_c::as_xmc(item);
    if (typed && typed->kind == xmc_n::kind_data) return {typed->value_type, typed->enum_index};
    const char* name = attribute ? attribute->get_label() : nullptr;
    if (typed && (typed->kind == xmc_n::kind_object || typed->kind == xmc_n::kind_external)) {
        if (name && std::strcmp(name, xmc_n::attr_status) == 0)
            return {xmc_n::type_bool, enum_none};
        if (name && std::strcmp(name, xmc_n::attr_id) == 0) return {xmc_n::type_number, enum_none};
    }
    return {xmc_n::type_text, enum_none};
}

bool is_list(const xml_item_c* item, const value_type_s& type) {
    const xmc_item_c* typed = xmc_item_c::as_xmc(item);
    return typed && typed->kind == xmc_n::kind_data && type.type == xmc_n::type_multi_entry;
}

// The name a value read from the tree carries: an enumeration's own name, or the type's.
const char* type_name_of(const value_type_s& type) {
    if (type.type == xmc_n::type_enum && type.enum_index < xmc_enum_c::enum_count)
        return xmc_enum_c::enum_name(type.enum_index);
    return xmc_enum_c::item_name(enum_type, type.type);
}

// The host nodes in pre-order, from `node` on.
host_index_node_s* next_host_node(host_index_node_s* node) {
    if (node->first_child) return node->first_child_node();
    for (; node; node = node->parent_node())
        if (node->next) return static_cast<host_index_node_s*>(node->next);
    return nullptr;
}

// Whether a host row applies to every host (an object below `CommonHostProps`) or to the
// replicas only (below `SpecificReplicaProps`, or below neither).
bool applies_to_all_hosts(std::uint32_t object) {
    constexpr std::uint32_t common = row_of("CommonHostProps");
    constexpr std::uint32_t specific = row_of("SpecificReplicaProps");
    // The table's rows are ordered parent first, so the walk up ends within its length.
    for (std::uint32_t step = 0; step <= object_tag_count && object < object_tag_count; ++step) {
        if (object == specific || object == 0) return false;
        if (object == common) return true;
        std::uint32_t papa = object_tag_table[object].papa;
        if (papa == object) return false;
        object = papa;
    }
    return false;
}

// The key of each group list: its entries are told apart by this data item.
const char* group_list_key(std::uint32_t list) {
    switch (list) {
    case 0:
    case 2:
    case 4: return "ScenarioID";
    case 1: return "Index";
    case 3: return "RedundancyName";
    default: return nullptr;
    }
}

// The value of the property `label` of the object `object` at or below `start` (the root when
// null), or the error that it is not there.
void read_property(const scenario_conf_c& conf, const char* object, const char* label,
                   xml_item_c* start, xmc_value_c& value) {
    xml_item_c* out = nullptr;
    if (labeled_value_c* attribute = conf.find_property(object, label, start, &out))
        conf.fill_value(attribute, out, value);
    else
        set_value_error(value, std::string("Unable to find node with property ") + or_empty(label));
}

// Stores the value into the property of a scenario, group or member row found from `start`,
// with the words of the caller's scope `tr` when it is not there or the value does not fit.
bool store_row(scenario_conf_c& conf, qvtr_entry_c& tr, const scenario_data_s& r, xml_item_c* start,
               xmc_value_c& value, bool no_type_check) {
    const char* object = object_name(r.object);
    xml_item_c* out = nullptr;
    labeled_value_c* attribute = conf.find_property(object, r.label, start, &out);
    if (!attribute) {
        fail(tr, __LINE__, "Unable to find node \"%s\" with property \"%s\"\n", object, r.label);
        return false;
    }
    if (!conf.store_value(attribute, out, value, no_type_check)) {
        // The words name the value as a text; the caller's list keeps its form.
        xmc_value_c shown(value);
        fail(tr, __LINE__, "Unable to set \"%s.%s\" = \"%s\", type doesn't fit\n", object, r.label,
             shown.to_text());
        return false;
    }
    return true;
}

// The test of a setter that holds its lock: a missing tree is traced by _check_mixed_tree and
// is the setter's last failure.
bool tree_missing_for_setter(const scenario_conf_c& conf) {
    if (conf._check_mixed_tree(nullptr)) return false;
    remember_missing_tree();
    return true;
}

// A fixed row of a scenario or group table that the caller does not force: traced, refused.
bool refused_as_fixed(qvtr_entry_c& tr, const scenario_data_s* table, std::uint32_t count,
                      std::uint32_t row, bool force) {
    if (row >= count || force || !table[row].fixed) return false;
    fail(tr, __LINE__, "Unable to reset fixed property \"%s.%s\"\n", object_name(table[row].object),
         table[row].label);
    return true;
}

} // namespace

const char* scenario_conf_c::last_set_failure() { return last_failure; }

// ---- values in and out of the tree

void scenario_conf_c::fill_value(labeled_value_c* attribute, const xml_item_c* item,
                                 xmc_value_c& value) const {
    if (!attribute) return;
    value_type_s type = type_of(attribute, item);
    if (is_list(item, type)) {
        fill_string_array(item, value);
    } else {
        with_text(attribute, [&](const char* text) { value.set_string(text); });
    }
    value.type_name = type_name_of(type);
}

void scenario_conf_c::fill_string_array(const xml_item_c* item, xmc_value_c& value) const {
    // The value keeps its own array if it has one: the list is copied into it.
    xmc_string_array_c* list = value.strings;
    value.strings = nullptr;
    value.set_string("");
    if (list)
        list->clear();
    else
        list = new xmc_string_array_c;
    for (const xml_item_c* child = item ? item->first_child_item() : nullptr; child;
         child = child->next_item()) {
        labeled_value_c* val = child->find_attribute(xmc_n::attr_val);
        if (!val) continue;
        with_text(val, [&](const char* text) {
            if (text && *text) list->add(text);
        });
    }
    value.strings = list;
}

bool scenario_conf_c::store_value(labeled_value_c* attribute, xml_item_c* item, xmc_value_c& value,
                                  bool no_type_check) {
    if (!attribute || !item) return false;
    value_type_s type = type_of(attribute, item);
    if (is_list(item, type)) return _recive_array_chars(item, value, no_type_check);
    const char* text = value.to_text();
    if (!no_type_check && !xmc_enum_c::data_fits_type(text, type.type, type.enum_index, item))
        return false;
    attribute->set_string(text);
    return true;
}

bool scenario_conf_c::_recive_array_chars(xml_item_c* item, xmc_value_c& value,
                                          bool no_type_check) {
    QVTR_SCOPE(tr, "scenario_conf_c::_recive_array_chars", source);
    xmc_item_c* list = xmc_item_c::as_xmc(item);
    if (!list || !tree) return false;
    if (!value.strings) {
        fail(tr, __LINE__, "Unable to set list strings, input is invalid\n");
        return false;
    }
    xmc_string_array_c entries(*value.strings);
    if (!no_type_check) {
        // The list's `val` names the type of its entries.
        std::uint32_t enum_index = enum_none;
        std::uint32_t type = xmc_n::type_any;
        if (labeled_value_c* val = item->find_attribute(xmc_n::attr_val))
            with_text(val,
                      [&](const char* text) { type = xmc_enum_c::find_type(text, enum_index); });
        for (std::uint64_t i = 0; i < entries.get_count(); ++i) {
            const char* entry = entries.at(i);
            if (!xmc_enum_c::data_fits_type(entry, type, enum_index, item)) {
                fail(tr, __LINE__, "Unable to set list strings, value \"%s\" doesn't fit type\n",
                     or_empty(entry));
                return false;
            }
        }
    }
    tree->remove_children(list);
    std::string label = or_empty(xmc_tree_n::label_of(item));
    for (std::uint64_t i = 0; i < entries.get_count(); ++i)
        add_entry_item(item, entries.at(i), label.c_str());
    return true;
}

xml_item_c* scenario_conf_c::add_entry_item(xml_item_c* parent, const char* text,
                                            const char* label) {
    xmc_item_c* typed_parent = xmc_item_c::as_xmc(parent);
    if (!typed_parent || !tree) return nullptr;
    std::string type;
    if (labeled_value_c* val = parent->find_attribute(xmc_n::attr_val))
        with_text(val, [&](const char* t) { type = or_empty(t); });
    auto* entry = new xmc_item_c(xmc_n::element_data);
    entry->set_attribute(xmc_n::attr_label, or_empty(label));
    entry->set_attribute(xmc_n::attr_val, or_empty(text));
    entry->set_attribute(xmc_n::attr_type, type.c_str());
    if (!tree->attach(entry, typed_parent, true)) {
        delete entry;
        return nullptr;
    }
    return entry;
}

// ---- rows by dotted name

std::uint32_t scenario_conf_c::find_scenario_row(const char* full_name) const {
    utl_stream_c path;
    for (std::uint32_t row = 0; row < scenario_data_count; ++row) {
        const scenario_data_s& r = scenario_data_table[row];
        xml_item_c* out = nullptr;
        find_property(object_name(r.object), r.label, nullptr, &out);
        path.append(utl_stream_c::clear_char);
        if (out) out->get_path(path);
        if (os::_stricmp(or_empty(path.c_str()), or_empty(full_name)) == 0) return row;
    }
    return not_found;
}

std::uint32_t scenario_conf_c::find_host_row(const char* full_name, std::uint64_t host) const {
    host_index_node_s* node = host_tree ? host_tree->find_host_node(host) : nullptr;
    xml_item_c* start = node ? node->host_item : nullptr;
    utl_stream_c path;
    for (std::uint32_t row = 0; row < host_data_count; ++row) {
        const host_data_s& r = host_data_table[row];
        xml_item_c* out = nullptr;
        find_property(object_name(r.object), r.label, start, &out);
        path.append(utl_stream_c::clear_char);
        if (out) out->get_path(path);
        if (os::_stricmp(or_empty(path.c_str()), or_empty(full_name)) == 0) return row;
    }
    return not_found;
}

// ---- scenario data

xmc_value_c& scenario_conf_c::_get_scenario_data(std::uint32_t row, xmc_value_c& value) const {
    value.clear();
    if (row >= scenario_data_count) {
        set_value_error(value, "No scenario data row " + number_text(row));
        return value;
    }
    const scenario_data_s& r = scenario_data_table[row];
    read_property(*this, object_name(r.object), r.label, nullptr, value);
    return value;
}

xmc_value_c& scenario_conf_c::get_scenario_data(std::uint32_t row, xmc_value_c& value) {
    multi_reader_lock_c read(scenario_lock);
    if (!_check_mixed_tree(&value)) return value;
    return _get_scenario_data(row, value);
}

bool scenario_conf_c::_set_scenario_data(std::uint32_t row, xmc_value_c& value) {
    QVTR_SCOPE(tr, "scenario_conf_c::_set_scenario_data", source);
    if (row >= scenario_data_count) {
        fail(tr, __LINE__, "No scenario data row %u\n", row);
        return false;
    }
    return store_row(*this, tr, scenario_data_table[row], nullptr, value, false);
}

bool scenario_conf_c::set_scenario_data(std::uint32_t row, xmc_value_c& value, bool force) {
    QVTR_SCOPE(tr, "scenario_conf_c::set_scenario_data", source);
    forget_failure();
    single_writer_lock_c write(scenario_lock);
    if (tree_missing_for_setter(*this)) return false;
    if (refused_as_fixed(tr, scenario_data_table, scenario_data_count, row, force)) return false;
    return _set_scenario_data(row, value);
}

bool scenario_conf_c::set_scenario_data(const char* full_name, xmc_value_c& value, bool force) {
    // The scan reads the tree before the setter takes its lock, as callers have always had it.
    std::uint32_t row = find_scenario_row(full_name);
    if (row == not_found) {
        forget_failure();
        return false;
    }
    return set_scenario_data(row, value, force);
}

// ---- host data

xmc_value_c& scenario_conf_c::_get_host_data(std::uint32_t row, std::uint64_t host,
                                             xmc_value_c& value) const {
    value.clear();
    if (row >= host_data_count) {
        set_value_error(value, "No host data row " + number_text(row));
        return value;
    }
    const host_data_s& r = host_data_table[row];
    xml_item_c* start = nullptr;
    if (host != MANAGER_INDEX) {
        host_index_node_s* node = host_tree ? host_tree->find_host_node(host) : nullptr;
        start = node ? node->host_item : nullptr;
        if (!start) {
            set_value_error(value, "Unable to find host node with index " + number_text(host));
            return value;
        }
    } else if (!r.manager) {
        set_value_error(value, std::string("Node \"") + object_name(r.object) +
                                   "\" with property \"" + r.label +
                                   "\" is irrelevant for Manager Data");
        return value;
    }
    // The Manager's data lie at the scenario's own level: the search starts at the root.
    return _read_host_row(row, host, start, value);
}

xmc_value_c& scenario_conf_c::_read_host_row(std::uint32_t row, std::uint64_t host,
                                             xml_item_c* host_item, xmc_value_c& value) const {
    value.clear();
    if (row >= host_data_count) {
        set_value_error(value, "No host data row " + number_text(row));
        return value;
    }
    const host_data_s& r = host_data_table[row];
    const char* object = object_name(r.object);
    xml_item_c* out = nullptr;
    if (labeled_value_c* attribute = find_property(object, r.label, host_item, &out)) {
        fill_value(attribute, out, value);
        return value;
    }
    std::string words = std::string("Unable to find node \"") + object + "\" with property \"" +
                        r.label + "\", host ";
    if (host == MANAGER_INDEX)
        words += "Manager";
    else if (host == MASTER_INDEX)
        words += "Master";
    else
        words += "Replica #" + number_text(host);
    set_value_error(value, words);
    return value;
}

xmc_value_c& scenario_conf_c::get_host_data(std::uint32_t row, std::uint64_t host,
                                            xmc_value_c& value) {
    multi_reader_lock_c read(scenario_lock);
    if (!_check_mixed_tree(&value)) return value;
    return _get_host_data(row, host, value);
}

bool scenario_conf_c::_set_host_data(std::uint32_t row, xml_item_c* host_item, xmc_value_c& value) {
    QVTR_SCOPE(tr, "scenario_conf_c::_set_host_data", source);
    if (row >= host_data_count) {
        fail(tr, __LINE__, "No host data row %u\n", row);
        return false;
    }
    const host_data_s& r = host_data_table[row];
    const char* object = object_name(r.object);
    xml_item_c* out = nullptr;
    labeled_value_c* attribute =
        host_item ? find_property(object, r.label, host_item, &out) : nullptr;
    if (attribute) {
        if (store_value(attribute, out, value, false)) return true;
        xmc_value_c shown(value);
        fail(tr, __LINE__, "Unable to set \"%s.%s\" = \"%s\", type doesn't fit\n", object, r.label,
             shown.to_text());
        return false;
    }
    host_index_node_s* node =
        host_item && host_tree ? host_tree->find_host_by_item(host_item) : nullptr;
    std::uint64_t index = node ? node->host_index : NO_HOST_INDEX;
    // The Manager's data are searched from the root, which no host has as its item.
    if (!node && host_item && tree && host_item == tree->get_root()) index = MANAGER_INDEX;
    if (index == MASTER_INDEX || index == MANAGER_INDEX)
        fail(tr, __LINE__, "Unable to find node \"%s\" with property \"%s\", host %s\n", object,
             r.label, index == MASTER_INDEX ? "Master" : "Manager");
    else
        fail(tr, __LINE__, "Unable to find node \"%s\" with property \"%s\", Replica #%d\n", object,
             r.label, static_cast<int>(index));
    return false;
}

bool scenario_conf_c::set_host_data(std::uint32_t row, std::uint64_t host, xmc_value_c& value) {
    QVTR_SCOPE(tr, "scenario_conf_c::set_host_data", source);
    forget_failure();
    single_writer_lock_c write(scenario_lock);
    if (tree_missing_for_setter(*this)) return false;
    xml_item_c* host_item = nullptr;
    if (host != MANAGER_INDEX) {
        host_index_node_s* node = host_tree ? host_tree->find_host_node(host) : nullptr;
        host_item = node ? node->host_item : nullptr;
        if (!host_item) {
            fail(tr, __LINE__, "Unable to find host node with index %d\n", static_cast<int>(host));
            return false;
        }
    } else {
        if (row < host_data_count && !host_data_table[row].manager) {
            fail(tr, __LINE__,
                 "Node \"%s\"  with property \"%s\"  is irrelevant for Manager Data\n",
                 object_name(host_data_table[row].object), host_data_table[row].label);
            return false;
        }
        host_item = tree->get_root();
    }
    return _set_host_data(row, host_item, value);
}

bool scenario_conf_c::set_host_data(const char* full_name, std::uint64_t host, xmc_value_c& value) {
    std::uint32_t row = find_host_row(full_name, host);
    if (row == not_found) {
        forget_failure();
        return false;
    }
    return set_host_data(row, host, value);
}

bool scenario_conf_c::set_host_data(std::uint32_t row, xmc_value_c& value) {
    QVTR_SCOPE(tr, "scenario_conf_c::set_host_data", source);
    forget_failure();
    single_writer_lock_c write(scenario_lock);
    if (tree_missing_for_setter(*this)) return false;
    if (row >= host_data_count) {
        fail(tr, __LINE__, "No host data row %u\n", row);
        return false;
    }
    if (!host_tree) return false;
    host_index_node_s* master = host_tree->find_host_node(MASTER_INDEX);
    host_index_node_s* node = applies_to_all_hosts(host_data_table[row].object)
                                  ? master
                                  : (master ? master->first_child_node() : nullptr);
    if (!node) return true;
    bool all_set = true;
    for (; node; node = next_host_node(node)) {
        if (!node->host_item || !_set_host_data(row, node->host_item, value)) all_set = false;
    }
    return all_set;
}

// ---- group data

xmc_value_c& scenario_conf_c::_get_group_data(std::uint32_t row, xmc_value_c& value) const {
    value.clear();
    if (row >= group_data_count) {
        set_value_error(value, "No group data row " + number_text(row));
        return value;
    }
    const scenario_data_s& r = group_data_table[row];
    read_property(*this, object_name(r.object), r.label, nullptr, value);
    return value;
}

xmc_value_c& scenario_conf_c::get_group_data(std::uint32_t row, xmc_value_c& value) {
    multi_reader_lock_c read(group_lock);
    if (!_check_mixed_tree(&value)) return value;
    return _get_group_data(row, value);
}

bool scenario_conf_c::_set_group_data(std::uint32_t row, xmc_value_c& value) {
    QVTR_SCOPE(tr, "scenario_conf_c::_set_group_data", source);
    if (row >= group_data_count) {
        fail(tr, __LINE__, "No group data row %u\n", row);
        return false;
    }
    return store_row(*this, tr, group_data_table[row], nullptr, value, false);
}

bool scenario_conf_c::set_group_data(std::uint32_t row, xmc_value_c& value, bool force) {
    QVTR_SCOPE(tr, "scenario_conf_c::set_group_data", source);
    forget_failure();
    single_writer_lock_c write(group_lock);
    if (tree_missing_for_setter(*this)) return false;
    if (refused_as_fixed(tr, group_data_table, group_data_count, row, force)) return false;
    return _set_group_data(row, value);
}

xml_item_c* scenario_conf_c::_find_group_list_info(std::uint32_t list, xmc_value_c key,
                                                   xml_item_c* start) const {
    QVTR_SCOPE(tr, "scenario_conf_c::_find_group_list_info", source);
    xml_item_c* root = tree ? tree->get_root() : nullptr;
    if (!start) start = root;
    if (!start || list >= group_list_count) return nullptr;
    const group_list_s& l = group_list_table[list];
    xml_item_c* list_item = find_tree_item(l.label, false, start, false);
    std::string wanted = or_empty(key.to_text());
    xmc_value_c empty;
    if (wanted == or_empty(empty.to_text())) return list_item;
    const char* key_label = group_list_key(list);
    if (!key_label || !list_item) return nullptr;
    const char* entry_label = object_name(l.object);
    // The walk goes on past the end of the list, up to the end of the tree.
    for (xml_item_c* item = xmc_tree_n::next_item(list_item, root); item;
         item = xmc_tree_n::next_item(item, root)) {
        if (!xmc_tree_n::is_object_labelled(item, entry_label)) continue;
        xml_item_c* data = find_data_below(item, key_label);
        labeled_value_c* val = data ? data->find_attribute(xmc_n::attr_val) : nullptr;
        if (!val) continue;
        xmc_value_c found;
        fill_value(val, data, found);
        if (wanted == or_empty(found.to_text())) return item;
    }
    return nullptr;
}

xmc_value_c& scenario_conf_c::_get_scenario_in_group(std::uint32_t scenario_id, std::uint32_t row,
                                                     xmc_value_c& value) const {
    QVTR_SCOPE(tr, "scenario_conf_c::_get_scenario_in_group", source);
    value.clear();
    if (row >= group_scenario_data_count) {
        set_value_error(value, "No group scenario data row " + number_text(row));
        return value;
    }
    // Whether a member is the primary one is told in the failover list, the rest in the list
    // of member scenarios.
    constexpr std::uint32_t is_primary_row = 2;
    std::uint32_t list = row == is_primary_row ? 2 : 0;
    xml_item_c* entry = _find_group_list_info(
        list, xmc_value_c(static_cast<unsigned long long>(scenario_id)), nullptr);
    if (!entry) {
        tr.print(QVTR_FAILURE, __LINE__, "Unable to find scenario %u\n", scenario_id);
        return value;
    }
    const scenario_data_s& r = group_scenario_data_table[row];
    read_property(*this, object_name(r.object), r.label, entry, value);
    return value;
}

xmc_value_c& scenario_conf_c::get_scenario_in_group(std::uint32_t scenario_id, std::uint32_t row,
                                                    xmc_value_c& value) {
    multi_reader_lock_c read(group_lock);
    if (!_check_mixed_tree(&value)) return value;
    return _get_scenario_in_group(scenario_id, row, value);
}

xmc_value_c& scenario_conf_c::_get_host_in_group(std::uint32_t scenario_id, std::uint32_t row,
                                                 bool is_master, xmc_value_c& value) const {
    QVTR_SCOPE(tr, "scenario_conf_c::_get_host_in_group", source);
    value.clear();
    if (row >= group_host_data_count) {
        set_value_error(value, "No group host data row " + number_text(row));
        return value;
    }
    xml_item_c* scenario = _find_group_list_info(
        0, xmc_value_c(static_cast<unsigned long long>(scenario_id)), nullptr);
    if (!scenario) {
        tr.print(QVTR_FAILURE, __LINE__, "Unable to find scenario %u\n", scenario_id);
        return value;
    }
    // A group knows the Master and one replica of each member.
    xml_item_c* host = _find_group_list_info(
        1, xmc_value_c(static_cast<unsigned long long>(is_master ? 1 : 2)), scenario);
    if (!host) {
        tr.print(QVTR_FAILURE, __LINE__, "Unable to find host in scenario %u\n", scenario_id);
        return value;
    }
    const group_host_data_s& r = group_host_data_table[row];
    read_property(*this, object_name(r.object), r.label, host, value);
    return value;
}

xmc_value_c& scenario_conf_c::get_host_in_group(std::uint32_t scenario_id, std::uint32_t row,
                                                bool is_master, xmc_value_c& value) {
    multi_reader_lock_c read(group_lock);
    if (!_check_mixed_tree(&value)) return value;
    return _get_host_in_group(scenario_id, row, is_master, value);
}

bool scenario_conf_c::_set_scenario_in_group(std::uint32_t scenario_id, std::uint32_t row,
                                             xmc_value_c& value, bool no_type_check) {
    QVTR_SCOPE(tr, "scenario_conf_c::_set_scenario_in_group", source);
    if (row >= group_scenario_data_count) {
        fail(tr, __LINE__, "No group scenario data row %u\n", row);
        return false;
    }
    xml_item_c* entry = _find_group_list_info(
        0, xmc_value_c(static_cast<unsigned long long>(scenario_id)), nullptr);
    if (!entry) {
        fail(tr, __LINE__, "Unable to find scenario %u\n", scenario_id);
        return false;
    }
    return store_row(*this, tr, group_scenario_data_table[row], entry, value, no_type_check);
}

bool scenario_conf_c::set_scenario_in_group(std::uint32_t scenario_id, std::uint32_t row,
                                            xmc_value_c& value, bool no_type_check) {
    forget_failure();
    single_writer_lock_c write(group_lock);
    if (tree_missing_for_setter(*this)) return false;
    return _set_scenario_in_group(scenario_id, row, value, no_type_check);
}

// ---- findings about rows

void scenario_conf_c::report_scenario_data(xmc_validity_c& validity, std::uint32_t row,
                                           std::uint32_t code) const {
    if (row >= scenario_data_count) return;
    const scenario_data_s& r = scenario_data_table[row];
    xml_item_c* out = nullptr;
    find_property(object_name(r.object), r.label, nullptr, &out);
    if (out) report_item(validity, out, code, nullptr);
}

void scenario_conf_c::report_host_data_row(xmc_validity_c& validity, std::uint32_t row,
                                           std::uint32_t code, std::uint64_t host) const {
    if (row >= host_data_count) return;
    const host_data_s& r = host_data_table[row];
    std::string name = std::string(object_name(r.object)) + "." + r.label;
    add_record(validity, name.c_str(), code, host, ch_data_s::no_item);
}

void scenario_conf_c::report_host_data(xmc_validity_c& validity, std::uint32_t row,
                                       std::uint64_t host, std::uint32_t code) const {
    if (row >= host_data_count) return;
    const host_data_s& r = host_data_table[row];
    host_index_node_s* node = host_tree ? host_tree->find_host_node(host) : nullptr;
    xml_item_c* host_item = node ? node->host_item : nullptr;
    xml_item_c* out = nullptr;
    if (host_item) find_property(object_name(r.object), r.label, host_item, &out);
    if (!out) {
        report_host_data_row(validity, row, code, host);
        return;
    }
    // The labels from the item up to the host's `ReplNode`, titles left out.
    std::string name;
    for (const xml_item_c* at = out; at; at = at->parent_item()) {
        const xmc_item_c* typed = xmc_item_c::as_xmc(at);
        if (at != out && typed && typed->kind == xmc_n::kind_title) continue;
        const char* label = xmc_tree_n::label_of(at);
        if (!name.empty()) name += ".";
        name += label && *label ? label : "label";
        if (at == host_item) break;
    }
    add_record(validity, name.c_str(), code, host, ch_data_s::no_item);
    validity.findings.last()->tree_item = out;
}
