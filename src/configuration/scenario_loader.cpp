#include "configuration/scenario_loader.h"

#include "configuration/scenario_conf.h"
#include "configuration/xmc_enums.h"
#include "configuration/xmc_grammar.h"
#include "configuration/xmc_item.h"
#include "files/file_modif.h"
#include "support/trc.h"
#include "utl/cell_pool.h"
#include "xml/xml_doc.h"
#include "xml/xml_reader.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr const char* source = "scenario_loader";

// The file is read in pieces of this size.
constexpr std::size_t read_chunk = 64 * 1024;

// Where the elements of the top two levels end in the text, so that a fault of the document's
// shape can name its line. Everything else goes to the document's own builder unchanged.
class position_builder_c : public xml_builder_i {
  public:
    position_builder_c(xml_builder_i& inner, const xml_stream_reader_c& reader)
        : _inner(inner), _reader(reader) {}

    void* open_element(std::string_view name, void* parent) override {
        void* element = _inner.open_element(name, parent);
        if (!element) return element;
        if (!parent) {
            root = element;
            root_end = _reader.get_position();
            child_ends.clear();
        } else if (parent == root) {
            child_ends.push_back(_reader.get_position());
        }
        if (every_end) every_end->push_back(_reader.get_position());
        return element;
    }
    void add_attribute(void* element, std::string_view name, std::string_view value) override {
        _inner.add_attribute(element, name, value);
    }
    void set_text(void* element, const char* text) override { _inner.set_text(element, text); }
    void set_closed(void* element) override { _inner.set_closed(element); }
    const char* name_of(void* element) override { return _inner.name_of(element); }

    void* root = nullptr;
    // Just past the start tag of the root, and of each of its children in order.
    std::uint64_t root_end = 0;
    std::vector<std::uint64_t> child_ends;
    // When set: just past the start tag of every element, in document order.
    std::vector<std::uint64_t>* every_end = nullptr;

  private:
    xml_builder_i& _inner;
    const xml_stream_reader_c& _reader;
};

// The line, from 1, of the last byte before `position`: the reader stands just past what it
// has taken, the `>` of a tag or the byte at which it gave up.
std::uint64_t line_before(std::string_view text, std::uint64_t position) {
    std::uint64_t end = position > text.size() ? text.size() : position;
    std::uint64_t line = 1;
    for (std::uint64_t i = 0; i + 1 < end; ++i)
        if (text[i] == '\n') ++line;
    return line;
}

// The `val` of the `Scenario` object's own data item `label`, or null.
const char* own_value(const xml_item_c* scenario, const char* label) {
    xml_item_c* data = xmc_conf_c::find_data_below(scenario, label);
    labeled_value_c* val = data ? data->find_attribute(xmc_n::attr_val) : nullptr;
    return val ? val->to_text() : nullptr;
}

// The position of the item `label` names in the enumeration, or the not-set position (the item
// count) for a missing item or a text that names none.
std::uint32_t position_of(const xml_item_c* scenario, const char* label, std::uint32_t enum_index) {
    std::uint32_t position = xmc_enum_c::find_item(enum_index, own_value(scenario, label));
    if (position != xmc_enum_c::not_found) return position;
    return static_cast<std::uint32_t>(xmc_enums_n::enum_table[enum_index].count);
}

// A failed load: the result and its trace line.
class failure_c {
  public:
    failure_c(qvtr_entry_c& tr, const char* name) : _tr(tr), _name(name ? name : "") {}

    scenario_load_result_s operator()(scenario_load_status_t status, std::uint64_t line,
                                      const char* what, const char* detail = "") {
        scenario_load_result_s result;
        result.status = status;
        result.line = line;
        result.message.append("Scenario file \"").append(_name).append("\"");
        if (line) result.message.append(", line ").append(static_cast<unsigned long long>(line));
        result.message.append(": ").append(what).append(detail);
        _tr.print(QVTR_FAILURE, __LINE__, "%s\n", result.message.c_str());
        return result;
    }

  private:
    qvtr_entry_c& _tr;
    const char* _name;
};

// The item after `item` in document order, into every item's children.
xml_item_c* next_in_document(xml_item_c* item) {
    if (item->first_child) return item->first_child_item();
    while (item && !item->next) item = item->parent_item();
    return item ? item->next_item() : nullptr;
}

// The items of the tree in document order, each with the line on which its start tag ends.
// The tree holds one item per element, made in the order the elements open; a tree that does
// not match the positions keeps no lines at all.
void keep_lines(std::string_view text, xml_item_c* root, const std::vector<std::uint64_t>& ends,
                scenario_item_lines_c& lines) {
    lines.clear();
    std::uint64_t count = 0;
    for (xml_item_c* item = root; item; item = next_in_document(item)) ++count;
    if (count != ends.size()) return;
    std::uint64_t line = 1;
    std::uint64_t scanned = 0;
    std::size_t at = 0;
    for (xml_item_c* item = root; item; item = next_in_document(item), ++at) {
        // The reader stands just past the tag: the tag's last byte is the one before.
        std::uint64_t last = ends[at] ? ends[at] - 1 : 0;
        for (; scanned < last && scanned < text.size(); ++scanned)
            if (text[scanned] == '\n') ++line;
        lines.set(item, line);
    }
}

} // namespace

scenario_load_result_s scenario_loader_n::load_text(scenario_conf_c& scenario, const char* text,
                                                    std::uint64_t length, const char* name,
                                                    scenario_item_lines_c* lines) {
    QVTR_SCOPE(tr, "scenario_loader_n::load_text", source);
    failure_c fail(tr, name);
    std::string_view view(text ? text : "", text ? length : 0);
    if (view.empty()) return fail(scenario_load_status_t::not_xml, 0, "the file is empty");

    auto loaded = std::make_unique<mixed_xmc_xml_tree_c>();
    std::uint64_t root_end = 0;
    std::vector<std::uint64_t> child_ends;
    {
        xml_document_c doc;
        // The items of the load come from pages that die with their last cell.
        cell_pool_c pool;
        xml_stream_reader_c reader(view.data(), view.size());
        reader.set_document(&doc);
        // The reader's elements become the items straight away, with no document nodes between.
        std::unique_ptr<xml_builder_i> items = mixed_xmc_xml_tree_c::make_builder();
        position_builder_c builder(*items, reader);
        std::vector<std::uint64_t> every_end;
        if (lines) builder.every_end = &every_end;
        if (!reader.read_declaration())
            return fail(scenario_load_status_t::not_xml, line_before(view, reader.get_position()),
                        "no XML declaration at the start");
        if (!reader.read_elements(builder, nullptr, false))
            return fail(scenario_load_status_t::not_xml, line_before(view, reader.get_position()),
                        "not well-formed XML");
        loaded->adopt_built(*items, doc);
        if (!loaded->get_root())
            return fail(scenario_load_status_t::not_xml, line_before(view, view.size()),
                        "no element");
        if (lines) keep_lines(view, loaded->get_root(), every_end, *lines);
        root_end = builder.root_end;
        child_ends.swap(builder.child_ends);
    }

    xml_item_c* root = loaded->get_root();
    const xmc_item_c* typed_root = xmc_item_c::as_xmc(root);
    labeled_value_c* root_id = root ? root->find_attribute(xmc_n::attr_id) : nullptr;
    std::uint64_t root_line = line_before(view, root_end);
    // An external holder is none: its content would be no XMC.
    if (!typed_root || typed_root->kind != xmc_n::kind_object ||
        !xmc_tree_n::is_object_labelled(root, holder_label) || !root_id ||
        value_c(*root_id).to_uint64() != holder_id) {
        utl_stream_c tag;
        if (root) root->print_tag(tag);
        return fail(scenario_load_status_t::wrong_root, root_line,
                    "the root is not the object ConfigDataHolder with id 1: ", tag.c_str());
    }

    // The scenario is a direct child of the holder, as the template places it.
    xml_item_c* scenario_item = nullptr;
    std::uint64_t position = 0;
    for (xml_item_c* child = root->first_child_item(); child;
         child = child->next_item(), ++position) {
        if (!xmc_tree_n::is_object_labelled(child, scenario_label)) continue;
        if (scenario_item) {
            std::uint64_t at =
                position < child_ends.size() ? line_before(view, child_ends[position]) : 0;
            return fail(scenario_load_status_t::several_scenarios, at,
                        "a second Scenario object, where a stored scenario holds one");
        }
        scenario_item = child;
    }
    if (!scenario_item)
        return fail(scenario_load_status_t::no_scenario, root_line,
                    "the object ConfigDataHolder holds no Scenario object");

    scenario.clear();
    delete scenario.tree;
    scenario.tree = loaded.release();
    scenario.product = position_of(scenario_item, "Product", xmc_enums_n::enum_product);
    scenario.application = position_of(scenario_item, "Application", xmc_enums_n::enum_application);
    scenario.config_mode = position_of(scenario_item, "ConfigMode", xmc_enums_n::enum_config_mode);
    const char* vetted = own_value(scenario_item, "VettedFailback");
    scenario.vetted_failback = vetted && value_c(vetted).to_bool();
    const char* scenario_id = own_value(scenario_item, "ScenarioID");
    scenario.id = scenario_id ? value_c(scenario_id).to_uint() : 0;

    scenario_load_result_s result;
    result.host_count = scenario._build_host_tree(scenario_item);
    tr.print(QVTR_SUCCESS, __LINE__, "Scenario %u loaded from \"%s\" with %llu hosts\n",
             scenario.id, name ? name : "", static_cast<unsigned long long>(result.host_count));
    return result;
}

scenario_load_result_s scenario_loader_n::load_file(scenario_conf_c& scenario, const char* path,
                                                    scenario_item_lines_c* lines) {
    QVTR_SCOPE(tr, "scenario_loader_n::load_file", source);
    failure_c fail(tr, path);
    if (!path || !*path) return fail(scenario_load_status_t::unreadable, 0, "no file is named");
    FILE_c file;
    if (!file.open(path, "r", nullptr, open_flags_n::read_ahead | open_flags_n::sequential_scan))
        return fail(scenario_load_status_t::unreadable, 0, "the file cannot be opened");
    std::string text;
    std::int64_t size = file.size();
    if (size > 0) text.reserve(static_cast<std::size_t>(size));
    std::unique_ptr<char[]> chunk(new char[read_chunk]);
    for (;;) {
        std::int64_t got = file.read(chunk.get(), static_cast<std::int64_t>(read_chunk));
        if (got < 0) {
            file.close();
            return fail(scenario_load_status_t::unreadable, 0, "the file cannot be read");
        }
        if (got == 0) break;
        text.append(chunk.get(), static_cast<std::size_t>(got));
    }
    file.close();
    return load_text(scenario, text.data(), text.size(), path, lines);
}
