#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/database.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {

/// New names for sound files of one album folder. A file's row goes with it, so that play counts
/// and ratings stay with the song. Rows change first and durably: a run that is killed in between
/// leaves files that the next run renames again, never files without their rows.
///
/// All is done in `Commit`, but the questions are answered as if each file had its new name at
/// once.
class Renames {
  public:
    enum class RowTitle {
        Keep,
        RoundBrackets,  ///< square brackets in the row's title become round ones, too
    };

    /// `tracks` is a cursor over the table. All must outlive this object.
    Renames(Run& run, RecordSet& tracks, Steps& steps)
        : run_(run), tracks_(tracks), steps_(steps) {}

    /// Notes a rename to a path that is free; its number, from 0.
    std::size_t Add(std::string from, std::string to, RowTitle title);

    /// Whether a file of this path exists.
    bool Exists(std::string_view path) const;

    /// Deletes a file as a duplicate of another; its row becomes that of the other file if this has
    /// none. Whether it could be deleted; a failure is logged.
    bool DeleteDuplicate(int step, const std::string& path, std::string_view of);

    /// Renames all files, in the order in which they were added; whether each succeeded. A file
    /// that cannot be renamed is logged and keeps its name and its row.
    std::vector<bool> Commit();

  private:
    /// A row's values before a rename.
    struct OldRow {
        std::int64_t id;
        std::string soundFile, title;
    };
    struct Rename {
        std::string from, to;
        RowTitle title;
        std::vector<OldRow> rows = {};
        bool possible = true;
    };

    void TakeRowAlong(Rename& rename);
    void Write(std::int64_t id, const std::string& soundFile, const std::string& title);
    void PutBack(const Rename& rename);

    Run& run_;
    RecordSet& tracks_;
    Steps& steps_;
    std::vector<Rename> renames_;
    std::unordered_set<std::string> left_, taken_;  ///< paths in lower case
};

/// The text with round brackets for square ones.
std::string RoundBrackets(std::string_view text);

}  // namespace quillon
