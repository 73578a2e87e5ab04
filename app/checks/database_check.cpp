#include "app/checks/database_check.h"

#include <cstdint>
#include <fmt/format.h>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "app/checks/identifiers_check.h"
#include "app/checks/journal_remark.h"
#include "app/checks/leftovers_check.h"
#include "app/checks/music_check.h"
#include "app/checks/playlists_check.h"
#include "app/checks/writable.h"
#include "app/table_printer.h"
#include "app/text/display_text.h"
#include "database/schema.h"
#include "driver/modes.h"
#include "jet/check.h"
#include "jet/database.h"
#include "jet/lock.h"
#include "jukebox/database_needs.h"
#include "platform/failure.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

std::int64_t Count(jet::Database& database, const std::string& from) {
    const auto rows = database.Query("SELECT Count(*) AS Rows FROM " + from);
    return std::get<std::int64_t>(rows->Get(0));
}

std::string OwnedTracks() {
    return fmt::format(
        "Tracks INNER JOIN Albums ON Tracks.CDJID = Albums.CDJID WHERE Albums.Player={}",
        OwnedPlayer);
}

/// The files of the library's own tracks, as they are stored.
std::vector<std::string> OwnedSoundFiles(jet::Database& database) {
    std::vector<std::string> files;
    const auto tracks = database.Query("SELECT Tracks.SoundFile FROM " + OwnedTracks());
    for (; !tracks->IsEof(); tracks->MoveNext()) {
        const jet::Value soundFile = tracks->Get(0);
        const auto* const text = std::get_if<std::string>(&soundFile);
        files.push_back(text == nullptr ? "" : *text);
    }
    return files;
}

/// The files of the playlists, as they are stored.
std::vector<std::string> StoredPlaylists(jet::Database& database) {
    std::vector<std::string> files;
    const auto rows = database.Query("SELECT FilePath & Filename & Type AS Path FROM Playlists");
    for (; !rows->IsEof(); rows->MoveNext()) {
        const jet::Value path = rows->Get(0);
        if (const auto* const text = std::get_if<std::string>(&path)) files.push_back(*text);
    }
    return files;
}

std::string FieldsText(const TableFit& table) {
    if (!table.isThere) return "the table is missing";
    std::string text;
    for (const UnfitField& field : table.unfit)
        text += (text.empty() ? "" : ", ") + field.Text();
    return text.empty() ? "all there" : text;
}

void TellTables(jet::Database& database, const std::vector<jet::TableDefinition>& tables,
                std::ostream& out) {
    TablePrinter needed(out, {"Table", "Rows", "Fields"}, {.indent = 2, .countsRows = false});
    for (const TableFit& table : FitOfTables(tables)) {
        const std::string name(table.name);
        const TableCell rows =
            table.isThere ? TableCell{.text = std::to_string(Count(database, "[" + name + "]")),
                                      .isNumber = true}
                          : TableCell{.text = "-", .isNull = true};
        needed.AddRow({{name}, rows, {FieldsText(table)}});
    }
    needed.Finish();
    std::string others;
    for (const jet::TableDefinition& table : tables) {
        if (!IsNeededTable(table.name))
            others += (others.empty() ? "" : ", ") + OneLine(table.name);
    }
    if (!others.empty()) out << fmt::format("  Other tables: {}\n", others);
}

void FindMissing(const std::vector<jet::TableDefinition>& tables, Findings& findings) {
    std::string text;
    for (const std::string& sentence : MissingForTheTool(tables))
        text += (text.empty() ? "" : "; ") + sentence;
    if (!text.empty()) {
        findings.Problem(text +
                         ". Name the jukebox's own database in Nirvis_CDJ_DB, or complete "
                         "this one; 'quillon db create FILE' makes a complete one to compare with");
    }
}

void CheckGenres(jet::Database& database, Findings& findings) {
    const std::string bad = "SpinnerGenre WHERE GenreID Is Null OR GenreID < 0 OR GenreID > 255";
    const std::int64_t count = Count(database, bad);
    if (count == 0) return;
    findings.Problem(fmt::format(
        "Table SpinnerGenre has {} with a GenreID that is not 0 to 255, and no run starts with "
        "{}. Correct or delete {}: DELETE * FROM {}",
        count == 1 ? "a row" : fmt::format("{} rows", count), count == 1 ? "it" : "them",
        count == 1 ? "it" : "them", bad));
}

void CheckLock(const fs::path& path, Findings& findings) {
    const jet::LockState lock = jet::LookAtLock(path);
    if (lock.kind == jet::LockState::Kind::InUse) {
        findings.Problem("A run would not open the database: " + lock.objection);
    } else if (lock.kind == jet::LockState::Kind::LeftBehind) {
        findings.Caution(
            "A run was cut off while it had the database open. The next one takes "
            "over the lock file it has left, " +
            lock.file.string());
    }
}

void CheckWritable(const fs::path& path, Findings& findings) {
    if (!IsWritable(path)) {
        findings.Problem(
            fmt::format("The database {} is read-only for this account, and a run has to write to "
                        "it. Give it the right to",
                        path.string()));
    }
    // Behind a symbolic link a run makes files in both folders.
    std::error_code unknown;
    const std::set<fs::path> folders{fs::canonical(path.parent_path(), unknown),
                                     fs::canonical(path, unknown).parent_path()};
    for (const fs::path& folder : folders) {
        if (folder.empty() || IsWritable(folder)) continue;
        findings.Problem(
            fmt::format("The database's folder {} is read-only for this account, and "
                        "a run has to make files beside the database. Give it the "
                        "right to write",
                        folder.string()));
    }
}

std::string_view Advice(jet::ErrorKind kind) {
    switch (kind) {
        case jet::ErrorKind::Damaged:
            return " Put a backup in its place; 'quillon db check' says more";
        case jet::ErrorKind::NotADatabase:
            return " Name the jukebox's database in Nirvis_CDJ_DB";
        case jet::ErrorKind::Encrypted:
            return " Remove the password or encryption with the program that set it";
        default:
            return "";
    }
}

/// What a run would look at before it writes anything.
void CheckWhole(const fs::path& path, Findings& findings) {
    const jet::CheckReport report = jet::CheckFile(path);
    if (std::string remark = JournalRemark(path, report.journal); !remark.empty())
        findings.Caution(std::move(remark));
    const jet::NeededTables needed{NeededTableNames()};
    std::vector<std::string> serious, others;
    for (const jet::CheckFault& fault : report.faults)
        (needed.AreConcernedBy(fault) ? serious : others).push_back(fault.text);
    const auto told = [](const std::vector<std::string>& faults) {
        return faults.size() == 1
                   ? faults.front()
                   : fmt::format("{}, and {} more", faults.front(), faults.size() - 1);
    };
    if (!serious.empty()) {
        findings.Problem(
            fmt::format("The database is damaged, and a run refuses it: {}. Put a backup "
                        "in its place; 'quillon db check {}' lists all faults",
                        told(serious), path.string()));
    }
    if (!others.empty()) {
        findings.Caution(
            fmt::format("A table that no run needs is damaged. It is left as it is: {}. 'quillon "
                        "db check {}' lists all faults",
                        told(others), path.string()));
    }
}

void LookInto(LocalHost& local, const fs::path& path, const Settings& settings, std::ostream& out,
              Findings& findings) try {
    CheckLock(path, findings);
    jet::Database database =
        jet::Database::Open(path, jet::OpenMode::ReadOnly, jet::NeededTables{NeededTableNames()});
    CheckWhole(path, findings);
    const auto tables = database.Tables();
    TellTables(database, tables, out);
    FindMissing(tables, findings);
    if (!MissingForTheTool(tables).empty()) return;
    CheckGenres(database, findings);
    CheckIdentifiers(database, findings);
    CheckMusic(local, settings, OwnedSoundFiles(database), out, findings);
    CheckPlaylists(local, settings, StoredPlaylists(database), findings);
} catch (const jet::Error& error) {
    out << "  cannot be used\n";
    findings.Problem(error.what() + std::string(Advice(error.Kind())));
}

}  // namespace

void CheckDatabase(LocalHost& local, const Settings& settings, std::ostream& out,
                   Findings& findings) try {
    out << "\nDatabase\n";
    const std::string& shown = settings.Nirvis_CDJ_DB;
    if (shown.empty()) {
        out << "  none\n";
        return findings.Problem(
            "Setting Nirvis_CDJ_DB is empty. Write the database's path, D:\\jukebox.mdb for "
            "instance");
    }
    const fs::path path = local.resolver.Local(shown);
    out << fmt::format("  {}\n  {}\n", OneLine(shown), OneLine(path.string()));
    // What cannot be looked up, or is not a file, is reported when it is opened.
    std::error_code unknown;
    if (fs::status(path, unknown).type() == fs::file_type::not_found) {
        out << "  is not there\n";
        return findings.Problem(fmt::format(
            "The database {} is not there. Correct Nirvis_CDJ_DB, or [Drives] in host.ini",
            path.string()));
    }
    const Mode* const mode = SelectMode(settings);
    CheckLeftovers(path, mode != nullptr && mode->IsReconciliation(), findings);
    CheckWritable(path, findings);
    LookInto(local, path, settings, out, findings);
} catch (const Failure& failure) {
    out << "  is not there\n";
    findings.Problem(fmt::format(
        "The database cannot be found: {}. Correct Nirvis_CDJ_DB, or [Drives] in host.ini",
        failure.what()));
}

}  // namespace quillon
