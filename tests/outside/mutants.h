#pragma once

#include <cstdint>
#include <string>

namespace outside {

/// A database file with a changed byte.
struct Mutant {
    std::string bytes;
    std::string where;  ///< for messages
};

/// The file with one byte changed where its structure is: headers of pages, words that say where
/// rows lie, definitions, pages of indexes, usage maps. Contents of rows stay as they are. The same
/// seed makes the same one.
Mutant MutantOf(const std::string& database, std::uint32_t seed);

/// How many mutants a test tries: `usual`, a third of them under the sanitizers, or
/// $QUILLON_MUTANTS.
std::uint32_t MutantCount(std::uint32_t usual);

}  // namespace outside
