#include "app/local_host.h"

#include <array>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "app/console.h"
#include "app/thumbnails.h"
#include "jukebox/database_needs.h"
#include "platform/basic_text.h"

namespace quillon {
namespace {

constexpr std::array<std::string_view, 2> NeededFiles{"Quillon.ini", HostSettingsFile};

/// The needed files that the folder does not have.
std::vector<std::string_view> MissingFiles(const std::filesystem::path& folder) {
    std::vector<std::string_view> missing(NeededFiles.begin(), NeededFiles.end());
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    while (!error && entry != std::filesystem::directory_iterator()) {
        const std::string name = entry->path().filename().string();
        std::erase_if(missing, [&](std::string_view one) { return EqualIgnoringCase(name, one); });
        entry.increment(error);
    }
    if (error) {
        throw CommandError(
            fmt::format("The host folder {} cannot be read: {}", folder.string(), error.message()));
    }
    return missing;
}

/// The folder itself, once it has been found to hold what a host folder holds.
std::filesystem::path CheckedFolder(const std::filesystem::path& folder) {
    const std::string hint =
        "; 'quillon init' makes a host folder, --host or QUILLON_HOST names one";
    if (folder.empty()) throw CommandError("no host folder is named" + hint);
    std::error_code ignored;
    if (!std::filesystem::is_directory(folder, ignored))
        throw CommandError(fmt::format("{} is not a folder{}", folder.string(), hint));
    const std::vector<std::string_view> missing = MissingFiles(folder);
    if (!missing.empty()) {
        throw CommandError(fmt::format(
            "{} has no {}{}", std::filesystem::absolute(folder).lexically_normal().string(),
            fmt::join(missing, " and no "), hint));
    }
    return folder;
}

}  // namespace

LocalHost::LocalHost(const std::filesystem::path& folder, const NoteSink& note)
    : LocalHost(Checked{CheckedFolder(folder)}, note) {}

LocalHost::LocalHost(Host& outside, const NoteSink& note)
    : LocalHost(Checked{outside.GetAppPath()}, note) {}

LocalHost::LocalHost(const Checked& checked, const NoteSink& note)
    : host(checked.folder, clock),
      resolver(host.Drives()),
      files(resolver, note),
      databases(
          resolver,
          {.tables = NeededTableNames(),
           .note = [note](const std::string& message) { note(LogKind::Information, message); }}),
      thumbnails(MakeThumbnails()) {}

}  // namespace quillon
