// The contents of the built-in template, restated for the tests in the form of its reference
// tables: one table per shared definition and per top-level object, one row per child item in
// document order. This is written apart from the template's own lines, so that a slip in either
// shows as a difference when the test expands these rows and walks the loaded template.
#pragma once

#include <cstddef>

namespace template_contents_n {

// One child item.
// - depth: 0 for a child of the table's object, one more per level below it.
// - item: the `label`.
// - type: a data type or enumeration name; "list of X" for a `MultiEntry` whose `val` is X;
//   "object N" for an object with id N; "title" for a `title`.
// - value: for a data item its `val`, "empty" standing for `val=""`; for an object its
//   `status`, "" where it has none.
// - notes: further attributes and the conditional children, clauses separated by "; ":
//   "mandatory=True", "prompted=True", "to_keep=?", "external=True", "minimum N", "maximum N",
//   "kids if V" (`check_kids_if_val`), "check_if X is_equal Y", "relevant L=V",
//   "irrelevant L=V" ("V1 or V2" for the list "V1, V2"), "switch A=C to V" (a
//   `switch_to_set_default`), and "body of X", the children of definition X, optionally
//   followed by ", but " and the only differences.
struct row_s {
    int depth;
    const char* item;
    const char* type;
    const char* value;
    const char* notes;
};

// A table: its heading names the object ("X, id N", then ", status S" and the object's own
// conditions when it has them; "title X" for a title among the definitions; "The object X, id
// N" for `Scenario` and `Group`), then its rows.
struct table_s {
    const char* heading;
    const row_s* rows;
    std::size_t row_count;
};

// The shared definitions in the order `objects` holds them, then `Scenario` and `Group`.
extern const table_s tables[];
extern const std::size_t table_count;

} // namespace template_contents_n
