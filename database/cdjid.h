#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillon {

class Run;

/// Hands out identifiers for new albums: the fixed prefix and a four-digit number one above the
/// highest in use; 9999 is followed by 0000. The highest is asked for once and then kept in hand,
/// since that question costs a pass over all albums.
class CdjidSequence {
  public:
    explicit CdjidSequence(Run& run) : run_(run) {}

    /// The next identifier; the same one again until Taken() is told of it. "" after a failure,
    /// which is logged with the album that it is for.
    std::string GetNextCDJID(std::string_view album = {});

    /// An album row with this identifier has been stored.
    void Taken(const std::string& cdjid);

  private:
    std::string After(const std::string& highest);

    Run& run_;
    bool asked_ = false;
    std::optional<std::string> highest_;  ///< nothing: no album carries the prefix yet
};

/// The next identifier for a single new album.
std::string GetNextCDJID(Run& run);

}  // namespace quillon
