#include "jet/storage/definitions.h"

#include <algorithm>
#include <utility>

#include "jet/error.h"
#include "jet/storage/format/values.h"
#include "jet/storage/index/index_key.h"

namespace jet::storage {

namespace {

constexpr std::size_t MostColumns = 255, MostIndexes = 32, MostIndexParts = 10, LongestName = 64;
constexpr std::uint16_t LargestSize = 255, LargestBinary = 510;

bool SameName(const std::string& a, const std::string& b) {
    return CompareTexts(a, b) == 0;
}

ColumnDefinition ColumnDefinitionOf(const ColumnLayout& layout,
                                    std::span<const std::string> requiredColumns) {
    ColumnDefinition column;
    column.name = layout.name;
    column.type = layout.Type();
    if (column.type == ColumnType::Text) column.size = layout.length / 2;
    if (column.type == ColumnType::Binary) column.size = layout.length;
    column.autoNumber = column.type == ColumnType::Long && layout.IsAutoNumber();
    column.required = std::any_of(requiredColumns.begin(), requiredColumns.end(),
                                  [&](const auto& name) { return SameName(name, layout.name); });
    column.precision = layout.precision;
    column.scale = layout.scale;
    return column;
}

class Refusal {
  public:
    explicit Refusal(std::string what) : what_(std::move(what)) {}
    void Unless(bool holds, const std::string& reason) const {
        if (!holds) {
            throw Error(ErrorKind::NotSupported, what_ + " cannot be made: " + reason + ".");
        }
    }

  private:
    std::string what_;
};

bool IsName(const std::string& name) {
    constexpr std::string_view Forbidden = ".!`[]";
    const bool hasForbidden = std::any_of(name.begin(), name.end(), [&](char letter) {
        return Forbidden.find(letter) != std::string_view::npos ||
               static_cast<unsigned char>(letter) < ' ';
    });
    return !name.empty() && ToUtf16(name).size() <= LongestName && name.front() != ' ' &&
           !hasForbidden;
}

template <typename Items>
bool HaveDistinctNames(const Items& items) {
    for (auto item = items.begin(); item != items.end(); ++item) {
        if (std::any_of(items.begin(), item,
                        [&](const auto& other) { return SameName(other.name, item->name); })) {
            return false;
        }
    }
    return true;
}

void CheckColumn(const ColumnDefinition& column, const Refusal& refuse) {
    const std::string field = "field " + column.name;
    refuse.Unless(IsName(column.name), "\"" + column.name + "\" is not a name for a field");
    if (column.type == ColumnType::Text) {
        refuse.Unless(column.size >= 1 && column.size <= LargestSize, field + " has no valid size");
    }
    if (column.type == ColumnType::Binary) {
        refuse.Unless(column.size >= 1 && column.size <= LargestBinary,
                      field + " has no valid size");
    }
    if (column.type == ColumnType::Decimal) {
        refuse.Unless(
            column.precision >= 1 && column.precision <= 28 && column.scale <= column.precision,
            field + " has no valid precision");
    }
    refuse.Unless(!column.autoNumber || column.type == ColumnType::Long,
                  field + " is an auto-number but not a Long");
}

void CheckIndex(const TableDefinition& definition, const IndexDefinition& index,
                const Refusal& refuse) {
    const std::string name = "index " + index.name;
    refuse.Unless(IsName(index.name), "\"" + index.name + "\" is not a name for an index");
    refuse.Unless(!index.columns.empty() && index.columns.size() <= MostIndexParts,
                  name + " has no fields or more than ten");
    for (auto part = index.columns.begin(); part != index.columns.end(); ++part) {
        refuse.Unless(part->column < definition.columns.size() &&
                          definition.columns[part->column].type != ColumnType::Ole,
                      name + " is on a field that cannot be indexed");
        refuse.Unless(std::none_of(index.columns.begin(), part,
                                   [&](const auto& other) { return other.column == part->column; }),
                      name + " has a field twice");
    }
}

void CheckIndexesTogether(const TableDefinition& definition, const Refusal& refuse) {
    refuse.Unless(HaveDistinctNames(definition.indexes), "two indexes have one name");
    refuse.Unless(definition.indexes.size() <= MostIndexes, "it has more than 32 indexes");
    refuse.Unless(std::count_if(definition.indexes.begin(), definition.indexes.end(),
                                [](const auto& index) { return index.primary; }) <= 1,
                  "it has two primary keys");
}

void Check(const TableDefinition& definition) {
    const Refusal refuse("Table " + definition.name);
    refuse.Unless(IsName(definition.name), "that is not a name for a table");
    refuse.Unless(!definition.columns.empty() && definition.columns.size() <= MostColumns,
                  "it has no fields or more than 255");
    refuse.Unless(HaveDistinctNames(definition.columns), "two fields have one name");
    for (const auto& column : definition.columns)
        CheckColumn(column, refuse);
    refuse.Unless(std::count_if(definition.columns.begin(), definition.columns.end(),
                                [](const auto& column) { return column.autoNumber; }) <= 1,
                  "it has two auto-numbers");
    for (const auto& index : definition.indexes)
        CheckIndex(definition, index, refuse);
    CheckIndexesTogether(definition, refuse);
}

std::uint16_t LengthOf(const ColumnDefinition& column) {
    switch (column.type) {
        case ColumnType::Text:
            return static_cast<std::uint16_t>(column.size * 2);
        case ColumnType::Binary:
            return column.size;
        case ColumnType::Boolean:
            return 1;
        default:
            return static_cast<std::uint16_t>(FixedSize(column.type));
    }
}

bool IsVariable(ColumnType type) {
    return type == ColumnType::Text || type == ColumnType::Memo || type == ColumnType::Binary ||
           type == ColumnType::Ole;
}

/// Gives the columns their numbers and places.
void PlaceColumns(const TableDefinition& definition, TableLayout& layout) {
    std::uint16_t fixedOffset = 0, slot = 0;
    for (const ColumnDefinition& wanted : definition.columns) {
        ColumnLayout column;
        column.name = wanted.name;
        column.typeCode = static_cast<std::uint8_t>(wanted.type);
        column.number = static_cast<std::uint16_t>(layout.columns.size());
        column.ordinal = column.number;
        column.length = LengthOf(wanted);
        column.fixed = !IsVariable(wanted.type);
        column.slot = slot;
        column.sortOrder = GeneralOrder;
        column.precision = wanted.precision;
        column.scale = wanted.scale;
        column.flags = ColumnLayout::AlwaysFlag;
        if (wanted.autoNumber) column.flags |= ColumnLayout::AutoNumberFlag;
        column.compressed = column.IsText();
        if (!column.fixed) {
            ++slot;
        } else {
            column.flags |= ColumnLayout::FixedFlag;
            if (wanted.type != ColumnType::Boolean) {
                column.fixedOffset = fixedOffset;
                fixedOffset = static_cast<std::uint16_t>(fixedOffset + column.length);
            }
        }
        if (column.IsLong()) layout.longColumns.push_back({column.number, {}, {}});
        layout.columns.push_back(std::move(column));
    }
    layout.columnsEver = static_cast<std::uint16_t>(layout.columns.size());
    layout.variableColumnsEver = slot;
}

}  // namespace

RealIndexLayout RealIndexOf(const IndexDefinition& wanted) {
    RealIndexLayout index;
    for (const auto& part : wanted.columns) {
        index.parts.push_back({static_cast<std::uint16_t>(part.column), part.ascending});
    }
    index.flags = RealIndexLayout::AlwaysFlag;
    if (wanted.unique || wanted.primary) index.flags |= RealIndexLayout::UniqueFlag;
    if (wanted.required || wanted.primary) index.flags |= RealIndexLayout::RequiredFlag;
    if (wanted.ignoreNulls) index.flags |= RealIndexLayout::IgnoreNullsFlag;
    return index;
}

namespace {

void PlaceIndexes(const TableDefinition& definition, TableLayout& layout) {
    for (const IndexDefinition& wanted : definition.indexes) {
        RealIndexLayout index = RealIndexOf(wanted);
        auto& all = layout.realIndexes;
        auto real = std::find_if(all.begin(), all.end(), [&](const auto& other) {
            return other.parts == index.parts && other.flags == index.flags;
        });
        if (real == all.end()) real = all.insert(all.end(), std::move(index));
        LogicalIndexLayout logical;
        logical.name = wanted.name;
        logical.number = static_cast<std::uint32_t>(layout.logicalIndexes.size());
        logical.real = static_cast<std::uint32_t>(real - all.begin());
        if (wanted.primary) logical.kind = LogicalIndexLayout::Kind::Primary;
        layout.logicalIndexes.push_back(std::move(logical));
    }
    std::stable_sort(layout.logicalIndexes.begin(), layout.logicalIndexes.end(),
                     [](const auto& a, const auto& b) { return CompareTexts(a.name, b.name) < 0; });
}

}  // namespace

TableDefinition DefinitionOf(const TableLayout& layout, std::string name,
                             std::span<const std::string> requiredColumns) {
    TableDefinition definition;
    definition.name = std::move(name);
    for (const auto& column : layout.columns) {
        definition.columns.push_back(ColumnDefinitionOf(column, requiredColumns));
    }
    for (const auto& logical : layout.logicalIndexes) {
        if (logical.kind == LogicalIndexLayout::Kind::Foreign) continue;
        const RealIndexLayout& real = layout.realIndexes[logical.real];
        IndexDefinition index;
        index.name = logical.name;
        for (const auto& part : real.parts) {
            index.columns.push_back({layout.Position(part.column), part.ascending});
        }
        index.primary = logical.kind == LogicalIndexLayout::Kind::Primary;
        index.unique = (real.flags & RealIndexLayout::UniqueFlag) != 0;
        index.required = (real.flags & RealIndexLayout::RequiredFlag) != 0;
        index.ignoreNulls = (real.flags & RealIndexLayout::IgnoreNullsFlag) != 0;
        definition.indexes.push_back(std::move(index));
    }
    return definition;
}

void CheckLastIndex(const TableDefinition& definition) {
    const IndexDefinition& index = definition.indexes.back();
    const Refusal refuse("Index " + index.name + " of table " + definition.name);
    CheckIndex(definition, index, refuse);
    CheckIndexesTogether(definition, refuse);
}

TableLayout LayoutOf(const TableDefinition& definition) {
    Check(definition);
    TableLayout layout;
    PlaceColumns(definition, layout);
    PlaceIndexes(definition, layout);
    return layout;
}

}  // namespace jet::storage
