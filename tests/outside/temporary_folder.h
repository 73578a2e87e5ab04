#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace outside {

/// Copies a file; one that has the copy's name already is replaced, which not every runtime's
/// copy_file() knows how to do.
void CopyOver(const std::filesystem::path& original, const std::filesystem::path& copy);

/// All bytes of a file. Throws std::runtime_error where there is none.
std::string ContentOf(const std::filesystem::path& file);

/// An empty folder of a test's or measurement's own, to fill and to look at; removed with all it
/// holds, even where permissions have been taken away.
class TemporaryFolder {
  public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    const std::filesystem::path& Path() const { return path_; }
    std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

    /// Makes a folder, and those above it. Gives its path.
    std::filesystem::path MakeFolder(std::string_view name) const;

    /// Makes a file or replaces it, and makes the folders above it. Gives its path.
    std::filesystem::path MakeFile(std::string_view name, std::string_view content = "") const;

    /// A writable copy of a file, by the same name.
    std::filesystem::path CopyOf(const std::filesystem::path& original) const;

    /// Throws std::runtime_error where there is no such file.
    std::string Content(std::string_view name) const;

    /// Whether there is anything by that name; a link that leads nowhere counts.
    bool Exists(std::string_view name) const;

    /// How many entries a folder has, hidden ones too.
    std::size_t Count(std::string_view name = "") const;

  private:
    std::filesystem::path path_;
};

}  // namespace outside
