#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "taglib/id3v2_frames.h"

namespace quillon {

/// A frame as it stands in a tag, taken apart by the library.
struct FrameText {
    std::vector<std::string> values;  ///< one, or several; those without text are left out
    std::string about;                ///< of a comment: what it is a comment of
};

/// Takes apart frames of texts and comments of one tag.
class FrameReader {
  public:
    /// `header`: the tag's first Id3v2Header::Size bytes.
    explicit FrameReader(std::span<const std::uint8_t> header);

    /// A frame's bytes with its header. No values for one that is encrypted or makes no sense.
    /// Texts declared as Latin-1 are read as those of version 1 are, since the bytes are often
    /// those of another code page or of UTF-8.
    FrameText Read(const Id3v2Frame& frame, std::span<const std::uint8_t> bytes) const;

  private:
    std::array<std::uint8_t, Id3v2Header::Size> header_{};
    unsigned version_;
    bool isUnsynchronised_;
};

}  // namespace quillon
