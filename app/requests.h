#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace quillon {

/// Which user interface a run shows.
enum class ViewKind { Auto, Window, Terminal, Plain };

/// How albums lie in the music folder: folders of folders, or files side by side.
enum class LibraryLayout { Tree, Flat };

/// `quillon run`
struct RunRequest {
    std::filesystem::path host;
    ViewKind view = ViewKind::Auto;
    bool quiet = false;          ///< plain lines that tell errors, losses and the summary alone
    bool allowRemovals = false;  ///< the brake on loss is off for this run
};

/// `quillon preview`
struct PreviewRequest {
    std::filesystem::path host;
    bool allowRemovals = false;  ///< as the run would be started
    bool json = false;           ///< the records, a JSON object a line
};

/// `quillon init`
struct InitRequest {
    std::filesystem::path host;
    std::filesystem::path music;
    std::optional<std::filesystem::path> database;  ///< an existing one; none: a new one is made
    LibraryLayout layout = LibraryLayout::Tree;
};

/// `quillon check`
struct CheckRequest {
    std::filesystem::path host;
};

/// `quillon changes`
struct ChangesRequest {
    std::filesystem::path host;
    std::string run;    ///< its stamp; "" or "last": the last one
    bool list = false;  ///< all runs, a line each
    bool json = false;  ///< a JSON object a line
};

/// `quillon undo`
struct UndoRequest {
    std::filesystem::path host;
    std::string run;   ///< stamp of the first run to take back; "": the last one that can be
    bool yes = false;  ///< without a question
};

/// `quillon serve`
struct ServeRequest {
    std::filesystem::path host;
    int port = 8777;  ///< 0: any that is free
};

/// `quillon backups`
struct BackupsRequest {
    std::filesystem::path host;
    bool json = false;  ///< a JSON object a line
};

/// `quillon restore`
struct RestoreRequest {
    std::filesystem::path host;
    std::string backup;  ///< its name
    bool yes = false;    ///< without asking
};

/// How rows are shown: a table, CSV with a line of names, or a JSON object a line.
enum class RowFormat { Table, Csv, Json };

/// `quillon db create`
struct DbCreateRequest {
    std::filesystem::path file;
    bool empty = false;  ///< without any tables
};

/// `quillon db tables`
struct DbTablesRequest {
    std::filesystem::path file;
    RowFormat format = RowFormat::Table;
};

/// `quillon db schema`
struct DbSchemaRequest {
    std::filesystem::path file;
    std::string table;  ///< "": all
    bool sql = false;   ///< as the statements that make them
};

/// `quillon db query`
struct DbQueryRequest {
    std::filesystem::path file;
    std::optional<std::string> sql;  ///< none or "-": from standard input
    RowFormat format = RowFormat::Table;
    std::vector<std::string> parameters;  ///< "name=value"
};

/// `quillon db exec`
struct DbExecRequest {
    std::filesystem::path file;
    std::optional<std::string> sql;       ///< none or "-": from standard input
    std::vector<std::string> parameters;  ///< "name=value"
};

/// `quillon db import`
struct DbImportRequest {
    std::filesystem::path file;
    std::string table;
    std::filesystem::path data;  ///< "-": standard input
    std::string separator = ",";
    bool hasHeader = true;  ///< the first line names the fields
};

/// `quillon db export`
struct DbExportRequest {
    std::filesystem::path file;
    std::string table;
    RowFormat format = RowFormat::Csv;
};

/// `quillon db compact`
struct DbCompactRequest {
    std::filesystem::path file;
};

/// `quillon db check`
struct DbCheckRequest {
    std::filesystem::path file;
};

/// `quillon db recover`
struct DbRecoverRequest {
    std::filesystem::path file;
};

/// A command line that is answered by text alone: help, version or a usage error.
struct TextAnswer {
    std::string text;
    bool usageError = false;  ///< belongs on the error stream, exit status 2
};

/// Everything that a command line can ask for.
using Request =
    std::variant<TextAnswer, RunRequest, PreviewRequest, InitRequest, CheckRequest, ChangesRequest,
                 UndoRequest, ServeRequest, BackupsRequest, RestoreRequest, DbCreateRequest,
                 DbTablesRequest, DbSchemaRequest, DbQueryRequest, DbExecRequest, DbImportRequest,
                 DbExportRequest, DbCompactRequest, DbCheckRequest, DbRecoverRequest>;

}  // namespace quillon
