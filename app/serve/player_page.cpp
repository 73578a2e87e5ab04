#include "app/serve/player_page.h"

#include <array>
#include <charconv>
#include <fmt/format.h>
#include <optional>
#include <string_view>
#include <utility>

#include "app/serve/templates.h"

namespace quillon {
namespace {

/// What is asked for with an album, and the word for it.
struct AlbumAction {
    std::string_view action, start, end;
};

constexpr std::array<AlbumAction, 3> AlbumActions{
    {{"add", "Add ", " to the playlist"}, {"next", "Play ", " next"}, {"play", "Play ", " now"}}};

std::optional<std::int64_t> Number(std::string_view text) {
    std::int64_t number = 0;
    const char* const start = text.data();
    const char* const end = start + text.size();
    const auto [stop, error] = std::from_chars(start, end, number);
    if (error != std::errc() || stop != end) return std::nullopt;
    return number;
}

const std::string* TrackTitle(const AlbumNames& album, std::string_view ref) {
    const auto number = Number(ref);
    const auto track = number ? album.tracks.find(*number) : album.tracks.end();
    return track == album.tracks.end() ? nullptr : &track->second;
}

/// The music that an album's identifier and a track's number stand for.
std::string MusicText(const PlayerRequest& request, const NameTable& names) {
    const AlbumNames* const album = names.Find(request.cdjid);
    std::string albumText = album == nullptr ? fmt::format("album {}", request.cdjid)
                                             : fmt::format("{} by {}", album->title, album->artist);
    if (request.ref.empty() || Number(request.ref) == 0) return albumText;
    const std::string* const title = album == nullptr ? nullptr : TrackTitle(*album, request.ref);
    return title == nullptr ? fmt::format("track {} of {}", request.ref, albumText)
                            : fmt::format("track {}, {}, of {}", request.ref, *title, albumText);
}

/// The values that came, by the names they came under.
std::string SentValues(const PlayerRequest& request) {
    const std::array<std::pair<std::string_view, std::string_view>, 4> values{
        {{"ClientAction", request.action},
         {"CDJID", request.cdjid},
         {"ref", request.ref},
         {"filename", request.fileName}}};
    std::string sent;
    for (const auto& [name, value] : values) {
        if (!value.empty())
            sent += FillTemplate("player_value.html", {{"name", name}, {"value", value}});
    }
    return sent;
}

std::string Rows(const std::vector<PlayerRequest>& requests, const NameTable& names) {
    std::string rows;
    for (const PlayerRequest& request : requests) {
        rows += FillTemplate("player_row.html", {{"number", std::to_string(request.number)},
                                                 {"time", request.time},
                                                 {"sentence", RequestSentence(request, names)},
                                                 {"sent", SentValues(request)}});
    }
    return rows;
}

}  // namespace

bool RequestLog::Add(const QueryValues& query, const std::string& time) {
    if (!query.Has("ClientAction")) return false;
    const std::scoped_lock lock(mutex_);
    requests_.push_front({++count_, time, query.Get("ClientAction"), query.Get("CDJID"),
                          query.Get("ref"), query.Get("filename")});
    if (requests_.size() > Capacity) requests_.pop_back();
    return true;
}

std::vector<PlayerRequest> RequestLog::Requests() const {
    const std::scoped_lock lock(mutex_);
    return {requests_.begin(), requests_.end()};
}

std::string RequestSentence(const PlayerRequest& request, const NameTable& names) {
    for (const AlbumAction& known : AlbumActions) {
        if (request.action == known.action)
            return fmt::format("{}{}{}", known.start, MusicText(request, names), known.end);
    }
    if (request.action == "clear") return "Clear the playlist";
    if (request.action == "save") return fmt::format("Save the playlist as {}", request.fileName);
    return fmt::format("Not understood: {}", request.action);
}

std::string RequestsPage(const std::vector<PlayerRequest>& requests,
                         const LibraryNames::Answer& library, const std::string& indexPage) {
    const std::string list =
        requests.empty()
            ? FillTemplate("player_empty.html")
            : FillTemplate("player_list.html", {{"rows", Rows(requests, *library.names)}});
    const std::string problem =
        library.problem.empty()
            ? ""
            : FillTemplate("player_problem.html", {{"problem", library.problem}});
    return PageText(
        "Player requests",
        FillTemplate("player.html", {{"list", list}, {"problem", problem}, {"index", indexPage}}));
}

}  // namespace quillon
