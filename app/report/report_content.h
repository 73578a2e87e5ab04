#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "changes/change.h"

namespace quillon {

/// What people call a row.
struct RowName {
    std::string artist, title;
};

/// What a report tells beside the records of its run.
struct ReportFacts {
    std::string host;         ///< the host folder, for the commands that it names
    bool flatLayout = false;  ///< music files are "Artist_Song.mp3", else they lie in two folders
    /// The name that the row with this ID has in the end, for those whose record does not have it;
    /// may be empty.
    std::function<RowName(const std::string& table, std::int64_t id)> nameOf = {};
    /// Music that the run has passed by.
    struct LeftOutMusic {
        std::string why;
        std::size_t files = 0;
        std::vector<std::string> places;  ///< the first ones
    };
    std::vector<LeftOutMusic> leftOut = {};
};

/// What a report can say of a thing. Those before `PlaylistWritten` belong to an artist.
enum class DeedKind {
    AlbumAdded,
    AlbumChanged,
    AlbumRemoved,
    CoverChanged,  ///< an album of which nothing else is different
    TrackAdded,
    TrackChanged,
    TrackRemoved,
    FileRenamed,
    FileCopied,
    FileRemoved,
    TagWritten,
    PlaylistWritten,
    PlaylistRewritten,
    PlaylistDeleted,
    ImageWritten,
    PageWritten,
    RowOfOtherTable,
    FileWritten,
};
constexpr std::size_t DeedKinds = static_cast<std::size_t>(DeedKind::FileWritten) + 1;

/// How many there are, and the first of them.
struct DeedList {
    struct Deed {
        std::string what;
        std::vector<std::string> details;  ///< "Track: 3 -> 4"
    };
    std::size_t count = 0;
    std::vector<Deed> first;
};
using DeedLists = std::array<DeedList, DeedKinds>;

/// A run's records as a report shows them: of each kind the first ones and how many there are.
struct ReportContent {
    static constexpr std::size_t MostListed = 100;

    struct Phase {
        std::string name;
        std::chrono::milliseconds took{0};
    };
    struct Error {
        std::string text;
        std::size_t times = 1;
    };

    std::string stamp, mode, version, undoes;
    bool hasEnded = false;  ///< false: the run was killed
    RunEnded end;
    std::vector<Error> errors;  ///< the first different ones
    std::size_t errorCount = 0;
    std::vector<Phase> phases;
    std::map<std::string, DeedLists, std::less<>> artists;  ///< "" for what has none
    DeedLists total;

    bool HasChanges() const;
};

}  // namespace quillon
