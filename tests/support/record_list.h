#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "changes/change.h"
#include "platform/failure.h"

namespace quillon {

/// Keeps the records of a run in memory.
class RecordList : public ChangeSink {
  public:
    void Note(const ChangeRecord& record) override {
        if (full) throw Failure(FailureNumber::DiskFull, "journal");
        if (before) before(record);
        records.push_back(record);
    }
    void MakeDurable() override {
        if (full || isDurableRefused) throw Failure(FailureNumber::DiskFull, "journal");
        if (durable != records.size()) ++flushes;
        durable = records.size();
    }

    std::vector<ChangeRecord> records;
    std::size_t durable = 0;                          ///< how many of them are
    std::size_t flushes = 0;                          ///< how often they were made so
    bool full = false;                                ///< nothing can be recorded
    bool isDurableRefused = false;                    ///< records are taken, but not for good
    std::function<void(const ChangeRecord&)> before;  ///< called before a record is taken
};

}  // namespace quillon
