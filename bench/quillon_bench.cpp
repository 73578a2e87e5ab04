// Measures how long a reconcile run takes beside a bare walk over the same files, how that grows
// with the library, and how much memory a run needs. Prints ratios, which travel between machines
// better than seconds do.

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <fmt/format.h>
#include <iostream>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bench/child_process.h"
#include "bench/music_library.h"
#include "bench/reconcile_stage.h"

namespace {

using quillon::bench::ReconcileStage;
using quillon::bench::Usage;

// The aims that the figures are held against.
constexpr double MostTimesBareWalk = 8.0;
constexpr double SteepestGrowth = 1.1;
constexpr double BaseMemory = 64.0 * 1024 * 1024;
constexpr double MemoryPerTrack = 1024;

constexpr int Repetitions = 3;

struct Options {
    std::string program = QUILLON_PROGRAM;
    bool verify = false;  ///< whether runs compare the tags, too
    std::vector<std::size_t> sizes;
};

struct Figures {
    std::size_t tracks = 0;
    double walk = 0;  ///< seconds, as the others
    double fresh = 0;
    double second = 0;
    double unchanged = 0;
    std::size_t freshMemory = 0;  ///< bytes, as the other
    std::size_t unchangedMemory = 0;

    double MemoryBound() const { return BaseMemory + MemoryPerTrack * static_cast<double>(tracks); }
};

double SecondsOfWalk(const ReconcileStage& stage, std::size_t tracks) {
    const auto start = std::chrono::steady_clock::now();
    const quillon::bench::WalkResult seen = quillon::bench::BareWalk(stage.Music());
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    if (seen.files != tracks) throw std::runtime_error("the walk has missed files");
    return elapsed.count();
}

/// Walk and unchanged run are repeated in turn and the shortest time counts: what lies above it is
/// the machine's other work.
Figures Measure(const Options& options, std::size_t tracks) {
    using quillon::bench::FileNames;
    const ReconcileStage stage(options.program, tracks,
                               options.verify ? FileNames::ByArtist : FileNames::ByNumber);
    Figures figures{.tracks = tracks};
    const Usage fresh = stage.Reconcile();
    figures.fresh = fresh.seconds;
    figures.freshMemory = fresh.peakMemory;
    figures.second = stage.Reconcile().seconds;
    for (int i = 0; i < Repetitions; ++i) {
        const double walk = SecondsOfWalk(stage, tracks);
        const Usage unchanged = stage.Reconcile();
        figures.walk = i == 0 ? walk : std::min(figures.walk, walk);
        figures.unchanged =
            i == 0 ? unchanged.seconds : std::min(figures.unchanged, unchanged.seconds);
        figures.unchangedMemory = std::max(figures.unchangedMemory, unchanged.peakMemory);
    }
    return figures;
}

void Print(const Figures& f) {
    constexpr double Megabyte = 1024.0 * 1024.0;
    std::cout << fmt::format(
                     "{:>8} {:>8.3f} s {:>8.3f} {:>5.1f}x {:>8.3f} {:>5.1f}x {:>8.3f} {:>5.1f}x "
                     "{:>7.1f} {:>7.1f} {:>7.1f}",
                     f.tracks, f.walk, f.fresh, f.fresh / f.walk, f.second, f.second / f.walk,
                     f.unchanged, f.unchanged / f.walk,
                     static_cast<double>(f.freshMemory) / Megabyte,
                     static_cast<double>(f.unchangedMemory) / Megabyte, f.MemoryBound() / Megabyte)
              << std::endl;
}

/// e where time grows as size to the power of e.
double Growth(double smallTime, double largeTime, const Figures& small, const Figures& large) {
    return std::log(largeTime / smallTime) /
           std::log(static_cast<double>(large.tracks) / static_cast<double>(small.tracks));
}

bool Judge(std::string_view what, double figure, double aim) {
    const bool met = figure <= aim;
    std::cout << fmt::format("{:<58} {:>8.2f}  aim {:>6.2f}  {}\n", what, figure, aim,
                             met ? "met" : "MISSED");
    return met;
}

bool JudgeAll(const std::vector<Figures>& all, bool verify) {
    bool met = true;
    for (const Figures& f : all) {
        // There is no aim for the ratio of a run that compares the tags.
        if (!verify) {
            met &= Judge(fmt::format("{} tracks, unchanged: times the bare walk", f.tracks),
                         f.unchanged / f.walk, MostTimesBareWalk);
        }
        const double memory = static_cast<double>(std::max(f.freshMemory, f.unchangedMemory));
        met &= Judge(fmt::format("{} tracks: peak memory of 64 MB + 1 KB a track", f.tracks),
                     memory / f.MemoryBound(), 1.0);
    }
    for (std::size_t i = 1; i < all.size(); ++i) {
        const std::string step = fmt::format("{} to {} tracks", all[i - 1].tracks, all[i].tracks);
        met &= Judge("growth exponent, new library, " + step,
                     Growth(all[i - 1].fresh, all[i].fresh, all[i - 1], all[i]), SteepestGrowth);
        met &= Judge("growth exponent, unchanged library, " + step,
                     Growth(all[i - 1].unchanged, all[i].unchanged, all[i - 1], all[i]),
                     SteepestGrowth);
    }
    return met;
}

Options Parse(std::span<char*> arguments) {
    Options options;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "--program" && i + 1 < arguments.size()) {
            options.program = arguments[++i];
            continue;
        }
        if (argument == "--verify") {
            options.verify = true;
            continue;
        }
        std::size_t size = 0;
        const auto [end, error] =
            std::from_chars(argument.data(), argument.data() + argument.size(), size);
        if (error != std::errc() || end != argument.data() + argument.size() || size == 0) {
            throw std::invalid_argument(
                "usage: quillon_bench [--program QUILLON] [--verify] [TRACKS...]  "
                "(default: 2000 20000 100000)");
        }
        options.sizes.push_back(size);
    }
    if (options.sizes.empty()) options.sizes = {2'000, 20'000, 100'000};
    std::ranges::sort(options.sizes);
    return options;
}

int Main(std::span<char*> arguments) {
    const Options options = Parse(arguments);
    std::cout << fmt::format("{:>8} {:>10} {:>15} {:>15} {:>15} {:>23}\n", "tracks", "bare walk",
                             "new library", "second run", "unchanged", "peak MB (new, same, aim)");
    std::vector<Figures> all;
    for (const std::size_t size : options.sizes) {
        all.push_back(Measure(options, size));
        Print(all.back());
    }
    std::cout << '\n';
    return JudgeAll(all, options.verify) ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
    try {
        return Main(std::span(arguments, static_cast<std::size_t>(count)));
    } catch (const std::exception& error) {
        std::cerr << "quillon_bench: " << error.what() << '\n';
        return 2;
    }
}
