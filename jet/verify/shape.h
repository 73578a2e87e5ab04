#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "jet/schema.h"
#include "jet/storage/format/page.h"
#include "jet/verify/pages.h"

namespace jet::verify {

struct Column {
    std::string name;
    ColumnType type = ColumnType::Text;
    std::uint16_t number = 0;  ///< names the column in rows and indexes
    std::uint16_t slot = 0;    ///< place among the variable values
    std::uint16_t offset = 0;  ///< place among the fixed values
    std::uint16_t length = 0;  ///< most bytes
    std::uint8_t size = 0;     ///< bytes of each value; 0 where they differ
    std::uint8_t scale = 0;    ///< Decimal
    bool fixed = false;
    bool autoNumber = false;
    bool knownOrder = true;  ///< texts sort in the order that this library knows

    bool IsLong() const { return type == ColumnType::Memo || type == ColumnType::Ole; }
};

struct IndexPart {
    std::size_t column = 0;  ///< position in Shape::columns
    bool ascending = true;
};

struct Index {
    std::string name;
    std::vector<IndexPart> parts;
    storage::RowId map;
    storage::PageNumber root = 0;
    bool unique = false, ignoresNulls = false, required = false;
    bool keysAreKnown = true;  ///< its columns sort in an order that this library knows
};

/// Where a long column's pages are listed; none where the column has no such map.
struct LongColumnMaps {
    std::uint16_t column = 0;
    std::optional<storage::RowId> owned, free;
};

/// A table's definition as the file has it, deleted columns and all.
struct Shape {
    std::string name;
    storage::PageNumber page = 0;
    std::uint32_t rows = 0;
    std::int32_t lastAutoNumber = 0;
    std::uint16_t columnsEver = 0, variableEver = 0;
    storage::RowId owned, free;
    std::vector<Column> columns;
    std::vector<Index> indexes;
    std::vector<LongColumnMaps> longMaps;

    const Column* FindColumn(std::uint16_t number) const;
    const Column* FindColumn(std::string_view columnName) const;
};

/// Reads the definition that begins at `page`; none, and a fault, where it makes no sense.
std::optional<Shape> ReadShape(Pages& pages, Findings& findings, storage::PageNumber page,
                               const std::string& name);

}  // namespace jet::verify
