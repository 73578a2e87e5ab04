#include "app/commands/row_output.h"

#include <ostream>

#include "app/csv.h"
#include "app/value_text.h"

namespace quillon {
namespace {

bool IsNumber(const jet::Value& value) {
    return std::holds_alternative<std::int64_t>(value) || std::holds_alternative<double>(value) ||
           std::holds_alternative<jet::Currency>(value) ||
           std::holds_alternative<jet::Decimal>(value);
}

CsvField FieldOf(const jet::Value& value) {
    if (jet::IsNull(value)) return std::nullopt;
    return ValueText(value);
}

}  // namespace

RowOutput::RowOutput(std::ostream& out, std::vector<std::string> names, RowFormat format)
    : out_(out), format_(format), names_(std::move(names)), table_(out, names_) {
    if (format_ == RowFormat::Json) {
        for (std::string& name : names_)
            name = JsonString(name) + ':';
    } else if (format_ == RowFormat::Csv) {
        std::string line;
        for (const std::string& name : names_)
            line += (line.empty() ? "" : ",") + CsvText(name);
        out_ << line << '\n';
    }
}

void RowOutput::AddRow(std::span<const jet::Value> values) {
    if (format_ == RowFormat::Csv) return AddLine(values);
    if (format_ == RowFormat::Json) return AddObject(values);
    AddCells(values);
}

void RowOutput::AddLine(std::span<const jet::Value> values) {
    std::string line;
    for (std::size_t i = 0; i < values.size(); ++i)
        line += (i == 0 ? "" : ",") + CsvText(FieldOf(values[i]));
    out_ << line << '\n';
}

void RowOutput::AddObject(std::span<const jet::Value> values) {
    std::string line = "{";
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i > 0) line += ',';
        line += names_[i];
        line += JsonValue(values[i]);
    }
    out_ << line << "}\n";
}

void RowOutput::AddCells(std::span<const jet::Value> values) {
    std::vector<TableCell> cells;
    for (const jet::Value& value : values)
        cells.push_back({CellText(value), IsNumber(value), jet::IsNull(value)});
    table_.AddRow(std::move(cells));
}

void RowOutput::Finish() {
    if (format_ == RowFormat::Table) table_.Finish();
}

void WriteRows(jet::RecordSet& rows, RowFormat format, std::ostream& out) {
    std::vector<std::string> names;
    names.reserve(rows.FieldCount());
    for (std::size_t i = 0; i < rows.FieldCount(); ++i)
        names.push_back(rows.FieldName(i));
    RowOutput output(out, names, format);
    std::vector<jet::Value> values(names.size());
    for (; !rows.IsEof(); rows.MoveNext()) {
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = rows.Get(i);
        output.AddRow(values);
    }
    output.Finish();
}

}  // namespace quillon
