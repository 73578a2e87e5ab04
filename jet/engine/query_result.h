#pragma once

#include <deque>
#include <optional>

#include "jet/engine/selection.h"
#include "jet/record_set.h"

namespace jet::engine {

/// A query's rows, read one by one. Before a change to one of their tables would disturb them, the
/// rest of them is fetched into memory.
class QueryResult final : public RecordSet, private RowStream {
  public:
    QueryResult(std::shared_ptr<Session> session, std::string sql,
                std::span<const NamedValue> parameters = {});
    QueryResult(const QueryResult&) = delete;
    QueryResult& operator=(const QueryResult&) = delete;
    ~QueryResult() override;

    bool IsBof() const override { return empty_; }
    bool IsEof() const override { return !onRow_; }
    void MoveFirst() override;
    void MoveNext() override;

    std::size_t FieldCount() const override { return Fields().size(); }
    const std::string& FieldName(std::size_t field) const override {
        return Fields().at(field).name;
    }
    std::size_t FieldIndex(std::string_view name) const override;
    using RecordSet::Get;
    Value Get(std::size_t field) const override;

    using RecordSet::Set;
    void Set(std::size_t field, const Value& value) override;
    void AddNew() override;
    void Update() override {}
    void CancelUpdate() override {}
    void Delete() override;

    void Filter(std::string_view criterion) override;
    void Sort(std::string_view order) override;

  private:
    using Row = std::vector<Value>;

    bool Reads(const MirrorTable& table) const override;
    void Drain() override;
    const std::vector<dialect::ResultColumn>& Fields() const {
        return selection_.CurrentPlan()->translation.columns;
    }
    Row ReadRow() const;
    void Run();
    void Stop() noexcept;

    std::shared_ptr<Session> session_;
    Selection selection_;
    std::optional<StatementLease> statement_;  ///< while rows are left in it
    std::deque<Row> kept_;                     ///< the current row and those behind it
    bool onRow_ = false, empty_ = true, first_ = true;
};

}  // namespace jet::engine
