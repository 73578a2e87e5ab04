#include "jet/engine/cursor.h"

#include <algorithm>

#include "jet/engine/change_group.h"
#include "jet/engine/convert.h"
#include "jet/engine/field_names.h"

namespace jet::engine {

Cursor::Cursor(std::shared_ptr<Session> session, std::string sql,
               std::span<const NamedValue> parameters)
    : session_(std::move(session)),
      selection_(*session_, std::move(sql), Selection::Yields::Keys, parameters),
      fields_(selection_.CurrentPlan()->translation.columns),
      place_(std::make_unique<Place>()) {
    const Plan& plan = *selection_.CurrentPlan();
    const auto& keyTables = plan.translation.keyTables;
    for (const std::size_t table : keyTables)
        place_->readers.emplace_back(session_->Statements(), *plan.tables[table]);
    for (const dialect::ResultColumn& field : fields_) {
        const auto slot = std::find(keyTables.begin(), keyTables.end(), field.source->table);
        sources_.push_back(
            {static_cast<std::size_t>(slot - keyTables.begin()), field.source->column});
    }
    selection_.Load();
}

void Cursor::Restart() {
    CancelUpdate();
    place_->rows.reset();
    place_->standing = Standing::Unknown;
}

void Cursor::Settle() const {
    if (place_->standing != Standing::Unknown) return;
    place_->rows =
        std::make_unique<KeyStream>(*session_, selection_.CurrentPlan(), selection_.Start());
    StandOn(0);
    if (place_->standing == Standing::AtEnd) place_->standing = Standing::Empty;
}

/// Goes to the row at this position, or to the first behind it that still exists.
void Cursor::StandOn(std::size_t position) const {
    Place& place = *place_;
    for (; place.rows->Has(position); ++position) {
        const auto keys = place.rows->Keys(position);
        place.keys.assign(keys.begin(), keys.end());
        place.position = position;
        if (place.rows->DeletionsNow() != place.rows->DeletionsBefore() && !IsWhole()) continue;
        place.standing = Standing::OnRow;
        return;
    }
    place.standing = Standing::AtEnd;
}

/// Whether the rows that make up the current one all exist still.
bool Cursor::IsWhole() const {
    for (std::size_t slot = 0; slot < place_->keys.size(); ++slot) {
        const RowKey key = place_->keys[slot];
        if (key != 0 && !place_->readers[slot].Stand(key)) return false;
    }
    return true;
}

bool Cursor::IsBof() const {
    Settle();
    return place_->standing == Standing::Empty;
}

bool Cursor::IsEof() const {
    Settle();
    return place_->standing == Standing::Empty || place_->standing == Standing::AtEnd;
}

void Cursor::MoveFirst() {
    Settle();
    if (place_->standing == Standing::Empty) RequireRow();
    Restart();
}

void Cursor::MoveNext() {
    CancelUpdate();
    if (IsEof()) RequireRow();
    if (!place_->rows) {  // an added row is the last one
        place_->standing = Standing::AtEnd;
    } else {
        StandOn(place_->position + 1);
    }
}

void Cursor::RequireRow() const {
    Settle();
    if (place_->standing == Standing::OnRow && IsWhole()) return;
    const bool none = place_->standing == Standing::Empty || place_->standing == Standing::AtEnd;
    throw Error(ErrorKind::NoCurrentRow,
                none ? "Either BOF or EOF is true: the operation needs a current row"
                     : "The current row has been deleted");
}

std::size_t Cursor::FieldIndex(std::string_view name) const {
    return FindField(fields_, name);
}

const ColumnDefinition& Cursor::Definition(std::size_t field) const {
    const Field& source = sources_.at(field);
    return place_->readers[source.slot].Table().Definition().columns[source.column];
}

const Value* Cursor::FindPending(std::size_t field) const {
    for (const auto& [changed, value] : pending_)
        if (changed == field) return &value;
    return nullptr;
}

Value Cursor::ReadStored(std::size_t field) const {
    const Field& source = sources_.at(field);
    if (place_->keys[source.slot] == 0) return Null{};
    return place_->readers[source.slot].Read(source.column);
}

/// What the row being added has in a field that nothing was assigned to.
Value Cursor::ValueOfNewRow(std::size_t field) const {
    const ColumnDefinition& column = Definition(field);
    if (column.autoNumber) return place_->readers.front().Table().NextAutoNumber();
    return ConvertToField(column, Null{});
}

Value Cursor::Get(std::size_t field) const {
    if (const Value* value = FindPending(field)) return *value;
    if (adding_) return ValueOfNewRow(field);
    RequireRow();
    return ReadStored(field);
}

void Cursor::Set(std::size_t field, const Value& value) {
    const ColumnDefinition& column = Definition(field);
    if (!adding_) {
        RequireRow();
        if (place_->keys[sources_[field].slot] == 0) {
            throw Error(ErrorKind::NoCurrentRow,
                        "The field '" + column.name + "' belongs to a row that the join lacks");
        }
        if (column.autoNumber) {
            throw Error(ErrorKind::NotSupported,
                        "The field '" + column.name +
                            "' is numbered by the database and cannot be changed");
        }
    }
    Value converted = ConvertToField(column, value);
    const auto found = std::find_if(pending_.begin(), pending_.end(),
                                    [field](const auto& change) { return change.first == field; });
    if (found != pending_.end()) {
        found->second = std::move(converted);
    } else {
        pending_.emplace_back(field, std::move(converted));
    }
}

void Cursor::AddNew() {
    if (place_->readers.size() != 1) {
        throw Error(ErrorKind::NotSupported,
                    "Rows cannot be added to a query over more than one table");
    }
    CancelUpdate();
    adding_ = true;
}

void Cursor::CancelUpdate() {
    adding_ = false;
    pending_.clear();
}

void Cursor::Update() {
    if (adding_) {
        InsertRow();
    } else if (!pending_.empty()) {
        RequireRow();
        ChangeRow();
    } else {
        return;
    }
    CancelUpdate();
    session_->AfterChange();
}

void Cursor::InsertRow() {
    MirrorTable& table = place_->readers.front().Table();
    storage::Row row(table.Definition().columns.size());
    for (const auto& [field, value] : pending_)
        row[sources_[field].column] = value;
    session_->BeforeChange(table);
    place_->keys.assign(1, table.Insert(row));
    table.Hold(place_->keys.front());
    if (place_->rows) place_->position = place_->rows->Append(place_->keys);
    place_->standing = Standing::OnRow;
}

void Cursor::ChangeRow() {
    struct Changes {
        std::vector<storage::FieldChange> changes, old;
    };
    std::vector<Changes> slots(place_->readers.size());
    for (auto& [field, value] : pending_) {
        const Field& source = sources_[field];
        Value stored = ReadStored(field);
        if (stored == value) continue;
        slots[source.slot].changes.push_back({source.column, value});
        slots[source.slot].old.push_back({source.column, std::move(stored)});
    }
    ChangeGroup group;
    for (std::size_t slot = 0; slot < slots.size(); ++slot) {
        if (slots[slot].changes.empty()) continue;
        MirrorTable& table = place_->readers[slot].Table();
        session_->BeforeChange(table);
        group.Update(table, place_->keys[slot], slots[slot].changes, std::move(slots[slot].old));
    }
    group.Keep();
}

void Cursor::Delete() {
    if (place_->readers.size() != 1) {
        throw Error(ErrorKind::NotSupported,
                    "Rows of a query over more than one table cannot be deleted through it");
    }
    CancelUpdate();
    RequireRow();
    MirrorTable& table = place_->readers.front().Table();
    session_->BeforeChange(table);
    table.Delete(place_->keys.front());
    place_->standing = Standing::OnDeletedRow;
    session_->AfterChange();
}

void Cursor::Filter(std::string_view criterion) {
    selection_.Filter(criterion);
    selection_.Load();
    Restart();
}

void Cursor::Sort(std::string_view order) {
    selection_.Sort(order);
    selection_.Load();
    Restart();
}

}  // namespace jet::engine
