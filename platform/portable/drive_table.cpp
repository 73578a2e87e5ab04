#include "platform/portable/drive_table.h"

#include <algorithm>

#include "platform/basic_text.h"
#include "platform/failure.h"
#include "platform/portable/local_file.h"
#include "platform/windows_path.h"

namespace quillon {
namespace {

constexpr const char* LocalRootDrive = "Z:";

/// What is behind the folder's path, without slashes around it; nothing when the path is elsewhere.
std::optional<std::string_view> Behind(std::string_view folder, std::string_view path) {
    if (!path.starts_with(folder)) return std::nullopt;
    path.remove_prefix(folder.size());
    if (path.empty()) return path;
    if (path.front() != '/') return std::nullopt;
    return path.substr(1);
}

bool HoldsWindowsNames(std::string_view path) {
    const std::vector<std::string> names = Split(path, "/");
    return std::all_of(names.begin(), names.end(), IsWindowsName);
}

/// The Windows path that a local path of such a system is; nothing where Windows could not hold it.
std::optional<std::string> OwnPath(const std::string& path) try {
    return ParseWindowsPath(path).Text();
} catch (const Failure&) {
    return std::nullopt;
}

}  // namespace

DriveTable::DriveTable(const std::filesystem::path& baseFolder)
    : base_(std::filesystem::absolute(baseFolder)) {
    if (!SpeaksWindowsPaths()) folders_.emplace(LocalRootDrive, "");
}

std::string DriveTable::Absolute(const std::filesystem::path& folder) const {
    std::string local = (base_ / folder).lexically_normal().generic_string();
    while (!local.empty() && local.back() == '/')
        local.pop_back();
    return local;
}

void DriveTable::Map(std::string_view root, const std::filesystem::path& folder) {
    const std::optional<std::string> parsed = ParseRoot(root);
    if (!parsed || folder.empty()) {
        throw Failure(FailureNumber::InvalidProcedureCall,
                      "drive " + std::string(root) + "=" + folder.string());
    }
    folders_.insert_or_assign(UpperCase(*parsed), Absolute(folder));
}

void DriveTable::MakeReachable(const std::filesystem::path& folder) {
    if (WindowsPathOf(folder)) return;
    for (char letter = 'Y'; letter >= 'A'; --letter) {
        const std::string root{letter, ':'};
        if (folders_.emplace(root, Absolute(folder)).second) return;
    }
    throw Failure(FailureNumber::PathNotFound, folder.string());
}

std::optional<std::string> DriveTable::LocalFolder(std::string_view root) const {
    const auto found = folders_.find(UpperCase(root));
    if (found != folders_.end()) return found->second;
    // What lies on a drive that goes away while the program runs is not gone, so the drive counts
    // as there: looks at what is on it fail then.
    const std::string name = UpperCase(root);
    if (!ownRoots_.contains(name)) {
        if (!HasRoot(root)) return std::nullopt;
        ownRoots_.insert(name);
    }
    return Replace(root, "\\", "/");
}

std::optional<std::string> DriveTable::WindowsPathOf(const std::filesystem::path& local) const {
    const std::string path = Absolute(local);
    const std::pair<const std::string, std::string>* nearest = nullptr;
    for (const auto& mapped : folders_) {
        const std::optional<std::string_view> rest = Behind(mapped.second, path);
        if (!rest || !HoldsWindowsNames(*rest)) continue;
        if (nearest == nullptr || mapped.second.size() > nearest->second.size()) nearest = &mapped;
    }
    if (nearest == nullptr && SpeaksWindowsPaths()) return OwnPath(path);
    if (nearest == nullptr) return std::nullopt;
    return WindowsPath{nearest->first, std::string(*Behind(nearest->second, path))}.Text();
}

}  // namespace quillon
