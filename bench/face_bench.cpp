// Measures what a view costs a run: the same unchanged library is reconciled with plain lines into
// nowhere, on a terminal screen and in a window, in turn.

#include <cstddef>
#include <cstdlib>
#include <fmt/format.h>
#include <iostream>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bench/figures.h"
#include "bench/host_folder.h"
#include "bench/main.h"

namespace quillon::bench {
namespace {

// The aim: the largest share of a run's processor time that showing it may take.
constexpr double LargestShare = 0.02;
constexpr int Rounds = 15;
constexpr std::size_t FewTracks = 20;

struct Face {
    std::string view;
    Surroundings surroundings;
};

/// Without a display the window is drawn into memory: all that this process does for it, without
/// a display server beside it.
std::vector<std::string> DisplayToDrawOn() {
    const bool has = std::getenv("DISPLAY") != nullptr ||
                     std::getenv("WAYLAND_DISPLAY") != nullptr ||
                     std::getenv("QT_QPA_PLATFORM") != nullptr;
    return has ? std::vector<std::string>{} : std::vector<std::string>{"QT_QPA_PLATFORM=offscreen"};
}

std::vector<Face> Faces() {
    return {{.view = "plain", .surroundings = {}},
            {.view = "terminal",
             .surroundings = {.terminal = true, .environment = {"TERM=xterm-256color"}}},
            {.view = "window", .surroundings = {.environment = DisplayToDrawOn()}}};
}

/// What an unchanged run takes and what a view adds to it, in processor seconds.
struct Cost {
    double whole;
    double beyondFirst;
};

/// The cost of each view, beyond that of the first. A machine is now faster, now slower, by more
/// than a view costs: so a run is compared with that of the first view in the same round, and the
/// median of the rounds counts.
std::vector<Cost> Costs(const std::vector<Face>& faces, std::size_t tracks) {
    const MusicTree music(tracks, FileNames::ByNumber);
    const HostFolder host(QUILLON_PROGRAM, music.Root());
    for (const std::string_view lists : {"ArtistPlaylist", "GenrePlaylist"})
        host.Set(lists, "0");
    // A new library, then one whose tracks get the numbers that they keep.
    host.Run();
    host.Run();
    std::vector<std::vector<double>> whole(faces.size()), beyondFirst(faces.size());
    for (int round = 0; round < Rounds; ++round) {
        for (std::size_t k = 0; k < faces.size(); ++k) {
            whole[k].push_back(host.Run(faces[k].surroundings, faces[k].view).processor);
            beyondFirst[k].push_back(whole[k].back() - whole[0].back());
        }
    }
    std::vector<Cost> costs;
    costs.reserve(faces.size());
    for (std::size_t k = 0; k < faces.size(); ++k)
        costs.push_back({.whole = Median(whole[k]), .beyondFirst = Median(beyondFirst[k])});
    return costs;
}

}  // namespace

int Main(std::span<char*> arguments) {
    const auto sizes = SizesFrom(arguments, "face_bench [TRACKS...]  (default: 100000)", {100'000});
    const std::vector<Face> faces = Faces();
    const std::vector<Cost> opening = Costs(faces, FewTracks);
    bool met = true;
    std::cout << fmt::format("{:>8} {:>9} {:>12} {:>10} {:>16}\n", "tracks", "face", "processor",
                             "opening", "share of the run");
    for (const std::size_t tracks : sizes) {
        const std::vector<Cost> costs = Costs(faces, tracks);
        for (std::size_t k = 0; k < faces.size(); ++k) {
            // A window is opened once, whatever the run has to do after that.
            const double opened = opening[k].beyondFirst;
            const double share = (costs[k].beyondFirst - opened) / costs[0].whole;
            std::cout << fmt::format("{:>8} {:>9} {:>10.3f} s {:>8.3f} s {:>14.1f} %\n", tracks,
                                     faces[k].view, costs[k].whole, opened, 100 * share);
            met &= share <= LargestShare;
        }
    }
    std::cout << fmt::format("at most {:.0f} % of a run: {}\n", 100 * LargestShare,
                             met ? "met" : "MISSED");
    return met ? 0 : 1;
}

}  // namespace quillon::bench
