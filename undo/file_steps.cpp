#include "undo/file_steps.h"

#include <unordered_set>

#include "platform/basic_text.h"

namespace quillon {
std::vector<FileStep> FileStepsFor(std::span<const RecordedRun> runs, const ChangeNames& taken) {
    std::vector<FileStep> steps;
    for (const RecordedRun& run : runs) {
        std::unordered_set<std::uint64_t> failed;
        for (std::size_t i = run.records.size(); i-- > 0;) {
            if (const auto* const one = std::get_if<FileChangeFailed>(&run.records[i]))
                failed.insert(one->number);
            const auto* const change = std::get_if<FileChange>(&run.records[i]);
            if (change == nullptr || failed.contains(change->number) || IsOfDatedCopy(*change))
                continue;
            std::string name = ChangeName(run.stamp, change->number);
            if (!taken.contains(name))
                steps.push_back({.name = std::move(name), .change = *change});
        }
    }
    return steps;
}

void CarryOut(std::span<FileStep> steps, FileUndo& undo, const Attempt& attempt,
              const std::function<void(const FileStep& step)>& beginning) {
    for (FileStep& step : steps) {
        beginning(step);
        const std::string failure = attempt([&] { step.outcome = undo.TakeBack(step.change); });
        if (!failure.empty()) step.outcome = Outcome::Refusal(failure);
    }
}

FilesThatStay::FilesThatStay(std::span<const FileStep> steps) {
    for (const FileStep& step : steps) {
        const FileChange& change = step.change;
        const bool places =
            change.kind == FileChange::Kind::Moved || change.kind == FileChange::Kind::Copied;
        if (step.outcome.state != Outcome::State::Refused) continue;
        if (places) paths_.insert(LowerCase(change.target));
        if (change.kind == FileChange::Kind::Moved || change.kind == FileChange::Kind::Deleted)
            paths_.insert(LowerCase(change.path));
    }
}

bool FilesThatStay::Has(std::string_view path) const {
    return !paths_.empty() && paths_.contains(LowerCase(path));
}

}  // namespace quillon
