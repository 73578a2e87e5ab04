#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "bench/run_record.h"

namespace quillon::bench {

/// What is measured, and how often.
struct Plan {
    std::string program = QUILLON_PROGRAM;
    std::size_t tracks = 100'000;    ///< of the library that ratios are taken of
    std::vector<std::size_t> sizes;  ///< of the libraries whose growth is looked at, ascending
    std::size_t rounds = 7;
    std::size_t growthRounds = 3;
};

/// Figures of the same work, repeated in turn with others.
struct Series {
    std::vector<double> seconds;
    std::size_t peakMemory = 0;  ///< bytes

    void Add(const Usage& used);
    double Typical() const;  ///< the median
};

/// One way of running the program over the library.
struct WayOfRunning {
    Series processor;
    CallCounts counts;
    std::vector<PhaseTime> phases;
};

/// Two programs that do the same.
struct Pair {
    Series ours, theirs;
    double Ratio() const { return ours.Typical() / theirs.Typical(); }
};

struct SizeFigures {
    std::size_t tracks = 0;
    Series walk, fresh, unchanged;
};

struct Figures {
    Plan plan;
    Series walk;
    Series newFile;  ///< an empty one
    WayOfRunning fresh, unchanged;
    WayOfRunning tags;       ///< compared; the genre of each track is another in the database
    WayOfRunning equalTags;  ///< compared; all is the same
    Series previewFresh, previewUnchanged;         ///< of the same libraries, right before the runs
    std::optional<Series> mpdFresh, mpdUnchanged;  ///< where it is installed
    std::optional<Pair> query;                     ///< the same with mdb-sql
    std::size_t addedFiles = 0;
    Pair adding;  ///< seconds that pass: nearly all of them are waiting for the disk
    std::vector<SizeFigures> growth;
    double minutes = 0;  ///< that the session has taken
};

struct NamedWay {
    const char* name;
    WayOfRunning Figures::* way;
};
inline constexpr std::array Ways{
    NamedWay{.name = "New", .way = &Figures::fresh},
    NamedWay{.name = "Unchanged", .way = &Figures::unchanged},
    NamedWay{.name = "Unchanged, tags compared", .way = &Figures::tags},
    NamedWay{.name = "Tags compared and equal", .way = &Figures::equalTags},
};

/// Makes all measurements; tells on the error output which one it is at.
Figures Measure(const Plan& plan);

}  // namespace quillon::bench
