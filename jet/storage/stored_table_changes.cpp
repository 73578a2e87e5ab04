// How rows are added, changed and deleted.
#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>
#include <vector>

#include "jet/error.h"
#include "jet/storage/damaged.h"
#include "jet/storage/index/index_page.h"
#include "jet/storage/long_values.h"
#include "jet/storage/stored_table.h"
#include "jet/storage/value_check.h"

namespace jet::storage {

namespace {

/// Entries of one index that wait at most.
constexpr std::size_t MostWaiting = 50000;

/// Yes/No fields know no Null.
Value Normalized(const Value& value, const ColumnDefinition& column) {
    if (column.type == ColumnType::Boolean && IsNull(value)) return false;
    return value;
}

/// A row with its new values.
Row After(Row row, const std::vector<std::optional<Value>>& newValues) {
    for (std::size_t i = 0; i < row.size(); ++i)
        if (newValues[i]) row[i] = *newValues[i];
    return row;
}

}  // namespace

void StoredTable::RequireChangeable() const {
    if (const auto reason = ReadOnlyReason()) {
        throw Error(ErrorKind::NotSupported,
                    "Table " + definition_.name + " cannot be changed: " + *reason + ".");
    }
}

/// The catalog's own rows belong to the file.
RowObserver* StoredTable::Observer() const {
    return definition_.name.starts_with("MSys") ? nullptr : pages_.Observer();
}

Table::Inserted StoredTable::Insert(std::span<const Value> values) {
    return NamingFile(file_, [&] { return AddRow(values); });
}

void StoredTable::Update(RowId row, std::span<const FieldChange> changes) {
    NamingFile(file_, [&] { ChangeRow(row, changes); });
}

void StoredTable::Delete(RowId row) {
    NamingFile(file_, [&] { RemoveRow(row); });
}

void StoredTable::DeleteAll() {
    NamingFile(file_, [&] { RemoveAllRows(); });
}

Table::Inserted StoredTable::AddRow(std::span<const Value> given) {
    RequireChangeable();
    const auto& columns = definition_.columns;
    if (given.size() != columns.size()) {
        throw Error(ErrorKind::TypeMismatch, "A row of table " + definition_.name + " has " +
                                                 std::to_string(columns.size()) + " values, not " +
                                                 std::to_string(given.size()) + ".");
    }
    const Value no = false;
    Value number;
    bool isComplete = true;
    const auto valueOf = [&](std::size_t column) -> const Value& {
        if (!IsNull(given[column])) return given[column];
        return columns[column].autoNumber                    ? number
               : columns[column].type == ColumnType::Boolean ? no
                                                             : given[column];
    };
    Table::Inserted inserted;
    for (std::size_t i = 0; i < given.size(); ++i) {
        CheckValue(valueOf(i), columns[i], definition_.name);
        if (&valueOf(i) != &given[i]) isComplete = false;
        if (!columns[i].autoNumber) continue;
        if (IsNull(given[i])) number = std::int64_t{NextAutoNumber()};
        inserted.autoNumber = static_cast<std::int32_t>(std::get<std::int64_t>(valueOf(i)));
    }
    for (std::size_t i = 0; i < newKeys_.size(); ++i) {
        Current().indexes[i]->KeyOf(valueOf, newKeys_[i]);
        CheckKey(i, newKeys_[i]);
        if (waiting_[i].Count() >= MostWaiting || !EntriesMayWait()) PutWaitingEntries(i);
        waiting_[i].Reserve(newKeys_[i].bytes);
    }
    const bool wait = EntriesMayWait();
    const std::uint32_t rowsBefore = Current().counters.Rows();
    Undoably([&] {
        Parts& parts = Current();
        parts.draft.Clear();
        for (std::size_t i = 0; i < given.size(); ++i)
            SetField(i, valueOf(i));
        const Bytes& row = Assemble();
        inserted.row = keepsOrder_ ? parts.rows.Append(row) : parts.rows.Add(row);
        for (std::size_t i = 0; i < newKeys_.size() && !wait; ++i)
            ChangeKey({i, std::nullopt, newKeys_[i]}, inserted.row);
        RowObserver* const observer = Observer();
        if (observer == nullptr) return;
        Row completed;
        for (std::size_t i = 0; i < given.size() && !isComplete; ++i)
            completed.push_back(valueOf(i));
        observer->RowAdded(definition_, isComplete ? given : completed);
    });
    // Their page is in memory: nothing of this can fail, so that it needs no copy.
    Current().counters.SetRows(rowsBefore + 1);
    if (inserted.autoNumber) RaiseAutoNumber(*inserted.autoNumber);
    for (std::size_t i = 0; i < newKeys_.size() && wait; ++i)
        if (Current().indexes[i]->Lists(newKeys_[i]))
            waiting_[i].Add(newKeys_[i].bytes, inserted.row);
    return inserted;
}

void StoredTable::ChangeRow(RowId row, std::span<const FieldChange> changes) {
    RequireChangeable();
    const auto stored = Current().rows.Read(row);
    // A copy, as the page is about to change.
    const Bytes old(stored.bytes.begin(), stored.bytes.end());
    const RowReader reader(old, Current().layout);
    const auto newValues = EffectiveChanges(reader, changes);
    if (std::none_of(newValues.begin(), newValues.end(),
                     [](const auto& v) { return v.has_value(); })) {
        return;
    }
    const auto keyChanges = KeyChanges(reader, newValues);
    RowObserver* const told = Observer();
    const Row before = told != nullptr ? DecodeRow(old) : Row();
    for (const auto& change : keyChanges) {
        PutWaitingEntries(change.index);
        if (change.after) CheckKey(change.index, *change.after);
    }
    Undoably([&] {
        Parts& parts = Current();
        RowDraft& draft = parts.draft;
        draft.Clear();
        std::vector<std::pair<std::size_t, Bytes>> obsolete;
        for (std::size_t i = 0; i < newValues.size(); ++i) {
            const ColumnLayout& column = parts.layout.columns[i];
            const auto field =
                column.Type() == ColumnType::Boolean ? std::nullopt : reader.Field(column);
            if (!newValues[i]) {
                if (field) draft.SetBytes(i, *field);
                if (column.Type() == ColumnType::Boolean) draft.SetBit(i, reader.Bit(column));
                continue;
            }
            if (field && column.IsLong() && IsOutsideRow(*field)) {
                obsolete.emplace_back(i, Bytes(field->begin(), field->end()));
            }
            SetField(i, *newValues[i]);
            if (definition_.columns[i].autoNumber)
                RaiseAutoNumber(static_cast<std::int32_t>(std::get<std::int64_t>(*newValues[i])));
        }
        for (const auto& [column, field] : obsolete)
            RemoveLongValue(LongPages(column), field);
        parts.rows.Replace(row, Assemble());
        for (const auto& change : keyChanges)
            ChangeKey(change, row);
        if (told != nullptr) told->RowChanged(definition_, before, After(before, newValues));
    });
}

void StoredTable::RemoveRow(RowId row) {
    RequireChangeable();
    const auto stored = Current().rows.Read(row);
    const Bytes old(stored.bytes.begin(), stored.bytes.end());
    RowObserver* const told = Observer();
    const Row whole = told != nullptr ? DecodeRow(old) : Row();
    MakeNow();
    Undoably([&] {
        Parts& parts = Current();
        const RowReader reader(old, parts.layout);
        Row values(definition_.columns.size());
        for (const auto& index : parts.indexes) {
            for (const std::size_t column : index->Columns()) {
                values[column] = Decode(reader, column);
            }
        }
        for (std::size_t i = 0; i < parts.indexes.size(); ++i) {
            ChangeKey({i, parts.indexes[i]->KeyOf(values), std::nullopt}, row);
        }
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (!parts.layout.columns[i].IsLong()) continue;
            const auto field = reader.Field(parts.layout.columns[i]);
            if (field && IsOutsideRow(*field)) RemoveLongValue(LongPages(i), *field);
        }
        parts.rows.Remove(row);
        const auto rows = parts.counters.Rows();
        if (rows != 0) parts.counters.SetRows(rows - 1);
        if (told != nullptr) told->RowRemoved(definition_, whole);
    });
}

void StoredTable::RemoveAllRows() {
    RequireChangeable();
    Undoably([&] {
        if (RowObserver* const told = Observer()) {
            std::vector<std::size_t> columns(definition_.columns.size());
            std::iota(columns.begin(), columns.end(), std::size_t{0});
            ScanColumns(columns, [&](RowId, std::span<const Value> row) {
                told->RowRemoved(definition_, row);
            });
        }
        Parts& parts = Current();
        parts.rows.RemoveAll();
        for (const LongColumnLayout& column : parts.layout.longColumns) {
            if (column.owned.page != 0) LongPages(parts.layout.Position(column.column)).RemoveAll();
        }
        for (const auto& index : parts.indexes)
            index->RemoveAll();
        parts.counters.SetRows(0);
    });
    waiting_.assign(waiting_.size(), EntryBatch());
}

/// New values by column, for those columns whose value really becomes another.
std::vector<std::optional<Value>> StoredTable::EffectiveChanges(
    const RowReader& old, std::span<const FieldChange> changes) const {
    std::vector<std::optional<Value>> newValues(definition_.columns.size());
    for (const FieldChange& change : changes) {
        const ColumnDefinition& column = definition_.columns.at(change.column);
        Value value = Normalized(change.value, column);
        CheckValue(value, column, definition_.name);
        if (column.autoNumber && IsNull(value)) {
            throw Error(ErrorKind::Required, "Field " + column.name + " of table " +
                                                 definition_.name + " needs a value.");
        }
        newValues[change.column] = std::move(value);
    }
    for (std::size_t i = 0; i < newValues.size(); ++i) {
        if (newValues[i] && Decode(old, i) == *newValues[i]) newValues[i].reset();
    }
    return newValues;
}

std::vector<StoredTable::KeyChange> StoredTable::KeyChanges(
    const RowReader& old, const std::vector<std::optional<Value>>& changes) const {
    const Parts& parts = Current();
    std::vector<KeyChange> keyChanges;
    Row before(changes.size()), after(changes.size());
    for (std::size_t i = 0; i < parts.indexes.size(); ++i) {
        const auto& columns = parts.indexes[i]->Columns();
        if (std::none_of(columns.begin(), columns.end(),
                         [&](std::size_t column) { return changes[column].has_value(); })) {
            continue;
        }
        for (const std::size_t column : columns) {
            before[column] = Decode(old, column);
            after[column] = changes[column].value_or(before[column]);
        }
        IndexKey keyBefore = parts.indexes[i]->KeyOf(before);
        IndexKey keyAfter = parts.indexes[i]->KeyOf(after);
        if (keyBefore.bytes == keyAfter.bytes) continue;
        keyChanges.push_back({i, std::move(keyBefore), std::move(keyAfter)});
    }
    return keyChanges;
}

void StoredTable::CheckKey(std::size_t index, const IndexKey& key) {
    const TableIndex& checked = *Current().indexes[index];
    if (checked.RefusesNulls() && key.anyNull) {
        throw Error(ErrorKind::Required, "Index " + IndexName(index) + " of table " +
                                             definition_.name + " needs a value in each field.");
    }
    if (checked.Lists(key)) CheckLength(key.bytes);
    if (checked.MustBeUnique(key) && IsTaken(index, key)) {
        throw Error(ErrorKind::Duplicate, "Table " + definition_.name +
                                              " already has a row with this value in index " +
                                              IndexName(index) + ".");
    }
}

bool StoredTable::IsTaken(std::size_t index, const IndexKey& key) {
    // Behind all entries that wait, as a new auto-number is, only the tree is left to be asked.
    const EntryBatch& waiting = waiting_[index];
    if (!waiting.IsEmpty() &&
        (!waiting.CameInOrder() || CompareBytes(key.bytes, waiting.LastKey()) <= 0))
        PutWaitingEntries(index);
    return Current().indexes[index]->Has(key);
}

/// Not where the file comes near to its largest size: the row for whose entries there is no page
/// must be the one that is refused.
bool StoredTable::EntriesMayWait() const {
    constexpr PageNumber EnoughPages = 4 * MostWaiting;
    return Pager::MostPages - pages_.PageCount() > EnoughPages;
}

void StoredTable::MakeNow() {
    for (std::size_t i = 0; i < waiting_.size(); ++i)
        PutWaitingEntries(i);
}

void StoredTable::PutWaitingEntries(std::size_t index) {
    EntryBatch& waiting = waiting_[index];
    waiting.Sort();
    while (!waiting.IsEmpty()) {
        std::size_t done = 0;
        Undoably([&] {
            const auto inserted = Current().indexes[index]->Insert(waiting);
            Current().counters.CountNewKeys(index, inserted.newKeys);
            done = inserted.entries;
        });
        waiting.DropFirst(done);
    }
}

void StoredTable::ChangeKey(const KeyChange& change, RowId row) {
    Parts& parts = Current();
    TableIndex& index = *parts.indexes[change.index];
    if (change.before) index.Remove(*change.before, row);
    if (!change.after || !index.Lists(*change.after)) return;
    EntryBatch single;
    single.Add(change.after->bytes, row);
    parts.counters.CountNewKeys(change.index, index.Insert(single).newKeys);
}

std::int32_t StoredTable::NextAutoNumber() const {
    const std::int64_t next = NamingFile(file_, [&] {
        const TableCounters& counters = Current().counters;
        return std::int64_t{counters.AutoNumber()} + counters.AutoNumberStep();
    });
    if (next > std::numeric_limits<std::int32_t>::max() ||
        next < std::numeric_limits<std::int32_t>::min()) {
        throw Error(ErrorKind::Overflow,
                    "Table " + definition_.name + " has used up its auto-numbers.");
    }
    return static_cast<std::int32_t>(next);
}

void StoredTable::RaiseAutoNumber(std::int32_t number) {
    TableCounters& counters = Current().counters;
    const bool upwards = counters.AutoNumberStep() > 0;
    const auto last = counters.AutoNumber();
    if (upwards ? number > last : number < last) counters.SetAutoNumber(number);
}

}  // namespace jet::storage
