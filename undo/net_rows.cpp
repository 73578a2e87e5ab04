#include "undo/net_rows.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace quillon {
namespace {

struct TextOfValue {
    std::string operator()(Null) const { return "-"; }
    std::string operator()(bool value) const { return value ? "yes" : "no"; }
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    std::string operator()(double value) const {
        return 'd' + std::to_string(std::bit_cast<std::uint64_t>(value));
    }
    std::string operator()(DateTime value) const { return 't' + (*this)(value.days); }
    std::string operator()(const std::string& value) const {
        return '"' + std::to_string(value.size()) + ':' + value;
    }
};

void PutKey(RowState& state, const FieldChange& field) {
    for (auto& [name, value] : state.key) {
        if (name == field.field) value = field.after;
    }
}

bool IsSame(const RowState& one, const RowState& other) {
    return one.exists == other.exists && (!one.exists || one == other);
}

}  // namespace

std::string KeyText(std::string_view table,
                    const std::vector<std::pair<std::string, Value>>& fields) {
    std::string text(table);
    for (const auto& [name, value] : fields)
        text += '\n' + name + '=' + std::visit(TextOfValue(), value);
    return text;
}

void NetRows::Add(const std::vector<ChangeRecord>& records) {
    ++run_;
    // What the run before did not save may be lost: nothing that comes later saves it.
    for (const std::size_t number : waiting_)
        entries_[number].waits = false;
    waiting_.clear();
    for (const ChangeRecord& record : records) {
        if (const auto* const change = std::get_if<RowChange>(&record)) Note(*change);
        if (std::holds_alternative<RowsSaved>(record)) Save();
    }
}

void NetRows::Note(const RowChange& change) {
    Entry& entry = EntryFor(change);
    const std::string keyBefore = KeyText(change.table, entry.row.now.key);
    Apply(entry, change);
    const auto number = static_cast<std::size_t>(&entry - entries_.data());
    const std::string keyNow = KeyText(change.table, entry.row.now.key);
    if (keyNow != keyBefore) {
        std::erase(byKey_[keyBefore], number);
        byKey_[keyNow].push_back(number);
    }
    entry.run = run_;
    if (!entry.waits) waiting_.push_back(number);
    entry.waits = true;
}

/// Of several rows with one key, which a table without a primary key can have, one that this can
/// have happened to.
NetRows::Entry& NetRows::EntryFor(const RowChange& change) {
    const bool isAdded = change.kind == RowChange::Kind::Added;
    std::vector<std::size_t>& known = byKey_[KeyText(change.table, change.key)];
    const auto fits = [&](std::size_t number) {
        const Entry& entry = entries_[number];
        // What an earlier run did not save may not have happened.
        const bool isSure = entry.run == run_ || entry.row.now.exists == entry.row.saved.exists;
        return !isSure || entry.row.now.exists != isAdded;
    };
    const auto found = std::ranges::find_if(known, fits);
    if (found != known.end()) return entries_[*found];

    const RowState state{.exists = !isAdded, .key = change.key, .fields = {}};
    known.push_back(entries_.size());
    entries_.push_back(
        {.row = {.table = change.table, .before = state, .now = state, .saved = state}});
    return entries_.back();
}

void NetRows::Apply(Entry& entry, const RowChange& change) {
    NetRow& row = entry.row;
    for (const FieldChange& field : change.fields) {
        // A field that has not been seen before was this all the time.
        if (row.before.exists) row.before.fields.try_emplace(field.field, field.before);
        if (row.saved.exists) row.saved.fields.try_emplace(field.field, field.before);
        row.now.fields[field.field] = field.after;
        if (change.kind == RowChange::Kind::Changed) PutKey(row.now, field);
    }
    row.now.exists = change.kind != RowChange::Kind::Removed;
    if (!row.now.exists) row.now.fields.clear();
}

void NetRows::Save() {
    for (const std::size_t number : waiting_) {
        entries_[number].row.saved = entries_[number].row.now;
        entries_[number].waits = false;
    }
    waiting_.clear();
}

std::vector<NetRow> NetRows::Take() {
    std::vector<NetRow> rows;
    for (Entry& entry : entries_) {
        NetRow& row = entry.row;
        if (IsSame(row.now, row.before) && IsSame(row.saved, row.before)) continue;
        rows.push_back(std::move(row));
    }
    entries_.clear();
    byKey_.clear();
    waiting_.clear();
    return rows;
}

}  // namespace quillon
