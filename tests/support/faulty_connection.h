#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/database.h"

namespace quillon::support {

/// A database that notes its statements and refuses those that a test names. What a table cursor
/// does counts as a statement, too: "Filter Tracks ID=5", "AddNew Tracks", "Update Tracks"; so does
/// what is done by row: "Scan Tracks", "Read Tracks", "Has Tracks", "OpenInserter Tracks", "Insert
/// Tracks", "Update Tracks", "Delete Tracks", "ReplaceDate Tracks".
class FaultyConnection : public Connection {
  public:
    explicit FaultyConnection(std::unique_ptr<Connection> real) : real_(std::move(real)) {}

    /// Every further statement that contains the text fails with the description "refused".
    void Refuse(std::string text) { refused_.push_back(std::move(text)); }
    /// No more.
    void Allow(std::string_view text) { std::erase(refused_, text); }

    /// Every further assignment of this text to this field of a table cursor fails alike.
    void RefuseValue(std::string field, std::string text) {
        refusedValue_ = {std::move(field), std::move(text)};
    }

    /// Runs something once, before the next statement that contains the text.
    void BeforeStatement(std::string text, std::function<void()> work) {
        trigger_ = {std::move(text), std::move(work)};
    }

    /// Runs something before the nth statement from now on, with the connection behind this one.
    void BeforeStatementNumber(std::size_t n, std::function<void(Connection&)> work) {
        numberedTrigger_ = {n, std::move(work)};
    }

    /// How often a statement containing the text was run.
    std::size_t Count(std::string_view text) const;
    void ForgetStatements() { statements_.clear(); }

    std::int64_t Execute(std::string_view sql) override;
    std::unique_ptr<RecordSet> Query(std::string_view sql) override;
    std::unique_ptr<RecordSet> OpenUpdatable(std::string_view sql) override;
    std::unique_ptr<RecordSet> OpenTable(std::string_view table) override;
    void Scan(std::string_view table, std::span<const std::string_view> fields,
              const VisitRow& visit) override;
    Value Read(std::string_view table, RowKey row, std::string_view field) override {
        Note("Read " + std::string(table));
        return real_->Read(table, row, field);
    }
    bool Has(std::string_view table, RowKey row) override {
        Note("Has " + std::string(table));
        return real_->Has(table, row);
    }
    std::int64_t NextNumber(std::string_view table) const override {
        return real_->NextNumber(table);
    }
    std::string FoldText(std::string_view text) const override { return real_->FoldText(text); }
    int CompareTexts(std::string_view left, std::string_view right) const override {
        return real_->CompareTexts(left, right);
    }
    AddedRow Insert(std::string_view table, std::span<const FieldValue> fields) override;
    std::unique_ptr<RowInserter> OpenInserter(std::string_view table,
                                              std::span<const std::string_view> fields) override;
    void Update(std::string_view table, RowKey row, std::span<const FieldValue> fields) override;
    void Delete(std::string_view table, RowKey row) override;
    std::size_t ReplaceDate(std::string_view table, std::string_view field, DateTime before,
                            DateTime after) override;
    void Flush() override;

  private:
    friend class FaultyCursor;
    friend class FaultyInserter;
    void Note(std::string_view statement);
    void RequireAllowed(std::string_view field, const Value& value) const;

    std::unique_ptr<Connection> real_;
    std::vector<std::string> refused_, statements_;
    std::optional<std::pair<std::string, std::string>> refusedValue_;
    std::optional<std::pair<std::string, std::function<void()>>> trigger_;
    std::pair<std::size_t, std::function<void(Connection&)>> numberedTrigger_;
};

}  // namespace quillon::support
