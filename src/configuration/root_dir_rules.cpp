// The rules on the root directories of all the hosts of a scenario: the Master has some, every
// replica mirrors them, no network path stands where the engine can't follow it, no two nest
// within one host, and no two overlap between hosts on one machine. They read the hosts'
// root directory arrays of the host index, not the tree.
#include "configuration/scenario_conf.h"

#include "files/file.h"
#include "platform/os.h"
#include "support/trc.h"
#include "utl/utl.h"

#include <cstring>
#include <vector>

namespace {

constexpr const char* source = "xmc_conf";
constexpr const char* root_dir_name = "RootDir";
constexpr const char* host_name = "ReplNode";

constexpr std::uint32_t code_missing = 3;
constexpr std::uint32_t code_overlap = 13;
constexpr std::uint32_t code_count = 14;
constexpr std::uint32_t code_id = 15;
constexpr std::uint32_t code_same_id = 16;
constexpr std::uint32_t code_db_dir = 17;
constexpr std::uint32_t code_nested = 18;
constexpr std::uint32_t code_network = 33;

constexpr std::uint32_t row_replication_mode = 104; // scenario_data_table
constexpr std::uint32_t replication_scheduling = 1;
constexpr std::uint32_t host_row_ip = 1;               // host_data_table
constexpr std::uint32_t host_row_vetted_failback = 97; // VettedFailbackObj.status

// `\\?\Volume{...}` and `\\.\Volume{...}` name a volume by its GUID: 48 characters at least.
constexpr std::size_t volume_path_length = 48;

bool is_slash(char c) { return c == '/' || c == '\\'; }

bool is_volume_path(const char* path) {
    if (strnlen(path, volume_path_length) < volume_path_length) return false;
    return is_slash(path[0]) && is_slash(path[1]) && (path[2] == '?' || path[2] == '.') &&
           is_slash(path[3]) && os::_strnicmp(path + 4, "Volume", 6) == 0;
}

// Two slashes of either kind at the start, and no volume: a share on another machine.
bool is_network_path(const char* path) {
    if (!path || !*path) return false;
    return is_slash(path[0]) && is_slash(path[1]) && !is_volume_path(path);
}

const char* path_of(const root_dir_c* dir) { return dir && dir->path ? dir->path : ""; }

std::uint64_t count_of(const array_ct<root_dir_c>* dirs) { return dirs ? dirs->get_count() : 0; }

// The hosts of the index in pre-order, the Master first.
std::vector<host_index_node_s*> hosts_in_order(host_index_tree_c* tree) {
    std::vector<host_index_node_s*> hosts;
    host_index_node_s* node = tree ? tree->find_host_node(MASTER_INDEX) : nullptr;
    while (node) {
        hosts.push_back(node);
        if (node->first_child) {
            node = node->first_child_node();
            continue;
        }
        while (node && !node->next) node = node->parent_node();
        if (node) node = static_cast<host_index_node_s*>(node->next);
    }
    return hosts;
}

// The first network path among the host's root directories: its position, or -1.
std::int64_t first_network_path(const array_ct<root_dir_c>* dirs) {
    for (std::uint64_t i = 0; i < count_of(dirs); ++i)
        if (is_network_path(path_of(dirs->at(i)))) return static_cast<std::int64_t>(i);
    return -1;
}

// False only where path_n::is_file_in_dir(path, dir, false) is surely false, told from the
// bytes: the length, the byte after the directory's part, and the leading run of ASCII. The full
// test folds both texts to lower-case UTF-16 and so costs two conversions a call; over a leading
// run of ASCII the UTF-16 units are the bytes, and the fold of an ASCII unit is that of A-Z,
// so two bytes that differ there settle it. From the first byte that is not ASCII on, the full
// test decides. The overlap rule meets every pair of paths of hosts on one address, most of
// which part within their first bytes.
bool may_lie_in(const char* path, const char* dir) {
    std::size_t n = std::strlen(dir);
    if (n && is_slash(dir[n - 1])) --n;
    std::size_t path_length = std::strlen(path);
    if (n > path_length || (path[n] != 0 && !is_slash(path[n]))) return false;
    auto fold = [](unsigned char c) { return c >= 'A' && c <= 'Z' ? c + 0x20 : c; };
    for (std::size_t i = 0; i < n; ++i) {
        auto a = static_cast<unsigned char>(dir[i]), b = static_cast<unsigned char>(path[i]);
        if (a >= 0x80 || b >= 0x80) return true;
        if (fold(a) != fold(b)) return false;
    }
    return true;
}

bool nested(const char* a, const char* b, bool case_sensitive) {
    if (case_sensitive)
        return path_n::is_file_in_dir(a, b, true) || path_n::is_file_in_dir(b, a, true);
    return (may_lie_in(a, b) && path_n::is_file_in_dir(a, b, false)) ||
           (may_lie_in(b, a) && path_n::is_file_in_dir(b, a, false));
}

} // namespace

bool scenario_conf_c::_check_array_root_dirs(xmc_validity_c& validity) const {
    QVTR_SCOPE(tr, "scenario_conf_c::_check_array_root_dirs", source);
    bool ok = true;
    auto finding = [&](const char* name, std::uint32_t code, std::uint64_t host,
                       std::uint64_t item) {
        add_record(validity, name, code, host, item);
        ok = false;
    };
    std::vector<host_index_node_s*> hosts = hosts_in_order(host_tree);
    const array_ct<root_dir_c>* master_dirs = hosts.empty() ? nullptr : hosts[0]->root_dirs;

    // 1 and 2: the Master has root directories, and each replica the same ones.
    if (count_of(master_dirs) == 0) {
        finding(root_dir_name, code_missing, MASTER_INDEX, 0);
    } else {
        for (std::size_t h = 1; h < hosts.size(); ++h) {
            const array_ct<root_dir_c>* dirs = hosts[h]->root_dirs;
            std::uint64_t host = hosts[h]->host_index;
            if (count_of(dirs) == 0) {
                finding(root_dir_name, code_missing, host, 0);
            } else if (count_of(dirs) != count_of(master_dirs)) {
                finding(host_name, code_count, host, 0);
            } else {
                for (std::uint64_t i = 0; i < count_of(dirs); ++i) {
                    const root_dir_c* mine = master_dirs->at(i);
                    const root_dir_c* theirs = dirs->at(i);
                    if (mine->id != theirs->id)
                        finding(root_dir_name, code_id, host, i);
                    else if (mine->db_dir != theirs->db_dir)
                        finding(root_dir_name, code_db_dir, host, i);
                }
            }
        }
    }

    // 3: the Master may not replicate a network path online.
    xmc_value_c mode;
    _get_scenario_data(row_replication_mode, mode);
    if (mode.to_replication_mode() != replication_scheduling) {
        std::int64_t at = first_network_path(master_dirs);
        if (at >= 0) finding(root_dir_name, code_network, MASTER_INDEX, at);
    }

    // The two settings of each host that the rules below read, in one pass over the hosts.
    std::vector<bool> vetted_hosts;
    std::vector<std::uint32_t> addresses;
    vetted_hosts.reserve(hosts.size());
    addresses.reserve(hosts.size());
    for (host_index_node_s* node : hosts) {
        xmc_value_c vetted;
        xmc_value_c ip;
        if (node->host_item) {
            _read_host_row(host_row_vetted_failback, node->host_index, node->host_item, vetted);
            _read_host_row(host_row_ip, node->host_index, node->host_item, ip);
        }
        vetted_hosts.push_back(node->host_item && vetted.to_bool());
        addresses.push_back(utl_n::string_to_ip(ip.to_text()));
    }

    // 4: nor may any host that takes part in a vetted failback, whatever the mode.
    for (std::size_t h = 0; h < hosts.size(); ++h) {
        if (!vetted_hosts[h]) continue;
        std::int64_t at = first_network_path(hosts[h]->root_dirs);
        if (at >= 0) finding(root_dir_name, code_network, hosts[h]->host_index, at);
    }

    // 5 and 6, host by host: no nesting within the host, then no overlap with the hosts after
    // it that share its address.
    char drive[4096];
    for (std::size_t h = 0; h < hosts.size(); ++h) {
        const array_ct<root_dir_c>* dirs = hosts[h]->root_dirs;
        std::uint64_t host = hosts[h]->host_index;
        std::uint64_t count = count_of(dirs);
        for (std::uint64_t i = 0; count > 1 && i < count; ++i) {
            const char* outer = path_of(dirs->at(i));
            if (!*outer) continue;
            for (std::uint64_t j = i + 1; j < count; ++j) {
                const char* inner = path_of(dirs->at(j));
                if (!*inner) continue;
                // Without a drive letter or a share the file system is taken to tell case.
                bool case_sensitive = !path_n::drive_name_from_path(outer, drive);
                if (case_sensitive)
                    tr.print(QVTR_NOTE, __LINE__, "root dir %s is case sensitive \n", outer);
                if (nested(inner, outer, case_sensitive))
                    finding(root_dir_name, code_nested, host, j);
                else if (dirs->at(i)->id == dirs->at(j)->id)
                    finding(root_dir_name, code_same_id, host, j);
            }
        }
        for (std::size_t k = h + 1; k < hosts.size(); ++k) {
            if (addresses[k] != addresses[h]) continue;
            const array_ct<root_dir_c>* others = hosts[k]->root_dirs;
            for (std::uint64_t p = 0; p < count; ++p) {
                const char* mine = path_of(dirs->at(p));
                if (!*mine) continue;
                for (std::uint64_t q = 0; q < count_of(others); ++q) {
                    const char* theirs = path_of(others->at(q));
                    if (*theirs && nested(theirs, mine, false))
                        finding(root_dir_name, code_overlap, hosts[k]->host_index, q);
                }
            }
        }
    }
    return ok;
}
