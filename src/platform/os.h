// The operating system as the rest of the library sees it: the Win32 operations it needs, with
// their names, parameter values and error numbers, on every platform. The win32 side forwards to
// the real calls; the posix side gives each call its nearest honest meaning and says so where it
// is defined. Nothing above this layer includes a system header.
//
// Win32 implementation files include this header before <windows.h>, so that the macros of the
// system headers never meet the declarations below.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

namespace os {

#if defined(_WIN32)
using DWORD = unsigned long;
#else
using DWORD = std::uint32_t;
#endif
using BOOL = int;
using HANDLE = void*;
using HMODULE = void*;
// UTF-16 is the wide encoding on both platforms.
using wide_char = char16_t;

inline HANDLE const INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-1));

// Win32 error numbers, spoken on both sides.
inline constexpr DWORD ERROR_SUCCESS = 0;
inline constexpr DWORD ERROR_INVALID_FUNCTION = 1;
inline constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
inline constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
inline constexpr DWORD ERROR_TOO_MANY_OPEN_FILES = 4;
inline constexpr DWORD ERROR_ACCESS_DENIED = 5;
inline constexpr DWORD ERROR_INVALID_HANDLE = 6;
inline constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr DWORD ERROR_INVALID_BLOCK = 9;
inline constexpr DWORD ERROR_NOT_SAME_DEVICE = 17;
inline constexpr DWORD ERROR_NO_MORE_FILES = 18;
inline constexpr DWORD ERROR_WRITE_PROTECT = 19;
inline constexpr DWORD ERROR_NOT_READY = 21;
inline constexpr DWORD ERROR_GEN_FAILURE = 31;
inline constexpr DWORD ERROR_SHARING_VIOLATION = 32;
inline constexpr DWORD ERROR_LOCK_VIOLATION = 33;
inline constexpr DWORD ERROR_HANDLE_EOF = 38;
inline constexpr DWORD ERROR_HANDLE_DISK_FULL = 39;
inline constexpr DWORD ERROR_NOT_SUPPORTED = 50;
inline constexpr DWORD ERROR_FILE_EXISTS = 80;
inline constexpr DWORD ERROR_INVALID_PARAMETER = 87;
inline constexpr DWORD ERROR_NOT_LOCKED = 158;
inline constexpr DWORD ERROR_UNRECOGNIZED_VOLUME = 1005;
inline constexpr DWORD ERROR_BROKEN_PIPE = 109;
inline constexpr DWORD ERROR_DISK_FULL = 112;
inline constexpr DWORD ERROR_CALL_NOT_IMPLEMENTED = 120;
inline constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr DWORD ERROR_INVALID_NAME = 123;
inline constexpr DWORD ERROR_MOD_NOT_FOUND = 126;
inline constexpr DWORD ERROR_PROC_NOT_FOUND = 127;
inline constexpr DWORD ERROR_NEGATIVE_SEEK = 131;
inline constexpr DWORD ERROR_DIR_NOT_EMPTY = 145;
inline constexpr DWORD ERROR_BUSY = 170;
inline constexpr DWORD ERROR_ALREADY_EXISTS = 183;
inline constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;
inline constexpr DWORD ERROR_FILE_TOO_LARGE = 223;
inline constexpr DWORD ERROR_DIRECTORY = 267;
inline constexpr DWORD ERROR_OPERATION_ABORTED = 995;
inline constexpr DWORD ERROR_IO_INCOMPLETE = 996;
inline constexpr DWORD ERROR_IO_PENDING = 997;
inline constexpr DWORD ERROR_MR_MID_NOT_FOUND = 317;
inline constexpr DWORD ERROR_NO_UNICODE_TRANSLATION = 1113;
inline constexpr DWORD ERROR_IO_DEVICE = 1117;
inline constexpr DWORD ERROR_PRIVILEGE_NOT_HELD = 1314;
inline constexpr DWORD ERROR_NOT_A_REPARSE_POINT = 4390;
inline constexpr DWORD ERROR_CANT_RESOLVE_FILENAME = 1921;

// Access, sharing, disposition, attribute and flag values of CreateFileW.
inline constexpr DWORD GENERIC_READ = 0x80000000;
inline constexpr DWORD GENERIC_WRITE = 0x40000000;
inline constexpr DWORD GENERIC_ALL = 0x10000000;
inline constexpr DWORD FILE_READ_DATA = 0x1;
inline constexpr DWORD FILE_WRITE_DATA = 0x2;
inline constexpr DWORD FILE_APPEND_DATA = 0x4;
inline constexpr DWORD FILE_EXECUTE = 0x20;
inline constexpr DWORD DELETE = 0x10000;
inline constexpr DWORD WRITE_DAC = 0x40000;
inline constexpr DWORD WRITE_OWNER = 0x80000;
inline constexpr DWORD ACCESS_SYSTEM_SECURITY = 0x01000000;
inline constexpr DWORD FILE_SHARE_READ = 0x1;
inline constexpr DWORD FILE_SHARE_WRITE = 0x2;
inline constexpr DWORD FILE_SHARE_DELETE = 0x4;
inline constexpr DWORD CREATE_NEW = 1;
inline constexpr DWORD CREATE_ALWAYS = 2;
inline constexpr DWORD OPEN_EXISTING = 3;
inline constexpr DWORD OPEN_ALWAYS = 4;
inline constexpr DWORD TRUNCATE_EXISTING = 5;
inline constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x1;
inline constexpr DWORD FILE_ATTRIBUTE_HIDDEN = 0x2;
inline constexpr DWORD FILE_ATTRIBUTE_SYSTEM = 0x4;
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr DWORD FILE_ATTRIBUTE_ARCHIVE = 0x20;
inline constexpr DWORD FILE_ATTRIBUTE_DEVICE = 0x40;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
inline constexpr DWORD FILE_ATTRIBUTE_SPARSE_FILE = 0x200;
inline constexpr DWORD FILE_ATTRIBUTE_REPARSE_POINT = 0x400;
inline constexpr DWORD FILE_ATTRIBUTE_COMPRESSED = 0x800;
inline constexpr DWORD FILE_ATTRIBUTE_OFFLINE = 0x1000;
inline constexpr DWORD FILE_ATTRIBUTE_ENCRYPTED = 0x4000;
inline constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;
inline constexpr DWORD FILE_FLAG_BACKUP_SEMANTICS = 0x02000000;
inline constexpr DWORD FILE_FLAG_OVERLAPPED = 0x40000000;
inline constexpr DWORD FILE_FLAG_WRITE_THROUGH = 0x80000000;
inline constexpr DWORD FILE_FLAG_NO_BUFFERING = 0x20000000;
inline constexpr DWORD FILE_FLAG_SEQUENTIAL_SCAN = 0x08000000;
inline constexpr DWORD FILE_FLAG_OPEN_REPARSE_POINT = 0x00200000;

inline constexpr unsigned CP_UTF8 = 65001;

inline constexpr DWORD FORMAT_MESSAGE_ALLOCATE_BUFFER = 0x100;
inline constexpr DWORD FORMAT_MESSAGE_IGNORE_INSERTS = 0x200;
inline constexpr DWORD FORMAT_MESSAGE_FROM_SYSTEM = 0x1000;
inline constexpr DWORD MOVEFILE_REPLACE_EXISTING = 0x1;
inline constexpr DWORD MOVEFILE_WRITE_THROUGH = 0x8;

inline constexpr DWORD INVALID_SET_FILE_POINTER = 0xFFFFFFFF;
inline constexpr DWORD FILE_BEGIN = 0;
inline constexpr DWORD FILE_CURRENT = 1;
inline constexpr DWORD FILE_END = 2;

// The system's record of a transfer at an explicit position.
struct OVERLAPPED {
    std::uintptr_t Internal;
    std::uintptr_t InternalHigh;
    union {
        struct {
            DWORD Offset;
            DWORD OffsetHigh;
        };
        void* Pointer;
    };
    HANDLE hEvent;
};

struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

struct BY_HANDLE_FILE_INFORMATION {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD dwVolumeSerialNumber;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD nNumberOfLinks;
    DWORD nFileIndexHigh;
    DWORD nFileIndexLow;
};

// The status block of the native calls.
struct IO_STATUS_BLOCK {
    union {
        long Status;
        void* Pointer;
    };
    std::uintptr_t Information;
};

// Opaque records of calls whose extra arguments the library always passes as null.
struct SECURITY_ATTRIBUTES;
using LPPROGRESS_ROUTINE = void*;
enum GET_FILEEX_INFO_LEVELS { GetFileExInfoStandard = 0 };
enum FINDEX_INFO_LEVELS { FindExInfoStandard = 0, FindExInfoBasic = 1 };
enum FINDEX_SEARCH_OPS { FindExSearchNameMatch = 0, FindExSearchLimitToDirectories = 1 };

// ---- errors
DWORD GetLastError();
void SetLastError(DWORD error);
// The C runtime's errno after a failed call of the _w family.
int crt_errno();

// ---- text
int MultiByteToWideChar(unsigned code_page, DWORD flags, const char* src, int src_len,
                        wide_char* dst, int dst_len);
int WideCharToMultiByte(unsigned code_page, DWORD flags, const wide_char* src, int src_len,
                        char* dst, int dst_len);
// With FORMAT_MESSAGE_ALLOCATE_BUFFER, `buffer` is the address of a wide_char* that receives a
// block to release with LocalFree. The length of the text in units, or 0.
DWORD FormatMessageW(DWORD flags, const void* source, DWORD message_id, DWORD language_id,
                     wide_char* buffer, DWORD size, void* arguments);
void* LocalFree(void* block);
wide_char* CharLowerW(wide_char* text);
int _wcsicmp(const wide_char* a, const wide_char* b);
// Comparisons of narrow text that fold only A-Z, as the C runtime does in the "C" locale.
int _stricmp(const char* a, const char* b);
int _strnicmp(const char* a, const char* b, std::size_t count);

// ---- files and volumes
HANDLE CreateFileW(const wide_char* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                   DWORD disposition, DWORD flags_and_attributes, HANDLE template_file);
BOOL CloseHandle(HANDLE handle);
// Whether the system gives objects a second, short name. Where it does not, no name is a short
// one and nobody needs to ask the system about it.
#if defined(_WIN32)
inline constexpr bool has_short_names = true;
#else
inline constexpr bool has_short_names = false;
#endif
DWORD GetLongPathNameW(const wide_char* short_path, wide_char* long_path, DWORD length);
DWORD GetShortPathNameW(const wide_char* long_path, wide_char* short_path, DWORD length);
BOOL GetVolumePathNameW(const wide_char* path, wide_char* volume_path, DWORD length);
int _waccess(const wide_char* path, int mode);
BOOL MoveFileExW(const wide_char* from, const wide_char* to, DWORD flags);
BOOL GetDiskFreeSpaceExW(const wide_char* path, std::uint64_t* free_to_caller, std::uint64_t* total,
                         std::uint64_t* total_free);
BOOL GetDiskFreeSpaceW(const wide_char* path, DWORD* sectors_per_cluster, DWORD* bytes_per_sector,
                       DWORD* free_clusters, DWORD* total_clusters);
BOOL GetVolumeNameForVolumeMountPointW(const wide_char* mount_point, wide_char* volume_name,
                                       DWORD length);

// ---- the native call that the documented interface doesn't offer, found at run time
long ZwQueryInformationFile(HANDLE handle, IO_STATUS_BLOCK* status, void* buffer, DWORD length,
                            DWORD information_class);

// ---- attributes, directories and their contents
DWORD GetFileAttributesW(const wide_char* path);
BOOL SetFileAttributesW(const wide_char* path, DWORD attributes);
BOOL DeleteFileW(const wide_char* path);
BOOL CreateDirectoryW(const wide_char* path, SECURITY_ATTRIBUTES* security);
BOOL RemoveDirectoryW(const wide_char* path);

inline constexpr DWORD MAX_PATH = 260;
inline constexpr DWORD FIND_FIRST_EX_LARGE_FETCH = 0x2;
inline constexpr DWORD FIND_FIRST_EX_CASE_SENSITIVE = 0x1;

struct WIN32_FIND_DATAW {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD dwReserved0;
    DWORD dwReserved1;
    wide_char cFileName[MAX_PATH];
    wide_char cAlternateFileName[14];
};

HANDLE FindFirstFileW(const wide_char* pattern, WIN32_FIND_DATAW* data);
HANDLE FindFirstFileExW(const wide_char* pattern, FINDEX_INFO_LEVELS level, void* data,
                        FINDEX_SEARCH_OPS search, void* filter, DWORD flags);
BOOL FindNextFileW(HANDLE search, WIN32_FIND_DATAW* data);
BOOL FindClose(HANDLE search);

// ---- drives and volumes
inline constexpr unsigned DRIVE_UNKNOWN = 0;
inline constexpr unsigned DRIVE_NO_ROOT_DIR = 1;
inline constexpr unsigned DRIVE_REMOVABLE = 2;
inline constexpr unsigned DRIVE_FIXED = 3;
inline constexpr unsigned DRIVE_REMOTE = 4;
inline constexpr unsigned DRIVE_CDROM = 5;
inline constexpr unsigned DRIVE_RAMDISK = 6;
inline constexpr DWORD FILE_CASE_SENSITIVE_SEARCH = 0x1;
inline constexpr DWORD FILE_CASE_PRESERVED_NAMES = 0x2;
inline constexpr DWORD FILE_UNICODE_ON_DISK = 0x4;
inline constexpr DWORD FILE_FILE_COMPRESSION = 0x10;
inline constexpr DWORD FSCTL_GET_REPARSE_POINT = 0x000900A8;
inline constexpr DWORD FSCTL_SET_SPARSE = 0x000900C4;
inline constexpr DWORD FSCTL_SET_COMPRESSION = 0x0009C040;
// Volume control codes.
inline constexpr DWORD IOCTL_DISK_GET_DRIVE_GEOMETRY = 0x00070000;
inline constexpr DWORD FSCTL_LOCK_VOLUME = 0x00090018;
inline constexpr DWORD FSCTL_UNLOCK_VOLUME = 0x0009001C;
inline constexpr DWORD FSCTL_DISMOUNT_VOLUME = 0x00090020;
inline constexpr DWORD FSCTL_EXTEND_VOLUME = 0x000900F0;
// What IOCTL_DISK_GET_DRIVE_GEOMETRY gives, 24 bytes as the system lays it out.
struct DISK_GEOMETRY {
    std::int64_t Cylinders;
    DWORD MediaType;
    DWORD TracksPerCylinder;
    DWORD SectorsPerTrack;
    DWORD BytesPerSector;
};
static_assert(sizeof(DISK_GEOMETRY) == 24);
inline constexpr DWORD IO_REPARSE_TAG_SYMLINK = 0xA000000C;
inline constexpr DWORD IO_REPARSE_TAG_MOUNT_POINT = 0xA0000003;

unsigned GetDriveTypeW(const wide_char* root);
BOOL GetVolumeInformationW(const wide_char* root, wide_char* volume_name, DWORD volume_name_size,
                           DWORD* serial_number, DWORD* longest_component, DWORD* flags,
                           wide_char* file_system_name, DWORD file_system_name_size);
DWORD QueryDosDeviceW(const wide_char* device, wide_char* target, DWORD size);
BOOL DeviceIoControl(HANDLE device, DWORD code, void* in, DWORD in_size, void* out, DWORD out_size,
                     DWORD* returned, OVERLAPPED* overlapped);

// ---- reading and writing open files
BOOL ReadFile(HANDLE file, void* buffer, DWORD count, DWORD* done, OVERLAPPED* overlapped);
BOOL WriteFile(HANDLE file, const void* buffer, DWORD count, DWORD* done, OVERLAPPED* overlapped);
BOOL GetOverlappedResult(HANDLE file, OVERLAPPED* overlapped, DWORD* done, BOOL wait);
DWORD SetFilePointer(HANDLE file, long distance, long* distance_high, DWORD method);
BOOL SetEndOfFile(HANDLE file);
BOOL FlushFileBuffers(HANDLE file);
// A second handle in this process to the same open, with the same access.
BOOL DuplicateHandle(HANDLE source, HANDLE* target);
BOOL GetFileInformationByHandle(HANDLE file, BY_HANDLE_FILE_INFORMATION* information);
// Whole pages of memory.
inline constexpr DWORD MEM_COMMIT = 0x1000;
inline constexpr DWORD MEM_RELEASE = 0x8000;
inline constexpr DWORD PAGE_READWRITE = 0x04;
void* VirtualAlloc(void* address, std::size_t size, DWORD allocation_type, DWORD protection);
BOOL VirtualFree(void* address, std::size_t size, DWORD free_type);
HANDLE CreateEventW(SECURITY_ATTRIBUTES* security, BOOL manual_reset, BOOL initial_state,
                    const wide_char* name);
// C streams over handles, as the C runtime gives them.
int _open_osfhandle(std::intptr_t handle, int flags);
std::intptr_t _get_osfhandle(int fd);
std::FILE* _fdopen(int fd, const char* mode);
int _fileno(std::FILE* stream);
int _close(int fd);
// 64-bit positions of C streams.
int fseek64(std::FILE* stream, std::int64_t position);
std::int64_t ftell64(std::FILE* stream);
// The C runtime's flags of _open_osfhandle.
inline constexpr int O_RDONLY_FLAG = 0;
inline constexpr int O_WRONLY_FLAG = 1;
inline constexpr int O_RDWR_FLAG = 2;

// ---- transacted calls, resolved at run time where the system has them
namespace txf {
HANDLE CreateFileTransactedW(const wide_char* path, DWORD access, DWORD share,
                             SECURITY_ATTRIBUTES* security, DWORD disposition, DWORD flags,
                             HANDLE template_file, HANDLE transaction, unsigned short* miniversion,
                             void* extended);
BOOL DeleteFileTransactedW(const wide_char* path, HANDLE transaction);
BOOL MoveFileTransactedW(const wide_char* from, const wide_char* to, LPPROGRESS_ROUTINE progress,
                         void* data, DWORD flags, HANDLE transaction);
BOOL RemoveDirectoryTransactedW(const wide_char* path, HANDLE transaction);
BOOL SetFileAttributesTransactedW(const wide_char* path, DWORD attributes, HANDLE transaction);
BOOL GetFileAttributesTransactedW(const wide_char* path, GET_FILEEX_INFO_LEVELS level, void* info,
                                  HANDLE transaction);
DWORD GetLongPathNameTransactedW(const wide_char* short_path, wide_char* long_path, DWORD length,
                                 HANDLE transaction);
HANDLE FindFirstFileTransactedW(const wide_char* pattern, FINDEX_INFO_LEVELS level, void* data,
                                FINDEX_SEARCH_OPS search, void* filter, DWORD flags,
                                HANDLE transaction);
} // namespace txf

// ---- process, threads and time
std::uint64_t current_thread_id();
std::uint64_t current_process_id();
bool local_time(std::int64_t time, std::tm* result);
// Local broken-down time to seconds since 1970, as _mktime64 of the Windows runtime: the fields
// are normalised, and the result is -1 outside midnight 1 January 1970 to the end of 31 December
// 3000, UTC, on both platforms.
std::int64_t mktime64(std::tm* local);
// Seconds since 1970 now.
std::int64_t time_now();
// True when the process has a console (a terminal on its standard error).
bool has_console();
// The absolute path of the running executable, UTF-8, empty when unknown.
std::string executable_path();

// ---- files of the support layer, by UTF-8 path, without the path rules of the files layer
std::FILE* fopen_utf8(const char* path, const char* mode);
bool create_directory_utf8(const char* path);

// ---- dynamic libraries
HMODULE load_library(const char* path_utf8);
void* find_symbol(HMODULE module, const char* name);
void free_library(HMODULE module);
// What the last failed load_library or find_symbol said, for a human.
std::string last_library_error();

// ---- child processes, for the tool and the tests
// Runs argv[0] with the arguments, standard output and error into output_path (UTF-8 path),
// standard input from the null device; waits for it. Returns its exit code, or -1. With an
// error_path, standard error goes there instead, apart from the output.
int run_process(const std::vector<std::string>& argv, const std::string& output_path,
                const std::string& error_path = {});

// A child process that runs beside the caller.
struct child_process_s;
// Starts argv[0] as run_process does, without waiting; null when it can't start.
child_process_s* start_process(const std::vector<std::string>& argv, const std::string& output_path,
                               const std::string& error_path = {});
// Waits up to `milliseconds` for the child to end: its exit code, or -1 while it still runs.
int wait_process(child_process_s* child, int milliseconds);
// Ends the child at once, as a crash would (SIGKILL, TerminateProcess), and waits for it.
void kill_process(child_process_s* child);
// Forgets the record of a child that has ended (or kills it first).
void release_process(child_process_s* child);

} // namespace os
