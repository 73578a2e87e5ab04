#pragma once

#include <string>
#include <vector>

#include "jet/dialect/translate.h"

namespace jet::dialect {

/// A piece of executed SQL and what is known of it.
struct Written {
    std::string sql;
    ValueKind kind = ValueKind::Any;
    bool column = false;     ///< a stored column, which carries its own collation
    bool condition = false;  ///< yields 1 or 0 where Access means -1 or 0
};

/// One table (or subquery) of a FROM.
struct Instance {
    std::string name;   ///< alias or table name
    std::string alias;  ///< in the executed SQL
    const TableDefinition* definition = nullptr;
    std::vector<ResultColumn> columns;
    std::size_t use = 0;  ///< position in Translation::tables, for a stored table
    std::string KeyName() const { return alias + "." + QuotedName(KeyColumn); }
};

/// One field of a SELECT with `*` written out.
struct Output {
    Expression value;
    std::string name;
    bool named = false;  ///< by AS
};

/// The names that an expression of one SELECT can see.
struct Scope {
    const Scope* outer = nullptr;
    std::vector<Instance> instances;
    std::vector<Output> outputs;
    bool grouped = false;
    bool largestOnly = false;  ///< the row with the largest value stands for the only group
};

/// Where a column's name leads: to a column of an instance or to one of the query's own outputs.
struct Target {
    const Scope* scope = nullptr;
    const Instance* instance = nullptr;
    std::size_t column = 0;
    const Output* output = nullptr;
};

/// Which part of a SELECT is being written; decides how names are looked up and whether columns
/// stand for a group.
struct Context {
    const Scope* scope = nullptr;
    bool insideAggregate = false;
    bool groupKey = false;      ///< an expression by which is grouped, or a condition on rows
    bool outputsFirst = false;  ///< names mean the result's fields before the tables'
    bool outputsAllowed = true;
};

/// Writes one statement. Lives for one translation.
class Translator {
  public:
    explicit Translator(const Catalog& catalog) : catalog_(catalog) {}

    struct Parts {
        std::string from, where, groupBy, having, orderBy, limit;
        std::string Text() const { return from + where + groupBy + having + orderBy + limit; }
    };

    /// Fills the scope from the FROM list and writes " FROM ...".
    std::string WriteFrom(const std::vector<Source>& sources, Scope& scope);
    std::string WriteWhere(const std::optional<Expression>& where, const Scope& scope);
    /// A whole subquery with its result columns.
    std::string WriteSelect(const Select& select, const Scope* outer, bool outermost,
                            std::vector<ResultColumn>& columns);
    /// The parts behind the list of outputs; the scope is filled and used.
    Parts WriteParts(const Select& select, Scope& scope, bool outermost);

    Written Write(const Expression& expression, const Context& context);
    std::string Value(const Expression& expression, const Context& context);
    std::string Condition(const Expression& expression, const Context& context);
    ResultColumn Describe(const Output& output, const Context& context, ValueKind kind) const;

    Target Resolve(const Expression& column, const Context& context) const;
    void ExpandOutputs(const Select& select, Scope& scope) const;

    Translation& Result() { return result_; }
    /// The statement looks at this column's values.
    void NoteColumn(std::size_t table, std::size_t column);

  private:
    std::string WriteSource(const Source& source, Scope& scope);
    std::string WriteStoredTable(const Source& source, Scope& scope);
    std::string WriteUnion(const Source& source, Scope& scope);
    std::string WriteOrder(const Select& select, const Scope& scope,
                           const std::vector<std::string>& groupKeys, bool outermost);
    void SplitHaving(const Select& select, const Scope& scope,
                     std::vector<const Expression*>& early,
                     std::vector<const Expression*>& late) const;
    const Expression* FindLargest(const Select& select, const Scope& scope,
                                  const std::vector<const Expression*>& early,
                                  const std::vector<const Expression*>& late) const;
    bool IsPinned(const Expression& key, const Select& select, const Scope& scope,
                  const std::vector<const Expression*>& conditions) const;
    void NoteLargest(const Select& select, const Expression& value, const Scope& scope);
    bool DependsOnKeysOnly(const Expression& expression, const Select& select,
                           const Scope& scope) const;
    bool SameExpression(const Expression& left, const Expression& right, const Scope& scope) const;
    void NoteEqualities(const Expression& condition, const Scope& scope);
    void NoteEquality(const Expression& column, const Expression& other, const Scope& scope);
    void NoteKeys(const Expression& condition, const Context& context);
    void NoteKey(const Expression& column, const Expression& value, const Context& context);
    bool Mentions(const Expression& expression, const Instance& instance, const Scope& scope) const;

    Written WriteParameter(const Expression& expression);
    Written WriteColumn(const Expression& expression, const Context& context);
    Written WriteOperator(const Expression& expression, const Context& context);
    Written WriteComparison(const Expression& expression, const Context& context);
    Written WriteConcatenation(const Written& left, const Written& right) const;
    Written WriteLike(const Expression& expression, const Context& context);
    Written WriteIn(const Expression& expression, const Context& context);
    Written WriteFunction(const Expression& expression, const Context& context);
    std::string RowOf(const Expression& expression, const Context& context) const;
    std::string BindParameter(Parameter::Form form, std::size_t literal);

    const Catalog& catalog_;
    Translation result_;
    std::size_t aliases_ = 0;
};

/// Calls `visit` for the expression and everything below it, subqueries excepted.
template <typename Visit>
void ForEachNode(const Expression& expression, const Visit& visit) {
    visit(expression);
    for (const Expression& operand : expression.operands)
        ForEachNode(operand, visit);
}

/// Whether an aggregate function is called in the expression.
bool HasAggregate(const Expression& expression);

/// Whether the query makes groups.
bool IsGrouped(const Select& select);

}  // namespace jet::dialect
