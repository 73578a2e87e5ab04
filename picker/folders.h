#pragma once

#include <string>
#include <string_view>

namespace quillon {

class Files;

/// Makes a folder, and those above it, where they are missing.
void MakeFolders(Files& files, std::string_view folder);

/// What the name of a set of pages ends in while the set is being made.
constexpr std::string_view DraftEnding = ".new";

/// The folder of the pages while a new set is made. The new set grows in a folder beside the old
/// one and takes its place when it is complete, so that a build that fails or is stopped leaves the
/// old one as it was, and none of the old pages is left when one succeeds. Every operation may be
/// called at any time; what is not there needs no work.
class PageFolder {
  public:
    PageFolder(Files& files, std::string_view folder);

    /// Where the new set is made.
    const std::string& Draft() const { return draft_; }

    /// Puts right what a killed build has left.
    void Restore();

    /// The same, then starts an empty new set.
    void Start();

    /// Puts the old set aside and the new one in its place.
    void Publish();

    /// An old set that was put aside without a new one in its place goes back.
    void PutBack();

    /// Throws away what is neither in its place nor needed to put something back: the new set when
    /// it was not published, the old one when the new one was.
    void Clear();

  private:
    void Delete(const std::string& folder);

    Files& files_;
    std::string folder_;
    std::string draft_;
    std::string previous_;
};

}  // namespace quillon
