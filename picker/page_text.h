#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace quillon {

/// Pieces of text that pages of both styles are made of.

/// A line of a page.
std::string Line(std::string_view text);

/// A text of the library as page text. It may run from right to left, whatever stands around it.
std::string Isolated(std::string_view text);

/// "1 track", "2 tracks".
std::string CountText(std::int64_t count, std::string_view word);

/// The place on its page where an album, counted from 0, is.
std::string AlbumPlace(std::size_t album);

/// The address of an album, counted from 0, on a page: with a place on it.
std::string AlbumUrl(std::size_t page, std::size_t album);

/// The place in the index of a page's first album, which is where the page's way back leads.
std::string PagePlace(std::size_t page);

/// A sentence about how many albums are shown, and why not the others.
std::string ShownText(std::size_t shown, std::int64_t all, int leastTracks);

}  // namespace quillon
