#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace quillon {

/// Which local folder each Windows root stands for. Where the system has no drives of its own, `Z:`
/// is the local root "/" unless it is mapped; where it has, each root that is not mapped is itself.
class DriveTable {
  public:
    /// `baseFolder` (the host folder) is what relative local folders are relative to.
    explicit DriveTable(const std::filesystem::path& baseFolder);

    /// Lets a drive ("D", "D:") or share (`\\server\share`) stand for a local folder; the folder
    /// need not exist. Failure: InvalidProcedureCall for any other root or an empty folder.
    void Map(std::string_view root, const std::filesystem::path& folder);

    /// Gives the folder a drive letter of its own, from Y: downwards, when no Windows path leads to
    /// it. Failure: PathNotFound when no letter is left.
    void MakeReachable(const std::filesystem::path& folder);

    /// The local folder of a root, without a slash at its end ("" for "/"); letter case does not
    /// count. Nothing when the root is not mapped.
    std::optional<std::string> LocalFolder(std::string_view root) const;

    /// The Windows path of a local path, through the mapped folder nearest to it. Nothing when
    /// none leads there, or none in names that Windows can hold.
    std::optional<std::string> WindowsPathOf(const std::filesystem::path& local) const;

    /// Every mapped root, in upper case, with its local folder.
    const std::map<std::string, std::string>& Roots() const { return folders_; }

  private:
    std::string Absolute(const std::filesystem::path& folder) const;

    std::filesystem::path base_;
    std::map<std::string, std::string> folders_;
    mutable std::set<std::string> ownRoots_;  ///< of the computer, those that have been there
};

}  // namespace quillon
