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

/// A table is loaded as a whole once one in so many of its rows has been looked up: by then the
/// look-ups have cost about as much.
constexpr std::int64_t RowsForEachLookup = 16;

bool IsFloating(ColumnType type) {
    return type == ColumnType::Single || type == ColumnType::Double;
}

}  // namespace

MirrorTable::MirrorTable(Sqlite& sqlite, StatementCache& statements, storage::Table& stored)
    : sqlite_(sqlite), statements_(statements), stored_(&stored), definition_(stored.Definition()) {
    const std::string name = dialect::TableName(definition_.name);
    const std::string key = QuotedName(KeyColumn);
    std::string create = "CREATE TABLE " + name + "(" + key + " INTEGER PRIMARY KEY";
    for (std::size_t i = 0; i < definition_.columns.size(); ++i) {
        const ColumnDefinition& column = definition_.columns[i];
        kinds_.push_back(dialect::KindOf(column.type));
        create += "," + QuotedName(column.name);
        create += IsFloating(column.type) ? std::string_view(" REAL") : Declaration(kinds_.back());
        if (column.autoNumber) autoNumber_ = i;
        columns_.push_back(i);
    }
    insertSql_ = InsertSql(columns_);
    deleteSql_ = "DELETE FROM " + name + " WHERE " + key + "=?1";
    updateStart_ = "UPDATE " + name + " SET ";
    sqlite_.Execute(create + ")");
    nextGenerationAt_ = SmallTable;
}

/// A row that is there already has more columns than this one.
std::string MirrorTable::InsertSql(std::span<const std::size_t> columns) const {
    std::string names = QuotedName(KeyColumn), values = "?1";
    for (std::size_t i = 0; i < columns.size(); ++i) {
        names += "," + QuotedName(definition_.columns[columns[i]].name);
        values += ",?" + std::to_string(i + 2);
    }
    return "INSERT OR IGNORE INTO " + dialect::TableName(definition_.name) + "(" + names +
           ") VALUES(" + values + ")";
}

std::string MirrorTable::UpdateSql(std::span<const std::size_t> columns) const {
    std::string sql = updateStart_;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (i > 0) sql += ',';
        sql += QuotedName(definition_.columns[columns[i]].name) + "=?" + std::to_string(i + 2);
    }
    return sql + " WHERE " + QuotedName(KeyColumn) + "=?1";
}

std::size_t MirrorTable::Column(std::string_view name) const {
    const std::vector<ColumnDefinition>& columns = definition_.columns;
    // Whoever writes many rows spells the fields as they are; comparing without letter case would
    // take longer than writing the row.
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (columns[i].name == name) return i;
    }
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

bool MirrorTable::IsHeld(std::size_t column) const {
    return std::ranges::find(columns_, column) != columns_.end();
}

bool MirrorTable::Has(std::span<const std::size_t> columns) const {
    return hasAllRows_ &&
           std::ranges::all_of(columns, [this](std::size_t column) { return IsHeld(column); });
}

void MirrorTable::Load(std::span<const std::size_t> columns) {
    if (Has(columns)) return;
    RequireAttached();
    sqlite_.Execute("BEGIN");
    try {
        if (hasAllRows_) {
            AddColumns(columns);
        } else {
            AddRows(columns);
        }
    } catch (...) {
        if (!hasAllRows_) DropAllButSingleRows();
        sqlite_.Execute("COMMIT");
        throw;
    }
    sqlite_.Execute("COMMIT");
}

void MirrorTable::AddRows(std::span<const std::size_t> columns) {
    const std::string sql = InsertSql(columns);
    const std::int64_t rows = CopyScan(columns, sql);
    columns_.assign(columns.begin(), columns.end());
    insertSql_ = sql;
    hasAllRows_ = true;
    single_.clear();
    rows_ = rows;
    CountRow();
}

/// Statements that ask for one more column each must not cause a scan of the table each.
void MirrorTable::AddColumns(std::span<const std::size_t> columns) {
    std::vector<std::size_t> lacking;
    for (std::size_t column = 0; column < kinds_.size(); ++column) {
        const bool wanted = completed_ || std::ranges::find(columns, column) != columns.end();
        if (wanted && !IsHeld(column)) lacking.push_back(column);
    }
    CopyScan(lacking, UpdateSql(lacking));
    columns_.insert(columns_.end(), lacking.begin(), lacking.end());
    insertSql_ = InsertSql(columns_);
    completed_ = true;
    ++changes_;
}

/// Runs a statement for each row of the file and returns their number.
std::int64_t MirrorTable::CopyScan(std::span<const std::size_t> columns, const std::string& sql) {
    constexpr std::int64_t RowsBetweenQuestions = 256;
    std::int64_t rows = 0;
    StatementLease copy = statements_.Take(sql);
    stored_->ScanColumns(columns, [&](RowId row, std::span<Value> values) {
        if (rows++ % RowsBetweenQuestions == 0) sqlite_.CheckInterruption();
        copy->Bind(1, row.AsInteger());
        for (std::size_t i = 0; i < values.size(); ++i)
            BindValue(*copy, static_cast<int>(i + 2), values[i]);
        copy->Run();
    });
    return rows;
}

void MirrorTable::DropAllButSingleRows() {
    std::vector<RowKey> dropped;
    {
        const std::string sql =
            "SELECT " + QuotedName(KeyColumn) + " FROM " + dialect::TableName(definition_.name);
        StatementLease keys = statements_.Take(sql);
        while (keys->Step())
            if (!single_.contains(keys->Integer(0))) dropped.push_back(keys->Integer(0));
    }
    StatementLease remove = statements_.Take(deleteSql_);
    for (const RowKey key : dropped) {
        remove->Bind(1, key);
        remove->Run();
    }
}

bool MirrorTable::LoadRowsWith(std::size_t column, std::int64_t number) {
    if (hasAllRows_) return false;
    RequireAttached();
    const std::int64_t most = stored_->RowCount() / RowsForEachLookup;
    const std::int64_t room = most - std::ssize(single_);
    if (++lookups_ > most || room <= 0) return false;
    try {
        const auto rows =
            stored_->FindByIndex(column, Value(number), static_cast<std::size_t>(room));
        if (!rows) return false;
        for (const RowId row : *rows)
            Hold(row.AsInteger());
        return true;
    } catch (const Error& error) {
        // An index that contradicts the table or itself: the rows can be read without it.
        if (error.Kind() != ErrorKind::Damaged && error.Kind() != ErrorKind::NotFound) throw;
        return false;
    }
}

void MirrorTable::Hold(RowKey key) {
    if (hasAllRows_ || single_.contains(key)) return;
    InsertCopy(key, Read(key));
    single_.insert(key);
}

/// Indexes are reconsidered each time a table has doubled.
void MirrorTable::CountRow() {
    if (rows_ < nextGenerationAt_) return;
    ++generation_;
    nextGenerationAt_ = rows_ * 2;
}

void MirrorTable::InsertCopy(RowKey key, std::span<const Value> row) {
    StatementLease insert = statements_.Take(insertSql_);
    insert->Bind(1, key);
    for (std::size_t i = 0; i < columns_.size(); ++i)
        BindValue(*insert, static_cast<int>(i + 2), row[columns_[i]]);
    insert->Run();
    ++rows_;
    CountRow();
}

storage::Row MirrorTable::Read(RowKey key) const {
    RequireAttached();
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

RowKey MirrorTable::Insert(std::span<Value> values, std::int64_t* number) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        const ColumnDefinition& column = definition_.columns[i];
        if (!IsAsStored(column, values[i]))
            values[i] = ConvertToField(column, std::move(values[i]));
    }
    if (autoNumber_ && IsNull(values[*autoNumber_]))
        values[*autoNumber_] = std::int64_t{stored_->NextAutoNumber()};
    const storage::Table::Inserted inserted = stored_->Insert(values);
    if (number != nullptr) *number = inserted.autoNumber.value_or(0);
    const RowKey key = inserted.row.AsInteger();
    ++changes_;
    if (hasAllRows_) InsertCopy(key, values);
    return key;
}

void MirrorTable::Update(RowKey key, std::span<const storage::FieldChange> changes) {
    if (changes.empty()) return;
    stored_->Update(RowId::FromInteger(key), changes);
    ++changes_;
    if (!hasAllRows_ && !single_.contains(key)) return;
    std::vector<std::size_t> columns;
    std::vector<const Value*> values;
    for (const storage::FieldChange& change : changes) {
        if (!IsHeld(change.column)) continue;
        columns.push_back(change.column);
        values.push_back(&change.value);
    }
    if (columns.empty()) return;
    StatementLease update = statements_.Take(UpdateSql(columns));
    update->Bind(1, key);
    for (std::size_t i = 0; i < values.size(); ++i)
        BindValue(*update, static_cast<int>(i + 2), *values[i]);
    update->Run();
}

std::size_t MirrorTable::ReplaceDate(std::size_t column, Date before, Date after) {
    const std::size_t rows = stored_->ReplaceDate(column, before, after);
    if (rows == 0) return rows;
    ++changes_;
    if (rows_ == 0 || !IsHeld(column)) return rows;
    const std::string name = QuotedName(definition_.columns[column].name);
    const std::string sql = updateStart_ + name + "=?1 WHERE " + name + "=?2";
    StatementLease update = statements_.Take(sql);
    BindValue(*update, 1, Value(after));
    BindValue(*update, 2, Value(before));
    update->Run();
    return rows;
}

void MirrorTable::Delete(RowKey key) {
    stored_->Delete(RowId::FromInteger(key));
    ++changes_;
    ++deletions_;
    if (!hasAllRows_ && single_.erase(key) == 0) return;
    StatementLease remove = statements_.Take(deleteSql_);
    remove->Bind(1, key);
    remove->Run();
    --rows_;
}

void MirrorTable::DeleteAll() {
    stored_->DeleteAll();
    ++changes_;
    ++deletions_;
    single_.clear();
    rows_ = 0;
    sqlite_.Execute("DELETE FROM " + dialect::TableName(definition_.name));
}

}  // namespace jet::engine
