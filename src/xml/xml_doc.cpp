#include "xml/xml_doc.h"

#include "support/trc.h"
#include "utl/cell_pool.h"
#include "utl/utl.h"
#include "xml/xml_chars.h"
#include "xml/xml_reader.h"

#include <cstring>
#include <memory>

namespace {

constexpr const char* source = "xml_doc";

} // namespace

xml_document_c::xml_document_c() { set_name(); }

xml_document_c::~xml_document_c() {
    delete[] _name;
    delete[] _version;
    delete[] _encoding;
    delete[] _style_sheet;
    delete[] _xml_file;
    _entities.clear();
    if (_tree) {
        if (node_c* root = _tree->get_root()) {
            _tree->clear_children(root);
            _tree->set_root(nullptr);
            _tree->delete_node(root);
        }
        delete _tree;
    }
    _entities.free_memory();
}

void xml_document_c::new_line(utl_stream_c& stream) { stream.append('\n'); }

// ---- xml_node_builder_c

const char* xml_node_builder_c::_terminated(std::string& copy, std::string_view text) {
    copy.assign(text.data(), text.size());
    return copy.c_str();
}

void* xml_node_builder_c::open_element(std::string_view name, void* parent) {
    auto* node = new xml_node_c(_terminated(_name, name));
    if (_doc->add_node(node, static_cast<xml_node_c*>(parent))) return node;
    delete node;
    return nullptr;
}

void xml_node_builder_c::add_attribute(void* element, std::string_view name,
                                       std::string_view value) {
    static_cast<xml_node_c*>(element)->add_attribute(_terminated(_name, name),
                                                     _terminated(_value, value));
}

void xml_node_builder_c::set_text(void* element, const char* text) {
    auto* node = static_cast<xml_node_c*>(element);
    node->type = xml_node_c::type_text;
    node->text.append(text);
}

void xml_node_builder_c::set_closed(void* element) {
    static_cast<xml_node_c*>(element)->closed = true;
}

const char* xml_node_builder_c::name_of(void* element) {
    return static_cast<xml_node_c*>(element)->name;
}

// ---- xml_document_c

bool xml_document_c::load(const char* path, xml_builder_i* builder) {
    QVTR_SCOPE(tr, "xml_document_c::load", source);
    cell_pool_c pool;
    auto reader = std::make_unique<xml_file_reader_c>();
    if (!reader->open_xml(path)) return false;
    set_xml_file(path);
    reader->set_document(this);
    if (!reader->read_declaration()) {
        tr.print(4, __LINE__, "Error in DECLARATION header of XML file\n");
        return false;
    }
    if (!reader->read_elements(builder ? *builder : _node_builder, nullptr, false)) {
        tr.print(4, __LINE__, "Can not parse XML file\n");
        return false;
    }
    return true;
}

bool xml_document_c::load_from_str(const char* text, xml_builder_i* builder) {
    QVTR_SCOPE(tr, "xml_document_c::load_from_str", source);
    cell_pool_c pool;
    xml_stream_reader_c reader;
    if (!text || !*text) return false;
    reader.set_text(text, std::strlen(text));
    reader.set_document(this);
    if (!reader.read_declaration()) {
        tr.print(4, __LINE__, "Error in DECLARATION header of XML string\n");
        return false;
    }
    if (!reader.read_elements(builder ? *builder : _node_builder, nullptr, true)) {
        tr.print(4, __LINE__, "Can not parse XML string, \n%s\n", text);
        return false;
    }
    return true;
}

void xml_document_c::set_name() {
    QVTR_SCOPE(tr, "xml_document_c::set_name", source);
    utl_n::str_replace_copy(_name, nullptr);
}

void xml_document_c::set_version(const char* text) {
    QVTR_SCOPE(tr, "xml_document_c::set_version", source);
    utl_n::str_replace_copy(_version, text);
}

void xml_document_c::set_encoding(const char* text) {
    QVTR_SCOPE(tr, "xml_document_c::set_encoding", source);
    utl_n::str_replace_copy(_encoding, text);
}

void xml_document_c::set_style_sheet(const char* text) {
    QVTR_SCOPE(tr, "xml_document_c::set_style_sheet", source);
    utl_n::str_replace_copy(_style_sheet, text);
}

void xml_document_c::set_xml_file(const char* text) {
    QVTR_SCOPE(tr, "xml_document_c::set_xml_file", source);
    utl_n::str_replace_copy(_xml_file, text);
}

// The words "yes" and "no" would only be looked at for a missing text, which has no word to
// compare; every call therefore leaves the flag as it is, and a loaded document is written as
// standalone whatever its declaration said.
void xml_document_c::set_standalone(const char* text) {
    QVTR_SCOPE(tr, "xml_document_c::set_standalone", source);
    (void)text;
}

bool xml_document_c::add_node(xml_node_c* node, xml_node_c* parent) {
    if (!_tree) {
        _tree = new tree_c(node);
        return true;
    }
    if (!parent && _tree->get_root()) {
        node_c* old_root = _tree->set_root(nullptr);
        _tree->clear_children(old_root);
        _tree->delete_node(old_root);
        if (!node || node->parent) return false;
        _tree->set_root(node);
        return true;
    }
    if (!node) return false;
    if (node->parent && node->parent != parent) return false;
    if (parent) {
        node->parent = parent;
        node->prev = parent->last_child;
        node->next = nullptr;
        (parent->last_child ? parent->last_child->next : parent->first_child) = node;
        parent->last_child = node;
        return true;
    }
    _tree->set_root(node);
    return true;
}

void xml_document_c::_write_header(utl_stream_c& stream) {
    stream.append('<');
    stream.append("?xml");
    if (_version) {
        stream.append(" version=\"");
        stream.append(_version);
        stream.append('"');
    }
    if (_encoding) {
        stream.append(" encoding=\"");
        stream.append(_encoding);
        stream.append('"');
    }
    if (!_standalone) stream.append(" standalone=\"no\"");
    stream.append('?');
    stream.append('>');
    new_line(stream);
    if (_style_sheet) {
        stream.append('<');
        stream.append("?xml-stylesheet");
        stream.append(" type=\"text/xsl\" href=\"");
        stream.append(_style_sheet);
        stream.append('"');
        stream.append('?');
        stream.append('>');
        new_line(stream);
    }
}

bool xml_document_c::_write_xml_buf_to_file(const char* text, std::uint64_t length, FILE_c* file) {
    QVTR_SCOPE(tr, "xml_document_c::_write_xml_buf_to_file", source);
    std::int64_t written = file ? file->write(text, static_cast<std::int64_t>(length)) : -1;
    if (written == static_cast<std::int64_t>(length)) return true;
    tr.print(4, __LINE__, "Unable to write %s to xml file\n", text);
    return false;
}

// Preorder with a depth counter: an element's open line on the way down, its close line when
// the walk leaves its last child. No recursion, so any depth is safe.
template <class Sink>
bool xml_document_c::_walk(xml_node_c* node, utl_stream_c& stream, bool clear, Sink sink) {
    const xml_node_c* top = node;
    std::uint64_t depth = node->get_depth();
    for (;;) {
        if (clear) stream.append(utl_stream_c::clear_char);
        node->print_open_tag(stream, indented ? depth : 0);
        if (!sink(stream)) return false;
        if (node->first_child) {
            node = node->first_child_node();
            ++depth;
            continue;
        }
        // Up through every parent whose last child is done, closing it.
        while (node != top && !node->next) {
            node = node->parent_node();
            --depth;
            if (clear) stream.append(utl_stream_c::clear_char);
            node->print_close_tag(stream, indented ? depth : 0);
            if (!sink(stream)) return false;
        }
        if (node == top) return true;
        node = node->next_node();
    }
}

bool xml_document_c::_store(xml_node_c* node, utl_stream_c& stream, FILE_c* file) {
    QVTR_SCOPE(tr, "xml_document_c::_store", source);
    if (!node) {
        _write_header(stream);
        if (!_write_xml_buf_to_file(stream.c_str(), stream.get_length(), file)) return false;
        // A document without elements is its header alone.
        node = get_root();
        if (!node) return true;
    }
    return _walk(node, stream, true, [&](utl_stream_c& line) {
        return _write_xml_buf_to_file(line.c_str(), line.get_length(), file);
    });
}

bool xml_document_c::store(FILE_c* file) {
    QVTR_SCOPE(tr, "xml_document_c::store", source);
    utl_stream_c stream;
    return _store(nullptr, stream, file);
}

void xml_document_c::print(xml_node_c* node, utl_stream_c& stream, bool with_header) {
    if (!node) {
        node = get_root();
        if (!node) return;
        if (with_header) _write_header(stream);
    }
    _walk(node, stream, false, [](utl_stream_c&) { return true; });
}

bool xml_document_c::validate_xml_name(const char* name) {
    if (!name || !*name) return false;
    bool valid = xml_chars_n::is_name_start(name[0]);
    for (const char* p = name; valid && *p; ++p) valid = xml_chars_n::is_name_char(*p);
    if (valid) return true;
    // The scope is opened only where it has something to say: names are checked by the
    // thousand in a load, and a valid one prints nothing.
    QVTR_SCOPE(tr, "xml_document_c::validate_xml_name", source);
    tr.print(4, __LINE__, "Invalid XML name %s\n", name);
    return false;
}
