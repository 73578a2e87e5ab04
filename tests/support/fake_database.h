#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/basic_text.h"
#include "platform/database.h"
#include "tests/support/fake_calls.h"

namespace quillon::fakes {

/// Rows given by a test, read from first to last.
struct FakeTable {
    std::vector<std::string> fields;
    std::vector<std::vector<Value>> rows;
};

/// A forward result over a FakeTable; it refuses to change anything.
class FakeRecordSet : public RecordSet {
  public:
    explicit FakeRecordSet(FakeTable table) : table_(std::move(table)) {}

    bool IsBof() const override { return table_.rows.empty(); }
    bool IsEof() const override { return row_ >= table_.rows.size(); }
    void MoveFirst() override { row_ = 0; }
    void MoveNext() override { ++row_; }
    std::size_t FieldCount() const override { return table_.fields.size(); }
    Value Get(std::size_t field) const override { return table_.rows.at(row_).at(field); }
    Value Get(std::string_view field) const override {
        for (std::size_t i = 0; i < table_.fields.size(); ++i) {
            if (EqualIgnoringCase(table_.fields[i], field)) return Get(i);
        }
        throw Failure(FailureNumber::Database, "no field " + std::string(field));
    }

    void Set(std::string_view, const Value&) override { ReadOnly(); }
    void AddNew() override { ReadOnly(); }
    void Update() override { ReadOnly(); }
    void CancelUpdate() override { ReadOnly(); }
    void Delete() override { ReadOnly(); }
    void Filter(std::string_view) override { ReadOnly(); }
    void Sort(std::string_view) override { ReadOnly(); }

  private:
    [[noreturn]] static void ReadOnly() {
        throw Failure(FailureNumber::Database, "a fake record set is read-only");
    }

    FakeTable table_;
    std::size_t row_ = 0;
};

/// A database that notes every statement and answers with the tables it was given.
class FakeDatabase : public DatabaseProvider {
  public:
    explicit FakeDatabase(Calls& calls) : calls_(calls) {}

    std::unique_ptr<Connection> Open(std::string_view connectionString) override;

    std::map<std::string, FakeTable> tables;   ///< by name, as OpenTable gives them
    std::map<std::string, FakeTable> answers;  ///< by statement, as Query gives them

  private:
    friend class FakeConnection;
    Calls& calls_;
};

class FakeConnection : public Connection {
  public:
    explicit FakeConnection(FakeDatabase& database) : database_(database) {}
    FakeConnection(const FakeConnection&) = delete;
    FakeConnection& operator=(const FakeConnection&) = delete;
    ~FakeConnection() override { database_.calls_.Note("CloseDatabase"); }

    std::int64_t Execute(std::string_view sql) override {
        database_.calls_.Note("Execute " + std::string(sql));
        return 0;
    }

    std::unique_ptr<RecordSet> Query(std::string_view sql) override {
        database_.calls_.Note("Query " + std::string(sql));
        const auto found = database_.answers.find(std::string(sql));
        return std::make_unique<FakeRecordSet>(found == database_.answers.end() ? FakeTable{}
                                                                                : found->second);
    }

    std::unique_ptr<RecordSet> OpenUpdatable(std::string_view sql) override { return Query(sql); }

    std::unique_ptr<RecordSet> OpenTable(std::string_view table) override {
        database_.calls_.Note("OpenTable " + std::string(table));
        const auto found = database_.tables.find(std::string(table));
        if (found == database_.tables.end()) {
            throw Failure(FailureNumber::Database, "no table " + std::string(table));
        }
        return std::make_unique<FakeRecordSet>(found->second);
    }

    void Scan(std::string_view table, std::span<const std::string_view> fields,
              const VisitRow& visit) override {
        const std::unique_ptr<RecordSet> rows = OpenTable(table);
        std::vector<Value> values(fields.size());
        for (std::int64_t key = 1; !rows->IsEof(); rows->MoveNext(), ++key) {
            for (std::size_t i = 0; i < fields.size(); ++i)
                values[i] = rows->Get(fields[i]);
            visit(RowKey{key}, values);
        }
    }
    Value Read(std::string_view, RowKey, std::string_view) override { return Null{}; }
    bool Has(std::string_view, RowKey) override { return true; }
    std::int64_t NextNumber(std::string_view) const override { return 1; }
    std::string FoldText(std::string_view text) const override { return LowerCase(text); }
    int CompareTexts(std::string_view left, std::string_view right) const override {
        return LowerCase(left).compare(LowerCase(right));
    }
    AddedRow Insert(std::string_view table, std::span<const FieldValue>) override {
        database_.calls_.Note("Insert " + std::string(table));
        return {};
    }
    std::unique_ptr<RowInserter> OpenInserter(std::string_view table,
                                              std::span<const std::string_view>) override {
        throw Failure(FailureNumber::Database, "no rows are added to " + std::string(table));
    }
    void Update(std::string_view table, RowKey, std::span<const FieldValue>) override {
        database_.calls_.Note("Update " + std::string(table));
    }
    void Delete(std::string_view table, RowKey) override {
        database_.calls_.Note("Delete " + std::string(table));
    }

    std::size_t ReplaceDate(std::string_view table, std::string_view, DateTime, DateTime) override {
        database_.calls_.Note("ReplaceDate " + std::string(table));
        return 0;
    }

    void Flush() override { database_.calls_.Note("Flush"); }

  private:
    FakeDatabase& database_;
};

inline std::unique_ptr<Connection> FakeDatabase::Open(std::string_view connectionString) {
    calls_.Note("OpenDatabase " + std::string(connectionString));
    return std::make_unique<FakeConnection>(*this);
}

}  // namespace quillon::fakes
