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
    for (const FileStep& step : steps)
        for (std::string& name : NamesOf(step.change))
            ++uses[std::move(name)];
    for (FileStep& step : steps)
        step.isLinked = std::ranges::any_of(
            NamesOf(step.change), [&](const std::string& name) { return uses[name] > 1; });
}

}  // namespace

std::vector<std::string> NamesOf(const FileChange& change) {
    std::vector<std::string> names{LowerCase(change.path)};
    // Only what is moved takes its content along.
    const bool isMove = change.kind == Kind::Moved || change.kind == Kind::FolderMoved;
    if (isMove && !EqualIgnoringCase(change.path, change.target))
        names.push_back(LowerCase(change.target));
    if (change.kind == Kind::Copied) names.front() = LowerCase(change.target);
    return names;
}

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

bool StepTaker::MayTakeBack(FileStep& step) {
    if (options_.beginning) options_.beginning(step);
    if (IsHeld(step.change, options_)) {
        step.outcome =
            Outcome::Refusal(PlaceNow(step.change) + ": its row in the database was changed since");
    } else if (folders_.Has(step.change)) {
        step.outcome = Outcome::Refusal("the folder stays, with all that the run has made in it");
    } else {
        return true;
    }
    folders_.NoteRefused(step.change);
    return false;
}

void StepTaker::TakeBack(FileStep& step, FileUndo& undo) {
    const std::string failure = attempt_([&] { step.outcome = undo.TakeBack(step.change); });
    if (!failure.empty()) step.outcome = Outcome::Refusal(failure);
    if (step.outcome.state == Outcome::State::Refused) folders_.NoteRefused(step.change);
}

void CarryOut(std::span<FileStep> steps, FileUndo& undo, const Attempt& attempt,
              const StepOptions& options) {
    StepTaker taker(attempt, options);
    for (FileStep& step : steps)
        if (taker.MayTakeBack(step)) taker.TakeBack(step, undo);
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
