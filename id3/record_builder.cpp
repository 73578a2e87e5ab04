#include "id3/record_builder.h"

#include <cstdint>
#include <initializer_list>

#include "id3/difference_fields.h"
#include "id3/genre_in_file_name.h"
#include "id3/length_text.h"
#include "id3/sound_file_row.h"
#include "id3/tag_agreement.h"
#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "run/fast_string.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr std::int32_t HighestTrack = 255;

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

/// A track of these names, of an own album before any other.
const TrackRow* TrackOfNames(Library& library, const SongNames& names) {
    const TextRules& rules = library.Rules();
    const TrackRow* found = nullptr;
    for (const AlbumRow* const album : library.AlbumsNamed(names.artist, names.album)) {
        if (album->cdjid.IsNull() || (found != nullptr && !album->isOwn)) continue;
        for (const TrackRow* const track : library.TracksOf(album->cdjid)) {
            const bool isIt = !track->title.IsNull() && rules.AreEqual(track->title, names.song);
            if (isIt && album->isOwn) return track;
            if (isIt && found == nullptr) found = track;
        }
    }
    return found;
}

void ReadTrackRow(Run& run, std::string_view path, const SongNames& names, SongFacts& facts) {
    Library& library = run.TheLibrary();
    const TrackRow* row = library.FindTrack(path);
    if (row == nullptr) row = TrackOfNames(library, names);
    if (row == nullptr) return;
    const std::int32_t number = row->number.Truth().value_or(0);
    if (number > 0 && number <= HighestTrack) facts.track = std::to_string(number);
    if (const auto length = LengthOf(*row)) facts.seconds = std::to_string(*length);
}

const SongRow* DownloadRow(Run& run, const SongNames& names) {
    return run.TheDownloadTable().Find(names.artist, names.album, names.song);
}

void ReadLength(Run& run, const SongNames& names, SongFacts& facts) {
    const SongRow* const row = DownloadRow(run, names);
    if (row == nullptr) return;
    const RowNumber seconds = NumberOf(run.TheDownloadTable().Read(*row, "Length"));
    if (seconds.value_or(0) > 0) facts.seconds = std::to_string(*seconds);
}

/// The row itself is asked, not the dictionary made of all rows, which tells names apart by letter
/// case. The link names the genre that the song was downloaded with; it counts only as long as the
/// row has none, because the row's may have been corrected since.
void ReadGenre(Run& run, const SongNames& names, SongFacts& facts) {
    const SongRow* const row = DownloadRow(run, names);
    if (row == nullptr) return;
    facts.genre = row->genre.IsNull()
                      ? GenreInFileName(RowText(run.TheDownloadTable().Read(*row, "FileName")))
                      : row->genre.Text();
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
