#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace quillon::support {

/// A frame of a tag of version 2 (with a name of three letters), 3 or 4.
std::string FrameBytes(unsigned version, const std::string& name, const std::string& content,
                       unsigned flags = 0);

/// The content of a frame of a text in the Latin-1 encoding, or another one by its number.
std::string TextContent(std::string_view text, char encoding = 0);
/// That of a comment without a description.
std::string CommentContent(std::string_view text, std::string_view about = "");

/// A tag of these frames with so many bytes of padding.
std::string FramesTag(unsigned version, const std::string& frames, std::size_t padding = 0,
                      unsigned flags = 0);

/// Zero bytes strewn in behind each byte 255 that could be taken for the beginning of sound.
std::string Unsynchronised(std::string_view bytes);

/// An APE tag with header and footer of items such as {"Title", "Dawn"}.
std::string ApeTag(std::initializer_list<std::pair<std::string, std::string>> items);

/// Frames of MPEG-1 Layer III of 128 kbit/s at 44.1 kHz: about 26 ms and 418 bytes each.
std::string Sound(std::size_t frames);
/// The same behind a frame that tells their number: "Xing", "Info" or "VBRI".
std::string CountedSound(std::string_view header, std::size_t frames, std::uint32_t told);

}  // namespace quillon::support
