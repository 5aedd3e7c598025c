// utl_stream_c: the string type of the library. A growable, always zero-terminated UTF-8 buffer
// with a virtual interface; wide text converts on the way in. Appending the character with code
// 1 empties the stream, so that "clear, then append" is one expression.
#pragma once

#include "platform/os.h"

#include <cstdint>

class utl_stream_c;

// The writing half of the interface: the fourteen forms of append.
class qv_stream_c {
  public:
    virtual ~qv_stream_c() = default;
    virtual qv_stream_c& append(unsigned long long value) = 0;
    virtual qv_stream_c& append(long long value) = 0;
    virtual qv_stream_c& append(bool value) = 0;
    virtual qv_stream_c& append(double value) = 0;
    virtual qv_stream_c& append(unsigned long value) = 0;
    virtual qv_stream_c& append(unsigned int value) = 0;
    virtual qv_stream_c& append(unsigned short value) = 0;
    virtual qv_stream_c& append(long value) = 0;
    virtual qv_stream_c& append(int value) = 0;
    virtual qv_stream_c& append(short value) = 0;
    virtual qv_stream_c& append(char value) = 0;
    virtual qv_stream_c& append(const utl_stream_c& other) = 0;
    virtual qv_stream_c& append(const os::wide_char* text) = 0;
    virtual qv_stream_c& append(const char* text) = 0;
};

class utl_stream_c : public qv_stream_c {
  public:
    // The character that empties a stream when it is appended.
    static constexpr char clear_char = '\x01';

    utl_stream_c();
    explicit utl_stream_c(const char* text);
    utl_stream_c(const utl_stream_c& other);
    utl_stream_c& operator=(const utl_stream_c& other);
    ~utl_stream_c() override;

    utl_stream_c& append(unsigned long long value) override;
    utl_stream_c& append(long long value) override;
    utl_stream_c& append(bool value) override;
    utl_stream_c& append(double value) override;
    utl_stream_c& append(unsigned long value) override;
    utl_stream_c& append(unsigned int value) override;
    utl_stream_c& append(unsigned short value) override;
    utl_stream_c& append(long value) override;
    utl_stream_c& append(int value) override;
    utl_stream_c& append(short value) override;
    utl_stream_c& append(char value) override;
    utl_stream_c& append(const utl_stream_c& other) override;
    utl_stream_c& append(const os::wide_char* text) override;
    utl_stream_c& append(const char* text) override;

    virtual bool equals(const utl_stream_c& other) const;
    virtual bool equals(const os::wide_char* text) const;
    virtual bool equals(const char* text) const;

    virtual bool remove_suffix(unsigned long long value);
    virtual bool remove_suffix(long long value);
    virtual bool remove_suffix(bool value);
    virtual bool remove_suffix(double value);
    virtual bool remove_suffix(unsigned long value);
    virtual bool remove_suffix(unsigned int value);
    virtual bool remove_suffix(unsigned short value);
    virtual bool remove_suffix(long value);
    virtual bool remove_suffix(int value);
    virtual bool remove_suffix(short value);
    virtual bool remove_suffix(char value);
    virtual bool remove_suffix(const utl_stream_c& other);
    virtual bool remove_suffix(const os::wide_char* text);
    virtual bool remove_suffix(const char* text);

    virtual int compare(const char* text, bool case_sensitive) const;
    virtual int compare(const utl_stream_c& other, bool case_sensitive) const;
    virtual bool starts_with(const char* text, bool case_sensitive) const;
    virtual bool ends_with(const char* text, bool case_sensitive) const;
    virtual const char* c_str() const;

    // Makes room for `extra` more characters; doubles short texts, grows long ones by 1024.
    void _add_memory(std::uint64_t extra);
    // Removes white space at both ends.
    void trim();
    // The first occurrence of `pattern` in the text, or null.
    const char* find(const char* pattern) const;
    // Replaces the first occurrence of `old_text` by `new_text`; false when there is none.
    bool replace_first(const char* old_text, const char* new_text);

    std::uint64_t get_length() const { return _length; }
    std::uint64_t get_capacity() const { return _capacity; }

  protected:
    char* _text = nullptr;
    std::uint64_t _length = 0;
    std::uint64_t _capacity = 0;

  private:
    utl_stream_c& _append_bytes(const char* bytes, std::uint64_t count);
    bool _remove_suffix_bytes(const char* bytes, std::uint64_t count);
};

// Holds the result of one conversion between UTF-8 and UTF-16 until the next of the same kind.
class basis_multi_lang_c {
  public:
    basis_multi_lang_c() = default;
    virtual ~basis_multi_lang_c();
    basis_multi_lang_c(const basis_multi_lang_c&) = delete;
    basis_multi_lang_c& operator=(const basis_multi_lang_c&) = delete;

    // The UTF-8 form of `wide`, or null when the conversion yields nothing.
    const char* to_utf8(const os::wide_char* wide);
    // The UTF-16 form of `narrow`, or null likewise.
    const os::wide_char* to_unicode(const char* narrow);

  private:
    os::wide_char* _wide = nullptr;
    char* _narrow = nullptr;
};
