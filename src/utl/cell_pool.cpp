#include "utl/cell_pool.h"

#include <atomic>
#include <cstring>
#include <new>

namespace {

constexpr std::size_t head_size = cell_pool_c::head_size;
constexpr std::size_t first_page_size = 4096;
constexpr std::size_t largest_page_size = 65536;
// The count of a page that its pool still fills: far above any number of cells, so that freed
// cells never bring it to zero; the pool takes the bias off when it lets go.
constexpr std::uint64_t held = std::uint64_t{1} << 62;

} // namespace

constinit thread_local cell_pool_c* cell_pool_c::_current = nullptr;

struct cell_pool_c::page_s {
    std::atomic<std::uint64_t> live;
};

namespace {

cell_pool_c::page_s* new_page(std::size_t bytes, std::uint64_t count) {
    auto* page = static_cast<cell_pool_c::page_s*>(::operator new(bytes));
    new (&page->live) std::atomic<std::uint64_t>(count);
    return page;
}

void free_page(cell_pool_c::page_s* page) { ::operator delete(page); }

// Writes the head of the cell at `at` and returns the memory behind it.
void* open_cell(char* at, cell_pool_c::page_s* page) {
    std::memcpy(at, &page, sizeof page);
    return at + head_size;
}

// Takes `delta` (modulo 2^64) off the page's count; the page dies at zero.
void drop(cell_pool_c::page_s* page, std::uint64_t delta) {
    if (page->live.fetch_sub(delta, std::memory_order_acq_rel) == delta) free_page(page);
}

} // namespace

void* cell_pool_n::allocate_from_heap(std::size_t size) {
    char* at = static_cast<char*>(::operator new(cell_pool_c::cell_size(size)));
    return open_cell(at, nullptr);
}

void cell_pool_n::release(void* cell) noexcept {
    if (!cell) return;
    char* at = static_cast<char*>(cell) - head_size;
    cell_pool_c::page_s* page;
    std::memcpy(&page, at, sizeof page);
    if (page)
        drop(page, 1);
    else
        ::operator delete(at);
}

char* cell_pool_n::copy_text(const char* text) {
    if (!text) return nullptr;
    std::size_t n = std::strlen(text) + 1;
    return static_cast<char*>(std::memcpy(allocate(n), text, n));
}

cell_pool_c::cell_pool_c() : _next_page_size(first_page_size), _previous(_current) {
    _current = this;
}

cell_pool_c::~cell_pool_c() {
    _let_go();
    _current = _previous;
}

void* cell_pool_c::_allocate_apart(std::size_t size) {
    std::size_t need = cell_size(size);
    if (need > largest_shared_cell) {
        page_s* own = new_page(sizeof(page_s) + need, 1);
        return open_cell(reinterpret_cast<char*>(own + 1), own);
    }
    if (static_cast<std::size_t>(_end - _next) < need) _start_page(need);
    char* at = _next;
    _next += need;
    ++_cut;
    return open_cell(at, _page);
}

void cell_pool_c::_start_page(std::size_t need) {
    _let_go();
    std::size_t bytes = _next_page_size;
    if (_next_page_size < largest_page_size) _next_page_size *= 2;
    if (bytes < sizeof(page_s) + need) bytes = sizeof(page_s) + need;
    _page = new_page(bytes, held);
    _next = reinterpret_cast<char*>(_page + 1);
    _end = reinterpret_cast<char*>(_page) + bytes;
    _cut = 0;
}

// The page's count was the bias while it was filled; it becomes the number of cells cut that
// are still alive, and a page whose cells all died already dies now.
void cell_pool_c::_let_go() {
    if (!_page) return;
    drop(_page, held - _cut);
    _page = nullptr;
    _next = _end = nullptr;
    _cut = 0;
}
