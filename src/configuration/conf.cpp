#include "configuration/conf.h"

#include "support/thl.h"
#include "support/trc.h"

#include <cstring>
#include <optional>

namespace {

constexpr const char* source = "xmc_conf";

const char* text_of(labeled_value_c* attribute) {
    return attribute ? attribute->to_text() : nullptr;
}

const char* label_of(const xml_item_c* item) {
    return text_of(item->find_attribute(xmc_n::attr_label));
}

// The first bytes are compared here, so that most names that differ cost no call.
bool same(const char* a, const char* b) { return a && b && *a == *b && std::strcmp(a, b) == 0; }

std::uint32_t kind_of(const xml_item_c* item) {
    const xmc_item_c* typed = xmc_item_c::as_xmc(item);
    return typed ? typed->kind : static_cast<std::uint32_t>(xmc_n::kind_other);
}

// The item after `item` in pre-order below `top`, into the children of `item` only when `enter`
// is set; null at the end. The searches below walk with it, so that they need no stack.
const xml_item_c* next_below(const xml_item_c* item, const xml_item_c* top, bool enter) {
    if (enter && item->first_child) return item->first_child_item();
    while (item != top && !item->next) item = item->parent_item();
    return item != top ? item->next_item() : nullptr;
}

} // namespace

// ---- conf_c

conf_c::~conf_c() = default;
xml_item_c* conf_c::to_item() { return nullptr; }
bool conf_c::check_xmc_validity(xmc_validity_c&, xml_item_c*) { return false; }
bool conf_c::check_consistency(xml_item_c*) { return false; }
std::uint32_t conf_c::reserved_operation() { return 0; }
bool conf_c::is_same_kind(const conf_c& other) const { return id == other.id; }

// ---- xmc_conf_c

xmc_conf_c::xmc_conf_c() : tree(new mixed_xmc_xml_tree_c) {}

xmc_conf_c::~xmc_conf_c() { delete tree; }

const char* xmc_conf_c::get_item_description(const xml_item_c* item, utl_stream_c& stream) const {
    stream.append(utl_stream_c::clear_char);
    for (const xml_item_c* at = item; at; at = at->parent_item()) {
        if (at != item) stream.append(" => ");
        stream.append(at->label ? at->label : "");
        stream.append(".");
        const char* label = label_of(at);
        stream.append(label ? label : "");
    }
    return stream.c_str();
}

void xmc_conf_c::clear() {
    delete tree;
    tree = new mixed_xmc_xml_tree_c;
}

bool xmc_conf_c::is_equal(xmc_conf_c& other) {
    if (id != other.id) return false;
    if (!tree || !other.tree) return tree == other.tree;
    return tree->is_equal(*other.tree);
}

xml_item_c* xmc_conf_c::find_tree_item(const char* label, bool want_object, xml_item_c* start,
                                       bool direct_only) const {
    if (!start) start = tree ? tree->get_root() : nullptr;
    if (!start || !label) return nullptr;
    const char* start_label = label_of(start);
    // Pre-order below the start; each item's kind and label are read once.
    for (const xml_item_c* item = start->first_child_item(); item;) {
        std::uint32_t kind = kind_of(item);
        bool object = kind == xmc_n::kind_object || kind == xmc_n::kind_external;
        bool fits = want_object ? object : kind == xmc_n::kind_data;
        const char* item_label = fits || (object && !direct_only) ? label_of(item) : nullptr;
        bool enter;
        if (direct_only) {
            if (fits && same(item_label, label)) return const_cast<xml_item_c*>(item);
            enter = !object;
        } else {
            // A search begun at a host does not go on into the hosts nested in it.
            if (object && same(item_label, start_label)) return nullptr;
            if (fits && same(item_label, label)) return const_cast<xml_item_c*>(item);
            enter = kind != xmc_n::kind_external;
        }
        item = next_below(item, start, enter);
    }
    return nullptr;
}

xml_item_c* xmc_conf_c::find_data_below(const xml_item_c* object, const char* label) {
    if (!object || !label) return nullptr;
    for (const xml_item_c* item = object->first_child_item(); item;) {
        std::uint32_t kind = kind_of(item);
        if (kind == xmc_n::kind_data && same(label_of(item), label))
            return const_cast<xml_item_c*>(item);
        bool enter = kind != xmc_n::kind_object && kind != xmc_n::kind_external;
        item = next_below(item, object, enter);
    }
    return nullptr;
}

labeled_value_c* xmc_conf_c::find_property(const char* object_label, const char* property_label,
                                           xml_item_c* start, xml_item_c** out_item) const {
    if (out_item) *out_item = nullptr;
    if (!start) start = tree ? tree->get_root() : nullptr;
    if (!start || !object_label || !property_label) return nullptr;
    xml_item_c* object = same(label_of(start), object_label)
                             ? start
                             : find_tree_item(object_label, true, start, false);
    if (!object) return nullptr;
    if (same(property_label, xmc_n::attr_status) || same(property_label, xmc_n::attr_id)) {
        labeled_value_c* attribute = object->find_attribute(property_label);
        if (attribute && out_item) *out_item = object;
        return attribute;
    }
    xml_item_c* data = find_data_below(object, property_label);
    if (!data) return nullptr;
    labeled_value_c* val = data->find_attribute(xmc_n::attr_val);
    if (val && out_item) *out_item = data;
    return val;
}

const char* xmc_conf_c::_check_object_content_get_name(const xml_item_c* item, bool& ok,
                                                       xmc_validity_c* validity,
                                                       std::uint32_t* out_id) const {
    QVTR_SCOPE(tr, "xmc_conf_c::_check_object_content_get_name", source);
    auto finding = [&](std::uint32_t code, const char* extra) {
        if (validity) report_item(*validity, item, code, extra);
    };
    if (!item || item->get_attribute_count() == 0) {
        finding(0, nullptr);
        return nullptr;
    }
    ok = true;
    const char* name = nullptr;
    bool id_seen = false;
    for (std::uint64_t i = 0; i < item->get_attribute_count(); ++i) {
        labeled_value_c* attribute = item->get_attribute(i);
        const char* attribute_name = attribute->get_label();
        if (same(attribute_name, xmc_n::attr_external)) continue;
        const char* value = attribute->to_text();
        if (!value || !*value) {
            finding(5, attribute_name);
            ok = false;
            continue;
        }
        if (same(attribute_name, xmc_n::attr_label)) {
            name = value;
        } else if (same(attribute_name, xmc_n::attr_id)) {
            id_seen = true;
            if (out_id) *out_id = attribute->to_uint();
        } else if (same(attribute_name, xmc_n::attr_status) ||
                   same(attribute_name, xmc_n::attr_prompted) ||
                   same(attribute_name, xmc_n::attr_to_keep)) {
        } else {
            finding(6, attribute_name);
            ok = false;
        }
    }
    if (!name) {
        finding(7, nullptr);
        ok = false;
    } else if (!id_seen) {
        finding(8, nullptr);
        ok = false;
    }
    return name;
}

bool xmc_conf_c::_check_data_content(xmc_validity_c* validity, const xml_item_c* item, bool strict,
                                     const char** out_label, const char** out_val,
                                     const char** out_type, const char** out_mandatory,
                                     const char** out_check_kids_if_val, const char** out_check_if,
                                     bool* out_has_limits) const {
    QVTR_SCOPE(tr, "xmc_conf_c::_check_data_content", source);
    const char* label = nullptr;
    const char* val = nullptr;
    const char* type = nullptr;
    const char* mandatory = nullptr;
    const char* check_kids_if_val = nullptr;
    const char* check_if = nullptr;
    bool has_limits = false;
    bool result = true;
    // Made only for a trace line: most items have nothing to say.
    std::optional<utl_stream_c> description;
    auto describe = [&] { return get_item_description(item, description.emplace()); };

    if (!item || item->get_attribute_count() == 0) {
        std::uint32_t kind = item ? kind_of(item) : static_cast<std::uint32_t>(xmc_n::kind_other);
        if (kind == xmc_n::kind_object || kind == xmc_n::kind_data ||
            kind == xmc_n::kind_external) {
            if (validity)
                report_item(*validity, item, 0);
            else
                tr.print(QVTR_FAILURE, __LINE__, "Empty data item \"%s\"\n", describe());
        }
    } else {
        for (std::uint64_t i = 0; i < item->get_attribute_count(); ++i) {
            labeled_value_c* attribute = item->get_attribute(i);
            const char* name = attribute->get_label();
            const char* value = attribute->to_text();
            if ((!value || !*value) && !same(name, xmc_n::attr_val)) {
                if (validity)
                    report_item(*validity, item, 5, name);
                else
                    tr.print(QVTR_FAILURE, __LINE__, "Empty attribute \"%s\" of data item \"%s\"\n",
                             name ? name : "", describe());
                result = false;
            }
            auto first = [&](const char*& out) {
                if (!out) out = value ? value : "";
            };
            if (same(name, xmc_n::attr_label)) {
                first(label);
            } else if (same(name, xmc_n::attr_val)) {
                first(val);
            } else if (same(name, xmc_n::attr_type)) {
                first(type);
            } else if (same(name, xmc_n::attr_check_kids_if_val)) {
                first(check_kids_if_val);
            } else if (same(name, xmc_n::attr_check_if)) {
                first(check_if);
            } else if (same(name, xmc_n::attr_mandatory)) {
                mandatory = same(value, mix_n::True) ? value : nullptr;
            } else if (same(name, xmc_n::attr_prompted)) {
            } else if (same(name, xmc_n::attr_minimum) || same(name, xmc_n::attr_maximum)) {
                has_limits = true;
            } else if (strict && !same(name, xmc_n::attr_to_keep) &&
                       !same(name, xmc_n::attr_is_equal)) {
                if (validity)
                    report_item(*validity, item, 6, name);
                else
                    tr.print(QVTR_FAILURE, __LINE__,
                             "Superfluous attribute \"%s = %s\" of data item \"%s\"\n",
                             name ? name : "", value ? value : "", describe());
                result = false;
            }
        }
        struct missing_s {
            const char* found;
            std::uint32_t code;
            const char* line;
        };
        const missing_s required[] = {
            {label, 9, "Unnamed data item \"%s\"\n"},
            {val, 10, "Data item missing value \"%s\"\n"},
            {type, 11, "Data item missing type \"%s\"\n"},
        };
        for (const missing_s& r : required) {
            if (r.found) continue;
            if (validity)
                report_item(*validity, item, r.code);
            else
                tr.print(QVTR_FAILURE, __LINE__, r.line, describe());
            result = false;
            break;
        }
    }
    if (out_label) *out_label = label;
    if (out_val) *out_val = val;
    if (out_type) *out_type = type;
    if (out_mandatory) *out_mandatory = mandatory;
    if (out_check_kids_if_val) *out_check_kids_if_val = check_kids_if_val;
    if (out_check_if) *out_check_if = check_if;
    if (out_has_limits) *out_has_limits = has_limits;
    return result;
}

// ---- the fabric

namespace {

// Trivially destructible on purpose: creators register from start-up steps on either side of the
// list's own step, which makes it on first use; the library's unload frees it (the creators are
// not the list's: each is an object of its own step).
ptr_list_ct<conf_object_creator_c>* fabric = nullptr;

} // namespace

ptr_list_ct<conf_object_creator_c>* conf_fabric_n::get_fabric() {
    if (!fabric) fabric = new ptr_list_ct<conf_object_creator_c>(true);
    return fabric;
}

void conf_fabric_n::start_fabric() { get_fabric(); }

void conf_fabric_n::stop_fabric() {
    delete fabric;
    fabric = nullptr;
}

conf_c* conf_fabric_n::create_object(std::uint32_t id, xml_item_c* item) {
    ptr_list_ct<conf_object_creator_c>* list = get_fabric();
    for (conf_object_creator_c* creator = list->first(); creator; creator = list->next(nullptr))
        if (creator->id == id) return creator->create(item);
    return nullptr;
}

conf_object_creator_c::conf_object_creator_c(std::uint32_t creator_id) : id(creator_id) {
    ptr_list_ct<conf_object_creator_c>* list = conf_fabric_n::get_fabric();
    for (conf_object_creator_c* creator = list->first(); creator; creator = list->next(nullptr))
        if (creator->id == creator_id) return;
    list->append(this);
}

// A creator that goes before the process ends (one of a test's) leaves the fabric with it.
conf_object_creator_c::~conf_object_creator_c() {
    if (fabric && fabric->find_data(this)) fabric->remove_current(this);
}
