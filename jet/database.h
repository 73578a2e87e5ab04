#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "jet/check.h"
#include "jet/error.h"
#include "jet/lock.h"
#include "jet/record_set.h"
#include "jet/row_observer.h"
#include "jet/schema.h"
#include "jet/value.h"

namespace jet {

/// A table that is not in good order.
struct DamagedTable {
    std::string name;
    std::string reason;
};

/// A Jet 4 `.mdb` database with its SQL: the public interface of this library.
///
/// A table's rows are held in memory from the first statement on that looks at them, with those of
/// their columns that statements name; a row that a statement names by a number which an index of
/// the file finds comes alone. Each change is written through to the file's pages, which reach the
/// disk in groups (after a second, or a few while rows change in great numbers, on Flush() and on
/// closing) so that a crash leaves a whole file.
///
/// What is safe:
///
/// - One writer. Opening for writing takes the database for this process: an `.ldb` file beside it,
///   as Access makes one, and a lock on the file itself. A database that Access or another program
///   has open is refused with Error(InUse). Readers need no lock and keep nobody off; what they see
///   is the file as it was when its pages were read, so a reader beside a writer can meet
///   contradictions, Error(Damaged), and then opens it again.
/// - A crash, of the program or the machine. Changed pages first go to a journal, `FILE.journal`,
///   which is complete on the disk before the file is touched. The next opening for writing carries
///   it out; opening for reading reads through it. Until then other programs see the file half
///   written: RecoverDatabase() does nothing but that. What belongs together goes into a
///   Transaction.
/// - A damaged file. Opening for writing looks the whole file over, as CheckFile does, before
///   anything is written: a file that contradicts itself is refused as it is, since changes would
///   make it worse. A larger file that was found whole is told by a number of its content, which
///   an extended attribute keeps with the file ("user.quillon.whole") and each commit renews: with
///   the same content it is read through, but not looked over again. CheckFile always looks.
/// - What it does not understand. Refused are files of other versions (Access 97, .accdb), files
///   with a password or encoded pages, and changes to tables with types or sort orders that it does
///   not know. Linked tables, queries, forms and relationships are not looked at and stay as they
///   are; rules that are kept in relationships and in validation texts are not checked.
/// - Threads. A database and its record sets belong to one thread at a time. Different databases
///   may be used by different threads.
class Database {
  public:
    /// Errors name the file and what is wrong with it. A table that is not needed and not in good
    /// order is refused when it is asked for.
    static Database Open(const std::filesystem::path& path, OpenMode mode,
                         const NeededTables& needed = {});

    /// Makes a new database file with these tables; the path must not exist.
    static void Create(const std::filesystem::path& path, std::span<const TableDefinition> tables);

    Database(Database&&) noexcept;
    Database& operator=(Database&&) noexcept;
    ~Database();

    /// Values for the parameters of a statement, written `:name` there. They need no quotes and are
    /// never taken for SQL.
    using Parameters = std::span<const NamedValue>;

    /// Runs INSERT, UPDATE or DELETE; the number of rows it concerned. A statement that fails
    /// leaves every row as it was. CREATE TABLE, CREATE INDEX and DROP are run, too, and concern no
    /// rows; see CreateTable() and its neighbours.
    std::int64_t Execute(std::string_view sql, Parameters parameters = {});
    std::int64_t Execute(std::string_view sql, std::initializer_list<NamedValue> parameters) {
        return Execute(sql, Parameters(parameters.begin(), parameters.size()));
    }

    /// Runs a SELECT; a forward, read-only result.
    std::unique_ptr<RecordSet> Query(std::string_view sql, Parameters parameters = {});
    std::unique_ptr<RecordSet> Query(std::string_view sql,
                                     std::initializer_list<NamedValue> parameters) {
        return Query(sql, Parameters(parameters.begin(), parameters.size()));
    }

    /// Runs a SELECT whose rows may be changed through the result: plain columns of one table, or
    /// of a join of which the changed columns belong to one table.
    std::unique_ptr<RecordSet> OpenUpdatable(std::string_view sql, Parameters parameters = {});

    /// A cursor over a whole table.
    std::unique_ptr<RecordSet> OpenTable(std::string_view table);

    /// Names a row of a table while the database is open, whatever changes.
    using RowKey = std::int64_t;
    /// A field of a row, and what it is to hold.
    using Field = NamedValue;
    struct AddedRow {
        RowKey key = 0;
        std::int64_t number = 0;  ///< in the auto-number column, where there is one
    };

    /// Calls visit(key, values) for each row of a table in the file's order, with the values of
    /// these fields, which are overwritten with the next row. No SQL: rows come straight from the
    /// file's pages, and the table is not held in memory for it.
    void Scan(std::string_view table, std::span<const std::string_view> fields,
              const std::function<void(RowKey, std::span<Value>)>& visit);

    /// One field of a row, likewise.
    Value Read(std::string_view table, RowKey row, std::string_view field);
    /// Whether the row is there still.
    bool Has(std::string_view table, RowKey row);

    /// How many rows a table has.
    std::size_t RowCount(std::string_view table) const;

    /// The number that the next row gets in the auto-number column.
    std::int64_t NextNumber(std::string_view table) const;

    /// Rows by key, likewise. Values are converted to the fields' types and checked as those of
    /// statements are; a refused change leaves the row as it was. Fields of a new row that are not
    /// named are Null; of those named twice the last counts.
    AddedRow Insert(std::string_view table, std::span<const Field> fields);
    /// The same for a great number of rows of the same fields.
    class Inserter {
      public:
        virtual ~Inserter() = default;
        /// `values` are those of the fields in their order; what they hold afterwards is undefined.
        virtual AddedRow Insert(std::span<Value> values) = 0;
    };
    enum class Placing { WhereThereIsRoom, BehindAllOthers };
    /// Rows behind all others stand in the order in which they are added; room that deleted rows
    /// have left stays unused. That holds for the table until the database is closed.
    std::unique_ptr<Inserter> OpenInserter(std::string_view table,
                                           std::span<const std::string_view> fields,
                                           Placing placing = Placing::WhereThereIsRoom);
    void Update(std::string_view table, RowKey row, std::span<const Field> fields);
    void Delete(std::string_view table, RowKey row);
    /// Gives all rows that hold `before` in a field of dates `after` for it; how many. It costs
    /// little, whatever else the rows hold. Error(Duplicate) where rows hold `after` already;
    /// Error(NotSupported) for a field of another type or of an index.
    std::size_t ReplaceDate(std::string_view table, std::string_view field, Date before,
                            Date after);

    /// Definitions of all user tables, by name.
    std::vector<TableDefinition> Tables() const;
    /// That of one table; Error(NotFound).
    TableDefinition TableNamed(std::string_view name) const;

    /// Make or remove a table or an index. Durable when they return, or with the transaction that
    /// they are part of; one that fails leaves the file as it was, but ends the transaction, which
    /// is taken back. Error(NotSupported) says what the format does not allow, Error(Duplicate,
    /// Required) which rule of a new index the rows do not keep. Record sets of OpenUpdatable() and
    /// OpenTable() must be opened again after DropTable().
    void CreateTable(const TableDefinition& definition);
    void DropTable(std::string_view name);
    void CreateIndex(std::string_view table, const IndexDefinition& index);
    void DropIndex(std::string_view table, std::string_view index);

    /// Tables that are not in good order, as far as opening has looked at them.
    const std::vector<DamagedTable>& Damaged() const;

    /// From now on `wanted`, which must not throw, is asked many times a second while a statement
    /// runs, the reading of its tables and the walk over its rows included. Where it says yes, the
    /// statement ends with Error(Interrupted): every row is as it was before, and all can go on. An
    /// empty function takes it back.
    void SetInterruption(std::function<bool()> wanted);

    /// From now on `observer` is told of the rows that change; null: nobody any more. It must
    /// outlive the database and its record sets, or be taken back before. A transaction that is
    /// taken back is not told: what was told of it and no AfterCommit() followed has not happened.
    /// Tables that are made or dropped are not told either.
    void SetObserver(RowObserver* observer);

    /// Makes all changes so far durable.
    void Flush();

    /// Closes the database without the changes that are not durable yet: those since the last
    /// Flush() or, where they took longer, since a group of them reached the disk.
    void Discard();

  private:
    friend class Transaction;
    class Implementation;
    explicit Database(std::unique_ptr<Implementation> implementation);
    std::unique_ptr<Implementation> implementation_;
};

/// Changes that become durable together or not at all, whatever happens to the program or the
/// machine meanwhile. One at a time in a database. Changed pages stay in memory until its end.
///
///     jet::Transaction transaction(database);
///     database.Execute("UPDATE Accounts SET Amount=Amount-5 WHERE ID=1");
///     database.Execute("UPDATE Accounts SET Amount=Amount+5 WHERE ID=2");
///     transaction.Commit();
class Transaction {
  public:
    /// Makes durable what was changed before. `database` must outlive this object, and not be
    /// moved from meanwhile.
    explicit Transaction(Database& database);
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    /// Takes all back, unless Commit() has been called. Record sets of OpenUpdatable() and
    /// OpenTable() must be opened again then.
    ~Transaction();

    /// Error(NotSupported) where a change to a table or an index has failed, which has taken all
    /// back already.
    void Commit();
    /// As the end of this object's life, but tells what fails.
    void Rollback();

  private:
    Database& database_;
    bool open_ = true;
};

}  // namespace jet
