#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "library/text_rules.h"
#include "tags/sound_print.h"

namespace quillon {

/// A track whose file is not where it was.
struct LostSong {
    std::size_t album = 0;                    ///< a number of the album that it belongs to
    std::string title;                        ///< as its row has it
    std::int64_t seconds = -1;                ///< likewise; -1 where that is not known
    std::optional<SoundPrint> print = {};     ///< where it is known
    std::optional<std::uint64_t> whole = {};  ///< likewise
};

/// A file that no track has.
struct FoundSong {
    std::size_t album = 0;                 ///< a number of the album that it would belong to
    std::string title;                     ///< as its row would have it
    std::optional<SoundPrint> print = {};  ///< where it could be read
};

struct LostAlbum {
    std::size_t tracks = 0;                    ///< rows in it, those that are not lost included
    std::optional<std::size_t> sameName = {};  ///< the found album of the same names
};

/// What is to be found out about.
struct MoveQuestion {
    std::vector<LostSong> lost;
    std::vector<LostAlbum> lostAlbums;
    std::vector<FoundSong> found;
    /// Of a found song; asked for where it is needed, since its file is read for that.
    std::function<std::int64_t(std::size_t)> secondsOf;
    std::function<std::optional<std::uint64_t>(std::size_t)> wholeOf;
};

struct MoveAnswer {
    /// The found song that each lost one is.
    std::vector<std::optional<std::size_t>> becomes;

    /// Songs that sound the same, of which nobody can tell which is which.
    struct Twins {
        std::vector<std::size_t> lost, found;
    };
    std::vector<Twins> twins;
};

/// Says which lost songs are which found ones. The same sound is the same song where there is no
/// other candidate on either side. Else, and where a sound is not known, it is the same title and
/// length in an album to which most of the other tracks of its album have gone.
MoveAnswer MatchMoves(const TextRules& rules, const MoveQuestion& question);

}  // namespace quillon
