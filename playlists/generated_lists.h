#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "run/text_pool.h"

namespace quillon {

/// Which of the two families of generated playlists a file belongs to.
enum class GeneratedBy { Genre, Artist };

/// A file that is to be made.
struct GeneratedList {
    std::string of;                  ///< the genre or artist
    std::string stem;                ///< the name of its first part
    std::string name;                ///< without extension
    std::size_t begin = 0, end = 0;  ///< its lines
};

/// The playlists of one family as they are to be made. They are put together before any is written,
/// because a file may turn out to be replaced by a later one.
class GeneratedLists {
  public:
    GeneratedLists(GeneratedBy family, std::int32_t maxLength)
        : family_(family), maxLength_(maxLength) {}

    /// Begins the list of a genre or artist, named after it. A name that no file can have makes
    /// none: it is noted, and lines are dropped until the next list.
    void Begin(std::string_view genreOrArtist);

    /// Adds an entry. Where the file in hand is full, the list goes on in a next part, whose name
    /// has a number of three digits behind it. "Full" is one entry more than `maxLength`, as it has
    /// always been: people have set the limit by what they saw.
    void AddTrack(std::string_view cdjid, std::int32_t track);

    /// Adds a whole album; these lists are never split.
    void AddAlbum(std::string_view cdjid);

    GeneratedBy Family() const { return family_; }
    const std::vector<GeneratedList>& All() const { return lists_; }
    /// The genres or artists that no file can be named after.
    const std::vector<std::string>& Nameless() const { return nameless_; }

    /// What the file is to hold.
    std::string Text(const GeneratedList& list) const;

  private:
    struct Line {
        TextPool::Number cdjid;
        std::int32_t track;  ///< WholeAlbum for all of them
    };

    void AddLine(std::string_view cdjid, std::int32_t track);
    void BeginPart();

    GeneratedBy family_;
    std::int32_t maxLength_;
    std::vector<GeneratedList> lists_;
    std::vector<std::string> nameless_;
    std::vector<Line> lines_;
    TextPool cdjids_;
    std::int32_t part_ = 0, count_ = 0;
    bool hasName_ = false;
};

}  // namespace quillon
