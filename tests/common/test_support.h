// Helpers shared by the tests: scratch directories, files, the trace file and the platform.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace test_support {

// UTF-8 text of a path, in the platform's own spelling.
std::string utf8(const std::filesystem::path& path);
std::filesystem::path from_utf8(const std::string& text);

// A fresh directory under the system's temporary folder, removed with everything in it.
class temp_dir_c {
  public:
    temp_dir_c();
    ~temp_dir_c();
    temp_dir_c(const temp_dir_c&) = delete;
    temp_dir_c& operator=(const temp_dir_c&) = delete;

    const std::filesystem::path& path() const { return _path; }
    std::string str() const { return utf8(_path); }
    // UTF-8 path of `name` inside the directory.
    std::string join(const std::string& name) const;

  private:
    std::filesystem::path _path;
};

std::string read_file(const std::string& utf8_path);
void write_file(const std::string& utf8_path, const std::string& content);

// The directory that holds the running test executable (and the built library and tool).
std::string bin_dir();

// True when the Windows build runs under Wine.
bool on_wine();
// True for the Windows build.
constexpr bool on_windows() {
#if defined(_WIN32)
    return true;
#else
    return false;
#endif
}

// Sends the trace to a scratch directory for the lifetime of the object; text() reads the
// trace file back. Only one may live at a time: the trace is process-wide.
class trace_capture_c {
  public:
    explicit trace_capture_c(const std::string& settings = "trace = on\nlevels = 0xffffffff\n");
    ~trace_capture_c();
    trace_capture_c(const trace_capture_c&) = delete;
    trace_capture_c& operator=(const trace_capture_c&) = delete;

    std::string text() const;
    std::string file() const { return _file; }
    const temp_dir_c& dir() const { return _dir; }

  private:
    temp_dir_c _dir;
    std::string _file;
};

// The lines of a text, without their line ends.
std::vector<std::string> lines_of(const std::string& text);

// The whole line of `trace` that ends with `message`, without its line end; empty when none does.
std::string trace_line(const std::string& trace, const std::string& message);

// The UTF-8 short form of an existing path, as the system gives it; empty where none exists.
std::string short_form(const std::string& path);

// Whether the system's GetLongPathNameW expands the short form of a path given with the long-path
// prefix, as the library asks it. Wine 8 hands back every path that begins with two backslashes
// unchanged.
bool long_names_resolve_with_prefix(const std::string& short_path);

// The attribute word of a path as the system gives it (GetFileAttributesW), and a new one.
unsigned long attributes_of(const std::string& utf8_path);
bool set_attributes(const std::string& utf8_path, unsigned long attributes);

// Whether the hidden bit is stored for the path: on POSIX in its extended attribute
// "user.DOSATTRIB", which a dot-name does not need to read as hidden. -1 where the test cannot
// see what is stored (the Windows build, where the system answers for the stored bits itself).
int stored_hidden_bit(const std::string& utf8_path);

// The value of the process-wide counter of open handles (the test main has started the library).
int open_handle_count();

// Puts `replacement` in the place of one entry of the POSIX system-call table
// (os::posix::syscalls()) for the lifetime of the object, so that a test can make the system
// answer what no machine here has: a CD-ROM, a network drive, a full disk.
template <typename Call> class replaced_syscall_c {
  public:
    replaced_syscall_c(Call& entry, Call replacement) : _entry(entry), _saved(entry) {
        _entry = replacement;
    }
    ~replaced_syscall_c() { _entry = _saved; }
    replaced_syscall_c(const replaced_syscall_c&) = delete;
    replaced_syscall_c& operator=(const replaced_syscall_c&) = delete;

  private:
    Call& _entry;
    Call _saved;
};

// Number of times `needle` stands in `haystack`.
std::size_t count_of(const std::string& haystack, const std::string& needle);

} // namespace test_support
