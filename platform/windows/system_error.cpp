#include "platform/windows/system_error.h"

#include <cerrno>

namespace quillon {
namespace {

constexpr DWORD DiskQuotaExceeded = 1295;  // missing in some sets of the system's headers

}  // namespace

int ErrnoOf(DWORD code) {
    switch (code) {
        case ERROR_SUCCESS:
            return 0;
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_DRIVE:
        case ERROR_BAD_NET_NAME:
        case ERROR_NO_MORE_FILES:
            return ENOENT;
        case ERROR_DIRECTORY:
            return ENOTDIR;
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT:
        case ERROR_NETWORK_ACCESS_DENIED:
        case ERROR_PRIVILEGE_NOT_HELD:
        case ERROR_DELETE_PENDING:
            return EACCES;
        // Another program has the file open and does not share it.
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
        case ERROR_USER_MAPPED_FILE:
        case ERROR_BUSY:
            return EBUSY;
        case ERROR_ALREADY_EXISTS:
        case ERROR_FILE_EXISTS:
            return EEXIST;
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
        case DiskQuotaExceeded:
            return ENOSPC;
        case ERROR_FILE_TOO_LARGE:
            return EFBIG;
        case ERROR_FILENAME_EXCED_RANGE:
            return ENAMETOOLONG;
        case ERROR_INVALID_NAME:
        case ERROR_BAD_PATHNAME:
        case ERROR_INVALID_PARAMETER:
            return EINVAL;
        case ERROR_NOT_SAME_DEVICE:
            return EXDEV;
        case ERROR_DIR_NOT_EMPTY:
            return ENOTEMPTY;
        case ERROR_CANT_RESOLVE_FILENAME:
            return ELOOP;
        case ERROR_TOO_MANY_OPEN_FILES:
            return EMFILE;
        case ERROR_NOT_ENOUGH_MEMORY:
        case ERROR_OUTOFMEMORY:
            return ENOMEM;
        // A server that does not answer may do so again: what lies there is not gone.
        case ERROR_BAD_NETPATH:
        case ERROR_NETWORK_UNREACHABLE:
        case ERROR_HOST_UNREACHABLE:
            return EHOSTUNREACH;
        case ERROR_NOT_READY:
            return ENODEV;
        case ERROR_NOT_SUPPORTED:
        case ERROR_INVALID_FUNCTION:
        case ERROR_CALL_NOT_IMPLEMENTED:
            return ENOSYS;
        default:
            return EIO;
    }
}

}  // namespace quillon
