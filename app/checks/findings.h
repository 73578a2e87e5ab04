#pragma once

#include <string>
#include <utility>
#include <vector>

namespace quillon {

/// What a check has found wrong, gathered from all its sections and told together at the end.
struct Findings {
    std::vector<std::string> problems;  ///< a run could not start, or not do what it is for
    std::vector<std::string> cautions;  ///< a run could start, but look at this before

    void Problem(std::string text) { problems.push_back(std::move(text)); }
    void Caution(std::string text) { cautions.push_back(std::move(text)); }
};

}  // namespace quillon
