#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

namespace quillon {

class Run;

/// Hands out identifiers for new albums: the fixed prefix and a four-digit number one above the
/// highest in use; 9999 is followed by 0000. Where that one is taken it is the lowest free one,
/// since albums that share an identifier are removed.
class CdjidSequence {
  public:
    explicit CdjidSequence(Run& run) : run_(run) {}

    /// The next identifier; the same one again until Taken() is called for it. "" after a failure,
    /// which is logged with its album; running out of numbers is one.
    std::string GetNextCDJID(std::string_view album = {});

    /// An album row with this identifier has been stored.
    void Taken(const std::string& cdjid);

  private:
    std::string Next();
    std::string After(const std::string& highest);
    bool IsInUse(const std::string& cdjid);
    std::string LowestFree();

    Run& run_;
    bool asked_ = false;
    std::optional<std::string> highest_;     ///< nothing: no album carries the prefix yet
    std::unordered_set<std::string> taken_;  ///< by this sequence, in lower case
    int lowest_ = 0;                         ///< no lower number is free
};

/// The next identifier for a single new album.
std::string GetNextCDJID(Run& run);

}  // namespace quillon
