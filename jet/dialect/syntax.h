#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "jet/dialect/functions.h"

namespace jet::dialect {

struct Select;

/// A node of an expression. Which members count depends on the kind.
struct Expression {
    enum class Kind {
        Parameter,  ///< `literal`: a value that differs between runs
        Number,     ///< `name`: a number that is part of the statement
        True,
        False,
        Null,
        Column,    ///< `qualifier` (may be empty) and `name`
        Star,      ///< `*` or `qualifier.*`; also the argument of Count(*)
        Operator,  ///< `name` (+ - * / \ MOD ^ & = <> < > <= >= AND OR XOR) over two operands
        Not,
        Negative,
        Like,     ///< operands: value, pattern; `suffix` for a pattern known to mean "ends with"
        In,       ///< operands: value, then the list
        InQuery,  ///< operand: value; `query`
        Between,  ///< operands: value, from, to
        IsNull,
        Function,  ///< `name` with operands
        Exists,    ///< `query`
        Query,     ///< `query` as a value
    };
    Kind kind = Kind::Null;
    std::string name;
    std::string qualifier;
    std::vector<Expression> operands;
    std::shared_ptr<const Select> query;
    std::size_t literal = 0;
    ValueKind literalKind = ValueKind::Number;
    std::size_t place = 0;  ///< column in the statement, from 0
    bool negated = false;   ///< NOT LIKE, NOT IN, NOT BETWEEN, IS NOT NULL
    bool suffix = false;
};

/// One SELECT of a UNION.
struct UnionPart {
    std::shared_ptr<const Select> query;
    bool all = false;  ///< UNION ALL stands before it: rows that are there already come again
};

/// Something to select from.
struct Source {
    enum class Kind { Table, Query, Union, InnerJoin, LeftJoin, RightJoin };
    Kind kind = Kind::Table;
    std::string name;                     ///< Table
    std::string alias;                    ///< Table and Query; empty if there is none
    std::shared_ptr<const Select> query;  ///< Query
    std::vector<UnionPart> parts;         ///< Union
    std::vector<Source> sides;            ///< joins: left and right
    std::optional<Expression> condition;  ///< joins
    std::size_t place = 0;
};

struct SelectItem {
    Expression value;
    std::string alias;
};

struct OrderItem {
    Expression value;
    bool descending = false;
};

struct Select {
    bool distinct = false;
    std::optional<std::int64_t> top;
    std::vector<SelectItem> items;
    std::vector<Source> from;
    std::optional<Expression> where;
    /// A criterion on the result's own columns (a record set's Filter).
    std::optional<Expression> filter;
    std::vector<Expression> groupBy;
    std::optional<Expression> having;
    std::vector<OrderItem> orderBy;
};

struct Assignment {
    Expression column;
    Expression value;
};

struct Update {
    Source target;
    std::vector<Assignment> assignments;
    std::optional<Expression> where;
};

struct Delete {
    std::string table;  ///< "Tracks" of `DELETE Tracks.*`; empty if there is only one
    std::vector<Source> from;
    std::optional<Expression> where;
};

struct Insert {
    std::string table;
    std::vector<std::string> columns;     ///< empty: all, in order
    std::shared_ptr<const Select> query;  ///< the values: a SELECT, without FROM for VALUES (...)
};

/// CREATE TABLE
struct CreateTable {
    TableDefinition definition;
};

/// CREATE INDEX: fields by name, since only the table knows their positions.
struct CreateIndex {
    struct Field {
        std::string name;
        bool ascending = true;
    };
    std::string table;
    IndexDefinition definition;  ///< without its columns
    std::vector<Field> fields;
};

/// DROP TABLE, or DROP INDEX where an index is named.
struct Drop {
    std::string table;
    std::string index;
};

using Statement = std::variant<Select, Update, Delete, Insert, CreateTable, CreateIndex, Drop>;

}  // namespace jet::dialect
