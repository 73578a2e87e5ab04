#pragma once

#include <cstdint>
#include <string_view>

namespace quillon {

/// A hash to tell whether content is still the same (64-bit FNV-1a). Not for foes. `before` is that
/// of the bytes before these.
constexpr std::uint64_t HashOfNothing = 0xcbf29ce484222325;
constexpr std::uint64_t ContentHash(std::string_view bytes, std::uint64_t before = HashOfNothing) {
    constexpr std::uint64_t Prime = 0x100000001b3;
    std::uint64_t hash = before;
    for (const char byte : bytes)
        hash = (hash ^ static_cast<unsigned char>(byte)) * Prime;
    return hash;
}

}  // namespace quillon
