#include "tests/support/faulty_connection.h"

#include "platform/failure.h"

namespace quillon::support {
namespace {

[[noreturn]] void ThrowRefused() {
    throw Failure::Described(FailureNumber::Database, "refused");
}

}  // namespace

/// A table cursor that refuses the value its connection was told of.
class FaultyCursor : public RecordSet {
  public:
    FaultyCursor(FaultyConnection& connection, std::string_view table,
                 std::unique_ptr<RecordSet> real)
        : connection_(connection), table_(table), real_(std::move(real)) {}

    bool IsBof() const override { return real_->IsBof(); }
    bool IsEof() const override { return real_->IsEof(); }
    void MoveFirst() override { real_->MoveFirst(); }
    void MoveNext() override { real_->MoveNext(); }
    std::size_t FieldCount() const override { return real_->FieldCount(); }
    Value Get(std::size_t field) const override { return real_->Get(field); }
    Value Get(std::string_view field) const override { return real_->Get(field); }
    void Set(std::string_view field, const Value& value) override {
        connection_.RequireAllowed(field, value);
        real_->Set(field, value);
    }
    void AddNew() override {
        connection_.Note("AddNew " + table_);
        real_->AddNew();
    }
    void Update() override {
        connection_.Note("Update " + table_);
        real_->Update();
    }
    void CancelUpdate() override { real_->CancelUpdate(); }
    void Delete() override { real_->Delete(); }
    void Filter(std::string_view criterion) override {
        connection_.Note("Filter " + table_ + " " + std::string(criterion));
        real_->Filter(criterion);
    }
    void Sort(std::string_view order) override { real_->Sort(order); }

  private:
    FaultyConnection& connection_;
    std::string table_;
    std::unique_ptr<RecordSet> real_;
};

class FaultyInserter : public RowInserter {
  public:
    FaultyInserter(FaultyConnection& connection, std::string_view table,
                   std::span<const std::string_view> fields, std::unique_ptr<RowInserter> real)
        : connection_(connection),
          table_(table),
          fields_(fields.begin(), fields.end()),
          real_(std::move(real)) {}

    AddedRow Insert(std::span<const Value> values) override {
        connection_.Note("Insert " + table_);
        for (std::size_t i = 0; i < values.size(); ++i)
            connection_.RequireAllowed(fields_[i], values[i]);
        return real_->Insert(values);
    }

  private:
    FaultyConnection& connection_;
    std::string table_;
    std::vector<std::string> fields_;
    std::unique_ptr<RowInserter> real_;
};

std::size_t FaultyConnection::Count(std::string_view text) const {
    std::size_t count = 0;
    for (const std::string& statement : statements_)
        count += statement.find(text) != std::string::npos ? 1U : 0U;
    return count;
}

std::int64_t FaultyConnection::Execute(std::string_view sql) {
    Note(sql);
    return real_->Execute(sql);
}

std::unique_ptr<RecordSet> FaultyConnection::Query(std::string_view sql) {
    Note(sql);
    return real_->Query(sql);
}

std::unique_ptr<RecordSet> FaultyConnection::OpenUpdatable(std::string_view sql) {
    Note(sql);
    return real_->OpenUpdatable(sql);
}

std::unique_ptr<RecordSet> FaultyConnection::OpenTable(std::string_view table) {
    Note("OpenTable " + std::string(table));
    return std::make_unique<FaultyCursor>(*this, table, real_->OpenTable(table));
}

void FaultyConnection::Scan(std::string_view table, std::span<const std::string_view> fields,
                            const VisitRow& visit) {
    Note("Scan " + std::string(table));
    real_->Scan(table, fields, visit);
}

AddedRow FaultyConnection::Insert(std::string_view table, std::span<const FieldValue> fields) {
    Note("Insert " + std::string(table));
    for (const FieldValue& field : fields)
        RequireAllowed(field.name, field.value);
    return real_->Insert(table, fields);
}

std::unique_ptr<RowInserter> FaultyConnection::OpenInserter(
    std::string_view table, std::span<const std::string_view> fields) {
    Note("OpenInserter " + std::string(table));
    return std::make_unique<FaultyInserter>(*this, table, fields,
                                            real_->OpenInserter(table, fields));
}

void FaultyConnection::Update(std::string_view table, RowKey row,
                              std::span<const FieldValue> fields) {
    Note("Update " + std::string(table));
    for (const FieldValue& field : fields)
        RequireAllowed(field.name, field.value);
    real_->Update(table, row, fields);
}

void FaultyConnection::Delete(std::string_view table, RowKey row) {
    Note("Delete " + std::string(table));
    real_->Delete(table, row);
}

std::size_t FaultyConnection::ReplaceDate(std::string_view table, std::string_view field,
                                          DateTime before, DateTime after) {
    Note("ReplaceDate " + std::string(table));
    return real_->ReplaceDate(table, field, before, after);
}

void FaultyConnection::RequireAllowed(std::string_view field, const Value& value) const {
    const bool isRefused =
        refusedValue_ && refusedValue_->first == field && value == Value(refusedValue_->second);
    if (isRefused) ThrowRefused();
}

void FaultyConnection::Flush() {
    Note("Flush");
    real_->Flush();
}

void FaultyConnection::Note(std::string_view statement) {
    if (trigger_ && statement.find(trigger_->first) != std::string_view::npos) {
        const auto work = std::move(trigger_->second);
        trigger_.reset();
        work();
    }
    if (numberedTrigger_.first > 0 && --numberedTrigger_.first == 0)
        numberedTrigger_.second(*real_);
    statements_.emplace_back(statement);
    for (const std::string& text : refused_) {
        if (statement.find(text) != std::string_view::npos) ThrowRefused();
    }
}

}  // namespace quillon::support
