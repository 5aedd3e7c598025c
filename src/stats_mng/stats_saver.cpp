#include "stats_mng/stats_saver.h"

#include "files/file.h"
#include "files/file_manipulation.h"
#include "files/file_modif.h"
#include "files/file_properties.h"
#include "support/trc.h"

namespace {
constexpr const char* source = "stats_saver";
constexpr unsigned writer_flags = 0x100; // share reads only
constexpr unsigned reader_flags = 0;     // share everything
// The attribute word of a hidden plain object, as the engine hides its state directories.
constexpr std::uint32_t hidden_plain = 130;
} // namespace

stats_saver_lock_c::stats_saver_lock_c(const char* scenario_path) : path(scenario_path) {}

stats_saver_lock_c::~stats_saver_lock_c() {
    if (file) {
        file->close();
        delete file;
    }
}

const char* stats_saver_lock_c::_get_dir_path(utl_stream_c& out) {
    out.append(utl_stream_c::clear_char);
    if (path.get_length() == 0) return nullptr;
    char buffer[path_n::path_buffer_size] = {};
    path_n::standard_dir_path(path.c_str(), buffer, true);
    out.append(buffer);
    // A drive root such as "C:/" already ends with its separator.
    if (!out.ends_with("/", true)) out.append(utl_stream_c::clear_char).append(buffer).append("/");
    out.append(StateDirName);
    return out.c_str();
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
        delete file;
        file = nullptr;
    }
    is_writer = writer;
    file = new FILE_c;
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
