#include "changes/change.h"

namespace quillon {

std::uint64_t ContentHash(std::string_view bytes, std::uint64_t before) {
    constexpr std::uint64_t Prime = 0x100000001b3;
    std::uint64_t hash = before;
    for (const char byte : bytes)
        hash = (hash ^ static_cast<unsigned char>(byte)) * Prime;
    return hash;
}

}  // namespace quillon
