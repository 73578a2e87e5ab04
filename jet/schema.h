#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace jet {

/// Column types with their codes in the file.
enum class ColumnType : std::uint8_t {
    Boolean = 0x01,
    Byte = 0x02,
    Integer = 0x03,
    Long = 0x04,
    Currency = 0x05,
    Single = 0x06,
    Double = 0x07,
    Date = 0x08,
    Binary = 0x09,
    Text = 0x0A,
    Ole = 0x0B,
    Memo = 0x0C,
    Guid = 0x0F,
    Decimal = 0x10,
};

struct ColumnDefinition {
    std::string name;
    ColumnType type = ColumnType::Text;
    /// Text: the most characters (UTF-16 units) allowed, 1 to 255. Binary: the most bytes allowed.
    /// Unused by all other types.
    std::uint16_t size = 0;
    bool autoNumber = false;                ///< Long only: the engine hands out the value
    bool required = false;                  ///< Null is refused
    std::uint8_t precision = 0, scale = 0;  ///< Decimal only
};

struct IndexColumn {
    std::size_t column = 0;  ///< position in TableDefinition::columns
    bool ascending = true;
};

struct IndexDefinition {
    std::string name;
    std::vector<IndexColumn> columns;
    bool primary = false;  ///< implies unique and required
    bool unique = false;
    bool required = false;     ///< Null in any column is refused
    bool ignoreNulls = false;  ///< rows with Null in every column have no entry
};

/// A table's shape, as read from a file or as wanted for a new table.
struct TableDefinition {
    std::string name;
    std::vector<ColumnDefinition> columns;
    std::vector<IndexDefinition> indexes;

    /// The position of the column of this name, whatever its letter case (ASCII).
    std::optional<std::size_t> FindColumn(std::string_view columnName) const;
};

}  // namespace jet
