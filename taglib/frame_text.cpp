#include "taglib/frame_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <taglib/commentsframe.h>
#include <taglib/id3v2framefactory.h>
#include <taglib/id3v2header.h>
#include <taglib/textidentificationframe.h>
#include <utility>
#include <vector>

#include "platform/ansi.h"
#include "platform/utf8.h"
#include "tags/tag.h"

namespace quillon {
namespace {

using TagLib::ByteVector;

ByteVector Vector(std::span<const std::uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<unsigned>(bytes.size())};
}

/// UTF-16 may hold halves of characters, and a text ends at a zero byte.
std::string Clean(std::string_view text) {
    text = text.substr(0, text.find('\0'));
    std::string clean;
    for (std::size_t at = 0; at < text.size();) {
        const Utf8Character character = DecodeUtf8(text, at);
        AppendUtf8(clean, character.wellFormed ? character.code : 0xFFFD);
        at += character.length;
    }
    return clean;
}

std::string TextOf(const TagLib::String& text, TagLib::String::Type encoding) {
    if (encoding != TagLib::String::Latin1) return Clean(text.to8Bit(true));
    const std::string bytes = text.to8Bit(false);
    const std::string_view plain = std::string_view(bytes).substr(0, bytes.find('\0'));
    return ConvertTheBinary({reinterpret_cast<const std::uint8_t*>(plain.data()), plain.size()});
}

/// With the size in seven bits a byte: the library sees one frame alone, and could not tell which
/// of the two ways it is written in.
ByteVector WholeFrame(const Id3v2Frame& frame, std::span<const std::uint8_t> bytes,
                      unsigned version) {
    constexpr unsigned SizeAt = 4;
    ByteVector whole = Vector(bytes);
    for (unsigned i = 0; version > 2 && i < 4; ++i) {
        const unsigned bits = version == 4 ? 7 : 8;
        const auto digit =
            static_cast<std::uint8_t>((frame.size >> (bits * (3 - i))) & ((1U << bits) - 1));
        whole[static_cast<int>(SizeAt + i)] = static_cast<char>(digit);
    }
    return whole;
}

/// What is compressed may be a thousand times as large as it seems.
bool IsTooCompressed(const Id3v2Frame& frame, unsigned version) {
    constexpr std::uint64_t MostCompressed = 4096;
    const std::uint8_t isCompressed = version == 4 ? 0x08 : 0x80;
    return (frame.form & isCompressed) != 0 && frame.size > MostCompressed;
}

using Bytes = std::span<const std::uint8_t>;

/// Without the zeros of `unit` bytes that end it.
Bytes WithoutEnd(Bytes bytes, std::size_t unit) {
    const auto isZero = [](std::uint8_t byte) { return byte == 0; };
    while (bytes.size() >= unit && std::ranges::all_of(bytes.last(unit), isZero))
        bytes = bytes.first(bytes.size() - unit);
    return bytes;
}

std::optional<std::string> FromLatin1(Bytes text) {
    text = WithoutEnd(text, 1);
    if (std::ranges::find(text, 0) != text.end()) return std::nullopt;
    return ConvertTheBinary(text);
}

std::optional<std::string> FromUtf8(Bytes text) {
    text = WithoutEnd(text, 1);
    std::string plain(text.begin(), text.end());
    if (!IsValidUtf8(plain) || plain.find('\0') != std::string::npos) return std::nullopt;
    return plain;
}

/// Behind the mark that tells the order of bytes.
std::optional<std::string> FromUtf16(Bytes text) {
    constexpr std::size_t Unit = 2;
    text = text.first(text.size() - text.size() % Unit);
    if (text.size() < Unit) return std::nullopt;
    const bool isLowFirst = text[0] == 0xFF && text[1] == 0xFE;
    if (!isLowFirst && (text[0] != 0xFE || text[1] != 0xFF)) return std::nullopt;
    std::string plain;
    for (text = WithoutEnd(text.subspan(Unit), Unit); !text.empty(); text = text.subspan(Unit)) {
        const unsigned high = text[isLowFirst ? 1 : 0], low = text[isLowFirst ? 0 : 1];
        const unsigned code = high * 256 + low;
        const bool isHalf = code >= 0xD800 && code <= 0xDFFF;
        if (code == 0 || isHalf) return std::nullopt;
        AppendUtf8(plain, code);
    }
    return plain;
}

std::optional<std::string> TextIn(Bytes content) {
    switch (content.front()) {
        case 0:
            return FromLatin1(content.subspan(1));
        case 1:
            return FromUtf16(content.subspan(1));
        case 3:
            return FromUtf8(content.subspan(1));
        default:
            return std::nullopt;
    }
}

/// A genre that is one name, or one number in brackets.
std::optional<std::string> PlainGenre(std::string text) {
    constexpr std::size_t LongestNumber = 2;
    if (!text.starts_with('(')) return text;
    const std::size_t end = text.find_first_not_of("0123456789", 1);
    const bool isNumber = end > 1 && end <= 1 + LongestNumber && end + 1 == text.size();
    if (!isNumber || text.back() != ')') return std::nullopt;
    return text.substr(1, end - 1);
}

/// What nearly all frames are: one text that nothing has changed on its way into the tag. All else,
/// and several genres in one text, is left to the library, which takes ten times as long.
std::optional<std::string> PlainText(const Id3v2Frame& frame, Bytes content) {
    const std::string_view name = frame.name;
    const bool isText = name.starts_with('T') && !name.starts_with("TXX") && frame.form == 0;
    if (!isText || content.empty()) return std::nullopt;
    std::optional<std::string> text = TextIn(content);
    return text && name.starts_with("TCO") ? PlainGenre(*std::move(text)) : text;
}

/// UTF-16 that a program has declared as Latin-1: in that, no text begins with the mark.
bool IsMisdeclared(const Id3v2Frame& frame, Bytes content) {
    if (!frame.name.starts_with('T') || frame.form != 0 || content.size() < 3) return false;
    const bool hasMark =
        (content[1] == 0xFF && content[2] == 0xFE) || (content[1] == 0xFE && content[2] == 0xFF);
    return content[0] == 0 && hasMark;
}

}  // namespace

FrameReader::FrameReader(std::span<const std::uint8_t> header)
    : version_(header[3]), isUnsynchronised_((header[5] & 0x80U) != 0) {
    std::ranges::copy(header.first(header_.size()), header_.begin());
}

FrameText FrameReader::Read(const Id3v2Frame& frame, std::span<const std::uint8_t> bytes) const {
    FrameText text;
    if (IsTooCompressed(frame, version_)) return text;
    const std::size_t head = version_ == 2 ? 6 : 10;
    // In version 4 each frame is unsynchronised by itself.
    const bool isPlain = version_ < 4 || !isUnsynchronised_;
    std::vector<std::uint8_t> corrected;
    if (isPlain && IsMisdeclared(frame, bytes.subspan(head))) {
        constexpr std::uint8_t Utf16 = 1;
        corrected.assign(bytes.begin(), bytes.end());
        corrected[head] = Utf16;
        bytes = corrected;
    }
    if (auto plain = isPlain ? PlainText(frame, bytes.subspan(head)) : std::nullopt) {
        if (!plain->empty()) text.values.push_back(*std::move(plain));
        return text;
    }
    TagLib::ID3v2::Header header;
    header.setData(Vector(header_));
    const std::unique_ptr<TagLib::ID3v2::Frame> read(
        TagLib::ID3v2::FrameFactory::instance()->createFrame(
            WholeFrame(frame, bytes, version_),
            static_cast<const TagLib::ID3v2::Header*>(&header)));
    const auto add = [&text](std::string value) {
        if (!value.empty()) text.values.push_back(std::move(value));
    };
    if (const auto* fields = dynamic_cast<TagLib::ID3v2::TextIdentificationFrame*>(read.get())) {
        for (const TagLib::String& field : fields->fieldList())
            add(TextOf(field, fields->textEncoding()));
    } else if (const auto* comment = dynamic_cast<TagLib::ID3v2::CommentsFrame*>(read.get())) {
        text.about = TextOf(comment->description(), comment->textEncoding());
        add(TextOf(comment->text(), comment->textEncoding()));
    }
    return text;
}

}  // namespace quillon
