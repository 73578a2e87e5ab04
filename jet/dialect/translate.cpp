#include "jet/dialect/translate.h"

#include <algorithm>

#include "jet/dialect/names.h"
#include "jet/dialect/translator.h"
#include "jet/error.h"

namespace jet::dialect {

namespace {

bool HasQuery(const Source& source) {
    return source.kind == Source::Kind::Query || source.kind == Source::Kind::Union ||
           std::any_of(source.sides.begin(), source.sides.end(), HasQuery);
}

bool IsWrapped(const Select& select) {
    return IsGrouped(select) || select.distinct || select.top;
}

const Instance& FindInstance(const Scope& scope, const std::string& name) {
    for (const Instance& instance : scope.instances)
        if (SameName(instance.name, name)) return instance;
    throw Error(ErrorKind::NotFound, "Cannot find the table '" + name + "' among those of FROM");
}

}  // namespace

Translation TranslateQuery(const Select& select, const Catalog& catalog) {
    Translator translator(catalog);
    Translation& result = translator.Result();
    result.sql = translator.WriteSelect(select, nullptr, true, result.columns);
    return std::move(result);
}

bool HasRowKeys(const Select& select) {
    return !select.from.empty() && !IsGrouped(select) && !select.distinct &&
           std::none_of(select.from.begin(), select.from.end(), HasQuery);
}

Translation TranslateKeys(const Select& select, const Catalog& catalog) {
    Translator translator(catalog);
    Translation& result = translator.Result();
    Scope scope;
    const Translator::Parts parts = translator.WriteParts(select, scope, true);
    for (const Output& output : scope.outputs) {
        ResultColumn column = translator.Describe(output, Context{&scope}, ValueKind::Any);
        if (!column.source) {
            throw Error(ErrorKind::NotSupported, "The field '" + output.name +
                                                     "' is computed: rows with it cannot be "
                                                     "changed through a record set");
        }
        translator.NoteColumn(column.source->table, column.source->column);
        result.columns.push_back(std::move(column));
    }
    for (const Instance& instance : scope.instances) {
        result.sql += (result.sql.empty() ? "SELECT " : ",") + instance.KeyName();
        result.keyTables.push_back(instance.use);
    }
    result.sql += parts.Text();
    return std::move(result);
}

Translation TranslateUpdate(const Update& update, const Catalog& catalog) {
    Translator translator(catalog);
    Translation& result = translator.Result();
    result.kind = Translation::Kind::Update;
    Scope scope;
    const std::string from = translator.WriteFrom({update.target}, scope);
    const std::string where = translator.WriteWhere(update.where, scope);
    const Context context{&scope};
    std::vector<std::string> values;
    const auto add = [&](std::string sql, ValueKind kind, std::string name) {
        values.push_back(std::move(sql));
        result.columns.push_back({std::move(name), kind, std::nullopt});
        return values.size() - 1;
    };
    for (const Assignment& assignment : update.assignments) {
        const Target column = translator.Resolve(assignment.column, context);
        if (!column.instance || !column.instance->definition)
            throw Error(ErrorKind::NotSupported,
                        "'" + assignment.column.name + "' is no field that can be changed");
        const std::size_t table = column.instance->use;
        auto target = std::find_if(result.targets.begin(), result.targets.end(),
                                   [table](const UpdateTarget& t) { return t.table == table; });
        if (target == result.targets.end()) {
            const std::size_t key = add(column.instance->KeyName(), ValueKind::Number, "");
            target = result.targets.insert(target, {table, key, {}});
        }
        const Written value = translator.Write(assignment.value, context);
        const Written old = translator.Write(assignment.column, context);
        const std::size_t position =
            add(translator.Value(assignment.value, context), value.kind, assignment.column.name);
        add(old.sql, old.kind, assignment.column.name);
        target->assignments.push_back({column.column, position});
    }
    for (const std::string& value : values)
        result.sql += (result.sql.empty() ? "SELECT " : ",") + value;
    result.sql += from + where + " ORDER BY " + scope.instances.front().KeyName();
    return std::move(result);
}

Translation TranslateDelete(const Delete& deletion, const Catalog& catalog) {
    Translator translator(catalog);
    Translation& result = translator.Result();
    result.kind = Translation::Kind::Delete;
    Scope scope;
    const std::string from = translator.WriteFrom(deletion.from, scope);
    if (deletion.table.empty() && scope.instances.size() > 1) {
        throw Error(ErrorKind::Syntax,
                    "The statement must name the table whose rows it deletes, as in DELETE t.*");
    }
    const Instance& instance =
        deletion.table.empty() ? scope.instances.front() : FindInstance(scope, deletion.table);
    if (!instance.definition)
        throw Error(ErrorKind::NotSupported, "Rows of a subquery cannot be deleted");
    const bool joined = scope.instances.size() > 1;
    const std::string where = translator.WriteWhere(deletion.where, scope);
    result.sql = (joined ? "SELECT DISTINCT " : "SELECT ") + instance.KeyName() + from + where +
                 " ORDER BY 1";
    result.columns.push_back({"", ValueKind::Number, std::nullopt});
    result.keyTables.push_back(instance.use);
    result.ofAllRows = !joined && !deletion.where;
    return std::move(result);
}

Translation TranslateInsert(const Insert& insert, const Catalog& catalog) {
    const TableDefinition* definition = catalog(insert.table);
    if (!definition)
        throw Error(ErrorKind::NotFound, "Cannot find the output table '" + insert.table + "'");
    Translation result = TranslateQuery(*insert.query, catalog);
    result.kind = Translation::Kind::Insert;
    result.keyTables.push_back(result.tables.size());
    result.tables.emplace_back();
    result.tables.back().definition = definition;
    result.tables.back().isRead = false;
    UpdateTarget target;
    target.table = result.keyTables.front();
    const std::size_t count =
        insert.columns.empty() ? definition->columns.size() : insert.columns.size();
    if (count != result.columns.size()) {
        throw Error(ErrorKind::Syntax,
                    "Number of query values and destination fields are not the same");
    }
    for (std::size_t i = 0; i < count; ++i) {
        std::size_t column = i;
        if (!insert.columns.empty()) {
            const auto found = definition->FindColumn(insert.columns[i]);
            if (!found) {
                throw Error(ErrorKind::NotFound, "Cannot find the field '" + insert.columns[i] +
                                                     "' in " + definition->name);
            }
            column = *found;
        }
        target.assignments.push_back({column, i});
    }
    result.targets.push_back(std::move(target));
    return result;
}

Select Compose(Select base, std::optional<Expression> filter, std::vector<OrderItem> order) {
    if (!filter && order.empty()) return base;
    if (IsWrapped(base)) {
        Source source;
        source.kind = Source::Kind::Query;
        source.query = std::make_shared<const Select>(std::move(base));
        base = Select();
        base.from.push_back(std::move(source));
        Expression star;
        star.kind = Expression::Kind::Star;
        base.items.push_back({std::move(star), ""});
    }
    base.filter = std::move(filter);
    if (!order.empty()) base.orderBy = std::move(order);
    return base;
}

}  // namespace jet::dialect
