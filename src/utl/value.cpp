#include "utl/value.h"

#include "support/thl.h"
#include "utl/cell_pool.h"

#include <atomic>
#include <cstdio>
#include <cstring>
#include <limits>

namespace {

constexpr std::uint64_t first_unsigned = 0x8000000000000000ull;

struct printed_s {
    char text[32];
};

printed_s print_signed(std::int64_t value) {
    printed_s out;
    std::snprintf(out.text, sizeof out.text, "%lld", static_cast<long long>(value));
    return out;
}

// Copies `n` bytes that need not be terminated. Names and values are mostly a few bytes long:
// two overlapping moves of a word, or of half a word, cost less than a call of memcpy.
inline void copy_short(char* to, const char* from, std::size_t n) {
    if (n >= 8 && n <= 16) {
        std::uint64_t head, tail;
        std::memcpy(&head, from, 8);
        std::memcpy(&tail, from + n - 8, 8);
        std::memcpy(to, &head, 8);
        std::memcpy(to + n - 8, &tail, 8);
    } else if (n >= 4 && n < 8) {
        std::uint32_t head, tail;
        std::memcpy(&head, from, 4);
        std::memcpy(&tail, from + n - 4, 4);
        std::memcpy(to, &head, 4);
        std::memcpy(to + n - 4, &tail, 4);
    } else if (n > 0 && n < 4) {
        to[0] = from[0];
        to[n / 2] = from[n / 2];
        to[n - 1] = from[n - 1];
    } else if (n > 16) {
        std::memcpy(to, from, n);
    }
}

printed_s print_unsigned(std::uint64_t value) {
    printed_s out;
    std::snprintf(out.text, sizeof out.text, "%llu", static_cast<unsigned long long>(value));
    return out;
}

} // namespace

value_c::value_c() = default;

value_c::value_c(const char* text) : _type(type_string), _error(false) { set_text(text); }
value_c::value_c(bool value) { _set_bool(value); }
value_c::value_c(char value) { _set_signed(value); }
value_c::value_c(short value) { _set_signed(value); }
value_c::value_c(int value) { _set_signed(value); }
value_c::value_c(long value) { _set_signed(value); }
value_c::value_c(long long value) { _set_signed(value); }
value_c::value_c(unsigned short value) { _set_unsigned(value); }
value_c::value_c(unsigned int value) { _set_unsigned(value); }
value_c::value_c(unsigned long value) { _set_unsigned(value); }
value_c::value_c(unsigned long long value) { _set_unsigned(value); }

value_c::value_c(const value_c& other)
    : _number(other._number), _type(other._type), _error(other._error) {
    if (other._text) set_text(other._text);
}

value_c& value_c::operator=(const value_c& other) {
    if (this == &other) return *this;
    set_text(other._text ? other._text : "");
    if (!other._text && _text) _text[0] = 0;
    _number = other._number;
    _type = other._type;
    _error = other._error;
    return *this;
}

value_c& value_c::operator=(bool value) {
    _set_bool(value);
    return *this;
}

value_c& value_c::operator=(unsigned long long value) {
    _set_unsigned(value);
    return *this;
}

// The buffer keeps its exact size, as the capacity says; a text of a few bytes lives in the
// value itself, so that the many short values of an XML tree cost no allocation.
void value_c::set_text(const char* text) {
    if (!text) {
        if (_text) _text[0] = 0;
        return;
    }
    _set_text_bytes(text, std::strlen(text));
}

void value_c::_set_text_bytes(const char* text, std::size_t length) {
    std::size_t need = length + 1;
    if (_capacity < need) {
        char* block = need <= sizeof _inline_text ? _inline_text
                                                  : static_cast<char*>(cell_pool_n::allocate(need));
        std::memmove(block, text, need);
        if (_text && _text != _inline_text && _text != block) cell_pool_n::release(_text);
        _text = block;
        _capacity = need;
        return;
    }
    // The text may be a part of this value's own buffer.
    std::memmove(_text, text, need);
}

value_c::~value_c() {
    if (_text != _inline_text) cell_pool_n::release(_text);
}

void value_c::set_string(const char* text) {
    set_text(text ? text : "");
    _number = 0;
    _type = type_string;
    _error = false;
}

void value_c::_set_signed(std::int64_t value) {
    set_text(print_signed(value).text);
    _number = value;
    _type = type_signed;
    _error = false;
}

void value_c::_set_unsigned(std::uint64_t value) {
    set_text(print_unsigned(value).text);
    _number = static_cast<std::int64_t>(value);
    _type = value >= first_unsigned ? type_unsigned : type_signed;
    _error = false;
}

void value_c::_set_bool(bool value) {
    set_text(value ? mix_n::True : mix_n::False);
    _number = value ? 1 : 0;
    _type = type_bool;
    _error = false;
}

bool value_c::_parse() {
    std::int64_t parsed = 0;
    if (!_text || !mix_n::parse_formatted_integer_string(_text, parsed)) {
        _error = true;
        return false;
    }
    _type = (parsed >= 0 || std::strchr(_text, '-')) ? type_signed : type_unsigned;
    _number = parsed;
    _error = false;
    return true;
}

std::int64_t value_c::_in_range(std::int64_t low, std::int64_t high) {
    if (_type == type_undefined) return 0;
    if (_type == type_string && !_parse()) return 0;
    if (_number < low || _number > high) {
        _error = true;
        return 0;
    }
    return _number;
}

bool value_c::to_bool() {
    _error = false;
    switch (_type) {
    case type_bool: return _number != 0;
    case type_string:
        if (_text && os::_stricmp(_text, mix_n::True) == 0) {
            _number = 1;
            _type = type_bool;
            return true;
        }
        if (_text && os::_stricmp(_text, mix_n::False) == 0) {
            _number = 0;
            _type = type_bool;
            return false;
        }
        _error = true;
        return false;
    case type_signed:
        if (_number == 1) return true;
        if (_number != 0) _error = true;
        return false;
    default: _error = true; return false;
    }
}

char value_c::to_char() { return static_cast<char>(_in_range(-128, 127)); }
signed char value_c::to_schar() { return static_cast<signed char>(_in_range(-128, 127)); }
std::int16_t value_c::to_short() { return static_cast<std::int16_t>(_in_range(-32768, 32767)); }
std::uint16_t value_c::to_ushort() { return static_cast<std::uint16_t>(_in_range(0, 65535)); }
std::int32_t value_c::to_int() {
    return static_cast<std::int32_t>(_in_range(std::numeric_limits<std::int32_t>::min(),
                                               std::numeric_limits<std::int32_t>::max()));
}
std::uint32_t value_c::to_uint() {
    return static_cast<std::uint32_t>(_in_range(0, std::numeric_limits<std::uint32_t>::max()));
}
std::int32_t value_c::to_long() { return to_int(); }
std::uint32_t value_c::to_ulong() { return to_uint(); }

std::int64_t value_c::to_int64() {
    if (_type == type_undefined) return 0;
    if (_type == type_string && !_parse()) return 0;
    if (_type == type_unsigned) {
        _error = true;
        return 0;
    }
    return _number;
}

std::uint64_t value_c::to_uint64() {
    if (_type == type_undefined) return 0;
    if (_type == type_string && !_parse()) return 0;
    if (_type == type_signed && _number < 0) {
        _error = true;
        return 0;
    }
    return static_cast<std::uint64_t>(_number);
}

const char* value_c::to_text() {
    switch (_type) {
    case type_string: return _text ? _text : "";
    case type_signed: set_text(print_signed(_number).text); return _text;
    case type_unsigned:
        set_text(print_unsigned(static_cast<std::uint64_t>(_number)).text);
        return _text;
    case type_bool: return _number ? mix_n::True : mix_n::False;
    default: _error = true; return "";
    }
}

void value_c::clear() {
    set_text(nullptr);
    _error = true;
    _number = 0;
    _type = type_undefined;
}

std::uint64_t value_c::get_text_length() const {
    switch (_type) {
    case type_string: return _text ? std::strlen(_text) : 0;
    case type_signed: return std::strlen(print_signed(_number).text);
    case type_unsigned:
        return std::strlen(print_unsigned(static_cast<std::uint64_t>(_number)).text);
    case type_bool: return _number > 0 ? 4 : 5;
    default: return 0;
    }
}

bool value_c::equals_text(const char* text) {
    return std::strcmp(to_text(), text ? text : "") == 0;
}

labeled_value_c::labeled_value_c(const char* label) { _assign_label(label); }
labeled_value_c::labeled_value_c(const char* label, const char* text) : value_c(text) {
    _assign_label(label);
}
labeled_value_c::labeled_value_c(const char* label, bool value) : value_c(value) {
    _assign_label(label);
}
labeled_value_c::labeled_value_c(const char* label, char value) : value_c(value) {
    _assign_label(label);
}
labeled_value_c::labeled_value_c(const char* label, short value) : value_c(value) {
    _assign_label(label);
}
labeled_value_c::labeled_value_c(const char* label, int value) : value_c(value) {
    _assign_label(label);
}
labeled_value_c::labeled_value_c(const char* label, long value) : value_c(value) {
    _assign_label(label);
}
labeled_value_c::labeled_value_c(const char* label, long long value) : value_c(value) {
    _assign_label(label);
}
labeled_value_c::labeled_value_c(const char* label, unsigned short value) : value_c(value) {
    _assign_label(label);
}
labeled_value_c::labeled_value_c(const char* label, unsigned int value) : value_c(value) {
    _assign_label(label);
}
labeled_value_c::labeled_value_c(const char* label, unsigned long value) : value_c(value) {
    _assign_label(label);
}
labeled_value_c::labeled_value_c(const char* label, unsigned long long value) : value_c(value) {
    _assign_label(label);
}
labeled_value_c::labeled_value_c(const labeled_value_c& other) : value_c(other) {
    _assign_label(other._label);
}

// The attribute constructor of every load, so it is kept to plain stores: no buffer to give
// back, and short texts moved without a call.
labeled_value_c::labeled_value_c(std::string_view label, std::string_view text) {
    std::size_t label_size = label.size() + 1;
    _label = label_size <= sizeof _inline_label
                 ? _inline_label
                 : static_cast<char*>(cell_pool_n::allocate(label_size));
    copy_short(_label, label.data(), label.size());
    _label[label.size()] = 0;
    std::size_t text_size = text.size() + 1;
    _text = text_size <= sizeof _inline_text ? _inline_text
                                             : static_cast<char*>(cell_pool_n::allocate(text_size));
    copy_short(_text, text.data(), text.size());
    _text[text.size()] = 0;
    _capacity = text_size;
    _type = type_string;
    _error = false;
}

labeled_value_c& labeled_value_c::operator=(const labeled_value_c& other) {
    if (this == &other) return *this;
    value_c::operator=(other);
    _assign_label(other._label);
    return *this;
}

void* labeled_value_c::operator new(std::size_t size) { return cell_pool_n::allocate(size); }

void labeled_value_c::operator delete(void* cell) { cell_pool_n::release(cell); }

labeled_value_c::~labeled_value_c() {
    if (_label != _inline_label) cell_pool_n::release(_label);
}

// A null label is an empty one; a short label lives in the value itself.
void labeled_value_c::_assign_label(const char* label) {
    _assign_label(std::string_view(label ? label : ""));
}

void labeled_value_c::_assign_label(std::string_view label) {
    std::size_t n = label.size() + 1;
    char* block =
        n <= sizeof _inline_label ? _inline_label : static_cast<char*>(cell_pool_n::allocate(n));
    std::memmove(block, label.data(), n);
    if (_label && _label != _inline_label && _label != block) cell_pool_n::release(_label);
    _label = block;
}

bool labeled_value_c::is_equal(labeled_value_c& other) {
    if (this == &other) return true;
    if (std::strcmp(_label, other._label) != 0) return false;
    if (_type != type_undefined && other._type != type_undefined)
        return std::strcmp(to_text(), other.to_text()) == 0;
    return _type == other._type;
}

setting_c::setting_c(const char* name, const char* text) : _name(name), _text(text) {}

setting_group_c::setting_group_c(bool with_lock) : _settings(new ptr_list_c(with_lock)) {}

setting_group_c::~setting_group_c() {
    for (const void* s = _settings->first(); s; s = _settings->first()) {
        _settings->remove_current(s);
        delete static_cast<const setting_c*>(s);
    }
    delete _settings;
}

void setting_group_c::add(setting_c* setting) { _settings->append(setting); }

namespace {
std::atomic<ptr_list_c*> settings_groups{nullptr};
} // namespace

void set_settings_list(ptr_list_c* groups) { settings_groups = groups; }

setting_c* find_setting(const char* name) {
    ptr_list_c* groups = settings_groups.load();
    if (!groups || !name) return nullptr;
    setting_c* found = nullptr;
    groups->lock();
    for (const void* g = groups->first(); g && !found; g = groups->next(g)) {
        ptr_list_c& settings =
            const_cast<setting_group_c*>(static_cast<const setting_group_c*>(g))->settings();
        for (const void* s = settings.first(); s; s = settings.next(s)) {
            auto* setting = const_cast<setting_c*>(static_cast<const setting_c*>(s));
            if (os::_stricmp(setting->name(), name) == 0) {
                found = setting;
                break;
            }
        }
    }
    groups->unlock();
    return found;
}

bool get_setting_bool(setting_c& setting) {
    setting.errors().append(utl_stream_c::clear_char);
    const char* text = setting.text();
    if (text && os::_stricmp(text, "True") == 0) return true;
    if (text && os::_stricmp(text, "False") == 0) return false;
    setting.errors()
        .append("Unable to convert to bool \"")
        .append(text ? text : "Undefined Value")
        .append("\"");
    return false;
}

int get_setting_int(setting_c& setting) {
    setting.errors().append(utl_stream_c::clear_char);
    const char* text = setting.text();
    std::int64_t parsed = 0;
    if (!text || !mix_n::parse_formatted_integer_string(text, parsed)) {
        setting.errors()
            .append("Unable to convert \"")
            .append(text ? text : "")
            .append("\" to ")
            .append("int");
        return 0;
    }
    if (parsed < std::numeric_limits<std::int32_t>::min() ||
        parsed > std::numeric_limits<std::int32_t>::max()) {
        setting.errors()
            .append("Unable to convert \"")
            .append(text)
            .append("\" to ")
            .append("int")
            .append(", input value is too big");
        return 0;
    }
    return static_cast<int>(parsed);
}

int settings_n::int_or(const char* name, int fallback) {
    setting_c* setting = find_setting(name);
    return setting ? get_setting_int(*setting) : fallback;
}

bool settings_n::bool_or(const char* name, bool fallback) {
    setting_c* setting = find_setting(name);
    return setting ? get_setting_bool(*setting) : fallback;
}
