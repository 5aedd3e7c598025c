// Memory in blocks for the many small objects of one XML load: items, attributes, their texts
// and arrays, and the nodes of a document. A load makes thousands of them at once and they die
// together with their tree, so taking each from the heap on its own is most of a load's cost.
//
// Who owns what:
// - A cell is a piece of memory with an 8-byte head in front of it that names its page, or
//   null for a cell that came from the heap on its own. cell_pool_n::release reads the head,
//   so any cell can be freed at any time, whichever way it was made; the objects that use
//   cells (xml_item_c, labeled_value_c, value texts, array cells, xml_node_c, ...) never have
//   to know where theirs came from.
// - A page is one heap block that holds the cells of one pool side by side, and counts how
//   many of them live. The pool that fills a page holds it as well, so that a page never dies
//   while cells are still being cut from it; the pool gives up that hold when it moves on to a
//   new page, and when it dies. A page dies when it is not held and its last cell is freed.
// - A pool (cell_pool_c) lives for one load. While it lives it is the thread's current pool,
//   and every cell made on that thread comes from its pages; without a current pool cells come
//   from the heap. After the load the pages belong to their cells: the tree's items keep them,
//   and deleting the tree, or its items one by one, frees them.
//
// What that means for a tree: deleting one item or one attribute frees its cell where it
// stands; the memory stays in the page until the page's last cell goes. An item detached from
// its tree and attached to another, or kept after its tree is destroyed, keeps its page alive:
// nothing dangles and nothing is copied, at the price that one item can hold a page of memory.
// A page's count is atomic, so cells of one page may die on different threads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

class cell_pool_c;

namespace cell_pool_n {

// `size` bytes aligned to 8, from the thread's current pool or, without one, from the heap.
inline void* allocate(std::size_t size);
// Frees a cell of allocate; null is ignored.
void release(void* cell) noexcept;
// A copy of `text` in a new cell; null for null.
char* copy_text(const char* text);

} // namespace cell_pool_n

class cell_pool_c {
  public:
    // The new pool is the thread's current pool until it dies.
    cell_pool_c();
    ~cell_pool_c();
    cell_pool_c(const cell_pool_c&) = delete;
    cell_pool_c& operator=(const cell_pool_c&) = delete;

    // The common case inline: a cell that fits the page being filled.
    void* allocate(std::size_t size) {
        std::size_t need = cell_size(size);
        if (need > largest_shared_cell || static_cast<std::size_t>(_end - _next) < need)
            return _allocate_apart(size);
        char* at = _next;
        _next += need;
        ++_cut;
        std::memcpy(at, &_page, sizeof _page);
        return at + head_size;
    }

    // The thread's current pool, or null.
    static cell_pool_c* current() noexcept { return _current; }

    static constexpr std::size_t head_size = 8;
    // A cell larger than this gets a page of its own, which dies with it.
    static constexpr std::size_t largest_shared_cell = 8192;
    static constexpr std::size_t cell_size(std::size_t size) {
        return (size + 7) / 8 * 8 + head_size;
    }

    struct page_s;

  private:
    // A cell of its own page, or the first of a new page.
    void* _allocate_apart(std::size_t size);
    void _start_page(std::size_t need);
    // Gives up the hold on the page being filled.
    void _let_go();

    page_s* _page = nullptr;
    char* _next = nullptr;
    char* _end = nullptr;
    // Cells cut from the current page so far.
    std::uint64_t _cut = 0;
    std::size_t _next_page_size;
    cell_pool_c* _previous;

    // Constant-initialised, so that reaching it needs no check for a thread's first use.
    static constinit thread_local cell_pool_c* _current;
};

namespace cell_pool_n {

// Without a current pool the cell comes from the heap.
void* allocate_from_heap(std::size_t size);

inline void* allocate(std::size_t size) {
    if (cell_pool_c* pool = cell_pool_c::current()) return pool->allocate(size);
    return allocate_from_heap(size);
}

} // namespace cell_pool_n
