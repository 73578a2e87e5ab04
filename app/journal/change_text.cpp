#include "app/journal/change_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fmt/format.h>
#include <initializer_list>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "app/journal/file_type.h"
#include "app/journal/tag_differences.h"
#include "app/text/display_text.h"
#include "platform/basic_text.h"
#include "platform/windows_path.h"

namespace quillon {
namespace {

using RowKind = RowChange::Kind;
using FileKind = FileChange::Kind;

/// The lines of one heading, as far as they are told.
struct Group {
    std::string heading;
    std::size_t count = 0;
    std::size_t told = 0;  ///< that have a line
    std::string lines = {};
};

/// Where a heading stands: what matters most comes first.
std::size_t PlaceOf(std::string_view heading) {
    constexpr std::array<std::string_view, 9> Order{"Albums",    "Tracks",    "Music files",
                                                    "Tags",      "Playlists", "Images",
                                                    "Pages of ", "Songs of ", "Artists of "};
    const auto* const found = std::ranges::find_if(
        Order, [heading](std::string_view start) { return heading.starts_with(start); });
    const bool isLast = heading.find("ackups") != std::string_view::npos;
    return isLast ? Order.size() + 1 : static_cast<std::size_t>(found - Order.begin());
}

/// Groups by what they are about, else in the order of their first change.
class Groups {
  public:
    explicit Groups(std::size_t most) : most_(most) {}

    /// `more` are further lines of the same, whole.
    void Add(const std::string& heading, std::string_view line, const std::string& more = "") {
        const auto [place, isNew] = places_.try_emplace(heading, groups_.size());
        if (isNew) groups_.push_back({.heading = heading});
        Group& group = groups_[place->second];
        if (++group.count > most_) return;
        ++group.told;
        group.lines += "  " + OneLine(line) + '\n' + more;
    }

    /// Nothing is told of these but how many they are.
    void CountAlone(const std::string& heading, std::size_t count) {
        groups_.push_back({.heading = heading, .count = count, .told = count});
    }

    /// So many more, of which there are no lines.
    void Count(const std::string& heading, std::size_t count) {
        const auto [place, isNew] = places_.try_emplace(heading, groups_.size());
        if (isNew) groups_.push_back({.heading = heading});
        groups_[place->second].count += count;
    }

    std::string Text() const {
        std::vector<const Group*> order;
        order.reserve(groups_.size());
        for (const Group& group : groups_)
            order.push_back(&group);
        std::ranges::stable_sort(order, {},
                                 [](const Group* group) { return PlaceOf(group->heading); });
        std::string text;
        for (const Group* const one : order) {
            const Group& group = *one;
            if (!text.empty()) text += '\n';
            text += fmt::format("{}: {}\n{}", OneLine(group.heading), group.count, group.lines);
            if (group.count > group.told)
                text += fmt::format("  ... and {} more\n", group.count - group.told);
        }
        return text;
    }

  private:
    std::size_t most_;
    std::vector<Group> groups_;
    std::map<std::string, std::size_t> places_;
};

/// Of an address on the net the end says most.
std::string Shortened(const std::string& text) {
    const std::size_t scheme = text.find("://"), last = text.rfind('/');
    const bool isLong = scheme != std::string::npos && last > scheme + 2;
    return isLong ? text.substr(0, scheme + 3) + "..." + text.substr(last) : text;
}

struct Shown {
    std::string operator()(Null) const { return "nothing"; }
    std::string operator()(bool value) const { return value ? "yes" : "no"; }
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    std::string operator()(double value) const { return fmt::format("{}", value); }
    std::string operator()(const DateTime& value) const {
        const bool isDate = value.days > -600'000 && value.days < 2'900'000;
        return isDate ? SortableDateTimeText(value) : fmt::format("{}", value.days);
    }
    std::string operator()(const std::string& value) const { return '"' + Shortened(value) + '"'; }
};

std::string ShownValue(const Value& value) {
    return std::visit(Shown{}, value);
}

/// What a change tells of a field, as it is now or was last.
std::string TextOf(const RowChange& change, std::string_view field) {
    for (const FieldChange& one : change.fields) {
        if (!EqualIgnoringCase(one.field, field)) continue;
        const Value& value = change.kind == RowKind::Removed ? one.before : one.after;
        const auto* const text = std::get_if<std::string>(&value);
        return text == nullptr ? "" : *text;
    }
    return "";
}

/// The parts that are known, in one text.
std::string Joined(const RowChange& change, std::initializer_list<std::string_view> fields) {
    std::string text;
    for (const std::string_view field : fields) {
        const std::string part = TextOf(change, field);
        text += (text.empty() || part.empty() ? "" : " - ") + part;
    }
    return text;
}

/// What names a row that comes or goes.
std::string OwnName(const RowChange& change) {
    if (change.table == "Albums") return Joined(change, {"Artist", "Title"});
    if (change.table == "Spinner") return Joined(change, {"Artist", "Album", "Song"});
    if (change.table == "SpinnerID3Differences")
        return Joined(change, {"Artist", "Album", "Field"});
    if (change.table == "Playlists") return TextOf(change, "FilePath") + TextOf(change, "Filename");
    for (const char* const field : {"SoundFile", "FileName", "Path", "Song", "Artist", "Title"})
        if (const std::string text = TextOf(change, field); !text.empty()) return text;
    return "";
}

std::string NameOf(const RowChange& change, const ChangeTextOptions& options) {
    std::string name = change.kind == RowKind::Changed ? "" : OwnName(change);
    if (name.empty() && options.nameOf) name = options.nameOf(change);
    if (!name.empty()) return name;
    for (const auto& [field, value] : change.key)
        name += (name.empty() ? "" : ", ") + field + ' ' + ShownValue(value);
    return name;
}

/// The target in full only where it is in another folder.
std::string FromTo(const std::string& path, const std::string& target) {
    const std::string_view folder = ParentFolder(path);
    const bool isBeside = !folder.empty() && EqualIgnoringCase(folder, ParentFolder(target));
    return path + " -> " + (isBeside ? target.substr(folder.size() + 1) : target);
}

/// What becomes of the song's file; nothing where it stays.
std::optional<std::string> NewFileOf(const RowChange& change) {
    for (const FieldChange& field : change.fields) {
        const auto* const before = std::get_if<std::string>(&field.before);
        const auto* const after = std::get_if<std::string>(&field.after);
        if (field.field == "SoundFile" && before != nullptr && after != nullptr)
            return FromTo(*before, *after);
    }
    return std::nullopt;
}

/// The row, and what becomes of its fields. The files name a song that gets another one.
std::string ChangedRow(const RowChange& change, const ChangeTextOptions& options) {
    const std::optional<std::string> file = NewFileOf(change);
    const std::string name = file ? *file : NameOf(change, options);
    std::string fields;
    for (const FieldChange& field : change.fields) {
        if (file && field.field == "SoundFile") continue;
        fields += fmt::format("{}{} {} -> {}", fields.empty() ? ": " : ", ", field.field,
                              ShownValue(field.before), ShownValue(field.after));
    }
    return name + fields;
}

bool IsNumber(const Value& value) {
    return IsNull(value) || std::holds_alternative<std::int64_t>(value) ||
           std::holds_alternative<double>(value);
}

bool IsOfNumbersAlone(const RowChange& change) {
    return !change.fields.empty() &&
           std::ranges::all_of(change.fields, [](const FieldChange& field) {
               return IsNumber(field.before) && IsNumber(field.after);
           });
}

void AddRow(Groups& groups, const RowChange& change, const ChangeTextOptions& options) {
    const std::string things = ThingsOf(change.table);
    if (change.kind == RowKind::Added)
        return groups.Add(things + " added", NameOf(change, options));
    if (change.kind == RowKind::Removed)
        return groups.Add(things + " removed", NameOf(change, options));
    groups.Add(things + (IsOfNumbersAlone(change) ? " whose numbers change" : " changed"),
               ChangedRow(change, options));
}

/// What kind of file it is, for the heading.
std::string FilesOf(std::string_view path) {
    switch (TypeOfFile(path)) {
        case FileType::Music:
            return "Music files";
        case FileType::Playlist:
            return "Playlists";
        case FileType::Image:
            return "Images";
        case FileType::Page:
            return "Pages of the album picker";
        case FileType::Other:
            break;
    }
    return "Other files";
}

std::string TagText(const FileChange& change) {
    const TagDifferences differences = TagDifferencesOf(change);
    std::string text = differences.hadTag ? "" : " (it had no tag)";
    for (const TagDifferences::Difference& one : differences.fields) {
        const std::string_view quote = one.isNumber ? "" : "\"";
        text += fmt::format("{} {} {}{}{} -> {}{}{}", text.empty() ? ":" : ",", one.field, quote,
                            one.before, quote, quote, one.after, quote);
    }
    return text;
}

void AddWritten(Groups& groups, const FileChange& change, std::size_t most) {
    const std::string files = FilesOf(change.path);
    if (!change.before) return groups.Add(files + " written", change.path);
    const bool hasBoth = change.before->bytes && change.after && change.after->bytes;
    const bool isText = files == "Playlists" && hasBoth;
    groups.Add(files + (files == "Playlists" ? " rewritten" : " replaced"), change.path,
               isText ? LineDifferences(*change.before->bytes, *change.after->bytes, most) : "");
}

void AddDeleted(Groups& groups, const FileChange& change) {
    const std::string kept = change.before ? change.before->keptAs : "";
    if (kept.starts_with("Removed/"))
        return groups.Add(FilesOf(change.path) + " moved to Removed", change.path + " -> " + kept);
    const std::string files = FilesOf(change.path);
    groups.Add(files + (files == "Playlists" ? " removed" : " deleted"), change.path);
}

std::string FromTo(const FileChange& change) {
    return FromTo(change.path, change.target);
}

void AddBackup(Groups& groups, const FileChange& change) {
    switch (change.kind) {
        case FileKind::Copied:
        case FileKind::FolderCopied:
            return groups.Add("Backups made first", FromTo(change));
        case FileKind::Deleted:
        case FileKind::FolderDeleted:
            return groups.Add("Old backups removed", change.path);
        default:
            return groups.Add("Notes on backups", change.path);
    }
}

void AddFile(Groups& groups, const FileChange& change, std::size_t most) {
    if (IsOfDatedCopy(change)) return AddBackup(groups, change);
    switch (change.kind) {
        case FileKind::Written:
            if (!IsOfLibrary(change)) return;
            return AddWritten(groups, change, most);
        case FileKind::EndWritten:
            return groups.Add("Tags written", change.path + TagText(change));
        case FileKind::PieceReplaced:
            return groups.Add("Tags written", change.path + ": in ID3v2");
        case FileKind::Copied:
            return groups.Add(FilesOf(change.path) + " copied", FromTo(change));
        case FileKind::Moved:
            return groups.Add(FilesOf(change.path) + " renamed", FromTo(change));
        case FileKind::Deleted:
            return AddDeleted(groups, change);
        case FileKind::Discarded:
            return groups.Add("Files and folders taken back", change.path);
        case FileKind::FolderMade:
            return groups.Add("Folders made", change.path);
        case FileKind::FolderCopied:
            return groups.Add("Folders copied", FromTo(change));
        case FileKind::FolderMoved:
            return groups.Add("Folders renamed", FromTo(change));
        case FileKind::FolderDeleted:
            return groups.Add("Folders deleted", change.path);
    }
}

}  // namespace

std::string ThingsOf(std::string_view inTable) {
    struct Things {
        std::string_view table, name;
    };
    constexpr std::array<Things, 6> Known{
        {{"Albums", "Albums"},
         {"Tracks", "Tracks"},
         {"Spinner", "Songs of the download table"},
         {"SpinnerArtist", "Artists of the download table"},
         {"SpinnerID3Differences", "Differences between tags and database"},
         {"Playlists", "Entries for generated playlists"}}};
    const auto* const found = std::ranges::find(Known, inTable, &Things::table);
    return found == Known.end() ? "Rows of " + std::string(inTable) : std::string(found->name);
}

std::string ChangeText(const NetChanges& changes, const ChangeTextOptions& options) {
    Groups groups(options.most);
    for (const RowChange& change : changes.rows)
        AddRow(groups, change, options);
    for (const CountOfRows& rows : changes.furtherRows) {
        const char* const became = rows.kind == RowKind::Added ? " added" : " removed";
        groups.Count(ThingsOf(rows.table) + became, rows.count);
    }
    for (const RowsAsBefore& rows : changes.asBefore)
        groups.CountAlone(ThingsOf(rows.table) + " as before", rows.count);
    for (const FileChange& change : changes.files)
        AddFile(groups, change, options.most);
    return groups.Text();
}

std::string LogText(std::span<const ChangeRecord> records, const ChangeTextOptions& options) {
    Groups groups(options.most);
    for (const ChangeRecord& record : records) {
        if (const auto* const line = std::get_if<LogLine>(&record))
            groups.Add("Lines of the log", (line->isError ? "! " : "  ") + line->text);
    }
    return groups.Text();
}

}  // namespace quillon
