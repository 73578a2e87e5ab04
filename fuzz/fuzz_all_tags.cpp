// The reader of all kinds of tags over arbitrary files: whatever comes out is text, numbers are
// numbers, and little is read. A tag of version 2 that can be changed then says the new title, and
// what lies behind it is the same.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "taglib/tag_library.h"
#include "tags/tag_reader.h"
#include "tests/taglib/bytes_reader.h"

namespace quillon {
namespace {

void Require(bool holds) {
    if (!holds) std::abort();
}

void RequireNumber(const std::string& text) {
    Require(text.size() <= 5 && text.find_first_not_of("0123456789") == std::string::npos);
}

OtherTags Read(BytesReader& file) {
    const std::vector<std::uint8_t> end = ReadEndForTags(file, "x.mp3");
    OtherTags other = TagLibrary().Read(file, end);
    for (const TagField& field : TagFields) {
        const std::string& text = other.tag.*field.text;
        Require(IsValidUtf8(text) && text.find('\0') == std::string::npos);
    }
    RequireNumber(other.tag.track);
    RequireNumber(other.tag.disc);
    if (other.seconds) Require(*other.seconds > 0 && *other.seconds <= 32767);
    const Tag old = end.size() < TagSize ? Tag() : TagIn(std::span(end).last(TagSize));
    const FoundTag together = Together(other, old, std::nullopt);
    Require(PiecesOf(together.tag) == TagFields.size());
    RequireNumber(together.tag.seconds);
    return other;
}

void Change(const std::string& content, const OtherTags& before) {
    Tag wanted;
    wanted.song = "Another title";
    std::optional<HeadChange> change;
    BytesReader file(content);
    try {
        change = TagLibrary().Change(file, wanted);
    } catch (const Failure&) {
        return;
    }
    if (!change) return;
    const std::string old(change->old.bytes.begin(), change->old.bytes.end());
    Require(content.compare(change->old.position, old.size(), old) == 0);
    std::string changed = content;
    changed.replace(change->old.position, old.size(),
                    std::string(change->bytes.begin(), change->bytes.end()));
    BytesReader after(changed);
    const OtherTags now = Read(after);
    Require(now.tag.song == wanted.song);
    // A title of blanks alone had left the word to APE.
    if (content.find("APETAGEX") == std::string::npos)
        Require(now.tag.artist == before.tag.artist && now.tag.album == before.tag.album);
    Require(changed.ends_with(std::string_view(content).substr(change->old.position + old.size())));
}

/// A picture that is found was in the file.
void Look(const std::string& content, const OtherTags& found) {
    BytesReader file(content);
    const std::optional<EmbeddedImage> image = TagLibrary().ReadArt(file);
    if (!image) return;
    Require(image->extension == ".jpg" || image->extension == ".png");
    Require(!image->bytes.empty() && image->bytes.size() <= content.size());
    Require(found.art != EmbeddedArt::Unknown);
}

}  // namespace
}  // namespace quillon

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string content(reinterpret_cast<const char*>(data), size);
    quillon::BytesReader file(content);
    const quillon::OtherTags found = quillon::Read(file);
    quillon::Require(file.bytesRead <= 8'000'000 + size);
    quillon::Look(content, found);
    quillon::Change(content, found);
    return 0;
}
