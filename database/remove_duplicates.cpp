#include "database/remove_duplicates.h"

#include <memory>
#include <string>

#include "database/marks.h"
#include "database/sql.h"
#include "platform/database.h"
#include "platform/failure.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr std::string_view MarkAlbums =
    "UPDATE Albums SET Albums.Tracks = 0 WHERE (((Albums.Player)=1001))";

constexpr std::string_view MarkTracks =
    "UPDATE Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID "
    "SET Tracks.Track = 0 WHERE (((Albums.Player)=1001))";

constexpr std::string_view DeleteTracksWithoutFile =
    "DELETE Tracks.* FROM Tracks INNER JOIN Albums ON Tracks.CDJID = Albums.CDJID "
    "WHERE (((Albums.Player)=1001) AND ((Tracks.SoundFile) Is Null)) "
    "OR (((Albums.Player)=1001) AND ((Tracks.SoundFile)=\"\"))";

constexpr std::string_view WithDuplicatedIdentifier =
    "SELECT Tracks.SoundFile, Tracks.Title FROM Tracks WHERE CDJID In "
    "(SELECT CDJID FROM Albums GROUP BY CDJID HAVING Count(*)>1)";

constexpr std::string_view WithoutFile =
    "SELECT Tracks.SoundFile, Tracks.Title FROM Tracks INNER JOIN Albums "
    "ON Tracks.CDJID = Albums.CDJID "
    "WHERE (((Albums.Player)=1001) AND ((Tracks.SoundFile) Is Null)) "
    "OR (((Albums.Player)=1001) AND ((Tracks.SoundFile)=\"\"))";

constexpr std::string_view CountTracks = "SELECT Count(*) AS Total FROM Tracks";

void AddNames(Run& run, std::string_view query, std::vector<std::string>& names) {
    const std::unique_ptr<RecordSet> rows = run.connection->Query(query);
    for (; !rows->IsEof(); rows->MoveNext()) {
        const std::string soundFile = rows->Text("SoundFile");
        names.push_back(soundFile.empty() ? rows->Text("Title") : soundFile);
    }
}

/// The tracks of both kinds that are removed here.
PlannedRemoval Unreconcilable(Run& run) {
    PlannedRemoval planned{.kind = Removable::Tracks, .names = {}};
    AddNames(run, WithDuplicatedIdentifier, planned.names);
    AddNames(run, WithoutFile, planned.names);
    if (planned.names.empty()) return planned;
    planned.outOf = static_cast<std::size_t>(run.connection->Query(CountTracks)->Integer("Total"));
    return planned;
}

/// One identifier a pass, all its rows and whatever their player: the folder walk makes fresh rows
/// for the album folders that still exist.
void DeleteDuplicates(Run& run) {
    for (;;) {
        const std::unique_ptr<RecordSet> duplicates = run.connection->Query(DuplicatedIdentifiers);
        if (duplicates->IsEmpty()) return;
        duplicates->MoveFirst();
        const std::string cdjid = duplicates->Text("CDJID Field");
        const std::string ofThisAlbum = " WHERE CDJID=" + Quoted(cdjid);
        const auto albums = run.connection->Execute("DELETE * FROM Albums" + ofThisAlbum);
        const auto tracks = run.connection->Execute("DELETE * FROM Tracks" + ofThisAlbum);
        run.counts.albumsRemoved += static_cast<std::size_t>(albums);
        run.counts.tracksRemoved += static_cast<std::size_t>(tracks);
        // The next pass would find the same identifier again, and so would every one after it.
        if (albums == 0) {
            throw Failure::Described(FailureNumber::Database,
                                     "Duplicated identifier cannot be deleted: " + cdjid);
        }
    }
}

}  // namespace

void RemoveDuplicates(Run& run) {
    Steps steps(run, "Remove Duplicates Error:");
    const bool mayMark = steps.Try(0, [&run] { TakeMarkSnapshot(run); });
    if (mayMark) {
        steps.TryAs("Remove Duplicates Error on Album Tracks=0 Query:", 1,
                    [&run] { run.connection->Execute(MarkAlbums); });
    }
    PlannedRemoval planned;
    const bool mayRemove =
        steps.Try(0, [&] { planned = Unreconcilable(run); }) && run.removals.Allow(run, planned);
    bool removed = mayRemove;
    if (mayRemove) {
        removed = steps.TryAs("Remove Duplicates Error on Delete Duplicate Query:", 2,
                              [&run] { DeleteDuplicates(run); });
    }
    if (mayMark) {
        steps.TryAs("Remove Duplicates Error on Track=0 Query:", 3,
                    [&run] { run.connection->Execute(MarkTracks); });
    }
    if (mayRemove) {
        removed &= steps.TryAs("Remove Duplicates Error on SoundFile=Null Query:", 4, [&run] {
            const auto tracks = run.connection->Execute(DeleteTracksWithoutFile);
            run.counts.tracksRemoved += static_cast<std::size_t>(tracks);
        });
    }
    if (!removed) return;
    for (const std::string& name : planned.names)
        run.removals.Note(Removable::Tracks, name);
}

}  // namespace quillon
