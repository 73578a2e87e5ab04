#include "driver/backups.h"

#include "platform/basic_text.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

std::string DatedCopy(Run& run, std::string_view original) {
    return std::string(original) + "_Copy Dated_" + BackupStamp(run.clock.Now()) + "_";
}

}  // namespace

std::string BackupStamp(DateTime time) {
    std::string stamp = Replace(DateTimeText(time), ":", "");
    stamp = Replace(stamp, " ", "_");
    stamp = Replace(stamp, "/", "");
    return Replace(stamp, ",", "");
}

void TimeStampBackup(Run& run, std::string_view file) {
    run.ShowItem("Making Backup for file " + std::string(file));
    Steps steps(run, "TimeStampBackup");
    steps.Try(3, [&] {
        if (run.files.FileExists(file)) run.files.CopyFile(file, DatedCopy(run, file), true);
    });
}

void TimeStampFolderBackup(Run& run, std::string_view folder) {
    run.ShowItem("Making Backup for Folder " + std::string(folder));
    if (folder.empty()) return;
    const std::string_view source = folder.substr(0, folder.size() - 1);
    const std::string target = DatedCopy(run, source);

    Steps steps(run, "TimeStampFolderBackup");
    bool sourceExists = false;
    steps.Try(5, [&] { sourceExists = run.files.FolderExists(source); });
    if (!sourceExists) return;
    steps.Try(6, [&] {
        if (!run.files.FolderExists(target)) run.files.CreateFolder(target);
    });
    steps.Try(7, [&] { run.files.CopyFolder(source, target, true); });
}

}  // namespace quillon
