// The loader of stored scenarios. A stored scenario is an XMC document whose root is the object
// `ConfigDataHolder` with id 1, holding one `Scenario` object. The loader puts the document into
// a scenario_conf_c's tree, sets the fields that validation reads from the `Scenario` object's
// own data (`Product`, `Application`, `ConfigMode`, `VettedFailback`, and the id from
// `ScenarioID`), and builds the host index. A document that can't be read or isn't a stored
// scenario leaves the scenario as it was and says why, with the line of the file where there
// is one.
#pragma once

#include "utl/utl_stream.h"

#include <cstdint>
#include <unordered_map>

class scenario_conf_c;
class xml_item_c;

// Where each item of a loaded scenario stands in its file: the line, from 1, on which the item's
// start tag ends. Filled by a load that is given one, for tools that point into the file.
class scenario_item_lines_c {
  public:
    // 0 for an item the load did not make.
    std::uint64_t line_of(const xml_item_c* item) const {
        auto found = _lines.find(item);
        return found == _lines.end() ? 0 : found->second;
    }
    void clear() { _lines.clear(); }
    void set(const xml_item_c* item, std::uint64_t line) { _lines[item] = line; }

  private:
    std::unordered_map<const xml_item_c*, std::uint64_t> _lines;
};

// How a load ended.
enum class scenario_load_status_t : std::uint32_t {
    loaded = 0,
    unreadable = 1,        // the file could not be opened or read
    not_xml = 2,           // the text is not a well-formed XML document
    wrong_root = 3,        // the root is not the object ConfigDataHolder with id 1
    no_scenario = 4,       // the root holds no `Scenario` object
    several_scenarios = 5, // the root holds more than one
};

struct scenario_load_result_s {
    bool ok() const { return status == scenario_load_status_t::loaded; }

    scenario_load_status_t status = scenario_load_status_t::loaded;
    // What went wrong, naming the file; empty after a load.
    utl_stream_c message;
    // The line of the file that the message is about, from 1; 0 where no line is at fault.
    std::uint64_t line = 0;
    // After a load: the number of hosts entered in the index.
    std::uint64_t host_count = 0;
};

namespace scenario_loader_n {

// The labels and id that make a stored scenario.
inline constexpr const char* holder_label = "ConfigDataHolder";
inline constexpr std::uint32_t holder_id = 1;
inline constexpr const char* scenario_label = "Scenario";

// Loads the stored scenario in the file `path` (UTF-8, forward or back slashes) into
// `scenario`. On success the scenario is cleared first and then holds the new tree, fields
// and host index; external objects made from an earlier tree stay, as clear leaves them, so a
// scenario is best loaded once, before it is shared (the load takes no lock).
// With `lines`, the line of every item is kept there as well.
scenario_load_result_s load_file(scenario_conf_c& scenario, const char* path,
                                 scenario_item_lines_c* lines = nullptr);
// The same from the first `length` bytes of `text`; `name` stands for the file in messages.
scenario_load_result_s load_text(scenario_conf_c& scenario, const char* text, std::uint64_t length,
                                 const char* name, scenario_item_lines_c* lines = nullptr);

} // namespace scenario_loader_n
