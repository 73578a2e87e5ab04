#include "run/random_numbers.h"

#include <bit>

#include "run/split_mix.h"

namespace quillon {

void RandomNumbers::Seed(DateTime time, std::uint32_t nanoseconds) {
    constexpr std::uint64_t Spread = 0xD1B54A32D192ED03U;
    state_ = std::bit_cast<std::uint64_t>(time.days) + nanoseconds * Spread;
}

double RandomNumbers::Next() {
    // Neighbouring seeds give unrelated sequences.
    state_ += SplitMixStep;
    constexpr int Unused = 64 - 53;  // a double holds 53 bits
    return static_cast<double>(SplitMixed(state_) >> Unused) * 0x1p-53;
}

}  // namespace quillon
