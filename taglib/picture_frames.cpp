#include "taglib/picture_frames.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

namespace quillon {
namespace {

using Bytes = std::span<const std::uint8_t>;

/// As much of a frame as may stand before the picture itself.
constexpr std::size_t LongestBeginning = 1024;

struct Picture {
    bool isFront = false;
    Bytes bytes;
};

bool Begins(Bytes bytes, std::string_view with) {
    return bytes.size() >= with.size() &&
           std::equal(with.begin(), with.end(), bytes.begin(), [](char letter, std::uint8_t byte) {
               return static_cast<std::uint8_t>(letter) == byte;
           });
}

/// By the picture's own first bytes, since the type that a tag tells is often wrong; "" for any
/// other kind.
std::string ExtensionOf(Bytes picture) {
    if (Begins(picture, "\xFF\xD8\xFF")) return ".jpg";
    return Begins(picture, "\x89PNG\r\n\x1A\n") ? ".png" : "";
}

/// What lies behind a text that a zero character ends; nothing where none does.
std::optional<Bytes> Behind(Bytes bytes, std::size_t characterSize) {
    for (std::size_t at = 0; at + characterSize <= bytes.size(); at += characterSize) {
        const Bytes character = bytes.subspan(at, characterSize);
        if (std::ranges::all_of(character, [](std::uint8_t byte) { return byte == 0; }))
            return bytes.subspan(at + characterSize);
    }
    return std::nullopt;
}

/// Takes a frame's content apart: encoding, format, kind, description, picture.
std::optional<Picture> PictureIn(const Id3v2Header& header, Bytes content) {
    constexpr std::uint8_t FrontCover = 3;
    constexpr std::size_t OldFormat = 3;
    if (content.empty()) return std::nullopt;
    const bool isWide = content.front() == 1 || content.front() == 2;
    content = content.subspan(1);
    if (header.version == 2) {
        if (content.size() < OldFormat) return std::nullopt;
        content = content.subspan(OldFormat);
    } else {
        const auto behind = Behind(content, 1);
        if (!behind) return std::nullopt;
        content = *behind;
    }
    if (content.empty()) return std::nullopt;
    const bool isFront = content.front() == FrontCover;
    const auto picture = Behind(content.subspan(1), isWide ? 2 : 1);
    if (!picture) return std::nullopt;
    return Picture{.isFront = isFront, .bytes = *picture};
}

/// What a frame's flags say of its content.
struct Form {
    bool isReadable = true;  ///< neither compressed nor encrypted
    bool isUnsynchronised = false;
    std::size_t before = 0;  ///< bytes before the content itself
};

Form FormOf(const Id3v2Header& header, const Id3v2Frame& frame) {
    const auto has = [&frame](unsigned flag) { return (frame.form & flag) != 0; };
    if (header.version == 3)
        return {.isReadable = !has(0x80) && !has(0x40), .before = has(0x20) ? 1U : 0U};
    if (header.version < 4) return {};
    constexpr std::size_t LengthSize = 4;
    return {.isReadable = !has(0x08) && !has(0x04),
            .isUnsynchronised = has(0x02) || header.IsUnsynchronised(),
            .before = (has(0x40) ? 1 : 0) + (has(0x01) ? LengthSize : 0)};
}

/// A frame's content as it was before it was written, as far as it is in these bytes.
std::vector<std::uint8_t> ContentOf(const Form& form, Bytes bytes) {
    bytes = bytes.subspan(std::min(form.before, bytes.size()));
    if (form.isUnsynchronised) return WithoutUnsynchronisation(bytes);
    return {bytes.begin(), bytes.end()};
}

}  // namespace

bool IsPictureFrame(const std::string& name) {
    return name == "APIC" || name == "PIC";
}

EmbeddedArt ArtIn(const Id3v2Header& header, Id3v2Body& body, const Id3v2Frame& frame) {
    const Form form = FormOf(header, frame);
    if (!form.isReadable) return EmbeddedArt::None;
    const auto size =
        static_cast<std::size_t>(std::min<std::uint64_t>(frame.size, LongestBeginning));
    const auto content = ContentOf(form, body.bytes->At(frame.at + header.FrameHeader(), size));
    const std::optional<Picture> picture = PictureIn(header, content);
    if (!picture || ExtensionOf(picture->bytes).empty()) return EmbeddedArt::None;
    return frame.size > TagFormats::MostArt ? EmbeddedArt::TooLarge : EmbeddedArt::Promised;
}

std::optional<EmbeddedImage> ArtOfTag(std::span<const std::uint8_t> head) {
    ByteWindow file(std::vector<std::uint8_t>(head.begin(), head.end()));
    const std::optional<Id3v2Header> header = ReadId3v2Header(file);
    if (!header) return std::nullopt;
    Id3v2Body body;
    FindBody(file, *header, body, head.size());
    std::optional<EmbeddedImage> image;
    VisitFrames(*header, body, [&](const Id3v2Frame& frame) {
        const Form form = FormOf(*header, frame);
        const bool isWanted =
            IsPictureFrame(frame.name) && form.isReadable && frame.size <= TagFormats::MostArt;
        if (!isWanted) return true;
        const auto content = ContentOf(form, body.bytes->At(frame.at + header->FrameHeader(),
                                                            static_cast<std::size_t>(frame.size)));
        const std::optional<Picture> picture = PictureIn(*header, content);
        std::string extension = picture ? ExtensionOf(picture->bytes) : "";
        if (extension.empty() || (image && !picture->isFront)) return true;
        image = EmbeddedImage{.extension = std::move(extension),
                              .bytes = {picture->bytes.begin(), picture->bytes.end()}};
        return !picture->isFront;
    });
    return image;
}

}  // namespace quillon
