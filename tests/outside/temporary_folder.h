#pragma once

#include <filesystem>

namespace outside {

/// An empty folder of a test's own; removed with all it holds, even where a test has taken away
/// permissions.
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
