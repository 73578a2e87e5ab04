#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "jet/check.h"
#include "jet/error.h"
#include "jet/record_set.h"
#include "jet/schema.h"
#include "jet/value.h"

namespace jet {

enum class OpenMode {
    ReadOnly,   ///< statements that change rows are refused; the file is not touched
    ReadWrite,  ///< takes the database for this process alone
};

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
/// Opening for writing looks the whole file over, as CheckFile does, before anything is written: a
/// file that contradicts itself is refused as it is, since changes would make it worse.
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

    /// Runs INSERT, UPDATE or DELETE; the number of rows it concerned. A statement that fails
    /// leaves every row as it was.
    std::int64_t Execute(std::string_view sql);

    /// Runs a SELECT; a forward, read-only result.
    std::unique_ptr<RecordSet> Query(std::string_view sql);

    /// Runs a SELECT whose rows may be changed through the result: plain columns of one table, or
    /// of a join of which the changed columns belong to one table.
    std::unique_ptr<RecordSet> OpenUpdatable(std::string_view sql);

    /// A cursor over a whole table.
    std::unique_ptr<RecordSet> OpenTable(std::string_view table);

    /// Names a row of a table while the database is open, whatever changes.
    using RowKey = std::int64_t;
    /// A field of a row, and what it is to hold.
    struct Field {
        std::string_view name;
        Value value;
    };
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

    /// The number that the next row gets in the auto-number column.
    std::int64_t NextNumber(std::string_view table) const;

    /// Rows by key, likewise. Values are converted to the fields' types and checked as those of
    /// statements are; a refused change leaves the row as it was. Fields of a new row that are not
    /// named are Null; of those named twice the last counts.
    AddedRow Insert(std::string_view table, std::span<const Field> fields);
    void Update(std::string_view table, RowKey row, std::span<const Field> fields);
    void Delete(std::string_view table, RowKey row);

    /// Definitions of all user tables, by name.
    std::vector<TableDefinition> Tables() const;

    /// Tables that are not in good order, as far as opening has looked at them.
    const std::vector<DamagedTable>& Damaged() const;

    /// From now on `wanted`, which must not throw, is asked many times a second while a statement
    /// runs, the reading of its tables and the walk over its rows included. Where it says yes, the
    /// statement ends with Error(Interrupted): every row is as it was before, and all can go on. An
    /// empty function takes it back.
    void SetInterruption(std::function<bool()> wanted);

    /// Makes all changes so far durable.
    void Flush();

    /// Closes the database without the changes that are not durable yet: those since the last
    /// Flush() or, where they took longer, since a group of them reached the disk.
    void Discard();

  private:
    class Implementation;
    explicit Database(std::unique_ptr<Implementation> implementation);
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace jet
