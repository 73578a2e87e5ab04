#include "jet/engine/row_reader.h"

#include "jet/dialect/translate.h"
#include "jet/engine/transfer.h"

namespace jet::engine {

RowReader::RowReader(StatementCache& statements, MirrorTable& table)
    : statements_(&statements),
      table_(&table),
      sql_("SELECT * FROM " + dialect::TableName(table.Definition().name) + " WHERE " +
           dialect::QuotedName(dialect::KeyColumn) + "=?1") {}

bool RowReader::Stand(RowKey key) {
    if (statement_ && key_ == key && changes_ == table_->Changes()) return found_;
    if (!statement_) statement_.emplace(statements_->Take(sql_));
    (*statement_)->Reset();
    (*statement_)->Bind(1, key);
    found_ = (*statement_)->Step();
    key_ = key;
    changes_ = table_->Changes();
    return found_;
}

Value RowReader::Read(std::size_t column) const {
    return ReadValue(**statement_, static_cast<int>(column + 1), table_->Kinds()[column]);
}

}  // namespace jet::engine
