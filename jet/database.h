#pragma once

#include <cstdint>
#include <filesystem>
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

/// A Jet 4 `.mdb` database with its SQL: the public face of this library.
///
/// Every row is held in memory while the database is open; each change is written through to the
/// file's pages, which reach the disk in groups (at the latest every second, on Flush() and on
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

    /// Definitions of all user tables, by name.
    std::vector<TableDefinition> Tables() const;

    /// Tables that are not in good order, as far as opening has looked at them.
    const std::vector<DamagedTable>& Damaged() const;

    /// Makes all changes so far durable.
    void Flush();

  private:
    class Implementation;
    explicit Database(std::unique_ptr<Implementation> implementation);
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace jet
