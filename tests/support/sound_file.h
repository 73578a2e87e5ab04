#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace quillon::support {

/// What a test puts into an ID3 version 1 tag. All texts are bytes of the ANSI code page, padded
/// with zero bytes; longer ones are cut.
struct RawTag {
    std::string marker = "TAG";
    std::string song;
    std::string artist;
    std::string album;
    std::string year;
    std::string comment;
    std::uint8_t track = 0;  ///< above 0: a version 1.1 tag
    std::uint8_t genre = 255;
};

/// The tag's 128 bytes.
std::string TagBytes(const RawTag& tag);

/// The bytes of a sound file that ends with the tag.
std::string SoundFile(const RawTag& tag);

/// The bytes of a sound file without a tag.
std::string UntaggedSoundFile();

}  // namespace quillon::support
