#include "app/commands/restore_command.h"

#include <algorithm>
#include <fmt/format.h>
#include <iostream>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "app/commands/backups_command.h"
#include "app/commands/database_work.h"
#include "app/confirmation.h"
#include "app/local_host.h"
#include "app/signals.h"
#include "app/size_text.h"
#include "app/text/display_text.h"
#include "backups/backup_list.h"
#include "backups/restore_backup.h"
#include "driver/nearest_name.h"
#include "driver/settings_reader.h"
#include "jet/database.h"
#include "platform/no_window.h"
#include "run/log.h"
#include "run/run.h"

namespace quillon {
namespace {

/// Tells errors alone. A signal waits until all is in its place: what is under way takes seconds.
class ErrorsOnly : public NoWindow {
  public:
    explicit ErrorsOnly(std::ostream& err) : err_(err) {}
    void LogWritten(LogKind kind, std::string_view, std::string_view message) override {
        if (kind == LogKind::Error) err_ << "quillon: " << OneLine(message) << '\n';
    }

  private:
    std::ostream& err_;
};

/// The backup of that name, or of a mark that one of its copies has.
const BackupMoment* Find(const std::vector<BackupMoment>& backups, std::string_view name) {
    if (name.ends_with('_')) name.remove_suffix(1);
    const auto hasName = [name](const BackupMoment& backup) {
        return backup.name == name || std::ranges::any_of(backup.copies, [name](const auto& copy) {
                   return copy.mark == name;
               });
    };
    const auto found = std::ranges::find_if(backups, hasName);
    return found == backups.end() ? nullptr : &*found;
}

std::string NoSuchBackup(const std::vector<BackupMoment>& backups, const RestoreRequest& request,
                         const std::string& host) {
    std::vector<std::string_view> names;
    names.reserve(backups.size());
    for (const BackupMoment& backup : backups)
        names.push_back(backup.name);
    std::string text = fmt::format("there is no backup {}", request.backup);
    const std::string_view meant = NearestName(request.backup, names);
    if (backups.empty()) return text + "; no run has made one yet";
    text += meant.empty() ? "; " : fmt::format("; did you mean {}? ", meant);
    return text + fmt::format("'quillon backups --host {}' lists those that there are", host);
}

/// Keeps other programs out of the database while it is replaced. One that cannot be opened at all
/// is what a restore is for.
std::optional<jet::Database> TakeDatabase(const std::filesystem::path& path) {
    try {
        return jet::Database::Open(path, jet::OpenMode::ReadWrite, jet::NeededTables::None());
    } catch (const jet::Error& error) {
        if (error.Kind() == jet::ErrorKind::InUse) throw CommandError(Clause(error));
        return std::nullopt;
    }
}

void TellPlan(LocalHost& local, const Settings& settings, const BackupMoment& backup,
              std::ostream& out) {
    out << fmt::format("The backup of {} would be put back:\n", SortableDateTimeText(backup.made));
    for (const BackupOriginal& original : BackupOriginals(settings)) {
        if (IsNote(original.part)) continue;
        const BackupCopy* const copy = backup.CopyOf(original.part);
        const std::string what =
            copy == nullptr ? "stays as it is, this backup has no copy of it"
                            : SizeText(SizeOfBackup(local.files, *copy)) + " from " + copy->mark;
        out << fmt::format("  {:<14} {}: {}\n", NameOfPart(original.part), OneLine(original.path),
                           what);
    }
    if (!backup.isWhole)
        out << "A part of this backup is missing: an earlier copy is gone, or cannot be found.\n";
    out << "What is there now becomes a backup first. Music files and tags stay as they are.\n";
}

void TellEnd(const Restored& restored, const BackupMoment& backup, const std::string& host,
             std::ostream& out) {
    if (restored.succeeded) {
        out << fmt::format("Done. 'quillon restore {} --host {}' takes it back.\n",
                           restored.copyOfNow, host);
    } else if (restored.copyOfNow.empty()) {
        out << "Nothing was changed.\n";
    } else {
        out << fmt::format(
            "Not completed; no run starts until 'quillon restore {} --host {}' has been. What was "
            "there before is the backup {}.\n",
            backup.name, host, restored.copyOfNow);
    }
}

}  // namespace

int Restore(const RestoreRequest& request, Console console) {
    LocalHost local(request.host, [](LogKind, const std::string&) {});
    ErrorsOnly window(console.err);
    Run run(local.host, local.files, local.clock, window);
    run.settings = InspectSettings(local.host).settings;
    const std::string host = OneLine(local.host.Folder().string());
    const std::vector<BackupMoment> backups =
        FindBackups(local.files, run.settings, local.clock.Now());
    const BackupMoment* const backup = Find(backups, request.backup);
    if (backup == nullptr) throw CommandError(NoSuchBackup(backups, request, host));
    TellPlan(local, run.settings, *backup, console.out);
    if (!request.yes && !IsConfirmed("Go on?", std::cin, console.out)) {
        console.out << "Nothing was changed.\n";
        return RefusedStatus;
    }
    const AbortSignals signals;
    const auto taken = TakeDatabase(local.resolver.Local(run.settings.Nirvis_CDJ_DB));
    const Restored restored = RestoreBackup(run, *backup);
    TellEnd(restored, *backup, host, console.out);
    return restored.succeeded ? DoneStatus : RefusedStatus;
}

}  // namespace quillon
