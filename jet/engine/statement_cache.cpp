#include "jet/engine/statement_cache.h"

namespace jet::engine {

namespace {

/// Statements whose text itself varies (a computed number in it) must not fill the memory.
constexpr std::size_t MostTexts = 1000;

}  // namespace

StatementLease::~StatementLease() {
    if (!home_) return;
    statement_.Reset();
    try {
        home_->push_back(std::move(statement_));
    } catch (...) {  // out of memory: the statement is compiled again when it is wanted
        return;
    }
}

StatementLease::Home StatementCache::HomeOf(const std::string& sql) {
    auto found = idle_.find(sql);
    if (found == idle_.end()) {
        if (idle_.size() >= MostTexts) idle_.clear();
        found = idle_.emplace(sql, std::make_shared<std::vector<Statement>>()).first;
    }
    return found->second;
}

StatementLease StatementCache::Take(const std::string& sql, const StatementLease::Home& home) {
    if (home->empty()) return {Statement(sqlite_.Handle(), sql), home};
    Statement statement = std::move(home->back());
    home->pop_back();
    return {std::move(statement), home};
}

}  // namespace jet::engine
