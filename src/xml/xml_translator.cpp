#include "xml/xml_translator.h"

#include <algorithm>
#include <cstring>

namespace {

struct entity_s {
    const char* name;
    std::size_t length;
    char character;
};

constexpr entity_s entities[] = {
    {"quot", 4, '"'},
    {"amp", 3, '&'},
    {"lt", 2, '<'},
    {"gt", 2, '>'},
};

// The entity that writes `c`, or null for a byte that goes out as it is.
const entity_s* entity_for(char c) {
    switch (c) {
    case '"': return &entities[0];
    case '&': return &entities[1];
    case '<': return &entities[2];
    case '>': return &entities[3];
    default: return nullptr;
    }
}

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// The character of a reference named by `length` bytes at `name`, compared without regard to
// case; 0 when no entity has that name.
char entity_character(const char* name, std::size_t length) {
    for (const entity_s& e : entities) {
        if (e.length != length) continue;
        std::size_t i = 0;
        while (i < length && lower(name[i]) == e.name[i]) ++i;
        if (i == length) return e.character;
    }
    return 0;
}

} // namespace

xml_special_characters_c::~xml_special_characters_c() {
    if (_on_heap) delete[] _buffer;
}

void xml_special_characters_c::_grow(std::uint64_t request) {
    std::uint64_t size = request ? request : _capacity;
    std::uint64_t capacity = size / 64 * 64 + 64;
    char* block = new char[capacity];
    std::memcpy(block, _buffer, static_cast<std::size_t>(std::min(_length, capacity)));
    if (_on_heap) delete[] _buffer;
    _buffer = block;
    _capacity = capacity;
    _on_heap = true;
}

const char* xml_special_characters_c::translate_from_xml(const char* text) {
    if (!text) return nullptr;
    return translate_from_xml(text, std::strlen(text));
}

// A reference is `&`, one to five bytes and `;`, found among the six bytes behind the `&`. The
// output is never longer than the input, so one check of the capacity serves the whole text.
const char* xml_special_characters_c::translate_from_xml(const char* text, std::uint64_t length) {
    if (!text) return nullptr;
    if (_capacity < length + 1) _grow(length + 1);
    const char* end = text + length;
    char* out = _buffer;
    const char* in = text;
    while (in < end) {
        const char* amp = static_cast<const char*>(std::memchr(in, '&', end - in));
        if (!amp) {
            std::memcpy(out, in, end - in);
            out += end - in;
            break;
        }
        std::memcpy(out, in, amp - in);
        out += amp - in;
        in = amp;
        const char* semicolon = nullptr;
        for (const char* p = amp + 1; p < end && p <= amp + 6 && *p; ++p) {
            if (*p == ';') {
                semicolon = p;
                break;
            }
        }
        std::size_t name_length = semicolon ? static_cast<std::size_t>(semicolon - amp - 1) : 0;
        char c = name_length ? entity_character(amp + 1, name_length) : 0;
        if (c) {
            *out++ = c;
            in = semicolon + 1;
        } else {
            *out++ = *in++;
        }
    }
    *out = 0;
    return _buffer;
}

const char* xml_special_characters_c::translate_to_xml(const char* text) {
    if (!text) return nullptr;
    std::uint64_t length = std::strlen(text);
    if (length == 0) return nullptr;
    if (length * 2 > _capacity) _grow(length * 2);
    _length = 0;
    for (const char* in = text; *in; ++in) {
        const entity_s* e = entity_for(*in);
        if (!e) {
            if (_length + 1 > _capacity - 1) _grow(0);
            _buffer[_length++] = *in;
            continue;
        }
        if (_length + e->length + 2 > _capacity - 1) _grow(0);
        _buffer[_length++] = '&';
        std::memcpy(_buffer + _length, e->name, e->length);
        _length += e->length;
        _buffer[_length++] = ';';
    }
    _buffer[_length] = 0;
    return _buffer;
}
