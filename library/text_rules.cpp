#include "library/text_rules.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>

namespace quillon {
namespace {

/// Eight characters at once.
using Block = std::uint64_t;
constexpr std::size_t BlockSize = sizeof(Block);
constexpr Block HighBits = 0x8080808080808080U;

constexpr Block Repeated(unsigned char byte) {
    return Block{byte} * 0x0101010101010101U;
}

/// The next characters of a text, with zeros behind its end.
Block Take(std::string_view& text) {
    Block block = 0;
    const std::size_t size = std::min(text.size(), BlockSize);
    std::memcpy(&block, text.data(), size);
    text.remove_prefix(size);
    return block;
}

/// ASCII capitals made small; other bytes stay.
Block Lower(Block block) {
    const Block low = block & ~HighBits;
    const Block atLeastA = low + Repeated(0x80 - 'A'), beyondZ = low + Repeated(0x7F - 'Z');
    const Block capitals = (atLeastA ^ beyondZ) & ~block & HighBits;
    return block | capitals >> 2U;
}

bool IsAscii(std::string_view text) {
    Block all = 0;
    while (!text.empty())
        all |= Take(text);
    return (all & HighBits) == 0;
}

std::uint32_t HashFolded(std::string_view text, std::uint32_t seed) {
    constexpr Block Odd = 0x9E3779B97F4A7C15U;
    Block hash = (Block{seed} << 32U | text.size()) * Odd;
    while (!text.empty()) {
        hash = (hash ^ Lower(Take(text))) * Odd;
        hash ^= hash >> 29U;
    }
    return static_cast<std::uint32_t>(hash ^ hash >> 32U);
}

bool AreEqualInAscii(std::string_view left, std::string_view right) {
    if (left.size() != right.size()) return false;
    while (!left.empty()) {
        if (Lower(Take(left)) != Lower(Take(right))) return false;
    }
    return true;
}

}  // namespace

std::uint32_t TextRules::Hash(std::string_view text, std::uint32_t seed) const {
    return IsAscii(text) ? HashFolded(text, seed) : HashFolded(connection_.FoldText(text), seed);
}

bool TextRules::AreEqual(std::string_view left, std::string_view right) const {
    if (left == right) return true;
    if (IsAscii(left) && IsAscii(right)) return AreEqualInAscii(left, right);
    return connection_.FoldText(left) == connection_.FoldText(right);
}

bool TextRules::EndsWith(std::string_view text, std::string_view ending) const {
    if (text.ends_with(ending)) return true;
    if (IsAscii(text) && IsAscii(ending)) {
        return text.size() >= ending.size() &&
               AreEqualInAscii(text.substr(text.size() - ending.size()), ending);
    }
    return connection_.FoldText(text).ends_with(connection_.FoldText(ending));
}

}  // namespace quillon
