#include "undo/row_undo.h"

#include <algorithm>
#include <array>
#include <set>
#include <unordered_map>
#include <utility>

#include "platform/basic_text.h"
#include "undo/kept_albums.h"

namespace quillon {
namespace {

using Step = RowUndo::Step;
using Work = Step::Work;

/// Present rows of one table, as far as they have keys that somebody asks for.
class PresentRows {
  public:
    struct Row {
        RowKey key{};
        std::vector<const RowState*> met;  ///< the states of this key that it is in
        FieldMap fields = {};              ///< of a row that is in none
        bool isTaken = false;

        bool IsAs(const RowState& state) const { return std::ranges::count(met, &state) > 0; }
    };

    /// The state must outlive this object.
    void Want(std::string_view table, const RowState& state) {
        wanted_[KeyText(table, state.key)].states.push_back(&state);
        if (keyFields_.empty()) {
            for (const auto& [name, value] : state.key)
                keyFields_.push_back(name);
        }
        for (const auto& [name, value] : state.key)
            fields_.insert(name);
        for (const auto& [name, value] : state.fields)
            fields_.emplace(name);
    }

    void Read(Connection& connection, std::string_view table) {
        const std::vector<std::string> names(fields_.begin(), fields_.end());
        const std::vector<std::string_view> fields(names.begin(), names.end());
        std::vector<std::pair<std::string, Value>> key;
        key.reserve(keyFields_.size());
        for (const std::string& name : keyFields_)
            key.emplace_back(name, Null());
        connection.Scan(table, fields, [&](RowKey row, std::span<const Value> values) {
            for (auto& [name, value] : key)
                value = values[PlaceIn(names, name)];
            const auto found = wanted_.find(KeyText(table, key));
            if (found != wanted_.end()) Keep(found->second, row, names, values);
        });
    }

    /// The rows with a key that no other step is about.
    std::vector<Row*> With(std::string_view table,
                           const std::vector<std::pair<std::string, Value>>& key) {
        std::vector<Row*> free;
        for (Row& row : wanted_[KeyText(table, key)].rows)
            if (!row.isTaken) free.push_back(&row);
        return free;
    }

  private:
    struct Wanted {
        std::vector<const RowState*> states;
        std::vector<Row> rows;
    };

    static std::size_t PlaceIn(const std::vector<std::string>& names, std::string_view name) {
        return static_cast<std::size_t>(std::ranges::lower_bound(names, name) - names.begin());
    }
    static void Keep(Wanted& wanted, RowKey key, const std::vector<std::string>& names,
                     std::span<const Value> values) {
        Row& row = wanted.rows.emplace_back(Row{.key = key, .met = {}});
        for (const RowState* const state : wanted.states) {
            const bool isMet = std::ranges::all_of(state->fields, [&](const auto& field) {
                return values[PlaceIn(names, field.first)] == field.second;
            });
            if (state->exists && isMet) row.met.push_back(state);
        }
        if (!row.met.empty()) return;
        for (std::size_t i = 0; i < names.size(); ++i)
            row.fields.Set(names[i], values[i]);
    }

    std::set<std::string> fields_;
    std::vector<std::string> keyFields_;
    std::unordered_map<std::string, Wanted> wanted_;
};

std::string ShownText(const Value& value) {
    struct Shown {
        std::string operator()(Null) const { return "Null"; }
        std::string operator()(bool yes) const { return yes ? "True" : "False"; }
        std::string operator()(std::int64_t number) const { return std::to_string(number); }
        std::string operator()(double number) const { return std::to_string(number); }
        std::string operator()(DateTime) const { return "another date"; }
        std::string operator()(const std::string& text) const { return '"' + text + '"'; }
    };
    return std::visit(Shown(), value);
}

/// The first field that is not what the state says; nothing where all are.
std::optional<std::string> DifferingField(const PresentRows::Row& row, const RowState& state) {
    for (const auto& [name, value] : state.fields) {
        const auto found = row.fields.find(name);
        if (found != row.fields.end() && found->second != value) return std::string(name);
    }
    return std::nullopt;
}

Outcome ChangedSince(PresentRows& rows, const NetRow& row) {
    const std::vector<PresentRows::Row*> there = rows.With(row.table, row.now.key);
    if (there.empty()) return Outcome::Refusal("it has been removed since");
    if (!row.now.exists) return Outcome::Refusal("there is a row with its key again");
    const std::optional<std::string> field = DifferingField(*there.front(), row.now);
    if (!field) return Outcome::Refusal("it has been changed since");
    return Outcome::Refusal(*field + " has been changed since, to " +
                            ShownText(there.front()->fields.at(*field)));
}

/// What leads from one state to another.
Work WorkFor(const RowState& now, const RowState& before) {
    if (now.exists) return before.exists ? Work::Update : Work::Delete;
    return before.exists ? Work::Insert : Work::None;
}

/// Whether the table is as the state says; the row that shows it, where there is one.
std::pair<bool, PresentRows::Row*> Meets(PresentRows& rows, std::string_view table,
                                         const RowState& state) {
    const std::vector<PresentRows::Row*> there = rows.With(table, state.key);
    if (!state.exists) return {there.empty(), nullptr};
    const auto found = std::ranges::find_if(
        there, [&state](const PresentRows::Row* row) { return row->IsAs(state); });
    return {found != there.end(), found == there.end() ? nullptr : *found};
}

/// A row that was not there is gone when nothing has the key that it got.
std::pair<bool, PresentRows::Row*> IsAsBefore(PresentRows& rows, const NetRow& row) {
    if (row.before.exists) return Meets(rows, row.table, row.before);
    return {rows.With(row.table, row.now.key).empty(), nullptr};
}

/// How far a run may have got with the row.
std::vector<const RowState*> StatesSince(const NetRow& row) {
    std::vector<const RowState*> states{&row.now};
    if (row.saved) states.push_back(&*row.saved);
    return states;
}

void Decide(PresentRows& rows, Step& step) {
    const NetRow& row = *step.row;
    const auto take = [](PresentRows::Row* present) {
        if (present != nullptr) present->isTaken = true;
    };
    if (const auto [isMet, present] = IsAsBefore(rows, row); isMet) {
        step.outcome = {.state = Outcome::State::WasSo};
        return take(present);
    }
    for (const RowState* const state : StatesSince(row)) {
        const auto [isMet, present] = Meets(rows, row.table, *state);
        if (!isMet) continue;
        step.work = WorkFor(*state, row.before);
        if (present != nullptr) step.key = present->key;
        return take(present);
    }
    step.outcome = ChangedSince(rows, row);
}

bool NamesFileThatStays(const NetRow& row, const RowUndo::StaysAt& stays) {
    const auto names = [&](const auto& field) {
        const auto* const text = std::get_if<std::string>(&field.second);
        return text != nullptr && stays(*text);
    };
    return std::ranges::any_of(row.now.fields, names) ||
           std::ranges::any_of(row.before.fields, names);
}

/// The fields that have become other ones.
std::vector<std::string> ChangedFields(const NetRow& row) {
    std::vector<std::string> names;
    for (const auto& [name, value] : row.before.fields) {
        const auto now = row.now.fields.find(name);
        if (now != row.now.fields.end() && now->second != value) names.emplace_back(name);
    }
    return names;
}

/// Values for a field that had this one, which no other row has; a field may be too small for the
/// first of them.
std::vector<Value> Strangers(const Value& held, std::int64_t number) {
    constexpr std::int64_t LeastLong = -2'147'483'647, LeastShort = -32'767;
    if (std::holds_alternative<std::string>(held)) return {'~' + std::to_string(number), Null()};
    if (std::holds_alternative<std::int64_t>(held))
        return {LeastLong + number, LeastShort + number, Null()};
    return {Null()};
}

}  // namespace

std::unordered_set<std::string> TextsOfRefused(std::span<const Step> steps) {
    std::unordered_set<std::string> texts;
    for (const Step& step : steps) {
        if (step.outcome.state != Outcome::State::Refused) continue;
        for (const RowState* const state : {&step.row->now, &step.row->before})
            for (const auto& [name, value] : state->fields)
                if (const auto* const text = std::get_if<std::string>(&value))
                    texts.insert(LowerCase(*text));
    }
    return texts;
}

std::string NameOf(const NetRow& row, const std::string& called) {
    std::string name = "row of " + row.table;
    const RowState& state = row.before.exists ? row.before : row.now;
    if (state.key.size() == 1) name += ' ' + ShownText(state.key.front().second);
    if (!called.empty()) return name + " (" + called + ')';
    for (const char* const field : {"Title", "Song", "Artist"}) {
        const auto found = state.fields.find(field);
        if (found == state.fields.end() || IsNull(found->second)) continue;
        return name + " (" + ShownText(found->second) + ')';
    }
    return name;
}

RowUndo::RowUndo(Connection& connection, std::span<const NetRow> rows,
                 std::span<const DateReplaced> dates)
    : connection_(connection), dates_(WayBackOf(connection, dates)) {
    std::set<std::string> tables;
    steps_.reserve(rows.size());
    for (const NetRow& row : rows) {
        steps_.push_back({.row = &row});
        tables.insert(row.table);
    }
    for (const std::string& table : tables)
        LookAtTable(table);
}

void RowUndo::LookAtTable(std::string_view table) {
    PresentRows rows;
    for (const Step& step : steps_) {
        if (step.row->table != table) continue;
        rows.Want(table, step.row->before);
        for (const RowState* const state : StatesSince(*step.row))
            rows.Want(table, *state);
    }
    rows.Read(connection_, table);
    for (Step& step : steps_)
        if (step.row->table == table) Decide(rows, step);
}

void RowUndo::HoldBack(const StaysAt& stays) {
    for (Step& step : steps_) {
        if (step.work == Work::None) continue;
        step.isHeldBack = NamesFileThatStays(*step.row, stays);
        step.outcome = step.isHeldBack ? Outcome::Refusal("its file stays as it is") : Outcome{};
    }
    for (Step* const album : AlbumsOfTracksThatStay(connection_, steps_)) {
        album->isHeldBack = true;
        album->outcome = Outcome::Refusal("tracks of it stay as they are");
    }
}

void RowUndo::CarryOut(const Attempt& attempt) {
    // Keys that come back may be those of rows that go.
    for (const Work work : {Work::Delete, Work::Update, Work::Insert}) {
        std::vector<Step*> left;
        for (Step& step : steps_)
            if (step.work == work && step.IsToDo()) left.push_back(&step);
        DoAll(left, attempt);
        // Rows that come back have the dates of then, which no other row may have before.
        if (work == Work::Delete) PutBack(connection_, dates_, attempt);
        if (work != Work::Update || left.empty()) continue;
        StepAside(left, attempt);
        DoAll(left, attempt);
        BringBack(left);
    }
}

/// A change that waits for another one's old key is tried again.
void RowUndo::DoAll(std::vector<Step*>& left, const Attempt& attempt) {
    for (std::size_t before = left.size() + 1; !left.empty() && left.size() < before;) {
        before = left.size();
        std::erase_if(left, [&](Step* step) { return Do(*step, attempt); });
    }
}

void RowUndo::StepAside(const std::vector<Step*>& rows, const Attempt& attempt) {
    std::int64_t number = 0;
    for (const Step* const step : rows) {
        ++number;
        const auto takes = [&](const std::string& field, const Value& value) {
            const FieldValue stranger{field, value};
            return attempt([&] {
                       connection_.Update(step->row->table, step->key, std::span(&stranger, 1));
                   })
                .empty();
        };
        for (const std::string& field : ChangedFields(*step->row))
            for (const Value& value : Strangers(step->row->now.fields.at(field), number))
                if (takes(field, value)) break;
    }
}

void RowUndo::BringBack(const std::vector<Step*>& rows) {
    for (const Step* const step : rows) {
        std::vector<FieldValue> fields;
        const std::vector<std::string> names = ChangedFields(*step->row);
        fields.reserve(names.size());
        for (const std::string& name : names)
            fields.push_back({name, step->row->now.fields.at(name)});
        connection_.Update(step->row->table, step->key, fields);
    }
}

bool RowUndo::Do(Step& step, const Attempt& attempt) {
    const std::string failure = attempt([&] { Change(step); });
    step.outcome = failure.empty() ? Outcome{} : Outcome::Refusal(failure);
    return failure.empty();
}

void RowUndo::Change(const Step& step) {
    if (step.work == Work::Delete) return connection_.Delete(step.row->table, step.key);
    std::vector<FieldValue> fields;
    fields.reserve(step.row->before.fields.size());
    for (const auto& [name, value] : step.row->before.fields)
        fields.push_back({name, value});
    if (step.work == Work::Insert) {
        connection_.Insert(step.row->table, fields);
    } else {
        connection_.Update(step.row->table, step.key, fields);
    }
}

}  // namespace quillon
