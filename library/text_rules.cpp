#include "library/text_rules.h"

#include <cstddef>
#include <optional>
#include <string>

#include "platform/ascii.h"

namespace quillon {
namespace {

using ascii::Block;

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

/// With the one bit set in which the cases of a letter differ, as all bytes may have it.
class Hasher {
  public:
    Hasher(std::uint32_t seed, std::size_t size) : hash_((Block{seed} << 32U | size) * Odd) {}

    void Add(Block block) {
        hash_ = (hash_ ^ (block | ascii::Repeated(0x20))) * Odd;
        hash_ ^= hash_ >> 29U;
    }

    /// Texts that differ in their last characters alone, as albums' identifiers do, differ in the
    /// highest bits so far; an index looks at the lowest ones.
    std::uint32_t Result() const {
        return static_cast<std::uint32_t>((hash_ ^ hash_ >> 32U) * Odd >> 32U);
    }

  private:
    static constexpr Block Odd = 0x9E3779B97F4A7C15U;
    Block hash_;
};

/// Nothing when the text is no ASCII.
std::optional<std::uint32_t> HashOfAscii(std::string_view text, std::uint32_t seed) {
    Hasher hasher(seed, text.size());
    while (!text.empty()) {
        const Block block = ascii::TakeBlock(text);
        if ((block & ascii::HighBits) != 0) return std::nullopt;
        hasher.Add(block);
    }
    return hasher.Result();
}

std::uint32_t HashWithoutCaseBit(std::string_view text, std::uint32_t seed) {
    Hasher hasher(seed, text.size());
    while (!text.empty())
        hasher.Add(ascii::TakeBlock(text));
    return hasher.Result();
}

}  // namespace

std::uint32_t TextRules::Hash(std::string_view text, std::uint32_t seed) const {
    if (const std::optional<std::uint32_t> hash = HashOfAscii(text, seed)) return *hash;
    return DiffersInCaseBitAlone(text) ? HashWithoutCaseBit(text, seed)
                                       : HashWithoutCaseBit(connection_.FoldText(text), seed);
}

bool TextRules::AreEqual(std::string_view left, std::string_view right) const {
    if (left == right) return true;
    if (ascii::IsAscii(left) && ascii::IsAscii(right)) return ascii::EqualIgnoringCase(left, right);
    return connection_.FoldText(left) == connection_.FoldText(right);
}

bool TextRules::EndsWith(std::string_view text, std::string_view ending) const {
    if (text.ends_with(ending)) return true;
    if (ascii::IsAscii(text) && ascii::IsAscii(ending)) {
        return text.size() >= ending.size() &&
               ascii::EqualIgnoringCase(text.substr(text.size() - ending.size()), ending);
    }
    return connection_.FoldText(text).ends_with(connection_.FoldText(ending));
}

}  // namespace quillon
