#include "jet/database.h"

#include <algorithm>
#include <utility>

#include "jet/engine/convert.h"
#include "jet/engine/cursor.h"
#include "jet/engine/execute.h"
#include "jet/engine/query_result.h"
#include "jet/engine/session.h"

namespace jet {

namespace {

/// Shares the session, so that using it after the database is closed is an error and nothing worse.
class TableInserter : public Database::Inserter {
  public:
    TableInserter(std::shared_ptr<engine::Session> session, std::string_view table,
                  std::span<const std::string_view> fields)
        : session_(std::move(session)),
          table_(session_->Table(table)),
          row_(table_.Definition().columns.size()) {
        for (const std::string_view field : fields)
            columns_.push_back(table_.Column(field));
        for (std::size_t i = 0; i < row_.size(); ++i)
            if (std::ranges::find(columns_, i) == columns_.end()) others_.push_back(i);
    }

    Database::AddedRow Insert(std::span<Value> values) override {
        for (const std::size_t column : others_)
            row_[column] = Null{};
        // Texts change places, so that none is copied and their room is used again.
        for (std::size_t i = 0; i < columns_.size(); ++i)
            std::swap(row_[columns_[i]], values[i]);
        session_->BeforeChange(table_);
        Database::AddedRow added;
        added.key = table_.Insert(row_, &added.number);
        session_->AfterChange();
        return added;
    }

  private:
    std::shared_ptr<engine::Session> session_;
    engine::MirrorTable& table_;
    std::vector<std::size_t> columns_, others_;
    storage::Row row_;
};

}  // namespace

/// Record sets hold the session too: they can be read, and let go, after the file is closed.
class Database::Implementation {
  public:
    Implementation(const std::filesystem::path& path, OpenMode mode, const NeededTables& needed)
        : session(std::make_shared<engine::Session>(path, mode, needed)) {}
    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;
    ~Implementation() { session->Close(); }

    std::shared_ptr<engine::Session> session;
};

Database::Database(std::unique_ptr<Implementation> implementation)
    : implementation_(std::move(implementation)) {}
Database::Database(Database&&) noexcept = default;
Database& Database::operator=(Database&&) noexcept = default;
Database::~Database() = default;

Database Database::Open(const std::filesystem::path& path, OpenMode mode,
                        const NeededTables& needed) {
    return Database(std::make_unique<Implementation>(path, mode, needed));
}

void Database::Create(const std::filesystem::path& path, std::span<const TableDefinition> tables) {
    storage::DatabaseFile::Create(path, tables);
}

std::int64_t Database::Execute(std::string_view sql, Parameters parameters) {
    return engine::Execute(*implementation_->session, sql, parameters);
}

std::unique_ptr<RecordSet> Database::Query(std::string_view sql, Parameters parameters) {
    return std::make_unique<engine::QueryResult>(implementation_->session, std::string(sql),
                                                 parameters);
}

std::unique_ptr<RecordSet> Database::OpenUpdatable(std::string_view sql, Parameters parameters) {
    return std::make_unique<engine::Cursor>(implementation_->session, std::string(sql), parameters);
}

void Database::CreateTable(const TableDefinition& definition) {
    implementation_->session->CreateTable(definition);
}

void Database::DropTable(std::string_view name) {
    implementation_->session->DropTable(name);
}

void Database::CreateIndex(std::string_view table, const IndexDefinition& index) {
    implementation_->session->CreateIndex(table, index);
}

void Database::DropIndex(std::string_view table, std::string_view index) {
    implementation_->session->DropIndex(table, index);
}

Transaction::Transaction(Database& database) : database_(database) {
    database_.implementation_->session->Begin();
}

Transaction::~Transaction() {
    try {
        Rollback();
    } catch (const Error&) {
        // There is nobody to tell, and nothing of it can reach the file any more.
        return;
    }
}

void Transaction::Commit() {
    database_.implementation_->session->Commit();
    open_ = false;
}

void Transaction::Rollback() {
    if (std::exchange(open_, false)) database_.implementation_->session->Rollback();
}

std::unique_ptr<RecordSet> Database::OpenTable(std::string_view table) {
    const engine::MirrorTable& opened = implementation_->session->Table(table);
    return std::make_unique<engine::Cursor>(implementation_->session,
                                            "SELECT * FROM [" + opened.Definition().name + "]");
}

void Database::Scan(std::string_view table, std::span<const std::string_view> fields,
                    const std::function<void(RowKey, std::span<Value>)>& visit) {
    const engine::MirrorTable& scanned = implementation_->session->Table(table);
    std::vector<std::size_t> columns;
    for (const std::string_view field : fields)
        columns.push_back(scanned.Column(field));
    scanned.Scan(columns, visit);
}

Value Database::Read(std::string_view table, RowKey row, std::string_view field) {
    const engine::MirrorTable& source = implementation_->session->Table(table);
    return source.Read(row)[source.Column(field)];
}

bool Database::Has(std::string_view table, RowKey row) {
    try {
        static_cast<void>(implementation_->session->Table(table).Read(row));
        return true;
    } catch (const Error& error) {
        if (error.Kind() != ErrorKind::NotFound) throw;
        return false;
    }
}

std::size_t Database::RowCount(std::string_view table) const {
    return implementation_->session->Table(table).StoredRows();
}

std::int64_t Database::NextNumber(std::string_view table) const {
    return implementation_->session->Table(table).NextAutoNumber();
}

Database::AddedRow Database::Insert(std::string_view table, std::span<const Field> fields) {
    engine::Session& session = *implementation_->session;
    engine::MirrorTable& target = session.Table(table);
    storage::Row row(target.Definition().columns.size());
    for (const Field& field : fields)
        row[target.Column(field.name)] = field.value;
    session.BeforeChange(target);
    AddedRow added;
    added.key = target.Insert(row, &added.number);
    session.AfterChange();
    return added;
}

std::unique_ptr<Database::Inserter> Database::OpenInserter(std::string_view table,
                                                           std::span<const std::string_view> fields,
                                                           Placing placing) {
    auto inserter = std::make_unique<TableInserter>(implementation_->session, table, fields);
    if (placing == Placing::BehindAllOthers) implementation_->session->Table(table).KeepOrder();
    return inserter;
}

void Database::Update(std::string_view table, RowKey row, std::span<const Field> fields) {
    engine::Session& session = *implementation_->session;
    engine::MirrorTable& target = session.Table(table);
    std::vector<storage::FieldChange> changes;
    for (const Field& field : fields) {
        const std::size_t column = target.Column(field.name);
        changes.push_back(
            {column, engine::ConvertToField(target.Definition().columns[column], field.value)});
    }
    session.BeforeChange(target);
    target.Update(row, changes);
    session.AfterChange();
}

void Database::Delete(std::string_view table, RowKey row) {
    engine::Session& session = *implementation_->session;
    engine::MirrorTable& target = session.Table(table);
    session.BeforeChange(target);
    target.Delete(row);
    session.AfterChange();
}

std::size_t Database::ReplaceDate(std::string_view table, std::string_view field, Date before,
                                  Date after) {
    engine::Session& session = *implementation_->session;
    engine::MirrorTable& target = session.Table(table);
    session.BeforeChange(target);
    const std::size_t rows = target.ReplaceDate(target.Column(field), before, after);
    session.AfterChange();
    return rows;
}

std::vector<TableDefinition> Database::Tables() const {
    std::vector<TableDefinition> definitions;
    for (const auto& table : implementation_->session->Tables())
        definitions.push_back(table->Definition());
    return definitions;
}

TableDefinition Database::TableNamed(std::string_view name) const {
    return implementation_->session->Table(name).Definition();
}

const std::vector<DamagedTable>& Database::Damaged() const {
    return implementation_->session->Damaged();
}

void Database::SetInterruption(std::function<bool()> wanted) {
    implementation_->session->SetInterruption(std::move(wanted));
}

void Database::SetObserver(RowObserver* observer) {
    implementation_->session->SetObserver(observer);
}

void Database::Discard() {
    implementation_->session->Discard();
}

void Database::Flush() {
    implementation_->session->Flush();
}

}  // namespace jet
