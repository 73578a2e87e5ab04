#pragma once

#include <array>
#include <cstddef>
#include <new>

namespace quillon::faults {

/// The one object of its type, made at the first use and never destroyed: the program may read and
/// write files until its very end.
template <typename Type>
Type& Lasting() {
    alignas(Type) static std::array<std::byte, sizeof(Type)> memory;
    static Type* const object = new (memory.data()) Type;
    return *object;
}

}  // namespace quillon::faults
