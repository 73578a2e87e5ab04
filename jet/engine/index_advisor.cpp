#include "jet/engine/index_advisor.h"

#include <algorithm>
#include <optional>
#include <random>
#include <utility>

#include "jet/engine/text_order.h"

namespace jet::engine {

namespace {

using dialect::QuotedName;
using dialect::TableName;

constexpr std::int64_t SampleSize = 256;
/// How many rows behind the place that was picked one is taken.
constexpr std::int64_t MostBeyond = 15;
/// An index over fewer values than this is not worth its memory. It may still help where most rows
/// have one value: the rows of the other values are found faster.
constexpr std::size_t FewestValues = 3;
/// An index that leaves no more rows than these needs no further column.
constexpr double FewRows = 4;

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
    Ensure(table, use.equalColumns, Best(table, use.equalColumns, known).columns, known);
}

void IndexAdvisor::PrepareEntry(const std::vector<dialect::TableUse>& uses,
                                const std::vector<MirrorTable*>& tables) {
    std::optional<std::size_t> entry;
    Choice best;
    for (std::size_t i = 0; i < tables.size(); ++i) {
        const MirrorTable& table = *tables[i];
        if (!uses[i].suffixColumns.empty()) return;
        if (uses[i].valueColumns.empty()) continue;
        if (table.RowCount() < SmallTable) return;
        Choice choice = Best(table, uses[i].valueColumns, known_[&table]);
        if (choice.columns.empty() || (entry && choice.rows >= best.rows)) continue;
        entry = i;
        best = std::move(choice);
    }
    if (!entry) return;
    const MirrorTable& table = *tables[*entry];
    Ensure(table, uses[*entry].valueColumns, best.columns, known_[&table]);
}

IndexAdvisor::Choice IndexAdvisor::Best(const MirrorTable& table, Columns lookedUp, Known& known) {
    std::erase_if(lookedUp, [&](std::size_t column) {
        return Selectivity(table, column, known).values < FewestValues;
    });
    std::ranges::sort(lookedUp, {}, [&](std::size_t column) {
        return std::pair(Selectivity(table, column, known).share, column);
    });
    if (lookedUp.empty()) return {};
    const double rows = RowsLeft(table, lookedUp.front(), known);
    // Which further column helps most cannot be told by its own values: all albums of a name may be
    // of one artist.
    if (rows <= FewRows) lookedUp.resize(1);
    return {.columns = std::move(lookedUp), .rows = rows};
}

double IndexAdvisor::RowsLeft(const MirrorTable& table, std::size_t column, Known& known) {
    return Selectivity(table, column, known).share * static_cast<double>(table.RowCount());
}

void IndexAdvisor::Ensure(const MirrorTable& table, const Columns& lookedUp, const Columns& best,
                          Known& known) {
    if (best.empty()) return;
    const bool isServed = std::ranges::any_of(known.equal, [&](const Columns& index) {
        const auto isIn = [](const Columns& columns) {
            return [&columns](std::size_t column) { return Contains(columns, column); };
        };
        return std::ranges::all_of(index, isIn(lookedUp)) &&
               (std::ranges::all_of(best, isIn(index)) ||
                RowsLeft(table, index.front(), known) <= FewRows);
    });
    if (isServed) return;
    std::string names;
    for (const std::size_t column : best)
        names += (names.empty() ? "" : ",") + ColumnName(table, column);
    Create(table, names);
    known.equal.push_back(best);
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
        statements_.Take("SELECT " + QuotedName(definition.columns[column].name) + " FROM " + name +
                         " WHERE " + key + ">=?1 LIMIT 1 OFFSET ?2");
    std::unordered_map<std::string, int> counts;
    double taken = 0;
    // Rows of one value often stand together, so a step that is always the same would pass over
    // them; and keys have gaps, behind which the same row would be met again and again. The
    // generator begins as it always does: what is measured twice is the same.
    std::minstd_rand random;
    std::uniform_int_distribution<RowKey> keys(first, last), beyond(0, MostBeyond);
    for (std::int64_t i = 0; i < SampleSize; ++i) {
        row->Reset();
        row->Bind(1, keys(random));
        row->Bind(2, beyond(random));
        if (!row->Step()) continue;
        ++counts[FoldCase(row->Text(0))];
        ++taken;
    }
    // Pairs of rows with one value, of all pairs.
    double pairs = 0;
    for (const auto& [value, count] : counts)
        pairs += static_cast<double>(count) * (count - 1);
    return {.share = taken < 2 ? 1 : pairs / (taken * (taken - 1)), .values = counts.size()};
}

void IndexAdvisor::Create(const MirrorTable& table, const std::string& columns) {
    const std::string name = TableName(table.Definition().name);
    sqlite_.Execute("CREATE INDEX \"[index " + std::to_string(created_++) + "]\" ON " + name + "(" +
                    columns + ")");
    sqlite_.Execute("ANALYZE " + name);
}

}  // namespace jet::engine
