#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "platform/date_time.h"

namespace quillon {

/// The absence of a value. An empty text is not Null.
struct Null {
    auto operator<=>(const Null&) const = default;
};

/// One field's content, as far as the library tables need it.
using Value = std::variant<Null, bool, std::int64_t, double, DateTime, std::string>;

inline bool IsNull(const Value& value) {
    return std::holds_alternative<Null>(value);
}

/// Rows of a query or table. A fresh record set stands on its first row. All operations throw
/// Failure with the database engine's description.
class RecordSet {
  public:
    virtual ~RecordSet() = default;

    virtual bool IsBof() const = 0;
    virtual bool IsEof() const = 0;
    /// The test that the tool uses everywhere: at the beginning and at the end at once.
    bool IsEmpty() const { return IsBof() && IsEof(); }

    virtual void MoveFirst() = 0;
    virtual void MoveNext() = 0;

    virtual std::size_t FieldCount() const = 0;
    virtual Value Get(std::size_t field) const = 0;
    virtual Value Get(std::string_view field) const = 0;
    virtual void Set(std::string_view field, const Value& value) = 0;

    /// A field as text ("" for Null) or as a whole number (0 for Null; Failure TypeMismatch for a
    /// text that is no number).
    std::string Text(std::string_view field) const;
    std::string Text(std::size_t field) const;
    std::int64_t Integer(std::string_view field) const;

    virtual void AddNew() = 0;
    virtual void Update() = 0;
    virtual void CancelUpdate() = 0;
    virtual void Delete() = 0;

    /// Shows only rows that meet the criterion ("ID=5", "CDJID='x'") and moves to the first.
    virtual void Filter(std::string_view criterion) = 0;
    /// Orders the rows ("Artist", "Genre, Random") and moves to the first.
    virtual void Sort(std::string_view order) = 0;
};

/// Names a row of a table while the database is open, whatever changes.
enum class RowKey : std::int64_t {};

/// A field of a row, and what it is to hold.
struct FieldValue {
    std::string_view name;
    Value value;
};

struct AddedRow {
    RowKey key{};
    std::int64_t number = 0;  ///< in the auto-number field, where there is one
};

/// Adds a great number of rows to a table.
class RowInserter {
  public:
    virtual ~RowInserter() = default;
    /// `values` are those of the fields in their order. Throws Failure; then nothing of the row
    /// stays.
    virtual AddedRow Insert(std::span<const Value> values) = 0;
};

/// The open database.
class Connection {
  public:
    virtual ~Connection() = default;

    /// Runs a statement without a result (INSERT, UPDATE, DELETE); the number of rows it concerned.
    virtual std::int64_t Execute(std::string_view sql) = 0;
    /// Runs a SELECT; a read-only forward result.
    virtual std::unique_ptr<RecordSet> Query(std::string_view sql) = 0;
    /// Runs a SELECT whose rows may be changed in place.
    virtual std::unique_ptr<RecordSet> OpenUpdatable(std::string_view sql) = 0;
    /// A cursor over a whole table: filter, add, change, delete.
    virtual std::unique_ptr<RecordSet> OpenTable(std::string_view table) = 0;
    using VisitRow = std::function<void(RowKey, std::span<const Value>)>;
    /// Calls visit(key, values) for each row of a table in the file's order, with the values of
    /// these fields, which are overwritten with the next row.
    virtual void Scan(std::string_view table, std::span<const std::string_view> fields,
                      const VisitRow& visit) = 0;
    /// One field of a row.
    virtual Value Read(std::string_view table, RowKey row, std::string_view field) = 0;
    /// Whether the row is there still.
    virtual bool Has(std::string_view table, RowKey row) = 0;
    /// Fields of a new row that are not named are Null.
    virtual AddedRow Insert(std::string_view table, std::span<const FieldValue> fields) = 0;
    /// The same for many rows with these fields, which stand behind all others of the table, in the
    /// order in which they are added.
    virtual std::unique_ptr<RowInserter> OpenInserter(std::string_view table,
                                                      std::span<const std::string_view> fields) = 0;
    /// A refused change leaves the row as it was.
    virtual void Update(std::string_view table, RowKey row, std::span<const FieldValue> fields) = 0;
    virtual void Delete(std::string_view table, RowKey row) = 0;
    /// Gives all rows that hold `before` in a field of dates `after` for it; how many. Failure
    /// where rows hold `after` already, or where the field is part of an index.
    virtual std::size_t ReplaceDate(std::string_view table, std::string_view field, DateTime before,
                                    DateTime after) = 0;

    /// The number that the next row gets in the auto-number field.
    virtual std::int64_t NextNumber(std::string_view table) const = 0;

    /// The text as the database compares it: texts are equal to it that differ in letter case
    /// alone. Such a text of ASCII characters has small letters.
    virtual std::string FoldText(std::string_view text) const = 0;
    /// Below, at or above zero as left sorts before, with or behind right.
    virtual int CompareTexts(std::string_view left, std::string_view right) const = 0;

    /// Makes all changes so far durable; the driver calls it at each phase's end.
    virtual void Flush() = 0;
};

/// Opens databases.
class DatabaseProvider {
  public:
    virtual ~DatabaseProvider() = default;
    /// `connectionString` is the provider's text followed by the file's Windows path.
    virtual std::unique_ptr<Connection> Open(std::string_view connectionString) = 0;
};

}  // namespace quillon
