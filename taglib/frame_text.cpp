#include "taglib/frame_text.h"

#include <algorithm>
#include <memory>
#include <taglib/commentsframe.h>
#include <taglib/id3v2framefactory.h>
#include <taglib/id3v2header.h>
#include <taglib/textidentificationframe.h>
#include <utility>

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

}  // namespace

struct FrameReader::Library {
    TagLib::ID3v2::Header header;
};

FrameReader::FrameReader(std::span<const std::uint8_t> header)
    : library_(std::make_unique<Library>()), version_(header[3]) {
    library_->header.setData(Vector(header));
}

FrameReader::~FrameReader() = default;

FrameText FrameReader::Read(const Id3v2Frame& frame, std::span<const std::uint8_t> bytes) const {
    FrameText text;
    if (IsTooCompressed(frame, version_)) return text;
    const std::unique_ptr<TagLib::ID3v2::Frame> read(
        TagLib::ID3v2::FrameFactory::instance()->createFrame(
            WholeFrame(frame, bytes, version_),
            static_cast<const TagLib::ID3v2::Header*>(&library_->header)));
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
