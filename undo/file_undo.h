#pragma once

#include <string>
#include <string_view>

#include "changes/change.h"
#include "platform/files.h"
#include "undo/outcome.h"
#include "undo/piece_undo.h"

namespace quillon {

/// Takes changes of files back, one by one: the last one first. Each looks at what is there and
/// leaves alone what is neither as the change has left it nor as it was before.
class FileUndo {
  public:
    /// `hostFolder` is what kept files lie below: a Windows path. `files` must outlive this object.
    FileUndo(Files& files, std::string hostFolder, Writes writes = Writes::Whole)
        : files_(files), hostFolder_(std::move(hostFolder)), writes_(writes) {}

    /// Throws Failure; then nothing has changed, or what is left to do is done by another call.
    Outcome TakeBack(const FileChange& change);

  private:
    Outcome PutContentBack(const std::string& path, const FileChange& change);
    Outcome BringKeptBack(const std::string& path, const FileContent& before);
    Outcome WriteOver(const std::string& path, const FileContent& before, const FileContent& after);
    Outcome MoveBack(const FileChange& change);
    Outcome SpellBack(const FileChange& change);
    Outcome PutDeletedBack(const FileChange& change);
    Outcome TakeFolderAway(const FileChange& change);
    Outcome MakeFolderAgain(const std::string& path);
    Outcome MoveFolderBack(const std::string& from, const std::string& to);

    void MakeFoldersFor(std::string_view path);

    Files& files_;
    std::string hostFolder_;
    Writes writes_;
};

}  // namespace quillon
