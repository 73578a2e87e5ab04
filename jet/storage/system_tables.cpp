#include "jet/storage/system_tables.h"

#include <algorithm>
#include <initializer_list>
#include <string>

#include "jet/storage/format/values.h"

namespace jet::storage {

namespace {

constexpr std::uint16_t TextLength = 510;
/// Marks columns of system tables, and those that hold a security id.
constexpr std::uint8_t SystemColumnFlag = 0x10, SecurityIdFlag = 0x20;

struct SystemColumn {
    std::uint16_t number;
    const char* name;
    ColumnType type;
    bool isSecurityId = false;
};

bool HasNoFixedPlace(ColumnType type) {
    return FixedSize(type) == 0 && type != ColumnType::Boolean;
}

/// Columns come in the order of their names, as the engine writes them; their places in a row
/// follow from their numbers.
TableLayout Layout(std::initializer_list<SystemColumn> columns) {
    TableLayout layout;
    layout.isSystem = true;
    for (const SystemColumn& wanted : columns) {
        ColumnLayout column;
        column.name = wanted.name;
        column.typeCode = static_cast<std::uint8_t>(wanted.type);
        column.number = wanted.number;
        column.fixed = !HasNoFixedPlace(wanted.type);
        for (const SystemColumn& other : columns) {
            if (other.number >= wanted.number) continue;
            if (HasNoFixedPlace(other.type)) ++column.slot;
            if (!column.fixed || column.Type() == ColumnType::Boolean) continue;
            column.fixedOffset = static_cast<std::uint16_t>(
                column.fixedOffset + (HasNoFixedPlace(other.type) ? 0 : FixedSize(other.type)));
        }
        column.sortOrder = GeneralOrder;
        column.flags = ColumnLayout::AlwaysFlag | SystemColumnFlag;
        if (column.fixed) column.flags |= ColumnLayout::FixedFlag;
        if (wanted.isSecurityId) column.flags |= SecurityIdFlag;
        const bool isText = wanted.type == ColumnType::Text || wanted.type == ColumnType::Binary;
        column.length = isText ? TextLength : static_cast<std::uint16_t>(FixedSize(wanted.type));
        if (wanted.type == ColumnType::Boolean) column.length = 1;
        if (!column.fixed) ++layout.variableColumnsEver;
        if (column.IsLong()) layout.longColumns.push_back({column.number, {}, {}});
        layout.columns.push_back(std::move(column));
    }
    layout.columnsEver = static_cast<std::uint16_t>(layout.columns.size());
    return layout;
}

RealIndexLayout Index(std::initializer_list<std::uint16_t> columns, std::uint8_t flags) {
    RealIndexLayout index;
    for (const std::uint16_t column : columns)
        index.parts.push_back({column, true});
    index.flags = static_cast<std::uint8_t>(RealIndexLayout::AlwaysFlag | flags);
    return index;
}

LogicalIndexLayout Named(const char* name, std::uint32_t real, bool primary = false) {
    return {name, real, real,
            primary ? LogicalIndexLayout::Kind::Primary : LogicalIndexLayout::Kind::Plain};
}

constexpr std::uint8_t Unique = RealIndexLayout::UniqueFlag,
                       NoNulls = RealIndexLayout::RequiredFlag,
                       IgnoreNulls = RealIndexLayout::IgnoreNullsFlag;

}  // namespace

TableLayout ObjectsLayout() {
    TableLayout layout = Layout({{9, "Connect", ColumnType::Memo},
                                 {8, "Database", ColumnType::Memo},
                                 {4, "DateCreate", ColumnType::Date},
                                 {5, "DateUpdate", ColumnType::Date},
                                 {7, "Flags", ColumnType::Long},
                                 {10, "ForeignName", ColumnType::Text},
                                 {0, "Id", ColumnType::Long},
                                 {13, "Lv", ColumnType::Ole},
                                 {16, "LvExtra", ColumnType::Ole},
                                 {15, "LvModule", ColumnType::Ole},
                                 {14, "LvProp", ColumnType::Ole},
                                 {2, "Name", ColumnType::Text},
                                 {6, "Owner", ColumnType::Binary, true},
                                 {1, "ParentId", ColumnType::Long},
                                 {12, "RmtInfoLong", ColumnType::Ole},
                                 {11, "RmtInfoShort", ColumnType::Binary},
                                 {3, "Type", ColumnType::Integer}});
    layout.realIndexes = {Index({1, 2}, Unique), Index({0}, Unique)};
    layout.logicalIndexes = {Named("Id", 1, true), Named("ParentIdName", 0)};
    return layout;
}

TableLayout AccessControlLayout() {
    TableLayout layout = Layout({{2, "ACM", ColumnType::Long},
                                 {3, "FInheritable", ColumnType::Boolean},
                                 {0, "ObjectId", ColumnType::Long},
                                 {1, "SID", ColumnType::Binary, true}});
    layout.realIndexes = {Index({0}, NoNulls)};
    layout.logicalIndexes = {Named("ObjectId", 0)};
    return layout;
}

TableLayout QueriesLayout() {
    TableLayout layout = Layout({{1, "Attribute", ColumnType::Byte},
                                 {5, "Expression", ColumnType::Memo},
                                 {6, "Flag", ColumnType::Integer},
                                 {7, "LvExtra", ColumnType::Long},
                                 {3, "Name1", ColumnType::Text},
                                 {4, "Name2", ColumnType::Text},
                                 {0, "ObjectId", ColumnType::Long},
                                 {2, "Order", ColumnType::Binary}});
    layout.realIndexes = {Index({0, 1, 2}, Unique)};
    layout.logicalIndexes = {Named("ObjectIdAttribute", 0, true)};
    return layout;
}

TableLayout RelationshipsLayout() {
    TableLayout layout = Layout({{2, "ccolumn", ColumnType::Long},
                                 {1, "grbit", ColumnType::Long},
                                 {3, "icolumn", ColumnType::Long},
                                 {5, "szColumn", ColumnType::Text},
                                 {4, "szObject", ColumnType::Text},
                                 {7, "szReferencedColumn", ColumnType::Text},
                                 {6, "szReferencedObject", ColumnType::Text},
                                 {0, "szRelationship", ColumnType::Text}});
    layout.realIndexes = {Index({0}, IgnoreNulls), Index({4}, IgnoreNulls),
                          Index({6}, IgnoreNulls)};
    layout.logicalIndexes = {Named("szObject", 1), Named("szReferencedObject", 2),
                             Named("szRelationship", 0)};
    return layout;
}

}  // namespace jet::storage
