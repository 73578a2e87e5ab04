#pragma once

#include <cstdint>

namespace quillon {

/// SplitMix64: a state that grows by this step, mixed each time, gives unrelated numbers.
constexpr std::uint64_t SplitMixStep = 0x9E3779B97F4A7C15U;

/// A number in which every bit depends on all bits of the value.
constexpr std::uint64_t SplitMixed(std::uint64_t value) {
    value = (value ^ (value >> 30U)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27U)) * 0x94D049BB133111EBU;
    return value ^ (value >> 31U);
}

}  // namespace quillon
