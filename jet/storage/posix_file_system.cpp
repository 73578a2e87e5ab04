#include <fcntl.h>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "jet/storage/file_system.h"
#include "jet/storage/posix_call.h"
#include "jet/storage/system_file.h"

namespace jet::storage {

namespace {

/// The extended attribute that holds a file's note.
constexpr const char* NoteAttribute = "user.quillon.journal";
constexpr const char* RemarkAttribute = "user.quillon.whole";

class PosixFile final : public SystemFile {
  public:
    using SystemFile::SystemFile;

    void Reserve(std::uint64_t size) override {
        if (size <= Size()) return;
        const int result = Uninterrupted([&] {
            return fallocate(NumberOf(descriptor_), FALLOC_FL_KEEP_SIZE, 0,
                             static_cast<off_t>(size));
        });
        if (result != 0 && (errno == ENOSPC || errno == EDQUOT || errno == EFBIG)) Fail("extend");
    }

    void Sync() override {
        if (Uninterrupted([&] { return fsync(NumberOf(descriptor_)); }) != 0) Fail("write");
    }

    std::optional<std::string> Note() override {
        constexpr std::size_t LongestNote = 65536;  // of any extended attribute
        std::string text(LongestNote, '\0');
        const auto size = fgetxattr(NumberOf(descriptor_), NoteAttribute, text.data(), text.size());
        if (size < 0 && errno != ENODATA && errno != EOPNOTSUPP) Fail("read");
        if (size < 0) return std::nullopt;
        text.resize(static_cast<std::size_t>(size));
        return text;
    }

    bool SetNote(const std::string& text) override {
        const int result = text.empty() ? fremovexattr(NumberOf(descriptor_), NoteAttribute)
                                        : fsetxattr(NumberOf(descriptor_), NoteAttribute,
                                                    text.data(), text.size(), 0);
        if (result == 0 || errno == ENODATA) return true;
        if (errno != EOPNOTSUPP) Fail("write");
        return false;
    }

    bool KeepsNotes() override {
        const auto size = fgetxattr(NumberOf(descriptor_), NoteAttribute, nullptr, 0);
        if (size < 0 && errno != ENODATA && errno != EOPNOTSUPP) Fail("read");
        return size >= 0 || errno == ENODATA;
    }

    std::optional<std::string> Remark() override {
        constexpr std::size_t LongestRemark = 256;
        std::string text(LongestRemark, '\0');
        const auto size =
            fgetxattr(NumberOf(descriptor_), RemarkAttribute, text.data(), text.size());
        if (size < 0) return std::nullopt;
        text.resize(static_cast<std::size_t>(size));
        return text;
    }

    void SetRemark(const std::string& text) override {
        static_cast<void>(
            fsetxattr(NumberOf(descriptor_), RemarkAttribute, text.data(), text.size(), 0));
    }

  private:
    [[noreturn]] void Fail(std::string_view verb) const { ThrowSystemError(verb, path_, errno); }
};

class PosixFileSystem final : public SystemFileSystem {
  public:
    std::filesystem::path Resolve(const std::filesystem::path& path) override {
        struct stat status{};
        if (lstat(path.c_str(), &status) != 0) ThrowSystemError("open", path, errno);
        return S_ISLNK(status.st_mode) ? Canonical(path) : path;
    }

    std::filesystem::path FullPath(const std::filesystem::path& path) override {
        const auto parent = path.parent_path();
        return Canonical(parent.empty() ? "." : parent) / path.filename();
    }

    void Rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
        std::error_code error;
        std::filesystem::rename(from, to, error);
        if (error) ThrowSystemError("rename", from, error.value());
    }

    void SyncFolderOf(const std::filesystem::path& path) override {
        const auto parent = path.parent_path();
        const auto folder = parent.empty() ? std::filesystem::path(".") : parent;
        const Descriptor descriptor(Uninterrupted(
            [&] { return open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
        if (!descriptor.IsOpen()) ThrowSystemError("open", folder, errno);
        // Some network file systems know no flush of a folder and say so with EINVAL.
        if (Uninterrupted([&] { return fsync(NumberOf(descriptor)); }) != 0 && errno != EINVAL) {
            ThrowSystemError("write", folder, errno);
        }
    }

  private:
    std::unique_ptr<File> FileOf(Descriptor opened, const std::filesystem::path& path) override {
        return std::make_unique<PosixFile>(std::move(opened), path);
    }

    void RemoveName(const std::filesystem::path& path) override {
        if (unlink(path.c_str()) != 0 && errno != ENOENT) ThrowSystemError("remove", path, errno);
    }

    static std::filesystem::path Canonical(const std::filesystem::path& path) {
        std::error_code error;
        auto canonical = std::filesystem::canonical(path, error);
        if (error) ThrowSystemError("open", path, error.value());
        return canonical;
    }
};

}  // namespace

std::shared_ptr<FileSystem> RealFileSystem() {
    return std::make_shared<PosixFileSystem>();
}

}  // namespace jet::storage
