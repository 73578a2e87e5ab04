#include "platform/windows/windows_facts.h"

#include <cerrno>
#include <io.h>

namespace quillon {
namespace {

constexpr std::int64_t StepsOfASecond = 10'000'000;
constexpr std::int64_t SecondsBefore1970 = 11'644'473'600;

/// The part of a marked path that is its drive or share, with the backslash behind it; "" where it
/// has none.
std::wstring RootOf(const std::wstring& path) {
    constexpr std::wstring_view MarkedShare = LR"(\\?\UNC\)", MarkedDrive = LR"(\\?\)";
    std::size_t end = 0;
    if (path.starts_with(MarkedShare)) {
        end = path.find(L'\\', path.find(L'\\', MarkedShare.size()) + 1);
        if (end == std::wstring::npos) return path + L'\\';
    } else if (path.starts_with(MarkedDrive)) {
        end = path.find(L'\\', MarkedDrive.size());
    }
    return end == 0 || end == std::wstring::npos ? L"" : path.substr(0, end + 1);
}

/// Whether what is there of a path that leads nowhere, behind its root, ends with a file.
bool LeadsThroughFile(const std::wstring& path, const std::wstring& root) {
    for (std::size_t end = path.rfind(L'\\'); end != std::wstring::npos && end > root.size();
         end = path.rfind(L'\\', end - 1)) {
        const DWORD attributes = GetFileAttributesW(path.substr(0, end).c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES)
            return (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    }
    return false;
}

}  // namespace

int LastErrnoAt(const std::wstring& path) {
    const DWORD code = GetLastError();
    if (ErrnoOf(code) != ENOENT) return ErrnoOf(code);
    const std::wstring root = RootOf(path);
    const bool isKnown =
        root.empty() || GetFileAttributesW(root.c_str()) != INVALID_FILE_ATTRIBUTES;
    if (!isKnown) return ENODEV;
    return code == ERROR_PATH_NOT_FOUND && LeadsThroughFile(path, root) ? ENOTDIR : ENOENT;
}

FileTime TimeOf(std::int64_t steps) {
    if (steps == 0) return {};
    std::int64_t seconds = steps / StepsOfASecond;
    std::int64_t rest = steps % StepsOfASecond;
    if (rest < 0) {
        rest += StepsOfASecond;
        --seconds;
    }
    return {seconds - SecondsBefore1970, static_cast<std::int32_t>(rest * 100)};
}

std::int64_t StepsOf(const FileTime& time) {
    return (time.seconds + SecondsBefore1970) * StepsOfASecond + time.nanoseconds / 100;
}

bool IsLink(DWORD attributes, DWORD tag) {
    return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           (tag == IO_REPARSE_TAG_SYMLINK || tag == IO_REPARSE_TAG_MOUNT_POINT);
}

std::optional<FileFacts> FactsOfHandle(HANDLE handle) {
    const auto failed = [] {
        errno = LastErrno();
        return std::nullopt;
    };
    SetLastError(ERROR_SUCCESS);
    const DWORD type = GetFileType(handle);
    if (type == FILE_TYPE_UNKNOWN && GetLastError() != ERROR_SUCCESS) return failed();
    FileFacts facts;
    facts.kind = type == FILE_TYPE_PIPE ? LocalKind::Pipe : LocalKind::Device;
    if (type != FILE_TYPE_DISK) return facts;
    BY_HANDLE_FILE_INFORMATION known{};
    if (GetFileInformationByHandle(handle, &known) == 0) return failed();
    FILE_BASIC_INFO basic{};
    if (GetFileInformationByHandleEx(handle, FileBasicInfo, &basic, sizeof basic) == 0)
        return failed();
    FILE_ATTRIBUTE_TAG_INFO tag{};
    const bool isPoint = (known.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    if (isPoint) GetFileInformationByHandleEx(handle, FileAttributeTagInfo, &tag, sizeof tag);
    const bool isFolder = (known.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    facts.kind = IsLink(known.dwFileAttributes, tag.ReparseTag) ? LocalKind::Link
                 : isFolder                                     ? LocalKind::Folder
                                                                : LocalKind::File;
    facts.size = (std::uint64_t{known.nFileSizeHigh} << 32U) | known.nFileSizeLow;
    facts.modified = TimeOf(basic.LastWriteTime.QuadPart);
    facts.changed = TimeOf(basic.ChangeTime.QuadPart);
    facts.identity = {known.dwVolumeSerialNumber,
                      (std::uint64_t{known.nFileIndexHigh} << 32U) | known.nFileIndexLow};
    facts.rights = known.dwFileAttributes & KeptAttributes;
    return facts;
}

int DescriptorOf(HANDLE handle, int flags) {
    if (handle == INVALID_HANDLE_VALUE) {
        errno = LastErrno();
        return -1;
    }
    const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(handle), flags);
    if (descriptor >= 0) return descriptor;
    CloseHandle(handle);
    errno = EMFILE;
    return -1;
}

int SetAttributes(HANDLE handle, DWORD kept) {
    FILE_BASIC_INFO basic{};
    if (GetFileInformationByHandleEx(handle, FileBasicInfo, &basic, sizeof basic) == 0)
        return LastErrno();
    const DWORD wanted = (basic.FileAttributes & ~KeptAttributes) | (kept & KeptAttributes);
    // Zeros leave the times as they are; attributes of none at all have a value of their own.
    FILE_BASIC_INFO changed{};
    changed.FileAttributes = wanted == 0 ? FILE_ATTRIBUTE_NORMAL : wanted;
    return SetFileInformationByHandle(handle, FileBasicInfo, &changed, sizeof changed) != 0
               ? 0
               : LastErrno();
}

int SetModifiedTime(HANDLE handle, const FileTime& modified) {
    const std::int64_t steps = StepsOf(modified);
    const FILETIME time{static_cast<DWORD>(static_cast<std::uint64_t>(steps) & 0xFFFFFFFFU),
                        static_cast<DWORD>(static_cast<std::uint64_t>(steps) >> 32U)};
    return SetFileTime(handle, nullptr, nullptr, &time) != 0 ? 0 : LastErrno();
}

}  // namespace quillon
