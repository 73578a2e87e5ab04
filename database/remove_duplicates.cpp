#include "database/remove_duplicates.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "database/sql.h"
#include "library/library.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class DuplicateStep { DeleteShared = 2, DeleteWithoutFile = 4 };

/// An identifier that several albums have.
struct SharedIdentifier {
    std::string cdjid;
    std::vector<AlbumRow*> albums;
    std::vector<TrackRow*> tracks;
};

/// In the order in which the database groups them.
std::vector<SharedIdentifier> SharedIdentifiers(Library& library) {
    std::vector<SharedIdentifier> shared;
    for (AlbumRow& album : library.Albums()) {
        if (album.isGone || album.cdjid.IsNull()) continue;
        std::vector<AlbumRow*> albums = library.AlbumsWith(album.cdjid);
        if (albums.size() > 1 && albums.front() == &album)
            shared.push_back({album.cdjid, std::move(albums), library.TracksOf(album.cdjid)});
    }
    std::ranges::sort(shared, [&](const SharedIdentifier& a, const SharedIdentifier& b) {
        return library.Rules().ComesBefore(a.cdjid, b.cdjid);
    });
    return shared;
}

/// A track of an own album, which has no file.
struct Fileless {
    TrackRow* track;
    std::string name;
};

std::vector<Fileless> TracksWithoutFile(Library& library) {
    std::vector<Fileless> tracks;
    for (TrackRow& track : library.Tracks()) {
        if (track.isGone || !track.soundFile.IsEmpty()) continue;
        if (const AlbumRow* const album = library.AlbumOf(track)) {
            tracks.push_back({&track, album->artist.Text() + '\\' + album->title.Text() + '\\' +
                                          track.title.Text()});
        }
    }
    return tracks;
}

/// What goes, in words.
std::vector<std::string> NamesOf(const std::vector<SharedIdentifier>& shared) {
    std::vector<std::string> names;
    for (const SharedIdentifier& identifier : shared) {
        for (const TrackRow* const track : identifier.tracks)
            names.push_back(track->soundFile.IsEmpty() ? track->title : track->soundFile);
    }
    return names;
}

std::vector<std::string> NamesOf(const std::vector<Fileless>& tracks) {
    std::vector<std::string> names;
    names.reserve(tracks.size());
    for (const Fileless& fileless : tracks)
        names.push_back(fileless.name);
    return names;
}

/// Asks for all that is removed here at once.
bool MayRemove(Run& run, std::vector<std::string> names, const std::vector<std::string>& more) {
    names.insert(names.end(), more.begin(), more.end());
    if (names.empty()) return true;
    const auto isThere = [](const TrackRow& track) { return !track.isGone; };
    const auto total = std::ranges::count_if(run.TheLibrary().Tracks(), isThere);
    return run.removals.Allow(run, {.kind = Removable::Tracks,
                                    .names = std::move(names),
                                    .outOf = static_cast<std::size_t>(total)});
}

void NoteRemoved(Run& run, const std::vector<std::string>& names) {
    for (const std::string& name : names)
        run.removals.Note(Removable::Tracks, name);
}

/// All rows of an identifier, whatever their player: the folder walk makes fresh rows for the album
/// folders that still exist.
void DeleteShared(Run& run, const std::vector<SharedIdentifier>& shared) {
    Library& library = run.TheLibrary();
    for (const SharedIdentifier& identifier : shared) {
        RefuseQuote(identifier.cdjid);
        for (AlbumRow* const album : identifier.albums) {
            library.Remove(*album);
            ++run.counts.albumsRemoved;
        }
        for (TrackRow* const track : identifier.tracks) {
            library.Remove(*track);
            ++run.counts.tracksRemoved;
        }
        for (const AlbumRow* const album : identifier.albums) {
            WriteLog(run, LogSource,
                     "Album removed, it shared its CDJID " + identifier.cdjid +
                         " with another: " + album->artist.Text() + '\\' + album->title.Text());
        }
    }
}

void DeleteWithoutFile(Run& run, const std::vector<Fileless>& tracks) {
    for (const Fileless& fileless : tracks) {
        if (fileless.track->isGone) continue;  // with its album
        run.TheLibrary().Remove(*fileless.track);
        ++run.counts.tracksRemoved;
        run.removals.Note(Removable::Tracks, fileless.name);
        WriteLog(run, LogSource, "Track removed, it had no file: " + fileless.name);
    }
}

}  // namespace

void RemoveDuplicates(Run& run) {
    Steps steps(run, "Remove Duplicates Error:");
    std::vector<SharedIdentifier> shared;
    std::vector<Fileless> withoutFile;
    bool mayRemove = false;
    steps.Try([&] {
        shared = SharedIdentifiers(run.TheLibrary());
        withoutFile = TracksWithoutFile(run.TheLibrary());
        mayRemove = MayRemove(run, NamesOf(shared), NamesOf(withoutFile));
    });
    if (!mayRemove) return;
    const std::vector<std::string> names = NamesOf(shared);
    const bool removed = steps.TryAs(
        "Remove Duplicates Error on Delete Duplicate Query:", DuplicateStep::DeleteShared,
        [&] { DeleteShared(run, shared); });
    if (removed) NoteRemoved(run, names);
    steps.TryAs("Remove Duplicates Error on SoundFile=Null Query:",
                DuplicateStep::DeleteWithoutFile, [&] { DeleteWithoutFile(run, withoutFile); });
}

}  // namespace quillon
