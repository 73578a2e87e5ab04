#include "app/journal/row_recorder.h"

#include <algorithm>
#include <string>
#include <utility>

#include "platform/portable/jet_values.h"

namespace quillon {
namespace {

using Fields = std::span<const jet::Value>;

Value ValueOf(const jet::Value& value, const jet::ColumnDefinition& column) {
    if (const auto* const bytes = std::get_if<jet::Bytes>(&value))
        return std::string(bytes->begin(), bytes->end());
    return FromJet(value, column.name);
}

/// The change of a row that is this before it, or after it where it is new.
RowChange ChangeOf(RowChange::Kind kind, const jet::TableDefinition& table, Fields row) {
    RowChange change{.kind = kind, .table = table.name, .key = {}, .fields = {}};
    const auto add = [&](std::size_t column) {
        change.key.emplace_back(table.columns[column].name,
                                ValueOf(row[column], table.columns[column]));
    };
    const auto primary = std::ranges::find_if(
        table.indexes, [](const jet::IndexDefinition& index) { return index.primary; });
    if (primary == table.indexes.end()) {
        for (std::size_t i = 0; i < row.size(); ++i)
            add(i);
    } else {
        for (const jet::IndexColumn& part : primary->columns)
            add(part.column);
    }
    return change;
}

/// Those fields of a row that hold something.
void AddFields(RowChange& change, const jet::TableDefinition& table, Fields row, auto fieldOf) {
    for (std::size_t i = 0; i < row.size(); ++i) {
        const jet::ColumnDefinition& column = table.columns[i];
        if (jet::IsNull(row[i])) continue;
        change.fields.push_back(fieldOf(column.name, ValueOf(row[i], column)));
    }
}

}  // namespace

void RowRecorder::RowAdded(const jet::TableDefinition& table, Fields row) {
    RowChange change = ChangeOf(RowChange::Kind::Added, table, row);
    AddFields(change, table, row, [](std::string name, Value value) {
        return FieldChange{std::move(name), Null{}, std::move(value)};
    });
    sink_.Note(std::move(change));
}

void RowRecorder::RowChanged(const jet::TableDefinition& table, Fields before, Fields after) {
    RowChange change = ChangeOf(RowChange::Kind::Changed, table, before);
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (before[i] == after[i]) continue;
        const jet::ColumnDefinition& column = table.columns[i];
        change.fields.push_back(
            {column.name, ValueOf(before[i], column), ValueOf(after[i], column)});
    }
    sink_.Note(std::move(change));
}

void RowRecorder::RowRemoved(const jet::TableDefinition& table, Fields row) {
    RowChange change = ChangeOf(RowChange::Kind::Removed, table, row);
    AddFields(change, table, row, [](std::string name, Value value) {
        return FieldChange{std::move(name), std::move(value), Null{}};
    });
    sink_.Note(std::move(change));
}

}  // namespace quillon
