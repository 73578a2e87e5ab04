#include "app/journal/row_collector.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <string_view>

#include "platform/content_hash.h"
#include "undo/net_rows.h"

namespace quillon {
namespace {

using Kind = RowChange::Kind;

/// More than a text tells of one kind, since some may be taken back again.
constexpr std::size_t MostHeld = 300;

FieldChange* FieldOf(RowChange& change, const std::string& name) {
    const auto found = std::ranges::find(change.fields, name, &FieldChange::field);
    return found == change.fields.end() ? nullptr : &*found;
}

/// Whether it is one of those that a new row is told of by.
bool IsName(std::string_view field) {
    constexpr std::array<std::string_view, 10> Names{"Artist",    "Title",    "Album", "Song",
                                                     "SoundFile", "FileName", "Path",  "FilePath",
                                                     "Filename",  "Field"};
    return std::ranges::find(Names, field) != Names.end();
}

RowChange WithNamesOnly(const RowChange& change) {
    RowChange named{.kind = change.kind, .table = change.table, .key = change.key, .fields = {}};
    std::ranges::copy_if(change.fields, std::back_inserter(named.fields),
                         [](const FieldChange& field) { return IsName(field.field); });
    named.fields.shrink_to_fit();
    return named;
}

/// Both as one, the second coming later; nothing where they take each other back.
std::unique_ptr<RowChange> Together(std::unique_ptr<RowChange> first, const RowChange& second) {
    for (const FieldChange& field : second.fields) {
        if (FieldChange* const known = FieldOf(*first, field.field)) {
            known->after = field.after;
        } else if (first->kind != Kind::Added || IsName(field.field)) {
            first->fields.push_back(field);
        }
    }
    if (second.kind == Kind::Removed) {
        if (first->kind == Kind::Added) return nullptr;
        for (FieldChange& field : first->fields)
            field.after = Null{};
        first->kind = Kind::Removed;
    } else if (first->kind == Kind::Removed) {
        // A field that is not told of the new row is Null there.
        first->kind = Kind::Changed;
    }
    const std::string_view date = DateOfRowIn(first->table);
    std::erase_if(first->fields, [&](const FieldChange& field) {
        return field.before == field.after || (first->kind == Kind::Changed && field.field == date);
    });
    if (first->kind == Kind::Changed && first->fields.empty()) return nullptr;
    return first;
}

/// Of all that a row held, or holds, but for its date.
std::uint64_t HashOfRow(const RowChange& change, const Value FieldChange::* value) {
    std::string text;
    for (const FieldChange& field : change.fields)
        if (field.field != DateOfRowIn(change.table))
            AppendKeyField(text, field.field, field.*value);
    return ContentHash(text);
}

}  // namespace

std::uint64_t RowCollector::HashOfKey(const RowChange& change, bool after) {
    text_.assign(change.table);
    const std::string_view date = DateOfRowIn(change.table);
    for (const auto& [name, value] : change.key) {
        if (name == date) continue;
        const Value* present = &value;
        if (after && change.kind == Kind::Changed) {
            const auto field = std::ranges::find(change.fields, name, &FieldChange::field);
            if (field != change.fields.end()) present = &field->after;
        }
        AppendKeyField(text_, name, *present);
    }
    return ContentHash(text_);
}

/// There are few tables.
std::uint32_t RowCollector::PlaceOf(const std::string& table) {
    const auto found = std::ranges::find(tables_, table);
    if (found != tables_.end()) return static_cast<std::uint32_t>(found - tables_.begin());
    tables_.push_back(table);
    return static_cast<std::uint32_t>(tables_.size() - 1);
}

RowCollector::Entry RowCollector::Begin(const RowChange& change) {
    Entry entry{.state = Entry::State::Held, .table = PlaceOf(change.table), .row = nullptr};
    if (change.kind == Kind::Removed) {
        const auto others = asBefore_.find(change.table);
        if (others != asBefore_.end() && others->second.isKnown && others->second.rows != 0)
            --others->second.rows;
    }
    const bool isHeld =
        change.kind == Kind::Changed || held_[{entry.table, change.kind}]++ < MostHeld;
    if (isHeld) {
        entry.row = std::make_unique<RowChange>(change.kind == Kind::Added ? WithNamesOnly(change)
                                                                           : change);
    } else if (change.kind == Kind::Added) {
        entry.state = Entry::State::Added;
    } else {
        entry.state = Entry::State::Removed;
        entry.content = HashOfRow(change, &FieldChange::before);
    }
    return entry;
}

void RowCollector::PutTogether(Entry& entry, const RowChange& change) {
    using State = Entry::State;
    switch (entry.state) {
        case State::Nothing:
            entry = Begin(change);
            return;
        case State::Held: {
            const bool wasRemoved = entry.row->kind == Kind::Removed;
            entry.row = Together(std::move(entry.row), change);
            if (entry.row) return;
            entry.state = State::Nothing;
            if (wasRemoved) ComesBack(change.table);
            return;
        }
        case State::Added:
            if (change.kind == Kind::Removed) entry.state = State::Nothing;
            return;
        case State::Removed:
            break;
    }
    if (change.kind != Kind::Added) return;
    if (HashOfRow(change, &FieldChange::after) == entry.content) {
        entry.state = State::Nothing;
        ComesBack(change.table);
        return;
    }
    // What it held before is not known any more.
    entry = {.state = State::Held, .table = entry.table, .row = std::make_unique<RowChange>()};
    entry.row->table = change.table;
    entry.row->key = change.key;
}

/// That it is back is worth a word only where runs write their rows anew.
void RowCollector::ComesBack(const std::string& table) {
    if (!DateOfRowIn(table).empty()) ++asBefore_[table].rows;
}

void RowCollector::Add(const DateReplaced& date) {
    asBefore_[date.table] = {.isKnown = true, .rows = static_cast<std::size_t>(date.rows)};
}

void RowCollector::Add(const RowChange& change) {
    const std::uint64_t before = HashOfKey(change, false), after = HashOfKey(change, true);
    const auto known = places_.find(before);
    if (known == places_.end()) {
        places_.emplace(after, entries_.size());
        entries_.push_back(Begin(change));
        return;
    }
    const std::size_t place = known->second;
    if (after != before) {
        places_.erase(known);
        places_.emplace(after, place);
    }
    PutTogether(entries_[place], change);
}

void RowCollector::TakeInto(NetChanges& changes) {
    std::map<KindInTable, std::size_t> counts;
    for (Entry& entry : entries_) {
        if (entry.state == Entry::State::Held) changes.rows.push_back(std::move(*entry.row));
        if (entry.state == Entry::State::Added) ++counts[{entry.table, Kind::Added}];
        if (entry.state == Entry::State::Removed) ++counts[{entry.table, Kind::Removed}];
    }
    for (const auto& [kind, count] : counts)
        changes.furtherRows.push_back(
            {.kind = kind.second, .table = tables_[kind.first], .count = count});
    for (const auto& [table, rows] : asBefore_)
        if (rows.rows != 0) changes.asBefore.push_back({table, rows.rows});
    *this = {};
}

}  // namespace quillon
