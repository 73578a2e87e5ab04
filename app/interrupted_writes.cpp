#include "app/interrupted_writes.h"

#include <algorithm>
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
#include "driver/library_folders.h"
#include "driver/settings_reader.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "platform/windows_path.h"
#include "run/paths.h"
#include "undo/piece_undo.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

/// A run that was killed, and which of its changes have to be looked at.
struct Suspect {
    std::string stamp;
    std::unordered_set<std::uint64_t> numbers = {};  ///< none: all
};

/// What a killed run has written in place.
struct KilledRun {
    std::string stamp;
    std::vector<FileChange> writes;  ///< as far as they have not failed
    /// Number of the first of its last changes of files, which were recorded together.
    std::uint64_t last = 0;
};

KilledRun ReadKilledRun(const fs::path& journal, const Suspect& suspect) {
    KilledRun run{.stamp = suspect.stamp, .writes = {}};
    std::unordered_set<std::uint64_t> failed;
    VisitRecords(journal, [&](const ChangeRecord& record) {
        if (const auto* const failure = std::get_if<FileChangeFailed>(&record))
            failed.insert(failure->number);
        const auto* const change = std::get_if<FileChange>(&record);
        if (change == nullptr) return;
        run.last = FirstOfGroup(*change);
        if (change->kind == FileChange::Kind::EndWritten ||
            change->kind == FileChange::Kind::PieceReplaced)
            run.writes.push_back(*change);
    });
    std::erase_if(run.writes, [&](const FileChange& write) {
        const bool isMeant = suspect.numbers.empty() || suspect.numbers.contains(write.number);
        return !isMeant || failed.contains(write.number);
    });
    return run;
}

fs::path JournalOf(const fs::path& folder, const std::string& stamp) {
    return folder / (stamp + ".jsonl");
}

/// What a run that came to its end could not look at, in its order.
void AddLeftWrites(const fs::path& journal, std::vector<Suspect>& suspects) {
    VisitRecords(journal, [&](const ChangeRecord& record) {
        const auto* const left = std::get_if<WriteLeft>(&record);
        if (left == nullptr) return;
        auto suspect = std::ranges::find(suspects, left->stamp, &Suspect::stamp);
        if (suspect == suspects.end())
            suspect = suspects.insert(suspects.end(), {.stamp = left->stamp});
        if (left->number != 0) suspect->numbers.insert(left->number);
    });
}

/// Those since the last run that came to its end, which has put right what was there before it, and
/// what that one had to leave; the newest first.
std::vector<Suspect> SuspectsIn(const fs::path& folder, std::string_view own) {
    std::vector<Suspect> suspects;
    const std::vector<fs::path> journals = JournalsIn(folder);
    for (auto journal = journals.rbegin(); journal != journals.rend(); ++journal) {
        if (journal->stem() == own) continue;
        const std::optional<RunEnded> end = EndOfRun(*journal);
        if (!end) suspects.push_back({.stamp = journal->stem().string()});
        if (!end || end->outcome != "completed") continue;
        if (end->writesLeft > 0) AddLeftWrites(*journal, suspects);
        break;
    }
    return suspects;
}

/// Whether files that are not there have been removed or renamed, or lie on a drive that is away.
class AwayFiles {
  public:
    explicit AwayFiles(LocalHost& local) : local_(local) {}

    /// Where the folder of a missing file is gone as well, or holds nothing, like the mount point
    /// of a drive, only a library folder that has something else in it tells that the drive is
    /// there.
    bool Has(std::string_view path) try {
        if (local_.files.FileExists(path)) return false;
        const std::string_view own = ParentFolder(path);
        std::string_view folder = own;
        while (!folder.empty() && !local_.files.FolderExists(folder))
            folder = ParentFolder(folder);
        return folder.empty() || IsBare(folder) || (folder != own && !IsInLibrary(folder));
    } catch (const Failure&) {
        return true;  // a link that leads nowhere, for instance
    }

  private:
    bool IsBare(std::string_view folder) {
        const FolderNames names = local_.files.NamesIn(folder);
        return names.files.empty() && std::ranges::all_of(names.folders, IsOfFileSystem);
    }
    bool IsInLibrary(std::string_view folder) {
        if (!library_)
            library_ = BuildLibraryFolders(local_.files, InspectSettings(local_.host).settings);
        const std::string inner = LowerCase(AddBackslash(folder));
        return std::ranges::any_of(*library_, [&](const FolderEntry& root) {
            return inner.starts_with(LowerCase(AddBackslash(root.path)));
        });
    }

    LocalHost& local_;
    std::optional<std::vector<FolderEntry>> library_;
};

/// Puts right what was being written, the newest first.
class Repair {
  public:
    Repair(LocalHost& local, const NoteSink& note)
        : files_(local.files),
          undo_(local.files, local.host.GetAppPath()),
          away_(local),
          note_(note) {}

    void PutRight(const KilledRun& run) {
        std::vector<std::string> away;
        for (auto write = run.writes.rbegin(); write != run.writes.rend(); ++write) {
            try {
                if (away_.Has(write->path)) {
                    away.push_back(write->path);
                    left_.push_back({run.stamp, write->number});
                } else if (PutRight(*write, write->number >= run.last)) {
                    note_(LogKind::Information,
                          write->path + ": what an interrupted run was writing is put right");
                }
            } catch (const Failure& failure) {
                left_.push_back({run.stamp, write->number});
                note_(LogKind::Error,
                      fmt::format("{}: its tag may be damaged, since run {} was interrupted while "
                                  "it wrote that; 'quillon undo {}' puts it right: {}",
                                  write->path, run.stamp, run.stamp, failure.what()));
            }
        }
        if (!away.empty()) TellAway(run.stamp, away);
    }

    /// A run whose journal cannot be read.
    void Leave(const Suspect& run) {
        if (run.numbers.empty()) left_.push_back({run.stamp});
        for (const std::uint64_t number : run.numbers)
            left_.push_back({run.stamp, number});
    }

    std::vector<WriteLeft> Left() && { return std::move(left_); }

  private:
    void TellAway(const std::string& stamp, const std::vector<std::string>& paths) {
        const bool isOne = paths.size() == 1;
        note_(LogKind::Error,
              fmt::format("{}{} cannot be found, and the tag{} may be damaged, since run {} was "
                          "interrupted while it wrote {}. Connect the drive: the next run puts "
                          "right what it finds there. If {} gone for good, delete Changes/{}.jsonl",
                          paths.front(), isOne ? "" : fmt::format(" and {} more", paths.size() - 1),
                          isOne ? "" : "s", stamp, isOne ? "it" : "them",
                          isOne ? "the file is" : "the files are", stamp));
    }

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
    AwayFiles away_;
    const NoteSink& note_;
    /// Where it is known what the last write has left: that may look like an earlier one in part.
    std::set<std::pair<std::string, std::uint64_t>> settled_;
    std::vector<WriteLeft> left_;
};

}  // namespace

std::vector<WriteLeft> PutInterruptedWritesRight(LocalHost& local, std::string_view own,
                                                 const NoteSink& note) {
    Repair repair(local, note);
    const fs::path folder = ChangesFolder(local.host.Folder());
    for (const Suspect& suspect : SuspectsIn(folder, own)) {
        const fs::path journal = JournalOf(folder, suspect.stamp);
        std::error_code unknown;
        // Whoever has deleted it does not expect the files back.
        if (fs::symlink_status(journal, unknown).type() == fs::file_type::not_found) continue;
        try {
            repair.PutRight(ReadKilledRun(journal, suspect));
        } catch (const Failure& failure) {
            repair.Leave(suspect);
            note(LogKind::Error, failure.what());
        }
    }
    return std::move(repair).Left();
}

}  // namespace quillon
