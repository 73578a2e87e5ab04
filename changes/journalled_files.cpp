#include "changes/journalled_files.h"

#include <algorithm>
#include <utility>

#include "changes/file_content.h"
#include "changes/journalled_texts.h"
#include "platform/basic_text.h"
#include "platform/in_place.h"

namespace quillon {
namespace {

using ChangeKind = FileChange::Kind;

FileChange ChangeOf(ChangeKind kind, std::string_view path, std::string_view target = {}) {
    return {.kind = kind, .path = std::string(path), .target = std::string(target)};
}

std::string KeyOf(std::string_view path) {
    while (path.ends_with('\\'))
        path.remove_suffix(1);
    return LowerCase(path);
}

std::string_view NameOf(std::string_view path) {
    while (path.ends_with('\\'))
        path.remove_suffix(1);
    return path.substr(path.rfind('\\') + 1);
}

/// What it gives, or nothing where it fails: a look that is only for the record.
template <typename Look>
auto IfItCan(Look look) -> std::optional<decltype(look())> {
    try {
        return look();
    } catch (const Failure&) {
        return std::nullopt;
    }
}

/// Whether a power cut may leave a part of what is written there over other bytes. Disks write a
/// block of this size whole or not at all.
bool MayTear(std::uint64_t begin, std::uint64_t end) {
    constexpr std::uint64_t Block = 512;
    return begin < end && begin / Block != (end - 1) / Block;
}

}  // namespace

std::int64_t JournalledFiles::ExactTimeOf(std::string_view path) {
    if (!keeping_.exactTimeOf) return 0;
    return IfItCan([&] { return keeping_.exactTimeOf(path); }).value_or(0);
}

std::optional<FileContent> JournalledFiles::LookOf(std::string_view path) {
    const auto entry = IfItCan([&] { return files_.GetFile(path); });
    if (!entry) return std::nullopt;
    return FileContent{.size = entry->size, .modified = entry->modified};
}

std::optional<FileContent> JournalledFiles::ContentOf(std::string_view path) {
    std::optional<FileContent> content = LookOf(path);
    if (!content) return content;
    if (content->size > MostInRecord) {
        const Place place = NewPlace(path);
        files_.CopyFile(path, place.path, false);
        content->keptAs = place.shown;
        return content;
    }
    content->bytes = IfItCan([&] { return BytesOf(files_, path, 0, content->size); });
    if (content->bytes) content->hash = ContentHash(*content->bytes);
    return content;
}

JournalledFiles::Place JournalledFiles::NewPlace(std::string_view path) {
    const std::string number = std::to_string(records_.Last() + 1);
    hasKept_ = true;
    const std::string folder = keeping_.folder + '\\' + number;
    const std::string parent = keeping_.folder.substr(0, keeping_.folder.rfind('\\'));
    for (const std::string& needed : {parent, keeping_.folder, folder})
        if (!files_.FolderExists(needed)) files_.CreateFolder(needed);
    const std::string name(NameOf(path));
    return {folder + '\\' + name, keeping_.shownFolder + '/' + number + '/' + name};
}

bool JournalledFiles::IsMadeByRun(std::string_view folder) const {
    std::string key = KeyOf(folder);
    while (!madeFolders_.contains(key)) {
        const std::size_t slash = key.rfind('\\');
        if (slash == std::string::npos) return false;
        key.resize(slash);
    }
    return true;
}

void JournalledFiles::CreateFolder(std::string_view path) {
    records_.Do(ChangeOf(ChangeKind::FolderMade, path), [&] { files_.CreateFolder(path); });
    madeFolders_.insert(KeyOf(path));
}

void JournalledFiles::CopyFile(std::string_view from, std::string_view to, bool overwrite) {
    FileChange change = ChangeOf(ChangeKind::Copied, from, to);
    if (overwrite) change.before = ContentOf(to);
    change.after = LookOf(from);
    const bool isDestroying = change.before.has_value();
    records_.Do(std::move(change), [&] {
        if (isDestroying) records_.MakeDurable();
        files_.CopyFile(from, to, overwrite);
    });
}

void JournalledFiles::CopyFolder(std::string_view from, std::string_view to) {
    records_.Do(ChangeOf(ChangeKind::FolderCopied, from, to), [&] { files_.CopyFolder(from, to); });
    madeFolders_.insert(KeyOf(to));
}

void JournalledFiles::DeleteFile(std::string_view path) {
    if (IsScratch(path)) return files_.DeleteFile(path);
    FileChange change = ChangeOf(ChangeKind::Deleted, path);
    const auto place = keeping_.placeOfDeleted ? keeping_.placeOfDeleted(path) : std::nullopt;
    if (place) {
        change.before = LookOf(path);
        if (change.before) change.before->keptAs = *place;
    } else {
        change.before = ContentOf(path);
    }
    records_.Do(std::move(change), [&] {
        // What is moved away is still there, and its place tells what it was.
        if (!place) records_.MakeDurable();
        files_.DeleteFile(path);
    });
}

void JournalledFiles::DeleteFolder(std::string_view path) {
    FileChange change = ChangeOf(ChangeKind::FolderDeleted, path);
    change.before.emplace();
    if (IsScratch(path) || IsMadeByRun(path) || !files_.FolderExists(path)) {
        return records_.Do(std::move(change), [&] { files_.DeleteFolder(path); });
    }
    const Place place = NewPlace(path);
    change.before->keptAs = place.shown;
    records_.Do(std::move(change), [&] { MoveAway(path, place.path); });
}

/// By way of a copy where the place is on another volume.
void JournalledFiles::MoveAway(std::string_view folder, const std::string& place) {
    const auto move = [&] {
        files_.MoveFolder(folder, place);
        return true;
    };
    if (IfItCan(move)) return;
    files_.CopyFolder(folder, place);
    files_.DeleteFolder(folder);
}

void JournalledFiles::Discard(std::string_view path) {
    records_.Do(ChangeOf(ChangeKind::Discarded, path), [&] { files_.Discard(path); });
    madeFolders_.erase(KeyOf(path));
}

std::uint64_t JournalledFiles::PlanMove(std::string_view from, std::string_view to,
                                        std::uint64_t group) {
    FileChange change = ChangeOf(ChangeKind::Moved, from, to);
    change.before = LookOf(from);
    change.group = group;
    return records_.Plan(std::move(change));
}

void JournalledFiles::MoveFile(std::string_view from, std::string_view to) {
    const auto announced = announced_.extract({std::string(from), std::string(to)});
    const std::uint64_t number = announced ? announced.mapped() : PlanMove(from, to, 0);
    records_.Carry(number, [&] {
        // Nobody could tell the file's old name.
        records_.MakeDurable();
        files_.MoveFile(from, to);
    });
}

/// Records those as failed that have not been begun.
class JournalledFiles::Announced : public AnnouncedMoves {
  public:
    explicit Announced(JournalledFiles& files) : files_(files) {}
    Announced(const Announced&) = delete;
    Announced& operator=(const Announced&) = delete;
    ~Announced() override {
        while (!files_.announced_.empty()) {
            const auto announced = files_.announced_.extract(files_.announced_.begin());
            files_.records_.Failed(announced.mapped(), "it was not begun");
        }
    }

  private:
    JournalledFiles& files_;
};

std::unique_ptr<AnnouncedMoves> JournalledFiles::Announce(std::span<const FileMove> moves) {
    auto answer = std::make_unique<Announced>(*this);
    const std::uint64_t group = records_.Last() + 1;
    for (const FileMove& move : moves)
        announced_[{move.from, move.to}] = PlanMove(move.from, move.to, group);
    return answer;
}

void JournalledFiles::MoveFolder(std::string_view from, std::string_view to) {
    records_.Do(ChangeOf(ChangeKind::FolderMoved, from, to), [&] { files_.MoveFolder(from, to); });
    if (madeFolders_.erase(KeyOf(from)) > 0) madeFolders_.insert(KeyOf(to));
}

FileChange JournalledFiles::Written(std::string_view path, FileContent content) {
    FileChange change = ChangeOf(ChangeKind::Written, path);
    change.before = ContentOf(path);
    // Of what there was before it is enough to know that it is still the same.
    if (!change.before || change.before->hash == content.hash) content.bytes.reset();
    change.after = std::move(content);
    return change;
}

std::unique_ptr<TextWriter> JournalledFiles::Journalled(std::unique_ptr<TextWriter> writer,
                                                        std::string_view path) {
    if (IsScratch(path)) return writer;
    return std::make_unique<JournalledText>(std::move(writer), records_,
                                            [this, name = std::string(path)](FileContent content) {
                                                return Written(name, std::move(content));
                                            });
}

std::unique_ptr<TextWriter> JournalledFiles::CreateText(std::string_view path) {
    return Journalled(files_.CreateText(path), path);
}

std::unique_ptr<TextWriter> JournalledFiles::CreateOwnText(std::string_view path) {
    return Journalled(files_.CreateOwnText(path), path);
}

std::unique_ptr<TextBatch> JournalledFiles::CreateTexts(TextBatch::Done done) {
    return std::make_unique<JournalledBatch>(
        files_, records_,
        [this](std::string_view path, FileContent content) {
            return Written(path, std::move(content));
        },
        std::move(done));
}

void JournalledFiles::WriteEnd(std::string_view path, const FileEnd& seen, std::uint64_t position,
                               std::span<const std::uint8_t> bytes) {
    FileChange change = ChangeOf(ChangeKind::EndWritten, path);
    change.position = position;
    change.before = FileContent{.size = seen.size, .exactTime = ExactTimeOf(path)};
    change.after = FileContent{.size = position + bytes.size(),
                               .bytes = std::string(bytes.begin(), bytes.end())};
    const std::uint64_t seenFrom = seen.size - seen.bytes.size();
    if (position >= seen.size) {
        change.before->bytes.emplace();
    } else if (position >= seenFrom) {
        change.before->bytes.emplace(
            seen.bytes.begin() + static_cast<std::ptrdiff_t>(position - seenFrom),
            seen.bytes.end());
    } else {
        change.before->bytes =
            IfItCan([&] { return BytesOf(files_, path, position, seen.size - position); });
    }
    const std::uint64_t end = std::max(seen.size, position + bytes.size());
    records_.Do(std::move(change), [&] {
        if (MayTear(position, end)) records_.MakeDurable();
        records_.MakeDurableIfMany();
        files_.WriteEnd(path, seen, position, bytes);
    });
}

void JournalledFiles::ReplaceBytes(std::string_view path, const FilePiece& seen,
                                   std::span<const std::uint8_t> bytes) {
    const auto textOf = [](std::span<const std::uint8_t> piece) {
        return std::string(piece.begin(), piece.end());
    };
    FileChange change = ChangeOf(ChangeKind::PieceReplaced, path);
    change.position = seen.position;
    change.before = FileContent{.size = seen.size, .exactTime = ExactTimeOf(path)};
    const std::string old = textOf(seen.bytes), fresh = textOf(bytes);
    change.after =
        FileContent{.size = seen.size - old.size() + fresh.size(), .hash = ContentHash(fresh)};
    const bool isInPlace = old.size() == fresh.size() && fresh.size() <= MostInPlace;
    if (isInPlace) change.after->bytes = fresh;
    if (old.size() <= MostInRecord) {
        change.before->bytes = old;
    } else {
        const Place place = NewPlace(path);
        const std::unique_ptr<TextWriter> writer = files_.CreateText(place.path);
        writer->WriteBytes(old);
        writer->Close();
        change.before->keptAs = place.shown;
    }
    records_.Do(std::move(change), [&] {
        // A copy of the whole file costs more than this.
        if (!isInPlace || MayTear(seen.position, seen.position + old.size()))
            records_.MakeDurable();
        records_.MakeDurableIfMany();
        files_.ReplaceBytes(path, seen, bytes);
    });
}

}  // namespace quillon
