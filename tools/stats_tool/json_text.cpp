#include "json_text.h"

#include <cstdint>
#include <cstdio>

std::string json_string(const std::string& text) {
    std::string out = "\"";
    for (unsigned char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
            out += escaped;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out + "\"";
}

std::string json_array(const std::vector<std::string>& items) {
    std::string out = "[";
    for (std::size_t i = 0; i < items.size(); ++i) out += (i ? ", " : "") + json_string(items[i]);
    return out + "]";
}

namespace {

class json_reader_c {
  public:
    explicit json_reader_c(const std::string& text) : _text(text) {}

    void skip_blanks() {
        while (_at < _text.size() && (_text[_at] == ' ' || _text[_at] == '\t' ||
                                      _text[_at] == '\n' || _text[_at] == '\r'))
            ++_at;
    }
    bool take(char c) {
        skip_blanks();
        if (_at < _text.size() && _text[_at] == c) {
            ++_at;
            return true;
        }
        return false;
    }
    bool at_end() {
        skip_blanks();
        return _at == _text.size();
    }

    // A string token, its escapes resolved into UTF-8.
    bool string(std::string& out, std::string& why) {
        if (!take('"')) return fail(why, "a string was expected");
        while (_at < _text.size()) {
            unsigned char c = static_cast<unsigned char>(_text[_at++]);
            if (c == '"') return true;
            if (c < 0x20) return fail(why, "a control character stands in a string");
            if (c != '\\') {
                out += static_cast<char>(c);
                continue;
            }
            if (_at >= _text.size()) break;
            char e = _text[_at++];
            switch (e) {
            case '"': out += '"'; break;
            case '\\': out += '\\'; break;
            case '/': out += '/'; break;
            case 'b': out += '\b'; break;
            case 'f': out += '\f'; break;
            case 'n': out += '\n'; break;
            case 'r': out += '\r'; break;
            case 't': out += '\t'; break;
            case 'u': {
                std::uint32_t code = 0;
                if (!hex4(code)) return fail(why, "\\u needs four hexadecimal digits");
                if (code >= 0xD800 && code < 0xDC00) {
                    std::uint32_t low = 0;
                    if (_text.compare(_at, 2, "\\u") != 0) return fail(why, "a lone surrogate");
                    _at += 2;
                    if (!hex4(low) || low < 0xDC00 || low >= 0xE000)
                        return fail(why, "a lone surrogate");
                    code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
                } else if (code >= 0xDC00 && code < 0xE000) {
                    return fail(why, "a lone surrogate");
                }
                append_utf8(out, code);
                break;
            }
            default: return fail(why, "an unknown escape");
            }
        }
        return fail(why, "a string is not closed");
    }

  private:
    static bool fail(std::string& why, const char* what) {
        why = what;
        return false;
    }
    bool hex4(std::uint32_t& code) {
        if (_at + 4 > _text.size()) return false;
        for (int i = 0; i < 4; ++i) {
            char h = _text[_at++];
            code <<= 4;
            if (h >= '0' && h <= '9')
                code |= static_cast<std::uint32_t>(h - '0');
            else if (h >= 'a' && h <= 'f')
                code |= static_cast<std::uint32_t>(h - 'a' + 10);
            else if (h >= 'A' && h <= 'F')
                code |= static_cast<std::uint32_t>(h - 'A' + 10);
            else
                return false;
        }
        return true;
    }
    static void append_utf8(std::string& out, std::uint32_t code) {
        if (code < 0x80) {
            out += static_cast<char>(code);
        } else if (code < 0x800) {
            out += static_cast<char>(0xC0 | (code >> 6));
            out += static_cast<char>(0x80 | (code & 0x3F));
        } else if (code < 0x10000) {
            out += static_cast<char>(0xE0 | (code >> 12));
            out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (code & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (code >> 18));
            out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (code & 0x3F));
        }
    }

    const std::string& _text;
    std::size_t _at = 0;
};

} // namespace

bool parse_json_string_array(const std::string& text, std::vector<std::string>& items,
                             std::string& why) {
    items.clear();
    json_reader_c reader(text);
    if (!reader.take('[')) {
        why = "a JSON array was expected";
        return false;
    }
    if (!reader.take(']')) {
        do {
            std::string item;
            if (!reader.string(item, why)) return false;
            items.push_back(item);
        } while (reader.take(','));
        if (!reader.take(']')) {
            why = "the array is not closed";
            return false;
        }
    }
    if (!reader.at_end()) {
        why = "something follows the array";
        return false;
    }
    return true;
}
