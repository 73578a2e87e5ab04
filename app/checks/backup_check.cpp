#include "app/checks/backup_check.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <fmt/format.h>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "app/checks/writable.h"
#include "app/size_text.h"
#include "app/table_printer.h"
#include "backups/kept_backups.h"
#include "backups/restore_backup.h"
#include "driver/nearest_name.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "platform/portable/file_handle.h"
#include "platform/portable/local_file.h"
#include "run/paths.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

/// What all files in a folder, or the one file, take; what cannot be looked at does not count.
std::uintmax_t SizeOf(const fs::path& path) {
    std::error_code error;
    if (!fs::is_directory(path, error)) {
        const std::uintmax_t size = fs::file_size(path, error);
        return error ? 0 : size;
    }
    std::uintmax_t sum = 0;
    for (auto entry = fs::recursive_directory_iterator(path, error);
         entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        std::error_code ignored;
        const std::uintmax_t size = entry->is_regular_file(ignored) ? entry->file_size(ignored) : 0;
        if (!ignored) sum += size;
    }
    return sum;
}

/// The first file or folder in there, or the thing itself, that this account may not read; "" where
/// there is none.
fs::path FirstUnreadable(const fs::path& path) {
    const auto mayRead = [](const fs::path& one) {
        return FileHandle(OpenLocal(one.generic_string(), FileUse::Read), "").Descriptor() >= 0;
    };
    std::error_code error;
    if (!mayRead(path)) return path;
    if (!fs::is_directory(path, error)) return {};
    for (auto entry = fs::recursive_directory_iterator(
             path, fs::directory_options::skip_permission_denied, error);
         entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        const bool counts = entry->is_regular_file(error) || entry->is_directory(error);
        if (counts && !mayRead(entry->path())) return entry->path();
    }
    return {};
}

/// What the copies need on one file system.
struct Demand {
    fs::path folder;
    std::uintmax_t bytes = 0;
};

class Backups {
  public:
    Backups(PathResolver& resolver, Findings& findings)
        : resolver_(resolver), findings_(findings) {}

    /// Adds an original to the plan; how it stands.
    std::string Add(const std::string& original, bool isFolder) {
        if (!NamesFolder(original)) return "not set";
        const std::optional<fs::path> local = Local(original);
        std::error_code ignored;
        const bool exists = local && (isFolder ? fs::is_directory(*local, ignored)
                                               : fs::is_regular_file(*local, ignored));
        if (!exists) return "does not exist";
        const std::uintmax_t size = SizeOf(*local);
        if (isFolder && IsDriveRoot(original)) {
            findings_.Problem(fmt::format(
                "{} is a whole drive, and the copy that a run makes first cannot lie beside it, so "
                "no run starts. Name a folder on it",
                original));
            return SizeText(size);
        }
        if (const fs::path unreadable = FirstUnreadable(*local); !unreadable.empty()) {
            findings_.Problem(
                fmt::format("{} cannot be read by this account, so it cannot be backed up, and no "
                            "run starts without a backup. Give it the right to read there",
                            unreadable.string()));
        }
        CheckPlace(original, local->parent_path(), size);
        return SizeText(size);
    }

    void CheckRoom() {
        for (const auto& [device, demand] : demands_) {
            std::error_code error;
            const fs::space_info space = fs::space(demand.folder, error);
            if (error || space.available >= demand.bytes) continue;
            findings_.Problem(fmt::format(
                "The backups need {} and {} has {} left, and no run starts without them. Free some "
                "space, old copies for instance",
                SizeText(demand.bytes), demand.folder.string(), SizeText(space.available)));
        }
    }

  private:
    std::optional<fs::path> Local(std::string_view original) try {
        const fs::path local = resolver_.Local(original);
        return local.has_filename() ? local : local.parent_path();
    } catch (const Failure&) {
        return std::nullopt;
    }

    void CheckPlace(const std::string& original, const fs::path& parent, std::uintmax_t size) {
        if (!IsWritable(parent)) {
            findings_.Problem(
                fmt::format("{} cannot be backed up, because this account may not write to {}, and "
                            "no run starts without a backup. Give it the right to write there",
                            original, parent.string()));
        }
        const std::optional<FileFacts> facts = FactsOf(parent.generic_string());
        if (!facts) return;
        Demand& demand = demands_[facts->identity.device];
        demand.folder = parent;
        demand.bytes += size;
    }

    PathResolver& resolver_;
    Findings& findings_;
    std::map<std::uint64_t, Demand> demands_;  ///< by file system
};

}  // namespace

void CheckBackups(PathResolver& resolver, std::span<const BackedUp> originals,
                  const Settings& settings, std::ostream& out, Findings& findings) {
    Backups backups(resolver, findings);
    std::vector<std::vector<TableCell>> rows;
    for (const BackedUp& original : originals) {
        const std::string& path = settings.*original.path;
        rows.push_back(
            {{backups.Add(path, original.isFolder)}, {NamesFolder(path) ? path : "(empty)"}});
    }
    if (rows.empty()) {
        out << "  Without backups\n";
        return;
    }
    out << "  Backups of\n";
    TablePrinter table(out, {"Size", "Original"}, {.indent = 4, .countsRows = false});
    for (std::vector<TableCell>& row : rows)
        table.AddRow(std::move(row));
    table.Finish();
    backups.CheckRoom();
}

void CheckBackupKeeping(HostFolder& host, std::ostream& out, Findings& findings) {
    const BackupKeeping keeping = ReadBackupKeeping(host);
    if (keeping.newest) {
        out << fmt::format("Backups          the last {} stay, then one a month for a year\n",
                           *keeping.newest);
    } else {
        out << "Backups          all stay, and each run makes new ones\n";
    }
    for (const auto& [key, value] : host.Entries(BackupsSection, HostSettingsFile)) {
        if (!EqualIgnoringCase(key, BackupsKeepKey)) {
            findings.Caution(fmt::format("{} has {}={} in [{}], which nothing reads. {}",
                                         HostSettingsFile, key, value, BackupsSection,
                                         NearestName(key, {{BackupsKeepKey}}).empty()
                                             ? "Delete the line"
                                             : "If Keep is meant, correct the name"));
        } else if (!keeping.newest && !value.empty()) {
            findings.Caution(fmt::format(
                "{} in [{}] of {} is \"{}\", which is not a whole number of 1 or more, so that all "
                "backups stay. Write {}, or delete the line",
                BackupsKeepKey, BackupsSection, HostSettingsFile, value, BackupKeeping::Usual));
        }
    }
}

void CheckHalfRestored(Files& files, const Settings& settings, Findings& findings) try {
    const std::string backup = UnfinishedRestore(files, settings.Nirvis_CDJ_DB);
    if (backup.empty()) return;
    findings.Problem(
        fmt::format("The backup {} has been put back only in part, and no run starts until "
                    "'quillon restore {}' has completed that",
                    backup, backup));
} catch (const Failure&) {
    return;  // that nobody can look beside the database is told where the database is looked at
}

}  // namespace quillon
