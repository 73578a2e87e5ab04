#include "taglib/id3v2_frames.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace quillon {
namespace {

/// More than any tag has.
constexpr std::size_t MostFrames = 2000;

bool IsSevenBit(std::span<const std::uint8_t> bytes) {
    return std::ranges::all_of(bytes, [](std::uint8_t byte) { return byte < 0x80; });
}

std::uint32_t PlainNumber(std::span<const std::uint8_t> bytes) {
    std::uint32_t number = 0;
    for (const std::uint8_t byte : bytes)
        number = (number << 8U) | byte;
    return number;
}

bool IsName(std::span<const std::uint8_t> bytes) {
    return !bytes.empty() && std::ranges::all_of(bytes, [](std::uint8_t byte) {
        return (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9');
    });
}

class FrameWalk {
  public:
    FrameWalk(const Id3v2Header& header, Id3v2Body& body) : header_(header), body_(body) {}

    std::uint64_t Visit(const std::function<bool(const Id3v2Frame& frame)>& visit) {
        std::uint64_t at = body_.begin;
        for (std::size_t count = 0; count < MostFrames; ++count) {
            const std::optional<Id3v2Frame> frame = FrameAt(at);
            if (!frame) return at;
            at += header_.FrameHeader() + frame->size;
            if (frame->size > 0 && !visit(*frame)) return at;
        }
        return at;
    }

  private:
    std::optional<Id3v2Frame> FrameAt(std::uint64_t at) {
        const std::size_t length = header_.FrameHeader();
        if (at + length > body_.end) return std::nullopt;
        const auto seen = body_.bytes->At(at, length);
        if (seen.size() < length || !IsName(seen.first(header_.NameLength()))) return std::nullopt;
        std::array<std::uint8_t, Id3v2Header::Size> bytes{};
        std::ranges::copy(seen, bytes.begin());
        Id3v2Frame frame;
        frame.at = at;
        frame.name.assign(bytes.begin(), bytes.begin() + header_.NameLength());
        const auto size = SizeOf(at + length, bytes);
        if (!size) return std::nullopt;
        frame.size = *size;
        if (header_.version > 2) frame.form = bytes.back();
        return frame;
    }

    /// Of the frame whose content begins there.
    std::optional<std::uint64_t> SizeOf(std::uint64_t content,
                                        std::span<const std::uint8_t> bytes) {
        if (header_.version == 2) {
            const std::uint32_t size = PlainNumber(bytes.subspan(3, 3));
            if (content + size > body_.end) return std::nullopt;
            return size;
        }
        const auto digits = bytes.subspan(4, 4);
        const std::uint32_t plain = PlainNumber(digits), sevenBit = SevenBitNumber(digits);
        const bool mayBeSevenBit = IsSevenBit(digits);
        std::array<std::uint32_t, 2> sizes{plain, mayBeSevenBit ? sevenBit : plain};
        if (header_.version == 4) std::swap(sizes.front(), sizes.back());
        if (sizes.front() == sizes.back() && content + plain <= body_.end) return plain;
        for (const std::uint32_t size : sizes)
            if (MayEndAt(content + size)) return size;
        for (const std::uint32_t size : sizes)
            if (content + size <= body_.end) return size;
        return std::nullopt;
    }

    /// Whether another frame, padding or the end of the tag is there.
    bool MayEndAt(std::uint64_t at) {
        if (at >= body_.end) return at == body_.end;
        const auto next = body_.bytes->At(at, header_.NameLength());
        return !next.empty() && (next.front() == 0 || IsName(next));
    }

    const Id3v2Header& header_;
    Id3v2Body& body_;
};

/// Bytes of the extended header that begins there.
std::uint64_t SizeOfExtension(ByteWindow& bytes, std::uint64_t at, unsigned version) {
    const auto size = bytes.At(at, 4);
    if (size.size() < 4) return 0;
    // In version 2.3 the size does not count itself.
    return version == 3 ? std::uint64_t{PlainNumber(size)} + 4 : SevenBitNumber(size);
}

}  // namespace

std::uint32_t SevenBitNumber(std::span<const std::uint8_t> bytes) {
    std::uint32_t number = 0;
    for (const std::uint8_t byte : bytes)
        number = (number << 7U) | (byte & 0x7FU);
    return number;
}

std::optional<Id3v2Header> ReadId3v2Header(ByteWindow& file) {
    constexpr std::uint8_t IsCompressed = 0x40;
    const auto bytes = file.At(0, Id3v2Header::Size);
    if (bytes.size() < Id3v2Header::Size) return std::nullopt;
    const bool isMarked = bytes[0] == 'I' && bytes[1] == 'D' && bytes[2] == '3';
    Id3v2Header header{.version = bytes[3], .flags = bytes[5]};
    const bool isKnown = header.version >= 2 && header.version <= 4;
    if (!isMarked || !isKnown || !IsSevenBit(bytes.subspan(6))) return std::nullopt;
    if (header.version == 2 && (header.flags & IsCompressed) != 0) return std::nullopt;
    header.size = std::uint64_t{SevenBitNumber(bytes.subspan(6))} + Id3v2Header::Size +
                  (header.HasFooter() ? Id3v2Header::Size : 0);
    if (header.size > file.Size()) return std::nullopt;
    return header;
}

std::vector<std::uint8_t> WithoutUnsynchronisation(std::span<const std::uint8_t> bytes) {
    std::vector<std::uint8_t> plain;
    plain.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const bool isStrewnIn = bytes[i] == 0 && i > 0 && bytes[i - 1] == 0xFF;
        if (!isStrewnIn) plain.push_back(bytes[i]);
    }
    return plain;
}

void FindBody(ByteWindow& file, const Id3v2Header& header, Id3v2Body& body,
              std::uint64_t mostDecoded) {
    body.bytes = &file;
    body.begin = Id3v2Header::Size;
    body.end = header.size - (header.HasFooter() ? Id3v2Header::Size : 0);
    if (header.IsUnsynchronised() && header.version < 4) {
        const auto count = std::min(body.end - body.begin, mostDecoded);
        body.decoded.emplace(
            WithoutUnsynchronisation(file.At(body.begin, static_cast<std::size_t>(count))));
        body.bytes = &*body.decoded;
        body.begin = 0;
        body.end = body.decoded->Size();
    }
    if (!header.HasExtension()) return;
    const std::uint64_t extension = SizeOfExtension(*body.bytes, body.begin, header.version);
    body.begin = std::min(body.begin + extension, body.end);
}

std::uint64_t VisitFrames(const Id3v2Header& header, Id3v2Body& body,
                          const std::function<bool(const Id3v2Frame& frame)>& visit) {
    return FrameWalk(header, body).Visit(visit);
}

}  // namespace quillon
