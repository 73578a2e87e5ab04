#include "id3/write_id3.h"

#include <algorithm>
#include <array>
#include <memory>
#include <numeric>

#include "database/sql.h"
#include "id3/file_names.h"
#include "id3/record_builder.h"
#include "platform/basic_text.h"
#include "platform/database.h"
#include "platform/failure.h"
#include "run/log.h"
#include "run/name_cleaning.h"
#include "run/run.h"
#include "run/steps.h"
#include "tags/tag_reader.h"
#include "tags/tag_writer.h"

namespace quillon {
namespace {

/// Users know this text by these very letters, the "&" and what follows it included.
constexpr std::string_view Progress = "1. Writing ID3 for Artist: & artist.name";

/// The labels of Year and Ver are missing: the database has nothing for them.
constexpr std::array WritableFields{
    tag_label::Marker,  tag_label::Song,  tag_label::Artist, tag_label::Album,
    tag_label::Comment, tag_label::Track, tag_label::Genre,  tag_label::TrackNumberMissing};

/// What the rows of one song ask for.
struct Differences {
    bool any = false;
    bool length = false;
    bool missingTrack = false;
    std::string tagTitle;  ///< the title in the tag, where that differs
};

Differences ReadDifferences(Run& run, const SongNames& names) {
    const std::unique_ptr<RecordSet> rows = run.connection->Query(
        "SELECT * FROM SpinnerID3Differences WHERE Artist =" + Quoted(names.artist) +
        " AND Album = " + Quoted(names.album) + " AND Track =" + Quoted(names.song));
    Differences differences;
    for (; !rows->IsEof(); rows->MoveNext()) {
        const std::string field = rows->Text("Field");
        if (std::find(WritableFields.begin(), WritableFields.end(), field) == WritableFields.end())
            continue;
        differences.any = true;
        differences.length |= field == tag_label::Comment;
        differences.missingTrack |= field == tag_label::TrackNumberMissing;
        if (field == tag_label::Song) differences.tagTitle = rows->Text("ID3Value");
    }
    return differences;
}

void Note(Run& run, const std::string& what, const std::string& path) {
    WriteLog(run, LogSource, "No usable " + what + " in the database for " + path);
}

/// What the rows ask for and the database does not have.
void NoteUnknown(Run& run, const std::string& path, const Differences& differences,
                 const BuiltTag& built, const Tag& present) {
    if (differences.length && !built.lengthKnown) Note(run, "length", path);
    const bool noTrack = !built.trackKnown && present.track.empty();
    if (differences.missingTrack && noTrack) Note(run, "track number", path);
}

/// Version 1 before version 2, since a file that grows has another end. Where there is a tag of
/// version 2, that of version 1 says what it can hold, and nothing where it cannot hold the texts.
void WriteAllTags(Run& run, const std::string& path, const SongNames& names,
                  const Differences& differences, const FileEnd& end, const Tag& present) {
    const PresentTags tags = ReadPresentTags(run, path, present);
    const bool hasOther = tags.other.tag.IsThere();
    const BuiltTag wanted = GetID3Info(run, path, names, tags.together);
    NoteUnknown(run, path, differences, wanted, tags.together);
    Tag old = GetID3Info(run, path, names, present.IsThere() ? present : tags.together).tag;
    const bool hasNumber = std::ranges::find(run.GenreNames, old.genre) != run.GenreNames.end();
    // Download tables have numbers of links for genres; those are none.
    if (!hasNumber && (hasOther || IsNumeric(old.genre))) old.genre.clear();
    old.isRecorded = true;
    const std::size_t before = run.counts.tagsWritten;
    if (!hasOther || HoldsTexts(old)) WriteTag(run, path, end, old);
    if (!hasOther) return;
    const bool isWritten = WriteOtherTags(run, path, tags.other, wanted.tag);
    if (isWritten && run.counts.tagsWritten == before) ++run.counts.tagsWritten;
}

void WriteFile(Run& run, const std::string& path, const SongNames& names,
               const Differences& differences) {
    const FileEnd end = ReadTagEnd(run.files, path);
    const Tag present = end.size > TagSize ? TagIn(end.bytes) : Tag();
    const bool writesAll = run.modern.writesAllTags && run.tagFormats != nullptr;
    // A tag alone would be no music either, and the next run would not know it for one.
    if (writesAll && end.size == 0) return;
    if (writesAll) return WriteAllTags(run, path, names, differences, end, present);
    const BuiltTag built = GetID3Info(run, path, names, present);
    NoteUnknown(run, path, differences, built, present);
    WriteTag(run, path, end, built.tag);
}

/// One song's files, whatever has become of their names.
void WriteSong(Run& run, Steps& steps, SongFiles& files, const SongNames& names) {
    Differences differences;
    steps.Concerning(names.artist + "\\" + names.album + "\\" + names.song);
    if (!steps.Try(StoreStep::ReadDifferences, [&] { differences = ReadDifferences(run, names); }))
        return;
    if (!differences.any) return;
    files.GoTo(names.artist, names.album);
    std::vector<FileEntry> found = files.WithTitle(names.song);
    const bool renamed = found.empty() && !differences.tagTitle.empty();
    if (renamed) found = files.WithTitle(NoNasties(differences.tagTitle));
    steps.Concerning({});
    steps.Try(StoreStep::FindFile, [&] {
        if (!found.empty()) return;
        throw Failure(FailureNumber::FileNotFound, names.artist + "\\" + names.album + "\\" +
                                                       names.artist + " - " + names.song + ".mp3");
    });
    for (const FileEntry& file : found) {
        SongNames own = names;
        own.song = SongTitle(renamed ? file.name : names.song, names.artist);
        steps.Concerning(file.path);
        steps.Try(StoreStep::WriteTag, [&] { WriteFile(run, file.path, own, differences); });
    }
}

std::vector<ArtistSongs> ReadArtists(Run& run) {
    std::vector<ArtistSongs> artists;
    const std::unique_ptr<RecordSet> rows = run.connection->Query(
        "SELECT DISTINCT Artist, Album, Track FROM SpinnerID3Differences "
        "ORDER BY Artist, Album, Track");
    for (; !rows->IsEof(); rows->MoveNext()) {
        std::string artist = rows->Text("Artist");
        if (artists.empty() || artists.back().artist != artist)
            artists.push_back({.artist = std::move(artist), .songs = {}});
        artists.back().songs.push_back(
            {.album = rows->Text("Album"), .title = rows->Text("Track")});
    }
    return artists;
}

std::size_t SongCount(const std::vector<ArtistSongs>& artists) {
    return std::accumulate(
        artists.begin(), artists.end(), std::size_t{0},
        [](std::size_t sum, const ArtistSongs& artist) { return sum + artist.songs.size(); });
}

}  // namespace

void StoreID3(Run& run, SongFiles& files, const ArtistSongs& artist) {
    Steps steps(run, "StoreID3");
    run.ShowItem(Progress);
    for (const ArtistSongs::Song& song : artist.songs) {
        run.ProcessEvents();
        if (run.AbortRequested) return;
        WriteSong(run, steps, files,
                  {.artist = artist.artist, .album = song.album, .song = song.title});
        run.CountDone();
    }
}

void WriteID3(Run& run) {
    Steps steps(run, "StoreID3");
    std::vector<ArtistSongs> artists;
    if (!steps.Try(StoreStep::ReadSongs, [&] { artists = ReadArtists(run); })) return;
    SongFiles files(run, steps);
    run.StartCounting(SongCount(artists));
    for (const ArtistSongs& artist : artists) {
        StoreID3(run, files, artist);
        if (run.AbortRequested) return;
    }
}

}  // namespace quillon
