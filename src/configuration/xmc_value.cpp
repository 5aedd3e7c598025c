#include "configuration/xmc_value.h"

#include "configuration/xmc_enums.h"
#include "support/thl.h"
#include "utl/utl.h"

#include <cstring>
#include <limits>

using namespace xmc_enums_n;

namespace {

constexpr const char* too_big = ", input value is too big";

// The list's entries, the copy's own strings.
xmc_string_array_c* copy_of(const xmc_string_array_c* list) {
    return list ? new xmc_string_array_c(*list) : nullptr;
}

} // namespace

// ---- xmc_string_array_c -----------------------------------------------------------------------

xmc_string_array_c::xmc_string_array_c(const xmc_string_array_c& other)
    : string_array_c(other), valid(other.valid) {}

void xmc_string_array_c::clear() {
    string_array_c::clear();
    valid = 1;
}

// ---- construction -----------------------------------------------------------------------------

xmc_value_c::xmc_value_c() = default;

// The base's copy carries the error flag over; a copied value reports on its first conversion
// whatever the source's state, so the flag is set here.
xmc_value_c::xmc_value_c(const xmc_value_c& other)
    : value_c(other), strings(copy_of(other.strings)), type_name(other.type_name) {
    _error = true;
}

xmc_value_c::xmc_value_c(std::int32_t value) : value_c(static_cast<int>(value)) {}

xmc_value_c::xmc_value_c(unsigned long long value) : value_c(value) {}

xmc_value_c::xmc_value_c(const char* text) : value_c(text ? text : "") {}

xmc_value_c& xmc_value_c::operator=(const xmc_value_c& other) {
    if (this == &other) return *this;
    value_c::operator=(other);
    delete strings;
    strings = copy_of(other.strings);
    type_name = other.type_name;
    _error = true;
    error_text.append(utl_stream_c::clear_char);
    lookup_failed = 0;
    return *this;
}

xmc_value_c::~xmc_value_c() { delete strings; }

void xmc_value_c::set_text(const char* text) {
    delete strings;
    strings = nullptr;
    value_c::set_text(text);
}

// ---- failure words ----------------------------------------------------------------------------

void xmc_value_c::_append_failure(const char* target, const char* clause) {
    // The text is taken first: to_text may format the number into the text buffer.
    const char* text = to_text();
    error_text.append("Unable to convert \"").append(text).append("\" to ").append(target);
    if (clause) error_text.append(clause);
}

std::int64_t xmc_value_c::_ranged(std::int64_t low, std::int64_t high, const char* target,
                                  bool always_too_big, bool reads_addresses) {
    std::int64_t result = _in_range(low, high);
    if (!_error) {
        error_text.append(utl_stream_c::clear_char);
        return result;
    }
    // A dotted IPv4 address reads as an unsigned number, the first field in the high byte.
    if (reads_addresses) {
        const char* text = to_text();
        if (text[0] >= '0' && text[0] <= '9') {
            if (std::uint32_t address = utl_n::string_to_ip(text)) {
                _error = false;
                error_text.append(utl_stream_c::clear_char);
                return address;
            }
        }
    }
    // Kind 2 at this point means a number that was read but lies out of range (or a stale flag
    // on a number in range, which is returned and still reported).
    bool big = always_too_big || _type == type_signed;
    _append_failure(target, big ? too_big : nullptr);
    return result;
}

// ---- the conversions of value_c ---------------------------------------------------------------

bool xmc_value_c::to_bool() {
    bool result = value_c::to_bool();
    if (_error)
        _append_failure("bool", nullptr);
    else
        error_text.append(utl_stream_c::clear_char);
    return result;
}

char xmc_value_c::to_char() { return static_cast<char>(_ranged(-128, 127, "char", false, false)); }

std::int16_t xmc_value_c::to_short() {
    return static_cast<std::int16_t>(_ranged(-32768, 32767, "short", false, false));
}

std::uint16_t xmc_value_c::to_ushort() {
    return static_cast<std::uint16_t>(_ranged(0, 65535, "unsigned short", false, false));
}

std::int32_t xmc_value_c::to_int() {
    return static_cast<std::int32_t>(_ranged(std::numeric_limits<std::int32_t>::min(),
                                             std::numeric_limits<std::int32_t>::max(), "int", false,
                                             false));
}

std::uint32_t xmc_value_c::to_uint() {
    return static_cast<std::uint32_t>(
        _ranged(0, std::numeric_limits<std::uint32_t>::max(), "unsigned int", false, true));
}

// Unlike the conversion to int, every failure here says the value is too big; callers have
// always seen it so.
std::int32_t xmc_value_c::to_long() {
    return static_cast<std::int32_t>(_ranged(std::numeric_limits<std::int32_t>::min(),
                                             std::numeric_limits<std::int32_t>::max(), "long", true,
                                             false));
}

std::uint32_t xmc_value_c::to_ulong() {
    return static_cast<std::uint32_t>(
        _ranged(0, std::numeric_limits<std::uint32_t>::max(), "unsigned long", false, true));
}

std::int64_t xmc_value_c::to_int64() {
    std::int64_t result = value_c::to_int64();
    if (_error)
        _append_failure("__int64", nullptr);
    else
        error_text.append(utl_stream_c::clear_char);
    return result;
}

std::uint64_t xmc_value_c::to_uint64() {
    std::uint64_t result = value_c::to_uint64();
    if (_error)
        _append_failure("__uint64", nullptr);
    else
        error_text.append(utl_stream_c::clear_char);
    return result;
}

const char* xmc_value_c::to_text() {
    if (!strings) return value_c::to_text();
    if (!strings->is_valid()) return "";
    utl_stream_c joined;
    for (std::uint64_t i = 0; i < strings->get_count(); ++i) {
        if (i) joined.append(", ");
        const char* entry = strings->at(i);
        joined.append(entry ? entry : "");
    }
    set_text(joined.c_str() ? joined.c_str() : "");
    return _text ? _text : "";
}

// The list is emptied, not dropped: a value that was a list stays one.
void xmc_value_c::clear() {
    if (strings) strings->clear();
    if (_text) _text[0] = 0;
    _number = 0;
    _type = type_undefined;
    _error = true;
    error_text.append(utl_stream_c::clear_char);
    lookup_failed = 0;
    type_name = nullptr;
}

// ---- positions --------------------------------------------------------------------------------

std::uint32_t xmc_value_c::_to_position(std::uint32_t enum_index) {
    std::uint32_t position = xmc_enum_c::find_item(enum_index, to_text());
    if (position != xmc_enum_c::not_found) {
        error_text.append(utl_stream_c::clear_char);
        return position;
    }
    _append_failure(xmc_enum_c::enum_name(enum_index), nullptr);
    return static_cast<std::uint32_t>(enum_table[enum_index].count);
}

std::uint32_t xmc_value_c::to_product() { return _to_position(enum_product); }
std::uint32_t xmc_value_c::to_application() { return _to_position(enum_application); }
std::uint32_t xmc_value_c::to_config_mode() { return _to_position(enum_config_mode); }
std::uint32_t xmc_value_c::to_replication_mode() { return _to_position(enum_replication_mode); }
std::uint32_t xmc_value_c::to_bandwidth() { return _to_position(enum_bandwidth); }
std::uint32_t xmc_value_c::to_host_task() { return _to_position(enum_host_task); }
std::uint32_t xmc_value_c::to_schedule() { return _to_position(enum_schedule); }
std::uint32_t xmc_value_c::to_synchronization_type() {
    return _to_position(enum_synchronization_type);
}
std::uint32_t xmc_value_c::to_virtual_hard_disk_type() {
    return _to_position(enum_virtual_hard_disk_type);
}
std::uint32_t xmc_value_c::to_virtual_platform_type() {
    return _to_position(enum_virtual_platform_type);
}
std::uint32_t xmc_value_c::to_cloud_instance_type() {
    return _to_position(enum_cloud_instance_type);
}
std::uint32_t xmc_value_c::to_secure_communication_level() {
    return _to_position(enum_secure_communication_level);
}

bool xmc_value_c::equals(xmc_value_c& other) {
    if (this == &other) return true;
    // The first text may live in a buffer that the second call reformats; compare a copy.
    utl_stream_c mine(to_text());
    return std::strcmp(mine.c_str() ? mine.c_str() : "", other.to_text()) == 0;
}

void xmc_value_c::report_lookup_failure(const char* reason) {
    lookup_failed = 1;
    error_text.append(utl_stream_c::clear_char).append(reason ? reason : "");
}
