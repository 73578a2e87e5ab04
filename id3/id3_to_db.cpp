#include "id3/id3_to_db.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "database/sql.h"
#include "id3/track_of_file.h"
#include "platform/basic_text.h"
#include "platform/database.h"
#include "platform/failure.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"
#include "tags/length_text.h"
#include "tags/tag.h"

namespace quillon {
namespace {

enum class UpdateStep { Open = 1, ReadDifferences = 2, Apply = 3 };

struct Difference {
    std::string field, value, expected, artist, album, song;

    std::string Name() const { return artist + "/" + album + "/" + song; }
};

Difference ReadDifference(const RecordSet& row) {
    return {.field = row.Text("Field"),
            .value = row.Text("ID3Value"),
            .expected = row.Text("DBValue"),
            .artist = row.Text("Artist"),
            .album = row.Text("Album"),
            .song = row.Text("Track")};
}

/// The tracks that a difference may be about: owned ones, else those of discs.
std::unique_ptr<RecordSet> TracksOf(Run& run, const Difference& difference) {
    const std::string ofNames =
        "SELECT Tracks.Track, Tracks.Minutes, Tracks.Seconds "
        "FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID WHERE (((Albums.Artist)=" +
        Quoted(difference.artist) + ") AND ((Albums.Title)=" + Quoted(difference.album) +
        ") AND ((Tracks.Title)=" + Quoted(difference.song) + ")";
    std::unique_ptr<RecordSet> owned =
        run.connection->OpenUpdatable(ofNames + " AND ((Albums.Player)=1001))");
    return owned->IsEmpty() ? run.connection->OpenUpdatable(ofNames + ")") : std::move(owned);
}

/// The value of a track as a difference row has it.
std::string ExpectedValue(const RecordSet& track, const Difference& difference) {
    if (difference.field == tag_label::Track) return track.Text("Track");
    const auto length = LengthOf(track.Integer("Minutes"), track.Integer("Seconds"));
    return LengthDifference(length ? std::to_string(*length) : "");
}

/// The track that a difference is about; null, with a line in the log, when there is none, or when
/// nobody can tell which of several it is.
std::unique_ptr<RecordSet> FindTrack(Run& run, const Difference& difference) {
    std::unique_ptr<RecordSet> tracks = TracksOf(run, difference);
    std::size_t count = 0, fitting = 0, place = 0;
    for (; !tracks->IsEof(); tracks->MoveNext(), ++count) {
        if (ExpectedValue(*tracks, difference) != difference.expected) continue;
        ++fitting;
        place = count;
    }
    if (count == 0) {
        LogError(
            run, LogSource,
            "Unable to Find " + difference.artist + "/" + difference.song + " in Tracks Table");
        return nullptr;
    }
    if (count > 1 && fitting != 1) {
        LogError(run, LogSource,
                 difference.Name() + " is the name of " + std::to_string(count) +
                     " tracks; which of them is meant by " + difference.value +
                     " is not known, and none is changed");
        return nullptr;
    }
    tracks->MoveFirst();
    for (std::size_t i = 0; count > 1 && i < place; ++i)
        tracks->MoveNext();
    return tracks;
}

/// A value that cannot be taken; the failure names the song, for its row holds no path.
Failure Unusable(const Difference& difference, bool isNumber) {
    return {isNumber ? FailureNumber::Overflow : FailureNumber::TypeMismatch,
            difference.value + " (" + difference.Name() + ")"};
}

/// Changes the current row, unless it says the same already.
void Store(Run& run, RecordSet& row, std::initializer_list<std::pair<const char*, Value>> fields) {
    const bool same = std::all_of(fields.begin(), fields.end(), [&row](const auto& field) {
        return row.Get(field.first) == field.second;
    });
    if (same) return;
    for (const auto& [field, value] : fields)
        row.Set(field, value);
    row.Update();
    ++run.counts.tagValuesStored;
}

void UpdateLength(Run& run, const Difference& difference) {
    constexpr std::int64_t SecondsAMinute = 60;
    const std::string number = Replace(difference.value, LengthDifference(""), "");
    // The tag has no length.
    if (Trim(number).empty()) return;
    const std::optional<std::int16_t> seconds = LengthInDifference(difference.value);
    if (!seconds || *seconds == 0) throw Unusable(difference, IsNumeric(number));
    const auto track = FindTrack(run, difference);
    if (track == nullptr) return;
    Store(run, *track,
          {{"Minutes", *seconds / SecondsAMinute}, {"Seconds", *seconds % SecondsAMinute}});
}

void UpdateGenre(Run& run, const Difference& difference) {
    if (Trim(difference.value).empty()) return;
    const std::unique_ptr<RecordSet> row = run.connection->OpenUpdatable(
        "SELECT Genre FROM Spinner WHERE (((Artist)=" + Quoted(difference.artist) +
        ") AND ((Album)=" + Quoted(difference.album) + ") AND ((Song)=" + Quoted(difference.song) +
        "))");
    if (row->IsEmpty()) {
        LogError(run, LogSource,
                 "Unable to Find record " + difference.Name() + " in Spinner Table");
        return;
    }
    Store(run, *row, {{"Genre", difference.value}});
}

void UpdateTrackNumber(Run& run, const Difference& difference) {
    using Limits = std::numeric_limits<std::int16_t>;
    const std::optional<double> number = ToNumber(difference.value);
    if (!number || *number < 1 || *number > Limits::max())
        throw Unusable(difference, number.has_value());
    const auto track = FindTrack(run, difference);
    if (track == nullptr) return;
    Store(run, *track, {{"Track", std::int64_t{ToInteger(*number)}}});
}

/// Song, Artist and Album are names, and nothing else is known.
void Apply(Run& run, const Difference& difference) {
    if (difference.field == tag_label::Comment) {
        UpdateLength(run, difference);
    } else if (difference.field == tag_label::Genre) {
        UpdateGenre(run, difference);
    } else if (difference.field == tag_label::Track) {
        UpdateTrackNumber(run, difference);
    }
}

}  // namespace

void UpdateDatabaseFromID3(Run& run) {
    Steps steps(run, "UpdateDBfromID3");
    std::unique_ptr<RecordSet> rows;
    const bool opened = steps.Try(UpdateStep::Open, [&] {
        rows = run.connection->Query("SELECT * FROM SpinnerID3Differences ORDER BY Artist");
        run.StartCountingRows("SpinnerID3Differences");
    });
    if (!opened) return;
    steps.Try(UpdateStep::ReadDifferences, [&] {
        for (; !rows->IsEof(); rows->MoveNext()) {
            const Difference difference = ReadDifference(*rows);
            run.ShowItem("1. Update Database with ID3 for Artist" + difference.artist);
            if (run.AbortRequested) return;
            steps.Concerning(difference.Name());
            steps.Try(UpdateStep::Apply, [&] { Apply(run, difference); });
            run.CountDone();
        }
    });
}

}  // namespace quillon
