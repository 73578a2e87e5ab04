#include "jet/storage/table.h"

#include <utility>

#include "jet/storage/named_errors.h"
#include "jet/storage/table_implementation.h"

namespace jet::storage {

Table::Table(std::unique_ptr<TableImplementation> implementation)
    : implementation_(std::move(implementation)) {}
Table::Table(Table&&) noexcept = default;
Table& Table::operator=(Table&&) noexcept = default;
Table::~Table() = default;

const TableDefinition& Table::Definition() const {
    return implementation_->Definition();
}

std::optional<std::string> Table::ReadOnlyReason() const {
    return implementation_->ReadOnlyReason();
}

void Table::Scan(const std::function<void(RowId, Row&&)>& visit) const {
    NamingFile(implementation_->File(), [&] { implementation_->Scan(visit); });
}

void Table::ScanColumns(std::span<const std::size_t> columns, const VisitColumns& visit) const {
    NamingFile(implementation_->File(), [&] { implementation_->ScanColumns(columns, visit); });
}

Row Table::Read(RowId row) const {
    return NamingFile(implementation_->File(), [&] { return implementation_->Read(row); });
}

std::optional<std::vector<RowId>> Table::FindByIndex(std::size_t column, const Value& value,
                                                     std::size_t most) {
    return NamingFile(implementation_->File(),
                      [&] { return implementation_->FindByIndex(column, value, most); });
}

Table::Inserted Table::Insert(std::span<const Value> values) {
    return NamingFile(implementation_->File(), [&] { return implementation_->Insert(values); });
}

void Table::Update(RowId row, std::span<const FieldChange> changes) {
    NamingFile(implementation_->File(), [&] { implementation_->Update(row, changes); });
}

void Table::Delete(RowId row) {
    NamingFile(implementation_->File(), [&] { implementation_->Delete(row); });
}

void Table::DeleteAll() {
    NamingFile(implementation_->File(), [&] { implementation_->DeleteAll(); });
}

std::uint32_t Table::RowCount() const {
    return NamingFile(implementation_->File(), [&] { return implementation_->RowCount(); });
}

std::int32_t Table::NextAutoNumber() const {
    return NamingFile(implementation_->File(), [&] { return implementation_->NextAutoNumber(); });
}

}  // namespace jet::storage
