#include "bench/run_record.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <utility>

#include "bench/figures.h"
#include "driver/phase_captions.h"
#include "tests/outside/temporary_folder.h"

namespace quillon::bench {

CallCounts::CallCounts(const std::filesystem::path& file) {
    std::ifstream in(file);
    std::string name;
    std::uint64_t count = 0;
    while (in >> name >> count)
        counts_[name] = count;
}

std::uint64_t CallCounts::operator[](const std::string& name) const {
    const auto found = counts_.find(name);
    if (found == counts_.end()) throw std::runtime_error("nothing was counted as " + name);
    return found->second;
}

void PhaseClock::Begin(std::string_view name, double processor) {
    phases_.back().seconds = processor - begun_;
    phases_.push_back({.name = std::string(name)});
    begun_ = processor;
}

void PhaseClock::Line(std::string_view line, double processor) {
    if (std::ranges::find(PhaseCaptions, line) != PhaseCaptions.end()) Begin(line, processor);
}

std::vector<PhaseTime> PhaseClock::Finish(double processor) {
    phases_.back().seconds = processor - begun_;
    return std::move(phases_);
}

CallCounts CountedRun(const HostFolder& host) {
    const outside::TemporaryFolder folder;
    const std::filesystem::path file = folder.Path() / "counts";
    host.Run(
        {.environment = {"LD_PRELOAD=" QUILLON_COUNTS_LIBRARY, "QUILLON_COUNTS=" + file.string()}});
    return CallCounts(file);
}

std::vector<PhaseTime> RunByPhase(const HostFolder& host) {
    PhaseClock clock;
    const Usage used = host.Run(
        {.onLine = [&](std::string_view line, double processor) { clock.Line(line, processor); }});
    return clock.Finish(used.processor);
}

std::vector<PhaseTime> MedianPhases(const std::vector<std::vector<PhaseTime>>& runs) {
    std::vector<PhaseTime> medians = runs.front();
    for (std::size_t i = 0; i < medians.size(); ++i) {
        std::vector<double> seconds;
        seconds.reserve(runs.size());
        for (const std::vector<PhaseTime>& run : runs)
            seconds.push_back(run.at(i).seconds);
        medians[i].seconds = Median(seconds);
    }
    return medians;
}

}  // namespace quillon::bench
