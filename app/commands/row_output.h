#pragma once

#include <iosfwd>
#include <span>
#include <string>
#include <vector>

#include "app/requests.h"
#include "app/table_printer.h"
#include "jet/record_set.h"

namespace quillon {

/// Writes rows of named fields in one of the formats.
class RowOutput {
  public:
    RowOutput(std::ostream& out, std::vector<std::string> names, RowFormat format);

    void AddRow(std::span<const jet::Value> values);
    /// Writes what is left.
    void Finish();

  private:
    void AddLine(std::span<const jet::Value> values);
    void AddObject(std::span<const jet::Value> values);
    void AddCells(std::span<const jet::Value> values);

    std::ostream& out_;
    RowFormat format_;
    std::vector<std::string> names_;  ///< as the format writes them
    TablePrinter table_;
};

/// All rows of a result.
void WriteRows(jet::RecordSet& rows, RowFormat format, std::ostream& out);

}  // namespace quillon
