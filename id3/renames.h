#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "library/library.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {

/// New names for sound files of one album folder. A file's row goes with it, so that play counts
/// and ratings stay with the song.
///
/// Names may be passed on from file to file. A rename waits until its name is free; then its row
/// changes, durably, and then the file. So at any moment a row has the path of its own file or one
/// that no file has: a run that is killed leaves files that the next one renames again, and never a
/// row to another song. Where names are exchanged in a circle, one file gets a temporary one
/// (id3/file_names.h).
class Renames {
  public:
    enum class RowTitle {
        Keep,
        RoundBrackets,  ///< square brackets in the row's title become round ones, too
    };

    /// Both must outlive this object.
    Renames(Run& run, Steps& steps) : run_(run), steps_(steps) {}

    /// Notes a rename; its number, from 0. No two files may be given one path.
    std::size_t Add(std::string from, std::string to, RowTitle title);

    /// Notes that the file with this path keeps it: files that want the path never get it. Returns
    /// its number.
    std::size_t Keep(std::string path);

    /// Renames all files, those first whose names are free. A file that cannot be renamed is logged
    /// and keeps its name and its row; one that waits for that name does so, too.
    void Commit();

    bool IsDone(std::size_t number) const { return renames_[number].state == State::Done; }
    /// Where the file is now.
    const std::string& PathOf(std::size_t number) const { return renames_[number].from; }

  private:
    enum class State { Waits, Failed, Done };
    struct Rename {
        std::string from;  ///< where the file is
        std::string to;
        RowTitle title;
        std::string first;  ///< where it was in the beginning
        State state = State::Waits;
    };
    /// A row's values before a move.
    struct OldRow {
        TrackRow* row;
        std::string soundFile, title;
    };
    /// One file's way to a path that is free.
    struct Move {
        std::string from, to;
        RowTitle title = RowTitle::Keep;
        std::vector<OldRow> rows = {};  ///< in the order in which they were changed
        std::optional<OldRow> vanished = {};
        bool isDone = false;
    };

    const Rename* HolderOf(const std::string& path) const;
    std::vector<std::size_t> Ready();
    bool StepAside();
    void StepBack();
    void Finish(std::size_t number, const Move& move);

    void Carry(std::span<Move> moves);
    bool CarryOne(std::string from, std::string to);
    void LeadRow(Move& move);
    void LetVanishedGo(const Move& move);
    void Write(TrackRow& row, const std::string& soundFile, const std::string& title);
    void PutBack(const Move& move);

    Run& run_;
    Steps& steps_;
    std::vector<Rename> renames_;
    std::unordered_map<std::string, std::size_t> holders_;  ///< by present path in lower case
};

}  // namespace quillon
