#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/portable/file_handle.h"
#include "platform/portable/path_resolver.h"

namespace quillon {

/// A file of the site, open for reading. It stays the same file when its folder is replaced.
struct SiteFile {
    std::shared_ptr<const FileHandle> handle;
    std::string name;  ///< without its folder, as it is written on the disk
    std::uint64_t size = 0;

    /// The whole content.
    std::string Read() const;
};

/// The folder whose files the server may show. Names are found as on Windows, the exact one first.
/// Links are followed as long as what they lead to lies in the folder as well; only regular files
/// are ever opened. May be used from several threads at a time.
class SiteFolder {
  public:
    /// The folder need not exist yet.
    explicit SiteFolder(const std::filesystem::path& folder);

    /// Nothing when there is no such file in the folder, or it cannot be read. The names must be
    /// such as ParseWebAddress lets through.
    std::optional<SiteFile> Open(std::span<const std::string> names) const;

  private:
    bool Holds(const std::string& realPath) const;

    std::filesystem::path folder_;
    mutable std::mutex mutex_;  ///< for the resolver
    mutable PathResolver resolver_;
};

}  // namespace quillon
