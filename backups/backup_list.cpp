#include "backups/backup_list.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <set>
#include <tuple>
#include <utility>

#include "backups/backup_names.h"
#include "database/snapshot_file.h"
#include "database/waiting_music.h"
#include "platform/windows_path.h"
#include "playlists/playlist_snapshot.h"
#include "run/paths.h"

namespace quillon {
namespace {

// Seconds between the copies of one run: a big folder takes its time.
constexpr double LongestPause = 120.0 / (24 * 60 * 60);

constexpr std::string_view SameKind = "Same";
constexpr std::array<std::string_view, 1> NoteKinds{SameKind};
constexpr SnapshotFormat NoteFormat{"Quillon backup 1", NoteKinds};

constexpr std::array<std::pair<BackupPart, std::string_view>, 5> PartWords{
    {{BackupPart::Database, "Database"},
     {BackupPart::Snapshot, "Snapshot"},
     {BackupPart::Missing, "Missing"},
     {BackupPart::PlayListPath, "PlayListPath"},
     {BackupPart::PlayListPath2, "PlayListPath2"}}};

std::string_view WordOf(BackupPart part) {
    return std::ranges::find(PartWords, part, &decltype(PartWords)::value_type::first)->second;
}

std::string NoteOriginal(const Settings& settings) {
    return settings.Nirvis_CDJ_DB + ".backup";
}

BackupPart PartIn(const BackedUp& one) {
    if (one.path == &Settings::Nirvis_CDJ_DB) return BackupPart::Database;
    return one.path == &Settings::PlayListPath ? BackupPart::PlayListPath
                                               : BackupPart::PlayListPath2;
}

DateTime LatestChangeIn(Files& files, const BackupCopy& copy) {
    if (!copy.original.isFolder) return files.GetFile(copy.path).modified;
    DateTime latest;
    for (const FileEntry& file : files.FilesIn(copy.path))
        latest = std::max(latest, file.modified);
    return latest;
}

/// A copy is not older than what is in it, and was not made in the future.
void ChooseTime(Files& files, const StampTimes& times, DateTime now, BackupCopy& copy) {
    copy.made = copy.latest = times.first;
    if (times.first == times.last || times.last > now) return;
    copy.latest = times.last;
    if (LatestChangeIn(files, copy) > times.first) copy.made = times.last;
}

std::vector<BackupCopy> CopiesOf(Files& files, const BackupOriginal& original, DateTime now) {
    const std::string folder(ParentFolder(original.path)), beginning = folder + '\\';
    const FolderNames names = files.NamesIn(folder);
    std::vector<BackupCopy> copies;
    for (const std::string& name : original.isFolder ? names.folders : names.files) {
        BackupCopy copy{.original = original,
                        .path = beginning + name,
                        .mark = MarkOfCopy(name, LastName(original.path)),
                        .made = {},
                        .latest = {}};
        if (copy.mark.empty()) continue;
        const BackupMark mark = *ReadBackupMark(copy.mark);
        copy.number = mark.number;
        ChooseTime(files, mark.times, now, copy);
        copies.push_back(std::move(copy));
    }
    return copies;
}

/// All copies of these originals. What tells the time of one copy tells it of those that were made
/// with it.
std::vector<BackupCopy> AllCopies(Files& files, std::span<const BackupOriginal> originals,
                                  DateTime now) {
    std::vector<BackupCopy> copies;
    for (const BackupOriginal& original : originals)
        std::ranges::move(CopiesOf(files, original, now), std::back_inserter(copies));
    std::set<std::string> certain;
    for (const BackupCopy& copy : copies)
        if (copy.made == copy.latest) certain.insert(copy.mark);
    for (BackupCopy& copy : copies)
        if (certain.contains(copy.mark)) copy.made = copy.latest;
    return copies;
}

bool IsOlder(const BackupCopy& left, const BackupCopy& right) {
    const auto key = [](const BackupCopy& copy) {
        return std::tuple(copy.made, copy.number, copy.original.part);
    };
    return key(left) < key(right);
}

/// Whether a copy was made by the run that has made those of the moment: it copies one after the
/// other, each part once.
bool Continues(const BackupMoment& moment, const BackupCopy& copy) {
    const BackupCopy& last = moment.copies.back();
    if (copy.original.part <= last.original.part) return false;
    return copy.mark == last.mark || copy.made.days - last.made.days <= LongestPause;
}

std::vector<BackupMoment> Gathered(std::vector<BackupCopy> copies) {
    std::ranges::sort(copies, IsOlder);
    std::vector<BackupMoment> moments;
    for (BackupCopy& copy : copies) {
        if (moments.empty() || !Continues(moments.back(), copy)) {
            moments.push_back({.name = copy.mark,
                               .made = copy.made,
                               .latest = copy.latest,
                               .copies = {},
                               .shared = {},
                               .note = ""});
        }
        moments.back().copies.push_back(std::move(copy));
    }
    return moments;
}

void ReadNote(Files& files, const BackupOriginal& note, std::span<const BackupCopy> all,
              BackupMoment& moment) {
    moment.note = CopyName(note.path, moment.name);
    if (!files.FileExists(moment.note)) {
        moment.note.clear();
        return;
    }
    std::vector<BackupCopy> shared;
    bool isWhole = true;
    const bool isRead =
        ReadSnapshot(files, moment.note, NoteFormat, [&](std::string_view, SnapshotLine& line) {
            const std::string_view part = line.Word();
            const std::string name = line.Text();
            const auto found = std::ranges::find_if(all, [&](const BackupCopy& copy) {
                return WordOf(copy.original.part) == part && LastName(copy.path) == name;
            });
            if (found == all.end()) {
                isWhole = false;
            } else {
                shared.push_back(*found);
            }
        });
    moment.isWhole = isRead && isWhole;
    if (isRead) moment.shared = std::move(shared);
}

std::uint64_t SizeIn(Files& files, const std::string& folder) {
    std::uint64_t size = 0;
    for (const FileEntry& file : files.FilesIn(folder))
        size += file.size;
    for (const FolderEntry& inner : files.SubFolders(folder))
        size += SizeIn(files, inner.path);
    return size;
}

}  // namespace

std::vector<BackupOriginal> NotesBeside(const std::string& database) {
    return {{BackupPart::Snapshot, PlaylistSnapshotPath(database), false},
            {BackupPart::Missing, WaitingMusicPath(database), false}};
}

std::vector<BackupOriginal> BackupOriginals(const Settings& settings,
                                            std::span<const BackedUp> backedUp) {
    std::vector<BackupOriginal> originals;
    for (const BackedUp& one : backedUp) {
        std::string path = settings.*one.path;
        if (path.empty()) continue;
        if (one.isFolder) path.pop_back();
        originals.push_back({PartIn(one), path, one.isFolder});
        if (!one.isFolder) std::ranges::move(NotesBeside(path), std::back_inserter(originals));
    }
    return originals;
}

std::vector<BackupOriginal> BackupOriginals(const Settings& settings) {
    return BackupOriginals(settings, EverythingBackedUp);
}

const BackupCopy* BackupMoment::CopyOf(BackupPart part) const {
    for (const std::vector<BackupCopy>* const list : {&copies, &shared}) {
        const auto found = std::ranges::find_if(
            *list, [part](const BackupCopy& copy) { return copy.original.part == part; });
        if (found != list->end()) return &*found;
    }
    return nullptr;
}

std::vector<BackupCopy> NewestCopies(Files& files, std::span<const BackupOriginal> originals,
                                     DateTime now) {
    std::vector<BackupCopy> copies = AllCopies(files, originals, now);
    std::ranges::sort(copies, [](const BackupCopy& left, const BackupCopy& right) {
        if (left.original.part != right.original.part)
            return left.original.part < right.original.part;
        return IsOlder(right, left);
    });
    const auto others =
        std::ranges::unique(copies, {}, [](const BackupCopy& copy) { return copy.original.part; });
    copies.erase(others.begin(), others.end());
    return copies;
}

std::vector<BackupMoment> FindBackups(Files& files, const Settings& settings, DateTime now) {
    const std::vector<BackupCopy> all = AllCopies(files, BackupOriginals(settings), now);
    std::vector<BackupMoment> moments = Gathered(all);
    const BackupOriginal note{.path = NoteOriginal(settings)};
    for (BackupMoment& moment : moments)
        ReadNote(files, note, all, moment);
    std::ranges::reverse(moments);
    return moments;
}

std::string WriteBackupNote(Files& files, const Settings& settings, std::string_view mark,
                            std::span<const BackupCopy> shared) {
    const std::string path = CopyName(NoteOriginal(settings), mark);
    SnapshotWriter note(files, path, NoteFormat);
    for (const BackupCopy& copy : shared) {
        note.Line(SameKind).Text(WordOf(copy.original.part)).Text(LastName(copy.path));
    }
    note.Close();
    return path;
}

bool IsFreeMark(Files& files, const Settings& settings, std::string_view mark) {
    const auto isTaken = [&](std::string_view original) {
        const std::string name = CopyName(original, mark);
        return files.FileExists(name) || files.FolderExists(name);
    };
    const std::vector<BackupOriginal> originals = BackupOriginals(settings);
    return !isTaken(NoteOriginal(settings)) &&
           std::ranges::none_of(originals, isTaken, &BackupOriginal::path);
}

std::uint64_t SizeOfBackup(Files& files, const BackupCopy& copy) {
    return copy.original.isFolder ? SizeIn(files, copy.path) : files.GetFile(copy.path).size;
}

}  // namespace quillon
