#include "platform/portable/folder_stream.h"

#include <cerrno>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/windows/wide_text.h"
#include "platform/windows/windows_facts.h"

namespace quillon {
namespace {

constexpr std::size_t ListingBuffer = 65536;

ListedKind KindOfEntry(const FILE_ID_BOTH_DIR_INFO& entry) {
    // Of a reparse point the system gives the tag in the place of the length of other attributes.
    if (IsLink(entry.FileAttributes, entry.EaSize)) return ListedKind::Link;
    return (entry.FileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? ListedKind::Folder
                                                                  : ListedKind::File;
}

}  // namespace

/// Reads a folder with few calls, and with all that is to be known of each entry: to ask for it
/// one by one takes a call to a server each on a network drive.
struct FolderStream::State {
    State(std::string path, HANDLE opened) : folder(std::move(path)), handle(opened) {}

    /// The next entry; null at the end or, with an error code, where it fails.
    const FILE_ID_BOTH_DIR_INFO* NextEntry() {
        if (next == nullptr) {
            const auto information =
                isFirst ? FileIdBothDirectoryRestartInfo : FileIdBothDirectoryInfo;
            isFirst = false;
            if (GetFileInformationByHandleEx(handle.Get(), information, buffer.data(),
                                             static_cast<DWORD>(buffer.size() * 8)) == 0) {
                error = GetLastError() == ERROR_NO_MORE_FILES ? 0 : LastErrno();
                return nullptr;
            }
            next = reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(buffer.data());
        }
        const auto* const entry = next;
        next = entry->NextEntryOffset == 0
                   ? nullptr
                   : reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(
                         reinterpret_cast<const char*>(entry) + entry->NextEntryOffset);
        return entry;
    }

    FileFacts FactsFrom(const FILE_ID_BOTH_DIR_INFO& entry) const {
        return {.kind = (entry.FileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? LocalKind::Folder
                                                                               : LocalKind::File,
                .size = static_cast<std::uint64_t>(entry.EndOfFile.QuadPart),
                .modified = TimeOf(entry.LastWriteTime.QuadPart),
                .changed = TimeOf(entry.ChangeTime.QuadPart),
                .identity = {device, static_cast<std::uint64_t>(entry.FileId.QuadPart)},
                .rights = entry.FileAttributes & KeptAttributes};
    }

    std::string folder;
    SystemHandle handle;
    std::uint64_t device = 0;
    bool isFirst = true;
    int error = 0;
    std::vector<std::uint64_t> buffer = std::vector<std::uint64_t>(ListingBuffer / 8);  ///< aligned
    const FILE_ID_BOTH_DIR_INFO* next = nullptr;
    std::string name;
    std::vector<std::optional<FileFacts>> seen;  ///< by number; nothing of links
};

FolderStream::FolderStream() = default;
FolderStream::FolderStream(std::unique_ptr<State> state) : state_(std::move(state)) {}
FolderStream::FolderStream(FolderStream&&) noexcept = default;
FolderStream& FolderStream::operator=(FolderStream&&) noexcept = default;
FolderStream::~FolderStream() = default;

FolderStream OpenFolder(const std::string& folder) {
    const std::wstring wide = WidePath(folder);
    HANDLE const handle = CreateFileW(wide.c_str(), FILE_LIST_DIRECTORY | SYNCHRONIZE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        errno = LastErrnoAt(wide);
        return {};
    }
    auto state = std::make_unique<FolderStream::State>(folder, handle);
    const auto facts = FactsOfHandle(handle);
    if (facts && !facts->IsFolder()) {
        errno = ENOTDIR;
        return {};
    }
    if (facts) state->device = facts->identity.device;
    return FolderStream(std::move(state));
}

const char* FolderStream::Next(ListedKind& kind) {
    while (const FILE_ID_BOTH_DIR_INFO* const entry = state_->NextEntry()) {
        const std::wstring_view name(static_cast<const wchar_t*>(entry->FileName),
                                     entry->FileNameLength / sizeof(wchar_t));
        if (name == L"." || name == L"..") continue;
        state_->name = NarrowText(name);
        kind = KindOfEntry(*entry);
        state_->seen.push_back(kind == ListedKind::Link ? std::nullopt
                                                        : std::optional(state_->FactsFrom(*entry)));
        return state_->name.c_str();
    }
    errno = state_->error;
    // An open folder keeps others from renaming it, and what lies above it.
    if (state_->handle) CloseHandle(state_->handle.Release());
    return nullptr;
}

std::optional<FileFacts> FolderStream::FactsOf(const char* name, std::size_t number) const {
    if (number < state_->seen.size() && state_->seen[number]) return state_->seen[number];
    return quillon::FactsOf(state_->folder + '/' + name);
}

bool FolderStream::IsThere(const char* name) const {
    return FactsOfLink(state_->folder + '/' + name).has_value();
}

int FolderStream::Open(const char* /*name*/) const {
    errno = ENOENT;
    return -1;
}

}  // namespace quillon
