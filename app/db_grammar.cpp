#include "app/db_grammar.h"

#include <CLI/CLI.hpp>

namespace quillon {
namespace {

constexpr const char* DbFooter =
    R"(Works on any Access 2000-2003 database (.mdb); docs/sql-dialect.md has the SQL. One program at a
time can change a file; queries can run beside it.

Examples:
  quillon db tables cdj.mdb
  quillon db schema cdj.mdb Albums
  quillon db query cdj.mdb "SELECT Artist, Title FROM Albums"
  quillon db export cdj.mdb Albums > albums.csv)";

constexpr const char* CreateFooter = R"(Examples:
  quillon db create ~/shelf/jukebox.mdb
  quillon db create --empty books.mdb    for tables of your own)";

constexpr const char* TablesFooter = R"(Example:
  quillon db tables cdj.mdb)";

constexpr const char* SchemaFooter =
    R"(Shows the fields of a table with their types and sizes, its keys and its indexes. With --sql it
prints the statements that make the tables, without their rows.

Examples:
  quillon db schema cdj.mdb
  quillon db schema cdj.mdb Albums
  quillon db schema cdj.mdb --sql | quillon db exec copy.mdb)";

constexpr const char* QueryFooter =
    R"(The database is not changed. Without SQL, or for -, the statement is read from standard input. In
Like, % stands for any text. Dates are shown as 2006-02-03T08:00:00, Null as <null> (JSON: null, CSV:
nothing), binary values in base64 (a table shows the beginning of long ones).

A parameter :name in the statement gets its value from --param and needs no quotes. #2006-02-03# is a
date, any other value a text, which number fields understand; --param name alone is Null.

Ctrl-C or SIGTERM ends a statement that takes long; the exit status is 3 then.

Examples:
  quillon db query cdj.mdb "SELECT Artist, Title, Tracks FROM Albums WHERE Player=1001"
  quillon db query cdj.mdb "SELECT * FROM Albums WHERE Artist=:who" --param who="Guns N' Roses"
  quillon db query cdj.mdb "SELECT * FROM Tracks" --json > tracks.jsonl)";

constexpr const char* ExecFooter =
    R"text(Runs INSERT, UPDATE, DELETE, CREATE TABLE, CREATE INDEX, DROP TABLE and DROP INDEX. Without SQL, or
for -, statements are read from standard input; semicolons end them, and lines that begin with -- are
comments. They are one transaction: all are done or none, even if the power fails. --param works as in
db query.

Ctrl-C or SIGTERM ends a statement that takes long; nothing has changed then, and the exit status is 3.

Examples:
  quillon db exec cdj.mdb "UPDATE Albums SET Rating1=5 WHERE Artist='Nina Simone'"
  quillon db exec books.mdb "CREATE TABLE Books (ID COUNTER PRIMARY KEY, Title TEXT(100) NOT NULL)"
  quillon db exec books.mdb < changes.sql)text";

constexpr const char* ImportFooter =
    R"(Adds the rows of a CSV file to a table, all or none. The first line names the fields. Nothing
between two commas is Null, "" is an empty text. The file must be UTF-8; dates are 2006-02-03 or
2006-02-03T08:00:00, binary values base64. Fields that the file does not have are Null; an automatic
number is handed out.

Examples:
  quillon db import books.mdb Books books.csv
  quillon db import books.mdb Books --separator ";" books.csv)";

constexpr const char* ExportFooter =
    R"(Prints all rows of a table in the order of the file, in the form that db import reads.

Examples:
  quillon db export cdj.mdb Albums > albums.csv
  quillon db export cdj.mdb Albums --json > albums.jsonl)";

constexpr const char* CompactFooter =
    R"(Writes a fresh copy without the room that deleted rows have left, checks it, and puts it in the
place of the file. The file as it was stays beside it, under a name that the command tells; delete it
when you are content. A file with queries, forms, relationships or linked tables is refused, since
the copy would lose them.

Example:
  quillon db compact cdj.mdb)";

constexpr const char* DbCheckFooter =
    R"(Reads the whole file without changing it and compares everything that is stored twice. Exit status
0 when the file is whole, 1 when it has faults, 2 when it cannot be opened. A journal that a program
has left which was cut off while it wrote is read as a part of the file, and named.

Example:
  quillon db check cdj.mdb)";

constexpr const char* DbRecoverFooter =
    R"(A program that is cut off while it writes leaves a journal, FILE.journal. Until it is carried out,
other programs see the file half written. This carries it out and does nothing else; the next run would
do it, too. Exit status 0 when it is done or there is nothing to do, 2 when the journal is not complete
or not this database's, or the database is in use.

Example:
  quillon db recover cdj.mdb)";

void AddFile(CLI::App& command, std::filesystem::path& file,
             const char* description = "The .mdb file") {
    command.add_option("FILE", file, description)->required()->type_name("");
}

void AddParameters(CLI::App& command, std::vector<std::string>& parameters) {
    command.add_option("--param", parameters, "A value for :NAME in the statement; may come often")
        ->type_name("NAME=VALUE")
        ->expected(1)
        ->take_all();
}

/// One flag for each format; the last one counts.
void AddFormat(CLI::App& command, RowFormat& format, bool hasTable) {
    const auto add = [&](const char* name, RowFormat meant, const char* description) {
        command.add_flag_function(
            name, [&format, meant](std::int64_t) { format = meant; }, description);
    };
    if (hasTable) add("--table", RowFormat::Table, "A table for people (default)");
    add("--csv", RowFormat::Csv, hasTable ? "CSV with a line of names" : "CSV (default)");
    add("--json", RowFormat::Json, "A JSON object a line");
}

}  // namespace

struct DbGrammar::Commands {
    explicit Commands(CLI::App& parent) : db(parent) {
        db.require_subcommand(1);
        db.footer(DbFooter);
        create->footer(CreateFooter);
        AddFile(*create, createRequest.file, "The file to make; it must not exist");
        create->add_flag("--empty", createRequest.empty, "Make no tables in it");
        tables->footer(TablesFooter);
        AddFile(*tables, tablesRequest.file);
        AddFormat(*tables, tablesRequest.format, true);
        DefineSchema();
        DefineStatements();
        DefineTransfer();
        compact->footer(CompactFooter);
        AddFile(*compact, compactRequest.file);
        check->footer(DbCheckFooter);
        AddFile(*check, checkRequest.file);
        recover->footer(DbRecoverFooter);
        AddFile(*recover, recoverRequest.file);
    }

    void DefineSchema() {
        schema->footer(SchemaFooter);
        AddFile(*schema, schemaRequest.file);
        schema->add_option("TABLE", schemaRequest.table, "The table; all if left out")
            ->type_name("");
        schema->add_flag("--sql", schemaRequest.sql, "Print CREATE statements");
    }

    void DefineStatements() {
        query->footer(QueryFooter);
        AddFile(*query, queryRequest.file);
        query->add_option("SQL", queryRequest.sql, "A SELECT statement")->type_name("");
        AddFormat(*query, queryRequest.format, true);
        AddParameters(*query, queryRequest.parameters);
        exec->footer(ExecFooter);
        AddFile(*exec, execRequest.file);
        exec->add_option("SQL", execRequest.sql, "One statement, or several with ; between them")
            ->type_name("");
        AddParameters(*exec, execRequest.parameters);
    }

    void DefineTransfer() {
        import->footer(ImportFooter);
        AddFile(*import, importRequest.file);
        import->add_option("TABLE", importRequest.table, "The table, which must exist")
            ->required()
            ->type_name("");
        import->add_option("DATA", importRequest.data, "The CSV file; - for standard input")
            ->required()
            ->type_name("");
        import
            ->add_option("--separator", importRequest.separator,
                         "What stands between fields (default: ,)")
            ->check([](const std::string& text) {
                return std::string(text.size() == 1 ? "" : "expected one character");
            })
            ->type_name("C");
        import->add_flag_function(
            "--no-header", [this](std::int64_t) { importRequest.hasHeader = false; },
            "The first line is a row; fields come in the table's order");
        exporting->footer(ExportFooter);
        AddFile(*exporting, exportRequest.file);
        exporting->add_option("TABLE", exportRequest.table, "The table")->required()->type_name("");
        AddFormat(*exporting, exportRequest.format, false);
    }

    CLI::App& db;
    CLI::App* create = db.add_subcommand("create", "Make a new database");
    CLI::App* tables = db.add_subcommand("tables", "List the tables of a file");
    CLI::App* schema = db.add_subcommand("schema", "Show fields, keys and indexes of tables");
    CLI::App* query = db.add_subcommand("query", "Show the rows of a SELECT");
    CLI::App* exec = db.add_subcommand("exec", "Run statements that change rows or tables");
    CLI::App* import = db.add_subcommand("import", "Add the rows of a CSV file to a table");
    CLI::App* exporting = db.add_subcommand("export", "Print a table as CSV or JSON");
    CLI::App* compact = db.add_subcommand("compact", "Replace a file with a fresh, packed copy");
    CLI::App* check = db.add_subcommand("check", "Check the structure of a file");
    CLI::App* recover =
        db.add_subcommand("recover", "Complete a file with the journal that was left for it");

    DbCreateRequest createRequest;
    DbTablesRequest tablesRequest;
    DbSchemaRequest schemaRequest;
    DbQueryRequest queryRequest;
    DbExecRequest execRequest;
    DbImportRequest importRequest;
    DbExportRequest exportRequest;
    DbCompactRequest compactRequest;
    DbCheckRequest checkRequest;
    DbRecoverRequest recoverRequest;
};

DbGrammar::DbGrammar(CLI::App& db) : commands_(std::make_unique<Commands>(db)) {}
DbGrammar::~DbGrammar() = default;

std::optional<Request> DbGrammar::Chosen() const {
    const Commands& c = *commands_;
    if (c.create->parsed()) return c.createRequest;
    if (c.tables->parsed()) return c.tablesRequest;
    if (c.schema->parsed()) return c.schemaRequest;
    if (c.query->parsed()) return c.queryRequest;
    if (c.exec->parsed()) return c.execRequest;
    if (c.import->parsed()) return c.importRequest;
    if (c.exporting->parsed()) return c.exportRequest;
    if (c.compact->parsed()) return c.compactRequest;
    if (c.check->parsed()) return c.checkRequest;
    if (c.recover->parsed()) return c.recoverRequest;
    return std::nullopt;
}

}  // namespace quillon
