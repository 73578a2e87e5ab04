#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "bench/host_folder.h"

namespace quillon::bench {

/// What the preload library has counted in a run; the same each time for the same run.
class CallCounts {
  public:
    CallCounts() = default;
    /// Reads the file that it writes, a name and a number a line.
    explicit CallCounts(const std::filesystem::path& file);

    /// Throws where nothing of that name is counted.
    std::uint64_t operator[](const std::string& name) const;

  private:
    std::map<std::string, std::uint64_t> counts_;
};

/// Processor time of the parts of a run, told by the lines that it prints as they start.
struct PhaseTime {
    std::string name;
    double seconds = 0;
};

class PhaseClock {
  public:
    /// A line has come when so much had been used.
    void Line(std::string_view line, double processor);
    /// The parts in their order, when all has come to its end.
    std::vector<PhaseTime> Finish(double processor);

  private:
    void Begin(std::string_view name, double processor);

    std::vector<PhaseTime> phases_{{.name = "Start, backups"}};
    double begun_ = 0;
};

CallCounts CountedRun(const HostFolder& host);
std::vector<PhaseTime> RunByPhase(const HostFolder& host);

/// The median of each part over several runs that all have the same parts.
std::vector<PhaseTime> MedianPhases(const std::vector<std::vector<PhaseTime>>& runs);

}  // namespace quillon::bench
