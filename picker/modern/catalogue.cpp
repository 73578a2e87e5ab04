#include "picker/modern/catalogue.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <variant>

#include "platform/basic_text.h"
#include "platform/database.h"

namespace quillon {
namespace {

std::string TextIn(const Value& value) {
    const std::string* const text = std::get_if<std::string>(&value);
    return text == nullptr ? std::string() : *text;
}

/// Letter case does not count for the database.
std::string KeyOfNames(std::string_view artist, std::string_view title) {
    constexpr char Between = '\0';
    return LowerCase(artist) + Between + LowerCase(title);
}

/// Whether a text of the download table names a genre. Where its rows have been made of stream
/// links, it may be a piece of a link that is only a number, and "other" says that nobody knows.
bool NamesGenre(std::string_view text) {
    return text.find_first_not_of("0123456789") != std::string_view::npos &&
           !EqualIgnoringCase(text, "other");
}

/// The genres of one album's songs.
class GenreVotes {
  public:
    void Add(const std::string& genre) { ++votes_[genre]; }

    /// The most frequent one, of equals the first in the alphabet.
    std::string Winner() const {
        const auto most = std::ranges::max_element(
            votes_, {}, [](const auto& genreAndVotes) { return genreAndVotes.second; });
        return most == votes_.end() ? std::string() : most->first;
    }

  private:
    std::map<std::string, int> votes_;
};

void AddGenres(Catalogue& catalogue, Connection& connection) {
    std::unordered_map<std::string, GenreVotes> genres;
    for (const PickerAlbum& album : catalogue.all.albums)
        genres[KeyOfNames(album.artist, album.title)];
    constexpr std::array<std::string_view, 3> Fields = {"Artist", "Album", "Genre"};
    connection.Scan("Spinner", Fields, [&](RowKey, std::span<const Value> values) {
        const std::string genre(Trim(TextIn(values[2])));
        if (!NamesGenre(genre)) return;
        const auto found = genres.find(KeyOfNames(TextIn(values[0]), TextIn(values[1])));
        if (found != genres.end()) found->second.Add(genre);
    });
    for (std::size_t i = 0; i < catalogue.Count(); ++i) {
        const PickerAlbum& album = catalogue.all.albums[i];
        catalogue.extras[i].genre = genres[KeyOfNames(album.artist, album.title)].Winner();
    }
}

void AddDates(Catalogue& catalogue, Connection& connection) {
    std::unordered_map<std::string, DateTime> dates;
    constexpr std::array<std::string_view, 2> Fields = {"CDJID", "DateAdded"};
    connection.Scan("Albums", Fields, [&](RowKey, std::span<const Value> values) {
        const DateTime* const date = std::get_if<DateTime>(&values[1]);
        if (date != nullptr && *date > DateTime{}) dates.emplace(TextIn(values[0]), *date);
    });
    for (std::size_t i = 0; i < catalogue.Count(); ++i) {
        const auto found = dates.find(catalogue.all.albums[i].cdjid);
        if (found != dates.end()) catalogue.extras[i].added = found->second;
    }
}

}  // namespace

Catalogue MakeCatalogue(PickerAlbums albums, Connection& connection) {
    Catalogue catalogue{.all = std::move(albums), .extras = {}};
    catalogue.extras.resize(catalogue.Count());
    AddGenres(catalogue, connection);
    AddDates(catalogue, connection);
    return catalogue;
}

}  // namespace quillon
