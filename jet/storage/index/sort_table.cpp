#include "jet/storage/index/sort_table.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

namespace jet::storage {

namespace {

/// `count` units from `first` on, whose values start at `value` and grow by `step`.
struct SortRun {
    std::uint16_t first;
    std::uint16_t count;
    std::uint32_t value;
    std::int16_t step = 0;
};

#include "jet/storage/index/sort_keys.inc"

constexpr std::size_t UnitCount = 65536;

std::uint8_t ByteCount(std::uint32_t value) {
    std::uint8_t count = 0;
    for (; value != 0; value >>= 8)
        ++count;
    return count;
}

/// Steps of a two-byte value go through the low bytes 02 to FF: in a key the lower two mean other
/// things. (Surrogates, which no text of the time had, use them nevertheless.)
std::uint32_t Advance(std::uint32_t value, int steps) {
    constexpr int LowBytes = 254;
    if (ByteCount(value) != 2 || (value & 0xFF) < 2)
        return static_cast<std::uint32_t>(static_cast<int>(value) + steps);
    const int index = static_cast<int>(value >> 8) * LowBytes + static_cast<int>(value & 0xFF) - 2;
    const int moved = index + steps;
    return static_cast<std::uint32_t>((moved / LowBytes << 8) + moved % LowBytes + 2);
}

template <typename Set>
void ForEachUnit(std::span<const SortRun> runs, Set set) {
    for (const SortRun& run : runs)
        for (int i = 0; i < run.count; ++i)
            set(std::size_t{run.first} + static_cast<std::size_t>(i), run, i);
}

/// Letters have one byte or two; which it is can be told from the first byte.
class LetterCounter {
  public:
    LetterCounter() {
        ForEachUnit(LetterRuns, [this](std::size_t, const SortRun& run, int i) {
            const std::uint32_t value = Advance(run.value, i * run.step);
            if (value <= 0xFF) standsAlone_[value] = true;
        });
    }

    std::uint8_t Count(std::uint32_t letterBytes, int size) const {
        std::uint8_t letters = 0;
        for (int shift = 8 * (size - 1); shift >= 0; ++letters)
            shift -= standsAlone_[(letterBytes >> shift) & 0xFF] ? 8 : 16;
        return letters;
    }

  private:
    std::array<bool, 256> standsAlone_{};
};

}  // namespace

SortTable::SortTable() : units_(UnitCount) {
    const LetterCounter counter;
    ForEachUnit(LetterRuns, [&](std::size_t unit, const SortRun& run, int i) {
        SortUnit& entry = units_[unit];
        entry.letterBytes = Advance(run.value, i * run.step);
        entry.letterSize = ByteCount(entry.letterBytes);
        entry.letters = counter.Count(entry.letterBytes, entry.letterSize);
    });
    ForEachUnit(AccentRuns, [&](std::size_t unit, const SortRun& run, int i) {
        const std::uint32_t value = run.value + static_cast<std::uint32_t>(i * run.step);
        units_[unit].accentBytes = static_cast<std::uint16_t>(value);
        units_[unit].accentSize = ByteCount(value);
    });
    const auto fill = [this](std::span<const SortRun> runs, std::uint8_t SortUnit::* member) {
        ForEachUnit(runs, [&](std::size_t unit, const SortRun& run, int i) {
            units_[unit].*member =
                static_cast<std::uint8_t>(static_cast<int>(run.value) + i * run.step);
        });
    };
    fill(ModifierRuns, &SortUnit::modifier);
    fill(UnprintableRuns, &SortUnit::unprintable);
    fill(KanaRuns, &SortUnit::kana);
    for (std::size_t unit = 0; unit < 0x80; ++unit)
        if (units_[unit].letterSize == 1 && units_[unit].IsPlain())
            simpleLetters_[unit] = static_cast<std::uint8_t>(units_[unit].letterBytes);
}

const SortTable& SortTable::Get() {
    static const SortTable table;
    return table;
}

}  // namespace jet::storage
