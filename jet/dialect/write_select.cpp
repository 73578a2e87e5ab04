#include "jet/dialect/names.h"
#include "jet/dialect/syntax_error.h"
#include "jet/dialect/translator.h"

namespace jet::dialect {

namespace {

std::string Joined(const std::vector<std::string>& parts, std::string_view separator) {
    std::string text;
    for (const std::string& part : parts) {
        if (!text.empty()) text += separator;
        text += part;
    }
    return text;
}

bool IsNumeric(ValueKind kind) {
    return kind == ValueKind::Boolean || kind == ValueKind::Number || kind == ValueKind::Currency ||
           kind == ValueKind::Decimal;
}

/// What values of both kinds become where they meet in one column of a UNION.
ValueKind CommonKind(ValueKind left, ValueKind right) {
    if (left == right || right == ValueKind::Any) return left;
    if (left == ValueKind::Any) return right;
    if (IsNumeric(left) && IsNumeric(right)) return ValueKind::Number;
    return ValueKind::Text;
}

std::string AsKind(const std::string& value, ValueKind kind, ValueKind wanted) {
    if (kind == wanted || kind == ValueKind::Any || wanted != ValueKind::Text) return value;
    return (kind == ValueKind::Date ? "jet_date_text(" : "jet_text(") + value + ")";
}

}  // namespace

std::string QuotedName(std::string_view name) {
    std::string quoted = "\"";
    for (const char letter : name) {
        quoted += letter;
        if (letter == '"') quoted += letter;
    }
    return quoted + '"';
}

std::string TableName(std::string_view table) {
    // SQLite keeps names with this beginning to itself; no Jet name has brackets.
    const bool reserved = SameName(table.substr(0, 7), "sqlite_");
    return QuotedName(reserved ? "[" + std::string(table) + "]" : std::string(table));
}

std::string Translator::WriteStoredTable(const Source& source, Scope& scope) {
    const TableDefinition* definition = catalog_(source.name);
    if (!definition)
        throw Error(ErrorKind::NotFound, "Cannot find the input table '" + source.name + "'");
    Instance instance;
    instance.name = source.alias.empty() ? source.name : source.alias;
    instance.alias = "s" + std::to_string(aliases_++);
    instance.definition = definition;
    instance.use = result_.tables.size();
    for (std::size_t i = 0; i < definition->columns.size(); ++i) {
        const ColumnDefinition& column = definition->columns[i];
        instance.columns.push_back(
            {column.name, KindOf(column.type), FieldSource{instance.use, i}});
    }
    result_.tables.emplace_back();
    result_.tables.back().definition = definition;
    const std::string sql = TableName(definition->name) + " AS " + instance.alias;
    scope.instances.push_back(std::move(instance));
    return sql;
}

/// The parts stand in subqueries of their own, each with its order; without a limit SQLite would
/// feel free to leave that out. Rows of UNION come in the order of their values, those of UNION ALL
/// part by part.
std::string Translator::WriteUnion(const Source& source, Scope& scope) {
    result_.joinsQueries = true;
    std::vector<std::string> queries;
    std::vector<std::vector<ResultColumn>> columns(source.parts.size());
    for (std::size_t i = 0; i < source.parts.size(); ++i) {
        queries.push_back(WriteSelect(*source.parts[i].query, nullptr, true, columns[i]));
        if (columns[i].size() != columns.front().size()) {
            throw Error(ErrorKind::Syntax,
                        "The SELECTs of a UNION must have the same number of "
                        "fields: the first has " +
                            std::to_string(columns.front().size()) + ", another " +
                            std::to_string(columns[i].size()));
        }
    }
    Instance instance;
    instance.name = source.alias;
    instance.columns = columns.front();
    for (std::size_t column = 0; column < instance.columns.size(); ++column) {
        instance.columns[column].source.reset();
        for (const auto& part : columns)
            instance.columns[column].kind =
                CommonKind(instance.columns[column].kind, part[column].kind);
    }
    std::string sql;
    bool sorted = false;
    for (std::size_t i = 0; i < queries.size(); ++i) {
        std::vector<std::string> values;
        for (std::size_t column = 0; column < instance.columns.size(); ++column) {
            const std::string name = "c" + std::to_string(column);
            const ValueKind wanted = instance.columns[column].kind;
            values.push_back(AsKind(name, columns[i][column].kind, wanted) +
                             (wanted == ValueKind::Text ? " COLLATE jet AS " : " AS ") + name);
        }
        if (i > 0) {
            sql += source.parts[i].all ? " UNION ALL " : " UNION ";
            sorted = !source.parts[i].all;
        }
        sql += "SELECT " + Joined(values, ",") + " FROM (" + queries[i] + " LIMIT -1)";
    }
    if (sorted) {
        std::vector<std::string> order;
        order.reserve(instance.columns.size());
        for (std::size_t column = 0; column < instance.columns.size(); ++column)
            order.push_back(std::to_string(column + 1));
        sql += " ORDER BY " + Joined(order, ",");
    }
    instance.alias = "s" + std::to_string(aliases_++);
    scope.instances.push_back(instance);
    return "(" + sql + " LIMIT -1) AS " + instance.alias;
}

std::string Translator::WriteSource(const Source& source, Scope& scope) {
    if (source.kind == Source::Kind::Union) return WriteUnion(source, scope);
    if (source.kind == Source::Kind::Table) return WriteStoredTable(source, scope);
    if (source.kind == Source::Kind::Query) {
        result_.joinsQueries = true;
        Instance instance;
        instance.name = source.alias;
        const std::string query = WriteSelect(*source.query, nullptr, true, instance.columns);
        instance.alias = "s" + std::to_string(aliases_++);
        const std::string sql = "(" + query + ") AS " + instance.alias;
        scope.instances.push_back(std::move(instance));
        return sql;
    }
    const std::string left = WriteSource(source.sides[0], scope);
    const std::string right = WriteSource(source.sides[1], scope);
    const bool nested = source.sides[1].sides.size() == 2;
    const std::string_view join = source.kind == Source::Kind::InnerJoin  ? " JOIN "
                                  : source.kind == Source::Kind::LeftJoin ? " LEFT JOIN "
                                                                          : " RIGHT JOIN ";
    Context context{&scope};
    context.groupKey = true;
    context.outputsAllowed = false;
    NoteEqualities(*source.condition, scope);
    return left + std::string(join) + (nested ? "(" + right + ")" : right) + " ON " +
           Condition(*source.condition, context);
}

std::string Translator::WriteFrom(const std::vector<Source>& sources, Scope& scope) {
    std::vector<std::string> parts;
    parts.reserve(sources.size());
    for (const Source& source : sources)
        parts.push_back(WriteSource(source, scope));
    for (std::size_t i = 0; i < scope.instances.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (!scope.instances[i].name.empty() &&
                SameName(scope.instances[i].name, scope.instances[j].name))
                throw Error(ErrorKind::Syntax, "The name '" + scope.instances[i].name +
                                                   "' stands for two tables of the FROM clause");
        }
    }
    return parts.empty() ? "" : " FROM " + Joined(parts, ", ");
}

std::string Translator::WriteWhere(const std::optional<Expression>& where, const Scope& scope) {
    if (!where) return "";
    Context context{&scope};
    context.groupKey = true;
    NoteEqualities(*where, scope);
    NoteKeys(*where, context);
    return " WHERE (" + Condition(*where, context) + ")";
}

Translator::Parts Translator::WriteParts(const Select& select, Scope& scope, bool outermost) {
    Parts parts;
    parts.from = WriteFrom(select.from, scope);
    scope.grouped = IsGrouped(select);
    ExpandOutputs(select, scope);

    parts.where = WriteWhere(select.where, scope);
    Context rows{&scope};
    rows.groupKey = true;
    std::vector<const Expression*> early, late;
    SplitHaving(select, scope, early, late);
    if (select.filter) early.push_back(&*select.filter);
    for (const Expression* condition : early) {
        rows.outputsFirst = select.filter && condition == &*select.filter;
        NoteEqualities(*condition, scope);
        NoteKeys(*condition, rows);
        parts.where +=
            (parts.where.empty() ? " WHERE (" : " AND (") + Condition(*condition, rows) + ")";
    }
    rows.outputsFirst = false;

    if (const Expression* largest = FindLargest(select, scope, early, late)) {
        NoteLargest(select, *largest, scope);
        scope.grouped = false;
        scope.largestOnly = true;
        parts.orderBy = " ORDER BY " + Value(*largest, rows) + " DESC";
        parts.limit = " LIMIT 1";
        return parts;
    }

    std::vector<std::string> keys;
    for (const Expression& key : select.groupBy) {
        const Written written = Write(key, rows);
        const bool text = !written.column && written.kind != ValueKind::Number;
        keys.push_back(Value(key, rows) + (text ? " COLLATE jet" : ""));
    }
    if (!keys.empty()) parts.groupBy = " GROUP BY " + Joined(keys, ",");
    for (const Expression* condition : late) {
        parts.having += (parts.having.empty() ? " HAVING (" : " AND (") +
                        Condition(*condition, Context{&scope}) + ")";
    }
    if (outermost || select.top) parts.orderBy = WriteOrder(select, scope, keys, outermost);
    if (select.top) parts.limit = " LIMIT " + std::to_string(*select.top);
    return parts;
}

/// Every result has one order: what ORDER BY leaves open is decided by the place in the storage
/// (or by the groups' keys).
std::string Translator::WriteOrder(const Select& select, const Scope& scope,
                                   const std::vector<std::string>& groupKeys, bool outermost) {
    std::vector<std::string> order;
    Context context{&scope};
    context.outputsFirst = true;
    for (const OrderItem& item : select.orderBy) {
        std::string sql;
        for (std::size_t i = 0; i < groupKeys.size(); ++i)
            if (SameExpression(item.value, select.groupBy[i], scope)) sql = groupKeys[i];
        if (item.value.kind == Expression::Kind::Number) {
            sql = item.value.name;
        } else if (sql.empty()) {
            const Written written = Write(item.value, context);
            const bool text = !written.column && written.kind != ValueKind::Number;
            sql = Value(item.value, context) + (text ? " COLLATE jet" : "");
        }
        order.push_back(sql + (item.descending ? " DESC" : ""));
    }
    if (select.distinct) {
        for (std::size_t i = 0; i < scope.outputs.size(); ++i)
            order.push_back(std::to_string(i + 1));
    } else if (scope.grouped) {
        order.insert(order.end(), groupKeys.begin(), groupKeys.end());
    } else if (outermost || select.top) {
        for (const Instance& instance : scope.instances)
            if (instance.definition) order.push_back(instance.KeyName());
    }
    return order.empty() ? "" : " ORDER BY " + Joined(order, ",");
}

ResultColumn Translator::Describe(const Output& output, const Context& context,
                                  ValueKind kind) const {
    ResultColumn column{output.name, kind, std::nullopt};
    if (output.value.kind == Expression::Kind::Column) {
        const Target target = Resolve(output.value, context);
        if (target.instance && target.instance->definition && target.scope == context.scope)
            column.source = FieldSource{target.instance->use, target.column};
    }
    return column;
}

std::string Translator::WriteSelect(const Select& select, const Scope* outer, bool outermost,
                                    std::vector<ResultColumn>& columns) {
    Scope scope;
    scope.outer = outer;
    const Parts parts = WriteParts(select, scope, outermost);
    Context context{&scope};
    context.outputsAllowed = false;
    std::vector<std::string> values;
    for (const Output& output : scope.outputs) {
        const Written written = Write(output.value, context);
        const bool text = !written.column && !written.condition &&
                          (written.kind == ValueKind::Text || written.kind == ValueKind::Any);
        values.push_back(Value(output.value, context) + (text ? " COLLATE jet" : "") + " AS c" +
                         std::to_string(values.size()));
        columns.push_back(Describe(output, context, written.kind));
    }
    return (select.distinct ? "SELECT DISTINCT " : "SELECT ") + Joined(values, ",") + parts.Text();
}

}  // namespace jet::dialect
