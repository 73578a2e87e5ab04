#include "app/commands/db_command.h"

#include <csignal>
#include <filesystem>
#include <fmt/format.h>
#include <ostream>
#include <string>
#include <vector>

#include "app/checks/journal_remark.h"
#include "app/display_text.h"
#include "app/jukebox_database.h"
#include "app/signals.h"
#include "app/table_printer.h"
#include "app/value_text.h"
#include "jet/check.h"
#include "jet/database.h"
#include "jet/journal.h"

namespace quillon {
namespace {

std::vector<std::string> FieldNames(const jet::RecordSet& rows) {
    std::vector<std::string> names;
    names.reserve(rows.FieldCount());
    for (std::size_t i = 0; i < rows.FieldCount(); ++i)
        names.push_back(rows.FieldName(i));
    return names;
}

bool IsNumber(const jet::Value& value) {
    return std::holds_alternative<std::int64_t>(value) || std::holds_alternative<double>(value) ||
           std::holds_alternative<jet::Currency>(value) ||
           std::holds_alternative<jet::Decimal>(value);
}

void PrintTable(jet::RecordSet& rows, std::ostream& out) {
    const std::vector<std::string> names = FieldNames(rows);
    TablePrinter table(out, names);
    for (; !rows.IsEof(); rows.MoveNext()) {
        std::vector<TableCell> cells;
        cells.reserve(names.size());
        for (std::size_t i = 0; i < names.size(); ++i) {
            const jet::Value value = rows.Get(i);
            cells.push_back({ValueText(value), IsNumber(value), jet::IsNull(value)});
        }
        table.AddRow(std::move(cells));
    }
    table.Finish();
}

void PrintJson(jet::RecordSet& rows, std::ostream& out) {
    std::vector<std::string> keys;
    for (const std::string& name : FieldNames(rows))
        keys.push_back(JsonString(name) + ':');
    std::string line;
    for (; !rows.IsEof(); rows.MoveNext()) {
        line = "{";
        for (std::size_t i = 0; i < keys.size(); ++i) {
            if (i > 0) line += ',';
            line += keys[i];
            line += JsonValue(rows.Get(i));
        }
        line += "}\n";
        out << line;
    }
}

constexpr int InterruptedStatus = 3;

/// Opens the database for a statement, which `work` runs. Ctrl-C, SIGTERM and a terminal that
/// closes end it; what it has begun to change is forgotten. The exit status.
template <typename Work>
int RunStatement(const std::filesystem::path& file, jet::OpenMode mode, Console console,
                 Work work) {
    struct sigaction pipe{};
    sigaction(SIGPIPE, nullptr, &pipe);
    const AbortSignals signals;
    // Who reads the rows may stop reading, which ends a query like any other filter.
    sigaction(SIGPIPE, &pipe, nullptr);
    jet::Database database = jet::Database::Open(file, mode, jet::NeededTables::None());
    database.SetInterruption([] { return AbortSignals::AbortRequested(); });
    try {
        work(database);
        return DoneStatus;
    } catch (const jet::Error& error) {
        database.Discard();
        if (error.Kind() != jet::ErrorKind::Interrupted) throw;
        console.out.flush();
        console.err << "quillon: " << error.what() << "; it changed nothing\n";
        return InterruptedStatus;
    }
}

}  // namespace

int DbCreate(const DbCreateRequest& request, Console console) {
    CreateJukeboxDatabase(request.file);
    console.out << fmt::format("{}: a new jukebox database with {} tables\n", request.file.string(),
                               JukeboxTables().size());
    return DoneStatus;
}

int DbQuery(const DbQueryRequest& request, Console console) {
    return RunStatement(request.file, jet::OpenMode::ReadOnly, console,
                        [&](jet::Database& database) {
                            const auto rows = database.Query(request.sql);
                            if (request.json) {
                                PrintJson(*rows, console.out);
                            } else {
                                PrintTable(*rows, console.out);
                            }
                        });
}

int DbExec(const DbExecRequest& request, Console console) {
    return RunStatement(request.file, jet::OpenMode::ReadWrite, console,
                        [&](jet::Database& database) {
                            const std::int64_t rows = database.Execute(request.sql);
                            database.Flush();
                            console.out << fmt::format("{} row{}\n", rows, rows == 1 ? "" : "s");
                        });
}

int DbCheck(const DbCheckRequest& request, Console console) {
    const jet::CheckReport report = jet::CheckFile(request.file);
    for (const jet::CheckFault& fault : report.faults)
        console.out << OneLine(fault.text) << '\n';
    if (const std::string remark = JournalRemark(request.file, report.journal); !remark.empty())
        console.out << OneLine(remark) << ".\n";
    console.out << fmt::format(
        "{}: {}; {} tables, {} rows, {} indexes, {} entries, {} pages\n", request.file.string(),
        report.faults.empty()
            ? "OK"
            : fmt::format("{} fault{}", report.faults.size(), report.faults.size() == 1 ? "" : "s"),
        report.tables, report.rows, report.indexes, report.entries, report.pages);
    return report.faults.empty() ? DoneStatus : FaultsFoundStatus;
}

int DbRecover(const DbRecoverRequest& request, Console console) {
    const jet::JournalState journal = jet::RecoverDatabase(request.file);
    const std::string file = OneLine(request.file.string());
    if (journal.kind == jet::JournalState::Kind::None) {
        console.out << fmt::format("{}: there is no journal, nothing to do\n", file);
    } else {
        console.out << fmt::format("{}: completed; {} page{} written from {}, which is removed\n",
                                   file, journal.pages, journal.pages == 1 ? "" : "s",
                                   OneLine(journal.file.string()));
    }
    return DoneStatus;
}

}  // namespace quillon
