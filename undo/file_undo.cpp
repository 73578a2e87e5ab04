#include "undo/file_undo.h"

#include <algorithm>
#include <memory>

#include "changes/file_content.h"
#include "platform/basic_text.h"
#include "platform/windows_path.h"
#include "undo/refusals.h"

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

Outcome NameTaken(std::string_view path) {
    return Outcome::Refusal("there is another " + std::string(path) + " now");
}

}  // namespace

Outcome FileUndo::TakeBack(const FileChange& change) {
    switch (change.kind) {
        case Kind::Written:
            return PutContentBack(change.path, change);
        case Kind::Copied:
            return PutContentBack(change.target, change);
        case Kind::EndWritten:
        case Kind::PieceReplaced:
            return PieceUndo(files_, hostFolder_).TakeBack(change, writes_);
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
            return MoveFolderBack(KeptPath(hostFolder_, *change.before), change.path);
        case Kind::Discarded:
            // An undo discards folders that the run before it has made.
            if (!change.takesBack.empty()) return MakeFolderAgain(change.path);
            break;
    }
    // What was discarded had been made by the same run: that is taken back, too, and is so already.
    return WasSo;
}

Outcome FileUndo::MakeFolderAgain(const std::string& path) {
    if (files_.FolderExists(path)) return WasSo;
    MakeFoldersFor(path);
    files_.CreateFolder(path);
    return {};
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
    if (change.before->keptAs.empty() || !files_.FileExists(KeptPath(hostFolder_, *change.before)))
        return NotKept(path);
    if (!Holds(files_, KeptPath(hostFolder_, *change.before), *change.before))
        return ChangedSince(KeptPath(hostFolder_, *change.before));
    if (isThere) files_.DeleteFile(path);
    return BringKeptBack(path, *change.before);
}

Outcome FileUndo::BringKeptBack(const std::string& path, const FileContent& before) {
    const std::string kept = KeptPath(hostFolder_, before);
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
    if (!change.before->keptAs.empty() && files_.FileExists(KeptPath(hostFolder_, *change.before)))
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

void FileUndo::MakeFoldersFor(std::string_view path) {
    const std::string_view folder = ParentFolder(path);
    if (folder.empty() || IsDriveOrShare(folder) || files_.FolderExists(folder)) return;
    MakeFoldersFor(folder);
    files_.CreateFolder(folder);
}

}  // namespace quillon
