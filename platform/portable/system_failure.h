#pragma once

#include <string_view>

#include "platform/failure.h"
#include "platform/portable/local_file.h"

namespace quillon {

/// The runtime's failure for an error number of the operating system. `missing` says what it is
/// when the path does not exist: FileNotFound or PathNotFound.
Failure SystemFailure(int error, std::string_view path,
                      FailureNumber missing = FailureNumber::PathNotFound);

/// PermissionDenied for what has a file's name and is none; `kind` says what it is.
Failure NoFileFailure(LocalKind kind, std::string_view path);

}  // namespace quillon
