#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quillon {

/// The number that a file's name begins with, of one to three digits that no letter and no digit
/// follows: 7 of "07 - Song.mp3", "7. Song.mp3" and "07_Song.mp3"; nothing of "1999.mp3".
std::optional<std::int64_t> LeadingNumber(std::string_view fileName);

/// What a file lies on: the disc of its folder, 0 for a file that lies in none; among those the
/// disc that its tag names.
struct Disc {
    int folder = 0;
    std::int64_t tag = 1;

    auto operator<=>(const Disc&) const = default;
};

/// A file of an album, and the number that it asks for.
struct WishedNumber {
    std::optional<std::int64_t> number;  ///< above 0
    std::string_view path;
    Disc disc = {};
    std::size_t file = 0;  ///< which of the album's
};

/// Disc by disc, by the numbers that they ask for, then by name; files that ask for none come last.
/// Times decide nothing, so that a copy of an album has the order of the original.
bool ComesBefore(const WishedNumber& left, const WishedNumber& right);

/// What is odd about the numbers of files in that order: "2 is there twice, 3 is missing"; "" where
/// nothing is. Only the first few are named. Each disc's numbers begin with 1.
std::string OddNumbers(std::span<const WishedNumber> wishes);

}  // namespace quillon
