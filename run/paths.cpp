#include "run/paths.h"

#include <algorithm>

#include "platform/basic_text.h"

namespace quillon {

bool NamesFolder(std::string_view setting) {
    return !setting.empty() && setting != "\\";
}

std::string AddBackslash(std::string_view path) {
    std::string result(path);
    if (!result.ends_with('\\')) result += '\\';
    return result;
}

std::string PlainPath(std::string_view written) {
    std::string path = Replace(written, "/", "\\");
    const std::size_t start = path.starts_with("\\\\") ? 1 : 0;
    const auto isRepeated = [](char left, char right) { return left == '\\' && right == '\\'; };
    path.erase(
        std::unique(path.begin() + static_cast<std::ptrdiff_t>(start), path.end(), isRepeated),
        path.end());
    return path;
}

bool IsDriveRoot(std::string_view folder) {
    const std::string path = AddBackslash(PlainPath(folder));
    return path.size() > 1 && path == GetDrive(path) + '\\';
}

std::string FolderPath(std::string_view written) {
    std::string path = PlainPath(written);
    while (path.ends_with('\\') && !path.ends_with(":\\"))
        path.pop_back();
    return path;
}

std::string FixPath(std::string_view path) {
    if (path.empty()) return "";
    std::string result(path);
    std::replace(result.begin(), result.end(), '\\', '/');
    if (!result.starts_with('/')) result.insert(result.begin(), '/');
    if (!result.ends_with('/')) result += '/';
    return result;
}

std::string GetDrive(std::string_view path) {
    const std::size_t network = path.find("\\\\");
    if (network == std::string_view::npos) {
        const std::size_t end = path.find('\\');
        return std::string(path.substr(0, end == std::string_view::npos ? 0 : end));
    }
    const std::size_t serverEnd = path.find('\\', network + 2);
    if (serverEnd == std::string_view::npos) return "";
    const std::size_t shareEnd = path.find('\\', serverEnd + 1);
    if (shareEnd == std::string_view::npos) return "";
    return std::string(path.substr(0, shareEnd));
}

std::string ChangeDrive(std::string_view newDrive, std::string_view path) {
    return Replace(path, GetDrive(path), newDrive);
}

bool IsOfFileSystem(std::string_view name) {
    return EqualIgnoringCase(name, "lost+found");
}

std::string GetBaseName(std::string_view path) {
    constexpr std::string_view Slashes = "\\/";
    path = path.substr(0, path.find_last_not_of(Slashes) + 1);
    path.remove_prefix(path.find_last_of(Slashes) + 1);
    return std::string(path.substr(0, path.rfind('.')));
}

std::string_view LastName(std::string_view path) {
    return path.substr(path.rfind('\\') + 1);
}

}  // namespace quillon
