#include "app/journal/row_recorder.h"

#include <algorithm>
#include <string>
#include <utility>

#include "platform/ascii.h"
#include "platform/portable/jet_values.h"

namespace quillon {
namespace {

using Fields = std::span<const jet::Value>;

void Take(const jet::Value& value, const jet::ColumnDefinition& column, Value& into) {
    if (const auto* const bytes = std::get_if<jet::Bytes>(&value)) {
        into = std::string(bytes->begin(), bytes->end());
    } else {
        FromJet(value, column.name, into);
    }
}

/// The next element of a list that has the elements of an earlier one.
template <typename Element>
Element& Next(std::vector<Element>& list, std::size_t& used) {
    if (used == list.size()) list.emplace_back();
    return list[used++];
}

/// Most rows have the names of the one before.
void SetName(std::string& name, const std::string& wanted) {
    if (!ascii::AreSame(name, wanted)) name = wanted;
}

void TakeKey(RowChange& change, const jet::TableDefinition& table, Fields row) {
    std::size_t used = 0;
    const auto take = [&](std::size_t column) {
        auto& [name, value] = Next(change.key, used);
        SetName(name, table.columns[column].name);
        Take(row[column], table.columns[column], value);
    };
    const auto primary = std::ranges::find_if(
        table.indexes, [](const jet::IndexDefinition& index) { return index.primary; });
    if (primary == table.indexes.end()) {
        for (std::size_t i = 0; i < row.size(); ++i)
            take(i);
    } else {
        for (const jet::IndexColumn& part : primary->columns)
            take(part.column);
    }
    change.key.resize(used);
}

/// Those fields of a row that hold something, as what they are `before` or `after` the change.
void TakeFields(RowChange& change, const jet::TableDefinition& table, Fields row,
                Value FieldChange::* there, Value FieldChange::* gone) {
    std::size_t used = 0;
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (jet::IsNull(row[i])) continue;
        FieldChange& field = Next(change.fields, used);
        SetName(field.field, table.columns[i].name);
        Take(row[i], table.columns[i], field.*there);
        field.*gone = Null{};
    }
    change.fields.resize(used);
}

}  // namespace

/// The record of a row that is this before the change, or after it where it is new.
RowChange& RowRecorder::Begin(RowChange::Kind kind, const jet::TableDefinition& table, Fields row) {
    auto& change = std::get<RowChange>(record_);
    change.kind = kind;
    SetName(change.table, table.name);
    TakeKey(change, table, row);
    return change;
}

void RowRecorder::RowAdded(const jet::TableDefinition& table, Fields row) {
    RowChange& change = Begin(RowChange::Kind::Added, table, row);
    TakeFields(change, table, row, &FieldChange::after, &FieldChange::before);
    sink_.Note(record_);
}

void RowRecorder::RowChanged(const jet::TableDefinition& table, Fields before, Fields after) {
    RowChange& change = Begin(RowChange::Kind::Changed, table, before);
    std::size_t used = 0;
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (before[i] == after[i]) continue;
        FieldChange& field = Next(change.fields, used);
        SetName(field.field, table.columns[i].name);
        Take(before[i], table.columns[i], field.before);
        Take(after[i], table.columns[i], field.after);
    }
    change.fields.resize(used);
    sink_.Note(record_);
}

void RowRecorder::RowRemoved(const jet::TableDefinition& table, Fields row) {
    RowChange& change = Begin(RowChange::Kind::Removed, table, row);
    TakeFields(change, table, row, &FieldChange::before, &FieldChange::after);
    sink_.Note(record_);
}

void RowRecorder::DateReplaced(const jet::TableDefinition& table, const jet::ReplacedDate& date) {
    sink_.Note(quillon::DateReplaced{.table = table.name,
                                     .field = table.columns[date.column].name,
                                     .before = {date.before.days},
                                     .after = {date.after.days},
                                     .rows = date.rows});
}

}  // namespace quillon
