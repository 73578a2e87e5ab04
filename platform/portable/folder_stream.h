#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "platform/portable/local_file.h"

namespace quillon {

/// What an entry is, as far as its folder tells without a look at it.
enum class ListedKind { Unknown, File, Folder, Link, Other };

/// A local folder being read, closed with this object. Implemented in platform/posix and
/// platform/windows.
class FolderStream {
  public:
    FolderStream();  ///< of no folder
    FolderStream(FolderStream&&) noexcept;
    FolderStream& operator=(FolderStream&&) noexcept;
    FolderStream(const FolderStream&) = delete;
    FolderStream& operator=(const FolderStream&) = delete;
    ~FolderStream();

    /// False when the folder could not be opened; errno says why.
    explicit operator bool() const { return state_ != nullptr; }

    /// The next entry's name and kind, "." and ".." left out. Null at the end, with errno 0, or
    /// where the folder cannot be read on. Valid until the next call.
    const char* Next(ListedKind& kind);

    /// What is known of an entry, links followed: it was the one of this number, from 0 on, that
    /// Next() gave. Nothing, with errno set, where it cannot be looked at.
    std::optional<FileFacts> FactsOf(const char* name, std::size_t number) const;

    /// Whether the entry itself is there; errno says why not.
    bool IsThere(const char* name) const;

    /// A descriptor for reading a file of the folder without a look for the folder; -1 where it
    /// cannot be opened, with ENOENT or ENOTDIR where it may still be found in another way.
    int Open(const char* name) const;

  private:
    struct State;
    explicit FolderStream(std::unique_ptr<State> state);
    friend FolderStream OpenFolder(const std::string& folder);

    std::unique_ptr<State> state_;
};

FolderStream OpenFolder(const std::string& folder);

}  // namespace quillon
