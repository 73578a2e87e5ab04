#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/database.h"
#include "undo/date_undo.h"
#include "undo/net_rows.h"
#include "undo/outcome.h"

namespace quillon {

/// Puts rows of a database back to what they were.
class RowUndo {
  public:
    /// What is to happen with one row.
    struct Step {
        enum class Work { None, Update, Insert, Delete };
        const NetRow* row = nullptr;
        Work work = Work::None;
        RowKey key{};  ///< of the row that is updated or deleted
        bool isHeldBack = false;
        Outcome outcome = {};

        bool IsToDo() const { return work != Work::None && !isHeldBack; }
    };

    /// Whether a path is that of a file that stays as it is now.
    using StaysAt = std::function<bool(std::string_view path)>;

    /// Looks at the rows and decides; changes nothing. `dates` are those that were replaced, in
    /// their order. All that is passed must outlive this object. Throws Failure.
    RowUndo(Connection& connection, std::span<const NetRow> rows,
            std::span<const DateReplaced> dates = {});

    /// Rows that name a file which stays do so, too, and so does the album of a track that stays.
    /// What an earlier call said counts no more. Throws Failure.
    void HoldBack(const StaysAt& stays);

    const std::vector<Step>& Steps() const { return steps_; }
    /// What is to happen with replaced dates, the last one first.
    const std::vector<DateUndo>& Dates() const { return dates_; }

    /// Changes the rows, as many as can be. The steps' outcomes tell of each. Meant to be one group
    /// of changes, which all become durable or none.
    void CarryOut(const Attempt& attempt);

  private:
    void LookAtTable(std::string_view table);
    /// Does these until none of those left can be done; leaves them.
    void DoAll(std::vector<Step*>& left, const Attempt& attempt);
    bool Do(Step& step, const Attempt& attempt);
    void Change(const Step& step);
    /// Rows that wait for each other's values get such that no row has.
    void StepAside(const std::vector<Step*>& rows, const Attempt& attempt);
    void BringBack(const std::vector<Step*>& rows);

    Connection& connection_;
    std::vector<Step> steps_;
    std::vector<DateUndo> dates_;
};

/// The texts of rows that stay as they are now: what lies at such a path must stay, too. In small
/// letters.
std::unordered_set<std::string> TextsOfRefused(std::span<const RowUndo::Step> steps);

/// How a row is named to a person: "row of Tracks 5", with what people call it where that is known,
/// and else a text that the row tells of itself.
std::string NameOf(const NetRow& row, const std::string& called = "");

}  // namespace quillon
