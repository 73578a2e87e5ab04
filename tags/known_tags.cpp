#include "tags/known_tags.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "database/snapshot_file.h"
#include "platform/basic_text.h"
#include "platform/content_hash.h"
#include "run/log.h"
#include "run/run.h"

namespace quillon {
namespace {

constexpr std::string_view TagKind = "Tag";
constexpr std::array Kinds{TagKind};
constexpr SnapshotFormat Format{.title = "Quillon known tags 1", .kinds = Kinds};

/// All that a tag of all kinds says.
constexpr std::array<std::string Tag::*, 10> Texts{
    &Tag::marker,  &Tag::song,  &Tag::artist, &Tag::album, &Tag::year,
    &Tag::comment, &Tag::track, &Tag::genre,  &Tag::disc,  &Tag::seconds};

/// No text of a tag holds a zero byte.
std::string JoinedTexts(const Tag& tag) {
    std::string joined;
    std::size_t size = Texts.size();
    for (std::string Tag::* const text : Texts)
        size += (tag.*text).size();
    joined.reserve(size);
    for (std::string Tag::* const text : Texts) {
        joined += tag.*text;
        joined += '\0';
    }
    return joined;
}

/// Words for what is known of a picture; they stand behind the texts. Files of earlier versions
/// have none there.
constexpr std::array<std::string_view, 4> ArtWords{"", "none", "art", "large"};

std::string_view WordOf(EmbeddedArt art) {
    return ArtWords.at(static_cast<std::size_t>(art));
}

/// Takes the word from the end of the texts.
EmbeddedArt TakeArt(std::string& texts) {
    const std::size_t end = texts.rfind('\0');
    const std::string_view word =
        std::string_view(texts).substr(end == std::string::npos ? texts.size() : end + 1);
    const auto* const found = std::ranges::find(ArtWords, word);
    if (found == ArtWords.end()) return EmbeddedArt::Unknown;
    texts.resize(texts.size() - word.size());
    return static_cast<EmbeddedArt>(found - ArtWords.begin());
}

Tag TagOf(std::string_view texts) {
    Tag tag;
    tag.isRecorded = false;
    for (std::string Tag::* const text : Texts) {
        const std::size_t end = std::min(texts.find('\0'), texts.size());
        tag.*text = texts.substr(0, end);
        texts.remove_prefix(std::min(end + 1, texts.size()));
    }
    return tag;
}

std::int64_t SecondsOf(DateTime time) {
    constexpr double SecondsADay = 24 * 60 * 60;
    return std::llround(time.days * SecondsADay);
}

std::int64_t Signed(std::uint64_t number) {
    return static_cast<std::int64_t>(number);
}

}  // namespace

std::string KnownTagsPath(std::string_view database) {
    return std::string(database) + ".tags";
}

std::string KnownTags::Path() const {
    return KnownTagsPath(run_.settings.Nirvis_CDJ_DB);
}

KnownTags::KnownTags(Run& run) : run_(run) {
    if (!run_.files.FileExists(Path())) return;
    const bool isWhole = ReadSnapshot(run_.files, Path(), Format, [this](auto, SnapshotLine& line) {
        const auto key = static_cast<std::uint64_t>(line.Whole<std::int64_t>());
        Entry entry;
        entry.size = static_cast<std::uint64_t>(line.Whole<std::int64_t>());
        entry.time = line.Whole<std::int64_t>();
        entry.changed = line.Whole<std::int64_t>();
        entry.genreNumber = line.WholeOrNull<std::uint8_t>();
        entry.texts = line.Text();
        entry.art = TakeArt(entry.texts);
        entries_[key] = std::move(entry);
    });
    if (isWhole) return;
    entries_.clear();
    isChanged_ = true;
    WriteLog(run_, LogSource,
             "What is known of the tags of music files is damaged, and is made anew: " + Path());
}

std::shared_ptr<KnownTags> KnownTags::Nothing(Run& run) {
    return std::shared_ptr<KnownTags>(new KnownTags(run, IsKept::No));
}

std::uint64_t KnownTags::KeyOf(std::string_view path) {
    if (path != lastPath_) {
        lastPath_ = path;
        lastKey_ = ContentHash(LowerCase(path));
    }
    return lastKey_;
}

std::optional<FoundTag> KnownTags::Find(const FileEntry& file) {
    const auto found = entries_.find(KeyOf(file.path));
    if (found == entries_.end() || file.changed == 0) return std::nullopt;
    Entry& entry = found->second;
    if (entry.changed != file.changed || entry.size != file.size ||
        entry.time != SecondsOf(file.modified))
        return std::nullopt;
    entry.isKept = true;
    return FoundTag{.tag = TagOf(entry.texts), .genreNumber = entry.genreNumber, .art = entry.art};
}

void KnownTags::Set(const FileEntry& file, const FoundTag& found) {
    if (file.changed == 0) return;
    entries_[KeyOf(file.path)] = {.size = file.size,
                                  .time = SecondsOf(file.modified),
                                  .changed = file.changed,
                                  .texts = JoinedTexts(found.tag),
                                  .genreNumber = found.genreNumber,
                                  .art = found.art,
                                  .isKept = true};
    isChanged_ = true;
}

void KnownTags::Keep(std::string_view path) {
    const auto found = entries_.find(KeyOf(path));
    if (found != entries_.end()) found->second.isKept = true;
}

void KnownTags::Save() {
    if (!isChanged_ || !isKept_) return;
    SnapshotWriter file(run_.files, Path(), Format);
    for (const auto& [key, entry] : entries_) {
        std::optional<std::int64_t> genre;
        if (entry.genreNumber) genre = *entry.genreNumber;
        file.Line(TagKind)
            .Whole(Signed(key))
            .Whole(Signed(entry.size))
            .Whole(entry.time)
            .Whole(entry.changed)
            .Whole(genre)
            .Text(entry.texts + std::string(WordOf(entry.art)));
    }
    file.Close();
    isChanged_ = false;
}

void KnownTags::SaveKept() {
    const std::size_t gone =
        std::erase_if(entries_, [](const auto& entry) { return !entry.second.isKept; });
    isChanged_ |= gone > 0;
    Save();
}

}  // namespace quillon
