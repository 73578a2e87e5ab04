#include "app/report/report_content.h"

#include <algorithm>
#include <deque>
#include <fmt/format.h>
#include <optional>
#include <unordered_set>
#include <utility>

#include "platform/basic_text.h"
#include "run/paths.h"
#include "run/sound_files.h"

namespace quillon {
namespace {

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

std::string FieldText(const RowChange& row, std::string_view field) {
    for (const FieldChange& change : row.fields) {
        if (!EqualIgnoringCase(change.field, field)) continue;
        const Value& value = row.kind == RowChange::Kind::Removed ? change.before : change.after;
        return IsNull(value) ? "" : TextOf(value);
    }
    return "";
}

std::string KeyText(const RowChange& row) {
    std::string text = row.table;
    for (const auto& [field, value] : row.key)
        text += '\x1F' + TextOf(value);
    return text;
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

bool HasEnding(std::string_view path, std::string_view ending) {
    return EqualIgnoringCase(Right(path, ending.size()), ending);
}

bool IsPlaylist(std::string_view path) {
    return HasEnding(path, ".pla") || HasEnding(path, ".m3u");
}

bool IsPage(std::string_view path) {
    return HasEnding(path, ".asp") || HasEnding(path, ".html");
}

bool IsImage(std::string_view path) {
    return HasEnding(path, ".jpg") || HasEnding(path, ".gif") || HasEnding(path, ".png") ||
           HasEnding(path, ".bmp");
}

class Gatherer {
  public:
    explicit Gatherer(const ReportFacts& facts) : facts_(facts) {}

    ReportContent Finish() {
        while (!planned_.empty())
            TellNextFile();
        EndPhase(content_.hasEnded ? content_.end.duration : lastTime_);
        return std::move(content_);
    }

    void operator()(const RunStarted& start) {
        content_.stamp = start.stamp;
        content_.mode = start.mode;
        content_.version = start.version;
        content_.undoes = start.undoes;
    }
    void operator()(const ModeChosen& mode) { content_.mode = mode.mode; }
    void operator()(const PhaseStarted& phase) {
        EndPhase(phase.at);
        phase_ = phase.name;
        lastTime_ = phase.at;
    }
    void operator()(const RowsSaved&) {}
    void operator()(const FileChangeFailed& failed) {
        std::erase_if(planned_,
                      [&](const FileChange& change) { return change.number == failed.number; });
    }
    void operator()(const LogLine& line) {
        if (!line.isError) return;
        ++content_.errorCount;
        const auto known =
            std::ranges::find(content_.errors, line.text, &ReportContent::Error::text);
        if (known != content_.errors.end()) {
            ++known->times;
        } else if (content_.errors.size() < ReportContent::MostListed) {
            content_.errors.push_back({line.text});
        }
    }
    void operator()(const RunEnded& end) {
        content_.hasEnded = true;
        content_.end = end;
    }
    void operator()(const RowChange& row);
    void operator()(const FileChange& change) {
        if (IsOfDatedCopy(change) || IsOfOwnNotes(change)) return;
        planned_.push_back(change);
        if (planned_.size() > MostPlanned) TellNextFile();
    }

  private:
    /// More than a journal has between a change of a file and the word that it failed.
    static constexpr std::size_t MostPlanned = 1000;

    void TellNextFile() {
        Tell(planned_.front());
        planned_.pop_front();
    }
    void Tell(const FileChange& change);

    void EndPhase(std::chrono::milliseconds at) {
        if (!phase_) return;
        content_.phases.push_back(
            {*phase_, std::max(at - lastTime_, std::chrono::milliseconds(0))});
        phase_.reset();
    }

    /// The deed where it is one of those that are told, to add details to.
    DeedList::Deed* Add(DeedKind kind, const std::string& artist, std::string what) {
        const auto index = static_cast<std::size_t>(kind);
        DeedList& total = content_.total.at(index);
        DeedList& own =
            kind < DeedKind::PlaylistWritten ? content_.artists[artist].at(index) : total;
        if (&own != &total) ++own.count;
        if (total.count++ >= ReportContent::MostListed) return nullptr;
        own.first.push_back({std::move(what), {}});
        return &own.first.back();
    }

    RowName NameOf(const RowChange& row) const {
        RowName name{FieldText(row, "Artist"), FieldText(row, "Title")};
        if ((name.artist.empty() || name.title.empty()) && facts_.nameOf) {
            RowName found = facts_.nameOf(row.table, row.key);
            if (name.artist.empty()) name.artist = std::move(found.artist);
            if (name.title.empty()) name.title = std::move(found.title);
        }
        if (name.title.empty()) {
            for (const auto& [field, value] : row.key)
                name.title += (name.title.empty() ? "" : ", ") + field + ' ' + TextOf(value);
        }
        return name;
    }

    void AddFile(DeedKind kind, const std::string& path, std::string what) {
        const std::string thing = std::to_string(static_cast<int>(kind)) + path;
        if (!seenFiles_.insert(ContentHash(thing)).second) return;
        const bool hasArtist = kind < DeedKind::PlaylistWritten;
        Add(kind, hasArtist ? ArtistOfFile(path, facts_.flatLayout) : "", std::move(what));
    }
    void AddWritten(const FileChange& change, const std::string& path);
    void AddDeleted(const FileChange& change);

    const ReportFacts& facts_;
    ReportContent content_;
    std::deque<FileChange> planned_;  ///< not told yet, as they may have failed
    /// Hashes: there may be some hundred thousand.
    std::unordered_set<std::uint64_t> seenRows_, seenFiles_;
    std::optional<std::string> phase_;
    std::chrono::milliseconds lastTime_{0};
};

std::optional<DeedKind> KindOf(const RowChange& row) {
    const bool isAlbum = EqualIgnoringCase(row.table, "Albums");
    if (!isAlbum && !EqualIgnoringCase(row.table, "Tracks")) return std::nullopt;
    switch (row.kind) {
        case RowChange::Kind::Added:
            return isAlbum ? DeedKind::AlbumAdded : DeedKind::TrackAdded;
        case RowChange::Kind::Changed:
            return isAlbum ? DeedKind::AlbumChanged : DeedKind::TrackChanged;
        case RowChange::Kind::Removed:
            break;
    }
    return isAlbum ? DeedKind::AlbumRemoved : DeedKind::TrackRemoved;
}

void Gatherer::operator()(const RowChange& row) {
    const std::optional<DeedKind> kind = KindOf(row);
    if (!kind) {
        const auto index = static_cast<std::size_t>(DeedKind::RowOfOtherTable);
        DeedList& others = content_.total.at(index);
        ++others.count;
        const auto known = std::ranges::find(others.first, row.table, &DeedList::Deed::what);
        if (known == others.first.end()) others.first.push_back({row.table, {}});
        return;
    }
    // A row is told of once: what is changed in a row that is new anyway says nothing.
    const bool isRemoved = row.kind == RowChange::Kind::Removed;
    if (!seenRows_.insert(ContentHash(KeyText(row) + (isRemoved ? "-" : ""))).second) return;
    const RowName name = NameOf(row);
    DeedList::Deed* const deed = Add(*kind, name.artist, name.title);
    if (deed == nullptr || row.kind != RowChange::Kind::Changed) return;
    for (const FieldChange& field : row.fields)
        deed->details.push_back(field.field + ": " + TextOf(field.before) + " → " +
                                TextOf(field.after));
}

void Gatherer::AddWritten(const FileChange& change, const std::string& path) {
    if (IsPlaylist(path)) {
        AddFile(change.before ? DeedKind::PlaylistRepaired : DeedKind::PlaylistWritten, path, path);
    } else if (IsPage(path)) {
        AddFile(DeedKind::PageWritten, path, path);
    } else if (IsImage(path)) {
        AddFile(DeedKind::ImageWritten, path, path);
    } else if (IsSoundFile(path)) {
        AddFile(DeedKind::FileCopied, path, path);
    } else {
        AddFile(DeedKind::FileWritten, path, path);
    }
}

void Gatherer::AddDeleted(const FileChange& change) {
    const std::string kept = change.before ? change.before->keptAs : "";
    if (IsSoundFile(change.path)) {
        AddFile(DeedKind::FileRemoved, change.path,
                change.path + (kept.empty() ? ", for good" : ", kept as " + kept));
    } else if (IsPlaylist(change.path)) {
        AddFile(DeedKind::PlaylistDeleted, change.path, change.path);
    }
}

void Gatherer::Tell(const FileChange& change) {
    switch (change.kind) {
        case FileChange::Kind::Written:
            return AddWritten(change, change.path);
        case FileChange::Kind::Copied:
            return AddWritten(change, change.target);
        case FileChange::Kind::EndWritten:
        case FileChange::Kind::PieceReplaced:
            return AddFile(DeedKind::TagWritten, change.path, change.path);
        case FileChange::Kind::Moved:
            if (IsSoundFile(change.path))
                AddFile(DeedKind::FileRenamed, change.path, change.path + " → " + change.target);
            return;
        case FileChange::Kind::Deleted:
            return AddDeleted(change);
        default:
            return;
    }
}

}  // namespace

bool ReportContent::HasChanges() const {
    return std::ranges::any_of(total, [](const DeedList& list) { return list.count > 0; });
}

ReportContent GatherReport(const VisitEachRecord& visitEach, const ReportFacts& facts) {
    Gatherer gatherer(facts);
    visitEach([&gatherer](const ChangeRecord& record) { std::visit(gatherer, record); });
    return gatherer.Finish();
}

}  // namespace quillon
