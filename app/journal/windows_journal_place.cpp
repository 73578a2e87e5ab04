#include <cerrno>
#include <fcntl.h>
#include <io.h>

#include "app/journal/journal_place.h"
#include "platform/failure.h"
#include "platform/portable/local_file.h"
#include "platform/portable/system_failure.h"
#include "platform/windows/wide_text.h"
#include "platform/windows/windows_facts.h"

namespace quillon {
namespace {

FileHandle OpenJournals(const std::filesystem::path& folder) {
    const std::string path = folder.generic_string();
    if (const int error = MakeFolder(path); error != 0 && error != EEXIST)
        throw SystemFailure(error, path);
    const std::optional<FileFacts> facts = FactsOfLink(path);
    if (facts && !facts->IsFolder()) {
        throw Failure(FailureNumber::PermissionDenied,
                      path + " (it must be a folder; a link is not followed)");
    }
    const int descriptor = OpenLocal(path, FileUse::Read);
    if (descriptor < 0) throw SystemFailure(errno, path);
    return {descriptor, path};
}

}  // namespace

JournalPlace::JournalPlace(const std::filesystem::path& folder) : folder_(OpenJournals(folder)) {}

bool JournalPlace::IsTaken(const std::string& name) const {
    return FactsOfLink(folder_.ShownPath() + '/' + name).has_value();
}

std::optional<FileHandle> JournalPlace::Make(const std::string& name) const {
    const std::string path = folder_.ShownPath() + '/' + name;
    // Without the right to remove it, which would keep out whoever does not share that: a journal
    // is read while its run works.
    HANDLE const file = CreateFileW(WidePath(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    const int descriptor = DescriptorOf(file, _O_RDWR | _O_BINARY | _O_NOINHERIT);
    if (descriptor >= 0)
        return FileHandle(descriptor, std::filesystem::path(path).make_preferred().string());
    if (errno != EEXIST) throw SystemFailure(errno, path);
    return std::nullopt;
}

void JournalPlace::Remove(const std::string& name) const noexcept {
    static_cast<void>(RemoveFile(folder_.ShownPath() + '/' + name));
}

void JournalPlace::Sync() const noexcept {
    SyncFolder(folder_.ShownPath() + '/');
}

int Reserve(const FileHandle& file, std::uint64_t /*from*/, std::uint64_t to) {
    FILE_ALLOCATION_INFO wanted{};
    wanted.AllocationSize.QuadPart = static_cast<LONGLONG>(to);
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(file.Descriptor()));
    if (SetFileInformationByHandle(handle, FileAllocationInfo, &wanted, sizeof wanted)) return 0;
    const DWORD error = GetLastError();
    return error == ERROR_DISK_FULL || error == ERROR_HANDLE_DISK_FULL ? ENOSPC : EOPNOTSUPP;
}

}  // namespace quillon
