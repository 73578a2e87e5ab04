// Holds the program against its aims: how long a run takes beside a bare walk over the same files
// and beside other programs, how that grows, how much memory it needs, what it writes.

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bench/aims.h"
#include "bench/figures.h"
#include "bench/main.h"
#include "bench/report.h"
#include "bench/session.h"

namespace quillon::bench {
namespace {

constexpr std::string_view Usage =
    "usage: quillon_bench [--quick] [--rounds N] [--program QUILLON] [--report PAGE] [TRACKS...]\n"
    "  --quick    20000 and 100000 tracks only, fewer rounds\n"
    "  --rounds   so many of everything\n"
    "  --report   stores the tables in this page, between its marks\n"
    "  TRACKS     sizes to look at for growth (default: 20000 100000 400000); ratios are taken of "
    "a\n"
    "             library of 100000 tracks, or of the largest of these sizes if they are named";

struct Options {
    Plan plan;
    bool quick = false;
    std::optional<std::size_t> rounds;
    std::optional<std::filesystem::path> report;
};

std::size_t SizeOrUsage(std::string_view text) {
    const auto size = SizeFrom(text);
    if (!size) throw std::invalid_argument(std::string(Usage));
    return *size;
}

Options Parse(std::span<char*> arguments) {
    Options options;
    std::size_t at = 1;
    const auto value = [&]() -> std::string_view {
        if (++at >= arguments.size()) throw std::invalid_argument(std::string(Usage));
        return arguments[at];
    };
    for (; at < arguments.size(); ++at) {
        const std::string_view argument = arguments[at];
        if (argument == "--quick") {
            options.quick = true;
        } else if (argument == "--rounds") {
            options.rounds = SizeOrUsage(value());
        } else if (argument == "--program") {
            options.plan.program = value();
        } else if (argument == "--report") {
            options.report = value();
        } else {
            options.plan.sizes.push_back(SizeOrUsage(argument));
        }
    }
    return options;
}

/// What the options leave open.
Plan Completed(const Options& options) {
    constexpr std::size_t FewRounds = 3;
    Plan plan = options.plan;
    std::ranges::sort(plan.sizes);
    if (!plan.sizes.empty()) {
        plan.tracks = plan.sizes.back();
    } else {
        plan.sizes = {20'000, 100'000};
        if (!options.quick) plan.sizes.push_back(400'000);
    }
    if (options.quick) plan.rounds = FewRounds;
    if (options.rounds) plan.rounds = plan.growthRounds = *options.rounds;
    return plan;
}

}  // namespace

int Main(std::span<char*> arguments) {
    const Options options = Parse(arguments);
    // A page that cannot take the tables is to be known before they are made.
    if (options.report) RequireMarks(*options.report);
    const Figures figures = Measure(Completed(options));
    const std::vector<Aim> aims = Aims(figures);
    const std::string report = ReportText(figures, aims);
    std::cout << report;
    if (options.report) StoreMeasured(*options.report, report);
    return std::ranges::all_of(aims, &Aim::met) ? 0 : 1;
}

}  // namespace quillon::bench
