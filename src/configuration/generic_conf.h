// The generic configurator: one process-wide generic_conf_c, built at start-up from the built-in
// template. Its tree is the whole template, with pointers to the template's landmarks. Building
// it is the library's self-test: the template and the code tables (xmc_enums.h) must say the
// same, and every disagreement leaves a trace line. Once built it is the source of default
// objects: get_default_object copies a part of the template and specialises it for a product,
// an application and the `VettedFailback` flag, which is how scenario_conf_c::reload_object
// renews one object of a scenario.
//
// The state queries do not need it: a failed build leaves the global pointer null, traces the
// failure and nothing else stops.
#pragma once

#include "configuration/scenario_conf.h"
#include "configuration/xmc_enums.h"
#include "configuration/xmc_item.h"

#include <cstdint>
#include <span>

class generic_conf_c : public scenario_conf_c {
  public:
    generic_conf_c();
    ~generic_conf_c() override;

    // A new copy of the default of object row `row` of object_tag_table, specialised for the
    // product and application positions and the flag; the caller owns it. Null when there is
    // no source for the row or no configurator. No lock: the configurator's tree does not change
    // after the build, and the copy is private.
    static xmc_item_c* get_default_object(std::uint32_t row, std::uint32_t product,
                                          std::uint32_t application, bool vetted_failback);

    // The global instance filled from the built-in template.
    static bool _fill_content();
    // This instance filled from the text of `lines` (an array ended by an empty line) and
    // checked against the code's tables; false after the trace lines of every fault.
    bool _fill_content(const char* const* lines);

    // The defaults of an instance on `item`'s descendants: the `variable` values of
    // `Application`, `Product` and `VettedFailback` become the current ones, each applying
    // `switch_to_set_default` changes its parent's value or status, and every switch goes.
    void _set_appl_prod_defaults(xml_item_c* item, std::uint32_t product, std::uint32_t application,
                                 bool vetted_failback);
    // The conditions of an instance on `item`'s descendants: each `relevant` and `irrelevant`
    // goes, and with it the parent when the condition says so. `item` itself is only emptied.
    static void _remove_irrelevant_items(xml_item_c* item, std::uint32_t product,
                                         std::uint32_t application, bool vetted_failback);

    // The template's `enum` list against the code's enumerations.
    bool _check_array_enums();
    // The object table, the row numbers of the setting tables, and the shape of every data item.
    bool _check_tables_consistentcy();
    // object_tag_table in itself, and every object of the template against its row.
    bool _check_object_tag_table();
    bool _check_object_tag_table(std::span<const xmc_enums_n::object_tag_s> rows);
    // The row numbers of scenario_data_table and host_data_table.
    static bool _check_scen_data_tables();
    static bool _check_scen_data_tables(std::span<const xmc_enums_n::scenario_data_s> scenario_rows,
                                        std::span<const xmc_enums_n::host_data_s> host_rows);

    xml_item_c* objects_item = nullptr;       // the `objects` element
    xml_item_c* enums_item = nullptr;         // the `enums` element
    xml_item_c* scenario_item = nullptr;      // the object labelled `Scenario`
    std::uint32_t xmc_version = 0;            // `val` of `XMC_VersionNumber`
    std::uint32_t group_version = 0;          // `val` of `Group_VersionNumber`
    xml_item_c* group_item = nullptr;         // the object labelled `Group`
    xml_item_c* scenario_info_item = nullptr; // the object labelled `ScenarioInfo`
};

// The object of start-up step 6. Its constructor builds the global configurator from the
// built-in template and traces the outcome; its destructor deletes the configurator.
class generic_conf_builder_c {
  public:
    generic_conf_builder_c();
    ~generic_conf_builder_c();
    generic_conf_builder_c(const generic_conf_builder_c&) = delete;
    generic_conf_builder_c& operator=(const generic_conf_builder_c&) = delete;
};

// The global configurator: null when the build failed. Said loudly when start-up step 6 never
// ran.
generic_conf_c* the_generic_conf();

namespace generic_conf_n {

// The builder's work on any line array, for a configurator that is not the global one: a new
// configurator filled from `lines`, or null after the failure line.
generic_conf_c* build(const char* const* lines);

// Start-up step 6, and its undoing at unload.
void start_generic_conf();
void stop_generic_conf();

} // namespace generic_conf_n
