#pragma once

#include <filesystem>
#include <string>

#include "jet/database.h"
#include "tests/jet/engine/sample_database.h"

namespace jet::testing {

/// A database with a table "T" whose numbers are indexed: ID (the primary key, an auto-number),
/// Small (a byte), Middle (backwards, with a text behind it in the index) and Large; Plain is not,
/// Real and Name are indexed, but are no whole numbers.
class NumberTable {
  public:
    /// With so many rows, of random values from few, some Null.
    explicit NumberTable(int rows);

    const std::filesystem::path& Path() const { return path_; }
    Database Open(OpenMode mode = OpenMode::ReadWrite) const { return Database::Open(path_, mode); }

  private:
    outside::TemporaryFolder folder_;
    std::filesystem::path path_ = folder_.Path() / "numbers.mdb";
};

/// What a statement shows, or the error that it ends with.
std::string Outcome(Database& database, const std::string& query);

}  // namespace jet::testing
