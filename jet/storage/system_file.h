#pragma once

#include <cerrno>
#include <filesystem>
#include <optional>
#include <string_view>
#include <sys/types.h>
#include <utility>

#include "jet/storage/file_system.h"

namespace jet::storage {

/// A file descriptor that is closed when it goes.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(other.number_) { other.number_ = -1; }
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor();

    int Number() const { return number_; }
    bool IsOpen() const { return number_ >= 0; }

  private:
    int number_;
};

/// Repeats a system call that a signal interrupted.
template <typename Call>
auto Uninterrupted(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

/// Throws the jet::Error for a failed system call: "Cannot <verb> <path>: <reason>.".
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

/// Opens a plain file with these flags and waits for nothing. Error(Io) for a symbolic link,
/// folder, FIFO, device or socket, which is not touched; `verb` is for the other errors.
Descriptor OpenPlainFile(const std::filesystem::path& path, int flags, std::string_view verb);

/// A range of bytes to lock; it may lie behind a file's end.
struct ByteRange {
    off_t start, length;
};

/// Locks the range for as long as the open file lives.
LockResult TakeLock(const Descriptor& file, ByteRange range, const std::filesystem::path& path);
/// What TakeLock would give.
LockResult ProbeLock(const Descriptor& file, ByteRange range, const std::filesystem::path& path);

/// Where a database file itself is locked by whoever writes it: behind the end of any database, so
/// that the lock does not get in the way.
constexpr ByteRange DatabaseLock{off_t{1} << 32, 1};

}  // namespace jet::storage
