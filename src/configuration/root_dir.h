// Root directories: one replicated tree of a host, with its path, id, two flags and three
// filters. root_dir_c is the plain model with the filter logic.
#pragma once

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
