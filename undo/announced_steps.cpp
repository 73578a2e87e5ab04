#include "undo/announced_steps.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "changes/preview_files.h"
#include "platform/failure.h"

namespace quillon {
namespace {

using Kind = FileChange::Kind;

/// So many steps share a flush of the journal. Its lines that close what was planned have room
/// behind so many records, even on a full disk.
constexpr std::size_t MostSteps = 256;
/// Content that records hold in memory.
constexpr std::size_t MostBytes = std::size_t{4} << 20U;

std::size_t BytesIn(const FileChange& change) {
    const auto bytesIn = [](const std::optional<FileContent>& content) {
        return content && content->bytes ? content->bytes->size() : 0;
    };
    return bytesIn(change.before) + bytesIn(change.after);
}

/// But for times, which belong to the moment.
bool IsSameContent(const std::optional<FileContent>& one, const std::optional<FileContent>& other) {
    if (!one || !other) return one.has_value() == other.has_value();
    return one->size == other->size && one->hash == other->hash && one->bytes == other->bytes &&
           one->keptAs == other->keptAs;
}

bool IsSame(const FileChange& one, const FileChange& other) {
    return one.number == other.number && one.kind == other.kind && one.path == other.path &&
           one.target == other.target && one.position == other.position &&
           IsSameContent(one.before, other.before) && IsSameContent(one.after, other.after);
}

/// Steps of which others depend in more than their names.
bool IsOfWholeFolder(const FileChange& change) {
    return change.kind == Kind::FolderMoved || change.kind == Kind::FolderDeleted ||
           change.kind == Kind::FolderCopied;
}

/// A step with the changes that it is going to make.
struct AnnouncedStep {
    FileStep* step;
    std::vector<FileChange> changes = {};
    std::size_t begun = 0;  ///< how many of these
    bool isDone = false;    ///< what has not come off is recorded
};

/// Records the changes of steps.
class Announcer : public ChangeSink {
  public:
    /// `last` is the number of the last change before.
    Announcer(ChangeSink& journal, std::uint64_t last) : journal_(journal), group_(last + 1) {}

    void Begin(AnnouncedStep& step) { step_ = &step; }
    std::size_t Bytes() const { return bytes_; }

    void Note(const ChangeRecord& record) override {
        const auto* const change = std::get_if<FileChange>(&record);
        // What fails on the preview is recorded with its step.
        if (change == nullptr) return;
        FileChange named = *change;
        named.takesBack = step_->step->name;
        named.group = group_;
        journal_.Note(named);
        bytes_ += BytesIn(named);
        step_->changes.push_back(std::move(named));
    }
    /// It is made so when all are announced.
    void MakeDurable() override {}

  private:
    ChangeSink& journal_;
    std::uint64_t group_;
    AnnouncedStep* step_ = nullptr;
    std::size_t bytes_ = 0;
};

/// Lets happen what has been announced, and nothing else.
class AnnouncedOnly : public ChangeSink {
  public:
    AnnouncedOnly(ChangeSink& journal, AnnouncedStep& step) : journal_(journal), step_(step) {}

    void Note(const ChangeRecord& record) override {
        const auto* const change = std::get_if<FileChange>(&record);
        if (change == nullptr) return journal_.Note(record);
        if (step_.begun == step_.changes.size() || !IsSame(step_.changes[step_.begun], *change)) {
            throw Failure::Described(FailureNumber::PathFileAccess,
                                     change->path + " is being changed by another program");
        }
        ++step_.begun;
    }
    void MakeDurable() override { journal_.MakeDurable(); }

  private:
    ChangeSink& journal_;
    AnnouncedStep& step_;
};

/// Steps that are recorded together.
class Group {
  public:
    Group(const UndoMeans& means, StepTaker& taker, const StepOptions& options, std::uint64_t last)
        : means_(means), taker_(taker), options_(options), last_(last) {}

    /// Takes steps from the beginning of `rest` and records what they are going to do; how many.
    std::size_t Announce(std::span<FileStep> rest) {
        Announcer announcer(means_.journal, last_);
        PreviewFiles preview(means_.files, means_.clock);
        JournalledFiles files(preview, announcer, means_.keeping, last_);
        FileUndo undo(files, means_.hostFolder, means_.writes);
        std::size_t count = 0;
        while (count < std::min(rest.size(), MostSteps) && announcer.Bytes() < MostBytes &&
               Join(rest[count])) {
            FileStep& step = rest[count++];
            if (!taker_.MayTakeBack(step)) continue;
            AnnouncedStep& announced = steps_.emplace_back(&step);
            announcer.Begin(announced);
            taker_.TakeBack(step, undo);
            for (const FileChange& change : announced.changes)
                last_ = change.number;
            isAnything_ = isAnything_ || !announced.changes.empty();
            // What has failed there is not tried.
            if (step.outcome.state != Outcome::State::TakenBack) Close(announced);
        }
        return count;
    }

    void CarryOut() {
        if (isAnything_) means_.journal.MakeDurable();
        for (AnnouncedStep& announced : steps_) {
            if (announced.isDone) continue;
            FileStep& step = *announced.step;
            if (options_.beginning) options_.beginning(step);
            AnnouncedOnly sink(means_.journal, announced);
            const std::uint64_t before =
                announced.changes.empty() ? last_ : announced.changes.front().number - 1;
            JournalledFiles files(means_.files, sink, means_.keeping, before);
            FileUndo undo(files, means_.hostFolder, means_.writes);
            taker_.TakeBack(step, undo);
            Close(announced);
        }
    }

    /// Records that nothing more of it happens.
    void GiveUp() {
        for (AnnouncedStep& announced : steps_)
            if (!announced.isDone) Close(announced);
    }

    std::uint64_t Last() const { return last_; }
    bool IsLinked() const { return isLinked_; }

  private:
    /// Whether a step depends on none of those that are in the group, which it is then one of.
    bool Join(const FileStep& step) {
        const bool isAlone = IsOfWholeFolder(step.change);
        if ((isAlone && !names_.empty()) || isClosed_) return false;
        isClosed_ = isAlone;
        std::vector<std::string> names = NamesOf(step.change);
        if (std::ranges::any_of(names, [&](const auto& name) { return names_.contains(name); }))
            return false;
        for (std::string& name : names)
            names_.insert(std::move(name));
        isLinked_ = isLinked_ || step.isLinked;
        return true;
    }

    void Close(AnnouncedStep& announced) {
        announced.isDone = true;
        const Outcome& outcome = announced.step->outcome;
        for (std::size_t i = announced.begun; i < announced.changes.size(); ++i) {
            means_.journal.Note(FileChangeFailed{
                .number = announced.changes[i].number,
                .reason = outcome.reason.empty() ? "it was not begun" : outcome.reason});
        }
    }

    const UndoMeans& means_;
    StepTaker& taker_;
    const StepOptions& options_;
    std::uint64_t last_;
    std::vector<AnnouncedStep> steps_;
    std::unordered_set<std::string> names_;
    bool isAnything_ = false, isLinked_ = false, isClosed_ = false;
};

}  // namespace

void CarryOutAnnounced(std::span<FileStep> steps, const UndoMeans& means, const Attempt& attempt,
                       const StepOptions& options) {
    StepTaker taker(attempt, options);
    std::uint64_t last = 0;
    while (!steps.empty()) {
        Group group(means, taker, options, last);
        try {
            steps = steps.subspan(group.Announce(steps));
            group.CarryOut();
        } catch (const std::exception&) {
            group.GiveUp();
            throw;
        }
        last = group.Last();
        // Who goes on after a power cut trusts the journal that these have happened.
        if (group.IsLinked() && !steps.empty() && means.sync) means.sync();
    }
}

}  // namespace quillon
