#pragma once

#include <span>
#include <string>
#include <string_view>

namespace quillon {

/// What becomes of a text that a name cannot have: something else or, with an empty `to`, nothing.
struct Replacement {
    std::string_view from;
    std::string_view to;
};

/// The text after all replacements, one rule after the other.
std::string Cleaned(std::string_view text, std::span<const Replacement> rules);

/// A text made fit to be (part of) a file name: characters that file names cannot hold, or that
/// the host's web pages trip over, are removed or replaced. Letter case, blanks and length stay;
/// the result may be empty.
std::string NoNasties(std::string_view text);

/// The same for a playlist's file name: no apostrophes, blanks, "|" and "+" either, and "&" spelt
/// out. "Rock & Roll" becomes "RockAndRoll".
std::string NoPlaylistNasties(std::string_view text);

}  // namespace quillon
