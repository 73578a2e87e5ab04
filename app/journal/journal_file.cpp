#include "app/journal/journal_file.h"

#include <cerrno>
#include <charconv>
#include <set>
#include <sys/stat.h>
#include <system_error>
#include <utility>
#include <vector>

#include "app/journal/journal_reader.h"
#include "platform/failure.h"
#include "platform/portable/system_failure.h"
#include "platform/stamp.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

/// Rows come by the ten thousand, and remarks of the log with them; all else is written at once.
constexpr std::size_t LargestBuffer = std::size_t{1} << 16U;

/// Enough for the lines with which a run closes what it has planned.
constexpr std::uint64_t LeastRoom = std::uint64_t{1} << 16U;
constexpr std::uint64_t RoomAtOnce = std::uint64_t{1} << 20U;

/// Whether the record plans something, which must not happen where it cannot be recorded.
bool IsPlan(const ChangeRecord& record) {
    return std::holds_alternative<RowChange>(record) ||
           std::holds_alternative<DateReplaced>(record) ||
           std::holds_alternative<FileChange>(record) || std::holds_alternative<RunStarted>(record);
}

/// Whether the record may wait for others: a row until the next save, a remark as the log has it.
bool MayWait(const ChangeRecord& record) {
    const auto* const line = std::get_if<LogLine>(&record);
    return line != nullptr ? !line->isError : std::holds_alternative<RowChange>(record);
}

/// A stamp, told from others of the same second.
std::string Numbered(const std::string& stamp, int number) {
    return number == 1 ? stamp : stamp + '-' + std::to_string(number);
}

struct NextStamp {
    std::string time;
    int number = 1;
};

/// The first stamp that a run may have: later than those of all others, even where the clock has
/// been put back, since what came before what is known by them.
NextStamp StampAfterAll(const fs::path& folder, const Clock& clock) {
    NextStamp next{.time = StampText(clock.Now())};
    const std::vector<fs::path> journals = JournalsIn(folder);
    for (auto journal = journals.rbegin(); journal != journals.rend(); ++journal) {
        const std::string stamp = journal->stem().string();
        if (!IsStamp(stamp)) continue;
        if (stamp.compare(0, next.time.size(), next.time) < 0) break;
        int number = 1;
        const char* const end = stamp.data() + stamp.size();
        if (stamp.size() > next.time.size())
            std::from_chars(stamp.data() + next.time.size() + 1, end, number);
        return {.time = stamp.substr(0, next.time.size()), .number = number + 1};
    }
    return next;
}

/// The folders in a folder, without links.
std::vector<fs::path> FoldersIn(const fs::path& folder) {
    std::vector<fs::path> folders;
    std::error_code error, ignored;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        if (!entry->is_symlink(ignored) && entry->is_directory(ignored))
            folders.push_back(entry->path());
    return folders;
}

/// What is kept in a place of its own; "" where nothing is.
std::string NameOfContent(const fs::path& place) {
    std::error_code error;
    const fs::directory_iterator content(place, error);
    return error || content == fs::directory_iterator() ? "" : content->path().filename().string();
}

}  // namespace

JournalFile::JournalFile(const fs::path& folder, const Clock& clock, Listener listener)
    : place_(folder), file_(MakeFile(folder, clock)), listener_(std::move(listener)) {}

FileHandle JournalFile::MakeFile(const fs::path& folder, const Clock& clock) {
    const NextStamp next = StampAfterAll(folder, clock);
    for (int number = next.number;; ++number) {
        stamp_ = Numbered(next.time, number);
        // What a run keeps lies in a folder of this name.
        if (place_.IsTaken(stamp_)) continue;
        if (auto file = place_.Make(stamp_ + ".jsonl")) return std::move(*file);
    }
}

std::string FreeStamp(const fs::path& folder, const Clock& clock) {
    const NextStamp next = StampAfterAll(folder, clock);
    const auto isTaken = [&folder](const std::string& name) {
        std::error_code unknown;
        return fs::exists(fs::symlink_status(folder / name, unknown));
    };
    std::string stamp = Numbered(next.time, next.number);
    for (int number = next.number + 1; isTaken(stamp) || isTaken(stamp + ".jsonl"); ++number)
        stamp = Numbered(next.time, number);
    return stamp;
}

JournalFile::~JournalFile() {
    try {
        Write();
    } catch (const Failure&) {
        trouble_ = "the last lines are missing";
    }
    if (size_ == 0) {
        // It has refused even its first line.
        file_.Close();
        place_.Remove(stamp_ + ".jsonl");
        return;
    }
    // Gives back the room that was set aside.
    if (room_ > size_ && file_.SetSize(size_) != 0) room_ = 0;
}

void JournalFile::Note(const ChangeRecord& record) {
    // Without its end a journal says that one has to look.
    if (lacksFailure_ && std::holds_alternative<RunEnded>(record)) return;
    const bool isPlan = IsPlan(record);
    if (isPlan) RequireNoTrouble();
    Append(record);
    if (MayWait(record) && buffer_.size() < LargestBuffer) return;
    if (isPlan) MakeRoom();
    const bool wasLacking = lacksFailure_;
    lacksFailure_ = wasLacking || std::holds_alternative<FileChangeFailed>(record);
    Write();
    lacksFailure_ = wasLacking;
}

void JournalFile::Append(const ChangeRecord& record) {
    Count(record);
    // What has happened can be seen, and comes to the disk with the next plan.
    if (IsPlan(record)) isDurable_ = false;
    if (const auto* const end = std::get_if<RunEnded>(&record)) {
        RunEnded counted = *end;
        counted.changes = Changes();
        counted.writesLeft = writesLeft_;
        buffer_.append(lines_.Of(counted)) += '\n';
    } else {
        buffer_.append(lines_.Of(record)) += '\n';
    }
    if (listener_) listener_(record);
}

void JournalFile::Count(const ChangeRecord& record) {
    changes_.Add(record);
    if (std::holds_alternative<WriteLeft>(record)) ++writesLeft_;
}

void JournalFile::Remark(const ChangeRecord& record) noexcept {
    try {
        Note(record);
    } catch (const std::exception&) {
        // The next change is refused and says so.
        return;
    }
}

void JournalFile::MakeDurable() {
    RequireNoTrouble();
    MakeRoom();
    Write();
    if (isDurable_) return;
    if (const int error = file_.Flush(); error != 0)
        Refuse(SystemFailure(error, file_.ShownPath()).what());
    // Some file systems cannot do that for a folder.
    if (!std::exchange(isFolderDurable_, true)) place_.Sync();
    isDurable_ = true;
}

void JournalFile::RequireNoTrouble() const {
    if (trouble_.empty()) return;
    throw Failure::Described(FailureNumber::DiskFull,
                             trouble_ + " (the journal; what it lacks must not be done)");
}

/// What it has not taken is not going to happen.
void JournalFile::Refuse(const std::string& reason) {
    trouble_ = reason;
    buffer_.clear();
    RequireNoTrouble();
}

/// Sets room aside on the disk, also for the lines behind the ones that wait.
void JournalFile::MakeRoom() {
    const std::uint64_t needed = size_ + buffer_.size() + LeastRoom;
    if (needed <= room_) return;
    int error = Reserve(file_, size_, needed + RoomAtOnce);
    const bool isGenerous = error == 0;
    if (!isGenerous) error = Reserve(file_, size_, needed);
    if (error == 0) {
        room_ = isGenerous ? needed + RoomAtOnce : needed;
    } else if (error == ENOSPC || error == EFBIG) {
        Refuse(SystemFailure(error, file_.ShownPath()).what());
    } else {
        // The file system sets nothing aside.
        room_ = UINT64_MAX;
    }
}

/// A line that is cut short is taken out again: others may follow it.
void JournalFile::Write() {
    if (buffer_.empty()) return;
    try {
        file_.Write(buffer_);
    } catch (const Failure& failure) {
        static_cast<void>(file_.SetSize(size_));
        room_ = 0;
        Refuse(failure.what());
    }
    size_ += buffer_.size();
    buffer_.clear();
}

fs::path ChangesFolder(const fs::path& host) {
    return host / "Changes";
}

void RemoveOlderContent(const fs::path& folder, std::string_view stamp) noexcept try {
    std::set<std::string> newer;
    for (const fs::path& place : FoldersIn(folder / stamp))
        newer.insert(NameOfContent(place));
    std::error_code ignored;
    for (const fs::path& run : FoldersIn(folder)) {
        const std::string name = run.filename().string();
        if (name == stamp || !IsStamp(name)) continue;
        for (const fs::path& place : FoldersIn(run))
            if (newer.contains(NameOfContent(place))) fs::remove_all(place, ignored);
        // Only where nothing is left in it.
        fs::remove(run, ignored);
    }
} catch (const std::exception&) {
    return;
}

}  // namespace quillon
