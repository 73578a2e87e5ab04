#include "jet/storage/format/fingerprint.h"

#include <array>
#include <cstddef>
#include <cstring>

#include "jet/storage/format/page.h"

namespace jet::storage {

namespace {

constexpr std::uint64_t Multiplier = 0x9FB21C651E98DF25, Start = 0xCBF29CE484222325;
constexpr std::size_t WordSize = sizeof(std::uint64_t), Lanes = 4;

std::uint64_t Mixed(std::uint64_t state, std::uint64_t word) {
    state = (state ^ word) * Multiplier;
    return state ^ state >> 32;
}

}  // namespace

std::uint64_t Fingerprint(std::span<const std::uint8_t> bytes) {
    std::uint64_t state = Mixed(Start, bytes.size());
    std::size_t at = 0;
    // Long strings in lanes that do not wait for each other.
    if (bytes.size() >= Lanes * WordSize) {
        std::array<std::uint64_t, Lanes> lanes{1, 2, 3, 4};
        for (; bytes.size() - at >= Lanes * WordSize; at += Lanes * WordSize)
            for (std::size_t lane = 0; lane < Lanes; ++lane)
                lanes[lane] = Mixed(lanes[lane], Load<std::uint64_t>(bytes, at + lane * WordSize));
        for (const std::uint64_t lane : lanes)
            state = Mixed(state, lane);
    }
    for (; bytes.size() - at >= WordSize; at += WordSize)
        state = Mixed(state, Load<std::uint64_t>(bytes, at));
    std::uint64_t rest = 0;
    if (at < bytes.size()) std::memcpy(&rest, bytes.data() + at, bytes.size() - at);
    return Mixed(Mixed(state, rest), Multiplier);
}

}  // namespace jet::storage
