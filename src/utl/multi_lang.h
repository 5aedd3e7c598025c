// Conversions between UTF-8 (narrow) and UTF-16 (wide) text, through code page 65001 only.
// Sizes are in units of the target, terminator included.
#pragma once

#include "platform/os.h"

#include <string>

namespace multi_lang_str_n {

using wide_char = os::wide_char;

// Bytes that the UTF-8 form of `wide` needs, terminator included; 0 for null or failure.
int utf8lenhelper(const wide_char* wide);

// With a null target, `size` receives the need. With a target, `size` is its room in bytes and
// receives the need; a short target stays untouched and the result is false.
bool unicode_to_utf8(const wide_char* wide, char* narrow, int& size);
bool utf8_to_unicode(const char* narrow, wide_char* wide, int& size);

// The same without trace lines, for code that runs inside the trace or below it.
int utf8lenhelper_untraced(const wide_char* wide);
bool unicode_to_utf8_untraced(const wide_char* wide, char* narrow, int& size);
bool utf8_to_unicode_untraced(const char* narrow, wide_char* wide, int& size);

// The whole conversion as a string, without trace lines; empty for null or on failure.
std::string to_utf8_string(const wide_char* wide);
std::u16string to_utf16_string(const char* narrow);

// Clear `buffer` (`size` units) and convert into it; the buffer, or null on failure.
char* unicode_to_utf8_buffer(const wide_char* wide, char* buffer, int size);
wide_char* utf8_to_unicode_buffer(const char* narrow, wide_char* buffer, int size);

} // namespace multi_lang_str_n
