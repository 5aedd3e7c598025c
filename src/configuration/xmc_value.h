// xmc_value_c: a setting as it travels through the configuration's interface. The text and its
// numeric reading come from value_c; beside them a value may hold a list of strings (a
// MultiEntry's entries), the words of the last failed conversion, and the name of its type.
// Conversions never throw: the caller gets 0 or the not-set position, the error flag, and the
// words in error_text.
#pragma once

#include "utl/container.h"
#include "utl/container_temp.h"
#include "utl/utl_stream.h"
#include "utl/value.h"

#include <cstdint>

// The entries of a list value; `valid` is cleared by whoever finds the list unusable, and a
// list that is not valid reads as the empty string.
class xmc_string_array_c : public string_array_c {
  public:
    xmc_string_array_c() = default;
    // A copy of every non-null entry, and of `valid`.
    xmc_string_array_c(const xmc_string_array_c& other);
    xmc_string_array_c& operator=(const xmc_string_array_c&) = delete;

    // Frees every string, last to first, and makes the list valid again.
    void clear() override;
    virtual bool is_valid() const { return valid != 0; }

    std::uint8_t valid = 1;
};

class xmc_value_c : public value_c {
  public:
    // Undefined, with the error flag set and an empty text.
    xmc_value_c();
    // Text, number, kind, type name and a deep copy of the list; the error flag is set in the
    // copy whatever the source's, and lookup_failed and error_text start clear.
    xmc_value_c(const xmc_value_c& other);
    explicit xmc_value_c(std::int32_t value);
    // Signed below 2^63, unsigned from there.
    explicit xmc_value_c(unsigned long long value);
    explicit xmc_value_c(const char* text);
    // As the copy: the error flag ends up set, and error_text and lookup_failed clear.
    xmc_value_c& operator=(const xmc_value_c& other);

    // The operations of value_c, in its order; the conversion to signed char is value_c's own.
    void set_text(const char* text) override;
    ~xmc_value_c() override;
    bool to_bool() override;
    char to_char() override;
    std::int16_t to_short() override;
    std::uint16_t to_ushort() override;
    std::int32_t to_int() override;
    std::uint32_t to_uint() override;
    std::int32_t to_long() override;
    std::uint32_t to_ulong() override;
    std::int64_t to_int64() override;
    std::uint64_t to_uint64() override;
    // With a list: its entries joined with ", ", which becomes the value's text and ends the
    // list form; an invalid list reads as "".
    const char* to_text() override;
    void clear() override;

    // Positions in the enumerations; a text that is no item gives the not-set position.
    virtual std::uint32_t to_product();
    virtual std::uint32_t to_application();
    virtual std::uint32_t to_config_mode();
    virtual std::uint32_t to_replication_mode();
    virtual std::uint32_t to_bandwidth();
    virtual std::uint32_t to_host_task();
    virtual std::uint32_t to_schedule();
    virtual std::uint32_t to_synchronization_type();
    virtual std::uint32_t to_virtual_hard_disk_type();
    virtual std::uint32_t to_virtual_platform_type();
    virtual std::uint32_t to_cloud_instance_type();
    virtual std::uint32_t to_secure_communication_level();
    // Same to-string texts.
    virtual bool equals(xmc_value_c& other);

    // The configuration could not find or read a setting: error_text holds `reason` alone.
    void report_lookup_failure(const char* reason);

    xmc_string_array_c* strings = nullptr;
    utl_stream_c error_text;
    std::uint8_t lookup_failed = 0;
    const char* type_name = nullptr; // not owned

  private:
    // The shared tail of the ranged conversions: the words on failure, or an empty error_text.
    std::int64_t _ranged(std::int64_t low, std::int64_t high, const char* target,
                         bool always_too_big, bool reads_addresses);
    void _append_failure(const char* target, const char* clause);
    std::uint32_t _to_position(std::uint32_t enum_index);
};

// value_list_ct<xmc_value_c>, the list of the configuration objects' multi-valued settings,
// searches with ==: equals, which only formats the texts it compares.
inline bool operator==(const xmc_value_c& a, const xmc_value_c& b) {
    return const_cast<xmc_value_c&>(a).equals(const_cast<xmc_value_c&>(b));
}
