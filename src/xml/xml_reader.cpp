#include "xml/xml_reader.h"

#include "files/basic_file.h"
#include "support/trc.h"
#include "xml/xml_chars.h"
#include "xml/xml_doc.h"
#include "xml/xml_node.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <memory>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

constexpr const char* source = "xml_reader";

bool is_line_end(unsigned char c) { return c == '\n' || c == '\r'; }

// Scans for the bytes that stop a tag, a value or the text between tags run over whole blocks
// of the window: most of a document is such runs, and a call of memchr for each stop byte and
// each tag costs more than the bytes themselves. With SSE2 (every x86-64 target) a block is 16
// bytes, otherwise a 64-bit word whose bytes are taken in memory order (little-endian targets).

// A set of stop bytes: the listed ones and, with `controls`, every byte below 14 (the control
// bytes, among them 0 and the line ends).
template <bool controls, unsigned char... bytes> struct stop_set_s {
    static bool has(unsigned char c) { return ((c == bytes) || ...) || (controls && c < 14); }

#if defined(__SSE2__)
    static constexpr std::size_t block = 16;
    // A bit for each byte of the block at `p` that is in the set.
    static unsigned marks(const unsigned char* p) {
        __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        __m128i m = _mm_setzero_si128();
        ((m = _mm_or_si128(m, _mm_cmpeq_epi8(v, _mm_set1_epi8(static_cast<char>(bytes))))), ...);
        if constexpr (controls)
            m = _mm_or_si128(m, _mm_cmpeq_epi8(_mm_min_epu8(v, _mm_set1_epi8(13)), v));
        return static_cast<unsigned>(_mm_movemask_epi8(m));
    }
    static std::size_t first(unsigned found) {
        return static_cast<std::size_t>(std::countr_zero(found));
    }
#else
    using word_t = std::uint64_t;
    static constexpr word_t ones = 0x0101010101010101ull;
    static constexpr std::size_t block = 8;
    // The high bit of every byte of `w` that equals `c`; above such a byte a few more bits may
    // be set, so only the lowest bit of the result is to be trusted.
    static word_t equal(word_t w, unsigned char c) {
        word_t x = w ^ (ones * c);
        return (x - ones) & ~x & (ones * 0x80);
    }
    static word_t marks(const unsigned char* p) {
        word_t w;
        std::memcpy(&w, p, sizeof w);
        word_t m = (equal(w, bytes) | ...);
        if constexpr (controls) m |= (w - ones * 14) & ~w & (ones * 0x80);
        return m;
    }
    static std::size_t first(word_t found) {
        return static_cast<std::size_t>(std::countr_zero(found)) / 8;
    }
#endif
};

// The first byte of [p, end) in the set, or end.
template <class Set>
const unsigned char* find_stop(const unsigned char* p, const unsigned char* end) {
    for (; static_cast<std::size_t>(end - p) >= Set::block; p += Set::block)
        if (auto found = Set::marks(p)) return p + Set::first(found);
    while (p < end && !Set::has(*p)) ++p;
    return p;
}

// The first `<` or 0xFF in [p, end), or end.
const unsigned char* find_tag_start(const unsigned char* p, const unsigned char* end) {
    return find_stop<stop_set_s<false, '<', 0xFF>>(p, end);
}

// The first `>`, line end or 0xFF in [p, end), or end.
const unsigned char* find_tag_stop(const unsigned char* p, const unsigned char* end) {
    return find_stop<stop_set_s<false, '>', '\n', '\r', 0xFF>>(p, end);
}

// Whether a tag can be read where it stands: its text holds no line end (which vanishes from a
// copied tag), no 0 (which ends a copied tag early) and no 0xFF (which ends the input).
bool keeps_tag_in_place(unsigned char c) { return c != 0 && !is_line_end(c) && c != 0xFF; }

// The first `>` in [p, end) before any byte that keeps the tag from being read in place, or
// the first such byte, or end. The block test flags every control byte below 14; those that
// may stand in a tag (tab, vertical tab, form feed, ...) are passed over one by one.
const unsigned char* find_plain_tag_end(const unsigned char* p, const unsigned char* end) {
    for (;;) {
        p = find_stop<stop_set_s<true, '>', 0xFF>>(p, end);
        if (p == end || *p >= 14 || !keeps_tag_in_place(*p)) return p;
        ++p;
    }
}

// The first byte of [p, end) that may end or spoil an attribute value read in place: `"`, `&`,
// `>`, a line end, 0 or 0xFF; or end. Other control bytes (a tab) are passed over one by one.
const unsigned char* find_value_stop(const unsigned char* p, const unsigned char* end) {
    for (;;) {
        p = find_stop<stop_set_s<true, '"', '&', '>', 0xFF>>(p, end);
        if (p == end || *p >= 14 || !keeps_tag_in_place(*p)) return p;
        ++p;
    }
}

// White space that stays in a tag's text: line ends vanish from a copied tag instead.
const char* skip_blanks(const char* p) {
    while (xml_chars_n::is_blank(*p)) ++p;
    return p;
}

const char* skip_spaces(const char* p) {
    while (xml_chars_n::is_space(*p)) ++p;
    return p;
}

// Removes white space at both ends of `text`, as the stream's trim does.
void trim(std::string& text) {
    std::size_t end = text.size();
    while (end && xml_chars_n::is_space(text[end - 1])) --end;
    std::size_t start = 0;
    while (start < end && xml_chars_n::is_space(text[start])) ++start;
    text.erase(end);
    text.erase(0, start);
}

} // namespace

// ---- xml_base_reader_c

xml_base_reader_c::xml_base_reader_c()
    : _buffer(new char[buffer_step]()), _buffer_size(buffer_step), _capacity(buffer_step) {}

xml_base_reader_c::~xml_base_reader_c() = default;

unsigned char xml_base_reader_c::next_char() { return end_of_input; }

void xml_base_reader_c::step_back() {}

void xml_base_reader_c::reset() {
    std::memset(_buffer.get(), 0, static_cast<std::size_t>(_buffer_size));
    _cursor = 0;
    _drop_window();
}

bool xml_base_reader_c::_fill() { return false; }

void xml_base_reader_c::_enlarge_buffer() {
    _reserve(_buffer ? _buffer_size + buffer_step : buffer_step);
    _buffer_size = _buffer ? _buffer_size + buffer_step : buffer_step;
}

// The cells behind the buffer's size are allocated ahead, doubling, so that a tag of many
// megabytes read window by window is copied a few times, not once per window.
void xml_base_reader_c::_reserve(std::uint64_t size) {
    if (size <= _capacity) return;
    std::uint64_t capacity = std::max(size, _capacity * 2);
    std::unique_ptr<char[]> grown(new char[capacity]());
    if (_buffer) std::memcpy(grown.get(), _buffer.get(), static_cast<std::size_t>(_buffer_size));
    _buffer = std::move(grown);
    _capacity = capacity;
}

// Every byte read is first checked against the buffer: at the last cell the buffer grows by
// 512. The checks of a whole run are made at once here, by the highest cursor any of them sees,
// so that a long tag grows its buffer once per run instead of once per 512 bytes. A line end
// behind the run is checked at the cursor after it, and stores nothing that stays.
void xml_base_reader_c::_store_run(const unsigned char* bytes, std::uint64_t count,
                                   bool line_end_follows) {
    if (count == 0 && !line_end_follows) return;
    std::uint64_t highest_check = _cursor + count - (line_end_follows ? 0 : 1);
    if (highest_check >= _buffer_size - 1) {
        std::uint64_t size = (highest_check + 2 + buffer_step - 1) / buffer_step * buffer_step;
        _reserve(size);
        _buffer_size = size;
    }
    std::memcpy(_buffer.get() + _cursor, bytes, static_cast<std::size_t>(count));
    _cursor += count;
}

// Steps over the byte at `p`, the stop of a scan; the byte that ends the input stops the input
// there instead. False at the end of the input.
bool xml_base_reader_c::_step_over(const unsigned char* p) {
    if (*p == end_of_input) {
        _cut();
        return false;
    }
    _in = p + 1;
    return true;
}

// The next window, once the current one is used up; false, for good, at the end of the input.
bool xml_base_reader_c::_refill() {
    if (_ended || !_fill()) {
        _ended = true;
        return false;
    }
    return true;
}

// Consumes the input up to and with the next `<`; what stands before it is dropped. False at
// the end of the input.
bool xml_base_reader_c::_pass_to_tag() {
    for (;;) {
        const unsigned char* p = find_tag_start(_in, _in_end);
        _in = p;
        if (p < _in_end) return _step_over(p);
        if (!_refill()) return false;
    }
}

// Consumes the input up to and with the next `>`, storing what stands before it in the tag
// without its line ends. False at the end of the input.
bool xml_base_reader_c::_take_tag_text() {
    for (;;) {
        const unsigned char* p = find_tag_stop(_in, _in_end);
        bool line_end = p < _in_end && is_line_end(*p);
        _store_run(_in, static_cast<std::uint64_t>(p - _in), line_end);
        _in = p;
        if (p < _in_end) {
            if (!_step_over(p)) return false;
            if (!line_end) return true;
            continue;
        }
        if (!_refill()) return false;
    }
}

// Whatever stands before the `<` is skipped unseen. Line ends inside the tag vanish without a
// trace, so they don't separate words; the tag ends at the first `>` wherever it stands.
bool xml_base_reader_c::_read_tag() {
    _cursor = 0;
    _buffer[0] = 0;
    if (!_pass_to_tag() || !_take_tag_text()) return false;
    _buffer[_cursor] = 0;
    _cursor = 0;
    return true;
}

void xml_base_reader_c::_skip_spaces() {
    if (_cursor >= _buffer_size) return;
    const char* p = _buffer.get() + _cursor;
    while (xml_chars_n::is_space(*p)) ++p; // the ending 0 is no space
    _cursor = static_cast<std::uint64_t>(p - _buffer.get());
}

// "^M" as two printable characters ends the tag too: what follows them is ignored.
bool xml_base_reader_c::_is_tag_end() {
    _skip_spaces();
    char c = _buffer[_cursor];
    if (c == 0 || c == '\n' || (c == '^' && _buffer[_cursor + 1] == 'M')) {
        _buffer[_cursor] = 0;
        return true;
    }
    return false;
}

char* xml_base_reader_c::_get_word(char delimiter, bool skip_spaces, bool quoted) {
    const bool stop_at_space = skip_spaces && !quoted;
    if (skip_spaces) _skip_spaces();
    if (_buffer[_cursor] == 0) return nullptr;
    std::uint64_t begin = _cursor;
    if (quoted) {
        if (_buffer[_cursor] != delimiter) return nullptr;
        ++begin;
    }
    std::uint64_t end = begin;
    if (!stop_at_space && delimiter) {
        // Nothing stops the scan but the delimiter and the end of the text.
        const char* found = std::strchr(_buffer.get() + begin, delimiter);
        if (!found) return nullptr;
        end = static_cast<std::uint64_t>(found - _buffer.get());
    }
    if (stop_at_space) {
        // The delimiter ends the word; white space or the end of the text before it fail.
        for (;; ++end) {
            char c = _buffer[end];
            if (c == delimiter) break;
            if (xml_chars_n::is_space_or_end(c)) return nullptr;
        }
    } else {
        for (; _buffer[end] != delimiter; ++end)
            if (_buffer[end] == 0) return nullptr;
    }
    _cursor = end;
    if (_buffer[_cursor] != 0) {
        _buffer[_cursor] = 0;
        ++_cursor;
    }
    return _buffer.get() + begin;
}

bool xml_base_reader_c::read_declaration() {
    if (!document || !_read_tag()) return false;
    const char* word = _get_word(' ', false, false);
    if (!word || std::strcmp(word, "?xml") != 0) return false;
    for (;;) {
        const char* name = _get_word('=', true, false);
        if (!name) break;
        if (std::strcmp(name, "version") == 0)
            document->set_version(_get_word('"', true, true));
        else if (std::strcmp(name, "encoding") == 0)
            document->set_encoding(_get_word('"', true, true));
        else if (std::strcmp(name, "standalone") == 0)
            document->set_standalone(_get_word('"', true, true));
        else
            break;
    }
    if (!document->get_version()) return false;
    _skip_spaces();
    const char* rest = _get_word(0, true, false);
    return rest && std::strcmp(rest, "?") == 0;
}

// Line feed, carriage return and tab are dropped; the byte 1 empties what was collected, as it
// empties a stream.
void xml_base_reader_c::_collect_text() {
    _text.clear();
    // White space in front of the text would be trimmed away, and mostly there is nothing else
    // before the next tag: it is passed over without collecting it.
    {
        const unsigned char* p = _in;
        while (p < _in_end && xml_chars_n::is_space(static_cast<char>(*p))) ++p;
        _in = p;
    }
    for (;;) {
        const unsigned char* p = _in;
        while (p < _in_end) {
            unsigned char c = *p;
            if (c == '<' || c == end_of_input) break;
            ++p;
            if (c == '\n' || c == '\r' || c == '\t') continue;
            if (c == static_cast<unsigned char>(utl_stream_c::clear_char)) {
                _text.clear();
                continue;
            }
            _text.push_back(static_cast<char>(c));
        }
        _in = p;
        if (p < _in_end) {
            if (*p == end_of_input) _cut();
            return;
        }
        if (!_refill()) return;
    }
}

// The element's name in the general way: the rest of the tag when it holds no white space,
// else the word before the first space, else the word before the first tab.
const char* xml_base_reader_c::_element_name() {
    const char* name = _get_word(0, true, false);
    if (!name) name = _get_word(' ', true, false);
    if (!name) name = _get_word('\t', true, false);
    if (!name || !xml_document_c::validate_xml_name(name)) return nullptr;
    return name;
}

// The quick steps below read the common forms in one pass over the byte classes, and give the
// outcome the general steps would give them; any other form makes them return null with the
// cursor where it was, and the general steps take over.

// A valid name that is the rest of the tag, or that a space or a tab ends.
const char* xml_base_reader_c::_quick_element_name() {
    _skip_spaces();
    char* begin = _buffer.get() + _cursor;
    if (!xml_chars_n::is_name_start(*begin)) return nullptr;
    char* end = xml_chars_n::skip_name(begin);
    if (*end != 0 && *end != ' ' && *end != '\t') return nullptr;
    _cursor = static_cast<std::uint64_t>(end - _buffer.get());
    if (*end) {
        *end = 0;
        ++_cursor;
    }
    return begin;
}

// A valid attribute name that `=` ends.
const char* xml_base_reader_c::_quick_attribute_name() {
    char* begin = _buffer.get() + _cursor;
    if (!xml_chars_n::is_name_start(*begin)) return nullptr;
    char* end = xml_chars_n::skip_name(begin);
    if (*end != '=') return nullptr;
    *end = 0;
    _cursor = static_cast<std::uint64_t>(end + 1 - _buffer.get());
    return begin;
}

// A quoted value right at the cursor; `has_reference` tells whether it holds a `&`.
const char* xml_base_reader_c::_quick_value(bool& has_reference) {
    char* begin = _buffer.get() + _cursor;
    if (*begin != '"') return nullptr;
    ++begin;
    char* end = std::strchr(begin, '"');
    if (!end) return nullptr;
    has_reference = std::memchr(begin, '&', static_cast<std::size_t>(end - begin)) != nullptr;
    *end = 0;
    _cursor = static_cast<std::uint64_t>(end + 1 - _buffer.get());
    return begin;
}

// A tag that lies whole in the window is read where it stands, which saves copying it: its
// words are views into the window, and nothing is written there, so the input stays as it was
// read. Each step below gives the outcome that the general steps give the same text; at
// anything else the tag goes to the token buffer and the general steps take over from there.
xml_base_reader_c::tag_at_t xml_base_reader_c::_next_tag(const char*& begin, const char*& end) {
    _cursor = 0;
    _buffer[0] = 0;
    if (!_pass_to_tag()) return tag_at_t::none;
    if (*_in != '!' && *_in != '/') {
        begin = reinterpret_cast<const char*>(_in);
        if (const char* last = _scan_element(begin)) {
            end = last + (_scan.self_closed ? 1 : 0);
            _in = reinterpret_cast<const unsigned char*>(end) + 1;
            _account_tag(static_cast<std::uint64_t>(end - begin));
            return tag_at_t::scanned;
        }
    }
    const unsigned char* p = find_plain_tag_end(_in, _in_end);
    if (p < _in_end && *p == '>') {
        begin = reinterpret_cast<const char*>(_in);
        end = reinterpret_cast<const char*>(p);
        _in = p + 1;
        _account_tag(static_cast<std::uint64_t>(end - begin));
        return tag_at_t::window;
    }
    if (!_take_tag_text()) return tag_at_t::none;
    _buffer[_cursor] = 0;
    _cursor = 0;
    return tag_at_t::buffer;
}

// What _store_run would grow the buffer to for the tag stored in one run.
void xml_base_reader_c::_account_tag(std::uint64_t length) {
    if (length < _buffer_size) return;
    std::uint64_t size = (length + 1 + buffer_step - 1) / buffer_step * buffer_step;
    _reserve(size);
    _buffer_size = size;
}

// The window ends with a 0 byte (or with the 0xFF that cut the input), which stops the scans of
// names and blanks; values are scanned up to the window's end.
const char* xml_base_reader_c::_scan_element(const char* begin) {
    const char* window_end = reinterpret_cast<const char*>(_in_end);
    const char* p = skip_blanks(begin);
    if (!xml_chars_n::is_name_start(*p)) return nullptr;
    const char* name_end = xml_chars_n::skip_name(p);
    _scan.name = std::string_view(p, static_cast<std::size_t>(name_end - p));
    _scan.attribute_count = 0;
    _scan.self_closed = false;
    p = name_end;
    if (*p != '>' && *p != '/' && *p != ' ' && *p != '\t') return nullptr;
    for (;;) {
        p = skip_blanks(p);
        if (*p == '>') return p;
        if (*p == '/') {
            if (p[1] != '>') return nullptr;
            _scan.self_closed = true;
            return p;
        }
        if (!xml_chars_n::is_name_start(*p) || _scan.attribute_count == scanned_attributes)
            return nullptr;
        const char* attr_end = xml_chars_n::skip_name(p);
        if (attr_end[0] != '=' || attr_end[1] != '"') return nullptr;
        const char* value = attr_end + 2;
        bool has_reference = false;
        const char* stop = value;
        for (;;) {
            stop = reinterpret_cast<const char*>(
                find_value_stop(reinterpret_cast<const unsigned char*>(stop),
                                reinterpret_cast<const unsigned char*>(window_end)));
            if (stop == window_end || *stop != '&') break;
            has_reference = true;
            ++stop;
        }
        if (stop == window_end || *stop != '"') return nullptr;
        _scan.attributes[_scan.attribute_count++] = {
            p, value, static_cast<std::size_t>(attr_end - p),
            static_cast<std::size_t>(stop - value), has_reference};
        p = stop + 1;
    }
}

bool xml_base_reader_c::_build_scanned(xml_builder_i& builder, frame_s* parent, bool skip_text,
                                       frame_s& opened) {
    void* element = builder.open_element(_scan.name, parent ? parent->element : nullptr);
    if (!element) return false;
    for (std::size_t i = 0; i < _scan.attribute_count; ++i) {
        const scanned_attribute_s& a = _scan.attributes[i];
        std::string_view value(a.value, a.value_length);
        if (a.has_reference) {
            const char* translated = _translator.translate_from_xml(value.data(), value.size());
            if (!translated) return false;
            value = translated;
        }
        builder.add_attribute(element, std::string_view(a.name, a.name_length), value);
    }
    frame_s frame{element, false};
    return _element_done(builder, frame, _scan.self_closed, skip_text, opened);
}

void xml_base_reader_c::_to_buffer(const char* begin, const char* end, const char* at) {
    std::memcpy(_buffer.get(), begin, static_cast<std::size_t>(end - begin));
    _buffer[end - begin] = 0;
    _cursor = static_cast<std::uint64_t>(at - begin);
}

// The text of a tag in the window is followed by its `>`, or, for a self-closed element, by the
// `/` before it: neither is white space, a name character, `=` or `"`, so the scans over those
// classes stop there without a bound.
int xml_base_reader_c::_read_in_place(xml_builder_i& builder, frame_s* parent, bool skip_text,
                                      frame_s& opened, const char* begin, const char* end) {
    const std::size_t length = static_cast<std::size_t>(end - begin);
    if (length >= 3 && begin[0] == '!' && begin[1] == '-' && begin[2] == '-')
        return end[-2] == '-' && end[-1] == '-';

    if (length && begin[0] == '/') {
        const char* name = skip_spaces(begin + 1);
        if (name == end) return 0;
        for (const char* p = name; p < end; ++p)
            if (xml_chars_n::is_space(*p)) return 0;
        if (!parent || !parent->element) return 0;
        const char* open_name = builder.name_of(parent->element);
        const std::size_t n = static_cast<std::size_t>(end - name);
        if (!open_name || std::strncmp(open_name, name, n) != 0 || open_name[n] != 0) return 0;
        parent->closed = true;
        builder.set_closed(parent->element);
        return 1;
    }

    const char* tag_end = end;
    const bool self_closed = length && end[-1] == '/';
    if (self_closed) --end;
    const char* name = skip_spaces(begin);
    const char* name_end = xml_chars_n::skip_name(name);
    if (name == end || !xml_chars_n::is_name_start(*name) ||
        (name_end < end && *name_end != ' ' && *name_end != '\t')) {
        _to_buffer(begin, tag_end, begin);
        return -1;
    }
    void* element = builder.open_element(std::string_view(name, name_end - name),
                                         parent ? parent->element : nullptr);
    if (!element) return 0;
    frame_s frame{element, false};
    const char* p = name_end < end ? name_end + 1 : name_end;
    for (;;) {
        p = skip_spaces(p);
        if (p == end) break;
        const char* attr_end = xml_chars_n::skip_name(p);
        const char* quote = attr_end + 1;
        const char* close = nullptr;
        if (xml_chars_n::is_name_start(*p) && *attr_end == '=' && quote < end && *quote == '"')
            close = static_cast<const char*>(std::memchr(quote + 1, '"', end - quote - 1));
        if (!close) {
            _to_buffer(begin, end, p);
            return _element_rest(builder, frame, self_closed, skip_text, opened);
        }
        std::string_view value(quote + 1, close - quote - 1);
        if (std::memchr(value.data(), '&', value.size())) {
            const char* translated = _translator.translate_from_xml(value.data(), value.size());
            if (!translated) return 0;
            value = translated;
        }
        builder.add_attribute(element, std::string_view(p, attr_end - p), value);
        p = close + 1;
    }
    return _element_done(builder, frame, self_closed, skip_text, opened);
}

bool xml_base_reader_c::_read_one(xml_builder_i& builder, frame_s* parent, bool skip_text,
                                  frame_s& opened) {
    opened = frame_s{};
    if (_is_tag_end()) {
        const char* begin = nullptr;
        const char* end = nullptr;
        tag_at_t at = _next_tag(begin, end);
        if (at == tag_at_t::none) return false;
        if (at == tag_at_t::scanned) return _build_scanned(builder, parent, skip_text, opened);
        if (at == tag_at_t::window) {
            int done = _read_in_place(builder, parent, skip_text, opened, begin, end);
            if (done >= 0) return done == 1;
        }
    }
    char* text = _buffer.get();

    if (text[0] == '!' && text[1] == '-' && text[2] == '-') {
        std::size_t length = std::strlen(text);
        if (text[length - 2] != '-' || text[length - 1] != '-') return false;
        _cursor = length;
        return true;
    }

    if (text[0] == '/') {
        _cursor = 1;
        _skip_spaces();
        const char* name = _get_word(0, true, false);
        // A closing tag with nothing open is a broken document.
        if (!name || !parent || !parent->element) return false;
        const char* open_name = builder.name_of(parent->element);
        if (!open_name || std::strcmp(name, open_name) != 0) return false;
        parent->closed = true;
        builder.set_closed(parent->element);
        return true;
    }

    bool self_closed = false;
    if (std::size_t length = std::strlen(text); length && text[length - 1] == '/') {
        text[length - 1] = 0;
        self_closed = true;
    }
    const char* name = _quick_element_name();
    if (!name) name = _element_name();
    if (!name) return false;

    void* element = builder.open_element(name, parent ? parent->element : nullptr);
    if (!element) return false;
    frame_s frame{element, false};
    return _element_rest(builder, frame, self_closed, skip_text, opened);
}

bool xml_base_reader_c::_element_rest(xml_builder_i& builder, frame_s& frame, bool self_closed,
                                      bool skip_text, frame_s& opened) {
    void* element = frame.element;
    while (!_is_tag_end()) {
        const char* attr_name = _quick_attribute_name();
        if (!attr_name) {
            attr_name = _get_word('=', true, false);
            if (!attr_name || !xml_document_c::validate_xml_name(attr_name)) return false;
        }
        // Both steps cut their word at the byte before the cursor.
        std::string_view name_view(attr_name, _word_end() - attr_name);
        bool has_reference = false;
        const char* raw = _quick_value(has_reference);
        if (!raw) {
            raw = _get_word('"', true, true);
            has_reference = raw && std::strchr(raw, '&');
        }
        if (!raw) return false;
        std::string_view value(raw, _word_end() - raw);
        // A value without `&` has no reference to decode and is taken as it stands.
        if (has_reference) {
            const char* translated = _translator.translate_from_xml(raw);
            if (!translated) return false;
            value = translated;
        }
        builder.add_attribute(element, name_view, value);
    }
    return _element_done(builder, frame, self_closed, skip_text, opened);
}

bool xml_base_reader_c::_element_done(xml_builder_i& builder, frame_s& frame, bool self_closed,
                                      bool skip_text, frame_s& opened) {
    void* element = frame.element;
    if (!skip_text) {
        _collect_text();
        trim(_text);
        if (!_text.empty()) {
            frame.closed = true;
            builder.set_closed(element);
            const char* translated = std::strchr(_text.c_str(), '&')
                                         ? _translator.translate_from_xml(_text.c_str())
                                         : _text.c_str();
            if (!translated) return false;
            builder.set_text(element, translated);
        }
    }
    if (self_closed) {
        builder.set_closed(element);
        return true;
    }
    opened = frame;
    return true;
}

bool xml_base_reader_c::read_node(xml_node_c* parent, bool skip_text) {
    if (!document) return false;
    return read_elements(document->node_builder(), parent, skip_text);
}

// The element stack is kept here instead of on the call stack, so that the depth of a document
// costs heap, not stack. Each element on it reads tags until it is closed, and at least one.
bool xml_base_reader_c::read_elements(xml_builder_i& builder, void* parent, bool skip_text) {
    if (!document) return false;
    frame_s top{parent, false};
    std::vector<frame_s> open;
    for (;;) {
        frame_s* at = open.empty() ? (parent ? &top : nullptr) : &open.back();
        frame_s opened;
        if (!_read_one(builder, at, skip_text, opened)) return false;
        if (opened.element) {
            open.push_back(opened);
            continue;
        }
        while (!open.empty() && open.back().closed) open.pop_back();
        if (open.empty()) return true;
    }
}

// ---- xml_file_reader_c

namespace {
// The window of the last file reader of this thread, kept for the next one: a load of a small
// state file then costs no allocation of 32 KB.
thread_local std::unique_ptr<unsigned char[]> spare_window;
} // namespace

xml_file_reader_c::~xml_file_reader_c() {
    xml_file_reader_c::reset();
    if (_window && !spare_window) spare_window = std::move(_window);
}

unsigned char xml_file_reader_c::next_char() { return _take(); }

void xml_file_reader_c::step_back() {
    if (_in && _in > _window.get()) --_in;
}

void xml_file_reader_c::reset() {
    xml_base_reader_c::reset();
    _file.close();
}

bool xml_file_reader_c::open_xml(const char* path) {
    if (!path || !*path) return false;
    QVTR_SCOPE(tr, "xml_file_reader_c::open_xml", source);
    reset();
    if (!_file.open(path, "r", nullptr, open_flags_n::read_ahead | open_flags_n::sequential_scan)) {
        tr.print(4, __LINE__, "Can not open XML file %s (%s)\n", path, std::strerror(errno));
        return false;
    }
    return true;
}

bool xml_file_reader_c::_fill() {
    if (!_file.is_open()) return false;
    if (!_window) {
        _window = spare_window ? std::move(spare_window)
                               : std::make_unique_for_overwrite<unsigned char[]>(window_size + 2);
        _window[0] = 0;
    } else if (_in_end > _window.get()) {
        _window[0] = _in_end[-1];
    }
    std::int64_t n = _file.read(_window.get() + 1, static_cast<std::int64_t>(window_size));
    if (n <= 0) return false;
    _in = _window.get() + 1;
    _in_end = _in + n;
    _window[static_cast<std::size_t>(n) + 1] = 0;
    return true;
}

// ---- xml_stream_reader_c

xml_stream_reader_c::xml_stream_reader_c(const char* text, std::uint64_t length) {
    set_text(text, length);
}

xml_stream_reader_c::~xml_stream_reader_c() { xml_stream_reader_c::reset(); }

void xml_stream_reader_c::set_text(const char* text, std::uint64_t length) {
    reset();
    if (!text) return;
    _text = std::make_unique_for_overwrite<char[]>(length + 1);
    std::memcpy(_text.get(), text, static_cast<std::size_t>(length));
    _text[length] = 0;
    _length = length;
    _in = reinterpret_cast<const unsigned char*>(_text.get());
    _in_end = _in + length;
}

std::uint64_t xml_stream_reader_c::get_position() const {
    return _text ? static_cast<std::uint64_t>(reinterpret_cast<const char*>(_in) - _text.get()) : 0;
}

unsigned char xml_stream_reader_c::next_char() {
    if (_length == 0 || get_position() == _length) return end_of_input;
    return _take();
}

void xml_stream_reader_c::step_back() {
    if (static_cast<std::int32_t>(get_position()) < 1) return;
    --_in;
}

void xml_stream_reader_c::reset() {
    xml_base_reader_c::reset();
    _text.reset();
    _length = 0;
}

// The whole text is one window, handed over by set_text.
bool xml_stream_reader_c::_fill() { return false; }
