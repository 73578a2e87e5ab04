#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/files.h"
#include "tags/tag.h"

namespace quillon {

/// Whether a file has a picture in its tag that can be its album's cover.
enum class EmbeddedArt {
    Unknown,  ///< nobody has looked
    None,
    Promised,  ///< as far as can be told without reading it
    TooLarge,
};

/// Such a picture.
struct EmbeddedImage {
    std::string extension;  ///< ".jpg" or ".png"
    std::vector<std::uint8_t> bytes;
};

/// What a file says beside its tag of version 1.
struct OtherTags {
    /// Of ID3 version 2, else of APE, with texts in full. Its marker is "TAG" if it has any text,
    /// its genre a name, where one is told.
    Tag tag;
    bool isApe = false;                            ///< it is all of APE
    std::optional<std::uint8_t> genreNumber = {};  ///< where that is told by its number alone
    std::optional<std::int64_t> seconds = {};      ///< length of the sound, above 0
    EmbeddedArt art = EmbeddedArt::None;
};

/// A piece of a tag at a file's beginning, and what takes its place.
struct HeadChange {
    FilePiece old;
    std::vector<std::uint8_t> bytes;
};

/// Reads tags of the kinds that came after version 1, and the length of the sound itself.
class TagFormats {
  public:
    virtual ~TagFormats() = default;

    /// How many of a file's last bytes Read wants to see.
    static constexpr std::size_t EndSize = 160;

    /// `end`: the file's last bytes, EndSize or all. Whatever else the bytes are, they are no
    /// failure, and only a small part of them is read, however large the tags say that they are.
    /// Failure: what `file` throws.
    virtual OtherTags Read(BinaryReader& file, std::span<const std::uint8_t> end) = 0;

    /// Under whom the file's album is filed: the album artist of ID3 version 2, else of APE, else
    /// "Various Artists" where the tag says that the file is part of a compilation; "" where it
    /// says nothing of that. `end` as of Read(). Failure: what `file` throws.
    virtual std::string ReadAlbumArtist(BinaryReader& file, std::span<const std::uint8_t> end) = 0;

    /// A picture of more bytes is none.
    static constexpr std::uint64_t MostArt = std::uint64_t{16} * 1024 * 1024;

    /// The picture of ID3 version 2 that says to be the front cover, else the first one; only JPEG
    /// and PNG count. Failure: what `file` throws.
    virtual std::optional<EmbeddedImage> ReadArt(BinaryReader& file) = 0;

    /// What in the file's tag of ID3 version 2 becomes other when that is to say these texts; an
    /// empty one stays as it is. Frames that it has are changed where they say something else, none
    /// are added, and all others stay. Nothing where there is no such tag or it says so already.
    /// Failure: what `file` throws, and InvalidProcedureCall for a tag that is damaged or too large
    /// to be changed.
    virtual std::optional<HeadChange> Change(BinaryReader& file, const Tag& wanted) = 0;
};

}  // namespace quillon
