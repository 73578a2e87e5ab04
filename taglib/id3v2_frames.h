#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "taglib/byte_window.h"

namespace quillon {

/// The header of a tag of ID3 version 2, which begins a file.
struct Id3v2Header {
    unsigned version = 0;    ///< 2, 3 or 4
    std::uint8_t flags = 0;  ///< as they stand there
    std::uint64_t size = 0;  ///< bytes of the whole tag

    static constexpr std::size_t Size = 10;

    bool IsUnsynchronised() const { return (flags & 0x80U) != 0; }
    bool HasExtension() const { return version > 2 && (flags & 0x40U) != 0; }
    bool HasFooter() const { return version == 4 && (flags & 0x10U) != 0; }
    /// Bytes of a frame's header.
    std::size_t FrameHeader() const { return version == 2 ? 6 : 10; }
    /// Letters of a frame's name.
    std::size_t NameLength() const { return version == 2 ? 3 : 4; }
};

/// The tag that begins the file. None of another version, none with a size that no tag can have or
/// that goes beyond the file's end, and none of version 2.2 that is compressed, which nobody can
/// read.
std::optional<Id3v2Header> ReadId3v2Header(ByteWindow& file);

/// Where a frame lies in the bytes that are walked over.
struct Id3v2Frame {
    std::string name;
    std::uint64_t at = 0;    ///< its header
    std::uint64_t size = 0;  ///< of what follows the header, above 0
    std::uint8_t form = 0;   ///< the second byte of its flags, 0 in version 2.2
};

/// What lies between the header and the end of a tag. In versions 2.2 and 2.3 a tag that is
/// unsynchronised has zero bytes strewn in, also between frames; those are taken out of as much of
/// it as can be read at once, and what lies behind that is not seen.
struct Id3v2Body {
    ByteWindow* bytes = nullptr;
    std::uint64_t begin = 0, end = 0;
    std::optional<ByteWindow> decoded = {};  ///< what `bytes` then leads to
};

/// Sizes of frames that lead nowhere end the walk; frames without content are left out. A size is
/// read as the version has it or, where no frame could follow then, as the other version has it,
/// since some programs mix them up. `visit` returns whether to go on. Returns where the frames end:
/// padding, if anything, lies behind that.
std::uint64_t VisitFrames(const Id3v2Header& header, Id3v2Body& body,
                          const std::function<bool(const Id3v2Frame& frame)>& visit);

/// `file` must outlive the body, which must not be moved while it is in use. `mostDecoded`: how
/// much of a tag is read at once where zero bytes are to be taken out of it.
void FindBody(ByteWindow& file, const Id3v2Header& header, Id3v2Body& body,
              std::uint64_t mostDecoded = ByteWindow::MostAtOnce);

/// Without the zero bytes that unsynchronisation has put behind each byte 255.
std::vector<std::uint8_t> WithoutUnsynchronisation(std::span<const std::uint8_t> bytes);

/// A number of seven bits a byte.
std::uint32_t SevenBitNumber(std::span<const std::uint8_t> bytes);

}  // namespace quillon
