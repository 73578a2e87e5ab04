#pragma once

#include <string>

#include "changes/change.h"
#include "platform/files.h"
#include "undo/outcome.h"

namespace quillon {

/// Whether a run, or an undo of it, was interrupted, so that what it wrote over other bytes may
/// have come to the disk in part.
enum class Writes { Whole, PerhapsTorn };

/// How far a write in place has come: Partly where each byte is the old or the new one, Unknown
/// where others are there, or where the change was not one in place.
enum class Progress { NotBegun, Partly, Done, Unknown };

/// Takes back what was written over a part of a file: the tags at its beginning and its end.
class PieceUndo {
  public:
    /// `files` must outlive this object; `hostFolder` is what kept content lies below.
    PieceUndo(Files& files, std::string hostFolder)
        : files_(files), hostFolder_(std::move(hostFolder)) {}

    /// For EndWritten and PieceReplaced. Throws Failure; then nothing has changed, or what is left
    /// to do is done by another call.
    Outcome TakeBack(const FileChange& change, Writes writes);

    /// How far it has come, as the bytes that are there tell. Throws Failure.
    Progress ProgressOf(const FileChange& change);

  private:
    Outcome PutEndBack(const FileChange& change, Writes writes);
    Outcome PutPieceBack(const FileChange& change, Writes writes);

    Files& files_;
    std::string hostFolder_;
};

/// Where the content that a change has replaced lies: a Windows path.
std::string KeptPath(const std::string& hostFolder, const FileContent& content);

}  // namespace quillon
