#include "tags/tag_reader.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/database.h"
#include "platform/failure.h"
#include "run/run.h"
#include "run/steps.h"
#include "tags/heard_sounds.h"
#include "tags/length_text.h"

namespace quillon {
namespace {

enum class ReadTagStep {
    KnownTags = 1,
    Look = 2,
    Open = 3,
    Read = 4,
    ReadSound = 5,
    ReadArt = 6,
    FindGenre = 10
};
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

bool ReadsAllTags(const Run& run) {
    return run.modern.readsAllTags && run.tagFormats != nullptr;
}

/// Notes the sound of a file that is open for its tags.
void Hear(Run& run, Steps& steps, BinaryReader& stream, const FileEntry& file) {
    if (!run.heardSounds) run.heardSounds = std::make_shared<HeardSounds>();
    steps.Try(ReadTagStep::ReadSound, [&] {
        const FileState state = StateOf(file.size, file.modified);
        const auto print = ReadSoundPrint(run.files, stream, file.path, state);
        if (print) run.heardSounds->Note(file.path, state, *print);
    });
}

/// Opens the file once, for all that is to be known of it.
std::optional<FoundTag> ReadFound(Run& run, Steps& steps, const FileEntry& file,
                                  bool isHeard = false) {
    std::optional<FoundTag> found(std::in_place);
    found->art = EmbeddedArt::None;
    found->tag.isRecorded = false;
    if (file.size == 0) return found;
    std::unique_ptr<BinaryReader> stream;
    if (!steps.Try(ReadTagStep::Open, [&] { stream = run.files.OpenBinary(file.path); })) {
        found.reset();
        return found;
    }
    const bool isRead = steps.Try(ReadTagStep::Read, [&] {
        const std::vector<std::uint8_t> end = ReadEndForTags(*stream, file.path);
        Tag old;
        std::optional<std::uint8_t> genre;
        if (stream->Size() > TagSize) {
            const auto last = std::span(end).last(TagSize);
            old = TagIn(last);
            if (old.IsThere()) genre = GenreNumberIn(last);
        }
        found = Together(run.tagFormats->Read(*stream, end), old, genre);
    });
    if (!isRead) found.reset();
    if (isRead && isHeard) Hear(run, steps, *stream, file);
    return found;
}

/// What is known of tags is read when it is first asked for; where it cannot be, all is read anew.
KnownTags& TagsKnownTo(Run& run, Steps& steps) {
    if (!run.knownTags)
        steps.Try(ReadTagStep::KnownTags,
                  [&run] { run.knownTags = std::make_shared<KnownTags>(run); });
    if (!run.knownTags) run.knownTags = KnownTags::Nothing(run);
    return *run.knownTags;
}

/// The tag with a text for its genre.
std::optional<Tag> Told(const Run& run, std::optional<FoundTag>&& found, GenreAs genre) {
    if (!found) return std::nullopt;
    if (found->genreNumber)
        found->tag.genre = genre == GenreAs::Name ? run.GenreNames[*found->genreNumber]
                                                  : std::to_string(*found->genreNumber);
    return std::move(found->tag);
}

/// What is known of the file, which is read where that is nothing, or not what is asked for.
std::optional<FoundTag> FindTags(Run& run, const FileEntry& file, bool asksForArt) {
    Steps steps(run, Location);
    KnownTags& known = TagsKnownTo(run, steps);
    std::optional<FoundTag> found = known.Find(file);
    if (found && (!asksForArt || found->art != EmbeddedArt::Unknown)) return found;
    steps.Concerning(file.path);
    found = ReadFound(run, steps, file, run.movedMusic.FollowMovedFiles && !found);
    if (found) known.Set(file, *found);
    return found;
}

std::string GenreNameOf(Run& run, std::uint8_t number) {
    const std::unique_ptr<RecordSet> found = run.connection->Query(
        "SELECT Genre FROM SpinnerGenre WHERE GenreId =" + std::to_string(number));
    return found->IsEmpty() ? "" : found->Text("Genre");
}

/// Whether a text of version 1 is another one than that of APE, and not just what version 1 can
/// hold of it.
bool Contradicts(std::string_view old, std::string_view ape) {
    const std::string_view text = Trim(old);
    if (text.empty() || !Utf8ToAnsiExactly(ape)) return false;
    return !EqualIgnoringCase(ape.substr(0, text.size()), text);
}

/// Whether a genre's number says something. "Other" and none stand for all that has no number.
bool IsGenre(std::optional<std::uint8_t> number) {
    constexpr std::uint8_t Other = 12, None = 255;
    return number && *number != Other && *number != None;
}

}  // namespace

FoundTag Together(OtherTags other, const Tag& old, std::optional<std::uint8_t> oldGenre) {
    FoundTag found{.tag = std::move(other.tag), .genreNumber = other.genreNumber, .art = other.art};
    Tag& tag = found.tag;
    tag.isRecorded = false;
    if (old.IsThere() && !tag.IsThere()) tag.marker = old.marker;
    for (const TagField& field : TagFields) {
        std::string& text = tag.*field.text;
        const std::string& oldText = old.*field.text;
        if (Trim(text).empty() || (other.isApe && Contradicts(oldText, text))) text = oldText;
    }
    if (other.isApe && IsGenre(oldGenre)) {
        tag.genre.clear();
        found.genreNumber = oldGenre;
    }
    if (tag.genre.empty() && !found.genreNumber) found.genreNumber = oldGenre;
    tag.seconds = WholeSecondsIn(tag.comment);
    if (tag.seconds.empty()) tag.seconds = WholeSecondsIn(old.comment);
    if (tag.seconds.empty() && other.seconds) tag.seconds = std::to_string(*other.seconds);
    return found;
}

std::vector<std::uint8_t> ReadEndForTags(BinaryReader& file, std::string_view path) {
    const std::uint64_t size = file.Size();
    const auto count = std::min<std::uint64_t>(size, TagFormats::EndSize);
    file.SetPosition(size - count);
    std::vector<std::uint8_t> end = file.Read(static_cast<std::size_t>(count));
    if (end.size() != count) throw Failure(FailureNumber::InputPastEnd, std::string(path));
    return end;
}

std::optional<Tag> ReadID3(Run& run, std::string_view path, GenreAs genre) {
    Steps steps(run, Location);
    steps.Concerning(path);
    FileEntry file;
    if (!steps.Try(ReadTagStep::Look, [&] { file = run.files.GetFile(path); })) return std::nullopt;
    return ReadID3Once(run, file, genre);
}

std::optional<Tag> ReadID3(Run& run, const FileEntry& file) {
    if (ReadsAllTags(run)) return Told(run, FindTags(run, file, false), GenreAs::Name);
    return ReadID3Once(run, file, GenreAs::Name);
}

std::optional<Tag> ReadID3Once(Run& run, const FileEntry& file, GenreAs genre) {
    Steps steps(run, Location);
    steps.Concerning(file.path);
    if (ReadsAllTags(run)) return Told(run, ReadFound(run, steps, file), genre);
    return file.size > TagSize ? ReadLongFile(run, steps, file.path, genre) : Tag();
}

std::string ReadAlbumArtist(Run& run, std::string_view path) {
    if (!ReadsAllTags(run)) return "";
    std::string artist;
    Steps steps(run, Location);
    steps.Concerning(path);
    steps.Try(ReadTagStep::Read, [&] {
        const std::unique_ptr<BinaryReader> stream = run.files.OpenBinary(path);
        const std::vector<std::uint8_t> end = ReadEndForTags(*stream, path);
        artist = run.tagFormats->ReadAlbumArtist(*stream, end);
    });
    return artist;
}

EmbeddedArt LookForArt(Run& run, const FileEntry& file) {
    if (run.tagFormats == nullptr) return EmbeddedArt::None;
    const std::optional<FoundTag> found = FindTags(run, file, true);
    return found ? found->art : EmbeddedArt::Unknown;
}

std::optional<EmbeddedImage> ReadArt(Run& run, const FileEntry& file) {
    std::optional<EmbeddedImage> image;
    Steps steps(run, Location);
    steps.Concerning(file.path);
    const bool isRead = steps.Try(ReadTagStep::ReadArt, [&] {
        image = run.tagFormats->ReadArt(*run.files.OpenBinary(file.path));
    });
    if (isRead && !image) NoteNoArt(run, file);
    return image;
}

void NoteNoArt(Run& run, const FileEntry& file) {
    std::optional<FoundTag> found = FindTags(run, file, false);
    if (!found) return;
    found->art = EmbeddedArt::None;
    run.knownTags->Set(file, *found);
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
