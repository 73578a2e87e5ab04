#pragma once

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace quillon {

/// What a check has found wrong, gathered from all its sections and told together at the end: each
/// finding says what is wrong, what that means for a run and what to do.
struct Findings {
    std::vector<std::string> problems;  ///< a run could not start, or could not do its work
    std::vector<std::string> cautions;  ///< a run could start, but look at this before

    void Problem(std::string text) { problems.push_back(std::move(text)); }
    void Caution(std::string text) { cautions.push_back(std::move(text)); }
    /// A problem where the chosen mode depends on it, else a caution.
    void Add(bool isProblem, std::string text) {
        (isProblem ? problems : cautions).push_back(std::move(text));
    }
};

/// Prints the findings, problems first, in lines that fit a terminal; nothing where there are none.
void TellFindings(const Findings& findings, std::ostream& out);

}  // namespace quillon
