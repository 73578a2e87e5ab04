#include "backups/kept_backups.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <numeric>
#include <set>
#include <string>
#include <utility>

#include "backups/backup_list.h"
#include "backups/backups.h"
#include "backups/byte_progress.h"
#include "backups/same_content.h"
#include "platform/basic_text.h"
#include "platform/host.h"
#include "platform/windows_path.h"
#include "run/counted.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class KeepingStep { FindLastCopies = 1, Compare = 2, Name = 3, WriteNote = 4 };

constexpr const char* Comparing =
    "it is copied once more. If the last copy of it cannot be read, remove that copy";
constexpr const char* Removing =
    "the old backup stays. Remove it yourself, or give this account the right to";

/// "2026-11" of a time.
std::string MonthOf(DateTime time) {
    return SortableDateTimeText(time).substr(0, 7);
}

/// The same day and time a year earlier, in a form that can be compared with others.
std::string AYearBefore(DateTime time) {
    const std::string text = SortableDateTimeText(time);
    const std::string year = std::to_string(std::stoi(text.substr(0, 4)) - 1);
    return std::string(4 - std::min<std::size_t>(year.size(), 4), '0') + year + text.substr(4);
}

/// A mark of the present time that none of the copies has.
std::string FreeMark(Run& run) {
    const std::string stamp = BackupStamp(run.clock.Now());
    std::string mark = stamp;
    for (int number = 2; !IsFreeMark(run.files, run.settings, mark); ++number)
        mark = stamp + '_' + std::to_string(number);
    return mark;
}

/// The last copies of those originals that still have their content.
std::vector<BackupCopy> UnchangedSince(Run& run, std::span<const BackupOriginal> originals) {
    Steps steps(run, "TimeStampBackup");
    steps.Advising(Comparing);
    std::vector<BackupCopy> newest;
    steps.Try(KeepingStep::FindLastCopies,
              [&] { newest = NewestCopies(run.files, originals, run.clock.Now()); });
    std::vector<BackupOriginal> compared;
    std::ranges::transform(newest, std::back_inserter(compared), &BackupCopy::original);
    ByteProgress progress(run, compared);
    const auto watch = [&progress](std::uint64_t bytes) { progress.Add(bytes); };
    std::erase_if(newest, [&](const BackupCopy& copy) {
        const BackupOriginal& original = copy.original;
        bool isSame = false;
        steps.Concerning(original.path);
        steps.Try(KeepingStep::Compare, [&] {
            const bool isThere = original.isFolder ? run.files.FolderExists(original.path)
                                                   : run.files.FileExists(original.path);
            isSame = isThere && (original.isFolder
                                     ? HoldTheSame(run.files, original.path, copy.path, watch)
                                     : HaveSameBytes(run.files, original.path, copy.path, watch));
        });
        return !isSame;
    });
    return newest;
}

bool Has(std::span<const BackupCopy> copies, const BackupOriginal& original) {
    return std::ranges::any_of(copies, [&original](const BackupCopy& copy) {
        return copy.original.part == original.part;
    });
}

/// Adds the paths of the copies; false when one failed.
bool CopyOriginals(Run& run, std::span<const BackupOriginal> originals, const std::string& mark,
                   std::vector<std::string>& made) {
    const ByteProgress progress(run, originals);
    return std::ranges::all_of(originals, [&](const BackupOriginal& original) {
        const Backup backup = original.isFolder
                                  ? TimeStampFolderBackup(run, original.path + '\\', mark)
                                  : TimeStampBackup(run, original.path, mark);
        if (!backup.copy.empty()) made.push_back(backup.copy);
        return backup.succeeded;
    });
}

/// Removes a copy of a folder at once, write-protected lists in it included: first it gets a name
/// that marks it as unfinished, so that half of it is never taken for a backup.
void RemoveCopyOfFolder(Files& files, const std::string& folder) {
    const std::string parent = std::string(ParentFolder(folder)) + '\\';
    std::string unfinished;
    for (int number = 0; unfinished.empty() || files.FolderExists(unfinished); ++number)
        unfinished = parent + ".quillon-0-" + std::to_string(number) + ".tmp";
    files.MoveFolder(folder, unfinished);
    files.RemoveUnfinished(parent);
}

/// The note goes first: what is left of a backup whose removal was cut short is never taken for
/// more than it is.
void RemoveBackup(Run& run, const BackupMoment& moment) {
    if (!moment.note.empty()) run.files.Discard(moment.note);
    for (const BackupCopy& copy : moment.copies) {
        if (copy.original.isFolder) {
            RemoveCopyOfFolder(run.files, copy.path);
        } else {
            run.files.Discard(copy.path);
        }
    }
}

/// Whether each of the backups may go. A name that can be read in two ways goes only where it would
/// go by either.
std::vector<bool> MayGo(std::span<const BackupMoment> backups, std::size_t newest, DateTime now) {
    std::vector<bool> mayGo(backups.size(), true);
    for (const auto reading : {&BackupMoment::made, &BackupMoment::latest}) {
        std::vector<DateTime> times;
        for (const BackupMoment& moment : backups)
            times.push_back(moment.*reading);
        const std::vector<bool> stays = BackupsThatStay(times, newest, now);
        for (std::size_t i = 0; i < backups.size(); ++i)
            if (stays[i]) mayGo[i] = false;
    }
    std::set<std::string> needed;
    for (std::size_t i = 0; i < backups.size(); ++i) {
        if (mayGo[i]) continue;
        for (const BackupCopy& copy : backups[i].shared)
            needed.insert(copy.path);
    }
    for (std::size_t i = 0; i < backups.size(); ++i) {
        const auto isNeeded = [&](const BackupCopy& copy) { return needed.contains(copy.path); };
        if (std::ranges::any_of(backups[i].copies, isNeeded)) mayGo[i] = false;
    }
    return mayGo;
}

}  // namespace

BackupKeeping ReadBackupKeeping(Host& host) {
    BackupKeeping keeping;
    keeping.text = host.GetINISetting(BackupsSection, BackupsKeepKey, "", HostSettingsFile);
    const std::optional<double> number = ToNumber(keeping.text);
    constexpr double Most = 1'000'000;
    if (number && *number >= 1 && *number <= Most &&
        *number == static_cast<double>(static_cast<std::size_t>(*number)))
        keeping.newest = static_cast<std::size_t>(*number);
    return keeping;
}

std::vector<bool> BackupsThatStay(std::span<const DateTime> made, std::size_t newest,
                                  DateTime now) {
    std::vector<std::size_t> order(made.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, std::ranges::greater(),
                             [made](std::size_t i) { return made[i]; });
    const std::string oldest = AYearBefore(now);
    std::vector<bool> stays(made.size(), false);
    std::string month;
    std::size_t place = 0;
    for (const std::size_t i : order) {
        const DateTime time = made[i];
        // Where the clock has been put back, those of "later" must not push out what a run has just
        // made.
        if (time > now || place++ < newest) {
            stays[i] = true;
        } else if (SortableDateTimeText(time) >= oldest && MonthOf(time) != month) {
            stays[i] = true;
            month = MonthOf(time);
        }
    }
    return stays;
}

bool BackUpWhatChanged(Run& run, std::span<const BackedUp> backedUp) {
    std::vector<BackupOriginal> originals = BackupOriginals(run.settings, backedUp);
    std::vector<BackupCopy> unchanged;
    {
        const Share share(run, 0, 0.5);
        unchanged = UnchangedSince(run, originals);
    }
    const Share share(run, 0.5, 1);
    std::erase_if(originals, [&](const BackupOriginal& one) { return Has(unchanged, one); });
    Steps steps(run, "TimeStampBackup");
    std::string mark;
    std::vector<std::string> made;
    bool succeeded = steps.Try(KeepingStep::Name, [&] { mark = FreeMark(run); }) &&
                     CopyOriginals(run, originals, mark, made);
    if (succeeded && !made.empty() && !unchanged.empty()) {
        succeeded = steps.Try(KeepingStep::WriteNote, [&] {
            made.push_back(WriteBackupNote(run.files, run.settings, mark, unchanged));
        });
    }
    if (!succeeded) TakeBackupsBack(run, made);
    return succeeded;
}

std::string BackUpAll(Run& run) {
    std::string mark = FreeMark(run);
    std::vector<std::string> made;
    if (CopyOriginals(run, BackupOriginals(run.settings), mark, made)) return mark;
    TakeBackupsBack(run, made);
    return "";
}

void RemoveOldBackups(Run& run, std::size_t newest) {
    Steps steps(run, "RemoveOldBackups");
    steps.Advising(Removing);
    std::size_t removed = 0;
    steps.Try([&] {
        const DateTime now = run.clock.Now();
        const std::vector<BackupMoment> backups = FindBackups(run.files, run.settings, now);
        const std::vector<bool> mayGo = MayGo(backups, newest, now);
        for (std::size_t i = backups.size(); i-- > 0;) {
            if (mayGo[i] && steps.Try([&] { RemoveBackup(run, backups[i]); })) ++removed;
        }
    });
    if (removed == 0) return;
    WriteLog(run, LogSource,
             std::to_string(removed) + (removed == 1 ? " old backup was" : " old backups were") +
                 " removed, as [Backups] in host.ini says");
}

}  // namespace quillon
