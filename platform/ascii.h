#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

/// Plain ASCII, which nearly all texts are made of, eight bytes at once.
namespace quillon::ascii {

using Block = std::uint64_t;
constexpr std::size_t BlockSize = sizeof(Block);

constexpr Block Repeated(unsigned char byte) {
    return Block{byte} * 0x0101010101010101U;
}

/// Set in the bytes that are no ASCII.
constexpr Block HighBits = Repeated(0x80);

/// Eight bytes of a text, which has so many.
inline Block BlockAt(std::string_view text, std::size_t at) {
    // The first byte of a text is the lowest one of its block.
    static_assert(std::endian::native == std::endian::little);
    Block block = 0;
    std::memcpy(&block, &text[at], BlockSize);
    return block;
}

/// All of a text that is shorter than a block, with zeros behind its end. Pieces that overlap take
/// the place of a call, which would cost more than the bytes.
inline Block ShortBlock(std::string_view text) {
    const std::size_t size = text.size();
    constexpr std::size_t HalfSize = BlockSize / 2;
    if (size >= HalfSize) {
        std::uint32_t first = 0, last = 0;
        std::memcpy(&first, text.data(), HalfSize);
        std::memcpy(&last, text.data() + size - HalfSize, HalfSize);
        return first | Block{last} << 8 * (size - HalfSize);
    }
    if (size == 0) return 0;
    const auto byteAt = [text](std::size_t at) {
        return Block{static_cast<unsigned char>(text[at])} << 8 * at;
    };
    return byteAt(0) | byteAt(size / 2) | byteAt(size - 1);
}

/// The next bytes of a text, which they leave, with zeros behind its end.
inline Block TakeBlock(std::string_view& text) {
    if (text.size() < BlockSize) return ShortBlock(std::exchange(text, {}));
    const Block block = BlockAt(text, 0);
    text.remove_prefix(BlockSize);
    return block;
}

/// Set in the bytes that are letters of this case; bytes that are no ASCII are none.
constexpr Block LettersFrom(Block block, char first, char last) {
    const Block low = block & ~HighBits;
    const Block atLeastFirst = low + Repeated(static_cast<unsigned char>(0x80 - first));
    const Block beyondLast = low + Repeated(static_cast<unsigned char>(0x7F - last));
    return (atLeastFirst ^ beyondLast) & ~block & HighBits;
}

/// Capitals made small, or small letters made capitals; other bytes stay.
constexpr Block Lower(Block block) {
    return block | LettersFrom(block, 'A', 'Z') >> 2U;
}
constexpr Block Upper(Block block) {
    return block & ~(LettersFrom(block, 'a', 'z') >> 2U);
}

/// Below, at or above zero as the left bytes come before, with or behind the right ones.
constexpr int CompareBlocks(Block left, Block right) {
    if (left == right) return 0;
    // The first byte that differs is the lowest one.
    const int differing = std::countr_zero(left ^ right) / 8 * 8;
    return (left >> differing & 0xFFU) < (right >> differing & 0xFFU) ? -1 : 1;
}

constexpr char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}
constexpr char Upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}

constexpr bool IsAscii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

/// How many bytes stand before the first that is no ASCII.
inline std::size_t PrefixLength(std::string_view text) {
    std::size_t at = 0;
    while (at + BlockSize <= text.size() && (BlockAt(text, at) & HighBits) == 0)
        at += BlockSize;
    while (at < text.size() && IsAscii(text[at]))
        ++at;
    return at;
}

inline bool IsAscii(std::string_view text) {
    return PrefixLength(text) == text.size();
}

/// Whether short texts are the same, bytes of any kind; sooner known here than by a call.
inline bool AreSame(std::string_view left, std::string_view right) {
    if (left.size() != right.size()) return false;
    if (left.size() < BlockSize) return ShortBlock(left) == ShortBlock(right);
    for (std::size_t at = 0; at + BlockSize <= left.size(); at += BlockSize)
        if (BlockAt(left, at) != BlockAt(right, at)) return false;
    // The last ones are looked at together with some that have been.
    const std::size_t last = left.size() - BlockSize;
    return BlockAt(left, last) == BlockAt(right, last);
}

/// Whether two ASCII texts are equal but for letter case.
inline bool EqualIgnoringCase(std::string_view left, std::string_view right) {
    if (left.size() != right.size()) return false;
    while (!left.empty()) {
        if (Lower(TakeBlock(left)) != Lower(TakeBlock(right))) return false;
    }
    return true;
}

}  // namespace quillon::ascii
