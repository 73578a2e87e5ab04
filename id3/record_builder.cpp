#include "id3/record_builder.h"

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>

#include "database/sql.h"
#include "id3/difference_fields.h"
#include "id3/genre_in_file_name.h"
#include "id3/length_text.h"
#include "id3/sound_file_row.h"
#include "id3/tag_agreement.h"
#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/database.h"
#include "run/fast_string.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr std::int64_t HighestTrack = 255;

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

/// A row of these names, of an album that meets the condition.
std::optional<SoundFileRow> RowOfNames(Run& run, const SongNames& names,
                                       std::string_view condition) {
    const std::unique_ptr<RecordSet> found = run.connection->Query(Joined(
        {"SELECT Tracks.Track, Tracks.Minutes, Tracks.Seconds ",
         "FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID ",
         "WHERE (((Albums.Artist)=", Quoted(names.artist), ") AND ((Albums.Title)=",
         Quoted(names.album), ") AND ((Tracks.Title)=", Quoted(names.song), ")", condition, ")"}));
    if (found->IsEmpty()) return std::nullopt;
    SoundFileRow row;
    row.track = found->Integer("Track");
    row.minutes = found->Integer("Minutes");
    row.seconds = found->Integer("Seconds");
    return row;
}

void ReadTrackRow(Run& run, std::string_view path, const SongNames& names, SongFacts& facts) {
    std::optional<SoundFileRow> row = FindSoundFileRow(*run.connection, path);
    if (!row) row = RowOfNames(run, names, " AND ((Albums.Player)=1001)");
    if (!row) row = RowOfNames(run, names, "");
    if (!row) return;
    if (row->track > 0 && row->track <= HighestTrack) facts.track = std::to_string(row->track);
    if (const auto length = row->Length()) facts.seconds = std::to_string(*length);
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

/// The tag's text where it says more than the name can, else the name.
std::string TextFor(std::size_t piece, const std::string& present, const std::string& name) {
    const std::string_view value = Trim(present);
    // A "|" would shift what is behind it.
    if (value.empty() || value.find('|') != std::string_view::npos) return name;
    const bool saysMore = HoldsMoreThanNames(value) || !Utf8ToAnsiExactly(name);
    if (saysMore && TagAgreesWithName(value, name)) return present;
    const bool isInner =
        piece == TagSong && TagAgreesWithTitle(value, name) && !TagAgreesWithName(value, name);
    return isInner ? present : name;
}

}  // namespace

BuiltRecord GetID3Info(Run& run, std::string_view path, const SongNames& names,
                       const std::array<std::string, 9>& present) {
    Steps steps(run, "GetID3Info Management");
    steps.Concerning(std::string(path));
    SongFacts facts;
    steps.Try(1, [&] { ReadTrackRow(run, path, names, facts); });
    if (facts.seconds.empty()) steps.Try(2, [&] { ReadLength(run, names, facts); });
    steps.Try(3, [&] { ReadGenre(run, names, facts); });
    const bool lengthKnown = !facts.seconds.empty(), trackKnown = !facts.track.empty();
    const std::string comment =
        lengthKnown ? CommentWithLength(present[TagComment], facts.seconds) : present[TagComment];
    const std::string& track = trackKnown ? facts.track : present[TagTrack];
    const auto text = [&present](std::size_t piece, const std::string& name) {
        return TextFor(piece, present[piece], name);
    };
    return {.record = Joined({"TAG|", text(TagSong, names.song), "|", text(TagArtist, names.artist),
                              "|", text(TagAlbum, names.album), "|", present[TagYear], "|", comment,
                              "||", track, "|", facts.genre}),
            .lengthKnown = lengthKnown,
            .trackKnown = trackKnown};
}

}  // namespace quillon
