// Root directories: one replicated tree of a host, with its path, id, two flags and three
// filters. root_dir_c is the plain model with the filter logic; xmc_root_dir_c is bound to its
// `RootDir` item of a scenario's XMC tree, reads itself from the item when it is made, and from
// then on writes every change through to the items, so that the model and the tree agree.
#pragma once

#include "configuration/conf.h"
#include "utl/container.h"
#include "utl/utl_stream.h"

#include <cstdint>

class root_dir_c {
  public:
    // The texts of one filter. Its entries are left out of replication when `exclude` is set,
    // otherwise they alone are taken.
    class filter_c : public string_array_c {
      public:
        enum type_t : std::uint32_t {
            type_file_reg_expr = 0, // FileRegExpr: expressions on file names
            type_dir_reg_expr = 1,  // DirRegExpr: expressions on directory names
            type_dir_path = 2,      // DirPath: paths relative to the root directory
        };

        explicit filter_c(std::uint32_t filter_type = type_file_reg_expr);
        filter_c(const filter_c& other);
        // Empties this filter, then takes the other's type, flag and every string.
        filter_c& operator=(const filter_c& other);

        // The same type and flag, and the same strings one by one, in order.
        bool operator==(const filter_c& other) const;
        bool operator!=(const filter_c& other) const { return !(*this == other); }

        // `Exclude FileRegExpr Filter: {a, b}` or `... Filter is Empty`, appended to the stream;
        // gives the stream's whole text.
        const char* print_filter(utl_stream_c& stream) const;

        std::uint32_t type;
        bool exclude = true;
    };

    // What selects all three filters at once in copy_filter.
    static constexpr std::uint32_t all_filters = 3;

    root_dir_c();
    root_dir_c(const root_dir_c&) = delete;
    root_dir_c& operator=(const root_dir_c&) = delete;

    // Whether any filter, the temporary one included, has an entry.
    virtual void update_has_filters();
    // The filter of `type` (0 to 2) from the other's, or all three in order for type 3.
    virtual void copy_filter(std::uint32_t type, const root_dir_c& other);
    // Null or empty leaves the root directory without a path.
    virtual void set_path(const char* text);
    // An empty text leaves the display path as it is.
    virtual void set_display_path(const char* text);
    virtual void set_db_dir(bool value);
    virtual void set_match_all_kids_volume(bool value);
    virtual void set_id(std::uint32_t value);
    virtual void set_exclude(std::uint32_t type, bool value);
    // Adds the text to the filter of `type`; a DirPath text is stored relative to the path.
    // True when the filter holds it afterwards.
    virtual bool _add_expression(std::uint32_t type, const char* text);
    // Removes the text, in its normalised form, from the filter of `type`.
    virtual bool _rem_expression(std::uint32_t type, const char* text);
    virtual ~root_dir_c();
    // Appends the text form to the stream and gives the stream's whole text.
    virtual const char* print(utl_stream_c& stream);

    // The part of the normalised full path `full_path` below this root directory: a pointer
    // into the argument, empty for the root directory itself; null when the path is not below.
    const char* relative_to_root(const char* full_path) const;
    // Adds a DirPath text: a full path as its part below the root directory, a relative one as
    // it stands, both normalised.
    bool _add_rel_path_filt(filter_c& filter, const char* text);

    // The filter of `type`, or null for any other number.
    filter_c* filter_of(std::uint32_t type);
    const filter_c* filter_of(std::uint32_t type) const;

    bool case_sensitive = false;
    bool has_filters = false;
    bool db_dir = false;
    bool match_all_kids_volume = true;
    std::uint32_t id = 0;
    char* path = nullptr; // owned
    utl_stream_c display_path;
    std::uint64_t path_length = 0;
    filter_c file_filter{filter_c::type_file_reg_expr};
    filter_c dir_filter{filter_c::type_dir_reg_expr};
    filter_c path_filter{filter_c::type_dir_path};
    filter_c* temporary_filter = nullptr; // owned
};

// A root directory bound to its `RootDir` item. The items belong to the scenario's tree, which
// must outlive the object; the tree of the xmc_conf_c part stays empty and serves to link and
// unlink filter entries and to check the shape of data items.
class xmc_root_dir_c : public root_dir_c, public xmc_conf_c {
  public:
    // Reads the children of the item; a null item gives a root directory bound to nothing.
    explicit xmc_root_dir_c(xml_item_c* item);

    // `id` is the root directory's: the data `ID`, not the kind of configuration object.
    using root_dir_c::id;

    // The base's flag, then each bound filter object's `status` made to follow its content.
    void update_has_filters() override;
    void copy_filter(std::uint32_t type, const root_dir_c& other) override;
    void set_path(const char* text) override;
    void set_db_dir(bool value) override;
    void set_match_all_kids_volume(bool value) override;
    void set_id(std::uint32_t value) override;
    void set_exclude(std::uint32_t type, bool value) override;
    bool _add_expression(std::uint32_t type, const char* text) override;
    bool _rem_expression(std::uint32_t type, const char* text) override;
    ~xmc_root_dir_c() override;

    // Reads a filter object: its `ExcludeFilter` into the flag and the entries of its
    // `ListFilters` into the filter, as they stand.
    void _set_filter_content(xml_item_c* item, filter_c& filter);

    // The filter object bound to the filter of `type`, or null.
    xml_item_c* filter_item_of(std::uint32_t type) const;

    xml_item_c* path_item = nullptr;
    xml_item_c* db_dir_item = nullptr;
    xml_item_c* id_item = nullptr;
    xml_item_c* file_filter_item = nullptr;
    xml_item_c* dir_filter_item = nullptr;
    xml_item_c* path_filter_item = nullptr;
    xml_item_c* match_all_item = nullptr;

  private:
    // A new `ListFilters` entry with the text under the filter object's list.
    void _append_entry(xml_item_c* list, const char* text);
};
