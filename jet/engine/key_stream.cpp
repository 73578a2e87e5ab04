#include "jet/engine/key_stream.h"

#include <algorithm>

namespace jet::engine {

KeyStream::KeyStream(Session& session, std::shared_ptr<Plan> plan, StatementLease statement)
    : session_(session),
      plan_(std::move(plan)),
      statement_(std::move(statement)),
      width_(plan_->translation.keyTables.size()),
      deletions_(DeletionsNow()) {
    session_.Register(*this);
}

std::uint64_t KeyStream::DeletionsNow() const {
    std::uint64_t deletions = 0;
    for (const MirrorTable* table : plan_->tables)
        deletions += table->Deletions();
    return deletions;
}

void KeyStream::Stop() noexcept {
    if (!statement_) return;
    session_.Unregister(*this);
    statement_.reset();
}

bool KeyStream::FetchOne(bool interruptible) {
    if (!statement_) return false;
    Statement& statement = **statement_;
    if (!(interruptible ? session_.Step(statement) : statement.Step())) {
        Stop();
        return false;
    }
    for (std::size_t i = 0; i < width_; ++i)
        keys_.push_back((*statement_)->Integer(static_cast<int>(i)));
    return true;
}

bool KeyStream::Has(std::size_t row) {
    while (row >= keys_.size() / width_)
        if (!FetchOne(true)) return false;
    return true;
}

std::size_t KeyStream::Append(std::span<const RowKey> keys) {
    Drain();
    keys_.insert(keys_.end(), keys.begin(), keys.end());
    return keys_.size() / width_ - 1;
}

bool KeyStream::Reads(const MirrorTable& table) const {
    return std::find(plan_->tables.begin(), plan_->tables.end(), &table) != plan_->tables.end();
}

void KeyStream::Drain() {
    while (FetchOne(false))
        continue;
}

}  // namespace jet::engine
