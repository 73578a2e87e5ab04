#include "undo/net_rows.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>

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

/// Puts another date in the place of one that the state has; whether it has it.
bool ReplaceDate(RowState& state, const std::string& field, DateTime before, DateTime after) {
    if (!state.exists) return false;
    bool isFound = false;
    const Value old = before;
    for (auto& [name, value] : state.key) {
        if (name != field || value != old) continue;
        value = after;
        isFound = true;
    }
    const auto known = state.fields.find(field);
    if (known != state.fields.end() && known->second == old) {
        state.fields.Set(field, after);
        isFound = true;
    }
    return isFound;
}

bool IsSame(const RowState& one, const RowState& other) {
    return one.exists == other.exists && (!one.exists || one == other);
}

}  // namespace

void AppendKeyField(std::string& text, std::string_view name, const Value& value) {
    text += '\n';
    text += name;
    text += '=';
    text += std::visit(TextOfValue(), value);
}

std::string KeyText(std::string_view table,
                    const std::vector<std::pair<std::string, Value>>& fields) {
    std::string text(table);
    for (const auto& [name, value] : fields)
        AppendKeyField(text, name, value);
    return text;
}

void NetRows::StartRun() {
    ++run_;
    // What the run before did not save may be lost: nothing that comes later saves it.
    for (const std::size_t number : waiting_)
        entries_[number].waits = false;
    waiting_.clear();
}

void NetRows::Add(const ChangeRecord& record) {
    if (const auto* const change = std::get_if<RowChange>(&record)) Note(*change);
    if (const auto* const date = std::get_if<DateReplaced>(&record)) Note(*date);
    if (std::holds_alternative<RowsSaved>(record)) Save();
}

void NetRows::Note(const RowChange& change) {
    const std::size_t number = EntryFor(change);
    Entry& entry = entries_[number];
    const std::string keyBefore = KeyText(change.table, entry.row.now.key);
    KeepSaved(entry);
    Apply(entry, change);
    const std::string keyNow = KeyText(change.table, entry.row.now.key);
    if (keyNow != keyBefore) {
        std::erase(byKey_[keyBefore], number);
        byKey_[keyNow].push_back(number);
    }
    Wait(number);
}

/// What the row is in the database, before its first change since the last save.
void NetRows::KeepSaved(Entry& entry) {
    if (entry.Saved() != nullptr) return;
    const bool isNew = entry.row.before.fields.empty() && entry.row.now == entry.row.before;
    if (isNew && dates_.empty())
        entry.isSavedAsBefore = true;
    else
        entry.row.saved = entry.row.now;
}

/// For the next save.
void NetRows::Wait(std::size_t number) {
    Entry& entry = entries_[number];
    entry.run = run_;
    if (!entry.waits) waiting_.push_back(number);
    entry.waits = true;
}

void NetRows::Note(const DateReplaced& date) {
    for (std::size_t number = 0; number < entries_.size(); ++number) {
        Entry& entry = entries_[number];
        if (entry.row.table != date.table) continue;
        if (std::exchange(entry.isSavedAsBefore, false)) entry.row.saved = entry.row.before;
        const std::string keyBefore = KeyText(date.table, entry.row.now.key);
        if (!FollowDate(entry, date)) continue;
        const std::string keyNow = KeyText(date.table, entry.row.now.key);
        if (keyNow != keyBefore) {
            std::erase(byKey_[keyBefore], number);
            byKey_[keyNow].push_back(number);
        }
        Wait(number);
    }
    const bool isPutBack = !dates_.empty() && dates_.back().table == date.table &&
                           dates_.back().field == date.field &&
                           dates_.back().before == date.after && dates_.back().after == date.before;
    if (isPutBack) {
        dates_.pop_back();
    } else {
        dates_.push_back(date);
    }
}

/// Whether the row has the date that is replaced, perhaps since a run before did not save what it
/// had changed.
bool NetRows::FollowDate(Entry& entry, const DateReplaced& date) const {
    NetRow& row = entry.row;
    RowState now = row.now;
    if (!ReplaceDate(now, date.field, date.before, date.after)) {
        if (!row.saved || entry.run == run_) return false;
        now = *row.saved;
        if (!ReplaceDate(now, date.field, date.before, date.after)) return false;
        row.now = *row.saved;
    }
    if (!row.saved) row.saved = row.now;
    row.now = std::move(now);
    return true;
}

/// What a field held before dates were replaced. A row that is met late has had its dates replaced
/// as all others.
Value NetRows::AsBefore(const std::string& table, const std::string& field, Value value) const {
    for (auto date = dates_.rbegin(); date != dates_.rend(); ++date)
        if (date->table == table && date->field == field && value == Value(date->after))
            value = date->before;
    return value;
}

/// Of several rows with one key, which a table without a primary key can have, one that this can
/// have happened to.
std::size_t NetRows::EntryFor(const RowChange& change) {
    const bool isAdded = change.kind == RowChange::Kind::Added;
    std::vector<std::size_t>& known = byKey_[KeyText(change.table, change.key)];
    const auto fits = [&](std::size_t number) {
        const Entry& entry = entries_[number];
        // What an earlier run did not save may not have happened.
        const bool isSure = entry.run == run_ || entry.Saved() == nullptr ||
                            entry.row.now.exists == entry.Saved()->exists;
        return !isSure || entry.row.now.exists != isAdded;
    };
    const auto found = std::ranges::find_if(known, fits);
    if (found != known.end()) return *found;

    const RowState state{.exists = !isAdded, .key = change.key, .fields = {}};
    RowState before = state;
    for (auto& [name, value] : before.key)
        if (before.exists) value = AsBefore(change.table, name, std::move(value));
    known.push_back(entries_.size());
    entries_.push_back(
        {.row = {.table = change.table, .before = std::move(before), .now = state, .saved = {}}});
    return entries_.size() - 1;
}

void NetRows::Apply(Entry& entry, const RowChange& change) {
    NetRow& row = entry.row;
    for (const FieldChange& field : change.fields) {
        // A field that has not been seen before was this all the time.
        if (row.before.exists) {
            row.before.fields.SetIfNew(field.field,
                                       AsBefore(change.table, field.field, field.before));
        }
        if (row.saved && row.saved->exists) row.saved->fields.SetIfNew(field.field, field.before);
        row.now.fields.Set(field.field, field.after);
        if (change.kind == RowChange::Kind::Changed) PutKey(row.now, field);
    }
    row.now.exists = change.kind != RowChange::Kind::Removed;
    if (!row.now.exists) row.now.fields.clear();
    row.now.fields.ShrinkToFit();
    row.before.fields.ShrinkToFit();
}

void NetRows::Save() {
    for (const std::size_t number : waiting_) {
        entries_[number].row.saved.reset();
        entries_[number].isSavedAsBefore = false;
        entries_[number].waits = false;
    }
    waiting_.clear();
}

/// Where no more is different than dates that are put back for all rows.
bool NetRows::IsAsBefore(const NetRow& row, const RowState& state) const {
    if (dates_.empty()) return IsSame(state, row.before);
    RowState first{.exists = state.exists, .key = state.key, .fields = {}};
    for (auto& [name, value] : first.key)
        value = AsBefore(row.table, name, std::move(value));
    for (const auto& [name, value] : state.fields)
        first.fields.Set(name, AsBefore(row.table, std::string(name), value));
    return IsSame(first, row.before);
}

std::vector<NetRow> NetRows::Take() {
    byKey_ = {};
    waiting_ = {};
    std::vector<NetRow> rows;
    rows.reserve(entries_.size());
    for (; !entries_.empty(); entries_.pop_front()) {
        NetRow& row = entries_.front().row;
        if (IsAsBefore(row, row.now) && (!row.saved || IsAsBefore(row, *row.saved))) continue;
        rows.push_back(std::move(row));
    }
    return rows;
}

}  // namespace quillon
