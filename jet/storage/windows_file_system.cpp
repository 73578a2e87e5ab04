#include <memory>
#include <utility>

#include "jet/storage/file_system.h"
#include "jet/storage/windows_call.h"

namespace jet::storage {

namespace {

class WindowsFile final : public SystemFile {
  public:
    using SystemFile::SystemFile;

    void Reserve(std::uint64_t size) override {
        if (size <= Size()) return;
        FILE_ALLOCATION_INFO wanted{};
        wanted.AllocationSize.QuadPart = static_cast<LONGLONG>(size);
        if (SetFileInformationByHandle(HandleOf(descriptor_), FileAllocationInfo, &wanted,
                                       sizeof wanted)) {
            return;
        }
        const DWORD error = GetLastError();
        if (error == ERROR_DISK_FULL || error == ERROR_HANDLE_DISK_FULL)
            ThrowLastError("extend", path_);
    }

    void Sync() override {
        if (!FlushFileBuffers(HandleOf(descriptor_))) ThrowLastError("write", path_);
    }

    // Named streams of files would keep them, but not on every volume, and not as one with a name
    // that the file gets meanwhile.
    std::optional<std::string> Note() override { return std::nullopt; }
    bool SetNote(const std::string& /*text*/) override { return false; }
    bool KeepsNotes() override { return false; }
};

/// What a path leads to, from the root on and free of links.
std::filesystem::path FinalPath(const std::filesystem::path& path) {
    const Descriptor file(reinterpret_cast<std::intptr_t>(CreateFileW(
        SystemPath(path).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr)));
    if (!file.IsOpen()) ThrowLastError("open", path);
    const DWORD size = GetFinalPathNameByHandleW(HandleOf(file), nullptr, 0, FILE_NAME_NORMALIZED);
    std::wstring name(size, L'\0');
    name.resize(GetFinalPathNameByHandleW(HandleOf(file), name.data(), size, FILE_NAME_NORMALIZED));
    if (name.empty()) ThrowLastError("open", path);
    return WithoutPrefix(std::move(name));
}

class WindowsFileSystem final : public SystemFileSystem {
  public:
    std::filesystem::path Resolve(const std::filesystem::path& path) override {
        const DWORD attributes = GetFileAttributesW(SystemPath(path).c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES) ThrowLastError("open", path);
        return attributes & FILE_ATTRIBUTE_REPARSE_POINT ? FinalPath(path) : path;
    }

    std::filesystem::path FullPath(const std::filesystem::path& path) override {
        const auto parent = path.parent_path();
        return FinalPath(parent.empty() ? "." : parent) / path.filename();
    }

    void Rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
        if (!MoveFileExW(SystemPath(from).c_str(), SystemPath(to).c_str(),
                         MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
            ThrowLastError("rename", from);
        }
    }

    void SyncFolderOf(const std::filesystem::path& path) override {
        const auto parent = path.parent_path();
        const Descriptor folder(reinterpret_cast<std::intptr_t>(
            CreateFileW(SystemPath(parent.empty() ? "." : parent).c_str(), GENERIC_WRITE,
                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                        OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr)));
        // Names are kept in order by the volume's own journal. A flush hastens them where the
        // system lets this user flush a folder.
        if (folder.IsOpen()) FlushFileBuffers(HandleOf(folder));
    }

  private:
    std::unique_ptr<File> FileOf(Descriptor opened, const std::filesystem::path& path) override {
        return std::make_unique<WindowsFile>(std::move(opened), path);
    }

    void RemoveName(const std::filesystem::path& path) override {
        if (!DeleteFileW(SystemPath(path).c_str()) && GetLastError() != ERROR_FILE_NOT_FOUND)
            ThrowLastError("remove", path);
    }
};

}  // namespace

std::shared_ptr<FileSystem> RealFileSystem() {
    return std::make_shared<WindowsFileSystem>();
}

}  // namespace jet::storage
