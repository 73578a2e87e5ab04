#include "jet/storage/lock_file.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "jet/error.h"
#include "jet/lock.h"

namespace jet::storage {

namespace {

constexpr std::size_t NameSize = 32, EntrySize = 2 * NameSize, MostEntries = 255;
constexpr std::string_view UserName = "Quillon";
/// Where the database engine's users hold their locks.
constexpr ByteRange UserLocks{0x10000001, 255};

using LockEntry = std::array<char, EntrySize>;

struct Entry {
    std::string machine, user;
    bool isOurs = false;
};

std::string NameIn(std::span<const char> field) {
    const auto end = std::find(field.begin(), field.end(), '\0');
    std::string name(field.begin(), end);
    while (!name.empty() && name.back() == ' ')
        name.pop_back();
    return name;
}

std::string ThisMachine() {
    return MachineName().substr(0, NameSize - 1);
}

LockEntry OurEntry() {
    LockEntry entry{};
    const std::string machine = ThisMachine();
    std::copy(machine.begin(), machine.end(), entry.begin());
    std::copy(UserName.begin(), UserName.end(), entry.begin() + NameSize);
    return entry;
}

/// Computers' names have no letter case; Windows writes its own in capitals.
bool IsSameName(std::string_view left, std::string_view right) {
    const auto lower = [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    };
    return std::ranges::equal(left, right, {}, lower, lower);
}

std::vector<Entry> ReadEntries(const Descriptor& file, const std::filesystem::path& path) {
    const LockEntry ours = OurEntry();
    std::vector<Entry> entries;
    for (std::size_t i = 0; i < MostEntries; ++i) {
        std::array<std::uint8_t, EntrySize> read{};
        const std::size_t count = ReadFrom(file, i * EntrySize, read, path);
        if (count == 0) break;
        LockEntry bytes{};
        std::copy(read.begin(), read.end(), bytes.begin());
        Entry entry{NameIn(std::span(bytes).first(NameSize)),
                    NameIn(std::span(bytes).subspan(NameSize))};
        const bool isWhole = count == EntrySize;
        // Half an entry is somebody's, too: ours when we were killed in writing it.
        entry.isOurs = isWhole ? IsSameName(entry.machine, ThisMachine()) && entry.user == UserName
                               : IsSameName({bytes.data(), count}, {ours.data(), count});
        if (!isWhole || !entry.machine.empty() || !entry.user.empty())
            entries.push_back(std::move(entry));
    }
    return entries;
}

std::string Machines(const std::vector<Entry>& entries) {
    std::vector<std::string> names;
    for (const Entry& entry : entries) {
        if (entry.machine.empty()) continue;
        if (std::find(names.begin(), names.end(), entry.machine) == names.end()) {
            names.push_back(entry.machine);
        }
    }
    std::string list;
    for (const std::string& name : names)
        list += (list.empty() ? "" : ", ") + name;
    return list.empty() ? "another program" : list;
}

/// Why a database with these users may not be taken; "" when it may.
std::string Objection(const std::filesystem::path& database, LockResult lock,
                      const std::vector<Entry>& entries) {
    if (lock == LockResult::Held)
        return database.string() + " is in use by " + Machines(entries) + ".";
    // Without locks it cannot be known whether an entry is alive.
    const bool mayTakeOver = lock == LockResult::Taken
                                 ? std::all_of(entries.begin(), entries.end(),
                                               [](const Entry& entry) { return entry.isOurs; })
                                 : entries.empty();
    if (mayTakeOver) return "";
    return database.string() + " seems to be in use by " + Machines(entries) +
           ". If no program has it open, delete " + LockFile::PathFor(database).string() + ".";
}

/// Whether the open file is still the one of this name: a user that left may have removed it.
bool IsAt(const Descriptor& file, const std::filesystem::path& path) {
    const auto named = FactsOfName(path);
    return named && named->IsSameFile(FactsOf(file, path));
}

void WriteEntry(const Descriptor& file, const std::filesystem::path& path) {
    const LockEntry entry = OurEntry();
    std::array<std::uint8_t, EntrySize> bytes{};
    std::copy(entry.begin(), entry.end(), bytes.begin());
    Empty(file, path);
    WriteTo(file, 0, bytes, path);
}

}  // namespace

std::filesystem::path LockFile::PathFor(const std::filesystem::path& database) {
    auto path = database;
    return path.replace_extension(".ldb");
}

std::string InUseByAnotherName(const std::filesystem::path& database) {
    return database.string() +
           " is in use by another program, which has opened it by another of its names.";
}

LockFile::LockFile(const std::filesystem::path& database)
    : path_(PathFor(database)), descriptor_(-1) {
    while (!TryTake(database)) {
    }
}

/// False when the file vanished meanwhile.
bool LockFile::TryTake(const std::filesystem::path& database) {
    Descriptor file = OpenPlainFile(path_, Opening::ReadWriteOrNew, "create");
    const LockResult lock = TakeLock(file, UserLocks, path_);
    const std::string objection = Objection(database, lock, ReadEntries(file, path_));
    const bool isThere = lock == LockResult::Held || IsAt(file, path_);
    if (!isThere) return false;
    if (!objection.empty()) throw Error(ErrorKind::InUse, objection);
    try {
        WriteEntry(file, path_);
    } catch (const Error&) {
        CloseAndRemove(std::move(file), path_);
        throw;
    }
    descriptor_ = std::move(file);
    return true;
}

LockFile::~LockFile() {
    CloseAndRemove(std::move(descriptor_), path_);
}

}  // namespace jet::storage

namespace jet {

namespace {

/// Who holds the database file itself has it open by another name.
LockState LookAtFile(const std::filesystem::path& database) {
    try {
        const auto file = storage::OpenPlainFile(database, storage::Opening::Read, "open");
        if (storage::ProbeLock(file, storage::DatabaseLock, database) != storage::LockResult::Held)
            return {};
    } catch (const Error& error) {
        // Some systems let a program keep a file all to itself.
        if (error.Kind() != ErrorKind::InUse) throw;
        return {LockState::Kind::InUse, error.what(), {}};
    }
    return {LockState::Kind::InUse, storage::InUseByAnotherName(database), {}};
}

}  // namespace

LockState LookAtLock(const std::filesystem::path& database) {
    const auto real = storage::RealFileSystem()->Resolve(database);
    const auto path = storage::LockFile::PathFor(real);
    LockState state = LookAtFile(real);
    state.file = path;
    if (!storage::FactsOfName(path)) return state;
    const auto file = storage::OpenPlainFile(path, storage::Opening::Read, "open");
    const auto entries = storage::ReadEntries(file, path);
    const auto lock = storage::ProbeLock(file, storage::UserLocks, path);
    std::string objection = storage::Objection(real, lock, entries);
    if (!objection.empty()) return {LockState::Kind::InUse, std::move(objection), path};
    if (state.kind == LockState::Kind::Free && !entries.empty())
        state.kind = LockState::Kind::LeftBehind;
    return state;
}

}  // namespace jet
