#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "jet/database.h"
#include "tests/outside/temporary_folder.h"

namespace jet::testing {

ColumnDefinition Text(const std::string& name, std::uint16_t size = 255);
ColumnDefinition Integer(const std::string& name);
ColumnDefinition Field(const std::string& name, ColumnType type);

/// The tables of a jukebox library.
std::vector<TableDefinition> LibraryTables();

/// A value the way the expectations of the tests write it: Null, True, #11/15/2026#, 5, text.
std::string Show(const Value& value);

/// All rows: fields separated by '|', rows by '\n'.
std::string Rows(RecordSet& rows);
std::string Rows(Database& database, const std::string& query);

/// A small library: two owned albums, one of the jukebox's own, and their tracks.
class SampleDatabase {
  public:
    SampleDatabase();
    Database& Get() { return *database_; }
    Database* operator->() { return database_.get(); }
    const std::filesystem::path& Path() const { return path_; }
    void Execute(const std::string& sql) { database_->Execute(sql); }
    std::string Rows(const std::string& query) { return jet::testing::Rows(*database_, query); }
    void Close() { database_.reset(); }
    void Reopen(OpenMode mode = OpenMode::ReadWrite);

  private:
    outside::TemporaryFolder folder_;
    std::filesystem::path path_ = folder_.Path() / "library.mdb";
    std::unique_ptr<Database> database_;
};

/// What the structural checker says against the file; empty if nothing, or if it is not there.
std::string StructuralFaults(const std::filesystem::path& database);
/// A table as another program reads it.
std::string Exported(const std::filesystem::path& database, const std::string& table);

}  // namespace jet::testing
