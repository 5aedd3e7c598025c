#include "support/trc.h"

#include "platform/os.h"

#include <atomic>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>

namespace {

constexpr std::size_t path_room = 4096 + 64;

// The trace's process-wide state. It has no destructor of substance, so that lines printed
// while the library is torn down find it intact; the file is closed by file_closer below.
struct trace_state_s {
    std::mutex mutex;
    std::FILE* file = nullptr;
    char path[path_room] = {};
    std::atomic<bool> enabled{true};
    std::atomic<unsigned int> mask{0xFFFFFFFFu};
    std::atomic<bool> has_file{false};
};

// Initialised before every other unit: the shared library's start-up may trace, and under MinGW,
// where a std::mutex is no constant, a later initialiser would reset a trace opened by then.
trace_state_s trace __attribute__((init_priority(101)));

struct file_closer_s {
    ~file_closer_s() {
        std::lock_guard<std::mutex> hold(trace.mutex);
        trace.has_file = false;
        if (trace.file) std::fclose(trace.file);
        trace.file = nullptr;
    }
} file_closer;

bool wanted(unsigned int level) {
    return trace.has_file.load(std::memory_order_relaxed) &&
           trace.enabled.load(std::memory_order_relaxed) &&
           (trace.mask.load(std::memory_order_relaxed) & level) != 0;
}

std::string format_message(const char* format, std::va_list args) {
    char small[1024];
    std::va_list again;
    va_copy(again, args);
    int n = std::vsnprintf(small, sizeof small, format, args);
    std::string text;
    if (n < 0) {
        text = format;
    } else if (static_cast<std::size_t>(n) < sizeof small) {
        text.assign(small, static_cast<std::size_t>(n));
    } else {
        text.resize(static_cast<std::size_t>(n) + 1);
        std::vsnprintf(text.data(), text.size(), format, again);
        text.resize(static_cast<std::size_t>(n));
    }
    va_end(again);
    return text;
}

// One line: time, thread, level, source unit and line, function, message.
void write_line(unsigned int level, const char* source, int line, const char* function,
                std::string message) {
    while (!message.empty() && (message.back() == '\n' || message.back() == '\r'))
        message.pop_back();
    auto now = std::chrono::system_clock::now();
    auto since_epoch = now.time_since_epoch();
    std::int64_t seconds = std::chrono::duration_cast<std::chrono::seconds>(since_epoch).count();
    long millis = static_cast<long>(
        std::chrono::duration_cast<std::chrono::milliseconds>(since_epoch).count() % 1000);
    std::tm local{};
    os::local_time(seconds, &local);
    char stamp[64];
    std::snprintf(stamp, sizeof stamp, "%04d-%02d-%02d %02d:%02d:%02d.%03ld", local.tm_year + 1900,
                  local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
                  millis);
    char head[512];
    std::snprintf(head, sizeof head, "%s tid=%llu level=%u %s:%d %s: ", stamp,
                  static_cast<unsigned long long>(os::current_thread_id()), level,
                  source ? source : "?", line, function ? function : "?");
    std::string text = head + message + "\n";
    std::lock_guard<std::mutex> hold(trace.mutex);
    if (!trace.file) return;
    std::fwrite(text.data(), 1, text.size(), trace.file);
    std::fflush(trace.file);
}

void report(char* buffer, std::uint64_t& size, const char* text) {
    std::size_t n = std::strlen(text);
    if (buffer && size > 0) {
        std::size_t room = static_cast<std::size_t>(size) - 1;
        std::size_t copied = n < room ? n : room;
        std::memcpy(buffer, text, copied);
        buffer[copied] = 0;
    }
    size = n + 1;
}

std::string trim(const std::string& text) {
    std::size_t begin = text.find_first_not_of(" \t\r\n");
    if (begin == std::string::npos) return {};
    std::size_t end = text.find_last_not_of(" \t\r\n");
    return text.substr(begin, end - begin + 1);
}

} // namespace

qvtr_entry_c::qvtr_entry_c(const char* function, const char* source, unsigned int*, unsigned int*,
                           int, bool enabled)
    : _function(function), _source(source), _enabled(enabled) {}

// Both forms end each line once: a format's own line end is dropped and the writer adds one.
void qvtr_entry_c::print(unsigned int level, int line, const char* format, ...) {
    std::va_list args;
    va_start(args, format);
    _print(level, line, format, args);
    va_end(args);
}

void qvtr_entry_c::print_nl(unsigned int level, int line, const char* format, ...) {
    std::va_list args;
    va_start(args, format);
    _print(level, line, format, args);
    va_end(args);
}

void qvtr_entry_c::_print(unsigned int level, int line, const char* format, std::va_list args) {
    if (!_enabled || !format || !wanted(level)) return;
    write_line(level, _source, line, _function, format_message(format, args));
}

bool qvtr_set_log_directory(char* buffer, std::uint64_t& size, const char* directory,
                            const char* module, bool) {
    std::string path;
    if (directory && *directory) {
        path = directory;
        if (path.back() != '/' && path.back() != '\\') path += '/';
        path += (module && *module) ? module : "trace";
        path += ".log";
    }
    std::FILE* file = nullptr;
    if (!path.empty() && path.size() < path_room) file = os::fopen_utf8(path.c_str(), "ab");
    {
        std::lock_guard<std::mutex> hold(trace.mutex);
        if (trace.file) std::fclose(trace.file);
        trace.file = file;
        std::snprintf(trace.path, sizeof trace.path, "%s", file ? path.c_str() : "");
        trace.has_file = file != nullptr;
    }
    report(buffer, size, file ? path.c_str() : "");
    return file != nullptr;
}

bool qvtr_reparse_file(char* buffer, std::uint64_t& size, const char* file) {
    std::FILE* settings = (file && *file) ? os::fopen_utf8(file, "rb") : nullptr;
    if (!settings) {
        report(buffer, size, "cannot read the trace settings file");
        return false;
    }
    bool enabled = trace.enabled.load();
    unsigned int mask = trace.mask.load();
    bool understood = true;
    std::string content;
    char chunk[4096];
    for (std::size_t n; (n = std::fread(chunk, 1, sizeof chunk, settings)) > 0;)
        content.append(chunk, n);
    std::size_t line_start = 0;
    while (line_start < content.size()) {
        std::size_t line_end = content.find('\n', line_start);
        if (line_end == std::string::npos) line_end = content.size();
        std::string line = content.substr(line_start, line_end - line_start);
        line_start = line_end + 1;
        std::size_t hash = line.find('#');
        if (hash != std::string::npos) line.resize(hash);
        std::size_t equals = line.find('=');
        if (trim(line).empty()) continue;
        if (equals == std::string::npos) {
            understood = false;
            continue;
        }
        std::string key = trim(line.substr(0, equals)), value = trim(line.substr(equals + 1));
        if (key == "trace") {
            if (value == "on")
                enabled = true;
            else if (value == "off")
                enabled = false;
            else
                understood = false;
        } else if (key == "levels") {
            // Decimal, or hexadecimal after "0x"; a leading zero does not make it octal.
            bool hex = value.size() > 2 && value[0] == '0' && (value[1] == 'x' || value[1] == 'X');
            const char* digits = value.c_str() + (hex ? 2 : 0);
            char* end = nullptr;
            errno = 0;
            unsigned long parsed = std::strtoul(digits, &end, hex ? 16 : 10);
            bool in_range = errno != ERANGE && parsed <= 0xFFFFFFFFul;
            bool is_digit = std::isxdigit(static_cast<unsigned char>(*digits)) != 0;
            if (is_digit && end && *end == 0 && in_range)
                mask = static_cast<unsigned int>(parsed);
            else
                understood = false;
        }
    }
    std::fclose(settings);
    trace.enabled = enabled;
    trace.mask = mask;
    report(buffer, size, understood ? "" : "some settings lines were not understood");
    return understood;
}

bool qvtr_is_console_application() { return os::has_console(); }

std::string qvtr_current_log_file() {
    std::lock_guard<std::mutex> hold(trace.mutex);
    return trace.path;
}
