#include "configuration/scenario_conf.h"

#include "configuration/xmc_grammar.h"
#include "configuration/xmc_item.h"
#include "support/trc.h"

namespace {

constexpr const char* source = "xmc_conf";

// Labels of the scenario's landmarks.
constexpr const char* scenario_label = "Scenario";
constexpr const char* host_label = "ReplNode";
constexpr const char* host_props_label = "CommonHostProps";
constexpr const char* index_label = "Index";
constexpr const char* root_dir_label = "RootDir";
constexpr const char* external_label = "External";
constexpr const char* scenario_name_label = "ScenarioName";
constexpr const char* unknown_name = "UnKnown";
constexpr const char* tree_missing = "XMC tree is missing";

using xmc_tree_n::is_object;
using xmc_tree_n::is_object_labelled;
using xmc_tree_n::label_of;

// The nearest object above `item`, or `item` itself with `inclusive`; with a `label`, the
// nearest so labelled.
const xml_item_c* enclosing_object(const xml_item_c* item, const char* label, bool inclusive) {
    for (const xml_item_c* up = inclusive ? item : item->parent_item(); up; up = up->parent_item())
        if (label ? is_object_labelled(up, label) : is_object(up)) return up;
    return nullptr;
}

// A reading of an attribute taken from a copy: reading a text as a number turns the attribute
// into a number, and the tree must not change under readers that share it.
std::uint64_t uint64_of(const labeled_value_c* attribute) {
    return value_c(*attribute).to_uint64();
}
std::uint32_t uint_of(const labeled_value_c* attribute) { return value_c(*attribute).to_uint(); }

// Holds the own lock of a list for a sequence of its operations.
class list_lock_c {
  public:
    explicit list_lock_c(const ptr_list_c* list) : _list(list) { _list->lock(); }
    ~list_lock_c() { _list->unlock(); }
    list_lock_c(const list_lock_c&) = delete;
    list_lock_c& operator=(const list_lock_c&) = delete;

  private:
    const ptr_list_c* _list;
};

} // namespace

scenario_conf_c::scenario_conf_c() : host_tree(new host_index_tree_c) {}

scenario_conf_c::~scenario_conf_c() {
    generic_objects.clear_and_delete();
    delete host_tree;
    host_tree = nullptr;
    services.clear_and_delete();
}

void scenario_conf_c::clear() {
    config_mode = scenario_conf_n::config_mode_regular;
    product = scenario_conf_n::product_not_set;
    application = scenario_conf_n::application_not_set;
    vetted_failback = false;
    // The root directories point into the tree: they go before it.
    if (host_tree) host_tree->clear_hosts();
    xmc_conf_c::clear();
}

bool scenario_conf_c::is_same_object(const conf_c& other) const {
    multi_reader_lock_c read(is_group ? group_lock : scenario_lock);
    return id == other.id;
}

const char* scenario_conf_c::get_item_description(const xml_item_c* item,
                                                  utl_stream_c& stream) const {
    stream.append(utl_stream_c::clear_char);
    if (!item) return nullptr;
    const char* label = label_of(item);
    stream.append(item->label ? item->label : "").append(".").append(label ? label : "");
    stream.append(" from ");
    const xml_item_c* host = enclosing_object(item, host_label, true);
    host_index_node_s* master = host_tree ? host_tree->find_host_node(MASTER_INDEX) : nullptr;
    if (!host) {
        stream.append(scenario_label);
    } else if (master && master->host_item == host) {
        stream.append("Master");
    } else {
        host_index_node_s* node = host_tree ? host_tree->find_host_by_item(host, true) : nullptr;
        stream.append("Replica #")
            .append(static_cast<unsigned long long>(node ? node->host_index : NO_HOST_INDEX));
    }
    if (const xml_item_c* object = enclosing_object(item, nullptr, false)) {
        const char* object_label = label_of(object);
        stream.append(", object ").append(object_label ? object_label : "");
    }
    return stream.c_str();
}

std::uint64_t scenario_conf_c::_build_host_tree(xml_item_c* root) {
    QVTR_SCOPE(tr, "scenario_conf_c::_build_host_tree", source);
    if (!root) root = tree ? tree->get_root() : nullptr;
    if (!root || !host_tree) return 0;
    std::uint64_t count = 0;
    for (xml_item_c* item = xmc_tree_n::next_item(root, root); item;
         item = xmc_tree_n::next_item(item, root)) {
        if (!is_object_labelled(item, host_props_label)) continue;
        xml_item_c* index_item = find_tree_item(index_label, false, item, false);
        if (!index_item) continue;
        labeled_value_c* val = index_item->find_attribute(xmc_n::attr_val);
        if (!val) {
            tr.print(QVTR_FAILURE, __LINE__, "Unable to find property \"%s\" for node %s\n",
                     index_label, host_label);
            continue;
        }
        std::uint64_t index = uint64_of(val);
        auto* host = const_cast<xml_item_c*>(enclosing_object(item, host_label, false));
        if (!host) {
            tr.print(QVTR_FAILURE, __LINE__, "Unable to find Papa for \"%s\", node %s\n",
                     index_label, host_label);
            continue;
        }
        std::uint64_t parent_index = NO_HOST_INDEX;
        if (index != MASTER_INDEX) {
            // The nearest host above this one that is indexed already feeds it; pre-order
            // brings every such host before its replicas.
            for (const xml_item_c* up = host->parent_item(); up && !parent_index;
                 up = up->parent_item())
                if (host_index_node_s* known = host_tree->find_host_by_item(up))
                    parent_index = known->host_index;
            if (!parent_index) {
                tr.print(QVTR_FAILURE, __LINE__, "Unable to find next Papa for \"%s\", node %s\n",
                         index_label, host_label);
                continue;
            }
        }
        array_ct<root_dir_c>* dirs = _make_root_dir_list(host);
        if (host_tree->add_host(host, dirs, index, parent_index)) {
            ++count;
        } else {
            dirs->clear();
            delete dirs;
        }
    }
    return count;
}

array_ct<root_dir_c>* scenario_conf_c::_make_root_dir_list(xml_item_c* host_item) const {
    auto* dirs = new array_ct<root_dir_c>;
    // Without a host there is nothing to look in: a search from the tree's root would find
    // another host's directories.
    if (!host_item) return dirs;
    // `ListRootDirs` holds root directories only: the siblings are taken as they come.
    for (xml_item_c* item = find_tree_item(root_dir_label, true, host_item, false); item;
         item = item->next_item())
        dirs->append(new xmc_root_dir_c(item));
    return dirs;
}

bool scenario_conf_c::_check_mixed_tree(xmc_value_c* value) const {
    QVTR_SCOPE(tr, "scenario_conf_c::_check_mixed_tree", source);
    if (tree && tree->get_root()) return true;
    tr.print(QVTR_FAILURE, __LINE__, "%s\n", tree_missing);
    if (value) {
        value->set_error();
        value->report_lookup_failure(tree_missing);
    }
    return false;
}

std::uint64_t scenario_conf_c::get_root_dir_count() const {
    multi_reader_lock_c read(scenario_lock);
    if (!_check_mixed_tree(nullptr) || !host_tree) return 0;
    host_index_node_s* master = host_tree->find_host_node(MASTER_INDEX);
    return master && master->root_dirs ? master->root_dirs->get_count() : 0;
}

root_dir_c* scenario_conf_c::get_root_dir(std::uint64_t position, std::uint64_t host) const {
    multi_reader_lock_c read(scenario_lock);
    if (!_check_mixed_tree(nullptr) || !host_tree) return nullptr;
    host_index_node_s* node = host_tree->find_host_node(host);
    if (!node || !node->root_dirs || position >= node->root_dirs->get_count()) return nullptr;
    return node->root_dirs->at(position);
}

const char* scenario_conf_c::_scenario_name(utl_stream_c& stream) const {
    labeled_value_c* name = find_property(scenario_label, scenario_name_label);
    const char* text = name ? name->to_text() : nullptr;
    stream.append(utl_stream_c::clear_char).append(text && *text ? text : unknown_name);
    return stream.c_str();
}

// ---- external objects

conf_c* scenario_conf_c::_find_generic_object(std::uint32_t object_id) const {
    list_lock_c hold(generic_objects.get_list());
    for (conf_c* object = generic_objects.first(); object; object = generic_objects.next(nullptr))
        if (object->id == object_id) return object;
    return nullptr;
}

conf_c* scenario_conf_c::_get_generic_object(xml_item_c* item) {
    QVTR_SCOPE(tr, "scenario_conf_c::_get_generic_object", source);
    labeled_value_c* id_attribute = item ? item->find_attribute(xmc_n::attr_id) : nullptr;
    std::uint32_t object_id = id_attribute ? uint_of(id_attribute) : 0;
    if (!object_id) return nullptr;
    // The lock is held from the search to the insertion, so that two readers asking at once
    // share one object.
    list_lock_c hold(generic_objects.get_list());
    if (conf_c* known = _find_generic_object(object_id)) return known;
    conf_c* made = conf_fabric_n::create_object(object_id, item);
    if (made) generic_objects.insert(made);
    return made;
}

conf_c* scenario_conf_c::get_generic_object() {
    QVTR_SCOPE(tr, "scenario_conf_c::get_generic_object", source);
    multi_reader_lock_c read(scenario_lock);
    if (!_check_mixed_tree(nullptr)) return nullptr;
    list_lock_c hold(generic_objects.get_list());
    if (conf_c* known = _find_generic_object(GENERIC_OBJECT_ID)) return known;
    conf_c* made = _new_generic_object();
    if (made) generic_objects.insert(made);
    return made;
}

conf_c* scenario_conf_c::_new_generic_object() {
    QVTR_SCOPE(tr, "scenario_conf_c::_new_generic_object", source);
    utl_stream_c name;
    xml_item_c* external = find_tree_item(external_label, true, nullptr, false);
    if (!external) {
        tr.print(QVTR_INFO, __LINE__, "Unable to find object %s with ID=%u in \"%s\"\n",
                 external_label, GENERIC_OBJECT_ID, _scenario_name(name));
        return nullptr;
    }
    xml_item_c* child = external->first_child_item();
    for (; child; child = child->next_item()) {
        labeled_value_c* id_attribute = child->find_attribute(xmc_n::attr_id);
        if (id_attribute && uint_of(id_attribute) == GENERIC_OBJECT_ID) break;
    }
    conf_c* made = conf_fabric_n::create_object(GENERIC_OBJECT_ID, child);
    if (!made)
        tr.print(QVTR_FAILURE, __LINE__,
                 "Fabric returned zero for object with id=%u in \"%s\", Scenario name %s\n",
                 GENERIC_OBJECT_ID, external_label, _scenario_name(name));
    return made;
}
