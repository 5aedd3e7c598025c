// xml_tree_ct<T>: the form in which the system keeps XML. A tree of items (xml_item_c or a class
// derived from it) with the declaration's values; loading and saving go through a short-lived
// xml_document_c. Every walk here is a loop, so a tree of any depth converts, compares and
// searches without growing the call stack.
#pragma once

#include "files/file_modif.h"
#include "support/trc.h"
#include "utl/container.h"
#include "utl/container_temp.h"
#include "utl/tree.h"
#include "utl/utl.h"
#include "utl/utl_stream.h"
#include "xml/xml_doc.h"
#include "xml/xml_item.h"
#include "xml/xml_node.h"

#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

namespace xml_tree_n {

inline const char* or_empty(const char* text) { return text ? text : ""; }

inline bool same_text(const char* a, const char* b) {
    return std::strcmp(or_empty(a), or_empty(b)) == 0;
}

// The preorder successor of `node` inside the subtree of `top`, or null when the walk is over.
template <class T> T* next_in_preorder(T* node, const T* top) {
    if (node->first_child) return static_cast<T*>(node->first_child);
    while (node && node != top) {
        if (node->next) return static_cast<T*>(node->next);
        node = static_cast<T*>(node->parent);
    }
    return nullptr;
}

// One of 64 bits for a (non-empty) name, from its first two bytes: the few names of one element
// mostly differ there, and two that don't are only compared the slow way.
inline unsigned name_bit(std::string_view name) {
    auto first = name.empty() ? 0u : static_cast<unsigned char>(name[0]);
    auto second = name.size() > 1 ? static_cast<unsigned char>(name[1]) : 0u;
    return (first * 31u + second) & 63u;
}

// Elements with more attributes than this are converted through an index of labels, so that an
// element of 100,000 attributes costs as many steps, not their square.
inline constexpr std::uint64_t indexed_attribute_count = 32;

} // namespace xml_tree_n

template <class T> class xml_tree_ct : public generic_tree_ct<T> {
    using base_t = generic_tree_ct<T>;

  public:
    xml_tree_ct() : base_t(nullptr, true) {}
    ~xml_tree_ct() override {
        delete[] _version;
        delete[] _encoding;
        delete[] _style_sheet;
        _version = _encoding = _style_sheet = nullptr;
    }

    // Whether the item's label is among `labels` and/or one of `attribute_labels` is set on it.
    virtual bool matches(T* item, string_array_c* labels, string_array_c* attribute_labels) {
        if (!item) return false;
        if (!labels && !attribute_labels) return true;
        bool label_ok = true;
        if (labels) {
            label_ok = false;
            for (std::uint64_t i = 0; i < labels->get_count() && !label_ok; ++i)
                label_ok = labels->at(i) && xml_tree_n::same_text(item->label, labels->at(i));
        }
        if (!label_ok || !attribute_labels) return label_ok;
        if (item->attributes.get_count() == 0) return false;
        for (std::uint64_t i = 0; i < attribute_labels->get_count(); ++i)
            if (item->find_attribute(attribute_labels->at(i))) return true;
        return false;
    }

    virtual void to_document(xml_document_c* doc) {
        if (!doc->get_version()) doc->set_version(_version && *_version ? _version : "1.0");
        if (!doc->get_encoding()) doc->set_encoding(_encoding);
        if (!doc->get_style_sheet() && _style_sheet && *_style_sheet)
            doc->set_style_sheet(_style_sheet);
        if (this->_root) doc->add_node(to_node(this->_root), nullptr);
    }

    // A tree that already has a root keeps it; only the declaration's values are taken then.
    virtual void from_document(xml_document_c* doc) {
        xml_node_c* root = doc->get_root();
        if (!root) return;
        _adopt_root(from_node(root), *doc);
    }

    // A new item for `node` and one for each node below it.
    virtual T* from_node(xml_node_c* node) {
        if (!node) return nullptr;
        T* top = _item_of(node);
        T* parent_item = top;
        xml_node_c* at = node;
        // Preorder over the nodes; `parent_item` is the item of `at`.
        for (;;) {
            if (at->first_child) {
                at = at->first_child_node();
                T* item = _item_of(at);
                this->attach(item, parent_item, true);
                parent_item = item;
                continue;
            }
            while (at != node && !at->next) {
                at = at->parent_node();
                parent_item = static_cast<T*>(parent_item->parent);
            }
            if (at == node) return top;
            at = at->next_node();
            T* item = _item_of(at);
            this->attach(item, static_cast<T*>(parent_item->parent), true);
            parent_item = item;
        }
    }

    // A new node for `item` and one for each item below it.
    virtual xml_node_c* to_node(T* item) {
        if (!item) return nullptr;
        xml_node_c* top = _node_of(item);
        xml_node_c* parent_node = top;
        T* at = item;
        for (;;) {
            if (at->first_child) {
                at = static_cast<T*>(at->first_child);
                xml_node_c* node = _node_of(at);
                _link(node, parent_node);
                parent_node = node;
                continue;
            }
            while (at != item && !at->next) {
                at = static_cast<T*>(at->parent);
                parent_node = parent_node->parent_node();
            }
            if (at == item) return top;
            at = static_cast<T*>(at->next);
            xml_node_c* node = _node_of(at);
            _link(node, parent_node->parent_node());
            parent_node = node;
        }
    }

    // Same declaration values (null and empty alike) and the same items in preorder; the owner
    // flag is not compared.
    virtual bool is_equal(xml_tree_ct<T>& other) {
        if (!xml_tree_n::same_text(_version, other._version) ||
            !xml_tree_n::same_text(_encoding, other._encoding) ||
            !xml_tree_n::same_text(_style_sheet, other._style_sheet))
            return false;
        T* a = this->_root;
        T* b = other._root;
        while (a && b) {
            if (!a->is_equal(*b)) return false;
            a = xml_tree_n::next_in_preorder<T>(a, this->_root);
            b = xml_tree_n::next_in_preorder<T>(b, other._root);
        }
        return !a && !b;
    }

    // Element text is dropped by a string load.
    virtual bool load_from_str(const char* text) {
        return _load([text](xml_document_c& doc, xml_builder_i* builder) {
            return doc.load_from_str(text, builder);
        });
    }

    virtual bool load(const char* path) {
        return _load([path](xml_document_c& doc, xml_builder_i* builder) {
            return doc.load(path, builder);
        });
    }

    // Appends the document's text to the stream.
    virtual void write(utl_stream_c& stream, bool with_header) {
        stream._add_memory(get_xml_size());
        write_item(this->_root, stream, with_header);
    }

    // The text of the document that this tree's declaration and the subtree of `item` make,
    // appended to the stream: what write gives for a tree of which `item` were the root. The
    // item stays where it is. Without `indented` no line starts with tabs (for a text that is
    // only read back).
    void write_item(T* item, utl_stream_c& stream, bool with_header, bool indented = true) {
        xml_document_c doc;
        doc.indented = indented;
        to_document(&doc);
        if (item != this->_root) doc.add_node(to_node(item), nullptr);
        xml_node_c* root = doc.get_root();
        if (!root) return;
        if (with_header) doc._write_header(stream);
        root->print_open_tag(stream, 0);
        for (xml_node_c* child = root->first_child_node(); child; child = child->next_node())
            doc.print(child, stream, true);
        if (root->first_child) root->print_close_tag(stream, 0);
    }

    // The result says whether the file could be opened; a short write is only traced.
    virtual bool save_to_file(const char* path) {
        QVTR_SCOPE(tr, "xml_tree_ct<T>::save_to_file", "xml_tree_templ");
        FILE_c file;
        if (!file.open(path, "w", nullptr, 0)) {
            tr.print(4, __LINE__, "Unable to open file %s \n", path ? path : "");
            return false;
        }
        xml_document_c doc;
        to_document(&doc);
        doc.store(&file);
        file.close();
        return true;
    }

    // An estimate of the written size, to reserve a stream.
    virtual std::uint64_t get_xml_size() {
        std::uint64_t size = _version ? std::strlen(_version) + 16 : 5;
        if (_encoding) size += std::strlen(_encoding) + 12;
        size += 3;
        std::uint64_t depth = 0;
        for (T* item = this->_root; item;) {
            size += item->get_xml_size(false) + depth + 1;
            if (item->first_child) {
                size += depth + 1;
                item = static_cast<T*>(item->first_child);
                ++depth;
                continue;
            }
            while (item && item != this->_root && !item->next) {
                item = static_cast<T*>(item->parent);
                --depth;
            }
            if (!item || item == this->_root) break;
            item = static_cast<T*>(item->next);
        }
        return size;
    }

    // Matches among `start` and its children; with `recursive` each child's own search follows
    // it and tests it once more, so a matching descendant stands in the result twice.
    virtual void find_all(T* start, array_ct<T>& result, string_array_c* labels,
                          string_array_c* attribute_labels, bool recursive) {
        if (!start) start = this->_root;
        if (!start) return;
        if (matches(start, labels, attribute_labels)) result.append(start);
        // One entry per open search: the next child it will look at.
        std::vector<T*> pending{static_cast<T*>(start->first_child)};
        while (!pending.empty()) {
            T* child = pending.back();
            if (!child) {
                pending.pop_back();
                continue;
            }
            pending.back() = static_cast<T*>(child->next);
            if (matches(child, labels, attribute_labels)) result.append(child);
            if (!recursive) continue;
            if (matches(child, labels, attribute_labels)) result.append(child);
            pending.push_back(static_cast<T*>(child->first_child));
        }
    }

    virtual T* find_first(T* start, const char* label, bool recursive) {
        if (!label) return nullptr;
        string_array_c labels;
        labels.add(label);
        return find_first(start, &labels, nullptr, recursive);
    }

    // The first match in preorder.
    virtual T* find_first(T* start, string_array_c* labels, string_array_c* attribute_labels,
                          bool recursive) {
        return _first(start, recursive,
                      [&](T* item) { return matches(item, labels, attribute_labels); });
    }

    virtual T* find_by_value(T* start, string_array_c* labels, labeled_value_c* value,
                             bool recursive) {
        return _first(start, recursive, [&](T* item) {
            if (labels && !matches(item, labels, nullptr)) return false;
            return item->has_attribute(value);
        });
    }

    const char* get_version() const { return _version; }
    const char* get_encoding() const { return _encoding; }
    const char* get_style_sheet() const { return _style_sheet; }
    void set_version(const char* text) { utl_n::str_replace_copy(_version, text); }
    void set_encoding(const char* text) { utl_n::str_replace_copy(_encoding, text); }
    void set_style_sheet(const char* text) { utl_n::str_replace_copy(_style_sheet, text); }

  protected:
    // Whether load and load_from_str build the items straight from the reader, as from_node
    // would make them from the document's nodes, instead of going through from_document. A
    // tree that overrides from_document answers false, so that its own conversion runs.
    virtual bool _builds_items_directly() const { return true; }

    // Makes the items of a parse as the reader meets the elements: the same items, attributes
    // and texts that from_node makes of the nodes, without the nodes.
    class item_builder_c : public xml_builder_i {
      public:
        explicit item_builder_c(xml_tree_ct& tree) : _tree(tree) {}
        ~item_builder_c() override { delete root; }
        item_builder_c(const item_builder_c&) = delete;
        item_builder_c& operator=(const item_builder_c&) = delete;

        void* open_element(std::string_view name, void* parent) override {
            T* item;
            if constexpr (std::is_same_v<T, xml_item_c>)
                item = new T(name);
            else
                item = new T(_terminated(_name_copy, name));
            if (parent)
                _tree.attach(item, static_cast<T*>(parent), true);
            else if (!root)
                root = item;
            else
                delete std::exchange(item, nullptr);
            return item;
        }

        // Most attributes are new names of their element: they are appended here at once, and
        // only a name that may repeat an earlier one takes the longer ways below.
        void add_attribute(void* element, std::string_view name, std::string_view value) override {
            T* item = static_cast<T*>(element);
            if constexpr (std::is_same_v<T, xml_item_c>) {
                if (item != _seen_owner) {
                    _seen_owner = item;
                    _seen = 0;
                }
                std::uint64_t bit = std::uint64_t{1} << xml_tree_n::name_bit(name);
                bool surely_new = !(_seen & bit);
                _seen |= bit;
                if (surely_new && item != _index_owner) {
                    item->attributes.append(new labeled_value_c(name, value));
                    return;
                }
                if (_indexed(item, name, value)) return;
            }
            _set_attribute(item, name, value);
        }

        void set_text(void* element, const char* text) override {
            if (*text) static_cast<T*>(element)->set_text(text);
        }

        void set_closed(void*) override {}

        const char* name_of(void* element) override { return static_cast<T*>(element)->label; }

        T* root = nullptr;

      private:
        // set_attribute through a map from label to attribute, once an element has many; false
        // while the element has too few for a map to pay. Kept out of line, so that the common
        // case above stays a short call.
        [[gnu::noinline]] bool _indexed(xml_item_c* item, std::string_view name,
                                        std::string_view value) {
            if (item != _index_owner) {
                if (item->attributes.get_count() < xml_tree_n::indexed_attribute_count)
                    return false;
                _index_owner = item;
                _index.clear();
                for (std::uint64_t i = 0; i < item->attributes.get_count(); ++i) {
                    labeled_value_c* a = item->attributes.at(i);
                    _index.emplace(a->get_label(), a);
                }
            }
            auto found = _index.find(name);
            if (found != _index.end()) {
                found->second->set_string(_terminated(_value_copy, value));
                return true;
            }
            labeled_value_c* made = item->attributes.append(new labeled_value_c(name, value));
            _index.emplace(made->get_label(), made);
            return true;
        }

        // The item's own set_attribute, which wants texts that end with a 0 byte.
        [[gnu::noinline]] void _set_attribute(T* item, std::string_view name,
                                              std::string_view value) {
            item->set_attribute(_terminated(_name_copy, name), _terminated(_value_copy, value));
        }

        static const char* _terminated(std::string& copy, std::string_view text) {
            copy.assign(text.data(), text.size());
            return copy.c_str();
        }

        xml_tree_ct& _tree;
        xml_item_c* _seen_owner = nullptr;
        std::uint64_t _seen = 0;
        xml_item_c* _index_owner = nullptr;
        std::unordered_map<std::string_view, labeled_value_c*> _index;
        std::string _name_copy;
        std::string _value_copy;
    };

    // A load through a document: `read(doc, builder)` reads into the document's nodes (null
    // builder) or straight into items; the items become this tree's as from_document would.
    template <class Read> bool _load(Read read) {
        xml_document_c doc;
        if (!_builds_items_directly()) {
            bool loaded = read(doc, nullptr);
            if (loaded) from_document(&doc);
            return loaded;
        }
        item_builder_c builder(*this);
        bool loaded = read(doc, &builder);
        if (loaded) _take_root(doc, builder);
        return loaded;
    }

    // What from_document does with a document's root, for a root built straight from the reader.
    void _take_root(xml_document_c& doc, item_builder_c& builder) {
        if (T* item = std::exchange(builder.root, nullptr)) _adopt_root(item, doc);
    }

    // The item becomes the root (a tree that has one keeps it, and the item is dropped), and the
    // document's declaration values become the tree's.
    void _adopt_root(T* item, xml_document_c& doc) {
        if (!this->attach(item, nullptr, true)) delete item;
        if (doc.get_version()) utl_n::str_replace_copy(_version, doc.get_version());
        if (doc.get_style_sheet()) utl_n::str_replace_copy(_style_sheet, doc.get_style_sheet());
        if (doc.get_encoding()) utl_n::str_replace_copy(_encoding, doc.get_encoding());
    }

    // The item of one node, without its children.
    T* _item_of(xml_node_c* node) {
        T* item = new T(node->name ? node->name : "");
        if (xml_attr_list_c* list = node->attributes) {
            if constexpr (std::is_same_v<T, xml_item_c>) {
                if (list->get_count() > xml_tree_n::indexed_attribute_count) {
                    _indexed_attributes(item, list);
                    list = nullptr;
                }
            }
            if (list)
                for (xml_attr_c* a = list->first(); a; a = list->next(a))
                    item->set_attribute(a->name, static_cast<const char*>(a->value));
        }
        if (node->text.get_length()) item->set_text(node->text.c_str());
        return item;
    }

    // What set_attribute does for each record, through a map from label to attribute.
    static void _indexed_attributes(xml_item_c* item, xml_attr_list_c* list) {
        std::unordered_map<std::string_view, labeled_value_c*> by_label;
        for (xml_attr_c* a = list->first(); a; a = list->next(a)) {
            if (!a->name) {
                item->set_attribute(a->name, static_cast<const char*>(a->value));
                continue;
            }
            auto found = by_label.find(a->name);
            if (found != by_label.end()) {
                found->second->set_string(a->value);
                continue;
            }
            labeled_value_c* made = item->attributes.append(new labeled_value_c(a->name));
            made->set_string(a->value);
            by_label.emplace(made->get_label(), made);
        }
    }

    // The node of one item, without its children.
    static xml_node_c* _node_of(T* item) {
        auto* node = new xml_node_c(item->label ? item->label : "");
        for (std::uint64_t i = 0; i < item->attributes.get_count(); ++i) {
            labeled_value_c* a = item->attributes.at(i);
            node->add_attribute(xml_tree_n::or_empty(a->get_label()), a->to_text());
        }
        if (item->text && *item->text) {
            node->type = xml_node_c::type_text;
            node->text.append(item->text);
        }
        return node;
    }

    static void _link(xml_node_c* node, xml_node_c* parent) {
        node->parent = parent;
        node->prev = parent->last_child;
        (parent->last_child ? parent->last_child->next : parent->first_child) = node;
        parent->last_child = node;
    }

    // The first item of `start` and its children (with `recursive`: its subtree) in preorder
    // that passes `test`.
    template <class Test> T* _first(T* start, bool recursive, Test test) {
        if (!start) start = this->_root;
        if (!start) return nullptr;
        if (test(start)) return start;
        if (!recursive) {
            for (T* c = static_cast<T*>(start->first_child); c; c = static_cast<T*>(c->next))
                if (test(c)) return c;
            return nullptr;
        }
        for (T* item = xml_tree_n::next_in_preorder<T>(start, start); item;
             item = xml_tree_n::next_in_preorder<T>(item, start))
            if (test(item)) return item;
        return nullptr;
    }

    char* _version = nullptr;
    char* _encoding = nullptr;
    char* _style_sheet = nullptr;
};

// The tree of plain items.
class xml_tree_c : public xml_tree_ct<xml_item_c> {};
