#pragma once

#include <cstdint>
#include <span>

namespace jet::storage {

/// A number that tells byte strings apart: two that differ have the same one by chance alone.
std::uint64_t Fingerprint(std::span<const std::uint8_t> bytes);

}  // namespace jet::storage
