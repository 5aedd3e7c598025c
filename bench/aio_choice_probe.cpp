// What this kernel allows for asynchronous file transfers without a new library, and how fast
// each way moves a file in the pattern of the buffered writer and the read-ahead: 64 KB
// transfers, three writes in flight (the writer's default ring) and two reads ahead. Ways:
// positional pread/pwrite (the floor: nothing in flight), POSIX AIO of the C library (helper
// threads), and the kernel's io_uring by its raw system calls, writes handed to the kernel's
// workers (IOSQE_ASYNC) or tried at once. Reads run from the page cache ("cached") and after
// posix_fadvise(DONTNEED) ("cold"). Prints the median MB/s of the runs.
//
//     aio_choice_probe [MB] [runs]        default 512 MB, 5 runs, in $TMPDIR or /tmp
#include <aio.h>
#include <linux/io_uring.h>
#include <sys/mman.h>
#include <sys/syscall.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t piece = 64 << 10;
std::size_t total = 512ull << 20;

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

struct ring_s {
    int fd = -1;
    unsigned *sq_tail = nullptr, *sq_mask = nullptr, *sq_array = nullptr;
    unsigned *cq_head = nullptr, *cq_tail = nullptr, *cq_mask = nullptr;
    io_uring_sqe* sqes = nullptr;
    io_uring_cqe* cqes = nullptr;
};

bool ring_open(ring_s& r, unsigned& features) {
    io_uring_params p{};
    r.fd = static_cast<int>(syscall(__NR_io_uring_setup, 8, &p));
    if (r.fd < 0) return false;
    features = p.features;
    std::size_t sl = p.sq_off.array + p.sq_entries * sizeof(unsigned);
    std::size_t cl = p.cq_off.cqes + p.cq_entries * sizeof(io_uring_cqe);
    std::size_t both = std::max(sl, cl);
    auto* sq = static_cast<char*>(mmap(nullptr, both, PROT_READ | PROT_WRITE,
                                       MAP_SHARED | MAP_POPULATE, r.fd, IORING_OFF_SQ_RING));
    char* cq = sq;
    if (!(p.features & IORING_FEAT_SINGLE_MMAP))
        cq = static_cast<char*>(mmap(nullptr, cl, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE,
                                     r.fd, IORING_OFF_CQ_RING));
    r.sqes = static_cast<io_uring_sqe*>(mmap(nullptr, p.sq_entries * sizeof(io_uring_sqe),
                                             PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE,
                                             r.fd, IORING_OFF_SQES));
    r.sq_tail = reinterpret_cast<unsigned*>(sq + p.sq_off.tail);
    r.sq_mask = reinterpret_cast<unsigned*>(sq + p.sq_off.ring_mask);
    r.sq_array = reinterpret_cast<unsigned*>(sq + p.sq_off.array);
    r.cq_head = reinterpret_cast<unsigned*>(cq + p.cq_off.head);
    r.cq_tail = reinterpret_cast<unsigned*>(cq + p.cq_off.tail);
    r.cq_mask = reinterpret_cast<unsigned*>(cq + p.cq_off.ring_mask);
    r.cqes = reinterpret_cast<io_uring_cqe*>(cq + p.cq_off.cqes);
    return true;
}

void ring_submit(ring_s& r, int op, unsigned char flags, int fd, void* b, std::size_t off,
                 unsigned long tag) {
    unsigned t = *r.sq_tail, i = t & *r.sq_mask;
    io_uring_sqe* s = &r.sqes[i];
    std::memset(s, 0, sizeof *s);
    s->opcode = static_cast<unsigned char>(op);
    s->flags = flags;
    s->fd = fd;
    s->addr = reinterpret_cast<unsigned long>(b);
    s->len = piece;
    s->off = off;
    s->user_data = tag;
    r.sq_array[i] = i;
    __atomic_store_n(r.sq_tail, t + 1, __ATOMIC_RELEASE);
    syscall(__NR_io_uring_enter, r.fd, 1, 0, 0, nullptr, 0);
}

unsigned long ring_wait(ring_s& r) {
    for (;;) {
        unsigned h = *r.cq_head;
        if (h != __atomic_load_n(r.cq_tail, __ATOMIC_ACQUIRE)) {
            unsigned long tag = r.cqes[h & *r.cq_mask].user_data;
            __atomic_store_n(r.cq_head, h + 1, __ATOMIC_RELEASE);
            return tag;
        }
        syscall(__NR_io_uring_enter, r.fd, 0, 1, IORING_ENTER_GETEVENTS, nullptr, 0);
    }
}

void aio_finish(aiocb& cb) {
    const aiocb* list[1] = {&cb};
    while (aio_error(&cb) == EINPROGRESS) aio_suspend(list, 1, nullptr);
    aio_return(&cb);
}

void aio_start(aiocb& cb, int fd, void* b, std::size_t off, bool write) {
    std::memset(&cb, 0, sizeof cb);
    cb.aio_fildes = fd;
    cb.aio_buf = b;
    cb.aio_nbytes = piece;
    cb.aio_offset = static_cast<off_t>(off);
    if (write)
        aio_write(&cb);
    else
        aio_read(&cb);
}

struct buffers_s {
    std::vector<char*> slots;
    char* source;
    buffers_s() {
        for (int i = 0; i < 3; ++i) {
            slots.push_back(static_cast<char*>(std::aligned_alloc(4096, piece)));
            std::memset(slots.back(), 'x', piece);
        }
        source = static_cast<char*>(std::aligned_alloc(4096, piece));
        std::memset(source, 'y', piece);
    }
};

enum class way_t { sync, posix_aio, uring_async, uring_inline };
const char* way_names[] = {"pread/pwrite", "POSIX AIO", "io_uring (writes to workers)",
                           "io_uring (writes tried at once)"};

// Writes the file anew, with the caller's copy into a slot as the buffered writer makes it.
double write_file(const std::string& path, way_t way, buffers_s& b, ring_s& ring) {
    int fd = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0644);
    double start = now();
    constexpr int depth = 3;
    if (way == way_t::sync) {
        for (std::size_t o = 0; o < total; o += piece) {
            std::memcpy(b.slots[0], b.source, piece);
            if (pwrite(fd, b.slots[0], piece, static_cast<off_t>(o)) < 0) break;
        }
    } else if (way == way_t::posix_aio) {
        aiocb cbs[depth];
        bool busy[depth] = {};
        int k = 0;
        for (std::size_t o = 0; o < total; o += piece, k = (k + 1) % depth) {
            if (busy[k]) aio_finish(cbs[k]);
            std::memcpy(b.slots[k], b.source, piece);
            aio_start(cbs[k], fd, b.slots[k], o, true);
            busy[k] = true;
        }
        for (int i = 0; i < depth; ++i)
            if (busy[i]) aio_finish(cbs[i]);
    } else {
        unsigned char flags = way == way_t::uring_async ? IOSQE_ASYNC : 0;
        int in_flight = 0, k = 0;
        for (std::size_t o = 0; o < total; o += piece, k = (k + 1) % depth) {
            if (in_flight == depth) {
                ring_wait(ring);
                --in_flight;
            }
            std::memcpy(b.slots[k], b.source, piece);
            ring_submit(ring, IORING_OP_WRITE, flags, fd, b.slots[k], o, k);
            ++in_flight;
        }
        while (in_flight--) ring_wait(ring);
    }
    double took = now() - start;
    close(fd);
    return took;
}

// Reads the file from start to end with two reads ahead of the one consumed.
double read_file(const std::string& path, way_t way, buffers_s& b, ring_s& ring, bool cold) {
    int fd = open(path.c_str(), O_RDONLY);
    if (cold) {
        posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED);
    } else {
        for (std::size_t o = 0; o < total; o += piece) pread(fd, b.slots[0], piece, o);
    }
    double start = now();
    constexpr int depth = 3; // the read being consumed and two ahead
    if (way == way_t::sync) {
        for (std::size_t o = 0; o < total; o += piece)
            if (pread(fd, b.slots[0], piece, static_cast<off_t>(o)) <= 0) break;
    } else if (way == way_t::posix_aio) {
        aiocb cbs[depth];
        std::size_t next = 0;
        for (int i = 0; i < depth && next < total; ++i, next += piece)
            aio_start(cbs[i], fd, b.slots[i], next, false);
        int k = 0;
        for (std::size_t o = 0; o < total; o += piece, k = (k + 1) % depth) {
            aio_finish(cbs[k]);
            if (next < total) {
                aio_start(cbs[k], fd, b.slots[k], next, false);
                next += piece;
            }
        }
    } else {
        std::size_t next = 0;
        int in_flight = 0;
        for (int i = 0; i < depth; ++i, next += piece, ++in_flight)
            ring_submit(ring, IORING_OP_READ, 0, fd, b.slots[i], next, i);
        while (in_flight) {
            unsigned long k = ring_wait(ring);
            --in_flight;
            if (next < total) {
                ring_submit(ring, IORING_OP_READ, 0, fd, b.slots[k], next, k);
                next += piece;
                ++in_flight;
            }
        }
    }
    double took = now() - start;
    close(fd);
    return took;
}

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 1) total = std::strtoull(argv[1], nullptr, 10) << 20;
    int runs = argc > 2 ? std::atoi(argv[2]) : 5;
    const char* dir = std::getenv("TMPDIR");
    std::string path = std::string(dir && *dir ? dir : "/tmp") + "/stats_mng_aio_probe.bin";

    ring_s ring;
    unsigned features = 0;
    bool have_ring = ring_open(ring, features);
    std::printf("io_uring_setup: %s", have_ring ? "a ring of 8 entries opens" : "refused");
    if (have_ring) std::printf(" (features 0x%x)", features);
    if (!have_ring) std::printf(" (%s)", std::strerror(errno));
    std::printf("\nPOSIX AIO: the C library's, on helper threads\n");
    std::printf("%zu MB in 64 KB transfers, median of %d runs, MB/s\n\n", total >> 20, runs);

    buffers_s b;
    std::vector<way_t> ways = {way_t::sync, way_t::posix_aio};
    if (have_ring) {
        ways.push_back(way_t::uring_async);
        ways.push_back(way_t::uring_inline);
    }
    std::printf("%-32s %10s %12s %10s\n", "", "write", "read cached", "read cold");
    double mb = static_cast<double>(total >> 20);
    for (way_t way : ways) {
        std::vector<double> w, rc, rk;
        for (int i = 0; i < runs; ++i) {
            w.push_back(write_file(path, way, b, ring));
            int fd = open(path.c_str(), O_RDONLY);
            fdatasync(fd);
            close(fd);
            rk.push_back(read_file(path, way, b, ring, true));
            rc.push_back(read_file(path, way, b, ring, false));
        }
        std::printf("%-32s %10.0f %12.0f %10.0f\n", way_names[static_cast<int>(way)],
                    mb / median(w), mb / median(rc), mb / median(rk));
        std::fflush(stdout);
    }
    unlink(path.c_str());
    return 0;
}
