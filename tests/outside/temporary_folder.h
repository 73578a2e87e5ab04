#pragma once

#include <filesystem>

namespace outside {

/// An empty folder of a test's or measurement's own; removed with all it holds, even where
/// permissions have been taken away.
class TemporaryFolder {
  public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    const std::filesystem::path& Path() const { return path_; }

  private:
    std::filesystem::path path_;
};

}  // namespace outside
