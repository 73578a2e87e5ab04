#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "jet/engine/session.h"

namespace jet::engine {

/// A SELECT with a record set's Filter and Sort on top.
class Selection {
  public:
    enum class Yields {
        Values,  ///< the fields of each row
        Keys,    ///< the keys of the stored rows that make up each row
    };

    /// Errors of the statement are thrown here.
    Selection(Session& session, std::string sql, Yields yields,
              std::span<const NamedValue> parameters = {});
    Selection(const Selection&) = delete;  // the tokens refer to the text
    Selection& operator=(const Selection&) = delete;

    /// Both throw when the text is faulty, and change nothing then.
    void Filter(std::string_view criterion);
    void Sort(std::string_view order);

    const std::shared_ptr<Plan>& CurrentPlan() const { return plan_; }
    /// What the statement looks at, as Start() loads it.
    void Load() const { session_.Load(*plan_, literals_); }
    /// The statement, ready for its first step.
    StatementLease Start() const { return session_.Start(*plan_, literals_); }

  private:
    void Choose(const std::string& filter, const std::string& order);
    std::shared_ptr<Plan> FindPlan(const std::string& signature, const dialect::TokenList& filter,
                                   const dialect::TokenList& order) const;

    Session& session_;
    std::string sql_, filter_, order_;
    Yields yields_;
    dialect::TokenList tokens_;  ///< of sql_
    std::string signature_;      ///< of sql_
    std::vector<dialect::Literal> literals_;
    std::shared_ptr<Plan> plan_;
};

}  // namespace jet::engine
