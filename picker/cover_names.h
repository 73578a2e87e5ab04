#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quillon {

/// The image that stands for a missing cover.
constexpr std::string_view PlaceholderName = "notfnd.jpg";

/// An image's file name made fit for web addresses: blanks and punctuation with a meaning there go,
/// slashes become hyphens, the usual accented letters lose their accents. All else stays.
std::string WebSafeName(std::string_view fileName);

/// A cover image and the file name that its copy is called after.
struct CoverImage {
    std::string path;
    std::string name;
};

/// A cover image and the name of its copy in the web cover folder.
struct CoverCopy {
    std::string source;  ///< full path
    std::string name;
    /// Another source has the same web-safe name, so that a copy that is there already, of the same
    /// size and time, may still be one of the other.
    bool contested = false;
};

/// Gives every image a name of its own: of those with the same web-safe name the first one in
/// order keeps it, the others get a number. "notfnd.jpg" belongs to no image, nor does the name of
/// an image that lies in the web cover folder itself.
class CoverNames {
  public:
    /// `webCoverFolder` ends in a backslash; `images` have full paths, each image once or more. Of
    /// several names of one image the first counts.
    CoverNames(std::string_view webCoverFolder, const std::vector<CoverImage>& images);

    /// All copies to be made, in the order of the sources, each image once.
    const std::vector<CoverCopy>& Copies() const { return copies_; }

  private:
    bool IsTaken(const std::string& name, const std::string& source) const;
    void Name(const CoverImage& image);

    std::string webCoverFolder_;
    std::unordered_map<std::string, std::size_t> bySource_;  ///< by lower-cased path
    std::unordered_map<std::string, std::size_t> byName_;    ///< by lower-cased name
    std::vector<CoverCopy> copies_;
};

}  // namespace quillon
