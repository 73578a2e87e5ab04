#include "app/journal/net_changes.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "platform/basic_text.h"
#include "undo/net_rows.h"

namespace quillon {
namespace {

using RowKind = RowChange::Kind;
using FileKind = FileChange::Kind;
using Key = std::vector<std::pair<std::string, Value>>;

/// The key that the row has after the change.
Key KeyAfter(const RowChange& change) {
    Key key = change.key;
    for (auto& [name, value] : key) {
        const auto field = std::ranges::find(change.fields, name, &FieldChange::field);
        if (change.kind == RowKind::Changed && field != change.fields.end()) value = field->after;
    }
    return key;
}

FieldChange* FieldOf(RowChange& change, const std::string& name) {
    const auto found = std::ranges::find(change.fields, name, &FieldChange::field);
    return found == change.fields.end() ? nullptr : &*found;
}

void DropEqualFields(RowChange& change) {
    std::erase_if(change.fields,
                  [](const FieldChange& field) { return field.before == field.after; });
}

/// Both as one, the second coming later; nothing where they take each other back.
std::optional<RowChange> Together(RowChange first, const RowChange& second) {
    for (const FieldChange& field : second.fields) {
        if (FieldChange* const known = FieldOf(first, field.field)) {
            known->after = field.after;
        } else {
            first.fields.push_back(field);
        }
    }
    if (second.kind == RowKind::Removed) {
        if (first.kind == RowKind::Added) return std::nullopt;
        for (FieldChange& field : first.fields)
            field.after = Null{};
        first.kind = RowKind::Removed;
    } else if (first.kind == RowKind::Removed) {
        // A field that is not told of the new row is Null there.
        first.kind = RowKind::Changed;
    }
    DropEqualFields(first);
    if (first.kind == RowKind::Changed && first.fields.empty()) return std::nullopt;
    return first;
}

class RowsTogether {
  public:
    void Add(const RowChange& change) {
        const std::string text = KeyText(change.table, change.key);
        const auto known = places_.find(text);
        if (known == places_.end()) {
            places_.emplace(KeyText(change.table, KeyAfter(change)), rows_.size());
            rows_.emplace_back(change);
            return;
        }
        const std::size_t place = known->second;
        places_.erase(known);
        rows_[place] = rows_[place] ? Together(std::move(*rows_[place]), change) : change;
        places_.emplace(KeyText(change.table, KeyAfter(change)), place);
    }

    std::vector<RowChange> Take() {
        std::vector<RowChange> rows;
        for (std::optional<RowChange>& row : rows_)
            if (row) rows.push_back(std::move(*row));
        return rows;
    }

  private:
    std::vector<std::optional<RowChange>> rows_;
    std::unordered_map<std::string, std::size_t> places_;  ///< by the present key
};

/// Without what failed, and without what the run itself took back.
std::vector<FileChange> FilesTogether(std::span<const ChangeRecord> records) {
    std::unordered_set<std::uint64_t> failed;
    for (const ChangeRecord& record : records)
        if (const auto* const one = std::get_if<FileChangeFailed>(&record))
            failed.insert(one->number);
    std::vector<std::optional<FileChange>> files;
    /// By the path of what is new, and of what has been renamed.
    std::unordered_map<std::string, std::size_t> made, moved;
    for (const ChangeRecord& record : records) {
        const auto* const change = std::get_if<FileChange>(&record);
        if (change == nullptr || failed.contains(change->number)) continue;
        if (change->kind == FileKind::Discarded || change->kind == FileKind::Deleted)
            moved.erase(LowerCase(change->path));
        if (change->kind == FileKind::Discarded) {
            const auto found = made.find(LowerCase(change->path));
            if (found != made.end()) {
                files[found->second].reset();
                made.erase(found);
                continue;
            }
        }
        if (change->kind == FileKind::Moved) {
            // Names on the way to another one say nothing.
            const auto found = moved.find(LowerCase(change->path));
            if (found != moved.end()) {
                const std::size_t place = found->second;
                files[place]->target = change->target;
                moved.erase(found);
                moved[LowerCase(change->target)] = place;
                made[LowerCase(change->target)] = place;
                continue;
            }
            moved[LowerCase(change->target)] = files.size();
        }
        made[LowerCase(change->target.empty() ? change->path : change->target)] = files.size();
        files.emplace_back(*change);
    }
    std::vector<FileChange> lasting;
    for (std::optional<FileChange>& file : files)
        if (file && !(file->kind == FileKind::Moved && file->path == file->target))
            lasting.push_back(std::move(*file));
    return lasting;
}

}  // namespace

NetChanges NetChangesOf(std::span<const ChangeRecord> records) {
    RowsTogether rows;
    for (const ChangeRecord& record : records)
        if (const auto* const change = std::get_if<RowChange>(&record)) rows.Add(*change);
    return {.rows = rows.Take(), .files = FilesTogether(records)};
}

bool IsOfLibrary(const RowChange& change) {
    return !EqualIgnoringCase(change.table, "SpinnerID3Differences");
}

bool IsOfLibrary(const FileChange& change) {
    if (IsOfDatedCopy(change) || IsOfOwnNotes(change)) return false;
    if (change.kind == FileKind::Written && change.before && change.after &&
        change.before->size == change.after->size && change.before->hash == change.after->hash &&
        change.before->hash != 0)
        return false;
    const std::string path = LowerCase(change.path);
    const bool isData = change.kind == FileKind::FolderMade &&
                        (path.ends_with("\\data") || path.ends_with("\\data\\quillon"));
    return !isData && !path.ends_with("\\quillonreconcile.csv");
}

bool ChangesLibrary(const NetChanges& changes) {
    const auto isOfLibrary = [](const auto& change) { return IsOfLibrary(change); };
    return std::ranges::any_of(changes.rows, isOfLibrary) ||
           std::ranges::any_of(changes.files, isOfLibrary);
}

}  // namespace quillon
