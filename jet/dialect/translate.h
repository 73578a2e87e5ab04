#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "jet/dialect/functions.h"
#include "jet/dialect/syntax.h"
#include "jet/schema.h"

namespace jet::dialect {

/// Finds a table's definition, whatever the letter case; null if there is none. Definitions must
/// outlive the translation.
using Catalog = std::function<const TableDefinition*(std::string_view)>;

/// A condition that every row must meet to count: the column equals a number written in the
/// statement.
struct KeyCondition {
    std::size_t column = 0;
    std::size_t literal = 0;
    bool negated = false;  ///< a minus sign stands before the number
};

/// A table of the statement, subqueries included, and what would speed up finding its rows.
struct TableUse {
    const TableDefinition* definition = nullptr;
    bool isRead = true;                      ///< false: rows are added to it, none is looked at
    std::vector<std::size_t> columns;        ///< whose values the statement looks at
    std::vector<KeyCondition> keys;          ///< of a table that is its FROM's only one
    std::vector<std::size_t> equalColumns;   ///< compared for equality with something else
    std::vector<std::size_t> valueColumns;   ///< those of them that need no other table's rows
    std::vector<std::size_t> suffixColumns;  ///< looked up by the end of their text
    std::vector<std::string> indexes;        ///< lists of SQL expressions that want an index
};

/// A column of a table of the statement.
struct FieldSource {
    std::size_t table = 0;   ///< position in Translation::tables
    std::size_t column = 0;  ///< position in the table's definition
};

struct ResultColumn {
    std::string name;
    ValueKind kind = ValueKind::Any;
    std::optional<FieldSource> source;  ///< a plain column
};

/// What a parameter of the executed SQL is bound to.
struct Parameter {
    enum class Form {
        Value,
        SuffixFrom,  ///< the key of the text behind the pattern's %, as jet_suffix makes it
        SuffixTo,    ///< the first key behind all texts that end so
    };
    Form form = Form::Value;
    std::size_t literal = 0;
};

/// One table whose rows an UPDATE changes.
struct UpdateTarget {
    struct Assignment {
        std::size_t column = 0;  ///< position in the table's definition
        std::size_t value = 0;   ///< result column with the new value; the old one follows it
    };
    std::size_t table = 0;  ///< position in Translation::tables
    std::size_t key = 0;    ///< result column with the row's key
    std::vector<Assignment> assignments;
};

/// A statement as SQL for SQLite.
///
/// Each stored table is expected there under its own name (TableName()) with its columns and, as
/// integer primary key, KeyColumn: the row's place in the storage. Texts have the collation "jet".
struct Translation {
    enum class Kind { Query, Insert, Update, Delete };
    Kind kind = Kind::Query;
    std::string sql;
    std::vector<Parameter> parameters;  ///< of ?1, ?2 and so on
    std::vector<ResultColumn> columns;
    std::vector<TableUse> tables;
    std::vector<std::size_t> keyTables;  ///< of keys: position in `tables` of each
    std::vector<UpdateTarget> targets;   ///< of an UPDATE or INSERT
    bool ofAllRows = false;              ///< of a DELETE: all rows of its only table
    bool joinsQueries = false;           ///< a FROM has a subquery, over which no index can be made
};

/// No field of a Jet table can have this name.
inline constexpr std::string_view KeyColumn = "[row]";

/// A stored table's name in SQLite, quoted.
std::string TableName(std::string_view table);
/// A name between double quotes.
std::string QuotedName(std::string_view name);

/// All functions throw Error(NotFound) naming a table or field that does not exist, Error(Syntax)
/// for statements that make no sense, Error(NotSupported) for what is beyond this translator.

/// The rows of a query.
Translation TranslateQuery(const Select& select, const Catalog& catalog);

/// Whether each row of the result stands for one row of each table of its FROM.
bool HasRowKeys(const Select& select);

/// The keys of the rows that make up each row of the result, one for each table of its FROM;
/// `columns` describes the query's fields, which are not part of the result.
Translation TranslateKeys(const Select& select, const Catalog& catalog);

/// For each row: the keys, new and old values that `targets` describes.
Translation TranslateUpdate(const Update& update, const Catalog& catalog);

/// The keys of the rows to delete; `keyTables[0]` is their table.
Translation TranslateDelete(const Delete& deletion, const Catalog& catalog);

/// The values of the new rows; `keyTables[0]` is their table and `targets[0]` says to which of its
/// columns they go.
Translation TranslateInsert(const Insert& insert, const Catalog& catalog);

/// The query with a record set's Filter and Sort applied to its result.
Select Compose(Select base, std::optional<Expression> filter, std::vector<OrderItem> order);

}  // namespace jet::dialect
