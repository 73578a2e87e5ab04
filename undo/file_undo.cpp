#include "undo/file_undo.h"

#include <algorithm>
#include <memory>
#include <span>
#include <vector>

#include "changes/file_content.h"
#include "platform/basic_text.h"
#include "platform/windows_path.h"

namespace quillon {
namespace {

using Kind = FileChange::Kind;

const Outcome WasSo{.state = Outcome::State::WasSo};

std::string_view NameIn(std::string_view path) {
    return path.substr(path.rfind('\\') + 1);
}

bool IsDriveOrShare(std::string_view path) {
    return path.ends_with(':') || (path.starts_with("\\\\") && std::ranges::count(path, '\\') <= 3);
}

std::span<const std::uint8_t> AsBytes(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

Outcome ChangedSince(std::string_view path) {
    return Outcome::Refusal(std::string(path) + " has been changed since");
}

Outcome NotKept(std::string_view path) {
    return Outcome::Refusal("what " + std::string(path) + " was has not been kept");
}

Outcome NameTaken(std::string_view path) {
    return Outcome::Refusal("there is another " + std::string(path) + " now");
}

Outcome Gone(std::string_view path) {
    return Outcome::Refusal(std::string(path) + " is not there any more");
}

/// Whether bytes are what is left where `written` came over `old` in part, its beginning first.
bool IsTorn(std::string_view bytes, std::string_view old, std::string_view written) {
    const auto same = std::ranges::mismatch(bytes, written).in1 - bytes.begin();
    const auto begun = static_cast<std::size_t>(same);
    return bytes.substr(begun) == (begun < old.size() ? old.substr(begun) : "");
}

}  // namespace

Outcome FileUndo::TakeBack(const FileChange& change) {
    switch (change.kind) {
        case Kind::Written:
            return PutContentBack(change.path, change);
        case Kind::Copied:
            return PutContentBack(change.target, change);
        case Kind::EndWritten:
            return PutEndBack(change);
        case Kind::PieceReplaced:
            return PutPieceBack(change);
        case Kind::Moved:
            return EqualIgnoringCase(change.path, change.target) ? SpellBack(change)
                                                                 : MoveBack(change);
        case Kind::Deleted:
            return PutDeletedBack(change);
        case Kind::FolderMade:
        case Kind::FolderCopied:
            return TakeFolderAway(change);
        case Kind::FolderMoved:
            return MoveFolderBack(change.target, change.path);
        case Kind::FolderDeleted:
            // Of those that a run itself has made nothing is kept.
            if (!change.before || change.before->keptAs.empty()) return WasSo;
            return MoveFolderBack(KeptPath(*change.before), change.path);
        case Kind::Discarded:
            break;
    }
    // What was discarded had been made by the same run: that is taken back, too, and is so already.
    return WasSo;
}

/// A whole file, written or copied to this path.
Outcome FileUndo::PutContentBack(const std::string& path, const FileChange& change) {
    if (!change.before) {
        if (!files_.FileExists(path)) return WasSo;
        if (!change.after || !Holds(files_, path, *change.after)) return ChangedSince(path);
        files_.DeleteFile(path);
        return {};
    }
    if (Holds(files_, path, *change.before)) return WasSo;
    const bool isThere = files_.FileExists(path);
    if (isThere && !(change.after && Holds(files_, path, *change.after))) return ChangedSince(path);
    if (change.before->bytes) {
        if (!isThere) return Gone(path);
        return WriteOver(path, *change.before, *change.after);
    }
    if (change.before->keptAs.empty() || !files_.FileExists(KeptPath(*change.before)))
        return NotKept(path);
    if (!Holds(files_, KeptPath(*change.before), *change.before))
        return ChangedSince(KeptPath(*change.before));
    if (isThere) files_.DeleteFile(path);
    return BringKeptBack(path, *change.before);
}

Outcome FileUndo::BringKeptBack(const std::string& path, const FileContent& before) {
    const std::string kept = KeptPath(before);
    if (!Holds(files_, kept, before)) return ChangedSince(kept);
    MakeFoldersFor(path);
    files_.MoveFile(kept, path);
    return {};
}

Outcome FileUndo::WriteOver(const std::string& path, const FileContent& before,
                            const FileContent& after) {
    const std::unique_ptr<TextWriter> writer = files_.CreateText(path);
    writer->WriteBytes(*before.bytes);
    if (before.modified) writer->SetModified(*before.modified);
    if (!writer->CloseIf([&] { return Holds(files_, path, after); })) return ChangedSince(path);
    return {};
}

/// The bytes behind the position are a tag. It comes back, or the file becomes as short as it was.
Outcome FileUndo::PutEndBack(const FileChange& change) {
    if (!files_.FileExists(change.path)) return Gone(change.path);
    if (!change.before || !change.before->bytes || !change.after || !change.after->bytes)
        return NotKept(change.path);
    const std::unique_ptr<BinaryReader> reader = files_.OpenBinary(change.path);
    const std::uint64_t size = reader->Size();
    if (size < change.position) return ChangedSince(change.path);
    reader->SetPosition(change.position);
    const std::string &before = *change.before->bytes, &after = *change.after->bytes;
    const std::size_t most = std::max(before.size(), after.size()) + 1;
    const std::vector<std::uint8_t> end = reader->Read(most);
    const std::string present(end.begin(), end.end());
    if (present == before) return WasSo;
    const bool getsShorter = before.size() < after.size();
    const bool isCut = getsShorter && present.empty();
    const bool isTorn = writes_ == Writes::PerhapsTorn &&
                        (IsTorn(present, before, after) || IsTorn(present, after, before));
    if (present != after && !isCut && !isTorn) return ChangedSince(change.path);
    // Bytes are only written up to the end or beyond, so the end goes first.
    if (getsShorter && !isCut)
        files_.WriteEnd(change.path, {.size = size, .bytes = end}, change.position, {});
    if (getsShorter && !before.empty()) {
        files_.WriteEnd(change.path, {.size = change.position, .bytes = {}}, change.position,
                        AsBytes(before));
    } else if (!getsShorter) {
        files_.WriteEnd(change.path, {.size = size, .bytes = end}, change.position,
                        AsBytes(before));
    }
    return {};
}

/// A piece of a file that was replaced: of a tag before the sound.
Outcome FileUndo::PutPieceBack(const FileChange& change) {
    if (!files_.FileExists(change.path)) return Gone(change.path);
    if (!change.before || !change.after) return NotKept(change.path);
    std::string before = change.before->bytes.value_or("");
    if (!change.before->keptAs.empty()) {
        const std::string kept = KeptPath(*change.before);
        if (!files_.FileExists(kept)) return NotKept(change.path);
        before = BytesOf(files_, kept);
    }
    const std::unique_ptr<BinaryReader> reader = files_.OpenBinary(change.path);
    const auto piece = [&](std::uint64_t count) {
        reader->SetPosition(change.position);
        return reader->Read(static_cast<std::size_t>(count));
    };
    const auto isThere = [&](const FileContent& content, std::uint64_t hash, std::uint64_t count) {
        if (reader->Size() != content.size) return false;
        const std::vector<std::uint8_t> bytes = piece(count);
        return ContentHash(std::string(bytes.begin(), bytes.end())) == hash;
    };
    if (isThere(*change.before, ContentHash(before), before.size())) return WasSo;
    const std::uint64_t count = change.after->size + before.size() - change.before->size;
    if (!isThere(*change.after, change.after->hash, count)) return ChangedSince(change.path);
    const FilePiece seen{
        .size = change.after->size, .position = change.position, .bytes = piece(count)};
    files_.ReplaceBytes(change.path, seen, AsBytes(before));
    return {};
}

Outcome FileUndo::MoveBack(const FileChange& change) {
    // A file keeps its content when it is moved, so either tells what it is.
    const std::optional<FileContent>& content = change.after ? change.after : change.before;
    const auto isIt = [&](const std::string& path) {
        return content ? Holds(files_, path, *content) : files_.FileExists(path);
    };
    const bool isBack = files_.FileExists(change.path);
    if (!files_.FileExists(change.target)) {
        if (!isBack) return Gone(change.target);
        return isIt(change.path) ? WasSo : ChangedSince(change.path);
    }
    if (!isIt(change.target))
        return isBack && content && isIt(change.path) ? WasSo : ChangedSince(change.target);
    if (isBack) return NameTaken(change.path);
    MakeFoldersFor(change.path);
    files_.MoveFile(change.target, change.path);
    return {};
}

/// Only letter case differs.
Outcome FileUndo::SpellBack(const FileChange& change) {
    if (!files_.FileExists(change.target)) return Gone(change.target);
    for (const FileEntry& entry : files_.FilesIn(ParentFolder(change.target))) {
        if (!EqualIgnoringCase(entry.name, NameIn(change.target))) continue;
        if (entry.name == NameIn(change.path)) return WasSo;
        if (entry.name != NameIn(change.target)) return ChangedSince(change.target);
        files_.MoveFile(change.target, change.path);
        return {};
    }
    return Gone(change.target);
}

Outcome FileUndo::PutDeletedBack(const FileChange& change) {
    if (!change.before) return NotKept(change.path);
    if (files_.FileExists(change.path))
        return Holds(files_, change.path, *change.before) ? WasSo : NameTaken(change.path);
    if (!change.before->keptAs.empty() && files_.FileExists(KeptPath(*change.before)))
        return BringKeptBack(change.path, *change.before);
    if (!change.before->bytes) return NotKept(change.path);
    MakeFoldersFor(change.path);
    const std::unique_ptr<TextWriter> writer = files_.CreateText(change.path);
    writer->WriteBytes(*change.before->bytes);
    if (change.before->modified) writer->SetModified(*change.before->modified);
    writer->Close();
    return {};
}

/// A folder that a run has made goes when nothing is in it any more.
Outcome FileUndo::TakeFolderAway(const FileChange& change) {
    const std::string& path = change.kind == Kind::FolderMade ? change.path : change.target;
    if (!files_.FolderExists(path)) return WasSo;
    const FolderNames names = files_.NamesIn(path);
    if (!names.files.empty() || !names.folders.empty())
        return Outcome::Refusal("there is something in " + path);
    files_.Discard(path);
    return {};
}

Outcome FileUndo::MoveFolderBack(const std::string& from, const std::string& to) {
    if (!files_.FolderExists(from)) return files_.FolderExists(to) ? WasSo : Gone(from);
    if (files_.FolderExists(to)) return NameTaken(to);
    MakeFoldersFor(to);
    files_.MoveFolder(from, to);
    return {};
}

std::string FileUndo::KeptPath(const FileContent& content) const {
    return hostFolder_ + '\\' + Replace(content.keptAs, "/", "\\");
}

void FileUndo::MakeFoldersFor(std::string_view path) {
    const std::string_view folder = ParentFolder(path);
    if (folder.empty() || IsDriveOrShare(folder) || files_.FolderExists(folder)) return;
    MakeFoldersFor(folder);
    files_.CreateFolder(folder);
}

}  // namespace quillon
