// value_c: a text and a 64-bit number side by side, with a tag saying which one is authoritative
// and an error flag that conversions leave for the caller. A value read as text becomes a number
// the first time it is used as one. labeled_value_c adds a label: it is an XML attribute.
#pragma once

#include "utl/utl_stream.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

class ptr_list_c;

class value_c {
  public:
    enum type_t : std::int32_t {
        type_undefined = 0,
        type_string = 1,
        type_signed = 2,   // also every value below 0x8000000000000000
        type_unsigned = 3, // 0x8000000000000000 and above
        type_bool = 4,
    };

    value_c();
    explicit value_c(const char* text);
    explicit value_c(bool value);
    explicit value_c(char value);
    explicit value_c(short value);
    explicit value_c(int value);
    explicit value_c(long value);
    explicit value_c(long long value);
    explicit value_c(unsigned short value);
    explicit value_c(unsigned int value);
    explicit value_c(unsigned long value);
    explicit value_c(unsigned long long value);
    value_c(const value_c& other);
    value_c& operator=(const value_c& other);
    value_c& operator=(bool value);
    value_c& operator=(unsigned long long value);

    // Only the text half of a setter: tag and number stay as they are.
    virtual void set_text(const char* text);
    virtual ~value_c();
    virtual bool to_bool();
    virtual char to_char();
    virtual signed char to_schar();
    virtual std::int16_t to_short();
    virtual std::uint16_t to_ushort();
    virtual std::int32_t to_int();
    virtual std::uint32_t to_uint();
    virtual std::int32_t to_long();
    virtual std::uint32_t to_ulong();
    virtual std::int64_t to_int64();
    virtual std::uint64_t to_uint64();
    virtual const char* to_text();
    virtual void clear();

    // The length of the text form, without changing the value.
    std::uint64_t get_text_length() const;
    // The text form equals `text` (null counts as empty), byte for byte.
    bool equals_text(const char* text);

    // Whole-value setters, as an item changes an attribute in place: text, number and tag
    // together, and the error flag cleared. The unsigned form tags by range.
    void set_string(const char* text);
    void set_signed(std::int64_t value) { _set_signed(value); }
    void set_unsigned(std::uint64_t value) { _set_unsigned(value); }
    void set_bool(bool value) { _set_bool(value); }

    type_t get_type() const { return _type; }
    bool get_error() const { return _error; }
    void clear_error() { _error = false; }
    // Marks the value as failed and leaves its text as it is, for a caller that reports why.
    void set_error() { _error = true; }

  protected:
    void _set_signed(std::int64_t value);
    void _set_unsigned(std::uint64_t value);
    void _set_bool(bool value);
    // set_text of the first `length` bytes of `text`, which are followed by a 0 byte.
    void _set_text_bytes(const char* text, std::size_t length);
    // Text to number, for a string value: false (and the error) when the text is no number.
    bool _parse();
    // The number as signed 64 bits, within [low, high]; 0 and the error otherwise.
    std::int64_t _in_range(std::int64_t low, std::int64_t high);

    char* _text = nullptr;
    std::uint64_t _capacity = 0;
    std::int64_t _number = 0;
    type_t _type = type_undefined;
    bool _error = true;
    // Room for the text of most values, numbers and words alike.
    char _inline_text[24];
};

class labeled_value_c : public value_c {
  public:
    explicit labeled_value_c(const char* label);
    labeled_value_c(const char* label, const char* text);
    labeled_value_c(const char* label, bool value);
    labeled_value_c(const char* label, char value);
    labeled_value_c(const char* label, short value);
    labeled_value_c(const char* label, int value);
    labeled_value_c(const char* label, long value);
    labeled_value_c(const char* label, long long value);
    labeled_value_c(const char* label, unsigned short value);
    labeled_value_c(const char* label, unsigned int value);
    labeled_value_c(const char* label, unsigned long value);
    labeled_value_c(const char* label, unsigned long long value);
    labeled_value_c(const labeled_value_c& other);
    // A string value: what the reader makes of an attribute, whose lengths it knows. Both views
    // are of texts that end with a 0 byte behind them.
    labeled_value_c(std::string_view label, std::string_view text);
    labeled_value_c& operator=(const labeled_value_c& other);
    ~labeled_value_c() override;

    // Attributes are cells of the current pool (utl/cell_pool.h) while a document loads.
    static void* operator new(std::size_t size);
    static void operator delete(void* cell);

    const char* get_label() const { return _label; }
    // Same label, and the same text form (or, for an undefined side, the same tag).
    bool is_equal(labeled_value_c& other);

  private:
    void _assign_label(const char* label);
    void _assign_label(std::string_view label);

    char* _label = nullptr;
    char _inline_label[16];
};

// A named run-time setting: a name, its text and a stream for the conversion's complaints.
class setting_c {
  public:
    setting_c(const char* name, const char* text);
    const char* name() const { return _name.c_str(); }
    const char* text() const { return _text.get_length() ? _text.c_str() : nullptr; }
    utl_stream_c& errors() { return _errors; }

  private:
    utl_stream_c _name;
    utl_stream_c _text;
    utl_stream_c _errors;
};

// A group of settings; the process-wide list holds groups.
class setting_group_c {
  public:
    explicit setting_group_c(bool with_lock = true);
    ~setting_group_c();
    setting_group_c(const setting_group_c&) = delete;
    setting_group_c& operator=(const setting_group_c&) = delete;

    void add(setting_c* setting);
    ptr_list_c& settings() { return *_settings; }

  private:
    ptr_list_c* _settings;
};

// The first setting of that name in any group, ignoring case; null when there is none, which
// is always so unless a host installs a list.
setting_c* find_setting(const char* name);
// Installs the process-wide list of setting groups (a ptr_list_c of setting_group_c), or
// removes it with null. The library itself installs none.
void set_settings_list(ptr_list_c* groups);

bool get_setting_bool(setting_c& setting);
int get_setting_int(setting_c& setting);

// The named settings of the library and the defaults that run when no list names them.
namespace settings_n {
inline constexpr const char* chunk_length = "ChunkLength";
inline constexpr const char* io_read_length = "IOReadLength";
inline constexpr const char* aio_number = "AIONumber";
inline constexpr const char* enable_aio_write = "EnableAIOWrite";
inline constexpr const char* open_file_without_system_security = "OpenFileWithoutSystemSecurity";

inline constexpr int chunk_length_default = 65536;
inline constexpr int io_read_length_default = 65536;
inline constexpr int aio_number_default = 3;
inline constexpr bool enable_aio_write_default = true;
inline constexpr bool open_file_without_system_security_default = false;

// The setting's value, or `fallback` when no setting of that name exists.
int int_or(const char* name, int fallback);
bool bool_or(const char* name, bool fallback);
} // namespace settings_n
