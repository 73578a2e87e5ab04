#include "backups/restore_backup.h"

#include <algorithm>
#include <string>
#include <vector>

#include "backups/backup_names.h"
#include "backups/backups.h"
#include "backups/kept_backups.h"
#include "backups/same_content.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class RestoreStep { BackUp = 1, PutBack = 2 };

constexpr const char* DoItAgain =
    "the backup is put back only in part. Put that right and restore it again, which completes it";

template <typename Entry>
void RequireSeen(const Listing<Entry>& listing) {
    if (!listing.unseen.empty())
        throw Failure(FailureNumber::PathFileAccess, listing.unseen.front());
}

template <typename Entry>
const Entry* Find(const Listing<Entry>& listing, std::string_view name) {
    const auto found = std::ranges::find_if(listing.entries, [name](const Entry& entry) {
        return EqualIgnoringCase(entry.name, name);
    });
    return found == listing.end() ? nullptr : &*found;
}

/// Makes a folder hold exactly what another one holds, file by file, so that the folder itself may
/// be a link or a share. Every file is the old one or the new one at any moment.
class FolderRestorer {
  public:
    explicit FolderRestorer(Files& files) : files_(files) {}

    void Restore(const std::string& from, const std::string& to) {
        if (!files_.FolderExists(to)) return files_.CopyFolder(from, to);
        const Listing<FileEntry> wanted = files_.FilesIn(from);
        const Listing<FolderEntry> wantedFolders = files_.SubFolders(from);
        RequireSeen(wanted);
        RequireSeen(wantedFolders);
        RemoveOthers(to, wanted, wantedFolders);
        const Listing<FileEntry> present = files_.FilesIn(to);
        for (const FileEntry& file : wanted)
            RestoreFile(file, to, Find(present, file.name));
        for (const FolderEntry& folder : wantedFolders)
            Restore(folder.path, to + '\\' + folder.name);
    }

  private:
    void RemoveOthers(const std::string& folder, const Listing<FileEntry>& wanted,
                      const Listing<FolderEntry>& wantedFolders) {
        for (const FileEntry& file : files_.FilesIn(folder))
            if (Find(wanted, file.name) == nullptr) files_.DeleteFile(file.path);
        for (const FolderEntry& inner : files_.SubFolders(folder))
            if (Find(wantedFolders, inner.name) == nullptr) files_.DeleteFolder(inner.path);
    }

    void RestoreFile(const FileEntry& wanted, const std::string& folder, const FileEntry* present) {
        const std::string path = folder + '\\' + wanted.name;
        if (present != nullptr && present->name != wanted.name)
            files_.MoveFile(present->path, path);
        const bool isThere = present != nullptr && present->modified == wanted.modified &&
                             HaveSameBytes(files_, wanted.path, path);
        if (!isThere) files_.CopyFile(wanted.path, path, true);
    }

    Files& files_;
};

/// A journal that waits for the database as it is now would be carried out on the one that takes
/// its place.
void PutJournalAside(Files& files, const std::string& database, const std::string& mark) {
    for (const char* const ending : {".journal", ".journal-new"}) {
        const std::string journal = database + ending;
        if (files.FileExists(journal)) files.MoveFile(journal, CopyName(journal, mark));
    }
}

void RestoreDatabase(Run& run, const BackupMoment& backup, const BackupCopy& copy,
                     const std::string& mark) {
    PutJournalAside(run.files, copy.original.path, mark);
    run.files.CopyFile(copy.path, copy.original.path, true);
    for (const BackupOriginal& note : NotesBeside(copy.original.path)) {
        const BackupCopy* const then = backup.CopyOf(note.part);
        if (then != nullptr) {
            run.files.CopyFile(then->path, note.path, true);
        } else if (run.files.FileExists(note.path)) {
            run.files.Discard(note.path);
        }
    }
}

void MarkUnfinished(Run& run, const BackupMoment& backup) {
    const auto writer = run.files.CreateOwnText(RestoreMarkPath(run.settings.Nirvis_CDJ_DB));
    writer->WriteLine(backup.name);
    writer->Close();
}

}  // namespace

std::string RestoreMarkPath(std::string_view database) {
    return std::string(database) + ".restoring";
}

std::string UnfinishedRestore(Files& files, std::string_view database) {
    if (database.empty()) return "";
    const std::string path = RestoreMarkPath(database);
    if (!files.FileExists(path)) return "";
    const std::unique_ptr<TextReader> reader = files.OpenText(path);
    const std::string name = reader->AtEndOfStream() ? "" : reader->ReadLine();
    return ReadBackupMark(name) ? name : "STAMP";
}

Restored RestoreBackup(Run& run, const BackupMoment& backup) {
    Restored restored;
    Steps steps(run, "RestoreBackup");
    if (!steps.Try(RestoreStep::BackUp, [&] { restored.copyOfNow = BackUpAll(run); }))
        return restored;
    if (restored.copyOfNow.empty()) return restored;
    steps.Advising(DoItAgain);
    restored.succeeded = steps.Try(RestoreStep::PutBack, [&] {
        MarkUnfinished(run, backup);
        if (const BackupCopy* const database = backup.CopyOf(BackupPart::Database))
            RestoreDatabase(run, backup, *database, restored.copyOfNow);
        for (const BackupPart part : {BackupPart::PlayListPath, BackupPart::PlayListPath2}) {
            const BackupCopy* const lists = backup.CopyOf(part);
            if (lists == nullptr) continue;
            run.ShowItem("Restoring " + lists->original.path);
            FolderRestorer(run.files).Restore(lists->path, lists->original.path);
        }
        run.files.Discard(RestoreMarkPath(run.settings.Nirvis_CDJ_DB));
    });
    if (restored.succeeded) {
        WriteLog(run, LogSource,
                 "The backup " + backup.name +
                     " was put back in its place. What was there before is the backup " +
                     restored.copyOfNow);
    }
    return restored;
}

}  // namespace quillon
