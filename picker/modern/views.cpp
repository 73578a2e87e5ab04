#include "picker/modern/views.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <map>
#include <numeric>
#include <string_view>
#include <utility>

#include "picker/locations.h"
#include "picker/modern/letters.h"
#include "platform/basic_text.h"
#include "platform/date_time.h"

namespace quillon {
namespace {

constexpr std::string_view ArtistsStem = "AlbumPickerArtists", GenresStem = "AlbumPickerGenres",
                           NewStem = "AlbumPickerNew";
constexpr std::string_view NoGenre = "No genre";

/// Spreads sections over pages. A section that does not fit begins a page of its own, unless the
/// one before it would stay half empty.
class Paging {
  public:
    explicit Paging(const std::vector<Section>& sections) {
        for (std::size_t section = 0; section < sections.size(); ++section)
            Add(section, sections[section].albums.size());
    }

    std::vector<std::vector<Piece>> pages{1};

  private:
    void Add(std::size_t section, std::size_t count) {
        if (used_ + count > MostOnViewPage && used_ >= MostOnViewPage / 2) StartPage();
        for (std::size_t first = 0; first < count;) {
            if (used_ == MostOnViewPage) StartPage();
            const std::size_t part = std::min(count - first, MostOnViewPage - used_);
            pages.back().push_back({section, first, part});
            used_ += part;
            first += part;
        }
    }

    void StartPage() {
        pages.emplace_back();
        used_ = 0;
    }

    std::size_t used_ = 0;
};

PickerView Paged(PickerView view) {
    view.pages = Paging(view.sections).pages;
    return view;
}

PickerView ByArtist(const Catalogue& catalogue) {
    std::map<std::string, std::vector<std::size_t>, decltype(&LetterLess)> letters(&LetterLess);
    for (std::size_t album = 0; album < catalogue.Count(); ++album)
        letters[LetterOf(catalogue.all.albums[album].artist)].push_back(album);
    PickerView view{"Artists", "Albums by artist", std::string(ArtistsStem), {}};
    for (auto& [letter, albums] : letters)
        view.sections.push_back({letter, std::move(albums)});
    return Paged(std::move(view));
}

PickerView ByGenre(const Catalogue& catalogue) {
    std::map<std::string, Section> genres;  // by name in small letters
    Section without{std::string(NoGenre), {}};
    for (std::size_t album = 0; album < catalogue.Count(); ++album) {
        const std::string& genre = catalogue.extras[album].genre;
        if (genre.empty()) {
            without.albums.push_back(album);
            continue;
        }
        Section& section = genres.try_emplace(LowerCase(genre), Section{genre, {}}).first->second;
        section.albums.push_back(album);
    }
    PickerView view{"Genres", "Albums by genre", std::string(GenresStem), {}};
    for (auto& [key, section] : genres)
        view.sections.push_back(std::move(section));
    if (!view.sections.empty() && !without.albums.empty())
        view.sections.push_back(std::move(without));
    return Paged(std::move(view));
}

/// "November 2026".
std::string MonthOf(DateTime date) {
    constexpr std::array<std::string_view, 12> Months = {
        "January", "February", "March",     "April",   "May",      "June",
        "July",    "August",   "September", "October", "November", "December"};
    const std::string text = SortableDateTimeText(date);  // 2026-11-21 07:13:05
    const std::size_t month = static_cast<std::size_t>(std::stoi(text.substr(5, 2)));
    return std::string(Months[month - 1]) + ' ' + text.substr(0, 4);
}

PickerView Newest(const Catalogue& catalogue) {
    std::vector<std::size_t> albums;
    for (std::size_t album = 0; album < catalogue.Count(); ++album)
        if (catalogue.extras[album].added) albums.push_back(album);
    const auto dateOf = [&](std::size_t album) { return *catalogue.extras[album].added; };
    std::ranges::stable_sort(albums, std::greater<>(), dateOf);
    albums.resize(std::min(albums.size(), MostNewAlbums));
    PickerView view{"New", "New albums", std::string(NewStem), {}};
    for (const std::size_t album : albums) {
        const std::string month = MonthOf(dateOf(album));
        if (view.sections.empty() || view.sections.back().heading != month)
            view.sections.push_back({month, {}});
        view.sections.back().albums.push_back(album);
    }
    return Paged(std::move(view));
}

}  // namespace

std::string PickerView::FileName(std::size_t page) const {
    if (page == 0 && stem == ArtistsStem) return PageFileName(0);
    return stem + std::to_string(page + 1) + ".asp";
}

std::size_t PickerView::PageOfSection(std::size_t section) const {
    const auto holds = [&](const std::vector<Piece>& page) {
        return std::ranges::any_of(
            page, [&](const Piece& piece) { return piece.section == section && piece.first == 0; });
    };
    return static_cast<std::size_t>(std::ranges::find_if(pages, holds) - pages.begin());
}

std::string PickerView::SectionPlace(std::size_t section) {
    return "section" + std::to_string(section + 1);
}

std::vector<PickerView> ViewsOf(const Catalogue& catalogue) {
    std::vector<PickerView> views{ByArtist(catalogue)};
    for (PickerView& view : std::vector{ByGenre(catalogue), Newest(catalogue)})
        if (!view.sections.empty()) views.push_back(std::move(view));
    return views;
}

}  // namespace quillon
