#include "id3/renames.h"

#include <optional>
#include <utility>

#include "database/track_numbers.h"
#include "id3/sound_file_row.h"
#include "platform/basic_text.h"
#include "platform/files.h"

namespace quillon {
namespace {

constexpr int RenameStep = 7;

/// The stored path, which ends with `from` in some letter case, with another one in its place.
/// Letters of the two cases may differ in size, hence the measure in one case.
std::string WithPath(std::string_view soundFile, std::string_view from, std::string_view to) {
    const std::size_t before = LowerCase(soundFile).size() - LowerCase(from).size();
    return std::string(soundFile.substr(0, before)).append(to);
}

}  // namespace

std::string RoundBrackets(std::string_view text) {
    return Replace(Replace(text, "[", "("), "]", ")");
}

std::size_t Renames::Add(std::string from, std::string to, RowTitle title) {
    left_.insert(LowerCase(from));
    taken_.insert(LowerCase(to));
    renames_.push_back({std::move(from), std::move(to), title});
    return renames_.size() - 1;
}

bool Renames::Exists(std::string_view path) const {
    const std::string key = LowerCase(path);
    return taken_.contains(key) || (!left_.contains(key) && run_.files.FileExists(path));
}

bool Renames::DeleteDuplicate(int step, const std::string& path, std::string_view of) {
    steps_.Concerning(path);
    if (!steps_.Try(step, [&] { run_.files.DeleteFile(path); })) return false;
    steps_.Try(step, [&] {
        const std::optional<SoundFileRow> row = FindSoundFileRow(*run_.connection, path);
        if (row && !FindSoundFileRow(*run_.connection, of))
            Write(row->id, WithPath(row->soundFile, path, of), row->title);
    });
    return true;
}

std::vector<bool> Renames::Commit() {
    std::vector<bool> done(renames_.size(), false);
    if (renames_.empty()) return done;
    for (Rename& rename : renames_) {
        steps_.Concerning(rename.from);
        rename.possible = steps_.Try(RenameStep, [&] { TakeRowAlong(rename); });
        if (!rename.possible) PutBack(rename);
    }
    const bool durable = steps_.Try(RenameStep, [&] { run_.Flush(); });
    for (std::size_t i = 0; i < renames_.size(); ++i) {
        const Rename& rename = renames_[i];
        steps_.Concerning(rename.from);
        done[i] = durable && rename.possible &&
                  steps_.Try(RenameStep, [&] { run_.files.MoveFile(rename.from, rename.to); });
        if (!done[i]) PutBack(rename);
    }
    return done;
}

/// A row that has the new path already is one of a file that has gone; it takes the old path, where
/// the folder walk will miss the file.
void Renames::TakeRowAlong(Rename& rename) {
    const std::optional<SoundFileRow> row = FindSoundFileRow(*run_.connection, rename.from);
    if (!row) return;
    const std::optional<SoundFileRow> other = FindSoundFileRow(*run_.connection, rename.to);
    rename.rows.push_back({row->id, row->soundFile, row->title});
    const bool round = rename.title == RowTitle::RoundBrackets;
    Write(row->id, WithPath(row->soundFile, rename.from, rename.to),
          round ? RoundBrackets(row->title) : row->title);
    if (!other || other->id == row->id) return;
    rename.rows.push_back({other->id, other->soundFile, other->title});
    Write(other->id, WithPath(other->soundFile, rename.to, rename.from), other->title);
}

void Renames::Write(std::int64_t id, const std::string& soundFile, const std::string& title) {
    if (!MoveToId(tracks_, id)) return;
    tracks_.Set("SoundFile", soundFile);
    if (tracks_.Text("Title") != title) tracks_.Set("Title", title);
    tracks_.Update();
}

void Renames::PutBack(const Rename& rename) {
    steps_.Try(RenameStep, [&] {
        tracks_.CancelUpdate();
        for (const OldRow& row : rename.rows)
            Write(row.id, row.soundFile, row.title);
    });
}

}  // namespace quillon
