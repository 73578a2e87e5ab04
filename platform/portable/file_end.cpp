#include "platform/portable/file_end.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/failure.h"
#include "platform/portable/safe_file.h"
#include "platform/portable/system_failure.h"

namespace quillon {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// The last `count` bytes of a file of this size.
Bytes LastBytes(const FileHandle& file, std::uint64_t size, std::uint64_t count) {
    Bytes bytes(static_cast<std::size_t>(count));
    bytes.resize(file.ReadAt(size - count, bytes));
    return bytes;
}

bool IsAsSeen(const FileHandle& file, const struct stat& facts, const FileEnd& seen) {
    return static_cast<std::uint64_t>(facts.st_size) == seen.size &&
           seen.bytes.size() <= seen.size &&
           LastBytes(file, seen.size, seen.bytes.size()) == seen.bytes;
}

/// Writes all bytes with as few calls as the system takes them in: one, unless it fails midway. The
/// system's error number, 0 when they are written.
int WriteAt(int descriptor, std::uint64_t position, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t count =
            pwrite(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(position));
        if (count < 0 && errno != EINTR) return errno;
        if (count == 0) return EIO;
        if (count < 0) continue;
        position += static_cast<std::uint64_t>(count);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return 0;
}

int SetModified(int descriptor, const struct stat& facts) {
    const std::array<std::timespec, 2> times{std::timespec{0, UTIME_OMIT}, facts.st_mtim};
    return futimens(descriptor, times.data()) == 0 ? 0 : errno;
}

/// Gives the file back the end and the size that it had. That takes no room on the disk.
void PutBack(int descriptor, const FileEnd& seen, std::uint64_t position, const Bytes& old,
             const struct stat& facts) {
    WriteAt(descriptor, position, old);
    struct stat now{};
    const bool hasGrown =
        fstat(descriptor, &now) == 0 && static_cast<std::uint64_t>(now.st_size) > seen.size;
    if (hasGrown && ftruncate(descriptor, static_cast<off_t>(seen.size)) != 0) return;
    SetModified(descriptor, facts);
}

void RequirePiece(const FileHandle& file, const struct stat& facts, const FilePiece& seen) {
    const std::uint64_t end = seen.position + seen.bytes.size();
    if (end > seen.size) throw Failure(FailureNumber::InvalidProcedureCall, file.ShownPath());
    Bytes present(seen.bytes.size());
    const bool isAsSeen = static_cast<std::uint64_t>(facts.st_size) == seen.size &&
                          file.ReadAt(seen.position, present) == present.size() &&
                          present == seen.bytes;
    if (isAsSeen) return;
    throw Failure(FailureNumber::PathFileAccess, file.ShownPath() + " (it has changed meanwhile)");
}

}  // namespace

void ReplaceInPlace(const FileHandle& file, const FilePiece& seen,
                    std::span<const std::uint8_t> bytes) {
    const struct stat facts = file.Facts();
    RequirePiece(file, facts, seen);
    const int descriptor = file.Descriptor();
    // As at the end of a file: who may not keep its times shall not change it.
    if (const int error = SetModified(descriptor, facts); error != 0)
        throw SystemFailure(error, file.ShownPath());
    int error = WriteAt(descriptor, seen.position, bytes);
    if (error == 0) error = SetModified(descriptor, facts);
    if (error == 0) return;
    WriteAt(descriptor, seen.position, seen.bytes);
    SetModified(descriptor, facts);
    throw SystemFailure(error, file.ShownPath());
}

void ReplaceByCopy(const FileHandle& file, const std::string& local, const FilePiece& seen,
                   std::span<const std::uint8_t> bytes) {
    const struct stat facts = file.Facts();
    RequirePiece(file, facts, seen);
    SafeFile copy(local, file.ShownPath(), SafeFile::Existing::Replace, facts.st_mode & 0777U);
    const auto write = [&copy](std::span<const std::uint8_t> piece) {
        copy.Write({reinterpret_cast<const char*>(piece.data()), piece.size()});
    };
    constexpr std::uint64_t AtATime = 65536;
    Bytes before;
    for (std::uint64_t at = 0; at < seen.position; at += before.size()) {
        before.resize(static_cast<std::size_t>(std::min(AtATime, seen.position - at)));
        if (file.ReadAt(at, before) != before.size())
            throw Failure(FailureNumber::InputPastEnd, file.ShownPath());
        write(before);
    }
    write(bytes);
    copy.WriteFrom(file, seen.position + seen.bytes.size());
    copy.SetModified(facts.st_mtim);
    copy.Commit();
}

void WriteFileEnd(const FileHandle& file, const FileEnd& seen, std::uint64_t position,
                  std::span<const std::uint8_t> bytes) {
    const struct stat facts = file.Facts();
    const std::string& path = file.ShownPath();
    if (!IsAsSeen(file, facts, seen)) {
        throw Failure(FailureNumber::PathFileAccess, path + " (it has changed meanwhile)");
    }
    const std::uint64_t size = position + bytes.size();
    const std::uint64_t unseen = seen.size - seen.bytes.size();
    const bool isCut = size < seen.size;
    if (position > seen.size || (isCut && !(bytes.empty() && position >= unseen))) {
        throw Failure(FailureNumber::InvalidProcedureCall, path);
    }
    const Bytes old = LastBytes(file, seen.size, seen.size - position);
    const int descriptor = file.Descriptor();
    // Only the file's owner may set its times. Others get a failure before a byte is written:
    // a file that seems new would change its place in the album.
    if (const int error = SetModified(descriptor, facts); error != 0) {
        throw SystemFailure(error, path);
    }
    int error = WriteAt(descriptor, position, bytes);
    if (error == 0 && isCut && ftruncate(descriptor, static_cast<off_t>(size)) != 0) error = errno;
    if (error == 0) error = SetModified(descriptor, facts);
    // Bytes over others need no room, so the system may write them when it likes: until then a
    // power cut leaves the old ones. Whether there is room for a longer file is certain only
    // afterwards.
    if (error == 0 && size > seen.size && fsync(descriptor) != 0) error = errno;
    if (error == 0) return;
    PutBack(descriptor, seen, position, old, facts);
    throw SystemFailure(error, path);
}

}  // namespace quillon
