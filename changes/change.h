#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/content_hash.h"
#include "platform/database.h"
#include "platform/date_time.h"

namespace quillon {

/// What a run does, record by record in the order in which it happens. A journal is a list of
/// these; a preview makes the same list without doing any of it.
///
/// A run's stamp is the time at which it started, "2026-11-21_07-13-05", perhaps with "-2" behind
/// it.

/// Always the first record.
struct RunStarted {
    std::string stamp;
    std::string version;      ///< of the program
    std::string mode;         ///< as `Mode::what`, "" until it is known; "undo" for one
    std::string undoes = {};  ///< stamp of the run that an undo takes back; else ""
    bool operator==(const RunStarted&) const = default;
};

/// The mode is known only when the settings have been read.
struct ModeChosen {
    std::string mode;  ///< as `Mode::what`
    bool operator==(const ModeChosen&) const = default;
};

struct PhaseStarted {
    std::string name;                 ///< its caption
    std::chrono::milliseconds at{0};  ///< since the run's start
    bool operator==(const PhaseStarted&) const = default;
};

struct FieldChange {
    std::string field;
    Value before, after;
    bool operator==(const FieldChange&) const = default;
};

/// One row of a table. Journalled before the change can reach the disk.
struct RowChange {
    enum class Kind { Added, Changed, Removed };
    Kind kind = Kind::Changed;
    std::string table;
    /// What names the row: the fields of the table's primary key with their values before the
    /// change (Added: after it); of a table without one all fields.
    std::vector<std::pair<std::string, Value>> key;
    /// Changed: the fields that differ. Added (`before` is Null) and Removed (`after` is Null):
    /// those that are not Null.
    std::vector<FieldChange> fields;
    bool operator==(const RowChange&) const = default;
};

/// A date that rows of a table held, and another that they got for it, which none of them held
/// before. Journalled before the change can reach the disk.
struct DateReplaced {
    std::string table, field;
    DateTime before, after;
    std::uint64_t rows = 0;  ///< how many have held it
    bool operator==(const DateReplaced&) const = default;
};

/// All row changes so far are in the database file for good.
struct RowsSaved {
    bool operator==(const RowsSaved&) const = default;
};

/// What a file held before or after a change.
struct FileContent {
    std::uint64_t size = 0;  ///< bytes
    std::uint64_t hash = 0;  ///< `ContentHash` of all bytes; 0: not known, a large file
    std::optional<std::string> bytes =
        {};                   ///< of small files whose content matters: playlists, tags
    std::string keptAs = {};  ///< where the old content lies, below the host folder, with slashes
    std::optional<DateTime> modified = {};  ///< the file's time, where an undo must bring it back
    /// Before something is written in place: when the file was last modified, in nanoseconds since
    /// 1970 (UTC); 0: not known.
    std::int64_t exactTime = 0;
    bool operator==(const FileContent&) const = default;
};

/// One change of files or folders, journalled before it happens. Paths are Windows paths.
struct FileChange {
    enum class Kind {
        Written,     ///< a whole file; `before` is empty where there was none of that name
        EndWritten,  ///< the bytes from `position` on: a tag. `before` and `after` have bytes
        Copied,      ///< `path` to `target`; `before` is what `target` was
        Moved,       ///< `path` to `target`
        Deleted,     ///< `before` is what it was, kept or with its bytes
        Discarded,   ///< what the run itself had made is taken back
        FolderMade,
        FolderCopied,   ///< `path` to `target`
        FolderMoved,    ///< `path` to `target`
        FolderDeleted,  ///< `before->keptAs` is where it lies now, "" where it is gone for good
        /// A piece from `position` on. `before` has the piece's bytes, there or kept, and the size
        /// of the whole file; `after` that size and the hash of what took its place, with the bytes
        /// where they are written in place
        PieceReplaced,
    };
    std::uint64_t number = 0;  ///< counts a run's file changes from 1
    Kind kind = Kind::Written;
    std::string path;
    std::string target = {};
    std::uint64_t position = 0;  ///< EndWritten, PieceReplaced: bytes from the file's start
    std::optional<FileContent> before = {}, after = {};
    /// In an undo: the change that this one takes back, as the stamp of its run, "#" and its
    /// number. Else "".
    std::string takesBack = {};
    /// The number of the first of the changes that were recorded together, before any of them
    /// happened; 0 where this one was recorded alone.
    std::uint64_t group = 0;
    bool operator==(const FileChange&) const = default;
};

/// The number of the first change that may not have happened where this one is the last record of a
/// run that was cut off.
std::uint64_t FirstOfGroup(const FileChange& change);

/// Whether it is about a backup: those are no part of what a run does to a library.
bool IsOfDatedCopy(const FileChange& change);

/// Whether it is about what runs note for themselves beside the database.
bool IsOfOwnNotes(const FileChange& change);

/// The file change of this number did not come off; all is as it was before it.
struct FileChangeFailed {
    std::uint64_t number = 0;
    std::string reason;
    bool operator==(const FileChangeFailed&) const = default;
};

/// A record of the host's log.
struct LogLine {
    bool isError = false;
    std::string text;
    bool operator==(const LogLine&) const = default;
};

/// A write in place of a run that was killed: this run could not find out whether it has come to
/// the disk as a whole.
struct WriteLeft {
    std::string stamp;         ///< of the run that was killed
    std::uint64_t number = 0;  ///< of its change; 0: all of them
    bool operator==(const WriteLeft&) const = default;
};

/// Always the last record; missing after a kill.
struct RunEnded {
    std::string outcome;  ///< "completed", "nothing ran", "aborted", "failed"
    int status = 0;       ///< the program's exit status
    bool braked = false;  ///< whether the brake on loss held
    std::chrono::milliseconds duration{0};
    /// Of rows and files of the library, so that nobody has to count them; nothing where it is not
    /// known.
    std::optional<std::uint64_t> changes = {};
    std::uint64_t writesLeft = 0;  ///< how many `WriteLeft` there are
    bool operator==(const RunEnded&) const = default;
};

using ChangeRecord =
    std::variant<RunStarted, ModeChosen, PhaseStarted, RowChange, DateReplaced, RowsSaved,
                 FileChange, FileChangeFailed, LogLine, WriteLeft, RunEnded>;

/// Takes the records of a run as they come.
class ChangeSink {
  public:
    virtual ~ChangeSink() = default;

    /// The change may happen when this returns. Failure: it cannot be recorded (the disk is full),
    /// and must not happen.
    virtual void Note(const ChangeRecord& record) = 0;

    /// All records so far survive a power cut when this returns. Failure likewise. Called before
    /// changed rows reach the database file.
    virtual void MakeDurable() = 0;
};

}  // namespace quillon
