#include "platform/portable/path_resolver.h"

#include <cerrno>
#include <utility>

#include "platform/failure.h"
#include "platform/portable/local_file.h"

namespace quillon {
namespace {

/// Whether a look that failed so leaves open whether something has the name. What cannot be told is
/// taken as it is written: the operation that follows says what is wrong with it.
bool MayBeTaken(int error) {
    return error != ENOENT && error != ENOTDIR;
}

std::string Join(const std::string& folder, std::string_view name) {
    std::string path = folder;
    path += '/';
    path += name;
    return path;
}

}  // namespace

std::string PathResolver::LocalRoot(const WindowsPath& path) const {
    const std::optional<std::string> folder = drives_.LocalFolder(path.root);
    if (!folder) throw Failure(FailureNumber::PathNotFound, path.Text());
    return *folder;
}

std::string PathResolver::Exact(const WindowsPath& path) const {
    const std::string root = LocalRoot(path);
    return path.rest.empty() && !root.empty() ? root : Join(root, path.rest);
}

LocalPlace PathResolver::Locate(const WindowsPath& path) {
    std::string local = Exact(path);
    if (path.rest.empty() || SpeaksWindowsPaths()) return {.path = std::move(local)};
    if (auto facts = FactsOfLink(local)) {
        if (facts->kind == LocalKind::Link) facts.reset();
        return {.path = std::move(local), .facts = facts};
    }
    if (MayBeTaken(errno)) return {.path = std::move(local)};
    return Find(LocalRoot(path), path.rest);
}

/// The place of `rest`. The whole is not there as it is written.
LocalPlace PathResolver::Find(const std::string& root, std::string_view rest) {
    const std::size_t slash = rest.rfind('/');
    const bool isTop = slash == std::string_view::npos;
    const std::string_view name = isTop ? rest : rest.substr(slash + 1);
    std::string folder = isTop ? root : Join(root, rest.substr(0, slash));
    std::optional<std::string> real = index_.Find(folder.empty() ? "/" : folder, name);
    if (!real && !isTop) {
        LocalPlace parent = Find(root, rest.substr(0, slash));
        if (parent.isFree) return {.path = Join(parent.path, name), .isFree = true};
        folder = std::move(parent.path);
        std::string local = Join(folder, name);
        if (FactsOfLink(local) || MayBeTaken(errno)) return {.path = std::move(local)};
        real = index_.Find(folder, name);
    }
    const bool isThere = real && !real->empty();
    return {.path = Join(folder, isThere ? *real : name), .isFree = real && real->empty()};
}

}  // namespace quillon
