#include "app/journal/net_changes.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "app/journal/row_collector.h"
#include "platform/basic_text.h"

namespace quillon {
namespace {

using FileKind = FileChange::Kind;

constexpr std::string_view DifferenceTable = "SpinnerID3Differences";

/// Without what failed, and without what the run itself took back.
std::vector<FileChange> FilesTogether(std::vector<FileChange>&& changes,
                                      const std::unordered_set<std::uint64_t>& failed) {
    std::vector<std::optional<FileChange>> files;
    /// By the path of what is new, and of what has been renamed.
    std::unordered_map<std::string, std::size_t> made, moved;
    for (FileChange& one : changes) {
        FileChange* const change = &one;
        if (failed.contains(change->number)) continue;
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
        files.emplace_back(std::move(*change));
    }
    std::vector<FileChange> lasting;
    for (std::optional<FileChange>& file : files)
        if (file && !(file->kind == FileKind::Moved && file->path == file->target))
            lasting.push_back(std::move(*file));
    return lasting;
}

}  // namespace

std::string_view DateOfRowIn(std::string_view table) {
    return table == DifferenceTable ? "UpdateTime" : "";
}

NetChangesCollector::NetChangesCollector() : rows_(std::make_unique<RowCollector>()) {}
NetChangesCollector::~NetChangesCollector() = default;

void NetChangesCollector::Add(const ChangeRecord& record) {
    if (const auto* const row = std::get_if<RowChange>(&record)) rows_->Add(*row);
    if (const auto* const date = std::get_if<DateReplaced>(&record)) rows_->Add(*date);
    if (const auto* const file = std::get_if<FileChange>(&record)) AddFile(*file);
    if (const auto* const one = std::get_if<FileChangeFailed>(&record)) failed_.insert(one->number);
}

void NetChangesCollector::AddFile(const FileChange& change) {
    constexpr std::size_t MostContents = 300;
    files_.push_back(change);
    const bool hasContent = change.before && change.before->bytes;
    if (change.kind != FileKind::Written || !hasContent || ++contents_ <= MostContents) return;
    files_.back().before->bytes.reset();
    if (files_.back().after) files_.back().after->bytes.reset();
}

NetChanges NetChangesCollector::Take() {
    NetChanges changes;
    rows_->TakeInto(changes);
    changes.files = FilesTogether(std::move(files_), failed_);
    return changes;
}

NetChanges NetChangesOf(std::span<const ChangeRecord> records) {
    NetChangesCollector collector;
    for (const ChangeRecord& record : records)
        collector.Add(record);
    return collector.Take();
}

bool IsOfDifferences(std::string_view table) {
    return EqualIgnoringCase(table, DifferenceTable);
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

void ChangeCount::Add(const ChangeRecord& record) {
    if (const auto* const row = std::get_if<RowChange>(&record)) {
        const bool isDifference = IsOfDifferences(row->table);
        hasDifferences_ = hasDifferences_ || isDifference;
        others_ += std::uint64_t{!isDifference};
    } else if (const auto* const file = std::get_if<FileChange>(&record)) {
        others_ += std::uint64_t{IsOfLibrary(*file)};
    } else if (const auto* const date = std::get_if<DateReplaced>(&record)) {
        others_ += IsOfDifferences(date->table) ? 0 : date->rows;
    }
}

bool ChangesLibrary(const NetChanges& changes) {
    return !changes.rows.empty() || !changes.furtherRows.empty() ||
           std::ranges::any_of(changes.files,
                               [](const FileChange& change) { return IsOfLibrary(change); });
}

}  // namespace quillon
