#include "id3/renames.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "id3/album_plan.h"
#include "id3/file_names.h"
#include "id3/track_of_file.h"
#include "platform/basic_text.h"
#include "platform/files.h"
#include "run/log.h"
#include "run/paths.h"

namespace quillon {

std::size_t Renames::Add(std::string from, std::string to, RowTitle title) {
    const std::size_t number = renames_.size();
    holders_.emplace(LowerCase(from), number);
    std::string first = from;
    renames_.push_back({std::move(from), std::move(to), title, std::move(first)});
    return number;
}

std::size_t Renames::Keep(std::string path) {
    const std::size_t number = Add(std::move(path), "", RowTitle::Keep);
    renames_[number].state = State::Failed;
    return number;
}

void Renames::Commit() {
    for (;;) {
        const std::vector<std::size_t> ready = Ready();
        if (ready.empty()) {
            if (StepAside()) continue;
            break;
        }
        std::vector<Move> moves;
        for (const std::size_t number : ready) {
            const Rename& rename = renames_[number];
            moves.push_back({.from = rename.from, .to = rename.to, .title = rename.title});
        }
        Carry(moves);
        for (std::size_t i = 0; i < ready.size(); ++i)
            Finish(ready[i], moves[i]);
    }
    StepBack();
}

/// The file that has a path at present, if it is one of those to be renamed.
const Renames::Rename* Renames::HolderOf(const std::string& path) const {
    const auto found = holders_.find(LowerCase(path));
    return found == holders_.end() ? nullptr : &renames_[found->second];
}

/// Those that wait for no other file any more. Those that can never be renamed are given up.
std::vector<std::size_t> Renames::Ready() {
    for (bool changed = true; changed;) {
        changed = false;
        for (Rename& rename : renames_) {
            const Rename* const holder = HolderOf(rename.to);
            if (rename.state != State::Waits || holder == nullptr || holder->state != State::Failed)
                continue;
            WriteLog(run_, LogSource,
                     rename.first + " keeps its name, since " + std::string(LastName(rename.to)) +
                         " is not free");
            rename.state = State::Failed;
            changed = true;
        }
    }
    std::vector<std::size_t> ready;
    for (std::size_t i = 0; i < renames_.size(); ++i) {
        const bool waits = renames_[i].state == State::Waits;
        if (waits && HolderOf(renames_[i].to) == nullptr) ready.push_back(i);
    }
    return ready;
}

/// Gives one of those that wait for each other a temporary name; whether there is one.
bool Renames::StepAside() {
    const auto waiting = std::find_if(renames_.begin(), renames_.end(), [](const Rename& rename) {
        return rename.state == State::Waits;
    });
    if (waiting == renames_.end()) return false;
    std::string aside = TemporaryPath(waiting->from);
    if (!CarryOne(waiting->from, aside)) {
        waiting->state = State::Failed;
        return true;
    }
    holders_.erase(LowerCase(waiting->from));
    waiting->from = std::move(aside);
    return true;
}

/// Files that have a temporary name and get no other take their old ones again.
void Renames::StepBack() {
    for (Rename& rename : renames_) {
        if (rename.state != State::Failed || rename.from == rename.first) continue;
        if (CarryOne(rename.from, rename.first)) rename.from = rename.first;
    }
}

void Renames::Finish(std::size_t number, const Move& move) {
    Rename& rename = renames_[number];
    rename.state = move.isDone ? State::Done : State::Failed;
    if (!move.isDone) return;
    holders_.erase(LowerCase(rename.from));
    rename.from = rename.to;
    ++run_.counts.filesRenamed;
    WriteLog(run_, LogSource, rename.first + " is now " + std::string(LastName(rename.to)));
}

bool Renames::CarryOne(std::string from, std::string to) {
    Move move{.from = std::move(from), .to = std::move(to)};
    Carry(std::span(&move, 1));
    return move.isDone;
}

void Renames::Carry(std::span<Move> moves) {
    std::vector<bool> possible;
    std::vector<FileMove> files;
    for (Move& move : moves) {
        steps_.Concerning(move.from);
        possible.push_back(steps_.Try(TagStep::NameByTitle, [&] { LeadRow(move); }));
        if (!possible.back())
            PutBack(move);
        else
            files.push_back({move.from, move.to});
    }
    // What is flushed with the rows need not be flushed for each file.
    std::unique_ptr<AnnouncedMoves> announced;
    const bool durable = steps_.Try(TagStep::NameByTitle, [&] {
        announced = run_.files.Announce(files);
        run_.Flush();
    });
    bool anyBack = false;
    for (std::size_t i = 0; i < moves.size(); ++i) {
        Move& move = moves[i];
        steps_.Concerning(move.from);
        move.isDone = durable && possible[i] && steps_.Try(TagStep::NameByTitle, [&] {
            run_.files.MoveFile(move.from, move.to);
        });
        if (move.isDone) {
            LetVanishedGo(move);
        } else if (possible[i]) {
            PutBack(move);
            anyBack = true;
        }
    }
    if (anyBack && durable) steps_.Try(TagStep::NameByTitle, [&] { run_.Flush(); });
}

/// Gives the file's row the new path. A row that has it already is one of a file that has gone, or,
/// where the file has no other, its own since a run that was interrupted.
void Renames::LeadRow(Move& move) {
    Library& library = run_.TheLibrary();
    TrackRow* const row = FindRowToRename(library, move.from, move.to);
    if (row == nullptr) return;
    const std::string soundFile = row->soundFile, title = row->title;
    if (!IsStoredAs(soundFile, move.from)) {
        const bool isThere = IsStoredAs(soundFile, move.to);
        const std::string old = isThere ? move.to : TemporaryPath(move.from);
        move.rows.push_back({row, StoredAs(soundFile, old, move.from), title});
        if (!isThere) Write(*row, StoredAs(soundFile, old, move.to), title);
        return;
    }
    if (TrackRow* const other = library.FindTrack(move.to); other != nullptr && other != row) {
        move.vanished = {other, other->soundFile, other->title};
        move.rows.push_back(*move.vanished);
        // First, so that no two rows ever have one path.
        Write(*other, StoredAs(other->soundFile, move.to, PathOfVanished(move.to)), other->title);
    }
    move.rows.push_back({row, soundFile, title});
    const bool round = move.title == RowTitle::RoundBrackets;
    Write(*row, StoredAs(soundFile, move.from, move.to), round ? RoundBrackets(title) : title);
}

/// The row of the vanished file takes the path that has become free, where the folder walk will
/// miss the file.
void Renames::LetVanishedGo(const Move& move) {
    if (!move.vanished) return;
    steps_.Try(TagStep::NameByTitle, [&] {
        Write(*move.vanished->row, StoredAs(move.vanished->soundFile, move.to, move.from),
              move.vanished->title);
    });
}

void Renames::Write(TrackRow& row, const std::string& soundFile, const std::string& title) {
    std::vector<FieldValue> changes{{"SoundFile", soundFile}};
    if (row.title.Text() != title) changes.push_back({"Title", title});
    run_.TheLibrary().Change(row, changes);
}

void Renames::PutBack(const Move& move) {
    steps_.Try(TagStep::NameByTitle, [&] {
        std::for_each(move.rows.rbegin(), move.rows.rend(),
                      [this](const OldRow& old) { Write(*old.row, old.soundFile, old.title); });
    });
}

}  // namespace quillon
