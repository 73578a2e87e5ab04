#include "undo/file_steps.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "platform/basic_text.h"

namespace quillon {
namespace {

using Kind = FileChange::Kind;

/// Whether the change has given a file, which may have a row, its place.
bool Places(const FileChange& change) {
    return change.kind == Kind::Moved || change.kind == Kind::Copied;
}
/// Whether it has taken a file from its place.
bool Displaces(const FileChange& change) {
    return change.kind == Kind::Moved || change.kind == Kind::Deleted;
}

const std::string& PlaceNow(const FileChange& change) {
    return Places(change) ? change.target : change.path;
}

bool IsHeld(const FileChange& change, const StepOptions& options) {
    if (!options.isHeld) return false;
    return (Places(change) && options.isHeld(LowerCase(change.target))) ||
           (Displaces(change) && options.isHeld(LowerCase(change.path)));
}

void MarkLinked(std::vector<FileStep>& steps) {
    std::unordered_map<std::string, std::size_t> uses;
    const auto names = [](const FileChange& change) {
        std::vector<std::string> both{LowerCase(change.path)};
        // Only what is moved takes its content along.
        const bool isMove = change.kind == Kind::Moved || change.kind == Kind::FolderMoved;
        if (isMove && !EqualIgnoringCase(change.path, change.target))
            both.push_back(LowerCase(change.target));
        if (change.kind == Kind::Copied) both.front() = LowerCase(change.target);
        return both;
    };
    for (const FileStep& step : steps)
        for (std::string& name : names(step.change))
            ++uses[std::move(name)];
    for (FileStep& step : steps)
        step.isLinked = std::ranges::any_of(
            names(step.change), [&](const std::string& name) { return uses[name] > 1; });
}

/// Folders whose content before a run has not been kept: what the run has put in its place stays,
/// since there would be nothing otherwise.
class FoldersThatStay {
  public:
    void NoteRefused(const FileChange& change) {
        if (change.kind == Kind::FolderDeleted) movedAside_.insert(LowerCase(change.path));
    }
    bool Has(const FileChange& change) {
        const std::string path = LowerCase(change.path), target = LowerCase(change.target);
        if (change.kind != Kind::FolderMoved)
            return IsBelow(path) || (!target.empty() && IsBelow(target));
        // The last of the steps about it, which are taken back from the last to the first.
        if (movedAside_.erase(target) > 0) return true;
        if (!movedAside_.empty()) newOnes_.insert(path);
        return !movedAside_.empty();
    }

  private:
    bool IsBelow(const std::string& path) const {
        return std::ranges::any_of(newOnes_, [&](const std::string& folder) {
            return path == folder || path.starts_with(folder + '\\');
        });
    }
    std::unordered_set<std::string> movedAside_, newOnes_;  ///< in small letters
};

}  // namespace

std::vector<FileStep> FileStepsFor(std::span<const RecordedRun> runs, const TakenChanges& taken) {
    std::vector<FileStep> steps;
    for (const RecordedRun& run : runs) {
        std::unordered_set<std::uint64_t> failed;
        for (std::size_t i = run.records.size(); i-- > 0;) {
            if (const auto* const one = std::get_if<FileChangeFailed>(&run.records[i]))
                failed.insert(one->number);
            const auto* const change = std::get_if<FileChange>(&run.records[i]);
            if (change == nullptr || failed.contains(change->number) || IsOfDatedCopy(*change))
                continue;
            steps.push_back({.name = ChangeName(run.stamp, change->number), .change = *change});
        }
    }
    // With those that have been taken back: an undo that was cut off has seen the same.
    MarkLinked(steps);
    std::erase_if(steps, [&](const FileStep& step) {
        return taken.certain.contains(step.name) ||
               (step.isLinked && taken.told.contains(step.name));
    });
    return steps;
}

void CarryOut(std::span<FileStep> steps, FileUndo& undo, const Attempt& attempt,
              const StepOptions& options) {
    FoldersThatStay folders;
    for (FileStep& step : steps) {
        if (options.beginning) options.beginning(step);
        if (IsHeld(step.change, options)) {
            step.outcome = Outcome::Refusal(PlaceNow(step.change) +
                                            ": its row in the database was changed since");
        } else if (folders.Has(step.change)) {
            step.outcome =
                Outcome::Refusal("the folder stays, with all that the run has made in it");
        } else {
            const std::string failure = attempt([&] { step.outcome = undo.TakeBack(step.change); });
            if (!failure.empty()) step.outcome = Outcome::Refusal(failure);
        }
        if (step.outcome.state == Outcome::State::Refused) folders.NoteRefused(step.change);
    }
}

FilesThatStay::FilesThatStay(std::span<const FileStep> steps) {
    for (const FileStep& step : steps) {
        const FileChange& change = step.change;
        if (step.outcome.state != Outcome::State::Refused) continue;
        if (Places(change)) paths_.insert(LowerCase(change.target));
        if (Displaces(change)) paths_.insert(LowerCase(change.path));
    }
}

bool FilesThatStay::Has(std::string_view path) const {
    return !paths_.empty() && paths_.contains(LowerCase(path));
}

}  // namespace quillon
