#pragma once

#include <string_view>

#include "platform/failure.h"

namespace quillon {

/// The runtime's failure for an error number of the operating system. `missing` says what it is
/// when the path does not exist: FileNotFound or PathNotFound.
Failure SystemFailure(int error, std::string_view path,
                      FailureNumber missing = FailureNumber::PathNotFound);

}  // namespace quillon
