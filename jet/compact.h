#pragma once

#include <cstdint>
#include <filesystem>

namespace jet {

/// What CompactDatabase has done.
struct Compacted {
    std::filesystem::path kept;  ///< the file as it was
    std::uintmax_t sizeBefore = 0, size = 0;
    std::size_t tables = 0, rows = 0;
};

/// Puts a fresh copy of a database in its place: the same tables, indexes, rows and properties of
/// fields, without the room that deleted rows and dropped tables have left. The file as it was
/// stays beside it under another name. At any moment there is a whole file of the database's name.
///
/// Takes the database for that: Error(InUse). Error(Damaged) for a file that is not whole;
/// Error(NotSupported) for one with queries, forms, relationships, linked tables or anything else
/// that a copy made of tables would lose. Nothing is touched then.
Compacted CompactDatabase(const std::filesystem::path& database);

}  // namespace jet
