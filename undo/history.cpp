#include "undo/history.h"

#include <algorithm>

namespace quillon {
namespace {

/// "2026-11-21_07-13-05"; "-2" and so on may be behind it.
constexpr std::size_t StampSize = 19;

std::unordered_set<std::uint64_t> FailedChanges(const std::vector<ChangeRecord>& records) {
    std::unordered_set<std::uint64_t> failed;
    for (const ChangeRecord& record : records)
        if (const auto* const one = std::get_if<FileChangeFailed>(&record))
            failed.insert(one->number);
    return failed;
}

}  // namespace

int CompareStamps(std::string_view left, std::string_view right) {
    const int times = left.substr(0, StampSize).compare(right.substr(0, StampSize));
    if (times != 0) return times;
    // "-10" comes behind "-9".
    if (left.size() != right.size()) return left.size() < right.size() ? -1 : 1;
    return left.compare(right);
}

std::optional<std::size_t> History::Find(std::string_view stamp) const {
    for (std::size_t i = 0; i < runs_.size(); ++i)
        if (runs_[i].started.stamp == stamp) return i;
    return std::nullopt;
}

std::string History::UndoneBy(std::size_t run) const {
    const std::string& stamp = runs_[run].started.stamp;
    for (std::size_t i = runs_.size(); i-- > run + 1;) {
        const PastRun& undo = runs_[i];
        const bool isMeant = undo.IsUndo() && CompareStamps(undo.started.undoes, stamp) <= 0 &&
                             // Of undos one takes back only the one that it names.
                             (!runs_[run].IsUndo() || undo.started.undoes == stamp);
        const bool isDone = undo.ended && undo.ended->status == 0;
        if (isMeant && isDone && UndoneBy(i).empty()) return undo.started.stamp;
    }
    return "";
}

std::string History::LastToUndo() const {
    for (std::size_t i = runs_.size(); i-- > 0;) {
        const PastRun& run = runs_[i];
        const bool isCutOff = !run.ended || run.ended->outcome != "completed";
        if (run.IsUndo() && isCutOff) return run.started.undoes;
        if (!run.IsUndo() && run.changes > 0 && UndoneBy(i).empty()) return run.started.stamp;
    }
    return "";
}

std::vector<std::size_t> History::ForFiles(std::string_view stamp) const {
    std::vector<std::size_t> chosen;
    const std::optional<std::size_t> first = Find(stamp);
    for (std::size_t i = runs_.size(); first && i-- > *first;)
        if (i == *first || !runs_[i].IsUndo()) chosen.push_back(i);
    return chosen;
}

std::vector<std::size_t> History::ForRows(std::string_view stamp) const {
    std::vector<std::size_t> chosen;
    const std::optional<std::size_t> first = Find(stamp);
    for (std::size_t i = first.value_or(runs_.size()); i < runs_.size(); ++i) {
        const PastRun& run = runs_[i];
        if (i == *first || !run.IsUndo() || CompareStamps(run.started.undoes, stamp) >= 0)
            chosen.push_back(i);
    }
    return chosen;
}

std::vector<std::size_t> History::UndosSince(std::string_view stamp) const {
    std::vector<std::size_t> chosen;
    const std::optional<std::size_t> first = Find(stamp);
    for (std::size_t i = runs_.size(); first && i-- > *first + 1;)
        if (runs_[i].IsUndo()) chosen.push_back(i);
    return chosen;
}

std::string ChangeName(std::string_view stamp, std::uint64_t number) {
    return std::string(stamp) + '#' + std::to_string(number);
}

ChangeNames TakenBack(std::span<const RecordedRun> undos) {
    ChangeNames taken;
    for (const RecordedRun& undo : undos) {
        const auto failed = FailedChanges(undo.records);
        bool isLast = true;
        std::string cutOff;  // what takes two changes may be half done
        for (std::size_t i = undo.records.size(); i-- > 0;) {
            const auto* const change = std::get_if<FileChange>(&undo.records[i]);
            if (change == nullptr) continue;
            if (isLast && !undo.isWhole) cutOff = change->takesBack;
            isLast = false;
            if (change->takesBack.empty() || change->takesBack == cutOff) continue;
            if (failed.contains(change->number)) continue;
            // What a later undo has taken back is not taken back any more.
            if (!taken.contains(ChangeName(undo.stamp, change->number)))
                taken.insert(change->takesBack);
        }
    }
    return taken;
}

}  // namespace quillon
