#include "bench/aims.h"

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>

#include "bench/figures.h"

namespace quillon::bench {
namespace {

// Times the bare walk.
constexpr double Unchanged = 3.0, TagsCompared = 5.0, Fresh = 5.0;
constexpr double SteepestGrowth = 1.05;
constexpr double BaseMemory = 48 * Megabyte, MemoryPerTrack = 800;
constexpr std::uint64_t MostSyncs = 20;
// MPD's time is so many times that of this program, and the other way round.
constexpr double FasterThanMpdFresh = 6.0, TimesMpdUnchanged = 1.5;
constexpr double TimesMdbSql = 1.0;
constexpr double TimesSafeCopy = 1.05;
// Times the run that is previewed.
constexpr double Preview = 1.1;

Aim TimesAtMost(std::string what, double figure, double most) {
    return {.what = std::move(what),
            .figure = fmt::format("{:.2f}x", figure),
            .wanted = fmt::format("at most {:.4g}x", most),
            .met = figure <= most};
}

Aim CountAtMost(std::string what, std::uint64_t figure, std::uint64_t most) {
    return {.what = std::move(what),
            .figure = fmt::format("{}", figure),
            .wanted = most == 0 ? "0" : fmt::format("at most {}", most),
            .met = figure <= most};
}

Aim GrowthAtMost(const char* kind, const Series SizeFigures::* series, const SizeFigures& small,
                 const SizeFigures& large) {
    const double exponent = GrowthExponent((small.*series).Typical(), (large.*series).Typical(),
                                           small.tracks, large.tracks);
    return {.what = fmt::format("Growth exponent, {}, {} to {} tracks", kind, small.tracks,
                                large.tracks),
            .figure = fmt::format("{:.2f}", exponent),
            .wanted = fmt::format("at most {:.2f}", SteepestGrowth),
            .met = exponent <= SteepestGrowth};
}

Aim MemoryAtMost(const std::string& what, std::size_t tracks, std::size_t peak) {
    const double most = BaseMemory + MemoryPerTrack * static_cast<double>(tracks);
    const auto used = static_cast<double>(peak);
    return {.what = fmt::format("Peak memory, {} tracks, {}", tracks, what),
            .figure = fmt::format("{:.0f} MB", used / Megabyte),
            .wanted = fmt::format("at most {:.0f} MB", most / Megabyte),
            .met = used <= most};
}

void AddWalkAims(std::vector<Aim>& aims, const Figures& f) {
    const double walk = f.walk.Typical();
    const auto add = [&](const char* kind, const WayOfRunning& way, double most) {
        aims.push_back(
            TimesAtMost(fmt::format("{}, {} tracks: times the walk", kind, f.plan.tracks),
                        way.processor.Typical() / walk, most));
    };
    add("Unchanged", f.unchanged, Unchanged);
    add("Unchanged with comparison of tags", f.tags, TagsCompared);
    add("New", f.fresh, Fresh);
}

void AddPreviewAims(std::vector<Aim>& aims, const Figures& f) {
    const auto add = [&](const char* kind, const Series& preview, const WayOfRunning& way) {
        aims.push_back(
            TimesAtMost(fmt::format("Preview, {}, {} tracks: times the run", kind, f.plan.tracks),
                        preview.Typical() / way.processor.Typical(), Preview));
    };
    add("new", f.previewFresh, f.fresh);
    add("unchanged", f.previewUnchanged, f.unchanged);
}

void AddGrowthAims(std::vector<Aim>& aims, const Figures& f) {
    for (std::size_t i = 1; i < f.growth.size(); ++i) {
        const SizeFigures &small = f.growth[i - 1], &large = f.growth[i];
        aims.push_back(GrowthAtMost("new", &SizeFigures::fresh, small, large));
        aims.push_back(GrowthAtMost("unchanged", &SizeFigures::unchanged, small, large));
    }
}

void AddMemoryAims(std::vector<Aim>& aims, const Figures& f) {
    std::size_t peak = 0;
    for (const NamedWay& named : Ways)
        peak = std::max(peak, (f.*named.way).processor.peakMemory);
    aims.push_back(MemoryAtMost("12 an album", f.plan.tracks, peak));
    for (const SizeFigures& size : f.growth) {
        aims.push_back(MemoryAtMost("54 an album", size.tracks,
                                    std::max(size.fresh.peakMemory, size.unchanged.peakMemory)));
    }
}

void AddCountAims(std::vector<Aim>& aims, const CallCounts& counts) {
    aims.push_back(CountAtMost("Unchanged: pages of the database written",
                               counts["database.written-pages"], 0));
    aims.push_back(
        CountAtMost("Unchanged: playlists written", counts["playlist.written-files"], 0));
    aims.push_back(
        CountAtMost("Unchanged: snapshot bytes written", counts["snapshot.written-bytes"], 0));
    aims.push_back(CountAtMost("Unchanged: syncs", counts["syncs"], MostSyncs));
}

void AddPeerAims(std::vector<Aim>& aims, const Figures& f) {
    if (f.mpdFresh) {
        const double faster = f.mpdFresh->Typical() / f.fresh.processor.Typical();
        aims.push_back({.what = "New: times as fast as MPD",
                        .figure = fmt::format("{:.2f}x", faster),
                        .wanted = fmt::format("at least {:.4g}x", FasterThanMpdFresh),
                        .met = faster >= FasterThanMpdFresh});
        aims.push_back(TimesAtMost("Unchanged: times the time of MPD",
                                   f.unchanged.processor.Typical() / f.mpdUnchanged->Typical(),
                                   TimesMpdUnchanged));
    }
    if (f.query)
        aims.push_back(TimesAtMost("One row by its key: times the time of mdb-sql",
                                   f.query->Ratio(), TimesMdbSql));
    aims.push_back(TimesAtMost(fmt::format("AddFiles, {} files: times a safe copy", f.addedFiles),
                               f.adding.Ratio(), TimesSafeCopy));
}

}  // namespace

std::vector<Aim> Aims(const Figures& figures) {
    std::vector<Aim> aims;
    AddWalkAims(aims, figures);
    AddPreviewAims(aims, figures);
    AddGrowthAims(aims, figures);
    AddMemoryAims(aims, figures);
    AddCountAims(aims, figures.unchanged.counts);
    AddPeerAims(aims, figures);
    return aims;
}

}  // namespace quillon::bench
