#pragma once

#include <cerrno>
#include <cstddef>
#include <dlfcn.h>
#include <string>
#include <type_traits>

#include "tests/faults/preload/fault_plan.h"

namespace quillon::faults {

/// The function of that name behind this library's: the C library's own.
template <typename Function>
std::remove_reference_t<Function>* Next(const char* name) {
    return reinterpret_cast<std::remove_reference_t<Function>*>(dlsym(RTLD_NEXT, name));
}

/// What the C library's calls return when they fail.
template <typename Result>
Result FailedWith(int error) {
    errno = error;
    if constexpr (std::is_pointer_v<Result>) {
        return nullptr;
    } else {
        return static_cast<Result>(-1);
    }
}

/// Counts a call and carries it out unless it is to fail.
template <typename Function, typename... Arguments>
auto Carry(Kind kind, const char* name, const std::string& path, Function* next,
           Arguments... arguments) {
    const Order order = Meet(kind, name, path);
    if (order.error != 0) return FailedWith<decltype(next(arguments...))>(order.error);
    return next(arguments...);
}

/// The same for a call that moves `size` bytes: `move` does that with another number of them.
template <typename Move>
ssize_t Transfer(Kind kind, const char* name, const std::string& path, std::size_t size,
                 const Move& move) {
    const Order order = Meet(kind, name, path);
    if (order.error != 0) return FailedWith<ssize_t>(order.error);
    if (!order.half || size < 2) return move(size);
    const ssize_t moved = move(size / 2);
    if (order.endAfterHalf) KillProcess();
    return moved;
}

}  // namespace quillon::faults
