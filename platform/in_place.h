#pragma once

#include <cstddef>

namespace quillon {

/// The largest piece, in bytes, that Files::ReplaceBytes writes over another one of its size.
/// Larger ones come with a copy of the file, as those of another size do.
constexpr std::size_t MostInPlace = std::size_t{64} * 1024;

}  // namespace quillon
