#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "jet/value.h"

namespace jet {

/// Rows to walk over and, where the kind allows it, to change. A fresh record set stands on its
/// first row. All kinds throw jet::Error.
///
/// Without ORDER BY or Sort rows come in the order in which they are stored. Moving, Filter and
/// Sort forget an edit that Update() has not stored. Rows deleted meanwhile are passed over; rows
/// added meanwhile appear after the next MoveFirst(), Filter() or Sort().
///
/// Kinds: results of Database::Query (forward, read-only), of Database::OpenUpdatable (rows of a
/// query that may be changed in place) and of Database::OpenTable (a table cursor with everything).
class RecordSet {
  public:
    virtual ~RecordSet() = default;

    virtual bool IsBof() const = 0;  ///< before the first row, or there are none
    virtual bool IsEof() const = 0;  ///< behind the last row, or there are none
    bool IsEmpty() const { return IsBof() && IsEof(); }

    virtual void MoveFirst() = 0;
    virtual void MoveNext() = 0;

    virtual std::size_t FieldCount() const = 0;
    virtual const std::string& FieldName(std::size_t field) const = 0;
    /// Error(NotFound) names a field that does not exist; letter case does not count. Where two
    /// tables of a query have a field of the same name, the fields are called "Tracks.Title" and
    /// "Albums.Title", and "Title" finds the first of them.
    virtual std::size_t FieldIndex(std::string_view name) const = 0;

    /// The current row's (or the row being added's) value.
    virtual Value Get(std::size_t field) const = 0;
    Value Get(std::string_view name) const { return Get(FieldIndex(name)); }

    /// Puts a value into the row's edit buffer; Update() stores it. The value is converted to the
    /// field's type as the database engine does: a numeric text into a number field, for instance.
    virtual void Set(std::size_t field, const Value& value) = 0;
    void Set(std::string_view name, const Value& value) { Set(FieldIndex(name), value); }

    /// Starts a new row; it becomes the current one when Update() stores it. An auto-number field
    /// shows the number that the row will get if no other row of the table is stored before it.
    virtual void AddNew() = 0;
    virtual void Update() = 0;
    /// Forgets AddNew() and assignments since the last Update().
    virtual void CancelUpdate() = 0;
    virtual void Delete() = 0;

    /// Shows only rows for which the criterion ("ID=5", "CDJID='x' AND Track=3", "ID <> 0") holds
    /// and moves to the first of them. An empty text shows all again.
    virtual void Filter(std::string_view criterion) = 0;

    /// Orders the rows ("Artist", "Genre, Random", "Header asc, Key desc"); moves to the first.
    virtual void Sort(std::string_view order) = 0;
};

}  // namespace jet
