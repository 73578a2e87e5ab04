#include "platform/portable/system_failure.h"

#include <cerrno>
#include <string>
#include <sys/stat.h>
#include <system_error>

namespace quillon {
namespace {

FailureNumber NumberOf(int error, FailureNumber missing) {
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
        case EDQUOT:
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

const char* KindName(mode_t mode) {
    if (S_ISDIR(mode)) return "a folder";
    if (S_ISLNK(mode)) return "a symbolic link";
    if (S_ISFIFO(mode)) return "a pipe";
    if (S_ISSOCK(mode)) return "a socket";
    return "a device";
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

Failure NoFileFailure(mode_t mode, std::string_view path) {
    return {FailureNumber::PermissionDenied,
            std::string(path) + " (this is " + KindName(mode) + " and no file)"};
}

}  // namespace quillon
