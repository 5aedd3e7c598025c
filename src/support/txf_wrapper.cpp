#include "support/txf_wrapper.h"

void* txf_wrapper_c::CreateFileTransacted(const wide_char* path, DWORD access, DWORD share,
                                          os::SECURITY_ATTRIBUTES* security, DWORD disposition,
                                          DWORD flags, void* template_file, void* transaction,
                                          unsigned short* miniversion, void* extended) {
    return os::txf::CreateFileTransactedW(path, access, share, security, disposition, flags,
                                          template_file, transaction, miniversion, extended);
}

int txf_wrapper_c::DeleteFileTransacted(const wide_char* path, void* transaction) {
    return os::txf::DeleteFileTransactedW(path, transaction);
}

int txf_wrapper_c::MoveFileTransacted(const wide_char* from, const wide_char* to,
                                      os::LPPROGRESS_ROUTINE progress, void* data, DWORD flags,
                                      void* transaction) {
    return os::txf::MoveFileTransactedW(from, to, progress, data, flags, transaction);
}

int txf_wrapper_c::RemoveDirectoryTransacted(const wide_char* path, void* transaction) {
    return os::txf::RemoveDirectoryTransactedW(path, transaction);
}

int txf_wrapper_c::SetFileAttributesTransacted(const wide_char* path, DWORD attributes,
                                               void* transaction) {
    return os::txf::SetFileAttributesTransactedW(path, attributes, transaction);
}

// The attributes, or INVALID_FILE_ATTRIBUTES; the whole record goes to `info`, whose first
// field is the attribute word.
os::DWORD txf_wrapper_c::GetFileAttributesTransacted(const wide_char* path,
                                                     os::GET_FILEEX_INFO_LEVELS level, void* info,
                                                     void* transaction) {
    if (!os::txf::GetFileAttributesTransactedW(path, level, info, transaction))
        return os::INVALID_FILE_ATTRIBUTES;
    return info ? *static_cast<const DWORD*>(info) : 0;
}

os::DWORD txf_wrapper_c::GetLongPathNameTransacted(const wide_char* short_path,
                                                   wide_char* long_path, DWORD length,
                                                   void* transaction) {
    return os::txf::GetLongPathNameTransactedW(short_path, long_path, length, transaction);
}

void* txf_wrapper_c::FindFirstFileTransacted(const wide_char* pattern, os::FINDEX_INFO_LEVELS level,
                                             void* data, os::FINDEX_SEARCH_OPS search, void* filter,
                                             DWORD flags, void* transaction) {
    return os::txf::FindFirstFileTransactedW(pattern, level, data, search, filter, flags,
                                             transaction);
}
