// txf_wrapper: the transacted file calls. Each member is the platform's call of the same name;
// where the platform has none it fails as that call fails, with the error in GetLastError
// (ERROR_PROC_NOT_FOUND on a Windows without them, ERROR_NOT_SUPPORTED elsewhere).
#pragma once

#include "platform/os.h"

class txf_wrapper_c {
  public:
    using wide_char = os::wide_char;
    using DWORD = os::DWORD;

    static void* CreateFileTransacted(const wide_char* path, DWORD access, DWORD share,
                                      os::SECURITY_ATTRIBUTES* security, DWORD disposition,
                                      DWORD flags, void* template_file, void* transaction,
                                      unsigned short* miniversion, void* extended);
    static int DeleteFileTransacted(const wide_char* path, void* transaction);
    static int MoveFileTransacted(const wide_char* from, const wide_char* to,
                                  os::LPPROGRESS_ROUTINE progress, void* data, DWORD flags,
                                  void* transaction);
    static int RemoveDirectoryTransacted(const wide_char* path, void* transaction);
    static int SetFileAttributesTransacted(const wide_char* path, DWORD attributes,
                                           void* transaction);
    static DWORD GetFileAttributesTransacted(const wide_char* path,
                                             os::GET_FILEEX_INFO_LEVELS level, void* info,
                                             void* transaction);
    static DWORD GetLongPathNameTransacted(const wide_char* short_path, wide_char* long_path,
                                           DWORD length, void* transaction);
    static void* FindFirstFileTransacted(const wide_char* pattern, os::FINDEX_INFO_LEVELS level,
                                         void* data, os::FINDEX_SEARCH_OPS search, void* filter,
                                         DWORD flags, void* transaction);
};
