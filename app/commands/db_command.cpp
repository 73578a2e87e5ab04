#include "app/commands/db_command.h"

#include <fmt/format.h>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

#include "app/checks/journal_remark.h"
#include "app/commands/database_work.h"
#include "app/commands/row_output.h"
#include "app/text/display_text.h"
#include "app/value_text.h"
#include "jet/check.h"
#include "jet/compact.h"
#include "jet/journal.h"
#include "jet/statement.h"
#include "jukebox/jukebox_database.h"
#include "platform/basic_text.h"

namespace quillon {
namespace {

/// The statements of a command: what stands on its line, or what comes by standard input.
std::string StatementsOf(const std::optional<std::string>& sql, const char* what) {
    if (sql && *sql != "-") return *sql;
    if (!sql && isatty(STDIN_FILENO) != 0) {
        throw CommandError(fmt::format(
            "there is no statement; put {} behind FILE, or pass it on standard input", what));
    }
    return {std::istreambuf_iterator<char>(std::cin), {}};
}

/// "#...#" is a date, as in statements.
jet::Value ParameterValue(std::string_view text) {
    if (text.size() < 3 || !text.starts_with('#') || !text.ends_with('#')) return std::string(text);
    if (const auto date = ParseIsoDate(text.substr(1, text.size() - 2))) return *date;
    throw CommandError(
        fmt::format("{} is no date; write it as #2006-02-03# or "
                    "#2006-02-03 08:00:00#",
                    text));
}

std::vector<jet::NamedValue> ParametersOf(const std::vector<std::string>& given) {
    std::vector<jet::NamedValue> parameters;
    for (const std::string& word : given) {
        const std::size_t equals = word.find('=');
        const std::string_view name = std::string_view(word).substr(0, equals);
        if (name.empty()) throw CommandError(fmt::format("--param {}: expected NAME=VALUE", word));
        parameters.push_back(
            {name, equals == std::string::npos
                       ? jet::Value(jet::Null{})
                       : ParameterValue(std::string_view(word).substr(equals + 1))});
    }
    return parameters;
}

void TellHints(std::string_view sql, std::span<const jet::NamedValue> parameters, Console console) {
    console.out.flush();
    for (const std::string& hint : jet::HintsFor(sql, parameters))
        console.err << "quillon: hint: " << OneLine(hint) << '\n';
}

/// CREATE and DROP concern no rows.
bool IsAboutRows(std::string_view sql) {
    const std::string verb(OneLine(sql.substr(0, sql.find_first_of(" \t\r\n"))));
    return !EqualIgnoringCase(verb, "create") && !EqualIgnoringCase(verb, "drop");
}

/// Runs them; an error says in which line of several it is.
std::int64_t RunScript(jet::Database& database, std::span<const jet::ScriptStatement> statements,
                       std::span<const jet::NamedValue> parameters) {
    std::int64_t rows = 0;
    for (const jet::ScriptStatement& statement : statements) {
        try {
            rows += database.Execute(statement.text, parameters);
        } catch (const jet::Error& error) {
            if (statements.size() == 1) throw;
            throw jet::Error(error.Kind(), fmt::format("Line {}: {}; nothing was changed",
                                                       statement.line, Clause(error)));
        }
    }
    return rows;
}

}  // namespace

int DbCreate(const DbCreateRequest& request, Console console) {
    if (request.empty) {
        jet::Database::Create(request.file, {});
        console.out << fmt::format("{}: a new database without tables\n", request.file.string());
        return DoneStatus;
    }
    CreateJukeboxDatabase(request.file);
    console.out << fmt::format("{}: a new jukebox database with {} tables\n", request.file.string(),
                               JukeboxTables().size());
    return DoneStatus;
}

int DbQuery(const DbQueryRequest& request, Console console) {
    const auto parameters = ParametersOf(request.parameters);
    const std::string sql = StatementsOf(request.sql, "a SELECT");
    return WorkOnDatabase(
        request.file, jet::OpenMode::ReadOnly, console, [&](jet::Database& database) {
            WriteRows(*database.Query(sql, parameters), request.format, console.out);
            TellHints(sql, parameters, console);
        });
}

int DbExec(const DbExecRequest& request, Console console) {
    const auto parameters = ParametersOf(request.parameters);
    const std::string script = StatementsOf(request.sql, "a statement");
    const auto statements = jet::SplitScript(script);
    if (statements.empty()) throw CommandError("there is no statement");
    return WorkOnDatabase(
        request.file, jet::OpenMode::ReadWrite, console, [&](jet::Database& database) {
            jet::Transaction transaction(database);
            const auto rows = static_cast<std::size_t>(RunScript(database, statements, parameters));
            transaction.Commit();
            if (statements.size() > 1) {
                console.out << CountText(statements.size(), "statement") << ", ";
            } else if (!IsAboutRows(statements.front().text)) {
                console.out << "done\n";
                return;
            }
            console.out << CountText(rows, "row") << '\n';
            for (const jet::ScriptStatement& statement : statements)
                TellHints(statement.text, parameters, console);
        });
}

int DbCompact(const DbCompactRequest& request, Console console) {
    const jet::Compacted done = jet::CompactDatabase(request.file);
    console.out << fmt::format("{}: {} bytes, {} before; the file as it was is {}\n",
                               OneLine(request.file.string()), done.size, done.sizeBefore,
                               OneLine(done.kept.string()));
    return DoneStatus;
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
