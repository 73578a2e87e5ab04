#include "reconcile/tracks.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <numeric>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "database/schema.h"
#include "database/sql.h"
#include "database/waiting_music.h"
#include "id3/file_names.h"
#include "id3/track_artists.h"
#include "id3/track_of_file.h"
#include "platform/basic_text.h"
#include "platform/clock.h"
#include "reconcile/new_rows.h"
#include "reconcile/number_order.h"
#include "reconcile/numbers_taken.h"
#include "reconcile/tag_numbers.h"
#include "reconcile/wished_numbers.h"
#include "run/log.h"
#include "run/paths.h"
#include "run/steps.h"
#include "tags/known_tags.h"

namespace quillon {
namespace {

constexpr std::int64_t NoNumber = -1;

/// One album's files on their way through the passes.
class AlbumTracks {
  public:
    AlbumTracks(Walk& walk, const Album& album)
        : walk_(walk),
          run_(walk.run),
          library_(walk.library),
          album_(album),
          steps_(walk.run, "ProcessTracks"),
          numbers_(album.trackCount) {}

    /// Finds out what must be known of all files before the first gets its row: their order, which
    /// numbers each disc has, and whether they are of several artists.
    void Prepare(FileList& files) {
        GiveNumbers(files, [](const ListedFile& file) { return Disc{.folder = file.Disc}; });
        if (run_.modern.keepsTrackArtists) FindArtists(files);
        if (run_.modern.numbersFromTags) OrderByWishes(files);
    }

    /// Gives the files their rows.
    void PlaceAll(FileList& files) {
        for (std::size_t i = 0; i < files.size(); ++i)
            Place(files[i], keepsNumbers_ ? rows_[i] : nullptr);
    }

    /// Gives the file its row, which may be known. The file's ID is set when that row waits for a
    /// number.
    void Place(ListedFile& file, TrackRow* row) {
        steps_.Concerning(file.Name);
        if (!steps_.Try(Step::FindRow, [&] { row = FindRow(file.Name, row); })) return;
        if (album_.cdjid == NoCdjid) return;  // no album to hold a row
        // What has been asked for is kept anyway.
        if (run_.knownTags && !file.Tag) run_.knownTags->Keep(file.Name);
        const bool isNew = row == nullptr;
        if (isNew) {
            if (!steps_.Try(Step::AddRow, [&] { row = AddRow(file); }) || row == nullptr) return;
        } else {
            // A row that cannot take a value keeps the old one, and still gets its number: without
            // it the sweep would delete the row of a file that is there.
            steps_.Try(Step::ChangeRow, [&] { ChangeRow(*row, file); });
        }
        lastPlaced_ = row->soundFile;
        CheckNumber(*row, file, isNew);
    }

    /// Gives the files that wait the lowest free numbers, the oldest file first.
    void HandOutNumbers(FileList& files) {
        std::vector<ListedFile*> waiting;
        for (ListedFile& file : files) {
            if (file.ID != 0) waiting.push_back(&file);
        }
        if (run_.modern.numbersFromTags) {
            for (const ListedFile* const file : waiting)
                GiveNumber(*file, numbers_.TakeLowest());
            return;
        }
        for (auto first = waiting.begin(); first != waiting.end();) {
            const auto isYounger = [&first](const ListedFile* file) {
                return file->Disc != (*first)->Disc ||
                       file->FileDate.days != (*first)->FileDate.days;
            };
            const auto last = std::find_if(first, waiting.end(), isYounger);
            HandOutNumbersAmong({first, last});
            first = last;
        }
    }

    /// Tells of gaps and of numbers that are there twice, in the run that gives an album its
    /// numbers.
    void TellOddNumbers() {
        if (!isRenumbered_) return;
        if (const std::string odd = OddNumbers(wishes_); !odd.empty())
            WriteLog(run_, LogSource,
                     "Track numbers of the files of " + album_.artist + "\\" + album_.title + ": " +
                         odd);
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
    enum class Step { FindRow = 1, AddRow = 2, ChangeRow = 3 };

    void FindArtists(FileList& files) {
        for (ListedFile& file : files) {
            steps_.Concerning(file.Name);
            steps_.Try(Step::AddRow, [&] { artists_.Add(TagOf(file).artist); });
        }
    }

    /// What a file's tag says; nothing where it cannot be read.
    const TrackTag& TagOf(ListedFile& file) {
        if (!file.Tag) {
            file.Tag = ReadTrackTag(run_, file);
            file.IsUnreadable = !file.Tag;
            if (!file.Tag) file.Tag.emplace();
        }
        return *file.Tag;
    }

    std::string ArtistOf(const ListedFile& file) const {
        return file.Tag ? artists_.Of(file.Tag->artist, album_.artist) : album_.artist;
    }

    /// Files of one disc follow each other.
    void GiveNumbers(FileList& files, const std::function<Disc(const ListedFile&)>& discOf) const {
        std::int64_t before = 0;
        for (auto first = files.begin(); first != files.end();) {
            const auto isOther = [&](const ListedFile& file) {
                return run_.modern.joinsDiscs && discOf(file) != discOf(*first);
            };
            const auto last = std::find_if(first, files.end(), isOther);
            const std::int64_t count = last - first;
            for (; first != last; ++first)
                first->Numbers = {.before = before, .count = count};
            before += count;
        }
    }

    /// Brings the files into the order of the numbers that their tags, or else their names, ask
    /// for.
    void OrderByWishes(FileList& files) {
        keepsNumbers_ = !run_.modern.readsAllTags && AreNumbered(files);
        for (std::size_t i = 0; i < files.size(); ++i) {
            const TrackRow* const row = keepsNumbers_ ? rows_[i] : nullptr;
            const std::optional<std::int64_t> wish = FindWish(files[i], row);
            wishes_.push_back({wish, files[i].Name, FindDisc(files[i]), i});
        }
        std::ranges::sort(wishes_, ComesBefore);
        FileList ordered;
        std::vector<TrackRow*> rows;
        ordered.reserve(files.size());
        for (WishedNumber& wish : wishes_) {
            ordered.push_back(std::move(files[wish.file]));
            wish.path = ordered.back().Name;
            if (keepsNumbers_) rows.push_back(rows_[wish.file]);
        }
        files = std::move(ordered);
        rows_ = std::move(rows);
        GiveNumbers(files, [&](const ListedFile& file) {
            return wishes_[static_cast<std::size_t>(&file - files.data())].disc;
        });
    }

    /// Of files in no disc folder the tags tell the disc.
    Disc FindDisc(const ListedFile& file) const {
        const bool isToldByTag = run_.modern.joinsDiscs && file.Disc <= 0 && file.Tag;
        return {.folder = file.Disc, .tag = isToldByTag ? DiscNumberIn(file.Tag->disc) : 1};
    }

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
            order = OrderOfOneAge(before, free, [&](std::size_t file) {
                return OfAlbum(*files[file], TagNumber(*files[file]));
            });
        }
        for (std::size_t i = 0; i < order.size(); ++i) {
            const bool isFree = i < free.size();
            GiveNumber(*files[order[i]], isFree ? std::optional(free[i]) : std::nullopt);
        }
    }

    /// 0 where there was none.
    std::int64_t NumberBefore(std::int64_t id) const {
        const TrackRow* const row = library_.FindTrack(TrackId{id});
        if (row == nullptr) return 0;
        if (row->isWaiting && walk_.waiting) {
            if (const WaitingSong* const song = walk_.waiting->Find(row->id)) return song->number;
        }
        return row->number.Before().value_or(0);
    }

    std::optional<std::int64_t> TagNumber(ListedFile& file) {
        return AskedNumberIn(TagOf(file).number);
    }

    /// The number in the album for one on the file's disc, which has its own range of numbers.
    static std::optional<std::int64_t> OfAlbum(const ListedFile& file,
                                               std::optional<std::int64_t> onDisc) {
        if (!onDisc) return std::nullopt;
        return *onDisc + file.Numbers.before;
    }

    /// Whether all files have rows with numbers of their own. What tags say is not known without a
    /// look into the files then, and a run over what has not changed opens none.
    bool AreNumbered(const FileList& files) {
        NumbersTaken numbers = numbers_;
        return std::ranges::all_of(files, [&](const ListedFile& file) {
            TrackRow* const row = rows_.emplace_back(library_.FindTrack(file.Name));
            const std::int32_t number = row == nullptr ? 0 : row->number.Before().value_or(0);
            const std::int64_t onDisc = number - file.Numbers.before;
            if (onDisc <= 0 || onDisc > file.Numbers.count || number > numbers.Count() ||
                numbers.IsTaken(number))
                return false;
            numbers.Take(number);
            return true;
        });
    }

    /// The number that a file's tag asks for, or else its name; where all keep theirs, its row.
    std::optional<std::int64_t> FindWish(ListedFile& file, const TrackRow* row) {
        if (keepsNumbers_ && row != nullptr) return row->number.Before();
        std::optional<std::int64_t> number;
        steps_.Concerning(file.Name);
        steps_.Try(Step::AddRow, [&] { number = TagNumber(file); });
        return number && *number > 0 ? number : LeadingNumber(LastName(file.Name));
    }

    void GiveNumber(const ListedFile& file, std::optional<std::int64_t> number) {
        TrackRow* const row = library_.FindTrack(TrackId{file.ID});
        if (!number) {
            LogError(run_, LogSource, "Unable to find a track number for " + lastPlaced_);
        } else if (row == nullptr) {
            LogError(run_, LogSource,
                     "Database record missing during track number update for ID " +
                         std::to_string(file.ID));
        } else {
            lastPlaced_ = row->soundFile;
            row->number.Set(static_cast<std::int32_t>(*number));
            Settle(*row);
        }
    }

    /// Stored paths may have something before the drive.
    TrackRow* FindRow(const std::string& path, TrackRow* known) {
        RefuseQuote(path);
        return known != nullptr ? known : library_.FindTrack(path);
    }

    /// Nothing where the file cannot be read, which is logged then. A row without its length and
    /// number would stay so for good; without one, the next run adds it.
    TrackRow* AddRow(ListedFile& file) {
        constexpr std::int64_t NoLength = -1;
        const std::string& path = file.Name;
        const TrackTag& tag = TagOf(file);
        if (file.IsUnreadable) return nullptr;
        const std::optional<std::int64_t> number = StoredNumberIn(tag.number);
        const std::optional<std::int64_t> length = StoredNumberIn(tag.seconds);
        TrackRow& row = library_.AddTrack(FieldsOf(
            run_.clock.Now(), NewTrack{.cdjid = album_.cdjid,
                                       .minutes = length ? *length / 60 : NoLength,
                                       .seconds = length ? *length % 60 : NoLength,
                                       .number = number.value_or(NoNumber),
                                       .title = GetTrackName(path, run_.settings.FlatStructure),
                                       .artist = ArtistOf(file),
                                       .soundFile = path,
                                       .album = album_.title}));
        ++run_.counts.tracksAdded;
        return &row;
    }

    /// A length that nobody knew may be known by now: version 1 has no place for it.
    void FindLength(const TrackRow& row, ListedFile& file, std::vector<FieldValue>& changes) {
        if (!run_.modern.readsAllTags || LengthOf(row)) return;
        const auto length = StoredNumberIn(TagOf(file).seconds);
        if (!length || *length <= 0) return;
        changes.push_back({"Minutes", *length / 60});
        changes.push_back({"Seconds", *length % 60});
    }

    void ChangeRow(TrackRow& row, ListedFile& file) {
        std::vector<FieldValue> changes;
        if (row.cdjid != album_.cdjid) changes.push_back({"CDJID", album_.cdjid});
        const std::string title = GetTrackName(file.Name, run_.settings.FlatStructure);
        if (row.title != title) changes.push_back({"Title", title});
        const std::string artist = ArtistOf(file);
        // A row whose file cannot be read keeps its artist.
        if (row.artist != artist && !file.IsUnreadable) changes.push_back({"Artist", artist});
        FindLength(row, file, changes);
        if (changes.empty()) return;
        library_.Change(row, changes);
        changed_.insert(row.id);
    }

    void CheckNumber(TrackRow& row, ListedFile& file, bool isNew) {
        const bool wishes = run_.modern.numbersFromTags;
        const std::int64_t asked = wishes ? FindWish(file, &row).value_or(0) : row.number.Value();
        const std::int64_t number = keepsNumbers_ ? asked : asked + file.Numbers.before;
        const bool isOfDisc = keepsNumbers_ || (asked > 0 && asked <= file.Numbers.count);
        if (isOfDisc && number > 0 && number <= numbers_.Count() && !numbers_.IsTaken(number)) {
            numbers_.Take(number);
            if (wishes || number != asked) row.number.Set(static_cast<std::int32_t>(number));
            isRenumbered_ |= isNew;
            if (!isNew) Settle(row);
            return;
        }
        file.ID = static_cast<std::int64_t>(row.id);
        if (row.number.Value() > 0) row.number.Set(static_cast<std::int32_t>(NoNumber));
    }

    /// Counts a row of earlier runs, whose number is final now.
    void Settle(const TrackRow& row) {
        isRenumbered_ |= row.number.Before() != row.number.Truth();
        if (row.isNew) return;
        const bool same = row.number.Before() == row.number.Truth();
        const bool isRenamed = changed_.contains(row.id) || walk_.followed.contains(row.id);
        ++(same && !isRenamed ? run_.counts.tracksUnchanged : run_.counts.tracksChanged);
        if (!same && !isRenamed) ++walk_.renumbered;
    }

    Walk& walk_;
    Run& run_;
    Library& library_;
    const Album& album_;
    Steps steps_;
    NumbersTaken numbers_;
    std::vector<WishedNumber> wishes_;  ///< where tags and names decide, in their order
    std::vector<TrackRow*> rows_;       ///< of the files, in their order, where all are numbered
    TrackArtists artists_;
    bool keepsNumbers_ = false, isRenumbered_ = false;
    std::string lastPlaced_;  ///< sound file of the row that was worked on last
    std::unordered_set<TrackId> changed_;
};

}  // namespace

void ProcessTracks(Walk& walk, const Album& album, FileList& files) {
    AlbumTracks tracks(walk, album);
    tracks.Prepare(files);
    tracks.PlaceAll(files);
    tracks.HandOutNumbers(files);
    tracks.LogMissingNumbers();
    tracks.TellOddNumbers();
}

std::string GetTrackName(std::string_view givenPath, bool flatStructure) {
    // A file that waits for its new name is still the song that it was.
    const std::optional<std::string> before = NameBeforeRenaming(givenPath);
    const std::string_view path = before ? std::string_view(*before) : givenPath;
    constexpr std::string_view Dash = " - ", Ending = ".mp3";
    const std::size_t separator = flatStructure ? path.rfind('_') : path.find(Dash);
    if (separator != std::string_view::npos)
        return Replace(path.substr(separator + (flatStructure ? 1 : Dash.size())), Ending, "");
    const std::size_t backslash = path.rfind('\\');
    if (backslash == std::string_view::npos) return std::string(path);
    return Replace(path.substr(backslash + 1), Ending, "");
}

}  // namespace quillon
