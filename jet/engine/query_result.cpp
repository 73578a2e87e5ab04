#include "jet/engine/query_result.h"

#include <algorithm>

#include "jet/engine/field_names.h"
#include "jet/engine/transfer.h"

namespace jet::engine {

namespace {

[[noreturn]] void FailReadOnly() {
    throw Error(ErrorKind::NotSupported,
                "The record set is a query's result and cannot be changed");
}

[[noreturn]] void FailNoRow() {
    throw Error(ErrorKind::NoCurrentRow,
                "Either BOF or EOF is true: the operation needs a current row");
}

}  // namespace

QueryResult::QueryResult(std::shared_ptr<Session> session, std::string sql,
                         std::span<const NamedValue> parameters)
    : session_(std::move(session)),
      selection_(*session_, std::move(sql), Selection::Yields::Values, parameters) {
    Run();
}

QueryResult::~QueryResult() {
    Stop();
}

void QueryResult::Run() {
    Stop();
    kept_.clear();
    statement_.emplace(selection_.Start());
    onRow_ = session_->Step(**statement_);
    empty_ = !onRow_;
    first_ = true;
    if (onRow_) {
        session_->Register(*this);
    } else {
        statement_.reset();
    }
}

void QueryResult::Stop() noexcept {
    if (!statement_) return;
    session_->Unregister(*this);
    statement_.reset();
}

bool QueryResult::Reads(const MirrorTable& table) const {
    const auto& tables = selection_.CurrentPlan()->tables;
    return std::find(tables.begin(), tables.end(), &table) != tables.end();
}

QueryResult::Row QueryResult::ReadRow() const {
    Row row;
    row.reserve(Fields().size());
    for (std::size_t i = 0; i < Fields().size(); ++i)
        row.push_back(ReadValue(**statement_, static_cast<int>(i), Fields()[i].kind));
    return row;
}

void QueryResult::Drain() {
    if (!statement_) return;
    kept_.clear();
    do {
        kept_.push_back(ReadRow());
    } while ((*statement_)->Step());
    Stop();
}

void QueryResult::MoveFirst() {
    if (empty_) FailNoRow();
    if (!first_) Run();
}

void QueryResult::MoveNext() {
    if (!onRow_) FailNoRow();
    first_ = false;
    if (statement_) {
        onRow_ = session_->Step(**statement_);
        if (!onRow_) Stop();
    } else {
        kept_.pop_front();
        onRow_ = !kept_.empty();
    }
}

std::size_t QueryResult::FieldIndex(std::string_view name) const {
    return FindField(Fields(), name);
}

Value QueryResult::Get(std::size_t field) const {
    if (!onRow_) FailNoRow();
    const dialect::ResultColumn& column = Fields().at(field);
    if (!statement_) return kept_.front()[field];
    return ReadValue(**statement_, static_cast<int>(field), column.kind);
}

void QueryResult::Set(std::size_t, const Value&) {
    FailReadOnly();
}
void QueryResult::AddNew() {
    FailReadOnly();
}
void QueryResult::Delete() {
    FailReadOnly();
}

void QueryResult::Filter(std::string_view criterion) {
    selection_.Filter(criterion);
    Run();
}

void QueryResult::Sort(std::string_view order) {
    selection_.Sort(order);
    Run();
}

}  // namespace jet::engine
