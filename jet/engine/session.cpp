#include "jet/engine/session.h"

#include <algorithm>

#include "jet/dialect/names.h"
#include "jet/engine/functions.h"
#include "jet/engine/text_order.h"
#include "jet/engine/transfer.h"
#include "jet/engine/wanted_number.h"
#include "jet/verify/check_pages.h"

namespace jet::engine {

namespace {

constexpr std::size_t MostPlans = 1000;

void BindParameter(Statement& statement, int number, const dialect::Parameter& parameter,
                   const dialect::Literal& literal) {
    using Form = dialect::Parameter::Form;
    if (parameter.form == Form::Value) {
        BindValue(statement, number, literal);
        return;
    }
    std::string key = SuffixKey(std::string_view(std::get<std::string>(literal)).substr(1));
    // No UTF-8 has this byte: it ends the range of keys that begin like this one.
    if (parameter.form == Form::SuffixTo) key.push_back('\xFF');
    statement.BindBytes(number, key);
}

/// Whether the rows that can meet a statement's conditions were loaded by their key. Rows of the
/// copy that are none of them do no harm: the statement passes them over.
bool LoadByKey(const dialect::TableUse& use, MirrorTable& table,
               const std::vector<dialect::Literal>& literals) {
    return std::ranges::any_of(use.keys, [&](const dialect::KeyCondition& key) {
        const WantedNumber wanted = NumberEqualTo(use.definition->columns[key.column].type,
                                                  literals[key.literal], key.negated);
        if (wanted.kind == WantedNumber::Kind::None) return true;
        return wanted.kind == WantedNumber::Kind::One &&
               table.LoadRowsWith(key.column, wanted.number);
    });
}

}  // namespace

Session::Session(const std::filesystem::path& path, OpenMode mode, const NeededTables& needed,
                 const std::shared_ptr<storage::FileSystem>& files)
    : mode_(mode),
      file_(storage::DatabaseFile::Open(
          path, mode, files,
          {.needs = [needed](std::string_view table) { return needed.Include(table); },
           .inspect =
               [&](storage::PageStore& pages) {
                   return mode != OpenMode::ReadOnly && Inspect(pages, path.string(), needed);
               }})) {
    for (const storage::UnreadableTable& table : file_->Unreadable())
        LeaveOut(table.name, table.reason);
    MakeCopy();
    catalog_ = [this](std::string_view name) -> const TableDefinition* {
        RequireSound(name);
        for (const auto& table : copy_->tables)
            if (dialect::SameName(table->Definition().name, name)) return &table->Definition();
        return nullptr;
    };
}

/// A new copy, which has nothing yet. The one before stays for record sets that read it.
void Session::MakeCopy() {
    auto copy = std::make_shared<Copy>();
    RegisterFunctions(copy->sqlite);
    copy->sqlite.SetInterruption(interruption_);
    for (const std::string& name : file_->TableNames()) {
        copy->tables.push_back(
            std::make_unique<MirrorTable>(copy->sqlite, copy->statements, file_->OpenTable(name)));
    }
    if (copy_) copy_->plans.clear();
    copy_ = std::move(copy);
}

void Session::SetInterruption(std::function<bool()> wanted) {
    interruption_ = wanted;
    copy_->sqlite.SetInterruption(std::move(wanted));
}

bool Session::Inspect(storage::PageStore& pages, const std::string& file,
                      const NeededTables& needed) {
    const CheckReport report = verify::CheckPages(pages);
    std::size_t serious = 0;
    const std::string* first = nullptr;
    for (const CheckFault& fault : report.faults) {
        if (needed.AreConcernedBy(fault)) {
            if (++serious == 1) first = &fault.text;
        } else {
            LeaveOut(fault.table, fault.text);
        }
    }
    if (serious == 0) return report.faults.empty();
    const std::string others = serious == 1 ? ""
                               : serious == 2
                                   ? ", and another fault"
                                   : ", and " + std::to_string(serious - 1) + " other faults";
    throw Error(ErrorKind::Damaged,
                file + " is damaged: " + *first + others + ". Nothing was changed.");
}

/// One reason is enough.
void Session::LeaveOut(const std::string& table, const std::string& reason) {
    const bool known = std::ranges::any_of(
        damaged_, [&](const DamagedTable& damaged) { return damaged.name == table; });
    if (!known) damaged_.push_back({table, reason});
}

void Session::RequireSound(std::string_view table) const {
    for (const DamagedTable& damaged : damaged_) {
        if (!dialect::SameName(damaged.name, table)) continue;
        throw Error(ErrorKind::Damaged,
                    "The table '" + damaged.name + "' is damaged: " + damaged.reason + ".");
    }
}

MirrorTable& Session::Table(std::string_view name) {
    RequireSound(name);
    for (const auto& table : copy_->tables) {
        if (dialect::SameName(table->Definition().name, name)) return *table;
    }
    throw Error(ErrorKind::NotFound, "Cannot find the table '" + std::string(name) + "'");
}

std::shared_ptr<Plan> Session::FindPlan(const std::string& signature) const {
    const auto found = copy_->plans.find(signature);
    return found == copy_->plans.end() ? nullptr : found->second;
}

std::shared_ptr<Plan> Session::AddPlan(const std::string& signature,
                                       dialect::Translation translation) {
    auto plan = std::make_shared<Plan>();
    plan->translation = std::move(translation);
    plan->copy = copy_;
    plan->statements = copy_->statements.HomeOf(plan->translation.sql);
    for (const dialect::TableUse& use : plan->translation.tables)
        plan->tables.push_back(&Table(use.definition->name));
    if (copy_->plans.size() >= MostPlans) copy_->plans.clear();
    copy_->plans.emplace(signature, plan);
    return plan;
}

/// An index takes as long as some twenty scans. A statement over one table is a scan; one that is
/// not run again and again needs no index.
void Session::LookAfterIndexes(Plan& plan) {
    constexpr std::int64_t ScansWithoutIndex = 3;
    if (plan.tables.size() == 1 && ++plan.starts <= ScansWithoutIndex) return;
    std::uint64_t generation = 1;
    for (const MirrorTable* table : plan.tables)
        generation += table->Generation();
    if (plan.generation == generation) return;
    plan.generation = generation;
    for (std::size_t i = 0; i < plan.tables.size(); ++i)
        copy_->advisor.Prepare(plan.translation.tables[i], *plan.tables[i]);
    copy_->advisor.PrepareEntry(plan.translation.tables, plan.tables);
}

void Session::RequireCurrent(const Plan& plan) const {
    if (plan.copy == copy_) return;
    throw Error(ErrorKind::NotSupported,
                "The tables have changed since this was opened: open it again");
}

void Session::Load(Plan& plan, const std::vector<dialect::Literal>& literals) {
    RequireCurrent(plan);
    if (plan.isLoaded) return;
    const std::vector<dialect::TableUse>& uses = plan.translation.tables;
    for (std::size_t i = 0; i < uses.size(); ++i) {
        MirrorTable& table = *plan.tables[i];
        if (!uses[i].isRead || table.Has(uses[i].columns)) continue;
        if (uses.size() == 1 && LoadByKey(uses[i], table, literals)) return;
        table.Load(uses[i].columns);
    }
    plan.isLoaded = true;
}

StatementLease Session::Start(Plan& plan, const std::vector<dialect::Literal>& literals) {
    Load(plan, literals);
    LookAfterIndexes(plan);
    // The advisor has made those that a join of stored tables needs.
    copy_->sqlite.LetStatementsMakeIndexes(plan.translation.joinsQueries);
    StatementLease statement = copy_->statements.Take(plan.translation.sql, plan.statements);
    const auto& parameters = plan.translation.parameters;
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        BindParameter(*statement, static_cast<int>(i + 1), parameters[i],
                      literals[parameters[i].literal]);
    }
    return statement;
}

void Session::BeforeChange(const MirrorTable& table) {
    if (mode_ == OpenMode::ReadOnly)
        throw Error(ErrorKind::ReadOnly, "The database was opened for reading only");
    table.RequireWritable();
    // Draining takes a stream off the list.
    const std::vector<RowStream*> streams = streams_;
    for (RowStream* stream : streams)
        if (stream->Reads(table)) stream->Drain();
}

void Session::DrainAll() {
    const std::vector<RowStream*> streams = streams_;
    for (RowStream* stream : streams)
        stream->Drain();
}

void Session::Flush() {
    if (inTransaction_) {
        throw Error(ErrorKind::NotSupported,
                    "A transaction is open: its end makes the changes durable");
    }
    if (mode_ != OpenMode::ReadOnly) file_->Commit();
}

void Session::Begin() {
    if (mode_ == OpenMode::ReadOnly)
        throw Error(ErrorKind::ReadOnly, "The database was opened for reading only");
    Flush();
    inTransaction_ = true;
}

void Session::Commit() {
    if (!inTransaction_)
        throw Error(ErrorKind::NotSupported, "There is no transaction that could be completed");
    file_->Commit();
    inTransaction_ = false;
}

void Session::Rollback() {
    if (!inTransaction_) return;
    DrainAll();
    inTransaction_ = false;
    for (const auto& table : copy_->tables)
        table->Detach();
    file_->Revert();
    MakeCopy();
}

template <typename Change>
void Session::ChangeSchema(Change change) {
    const bool own = !inTransaction_;
    if (own) Begin();
    DrainAll();
    try {
        change();
        if (own) Commit();
    } catch (...) {
        Rollback();
        throw;
    }
}

void Session::CreateTable(const TableDefinition& definition) {
    ChangeSchema([&] {
        storage::Table& table = file_->CreateTable(definition);
        copy_->tables.push_back(
            std::make_unique<MirrorTable>(copy_->sqlite, copy_->statements, table));
    });
}

void Session::DropTable(std::string_view name) {
    const std::string dropped = Table(name).Definition().name;
    ChangeSchema([&] {
        for (const auto& table : copy_->tables)
            table->Detach();
        file_->DropTable(dropped);
        MakeCopy();
    });
}

void Session::CreateIndex(std::string_view table, const IndexDefinition& index) {
    const std::string name = Table(table).Definition().name;
    ChangeSchema([&] {
        file_->CreateIndex(name, index);
        Table(name).ReadDefinition();
    });
}

void Session::DropIndex(std::string_view table, std::string_view index) {
    const std::string name = Table(table).Definition().name;
    ChangeSchema([&] {
        file_->DropIndex(name, index);
        Table(name).ReadDefinition();
    });
}

void Session::Discard() {
    if (file_) file_->Discard();
    Close();
}

void Session::Close() {
    if (inTransaction_ && file_) file_->Discard();
    for (const auto& table : copy_->tables)
        table->Detach();
    // The file's own end commits once more and gives up the lock, whatever happens here.
    const std::optional<storage::DatabaseFile> closing = std::exchange(file_, std::nullopt);
}

}  // namespace jet::engine
