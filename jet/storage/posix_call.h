#pragma once

#include <cerrno>

#include "jet/storage/system_file.h"

namespace jet::storage {

/// The descriptor as the system's calls take it.
inline int NumberOf(const Descriptor& file) {
    return static_cast<int>(file.Number());
}

/// Repeats a system call that a signal interrupted.
template <typename Call>
auto Uninterrupted(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

}  // namespace jet::storage
