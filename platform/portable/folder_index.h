#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/portable/local_file.h"

namespace quillon {

/// The names in local folders, found without regard to letter case. A folder is read once and again
/// only after another program has changed it; what this process changes is noted instead.
class FolderIndex {
  public:
    /// The name that an entry of the folder really has; of several that differ in letter case alone
    /// the first by code. Empty when there is none; nothing when there is no such folder. Failure
    /// when the folder is there and cannot be read.
    std::optional<std::string> Find(const std::string& folder, std::string_view name);

    /// This process has just made or removed an entry, given by its full local path. A removed
    /// folder may stand for everything that was below it.
    void Added(const std::string& path);
    void Removed(const std::string& path);
    /// It has made something beside this path that no look-up is to find.
    void MadeBeside(const std::string& path);

  private:
    /// What changes when entries of a folder do.
    struct Stamp {
        FileIdentity identity;
        FileTime modified, changed;
        bool operator==(const Stamp&) const = default;
    };
    struct Entry {
        std::string name;
        bool hasTwin = false;  ///< another name differs in letter case alone
    };
    struct Listing {
        Stamp stamp;
        std::unordered_map<std::string, Entry> names;  ///< by upper case
        void Add(std::string name);
    };

    /// The system's error number, 0 when the stamp was read.
    static int ReadStamp(const std::string& folder, Stamp& stamp);
    static std::optional<Listing> ReadNames(const std::string& folder);

    std::unordered_map<std::string, Listing> listings_;
};

}  // namespace quillon
