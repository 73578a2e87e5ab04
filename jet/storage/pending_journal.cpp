#include "jet/storage/pending_journal.h"

#include <algorithm>
#include <string>
#include <utility>

#include "jet/error.h"
#include "jet/storage/journal_note.h"

namespace jet::storage {

namespace {

/// A journal that was left behind, after which the database was replaced by another copy, must not
/// be carried out.
bool Belongs(const JournalReader& journal, const CommitCounters& onDisk) {
    bool belongs = onDisk == journal.CountersBefore();
    journal.ForEach([&](PageNumber number, const Page& page) {
        if (number == HeaderPage && CountersOf(page) == onDisk) belongs = true;
    });
    return belongs;
}

PendingJournal LookAt(FileSystem& files, const std::filesystem::path& journal,
                      const CommitCounters& onDisk) {
    PendingJournal found;
    if (!files.Exists(journal)) return found;
    found.state.file = journal;
    found.reader = JournalReader::Open(files, journal);
    if (!found.reader) {
        found.state.kind = JournalState::Kind::NotComplete;
    } else if (!Belongs(*found.reader, onDisk)) {
        found.state.kind = JournalState::Kind::NotIts;
        found.reader.reset();
    } else {
        found.state.kind = JournalState::Kind::Waits;
        found.state.pages = found.reader->Pages();
    }
    return found;
}

/// What the note says, unless it came here with a copy of the file that it was made for.
std::optional<JournalNote> Understood(const std::optional<std::string>& text,
                                      const FileFacts& facts) {
    auto note = text ? JournalNote::Parse(*text) : std::nullopt;
    if (note && note->file != facts.number) note.reset();
    return note;
}

}  // namespace

std::filesystem::path JournalPathFor(const std::filesystem::path& database) {
    auto path = database;
    return path += ".journal";
}

std::filesystem::path UnfinishedJournalPathFor(const std::filesystem::path& journal) {
    auto path = journal;
    return path += "-new";
}

CommitCounters CountersOnDisk(File& database, const std::filesystem::path& path) {
    CommitCounters counters{};
    if (database.ReadAt(header_format::CommitCountersOffset, counters) != counters.size())
        throw Error(ErrorKind::Damaged, path.string() + " is damaged: it ends within its header.");
    return counters;
}

PendingJournal FindJournal(FileSystem& files, File& database, const std::filesystem::path& path) {
    const CommitCounters onDisk = CountersOnDisk(database, path);
    const auto own = JournalPathFor(path);
    const FileFacts facts = database.Facts();
    const auto text = database.Note();
    const auto note = Understood(text, facts);
    PendingJournal found;
    if (note) found = LookAt(files, note->journal, onDisk);
    if (note && !found.reader)
        found = LookAt(files, UnfinishedJournalPathFor(note->journal), onDisk);
    if (!found.reader) found = LookAt(files, own, onDisk);
    found.isNoted = text.has_value();
    // With a single name, a note without its journal is one that the power cut has brought back.
    if (note && !found.reader && facts.names > 1 && note->Concerns(onDisk)) {
        throw Error(ErrorKind::Damaged,
                    path.string() +
                        " is damaged: a program was cut off while it wrote the file under another "
                        "of its names, and the journal that completes it, " +
                        note->journal.string() + ", is missing.");
    }
    return found;
}

}  // namespace jet::storage
