#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "jet/engine/sqlite.h"

namespace jet::engine {

/// A prepared statement on loan; goes back to the cache, reset, at the end of its life.
class StatementLease {
  public:
    using Home = std::shared_ptr<std::vector<Statement>>;

    StatementLease(Statement statement, Home home)
        : statement_(std::move(statement)), home_(std::move(home)) {}
    StatementLease(StatementLease&&) noexcept = default;
    StatementLease& operator=(StatementLease&& other) noexcept {
        std::swap(statement_, other.statement_);
        std::swap(home_, other.home_);
        return *this;
    }
    ~StatementLease();

    Statement* operator->() { return &statement_; }
    const Statement* operator->() const { return &statement_; }
    Statement& operator*() { return statement_; }
    const Statement& operator*() const { return statement_; }

  private:
    Statement statement_;
    Home home_;
};

/// Compiled statements by their SQL. A statement that is being walked is on loan; asking for the
/// same SQL meanwhile compiles another one.
class StatementCache {
  public:
    explicit StatementCache(Sqlite& sqlite) : sqlite_(sqlite) {}

    StatementLease Take(const std::string& sql) { return Take(sql, HomeOf(sql)); }

    /// Where statements of this SQL are kept while nobody uses them, for callers who ask often.
    StatementLease::Home HomeOf(const std::string& sql);
    StatementLease Take(const std::string& sql, const StatementLease::Home& home);

  private:
    Sqlite& sqlite_;
    std::unordered_map<std::string, StatementLease::Home> idle_;
};

}  // namespace jet::engine
