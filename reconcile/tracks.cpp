#include "reconcile/tracks.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <numeric>
#include <optional>
#include <span>
#include <string>
#include <unordered_set>
#include <vector>

#include "database/schema.h"
#include "database/sql.h"
#include "database/track_numbers.h"
#include "id3/tag_reader.h"
#include "platform/clock.h"
#include "reconcile/new_rows.h"
#include "reconcile/number_order.h"
#include "reconcile/track_name.h"
#include "reconcile/track_tag.h"
#include "run/log.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr std::int64_t NoNumber = -1;

/// The numbers 1 to N and which of them are taken.
class NumbersTaken {
  public:
    explicit NumbersTaken(std::int16_t count) : taken_(static_cast<std::size_t>(count) + 1) {}

    std::int64_t Count() const { return static_cast<std::int64_t>(taken_.size()) - 1; }
    bool IsTaken(std::int64_t number) const { return taken_[static_cast<std::size_t>(number)]; }
    void Take(std::int64_t number) { taken_[static_cast<std::size_t>(number)] = true; }

    /// The lowest free number, which is then taken; nothing when there is none.
    std::optional<std::int64_t> TakeLowest() {
        while (lowest_ <= Count() && IsTaken(lowest_))
            ++lowest_;
        if (lowest_ > Count()) return std::nullopt;
        Take(lowest_);
        return lowest_;
    }

  private:
    std::vector<bool> taken_;
    std::int64_t lowest_ = 1;
};

/// One album's files on their way through the passes.
class AlbumTracks {
  public:
    AlbumTracks(Walk& walk, const Album& album)
        : walk_(walk),
          run_(walk.run),
          tracks_(*walk.tracks),
          album_(album),
          steps_(walk.run, "ProcessTracks"),
          numbers_(album.trackCount) {}

    /// Gives the file its row. The file's ID is set when that row waits for a number.
    void Place(ListedFile& file) {
        steps_.Concerning(file.Name);
        std::optional<Row> row;
        if (!steps_.Try(1, [&] { row = FindRow(file.Name); })) return;
        if (album_.cdjid == NoCdjid) return;  // no album to hold a row
        if (!row) {
            if (!TryRow(2, [&] { row = AddRow(file); }) || !row) return;
        } else {
            // A row that cannot take a value keeps the old one, and still gets its number: without
            // it the sweep would delete the row of a file that is there.
            TryRow(3, [&] { ChangeRow(*row, file.Name); });
        }
        lastPlaced_ = row->id;
        TryRow(4, [&] { CheckNumber(*row, file); });
    }

    /// Gives the files that wait the lowest free numbers, the oldest file first.
    void HandOutNumbers(FileList& files) {
        std::vector<ListedFile*> waiting;
        for (ListedFile& file : files) {
            if (file.ID != 0) waiting.push_back(&file);
        }
        for (auto first = waiting.begin(); first != waiting.end();) {
            const auto isYounger = [&first](const ListedFile* file) {
                return file->FileDate.days != (*first)->FileDate.days;
            };
            const auto last = std::find_if(first, waiting.end(), isYounger);
            HandOutNumbersAmong({first, last});
            first = last;
        }
    }

    void LogMissingNumbers() {
        for (std::int64_t number = 1; number <= numbers_.Count(); ++number) {
            if (numbers_.IsTaken(number)) continue;
            LogError(run_, LogSource,
                     "Reconcile Track Number " + std::to_string(number) + " Missing from " +
                         album_.artist + "\\" + album_.title);
        }
    }

  private:
    struct Row {
        std::int64_t id = 0;
        std::int64_t number = 0;
        std::string cdjid, title, artist;
        bool isNew = false;
    };

    /// The same for files of one age.
    void HandOutNumbersAmong(std::span<ListedFile* const> files) {
        std::vector<std::int64_t> free;
        while (free.size() < files.size()) {
            const std::optional<std::int64_t> number = numbers_.TakeLowest();
            if (!number) break;
            free.push_back(*number);
        }
        std::vector<std::size_t> order(files.size());
        std::iota(order.begin(), order.end(), std::size_t{0});
        if (files.size() > 1 && free.size() == files.size()) {
            std::vector<std::int64_t> before;
            for (const ListedFile* const file : files)
                before.push_back(NumberBefore(file->ID));
            order = OrderOfOneAge(before, free,
                                  [&](std::size_t file) { return TagNumber(*files[file]); });
        }
        for (std::size_t i = 0; i < order.size(); ++i) {
            const bool isFree = i < free.size();
            GiveNumber(*files[order[i]], isFree ? std::optional(free[i]) : std::nullopt);
        }
    }

    /// 0 where there was none.
    std::int64_t NumberBefore(std::int64_t id) const {
        const MarkedTrack* const before = walk_.before.FindTrack(id);
        return before == nullptr ? 0 : before->number.value_or(0);
    }

    std::optional<std::int64_t> TagNumber(ListedFile& file) {
        if (!file.IsTagRead) file.TagNumber = ReadTrackNumber(ReadID3(run_, file.Name));
        file.IsTagRead = true;
        return file.TagNumber;
    }

    void GiveNumber(const ListedFile& file, std::optional<std::int64_t> number) {
        steps_.Concerning(file.Name);
        TryRow(5, [&] {
            if (!number) {
                LogError(run_, LogSource, "Unable to find a track number for " + LastPlacedFile());
                return;
            }
            if (!MoveToId(tracks_, file.ID)) {
                LogError(run_, LogSource,
                         "Database record missing during track number update for ID " +
                             std::to_string(file.ID));
                return;
            }
            lastPlaced_ = file.ID;
            tracks_.Set("Track", *number);
            tracks_.Update();
            Settle(file.ID, *number);
        });
    }

    /// Runs a step that may leave a row half written; the next row must not inherit that.
    template <typename Work>
    bool TryRow(int step, Work&& work) {
        const bool done = steps_.Try(step, std::forward<Work>(work));
        if (!done) steps_.Try(step, [this] { tracks_.CancelUpdate(); });
        return done;
    }

    /// Stored paths may have something before the drive, hence the leading wildcard. The look-up
    /// brings all that may need a change, so that a row without changes is fetched only once.
    std::optional<Row> FindRow(const std::string& path) {
        const std::unique_ptr<RecordSet> found = run_.connection->Query(
            "SELECT Tracks.ID, Tracks.Track, Tracks.CDJID, Tracks.Title, Tracks.Artist "
            "FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID  "
            "WHERE (((Tracks.SoundFile) Like " +
            Quoted("%" + path) + ") AND ((Albums.Player)=1001))");
        if (found->IsEmpty()) return std::nullopt;
        return Row{.id = found->Integer("ID"),
                   .number = found->Integer("Track"),
                   .cdjid = found->Text("CDJID"),
                   .title = found->Text("Title"),
                   .artist = found->Text("Artist")};
    }

    /// Nothing where the file cannot be read, which is logged then. A row without its length and
    /// number would stay so for good; without one, the next run adds it.
    std::optional<Row> AddRow(ListedFile& file) {
        constexpr std::int64_t UnknownLength = -1;
        const std::string& path = file.Name;
        const std::optional<std::string> record = ReadWholeID3(run_, path);
        if (!record) return std::nullopt;
        const TrackTag tag = ReadTrackTag(*record);
        file.IsTagRead = true;
        file.TagNumber = tag.track;
        const std::int64_t number = tag.track.value_or(NoNumber);
        AddTrackRow(tracks_, run_.clock.Now(),
                    {.cdjid = album_.cdjid,
                     .minutes = tag.length ? *tag.length / 60 : UnknownLength,
                     .seconds = tag.length ? *tag.length % 60 : UnknownLength,
                     .number = number,
                     .title = GetTrackName(path, run_.settings.FlatStructure),
                     .artist = album_.artist,
                     .soundFile = path,
                     .album = album_.title});
        ++run_.counts.tracksAdded;
        Row row;
        row.id = tracks_.Integer("ID");
        row.number = number;
        row.isNew = true;
        return row;
    }

    void ChangeRow(const Row& row, const std::string& path) {
        const std::string title = GetTrackName(path, run_.settings.FlatStructure);
        if (row.cdjid == album_.cdjid && row.title == title && row.artist == album_.artist) return;
        MoveToId(tracks_, row.id);
        if (row.cdjid != album_.cdjid) tracks_.Set("CDJID", album_.cdjid);
        if (row.title != title) tracks_.Set("Title", title);
        if (row.artist != album_.artist) tracks_.Set("Artist", album_.artist);
        tracks_.Update();
        changed_.insert(row.id);
    }

    void CheckNumber(const Row& row, ListedFile& file) {
        const bool inRange = row.number > 0 && row.number <= numbers_.Count();
        if (inRange && !numbers_.IsTaken(row.number)) {
            numbers_.Take(row.number);
            if (!row.isNew) Settle(row.id, row.number);
            return;
        }
        if (row.isNew) added_.insert(row.id);
        file.ID = row.id;
        if (row.number <= 0) return;
        MoveToId(tracks_, row.id);
        tracks_.Set("Track", NoNumber);
        tracks_.Update();
    }

    /// Counts a row of earlier runs, whose number is final now.
    void Settle(std::int64_t id, std::int64_t number) {
        if (added_.contains(id)) return;
        const MarkedTrack* const before = walk_.before.FindTrack(id);
        const bool same = before == nullptr || before->number == number;
        const bool isRenamed = changed_.contains(id);
        ++(same && !isRenamed ? run_.counts.tracksUnchanged : run_.counts.tracksChanged);
        if (!same && !isRenamed) ++walk_.renumbered;
    }

    std::string LastPlacedFile() {
        MoveToId(tracks_, lastPlaced_);
        return tracks_.Text("SoundFile");
    }

    Walk& walk_;
    Run& run_;
    RecordSet& tracks_;
    const Album& album_;
    Steps steps_;
    NumbersTaken numbers_;
    std::int64_t lastPlaced_ = 0;  ///< the row that was worked on last
    std::unordered_set<std::int64_t> changed_, added_;
};

}  // namespace

void ProcessTracks(Walk& walk, const Album& album, FileList& files) {
    AlbumTracks tracks(walk, album);
    for (ListedFile& file : files)
        tracks.Place(file);
    tracks.HandOutNumbers(files);
    tracks.LogMissingNumbers();
}

}  // namespace quillon
