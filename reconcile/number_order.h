#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace quillon {

/// The number of a file's tag; nothing where there is none.
using TagNumberOf = std::function<std::optional<std::int64_t>(std::size_t file)>;

/// Which file of one age gets which of the free numbers, of which there are at least as many:
/// result[i] is the file for numbers[i]. `before` holds the numbers that the files' rows had before
/// this run, 0 where there was none; the files come in the order of their names.
///
/// Files of one age come from a copy, which tells nothing of their order. Where each row had a
/// number of its own they keep their order, so that a run over what has not changed changes
/// nothing, and no tag is asked for. Else the tags' numbers stay where they can; where they cannot,
/// the files with one come in its order, among the places that they have by name.
std::vector<std::size_t> OrderOfOneAge(std::span<const std::int64_t> before,
                                       std::span<const std::int64_t> numbers,
                                       const TagNumberOf& tagNumberOf);

}  // namespace quillon
