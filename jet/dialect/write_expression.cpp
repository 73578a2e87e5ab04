#include "jet/dialect/names.h"
#include "jet/dialect/syntax_error.h"
#include "jet/dialect/translator.h"

namespace jet::dialect {

namespace {

using Kind = Expression::Kind;

Written Plain(std::string sql, ValueKind kind) {
    return {std::move(sql), kind, false, false};
}
Written Truth(std::string sql) {
    return {std::move(sql), ValueKind::Boolean, false, true};
}

std::string AsValue(const Written& written) {
    return written.condition ? "-(" + written.sql + ")" : written.sql;
}

bool MayBeText(const Written& written) {
    return written.kind == ValueKind::Text || written.kind == ValueKind::Any;
}

/// Stored columns bring their collation along; any other text must be told to ignore letter case.
std::string Collated(const Written& written) {
    const bool needed = !written.column && MayBeText(written);
    return needed ? AsValue(written) + " COLLATE jet" : AsValue(written);
}

/// The text form of a value, as the & operator joins it.
std::string AsText(const Written& written) {
    if (written.kind == ValueKind::Text) return written.sql;
    return (written.kind == ValueKind::Date ? "jet_date_text(" : "jet_text(") + AsValue(written) +
           ")";
}

std::string Negation(const Expression& expression) {
    return expression.negated ? " NOT" : "";
}

bool IsComparison(const std::string& name) {
    return name == "=" || name == "<>" || name == "<" || name == ">" || name == "<=" ||
           name == ">=";
}

}  // namespace

bool HasAggregate(const Expression& expression) {
    bool found = false;
    ForEachNode(expression, [&found](const Expression& node) {
        if (node.kind != Kind::Function) return;
        const FunctionRule* rule = FindFunction(node.name, node.operands.size());
        found = found || (rule && rule->aggregate);
    });
    return found;
}

std::string Translator::Value(const Expression& expression, const Context& context) {
    return AsValue(Write(expression, context));
}

std::string Translator::Condition(const Expression& expression, const Context& context) {
    return Write(expression, context).sql;
}

Written Translator::Write(const Expression& expression, const Context& context) {
    switch (expression.kind) {
        case Kind::Parameter:
            return WriteParameter(expression);
        case Kind::Number:
            return Plain(expression.name, ValueKind::Number);
        case Kind::True:
            return Plain("-1", ValueKind::Boolean);
        case Kind::False:
            return Plain("0", ValueKind::Boolean);
        case Kind::Null:
            return Plain("NULL", ValueKind::Any);
        case Kind::Column:
            return WriteColumn(expression, context);
        case Kind::Operator:
            return WriteOperator(expression, context);
        case Kind::Not:
            return Truth("NOT (" + Condition(expression.operands[0], context) + ")");
        case Kind::Negative:
            return Plain("(-" + Value(expression.operands[0], context) + ")", ValueKind::Number);
        case Kind::Like:
            return WriteLike(expression, context);
        case Kind::In:
        case Kind::InQuery:
            return WriteIn(expression, context);
        case Kind::Between: {
            const Written value = Write(expression.operands[0], context);
            return Truth(Collated(value) + Negation(expression) + " BETWEEN " +
                         Value(expression.operands[1], context) + " AND " +
                         Value(expression.operands[2], context));
        }
        case Kind::IsNull:
            return Truth("(" + Value(expression.operands[0], context) + ") IS" +
                         Negation(expression) + " NULL");
        case Kind::Function:
            return WriteFunction(expression, context);
        case Kind::Exists:
        case Kind::Query: {
            std::vector<ResultColumn> columns;
            const std::string query =
                "(" + WriteSelect(*expression.query, context.scope, false, columns) + ")";
            if (expression.kind == Kind::Exists) return Truth("EXISTS " + query);
            return Plain(query, columns.front().kind);
        }
        case Kind::Star:
            break;
    }
    throw SyntaxError(expression.place, "*", "a value or a field is expected here");
}

std::string Translator::BindParameter(Parameter::Form form, std::size_t literal) {
    for (std::size_t i = 0; i < result_.parameters.size(); ++i) {
        const Parameter& known = result_.parameters[i];
        if (known.form == form && known.literal == literal) return "?" + std::to_string(i + 1);
    }
    result_.parameters.push_back({form, literal});
    return "?" + std::to_string(result_.parameters.size());
}

Written Translator::WriteParameter(const Expression& expression) {
    return Plain(BindParameter(Parameter::Form::Value, expression.literal), expression.literalKind);
}

Written Translator::WriteColumn(const Expression& expression, const Context& context) {
    const Target target = Resolve(expression, context);
    if (target.output) {
        Context inner = context;
        inner.outputsFirst = inner.outputsAllowed = false;
        Written written = Write(target.output->value, inner);
        if (!written.column) written.sql = "(" + written.sql + ")";
        return written;
    }
    const Instance& instance = *target.instance;
    if (instance.definition) NoteColumn(instance.use, target.column);
    const ResultColumn& column = instance.columns[target.column];
    const std::string name =
        instance.definition ? column.name : "c" + std::to_string(target.column);
    const std::string sql =
        instance.alias.empty() ? QuotedName(name) : instance.alias + "." + QuotedName(name);
    const bool standsForGroup = target.scope == context.scope && context.scope->grouped &&
                                !context.insideAggregate && !context.groupKey;
    if (!standsForGroup) return {sql, column.kind, instance.definition != nullptr, false};
    // A column outside of all aggregates stands for the group's first row.
    const std::string row = instance.definition ? instance.KeyName() : "0";
    return Plain("jet_first(" + sql + "," + row + ")", column.kind);
}

Written Translator::WriteOperator(const Expression& expression, const Context& context) {
    const std::string& name = expression.name;
    if (IsComparison(name)) return WriteComparison(expression, context);
    if (name == "AND" || name == "OR") {
        return Truth("(" + Condition(expression.operands[0], context) + ") " + name + " (" +
                     Condition(expression.operands[1], context) + ")");
    }
    const Written left = Write(expression.operands[0], context);
    const Written right = Write(expression.operands[1], context);
    const std::string a = AsValue(left), b = AsValue(right);
    if (name == "XOR") return Truth("((" + a + ")<>0)<>((" + b + ")<>0)");
    if (name == "&") return WriteConcatenation(left, right);
    if (name == "MOD") return Plain("jet_modulo(" + a + "," + b + ")", ValueKind::Number);
    if (name == "\\") return Plain("jet_whole_quotient(" + a + "," + b + ")", ValueKind::Number);
    if (name == "^") return Plain("jet_power(" + a + "," + b + ")", ValueKind::Number);
    if (name == "/") return Plain("(CAST(" + a + " AS REAL)/" + b + ")", ValueKind::Number);
    const bool texts = left.kind == ValueKind::Text && right.kind == ValueKind::Text;
    if (name == "+" && texts) return Plain("(" + a + "||" + b + ")", ValueKind::Text);
    // A date moved by a number of days is a date; the distance of two dates is a number.
    const bool leftDate = left.kind == ValueKind::Date, rightDate = right.kind == ValueKind::Date;
    const ValueKind kind =
        leftDate != rightDate && name != "*" ? ValueKind::Date : ValueKind::Number;
    return Plain("(" + a + name + b + ")", kind);
}

Written Translator::WriteConcatenation(const Written& left, const Written& right) const {
    return Plain("jet_join(" + AsText(left) + "," + AsText(right) + ")", ValueKind::Text);
}

Written Translator::WriteComparison(const Expression& expression, const Context& context) {
    const Written left = Write(expression.operands[0], context);
    const Written right = Write(expression.operands[1], context);
    const std::string first = right.column ? AsValue(left) : Collated(left);
    return Truth(first + expression.name + AsValue(right));
}

Written Translator::WriteLike(const Expression& expression, const Context& context) {
    const Expression& pattern = expression.operands[1];
    const Written value = Write(expression.operands[0], context);
    if (expression.suffix && !expression.negated && value.column) {
        const Target target = Resolve(expression.operands[0], context);
        if (target.instance && target.instance->definition) {
            auto& columns = result_.tables[target.instance->use].suffixColumns;
            if (std::find(columns.begin(), columns.end(), target.column) == columns.end())
                columns.push_back(target.column);
        }
        const std::string key = "jet_suffix(" + value.sql + ")";
        const std::string from = BindParameter(Parameter::Form::SuffixFrom, pattern.literal);
        const std::string to = BindParameter(Parameter::Form::SuffixTo, pattern.literal);
        // A whole ending fits hardly any row. Left to itself the planner takes the range for a wide
        // one and may walk a joined table's rows instead, asking each for its ending.
        const auto rare = [&key](const std::string& limit) {
            return "likelihood(" + key + limit + ",0.00001)";
        };
        return Truth("(" + rare(">=" + from) + " AND " + rare("<" + to) + ")");
    }
    const std::string call = "jet_like(" + AsValue(value) + "," + Value(pattern, context) + ")";
    return Truth(expression.negated ? "NOT " + call : call);
}

Written Translator::WriteIn(const Expression& expression, const Context& context) {
    std::string sql =
        Collated(Write(expression.operands[0], context)) + Negation(expression) + " IN (";
    if (expression.kind == Kind::InQuery) {
        std::vector<ResultColumn> columns;
        sql += WriteSelect(*expression.query, context.scope, false, columns);
        if (columns.size() != 1)
            throw SyntaxError(expression.place, "IN", "the subquery must have one field");
    } else {
        for (std::size_t i = 1; i < expression.operands.size(); ++i)
            sql += (i == 1 ? "" : ",") + Value(expression.operands[i], context);
    }
    return Truth(sql + ")");
}

/// The key of the row that First and Last go by: that of the table their argument comes from.
std::string Translator::RowOf(const Expression& expression, const Context& context) const {
    const Instance* instance = nullptr;
    ForEachNode(expression, [&](const Expression& node) {
        if (node.kind != Kind::Column || instance) return;
        const Target target = Resolve(node, context);
        if (target.scope == context.scope && target.instance && target.instance->definition)
            instance = target.instance;
    });
    return instance ? instance->KeyName() : "0";
}

Written Translator::WriteFunction(const Expression& expression, const Context& context) {
    const FunctionRule* rule = FindFunction(expression.name, expression.operands.size());
    if (!rule) {
        throw SyntaxError(expression.place, expression.name,
                          IsFunction(expression.name) ? "wrong number of arguments"
                                                      : "undefined function in expression");
    }
    Context inner = context;
    if (rule->aggregate) {
        if (context.insideAggregate || context.groupKey)
            throw SyntaxError(expression.place, expression.name,
                              "an aggregate function cannot stand here");
        inner.insideAggregate = true;
        if (context.scope->largestOnly) return Write(expression.operands.front(), inner);
    }
    const bool needsRow = SameName(rule->name, "First") || SameName(rule->name, "Last");
    std::vector<std::string> arguments;
    ValueKind kind = rule->kind;
    for (std::size_t i = 0; i < expression.operands.size(); ++i) {
        const Expression& operand = expression.operands[i];
        const bool star = operand.kind == Kind::Star && SameName(rule->name, "Count");
        const Written written = star ? Plain("*", ValueKind::Any) : Write(operand, inner);
        const bool ordered = SameName(rule->name, "Min") || SameName(rule->name, "Max");
        arguments.push_back(ordered ? Collated(written) : AsValue(written));
        if (SameName(rule->name, "CStr")) arguments.back() = AsText(written);
        if (needsRow) arguments.back() += "," + RowOf(operand, inner);
        if (rule->kindOfArgument == i + 1) kind = written.kind;
    }
    std::string sql;
    for (std::size_t i = 0; i < rule->pattern.size(); ++i) {
        if (rule->pattern[i] == '$') {
            sql += arguments[static_cast<std::size_t>(rule->pattern[++i] - '1')];
        } else {
            sql += rule->pattern[i];
        }
    }
    const bool call = !rule->condition && !arguments.empty() && rule->pattern.back() == ')';
    return {call ? sql : "(" + sql + ")", kind, false, rule->condition};
}

}  // namespace jet::dialect
