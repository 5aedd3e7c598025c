// The raw parse nodes of an xml_document_c: xml_node_c with its attribute records. A node prints
// itself as one line of the document.
#pragma once

#include "utl/container_temp.h"
#include "utl/tree.h"
#include "utl/utl_stream.h"

#include <cstddef>
#include <cstdint>

// One attribute as it was read: two owned texts, each of which may be null.
class xml_attr_c {
  public:
    xml_attr_c(const char* attr_name, const char* attr_value);
    xml_attr_c(const xml_attr_c&) = delete;
    xml_attr_c& operator=(const xml_attr_c&) = delete;
    ~xml_attr_c();

    // Records and their texts are cells of the current pool (utl/cell_pool.h) while a document
    // loads.
    static void* operator new(std::size_t size);
    static void operator delete(void* cell);

    // Null releases both texts; a text that fits is copied over the old one.
    void set_name(const char* attr_name);
    // Null releases the value only.
    void set_value(const char* attr_value);

    char* name = nullptr;
    char* value = nullptr;
};

// The attributes of one node, in order of appearance; the list owns its records.
class xml_attr_list_c : public ptr_list_ct<xml_attr_c> {
  public:
    xml_attr_list_c() : ptr_list_ct<xml_attr_c>(true) {}
    ~xml_attr_list_c() override { clear_and_delete(); }

    // Deletes the records, under the list's lock.
    void clear() override;
};

class xml_node_c : public node_c {
  public:
    enum node_type_t : std::int32_t { type_element = 1, type_text = 3 };

    explicit xml_node_c(const char* node_name);
    ~xml_node_c() override;

    // Nodes are cells of the current pool (utl/cell_pool.h) while a document loads.
    static void* operator new(std::size_t size);
    static void operator delete(void* cell);

    // Name, closed flag, type and attributes of `source`, and its text for a text element;
    // not its children.
    virtual void assign(const xml_node_c& source);
    virtual void new_line(utl_stream_c& stream);

    // Appends a record; duplicates are kept. A null name only makes the (empty) list.
    void add_attribute(const char* attr_name, const char* attr_value);
    // The element's line: indent, tag, attributes or text, line feed.
    void print_open_tag(utl_stream_c& stream);
    // The closing line of an element with children; nothing for a text element.
    void print_close_tag(utl_stream_c& stream);

    // The same two lines for a node whose depth the caller already knows.
    void print_open_tag(utl_stream_c& stream, std::uint64_t depth);
    void print_close_tag(utl_stream_c& stream, std::uint64_t depth);

    std::uint64_t get_depth() const;
    xml_node_c* parent_node() const { return static_cast<xml_node_c*>(parent); }
    xml_node_c* first_child_node() const { return static_cast<xml_node_c*>(first_child); }
    xml_node_c* next_node() const { return static_cast<xml_node_c*>(next); }

    xml_attr_list_c* attributes = nullptr;
    bool closed = false;
    std::int32_t type = type_element;
    utl_stream_c text;
};
