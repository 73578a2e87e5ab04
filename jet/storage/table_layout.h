#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "jet/schema.h"
#include "jet/storage/format/page_store.h"
#include "jet/value.h"

namespace jet::storage {

/// The sort order of a text column, General Legacy, by its language number; 0 means it, too.
constexpr std::uint16_t GeneralOrder = 1033;

/// How a column is stored.
struct ColumnLayout {
    std::string name;
    std::uint8_t typeCode = 0;
    std::uint16_t number = 0;       ///< its bit in the null mask; never used again
    bool fixed = false;             ///< in the fixed part of a row, else in the variable part
    std::uint16_t fixedOffset = 0;  ///< fixed columns: place in the fixed part
    std::uint16_t slot = 0;         ///< variable columns: place in the table of variable offsets
    std::uint16_t length = 0;       ///< bytes: largest or fixed size
    std::uint16_t ordinal = 0;
    std::uint8_t flags = 0;
    bool compressed = false;  ///< texts may be stored one byte a character
    std::uint16_t sortOrder = 0;
    std::uint8_t sortVersion = 0;
    std::uint8_t precision = 0, scale = 0;

    static constexpr std::uint8_t FixedFlag = 0x01, AlwaysFlag = 0x02, AutoNumberFlag = 0x04;

    /// Whether jet::ColumnType has the type. Values of other types are passed on as Bytes.
    bool IsKnownType() const {
        return (typeCode >= static_cast<std::uint8_t>(ColumnType::Boolean) &&
                typeCode <= static_cast<std::uint8_t>(ColumnType::Memo)) ||
               typeCode == static_cast<std::uint8_t>(ColumnType::Guid) ||
               typeCode == static_cast<std::uint8_t>(ColumnType::Decimal);
    }
    ColumnType Type() const {
        return IsKnownType() ? static_cast<ColumnType>(typeCode) : ColumnType::Binary;
    }
    bool IsLong() const { return Type() == ColumnType::Memo || Type() == ColumnType::Ole; }
    bool IsText() const { return Type() == ColumnType::Memo || Type() == ColumnType::Text; }
    /// Bytes that the value takes in the fixed part of a row.
    std::size_t StoredSize() const;
    bool IsAutoNumber() const { return (flags & AutoNumberFlag) != 0; }
};

/// An index as it is kept: one tree, which several named indexes may share.
struct RealIndexLayout {
    struct Part {
        std::uint16_t column = 0;  ///< column number
        bool ascending = true;
        bool operator==(const Part&) const = default;
    };
    std::vector<Part> parts;
    RowId map;
    PageNumber root = 0;
    std::uint8_t flags = 0;

    static constexpr std::uint8_t UniqueFlag = 0x01, IgnoreNullsFlag = 0x02, RequiredFlag = 0x08,
                                  AlwaysFlag = 0x80;
};

/// A named index.
struct LogicalIndexLayout {
    enum class Kind : std::uint8_t { Plain = 0, Primary = 1, Foreign = 2 };
    std::string name;
    std::uint32_t number = 0;
    std::uint32_t real = 0;  ///< position in TableLayout::realIndexes
    Kind kind = Kind::Plain;
};

/// Where the long values of a column lie. A page of 0 in the maps: there is no such map yet.
struct LongColumnLayout {
    std::uint16_t column = 0;  ///< column number
    RowId owned, free;
};

/// A table definition as the file has it.
struct TableLayout {
    std::vector<PageNumber> pages;  ///< of the definition itself; the first names the table
    bool isSystem = false;
    std::uint16_t columnsEver = 0, variableColumnsEver = 0;
    RowId owned, free;                  ///< usage maps of the data pages
    std::vector<ColumnLayout> columns;  ///< as read: by number; as written: in this order
    std::vector<RealIndexLayout> realIndexes;
    std::vector<LogicalIndexLayout> logicalIndexes;
    std::vector<LongColumnLayout> longColumns;
    std::size_t longColumnsOffset = 0;  ///< of their list in the definition

    PageNumber Page() const { return pages.front(); }
    /// Position of the column of this number in `columns`, or columns.size().
    std::size_t Position(std::uint16_t number) const;
    /// Bytes of the fixed part of a new row.
    std::size_t FixedPartSize() const;
};

/// Reads the definition that starts on `page`. Error(Damaged) for anything that is not one.
TableLayout ReadTableLayout(PageStore& pages, PageNumber page);

/// Writes a definition for a table without rows to `layout.pages` (at least one), taking further
/// pages where needed.
void WriteTableLayout(PageStore& pages, TableLayout& layout);

/// A definition as one run of bytes, in the way that it stands on its pages.
Bytes ReadDefinition(PageStore& pages, PageNumber page);
/// Writes such bytes to the definition's pages, taking further ones or giving back what is left.
void WriteDefinition(PageStore& pages, std::vector<PageNumber>& places,
                     std::span<const std::uint8_t> bytes);

/// What tells of one index in a definition.
Bytes RealIndexBytes(const RealIndexLayout& index);
Bytes LogicalIndexBytes(const LogicalIndexLayout& index);

/// Stores the maps of one of `layout.longColumns`, after they were made.
void StoreLongColumnMaps(PageStore& pages, const TableLayout& layout, std::size_t longColumn);

/// The counters in a table's definition, which change with its rows.
class TableCounters {
  public:
    TableCounters(PageStore& pages, PageNumber definition)
        : pages_(pages), definition_(definition) {}

    std::uint32_t Rows() const;
    void SetRows(std::uint32_t count);
    /// The last auto-number handed out, and the step to the next.
    std::int32_t AutoNumber() const;
    std::int32_t AutoNumberStep() const;
    void SetAutoNumber(std::int32_t value);
    void SetAutoNumber(std::int32_t value, std::int32_t step);
    /// Counts keys that their index did not have before.
    void CountNewKeys(std::size_t realIndex, std::size_t count);

  private:
    PageStore& pages_;
    PageNumber definition_;
};

}  // namespace jet::storage
