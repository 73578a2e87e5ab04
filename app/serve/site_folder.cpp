#include "app/serve/site_folder.h"

#include <fcntl.h>
#include <system_error>

#include "platform/failure.h"

namespace quillon {
namespace {

constexpr const char* Root = "H:";

DriveTable TableFor(const std::filesystem::path& folder) {
    DriveTable table(folder);
    table.Map(Root, folder);
    return table;
}

std::string Joined(std::span<const std::string> names) {
    std::string path;
    for (const std::string& name : names)
        path += (path.empty() ? "" : "/") + name;
    return path;
}

/// Where the kernel shows an open file of this process.
std::string DescriptorPath(const FileHandle& file) {
    return "/proc/self/fd/" + std::to_string(file.Descriptor());
}

}  // namespace

std::string SiteFile::Read() const {
    std::string content(size, '\0');
    const std::size_t count =
        handle->ReadAt(0, {reinterpret_cast<std::uint8_t*>(content.data()), content.size()});
    content.resize(count);
    return content;
}

SiteFolder::SiteFolder(const std::filesystem::path& folder)
    : folder_(folder), resolver_(TableFor(folder)) {}

std::optional<SiteFile> SiteFolder::Open(std::span<const std::string> names) const try {
    if (names.empty()) return std::nullopt;
    std::string local;
    {
        const std::scoped_lock lock(mutex_);
        local = resolver_.Local(WindowsPath{Root, Joined(names)});
    }
    // What the path means is settled by this call, without a look into it. All questions are put to
    // what was found, so that nothing can be exchanged between question and reading.
    const FileHandle found(open(local.c_str(), O_PATH | O_CLOEXEC), local);
    if (found.Descriptor() < 0 || !found.Facts().IsFile()) return std::nullopt;
    const std::string realPath = std::filesystem::read_symlink(DescriptorPath(found)).string();
    if (!Holds(realPath)) return std::nullopt;

    auto file = std::make_shared<const FileHandle>(
        open(DescriptorPath(found).c_str(), O_RDONLY | O_CLOEXEC), local);
    if (file->Descriptor() < 0) return std::nullopt;
    const std::uint64_t size = file->Facts().size;
    return SiteFile{std::move(file), std::filesystem::path(local).filename().string(), size};
} catch (const Failure&) {
    return std::nullopt;
} catch (const std::filesystem::filesystem_error&) {
    return std::nullopt;
}

bool SiteFolder::Holds(const std::string& realPath) const {
    return realPath.starts_with(std::filesystem::canonical(folder_).string() + '/');
}

}  // namespace quillon
