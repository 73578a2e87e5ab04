#include "jet/storage/lock_file.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fcntl.h>
#include <span>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "jet/error.h"
#include "jet/lock.h"

namespace jet::storage {

namespace {

constexpr std::size_t NameSize = 32, EntrySize = 2 * NameSize, MostEntries = 255;
constexpr std::string_view UserName = "Quillon";
/// Where the database engine's users hold their locks.
constexpr off_t LockStart = 0x10000001, LockLength = 255;

struct Entry {
    std::string machine, user;
};

std::string NameIn(std::span<const char> field) {
    const auto end = std::find(field.begin(), field.end(), '\0');
    std::string name(field.begin(), end);
    while (!name.empty() && name.back() == ' ')
        name.pop_back();
    return name;
}

std::vector<Entry> ReadEntries(int file) {
    std::vector<Entry> entries;
    std::array<char, EntrySize> bytes{};
    for (std::size_t i = 0; i < MostEntries; ++i) {
        const auto count = Uninterrupted([&] {
            return pread(file, bytes.data(), EntrySize, static_cast<off_t>(i * EntrySize));
        });
        if (count != static_cast<ssize_t>(EntrySize)) break;
        Entry entry{NameIn(std::span(bytes).first(NameSize)),
                    NameIn(std::span(bytes).subspan(NameSize))};
        if (!entry.machine.empty() || !entry.user.empty()) entries.push_back(std::move(entry));
    }
    return entries;
}

std::string ThisMachine() {
    std::array<char, 256> name{};
    if (gethostname(name.data(), name.size() - 1) != 0) return "localhost";
    return std::string(name.data()).substr(0, NameSize - 1);
}

bool IsOurs(const Entry& entry) {
    return entry.machine == ThisMachine() && entry.user == UserName;
}

std::string Machines(const std::vector<Entry>& entries) {
    std::vector<std::string> names;
    for (const Entry& entry : entries) {
        if (std::find(names.begin(), names.end(), entry.machine) == names.end()) {
            names.push_back(entry.machine);
        }
    }
    std::string list;
    for (const std::string& name : names)
        list += (list.empty() ? "" : ", ") + name;
    return list.empty() ? "another program" : list;
}

enum class LockResult { Taken, Held, Unsupported };

struct flock LockRange() {
    struct flock range{};
    range.l_type = F_WRLCK;
    range.l_whence = SEEK_SET;
    range.l_start = LockStart;
    range.l_len = LockLength;
    return range;
}

LockResult TakeLock(int file) {
    struct flock range = LockRange();
    if (fcntl(file, F_OFD_SETLK, &range) == 0) return LockResult::Taken;
    return errno == EAGAIN || errno == EACCES ? LockResult::Held : LockResult::Unsupported;
}

/// What TakeLock would give.
LockResult ProbeLock(int file) {
    struct flock range = LockRange();
    if (fcntl(file, F_OFD_GETLK, &range) != 0) return LockResult::Unsupported;
    return range.l_type == F_UNLCK ? LockResult::Taken : LockResult::Held;
}

/// Why a database with these users may not be taken; "" when it may.
std::string Objection(const std::filesystem::path& database, LockResult lock,
                      const std::vector<Entry>& entries) {
    if (lock == LockResult::Held)
        return database.string() + " is in use by " + Machines(entries) + ".";
    // Without locks nobody can tell whether an entry is alive.
    const bool mayTakeOver = lock == LockResult::Taken
                                 ? std::all_of(entries.begin(), entries.end(), IsOurs)
                                 : entries.empty();
    if (mayTakeOver) return "";
    return database.string() + " seems to be in use by " + Machines(entries) +
           ". If no program has it open, delete " + LockFile::PathFor(database).string() + ".";
}

/// Whether the open file is still the one of this name: a user that left may have removed it.
bool IsAt(int file, const std::filesystem::path& path) {
    struct stat open{}, named{};
    return fstat(file, &open) == 0 && stat(path.c_str(), &named) == 0 &&
           open.st_ino == named.st_ino && open.st_dev == named.st_dev;
}

void WriteEntry(int file, const std::filesystem::path& path) {
    std::array<char, EntrySize> entry{};
    const std::string machine = ThisMachine();
    std::copy(machine.begin(), machine.end(), entry.begin());
    std::copy(UserName.begin(), UserName.end(), entry.begin() + NameSize);
    if (ftruncate(file, 0) != 0 ||
        pwrite(file, entry.data(), entry.size(), 0) != static_cast<ssize_t>(entry.size())) {
        ThrowSystemError("write", path, errno);
    }
}

}  // namespace

std::filesystem::path LockFile::PathFor(const std::filesystem::path& database) {
    auto path = database;
    return path.replace_extension(".ldb");
}

LockFile::LockFile(const std::filesystem::path& database)
    : path_(PathFor(database)), descriptor_(-1) {
    while (!TryTake(database)) {
    }
}

/// False when the file vanished meanwhile.
bool LockFile::TryTake(const std::filesystem::path& database) {
    constexpr mode_t EveryoneByUmask = 0666;
    Descriptor file(Uninterrupted(
        [&] { return open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, EveryoneByUmask); }));
    if (!file.IsOpen()) ThrowSystemError("create", path_, errno);
    const LockResult lock = TakeLock(file.Number());
    const std::string objection = Objection(database, lock, ReadEntries(file.Number()));
    const bool isThere = lock == LockResult::Held || IsAt(file.Number(), path_);
    if (!isThere) return false;
    if (!objection.empty()) throw Error(ErrorKind::InUse, objection);
    descriptor_ = std::move(file);
    WriteEntry(descriptor_.Number(), path_);
    return true;
}

LockFile::~LockFile() {
    // The name goes first: whoever opens it afterwards makes a new file.
    if (descriptor_.IsOpen()) unlink(path_.c_str());
}

}  // namespace jet::storage

namespace jet {

LockState LookAtLock(const std::filesystem::path& database) {
    const auto path = storage::LockFile::PathFor(database);
    const storage::Descriptor file(
        storage::Uninterrupted([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC); }));
    if (!file.IsOpen()) {
        if (errno == ENOENT) return {};
        storage::ThrowSystemError("open", path, errno);
    }
    const auto entries = storage::ReadEntries(file.Number());
    std::string objection =
        storage::Objection(database, storage::ProbeLock(file.Number()), entries);
    if (!objection.empty()) return {LockState::Kind::InUse, std::move(objection)};
    return {entries.empty() ? LockState::Kind::Free : LockState::Kind::LeftBehind, ""};
}

}  // namespace jet
