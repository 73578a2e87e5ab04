#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/files.h"
#include "platform/host.h"

namespace quillon {

/// Kept because its way of reading and writing is a format of its own that the system's description
/// promises; runs read their settings through the host and write none.
///
/// A settings file held as a dictionary: read, looked up, changed and written back. Names of
/// sections and keys count without letter case; a saved file has them in upper case and sorted,
/// without the comments and blank lines it was read with.
///
/// It handles no failure of its own: whatever goes wrong reaches the caller.
class IniTool {
  public:
    enum class Diagnostics { Off, On };

    /// Both objects must outlive this one.
    IniTool(Files& files, Host& host) : files_(files), host_(host) {}

    /// Forgets what it held and reads a file; one that does not exist reads as empty. With
    /// diagnostics the host's log names a missing file and lines that are no entries.
    /// Failure: DuplicateKey for a section that stands twice in the file.
    void Load(std::string_view fileName, Diagnostics diagnostics = Diagnostics::Off);

    /// The value of a key, or `fallback` when the key is absent or its value empty.
    std::string Read(std::string_view section, std::string_view key,
                     std::string_view fallback) const;

    /// Removes an entry; does nothing when there is none.
    void Remove(std::string_view section, std::string_view key);

    /// The names of the sections as written, in the order of the file.
    std::vector<std::string> Headers() const;

    /// Takes every entry out.
    void Clear();

    /// Rewrites the file that was loaded last. Failure, before the file is touched: a section of
    /// more than 100 characters, a key of more than 65 or a value of more than 255.
    void Save() const;

    /// Writes every key with its item as a preformatted block of a web page.
    void DumpHashTable(TextWriter& out) const;

  private:
    struct Entry {
        std::string key;
        std::string item;
    };

    const std::string* Find(const std::string& key) const;
    void Add(std::string key, std::string_view item);
    void AddEntry(std::string_view section, std::string_view line, Diagnostics diagnostics);

    Files& files_;
    Host& host_;
    std::string fileName_;
    std::vector<Entry> entries_;                          ///< in the order of the file
    std::unordered_map<std::string, std::size_t> index_;  ///< key to position in `entries_`
};

}  // namespace quillon
