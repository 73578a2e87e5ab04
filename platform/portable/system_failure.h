#pragma once

#include <string_view>
#include <sys/types.h>

#include "platform/failure.h"

namespace quillon {

/// The runtime's failure for an error number of the operating system. `missing` says what it is
/// when the path does not exist: FileNotFound or PathNotFound.
Failure SystemFailure(int error, std::string_view path,
                      FailureNumber missing = FailureNumber::PathNotFound);

/// PermissionDenied for what has a file's name and is none; `mode` says what it is.
Failure NoFileFailure(mode_t mode, std::string_view path);

}  // namespace quillon
