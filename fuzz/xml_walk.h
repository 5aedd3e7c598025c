// Walks over a loaded item tree for the fuzz targets' round trips: what writing the tree would
// cost. Loops only: a fuzzer's document may nest deeper than a stack frame per level allows.
#pragma once

#include "xml/xml_item.h"

#include <cstdint>

namespace xml_walk {

// Calls `visit(item, depth)` for every item of the subtree of `root` in document order, the root
// at depth 0; a false from `visit` stops the walk and is returned.
template <class F> bool preorder(xml_item_c* root, F visit) {
    std::uint64_t depth = 0;
    for (xml_item_c* item = root; item;) {
        if (!visit(item, depth)) return false;
        if (item->first_child) {
            item = item->first_child_item();
            ++depth;
            continue;
        }
        while (item != root && !item->next) {
            item = item->parent_item();
            --depth;
        }
        if (item == root) break;
        item = item->next_item();
    }
    return true;
}

// The tabs of the written text: one per level on each line, so the square of the depth for a
// chain. A 64 KB input nested 20,000 deep writes 200 MB of them.
inline std::uint64_t indentation_bytes(xml_item_c* root) {
    std::uint64_t tabs = 0;
    preorder(root, [&tabs](xml_item_c* item, std::uint64_t depth) {
        tabs += item->first_child ? 2 * depth : depth;
        return true;
    });
    return tabs;
}

// Beyond this much indentation a round trip is left out: writing it would measure the disk and
// the allocator, not the XML layer, and end the fuzzer's run with a timeout or out of memory.
inline constexpr std::uint64_t round_trip_indentation_limit = 8u << 20;

} // namespace xml_walk
