#pragma once

#include <string>
#include <utility>
#include <vector>

#include "jet/error.h"
#include "jet/storage/table.h"

namespace jet::storage {

/// A table whose rows are in another database: only its name is known here.
class LinkedTable final : public Table {
  public:
    LinkedTable(std::string file, const std::string& name, std::string linkedTo)
        : file_(std::move(file)), linkedTo_(std::move(linkedTo)) {
        definition_.name = name;
    }

    const TableDefinition& Definition() const override { return definition_; }
    std::optional<std::string> ReadOnlyReason() const override {
        return "it is linked to another database" +
               (linkedTo_.empty() ? std::string() : " (" + linkedTo_ + ")");
    }
    void Scan(const std::function<void(RowId, Row&&)>& /*visit*/) const override { Refuse(); }
    void ScanColumns(std::span<const std::size_t> /*columns*/,
                     const VisitColumns& /*visit*/) const override {
        Refuse();
    }
    Row Read(RowId /*row*/) const override { Refuse(); }
    std::optional<std::vector<RowId>> FindByIndex(std::size_t /*column*/, const Value& /*value*/,
                                                  std::size_t /*most*/) override {
        Refuse();
    }
    Inserted Insert(std::span<const Value> /*values*/) override { Refuse(); }
    void KeepOrder() override { Refuse(); }
    void Update(RowId /*row*/, std::span<const FieldChange> /*changes*/) override { Refuse(); }
    std::size_t ReplaceDate(std::size_t /*column*/, Date /*before*/, Date /*after*/) override {
        Refuse();
    }
    void Delete(RowId /*row*/) override { Refuse(); }
    void DeleteAll() override { Refuse(); }
    std::uint32_t RowCount() const override { Refuse(); }
    std::int32_t NextAutoNumber() const override { Refuse(); }

  private:
    [[noreturn]] void Refuse() const {
        throw Error(ErrorKind::NotSupported, "Table " + definition_.name + " of " + file_ +
                                                 " cannot be used: " + *ReadOnlyReason() + ".");
    }

    std::string file_, linkedTo_;
    TableDefinition definition_;
};

}  // namespace jet::storage
