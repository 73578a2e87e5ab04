#include "id3/record_builder.h"

#include <cstdint>
#include <initializer_list>
#include <memory>

#include "database/sql.h"
#include "id3/difference_fields.h"
#include "id3/genre_in_file_name.h"
#include "id3/length_text.h"
#include "platform/database.h"
#include "run/fast_string.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr std::int64_t HighestTrack = 255, SecondsAMinute = 60;

/// What the database says of one song; empty where it says nothing.
struct SongFacts {
    std::string track;
    std::string seconds;
    std::string genre;
};

std::string Joined(std::initializer_list<std::string_view> parts) {
    FastString text;
    for (const std::string_view part : parts)
        text.Add(part);
    return text.value();
}

void ReadTrackRow(Run& run, const SongNames& names, SongFacts& facts) {
    const std::unique_ptr<RecordSet> found = run.connection->Query(
        Joined({"SELECT Tracks.Track, Tracks.Minutes, Tracks.Seconds ",
                "FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID ",
                "WHERE (((Albums.Artist)=", Quoted(names.artist), ") AND ((Albums.Title)=",
                Quoted(names.album), ") AND ((Tracks.Title)=", Quoted(names.song), "))"}));
    if (found->IsEmpty()) return;
    const std::int64_t track = found->Integer("Track");
    if (track > 0 && track <= HighestTrack) facts.track = std::to_string(track);
    const std::int64_t seconds =
        found->Integer("Minutes") * SecondsAMinute + found->Integer("Seconds");
    if (seconds > 0) facts.seconds = std::to_string(seconds);
}

void ReadLength(Run& run, const SongNames& names, SongFacts& facts) {
    const std::unique_ptr<RecordSet> found = run.connection->Query(
        Joined({"SELECT Length, Filename FROM ", "Spinner",
                " WHERE (((Artist)=", Quoted(names.artist), ") AND ",
                "((Album)=", Quoted(names.album), ") AND ", "((Song)=", Quoted(names.song), "))"}));
    if (found->IsEmpty()) return;
    const std::int64_t seconds = found->Integer("Length");
    if (seconds > 0) facts.seconds = std::to_string(seconds);
}

std::unique_ptr<RecordSet> DownloadRow(Run& run, std::string_view field, const SongNames& names) {
    return run.connection->Query(
        Joined({"SELECT ", field, " FROM ", "Spinner", " WHERE ((Artist)=", Quoted(names.artist),
                " AND (Album)=", Quoted(names.album), " AND (Song)=", Quoted(names.song), ")"}));
}

/// The row itself is asked, not the dictionary made of all rows, which tells names apart by letter
/// case. The link names the genre that the song was downloaded with; it counts only as long as the
/// row has none, because the row's may have been corrected since.
void ReadGenre(Run& run, const SongNames& names, SongFacts& facts) {
    const std::unique_ptr<RecordSet> row = DownloadRow(run, "Genre", names);
    if (row->IsEmpty()) return;
    facts.genre = IsNull(row->Get("Genre"))
                      ? GenreInFileName(DownloadRow(run, "Filename", names)->Text("Filename"))
                      : row->Text("Genre");
}

}  // namespace

BuiltRecord GetID3Info(Run& run, const SongNames& names,
                       const std::array<std::string, 9>& present) {
    Steps steps(run, "GetID3Info Management");
    SongFacts facts;
    steps.Try(1, [&] { ReadTrackRow(run, names, facts); });
    if (facts.seconds.empty()) steps.Try(2, [&] { ReadLength(run, names, facts); });
    steps.Try(3, [&] { ReadGenre(run, names, facts); });
    const bool lengthKnown = !facts.seconds.empty(), trackKnown = !facts.track.empty();
    const std::string comment =
        lengthKnown ? CommentWithLength(present[TagComment], facts.seconds) : present[TagComment];
    const std::string& track = trackKnown ? facts.track : present[TagTrack];
    return {.record = Joined({"TAG|", names.song, "|", names.artist, "|", names.album, "|",
                              present[TagYear], "|", comment, "||", track, "|", facts.genre}),
            .lengthKnown = lengthKnown,
            .trackKnown = trackKnown};
}

}  // namespace quillon
