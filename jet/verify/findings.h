#pragma once

#include <string>

#include "jet/check.h"

namespace jet::verify {

/// Collects what a check finds. A badly damaged file has the same fault a thousand times over: of
/// these, only as many are written down as anybody reads.
class Findings {
  public:
    explicit Findings(CheckReport& report) : report_(report) {}

    /// One contradiction in the file.
    void Fault(const std::string& where, const std::string& what) {
        if (report_.faults.size() < MostFaults) {
            report_.faults.push_back(where + ": " + what);
        } else if (report_.faults.size() == MostFaults) {
            report_.faults.emplace_back("there are more faults");
        }
    }

    CheckReport& Counts() { return report_; }

  private:
    static constexpr std::size_t MostFaults = 1000;

    CheckReport& report_;
};

}  // namespace jet::verify
