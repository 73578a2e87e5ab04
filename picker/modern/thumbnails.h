#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "picker/modern/catalogue.h"

namespace quillon {

class Run;
class Steps;

/// The longer side of a thumbnail in pixels, which is also the largest size that pages show.
constexpr int ThumbnailSide = 320;

/// The folder of the thumbnails, inside that of the covers.
constexpr std::string_view ThumbnailFolderName = "thumbnails";

/// The thumbnails of all covers. One is called after its cover's name, size and time, so one that
/// is there is the right one, and browsers never show an old one for a new. A cover that cannot be
/// read as an image leaves a note instead, by which it is logged only once.
class ThumbnailFolder {
  public:
    /// `webCoverFolder` ends in a backslash and holds the covers already.
    ThumbnailFolder(Run& run, std::string_view webCoverFolder);

    /// Makes what is missing and gives the albums the names; those that have no cover, or one that
    /// is no image, get none. Stops early after an abort. Covers that cannot be read are logged
    /// through `steps`. Failure: thumbnails cannot be made or written.
    void Fill(Steps& steps, Catalogue& catalogue);

    /// Removes thumbnails and notes that the catalogue it was filled for does not need.
    void RemoveOthers();

  private:
    /// What is to become of a cover.
    struct Wanted {
        std::string cover;  ///< its name in the folder of the covers
        std::string name;   ///< of the thumbnail, without an ending
    };
    /// Those names by the covers.
    using Names = std::unordered_map<std::string, std::string>;

    void Make(Steps& steps, const std::vector<Wanted>& missing);
    void Give(const Names& nameOf, Catalogue& catalogue);
    std::string NameFor(const std::string& coverFile) const;
    bool IsStandIn(const std::string& coverFile) const;
    bool Has(const std::string& name) const { return present_.contains(name); }

    Run& run_;
    std::string covers_, folder_;
    bool hasOwnStandIn_;
    std::unordered_set<std::string> present_;  ///< names in the folder
    std::unordered_set<std::string> used_;
};

}  // namespace quillon
