#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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
    /// What is known of a file.
    struct Row {
        std::uint64_t key = 0;  ///< the hash of its path
        std::uint64_t size = 0;
        std::int64_t time = 0;     ///< last modified, in seconds
        std::int64_t changed = 0;  ///< as `FileEntry` has it
        std::size_t textsAt = 0;   ///< in `texts_`
        std::uint32_t textsSize = 0;
        std::optional<std::uint8_t> genreNumber = {};
        EmbeddedArt art = EmbeddedArt::Unknown;
        bool isKept = false;
    };
    /// Where to find a row; most others are told apart without a look at theirs.
    struct Slot {
        std::uint32_t check = 0;  ///< the upper half of its key
        std::uint32_t row = 0;    ///< its place, counted from 1; 0: none
    };

    enum class IsKept { No };
    KnownTags(Run& run, IsKept) : run_(run), isKept_(false) {}
    std::string Path() const;
    std::uint64_t KeyOf(std::string_view path);
    Slot& SlotOf(std::uint64_t key);
    /// Null where there is none.
    Row* FindRow(std::uint64_t key);
    /// A new one where there is none; valid until the next one is made.
    Row& RowFor(std::uint64_t key);
    void Index();
    /// Makes the row of this place, counted from 1, one that is found.
    void Enter(std::size_t place);
    void SetTexts(Row& row, std::string_view texts);
    std::string_view TextsOf(const Row& row) const {
        return std::string_view(texts_).substr(row.textsAt, row.textsSize);
    }

    Run& run_;
    bool isKept_ = true;
    // Memory that is filled from its beginning to its end: the rows are found, and at last written,
    // in the order in which they came.
    std::vector<Row> rows_;
    std::string texts_;        ///< those of all rows, one behind the other
    std::vector<Slot> slots_;  ///< as many as a power of two, or none; at most half of them used
    bool isChanged_ = false;
    // What is not known of a file is set right after it was looked for.
    std::string lastPath_;
    std::uint64_t lastKey_ = HashOfNothing;
};

/// The path of that file.
std::string KnownTagsPath(std::string_view database);

}  // namespace quillon
