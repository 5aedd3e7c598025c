// xml_document_c: XML text on one side, a tree of xml_node_c on the other. It holds the
// declaration's values, drives the reader for loading, and writes the text element by element.
#pragma once

#include "files/file_modif.h"
#include "utl/container_temp.h"
#include "utl/tree.h"
#include "utl/utl_stream.h"
#include "xml/xml_node.h"
#include "xml/xml_reader.h"

#include <cstdint>
#include <string>
#include <string_view>

class xml_document_c;

// The builder that makes a document's nodes: each element an xml_node_c handed to add_node.
class xml_node_builder_c : public xml_builder_i {
  public:
    explicit xml_node_builder_c(xml_document_c* doc) : _doc(doc) {}
    void* open_element(std::string_view name, void* parent) override;
    void add_attribute(void* element, std::string_view name, std::string_view value) override;
    void set_text(void* element, const char* text) override;
    void set_closed(void* element) override;
    const char* name_of(void* element) override;

  private:
    // The reader's views as texts that end with a 0 byte, as nodes take them.
    const char* _terminated(std::string& copy, std::string_view text);

    xml_document_c* _doc;
    std::string _name;
    std::string _value;
};

class xml_document_c {
  public:
    // Kept for its place in the document; nothing ever fills the table.
    struct xml_entity_c {
        utl_stream_c name;
        utl_stream_c value;
    };

    xml_document_c();
    xml_document_c(const xml_document_c&) = delete;
    xml_document_c& operator=(const xml_document_c&) = delete;
    virtual ~xml_document_c();

    // Appends one line feed.
    virtual void new_line(utl_stream_c& stream);
    // Writes one piece of output; false, with a trace line, on a short write.
    virtual bool _write_xml_buf_to_file(const char* text, std::uint64_t length, FILE_c* file);

    // Reads an XML file; element text is kept.
    bool load(const char* path) { return load(path, nullptr); }
    // Reads XML from a string; element text is dropped.
    bool load_from_str(const char* text) { return load_from_str(text, nullptr); }
    // The same, with the elements going to `builder` instead of this document's nodes (null:
    // the nodes); the declaration's values and the messages are the document's all the same.
    bool load(const char* path, xml_builder_i* builder);
    bool load_from_str(const char* text, xml_builder_i* builder);
    xml_builder_i& node_builder() { return _node_builder; }

    void set_name();
    void set_version(const char* text);
    void set_encoding(const char* text);
    void set_style_sheet(const char* text);
    void set_xml_file(const char* text);
    // Leaves the flag as it is: a loaded document is always written as standalone.
    void set_standalone(const char* text);

    // The reader's only way in. A node without a parent replaces the whole tree.
    bool add_node(xml_node_c* node, xml_node_c* parent);

    void _write_header(utl_stream_c& stream);
    // Writes the subtree of `node` (null: the header and the whole tree), one line at a time.
    bool _store(xml_node_c* node, utl_stream_c& stream, FILE_c* file);
    bool store(FILE_c* file);
    // The same text into a stream; the header only for the whole document.
    void print(xml_node_c* node, utl_stream_c& stream, bool with_header);

    // Whether the lines that store and print write start with a tab per level of depth. A
    // text that is only read back goes without: a tree nested n deep would cost about n * n
    // tabs.
    bool indented = true;

    // A name starts with a letter or `_` and goes on with letters, digits, `_`, `-`, `.`, `:`.
    static bool validate_xml_name(const char* name);

    const char* get_name() const { return _name; }
    const char* get_version() const { return _version; }
    const char* get_encoding() const { return _encoding; }
    bool get_standalone() const { return _standalone; }
    const char* get_style_sheet() const { return _style_sheet; }
    const char* get_xml_file() const { return _xml_file; }
    tree_c* get_tree() const { return _tree; }
    xml_node_c* get_root() const {
        return _tree ? static_cast<xml_node_c*>(_tree->get_root()) : nullptr;
    }
    std::uint64_t get_entity_count() const { return _entities.get_count(); }

  private:
    // Open tags, children and close tags of the subtree of `node` into `sink`, in document
    // order, without recursion. `sink(stream)` receives each line and may refuse it.
    template <class Sink> bool _walk(xml_node_c* node, utl_stream_c& stream, bool clear, Sink sink);

    char* _name = nullptr;
    char* _version = nullptr;
    char* _encoding = nullptr;
    bool _standalone = true;
    char* _style_sheet = nullptr;
    char* _xml_file = nullptr;
    array_ct<xml_entity_c> _entities;
    tree_c* _tree = nullptr;
    xml_node_builder_c _node_builder{this};
};
