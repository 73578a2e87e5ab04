#include "id3/tag_writer.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>

#include "database/sql.h"
#include "id3/difference_fields.h"
#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/database.h"
#include "platform/failure.h"
#include "platform/utf8.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

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

std::string GenreNameOf(Run& run, std::uint8_t number) {
    const std::unique_ptr<RecordSet> found = run.connection->Query(
        "SELECT Genre FROM SpinnerGenre WHERE GenreId =" + std::to_string(number));
    return found->IsEmpty() ? "" : found->Text("Genre");
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
    TagWriter(Run& run, std::string_view path, const FileEnd& end)
        : run_(run), steps_(run, "WriteID3 Management"), path_(path), end_(end) {
        steps_.Concerning(path_);
    }

    bool Write(std::string_view record) {
        bool written = false;
        steps_.Try(1, [&] { pieces_ = PiecesOf(record); });
        if (pieces_.empty()) return false;
        hasTag_ = !ReadTag(run_, path_, end_).empty();
        SetGenre();
        const bool made = steps_.Try(3, [&] { SetTrack(); }) && steps_.Try(5, [&] { MakeTag(); });
        if (made) written = steps_.Try(6, [&] { WriteBytes(); });
        return written;
    }

  private:
    std::vector<std::string> PiecesOf(std::string_view record) const {
        std::vector<std::string> pieces = Split(record, "|");
        if (pieces.size() == TagFieldLengths.size()) return pieces;
        throw Failure::Described(FailureNumber::InvalidProcedureCall,
                                 "Record of " + std::to_string(pieces.size()) +
                                     " pieces instead of " +
                                     std::to_string(TagFieldLengths.size()) + ": " + path_);
    }

    void SetGenre() {
        std::string& genre = pieces_[TagGenre];
        std::uint8_t byte = hasTag_ ? end_.bytes.back() : NoGenre;
        if (!genre.empty()) {
            steps_.Try(2, [&] {
                const std::optional<std::uint8_t> number = GenreNumber(run_, genre);
                if (!number) throw Refusal("No number for genre", genre);
                byte = *number;
            });
        }
        genre = CharacterOf(byte);
    }

    void SetTrack() {
        std::string& track = pieces_[TagTrack];
        const std::optional<double> number = ToNumber(track);
        if (number && (*number < 0 || *number > 255)) throw Refusal("No byte for track", track);
        track = number ? CharacterOf(static_cast<std::uint8_t>(ToInteger(*number))) : "";
    }

    void MakeTag() {
        for (std::size_t i = 0; i < pieces_.size(); ++i) {
            auto field = PresentBytes(i);
            if (!field) field = BytesOf(pieces_[i], TagFieldLengths[i]);
            if (!field) throw Refusal("No bytes for " + std::string(TagLabels[i]), pieces_[i]);
            tag_.insert(tag_.end(), field->begin(), field->end());
        }
    }

    /// The bytes that say a text already in UTF-8, of which the field's end may have cut some.
    std::optional<std::vector<std::uint8_t>> PresentBytes(std::size_t piece) const {
        if (!hasTag_ || piece < TagSong || piece > TagComment) return std::nullopt;
        const auto present = FieldBytes(end_.bytes, piece);
        if (!IsUtf8Field(present)) return std::nullopt;
        const std::string text = ConvertTheBinary(present);
        const std::string_view said = Trim(text), wanted = Trim(pieces_[piece]);
        const bool isSaid = said == wanted || (IsFullField(present) && wanted.starts_with(said));
        if (!isSaid) return std::nullopt;
        const std::size_t length = TagFieldLengths[piece];
        std::vector<std::uint8_t> bytes(present.begin(), present.end());
        // A comment yields two bytes to the track number.
        if (bytes.size() > length) {
            const std::string_view begun = WholeCharacters(text, length);
            bytes.assign(begun.begin(), begun.end());
        }
        bytes.resize(length);
        return bytes;
    }

    void WriteBytes() {
        // A file that says so already need not wear out the disk.
        if (hasTag_ && tag_ == end_.bytes) return;
        run_.files.WriteEnd(path_, end_, hasTag_ ? end_.size - TagSize : end_.size, tag_);
        ++run_.counts.tagsWritten;
    }

    Failure Refusal(const std::string& what, const std::string& value) const {
        return Failure::Described(FailureNumber::InvalidProcedureCall,
                                  what + " \"" + value + "\": " + path_);
    }

    Run& run_;
    Steps steps_;
    std::string path_;
    const FileEnd& end_;
    bool hasTag_ = false;
    std::vector<std::string> pieces_;
    std::vector<std::uint8_t> tag_;
};

}  // namespace

std::vector<std::uint8_t> ByteField(std::string_view text, std::size_t length) {
    std::optional<std::vector<std::uint8_t>> bytes = BytesOf(text, length);
    if (!bytes) throw Failure(FailureNumber::InvalidProcedureCall, std::string(text));
    return *std::move(bytes);
}

FileEnd ReadTagEnd(Files& files, std::string_view path) {
    const std::unique_ptr<BinaryReader> stream = files.OpenBinary(path);
    FileEnd end{.size = stream->Size(), .bytes = {}};
    const std::uint64_t count = std::min<std::uint64_t>(end.size, TagSize);
    stream->SetPosition(end.size - count);
    end.bytes = stream->Read(TagSize);
    if (end.bytes.size() != count) throw Failure(FailureNumber::InputPastEnd, std::string(path));
    return end;
}

std::string ReadTag(Run& run, std::string_view path, const FileEnd& end) {
    if (end.size <= TagSize) return "";
    Steps steps(run, "Read ID3 File Error:");
    steps.Concerning(std::string(path));
    return TagRecord(
        [&end](std::size_t offset, std::size_t count) {
            const auto from = end.bytes.begin() + static_cast<std::ptrdiff_t>(offset);
            return std::vector<std::uint8_t>(from, from + static_cast<std::ptrdiff_t>(count));
        },
        [&steps](int step, const std::function<void()>& work) { return steps.Try(step, work); },
        [&run](std::uint8_t number) { return GenreNameOf(run, number); });
}

bool WriteTag(Run& run, std::string_view path, std::string_view record) {
    Steps steps(run, "WriteID3 Management");
    FileEnd end;
    return steps.Try(4, [&] { end = ReadTagEnd(run.files, path); }) &&
           WriteTag(run, path, end, record);
}

bool WriteTag(Run& run, std::string_view path, const FileEnd& end, std::string_view record) {
    return TagWriter(run, path, end).Write(record);
}

}  // namespace quillon
