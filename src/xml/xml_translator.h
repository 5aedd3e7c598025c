// xml_special_characters_c: the four entity references of the format, both ways. The result of a
// translation lives in the object's buffer and stays valid until its next translation; the first
// 1024 bytes are inline, so that short values cost no allocation.
#pragma once

#include <cstdint>

class xml_special_characters_c {
  public:
    static constexpr std::uint64_t inline_size = 1024;

    xml_special_characters_c() = default;
    xml_special_characters_c(const xml_special_characters_c&) = delete;
    xml_special_characters_c& operator=(const xml_special_characters_c&) = delete;
    virtual ~xml_special_characters_c();

    // `"`, `&`, `<` and `>` become their references. Null, and an empty text, give null.
    const char* translate_to_xml(const char* text);
    // The four references, named in any case, become their characters; everything else stays.
    const char* translate_from_xml(const char* text);
    // The same, for a text of known length that need not be terminated.
    const char* translate_from_xml(const char* text, std::uint64_t length);

    std::uint64_t get_capacity() const { return _capacity; }
    bool is_on_heap() const { return _on_heap; }

  private:
    // New capacity: the request (or the old capacity for 0) rounded down to 64, plus 64.
    void _grow(std::uint64_t request);

    char _inline_buffer[inline_size];
    char* _buffer = _inline_buffer;
    std::uint64_t _capacity = inline_size;
    bool _on_heap = false;
    std::uint64_t _length = 0;
};
