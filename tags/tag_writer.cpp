#include "tags/tag_writer.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "database/sql.h"
#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/database.h"
#include "platform/failure.h"
#include "platform/utf8.h"
#include "run/run.h"
#include "run/steps.h"
#include "tags/length_text.h"
#include "tags/tag_reader.h"

namespace quillon {
namespace {

enum class WriteTagStep {
    RequireNinePieces = 1,
    SetGenre = 2,
    SetTrack = 3,
    ReadEnd = 4,
    MakeBytes = 5,
    WriteBytes = 6,
    WriteHead = 7,
};

constexpr std::uint8_t NoGenre = 255;

/// A text of one character, that of a byte.
std::string CharacterOf(std::uint8_t byte) {
    return AnsiToUtf8(std::span(&byte, 1));
}

/// Nothing for a text with a character that has no byte, as far as it is written.
std::optional<std::vector<std::uint8_t>> BytesOf(std::string_view text, std::size_t length) {
    std::size_t end = 0;
    for (std::size_t i = 0; i < length && end < text.size(); ++i)
        end += DecodeUtf8(text, end).length;
    const std::optional<std::string> ansi = Utf8ToAnsiExactly(text.substr(0, end));
    if (!ansi) return std::nullopt;
    std::vector<std::uint8_t> bytes(ansi->begin(), ansi->end());
    bytes.resize(length);
    return bytes;
}

/// The beginning of a text that so many bytes have room for.
std::string_view WholeCharacters(std::string_view text, std::size_t length) {
    std::size_t end = 0;
    while (end < text.size()) {
        const std::size_t next = end + DecodeUtf8(text, end).length;
        if (next > length) break;
        end = next;
    }
    return text.substr(0, end);
}

/// A genre's number by its name.
std::optional<std::uint8_t> GenreNumber(Run& run, const std::string& name) {
    // A name with a double quote could not be looked up.
    if (name.find('"') != std::string::npos) return std::nullopt;
    const std::unique_ptr<RecordSet> found =
        run.connection->Query("SELECT GenreId FROM SpinnerGenre WHERE Genre =" + Quoted(name));
    if (found->IsEmpty()) return std::nullopt;
    const std::int64_t number = found->Integer("GenreId");
    if (number < 0 || number > 255) return std::nullopt;
    return static_cast<std::uint8_t>(number);
}

/// One file's way to its new tag.
class TagWriter {
  public:
    TagWriter(Run& run, std::string_view path, const FileEnd& end, const Tag& tag)
        : run_(run), steps_(run, "WriteID3 Management"), path_(path), end_(end), tag_(tag) {
        steps_.Concerning(path_);
    }

    bool Write() {
        if (!steps_.Try(WriteTagStep::RequireNinePieces, [&] { RequireNinePieces(); }))
            return false;
        hasTag_ = ReadTag(run_, path_, end_).IsThere();
        SetGenre();
        const bool made = steps_.Try(WriteTagStep::SetTrack, [&] { SetTrack(); }) &&
                          steps_.Try(WriteTagStep::MakeBytes, [&] { MakeBytes(); });
        return made && steps_.Try(WriteTagStep::WriteBytes, [&] { WriteBytes(); });
    }

  private:
    void RequireNinePieces() const {
        const std::size_t pieces = PiecesOf(tag_);
        if (pieces == TagFields.size()) return;
        throw Failure::Described(FailureNumber::InvalidProcedureCall,
                                 "Record of " + std::to_string(pieces) + " pieces instead of " +
                                     std::to_string(TagFields.size()) + ": " + path_,
                                 path_);
    }

    void SetGenre() {
        std::uint8_t byte = hasTag_ ? GenreNumberIn(end_.bytes) : NoGenre;
        if (!tag_.genre.empty()) {
            steps_.Try(WriteTagStep::SetGenre, [&] {
                const std::optional<std::uint8_t> number = GenreNumber(run_, tag_.genre);
                if (!number) throw Refusal("No number for genre", tag_.genre);
                byte = *number;
            });
        }
        tag_.genre = CharacterOf(byte);
    }

    void SetTrack() {
        std::string& track = tag_.track;
        const std::optional<double> number = ToNumber(track);
        if (number && (*number < 0 || *number > 255)) throw Refusal("No byte for track", track);
        track = number ? CharacterOf(static_cast<std::uint8_t>(ToInteger(*number))) : "";
    }

    void MakeBytes() {
        for (const TagField& field : TagFields) {
            const std::string& text = tag_.*field.text;
            auto bytes = PresentBytes(field);
            if (!bytes) bytes = BytesOf(text, field.length);
            if (!bytes) throw Refusal("No bytes for " + std::string(field.label), text);
            bytes_.insert(bytes_.end(), bytes->begin(), bytes->end());
        }
    }

    /// The bytes that say a text already in UTF-8, of which the field's end may have cut some.
    std::optional<std::vector<std::uint8_t>> PresentBytes(const TagField& field) const {
        const bool isText = field.length > 1 && field.text != &Tag::marker;
        if (!hasTag_ || !isText) return std::nullopt;
        const auto present = BytesOfField(end_.bytes, field.text);
        if (!IsUtf8Field(present)) return std::nullopt;
        const std::string text = ConvertTheBinary(present);
        const std::string_view said = Trim(text), wanted = Trim(tag_.*field.text);
        const bool isSaid = said == wanted || (IsFullField(present) && wanted.starts_with(said));
        if (!isSaid) return std::nullopt;
        std::vector<std::uint8_t> bytes(present.begin(), present.end());
        // A comment yields two bytes to the track number.
        if (bytes.size() > field.length) {
            const std::string_view begun = WholeCharacters(text, field.length);
            bytes.assign(begun.begin(), begun.end());
        }
        bytes.resize(field.length);
        return bytes;
    }

    void WriteBytes() {
        // A file that says so already need not wear out the disk.
        if (hasTag_ && bytes_ == end_.bytes) return;
        run_.files.WriteEnd(path_, end_, hasTag_ ? end_.size - TagSize : end_.size, bytes_);
        ++run_.counts.tagsWritten;
    }

    Failure Refusal(const std::string& what, const std::string& value) const {
        return Failure::Described(FailureNumber::InvalidProcedureCall,
                                  what + " \"" + value + "\": " + path_, path_);
    }

    Run& run_;
    Steps steps_;
    std::string path_;
    const FileEnd& end_;
    Tag tag_;
    bool hasTag_ = false;
    std::vector<std::uint8_t> bytes_;
};

/// With another length where it says one.
std::string WithSeconds(const std::string& comment, std::string_view seconds) {
    const std::optional<LengthMark> mark = LengthInComment(comment);
    if (!mark || seconds.empty() || mark->seconds == seconds) return comment;
    const auto at = static_cast<std::size_t>(mark->seconds.data() - comment.data());
    return std::string(comment).replace(at, mark->seconds.size(), seconds);
}

/// What is to become of a genre; "" where it stays.
std::string GenreInstead(const Run& run, const OtherTags& present, const std::string& wanted) {
    const std::string& there =
        present.genreNumber ? run.GenreNames[*present.genreNumber] : present.tag.genre;
    // The download table takes a part of a link for a genre, which is a number where this program
    // has made the link; a tag would mean the genre of that number by it.
    if (IsNumeric(wanted)) return "";
    const bool saysNothing = wanted.empty() || EqualIgnoringCase(wanted, "Other");
    if (EqualIgnoringCase(there, wanted) || (saysNothing && !there.empty())) return "";
    return wanted;
}

/// The texts that differ, and no others.
Tag Differing(const Run& run, const OtherTags& present, const Tag& wanted) {
    Tag differing;
    for (std::string Tag::* const field : {&Tag::song, &Tag::artist, &Tag::album, &Tag::track})
        if (Trim(present.tag.*field) != Trim(wanted.*field)) differing.*field = wanted.*field;
    differing.genre = GenreInstead(run, present, wanted.genre);
    const std::string comment = WithSeconds(present.tag.comment, WholeSecondsIn(wanted.comment));
    if (comment != present.tag.comment) differing.comment = comment;
    return differing;
}

}  // namespace

std::vector<std::uint8_t> ByteField(std::string_view text, std::size_t length) {
    std::optional<std::vector<std::uint8_t>> bytes = BytesOf(text, length);
    if (!bytes) throw Failure(FailureNumber::InvalidProcedureCall, std::string(text));
    return *std::move(bytes);
}

PresentTags ReadPresentTags(Run& run, std::string_view path, const Tag& old) {
    const std::unique_ptr<BinaryReader> stream = run.files.OpenBinary(path);
    OtherTags other = run.tagFormats->Read(*stream, ReadEndForTags(*stream, path));
    FoundTag together = Together(other, old, std::nullopt);
    if (together.genreNumber) together.tag.genre = run.GenreNames[*together.genreNumber];
    return {.other = std::move(other), .together = std::move(together.tag)};
}

bool WriteOtherTags(Run& run, std::string_view path, const OtherTags& present, const Tag& wanted) {
    Steps steps(run, "WriteID3 Management");
    steps.Concerning(path);
    bool isChanged = false;
    steps.Try(WriteTagStep::WriteHead, [&] {
        const std::optional<HeadChange> change =
            run.tagFormats->Change(*run.files.OpenBinary(path), Differing(run, present, wanted));
        if (!change) return;
        run.files.ReplaceBytes(path, change->old, change->bytes);
        isChanged = true;
    });
    return isChanged;
}

bool HoldsTexts(const Tag& tag) {
    Tag recorded = tag;
    recorded.isRecorded = true;
    return PiecesOf(recorded) == TagFields.size() &&
           std::ranges::all_of(TagFields, [&tag](const TagField& field) {
               // Numbers and genres are not written as texts.
               return field.length == 1 || BytesOf(tag.*field.text, field.length).has_value();
           });
}

bool WriteTag(Run& run, std::string_view path, const Tag& tag) {
    Steps steps(run, "WriteID3 Management");
    FileEnd end;
    return steps.Try(WriteTagStep::ReadEnd, [&] { end = ReadTagEnd(run.files, path); }) &&
           WriteTag(run, path, end, tag);
}

bool WriteTag(Run& run, std::string_view path, const FileEnd& end, const Tag& tag) {
    return TagWriter(run, path, end, tag).Write();
}

}  // namespace quillon
