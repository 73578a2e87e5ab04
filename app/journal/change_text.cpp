#include "app/journal/change_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fmt/format.h>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "app/text/display_text.h"
#include "platform/basic_text.h"
#include "run/sound_files.h"
#include "tags/tag.h"

namespace quillon {
namespace {

using RowKind = RowChange::Kind;
using FileKind = FileChange::Kind;

/// The lines of one heading, as far as they are told.
struct Group {
    std::string heading;
    std::size_t count = 0;
    std::string lines;
};

/// Groups in the order of their first change.
class Groups {
  public:
    explicit Groups(std::size_t most) : most_(most) {}

    /// `more` are further lines of the same, whole.
    void Add(const std::string& heading, std::string_view line, const std::string& more = "") {
        const auto [place, isNew] = places_.try_emplace(heading, groups_.size());
        if (isNew) groups_.push_back({heading, 0, ""});
        Group& group = groups_[place->second];
        if (++group.count > most_) return;
        group.lines += "  " + OneLine(line) + '\n' + more;
    }

    std::string Text() const {
        std::string text;
        for (const Group& group : groups_) {
            if (!text.empty()) text += '\n';
            text += fmt::format("{}: {}\n{}", OneLine(group.heading), group.count, group.lines);
            if (group.count > most_)
                text += fmt::format("  ... and {} more\n", group.count - most_);
        }
        return text;
    }

  private:
    std::size_t most_;
    std::vector<Group> groups_;
    std::map<std::string, std::size_t> places_;
};

struct Shown {
    std::string operator()(Null) const { return "nothing"; }
    std::string operator()(bool value) const { return value ? "yes" : "no"; }
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    std::string operator()(double value) const { return fmt::format("{}", value); }
    std::string operator()(const DateTime& value) const {
        const bool isDate = value.days > -600'000 && value.days < 2'900'000;
        return isDate ? SortableDateTimeText(value) : fmt::format("{}", value.days);
    }
    std::string operator()(const std::string& value) const { return '"' + value + '"'; }
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

/// What names a row that comes or goes.
std::string OwnName(const RowChange& change) {
    if (change.table == "Albums") {
        const std::string artist = TextOf(change, "Artist");
        return artist + (artist.empty() ? "" : " - ") + TextOf(change, "Title");
    }
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

std::string ThingsOf(const RowChange& change) {
    if (change.table == "Albums") return "Albums";
    if (change.table == "Tracks") return "Tracks";
    return "Rows of " + change.table;
}

bool IsNumber(const Value& value) {
    return IsNull(value) || std::holds_alternative<std::int64_t>(value) ||
           std::holds_alternative<double>(value);
}

bool IsOfNumbersAlone(const RowChange& change) {
    return std::ranges::all_of(change.fields, [](const FieldChange& field) {
        return IsNumber(field.before) && IsNumber(field.after);
    });
}

void AddRow(Groups& groups, const RowChange& change, const ChangeTextOptions& options) {
    const std::string things = ThingsOf(change), name = NameOf(change, options);
    if (change.kind == RowKind::Added) return groups.Add(things + " added", name);
    if (change.kind == RowKind::Removed) return groups.Add(things + " removed", name);
    std::string fields;
    for (const FieldChange& field : change.fields) {
        fields += fmt::format("{}{} {} -> {}", fields.empty() ? ": " : ", ", field.field,
                              ShownValue(field.before), ShownValue(field.after));
    }
    groups.Add(things + (IsOfNumbersAlone(change) ? " whose numbers change" : " changed"),
               name + fields);
}

bool EndsIn(std::string_view path, std::string_view ending) {
    return path.size() >= ending.size() &&
           EqualIgnoringCase(path.substr(path.size() - ending.size()), ending);
}

/// What kind of file it is, for the heading.
std::string FilesOf(std::string_view path) {
    struct Kind {
        const char *ending, *name;
    };
    constexpr std::array<Kind, 10> Kinds{{{".pla", "Playlists"},
                                          {".m3u", "Playlists"},
                                          {".jpg", "Images"},
                                          {".jpeg", "Images"},
                                          {".gif", "Images"},
                                          {".bmp", "Images"},
                                          {".png", "Images"},
                                          {".asp", "Pages of the album picker"},
                                          {".htm", "Pages of the album picker"},
                                          {".html", "Pages of the album picker"}}};
    if (IsSoundFile(path)) return "Music files";
    for (const Kind& kind : Kinds)
        if (EndsIn(path, kind.ending)) return kind.name;
    return "Other files";
}

std::string FieldText(const Tag& tag, const TagField& field) {
    return std::string(Trim(tag.*field.text));
}

/// What becomes of each value of a tag.
std::string TagDifferences(const std::string& before, const std::string& after) {
    const auto tagIn = [](const std::string& bytes) {
        const std::vector<std::uint8_t> copy(bytes.begin(), bytes.end());
        return copy.size() < TagSize ? Tag{} : TagIn(copy);
    };
    const Tag old = tagIn(before), present = tagIn(after);
    std::string text = old.IsThere() ? "" : " (it had no tag)";
    for (const TagField& field : TagFields) {
        const std::string from = FieldText(old, field), to = FieldText(present, field);
        if (from == to || field.text == &Tag::marker) continue;
        text +=
            fmt::format("{} {} \"{}\" -> \"{}\"", text.empty() ? ":" : ",", field.label, from, to);
    }
    const auto genreOf = [](const std::string& bytes) {
        return bytes.size() < TagSize ? 255 : int{static_cast<std::uint8_t>(bytes.back())};
    };
    if (genreOf(before) != genreOf(after)) {
        text += fmt::format("{} Genre number {} -> {}", text.empty() ? ":" : ",", genreOf(before),
                            genreOf(after));
    }
    return text;
}

std::string BytesOf(const std::optional<FileContent>& content) {
    return content ? content->bytes.value_or("") : "";
}

void AddWritten(Groups& groups, const FileChange& change, std::size_t most) {
    const std::string files = FilesOf(change.path);
    if (!change.before) return groups.Add(files + " written", change.path);
    const bool hasBoth = change.before->bytes && change.after && change.after->bytes;
    const bool isText = files == "Playlists" && hasBoth;
    groups.Add(files + (files == "Playlists" ? " repaired" : " replaced"), change.path,
               isText ? LineDifferences(*change.before->bytes, *change.after->bytes, most) : "");
}

void AddDeleted(Groups& groups, const FileChange& change) {
    const std::string kept = change.before ? change.before->keptAs : "";
    if (kept.starts_with("Removed/"))
        return groups.Add(FilesOf(change.path) + " moved to Removed", change.path + " -> " + kept);
    groups.Add(FilesOf(change.path) + " deleted", change.path);
}

/// The target in full only where it is in another folder.
std::string FromTo(const FileChange& change) {
    const std::size_t folder = change.path.rfind('\\') + 1;
    const bool isBeside = folder == change.target.rfind('\\') + 1 &&
                          EqualIgnoringCase(std::string_view(change.path).substr(0, folder),
                                            std::string_view(change.target).substr(0, folder));
    return change.path + " -> " + (isBeside ? change.target.substr(folder) : change.target);
}

void AddBackup(Groups& groups, const FileChange& change) {
    switch (change.kind) {
        case FileKind::Copied:
        case FileKind::FolderCopied:
            return groups.Add("Dated copies made first", FromTo(change));
        case FileKind::Deleted:
        case FileKind::FolderDeleted:
            return groups.Add("Old dated copies removed", change.path);
        default:
            return groups.Add("Notes on dated copies", change.path);
    }
}

void AddFile(Groups& groups, const FileChange& change, std::size_t most) {
    if (IsOfDatedCopy(change)) return AddBackup(groups, change);
    switch (change.kind) {
        case FileKind::Written:
            if (!IsOfLibrary(change)) return;
            return AddWritten(groups, change, most);
        case FileKind::EndWritten:
            return groups.Add("Tags written", change.path + TagDifferences(BytesOf(change.before),
                                                                           BytesOf(change.after)));
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

std::string ChangeText(const NetChanges& changes, const ChangeTextOptions& options) {
    Groups groups(options.most);
    for (const RowChange& change : changes.rows)
        AddRow(groups, change, options);
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
