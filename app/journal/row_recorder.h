#pragma once

#include <functional>
#include <utility>

#include "changes/change.h"
#include "jet/row_observer.h"

namespace quillon {

/// Records the rows of a database that change. They reach the sink before they can reach the file,
/// and the file only after the sink has made them durable. Binary fields are told as texts of their
/// bytes.
class RowRecorder : public jet::RowObserver {
  public:
    /// The sink must outlive this object. `beforeCommit` makes durable what rows rely on, such as
    /// the files that new ones name; what it throws keeps the rows from being saved.
    explicit RowRecorder(ChangeSink& sink, std::function<void()> beforeCommit = {})
        : sink_(sink), beforeCommit_(std::move(beforeCommit)) {}

    void RowAdded(const jet::TableDefinition& table, std::span<const jet::Value> row) override;
    void RowChanged(const jet::TableDefinition& table, std::span<const jet::Value> before,
                    std::span<const jet::Value> after) override;
    void RowRemoved(const jet::TableDefinition& table, std::span<const jet::Value> row) override;
    void DateReplaced(const jet::TableDefinition& table, const jet::ReplacedDate& date) override;
    void BeforeCommit() override {
        if (beforeCommit_) beforeCommit_();
        sink_.MakeDurable();
    }
    void AfterCommit() override { sink_.Note(RowsSaved{}); }

  private:
    RowChange& Begin(RowChange::Kind kind, const jet::TableDefinition& table,
                     std::span<const jet::Value> row);

    ChangeSink& sink_;
    std::function<void()> beforeCommit_;
    /// The last one, whose memory is good for the next: rows come by the thousand.
    ChangeRecord record_ = RowChange{};
};

}  // namespace quillon
