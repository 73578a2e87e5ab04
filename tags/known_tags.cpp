#include "tags/known_tags.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

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

/// Words for what is known of a picture; they stand behind the texts. Files of earlier versions
/// have none there.
constexpr std::array<std::string_view, 4> ArtWords{"", "none", "art", "large"};

/// No text of a tag holds a zero byte.
std::string JoinedTexts(const FoundTag& found) {
    const std::string_view art = ArtWords.at(static_cast<std::size_t>(found.art));
    std::string joined;
    std::size_t size = Texts.size() + art.size();
    for (std::string Tag::* const text : Texts)
        size += (found.tag.*text).size();
    joined.reserve(size);
    for (std::string Tag::* const text : Texts) {
        joined += found.tag.*text;
        joined += '\0';
    }
    joined += art;
    return joined;
}

/// By the word at the end of the texts.
EmbeddedArt ArtIn(std::string_view texts) {
    const std::size_t end = texts.rfind('\0');
    const std::string_view word = texts.substr(end == std::string::npos ? texts.size() : end + 1);
    const auto* const found = std::ranges::find(ArtWords, word);
    if (found == ArtWords.end()) return EmbeddedArt::Unknown;
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

std::uint32_t UpperHalf(std::uint64_t key) {
    constexpr unsigned Bits = 32;
    return static_cast<std::uint32_t>(key >> Bits);
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
        Row& row = RowFor(key);
        row.size = static_cast<std::uint64_t>(line.Whole<std::int64_t>());
        row.time = line.Whole<std::int64_t>();
        row.changed = line.Whole<std::int64_t>();
        row.genreNumber = line.WholeOrNull<std::uint8_t>();
        SetTexts(row, line.Text());
        row.art = ArtIn(TextsOf(row));
    });
    if (isWhole) return;
    rows_.clear();
    texts_.clear();
    Index();
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

KnownTags::Slot& KnownTags::SlotOf(std::uint64_t key) {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t at = key & mask;; at = (at + 1) & mask) {
        Slot& slot = slots_[at];
        if (slot.row == 0 || (slot.check == UpperHalf(key) && rows_[slot.row - 1].key == key))
            return slot;
    }
}

KnownTags::Row* KnownTags::FindRow(std::uint64_t key) {
    if (slots_.empty()) return nullptr;
    const Slot& slot = SlotOf(key);
    return slot.row == 0 ? nullptr : &rows_[slot.row - 1];
}

KnownTags::Row& KnownTags::RowFor(std::uint64_t key) {
    if (Row* const row = FindRow(key)) return *row;
    rows_.push_back({.key = key});
    if (rows_.size() * 2 > slots_.size()) {
        Index();
    } else {
        Enter(rows_.size());
    }
    return rows_.back();
}

/// Makes the slots anew, with room for as many rows again.
void KnownTags::Index() {
    constexpr std::size_t Least = 64;
    slots_.assign(std::bit_ceil(std::max(rows_.size() * 4, Least)), {});
    for (std::size_t place = 1; place <= rows_.size(); ++place)
        Enter(place);
}

void KnownTags::Enter(std::size_t place) {
    const std::uint64_t key = rows_[place - 1].key;
    SlotOf(key) = {.check = UpperHalf(key), .row = static_cast<std::uint32_t>(place)};
}

/// What does not fit into the place of the old ones comes behind all others.
void KnownTags::SetTexts(Row& row, std::string_view texts) {
    if (texts.size() > row.textsSize) {
        row.textsAt = texts_.size();
        texts_ += texts;
    } else {
        texts_.replace(row.textsAt, texts.size(), texts);
    }
    row.textsSize = static_cast<std::uint32_t>(texts.size());
}

std::optional<FoundTag> KnownTags::Find(const FileEntry& file) {
    Row* const row = FindRow(KeyOf(file.path));
    if (row == nullptr || file.changed == 0) return std::nullopt;
    if (row->changed != file.changed || row->size != file.size ||
        row->time != SecondsOf(file.modified))
        return std::nullopt;
    row->isKept = true;
    return FoundTag{.tag = TagOf(TextsOf(*row)), .genreNumber = row->genreNumber, .art = row->art};
}

void KnownTags::Set(const FileEntry& file, const FoundTag& found) {
    if (file.changed == 0) return;
    Row& row = RowFor(KeyOf(file.path));
    row.size = file.size;
    row.time = SecondsOf(file.modified);
    row.changed = file.changed;
    SetTexts(row, JoinedTexts(found));
    row.genreNumber = found.genreNumber;
    row.art = found.art;
    row.isKept = true;
    isChanged_ = true;
}

void KnownTags::Keep(std::string_view path) {
    if (Row* const row = FindRow(KeyOf(path))) row->isKept = true;
}

void KnownTags::Save() {
    if (!isChanged_ || !isKept_) return;
    SnapshotWriter file(run_.files, Path(), Format);
    for (const Row& row : rows_) {
        std::optional<std::int64_t> genre;
        if (row.genreNumber) genre = *row.genreNumber;
        file.Line(TagKind)
            .Whole(Signed(row.key))
            .Whole(Signed(row.size))
            .Whole(row.time)
            .Whole(row.changed)
            .Whole(genre)
            .Text(TextsOf(row));
    }
    file.Close();
    isChanged_ = false;
}

void KnownTags::SaveKept() {
    if (std::erase_if(rows_, [](const Row& row) { return !row.isKept; }) > 0) {
        Index();
        isChanged_ = true;
    }
    Save();
}

}  // namespace quillon
