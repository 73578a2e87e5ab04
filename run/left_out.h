#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace quillon {

/// Why no run takes a music file into the library: the layout has no place for it.
enum class LeftOutFor {
    DeeperFolder,  ///< it lies below an album folder; in the flat layout below a library folder
    NoAlbum,       ///< it lies in no album folder; in the flat layout its name has no "_"
    OtherType,     ///< it is no MP3 file
};

/// The music that a walk over the library has passed by: how much, and where the first of it is.
class LeftOut {
  public:
    static constexpr std::size_t MostPaths = 10;

    struct Group {
        std::size_t files = 0;
        std::size_t places = 0;          ///< the files themselves, or the folders they lie in
        std::vector<std::string> paths;  ///< of the first places, at most MostPaths
    };

    /// So many files at a path, which is that of the one file or of the folder they lie in.
    void Note(LeftOutFor reason, const std::string& path, std::size_t files = 1);

    const Group& Of(LeftOutFor reason) const {
        return groups_.at(static_cast<std::size_t>(reason));
    }

    /// How many files there are in all.
    std::size_t Total() const;

  private:
    static constexpr std::size_t Reasons = 3;
    std::array<Group, Reasons> groups_;
};

}  // namespace quillon
