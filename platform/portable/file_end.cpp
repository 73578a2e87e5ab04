#include "platform/portable/file_end.h"

#include <algorithm>

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

bool IsAsSeen(const FileHandle& file, const FileFacts& facts, const FileEnd& seen) {
    return facts.size == seen.size && seen.bytes.size() <= seen.size &&
           LastBytes(file, seen.size, seen.bytes.size()) == seen.bytes;
}

/// Gives the file back the end and the size that it had. That takes no room on the disk.
void PutBack(const FileHandle& file, const FileEnd& seen, std::uint64_t position, const Bytes& old,
             const FileFacts& facts) try {
    file.WriteAt(position, old);
    if (file.Facts().size > seen.size && file.SetSize(seen.size) != 0) return;
    file.TrySetModified(facts.modified);
} catch (const Failure&) {
    // What it is now cannot even be looked at: the caller reports what failed before.
    return;
}

void RequirePiece(const FileHandle& file, const FileFacts& facts, const FilePiece& seen) {
    const std::uint64_t end = seen.position + seen.bytes.size();
    if (end > seen.size) throw Failure(FailureNumber::InvalidProcedureCall, file.ShownPath());
    Bytes present(seen.bytes.size());
    const bool isAsSeen = facts.size == seen.size &&
                          file.ReadAt(seen.position, present) == present.size() &&
                          present == seen.bytes;
    if (isAsSeen) return;
    throw Failure(FailureNumber::PathFileAccess, file.ShownPath() + " (it has changed meanwhile)");
}

}  // namespace

void ReplaceInPlace(const FileHandle& file, const FilePiece& seen,
                    std::span<const std::uint8_t> bytes) {
    const FileFacts facts = file.Facts();
    RequirePiece(file, facts, seen);
    // As at the end of a file: who may not keep its times shall not change it.
    if (const int error = file.TrySetModified(facts.modified); error != 0)
        throw SystemFailure(error, file.ShownPath());
    int error = file.WriteAt(seen.position, bytes);
    if (error == 0) error = file.TrySetModified(facts.modified);
    if (error == 0) return;
    file.WriteAt(seen.position, seen.bytes);
    file.TrySetModified(facts.modified);
    throw SystemFailure(error, file.ShownPath());
}

void ReplaceByCopy(FileHandle file, const std::string& local, const FilePiece& seen,
                   std::span<const std::uint8_t> bytes) {
    const FileFacts facts = file.Facts();
    RequirePiece(file, facts, seen);
    SafeFile copy(local, file.ShownPath(), SafeFile::Existing::Replace, facts.rights);
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
    copy.SetModified(facts.modified);
    // Not every system lets go of a name while the file is open.
    file.Close();
    copy.Commit();
}

void WriteFileEnd(const FileHandle& file, const FileEnd& seen, std::uint64_t position,
                  std::span<const std::uint8_t> bytes) {
    const FileFacts facts = file.Facts();
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
    // Only the file's owner may set its times. Others get a failure before a byte is written:
    // a file that seems new would change its place in the album.
    if (const int error = file.TrySetModified(facts.modified); error != 0) {
        throw SystemFailure(error, path);
    }
    int error = file.WriteAt(position, bytes);
    if (error == 0 && isCut) error = file.SetSize(size);
    if (error == 0) error = file.TrySetModified(facts.modified);
    // Bytes over others need no room, so the system may write them when it likes: until then a
    // power cut leaves the old ones. Whether there is room for a longer file is certain only
    // afterwards.
    if (error == 0 && size > seen.size) error = file.Flush();
    if (error == 0) return;
    PutBack(file, seen, position, old, facts);
    throw SystemFailure(error, path);
}

}  // namespace quillon
