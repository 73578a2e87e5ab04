#include "run/random_numbers.h"

#include <bit>

namespace quillon {

void RandomNumbers::Seed(DateTime time, std::uint32_t nanoseconds) {
    constexpr std::uint64_t Spread = 0xD1B54A32D192ED03U;
    state_ = std::bit_cast<std::uint64_t>(time.days) + nanoseconds * Spread;
}

double RandomNumbers::Next() {
    // SplitMix64: neighbouring seeds give unrelated sequences.
    state_ += 0x9E3779B97F4A7C15U;
    std::uint64_t value = state_;
    value = (value ^ (value >> 30U)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27U)) * 0x94D049BB133111EBU;
    value ^= value >> 31U;
    constexpr int Unused = 64 - 53;  // a double holds 53 bits
    return static_cast<double>(value >> Unused) * 0x1p-53;
}

}  // namespace quillon
