// Byte classes of the XML subset, one table lookup per byte: white space as the C library's
// isspace in the "C" locale, and the bytes of names (isalpha/isalnum in that locale plus `_`,
// and `-`, `.`, `:` inside a name). Bytes of 0x80 and above are in no class.
#pragma once

#include <array>
#include <cstdint>

namespace xml_chars_n {

enum : std::uint8_t {
    space = 1,      // space, tab, line feed, vertical tab, form feed, carriage return
    name_start = 2, // a letter or `_`
    name_char = 4,  // a letter, a digit, `_`, `-`, `.` or `:`
    end = 8,        // the byte 0 that ends a text
    blank = 16,     // white space but the line ends, which vanish from a tag's text
};

constexpr std::array<std::uint8_t, 256> make_table() {
    std::array<std::uint8_t, 256> table{};
    for (int c : {' ', '\t', '\n', '\v', '\f', '\r'}) table[c] |= space;
    for (int c : {' ', '\t', '\v', '\f'}) table[c] |= blank;
    for (int c = 'a'; c <= 'z'; ++c) table[c] |= name_start | name_char;
    for (int c = 'A'; c <= 'Z'; ++c) table[c] |= name_start | name_char;
    for (int c = '0'; c <= '9'; ++c) table[c] |= name_char;
    table['_'] |= name_start | name_char;
    table[0] |= end;
    for (int c : {'-', '.', ':'}) table[c] |= name_char;
    return table;
}

inline constexpr std::array<std::uint8_t, 256> table = make_table();

inline bool is_space(char c) { return table[static_cast<unsigned char>(c)] & space; }
inline bool is_blank(char c) { return table[static_cast<unsigned char>(c)] & blank; }
inline bool is_space_or_end(char c) { return table[static_cast<unsigned char>(c)] & (space | end); }
inline bool is_name_start(char c) { return table[static_cast<unsigned char>(c)] & name_start; }
inline bool is_name_char(char c) { return table[static_cast<unsigned char>(c)] & name_char; }

// The first byte at or after `p` that is no name character (the ending 0 is none).
template <class C> C* skip_name(C* p) {
    while (is_name_char(*p)) ++p;
    return p;
}

} // namespace xml_chars_n
