#include "stats_mng/stats_saver.h"

#include "files/file.h"
#include "files/file_manipulation.h"
#include "files/file_modif.h"
#include "files/file_properties.h"
#include "support/trc.h"
#include "xml/xml_tree_templ.h"

namespace {
constexpr const char* source = "stats_saver";
constexpr unsigned writer_flags = open_flags_n::share_reads_only;
constexpr unsigned reader_flags = 0; // share everything
// The attribute word of a hidden plain object (130), as the engine hides its state directories.
constexpr std::uint32_t hidden_plain = os::FILE_ATTRIBUTE_NORMAL | os::FILE_ATTRIBUTE_HIDDEN;

// "<root>/<dir_name>" in `out`, the root in its normal form; null for an empty root.
const char* state_dir_path(const utl_stream_c& root, const char* dir_name, utl_stream_c& out) {
    out.append(utl_stream_c::clear_char);
    if (root.get_length() == 0) return nullptr;
    char buffer[path_n::path_buffer_size] = {};
    path_n::standard_dir_path(root.c_str(), buffer, true);
    out.append(buffer);
    // A drive root such as "C:/" already ends with its separator.
    if (!out.ends_with("/", true)) out.append(utl_stream_c::clear_char).append(buffer).append("/");
    out.append(dir_name);
    return out.c_str();
}

} // namespace

stats_saver_lock_c::stats_saver_lock_c(const char* scenario_path) : path(scenario_path) {}

stats_saver_lock_c::~stats_saver_lock_c() {
    if (file) file->close();
}

const char* stats_saver_lock_c::_get_dir_path(utl_stream_c& out) {
    return state_dir_path(path, StateDirName, out);
}

void stats_saver_lock_c::init() {
    _get_dir_path(dir_path);
    if (!file_manipulation_n::if_exists(dir_path.c_str(), nullptr)) {
        file_manipulation_n::create_directory(dir_path.c_str(), false);
        file_prop_access_c properties;
        file_mode_c mode;
        mode.set_hostmode(hidden_plain);
        properties.set_mode_to_disk(dir_path.c_str(), mode);
    }
    lock_file_path.append(dir_path).append("/state.lock");
}

bool stats_saver_lock_c::lock(bool writer) {
    QVTR_SCOPE(tr, "stats_saver_lock_c::lock", source);
    if (file) {
        file->close();
        file.reset();
    }
    is_writer = writer;
    file = std::make_unique<FILE_c>();
    if (writer) {
        if (!file->open(lock_file_path.c_str(), "w+", nullptr, writer_flags)) {
            tr.print_nl(QVTR_FAILURE, __LINE__, "Fail to open the lock file %s for writer lock.",
                        lock_file_path.c_str());
            return false;
        }
    } else if (!file->open(lock_file_path.c_str(), "r", nullptr, reader_flags)) {
        tr.print_nl(QVTR_FAILURE, __LINE__, "Fail to open the lock file %s for reader lock.",
                    lock_file_path.c_str());
        return false;
    }
    return true;
}

// ---- stats_saver_c

const char* stats_saver_c::_get_dir_path(utl_stream_c& out) {
    return state_dir_path(root_path, state_dir_name.c_str(), out);
}

const char* stats_saver_c::_get_file_path(utl_stream_c& out) {
    if (!_get_dir_path(out)) return nullptr;
    out.append("/").append(static_cast<unsigned long long>(scenario_id)).append("_stats.xml");
    return out.c_str();
}

bool stats_saver_c::set_sync_state(std::uint32_t host_index, bool is_sync_replicated,
                                   std::int64_t sync_time) {
    utl_stream_c file_path;
    if (!_get_file_path(file_path)) return false;
    // A missing or broken record is not an error: a new one is started.
    xml_tree_c tree;
    tree.load(file_path.c_str());
    xml_item_c* root = tree.get_root();
    if (!root) {
        root = new xml_item_c("stats_saver");
        tree.attach(root, nullptr, true);
    }
    root->set_attribute("ScenarioID", static_cast<unsigned int>(scenario_id));
    xml_item_c* record = nullptr;
    for (xml_item_c* child = root->first_child_item(); child && !record;
         child = child->next_item()) {
        labeled_value_c* index = child->find_attribute("HostIndex");
        if (index && index->to_uint64() == host_index && !index->get_error()) record = child;
    }
    if (!record) {
        record = xml_item_c::create_child("host", root);
        record->set_attribute("HostIndex", static_cast<unsigned int>(host_index));
    }
    record->set_attribute("IsSyncReplicated", is_sync_replicated);
    record->set_attribute("IsSyncReplicatedTime", static_cast<long long>(sync_time));
    utl_stream_c text;
    tree.write(text, true);
    return _save(text);
}

// The old file goes first, whatever happens after; a failure before the write loses it.
bool stats_saver_c::_save(utl_stream_c& text) {
    utl_stream_c file_path;
    if (!_get_file_path(file_path)) return false;
    file_manipulation_n::remove_path(file_path.c_str(), nullptr, nullptr);
    file_manipulation_n::create_directory(file_path.c_str(), true);
    _hide_state_dir();
    return _write_text(file_path.c_str(), text);
}

void stats_saver_c::_hide_state_dir() {
    utl_stream_c dir;
    if (!_get_dir_path(dir)) return;
    file_prop_access_c properties;
    file_mode_c mode;
    mode.set_hostmode(hidden_plain);
    properties.set_mode_to_disk(dir.c_str(), mode);
}

bool stats_saver_c::_write_text(const char* file_path, utl_stream_c& text) {
    FILE_c file;
    if (!file.open(file_path, "w", nullptr, open_flags_n::write_through)) return false;
    return file.write(text.c_str(), static_cast<std::int64_t>(text.get_length())) ==
           static_cast<std::int64_t>(text.get_length());
}
