#include "stats_mng/load_order.h"

#include "configuration/conf.h"
#include "configuration/generic_conf.h"
#include "configuration/xmc_cdp.h"
#include "configuration/xmc_enums.h"
#include "files/basic_file.h"
#include "files/fs_info.h"
#include "files/sys_info.h"
#include "stats_mng/stats_saver_ex.h"
#include "support/load_step.h"
#include "support/thl.h"
#include "utl/message_store.h"
#include "utl/utl_stream.h"

#include <array>
#include <mutex>

namespace {

// Built at start-up and torn down at unload, though nothing in the library takes them.
load_step_object_ct<thl_crit_section_c> spare_section[5] = {
    load_step_object_ct<thl_crit_section_c>("a thl_crit_section_c"),
    load_step_object_ct<thl_crit_section_c>("a thl_crit_section_c"),
    load_step_object_ct<thl_crit_section_c>("a thl_crit_section_c"),
    load_step_object_ct<thl_crit_section_c>("a thl_crit_section_c"),
    load_step_object_ct<thl_crit_section_c>("a thl_crit_section_c"),
};
load_step_object_ct<single_writer_multi_reader_c> spare_rw_lock("a single_writer_multi_reader_c");

template <int index> void build_spare_section() { spare_section[index].build(false); }
template <int index> void drop_spare_section() { spare_section[index].drop(); }

// Two empty global streams that nothing in the library takes.
load_step_object_ct<utl_stream_c> spare_stream[2] = {
    load_step_object_ct<utl_stream_c>("an empty global utl_stream_c"),
    load_step_object_ct<utl_stream_c>("an empty global utl_stream_c"),
};
template <int index> void build_spare_stream() { spare_stream[index].build(); }
template <int index> void drop_spare_stream() { spare_stream[index].drop(); }

void build_spare_rw_lock() { spare_rw_lock.build(); }
void drop_spare_rw_lock() { spare_rw_lock.drop(); }

// Kept by hand, in the order of the numbers; steps of layers not built yet are absent.
const load_order_n::step_s table[] = {
    {1, "the process-wide open-handle counter", start_open_handle_counter,
     stop_open_handle_counter},
    {2, "the critical section around the drive list", file_system_info_n::start_drive_list_lock,
     file_system_info_n::stop_drive_list_lock},
    {3, "the sys_info_c instance", start_sys_info, stop_sys_info},
    {4, "the critical section serialising stats_saver_ex_c::_save",
     stats_saver_ex_n::start_save_section, stats_saver_ex_n::stop_save_section},
    {5, "a thl_crit_section_c", build_spare_section<0>, drop_spare_section<0>},
#if !defined(STATS_MNG_WITHOUT_GENERIC_CONF) // the benchmark's library that leaves it out
    {6, "the generic configurator", generic_conf_n::start_generic_conf,
     generic_conf_n::stop_generic_conf},
#endif
    {7, "the table of host data fields", xmc_enums_n::complete_group_host_data_table, nullptr},
    {8, "the cdp_conf_creator_c instance", external_objects_n::start_cdp_creator,
     external_objects_n::stop_cdp_creator},
    {9, "the list of creators", conf_fabric_n::start_fabric, conf_fabric_n::stop_fabric},
    {10, "the db_conf_creator_c instance", external_objects_n::start_db_creator,
     external_objects_n::stop_db_creator},
    {11, "an empty global utl_stream_c", build_spare_stream<0>, drop_spare_stream<0>},
    {12, "a thl_crit_section_c", build_spare_section<1>, drop_spare_section<1>},
    {13, "a thl_crit_section_c", build_spare_section<2>, drop_spare_section<2>},
    {14, "the message store", message_store_c::start, message_store_c::stop},
    {15, "a second empty global utl_stream_c", build_spare_stream<1>, drop_spare_stream<1>},
    {16, "the severity table", message_tables_n::start_severity_table,
     message_tables_n::stop_severity_table},
    {17, "the scenario activity table", message_tables_n::start_activity_table,
     message_tables_n::stop_activity_table},
    {18, "the source table", message_tables_n::start_source_table,
     message_tables_n::stop_source_table},
    {20, "a thl_crit_section_c", build_spare_section<3>, drop_spare_section<3>},
    {22, "a single_writer_multi_reader_c", build_spare_rw_lock, drop_spare_rw_lock},
    {26, "a thl_crit_section_c", build_spare_section<4>, drop_spare_section<4>},
};

// The journal and its count stay trivially destructible, like everything the steps use: the
// shared library stops from a static destructor, after which nothing here may have gone.
std::mutex journal_mutex;
std::array<int, 4096> run_journal;
std::size_t journal_length = 0;
std::size_t steps_started = 0;

void record(int entry) {
    std::lock_guard<std::mutex> hold(journal_mutex);
    // A process that starts and stops more often than the journal holds keeps the first entries.
    if (journal_length < run_journal.size()) run_journal[journal_length++] = entry;
}

} // namespace

std::span<const load_order_n::step_s> load_order_n::steps() { return table; }

void load_order_n::start_all() {
    for (; steps_started < std::size(table); ++steps_started) {
        const step_s& step = table[steps_started];
        step.start();
        record(step.order);
    }
}

void load_order_n::stop_all() {
    for (; steps_started > 0; --steps_started) {
        const step_s& step = table[steps_started - 1];
        if (step.stop) step.stop();
        record(-step.order);
    }
}

bool load_order_n::started() { return steps_started == std::size(table); }

std::vector<int> load_order_n::journal() {
    std::lock_guard<std::mutex> hold(journal_mutex);
    return std::vector<int>(run_journal.begin(),
                            run_journal.begin() + static_cast<std::ptrdiff_t>(journal_length));
}
