#include "stats_mng/stats_saver_ex.h"

#include "configuration/root_dir.h"
#include "configuration/scenario_conf.h"
#include "files/file.h"
#include "files/file_manipulation.h"
#include "support/load_step.h"
#include "support/thl.h"
#include "support/trc.h"
#include "utl/utl.h"
#include "xml/xml_tree_templ.h"

#include <cstring>

namespace {

constexpr const char* source = "stats_saver_ex";

load_step_object_ct<thl_crit_section_c>
    save_section_instance("the critical section serialising stats_saver_ex_c::_save");

} // namespace

void stats_saver_ex_n::start_save_section() { save_section_instance.build(); }

void stats_saver_ex_n::stop_save_section() { save_section_instance.drop(); }

thl_crit_section_c* stats_saver_ex_n::save_section() { return save_section_instance.get(); }

const char* stats_saver_ex_c::_get_file_path(utl_stream_c& out) {
    if (!_get_dir_path(out)) return nullptr;
    out.append("/stats.xml");
    return out.c_str();
}

bool stats_saver_ex_c::_save(utl_stream_c& text) {
    thl_lock_c hold(stats_saver_ex_n::save_section());
    utl_stream_c file_path;
    if (!_get_file_path(file_path)) return false;
    if (!file_manipulation_n::if_exists(file_path.c_str(), nullptr)) {
        file_manipulation_n::create_directory(file_path.c_str(), true);
        _hide_state_dir();
    }
    return _write_text(file_path.c_str(), text);
}

// One directory up from the root, then the state directory's name and "stats.xml". A bare
// drive such as "C:" has no directory above it and names its own state file.
bool stats_saver_ex_c::_get_parent_file_path(utl_stream_c& out) {
    char buffer[path_n::path_buffer_size] = {};
    path_n::standard_dir_path(root_path.c_str(), buffer, true);
    std::size_t length = std::strlen(buffer);
    if (length && buffer[length - 1] == '/') buffer[--length] = 0;
    if (char* slash = std::strrchr(buffer, '/')) {
        *slash = 0;
    } else if (length >= 2 && buffer[1] == ':') {
        buffer[2] = 0;
    } else {
        return false;
    }
    out.append(utl_stream_c::clear_char).append(buffer);
    if (!out.ends_with("/", true)) out.append(utl_stream_c::clear_char).append(buffer).append("/");
    out.append(state_dir_name).append("/stats.xml");
    return true;
}

void stats_saver_ex_c::_state_name_to_index(const char* word, unsigned* state_index) {
    *state_index = state_unknown;
    if (!word) return;
    for (unsigned index : {2u, 1u, 0u}) {
        if (os::_stricmp(word, state_names[index]) == 0) {
            *state_index = index;
            return;
        }
    }
}

bool stats_saver_ex_c::_get_state_timestamp(utl_stream_c& file_path, unsigned* state_index,
                                            std::int64_t* sync_time, bool* is_sync_replicated) {
    QVTR_SCOPE(tr, "stats_saver_ex_c::_get_state_timestamp", source);
    *is_sync_replicated = false;
    *sync_time = 0;
    if (!file_manipulation_n::if_exists(file_path.c_str(), nullptr)) {
        tr.print_nl(QVTR_FAILURE, __LINE__, "File %s does not exist.", file_path.c_str());
        return false;
    }
    xml_tree_c tree;
    if (!tree.load(file_path.c_str()) || !tree.get_root()) {
        tr.print_nl(QVTR_FAILURE, __LINE__, "Fail to load file %s.", file_path.c_str());
        return false;
    }
    xml_item_c* record = tree.get_root()->first_child_item();
    if (!record) {
        tr.print_nl(QVTR_FAILURE, __LINE__, "Fail to parse file %s.", file_path.c_str());
        return false;
    }
    if (labeled_value_c* flag = record->find_attribute("IsSyncReplicated"))
        *is_sync_replicated = flag->to_bool();
    else
        tr.print_nl(QVTR_SUCCESS, __LINE__,
                    "Fail to get the label IsSyncReplicated in the file %s.", file_path.c_str());
    labeled_value_c* state = record->find_attribute("State");
    if (!state) {
        tr.print_nl(QVTR_SUCCESS, __LINE__, "Fail to get the label State in the file %s.",
                    file_path.c_str());
        return false;
    }
    _state_name_to_index(state->to_text(), state_index);
    if (labeled_value_c* time = record->find_attribute("IsSyncReplicatedTime"))
        *sync_time = time->to_int64();
    return true;
}

bool stats_saver_ex_c::get_sync_state(unsigned* state_index, bool* is_sync_replicated) {
    QVTR_SCOPE(tr, "stats_saver_ex_c::get_sync_state", source);
    utl_stream_c own;
    if (!_get_file_path(own)) {
        tr.print_nl(QVTR_FAILURE, __LINE__, "Fail to get path %s.", own.c_str());
        return false;
    }
    utl_stream_c parent;
    if (!_get_parent_file_path(parent)) {
        tr.print_nl(QVTR_FAILURE, __LINE__, "Fail to get ParentPath %s.", parent.c_str());
        parent.append(utl_stream_c::clear_char);
    }
    *state_index = state_unknown;
    unsigned own_state = state_unknown, parent_state = state_unknown;
    std::int64_t own_time = 0, parent_time = 0;
    bool own_flag = false, parent_flag = false;
    bool own_read = _get_state_timestamp(own, &own_state, &own_time, &own_flag);
    bool parent_read = _get_state_timestamp(parent, &parent_state, &parent_time, &parent_flag);
    if (!own_read && !parent_read) return false;
    // The later time wins; a tie goes to the root's own file, whichever read succeeded.
    if (own_time < parent_time) {
        *state_index = parent_state;
        *is_sync_replicated = parent_flag;
    } else {
        *state_index = own_state;
        *is_sync_replicated = own_flag;
    }
    return true;
}

// ---- the writing side

xml_item_c* stats_saver_ex_c::_record_to_write(utl_stream_c& file_path, std::uint32_t host_index,
                                               xml_tree_c& tree) {
    // A state file that can't be read is no obstacle: the writer starts a new record.
    tree.load(file_path.c_str());
    xml_item_c* root = tree.get_root();
    if (!root) {
        root = new xml_item_c("stats_saver");
        tree.attach(root, nullptr, true);
    }
    xml_item_c* record = root->first_child_item();
    if (!record) {
        record = xml_item_c::create_child("Scenario", root);
        record->set_attribute("HostIndex", static_cast<unsigned int>(host_index));
        record->set_attribute("ScenarioID", static_cast<unsigned int>(scenario_id));
        record->set_attribute("ScenarioName", scenario_name.c_str());
    }
    return record;
}

bool stats_saver_ex_c::_save_tree(xml_tree_c& tree) {
    utl_stream_c text;
    tree.write(text, true);
    return _save(text);
}

bool stats_saver_ex_c::_set_state(utl_stream_c& file_path, std::uint32_t host_index, bool run) {
    QVTR_SCOPE(tr, "stats_saver_ex_c::_set_state", source);
    xml_tree_c tree;
    xml_item_c* record = _record_to_write(file_path, host_index, tree);
    labeled_value_c* state = record->find_attribute("State");
    // While a synchronisation is under way a start must not hide it: only the end of the
    // synchronisation turns "Sync" into "Running". A stop is always obeyed.
    if (run && state && os::_stricmp(state->to_text(), state_names[2]) == 0)
        tr.print_nl(QVTR_SUCCESS, __LINE__,
                    "Not need to set the scenario state to run when in sync state sc_id(%lu).",
                    static_cast<unsigned long>(scenario_id));
    else
        record->set_attribute("State", run ? state_names[0] : state_names[1]);
    return _save_tree(tree);
}

bool stats_saver_ex_c::_set_sync_state(utl_stream_c file_path, std::uint32_t host_index,
                                       bool is_sync_replicated, std::int64_t sync_time) {
    xml_tree_c tree;
    xml_item_c* record = _record_to_write(file_path, host_index, tree);
    record->set_attribute("IsSyncReplicated", is_sync_replicated);
    record->set_attribute("State", is_sync_replicated ? state_names[0] : state_names[2]);
    record->set_attribute("IsSyncReplicatedTime", static_cast<long long>(sync_time));
    return _save_tree(tree);
}

bool stats_saver_ex_c::_file_path_of_root_dir(std::uint64_t position, std::uint32_t host_index,
                                              utl_stream_c& file_path) {
    root_dir_c* root_dir = conf ? conf->get_root_dir(position, host_index) : nullptr;
    root_path.append(utl_stream_c::clear_char)
        .append(root_dir && root_dir->path ? root_dir->path : "");
    file_path.append(utl_stream_c::clear_char);
    return _get_file_path(file_path) != nullptr;
}

bool stats_saver_ex_c::set_state(std::uint32_t host_index, bool run) {
    QVTR_SCOPE(tr, "stats_saver_ex_c::set_state", source);
    utl_stream_c file_path;
    if (!per_root_dir) return _get_file_path(file_path) && _set_state(file_path, host_index, run);
    bool result = true;
    // The count is asked again at each pass, as the scenario may change beside the writer.
    for (std::uint64_t i = 0; conf && i < conf->get_root_dir_count(); ++i) {
        if (!_file_path_of_root_dir(i, host_index, file_path)) return false;
        // Once one write has failed, no later root directory is written.
        if (result) result = _set_state(file_path, host_index, run);
    }
    return result;
}

bool stats_saver_ex_c::set_sync_state(std::uint32_t host_index, bool is_sync_replicated,
                                      std::int64_t sync_time) {
    QVTR_SCOPE(tr, "stats_saver_ex_c::set_sync_state", source);
    utl_stream_c file_path;
    // Under the root path the flag starts or stops the scenario and no synchronisation is
    // recorded: only the form for each root directory records one.
    if (!per_root_dir)
        return _get_file_path(file_path) && _set_state(file_path, host_index, is_sync_replicated);
    bool result = true;
    for (std::uint64_t i = 0; conf && i < conf->get_root_dir_count(); ++i) {
        if (!_file_path_of_root_dir(i, host_index, file_path)) return false;
        // A failure under one root directory does not keep the others from being written.
        if (!_set_sync_state(file_path, host_index, is_sync_replicated, sync_time)) result = false;
    }
    return result;
}
