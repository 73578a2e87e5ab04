#include "app/table_printer.h"

#include <algorithm>
#include <ostream>
#include <utility>

#include "app/text/display_text.h"

namespace quillon {
namespace {

constexpr std::size_t RowsMeasured = 500;

}  // namespace

TablePrinter::TablePrinter(std::ostream& out, const std::vector<std::string>& columnNames,
                           const TableStyle& style)
    : out_(out), style_(style) {
    for (const std::string& name : columnNames)
        columns_.push_back({OneLine(name), DisplayColumns(name)});
}

void TablePrinter::AddRow(std::vector<TableCell> row) {
    ++rows_;
    for (TableCell& cell : row)
        cell.text = OneLine(cell.text);
    if (widthsFixed_) return PrintLine(row);
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        Column& column = columns_[i];
        const TableCell& cell = row[i];
        column.width =
            std::max(column.width, std::min(DisplayColumns(cell.text), style_.widestColumn));
        column.hasNumbers |= cell.isNumber;
        column.hasTexts |= !cell.isNumber && !cell.isNull;
    }
    waiting_.push_back(std::move(row));
    if (waiting_.size() == RowsMeasured) PrintWaitingRows();
}

void TablePrinter::Finish() {
    if (!widthsFixed_) PrintWaitingRows();
    if (style_.countsRows) out_ << '(' << rows_ << (rows_ == 1 ? " row)\n" : " rows)\n");
}

void TablePrinter::PrintWaitingRows() {
    widthsFixed_ = true;
    std::vector<TableCell> names, rules;
    for (const Column& column : columns_) {
        names.push_back({column.name});
        rules.push_back({std::string(column.width, '-')});
    }
    PrintLine(names);
    PrintLine(rules);
    for (const std::vector<TableCell>& row : std::exchange(waiting_, {}))
        PrintLine(row);
}

void TablePrinter::PrintLine(const std::vector<TableCell>& row) {
    std::string line(style_.indent, ' ');
    std::size_t start = style_.indent;  // of the column
    const auto print = [this](std::string& text) {
        // Padding behind the last text only makes lines wrap.
        text.erase(text.find_last_not_of(' ') + 1);
        out_ << text << '\n';
    };
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const Column& column = columns_[i];
        const std::string& text = row[i].text;
        const std::size_t taken = DisplayColumns(text);
        const std::size_t padding = column.width > taken ? column.width - taken : 0;
        if (column.AtRight()) line.append(padding, ' ');
        line += text;
        if (!column.AtRight()) line.append(padding, ' ');
        start += column.width + 2;
        line += "  ";
        const bool isMore = std::any_of(row.begin() + static_cast<std::ptrdiff_t>(i) + 1, row.end(),
                                        [](const TableCell& cell) { return !cell.text.empty(); });
        if (!style_.breaksLines || taken <= column.width || !isMore) continue;
        print(line);
        line.assign(start, ' ');
    }
    print(line);
}

}  // namespace quillon
