#include "jet/engine/index_advisor.h"

#include <algorithm>
#include <optional>

#include "jet/engine/text_order.h"

namespace jet::engine {

namespace {

using dialect::QuotedName;
using dialect::TableName;

constexpr std::int64_t SampleSize = 256;
/// An index over fewer values than this is not worth its memory. It may still help where most rows
/// have one value: the rows of the other values are found faster.
constexpr std::size_t FewestValues = 3;
/// An existing index serves as long as the best one would not be better by this factor.
constexpr double GoodEnough = 4;

bool Contains(const std::vector<std::size_t>& columns, std::size_t column) {
    return std::find(columns.begin(), columns.end(), column) != columns.end();
}

std::string ColumnName(const MirrorTable& table, std::size_t column) {
    return QuotedName(table.Definition().columns[column].name);
}

bool IsUniqueAlone(const TableDefinition& definition, std::size_t column) {
    return std::any_of(definition.indexes.begin(), definition.indexes.end(),
                       [column](const IndexDefinition& index) {
                           return (index.unique || index.primary) && index.columns.size() == 1 &&
                                  index.columns.front().column == column;
                       });
}

}  // namespace

void IndexAdvisor::Prepare(const dialect::TableUse& use, const MirrorTable& table) {
    if (table.RowCount() < SmallTable) return;
    Known& known = known_[&table];
    if (known.generation != table.Generation()) {
        known.generation = table.Generation();
        known.columns.clear();
        if (!known.equal.empty() || !known.suffix.empty() || !known.lists.empty())
            sqlite_.Execute("ANALYZE " + TableName(table.Definition().name));
    }
    for (const std::size_t column : use.suffixColumns) {
        if (Contains(known.suffix, column)) continue;
        Create(table, "jet_suffix(" + ColumnName(table, column) + ")");
        known.suffix.push_back(column);
    }
    for (const std::string& list : use.indexes) {
        if (std::find(known.lists.begin(), known.lists.end(), list) != known.lists.end()) continue;
        Create(table, list);
        known.lists.push_back(list);
    }
    PrepareEqual(use, table, known);
}

void IndexAdvisor::PrepareEqual(const dialect::TableUse& use, const MirrorTable& table,
                                Known& known) {
    const auto better = [&](std::size_t a, std::size_t b) {
        return Selectivity(table, a, known).share < Selectivity(table, b, known).share;
    };
    const auto& columns = use.equalColumns;
    const auto best = std::min_element(columns.begin(), columns.end(), better);
    if (best == columns.end() || Contains(known.equal, *best)) return;
    const ColumnSelectivity& found = Selectivity(table, *best, known);
    if (found.values < FewestValues) return;
    const bool served = std::any_of(columns.begin(), columns.end(), [&](std::size_t column) {
        return Contains(known.equal, column) &&
               Selectivity(table, column, known).share <= GoodEnough * found.share;
    });
    if (served) return;
    Create(table, ColumnName(table, *best));
    known.equal.push_back(*best);
}

void IndexAdvisor::PrepareEntry(const std::vector<dialect::TableUse>& uses,
                                const std::vector<MirrorTable*>& tables) {
    std::optional<std::size_t> entry;
    std::size_t entryColumn = 0;
    double fewest = 0;
    for (std::size_t i = 0; i < tables.size(); ++i) {
        const MirrorTable& table = *tables[i];
        if (!uses[i].suffixColumns.empty()) return;
        if (uses[i].valueColumns.empty()) continue;
        if (table.RowCount() < SmallTable) return;
        Known& known = known_[&table];
        for (const std::size_t column : uses[i].valueColumns) {
            const ColumnSelectivity& found = Selectivity(table, column, known);
            if (found.values < FewestValues) continue;
            if (Contains(known.equal, column)) return;
            const double matches = found.share * static_cast<double>(table.RowCount());
            if (entry && matches >= fewest) continue;
            entry = i;
            entryColumn = column;
            fewest = matches;
        }
    }
    if (!entry) return;
    Create(*tables[*entry], ColumnName(*tables[*entry], entryColumn));
    known_[tables[*entry]].equal.push_back(entryColumn);
}

const ColumnSelectivity& IndexAdvisor::Selectivity(const MirrorTable& table, std::size_t column,
                                                   Known& known) {
    if (const auto found = known.columns.find(column); found != known.columns.end())
        return found->second;
    const bool unique = IsUniqueAlone(table.Definition(), column);
    const auto values = static_cast<std::size_t>(table.RowCount());
    return known.columns
        .emplace(column,
                 unique ? ColumnSelectivity{.share = 0, .values = values} : Sample(table, column))
        .first->second;
}

ColumnSelectivity IndexAdvisor::Sample(const MirrorTable& table, std::size_t column) {
    const TableDefinition& definition = table.Definition();
    const std::string name = TableName(definition.name);
    const std::string key = QuotedName(dialect::KeyColumn);
    StatementLease range =
        statements_.Take("SELECT min(" + key + "),max(" + key + ") FROM " + name);
    range->Step();
    const RowKey first = range->Integer(0), last = range->Integer(1);
    StatementLease row =
        statements_.Take("SELECT " + key + "," + QuotedName(definition.columns[column].name) +
                         " FROM " + name + " WHERE " + key + ">=?1 LIMIT 1");
    std::unordered_map<std::string, int> counts;
    double taken = 0;
    RowKey next = first;
    for (std::int64_t i = 0; i < SampleSize; ++i) {
        next = std::max(next, first + (last - first) / SampleSize * i);
        row->Reset();
        row->Bind(1, next);
        if (!row->Step()) break;
        next = row->Integer(0) + 1;
        ++counts[FoldCase(row->Text(1))];
        ++taken;
    }
    double squares = 0;
    for (const auto& [value, count] : counts)
        squares += static_cast<double>(count) * count;
    return {.share = taken == 0 ? 1 : squares / (taken * taken), .values = counts.size()};
}

void IndexAdvisor::Create(const MirrorTable& table, const std::string& columns) {
    const std::string name = TableName(table.Definition().name);
    sqlite_.Execute("CREATE INDEX \"[index " + std::to_string(created_++) + "]\" ON " + name + "(" +
                    columns + ")");
    sqlite_.Execute("ANALYZE " + name);
}

}  // namespace jet::engine
