#pragma once

#include <map>
#include <string>
#include <utility>

#include "jet/check.h"

namespace jet::verify {

/// Collects what a check finds. A badly damaged file has the same fault a thousand times over: of
/// these, only as many are written down as anybody reads.
class Findings {
  public:
    explicit Findings(CheckReport& report) : report_(report) {}

    /// Faults from now on are those of this table, or of the file as a whole.
    void Concern(std::string table) { table_ = std::move(table); }
    const std::string& Table() const { return table_; }

    /// One contradiction in the file.
    void Fault(const std::string& where, const std::string& what) { FaultOf(table_, where, what); }

    /// One that another table has a part in.
    void FaultOf(const std::string& table, const std::string& where, const std::string& what) {
        const bool isFirst = ++faults_[table] == 1;
        if (isFirst || report_.faults.size() < MostFaults) {
            report_.faults.push_back({table, where + ": " + what});
        } else if (!cutShort_) {
            cutShort_ = true;
            report_.faults.push_back({table, "there are more faults"});
        }
    }

    CheckReport& Counts() { return report_; }

  private:
    static constexpr std::size_t MostFaults = 1000;

    CheckReport& report_;
    std::string table_;
    std::map<std::string, std::size_t> faults_;  ///< by table
    bool cutShort_ = false;
};

}  // namespace jet::verify
