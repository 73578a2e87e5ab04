#include "jet/engine/mirror_table.h"

#include <algorithm>

#include "jet/dialect/names.h"
#include "jet/dialect/translate.h"
#include "jet/engine/convert.h"
#include "jet/engine/transfer.h"
#include "jet/error.h"

namespace jet::engine {

namespace {

using dialect::KeyColumn;
using dialect::QuotedName;
using dialect::ValueKind;
using storage::RowId;

/// How a column is declared in the copy; the affinity lets texts and numbers meet in comparisons.
std::string_view Declaration(ValueKind kind) {
    switch (kind) {
        case ValueKind::Boolean:
            return " INTEGER";
        case ValueKind::Number:
            return " NUMERIC";
        case ValueKind::Currency:
        case ValueKind::Decimal:
        case ValueKind::Date:
            return " REAL";
        case ValueKind::Guid:
        case ValueKind::Text:
            return " TEXT COLLATE jet";
        case ValueKind::Binary:
        case ValueKind::Any:
            break;
    }
    return " BLOB";
}

bool IsFloating(ColumnType type) {
    return type == ColumnType::Single || type == ColumnType::Double;
}

}  // namespace

MirrorTable::MirrorTable(Sqlite& sqlite, StatementCache& statements, storage::Table& stored)
    : sqlite_(sqlite), statements_(statements), stored_(&stored), definition_(stored.Definition()) {
    const TableDefinition& definition = definition_;
    const std::string name = dialect::TableName(definition.name);
    const std::string key = QuotedName(KeyColumn);
    std::string create = "CREATE TABLE " + name + "(" + key + " INTEGER PRIMARY KEY";
    insertSql_ = "INSERT INTO " + name + " VALUES(?1";
    for (std::size_t i = 0; i < definition.columns.size(); ++i) {
        const ColumnDefinition& column = definition.columns[i];
        kinds_.push_back(dialect::KindOf(column.type));
        create += "," + QuotedName(column.name);
        create += IsFloating(column.type) ? std::string_view(" REAL") : Declaration(kinds_.back());
        insertSql_ += ",?" + std::to_string(i + 2);
        if (column.autoNumber) autoNumber_ = i;
    }
    insertSql_ += ")";
    deleteSql_ = "DELETE FROM " + name + " WHERE " + key + "=?1";
    updateStart_ = "UPDATE " + name + " SET ";
    sqlite_.Execute(create + ")");
    nextGenerationAt_ = SmallTable;
}

std::size_t MirrorTable::Column(std::string_view name) const {
    const std::vector<ColumnDefinition>& columns = definition_.columns;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (dialect::SameName(columns[i].name, name)) return i;
    }
    throw Error(ErrorKind::NotFound, "Cannot find the field '" + std::string(name) +
                                         "' in table '" + Definition().name + "'");
}

void MirrorTable::Scan(std::span<const std::size_t> columns,
                       const std::function<void(RowKey, std::span<Value>)>& visit) const {
    RequireAttached();
    stored_->ScanColumns(
        columns, [&visit](RowId row, std::span<Value> values) { visit(row.AsInteger(), values); });
}

void MirrorTable::Load() {
    if (loaded_) return;
    RequireAttached();
    sqlite_.Execute("BEGIN");
    try {
        StatementLease insert = statements_.Take(insertSql_);
        stored_->Scan([&](RowId row, storage::Row&& values) {
            InsertCopy(*insert, row.AsInteger(), values);
            ++rows_;
        });
    } catch (...) {
        sqlite_.Execute("COMMIT");
        sqlite_.Execute("DELETE FROM " + dialect::TableName(Definition().name));
        rows_ = 0;
        throw;
    }
    sqlite_.Execute("COMMIT");
    loaded_ = true;
    CountRow();
}

/// Indexes are thought over each time a table has doubled.
void MirrorTable::CountRow() {
    if (rows_ < nextGenerationAt_) return;
    ++generation_;
    nextGenerationAt_ = rows_ * 2;
}

void MirrorTable::InsertCopy(Statement& insert, RowKey key, std::span<const Value> values) {
    insert.Bind(1, key);
    for (std::size_t i = 0; i < values.size(); ++i)
        BindValue(insert, static_cast<int>(i + 2), values[i]);
    insert.Run();
}

storage::Row MirrorTable::Read(RowKey key) const {
    return stored_->Read(RowId::FromInteger(key));
}

std::int64_t MirrorTable::NextAutoNumber() const {
    RequireAttached();
    return stored_->NextAutoNumber();
}

void MirrorTable::RequireAttached() const {
    if (!stored_) throw Error(ErrorKind::Io, "The database has been closed");
}

void MirrorTable::RequireWritable() const {
    RequireAttached();
    if (const auto reason = stored_->ReadOnlyReason()) {
        throw Error(ErrorKind::ReadOnly,
                    "Rows of '" + Definition().name + "' cannot be changed: " + *reason);
    }
}

RowKey MirrorTable::Insert(storage::Row values, std::int64_t* number) {
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = ConvertToField(Definition().columns[i], values[i]);
    const storage::Table::Inserted inserted = stored_->Insert(values);
    if (number != nullptr) *number = inserted.autoNumber.value_or(0);
    const RowKey key = inserted.row.AsInteger();
    ++changes_;
    if (!loaded_) return key;
    if (autoNumber_ && inserted.autoNumber)
        values[*autoNumber_] = std::int64_t{*inserted.autoNumber};
    StatementLease insert = statements_.Take(insertSql_);
    InsertCopy(*insert, key, values);
    ++rows_;
    CountRow();
    return key;
}

void MirrorTable::Update(RowKey key, std::span<const storage::FieldChange> changes) {
    if (changes.empty()) return;
    stored_->Update(RowId::FromInteger(key), changes);
    ++changes_;
    if (!loaded_) return;
    std::string sql = updateStart_;
    for (std::size_t i = 0; i < changes.size(); ++i) {
        if (i > 0) sql += ',';
        sql += QuotedName(Definition().columns[changes[i].column].name);
        sql += "=?" + std::to_string(i + 2);
    }
    sql += " WHERE \"[row]\"=?1";
    StatementLease update = statements_.Take(sql);
    update->Bind(1, key);
    for (std::size_t i = 0; i < changes.size(); ++i)
        BindValue(*update, static_cast<int>(i + 2), changes[i].value);
    update->Run();
}

void MirrorTable::Delete(RowKey key) {
    stored_->Delete(RowId::FromInteger(key));
    ++changes_;
    ++deletions_;
    if (!loaded_) return;
    StatementLease remove = statements_.Take(deleteSql_);
    remove->Bind(1, key);
    remove->Run();
    --rows_;
}

}  // namespace jet::engine
