#include "picker/albums.h"

#include <unordered_map>
#include <utility>
#include <variant>

#include "platform/basic_text.h"
#include "platform/database.h"
#include "platform/failure.h"
#include "run/connection_value.h"
#include "run/run.h"

namespace quillon {
namespace {

// Fields of the query. Two of them are called Title, so they go by their place.
enum Field : std::size_t {
    AlbumId,
    AlbumTitle,
    AlbumArtist,
    AlbumImage,
    AlbumTracks,
    AlbumMinutes,
    AlbumSeconds,
    TrackNumber,
    TrackTitle,
    TrackMinutes,
    TrackSeconds,
    TrackArtist,  ///< only where tracks have artists of their own
};

/// What stands for a number that the database does not know.
constexpr std::string_view Unknown = "x";

std::string QueryText(std::int16_t leastTracks, bool withArtists) {
    return "Select albums.cdjid,albums.title,albums.artist,albums.imagefile,albums.tracks,"
           "albums.minutes,albums.seconds,tracks.track,tracks.title,tracks.minutes,tracks.seconds" +
           std::string(withArtists ? ",tracks.artist" : "") +
           " From Albums INNER JOIN Tracks on Albums.cdjid=Tracks.cdjid WHERE Albums.Tracks >=" +
           std::to_string(leastTracks) + " order by Albums.artist,Albums.title,tracks.track";
}

std::string TextOf(const Value& value) {
    const std::string* const text = std::get_if<std::string>(&value);
    return text == nullptr ? std::string() : *text;
}

/// A whole number; Null and -1, which both stand for what is not known, and whatever else makes no
/// sense as a count, are none.
std::optional<std::int64_t> CountOf(const Value& value) {
    const std::int64_t* const number = std::get_if<std::int64_t>(&value);
    if (number == nullptr || *number < 0) return std::nullopt;
    return *number;
}

Length LengthOf(const Value& minutes, const Value& seconds) {
    constexpr std::int64_t SecondsAMinute = 60;
    const auto wholeMinutes = CountOf(minutes), rest = CountOf(seconds);
    if (!wholeMinutes && !rest) return std::nullopt;
    return wholeMinutes.value_or(0) * SecondsAMinute + rest.value_or(0);
}

PickerAlbum AlbumIn(const RecordSet& rows) {
    PickerAlbum album;
    album.cdjid = TextOf(rows.Get(AlbumId));
    album.title = TextOf(rows.Get(AlbumTitle));
    album.artist = TextOf(rows.Get(AlbumArtist));
    album.imageFile = TextOf(rows.Get(AlbumImage));
    album.trackCount = CountOf(rows.Get(AlbumTracks)).value_or(0);
    album.length = LengthOf(rows.Get(AlbumMinutes), rows.Get(AlbumSeconds));
    return album;
}

PickerTrack TrackIn(const RecordSet& rows) {
    const auto number = CountOf(rows.Get(TrackNumber));
    PickerTrack track{.number = number.value_or(0),
                      .title = TextOf(rows.Get(TrackTitle)),
                      .length = LengthOf(rows.Get(TrackMinutes), rows.Get(TrackSeconds))};
    if (track.title.empty()) {
        track.title = "Track " + (number ? std::to_string(*number) : std::string(Unknown));
    }
    return track;
}

Length SumOf(const std::vector<PickerTrack>& tracks) {
    std::int64_t sum = 0;
    for (const PickerTrack& track : tracks) {
        if (!track.length) return std::nullopt;
        sum += *track.length;
    }
    return sum;
}

/// Tells albums apart that a row belongs to. An identifier alone would do, were it not for
/// duplicates that no reconciliation has removed yet.
std::string KeyOf(const RecordSet& rows) {
    constexpr char Between = '\0';
    return TextOf(rows.Get(AlbumId)) + Between + TextOf(rows.Get(AlbumArtist)) + Between +
           TextOf(rows.Get(AlbumTitle));
}

std::int64_t CountAlbums(Connection& connection) {
    const std::unique_ptr<RecordSet> rows = connection.Query("Select count(*) from albums");
    return rows->IsEmpty() ? 0 : CountOf(rows->Get(std::size_t{0})).value_or(0);
}

}  // namespace

std::string LengthText(Length length) {
    if (!length) return std::string(Unknown);
    constexpr std::int64_t SecondsAMinute = 60;
    const std::string seconds = std::to_string(*length % SecondsAMinute);
    return std::to_string(*length / SecondsAMinute) + ':' + std::string(Right("00" + seconds, 2));
}

std::string PickerConnectionString(std::string_view database) {
    return "Provider=Microsoft.Jet.OLEDB.4.0;Persist Security Info=False;Data Source=" +
           QuotedConnectionValue(database, '\'');
}

std::unique_ptr<Connection> OpenPickerConnection(Run& run) {
    if (run.databases == nullptr) throw Failure(FailureNumber::ObjectRequired, "databases");
    return run.databases->Open(PickerConnectionString(run.settings.Nirvis_CDJ_DB));
}

PickerAlbums ReadPickerAlbums(Run& run, Connection& connection) {
    PickerAlbums result;
    result.inLibrary = CountAlbums(connection);
    std::unordered_map<std::string, std::size_t> places;
    const bool withArtists = run.modern.keepsTrackArtists;
    const std::unique_ptr<RecordSet> rows =
        connection.Query(QueryText(run.settings.PickerMinimum, withArtists));
    for (; !rows->IsEof(); rows->MoveNext()) {
        const auto [place, isNew] = places.try_emplace(KeyOf(*rows), result.albums.size());
        if (isNew) {
            run.ProcessEvents();
            if (run.AbortRequested) break;
            result.albums.push_back(AlbumIn(*rows));
        }
        PickerAlbum& album = result.albums[place->second];
        album.tracks.push_back(TrackIn(*rows));
        if (!withArtists) continue;
        std::string artist = TextOf(rows->Get(TrackArtist));
        if (!EqualIgnoringCase(artist, album.artist))
            album.tracks.back().artist = std::move(artist);
    }
    for (PickerAlbum& album : result.albums) {
        // Albums of the library's own carry no length, their tracks do.
        if (!album.length) album.length = SumOf(album.tracks);
    }
    return result;
}

}  // namespace quillon
