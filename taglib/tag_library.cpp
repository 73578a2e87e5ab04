#include "taglib/tag_library.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "platform/basic_text.h"
#include "platform/failure.h"
#include "taglib/ape_items.h"
#include "taglib/field_text.h"
#include "taglib/frame_fields.h"
#include "taglib/frame_text.h"
#include "taglib/id3v2_writer.h"
#include "taglib/picture_frames.h"
#include "taglib/sound_length.h"

namespace quillon {
namespace {

/// Nothing for what is no number of a genre.
std::optional<std::uint8_t> GenreNumberOf(std::string_view value) {
    if (value.empty() || value.size() > 3) return std::nullopt;
    unsigned number = 0;
    for (const char digit : value) {
        if (digit < '0' || digit > '9') return std::nullopt;
        number = number * 10 + static_cast<unsigned>(digit - '0');
    }
    if (number > 255) return std::nullopt;
    return static_cast<std::uint8_t>(number);
}

/// A name before a number: "(17)" and "Hard Rock" say the same, one better than the other.
void TakeGenre(OtherTags& found, const std::vector<std::string>& values) {
    for (const std::string& value : values) {
        if (const auto number = GenreNumberOf(value)) {
            if (!found.genreNumber) found.genreNumber = number;
        } else if (found.tag.genre.empty()) {
            found.tag.genre = value;
        }
    }
}

/// The first text of a kind counts. Comments of something, as programs leave them for themselves,
/// are none.
void Take(OtherTags& found, std::string Tag::* field, const FrameText& text) {
    if (text.values.empty() || !text.about.empty()) return;
    if (field == &Tag::genre) return TakeGenre(found, text.values);
    if ((found.tag.*field).empty()) found.tag.*field = FieldValueOf(field, text.values.front());
}

void ReadFrames(ByteWindow& file, const Id3v2Header& header, OtherTags& found) {
    const FrameReader reader(file.At(0, Id3v2Header::Size));
    Id3v2Body body;
    FindBody(file, header, body);
    // Where zero bytes are strewn in, only the beginning of a long tag is seen.
    if (body.decoded && header.size > ByteWindow::MostAtOnce) found.art = EmbeddedArt::Promised;
    VisitFrames(header, body, [&](const Id3v2Frame& frame) {
        if (IsPictureFrame(frame.name) && found.art != EmbeddedArt::Promised) {
            const EmbeddedArt art = ArtIn(header, body, frame);
            if (art != EmbeddedArt::None) found.art = art;
        }
        std::string Tag::* const field = FieldOfFrame(frame.name);
        if (field == nullptr || frame.size > LongestText) return true;
        const auto size = static_cast<std::size_t>(header.FrameHeader() + frame.size);
        const auto bytes = body.bytes->At(frame.at, size);
        if (bytes.size() < size) return false;
        Take(found, field, reader.Read(frame, bytes));
        return true;
    });
    if (!found.tag.genre.empty()) found.genreNumber.reset();
    MarkIfAny(found.tag);
    if (found.genreNumber) found.tag.marker = "TAG";
}

/// "" where the frames say nothing of it.
std::string AlbumArtistIn(ByteWindow& file, const Id3v2Header& header) {
    constexpr std::array<std::string_view, 2> ArtistNames{"TPE2", "TP2"}, PartNames{"TCMP", "TCP"};
    const FrameReader reader(file.At(0, Id3v2Header::Size));
    Id3v2Body body;
    FindBody(file, header, body);
    std::string artist;
    bool isPart = false;
    VisitFrames(header, body, [&](const Id3v2Frame& frame) {
        const auto isOne = [&frame](const auto& names) {
            return std::ranges::find(names, frame.name) != names.end();
        };
        const bool isArtist = isOne(ArtistNames);
        if ((!isArtist && !isOne(PartNames)) || frame.size > LongestText) return true;
        const auto size = static_cast<std::size_t>(header.FrameHeader() + frame.size);
        const auto bytes = body.bytes->At(frame.at, size);
        if (bytes.size() < size) return false;
        const FrameText text = reader.Read(frame, bytes);
        if (text.values.empty()) return true;
        const std::string_view value = Trim(text.values.front());
        if (isArtist && artist.empty()) artist = value;
        isPart |= !isArtist && value == "1";
        return true;
    });
    return artist.empty() && isPart ? "Various Artists" : artist;
}

bool EndsWithTag(std::span<const std::uint8_t> end) {
    if (end.size() < TagSize) return false;
    const auto marker = end.last(TagSize).first(3);
    return EqualIgnoringCase(std::string(marker.begin(), marker.end()), "TAG");
}

/// Bytes of the APE tag that ends there, or before the tag of version 1, which goes from the end.
std::uint64_t TakeEnd(std::span<const std::uint8_t> end, std::uint64_t& soundEnd) {
    if (EndsWithTag(end)) {
        soundEnd -= TagSize;
        end = end.first(end.size() - TagSize);
    }
    return ApeSize(end, soundEnd);
}

/// The piece in which the two differ.
HeadChange Difference(std::uint64_t fileSize, std::span<const std::uint8_t> old,
                      std::span<const std::uint8_t> fresh) {
    const auto [oldBegin, freshBegin] = std::ranges::mismatch(old, fresh);
    const auto begin = static_cast<std::size_t>(oldBegin - old.begin());
    old = old.subspan(begin);
    fresh = fresh.subspan(begin);
    std::size_t same = 0;
    while (same < std::min(old.size(), fresh.size()) &&
           old[old.size() - 1 - same] == fresh[fresh.size() - 1 - same])
        ++same;
    old = old.first(old.size() - same);
    fresh = fresh.first(fresh.size() - same);
    return {.old = {.size = fileSize, .position = begin, .bytes = {old.begin(), old.end()}},
            .bytes = {fresh.begin(), fresh.end()}};
}

}  // namespace

OtherTags TagLibrary::Read(BinaryReader& file, std::span<const std::uint8_t> end) {
    OtherTags found;
    ByteWindow bytes(file);
    std::uint64_t soundBegin = 0, soundEnd = bytes.Size();
    const std::optional<Id3v2Header> header = ReadId3v2Header(bytes);
    if (header) {
        soundBegin = header->size;
        ReadFrames(bytes, *header, found);
    }
    const std::uint64_t ape = TakeEnd(end, soundEnd);
    found.isApe = ape > 0 && !found.tag.IsThere();
    if (found.isApe) found.tag = ReadApe(bytes, soundEnd - ape, soundEnd);
    soundEnd -= ape;
    if (soundEnd > soundBegin) found.seconds = SoundSeconds(bytes, soundBegin, soundEnd);
    return found;
}

std::string TagLibrary::ReadAlbumArtist(BinaryReader& file, std::span<const std::uint8_t> end) {
    ByteWindow bytes(file);
    std::string artist;
    if (const std::optional<Id3v2Header> header = ReadId3v2Header(bytes))
        artist = AlbumArtistIn(bytes, *header);
    std::uint64_t tagsEnd = bytes.Size();
    const std::uint64_t ape = TakeEnd(end, tagsEnd);
    if (!artist.empty() || ape == 0) return artist;
    return ApeText(bytes, tagsEnd - ape, tagsEnd, "Album Artist");
}

std::optional<EmbeddedImage> TagLibrary::ReadArt(BinaryReader& file) {
    ByteWindow bytes(file);
    const std::optional<Id3v2Header> header = ReadId3v2Header(bytes);
    // Several pictures may stand before the one that counts.
    constexpr std::uint64_t MostSize = 2 * MostArt;
    if (!header || header->size > MostSize) return std::nullopt;
    file.SetPosition(0);
    return ArtOfTag(file.Read(static_cast<std::size_t>(header->size)));
}

std::optional<HeadChange> TagLibrary::Change(BinaryReader& file, const Tag& wanted) {
    constexpr std::uint64_t MostSize = std::uint64_t{16} * 1024 * 1024;
    ByteWindow bytes(file);
    const std::optional<Id3v2Header> header = ReadId3v2Header(bytes);
    if (!header) return std::nullopt;
    if (header->size > MostSize) {
        throw Failure::Described(FailureNumber::InvalidProcedureCall,
                                 "the ID3v2 tag stays as it is, since it is too large");
    }
    file.SetPosition(0);
    const std::vector<std::uint8_t> head = file.Read(static_cast<std::size_t>(header->size));
    const std::optional<std::vector<std::uint8_t>> changed = ChangedHead(head, wanted);
    if (!changed) return std::nullopt;
    return Difference(bytes.Size(), head, *changed);
}

}  // namespace quillon
