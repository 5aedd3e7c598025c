#include "utl/utl_stream.h"

#include "support/thl.h"
#include "support/trc.h"
#include "utl/multi_lang.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr const char* source = "utl_stream";
constexpr std::uint64_t smallest_block = 30;
constexpr std::uint64_t doubling_limit = 1025;
constexpr std::uint64_t linear_step = 1024;

// A number rendered into a stack buffer, as the stream appends it.
struct rendered_s {
    char text[64];
    std::size_t length;
};

// Integers in decimal, the text of "%d", "%u", "%ld" and their kin.
template <typename Integer> rendered_s render_number(Integer value) {
    rendered_s out;
    auto result = std::to_chars(out.text, out.text + sizeof out.text - 1, value);
    out.length = static_cast<std::size_t>(result.ptr - out.text);
    *result.ptr = 0;
    return out;
}

// Short values with four decimals and no trailing zeros; large ones in exponent form.
rendered_s render_double(double value, std::size_t limit) {
    rendered_s out;
    int n;
    // glibc prints the sign of a NaN and MinGW's runtime does not: one text on both.
    if (std::isnan(value)) value = std::fabs(value);
    if (value > -2147483647.0 && value < 2147483647.0) {
        n = std::snprintf(out.text, limit, "%.4lf", value);
        out.length = n < 0 ? 0 : std::strlen(out.text);
        if (std::strchr(out.text, '.')) {
            while (out.length && out.text[out.length - 1] == '0') out.text[--out.length] = 0;
            if (out.length && out.text[out.length - 1] == '.') out.text[--out.length] = 0;
        }
    } else {
        n = std::snprintf(out.text, limit, "%15.9le", value);
        out.length = n < 0 ? 0 : std::strlen(out.text);
    }
    return out;
}

rendered_s render_bool(bool value) {
    rendered_s out;
    std::snprintf(out.text, sizeof out.text, "%s", value ? mix_n::True : mix_n::False);
    out.length = std::strlen(out.text);
    return out;
}

} // namespace

utl_stream_c::utl_stream_c() { _add_memory(0); }

utl_stream_c::utl_stream_c(const char* text) {
    _add_memory(0);
    append(text);
}

utl_stream_c::utl_stream_c(const utl_stream_c& other) {
    _add_memory(0);
    append(other);
}

utl_stream_c& utl_stream_c::operator=(const utl_stream_c& other) {
    if (this != &other) {
        append(clear_char);
        append(other);
    }
    return *this;
}

utl_stream_c::~utl_stream_c() { std::free(_text); }

void utl_stream_c::_add_memory(std::uint64_t extra) {
    if (_capacity == 0) {
        std::uint64_t need = extra < smallest_block ? smallest_block : extra;
        _capacity = need + 1;
        _text = static_cast<char*>(std::malloc(static_cast<std::size_t>(need + 2)));
        if (!_text) {
            QVTR_SCOPE(tr, "utl_stream_c::_add_memory", source);
            tr.print(QVTR_FAILURE, __LINE__,
                     "Allocate memory failed. The length of memory to allocate is %d\n",
                     static_cast<int>(need + 2));
            return;
        }
        _text[0] = 0;
        _length = 0;
        return;
    }
    std::uint64_t wanted = _length + extra + 1;
    if (_capacity >= wanted) return;
    std::uint64_t grown = _length < doubling_limit ? 2 * _length : _length + linear_step;
    _capacity = grown < wanted ? wanted : grown;
    char* larger = static_cast<char*>(std::realloc(_text, static_cast<std::size_t>(_capacity + 1)));
    if (!larger) {
        QVTR_SCOPE(tr, "utl_stream_c::_add_memory", source);
        tr.print(QVTR_FAILURE, __LINE__,
                 "Failed: Allocate memory failed. The length of memory to allocate is %d.\n",
                 static_cast<int>(_capacity + 1));
        std::free(_text);
        _length = 0;
        _capacity = 0;
    }
    _text = larger;
}

utl_stream_c& utl_stream_c::_append_bytes(const char* bytes, std::uint64_t count) {
    if (count == 0) return *this;
    if (_text && _length + count + 1 <= _capacity) {
        // Room enough: the block stays where it is, and so does any text taken from it.
        std::memcpy(_text + _length, bytes, static_cast<std::size_t>(count));
        _length += count;
        _text[_length] = 0;
        return *this;
    }
    // Text taken from this stream's own block must be found again after the block moves.
    const auto at = reinterpret_cast<std::uintptr_t>(bytes);
    const auto start = reinterpret_cast<std::uintptr_t>(_text);
    const bool inside = _text && at >= start && at <= start + _length;
    const std::uint64_t offset = inside ? static_cast<std::uint64_t>(bytes - _text) : 0;
    _add_memory(count);
    if (!_text) return *this;
    if (inside) bytes = _text + offset;
    std::memcpy(_text + _length, bytes, static_cast<std::size_t>(count));
    _length += count;
    _text[_length] = 0;
    return *this;
}

utl_stream_c& utl_stream_c::append(unsigned long long value) {
    rendered_s r = render_number(value);
    return _append_bytes(r.text, r.length);
}
utl_stream_c& utl_stream_c::append(long long value) {
    rendered_s r = render_number(value);
    return _append_bytes(r.text, r.length);
}
utl_stream_c& utl_stream_c::append(bool value) {
    rendered_s r = render_bool(value);
    return _append_bytes(r.text, r.length);
}
utl_stream_c& utl_stream_c::append(double value) {
    rendered_s r = render_double(value, 32);
    return _append_bytes(r.text, r.length);
}
utl_stream_c& utl_stream_c::append(unsigned long value) {
    rendered_s r = render_number(value);
    return _append_bytes(r.text, r.length);
}
utl_stream_c& utl_stream_c::append(unsigned int value) {
    rendered_s r = render_number(value);
    return _append_bytes(r.text, r.length);
}
utl_stream_c& utl_stream_c::append(unsigned short value) {
    rendered_s r = render_number(static_cast<unsigned int>(value));
    return _append_bytes(r.text, r.length);
}
utl_stream_c& utl_stream_c::append(long value) {
    rendered_s r = render_number(value);
    return _append_bytes(r.text, r.length);
}
utl_stream_c& utl_stream_c::append(int value) {
    rendered_s r = render_number(value);
    return _append_bytes(r.text, r.length);
}
utl_stream_c& utl_stream_c::append(short value) {
    rendered_s r = render_number(static_cast<int>(value));
    return _append_bytes(r.text, r.length);
}

utl_stream_c& utl_stream_c::append(char value) {
    if (value == clear_char) {
        if (_text) _text[0] = 0;
        _length = 0;
        return *this;
    }
    return _append_bytes(&value, 1);
}

utl_stream_c& utl_stream_c::append(const utl_stream_c& other) {
    if (&other == this) {
        std::string copy(c_str(), static_cast<std::size_t>(_length));
        return _append_bytes(copy.data(), copy.size());
    }
    return _append_bytes(other.c_str(), other._text ? other._length : 0);
}

utl_stream_c& utl_stream_c::append(const os::wide_char* text) {
    std::string utf8 = multi_lang_str_n::to_utf8_string(text);
    return _append_bytes(utf8.data(), utf8.size());
}

utl_stream_c& utl_stream_c::append(const char* text) {
    if (!text) return *this;
    return _append_bytes(text, std::strlen(text));
}

bool utl_stream_c::equals(const utl_stream_c& other) const { return equals(other.c_str()); }

bool utl_stream_c::equals(const os::wide_char* text) const {
    return equals(multi_lang_str_n::to_utf8_string(text).c_str());
}

// An empty argument equals only an empty stream; otherwise the bytes must be the same.
bool utl_stream_c::equals(const char* text) const {
    if (!text || !*text) return _length == 0;
    std::size_t n = std::strlen(text);
    return _length == n && std::memcmp(c_str(), text, n) == 0;
}

bool utl_stream_c::_remove_suffix_bytes(const char* bytes, std::uint64_t count) {
    if (count == 0) return true;
    if (count > _length ||
        std::memcmp(_text + _length - count, bytes, static_cast<std::size_t>(count)) != 0)
        return false;
    _length -= count;
    _text[_length] = 0;
    return true;
}

bool utl_stream_c::remove_suffix(unsigned long long value) {
    rendered_s r = render_number(value);
    return _remove_suffix_bytes(r.text, r.length);
}
bool utl_stream_c::remove_suffix(long long value) {
    rendered_s r = render_number(value);
    return _remove_suffix_bytes(r.text, r.length);
}
bool utl_stream_c::remove_suffix(bool value) {
    rendered_s r = render_bool(value);
    return _remove_suffix_bytes(r.text, r.length);
}
bool utl_stream_c::remove_suffix(double value) {
    rendered_s r = render_double(value, 31);
    return _remove_suffix_bytes(r.text, r.length);
}
bool utl_stream_c::remove_suffix(unsigned long value) {
    rendered_s r = render_number(value);
    return _remove_suffix_bytes(r.text, r.length);
}
bool utl_stream_c::remove_suffix(unsigned int value) {
    rendered_s r = render_number(value);
    return _remove_suffix_bytes(r.text, r.length);
}
bool utl_stream_c::remove_suffix(unsigned short value) {
    rendered_s r = render_number(static_cast<unsigned int>(value));
    return _remove_suffix_bytes(r.text, r.length);
}
bool utl_stream_c::remove_suffix(long value) {
    rendered_s r = render_number(value);
    return _remove_suffix_bytes(r.text, r.length);
}
bool utl_stream_c::remove_suffix(int value) {
    rendered_s r = render_number(value);
    return _remove_suffix_bytes(r.text, r.length);
}
bool utl_stream_c::remove_suffix(short value) {
    rendered_s r = render_number(static_cast<int>(value));
    return _remove_suffix_bytes(r.text, r.length);
}
// "%c" of the character 0 is an empty text.
bool utl_stream_c::remove_suffix(char value) { return _remove_suffix_bytes(&value, value ? 1 : 0); }
bool utl_stream_c::remove_suffix(const utl_stream_c& other) {
    std::string copy(other.c_str(), static_cast<std::size_t>(other._text ? other._length : 0));
    return _remove_suffix_bytes(copy.data(), copy.size());
}
bool utl_stream_c::remove_suffix(const os::wide_char* text) {
    std::string utf8 = multi_lang_str_n::to_utf8_string(text);
    return _remove_suffix_bytes(utf8.data(), utf8.size());
}
bool utl_stream_c::remove_suffix(const char* text) {
    return text ? _remove_suffix_bytes(text, std::strlen(text)) : true;
}

int utl_stream_c::compare(const char* text, bool case_sensitive) const {
    const char* mine = c_str();
    if (!text) return *mine ? 1 : 0;
    if (!case_sensitive) return os::_stricmp(mine, text);
    int order = std::strcmp(mine, text);
    return order < 0 ? -1 : (order > 0 ? 1 : 0);
}

int utl_stream_c::compare(const utl_stream_c& other, bool case_sensitive) const {
    return compare(other.c_str(), case_sensitive);
}

bool utl_stream_c::starts_with(const char* text, bool case_sensitive) const {
    if (!text) return false;
    std::size_t n = std::strlen(text);
    return case_sensitive ? std::strncmp(c_str(), text, n) == 0
                          : os::_strnicmp(c_str(), text, n) == 0;
}

bool utl_stream_c::ends_with(const char* text, bool case_sensitive) const {
    if (!text) return false;
    std::size_t n = std::strlen(text);
    if (n > _length) return false;
    const char* tail = c_str() + (_length - n);
    return case_sensitive ? std::strncmp(tail, text, n) == 0 : os::_strnicmp(tail, text, n) == 0;
}

const char* utl_stream_c::c_str() const { return _text ? _text : ""; }

void utl_stream_c::trim() {
    if (!_text) return;
    while (_length && std::isspace(static_cast<unsigned char>(_text[_length - 1]))) --_length;
    _text[_length] = 0;
    std::uint64_t start = 0;
    while (start < _length && std::isspace(static_cast<unsigned char>(_text[start]))) ++start;
    if (start) {
        std::memmove(_text, _text + start, static_cast<std::size_t>(_length - start + 1));
        _length -= start;
    }
}

const char* utl_stream_c::find(const char* pattern) const {
    if (!pattern || !*pattern) return _length == 0 ? c_str() : nullptr;
    return std::strstr(c_str(), pattern);
}

bool utl_stream_c::replace_first(const char* old_text, const char* new_text) {
    const char* at = find(old_text);
    if (!at) return false;
    std::size_t before = static_cast<std::size_t>(at - c_str());
    std::size_t removed = old_text ? std::strlen(old_text) : 0;
    std::string rebuilt(c_str(), before);
    if (new_text) rebuilt += new_text;
    rebuilt.append(c_str() + before + removed,
                   static_cast<std::size_t>(_length) - before - removed);
    append(clear_char);
    _append_bytes(rebuilt.data(), rebuilt.size());
    return true;
}

basis_multi_lang_c::~basis_multi_lang_c() {
    delete[] _wide;
    delete[] _narrow;
}

const char* basis_multi_lang_c::to_utf8(const os::wide_char* wide) {
    delete[] _narrow;
    _narrow = nullptr;
    int size = 0;
    if (!multi_lang_str_n::unicode_to_utf8_untraced(wide, nullptr, size) || size <= 0)
        return nullptr;
    _narrow = new char[static_cast<std::size_t>(size)];
    if (!multi_lang_str_n::unicode_to_utf8_untraced(wide, _narrow, size)) {
        delete[] _narrow;
        _narrow = nullptr;
    }
    return _narrow;
}

const os::wide_char* basis_multi_lang_c::to_unicode(const char* narrow) {
    delete[] _wide;
    _wide = nullptr;
    int size = 0;
    if (!multi_lang_str_n::utf8_to_unicode_untraced(narrow, nullptr, size) || size <= 0)
        return nullptr;
    _wide = new os::wide_char[static_cast<std::size_t>(size)];
    if (!multi_lang_str_n::utf8_to_unicode_untraced(narrow, _wide, size)) {
        delete[] _wide;
        _wide = nullptr;
    }
    return _wide;
}
