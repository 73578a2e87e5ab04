#include "tags/tag_reader.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "platform/database.h"
#include "platform/failure.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class ReadTagStep { Look = 2, Open = 3, Read = 4, FindGenre = 10 };
constexpr const char* Location = "Read ID3 File Error:";

/// The tag of a file that has more bytes than a tag.
std::optional<Tag> ReadLongFile(Run& run, Steps& steps, std::string_view path, GenreAs genre) {
    std::unique_ptr<BinaryReader> stream;
    const bool isOpen = steps.Try(ReadTagStep::Open, [&] {
        stream = run.files.OpenBinary(path);
        if (stream->Size() < TagSize) throw Failure(FailureNumber::InputPastEnd, std::string(path));
    });
    if (!isOpen) return std::nullopt;
    Tag tag;
    const bool isRead = steps.Try(ReadTagStep::Read, [&] {
        stream->SetPosition(stream->Size() - TagSize);
        const std::vector<std::uint8_t> bytes = stream->Read(TagSize);
        if (bytes.size() != TagSize) throw Failure(FailureNumber::InputPastEnd, std::string(path));
        tag = TagIn(bytes);
        if (!tag.IsThere()) return;
        const std::uint8_t number = GenreNumberIn(bytes);
        tag.genre = genre == GenreAs::Name ? run.GenreNames[number] : std::to_string(number);
    });
    if (!isRead) return std::nullopt;
    return tag;
}

std::string GenreNameOf(Run& run, std::uint8_t number) {
    const std::unique_ptr<RecordSet> found = run.connection->Query(
        "SELECT Genre FROM SpinnerGenre WHERE GenreId =" + std::to_string(number));
    return found->IsEmpty() ? "" : found->Text("Genre");
}

}  // namespace

std::optional<Tag> ReadID3(Run& run, std::string_view path, GenreAs genre) {
    Steps steps(run, Location);
    steps.Concerning(path);
    FileEntry file;
    if (!steps.Try(ReadTagStep::Look, [&] { file = run.files.GetFile(path); })) return std::nullopt;
    return file.size > TagSize ? ReadLongFile(run, steps, file.path, genre) : Tag();
}

std::optional<Tag> ReadListedID3(Run& run, std::string_view path, std::uint64_t size) {
    if (size <= TagSize) return Tag();
    Steps steps(run, Location);
    steps.Concerning(path);
    return ReadLongFile(run, steps, path, GenreAs::Name);
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

Tag ReadTag(Run& run, std::string_view path, const FileEnd& end) {
    if (end.size <= TagSize) return {};
    Tag tag = TagIn(end.bytes);
    if (!tag.IsThere()) return tag;
    Steps steps(run, Location);
    steps.Concerning(path);
    steps.Try(ReadTagStep::FindGenre,
              [&] { tag.genre = GenreNameOf(run, GenreNumberIn(end.bytes)); });
    return tag;
}

}  // namespace quillon
