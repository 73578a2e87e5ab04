#include "database/remove_duplicates.h"

#include <memory>
#include <string>
#include <vector>

#include "database/sql.h"
#include "platform/database.h"
#include "platform/failure.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr std::string_view DeleteTracksWithoutFile =
    "DELETE Tracks.* FROM Tracks INNER JOIN Albums ON Tracks.CDJID = Albums.CDJID "
    "WHERE (((Albums.Player)=1001) AND ((Tracks.SoundFile) Is Null)) "
    "OR (((Albums.Player)=1001) AND ((Tracks.SoundFile)=\"\"))";

constexpr std::string_view WithDuplicatedIdentifier =
    "SELECT Tracks.SoundFile, Tracks.Title FROM Tracks WHERE CDJID In "
    "(SELECT CDJID FROM Albums GROUP BY CDJID HAVING Count(*)>1)";

constexpr std::string_view WithoutFile =
    "SELECT Albums.Artist, Albums.Title AS Album, Tracks.Title "
    "FROM Tracks INNER JOIN Albums ON Tracks.CDJID = Albums.CDJID "
    "WHERE (((Albums.Player)=1001) AND ((Tracks.SoundFile) Is Null)) "
    "OR (((Albums.Player)=1001) AND ((Tracks.SoundFile)=\"\"))";

constexpr std::string_view CountTracks = "SELECT Count(*) AS Total FROM Tracks";

void AddFiles(Run& run, std::string_view query, std::vector<std::string>& names) {
    const std::unique_ptr<RecordSet> rows = run.connection->Query(query);
    for (; !rows->IsEof(); rows->MoveNext()) {
        const std::string soundFile = rows->Text("SoundFile");
        names.push_back(soundFile.empty() ? rows->Text("Title") : soundFile);
    }
}

void AddTitles(Run& run, std::string_view query, std::vector<std::string>& names) {
    const std::unique_ptr<RecordSet> rows = run.connection->Query(query);
    for (; !rows->IsEof(); rows->MoveNext()) {
        names.push_back(rows->Text("Artist") + '\\' + rows->Text("Album") + '\\' +
                        rows->Text("Title"));
    }
}

void AddAlbumNames(Run& run, const std::string& where, std::vector<std::string>& names) {
    const std::unique_ptr<RecordSet> rows =
        run.connection->Query("SELECT Artist, Title FROM Albums" + where);
    for (; !rows->IsEof(); rows->MoveNext())
        names.push_back(rows->Text("Artist") + '\\' + rows->Text("Title"));
}

/// Asks for all that is removed here at once.
bool MayRemove(Run& run, std::vector<std::string> names, const std::vector<std::string>& more) {
    names.insert(names.end(), more.begin(), more.end());
    if (names.empty()) return true;
    const auto total = run.connection->Query(CountTracks)->Integer("Total");
    return run.removals.Allow(run, {.kind = Removable::Tracks,
                                    .names = std::move(names),
                                    .outOf = static_cast<std::size_t>(total)});
}

void NoteRemoved(Run& run, const std::vector<std::string>& names) {
    for (const std::string& name : names)
        run.removals.Note(Removable::Tracks, name);
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
        std::vector<std::string> names;
        AddAlbumNames(run, ofThisAlbum, names);
        const auto albums = run.connection->Execute("DELETE * FROM Albums" + ofThisAlbum);
        const auto tracks = run.connection->Execute("DELETE * FROM Tracks" + ofThisAlbum);
        run.counts.albumsRemoved += static_cast<std::size_t>(albums);
        run.counts.tracksRemoved += static_cast<std::size_t>(tracks);
        // The next pass would find the same identifier again, and so would every one after it.
        if (albums == 0) {
            throw Failure::Described(FailureNumber::Database,
                                     "Duplicated identifier cannot be deleted: " + cdjid);
        }
        const std::string reason =
            "Album removed, it shared its CDJID " + cdjid + " with another: ";
        for (const std::string& name : names)
            WriteLog(run, LogSource, std::string(reason).append(name));
    }
}

void DeleteWithoutFile(Run& run) {
    std::vector<std::string> names;
    AddTitles(run, WithoutFile, names);
    if (names.empty()) return;
    const auto tracks = run.connection->Execute(DeleteTracksWithoutFile);
    run.counts.tracksRemoved += static_cast<std::size_t>(tracks);
    NoteRemoved(run, names);
    for (const std::string& name : names)
        WriteLog(run, LogSource, "Track removed, it had no file: " + name);
}

}  // namespace

void RemoveDuplicates(Run& run) {
    const std::string ofDuplicates = "Remove Duplicates Error on Delete Duplicate Query:";
    const std::string ofTracksWithoutFile = "Remove Duplicates Error on SoundFile=Null Query:";
    Steps steps(run, "Remove Duplicates Error:");
    std::vector<std::string> withDuplicate, withoutFile;
    const bool duplicatesKnown = steps.TryAs(
        ofDuplicates, 2, [&] { AddFiles(run, WithDuplicatedIdentifier, withDuplicate); });
    const bool withoutFileKnown =
        steps.TryAs(ofTracksWithoutFile, 4, [&] { AddTitles(run, WithoutFile, withoutFile); });
    bool mayRemove = false;
    steps.Try(0, [&] { mayRemove = MayRemove(run, withDuplicate, withoutFile); });
    if (mayRemove && duplicatesKnown) {
        const bool removed = steps.TryAs(ofDuplicates, 2, [&run] { DeleteDuplicates(run); });
        if (removed) NoteRemoved(run, withDuplicate);
    }
    if (mayRemove && withoutFileKnown)
        steps.TryAs(ofTracksWithoutFile, 4, [&run] { DeleteWithoutFile(run); });
}

}  // namespace quillon
