#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "jet/lock.h"
#include "jet/row_observer.h"
#include "jet/schema.h"
#include "jet/storage/table.h"

namespace jet::storage {

class FileSystem;
class PageStore;

/// What opening asks of a database beyond its being one.
struct OpenConditions {
    /// Whether a table's definition must be readable. Other tables whose definition is not are left
    /// out, see Unreadable(). Without this all must be.
    std::function<bool(std::string_view table)> needs;
    /// Looks the pages over, where that has not been done with the same content before; whether
    /// they are whole. What it throws ends the opening, before anything was written.
    std::function<bool(PageStore&)> inspect;
};

/// A table that had to be left out.
struct UnreadableTable {
    std::string name;
    std::string reason;
};

/// An open Jet 4 `.mdb` file.
///
/// Changes reach the file in groups: Commit() writes every page changed since the last one to a
/// journal file beside the database, flushes it, writes the pages into place and removes the
/// journal. A crash at any instant therefore leaves, after the next Open, the state of some Commit.
/// A path that is a symbolic link stands for the file it leads to: lock file and journal are there.
class DatabaseFile {
  public:
    /// Opens and checks header, catalog and locks. Errors: NotFound, NotADatabase, Encrypted,
    /// Damaged, InUse, ReadOnly, Io, each naming the file.
    static DatabaseFile Open(const std::filesystem::path& path, OpenMode mode);

    /// The same on conditions.
    static DatabaseFile Open(const std::filesystem::path& path, OpenMode mode,
                             const OpenConditions& conditions);

    /// The same on other file operations than the system's own.
    static DatabaseFile Open(const std::filesystem::path& path, OpenMode mode,
                             const std::shared_ptr<FileSystem>& files,
                             const OpenConditions& conditions = {});

    /// Makes a new file with these tables, all empty. Fails if the path exists.
    static void Create(const std::filesystem::path& path, std::span<const TableDefinition> tables);

    DatabaseFile(DatabaseFile&&) noexcept;
    DatabaseFile& operator=(DatabaseFile&&) noexcept;
    /// Commits what is left (errors are lost here: call Commit() to see them) and gives up the
    /// lock.
    ~DatabaseFile();

    /// User tables, ordered by name without letter case. Neither system tables nor tables that are
    /// linked to another database.
    std::vector<std::string> TableNames() const;

    const std::vector<UnreadableTable>& Unreadable() const;

    /// The table of this name, whatever its letter case; Error(NotFound) if there is none. The
    /// reference stays valid as long as this object; asking again gives the same object.
    Table& OpenTable(std::string_view name);

    /// Changes to the list of tables and indexes. Error(NotSupported) says what the format or this
    /// library does not allow; nothing has changed then. After any other error Revert() must
    /// follow. DropTable() ends the life of the table's object.
    Table& CreateTable(const TableDefinition& definition);
    void DropTable(std::string_view name);
    void CreateIndex(std::string_view table, const IndexDefinition& index);
    void DropIndex(std::string_view table, std::string_view index);

    /// Writes a fresh copy with all tables, see WriteCompacted() in compaction.h.
    std::size_t WriteCompacted(const std::filesystem::path& to);

    /// Takes all back since the last commit, by opening the file anew under the same lock. The
    /// objects of all tables end their life. After an error all that follows fails.
    void Revert();

    /// Has changes of rows and commits told from now on; null: no more. The observer must outlive
    /// this object or be taken back.
    void SetObserver(RowObserver* observer);

    /// Makes the changes so far durable. A change made by a Table call is never split.
    void Commit();

    /// Commits when the oldest uncommitted change is more than a second old, some seconds while
    /// rows change in great numbers, or many pages are waiting. Cheap: callers call it after each
    /// change.
    void CommitIfDue();

    /// Forgets the changes since the last commit. Nothing but the end of this object may follow.
    void Discard();

  private:
    class Implementation;
    explicit DatabaseFile(std::unique_ptr<Implementation> implementation);
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace jet::storage
