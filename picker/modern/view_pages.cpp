#include "picker/modern/view_pages.h"

#include <algorithm>
#include <string_view>

#include "picker/html.h"
#include "picker/locations.h"
#include "picker/page_text.h"

namespace quillon {
namespace {

/// Covers that are seen without scrolling are not loaded late.
constexpr std::size_t SeenAtOnce = 12;

/// The headings from the first to the last of a page: "C – F".
std::string RangeOf(const PickerView& view, std::size_t page) {
    const std::vector<Piece>& pieces = view.pages[page];
    if (pieces.empty()) return "";
    const std::string& first = view.sections[pieces.front().section].heading;
    const std::string& last = view.sections[pieces.back().section].heading;
    if (first == last) return Isolated(first);
    return Isolated(first) + " &#8211; " + Isolated(last);
}

bool IsIndex(const PickerView& view, std::size_t page) {
    return view.FileName(page) == PageFileName(0);
}

std::string StepLink(const PickerView& view, std::size_t page, std::string_view caption) {
    return "<a class='picker-button' href='" + view.FileName(page) + "'>" + std::string(caption) +
           " <span>" + RangeOf(view, page) + "</span></a>";
}

}  // namespace

ViewPages::ViewPages(const PageFrame& frame, const Catalogue& catalogue, const PickerLayout& layout,
                     int leastTracks)
    : frame_(frame), catalogue_(catalogue), layout_(layout), leastTracks_(leastTracks) {}

std::string ViewPages::Page(const PickerView& view, std::size_t page) const {
    const bool isIndex = IsIndex(view, page);
    std::string text =
        frame_.Begin(isIndex ? "Album Picker Index Page" : "Album Picker: " + view.title, &view);
    text += Line("<h1>" + view.title + "</h1>");
    if (view.pages.size() > 1) {
        text += Line("<p class='picker-range'>" + RangeOf(view, page) + "</p>");
    }
    if (isIndex) {
        text +=
            Line("<p class='picker-count'>" +
                 ShownText(catalogue_.Count(), catalogue_.all.inLibrary, leastTracks_) + "</p>");
    }
    text += Headings(view, page);
    text += Line("<div class='picker-sections'>");
    for (const Piece& piece : view.pages[page])
        text += Albums(view, piece);
    return text + Line("</div>") + Steps(view, page) + frame_.End();
}

/// The bar that leads to all headings of the view, on whatever page they are.
std::string ViewPages::Headings(const PickerView& view, std::size_t page) const {
    if (view.sections.size() < 2) return "";
    std::string bar = "<nav class='picker-bar' aria-label='Headings'>";
    for (std::size_t section = 0; section < view.sections.size(); ++section) {
        const std::size_t target = view.PageOfSection(section);
        bar += "<a href='" + (target == page ? "" : view.FileName(target)) + '#' +
               PickerView::SectionPlace(section) + "'>" + Isolated(view.sections[section].heading) +
               "</a>";
    }
    return bar + Line("</nav>");
}

std::string ViewPages::Albums(const PickerView& view, const Piece& piece) const {
    const Section& section = view.sections[piece.section];
    const std::string place = PickerView::SectionPlace(piece.section);
    std::string text = "<section aria-labelledby='" + place +
                       "' style='--count:" + std::to_string(piece.count) + "'><h2 id='" + place +
                       "'>" + Isolated(section.heading);
    if (piece.first != 0) text += " <span class='picker-more'>continued</span>";
    text += Line("</h2>");
    text += Line("<ul class='picker-grid'>");
    for (std::size_t i = 0; i < piece.count; ++i)
        text += Card(view, section.albums[piece.first + i], i >= SeenAtOnce || piece.section > 0);
    return text + Line("</ul></section>");
}

std::string ViewPages::Card(const PickerView& view, std::size_t number, bool lazy) const {
    const PickerAlbum& album = catalogue_.all.albums[number];
    const std::size_t page = layout_.PageOf(number);
    std::string card = "<li";
    if (number % layout_.PerPage() == 0 && view.FileName(0) == PageFileName(0))
        card += " id='" + PagePlace(page) + '\'';
    card += "><a href='" + AlbumUrl(page, number) + "'>" +
            frame_.Cover(album, catalogue_.extras[number], lazy);
    return card + Line("<b>" + Isolated(album.title) + "</b><span>" + Isolated(album.artist) +
                       "</span></a></li>");
}

/// The ways to the pages before and behind.
std::string ViewPages::Steps(const PickerView& view, std::size_t page) const {
    if (view.pages.size() < 2) return "";
    std::string steps = "<nav class='picker-steps' aria-label='Pages'>";
    if (page > 0) steps += StepLink(view, page - 1, "Previous");
    if (page + 1 < view.pages.size()) steps += StepLink(view, page + 1, "Next");
    return steps + Line("</nav>");
}

}  // namespace quillon
