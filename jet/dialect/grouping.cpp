#include "jet/dialect/names.h"
#include "jet/dialect/translator.h"

namespace jet::dialect {

namespace {

using Kind = Expression::Kind;

void SplitConjuncts(const Expression& condition, std::vector<const Expression*>& conjuncts) {
    if (condition.kind == Kind::Operator && condition.name == "AND") {
        for (const Expression& operand : condition.operands)
            SplitConjuncts(operand, conjuncts);
    } else {
        conjuncts.push_back(&condition);
    }
}

void Note(std::vector<std::size_t>& columns, std::size_t column) {
    if (std::find(columns.begin(), columns.end(), column) == columns.end())
        columns.push_back(column);
}

}  // namespace

bool IsGrouped(const Select& select) {
    if (!select.groupBy.empty() || select.having) return true;
    for (const SelectItem& item : select.items)
        if (HasAggregate(item.value)) return true;
    return false;
}

bool Translator::SameExpression(const Expression& left, const Expression& right,
                                const Scope& scope) const {
    if (left.kind != right.kind || left.operands.size() != right.operands.size()) return false;
    if (left.query || right.query || left.negated != right.negated) return false;
    if (left.kind == Kind::Parameter) return left.literal == right.literal;
    if (left.kind == Kind::Column) {
        const Context context{&scope};
        const Target a = Resolve(left, context), b = Resolve(right, context);
        return a.instance == b.instance && a.column == b.column && a.output == b.output;
    }
    if (!SameName(left.name, right.name)) return false;
    for (std::size_t i = 0; i < left.operands.size(); ++i)
        if (!SameExpression(left.operands[i], right.operands[i], scope)) return false;
    return true;
}

/// Whether an expression has one value for all rows of a group and of every group that differs from
/// it in letter case only.
bool Translator::DependsOnKeysOnly(const Expression& expression, const Select& select,
                                   const Scope& scope) const {
    for (const Expression& key : select.groupBy)
        if (SameExpression(expression, key, scope)) return true;
    if (expression.query) return false;
    if (expression.kind == Kind::Column) {
        const Target target = Resolve(expression, Context{&scope});
        return !target.output && target.scope != &scope;
    }
    if (expression.kind == Kind::Function) {
        bool own = HasAggregate(expression);
        ForEachNode(expression, [&](const Expression& node) {
            if (node.kind != Kind::Column) return;
            const Target target = Resolve(node, Context{&scope});
            own = own || target.output || target.scope == &scope;
        });
        return !own;
    }
    return std::all_of(
        expression.operands.begin(), expression.operands.end(),
        [&](const Expression& operand) { return DependsOnKeysOnly(operand, select, scope); });
}

/// Conditions of HAVING that hold or fail for whole groups can be asked of the single rows: before
/// grouping, where an index finds the rows in question. Without this a correlated subquery would
/// group its whole table for each row of the outer query.
void Translator::SplitHaving(const Select& select, const Scope& scope,
                             std::vector<const Expression*>& early,
                             std::vector<const Expression*>& late) const {
    if (!select.having) return;
    std::vector<const Expression*> conjuncts;
    SplitConjuncts(*select.having, conjuncts);
    for (const Expression* conjunct : conjuncts) {
        const bool condition = conjunct->kind == Kind::Operator || conjunct->kind == Kind::In ||
                               conjunct->kind == Kind::Between || conjunct->kind == Kind::Like ||
                               conjunct->kind == Kind::IsNull;
        const bool movable =
            !select.groupBy.empty() && condition && DependsOnKeysOnly(*conjunct, select, scope);
        (movable ? early : late).push_back(conjunct);
    }
}

/// Whether a condition says that a group key equals something that does not depend on the rows.
bool Translator::IsPinned(const Expression& key, const Select& select, const Scope& scope,
                          const std::vector<const Expression*>& conditions) const {
    const auto constant = [&](const Expression& expression) {
        bool own = expression.query != nullptr;
        ForEachNode(expression, [&](const Expression& node) {
            if (node.kind != Kind::Column) return;
            const Target target = Resolve(node, Context{&scope});
            own = own || target.output || target.scope == &scope;
        });
        return !own && DependsOnKeysOnly(expression, select, scope);
    };
    return std::any_of(conditions.begin(), conditions.end(), [&](const Expression* condition) {
        if (condition->kind != Kind::Operator || condition->name != "=") return false;
        const Expression &left = condition->operands[0], &right = condition->operands[1];
        return (SameExpression(left, key, scope) && constant(right)) ||
               (SameExpression(right, key, scope) && constant(left));
    });
}

/// `SELECT Max(x), ... GROUP BY key HAVING key = 'a'` asks for one row of one table: the one with
/// the largest x among those with this key, which an index over key and x finds at once. The x, or
/// null where the query is of another kind.
const Expression* Translator::FindLargest(const Select& select, const Scope& scope,
                                          const std::vector<const Expression*>& early,
                                          const std::vector<const Expression*>& late) const {
    if (scope.instances.size() != 1 || !scope.instances.front().definition) return nullptr;
    if (select.groupBy.empty() || !late.empty() || !select.orderBy.empty() || select.where ||
        select.filter || select.top)
        return nullptr;
    for (const Expression& key : select.groupBy)
        if (!IsPinned(key, select, scope, early)) return nullptr;
    const Expression* largest = nullptr;
    bool other = false;
    for (const Output& output : scope.outputs) {
        ForEachNode(output.value, [&](const Expression& node) {
            const FunctionRule* rule = node.kind == Kind::Function
                                           ? FindFunction(node.name, node.operands.size())
                                           : nullptr;
            if (!rule || !rule->aggregate) return;
            const Expression& value = node.operands.front();
            const bool same = !largest || SameExpression(*largest, value, scope);
            if (!SameName(rule->name, "Max") || value.kind != Kind::Column || !same) other = true;
            largest = &value;
        });
    }
    return other ? nullptr : largest;
}

void Translator::NoteLargest(const Select& select, const Expression& value, const Scope& scope) {
    // In an index the columns stand alone, without the table's alias.
    Scope bare = scope;
    bare.instances.front().alias.clear();
    Context context{&bare};
    context.groupKey = true;
    std::string index;
    for (const Expression& key : select.groupBy) {
        const Written written = Write(key, context);
        index += written.sql + (written.column ? "," : " COLLATE jet,");
    }
    index += Write(value, context).sql;
    result_.tables[scope.instances.front().use].indexes.push_back(index);
}

bool Translator::Mentions(const Expression& expression, const Instance& instance,
                          const Scope& scope) const {
    bool found = false;
    ForEachNode(expression, [&](const Expression& node) {
        if (node.query) found = true;
        if (node.kind != Kind::Column) return;
        const Target target = Resolve(node, Context{&scope});
        found = found || target.output || target.instance == &instance;
    });
    return found;
}

void Translator::NoteColumn(std::size_t table, std::size_t column) {
    Note(result_.tables[table].columns, column);
}

void Translator::NoteEquality(const Expression& column, const Expression& other,
                              const Scope& scope) {
    if (column.kind != Kind::Column) return;
    const Target target = Resolve(column, Context{&scope});
    if (target.scope != &scope || !target.instance || !target.instance->definition) return;
    if (Mentions(other, *target.instance, scope)) return;
    TableUse& use = result_.tables[target.instance->use];
    Note(use.columns, target.column);
    Note(use.equalColumns, target.column);
    const bool joined =
        std::any_of(scope.instances.begin(), scope.instances.end(),
                    [&](const Instance& instance) { return Mentions(other, instance, scope); });
    if (!joined) Note(use.valueColumns, target.column);
}

/// Rows that do not meet the condition take no part in a query over one table, whatever else it
/// asks. The condition of an outer join is another matter: it comes with more than one table.
void Translator::NoteKey(const Expression& column, const Expression& value,
                         const Context& context) {
    if (column.kind != Kind::Column) return;
    const bool negated = value.kind == Kind::Negative;
    const Expression& number = negated ? value.operands[0] : value;
    if (number.kind != Kind::Parameter && number.kind != Kind::Number) return;
    Target target = Resolve(column, context);
    if (target.output && target.output->value.kind == Kind::Column) {
        Context inner = context;
        inner.outputsFirst = inner.outputsAllowed = false;
        target = Resolve(target.output->value, inner);
    }
    if (target.scope != context.scope || !target.instance || !target.instance->definition) return;
    result_.tables[target.instance->use].keys.push_back(
        {.column = target.column, .literal = number.literal, .negated = negated});
}

void Translator::NoteKeys(const Expression& condition, const Context& context) {
    if (context.scope->instances.size() != 1) return;
    std::vector<const Expression*> conjuncts;
    SplitConjuncts(condition, conjuncts);
    for (const Expression* conjunct : conjuncts) {
        if (conjunct->kind != Kind::Operator || conjunct->name != "=") continue;
        NoteKey(conjunct->operands[0], conjunct->operands[1], context);
        NoteKey(conjunct->operands[1], conjunct->operands[0], context);
    }
}

void Translator::NoteEqualities(const Expression& condition, const Scope& scope) {
    std::vector<const Expression*> conjuncts;
    SplitConjuncts(condition, conjuncts);
    for (const Expression* conjunct : conjuncts) {
        if (conjunct->kind == Kind::Operator && conjunct->name == "=") {
            NoteEquality(conjunct->operands[0], conjunct->operands[1], scope);
            NoteEquality(conjunct->operands[1], conjunct->operands[0], scope);
        } else if (conjunct->kind == Kind::In && !conjunct->negated) {
            NoteEquality(conjunct->operands[0], conjunct->operands[1], scope);
        }
    }
}

}  // namespace jet::dialect
