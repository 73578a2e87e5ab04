#pragma once

#include <string>

#include "jet/error.h"

namespace jet::storage {

/// Reports a contradiction in the file. `what` says where and what, without the file's name: the
/// public classes add that.
[[noreturn]] inline void ThrowDamaged(const std::string& what) {
    throw Error(ErrorKind::Damaged, what);
}

}  // namespace jet::storage
