#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

namespace quillon {

/// One field of a printed row.
struct TableCell {
    std::string text;
    bool isNumber = false;  ///< numbers stand at the right
    bool isNull = false;
};

/// Prints rows as a table with a header and a row count. Column widths come from the first rows;
/// later rows are printed as they come, so a result of any length takes little memory. A cell wider
/// than its column is printed whole.
class TablePrinter {
  public:
    TablePrinter(std::ostream& out, const std::vector<std::string>& columnNames);

    /// As many cells as there are columns.
    void AddRow(std::vector<TableCell> row);

    /// Prints what is left and the row count.
    void Finish();

  private:
    struct Column {
        std::string name;
        std::size_t width = 0;
        bool hasNumbers = false, hasTexts = false;
        bool AtRight() const { return hasNumbers && !hasTexts; }
    };

    void PrintWaitingRows();
    void PrintLine(const std::vector<TableCell>& row);

    std::ostream& out_;
    std::vector<Column> columns_;
    std::vector<std::vector<TableCell>> waiting_;
    bool widthsFixed_ = false;
    std::size_t rows_ = 0;
};

}  // namespace quillon
