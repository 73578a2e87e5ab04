// The tag writer over arbitrary files and tags: whatever it is given, no byte before the tag
// changes, a refused tag changes nothing, and a written one is read back field by field. The
// first byte of an input is the number of pairs of bytes that are the file; the rest is the record.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "tags/tag.h"
#include "tags/tag_reader.h"
#include "tags/tag_writer.h"
#include "tests/support/fakes.h"
#include "tests/support/tag_records.h"

namespace quillon {
namespace {

constexpr const char* Path = R"(D:\Music\A\B\x.mp3)";
constexpr std::uint8_t Rock = 17;

void Require(bool holds) {
    if (!holds) std::abort();
}

std::string Expected(const Tag& tag, std::string Tag::* field) {
    const auto* const found =
        std::find_if(TagFields.begin(), TagFields.end(),
                     [field](const TagField& each) { return each.text == field; });
    return ConvertTheBinary(ByteField(tag.*field, found->length));
}

/// Whether a text of the tag was there before, in UTF-8, and says what was wanted.
bool IsKept(const std::string& text, const std::string& old, const std::string& wanted) {
    const auto isBeyondAscii = [](char c) { return (static_cast<unsigned char>(c) & 0x80U) != 0; };
    return std::any_of(old.begin(), old.end(), isBeyondAscii) && old.starts_with(text) &&
           Trim(wanted).starts_with(Trim(text));
}

void RequireReadBack(fakes::FakeWorld& world, const Tag& old, const Tag& tag, bool hadTag) {
    // Another marker makes no tag, and a byte before the track number makes it a comment's.
    if (UpperCase(Expected(tag, &Tag::marker)) != "TAG") return;
    if (!Expected(tag, &Tag::ver).empty()) return;
    const std::string content = world.files.Content(Path);
    if (content.size() <= TagSize) return;
    const std::vector<std::uint8_t> end(content.end() - TagSize, content.end());
    const Tag read = TagIn(end);
    for (const auto field : {&Tag::song, &Tag::artist, &Tag::album, &Tag::year, &Tag::comment})
        Require(IsKept(read.*field, old.*field, tag.*field) || read.*field == Expected(tag, field));
    const std::optional<double> track = ToNumber(tag.track);
    const int number = track ? ToInteger(*track) : 0;
    Require(read.track == (number == 0 ? "" : std::to_string(number)));
    if (tag.genre == "Rock") Require(end.back() == Rock);
    if (tag.genre.empty() && !hadTag) Require(end.back() == 255);
}

void TryInput(std::span<const std::uint8_t> input) {
    if (input.empty()) return;
    const std::size_t fileSize = std::min<std::size_t>(input[0] * std::size_t{2}, input.size() - 1);
    const auto file = input.subspan(1, fileSize);
    const auto rest = input.subspan(1 + fileSize);
    const std::string before(file.begin(), file.end());
    const Tag tag = support::TagOfRecord(ToValidUtf8(std::string(rest.begin(), rest.end())));

    fakes::FakeWorld world;
    world.run.connection = world.database.Open("");
    world.database.answers[R"(SELECT GenreId FROM SpinnerGenre WHERE Genre ="Rock")"] = {
        {"GenreId"}, {{std::int64_t{Rock}}}};
    world.files.AddFile(Path, before);
    const bool hadTag = ReadID3(world.run, Path).value_or(Tag()).IsThere();
    const Tag old = hadTag ? TagIn(file.last(TagSize)) : Tag();

    const bool written = WriteTag(world.run, Path, tag);
    const std::string after = world.files.Content(Path);
    if (!written) {
        Require(after == before);
        return;
    }
    const std::size_t kept = before.size() - (hadTag ? TagSize : 0);
    Require(after.size() == kept + TagSize);
    Require(after.compare(0, kept, before, 0, kept) == 0);
    RequireReadBack(world, old, tag, hadTag);
    Require(WriteTag(world.run, Path, tag));
}

}  // namespace
}  // namespace quillon

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    quillon::TryInput({data, size});
    return 0;
}
