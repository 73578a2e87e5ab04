#pragma once

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "jet/storage/file_system.h"

namespace jet::storage {

/// An open file of the system's, closed when it goes: a descriptor, or a handle on Windows.
class Descriptor {
  public:
    explicit Descriptor(std::intptr_t number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor();

    std::intptr_t Number() const { return number_; }
    bool IsOpen() const { return number_ >= 0; }

  private:
    std::intptr_t number_;
};

/// Throws the jet::Error for a failed system call: "Cannot <verb> <path>: <reason>.". The number is
/// errno's, on Windows GetLastError()'s.
[[noreturn]] void ThrowSystemError(std::string_view verb, const std::filesystem::path& path,
                                   int errorNumber);

/// An open file's facts.
FileFacts FactsOf(const Descriptor& file, const std::filesystem::path& path);

/// The facts of what has this name, a symbolic link itself included; none if nothing has it.
std::optional<FileFacts> FactsOfName(const std::filesystem::path& path);
/// The facts of the file that the name leads to; none if there is no such file.
std::optional<FileFacts> FactsOfTarget(const std::filesystem::path& path);

/// Error(Io) unless these are a plain file's facts.
void RequirePlain(const FileFacts& facts, const std::filesystem::path& path);

enum class Opening {
    Read,
    ReadWrite,
    New,  ///< for both; the name must be free
    ReadWriteOrNew,
};

/// Opens what has the name, except a symbolic link, and waits for nothing. `verb` is for the
/// errors.
Descriptor OpenName(const std::filesystem::path& path, Opening opening, std::string_view verb);

/// OpenName for a plain file. Error(Io) for a symbolic link, folder, FIFO, device or socket, which
/// is not touched.
Descriptor OpenPlainFile(const std::filesystem::path& path, Opening opening, std::string_view verb);

/// As File's.
std::size_t ReadFrom(const Descriptor& file, std::uint64_t offset, std::span<std::uint8_t> bytes,
                     const std::filesystem::path& path);
void WriteTo(const Descriptor& file, std::uint64_t offset, std::span<const std::uint8_t> bytes,
             const std::filesystem::path& path);

/// Takes all content out of the file.
void Empty(const Descriptor& file, const std::filesystem::path& path);

/// Gives up a file that its users share by locks, and takes its name away, so that nobody who opens
/// it meanwhile is left with a file that has none. Fails silently.
void CloseAndRemove(Descriptor file, const std::filesystem::path& path);

/// Puts `copy` in the place of `file`, which the same people may read and write then, and keeps the
/// old one as `kept`, a free name. There is a file of the name at any moment. Error(Io).
void Exchange(const std::filesystem::path& file, const std::filesystem::path& copy,
              const std::filesystem::path& kept);

/// The computer's name in its network; "localhost" where it has none.
std::string MachineName();

/// A moment as clocks here show it.
std::tm LocalTime(std::time_t moment);

/// A range of bytes to lock; it may lie behind a file's end.
struct ByteRange {
    std::int64_t start, length;
};

/// Locks the range for as long as the open file lives.
LockResult TakeLock(const Descriptor& file, ByteRange range, const std::filesystem::path& path);
/// What TakeLock would give.
LockResult ProbeLock(const Descriptor& file, ByteRange range, const std::filesystem::path& path);

/// Where a database file itself is locked by whoever writes it: behind the end of any database, so
/// that the lock does not get in the way.
constexpr ByteRange DatabaseLock{std::int64_t{1} << 32, 1};

/// What all systems do alike for an open file.
class SystemFile : public File {
  public:
    SystemFile(Descriptor descriptor, std::filesystem::path path)
        : descriptor_(std::move(descriptor)), path_(std::move(path)) {}

    std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> bytes) override;
    void WriteAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) override;
    FileFacts Facts() override;
    LockResult Lock() override;

  protected:
    Descriptor descriptor_;
    std::filesystem::path path_;
};

/// What all systems do alike for files by their names.
class SystemFileSystem : public FileSystem {
  public:
    std::unique_ptr<File> Open(const std::filesystem::path& path, FileAccess access) override;
    bool Exists(const std::filesystem::path& path) override;
    std::optional<FileFacts> Look(const std::filesystem::path& path) override;
    void Remove(const std::filesystem::path& path) override;

  private:
    virtual std::unique_ptr<File> FileOf(Descriptor opened, const std::filesystem::path& path) = 0;
    /// The name of a plain file that was there a moment ago.
    virtual void RemoveName(const std::filesystem::path& path) = 0;
};

}  // namespace jet::storage
