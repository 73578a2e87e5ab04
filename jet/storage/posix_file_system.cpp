#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "jet/storage/file_system.h"
#include "jet/storage/posix.h"

namespace jet::storage {

namespace {

class PosixFile final : public File {
  public:
    PosixFile(Descriptor descriptor, std::filesystem::path path)
        : descriptor_(std::move(descriptor)), path_(std::move(path)) {}

    std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> bytes) override {
        std::size_t done = 0;
        while (done < bytes.size()) {
            const auto rest = bytes.subspan(done);
            const auto count = Uninterrupted([&] {
                return pread(descriptor_.Number(), rest.data(), rest.size(),
                             static_cast<off_t>(offset + done));
            });
            if (count < 0) Fail("read");
            if (count == 0) break;
            done += static_cast<std::size_t>(count);
        }
        return done;
    }

    void WriteAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) override {
        while (!bytes.empty()) {
            const auto count = Uninterrupted([&] {
                return pwrite(descriptor_.Number(), bytes.data(), bytes.size(),
                              static_cast<off_t>(offset));
            });
            if (count < 0) Fail("write");
            bytes = bytes.subspan(static_cast<std::size_t>(count));
            offset += static_cast<std::uint64_t>(count);
        }
    }

    void Reserve(std::uint64_t size) override {
        if (size <= Size()) return;
        const int result = Uninterrupted([&] {
            return fallocate(descriptor_.Number(), FALLOC_FL_KEEP_SIZE, 0,
                             static_cast<off_t>(size));
        });
        if (result != 0 && (errno == ENOSPC || errno == EDQUOT || errno == EFBIG)) Fail("extend");
    }

    void Sync() override {
        if (Uninterrupted([&] { return fsync(descriptor_.Number()); }) != 0) Fail("write");
    }

    std::uint64_t Size() override {
        struct stat status{};
        if (fstat(descriptor_.Number(), &status) != 0) Fail("read");
        return static_cast<std::uint64_t>(status.st_size);
    }

  private:
    [[noreturn]] void Fail(std::string_view verb) const { ThrowSystemError(verb, path_, errno); }

    Descriptor descriptor_;
    std::filesystem::path path_;
};

int Flags(FileAccess access) {
    switch (access) {
        case FileAccess::Read:
            return O_RDONLY | O_CLOEXEC;
        case FileAccess::ReadWrite:
            return O_RDWR | O_CLOEXEC;
        case FileAccess::Replace:
            return O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC;
    }
    return O_RDONLY | O_CLOEXEC;
}

class PosixFileSystem final : public FileSystem {
  public:
    std::unique_ptr<File> Open(const std::filesystem::path& path, FileAccess access) override {
        constexpr mode_t EveryoneByUmask = 0666;
        Descriptor descriptor(
            Uninterrupted([&] { return open(path.c_str(), Flags(access), EveryoneByUmask); }));
        if (!descriptor.IsOpen()) {
            ThrowSystemError(access == FileAccess::Replace ? "create" : "open", path, errno);
        }
        return std::make_unique<PosixFile>(std::move(descriptor), path);
    }

    bool Exists(const std::filesystem::path& path) override {
        std::error_code error;
        const bool exists = std::filesystem::exists(path, error);
        if (error) ThrowSystemError("look up", path, error.value());
        return exists;
    }

    void Rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
        std::error_code error;
        std::filesystem::rename(from, to, error);
        if (error) ThrowSystemError("rename", from, error.value());
    }

    void Remove(const std::filesystem::path& path) override {
        std::error_code error;
        std::filesystem::remove(path, error);
        if (error) ThrowSystemError("remove", path, error.value());
    }

    void SyncFolderOf(const std::filesystem::path& path) override {
        const auto parent = path.parent_path();
        const auto folder = parent.empty() ? std::filesystem::path(".") : parent;
        const Descriptor descriptor(Uninterrupted(
            [&] { return open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
        if (!descriptor.IsOpen()) ThrowSystemError("open", folder, errno);
        // Some network file systems know no flush of a folder and say so with EINVAL.
        if (Uninterrupted([&] { return fsync(descriptor.Number()); }) != 0 && errno != EINVAL) {
            ThrowSystemError("write", folder, errno);
        }
    }
};

}  // namespace

std::shared_ptr<FileSystem> RealFileSystem() {
    return std::make_shared<PosixFileSystem>();
}

}  // namespace jet::storage
