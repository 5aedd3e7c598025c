#include "new_scenario_command.h"

#include "configuration/generic_conf.h"
#include "configuration/xmc_enums.h"
#include "configuration/xmc_item.h"
#include "utl/utl_stream.h"

#include <cstdio>
#include <cstring>
#include <string>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#endif

namespace {

constexpr std::uint32_t scenario_row = 0; // `Scenario` in object_tag_table

int fail(const std::string& message) {
    std::fprintf(stderr, "stats_tool: %s\n", message.c_str());
    return exit_error;
}

// The items of an enumeration, for a message: "Dr, Ha, Cd, Rw".
std::string items_of(std::uint32_t enum_index) {
    std::string list;
    const xmc_enum_c& record = xmc_enums_n::enum_table[enum_index];
    for (std::uint32_t i = 0; i < record.count; ++i)
        list += (i ? ", " : "") + std::string(record.items[i].name);
    return list;
}

} // namespace

int run_new_scenario_command(const invocation_s& call) {
    std::string product_name, application_name;
    bool vetted_failback = false, have_product = false, have_application = false;
    const std::vector<std::string>& args = call.args;
    for (std::size_t i = 0; i < args.size(); ++i) {
        bool takes_value = args[i] == "--product" || args[i] == "--application";
        if (takes_value && i + 1 >= args.size())
            return usage_error(call, "missing value after " + args[i]);
        if (args[i] == "--product") {
            product_name = args[++i];
            have_product = true;
        } else if (args[i] == "--application") {
            application_name = args[++i];
            have_application = true;
        } else if (args[i] == "--vetted-failback") {
            vetted_failback = true;
        } else if (is_option(args[i])) {
            return usage_error(call, "unknown option '" + args[i] + "'");
        } else {
            return usage_error(call, "unexpected argument '" + args[i] + "'");
        }
    }
    if (!have_product) return usage_error(call, "missing --product");
    if (!have_application) return usage_error(call, "missing --application");
    std::uint32_t product = xmc_enum_c::find_item(xmc_enums_n::enum_product, product_name.c_str());
    if (product == xmc_enum_c::not_found)
        return fail("unknown product '" + product_name + "'; the products are " +
                    items_of(xmc_enums_n::enum_product));
    std::uint32_t application =
        xmc_enum_c::find_item(xmc_enums_n::enum_application, application_name.c_str());
    if (application == xmc_enum_c::not_found)
        return fail("unknown application '" + application_name + "'; the applications are " +
                    items_of(xmc_enums_n::enum_application));

    generic_conf_c* conf = the_generic_conf();
    const xmc_item_c* holder = conf ? xmc_item_c::as_xmc(conf->tree->get_root()) : nullptr;
    if (!holder) return fail("the generic configurator was not built (its trace tells why)");
    xmc_item_c* scenario =
        generic_conf_c::get_default_object(scenario_row, product, application, vetted_failback);
    if (!scenario) return fail("the template has no Scenario object");

    // The template's root with its own settings (the document's `Version`), then the scenario;
    // the definitions stay in the template.
    mixed_xmc_xml_tree_c document;
    auto* root = new xmc_item_c(*holder, false);
    document.attach(root, nullptr, true);
    for (xml_item_c* child = holder->first_child_item(); child; child = child->next_item()) {
        const xmc_item_c* typed = xmc_item_c::as_xmc(child);
        if (typed && typed->kind == xmc_n::kind_data)
            document.attach(new xmc_item_c(*typed, true), root, true);
    }
    document.attach(scenario, root, true);

    utl_stream_c text;
    document.write(text, true);
#if defined(_WIN32)
    // A text-mode stream would write each line feed as two bytes.
    _setmode(_fileno(stdout), _O_BINARY);
#endif
    const char* bytes = text.c_str() ? text.c_str() : "";
    std::size_t length = std::strlen(bytes);
    if (std::fwrite(bytes, 1, length, stdout) != length || std::fflush(stdout) != 0)
        return fail("the scenario could not be written");
    return exit_yes;
}
