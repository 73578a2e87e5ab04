#pragma once

#include <optional>
#include <utility>

#include "jet/engine/key_stream.h"
#include "jet/engine/row_reader.h"
#include "jet/engine/selection.h"
#include "jet/record_set.h"

namespace jet::engine {

/// Rows that can be changed: a whole table, or the rows of a query that stand for stored rows. Only
/// the keys of the rows are held, and only those that have been reached; nothing is selected until
/// somebody asks about a row.
class Cursor final : public RecordSet {
  public:
    Cursor(std::shared_ptr<Session> session, std::string sql,
           std::span<const NamedValue> parameters = {});

    bool IsBof() const override;
    bool IsEof() const override;
    void MoveFirst() override;
    void MoveNext() override;

    std::size_t FieldCount() const override { return fields_.size(); }
    const std::string& FieldName(std::size_t field) const override {
        return fields_.at(field).name;
    }
    std::size_t FieldIndex(std::string_view name) const override;
    using RecordSet::Get;
    Value Get(std::size_t field) const override;

    using RecordSet::Set;
    void Set(std::size_t field, const Value& value) override;
    void AddNew() override;
    void Update() override;
    void CancelUpdate() override;
    void Delete() override;

    void Filter(std::string_view criterion) override;
    void Sort(std::string_view order) override;

  private:
    enum class Standing {
        Unknown,  ///< before the first row, if there is one: nothing has been selected yet
        OnRow,
        OnDeletedRow,
        AtEnd,
        Empty,
    };
    /// Where the cursor is. Reading moves it from Unknown to a row, which callers cannot notice.
    struct Place {
        Standing standing = Standing::Unknown;
        std::unique_ptr<KeyStream> rows;
        std::size_t position = 0;
        std::vector<RowKey> keys;  ///< of the current row
        std::vector<RowReader> readers;
    };
    struct Field {
        std::size_t slot = 0;  ///< which of the row's keys
        std::size_t column = 0;
    };

    void Restart();
    void Settle() const;
    void StandOn(std::size_t position) const;
    bool IsWhole() const;
    void RequireRow() const;
    Value ReadStored(std::size_t field) const;
    Value ValueOfNewRow(std::size_t field) const;
    const ColumnDefinition& Definition(std::size_t field) const;
    const Value* FindPending(std::size_t field) const;
    void InsertRow();
    void ChangeRow();

    std::shared_ptr<Session> session_;
    Selection selection_;
    std::vector<dialect::ResultColumn> fields_;
    std::vector<Field> sources_;
    std::unique_ptr<Place> place_;
    bool adding_ = false;
    std::vector<std::pair<std::size_t, Value>> pending_;  ///< field and its new value
};

}  // namespace jet::engine
