#include "id3/record_builder.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

#include "id3/song_genre.h"
#include "id3/tag_agreement.h"
#include "id3/track_of_file.h"
#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/windows_path.h"
#include "run/disc_folders.h"
#include "run/paths.h"
#include "run/run.h"
#include "run/steps.h"
#include "tags/length_text.h"

namespace quillon {
namespace {

enum class FactStep { TrackRow = 1, Length = 2, Genre = 3 };

constexpr std::int32_t HighestTrack = 255;

/// What the database says of one song; empty where it says nothing.
struct SongFacts {
    std::string artist;  ///< the track's own, where tracks have their own
    std::string track;
    std::string seconds;
    std::string genre;
};

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

/// The number of a track among those of its disc, as tags count; that in its album where it lies in
/// no disc folder.
std::int32_t NumberOnDisc(Library& library, const TrackRow& row, std::int32_t number) {
    const auto discOf = [](const TrackRow& track) {
        return DiscOfFolder(LastName(ParentFolder(track.soundFile)));
    };
    const std::optional<int> disc = discOf(row);
    if (!disc || number <= 0) return number;
    std::int32_t first = number;
    for (const TrackRow* const track : library.TracksOf(row.cdjid)) {
        const std::int32_t other = track->number.Truth().value_or(0);
        if (other > 0 && !track->isGone && discOf(*track) == disc) first = std::min(first, other);
    }
    return number - first + 1;
}

void ReadTrackRow(Run& run, std::string_view path, const SongNames& names, const Tag& present,
                  SongFacts& facts) {
    Library& library = run.TheLibrary();
    const TrackRow* const own = library.FindTrack(path);
    const TrackRow* const row = own != nullptr ? own : TrackOfNames(library, names);
    if (row == nullptr) return;
    if (own != nullptr && run.modern.keepsTrackArtists) facts.artist = own->artist.Text();
    std::int32_t number = row->number.Truth().value_or(0);
    if (run.modern.joinsDiscs) {
        number = NumberOnDisc(library, *row, number);
        // Among the files of one folder, the tags tell what counts with which disc.
        const bool isOnOther = ToNumber(present.disc).value_or(1) > 1;
        if (isOnOther && !DiscOfFolder(LastName(ParentFolder(path)))) number = 0;
    }
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

/// Whether a tag's text stays because it says more than the name of a file or folder can.
bool SaysMore(std::string_view present, std::string_view name, bool isRecorded) {
    const std::string_view value = Trim(present);
    // In a record a "|" would shift what is behind it.
    if (value.empty() || (isRecorded && value.find('|') != std::string_view::npos)) return false;
    if (IsCutOf(name, value)) return true;
    return (HoldsMoreThanNames(value) || !Utf8ToAnsiExactly(name)) &&
           TagAgreesWithName(value, name);
}

/// The same of a title, which may be the inner one of the file's name.
bool TitleSaysMore(std::string_view present, std::string_view name, bool isRecorded) {
    const std::string_view value = Trim(present);
    if (SaysMore(present, name, isRecorded)) return true;
    if (value.empty() || (isRecorded && value.find('|') != std::string_view::npos)) return false;
    return TagAgreesWithTitle(value, name) && !TagAgreesWithName(value, name);
}

}  // namespace

BuiltTag GetID3Info(Run& run, std::string_view path, const SongNames& names, const Tag& present) {
    Steps steps(run, "GetID3Info Management");
    steps.Concerning(path);
    SongFacts facts;
    steps.Try(FactStep::TrackRow, [&] { ReadTrackRow(run, path, names, present, facts); });
    if (facts.seconds.empty()) steps.Try(FactStep::Length, [&] { ReadLength(run, names, facts); });
    steps.Try(FactStep::Genre, [&] { ReadGenre(run, names, facts); });
    const bool lengthKnown = !facts.seconds.empty(), trackKnown = !facts.track.empty();
    Tag tag = present;
    tag.marker = "TAG";
    const bool isRecorded = present.isRecorded;
    if (!TitleSaysMore(present.song, names.song, isRecorded)) tag.song = names.song;
    const std::string& artist = facts.artist.empty() ? names.artist : facts.artist;
    if (!SaysMore(present.artist, artist, isRecorded)) tag.artist = artist;
    if (!SaysMore(present.album, names.album, isRecorded)) tag.album = names.album;
    if (lengthKnown) tag.comment = CommentWithLength(present.comment, facts.seconds);
    if (trackKnown) tag.track = facts.track;
    tag.genre = facts.genre;
    return {.tag = std::move(tag), .lengthKnown = lengthKnown, .trackKnown = trackKnown};
}

}  // namespace quillon
