#include "jet/engine/execute.h"

#include "jet/dialect/parser.h"
#include "jet/engine/change_group.h"
#include "jet/engine/convert.h"
#include "jet/engine/transfer.h"

namespace jet::engine {

namespace {

using dialect::Translation;

[[noreturn]] void ThrowIsQuery() {
    throw Error(ErrorKind::Syntax, "A SELECT changes nothing: it is a query");
}

Translation Translate(const dialect::Statement& statement, const dialect::Catalog& catalog) {
    if (const auto* update = std::get_if<dialect::Update>(&statement))
        return TranslateUpdate(*update, catalog);
    if (const auto* deletion = std::get_if<dialect::Delete>(&statement))
        return TranslateDelete(*deletion, catalog);
    if (const auto* insert = std::get_if<dialect::Insert>(&statement))
        return TranslateInsert(*insert, catalog);
    ThrowIsQuery();
}

void MakeIndex(Session& session, const dialect::CreateIndex& create) {
    const MirrorTable& table = session.Table(create.table);
    IndexDefinition index = create.definition;
    for (const dialect::CreateIndex::Field& field : create.fields)
        index.columns.push_back({table.Column(field.name), field.ascending});
    session.CreateIndex(create.table, index);
}

/// Makes or removes a table or an index; false where the statement is of another kind.
bool ChangeSchema(Session& session, const dialect::Statement& statement) {
    if (const auto* table = std::get_if<dialect::CreateTable>(&statement)) {
        session.CreateTable(table->definition);
    } else if (const auto* index = std::get_if<dialect::CreateIndex>(&statement)) {
        MakeIndex(session, *index);
    } else if (const auto* drop = std::get_if<dialect::Drop>(&statement)) {
        if (drop->index.empty()) {
            session.DropTable(drop->table);
        } else {
            session.DropIndex(drop->table, drop->index);
        }
    } else {
        return false;
    }
    return true;
}

Value ReadColumn(const Statement& statement, const Translation& translation, std::size_t column) {
    return ReadValue(statement, static_cast<int>(column), translation.columns[column].kind);
}

std::int64_t RunInsert(Session& session, Plan& plan, StatementLease statement) {
    const dialect::UpdateTarget& target = plan.translation.targets.front();
    MirrorTable& table = *plan.tables[target.table];
    std::vector<storage::Row> rows;
    while (session.Step(*statement)) {
        storage::Row row(table.Definition().columns.size());
        for (const auto& assignment : target.assignments)
            row[assignment.column] = ReadColumn(*statement, plan.translation, assignment.value);
        rows.push_back(std::move(row));
    }
    statement->Reset();
    session.BeforeChange(table);
    ChangeGroup group;
    for (storage::Row& row : rows) {
        session.CheckInterruption();
        group.Insert(table, std::move(row));
    }
    group.Keep();
    return static_cast<std::int64_t>(rows.size());
}

std::int64_t RunDelete(Session& session, Plan& plan, StatementLease statement) {
    MirrorTable& table = *plan.tables[plan.translation.keyTables.front()];
    std::vector<RowKey> keys;
    while (session.Step(*statement))
        keys.push_back(statement->Integer(0));
    // Keys of an outer join's missing rows are Null.
    std::erase(keys, RowKey{0});
    statement->Reset();
    session.BeforeChange(table);
    ChangeGroup group;
    for (const RowKey key : keys) {
        session.CheckInterruption();
        group.Delete(table, key);
    }
    group.Keep();
    return static_cast<std::int64_t>(keys.size());
}

/// All rows of a table, which need not be in memory for that.
std::int64_t DeleteAllRows(Session& session, MirrorTable& table) {
    std::int64_t rows = 0;
    table.Scan({}, [&](RowKey, std::span<Value>) {
        session.CheckInterruption();
        ++rows;
    });
    if (rows == 0) return 0;  // each run empties tables, and writes nothing where they are empty
    session.BeforeChange(table);
    table.DeleteAll();
    session.AfterChange();
    return rows;
}

/// What an UPDATE does to one row.
struct RowUpdate {
    MirrorTable* table = nullptr;
    RowKey key = 0;
    std::vector<storage::FieldChange> changes, old;
};

RowUpdate ReadUpdate(const Plan& plan, const dialect::UpdateTarget& target,
                     const Statement& statement) {
    RowUpdate update;
    update.table = plan.tables[target.table];
    update.key = statement.Integer(static_cast<int>(target.key));
    for (const auto& assignment : target.assignments) {
        const ColumnDefinition& column = update.table->Definition().columns[assignment.column];
        Value value =
            ConvertToField(column, ReadColumn(statement, plan.translation, assignment.value));
        Value old = ReadColumn(statement, plan.translation, assignment.value + 1);
        if (value == old) continue;
        if (column.autoNumber) {
            throw Error(ErrorKind::NotSupported, "The field '" + column.name +
                                                     "' is numbered by the database and cannot "
                                                     "be changed");
        }
        update.changes.push_back({assignment.column, std::move(value)});
        update.old.push_back({assignment.column, std::move(old)});
    }
    return update;
}

std::int64_t RunUpdate(Session& session, Plan& plan, StatementLease statement) {
    std::vector<RowUpdate> updates;
    std::int64_t count = 0;
    while (session.Step(*statement)) {
        ++count;
        for (const dialect::UpdateTarget& target : plan.translation.targets) {
            RowUpdate update = ReadUpdate(plan, target, *statement);
            if (update.key != 0 && !update.changes.empty()) updates.push_back(std::move(update));
        }
    }
    statement->Reset();
    for (const dialect::UpdateTarget& target : plan.translation.targets)
        session.BeforeChange(*plan.tables[target.table]);
    ChangeGroup group;
    for (RowUpdate& update : updates) {
        session.CheckInterruption();
        group.Update(*update.table, update.key, update.changes, std::move(update.old));
    }
    group.Keep();
    return count;
}

std::int64_t Run(Session& session, Plan& plan, StatementLease statement) {
    switch (plan.translation.kind) {
        case Translation::Kind::Insert:
            return RunInsert(session, plan, std::move(statement));
        case Translation::Kind::Update:
            return RunUpdate(session, plan, std::move(statement));
        case Translation::Kind::Delete:
            return RunDelete(session, plan, std::move(statement));
        case Translation::Kind::Query:
            break;
    }
    ThrowIsQuery();
}

}  // namespace

std::int64_t Execute(Session& session, std::string_view sql,
                     std::span<const NamedValue> parameters) {
    const dialect::TokenList tokens = dialect::Tokenize(sql, parameters);
    const std::string signature = Signature(tokens, "execute ");
    std::shared_ptr<Plan> plan = session.FindPlan(signature);
    if (!plan) {
        const dialect::Statement statement = dialect::ParseStatement(tokens);
        if (ChangeSchema(session, statement)) return 0;
        plan = session.AddPlan(signature, Translate(statement, session.Catalog()));
    }
    if (plan->translation.ofAllRows)
        return DeleteAllRows(session, *plan->tables[plan->translation.keyTables.front()]);
    StatementLease statement = session.Start(*plan, tokens.literals);
    const std::int64_t count = Run(session, *plan, std::move(statement));
    session.AfterChange();
    return count;
}

}  // namespace jet::engine
