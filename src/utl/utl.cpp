#include "utl/utl.h"

#include "utl/multi_lang.h"

#include <cstring>
#include <string>

namespace utl_n {

namespace {

constexpr std::size_t longest_text = 0x40000000;

// The lower-cased wide form of `text`; false for a text too long to convert.
bool lower_wide(const char* text, std::u16string& wide) {
    if (std::strlen(text) >= longest_text) return false;
    int size = 0;
    if (!multi_lang_str_n::utf8_to_unicode_untraced(text, nullptr, size) || size <= 0) return false;
    wide.assign(static_cast<std::size_t>(size), u'\0');
    if (!multi_lang_str_n::utf8_to_unicode_untraced(text, wide.data(), size)) return false;
    os::CharLowerW(wide.data());
    wide.resize(static_cast<std::size_t>(size - 1));
    return true;
}

} // namespace

int utf8_prefix_strnicmp(const char* a, const char* b) {
    if (!a || !b) return 0;
    std::u16string wide_a, wide_b;
    if (!lower_wide(a, wide_a) || !lower_wide(b, wide_b)) return 1;
    // wcsncmp over the length of `a`: `b`'s terminator ends a shorter `b`.
    for (std::size_t i = 0; i < wide_a.size(); ++i) {
        int ca = wide_a[i];
        int cb = i < wide_b.size() ? wide_b[i] : 0;
        if (ca != cb) return ca - cb;
    }
    return 0;
}

int uni_stricmp(const os::wide_char* a, const os::wide_char* b) {
    if (!a || !b) return a == b ? 0 : (a ? 1 : -1);
    std::u16string lower_a(a), lower_b(b);
    os::CharLowerW(lower_a.data());
    os::CharLowerW(lower_b.data());
    std::size_t i = 0;
    while (i < lower_a.size() && i < lower_b.size() && lower_a[i] == lower_b[i]) ++i;
    int ca = i < lower_a.size() ? lower_a[i] : 0;
    int cb = i < lower_b.size() ? lower_b[i] : 0;
    return ca < cb ? -1 : (ca > cb ? 1 : 0);
}

} // namespace utl_n
