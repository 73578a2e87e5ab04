#include "bench/session.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <fmt/format.h>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <unistd.h>
#include <utility>

#include "bench/adding.h"
#include "bench/figures.h"
#include "bench/mpd_server.h"

namespace quillon::bench {
namespace {

// A new library, then one whose tracks get the numbers that they keep, then lists that follow.
constexpr int RunsToSettle = 3;
constexpr std::size_t PhaseRounds = 3;
constexpr std::size_t QueryRounds = 15;
constexpr std::size_t GrowthTracksAnAlbum = 54;
constexpr std::size_t TracksForAnAddedFile = 50;
constexpr std::size_t FewestAddedFiles = 20;

void Tell(const std::string& what) {
    std::cerr << what << std::endl;
}

enum class Tags { Ignored, Compared, Equal };

/// What has been measured with. Where thousands of files have just been deleted, some file systems
/// take several times as long to make new ones, so all goes at the end.
using Used = std::vector<std::shared_ptr<const void>>;

std::unique_ptr<HostFolder> NewHost(const Plan& plan, const MusicTree& music) {
    auto host = std::make_unique<HostFolder>(plan.program, music.Root());
    host->AddCovers(music.Root());
    return host;
}

/// Genres are known to the tags alone until a run takes them into the database.
void TakeTagsIntoDatabase(const HostFolder& host) {
    host.Run();
    host.Set("Reconcile", "0");
    host.Set("ID3Update", "1");
    host.Run();
    host.Set("ID3Update", "0");
    host.Set("Reconcile", "1");
}

std::unique_ptr<HostFolder> SettledHost(const Plan& plan, const MusicTree& music,
                                        Tags tags = Tags::Ignored) {
    auto host = NewHost(plan, music);
    if (tags != Tags::Ignored) host->Set("ID3Reconcile", "1");
    host->Run();
    if (tags == Tags::Equal) TakeTagsIntoDatabase(*host);
    for (int i = 1; i < RunsToSettle; ++i)
        host->Run();
    return host;
}

double ProcessorSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

/// What the file system takes for one, wherever the program's new files are.
double SecondsOfANewFile(Used& used) {
    constexpr int Files = 500;
    const auto folder = std::make_shared<outside::TemporaryFolder>();
    used.push_back(folder);
    const double start = ProcessorSeconds();
    for (int i = 0; i < Files; ++i)
        std::ofstream(folder->Path() / std::to_string(i));
    return (ProcessorSeconds() - start) / Files;
}

void AddWalk(Series& walk, const MusicTree& music) {
    walk.seconds.push_back(music.SecondsOfWalk());
}

/// The library that ratios are taken of, and the hosts that have been over it.
class RatioStage {
  public:
    RatioStage(const Plan& plan, Used& used)
        : plan_(plan),
          used_(used),
          music_(plan.tracks, FileNames::ByArtist),
          unchanged_(SettledHost(plan, music_)),
          tags_(SettledHost(plan, music_, Tags::Compared)),
          equalTags_(SettledHost(plan, music_, Tags::Equal)) {
        sync();
        AddWalk(warmUp_, music_);
    }

    /// Everything once, each way behind a walk.
    void Round(Figures& figures) {
        figures.newFile.seconds.push_back(SecondsOfANewFile(used_));
        for (const NamedWay& named : Ways) {
            AddWalk(figures.walk, music_);
            const std::shared_ptr<const HostFolder> host = HostOf(named);
            const bool isUnchanged = named.way == &Figures::unchanged;
            // What comes second finds more in the caches.
            const bool comesFirst = figures.previewUnchanged.seconds.size() % 2 == 0;
            if (named.way == &Figures::fresh) figures.previewFresh.Add(host->Preview());
            if (isUnchanged && comesFirst) figures.previewUnchanged.Add(host->Preview());
            (figures.*named.way).processor.Add(host->Run());
            if (isUnchanged && !comesFirst) figures.previewUnchanged.Add(host->Preview());
        }
        if (mpd_) AskMpd(figures);
    }

    void Look(Figures& figures) {
        for (const NamedWay& named : Ways) {
            WayOfRunning& way = figures.*named.way;
            way.counts = CountedRun(*HostOf(named));
            std::vector<std::vector<PhaseTime>> runs;
            runs.reserve(PhaseRounds);
            for (std::size_t i = 0; i < PhaseRounds; ++i)
                runs.push_back(RunByPhase(*HostOf(named)));
            way.phases = MedianPhases(runs);
        }
    }

    std::string Database() const { return unchanged_->Database().string(); }

  private:
    /// A new library needs a new one each time.
    std::shared_ptr<const HostFolder> HostOf(const NamedWay& named) {
        if (named.way == &Figures::fresh) {
            std::shared_ptr<const HostFolder> host = NewHost(plan_, music_);
            used_.push_back(host);
            return host;
        }
        if (named.way == &Figures::unchanged) return unchanged_;
        return named.way == &Figures::tags ? tags_ : equalTags_;
    }

    void AskMpd(Figures& figures) const {
        MpdServer server(*mpd_, music_.Root());
        if (!figures.mpdFresh) {
            figures.mpdFresh.emplace();
            figures.mpdUnchanged.emplace();
        }
        figures.mpdFresh->seconds.push_back(server.SecondsOfUpdate(plan_.tracks));
        figures.mpdUnchanged->seconds.push_back(server.SecondsOfUpdate(plan_.tracks));
    }

    const Plan& plan_;
    Used& used_;
    MusicTree music_;
    std::shared_ptr<const HostFolder> unchanged_, tags_, equalTags_;
    std::optional<std::string> mpd_ = InstalledProgram("mpd");
    Series warmUp_;
};

/// What a program prints.
std::string OutputOf(const std::vector<std::string>& command) {
    std::string output;
    RunToSuccess(command,
                 {.onLine = [&](std::string_view line, double) { output.append(line) += '\n'; }});
    return output;
}

/// One row by its key, asked of this program and of one that reads such files, too.
std::optional<Pair> MeasureQuery(const Plan& plan, const std::string& database) {
    const auto reader = InstalledProgram("mdb-sql");
    if (!reader) return std::nullopt;
    const outside::TemporaryFolder folder;
    const std::string sql = fmt::format("SELECT Title FROM Tracks WHERE ID = {}", plan.tracks / 2);
    const std::string file = (folder.Path() / "query").string();
    std::ofstream(file) << sql << '\n';
    const std::vector<std::string> ours{plan.program, "db", "query", database, sql};
    const std::vector<std::string> theirs{*reader, "-PHF", "-i", file, database};
    const std::string title = OutputOf(theirs);
    if (title.empty() || OutputOf(ours).find(title) == std::string::npos)
        throw std::runtime_error("two answers to " + sql);
    Pair pair;
    for (std::size_t i = 0; i < QueryRounds; ++i) {
        pair.ours.Add(RunToSuccess(ours));
        pair.theirs.Add(RunToSuccess(theirs));
    }
    return pair;
}

void MeasureRatios(Figures& figures, Used& used) {
    const Plan& plan = figures.plan;
    Tell(fmt::format("{} tracks: making the library, bringing it into the database", plan.tracks));
    const auto stage = std::make_shared<RatioStage>(plan, used);
    used.push_back(stage);
    for (std::size_t i = 0; i < plan.rounds; ++i) {
        Tell(fmt::format("{} tracks: round {} of {}", plan.tracks, i + 1, plan.rounds));
        stage->Round(figures);
    }
    Tell(fmt::format("{} tracks: calls and phases", plan.tracks));
    stage->Look(figures);
    figures.query = MeasureQuery(plan, stage->Database());
}

void MeasureAdding(Figures& figures, Used& used) {
    const Plan& plan = figures.plan;
    figures.addedFiles = std::max(plan.tracks / TracksForAnAddedFile, FewestAddedFiles);
    const auto files = std::make_shared<NewFiles>(figures.addedFiles);
    used.push_back(files);
    for (std::size_t i = 0; i < plan.growthRounds; ++i) {
        Tell(fmt::format("adding {} files: round {} of {}", figures.addedFiles, i + 1,
                         plan.growthRounds));
        figures.adding.theirs.seconds.push_back(files->SecondsOfCopy(NewFiles::Way::Safe));
        const auto stage = std::make_shared<AddingStage>(plan.program, *files);
        used.push_back(stage);
        figures.adding.ours.seconds.push_back(stage->Add().seconds);
    }
}

/// A library of one of the sizes whose growth is looked at.
class GrowthStage {
  public:
    GrowthStage(const Plan& plan, std::size_t tracks)
        : plan_(plan),
          music_(tracks, FileNames::ByNumber, GrowthTracksAnAlbum),
          unchanged_(SettledHost(plan, music_)) {
        figures.tracks = tracks;
    }

    void Round() {
        AddWalk(figures.walk, music_);
        used_.push_back(NewHost(plan_, music_));
        figures.fresh.Add(used_.back()->Run());
        AddWalk(figures.walk, music_);
        figures.unchanged.Add(unchanged_->Run());
    }

    SizeFigures figures;

  private:
    const Plan& plan_;
    MusicTree music_;
    std::vector<std::unique_ptr<HostFolder>> used_;
    std::unique_ptr<HostFolder> unchanged_;
};

void MeasureGrowth(Figures& figures) {
    const Plan& plan = figures.plan;
    std::vector<std::unique_ptr<GrowthStage>> stages;
    for (const std::size_t size : plan.sizes) {
        Tell(fmt::format("growth: making the library of {} tracks", size));
        stages.push_back(std::make_unique<GrowthStage>(plan, size));
    }
    sync();
    for (std::size_t i = 0; i < plan.growthRounds; ++i) {
        Tell(fmt::format("growth: round {} of {}", i + 1, plan.growthRounds));
        for (const auto& stage : stages)
            stage->Round();
    }
    for (const auto& stage : stages)
        figures.growth.push_back(stage->figures);
}

}  // namespace

void Series::Add(const Usage& used) {
    seconds.push_back(used.processor);
    peakMemory = std::max(peakMemory, used.peakMemory);
}

double Series::Typical() const {
    return Median(seconds);
}

Figures Measure(const Plan& plan) {
    const auto start = std::chrono::steady_clock::now();
    Figures figures;
    figures.plan = plan;
    Used used;
    MeasureRatios(figures, used);
    MeasureAdding(figures, used);
    if (plan.sizes.size() > 1) MeasureGrowth(figures);
    const std::chrono::duration<double, std::ratio<60>> taken =
        std::chrono::steady_clock::now() - start;
    figures.minutes = taken.count();
    return figures;
}

}  // namespace quillon::bench
