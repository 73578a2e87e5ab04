#include "app/report/report_gatherer.h"

#include <algorithm>
#include <fmt/format.h>
#include <string_view>
#include <utility>

#include "app/journal/file_type.h"
#include "app/journal/net_changes.h"
#include "app/journal/tag_differences.h"
#include "platform/basic_text.h"
#include "platform/windows_path.h"
#include "run/paths.h"
#include "undo/net_rows.h"

namespace quillon {
namespace {

/// More than a journal has between a change of a file and the word that it failed.
constexpr std::size_t MostPlanned = 1000;

std::string TextOf(const Value& value) {
    struct Words {
        std::string operator()(Null) const { return "nothing"; }
        std::string operator()(bool yes) const { return yes ? "yes" : "no"; }
        std::string operator()(std::int64_t number) const { return std::to_string(number); }
        std::string operator()(double number) const { return fmt::format("{}", number); }
        std::string operator()(DateTime time) const { return SortableDateTimeText(time); }
        std::string operator()(const std::string& text) const {
            return text.empty() ? "nothing" : text;
        }
    };
    return std::visit(Words{}, value);
}

/// Fields are mostly spelled as here; a look at their letter case costs more than all else.
bool IsNamed(std::string_view field, std::string_view name) {
    return field == name || (field.size() == name.size() && EqualIgnoringCase(field, name));
}

/// "" where it has no such text.
std::string_view TextIn(const RowChange& row, std::string_view field) {
    for (const FieldChange& change : row.fields) {
        if (!IsNamed(change.field, field)) continue;
        const Value& value = row.kind == RowChange::Kind::Removed ? change.before : change.after;
        const auto* const text = std::get_if<std::string>(&value);
        return text == nullptr ? std::string_view() : std::string_view(*text);
    }
    return {};
}

/// The artist whose folder, or whose file, this is.
std::string ArtistOfFile(std::string_view path, bool flatLayout) {
    if (flatLayout) {
        const std::string_view name = LastName(path);
        const std::size_t end = name.find('_');
        return end == std::string_view::npos ? "" : std::string(name.substr(0, end));
    }
    const std::vector<std::string> parts = Split(path, "\\");
    return parts.size() > 3 ? parts[parts.size() - 3] : "";
}

bool IsOfCoverAlone(const RowChange& row) {
    return std::ranges::all_of(
        row.fields, [](const FieldChange& field) { return IsNamed(field.field, "ImageFile"); });
}

std::optional<DeedKind> KindOf(const RowChange& row) {
    const bool isAlbum = IsNamed(row.table, "Albums");
    if (!isAlbum && !IsNamed(row.table, "Tracks")) return std::nullopt;
    switch (row.kind) {
        case RowChange::Kind::Added:
            return isAlbum ? DeedKind::AlbumAdded : DeedKind::TrackAdded;
        case RowChange::Kind::Changed:
            if (isAlbum && IsOfCoverAlone(row)) return DeedKind::CoverChanged;
            return isAlbum ? DeedKind::AlbumChanged : DeedKind::TrackChanged;
        case RowChange::Kind::Removed:
            break;
    }
    return isAlbum ? DeedKind::AlbumRemoved : DeedKind::TrackRemoved;
}

/// The number of a row that has one.
std::optional<std::int64_t> IdOf(const RowChange& row) {
    if (row.key.size() != 1 || !IsNamed(row.key.front().first, "ID")) return std::nullopt;
    const auto* const id = std::get_if<std::int64_t>(&row.key.front().second);
    return id == nullptr ? std::nullopt : std::optional(*id);
}

std::string TableOf(DeedKind kind) {
    return kind < DeedKind::TrackAdded ? "Albums" : "Tracks";
}

}  // namespace

bool RowNumbers::Add(std::int64_t number) {
    constexpr std::int64_t MostLow = std::int64_t{1} << 24U;
    if (number < 0 || number >= MostLow) return others_.insert(number).second;
    const auto place = static_cast<std::size_t>(number);
    if (place >= low_.size()) low_.resize(std::max(place + 1, 2 * low_.size()));
    if (low_[place]) return false;
    low_[place] = true;
    return true;
}

std::size_t ReportGatherer::CountOf(DeedKind kind) {
    const auto index = static_cast<std::size_t>(kind);
    if (kind < DeedKind::FileRenamed) return savedRows_.at(index);
    while (!planned_.empty())
        TellNextFile();
    return content_.total.at(index).count;
}

ReportContent ReportGatherer::Finish() {
    while (!planned_.empty())
        TellNextFile();
    for (const Unnamed& unnamed : unnamed_)
        TellUnnamed(unnamed);
    EndPhase(content_.hasEnded ? content_.end.duration : lastTime_);
    return std::move(content_);
}

void ReportGatherer::Add(const RunStarted& start) {
    content_.stamp = start.stamp;
    content_.mode = start.mode;
    content_.version = start.version;
    content_.undoes = start.undoes;
}

void ReportGatherer::Add(const PhaseStarted& phase) {
    EndPhase(phase.at);
    phase_ = phase.name;
    lastTime_ = phase.at;
}

void ReportGatherer::EndPhase(std::chrono::milliseconds at) {
    if (!phase_) return;
    content_.phases.push_back({*phase_, std::max(at - lastTime_, std::chrono::milliseconds(0))});
    phase_.reset();
}

void ReportGatherer::Add(const LogLine& line) {
    if (!line.isError) return;
    ++content_.errorCount;
    const auto known = std::ranges::find(content_.errors, line.text, &ReportContent::Error::text);
    if (known != content_.errors.end()) {
        ++known->times;
    } else if (content_.errors.size() < ReportContent::MostListed) {
        content_.errors.push_back({line.text});
    }
}

void ReportGatherer::Add(const RunEnded& end) {
    content_.hasEnded = true;
    content_.end = end;
}

DeedList& ReportGatherer::ListOf(DeedKind kind, std::string_view artist) {
    const auto index = static_cast<std::size_t>(kind);
    if (kind >= DeedKind::PlaylistWritten) return content_.total.at(index);
    if (ofLastArtist_ == nullptr || lastArtist_ != artist) {
        lastArtist_ = artist;
        ofLastArtist_ = &content_.artists[lastArtist_];
    }
    return ofLastArtist_->at(index);
}

/// The deed where it is one of those that are told, to add details to.
DeedList::Deed* ReportGatherer::AddDeed(DeedKind kind, std::string_view artist,
                                        std::string_view what) {
    DeedList& total = content_.total.at(static_cast<std::size_t>(kind));
    DeedList& own = ListOf(kind, artist);
    if (&own != &total) ++own.count;
    if (total.count++ >= ReportContent::MostListed) return nullptr;
    own.first.push_back({std::string(what), {}});
    return &own.first.back();
}

void ReportGatherer::AddOtherRow(const std::string& table) {
    DeedList& others = content_.total.at(static_cast<std::size_t>(DeedKind::RowOfOtherTable));
    ++others.count;
    const auto known = std::ranges::find(others.first, table, &DeedList::Deed::what);
    if (known == others.first.end()) others.first.push_back({table, {}});
}

/// Whether it has been told of this row. A row that is removed is told of once more.
bool ReportGatherer::IsSeen(const RowChange& row, std::optional<std::int64_t> id) {
    const bool isRemoved = row.kind == RowChange::Kind::Removed;
    if (!id) {
        const std::string key = KeyText(row.table, row.key) + (isRemoved ? "-" : "");
        return !seenRows_.insert(ContentHash(key)).second;
    }
    const std::size_t table = IsNamed(row.table, "Albums") ? 0 : 2;
    return !seenIds_.at(table + (isRemoved ? 1 : 0)).Add(*id);
}

void ReportGatherer::Add(const RowChange& row) {
    if (IsOfDifferences(row.table)) {
        if (!std::exchange(hasDifferences_, true)) AddOtherRow(row.table);
        return;
    }
    stored_.Note(row);
    const std::optional<DeedKind> kind = KindOf(row);
    if (!kind) return AddOtherRow(row.table);
    if (IsNamed(row.table, "Albums")) covers_.Note(row);
    const std::optional<std::int64_t> id = IdOf(row);
    // What is changed in a row that is new anyway says nothing.
    if (IsSeen(row, id)) return;
    ++rows_.at(static_cast<std::size_t>(*kind));
    const std::string_view artist = TextIn(row, "Artist"), title = TextIn(row, "Title");
    if (!id || (!artist.empty() && !title.empty())) return TellRow(*kind, row, artist, title);
    const bool isListed =
        unnamedOf_.at(static_cast<std::size_t>(*kind))++ < ReportContent::MostListed;
    unnamed_.push_back({*kind, *id, isListed ? std::make_unique<RowChange>(row) : nullptr});
}

void ReportGatherer::Add(const DateReplaced& date) {
    if (!IsOfDifferences(date.table)) AddOtherRow(date.table);
}

void ReportGatherer::TellUnnamed(const Unnamed& unnamed) {
    const RowName known =
        facts_.nameOf ? facts_.nameOf(TableOf(unnamed.kind), unnamed.id) : RowName();
    if (!unnamed.row) {
        AddDeed(unnamed.kind, known.artist, known.title);
        return;
    }
    const std::string_view artist = TextIn(*unnamed.row, "Artist"),
                           title = TextIn(*unnamed.row, "Title");
    TellRow(unnamed.kind, *unnamed.row, artist.empty() ? known.artist : artist,
            title.empty() ? known.title : title);
}

void ReportGatherer::TellRow(DeedKind kind, const RowChange& row, std::string_view artist,
                             std::string_view title) {
    DeedList::Deed* const deed = AddDeed(kind, artist, title);
    if (deed == nullptr) return;
    if (title.empty()) {
        for (const auto& [field, value] : row.key)
            deed->what += (deed->what.empty() ? "" : ", ") + field + ' ' + TextOf(value);
    }
    if (row.kind != RowChange::Kind::Changed) return;
    for (const FieldChange& field : row.fields)
        deed->details.push_back(field.field + ": " + TextOf(field.before) + " → " +
                                TextOf(field.after));
}

void ReportGatherer::Add(const FileChange& change) {
    if (!IsOfLibrary(change)) return;
    if (change.kind == FileChange::Kind::Discarded) return ForgetWhatMade(change.path);
    planned_.push_back(change);
    // Of those that are recorded together any may fail.
    const auto mayBeTold = [&](const FileChange& first) {
        return first.group == 0 || first.group != change.group;
    };
    while (planned_.size() > MostPlanned && mayBeTold(planned_.front()))
        TellNextFile();
}

void ReportGatherer::Add(const FileChangeFailed& failed) {
    std::erase_if(planned_,
                  [&](const FileChange& change) { return change.number == failed.number; });
}

/// A run takes back at once what it has made.
void ReportGatherer::ForgetWhatMade(const std::string& path) {
    std::erase_if(planned_, [&](const FileChange& change) {
        const bool isCopy = change.kind == FileChange::Kind::Copied;
        const bool isMade = isCopy || change.kind == FileChange::Kind::Written;
        return isMade && EqualIgnoringCase(isCopy ? change.target : change.path, path);
    });
}

/// Pages are made in a folder beside the set, which is deleted where it does not take its place.
void ReportGatherer::ForgetPagesIn(const std::string& folder) {
    DeedList& pages = content_.total.at(static_cast<std::size_t>(DeedKind::PageWritten));
    const bool areTheirs = std::ranges::any_of(pages.first, [&](const DeedList::Deed& page) {
        return EqualIgnoringCase(ParentFolder(page.what), folder);
    });
    if (areTheirs) pages = {};
}

void ReportGatherer::TellNextFile() {
    Tell(planned_.front());
    planned_.pop_front();
}

/// As AddDeed; nothing of a file that has been told of.
DeedList::Deed* ReportGatherer::AddFile(DeedKind kind, const std::string& path,
                                        const std::string& what) {
    const std::string thing = std::to_string(static_cast<int>(kind)) + path;
    if (!seenFiles_.insert(ContentHash(thing)).second) return nullptr;
    const bool hasArtist = kind < DeedKind::PlaylistWritten;
    return AddDeed(kind, hasArtist ? ArtistOfFile(path, facts_.flatLayout) : "", what);
}

void ReportGatherer::AddWritten(const FileChange& change, const std::string& path) {
    switch (TypeOfFile(path)) {
        case FileType::Playlist:
            AddFile(change.before ? DeedKind::PlaylistRewritten : DeedKind::PlaylistWritten, path,
                    path);
            break;
        case FileType::Page:
            AddFile(DeedKind::PageWritten, path, path);
            break;
        case FileType::Image:
            AddFile(DeedKind::ImageWritten, path, path);
            break;
        case FileType::Music:
            AddFile(DeedKind::FileCopied, path, path);
            break;
        case FileType::Other:
            AddFile(DeedKind::FileWritten, path, path);
            break;
    }
}

void ReportGatherer::AddDeleted(const FileChange& change) {
    const std::string kept = change.before ? change.before->keptAs : "";
    const FileType type = TypeOfFile(change.path);
    if (type == FileType::Music) {
        AddFile(DeedKind::FileRemoved, change.path,
                change.path + (kept.empty() ? ", for good" : ", kept as " + kept));
    } else if (type == FileType::Playlist) {
        AddFile(DeedKind::PlaylistDeleted, change.path, change.path);
    }
}

/// A name that a file has only on its way to another one is not told of.
void ReportGatherer::AddRenamed(const FileChange& change) {
    if (TypeOfFile(change.path) != FileType::Music) return;
    std::string from = change.path;
    if (const auto known = onTheWay_.find(change.path); known != onTheWay_.end()) {
        from = known->second;
        onTheWay_.erase(known);
    }
    if (change.target.find(".quillon-renaming.") != std::string::npos) {
        onTheWay_[change.target] = from;
        return;
    }
    AddFile(DeedKind::FileRenamed, from, from + " → " + change.target);
}

void ReportGatherer::AddTag(const FileChange& change) {
    DeedList::Deed* const deed = AddFile(DeedKind::TagWritten, change.path, change.path);
    if (deed == nullptr) return;
    const TagDifferences differences = TagDifferencesOf(change);
    if (!differences.hadTag) deed->details.emplace_back("It had no tag");
    for (const TagDifferences::Difference& one : differences.fields) {
        deed->details.push_back(one.field + ": " + (one.before.empty() ? "nothing" : one.before) +
                                " → " + (one.after.empty() ? "nothing" : one.after));
    }
}

void ReportGatherer::Tell(const FileChange& change) {
    switch (change.kind) {
        case FileChange::Kind::Written:
            return AddWritten(change, change.path);
        case FileChange::Kind::Copied:
            return AddWritten(change, change.target);
        case FileChange::Kind::EndWritten:
            return AddTag(change);
        case FileChange::Kind::PieceReplaced:
            AddFile(DeedKind::TagWritten, change.path, change.path);
            return;
        case FileChange::Kind::Moved:
            return AddRenamed(change);
        case FileChange::Kind::Deleted:
            return AddDeleted(change);
        case FileChange::Kind::FolderDeleted:
            return ForgetPagesIn(change.path);
        default:
            return;
    }
}

}  // namespace quillon
