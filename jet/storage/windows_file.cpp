#include <algorithm>
#include <array>

#include "jet/error.h"
#include "jet/storage/windows_call.h"

namespace jet::storage {

namespace {

constexpr DWORD ShareWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

bool MeansNotThere(DWORD error) {
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

std::string Utf8(std::wstring_view text) {
    const auto length = static_cast<int>(text.size());
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

/// What people read is the same on every system, as far as the reasons are.
std::string Reason(DWORD error) {
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
            return "No such file or directory";
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT:
            return "Permission denied";
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return "No space left on device";
        case ERROR_FILE_EXISTS:
        case ERROR_ALREADY_EXISTS:
            return "File exists";
        default:
            break;
    }
    std::array<wchar_t, 512> text{};
    const DWORD size =
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error,
                       0, text.data(), static_cast<DWORD>(text.size()), nullptr);
    std::string reason = Utf8({text.data(), size});
    while (!reason.empty() &&
           std::string_view("\r\n .").find(reason.back()) != std::string_view::npos)
        reason.pop_back();
    return reason.empty() ? "error " + std::to_string(error) : reason;
}

std::string_view KindOf(HANDLE file, DWORD attributes) {
    const DWORD type = GetFileType(file);
    if (type == FILE_TYPE_PIPE) return "a FIFO";
    if (type == FILE_TYPE_CHAR) return "a device";
    if (attributes & FILE_ATTRIBUTE_REPARSE_POINT) return "a symbolic link";
    return attributes & FILE_ATTRIBUTE_DIRECTORY ? "a folder" : "";
}

/// The system's times count tenths of microseconds since 1601.
std::int64_t NanosecondsSince1970(std::int64_t time) {
    constexpr std::int64_t Start = 116444736000000000;
    return (time - Start) * 100;
}

std::int64_t Together(DWORD high, DWORD low) {
    return static_cast<std::int64_t>((std::uint64_t{high} << 32) | low);
}

std::optional<FileFacts> Look(const std::filesystem::path& path, DWORD flags) {
    const Descriptor file(reinterpret_cast<std::intptr_t>(
        CreateFileW(SystemPath(path).c_str(), FILE_READ_ATTRIBUTES, ShareWithAll, nullptr,
                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr)));
    if (file.IsOpen()) return FactsOf(file, path);
    if (MeansNotThere(GetLastError())) return std::nullopt;
    ThrowLastError("look up", path);
}

OVERLAPPED At(std::uint64_t offset) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

DWORD Portion(std::size_t bytes) {
    return static_cast<DWORD>(std::min(bytes, std::size_t{1} << 30));
}

DWORD DispositionOf(Opening opening) {
    switch (opening) {
        case Opening::Read:
        case Opening::ReadWrite:
            return OPEN_EXISTING;
        case Opening::New:
            return CREATE_NEW;
        case Opening::ReadWriteOrNew:
            return OPEN_ALWAYS;
    }
    return OPEN_EXISTING;
}

}  // namespace

std::wstring SystemPath(const std::filesystem::path& path) {
    const DWORD size = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    std::wstring full(size, L'\0');
    full.resize(GetFullPathNameW(path.c_str(), size, full.data(), nullptr));
    if (full.empty()) return path.native();
    if (full.starts_with(LR"(\\?\)") || full.starts_with(LR"(\\.\)")) return full;
    return full.starts_with(LR"(\\)") ? LR"(\\?\UNC)" + full.substr(1) : LR"(\\?\)" + full;
}

std::filesystem::path WithoutPrefix(std::wstring path) {
    if (path.starts_with(LR"(\\?\UNC\)")) return LR"(\\)" + path.substr(8);
    return path.starts_with(LR"(\\?\)") ? path.substr(4) : path;
}

Descriptor::~Descriptor() {
    if (IsOpen()) CloseHandle(HandleOf(*this));
}

void ThrowSystemError(std::string_view verb, const std::filesystem::path& path, int errorNumber) {
    const auto error = static_cast<DWORD>(errorNumber);
    if (error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION)
        throw Error(ErrorKind::InUse, path.string() + " is in use by another program.");
    auto kind = ErrorKind::Io;
    if (MeansNotThere(error)) kind = ErrorKind::NotFound;
    if (error == ERROR_ACCESS_DENIED || error == ERROR_WRITE_PROTECT) kind = ErrorKind::ReadOnly;
    throw Error(kind,
                "Cannot " + std::string(verb) + " " + path.string() + ": " + Reason(error) + ".");
}

void ThrowLastError(std::string_view verb, const std::filesystem::path& path) {
    ThrowSystemError(verb, path, static_cast<int>(GetLastError()));
}

FileFacts FactsOf(const Descriptor& file, const std::filesystem::path& path) {
    BY_HANDLE_FILE_INFORMATION facts{};
    FILE_BASIC_INFO times{};
    const HANDLE handle = HandleOf(file);
    if (GetFileType(handle) != FILE_TYPE_DISK) return {.otherKind = KindOf(handle, 0)};
    if (!GetFileInformationByHandle(handle, &facts) ||
        !GetFileInformationByHandleEx(handle, FileBasicInfo, &times, sizeof times)) {
        ThrowLastError("look up", path);
    }
    return {
        .device = facts.dwVolumeSerialNumber,
        .number = static_cast<std::uint64_t>(Together(facts.nFileIndexHigh, facts.nFileIndexLow)),
        .names = facts.nNumberOfLinks,
        .size = static_cast<std::uint64_t>(Together(facts.nFileSizeHigh, facts.nFileSizeLow)),
        .written = NanosecondsSince1970(times.LastWriteTime.QuadPart),
        .changed = NanosecondsSince1970(times.ChangeTime.QuadPart),
        .otherKind = KindOf(handle, facts.dwFileAttributes)};
}

std::optional<FileFacts> FactsOfName(const std::filesystem::path& path) {
    return Look(path, FILE_FLAG_OPEN_REPARSE_POINT);
}

std::optional<FileFacts> FactsOfTarget(const std::filesystem::path& path) {
    return Look(path, 0);
}

Descriptor OpenName(const std::filesystem::path& path, Opening opening, std::string_view verb) {
    const DWORD access = opening == Opening::Read ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
    // What its users share by locks must keep its name while one of them has it.
    const DWORD share =
        opening == Opening::ReadWriteOrNew ? FILE_SHARE_READ | FILE_SHARE_WRITE : ShareWithAll;
    Descriptor file(reinterpret_cast<std::intptr_t>(
        CreateFileW(SystemPath(path).c_str(), access, share, nullptr, DispositionOf(opening),
                    FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr)));
    if (!file.IsOpen()) ThrowLastError(verb, path);
    return file;
}

std::size_t ReadFrom(const Descriptor& file, std::uint64_t offset, std::span<std::uint8_t> bytes,
                     const std::filesystem::path& path) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const auto rest = bytes.subspan(done);
        OVERLAPPED place = At(offset + done);
        DWORD count = 0;
        if (!ReadFile(HandleOf(file), rest.data(), Portion(rest.size()), &count, &place) &&
            GetLastError() != ERROR_HANDLE_EOF) {
            ThrowLastError("read", path);
        }
        if (count == 0) break;
        done += count;
    }
    return done;
}

void WriteTo(const Descriptor& file, std::uint64_t offset, std::span<const std::uint8_t> bytes,
             const std::filesystem::path& path) {
    while (!bytes.empty()) {
        OVERLAPPED place = At(offset);
        DWORD count = 0;
        if (!WriteFile(HandleOf(file), bytes.data(), Portion(bytes.size()), &count, &place))
            ThrowLastError("write", path);
        bytes = bytes.subspan(count);
        offset += count;
    }
}

void Empty(const Descriptor& file, const std::filesystem::path& path) {
    FILE_END_OF_FILE_INFO end{};
    if (!SetFileInformationByHandle(HandleOf(file), FileEndOfFileInfo, &end, sizeof end))
        ThrowLastError("write", path);
}

void CloseAndRemove(Descriptor file, const std::filesystem::path& path) {
    if (!file.IsOpen()) return;
    // Refused while somebody else has it open, who then has it with its name.
    {
        const Descriptor closed(std::move(file));
    }
    DeleteFileW(SystemPath(path).c_str());
}

void Exchange(const std::filesystem::path& file, const std::filesystem::path& copy,
              const std::filesystem::path& kept) {
    // Takes over who may read and write the file, and the old one may still be open.
    if (!ReplaceFileW(SystemPath(file).c_str(), SystemPath(copy).c_str(), SystemPath(kept).c_str(),
                      REPLACEFILE_WRITE_THROUGH, nullptr, nullptr)) {
        const DWORD error = GetLastError();
        throw Error(ErrorKind::Io, file.string() + " cannot be replaced: " + Reason(error));
    }
}

std::string MachineName() {
    std::array<wchar_t, 256> name{};
    DWORD size = static_cast<DWORD>(name.size());
    if (!GetComputerNameExW(ComputerNameNetBIOS, name.data(), &size)) return "localhost";
    return Utf8({name.data(), size});
}

std::tm LocalTime(std::time_t moment) {
    std::tm local{};
    localtime_s(&local, &moment);
    return local;
}

LockResult TakeLock(const Descriptor& file, ByteRange range, const std::filesystem::path& path) {
    OVERLAPPED place = At(static_cast<std::uint64_t>(range.start));
    if (LockFileEx(HandleOf(file), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0,
                   static_cast<DWORD>(range.length), 0, &place)) {
        return LockResult::Taken;
    }
    switch (GetLastError()) {
        case ERROR_LOCK_VIOLATION:
        case ERROR_IO_PENDING:
            return LockResult::Held;
        case ERROR_INVALID_FUNCTION:
        case ERROR_NOT_SUPPORTED:
            return LockResult::Unsupported;
        default:
            ThrowLastError("lock", path);
    }
}

LockResult ProbeLock(const Descriptor& file, ByteRange range, const std::filesystem::path& path) {
    const LockResult result = TakeLock(file, range, path);
    OVERLAPPED place = At(static_cast<std::uint64_t>(range.start));
    if (result == LockResult::Taken)
        UnlockFileEx(HandleOf(file), 0, static_cast<DWORD>(range.length), 0, &place);
    return result;
}

}  // namespace jet::storage
