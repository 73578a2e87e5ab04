#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "app/report/cover_counts.h"
#include "app/report/report_content.h"
#include "app/report/stored_counts.h"
#include "changes/change.h"

namespace quillon {

/// Numbers of rows, a bit for each: there may be some hundred thousand, mostly counted from 1.
class RowNumbers {
  public:
    /// False where it is there already.
    bool Add(std::int64_t number);

  private:
    std::vector<bool> low_;
    std::unordered_set<std::int64_t> others_;
};

/// Makes a report's content of a run's records, which are told one by one as they come. Only what
/// the report tells is held in memory.
class ReportGatherer {
  public:
    /// The facts must outlive this object. The layout must be known before the first file changes;
    /// names are asked for at the end.
    explicit ReportGatherer(const ReportFacts& facts) : facts_(facts) {}

    void Note(const ChangeRecord& record) {
        std::visit([this](const auto& content) { Add(content); }, record);
    }

    /// How many there were so far, of rows those that are in the database for good.
    std::size_t CountOf(DeedKind kind);
    /// Likewise of albums' images.
    const CoverCounts::Numbers& Covers() const { return savedCovers_; }
    /// Likewise of what else a summary tells of rows.
    const StoredCounts::Numbers& Stored() const { return savedValues_; }

    /// To be called once, when all records have been told.
    ReportContent Finish();

  private:
    /// A row whose record does not name it.
    struct Unnamed {
        DeedKind kind;
        std::int64_t id;
        std::unique_ptr<RowChange> row;  ///< null behind those of its kind that are listed
    };

    void Add(const RunStarted& start);
    void Add(const ModeChosen& mode) { content_.mode = mode.mode; }
    void Add(const PhaseStarted& phase);
    void Add(const RowChange& row);
    void Add(const DateReplaced& date);
    void Add(const RowsSaved&) {
        savedRows_ = rows_;
        savedCovers_ = covers_.Current();
        savedValues_ = stored_.Current();
    }
    void Add(const FileChange& change);
    void Add(const FileChangeFailed& failed);
    void Add(const LogLine& line);
    void Add(const WriteLeft&) {}
    void Add(const RunEnded& end);

    void EndPhase(std::chrono::milliseconds at);

    DeedList& ListOf(DeedKind kind, std::string_view artist);
    DeedList::Deed* AddDeed(DeedKind kind, std::string_view artist, std::string_view what);
    bool IsSeen(const RowChange& row, std::optional<std::int64_t> id);
    void AddOtherRow(const std::string& table);
    void TellRow(DeedKind kind, const RowChange& row, std::string_view artist,
                 std::string_view title);
    void TellUnnamed(const Unnamed& unnamed);

    void ForgetWhatMade(const std::string& path);
    void ForgetPagesIn(const std::string& folder);
    void TellNextFile();
    void Tell(const FileChange& change);
    DeedList::Deed* AddFile(DeedKind kind, const std::string& path, const std::string& what);
    void AddRenamed(const FileChange& change);
    void AddTag(const FileChange& change);
    void AddWritten(const FileChange& change, const std::string& path);
    void AddDeleted(const FileChange& change);

    const ReportFacts& facts_;
    ReportContent content_;
    std::deque<FileChange> planned_;  ///< not told yet, as they may have failed
    std::vector<Unnamed> unnamed_;
    std::array<std::size_t, DeedKinds> unnamedOf_{};
    std::string lastArtist_;  ///< rows of one artist mostly follow each other
    DeedLists* ofLastArtist_ = nullptr;
    std::array<std::size_t, DeedKinds> rows_{}, savedRows_{};  ///< how many of each kind
    CoverCounts covers_;
    CoverCounts::Numbers savedCovers_;
    bool hasDifferences_ = false;  ///< whether the list of differences has become another one
    StoredCounts stored_;
    StoredCounts::Numbers savedValues_;
    std::array<RowNumbers, 4> seenIds_;  ///< albums, albums removed, tracks, tracks removed
    std::unordered_set<std::uint64_t> seenRows_, seenFiles_;  ///< hashes
    std::map<std::string, std::string> onTheWay_;  ///< names in the middle of a rename: from where
    std::optional<std::string> phase_;
    std::chrono::milliseconds lastTime_{0};
};

}  // namespace quillon
