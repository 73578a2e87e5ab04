#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Comma-separated values as most programs write and read them: a field may stand between double
/// quotes, and must where it has a separator, a quote or the end of a line in it; a quote in it is
/// doubled.
namespace quillon {

/// One field; nothing at all between two separators is no value, "" is an empty text.
using CsvField = std::optional<std::string>;

/// Reads records, whose lines may end in CR LF, LF or CR. A mark of UTF-8 at the very beginning is
/// passed over.
class CsvReader {
  public:
    CsvReader(std::istream& in, char separator) : in_(in), separator_(separator) {}

    /// The next record; false at the end. Blank lines are no records, unless records have
    /// one field. CommandError names the line where a quote is missing.
    bool Next(std::vector<CsvField>& fields);

    /// The line that the record last read began in, from 1.
    std::size_t Line() const { return line_; }

  private:
    int Peek() const;
    int Take();
    bool TakeLineEnd();
    CsvField TakeField();
    std::string TakeQuoted();

    std::istream& in_;
    char separator_;
    std::size_t line_ = 0, nextLine_ = 1;
    bool begun_ = false, oneField_ = false;
};

/// A field as it is written.
std::string CsvText(const CsvField& field);

}  // namespace quillon
