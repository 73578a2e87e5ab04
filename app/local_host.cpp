#include "app/local_host.h"

#include <array>
#include <fmt/format.h>
#include <string>
#include <string_view>
#include <system_error>

#include "app/console.h"
#include "app/database_needs.h"
#include "platform/basic_text.h"

namespace quillon {
namespace {

constexpr std::array<std::string_view, 2> NeededFiles{"Quillon.ini", HostSettingsFile};

bool HasFile(const std::filesystem::path& folder, std::string_view name) {
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (EqualIgnoringCase(entry.path().filename().string(), name)) return true;
    }
    return false;
}

/// The folder itself, once it has been found to hold what a host folder holds.
std::filesystem::path CheckedFolder(const std::filesystem::path& folder) {
    const std::string hint = "; 'quillon init' makes a host folder, --host names one";
    std::error_code ignored;
    if (!std::filesystem::is_directory(folder, ignored))
        throw CommandError(fmt::format("{} is no folder{}", folder.string(), hint));
    std::string missing;
    for (const std::string_view name : NeededFiles) {
        if (!HasFile(folder, name))
            missing += (missing.empty() ? "" : " and no ") + std::string(name);
    }
    if (!missing.empty()) {
        throw CommandError(fmt::format(
            "{} has no {}{}", std::filesystem::absolute(folder).lexically_normal().string(),
            missing, hint));
    }
    return folder;
}

}  // namespace

LocalHost::LocalHost(const std::filesystem::path& folder, const NoteSink& note)
    : host(CheckedFolder(folder), clock),
      resolver(host.Drives()),
      files(resolver, note),
      databases(resolver,
                {.tables = NeededTableNames(), .note = [note](const std::string& message) {
                     note(LogKind::Information, message);
                 }}) {}

}  // namespace quillon
