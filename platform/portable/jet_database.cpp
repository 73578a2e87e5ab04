#include "platform/portable/jet_database.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>
#include <vector>

#include "jet/database.h"
#include "jet/text.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "platform/portable/jet_values.h"
#include "platform/portable/local_file.h"

namespace quillon {
namespace {

FailureNumber NumberOf(jet::ErrorKind kind) {
    switch (kind) {
        case jet::ErrorKind::TypeMismatch:
            return FailureNumber::TypeMismatch;
        case jet::ErrorKind::Overflow:
            return FailureNumber::Overflow;
        default:
            return FailureNumber::Database;
    }
}

/// Does it, with the engine's errors as failures.
template <typename Action>
auto Translated(Action action) {
    try {
        return action();
    } catch (const jet::Error& error) {
        throw Failure::Described(NumberOf(error.Kind()), error.what());
    }
}

std::vector<jet::Database::Field> FieldsToJet(std::span<const FieldValue> fields) {
    std::vector<jet::Database::Field> converted;
    converted.reserve(fields.size());
    for (const FieldValue& field : fields)
        converted.push_back({field.name, ToJet(field.value)});
    return converted;
}

using SharedDatabase = std::shared_ptr<jet::Database>;

class JetRecordSet : public RecordSet {
  public:
    /// Holds the database open for as long as its rows are read.
    JetRecordSet(SharedDatabase database, std::unique_ptr<jet::RecordSet> rows)
        : database_(std::move(database)), rows_(std::move(rows)) {}

    bool IsBof() const override { return rows_->IsBof(); }
    bool IsEof() const override { return rows_->IsEof(); }
    void MoveFirst() override {
        Translated([&] { rows_->MoveFirst(); });
    }
    void MoveNext() override {
        Translated([&] { rows_->MoveNext(); });
    }
    std::size_t FieldCount() const override { return rows_->FieldCount(); }
    Value Get(std::size_t field) const override {
        return Translated([&] { return FromJet(rows_->Get(field), rows_->FieldName(field)); });
    }
    Value Get(std::string_view field) const override {
        return Translated([&] { return FromJet(rows_->Get(field), field); });
    }
    void Set(std::string_view field, const Value& value) override {
        Translated([&] { rows_->Set(field, ToJet(value)); });
    }
    void AddNew() override {
        Translated([&] { rows_->AddNew(); });
    }
    void Update() override {
        Translated([&] { rows_->Update(); });
    }
    void CancelUpdate() override {
        Translated([&] { rows_->CancelUpdate(); });
    }
    void Delete() override {
        Translated([&] { rows_->Delete(); });
    }
    void Filter(std::string_view criterion) override {
        Translated([&] { rows_->Filter(criterion); });
    }
    void Sort(std::string_view order) override {
        Translated([&] { rows_->Sort(order); });
    }

  private:
    SharedDatabase database_;
    std::unique_ptr<jet::RecordSet> rows_;
};

class JetRowInserter : public RowInserter {
  public:
    JetRowInserter(SharedDatabase database, std::unique_ptr<jet::Database::Inserter> rows)
        : database_(std::move(database)), rows_(std::move(rows)) {}

    AddedRow Insert(std::span<const Value> values) override {
        return Insert(values, [](const Value& value) { return &value; });
    }

    AddedRow Insert(std::span<const FieldValue> fields) {
        return Insert(fields, [](const FieldValue& field) { return &field.value; });
    }

  private:
    AddedRow Insert(auto fields, auto valueOf) {
        row_.resize(fields.size());
        for (std::size_t i = 0; i < fields.size(); ++i)
            ToJet(*valueOf(fields[i]), row_[i]);
        const jet::Database::AddedRow added = Translated([&] { return rows_->Insert(row_); });
        return {.key = RowKey{added.key}, .number = added.number};
    }

    SharedDatabase database_;
    std::unique_ptr<jet::Database::Inserter> rows_;
    std::vector<jet::Value> row_;
};

class JetConnection : public Connection {
  public:
    explicit JetConnection(SharedDatabase database) : database_(std::move(database)) {}

    std::int64_t Execute(std::string_view sql) override {
        inserters_.clear();  // it may make other tables
        return Translated([&] { return database_->Execute(sql); });
    }
    std::unique_ptr<RecordSet> Query(std::string_view sql) override {
        return Rows([&] { return database_->Query(sql); });
    }
    std::unique_ptr<RecordSet> OpenUpdatable(std::string_view sql) override {
        return Rows([&] { return database_->OpenUpdatable(sql); });
    }
    std::unique_ptr<RecordSet> OpenTable(std::string_view table) override {
        return Rows([&] { return database_->OpenTable(table); });
    }
    void Scan(std::string_view table, std::span<const std::string_view> fields,
              const VisitRow& visit) override {
        std::vector<Value> values(fields.size());
        Translated([&] {
            database_->Scan(table, fields,
                            [&](jet::Database::RowKey key, std::span<jet::Value> row) {
                                for (std::size_t i = 0; i < row.size(); ++i)
                                    ExchangeFromJet(row[i], fields[i], values[i]);
                                visit(RowKey{key}, values);
                            });
        });
    }
    Value Read(std::string_view table, RowKey row, std::string_view field) override {
        return Translated([&] {
            return FromJet(database_->Read(table, static_cast<std::int64_t>(row), field), field);
        });
    }
    bool Has(std::string_view table, RowKey row) override {
        return Translated([&] { return database_->Has(table, static_cast<std::int64_t>(row)); });
    }
    AddedRow Insert(std::string_view table, std::span<const FieldValue> fields) override {
        return InserterFor(table, fields).Insert(fields);
    }
    std::unique_ptr<RowInserter> OpenInserter(std::string_view table,
                                              std::span<const std::string_view> fields) override {
        constexpr auto Placing = jet::Database::Placing::BehindAllOthers;
        return std::make_unique<JetRowInserter>(
            database_, Translated([&] { return database_->OpenInserter(table, fields, Placing); }));
    }
    void Update(std::string_view table, RowKey row, std::span<const FieldValue> fields) override {
        Translated(
            [&] { database_->Update(table, static_cast<std::int64_t>(row), FieldsToJet(fields)); });
    }
    void Delete(std::string_view table, RowKey row) override {
        Translated([&] { database_->Delete(table, static_cast<std::int64_t>(row)); });
    }
    std::size_t ReplaceDate(std::string_view table, std::string_view field, DateTime before,
                            DateTime after) override {
        return Translated(
            [&] { return database_->ReplaceDate(table, field, {before.days}, {after.days}); });
    }
    void Together(const std::function<void()>& work) {
        // Inserters do not outlive rows that are taken back.
        struct Forgetting {
            std::vector<KnownInserter>& inserters;
            ~Forgetting() { inserters.clear(); }
        };
        Translated([&] {
            const Forgetting forgetting{inserters_};
            jet::Transaction transaction(*database_);
            work();
            transaction.Commit();
        });
    }
    std::int64_t NextNumber(std::string_view table) const override {
        return Translated([&] { return database_->NextNumber(table); });
    }
    std::string FoldText(std::string_view text) const override { return jet::FoldCase(text); }
    int CompareTexts(std::string_view left, std::string_view right) const override {
        return jet::CompareTexts(left, right);
    }
    void Flush() override {
        Translated([&] { database_->Flush(); });
    }

  private:
    /// What adds rows of these fields, by the names of table and fields.
    struct KnownInserter {
        std::string table;
        std::vector<std::string> fields;
        std::unique_ptr<JetRowInserter> rows;

        bool IsFor(std::string_view otherTable, std::span<const FieldValue> otherFields) const {
            const auto isSame = [](const std::string& name, const FieldValue& field) {
                return name == field.name;
            };
            return table == otherTable && std::ranges::equal(fields, otherFields, isSame);
        }
    };

    /// Rows are added by the thousand, and finding table and fields by name takes as long as adding
    /// one.
    JetRowInserter& InserterFor(std::string_view table, std::span<const FieldValue> fields) {
        constexpr std::size_t MostKnown = 16;
        for (const KnownInserter& known : inserters_) {
            if (known.IsFor(table, fields)) return *known.rows;
        }
        std::vector<std::string_view> names;
        for (const FieldValue& field : fields)
            names.push_back(field.name);
        auto rows = std::make_unique<JetRowInserter>(
            database_, Translated([&] { return database_->OpenInserter(table, names); }));
        if (inserters_.size() >= MostKnown) inserters_.clear();
        inserters_.push_back({std::string(table),
                              std::vector<std::string>(names.begin(), names.end()),
                              std::move(rows)});
        return *inserters_.back().rows;
    }

    template <typename Opening>
    std::unique_ptr<RecordSet> Rows(Opening opening) {
        return std::make_unique<JetRecordSet>(database_, Translated(opening));
    }

    SharedDatabase database_;
    std::vector<KnownInserter> inserters_;
};

/// Takes a value off the text, up to the semicolon that ends it; in quotes, which are doubled where
/// they belong to the value, it may hold semicolons.
std::string TakeValue(std::string_view& text) {
    const std::size_t start = std::min(text.find_first_not_of(' '), text.size());
    text.remove_prefix(start);
    std::string value;
    if (!text.empty() && (text.front() == '"' || text.front() == '\'')) {
        const char quote = text.front();
        text.remove_prefix(1);
        while (!text.empty()) {
            const bool isQuote = text.front() == quote;
            if (isQuote && (text.size() < 2 || text[1] != quote)) break;
            value += text.front();
            text.remove_prefix(isQuote ? 2 : 1);
        }
        text.remove_prefix(std::min(text.find(';'), text.size()));
        return value;
    }
    value = Trim(text.substr(0, text.find(';')));
    text.remove_prefix(std::min(text.find(';'), text.size()));
    return value;
}

}  // namespace

ConnectionString ParseConnectionString(std::string_view text) {
    ConnectionString parsed;
    while (true) {
        const std::size_t equals = text.find('=');
        if (equals == std::string_view::npos) return parsed;
        std::string_view name = text.substr(0, equals);
        const std::size_t empties = name.rfind(';');
        if (empties != std::string_view::npos) name.remove_prefix(empties + 1);
        text.remove_prefix(equals + 1);
        const std::string value = TakeValue(text);
        if (EqualIgnoringCase(Trim(name), "Provider")) parsed.provider = value;
        if (EqualIgnoringCase(Trim(name), "Data Source")) parsed.dataSource = value;
    }
}

std::unique_ptr<Connection> JetDatabaseProvider::Open(std::string_view connectionString) {
    const ConnectionString parsed = ParseConnectionString(connectionString);
    if (!EqualIgnoringCase(parsed.provider, "Microsoft.Jet.OLEDB.4.0")) {
        throw Failure::Described(FailureNumber::Database,
                                 "Provider cannot be found: \"" + parsed.provider + '"');
    }
    if (parsed.dataSource.empty()) {
        throw Failure::Described(FailureNumber::Database, "No database file is named");
    }
    const std::string local = resolver_.Local(parsed.dataSource);
    std::weak_ptr<jet::Database>& known = open_[IdentityOf(local)];
    SharedDatabase database = known.lock();
    if (!database) {
        database = OpenFile(local);
        known = database;
        if (onceHeld_ && !keepsInMemory_) std::exchange(onceHeld_, {})();
    }
    return std::make_unique<JetConnection>(std::move(database));
}

void JetDatabaseProvider::Together(Connection& connection, const std::function<void()>& work) {
    dynamic_cast<JetConnection&>(connection).Together(work);
}

FileIdentity JetDatabaseProvider::IdentityOf(const std::string& path) {
    const std::optional<FileFacts> facts = FactsOf(path);
    if (!facts) {
        throw Failure::Described(
            FailureNumber::Database,
            "Cannot open " + path + ": " + std::generic_category().message(errno) + ".", path);
    }
    return facts->identity;
}

SharedDatabase JetDatabaseProvider::OpenFile(const std::string& path) const {
    return Translated([&] {
        auto database = std::make_shared<jet::Database>(jet::Database::Open(
            path, keepsInMemory_ ? jet::OpenMode::InMemory : jet::OpenMode::ReadWrite,
            jet::NeededTables{demands_.tables}));
        database->SetObserver(observer_);
        for (const jet::DamagedTable& table : database->Damaged()) {
            if (demands_.note) {
                demands_.note("Table " + table.name +
                              " of the database is damaged; no run needs it, and it is left as it "
                              "is: " +
                              table.reason);
            }
        }
        return database;
    });
}

}  // namespace quillon
