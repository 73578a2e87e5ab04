#include "platform/portable/file_handle.h"

#include <algorithm>
#include <cerrno>
#include <io.h>
#include <memory>

#include "platform/portable/system_failure.h"
#include "platform/windows/windows_facts.h"

namespace quillon {
namespace {

constexpr std::size_t MostAtOnce = std::size_t{1} << 30U;

HANDLE HandleOf(int descriptor) {
    return reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
}

OVERLAPPED PlaceOf(std::uint64_t position) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(position & 0xFFFFFFFFU);
    place.OffsetHigh = static_cast<DWORD>(position >> 32U);
    return place;
}

}  // namespace

void FileHandle::Close() noexcept {
    if (descriptor_ >= 0) _close(descriptor_);
    descriptor_ = -1;
}

std::size_t FileHandle::ReadAt(std::uint64_t position, std::span<std::uint8_t> buffer) const {
    std::size_t done = 0;
    while (done < buffer.size()) {
        OVERLAPPED place = PlaceOf(position + done);
        DWORD count = 0;
        const auto wanted = static_cast<DWORD>(std::min(buffer.size() - done, MostAtOnce));
        if (ReadFile(HandleOf(descriptor_), buffer.data() + done, wanted, &count, &place) == 0) {
            if (GetLastError() == ERROR_HANDLE_EOF) break;
            throw SystemFailure(LastErrno(), shownPath_);
        }
        if (count == 0) break;
        done += count;
    }
    return done;
}

void FileHandle::Write(std::string_view bytes) const {
    while (!bytes.empty()) {
        DWORD count = 0;
        const auto wanted = static_cast<DWORD>(std::min(bytes.size(), MostAtOnce));
        if (WriteFile(HandleOf(descriptor_), bytes.data(), wanted, &count, nullptr) == 0)
            throw SystemFailure(LastErrno(), shownPath_);
        if (count == 0) throw SystemFailure(ENOSPC, shownPath_);
        bytes.remove_prefix(count);
    }
}

void FileHandle::WriteFrom(const FileHandle& source, std::uint64_t from,
                           const std::function<void(std::uint64_t bytes)>& watch) const {
    constexpr std::size_t BufferSize = std::size_t{1} << 20U;
    const auto buffer = std::make_unique_for_overwrite<std::uint8_t[]>(BufferSize);
    while (const std::size_t length = source.ReadAt(from, std::span(buffer.get(), BufferSize))) {
        Write({reinterpret_cast<const char*>(buffer.get()), length});
        from += length;
        if (watch) watch(length);
    }
}

void FileHandle::SetModified(const FileTime& modified) const {
    if (const int error = TrySetModified(modified); error != 0)
        throw SystemFailure(error, shownPath_);
}

FileFacts FileHandle::Facts() const {
    const auto facts = FactsOfHandle(HandleOf(descriptor_));
    if (!facts) throw SystemFailure(errno, shownPath_);
    return *facts;
}

void FileHandle::TakeRightsOf(const FileFacts& other) const {
    SetAttributes(HandleOf(descriptor_), other.rights);
}

int FileHandle::WriteAt(std::uint64_t position, std::span<const std::uint8_t> bytes) const {
    while (!bytes.empty()) {
        OVERLAPPED place = PlaceOf(position);
        DWORD count = 0;
        const auto wanted = static_cast<DWORD>(std::min(bytes.size(), MostAtOnce));
        if (WriteFile(HandleOf(descriptor_), bytes.data(), wanted, &count, &place) == 0)
            return LastErrno();
        if (count == 0) return EIO;
        position += count;
        bytes = bytes.subspan(count);
    }
    return 0;
}

int FileHandle::SetSize(std::uint64_t size) const {
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
    return SetFileInformationByHandle(HandleOf(descriptor_), FileEndOfFileInfo, &end, sizeof end) !=
                   0
               ? 0
               : LastErrno();
}

int FileHandle::TrySetModified(const FileTime& modified) const {
    return SetModifiedTime(HandleOf(descriptor_), modified);
}

int FileHandle::Flush() const {
    return FlushFileBuffers(HandleOf(descriptor_)) != 0 ? 0 : LastErrno();
}

int FileHandle::FlushAll() const {
    return Flush();
}

}  // namespace quillon
