#include "undo/history.h"

#include <algorithm>
#include <charconv>
#include <unordered_map>
#include <utility>

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

/// What the last changes of an undo take back: where the undo was cut off, these may be half done.
ChangeNames LastTaken(const std::vector<ChangeRecord>& records) {
    ChangeNames taken;
    std::uint64_t first = 0;
    for (std::size_t i = records.size(); i-- > 0;) {
        const auto* const change = std::get_if<FileChange>(&records[i]);
        if (change == nullptr) continue;
        if (first == 0) first = FirstOfGroup(*change);
        if (change->number < first) break;
        taken.insert(change->takesBack);
    }
    return taken;
}

/// How far undos have come with the changes of each run, which are taken back from the last to the
/// first, and those of the newest run before all others.
class Reached {
  public:
    void Note(const std::string& name) {
        const auto [run, number] = PartsOf(name);
        const auto [known, isNew] = furthest_.try_emplace(run, number);
        if (!isNew) known->second = std::min(known->second, number);
    }
    /// Whether one of them has gone on behind this change, and so has settled it.
    bool IsBeyond(const std::string& name) const {
        const auto [run, number] = PartsOf(name);
        return std::ranges::any_of(furthest_, [&, &run = run, &number = number](const auto& known) {
            const int age = CompareStamps(known.first, run);
            return age < 0 || (age == 0 && known.second < number);
        });
    }

  private:
    static std::pair<std::string, std::uint64_t> PartsOf(const std::string& name) {
        const std::size_t mark = std::min(name.rfind('#'), name.size() - 1);
        std::uint64_t number = 0;
        std::from_chars(name.data() + mark + 1, name.data() + name.size(), number);
        return {name.substr(0, mark), number};
    }

    std::unordered_map<std::string, std::uint64_t> furthest_;
};

bool IsCompleted(const PastRun& run) {
    return run.ended && run.ended->outcome == "completed";
}

bool IsDone(const PastRun& undo) {
    return undo.ended && undo.ended->status == 0;
}

bool IsUnfinishedUndo(const PastRun& run) {
    return run.IsUndo() && !IsDone(run);
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

bool History::IsAbout(const PastRun& undo, const PastRun& run) const {
    const std::string& first = undo.started.undoes;
    if (!undo.IsUndo() || CompareStamps(first, run.started.stamp) > 0) return false;
    if (!run.IsUndo() || first == run.started.stamp) return true;
    const std::optional<std::size_t> named = Find(first);
    return named && runs_[*named].IsUndo() && CompareStamps(run.started.undoes, first) < 0;
}

std::string History::UndoneBy(std::size_t run) const {
    for (std::size_t i = runs_.size(); i-- > run + 1;) {
        const PastRun& undo = runs_[i];
        if (IsDone(undo) && IsAbout(undo, runs_[run]) && UndoneBy(i).empty())
            return undo.started.stamp;
    }
    return "";
}

std::string History::LastToUndo() const {
    for (std::size_t i = runs_.size(); i-- > 0;) {
        const PastRun& run = runs_[i];
        if (!UndoneBy(i).empty()) continue;
        if (IsUnfinishedUndo(run)) {
            const std::optional<std::size_t> named = Find(run.started.undoes);
            if (!named || UndoneBy(*named).empty()) return run.started.undoes;
        }
        if (!run.IsUndo() && run.changes > 0) return run.started.stamp;
    }
    return "";
}

std::size_t History::FirstPart(std::string_view undoes, std::size_t undo) const {
    std::size_t first = undo;
    for (std::size_t i = undo; i-- > 0;) {
        const PastRun& run = runs_[i];
        if (IsUnfinishedUndo(run) && run.started.undoes == undoes && UndoneBy(i).empty())
            first = i;
        else if (run.changes > 0)
            break;
    }
    return first;
}

std::string History::FirstPartOf(std::string_view stamp) const {
    const std::optional<std::size_t> run = Find(stamp);
    if (!run || !runs_[*run].IsUndo()) return std::string(stamp);
    return runs_[FirstPart(runs_[*run].started.undoes, *run)].started.stamp;
}

std::string History::PartBefore(std::string_view undoes) const {
    const std::size_t first = FirstPart(undoes, runs_.size());
    return first < runs_.size() ? runs_[first].started.stamp : "";
}

std::vector<std::size_t> History::ForFiles(std::string_view stamp) const {
    std::vector<std::size_t> chosen;
    const std::optional<std::size_t> first = Find(stamp);
    for (std::size_t i = runs_.size(); first && i-- > *first;) {
        const PastRun& run = runs_[i];
        const bool isBehindUndo =
            runs_[*first].IsUndo() && CompareStamps(run.started.undoes, stamp) < 0;
        if (i == *first || !run.IsUndo() || isBehindUndo) chosen.push_back(i);
    }
    return chosen;
}

bool History::AreRowsBack(std::size_t undo) const {
    for (std::size_t i = runs_.size(); i-- > undo + 1;) {
        const PastRun& later = runs_[i];
        const bool changesRows = later.hasSavedRows || IsCompleted(later);
        if (changesRows && IsAbout(later, runs_[undo]) && !AreRowsBack(i)) return true;
    }
    return false;
}

std::vector<std::size_t> History::ForRows(std::string_view stamp) const {
    std::vector<std::size_t> chosen;
    const std::optional<std::size_t> first = Find(stamp);
    for (std::size_t i = first.value_or(runs_.size()); i < runs_.size(); ++i) {
        const PastRun& run = runs_[i];
        const bool goesFurtherBack = run.IsUndo() && CompareStamps(run.started.undoes, stamp) < 0;
        if (runs_[*first].IsUndo() || !goesFurtherBack || AreRowsBack(i)) chosen.push_back(i);
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

TakenChanges TakenBack(std::span<const RecordedRun> undos) {
    TakenChanges taken;
    ChangeNames unsure;
    Reached reached;
    for (const RecordedRun& undo : undos) {
        const auto failed = FailedChanges(undo.records);
        ChangeNames open = undo.isWhole ? ChangeNames() : LastTaken(undo.records);
        std::erase_if(open, [&](const std::string& name) { return reached.IsBeyond(name); });
        for (std::size_t i = undo.records.size(); i-- > 0;) {
            const auto* const change = std::get_if<FileChange>(&undo.records[i]);
            if (change == nullptr || change->takesBack.empty()) continue;
            const std::string name = ChangeName(undo.stamp, change->number);
            const std::string& back = change->takesBack;
            if (open.contains(back)) unsure.insert(back);
            if (unsure.contains(name)) unsure.insert(back);
            reached.Note(back);
            // What a later undo has taken back is not taken back any more.
            const bool isTakenItself = taken.certain.contains(name) || taken.told.contains(name);
            if (failed.contains(change->number) || isTakenItself) continue;
            (undo.isWhole ? taken.certain : taken.told).insert(back);
        }
    }
    for (const std::string& name : unsure) {
        taken.certain.erase(name);
        taken.told.erase(name);
    }
    return taken;
}

}  // namespace quillon
