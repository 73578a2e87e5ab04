#include "bench/aims.h"

#include <algorithm>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include "tests/outside/temporary_folder.h"

namespace quillon::bench {
namespace {

/// What a run that has not changed anything may count.
const std::map<std::string, int> Quiet{{"database.written-pages", 0},
                                       {"playlist.written-files", 0},
                                       {"snapshot.written-bytes", 0},
                                       {"syncs", 20}};

CallCounts Counts(const std::map<std::string, int>& counts) {
    const outside::TemporaryFolder folder;
    std::ofstream out(folder.Path() / "counts");
    for (const auto& [name, count] : counts)
        out << name << ' ' << count << '\n';
    out.close();
    return CallCounts(folder.Path() / "counts");
}

Series Seconds(double seconds) {
    return {.seconds = {seconds}, .peakMemory = 1};
}

/// All aims are just met.
Figures JustGoodEnough() {
    Figures figures;
    figures.plan.tracks = 100'000;
    figures.walk = Seconds(1);
    figures.unchanged = {.processor = Seconds(3), .counts = Counts(Quiet), .phases = {}};
    figures.tags = {.processor = Seconds(5), .counts = {}, .phases = {}};
    figures.fresh = {.processor = Seconds(5), .counts = {}, .phases = {}};
    figures.fresh.processor.peakMemory = 48 * 1024 * 1024 + 100'000 * 800;
    figures.previewFresh = Seconds(5.5);
    figures.previewUnchanged = Seconds(3.3);
    figures.mpdFresh = Seconds(30);
    figures.mpdUnchanged = Seconds(2);
    figures.query = Pair{.ours = Seconds(1), .theirs = Seconds(1)};
    figures.adding = {.ours = Seconds(1.05), .theirs = Seconds(1)};
    for (const std::size_t tracks : {20'000UL, 100'000UL}) {
        const auto seconds = static_cast<double>(tracks);
        figures.growth.push_back({.tracks = tracks,
                                  .walk = Seconds(seconds),
                                  .fresh = Seconds(seconds),
                                  .unchanged = Seconds(seconds)});
    }
    return figures;
}

std::vector<std::string> Missed(const Figures& figures) {
    std::vector<std::string> missed;
    for (const Aim& aim : Aims(figures)) {
        if (!aim.met) missed.push_back(aim.what);
    }
    return missed;
}

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

TEST(Aims, AreMetByFiguresThatJustReachThem) {
    EXPECT_THAT(Missed(JustGoodEnough()), testing::IsEmpty());
    EXPECT_EQ(Aims(JustGoodEnough()).size(), 18U);
}

TEST(Aims, AreMissedOneByOne) {
    const auto missed = [](const auto& worsen) {
        Figures figures = JustGoodEnough();
        worsen(figures);
        return Missed(figures);
    };
    EXPECT_THAT(missed([](Figures& f) { f.unchanged.processor = Seconds(3.01); }),
                ElementsAre(StartsWith("Unchanged, 100000"), StartsWith("Unchanged: times the")));
    EXPECT_THAT(missed([](Figures& f) { f.tags.processor = Seconds(5.01); }),
                ElementsAre(HasSubstr("comparison of tags")));
    EXPECT_THAT(missed([](Figures& f) { f.walk = Seconds(0.999); }), testing::SizeIs(3));
    EXPECT_THAT(missed([](Figures& f) { ++f.fresh.processor.peakMemory; }),
                ElementsAre(HasSubstr("12 an album")));
    EXPECT_THAT(missed([](Figures& f) { f.growth[1].fresh.seconds = {110'000}; }),
                ElementsAre("Growth exponent, new, 20000 to 100000 tracks"));
    EXPECT_THAT(missed([](Figures& f) { f.growth[1].unchanged.seconds = {110'000}; }),
                ElementsAre("Growth exponent, unchanged, 20000 to 100000 tracks"));
    EXPECT_THAT(missed([](Figures& f) { f.previewFresh = Seconds(5.51); }),
                ElementsAre("Preview, new, 100000 tracks: times the run"));
    EXPECT_THAT(missed([](Figures& f) { f.previewUnchanged = Seconds(3.31); }),
                ElementsAre("Preview, unchanged, 100000 tracks: times the run"));
    EXPECT_THAT(missed([](Figures& f) { f.mpdFresh = Seconds(29.9); }),
                ElementsAre(StartsWith("New: times as fast")));
    EXPECT_THAT(missed([](Figures& f) { f.query->ours = Seconds(1.01); }),
                ElementsAre(HasSubstr("mdb-sql")));
    EXPECT_THAT(missed([](Figures& f) { f.adding.ours = Seconds(1.06); }),
                ElementsAre(HasSubstr("safe copy")));
}

TEST(Aims, AreMissedByOnePageOrSyncTooMuch) {
    for (const auto& [name, most] : Quiet) {
        auto counts = Quiet;
        ++counts[name];
        Figures figures = JustGoodEnough();
        figures.unchanged.counts = Counts(counts);
        EXPECT_THAT(Missed(figures), ElementsAre(StartsWith("Unchanged: "))) << name;
    }
}

TEST(Aims, LeaveOutWhatIsNotInstalled) {
    Figures figures = JustGoodEnough();
    figures.mpdFresh = figures.mpdUnchanged = std::nullopt;
    figures.query = std::nullopt;
    EXPECT_THAT(Missed(figures), testing::IsEmpty());
    EXPECT_EQ(Aims(figures).size(), 15U);
}

}  // namespace
}  // namespace quillon::bench
