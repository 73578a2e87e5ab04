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

/// How a table looks.
struct TableStyle {
    std::size_t indent = 0;         ///< columns in front of every line
    std::size_t widestColumn = 60;  ///< one long text should not push all others off the screen
    bool countsRows = true;         ///< a last line with the number of rows
    /// What stands behind a cell that is wider than its column goes on the next line, in its place.
    bool breaksLines = false;
};

/// Prints rows as a table with a header. Column widths come from the first rows; later rows are
/// printed as they come, so a result of any length takes little memory. A cell wider than its
/// column is printed whole.
class TablePrinter {
  public:
    TablePrinter(std::ostream& out, const std::vector<std::string>& columnNames,
                 const TableStyle& style = {});

    /// As many cells as there are columns.
    void AddRow(std::vector<TableCell> row);

    /// Prints what is left.
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
    TableStyle style_;
    std::vector<Column> columns_;
    std::vector<std::vector<TableCell>> waiting_;
    bool widthsFixed_ = false;
    std::size_t rows_ = 0;
};

}  // namespace quillon
