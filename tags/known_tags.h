#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/content_hash.h"
#include "platform/files.h"
#include "tags/tag.h"
#include "tags/tag_formats.h"

namespace quillon {

class Run;

/// What a file's tags of all kinds say together.
struct FoundTag {
    Tag tag;
    std::optional<std::uint8_t> genreNumber = {};  ///< in place of a genre's name
    EmbeddedArt art = EmbeddedArt::Unknown;

    bool operator==(const FoundTag&) const = default;
};

/// What the tags of music files say, kept from run to run in a file beside the database
/// ("<database>.tags"), so that a file that nobody has touched need not be opened again. A file is
/// the same by path, size, time and `FileEntry::changed`: a program that writes tags may keep size
/// and time, but not that.
class KnownTags {
  public:
    /// Reads the file; a damaged one is logged and made anew. Failure when it cannot be read.
    explicit KnownTags(Run& run);
    /// Nothing is known, and nothing will be kept.
    static std::shared_ptr<KnownTags> Nothing(Run& run);

    /// Nothing where the file is not known as it is now.
    std::optional<FoundTag> Find(const FileEntry& file);
    void Set(const FileEntry& file, const FoundTag& found);
    /// The file is there; what is known of it may be asked for in another run.
    void Keep(std::string_view path);

    /// Writes the file, where it would not be the same again. Throws Failure.
    void Save();
    /// The same without what nobody has asked for and nobody wants to keep.
    void SaveKept();

  private:
    struct Entry {
        std::uint64_t size = 0;
        std::int64_t time = 0;     ///< last modified, in seconds
        std::int64_t changed = 0;  ///< as `FileEntry` has it
        std::string texts;
        std::optional<std::uint8_t> genreNumber;
        EmbeddedArt art = EmbeddedArt::Unknown;
        bool isKept = false;
    };

    enum class IsKept { No };
    KnownTags(Run& run, IsKept) : run_(run), isKept_(false) {}
    std::string Path() const;
    std::uint64_t KeyOf(std::string_view path);

    Run& run_;
    bool isKept_ = true;
    std::unordered_map<std::uint64_t, Entry> entries_;  ///< by the hash of the path
    bool isChanged_ = false;
    // What is not known of a file is set right after it was looked for.
    std::string lastPath_;
    std::uint64_t lastKey_ = HashOfNothing;
};

/// The path of that file.
std::string KnownTagsPath(std::string_view database);

}  // namespace quillon
