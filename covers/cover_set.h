#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quillon {

class Run;

/// A cover image that was found on disk.
struct Cover {
    std::string name;        ///< file name with its extension
    std::string path;        ///< full path
    bool processed = false;  ///< an album that already points at it has been met
};

/// The covers of one verification in the order in which they were found, and their names. Of
/// several covers of one name the first is found.
class CoverSet {
  public:
    void Add(std::string name, std::string path);

    /// Not every image could be looked at: from not finding one nothing may be concluded.
    void NoteUnseen() { isWhole_ = false; }
    bool IsWhole() const { return isWhole_; }

    /// A scanned folder holds no image at all, like the mount point of a drive that is away.
    void NoteEmptyFolder(std::string_view folder);
    const std::vector<std::string>& EmptyFolders() const { return emptyFolders_; }
    /// Whether an image of this path would lie in such a folder.
    bool IsInEmptyFolder(std::string_view path) const;

    bool IsEmpty() const { return covers_.empty(); }
    std::size_t Size() const { return covers_.size(); }
    const std::vector<Cover>& InOrder() const { return covers_; }

    /// The cover of this name, whatever its letter case; null when there is none.
    Cover* FindName(std::string_view name);
    /// The same with apostrophes left out on both sides.
    Cover* FindWithoutApostrophes(std::string_view name);

  private:
    using Index = std::unordered_map<std::string, std::size_t>;
    Cover* Find(const Index& index, const std::string& key);

    std::vector<Cover> covers_;
    bool isWhole_ = true;
    std::vector<std::string> emptyFolders_;    ///< with a backslash at the end
    Index byName_, byNameWithoutApostrophes_;  ///< positions of the first of each name
};

/// The cover that an album or another image of this name belongs to, null when there is none: by
/// its exact name, else with apostrophes left out. A name with an apostrophe is only ever looked
/// for in the second way. Failures are logged.
Cover* findExactRecord(Run& run, CoverSet& covers, std::string_view name);

}  // namespace quillon
