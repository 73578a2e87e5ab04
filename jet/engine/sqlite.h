#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "jet/value.h"

struct sqlite3;
struct sqlite3_stmt;

namespace jet::engine {

/// A prepared statement. Positions of parameters count from 1, those of columns from 0, as in
/// SQLite. Texts and bytes are copied on binding; views of columns are valid until the next step.
class Statement {
  public:
    Statement(sqlite3* database, const std::string& sql);

    void BindNull(int parameter);
    void Bind(int parameter, std::int64_t value);
    void Bind(int parameter, double value);
    void BindText(int parameter, std::string_view text);
    void BindBytes(int parameter, std::string_view bytes);

    /// Moves to the next row; false at the end.
    bool Step();
    /// Runs a statement that yields no rows, and makes it ready for the next run.
    void Run();
    void Reset() noexcept;

    bool IsNull(int column) const;
    bool IsInteger(int column) const;
    bool IsText(int column) const;
    bool IsBytes(int column) const;
    std::int64_t Integer(int column) const;
    double Real(int column) const;
    std::string_view Text(int column) const;
    std::span<const std::uint8_t> Bytes(int column) const;

  private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const noexcept;
    };
    void Check(int code) const;
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

/// A private in-memory database.
class Sqlite {
  public:
    Sqlite();
    void Execute(const std::string& sql);
    sqlite3* Handle() const { return handle_.get(); }

    /// Whether statements that begin from now on may make indexes for themselves. With one of those
    /// the rows of a join come in no order and are sorted before the first of them is seen. That
    /// takes for ever where each row of one table is joined with every row of another.
    void LetStatementsMakeIndexes(bool yes);

    /// From now on `wanted`, which must not throw, is asked now and then whether the statement
    /// under way is to end. Empty: it never is.
    void SetInterruption(std::function<bool()> wanted);
    /// Error(Interrupted) if the statement under way is to end.
    void CheckInterruption() const;
    /// Statement::Step(), which the interruption may end with Error(Interrupted). All other steps
    /// come to their end: what undoes or follows a change must not stop half-way.
    bool StepInterruptibly(Statement& statement);

  private:
    struct Close {
        void operator()(sqlite3* database) const noexcept;
    };
    struct Interruption {
        std::function<bool()> wanted;
        bool listening = false;
    };
    std::unique_ptr<Interruption> interruption_;
    bool statementsMakeIndexes_ = true;
    std::unique_ptr<sqlite3, Close> handle_;
};

}  // namespace jet::engine
