#include "jet/dialect/names.h"
#include "jet/dialect/translator.h"
#include "jet/error.h"

namespace jet::dialect {

namespace {

std::string FullName(const Expression& column) {
    return column.qualifier.empty() ? column.name : column.qualifier + "." + column.name;
}

[[noreturn]] void FailUnknown(const Expression& column, const Scope& scope) {
    std::string tables;
    for (const Instance& instance : scope.instances)
        tables += (tables.empty() ? " in " : ", ") + instance.name;
    throw Error(ErrorKind::NotFound, "Cannot find the field '" + FullName(column) + "'" + tables +
                                         " (column " + std::to_string(column.place + 1) +
                                         " of the statement)");
}

[[noreturn]] void FailAmbiguous(const Expression& column) {
    throw Error(ErrorKind::Syntax, "The field '" + column.name +
                                       "' could refer to more than one table listed in the FROM "
                                       "clause of the statement");
}

const Output* FindOutput(const Scope& scope, const Expression& column, bool namedOnly) {
    if (!column.qualifier.empty()) return nullptr;
    for (const Output& output : scope.outputs) {
        if (namedOnly && !output.named) continue;
        if (SameName(output.name, column.name)) return &output;
    }
    return nullptr;
}

Target FindColumn(const Scope& scope, const Expression& column) {
    Target found;
    for (const Instance& instance : scope.instances) {
        if (!column.qualifier.empty() && !SameName(column.qualifier, instance.name)) continue;
        for (std::size_t i = 0; i < instance.columns.size(); ++i) {
            if (!SameName(instance.columns[i].name, column.name)) continue;
            if (found.instance) FailAmbiguous(column);
            found = {&scope, &instance, i, nullptr};
            break;
        }
    }
    return found;
}

/// Names that two outputs share are told apart by their table, as in "Tracks.Title".
void TellApart(std::vector<Output>& outputs) {
    std::vector<bool> shared(outputs.size(), false);
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        for (std::size_t j = 0; j < outputs.size(); ++j)
            if (i != j && SameName(outputs[i].name, outputs[j].name)) shared[i] = true;
    }
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        const Expression& value = outputs[i].value;
        const bool column = value.kind == Expression::Kind::Column && !value.qualifier.empty();
        if (shared[i] && column && !outputs[i].named) outputs[i].name = FullName(value);
    }
}

}  // namespace

Target Translator::Resolve(const Expression& column, const Context& context) const {
    const Scope& scope = *context.scope;
    if (context.outputsFirst) {
        if (const Output* output = FindOutput(scope, column, false))
            return {&scope, nullptr, 0, output};
    }
    if (const Target found = FindColumn(scope, column); found.instance) return found;
    // An alias is a name of last resort, in the query itself only.
    if (context.outputsAllowed) {
        if (const Output* output = FindOutput(scope, column, true))
            return {&scope, nullptr, 0, output};
    }
    for (const Scope* outer = scope.outer; outer; outer = outer->outer)
        if (const Target found = FindColumn(*outer, column); found.instance) return found;
    FailUnknown(column, scope);
}

void Translator::ExpandOutputs(const Select& select, Scope& scope) const {
    std::size_t unnamed = 1000;
    for (const SelectItem& item : select.items) {
        if (item.value.kind == Expression::Kind::Star) {
            bool any = false;
            for (const Instance& instance : scope.instances) {
                if (!item.value.qualifier.empty() && !SameName(item.value.qualifier, instance.name))
                    continue;
                any = true;
                for (const ResultColumn& column : instance.columns) {
                    Expression value;
                    value.kind = Expression::Kind::Column;
                    value.qualifier = instance.name;
                    value.name = column.name;
                    value.place = item.value.place;
                    scope.outputs.push_back({std::move(value), column.name, false});
                }
            }
            if (!any && item.value.qualifier.empty())
                throw Error(ErrorKind::Syntax, "* stands for the fields of tables, and needs FROM");
            if (!any) {
                throw Error(ErrorKind::NotFound,
                            "Cannot find the table '" + item.value.qualifier + "' for its fields");
            }
        } else if (!item.alias.empty()) {
            scope.outputs.push_back({item.value, item.alias, true});
        } else if (item.value.kind == Expression::Kind::Column) {
            scope.outputs.push_back({item.value, item.value.name, false});
        } else {
            scope.outputs.push_back({item.value, "Expr" + std::to_string(unnamed++), false});
        }
    }
    TellApart(scope.outputs);
}

}  // namespace jet::dialect
