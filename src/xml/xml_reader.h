// The reader of the XML subset that xml_document_c writes: a pull parser over bytes, without
// decoding, DTDs, namespaces, character references or CDATA. xml_base_reader_c is the tokeniser
// and the grammar; xml_file_reader_c and xml_stream_reader_c are its two sources of bytes.
//
// A source hands the tokeniser whole windows of bytes, and the tokeniser scans them in place;
// next_char and step_back give the same bytes one at a time. The byte 0xFF doubles as the end
// mark: wherever it stands, the input ends there.
#pragma once

#include "files/file_modif.h"
#include "xml/xml_translator.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

class xml_document_c;
class xml_node_c;

// Where the elements of a parse go: the document's nodes, or a tree's items directly. An
// element is an opaque handle of the builder's own.
class xml_builder_i {
  public:
    virtual ~xml_builder_i() = default;
    // A new element below `parent` (null at the top); null when the builder refuses it. The
    // name, like the texts of add_attribute, is a view into the reader's input: it need not end
    // with a 0 byte, and it is gone after the call.
    virtual void* open_element(std::string_view name, void* parent) = 0;
    virtual void add_attribute(void* element, std::string_view name, std::string_view value) = 0;
    // The element's text, decoded; it makes the element one that holds text.
    virtual void set_text(void* element, const char* text) = 0;
    // The element is complete.
    virtual void set_closed(void* element) = 0;
    // The name that a closing tag must repeat.
    virtual const char* name_of(void* element) = 0;
};

class xml_base_reader_c {
  public:
    static constexpr unsigned char end_of_input = 255;
    static constexpr std::uint64_t buffer_step = 512;

    xml_base_reader_c();
    xml_base_reader_c(const xml_base_reader_c&) = delete;
    xml_base_reader_c& operator=(const xml_base_reader_c&) = delete;
    virtual ~xml_base_reader_c();

    // The next input byte, 255 at the end of the input.
    virtual unsigned char next_char();
    // Un-reads one byte.
    virtual void step_back();
    // Forgets the source and the current tag.
    virtual void reset();

    // The first tag must be the declaration; its values go to the document.
    bool read_declaration();
    // One tag and, for an element, its whole subtree, attached below `parent`.
    bool read_node(xml_node_c* parent, bool skip_text);
    // The same into any builder; `parent` is one of the builder's elements, or null.
    bool read_elements(xml_builder_i& builder, void* parent, bool skip_text);

    // Loads the next tag's text, between `<` and `>`, into the token buffer.
    bool _read_tag();
    void _skip_spaces();
    // Skips white space and tells whether the tag's text is used up.
    bool _is_tag_end();
    // Cuts one word out of the token buffer in place; null when there is none.
    char* _get_word(char delimiter, bool skip_spaces, bool quoted);
    // Grows the token buffer by 512 bytes.
    void _enlarge_buffer();

    void set_document(xml_document_c* doc) { document = doc; }
    const char* get_buffer() const { return _buffer.get(); }
    std::uint64_t get_buffer_size() const { return _buffer_size; }
    std::uint64_t get_cursor() const { return _cursor; }

    xml_document_c* document = nullptr;

  protected:
    // Makes the next window of input available in [_in, _in_end), with a 0 byte at _in_end;
    // false at the end of the source. Called only when the current window is used up.
    virtual bool _fill();

    // The inline form of next_char.
    unsigned char _take() {
        for (;;) {
            if (_in < _in_end) {
                unsigned char c = *_in;
                if (c == end_of_input) return _cut();
                ++_in;
                return c;
            }
            if (!_refill()) return end_of_input;
        }
    }
    // The input ends at the byte under `_in`.
    unsigned char _cut() {
        _in_end = _in;
        _ended = true;
        return end_of_input;
    }
    // Forgets the window.
    void _drop_window() {
        _in = _in_end = nullptr;
        _ended = false;
    }

    const unsigned char* _in = nullptr;
    const unsigned char* _in_end = nullptr;
    bool _ended = false;

  private:
    // Stores a run of tag text without line ends at the cursor, growing the buffer as the
    // bytes' checks require; `line_end_follows` counts the check of a line end behind it.
    void _store_run(const unsigned char* bytes, std::uint64_t count, bool line_end_follows);
    // Consumes the input up to and with the next `<`, dropping what stands before it.
    bool _pass_to_tag();
    // Consumes the input up to and with the next `>`, keeping the tag text before it.
    bool _take_tag_text();
    // The shared steps of the two scans above: past the byte a scan stopped at, and on to the
    // next window of the input.
    bool _step_over(const unsigned char* p);
    bool _refill();
    // Reads element text up to the next `<` (left unread) or the end of the input.
    void _collect_text();
    // An element whose children are being read, and whether its end has been seen.
    struct frame_s {
        void* element = nullptr;
        bool closed = false;
    };
    // One tag and what it starts, without the children of an element; `opened` receives an
    // element whose children are to be read next.
    bool _read_one(xml_builder_i& builder, frame_s* parent, bool skip_text, frame_s& opened);

    // Where the next tag's text is: an element of the common form read in one pass over the
    // window (its parts in _scan); in the window, between `begin` and `end` (the `>`), when it
    // lies there whole and has no line end, 0 or 0xFF; otherwise copied to the token buffer.
    enum class tag_at_t { none, scanned, window, buffer };
    tag_at_t _next_tag(const char*& begin, const char*& end);
    // The steps of _read_one for a tag in the window: 1 and 0 for true and false, or -1 after
    // the tag was copied to the token buffer for the general steps, which start afresh.
    int _read_in_place(xml_builder_i& builder, frame_s* parent, bool skip_text, frame_s& opened,
                       const char* begin, const char* end);
    // The parts of an element tag of the common form: a name, attributes `name="value"`
    // separated by blanks, and the end, `>` or `/>`, all in the window and without line ends,
    // 0 or 0xFF. Nothing is built until the tag is known to be whole, so that a tag of any other
    // form is read from its start by the steps below, as if this scan had not been.
    struct scanned_attribute_s {
        const char* name;
        const char* value;
        std::size_t name_length;
        std::size_t value_length;
        bool has_reference;
    };
    static constexpr std::size_t scanned_attributes = 32;
    struct scan_s {
        std::string_view name;
        std::size_t attribute_count = 0;
        bool self_closed = false;
        scanned_attribute_s attributes[scanned_attributes];
    };
    // Scans the tag that starts at `begin`; the end of the tag's text (the `>`, or the `/` of
    // `/>`) when it has the common form, else null.
    const char* _scan_element(const char* begin);
    // Builds the element of a scanned tag.
    bool _build_scanned(xml_builder_i& builder, frame_s* parent, bool skip_text, frame_s& opened);
    // Copies the tag text [begin, end) to the token buffer, with the cursor at `at`.
    void _to_buffer(const char* begin, const char* end, const char* at);
    // The token buffer grows for a tag in the window as it would for the same tag copied.
    void _account_tag(std::uint64_t length);
    // The attributes of an opened element from the token buffer, and what follows them.
    bool _element_rest(xml_builder_i& builder, frame_s& frame, bool self_closed, bool skip_text,
                       frame_s& opened);
    // Text, closing and the element's frame, once its tag is read.
    bool _element_done(xml_builder_i& builder, frame_s& frame, bool self_closed, bool skip_text,
                       frame_s& opened);

    const char* _element_name();
    const char* _quick_element_name();
    const char* _quick_attribute_name();
    const char* _quick_value(bool& has_reference);
    // The 0 byte behind the word that a step has just cut.
    const char* _word_end() const { return _buffer.get() + _cursor - 1; }

    // Makes room for `size` cells without changing the buffer's size.
    void _reserve(std::uint64_t size);

    std::unique_ptr<char[]> _buffer;
    std::uint64_t _buffer_size = 0;
    std::uint64_t _capacity = 0;
    std::uint64_t _cursor = 0;
    xml_special_characters_c _translator;
    std::string _text;
    scan_s _scan;
};

class xml_file_reader_c : public xml_base_reader_c {
  public:
    static constexpr std::uint64_t window_size = 32768;

    xml_file_reader_c() = default;
    ~xml_file_reader_c() override;

    unsigned char next_char() override;
    void step_back() override;
    void reset() override;

    // Opens the file for reading; false, with a trace line, when it can't be opened.
    bool open_xml(const char* path);

  protected:
    bool _fill() override;

  private:
    FILE_c _file;
    // One byte of the previous window is kept in front of the new one, for step_back, and a 0
    // byte behind its end stops the scans that look at one byte at a time.
    std::unique_ptr<unsigned char[]> _window;
};

class xml_stream_reader_c : public xml_base_reader_c {
  public:
    xml_stream_reader_c() = default;
    // Reads a private copy of the first `length` bytes of `text`.
    xml_stream_reader_c(const char* text, std::uint64_t length);
    ~xml_stream_reader_c() override;

    unsigned char next_char() override;
    void step_back() override;
    void reset() override;

    // Replaces the text by a private copy; the position goes back to 0.
    void set_text(const char* text, std::uint64_t length);
    std::uint64_t get_position() const;
    std::uint64_t get_length() const { return _length; }

  protected:
    bool _fill() override;

  private:
    std::unique_ptr<char[]> _text;
    std::uint64_t _length = 0;
};
