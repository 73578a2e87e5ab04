#include "jet/storage/posix.h"

#include <string>
#include <system_error>
#include <unistd.h>

#include "jet/error.h"

namespace jet::storage {

Descriptor::~Descriptor() {
    if (IsOpen()) close(number_);
}

void ThrowSystemError(std::string_view verb, const std::filesystem::path& path, int errorNumber) {
    auto kind = ErrorKind::Io;
    if (errorNumber == ENOENT || errorNumber == ENOTDIR) kind = ErrorKind::NotFound;
    if (errorNumber == EACCES || errorNumber == EPERM || errorNumber == EROFS) {
        kind = ErrorKind::ReadOnly;
    }
    throw Error(kind, "Cannot " + std::string(verb) + " " + path.string() + ": " +
                          std::generic_category().message(errorNumber) + ".");
}

}  // namespace jet::storage
