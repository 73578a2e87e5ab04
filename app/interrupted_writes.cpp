#include "app/interrupted_writes.h"

#include <filesystem>
#include <fmt/format.h>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "app/journal/journal_file.h"
#include "app/journal/journal_reader.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "undo/piece_undo.h"

namespace quillon {
namespace {

/// What a killed run has written in place.
struct KilledRun {
    std::string stamp;
    std::vector<FileChange> writes;  ///< as far as they have not failed
    std::uint64_t last = 0;          ///< number of its last change of a file
};

KilledRun ReadKilledRun(const std::filesystem::path& journal) {
    KilledRun run{.stamp = journal.stem().string(), .writes = {}};
    std::unordered_set<std::uint64_t> failed;
    VisitRecords(journal, [&](const ChangeRecord& record) {
        if (const auto* const failure = std::get_if<FileChangeFailed>(&record))
            failed.insert(failure->number);
        const auto* const change = std::get_if<FileChange>(&record);
        if (change == nullptr) return;
        run.last = change->number;
        if (change->kind == FileChange::Kind::EndWritten ||
            change->kind == FileChange::Kind::PieceReplaced)
            run.writes.push_back(*change);
    });
    std::erase_if(run.writes,
                  [&](const FileChange& write) { return failed.contains(write.number); });
    return run;
}

/// Those since the last run that came to its end, which has put right what was there before it; the
/// newest first.
std::vector<std::filesystem::path> JournalsOfKilledRuns(const std::filesystem::path& folder,
                                                        std::string_view own) {
    std::vector<std::filesystem::path> killed;
    const std::vector<std::filesystem::path> journals = JournalsIn(folder);
    for (auto journal = journals.rbegin(); journal != journals.rend(); ++journal) {
        if (journal->stem() == own) continue;
        const std::optional<RunEnded> end = EndOfRun(*journal);
        if (end && end->outcome == "completed") break;
        if (!end) killed.push_back(*journal);
    }
    return killed;
}

/// Puts right what was being written, the newest first.
class Repair {
  public:
    Repair(LocalHost& local, const NoteSink& note)
        : files_(local.files), undo_(local.files, local.host.GetAppPath()), note_(note) {}

    void PutRight(const KilledRun& run) {
        for (auto write = run.writes.rbegin(); write != run.writes.rend(); ++write) {
            try {
                if (PutRight(*write, write->number == run.last))
                    note_(LogKind::Information,
                          write->path + ": what an interrupted run was writing is put right");
            } catch (const Failure& failure) {
                note_(LogKind::Error,
                      fmt::format("{}: its tag may be damaged, since run {} was interrupted while "
                                  "it wrote that; 'quillon undo {}' puts it right: {}",
                                  write->path, run.stamp, run.stamp, failure.what()));
            }
        }
    }

  private:
    /// Whether there was something to put right.
    bool PutRight(const FileChange& write, bool isLast) {
        const std::pair place(LowerCase(write.path), write.position);
        if (settled_.contains(place)) return false;
        const Progress progress = undo_.ProgressOf(write);
        if (progress == Progress::Unknown) return false;
        settled_.insert(place);
        const bool isTorn = progress == Progress::Partly;
        if (isTorn) undo_.TakeBack(write, Writes::PerhapsTorn);
        const std::int64_t time = write.before->exactTime;
        if (!(isTorn || isLast) || time == 0 || files_.ExactTimeOf(write.path) == time)
            return isTorn;
        files_.SetExactTime(write.path, time);
        return true;
    }

    PortableFiles& files_;
    PieceUndo undo_;
    const NoteSink& note_;
    /// Where it is known what the last write has left: that may look like an earlier one in part.
    std::set<std::pair<std::string, std::uint64_t>> settled_;
};

}  // namespace

void PutInterruptedWritesRight(LocalHost& local, std::string_view own, const NoteSink& note) {
    Repair repair(local, note);
    for (const auto& journal : JournalsOfKilledRuns(ChangesFolder(local.host.Folder()), own)) {
        try {
            repair.PutRight(ReadKilledRun(journal));
        } catch (const Failure& failure) {
            note(LogKind::Error, failure.what());
        }
    }
}

}  // namespace quillon
