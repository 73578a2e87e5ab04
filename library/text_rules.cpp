#include "library/text_rules.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>

namespace quillon {
namespace {

/// Eight bytes at once.
using Block = std::uint64_t;
constexpr std::size_t BlockSize = sizeof(Block);

constexpr Block Repeated(unsigned char byte) {
    return Block{byte} * 0x0101010101010101U;
}

constexpr Block HighBits = Repeated(0x80);

/// The next bytes of a text, with zeros behind its end.
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

/// Whether letters of the two cases differ in this one bit of a byte alone, as in ASCII and in the
/// letters of Western Europe, or there are none, as in the scripts of East Asia. A character that
/// is several without case is none of these.
bool DiffersInCaseBitAlone(std::string_view text) {
    constexpr unsigned char Western = 0xC3, SharpS = 0x9F;
    for (std::size_t at = 0; at < text.size();) {
        const auto first = static_cast<unsigned char>(text[at]);
        const bool isEastern = (first >= 0xE3 && first <= 0xE9) || (first >= 0xEB && first <= 0xED);
        if (first < 0x80) {
            ++at;
        } else if (first == Western && at + 1 < text.size() &&
                   static_cast<unsigned char>(text[at + 1]) != SharpS) {
            at += 2;
        } else if (isEastern && at + 2 < text.size()) {
            at += 3;
        } else {
            return false;
        }
    }
    return true;
}

std::uint32_t HashWithoutCaseBit(std::string_view text, std::uint32_t seed) {
    constexpr Block Odd = 0x9E3779B97F4A7C15U, CaseBits = Repeated(0x20);
    Block hash = (Block{seed} << 32U | text.size()) * Odd;
    while (!text.empty()) {
        hash = (hash ^ (Take(text) | CaseBits)) * Odd;
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
    return DiffersInCaseBitAlone(text) ? HashWithoutCaseBit(text, seed)
                                       : HashWithoutCaseBit(connection_.FoldText(text), seed);
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
