#include "utl/multi_lang.h"

#include "support/trc.h"

#include <cstring>

namespace multi_lang_str_n {

namespace {

constexpr const char* source = "multi_lang";

// What a conversion reports on failure; the traced forms print it, the untraced ones drop it.
struct failure_s {
    enum kind_t { none, measure, short_target } kind = none;
    int need = 0;
    int room = 0;
    unsigned long error = 0;
};

bool to_utf8(const wide_char* wide, char* narrow, int& size, failure_s& failure) {
    if (!wide) {
        if (narrow) narrow[0] = 0;
        size = 0;
        return true;
    }
    int need = os::WideCharToMultiByte(os::CP_UTF8, 0, wide, -1, nullptr, 0);
    bool ok = true;
    if (need < 1) {
        failure = {failure_s::measure, need, size, os::GetLastError()};
        ok = false;
    } else if (narrow) {
        if (size < need) {
            failure = {failure_s::short_target, need, size, 0};
            ok = false;
        } else {
            os::WideCharToMultiByte(os::CP_UTF8, 0, wide, -1, narrow, need);
        }
    }
    size = need;
    return ok;
}

bool to_unicode(const char* narrow, wide_char* wide, int& size, failure_s& failure) {
    if (!narrow) {
        if (wide) wide[0] = 0;
        size = 0;
        return true;
    }
    int need = os::MultiByteToWideChar(os::CP_UTF8, 0, narrow, -1, nullptr, 0);
    if (need <= 0) {
        failure = {failure_s::measure, need, size, os::GetLastError()};
        size = need;
        return false;
    }
    if (!wide) {
        size = need;
        return true;
    }
    if (size < need) {
        failure = {failure_s::short_target, need, size, 0};
        size = need;
        return false;
    }
    os::MultiByteToWideChar(os::CP_UTF8, 0, narrow, -1, wide, need);
    size = need;
    return true;
}

} // namespace

int utf8lenhelper(const wide_char* wide) {
    QVTR_SCOPE(tr, "multi_lang_str_n::utf8lenhelper", source);
    int size = 0;
    failure_s failure;
    if (!to_utf8(wide, nullptr, size, failure)) {
        tr.print(QVTR_FAILURE, __LINE__, "Fail to convert from UNICODE to UTF-8 %d\n",
                 static_cast<int>(failure.error));
        return 0;
    }
    return size;
}

bool unicode_to_utf8(const wide_char* wide, char* narrow, int& size) {
    QVTR_SCOPE(tr, "multi_lang_str_n::unicode_to_utf8", source);
    failure_s failure;
    bool ok = to_utf8(wide, narrow, size, failure);
    if (failure.kind == failure_s::measure)
        tr.print(QVTR_FAILURE, __LINE__, "Fail to convert from UNICODE to UTF-8 %d\n",
                 static_cast<int>(failure.error));
    else if (failure.kind == failure_s::short_target)
        tr.print(QVTR_FAILURE, __LINE__,
                 "Fail to convert from UNICODE to UTF-8, short buffer %d < %d\n", failure.room,
                 failure.need);
    return ok;
}

bool utf8_to_unicode(const char* narrow, wide_char* wide, int& size) {
    QVTR_SCOPE(tr, "multi_lang_str_n::utf8_to_unicode", source);
    failure_s failure;
    bool ok = to_unicode(narrow, wide, size, failure);
    if (failure.kind == failure_s::measure) {
        tr.print(QVTR_FAILURE, __LINE__, "Fail to convert from UTF-8 to UNICODE %d\n",
                 static_cast<int>(failure.error));
    } else if (failure.kind == failure_s::short_target) {
        tr.print(QVTR_FAILURE, __LINE__,
                 "Fail to convert from UTF-8 to UNICODE, short buffer len %d < required len %d\n",
                 failure.room, failure.need);
        tr.print(QVTR_FAILURE, __LINE__, "UTF-8 buffer length=%d, buffer=%s\n",
                 static_cast<int>(std::strlen(narrow)), narrow);
    }
    return ok;
}

int utf8lenhelper_untraced(const wide_char* wide) {
    int size = 0;
    failure_s failure;
    return to_utf8(wide, nullptr, size, failure) ? size : 0;
}

bool unicode_to_utf8_untraced(const wide_char* wide, char* narrow, int& size) {
    failure_s failure;
    return to_utf8(wide, narrow, size, failure);
}

bool utf8_to_unicode_untraced(const char* narrow, wide_char* wide, int& size) {
    failure_s failure;
    return to_unicode(narrow, wide, size, failure);
}

std::string to_utf8_string(const wide_char* wide) {
    int size = 0;
    if (!wide || !unicode_to_utf8_untraced(wide, nullptr, size) || size <= 1) return {};
    std::string text(static_cast<std::size_t>(size), '\0');
    if (!unicode_to_utf8_untraced(wide, text.data(), size)) return {};
    text.resize(static_cast<std::size_t>(size - 1));
    return text;
}

std::u16string to_utf16_string(const char* narrow) {
    int size = 0;
    if (!narrow || !utf8_to_unicode_untraced(narrow, nullptr, size) || size <= 1) return {};
    std::u16string wide(static_cast<std::size_t>(size), u'\0');
    if (!utf8_to_unicode_untraced(narrow, wide.data(), size)) return {};
    wide.resize(static_cast<std::size_t>(size - 1));
    return wide;
}

char* unicode_to_utf8_buffer(const wide_char* wide, char* buffer, int size) {
    if (!buffer || size <= 0) return nullptr;
    std::memset(buffer, 0, static_cast<std::size_t>(size));
    return unicode_to_utf8(wide, buffer, size) ? buffer : nullptr;
}

wide_char* utf8_to_unicode_buffer(const char* narrow, wide_char* buffer, int size) {
    if (!buffer || size <= 0) return nullptr;
    std::memset(buffer, 0, static_cast<std::size_t>(size) * sizeof(wide_char));
    return utf8_to_unicode(narrow, buffer, size) ? buffer : nullptr;
}

} // namespace multi_lang_str_n
