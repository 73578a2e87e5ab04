#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace jet::storage {

/// What one UTF-16 unit contributes to the index key of a text. Bytes are kept as big-endian
/// numbers together with how many there are.
struct SortUnit {
    std::uint32_t letterBytes = 0;  ///< first section of the key: case and accents removed
    std::uint16_t accentBytes = 0;  ///< second section
    std::uint8_t letterSize = 0;    ///< bytes of letterBytes, 0 to 4
    std::uint8_t letters = 0;       ///< how many letters these are: 2 for a ligature such as U+00E6
    std::uint8_t accentSize = 0;    ///< bytes of accentBytes, 0 to 2
    std::uint8_t modifier = 0;      ///< combining mark: added to the accent of the letter before
    std::uint8_t unprintable = 0;   ///< control character, apostrophe, hyphen: last section
    std::uint8_t kana = 0;          ///< 2 or 3 where kana that are equal as letters differ

    /// Whether it has letters and nothing else, so that two texts of such units are ordered by
    /// their first section alone.
    bool IsPlain() const {
        return accentSize == 0 && modifier == 0 && unprintable == 0 && kana == 0;
    }
};

/// The General Legacy sort order (language 1033, version 0) of all 65536 UTF-16 units.
class SortTable {
  public:
    /// The one table; unpacked at the first call.
    static const SortTable& Get();

    const SortUnit& operator[](char16_t unit) const { return units_[unit]; }

    /// The letter of a byte of UTF-8, for the ASCII characters that are a letter of one byte and
    /// nothing else; 0 for all others.
    std::uint8_t SimpleLetter(char byte) const {
        return simpleLetters_[static_cast<unsigned char>(byte)];
    }

  private:
    SortTable();

    std::vector<SortUnit> units_;
    std::array<std::uint8_t, 256> simpleLetters_{};
};

}  // namespace jet::storage
