#include "platform/portable/system_failure.h"

#include <cerrno>
#include <string>
#include <system_error>

namespace quillon {
namespace {

FailureNumber NumberOf(int error, FailureNumber missing) {
#ifdef EDQUOT  // Not every system tells a quota from a full disk.
    if (error == EDQUOT) return FailureNumber::DiskFull;
#endif
    switch (error) {
        case ENOENT:
            return missing;
        case ENOTDIR:
        case ELOOP:
            return FailureNumber::PathNotFound;
        case EACCES:
        case EPERM:
        case EROFS:
        case EBUSY:
        case EISDIR:
        case ETXTBSY:
            return FailureNumber::PermissionDenied;
        case ENOSPC:
        case EFBIG:
            return FailureNumber::DiskFull;
        case EEXIST:
            return FailureNumber::FileAlreadyExists;
        case ENAMETOOLONG:
        case EILSEQ:
        case EINVAL:
            return FailureNumber::BadFileName;
        default:
            return FailureNumber::PathFileAccess;
    }
}

const char* KindName(LocalKind kind) {
    switch (kind) {
        case LocalKind::Folder:
            return "a folder";
        case LocalKind::Link:
            return "a symbolic link";
        case LocalKind::Pipe:
            return "a pipe";
        case LocalKind::Socket:
            return "a socket";
        default:
            return "a device";
    }
}

}  // namespace

Failure SystemFailure(int error, std::string_view path, FailureNumber missing) {
    const FailureNumber number = NumberOf(error, missing);
    std::string concerning(path);
    // The one wording that does not say what happened.
    if (number == FailureNumber::PathFileAccess) {
        concerning += " (" + std::generic_category().message(error) + ")";
    }
    return {number, concerning};
}

Failure NoFileFailure(LocalKind kind, std::string_view path) {
    return {FailureNumber::PermissionDenied,
            std::string(path) + " (this is " + KindName(kind) + " and no file)"};
}

}  // namespace quillon
