#include "utl/win_internals.h"

#include "support/trc.h"

namespace {
constexpr const char* source = "win_internals";
constexpr os::DWORD file_compression_information = 28;
constexpr os::DWORD compression_information_length = 16;
} // namespace

bool win_internals_n::query_info_file(os::HANDLE handle, void* buffer) {
    QVTR_SCOPE(tr, "win_internals_n::query_info_file", source);
    if (handle == nullptr || handle == os::INVALID_HANDLE_VALUE) return false;
    os::IO_STATUS_BLOCK status_block{};
    long status =
        os::ZwQueryInformationFile(handle, &status_block, buffer, compression_information_length,
                                   file_compression_information);
    return status >= 0;
}
