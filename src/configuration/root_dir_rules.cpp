// The rules on the root directories of all the hosts of a scenario, as far as they need no
// settings: the Master has some, and every replica mirrors them position by position in `ID`
// and `DBdir`. They read the hosts' root directory arrays of the host index, not the tree. The
// rules that read settings (no network paths where the engine can't follow them, no nesting
// within a host, no overlap between hosts of one address) come with the data access.
#include "configuration/scenario_conf.h"

#include "support/trc.h"

namespace {

constexpr const char* source = "xmc_conf";
constexpr const char* root_dir_name = "RootDir";
constexpr const char* host_name = "ReplNode";

constexpr std::uint32_t code_missing = 3;
constexpr std::uint32_t code_count = 14;
constexpr std::uint32_t code_id = 15;
constexpr std::uint32_t code_db_dir = 17;

std::uint64_t count_of(const array_ct<root_dir_c>* dirs) { return dirs ? dirs->get_count() : 0; }

// The host after `node` in pre-order of the index, or null.
host_index_node_s* next_in_order(host_index_node_s* node) {
    if (node->first_child) return node->first_child_node();
    while (node && !node->next) node = node->parent_node();
    return node ? static_cast<host_index_node_s*>(node->next) : nullptr;
}

} // namespace

bool scenario_conf_c::_check_array_root_dirs(xmc_validity_c& validity) const {
    QVTR_SCOPE(tr, "scenario_conf_c::_check_array_root_dirs", source);
    std::uint64_t before = validity.findings.get_count();
    host_index_node_s* master = host_tree ? host_tree->find_host_node(MASTER_INDEX) : nullptr;
    const array_ct<root_dir_c>* mst = master ? master->root_dirs : nullptr;
    if (count_of(mst) == 0) {
        // Without the Master's directories there is nothing for a replica to mirror.
        add_record(validity, root_dir_name, code_missing, MASTER_INDEX, 0);
        return false;
    }
    for (host_index_node_s* host = next_in_order(master); host; host = next_in_order(host)) {
        const array_ct<root_dir_c>* rep = host->root_dirs;
        if (count_of(rep) == 0) {
            add_record(validity, root_dir_name, code_missing, host->host_index, 0);
            continue;
        }
        if (count_of(rep) != count_of(mst)) {
            add_record(validity, host_name, code_count, host->host_index, 0);
            continue;
        }
        for (std::uint64_t i = 0; i < count_of(mst); ++i) {
            const root_dir_c* m = mst->at(i);
            const root_dir_c* r = rep->at(i);
            if (m->id != r->id)
                add_record(validity, root_dir_name, code_id, host->host_index, i);
            else if (m->db_dir != r->db_dir)
                add_record(validity, root_dir_name, code_db_dir, host->host_index, i);
        }
    }
    return validity.findings.get_count() == before;
}
